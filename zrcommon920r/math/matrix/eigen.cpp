// ZREigenValues: the symmetric and generalised eigenproblems by TRED3, implicit QL and
// TRBAK3 on the packed lower triangle, sorted results, and the clipped positive definite H.
#include "zrcommon920r/math/matrix/eigen.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <new>
#include <stdexcept>
#include <string>

#include "zrcommon920r/display/display.h"
#include "zrcommon920r/math/dist/mathfun.h"
#include "zrcommon920r/math/matrix/detail/nothrow_alloc.h"

namespace ZRMath_920 {

namespace {

using matrix_detail::AssignNoThrow;
using matrix_detail::CopyNoThrow;
using matrix_detail::NoThrow;

constexpr double kDefaultTol = 1e-12;
constexpr int kDefaultMaxIter = 30;
constexpr double kDefaultPDTol = 1e-6;  // IsPDHMatrix, GetPDHMatrix: tol not above 0
// A row whose L1 norm is not above the smallest normal double is taken as already reduced.
constexpr double kTinyScale = 2.2250738585072014e-308;
// Vectors back-transformed together: each row of the triangle is read once per group, and
// the group's scalar products run as independent sums.
constexpr int kBackTransGroup = 8;
// Rotations of the QL stage held before they are applied to the vectors, column block by
// column block, so that a block of rows stays in cache across many sweeps.
constexpr std::size_t kRotationBuffer = 1 << 15;
constexpr int kColumnBlock = 64;

inline std::size_t RowStart(int i) {
  return static_cast<std::size_t>(i) * (static_cast<std::size_t>(i) + 1) / 2;
}

bool AllFinite(const std::vector<double> & v) {
  for (double x : v)
    if (!std::isfinite(x)) return false;
  return true;
}

// y = A x for the packed symmetric A of order n, each y[j] summed in column order: the
// stored row j up to the diagonal, then down column j. Rows are taken four at a time so
// that their four row sums run side by side; every sum keeps its order.
void PackedSymMatVec(const double * a, int n, const double * x, double * y) {
  int i = 0;
  for (; i + 3 < n; i += 4) {
    const double * r[4];
    r[0] = a + RowStart(i);
    for (int t = 1; t < 4; ++t) r[t] = r[t - 1] + i + t;
    const double x0 = x[i], x1 = x[i + 1], x2 = x[i + 2], x3 = x[i + 3];
    double s[4] = {0.0, 0.0, 0.0, 0.0};
    for (int j = 0; j < i; ++j) {
      const double xj = x[j];
      s[0] += r[0][j] * xj;
      s[1] += r[1][j] * xj;
      s[2] += r[2][j] * xj;
      s[3] += r[3][j] * xj;
      double yj = y[j];
      yj += r[0][j] * x0;
      yj += r[1][j] * x1;
      yj += r[2][j] * x2;
      yj += r[3][j] * x3;
      y[j] = yj;
    }
    // The 4 x 4 diagonal block, row by row as in the plain loop.
    for (int t = 0; t < 4; ++t) {
      const double xt = x[i + t];
      for (int c = i; c < i + t; ++c) {
        s[t] += r[t][c] * x[c];
        y[c] += r[t][c] * xt;
      }
      y[i + t] = s[t] + r[t][i + t] * xt;
    }
  }
  for (; i < n; ++i) {
    const double * row = a + RowStart(i);
    const double xi = x[i];
    double s = 0.0;
    for (int j = 0; j < i; ++j) {
      s += row[j] * x[j];
      y[j] += row[j] * xi;
    }
    y[i] = s + row[i] * xi;
  }
}

// Orders NaN after every number, so that sorting stays well defined.
bool Less(double a, double b) {
  return a < b || (std::isnan(b) && !std::isnan(a));
}

// One plane rotation of the QL stage, recorded for rows i and i + 1 of the vectors.
struct Rotation {
  int i;
  double c;
  double s;
};

// Columns k0 .. k1 - 1 of the rows z[0 ..] (i) and z[n ..] (i + 1): (i + 1) becomes
// s (i) + c (i + 1) and (i) becomes c (i) - s (i + 1), from the old values.
inline void RotateRows(double * zi, int n, int k0, int k1, double c, double s) {
  double * zn = zi + n;
  for (int k = k0; k < k1; ++k) {
    const double u = zi[k], w = zn[k];
    zn[k] = s * u + c * w;
    zi[k] = c * u - s * w;
  }
}

// Applies the rotations in order to the n-column rows of z, one block of columns at a
// time. Every element sees the same operations in the same order as when each rotation
// is applied at once, so the results are the same to the bit.
void ApplyRotations(const std::vector<Rotation> & rot, double * z, int n) {
  for (int k0 = 0; k0 < n; k0 += kColumnBlock) {
    const int k1 = std::min(n, k0 + kColumnBlock);
    for (const Rotation & q : rot) {
      RotateRows(z + static_cast<std::size_t>(q.i) * n, n, k0, k1, q.c, q.s);
    }
  }
}

}  // namespace

// ---------------------------------------------------------------------------------------
// Construction and settings

ZREigenValues::ZREigenValues() : ZREigenValues(kDefaultTol, kDefaultMaxIter) {}

ZREigenValues::ZREigenValues(double tol, int maxIter)
    : fnRows(0),
      fdTol(tol > 0.0 ? tol : kDefaultTol),
      fnMaxIter(maxIter > 0 ? maxIter : kDefaultMaxIter),
      fbComputeVectors(false),
      fbFiniteH(true),
      fbVectorsBackTransformed(false),
      fnRankE(0),
      fbValidE(false),
      fnComputed(0) {}

ZREigenValues::ZREigenValues(const ZRSymMatrix & H, double tol, int maxIter)
    : ZREigenValues(tol, maxIter) {
  SetHMatrix(H);
}

ZREigenValues::ZREigenValues(const ZRSymMatrix & H, const ZRSymMatrix & E, double tol, int maxIter)
    : ZREigenValues(H, tol, maxIter) {
  SetEMatrix(E);
}

bool ZREigenValues::SetTolerance(double tol) {
  if (!(tol > 0.0)) return false;
  fdTol = tol;
  return true;
}

bool ZREigenValues::SetMaxIter(int maxIter) {
  if (maxIter < 1) return false;
  fnMaxIter = maxIter;
  return true;
}

void ZREigenValues::ClearResults() {
  fvEigenVal.clear();
  fmEigenVectors.SetNRowsCols(0, 0, false);
  fvEigPairs.clear();
  fnComputed = 0;
  fbVectorsBackTransformed = false;
}

void ZREigenValues::SetHMatrix(const ZRSymMatrix & H) {
  fmH = H;
  fnRows = fmH.GetNRows();
  fbFiniteH = AllFinite(fmH.fvLowerTri);
  // Intended: a new H starts a new problem, but a set E keeps V H V' of the earlier H.
  ClearResults();
}

bool ZREigenValues::SetEMatrix(const ZRSymMatrix & E) {
  ClearResults();
  fnRankE = 0;
  fbValidE = false;
  bool ok = E.GetNRows() == fnRows && AllFinite(E.fvLowerTri);
  if (ok) {
    fmE = E;
    fmFactorE = E;
    fmFactorE.GetDiagonal(fvEDiag);
    ok = fmE.IsValidMatrix() && fmFactorE.IsValidMatrix() &&
         static_cast<int>(fvEDiag.size()) == fnRows;
  }
  if (ok) {
    const int redundant = fmFactorE.LTChol(fvEDiag, fdTol, false);
    ok = redundant >= 0 && fnRows - redundant > 0;
    if (ok) fnRankE = fnRows - redundant;
  }
  if (ok) {
    fmFactorEInv = fmFactorE;
    double det[2] = {0.0, 0.0};
    ok = fmFactorEInv.IsValidMatrix() && fmFactorEInv.LTDetInverse(det, 10) >= 0 &&
         fmH.ComputeLSLTrans(fmFactorEInv, fmVHV);
  }
  if (!ok) {
    fmE.SetNRows(0, false);
    fmFactorE.SetNRows(0, false);
    fmFactorEInv.SetNRows(0, false);
    fnRankE = 0;
    return false;
  }
  fbValidE = true;
  return true;
}

// ---------------------------------------------------------------------------------------
// The three stages

// fmOrthInfo becomes H, or V H V' when E was accepted, and is reduced by Tred3; it is kept
// for the back-transformation only when eigenvectors are wanted.
void ZREigenValues::TriDiag() {
  fmOrthInfo = fnRankE > 0 ? fmVHV : fmH;
  Tred3();
  if (!fbComputeVectors) fmOrthInfo.SetNRows(0, false);
}

// Householder reduction of the packed fmOrthInfo (order n) to the symmetric tridiagonal
// matrix with diagonal fvDiag3 (d) and subdiagonal fvSubdiag3 (e, e[i] coupling i - 1 and
// i, e[0] = 0.0), as EISPACK's TRED3 (Martin, Reinsch and Wilkinson, Householder's
// tridiagonalization of a symmetric matrix, Numer. Math. 11 (1968), 181-195): each row is
// scaled by its L1 norm before its sum of squares, so nothing overflows needlessly. The
// triangle keeps the Householder vectors (row i, left of the diagonal) and the scaled
// norms sqrt(h) x scale (the diagonal) for BackTransVectors. Nothing for n < 1;
// d and e are emptied when they cannot be sized (the QL stage then refuses).
void ZREigenValues::Tred3() {
  const int n = fmOrthInfo.GetNRows();
  if (n < 1) return;
  if (!AssignNoThrow(fvDiag3, static_cast<std::size_t>(n), 0.0) ||
      !AssignNoThrow(fvSubdiag3, static_cast<std::size_t>(n), 0.0)) {
    fvDiag3.clear();
    fvSubdiag3.clear();
    return;
  }
  double * a = fmOrthInfo.fvLowerTri.data();
  double * d = fvDiag3.data();
  double * e = fvSubdiag3.data();
  for (int i = n - 1; i >= 1; --i) {
    double * rowI = a + RowStart(i);
    std::copy(rowI, rowI + i, d);
    const double scale = ZRMathFun::DASum(i, fvDiag3, 1, 0);
    if (!(scale > kTinyScale)) {  // a NaN scale too: checked for when H and E are set
      e[i] = 0.0;
      d[i] = rowI[i];
      rowI[i] = 0.0;
      continue;
    }
    const double inv = 1.0 / scale;
    double h = 0.0;
    for (int k = 0; k < i; ++k) {
      d[k] *= inv;
      h += d[k] * d[k];
    }
    const double f = d[i - 1];
    double g = std::sqrt(h);
    if (!(f < 0.0)) g = -g;
    e[i] = g * scale;
    h = h - f * g;
    d[i - 1] = f - g;
    rowI[i - 1] = (f - g) * scale;

    // p = A u / h, then the reduced A - u q' - q u' with q = p - (u'p / 2h) u.
    PackedSymMatVec(a, i, d, e);
    const double hInv = 1.0 / h;
    double p = 0.0;
    for (int j = 0; j < i; ++j) {
      e[j] *= hInv;
      p += e[j] * d[j];
    }
    const double hh = hInv * 0.5 * p;
    for (int j = 0; j < i; ++j) {
      e[j] -= hh * d[j];
      double * rowJ = a + RowStart(j);
      const double dj = -d[j], ej = -e[j];
      for (int k = 0; k <= j; ++k) {
        rowJ[k] += dj * e[k];
        rowJ[k] += ej * d[k];
      }
    }
    d[i] = rowI[i];
    rowI[i] = std::sqrt(h) * scale;
  }
  e[0] = 0.0;
  d[0] = a[0];
  a[0] = 0.0;
}

// Eigenvalues of the tridiagonal (fvDiag3, fvSubdiag3) by the implicit QL iteration with
// Wilkinson's shift (Bowdler, Martin, Reinsch and Wilkinson 1968, as TQL2), into fvDiag3
// in the order the iteration leaves them, and with fbComputeVectors the eigenvectors as
// the rows of fmEigenVectors (from the identity). Eigenvalue l is accepted once a
// subdiagonal element s[m], m >= l, has |s[m]| <= fdTol (|d[m]| + |d[m + 1]|); at most
// fnMaxIter iterations are spent on each. Returns 0 with fnComputed = n; l + 1 with
// fnComputed = l when eigenvalue l doesn't converge; -1 for n < 1, a d or e not of n
// elements, or when memory runs out.
int ZREigenValues::EigenValuesTQLI() {
  const int n = fnRows;
  if (n < 1 || static_cast<int>(fvDiag3.size()) != n || static_cast<int>(fvSubdiag3.size()) != n)
    return -1;
  double * z = nullptr;
  std::vector<Rotation> rotations;
  std::size_t flushAt = 0;  // 0: each rotation is applied at once
  if (fbComputeVectors) {
    fbVectorsBackTransformed = false;
    if (!fmEigenVectors.SetNRowsCols(n, n, true)) return -1;
    for (int i = 0; i < n; ++i) fmEigenVectors.SetElem(i, i, 1.0);
    // The matrix class hands out a read pointer only; the object is ours and not const.
    z = const_cast<double *>(fmEigenVectors.GetRowPtr(0));
    const std::size_t want =
        std::min(kRotationBuffer, 2 * static_cast<std::size_t>(n) * static_cast<std::size_t>(n));
    if (NoThrow([&] { rotations.reserve(want); })) flushAt = want;
  }
  std::vector<double> sub;
  if (!AssignNoThrow(sub, static_cast<std::size_t>(n), 0.0)) return -1;
  std::copy(fvSubdiag3.begin() + 1, fvSubdiag3.end(), sub.begin());  // sub[n - 1] stays 0.0
  double * d = fvDiag3.data();
  double * s = sub.data();
  auto rotate = [&](int i, double c, double sn) {
    if (flushAt == 0) {
      RotateRows(z + static_cast<std::size_t>(i) * n, n, 0, n, c, sn);
      return;
    }
    rotations.push_back(Rotation{i, c, sn});
    if (rotations.size() == flushAt) {
      ApplyRotations(rotations, z, n);
      rotations.clear();
    }
  };

  int result = 0;
  for (int l = 0; l < n && result == 0; ++l) {
    for (int iter = 0;; ++iter) {
      // Intended: the search stops at n - 1 whatever the test gives there (s[n - 1] is 0.0).
      int m = l;
      for (; m < n - 1; ++m) {
        const double dd = std::fabs(d[m]) + std::fabs(d[m + 1]);
        if (std::fabs(s[m]) <= fdTol * dd) break;
      }
      if (m == l) break;
      if (iter == fnMaxIter) {
        result = l + 1;
        fnComputed = l;
        break;
      }
      double g = (d[l + 1] - d[l]) / (2.0 * s[l]);
      double r = std::sqrt(g * g + 1.0);
      if (g < 0.0) r = -r;
      g = d[m] - d[l] + s[l] / (g + r);
      double sn = 1.0, c = 1.0, p = 0.0;
      for (int i = m - 1; i >= l; --i) {
        const double f = sn * s[i];
        const double b = c * s[i];
        if (std::fabs(f) >= std::fabs(g)) {
          const double ct = g / f;
          r = std::sqrt(ct * ct + 1.0);
          s[i + 1] = f * r;
          sn = 1.0 / r;
          c = ct * sn;
        } else {
          const double st = f / g;
          r = std::sqrt(st * st + 1.0);
          s[i + 1] = g * r;
          c = 1.0 / r;
          sn = st * c;
        }
        g = d[i + 1] - p;
        r = (d[i] - g) * sn + 2.0 * c * b;
        p = sn * r;
        d[i + 1] = g + p;
        g = c * r - b;
        if (z != nullptr) rotate(i, c, sn);
      }
      d[l] -= p;
      s[l] = g;
      s[m] = 0.0;
    }
  }
  if (z != nullptr && !rotations.empty()) ApplyRotations(rotations, z, n);
  if (result == 0) fnComputed = n;
  return result;
}

// EISPACK's TRBAK3 on the rows of fmEigenVectors 0 .. fnComputed - 1: z becomes P z with P
// the product of Tred3's reflections I - u u' / h, h = (sqrt(h) x scale)^2 read from the
// diagonal of fmOrthInfo (a zero there marks a row that needed none). The vectors are then
// eigenvectors of H, or of V H V' with E. Nothing for n < 2, when the vectors aren't of
// order n, or when they have been back-transformed already.
void ZREigenValues::BackTransVectors() {
  const int n = fnRows;
  if (n < 2 || fbVectorsBackTransformed || fmOrthInfo.GetNRows() != n ||
      fmEigenVectors.GetNRows() != n || fmEigenVectors.GetNCols() != n)
    return;
  fbVectorsBackTransformed = true;
  const double * a = fmOrthInfo.fvLowerTri.data();
  double * z = const_cast<double *>(fmEigenVectors.GetRowPtr(0));
  const int count = std::min(fnComputed, n);
  // EISPACK's own order (rows of the triangle outside, vectors inside), by groups of
  // vectors; each vector sees its operations in the order of the published routine.
  for (int r0 = 0; r0 < count; r0 += kBackTransGroup) {
    const int g = std::min(kBackTransGroup, count - r0);
    double * zr[kBackTransGroup];
    for (int t = 0; t < g; ++t) zr[t] = z + static_cast<std::size_t>(r0 + t) * n;
    for (int i = 1; i < n; ++i) {
      const double * rowI = a + RowStart(i);
      const double h = rowI[i];
      if (h == 0.0) continue;
      double t[kBackTransGroup] = {};
      if (g == kBackTransGroup) {
        for (int k = 0; k < i; ++k)
          for (int q = 0; q < kBackTransGroup; ++q) t[q] += rowI[k] * zr[q][k];
      } else {
        for (int k = 0; k < i; ++k)
          for (int q = 0; q < g; ++q) t[q] += rowI[k] * zr[q][k];
      }
      for (int q = 0; q < g; ++q) {
        const double tq = -(t[q] / h / h);
        double * zq = zr[q];
        for (int k = 0; k < i; ++k) zq[k] += tq * rowI[k];
      }
    }
  }
}

// ---------------------------------------------------------------------------------------
// Results

int ZREigenValues::Compute(std::vector<double> & values) {
  if (!fbFiniteH) return -2;
  TriDiag();
  const int result = EigenValuesTQLI();
  const int r = result == 0 ? fnRows : (result < 0 ? -2 : result - 1);
  if (r > 0) {
    const std::size_t n = static_cast<std::size_t>(fnRows);
    // Intended: a vector already of n elements is kept, so a repeated call hands back the
    // results of the first.
    if (fvEigenVal.size() != n) {
      if (!AssignNoThrow(fvEigenVal, n, 0.0)) return -2;
      std::copy(fvDiag3.begin(), fvDiag3.begin() + r, fvEigenVal.begin());
    }
    if (!CopyNoThrow(values, fvEigenVal)) return -2;
  }
  return r;
}

int ZREigenValues::Compute(std::vector<double> & values, ZRRectMatrix & vectors) {
  fbComputeVectors = true;
  const int r = Compute(values);
  BackTransVectors();
  if (r > 0) vectors = fmEigenVectors;
  return r;
}

int ZREigenValues::GetSorted(std::vector<double> & values, bool descending) {
  int r = 0;
  if (!fvEigenVal.empty()) {
    r = fnComputed;
    if (r < 1) return r;
    if (!CopyNoThrow(values, fvEigenVal)) return -2;
  } else {
    r = Compute(values);
  }
  if (r < 1) return r;
  // Intended: with r < n the zeros past the converged values are sorted in with them.
  if (descending)
    std::sort(values.begin(), values.end(), [](double x, double y) { return Less(y, x); });
  else
    std::sort(values.begin(), values.end(), Less);
  return r;
}

int ZREigenValues::GetSorted(std::vector<double> & values, ZRRectMatrix & vectors,
                             bool descending) {
  int r = fnComputed;
  // Vectors left by a Compute without back-transformation (IsPDHMatrix after vectors were
  // asked for) count as none.
  if (fmEigenVectors.GetNRows() < 1 || !fbVectorsBackTransformed) {
    fbComputeVectors = true;
    r = Compute(values);
    BackTransVectors();
    if (r > 0) vectors = fmEigenVectors;
  }
  if (r < 1) return r;
  const int n = fnRows;
  r = std::min(r, static_cast<int>(fvEigenVal.size()));
  const bool sized = NoThrow([&] {
    fvEigPairs.resize(static_cast<std::size_t>(r));
    values.assign(static_cast<std::size_t>(n), 0.0);
  });
  if (!sized) return -2;
  for (int k = 0; k < r; ++k) fvEigPairs[k] = {fvEigenVal[k], k};
  using Pair = std::pair<double, int>;
  if (descending)
    std::sort(fvEigPairs.begin(), fvEigPairs.end(),
              [](const Pair & x, const Pair & y) { return Less(y.first, x.first); });
  else
    std::sort(fvEigPairs.begin(), fvEigPairs.end(),
              [](const Pair & x, const Pair & y) { return Less(x.first, y.first); });
  if ((vectors.GetNRows() != n || vectors.GetNCols() != n) && !vectors.SetNRowsCols(n, n, true))
    return -2;
  for (int j = 0; j < n; ++j) {
    if (j < r) {
      values[j] = fvEigPairs[j].first;
      fmEigenVectors.CopyRowToRow(fvEigPairs[j].second, j, vectors);
    } else {
      vectors.ZeroOutRowPart(j, 0, n - 1);
    }
  }
  return r;
}

// ---------------------------------------------------------------------------------------
// Positive definiteness

bool ZREigenValues::IsPDHMatrix(double tol, bool & isPD) {
  std::vector<double> values;
  if (fnRows < 1 || Compute(values) != fnRows) return false;
  const double threshold = tol > 0.0 ? tol : kDefaultPDTol;
  isPD = std::none_of(values.begin(), values.end(), [&](double l) { return l < threshold; });
  return true;
}

bool ZREigenValues::GetPDHMatrix(double tol, ZRSymMatrix & out, bool & changed) {
  if (!(tol > 0.0)) tol = kDefaultPDTol;
  changed = false;
  const int n = fnRows;
  if (out.GetNRows() != n && !out.SetNRows(n, true)) return false;
  out.Clear();
  fbComputeVectors = true;
  std::vector<double> values;
  if (n < 1 || Compute(values) != n) return false;
  if (!std::any_of(values.begin(), values.end(), [&](double l) { return l < tol; })) {
    out = fmH;
    return out.IsValidMatrix();
  }
  BackTransVectors();
  if (!fbVectorsBackTransformed || !fmWork.Resize(n)) return false;
  std::vector<double> v;
  for (int i = 0; i < n; ++i) {
    const double value = values[i] < tol ? tol : values[i];
    if (!fmEigenVectors.GetRow(i, v) || !fmWork.SetToVV(v) || !out.ComputeAXpY(value, fmWork))
      return false;
  }
  changed = true;
  return true;
}

bool ZREigenValues::GetPDHMatrix(double tol, ZRSymMatrix & out) {
  bool changed = false;
  return GetPDHMatrix(tol, out, changed);
}

// ---------------------------------------------------------------------------------------
// Display

void ZREigenValues::Display() const {
  using namespace ZRDisplay_920;
  DisplayText(1, "ZREigenValues display start");
  DisplayI("Number of rows", fnRows);
  DisplayD("Tolerance", fdTol);
  DisplayI("Maximum number of iterations", fnMaxIter);
  DisplayB("Compute eigenvectors indicator", fbComputeVectors);
  if (fmH.GetNRows() > 0) {
    DisplayText(1, "Matrix H:");
    fmH.Display();
  }
  if (fmE.GetNRows() < 1) {
    DisplayText(1, "Matrix E is identity");
  } else {
    DisplayText(1, "Matrix E:");
    fmE.Display();
    if (!fvEDiag.empty()) DisplayDV("fvEDiag", fvEDiag);
    DisplayText(1, "Chol(E):");
    fmFactorE.Display();
    DisplayText(1, "Gen.Inverse of Chol(E):");
    fmFactorEInv.Display();
    if (fmVHV.GetNRows() > 0) {
      DisplayText(1, "fmVHV:");
      fmVHV.Display();
    }
    DisplayI("Rank of the E matrix", fnRankE);
  }
  if (fmOrthInfo.GetNRows() > 0) {
    DisplayText(1, "fmOrthInfo:");
    fmOrthInfo.Display();
  }
  if (!fvDiag3.empty()) DisplayDV("fvDiag3", fvDiag3);
  if (!fvSubdiag3.empty()) DisplayDV("fvSubdiag3", fvSubdiag3);
  DisplayI("Number of computed eigenvalues", fnComputed);
  if (!fvEigenVal.empty()) DisplayDV("fvEigenVal", fvEigenVal);
  if (fmEigenVectors.GetNRows() > 0) {
    DisplayText(1, "fmEigenVectors:");
    fmEigenVectors.Display();
  }
  if (!fvEigPairs.empty()) DisplayVPDI("fvEigPairs", fvEigPairs);
  DisplayText(1, "ZREigenValues display end");
}

}  // namespace ZRMath_920
