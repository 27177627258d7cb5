// LINPACK routines on Cholesky factors: factorisation with diagonal pivoting, rank one
// update and downdate of R'R, and circular column shifts of R retriangularised by plane
// rotations. Source: Dongarra, Bunch, Moler and Stewart (1979), LINPACK Users' Guide,
// SIAM, chapters 8 and 10.
#include <cmath>
#include <cstddef>

#include "zrcommon920r/math/matrix/kernels.h"

namespace ZRMath_920 {

namespace {

// Element (i, j), counted from 1, of a column-major array with leading dimension ld.
inline double & El(double * const a, int ld, int i, int j) {
  return a[(static_cast<std::ptrdiff_t>(j) - 1) * ld + (i - 1)];
}
inline double * Col(double * const a, int ld, int j) {
  return a + (static_cast<std::ptrdiff_t>(j) - 1) * ld;
}

// Symmetric interchange of rows and columns k < l of the matrix whose upper triangle is
// held in a, as the published pivoting steps write it: rows 1..k-1 of both columns, the
// two diagonals, and the elements of the rows k and l right of column k (from > k).
void InterchangeUpper(double * const a, int lda, int p, int k, int l) {
  Blas1::DSwap(k - 1, Col(a, lda, k), 1, Col(a, lda, l), 1);
  double temp = El(a, lda, k, k);
  El(a, lda, k, k) = El(a, lda, l, l);
  El(a, lda, l, l) = temp;
  for (int j = k + 1; j <= p; ++j) {
    if (j < l) {
      temp = El(a, lda, k, j);
      El(a, lda, k, j) = El(a, lda, j, l);
      El(a, lda, j, l) = temp;
    } else if (j != l) {
      temp = El(a, lda, k, j);
      El(a, lda, k, j) = El(a, lda, l, j);
      El(a, lda, l, j) = temp;
    }
  }
}

}  // namespace

// Cholesky decomposition with diagonal pivoting, P'AP = R'R, of the symmetric positive
// semidefinite A in the upper triangle of a (LINPACK DCHDC, Users' Guide 1979, ch. 8).
// job 0: no pivoting. Otherwise jpvt(k) > 0 makes column k an initial column, < 0 a final
// one, 0 free; at each step the largest remaining free diagonal is the pivot. On return
// jpvt(k) is the original index of the k-th column. Returns p, or k - 1 when the k-th
// pivot is not above 0.0 (a NaN pivot included): rows 1..k-1 of a then hold R11 and
// R12 and the trailing block the unreduced Schur complement. Tests: ||R'R - P'AP||_1 /
// (p ||A||_1 eps) < 30, exact ranks of singular matrices, and jpvt and R against
// LAPACK's dpstrf.
int Linpack::Dchdc(double * const a, int lda, int p, double * const work, int * const jpvt,
                   int job) {
  int pl = 1;
  int pu = 0;
  if (job != 0) {
    // Move the initial columns to the front.
    for (int k = 1; k <= p; ++k) {
      const bool swapk = jpvt[k - 1] > 0;
      const bool negk = jpvt[k - 1] < 0;
      jpvt[k - 1] = k;
      if (negk) jpvt[k - 1] = -jpvt[k - 1];
      if (!swapk) continue;
      if (k != pl) {
        InterchangeUpper(a, lda, p, pl, k);
        jpvt[k - 1] = jpvt[pl - 1];
        jpvt[pl - 1] = k;
      }
      pl = pl + 1;
    }
    // Move the final columns to the back.
    pu = p;
    for (int kb = pl; kb <= p; ++kb) {
      const int k = p - kb + pl;
      if (jpvt[k - 1] >= 0) continue;
      jpvt[k - 1] = -jpvt[k - 1];
      if (pu != k) {
        InterchangeUpper(a, lda, p, k, pu);
        const int jt = jpvt[k - 1];
        jpvt[k - 1] = jpvt[pu - 1];
        jpvt[pu - 1] = jt;
      }
      pu = pu - 1;
    }
  }

  for (int k = 1; k <= p; ++k) {
    double maxdia = El(a, lda, k, k);
    const int kp1 = k + 1;
    int maxl = k;
    // Pivot: the largest diagonal among the free columns.
    if (k >= pl && k < pu) {
      for (int l = kp1; l <= pu; ++l) {
        if (!(El(a, lda, l, l) <= maxdia)) {  // published sense: a NaN is taken
          maxdia = El(a, lda, l, l);
          maxl = l;
        }
      }
    }
    if (!(maxdia > 0.0)) return k - 1;
    if (k != maxl) {
      Blas1::DSwap(k - 1, Col(a, lda, k), 1, Col(a, lda, maxl), 1);
      El(a, lda, maxl, maxl) = El(a, lda, k, k);
      El(a, lda, k, k) = maxdia;
      const int jp = jpvt[maxl - 1];
      jpvt[maxl - 1] = jpvt[k - 1];
      jpvt[k - 1] = jp;
    }
    // Reduction step; the pivot interchange of the rows right of k is carried along.
    work[k - 1] = std::sqrt(El(a, lda, k, k));
    El(a, lda, k, k) = work[k - 1];
    for (int j = kp1; j <= p; ++j) {
      if (k != maxl) {
        if (j < maxl) {
          const double temp = El(a, lda, k, j);
          El(a, lda, k, j) = El(a, lda, j, maxl);
          El(a, lda, j, maxl) = temp;
        } else if (j != maxl) {
          const double temp = El(a, lda, k, j);
          El(a, lda, k, j) = El(a, lda, maxl, j);
          El(a, lda, maxl, j) = temp;
        }
      }
      El(a, lda, k, j) = El(a, lda, k, j) / work[k - 1];
      work[j - 1] = El(a, lda, k, j);
      const double temp = -El(a, lda, k, j);
      Blas1::Daxpy(j - k, temp, work + k, 1, &El(a, lda, kp1, j), 1);
    }
  }
  return p;
}

// Updates the Cholesky factor R of X'X to that of X'X + x x' (an added row x) with p
// plane rotations (LINPACK DCHUD, Users' Guide 1979, ch. 10), applying them also to the
// nz columns of z (Z <- Q'[Z; y']) and updating the residual norms rho(j) to
// sqrt(rho(j)^2 + zeta(j)^2); a negative rho(j) is left alone. c and s return the
// rotations. Diagonals of R may turn negative (R'R is what is kept). Tests: ||R'R - (A +
// x x')||_1 / (p ||A||_1 eps) < 30; R'z = X'y and rho = ||y - X b|| (1e-13 relative)
// after adding a row to a least-squares problem.
void Linpack::Dchud(double * const r, int ldr, int p, double * const x, double * const z, int ldz,
                    int nz, double * const y, double * const rho, double * const c,
                    double * const s) {
  for (int j = 1; j <= p; ++j) {
    double xj = x[j - 1];
    double * const rj = Col(r, ldr, j);
    for (int i = 1; i <= j - 1; ++i) {
      const double t = c[i - 1] * rj[i - 1] + s[i - 1] * xj;
      xj = c[i - 1] * xj - s[i - 1] * rj[i - 1];
      rj[i - 1] = t;
    }
    Blas1::DRotG(&rj[j - 1], &xj, &c[j - 1], &s[j - 1]);
  }
  for (int j = 1; j <= nz; ++j) {
    double zeta = y[j - 1];
    double * const zj = Col(z, ldz, j);
    for (int i = 1; i <= p; ++i) {
      const double t = c[i - 1] * zj[i - 1] + s[i - 1] * zeta;
      zeta = c[i - 1] * zeta - s[i - 1] * zj[i - 1];
      zj[i - 1] = t;
    }
    const double azeta = std::fabs(zeta);
    if (azeta != 0.0 && !(rho[j - 1] < 0.0)) {
      const double scale = azeta + rho[j - 1];
      const double u = azeta / scale, v = rho[j - 1] / scale;
      rho[j - 1] = scale * std::sqrt(u * u + v * v);
    }
  }
}

// Downdates the Cholesky factor R of X'X to that of X'X - x x' (a removed row x) with
// plane rotations (LINPACK DCHDD, Users' Guide 1979, ch. 10), also downdating the nz
// columns of z and the residual norms rho(j) to sqrt(rho(j)^2 - zeta(j)^2). c and s
// return the rotations. Returns 0; -1 when ||inv(R') x|| >= 1 (X'X - x x' not positive
// definite: R, z and rho unchanged, s holds inv(R') x); 1 when some rho(j) < |zeta(j)|
// (that rho(j) is set to -1.0; R and z are downdated). Tests: ||R'R - (A - x x')||_1 /
// (p ||A||_1 eps) < 30 for well-conditioned results; R'z and rho as for Dchud.
int Linpack::Dchdd(double * const r, int ldr, int p, double * const x, double * const z, int ldz,
                   int nz, double * const y, double * const rho, double * const c,
                   double * const s) {
  // Intended: p < 1 returns 0 with nothing touched; the published code reads x(1) and
  // r(1, 1) even then.
  if (p < 1) return 0;
  // Solve R'a = x into s.
  s[0] = x[0] / r[0];
  for (int j = 2; j <= p; ++j) {
    s[j - 1] = x[j - 1] - Blas1::DDot(j - 1, Col(r, ldr, j), 1, s, 1);
    s[j - 1] = s[j - 1] / El(r, ldr, j, j);
  }
  double norm = Blas1::DNrm2(p, s, 1);
  if (!(norm < 1.0)) return -1;
  double alpha = std::sqrt(1.0 - norm * norm);

  // The rotations, from the last row up.
  for (int ii = 1; ii <= p; ++ii) {
    const int i = p - ii + 1;
    const double scale = alpha + std::fabs(s[i - 1]);
    const double a = alpha / scale;
    const double b = s[i - 1] / scale;
    norm = std::sqrt(a * a + b * b);
    c[i - 1] = a / norm;
    s[i - 1] = b / norm;
    alpha = scale * norm;
  }
  // Apply them to R.
  for (int j = 1; j <= p; ++j) {
    double * const rj = Col(r, ldr, j);
    double xx = 0.0;
    for (int ii = 1; ii <= j; ++ii) {
      const int i = j - ii + 1;
      const double t = c[i - 1] * xx + s[i - 1] * rj[i - 1];
      rj[i - 1] = c[i - 1] * rj[i - 1] - s[i - 1] * xx;
      xx = t;
    }
  }
  // Downdate z and rho.
  int info = 0;
  for (int j = 1; j <= nz; ++j) {
    double zeta = y[j - 1];
    double * const zj = Col(z, ldz, j);
    for (int i = 1; i <= p; ++i) {
      zj[i - 1] = (zj[i - 1] - s[i - 1] * zeta) / c[i - 1];
      zeta = c[i - 1] * zeta - s[i - 1] * zj[i - 1];
    }
    const double azeta = std::fabs(zeta);
    if (!(azeta <= rho[j - 1])) {
      info = 1;
      rho[j - 1] = -1.0;
    } else {
      const double q = azeta / rho[j - 1];
      rho[j - 1] = rho[j - 1] * std::sqrt(1.0 - q * q);
    }
  }
  return info;
}

// Permutes columns k..l of R circularly and retriangularises it with plane rotations, so
// that R'R becomes P'AP (LINPACK DCHEX, Users' Guide 1979, ch. 10). job 2: left shift
// (the columns in order k+1..l, k); any other job: right shift (l, k..l-1). Needs 1 <= k
// < l <= p. The rotations also apply to the nz columns of z, and c, s return them (l - k
// of each). Tests: ||R'R - P'AP||_1 / (p ||A||_1 eps) < 30 for both shifts, and R'z kept
// as P'(R'z) to 30 p ||R||_1 ||z||_1 eps.
void Linpack::Dchex(double * const r, int ldr, int p, int k, int l, double * const z, int ldz,
                    int nz, double * const c, double * const s, int job) {
  const int km1 = k - 1;
  const int kp1 = k + 1;
  const int lmk = l - k;
  const int lm1 = l - 1;

  // Intended: the published computed branch falls through to the right shift for any job
  // other than 1 or 2.
  if (job != 2) {
    // Right circular shift: reorder the columns, keeping column l reversed in s.
    for (int i = 1; i <= l; ++i) s[i - 1] = El(r, ldr, l - i + 1, l);
    for (int jj = k; jj <= lm1; ++jj) {
      const int j = lm1 - jj + k;
      for (int i = 1; i <= j; ++i) El(r, ldr, i, j + 1) = El(r, ldr, i, j);
      El(r, ldr, j + 1, j + 1) = 0.0;
    }
    for (int i = 1; i <= km1; ++i) El(r, ldr, i, k) = s[l - i];
    // The rotations that zero rows l..k+1 of the new column k.
    double t = s[0];
    for (int i = 1; i <= lmk; ++i) {
      Blas1::DRotG(&s[i], &t, &c[i - 1], &s[i - 1]);
      t = s[i];
    }
    El(r, ldr, k, k) = t;
    for (int j = kp1; j <= p; ++j) {
      const int il = Blas1::I_Max(1, l - j + 1);
      for (int ii = il; ii <= lmk; ++ii) {
        const int i = l - ii;
        t = c[ii - 1] * El(r, ldr, i, j) + s[ii - 1] * El(r, ldr, i + 1, j);
        El(r, ldr, i + 1, j) = c[ii - 1] * El(r, ldr, i + 1, j) - s[ii - 1] * El(r, ldr, i, j);
        El(r, ldr, i, j) = t;
      }
    }
    for (int j = 1; j <= nz; ++j) {
      for (int ii = 1; ii <= lmk; ++ii) {
        const int i = l - ii;
        t = c[ii - 1] * El(z, ldz, i, j) + s[ii - 1] * El(z, ldz, i + 1, j);
        El(z, ldz, i + 1, j) = c[ii - 1] * El(z, ldz, i + 1, j) - s[ii - 1] * El(z, ldz, i, j);
        El(z, ldz, i, j) = t;
      }
    }
    return;
  }

  // Left circular shift: column k goes to s(lmk+1..l), the subdiagonal that each shifted
  // column acquires to s(1..lmk).
  for (int i = 1; i <= k; ++i) s[lmk + i - 1] = El(r, ldr, i, k);
  for (int j = k; j <= lm1; ++j) {
    for (int i = 1; i <= j; ++i) El(r, ldr, i, j) = El(r, ldr, i, j + 1);
    s[j - km1 - 1] = El(r, ldr, j + 1, j + 1);
  }
  for (int i = 1; i <= k; ++i) El(r, ldr, i, l) = s[lmk + i - 1];
  for (int i = kp1; i <= l; ++i) El(r, ldr, i, l) = 0.0;
  // Reduction: apply the earlier rotations to column j, then zero its subdiagonal.
  for (int j = k; j <= p; ++j) {
    if (j != k) {
      const int iu = Blas1::I_Min(j - 1, lm1);
      for (int i = k; i <= iu; ++i) {
        const int ii = i - k + 1;
        const double t = c[ii - 1] * El(r, ldr, i, j) + s[ii - 1] * El(r, ldr, i + 1, j);
        El(r, ldr, i + 1, j) = c[ii - 1] * El(r, ldr, i + 1, j) - s[ii - 1] * El(r, ldr, i, j);
        El(r, ldr, i, j) = t;
      }
    }
    if (j < l) {
      const int jj = j - k + 1;
      double t = s[jj - 1];
      Blas1::DRotG(&El(r, ldr, j, j), &t, &c[jj - 1], &s[jj - 1]);
    }
  }
  for (int j = 1; j <= nz; ++j) {
    for (int i = k; i <= lm1; ++i) {
      const int ii = i - km1;
      const double t = c[ii - 1] * El(z, ldz, i, j) + s[ii - 1] * El(z, ldz, i + 1, j);
      El(z, ldz, i + 1, j) = c[ii - 1] * El(z, ldz, i + 1, j) - s[ii - 1] * El(z, ldz, i, j);
      El(z, ldz, i, j) = t;
    }
  }
}

}  // namespace ZRMath_920
