// Accumulators of weighted counts, means and sums of squares and cross-products: the
// summary ZRMeansXProdData, its case-at-a-time face ZRProvMeans and its block face
// ZRMeansXProducts, which reads the rows of a ZRRectMatrix.
#ifndef ZRCOMMON920R_MATH_STATS_MEANSXPROD_H
#define ZRCOMMON920R_MATH_STATS_MEANSXPROD_H

#include <vector>

#include "zrcommon920r/math/matrix/rectmatrix.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace ZRMath_920 {

// Sufficient statistics of p variables: the weighted number of cases N, the means and a
// p x p symmetric matrix of sums of products, corrected about the means when the intercept
// indicator is set and raw otherwise (the means are kept in both modes). No operation
// tests its input: the system-missing value is a plain number, and NaN or infinite values
// and weights propagate into the count, the means and the matrix (an infinite weight
// gives NaN through inf / inf); the caller screens the cases. Nothing is thrown by
// the class itself; operations that can fail answer false. When the matrix could not be
// sized (invalid, rows -1) the per-case operations do nothing and merges answer false.
class ZRMeansXProdData {
 public:
  // No variables, intercept on, count 0.
  ZRMeansXProdData();
  // nVars variables (a negative number counts as 0), count 0, zero means and matrix.
  ZRMeansXProdData(int nVars, bool intercept);
  // Copies of every field; when the matrix cannot be copied its row count is -1.
  ZRMeansXProdData(const ZRMeansXProdData & other) = default;
  ZRMeansXProdData & operator=(const ZRMeansXProdData & other) = default;
  virtual ~ZRMeansXProdData() = default;

  // Count 0, means 0.0 and the matrix resized to the number of variables and zeroed; the
  // number of variables and the intercept indicator stay.
  void Clear();
  // Sets the number of variables and clears as Clear does. False, nothing changed, for a
  // negative n.
  bool SetNVars(int n);
  // Sets the intercept indicator only; the data already held are not converted.
  void SetIntercept(bool intercept) { fbIntercept = intercept; }
  bool IsIntercept() const { return fbIntercept; }
  int GetNVars() const { return fnVars; }
  double GetNCases() const { return fdNCases; }
  const std::vector<double> & GetMeans() const { return fvMeans; }
  const ZRSymMatrix & GetXProds() const { return fmXProds; }

  // Adds the case x with weight w by provisional means (Welford, B. P. (1962), Note on a
  // method for calculating corrected sums of squares and products, Technometrics 4,
  // 419-420): with N' = N + w the matrix gains d d' N w / N' (d = x - old means; raw x x' w
  // without the intercept), then each mean moves by (x - mean) w / N'. The weight is not
  // checked: N' = 0 gives non-finite results. Tested against long double two-pass sums to
  // 64 eps (element (i, j) relative to sqrt(a_ii a_jj)). Nothing happens when x has fewer
  // than p elements; nothing is allocated.
  void AddCase(const std::vector<double> & x, double w);
  // Removes the case x of weight w, the exact inverse of AddCase up to rounding: with
  // N' = N - w the means become (N mean - w x) / N', then the matrix loses d d' N' w / N
  // (d = x - new means; raw x x' w without the intercept). Deleting down to N' = 0 gives
  // non-finite means (ZRProvMeans::Update clears instead). Tested: add then delete restores
  // to 32 eps. Nothing happens when x has fewer than p elements; nothing is allocated.
  void DeleteCase(const std::vector<double> & x, double w);

  // Folds the summary o into this one by the pairwise formulae of Chan, T. F., Golub,
  // G. H. and LeVeque, R. J. (1983), Algorithms for computing the sample variance:
  // analysis and recommendations, The American Statistician 37, 242-247. An object with no
  // variables first takes o's shape. True exactly when the number of variables and the
  // intercept indicator agree (and both matrices are valid); false changes nothing, and
  // so does a combined count that is not above 0 (true for two empty summaries, and for a
  // NaN count on either side: such a summary is passed over, not propagated). o is not
  // changed and may be this object. Tested against two passes over the joined data to
  // 32 eps (64 eps plus the offset of the means in spreads, in eps, for blocks).
  bool Merge(const ZRMeansXProdData & o);
  // Merges the summaries in order, null pointers skipped, stopping at the first false
  // (the ones before it stay merged). The first non-null one gives the shape, which this
  // object takes if it has no variables; false, nothing changed, when there is none, it
  // has no variables, or its number of variables differs from this object's.
  bool Merge(const std::vector<ZRMeansXProdData *> & list);
  bool Merge(const std::vector<const ZRMeansXProdData *> & list);

  // Prints the number of variables, the intercept indicator, the count, the means and the
  // matrix on the diagnostic stream, between "ZRMeansXProdData display start" and
  // "ZRMeansXProdData display end" lines.
  virtual void Display() const;

 protected:
  // Rank-one update of the matrix: element (i, j), j <= i, gains d_j (d_i c), with
  // d = x - means (the means held now) when the intercept is on, d = x otherwise. Walks
  // the packed store in order and allocates nothing. Nothing happens when x has fewer
  // than p elements.
  void UpdateXX(const std::vector<double> & x, double c);
  // Whether the means and the matrix have the sizes of fnVars variables.
  bool IsShaped() const;

  int fnVars;
  bool fbIntercept;
  double fdNCases;
  std::vector<double> fvMeans;
  ZRSymMatrix fmXProds;

 private:
  template <typename Ptr>
  bool MergeList(const std::vector<Ptr> & list);
};

// Case-at-a-time accumulation with provisional means, positive weights adding a case and
// negative ones deleting it.
class ZRProvMeans : public ZRMeansXProdData {
 public:
  ZRProvMeans() = default;
  ZRProvMeans(int nVars, bool intercept) : ZRMeansXProdData(nVars, intercept) {}
  ZRProvMeans(const ZRProvMeans & other) = default;
  ZRProvMeans & operator=(const ZRProvMeans & other) = default;
  ~ZRProvMeans() override = default;

  // One case in (w > 0, AddCase), out (w < 0, DeleteCase with -w), or nothing (w == 0);
  // a weight that brings the count to exactly 0 clears the summary instead. False, nothing
  // changed, when x has fewer than p elements (longer x is accepted, the surplus unread)
  // or when N + w is negative. A NaN weight is none of these: nothing changes and the
  // answer is true; +inf adds a case and makes the summary NaN. Allocates nothing.
  bool Update(const std::vector<double> & x, double w);

  // The base's display.
  void Display() const override;
};

// Summary of blocks of cases held in the rows of a ZRRectMatrix of p + k columns: the p
// variables, then k = 0, 1 or 2 weight columns (frequency weight first when both are
// used); a row's weight is the product of its weight columns. Two routes fill it: the
// two-pass Compute / Update, and the faster but less accurate one-pass
// StartUpdateOnePass, UpdateOnePass, FinishUpdateOnePass, whose accumulators are kept apart
// until the finish. In each block operation nRows below 1 means all rows of X and a larger
// value is cut to X's rows.
class ZRMeansXProducts : public ZRMeansXProdData {
 public:
  // No variables, intercept on, a frequency-weight column and no regression weight.
  ZRMeansXProducts();
  ZRMeansXProducts(int nVars, bool intercept, bool freqWt, bool regWt);
  ZRMeansXProducts(const ZRMeansXProducts & other) = default;
  ZRMeansXProducts & operator=(const ZRMeansXProducts & other) = default;
  ~ZRMeansXProducts() override = default;

  // Two-pass summary of the first rows of X, replacing what was held: the (weighted) means
  // first, then the sums of products of the deviations from them (raw products without
  // the intercept), row by row; see Chan, Golub and LeVeque (1983), cited at Merge. A
  // constant column gets its value as mean exactly, and so exact zeros in its row of the
  // corrected matrix. Tested against long double two-pass sums to 64 eps (element (i, j)
  // relative to sqrt(a_ii a_jj)), and on the NIST StRD sets NumAcc1-4: at least 14 digits
  // of the mean, and of the sd 14.5 and the data's own limit 9.4 and 8.2 on NumAcc3 and 4.
  // False, nothing changed, when X's column count isn't p + k. No rows give count 0, means
  // and matrix zero and true, without reading any row (not even a weight). A NaN or
  // infinite value or weight propagates into the means and matrix (weights: into the count).
  bool Compute(const ZRRectMatrix & X, int nRows);
  // Compute of the block alone, merged (Merge) into what is held; Compute itself when the
  // count is 0. False, nothing changed, for a wrong column count.
  bool Update(const ZRRectMatrix & X, int nRows);
  // Brackets for a series of Update calls; they do nothing.
  void StartUpdate() {}
  void FinishUpdate() {}

  // Zeroes the one-pass accumulators, sized for p variables.
  void StartUpdateOnePass();
  // Adds the rows to the one-pass accumulators: the weighted count, the weighted sums x w
  // and the weighted raw products (x_i w) x_j. Starts them first when the count is 0 or
  // they were sized for another number of variables. False, nothing changed, for a wrong
  // column count.
  bool UpdateOnePass(const ZRRectMatrix & X, int nRows);
  // Turns the one-pass accumulators into count, means and corrected matrix
  // (sum of products - mean_i sum_j, which cancels badly when the means are large against
  // the spread). Always corrected, whatever the intercept indicator. With a one-pass
  // count of 0, or accumulators sized for another number of variables, the summary is
  // cleared instead.
  void FinishUpdateOnePass();

  // Prints the base's display, the two weight indicators and, when the one-pass count is
  // positive, the one-pass accumulators, between "ZRMeansXProducts display start" and
  // "ZRMeansXProducts display end" lines.
  void Display() const override;

 private:
  // Number of weight columns (0, 1 or 2).
  int NWeightCols() const { return (fbFreqWt ? 1 : 0) + (fbRegWt ? 1 : 0); }
  // Whether the one-pass accumulators are sized for fnVars variables.
  bool IsOnePassShaped() const;

  bool fbFreqWt;
  bool fbRegWt;
  double fdOnePassN;
  std::vector<double> fvOnePassSums;
  ZRSymMatrix fmOnePassXProds;
};

}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_STATS_MEANSXPROD_H
