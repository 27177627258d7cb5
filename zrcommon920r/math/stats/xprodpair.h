// Pairwise accumulator: for every unordered pair of variables its own weighted count,
// means, variances and covariance, for pairwise deletion of missing data.
#ifndef ZRCOMMON920R_MATH_STATS_XPRODPAIR_H
#define ZRCOMMON920R_MATH_STATS_XPRODPAIR_H

#include <vector>

#include "zrcommon920r/math/matrix/symmatrix.h"

namespace ZRMath_920 {

// Statistics of the pairs (i, j), i > j, of p variables, each pair at its own index
// i (i - 1) / 2 + j of thirteen packed stores: the value of variable i is the pair's
// "first variable", that of j its "second". A case enters a pair as raw weighted sums;
// after nAccum cases they are folded into the running total weight, means, sample
// variances and covariance (divisor total weight - 1). The caller sends a pair only the
// cases in which both values are valid; nothing here looks for the system-missing value.
// The stores are reached through pointers taken again after every resize; with fewer than
// two variables there is no pair and they are null. Nothing is thrown by the class itself.
class ZRAccumXProdPair {
 public:
  // p = nVars variables (a negative number counts as 0) and p (p - 1) / 2 zero pairs;
  // nAccum below 1 counts as 1.
  ZRAccumXProdPair(int nVars, int nAccum);
  // Copies of every store, with the element pointers taken afresh.
  ZRAccumXProdPair(const ZRAccumXProdPair & other);
  ZRAccumXProdPair & operator=(const ZRAccumXProdPair & other);
  virtual ~ZRAccumXProdPair() = default;

  // Zeroes the running statistics and the raw sums, giving them p rows each; the counts
  // of cases since the last fold are left as they are.
  void InitAll();
  // Sets the number of cases gathered before a fold; ignored unless n is positive.
  void SetNAccum(int n) {
    if (n > 0) fnAccum = n;
  }
  int GetNAccum() const { return fnAccum; }
  int GetNVars() const { return fnVars; }

  // One case of the pair (i, j), i > j: xi of variable i, xj of variable j, weight w.
  // False, nothing changed, unless 0 <= j < i < p; otherwise as Update(pair, ...).
  bool Update(int i, double xi, int j, double xj, double w);
  // Adds the case (x, y) of weight w to the raw sums of pair (w, w x, w y, w x x, w y y,
  // w x y) and, when this is its nAccum-th case since the last fold, folds them in
  // (see Finish). False when the fold is due but the pair's total weight is not above 1:
  // the sums are kept and tried again at the next case. False, nothing changed, for a pair
  // index outside 0 .. p (p - 1) / 2 - 1. The values and weight are not tested: a NaN
  // weight makes the pair's raw weight NaN, so its fold never falls due (false at every
  // fold and at Finish) and the pair's running statistics keep their last values; NaN or
  // infinite values fold into NaN statistics. Allocates nothing.
  bool Update(int pair, double x, double y, double w);
  // Folds the raw sums of every pair into its running statistics by pooling sums: with
  // S = m N0 + sum w x and m' = S / N, v' = ((N0 - 1) v + m N0 m + sum w x x - m' S) /
  // (N - 1), and the covariance alike. This cancels as a one-pass formula does, about
  // eps (mean / spread)^2 per fold: tested against long double two-pass statistics to
  // 64 eps on centred data, 32768 eps with means 20 spreads from 0. Stops with false at the
  // first pair whose total weight is not above 1, leaving the later pairs unfolded; true
  // otherwise and with fewer than two variables.
  bool Finish();
  // Folds the finished accumulator o into this one, pair by pair (combined weight above 1
  // and o's above 0; other pairs change nothing), then folds each such pair's merged raw
  // sums. An object with no variables first takes o's number and zeroes its stores. Run
  // Finish on o first: only the first p elements of o's raw sums are added and its counts
  // are ignored. A pair of this object with total weight 0 gets a NaN covariance (0 / 0).
  // False, nothing changed, when the numbers of variables differ. o may be this object.
  bool Merge(const ZRAccumXProdPair & o);
  // Merges the accumulators in order, null pointers skipped, stopping at the first false.
  // The first non-null one gives the number of variables; false, nothing changed, when
  // there is none, it has no variables, or this object has another number.
  bool Merge(const std::vector<ZRAccumXProdPair *> & list);
  bool Merge(const std::vector<const ZRAccumXProdPair *> & list);

  // The running statistics, one element per pair index: covariances, total weights, means
  // and variances of the first and of the second variable.
  const ZRSymMatrix & GetCovar() const { return fmCovar; }
  const ZRSymMatrix & GetTotalCases() const { return fmTotalCases; }
  const ZRSymMatrix & GetMean1() const { return fmMean1; }
  const ZRSymMatrix & GetMean2() const { return fmMean2; }
  const ZRSymMatrix & GetVar1() const { return fmVar1; }
  const ZRSymMatrix & GetVar2() const { return fmVar2; }
  // Resizes the correlation store to p rows and fills it, reading the covariance store by
  // packed symmetric indices: element k = i (i + 1) / 2 + j becomes cov[k] / sqrt(s_i) /
  // sqrt(s_j), s_i = sqrt(cov[i (i + 3) / 2]), or the system-missing value when s_i or s_j
  // is not positive (also NaN) or its index lies past the covariance store.
  const ZRSymMatrix & GetCorr();

  // Prints the number of variables and of accumulations and the stores by their labels
  // (the correlations only once computed) on the diagnostic stream, between
  // "ZRAccumXProdPair display start" and "ZRAccumXProdPair display end" lines.
  void Display() const;

 private:
  // Folds the raw sums of one pair into its running statistics (see Finish) and zeroes
  // them. True when the pair's total weight with the raw sums is above 1; nothing changes
  // when it is not, or when the raw weight is not above 0.
  bool IncrStats(int pair);
  // Zeroes the seven raw entries of one pair: its count and its six sums.
  void InitAccumCounts(int pair);
  // Takes the element pointers of the thirteen stores afresh, or nulls them when there is
  // no pair or a store is too short for all pairs.
  void TakePointers();
  template <typename Ptr>
  bool MergeList(const std::vector<Ptr> & list);

  int fnVars;
  int fnAccum;
  ZRSymMatrix fmCounts;
  ZRSymMatrix fmAccumCases;
  ZRSymMatrix fmSum1;
  ZRSymMatrix fmSum2;
  ZRSymMatrix fmSumSq1;
  ZRSymMatrix fmSumSq2;
  ZRSymMatrix fmSumXY;
  ZRSymMatrix fmTotalCases;
  ZRSymMatrix fmMean1;
  ZRSymMatrix fmMean2;
  ZRSymMatrix fmVar1;
  ZRSymMatrix fmVar2;
  ZRSymMatrix fmCovar;
  ZRSymMatrix fmCorr;

  int fnPairs;  // p (p - 1) / 2 while the pointers are set, else 0
  double * fpCounts;
  double * fpAccumCases;
  double * fpSum1;
  double * fpSum2;
  double * fpSumSq1;
  double * fpSumSq2;
  double * fpSumXY;
  double * fpTotalCases;
  double * fpMean1;
  double * fpMean2;
  double * fpVar1;
  double * fpVar2;
  double * fpCovar;
};

}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_STATS_XPRODPAIR_H
