// ZRRectMatrix operations that reach beyond the class: products and traces with symmetric
// matrices, redundancy and estimability of design and contrast matrices, orthogonal
// projection, Householder QR and linear solves.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <typeinfo>
#include <vector>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/bitset.h"
#include "zrcommon920r/math/dist/mathfun.h"
#include "zrcommon920r/math/matrix/detail/nothrow_alloc.h"
#include "zrcommon920r/math/matrix/diagmatrix.h"
#include "zrcommon920r/math/matrix/kernels.h"
#include "zrcommon920r/math/matrix/rectmatrix.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace ZRMath_920 {

namespace {

using matrix_detail::NoThrow;
using ZRCommon_920::kSysMisValue;

bool IsDenseSym(const IZRSymMatrix & s) {
  return typeid(s) == typeid(ZRSymMatrix);
}

// Row i of S times the n doubles at v (S's order n): a plain call when S is exactly a
// ZRSymMatrix, the virtual one otherwise.
double SymRowTimes(const IZRSymMatrix & s, bool dense, int i, const double * v) {
  return dense ? static_cast<const ZRSymMatrix &>(s).ZRSymMatrix::ComputeRVD(i, v, 1)
               : s.ComputeRVD(i, v, 1);
}

// Element (i, j) of S, without a virtual call when S is exactly a ZRSymMatrix.
double SymElem(const ZRSymMatrix & s, bool dense, int i, int j) {
  return dense ? s.ZRSymMatrix::GetElem(i, j) : s.GetElem(i, j);
}

// The Gram matrix of the rows (this this') or of the columns (this' this) of r.
bool Gram(const ZRRectMatrix & r, bool rows, ZRSymMatrix & g) {
  return rows ? g.ComputeRByRTrans(r) : g.ComputeRTransByR(r);
}

}  // namespace

// ---------------------------------------------------------------------------------------
// Products and traces with symmetric matrices

bool ZRRectMatrix::ComputeDiagR(const ZRDiagMatrix & D) {
  if (!IsValidMatrix() || !D.IsValidMatrix() || D.GetNRows() != fnRows) return false;
  if (fnCols < 1) return true;
  for (int i = 0; i < fnRows; ++i) {
    const double f = D.GetElem(i);
    double * row = Row(i);
    for (int j = 0; j < fnCols; ++j) row[j] = f * row[j];
  }
  return true;
}

bool ZRRectMatrix::ComputeMatrixProduct(const IZRSymMatrix & S, IZRRectMatrix & C) const {
  if (!IsValidMatrix() || !S.IsValidMatrix() || S.GetNRows() != fnCols) return false;
  const bool dense = IsDenseSym(S);
  ZRRectMatrix scratch;
  if (!scratch.SetNRowsCols(fnRows, fnCols, false)) return false;
  // C(i, j) = row j of S times row i of this, S being symmetric.
  for (int i = 0; i < fnRows; ++i) {
    double * out = scratch.Row(i);
    for (int j = 0; j < fnCols; ++j) out[j] = SymRowTimes(S, dense, j, Row(i));
  }
  if (ZRRectMatrix * cd = dynamic_cast<ZRRectMatrix *>(&C)) {
    cd->TakeFrom(scratch);
    return true;
  }
  if (!C.SetNRowsCols(fnRows, fnCols, true)) return false;
  for (int i = 0; i < fnRows; ++i) {
    for (int j = 0; j < fnCols; ++j) {
      if (!C.SetElem(i, j, scratch.Row(i)[j])) return false;
    }
  }
  return true;
}

double ZRRectMatrix::DotProductRowCol(int i, const IZRSymMatrix & S, int j) const {
  if (!GoodRow(i) || !GoodCol(j) || !S.IsValidMatrix() || S.GetNRows() != fnCols) {
    return kSysMisValue;
  }
  return SymRowTimes(S, IsDenseSym(S), j, Row(i));
}

bool ZRRectMatrix::ComputeR1TransSR2(const ZRRectMatrix & R1, int o1, const ZRRectMatrix & R2,
                                     int o2, const ZRSymMatrix & S, int so, int sn) {
  if (!R1.IsValidMatrix() || !R2.IsValidMatrix() || !S.IsValidMatrix()) return false;
  if (o1 < 0 || o2 < 0 || so < 0 || R2.fnCols < 1 || R1.fnCols != R2.fnCols) return false;
  const std::int64_t reach1 = static_cast<std::int64_t>(R1.fnRows) + o1;
  const std::int64_t reach2 = static_cast<std::int64_t>(R2.fnRows) + o2;
  if (reach1 > sn || reach2 > sn || static_cast<std::int64_t>(so) + sn > S.GetNRows()) return false;
  const int p = R2.fnCols;
  ZRRectMatrix scratch;
  if (!scratch.SetNRowsCols(p, p, false)) {
    SetInvalid();
    return false;
  }
  for (int a = 0; a < p; ++a) {
    for (int b = 0; b < p; ++b) {
      // Empty columns (no rows) give null pointers, which the form reads as 0.0.
      const double * v = R1.fnRows > 0 ? R1.fvData.data() + a : nullptr;
      const double * w = R2.fnRows > 0 ? R2.fvData.data() + b : nullptr;
      scratch.Row(a)[b] =
          S.ComputeVSSubWParts(v, o1, R1.fnRows, R1.fnCols, w, o2, R2.fnRows, R2.fnCols, so, sn);
    }
  }
  TakeFrom(scratch);
  return true;
}

bool ZRRectMatrix::ComputeAXpY(double a, ZRSymMatrix & S) {
  if (!IsValidMatrix() || fnRows != fnCols || S.GetNRows() != fnRows) return false;
  // Intended: a == 0.0 changes nothing, as for a rectangular X.
  if (a == 0.0) return true;
  const bool dense = IsDenseSym(S);
  for (int i = 0; i < fnRows; ++i) {
    double * row = Row(i);
    for (int j = 0; j < fnCols; ++j) row[j] += a * SymElem(S, dense, i, j);
  }
  return true;
}

bool ZRRectMatrix::SubtractSymMatrix(const ZRSymMatrix & S, double f) {
  if (!IsValidMatrix() || fnRows != fnCols || S.GetNRows() != fnRows) return false;
  const bool dense = IsDenseSym(S);
  for (int i = 0; i < fnRows; ++i) {
    double * row = Row(i);
    for (int j = 0; j < fnCols; ++j) row[j] -= f * SymElem(S, dense, i, j);
  }
  return true;
}

bool ZRRectMatrix::TraceOfProductSqS(const ZRSymMatrix & S, double & tr) const {
  tr = 0.0;
  if (!IsValidMatrix() || fnRows != fnCols || S.GetNRows() != fnRows) return false;
  const bool dense = IsDenseSym(S);
  double sum = 0.0;
  for (int i = 0; i < fnRows; ++i) sum += SymRowTimes(S, dense, i, Row(i));
  tr = sum;
  return true;
}

bool ZRRectMatrix::TraceOfProductSubMatSym(int off, const IZRSymMatrix & S, double & tr) const {
  tr = 0.0;
  const int m = S.GetNRows();
  if (!IsValidMatrix() || fnRows != fnCols || off < 0 || m < 0 ||
      static_cast<std::int64_t>(off) + m > fnRows) {
    return false;
  }
  double sum = 0.0;
  if (S.GetType() == IZRSymMatrix::kDiagSymMatrix) {  // only the diagonal of S is read
    std::vector<double> d;
    if (!NoThrow([&] { S.GetDiagonal(d); }) || static_cast<int>(d.size()) < m) return false;
    for (int i = 0; i < m; ++i) sum += Row(off + i)[off + i] * d[static_cast<std::size_t>(i)];
  } else {
    const bool dense = IsDenseSym(S);
    for (int i = 0; i < m; ++i) sum += SymRowTimes(S, dense, i, Row(off + i) + off);
  }
  tr = sum;
  return true;
}

// ---------------------------------------------------------------------------------------
// Redundancy and estimability

bool ZRRectMatrix::IsRowZeroButOne(int i, const ZRBitSet & set, int & col) const {
  col = -1;
  if (fnCols < 1 || !GoodRow(i)) return false;
  const double * row = Row(i);
  const int bits = set.Size();
  for (int j = 0; j < fnCols; ++j) {
    if (row[j] == 0.0 || (j < bits && !set.IsIn(j))) continue;  // NaN counts as non-zero
    if (col >= 0) return false;                                 // a second one; col keeps the first
    col = j;
  }
  return col >= 0;
}

int ZRRectMatrix::CheckAddColRedundancies(const ZRBitSet & cols, ZRBitSet & out) const {
  if (!IsValidMatrix()) return -1;
  ZRBitSet kept, result;
  if (!NoThrow([&] {
        kept.Resize(fnCols, true);
        result.Resize(fnCols, false);
      })) {
    return -1;
  }
  for (int i = 0; i < fnRows; ++i) {
    int c = -1;
    if (IsRowZeroButOne(i, cols, c)) kept.Set(c, false);
  }
  if (cols.Size() == fnCols) {
    result.DoAND(cols, kept);
  } else {
    // Intended: columns past the end of cols stay set, even those a row fixed.
    result.SetRange(0, fnCols - 1, true);
    const int common = std::min(cols.Size(), fnCols);
    for (int j = 0; j < common; ++j) result.Set(j, cols.IsIn(j) && kept.IsIn(j));
  }
  int count = 0;
  for (int j = 0; j < result.Size(); ++j) {
    // IsColZero is false without rows, so then every set bit counts.
    if (result.IsIn(j) && !IsColZero(j)) ++count;
  }
  if (!NoThrow([&] { out = result; })) return -1;
  return count;
}

bool ZRRectMatrix::Expand(const ZRBitSet & set, bool rows, ZRRectMatrix & D) const {
  if (!IsValidMatrix()) return false;
  const int n = set.Size();
  ZRRectMatrix scratch;
  if (!scratch.SetNRowsCols(rows ? n : fnRows, rows ? fnCols : n, true)) {
    D.SetInvalid();
    return false;
  }
  const int extent = rows ? fnRows : fnCols;
  int k = 0;
  for (int pos = 0; pos < n && k < extent; ++pos) {
    if (!set.IsIn(pos)) continue;
    if (rows) {
      std::copy(Row(k), Row(k) + fnCols, scratch.Row(pos));
    } else {
      for (int i = 0; i < fnRows; ++i) scratch.Row(i)[pos] = Row(i)[k];
    }
    ++k;
  }
  D.TakeFrom(scratch);
  return true;
}

int ZRRectMatrix::FindRedundancies(double tol, ZRBitSet & set, bool rows) {
  if (!(tol >= 0.0) || !IsValidMatrix()) return -1;
  ZRSymMatrix gram;
  std::vector<double> diag;
  if (!Gram(*this, rows, gram) || !NoThrow([&] { gram.GetDiagonal(diag); })) return -1;
  // The Gram matrix holds squares, so the tolerance on lengths is squared.
  return gram.LTChol(diag, tol * tol, set, false);
}

int ZRRectMatrix::FindNonRedunIndices(double tol, std::vector<int> & idx, bool rows) const {
  if (!(tol >= 0.0) || !IsValidMatrix()) return -1;
  ZRSymMatrix gram;
  if (!Gram(*this, rows, gram)) return -1;
  std::vector<int> found;
  const int kept = gram.CholIndNonRed(0, tol * tol, found);
  if (kept < 0) return -1;
  idx.swap(found);
  return kept;
}

int ZRRectMatrix::ExtractFullRank(double tol, ZRRectMatrix & D, std::vector<int> & idx,
                                  bool rows) const {
  if (!(tol >= 0.0)) return -1;
  const int kept = FindNonRedunIndices(tol, idx, rows);
  if (kept < 0) return -1;
  const int got = rows ? ExtractRows(idx, D) : ExtractColumns(idx, D);
  return got < 0 ? -1 : kept;
}

bool ZRRectMatrix::IsEstimable(const ZRRectMatrix & H, const ZRBitSet & set, double tol) {
  if (fnRows < 1 || fnCols < 1 || !(tol > 0.0) || set.Size() < fnCols || H.fnRows != fnCols) {
    return false;
  }
  // H's rows are read compactly over the set bits: they need that many columns.
  if (set.InRange(0, fnCols - 1) > H.fnCols) return false;
  const double limit = tol * tol;
  for (int r = 0; r < fnRows; ++r) {
    const double norm = RowNorm(r);
    if (norm == 0.0) continue;  // a zero row states nothing; a NaN row fails below
    const double * l = Row(r);
    double sum = 0.0;
    for (int k = 0; k < fnCols; ++k) {
      const double * h = H.Row(k);
      double dot = 0.0;
      int next = 0;
      for (int j = 0; j < fnCols; ++j) {
        if (set.IsIn(j)) dot += l[j] * h[next++];
      }
      const double diff = dot / norm - l[k] / norm;
      sum += diff * diff;
    }
    if (!(sum <= limit)) return false;  // a NaN fails too
  }
  return true;
}

bool ZRRectMatrix::ResidOfOrthProjection(const ZRRectMatrix & Z, double tol, ZRBitSet & zSet,
                                         ZRBitSet & xSet) {
  if (!IsValidMatrix() || !Z.IsValidMatrix() || Z.fnRows != fnRows || fnRows < 1 || fnCols < 1 ||
      Z.fnCols < 1 || !(tol > 0.0)) {
    return false;
  }
  const int q = Z.fnCols, p = fnCols;
  ZRRectMatrix zCopy;  // when Z is this, its columns must not change under the update
  const ZRRectMatrix * z = &Z;
  ZRSymMatrix c(q + p, true);
  std::vector<double> d;
  if (&Z == this) {
    zCopy = Z;
    z = &zCopy;
  }
  if (!z->IsValidMatrix() || !c.IsValidMatrix() || !NoThrow([&] {
        zSet.Resize(q, false);
        xSet.Resize(p, false);
      })) {
    return false;
  }
  c.UpdateXXMat2(*z, *this, 1.0);
  if (!NoThrow([&] { c.GetDiagonal(d); })) return false;
  for (int k = 0; k < q; ++k) c.Sweep(k, tol, d, zSet, false);
  // After the sweeps C(q + j, k) is the coefficient of Z's column k for X's column j.
  for (int k = 0; k < q; ++k) {
    if (!zSet.IsIn(k)) continue;
    for (int j = 0; j < p; ++j) AddToColumn(j, *z, k, -c.GetElem(q + j, k));
  }
  for (int j = 0; j < p; ++j) {
    xSet.Set(j, DotProductCol(j, j) > tol * d[static_cast<std::size_t>(q + j)]);
  }
  return true;
}

// ---------------------------------------------------------------------------------------
// Householder QR and linear solves

bool ZRRectMatrix::QRDecompositionH(ZRSymMatrix & R, ZRRectMatrix & Q) const {
  if (!IsValidMatrix() || fnRows < 1 || fnCols < 1) return false;
  const bool wide = fnRows < fnCols;
  const int m = wide ? fnRows : fnCols;
  const int bigM = wide ? fnCols : fnRows;
  const std::size_t lead = static_cast<std::size_t>(bigM);
  // W (M x m, by rows) is this or its transpose; reflector k is kept in row k of U.
  std::vector<double> w, u, x, dots;
  if (!NoThrow([&] {
        w.resize(lead * static_cast<std::size_t>(m));
        u.assign(static_cast<std::size_t>(m) * lead, 0.0);
        x.resize(lead);
        dots.resize(lead);
      })) {
    return false;
  }
  for (int i = 0; i < fnRows; ++i) {
    for (int j = 0; j < fnCols; ++j) {
      const double a = Row(i)[j];
      if (wide) {
        w[static_cast<std::size_t>(j) * m + i] = a;
      } else {
        w[static_cast<std::size_t>(i) * m + j] = a;
      }
    }
  }
  if (R.GetNRows() != m && !R.Resize(m)) return false;
  R.Clear();
  if ((Q.fnRows != bigM || Q.fnCols != bigM) && !Q.SetNRowsCols(bigM, bigM, false)) return false;
  Q.Clear();

  auto W = [&w, m](int i, int j) -> double & { return w[static_cast<std::size_t>(i) * m + j]; };
  bool complete = true;
  int steps = 0;
  for (int k = 0; k < m; ++k) {
    for (int t = k; t < bigM; ++t) x[t] = W(t, k);
    double a = ZRMathFun::DNrm2(bigM - k, x, k, 1);
    if (x[k] > 0.0) a = -a;  // reflect away from x, so x[k] - a doesn't cancel
    x[k] -= a;
    const double b = ZRMathFun::DNrm2(bigM - k, x, k, 1);
    // A zero column ends the decomposition; so does a NaN or infinity, which would fill the
    // rest with NaN.
    if (!(b > 0.0) || !std::isfinite(b)) {
      complete = false;
      break;
    }
    double * uk = u.data() + static_cast<std::size_t>(k) * lead;
    for (int t = k; t < bigM; ++t) uk[t] = x[t] / b;
    // Intended: columns are reflected as W - 2 u (u' W), which gives the same values as
    // forming the rows of I - 2 u u' at a fraction of the work. Column k becomes a e_k.
    for (int j = k + 1; j < m; ++j) dots[j] = 0.0;
    for (int t = k; t < bigM; ++t) {
      const double ut = uk[t];
      const double * wt = &W(t, 0);
      for (int j = k + 1; j < m; ++j) dots[j] += ut * wt[j];
    }
    for (int t = k; t < bigM; ++t) {
      const double f = 2.0 * uk[t];
      double * wt = &W(t, 0);
      for (int j = k + 1; j < m; ++j) wt[j] -= f * dots[j];
      wt[k] = 0.0;
    }
    W(k, k) = a;
    for (int j = k; j < m; ++j) R.SetElem(k, j, W(k, j));
    steps = k + 1;
  }

  // Q = H_0 H_1 ... H_{steps-1}, built from the last reflector back (as DORG2R), so that
  // H_k only meets the trailing block from row and column k, where the later ones acted.
  for (int i = 0; i < bigM; ++i) Q.Row(i)[i] = 1.0;
  for (int k = steps - 1; k >= 0; --k) {
    const double * uk = u.data() + static_cast<std::size_t>(k) * lead;
    for (int c = k; c < bigM; ++c) dots[c] = 0.0;
    for (int t = k; t < bigM; ++t) {
      const double ut = uk[t];
      const double * qt = Q.Row(t);
      for (int c = k; c < bigM; ++c) dots[c] += ut * qt[c];
    }
    for (int t = k; t < bigM; ++t) {
      const double f = 2.0 * uk[t];
      double * qt = Q.Row(t);
      for (int c = k; c < bigM; ++c) qt[c] -= f * dots[c];
    }
  }
  return complete;
}

bool ZRRectMatrix::SolveLinearSquare(const std::vector<double> & b, std::vector<double> & x,
                                     double tol) const {
  if (!IsValidMatrix() || fnRows != fnCols || fnRows < 1 || !(tol >= 0.0)) return false;
  const int n = fnRows;
  if (b.size() < static_cast<std::size_t>(n)) return false;
  std::vector<double> lu, z, solution;
  std::vector<int> ipvt;
  if (!NoThrow([&] {
        lu = fvData;
        z.resize(static_cast<std::size_t>(n));
        ipvt.resize(static_cast<std::size_t>(n));
        solution.assign(b.begin(), b.begin() + n);
      })) {
    return false;
  }
  // The column-major kernels see the row-major buffer as this transposed.
  const double rcond = Linpack::Dgeco(lu.data(), n, n, ipvt.data(), z.data());
  if (!(rcond > tol)) return false;  // strictly above; a NaN estimate is refused
  // Job 1 solves with the transpose of what the kernel holds: this x = b.
  Linpack::Dgesl(lu.data(), n, n, ipvt.data(), solution.data(), 1);
  x.swap(solution);
  return true;
}

int ZRRectMatrix::EstimateLinearGI(const std::vector<double> & b, std::vector<double> & x,
                                   double tol) const {
  if (!IsValidMatrix() || fnRows < 1 || fnCols < 1 || !(tol > 0.0)) return -1;
  if (b.size() < static_cast<std::size_t>(fnRows)) return -1;
  if (fnRows == fnCols && SolveLinearSquare(b, x, tol)) return 0;
  ZRSymMatrix normal;
  std::vector<double> rhs;
  if (!normal.ComputeRTransByR(*this) || !NoThrow([&] { ComputeVR(b, rhs); })) return -1;
  return normal.LTSolve(rhs, tol, x);
}

}  // namespace ZRMath_920
