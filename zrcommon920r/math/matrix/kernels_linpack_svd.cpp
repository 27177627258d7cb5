// LINPACK singular value decomposition: Householder reduction to bidiagonal form, then
// implicitly shifted QR steps on the bidiagonal matrix.
// Source: Dongarra, Bunch, Moler and Stewart (1979), LINPACK Users' Guide, SIAM, chapter 11.
#include <cmath>
#include <cstddef>

#include "zrcommon920r/math/matrix/detail/linpack_util.h"
#include "zrcommon920r/math/matrix/kernels.h"

namespace ZRMath_920 {

namespace {

using namespace linpack_detail;

// Iterations allowed for each singular value.
constexpr int kMaxIt = 30;

// A matrix whose largest element lies outside [2^-kScaleExp, 2^kScaleExp] is scaled by a
// power of two into that range before the reduction, so that no sum of a few elements, no
// product in the rotations and no shift overflows or underflows (the same bound as
// LAPACK's dgesvd: about sqrt(tiny) / eps and its reciprocal). Scaling by a power of two
// is exact, so every other matrix gives the same bits as the published loop.
constexpr int kScaleExp = 456;

// Largest absolute element of the n x p column-major x; NaN when x holds a NaN.
double MaxAbs(const double * x, int ldx, int n, int p) {
  double m = 0.0;
  for (int j = 0; j < p; ++j) {
    const double * col = x + static_cast<std::ptrdiff_t>(j) * ldx;
    for (int i = 0; i < n; ++i) {
      const double a = std::fabs(col[i]);
      if (!(a <= m)) m = a;  // a NaN is kept
    }
  }
  return m;
}

// Power of two that brings a finite, non-zero largest element amax into the safe range,
// as its exponent; 0 when amax is already inside, zero or not finite.
int ScaleExponent(double amax) {
  if (!std::isfinite(amax) || amax == 0.0) return 0;
  const int e = std::ilogb(amax);
  if (e > kScaleExp) return kScaleExp - e;
  if (e < -kScaleExp) return -kScaleExp - e;
  return 0;
}

inline double Max5(double a, double b, double c, double d, double e) {
  double m = a;
  if (b > m) m = b;
  if (c > m) m = c;
  if (d > m) m = d;
  if (e > m) m = e;
  return m;
}

}  // namespace

// Singular value decomposition X = U S V' of the n x p matrix x (LINPACK DSVDC, Users'
// Guide 1979, ch. 11; Golub and Reinsch 1970, Numer. Math. 14, 403-420). s returns the
// singular values in decreasing order (s has min(n + 1, p) elements, s(n+1) = 0; e has p).
// job ab: a = 0 no U, 1 all n columns (u n x n), >= 2 the first min(n, p); b != 0 V (p x p).
// x is destroyed; work holds n. A matrix whose largest element is beyond 2^456 or below
// 2^-456 is first scaled by a power of two (exact), and s and e are scaled back. Tests hold
// s within 1e-14 s(1) of LAPACK dgesvd, also at 3e307 and 1e-300, and ||X - U S V'||_1 /
// (max(n, p) ||X||_1 eps) < 30. Returns 0, or m when 30 QR steps fail to split off s(m),
// or when more than min(n + 1, p) + 1 split passes follow one another (an infinite
// element; a NaN ends through the 30 steps): s(m+1..) and their vectors are right, and
// U'XV is still the bidiagonal matrix of s and e (superdiagonal). A singular value beyond
// the largest double comes back infinite and info counts it. n < 1 or p < 1: returns 0
// and writes nothing.
int Linpack::Dsvdc(double * const x, int ldx, int n, int p, double * const s, double * const e,
                   double * const u, int ldu, double * const v, int ldv, double * const work,
                   int job) {
  // Intended: an empty matrix returns at once; the published code would index s(0), e(0).
  if (n < 1 || p < 1) return 0;

  const int scaleExp = ScaleExponent(MaxAbs(x, ldx, n, p));
  if (scaleExp != 0) {
    for (int j = 1; j <= p; ++j) Blas1::DScal(n, std::ldexp(1.0, scaleExp), At(x, ldx, 1, j), 1);
  }

  const int jobu = (job % 100) / 10;
  const int ncu = jobu > 1 ? Min(n, p) : n;
  const bool wantu = jobu != 0;
  const bool wantv = job % 10 != 0;

  // Reduce x to bidiagonal form: diagonal in s, superdiagonal in e.
  int info = 0;
  const int nct = Min(n - 1, p);
  const int nrt = Max(0, Min(p - 2, n));
  const int lu = Max(nct, nrt);
  for (int l = 1; l <= lu; ++l) {
    const int lp1 = l + 1;
    double * const xll = At(x, ldx, l, l);
    if (l <= nct) {
      // Transformation for column l; the l-th diagonal goes to s(l).
      s[l - 1] = Blas1::DNrm2(n - l + 1, xll, 1);
      if (s[l - 1] != 0.0) {
        if (*xll != 0.0) s[l - 1] = Sign(s[l - 1], *xll);
        Blas1::DScal(n - l + 1, 1.0 / s[l - 1], xll, 1);
        *xll = 1.0 + *xll;
      }
      s[l - 1] = -s[l - 1];
    }
    for (int j = lp1; j <= p; ++j) {
      double * const xlj = At(x, ldx, l, j);
      if (l <= nct && s[l - 1] != 0.0) {
        const double t = -Blas1::DDot(n - l + 1, xll, 1, xlj, 1) / *xll;
        Blas1::Daxpy(n - l + 1, t, xll, 1, xlj, 1);
      }
      // Row l of x goes to e for the row transformation.
      e[j - 1] = *xlj;
    }
    if (wantu && l <= nct) {
      // Keep the transformation in u for the back multiplication.
      for (int i = l; i <= n; ++i) *At(u, ldu, i, l) = *At(x, ldx, i, l);
    }
    if (l <= nrt) {
      // Transformation for row l; the l-th superdiagonal goes to e(l).
      e[l - 1] = Blas1::DNrm2(p - l, e + l, 1);
      if (e[l - 1] != 0.0) {
        if (e[lp1 - 1] != 0.0) e[l - 1] = Sign(e[l - 1], e[lp1 - 1]);
        Blas1::DScal(p - l, 1.0 / e[l - 1], e + l, 1);
        e[lp1 - 1] = 1.0 + e[lp1 - 1];
      }
      e[l - 1] = -e[l - 1];
      if (lp1 <= n && e[l - 1] != 0.0) {
        for (int i = lp1; i <= n; ++i) work[i - 1] = 0.0;
        for (int j = lp1; j <= p; ++j)
          Blas1::Daxpy(n - l, e[j - 1], At(x, ldx, lp1, j), 1, work + l, 1);
        for (int j = lp1; j <= p; ++j)
          Blas1::Daxpy(n - l, -e[j - 1] / e[lp1 - 1], work + l, 1, At(x, ldx, lp1, j), 1);
      }
      if (wantv) {
        for (int i = lp1; i <= p; ++i) *At(v, ldv, i, l) = e[i - 1];
      }
    }
  }

  // The final bidiagonal matrix, of order m.
  int m = Min(p, n + 1);
  const int nctp1 = nct + 1;
  const int nrtp1 = nrt + 1;
  if (nct < p) s[nctp1 - 1] = *At(x, ldx, nctp1, nctp1);
  if (n < m) s[m - 1] = 0.0;
  if (nrtp1 < m) e[nrtp1 - 1] = *At(x, ldx, nrtp1, m);
  e[m - 1] = 0.0;

  if (wantu) {
    // Generate U.
    for (int j = nctp1; j <= ncu; ++j) {
      for (int i = 1; i <= n; ++i) *At(u, ldu, i, j) = 0.0;
      *At(u, ldu, j, j) = 1.0;
    }
    for (int ll = 1; ll <= nct; ++ll) {
      const int l = nct - ll + 1;
      double * const ull = At(u, ldu, l, l);
      if (s[l - 1] != 0.0) {
        for (int j = l + 1; j <= ncu; ++j) {
          double * const ulj = At(u, ldu, l, j);
          const double t = -Blas1::DDot(n - l + 1, ull, 1, ulj, 1) / *ull;
          Blas1::Daxpy(n - l + 1, t, ull, 1, ulj, 1);
        }
        Blas1::DScal(n - l + 1, -1.0, ull, 1);
        *ull = 1.0 + *ull;
        for (int i = 1; i <= l - 1; ++i) *At(u, ldu, i, l) = 0.0;
      } else {
        for (int i = 1; i <= n; ++i) *At(u, ldu, i, l) = 0.0;
        *ull = 1.0;
      }
    }
  }

  if (wantv) {
    // Generate V.
    for (int ll = 1; ll <= p; ++ll) {
      const int l = p - ll + 1;
      const int lp1 = l + 1;
      if (l <= nrt && e[l - 1] != 0.0) {
        double * const vl = At(v, ldv, lp1, l);
        for (int j = lp1; j <= p; ++j) {
          double * const vj = At(v, ldv, lp1, j);
          const double t = -Blas1::DDot(p - l, vl, 1, vj, 1) / *vl;
          Blas1::Daxpy(p - l, t, vl, 1, vj, 1);
        }
      }
      for (int i = 1; i <= p; ++i) *At(v, ldv, i, l) = 0.0;
      *At(v, ldv, l, l) = 1.0;
    }
  }

  // Main iteration loop for the singular values.
  const int mm = m;
  int iter = 0;
  // Passes that split or deflate without a QR step each shrink the active block, so in
  // exact and in finite arithmetic at most mm + 1 of them follow one another. An infinite
  // element keeps a negligibility test true and would repeat such a pass for ever: the
  // bound ends the loop with info = m, as a failed QR iteration does.
  int splitPasses = 0;
  while (m != 0) {
    if (iter >= kMaxIt || splitPasses > mm + 1) {
      info = m;
      break;
    }

    // Look for negligible elements of s and e. On leaving, kase and l are:
    //   1: s(m) and e(l-1) negligible, l < m;  2: s(l) negligible, l < m;
    //   3: e(l-1) negligible, l < m, s(l..m) not negligible (QR step);
    //   4: e(m-1) negligible (convergence).
    int l = 0;
    for (int ll = 1; ll <= m; ++ll) {
      l = m - ll;
      if (l == 0) break;
      const double test = std::fabs(s[l - 1]) + std::fabs(s[l]);
      const double ztest = test + std::fabs(e[l - 1]);
      if (ztest == test) {
        e[l - 1] = 0.0;
        break;
      }
    }
    int kase = 0;
    if (l == m - 1) {
      kase = 4;
    } else {
      const int lp1 = l + 1;
      const int mp1 = m + 1;
      int ls = l;
      for (int lls = lp1; lls <= mp1; ++lls) {
        ls = m - lls + lp1;
        if (ls == l) break;
        double test = 0.0;
        if (ls != m) test = test + std::fabs(e[ls - 1]);
        if (ls != l + 1) test = test + std::fabs(e[ls - 2]);
        const double ztest = test + std::fabs(s[ls - 1]);
        if (ztest == test) {
          s[ls - 1] = 0.0;
          break;
        }
      }
      if (ls == l) {
        kase = 3;
      } else if (ls == m) {
        kase = 1;
      } else {
        kase = 2;
        l = ls;
      }
    }
    l = l + 1;
    splitPasses = kase <= 2 ? splitPasses + 1 : 0;

    switch (kase) {
      case 1: {
        // Deflate negligible s(m).
        const int mm1 = m - 1;
        double f = e[m - 2];
        e[m - 2] = 0.0;
        for (int kk = l; kk <= mm1; ++kk) {
          const int k = mm1 - kk + l;
          double t1 = s[k - 1];
          double cs = 0.0, sn = 0.0;
          Blas1::DRotG(&t1, &f, &cs, &sn);
          s[k - 1] = t1;
          if (k != l) {
            f = -sn * e[k - 2];
            e[k - 2] = cs * e[k - 2];
          }
          if (wantv) Blas1::DRot(p, At(v, ldv, 1, k), 1, At(v, ldv, 1, m), 1, cs, sn);
        }
        break;
      }
      case 2: {
        // Split at negligible s(l).
        double f = e[l - 2];
        e[l - 2] = 0.0;
        for (int k = l; k <= m; ++k) {
          double t1 = s[k - 1];
          double cs = 0.0, sn = 0.0;
          Blas1::DRotG(&t1, &f, &cs, &sn);
          s[k - 1] = t1;
          f = -sn * e[k - 1];
          e[k - 1] = cs * e[k - 1];
          // Intended: U has ncu columns. With p > n the published loop reaches k = n + 1
          // when a NaN keeps s(n + 1) = 0 from being found negligible first; that column
          // does not exist, so its rotation is skipped.
          if (wantu && k <= ncu) {
            Blas1::DRot(n, At(u, ldu, 1, k), 1, At(u, ldu, 1, l - 1), 1, cs, sn);
          }
        }
        break;
      }
      case 3: {
        // One QR step. The shift, from the trailing 2 x 2 block, scaled.
        const double scale = Max5(std::fabs(s[m - 1]), std::fabs(s[m - 2]), std::fabs(e[m - 2]),
                                  std::fabs(s[l - 1]), std::fabs(e[l - 1]));
        const double sm = s[m - 1] / scale;
        const double smm1 = s[m - 2] / scale;
        const double emm1 = e[m - 2] / scale;
        const double sl = s[l - 1] / scale;
        const double el = e[l - 1] / scale;
        const double b = ((smm1 + sm) * (smm1 - sm) + emm1 * emm1) / 2.0;
        const double smemm1 = sm * emm1;
        const double c = smemm1 * smemm1;
        double shift = 0.0;
        if (b != 0.0 || c != 0.0) {
          shift = std::sqrt(b * b + c);
          if (b < 0.0) shift = -shift;
          shift = c / (b + shift);
        }
        double f = (sl + sm) * (sl - sm) + shift;
        double g = sl * el;

        // Chase zeros.
        const int mm1 = m - 1;
        for (int k = l; k <= mm1; ++k) {
          double cs = 0.0, sn = 0.0;
          Blas1::DRotG(&f, &g, &cs, &sn);
          if (k != l) e[k - 2] = f;
          f = cs * s[k - 1] + sn * e[k - 1];
          e[k - 1] = cs * e[k - 1] - sn * s[k - 1];
          g = sn * s[k];
          s[k] = cs * s[k];
          if (wantv) Blas1::DRot(p, At(v, ldv, 1, k), 1, At(v, ldv, 1, k + 1), 1, cs, sn);
          Blas1::DRotG(&f, &g, &cs, &sn);
          s[k - 1] = f;
          f = cs * e[k - 1] + sn * s[k];
          s[k] = -sn * e[k - 1] + cs * s[k];
          g = sn * e[k];
          e[k] = cs * e[k];
          if (wantu && k < n) Blas1::DRot(n, At(u, ldu, 1, k), 1, At(u, ldu, 1, k + 1), 1, cs, sn);
        }
        e[m - 2] = f;
        iter = iter + 1;
        break;
      }
      default: {
        // Convergence: make s(l) non-negative, then sort it into place.
        if (!(s[l - 1] >= 0.0)) {
          s[l - 1] = -s[l - 1];
          if (wantv) Blas1::DScal(p, -1.0, At(v, ldv, 1, l), 1);
        }
        while (l != mm && !(s[l - 1] >= s[l])) {
          const double t = s[l - 1];
          s[l - 1] = s[l];
          s[l] = t;
          if (wantv && l < p) Blas1::DSwap(p, At(v, ldv, 1, l), 1, At(v, ldv, 1, l + 1), 1);
          if (wantu && l < n) Blas1::DSwap(n, At(u, ldu, 1, l), 1, At(u, ldu, 1, l + 1), 1);
          l = l + 1;
        }
        iter = 0;
        m = m - 1;
        break;
      }
    }
  }

  if (scaleExp != 0) {
    // Undo the scaling. A singular value beyond the largest double is reported through
    // info as one that is not right, never as a success.
    const int ns = Min(n + 1, p);
    for (int i = 0; i < ns; ++i) {
      s[i] = std::ldexp(s[i], -scaleExp);
      if (std::isinf(s[i]) && i + 1 > info) info = i + 1;
    }
    for (int i = 0; i < p; ++i) e[i] = std::ldexp(e[i], -scaleExp);
  }
  return info;
}

}  // namespace ZRMath_920
