// ZRSymBlockDiagMatrix: construction, structure, block access, the interface operations
// block by block, and display; and the container ZRSymBlockMatrix.
#include "zrcommon920r/math/matrix/blockmatrix.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <string>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/display/display.h"
#include "zrcommon920r/math/matrix/detail/linpack_util.h"
#include "zrcommon920r/math/matrix/detail/nothrow_alloc.h"

namespace ZRMath_920 {

using matrix_detail::NoThrow;

// ---------------------------------------------------------------------------------------
// Construction

ZRSymBlockDiagMatrix::ZRSymBlockDiagMatrix() : fnRows(0), fnBlocks(0), fvStartIndices(1, 0) {}

ZRSymBlockDiagMatrix::ZRSymBlockDiagMatrix(const std::vector<IZRSymMatrix *> & list)
    : ZRSymBlockDiagMatrix() {
  for (const IZRSymMatrix * m : list) {
    if (m == nullptr || m->GetNRows() < 1) continue;
    bool ok = true;
    if (m->GetType() == kBlockDiagSymMatrix) {
      const auto & block = static_cast<const ZRSymBlockDiagMatrix &>(*m);
      for (int b = 0; ok && b < block.fnBlocks; ++b) {
        const int pos = block.fvBlockIndices[b];
        ok = block.fbDiagBlock.IsIn(b)
                 ? AppendBlock(nullptr, &block.fvDiagBlocks[pos], block.fvBlockSizes[b])
                 : AppendBlock(&block.fvDenseBlocks[pos], nullptr, block.fvBlockSizes[b]);
      }
    } else {
      ok = AddBlock(*m) >= 0;
    }
    if (!ok) {
      SetInvalid();
      return;
    }
  }
}

ZRSymBlockDiagMatrix::ZRSymBlockDiagMatrix(const std::vector<int> & sizes, const ZRBitSet & isDiag)
    : ZRSymBlockDiagMatrix() {
  SetStructure(sizes, isDiag);
}

ZRSymBlockDiagMatrix::ZRSymBlockDiagMatrix(const ZRSymBlockDiagMatrix & other)
    : IZRSymMatrix(), fnRows(0), fnBlocks(0) {
  *this = other;
}

ZRSymBlockDiagMatrix & ZRSymBlockDiagMatrix::operator=(const ZRSymBlockDiagMatrix & other) {
  if (this == &other) return *this;
  const bool ok = NoThrow([&] {
    fvDenseBlocks = other.fvDenseBlocks;
    fvDiagBlocks = other.fvDiagBlocks;
    fvBlockSizes = other.fvBlockSizes;
    fbDiagBlock = other.fbDiagBlock;
    fvStartIndices = other.fvStartIndices;
    fvBlockIndices = other.fvBlockIndices;
    fvRowBlock = other.fvRowBlock;
  });
  fnRows = other.fnRows;
  fnBlocks = other.fnBlocks;
  bool blocksValid = true;
  for (const ZRSymMatrix & m : fvDenseBlocks) blocksValid = blocksValid && m.IsValidMatrix();
  if (!ok || !blocksValid) SetInvalid();
  return *this;
}

void ZRSymBlockDiagMatrix::SetInvalid() {
  std::vector<ZRSymMatrix>().swap(fvDenseBlocks);
  std::vector<std::vector<double>>().swap(fvDiagBlocks);
  fvBlockSizes.clear();
  fvBlockIndices.clear();
  fvRowBlock.clear();
  fvStartIndices.clear();
  fbDiagBlock = ZRBitSet();
  fnRows = -1;
  fnBlocks = -1;
}

// ---------------------------------------------------------------------------------------
// Structure

bool ZRSymBlockDiagMatrix::SetStructure(const std::vector<int> & sizes, const ZRBitSet & isDiag) {
  fvDenseBlocks.clear();
  fvDiagBlocks.clear();
  const int nBlocks = static_cast<int>(sizes.size());
  std::int64_t total = 0;
  int nDiag = 0;
  bool ok = true;
  for (int b = 0; b < nBlocks; ++b) {
    if (sizes[b] < 0) ok = false;
    total += sizes[b];
    if (isDiag.IsIn(b)) ++nDiag;
  }
  ok = ok && total <= INT32_MAX;
  ok = ok && NoThrow([&] {
         fbDiagBlock = isDiag;
         fvDenseBlocks.resize(static_cast<std::size_t>(nBlocks - nDiag));
         fvDiagBlocks.resize(static_cast<std::size_t>(nDiag));
         fvBlockSizes = sizes;
         fvStartIndices.assign(static_cast<std::size_t>(nBlocks) + 1, 0);
         fvBlockIndices.assign(static_cast<std::size_t>(nBlocks), 0);
         int start = 0, dense = 0, diag = 0;
         for (int b = 0; b < nBlocks; ++b) {
           fvStartIndices[b] = start;
           if (isDiag.IsIn(b)) {
             fvBlockIndices[b] = diag;
             fvDiagBlocks[diag++].assign(static_cast<std::size_t>(sizes[b]), 0.0);
           } else {
             fvBlockIndices[b] = dense;
             if (!fvDenseBlocks[dense++].SetNRows(sizes[b], true)) throw std::bad_alloc();
           }
           start += sizes[b];
         }
         fvStartIndices[nBlocks] = start;
         fnRows = start;
         fnBlocks = nBlocks;
         SetBlockIndicesForRow();
       });
  if (!ok) SetInvalid();
  return ok;
}

void ZRSymBlockDiagMatrix::SetBlockIndicesForRow() {
  fvRowBlock.resize(static_cast<std::size_t>(fnRows));
  for (int b = 0; b < fnBlocks; ++b)
    for (int i = fvStartIndices[b]; i < fvStartIndices[b + 1]; ++i) fvRowBlock[i] = b;
}

bool ZRSymBlockDiagMatrix::AppendBlock(const ZRSymMatrix * m, const std::vector<double> * d,
                                       int size) {
  if (fnRows < 0) return false;
  const std::size_t denseBefore = fvDenseBlocks.size(), diagBefore = fvDiagBlocks.size();
  const bool ok = NoThrow([&] {
    fvBlockSizes.reserve(fvBlockSizes.size() + 1);
    fvBlockIndices.reserve(fvBlockIndices.size() + 1);
    fvStartIndices.reserve(fvStartIndices.size() + 1);
    fvRowBlock.reserve(fvRowBlock.size() + static_cast<std::size_t>(size));
    if (m != nullptr) {
      fvDenseBlocks.push_back(*m);
      if (!fvDenseBlocks.back().IsValidMatrix()) throw std::bad_alloc();
    } else {
      fvDiagBlocks.push_back(*d);
    }
    // Resize would drop the kinds of the earlier blocks; the set only grows by appending.
    while (fbDiagBlock.Size() < fnBlocks + 1) fbDiagBlock.Append(false);
  });
  if (!ok) {
    fvDenseBlocks.resize(denseBefore);
    fvDiagBlocks.resize(diagBefore);
    return false;
  }
  fbDiagBlock.Set(fnBlocks, m == nullptr);
  fvBlockSizes.push_back(size);
  fvBlockIndices.push_back(
      static_cast<int>(m != nullptr ? fvDenseBlocks.size() : fvDiagBlocks.size()) - 1);
  fvStartIndices.back() = fnRows;
  fvStartIndices.push_back(fnRows + size);
  fvRowBlock.insert(fvRowBlock.end(), static_cast<std::size_t>(size), fnBlocks);
  fnRows += size;
  ++fnBlocks;
  return true;
}

int ZRSymBlockDiagMatrix::AddBlock(const IZRSymMatrix & m) {
  const int n = m.GetNRows();
  if (n < 1 || !m.IsValidMatrix()) return -1;
  bool ok = false;
  if (m.GetType() == kDenseSymMatrix) {
    const auto * dense = dynamic_cast<const ZRSymMatrix *>(&m);
    ok = dense != nullptr && AppendBlock(dense, nullptr, n);
  } else if (m.GetType() == kDiagSymMatrix) {
    std::vector<double> d;
    m.GetDiagonal(d);
    ok = static_cast<int>(d.size()) == n && AppendBlock(nullptr, &d, n);
  }
  return ok ? fnBlocks - 1 : -1;
}

int ZRSymBlockDiagMatrix::AddBlock(const std::vector<double> & d) {
  if (d.empty()) return -1;
  return AppendBlock(nullptr, &d, static_cast<int>(d.size())) ? fnBlocks - 1 : -1;
}

bool ZRSymBlockDiagMatrix::ReplaceBlock(int b, const IZRSymMatrix & m) {
  if (b < 0 || b >= fnBlocks || m.GetNRows() < 1 || !m.IsValidMatrix()) return false;
  if (m.GetNRows() != fvBlockSizes[b]) return false;
  if (m.GetType() == kDenseSymMatrix && !fbDiagBlock.IsIn(b)) {
    const auto * dense = dynamic_cast<const ZRSymMatrix *>(&m);
    if (dense == nullptr) return false;
    ZRSymMatrix & target = fvDenseBlocks[fvBlockIndices[b]];
    const ZRSymMatrix keep = target;
    target = *dense;
    if (!target.IsValidMatrix()) target = keep;
    return target.IsValidMatrix() && target.GetNRows() == dense->GetNRows();
  }
  if (m.GetType() == kDiagSymMatrix && fbDiagBlock.IsIn(b)) {
    std::vector<double> d;
    m.GetDiagonal(d);
    return ReplaceBlock(b, d);
  }
  return false;
}

bool ZRSymBlockDiagMatrix::ReplaceBlock(int b, const std::vector<double> & d) {
  if (b < 0 || b >= fnBlocks || !fbDiagBlock.IsIn(b)) return false;
  std::vector<double> & target = fvDiagBlocks[fvBlockIndices[b]];
  if (d.empty() || d.size() != target.size()) return false;
  std::copy(d.begin(), d.end(), target.begin());
  return true;
}

void ZRSymBlockDiagMatrix::ClearAll() {
  SetInvalid();
  fnRows = 0;
  fnBlocks = 0;
  fvStartIndices.assign(1, 0);
}

bool ZRSymBlockDiagMatrix::CopyStructure(ZRSymBlockDiagMatrix & m) const {
  if (fnRows < 0) return false;
  if (&m == this) return true;
  return m.SetStructure(fvBlockSizes, fbDiagBlock);
}

bool ZRSymBlockDiagMatrix::IsSameStructure(const IZRSymMatrix & m) const {
  if (m.GetType() != kBlockDiagSymMatrix) return false;
  const auto & o = static_cast<const ZRSymBlockDiagMatrix &>(m);
  if (o.fnRows != fnRows || o.fnBlocks != fnBlocks) return false;
  for (int b = 0; b < fnBlocks; ++b)
    if (o.fvBlockSizes[b] != fvBlockSizes[b] || o.fbDiagBlock.IsIn(b) != fbDiagBlock.IsIn(b))
      return false;
  return true;
}

bool ZRSymBlockDiagMatrix::FillDenseMatrix(ZRSymMatrix & m) const {
  if (fnRows < 0 || !m.SetNRows(fnRows, true)) return false;
  for (int b = 0; b < fnBlocks; ++b) {
    const int s = fvStartIndices[b], size = fvBlockSizes[b];
    if (fbDiagBlock.IsIn(b)) {
      const std::vector<double> & d = fvDiagBlocks[fvBlockIndices[b]];
      for (int r = 0; r < size; ++r) m.SetElem(s + r, s + r, d[r]);
    } else {
      const ZRSymMatrix & block = fvDenseBlocks[fvBlockIndices[b]];
      for (int r = 0; r < size; ++r)
        for (int c = 0; c <= r; ++c) m.SetElem(s + r, s + c, block.GetElem(r, c));
    }
  }
  return true;
}

// ---------------------------------------------------------------------------------------
// Block access

int ZRSymBlockDiagMatrix::GetBlockSize(int b) const {
  return b >= 0 && b < fnBlocks ? fvBlockSizes[b] : -1;
}

int ZRSymBlockDiagMatrix::GetBlockStartIndex(int b) const {
  return b >= 0 && b < fnBlocks ? fvStartIndices[b] : -1;
}

bool ZRSymBlockDiagMatrix::GetIsBlockDiagonal(int b) const {
  return b >= 0 && b < fnBlocks && fbDiagBlock.IsIn(b);
}

bool ZRSymBlockDiagMatrix::GetDenseBlock(int b, ZRSymMatrix *& m) {
  if (b < 0 || b >= fnBlocks || fbDiagBlock.IsIn(b)) return false;
  m = &fvDenseBlocks[fvBlockIndices[b]];
  return true;
}

bool ZRSymBlockDiagMatrix::GetDenseBlock(int b, const ZRSymMatrix *& m) const {
  if (b < 0 || b >= fnBlocks || fbDiagBlock.IsIn(b)) return false;
  m = &fvDenseBlocks[fvBlockIndices[b]];
  return true;
}

bool ZRSymBlockDiagMatrix::GetDiagonalBlock(int b, std::vector<double> *& d) {
  if (!GetIsBlockDiagonal(b)) return false;
  d = &fvDiagBlocks[fvBlockIndices[b]];
  return true;
}

bool ZRSymBlockDiagMatrix::GetDiagonalBlock(int b, const std::vector<double> *& d) const {
  if (!GetIsBlockDiagonal(b)) return false;
  d = &fvDiagBlocks[fvBlockIndices[b]];
  return true;
}

// ---------------------------------------------------------------------------------------
// Lookup and element access

int ZRSymBlockDiagMatrix::FindBlock(int i, int j, bool & isDiag, int & bi, int & bj) const {
  if (i < 0 || j < 0 || i >= fnRows || j >= fnRows) return -1;
  const int b = fvRowBlock[i];
  isDiag = fbDiagBlock.IsIn(b);
  if (fvRowBlock[j] != b) return -1;
  bi = i - fvStartIndices[b];
  bj = j - fvStartIndices[b];
  if (isDiag && i != j) return -1;
  return fvBlockIndices[b];
}

bool ZRSymBlockDiagMatrix::FindAbsBlockRelColIndex(int j, int & b, int & start, int & rel,
                                                   bool & isDiag) const {
  if (j < 0 || j >= fnRows) return false;
  b = fvRowBlock[j];
  start = fvStartIndices[b];
  rel = j - start;
  isDiag = fbDiagBlock.IsIn(b);
  return true;
}

double ZRSymBlockDiagMatrix::GetElem(int i, int j) const {
  bool isDiag = false;
  int bi = 0, bj = 0;
  const int pos = FindBlock(i, j, isDiag, bi, bj);
  if (pos < 0) return 0.0;
  return isDiag ? fvDiagBlocks[pos][bi] : fvDenseBlocks[pos].GetElem(bi, bj);
}

bool ZRSymBlockDiagMatrix::SetElem(int i, int j, double x) {
  bool isDiag = false;
  int bi = 0, bj = 0;
  const int pos = FindBlock(i, j, isDiag, bi, bj);
  if (pos < 0) return false;
  if (isDiag) {
    fvDiagBlocks[pos][bi] = x;
    return true;
  }
  return fvDenseBlocks[pos].SetElem(bi, bj, x);
}

bool ZRSymBlockDiagMatrix::Resize(int /*nRows*/) {
  return false;
}

bool ZRSymBlockDiagMatrix::SetNRows(int /*nRows*/, bool /*clear*/) {
  return false;
}

bool ZRSymBlockDiagMatrix::ComputeMGN(const IZRSymMatrix & /*M*/, const IZRSymMatrix & /*N*/,
                                      IZRSymMatrix & /*out*/) const {
  return false;
}

// ---------------------------------------------------------------------------------------
// Interface arithmetic

namespace {

using ZRCommon_920::kSysMisValue;
using Index = std::ptrdiff_t;

inline Index Size(const std::vector<double> & v) {
  return static_cast<Index>(v.size());
}

// Row-major n x p scratch matrices for the products with full operands.
struct Full {
  int rows = 0, cols = 0;
  std::vector<double> a;
  Full(int r, int c) : rows(r), cols(c), a(static_cast<std::size_t>(r) * c, 0.0) {}
  double & operator()(int i, int j) { return a[static_cast<std::size_t>(i) * cols + j]; }
  double operator()(int i, int j) const { return a[static_cast<std::size_t>(i) * cols + j]; }
};

Full Transpose(const Full & x) {
  Full t(x.cols, x.rows);
  for (int i = 0; i < x.rows; ++i)
    for (int j = 0; j < x.cols; ++j) t(j, i) = x(i, j);
  return t;
}

// x y, each element summed over the inner index in ascending order.
Full Multiply(const Full & x, const Full & y) {
  Full z(x.rows, y.cols);
  for (int i = 0; i < x.rows; ++i)
    for (int j = 0; j < y.cols; ++j) {
      double s = 0.0;
      for (int k = 0; k < x.cols; ++k) s += x(i, k) * y(k, j);
      z(i, j) = s;
    }
  return z;
}

Full FromSym(const IZRSymMatrix & m) {
  const int n = m.GetNRows();
  Full f(n, n);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j <= i; ++j) f(i, j) = f(j, i) = m.GetElem(i, j);
  return f;
}

bool FromRect(const IZRRectMatrix & r, Full & f) {
  f = Full(r.GetNRows(), r.GetNCols());
  std::vector<double> row;
  for (int i = 0; i < f.rows; ++i) {
    if (!r.GetRow(i, row) || static_cast<int>(row.size()) < f.cols) return false;
    std::copy(row.begin(), row.begin() + f.cols, f.a.begin() + static_cast<Index>(i) * f.cols);
  }
  return true;
}

// out becomes the lower triangle of the square x, through SetNRows and SetElem.
bool StoreSym(const Full & x, IZRSymMatrix & out) {
  if (!out.SetNRows(x.rows, true)) return false;
  for (int i = 0; i < x.rows; ++i)
    for (int j = 0; j <= i; ++j)
      if (!out.SetElem(i, j, x(i, j))) return false;
  return true;
}

bool StoreRect(const Full & x, IZRRectMatrix & out) {
  if (!out.SetNRowsCols(x.rows, x.cols, true)) return false;
  for (int i = 0; i < x.rows; ++i)
    for (int j = 0; j < x.cols; ++j)
      if (x(i, j) != 0.0 && !out.SetElem(i, j, x(i, j))) return false;
  return true;
}

// Element k of a walk of n elements with the BLAS stride rule.
inline double Walk(const double * x, int n, int stride, int k) {
  return stride >= 0 ? x[static_cast<Index>(k) * stride]
                     : x[static_cast<Index>(n - 1 - k) * -static_cast<Index>(stride)];
}

// G X G for a square X of order n: G X by rows, then (G (G X)')'.
Full SandwichG(const ZRSymBlockDiagMatrix & g, const Full & x) {
  const int n = x.rows;
  Full gx(n, n), gxg(n, n);
  g.LeftMultiply(x.a.data(), n, gx.a.data());
  const Full t = Transpose(gx);
  g.LeftMultiply(t.a.data(), n, gxg.a.data());
  return Transpose(gxg);
}

// G X for X with n rows.
Full LeftG(const ZRSymBlockDiagMatrix & g, const Full & x) {
  Full y(x.rows, x.cols);
  g.LeftMultiply(x.a.data(), x.cols, y.a.data());
  return y;
}

// X G for X with n columns.
Full RightG(const ZRSymBlockDiagMatrix & g, const Full & x) {
  return Transpose(LeftG(g, Transpose(x)));
}

// A symmetric argument of order n, valid.
bool OfOrder(const IZRSymMatrix & m, int n) {
  return m.IsValidMatrix() && m.GetNRows() == n;
}

}  // namespace

double ZRSymBlockDiagMatrix::BlockElem(int b, int r, int c) const {
  if (fbDiagBlock.IsIn(b)) return r == c ? fvDiagBlocks[fvBlockIndices[b]][r] : 0.0;
  return fvDenseBlocks[fvBlockIndices[b]].GetElem(r, c);
}

// Y = G X for X with n rows: each row i sums over its block's columns in ascending order.
void ZRSymBlockDiagMatrix::LeftMultiply(const double * x, int p, double * y) const {
  for (int b = 0; b < fnBlocks; ++b) {
    const int s = fvStartIndices[b], m = fvBlockSizes[b];
    for (int r = 0; r < m; ++r) {
      double * yi = y + static_cast<Index>(s + r) * p;
      for (int t = 0; t < p; ++t) yi[t] = 0.0;
      for (int c = 0; c < m; ++c) {
        const double g = BlockElem(b, r, c);
        if (fbDiagBlock.IsIn(b) && r != c) continue;
        const double * xk = x + static_cast<Index>(s + c) * p;
        for (int t = 0; t < p; ++t) yi[t] += g * xk[t];
      }
    }
  }
}

void ZRSymBlockDiagMatrix::GetDiagonal(std::vector<double> & d) const {
  d.clear();
  if (fnRows < 0 || !NoThrow([&] { d.resize(static_cast<std::size_t>(fnRows)); })) return;
  for (int i = 0; i < fnRows; ++i) d[i] = GetElem(i, i);
}

bool ZRSymBlockDiagMatrix::GetRow(int i, std::vector<double> & v) const {
  if (i < 0 || i >= fnRows) return false;
  return NoThrow(false, [&] {
    std::vector<double> row(static_cast<std::size_t>(fnRows), 0.0);
    const int b = fvRowBlock[i], s = fvStartIndices[b];
    for (int c = 0; c < fvBlockSizes[b]; ++c) row[s + c] = BlockElem(b, i - s, c);
    v.swap(row);
    return true;
  });
}

void ZRSymBlockDiagMatrix::AddToDiagonal(double x) {
  for (ZRSymMatrix & m : fvDenseBlocks) m.AddToDiagonal(x);
  for (std::vector<double> & d : fvDiagBlocks)
    for (double & e : d) e += x;
}

void ZRSymBlockDiagMatrix::ChangeSign() {
  for (ZRSymMatrix & m : fvDenseBlocks) m.ChangeSign();
  for (std::vector<double> & d : fvDiagBlocks)
    for (double & e : d) e = -e;
}

void ZRSymBlockDiagMatrix::Clear() {
  for (ZRSymMatrix & m : fvDenseBlocks) m.Clear();
  for (std::vector<double> & d : fvDiagBlocks) std::fill(d.begin(), d.end(), 0.0);
}

void ZRSymBlockDiagMatrix::MultiplyByNumber(double f) {
  for (ZRSymMatrix & m : fvDenseBlocks) m.MultiplyByNumber(f);
  for (std::vector<double> & d : fvDiagBlocks)
    for (double & e : d) e *= f;
}

// ---- Cholesky family -------------------------------------------------------------------

int ZRSymBlockDiagMatrix::LTChol(const std::vector<double> & diag, double tol, bool check) {
  return LTCholBlocks(diag, tol, check, nullptr);
}

int ZRSymBlockDiagMatrix::LTChol(const std::vector<double> & diag, double tol, ZRBitSet & set,
                                 bool check) {
  return LTCholBlocks(diag, tol, check, &set);
}

int ZRSymBlockDiagMatrix::LTCholBlocks(const std::vector<double> & diag, double tol, bool check,
                                       ZRBitSet * set) {
  if (fnRows < 0 || Size(diag) < fnRows) return -1;
  if (check) {
    if (!(tol >= 0.0)) return -1;
    for (int i = 0; i < fnRows; ++i)
      if (diag[i] < 0.0) return -1;
  }
  if (set != nullptr) {
    if (set->Size() < fnRows) {
      if (!NoThrow([&] { set->Resize(fnRows, false); })) return -1;
    }
    set->Clear();
  }
  int redundant = 0;
  std::vector<double> slice;
  ZRBitSet blockSet;
  for (int b = 0; b < fnBlocks; ++b) {
    const int s = fvStartIndices[b], m = fvBlockSizes[b];
    if (fbDiagBlock.IsIn(b)) {
      std::vector<double> & d = fvDiagBlocks[fvBlockIndices[b]];
      for (int r = 0; r < m; ++r) {
        // Relative pivot test: accept only when x > tol * diag[row] (NaN refused).
        if (d[r] > tol * diag[s + r]) {
          d[r] = std::sqrt(d[r]);
          if (set != nullptr) set->Set(s + r, true);
        } else {
          d[r] = 0.0;
          ++redundant;
        }
      }
      continue;
    }
    if (!NoThrow([&] { slice.assign(diag.begin() + s, diag.begin() + s + m); })) return -1;
    ZRSymMatrix & block = fvDenseBlocks[fvBlockIndices[b]];
    const int r = set != nullptr ? block.LTChol(slice, tol, blockSet, false)
                                 : block.LTChol(slice, tol, false);
    if (r < 0) return -1;
    redundant += r;
    if (set != nullptr)
      for (int k = 0; k < m; ++k)
        if (blockSet.IsIn(k)) set->Set(s + k, true);
  }
  return redundant;
}

int ZRSymBlockDiagMatrix::LTChol(double tol, double & minPivot, bool check) {
  minPivot = kSysMisValue;
  std::vector<double> d;
  GetNCheckDiagonal(d, tol, 1.0);
  if (fnRows < 0 || Size(d) != fnRows) return -1;
  const int result = LTChol(d, tol, check);
  if (result >= 0 && fnRows > 0) {
    double smallest = DBL_MAX;
    for (int i = 0; i < fnRows; ++i) smallest = std::min(smallest, GetElem(i, i));
    minPivot = smallest;
  }
  return result;
}

void ZRSymBlockDiagMatrix::GetNCheckDiagonal(std::vector<double> & d, double lo, double hi) const {
  GetDiagonal(d);
  if (Size(d) != fnRows) return;
  std::vector<double> part;
  for (int b = 0; b < fnBlocks; ++b) {
    const int s = fvStartIndices[b];
    if (fbDiagBlock.IsIn(b)) {
      // Intended: the older lo/hi rule, so a diagonal element is its own tolerance base.
      for (int r = 0; r < fvBlockSizes[b]; ++r)
        if (lo > d[s + r]) d[s + r] = hi;
    } else {
      fvDenseBlocks[fvBlockIndices[b]].GetNCheckDiagonal(part, lo, hi);
      std::copy(part.begin(), part.end(), d.begin() + s);
    }
  }
}

int ZRSymBlockDiagMatrix::LTDetInverse(double * const det, int job) {
  const bool wantDet = job % 10 != 0 && det != nullptr;
  const bool wantInverse = (job / 10) % 10 != 0;
  double running[2] = {1.0, 0.0};
  int zeros = 0;
  for (int b = 0; b < fnBlocks; ++b) {
    double part[2] = {1.0, 0.0};
    int blockZeros = 0;
    if (fbDiagBlock.IsIn(b)) {
      std::vector<double> & d = fvDiagBlocks[fvBlockIndices[b]];
      for (double & x : d) {
        if (x == 0.0) {
          ++blockZeros;
          continue;
        }
        if (wantDet) {
          part[0] *= x;
          linpack_detail::NormaliseDet(part);
        }
        if (wantInverse) x = 1.0 / x;
      }
    } else {
      blockZeros = fvDenseBlocks[fvBlockIndices[b]].LTDetInverse(part, job % 100);
    }
    zeros += blockZeros;
    // Intended: a block with a zero pivot leaves its determinant out of the product.
    if (wantDet && blockZeros == 0) {
      running[0] *= part[0];
      running[1] += part[1];
      linpack_detail::NormaliseDet(running);
    }
  }
  if (wantDet) {
    det[0] = running[0];
    det[1] = running[1];
  }
  return zeros;
}

bool ZRSymBlockDiagMatrix::LTInverse() {
  for (ZRSymMatrix & m : fvDenseBlocks) m.LTInverse();
  for (std::vector<double> & d : fvDiagBlocks)
    for (double & x : d)
      if (x != 0.0) x = 1.0 / (x * x);
  return true;
}

void ZRSymBlockDiagMatrix::LTLLTrans() {
  for (ZRSymMatrix & m : fvDenseBlocks) m.LTLLTrans();
  for (std::vector<double> & d : fvDiagBlocks)
    for (double & x : d) x *= x;
}

void ZRSymBlockDiagMatrix::LTLTransL() {
  for (ZRSymMatrix & m : fvDenseBlocks) m.LTLTransL();
  for (std::vector<double> & d : fvDiagBlocks)
    for (double & x : d) x *= x;
}

int ZRSymBlockDiagMatrix::LTSolve(const std::vector<double> & b, double tol,
                                  std::vector<double> & x) {
  if (!(tol > 0.0) || fnRows < 0 || Size(b) < fnRows) return -1;
  return NoThrow(-1, [&] {
    const std::vector<double> rhs(b.begin(), b.begin() + fnRows);
    std::vector<double> result(static_cast<std::size_t>(fnRows), 0.0), slice, part;
    int redundant = 0;
    for (int k = 0; k < fnBlocks; ++k) {
      const int s = fvStartIndices[k], m = fvBlockSizes[k];
      if (fbDiagBlock.IsIn(k)) {
        std::vector<double> & d = fvDiagBlocks[fvBlockIndices[k]];
        for (int r = 0; r < m; ++r) {
          // The pivot against tol x itself, then forward and back substitution by sqrt(d),
          // as the dense solve does for a row of its own.
          if (d[r] > tol * d[r]) {
            d[r] = std::sqrt(d[r]);
            result[s + r] = rhs[s + r] / d[r] / d[r];
          } else {
            d[r] = 0.0;
            ++redundant;
          }
        }
        continue;
      }
      slice.assign(rhs.begin() + s, rhs.begin() + s + m);
      const int r = fvDenseBlocks[fvBlockIndices[k]].LTSolve(slice, tol, part);
      if (r < 0) return -1;
      redundant += r;
      std::copy(part.begin(), part.end(), result.begin() + s);
    }
    x.swap(result);
    return redundant;
  });
}

int ZRSymBlockDiagMatrix::CholInverseCommon(const std::vector<double> & diag, double tol,
                                            IZRSymMatrix & out, ZRBitSet * set,
                                            double * minPivot) const {
  if (minPivot != nullptr) *minPivot = kSysMisValue;
  if (out.GetType() != kBlockDiagSymMatrix || fnRows < 0 || Size(diag) < fnRows) return -1;
  auto & target = static_cast<ZRSymBlockDiagMatrix &>(out);
  target = *this;
  if (!target.IsValidMatrix()) return -1;
  const int redundant =
      set != nullptr ? target.LTChol(diag, tol, *set, false) : target.LTChol(diag, tol, false);
  if (redundant < 0) return -1;
  if (minPivot != nullptr && fnRows > 0) {
    double smallest = DBL_MAX;
    for (int i = 0; i < fnRows; ++i) smallest = std::min(smallest, target.GetElem(i, i));
    *minPivot = smallest;
  }
  target.LTInverse();
  return fnRows - redundant;
}

int ZRSymBlockDiagMatrix::CholInverse(const std::vector<double> & diag, double tol,
                                      IZRSymMatrix & out, double & minPivot) const {
  return CholInverseCommon(diag, tol, out, nullptr, &minPivot);
}

int ZRSymBlockDiagMatrix::CholInverse(const std::vector<double> & diag, double tol,
                                      IZRSymMatrix & out, ZRBitSet & set) const {
  return CholInverseCommon(diag, tol, out, &set, nullptr);
}

int ZRSymBlockDiagMatrix::CholInverse(const std::vector<double> & diag, double tol,
                                      IZRSymMatrix & out) const {
  return CholInverseCommon(diag, tol, out, nullptr, nullptr);
}

bool ZRSymBlockDiagMatrix::ComputeDeterminant(double tol, double * const det) const {
  return linpack_detail::CholeskyDeterminant(*this, tol, det);
}

// ---- Elementwise and row operations -----------------------------------------------------

bool ZRSymBlockDiagMatrix::ComputeAXpY(double a, const IZRSymMatrix & X) {
  if (fnRows < 0 || !X.IsValidMatrix() || X.GetNRows() != fnRows) return false;
  switch (X.GetType()) {
    case kDenseSymMatrix:
      if (fnBlocks != 1 || fbDiagBlock.IsIn(0)) return false;
      return fvDenseBlocks[0].ComputeAXpY(a, X);
    case kDiagSymMatrix: {
      std::vector<double> d;
      X.GetDiagonal(d);
      if (Size(d) != fnRows) return false;
      for (int i = 0; i < fnRows; ++i) SetElem(i, i, GetElem(i, i) + a * d[i]);
      return true;
    }
    case kBlockDiagSymMatrix: {
      if (!IsSameStructure(X)) return false;
      const auto & other = static_cast<const ZRSymBlockDiagMatrix &>(X);
      for (std::size_t k = 0; k < fvDenseBlocks.size(); ++k)
        fvDenseBlocks[k].ComputeAXpY(a, other.fvDenseBlocks[k]);
      for (std::size_t k = 0; k < fvDiagBlocks.size(); ++k)
        for (std::size_t r = 0; r < fvDiagBlocks[k].size(); ++r)
          fvDiagBlocks[k][r] += a * other.fvDiagBlocks[k][r];
      return true;
    }
  }
  return false;
}

double ZRSymBlockDiagMatrix::ComputeDotProduct2Rows(int i, int j) const {
  if (i < 0 || j < 0 || i >= fnRows || j >= fnRows || fvRowBlock[i] != fvRowBlock[j]) return 0.0;
  const int b = fvRowBlock[i], s = fvStartIndices[b];
  double sum = 0.0;
  for (int c = 0; c < fvBlockSizes[b]; ++c) sum += BlockElem(b, i - s, c) * BlockElem(b, j - s, c);
  return sum;
}

bool ZRSymBlockDiagMatrix::IncrVecByRow(int i, std::vector<double> & v, int start, int count,
                                        double f, bool check) const {
  if (check && (i < 0 || i >= fnRows || start < 0 || count < 1 || count > fnRows ||
                static_cast<Index>(start) + count > Size(v)))
    return false;
  if (i < 0 || i >= fnRows) return false;
  const int b = fvRowBlock[i], s = fvStartIndices[b];
  const int stop = std::min(s + fvBlockSizes[b], count);
  for (int t = s; t < stop; ++t) {
    const double g = BlockElem(b, i - s, t - s);
    if (fbDiagBlock.IsIn(b) && t != i) continue;
    v[static_cast<std::size_t>(start) + t] += f * g;
  }
  return true;
}

bool ZRSymBlockDiagMatrix::IsZeroRow(int i, const ZRBitSet & set) const {
  if (i < 0 || i >= fnRows) return false;
  const int b = fvRowBlock[i], s = fvStartIndices[b];
  for (int c = 0; c < fvBlockSizes[b]; ++c)
    if (set.IsIn(s + c) && !(BlockElem(b, i - s, c) == 0.0)) return false;
  return true;
}

bool ZRSymBlockDiagMatrix::PutRow(int i, const std::vector<double> & v) {
  if (i < 0 || i >= fnRows || Size(v) < fnRows) return false;
  const int b = fvRowBlock[i], s = fvStartIndices[b];
  if (fbDiagBlock.IsIn(b)) return SetElem(i, i, v[i]);
  for (int c = 0; c < fvBlockSizes[b]; ++c) SetElem(i, s + c, v[s + c]);
  return true;
}

bool ZRSymBlockDiagMatrix::SetRowColToConst(int i, double x) {
  if (i < 0 || i >= fnRows) return false;
  const int b = fvRowBlock[i], s = fvStartIndices[b];
  if (fbDiagBlock.IsIn(b)) return SetElem(i, i, x);
  for (int c = 0; c < fvBlockSizes[b]; ++c) SetElem(i, s + c, x);
  return true;
}

bool ZRSymBlockDiagMatrix::ZeroOut(int i) {
  return SetRowColToConst(i, 0.0);
}

void ZRSymBlockDiagMatrix::ZeroOutNonDiag(double tol) {
  for (ZRSymMatrix & m : fvDenseBlocks) m.ZeroOutNonDiag(tol);
}

void ZRSymBlockDiagMatrix::MaxMinDiag(double & max, double & min) const {
  if (fnRows < 1) return;
  max = -DBL_MAX;
  min = DBL_MAX;
  for (int i = 0; i < fnRows; ++i) {
    const double x = GetElem(i, i);
    if (x > max) max = x;
    if (x < min) min = x;
  }
}

void ZRSymBlockDiagMatrix::MaxMinDiagOffDiag(double & maxD, double & minD, double & maxO,
                                             double & minO) const {
  if (fnRows < 1) return;
  MaxMinDiag(maxD, minD);
  maxO = -DBL_MAX;
  minO = DBL_MAX;
  bool structuralZero = false;
  for (int b = 0; b < fnBlocks; ++b) {
    const int m = fvBlockSizes[b];
    if (fbDiagBlock.IsIn(b)) {
      structuralZero = structuralZero || m > 1;
      continue;
    }
    const ZRSymMatrix & block = fvDenseBlocks[fvBlockIndices[b]];
    for (int r = 1; r < m; ++r)
      for (int c = 0; c < r; ++c) {
        const double x = block.GetElem(r, c);
        if (x > maxO) maxO = x;
        if (x < minO) minO = x;
      }
  }
  // The zeros between blocks are off-diagonal elements of the matrix too.
  if (structuralZero || fnBlocks > 1) {
    maxO = std::max(maxO, 0.0);
    minO = std::min(minO, 0.0);
  }
}

double ZRSymBlockDiagMatrix::Trace() const {
  double sum = 0.0;
  for (int i = 0; i < fnRows; ++i) sum += GetElem(i, i);
  return sum;
}

double ZRSymBlockDiagMatrix::TraceOfProduct(const IZRSymMatrix & S) const {
  if (fnRows < 1 || !S.IsValidMatrix() || S.GetNRows() != fnRows) return 0.0;
  double sum = 0.0;
  for (int i = 0; i < fnRows; ++i) {
    const int b = fvRowBlock[i], s = fvStartIndices[b];
    for (int c = 0; c < fvBlockSizes[b]; ++c)
      if (!fbDiagBlock.IsIn(b) || s + c == i) sum += BlockElem(b, i - s, c) * S.GetElem(s + c, i);
  }
  return sum;
}

double ZRSymBlockDiagMatrix::TraceOfProductOfThree(const IZRSymMatrix & S,
                                                   const IZRSymMatrix & T) const {
  if (fnRows < 1 || !S.IsValidMatrix() || !T.IsValidMatrix() || S.GetNRows() != fnRows ||
      T.GetNRows() != fnRows)
    return 0.0;
  double sum = 0.0;
  for (int i = 0; i < fnRows; ++i) {
    const int b = fvRowBlock[i], s = fvStartIndices[b];
    for (int c = 0; c < fvBlockSizes[b]; ++c) {
      if (fbDiagBlock.IsIn(b) && s + c != i) continue;
      double st = 0.0;
      for (int l = 0; l < fnRows; ++l) st += S.GetElem(s + c, l) * T.GetElem(l, i);
      sum += BlockElem(b, i - s, c) * st;
    }
  }
  return sum;
}

// ---- Products with vectors --------------------------------------------------------------

bool ZRSymBlockDiagMatrix::ComputeSV(int n, const std::vector<double> & v,
                                     std::vector<double> & out) const {
  if (n < 0 || n > fnRows || Size(v) < n) return false;
  return NoThrow(false, [&] {
    std::vector<double> y(static_cast<std::size_t>(n), 0.0);
    for (int i = 0; i < n; ++i) {
      const int b = fvRowBlock[i], s = fvStartIndices[b];
      const int stop = std::min(s + fvBlockSizes[b], n);
      double sum = 0.0;
      for (int c = s; c < stop; ++c)
        if (!fbDiagBlock.IsIn(b) || c == i) sum += BlockElem(b, i - s, c - s) * v[c];
      y[i] = sum;
    }
    out.swap(y);
    return true;
  });
}

bool ZRSymBlockDiagMatrix::ComputeSV(const std::vector<double> & v,
                                     std::vector<double> & out) const {
  return ComputeSV(fnRows, v, out);
}

bool ZRSymBlockDiagMatrix::ApplyFactor(const std::vector<double> & v, std::vector<double> & out,
                                       bool transposed) const {
  if (fnRows < 0 || Size(v) != fnRows) return false;
  return NoThrow(false, [&] {
    std::vector<double> y(v), slice, part;
    for (int b = 0; b < fnBlocks; ++b) {
      const int s = fvStartIndices[b], m = fvBlockSizes[b];
      if (fbDiagBlock.IsIn(b)) {
        const std::vector<double> & d = fvDiagBlocks[fvBlockIndices[b]];
        for (int r = 0; r < m; ++r) y[s + r] *= d[r];
        continue;
      }
      slice.assign(y.begin() + s, y.begin() + s + m);
      const ZRSymMatrix & block = fvDenseBlocks[fvBlockIndices[b]];
      if (!(transposed ? block.ComputeLTransV(slice, part) : block.ComputeLV(slice, part)))
        return false;
      std::copy(part.begin(), part.end(), y.begin() + s);
    }
    out.swap(y);
    return true;
  });
}

// A sparse v as a dense one of n elements, repeats adding up; false for a bad list.
bool ZRSymBlockDiagMatrix::DenseFromSparse(const std::vector<int> & idx,
                                           const std::vector<double> & val,
                                           std::vector<double> & v) const {
  if (fnRows < 0 || idx.size() != val.size()) return false;
  for (int k : idx)
    if (k < 0 || k >= fnRows) return false;
  return NoThrow(false, [&] {
    v.assign(static_cast<std::size_t>(fnRows), 0.0);
    for (std::size_t t = 0; t < idx.size(); ++t) v[idx[t]] += val[t];
    return true;
  });
}

bool ZRSymBlockDiagMatrix::ComputeLTransV(const std::vector<int> & idx,
                                          const std::vector<double> & val,
                                          std::vector<double> & out) const {
  std::vector<double> v;
  return DenseFromSparse(idx, val, v) && ApplyFactor(v, out, true);
}

bool ZRSymBlockDiagMatrix::ComputeLTransV(const std::vector<double> & v,
                                          std::vector<double> & out) const {
  return ApplyFactor(v, out, true);
}

bool ZRSymBlockDiagMatrix::ComputeLV(const std::vector<int> & idx, const std::vector<double> & val,
                                     std::vector<double> & out) const {
  std::vector<double> v;
  return DenseFromSparse(idx, val, v) && ApplyFactor(v, out, false);
}

bool ZRSymBlockDiagMatrix::ComputeLV(const std::vector<double> & v,
                                     std::vector<double> & out) const {
  return ApplyFactor(v, out, false);
}

double ZRSymBlockDiagMatrix::ComputeRVD(int i, const double * v, int stride) const {
  if (i < 0 || i >= fnRows || v == nullptr) return 0.0;
  const int b = fvRowBlock[i], s = fvStartIndices[b];
  double sum = 0.0;
  for (int c = 0; c < fvBlockSizes[b]; ++c)
    if (!fbDiagBlock.IsIn(b) || s + c == i)
      sum += BlockElem(b, i - s, c) * Walk(v, fnRows, stride, s + c);
  return sum;
}

double ZRSymBlockDiagMatrix::ComputeRVD(int i, const std::vector<double> & v, int stride) const {
  if (fnRows > 0 &&
      Size(v) <= static_cast<Index>(fnRows - 1) * std::abs(static_cast<Index>(stride)))
    return 0.0;
  return ComputeRVD(i, v.data(), stride);
}

double ZRSymBlockDiagMatrix::ComputeVSW(const std::vector<double> & v,
                                        const std::vector<double> & w) const {
  if (fnRows < 1 || Size(v) < fnRows || Size(w) < fnRows) return 0.0;
  double sum = 0.0;
  for (int i = 0; i < fnRows; ++i) {
    const int b = fvRowBlock[i], s = fvStartIndices[b];
    double row = 0.0;
    for (int c = 0; c < fvBlockSizes[b]; ++c)
      if (!fbDiagBlock.IsIn(b) || s + c == i) row += BlockElem(b, i - s, c) * w[s + c];
    sum += v[i] * row;
  }
  return sum;
}

double ZRSymBlockDiagMatrix::ComputeVSV(const std::vector<double> & v) const {
  return ComputeVSW(v, v);
}

double ZRSymBlockDiagMatrix::ComputeVSV(const IZRRectMatrix & R, int row) const {
  if (R.GetMatrixType() == IZRRectMatrix::kSparseRectMatrix) return kSysMisValue;
  if (!R.IsValidMatrix() || R.GetNCols() != fnRows || row < 0 || row >= R.GetNRows()) return 0.0;
  std::vector<double> r;
  if (!NoThrow(false, [&] { return R.GetRow(row, r); })) return 0.0;
  return ComputeVSW(r, r);
}

double ZRSymBlockDiagMatrix::ComputeVSW(const double * v, int vs, const double * w, int ws) const {
  if (fnRows < 1 || v == nullptr || w == nullptr) return 0.0;
  return NoThrow(0.0, [&] {
    std::vector<double> x(static_cast<std::size_t>(fnRows)), y(x.size());
    for (int k = 0; k < fnRows; ++k) {
      x[k] = Walk(v, fnRows, vs, k);
      y[k] = Walk(w, fnRows, ws, k);
    }
    return ComputeVSW(x, y);
  });
}

double ZRSymBlockDiagMatrix::ComputeVSWParts(const double * v, int nv, const double * w,
                                             int nw) const {
  if (nv < 0 || nw < 0 || nv > fnRows || nw > fnRows || v == nullptr || w == nullptr) return 0.0;
  return NoThrow(0.0, [&] {
    std::vector<double> x(static_cast<std::size_t>(fnRows), 0.0), y(x.size(), 0.0);
    std::copy(v, v + nv, x.begin());
    std::copy(w, w + nw, y.begin());
    return ComputeVSW(x, y);
  });
}

double ZRSymBlockDiagMatrix::ComputeVSWParts(const std::vector<double> & v, int nv,
                                             const std::vector<double> & w, int nw) const {
  if (nv < 0 || nw < 0 || Size(v) < nv || Size(w) < nw) return 0.0;
  return ComputeVSWParts(v.data(), nv, w.data(), nw);
}

double ZRSymBlockDiagMatrix::ComputeVSW(const std::vector<double> & M, int n, int i, int j) const {
  if (n < 1 || n > fnRows || i < 0 || j < 0 || i >= n || j >= n ||
      Size(M) < static_cast<Index>(n) * (n + 1) / 2)
    return 0.0;
  auto m = [&](int r, int c) {
    return r >= c ? M[static_cast<std::size_t>(r) * (r + 1) / 2 + c]
                  : M[static_cast<std::size_t>(c) * (c + 1) / 2 + r];
  };
  const int bi = fvRowBlock[i], si = fvStartIndices[bi], ei = std::min(si + fvBlockSizes[bi], n);
  const int bj = fvRowBlock[j], sj = fvStartIndices[bj], ej = std::min(sj + fvBlockSizes[bj], n);
  double sum = 0.0;
  for (int k = si; k < ei; ++k) {
    if (fbDiagBlock.IsIn(bi) && k != i) continue;
    double inner = 0.0;
    for (int l = sj; l < ej; ++l)
      if (!fbDiagBlock.IsIn(bj) || l == j) inner += m(k, l) * BlockElem(bj, j - sj, l - sj);
    sum += BlockElem(bi, i - si, k - si) * inner;
  }
  return sum;
}

double ZRSymBlockDiagMatrix::ComputeRowDotProductS(int i, const std::vector<double> & M,
                                                   int j) const {
  if (i < 0 || j < 0 || i >= fnRows || j >= fnRows ||
      Size(M) != static_cast<Index>(fnRows) * (fnRows + 1) / 2)
    return 0.0;
  auto m = [&](int r, int c) {
    return r >= c ? M[static_cast<std::size_t>(r) * (r + 1) / 2 + c]
                  : M[static_cast<std::size_t>(c) * (c + 1) / 2 + r];
  };
  const int b = fvRowBlock[j], s = fvStartIndices[b];
  double sum = 0.0;
  for (int k = 0; k < fvBlockSizes[b]; ++k)
    if (!fbDiagBlock.IsIn(b) || s + k == j) sum += m(i, s + k) * BlockElem(b, k, j - s);
  return sum;
}

double ZRSymBlockDiagMatrix::ComputeRowDotProductS(int i, const IZRSymMatrix & M, int j) const {
  if (i < 0 || j < 0 || i >= fnRows || j >= fnRows || !M.IsValidMatrix() || M.GetNRows() != fnRows)
    return 0.0;
  const int b = fvRowBlock[j], s = fvStartIndices[b];
  double sum = 0.0;
  for (int k = 0; k < fvBlockSizes[b]; ++k)
    if (!fbDiagBlock.IsIn(b) || s + k == j) sum += M.GetElem(i, s + k) * BlockElem(b, k, j - s);
  return sum;
}

// ---- Products with matrices -------------------------------------------------------------

bool ZRSymBlockDiagMatrix::ComputeGMG(const std::vector<double> & M, ZRSymMatrix & out) const {
  if (fnRows < 0 || Size(M) != static_cast<Index>(fnRows) * (fnRows + 1) / 2) return false;
  return NoThrow(false, [&] {
    const int n = fnRows;
    Full m(n, n);
    for (int i = 0, k = 0; i < n; ++i)
      for (int j = 0; j <= i; ++j, ++k) m(i, j) = m(j, i) = M[k];
    return StoreSym(SandwichG(*this, m), out);
  });
}

bool ZRSymBlockDiagMatrix::ComputeGMGNG(const IZRSymMatrix & M, const IZRSymMatrix & N,
                                        IZRSymMatrix & out, std::vector<double> & work) const {
  if (fnRows < 0 || !OfOrder(M, fnRows) || !OfOrder(N, fnRows)) return false;
  return NoThrow(false, [&] {
    const Full gmg = SandwichG(*this, FromSym(M));
    const Full result = RightG(*this, Multiply(gmg, FromSym(N)));
    work = result.a;
    return StoreSym(result, out);
  });
}

bool ZRSymBlockDiagMatrix::ComputeGSG(const IZRSymMatrix & S, IZRSymMatrix & out) const {
  if (fnRows < 0 || !OfOrder(S, fnRows)) return false;
  return NoThrow(false, [&] { return StoreSym(SandwichG(*this, FromSym(S)), out); });
}

bool ZRSymBlockDiagMatrix::ComputeLSLTrans(const IZRSymMatrix & L, IZRSymMatrix & out) const {
  if (fnRows < 0 || !OfOrder(L, fnRows)) return false;
  return NoThrow(false, [&] {
    Full l = FromSym(L);
    for (int i = 0; i < fnRows; ++i)
      for (int j = i + 1; j < fnRows; ++j) l(i, j) = 0.0;
    return StoreSym(Multiply(l, LeftG(*this, Transpose(l))), out);
  });
}

bool ZRSymBlockDiagMatrix::ComputeLTransSL(const IZRSymMatrix & L, IZRSymMatrix & out,
                                           int k) const {
  const int m = L.GetNRows();
  if (k < 1 || !L.IsValidMatrix() || fnRows < 0 || static_cast<std::int64_t>(k) * m != fnRows ||
      out.GetType() != kDenseSymMatrix)
    return false;
  return NoThrow(false, [&] {
    Full b(fnRows, fnRows);
    for (int q = 0; q < k; ++q)
      for (int i = 0; i < m; ++i)
        for (int j = 0; j <= i; ++j) b(q * m + i, q * m + j) = L.GetElem(i, j);
    return StoreSym(Multiply(Transpose(b), LeftG(*this, b)), out);
  });
}

bool ZRSymBlockDiagMatrix::ComputeRS(const IZRRectMatrix & R, IZRRectMatrix & out) const {
  if (fnRows < 0 || !R.IsValidMatrix() || R.GetNCols() != fnRows) return false;
  return NoThrow(false, [&] {
    Full r(0, 0);
    return FromRect(R, r) && StoreRect(RightG(*this, r), out);
  });
}

bool ZRSymBlockDiagMatrix::ComputeRSRTrans(const IZRRectMatrix & R, IZRSymMatrix & out) const {
  if (fnRows < 0 || !R.IsValidMatrix() || R.GetNCols() != fnRows) return false;
  return NoThrow(false, [&] {
    Full r(0, 0);
    return FromRect(R, r) && StoreSym(Multiply(r, LeftG(*this, Transpose(r))), out);
  });
}

bool ZRSymBlockDiagMatrix::ComputeRTransS(const IZRRectMatrix & R, IZRRectMatrix & out) const {
  if (fnRows < 0 || !R.IsValidMatrix() || R.GetNRows() != fnRows) return false;
  return NoThrow(false, [&] {
    Full r(0, 0);
    return FromRect(R, r) && StoreRect(Transpose(LeftG(*this, r)), out);
  });
}

bool ZRSymBlockDiagMatrix::ComputeRTransSR(const IZRRectMatrix & R, IZRSymMatrix & out) const {
  if (fnRows < 0 || !R.IsValidMatrix() || R.GetNRows() != fnRows) return false;
  return NoThrow(false, [&] {
    Full r(0, 0);
    return FromRect(R, r) && StoreSym(Multiply(Transpose(r), LeftG(*this, r)), out);
  });
}

bool ZRSymBlockDiagMatrix::ComputeRTransSV(const IZRRectMatrix & R, const std::vector<double> & v,
                                           std::vector<double> & out) const {
  if (fnRows < 0 || !R.IsValidMatrix() || R.GetNRows() != fnRows || Size(v) < fnRows) return false;
  return NoThrow(false, [&] {
    std::vector<double> gv;
    Full r(0, 0);
    if (!ComputeSV(v, gv) || !FromRect(R, r)) return false;
    std::vector<double> y(static_cast<std::size_t>(r.cols), 0.0);
    for (int j = 0; j < r.cols; ++j) {
      double sum = 0.0;
      for (int i = 0; i < fnRows; ++i) sum += r(i, j) * gv[i];
      y[j] = sum;
    }
    out.swap(y);
    return true;
  });
}

bool ZRSymBlockDiagMatrix::ComputeSS(const IZRSymMatrix & S, IZRRectMatrix & out) const {
  if (fnRows < 0 || !OfOrder(S, fnRows)) return false;
  return NoThrow(false, [&] { return StoreRect(LeftG(*this, FromSym(S)), out); });
}

void ZRSymBlockDiagMatrix::ComputeSTransS(IZRSymMatrix & out) const {
  if (fnRows < 0) return;
  if (out.GetType() == kBlockDiagSymMatrix) {
    auto & target = static_cast<ZRSymBlockDiagMatrix &>(out);
    if (&target != this && !CopyStructure(target)) return;
    for (std::size_t k = 0; k < fvDenseBlocks.size(); ++k) {
      ZRSymMatrix square;
      fvDenseBlocks[k].ComputeSTransS(square);
      target.fvDenseBlocks[k] = square;
    }
    for (std::size_t k = 0; k < fvDiagBlocks.size(); ++k)
      for (std::size_t r = 0; r < fvDiagBlocks[k].size(); ++r)
        target.fvDiagBlocks[k][r] = fvDiagBlocks[k][r] * fvDiagBlocks[k][r];
    return;
  }
  if (!out.SetNRows(fnRows, true)) return;
  for (int i = 0; i < fnRows; ++i) {
    const int s = fvStartIndices[fvRowBlock[i]];
    for (int j = s; j <= i; ++j) out.SetElem(i, j, ComputeDotProduct2Rows(i, j));
  }
}

void ZRSymBlockDiagMatrix::ExtractFirstNRows(IZRSymMatrix & out) const {
  if (out.GetType() != kDenseSymMatrix || fnRows < 0) return;
  NoThrow(false, [&] {
    const int n = std::max(fnRows - 1, 0);
    Full x(n, n);
    for (int i = 0; i < n; ++i)
      for (int j = 0; j <= i; ++j) x(i, j) = GetElem(i, j);
    return StoreSym(x, out);
  });
}

bool ZRSymBlockDiagMatrix::ExtractSubmatrix(const std::vector<int> & idx,
                                            IZRSymMatrix & out) const {
  if (out.GetType() != kDenseSymMatrix || fnRows < 0) return false;
  for (int k : idx)
    if (k < 0 || k >= fnRows) return false;
  return NoThrow(false, [&] {
    const int n = static_cast<int>(idx.size());
    Full x(n, n);
    for (int i = 0; i < n; ++i)
      for (int j = 0; j <= i; ++j) x(i, j) = GetElem(idx[i], idx[j]);
    return StoreSym(x, out);
  });
}

// ---------------------------------------------------------------------------------------
// Display

void ZRSymBlockDiagMatrix::Display() const {
  using namespace ZRDisplay_920;
  DisplayText(1, "Lower triangular of ZRSymBlockDiagMatrix display start");
  DisplayI("Number of rows", fnRows);
  DisplayI("Number of columns", fnRows);
  DisplayI("Number of blocks", fnBlocks);
  DisplayIV("Block sizes", fvBlockSizes);
  DisplayIV("Block indices", fvBlockIndices);
  DisplayIV("Start Indices", fvStartIndices);
  DisplayIV("Block indices for each row", fvRowBlock);
  char number[16];
  for (int i = 0; i < fnRows; ++i) {
    std::snprintf(number, sizeof number, " %d", i);
    const int b = fvRowBlock[i], rel = i - fvStartIndices[b];
    const std::string label = std::string("row ") + number + ": ";
    if (fbDiagBlock.IsIn(b)) {
      DisplayDA(label, &fvDiagBlocks[fvBlockIndices[b]][rel], 1, false);
    } else {
      std::vector<double> row;
      const ZRSymMatrix & block = fvDenseBlocks[fvBlockIndices[b]];
      for (int c = 0; c <= rel; ++c) row.push_back(block.GetElem(rel, c));
      DisplayDA(label, row.data(), rel + 1, false);
    }
  }
}

void ZRSymBlockDiagMatrix::DisplayF() const {
  using namespace ZRDisplay_920;
  DisplayText(1, "ZRSymBlockDiagMatrix display start");
  DisplayI("Number of rows", fnRows);
  DisplayI("Number of columns", fnRows);
  DisplayI("Number of blocks", fnBlocks);
  char number[16];
  std::vector<double> row;
  for (int i = 0; i < fnRows; ++i) {
    std::snprintf(number, sizeof number, " %d", i);
    if (!GetRow(i, row)) row.clear();
    DisplayDA(std::string("row ") + number + ": ", row.data(), static_cast<int>(row.size()), false);
  }
}

// ---------------------------------------------------------------------------------------
// ZRSymBlockMatrix

ZRSymBlockMatrix::ZRSymBlockMatrix() : fnRows(0), fnSubRows(0) {}

ZRSymBlockMatrix::ZRSymBlockMatrix(int nRows, int nSubRows) : fnRows(0), fnSubRows(0) {
  SetNRows(nRows, nSubRows, true);
}

void ZRSymBlockMatrix::Clear() {
  for (ZRSymMatrix & m : fvBlocks) m.Clear();
}

bool ZRSymBlockMatrix::ResizeNRows(std::vector<ZRSymMatrix> & v, int & nRows, int & nSubRows) {
  const std::int64_t count = static_cast<std::int64_t>(nRows) * (nRows + 1) / 2;
  bool ok = count <= INT32_MAX && NoThrow([&] { v.resize(static_cast<std::size_t>(count)); });
  for (std::size_t k = 0; ok && k < v.size(); ++k) ok = v[k].Resize(nSubRows);
  if (!ok) {
    std::vector<ZRSymMatrix>().swap(v);
    nRows = -1;
    nSubRows = -1;
  }
  return ok;
}

bool ZRSymBlockMatrix::SetNRows(int nRows, int nSubRows, bool clear) {
  fnRows = nRows < 0 ? 0 : nRows;
  fnSubRows = nSubRows < 0 ? 0 : nSubRows;
  const bool ok = ResizeNRows(fvBlocks, fnRows, fnSubRows);
  if (ok && clear) Clear();
  return ok && fnRows >= 0 && fnSubRows >= 0;
}

ZRSymMatrix & ZRSymBlockMatrix::GetElemSSRef(int i, int j) {
  const std::size_t r = static_cast<std::size_t>(i >= j ? i : j);
  const std::size_t c = static_cast<std::size_t>(i >= j ? j : i);
  return fvBlocks[r * (r + 1) / 2 + c];
}

int ZRSymBlockMatrix::CopyToSymMatrix(ZRSymMatrix & out) const {
  if (!IsValid()) return -1;
  const std::int64_t n = static_cast<std::int64_t>(fnRows) * fnSubRows;
  if (n > INT32_MAX || !out.SetNRows(static_cast<int>(n), true)) return -1;
  const int s = fnSubRows;
  std::size_t k = 0;
  for (int i = 0; i < fnRows; ++i) {
    for (int j = 0; j <= i; ++j, ++k) {
      const ZRSymMatrix & m = fvBlocks[k];
      for (int p = 0; p < s; ++p)
        for (int q = 0; q < s; ++q)
          if (i != j || q <= p) out.SetElem(i * s + p, j * s + q, m.GetElem(p, q));
    }
  }
  return out.GetNRows();
}

void ZRSymBlockMatrix::Display() const {
  using namespace ZRDisplay_920;
  DisplayText(1, "ZRSymBlockMatrix display start");
  DisplayI("The number of rows in the ZRSymBlockMatrix", fnRows);
  // Intended: the member type is named with its namespace macro spelled out.
  DisplayI("The number of rows in each ZRMATH_NAMESPACE::ZRSymMatrix matrix", fnSubRows);
  std::size_t k = 0;
  for (int i = 0; i < fnRows; ++i) {
    for (int j = 0; j <= i; ++j, ++k) {
      DisplayI("Row number in the ZRSymBlockMatrix", i);
      DisplayI("Column number in the ZRSymBlockMatrix", j);
      DisplayText(1, "ZRMATH_NAMESPACE::ZRSymMatrix matrix:");
      fvBlocks[k].Display();
    }
  }
  DisplayText(1, "ZRSymBlockMatrix display end");
}

}  // namespace ZRMath_920
