// The continuous variable ZRContVar.
#include <cfloat>
#include <iostream>
#include <ostream>
#include <string>
#include <vector>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/display/display.h"
#include "zrcommon920r/math/dist/power.h"
#include "zrcommon920r/xml/core/objstream.h"
#include "zrcommon920r/xml/vars/detail/persist.h"
#include "zrcommon920r/xml/vars/variable.h"

namespace ZRXML_920 {

using ZRCommon_920::kSysMisValue;
using ZRCommon_920::ZRMV;
using ZRDisplay_920::DisplayDF;
using ZRDisplay_920::DisplayI;
using ZRDisplay_920::DisplayS;

ZRContVar::ZRContVar()
    : fRole(kRoleInput),
      fStorage(kStorageReal),
      fMin(kSysMisValue),
      fMax(DBL_MAX),
      fNBins(-1),
      fMean(kSysMisValue),
      fStdDev(kSysMisValue),
      fbHasMissReplacement(false),
      fSumFreqWts(0.0),
      fSumCompWts(0.0),
      fOutlierMethod(kOutlierNone),
      fFieldFormat(nullptr) {}

ZRContVar::ZRContVar(const std::string & name, const std::string & label, VariableRole role)
    : ZRContVar() {
  fName = name;
  fLabel = label;
  fRole = role;
  fEncoder.Reset(new ZRContEncoder());
}

ZRContVar::ZRContVar(const std::string & name, const std::string & label, double min, double max,
                     VariableRole role, bool binned, int nBins)
    : ZRContVar() {
  fName = name;
  fLabel = label;
  fRole = role;
  fStorage = kStorageUndefined;  // Intended: storage 0 in this constructor alone
  fMin = min;
  fMax = max;
  fNBins = nBins;
  if (binned && max > min && nBins >= 2)
    fEncoder.Reset(new ZRContEncoder(min, max, nBins));
  else
    fEncoder.Reset(new ZRContEncoder());
}

ZRContVar::ZRContVar(const std::string & name, const std::string & label,
                     const std::vector<double> & cuts, bool binned, VariableRole role)
    : ZRContVar() {
  fName = name;
  fLabel = label;
  fRole = role;
  fvCutPoints = cuts;
  fNBins = static_cast<int>(cuts.size()) + 1;
  if (binned && fNBins >= 2)
    fEncoder.Reset(new ZRContEncoder(cuts));
  else
    fEncoder.Reset(new ZRContEncoder());
}

ZRContVar::ZRContVar(const std::string & name, const std::string & label, double min, double max,
                     const std::vector<double> & cuts, bool binned, VariableRole role)
    : ZRContVar(name, label, cuts, binned, role) {
  fMin = min;
  fMax = max;
}

ZRContVar::ZRContVar(const ZRContVar & other) = default;

ZRContVar & ZRContVar::operator=(const ZRContVar & other) = default;

ZRContVar::~ZRContVar() = default;

IZRVariable::MeasureLevel ZRContVar::GetMeasureLevel() {
  return kLevelContinuous;
}

std::string ZRContVar::GetVariableName() {
  return fName;
}

std::string ZRContVar::GetVariableLabel() {
  return fLabel;
}

void ZRContVar::SetVariableLabel(const std::string & label) {
  fLabel = label;
}

int ZRContVar::GetNumberOfCategories() const {
  return fEncoder ? fEncoder->GetNumberOfCategories() : fNBins;
}

IZRVariable::VariableRole ZRContVar::GetVariableRole() {
  return fRole;
}

void ZRContVar::SetVariableRole(VariableRole role) {
  fRole = role;
}

IZRVariable::VariableStorage ZRContVar::GetVariableStorage() {
  return fStorage;
}

void ZRContVar::SetVariableStorage(VariableStorage storage) {
  fStorage = storage;
}

void ZRContVar::SetFieldFormatElement(XMLElement * element) {
  fFieldFormat = element;
}

const XMLElement * ZRContVar::GetFieldFormatElement() const {
  return fFieldFormat;
}

XMLElement * ZRContVar::GetFieldFormatElement() {
  return fFieldFormat;
}

int ZRContVar::UpdateNumberOfCategories() {
  if (fEncoder) fNBins = fEncoder->GetNumberOfCategories();
  return fNBins;
}

void ZRContVar::SetMissingValueReplacement(const std::string & replacement) {
  fMissReplacement = replacement;
  fbHasMissReplacement = true;
}

const std::string * ZRContVar::GetMissingValueReplacement() const {
  return fbHasMissReplacement ? &fMissReplacement : nullptr;
}

IZRVariable * ZRContVar::Clone() const {
  return new ZRContVar(*this);
}

const IZREncoder * ZRContVar::GetEncoder() const {
  return fEncoder.Get();
}

IZREncoder * ZRContVar::GetEncoder() {
  return fEncoder.Get();
}

IZRVariable::VarStatus ZRContVar::GetVarStatus() {
  if (fMin > fMax) return kVarNoData;
  if (fMin == fMax) return kVarConstant;
  return kVarUsable;
}

int ZRContVar::WriteObjectXML(std::ostream & out, int nTabs) const {
  if (!out.good()) return 0;
  const XMLObj obj("ZRContVar", nTabs);
  obj.StartObj(out);
  obj.WriteSubElement(out, fName);
  obj.WriteSubElement(out, fLabel);
  obj.WriteSubElement(out, static_cast<int>(fRole));
  obj.WriteSubElement(out, fNBins);
  obj.WriteSubElement(out, fMin);
  obj.WriteSubElement(out, fMax);
  obj.WriteSubElement(out, fMean);
  obj.WriteSubElement(out, fStdDev);
  obj.WriteSubElement(out, static_cast<int>(fStorage));
  obj.WriteSubElement(out, fbHasMissReplacement);
  int count = 12;
  if (fbHasMissReplacement) {
    obj.WriteSubElement(out, fMissReplacement);
    ++count;
  }
  obj.WriteSubElement(out, fSumFreqWts);
  obj.WriteSubElement(out, fSumCompWts);
  // Intended: without an encoder the type written is 0, which no read accepts.
  obj.WriteSubElement(out, fEncoder ? static_cast<int>(fEncoder->GetEncoderType()) : 0);
  if (fEncoder) count += fEncoder->WriteObjectXML(out, nTabs + 1);
  obj.EndObj(out);
  return count + 3;
}

int ZRContVar::ReadObjectXML(std::istream & in) {
  const char * const kFailure = "Failure reading ZRContVar!\n";
  int role = 0;
  int storage = 0;
  int type = 0;
  bool ok = detail::ReadStart(in, "ZRContVar") && ParseValue(in, fName) && ParseValue(in, fLabel) &&
            ParseValue(in, role);
  if (ok) fRole = static_cast<VariableRole>(role);
  ok = ok && ParseValue(in, fNBins) && ParseValue(in, fMin) && ParseValue(in, fMax) &&
       ParseValue(in, fMean) && ParseValue(in, fStdDev) && ParseValue(in, storage);
  if (ok) fStorage = static_cast<VariableStorage>(storage);
  ok = ok && ParseValue(in, fbHasMissReplacement);
  if (ok && fbHasMissReplacement) ok = ParseValue(in, fMissReplacement);
  ok = ok && ParseValue(in, fSumFreqWts) && ParseValue(in, fSumCompWts) && ParseValue(in, type);
  if (!ok) detail::FailRead(kFailure);
  if (type != IZREncoder::kContinuous) {
    std::cout << "Wrong encoder type in ZRContVar!\n";
    detail::FailRead(kFailure);
  }
  fEncoder.Reset(new ZRContEncoder());
  const int nEncoder = fEncoder->ReadObjectXML(in);  // a failure throws from inside
  if (!ParseEndObj(in)) detail::FailRead(kFailure);
  return 15 + (fbHasMissReplacement ? 1 : 0) + nEncoder;
}

bool ZRContVar::SetFlagVariable(bool) {
  return false;
}

bool ZRContVar::IsFlagVariable() const {
  return false;
}

void ZRContVar::Display() const {
  DisplayS("Continuous variable: name", fName);
  DisplayS("Label", fLabel);
  ZRMV::DisplayRole("Variable role", fRole);
  ZRMV::DisplayStorage("Variable storage", fStorage);
  DisplayI("Number of bins", fNBins);
  DisplayDF("Min", fMin);
  DisplayDF("Max", fMax);
  DisplayDF("Mean", fMean);
  DisplayDF("Standard deviation", fStdDev);
  if (fbHasMissReplacement) DisplayS("Missing value replacement", fMissReplacement);
  if (fEncoder)
    fEncoder->Display();
  else
    ZRDisplay_920::DisplayText(1, "Encoder not set");
  DisplayDF("fSumFreqWts", fSumFreqWts);
  DisplayDF("fSumCompWts", fSumCompWts);
  DisplayS("End display for Continuous variable ", fName);
}

}  // namespace ZRXML_920
