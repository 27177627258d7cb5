// ZRWarnings: the distinct-warning lists, their merge, and the parameter rows by code.
#include "zrcommon920r/common/warnings.h"

#include <utility>

namespace ZRCommon_920 {

void ZRWarnings::ZRParameterValue::SetValue(int value) {
  fType = ParamInteger;
  fnValue = value;
}

void ZRWarnings::ZRParameterValue::SetValue(double value) {
  fType = ParamDouble;
  fdValue = value;
}

void ZRWarnings::ZRParameterValue::SetValue(std::string value) {
  fType = ParamString;
  fsValue = std::move(value);
}

ZRWarnings & ZRWarnings::operator=(const ZRWarnings & other) {
  if (this != &other) {
    fFirstList = other.fFirstList;
    fSecondList = other.fSecondList;
    fParameterIndex = other.fParameterIndex;
    fParameterTable = other.fParameterTable;
    fParameterScratch = other.fParameterScratch;
  }
  return *this;
}

ZRWarnings & ZRWarnings::operator=(ZRWarnings && other) {
  if (this != &other) {
    fFirstList = std::move(other.fFirstList);
    fSecondList = std::move(other.fSecondList);
    fParameterIndex = std::move(other.fParameterIndex);
    fParameterTable = std::move(other.fParameterTable);
    fParameterScratch = std::move(other.fParameterScratch);
  }
  return *this;
}

ZRWarnings::~ZRWarnings() = default;

void ZRWarnings::AddDistinct(std::vector<ZRStatus> & list, const ZRStatus & status) {
  for (const ZRStatus & held : list) {
    if (held == status) return;
  }
  list.push_back(status);
}

void ZRWarnings::AddWarning(const ZRStatus & status, Destination destination) {
  if (!status.IsWarning()) return;
  if (destination == DestFirst) {
    AddDistinct(fFirstList, status);
  } else if (destination == DestSecond) {
    AddDistinct(fSecondList, status);
  } else {
    AddDistinct(fFirstList, status);
    AddDistinct(fSecondList, status);
  }
}

void ZRWarnings::AddWarnings(const std::vector<ZRStatus> & statuses) {
  for (const ZRStatus & status : statuses) AddWarning(status, DestFirst);
}

void ZRWarnings::AddWarnings(ZRWarnings other) {
  // other's lists hold only warnings, so no level test is needed here.
  for (const ZRStatus & status : other.fFirstList) AddDistinct(fFirstList, status);
  for (const ZRStatus & status : other.fSecondList) AddDistinct(fSecondList, status);
  for (const auto & entry : other.fParameterIndex) {
    // Intended: a code this object already has keeps its own row; other's is not merged.
    if (fParameterIndex.count(entry.first) != 0) continue;
    fParameterTable.push_back(std::move(other.fParameterTable[entry.second]));
    fParameterIndex.emplace(entry.first, fParameterTable.size() - 1);
  }
}

void ZRWarnings::ClearWarnings() {
  // Intended: only the first list is emptied; the second list and the parameters stay, so
  // a later warning with an old code finds its old parameters.
  fFirstList.clear();
}

void ZRWarnings::AppendParameter(std::int32_t code, ZRParameterValue && value) {
  const auto found = fParameterIndex.find(code);
  if (found != fParameterIndex.end()) {
    fParameterTable[found->second].push_back(std::move(value));
    return;
  }
  fParameterTable.emplace_back();
  try {
    fParameterTable.back().push_back(std::move(value));
    fParameterIndex.emplace(code, fParameterTable.size() - 1);
  } catch (...) {
    fParameterTable.pop_back();  // no empty row, and no index entry without its row
    throw;
  }
}

bool ZRWarnings::AddParameter(const ZRStatus & status, int value) {
  ZRParameterValue parameter;
  parameter.SetValue(value);
  AppendParameter(status.GetErrorCode(), std::move(parameter));
  return true;
}

bool ZRWarnings::AddParameter(const ZRStatus & status, double value) {
  ZRParameterValue parameter;
  parameter.SetValue(value);
  AppendParameter(status.GetErrorCode(), std::move(parameter));
  return true;
}

bool ZRWarnings::AddParameter(const ZRStatus & status, std::string value) {
  ZRParameterValue parameter;
  parameter.SetValue(std::move(value));
  AppendParameter(status.GetErrorCode(), std::move(parameter));
  return true;
}

bool ZRWarnings::HasParameter(const ZRStatus & status) const {
  const auto found = fParameterIndex.find(status.GetErrorCode());
  return found != fParameterIndex.end() && !fParameterTable[found->second].empty();
}

const std::vector<ZRWarnings::ZRParameterValue> & ZRWarnings::GetParameters(
    const ZRStatus & status) {
  fParameterScratch.clear();
  const auto found = fParameterIndex.find(status.GetErrorCode());
  if (found != fParameterIndex.end()) fParameterScratch = fParameterTable[found->second];
  return fParameterScratch;
}

}  // namespace ZRCommon_920
