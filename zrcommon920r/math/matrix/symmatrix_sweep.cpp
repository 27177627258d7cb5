// ZRSymMatrix: the sweep operator on the packed lower triangle, the many-pivot sweeps
// built on it, and the generalised inverse through Cholesky factors (CholInverse).
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <typeinfo>
#include <vector>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/matrix/detail/nothrow_alloc.h"
#include "zrcommon920r/math/matrix/detail/packed_kernels.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace ZRMath_920 {

namespace {

// Offset of row i in the packed buffer, in size_t so that no order can overflow it.
inline std::size_t RowStart(int i) {
  return static_cast<std::size_t>(i) * static_cast<std::size_t>(i + 1) / 2;
}

// Offset of element (i, j) for any order of the two indices.
inline std::size_t At(int i, int j) {
  return i >= j ? RowStart(i) + static_cast<std::size_t>(j)
                : RowStart(j) + static_cast<std::size_t>(i);
}

// No reference diagonal value is negative. A NaN is not: it is data (the diagonal of a
// cross-product matrix holding a NaN), and it refuses its own pivot in the sweep.
bool AnyNegative(const double * diag, int n) {
  for (int i = 0; i < n; ++i)
    if (diag[i] < 0.0) return true;
  return false;
}

// The argument tests of a checked sweep: k a row, tol above 0, enough bits in set, and no
// negative reference diagonal value.
bool SweepArgsOk(int n, int k, double tol, const double * diag, const ZRBitSet & set) {
  if (k < 0 || k >= n || !(tol > 0.0) || set.Size() < n || diag == nullptr) return false;
  return !AnyNegative(diag, n);
}

// The two forward tests, in this order: the pivot test, then the variance inflation of
// every entered row; the first failure refuses the pivot.
bool ForwardPivotAccepted(const double * a, int n, int k, double d, double tol, const double * diag,
                          const ZRBitSet & set) {
  // Refused when tol * diag[k] >= d; a NaN pivot or reference value is refused as well, so
  // that a NaN in the matrix shows as an aliased row.
  if (!(tol * diag[k] < d)) return false;
  const int bits = set.Size() < n ? set.Size() : n;
  for (int j = 0; j < bits; ++j) {
    if (!set.IsIn(j)) continue;
    const double ajk = a[At(j, k)];
    const double after = a[RowStart(j) + static_cast<std::size_t>(j)] - ajk / d * ajk;
    if (!(after * tol * diag[j] > -1.0)) return false;
  }
  return true;
}

// Rescales the element a(i, k) of the pivot column by m and returns the row multiplier
// f: -old for a forward sweep (r < 0), old otherwise.
inline double Rescale(double & aik, double m, bool negative) {
  const double old = aik;
  aik = old * m;
  return negative ? -old : old;
}

// The update of a sweep as one loop over rows and one over columns; every element
// (i, j), i, j != k, gets a(i, j) += f_i * a(j, k) with the rescaled a(j, k).
void UpdatePlain(double * a, int n, int k, double m, bool negative) {
  for (int i = 0; i < n; ++i) {
    if (i == k) continue;
    const double f = Rescale(a[At(i, k)], m, negative);
    double * row = a + RowStart(i);
    for (int j = 0; j <= i; ++j) {
      if (j == k) continue;
      row[j] += f * a[At(j, k)];
    }
  }
}

// The same update, blocked. Rows before k and rows after k run as two stretches; in each,
// four rows are rescaled together and then updated in one pass over the columns, so that
// every loaded a(j, k) serves four rows. Each element still gets exactly one
// a(i, j) += f_i * a(j, k) with the same operands as in UpdatePlain, so the results are
// equal bit for bit.
void UpdateBlocked(double * a, int n, int k, double m, bool negative) {
  double * const col = a + RowStart(k);  // col[j] = a(j, k) for j < k, unit stride
  int i = 0;
  for (; i + 4 <= k; i += 4) {
    double * const r0 = a + RowStart(i);
    double * const r1 = r0 + (i + 1);
    double * const r2 = r1 + (i + 2);
    double * const r3 = r2 + (i + 3);
    const double f0 = Rescale(col[i], m, negative);
    const double f1 = Rescale(col[i + 1], m, negative);
    const double f2 = Rescale(col[i + 2], m, negative);
    const double f3 = Rescale(col[i + 3], m, negative);
    for (int j = 0; j <= i; ++j) {
      const double c = col[j];
      r0[j] += f0 * c;
      r1[j] += f1 * c;
      r2[j] += f2 * c;
      r3[j] += f3 * c;
    }
    // The triangle to the right of column i within the four rows.
    const double c1 = col[i + 1], c2 = col[i + 2], c3 = col[i + 3];
    r1[i + 1] += f1 * c1;
    r2[i + 1] += f2 * c1;
    r3[i + 1] += f3 * c1;
    r2[i + 2] += f2 * c2;
    r3[i + 2] += f3 * c2;
    r3[i + 3] += f3 * c3;
  }
  for (; i < k; ++i) {
    double * const row = a + RowStart(i);
    const double f = Rescale(col[i], m, negative);
    for (int j = 0; j <= i; ++j) row[j] += f * col[j];
  }

  // Rows after k: column k is col[] left of the pivot and a growing stride below it.
  for (i = k + 1; i + 4 <= n; i += 4) {
    double * const r0 = a + RowStart(i);
    double * const r1 = r0 + (i + 1);
    double * const r2 = r1 + (i + 2);
    double * const r3 = r2 + (i + 3);
    const double f0 = Rescale(r0[k], m, negative);
    const double f1 = Rescale(r1[k], m, negative);
    const double f2 = Rescale(r2[k], m, negative);
    const double f3 = Rescale(r3[k], m, negative);
    for (int j = 0; j < k; ++j) {
      const double c = col[j];
      r0[j] += f0 * c;
      r1[j] += f1 * c;
      r2[j] += f2 * c;
      r3[j] += f3 * c;
    }
    std::size_t at = RowStart(k + 1) + static_cast<std::size_t>(k);  // a(k + 1, k)
    for (int j = k + 1; j < i; at += static_cast<std::size_t>(++j)) {
      const double c = a[at];
      r0[j] += f0 * c;
      r1[j] += f1 * c;
      r2[j] += f2 * c;
      r3[j] += f3 * c;
    }
    const double c0 = r0[k], c1 = r1[k], c2 = r2[k], c3 = r3[k];
    r0[i] += f0 * c0;
    r1[i] += f1 * c0;
    r2[i] += f2 * c0;
    r3[i] += f3 * c0;
    r1[i + 1] += f1 * c1;
    r2[i + 1] += f2 * c1;
    r3[i + 1] += f3 * c1;
    r2[i + 2] += f2 * c2;
    r3[i + 2] += f3 * c2;
    r3[i + 3] += f3 * c3;
  }
  for (; i < n; ++i) {
    double * const row = a + RowStart(i);
    const double f = Rescale(row[k], m, negative);
    for (int j = 0; j < k; ++j) row[j] += f * col[j];
    std::size_t at = RowStart(k + 1) + static_cast<std::size_t>(k);
    for (int j = k + 1; j <= i; at += static_cast<std::size_t>(++j)) row[j] += f * a[at];
  }
}

// Pivots applied together by the many-pivot sweeps: the panel of one block holds, for
// each accepted pivot, its row multipliers and its rescaled column, 2 n doubles each.
constexpr int kSweepBlock = 16;
// Below this order the triangle stays in cache between pivots, and one pass per pivot
// measured faster than the panel's extra bookkeeping (equal at about 180).
constexpr int kSweepBlockedFrom = 192;

// The saved pivots of one block: for the q-th accepted pivot piv[q], f + q n holds the
// multipliers f_i and c + q n the rescaled column a(i, piv[q]) of that pivot's update.
struct SweepPanel {
  double * f;
  double * c;
  int n;
  int piv[kSweepBlock];
  int count;
};

// Applies saved pivots q = qBeg .. count - 1, in that order, to row[jBeg .. jEnd) of row
// i: row[j] += f_i * c_j for each, the row multiplier being that of the larger index i.
// Each element adds its products one by one in pivot order; long stretches go to the
// vector kernel, which keeps them in registers over all the pivots.
void ApplySaved(const SweepPanel & p, double * row, int i, int jBeg, int jEnd, int qBeg) {
  const std::size_t n = static_cast<std::size_t>(p.n);
  const std::size_t o = static_cast<std::size_t>(qBeg) * n;
  if (jEnd - jBeg >= 8) {
    matrix_detail::AddSavedPivots(row, jBeg, jEnd, p.f + o + i, p.c + o, n, p.count - qBeg);
    return;
  }
  for (int j = jBeg; j < jEnd; ++j) {
    double x = row[j];
    for (int q = qBeg; q < p.count; ++q) {
      const std::size_t oq = static_cast<std::size_t>(q) * n;
      x += p.f[oq + i] * p.c[oq + j];
    }
    row[j] = x;
  }
}

// The first saved pivot after index j (count when there is none).
int FirstSavedAfter(const SweepPanel & p, int j) {
  int q = 0;
  while (q < p.count && p.piv[q] <= j) ++q;
  return q;
}

// Brings row and column k up to date with the pivots saved so far in the block [k0, k),
// so that the pivot test and the update of k read the values a pivot-by-pivot sweep
// would. An element (k, j) with j inside the block was last brought up to date when j
// was pivoted, so only the pivots after j are owed to it. Diagonals are kept current as
// each pivot is applied and are skipped here.
void CatchUpPivotLine(double * a, const SweepPanel & p, int k0, int k) {
  if (p.count == 0) return;
  double * const rowK = a + RowStart(k);
  ApplySaved(p, rowK, k, 0, k0, 0);
  for (int j = k0; j < k; ++j) {
    for (int q = FirstSavedAfter(p, j); q < p.count; ++q) {
      const std::size_t o = static_cast<std::size_t>(q) * static_cast<std::size_t>(p.n);
      rowK[j] += p.f[o + k] * p.c[o + j];
    }
  }
  std::size_t at = RowStart(k + 1) + static_cast<std::size_t>(k);  // a(k + 1, k)
  for (int i = k + 1; i < p.n; at += static_cast<std::size_t>(++i)) {
    double x = a[at];
    for (int q = 0; q < p.count; ++q) {
      const std::size_t o = static_cast<std::size_t>(q) * static_cast<std::size_t>(p.n);
      x += p.f[o + i] * p.c[o + k];
    }
    a[at] = x;
  }
}

// Pivot k of a block, its row and column being current: the tests of a forward pivot,
// then the rescaling of the pivot line (saved in the panel) and the update of every
// other diagonal element. Returns false, with nothing changed, when the pivot is refused.
bool PivotInBlock(double * a, int n, int k, double tol, const double * diag, ZRBitSet & set,
                  SweepPanel & p) {
  const std::size_t kk = RowStart(k) + static_cast<std::size_t>(k);
  const double d = a[kk];
  const bool forward = !set.IsIn(k);
  if (forward && !ForwardPivotAccepted(a, n, k, d, tol, diag, set)) return false;
  const double r = -1.0 / d;
  const double m = std::fabs(r);
  const bool negative = r < 0.0;
  a[kk] = r;
  const std::size_t o = static_cast<std::size_t>(p.count) * static_cast<std::size_t>(n);
  double * const f = p.f + o;
  double * const c = p.c + o;
  double * const rowK = a + RowStart(k);
  for (int i = 0; i < k; ++i) {
    f[i] = Rescale(rowK[i], m, negative);
    c[i] = rowK[i];
  }
  f[k] = 0.0;
  c[k] = 0.0;
  std::size_t at = RowStart(k + 1) + static_cast<std::size_t>(k);
  for (int i = k + 1; i < n; at += static_cast<std::size_t>(++i)) {
    f[i] = Rescale(a[at], m, negative);
    c[i] = a[at];
  }
  std::size_t ii = 0;
  for (int i = 0; i < n; ii += static_cast<std::size_t>(i) + 2, ++i)
    if (i != k) a[ii] += f[i] * c[i];
  set.Set(k, forward);
  p.piv[p.count++] = k;
  return true;
}

// Applies all saved pivots to row[jBeg .. jEnd) of the four rows i .. i + 3 together.
void ApplySaved4(const SweepPanel & p, double * a, int i, int jBeg, int jEnd) {
  if (jEnd <= jBeg) return;
  double * const rows[4] = {a + RowStart(i), a + RowStart(i + 1), a + RowStart(i + 2),
                            a + RowStart(i + 3)};
  matrix_detail::AddSavedPivots4(rows, jBeg, jEnd, p.f + i, p.c, static_cast<std::size_t>(p.n),
                                 p.count);
}

// Settles the block [k0, k1) once all its pivots were taken: every off-diagonal element
// receives the saved pivots it is still owed, in pivot order. Elements in a pivot line
// of the block were current when that line was pivoted, and owe only later pivots. Rows
// outside the block go four at a time over the columns they share; each element still
// receives its pivots in one call, in order.
void FinishBlock(double * a, const SweepPanel & p, int k0, int k1) {
  if (p.count == 0) return;
  const int n = p.n;
  int i = 0;
  for (; i + 4 <= k0; i += 4) {
    ApplySaved4(p, a, i, 0, i);
    for (int t = 1; t < 4; ++t) ApplySaved(p, a + RowStart(i + t), i + t, i, i + t, 0);
  }
  for (; i < k1; ++i) {
    double * const row = a + RowStart(i);
    ApplySaved(p, row, i, 0, i, i < k0 ? 0 : FirstSavedAfter(p, i));
  }
  for (; i < n; ++i) {
    const bool four = i + 4 <= n;
    const int rows = four ? 4 : 1;
    if (four) {
      ApplySaved4(p, a, i, 0, k0);
      ApplySaved4(p, a, i, k1, i);
    }
    for (int t = 0; t < rows; ++t) {
      double * const row = a + RowStart(i + t);
      if (!four) ApplySaved(p, row, i + t, 0, k0, 0);
      for (int j = k0; j < k1; ++j) ApplySaved(p, row, i + t, j, j + 1, FirstSavedAfter(p, j));
      ApplySaved(p, row, i + t, four ? i : k1, i + t, 0);
    }
    i += rows - 1;
  }
}

// Forward sweeps of rows 0 .. count - 1 in order, several pivots to a pass over the
// triangle, with results equal bit for bit to calling Sweep on each row in turn.
// onPivot(k, swept, pivotBefore, pivotAfter) runs after each row, in row order. False,
// with nothing done, for an order below kSweepBlockedFrom or when the panel could not be
// allocated; the caller then sweeps row by row.
template <typename OnPivot>
bool SweepRowsBlocked(double * a, int n, int count, double tol, const double * diag, ZRBitSet & set,
                      OnPivot onPivot) {
  if (n < kSweepBlockedFrom) return false;
  std::vector<double> panel;
  const std::size_t width = static_cast<std::size_t>(n) * kSweepBlock;
  if (!matrix_detail::ResizeNoThrow(panel, 2 * width)) return false;
  SweepPanel p{panel.data(), panel.data() + width, n, {}, 0};
  for (int k0 = 0; k0 < count; k0 += kSweepBlock) {
    const int k1 = std::min(count, k0 + kSweepBlock);
    p.count = 0;
    for (int k = k0; k < k1; ++k) {
      CatchUpPivotLine(a, p, k0, k);
      const double before = a[RowStart(k) + static_cast<std::size_t>(k)];
      const bool swept = PivotInBlock(a, n, k, tol, diag, set, p);
      onPivot(k, swept, before, a[RowStart(k) + static_cast<std::size_t>(k)]);
    }
    FinishBlock(a, p, k0, k1);
  }
  return true;
}

// Every element of diag below 1.0 becomes 1.0, which makes the pivot test absolute for
// rows with small variance.
void RaiseToOne(double * diag, int n) {
  for (int i = 0; i < n; ++i)
    if (diag[i] < 1.0) diag[i] = 1.0;
}

// The dense matrix behind out, holding a copy of src unless it is src itself. Null, with
// out unchanged, when out isn't dense, src is invalid or diag is shorter than src; null
// also when the copy could not be allocated (out then has fnRows -1).
ZRSymMatrix * CholTarget(const ZRSymMatrix & src, const std::vector<double> & diag,
                         IZRSymMatrix & out) {
  if (out.GetType() != IZRSymMatrix::kDenseSymMatrix) return nullptr;
  ZRSymMatrix * const dense = dynamic_cast<ZRSymMatrix *>(&out);
  if (dense == nullptr || !src.IsValidMatrix()) return nullptr;
  if (diag.size() < static_cast<std::size_t>(src.GetNRows())) return nullptr;
  if (dense != &src) *dense = src;
  return dense->IsValidMatrix() ? dense : nullptr;
}

// Inverts the factor held in out and forms L^-T L^-1; the rank is n minus the redundant.
int FinishCholInverse(ZRSymMatrix & out, int n, int redundant) {
  double det[2];
  out.LTDetInverse(det, 10);
  out.LTLTransL();
  return n - redundant;
}

}  // namespace

bool ZRSymMatrix::Sweep(int k, double tol, const double * diag, ZRBitSet & set, bool check) {
  const int n = fnRows;
  if (check && !SweepArgsOk(n, k, tol, diag, set)) return false;
  // A bad k would address outside the buffer, so it is refused even unchecked.
  if (k < 0 || k >= n) return false;
  double * const a = fvLowerTri.data();
  const std::size_t kk = RowStart(k) + static_cast<std::size_t>(k);
  const double d = a[kk];
  const bool forward = !set.IsIn(k);
  if (forward && !ForwardPivotAccepted(a, n, k, d, tol, diag, set)) return false;
  const double r = -1.0 / d;
  a[kk] = r;
  UpdateBlocked(a, n, k, std::fabs(r), r < 0.0);
  set.Set(k, forward);  // toggles the bit when k is inside the set, nothing otherwise
  return true;
}

bool ZRSymMatrix::Sweep(int k, double tol, const std::vector<double> & diag, ZRBitSet & set,
                        bool check) {
  if (check && (fnRows < 0 || diag.size() < static_cast<std::size_t>(fnRows))) return false;
  return Sweep(k, tol, diag.data(), set, check);
}

bool ZRSymMatrix::SweepOrig(int k, double tol, const std::vector<double> & diag, ZRBitSet & set,
                            bool check) {
  const int n = fnRows;
  if (check && (n < 0 || diag.size() < static_cast<std::size_t>(n) ||
                !SweepArgsOk(n, k, tol, diag.data(), set)))
    return false;
  if (k < 0 || k >= n) return false;
  double * const a = fvLowerTri.data();
  const std::size_t kk = RowStart(k) + static_cast<std::size_t>(k);
  const double d = a[kk];
  const bool forward = !set.IsIn(k);
  if (forward && !ForwardPivotAccepted(a, n, k, d, tol, diag.data(), set)) return false;
  const double r = -1.0 / d;
  a[kk] = r;
  UpdatePlain(a, n, k, std::fabs(r), r < 0.0);
  set.Set(k, forward);
  return true;
}

bool ZRSymMatrix::SweepOnMany(int n, double tol, bool logPivot, ZRBitSet & set, double & logDet,
                              bool check, double * diag) {
  if (fnRows < 0) return false;
  std::vector<double> local;
  if (diag == nullptr) {
    GetDiagonal(local);
    diag = local.data();
  }
  if (set.Size() == 0) set.Resize(fnRows, false);
  if (check) {
    if (n < 1 || n > fnRows || !(tol > 0.0) || AnyNegative(diag, fnRows) || set.Size() < n)
      return false;
    RaiseToOne(diag, fnRows);
  }
  logDet = 0.0;
  for (int k = 0; k < n; ++k) set.Set(k, false);
  const auto addLog = [&](int, bool swept, double before, double after) {
    const double p = logPivot ? before : -after;
    if (swept && p > 0.0) logDet += std::log(p);
  };
  // Rows from fnRows on are refused by Sweep and add nothing.
  const int count = std::min(n, fnRows);
  if (SweepRowsBlocked(fvLowerTri.data(), fnRows, count, tol, diag, set, addLog)) return true;
  for (int k = 0; k < count; ++k) {
    const double before = fvLowerTri[RowStart(k) + static_cast<std::size_t>(k)];
    const bool swept = Sweep(k, tol, diag, set, false);
    addLog(k, swept, before, fvLowerTri[RowStart(k) + static_cast<std::size_t>(k)]);
  }
  return true;
}

bool ZRSymMatrix::SweepOnSelected(const std::vector<int> & idx, double tol, ZRBitSet & set,
                                  bool check, double * diag) {
  if (fnRows < 0) return false;
  std::vector<double> local;
  if (diag == nullptr) {
    GetDiagonal(local);
    diag = local.data();
  }
  if (set.Size() == 0) set.Resize(fnRows, false);
  if (check) {
    if (AnyNegative(diag, fnRows) || set.Size() < fnRows) return false;
    for (int k : idx)
      if (k < 0 || k >= fnRows) return false;
    RaiseToOne(diag, fnRows);
  }
  // Intended: set is not cleared, so a listed row that is already entered is swept out.
  for (int k : idx) Sweep(k, tol, diag, set, false);
  return true;
}

bool ZRSymMatrix::SweepOnAll(double tol, ZRBitSet & set, bool check, bool zeroRedundant,
                             bool changeSign, double * diag) {
  if (fnRows < 0) return false;
  std::vector<double> local;
  if (diag == nullptr) {
    GetDiagonal(local);
    diag = local.data();
  }
  if (set.Size() != fnRows) set.Resize(fnRows, false);
  set.Clear();
  bool ok = true;
  if (check) {
    ok = tol > 0.0 && !AnyNegative(diag, fnRows);
    if (ok) RaiseToOne(diag, fnRows);
  }
  const auto ignore = [](int, bool, double, double) {};
  if (ok && !SweepRowsBlocked(fvLowerTri.data(), fnRows, fnRows, tol, diag, set, ignore))
    for (int k = 0; k < fnRows; ++k) Sweep(k, tol, diag, set, false);
  // Intended: the tidying runs after a refused call too; with no row entered,
  // zeroRedundant then clears the whole matrix.
  if (zeroRedundant && set.InSet() < fnRows) ZeroOutRedundant(set);
  if (changeSign) {
    if (typeid(*this) == typeid(ZRSymMatrix)) {
      for (double & x : fvLowerTri) x *= -1.0;
    } else {
      ChangeSign();
    }
  }
  return ok;
}

int ZRSymMatrix::CholInverse(const std::vector<double> & diag, double tol,
                             IZRSymMatrix & out) const {
  ZRSymMatrix * const l = CholTarget(*this, diag, out);
  if (l == nullptr) return -1;
  const int n = fnRows;
  const int redundant = l->LTChol(diag, tol, false);
  if (redundant < 0) return redundant;
  return FinishCholInverse(*l, n, redundant);
}

int ZRSymMatrix::CholInverse(const std::vector<double> & diag, double tol, IZRSymMatrix & out,
                             ZRBitSet & set) const {
  ZRSymMatrix * const l = CholTarget(*this, diag, out);
  if (l == nullptr) return -1;
  const int n = fnRows;
  const int redundant = l->LTChol(diag, tol, set, false);
  if (redundant < 0) return redundant;
  return FinishCholInverse(*l, n, redundant);
}

int ZRSymMatrix::CholInverse(const std::vector<double> & diag, double tol, IZRSymMatrix & out,
                             double & minPivot) const {
  minPivot = ZRCommon_920::kSysMisValue;
  ZRSymMatrix * const l = CholTarget(*this, diag, out);
  if (l == nullptr) return -1;
  const int n = fnRows;
  const int redundant = l->LTChol(diag, tol, false);
  if (redundant < 0) return redundant;
  for (int i = 0; i < n; ++i) {
    const double lii = l->fvLowerTri[RowStart(i) + static_cast<std::size_t>(i)];
    if (i == 0 || lii < minPivot) minPivot = lii;
  }
  return FinishCholInverse(*l, n, redundant);
}

}  // namespace ZRMath_920
