// The named setting ZRSetting and the collection ZRSettings: its two views, lookups by
// name, the conversions of vector values, and comparison.
#include <cstddef>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "zrcommon920r/display/display.h"
#include "zrcommon920r/xml/settings/settings.h"

namespace ZRXML_920 {

using ZRDisplay_920::DisplayS;

namespace {

using StringPair = std::pair<std::string, std::string>;

// value through a default std::ostringstream: the global C++ locale, six significant
// digits for a double.
template <typename T>
std::string Printed(const T & value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

}  // namespace

// ---- ZRSetting ----

ZRSetting::ZRSetting(const std::string & name, double value)
    : fName(name), fValue(new ZRNumValue(value)) {}

ZRSetting::ZRSetting(const std::string & name, const std::string & value)
    : fName(name), fValue(new ZRStrValue(value)) {}

ZRSetting::ZRSetting(const std::string & name, const ZRSettings & value)
    : fName(name), fValue(new ZRSettingListValue(value)) {}

ZRSetting::ZRSetting(const std::string & name, std::unique_ptr<IZRSettingValue> value)
    : fName(name), fValue(value.release()) {}

ZRSetting::ZRSetting(const ZRSetting & other)
    : fName(other.fName),
      fType(other.fType),
      fValue(other.fValue != nullptr ? other.fValue->Clone() : nullptr) {}

ZRSetting & ZRSetting::operator=(const ZRSetting & other) {
  if (this != &other) {
    IZRSettingValue * copy = other.fValue != nullptr ? other.fValue->Clone() : nullptr;
    fName = other.fName;
    fType = other.fType;
    delete fValue;
    fValue = copy;
  }
  return *this;
}

ZRSetting::~ZRSetting() {
  delete fValue;
}

ZRSetting * ZRSetting::Clone() const {
  return new ZRSetting(*this);
}

// The new value is made before the old one goes, as the argument may live inside it (a
// list value's own collection).
void ZRSetting::SetValue(double value) {
  IZRSettingValue * made = new ZRNumValue(value);
  delete fValue;
  fValue = made;
}

void ZRSetting::SetValue(const std::string & value) {
  IZRSettingValue * made = new ZRStrValue(value);
  delete fValue;
  fValue = made;
}

void ZRSetting::SetValue(const ZRSettings & value) {
  IZRSettingValue * made = new ZRSettingListValue(value);
  delete fValue;
  fValue = made;
}

bool ZRSetting::IsList() const {
  return fValue != nullptr && fValue->GetType() == IZRSettingValue::eVecValue;
}

bool ZRSetting::HasChild() const {
  return fValue != nullptr && fValue->GetType() == IZRSettingValue::eListValue;
}

void ZRSetting::Display() const {
  DisplayS("Setting Name", fName);
  DisplayS("Setting Type", fType);
  if (fValue != nullptr) fValue->Display();
}

bool ZRSetting::operator==(const ZRSetting & other) const {
  if (fName != other.fName || fType != other.fType) return false;
  if (fValue == nullptr || other.fValue == nullptr) return fValue == other.fValue;
  return *fValue == *other.fValue;
}

bool ZRSetting::operator<(const ZRSetting & other) const {
  return fValue != nullptr && other.fValue != nullptr && *fValue < *other.fValue;
}

// ---- ZRSettings: copies and the two views ----

ZRSettings::ZRSettings(const ZRSettings & other) : fIndex(other.fIndex) {
  fSettings.reserve(other.fSettings.size());
  try {
    for (const ZRSetting * setting : other.fSettings) fSettings.push_back(setting->Clone());
  } catch (...) {
    DeleteAll();
    throw;
  }
}

ZRSettings & ZRSettings::operator=(const ZRSettings & other) {
  if (this != &other) {
    ZRSettings copy(other);
    fSettings.swap(copy.fSettings);
    fIndex.swap(copy.fIndex);
  }
  return *this;
}

ZRSettings * ZRSettings::Clone() const {
  return new ZRSettings(*this);
}

ZRSettings::~ZRSettings() {
  DeleteAll();
}

void ZRSettings::DeleteAll() {
  for (ZRSetting * setting : fSettings) delete setting;
  fSettings.clear();
}

void ZRSettings::Clear() {
  DeleteAll();
  fIndex.clear();
}

ZRSettings::Index::const_iterator ZRSettings::FindSetting(const std::string & name) const {
  const Index::const_iterator at = fIndex.lower_bound(name);
  return at != fIndex.end() && at->first == name ? at : fIndex.end();
}

void ZRSettings::Insert(std::unique_ptr<ZRSetting> setting, const std::string & type) {
  setting->fType = type;
  fSettings.push_back(setting.get());
  try {
    fIndex.emplace(setting->fName, fSettings.size() - 1);  // after others of the name
  } catch (...) {
    fSettings.pop_back();
    throw;
  }
  setting.release();
}

void ZRSettings::Delete(Index::const_iterator at, std::size_t index) {
  delete fSettings[index];
  fSettings.erase(fSettings.begin() + static_cast<std::ptrdiff_t>(index));
  fIndex.erase(at);
  for (auto & entry : fIndex)
    if (entry.second > index) --entry.second;
}

bool ZRSettings::AddSetting(const std::string & name, double value, bool replace) {
  if (replace) RemoveSetting(name, true);
  Insert(std::unique_ptr<ZRSetting>(new ZRSetting(name, value)), std::string());
  return true;
}

bool ZRSettings::AddSetting(const std::string & name, const std::string & value, bool replace) {
  if (replace) RemoveSetting(name, true);
  Insert(std::unique_ptr<ZRSetting>(new ZRSetting(name, value)), std::string());
  return true;
}

bool ZRSettings::RemoveSetting(const std::string & name, bool all) {
  Index::const_iterator at = FindSetting(name);
  if (at == fIndex.end()) return false;
  do {
    Delete(at, at->second);
  } while (all && (at = FindSetting(name)) != fIndex.end());
  return true;
}

std::vector<ZRSetting *> ZRSettings::GetSettingByName(const std::string & name) {
  std::vector<ZRSetting *> found;
  const auto range = fIndex.equal_range(name);
  for (auto at = range.first; at != range.second; ++at) found.push_back(fSettings[at->second]);
  return found;
}

ZRSetting * ZRSettings::GetSettingAt(std::size_t index) const {
  return index < fSettings.size() ? fSettings[index] : nullptr;
}

void ZRSettings::GetSettingNames(std::vector<std::string> & names) const {
  for (const ZRSetting * setting : fSettings) names.push_back(setting->fName);
}

// ---- ZRSettings: values by name ----

IZRSettingValue * ZRSettings::FindValue(const std::string & name) const {
  const Index::const_iterator at = FindSetting(name);
  return at != fIndex.end() ? fSettings[at->second]->fValue : nullptr;
}

bool ZRSettings::GetSettingValByName(const std::string & name, int & value) const {
  const IZRSettingValue * found = FindValue(name);
  if (found == nullptr) return false;
  value = found->GetInt();
  return true;
}

bool ZRSettings::GetSettingValByName(const std::string & name, double & value) const {
  const IZRSettingValue * found = FindValue(name);
  if (found == nullptr) return false;
  value = found->GetDouble();
  return true;
}

bool ZRSettings::GetSettingValByName(const std::string & name, std::string & value) const {
  const IZRSettingValue * found = FindValue(name);
  if (found == nullptr) return false;
  value = found->GetString();
  return true;
}

bool ZRSettings::GetSettingValByName(const std::string & name, bool & value) const {
  const IZRSettingValue * found = FindValue(name);
  if (found == nullptr) return false;
  value = found->GetBool();
  return true;
}

bool ZRSettings::GetSettingValByName(const std::string & name, long long & value) const {
  const IZRSettingValue * found = FindValue(name);
  if (found == nullptr) return false;
  value = found->GetLongLong();
  return true;
}

bool ZRSettings::GetSettingValByName(const std::string & name, ZRSettings & value) const {
  const auto * list = dynamic_cast<const ZRSettingListValue *>(FindValue(name));
  if (list == nullptr) return false;
  value = *list->GetListValue();
  return true;
}

bool ZRSettings::GetSettingValByName(const std::string & name, std::vector<int> & value) const {
  IZRSettingValue * found = FindValue(name);
  return found != nullptr && MapVecValue(found, value);
}

bool ZRSettings::GetSettingValByName(const std::string & name, std::vector<double> & value) const {
  IZRSettingValue * found = FindValue(name);
  return found != nullptr && MapVecValue(found, value);
}

bool ZRSettings::GetSettingValByName(const std::string & name,
                                     std::vector<std::string> & value) const {
  IZRSettingValue * found = FindValue(name);
  return found != nullptr && MapVecValue(found, value);
}

bool ZRSettings::GetSettingValByName(const std::string & name,
                                     std::vector<ZRSettings> & value) const {
  IZRSettingValue * found = FindValue(name);
  return found != nullptr && MapVecValue(found, value);
}

bool ZRSettings::GetSettingValByName(const std::string & name,
                                     std::vector<StringPair> & value) const {
  IZRSettingValue * found = FindValue(name);
  return found != nullptr && MapVecValue(found, value);
}

// ---- ZRSettings: vector conversions ----
// An element type is recognised by the value's class alone: a value that merely reports a
// vector subtype has no elements that could be read safely.

bool ZRSettings::MapVecValue(IZRSettingValue * value, std::vector<int> & target) {
  if (value == nullptr) return false;
  if (const auto * ints = dynamic_cast<const ZRVecValue<int> *>(value)) {
    target = ints->GetVecValue();
    return true;
  }
  if (const auto * doubles = dynamic_cast<const ZRVecValue<double> *>(value)) {
    for (const double d : doubles->GetVecValue()) target.push_back(ZRNumValue(d).GetInt());
    return true;
  }
  if (const auto * texts = dynamic_cast<const ZRVecValue<std::string> *>(value))
    return StrVec2IntVec(texts->GetVecValue(), target);
  return true;  // Intended: any other value leaves target alone and answers true
}

bool ZRSettings::MapVecValue(IZRSettingValue * value, std::vector<double> & target) {
  if (value == nullptr) return false;
  if (const auto * doubles = dynamic_cast<const ZRVecValue<double> *>(value)) {
    target = doubles->GetVecValue();
    return true;
  }
  if (const auto * ints = dynamic_cast<const ZRVecValue<int> *>(value)) {
    for (const int i : ints->GetVecValue()) target.push_back(i);
    return true;
  }
  if (const auto * texts = dynamic_cast<const ZRVecValue<std::string> *>(value))
    return StrVec2DoubleVec(texts->GetVecValue(), target);
  return true;  // Intended: any other value leaves target alone and answers true
}

bool ZRSettings::MapVecValue(IZRSettingValue * value, std::vector<std::string> & target) {
  if (value == nullptr) return false;
  if (const auto * texts = dynamic_cast<const ZRVecValue<std::string> *>(value)) {
    target = texts->GetVecValue();
    return true;
  }
  if (const auto * ints = dynamic_cast<const ZRVecValue<int> *>(value)) {
    for (const int i : ints->GetVecValue()) target.push_back(Printed(i));
    return true;
  }
  if (const auto * doubles = dynamic_cast<const ZRVecValue<double> *>(value)) {
    for (const double d : doubles->GetVecValue()) target.push_back(Printed(d));
    return true;
  }
  return true;  // Intended: any other value leaves target alone and answers true
}

bool ZRSettings::MapVecValue(IZRSettingValue * value, std::vector<ZRSettings> & target) {
  const auto * lists = dynamic_cast<const ZRVecValue<ZRSettings> *>(value);
  if (lists == nullptr) return false;
  target = lists->GetVecValue();
  return true;
}

bool ZRSettings::MapVecValue(IZRSettingValue * value, std::vector<StringPair> & target) {
  if (const auto * same = dynamic_cast<const ZRVecValue<StringPair> *>(value)) {
    target = same->GetVecValue();
    return true;
  }
  if (const auto * ints = dynamic_cast<const ZRVecValue<std::pair<std::string, int>> *>(value)) {
    for (const auto & p : ints->GetVecValue()) target.emplace_back(p.first, Printed(p.second));
    return true;
  }
  if (const auto * doubles =
          dynamic_cast<const ZRVecValue<std::pair<std::string, double>> *>(value)) {
    for (const auto & p : doubles->GetVecValue()) target.emplace_back(p.first, Printed(p.second));
    return true;
  }
  return false;
}

bool ZRSettings::Str2Int(const std::string & text, int * value) {
  std::istringstream in(text);
  int read = 0;
  in >> read;
  if (in.fail()) return false;  // fail() covers the bad bit too
  *value = read;
  return true;
}

bool ZRSettings::Str2Double(const std::string & text, double * value) {
  std::istringstream in(text);
  double read = 0.0;
  in >> read;
  if (in.fail()) return false;
  *value = read;
  return true;
}

bool ZRSettings::StrVec2IntVec(const std::vector<std::string> & texts, std::vector<int> & target) {
  for (const std::string & text : texts) {
    int read = 0;
    if (!Str2Int(text, &read)) {
      target.clear();
      return false;
    }
    target.push_back(read);
  }
  return true;
}

bool ZRSettings::StrVec2DoubleVec(const std::vector<std::string> & texts,
                                  std::vector<double> & target) {
  for (const std::string & text : texts) {
    double read = 0.0;
    if (!Str2Double(text, &read)) {
      target.clear();
      return false;
    }
    target.push_back(read);
  }
  return true;
}

// ---- ZRSettings: new settings, comparison, display ----

void ZRSettings::AddNewSetting(const std::string & name, double value, const std::string & type) {
  Insert(std::unique_ptr<ZRSetting>(new ZRSetting(name, value)), type);
}

void ZRSettings::AddNewSetting(const std::string & name, const std::string & value,
                               const std::string & type) {
  Insert(std::unique_ptr<ZRSetting>(new ZRSetting(name, value)), type);
}

void ZRSettings::AddNewSetting(const std::string & name, const ZRSettings & value,
                               const std::string & type) {
  Insert(std::unique_ptr<ZRSetting>(new ZRSetting(name, value)), type);
}

void ZRSettings::AddNewSetting(const std::string & name, char ** values, int count,
                               const std::string & type) {
  std::vector<std::string> texts;
  if (values != nullptr && count > 0) {
    texts.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) texts.emplace_back(values[i] != nullptr ? values[i] : "");
  }
  std::unique_ptr<IZRSettingValue> vector(new ZRVecValue<std::string>(texts));
  Insert(std::unique_ptr<ZRSetting>(new ZRSetting(name, std::move(vector))), type);
}

void ZRSettings::AddNewSetting(const std::string & name, ZRSettings ** values, int count,
                               const std::string & type) {
  std::vector<ZRSettings> lists;
  if (values != nullptr && count > 0) {
    lists.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
      lists.push_back(values[i] != nullptr ? *values[i] : ZRSettings());
  }
  std::unique_ptr<IZRSettingValue> vector(new ZRVecValue<ZRSettings>(lists));
  Insert(std::unique_ptr<ZRSetting>(new ZRSetting(name, std::move(vector))), type);
}

void ZRSettings::AddNewSetting(const std::string & name, const IZRSettingValue & value,
                               const std::string & type) {
  std::unique_ptr<IZRSettingValue> copy(value.Clone());
  Insert(std::unique_ptr<ZRSetting>(new ZRSetting(name, std::move(copy))), type);
}

int ZRSettings::Compare(const ZRSettings & other) const {
  if (this == &other) return 0;
  for (std::size_t i = 0;; ++i) {
    if (i >= fSettings.size()) return i < other.fSettings.size() ? -1 : 0;
    if (i >= other.fSettings.size()) return 1;
    const IZRSettingValue * left = fSettings[i]->fValue;
    const IZRSettingValue * right = other.fSettings[i]->fValue;
    if (left == nullptr || right == nullptr) continue;
    // Intended: values of unlike classes are neither less nor greater, so the walk goes on.
    if (*left < *right) return -1;
    if (*right < *left) return 1;
  }
}

void ZRSettings::Display() const {
  for (const ZRSetting * setting : fSettings) setting->Display();
}

}  // namespace ZRXML_920
