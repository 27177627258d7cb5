// ZRSymMatrix: rank-one updates of the packed lower triangle, the per-case paths of the
// cross-product accumulators (nothing here allocates except SetToVV and SetToVW, which
// resize), and the overwriting outer products.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "zrcommon920r/math/matrix/detail/packed_kernels.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace ZRMath_920 {

namespace {

// Offset of row i in the packed buffer, in size_t so that no order can overflow it.
inline std::size_t RowStart(int i) {
  return static_cast<std::size_t>(i) * static_cast<std::size_t>(i + 1) / 2;
}

// Largest order whose packed triangle still has an int count of elements.
constexpr int kMaxOrder = 65535;

// a += w x x' on the first n rows; a zero element of x skips its row. Element (i, j) gains
// (w x_i) x_j, on the widest vectors the processor has.
inline void AddOuter(double * a, const double * x, int n, double w) {
  matrix_detail::AddOuterPacked(a, x, n, w);
}

// Whether idx and val describe a sparse vector whose indices, shifted by off, ascend
// strictly inside 0 .. n - 1.
bool SparseFits(int off, const std::vector<int> & idx, const std::vector<double> & val, int n) {
  if (idx.size() != val.size()) return false;
  std::int64_t last = -1;
  for (int t : idx) {
    const std::int64_t at = static_cast<std::int64_t>(off) + t;
    if (at <= last || at >= n) return false;
    last = at;
  }
  return true;
}

// a += w x x' for the sparse x (idx + off, val), indices checked by SparseFits; a zero
// value skips its row.
void AddSparseOuter(double * a, int off, const std::vector<int> & idx,
                    const std::vector<double> & val, double w) {
  const std::size_t nnz = idx.size();
  for (std::size_t t = 0; t < nnz; ++t) {
    if (val[t] == 0.0) continue;
    const double wxt = w * val[t];
    double * const row = a + RowStart(off + idx[t]);
    for (std::size_t s = 0; s <= t; ++s) row[off + idx[s]] += wxt * val[s];
  }
}

}  // namespace

bool ZRSymMatrix::UpdateXX(const std::vector<double> & x, double w) {
  if (!(w > 0.0) || fnRows < 0 || x.size() != static_cast<std::size_t>(fnRows)) return false;
  AddOuter(fvLowerTri.data(), x.data(), fnRows, w);
  return true;
}

bool ZRSymMatrix::UpdateXXPosNegW(const std::vector<double> & x, double w) {
  if (fnRows < 0 || x.size() != static_cast<std::size_t>(fnRows)) return false;
  AddOuter(fvLowerTri.data(), x.data(), fnRows, w);
  return true;
}

bool ZRSymMatrix::UpdateXXSparse(int off, const std::vector<int> & idx,
                                 const std::vector<double> & val, double w) {
  if (!(w > 0.0) || fnRows < 0 || !SparseFits(off, idx, val, fnRows)) return false;
  AddSparseOuter(fvLowerTri.data(), off, idx, val, w);
  return true;
}

bool ZRSymMatrix::UpdateXXCornerSparse(int off, const std::vector<int> & idx,
                                       const std::vector<double> & val, double w, int n) {
  if (!(w > 0.0) || n < 1 || off < 0 || fnRows < 0 || off > fnRows - n) return false;
  if (!SparseFits(0, idx, val, n)) return false;
  AddSparseOuter(fvLowerTri.data(), off, idx, val, w);
  return true;
}

bool ZRSymMatrix::UpdateXXNonRedun(const std::vector<double> & x, const ZRBitSet & set, double w) {
  if (!(w > 0.0) || fnRows < 0 || x.size() != static_cast<std::size_t>(fnRows) ||
      set.Size() < fnRows)
    return false;
  double * const a = fvLowerTri.data();
  for (int i = 0; i < fnRows; ++i) {
    if (x[i] == 0.0 || !set.IsIn(i)) continue;
    const double wxi = w * x[i];
    double * const row = a + RowStart(i);
    for (int j = 0; j <= i; ++j)
      if (set.IsIn(j)) row[j] += wxi * x[j];
  }
  return true;
}

void ZRSymMatrix::UpdateZZ(const std::vector<double> & z, double y, double w) {
  if (fnRows < 1 || z.size() != static_cast<std::size_t>(fnRows - 1)) return;
  const int p = fnRows - 1;
  AddOuter(fvLowerTri.data(), z.data(), p, w);
  if (y == 0.0) return;
  const double wy = w * y;
  double * const last = fvLowerTri.data() + RowStart(p);
  for (int j = 0; j < p; ++j) last[j] += wy * z[j];
  last[p] += wy * y;
}

void ZRSymMatrix::IncrementByVV(const double * x, double w) {
  if (x == nullptr || fnRows < 1) return;
  AddOuter(fvLowerTri.data(), x, fnRows, w);
}

bool ZRSymMatrix::SetToVV(const std::vector<double> & x) {
  if (x.size() > static_cast<std::size_t>(kMaxOrder)) return false;
  const int n = static_cast<int>(x.size());
  if (!Resize(n) || fnRows != n) return false;
  double * const a = fvLowerTri.data();
  for (int i = 0; i < n; ++i) {
    double * const row = a + RowStart(i);
    for (int j = 0; j <= i; ++j) row[j] = x[i] * x[j];
  }
  return true;
}

bool ZRSymMatrix::SetToVW(const std::vector<double> & v, const std::vector<double> & w) {
  if (v.size() != w.size() || v.size() > static_cast<std::size_t>(kMaxOrder)) return false;
  const int n = static_cast<int>(v.size());
  if (!Resize(n) || fnRows != n) return false;
  double * const a = fvLowerTri.data();
  for (int i = 0; i < n; ++i) {
    double * const row = a + RowStart(i);
    for (int j = 0; j <= i; ++j) row[j] = v[i] * w[j] + w[i] * v[j];
  }
  return true;
}

bool ZRSymMatrix::UpdateXXMat2(const ZRRectMatrix & A, const ZRRectMatrix & B, double w) {
  if (!(w > 0.0) || !A.IsValidMatrix() || !B.IsValidMatrix() || fnRows < 0) return false;
  const int p = A.GetNCols(), q = B.GetNCols();
  if (p > fnRows || q != fnRows - p || A.GetNRows() != B.GetNRows()) return false;
  double * const a = fvLowerTri.data();
  for (int i = 0; i < p; ++i) {
    double * const row = a + RowStart(i);
    for (int j = 0; j <= i; ++j) row[j] += w * A.DotProductCol(i, j);
  }
  for (int i = 0; i < q; ++i) {
    double * const row = a + RowStart(p + i);
    for (int j = 0; j < p; ++j) row[j] += w * B.DotProductColCol(i, A, j);
    for (int j = 0; j <= i; ++j) row[p + j] += w * B.DotProductCol(i, j);
  }
  return true;
}

}  // namespace ZRMath_920
