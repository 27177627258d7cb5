// ZRSparseRectMatrix: storage, sizing, element and row access, copies and display.
#include "zrcommon920r/math/matrix/sparsematrix.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <string>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/display/display.h"
#include "zrcommon920r/math/matrix/detail/display_rows.h"
#include "zrcommon920r/math/matrix/detail/nothrow_alloc.h"

namespace ZRMath_920 {

namespace {

using matrix_detail::NoThrow;

// A reserve of 6 rows or fewer grows to this many; a larger one by half of itself.
constexpr int kSmallReserve = 6;
constexpr int kFirstGrowth = 10;

ZRRectMatrix * AsDense(IZRRectMatrix & m) {
  return dynamic_cast<ZRRectMatrix *>(&m);
}
ZRSparseRectMatrix * AsSparse(IZRRectMatrix & m) {
  return dynamic_cast<ZRSparseRectMatrix *>(&m);
}
const ZRSparseRectMatrix * AsSparse(const IZRRectMatrix & m) {
  return dynamic_cast<const ZRSparseRectMatrix *>(&m);
}

// Last index + 1 of a sparse view in 64 bits; 0 when it is empty.
std::int64_t LastPlusOne(const ZRSparseVector & s) {
  const std::vector<int> & idx = s.GetIndices();
  return idx.empty() ? 0 : static_cast<std::int64_t>(idx.back()) + 1;
}

}  // namespace

// ---------------------------------------------------------------------------------------
// Construction and storage

ZRSparseRectMatrix::ZRSparseRectMatrix(int maxRows, int nCols, int nzRow)
    : fnRows(0), fnMaxRows(0), fnCols(std::max(nCols, 0)), fnNZRow(std::max(nzRow, 0)) {
  if (!Reserve(std::max(maxRows, 0), fnNZRow)) SetInvalid();
}

ZRSparseRectMatrix::ZRSparseRectMatrix(const ZRSparseRectMatrix & other)
    : IZRRectMatrix(), fnRows(0), fnMaxRows(0), fnCols(0), fnNZRow(0) {
  *this = other;
}

ZRSparseRectMatrix & ZRSparseRectMatrix::operator=(const ZRSparseRectMatrix & other) {
  if (this == &other) return *this;
  const bool ok = NoThrow([&] {
    fvValues = other.fvValues;
    fvIndices = other.fvIndices;
    fvWorkValues = other.fvWorkValues;
    fvWorkIndices = other.fvWorkIndices;
  });
  if (!ok) {
    SetInvalid();
    return *this;
  }
  fnRows = other.fnRows;
  fnMaxRows = other.fnMaxRows;
  fnCols = other.fnCols;
  fnNZRow = other.fnNZRow;
  return *this;
}

bool ZRSparseRectMatrix::IsValidMatrix() const {
  return fnRows >= 0 && fnRows <= fnMaxRows && fnMaxRows >= 1 && fnCols >= 1 && fnNZRow >= 1 &&
         fnNZRow <= fnCols;
}

void ZRSparseRectMatrix::SetInvalid() {
  fnRows = -1;
  fnMaxRows = 0;
  std::vector<double>().swap(fvValues);
  std::vector<int>().swap(fvIndices);
}

bool ZRSparseRectMatrix::Reserve(int maxRows, int nz) {
  const std::int64_t count = static_cast<std::int64_t>(maxRows) * nz;
  if (count > INT_MAX) return false;
  const std::size_t n = static_cast<std::size_t>(count);
  const std::size_t oldValues = fvValues.size(), oldIndices = fvIndices.size();
  const bool ok = NoThrow([&] {
    fvValues.resize(n, 0.0);
    fvIndices.resize(n, -1);
    fvWorkValues.resize(static_cast<std::size_t>(nz), 0.0);
    fvWorkIndices.resize(static_cast<std::size_t>(nz), -1);
  });
  if (!ok) {
    fvValues.resize(std::min(oldValues, fvValues.size()));
    fvIndices.resize(std::min(oldIndices, fvIndices.size()));
    return false;
  }
  fnMaxRows = maxRows;
  return true;
}

bool ZRSparseRectMatrix::GrowForOneRow() {
  if (fnRows < fnMaxRows) return true;
  const std::int64_t grown = fnMaxRows > kSmallReserve
                                 ? static_cast<std::int64_t>(fnMaxRows) + fnMaxRows / 2
                                 : kFirstGrowth;
  return grown <= INT_MAX && Reserve(static_cast<int>(grown), fnNZRow);
}

bool ZRSparseRectMatrix::Shape(int rows, int cols, int nz) {
  fvValues.clear();
  fvIndices.clear();
  fnRows = 0;
  fnCols = cols;
  fnNZRow = nz;
  if (!Reserve(std::max(rows, 1), nz)) {
    SetInvalid();
    return false;
  }
  fnRows = rows;
  return true;
}

void ZRSparseRectMatrix::WriteRow(int i, const int * idx, const double * val, int count) {
  const std::size_t at = Slot(i);
  const int lead = fnNZRow - count;
  for (int k = 0; k < lead; ++k) {
    fvIndices[at + k] = -1;
    fvValues[at + k] = 0.0;
  }
  for (int k = 0; k < count; ++k) {
    fvIndices[at + lead + k] = idx[k];
    fvValues[at + lead + k] = val[k];
  }
}

int ZRSparseRectMatrix::LiveCount(int i) const {
  int count = 0;
  const std::size_t at = Slot(i);
  for (int k = 0; k < fnNZRow; ++k) count += Live(fvIndices[at + k]) ? 1 : 0;
  return count;
}

int ZRSparseRectMatrix::FindIndex(int i, int j) const {
  if (!GoodRow(i) || fnNZRow < 1 || Slot(i + 1) > fvIndices.size()) return -1;
  std::int64_t lo = static_cast<std::int64_t>(Slot(i));
  std::int64_t hi = lo + fnNZRow - 1;
  if (fvIndices[lo] == j) return j < 0 ? -1 : static_cast<int>(lo);
  if (j < 0 || fnNZRow == 1 || j < fvIndices[lo] || j > fvIndices[hi]) return -1;
  while (lo <= hi) {
    const std::int64_t mid = (lo + hi) / 2;
    const int at = fvIndices[mid];
    if (at == j) return static_cast<int>(mid);
    if (at < j) {
      lo = mid + 1;
    } else {
      hi = mid - 1;
    }
  }
  return -1;
}

// ---------------------------------------------------------------------------------------
// Sizing

bool ZRSparseRectMatrix::Resize(int nRows, int nCols) {
  nRows = std::max(nRows, 0);
  nCols = std::max(nCols, 0);
  if (fnRows < 0) fnRows = 0;
  fnCols = nCols;
  int nz = fnNZRow;
  if (nCols < nz) nz = nCols;
  int reserve = fnMaxRows;
  if (nRows > reserve) reserve = nRows + nRows / 2;
  // Intended: the arrays are cut or extended flat, as the dense Resize; with a new nz the
  // slots fall into other rows.
  if (!Reserve(reserve, nz)) {
    SetInvalid();
    return false;
  }
  fnNZRow = nz;
  fnRows = nRows;
  return true;
}

bool ZRSparseRectMatrix::SetNRowsCols(int nRows, int nCols, bool clear) {
  nRows = std::max(nRows, 0);
  // Intended: a width below nz is stored as 0, which leaves the matrix invalid.
  fnCols = (nCols < 0 || nCols < fnNZRow) ? 0 : nCols;
  if (fnRows < 0) fnRows = 0;
  if (nRows > fnMaxRows) {
    const std::int64_t reserve = static_cast<std::int64_t>(fnMaxRows) + nRows + nRows / 2;
    if (reserve > INT_MAX || !Reserve(static_cast<int>(reserve), fnNZRow)) {
      SetInvalid();
      return false;
    }
  }
  fnRows = nRows;
  if (clear) Clear();
  return true;
}

void ZRSparseRectMatrix::Clear() {
  std::fill(fvValues.begin(), fvValues.end(), 0.0);
  std::fill(fvIndices.begin(), fvIndices.end(), -1);
}

int ZRSparseRectMatrix::AddRow() {
  if (!IsValidMatrix() || !GrowForOneRow()) return -1;
  return ++fnRows;
}

int ZRSparseRectMatrix::AddRow(const ZRSparseVector & s) {
  if (!IsValidMatrix() || s.GetCount() != fnNZRow || LastPlusOne(s) > fnCols) return -1;
  if (!GrowForOneRow()) return -1;
  const std::size_t at = Slot(fnRows);
  for (int k = 0; k < fnNZRow; ++k) {
    fvIndices[at + k] = s.GetIndex(k);
    fvValues[at + k] = s.GetValue(k);
  }
  return ++fnRows;
}

int ZRSparseRectMatrix::AddRow(const ZRSparseVector & s, int first, int start) {
  const int count = s.GetCount();
  if (!IsValidMatrix() || first < 0 || count < fnNZRow) return -1;
  const std::vector<int> & idx = s.GetIndices();
  if (static_cast<std::int64_t>(first) >= LastPlusOne(s)) return -1;
  if (start < 0) {
    // Binary search for the first entry whose index isn't below first: -1 when it would
    // lie past the end, -2 when the lookup fails (an index list that doesn't ascend).
    int lo = 0, hi = count - 1;
    while (lo < hi) {
      const int mid = lo + (hi - lo) / 2;
      if (idx[mid] < first) {
        lo = mid + 1;
      } else {
        hi = mid;
      }
    }
    start = idx[lo] < first ? -1 : lo;
    if (start > 0 && idx[start - 1] >= first) start = -2;
    if (start < 0) return -1;
  }
  const std::int64_t last = static_cast<std::int64_t>(start) + fnNZRow - 1;
  if (last >= count) return -1;
  // Intended: a lowered index equal to the width passes (the slot then counts as empty).
  if (static_cast<std::int64_t>(idx[last]) - first > fnCols) return -1;
  if (!GrowForOneRow()) return -1;
  const std::size_t at = Slot(fnRows);
  for (int k = 0; k < fnNZRow; ++k) {
    fvIndices[at + k] = idx[start + k] - first;
    fvValues[at + k] = s.GetValue(start + k);
  }
  return ++fnRows;
}

// ---------------------------------------------------------------------------------------
// Element and row access

double ZRSparseRectMatrix::GetElem(int i, int j) const {
  const int at = FindIndex(i, j);
  return at < 0 || !Live(j) ? 0.0 : fvValues[at];
}

bool ZRSparseRectMatrix::SetElem(int i, int j, double x) {
  const int at = FindIndex(i, j);
  if (at < 0 || !Live(j)) return x == 0.0;
  fvValues[at] = x;
  return true;
}

bool ZRSparseRectMatrix::GetRow(int i, std::vector<double> & v) const {
  if (!GoodRow(i) || !matrix_detail::AssignNoThrow(v, static_cast<std::size_t>(fnCols), 0.0)) {
    return false;
  }
  const std::size_t at = Slot(i);
  for (int k = 0; k < fnNZRow; ++k) {
    if (Live(fvIndices[at + k])) v[fvIndices[at + k]] = fvValues[at + k];
  }
  return true;
}

bool ZRSparseRectMatrix::GetCol(int j, std::vector<double> & v) const {
  if (!Live(j) || fnRows < 0) return false;
  return CopyColToVec(j, v);
}

bool ZRSparseRectMatrix::CopyColToVec(int j, std::vector<double> & v) const {
  if (!matrix_detail::ResizeNoThrow(v, static_cast<std::size_t>(std::max(fnRows, 0)))) {
    return false;
  }
  if (!Live(j)) return false;
  for (int i = 0; i < fnRows; ++i) v[i] = GetElem(i, j);
  return true;
}

bool ZRSparseRectMatrix::GetRow(int i, std::vector<int> & idx, std::vector<double> & val) const {
  if (!GoodRow(i)) return false;
  const int count = LiveCount(i);
  if (!NoThrow([&] {
        idx.resize(static_cast<std::size_t>(count));
        val.resize(static_cast<std::size_t>(count));
      })) {
    return false;
  }
  const std::size_t at = Slot(i);
  int q = 0;
  for (int k = 0; k < fnNZRow; ++k) {
    if (!Live(fvIndices[at + k])) continue;
    idx[q] = fvIndices[at + k];
    val[q++] = fvValues[at + k];
  }
  return true;
}

bool ZRSparseRectMatrix::GetRow(int i, const int *& idx, const double *& val) const {
  if (!GoodRow(i) || fnNZRow < 1) return false;
  idx = fvIndices.data() + Slot(i);
  val = fvValues.data() + Slot(i);
  return true;
}

bool ZRSparseRectMatrix::SetRow(int i, const ZRSparseVector & s) {
  if (!GoodRow(i) || s.GetCount() != fnNZRow || LastPlusOne(s) > fnCols) return false;
  const std::size_t at = Slot(i);
  for (int k = 0; k < fnNZRow; ++k) {
    fvIndices[at + k] = s.GetIndex(k);
    fvValues[at + k] = s.GetValue(k);
  }
  return true;
}

bool ZRSparseRectMatrix::IsRowZero(int i) const {
  if (!GoodRow(i)) return false;
  const std::size_t at = Slot(i);
  for (int k = 0; k < fnNZRow; ++k) {
    if (Live(fvIndices[at + k]) && !(fvValues[at + k] == 0.0)) return false;
  }
  return true;
}

bool ZRSparseRectMatrix::ZeroOutRowPart(int i, int from, int to) {
  // Intended: to may equal the width (the dense form stops one below).
  if (!GoodRow(i) || from < 0 || from > to || to > fnCols) return false;
  const std::size_t at = Slot(i);
  for (int k = 0; k < fnNZRow; ++k) {
    const int c = fvIndices[at + k];
    if (c >= from && c <= to) fvValues[at + k] = 0.0;
  }
  return true;
}

void ZRSparseRectMatrix::ExtractLastCol(std::vector<double> & v) const {
  const std::size_t rows = static_cast<std::size_t>(IsValidMatrix() ? fnRows : 0);
  if (!matrix_detail::ResizeNoThrow(v, rows)) return;
  for (std::size_t i = 0; i < rows; ++i) {
    const std::size_t last = Slot(static_cast<int>(i) + 1) - 1;
    v[i] = fvIndices[last] == fnCols - 1 ? fvValues[last] : 0.0;
  }
}

bool ZRSparseRectMatrix::CreateFullMatrix(ZRRectMatrix & R) const {
  if (!IsValidMatrix()) return false;
  if (!R.SetNRowsCols(fnRows, fnCols, true)) return false;
  for (int i = 0; i < fnRows; ++i) {
    const std::size_t at = Slot(i);
    for (int k = 0; k < fnNZRow; ++k) {
      if (Live(fvIndices[at + k])) R.SetElem(i, fvIndices[at + k], fvValues[at + k]);
    }
  }
  return true;
}

bool ZRSparseRectMatrix::GetSparseMatrixColumns(std::vector<std::vector<int>> & rows,
                                                std::vector<std::vector<double>> & vals) const {
  if (!IsValidMatrix() || fnRows < 1) return false;
  std::vector<int> counts(static_cast<std::size_t>(fnCols), 0);
  bool any = false;
  for (std::size_t s = 0; s < Slot(fnRows); ++s) {
    if (Live(fvIndices[s])) {
      ++counts[fvIndices[s]];
      any = true;
    }
  }
  if (!any) return false;
  const bool ok = NoThrow([&] {
    rows.assign(static_cast<std::size_t>(fnCols), std::vector<int>());
    vals.assign(static_cast<std::size_t>(fnCols), std::vector<double>());
    for (int c = 0; c < fnCols; ++c) {
      rows[c].reserve(counts[c]);
      vals[c].reserve(counts[c]);
    }
  });
  if (!ok) {
    rows.clear();
    vals.clear();
    return false;
  }
  for (int i = 0; i < fnRows; ++i) {
    const std::size_t at = Slot(i);
    for (int k = 0; k < fnNZRow; ++k) {
      const int c = fvIndices[at + k];
      if (!Live(c)) continue;
      rows[c].push_back(i);
      vals[c].push_back(fvValues[at + k]);
    }
  }
  return true;
}

// ---------------------------------------------------------------------------------------
// Copies into sparse or dense targets

bool ZRSparseRectMatrix::CopyRows(const IZRRectMatrix & R, int start, int count) {
  if (!R.IsValidMatrix() || start < 0 || count < 1 ||
      static_cast<std::int64_t>(start) + count > R.GetNRows()) {
    return false;
  }
  ZRSparseRectMatrix result(0, 0, 0);
  const int cols = R.GetNCols();
  if (const ZRSparseRectMatrix * rs = AsSparse(R)) {
    if (!result.Shape(count, cols, rs->fnNZRow)) {
      SetInvalid();
      return false;
    }
    std::copy(rs->fvIndices.begin() + rs->Slot(start),
              rs->fvIndices.begin() + rs->Slot(start + count), result.fvIndices.begin());
    std::copy(rs->fvValues.begin() + rs->Slot(start),
              rs->fvValues.begin() + rs->Slot(start + count), result.fvValues.begin());
  } else {
    std::vector<double> row;
    int nz = 1;
    for (int i = start; i < start + count; ++i) {
      if (!R.GetRow(i, row)) return false;
      int n = 0;
      for (double x : row) n += (x == 0.0) ? 0 : 1;
      nz = std::max(nz, n);
    }
    if (!result.Shape(count, cols, nz)) {
      SetInvalid();
      return false;
    }
    for (int i = 0; i < count; ++i) {
      R.GetRow(start + i, row);
      int n = 0;
      for (int j = 0; j < cols; ++j) {
        if (row[j] == 0.0) continue;
        result.fvWorkIndices[n] = j;
        result.fvWorkValues[n++] = row[j];
      }
      result.WriteRow(i, result.fvWorkIndices.data(), result.fvWorkValues.data(), n);
    }
  }
  *this = result;
  return IsValidMatrix();
}

bool ZRSparseRectMatrix::CopyRowToRow(int src, int dst, IZRRectMatrix & D) const {
  if (!GoodRow(src) || dst < 0 || dst >= D.GetNRows() || D.GetNCols() != fnCols) return false;
  if (ZRRectMatrix * dd = AsDense(D)) {
    std::vector<double> row;
    if (!GetRow(src, row)) return false;
    for (int j = 0; j < fnCols; ++j) dd->SetElem(dst, j, row[j]);
    return true;
  }
  ZRSparseRectMatrix * ds = AsSparse(D);
  if (ds == nullptr) return false;
  if (ds == this && src == dst) return true;
  const int count = LiveCount(src);
  if (count > ds->fnNZRow) return false;
  // Gathered first: D may be this.
  std::vector<int> idx;
  std::vector<double> val;
  if (!GetRow(src, idx, val)) return false;
  ds->WriteRow(dst, idx.data(), val.data(), count);
  return true;
}

bool ZRSparseRectMatrix::CopyColToRow(const IZRRectMatrix & R, int j, int i) {
  if (!GoodRow(i) || j < 0 || j >= R.GetNCols() || R.GetNRows() != fnCols) return false;
  std::vector<double> col;
  if (!R.GetCol(j, col)) return false;
  int n = 0;
  for (int m = 0; m < fnCols; ++m) {
    if (col[m] == 0.0) continue;
    if (n == fnNZRow) return false;
    fvWorkIndices[n] = m;
    fvWorkValues[n++] = col[m];
  }
  WriteRow(i, fvWorkIndices.data(), fvWorkValues.data(), n);
  return true;
}

bool ZRSparseRectMatrix::CreateBlockDiagonal(int n, IZRRectMatrix & D) const {
  ZRRectMatrix * dd = AsDense(D);
  ZRSparseRectMatrix * ds = AsSparse(D);
  if (n < 1 || !IsValidMatrix() || fnRows < 1 || (dd == nullptr && ds == nullptr)) return false;
  const std::int64_t rows = static_cast<std::int64_t>(n) * fnRows;
  const std::int64_t cols = static_cast<std::int64_t>(n) * fnCols;
  if (dd != nullptr) {
    if (rows > INT_MAX || cols > INT_MAX) return false;
    if (!dd->SetNRowsCols(static_cast<int>(rows), static_cast<int>(cols), true)) return false;
    for (int b = 0; b < n; ++b) {
      for (int i = 0; i < fnRows; ++i) {
        const std::size_t at = Slot(i);
        for (int k = 0; k < fnNZRow; ++k) {
          const int c = fvIndices[at + k];
          if (Live(c)) dd->SetElem(b * fnRows + i, b * fnCols + c, fvValues[at + k]);
        }
      }
    }
    return true;
  }
  ZRSparseRectMatrix result(0, 0, 0);
  if (rows > INT_MAX || cols > INT_MAX) return false;
  if (!result.Shape(static_cast<int>(rows), static_cast<int>(cols), fnNZRow)) {
    ds->SetInvalid();
    return false;
  }
  for (int b = 0; b < n; ++b) {
    for (int i = 0; i < fnRows; ++i) {
      const std::size_t from = Slot(i), to = result.Slot(b * fnRows + i);
      for (int k = 0; k < fnNZRow; ++k) {
        const int c = fvIndices[from + k];
        result.fvIndices[to + k] = Live(c) ? c + b * fnCols : -1;
        result.fvValues[to + k] = Live(c) ? fvValues[from + k] : 0.0;
      }
    }
  }
  *ds = result;
  return ds->IsValidMatrix();
}

int ZRSparseRectMatrix::ExtractColumns(const std::vector<int> & idx, IZRRectMatrix & D) const {
  ZRRectMatrix * dd = AsDense(D);
  ZRSparseRectMatrix * ds = AsSparse(D);
  if ((dd == nullptr && ds == nullptr) || !IsValidMatrix()) return -1;
  // Intended: only the last element is tested against the width, as in the dense form.
  if (!idx.empty() && idx.back() >= fnCols) return -1;
  int count = 0, previous = -1;
  bool rising = true;
  for (int x : idx) {
    if (x < 0 || x >= fnCols) continue;
    rising = rising && x > previous;
    previous = x;
    ++count;
  }
  if (dd != nullptr) {
    ZRRectMatrix full;
    if (!CreateFullMatrix(full)) return -1;
    return full.ExtractColumns(idx, *dd);
  }
  if (count == 0 || !rising) return -1;
  // Column c of this becomes column map[c] of D, or is dropped at -1.
  std::vector<int> map(static_cast<std::size_t>(fnCols), -1);
  int q = 0;
  for (int x : idx) {
    if (x >= 0 && x < fnCols) map[x] = q++;
  }
  int nz = 1;
  for (int i = 0; i < fnRows; ++i) {
    int n = 0;
    for (int k = 0; k < fnNZRow; ++k) {
      const int c = fvIndices[Slot(i) + k];
      n += (Live(c) && map[c] >= 0) ? 1 : 0;
    }
    nz = std::max(nz, n);
  }
  ZRSparseRectMatrix result(0, 0, 0);
  if (!result.Shape(fnRows, count, std::min(nz, count))) {
    ds->SetInvalid();
    return -1;
  }
  for (int i = 0; i < fnRows; ++i) {
    int n = 0;
    for (int k = 0; k < fnNZRow; ++k) {
      const int c = fvIndices[Slot(i) + k];
      if (!Live(c) || map[c] < 0) continue;
      result.fvWorkIndices[n] = map[c];
      result.fvWorkValues[n++] = fvValues[Slot(i) + k];
    }
    result.WriteRow(i, result.fvWorkIndices.data(), result.fvWorkValues.data(), n);
  }
  *ds = result;
  return ds->IsValidMatrix() ? count : -1;
}

int ZRSparseRectMatrix::ExtractRows(const std::vector<int> & idx, IZRRectMatrix & D) const {
  ZRRectMatrix * dd = AsDense(D);
  ZRSparseRectMatrix * ds = AsSparse(D);
  if ((dd == nullptr && ds == nullptr) || !IsValidMatrix()) return -1;
  // Intended: only the last element is tested against the height, as in the dense form.
  if (!idx.empty() && idx.back() >= fnRows) return -1;
  if (dd != nullptr) {
    ZRRectMatrix full;
    if (!CreateFullMatrix(full)) return -1;
    return full.ExtractRows(idx, *dd);
  }
  int count = 0;
  for (int x : idx) count += (x >= 0 && x < fnRows) ? 1 : 0;
  ZRSparseRectMatrix result(0, 0, 0);
  if (!result.Shape(count, fnCols, fnNZRow)) {
    ds->SetInvalid();
    return -1;
  }
  int q = 0;
  for (int x : idx) {
    if (x < 0 || x >= fnRows) continue;
    std::copy(fvIndices.begin() + Slot(x), fvIndices.begin() + Slot(x + 1),
              result.fvIndices.begin() + result.Slot(q));
    std::copy(fvValues.begin() + Slot(x), fvValues.begin() + Slot(x + 1),
              result.fvValues.begin() + result.Slot(q));
    ++q;
  }
  *ds = result;
  return ds->IsValidMatrix() ? count : -1;
}

bool ZRSparseRectMatrix::ShiftColumns(int k, IZRRectMatrix & D) const {
  ZRRectMatrix * dd = AsDense(D);
  ZRSparseRectMatrix * ds = AsSparse(D);
  if (k < 0 || !IsValidMatrix() || fnRows < 1 || (dd == nullptr && ds == nullptr)) return false;
  if (dd != nullptr) {
    ZRRectMatrix full;
    return CreateFullMatrix(full) && full.ShiftColumns(k, *dd);
  }
  const std::int64_t cols = static_cast<std::int64_t>(fnCols) + k;
  ZRSparseRectMatrix result(0, 0, 0);
  if (cols > INT_MAX || !result.Shape(fnRows, static_cast<int>(cols), fnNZRow)) {
    ds->SetInvalid();
    return false;
  }
  for (std::size_t s = 0; s < Slot(fnRows); ++s) {
    const bool live = Live(fvIndices[s]);
    result.fvIndices[s] = live ? fvIndices[s] + k : -1;
    result.fvValues[s] = live ? fvValues[s] : 0.0;
  }
  *ds = result;
  return ds->IsValidMatrix();
}

bool ZRSparseRectMatrix::ShiftRows(int k, IZRRectMatrix & D) const {
  ZRRectMatrix * dd = AsDense(D);
  ZRSparseRectMatrix * ds = AsSparse(D);
  if (k < 0 || !IsValidMatrix() || fnRows < 1 || (dd == nullptr && ds == nullptr)) return false;
  if (dd != nullptr) {
    ZRRectMatrix full;
    return CreateFullMatrix(full) && full.ShiftRows(k, *dd);
  }
  const std::int64_t rows = static_cast<std::int64_t>(fnRows) + k;
  ZRSparseRectMatrix result(0, 0, 0);
  if (rows > INT_MAX || !result.Shape(static_cast<int>(rows), fnCols, fnNZRow)) {
    ds->SetInvalid();
    return false;
  }
  std::copy(fvIndices.begin(), fvIndices.begin() + Slot(fnRows),
            result.fvIndices.begin() + result.Slot(k));
  std::copy(fvValues.begin(), fvValues.begin() + Slot(fnRows),
            result.fvValues.begin() + result.Slot(k));
  *ds = result;
  return ds->IsValidMatrix();
}

bool ZRSparseRectMatrix::ExpandSquare(const IZRRectMatrix & R, IZRRectMatrix & D) const {
  ZRRectMatrix * dd = AsDense(D);
  if (dd == nullptr || !IsValidMatrix() || fnRows < 1 || fnRows != fnCols || !R.IsValidMatrix() ||
      R.GetNCols() != fnCols) {
    return false;
  }
  ZRRectMatrix full, border;
  if (!CreateFullMatrix(full)) return false;
  if (const ZRSparseRectMatrix * rs = AsSparse(R)) {
    if (!rs->CreateFullMatrix(border)) return false;
  } else if (const ZRRectMatrix * rd = dynamic_cast<const ZRRectMatrix *>(&R)) {
    border = *rd;
  } else {
    return false;
  }
  return full.ExpandSquare(border, *dd);
}

bool ZRSparseRectMatrix::ExtractSubSparseRectMat(int a, int b, int c, ZRSparseRectMatrix & out,
                                                 int d) const {
  if (!IsValidMatrix() || a < 0 || a >= b || b > fnRows || c < 0 || c >= d || d > fnCols) {
    return false;
  }
  int nz = 1;
  for (int i = a; i < b; ++i) {
    int n = 0;
    for (int k = 0; k < fnNZRow; ++k) {
      const int col = fvIndices[Slot(i) + k];
      n += (col >= c && col < d) ? 1 : 0;
    }
    nz = std::max(nz, n);
  }
  ZRSparseRectMatrix result(0, 0, 0);
  if (!result.Shape(b - a, d - c, nz)) {
    out.SetInvalid();
    return false;
  }
  for (int i = a; i < b; ++i) {
    int n = 0;
    for (int k = 0; k < fnNZRow; ++k) {
      const int col = fvIndices[Slot(i) + k];
      if (col < c || col >= d) continue;
      result.fvWorkIndices[n] = col - c;
      result.fvWorkValues[n++] = fvValues[Slot(i) + k];
    }
    result.WriteRow(i - a, result.fvWorkIndices.data(), result.fvWorkValues.data(), n);
  }
  out = result;
  return out.IsValidMatrix();
}

// ---------------------------------------------------------------------------------------
// Display

void ZRSparseRectMatrix::Display() const {
  ZRDisplay_920::DisplayText(1, "ZRSparseRectMatrix display start");
  ZRDisplay_920::DisplayI("Number of rows", fnRows);
  ZRDisplay_920::DisplayI("Number of columns", fnCols);
  char number[16];
  for (int i = 0; i < fnRows; ++i) {
    std::snprintf(number, sizeof number, " %d", i);
    ZRDisplay_920::DisplayDA(std::string("row ") + number + ": ", fvValues.data() + Slot(i),
                             fnNZRow, false);
  }
  ZRDisplay_920::DisplayText(1, "ZRSparseRectMatrix display end");
}

void ZRSparseRectMatrix::DisplayF() const {
  ZRDisplay_920::DisplayText(1, "ZRSparseRectMatrix full matrix display start");
  ZRDisplay_920::DisplayI("Number of rows", fnRows);
  ZRDisplay_920::DisplayI("Number of columns", fnCols);
  matrix_detail::DisplayFullRows(*this, fnRows);
  ZRDisplay_920::DisplayText(1, "ZRSparseRectMatrix display end");
}

}  // namespace ZRMath_920
