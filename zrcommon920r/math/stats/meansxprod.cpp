// Means and sums of cross-products: provisional means case by case, two-pass and one-pass
// summaries of blocks, and the pairwise merge of two summaries.
#include "zrcommon920r/math/stats/meansxprod.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "zrcommon920r/display/display.h"
#include "zrcommon920r/math/matrix/detail/packed_kernels.h"

namespace ZRMath_920 {

namespace {

// Number of rows of X a block operation reads: all for nRows < 1, never more than X has.
int RowsUsed(const ZRRectMatrix & X, int nRows) {
  const int rows = std::max(X.GetNRows(), 0);
  return nRows < 1 ? rows : std::min(nRows, rows);
}

// Rows of X whose products the second pass of Compute adds while one tile of the matrix
// stays in registers; their deviations from the means (at most this many times p values)
// stay in the first-level cache for p up to about 100.
constexpr int kProductBlock = 32;

// Weight of a row: the product of its weight columns, which follow the p variables.
inline double RowWeight(const double * row, int p, int nWeights) {
  if (nWeights == 0) return 1.0;
  return nWeights == 1 ? row[p] : row[p] * row[p + 1];
}

}  // namespace

// ---------------------------------------------------------------------------------------
// ZRMeansXProdData

ZRMeansXProdData::ZRMeansXProdData()
    : fnVars(0), fbIntercept(true), fdNCases(0.0), fvMeans(), fmXProds() {}

ZRMeansXProdData::ZRMeansXProdData(int nVars, bool intercept)
    : fnVars(std::max(nVars, 0)),
      fbIntercept(intercept),
      fdNCases(0.0),
      fvMeans(static_cast<std::size_t>(std::max(nVars, 0)), 0.0),
      fmXProds(std::max(nVars, 0), true) {}

bool ZRMeansXProdData::IsShaped() const {
  return fmXProds.fnRows == fnVars && fvMeans.size() == static_cast<std::size_t>(fnVars);
}

void ZRMeansXProdData::Clear() {
  fdNCases = 0.0;
  fvMeans.assign(static_cast<std::size_t>(fnVars), 0.0);
  fmXProds.SetNRows(fnVars, true);
}

bool ZRMeansXProdData::SetNVars(int n) {
  if (n < 0) return false;
  fnVars = n;
  Clear();
  return true;
}

void ZRMeansXProdData::UpdateXX(const std::vector<double> & x, double c) {
  const int p = fnVars;
  if (!IsShaped() || x.size() < static_cast<std::size_t>(p)) return;
  double * a = fmXProds.fvLowerTri.data();
  const double * xs = x.data();
  const double * m = fvMeans.data();
  int k = 0;
  if (fbIntercept) {
    for (int i = 0; i < p; ++i) {
      const double t = (xs[i] - m[i]) * c;
      for (int j = 0; j <= i; ++j) a[k + j] += (xs[j] - m[j]) * t;
      k += i + 1;
    }
  } else {
    for (int i = 0; i < p; ++i) {
      const double t = xs[i] * c;
      for (int j = 0; j <= i; ++j) a[k + j] += xs[j] * t;
      k += i + 1;
    }
  }
}

void ZRMeansXProdData::AddCase(const std::vector<double> & x, double w) {
  const int p = fnVars;
  if (!IsShaped() || x.size() < static_cast<std::size_t>(p)) return;
  const double n = fdNCases;
  const double nNew = n + w;
  UpdateXX(x, fbIntercept ? n * w / nNew : w);  // with the means before this case
  const double r = w / nNew;
  double * m = fvMeans.data();
  for (int i = 0; i < p; ++i) m[i] = (x[i] - m[i]) * r + m[i];
  fdNCases = nNew;
}

void ZRMeansXProdData::DeleteCase(const std::vector<double> & x, double w) {
  const int p = fnVars;
  if (!IsShaped() || x.size() < static_cast<std::size_t>(p)) return;
  const double n = fdNCases;
  const double nNew = n - w;
  const double f = w / nNew;
  const double g = n / nNew;
  double * m = fvMeans.data();
  for (int i = 0; i < p; ++i) m[i] = -f * x[i] + g * m[i];
  UpdateXX(x, fbIntercept ? -(nNew * w / n) : -w);  // with the means after removal
  fdNCases = nNew;
}

bool ZRMeansXProdData::Merge(const ZRMeansXProdData & o) {
  if (fnVars == 0) {
    fnVars = o.fnVars;
    fbIntercept = o.fbIntercept;
    Clear();
  }
  if (fnVars != o.fnVars || fbIntercept != o.fbIntercept) return false;
  if (!IsShaped() || !o.IsShaped()) return false;
  const double n = fdNCases;
  const double no = o.fdNCases;
  const double nNew = n + no;
  if (!(nNew > 0.0)) return true;
  const int p = fnVars;
  const double f = no / nNew;
  double * a = fmXProds.fvLowerTri.data();
  const double * ao = o.fmXProds.fvLowerTri.data();
  if (fbIntercept) {
    // Scratch for the distances of the new means from this object's and from o's, on the
    // stack for the usual orders (a heap block costs as much as a small merge); the means
    // are updated in place. o may be this object: the kernel reads each mean and element
    // of o before writing the same one.
    constexpr int kStackVars = 128;
    double stackWork[2 * kStackVars];
    std::vector<double> heapWork;
    double * work = stackWork;
    if (p > kStackVars) {
      heapWork.resize(2 * static_cast<std::size_t>(p));
      work = heapWork.data();
    }
    matrix_detail::MergeCorrectedPacked(a, ao, fvMeans.data(), o.fvMeans.data(), work, work + p, p,
                                        n, no, f);
  } else {
    double * m = fvMeans.data();
    const double * mo = o.fvMeans.data();
    for (int i = 0; i < p; ++i) m[i] = (mo[i] - m[i]) * f + m[i];
    matrix_detail::AddPacked(a, ao, fmXProds.fvLowerTri.size());
  }
  fdNCases = nNew;
  return true;
}

template <typename Ptr>
bool ZRMeansXProdData::MergeList(const std::vector<Ptr> & list) {
  const ZRMeansXProdData * first = nullptr;
  for (const Ptr & q : list) {
    if (q != nullptr) {
      first = q;
      break;
    }
  }
  const int n = first != nullptr ? first->fnVars : 0;
  const bool intercept = first != nullptr ? first->fbIntercept : true;
  if (n < 1 || (fnVars != 0 && fnVars != n)) return false;
  if (fnVars == 0) {
    fnVars = n;
    fbIntercept = intercept;
    Clear();
  }
  for (const Ptr & q : list) {
    if (q != nullptr && !Merge(*q)) return false;
  }
  return true;
}

bool ZRMeansXProdData::Merge(const std::vector<ZRMeansXProdData *> & list) {
  return MergeList(list);
}

bool ZRMeansXProdData::Merge(const std::vector<const ZRMeansXProdData *> & list) {
  return MergeList(list);
}

void ZRMeansXProdData::Display() const {
  ZRDisplay_920::DisplayText(1, "ZRMeansXProdData display start");
  ZRDisplay_920::DisplayI("Number of variables", fnVars);
  ZRDisplay_920::DisplayB("Intercept indicator", fbIntercept);
  ZRDisplay_920::DisplayD("Weighted number of cases", fdNCases);
  ZRDisplay_920::DisplayDV("Vector of means", fvMeans);
  ZRDisplay_920::DisplayText(1, "Matrix of cross-products:");
  fmXProds.Display();
  ZRDisplay_920::DisplayText(1, "ZRMeansXProdData display end");
}

// ---------------------------------------------------------------------------------------
// ZRProvMeans

bool ZRProvMeans::Update(const std::vector<double> & x, double w) {
  if (x.size() < static_cast<std::size_t>(fnVars)) return false;
  const double nNew = w + fdNCases;
  // Intended: only a negative count is refused. A NaN weight is neither positive, negative
  // nor zero: nothing happens and the answer is true.
  if (nNew < 0.0) return false;
  if (nNew == 0.0) {
    Clear();
    return true;
  }
  if (w > 0.0) {
    AddCase(x, w);
  } else if (w < 0.0) {
    DeleteCase(x, -w);
  }
  return true;
}

void ZRProvMeans::Display() const {
  ZRMeansXProdData::Display();
}

// ---------------------------------------------------------------------------------------
// ZRMeansXProducts

ZRMeansXProducts::ZRMeansXProducts()
    : ZRMeansXProdData(),
      fbFreqWt(true),
      fbRegWt(false),
      fdOnePassN(0.0),
      fvOnePassSums(),
      fmOnePassXProds() {}

ZRMeansXProducts::ZRMeansXProducts(int nVars, bool intercept, bool freqWt, bool regWt)
    : ZRMeansXProdData(nVars, intercept),
      fbFreqWt(freqWt),
      fbRegWt(regWt),
      fdOnePassN(0.0),
      fvOnePassSums(),
      fmOnePassXProds() {}

bool ZRMeansXProducts::IsOnePassShaped() const {
  return fmOnePassXProds.fnRows == fnVars &&
         fvOnePassSums.size() == static_cast<std::size_t>(fnVars);
}

bool ZRMeansXProducts::Compute(const ZRRectMatrix & X, int nRows) {
  const int p = fnVars;
  const int nw = NWeightCols();
  if (X.GetNCols() != p + nw) return false;
  Clear();
  if (!IsShaped()) return false;
  const int rows = RowsUsed(X, nRows);
  // Intended: with no rows nothing is read, not even row 0's weight (which the count
  // starts from otherwise): the count stays 0 and the means and matrix zero.
  if (rows < 1) return true;
  const std::size_t stride = static_cast<std::size_t>(p + nw);
  const double * row0 = X.GetRowPtr(0);
  if (row0 == nullptr) {  // no columns: no variables and no weights
    fdNCases = static_cast<double>(rows);
    return true;
  }

  // First pass: the (weighted) sums of every variable, each summed over the rows in order,
  // gathered in the means. Without weights work[i] is row 0's value added to itself once
  // per row in the same order, the test for a constant column.
  double * sums = fvMeans.data();
  std::vector<double> work(static_cast<std::size_t>(p), 0.0);
  double * d = work.data();
  double n = nw != 0 ? RowWeight(row0, p, nw) : static_cast<double>(rows);
  for (int r = 0; r < rows; ++r) {
    const double * x = row0 + stride * static_cast<std::size_t>(r);
    if (nw != 0) {
      const double w = RowWeight(x, p, nw);
      if (r > 0) n += w;
      for (int i = 0; i < p; ++i) sums[i] += x[i] * w;
    } else {
      for (int i = 0; i < p; ++i) sums[i] += x[i];
      for (int i = 0; i < p; ++i) d[i] += row0[i];
    }
  }
  fdNCases = n;
  // A constant column keeps its value as mean exactly, so its deviations are exact zeros.
  for (int i = 0; i < p; ++i) {
    bool constant;
    if (nw != 0) {
      constant = true;
      for (int r = 1; r < rows && constant; ++r)
        constant = row0[stride * static_cast<std::size_t>(r) + i] == row0[i];
    } else {
      constant = sums[i] == d[i];
    }
    sums[i] = constant ? row0[i] : sums[i] / n;
  }

  // Second pass over blocks of rows: element (i, j) gains (d_j d_i) w for each row in
  // order, the kernel holding tiles of the matrix in registers across the block.
  const double * m = fvMeans.data();
  double * a = fmXProds.fvLowerTri.data();
  const int block = std::min(rows, kProductBlock);
  std::vector<double> weights(nw != 0 ? static_cast<std::size_t>(block) : 0);
  if (fbIntercept) work.resize(static_cast<std::size_t>(block) * static_cast<std::size_t>(p));
  d = work.data();
  for (int r0 = 0; r0 < rows; r0 += block) {
    const int nb = std::min(block, rows - r0);
    const double * x0 = row0 + stride * static_cast<std::size_t>(r0);
    for (int r = 0; r < nb; ++r) {
      const double * x = x0 + stride * static_cast<std::size_t>(r);
      if (nw != 0) weights[r] = RowWeight(x, p, nw);
      if (fbIntercept) {
        double * dr = d + static_cast<std::size_t>(r) * static_cast<std::size_t>(p);
        for (int i = 0; i < p; ++i) dr[i] = x[i] - m[i];
      }
    }
    const double * dev = fbIntercept ? d : x0;
    const std::size_t devStride = fbIntercept ? static_cast<std::size_t>(p) : stride;
    matrix_detail::AddProductsPacked(a, dev, devStride, nw != 0 ? weights.data() : nullptr, nb, p);
  }
  return true;
}

bool ZRMeansXProducts::Update(const ZRRectMatrix & X, int nRows) {
  if (fdNCases == 0.0) return Compute(X, nRows);
  if (X.GetNCols() != fnVars + NWeightCols()) return false;
  const ZRMeansXProdData held(*this);
  ZRMeansXProdData & self = *this;
  if (!Compute(X, nRows) || !Merge(held)) {
    self = held;
    return false;
  }
  return true;
}

void ZRMeansXProducts::StartUpdateOnePass() {
  fdOnePassN = 0.0;
  fvOnePassSums.assign(static_cast<std::size_t>(fnVars), 0.0);
  if (fmOnePassXProds.GetNRows() != fnVars) fmOnePassXProds.Resize(fnVars);
  fmOnePassXProds.Clear();
}

bool ZRMeansXProducts::UpdateOnePass(const ZRRectMatrix & X, int nRows) {
  const int p = fnVars;
  const int nw = NWeightCols();
  if (X.GetNCols() != p + nw) return false;
  if (fdOnePassN == 0.0 || !IsOnePassShaped()) StartUpdateOnePass();
  if (!IsOnePassShaped()) return false;
  const int rows = RowsUsed(X, nRows);
  if (rows < 1) return true;
  const std::size_t stride = static_cast<std::size_t>(p + nw);
  const double * row0 = X.GetRowPtr(0);
  if (row0 == nullptr) {  // no columns: no variables and no weights
    fdOnePassN += static_cast<double>(rows);
    return true;
  }
  double * s = fvOnePassSums.data();
  double * a = fmOnePassXProds.fvLowerTri.data();
  if (nw == 0) fdOnePassN += static_cast<double>(rows);
  for (int r = 0; r < rows; ++r) {
    const double * x = row0 + stride * static_cast<std::size_t>(r);
    int k = 0;
    if (nw != 0) {
      const double w = RowWeight(x, p, nw);
      fdOnePassN += w;
      for (int i = 0; i < p; ++i) {
        const double v = x[i] * w;
        s[i] += v;
        for (int j = 0; j <= i; ++j) a[k + j] += v * x[j];
        k += i + 1;
      }
    } else {
      for (int i = 0; i < p; ++i) {
        const double v = x[i];
        s[i] += v;
        for (int j = 0; j <= i; ++j) a[k + j] += v * x[j];
        k += i + 1;
      }
    }
  }
  return true;
}

void ZRMeansXProducts::FinishUpdateOnePass() {
  const int p = fnVars;
  if (fdOnePassN == 0.0 || !IsOnePassShaped()) {
    Clear();
    return;
  }
  fdNCases = fdOnePassN;
  fvMeans.resize(static_cast<std::size_t>(p));
  if (fmXProds.GetNRows() != p) fmXProds.Resize(p);
  const double * s = fvOnePassSums.data();
  double * m = fvMeans.data();
  for (int i = 0; i < p; ++i) m[i] = s[i] / fdNCases;
  if (!IsShaped()) return;
  // Intended: the means are subtracted whatever the intercept indicator says; this route
  // always gives corrected sums.
  double * a = fmXProds.fvLowerTri.data();
  const double * q = fmOnePassXProds.fvLowerTri.data();
  int k = 0;
  for (int i = 0; i < p; ++i) {
    for (int j = 0; j <= i; ++j) a[k + j] = q[k + j] - m[i] * s[j];
    k += i + 1;
  }
}

void ZRMeansXProducts::Display() const {
  ZRDisplay_920::DisplayText(1, "ZRMeansXProducts display start");
  ZRMeansXProdData::Display();
  ZRDisplay_920::DisplayB("Frequency weight indicator", fbFreqWt);
  ZRDisplay_920::DisplayB("Regression weight indicator", fbRegWt);
  if (fdOnePassN > 0.0) {
    ZRDisplay_920::DisplayD("Weighted number of cases accumulated by UpdateOnePass", fdOnePassN);
    ZRDisplay_920::DisplayDV("Weighted sums accumulated by UpdateOnePass", fvOnePassSums);
    ZRDisplay_920::DisplayDVTR("Weighted sums of products accumulated by UpdateOnePass",
                               fmOnePassXProds.fvLowerTri, fmOnePassXProds.fnRows);
  }
  ZRDisplay_920::DisplayText(1, "ZRMeansXProducts display end");
}

}  // namespace ZRMath_920
