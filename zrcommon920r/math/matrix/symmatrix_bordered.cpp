// ZRSymMatrix operations on bordered, partitioned matrices combined with a block-diagonal
// matrix B or its block factor L, and ZRRectMatrix::ComputeBlockDiagSR. The factor-side
// pieces live in blockmatrix_bordered.cpp.
#include <cstdint>
#include <new>
#include <stdexcept>
#include <vector>

#include "zrcommon920r/math/matrix/blockmatrix.h"
#include "zrcommon920r/math/matrix/detail/nothrow_alloc.h"
#include "zrcommon920r/math/matrix/rectmatrix.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace ZRMath_920 {

namespace {

using matrix_detail::NoThrow;

// Packed offsets are worked in 64 bits, where none can overflow for int arguments.
using Index = std::int64_t;

inline Index RowStart(Index i) {
  return i * (i + 1) / 2;
}

inline Index SymIndex(Index i, Index j) {
  return i >= j ? RowStart(i) + j : RowStart(j) + i;
}

inline Index Size(const std::vector<double> & v) {
  return static_cast<Index>(v.size());
}

// The rectangle of m rows and k columns with first element (r, c) lies in the stored
// triangle of a matrix of order n.
bool InTriangle(Index n, Index r, Index c, Index m, Index k) {
  return r >= 0 && c >= 0 && m >= 0 && k >= 0 && r + m <= n && c + k <= r + 1;
}

// The order of B when it is valid, else -1.
int OrderOf(const ZRSymBlockDiagMatrix & B) {
  return B.IsValidMatrix() ? B.GetNRows() : -1;
}

// out (packed, order m) = R' B R for the rectangle R of nb rows and m columns with first
// element (r, c) of the packed triangle s: P = B R column by column, then R' P.
void FormRTransBR(const std::vector<double> & s, Index r, Index c, Index m,
                  const ZRSymBlockDiagMatrix & B, std::vector<double> & out) {
  const Index nb = B.GetNRows();
  std::vector<double> P(static_cast<std::size_t>(nb * m));
  for (Index q = 0; q < m; ++q)
    for (Index t = 0; t < nb; ++t)
      B.DotProductColVecIIncrPart(static_cast<int>(t), s, static_cast<int>(RowStart(r) + c + q),
                                  static_cast<int>(r + 1), P[t * m + q]);
  out.assign(static_cast<std::size_t>(RowStart(m)), 0.0);
  for (Index a = 0; a < m; ++a)
    for (Index b = 0; b <= a; ++b) {
      double sum = 0.0;
      for (Index t = 0; t < nb; ++t) sum += s[RowStart(r + t) + c + a] * P[t * m + b];
      out[RowStart(a) + b] = sum;
    }
}

// P (m x nb by rows) = R(:, c .. c + nb - 1) B: element (p, t) is row t of B times the
// row p stretch of R.
void FormRB(const ZRRectMatrix & R, Index c, const ZRSymBlockDiagMatrix & B,
            std::vector<double> & P) {
  const Index m = R.GetNRows(), nb = B.GetNRows();
  P.assign(static_cast<std::size_t>(m * nb), 0.0);
  for (Index p = 0; p < m; ++p) {
    const double * row = R.GetRowPtr(static_cast<int>(p)) + c;
    for (Index t = 0; t < nb; ++t)
      P[p * nb + t] = B.ComputeRVDParts(static_cast<int>(t), row, static_cast<int>(nb));
  }
}

}  // namespace

// ---------------------------------------------------------------------------------------
// Transformation by the block factor

bool ZRSymMatrix::AugmentUsingBlockDiagL(int r, int n, const ZRSymBlockDiagMatrix & B) {
  if (r < 0 || n < 1 || OrderOf(B) != n || fnRows < 0) return false;
  if (static_cast<Index>(2) * n + 1 + r != fnRows) return false;
  const Index y = RowStart(fnRows - 1);
  B.ComputeVecPartByL(fvLowerTri, static_cast<int>(y + r), static_cast<int>(y + r + n));
  return SubSymSBlockL(r + n, r, n, B) && SubSymRectTBlockL(r, 0, r, B) &&
         SubSymBlockLTSBlockL(r, B);
}

bool ZRSymMatrix::SubSymVectBlockL(int i, int c, const ZRSymBlockDiagMatrix & B) {
  const int nb = OrderOf(B);
  if (nb < 0 || fnRows < 0 || i < 0 || i >= fnRows || !InTriangle(fnRows, i, c, 1, nb))
    return false;
  const Index at = RowStart(i) + c;
  return B.ComputeVecPartByL(fvLowerTri, static_cast<int>(at), static_cast<int>(at + nb));
}

bool ZRSymMatrix::SubSymSBlockL(int r, int c, int m, const ZRSymBlockDiagMatrix & B) {
  const int nb = OrderOf(B);
  if (nb < 0 || fnRows < 0 || !InTriangle(fnRows, r, c, m, nb)) return false;
  for (Index i = r; i < static_cast<Index>(r) + m; ++i) {
    const Index at = RowStart(i) + c;
    B.ComputeVecPartByL(fvLowerTri, static_cast<int>(at), static_cast<int>(at + nb));
  }
  return true;
}

bool ZRSymMatrix::SubSymRectTBlockL(int r, int c, int m, const ZRSymBlockDiagMatrix & B) {
  const int nb = OrderOf(B);
  if (nb < 0 || fnRows < 0 || !InTriangle(fnRows, r, c, nb, m)) return false;
  // Column k of the rectangle is a growing walk down the packed rows r, r + 1, ...
  for (Index k = c; k < static_cast<Index>(c) + m; ++k)
    B.ComputeVecIIncrPartByL(fvLowerTri, static_cast<int>(RowStart(r) + k), r + 1, nb);
  return true;
}

bool ZRSymMatrix::SubSymBlockLTSBlockL(int start, const ZRSymBlockDiagMatrix & B) {
  const Index nb = OrderOf(B);
  if (nb < 0 || fnRows < 0 || start < 0 || start + nb > fnRows) return false;
  return NoThrow(false, [&] {
    // A L by rows; its transpose L' A by rows again times L.
    std::vector<double> t(static_cast<std::size_t>(nb * nb)), u(t.size());
    for (Index i = 0; i < nb; ++i)
      for (Index j = 0; j < nb; ++j) t[i * nb + j] = fvLowerTri[SymIndex(start + i, start + j)];
    for (Index i = 0; i < nb; ++i)
      B.ComputeVecPartByL(t, static_cast<int>(i * nb), static_cast<int>(i * nb + nb));
    for (Index i = 0; i < nb; ++i)
      for (Index j = 0; j < nb; ++j) u[i * nb + j] = t[j * nb + i];
    for (Index i = 0; i < nb; ++i)
      B.ComputeVecPartByL(u, static_cast<int>(i * nb), static_cast<int>(i * nb + nb));
    for (Index i = 0; i < nb; ++i)
      for (Index j = 0; j <= i; ++j) fvLowerTri[RowStart(start + i) + start + j] = u[i * nb + j];
    return true;
  });
}

// ---------------------------------------------------------------------------------------
// Products of parts with vectors

bool ZRSymMatrix::SubSymRectV(int m, int n, int r, int c, const std::vector<double> & v,
                              std::vector<double> & out) const {
  if (fnRows < 0 || !InTriangle(fnRows, r, c, m, n) || Size(v) < n) return false;
  return NoThrow(false, [&] {
    std::vector<double> y(static_cast<std::size_t>(m));
    for (Index i = 0; i < m; ++i) {
      const double * row = fvLowerTri.data() + RowStart(r + i) + c;
      double s = 0.0;
      for (Index j = 0; j < n; ++j) s += row[j] * v[j];
      y[i] = s;
    }
    out.swap(y);
    return true;
  });
}

bool ZRSymMatrix::SubSymRectTV(int m, int n, int r, int c, const std::vector<double> & v,
                               std::vector<double> & out) const {
  if (fnRows < 0 || !InTriangle(fnRows, r, c, m, n) || Size(v) < m) return false;
  return NoThrow(false, [&] {
    std::vector<double> y(static_cast<std::size_t>(n), 0.0);
    // Row by row, so each element sums over the rows in ascending order.
    for (Index i = 0; i < m; ++i) {
      const double * row = fvLowerTri.data() + RowStart(r + i) + c;
      for (Index j = 0; j < n; ++j) y[j] += row[j] * v[i];
    }
    out.swap(y);
    return true;
  });
}

bool ZRSymMatrix::SubSymSV(int n, int r, const std::vector<double> & v,
                           std::vector<double> & out) const {
  if (fnRows < 0 || n < 0 || r < 0 || static_cast<Index>(r) + n > fnRows || Size(v) < n)
    return false;
  return NoThrow(false, [&] {
    std::vector<double> y(static_cast<std::size_t>(n));
    for (Index i = 0; i < n; ++i) {
      double s = 0.0;
      for (Index j = 0; j < n; ++j) s += fvLowerTri[SymIndex(r + i, r + j)] * v[j];
      y[i] = s;
    }
    out.swap(y);
    return true;
  });
}

// ---------------------------------------------------------------------------------------
// Bilinear forms in B

bool ZRSymMatrix::ComputeVBW(int i, int j, int c, const ZRSymBlockDiagMatrix & B,
                             double & out) const {
  out = 0.0;
  const int nb = OrderOf(B);
  if (nb < 0 || fnRows < 0 || i >= fnRows || j >= fnRows ||
      !InTriangle(fnRows, i < j ? i : j, c, 1, nb))
    return false;
  const double * v = fvLowerTri.data() + RowStart(i) + c;
  const double * w = fvLowerTri.data() + RowStart(j) + c;
  // v' (B w), (B w)_t one row of B at a time.
  double s = 0.0;
  for (int t = 0; t < nb; ++t) s += v[t] * B.ComputeRVDParts(t, w, nb);
  out = s;
  return true;
}

bool ZRSymMatrix::ComputeVBW(int i, int c, const std::vector<double> & w,
                             const ZRSymBlockDiagMatrix & B, double & out) const {
  out = 0.0;
  const int nb = OrderOf(B);
  if (nb < 0 || fnRows < 0 || i >= fnRows || Size(w) < nb || !InTriangle(fnRows, i, c, 1, nb))
    return false;
  const double * v = fvLowerTri.data() + RowStart(i) + c;
  double s = 0.0;
  for (int t = 0; t < nb; ++t) s += v[t] * B.ComputeRVDParts(t, w.data(), nb);
  out = s;
  return true;
}

bool ZRSymMatrix::ComputeVBW(const ZRSymBlockDiagMatrix & B, int r, int i, int j,
                             double & out) const {
  out = 0.0;
  const int nb = OrderOf(B);
  if (nb < 0 || fnRows < 0 || i < 0 || j < 0 || r < i || r < j ||
      static_cast<Index>(r) + nb > fnRows)
    return false;
  // Column j of the matrix from row r is a growing walk of the packed store.
  double s = 0.0;
  for (int t = 0; t < nb; ++t) {
    double bw = 0.0;
    B.DotProductColVecIIncrPart(t, fvLowerTri, static_cast<int>(RowStart(r) + j), r + 1, bw);
    s += fvLowerTri[RowStart(static_cast<Index>(r) + t) + i] * bw;
  }
  out = s;
  return true;
}

// ---------------------------------------------------------------------------------------
// Congruences with B

bool ZRSymMatrix::ComputeSSubBSSub(const ZRSymMatrix & S, int r, int c, int m,
                                   const ZRSymBlockDiagMatrix & B) {
  const int nb = OrderOf(B);
  if (nb < 0 || S.fnRows < 0 || !InTriangle(S.fnRows, r, c, nb, m)) return false;
  return NoThrow(false, [&] {
    std::vector<double> q;
    FormRTransBR(S.fvLowerTri, r, c, m, B, q);
    if (!SetNRows(m, false)) return false;
    fvLowerTri.swap(q);
    return true;
  });
}

bool ZRSymMatrix::ComputeSSubBSSub(int r, int c, int m, const ZRSymBlockDiagMatrix & B, int t) {
  const int nb = OrderOf(B);
  if (nb < 0 || fnRows < 0 || !InTriangle(fnRows, r, c, nb, m) || t < 0 ||
      static_cast<Index>(t) + m > fnRows)
    return false;
  return NoThrow(false, [&] {
    std::vector<double> q;
    FormRTransBR(fvLowerTri, r, c, m, B, q);
    for (Index a = 0; a < m; ++a)
      for (Index b = 0; b <= a; ++b) fvLowerTri[RowStart(t + a) + t + b] -= q[RowStart(a) + b];
    return true;
  });
}

bool ZRSymMatrix::ComputeRTransBlockDiagR(const ZRRectMatrix & R, const ZRSymBlockDiagMatrix & B) {
  const Index nb = OrderOf(B);
  if (nb < 0 || !R.IsValidMatrix() || R.GetNRows() != nb) return false;
  const Index p = R.GetNCols();
  return NoThrow(false, [&] {
    // P = B R column by column, then R' P.
    std::vector<double> col(static_cast<std::size_t>(nb)), P(static_cast<std::size_t>(nb * p));
    for (Index q = 0; q < p; ++q) {
      for (Index t = 0; t < nb; ++t) col[t] = R.GetElem(static_cast<int>(t), static_cast<int>(q));
      for (Index t = 0; t < nb; ++t)
        P[t * p + q] = B.ComputeRVDParts(static_cast<int>(t), col, static_cast<int>(nb));
    }
    std::vector<double> out(static_cast<std::size_t>(RowStart(p)));
    for (Index a = 0; a < p; ++a)
      for (Index b = 0; b <= a; ++b) {
        double s = 0.0;
        for (Index t = 0; t < nb; ++t)
          s += R.GetElem(static_cast<int>(t), static_cast<int>(a)) * P[t * p + b];
        out[RowStart(a) + b] = s;
      }
    if (!SetNRows(static_cast<int>(p), false)) return false;
    fvLowerTri.swap(out);
    return true;
  });
}

bool ZRSymMatrix::ComputeRTransSymR(const ZRRectMatrix & R, const ZRSymMatrix & S, int start) {
  if (!R.IsValidMatrix() || S.fnRows < 0 || start < 0 ||
      static_cast<Index>(start) + R.GetNRows() > S.fnRows)
    return false;
  const Index k = R.GetNRows(), p = R.GetNCols();
  return NoThrow(false, [&] {
    // Q = A R, then R' Q.
    std::vector<double> Q(static_cast<std::size_t>(k * p));
    for (Index i = 0; i < k; ++i)
      for (Index q = 0; q < p; ++q) {
        double s = 0.0;
        for (Index l = 0; l < k; ++l)
          s += S.fvLowerTri[SymIndex(start + i, start + l)] *
               R.GetElem(static_cast<int>(l), static_cast<int>(q));
        Q[i * p + q] = s;
      }
    std::vector<double> out(static_cast<std::size_t>(RowStart(p)));
    for (Index a = 0; a < p; ++a)
      for (Index b = 0; b <= a; ++b) {
        double s = 0.0;
        for (Index i = 0; i < k; ++i)
          s += R.GetElem(static_cast<int>(i), static_cast<int>(a)) * Q[i * p + b];
        out[RowStart(a) + b] = s;
      }
    if (!SetNRows(static_cast<int>(p), false)) return false;
    fvLowerTri.swap(out);
    return true;
  });
}

bool ZRSymMatrix::ComputeRDiagSRDiagTrans(const ZRRectMatrix & R, const ZRSymBlockDiagMatrix & B,
                                          const ZRSymMatrix & S) {
  const Index nb = OrderOf(B);
  if (nb < 0 || !R.IsValidMatrix() || R.GetNCols() != nb || S.fnRows != nb) return false;
  const Index m = R.GetNRows();
  return NoThrow(false, [&] {
    // P = R B, Q = P S, then Q P'.
    std::vector<double> P;
    FormRB(R, 0, B, P);
    std::vector<double> Q(P.size());
    for (Index p = 0; p < m; ++p)
      for (Index l = 0; l < nb; ++l) {
        double s = 0.0;
        for (Index k = 0; k < nb; ++k) s += P[p * nb + k] * S.fvLowerTri[SymIndex(k, l)];
        Q[p * nb + l] = s;
      }
    std::vector<double> out(static_cast<std::size_t>(RowStart(m)));
    for (Index a = 0; a < m; ++a)
      for (Index b = 0; b <= a; ++b) {
        double s = 0.0;
        for (Index l = 0; l < nb; ++l) s += Q[a * nb + l] * P[b * nb + l];
        out[RowStart(a) + b] = s;
      }
    if (!SetNRows(static_cast<int>(m), false)) return false;
    fvLowerTri.swap(out);
    return true;
  });
}

bool ZRSymMatrix::ComputeRSRTrans2(const ZRRectMatrix & R, const ZRSymBlockDiagMatrix & B) {
  if (!R.IsValidMatrix() || R.GetNCols() != OrderOf(B)) return false;
  return ComputeRSRTrans2(R, 0, B);
}

bool ZRSymMatrix::ComputeRSRTrans2(const ZRRectMatrix & R, int c, const ZRSymBlockDiagMatrix & B) {
  const Index nb = OrderOf(B);
  if (nb < 0 || !R.IsValidMatrix() || c < 0 || c + nb > R.GetNCols()) return false;
  const Index m = R.GetNRows();
  return NoThrow(false, [&] {
    std::vector<double> P;
    FormRB(R, c, B, P);
    std::vector<double> out(static_cast<std::size_t>(RowStart(m)));
    for (Index a = 0; a < m; ++a)
      for (Index b = 0; b <= a; ++b) {
        const double * row = R.GetRowPtr(static_cast<int>(b)) + c;
        double s = 0.0;
        for (Index t = 0; t < nb; ++t) s += P[a * nb + t] * row[t];
        out[RowStart(a) + b] = s;
      }
    if (!SetNRows(static_cast<int>(m), false)) return false;
    fvLowerTri.swap(out);
    return true;
  });
}

// ---------------------------------------------------------------------------------------
// Extraction

bool ZRSymMatrix::ExtractBlockAndLastRow(int start, int n, ZRSymMatrix & out) const {
  if (fnRows < 1 || start < 0 || n < 0 || static_cast<Index>(start) + n >= fnRows) return false;
  return NoThrow(false, [&] {
    const Index last = fnRows - 1;
    std::vector<double> q(static_cast<std::size_t>(RowStart(n + 1)));
    for (Index i = 0; i < n; ++i)
      for (Index j = 0; j <= i; ++j)
        q[RowStart(i) + j] = fvLowerTri[RowStart(start + i) + start + j];
    for (Index j = 0; j < n; ++j) q[RowStart(n) + j] = fvLowerTri[RowStart(last) + start + j];
    q[RowStart(n) + n] = fvLowerTri[RowStart(last) + last];
    if (!out.SetNRows(n + 1, false)) return false;
    out.fvLowerTri.swap(q);
    return true;
  });
}

bool ZRSymMatrix::ExtractBlockInLowTriangular(int r, int c, int m, int n,
                                              ZRRectMatrix & out) const {
  if (fnRows < 0 || !InTriangle(fnRows, r, c, m, n)) return false;
  if (!out.SetNRowsCols(m, n, false)) return false;
  for (int i = 0; i < m; ++i)
    for (int j = 0; j < n; ++j) out.SetElem(i, j, fvLowerTri[RowStart(r + i) + c + j]);
  return true;
}

bool ZRSymMatrix::ExtractDiagBlock(int start, int n, ZRSymMatrix & out) const {
  if (fnRows < 0 || start < 0 || n < 0 || static_cast<Index>(start) + n > fnRows || out.fnRows != n)
    return false;
  for (Index i = 0; i < n; ++i)
    for (Index j = 0; j <= i; ++j)
      out.fvLowerTri[RowStart(i) + j] += fvLowerTri[RowStart(start + i) + start + j];
  return true;
}

bool ZRSymMatrix::ExtractPartOfLastRow(int start, int n, std::vector<double> & v) const {
  if (fnRows < 1 || start < 0 || n < 1 || static_cast<Index>(start) + n > fnRows) return false;
  const double * row = fvLowerTri.data() + RowStart(fnRows - 1) + start;
  return NoThrow(false, [&] {
    v.assign(row, row + n);
    return true;
  });
}

bool ZRSymMatrix::GetPCol(int j, int r, int n, std::vector<double> & v) const {
  if (j < 0 || j >= fnRows || r < 0 || n < 0 || static_cast<Index>(r) + n > fnRows) return false;
  return NoThrow(false, [&] {
    std::vector<double> y(static_cast<std::size_t>(n));
    for (Index t = 0; t < n; ++t) y[t] = fvLowerTri[SymIndex(r + t, j)];
    v.swap(y);
    return true;
  });
}

// ---------------------------------------------------------------------------------------
// The rectangular product B S

bool ZRRectMatrix::ComputeBlockDiagSR(const ZRSymBlockDiagMatrix & B, int off,
                                      const ZRSymMatrix & S, int r, int c, int n, int m) {
  const int nb = OrderOf(B);
  if (nb < 0 || S.fnRows < 0 || r < 0 || c < 0 || n < 0 || m < 0 || off < 0) return false;
  if (static_cast<Index>(r) + n > S.fnRows ||
      static_cast<Index>(c) + m > static_cast<Index>(r) + 1 || static_cast<Index>(nb) + off > n)
    return false;
  if (!SizeTo(nb, m, true)) return false;
  const Index top = static_cast<Index>(r) + off;
  for (int b = 0; b < B.GetNBlocks(); ++b) {
    const Index s = B.GetBlockStartIndex(b), k = B.GetBlockSize(b);
    const ZRSymMatrix * dense = nullptr;
    const std::vector<double> * diag = nullptr;
    if (B.GetDiagonalBlock(b, diag)) {
      // A stored diagonal scales the rows of S.
      for (Index t = 0; t < k; ++t)
        for (Index q = 0; q < m; ++q)
          Row(static_cast<int>(s + t))[q] =
              (*diag)[t] * S.fvLowerTri[RowStart(top + s + t) + c + q];
    } else if (B.GetDenseBlock(b, dense)) {
      // Column q of S from row top + s is a growing walk with first step top + s + 1.
      for (Index t = 0; t < k; ++t)
        for (Index q = 0; q < m; ++q)
          dense->ComputeDotColVecIIncrPart(
              static_cast<int>(t), S.fvLowerTri, static_cast<int>(RowStart(top + s) + c + q),
              static_cast<int>(top + s + 1), Row(static_cast<int>(s + t))[q]);
    }
  }
  return true;
}

}  // namespace ZRMath_920
