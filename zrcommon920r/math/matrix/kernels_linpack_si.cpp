// LINPACK routines for symmetric indefinite matrices in full and packed storage: the
// Bunch-Kaufman factorisation A = U D U' (D with 1 x 1 and 2 x 2 diagonal blocks, U a product
// of unit upper triangular and permutation matrices), condition estimate, solve, inertia,
// determinant and inverse. Source: Dongarra, Bunch, Moler and Stewart (1979), LINPACK Users'
// Guide, SIAM, chapter 5; Bunch and Kaufman (1977), Some stable methods for calculating
// inertia and solving symmetric linear systems, Mathematics of Computation 31, 163-179.
#include <cmath>
#include <cstddef>
#include <cstdlib>

#include "zrcommon920r/math/matrix/detail/linpack_util.h"
#include "zrcommon920r/math/matrix/kernels.h"

namespace ZRMath_920 {

namespace {

using namespace linpack_detail;

// Column-major array with leading dimension ld, indexed (i, j) from 1 as the published text.
class FullView {
 public:
  FullView(double * const a, int ld) : fa(a), fnLd(ld) {}
  double & operator()(int i, int j) const { return *Ptr(i, j); }
  double * Ptr(int i, int j) const {
    return fa + (static_cast<std::ptrdiff_t>(j) - 1) * fnLd + (i - 1);
  }

 private:
  double * fa;
  int fnLd;
};

// Offset of packed column k (k counted from 1): element (i, k), i <= k, is ap[Col(k) + i - 1].
inline std::ptrdiff_t Col(int k) {
  return static_cast<std::ptrdiff_t>(k) * (k - 1) / 2;
}

inline void Swap(double & x, double & y) {
  const double t = x;
  x = y;
  y = t;
}

// Bunch-Kaufman pivot threshold: (1 + sqrt(17)) / 8 balances the growth of 1 x 1 and
// 2 x 2 steps; computed at run time as published.
inline double PivotAlpha() {
  return (1.0 + std::sqrt(17.0)) / 8.0;
}

// Solves [[a11, s], [s, a22]] (zkm1, zk)' = (zkm1, zk)' in place for a 2 x 2 pivot block,
// every entry first divided by the off-diagonal s as published.
inline void Solve2x2(double a22, double a11, double s, double & zk, double & zkm1) {
  const double ak = a22 / s;
  const double akm1 = a11 / s;
  const double bk = zk / s;
  const double bkm1 = zkm1 / s;
  const double denom = ak * akm1 - 1.0;
  zk = (akm1 * bk - bkm1) / denom;
  zkm1 = (ak * bkm1 - bk) / denom;
}

// Multiplies det[0] by d and brings it back into [1, 10) by powers of ten counted in
// det[1]. Intended: the rescaling is skipped when det[0] is infinite or NaN (a pivot near
// the overflow threshold, or a NaN in the matrix), where the published loops never end.
void MultiplyDet(double d, double * const det) {
  det[0] = d * det[0];
  NormaliseDet(det);
}

// Counts one diagonal value of D into the inertia (positive, negative, zero).
void CountInertia(double d, int * const inert) {
  if (d > 0.0) inert[0] = inert[0] + 1;
  if (d < 0.0) inert[1] = inert[1] + 1;
  if (d == 0.0) inert[2] = inert[2] + 1;
}

// Which parts of job = abc the ...di routines compute: a inertia, b determinant, c inverse.
struct DiJob {
  bool noInv, noDet, noErt;
  explicit DiJob(int job)
      : noInv(job % 10 == 0), noDet(job % 100 / 10 == 0), noErt(job % 1000 / 100 == 0) {}
};

}  // namespace

// --- Full storage ---------------------------------------------------------------------

// Bunch-Kaufman factorisation A = U D U' of the symmetric A held in the upper triangle of a
// (LINPACK DSIFA, Users' Guide 1979, ch. 5; Bunch and Kaufman 1977, Math. Comp. 31,
// 163-179), diagonal pivoting with alpha = (1 + sqrt(17)) / 8; element growth at most
// 2.57^(n-1). Tests hold Dsisl's ||A x - b||_1 / (n ||A||_1 ||x||_1 eps) < 30. a returns D
// and the multipliers, kpvt the interchanges (kpvt(k) = kpvt(k-1) < 0 for a 2 x 2 block);
// the strict lower triangle is not touched. Returns 0, or the smallest k whose pivot is an
// exact zero (the loop runs from n down): the factor is then complete but singular, and
// Dsisl and Dsidi would divide by zero.
int Linpack::Dsifa(double * const a, int lda, int n, int * const kpvt) {
  const FullView at(a, lda);
  const double alpha = PivotAlpha();
  int info = 0;
  int k = n;
  while (k > 0) {
    if (k == 1) {
      kpvt[0] = 1;
      if (at(1, 1) == 0.0) info = 1;
      break;
    }
    // Choose the pivot block size kstep and whether an interchange is needed.
    const int km1 = k - 1;
    const double absakk = std::fabs(at(k, k));
    const int imax = Blas1::IDAMax(k - 1, at.Ptr(1, k), 1);
    const double colmax = std::fabs(at(imax, k));
    int kstep = 1;
    bool swap = false;
    if (absakk < alpha * colmax) {
      // Largest off-diagonal element in row imax.
      double rowmax = 0.0;
      for (int j = imax + 1; j <= k; ++j) rowmax = std::fmax(rowmax, std::fabs(at(imax, j)));
      if (imax != 1) {
        const int jmax = Blas1::IDAMax(imax - 1, at.Ptr(1, imax), 1);
        rowmax = std::fmax(rowmax, std::fabs(at(jmax, imax)));
      }
      if (std::fabs(at(imax, imax)) >= alpha * rowmax) {
        kstep = 1;
        swap = true;
      } else if (absakk >= alpha * colmax * (colmax / rowmax)) {
        kstep = 1;
        swap = false;
      } else {
        kstep = 2;
        swap = imax != km1;
      }
    }
    if (std::fmax(absakk, colmax) == 0.0) {
      // Column k is zero: record it and go on.
      kpvt[k - 1] = k;
      info = k;
    } else if (kstep == 1) {
      if (swap) {
        Blas1::DSwap(imax, at.Ptr(1, imax), 1, at.Ptr(1, k), 1);
        for (int jj = imax; jj <= k; ++jj) {
          const int j = k + imax - jj;
          Swap(at(j, k), at(imax, j));
        }
      }
      for (int jj = 1; jj <= km1; ++jj) {
        const int j = k - jj;
        const double mulk = -at(j, k) / at(k, k);
        Blas1::Daxpy(j, mulk, at.Ptr(1, k), 1, at.Ptr(1, j), 1);
        at(j, k) = mulk;
      }
      kpvt[k - 1] = swap ? imax : k;
    } else {
      if (swap) {
        Blas1::DSwap(imax, at.Ptr(1, imax), 1, at.Ptr(1, k - 1), 1);
        for (int jj = imax; jj <= km1; ++jj) {
          const int j = km1 + imax - jj;
          Swap(at(j, k - 1), at(imax, j));
        }
        Swap(at(k - 1, k), at(imax, k));
      }
      const int km2 = k - 2;
      if (km2 != 0) {
        const double ak = at(k, k) / at(k - 1, k);
        const double akm1 = at(k - 1, k - 1) / at(k - 1, k);
        const double denom = 1.0 - ak * akm1;
        for (int jj = 1; jj <= km2; ++jj) {
          const int j = km1 - jj;
          const double bk = at(j, k) / at(k - 1, k);
          const double bkm1 = at(j, k - 1) / at(k - 1, k);
          const double mulk = (akm1 * bk - bkm1) / denom;
          const double mulkm1 = (ak * bkm1 - bk) / denom;
          Blas1::Daxpy(j, mulk, at.Ptr(1, k), 1, at.Ptr(1, j), 1);
          Blas1::Daxpy(j, mulkm1, at.Ptr(1, k - 1), 1, at.Ptr(1, j), 1);
          at(j, k) = mulk;
          at(j, k - 1) = mulkm1;
        }
      }
      kpvt[k - 1] = swap ? -imax : 1 - k;
      kpvt[k - 2] = kpvt[k - 1];
    }
    k -= kstep;
  }
  return info;
}

// Factors the symmetric A as Dsifa does and estimates the reciprocal of its 1-norm
// condition number (LINPACK DSICO, Users' Guide 1979, ch. 5; estimator of Cline, Moler,
// Stewart and Wilkinson 1979, SIAM J. Numer. Anal. 16, 368-375). Tests hold the estimate
// within a factor of 10 of LAPACK's dgecon and of the true 1/cond. Returns 0.0 for a zero
// matrix; Dsifa's info is not returned (as published), and an exactly zero pivot usually
// gives 0.0. a and kpvt return the factor; z an approximate null vector when A is
// close to singular.
double Linpack::Dsico(double * const a, int lda, int n, int * const kpvt, double * const z) {
  const FullView at(a, lda);
  // 1-norm of A from its upper triangle.
  for (int j = 1; j <= n; ++j) {
    z[j - 1] = Blas1::DASum(j, at.Ptr(1, j), 1);
    for (int i = 1; i <= j - 1; ++i) z[i - 1] = z[i - 1] + std::fabs(at(i, j));
  }
  double anorm = 0.0;
  for (int j = 1; j <= n; ++j) anorm = std::fmax(anorm, z[j - 1]);

  Dsifa(a, lda, n, kpvt);

  // rcond = 1 / (norm(A) * estimate of norm(inverse(A))), the estimate norm(z) / norm(y)
  // where A z = y and A y = e, e chosen for maximum local growth in U D w = e; the vectors
  // are rescaled often to avoid overflow.
  // Solve U D w = e.
  double ek = 1.0;
  for (int j = 1; j <= n; ++j) z[j - 1] = 0.0;
  int k = n;
  while (k != 0) {
    const int ks = kpvt[k - 1] < 0 ? 2 : 1;
    const int kp = std::abs(kpvt[k - 1]);
    const int kps = k + 1 - ks;
    if (kp != kps) Swap(z[kps - 1], z[kp - 1]);
    if (z[k - 1] != 0.0) ek = Sign(ek, z[k - 1]);
    z[k - 1] = z[k - 1] + ek;
    Blas1::Daxpy(k - ks, z[k - 1], at.Ptr(1, k), 1, z, 1);
    if (ks == 2) {
      if (z[k - 2] != 0.0) ek = Sign(ek, z[k - 2]);
      z[k - 2] = z[k - 2] + ek;
      Blas1::Daxpy(k - ks, z[k - 2], at.Ptr(1, k - 1), 1, z, 1);
      Solve2x2(at(k, k), at(k - 1, k - 1), at(k - 1, k), z[k - 1], z[k - 2]);
    } else {
      if (std::fabs(z[k - 1]) > std::fabs(at(k, k))) {
        const double s = std::fabs(at(k, k)) / std::fabs(z[k - 1]);
        Blas1::DScal(n, s, z, 1);
        ek = s * ek;
      }
      if (at(k, k) != 0.0) z[k - 1] = z[k - 1] / at(k, k);
      if (at(k, k) == 0.0) z[k - 1] = 1.0;
    }
    k -= ks;
  }
  double s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);

  // Solve trans(U) y = w.
  k = 1;
  while (k <= n) {
    const int ks = kpvt[k - 1] < 0 ? 2 : 1;
    if (k != 1) {
      z[k - 1] = z[k - 1] + Blas1::DDot(k - 1, at.Ptr(1, k), 1, z, 1);
      if (ks == 2) z[k] = z[k] + Blas1::DDot(k - 1, at.Ptr(1, k + 1), 1, z, 1);
      const int kp = std::abs(kpvt[k - 1]);
      if (kp != k) Swap(z[k - 1], z[kp - 1]);
    }
    k += ks;
  }
  s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);
  double ynorm = 1.0;

  // Solve U D v = y.
  k = n;
  while (k != 0) {
    const int ks = kpvt[k - 1] < 0 ? 2 : 1;
    if (k != ks) {
      const int kp = std::abs(kpvt[k - 1]);
      const int kps = k + 1 - ks;
      if (kp != kps) Swap(z[kps - 1], z[kp - 1]);
      Blas1::Daxpy(k - ks, z[k - 1], at.Ptr(1, k), 1, z, 1);
      if (ks == 2) Blas1::Daxpy(k - ks, z[k - 2], at.Ptr(1, k - 1), 1, z, 1);
    }
    if (ks == 2) {
      Solve2x2(at(k, k), at(k - 1, k - 1), at(k - 1, k), z[k - 1], z[k - 2]);
    } else {
      if (std::fabs(z[k - 1]) > std::fabs(at(k, k))) {
        s = std::fabs(at(k, k)) / std::fabs(z[k - 1]);
        Blas1::DScal(n, s, z, 1);
        ynorm = s * ynorm;
      }
      if (at(k, k) != 0.0) z[k - 1] = z[k - 1] / at(k, k);
      if (at(k, k) == 0.0) z[k - 1] = 1.0;
    }
    k -= ks;
  }
  s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);
  ynorm = s * ynorm;

  // Solve trans(U) z = v.
  k = 1;
  while (k <= n) {
    const int ks = kpvt[k - 1] < 0 ? 2 : 1;
    if (k != 1) {
      z[k - 1] = z[k - 1] + Blas1::DDot(k - 1, at.Ptr(1, k), 1, z, 1);
      if (ks == 2) z[k] = z[k] + Blas1::DDot(k - 1, at.Ptr(1, k + 1), 1, z, 1);
      const int kp = std::abs(kpvt[k - 1]);
      if (kp != k) Swap(z[k - 1], z[kp - 1]);
    }
    k += ks;
  }
  // Make norm(z) = 1.
  s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);
  ynorm = s * ynorm;

  return anorm != 0.0 ? ynorm / anorm : 0.0;
}

// Solves A x = b with the factor from Dsico or Dsifa (LINPACK DSISL, Users' Guide 1979,
// ch. 5): b is overwritten by x. Backward stable: tests hold ||A x - b||_1 /
// (n ||A||_1 ||x||_1 eps) < 30 and agreement with LAPACK's dsptrs. The factor must be
// non-singular (Dsifa info 0); a zero pivot divides by zero and b then holds infinities
// or NaNs. a and kpvt are not changed.
void Linpack::Dsisl(double * const a, int lda, int n, int * const kpvt, double * const b) {
  const FullView at(a, lda);
  // Backward: apply the transformations and inverse(D) to b.
  int k = n;
  while (k != 0) {
    if (kpvt[k - 1] >= 0) {
      if (k != 1) {
        const int kp = kpvt[k - 1];
        if (kp != k) Swap(b[k - 1], b[kp - 1]);
        Blas1::Daxpy(k - 1, b[k - 1], at.Ptr(1, k), 1, b, 1);
      }
      b[k - 1] = b[k - 1] / at(k, k);
      k -= 1;
    } else {
      if (k != 2) {
        const int kp = std::abs(kpvt[k - 1]);
        if (kp != k - 1) Swap(b[k - 2], b[kp - 1]);
        Blas1::Daxpy(k - 2, b[k - 1], at.Ptr(1, k), 1, b, 1);
        Blas1::Daxpy(k - 2, b[k - 2], at.Ptr(1, k - 1), 1, b, 1);
      }
      Solve2x2(at(k, k), at(k - 1, k - 1), at(k - 1, k), b[k - 1], b[k - 2]);
      k -= 2;
    }
  }
  // Forward: apply the transformations.
  k = 1;
  while (k <= n) {
    if (kpvt[k - 1] >= 0) {
      if (k != 1) {
        b[k - 1] = b[k - 1] + Blas1::DDot(k - 1, at.Ptr(1, k), 1, b, 1);
        const int kp = kpvt[k - 1];
        if (kp != k) Swap(b[k - 1], b[kp - 1]);
      }
      k += 1;
    } else {
      if (k != 1) {
        b[k - 1] = b[k - 1] + Blas1::DDot(k - 1, at.Ptr(1, k), 1, b, 1);
        b[k] = b[k] + Blas1::DDot(k - 1, at.Ptr(1, k + 1), 1, b, 1);
        const int kp = std::abs(kpvt[k - 1]);
        if (kp != k) Swap(b[k - 1], b[kp - 1]);
      }
      k += 2;
    }
  }
}

// Inertia, determinant and inverse of A from the factor of Dsico or Dsifa (LINPACK DSIDI,
// Users' Guide 1979, ch. 5). job = abc: a != 0 gives inert = (positive, negative, zero)
// eigenvalue counts, from the signs of D (Sylvester's law); b != 0 gives det(A) =
// det[0] * 10^det[1], 1 <= |det[0]| < 10 or det[0] == 0.0; c != 0 overwrites the upper
// triangle of a with that of inverse(A) (work: n scratch values). Tests: inverse(A) A = I
// to ||.||_1 / (n ||A||_1 ||inverse(A)||_1 eps) < 30; det within 30 n eps / rcond relative
// of LAPACK's LU. Outputs not asked for are untouched. The inverse needs a non-singular
// factor (else it divides by zero); det[0] is left infinite or NaN if the product overflows.
void Linpack::Dsidi(double * const a, int lda, int n, int * const kpvt, double * const det,
                    int * const inert, double * const work, int job) {
  const FullView at(a, lda);
  const DiJob what(job);
  if (!(what.noDet && what.noErt)) {
    if (!what.noErt) inert[0] = inert[1] = inert[2] = 0;
    if (!what.noDet) {
      det[0] = 1.0;
      det[1] = 0.0;
    }
    // A 2 x 2 block [[d, s], [s, c]] counts as the pair (d / t * c - t, t), t = |s|, whose
    // product is its determinant: no overflow or underflow. t != 0 flags its second row.
    double t = 0.0;
    for (int k = 1; k <= n; ++k) {
      double d = at(k, k);
      if (kpvt[k - 1] <= 0) {
        if (t == 0.0) {
          t = std::fabs(at(k, k + 1));
          d = (d / t) * at(k + 1, k + 1) - t;
        } else {
          d = t;
          t = 0.0;
        }
      }
      if (!what.noErt) CountInertia(d, inert);
      if (!what.noDet) MultiplyDet(d, det);
    }
  }
  if (what.noInv) return;

  int k = 1;
  while (k <= n) {
    const int km1 = k - 1;
    int kstep;
    if (kpvt[k - 1] >= 0) {
      at(k, k) = 1.0 / at(k, k);
      if (km1 >= 1) {
        Blas1::DCopy(km1, at.Ptr(1, k), 1, work, 1);
        for (int j = 1; j <= km1; ++j) {
          at(j, k) = Blas1::DDot(j, at.Ptr(1, j), 1, work, 1);
          Blas1::Daxpy(j - 1, work[j - 1], at.Ptr(1, j), 1, at.Ptr(1, k), 1);
        }
        at(k, k) = at(k, k) + Blas1::DDot(km1, work, 1, at.Ptr(1, k), 1);
      }
      kstep = 1;
    } else {
      const double t = std::fabs(at(k, k + 1));
      const double ak = at(k, k) / t;
      const double akp1 = at(k + 1, k + 1) / t;
      const double akkp1 = at(k, k + 1) / t;
      const double d = t * (ak * akp1 - 1.0);
      at(k, k) = akp1 / d;
      at(k + 1, k + 1) = ak / d;
      at(k, k + 1) = -akkp1 / d;
      if (km1 >= 1) {
        Blas1::DCopy(km1, at.Ptr(1, k + 1), 1, work, 1);
        for (int j = 1; j <= km1; ++j) {
          at(j, k + 1) = Blas1::DDot(j, at.Ptr(1, j), 1, work, 1);
          Blas1::Daxpy(j - 1, work[j - 1], at.Ptr(1, j), 1, at.Ptr(1, k + 1), 1);
        }
        at(k + 1, k + 1) = at(k + 1, k + 1) + Blas1::DDot(km1, work, 1, at.Ptr(1, k + 1), 1);
        at(k, k + 1) = at(k, k + 1) + Blas1::DDot(km1, at.Ptr(1, k), 1, at.Ptr(1, k + 1), 1);
        Blas1::DCopy(km1, at.Ptr(1, k), 1, work, 1);
        for (int j = 1; j <= km1; ++j) {
          at(j, k) = Blas1::DDot(j, at.Ptr(1, j), 1, work, 1);
          Blas1::Daxpy(j - 1, work[j - 1], at.Ptr(1, j), 1, at.Ptr(1, k), 1);
        }
        at(k, k) = at(k, k) + Blas1::DDot(km1, work, 1, at.Ptr(1, k), 1);
      }
      kstep = 2;
    }
    // Undo the interchange of this step.
    const int ks = std::abs(kpvt[k - 1]);
    if (ks != k) {
      Blas1::DSwap(ks, at.Ptr(1, ks), 1, at.Ptr(1, k), 1);
      for (int jb = ks; jb <= k; ++jb) {
        const int j = k + ks - jb;
        Swap(at(j, k), at(ks, j));
      }
      if (kstep != 1) Swap(at(ks, k + 1), at(k, k + 1));
    }
    k += kstep;
  }
}

// --- Packed storage (upper triangle by columns) ---------------------------------------

// Bunch-Kaufman factorisation A = U D U' of the symmetric A packed by columns of its upper
// triangle, as Dsifa does on full storage (LINPACK DSPFA, Users' Guide 1979, ch. 5; Bunch
// and Kaufman 1977, Math. Comp. 31, 163-179), alpha = (1 + sqrt(17)) / 8. Backward stable:
// tests hold ||A x - b||_1 / (n ||A||_1 ||x||_1 eps) < 30 through Dspsl. ap returns D and
// the multipliers, kpvt the interchanges (kpvt(k) = kpvt(k-1) < 0 for a 2 x 2 block).
// Returns 0, or the smallest k whose pivot is an exact zero (the loop runs from n down):
// the factor is then complete but singular, and Dspsl and Dspdi would divide by zero.
int Linpack::Dspfa(double * const ap, int n, int * const kpvt) {
  const double alpha = PivotAlpha();
  int info = 0;
  int k = n;
  std::ptrdiff_t ik = Col(n);  // offset of column k
  while (k > 0) {
    if (k == 1) {
      kpvt[0] = 1;
      if (ap[0] == 0.0) info = 1;
      break;
    }
    // Choose the pivot block size kstep and whether an interchange is needed.
    const int km1 = k - 1;
    const std::ptrdiff_t kk = ik + k;
    const double absakk = std::fabs(ap[kk - 1]);
    const int imax = Blas1::IDAMax(k - 1, ap + ik, 1);
    const std::ptrdiff_t imk = ik + imax;
    const double colmax = std::fabs(ap[imk - 1]);
    const std::ptrdiff_t im = Col(imax);
    int kstep = 1;
    bool swap = false;
    if (absakk < alpha * colmax) {
      // Largest off-diagonal element in row imax.
      double rowmax = 0.0;
      std::ptrdiff_t imj = im + 2 * static_cast<std::ptrdiff_t>(imax);
      for (int j = imax + 1; j <= k; ++j) {
        rowmax = std::fmax(rowmax, std::fabs(ap[imj - 1]));
        imj += j;
      }
      if (imax != 1) {
        const int jmax = Blas1::IDAMax(imax - 1, ap + im, 1);
        rowmax = std::fmax(rowmax, std::fabs(ap[im + jmax - 1]));
      }
      if (std::fabs(ap[im + imax - 1]) >= alpha * rowmax) {
        kstep = 1;
        swap = true;
      } else if (absakk >= alpha * colmax * (colmax / rowmax)) {
        kstep = 1;
        swap = false;
      } else {
        kstep = 2;
        swap = imax != km1;
      }
    }
    if (std::fmax(absakk, colmax) == 0.0) {
      // Column k is zero: record it and go on.
      kpvt[k - 1] = k;
      info = k;
    } else if (kstep == 1) {
      if (swap) {
        Blas1::DSwap(imax, ap + im, 1, ap + ik, 1);
        std::ptrdiff_t imj = ik + imax;
        for (int jj = imax; jj <= k; ++jj) {
          const int j = k + imax - jj;
          Swap(ap[ik + j - 1], ap[imj - 1]);
          imj -= j - 1;
        }
      }
      std::ptrdiff_t ij = ik - (k - 1);  // offset of column j
      for (int jj = 1; jj <= km1; ++jj) {
        const int j = k - jj;
        const std::ptrdiff_t jk = ik + j;
        const double mulk = -ap[jk - 1] / ap[kk - 1];
        Blas1::Daxpy(j, mulk, ap + ik, 1, ap + ij, 1);
        ap[jk - 1] = mulk;
        ij -= j - 1;
      }
      kpvt[k - 1] = swap ? imax : k;
    } else {
      const std::ptrdiff_t km1k = ik + k - 1;
      const std::ptrdiff_t ikm1 = ik - (k - 1);
      if (swap) {
        Blas1::DSwap(imax, ap + im, 1, ap + ikm1, 1);
        std::ptrdiff_t imj = ikm1 + imax;
        for (int jj = imax; jj <= km1; ++jj) {
          const int j = km1 + imax - jj;
          Swap(ap[ikm1 + j - 1], ap[imj - 1]);
          imj -= j - 1;
        }
        Swap(ap[km1k - 1], ap[imk - 1]);
      }
      const int km2 = k - 2;
      if (km2 != 0) {
        const double ak = ap[kk - 1] / ap[km1k - 1];
        const std::ptrdiff_t km1km1 = ikm1 + k - 1;
        const double akm1 = ap[km1km1 - 1] / ap[km1k - 1];
        const double denom = 1.0 - ak * akm1;
        std::ptrdiff_t ij = ik - (k - 1) - (k - 2);  // offset of column j
        for (int jj = 1; jj <= km2; ++jj) {
          const int j = km1 - jj;
          const std::ptrdiff_t jk = ik + j;
          const double bk = ap[jk - 1] / ap[km1k - 1];
          const std::ptrdiff_t jkm1 = ikm1 + j;
          const double bkm1 = ap[jkm1 - 1] / ap[km1k - 1];
          const double mulk = (akm1 * bk - bkm1) / denom;
          const double mulkm1 = (ak * bkm1 - bk) / denom;
          Blas1::Daxpy(j, mulk, ap + ik, 1, ap + ij, 1);
          Blas1::Daxpy(j, mulkm1, ap + ikm1, 1, ap + ij, 1);
          ap[jk - 1] = mulk;
          ap[jkm1 - 1] = mulkm1;
          ij -= j - 1;
        }
      }
      kpvt[k - 1] = swap ? -imax : 1 - k;
      kpvt[k - 2] = kpvt[k - 1];
    }
    ik -= k - 1;
    if (kstep == 2) ik -= k - 2;
    k -= kstep;
  }
  return info;
}

// Factors the packed symmetric A as Dspfa does and estimates the reciprocal of its 1-norm
// condition number (LINPACK DSPCO, Users' Guide 1979, ch. 5; estimator of Cline, Moler,
// Stewart and Wilkinson 1979, SIAM J. Numer. Anal. 16, 368-375). Tests hold the estimate
// within a factor of 10 of LAPACK's dgecon and of the true 1/cond. Returns 0.0 for a zero
// matrix; Dspfa's info is not returned (as published), and an exactly zero pivot usually
// gives 0.0. ap and kpvt return the factor; z an approximate null vector when A is
// close to singular.
double Linpack::Dspco(double * const ap, int n, int * const kpvt, double * const z) {
  // 1-norm of A from its upper triangle.
  std::ptrdiff_t j1 = 1;
  for (int j = 1; j <= n; ++j) {
    z[j - 1] = Blas1::DASum(j, ap + j1 - 1, 1);
    std::ptrdiff_t ij = j1;
    j1 += j;
    for (int i = 1; i <= j - 1; ++i) {
      z[i - 1] = z[i - 1] + std::fabs(ap[ij - 1]);
      ++ij;
    }
  }
  double anorm = 0.0;
  for (int j = 1; j <= n; ++j) anorm = std::fmax(anorm, z[j - 1]);

  Dspfa(ap, n, kpvt);

  // rcond = 1 / (norm(A) * estimate of norm(inverse(A))), the estimate norm(z) / norm(y)
  // where A z = y and A y = e, e chosen for maximum local growth in U D w = e; the vectors
  // are rescaled often to avoid overflow.
  // Solve U D w = e.
  double ek = 1.0;
  for (int j = 1; j <= n; ++j) z[j - 1] = 0.0;
  int k = n;
  std::ptrdiff_t ik = Col(n);
  while (k != 0) {
    const std::ptrdiff_t kk = ik + k;
    const std::ptrdiff_t ikm1 = ik - (k - 1);
    const int ks = kpvt[k - 1] < 0 ? 2 : 1;
    const int kp = std::abs(kpvt[k - 1]);
    const int kps = k + 1 - ks;
    if (kp != kps) Swap(z[kps - 1], z[kp - 1]);
    if (z[k - 1] != 0.0) ek = Sign(ek, z[k - 1]);
    z[k - 1] = z[k - 1] + ek;
    Blas1::Daxpy(k - ks, z[k - 1], ap + ik, 1, z, 1);
    if (ks == 2) {
      if (z[k - 2] != 0.0) ek = Sign(ek, z[k - 2]);
      z[k - 2] = z[k - 2] + ek;
      Blas1::Daxpy(k - ks, z[k - 2], ap + ikm1, 1, z, 1);
      const std::ptrdiff_t km1k = ik + k - 1;
      const std::ptrdiff_t km1km1 = ikm1 + k - 1;
      Solve2x2(ap[kk - 1], ap[km1km1 - 1], ap[km1k - 1], z[k - 1], z[k - 2]);
    } else {
      if (std::fabs(z[k - 1]) > std::fabs(ap[kk - 1])) {
        const double s = std::fabs(ap[kk - 1]) / std::fabs(z[k - 1]);
        Blas1::DScal(n, s, z, 1);
        ek = s * ek;
      }
      if (ap[kk - 1] != 0.0) z[k - 1] = z[k - 1] / ap[kk - 1];
      if (ap[kk - 1] == 0.0) z[k - 1] = 1.0;
    }
    k -= ks;
    ik -= k;
    if (ks == 2) ik -= k + 1;
  }
  double s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);

  // Solve trans(U) y = w.
  k = 1;
  ik = 0;
  while (k <= n) {
    const int ks = kpvt[k - 1] < 0 ? 2 : 1;
    if (k != 1) {
      z[k - 1] = z[k - 1] + Blas1::DDot(k - 1, ap + ik, 1, z, 1);
      const std::ptrdiff_t ikp1 = ik + k;
      if (ks == 2) z[k] = z[k] + Blas1::DDot(k - 1, ap + ikp1, 1, z, 1);
      const int kp = std::abs(kpvt[k - 1]);
      if (kp != k) Swap(z[k - 1], z[kp - 1]);
    }
    ik += k;
    if (ks == 2) ik += k + 1;
    k += ks;
  }
  s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);
  double ynorm = 1.0;

  // Solve U D v = y.
  k = n;
  ik = Col(n);
  while (k != 0) {
    const std::ptrdiff_t kk = ik + k;
    const std::ptrdiff_t ikm1 = ik - (k - 1);
    const int ks = kpvt[k - 1] < 0 ? 2 : 1;
    if (k != ks) {
      const int kp = std::abs(kpvt[k - 1]);
      const int kps = k + 1 - ks;
      if (kp != kps) Swap(z[kps - 1], z[kp - 1]);
      Blas1::Daxpy(k - ks, z[k - 1], ap + ik, 1, z, 1);
      if (ks == 2) Blas1::Daxpy(k - ks, z[k - 2], ap + ikm1, 1, z, 1);
    }
    if (ks == 2) {
      const std::ptrdiff_t km1k = ik + k - 1;
      const std::ptrdiff_t km1km1 = ikm1 + k - 1;
      Solve2x2(ap[kk - 1], ap[km1km1 - 1], ap[km1k - 1], z[k - 1], z[k - 2]);
    } else {
      if (std::fabs(z[k - 1]) > std::fabs(ap[kk - 1])) {
        s = std::fabs(ap[kk - 1]) / std::fabs(z[k - 1]);
        Blas1::DScal(n, s, z, 1);
        ynorm = s * ynorm;
      }
      if (ap[kk - 1] != 0.0) z[k - 1] = z[k - 1] / ap[kk - 1];
      if (ap[kk - 1] == 0.0) z[k - 1] = 1.0;
    }
    k -= ks;
    ik -= k;
    if (ks == 2) ik -= k + 1;
  }
  s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);
  ynorm = s * ynorm;

  // Solve trans(U) z = v.
  k = 1;
  ik = 0;
  while (k <= n) {
    const int ks = kpvt[k - 1] < 0 ? 2 : 1;
    if (k != 1) {
      z[k - 1] = z[k - 1] + Blas1::DDot(k - 1, ap + ik, 1, z, 1);
      const std::ptrdiff_t ikp1 = ik + k;
      if (ks == 2) z[k] = z[k] + Blas1::DDot(k - 1, ap + ikp1, 1, z, 1);
      const int kp = std::abs(kpvt[k - 1]);
      if (kp != k) Swap(z[k - 1], z[kp - 1]);
    }
    ik += k;
    if (ks == 2) ik += k + 1;
    k += ks;
  }
  // Make norm(z) = 1.
  s = 1.0 / Blas1::DASum(n, z, 1);
  Blas1::DScal(n, s, z, 1);
  ynorm = s * ynorm;

  return anorm != 0.0 ? ynorm / anorm : 0.0;
}

// Solves A x = b with the packed factor from Dspco or Dspfa (LINPACK DSPSL, Users' Guide
// 1979, ch. 5): b is overwritten by x. Backward stable: tests hold ||A x - b||_1 /
// (n ||A||_1 ||x||_1 eps) < 30 and agreement with LAPACK's dsptrs. The factor must be
// non-singular (Dspfa info 0); a zero pivot divides by zero and b then holds infinities
// or NaNs. ap and kpvt are not changed.
void Linpack::Dspsl(double * const ap, int n, int * const kpvt, double * const b) {
  // Backward: apply the transformations and inverse(D) to b.
  int k = n;
  std::ptrdiff_t ik = Col(n);
  while (k != 0) {
    const std::ptrdiff_t kk = ik + k;
    if (kpvt[k - 1] >= 0) {
      if (k != 1) {
        const int kp = kpvt[k - 1];
        if (kp != k) Swap(b[k - 1], b[kp - 1]);
        Blas1::Daxpy(k - 1, b[k - 1], ap + ik, 1, b, 1);
      }
      b[k - 1] = b[k - 1] / ap[kk - 1];
      k -= 1;
      ik -= k;
    } else {
      const std::ptrdiff_t ikm1 = ik - (k - 1);
      if (k != 2) {
        const int kp = std::abs(kpvt[k - 1]);
        if (kp != k - 1) Swap(b[k - 2], b[kp - 1]);
        Blas1::Daxpy(k - 2, b[k - 1], ap + ik, 1, b, 1);
        Blas1::Daxpy(k - 2, b[k - 2], ap + ikm1, 1, b, 1);
      }
      const std::ptrdiff_t km1k = ik + k - 1;
      const std::ptrdiff_t km1km1 = ikm1 + k - 1;
      Solve2x2(ap[kk - 1], ap[km1km1 - 1], ap[km1k - 1], b[k - 1], b[k - 2]);
      k -= 2;
      ik -= (k + 1) + k;
    }
  }
  // Forward: apply the transformations.
  k = 1;
  ik = 0;
  while (k <= n) {
    if (kpvt[k - 1] >= 0) {
      if (k != 1) {
        b[k - 1] = b[k - 1] + Blas1::DDot(k - 1, ap + ik, 1, b, 1);
        const int kp = kpvt[k - 1];
        if (kp != k) Swap(b[k - 1], b[kp - 1]);
      }
      ik += k;
      k += 1;
    } else {
      if (k != 1) {
        b[k - 1] = b[k - 1] + Blas1::DDot(k - 1, ap + ik, 1, b, 1);
        const std::ptrdiff_t ikp1 = ik + k;
        b[k] = b[k] + Blas1::DDot(k - 1, ap + ikp1, 1, b, 1);
        const int kp = std::abs(kpvt[k - 1]);
        if (kp != k) Swap(b[k - 1], b[kp - 1]);
      }
      ik += k + k + 1;
      k += 2;
    }
  }
}

// Inertia, determinant and inverse of A from the packed factor of Dspco or Dspfa (LINPACK
// DSPDI, Users' Guide 1979, ch. 5). job = abc: a != 0 gives inert = (positive, negative,
// zero) eigenvalue counts, from the signs of D (Sylvester's law); b != 0 gives det(A) =
// det[0] * 10^det[1], 1 <= |det[0]| < 10 or det[0] == 0.0; c != 0 overwrites ap with the
// packed inverse(A) (work: n scratch values). Tests: inverse(A) A = I to ||.||_1 /
// (n ||A||_1 ||inverse(A)||_1 eps) < 30; det within 30 n eps / rcond relative of LAPACK's
// LU. Outputs not asked for are untouched. The inverse needs a non-singular factor (else
// it divides by zero); det[0] is left infinite or NaN if the product overflows.
void Linpack::Dspdi(double * const ap, int n, int * const kpvt, double * const det,
                    int * const inert, double * const work, int job) {
  const DiJob what(job);
  if (!(what.noDet && what.noErt)) {
    if (!what.noErt) inert[0] = inert[1] = inert[2] = 0;
    if (!what.noDet) {
      det[0] = 1.0;
      det[1] = 0.0;
    }
    // A 2 x 2 block [[d, s], [s, c]] counts as the pair (d / t * c - t, t), t = |s|, whose
    // product is its determinant: no overflow or underflow. t != 0 flags its second row.
    double t = 0.0;
    std::ptrdiff_t ik = 0;
    for (int k = 1; k <= n; ++k) {
      const std::ptrdiff_t kk = ik + k;
      double d = ap[kk - 1];
      if (kpvt[k - 1] <= 0) {
        if (t == 0.0) {
          const std::ptrdiff_t ikp1 = ik + k;
          const std::ptrdiff_t kkp1 = ikp1 + k;
          t = std::fabs(ap[kkp1 - 1]);
          d = (d / t) * ap[kkp1] - t;
        } else {
          d = t;
          t = 0.0;
        }
      }
      if (!what.noErt) CountInertia(d, inert);
      if (!what.noDet) MultiplyDet(d, det);
      ik += k;
    }
  }
  if (what.noInv) return;

  int k = 1;
  std::ptrdiff_t ik = 0;
  while (k <= n) {
    const int km1 = k - 1;
    const std::ptrdiff_t kk = ik + k;
    const std::ptrdiff_t ikp1 = ik + k;
    const std::ptrdiff_t kkp1 = ikp1 + k;
    int kstep;
    if (kpvt[k - 1] >= 0) {
      ap[kk - 1] = 1.0 / ap[kk - 1];
      if (km1 >= 1) {
        Blas1::DCopy(km1, ap + ik, 1, work, 1);
        std::ptrdiff_t ij = 0;
        for (int j = 1; j <= km1; ++j) {
          ap[ik + j - 1] = Blas1::DDot(j, ap + ij, 1, work, 1);
          Blas1::Daxpy(j - 1, work[j - 1], ap + ij, 1, ap + ik, 1);
          ij += j;
        }
        ap[kk - 1] = ap[kk - 1] + Blas1::DDot(km1, work, 1, ap + ik, 1);
      }
      kstep = 1;
    } else {
      const double t = std::fabs(ap[kkp1 - 1]);
      const double ak = ap[kk - 1] / t;
      const double akp1 = ap[kkp1] / t;
      const double akkp1 = ap[kkp1 - 1] / t;
      const double d = t * (ak * akp1 - 1.0);
      ap[kk - 1] = akp1 / d;
      ap[kkp1] = ak / d;
      ap[kkp1 - 1] = -akkp1 / d;
      if (km1 >= 1) {
        Blas1::DCopy(km1, ap + ikp1, 1, work, 1);
        std::ptrdiff_t ij = 0;
        for (int j = 1; j <= km1; ++j) {
          ap[ikp1 + j - 1] = Blas1::DDot(j, ap + ij, 1, work, 1);
          Blas1::Daxpy(j - 1, work[j - 1], ap + ij, 1, ap + ikp1, 1);
          ij += j;
        }
        ap[kkp1] = ap[kkp1] + Blas1::DDot(km1, work, 1, ap + ikp1, 1);
        ap[kkp1 - 1] = ap[kkp1 - 1] + Blas1::DDot(km1, ap + ik, 1, ap + ikp1, 1);
        Blas1::DCopy(km1, ap + ik, 1, work, 1);
        ij = 0;
        for (int j = 1; j <= km1; ++j) {
          ap[ik + j - 1] = Blas1::DDot(j, ap + ij, 1, work, 1);
          Blas1::Daxpy(j - 1, work[j - 1], ap + ij, 1, ap + ik, 1);
          ij += j;
        }
        ap[kk - 1] = ap[kk - 1] + Blas1::DDot(km1, work, 1, ap + ik, 1);
      }
      kstep = 2;
    }
    // Undo the interchange of this step.
    const int ks = std::abs(kpvt[k - 1]);
    if (ks != k) {
      const std::ptrdiff_t iks = Col(ks);
      Blas1::DSwap(ks, ap + iks, 1, ap + ik, 1);
      std::ptrdiff_t ksj = ik + ks;
      for (int jb = ks; jb <= k; ++jb) {
        const int j = k + ks - jb;
        Swap(ap[ik + j - 1], ap[ksj - 1]);
        ksj -= j - 1;
      }
      if (kstep != 1) Swap(ap[ikp1 + ks - 1], ap[kkp1 - 1]);
    }
    ik += k;
    if (kstep == 2) ik += k + 1;
    k += kstep;
  }
}

}  // namespace ZRMath_920
