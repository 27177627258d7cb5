// LINPACK routines for triangular matrices (condition estimate, solve, determinant and
// inverse) and for tridiagonal systems (general with partial pivoting; positive definite).
// Source: Dongarra, Bunch, Moler and Stewart (1979), LINPACK Users' Guide, SIAM, chapters 6
// and 7. Loops keep the published order of operations and its 1-based indices.
#include <cmath>
#include <cstddef>

#include "zrcommon920r/math/matrix/detail/linpack_util.h"
#include "zrcommon920r/math/matrix/kernels.h"

namespace ZRMath_920 {

namespace {

using namespace linpack_detail;

}  // namespace

// --- Triangular matrices --------------------------------------------------------------

// Reciprocal of the 1-norm condition number of the triangular T, estimated (LINPACK DTRCO;
// Cline, Moler, Stewart and Wilkinson 1979, An estimate for the condition number of a
// matrix, SIAM J. Numer. Anal. 16, 368-375). job == 0: T is lower triangular, otherwise
// upper; the other triangle is not read. z returns a unit-1-norm vector with T z small
// when T is nearly singular. Tests hold rcond within a factor of 10 of LAPACK's dtrcon
// and of the true 1/cond_1(T), and to 8 eps of hand-traced values. Returns 0.0 for a zero
// T or n < 1; T is not changed.
double Linpack::Dtrco(double * const t, int ldt, int n, double * const z, int job) {
  const bool lower = job == 0;
  // 1-norm of T.
  double tnorm = 0.0;
  for (int j = 1; j <= n; ++j) {
    const int l = lower ? n + 1 - j : j;
    const int i1 = lower ? j : 1;
    tnorm = Blas1::D_Max(tnorm, Blas1::DASum(l, At(t, ldt, i1, j), 1));
  }
  // n < 1 gives the published answer (tnorm is 0.0) without the 1 / 0 of an empty sum.
  if (n < 1) return 0.0;

  // Solve T'y = e, choosing the signs of e to make y grow.
  double ek = 1.0;
  for (int j = 1; j <= n; ++j) z[j - 1] = 0.0;
  for (int kk = 1; kk <= n; ++kk) {
    const int k = lower ? n + 1 - kk : kk;
    const double tkk = *At(t, ldt, k, k);
    if (z[k - 1] != 0.0) ek = Sign(ek, -z[k - 1]);
    if (!(std::fabs(ek - z[k - 1]) <= std::fabs(tkk))) {
      const double s = std::fabs(tkk) / std::fabs(ek - z[k - 1]);
      Blas1::DScal(n, s, z, 1);
      ek = s * ek;
    }
    double wk = ek - z[k - 1];
    double wkm = -ek - z[k - 1];
    double s = std::fabs(wk);
    double sm = std::fabs(wkm);
    if (tkk != 0.0) {
      wk = wk / tkk;
      wkm = wkm / tkk;
    } else {
      wk = 1.0;
      wkm = 1.0;
    }
    if (kk != n) {
      const int j1 = lower ? 1 : k + 1;
      const int j2 = lower ? k - 1 : n;
      for (int j = j1; j <= j2; ++j) {
        const double tkj = *At(t, ldt, k, j);
        sm = sm + std::fabs(z[j - 1] + wkm * tkj);
        z[j - 1] = z[j - 1] + wk * tkj;
        s = s + std::fabs(z[j - 1]);
      }
      if (!(s >= sm)) {
        const double w = wkm - wk;
        wk = wkm;
        for (int j = j1; j <= j2; ++j) z[j - 1] = z[j - 1] + w * *At(t, ldt, k, j);
      }
    }
    z[k - 1] = wk;
  }
  double s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);
  double ynorm = 1.0;

  // Solve T z = y.
  for (int kk = 1; kk <= n; ++kk) {
    const int k = lower ? kk : n + 1 - kk;
    const double tkk = *At(t, ldt, k, k);
    if (!(std::fabs(z[k - 1]) <= std::fabs(tkk))) {
      s = std::fabs(tkk) / std::fabs(z[k - 1]);
      Blas1::DScal(n, s, z, 1);
      ynorm = s * ynorm;
    }
    if (tkk != 0.0) z[k - 1] = z[k - 1] / tkk;
    if (tkk == 0.0) z[k - 1] = 1.0;
    const int i1 = lower ? k + 1 : 1;
    if (kk < n) {
      const double w = -z[k - 1];
      Blas1::Daxpy(n - kk, w, At(t, ldt, i1, k), 1, z + (i1 - 1), 1);
    }
  }
  // Make ||z||_1 = 1.
  s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);
  ynorm = s * ynorm;
  return tnorm != 0.0 ? ynorm / tnorm : 0.0;
}

// Solves T x = b or T'x = b for the triangular T by substitution (LINPACK DTRSL); b is
// overwritten by x. job: 00 T x = b, T lower; 01 T x = b, T upper; 10 T'x = b, T lower;
// 11 T'x = b, T upper (units digit: upper; tens digit: transpose). Tests hold
// ||T x - b||_1 / (n ||T||_1 ||x||_1 eps) < 30. Returns 0, or the index of the first zero
// diagonal element, and then b is unchanged.
int Linpack::Dtrsl(double * const t, int ldt, int n, double * const b, int job) {
  for (int info = 1; info <= n; ++info) {
    if (*At(t, ldt, info, info) == 0.0) return info;
  }
  // Intended: n < 1 returns 0 and touches nothing (the published case code reads b(1)).
  if (n < 1) return 0;
  const bool upper = job % 10 != 0;
  const bool transposed = job % 100 / 10 != 0;
  if (!transposed && !upper) {
    // T x = b, T lower triangular.
    b[0] = b[0] / *At(t, ldt, 1, 1);
    for (int j = 2; j <= n; ++j) {
      const double temp = -b[j - 2];
      Blas1::Daxpy(n - j + 1, temp, At(t, ldt, j, j - 1), 1, b + (j - 1), 1);
      b[j - 1] = b[j - 1] / *At(t, ldt, j, j);
    }
  } else if (!transposed) {
    // T x = b, T upper triangular.
    b[n - 1] = b[n - 1] / *At(t, ldt, n, n);
    for (int jj = 2; jj <= n; ++jj) {
      const int j = n - jj + 1;
      const double temp = -b[j];
      Blas1::Daxpy(j, temp, At(t, ldt, 1, j + 1), 1, b, 1);
      b[j - 1] = b[j - 1] / *At(t, ldt, j, j);
    }
  } else if (!upper) {
    // T'x = b, T lower triangular.
    b[n - 1] = b[n - 1] / *At(t, ldt, n, n);
    for (int jj = 2; jj <= n; ++jj) {
      const int j = n - jj + 1;
      b[j - 1] = b[j - 1] - Blas1::DDot(jj - 1, At(t, ldt, j + 1, j), 1, b + j, 1);
      b[j - 1] = b[j - 1] / *At(t, ldt, j, j);
    }
  } else {
    // T'x = b, T upper triangular.
    b[0] = b[0] / *At(t, ldt, 1, 1);
    for (int j = 2; j <= n; ++j) {
      b[j - 1] = b[j - 1] - Blas1::DDot(j - 1, At(t, ldt, 1, j), 1, b, 1);
      b[j - 1] = b[j - 1] / *At(t, ldt, j, j);
    }
  }
  return 0;
}

// Determinant and inverse of the triangular T (LINPACK DTRDI). job = 100 d + 10 i + u:
// d != 0 gives det(T) = det[0] * 10^det[1] with 1 <= |det[0]| < 10 (det[0] == 0.0 for a
// zero diagonal); i != 0 replaces T in place by inv(T), upper when u != 0, else lower.
// Tests hold det to 1e-12 relative of the diagonal product and inv(T) to ||inv(T) T -
// I||_1 / (n cond_1(T) eps) < 30. Returns 0, or for a zero diagonal element the index
// where inversion stopped (the first zero for upper, the last for lower); T is then partly
// inverted. Returns 0 when no inverse is asked for. Intended: rescaling stops at an
// infinite or NaN det[0].
int Linpack::Dtrdi(double * const t, int ldt, int n, double * const det, int job) {
  if (job / 100 != 0) {
    det[0] = 1.0;
    det[1] = 0.0;
    for (int i = 1; i <= n; ++i) {
      det[0] = *At(t, ldt, i, i) * det[0];
      if (!NormaliseDet(det)) break;
    }
  }
  // The published text leaves info unset when no inverse is asked for: answer 0.
  if (job / 10 % 10 == 0) return 0;

  if (job % 10 != 0) {
    // Inverse of an upper triangular matrix.
    for (int k = 1; k <= n; ++k) {
      double * const tk = At(t, ldt, 1, k);
      if (tk[k - 1] == 0.0) return k;
      tk[k - 1] = 1.0 / tk[k - 1];
      double temp = -tk[k - 1];
      Blas1::DScal(k - 1, temp, tk, 1);
      for (int j = k + 1; j <= n; ++j) {
        double * const tj = At(t, ldt, 1, j);
        temp = tj[k - 1];
        tj[k - 1] = 0.0;
        Blas1::Daxpy(k, temp, tk, 1, tj, 1);
      }
    }
    return 0;
  }
  // Inverse of a lower triangular matrix.
  for (int k = n; k >= 1; --k) {
    double * const tkk = At(t, ldt, k, k);
    if (*tkk == 0.0) return k;
    *tkk = 1.0 / *tkk;
    double temp = -*tkk;
    if (k != n) Blas1::DScal(n - k, temp, tkk + 1, 1);
    for (int j = 1; j <= k - 1; ++j) {
      double * const tkj = At(t, ldt, k, j);
      temp = *tkj;
      *tkj = 0.0;
      Blas1::Daxpy(n - k + 1, temp, tkk, 1, tkj, 1);
    }
  }
  return 0;
}

// --- Tridiagonal systems --------------------------------------------------------------

// Solves the general tridiagonal system A x = b by Gaussian elimination with partial
// pivoting (LINPACK DGTSL, Users' Guide 1979, ch. 7). c, d, e, b have n elements: c holds
// the subdiagonal in c[1..n-1], d the diagonal, e the superdiagonal in e[0..n-2] (c[0] and
// e[n-1] are workspace); all are overwritten and b returns x. Tests hold ||A x - b||_1 /
// (n ||A||_1 ||x||_1 eps) < 30 and agreement with LAPACK dgtsv. Returns 0, or the index k
// of a zero pivot, found as elimination reaches it; b is then partly reduced, not solved.
int Linpack::Dgtsl(int n, double * const c, double * const d, double * const e, double * const b) {
  // Intended: n < 1 returns 0 and touches nothing (the published code sets c(1)).
  if (n < 1) return 0;
  c[0] = d[0];
  if (n - 1 >= 1) {
    d[0] = e[0];
    e[0] = 0.0;
    e[n - 1] = 0.0;
    for (int k = 1; k <= n - 1; ++k) {
      const int kp1 = k + 1;
      // Take the row with the larger first element; a tie interchanges.
      if (!(std::fabs(c[kp1 - 1]) < std::fabs(c[k - 1]))) {
        double t = c[kp1 - 1];
        c[kp1 - 1] = c[k - 1];
        c[k - 1] = t;
        t = d[kp1 - 1];
        d[kp1 - 1] = d[k - 1];
        d[k - 1] = t;
        t = e[kp1 - 1];
        e[kp1 - 1] = e[k - 1];
        e[k - 1] = t;
        t = b[kp1 - 1];
        b[kp1 - 1] = b[k - 1];
        b[k - 1] = t;
      }
      if (c[k - 1] == 0.0) return k;
      const double t = -c[kp1 - 1] / c[k - 1];
      c[kp1 - 1] = d[kp1 - 1] + t * d[k - 1];
      d[kp1 - 1] = e[kp1 - 1] + t * e[k - 1];
      e[kp1 - 1] = 0.0;
      b[kp1 - 1] = b[kp1 - 1] + t * b[k - 1];
    }
  }
  if (c[n - 1] == 0.0) return n;
  // Back substitution.
  b[n - 1] = b[n - 1] / c[n - 1];
  if (n == 1) return 0;
  b[n - 2] = (b[n - 2] - d[n - 2] * b[n - 1]) / c[n - 2];
  for (int k = n - 2; k >= 1; --k) {
    b[k - 1] = (b[k - 1] - d[k - 1] * b[k] - e[k - 1] * b[k + 1]) / c[k - 1];
  }
  return 0;
}

// Solves the symmetric positive definite tridiagonal system A x = b (LINPACK DPTSL): d
// holds the diagonal, e the off-diagonal in e[0..n-2]; elimination runs from both ends
// towards the centre, then substitution outwards. d is overwritten and b returns x. Tests
// hold ||A x - b||_1 / (n ||A||_1 ||x||_1 eps) < 30 and agreement with LAPACK dptsv. No
// pivoting and no check: a zero pivot (A not positive definite) divides by zero.
void Linpack::Dptsl(int n, double * const d, double * const e, double * const b) {
  // Intended: n < 1 touches nothing (the published code reads e(1) and d(1)).
  if (n < 1) return;
  if (n == 1) {
    b[0] = b[0] / d[0];
    return;
  }
  const int nm1 = n - 1;
  const int nm1d2 = nm1 / 2;
  if (n != 2) {
    // Zero the top half of the subdiagonal and the bottom half of the superdiagonal.
    int kbm1 = n - 1;
    for (int k = 1; k <= nm1d2; ++k) {
      const double t1 = e[k - 1] / d[k - 1];
      d[k] = d[k] - t1 * e[k - 1];
      b[k] = b[k] - t1 * b[k - 1];
      const double t2 = e[kbm1 - 1] / d[kbm1];
      d[kbm1 - 1] = d[kbm1 - 1] - t2 * e[kbm1 - 1];
      b[kbm1 - 1] = b[kbm1 - 1] - t2 * b[kbm1];
      kbm1 = kbm1 - 1;
    }
  }
  int kp1 = nm1d2 + 1;
  // Clean up a possible 2 x 2 block at the centre.
  if (n % 2 == 0) {
    const double t1 = e[kp1 - 1] / d[kp1 - 1];
    d[kp1] = d[kp1] - t1 * e[kp1 - 1];
    b[kp1] = b[kp1] - t1 * b[kp1 - 1];
    kp1 = kp1 + 1;
  }
  // Back substitution from the centre towards both ends.
  b[kp1 - 1] = b[kp1 - 1] / d[kp1 - 1];
  if (n != 2) {
    int k = kp1 - 1;
    const int ke = kp1 + nm1d2 - 1;
    for (int kf = kp1; kf <= ke; ++kf) {
      b[k - 1] = (b[k - 1] - e[k - 1] * b[k]) / d[k - 1];
      b[kf] = (b[kf] - e[kf - 1] * b[kf - 1]) / d[kf];
      k = k - 1;
    }
  }
  if (n % 2 == 0) b[0] = (b[0] - e[0] * b[1]) / d[0];
}

}  // namespace ZRMath_920
