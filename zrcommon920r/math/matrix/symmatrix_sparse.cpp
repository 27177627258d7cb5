// Symmetric matrices built from sparse rows: the cross-product block of a sparse design
// (ZRSymMatrix::UpdateXXCornerBlock) and the outer products of one sparse row
// (ZRSparseVector's operations on a ZRSymMatrix).
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "zrcommon920r/math/matrix/detail/nothrow_alloc.h"
#include "zrcommon920r/math/matrix/sparsematrix.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace ZRMath_920 {

namespace {

// Offset of row i in the packed buffer.
inline std::size_t RowStart(int i) {
  return static_cast<std::size_t>(i) * static_cast<std::size_t>(i + 1) / 2;
}

// Flat index of (i, j) or (j, i), whichever lies in the lower triangle.
inline std::size_t Packed(int i, int j) {
  return i >= j ? RowStart(i) + j : RowStart(j) + i;
}

// a += w x x' for the n entries (idx[t] + off, val[t]); entries whose shifted index is
// outside 0 .. order - 1 are skipped. Element (a, b), a the later entry, gains
// (w * val[a]) * val[b], the product UpdateXX forms, so a row of the dense design adds the
// same numbers in the same order.
void AddPairsOuter(double * a, int order, int off, const int * idx, const double * val, int n,
                   double w) {
  for (int t = 0; t < n; ++t) {
    const std::int64_t rt = static_cast<std::int64_t>(idx[t]) + off;
    if (rt < off || rt >= order) continue;
    const double wxt = w * val[t];
    for (int s = 0; s <= t; ++s) {
      const std::int64_t rs = static_cast<std::int64_t>(idx[s]) + off;
      if (rs < off || rs >= order) continue;
      a[Packed(static_cast<int>(rt), static_cast<int>(rs))] += wxt * val[s];
    }
  }
}

}  // namespace

// ---------------------------------------------------------------------------------------
// ZRSymMatrix: the cross-product block of a sparse design

bool ZRSymMatrix::UpdateXXCornerBlock(const ZRSparseRectMatrix & R, const ZRSymMatrix & S) {
  const int n = R.GetNRows(), q = R.GetNCols();
  if (!IsValidMatrix() || !S.IsValidMatrix() || !R.IsValidMatrix() || n != S.fnRows || q > fnRows) {
    return false;
  }
  std::vector<std::vector<int>> rows;
  std::vector<std::vector<double>> vals;
  if (!R.GetSparseMatrixColumns(rows, vals)) return false;
  std::vector<double> y;
  if (!matrix_detail::AssignNoThrow(y, static_cast<std::size_t>(n), 0.0)) return false;
  const int off = fnRows - q;
  const double * s = S.fvLowerTri.data();
  for (int b = 0; b < q; ++b) {
    // y = S r_b, r_b column b of R; then column a of R times y for a >= b.
    std::fill(y.begin(), y.end(), 0.0);
    for (std::size_t e = 0; e < rows[b].size(); ++e) {
      const int r = rows[b][e];
      const double x = vals[b][e];
      const double * srow = s + RowStart(r);
      for (int t = 0; t <= r; ++t) y[t] += srow[t] * x;
      for (int t = r + 1; t < n; ++t) y[t] += s[RowStart(t) + r] * x;
    }
    for (int a = b; a < q; ++a) {
      double sum = 0.0;
      for (std::size_t e = 0; e < rows[a].size(); ++e) sum += vals[a][e] * y[rows[a][e]];
      fvLowerTri[RowStart(off + a) + off + b] += sum;
    }
  }
  return true;
}

bool ZRSymMatrix::UpdateXXCornerBlock(const ZRSparseRectMatrix & R, const std::vector<double> & w) {
  const int n = R.GetNRows(), q = R.GetNCols();
  if (!IsValidMatrix() || !R.IsValidMatrix() || n < 1 || q > fnRows ||
      w.size() != static_cast<std::size_t>(n)) {
    return false;
  }
  const int nz = R.GetNNZRowElements();
  const int *idx = nullptr, *first = nullptr;
  const double *val = nullptr, *firstVal = nullptr;
  R.GetRow(0, first, firstVal);
  // Rows lie end to end in R's arrays, so the whole design is one run of n * nz slots.
  const std::size_t slots = static_cast<std::size_t>(n) * nz;
  bool any = false;
  for (std::size_t k = 0; k < slots && !any; ++k) any = first[k] >= 0 && first[k] < q;
  // Intended: no stored element is false, as for the column lists of the S form.
  if (!any) return false;
  const int off = fnRows - q;
  double * a = fvLowerTri.data();
  for (int r = 0; r < n; ++r) {
    idx = first + static_cast<std::size_t>(r) * nz;
    val = firstVal + static_cast<std::size_t>(r) * nz;
    // Intended: rows are walked, not the column lists, which gives UpdateXX's sums.
    AddPairsOuter(a, off + q, off, idx, val, nz, w[r]);
  }
  return true;
}

// ---------------------------------------------------------------------------------------
// ZRSparseVector: outer products into a symmetric matrix

void ZRSparseVector::QuadraticOuterProduct(ZRSymMatrix & S) const {
  const int size = GetMinVecSize();
  if (size < 0 || !S.SetNRows(size, true) || S.GetNRows() != size) return;
  AddPairsOuter(S.fvLowerTri.data(), size, 0, fvIndices->data(), fvValues->data(), UsableCount(),
                1.0);
}

void ZRSparseVector::QuadraticOuterProductIncr(ZRSymMatrix & S, double w) const {
  const int size = GetMinVecSize();
  if (size < 0 || size > S.GetNRows()) return;
  AddPairsOuter(S.fvLowerTri.data(), S.GetNRows(), 0, fvIndices->data(), fvValues->data(),
                UsableCount(), w);
}

bool ZRSparseVector::QuadraticOuterProductPartIncr(ZRSymMatrix & S, int start, double w) const {
  if (start < 0 || fnCount < 1 ||
      static_cast<std::int64_t>((*fvIndices)[fnCount - 1]) + start >= S.GetNRows()) {
    return false;
  }
  AddPairsOuter(S.fvLowerTri.data(), S.GetNRows(), start, fvIndices->data(), fvValues->data(),
                UsableCount(), w);
  return true;
}

bool ZRSparseVector::IncrementRowPart(ZRSymMatrix & S, int row, int start, double w) const {
  const int order = S.GetNRows();
  if (row < 0 || start < 0 || row >= order || fnCount < 1 ||
      static_cast<std::int64_t>((*fvIndices)[fnCount - 1]) + start >= order) {
    return false;
  }
  const int n = UsableCount();
  for (int t = 0; t < n; ++t) {
    const std::int64_t c = static_cast<std::int64_t>((*fvIndices)[t]) + start;
    if (c >= start && c < order) {
      S.fvLowerTri[Packed(row, static_cast<int>(c))] += w * (*fvValues)[t];
    }
  }
  return true;
}

}  // namespace ZRMath_920
