// The categorical variable ZRCatVar and the frequency weight ZRWeightVar.
#include <ostream>
#include <string>
#include <vector>

#include "zrcommon920r/display/display.h"
#include "zrcommon920r/math/dist/power.h"
#include "zrcommon920r/xml/core/objstream.h"
#include "zrcommon920r/xml/vars/detail/persist.h"
#include "zrcommon920r/xml/vars/variable.h"

namespace ZRXML_920 {

using ZRCommon_920::ZRMV;
using ZRDisplay_920::DisplayB;
using ZRDisplay_920::DisplayI;
using ZRDisplay_920::DisplayS;

namespace {

// The encoder of a categorical variable of that level: numbers for level 2, text otherwise.
IZREncoder * NewCategoryEncoder(IZRVariable::MeasureLevel level, int capacity) {
  if (level == IZRVariable::kLevelNumericCategorical) return new ZRCatNumEncoder(capacity);
  return new ZRStringEncoder(capacity);
}

}  // namespace

// ---------------------------------------------------------------------------------------
// ZRCatVar

ZRCatVar::ZRCatVar(const std::string & name, const std::string & label, int nCategories,
                   MeasureLevel level, VariableRole role, bool ordinal)
    : fName(name),
      fLabel(label),
      fbOrdinal(ordinal),
      fbBinaryFlag(false),
      fBinaryTrueIndex(-1),
      fRole(role),
      fStorage(kStorageUndefined),
      fNCategories(nCategories),
      fLevel(level),
      fbHasMissReplacement(false),
      fEncoder(NewCategoryEncoder(level, nCategories)),
      fFieldFormat(nullptr),
      fbFlagVariable(false) {}

ZRCatVar::ZRCatVar(const std::string & name, const std::string & label,
                   const std::vector<double> & sumFreqWts, int nCategories, MeasureLevel level,
                   VariableRole role, bool ordinal)
    : ZRCatVar(name, label, nCategories, level, role, ordinal) {
  fvSumFreqWts = sumFreqWts;
}

ZRCatVar::ZRCatVar(const ZRCatVar & other) = default;

ZRCatVar & ZRCatVar::operator=(const ZRCatVar & other) = default;

ZRCatVar::~ZRCatVar() = default;

IZRVariable::MeasureLevel ZRCatVar::GetMeasureLevel() {
  return fLevel;
}

std::string ZRCatVar::GetVariableName() {
  return fName;
}

std::string ZRCatVar::GetVariableLabel() {
  return fLabel;
}

void ZRCatVar::SetVariableLabel(const std::string & label) {
  fLabel = label;
}

int ZRCatVar::GetNumberOfCategories() const {
  return fNCategories;
}

IZRVariable::VariableRole ZRCatVar::GetVariableRole() {
  return fRole;
}

void ZRCatVar::SetVariableRole(VariableRole role) {
  fRole = role;
}

IZRVariable::VariableStorage ZRCatVar::GetVariableStorage() {
  return fStorage;
}

void ZRCatVar::SetVariableStorage(VariableStorage storage) {
  fStorage = storage;
}

void ZRCatVar::SetFieldFormatElement(XMLElement * element) {
  fFieldFormat = element;
}

const XMLElement * ZRCatVar::GetFieldFormatElement() const {
  return fFieldFormat;
}

XMLElement * ZRCatVar::GetFieldFormatElement() {
  return fFieldFormat;
}

int ZRCatVar::UpdateNumberOfCategories() {
  // Intended: the count rises to what the encoder knows and never falls.
  const int known = fEncoder->GetNumberOfCategories();
  if (known > fNCategories) fNCategories = known;
  return fNCategories;
}

void ZRCatVar::SetMissingValueReplacement(const std::string & replacement) {
  fMissReplacement = replacement;
  fbHasMissReplacement = true;
}

const std::string * ZRCatVar::GetMissingValueReplacement() const {
  return fbHasMissReplacement ? &fMissReplacement : nullptr;
}

IZRVariable * ZRCatVar::Clone() const {
  return new ZRCatVar(*this);
}

const IZREncoder * ZRCatVar::GetEncoder() const {
  return fEncoder.Get();
}

IZREncoder * ZRCatVar::GetEncoder() {
  return fEncoder.Get();
}

IZRVariable::VarStatus ZRCatVar::GetVarStatus() {
  const int n = UpdateNumberOfCategories();
  if (n == 1) return kVarConstant;
  return n < 1 ? kVarNoData : kVarUsable;
}

int ZRCatVar::WriteObjectXML(std::ostream & out, int nTabs) const {
  if (!out.good()) return 0;
  const XMLObj obj("ZRCatVar", nTabs);
  obj.StartObj(out);
  obj.WriteSubElement(out, fName);
  obj.WriteSubElement(out, fLabel);
  obj.WriteSubElement(out, static_cast<int>(fRole));
  obj.WriteSubElement(out, static_cast<int>(fStorage));
  obj.WriteSubElement(out, fNCategories);
  obj.WriteSubElement(out, static_cast<int>(fLevel));
  obj.WriteSubElement(out, fbOrdinal);
  obj.WriteSubElement(out, fbBinaryFlag);
  obj.WriteSubElement(out, fBinaryTrueIndex);
  obj.WriteSubElement(out, fbHasMissReplacement);
  if (fbHasMissReplacement) obj.WriteSubElement(out, fMissReplacement);
  obj.WriteSubElement(out, static_cast<int>(fEncoder->GetEncoderType()));
  const int nEncoder = fEncoder->WriteObjectXML(out, nTabs + 1);
  obj.EndObj(out);
  return 13 + (fbHasMissReplacement ? 1 : 0) + nEncoder;
}

int ZRCatVar::ReadObjectXML(std::istream & in) {
  const char * const kFailure = "Failure reading ZRCatVar!\n";
  int role = 0;
  int storage = 0;
  int level = 0;
  int type = 0;
  bool ok = detail::ReadStart(in, "ZRCatVar") && ParseValue(in, fName) && ParseValue(in, fLabel) &&
            ParseValue(in, role);
  if (ok) fRole = static_cast<VariableRole>(role);
  ok = ok && ParseValue(in, storage);
  if (ok) fStorage = static_cast<VariableStorage>(storage);
  ok = ok && ParseValue(in, fNCategories) && ParseValue(in, level);
  if (ok) fLevel = static_cast<MeasureLevel>(level);
  ok = ok && ParseValue(in, fbOrdinal) && ParseValue(in, fbBinaryFlag) &&
       ParseValue(in, fBinaryTrueIndex) && ParseValue(in, fbHasMissReplacement);
  if (ok && fbHasMissReplacement) ok = ParseValue(in, fMissReplacement);
  ok = ok && ParseValue(in, type) &&
       (type == IZREncoder::kCatNumeric || type == IZREncoder::kCatString);
  if (!ok) detail::FailRead(kFailure);
  fEncoder.Reset(type == IZREncoder::kCatNumeric ? static_cast<IZREncoder *>(new ZRCatNumEncoder(0))
                                                 : new ZRStringEncoder(0));
  const int nEncoder = fEncoder->ReadObjectXML(in);  // a failure throws from inside
  if (!ParseEndObj(in)) detail::FailRead(kFailure);
  return 13 + (fbHasMissReplacement ? 1 : 0) + nEncoder;
}

bool ZRCatVar::SetFlagVariable(bool flag) {
  if (fLevel != kLevelNumericCategorical && fLevel != kLevelStringCategorical) return false;
  fbFlagVariable = flag;
  return true;
}

bool ZRCatVar::IsFlagVariable() const {
  return fbFlagVariable;
}

void ZRCatVar::Display() const {
  DisplayS("Categorical variable: name", fName);
  DisplayS("Label", fLabel);
  ZRMV::DisplayRole("Variable role", fRole);
  ZRMV::DisplayStorage("Variable storage", fStorage);
  ZRMV::DisplayMeasureLevel("Measurement Level", fLevel);
  DisplayI("Number of categories", fNCategories);
  DisplayB("Ordinal variable indicator", fbOrdinal);
  DisplayB("Binary Flag variable indicator", fbBinaryFlag);
  DisplayI("Index of Binary Flag's true value", fBinaryTrueIndex);
  if (fbHasMissReplacement) DisplayS("Missing value replacement", fMissReplacement);
  fEncoder->Display();
}

bool ZRCatVar::GetSumFreqWts(std::vector<double> & sums) const {
  if (fvSumFreqWts.empty()) return false;
  sums = fvSumFreqWts;
  return true;
}

void ZRCatVar::SetBinaryFlag(bool flag, int trueIndex) {
  fbBinaryFlag = flag;
  // Intended: the index is tested as unsigned, so a negative index is refused too.
  if (flag && static_cast<unsigned int>(trueIndex) > 1u)
    fbBinaryFlag = false;
  else if (flag)
    fBinaryTrueIndex = trueIndex;
}

void ZRCatVar::ChangeEncoder(IZREncoder * encoder) {
  if (encoder == nullptr) return;
  fEncoder.Reset(encoder);
  fNCategories = encoder->GetNumberOfCategories();
}

// ---------------------------------------------------------------------------------------
// ZRWeightVar

ZRWeightVar::ZRWeightVar(const std::string & name, const std::string & label,
                         WRoundingOption option)
    : fName(name),
      fLabel(label),
      fStorage(kStorageUndefined),
      fEncoder(new ZRRoundEncoder(option)),
      fFieldFormat(nullptr) {}

ZRWeightVar::ZRWeightVar(const ZRWeightVar & other) = default;

ZRWeightVar & ZRWeightVar::operator=(const ZRWeightVar & other) = default;

ZRWeightVar::~ZRWeightVar() = default;

IZRVariable::MeasureLevel ZRWeightVar::GetMeasureLevel() {
  return kLevelFrequencyWeight;
}

std::string ZRWeightVar::GetVariableName() {
  return fName;
}

std::string ZRWeightVar::GetVariableLabel() {
  return fLabel;
}

void ZRWeightVar::SetVariableLabel(const std::string & label) {
  fLabel = label;
}

int ZRWeightVar::GetNumberOfCategories() const {
  return 0;
}

IZRVariable::VariableRole ZRWeightVar::GetVariableRole() {
  return kRoleFrequencyWeight;
}

void ZRWeightVar::SetVariableRole(VariableRole) {}

IZRVariable::VariableStorage ZRWeightVar::GetVariableStorage() {
  return fStorage;
}

void ZRWeightVar::SetVariableStorage(VariableStorage storage) {
  fStorage = storage;
}

void ZRWeightVar::SetFieldFormatElement(XMLElement * element) {
  fFieldFormat = element;
}

const XMLElement * ZRWeightVar::GetFieldFormatElement() const {
  return fFieldFormat;
}

XMLElement * ZRWeightVar::GetFieldFormatElement() {
  return fFieldFormat;
}

int ZRWeightVar::UpdateNumberOfCategories() {
  return 0;
}

void ZRWeightVar::SetMissingValueReplacement(const std::string &) {}

const std::string * ZRWeightVar::GetMissingValueReplacement() const {
  return nullptr;
}

IZRVariable * ZRWeightVar::Clone() const {
  return new ZRWeightVar(*this);
}

const IZREncoder * ZRWeightVar::GetEncoder() const {
  return fEncoder.Get();
}

IZREncoder * ZRWeightVar::GetEncoder() {
  return fEncoder.Get();
}

IZRVariable::VarStatus ZRWeightVar::GetVarStatus() {
  return kVarUsable;
}

int ZRWeightVar::WriteObjectXML(std::ostream & out, int nTabs) const {
  if (!out.good()) return 0;
  const XMLObj obj("ZRWeightVar", nTabs);
  obj.StartObj(out);
  obj.WriteSubElement(out, fName);
  obj.WriteSubElement(out, fLabel);
  obj.WriteSubElement(out, static_cast<int>(fStorage));
  const int nEncoder = fEncoder->WriteObjectXML(out, nTabs + 1);
  obj.EndObj(out);
  return 5 + nEncoder;
}

int ZRWeightVar::ReadObjectXML(std::istream & in) {
  const char * const kFailure = "Failure reading ZRWeightVar!\n";
  int storage = 0;
  const bool ok = detail::ReadStart(in, "ZRWeightVar") && ParseValue(in, fName) &&
                  ParseValue(in, fLabel) && ParseValue(in, storage);
  if (!ok) detail::FailRead(kFailure);
  fStorage = static_cast<VariableStorage>(storage);
  fEncoder.Reset(new ZRRoundEncoder());
  const int nEncoder = fEncoder->ReadObjectXML(in);  // a failure throws from inside
  if (!ParseEndObj(in)) detail::FailRead(kFailure);
  return 5 + nEncoder;
}

bool ZRWeightVar::SetFlagVariable(bool) {
  return false;
}

bool ZRWeightVar::IsFlagVariable() const {
  return false;
}

void ZRWeightVar::Display() const {
  DisplayS("Frequency weight variable: name", fName);
  DisplayS("Label", fLabel);
  ZRMV::DisplayStorage("Variable storage", fStorage);
  fEncoder->Display();
}

}  // namespace ZRXML_920
