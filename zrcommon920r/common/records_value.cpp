// ValueRecord: the named value record.
#include "zrcommon920r/common/records.h"

#include <climits>
#include <cstddef>
#include <stdexcept>

namespace ZRCommon_920 {

ValueRecord::ValueRecord(int capacity) {
  if (capacity > 0) fvValues.reserve(static_cast<std::size_t>(capacity));
}

ValueRecord::~ValueRecord() = default;

int ValueRecord::Find(const std::string & name) const {
  const auto it = fIndex.find(name);
  return it == fIndex.end() ? -1 : it->second;
}

bool ValueRecord::operator==(const ValueRecord & other) const {
  if (fIndex.size() != other.fIndex.size()) return false;
  for (const auto & [name, position] : fIndex) {
    const int otherPosition = other.Find(name);
    if (otherPosition < 0) return false;
    if (!(fvValues[static_cast<std::size_t>(position)] ==
          other.fvValues[static_cast<std::size_t>(otherPosition)]))
      return false;
  }
  return true;
}

int ValueRecord::Add(const std::string & name, const Value & value) {
  const auto at = fIndex.lower_bound(name);
  if (at != fIndex.end() && at->first == name) {
    fvValues[static_cast<std::size_t>(at->second)] = value;
    return at->second;
  }
  // Positions are ints: a record never holds more than INT_MAX values.
  if (fvValues.size() >= static_cast<std::size_t>(INT_MAX)) throw std::length_error("ValueRecord");
  const int position = static_cast<int>(fvValues.size());
  fvValues.push_back(value);
  try {
    fIndex.emplace_hint(at, name, position);
  } catch (...) {
    fvValues.pop_back();
    throw;
  }
  return position;
}

bool ValueRecord::AddAll(const ValueRecord & other) {
  // Adding a record to itself only overwrites values, so the walk stays valid.
  for (const auto & [name, position] : other.fIndex)
    Add(name, other.fvValues[static_cast<std::size_t>(position)]);
  return true;
}

bool ValueRecord::Set(const std::string & name, const Value & value, bool checkType) {
  const int position = Find(name);
  if (position < 0) return false;
  Value & current = fvValues[static_cast<std::size_t>(position)];
  if (checkType && !current.IsNull() && current.GetType() != value.GetType()) return false;
  current = value;
  return true;
}

void ValueRecord::Remove(const std::string & name) {
  const auto at = fIndex.find(name);
  if (at == fIndex.end()) return;
  const int position = at->second;
  fvValues.erase(fvValues.begin() + position);
  fIndex.erase(at);
  for (auto & entry : fIndex)
    if (entry.second > position) --entry.second;
}

void ValueRecord::Clear() {
  fvValues.clear();
  fIndex.clear();
}

void ValueRecord::ClearValues() {
  for (Value & value : fvValues) value.ClearValue();
}

void ValueRecord::SetMissingValue(int index) {
  fvValues[static_cast<std::size_t>(index)].Clear();
}

Value ValueRecord::Get(int index) {
  if (index < 0 || static_cast<std::size_t>(index) >= fvValues.size()) return Value();
  return fvValues[static_cast<std::size_t>(index)];
}

Value ValueRecord::Get(const std::string & name) {
  const int position = Find(name);
  return position < 0 ? Value() : fvValues[static_cast<std::size_t>(position)];
}

int ValueRecord::IndexOf(const std::string & name) const {
  return Find(name);
}

bool ValueRecord::Contains(const std::string & name) {
  return IndexOf(name) != -1;
}

int ValueRecord::Size() const {
  return static_cast<int>(fIndex.size());
}

std::vector<std::string> ValueRecord::Names(bool byPosition) const {
  std::vector<std::string> names;
  if (byPosition) {
    names.resize(fIndex.size());
    for (const auto & [name, position] : fIndex) names[static_cast<std::size_t>(position)] = name;
  } else {
    names.reserve(fIndex.size());
    for (const auto & entry : fIndex) names.push_back(entry.first);
  }
  return names;
}

std::string ValueRecord::GetName(int index) {
  for (const auto & [name, position] : fIndex)
    if (position == index) return name;
  return std::string();
}

bool ValueRecord::SetValue(int index, const std::string & value) {
  fvValues[static_cast<std::size_t>(index)] = value;
  return true;
}

bool ValueRecord::SetValue(int index, const char * value) {
  fvValues[static_cast<std::size_t>(index)] = value;
  return true;
}

bool ValueRecord::SetValue(int index, double value) {
  fvValues[static_cast<std::size_t>(index)] = value;
  return true;
}

bool ValueRecord::SetValue(int index, long long value) {
  fvValues[static_cast<std::size_t>(index)] = value;
  return true;
}

bool ValueRecord::SetValue(int index, int value) {
  fvValues[static_cast<std::size_t>(index)] = value;
  return true;
}

bool ValueRecord::SetValue(int index, bool value) {
  fvValues[static_cast<std::size_t>(index)] = value;
  return true;
}

void * ValueRecord::GetRecord() const {
  return nullptr;
}

Value & ValueRecord::operator[](const std::string & name) {
  const int position = Find(name);
  return fvValues[static_cast<std::size_t>(position >= 0 ? position : Add(name, Value()))];
}

std::ostream & ValueRecord::Display(std::ostream & os) const {
  os << '[';
  const char * separator = "";
  for (const auto & [name, position] : fIndex) {
    os << separator << name << ':';
    fvValues[static_cast<std::size_t>(position)].Display(os);
    separator = ",";
  }
  return os << ']';
}

std::ostream & operator<<(std::ostream & os, const ValueRecord & record) {
  return record.Display(os);
}

}  // namespace ZRCommon_920
