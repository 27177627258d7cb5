// LINPACK routines for general matrices in full and band storage: LU factorisation by
// Gaussian elimination with partial pivoting, condition estimate, solve with the matrix or
// its transpose, determinant and inverse.
// Source: Dongarra, Bunch, Moler and Stewart (1979), LINPACK Users' Guide, SIAM, chapters 1
// and 2. Loops keep the published order of operations; indices are the published 1-based
// ones, turned into pointers by At().
#include <cmath>
#include <cstddef>

#include "zrcommon920r/math/matrix/detail/ge_kernels.h"
#include "zrcommon920r/math/matrix/detail/linpack_util.h"
#include "zrcommon920r/math/matrix/kernels.h"

namespace ZRMath_920 {

namespace {

using namespace linpack_detail;

// Dgefa's schedule: blocks of kGeBlock columns receive the earlier steps kGePanel at a
// time; within a block, panels of kGePanel columns are factored one column after another,
// each step reaching the panel's later columns kGeStepColumns at a time.
constexpr int kGeBlock = matrix_detail::kGeMaxColumns;
constexpr int kGePanel = matrix_detail::kGeMaxSteps;
constexpr int kGeStepColumns = 4;
static_assert(kGeBlock % kGePanel == 0, "blocks hold whole panels, so step groups are whole");

// Elimination step k of Dgefa (pivot row l) applied to the count columns from j on:
// rows l and k swap, then, unless the multiplier t (the new a(k, j)) is 0.0, rows
// k + 1 .. n get t times column k, as Daxpy adds it. Nothing when step k met a zero pivot,
// which left u(k, k) == 0.0 (a nonzero pivot is swapped into place, so u(k, k) != 0.0
// tells the two apart). Four columns with nonzero multipliers share one pass over column k.
void ApplyGeStep(double * a, int lda, int n, int k, int l, int j, int count) {
  const double * const ak = At(a, lda, 1, k);
  if (ak[k - 1] == 0.0 || count < 1) return;
  double * cols[kGeStepColumns];
  double t[kGeStepColumns];
  bool allNonzero = count == kGeStepColumns;
  for (int c = 0; c < count; ++c) {
    double * const aj = At(a, lda, 1, j + c);
    t[c] = aj[l - 1];
    if (l != k) {
      aj[l - 1] = aj[k - 1];
      aj[k - 1] = t[c];
    }
    cols[c] = aj;
    allNonzero = allNonzero && t[c] != 0.0;
  }
  if (allNonzero) {
    double * const y0 = cols[0];
    double * const y1 = cols[1];
    double * const y2 = cols[2];
    double * const y3 = cols[3];
    const double t0 = t[0], t1 = t[1], t2 = t[2], t3 = t[3];
    for (int i = k; i < n; ++i) {
      const double x = ak[i];
      y0[i] += t0 * x;
      y1[i] += t1 * x;
      y2[i] += t2 * x;
      y3[i] += t3 * x;
    }
    return;
  }
  // Intended: a multiplier of 0.0 adds nothing, as in Daxpy (0.0 x Inf would be NaN, and
  // -0.0 + 0.0 would lose the sign).
  for (int c = 0; c < count; ++c)
    if (t[c] != 0.0)
      for (int i = k; i < n; ++i) cols[c][i] += t[c] * ak[i];
}

}  // namespace

// --- Full storage ---------------------------------------------------------------------

// LU factors of the general n x n matrix A by Gaussian elimination with partial pivoting
// (LINPACK DGEFA, Users' Guide 1979, ch. 1): a returns U and the negated multipliers,
// ipvt the 1-based pivot rows (row interchanges are applied to later columns only).
// Tests hold the rebuilt product to ||P1 L1 .. U - A||_1 / (n ||A||_1 eps) < 30 and ipvt
// equal to LAPACK dgetrf's pivots. Returns 0, or the index k of the last zero pivot
// u(k, k) == 0.0; the factors are complete even then, but Dgesl and Dgedi divide by it.
int Linpack::Dgefa(double * const a, int lda, int n, int * const ipvt) {
  // Intended: n < 1 returns 0 and touches nothing (the published tail would set ipvt(0)).
  if (n < 1) return 0;
  // Columns are factored a block at a time in the delayed (left-looking) order: a block
  // first receives every earlier elimination step, in step order, then eliminates within
  // itself, again panel by panel in the delayed order. Each element meets the same swaps
  // and multiply-adds in the same order as in the published column sweep, so the factors
  // are the same bits. ApplyGeSteps takes the earlier steps a group at a time: it replays
  // a group's swaps on the few rows they touch and gives every other row the group's
  // multiply-adds in step order, so it too changes only the order of visits.
  int info = 0;
  for (int j0 = 1; j0 <= n; j0 += kGeBlock) {
    const int j1 = Min(j0 + kGeBlock - 1, n);
    for (int k0 = 1; k0 < j0; k0 += kGePanel)
      matrix_detail::ApplyGeSteps(a, lda, n, ipvt, k0, kGePanel, j0, j1 - j0 + 1);
    for (int p0 = j0; p0 <= j1; p0 += kGePanel) {
      const int p1 = Min(p0 + kGePanel - 1, j1);
      for (int k0 = j0; k0 < p0; k0 += kGePanel)
        matrix_detail::ApplyGeSteps(a, lda, n, ipvt, k0, kGePanel, p0, p1 - p0 + 1);
      // For k == n the step reduces to the published tail: ipvt(n) = n, info = n when
      // u(n, n) == 0.0.
      for (int k = p0; k <= p1; ++k) {
        double * const ak = At(a, lda, 1, k);
        const int l = Blas1::IDAMax(n - k + 1, ak + (k - 1), 1) + k - 1;
        ipvt[k - 1] = l;
        if (ak[l - 1] == 0.0) {  // zero pivot: this column is already triangular
          info = k;
          continue;
        }
        if (l != k) {
          const double t = ak[l - 1];
          ak[l - 1] = ak[k - 1];
          ak[k - 1] = t;
        }
        Blas1::DScal(n - k, -1.0 / ak[k - 1], ak + k, 1);
        for (int j = k + 1; j <= p1; j += kGeStepColumns)
          ApplyGeStep(a, lda, n, k, l, j, Min(kGeStepColumns, p1 - j + 1));
      }
    }
  }
  return info;
}

// Factors A as Dgefa does and estimates the reciprocal of its 1-norm condition number
// (LINPACK DGECO; Cline, Moler, Stewart and Wilkinson 1979, An estimate for the condition
// number of a matrix, SIAM J. Numer. Anal. 16, 368-375). z returns a unit-1-norm vector
// with ||A z||_1 ~ rcond ||A||_1 (an approximate null vector when A is nearly singular).
// Tests hold rcond within a factor of 10 of LAPACK's dgecon and of the true 1/cond_1(A),
// and to 8 eps of hand-traced values. Returns 0.0 for a zero A or n < 1; an exactly
// singular U gives a tiny or zero rcond (Dgefa's info is not returned: test rcond).
double Linpack::Dgeco(double * const a, int lda, int n, int * const ipvt, double * const z) {
  double anorm = 0.0;
  for (int j = 1; j <= n; ++j) anorm = Blas1::D_Max(anorm, Blas1::DASum(n, At(a, lda, 1, j), 1));
  Dgefa(a, lda, n, ipvt);
  // n < 1 gives the published answer (anorm is 0.0) without the 1 / 0 of an empty sum.
  if (n < 1) return 0.0;

  // Solve U'w = e, choosing the signs of e to make w grow.
  double ek = 1.0;
  for (int j = 1; j <= n; ++j) z[j - 1] = 0.0;
  for (int k = 1; k <= n; ++k) {
    const double akk = *At(a, lda, k, k);
    if (z[k - 1] != 0.0) ek = Sign(ek, -z[k - 1]);
    if (!(std::fabs(ek - z[k - 1]) <= std::fabs(akk))) {
      const double s = std::fabs(akk) / std::fabs(ek - z[k - 1]);
      Blas1::DScal(n, s, z, 1);
      ek = s * ek;
    }
    double wk = ek - z[k - 1];
    double wkm = -ek - z[k - 1];
    double s = std::fabs(wk);
    double sm = std::fabs(wkm);
    if (akk != 0.0) {
      wk = wk / akk;
      wkm = wkm / akk;
    } else {
      wk = 1.0;
      wkm = 1.0;
    }
    if (k + 1 <= n) {
      for (int j = k + 1; j <= n; ++j) {
        const double akj = *At(a, lda, k, j);
        sm = sm + std::fabs(z[j - 1] + wkm * akj);
        z[j - 1] = z[j - 1] + wk * akj;
        s = s + std::fabs(z[j - 1]);
      }
      if (!(s >= sm)) {
        const double t = wkm - wk;
        wk = wkm;
        for (int j = k + 1; j <= n; ++j) z[j - 1] = z[j - 1] + t * *At(a, lda, k, j);
      }
    }
    z[k - 1] = wk;
  }
  double s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);

  // Solve L'y = w.
  for (int k = n; k >= 1; --k) {
    double * const ak = At(a, lda, 1, k);
    if (k < n) z[k - 1] = z[k - 1] + Blas1::DDot(n - k, ak + k, 1, z + k, 1);
    if (!(std::fabs(z[k - 1]) <= 1.0)) {
      s = 1.0 / std::fabs(z[k - 1]);
      Blas1::DScal(n, s, z, 1);
    }
    const int l = ipvt[k - 1];
    const double t = z[l - 1];
    z[l - 1] = z[k - 1];
    z[k - 1] = t;
  }
  s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);
  double ynorm = 1.0;

  // Solve L v = y.
  for (int k = 1; k <= n; ++k) {
    const int l = ipvt[k - 1];
    const double t = z[l - 1];
    z[l - 1] = z[k - 1];
    z[k - 1] = t;
    if (k < n) Blas1::Daxpy(n - k, t, At(a, lda, k + 1, k), 1, z + k, 1);
    if (!(std::fabs(z[k - 1]) <= 1.0)) {
      s = 1.0 / std::fabs(z[k - 1]);
      Blas1::DScal(n, s, z, 1);
      ynorm = s * ynorm;
    }
  }
  s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);
  ynorm = s * ynorm;

  // Solve U z = v.
  for (int k = n; k >= 1; --k) {
    double * const ak = At(a, lda, 1, k);
    if (!(std::fabs(z[k - 1]) <= std::fabs(ak[k - 1]))) {
      s = std::fabs(ak[k - 1]) / std::fabs(z[k - 1]);
      Blas1::DScal(n, s, z, 1);
      ynorm = s * ynorm;
    }
    if (ak[k - 1] != 0.0) z[k - 1] = z[k - 1] / ak[k - 1];
    if (ak[k - 1] == 0.0) z[k - 1] = 1.0;
    const double t = -z[k - 1];
    Blas1::Daxpy(k - 1, t, ak, 1, z, 1);
  }
  // Make ||z||_1 = 1.
  s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);
  ynorm = s * ynorm;
  return anorm != 0.0 ? ynorm / anorm : 0.0;
}

// Solves A x = b (job == 0) or A'x = b (job != 0) with the factors from Dgeco or Dgefa
// (LINPACK DGESL): forward and back substitution by columns, or by inner products for A'.
// b is overwritten by x. Backward stable: tests hold ||A x - b||_1 / (n ||A||_1 ||x||_1 eps)
// < 30 for both jobs. A zero pivot (Dgefa's info != 0) divides by zero: x is then inf/NaN.
void Linpack::Dgesl(double * const a, int lda, int n, int * const ipvt, double * const b, int job) {
  if (job == 0) {
    // L y = b.
    for (int k = 1; k <= n - 1; ++k) {
      const int l = ipvt[k - 1];
      const double t = b[l - 1];
      if (l != k) {
        b[l - 1] = b[k - 1];
        b[k - 1] = t;
      }
      Blas1::Daxpy(n - k, t, At(a, lda, k + 1, k), 1, b + k, 1);
    }
    // U x = y.
    for (int k = n; k >= 1; --k) {
      double * const ak = At(a, lda, 1, k);
      b[k - 1] = b[k - 1] / ak[k - 1];
      const double t = -b[k - 1];
      Blas1::Daxpy(k - 1, t, ak, 1, b, 1);
    }
    return;
  }
  // U'y = b.
  for (int k = 1; k <= n; ++k) {
    double * const ak = At(a, lda, 1, k);
    const double t = Blas1::DDot(k - 1, ak, 1, b, 1);
    b[k - 1] = (b[k - 1] - t) / ak[k - 1];
  }
  // L'x = y.
  for (int k = n - 1; k >= 1; --k) {
    b[k - 1] = b[k - 1] + Blas1::DDot(n - k, At(a, lda, k + 1, k), 1, b + k, 1);
    const int l = ipvt[k - 1];
    if (l != k) {
      const double t = b[l - 1];
      b[l - 1] = b[k - 1];
      b[k - 1] = t;
    }
  }
}

// Determinant and inverse of A from the factors of Dgeco or Dgefa (LINPACK DGEDI).
// job = 10 * d + i: d != 0 gives det(A) = det[0] * 10^det[1] with 1 <= |det[0]| < 10, or
// det[0] == 0.0 for a zero pivot; i != 0 replaces a by inv(A) = inv(U) inv(L), using work
// (n doubles, not read otherwise). Tests hold det to 1e-12 relative of LAPACK's LU product
// (n eps cond_1(A) when larger) and ||inv(A) A - I||_1 / (n cond_1(A) eps) < 30. Intended:
// rescaling stops at an infinite or NaN det[0]. A singular A's inverse divides by zero.
void Linpack::Dgedi(double * const a, int lda, int n, int * const ipvt, double * const det,
                    double * const work, int job) {
  if (job / 10 != 0) {
    det[0] = 1.0;
    det[1] = 0.0;
    for (int i = 1; i <= n; ++i) {
      if (ipvt[i - 1] != i) det[0] = -det[0];
      det[0] = *At(a, lda, i, i) * det[0];
      if (!NormaliseDet(det)) break;
    }
  }
  if (job % 10 == 0) return;

  // inv(U) in place, column by column.
  for (int k = 1; k <= n; ++k) {
    double * const ak = At(a, lda, 1, k);
    ak[k - 1] = 1.0 / ak[k - 1];
    double t = -ak[k - 1];
    Blas1::DScal(k - 1, t, ak, 1);
    for (int j = k + 1; j <= n; ++j) {
      double * const aj = At(a, lda, 1, j);
      t = aj[k - 1];
      aj[k - 1] = 0.0;
      Blas1::Daxpy(k, t, ak, 1, aj, 1);
    }
  }
  // inv(U) inv(L), undoing the interchanges on the columns.
  for (int k = n - 1; k >= 1; --k) {
    double * const ak = At(a, lda, 1, k);
    for (int i = k + 1; i <= n; ++i) {
      work[i - 1] = ak[i - 1];
      ak[i - 1] = 0.0;
    }
    for (int j = k + 1; j <= n; ++j) {
      const double t = work[j - 1];
      Blas1::Daxpy(n, t, At(a, lda, 1, j), 1, ak, 1);
    }
    const int l = ipvt[k - 1];
    if (l != k) Blas1::DSwap(n, ak, 1, At(a, lda, 1, l), 1);
  }
}

// --- Band storage ---------------------------------------------------------------------
// A with ml sub- and mu super-diagonals sits in abd (lda >= 2 ml + mu + 1): with
// m = ml + mu + 1, a(i, j) is abd(i - j + m, j); rows 1..ml of abd are fill-in space.

// LU factors of the band matrix A by Gaussian elimination with partial pivoting (LINPACK
// DGBFA, Users' Guide 1979, ch. 2): abd returns U (with up to ml extra super-diagonals of
// fill-in, in rows 1..m) and the negated multipliers below row m; ipvt the pivot rows.
// Tests hold the solve residual ratio < 30 and ipvt equal to LAPACK dgbtrf's pivots.
// Returns 0, or the index k of the last zero pivot; the factors are complete even then.
int Linpack::Dgbfa(double * const abd, int lda, int n, int ml, int mu, int * const ipvt) {
  // Intended: n < 1 returns 0 and touches nothing (the published tail would set ipvt(0)).
  if (n < 1) return 0;
  const int m = ml + mu + 1;
  int info = 0;
  // Zero the initial fill-in columns.
  const int j0 = mu + 2;
  const int j1 = Min(n, m) - 1;
  for (int jz = j0; jz <= j1; ++jz) {
    const int i0 = m + 1 - jz;
    for (int i = i0; i <= ml; ++i) *At(abd, lda, i, jz) = 0.0;
  }
  int jz = j1;
  int ju = 0;

  for (int k = 1; k <= n - 1; ++k) {
    // Zero the next fill-in column.
    jz = jz + 1;
    if (jz <= n && ml >= 1) {
      for (int i = 1; i <= ml; ++i) *At(abd, lda, i, jz) = 0.0;
    }
    double * const ak = At(abd, lda, 1, k);
    const int lm = Min(ml, n - k);
    int l = Blas1::IDAMax(lm + 1, ak + (m - 1), 1) + m - 1;
    ipvt[k - 1] = l + k - m;
    if (ak[l - 1] == 0.0) {  // zero pivot: this column is already triangular
      info = k;
      continue;
    }
    if (l != m) {
      const double t = ak[l - 1];
      ak[l - 1] = ak[m - 1];
      ak[m - 1] = t;
    }
    double t = -1.0 / ak[m - 1];
    Blas1::DScal(lm, t, ak + m, 1);
    // Row elimination with column indexing.
    ju = Min(Max(ju, mu + ipvt[k - 1]), n);
    int mm = m;
    for (int j = k + 1; j <= ju; ++j) {
      l = l - 1;
      mm = mm - 1;
      double * const aj = At(abd, lda, 1, j);
      t = aj[l - 1];
      if (l != mm) {
        aj[l - 1] = aj[mm - 1];
        aj[mm - 1] = t;
      }
      Blas1::Daxpy(lm, t, ak + m, 1, aj + mm, 1);
    }
  }
  ipvt[n - 1] = n;
  if (*At(abd, lda, m, n) == 0.0) info = n;
  return info;
}

// Factors the band matrix as Dgbfa does and estimates the reciprocal of its 1-norm
// condition number (LINPACK DGBCO; Cline, Moler, Stewart and Wilkinson 1979, SIAM J.
// Numer. Anal. 16, 368-375); z as for Dgeco. Tests hold rcond within a factor of 10 of
// LAPACK's dgbcon and of the true 1/cond_1(A), and to 8 eps of hand-traced values.
// Returns 0.0 for a zero A or n < 1. Needs 0 <= ml < n and 0 <= mu < n, as published.
double Linpack::Dgbco(double * const abd, int lda, int n, int ml, int mu, int * const ipvt,
                      double * const z) {
  // 1-norm of A, column by column down the band.
  double anorm = 0.0;
  int l = ml + 1;
  int is = l + mu;
  for (int j = 1; j <= n; ++j) {
    anorm = Blas1::D_Max(anorm, Blas1::DASum(l, At(abd, lda, is, j), 1));
    if (is > ml + 1) is = is - 1;
    if (j <= mu) l = l + 1;
    if (j >= n - ml) l = l - 1;
  }
  Dgbfa(abd, lda, n, ml, mu, ipvt);
  // n < 1 gives the published answer (anorm is 0.0) without the 1 / 0 of an empty sum.
  if (n < 1) return 0.0;

  // Solve U'w = e.
  double ek = 1.0;
  for (int j = 1; j <= n; ++j) z[j - 1] = 0.0;
  const int m = ml + mu + 1;
  int ju = 0;
  for (int k = 1; k <= n; ++k) {
    const double akk = *At(abd, lda, m, k);
    if (z[k - 1] != 0.0) ek = Sign(ek, -z[k - 1]);
    if (!(std::fabs(ek - z[k - 1]) <= std::fabs(akk))) {
      const double s = std::fabs(akk) / std::fabs(ek - z[k - 1]);
      Blas1::DScal(n, s, z, 1);
      ek = s * ek;
    }
    double wk = ek - z[k - 1];
    double wkm = -ek - z[k - 1];
    double s = std::fabs(wk);
    double sm = std::fabs(wkm);
    if (akk != 0.0) {
      wk = wk / akk;
      wkm = wkm / akk;
    } else {
      wk = 1.0;
      wkm = 1.0;
    }
    ju = Min(Max(ju, mu + ipvt[k - 1]), n);
    if (k + 1 <= ju) {
      int mm = m;
      for (int j = k + 1; j <= ju; ++j) {
        mm = mm - 1;
        const double amj = *At(abd, lda, mm, j);
        sm = sm + std::fabs(z[j - 1] + wkm * amj);
        z[j - 1] = z[j - 1] + wk * amj;
        s = s + std::fabs(z[j - 1]);
      }
      if (!(s >= sm)) {
        const double t = wkm - wk;
        wk = wkm;
        mm = m;
        for (int j = k + 1; j <= ju; ++j) {
          mm = mm - 1;
          z[j - 1] = z[j - 1] + t * *At(abd, lda, mm, j);
        }
      }
    }
    z[k - 1] = wk;
  }
  double s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);

  // Solve L'y = w.
  for (int k = n; k >= 1; --k) {
    const int lm = Min(ml, n - k);
    if (k < n) z[k - 1] = z[k - 1] + Blas1::DDot(lm, At(abd, lda, m + 1, k), 1, z + k, 1);
    if (!(std::fabs(z[k - 1]) <= 1.0)) {
      s = 1.0 / std::fabs(z[k - 1]);
      Blas1::DScal(n, s, z, 1);
    }
    l = ipvt[k - 1];
    const double t = z[l - 1];
    z[l - 1] = z[k - 1];
    z[k - 1] = t;
  }
  s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);
  double ynorm = 1.0;

  // Solve L v = y.
  for (int k = 1; k <= n; ++k) {
    l = ipvt[k - 1];
    const double t = z[l - 1];
    z[l - 1] = z[k - 1];
    z[k - 1] = t;
    const int lm = Min(ml, n - k);
    if (k < n) Blas1::Daxpy(lm, t, At(abd, lda, m + 1, k), 1, z + k, 1);
    if (!(std::fabs(z[k - 1]) <= 1.0)) {
      s = 1.0 / std::fabs(z[k - 1]);
      Blas1::DScal(n, s, z, 1);
      ynorm = s * ynorm;
    }
  }
  s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);
  ynorm = s * ynorm;

  // Solve U z = v.
  for (int k = n; k >= 1; --k) {
    const double akk = *At(abd, lda, m, k);
    if (!(std::fabs(z[k - 1]) <= std::fabs(akk))) {
      s = std::fabs(akk) / std::fabs(z[k - 1]);
      Blas1::DScal(n, s, z, 1);
      ynorm = s * ynorm;
    }
    if (akk != 0.0) z[k - 1] = z[k - 1] / akk;
    if (akk == 0.0) z[k - 1] = 1.0;
    const int lm = Min(k, m) - 1;
    const int la = m - lm;
    const int lz = k - lm;
    const double t = -z[k - 1];
    Blas1::Daxpy(lm, t, At(abd, lda, la, k), 1, z + (lz - 1), 1);
  }
  // Make ||z||_1 = 1.
  s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);
  ynorm = s * ynorm;
  return anorm != 0.0 ? ynorm / anorm : 0.0;
}

// Solves A x = b (job == 0) or A'x = b (job != 0) with the band factors from Dgbco or
// Dgbfa (LINPACK DGBSL); b is overwritten by x. Tests hold ||A x - b||_1 / (n ||A||_1
// ||x||_1 eps) < 30 for both jobs. A zero pivot divides by zero.
void Linpack::Dgbsl(double * const abd, int lda, int n, int ml, int mu, int * const ipvt,
                    double * const b, int job) {
  const int m = mu + ml + 1;
  if (job == 0) {
    // L y = b.
    if (ml != 0) {
      for (int k = 1; k <= n - 1; ++k) {
        const int lm = Min(ml, n - k);
        const int l = ipvt[k - 1];
        const double t = b[l - 1];
        if (l != k) {
          b[l - 1] = b[k - 1];
          b[k - 1] = t;
        }
        Blas1::Daxpy(lm, t, At(abd, lda, m + 1, k), 1, b + k, 1);
      }
    }
    // U x = y.
    for (int k = n; k >= 1; --k) {
      b[k - 1] = b[k - 1] / *At(abd, lda, m, k);
      const int lm = Min(k, m) - 1;
      const int la = m - lm;
      const int lb = k - lm;
      const double t = -b[k - 1];
      Blas1::Daxpy(lm, t, At(abd, lda, la, k), 1, b + (lb - 1), 1);
    }
    return;
  }
  // U'y = b.
  for (int k = 1; k <= n; ++k) {
    const int lm = Min(k, m) - 1;
    const int la = m - lm;
    const int lb = k - lm;
    const double t = Blas1::DDot(lm, At(abd, lda, la, k), 1, b + (lb - 1), 1);
    b[k - 1] = (b[k - 1] - t) / *At(abd, lda, m, k);
  }
  // L'x = y.
  if (ml != 0) {
    for (int k = n - 1; k >= 1; --k) {
      const int lm = Min(ml, n - k);
      b[k - 1] = b[k - 1] + Blas1::DDot(lm, At(abd, lda, m + 1, k), 1, b + k, 1);
      const int l = ipvt[k - 1];
      if (l != k) {
        const double t = b[l - 1];
        b[l - 1] = b[k - 1];
        b[k - 1] = t;
      }
    }
  }
}

// Determinant of the band matrix from the factors of Dgbco or Dgbfa (LINPACK DGBDI):
// det(A) = det[0] * 10^det[1] with 1 <= |det[0]| < 10, or det[0] == 0.0 for a zero pivot.
// Tests hold it to 1e-12 relative of LAPACK's LU product (n eps cond_1(A) when larger).
// Intended: rescaling stops at an infinite or NaN det[0] (det[1] then partial).
void Linpack::Dgbdi(double * const abd, int lda, int n, int ml, int mu, int * const ipvt,
                    double * const det) {
  const int m = ml + mu + 1;
  det[0] = 1.0;
  det[1] = 0.0;
  for (int i = 1; i <= n; ++i) {
    if (ipvt[i - 1] != i) det[0] = -det[0];
    det[0] = *At(abd, lda, m, i) * det[0];
    if (!NormaliseDet(det)) break;
  }
}

}  // namespace ZRMath_920
