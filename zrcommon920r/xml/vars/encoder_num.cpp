// The numeric encoders: the shared user-missing values, ZRBinningEncoder, ZRContEncoder
// and ZRRoundEncoder.
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <iostream>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/common/status.h"
#include "zrcommon920r/display/display.h"
#include "zrcommon920r/math/dist/power.h"
#include "zrcommon920r/xml/core/objstream.h"
#include "zrcommon920r/xml/vars/detail/persist.h"
#include "zrcommon920r/xml/vars/encoder.h"

namespace ZRXML_920 {

using ZRCommon_920::kSysMisValue;
using ZRDisplay_920::DisplayDV;
using ZRDisplay_920::DisplayI;
using ZRDisplay_920::DisplaySV;
using ZRDisplay_920::DisplayText;

namespace {

constexpr double kLowestDouble = -DBL_MAX;
constexpr double kHighestDouble = DBL_MAX;

}  // namespace

// ---------------------------------------------------------------------------------------
// The shared user-missing values.

namespace detail {

NumericMissing::NumericMissing() : fMissLow(kSysMisValue), fMissHigh(kSysMisValue) {}

bool NumericMissing::SetInterval(double low, double high) {
  if (!(high > low) || fbHasMissInterval) return false;
  fMissLow = low;
  fMissHigh = high;
  fbHasMissInterval = true;
  return true;
}

bool NumericMissing::GetInterval(double & low, double & high) const {
  if (!fbHasMissInterval) return false;
  low = fMissLow;
  high = fMissHigh;
  return true;
}

void NumericMissing::Clear() {
  fvDiscreteMiss.clear();
  fvMissLabels.clear();
  fbHasMissInterval = false;
  fMissLow = kSysMisValue;
  fMissHigh = kSysMisValue;
}

void NumericMissing::Write(std::ostream & out, const XMLObj & obj) const {
  obj.WriteSubElement(out, fbHasMissInterval);
  if (fbHasMissInterval) {
    obj.WriteSubElement(out, fMissLow);
    obj.WriteSubElement(out, fMissHigh);
  }
  const int n = static_cast<int>(fvDiscreteMiss.size());
  obj.WriteSubElement(out, n);
  for (int i = 0; i < n; ++i) {
    obj.WriteSubElement(out, fvDiscreteMiss[i]);
    obj.WriteSubElement(out, i < static_cast<int>(fvMissLabels.size()) ? fvMissLabels[i] : "");
  }
}

int NumericMissing::ElementCount() const {
  return 2 + (fbHasMissInterval ? 2 : 0) + 2 * static_cast<int>(fvDiscreteMiss.size());
}

bool NumericMissing::Read(std::istream & in) {
  if (!ParseValue(in, fbHasMissInterval)) return false;
  if (fbHasMissInterval && (!ParseValue(in, fMissLow) || !ParseValue(in, fMissHigh))) return false;
  int n = 0;
  if (!ParseValue(in, n)) return false;
  for (int i = 0; i < n; ++i) {
    double value = 0.0;
    std::string label;
    if (!ParseValue(in, value) || !ParseValue(in, label)) return false;
    fvDiscreteMiss.push_back(value);
    fvMissLabels.push_back(label);
  }
  return true;
}

void NumericMissing::Display(bool labelsWhenEmpty) const {
  DisplayDV("Discrete user missing values", fvDiscreteMiss);
  if (labelsWhenEmpty || !fvMissLabels.empty())
    DisplaySV("\t\tMissing Value Labels:", fvMissLabels);
  if (fbHasMissInterval) {
    DisplayText(1, "\t\tUser-missing interval for this encoder: ");
    char buf[80];
    std::snprintf(buf, sizeof buf, "\t\t[ %g, %g ]", fMissLow, fMissHigh);
    DisplayText(1, buf);
  }
}

}  // namespace detail

// ---------------------------------------------------------------------------------------
// ZRBinningEncoder

ZRBinningEncoder::ZRBinningEncoder() : fNBins(0) {}

ZRBinningEncoder::ZRBinningEncoder(const std::vector<double> & cutpoints)
    : fNBins(static_cast<int>(cutpoints.size()) + 1), fvCutpoints(cutpoints) {}

ZRBinningEncoder::ZRBinningEncoder(double low, double high, int nBins) : fNBins(nBins) {
  if (nBins < 2) return;
  const double step = (high - low) / nBins;
  fvCutpoints.resize(static_cast<std::size_t>(nBins) - 1);
  // Each cut formed afresh from low, so no rounding accumulates along the list.
  for (int i = 1; i < nBins; ++i) fvCutpoints[i - 1] = low + i * step;
}

double ZRBinningEncoder::Encode(double x) const {
  if (x == kSysMisValue) return -1.0;
  // Intended: below 2 bins nothing is probed; 0 for a negative x, 1 otherwise.
  if (fNBins < 2) return x < 0.0 ? 0.0 : 1.0;
  const double * cut = fvCutpoints.data();
  int lo = 0;
  int hi = fNBins - 2;
  int mid = 0;
  while (lo <= hi) {
    mid = (lo + hi) / 2;
    if (x == cut[mid]) return mid;  // a boundary value belongs to the lower bin
    if (cut[mid] > x)
      hi = mid - 1;
    else
      lo = mid + 1;  // NaN always goes right, to the top bin
  }
  return cut[mid] > x ? mid : mid + 1;
}

void ZRBinningEncoder::SetBinningCutpoints(const std::vector<double> & cutpoints) {
  fvCutpoints = cutpoints;
  fNBins = static_cast<int>(cutpoints.size()) + 1;
}

bool ZRBinningEncoder::ComputeCutpoints(const std::vector<double> & frequencies,
                                        std::vector<double> & out) const {
  const int nb = fNBins;
  if (nb < 2 || static_cast<int>(frequencies.size()) != nb ||
      static_cast<int>(fvCutpoints.size()) != nb - 1 || out.size() != fvCutpoints.size())
    return false;
  // A bin is occupied when its frequency is above 0 (NaN and negatives count as empty).
  auto occupied = [&frequencies](int i) { return frequencies[i] > 0.0; };
  int nOccupied = 0;
  for (int i = 0; i < nb; ++i) nOccupied += occupied(i) ? 1 : 0;
  if (nOccupied >= nb || nOccupied < 2) return false;

  const std::vector<double> cut = fvCutpoints;  // out may be the cut points themselves
  int j = 0;
  if (!occupied(0)) {
    while (!occupied(j)) ++j;
    for (int k = 0; k < j; ++k) out[k] = kLowestDouble;
  }
  int i = j + 1;
  while (i < nb - 1) {
    if (occupied(i)) {
      j = i;
      ++i;
      continue;
    }
    int m = i + 1;
    while (m < nb && !occupied(m)) ++m;
    if (m == nb) {  // no occupied bin above: the rest merges into the top
      for (int k = j; k <= nb - 2; ++k) out[k] = kHighestDouble;
      break;
    }
    const double merged = 0.5 * (cut[m - 1] + cut[j]);
    for (int k = j; k <= m - 1; ++k) out[k] = merged;
    if (m < nb - 1) j = m;
    i = m + 1;
  }
  if (!occupied(nb - 1)) out[nb - 2] = kHighestDouble;
  return true;
}

bool ZRBinningEncoder::AdjustBinning(const std::vector<double> & frequencies) {
  std::vector<double> cuts = fvCutpoints;
  if (!ComputeCutpoints(frequencies, cuts)) return false;
  std::size_t k = 0;
  while (k < cuts.size() && cuts[k] == kLowestDouble) ++k;
  std::vector<double> kept;
  for (; k < cuts.size(); ++k) {
    if (!(cuts[k] < kHighestDouble)) break;
    if (kept.empty() || cuts[k] > kept.back()) kept.push_back(cuts[k]);
  }
  SetBinningCutpoints(kept);
  return true;
}

ZRBinningEncoder * ZRBinningEncoder::CreateRebinned(const std::vector<double> & frequencies) const {
  std::vector<double> cuts = fvCutpoints;
  // Intended: the merged list stays uncompacted (sentinels and repeats kept).
  if (!ComputeCutpoints(frequencies, cuts)) return Clone();
  return new ZRBinningEncoder(cuts);
}

void ZRBinningEncoder::Display() const {
  DisplayI("\tZRBinningEncoder: number of bins", fNBins);
  DisplayDV("\t\tCutpoints", fvCutpoints);
}

// ---------------------------------------------------------------------------------------
// ZRContEncoder

ZRContEncoder::ZRContEncoder() : fNCategories(1), fBinning(nullptr) {}

ZRContEncoder::ZRContEncoder(double low, double high, int nBins)
    : fNCategories(nBins), fBinning(new ZRBinningEncoder(low, high, nBins)) {}

ZRContEncoder::ZRContEncoder(const std::vector<double> & cutpoints)
    : fNCategories(static_cast<int>(cutpoints.size()) + 1),
      fBinning(new ZRBinningEncoder(cutpoints)) {}

ZRContEncoder::ZRContEncoder(const ZRContEncoder & other)
    : IZREncoder(other),
      fNCategories(other.fNCategories),
      fMissing(other.fMissing),
      fBinning(other.fBinning != nullptr ? other.fBinning->Clone() : nullptr) {}

ZRContEncoder & ZRContEncoder::operator=(const ZRContEncoder & other) {
  if (this == &other) return *this;
  ZRBinningEncoder * binning = other.fBinning != nullptr ? other.fBinning->Clone() : nullptr;
  delete fBinning;
  fBinning = binning;
  fNCategories = other.fNCategories;
  fMissing = other.fMissing;
  return *this;
}

ZRContEncoder::~ZRContEncoder() {
  delete fBinning;
}

IZREncoder::EncoderType ZRContEncoder::GetEncoderType() {
  return kContinuous;
}

int ZRContEncoder::GetNumberOfCategories() const {
  return fBinning != nullptr ? fBinning->GetNumberOfCategories() : fNCategories;
}

double ZRContEncoder::Encode(const std::string &) {
  return kSysMisValue;
}

double ZRContEncoder::Encode(double value) {
  return EncodeConst(value);
}

double ZRContEncoder::EncodeConst(const std::string &) const {
  return kSysMisValue;
}

double ZRContEncoder::EncodeConst(double value) const {
  return IsMissing(value) ? kSysMisValue : value;
}

bool ZRContEncoder::IsMissing(const std::string &) const {
  return true;
}

bool ZRContEncoder::IsMissing(double value) const {
  return value == kSysMisValue || fMissing.IsUserMissing(value);
}

std::string ZRContEncoder::Decode(int) {
  return std::string();
}

double ZRContEncoder::DecodeNum(int) const {
  return kSysMisValue;
}

IZREncoder * ZRContEncoder::Clone() const {
  return new ZRContEncoder(*this);
}

void ZRContEncoder::SetValueLabels(const std::vector<std::string> &) {}

void ZRContEncoder::SetValueLabel(int, const std::string &) {}

bool ZRContEncoder::AddDiscreteUserMissing(double value, const std::string & label) {
  fMissing.fvDiscreteMiss.push_back(value);
  fMissing.fvMissLabels.push_back(label);
  return true;
}

bool ZRContEncoder::AddDiscreteUserMissing(const std::string &, const std::string &) {
  return false;
}

bool ZRContEncoder::SetMissingInterval(double low, double high) {
  return fMissing.SetInterval(low, high);
}

const std::vector<std::string> * ZRContEncoder::GetValueLabels() const {
  return nullptr;
}

const std::vector<double> * ZRContEncoder::GetDiscreteMissValues() const {
  return &fMissing.fvDiscreteMiss;
}

const std::vector<std::string> * ZRContEncoder::GetDiscreteMissValuesStr() const {
  return nullptr;
}

const std::vector<std::string> * ZRContEncoder::GetMissValueLabels() const {
  return &fMissing.fvMissLabels;
}

bool ZRContEncoder::GetMissingInterval(double & low, double & high) const {
  return fMissing.GetInterval(low, high);
}

int ZRContEncoder::WriteObjectXML(std::ostream & out, int nTabs) const {
  if (!out.good()) return 0;
  const XMLObj obj("ZRContEncoder", nTabs);
  obj.StartObj(out);
  obj.WriteSubElement(out, fNCategories);
  fMissing.Write(out, obj);
  obj.EndObj(out);
  return 3 + fMissing.ElementCount();
}

int ZRContEncoder::ReadObjectXML(std::istream & in) {
  fMissing.Clear();
  if (!detail::ReadStart(in, "ZRContEncoder") || !ParseValue(in, fNCategories) ||
      !fMissing.Read(in) || !ParseEndObj(in))
    detail::FailRead("Failure reading ZRContEncoder!\n");
  return 3 + fMissing.ElementCount();
}

void ZRContEncoder::Display() const {
  std::ostream & os = *ZRDisplay_920::GetOutStream();
  os << "\tZRContEncoder: " << std::flush;
  DisplayI("number of bins", fNCategories);
  fMissing.Display(true);
}

// ---------------------------------------------------------------------------------------
// ZRRoundEncoder

ZRRoundEncoder::ZRRoundEncoder() : fRoundOption(IZRVariable::kRoundTruncate) {}

ZRRoundEncoder::ZRRoundEncoder(IZRVariable::WRoundingOption option) : fRoundOption(option) {}

IZREncoder::EncoderType ZRRoundEncoder::GetEncoderType() {
  return kRounding;
}

int ZRRoundEncoder::GetNumberOfCategories() const {
  return 0;
}

double ZRRoundEncoder::Encode(const std::string &) {
  return kSysMisValue;
}

double ZRRoundEncoder::Encode(double value) {
  return EncodeConst(value);
}

double ZRRoundEncoder::EncodeConst(const std::string &) const {
  return kSysMisValue;
}

double ZRRoundEncoder::EncodeConst(double value) const {
  if (IsMissing(value)) return kSysMisValue;
  if (fRoundOption == IZRVariable::kRoundTruncate)
    value = std::floor(value);
  else if (fRoundOption == IZRVariable::kRoundNearest)
    value = std::floor(value + 0.5);
  // A weight that rounds down to 0 is missing.
  return value <= 0.0 ? kSysMisValue : value;
}

bool ZRRoundEncoder::IsMissing(const std::string &) const {
  return true;
}

bool ZRRoundEncoder::IsMissing(double value) const {
  return value == kSysMisValue || value <= 0.0 || fMissing.IsUserMissing(value);
}

std::string ZRRoundEncoder::Decode(int) {
  return std::string();
}

double ZRRoundEncoder::DecodeNum(int) const {
  return kSysMisValue;
}

IZREncoder * ZRRoundEncoder::Clone() const {
  return new ZRRoundEncoder(*this);
}

void ZRRoundEncoder::SetValueLabels(const std::vector<std::string> &) {}

void ZRRoundEncoder::SetValueLabel(int, const std::string &) {}

bool ZRRoundEncoder::AddDiscreteUserMissing(double value, const std::string & label) {
  fMissing.fvDiscreteMiss.push_back(value);
  fMissing.fvMissLabels.push_back(label);
  return true;
}

bool ZRRoundEncoder::AddDiscreteUserMissing(const std::string &, const std::string &) {
  return false;
}

bool ZRRoundEncoder::SetMissingInterval(double low, double high) {
  return fMissing.SetInterval(low, high);
}

const std::vector<std::string> * ZRRoundEncoder::GetValueLabels() const {
  return nullptr;
}

const std::vector<double> * ZRRoundEncoder::GetDiscreteMissValues() const {
  return &fMissing.fvDiscreteMiss;
}

const std::vector<std::string> * ZRRoundEncoder::GetDiscreteMissValuesStr() const {
  return nullptr;
}

const std::vector<std::string> * ZRRoundEncoder::GetMissValueLabels() const {
  return &fMissing.fvMissLabels;
}

bool ZRRoundEncoder::GetMissingInterval(double & low, double & high) const {
  return fMissing.GetInterval(low, high);
}

int ZRRoundEncoder::WriteObjectXML(std::ostream & out, int nTabs) const {
  if (!out.good()) return 0;
  const XMLObj obj("ZRRoundEncoder", nTabs);
  obj.StartObj(out);
  obj.WriteSubElement(out, fRoundOption);
  fMissing.Write(out, obj);
  obj.EndObj(out);
  return 3 + fMissing.ElementCount();
}

int ZRRoundEncoder::ReadObjectXML(std::istream & in) {
  fMissing.Clear();
  if (!detail::ReadStart(in, "ZRRoundEncoder") || !ParseValue(in, fRoundOption) ||
      !fMissing.Read(in) || !ParseEndObj(in))
    detail::FailRead("Failure reading ZRRoundEncoder from XML!\n");
  return 3 + fMissing.ElementCount();
}

void ZRRoundEncoder::Display() const {
  ZRCommon_920::ZRMV::DisplayRounding("ZRRoundEncoder: option", fRoundOption);
  fMissing.Display(true);
}

}  // namespace ZRXML_920
