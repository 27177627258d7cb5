// ZRSymMatrix: the Cholesky family. Factorisation with redundant pivots, determinants,
// the inverse through the factor, substitutions, rank-one update and downdate, the
// solution of indefinite systems and the shift to a positive definite matrix.
#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdint>
#include <new>
#include <stdexcept>
#include <vector>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/dist/mathfun.h"
#include "zrcommon920r/math/matrix/detail/linpack_util.h"
#include "zrcommon920r/math/matrix/detail/nothrow_alloc.h"
#include "zrcommon920r/math/matrix/detail/packed_kernels.h"
#include "zrcommon920r/math/matrix/kernels.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace ZRMath_920 {

namespace {

using matrix_detail::AssignNoThrow;
using matrix_detail::CopyNoThrow;
using matrix_detail::ResizeNoThrow;

using ZRCommon_920::kSysMisValue;

// Determinants are kept as det[0] x 10^det[1] with 1 <= |det[0]| < 10, brought there by
// the LINPACK files' NormaliseDet (a zero or non-finite det[0] is left as it is).
using linpack_detail::NormaliseDet;

// TransformToPositiveDefinite: the share of the largest diagonal element added on top of
// the shift found, and how many steps the growing phase may take beyond 2 n.
constexpr double kShiftMargin = 0.01;
constexpr int kMaxExtraShiftSteps = 64;
// Bisection halvings allowed: the width hi - lo halves each time, and from the largest
// double to below the smallest subnormal takes 2098 halvings.
constexpr int kMaxBisections = 2200;

// LTCholDowndate: a non-positive diagonal element of the factor is replaced by this share
// of the largest one; with rescue, the norm of the solved vector is brought down to
// kRescueNorm by scaling the factor.
constexpr double kDiagRepair = 0.1;
constexpr double kRescueNorm = 0.9;

// Offset of element (i, 0) of the packed buffer, in std::size_t (i (i + 1) overflows an
// int from i = 46341 on).
inline std::size_t RowStart(int i) {
  return static_cast<std::size_t>(i) * (static_cast<std::size_t>(i) + 1) / 2;
}

// Rows handled together by the blocked factorisation (the dot-product tiles are 8 x 8).
constexpr int kRowBlock = 8;
// Rows handled together by the inverse of the factor and by L'L, and the other rows of L
// whose updates they receive in one pass.
constexpr int kInvRows = 8;
constexpr int kInvGroup = 8;

// Elements j >= jBeg of row i of the Cholesky factor (the earlier ones and all rows
// before i being final): L(i, j) = (a(i, j) - s) / L(j, j), s = sum_{k<j} L(i, k) L(j, k)
// summed from 0.0 in ascending k, or 0.0 when L(j, j) is 0.0; then the pivot
// x = a(i, i) - sum_{k<i} L(i, k)^2. Returns true, with L(i, i) = sqrt(x), when
// x > tol diag[i]; otherwise L(i, i) becomes 0.0.
bool FactorRowFrom(double * a, int i, int jBeg, const double * diag, double tol) {
  double * const rowI = a + RowStart(i);
  const double * rowJ = a + RowStart(jBeg);
  for (int j = jBeg; j < i; rowJ += j + 1, ++j) {
    double s = 0.0;
    for (int k = 0; k < j; ++k) s += rowI[k] * rowJ[k];
    const double ljj = rowJ[j];
    rowI[j] = ljj != 0.0 ? (rowI[j] - s) / ljj : 0.0;
  }
  double s = 0.0;
  for (int k = 0; k < i; ++k) s += rowI[k] * rowI[k];
  const double x = rowI[i] - s;
  // Strict: a pivot equal to tol x diag[i] is redundant.
  if (x > tol * diag[i]) {
    rowI[i] = std::sqrt(x);
    return true;
  }
  rowI[i] = 0.0;
  return false;
}

// Columns 0 .. i0 - 1 of the eight rows i0 .. i0 + 7 of the factor, all rows before i0
// being final. Eight columns at a time, the 64 dot products over the columns before the
// tile run side by side, each in its own accumulator in ascending k, on the block's
// finished columns (also held k-major in pack, 8 i0 doubles); they are then finished one
// column after another exactly as FactorRowFrom finishes them, and the new columns are
// packed.
void FactorTileRows(double * a, int i0, double * pack) {
  double * r[kRowBlock];
  for (int b = 0; b < kRowBlock; ++b) r[b] = a + RowStart(i0 + b);
  double s[kRowBlock * kRowBlock];
  for (int j0 = 0; j0 < i0; j0 += kRowBlock) {
    const double * c[kRowBlock];
    for (int b = 0; b < kRowBlock; ++b) c[b] = a + RowStart(j0 + b);
    matrix_detail::DotTile8x8(pack, r, c, j0, s);
    for (int jj = 0; jj < kRowBlock; ++jj) {
      const int j = j0 + jj;
      const double ljj = c[jj][j];
      for (int ii = 0; ii < kRowBlock; ++ii) {
        double t = s[kRowBlock * jj + ii];
        for (int k = j0; k < j; ++k) t += r[ii][k] * c[jj][k];
        r[ii][j] = ljj != 0.0 ? (r[ii][j] - t) / ljj : 0.0;
      }
    }
    for (int k = j0; k < j0 + kRowBlock; ++k)
      for (int ii = 0; ii < kRowBlock; ++ii) pack[kRowBlock * k + ii] = r[ii][k];
  }
}

// Cholesky factor in place of the packed symmetric matrix a of order n, by rows: for
// j < i, L(i, j) = (a(i, j) - sum_{k<j} L(i, k) L(j, k)) / L(j, j), or 0.0 when L(j, j) is
// 0.0; then x = a(i, i) - sum_{k<i} L(i, k)^2 and L(i, i) = sqrt(x) when x > tol diag[i],
// otherwise 0.0 (a redundant pivot, whose column below stays 0.0). Accepted pivots set
// their bit in set and are appended to idx when these are given; with limit >= 1 the
// factorisation stops once limit pivots were accepted. Returns the number of redundant
// pivots met. Each sum runs from 0.0 in ascending k whatever the schedule, so the blocked
// rows give the same bits as one row after another.
int FactorPacked(double * a, int n, const double * diag, double tol, ZRBitSet * set,
                 std::vector<int> * idx, int limit) {
  int redundant = 0, accepted = 0;
  int i = 0;
  // With a limit, rows after the last pivot taken must stay as they were, so no row is
  // started before the one above it is complete. Without the tiles' scratch, the rows go
  // one at a time, to the same bits.
  std::vector<double> pack;
  if (limit < 1 && n >= kRowBlock &&
      ResizeNoThrow(pack, static_cast<std::size_t>(kRowBlock) * static_cast<std::size_t>(n))) {
    for (; i + kRowBlock <= n; i += kRowBlock) {
      FactorTileRows(a, i, pack.data());
      for (int ii = i; ii < i + kRowBlock; ++ii) {
        if (FactorRowFrom(a, ii, i, diag, tol)) {
          ++accepted;
          if (set != nullptr) set->Set(ii, true);
          if (idx != nullptr) idx->push_back(ii);
        } else {
          ++redundant;
        }
      }
    }
  }
  for (; i < n; ++i) {
    if (FactorRowFrom(a, i, 0, diag, tol)) {
      ++accepted;
      if (set != nullptr) set->Set(i, true);
      if (idx != nullptr) idx->push_back(i);
      if (limit >= 1 && accepted >= limit) break;
    } else {
      ++redundant;
    }
  }
  return redundant;
}

// Rows i0 .. i0 + rows - 1 (rows <= kInvRows) of the inverse of the lower-triangular
// factor held packed in a, in place, every row above them still holding L. DTRDI's column
// sweep, read by rows: row i starts as 0.0 + L(i, j) t_i with t_i = 1 / L(i, i) on the
// diagonal (all 0.0 when L(i, i) is 0.0); then, for k = i - 1 down to 0, its element k is
// finished as x_k (-1 / L(k, k)) and row k of L times that is added to its elements
// before k (with a zero L(k, k), element k becomes 0.0 and nothing is added). The block's
// rows are taken from the last up over their own columns, then together. The rows of L
// above come kInvGroup at a time: their own columns k are finished first, each taking the
// updates of the larger k of the group in order, and the elements before the group then
// receive the whole group's updates in one pass, still in descending k.
void InvertRowBlock(double * a, int i0, int rows) {
  double * r[kInvRows];
  for (int b = 0; b < rows; ++b) r[b] = a + RowStart(i0 + b);
  for (int b = rows - 1; b >= 0; --b) {
    const int i = i0 + b;
    double * const rowI = r[b];
    if (rowI[i] == 0.0) {
      // Intended: a redundant pivot leaves its whole row and column zero in the inverse.
      std::fill_n(rowI, i + 1, 0.0);
    } else {
      const double t = 1.0 / rowI[i];
      rowI[i] = t;
      for (int j = 0; j < i; ++j) rowI[j] = 0.0 + rowI[j] * t;
    }
    for (int k = i - 1; k >= i0; --k) {
      const double * const rowK = r[k - i0];
      if (rowK[k] == 0.0) {
        rowI[k] = 0.0;
        continue;
      }
      const double minusT = -(1.0 / rowK[k]);
      const double fk = rowI[k] * minusT;
      rowI[k] = fk;
      for (int j = 0; j < k; ++j) rowI[j] += rowK[j] * fk;
    }
  }
  const double * cols[kInvGroup];
  double f[kInvRows * kInvGroup];
  for (int kHi = i0 - 1; kHi >= 0; kHi -= kInvGroup) {
    const int kLo = std::max(0, kHi - kInvGroup + 1);
    int count = 0;
    for (int k = kHi; k >= kLo; --k) {
      const double * const rowK = a + RowStart(k);
      if (rowK[k] == 0.0) {
        for (int b = 0; b < rows; ++b) r[b][k] = 0.0;
        continue;
      }
      const double minusT = -(1.0 / rowK[k]);
      for (int b = 0; b < rows; ++b) {
        const double fb = r[b][k] * minusT;
        r[b][k] = fb;
        f[kInvRows * count + b] = fb;
        for (int j = kLo; j < k; ++j) r[b][j] += rowK[j] * fb;
      }
      cols[count++] = rowK;
    }
    matrix_detail::AddRowUpdates(r, rows, kLo, cols, f, count);
  }
}

// x = L^-1 b by rows; a zero L(i, i) gives x[i] = 0.0. b and x may be the same array.
void ForwardSubst(const double * l, int n, const double * b, double * x) {
  const double * row = l;
  for (int i = 0; i < n; row += i + 1, ++i) {
    const double lii = row[i];
    if (lii == 0.0) {
      x[i] = 0.0;
      continue;
    }
    double s = 0.0;
    for (int k = 0; k < i; ++k) s += row[k] * x[k];
    x[i] = (b[i] - s) / lii;
  }
}

// x = L'^-1 x in place, from the last row up: x[i] is final once the rows below have been
// taken off, and its row then updates the elements before it (unit-stride walks). A
// zero L(i, i) gives x[i] = 0.0.
void BackSubstInPlace(const double * l, int n, double * x) {
  for (int i = n - 1; i >= 0; --i) {
    const double * row = l + RowStart(i);
    const double lii = row[i];
    if (lii == 0.0) {
      x[i] = 0.0;
      continue;
    }
    const double xi = x[i] / lii;
    x[i] = xi;
    for (int k = 0; k < i; ++k) x[k] -= row[k] * xi;
  }
}

// Builds A + shift I from the packed src into dst (same size) and factors it against
// diag; returns the number of redundant pivots.
int FactorShifted(const std::vector<double> & src, int n, double shift, const double * diag,
                  double tol, std::vector<double> & dst) {
  std::copy(src.begin(), src.end(), dst.begin());
  std::size_t at = 0;
  for (int i = 0; i < n; at += static_cast<std::size_t>(i) + 2, ++i) dst[at] += shift;
  return FactorPacked(dst.data(), n, diag, tol, nullptr, nullptr, 0);
}

// Solves the symmetric system held packed in ap (order m) for rhs in place by the
// Bunch-Kaufman factorisation, then writes x: n elements, rhs[k] at map[k], 0.0
// elsewhere. False when the reciprocal condition isn't above 0.0 or map isn't strictly
// ascending; x is then unchanged.
bool SolvePackedScatter(std::vector<double> & ap, std::vector<double> & rhs,
                        const std::vector<int> & map, int n, std::vector<double> & x) {
  const int m = static_cast<int>(map.size());
  for (int k = 1; k < m; ++k)
    if (!(map[k - 1] < map[k])) return false;
  std::vector<int> kpvt(static_cast<std::size_t>(m));
  std::vector<double> z(static_cast<std::size_t>(m));
  const double rcond = Linpack::Dspco(ap.data(), m, kpvt.data(), z.data());
  if (!(rcond > 0.0)) return false;
  Linpack::Dspsl(ap.data(), m, kpvt.data(), rhs.data());
  x.assign(static_cast<std::size_t>(n), 0.0);
  for (int k = 0; k < m; ++k) x[map[k]] = rhs[k];
  return true;
}

}  // namespace

// ---------------------------------------------------------------------------------------
// Factorisation

int ZRSymMatrix::LTChol(const std::vector<double> & diag, double tol, bool check) {
  if (fnRows < 0 || diag.size() < static_cast<std::size_t>(fnRows)) return -1;
  if (check) {
    if (!(tol >= 0.0)) return -1;
    // A NaN reference value is data, not a bad argument: it refuses its own pivot.
    for (int i = 0; i < fnRows; ++i)
      if (diag[i] < 0.0) return -1;
  }
  return FactorPacked(fvLowerTri.data(), fnRows, diag.data(), tol, nullptr, nullptr, 0);
}

int ZRSymMatrix::LTChol(const std::vector<double> & diag, double tol, ZRBitSet & set, bool check) {
  if (fnRows < 0 || diag.size() < static_cast<std::size_t>(fnRows)) return -1;
  if (check) {
    if (!(tol >= 0.0)) return -1;
    // A NaN reference value is data, not a bad argument: it refuses its own pivot.
    for (int i = 0; i < fnRows; ++i)
      if (diag[i] < 0.0) return -1;
  }
  try {
    if (set.Size() < fnRows) {
      set.Resize(fnRows, false);
    } else {
      set.Clear();
    }
  } catch (const std::bad_alloc &) {
    return -1;
  }
  return FactorPacked(fvLowerTri.data(), fnRows, diag.data(), tol, &set, nullptr, 0);
}

int ZRSymMatrix::LTChol(double tol, double & minPivot, bool check) {
  minPivot = kSysMisValue;
  // Intended: d holds one number, so every pivot is measured against the largest diagonal.
  std::vector<double> d;
  GetNCheckDiagonal(d, tol, 1.0);
  if (fnRows < 0 || d.size() != static_cast<std::size_t>(fnRows)) return -1;
  const int result = LTChol(d, tol, check);
  if (result >= 0 && fnRows > 0) {
    double smallest = DBL_MAX;
    std::size_t at = 0;
    for (int i = 0; i < fnRows; at += static_cast<std::size_t>(i) + 2, ++i)
      smallest = std::min(smallest, fvLowerTri[at]);
    minPivot = smallest;
  }
  return result;
}

int ZRSymMatrix::CholIndNonRed(int limit, double tol, std::vector<int> & idx) {
  idx.clear();
  const int n = std::max(fnRows, 0);
  if (limit < 1 || limit > n) limit = n;
  if (!(tol >= 0.0)) return 0;
  std::vector<double> work, diag;
  try {
    work = fvLowerTri;
    idx.reserve(static_cast<std::size_t>(limit));
  } catch (const std::bad_alloc &) {
    return -1;
  }
  GetDiagonal(diag);
  if (diag.size() != static_cast<std::size_t>(n)) return -1;
  FactorPacked(work.data(), n, diag.data(), tol, nullptr, &idx, limit);
  return static_cast<int>(idx.size());
}

// ---------------------------------------------------------------------------------------
// Determinant and inverse through the factor

int ZRSymMatrix::LTDetInverse(double * const det, int job) {
  const int n = std::max(fnRows, 0);
  double * const a = fvLowerTri.data();
  int zeros = 0;
  std::size_t at = 0;
  for (int i = 0; i < n; at += static_cast<std::size_t>(i) + 2, ++i)
    if (a[at] == 0.0) ++zeros;

  if (std::fmod(static_cast<double>(job), 10.0) != 0.0 && det != nullptr) {
    det[0] = zeros > 0 ? 0.0 : 1.0;
    det[1] = 0.0;
    at = 0;
    for (int i = 0; zeros == 0 && i < n; at += static_cast<std::size_t>(i) + 2, ++i) {
      det[0] *= a[at];
      NormaliseDet(det);
    }
  }

  if (job / 10 == 0) return zeros;
  // Inverse of L in place, as LINPACK's DTRDI for a lower triangle, in its row-oriented
  // (delayed) form: each row of the inverse is built from the rows of L above it, which are
  // still untouched because rows are taken from the last up. Every element receives the
  // same operations in the same order as in the column sweep of DTRDI.
  int i = n;
  for (; i >= kInvRows; i -= kInvRows) InvertRowBlock(a, i - kInvRows, kInvRows);
  if (i > 0) InvertRowBlock(a, 0, i);
  return zeros;
}

void ZRSymMatrix::LTLTransL() {
  // (L'L)(i, j) = sum over m >= i of L(m, i) L(m, j), j <= i, summed in ascending m. Row i
  // is formed in its own place from rows i .. n - 1, none of which is overwritten yet; the
  // diagonal element, read by every term of the row, goes last. Rows are formed a block
  // at a time, and the rows below the block come kInvGroup at a time, each group read in
  // one pass for all the block's rows.
  const int n = std::max(fnRows, 0);
  double * const a = fvLowerTri.data();
  for (int i0 = 0; i0 < n; i0 += kInvRows) {
    const int rows = std::min(kInvRows, n - i0);
    double * r[kInvRows];
    double dsum[kInvRows];
    for (int b = 0; b < rows; ++b) r[b] = a + RowStart(i0 + b);
    // The block's own rows first: row i takes rows i + 1 .. i0 + rows - 1 before they
    // are scaled in their turn.
    for (int b = 0; b < rows; ++b) {
      const int i = i0 + b;
      const double lii = r[b][i];
      for (int j = 0; j < i; ++j) r[b][j] *= lii;
      dsum[b] = lii * lii;
      for (int bm = b + 1; bm < rows; ++bm) {
        const double fm = r[bm][i];
        for (int j = 0; j < i; ++j) r[b][j] += fm * r[bm][j];
        dsum[b] += fm * fm;
      }
    }
    const double * cols[kInvGroup];
    double f[kInvRows * kInvGroup];
    for (int m = i0 + rows; m < n;) {
      const int count = std::min(kInvGroup, n - m);
      for (int q = 0; q < count; ++q, ++m) {
        const double * const rowM = a + RowStart(m);
        for (int b = 0; b < rows; ++b) {
          const double fb = rowM[i0 + b];
          f[kInvRows * q + b] = fb;
          dsum[b] += fb * fb;
          for (int j = i0; j < i0 + b; ++j) r[b][j] += fb * rowM[j];
        }
        cols[q] = rowM;
      }
      matrix_detail::AddRowUpdates(r, rows, i0, cols, f, count);
    }
    for (int b = 0; b < rows; ++b) r[b][i0 + b] = dsum[b];
  }
}

void ZRSymMatrix::LTLLTrans() {
  // (L L')(i, j) = sum over m <= j of L(i, m) L(j, m), j <= i: rows i and j from their
  // starts. Rows are formed from the last up and each from its diagonal leftwards, so
  // every element read is still an element of L.
  const int n = std::max(fnRows, 0);
  double * const a = fvLowerTri.data();
  for (int i = n - 1; i >= 0; --i) {
    double * rowI = a + RowStart(i);
    for (int j = i; j >= 0; --j) {
      const double * rowJ = a + RowStart(j);
      double s = 0.0;
      for (int m = 0; m <= j; ++m) s += rowI[m] * rowJ[m];
      rowI[j] = s;
    }
  }
}

bool ZRSymMatrix::LTInverse() {
  double det[2];
  LTDetInverse(det, 10);
  LTLTransL();
  return true;
}

bool ZRSymMatrix::ComputeDeterminant(double tol, double * const det) const {
  return linpack_detail::CholeskyDeterminant(*this, tol, det);
}

// ---------------------------------------------------------------------------------------
// Solves and substitutions

int ZRSymMatrix::LTSolve(const std::vector<double> & b, double tol, std::vector<double> & x) {
  const int n = fnRows;
  if (!(tol > 0.0) || n < 0 || b.size() < static_cast<std::size_t>(n)) return -1;
  std::vector<double> rhs;
  const std::vector<double> * pb = &b;
  if (&b == &x) {
    try {
      rhs = b;
    } catch (const std::bad_alloc &) {
      return -1;
    }
    pb = &rhs;
  }
  GetDiagonal(x);
  if (x.size() != static_cast<std::size_t>(n)) return -1;
  const int redundant = LTChol(x, tol, false);
  if (redundant < 0) return redundant;
  ForwardSubst(fvLowerTri.data(), n, pb->data(), x.data());
  BackSubstInPlace(fvLowerTri.data(), n, x.data());
  return redundant;
}

int ZRSymMatrix::LTSubstitute(const std::vector<double> & b, std::vector<double> & x) const {
  const int n = fnRows;
  if (n < 0 || b.size() < static_cast<std::size_t>(n)) return -1;
  if (&b != &x && !AssignNoThrow(x, static_cast<std::size_t>(n), 0.0)) return -1;
  ForwardSubst(fvLowerTri.data(), n, b.data(), x.data());
  BackSubstInPlace(fvLowerTri.data(), n, x.data());
  if (&b == &x) x.resize(static_cast<std::size_t>(n));
  return 0;
}

bool ZRSymMatrix::TSolveSubst(const std::vector<double> & b, std::vector<double> & x,
                              bool transposed) const {
  const int n = fnRows;
  if (n < 0 || b.size() != static_cast<std::size_t>(n)) return false;
  if (&b != &x) {
    if (!AssignNoThrow(x, static_cast<std::size_t>(n), 0.0)) return false;
    if (transposed) std::copy(b.begin(), b.end(), x.begin());
  }
  if (transposed) {
    BackSubstInPlace(fvLowerTri.data(), n, x.data());
  } else {
    ForwardSubst(fvLowerTri.data(), n, b.data(), x.data());
  }
  return true;
}

// ---------------------------------------------------------------------------------------
// Rank-one modification of a factor

bool ZRSymMatrix::LTCholUpdateR1(const std::vector<double> & v, std::vector<double> & c,
                                 std::vector<double> & s) {
  const std::size_t n = static_cast<std::size_t>(std::max(fnRows, 0));
  if (fnRows < 0 || v.size() != n || c.size() != n || s.size() != n) return false;
  double * row = fvLowerTri.data();
  for (int i = 0; i < fnRows; row += i + 1, ++i) {
    double w = v[i];
    for (int j = 0; j < i; ++j) {
      const double l = row[j];
      row[j] = c[j] * l + s[j] * w;
      w = c[j] * w - s[j] * l;
    }
    // Intended: r keeps DRotG's sign, so L(i, i) may come out negative.
    Blas1::DRotG(&row[i], &w, &c[i], &s[i]);
  }
  return true;
}

bool ZRSymMatrix::LTCholDowndate(const std::vector<double> & v, std::vector<double> & c,
                                 std::vector<double> & s, bool rescue) {
  const int n = fnRows;
  if (n < 1) return false;
  const std::size_t size = static_cast<std::size_t>(n);
  if (v.size() != size || c.size() != size || s.size() != size) return false;
  double * const a = fvLowerTri.data();
  if (!(a[0] > 0.0)) return false;

  double largest = a[0];
  std::size_t at = 0;
  for (int i = 0; i < n; at += static_cast<std::size_t>(i) + 2, ++i)
    largest = std::max(largest, a[at]);
  // Intended: a factor with zero (redundant) pivots is patched rather than refused.
  at = 2;
  for (int i = 1; i < n; at += static_cast<std::size_t>(i) + 2, ++i)
    if (!(a[at] > 0.0)) a[at] = kDiagRepair * largest;

  // L a = v, a kept in s (LINPACK DCHDD: trans(R) a = x).
  ForwardSubst(a, n, v.data(), s.data());
  double rho = ZRMathFun::DNrm2(n, s, 0, 1);
  if (!std::isfinite(rho)) return false;
  if (rho >= 1.0) {
    if (!rescue) return false;
    const double scale = rho / kRescueNorm;
    for (double & x : fvLowerTri) x *= scale;
    for (double & x : s) x /= scale;
    rho = kRescueNorm;
  }

  // The rotations, from the last element up (DCHDD).
  double alpha = std::sqrt(1.0 - rho * rho);
  for (int i = n - 1; i >= 0; --i) {
    const double scale = alpha + std::fabs(s[i]);
    const double ra = alpha / scale, rb = s[i] / scale;
    const double norm = std::sqrt(ra * ra + rb * rb);
    c[i] = ra / norm;
    s[i] = rb / norm;
    alpha = scale * norm;
  }
  // Applied to each row of L (column of DCHDD's R) from its diagonal leftwards.
  double * row = a;
  for (int j = 0; j < n; row += j + 1, ++j) {
    double xx = 0.0;
    for (int i = j; i >= 0; --i) {
      const double t = c[i] * xx + s[i] * row[i];
      row[i] = c[i] * row[i] - s[i] * xx;
      xx = t;
    }
  }
  return true;
}

// ---------------------------------------------------------------------------------------
// Indefinite systems

bool ZRSymMatrix::SolveIndefinite(double tol, const std::vector<double> & b,
                                  std::vector<double> & x) {
  const int n = fnRows;
  if (n < 1 || !(tol >= 0.0) || b.size() < static_cast<std::size_t>(n)) return false;
  // Intended: the rank is judged on A A at twice the caller's tolerance.
  const double workTol = 2.0 * tol;
  try {
    ZRSymMatrix t;
    ComputeSTransS(t);
    if (t.GetNRows() != n) return false;
    std::vector<int> idx;
    const int r = t.CholIndNonRed(0, workTol, idx);
    if (r < 1) return false;

    std::vector<double> ap, rhs;
    std::vector<int> map;
    if (r == n) {
      ap = fvLowerTri;
      rhs.assign(b.begin(), b.begin() + n);
      map.resize(static_cast<std::size_t>(n));
      for (int k = 0; k < n; ++k) map[k] = k;
    } else {
      // The independent rows, and once more the independent rows of their sub-matrix.
      ZRSymMatrix sub;
      if (!ExtractSubmatrix(idx, sub)) return false;
      ZRSymMatrix t2;
      sub.ComputeSTransS(t2);
      if (t2.GetNRows() != r) return false;
      std::vector<int> idx2;
      const int r2 = t2.CholIndNonRed(0, workTol, idx2);
      if (r2 < 1) return false;
      if (r2 == r) {
        ap.swap(sub.fvLowerTri);
        map = idx;
      } else {
        ZRSymMatrix subSub;
        if (!sub.ExtractSubmatrix(idx2, subSub)) return false;
        ap.swap(subSub.fvLowerTri);
        map.resize(idx2.size());
        for (std::size_t k = 0; k < idx2.size(); ++k) map[k] = idx[idx2[k]];
      }
      rhs.resize(map.size());
      for (std::size_t k = 0; k < map.size(); ++k) rhs[k] = b[map[k]];
    }
    return SolvePackedScatter(ap, rhs, map, n, x);
  } catch (const std::bad_alloc &) {
    return false;
  }
}

bool ZRSymMatrix::SolveIndefinite(const ZRBitSet & set, const std::vector<double> & b,
                                  std::vector<double> & x) {
  const int n = fnRows;
  if (n < 1 || set.Size() < n || b.size() < static_cast<std::size_t>(n)) return false;
  try {
    std::vector<int> map;
    for (int i = 0; i < n; ++i)
      if (set.IsIn(i)) map.push_back(i);
    if (map.empty()) return false;
    ZRSymMatrix sub;
    if (!ExtractSubmatrix(map, sub)) return false;
    std::vector<double> rhs(map.size());
    for (std::size_t k = 0; k < map.size(); ++k) rhs[k] = b[map[k]];
    return SolvePackedScatter(sub.fvLowerTri, rhs, map, n, x);
  } catch (const std::bad_alloc &) {
    return false;
  }
}

bool ZRSymMatrix::SolveIndefiniteGI(double tol, const std::vector<double> & b,
                                    std::vector<double> & x) {
  const int n = fnRows;
  if (n < 1 || !(tol >= 0.0)) return false;
  try {
    ZRSymMatrix t;
    ComputeSTransS(t);
    std::vector<double> w;
    if (t.GetNRows() != n || !ComputeSV(b, w)) return false;
    std::vector<double> solution;
    const int redundant = t.LTSolve(w, tol, solution);
    if (redundant < 0 || redundant >= n) return false;
    x.swap(solution);
    return true;
  } catch (const std::bad_alloc &) {
    return false;
  }
}

int ZRSymMatrix::TransformToPositiveDefinite(double tol, bool & changed, double & shift) {
  changed = false;
  shift = 0.0;
  const int n = fnRows;
  if (n < 2) return -1;
  if (!(tol > 0.0)) return -2;
  std::vector<double> d, work;
  GetNCheckDiagonal(d, 1.0e-6, 1.0);
  if (d.size() != static_cast<std::size_t>(n) || !AssignNoThrow(work, fvLowerTri.size(), 0.0)) {
    return -3;
  }
  int count = 1;
  if (FactorShifted(fvLowerTri, n, 0.0, d.data(), tol, work) == 0) return 1;

  double maxD = 0.0, minD = 0.0, maxO = 0.0, minO = 0.0;
  MaxMinDiagOffDiag(maxD, minD, maxO, minO);
  const double step = std::max({std::fabs(maxD), std::fabs(minD), std::fabs(maxO), std::fabs(minO),
                                n == 2 ? 1.0 : static_cast<double>(n - 2)});
  // A finite matrix needs about n + tol steps: its smallest eigenvalue is at least -n step
  // and every pivot must pass tol x d[i] <= tol x step.
  const int maxSteps = 2 * n + kMaxExtraShiftSteps;
  double trial = 0.0;
  for (int steps = 0;; ++steps) {
    if (steps == maxSteps) return -3;
    trial += step;
    if (!std::isfinite(trial)) return -3;
    ++count;
    if (FactorShifted(fvLowerTri, n, trial, d.data(), tol, work) == 0) break;
  }

  // Bisection. Halving stops at the tolerance, when no double lies strictly between lo
  // and hi (a tol below the spacing of doubles is otherwise never met), or at the bound.
  double lo = 0.0, hi = trial;
  for (int halvings = 0; halvings < kMaxBisections; ++halvings) {
    const double mid = (lo + hi) * 0.5;
    double width = hi - lo;
    if (mid > 1.0) width /= mid;
    width *= 0.5;
    if (!(width > tol) || !(lo < mid && mid < hi)) break;
    ++count;
    if (FactorShifted(fvLowerTri, n, mid, d.data(), tol, work) == 0) {
      hi = mid;
    } else {
      lo = mid;
    }
  }

  // The final shift and scale are found before the matrix is touched: one that isn't
  // finite (a diagonal element plus hi beyond the largest double) is a failed search.
  double largest = 0.0, smallest = 0.0;
  MaxMinDiag(largest, smallest);
  largest += hi;
  const double total = hi + kShiftMargin * largest;
  const double divisor = total + d[0];
  if (!std::isfinite(largest) || !std::isfinite(total) || !std::isfinite(divisor)) return -3;
  AddToDiagonal(hi);
  AddToDiagonal(kShiftMargin * largest);
  shift = total;
  // Intended: the result is rescaled by the shift plus the original largest diagonal.
  MultiplyByNumber(1.0 / divisor);
  changed = true;
  return count;
}

}  // namespace ZRMath_920
