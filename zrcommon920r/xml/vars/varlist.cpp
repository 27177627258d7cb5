// The variable list ZRVarList.
#include "zrcommon920r/xml/vars/varlist.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <ostream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "zrcommon920r/display/display.h"
#include "zrcommon920r/xml/core/objstream.h"
#include "zrcommon920r/xml/vars/detail/persist.h"

namespace ZRXML_920 {

using ZRDisplay_920::DisplayI;
using ZRDisplay_920::DisplayText;

namespace {

bool IsCategoryLevel(IZRVariable::MeasureLevel level) {
  return level == IZRVariable::kLevelNumericCategorical ||
         level == IZRVariable::kLevelStringCategorical;
}

}  // namespace

ZRVarList::ZRVarList()
    : fNCont(0),
      fNCat(0),
      fTargetIndex(-1),
      fFirstResponse(-1),
      fWeightIndex(-1),
      fbListwiseDeletion(false),
      fUnWeightedCount(0.0),
      fWeightedCount(0.0),
      fDroppedCount(0.0),
      fBadWeightCount(0.0),
      fWeightedDroppedCount(0.0),
      fFieldFormats(nullptr) {}

ZRVarList::ZRVarList(const ZRVarList & other)
    : fNCont(other.fNCont),
      fNCat(other.fNCat),
      fTargetIndex(other.fTargetIndex),
      fFirstResponse(other.fFirstResponse),
      fWeightIndex(other.fWeightIndex),
      fbListwiseDeletion(other.fbListwiseDeletion),
      fUnWeightedCount(other.fUnWeightedCount),
      fWeightedCount(other.fWeightedCount),
      fDroppedCount(other.fDroppedCount),
      fBadWeightCount(other.fBadWeightCount),
      fWeightedDroppedCount(other.fWeightedDroppedCount),
      fvResponses(other.fvResponses),
      fFieldFormats(other.fFieldFormats) {
  fvVars.reserve(other.fvVars.size());
  try {
    for (const IZRVariable * var : other.fvVars)
      fvVars.push_back(var != nullptr ? var->Clone() : nullptr);
  } catch (...) {
    Clear();
    throw;
  }
}

ZRVarList & ZRVarList::operator=(const ZRVarList & other) {
  if (this == &other) return *this;
  ZRVarList copy(other);
  std::swap(fvVars, copy.fvVars);  // copy's destructor frees the old variables
  fNCont = other.fNCont;
  fNCat = other.fNCat;
  fTargetIndex = other.fTargetIndex;
  fFirstResponse = other.fFirstResponse;
  fWeightIndex = other.fWeightIndex;
  fbListwiseDeletion = other.fbListwiseDeletion;
  fUnWeightedCount = other.fUnWeightedCount;
  fWeightedCount = other.fWeightedCount;
  fDroppedCount = other.fDroppedCount;
  fBadWeightCount = other.fBadWeightCount;
  fWeightedDroppedCount = other.fWeightedDroppedCount;
  fvResponses = other.fvResponses;
  fFieldFormats = other.fFieldFormats;
  return *this;
}

ZRVarList::~ZRVarList() {
  Clear();
}

void ZRVarList::Clear() {
  for (IZRVariable * var : fvVars) delete var;
  fvVars.clear();
}

// ---------------------------------------------------------------------------------------
// Adding

int ZRVarList::Append(IZRVariable * variable, bool continuous, IZRVariable::VariableRole role) {
  fvVars.push_back(variable);
  const int index = static_cast<int>(fvVars.size()) - 1;
  if (continuous)
    ++fNCont;
  else
    ++fNCat;
  if (role == IZRVariable::kRoleTarget)
    fTargetIndex = index;  // the last added target wins
  else if (role == IZRVariable::kRoleTargetResponse)
    AddResponseVariable(index);
  return index;
}

int ZRVarList::AddContVar(const std::string & name, const std::string & label,
                          IZRVariable::VariableRole role) {
  if (name.empty() || FindVariable(name) >= 0) return -1;
  return Append(new ZRContVar(name, label, role), true, role);
}

int ZRVarList::AddContVar(const std::string & name, const std::string & label, double min,
                          double max, IZRVariable::VariableRole role, bool binned, int nBins) {
  if (name.empty() || FindVariable(name) >= 0) return -1;
  return Append(new ZRContVar(name, label, min, max, role, binned, nBins), true, role);
}

int ZRVarList::AddContVar(const std::string & name, const std::string & label,
                          const std::vector<double> & cuts, bool binned,
                          IZRVariable::VariableRole role) {
  if (name.empty() || FindVariable(name) >= 0) return -1;
  return Append(new ZRContVar(name, label, cuts, binned, role), true, role);
}

int ZRVarList::AddContVar(const std::string & name, const std::string & label, double min,
                          double max, const std::vector<double> & cuts, bool binned,
                          IZRVariable::VariableRole role) {
  if (name.empty() || FindVariable(name) >= 0) return -1;
  return Append(new ZRContVar(name, label, min, max, cuts, binned, role), true, role);
}

int ZRVarList::AddCatVar(const std::string & name, const std::string & label, int nCategories,
                         IZRVariable::MeasureLevel level, IZRVariable::VariableRole role) {
  if (name.empty() || FindVariable(name) >= 0 || !IsCategoryLevel(level)) return -1;
  return Append(new ZRCatVar(name, label, nCategories, level, role, false), false, role);
}

namespace {

// A categorical variable of the level of the category type whose encoder has learnt the
// categories in order; its count is the encoder's distinct categories.
template <class Category>
ZRCatVar * NewLearntCatVar(const std::string & name, const std::string & label,
                           const std::vector<Category> & categories,
                           const std::vector<double> * sumFreqWts,
                           const std::vector<std::string> * labels,
                           IZRVariable::VariableRole role) {
  const IZRVariable::MeasureLevel level = std::is_same<Category, double>::value
                                              ? IZRVariable::kLevelNumericCategorical
                                              : IZRVariable::kLevelStringCategorical;
  const int n = static_cast<int>(categories.size());
  ZRCatVar * var = sumFreqWts != nullptr
                       ? new ZRCatVar(name, label, *sumFreqWts, n, level, role, false)
                       : new ZRCatVar(name, label, n, level, role, false);
  IZREncoder * encoder = var->GetEncoder();
  for (const Category & category : categories) encoder->Encode(category);
  var->SetNumberOfCategories(encoder->GetNumberOfCategories());
  if (labels != nullptr) encoder->SetValueLabels(*labels);
  return var;
}

}  // namespace

int ZRVarList::AddCatVar(const std::string & name, const std::string & label,
                         const std::vector<double> & categories, IZRVariable::VariableRole role) {
  if (name.empty() || FindVariable(name) >= 0) return -1;
  return Append(NewLearntCatVar(name, label, categories, nullptr, nullptr, role), false, role);
}

int ZRVarList::AddCatVar(const std::string & name, const std::string & label,
                         const std::vector<std::string> & categories,
                         IZRVariable::VariableRole role) {
  if (name.empty() || FindVariable(name) >= 0) return -1;
  return Append(NewLearntCatVar(name, label, categories, nullptr, nullptr, role), false, role);
}

int ZRVarList::AddCatVar(const std::string & name, const std::string & label,
                         const std::vector<double> & categories,
                         const std::vector<double> & sumFreqWts, IZRVariable::VariableRole role) {
  if (name.empty() || FindVariable(name) >= 0) return -1;
  return Append(NewLearntCatVar(name, label, categories, &sumFreqWts, nullptr, role), false, role);
}

int ZRVarList::AddCatVar(const std::string & name, const std::string & label,
                         const std::vector<std::string> & categories,
                         const std::vector<double> & sumFreqWts, IZRVariable::VariableRole role) {
  if (name.empty() || FindVariable(name) >= 0) return -1;
  return Append(NewLearntCatVar(name, label, categories, &sumFreqWts, nullptr, role), false, role);
}

int ZRVarList::AddCatVar(const std::string & name, const std::string & label,
                         const std::vector<double> & categories,
                         const std::vector<std::string> & labels, IZRVariable::VariableRole role) {
  if (name.empty() || FindVariable(name) >= 0) return -1;
  return Append(NewLearntCatVar(name, label, categories, nullptr, &labels, role), false, role);
}

int ZRVarList::AddCatVar(const std::string & name, const std::string & label,
                         const std::vector<std::string> & categories,
                         const std::vector<std::string> & labels, IZRVariable::VariableRole role) {
  if (name.empty() || FindVariable(name) >= 0) return -1;
  return Append(NewLearntCatVar(name, label, categories, nullptr, &labels, role), false, role);
}

int ZRVarList::AddCatVar(const std::string & name, const std::string & label,
                         const std::vector<double> & categories,
                         const std::vector<double> & sumFreqWts,
                         const std::vector<std::string> & labels, IZRVariable::VariableRole role) {
  if (name.empty() || FindVariable(name) >= 0) return -1;
  return Append(NewLearntCatVar(name, label, categories, &sumFreqWts, &labels, role), false, role);
}

int ZRVarList::AddCatVar(const std::string & name, const std::string & label,
                         const std::vector<std::string> & categories,
                         const std::vector<double> & sumFreqWts,
                         const std::vector<std::string> & labels, IZRVariable::VariableRole role) {
  if (name.empty() || FindVariable(name) >= 0) return -1;
  return Append(NewLearntCatVar(name, label, categories, &sumFreqWts, &labels, role), false, role);
}

int ZRVarList::PlaceWeight(IZRVariable * weight) {
  if (fWeightIndex >= 0 && fWeightIndex < static_cast<int>(fvVars.size())) {
    delete fvVars[fWeightIndex];
    fvVars[fWeightIndex] = weight;
  } else {
    fvVars.push_back(weight);
    fWeightIndex = static_cast<int>(fvVars.size()) - 1;
  }
  return fWeightIndex;
}

int ZRVarList::SetWeightVar(const std::string & name, const std::string & label,
                            IZRVariable::WRoundingOption option) {
  // Intended: the name is not checked against the list.
  return PlaceWeight(new ZRWeightVar(name, label, option));
}

int ZRVarList::AddNewVar(const IZRVariable * variable) {
  if (variable == nullptr) return -1;
  IZRVariable & source = const_cast<IZRVariable &>(*variable);  // the getters are not const
  if (FindVariable(source.GetVariableName()) >= 0) return -1;
  const IZRVariable::MeasureLevel level = source.GetMeasureLevel();
  const IZRVariable::VariableRole role = source.GetVariableRole();
  if (level == IZRVariable::kLevelFrequencyWeight) {
    const int index = PlaceWeight(variable->Clone());
    if (role == IZRVariable::kRoleTarget)
      fTargetIndex = index;
    else if (role == IZRVariable::kRoleTargetResponse)
      AddResponseVariable(index);
    return index;
  }
  if (level != IZRVariable::kLevelContinuous && !IsCategoryLevel(level)) return -1;
  return Append(variable->Clone(), level == IZRVariable::kLevelContinuous, role);
}

// ---------------------------------------------------------------------------------------
// Removing

bool ZRVarList::RemoveVar(int index) {
  if (index < 0 || index >= static_cast<int>(fvVars.size())) return false;
  IZRVariable * var = fvVars[index];
  const IZRVariable::MeasureLevel level =
      var != nullptr ? var->GetMeasureLevel() : IZRVariable::kLevelUnknown;
  const IZRVariable::VariableRole role =
      var != nullptr ? var->GetVariableRole() : IZRVariable::kRoleUndefined;
  delete var;
  fvVars.erase(fvVars.begin() + index);
  if (level == IZRVariable::kLevelContinuous)
    --fNCont;
  else if (index != fWeightIndex && role != IZRVariable::kRoleTarget)
    --fNCat;  // Intended: a categorical target leaves fNCat as it was
  if (role == IZRVariable::kRoleTarget)
    fTargetIndex = -1;
  else if (index < fTargetIndex)
    --fTargetIndex;
  // Intended: run on the shortened list, and later responses keep their numbers.
  RemoveResponseVariable(index);
  if (index == fWeightIndex)
    fWeightIndex = -1;
  else if (index < fWeightIndex)
    --fWeightIndex;
  return true;
}

bool ZRVarList::RemoveVar(std::string name) {
  return RemoveVar(FindVariable(name));
}

// ---------------------------------------------------------------------------------------
// Lookup

int ZRVarList::FindVariable(const std::string & name) const {
  for (std::size_t i = 0; i < fvVars.size(); ++i)
    if (fvVars[i] != nullptr && fvVars[i]->GetVariableName() == name) return static_cast<int>(i);
  return -1;
}

IZRVariable * ZRVarList::GetVarAt(int index) {
  if (index < 0 || index >= static_cast<int>(fvVars.size())) return nullptr;
  return fvVars[index];
}

const IZRVariable * ZRVarList::GetVarAt(int index) const {
  if (index < 0 || index >= static_cast<int>(fvVars.size())) return nullptr;
  return fvVars[index];
}

IZRVariable * ZRVarList::GetVariable(const std::string & name) {
  return GetVarAt(FindVariable(name));
}

const IZRVariable * ZRVarList::GetVariable(const std::string & name) const {
  return GetVarAt(FindVariable(name));
}

IZREncoder * ZRVarList::GetEncoderAt(int index) {
  IZRVariable * var = GetVarAt(index);
  return var != nullptr ? var->GetEncoder() : nullptr;
}

const IZREncoder * ZRVarList::GetEncoderAt(int index) const {
  const IZRVariable * var = GetVarAt(index);
  return var != nullptr ? var->GetEncoder() : nullptr;
}

const IZRVariable * ZRVarList::GetTargetVariable() const {
  return GetVarAt(fTargetIndex);
}

const IZRVariable * ZRVarList::GetTargetRespVariable() const {
  return GetVarAt(fFirstResponse);
}

const IZRVariable * ZRVarList::GetFreqWeightVariable() const {
  return GetVarAt(fWeightIndex);
}

int ZRVarList::GetNTargetCats() const {
  const IZRVariable * var = GetTargetVariable();
  return var != nullptr ? var->GetNumberOfCategories() : 0;
}

int ZRVarList::GetNOutputCats() const {
  const IZRVariable * var = GetTargetRespVariable();
  return var != nullptr ? var->GetNumberOfCategories() : 0;
}

int ZRVarList::GetNumInputVars() const {
  int n = 0;
  for (IZRVariable * var : fvVars)
    if (var != nullptr && var->GetVariableRole() == IZRVariable::kRoleInput) ++n;
  return n;
}

int ZRVarList::GetNumPossibleInputVars() const {
  int n = 0;
  for (IZRVariable * var : fvVars)
    if (var != nullptr && var->GetVariableRole() == IZRVariable::kRolePossibleInput) ++n;
  return n;
}

std::vector<int> ZRVarList::GetNInputCats() {
  std::vector<int> counts;
  for (IZRVariable * var : fvVars)
    if (var != nullptr && var->GetVariableRole() == IZRVariable::kRoleInput)
      counts.push_back(var->GetNumberOfCategories());
  return counts;
}

void ZRVarList::GetVarNames(std::vector<std::string> & inputs,
                            std::vector<std::string> & responses) const {
  for (IZRVariable * var : fvVars) {
    if (var == nullptr) continue;
    const IZRVariable::VariableRole role = var->GetVariableRole();
    if (role == IZRVariable::kRoleInput)
      inputs.push_back(var->GetVariableName());
    else if (role == IZRVariable::kRoleTargetResponse)
      responses.push_back(var->GetVariableName());
  }
}

// ---------------------------------------------------------------------------------------
// Roles

IZRVariable::VariableRole ZRVarList::GetVariableRole(int index) {
  IZRVariable * var = GetVarAt(index);
  return var != nullptr ? var->GetVariableRole() : IZRVariable::kRoleUndefined;
}

bool ZRVarList::SetVariableRole(int index, IZRVariable::VariableRole role) {
  IZRVariable * var = GetVarAt(index);
  if (var == nullptr) return false;
  if (role == IZRVariable::kRoleTarget) {
    if (fTargetIndex == -1) fTargetIndex = index;  // Intended: the first target stays
  } else if (role == IZRVariable::kRoleTargetResponse) {
    ChangeVariableRole(true, index);
  } else if (var->GetVariableRole() == IZRVariable::kRoleTarget) {
    fTargetIndex = -1;
  }
  var->SetVariableRole(role);
  return true;
}

bool ZRVarList::SetMissingValueReplacement(int index, const std::string & replacement) {
  IZRVariable * var = GetVarAt(index);
  if (var == nullptr) return false;
  var->SetMissingValueReplacement(replacement);
  return true;
}

int ZRVarList::UpdateNumbersOfCategories() {
  long long sum = 0;  // counts read from a stream may be anything: no int overflow
  for (IZRVariable * var : fvVars)
    if (var != nullptr) sum += var->UpdateNumberOfCategories();
  return static_cast<int>(std::clamp<long long>(sum, INT_MIN, INT_MAX));
}

bool ZRVarList::ChangeTargetEncoder(IZREncoder * encoder) {
  ZRCatVar * target = dynamic_cast<ZRCatVar *>(GetVarAt(fTargetIndex));
  if (encoder == nullptr || target == nullptr) {
    delete encoder;
    return false;
  }
  const IZREncoder::EncoderType type = encoder->GetEncoderType();
  const bool fits = (type == IZREncoder::kCatNumeric || type == IZREncoder::kCatString) &&
                    encoder->GetNumberOfCategories() > 0;
  target->ChangeEncoder(encoder);  // Intended: replaced even when it does not fit
  return fits;
}

bool ZRVarList::AddResponseVariable(int index) {
  if (index < 0 || index >= static_cast<int>(fvVars.size())) return false;
  if (fFirstResponse == -1 && fvResponses.empty()) fFirstResponse = index;
  fvResponses.push_back(index);
  return true;
}

bool ZRVarList::RemoveResponseVariable(int index) {
  if (index < 0 || index >= static_cast<int>(fvVars.size())) return false;
  if (fFirstResponse == -1 || fvResponses.empty()) return true;
  const auto it = std::find(fvResponses.begin(), fvResponses.end(), index);
  if (it != fvResponses.end()) fvResponses.erase(it);
  if (fvResponses.empty())
    fFirstResponse = -1;
  else if (index == fFirstResponse)
    fFirstResponse = fvResponses.front();
  return true;
}

bool ZRVarList::ChangeVariableRole(bool add, int index) {
  const auto it = std::find(fvResponses.begin(), fvResponses.end(), index);
  if (add && it == fvResponses.end())
    fvResponses.push_back(index);
  else if (!add && it != fvResponses.end())
    fvResponses.erase(it);
  if (fvResponses.empty())
    fFirstResponse = -1;
  else if (fFirstResponse == -1)
    fFirstResponse = fvResponses.front();
  return false;  // Intended: callers ignore the result
}

// ---------------------------------------------------------------------------------------
// Persistence and display

int ZRVarList::WriteObjectXML(std::ostream & out, int nTabs) const {
  if (!out.good()) return 0;
  const XMLObj obj("ZRVarList", nTabs);
  obj.StartObj(out);
  obj.WriteSubElement(out, static_cast<int>(fvVars.size()));
  int count = 2;
  for (IZRVariable * var : fvVars) {
    obj.WriteSubElement(out, static_cast<int>(var->GetMeasureLevel()));
    count += 1 + var->WriteObjectXML(out, nTabs + 1);
  }
  obj.WriteSubElement(out, fNCont);
  obj.WriteSubElement(out, fNCat);
  obj.WriteSubElement(out, fTargetIndex);
  obj.WriteSubElement(out, fFirstResponse);
  obj.EndObj(out);
  return count + 5;
}

int ZRVarList::ReadObjectXML(std::istream & in) {
  const char * const kFailure = "Failure reading ZRVarList!\n";
  Clear();
  fNCont = 0;
  fNCat = 0;
  fTargetIndex = -1;
  fFirstResponse = -1;
  fWeightIndex = -1;
  fvResponses.clear();
  int n = 0;
  if (!detail::ReadStart(in, "ZRVarList") || !ParseValue(in, n)) detail::FailRead(kFailure);
  int count = 2;
  for (int i = 0; i < n; ++i) {
    int level = 0;
    if (!ParseValue(in, level)) detail::FailRead(kFailure);
    IZRVariable * var = nullptr;
    if (level == IZRVariable::kLevelContinuous)
      var = new ZRContVar();
    else if (IsCategoryLevel(static_cast<IZRVariable::MeasureLevel>(level)))
      var = new ZRCatVar("", "", 0, static_cast<IZRVariable::MeasureLevel>(level),
                         IZRVariable::kRoleInput, false);
    else if (level == IZRVariable::kLevelFrequencyWeight)
      var = new ZRWeightVar("", "", IZRVariable::kRoundTruncate);
    else
      detail::FailRead(kFailure);
    try {
      count += 1 + var->ReadObjectXML(in);
      fvVars.push_back(var);
    } catch (...) {
      delete var;
      throw;
    }
  }
  if (!ParseValue(in, fNCont) || !ParseValue(in, fNCat) || !ParseValue(in, fTargetIndex) ||
      !ParseValue(in, fFirstResponse) || !ParseEndObj(in))
    detail::FailRead(kFailure);
  return count + 5;
}

void ZRVarList::Display() const {
  DisplayText(1, "Begin display of ZRVarList object.");
  DisplayI("Total variables", static_cast<int>(fvVars.size()));
  DisplayI("Number of Continuous Variables", fNCont);
  DisplayI("Number of Categorical Variables", fNCat);
  for (std::size_t i = 0; i < fvVars.size(); ++i) {
    DisplayText(1, "Variable " + std::to_string(i));
    if (fvVars[i] != nullptr) fvVars[i]->Display();
  }
  DisplayText(1, "End of display for ZRVarList object.");
}

}  // namespace ZRXML_920
