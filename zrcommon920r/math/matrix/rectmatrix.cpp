// ZRRectMatrix, the dense row-major rectangular matrix, and ZRSparseVector.
#include "zrcommon920r/math/matrix/rectmatrix.h"
#include "zrcommon920r/math/matrix/detail/nothrow_alloc.h"
#include "zrcommon920r/math/matrix/sparsematrix.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdio>
#include <new>
#include <stdexcept>
#include <string>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/display/display.h"
#include "zrcommon920r/math/dist/mathfun.h"
#include "zrcommon920r/math/matrix/detail/display_rows.h"
#include "zrcommon920r/math/matrix/detail/gemm_kernels.h"

namespace ZRMath_920 {

namespace {

using matrix_detail::AssignNoThrow;
using matrix_detail::CopyNoThrow;
using matrix_detail::ResizeNoThrow;

using ZRCommon_920::kMachineEpsilon;
using ZRCommon_920::kSysMisValue;

// ColClean's tolerance is eps times this many machine epsilons.
constexpr double kColCleanScale = 10000.0;

// ComputeProductMatrixTrans copies B' for the packed product from this many multiply-adds.
constexpr double kPackedProductFrom = 32.0 * 32.0 * 32.0;

const ZRRectMatrix * AsDense(const IZRRectMatrix & m) {
  return dynamic_cast<const ZRRectMatrix *>(&m);
}
ZRRectMatrix * AsDense(IZRRectMatrix & m) {
  return dynamic_cast<ZRRectMatrix *>(&m);
}

// Sum of x[k] * y[k] for k = 0 .. n - 1, in that order, in one accumulator.
double Dot(const double * x, const double * y, int n) {
  double sum = 0.0;
  for (int k = 0; k < n; ++k) sum += x[k] * y[k];
  return sum;
}

// The same along two strided walks; the index stays in std::size_t so that the step past
// the last element cannot overflow.
double DotStrided(const double * x, std::size_t strideX, const double * y, std::size_t strideY,
                  int n) {
  double sum = 0.0;
  std::size_t ix = 0, iy = 0;
  for (int k = 0; k < n; ++k, ix += strideX, iy += strideY) sum += x[ix] * y[iy];
  return sum;
}

// y = A x for A m x p by rows. Four rows at a time, each in its own accumulator summed
// from k = 0 upward, so every y[i] equals Dot(row i, x, p) to the bit.
void MatVec(const double * a, int m, int p, const double * x, double * y) {
  int i = 0;
  for (; i + 4 <= m; i += 4) {
    const double * r0 = a + static_cast<std::size_t>(i) * p;
    const double * r1 = r0 + p;
    const double * r2 = r1 + p;
    const double * r3 = r2 + p;
    double s0 = 0.0, s1 = 0.0, s2 = 0.0, s3 = 0.0;
    for (int k = 0; k < p; ++k) {
      const double xk = x[k];
      s0 += r0[k] * xk;
      s1 += r1[k] * xk;
      s2 += r2[k] * xk;
      s3 += r3[k] * xk;
    }
    y[i] = s0;
    y[i + 1] = s1;
    y[i + 2] = s2;
    y[i + 3] = s3;
  }
  for (; i < m; ++i) y[i] = Dot(a + static_cast<std::size_t>(i) * p, x, p);
}

// y = x' A for A m x p by rows, y zeroed by the caller. Rows are added in ascending order
// into each y[j], so y[j] is the column dot product summed from row 0 upward.
void VecMat(const double * a, int m, int p, const double * x, double * y) {
  int i = 0;
  for (; i + 4 <= m; i += 4) {
    const double * r0 = a + static_cast<std::size_t>(i) * p;
    const double * r1 = r0 + p;
    const double * r2 = r1 + p;
    const double * r3 = r2 + p;
    const double x0 = x[i], x1 = x[i + 1], x2 = x[i + 2], x3 = x[i + 3];
    for (int j = 0; j < p; ++j) {
      double s = y[j];
      s += x0 * r0[j];
      s += x1 * r1[j];
      s += x2 * r2[j];
      s += x3 * r3[j];
      y[j] = s;
    }
  }
  for (; i < m; ++i) {
    const double * r = a + static_cast<std::size_t>(i) * p;
    const double xi = x[i];
    for (int j = 0; j < p; ++j) y[j] += xi * r[j];
  }
}

// Last index + 1 of a sparse view in 64 bits; 0 when it is empty.
std::int64_t LastPlusOne(const ZRSparseVector & s) {
  const std::vector<int> & idx = s.GetIndices();
  return idx.empty() ? 0 : static_cast<std::int64_t>(idx.back()) + 1;
}

// A container size as a 64-bit count; anything past INT_MAX becomes INT_MAX + 1.
std::int64_t CountOf(std::size_t n) {
  return static_cast<std::int64_t>(std::min<std::size_t>(n, std::size_t{INT_MAX} + 1));
}

// Every (index + shift) of idx lies in [0, extent).
bool AllInRange(const std::vector<int> & idx, std::int64_t shift, int extent) {
  for (int x : idx) {
    const std::int64_t at = x + shift;
    if (at < 0 || at >= extent) return false;
  }
  return true;
}

}  // namespace

// ---------------------------------------------------------------------------------------
// ZRSparseVector

ZRSparseVector::ZRSparseVector(const std::vector<int> & idx, const std::vector<double> & val)
    : fnCount(static_cast<int>(std::min<std::size_t>(idx.size(), INT_MAX))),
      fvIndices(&idx),
      fvValues(&val),
      fbValid(false) {
  bool ok = !idx.empty() && idx.size() == val.size() && idx[0] >= 0;
  for (std::size_t k = 1; ok && k < idx.size(); ++k) ok = idx[k - 1] < idx[k];
  fbValid = ok;
}

int ZRSparseVector::UsableCount() const {
  return static_cast<int>(std::min<std::size_t>(fnCount, fvValues->size()));
}

int ZRSparseVector::GetMinVecSize() const {
  if (fnCount == 0) return 0;
  const int last = (*fvIndices)[fnCount - 1];
  return last == INT_MAX ? -1 : last + 1;
}

int ZRSparseVector::GetIndex(int k) const {
  return (k >= 0 && k < fnCount) ? (*fvIndices)[k] : -1;
}

double ZRSparseVector::GetValue(int k) const {
  return (k >= 0 && k < fnCount && static_cast<std::size_t>(k) < fvValues->size()) ? (*fvValues)[k]
                                                                                   : kSysMisValue;
}

int ZRSparseVector::ConvertToRegularVector(std::vector<double> & v) const {
  const int need = GetMinVecSize();
  if (need < 0) return -1;
  const std::size_t size = std::max(v.size(), static_cast<std::size_t>(need));
  if (size > static_cast<std::size_t>(INT_MAX)) return -1;
  if (!AssignNoThrow(v, size, 0.0)) return -1;
  const int n = UsableCount();
  for (int k = 0; k < n; ++k) {
    const int at = (*fvIndices)[k];
    if (at >= 0 && static_cast<std::size_t>(at) < size) v[at] = (*fvValues)[k];
  }
  return static_cast<int>(size);
}

bool ZRSparseVector::IncrementPart(std::vector<double> & v, int start, double f) const {
  if (start < 0) return false;
  const std::int64_t size = static_cast<std::int64_t>(v.size());
  if (fnCount > 0 && static_cast<std::int64_t>((*fvIndices)[fnCount - 1]) + start >= size) {
    return false;
  }
  const int n = UsableCount();
  for (int k = 0; k < n; ++k) {
    const std::int64_t at = static_cast<std::int64_t>((*fvIndices)[k]) + start;
    if (at >= 0 && at < size) v[at] += f * (*fvValues)[k];
  }
  return true;
}

double ZRSparseVector::InnerProductWithPart(const std::vector<double> & v, int start) const {
  if (start < 0) return kSysMisValue;
  const std::int64_t size = static_cast<std::int64_t>(v.size());
  if (fnCount > 0 && static_cast<std::int64_t>((*fvIndices)[fnCount - 1]) + start >= size) {
    return kSysMisValue;
  }
  double sum = 0.0;
  const int n = UsableCount();
  for (int k = 0; k < n; ++k) {
    const std::int64_t at = static_cast<std::int64_t>((*fvIndices)[k]) + start;
    if (at >= 0 && at < size) sum += (*fvValues)[k] * v[at];
  }
  return sum;
}

double ZRSparseVector::InnerProduct(const int * i1, const double * v1, int n1, const int * i2,
                                    const double * v2, int n2) {
  if (i1 == nullptr || v1 == nullptr || i2 == nullptr || v2 == nullptr || n1 < 0 || n2 < 0) {
    return kSysMisValue;
  }
  double sum = 0.0;
  int a = 0, b = 0;
  while (a < n1 && b < n2) {
    if (i1[a] < i2[b]) {
      ++a;
    } else if (i2[b] < i1[a]) {
      ++b;
    } else {
      sum += v1[a] * v2[b];
      ++a;
      ++b;
    }
  }
  return sum;
}

void ZRSparseVector::Display() const {
  ZRDisplay_920::DisplayText(1, "ZRSparseVector display start");
  ZRDisplay_920::DisplayI("Number of sparse vector elements", fnCount);
  ZRDisplay_920::DisplayIV("Vector of indices", *fvIndices);
  ZRDisplay_920::DisplayDV("Vector of values", *fvValues, false);
  ZRDisplay_920::DisplayB("Validity indicator", fbValid);
  ZRDisplay_920::DisplayText(1, "ZRSparseVector display end");
}

// ---------------------------------------------------------------------------------------
// ZRRectMatrix: construction, storage and sizing

ZRRectMatrix::ZRRectMatrix() : fnRows(0), fnCols(0) {}

ZRRectMatrix::ZRRectMatrix(int nRows, int nCols, bool clear) : fnRows(0), fnCols(0) {
  // The buffer comes zero-filled from the resize, so clear needs no second pass.
  static_cast<void>(clear);
  Resize(nRows, nCols);
}

ZRRectMatrix::ZRRectMatrix(const ZRRectMatrix & other)
    : IZRRectMatrix(), fnRows(other.fnRows), fnCols(other.fnCols) {
  if (!CopyNoThrow(fvData, other.fvData)) SetInvalid();
}

ZRRectMatrix & ZRRectMatrix::operator=(const ZRRectMatrix & other) {
  if (this == &other) return *this;
  if (CopyNoThrow(fvData, other.fvData)) {
    fnRows = other.fnRows;
    fnCols = other.fnCols;
  } else {
    SetInvalid();
  }
  return *this;
}

bool ZRRectMatrix::ResizeNRowsCols(std::vector<double> & v, int & nRows, int & nCols) {
  if (nRows > 0 && nCols > 0) {
    const std::int64_t count = static_cast<std::int64_t>(nRows) * nCols;
    // Flat indices are ints: a larger matrix counts as a failed allocation.
    if (count > INT_MAX || !ResizeNoThrow(v, static_cast<std::size_t>(count))) {
      nRows = -1;
      nCols = -1;
      std::vector<double>().swap(v);
    }
  }
  if (nRows < 1 || nCols < 1) v.clear();
  return nRows >= 0 && nCols >= 0;
}

void ZRRectMatrix::SetInvalid() {
  fnRows = -1;
  fnCols = -1;
  std::vector<double>().swap(fvData);
}

void ZRRectMatrix::TakeFrom(ZRRectMatrix & other) {
  fnRows = other.fnRows;
  fnCols = other.fnCols;
  fvData.swap(other.fvData);
  other.fnRows = 0;
  other.fnCols = 0;
  other.fvData.clear();
}

bool ZRRectMatrix::SizeTo(std::int64_t nRows, std::int64_t nCols, bool clear) {
  nRows = std::max<std::int64_t>(nRows, 0);
  nCols = std::max<std::int64_t>(nCols, 0);
  if (nRows > INT_MAX || nCols > INT_MAX) {
    SetInvalid();
    return false;
  }
  return SetNRowsCols(static_cast<int>(nRows), static_cast<int>(nCols), clear);
}

bool ZRRectMatrix::Resize(int nRows, int nCols) {
  fnRows = std::max(nRows, 0);
  fnCols = std::max(nCols, 0);
  return ResizeNRowsCols(fvData, fnRows, fnCols);
}

bool ZRRectMatrix::SetNRowsCols(int nRows, int nCols, bool clear) {
  if (!Resize(nRows, nCols)) return false;
  if (clear) Clear();
  return true;
}

void ZRRectMatrix::Clear() {
  std::fill(fvData.begin(), fvData.end(), 0.0);
}

int ZRRectMatrix::AddRow() {
  if (!IsValidMatrix()) return -1;
  if (fnRows == INT_MAX) {
    SetInvalid();
    return -1;
  }
  // The zeros that extend the flat buffer are exactly the new last row.
  return Resize(fnRows + 1, fnCols) ? fnRows : -1;
}

int ZRRectMatrix::AddRow(const ZRSparseVector & s) {
  if (!IsValidMatrix() || LastPlusOne(s) > fnCols) return -1;
  if (AddRow() < 0) return -1;
  double * row = Row(fnRows - 1);
  const std::vector<int> & idx = s.GetIndices();
  const std::vector<double> & val = s.GetValues();
  const std::size_t n = std::min(idx.size(), val.size());
  for (std::size_t k = 0; k < n; ++k) {
    if (idx[k] >= 0 && idx[k] < fnCols) row[idx[k]] = val[k];
  }
  return fnRows;
}

int ZRRectMatrix::AddColumn() {
  if (!IsValidMatrix()) return -1;
  if (fnCols == INT_MAX) {
    SetInvalid();
    return -1;
  }
  const int oldCols = fnCols;
  if (!Resize(fnRows, oldCols + 1)) return -1;
  // Spread the rows out in place, last row first so that no row is overwritten unread.
  for (int i = fnRows - 1; i >= 1; --i) {
    const double * from = fvData.data() + static_cast<std::size_t>(i) * oldCols;
    double * to = Row(i);
    std::copy_backward(from, from + oldCols, to + oldCols);
  }
  for (int i = 0; i < fnRows; ++i) Row(i)[oldCols] = 0.0;
  return fnCols;
}

bool ZRRectMatrix::DeleteOneCol(int j) {
  if (!GoodCol(j)) return false;
  std::size_t to = 0, from = 0;
  for (int i = 0; i < fnRows; ++i) {
    for (int k = 0; k < fnCols; ++k, ++from) {
      if (k != j) fvData[to++] = fvData[from];
    }
  }
  return Resize(fnRows, fnCols - 1);
}

bool ZRRectMatrix::DeleteOneRow(int i) {
  if (!GoodRow(i)) return false;
  const std::size_t first = static_cast<std::size_t>(i) * fnCols;
  fvData.erase(fvData.begin() + first, fvData.begin() + first + fnCols);
  --fnRows;
  return true;
}

bool ZRRectMatrix::ExpandRectangular(const ZRRectMatrix & R) {
  if (!IsValidMatrix() || !R.IsValidMatrix() || R.fnCols != fnCols) return false;
  const std::int64_t rows = static_cast<std::int64_t>(fnRows) + R.fnRows;
  if (rows > INT_MAX || rows * fnCols > INT_MAX) return false;
  const std::size_t old = fvData.size(), add = R.fvData.size();
  try {
    fvData.reserve(old + add);
  } catch (const std::bad_alloc &) {
    return false;
  } catch (const std::length_error &) {
    return false;
  }
  // No reallocation from here on, so R may be this matrix itself.
  fvData.resize(old + add);
  std::copy(R.fvData.begin(), R.fvData.begin() + add, fvData.begin() + old);
  fnRows = static_cast<int>(rows);
  return true;
}

void ZRRectMatrix::Transpose() {
  if (!IsValidMatrix()) return;
  if (fnRows == fnCols) {
    for (int i = 0; i < fnRows; ++i) {
      for (int j = 0; j < i; ++j) std::swap(Row(i)[j], Row(j)[i]);
    }
    return;
  }
  if (fnRows > 1 && fnCols > 1) {
    std::vector<double> old;
    if (!CopyNoThrow(old, fvData)) {
      SetInvalid();
      return;
    }
    const std::size_t rows = static_cast<std::size_t>(fnRows);
    for (int i = 0; i < fnRows; ++i) {
      const double * src = old.data() + static_cast<std::size_t>(i) * fnCols;
      for (int j = 0; j < fnCols; ++j) fvData[j * rows + i] = src[j];
    }
  }
  // A single row or column keeps its flat order.
  std::swap(fnRows, fnCols);
}

// ---------------------------------------------------------------------------------------
// ZRRectMatrix: element, row and column access

bool ZRRectMatrix::GetRow(int i, std::vector<double> & v) const {
  if (!GoodRow(i)) return false;
  if (!ResizeNoThrow(v, static_cast<std::size_t>(fnCols))) return false;
  std::copy(Row(i), Row(i) + fnCols, v.begin());
  return true;
}

bool ZRRectMatrix::GetCol(int j, std::vector<double> & v) const {
  if (!GoodCol(j)) return false;
  return CopyColToVec(j, v);
}

bool ZRRectMatrix::CopyColToVec(int j, std::vector<double> & v) const {
  if (!ResizeNoThrow(v, static_cast<std::size_t>(std::max(fnRows, 0)))) return false;
  if (!GoodCol(j)) return false;
  std::size_t at = static_cast<std::size_t>(j);
  for (int i = 0; i < fnRows; ++i, at += fnCols) v[i] = fvData[at];
  return true;
}

const double * ZRRectMatrix::GetColPtr(int j) const {
  return (GoodCol(j) && fnRows > 0) ? fvData.data() + j : nullptr;
}

const double * ZRRectMatrix::GetRowPtr(int i) const {
  return (GoodRow(i) && fnCols > 0) ? Row(i) : nullptr;
}

bool ZRRectMatrix::SetRow(int i, const ZRSparseVector & s) {
  if (!GoodRow(i) || LastPlusOne(s) > fnCols) return false;
  double * row = Row(i);
  std::fill(row, row + fnCols, 0.0);
  const std::vector<int> & idx = s.GetIndices();
  const std::vector<double> & val = s.GetValues();
  const std::size_t n = std::min(idx.size(), val.size());
  for (std::size_t k = 0; k < n; ++k) {
    if (idx[k] >= 0 && idx[k] < fnCols) row[idx[k]] = val[k];
  }
  return true;
}

bool ZRRectMatrix::IsRowZero(int i) const {
  if (!GoodRow(i) || fnCols < 1) return false;
  const double * row = Row(i);
  for (int j = 0; j < fnCols; ++j) {
    if (!(row[j] == 0.0)) return false;
  }
  return true;
}

bool ZRRectMatrix::IsColZero(int j) const {
  if (!GoodCol(j) || fnRows < 1) return false;
  std::size_t at = static_cast<std::size_t>(j);
  for (int i = 0; i < fnRows; ++i, at += fnCols) {
    if (!(fvData[at] == 0.0)) return false;
  }
  return true;
}

int ZRRectMatrix::FindFirstNonZeroInRow(int i, double tol) const {
  if (!GoodRow(i) || !(tol > 0.0)) return -1;
  const double * row = Row(i);
  for (int j = 0; j < fnCols; ++j) {
    if (std::fabs(row[j]) > tol) return j;
  }
  return -1;
}

bool ZRRectMatrix::ZeroOutRowPart(int i, int from, int to) {
  if (!GoodRow(i) || from < 0 || from > to || to >= fnCols) return false;
  std::fill(Row(i) + from, Row(i) + to + 1, 0.0);
  return true;
}

bool ZRRectMatrix::ZeroOutCol(int j) {
  if (!GoodCol(j)) return false;
  std::size_t at = static_cast<std::size_t>(j);
  for (int i = 0; i < fnRows; ++i, at += fnCols) fvData[at] = 0.0;
  return true;
}

bool ZRRectMatrix::ColScale(int j, double f) {
  if (!GoodCol(j)) return false;
  std::size_t at = static_cast<std::size_t>(j);
  for (int i = 0; i < fnRows; ++i, at += fnCols) fvData[at] *= f;
  return true;
}

bool ZRRectMatrix::AddToColumn(int j, const ZRRectMatrix & R, int k, double f) {
  if (!GoodCol(j) || !R.GoodCol(k) || fnRows != R.fnRows) return false;
  std::size_t at = static_cast<std::size_t>(j), from = static_cast<std::size_t>(k);
  for (int i = 0; i < fnRows; ++i, at += fnCols, from += R.fnCols) {
    fvData[at] += f * R.fvData[from];
  }
  return true;
}

bool ZRRectMatrix::AddToDiagonal(double x) {
  if (!IsValidMatrix() || fnRows != fnCols) return false;
  for (int i = 0; i < fnRows; ++i) Row(i)[i] += x;
  return true;
}

void ZRRectMatrix::CheckForOnes(double eps) {
  if (!(eps > 0.0)) return;
  for (double & x : fvData) {
    if (std::fabs(std::fabs(x) - 1.0) < eps) x = x > 0.0 ? 1.0 : -1.0;
  }
}

bool ZRRectMatrix::ColClean(int j, double eps) {
  if (!GoodCol(j)) return false;
  const double scaled = eps * kColCleanScale;
  const bool active = scaled > 0.0;
  const double tol = scaled * kMachineEpsilon;
  const double norm = ZRMathFun::DNrm2(fnRows, fvData, j, fnCols);
  if (active && tol > std::fabs(norm)) return ZeroOutCol(j);
  // A zero column has nothing to clean, and a non-finite norm would turn it into NaN.
  if (norm == 0.0 || !std::isfinite(norm)) return true;
  const double inv = 1.0 / norm;
  std::size_t at = static_cast<std::size_t>(j);
  for (int i = 0; i < fnRows; ++i, at += fnCols) {
    const double x = fvData[at] * inv;
    fvData[at] = (active && std::fabs(x) < tol) ? 0.0 : x * norm;
  }
  return true;
}

bool ZRRectMatrix::ZeroOutPivotRow(int i, double tol, int & pivot) {
  pivot = -1;
  if (!GoodRow(i) || !(tol > 0.0)) return false;
  pivot = FindFirstNonZeroInRow(i, tol);
  if (pivot < 0) return false;
  for (int j = 0; j < fnCols; ++j) {
    // Intended: the factor is the row's own element, added; not divided by the pivot
    // and not negated.
    if (j != pivot) AddToColumn(j, *this, pivot, Row(i)[j]);
  }
  return ZeroOutCol(pivot);
}

bool ZRRectMatrix::IsERowMultipleOfAnother(int i, int k, double e1, double e2,
                                           double & mult) const {
  if (fnCols < 1 || !GoodRow(i) || !GoodRow(k)) return false;
  const double * ri = Row(i);
  const double * rk = Row(k);
  double m1 = std::fabs(e1), m2 = std::fabs(e2);
  for (int j = 0; j < fnCols; ++j) {
    m1 = std::max(m1, std::fabs(ri[j]));
    m2 = std::max(m2, std::fabs(rk[j]));
  }
  if (m1 == 0.0 || m2 == 0.0) return false;
  double m = 0.0;
  int j = 0;
  while (j < fnCols && ri[j] == 0.0) {
    if (rk[j] != 0.0) return false;
    ++j;
  }
  if (j < fnCols) {
    if (rk[j] == 0.0) return false;
    m = ri[j] / rk[j];
  } else {
    if (e1 == 0.0 || e2 == 0.0) return false;
    m = e1 / e2;
  }
  // Written as !(d <= eps) so that a NaN anywhere refuses.
  for (j = 0; j < fnCols; ++j) {
    if (!(std::fabs(ri[j] - m * rk[j]) / m1 <= kMachineEpsilon)) return false;
  }
  if (!(std::fabs(e1 - m * e2) / m1 <= kMachineEpsilon)) return false;
  mult = m;
  return true;
}

// ---------------------------------------------------------------------------------------
// ZRRectMatrix: norms and scalar products

double ZRRectMatrix::ColNorm(int j) const {
  if (!GoodCol(j)) return kSysMisValue;
  return ZRMathFun::DNrm2(fnRows, fvData, j, fnCols);
}

double ZRRectMatrix::RowNorm(int i) const {
  if (!GoodRow(i)) return kSysMisValue;
  return ZRMathFun::DNrm2(fnCols, fvData, i * fnCols, 1);
}

double ZRRectMatrix::DotProductCol(int j, int k) const {
  if (!GoodCol(j) || !GoodCol(k)) return kSysMisValue;
  if (fnRows < 1) return 0.0;
  return DotStrided(fvData.data() + j, fnCols, fvData.data() + k, fnCols, fnRows);
}

double ZRRectMatrix::DotProductRows(int i, int k) const {
  if (!GoodRow(i) || !GoodRow(k)) return kSysMisValue;
  return Dot(Row(i), Row(k), fnCols);
}

double ZRRectMatrix::DotProductColCol(int j, const ZRRectMatrix & R, int k) const {
  if (!GoodCol(j) || !R.GoodCol(k) || fnRows != R.fnRows) return kSysMisValue;
  if (fnRows < 1) return 0.0;
  return DotStrided(fvData.data() + j, fnCols, R.fvData.data() + k, R.fnCols, fnRows);
}

double ZRRectMatrix::DotProductRowCol(int i, const IZRRectMatrix & B, int j) const {
  if (!GoodRow(i) || j < 0 || j >= B.GetNCols()) return kSysMisValue;
  if (fnCols < 1) return 0.0;
  // Intended: the row length alone bounds the loop, so rows of B past this's column
  // count are ignored; a B with too few rows would be read past its end and is refused.
  if (B.GetNRows() < fnCols) return kSysMisValue;
  const double * row = Row(i);
  if (const ZRRectMatrix * bd = AsDense(B)) {
    return DotStrided(row, 1, bd->fvData.data() + j, bd->fnCols, fnCols);
  }
  double sum = 0.0;
  for (int k = 0; k < fnCols; ++k) sum += row[k] * B.GetElem(k, j);
  return sum;
}

double ZRRectMatrix::DotProductRowRow(int i, const IZRRectMatrix & B, int k) const {
  if (!GoodRow(i) || k < 0 || k >= B.GetNRows() || B.GetNCols() != fnCols) {
    return kSysMisValue;
  }
  const double * row = Row(i);
  if (const ZRRectMatrix * bd = AsDense(B)) return Dot(row, bd->Row(k), fnCols);
  if (const auto * bs = dynamic_cast<const ZRSparseRectMatrix *>(&B)) {
    // The sparse row's stored pairs alone, in ascending column order.
    const int * idx = nullptr;
    const double * val = nullptr;
    bs->GetRow(k, idx, val);
    const unsigned width = static_cast<unsigned>(fnCols);
    double sum = 0.0;
    for (int m = 0; m < bs->GetNNZRowElements(); ++m) {
      if (static_cast<unsigned>(idx[m]) < width) sum += row[idx[m]] * val[m];
    }
    return sum;
  }
  double sum = 0.0;
  for (int j = 0; j < fnCols; ++j) sum += row[j] * B.GetElem(k, j);
  return sum;
}

bool ZRRectMatrix::IncrVecByColumn(int j, std::vector<double> & v, int start, int count, double f,
                                   bool check) const {
  if (check && (!GoodCol(j) || start < 0 || count < 1 || count > fnRows ||
                static_cast<std::int64_t>(start) + count > static_cast<std::int64_t>(v.size()))) {
    return false;
  }
  const int n = std::min(count, fnRows);
  std::size_t at = static_cast<std::size_t>(j);
  for (int i = 0; i < n; ++i, at += fnCols) v[start + i] += f * fvData[at];
  return true;
}

// ---------------------------------------------------------------------------------------
// ZRRectMatrix: products

bool ZRRectMatrix::ComputeRV(const std::vector<double> & v, std::vector<double> & out) const {
  if (!IsValidMatrix() || v.size() < static_cast<std::size_t>(fnCols)) return false;
  if (&v == &out) {
    std::vector<double> copy;
    return CopyNoThrow(copy, v) && ComputeRV(copy, out);
  }
  if (!ResizeNoThrow(out, static_cast<std::size_t>(fnRows))) return false;
  MatVec(fvData.data(), fnRows, fnCols, v.data(), out.data());
  return true;
}

bool ZRRectMatrix::ComputeRV(const double * v, double * out) const {
  MatVec(fvData.data(), fnRows, fnCols, v, out);
  return true;
}

bool ZRRectMatrix::ComputeVR(const std::vector<double> & v, std::vector<double> & out) const {
  if (!IsValidMatrix() || v.size() < static_cast<std::size_t>(fnRows)) return false;
  if (&v == &out) {
    std::vector<double> copy;
    return CopyNoThrow(copy, v) && ComputeVR(copy, out);
  }
  if (!AssignNoThrow(out, static_cast<std::size_t>(fnCols), 0.0)) return false;
  VecMat(fvData.data(), fnRows, fnCols, v.data(), out.data());
  return true;
}

bool ZRRectMatrix::ComputeRDiagV(const std::vector<double> & v, std::vector<double> & out) const {
  if (fnRows < 1 || fnCols < 1) return false;
  if (&v == &out) {
    std::vector<double> copy;
    return CopyNoThrow(copy, v) && ComputeRDiagV(copy, out);
  }
  const std::size_t blocks = v.size() / static_cast<std::size_t>(fnCols);
  if (!ResizeNoThrow(out, blocks * static_cast<std::size_t>(fnRows))) return false;
  for (std::size_t b = 0; b < blocks; ++b) {
    MatVec(fvData.data(), fnRows, fnCols, v.data() + b * fnCols, out.data() + b * fnRows);
  }
  return true;
}

bool ZRRectMatrix::ComputeRV(const std::vector<int> & idx, const std::vector<double> & val,
                             std::vector<double> & out) const {
  if (&val == &out) {
    std::vector<double> copy;
    return CopyNoThrow(copy, val) && ComputeRV(idx, copy, out);
  }
  if (!AssignNoThrow(out, static_cast<std::size_t>(std::max(fnRows, 0)), 0.0)) return false;
  // Intended: an index equal to the column count passes this test (the entry then adds
  // nothing).
  if (fnCols < 0 || idx.size() != val.size() || (!idx.empty() && idx.back() > fnCols)) {
    return false;
  }
  for (int i = 0; i < fnRows; ++i) {
    const double * row = Row(i);
    double sum = 0.0;
    for (std::size_t e = 0; e < idx.size(); ++e) {
      if (idx[e] >= 0 && idx[e] < fnCols) sum += row[idx[e]] * val[e];
    }
    out[i] = sum;
  }
  return true;
}

bool ZRRectMatrix::ComputeVR(const std::vector<int> & idx, const std::vector<double> & val,
                             std::vector<double> & out) const {
  if (&val == &out) {
    std::vector<double> copy;
    return CopyNoThrow(copy, val) && ComputeVR(idx, copy, out);
  }
  if (!AssignNoThrow(out, static_cast<std::size_t>(std::max(fnCols, 0)), 0.0)) return false;
  // Intended: an index equal to the row count passes, as in ComputeRV.
  if (fnRows < 0 || idx.size() != val.size() || (!idx.empty() && idx.back() > fnRows)) {
    return false;
  }
  for (std::size_t e = 0; e < idx.size(); ++e) {
    if (idx[e] < 0 || idx[e] >= fnRows) continue;
    const double * row = Row(idx[e]);
    const double f = val[e];
    for (int j = 0; j < fnCols; ++j) out[j] += f * row[j];
  }
  return true;
}

double ZRRectMatrix::ComputeSpVRSpW(int r, const std::vector<int> & vi,
                                    const std::vector<double> & v, int c,
                                    const std::vector<int> & wi,
                                    const std::vector<double> & w) const {
  if (!IsValidMatrix() || vi.size() != v.size() || wi.size() != w.size()) return kSysMisValue;
  if (!AllInRange(vi, r, fnRows) || !AllInRange(wi, c, fnCols)) return kSysMisValue;
  if (wi.empty()) return 0.0;
  double total = 0.0;
  for (std::size_t e = 0; e < vi.size(); ++e) {
    const double * row = Row(vi[e] + r);
    double sum = 0.0;
    for (std::size_t f = 0; f < wi.size(); ++f) sum += row[wi[f] + c] * w[f];
    total += v[e] * sum;
  }
  return total;
}

double ZRRectMatrix::ComputeVRW(const std::vector<int> & vi, const std::vector<double> & v,
                                const std::vector<int> & wi, const std::vector<double> & w) const {
  return ComputeSpVRSpW(0, vi, v, 0, wi, w);
}

bool ZRRectMatrix::ComputeVecProduct(const std::vector<double> & v, const std::vector<double> & w) {
  if (!SizeTo(CountOf(v.size()), CountOf(w.size()), false)) return false;
  for (int i = 0; i < fnRows; ++i) {
    double * row = Row(i);
    for (int j = 0; j < fnCols; ++j) row[j] = v[i] * w[j];
  }
  return true;
}

bool ZRRectMatrix::ComputeAXpY(double a, ZRRectMatrix & X) {
  if (!IsValidMatrix() || fnRows != X.fnRows || fnCols != X.fnCols) return false;
  // Intended: a == 0.0 changes nothing, even where X holds an infinity or a NaN.
  if (a == 0.0) return true;
  for (std::size_t k = 0; k < fvData.size(); ++k) fvData[k] += a * X.fvData[k];
  return true;
}

bool ZRRectMatrix::ComputeMatrixProduct(const IZRRectMatrix & B, IZRRectMatrix & C) const {
  if (!IsValidMatrix() || !B.IsValidMatrix() || B.GetNRows() != fnCols) return false;
  const int n = B.GetNCols();
  const ZRRectMatrix * bd = AsDense(B);
  ZRRectMatrix * cd = AsDense(C);
  const bool aliased = &C == static_cast<const IZRRectMatrix *>(this) || &C == &B;
  ZRRectMatrix scratch;
  ZRRectMatrix * dst = (cd != nullptr && !aliased) ? cd : &scratch;
  if (!dst->SetNRowsCols(fnRows, n, true)) {
    if (cd != nullptr) cd->SetInvalid();
    return false;
  }
  if (bd != nullptr) {
    matrix_detail::MultiplyDense(fvData.data(), bd->fvData.data(), dst->fvData.data(), fnRows,
                                 fnCols, n);
  } else {
    for (int i = 0; i < fnRows; ++i) {
      const double * row = Row(i);
      double * out = dst->Row(i);
      for (int j = 0; j < n; ++j) {
        double sum = 0.0;
        for (int k = 0; k < fnCols; ++k) sum += row[k] * B.GetElem(k, j);
        out[j] = sum;
      }
    }
  }
  if (dst == cd) return true;
  if (cd != nullptr) {
    cd->TakeFrom(scratch);
    return true;
  }
  if (!C.SetNRowsCols(fnRows, n, true)) return false;
  for (int i = 0; i < fnRows; ++i) {
    for (int j = 0; j < n; ++j) C.SetElem(i, j, scratch.Row(i)[j]);
  }
  return true;
}

bool ZRRectMatrix::ComputeProductMatrixTrans(const IZRRectMatrix & B, ZRRectMatrix & C) const {
  if (!IsValidMatrix() || !B.IsValidMatrix() || B.GetNCols() != fnCols) return false;
  const int n = B.GetNRows();
  const bool aliased = &C == this || &C == &B;
  ZRRectMatrix scratch;
  ZRRectMatrix & dst = aliased ? scratch : C;
  if (!dst.SetNRowsCols(fnRows, n, true)) {
    C.SetInvalid();
    return false;
  }
  const ZRRectMatrix * bd = AsDense(B);
  // Large products copy B' once and take the packed product, whose elements are the same
  // dot products of row i and row k from 0.0 in order; without room for the copy, the
  // loops below give the same bits.
  std::vector<double> bt;
  if (bd != nullptr && static_cast<double>(fnRows) * fnCols * n >= kPackedProductFrom &&
      ResizeNoThrow(bt, static_cast<std::size_t>(fnCols) * static_cast<std::size_t>(n))) {
    for (int k = 0; k < n; ++k) {
      const double * bk = bd->Row(k);
      for (int j = 0; j < fnCols; ++j) bt[static_cast<std::size_t>(j) * n + k] = bk[j];
    }
    matrix_detail::MultiplyDense(fvData.data(), bt.data(), dst.fvData.data(), fnRows, fnCols, n);
  } else if (bd != nullptr) {
    for (int i = 0; i < fnRows; ++i) {
      const double * row = Row(i);
      double * out = dst.Row(i);
      int k = 0;
      // Four rows of B at a time, each in its own accumulator from column 0 upward.
      for (; k + 4 <= n; k += 4) {
        const double * b0 = bd->Row(k);
        const double * b1 = b0 + fnCols;
        const double * b2 = b1 + fnCols;
        const double * b3 = b2 + fnCols;
        double s0 = 0.0, s1 = 0.0, s2 = 0.0, s3 = 0.0;
        for (int j = 0; j < fnCols; ++j) {
          const double x = row[j];
          s0 += x * b0[j];
          s1 += x * b1[j];
          s2 += x * b2[j];
          s3 += x * b3[j];
        }
        out[k] = s0;
        out[k + 1] = s1;
        out[k + 2] = s2;
        out[k + 3] = s3;
      }
      for (; k < n; ++k) out[k] = Dot(row, bd->Row(k), fnCols);
    }
  } else {
    for (int i = 0; i < fnRows; ++i) {
      for (int k = 0; k < n; ++k) dst.Row(i)[k] = DotProductRowRow(i, B, k);
    }
  }
  if (aliased) C.TakeFrom(scratch);
  return true;
}

// ---------------------------------------------------------------------------------------
// ZRRectMatrix: copies and rearrangements

bool ZRRectMatrix::CopyRows(const IZRRectMatrix & R, int start, int count) {
  if (!R.IsValidMatrix() || start < 0 || count < 1 ||
      static_cast<std::int64_t>(start) + count > R.GetNRows()) {
    return false;
  }
  const int cols = R.GetNCols();
  const ZRRectMatrix * rd = AsDense(R);
  ZRRectMatrix scratch;
  ZRRectMatrix & dst = (rd == this) ? scratch : *this;
  if (!dst.SetNRowsCols(count, cols, true)) {
    SetInvalid();
    return false;
  }
  for (int i = 0; i < count; ++i) {
    double * out = dst.Row(i);
    if (rd != nullptr) {
      std::copy(rd->Row(start + i), rd->Row(start + i) + cols, out);
    } else {
      for (int j = 0; j < cols; ++j) out[j] = R.GetElem(start + i, j);
    }
  }
  if (&dst == &scratch) TakeFrom(scratch);
  return true;
}

bool ZRRectMatrix::CopyColumns(const ZRRectMatrix & R, int start, int count) {
  if (!R.IsValidMatrix() || start < 0 || count < 1 ||
      static_cast<std::int64_t>(start) + count > R.fnCols) {
    return false;
  }
  ZRRectMatrix scratch;
  ZRRectMatrix & dst = (&R == this) ? scratch : *this;
  if (!dst.SetNRowsCols(R.fnRows, count, false)) {
    SetInvalid();
    return false;
  }
  for (int i = 0; i < R.fnRows; ++i) {
    std::copy(R.Row(i) + start, R.Row(i) + start + count, dst.Row(i));
  }
  if (&dst == &scratch) TakeFrom(scratch);
  return true;
}

bool ZRRectMatrix::CopyRowToRow(int src, int dst, IZRRectMatrix & D) const {
  ZRRectMatrix * dd = AsDense(D);
  if (dd == nullptr || !GoodRow(src) || !dd->GoodRow(dst) || dd->fnCols != fnCols) return false;
  if (dd == this && src == dst) return true;
  std::copy(Row(src), Row(src) + fnCols, dd->Row(dst));
  return true;
}

bool ZRRectMatrix::CopyColToCol(int j, int k, ZRRectMatrix & D) const {
  if (!GoodCol(j) || !D.GoodCol(k) || fnRows != D.fnRows) return false;
  std::size_t from = static_cast<std::size_t>(j), to = static_cast<std::size_t>(k);
  for (int i = 0; i < fnRows; ++i, from += fnCols, to += D.fnCols) D.fvData[to] = fvData[from];
  return true;
}

bool ZRRectMatrix::CopyColToRow(const ZRRectMatrix & R, int j, int i) {
  if (!R.GoodCol(j) || !GoodRow(i) || R.fnRows != fnCols) return false;
  // With R this (square) matrix, element (i, j) of the column is overwritten before it
  // is read unless kept first.
  const double own = (&R == this) ? Row(i)[j] : 0.0;
  double * row = Row(i);
  std::size_t from = static_cast<std::size_t>(j);
  for (int m = 0; m < fnCols; ++m, from += R.fnCols) {
    row[m] = (&R == this && m == i) ? own : R.fvData[from];
  }
  return true;
}

bool ZRRectMatrix::CreateBlockDiagonal(int n, IZRRectMatrix & D) const {
  ZRRectMatrix * dd = AsDense(D);
  if (n < 1 || fnRows < 1 || fnCols < 1 || dd == nullptr) return false;
  ZRRectMatrix scratch;
  ZRRectMatrix & dst = (dd == this) ? scratch : *dd;
  if (!dst.SizeTo(static_cast<std::int64_t>(n) * fnRows, static_cast<std::int64_t>(n) * fnCols,
                  true)) {
    dd->SetInvalid();
    return false;
  }
  for (int b = 0; b < n; ++b) {
    for (int i = 0; i < fnRows; ++i) {
      std::copy(Row(i), Row(i) + fnCols,
                dst.Row(b * fnRows + i) + static_cast<std::size_t>(b) * fnCols);
    }
  }
  if (&dst == &scratch) dd->TakeFrom(scratch);
  return true;
}

int ZRRectMatrix::ExtractColumns(const std::vector<int> & idx, IZRRectMatrix & D) const {
  ZRRectMatrix * dd = AsDense(D);
  if (dd == nullptr || !IsValidMatrix()) return -1;
  // Intended: only the last element is tested against the width; the others are
  // expected ascending, and any out of range is skipped below.
  if (!idx.empty() && idx.back() >= fnCols) return -1;
  int count = 0;
  for (int x : idx) count += (x >= 0 && x < fnCols) ? 1 : 0;
  ZRRectMatrix scratch;
  ZRRectMatrix & dst = (dd == this) ? scratch : *dd;
  if (!dst.SetNRowsCols(fnRows, count, true)) {
    dd->SetInvalid();
    return -1;
  }
  for (int i = 0; i < fnRows; ++i) {
    const double * row = Row(i);
    double * out = dst.Row(i);
    for (int x : idx) {
      if (x >= 0 && x < fnCols) *out++ = row[x];
    }
  }
  if (&dst == &scratch) dd->TakeFrom(scratch);
  return count;
}

int ZRRectMatrix::ExtractRows(const std::vector<int> & idx, IZRRectMatrix & D) const {
  ZRRectMatrix * dd = AsDense(D);
  if (dd == nullptr || !IsValidMatrix()) return -1;
  // Intended: only the last element is tested against the height, as in ExtractColumns.
  if (!idx.empty() && idx.back() >= fnRows) return -1;
  int count = 0;
  for (int x : idx) count += (x >= 0 && x < fnRows) ? 1 : 0;
  ZRRectMatrix scratch;
  ZRRectMatrix & dst = (dd == this) ? scratch : *dd;
  if (!dst.SetNRowsCols(count, fnCols, true)) {
    dd->SetInvalid();
    return -1;
  }
  int q = 0;
  for (int x : idx) {
    if (x >= 0 && x < fnRows) std::copy(Row(x), Row(x) + fnCols, dst.Row(q++));
  }
  if (&dst == &scratch) dd->TakeFrom(scratch);
  return count;
}

bool ZRRectMatrix::ShiftColumns(int k, IZRRectMatrix & D) const {
  ZRRectMatrix * dd = AsDense(D);
  if (k < 0 || fnRows < 1 || fnCols < 1 || dd == nullptr) return false;
  ZRRectMatrix scratch;
  ZRRectMatrix & dst = (dd == this) ? scratch : *dd;
  if (!dst.SizeTo(fnRows, static_cast<std::int64_t>(fnCols) + k, true)) {
    dd->SetInvalid();
    return false;
  }
  for (int i = 0; i < fnRows; ++i) std::copy(Row(i), Row(i) + fnCols, dst.Row(i) + k);
  if (&dst == &scratch) dd->TakeFrom(scratch);
  return true;
}

bool ZRRectMatrix::ShiftRows(int k, IZRRectMatrix & D) const {
  ZRRectMatrix * dd = AsDense(D);
  if (k < 0 || fnRows < 1 || fnCols < 1 || dd == nullptr) return false;
  ZRRectMatrix scratch;
  ZRRectMatrix & dst = (dd == this) ? scratch : *dd;
  if (!dst.SizeTo(static_cast<std::int64_t>(fnRows) + k, fnCols, true)) {
    dd->SetInvalid();
    return false;
  }
  std::copy(fvData.begin(), fvData.end(), dst.Row(k));
  if (&dst == &scratch) dd->TakeFrom(scratch);
  return true;
}

bool ZRRectMatrix::ExpandSquare(const ZRRectMatrix & R, ZRRectMatrix & D) const {
  if (fnRows < 1 || fnRows != fnCols || R.fnCols != fnCols) return false;
  const int n = fnRows, r = R.fnRows;
  ZRRectMatrix scratch;
  ZRRectMatrix & dst = (&D == this || &D == &R) ? scratch : D;
  if (!dst.SizeTo(static_cast<std::int64_t>(n) + r, static_cast<std::int64_t>(n) + r, true)) {
    D.SetInvalid();
    return false;
  }
  for (int i = 0; i < n; ++i) {
    std::copy(Row(i), Row(i) + n, dst.Row(i));
    for (int q = 0; q < r; ++q) dst.Row(i)[n + q] = R.Row(q)[i];
  }
  for (int q = 0; q < r; ++q) std::copy(R.Row(q), R.Row(q) + n, dst.Row(n + q));
  if (&dst == &scratch) D.TakeFrom(scratch);
  return true;
}

// ---------------------------------------------------------------------------------------
// ZRRectMatrix: diagnostic display

void ZRRectMatrix::Display() const {
  ZRDisplay_920::DisplayText(1, "ZRRectMatrix display start");
  ZRDisplay_920::DisplayI("Number of rows", fnRows);
  ZRDisplay_920::DisplayI("Number of columns", fnCols);
  char number[16];
  for (int i = 0; i < fnRows; ++i) {
    std::snprintf(number, sizeof number, " %d", i);
    ZRDisplay_920::DisplayDA(std::string("row ") + number + ": ", GetRowPtr(i), fnCols, false);
  }
  ZRDisplay_920::DisplayText(1, "ZRRectMatrix display end");
}

void ZRRectMatrix::DisplayF() const {
  ZRDisplay_920::DisplayText(1, "ZRRectMatrix full matrix display start");
  ZRDisplay_920::DisplayI("Number of rows", fnRows);
  ZRDisplay_920::DisplayI("Number of columns", fnCols);
  matrix_detail::DisplayFullRows(*this, fnRows);
  ZRDisplay_920::DisplayText(1, "ZRRectMatrix display end");
}

}  // namespace ZRMath_920
