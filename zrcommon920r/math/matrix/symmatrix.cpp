// ZRSymMatrix, the dense symmetric matrix in packed storage: construction and sizing,
// element access, diagonal edits, zeroing, sub-matrices and expansion, model checks and
// display. The Cholesky family is in symmatrix_chol.cpp.
#include "zrcommon920r/math/matrix/symmatrix.h"
#include "zrcommon920r/math/matrix/detail/nothrow_alloc.h"

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <new>
#include <stdexcept>
#include <string>
#include <typeinfo>

#include "zrcommon920r/display/display.h"
#include "zrcommon920r/math/matrix/detail/display_rows.h"

namespace ZRMath_920 {

namespace {

using matrix_detail::AssignNoThrow;
using matrix_detail::CopyNoThrow;
using matrix_detail::ResizeNoThrow;

// Offset of element (i, 0) in the packed buffer. Worked in std::size_t because i (i + 1)
// overflows an int from i = 46341 on, while the offset itself still fits.
inline std::size_t RowStart(int i) {
  return static_cast<std::size_t>(i) * (static_cast<std::size_t>(i) + 1) / 2;
}

// Offset of element (i, j) or (j, i).
inline std::size_t Index(int i, int j) {
  return i >= j ? RowStart(i) + j : RowStart(j) + i;
}

// Number of packed elements of a matrix of order n (n >= 0), in 64 bits.
inline std::int64_t PackedCount(std::int64_t n) {
  return n * (n + 1) / 2;
}

// The dense matrix behind an interface reference when its dynamic type is exactly
// ZRSymMatrix (its buffer is then read directly), otherwise null.
const ZRSymMatrix * ExactlyDense(const IZRSymMatrix & m) {
  return typeid(m) == typeid(ZRSymMatrix) ? static_cast<const ZRSymMatrix *>(&m) : nullptr;
}

// An output argument that is a dense matrix, or null.
ZRSymMatrix * DenseOut(IZRSymMatrix & m) {
  return m.GetType() == IZRSymMatrix::kDenseSymMatrix ? dynamic_cast<ZRSymMatrix *>(&m) : nullptr;
}

// Positions of the set bits of set, in ascending order; false when memory runs out.
bool SetPositions(const ZRBitSet & set, int limit, std::vector<int> & pos) {
  pos.clear();
  try {
    for (int i = 0; i < limit; ++i)
      if (set.IsIn(i)) pos.push_back(i);
  } catch (const std::bad_alloc &) {
    return false;
  }
  return true;
}

}  // namespace

// ---------------------------------------------------------------------------------------
// Construction and sizing

bool ZRSymMatrix::ResizeNRows(std::vector<double> & v, int & n) {
  if (n > 0) {
    const std::int64_t count = PackedCount(n);
    if (count > INT_MAX || !ResizeNoThrow(v, static_cast<std::size_t>(count))) n = -1;
  }
  if (n <= 0) std::vector<double>().swap(v);
  return n >= 0;
}

bool ZRSymMatrix::ResizeNCopy(std::vector<double> & v, const std::vector<double> & src) {
  try {
    v = src;
  } catch (const std::bad_alloc &) {
    return false;
  } catch (const std::length_error &) {
    return false;
  }
  return true;
}

ZRSymMatrix::ZRSymMatrix() : fnRows(0), fnBlocks(0), fnBlockSize(0) {}

ZRSymMatrix::ZRSymMatrix(int nRows, bool clear) : fnRows(0), fnBlocks(0), fnBlockSize(0) {
  Resize(nRows);
  if (clear && fnRows > 0) Clear();
}

ZRSymMatrix::ZRSymMatrix(int nBlocks, int blockSize, bool clear)
    : fnRows(0), fnBlocks(0), fnBlockSize(0) {
  if (nBlocks < 1 || blockSize < 1) return;
  const std::int64_t rows = static_cast<std::int64_t>(nBlocks) * blockSize;
  int n = rows > INT_MAX ? -1 : static_cast<int>(rows);
  if (n < 0 || !ResizeNRows(fvLowerTri, n)) {
    fnRows = -1;
    fnBlocks = 1;
    fnBlockSize = -1;
    return;
  }
  fnRows = n;
  fnBlocks = nBlocks;
  fnBlockSize = blockSize;
  if (clear) Clear();
}

ZRSymMatrix::ZRSymMatrix(const ZRSymMatrix & other)
    : IZRSymMatrix(),
      fnRows(other.fnRows),
      fnBlocks(other.fnBlocks),
      fnBlockSize(other.fnBlockSize) {
  if (!ResizeNCopy(fvLowerTri, other.fvLowerTri)) {
    fnRows = -1;
    fnBlocks = 1;
    fnBlockSize = -1;
  }
}

ZRSymMatrix & ZRSymMatrix::operator=(const ZRSymMatrix & other) {
  if (this == &other) return *this;
  if (ResizeNCopy(fvLowerTri, other.fvLowerTri)) {
    fnRows = other.fnRows;
    fnBlocks = other.fnBlocks;
    fnBlockSize = other.fnBlockSize;
  } else {
    std::vector<double>().swap(fvLowerTri);
    fnRows = -1;
    fnBlocks = 1;
    fnBlockSize = -1;
  }
  return *this;
}

bool ZRSymMatrix::Resize(int nRows) {
  int n = std::max(nRows, 0);
  const bool ok = ResizeNRows(fvLowerTri, n);
  fnRows = n;
  fnBlocks = 1;
  fnBlockSize = n;
  return ok;
}

bool ZRSymMatrix::SetNRows(int nRows, bool clear) {
  const bool ok = Resize(nRows);
  if (ok && clear) Clear();
  if (nRows < 0) {
    fnBlocks = 0;
    fnBlockSize = 0;
  }
  return ok;
}

bool ZRSymMatrix::SetNBlocks(int n) {
  if (n < 1 || fnRows < 1 || fnRows % n != 0) return false;
  fnBlocks = n;
  fnBlockSize = fnRows / n;
  return true;
}

void ZRSymMatrix::SetData(const ZRSymMatrix & other) {
  *this = other;
}

// ---------------------------------------------------------------------------------------
// Element access

double ZRSymMatrix::GetElem(int i, int j) const {
  return fvLowerTri[Index(i, j)];
}

double ZRSymMatrix::GetElem(int k) const {
  return fvLowerTri[static_cast<std::size_t>(k)];
}

double ZRSymMatrix::GetElem(int bi, int bj, int r, int c) const {
  return GetElem(fnBlockSize * bi + r, fnBlockSize * bj + c);
}

bool ZRSymMatrix::SetElem(int i, int j, double x) {
  fvLowerTri[Index(i, j)] = x;
  return true;
}

bool ZRSymMatrix::SetElem(int k, double x) {
  if (k < 0 || static_cast<std::size_t>(k) >= fvLowerTri.size()) return false;
  fvLowerTri[static_cast<std::size_t>(k)] = x;
  return true;
}

void ZRSymMatrix::GetDiagonal(std::vector<double> & d) const {
  const int n = std::max(fnRows, 0);
  if (!ResizeNoThrow(d, static_cast<std::size_t>(n))) {
    d.clear();
    return;
  }
  std::size_t at = 0;  // (i, i), stepping by i + 2
  for (int i = 0; i < n; at += static_cast<std::size_t>(i) + 2, ++i) d[i] = fvLowerTri[at];
}

bool ZRSymMatrix::GetRow(int i, std::vector<double> & v) const {
  if (i < 0 || i >= fnRows) return false;
  if (!ResizeNoThrow(v, static_cast<std::size_t>(fnRows))) return false;
  const double * row = fvLowerTri.data() + RowStart(i);
  std::copy(row, row + i + 1, v.begin());
  std::size_t at = RowStart(i + 1) + i;  // (i + 1, i), then down column i
  for (int j = i + 1; j < fnRows; at += static_cast<std::size_t>(j) + 1, ++j) v[j] = fvLowerTri[at];
  return true;
}

bool ZRSymMatrix::PutRow(int i, const std::vector<double> & v) {
  if (i < 0 || i >= fnRows || v.size() < static_cast<std::size_t>(fnRows)) return false;
  std::copy(v.begin(), v.begin() + i + 1, fvLowerTri.begin() + RowStart(i));
  std::size_t at = RowStart(i + 1) + i;
  for (int j = i + 1; j < fnRows; at += static_cast<std::size_t>(j) + 1, ++j) fvLowerTri[at] = v[j];
  return true;
}

bool ZRSymMatrix::SetRowColToConst(int i, double x) {
  if (i < 0 || i >= fnRows) return false;
  std::fill_n(fvLowerTri.begin() + RowStart(i), i + 1, x);
  std::size_t at = RowStart(i + 1) + i;
  for (int j = i + 1; j < fnRows; at += static_cast<std::size_t>(j) + 1, ++j) fvLowerTri[at] = x;
  return true;
}

bool ZRSymMatrix::ZeroOut(int i) {
  return SetRowColToConst(i, 0.0);
}

bool ZRSymMatrix::IsZeroRow(int i, const ZRBitSet & set) const {
  if (i < 0 || i >= fnRows) return false;
  const double * row = fvLowerTri.data() + RowStart(i);
  for (int j = 0; j <= i; ++j)
    if (set.IsIn(j) && !(row[j] == 0.0)) return false;
  std::size_t at = RowStart(i + 1) + i;
  for (int j = i + 1; j < fnRows; at += static_cast<std::size_t>(j) + 1, ++j)
    if (set.IsIn(j) && !(fvLowerTri[at] == 0.0)) return false;
  return true;
}

// ---------------------------------------------------------------------------------------
// Whole-matrix arithmetic

void ZRSymMatrix::Clear() {
  std::fill(fvLowerTri.begin(), fvLowerTri.end(), 0.0);
}

void ZRSymMatrix::ChangeSign() {
  for (double & x : fvLowerTri) x *= -1.0;
}

void ZRSymMatrix::MultiplyByNumber(double f) {
  for (double & x : fvLowerTri) x *= f;
}

bool ZRSymMatrix::ComputeAXpY(double a, const IZRSymMatrix & X) {
  if (X.GetNRows() != fnRows) return false;
  if (a == 0.0) return true;
  if (const ZRSymMatrix * x = ExactlyDense(X)) {
    const double * src = x->fvLowerTri.data();
    double * dst = fvLowerTri.data();
    const std::size_t count = fvLowerTri.size();
    for (std::size_t k = 0; k < count; ++k) dst[k] += a * src[k];
    return true;
  }
  std::size_t at = 0;
  for (int i = 0; i < fnRows; ++i)
    for (int j = 0; j <= i; ++j, ++at) fvLowerTri[at] += a * X.GetElem(i, j);
  return true;
}

// ---------------------------------------------------------------------------------------
// Diagonal

void ZRSymMatrix::AddToDiagonal(double x) {
  std::size_t at = 0;
  for (int i = 0; i < fnRows; at += static_cast<std::size_t>(i) + 2, ++i) fvLowerTri[at] += x;
}

bool ZRSymMatrix::AddToDiagonalPart(int start, int count, double x) {
  if (start < 0 || count < 1 || static_cast<std::int64_t>(start) + count > fnRows) return false;
  for (int i = start; i < start + count; ++i) fvLowerTri[RowStart(i) + i] += x;
  return true;
}

void ZRSymMatrix::MaxMinDiag(double & max, double & min) const {
  if (fnRows < 1) return;
  max = -DBL_MAX;
  min = DBL_MAX;
  std::size_t at = 0;
  for (int i = 0; i < fnRows; at += static_cast<std::size_t>(i) + 2, ++i) {
    const double x = fvLowerTri[at];
    if (x > max) max = x;
    if (x < min) min = x;
  }
}

void ZRSymMatrix::MaxMinDiagOffDiag(double & maxD, double & minD, double & maxO,
                                    double & minO) const {
  if (fnRows < 1) return;
  maxD = maxO = -DBL_MAX;
  minD = minO = DBL_MAX;
  std::size_t at = 0;
  for (int i = 0; i < fnRows; ++i) {
    for (int j = 0; j < i; ++j, ++at) {
      const double x = fvLowerTri[at];
      if (x > maxO) maxO = x;
      if (x < minO) minO = x;
    }
    const double x = fvLowerTri[at++];
    if (x > maxD) maxD = x;
    if (x < minD) minD = x;
  }
}

void ZRSymMatrix::GetNCheckDiagonal(std::vector<double> & d, double, double) const {
  // Intended: lo and hi are ignored, and every entry gets the one largest value.
  GetDiagonal(d);
  double largest = 0.0;
  for (double x : d)
    if (x > largest) largest = x;
  std::fill(d.begin(), d.end(), largest);
}

void ZRSymMatrix::GetNCheckDiagonalOld(std::vector<double> & d, double lo, double hi) const {
  GetDiagonal(d);
  // Intended: the old rule, kept as it stands; nothing in the library calls it.
  for (double & x : d)
    if (lo > x) x = hi;
}

bool ZRSymMatrix::ReplaceDiagZeroes(double eps) {
  if (!(eps >= 0.0) || fnRows < 1) return false;
  double largest = 0.0;
  std::size_t at = 0;
  for (int i = 0; i < fnRows; at += static_cast<std::size_t>(i) + 2, ++i)
    if (fvLowerTri[at] > largest) largest = fvLowerTri[at];
  if (!(largest > 0.0)) return false;
  at = 0;
  for (int i = 0; i < fnRows; at += static_cast<std::size_t>(i) + 2, ++i) {
    const double x = fvLowerTri[at];
    if (!(x > 0.0) || !(x / largest > eps)) fvLowerTri[at] = largest;
  }
  return true;
}

bool ZRSymMatrix::SetCovarZeros(ZRSymMatrix & other) {
  if (other.fnRows != fnRows) return false;
  for (int i = 0; i < fnRows; ++i) {
    const std::size_t at = RowStart(i) + i;
    if (!(fvLowerTri[at] > 0.0) || !(other.fvLowerTri[at] > 0.0)) {
      ZeroOut(i);
      if (&other != this) other.ZeroOut(i);
    }
  }
  return true;
}

bool ZRSymMatrix::AdjustOffDiagCorr(double eps) {
  if (!(eps >= 0.0) || !(eps < 1.0)) return false;
  const double edge = 1.0 - eps;
  std::size_t at = 0;
  for (int i = 0; i < fnRows; ++i, ++at) {
    for (int j = 0; j < i; ++j, ++at) {
      double & x = fvLowerTri[at];
      if (x >= 1.0) {
        x = edge;
      } else if (x <= -1.0) {
        x = -edge;
      }
    }
  }
  return true;
}

// ---------------------------------------------------------------------------------------
// Zeroing

void ZRSymMatrix::ZeroOutNonDiag(double tol) {
  if (!(tol > 0.0)) return;
  std::size_t at = 0;
  for (int i = 0; i < fnRows; ++i, ++at) {
    const double aii = std::fabs(fvLowerTri[RowStart(i) + i]);
    std::size_t jj = 0;  // (j, j)
    for (int j = 0; j < i; ++j, ++at, jj += static_cast<std::size_t>(j) + 1) {
      if (std::fabs(fvLowerTri[at]) <= tol * std::sqrt(aii * std::fabs(fvLowerTri[jj]))) {
        fvLowerTri[at] = 0.0;
      }
    }
  }
}

void ZRSymMatrix::ZeroOutAllSmall(double tol) {
  if (!(tol > 0.0)) return;
  double largest = 0.0;
  std::size_t at = 0;
  for (int i = 0; i < fnRows; at += static_cast<std::size_t>(i) + 2, ++i)
    largest = std::max(largest, std::fabs(fvLowerTri[at]));
  const double cut = tol * largest;
  for (double & x : fvLowerTri)
    if (std::fabs(x) < cut) x = 0.0;
}

void ZRSymMatrix::ZeroOutRowsForSmallDiag(double tol) {
  if (!(tol > 0.0)) return;
  double running = 0.0;
  for (int i = 0; i < fnRows; ++i) {
    const double aii = std::fabs(fvLowerTri[RowStart(i) + i]);
    running = std::max(running, aii);
    if (running == 0.0 || tol > aii / running) ZeroOut(i);
  }
}

bool ZRSymMatrix::ZeroOutRedundant(const ZRBitSet & set) {
  if (set.Size() < fnRows) return false;
  for (int i = 0; i < fnRows; ++i)
    if (!set.IsIn(i)) ZeroOut(i);
  return true;
}

bool ZRSymMatrix::DeleteOneRow(int i) {
  if (i < 0 || i >= fnRows) return false;
  // Rows below i move up by one place, each losing its column-i element; the packed
  // order is by rows, so every move goes to a lower address.
  std::size_t dst = RowStart(i);
  for (int r = i + 1; r < fnRows; ++r) {
    const std::size_t src = RowStart(r);
    for (int c = 0; c <= r; ++c)
      if (c != i) fvLowerTri[dst++] = fvLowerTri[src + c];
  }
  --fnRows;
  fvLowerTri.resize(static_cast<std::size_t>(PackedCount(fnRows)));
  fnBlocks = 1;
  fnBlockSize = fnRows;
  return true;
}

// ---------------------------------------------------------------------------------------
// Sub-matrices and expansion

void ZRSymMatrix::ExtractFirstNRows(IZRSymMatrix & out) const {
  ZRSymMatrix * o = DenseOut(out);
  if (o == nullptr) return;
  if (fnRows < 2) {
    o->Resize(0);
    return;
  }
  const int m = fnRows - 1;
  if (o == this) {
    o->Resize(m);
    return;
  }
  try {
    o->fvLowerTri.assign(fvLowerTri.begin(), fvLowerTri.begin() + PackedCount(m));
  } catch (const std::bad_alloc &) {
    std::vector<double>().swap(o->fvLowerTri);
    o->fnRows = o->fnBlockSize = -1;
    o->fnBlocks = 1;
    return;
  }
  o->fnRows = o->fnBlockSize = m;
  o->fnBlocks = 1;
}

bool ZRSymMatrix::ExtractSubmatrix(const std::vector<int> & idx, IZRSymMatrix & out) const {
  ZRSymMatrix * o = DenseOut(out);
  if (o == nullptr) return false;
  for (int k : idx)
    if (k < 0 || k >= fnRows) return false;
  const std::int64_t count = PackedCount(static_cast<std::int64_t>(idx.size()));
  if (count > INT_MAX) return false;
  const int m = static_cast<int>(idx.size());
  std::vector<double> sub;
  if (!ResizeNoThrow(sub, static_cast<std::size_t>(count))) return false;
  std::size_t at = 0;
  for (int r = 0; r < m; ++r)
    for (int c = 0; c <= r; ++c, ++at) sub[at] = fvLowerTri[Index(idx[r], idx[c])];
  o->fvLowerTri.swap(sub);
  o->fnRows = o->fnBlockSize = m;
  o->fnBlocks = 1;
  return true;
}

void ZRSymMatrix::Expand(const ZRBitSet & set, ZRSymMatrix & out) const {
  const int m = set.Size();
  std::vector<int> pos;
  std::vector<double> big;
  const std::int64_t count = PackedCount(m);
  if (count > INT_MAX || !SetPositions(set, m, pos) ||
      !AssignNoThrow(big, static_cast<std::size_t>(count), 0.0)) {
    std::vector<double>().swap(out.fvLowerTri);
    out.fnRows = out.fnBlockSize = -1;
    out.fnBlocks = 1;
    return;
  }
  const int used = std::min(static_cast<int>(pos.size()), std::max(fnRows, 0));
  for (int a = 0; a < used; ++a) {
    const double * row = fvLowerTri.data() + RowStart(a);
    double * to = big.data() + RowStart(pos[a]);
    for (int b = 0; b <= a; ++b) to[pos[b]] = row[b];
  }
  out.fvLowerTri.swap(big);
  out.fnRows = out.fnBlockSize = m;
  out.fnBlocks = 1;
}

bool ZRSymMatrix::ExpandSym(const ZRRectMatrix & R, ZRSymMatrix & out) const {
  if (fnRows < 1 || !R.IsValidMatrix() || R.GetNCols() != fnRows) return false;
  const int r = R.GetNRows();
  const std::int64_t size = static_cast<std::int64_t>(fnRows) + r;
  std::vector<double> big;
  if (size > INT_MAX || PackedCount(size) > INT_MAX ||
      !AssignNoThrow(big, static_cast<std::size_t>(PackedCount(size)), 0.0)) {
    std::vector<double>().swap(out.fvLowerTri);
    out.fnRows = out.fnBlockSize = -1;
    out.fnBlocks = 1;
    return false;
  }
  std::copy(fvLowerTri.begin(), fvLowerTri.end(), big.begin());
  for (int k = 0; k < r; ++k)
    std::copy_n(R.GetRowPtr(k), fnRows, big.begin() + RowStart(fnRows + k));
  out.fvLowerTri.swap(big);
  out.fnRows = out.fnBlockSize = static_cast<int>(size);
  out.fnBlocks = 1;
  return true;
}

bool ZRSymMatrix::ExpandSymToRect(const ZRRectMatrix & R, ZRRectMatrix & out) const {
  if (fnRows < 1 || !R.IsValidMatrix() || R.GetNCols() != fnRows) return false;
  const int n = fnRows, r = R.GetNRows();
  const std::int64_t size = static_cast<std::int64_t>(n) + r;
  if (size > INT_MAX || !out.SetNRowsCols(static_cast<int>(size), static_cast<int>(size), true)) {
    return false;
  }
  std::size_t at = 0;
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < i; ++j, ++at) {
      out.SetElem(i, j, fvLowerTri[at]);
      out.SetElem(j, i, fvLowerTri[at]);
    }
    out.SetElem(i, i, fvLowerTri[at++]);
  }
  for (int k = 0; k < r; ++k) {
    const double * row = R.GetRowPtr(k);
    for (int j = 0; j < n; ++j) {
      out.SetElem(n + k, j, row[j]);
      out.SetElem(j, n + k, row[j]);
    }
  }
  return true;
}

bool ZRSymMatrix::ReplaceFirstRows(const ZRSymMatrix & S, int n) {
  if (n < 0 || n > fnRows || n > S.fnRows) return false;
  if (&S == this) return true;
  std::copy_n(S.fvLowerTri.begin(), PackedCount(n), fvLowerTri.begin());
  return true;
}

bool ZRSymMatrix::CopyRowToRColumn(int i, ZRRectMatrix & R, int col, int n) const {
  if (i < 0 || i >= fnRows || col < 0 || col >= R.GetNCols() || n < 0 || n > fnRows ||
      n > R.GetNRows()) {
    return false;
  }
  const double * row = fvLowerTri.data() + RowStart(i);
  const int left = std::min(n, i + 1);
  for (int k = 0; k < left; ++k) R.SetElem(k, col, row[k]);
  std::size_t at = RowStart(left) + i;  // (left, i) when left > i
  for (int k = left; k < n; at += static_cast<std::size_t>(k) + 1, ++k)
    R.SetElem(k, col, fvLowerTri[at]);
  return true;
}

bool ZRSymMatrix::ExtractH(int first, int last, const ZRBitSet & set, ZRRectMatrix & H, int & cols,
                           ZRBitSet & done, int n) const {
  if (first < 0 || first > last || last >= fnRows || cols < 0 || n < 0 || n > fnRows ||
      n > H.GetNRows()) {
    return false;
  }
  int wanted = 0;
  for (int i = first; i <= last; ++i)
    if (set.IsIn(i)) ++wanted;
  if (static_cast<std::int64_t>(cols) + wanted > H.GetNCols()) return false;
  if (done.Size() < fnRows) {
    try {
      done.Resize(fnRows, false);
    } catch (const std::bad_alloc &) {
      return false;
    }
  }
  for (int i = first; i <= last; ++i) {
    if (!set.IsIn(i)) continue;
    CopyRowToRColumn(i, H, cols++, n);
    done.Set(i, true);
  }
  return true;
}

// ---------------------------------------------------------------------------------------
// Model checks

bool ZRSymMatrix::CheckGMG(const std::vector<double> & M, const ZRBitSet & set, ZRSymMatrix & S,
                           ZRBitSet & neg, bool & allGone, int & count) const {
  const int n = std::max(fnRows, 0);
  if (static_cast<std::int64_t>(M.size()) != PackedCount(n) || set.Size() < n || S.fnRows < n) {
    return false;
  }
  std::vector<double> kept;
  try {
    kept.assign(static_cast<std::size_t>(n), 0.0);
    if (neg.Size() < n) {
      neg.Resize(n, false);
    } else {
      neg.Clear();
    }
  } catch (const std::bad_alloc &) {
    return false;
  }
  count = 0;
  for (int i = 0; i < n; ++i) {
    if (set.IsIn(i) && M[RowStart(i) + i] < 0.0) {
      neg.Set(i, true);
      S.ZeroOut(i);
      ++count;
    } else {
      kept[i] = S.fvLowerTri[RowStart(i) + i];
    }
  }
  for (int i = 0; i < n; ++i) {
    if (set.IsIn(i) && !neg.IsIn(i) && !(kept[i] > 0.0)) {
      S.ZeroOut(i);
      ++count;
    }
  }
  allGone = count > 0 && count == set.InSet();
  return true;
}

int ZRSymMatrix::CheckMDependent(int n, const std::vector<double> & M, const ZRBitSet & set,
                                 double tol) {
  if (n < 0 || static_cast<std::int64_t>(M.size()) < PackedCount(n) || set.Size() < n) return -1;
  if (n < 1) return 0;
  std::vector<int> pos;
  if (!SetPositions(set, n, pos)) return -2;
  const int m = static_cast<int>(pos.size());
  if (!SetNRows(m, false)) return -2;
  std::size_t at = 0;
  for (int r = 0; r < m; ++r)
    for (int c = 0; c <= r; ++c, ++at) fvLowerTri[at] = M[Index(pos[r], pos[c])];
  std::vector<double> d;
  GetNCheckDiagonal(d, tol, 1.0);
  if (static_cast<int>(d.size()) != m) return -2;
  return LTChol(d, tol, true);
}

bool ZRSymMatrix::GetRegCoeffs(std::vector<double> & b, const ZRBitSet & set) const {
  if (fnRows < 2) {
    b.clear();
    return true;
  }
  const int m = fnRows - 1;
  if (set.Size() < m) return false;
  if (!ResizeNoThrow(b, static_cast<std::size_t>(m))) return false;
  const double * last = fvLowerTri.data() + RowStart(m);
  for (int j = 0; j < m; ++j) b[j] = set.IsIn(j) ? last[j] : 0.0;
  return true;
}

// ---------------------------------------------------------------------------------------
// Display

void ZRSymMatrix::Display() const {
  ZRDisplay_920::DisplayText(1, "ZRSymMatrix display start");
  ZRDisplay_920::DisplayI("The number of rows", fnRows);
  ZRDisplay_920::DisplayI("The number of blocks", fnBlocks);
  ZRDisplay_920::DisplayI("The block size", fnBlockSize);
  ZRDisplay_920::DisplayDVTR("Lower triangular", fvLowerTri, fnRows);
  ZRDisplay_920::DisplayText(1, "ZRSymMatrix display end");
}

void ZRSymMatrix::DisplayF() const {
  ZRDisplay_920::DisplayText(1, "ZRSymMatrix full matrix display start");
  ZRDisplay_920::DisplayI("Number of rows", fnRows);
  matrix_detail::DisplayFullRows(*this, fnRows);
  ZRDisplay_920::DisplayText(1, "ZRSymMatrix display end");
}

void ZRSymMatrix::DisplayS() const {
  ZRDisplay_920::DisplayDVTRS(fvLowerTri, fnRows);
}

}  // namespace ZRMath_920
