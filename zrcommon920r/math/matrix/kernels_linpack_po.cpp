// LINPACK routines for symmetric positive definite matrices in full, packed and band
// storage: Cholesky factorisation A = R'R, condition estimate, solve, determinant and inverse.
// Source: Dongarra, Bunch, Moler and Stewart (1979), LINPACK Users' Guide, SIAM, chapter 3.
// Tests are written in the published sense (`!(x <= y)` for "skip when x <= y"), so that a
// NaN takes the published branch.
#include <cmath>
#include <cstddef>

#include "zrcommon920r/math/matrix/detail/linpack_util.h"
#include "zrcommon920r/math/matrix/kernels.h"

namespace ZRMath_920 {

namespace {

using namespace linpack_detail;

// One factor of the determinant of R'R: det[0] <- r^2 det[0], then det[0] is brought into
// [1, 10) by powers of ten counted in det[1]. Returns false when det[0] is 0.0, where the
// published loop stops. Intended: it also stops on an infinite or NaN det[0] (r^2 det[0]
// overflows for r near 1e154), where the published rescaling loops never end.
bool MultiplyDet(double r, double * const det) {
  det[0] = r * r * det[0];
  return NormaliseDet(det);
}

}  // namespace

// --- Full storage ---------------------------------------------------------------------

// Cholesky factor R (upper triangular, A = R'R) of the symmetric positive definite A held
// in the upper triangle of a, by inner products column by column (LINPACK DPOFA, Users'
// Guide 1979, ch. 3). Backward stable: tests hold ||R'R - A||_1 / (n ||A||_1 eps) < 30.
// Returns 0, or the order k of the first leading minor that is not positive definite
// (its pivot not above 0.0); columns 1..k-1 then hold R, column k above the diagonal is
// overwritten, and the strict lower triangle is never touched. A NaN pivot is not above
// 0.0: a NaN anywhere in column k or before it makes the result k or less (as LAPACK's
// dpotrf), never 0 with NaN in the factor.
int Linpack::Dpofa(double * const a, int lda, int n) {
  for (int j = 1; j <= n; ++j) {
    double s = 0.0;
    double * const aj = At(a, lda, 1, j);
    for (int k = 1; k <= j - 1; ++k) {
      double * const ak = At(a, lda, 1, k);
      double t = aj[k - 1] - Blas1::DDot(k - 1, ak, 1, aj, 1);
      t = t / ak[k - 1];
      aj[k - 1] = t;
      s = s + t * t;
    }
    s = aj[j - 1] - s;
    if (!(s > 0.0)) return j;  // a NaN pivot fails too, as in LAPACK's dpotrf
    aj[j - 1] = std::sqrt(s);
  }
  return 0;
}

// Factors the positive definite A as Dpofa does and estimates the reciprocal of its
// 1-norm condition number (LINPACK DPOCO: Cline, Moler, Stewart and Wilkinson 1979, SIAM
// J. Numer. Anal. 16, 368-375); z returns an approximate null vector when A is close to
// singular. Tests: within 1e-14 relative of an exact rational trace of the published steps,
// and within a factor of 10 of LAPACK's dpocon and of the true 1/cond. Returns 0.0 when A
// is not positive definite (the published text leaves rcond unset): a then holds Dpofa's
// partial factor and z the column sums of |A|.
double Linpack::Dpoco(double * const a, int lda, int n, double * const z) {
  // 1-norm of A from its upper triangle.
  for (int j = 1; j <= n; ++j) {
    double * const aj = At(a, lda, 1, j);
    z[j - 1] = Blas1::DASum(j, aj, 1);
    for (int i = 1; i <= j - 1; ++i) z[i - 1] = z[i - 1] + std::fabs(aj[i - 1]);
  }
  double anorm = 0.0;
  for (int j = 1; j <= n; ++j) anorm = Blas1::D_Max(anorm, z[j - 1]);

  if (Dpofa(a, lda, n) != 0) return 0.0;

  // Solve R'w = e, choosing the signs of e to make w grow.
  double ek = 1.0;
  for (int j = 1; j <= n; ++j) z[j - 1] = 0.0;
  for (int k = 1; k <= n; ++k) {
    const double akk = *At(a, lda, k, k);
    if (z[k - 1] != 0.0) ek = Sign(ek, -z[k - 1]);
    if (!(std::fabs(ek - z[k - 1]) <= akk)) {
      const double s = akk / std::fabs(ek - z[k - 1]);
      Blas1::DScal(n, s, z, 1);
      ek = s * ek;
    }
    double wk = ek - z[k - 1];
    double wkm = -ek - z[k - 1];
    double s = std::fabs(wk);
    double sm = std::fabs(wkm);
    wk = wk / akk;
    wkm = wkm / akk;
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

  // Solve R y = w.
  for (int k = n; k >= 1; --k) {
    double * const ak = At(a, lda, 1, k);
    if (!(std::fabs(z[k - 1]) <= ak[k - 1])) {
      s = ak[k - 1] / std::fabs(z[k - 1]);
      Blas1::DScal(n, s, z, 1);
    }
    z[k - 1] = z[k - 1] / ak[k - 1];
    const double t = -z[k - 1];
    Blas1::Daxpy(k - 1, t, ak, 1, z, 1);
  }
  s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);
  double ynorm = 1.0;

  // Solve R'v = y.
  for (int j = 1; j <= n; ++j) {
    double * const aj = At(a, lda, 1, j);
    z[j - 1] = z[j - 1] - Blas1::DDot(j - 1, aj, 1, z, 1);
    if (!(std::fabs(z[j - 1]) <= aj[j - 1])) {
      s = aj[j - 1] / std::fabs(z[j - 1]);
      Blas1::DScal(n, s, z, 1);
      ynorm = s * ynorm;
    }
    z[j - 1] = z[j - 1] / aj[j - 1];
  }
  s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);
  ynorm = s * ynorm;

  // Solve R z = v.
  for (int j = n; j >= 1; --j) {
    double * const aj = At(a, lda, 1, j);
    if (!(std::fabs(z[j - 1]) <= aj[j - 1])) {
      s = aj[j - 1] / std::fabs(z[j - 1]);
      Blas1::DScal(n, s, z, 1);
      ynorm = s * ynorm;
    }
    z[j - 1] = z[j - 1] / aj[j - 1];
    const double t = -z[j - 1];
    Blas1::Daxpy(j - 1, t, aj, 1, z, 1);
  }
  s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);
  ynorm = s * ynorm;
  return anorm != 0.0 ? ynorm / anorm : 0.0;
}

// Solves A x = b with the factor R from Dpoco or Dpofa: R'y = b by inner products, then
// R x = y by columns (LINPACK DPOSL). b is overwritten by x. Backward stable: tests hold
// ||A x - b||_1 / (n ||A||_1 ||x||_1 eps) < 30. A zero diagonal in R divides by zero
// (Dpofa never leaves one).
void Linpack::Dposl(double * const a, int lda, int n, double * const b) {
  for (int k = 1; k <= n; ++k) {
    double * const ak = At(a, lda, 1, k);
    const double t = Blas1::DDot(k - 1, ak, 1, b, 1);
    b[k - 1] = (b[k - 1] - t) / ak[k - 1];
  }
  for (int k = n; k >= 1; --k) {
    double * const ak = At(a, lda, 1, k);
    b[k - 1] = b[k - 1] / ak[k - 1];
    const double t = -b[k - 1];
    Blas1::Daxpy(k - 1, t, ak, 1, b, 1);
  }
}

// Determinant and inverse of A from its factor R (LINPACK DPODI). job = 10 * d + i: d != 0
// gives det(A) = det[0] * 10^det[1] with 1 <= det[0] < 10 (det[0] = 0.0 for a zero pivot);
// i != 0 replaces the upper triangle of a by that of inv(A) = inv(R) inv(R)'. Tests: det
// within 10 n^2 eps cond(A) relative of LAPACK's (from dpotrf), ||inv(A) A - I||_1 / (n
// ||A||_1 ||inv(A)||_1 eps) < 30, both exact on the Pascal matrix. A zero pivot divides by
// zero. Intended: scaling stops at an overflowing det[0] (inf, det[1] partial).
void Linpack::Dpodi(double * const a, int lda, int n, double * const det, int job) {
  if (job / 10 != 0) {
    det[0] = 1.0;
    det[1] = 0.0;
    for (int i = 1; i <= n; ++i) {
      if (!MultiplyDet(*At(a, lda, i, i), det)) break;
    }
  }
  if (job % 10 == 0) return;

  // inv(R) in place, column by column.
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
  // inv(R) inv(R)'.
  for (int j = 1; j <= n; ++j) {
    double * const aj = At(a, lda, 1, j);
    for (int k = 1; k <= j - 1; ++k) {
      const double t = aj[k - 1];
      Blas1::Daxpy(k, t, aj, 1, At(a, lda, 1, k), 1);
    }
    const double t = aj[j - 1];
    Blas1::DScal(j, t, aj, 1);
  }
}

// --- Packed storage (upper triangle by columns: (i, j), i <= j, at ap[i + j(j-1)/2 - 1]) --

// Cholesky factor R of the positive definite A in packed form, overwriting ap (LINPACK
// DPPFA, same operations as Dpofa). Tests hold ||R'R - A||_1 / (n ||A||_1 eps) < 30.
// Returns 0, or the order k of the first leading minor that is not positive definite (a
// NaN pivot included, as in Dpofa); columns 1..k-1 then hold R and column k above the
// diagonal is overwritten.
int Linpack::Dppfa(double * const ap, int n) {
  int jj = 0;
  for (int j = 1; j <= n; ++j) {
    double s = 0.0;
    int kj = jj;
    int kk = 0;
    for (int k = 1; k <= j - 1; ++k) {
      kj = kj + 1;
      double t = ap[kj - 1] - Blas1::DDot(k - 1, ap + kk, 1, ap + jj, 1);
      kk = kk + k;
      t = t / ap[kk - 1];
      ap[kj - 1] = t;
      s = s + t * t;
    }
    jj = jj + j;
    s = ap[jj - 1] - s;
    if (!(s > 0.0)) return j;  // a NaN pivot fails too, as in LAPACK's dpotrf
    ap[jj - 1] = std::sqrt(s);
  }
  return 0;
}

// Factors the packed positive definite A as Dppfa does and estimates the reciprocal of
// its 1-norm condition number (LINPACK DPPCO; Cline, Moler, Stewart and Wilkinson 1979).
// Tests as for Dpoco: 1e-14 relative of the exact trace, a factor of 10 of LAPACK's
// dpocon and of the true 1/cond. Returns 0.0 when A is not positive definite (the
// published text leaves rcond unset): ap then holds Dppfa's partial factor and z the
// column sums of |A|.
double Linpack::Dppco(double * const ap, int n, double * const z) {
  int j1 = 1;
  for (int j = 1; j <= n; ++j) {
    z[j - 1] = Blas1::DASum(j, ap + (j1 - 1), 1);
    int ij = j1;
    j1 = j1 + j;
    for (int i = 1; i <= j - 1; ++i) {
      z[i - 1] = z[i - 1] + std::fabs(ap[ij - 1]);
      ij = ij + 1;
    }
  }
  double anorm = 0.0;
  for (int j = 1; j <= n; ++j) anorm = Blas1::D_Max(anorm, z[j - 1]);

  if (Dppfa(ap, n) != 0) return 0.0;

  // Solve R'w = e.
  double ek = 1.0;
  for (int j = 1; j <= n; ++j) z[j - 1] = 0.0;
  int kk = 0;
  for (int k = 1; k <= n; ++k) {
    kk = kk + k;
    const double akk = ap[kk - 1];
    if (z[k - 1] != 0.0) ek = Sign(ek, -z[k - 1]);
    if (!(std::fabs(ek - z[k - 1]) <= akk)) {
      const double s = akk / std::fabs(ek - z[k - 1]);
      Blas1::DScal(n, s, z, 1);
      ek = s * ek;
    }
    double wk = ek - z[k - 1];
    double wkm = -ek - z[k - 1];
    double s = std::fabs(wk);
    double sm = std::fabs(wkm);
    wk = wk / akk;
    wkm = wkm / akk;
    if (k + 1 <= n) {
      int kj = kk + k;
      for (int j = k + 1; j <= n; ++j) {
        sm = sm + std::fabs(z[j - 1] + wkm * ap[kj - 1]);
        z[j - 1] = z[j - 1] + wk * ap[kj - 1];
        s = s + std::fabs(z[j - 1]);
        kj = kj + j;
      }
      if (!(s >= sm)) {
        const double t = wkm - wk;
        wk = wkm;
        kj = kk + k;
        for (int j = k + 1; j <= n; ++j) {
          z[j - 1] = z[j - 1] + t * ap[kj - 1];
          kj = kj + j;
        }
      }
    }
    z[k - 1] = wk;
  }
  double s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);

  // Solve R y = w; kk runs back from the last diagonal.
  for (int k = n; k >= 1; --k) {
    if (!(std::fabs(z[k - 1]) <= ap[kk - 1])) {
      s = ap[kk - 1] / std::fabs(z[k - 1]);
      Blas1::DScal(n, s, z, 1);
    }
    z[k - 1] = z[k - 1] / ap[kk - 1];
    kk = kk - k;
    const double t = -z[k - 1];
    Blas1::Daxpy(k - 1, t, ap + kk, 1, z, 1);
  }
  s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);
  double ynorm = 1.0;

  // Solve R'v = y.
  for (int j = 1; j <= n; ++j) {
    z[j - 1] = z[j - 1] - Blas1::DDot(j - 1, ap + kk, 1, z, 1);
    kk = kk + j;
    if (!(std::fabs(z[j - 1]) <= ap[kk - 1])) {
      s = ap[kk - 1] / std::fabs(z[j - 1]);
      Blas1::DScal(n, s, z, 1);
      ynorm = s * ynorm;
    }
    z[j - 1] = z[j - 1] / ap[kk - 1];
  }
  s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);
  ynorm = s * ynorm;

  // Solve R z = v.
  for (int j = n; j >= 1; --j) {
    if (!(std::fabs(z[j - 1]) <= ap[kk - 1])) {
      s = ap[kk - 1] / std::fabs(z[j - 1]);
      Blas1::DScal(n, s, z, 1);
      ynorm = s * ynorm;
    }
    z[j - 1] = z[j - 1] / ap[kk - 1];
    kk = kk - j;
    const double t = -z[j - 1];
    Blas1::Daxpy(j - 1, t, ap + kk, 1, z, 1);
  }
  s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);
  ynorm = s * ynorm;
  return anorm != 0.0 ? ynorm / anorm : 0.0;
}

// Solves A x = b with the packed factor R from Dppco or Dppfa (LINPACK DPPSL); b is
// overwritten by x. Tests hold ||A x - b||_1 / (n ||A||_1 ||x||_1 eps) < 30. A zero
// diagonal in R divides by zero.
void Linpack::Dppsl(double * const ap, int n, double * const b) {
  int kk = 0;
  for (int k = 1; k <= n; ++k) {
    const double t = Blas1::DDot(k - 1, ap + kk, 1, b, 1);
    kk = kk + k;
    b[k - 1] = (b[k - 1] - t) / ap[kk - 1];
  }
  for (int k = n; k >= 1; --k) {
    b[k - 1] = b[k - 1] / ap[kk - 1];
    kk = kk - k;
    const double t = -b[k - 1];
    Blas1::Daxpy(k - 1, t, ap + kk, 1, b, 1);
  }
}

// Determinant and inverse of A from its packed factor R (LINPACK DPPDI), job as in Dpodi:
// det(A) = det[0] * 10^det[1], 1 <= det[0] < 10, and/or ap replaced by the packed upper
// triangle of inv(A). Tests as for Dpodi (determinant within 10 n^2 eps cond(A), inverse
// residual ratio < 30). Intended: scaling stops at an overflowing det[0], as in Dpodi.
void Linpack::Dppdi(double * const ap, int n, double * const det, int job) {
  if (job / 10 != 0) {
    det[0] = 1.0;
    det[1] = 0.0;
    int ii = 0;
    for (int i = 1; i <= n; ++i) {
      ii = ii + i;
      if (!MultiplyDet(ap[ii - 1], det)) break;
    }
  }
  if (job % 10 == 0) return;

  // inv(R) in place.
  int kk = 0;
  for (int k = 1; k <= n; ++k) {
    const int k1 = kk + 1;
    kk = kk + k;
    ap[kk - 1] = 1.0 / ap[kk - 1];
    double t = -ap[kk - 1];
    Blas1::DScal(k - 1, t, ap + (k1 - 1), 1);
    int j1 = kk + 1;
    int kj = kk + k;
    for (int j = k + 1; j <= n; ++j) {
      t = ap[kj - 1];
      ap[kj - 1] = 0.0;
      Blas1::Daxpy(k, t, ap + (k1 - 1), 1, ap + (j1 - 1), 1);
      j1 = j1 + j;
      kj = kj + j;
    }
  }
  // inv(R) inv(R)'.
  int jj = 0;
  for (int j = 1; j <= n; ++j) {
    const int j1 = jj + 1;
    jj = jj + j;
    int k1 = 1;
    int kj = j1;
    for (int k = 1; k <= j - 1; ++k) {
      const double t = ap[kj - 1];
      Blas1::Daxpy(k, t, ap + (j1 - 1), 1, ap + (k1 - 1), 1);
      k1 = k1 + k;
      kj = kj + 1;
    }
    const double t = ap[jj - 1];
    Blas1::DScal(j, t, ap + (j1 - 1), 1);
  }
}

// --- Band storage: m superdiagonals, A(i, j) at abd(m + 1 + i - j, j) for j - m <= i <= j --

// Cholesky factor R of the positive definite band matrix A with m superdiagonals, in
// place in the same band form (LINPACK DPBFA, the Dpofa operations restricted to the
// band). Tests hold ||R'R - A||_1 / (n ||A||_1 eps) < 30. Returns 0, or the order k of
// the first leading minor that is not positive definite (a NaN pivot included, as in
// Dpofa); columns 1..k-1 then hold R.
int Linpack::Dpbfa(double * const abd, int lda, int n, int m) {
  for (int j = 1; j <= n; ++j) {
    double s = 0.0;
    int ik = m + 1;
    int jk = Max(j - m, 1);
    const int mu = Max(m + 2 - j, 1);
    for (int k = mu; k <= m; ++k) {
      double t = *At(abd, lda, k, j) -
                 Blas1::DDot(k - mu, At(abd, lda, ik, jk), 1, At(abd, lda, mu, j), 1);
      t = t / *At(abd, lda, m + 1, jk);
      *At(abd, lda, k, j) = t;
      s = s + t * t;
      ik = ik - 1;
      jk = jk + 1;
    }
    double * const diag = At(abd, lda, m + 1, j);
    s = *diag - s;
    if (!(s > 0.0)) return j;  // a NaN pivot fails too, as in LAPACK's dpotrf
    *diag = std::sqrt(s);
  }
  return 0;
}

// Factors the positive definite band matrix as Dpbfa does and estimates the reciprocal
// of its 1-norm condition number (LINPACK DPBCO; Cline, Moler, Stewart and Wilkinson
// 1979). Tests as for Dpoco: 1e-14 relative of the exact trace, a factor of 10 of
// LAPACK's dpocon on the full matrix. Returns 0.0 when A is not positive definite (the
// published text leaves rcond unset): abd then holds Dpbfa's partial factor and z the
// column sums of |A|.
double Linpack::Dpbco(double * const abd, int lda, int n, int m, double * const z) {
  for (int j = 1; j <= n; ++j) {
    const int l = Min(j, m + 1);
    const int mu = Max(m + 2 - j, 1);
    z[j - 1] = Blas1::DASum(l, At(abd, lda, mu, j), 1);
    int k = j - l;
    for (int i = mu; i <= m; ++i) {
      k = k + 1;
      z[k - 1] = z[k - 1] + std::fabs(*At(abd, lda, i, j));
    }
  }
  double anorm = 0.0;
  for (int j = 1; j <= n; ++j) anorm = Blas1::D_Max(anorm, z[j - 1]);

  if (Dpbfa(abd, lda, n, m) != 0) return 0.0;

  // Solve R'w = e.
  double ek = 1.0;
  for (int j = 1; j <= n; ++j) z[j - 1] = 0.0;
  for (int k = 1; k <= n; ++k) {
    const double akk = *At(abd, lda, m + 1, k);
    if (z[k - 1] != 0.0) ek = Sign(ek, -z[k - 1]);
    if (!(std::fabs(ek - z[k - 1]) <= akk)) {
      const double s = akk / std::fabs(ek - z[k - 1]);
      Blas1::DScal(n, s, z, 1);
      ek = s * ek;
    }
    double wk = ek - z[k - 1];
    double wkm = -ek - z[k - 1];
    double s = std::fabs(wk);
    double sm = std::fabs(wkm);
    wk = wk / akk;
    wkm = wkm / akk;
    const int kp1 = k + 1;
    const int j2 = Min(k + m, n);
    if (kp1 <= j2) {
      int i = m + 1;
      for (int j = kp1; j <= j2; ++j) {
        i = i - 1;
        const double aij = *At(abd, lda, i, j);
        sm = sm + std::fabs(z[j - 1] + wkm * aij);
        z[j - 1] = z[j - 1] + wk * aij;
        s = s + std::fabs(z[j - 1]);
      }
      if (!(s >= sm)) {
        const double t = wkm - wk;
        wk = wkm;
        i = m + 1;
        for (int j = kp1; j <= j2; ++j) {
          i = i - 1;
          z[j - 1] = z[j - 1] + t * *At(abd, lda, i, j);
        }
      }
    }
    z[k - 1] = wk;
  }
  double s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);

  // Solve R y = w.
  for (int k = n; k >= 1; --k) {
    const double akk = *At(abd, lda, m + 1, k);
    if (!(std::fabs(z[k - 1]) <= akk)) {
      s = akk / std::fabs(z[k - 1]);
      Blas1::DScal(n, s, z, 1);
    }
    z[k - 1] = z[k - 1] / akk;
    const int lm = Min(k - 1, m);
    const int la = m + 1 - lm;
    const int lb = k - lm;
    const double t = -z[k - 1];
    Blas1::Daxpy(lm, t, At(abd, lda, la, k), 1, z + (lb - 1), 1);
  }
  s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);
  double ynorm = 1.0;

  // Solve R'v = y.
  for (int k = 1; k <= n; ++k) {
    const int lm = Min(k - 1, m);
    const int la = m + 1 - lm;
    const int lb = k - lm;
    z[k - 1] = z[k - 1] - Blas1::DDot(lm, At(abd, lda, la, k), 1, z + (lb - 1), 1);
    const double akk = *At(abd, lda, m + 1, k);
    if (!(std::fabs(z[k - 1]) <= akk)) {
      s = akk / std::fabs(z[k - 1]);
      Blas1::DScal(n, s, z, 1);
      ynorm = s * ynorm;
    }
    z[k - 1] = z[k - 1] / akk;
  }
  s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);
  ynorm = s * ynorm;

  // Solve R z = v.
  for (int k = n; k >= 1; --k) {
    const double akk = *At(abd, lda, m + 1, k);
    if (!(std::fabs(z[k - 1]) <= akk)) {
      s = akk / std::fabs(z[k - 1]);
      Blas1::DScal(n, s, z, 1);
      ynorm = s * ynorm;
    }
    z[k - 1] = z[k - 1] / akk;
    const int lm = Min(k - 1, m);
    const int la = m + 1 - lm;
    const int lb = k - lm;
    const double t = -z[k - 1];
    Blas1::Daxpy(lm, t, At(abd, lda, la, k), 1, z + (lb - 1), 1);
  }
  s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);
  ynorm = s * ynorm;
  return anorm != 0.0 ? ynorm / anorm : 0.0;
}

// Solves A x = b with the band factor R from Dpbco or Dpbfa (LINPACK DPBSL); b is
// overwritten by x. Tests hold ||A x - b||_1 / (n ||A||_1 ||x||_1 eps) < 30. A zero
// diagonal in R divides by zero.
void Linpack::Dpbsl(double * const abd, int lda, int n, int m, double * const b) {
  for (int k = 1; k <= n; ++k) {
    const int lm = Min(k - 1, m);
    const int la = m + 1 - lm;
    const int lb = k - lm;
    const double t = Blas1::DDot(lm, At(abd, lda, la, k), 1, b + (lb - 1), 1);
    b[k - 1] = (b[k - 1] - t) / *At(abd, lda, m + 1, k);
  }
  for (int k = n; k >= 1; --k) {
    const int lm = Min(k - 1, m);
    const int la = m + 1 - lm;
    const int lb = k - lm;
    b[k - 1] = b[k - 1] / *At(abd, lda, m + 1, k);
    const double t = -b[k - 1];
    Blas1::Daxpy(lm, t, At(abd, lda, la, k), 1, b + (lb - 1), 1);
  }
}

// Determinant of the band matrix A from its factor R (LINPACK DPBDI): det(A) = det[0] *
// 10^det[1] with 1 <= det[0] < 10, or det[0] = 0.0 at a zero pivot. Tests hold it within
// 10 n^2 eps cond(A) relative of LAPACK's (from dpotrf). Intended: scaling stops at an
// overflowing det[0], as in Dpodi.
void Linpack::Dpbdi(double * const abd, int lda, int n, int m, double * const det) {
  det[0] = 1.0;
  det[1] = 0.0;
  for (int i = 1; i <= n; ++i) {
    if (!MultiplyDet(*At(abd, lda, m + 1, i), det)) break;
  }
}

}  // namespace ZRMath_920
