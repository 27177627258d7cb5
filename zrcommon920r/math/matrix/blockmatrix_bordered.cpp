// ZRSymBlockDiagMatrix: the pieces of the bordered-block operations of ZRSymMatrix, which
// multiply stretches of packed buffers by the block factor L held in this object (a dense
// block's stored triangle read as lower triangular, a diagonal block as the diagonal) or
// by the symmetric matrix itself.
#include <cstdint>
#include <vector>

#include "zrcommon920r/math/matrix/blockmatrix.h"

namespace ZRMath_920 {

namespace {

using Index = std::int64_t;

inline Index RowStart(Index i) {
  return i * (i + 1) / 2;
}

inline Index SymIndex(Index i, Index j) {
  return i >= j ? RowStart(i) + j : RowStart(j) + i;
}

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

// One block: its first row, size, stored buffer and kind.
struct Blk {
  Index start = 0;
  Index size = 0;
  const double * p = nullptr;
  bool diag = false;

  // L(k, j) and B(k, j) for rows k, j relative to the block (k >= j for L).
  double L(Index k, Index j) const {
    if (diag) return k == j ? p[k] : 0.0;
    return p[RowStart(k) + j];
  }
  double Sym(Index k, Index j) const {
    if (diag) return k == j ? p[k] : 0.0;
    return p[SymIndex(k, j)];
  }
};

// The block holding row i, which must be a row of B.
Blk BlockOfRow(const ZRSymBlockDiagMatrix & B, int i) {
  Blk k;
  const int b = B.GetBlockIndexForRow()[static_cast<std::size_t>(i)];
  k.start = B.GetBlockStartIndex(b);
  k.size = B.GetBlockSize(b);
  k.diag = B.GetIsBlockDiagonal(b);
  int first = 0;
  B.GetIndexFirstInRow(static_cast<int>(k.start), first, k.p);
  return k;
}

// x' L in place over B's rows, x[t] reached as at(t). Within a dense block y_c sums
// x_k L(k, c) over k >= c, so ascending c only reads elements not yet replaced.
template <class At>
void TimesL(const ZRSymBlockDiagMatrix & B, At at) {
  for (Index row = 0; row < B.GetNRows();) {
    const Blk k = BlockOfRow(B, static_cast<int>(row));
    for (Index c = 0; c < k.size; ++c) {
      double s = 0.0;
      for (Index t = c; t < k.size; ++t) s += at(k.start + t) * k.L(t, c);
      at(k.start + c) = s;
    }
    row += k.size;
  }
}

}  // namespace

bool ZRSymBlockDiagMatrix::GetIndexFirstInRow(int i, int & index) const {
  const double * data = nullptr;
  return GetIndexFirstInRow(i, index, data);
}

bool ZRSymBlockDiagMatrix::GetIndexFirstInRow(int i, int & index, const double *& data) const {
  if (fnRows < 0 || i < 0 || i >= fnRows) return false;
  const int b = fvRowBlock[static_cast<std::size_t>(i)];
  const int rel = i - fvStartIndices[static_cast<std::size_t>(b)];
  const std::size_t pos = static_cast<std::size_t>(fvBlockIndices[static_cast<std::size_t>(b)]);
  if (fbDiagBlock.IsIn(b)) {
    index = rel;
    data = fvDiagBlocks[pos].data();
  } else {
    index = static_cast<int>(RowStart(rel));
    data = fvDenseBlocks[pos].fvLowerTri.data();
  }
  return true;
}

bool ZRSymBlockDiagMatrix::ComputeVecPartByL(std::vector<double> & v, int start, int stop) const {
  if (fnRows < 0 || start < 0 || static_cast<Index>(stop) - start != fnRows || stop > Size(v))
    return false;
  double * x = v.data() + start;
  TimesL(*this, [x](Index t) -> double & { return x[t]; });
  return true;
}

bool ZRSymBlockDiagMatrix::ComputeVecIIncrPartByL(std::vector<double> & v, int a, int b,
                                                  int c) const {
  if (fnRows < 0 || c != fnRows || !IIncrFits(a, b, c, Size(v))) return false;
  double * x = v.data();
  const Index s0 = a, step = b;
  TimesL(*this, [x, s0, step](Index t) -> double & { return x[IIncrAt(s0, step, t)]; });
  return true;
}

bool ZRSymBlockDiagMatrix::ComputeSymRowByL(std::vector<double> & v, int a, int b, int c) const {
  if (fnRows < 0 || a < 0 || c < 0 || static_cast<Index>(b) - a != fnRows) return false;
  // The last column read lies furthest into the packed buffer.
  if (fnRows > 0 && SymIndex(c, static_cast<Index>(b) - 1) >= Size(v)) return false;
  double * x = v.data();
  const Index row = c, first = a;
  TimesL(*this, [x, row, first](Index t) -> double & { return x[SymIndex(row, first + t)]; });
  return true;
}

bool ZRSymBlockDiagMatrix::ComputeProductLAndSquare(std::vector<double> & v, int start) const {
  if (fnRows < 0 || start < 0 || static_cast<Index>(start) + fnRows > Size(v)) return false;
  ComputeVecPartByL(v, start, start + fnRows);
  for (Index t = 0; t < fnRows; ++t) v[start + t] *= v[start + t];
  return true;
}

bool ZRSymBlockDiagMatrix::DotProductColVecIIncrPart(int j, const std::vector<double> & v,
                                                     int start, int n, double & out) const {
  out = 0.0;
  if (fnRows < 0 || j < 0 || j >= fnRows || !IIncrFits(start, n, fnRows, Size(v))) return false;
  const Blk k = BlockOfRow(*this, j);
  const Index jr = j - k.start;
  double s = 0.0;
  for (Index t = 0; t < k.size; ++t) s += k.Sym(t, jr) * v[IIncrAt(start, n, k.start + t)];
  out = s;
  return true;
}

bool ZRSymBlockDiagMatrix::DotProductLColVecIIncrPart(int j, const std::vector<double> & v,
                                                      int start, int n, double & out) const {
  out = 0.0;
  if (fnRows < 0 || j < 0 || j >= fnRows || !IIncrFits(start, n, fnRows, Size(v))) return false;
  const Blk k = BlockOfRow(*this, j);
  const Index jr = j - k.start;
  double s = 0.0;
  for (Index t = jr; t < k.size; ++t) s += k.L(t, jr) * v[IIncrAt(start, n, k.start + t)];
  out = s;
  return true;
}

bool ZRSymBlockDiagMatrix::DotProductLColDenseRowPart(int j, const ZRSymMatrix & S, int a, int b,
                                                      double & out) const {
  out = 0.0;
  if (fnRows < 0 || j < 0 || j >= fnRows || S.fnRows < 0 || a < 0 || a >= S.fnRows || b < 0 ||
      static_cast<Index>(b) + fnRows > S.fnRows)
    return false;
  const Blk k = BlockOfRow(*this, j);
  const Index jr = j - k.start;
  const double * s = S.fvLowerTri.data();
  double sum = 0.0;
  for (Index t = jr; t < k.size; ++t) sum += k.L(t, jr) * s[SymIndex(a, b + k.start + t)];
  out = sum;
  return true;
}

double ZRSymBlockDiagMatrix::ComputeRVDParts(int i, const double * v, int n) const {
  if (fnRows < 0 || i < 0 || i >= fnRows || v == nullptr || n < 0) return 0.0;
  const Blk k = BlockOfRow(*this, i);
  const Index ir = i - k.start;
  double s = 0.0;
  for (Index t = 0; t < k.size && k.start + t < n; ++t) s += k.Sym(ir, t) * v[k.start + t];
  return s;
}

double ZRSymBlockDiagMatrix::ComputeRVDParts(int i, const std::vector<double> & v, int n) const {
  if (n < 0 || n > Size(v)) return 0.0;
  return ComputeRVDParts(i, v.data(), n);
}

bool ZRSymBlockDiagMatrix::UpdateDenseColumnPart(ZRSymMatrix & S, int a, int b, int c,
                                                 double f) const {
  if (fnRows < 0 || c < 0 || c >= fnRows || S.fnRows < 0 || b < 0 || b >= S.fnRows || a < 0 ||
      static_cast<Index>(a) + fnRows > S.fnRows)
    return false;
  const Blk k = BlockOfRow(*this, c);
  const Index cr = c - k.start;
  double * s = S.fvLowerTri.data();
  for (Index t = 0; t < k.size; ++t) s[SymIndex(a + k.start + t, b)] += f * k.Sym(t, cr);
  return true;
}

}  // namespace ZRMath_920
