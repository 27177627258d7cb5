// ZRDiagMatrix, the diagonal matrix: sizing and element access, the factor and inverse
// family on the diagonal, products with vectors and with rectangular and symmetric
// matrices, forms, traces and display.
#include "zrcommon920r/math/matrix/diagmatrix.h"

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <string>
#include <typeinfo>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/display/display.h"
#include "zrcommon920r/math/matrix/detail/display_rows.h"
#include "zrcommon920r/math/matrix/detail/linpack_util.h"
#include "zrcommon920r/math/matrix/detail/nothrow_alloc.h"

namespace ZRMath_920 {

namespace {

using linpack_detail::NormaliseDet;
using matrix_detail::AssignNoThrow;
using matrix_detail::CopyNoThrow;
using matrix_detail::NoThrow;
using ZRCommon_920::kSysMisValue;

// Offsets and walks in 64 bits, where none can overflow for int arguments.
using Index = std::int64_t;

inline Index RowStart(Index i) {
  return i * (i + 1) / 2;
}

inline Index SymIndex(Index i, Index j) {
  return i >= j ? RowStart(i) + j : RowStart(j) + i;
}

// Base of a walk of n elements with the BLAS rule: element k is at base[k * stride].
inline const double * WalkBase(const double * x, Index n, Index stride) {
  return (stride < 0 && n > 0) ? x + (n - 1) * -stride : x;
}

// R's elements by rows: R's own buffer when it is exactly a ZRRectMatrix, else a copy in
// scratch read with GetRow. data is null when R has no elements. False when a row can't be
// read.
bool RectData(const IZRRectMatrix & r, std::vector<double> & scratch, const double *& data) {
  const Index m = r.GetNRows(), p = r.GetNCols();
  data = nullptr;
  if (m <= 0 || p <= 0) return true;
  if (typeid(r) == typeid(ZRRectMatrix)) {
    data = static_cast<const ZRRectMatrix &>(r).GetRowPtr(0);
    return data != nullptr;
  }
  scratch.resize(static_cast<std::size_t>(m * p));
  std::vector<double> row;
  for (Index i = 0; i < m; ++i) {
    if (!r.GetRow(static_cast<int>(i), row) || static_cast<Index>(row.size()) < p) return false;
    std::copy(row.begin(), row.begin() + p, scratch.begin() + i * p);
  }
  data = scratch.data();
  return true;
}

// The full matrix of any symmetric implementation of order n, n x n by rows.
void Full(const IZRSymMatrix & s, Index n, std::vector<double> & full) {
  full.resize(static_cast<std::size_t>(n * n));
  for (Index i = 0; i < n; ++i) {
    for (Index j = 0; j <= i; ++j) {
      const double x = s.GetElem(static_cast<int>(i), static_cast<int>(j));
      full[i * n + j] = x;
      full[j * n + i] = x;
    }
  }
}

// Stores the packed result res of order n into out, sized and cleared first, so that an
// element that is 0.0 needs no SetElem (a diagonal out takes a diagonal result). False when
// out cannot be sized or refuses an element.
bool StoreSym(const std::vector<double> & res, Index n, IZRSymMatrix & out) {
  if (!out.SetNRows(static_cast<int>(n), true) || out.GetNRows() != n) return false;
  Index at = 0;
  for (Index i = 0; i < n; ++i) {
    for (Index j = 0; j <= i; ++j, ++at) {
      const double x = res[static_cast<std::size_t>(at)];
      if (x != 0.0 && !out.SetElem(static_cast<int>(i), static_cast<int>(j), x)) return false;
    }
  }
  return true;
}

// Stores res, m x p by rows, into out; false when out cannot be sized or refuses an element.
bool StoreRect(const std::vector<double> & res, Index m, Index p, IZRRectMatrix & out) {
  if (!out.SetNRowsCols(static_cast<int>(m), static_cast<int>(p), false) || out.GetNRows() != m ||
      out.GetNCols() != p) {
    return false;
  }
  for (Index i = 0; i < m; ++i)
    for (Index j = 0; j < p; ++j)
      if (!out.SetElem(static_cast<int>(i), static_cast<int>(j), res[i * p + j])) return false;
  return true;
}

// Sizes out to n and clears it: SetNRows when its order differs, Clear otherwise (a block
// matrix cannot be resized). False when out ends with another order.
bool ClearedOut(IZRSymMatrix & out, int n) {
  if (out.GetNRows() == n && out.IsValidMatrix()) {
    out.Clear();
    return true;
  }
  return out.SetNRows(n, true) && out.GetNRows() == n;
}

// The CholInverse of a diagonal d: out(i, i) = 1 / d_i for each d_i above tol, the others
// 0.0; set, when given and already sized, marks the accepted rows. Returns the rank, -1
// when out cannot be sized or refuses an element.
int InvertAbove(const std::vector<double> & d, double tol, IZRSymMatrix & out, ZRBitSet * set) {
  const int n = static_cast<int>(d.size());
  if (!ClearedOut(out, n)) return -1;
  int rank = 0;
  for (int i = 0; i < n; ++i) {
    // Intended: an absolute, strict test against tol alone; diag takes no part.
    const bool accepted = d[i] > tol;
    if (set != nullptr) set->Set(i, accepted);
    if (!accepted) continue;
    if (!out.SetElem(i, i, 1.0 / d[i])) return -1;
    ++rank;
  }
  return rank;
}

}  // namespace

// ---------------------------------------------------------------------------------------
// Construction and sizing

bool ZRDiagMatrix::ResizeNRows(std::vector<double> & v, int & n) {
  if (n > 0 && !matrix_detail::ResizeNoThrow(v, static_cast<std::size_t>(n))) n = -1;
  if (n <= 0) std::vector<double>().swap(v);
  return n >= 0;
}

void ZRDiagMatrix::SetInvalid() {
  std::vector<double>().swap(fvDiag);
  fnRows = -1;
}

ZRDiagMatrix::ZRDiagMatrix() : fnRows(0) {}

ZRDiagMatrix::ZRDiagMatrix(int n, bool) : fnRows(0) {
  Resize(n);  // new elements are 0.0, so clear changes nothing
}

ZRDiagMatrix::ZRDiagMatrix(const std::vector<double> & d) : fnRows(0) {
  ReplaceDiagonal(d);
}

ZRDiagMatrix::ZRDiagMatrix(const ZRDiagMatrix & other) : IZRSymMatrix(), fnRows(other.fnRows) {
  if (!CopyNoThrow(fvDiag, other.fvDiag)) SetInvalid();
}

ZRDiagMatrix & ZRDiagMatrix::operator=(const ZRDiagMatrix & other) {
  if (this == &other) return *this;
  if (CopyNoThrow(fvDiag, other.fvDiag)) {
    fnRows = other.fnRows;
  } else {
    SetInvalid();
  }
  return *this;
}

bool ZRDiagMatrix::ReplaceDiagonal(const std::vector<double> & d) {
  if (d.size() > static_cast<std::size_t>(INT_MAX)) {
    SetInvalid();
    return false;
  }
  int n = static_cast<int>(d.size());
  if (n != fnRows || fvDiag.size() != d.size()) {
    if (!ResizeNRows(fvDiag, n)) {
      SetInvalid();
      return false;
    }
    fnRows = n;
  }
  std::copy(d.begin(), d.end(), fvDiag.begin());
  return true;
}

bool ZRDiagMatrix::Resize(int nRows) {
  int n = std::max(nRows, 0);
  const bool ok = ResizeNRows(fvDiag, n);
  fnRows = n;
  return ok;
}

bool ZRDiagMatrix::SetNRows(int nRows, bool clear) {
  const bool ok = Resize(nRows);
  if (ok && clear) Clear();
  return ok;
}

bool ZRDiagMatrix::IsValidMatrix() const {
  return fnRows >= 0 && fvDiag.size() == static_cast<std::size_t>(fnRows);
}

// ---------------------------------------------------------------------------------------
// Element access

double ZRDiagMatrix::GetElem(int i, int j) const {
  if (!GoodRow(i) || !GoodRow(j)) return kSysMisValue;
  return i == j ? fvDiag[i] : 0.0;
}

double ZRDiagMatrix::GetElem(int i) const {
  return GoodRow(i) ? fvDiag[i] : kSysMisValue;
}

bool ZRDiagMatrix::SetElem(int i, int j, double x) {
  if (!GoodRow(i) || i != j) return false;
  fvDiag[i] = x;
  return true;
}

bool ZRDiagMatrix::SetElem(int i, double x) {
  if (!GoodRow(i)) return false;
  fvDiag[i] = x;
  return true;
}

void ZRDiagMatrix::GetDiagonal(std::vector<double> & d) const {
  if (!CopyNoThrow(d, fvDiag)) d.clear();
}

bool ZRDiagMatrix::GetRow(int i, std::vector<double> & v) const {
  if (!GoodRow(i) || !AssignNoThrow(v, static_cast<std::size_t>(fnRows), 0.0)) return false;
  v[i] = fvDiag[i];
  return true;
}

bool ZRDiagMatrix::PutRow(int i, const std::vector<double> & v) {
  if (!GoodRow(i) || v.size() < static_cast<std::size_t>(fnRows)) return false;
  fvDiag[i] = v[i];
  return true;
}

bool ZRDiagMatrix::SetRowColToConst(int i, double x) {
  if (!GoodRow(i)) return false;
  fvDiag[i] = x;
  return true;
}

bool ZRDiagMatrix::ZeroOut(int i) {
  return SetRowColToConst(i, 0.0);
}

bool ZRDiagMatrix::IsZeroRow(int i, const ZRBitSet & set) const {
  if (!GoodRow(i)) return false;
  return !set.IsIn(i) || fvDiag[i] == 0.0;
}

void ZRDiagMatrix::ZeroOutNonDiag(double) {}

// ---------------------------------------------------------------------------------------
// Whole-matrix arithmetic and the diagonal

void ZRDiagMatrix::AddToDiagonal(double x) {
  for (double & d : fvDiag) d += x;
}

void ZRDiagMatrix::ChangeSign() {
  for (double & d : fvDiag) d *= -1.0;
}

void ZRDiagMatrix::MultiplyByNumber(double f) {
  for (double & d : fvDiag) d *= f;
}

void ZRDiagMatrix::Clear() {
  std::fill(fvDiag.begin(), fvDiag.end(), 0.0);
}

bool ZRDiagMatrix::ComputeAXpY(double a, const IZRSymMatrix & X) {
  if (!IsValidMatrix() || !X.IsValidMatrix() || X.GetNRows() != fnRows) return false;
  if (a == 0.0) return true;
  if (X.GetType() != kDiagSymMatrix) {
    for (int i = 0; i < fnRows; ++i)
      for (int j = 0; j < i; ++j)
        if (X.GetElem(i, j) != 0.0) return false;
  }
  std::vector<double> x;  // a copy, so X may be this
  X.GetDiagonal(x);
  if (x.size() != fvDiag.size()) return false;
  for (std::size_t i = 0; i < x.size(); ++i) fvDiag[i] += a * x[i];
  return true;
}

double ZRDiagMatrix::Trace() const {
  double sum = 0.0;
  for (double d : fvDiag) sum += d;
  return sum;
}

void ZRDiagMatrix::MaxMinDiag(double & max, double & min) const {
  if (fnRows < 1) return;
  max = -DBL_MAX;
  min = DBL_MAX;
  for (double d : fvDiag) {
    if (d > max) max = d;
    if (d < min) min = d;
  }
}

void ZRDiagMatrix::MaxMinDiagOffDiag(double & maxD, double & minD, double & maxO,
                                     double & minO) const {
  if (fnRows < 1) return;
  MaxMinDiag(maxD, minD);
  maxO = -DBL_MAX;
  minO = DBL_MAX;
  if (fnRows >= 2) maxO = minO = 0.0;  // every element off the diagonal is 0.0
}

void ZRDiagMatrix::GetNCheckDiagonal(std::vector<double> & d, double lo, double hi) const {
  GetDiagonal(d);
  // Intended: the older rule of the dense class (GetNCheckDiagonalOld), not its largest
  // element.
  for (double & x : d)
    if (lo > x) x = hi;
}

bool ZRDiagMatrix::ComputeDeterminant(double, double * const det) const {
  if (fnRows < 1 || !IsValidMatrix() || det == nullptr) return false;
  // Intended: the plain product of the elements; tol is unused and a negative element
  // gives a negative determinant.
  det[0] = 1.0;
  det[1] = 0.0;
  for (double d : fvDiag) {
    det[0] *= d;
    if (det[0] == 0.0) {
      det[1] = 0.0;
      break;
    }
    NormaliseDet(det);  // leaves an infinite or NaN product as it is, so the loop ends
  }
  return true;
}

// ---------------------------------------------------------------------------------------
// Factor, inverse and solve

int ZRDiagMatrix::LTChol(const std::vector<double> & diag, double tol, bool check) {
  if (!IsValidMatrix() || diag.size() < fvDiag.size()) return -1;
  if (check) {
    if (!(tol >= 0.0)) return -1;
    for (int i = 0; i < fnRows; ++i)
      if (diag[i] < 0.0) return -1;
  }
  int redundant = 0;
  for (int i = 0; i < fnRows; ++i) {
    const double x = fvDiag[i];
    if (x > tol * diag[i]) {  // strict, and a NaN pivot is redundant
      fvDiag[i] = std::sqrt(x);
    } else {
      fvDiag[i] = 0.0;
      ++redundant;
    }
  }
  return redundant;
}

int ZRDiagMatrix::LTChol(const std::vector<double> & diag, double tol, ZRBitSet & set, bool check) {
  if (!IsValidMatrix() || diag.size() < fvDiag.size()) return -1;
  if (check) {
    if (!(tol >= 0.0)) return -1;
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
  int redundant = 0;
  for (int i = 0; i < fnRows; ++i) {
    const double x = fvDiag[i];
    if (x > tol * diag[i]) {
      fvDiag[i] = std::sqrt(x);
      set.Set(i, true);
    } else {
      fvDiag[i] = 0.0;
      ++redundant;
    }
  }
  return redundant;
}

int ZRDiagMatrix::LTChol(double tol, double & minPivot, bool check) {
  minPivot = kSysMisValue;
  if (!IsValidMatrix()) return -1;
  // Intended: this class's reference diagonal, so x is measured against tol x (1.0 when
  // x < tol, else x), not against the largest element as in the dense class.
  std::vector<double> d;
  GetNCheckDiagonal(d, tol, 1.0);
  if (d.size() != fvDiag.size()) return -1;
  const int result = LTChol(d, tol, check);
  if (result >= 0 && fnRows > 0) {
    double smallest = DBL_MAX;
    for (double x : fvDiag) smallest = std::min(smallest, x);
    minPivot = smallest;
  }
  return result;
}

int ZRDiagMatrix::LTDetInverse(double * const det, int job) {
  int zeros = 0;
  for (double d : fvDiag)
    if (d == 0.0) ++zeros;
  if (std::fmod(static_cast<double>(job), 10.0) != 0.0 && det != nullptr) {
    det[0] = zeros > 0 ? 0.0 : 1.0;
    det[1] = 0.0;
    for (std::size_t i = 0; zeros == 0 && i < fvDiag.size(); ++i) {
      det[0] *= fvDiag[i];
      NormaliseDet(det);
    }
  }
  if (job / 10 != 0) {
    for (double & d : fvDiag)
      if (d != 0.0) d = 1.0 / d;
  }
  return zeros;
}

bool ZRDiagMatrix::LTInverse() {
  // Intended: no squaring; after LTChol this is the inverse of the factor.
  for (double & d : fvDiag)
    if (d != 0.0) d = 1.0 / d;
  return true;
}

void ZRDiagMatrix::LTLLTrans() {
  for (double & d : fvDiag) d *= d;
}

void ZRDiagMatrix::LTLTransL() {
  for (double & d : fvDiag) d *= d;
}

int ZRDiagMatrix::LTSolve(const std::vector<double> & b, double tol, std::vector<double> & x) {
  if (!(tol > 0.0) || !IsValidMatrix() || b.size() < fvDiag.size()) return -1;
  // Intended: a negative element refuses the whole solve.
  for (double d : fvDiag)
    if (d < 0.0) return -1;
  return NoThrow(-1, [&] {
    std::vector<double> y(fvDiag.size());
    int redundant = 0;
    for (std::size_t i = 0; i < y.size(); ++i) {
      const double d = fvDiag[i];
      if (d > tol) {
        y[i] = b[i] / d;
      } else {
        y[i] = d;  // Intended: the element itself, not 0.0; the test is absolute
        ++redundant;
      }
    }
    x.swap(y);
    return redundant;
  });
}

int ZRDiagMatrix::CholInverse(const std::vector<double> &, double tol, IZRSymMatrix & out,
                              ZRBitSet & set) const {
  if (!IsValidMatrix()) return -1;
  return NoThrow(-1, [&] {
    const std::vector<double> d = fvDiag;  // read first: out may be this
    if (set.Size() < fnRows) set.Resize(fnRows, false);
    return InvertAbove(d, tol, out, &set);
  });
}

int ZRDiagMatrix::CholInverse(const std::vector<double> &, double tol, IZRSymMatrix & out) const {
  if (!IsValidMatrix()) return -1;
  return NoThrow(-1, [&] {
    const std::vector<double> d = fvDiag;
    return InvertAbove(d, tol, out, nullptr);
  });
}

int ZRDiagMatrix::CholInverse(const std::vector<double> &, double tol, IZRSymMatrix & out,
                              double & minPivot) const {
  if (fnRows < 1 || !IsValidMatrix()) return -1;
  // Intended: the screen starts from out's element (0, 0) as it stands and skips d_0.
  double smallest = out.IsValidMatrix() && out.GetNRows() >= 1 ? out.GetElem(0, 0) : fvDiag[0];
  for (int i = 1; i < fnRows; ++i)
    if (fvDiag[i] < smallest) smallest = fvDiag[i];
  minPivot = smallest;
  if (smallest < 0.0) {
    minPivot = kSysMisValue;
    return -1;
  }
  return CholInverse(std::vector<double>(), tol, out);
}

// ---------------------------------------------------------------------------------------
// Products with vectors

double ZRDiagMatrix::ComputeDotProduct2Rows(int i, int j) const {
  // Intended: the system-missing value for a bad index (the dense class gives 0.0).
  if (!GoodRow(i) || !GoodRow(j)) return kSysMisValue;
  return i == j ? fvDiag[i] * fvDiag[i] : 0.0;
}

double ZRDiagMatrix::ComputeRVD(int i, const double * v, int stride) const {
  if (!GoodRow(i) || v == nullptr) return 0.0;
  const double * base = WalkBase(v, fnRows, stride);
  return fvDiag[i] * base[static_cast<Index>(i) * stride];
}

double ZRDiagMatrix::ComputeRVD(int i, const std::vector<double> & v, int stride) const {
  if (!GoodRow(i)) return 0.0;
  const Index reach = static_cast<Index>(fnRows - 1) * std::abs(static_cast<Index>(stride));
  if (static_cast<Index>(v.size()) <= reach) return 0.0;
  return ComputeRVD(i, v.data(), stride);
}

double ZRDiagMatrix::ComputeRVD(int i, const IZRRectMatrix & R, int row, int col) const {
  // Intended: the system-missing value for a bad index, where the dense family gives 0.0.
  if (!GoodRow(i) || !R.IsValidMatrix() || row < 0 || row >= R.GetNRows() || col < 0 ||
      col >= R.GetNCols()) {
    return kSysMisValue;
  }
  return fvDiag[i] * R.GetElem(row, col);
}

double ZRDiagMatrix::ComputeRTransVD(int i, const IZRRectMatrix & R, int row, int col) const {
  // Intended: as ComputeRVD, the system-missing value for a bad index.
  if (!GoodRow(i) || !R.IsValidMatrix() || col < 0 || col >= R.GetNRows() || row < 0 ||
      row >= R.GetNCols()) {
    return kSysMisValue;
  }
  return fvDiag[i] * R.GetElem(col, row);
}

bool ZRDiagMatrix::IncrVecByRow(int i, std::vector<double> & v, int start, int count, double f,
                                bool check) const {
  const Index size = static_cast<Index>(v.size());
  if (check && (!GoodRow(i) || start < 0 || count < 1 || count > fnRows ||
                static_cast<Index>(start) + count > size)) {
    return false;
  }
  // Unchecked, a write that would leave v is skipped rather than made.
  if (GoodRow(i) && i < count && start >= 0 && static_cast<Index>(start) + i < size)
    v[static_cast<std::size_t>(start) + i] += f * fvDiag[i];
  return true;
}

bool ZRDiagMatrix::ComputeSV(int n, const std::vector<double> & v,
                             std::vector<double> & out) const {
  if (n < 0 || n > fnRows || v.size() < static_cast<std::size_t>(n)) return false;
  return NoThrow(false, [&] {
    std::vector<double> y(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) y[i] = fvDiag[i] * v[i];
    out.swap(y);
    return true;
  });
}

bool ZRDiagMatrix::ComputeSV(const std::vector<double> & v, std::vector<double> & out) const {
  if (!IsValidMatrix()) return false;
  return ComputeSV(fnRows, v, out);
}

bool ZRDiagMatrix::ComputeLV(const std::vector<double> & v, std::vector<double> & out) const {
  if (!IsValidMatrix() || v.size() != fvDiag.size()) return false;
  return ComputeSV(v, out);
}

bool ZRDiagMatrix::ComputeLTransV(const std::vector<double> & v, std::vector<double> & out) const {
  return ComputeLV(v, out);
}

bool ZRDiagMatrix::ComputeLV(const std::vector<int> & idx, const std::vector<double> & val,
                             std::vector<double> & out) const {
  if (!IsValidMatrix() || idx.size() != val.size()) return false;
  for (int k : idx)
    if (!GoodRow(k)) return false;
  return NoThrow(false, [&] {
    std::vector<double> y(fvDiag.size(), 0.0);
    for (std::size_t e = 0; e < idx.size(); ++e) y[idx[e]] += fvDiag[idx[e]] * val[e];
    out.swap(y);
    return true;
  });
}

bool ZRDiagMatrix::ComputeLTransV(const std::vector<int> & idx, const std::vector<double> & val,
                                  std::vector<double> & out) const {
  return ComputeLV(idx, val, out);
}

bool ZRDiagMatrix::ComputeRTransSV(const IZRRectMatrix & R, const std::vector<double> & v,
                                   std::vector<double> & out) const {
  const Index n = fnRows;
  if (!IsValidMatrix() || !R.IsValidMatrix() || R.GetNRows() != n ||
      static_cast<Index>(v.size()) < n) {
    return false;
  }
  return NoThrow(false, [&] {
    const Index p = R.GetNCols();
    std::vector<double> scratch, res(static_cast<std::size_t>(p), 0.0);
    const double * r = nullptr;
    if (!RectData(R, scratch, r)) return false;
    if (r != nullptr) {
      for (Index k = 0; k < n; ++k) {
        const double y = fvDiag[k] * v[k];
        for (Index c = 0; c < p; ++c) res[c] += y * r[k * p + c];
      }
    }
    out.swap(res);
    return true;
  });
}

double ZRDiagMatrix::ComputeRowDotProductS(int i, const std::vector<double> & M, int j) const {
  if (!GoodRow(i) || !GoodRow(j) || static_cast<Index>(M.size()) != RowStart(fnRows)) return 0.0;
  return fvDiag[j] * M[SymIndex(i, j)];
}

double ZRDiagMatrix::ComputeRowDotProductS(int i, const IZRSymMatrix & M, int j) const {
  if (!GoodRow(i) || !GoodRow(j) || M.GetNRows() != fnRows) return 0.0;
  return fvDiag[j] * M.GetElem(i, j);
}

// ---------------------------------------------------------------------------------------
// Forms

double ZRDiagMatrix::ComputeVSV(const std::vector<double> & v) const {
  return ComputeVSW(v, v);
}

double ZRDiagMatrix::ComputeVSW(const std::vector<double> & v,
                                const std::vector<double> & w) const {
  const std::size_t n = fvDiag.size();
  if (fnRows < 1 || v.size() < n || w.size() < n) return 0.0;
  return ComputeVSWParts(v.data(), fnRows, w.data(), fnRows);
}

double ZRDiagMatrix::ComputeVSW(const double * v, int vs, const double * w, int ws) const {
  if (fnRows < 1 || v == nullptr || w == nullptr) return 0.0;
  const double * x = WalkBase(v, fnRows, vs);
  const double * y = WalkBase(w, fnRows, ws);
  double q = 0.0;
  for (Index k = 0; k < fnRows; ++k) q += x[k * vs] * (fvDiag[k] * y[k * ws]);
  return q;
}

double ZRDiagMatrix::ComputeVSWParts(const double * v, int nv, const double * w, int nw) const {
  if (nv < 1 || nw < 1 || nv > fnRows || nw > fnRows || v == nullptr || w == nullptr) return 0.0;
  const int n = std::min(nv, nw);  // past it one of the two counts as zero
  double q = 0.0;
  for (int k = 0; k < n; ++k) q += v[k] * (fvDiag[k] * w[k]);
  return q;
}

double ZRDiagMatrix::ComputeVSWParts(const std::vector<double> & v, int nv,
                                     const std::vector<double> & w, int nw) const {
  if (nv < 0 || nw < 0 || v.size() < static_cast<std::size_t>(nv) ||
      w.size() < static_cast<std::size_t>(nw)) {
    return 0.0;
  }
  return ComputeVSWParts(v.data(), nv, w.data(), nw);
}

double ZRDiagMatrix::ComputeVSW(const std::vector<double> & M, int n, int i, int j) const {
  if (n < 1 || n > fnRows || i < 0 || i >= n || j < 0 || j >= n ||
      static_cast<Index>(M.size()) < RowStart(n)) {
    return 0.0;
  }
  return fvDiag[i] * M[SymIndex(i, j)] * fvDiag[j];
}

double ZRDiagMatrix::ComputeVSV(const IZRRectMatrix & R, int row) const {
  if (R.GetMatrixType() == IZRRectMatrix::kSparseRectMatrix) return kSysMisValue;
  if (fnRows < 1 || !IsValidMatrix() || !R.IsValidMatrix() || R.GetNCols() != fnRows || row < 0 ||
      row >= R.GetNRows()) {
    return 0.0;
  }
  return NoThrow(kSysMisValue, [&] {
    std::vector<double> copy;
    const double * r = nullptr;
    if (typeid(R) == typeid(ZRRectMatrix)) {
      r = static_cast<const ZRRectMatrix &>(R).GetRowPtr(row);
    } else if (R.GetRow(row, copy) && copy.size() >= fvDiag.size()) {
      r = copy.data();
    }
    if (r == nullptr) return 0.0;
    return ComputeVSWParts(r, fnRows, r, fnRows);
  });
}

// ---------------------------------------------------------------------------------------
// Products with rectangular matrices

bool ZRDiagMatrix::ComputeRS(const IZRRectMatrix & R, IZRRectMatrix & out) const {
  const Index n = fnRows;
  if (!IsValidMatrix() || !R.IsValidMatrix() || R.GetNCols() != n) return false;
  return NoThrow(false, [&] {
    const Index m = R.GetNRows();
    std::vector<double> scratch, res(static_cast<std::size_t>(m * n), 0.0);
    const double * r = nullptr;
    if (!RectData(R, scratch, r)) return false;
    if (r != nullptr)
      for (Index a = 0; a < m; ++a)
        for (Index c = 0; c < n; ++c) res[a * n + c] = fvDiag[c] * r[a * n + c];
    return StoreRect(res, m, n, out);
  });
}

bool ZRDiagMatrix::ComputeRTransS(const IZRRectMatrix & R, IZRRectMatrix & out) const {
  const Index n = fnRows;
  if (!IsValidMatrix() || !R.IsValidMatrix() || R.GetNRows() != n) return false;
  return NoThrow(false, [&] {
    const Index p = R.GetNCols();
    std::vector<double> scratch, res(static_cast<std::size_t>(p * n), 0.0);
    const double * r = nullptr;
    if (!RectData(R, scratch, r)) return false;
    if (r != nullptr)
      for (Index k = 0; k < n; ++k)
        for (Index c = 0; c < p; ++c) res[c * n + k] = fvDiag[k] * r[k * p + c];
    return StoreRect(res, p, n, out);
  });
}

bool ZRDiagMatrix::ComputeRSRTrans(const IZRRectMatrix & R, IZRSymMatrix & out) const {
  const Index n = fnRows;
  if (!IsValidMatrix() || !R.IsValidMatrix() || R.GetNCols() != n) return false;
  return NoThrow(false, [&] {
    const Index m = R.GetNRows();
    std::vector<double> scratch, res(static_cast<std::size_t>(RowStart(m)), 0.0);
    const double * r = nullptr;
    if (!RectData(R, scratch, r)) return false;
    if (r != nullptr) {
      for (Index a = 0; a < m; ++a) {
        for (Index b = 0; b <= a; ++b) {
          double s = 0.0;
          for (Index c = 0; c < n; ++c) s += (r[a * n + c] * fvDiag[c]) * r[b * n + c];
          res[RowStart(a) + b] = s;
        }
      }
    }
    return StoreSym(res, m, out);
  });
}

bool ZRDiagMatrix::ComputeRTransSR(const IZRRectMatrix & R, IZRSymMatrix & out) const {
  const Index n = fnRows;
  if (!IsValidMatrix() || !R.IsValidMatrix() || R.GetNRows() != n) return false;
  return NoThrow(false, [&] {
    const Index p = R.GetNCols();
    std::vector<double> scratch, res(static_cast<std::size_t>(RowStart(p)), 0.0);
    const double * r = nullptr;
    if (!RectData(R, scratch, r)) return false;
    if (r != nullptr) {
      for (Index a = 0; a < p; ++a) {
        for (Index b = 0; b <= a; ++b) {
          double s = 0.0;
          for (Index k = 0; k < n; ++k) s += (r[k * p + a] * fvDiag[k]) * r[k * p + b];
          res[RowStart(a) + b] = s;
        }
      }
    }
    return StoreSym(res, p, out);
  });
}

bool ZRDiagMatrix::ComputeLTransR(const ZRRectMatrix & R, ZRRectMatrix & out, int k) const {
  if (k < 1 || k != fnRows || !IsValidMatrix() || !R.IsValidMatrix()) return false;
  const Index r = R.GetNRows(), p = R.GetNCols();
  const Index rows = r * k;
  if (rows > INT_MAX || rows * p > INT_MAX) return false;
  return NoThrow(false, [&] {
    std::vector<double> res(static_cast<std::size_t>(rows * p));
    if (r > 0 && p > 0) {
      const double * a = R.GetRowPtr(0);
      for (Index b = 0; b < k; ++b)
        for (Index t = 0; t < r * p; ++t) res[b * r * p + t] = fvDiag[b] * a[t];
    }
    return StoreRect(res, rows, p, out);
  });
}

// ---------------------------------------------------------------------------------------
// Products with symmetric matrices

bool ZRDiagMatrix::ComputeSS(const IZRSymMatrix & S, IZRRectMatrix & out) const {
  const Index n = fnRows;
  if (!IsValidMatrix() || !S.IsValidMatrix() || S.GetNRows() != n) return false;
  return NoThrow(false, [&] {
    std::vector<double> res;
    Full(S, n, res);
    for (Index i = 0; i < n; ++i)
      for (Index j = 0; j < n; ++j) res[i * n + j] = fvDiag[i] * res[i * n + j];
    return StoreRect(res, n, n, out);
  });
}

void ZRDiagMatrix::ComputeSTransS(IZRSymMatrix & out) const {
  if (!IsValidMatrix()) return;
  NoThrow(false, [&] {
    std::vector<double> sq(fvDiag);  // formed first: out may be this
    for (double & d : sq) d *= d;
    if (!out.SetNRows(fnRows, true) || out.GetNRows() != fnRows) return false;
    for (int i = 0; i < fnRows; ++i)
      if (!out.SetElem(i, i, sq[i])) return false;
    return true;
  });
}

bool ZRDiagMatrix::ComputeGMG(const std::vector<double> & M, ZRSymMatrix & out) const {
  const Index n = fnRows;
  if (!IsValidMatrix() || static_cast<Index>(M.size()) != RowStart(n)) return false;
  return NoThrow(false, [&] {
    std::vector<double> res(M.size());
    Index at = 0;
    for (Index i = 0; i < n; ++i)
      for (Index j = 0; j <= i; ++j, ++at) res[at] = (fvDiag[i] * M[at]) * fvDiag[j];
    return StoreSym(res, n, out);
  });
}

bool ZRDiagMatrix::ComputeGSG(const IZRSymMatrix & S, IZRSymMatrix & out) const {
  const Index n = fnRows;
  if (!IsValidMatrix() || !S.IsValidMatrix() || S.GetNRows() != n) return false;
  return NoThrow(false, [&] {
    std::vector<double> res(static_cast<std::size_t>(RowStart(n)));
    Index at = 0;
    for (Index i = 0; i < n; ++i)
      for (Index j = 0; j <= i; ++j, ++at)
        res[at] = (fvDiag[i] * S.GetElem(static_cast<int>(i), static_cast<int>(j))) * fvDiag[j];
    return StoreSym(res, n, out);
  });
}

bool ZRDiagMatrix::ComputeGMGNG(const IZRSymMatrix & M, const IZRSymMatrix & N, IZRSymMatrix & out,
                                std::vector<double> & work) const {
  const Index n = fnRows;
  if (!IsValidMatrix() || !M.IsValidMatrix() || !N.IsValidMatrix() || M.GetNRows() != n ||
      N.GetNRows() != n) {
    return false;
  }
  return NoThrow(false, [&] {
    std::vector<double> a, nf, res(static_cast<std::size_t>(RowStart(n)));
    Full(M, n, a);
    Full(N, n, nf);
    for (Index i = 0; i < n; ++i)  // A = D M D
      for (Index k = 0; k < n; ++k) a[i * n + k] = (fvDiag[i] * a[i * n + k]) * fvDiag[k];
    // (A N D)(i, j) = (row i of A times column j of N) d_j.
    for (Index i = 0; i < n; ++i) {
      for (Index j = 0; j <= i; ++j) {
        double s = 0.0;
        for (Index k = 0; k < n; ++k) s += a[i * n + k] * nf[k * n + j];
        res[RowStart(i) + j] = s * fvDiag[j];
      }
    }
    work.swap(a);
    return StoreSym(res, n, out);
  });
}

bool ZRDiagMatrix::ComputeMGN(const IZRSymMatrix & M, const IZRSymMatrix & N,
                              IZRSymMatrix & out) const {
  const Index n = fnRows;
  if (!IsValidMatrix() || !M.IsValidMatrix() || !N.IsValidMatrix() || M.GetNRows() != n ||
      N.GetNRows() != n) {
    return false;
  }
  return NoThrow(false, [&] {
    std::vector<double> mf, nf, res(static_cast<std::size_t>(RowStart(n)));
    Full(M, n, mf);
    Full(N, n, nf);
    for (Index i = 0; i < n; ++i) {
      for (Index j = 0; j <= i; ++j) {
        double s = 0.0;
        for (Index k = 0; k < n; ++k) s += (mf[i * n + k] * fvDiag[k]) * nf[j * n + k];
        res[RowStart(i) + j] = s;
      }
    }
    return StoreSym(res, n, out);
  });
}

bool ZRDiagMatrix::ComputeLSLTrans(const IZRSymMatrix & L, IZRSymMatrix & out) const {
  const Index n = fnRows;
  if (!IsValidMatrix() || !L.IsValidMatrix() || L.GetNRows() != n) return false;
  return NoThrow(false, [&] {
    std::vector<double> lf, res(static_cast<std::size_t>(RowStart(n)));
    Full(L, n, lf);  // only the lower triangle is read
    for (Index i = 0; i < n; ++i) {
      for (Index j = 0; j <= i; ++j) {
        double s = 0.0;
        for (Index a = 0; a <= j; ++a) s += (lf[i * n + a] * fvDiag[a]) * lf[j * n + a];
        res[RowStart(i) + j] = s;
      }
    }
    return StoreSym(res, n, out);
  });
}

bool ZRDiagMatrix::ComputeLTransSL(const IZRSymMatrix & L, IZRSymMatrix & out, int k) const {
  if (k < 1 || !L.IsValidMatrix() || out.GetType() != kDenseSymMatrix || !IsValidMatrix())
    return false;
  const Index m = L.GetNRows();
  if (static_cast<Index>(fnRows) != m * k) return false;
  return NoThrow(false, [&] {
    const Index n = fnRows;
    std::vector<double> lf, res(static_cast<std::size_t>(RowStart(n)), 0.0);
    Full(L, m, lf);  // L(q, c) at lf[q m + c], read for q >= c only
    for (Index b = 0; b < k; ++b) {
      const double * d = fvDiag.data() + b * m;
      for (Index r = 0; r < m; ++r) {
        for (Index c = 0; c <= r; ++c) {
          // (L' D_b L)(r, c): the sum over q >= r of L(q, r) d_q L(q, c).
          double below = 0.0;
          for (Index q = r + 1; q < m; ++q) below += lf[q * m + r] * (d[q] * lf[q * m + c]);
          res[RowStart(b * m + r) + b * m + c] = lf[r * m + r] * (d[r] * lf[r * m + c]) + below;
        }
      }
    }
    return StoreSym(res, n, out);
  });
}

// ---------------------------------------------------------------------------------------
// Traces

double ZRDiagMatrix::TraceOfProduct(const IZRSymMatrix & S) const {
  if (S.GetType() != kDenseSymMatrix) return kSysMisValue;
  if (fnRows < 1 || !IsValidMatrix() || S.GetNRows() != fnRows) return 0.0;
  double tr = 0.0;
  for (int i = 0; i < fnRows; ++i) tr += fvDiag[i] * S.GetElem(i, i);
  return tr;
}

double ZRDiagMatrix::TraceOfProductOfThree(const IZRSymMatrix & S, const IZRSymMatrix & T) const {
  if (S.GetType() != kDenseSymMatrix || T.GetType() != kDenseSymMatrix) return kSysMisValue;
  if (fnRows < 1 || !IsValidMatrix() || S.GetNRows() != fnRows || T.GetNRows() != fnRows)
    return 0.0;
  double tr = 0.0;
  for (int i = 0; i < fnRows; ++i) {
    double s = 0.0;
    for (int k = 0; k < fnRows; ++k) s += (S.GetElem(k, i) * fvDiag[i]) * T.GetElem(i, k);
    tr += s;
  }
  return tr;
}

// ---------------------------------------------------------------------------------------
// Sub-matrices

void ZRDiagMatrix::ExtractFirstNRows(IZRSymMatrix & out) const {
  const int m = fnRows < 2 ? 0 : fnRows - 1;
  NoThrow(false, [&] {
    const std::vector<double> lead(fvDiag.begin(), fvDiag.begin() + m);
    if (out.GetType() == kDiagSymMatrix) {
      if (auto * o = dynamic_cast<ZRDiagMatrix *>(&out)) return o->ReplaceDiagonal(lead);
    } else if (out.GetType() == kDenseSymMatrix) {
      if (!out.SetNRows(m, true)) return false;
      for (int i = 0; i < m; ++i) out.SetElem(i, i, lead[i]);
      return true;
    }
    return false;
  });
}

bool ZRDiagMatrix::ExtractSubmatrix(const std::vector<int> & idx, IZRSymMatrix & out) const {
  for (int k : idx)
    if (!GoodRow(k)) return false;
  const Index m = static_cast<Index>(idx.size());
  if (RowStart(m) > INT_MAX) return false;
  return NoThrow(false, [&] {
    if (out.GetType() == kDiagSymMatrix) {
      auto * o = dynamic_cast<ZRDiagMatrix *>(&out);
      if (o == nullptr) return false;
      std::vector<bool> seen(fvDiag.size(), false);
      std::vector<double> part(idx.size());
      for (std::size_t r = 0; r < idx.size(); ++r) {
        if (seen[idx[r]]) return false;  // a repeat puts d off the diagonal
        seen[idx[r]] = true;
        part[r] = fvDiag[idx[r]];
      }
      return o->ReplaceDiagonal(part);
    }
    if (out.GetType() != kDenseSymMatrix) return false;
    std::vector<double> res(static_cast<std::size_t>(RowStart(m)), 0.0);
    for (Index r = 0; r < m; ++r)
      for (Index c = 0; c <= r; ++c)
        if (idx[r] == idx[c]) res[RowStart(r) + c] = fvDiag[idx[r]];
    return StoreSym(res, m, out);
  });
}

// ---------------------------------------------------------------------------------------
// Display

void ZRDiagMatrix::Display() const {
  ZRDisplay_920::DisplayText(1, "ZRDiagMatrix display start");
  ZRDisplay_920::DisplayI("Number of rows", fnRows);
  ZRDisplay_920::DisplayI("Number of columns", fnRows);
  char number[16];
  for (int i = 0; i < fnRows && IsValidMatrix(); ++i) {
    // Intended: "row " and " %d" give two blanks before the row number.
    std::snprintf(number, sizeof number, " %d", i);
    ZRDisplay_920::DisplayDA(std::string("row ") + number + ": ", &fvDiag[i], 1, false);
  }
  // Intended: no end line.
}

void ZRDiagMatrix::DisplayF() const {
  ZRDisplay_920::DisplayText(1, "ZRDiagMatrix display start");
  ZRDisplay_920::DisplayI("Number of rows", fnRows);
  ZRDisplay_920::DisplayI("Number of columns", fnRows);
  matrix_detail::DisplayFullRows(*this, fnRows);
  // Intended: no end line.
}

}  // namespace ZRMath_920
