// ZRSymMatrix products: with vectors, rectangular and symmetric matrices; quadratic and
// bilinear forms; traces; the Gram matrices of a rectangular matrix; and the scalar
// products along parts of the packed triangle from which substitutions and block
// products are built.
#include "zrcommon920r/math/matrix/symmatrix.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <new>
#include <stdexcept>
#include <typeinfo>
#include <vector>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/matrix/detail/nothrow_alloc.h"

namespace ZRMath_920 {

namespace {

using matrix_detail::NoThrow;
using ZRCommon_920::kSysMisValue;

// Packed offsets, strided and growing walks are worked in 64 bits, where none of them
// can overflow for int arguments.
using Index = std::int64_t;

// Margins of exp() in double precision; SquareRootVSV rescales outside them.
constexpr double kExpMax = 709.0;
constexpr double kExpMin = -708.39;

// Offset of element (i, 0) of a packed triangle.
inline Index RowStart(Index i) {
  return i * (i + 1) / 2;
}

// Offset of element (i, j) or (j, i) of a packed symmetric matrix.
inline Index SymIndex(Index i, Index j) {
  return i >= j ? RowStart(i) + j : RowStart(j) + i;
}

// Offset of element t of a walk that starts at start and whose steps are step, step + 1,
// step + 2, ...: from (r, c) of a packed triangle, step r + 1 walks down column c.
inline Index IIncrAt(Index start, Index step, Index t) {
  return start + t * step + t * (t - 1) / 2;
}

// A growing walk of count elements lies inside a vector of size elements.
bool IIncrFits(Index start, Index step, Index count, Index size) {
  if (start < 0 || step < 1 || count < 0) return false;
  return count == 0 || IIncrAt(start, step, count - 1) < size;
}

inline Index Size(const std::vector<double> & v) {
  return static_cast<Index>(v.size());
}

bool IsDense(const IZRSymMatrix & m) {
  return typeid(m) == typeid(ZRSymMatrix);
}
bool IsDense(const IZRRectMatrix & m) {
  return typeid(m) == typeid(ZRRectMatrix);
}

// Base of a walk of n elements with the BLAS rule: element k is at base[k * stride], so
// that a negative stride takes the elements from the far end.
inline const double * WalkBase(const double * x, Index n, Index stride) {
  return (stride < 0 && n > 0) ? x + (n - 1) * -stride : x;
}

// Calls f(t, S(i, c0 + t)) for t = 0 .. count - 1, S the packed symmetric matrix p: along
// the stored row while c0 + t <= i, then down column i with a growing step.
template <class F>
void ForSymRow(const double * p, Index i, Index c0, Index count, F f) {
  const double * row = p + RowStart(i);
  Index t = 0;
  for (; t < count && c0 + t <= i; ++t) f(t, row[c0 + t]);
  if (t == count) return;
  Index k = c0 + t;
  Index at = RowStart(k) + i;
  for (; t < count; ++t, ++k) {
    f(t, p[at]);
    at += k + 1;
  }
}

// Sum over t < count of S(i, c0 + t) * x(t), in ascending t.
template <class X>
double SymRowDot(const double * p, Index i, Index c0, Index count, X x) {
  double sum = 0.0;
  ForSymRow(p, i, c0, count, [&sum, &x](Index t, double s) { sum += s * x(t); });
  return sum;
}

// Sum over t < count of T(r0 + t, j) * x(t), down column j of the packed triangle from
// row r0 >= j.
template <class X>
double ColDot(const double * p, Index j, Index r0, Index count, X x) {
  double sum = 0.0;
  Index at = RowStart(r0) + j;
  for (Index t = 0; t < count; ++t) {
    sum += p[at] * x(t);
    at += r0 + t + 1;
  }
  return sum;
}

// v' A w for a symmetric A whose element (a, b), b <= a, is rowAt(a)[b]; v is zero outside
// positions v0 .. v0 + nv - 1 and w outside w0 .. w0 + nw - 1, vAt and wAt give elements
// by position. One pass over the stored rows: the pair (a, b) is taken from row max(a, b),
// so every element of A is read once. Recursive summation, rows in ascending order.
template <class RowAt, class VAt, class WAt>
double Form(RowAt rowAt, Index v0, Index nv, VAt vAt, Index w0, Index nw, WAt wAt) {
  if (nv <= 0 || nw <= 0) return 0.0;
  const Index first = std::min(v0, w0);
  const Index last = std::max(v0 + nv, w0 + nw);
  double q = 0.0;
  for (Index i = first; i < last; ++i) {
    const double * row = rowAt(i);
    double t = 0.0;
    if (i >= v0 && i < v0 + nv) {  // v_i A(i, b) w_b, b <= i
      const Index hi = std::min(i, w0 + nw - 1);
      double s = 0.0;
      for (Index b = w0; b <= hi; ++b) s += row[b] * wAt(b);
      t += vAt(i) * s;
    }
    if (i >= w0 && i < w0 + nw) {  // v_a A(a, i) w_i, a < i
      const Index hi = std::min(i - 1, v0 + nv - 1);
      double s = 0.0;
      for (Index a = v0; a <= hi; ++a) s += row[a] * vAt(a);
      t += wAt(i) * s;
    }
    q += t;
  }
  return q;
}

// v' S w for the packed symmetric S of order n, both vectors of n elements.
template <class VAt, class WAt>
double FullForm(const double * p, Index n, VAt vAt, WAt wAt) {
  return Form([p](Index a) { return p + RowStart(a); }, 0, n, vAt, 0, n, wAt);
}

double Dot(const double * x, const double * y, Index n) {
  double sum = 0.0;
  for (Index k = 0; k < n; ++k) sum += x[k] * y[k];
  return sum;
}

// y = S x for the packed symmetric S of order n, in one pass over the stored rows; y must
// not overlap x. Each y[i] is summed over the columns in ascending order.
void SymMatVec(const double * p, Index n, const double * x, double * y) {
  for (Index i = 0; i < n; ++i) {
    const double * row = p + RowStart(i);
    const double xi = x[i];
    double s = 0.0;
    for (Index j = 0; j < i; ++j) {
      s += row[j] * x[j];
      y[j] += row[j] * xi;
    }
    y[i] = s + row[i] * xi;
  }
}

// Row i of the packed symmetric matrix p of order n into row[0 .. n - 1].
void SymRow(const double * p, Index n, Index i, double * row) {
  ForSymRow(p, i, 0, n, [row](Index t, double s) { row[t] = s; });
}

// The full symmetric matrix, n x n by rows.
void Unpack(const double * p, Index n, double * full) {
  for (Index i = 0; i < n; ++i) SymRow(p, n, i, full + i * n);
}

// The packed lower triangle of any implementation, element by element.
void PackAny(const IZRSymMatrix & m, Index n, std::vector<double> & out) {
  out.resize(static_cast<std::size_t>(RowStart(n)));
  for (Index i = 0; i < n; ++i)
    for (Index j = 0; j <= i; ++j)
      out[RowStart(i) + j] = m.GetElem(static_cast<int>(i), static_cast<int>(j));
}

// The lower triangle of A B' for A, B n x n by rows: (i, j) = row i of A times row j of B.
void LowerOfABt(const double * a, const double * b, Index n, std::vector<double> & res) {
  res.assign(static_cast<std::size_t>(RowStart(n)), 0.0);
  for (Index i = 0; i < n; ++i)
    for (Index j = 0; j <= i; ++j) res[RowStart(i) + j] = Dot(a + i * n, b + j * n, n);
}

// Stores the packed result res of order n into out: by swapping buffers when outBuf (out's
// own buffer) is given, otherwise element by element. False when out cannot be sized to
// n or refuses an element.
bool StoreSym(std::vector<double> & res, Index n, IZRSymMatrix & out,
              std::vector<double> * outBuf) {
  if (!out.SetNRows(static_cast<int>(n), false) || out.GetNRows() != n) return false;
  if (outBuf != nullptr) {
    if (outBuf->size() != res.size()) return false;
    outBuf->swap(res);
    return true;
  }
  for (Index i = 0; i < n; ++i)
    for (Index j = 0; j <= i; ++j)
      if (!out.SetElem(static_cast<int>(i), static_cast<int>(j), res[RowStart(i) + j]))
        return false;
  return true;
}

// Stores res, m x p by rows, into out; false when out cannot be sized or refuses an element.
bool StoreRect(const std::vector<double> & res, Index m, Index p, IZRRectMatrix & out) {
  if (!out.SetNRowsCols(static_cast<int>(m), static_cast<int>(p), false) || out.GetNRows() != m ||
      out.GetNCols() != p) {
    return false;
  }
  const bool dense = IsDense(out);
  for (Index i = 0; i < m; ++i) {
    for (Index j = 0; j < p; ++j) {
      const int r = static_cast<int>(i), c = static_cast<int>(j);
      const double x = res[i * p + j];
      if (dense) {
        static_cast<ZRRectMatrix &>(out).ZRRectMatrix::SetElem(r, c, x);
      } else if (!out.SetElem(r, c, x)) {
        return false;
      }
    }
  }
  return true;
}

// R's elements by rows: R's own buffer when it is a ZRRectMatrix, else a copy in scratch
// read with GetRow. data is null when R has no elements. False when a row can't be read.
bool RectData(const IZRRectMatrix & r, std::vector<double> & scratch, const double *& data) {
  const Index m = r.GetNRows(), p = r.GetNCols();
  data = nullptr;
  if (m <= 0 || p <= 0) return true;
  if (IsDense(r)) {
    data = static_cast<const ZRRectMatrix &>(r).GetRowPtr(0);
    return data != nullptr;
  }
  scratch.resize(static_cast<std::size_t>(m * p));
  std::vector<double> row;
  for (Index i = 0; i < m; ++i) {
    if (!r.GetRow(static_cast<int>(i), row) || Size(row) < p) return false;
    std::copy(row.begin(), row.begin() + p, scratch.begin() + i * p);
  }
  data = scratch.data();
  return true;
}

// t becomes the transpose (p x m by rows) of a, m x p by rows.
void Transpose(const double * a, Index m, Index p, std::vector<double> & t) {
  t.resize(static_cast<std::size_t>(m * p));
  for (Index i = 0; i < m; ++i)
    for (Index j = 0; j < p; ++j) t[j * m + i] = a[i * p + j];
}

// out = A S for A m x n by rows and the packed symmetric S of order n: row a of the result
// is S times row a of A.
void RectTimesSym(const double * a, Index m, const double * s, Index n, double * out) {
  for (Index r = 0; r < m; ++r) SymMatVec(s, n, a + r * n, out + r * n);
}

}  // namespace

// ---------------------------------------------------------------------------------------
// Scalars of one matrix

double ZRSymMatrix::Trace() const {
  double sum = 0.0;
  Index at = 0;  // (i, i), stepping by i + 2
  for (Index i = 0; i < fnRows; at += i + 2, ++i) sum += fvLowerTri[at];
  return sum;
}

double ZRSymMatrix::ComputeDotProduct2Rows(int i, int j) const {
  if (i < 0 || i >= fnRows || j < 0 || j >= fnRows) return 0.0;
  const double * p = fvLowerTri.data();
  return SymRowDot(p, i, 0, fnRows, [p, j](Index k) { return p[SymIndex(j, k)]; });
}

double ZRSymMatrix::ComputeRVD(int i, const double * v, int stride) const {
  if (i < 0 || i >= fnRows || v == nullptr) return 0.0;
  const double * base = WalkBase(v, fnRows, stride);
  const Index step = stride;
  return SymRowDot(fvLowerTri.data(), i, 0, fnRows,
                   [base, step](Index k) { return base[k * step]; });
}

double ZRSymMatrix::ComputeRVD(int i, const std::vector<double> & v, int stride) const {
  if (i < 0 || i >= fnRows) return 0.0;
  const Index reach = static_cast<Index>(fnRows - 1) * std::abs(static_cast<Index>(stride));
  if (Size(v) <= reach) return 0.0;
  return ComputeRVD(i, v.data(), stride);
}

bool ZRSymMatrix::IncrVecByRow(int i, std::vector<double> & v, int start, int count, double f,
                               bool check) const {
  if (check && (i < 0 || i >= fnRows || start < 0 || count < 1 || count > fnRows ||
                static_cast<Index>(start) + count > Size(v))) {
    return false;
  }
  const Index len = std::min(count, fnRows);
  if (len < 1) return true;
  double * out = v.data() + start;
  ForSymRow(fvLowerTri.data(), i, 0, len, [out, f](Index t, double s) { out[t] += f * s; });
  return true;
}

// ---------------------------------------------------------------------------------------
// Rows of two symmetric matrices and traces

double ZRSymMatrix::ComputeRowDotProductS(int i, const std::vector<double> & M, int j) const {
  const Index n = fnRows;
  if (i < 0 || i >= n || j < 0 || j >= n || Size(M) != RowStart(n)) return 0.0;
  const double * m = M.data();
  return SymRowDot(fvLowerTri.data(), j, 0, n, [m, i](Index k) { return m[SymIndex(i, k)]; });
}

double ZRSymMatrix::ComputeRowDotProductS(int i, const IZRSymMatrix & M, int j) const {
  const Index n = fnRows;
  if (i < 0 || i >= n || j < 0 || j >= n || M.GetNRows() != n) return 0.0;
  if (IsDense(M)) {
    const double * m = static_cast<const ZRSymMatrix &>(M).fvLowerTri.data();
    return SymRowDot(fvLowerTri.data(), j, 0, n, [m, i](Index k) { return m[SymIndex(i, k)]; });
  }
  return SymRowDot(fvLowerTri.data(), j, 0, n,
                   [&M, i](Index k) { return M.GetElem(i, static_cast<int>(k)); });
}

void ZRSymMatrix::ComputeRowDotProductS(int i, const std::vector<double> & M,
                                        const std::vector<double> & N, int j, double & a,
                                        double & b) const {
  a = 0.0;
  b = 0.0;
  const Index n = fnRows;
  if (i < 0 || i >= n || j < 0 || j >= n || Size(M) != RowStart(n) || Size(N) != RowStart(n))
    return;
  const double * m = M.data();
  const double * nn = N.data();
  double sa = 0.0, sb = 0.0;
  ForSymRow(fvLowerTri.data(), j, 0, n, [&](Index k, double s) {
    const Index at = SymIndex(i, k);
    sa += m[at] * s;
    sb += nn[at] * s;
  });
  a = sa;
  b = sb;
}

void ZRSymMatrix::ComputeRowDotProductS(int i, const IZRSymMatrix & M, const IZRSymMatrix & N,
                                        int j, double & a, double & b) const {
  a = 0.0;
  b = 0.0;
  const Index n = fnRows;
  if (i < 0 || i >= n || j < 0 || j >= n || M.GetNRows() != n || N.GetNRows() != n) return;
  double sa = 0.0, sb = 0.0;
  ForSymRow(fvLowerTri.data(), j, 0, n, [&](Index k, double s) {
    const int c = static_cast<int>(k);
    sa += M.GetElem(i, c) * s;
    sb += N.GetElem(i, c) * s;
  });
  a = sa;
  b = sb;
}

double ZRSymMatrix::TraceOfProduct(const IZRSymMatrix & S) const {
  if (S.GetType() != kDenseSymMatrix) return kSysMisValue;
  const Index n = fnRows;
  if (n < 1 || S.GetNRows() != n) return 0.0;
  const double * p = fvLowerTri.data();
  const double * s = IsDense(S) ? static_cast<const ZRSymMatrix &>(S).fvLowerTri.data() : nullptr;
  // trace(A S) = sum over i of A(i, i) S(i, i) + 2 sum over k < i of A(i, k) S(i, k).
  double tr = 0.0;
  for (Index i = 0; i < n; ++i) {
    const double * a = p + RowStart(i);
    double off = 0.0, diag;
    if (s != nullptr) {
      const double * b = s + RowStart(i);
      for (Index k = 0; k < i; ++k) off += a[k] * b[k];
      diag = a[i] * b[i];
    } else {
      const int r = static_cast<int>(i);
      for (Index k = 0; k < i; ++k) off += a[k] * S.GetElem(r, static_cast<int>(k));
      diag = a[i] * S.GetElem(r, r);
    }
    tr += (off + off) + diag;
  }
  return tr;
}

double ZRSymMatrix::TraceOfProductOfThree(const IZRSymMatrix & S, const IZRSymMatrix & T) const {
  if (S.GetType() != kDenseSymMatrix || T.GetType() != kDenseSymMatrix) return kSysMisValue;
  const Index n = fnRows;
  if (n < 1 || S.GetNRows() != n || T.GetNRows() != n) return 0.0;
  return NoThrow(kSysMisValue, [&] {
    std::vector<double> sCopy, tCopy;
    const double * s = IsDense(S) ? static_cast<const ZRSymMatrix &>(S).fvLowerTri.data()
                                  : (PackAny(S, n, sCopy), sCopy.data());
    const double * t = IsDense(T) ? static_cast<const ZRSymMatrix &>(T).fvLowerTri.data()
                                  : (PackAny(T, n, tCopy), tCopy.data());
    std::vector<double> g(n), w(n), tr(n);
    // Row i of G S is S times row i of G; its product with row i of T is (G S T)(i, i).
    double sum = 0.0;
    for (Index i = 0; i < n; ++i) {
      SymRow(fvLowerTri.data(), n, i, g.data());
      SymMatVec(s, n, g.data(), w.data());
      SymRow(t, n, i, tr.data());
      sum += Dot(w.data(), tr.data(), n);
    }
    return sum;
  });
}

bool ZRSymMatrix::TraceOfProductSubMatSym(int off, const IZRSymMatrix & S, double & tr) const {
  tr = 0.0;
  const Index m = S.GetNRows();
  if (off < 0 || m < 0 || static_cast<Index>(off) + m > fnRows) return false;
  const double * p = fvLowerTri.data();
  const Index o = off;
  if (S.GetType() == kDiagSymMatrix) {  // only the diagonal of S can be non-zero
    return NoThrow(false, [&] {
      std::vector<double> d;
      S.GetDiagonal(d);
      if (Size(d) < m) return false;
      double sum = 0.0;
      for (Index i = 0; i < m; ++i) sum += p[RowStart(o + i) + o + i] * d[i];
      tr = sum;
      return true;
    });
  }
  const double * s = IsDense(S) ? static_cast<const ZRSymMatrix &>(S).fvLowerTri.data() : nullptr;
  double sum = 0.0;
  for (Index i = 0; i < m; ++i) {
    const double * a = p + RowStart(o + i) + o;
    double offd = 0.0, diag;
    if (s != nullptr) {
      const double * b = s + RowStart(i);
      for (Index k = 0; k < i; ++k) offd += a[k] * b[k];
      diag = a[i] * b[i];
    } else {
      const int r = static_cast<int>(i);
      for (Index k = 0; k < i; ++k) offd += a[k] * S.GetElem(r, static_cast<int>(k));
      diag = a[i] * S.GetElem(r, r);
    }
    sum += (offd + offd) + diag;
  }
  tr = sum;
  return true;
}

bool ZRSymMatrix::TraceOfProductSubSym(const std::vector<double> & M, int off, double & tr) const {
  tr = 0.0;
  const Index size = Size(M);
  // The order m of M: m (m + 1) / 2 must be its length exactly.
  Index m = static_cast<Index>((std::sqrt(8.0 * static_cast<double>(size) + 1.0) - 1.0) / 2.0);
  while (RowStart(m) > size) --m;
  while (RowStart(m + 1) <= size) ++m;
  if (RowStart(m) != size || off < 0 || static_cast<Index>(off) + m > fnRows) return false;
  const double * p = fvLowerTri.data();
  const double * s = M.data();
  const Index o = off;
  double sum = 0.0;
  for (Index i = 0; i < m; ++i) {
    const double * a = p + RowStart(o + i) + o;
    const double * b = s + RowStart(i);
    double offd = 0.0;
    for (Index k = 0; k < i; ++k) offd += a[k] * b[k];
    sum += (offd + offd) + a[i] * b[i];
  }
  tr = sum;
  return true;
}

// ---------------------------------------------------------------------------------------
// Products with vectors

bool ZRSymMatrix::ComputeSV(const std::vector<double> & v, std::vector<double> & out) const {
  if (fnRows < 0) return false;
  return ComputeSV(fnRows, v, out);
}

bool ZRSymMatrix::ComputeSV(int n, const std::vector<double> & v, std::vector<double> & out) const {
  if (n < 0 || n > fnRows || Size(v) < n) return false;
  return NoThrow(false, [&] {
    // The leading n rows and columns are the first n (n + 1) / 2 elements of the buffer.
    if (&out == &v) {
      std::vector<double> y(n);
      SymMatVec(fvLowerTri.data(), n, v.data(), y.data());
      out.swap(y);
    } else {
      out.resize(n);
      SymMatVec(fvLowerTri.data(), n, v.data(), out.data());
    }
    return true;
  });
}

bool ZRSymMatrix::ComputeLTransV(const std::vector<double> & v, std::vector<double> & out) const {
  if (fnRows < 0 || Size(v) != fnRows) return false;
  return NoThrow(false, [&] {
    if (&out != &v) out = v;
    return ComputeVecPartByL(out, 0);
  });
}

bool ZRSymMatrix::ComputeLV(const std::vector<double> & v, std::vector<double> & out) const {
  if (fnRows < 0 || Size(v) != fnRows) return false;
  return NoThrow(false, [&] {
    if (&out != &v) out = v;
    // Row i of L x reads x[0 .. i] only, so going upward from the last row works in place.
    const double * p = fvLowerTri.data();
    for (Index i = fnRows - 1; i >= 0; --i) {
      double s = 0.0;
      DotProdRowBeforeDiagFrontVec(static_cast<int>(i), out, s);
      out[i] = s + p[RowStart(i) + i] * out[i];
    }
    return true;
  });
}

bool ZRSymMatrix::ComputeLTransV(const std::vector<int> & idx, const std::vector<double> & val,
                                 std::vector<double> & out) const {
  const Index n = fnRows;
  if (n < 0 || idx.size() != val.size()) return false;
  for (int k : idx)
    if (k < 0 || k >= n) return false;
  return NoThrow(false, [&] {
    std::vector<double> y(n, 0.0);
    const double * p = fvLowerTri.data();
    // Entry (i, x) adds x times row i of L.
    for (std::size_t e = 0; e < idx.size(); ++e) {
      const Index i = idx[e];
      const double x = val[e];
      const double * row = p + RowStart(i);
      for (Index j = 0; j <= i; ++j) y[j] += row[j] * x;
    }
    out.swap(y);
    return true;
  });
}

bool ZRSymMatrix::ComputeLV(const std::vector<int> & idx, const std::vector<double> & val,
                            std::vector<double> & out) const {
  const Index n = fnRows;
  if (n < 0 || idx.size() != val.size()) return false;
  for (int k : idx)
    if (k < 0 || k >= n) return false;
  return NoThrow(false, [&] {
    std::vector<double> y(n, 0.0);
    const double * p = fvLowerTri.data();
    // Entry (j, x) adds x times column j of L, from its diagonal down.
    for (std::size_t e = 0; e < idx.size(); ++e) {
      const Index j = idx[e];
      const double x = val[e];
      Index at = RowStart(j) + j;
      for (Index i = j; i < n; ++i) {
        y[i] += p[at] * x;
        at += i + 1;
      }
    }
    out.swap(y);
    return true;
  });
}

bool ZRSymMatrix::ComputeRTransSV(const IZRRectMatrix & R, const std::vector<double> & v,
                                  std::vector<double> & out) const {
  const Index n = fnRows;
  if (n < 0 || !R.IsValidMatrix() || R.GetNRows() != n || Size(v) < n) return false;
  return NoThrow(false, [&] {
    const Index p = R.GetNCols();
    std::vector<double> scratch, y(n), res(p, 0.0);
    const double * r = nullptr;
    if (!RectData(R, scratch, r)) return false;
    SymMatVec(fvLowerTri.data(), n, v.data(), y.data());
    // res = y' R, rows of R added in ascending order.
    if (r != nullptr)
      for (Index k = 0; k < n; ++k)
        for (Index c = 0; c < p; ++c) res[c] += y[k] * r[k * p + c];
    out.swap(res);
    return true;
  });
}

// ---------------------------------------------------------------------------------------
// Products with rectangular matrices

bool ZRSymMatrix::ComputeRS(const IZRRectMatrix & R, IZRRectMatrix & out) const {
  const Index n = fnRows;
  if (n < 0 || !R.IsValidMatrix() || R.GetNCols() != n) return false;
  return NoThrow(false, [&] {
    const Index m = R.GetNRows();
    std::vector<double> scratch, res(m * n, 0.0);
    const double * r = nullptr;
    if (!RectData(R, scratch, r)) return false;
    if (r != nullptr) RectTimesSym(r, m, fvLowerTri.data(), n, res.data());
    return StoreRect(res, m, n, out);
  });
}

bool ZRSymMatrix::ComputeRTransS(const IZRRectMatrix & R, IZRRectMatrix & out) const {
  const Index n = fnRows;
  if (n < 0 || !R.IsValidMatrix() || R.GetNRows() != n) return false;
  return NoThrow(false, [&] {
    const Index p = R.GetNCols();
    std::vector<double> scratch, rt, res(p * n, 0.0);
    const double * r = nullptr;
    if (!RectData(R, scratch, r)) return false;
    if (r != nullptr) {
      Transpose(r, n, p, rt);
      RectTimesSym(rt.data(), p, fvLowerTri.data(), n, res.data());
    }
    return StoreRect(res, p, n, out);
  });
}

bool ZRSymMatrix::ComputeRSRTrans(const IZRRectMatrix & R, IZRSymMatrix & out) const {
  const Index n = fnRows;
  if (n < 0 || !R.IsValidMatrix() || R.GetNCols() != n) return false;
  return NoThrow(false, [&] {
    const Index m = R.GetNRows();
    std::vector<double> scratch, t(m * n, 0.0), res(RowStart(m), 0.0);
    const double * r = nullptr;
    if (!RectData(R, scratch, r)) return false;
    if (r != nullptr) {
      RectTimesSym(r, m, fvLowerTri.data(), n, t.data());  // T = R G
      for (Index a = 0; a < m; ++a)
        for (Index b = 0; b <= a; ++b) res[RowStart(a) + b] = Dot(t.data() + a * n, r + b * n, n);
    }
    return StoreSym(res, m, out,
                    IsDense(out) ? &static_cast<ZRSymMatrix &>(out).fvLowerTri : nullptr);
  });
}

bool ZRSymMatrix::ComputeRTransSR(const IZRRectMatrix & R, IZRSymMatrix & out) const {
  const Index n = fnRows;
  if (n < 0 || !R.IsValidMatrix() || R.GetNRows() != n) return false;
  return NoThrow(false, [&] {
    const Index p = R.GetNCols();
    std::vector<double> scratch, rt, t(p * n, 0.0), res(RowStart(p), 0.0);
    const double * r = nullptr;
    if (!RectData(R, scratch, r)) return false;
    if (r != nullptr) {
      Transpose(r, n, p, rt);
      RectTimesSym(rt.data(), p, fvLowerTri.data(), n, t.data());
      for (Index a = 0; a < p; ++a)
        for (Index b = 0; b <= a; ++b)
          res[RowStart(a) + b] = Dot(t.data() + a * n, rt.data() + b * n, n);
    }
    return StoreSym(res, p, out,
                    IsDense(out) ? &static_cast<ZRSymMatrix &>(out).fvLowerTri : nullptr);
  });
}

// ---------------------------------------------------------------------------------------
// Products with symmetric matrices

bool ZRSymMatrix::ComputeSS(const IZRSymMatrix & S, IZRRectMatrix & out) const {
  const Index n = fnRows;
  if (n < 0 || !S.IsValidMatrix() || S.GetNRows() != n) return false;
  return NoThrow(false, [&] {
    std::vector<double> sCopy, g(n * n), res(n * n, 0.0);
    const double * s = IsDense(S) ? static_cast<const ZRSymMatrix &>(S).fvLowerTri.data()
                                  : (PackAny(S, n, sCopy), sCopy.data());
    // Row i of G S is S times row i of G.
    Unpack(fvLowerTri.data(), n, g.data());
    RectTimesSym(g.data(), n, s, n, res.data());
    return StoreRect(res, n, n, out);
  });
}

void ZRSymMatrix::ComputeSTransS(IZRSymMatrix & out) const {
  const Index n = fnRows;
  if (n < 0) return;
  NoThrow(false, [&] {
    std::vector<double> g(n * n), res;
    Unpack(fvLowerTri.data(), n, g.data());
    LowerOfABt(g.data(), g.data(), n, res);
    return StoreSym(res, n, out,
                    IsDense(out) ? &static_cast<ZRSymMatrix &>(out).fvLowerTri : nullptr);
  });
}

bool ZRSymMatrix::ComputeGMG(const std::vector<double> & M, ZRSymMatrix & out) const {
  const Index n = fnRows;
  if (n < 0 || Size(M) != RowStart(n)) return false;
  return NoThrow(false, [&] {
    std::vector<double> g(n * n), w(n * n), res;
    Unpack(fvLowerTri.data(), n, g.data());
    RectTimesSym(g.data(), n, M.data(), n, w.data());  // W = G M
    LowerOfABt(w.data(), g.data(), n, res);            // W G
    return StoreSym(res, n, out, IsDense(out) ? &out.fvLowerTri : nullptr);
  });
}

bool ZRSymMatrix::ComputeGSG(const IZRSymMatrix & S, IZRSymMatrix & out) const {
  const Index n = fnRows;
  if (n < 0 || !S.IsValidMatrix() || S.GetNRows() != n) return false;
  return NoThrow(false, [&] {
    std::vector<double> sCopy, g(n * n), w(n * n), res;
    const double * s = IsDense(S) ? static_cast<const ZRSymMatrix &>(S).fvLowerTri.data()
                                  : (PackAny(S, n, sCopy), sCopy.data());
    Unpack(fvLowerTri.data(), n, g.data());
    RectTimesSym(g.data(), n, s, n, w.data());  // W = G S
    LowerOfABt(w.data(), g.data(), n, res);     // W G
    return StoreSym(res, n, out,
                    IsDense(out) ? &static_cast<ZRSymMatrix &>(out).fvLowerTri : nullptr);
  });
}

bool ZRSymMatrix::ComputeGMGNG(const IZRSymMatrix & M, const IZRSymMatrix & N, IZRSymMatrix & out,
                               std::vector<double> & work) const {
  const Index n = fnRows;
  if (n < 0 || !M.IsValidMatrix() || !N.IsValidMatrix() || M.GetNRows() != n || N.GetNRows() != n) {
    return false;
  }
  return NoThrow(false, [&] {
    std::vector<double> mCopy, nCopy, g(n * n), w(n * n), res;
    const double * m = IsDense(M) ? static_cast<const ZRSymMatrix &>(M).fvLowerTri.data()
                                  : (PackAny(M, n, mCopy), mCopy.data());
    const double * nn = IsDense(N) ? static_cast<const ZRSymMatrix &>(N).fvLowerTri.data()
                                   : (PackAny(N, n, nCopy), nCopy.data());
    Unpack(fvLowerTri.data(), n, g.data());
    work.assign(static_cast<std::size_t>(n * n), 0.0);
    RectTimesSym(g.data(), n, m, n, w.data());  // W = G M
    // A = W G = G M G, formed in full: (i, j) = row i of W times row j of G.
    for (Index i = 0; i < n; ++i)
      for (Index j = 0; j < n; ++j) work[i * n + j] = Dot(w.data() + i * n, g.data() + j * n, n);
    RectTimesSym(work.data(), n, nn, n, w.data());  // W = A N
    LowerOfABt(w.data(), g.data(), n, res);         // A N G
    return StoreSym(res, n, out,
                    IsDense(out) ? &static_cast<ZRSymMatrix &>(out).fvLowerTri : nullptr);
  });
}

bool ZRSymMatrix::ComputeMGN(const IZRSymMatrix & M, const IZRSymMatrix & N,
                             IZRSymMatrix & out) const {
  const Index n = fnRows;
  if (n < 0 || !M.IsValidMatrix() || !N.IsValidMatrix() || M.GetNRows() != n || N.GetNRows() != n) {
    return false;
  }
  return NoThrow(false, [&] {
    std::vector<double> mCopy, nCopy, mf(n * n), nf(n * n), w(n * n), res;
    const double * m = IsDense(M) ? static_cast<const ZRSymMatrix &>(M).fvLowerTri.data()
                                  : (PackAny(M, n, mCopy), mCopy.data());
    const double * nn = IsDense(N) ? static_cast<const ZRSymMatrix &>(N).fvLowerTri.data()
                                   : (PackAny(N, n, nCopy), nCopy.data());
    Unpack(m, n, mf.data());
    Unpack(nn, n, nf.data());
    RectTimesSym(mf.data(), n, fvLowerTri.data(), n, w.data());  // W = M G
    LowerOfABt(w.data(), nf.data(), n, res);                     // W N
    return StoreSym(res, n, out,
                    IsDense(out) ? &static_cast<ZRSymMatrix &>(out).fvLowerTri : nullptr);
  });
}

bool ZRSymMatrix::ComputeLSLTrans(const IZRSymMatrix & L, IZRSymMatrix & out) const {
  const Index n = fnRows;
  if (n < 0 || !L.IsValidMatrix() || L.GetNRows() != n) return false;
  return NoThrow(false, [&] {
    std::vector<double> lCopy, g(n * n), w(n * n, 0.0), res(RowStart(n), 0.0);
    const double * l = IsDense(L) ? static_cast<const ZRSymMatrix &>(L).fvLowerTri.data()
                                  : (PackAny(L, n, lCopy), lCopy.data());
    Unpack(fvLowerTri.data(), n, g.data());
    // W = L G: row i of W is the sum over a <= i of L(i, a) times row a of G.
    for (Index i = 0; i < n; ++i) {
      double * wi = w.data() + i * n;
      const double * li = l + RowStart(i);
      for (Index a = 0; a <= i; ++a) {
        const double f = li[a];
        const double * ga = g.data() + a * n;
        for (Index c = 0; c < n; ++c) wi[c] += f * ga[c];
      }
    }
    // (W L')(i, j) is row i of W times the stored row j of L, columns 0 .. j.
    for (Index i = 0; i < n; ++i)
      for (Index j = 0; j <= i; ++j)
        res[RowStart(i) + j] = Dot(w.data() + i * n, l + RowStart(j), j + 1);
    return StoreSym(res, n, out,
                    IsDense(out) ? &static_cast<ZRSymMatrix &>(out).fvLowerTri : nullptr);
  });
}

bool ZRSymMatrix::ComputeLTransSL(const IZRSymMatrix & L, IZRSymMatrix & out, int k) const {
  if (k < 1 || !L.IsValidMatrix() || out.GetType() != kDenseSymMatrix || fnRows < 0) return false;
  const Index m = L.GetNRows();
  if (static_cast<Index>(fnRows) != m * k) return false;
  return NoThrow(false, [&] {
    ZRSymMatrix copy;
    const ZRSymMatrix * lm = IsDense(L) ? &static_cast<const ZRSymMatrix &>(L) : nullptr;
    if (lm == nullptr) {
      if (!copy.SetNRows(static_cast<int>(m), false)) return false;
      PackAny(L, m, copy.fvLowerTri);
      lm = &copy;
    }
    const Index n = fnRows;
    const double * l = lm->fvLowerTri.data();
    std::vector<double> t(m * m), res(RowStart(n), 0.0);  // t by columns: T(p, c) at c m + p
    for (Index bi = 0; bi < k; ++bi) {
      for (Index bj = 0; bj <= bi; ++bj) {
        // T = S(bi, bj) L, element (p, c) from row p of the block and column c of L.
        for (Index p = 0; p < m; ++p) {
          for (Index c = 0; c < m; ++c) {
            double x = 0.0;
            if (bi == bj)
              DotProductLBlockDiagColRow(static_cast<int>(bi), static_cast<int>(p), *lm,
                                         static_cast<int>(c), x);
            else
              DotProductLBlockColRow(static_cast<int>(bi), static_cast<int>(bj),
                                     static_cast<int>(p), *lm, static_cast<int>(c), x);
            t[c * m + p] = x;
          }
        }
        // Block (bi, bj) of the result is L' T: column r of L, from its diagonal down,
        // times column c of T. A diagonal block needs its lower triangle only.
        for (Index r = 0; r < m; ++r) {
          const Index cEnd = bi == bj ? r + 1 : m;
          double * dst = res.data() + RowStart(bi * m + r) + bj * m;
          for (Index c = 0; c < cEnd; ++c) {
            double below = 0.0;
            lm->ComputeDotLColVecPart(static_cast<int>(r), static_cast<int>(m - 1 - r), t,
                                      static_cast<int>(c * m + r + 1), below);
            dst[c] = l[RowStart(r) + r] * t[c * m + r] + below;
          }
        }
      }
    }
    return StoreSym(res, n, out,
                    IsDense(out) ? &static_cast<ZRSymMatrix &>(out).fvLowerTri : nullptr);
  });
}

// ---------------------------------------------------------------------------------------
// Gram matrices

bool ZRSymMatrix::ComputeRByRTrans(const ZRRectMatrix & R) {
  if (!R.IsValidMatrix()) return false;
  const Index m = R.GetNRows(), p = R.GetNCols();
  if (!SetNRows(static_cast<int>(m), true)) return false;
  if (m < 1 || p < 1) return true;
  const double * a = R.GetRowPtr(0);
  for (Index i = 0; i < m; ++i)
    for (Index j = 0; j <= i; ++j) fvLowerTri[RowStart(i) + j] = Dot(a + i * p, a + j * p, p);
  return true;
}

bool ZRSymMatrix::ComputeRTransByR(const ZRRectMatrix & R) {
  if (!R.IsValidMatrix()) return false;
  const Index m = R.GetNRows(), p = R.GetNCols();
  if (!SetNRows(static_cast<int>(p), true)) return false;
  if (m < 1 || p < 1) return true;
  const double * a = R.GetRowPtr(0);
  // Row k of R adds its outer product, so each element sums over rows in ascending order.
  for (Index k = 0; k < m; ++k) {
    const double * x = a + k * p;
    for (Index i = 0; i < p; ++i) {
      double * row = fvLowerTri.data() + RowStart(i);
      const double xi = x[i];
      for (Index j = 0; j <= i; ++j) row[j] += xi * x[j];
    }
  }
  return true;
}

// ---------------------------------------------------------------------------------------
// Quadratic and bilinear forms

double ZRSymMatrix::ComputeVSV(const std::vector<double> & v) const {
  return ComputeVSW(v, v);
}

double ZRSymMatrix::ComputeVSW(const std::vector<double> & v, const std::vector<double> & w) const {
  if (fnRows < 1 || Size(v) < fnRows || Size(w) < fnRows) return 0.0;
  const double * x = v.data();
  const double * y = w.data();
  return FullForm(
      fvLowerTri.data(), fnRows, [x](Index a) { return x[a]; }, [y](Index b) { return y[b]; });
}

double ZRSymMatrix::ComputeVSW(const double * v, int vs, const double * w, int ws) const {
  return ComputeVSWParts(v, vs, fnRows, w, ws, fnRows);
}

double ZRSymMatrix::ComputeVSWParts(const double * v, int nv, const double * w, int nw) const {
  return ComputeVSWParts(v, 1, nv, w, 1, nw);
}

double ZRSymMatrix::ComputeVSWParts(const std::vector<double> & v, int nv,
                                    const std::vector<double> & w, int nw) const {
  if (nv < 0 || nw < 0 || Size(v) < nv || Size(w) < nw) return 0.0;
  return ComputeVSWParts(v.data(), 1, nv, w.data(), 1, nw);
}

double ZRSymMatrix::ComputeVSWParts(const double * v, int sv, int nv, const double * w, int sw,
                                    int nw) const {
  if (nv < 1 || nw < 1 || nv > fnRows || nw > fnRows || v == nullptr || w == nullptr) return 0.0;
  const double * x = WalkBase(v, nv, sv);
  const double * y = WalkBase(w, nw, sw);
  const Index xs = sv, ys = sw;
  const double * p = fvLowerTri.data();
  return Form([p](Index a) { return p + RowStart(a); }, 0, nv,
              [x, xs](Index a) { return x[a * xs]; }, 0, nw,
              [y, ys](Index b) { return y[b * ys]; });
}

double ZRSymMatrix::ComputeVSW(const std::vector<double> & M, int n, int i, int j) const {
  if (n < 1 || n > fnRows || i < 0 || i >= n || j < 0 || j >= n || Size(M) < RowStart(n))
    return 0.0;
  const double * p = fvLowerTri.data();
  const double * m = M.data();
  return FullForm(
      m, n, [p, i](Index a) { return p[SymIndex(i, a)]; },
      [p, j](Index b) { return p[SymIndex(j, b)]; });
}

double ZRSymMatrix::ComputeVSV(const IZRRectMatrix & R, int row) const {
  if (R.GetMatrixType() == IZRRectMatrix::kSparseRectMatrix) return kSysMisValue;
  if (fnRows < 1 || !R.IsValidMatrix() || R.GetNCols() != fnRows || row < 0 ||
      row >= R.GetNRows()) {
    return 0.0;
  }
  return NoThrow(kSysMisValue, [&] {
    std::vector<double> copy;
    const double * r = nullptr;
    if (IsDense(R)) {
      r = static_cast<const ZRRectMatrix &>(R).GetRowPtr(row);
    } else if (R.GetRow(row, copy) && Size(copy) >= fnRows) {
      r = copy.data();
    }
    if (r == nullptr) return 0.0;
    return FullForm(
        fvLowerTri.data(), fnRows, [r](Index a) { return r[a]; }, [r](Index b) { return r[b]; });
  });
}

double ZRSymMatrix::ComputeVSV(const std::vector<int> & idx,
                               const std::vector<double> & val) const {
  if (idx.size() != val.size()) return 0.0;
  for (int k : idx)
    if (k < 0 || k >= fnRows) return 0.0;
  // The sum over entry pairs (a, b) of val[a] S(idx[a], idx[b]) val[b], each unordered
  // pair once and doubled; repeated or unordered indices need no care.
  const double * p = fvLowerTri.data();
  double q = 0.0;
  for (std::size_t a = 0; a < idx.size(); ++a) {
    const Index ia = idx[a];
    double off = 0.0;
    for (std::size_t b = 0; b < a; ++b) off += p[SymIndex(ia, idx[b])] * val[b];
    q += val[a] * ((off + off) + p[RowStart(ia) + ia] * val[a]);
  }
  return q;
}

double ZRSymMatrix::SquareRootVSV(const std::vector<double> & v) const {
  if (fnRows < 0 || Size(v) != fnRows) return 0.0;
  const Index n = fnRows;
  const double * p = fvLowerTri.data();
  // m bounds the log of the largest term of the form: log |a(i, i)| + 2 log |v[i]| + 2 log n.
  double m = 0.0;
  for (Index i = 0; i < n; ++i) {
    const double t = std::log(std::fabs(p[RowStart(i) + i])) + 2.0 * std::log(std::fabs(v[i]));
    if (t > m) m = t;
  }
  m += 2.0 * std::log(static_cast<double>(n));
  const bool scaled = m > kExpMax || m < kExpMin;
  double s = 1.0;
  if (scaled) {
    const double t = m > kExpMax ? (m - kExpMax) * 0.5 : m * 0.5;
    if (t > kExpMax || t < kExpMin) return 0.0;
    s = std::exp(t);
  }
  const double * x = v.data();
  auto plain = [x](Index a) { return x[a]; };
  auto divided = [x, s](Index a) { return x[a] / s; };
  const double q = scaled ? FullForm(p, n, divided, divided) : FullForm(p, n, plain, plain);
  // Intended: a form that comes out as the system-missing value is passed on as it is.
  if (q == kSysMisValue) return q;
  // Intended: a form not above 0.0, NaN included, gives 0.0.
  if (!(q > 0.0)) return 0.0;
  const double r = std::sqrt(q);
  if (std::log(s) + std::log(r) > kExpMax) return kSysMisValue;
  return r * s;
}

double ZRSymMatrix::ComputeSpVSSpW(int r, const std::vector<int> & vi,
                                   const std::vector<double> & v, int c,
                                   const std::vector<int> & wi,
                                   const std::vector<double> & w) const {
  if (vi.size() != v.size() || wi.size() != w.size()) return 0.0;
  const Index n = fnRows;
  for (int k : vi)
    if (static_cast<Index>(k) + r < 0 || static_cast<Index>(k) + r >= n) return 0.0;
  for (int k : wi)
    if (static_cast<Index>(k) + c < 0 || static_cast<Index>(k) + c >= n) return 0.0;
  const double * p = fvLowerTri.data();
  double q = 0.0;
  for (std::size_t a = 0; a < vi.size(); ++a) {
    const Index row = static_cast<Index>(vi[a]) + r;
    double s = 0.0;
    for (std::size_t b = 0; b < wi.size(); ++b)
      s += p[SymIndex(row, static_cast<Index>(wi[b]) + c)] * w[b];
    q += v[a] * s;
  }
  return q;
}

double ZRSymMatrix::ComputeViiSW(const double * v, int i, const double * w, int n) const {
  return ComputeVSWii(w, n, v, i);
}

double ZRSymMatrix::ComputeVSWii(const double * v, int n, const double * w, int i) const {
  if (n < 1 || n > fnRows || i < 1 || v == nullptr || w == nullptr) return 0.0;
  const Index step = i;
  return FullForm(
      fvLowerTri.data(), n, [v](Index a) { return v[a]; },
      [w, step](Index b) { return w[IIncrAt(0, step, b)]; });
}

double ZRSymMatrix::ComputeVSSubWParts(const double * v, int o1, int n1, int s1, const double * w,
                                       int o2, int n2, int s2, int r, int c) const {
  if (o1 < 0 || n1 < 0 || o2 < 0 || n2 < 0 || r < 0 || c < 0 || static_cast<Index>(o1) + n1 > c ||
      static_cast<Index>(o2) + n2 > c || static_cast<Index>(r) + c > fnRows) {
    return 0.0;
  }
  if (n1 == 0 || n2 == 0 || v == nullptr || w == nullptr) return 0.0;
  const double * x = WalkBase(v, n1, s1);
  const double * y = WalkBase(w, n2, s2);
  const Index xs = s1, ys = s2, x0 = o1, y0 = o2, r0 = r;
  const double * p = fvLowerTri.data();
  return Form([p, r0](Index a) { return p + RowStart(r0 + a) + r0; }, x0, n1,
              [x, xs, x0](Index a) { return x[(a - x0) * xs]; }, y0, n2,
              [y, ys, y0](Index b) { return y[(b - y0) * ys]; });
}

double ZRSymMatrix::ComputeVSymSubW(int r, int n, const std::vector<double> & v, int vo,
                                    const std::vector<double> & w, int wo) const {
  if (r < 0 || n < 1 || static_cast<Index>(r) + n > fnRows || vo < 0 || wo < 0 ||
      static_cast<Index>(vo) + n > Size(v) || static_cast<Index>(wo) + n > Size(w)) {
    return 0.0;
  }
  const double * x = v.data() + vo;
  const double * y = w.data() + wo;
  const double * p = fvLowerTri.data();
  const Index r0 = r;
  return Form([p, r0](Index a) { return p + RowStart(r0 + a) + r0; }, 0, n,
              [x](Index a) { return x[a]; }, 0, n, [y](Index b) { return y[b]; });
}

double ZRSymMatrix::ComputeBlockVSV(int b, int o, const std::vector<double> & v) const {
  return ComputeBlockVSW(b, o, v, v);
}

double ZRSymMatrix::ComputeBlockVSW(int b, int o, const std::vector<double> & v,
                                    const std::vector<double> & w) const {
  const Index bs = fnBlockSize;
  if (b < 0 || b >= fnBlocks || bs < 1 || (static_cast<Index>(b) + 1) * bs > fnRows) return 0.0;
  return ComputeVSymSubW(static_cast<int>(b * bs), static_cast<int>(bs), v, o, w, o);
}

// ---------------------------------------------------------------------------------------
// Parts of the triangle

bool ZRSymMatrix::ComputeDotColVecIIncrPart(int j, const std::vector<double> & v, int start, int n,
                                            double & out) const {
  out = 0.0;
  if (j < 0 || j >= fnRows || !IIncrFits(start, n, fnRows, Size(v))) return false;
  const double * x = v.data();
  const Index s0 = start, step = n;
  out = SymRowDot(fvLowerTri.data(), j, 0, fnRows,
                  [x, s0, step](Index t) { return x[IIncrAt(s0, step, t)]; });
  return true;
}

bool ZRSymMatrix::ComputeDotLColVecIIncrDiag(int j, const std::vector<double> & v, int start, int n,
                                             double & out) const {
  out = 0.0;
  if (j < 0 || j >= fnRows) return false;
  const Index count = static_cast<Index>(fnRows) - j;
  if (!IIncrFits(start, n, count, Size(v))) return false;
  const double * x = v.data();
  const Index s0 = start, step = n;
  out = ColDot(fvLowerTri.data(), j, j, count,
               [x, s0, step](Index t) { return x[IIncrAt(s0, step, t)]; });
  return true;
}

bool ZRSymMatrix::ComputeDotLColVecIIncrPart(int j, int count, const std::vector<double> & v,
                                             int start, int n, double & out) const {
  return DotLColVecDelayedIIncrPart(j, 0, count, v, start, n, out);
}

bool ZRSymMatrix::DotLColVecDelayedIIncrPart(int j, int delay, int count,
                                             const std::vector<double> & v, int start, int n,
                                             double & out) const {
  out = 0.0;
  const Index r0 = static_cast<Index>(j) + 1 + delay;
  if (j < 0 || delay < 0 || count < 0 || r0 + count > fnRows ||
      !IIncrFits(start, n, count, Size(v))) {
    return false;
  }
  const double * x = v.data();
  const Index s0 = start, step = n;
  out = ColDot(fvLowerTri.data(), j, r0, count,
               [x, s0, step](Index t) { return x[IIncrAt(s0, step, t)]; });
  return true;
}

bool ZRSymMatrix::ComputeDotLColVecPart(int j, int count, const std::vector<double> & v, int start,
                                        double & out) const {
  out = 0.0;
  if (j < 0 || count < 0 || static_cast<Index>(j) + 1 + count > fnRows || start < 0 ||
      static_cast<Index>(start) + count > Size(v)) {
    return false;
  }
  const double * x = v.data() + start;
  out =
      ColDot(fvLowerTri.data(), j, static_cast<Index>(j) + 1, count, [x](Index t) { return x[t]; });
  return true;
}

bool ZRSymMatrix::ComputeDotLRowVecPart(int i, int count, const std::vector<double> & v, int start,
                                        double & out) const {
  out = 0.0;
  if (i < 0 || i >= fnRows || count < 0 || count > i || start < 0 ||
      static_cast<Index>(start) + count > Size(v)) {
    return false;
  }
  out = Dot(fvLowerTri.data() + RowStart(i), v.data() + start, count);
  return true;
}

bool ZRSymMatrix::DotProdRowBeforeDiagFrontVec(int i, const std::vector<double> & v,
                                               double & out) const {
  return ComputeDotLRowVecPart(i, i, v, 0, out);
}

bool ZRSymMatrix::DotProdColBelowDiagBackVec(int j, const std::vector<double> & v,
                                             double & out) const {
  out = 0.0;
  if (j < 0 || j >= fnRows || Size(v) < fnRows) return false;
  return ComputeDotLColVecPart(j, fnRows - 1 - j, v, j + 1, out);
}

bool ZRSymMatrix::DotRowVecDelayedIIncrPart(int i, int delay, int count,
                                            const std::vector<double> & v, int start, int n,
                                            double & out) const {
  out = 0.0;
  if (i < 0 || i >= fnRows || delay < 0 || count < 0 ||
      static_cast<Index>(delay) + count > fnRows || !IIncrFits(start, n, count, Size(v))) {
    return false;
  }
  const double * x = v.data();
  const Index s0 = start, step = n;
  out = SymRowDot(fvLowerTri.data(), i, delay, count,
                  [x, s0, step](Index t) { return x[IIncrAt(s0, step, t)]; });
  return true;
}

bool ZRSymMatrix::DotLColRowPart(int j, int i, int first, int count, double & out) const {
  out = 0.0;
  if (j < 0 || j >= fnRows || first < j || count < 0 || i < 0 || i >= fnRows ||
      static_cast<Index>(first) + count > static_cast<Index>(i) + 1) {
    return false;
  }
  const double * row = fvLowerTri.data() + RowStart(i) + first;
  out = ColDot(fvLowerTri.data(), j, first, count, [row](Index t) { return row[t]; });
  return true;
}

bool ZRSymMatrix::DotProductLColRowPart(int j, const ZRSymMatrix & S, int i, int first, int count,
                                        double & out) const {
  out = 0.0;
  const Index end = static_cast<Index>(first) + count;
  if (j < 0 || j >= fnRows || first < j || count < 0 || end > fnRows || i < 0 || i >= S.fnRows ||
      end > S.fnRows) {
    return false;
  }
  const double * s = S.fvLowerTri.data();
  const Index f0 = first;
  out = ColDot(fvLowerTri.data(), j, first, count,
               [s, i, f0](Index t) { return s[SymIndex(i, f0 + t)]; });
  return true;
}

bool ZRSymMatrix::DotProductLBlockColRow(int bi, int bj, int r, const ZRSymMatrix & L, int c,
                                         double & out) const {
  out = 0.0;
  const Index m = L.fnRows;
  if (m < 1 || bi < 0 || bj < 0 || bi == bj || r < 0 || r >= m || c < 0 || c >= m ||
      (static_cast<Index>(std::max(bi, bj)) + 1) * m > fnRows) {
    return false;
  }
  const double * p = fvLowerTri.data();
  const double * l = L.fvLowerTri.data();
  const Index row = bi * m + r, col0 = bj * m;
  double sum = 0.0;
  Index la = RowStart(c) + c;  // L(q, c), down column c
  if (bi > bj) {               // the block row is stored whole, left of the diagonal
    const double * s = p + RowStart(row) + col0;
    for (Index q = c; q < m; la += q + 1, ++q) sum += s[q] * l[la];
  } else {  // above the diagonal: column bi m + r of block (bj, bi), read downwards
    Index sa = RowStart(col0 + c) + row;
    for (Index q = c; q < m; la += q + 1, sa += col0 + q + 1, ++q) sum += p[sa] * l[la];
  }
  out = sum;
  return true;
}

bool ZRSymMatrix::DotProductLBlockDiagColRow(int b, int r, const ZRSymMatrix & L, int c,
                                             double & out) const {
  out = 0.0;
  const Index m = L.fnRows;
  if (m < 1 || b < 0 || r < 0 || r >= m || c < 0 || c >= m ||
      (static_cast<Index>(b) + 1) * m > fnRows) {
    return false;
  }
  const double * l = L.fvLowerTri.data();
  const Index base = b * m;
  double sum = 0.0;
  Index la = RowStart(c) + c;
  // Row r of the block, from column c: along the stored row, then down column base + r.
  ForSymRow(fvLowerTri.data(), base + r, base + c, m - c, [&](Index t, double s) {
    sum += s * l[la];
    la += c + t + 1;
  });
  out = sum;
  return true;
}

bool ZRSymMatrix::ComputeVecPartByL(std::vector<double> & v, int start) const {
  if (fnRows < 0 || start < 0 || static_cast<Index>(start) + fnRows > Size(v)) return false;
  double * x = v.data() + start;
  const double * p = fvLowerTri.data();
  // y_c = sum over k >= c of x_k L(k, c); y_c needs x_c .. x_{n-1} only, so ascending c
  // works in place.
  for (Index c = 0; c < fnRows; ++c)
    x[c] = ColDot(p, c, c, fnRows - c, [x, c](Index t) { return x[c + t]; });
  return true;
}

bool ZRSymMatrix::ComputeVecIIncPartByL(std::vector<double> & v, int start, int n) const {
  if (fnRows < 0 || !IIncrFits(start, n, fnRows, Size(v))) return false;
  double * x = v.data();
  const double * p = fvLowerTri.data();
  const Index s0 = start, step = n;
  for (Index c = 0; c < fnRows; ++c) {
    x[IIncrAt(s0, step, c)] = ColDot(
        p, c, c, fnRows - c, [x, s0, step, c](Index t) { return x[IIncrAt(s0, step, c + t)]; });
  }
  return true;
}

}  // namespace ZRMath_920
