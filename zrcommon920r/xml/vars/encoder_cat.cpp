// The category encoders: ZRCatNumEncoder (categories held as numbers) and ZRStringEncoder
// (categories held as text).
#include <cstddef>
#include <ostream>
#include <string>
#include <unordered_map>
#include <vector>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/display/display.h"
#include "zrcommon920r/xml/core/numtext.h"
#include "zrcommon920r/xml/core/objstream.h"
#include "zrcommon920r/xml/vars/detail/persist.h"
#include "zrcommon920r/xml/vars/encoder.h"

namespace ZRXML_920 {

using ZRCommon_920::kSysMisValue;
using ZRDisplay_920::DisplayDV;
using ZRDisplay_920::DisplayI;
using ZRDisplay_920::DisplayS;
using ZRDisplay_920::DisplaySV;
using ZRDisplay_920::DisplayText;

namespace {

// Room for at most this many categories is reserved ahead: the capacity is only a hint.
constexpr int kMaxReserve = 1 << 16;

int ReserveHint(int capacity) {
  return capacity < 1 ? 0 : (capacity < kMaxReserve ? capacity : kMaxReserve);
}

// Grows labels to n entries when shorter, then sets entry code when 0 <= code < n.
void SetLabelOf(std::vector<std::string> & labels, int n, int code, const std::string & label) {
  if (static_cast<int>(labels.size()) < n) labels.resize(static_cast<std::size_t>(n));
  if (code >= 0 && code < n) labels[code] = label;
}

void WriteLabels(std::ostream & out, const XMLObj & obj, const std::vector<std::string> & labels) {
  obj.WriteSubElement(out, static_cast<int>(labels.size()));
  for (const std::string & label : labels) obj.WriteSubElement(out, label);
}

bool ReadLabels(std::istream & in, std::vector<std::string> & labels) {
  int n = 0;
  if (!ParseValue(in, n)) return false;
  for (int i = 0; i < n; ++i) {
    std::string label;
    if (!ParseValue(in, label)) return false;
    labels.push_back(label);
  }
  return true;
}

}  // namespace

// ---------------------------------------------------------------------------------------
// ZRCatNumEncoder

ZRCatNumEncoder::ZRCatNumEncoder(int capacity) : fLastCode(-1) {
  fvValues.reserve(static_cast<std::size_t>(ReserveHint(capacity)));
}

ZRCatNumEncoder::ZRCatNumEncoder(const std::vector<double> & values) : fLastCode(-1) {
  for (double value : values) Encode(value);
}

IZREncoder::EncoderType ZRCatNumEncoder::GetEncoderType() {
  return kCatNumeric;
}

int ZRCatNumEncoder::GetNumberOfCategories() const {
  return static_cast<int>(fValueToCode.size());
}

double ZRCatNumEncoder::Encode(const std::string &) {
  return -1.0;
}

int ZRCatNumEncoder::Find(double value) const {
  const auto it = fValueToCode.find(value);
  return it == fValueToCode.end() ? -1 : it->second;
}

double ZRCatNumEncoder::Encode(double value) {
  // Missing is tested first: a known category made missing later codes -1.0.
  if (ZRCatNumEncoder::IsMissing(value) || value != value) return -1.0;
  const int code = Find(value);
  if (code >= 0) return code;
  fValueToCode.emplace(value, fLastCode + 1);
  fvValues.push_back(value);
  return ++fLastCode;
}

double ZRCatNumEncoder::EncodeConst(const std::string &) const {
  return -1.0;
}

double ZRCatNumEncoder::EncodeConst(double value) const {
  if (ZRCatNumEncoder::IsMissing(value)) return -1.0;
  return Find(value);  // -1 for an unseen value, NaN included
}

bool ZRCatNumEncoder::IsMissing(const std::string &) const {
  return true;
}

bool ZRCatNumEncoder::IsMissing(double value) const {
  return value == kSysMisValue || fMissing.IsUserMissing(value);
}

std::string ZRCatNumEncoder::Decode(int code) {
  if (code < 0 || code >= GetNumberOfCategories()) return std::string();
  return ReplaceSep(fvValues[code], GetDefaultNumericFormat().c_str());
}

double ZRCatNumEncoder::DecodeNum(int code) const {
  if (code < 0 || code >= static_cast<int>(fvValues.size())) return kSysMisValue;
  return fvValues[code];
}

IZREncoder * ZRCatNumEncoder::Clone() const {
  return new ZRCatNumEncoder(*this);
}

void ZRCatNumEncoder::SetValueLabels(const std::vector<std::string> & labels) {
  fvValueLabels = labels;
}

void ZRCatNumEncoder::SetValueLabel(int code, const std::string & label) {
  SetLabelOf(fvValueLabels, GetNumberOfCategories(), code, label);
}

bool ZRCatNumEncoder::AddDiscreteUserMissing(double value, const std::string & label) {
  fMissing.fvDiscreteMiss.push_back(value);
  fMissing.fvMissLabels.push_back(label);
  return true;
}

bool ZRCatNumEncoder::AddDiscreteUserMissing(const std::string &, const std::string &) {
  return false;
}

bool ZRCatNumEncoder::SetMissingInterval(double low, double high) {
  return fMissing.SetInterval(low, high);
}

const std::vector<std::string> * ZRCatNumEncoder::GetValueLabels() const {
  return &fvValueLabels;
}

const std::vector<double> * ZRCatNumEncoder::GetDiscreteMissValues() const {
  return &fMissing.fvDiscreteMiss;
}

const std::vector<std::string> * ZRCatNumEncoder::GetDiscreteMissValuesStr() const {
  return nullptr;
}

const std::vector<std::string> * ZRCatNumEncoder::GetMissValueLabels() const {
  return &fMissing.fvMissLabels;
}

bool ZRCatNumEncoder::GetMissingInterval(double & low, double & high) const {
  return fMissing.GetInterval(low, high);
}

int ZRCatNumEncoder::WriteObjectXML(std::ostream & out, int nTabs) const {
  if (!out.good()) return 0;
  const XMLObj obj("ZRCatNumEncoder", nTabs);
  obj.StartObj(out);
  obj.WriteSubElement(out, static_cast<int>(fvValues.size()));
  for (double value : fvValues) obj.WriteSubElement(out, value);
  WriteLabels(out, obj, fvValueLabels);
  fMissing.Write(out, obj);
  obj.EndObj(out);
  return 4 + static_cast<int>(fvValues.size() + fvValueLabels.size()) + fMissing.ElementCount();
}

int ZRCatNumEncoder::ReadObjectXML(std::istream & in) {
  fValueToCode.clear();
  fvValues.clear();
  fvValueLabels.clear();
  fLastCode = -1;
  fMissing.Clear();
  bool ok = detail::ReadStart(in, "ZRCatNumEncoder");
  int n = 0;
  ok = ok && ParseValue(in, n);
  int nRead = 0;  // elements of the value list, learnt or not
  for (; ok && nRead < n; ++nRead) {
    double value = 0.0;
    ok = ParseValue(in, value);
    if (ok) Encode(value);
  }
  ok = ok && ReadLabels(in, fvValueLabels) && fMissing.Read(in) && ParseEndObj(in);
  if (!ok) detail::FailRead("Failure reading ZRCatNumEncoder!\n");
  return 4 + nRead + static_cast<int>(fvValueLabels.size()) + fMissing.ElementCount();
}

void ZRCatNumEncoder::Display() const {
  std::ostream & os = *ZRDisplay_920::GetOutStream();
  os << "\tBNCatNumEncoder: " << std::flush;  // Intended: the "BN" prefix stands
  DisplayI("Last code = ", fLastCode);        // Intended: prints "Last code =  = n"
  DisplayText(1, "\t\tNumeric values of categories: ");
  DisplayDV("Numeric values of categories", fvValues);
  if (!fvValueLabels.empty()) DisplaySV("Value Labels:", fvValueLabels);
  fMissing.Display(false);
}

// ---------------------------------------------------------------------------------------
// ZRStringEncoder

ZRStringEncoder::ZRStringEncoder(int capacity) : fLastCode(-1) {
  fvCodeTable.reserve(static_cast<std::size_t>(ReserveHint(capacity)));
}

ZRStringEncoder::ZRStringEncoder(const std::vector<std::string> & values) : fLastCode(-1) {
  for (const std::string & value : values) Encode(value);
}

ZRStringEncoder::ZRStringEncoder(const ZRStringEncoder & other)
    : IZREncoder(other),
      fValueToCode(other.fValueToCode),
      fvValueLabels(other.fvValueLabels),
      fLastCode(other.fLastCode),
      fvDiscreteMissStr(other.fvDiscreteMissStr),
      fvMissLabels(other.fvMissLabels) {
  RebuildCodeTable();
}

ZRStringEncoder & ZRStringEncoder::operator=(const ZRStringEncoder & other) {
  if (this == &other) return *this;
  fValueToCode = other.fValueToCode;
  fvValueLabels = other.fvValueLabels;
  fLastCode = other.fLastCode;
  fvDiscreteMissStr = other.fvDiscreteMissStr;
  fvMissLabels = other.fvMissLabels;
  RebuildCodeTable();
  return *this;
}

void ZRStringEncoder::RebuildCodeTable() {
  fvCodeTable.assign(static_cast<std::size_t>(fLastCode + 1), nullptr);
  for (const auto & entry : fValueToCode) fvCodeTable[entry.second] = &entry.first;
}

IZREncoder::EncoderType ZRStringEncoder::GetEncoderType() {
  return kCatString;
}

int ZRStringEncoder::GetNumberOfCategories() const {
  return fLastCode + 1;
}

int ZRStringEncoder::Find(const std::string & value) const {
  const auto it = fValueToCode.find(value);
  return it == fValueToCode.end() ? -1 : it->second;
}

double ZRStringEncoder::Encode(const std::string & value) {
  if (ZRStringEncoder::IsMissing(value)) return -1.0;
  const int code = Find(value);
  if (code >= 0) return code;
  // Map nodes never move, so the code table may point at their keys.
  const auto inserted = fValueToCode.emplace(value, fLastCode + 1);
  fvCodeTable.push_back(&inserted.first->first);
  return ++fLastCode;
}

double ZRStringEncoder::Encode(double) {
  return -1.0;
}

double ZRStringEncoder::EncodeConst(const std::string & value) const {
  if (ZRStringEncoder::IsMissing(value)) return -1.0;
  return Find(value);
}

double ZRStringEncoder::EncodeConst(double) const {
  return -1.0;
}

bool ZRStringEncoder::IsMissing(const std::string & value) const {
  for (const std::string & miss : fvDiscreteMissStr)
    if (value == miss) return true;
  return false;
}

bool ZRStringEncoder::IsMissing(double) const {
  return true;
}

std::string ZRStringEncoder::Decode(int code) {
  if (code < 0 || code > fLastCode || fvCodeTable[code] == nullptr) return std::string();
  return *fvCodeTable[code];
}

double ZRStringEncoder::DecodeNum(int) const {
  return kSysMisValue;
}

IZREncoder * ZRStringEncoder::Clone() const {
  return new ZRStringEncoder(*this);
}

void ZRStringEncoder::SetValueLabels(const std::vector<std::string> & labels) {
  fvValueLabels = labels;
}

void ZRStringEncoder::SetValueLabel(int code, const std::string & label) {
  SetLabelOf(fvValueLabels, GetNumberOfCategories(), code, label);
}

bool ZRStringEncoder::AddDiscreteUserMissing(double, const std::string &) {
  return false;
}

bool ZRStringEncoder::AddDiscreteUserMissing(const std::string & value, const std::string & label) {
  fvDiscreteMissStr.push_back(value);
  fvMissLabels.push_back(label);
  return true;
}

bool ZRStringEncoder::SetMissingInterval(double, double) {
  return false;
}

const std::vector<std::string> * ZRStringEncoder::GetValueLabels() const {
  return &fvValueLabels;
}

const std::vector<double> * ZRStringEncoder::GetDiscreteMissValues() const {
  return nullptr;
}

const std::vector<std::string> * ZRStringEncoder::GetDiscreteMissValuesStr() const {
  return &fvDiscreteMissStr;
}

const std::vector<std::string> * ZRStringEncoder::GetMissValueLabels() const {
  return &fvMissLabels;
}

bool ZRStringEncoder::GetMissingInterval(double &, double &) const {
  return false;
}

int ZRStringEncoder::WriteObjectXML(std::ostream & out, int nTabs) const {
  if (!out.good()) return 0;
  const XMLObj obj("ZRStringEncoder", nTabs);
  obj.StartObj(out);
  const int n = GetNumberOfCategories();
  obj.WriteSubElement(out, n);
  for (int code = 0; code < n; ++code)
    obj.WriteSubElement(out, fvCodeTable[code] != nullptr ? *fvCodeTable[code] : std::string());
  WriteLabels(out, obj, fvValueLabels);
  const int nMiss = static_cast<int>(fvDiscreteMissStr.size());
  obj.WriteSubElement(out, nMiss);
  for (int i = 0; i < nMiss; ++i) {
    obj.WriteSubElement(out, fvDiscreteMissStr[i]);
    obj.WriteSubElement(out, i < static_cast<int>(fvMissLabels.size()) ? fvMissLabels[i] : "");
  }
  obj.EndObj(out);
  return 5 + n + static_cast<int>(fvValueLabels.size()) + 2 * nMiss;
}

int ZRStringEncoder::ReadObjectXML(std::istream & in) {
  fValueToCode.clear();
  fvCodeTable.clear();
  fvValueLabels.clear();
  fLastCode = -1;
  fvDiscreteMissStr.clear();
  fvMissLabels.clear();
  bool ok = detail::ReadStart(in, "ZRStringEncoder");
  int n = 0;
  ok = ok && ParseValue(in, n);
  int nRead = 0;  // elements of the category list, learnt or not
  for (; ok && nRead < n; ++nRead) {
    std::string value;
    ok = ParseValue(in, value);
    if (ok) Encode(value);
  }
  ok = ok && ReadLabels(in, fvValueLabels);
  int nMiss = 0;
  ok = ok && ParseValue(in, nMiss);
  for (int i = 0; ok && i < nMiss; ++i) {
    std::string value;
    std::string label;
    ok = ParseValue(in, value) && ParseValue(in, label);
    if (ok) AddDiscreteUserMissing(value, label);
  }
  ok = ok && ParseEndObj(in);
  if (!ok) detail::FailRead("Failure reading ZRStringEncoder!\n");
  return 5 + nRead + static_cast<int>(fvValueLabels.size() + 2 * fvDiscreteMissStr.size());
}

void ZRStringEncoder::Display() const {
  DisplayText(1, "\tBNStringEncoder object:");  // Intended: the "BN" prefix stands
  DisplayI("Last code", fLastCode);
  for (int code = 0; code <= fLastCode; ++code) {
    if (fvCodeTable[code] == nullptr)
      DisplayText(1, "\t\tERROR");
    else
      DisplayText(1, "\t\t" + std::to_string(code) + ": " + *fvCodeTable[code]);
  }
  DisplaySV("Value Labels:", fvValueLabels);
  if (!fvDiscreteMissStr.empty()) {
    DisplayText(1, "\t\tMissing Values and their Labels: ");
    for (std::size_t i = 0; i < fvDiscreteMissStr.size(); ++i)
      DisplayS(fvDiscreteMissStr[i], i < fvMissLabels.size() ? fvMissLabels[i] : std::string());
  }
}

}  // namespace ZRXML_920
