// Univariate accumulators, the finished summary's consistency rules and the root of a
// signed sum of squares.
#include "zrcommon920r/math/stats/unistats.h"

#include <cmath>
#include <new>
#include <stdexcept>

#include "zrcommon920r/display/display.h"

namespace ZRMath_920 {

namespace {

constexpr double kMiss = ZRCommon_920::kSysMisValue;
// Categories are kept as unsigned 32-bit indices.
constexpr double kCategoryLimit = 4294967296.0;

}  // namespace

// ---------------------------------------------------------------------------------------
// ZRContStats

bool ZRContStats::Update(double x) {
  return Update(x, 1.0, 1.0);
}

bool ZRContStats::Update(double x, double freq, double reg) {
  if (x == kMiss || freq == kMiss || reg == kMiss) return false;
  if (fdMin == kMiss || fdMin > x) fdMin = x;
  if (fdMax == kMiss || fdMax < x) fdMax = x;
  // A weight that is not positive counts as 1: the case stays in.
  const double f = freq <= 0.0 ? 1.0 : freq;
  const double c = f * (reg <= 0.0 ? 1.0 : reg);
  fdSumFreq += f;
  // West (1979): W = W_old + c, mean += d c / W, SSQ += (W_old c / W) d^2. The one division
  // c / W depends on the weights alone, so it runs ahead of the mean's chain of updates.
  const double w = fdSumWt + c;
  const double ratio = c / w;
  const double d = x - fdMean;
  fdMean = d * ratio + fdMean;
  fdSSQ = (fdSumWt * ratio) * (d * d) + fdSSQ;
  fdSumWt = w;
  return true;
}

void ZRContStats::Pool(const ZRContStats & o) {
  if (o.fdSumFreq == 0.0) return;
  if (fdSumFreq == 0.0) {
    *this = o;
    return;
  }
  const ZRContStats other = o;  // o may be this object
  if (other.fdMin < fdMin) fdMin = other.fdMin;
  if (other.fdMax > fdMax) fdMax = other.fdMax;
  // Chan, Golub and LeVeque (1979), the pairwise update of a mean and a sum of squares.
  const double d = other.fdMean - fdMean;
  const double w = fdSumWt + other.fdSumWt;
  fdSSQ = fdSumWt * other.fdSumWt * d * d / w + other.fdSSQ + fdSSQ;
  fdMean += d * other.fdSumWt / w;
  fdSumFreq += other.fdSumFreq;
  fdSumWt = w;
}

double ZRContStats::GetMean() const {
  return fdSumFreq == 0.0 ? kMiss : fdMean;
}

double ZRContStats::GetVariance() const {
  // Intended: composite-weight SSQ over frequency weights minus 1.
  return fdSumFreq > 1.0 ? fdSSQ / (fdSumFreq - 1.0) : kMiss;
}

void ZRContStats::Display() const {
  const double extrema[2] = {fdMin, fdMax};
  const double sums[2] = {fdSumFreq, fdSumWt};
  ZRDisplay_920::DisplayText(1, "ZRContStats display start");
  ZRDisplay_920::DisplayDA("Min & max", extrema, 2, false);
  ZRDisplay_920::DisplayDA("Sum of freq. wgts, composite wgts", sums, 2, false);
  ZRDisplay_920::DisplayD("Mean", fdMean);
  ZRDisplay_920::DisplayD("SSQ", fdSSQ);
  ZRDisplay_920::DisplayText(1, "ZRContStats display end");
}

// ---------------------------------------------------------------------------------------
// ZRCatStats

bool ZRCatStats::Update(double category, double weight) {
  if (category == kMiss || weight == kMiss) return false;
  if (!(category >= 0.0) || category >= kCategoryLimit) return false;  // also NaN
  const auto i = static_cast<std::size_t>(static_cast<unsigned int>(category));
  if (i >= fvCounts.size()) {
    try {
      fvCounts.resize(i + 1, 0.0);
    } catch (const std::bad_alloc &) {
      return false;
    } catch (const std::length_error &) {
      return false;
    }
  }
  fvCounts[i] += weight <= 0.0 ? 1.0 : weight;
  return true;
}

void ZRCatStats::Pool(const ZRCatStats & o) {
  if (fvCounts.size() < o.fvCounts.size()) fvCounts.resize(o.fvCounts.size(), 0.0);
  const std::size_t n = o.fvCounts.size();  // o may be this object: read before the loop
  for (std::size_t i = 0; i < n; ++i) fvCounts[i] += o.fvCounts[i];
}

unsigned int ZRCatStats::GetNCategories(bool all) const {
  auto n = static_cast<unsigned int>(fvCounts.size());
  if (all) return n;
  // Intended: n is both the result and the scan's bound, so each zero shortens the scan.
  for (unsigned int i = 0; i < n; ++i)
    if (fvCounts[i] == 0.0) --n;
  return n;
}

double ZRCatStats::GetSumCounts() const {
  double sum = 0.0;
  for (const double count : fvCounts) sum += count;
  return sum;
}

void ZRCatStats::Display() const {
  ZRDisplay_920::DisplayText(1, "ZRCatStats display start");
  ZRDisplay_920::DisplayDV("Category counts", fvCounts);
  ZRDisplay_920::DisplayText(1, "ZRCatStats display end");
}

// ---------------------------------------------------------------------------------------
// ZRExtremeNum

bool ZRExtremeNum::SumSqRoot(double a, double b, double c, double d, double & r) {
  const double p = std::fabs(a) * std::sqrt(std::fabs(b));
  const double q = std::fabs(c) * std::sqrt(std::fabs(d));
  const bool bNegative = b < 0.0, dNegative = d < 0.0;
  if (std::isnan(p) || std::isnan(q) || (bNegative && dNegative)) return false;
  if (p == q) {
    r = bNegative != dNegative ? 0.0 : std::sqrt(2.0) * p;
    return true;
  }
  // The larger term leads: it must be positive, and t = smaller / larger <= 1.
  const bool pLeads = p > q;
  if (pLeads ? bNegative : dNegative) return false;
  const double big = pLeads ? p : q;
  const double t = (pLeads ? q : p) / big;
  // (1 - t)(1 + t) rather than 1 - t^2: no cancellation when t is near 1.
  const bool subtract = pLeads ? dNegative : bNegative;
  r = std::sqrt(subtract ? (1.0 - t) * (1.0 + t) : 1.0 + t * t) * big;
  return true;
}

}  // namespace ZRMath_920

namespace ZRXML_920 {

namespace {

constexpr double kMiss = ZRCommon_920::kSysMisValue;

// Bounds of a histogram: missing only at either end, at least one known, the known ones
// rising strictly, none NaN.
bool BoundsValid(const std::vector<double> & bounds) {
  bool known = false;
  double previous = 0.0;
  const std::size_t last = bounds.size() - 1;
  for (std::size_t i = 0; i < bounds.size(); ++i) {
    const double b = bounds[i];
    if (b == kMiss) {
      if (i != 0 && i != last) return false;
      continue;
    }
    if (std::isnan(b) || (known && !(previous < b))) return false;
    known = true;
    previous = b;
  }
  return known;
}

bool NoNegativeOrNaN(const std::vector<double> & freqs) {
  for (const double f : freqs)
    if (!(f >= 0.0)) return false;
  return true;
}

}  // namespace

ZRUniStats::SummStats::SummStats(const ZRMath_920::ZRContStats & stats) {
  const std::pair<double, double> extrema = stats.GetExtrema();
  const double variance = stats.GetVariance();
  fdMin = extrema.first;
  fdMax = extrema.second == kMiss ? kMiss : -extrema.second;
  fdMean = stats.GetMean();
  fdStdDev = variance == kMiss ? kMiss : std::sqrt(variance);
}

ZRUniStats::ZRUniStats() : fsVarName("x"), fbCategorical(false), fdNCases(0.0), fbReserved(true) {}

ZRUniStats::ZRUniStats(const std::string & name, double nCases, const std::vector<double> & freqs)
    : fsVarName(name), fbCategorical(true), fdNCases(nCases), fvFreqs(freqs), fbReserved(true) {}

ZRUniStats::ZRUniStats(const std::string & name, double nCases, const SummStats & stats,
                       const std::vector<double> & bounds, const std::vector<double> & freqs)
    : fsVarName(name),
      fbCategorical(false),
      fdNCases(nCases),
      fvFreqs(freqs),
      fbReserved(true),
      fvBounds(bounds),
      fSummStats(stats) {}

bool ZRUniStats::IsValid() const {
  if (fsVarName.empty() || !(fdNCases >= 0.0)) return false;
  if (fbCategorical) return NoNegativeOrNaN(fvFreqs);
  if (fvFreqs.empty()) {
    if (!fvBounds.empty()) return false;
  } else if (fvBounds.size() != fvFreqs.size() + 1 || !BoundsValid(fvBounds) ||
             !NoNegativeOrNaN(fvFreqs)) {
    return false;
  }
  const SummStats & s = fSummStats;
  if (std::isnan(s.fdMin) || std::isnan(s.fdMax) || std::isnan(s.fdMean) || std::isnan(s.fdStdDev))
    return false;
  if (fdNCases < 2.0 && s.fdStdDev != kMiss) return false;
  if (fdNCases == 0.0 && (s.fdMin != kMiss || s.fdMax != kMiss || s.fdMean != kMiss)) return false;
  if (s.fdStdDev != kMiss && s.fdStdDev < 0.0) return false;
  // fdMax holds the maximum negated.
  if (s.fdMin != kMiss && s.fdMax != kMiss && s.fdMin > -s.fdMax) return false;
  return true;
}

}  // namespace ZRXML_920
