// Univariate statistics: one-pass accumulators of a continuous variable (ZRContStats) and
// of category counts (ZRCatStats), the finished summary a model export reads (ZRUniStats),
// and an overflow-safe root of a signed sum of squares (ZRExtremeNum).
#ifndef ZRCOMMON920R_MATH_STATS_UNISTATS_H
#define ZRCOMMON920R_MATH_STATS_UNISTATS_H

#include <string>
#include <utility>
#include <vector>

#include "zrcommon920r/common/numconst.h"

namespace ZRMath_920 {

// Minimum, maximum, weighted mean and weighted sum of squares about the mean of one
// variable, case by case, by the provisional-means recurrence (West, D. H. D. (1979),
// Updating mean and variance estimates: an improved method, Communications of the ACM 22,
// 532-535). Each case carries a frequency weight f and a regression weight r; the mean and
// the sum of squares are weighted by the composite weight c = f r, the case count by f.
// Two accumulators over parts of the data join with Pool (Chan, T. F., Golub, G. H. and
// LeVeque, R. J. (1979), Updating formulae and a pairwise algorithm for computing sample
// variances, Stanford report STAN-CS-79-773).
// Error grows with the ratio s = 1 + |mean| / spread: tested against long double two-pass
// sums on up to 5000 weighted cases to 32 s eps absolute (in spreads) for the mean and
// 8 s eps relative for the variance; on the NIST StRD NumAcc1-4 sets sd keeps 10.5 digits
// (of the doubles' exact value) at s = 1e8. Nothing is allocated; nothing throws.
class ZRContStats {
 public:
  // No cases: minimum and maximum missing, sums, mean and sum of squares 0.
  ZRContStats() = default;

  // One case of weight 1; false, nothing changed, for x == miss. As the weighted form.
  bool Update(double x);
  // One case x of frequency weight freq and regression weight reg. A weight that is not
  // above 0 counts as 1 (the case is kept, not dropped). False, nothing changed, when any
  // of the three is the system-missing value; NaN and infinities are not refused and
  // carry into the sums (a NaN x also into the minimum or maximum if it comes first).
  // With W = sum c: d = x - mean, mean += d c / W, SSQ += (W_old c / W) d^2.
  bool Update(double x, double freq, double reg);
  // Joins the statistics of o (the other part of the data): nothing when o has no cases,
  // a copy of o when this one has none. Otherwise, with W1, W2 the composite weights and
  // d = mean2 - mean1, SSQ = SSQ1 + SSQ2 + W1 W2 d^2 / W, mean += d W2 / W. o may be this.
  void Pool(const ZRContStats & o);

  // (minimum, maximum), both the system-missing value before the first case.
  std::pair<double, double> GetExtrema() const { return {fdMin, fdMax}; }
  // The weighted mean; the system-missing value without cases (sum of frequencies 0).
  double GetMean() const;
  // SSQ / (sum of frequency weights - 1); the system-missing value unless that sum is
  // above 1. Intended: the sum of squares is on composite weights, the divisor on
  // frequency weights, so with regression weights this is not the usual estimator.
  double GetVariance() const;
  // Sum of frequency weights (the number of cases) and of composite weights.
  double GetSumFreq() const { return fdSumFreq; }
  double GetSumWt() const { return fdSumWt; }

  // Prints the statistics on the diagnostic stream between "ZRContStats display start"
  // and "ZRContStats display end" lines; the two pairs as two-number arrays.
  void Display() const;

 protected:  // a caller that moves the state between processes derives and fills these
  double fdMin = ZRCommon_920::kSysMisValue;
  double fdMax = ZRCommon_920::kSysMisValue;
  double fdSumFreq = 0.0;
  double fdSumWt = 0.0;
  double fdMean = 0.0;
  double fdSSQ = 0.0;
};

// Weighted counts of categories 0, 1, 2, ..., the vector growing on demand.
class ZRCatStats {
 public:
  ZRCatStats() = default;
  ZRCatStats(const ZRCatStats &) = default;
  ZRCatStats(ZRCatStats &&) = default;
  ZRCatStats & operator=(const ZRCatStats &) = default;
  ZRCatStats & operator=(ZRCatStats &&) = default;

  // Adds weight to the count of category i = category truncated toward 0 (2.9 counts in
  // 2), growing the counts with zeros to i + 1. A weight not above 0 counts as 1.
  // False, nothing changed, for a category or weight that is the system-missing value, a
  // negative or NaN category, one not below 2^32, or when the counts cannot grow (no
  // memory). Allocates only to grow.
  bool Update(double category, double weight);
  // Adds o's counts category by category, lengthening these with zeros to o's length.
  // o may be this.
  void Pool(const ZRCatStats & o);

  // With all, the number of counts kept (the highest category seen plus 1). Otherwise that
  // number less the zero counts met by a scan whose bound is that same number: each zero
  // lowers the bound, so the last places are not examined. Intended: (0, 1, 0, 1) gives
  // 2, but (1, 0, 0, 0) gives 2 as well.
  unsigned int GetNCategories(bool all) const;
  // The sum of all counts.
  double GetSumCounts() const;
  // The count of category i; 0.0 beyond the highest category seen.
  double GetCatCount(unsigned int i) const { return i < fvCounts.size() ? fvCounts[i] : 0.0; }
  const std::vector<double> & GetCounts() const { return fvCounts; }

  // Prints the counts on the diagnostic stream between "ZRCatStats display start" and
  // "ZRCatStats display end" lines.
  void Display() const;

 protected:  // as ZRContStats's
  std::vector<double> fvCounts;
};

// Overflow-safe arithmetic.
class ZRExtremeNum {
 public:
  // r = sqrt(sign(b) p^2 + sign(d) q^2) with p = |a| sqrt|b|, q = |c| sqrt|d|, without
  // forming the squares: the larger of p and q is factored out, r = sqrt((1 - t)(1 + t)) p
  // or sqrt(1 + t^2) p with t = q / p <= 1, so r overflows only when the root itself
  // exceeds the largest double. A zero b
  // or d counts as positive. With p == q: r = sqrt(2) p when neither b nor d is negative
  // and 0 when exactly one is. False, r unchanged, when the sum is negative, when b and d
  // are both negative (whatever p and q), and when p or q is NaN.
  static bool SumSqRoot(double a, double b, double c, double d, double & r);
};

}  // namespace ZRMath_920

namespace ZRXML_920 {

// The finished summary of one variable that a model export writes: its name, the number
// of cases, and either the frequencies of its categories or, for a continuous variable,
// its minimum, maximum, mean and standard deviation with optional histogram bins
// (frequencies between bounds). Nothing is checked on construction; IsValid says whether
// the parts agree.
class ZRUniStats {
 public:
  // Minimum, maximum, mean and standard deviation, each the system-missing value when
  // unknown. fdMax holds the maximum negated, which is how the export reads it (so a
  // maximum of the largest double reads as unknown).
  struct SummStats {
    SummStats() = default;
    // The summary of an accumulator: its minimum, negated maximum, mean, and the square
    // root of its variance (each missing when the accumulator's is).
    explicit SummStats(const ZRMath_920::ZRContStats & stats);

    double fdMin = ZRCommon_920::kSysMisValue;
    double fdMax = ZRCommon_920::kSysMisValue;
    double fdMean = ZRCommon_920::kSysMisValue;
    double fdStdDev = ZRCommon_920::kSysMisValue;
  };

  // A continuous variable "x" with 0 cases and nothing known: valid.
  ZRUniStats();
  // A categorical variable: freqs[i] is the frequency of category i.
  ZRUniStats(const std::string & name, double nCases, const std::vector<double> & freqs);
  // A continuous variable with its summary; freqs[i] counts the cases between bounds[i]
  // and bounds[i + 1], and both are empty when there is no histogram.
  ZRUniStats(const std::string & name, double nCases, const SummStats & stats,
             const std::vector<double> & bounds, const std::vector<double> & freqs);
  ZRUniStats(const ZRUniStats &) = default;
  ZRUniStats(ZRUniStats &&) = default;
  ZRUniStats & operator=(const ZRUniStats &) = default;
  ZRUniStats & operator=(ZRUniStats &&) = default;

  // Whether the summary is consistent: a name, a number of cases >= 0; categorical: no
  // negative frequency. Continuous: with frequencies, one bound more than frequencies, at
  // least one bound that is not missing, missing bounds only first or last, the others
  // rising strictly, no negative frequency; without, no bounds. Below 2 cases the standard
  // deviation is missing, at 0 cases minimum, maximum and mean too; a standard deviation
  // is not negative; minimum <= maximum when both are known. A NaN anywhere makes it false.
  bool IsValid() const;
  bool IsCategorical() const { return fbCategorical; }
  const std::string & GetVarName() const { return fsVarName; }
  double GetNumberOfCases() const { return fdNCases; }
  const std::vector<double> & GetFrequencies() const { return fvFreqs; }
  const std::vector<double> & GetBounds() const { return fvBounds; }
  const SummStats & GetSummStats() const { return fSummStats; }

 private:
  std::string fsVarName;
  bool fbCategorical;
  double fdNCases;
  std::vector<double> fvFreqs;
  [[maybe_unused]] bool fbReserved;  // true in every object; no operation reads it
  std::vector<double> fvBounds;
  SummStats fSummStats;
};

}  // namespace ZRXML_920

#endif  // ZRCOMMON920R_MATH_STATS_UNISTATS_H
