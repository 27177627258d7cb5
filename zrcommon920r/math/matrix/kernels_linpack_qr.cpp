// LINPACK QR decomposition by Householder transformations, with optional column pivoting,
// and its use: Q y, Q'y, least-squares coefficients, residuals and fitted values.
// Source: Dongarra, Bunch, Moler and Stewart (1979), LINPACK Users' Guide, SIAM, chapter 9.
#include <cmath>
#include <cstddef>

#include "zrcommon920r/math/matrix/detail/linpack_util.h"
#include "zrcommon920r/math/matrix/kernels.h"

namespace ZRMath_920 {

namespace {

using namespace linpack_detail;

// Applies the Householder transformation stored below the diagonal of column j of x (with
// qraux(j) as its leading element) to the vector v(j..n): v <- v - (u'v / u(1)) u.
void ApplyHouseholder(double * const x, int ldx, int n, int j, double * const qraux,
                      double * const v) {
  double * const xjj = At(x, ldx, j, j);
  const double temp = *xjj;
  *xjj = qraux[j - 1];
  const double t = -Blas1::DDot(n - j + 1, xjj, 1, v + (j - 1), 1) / *xjj;
  Blas1::Daxpy(n - j + 1, t, xjj, 1, v + (j - 1), 1);
  *xjj = temp;
}

}  // namespace

// QR decomposition X P = Q R of the n x p matrix x by Householder transformations
// (LINPACK DQRDC, Users' Guide 1979, ch. 9). job 0: no pivoting, jpvt and work unused.
// Otherwise columns with jpvt(k) > 0 go to the front, jpvt(k) < 0 to the back, and the free
// ones (0) between are pivoted by largest reduced norm; jpvt returns the original index of
// each column, work holds p norms. x returns R on and above its diagonal and the Householder
// vectors below it, their leading elements in qraux (0.0: no transformation).
// Backward stable: tests hold ||X P - Q R||_1 / (max(n, p) ||X||_1 eps) < 30. Never fails.
void Linpack::Dqrdc(double * const x, int ldx, int n, int p, double * const qraux, int * const jpvt,
                    double * const work, int job) {
  int pl = 1;
  int pu = 0;
  if (job != 0) {
    // Rearrange the columns according to jpvt: initial columns to the front.
    for (int j = 1; j <= p; ++j) {
      const bool swapj = jpvt[j - 1] > 0;
      const bool negj = jpvt[j - 1] < 0;
      jpvt[j - 1] = negj ? -j : j;
      if (swapj) {
        if (j != pl) Blas1::DSwap(n, At(x, ldx, 1, pl), 1, At(x, ldx, 1, j), 1);
        jpvt[j - 1] = jpvt[pl - 1];
        jpvt[pl - 1] = j;
        ++pl;
      }
    }
    // Final columns to the back.
    pu = p;
    for (int jj = 1; jj <= p; ++jj) {
      const int j = p - jj + 1;
      if (jpvt[j - 1] < 0) {
        jpvt[j - 1] = -jpvt[j - 1];
        if (j != pu) {
          Blas1::DSwap(n, At(x, ldx, 1, pu), 1, At(x, ldx, 1, j), 1);
          const int jp = jpvt[pu - 1];
          jpvt[pu - 1] = jpvt[j - 1];
          jpvt[j - 1] = jp;
        }
        --pu;
      }
    }
  }

  // Norms of the free columns.
  for (int j = pl; j <= pu; ++j) {
    qraux[j - 1] = Blas1::DNrm2(n, At(x, ldx, 1, j), 1);
    work[j - 1] = qraux[j - 1];
  }

  // Householder reduction of x.
  const int lup = Min(n, p);
  for (int l = 1; l <= lup; ++l) {
    if (l >= pl && l < pu) {
      // Bring the free column of largest reduced norm into the pivot position.
      double maxnrm = 0.0;
      int maxj = l;
      for (int j = l; j <= pu; ++j) {
        if (!(qraux[j - 1] <= maxnrm)) {
          maxnrm = qraux[j - 1];
          maxj = j;
        }
      }
      if (maxj != l) {
        Blas1::DSwap(n, At(x, ldx, 1, l), 1, At(x, ldx, 1, maxj), 1);
        qraux[maxj - 1] = qraux[l - 1];
        work[maxj - 1] = work[l - 1];
        const int jp = jpvt[maxj - 1];
        jpvt[maxj - 1] = jpvt[l - 1];
        jpvt[l - 1] = jp;
      }
    }
    qraux[l - 1] = 0.0;
    if (l == n) break;  // pivoted as every step, but the last row needs no transformation

    // Householder transformation for column l.
    double * const xll = At(x, ldx, l, l);
    double nrmxl = Blas1::DNrm2(n - l + 1, xll, 1);
    if (nrmxl == 0.0) continue;
    if (*xll != 0.0) nrmxl = Sign(nrmxl, *xll);
    Blas1::DScal(n - l + 1, 1.0 / nrmxl, xll, 1);
    *xll = 1.0 + *xll;

    // Apply it to the remaining columns, updating the norms.
    for (int j = l + 1; j <= p; ++j) {
      double * const xlj = At(x, ldx, l, j);
      double t = -Blas1::DDot(n - l + 1, xll, 1, xlj, 1) / *xll;
      Blas1::Daxpy(n - l + 1, t, xll, 1, xlj, 1);
      if (j < pl || j > pu || qraux[j - 1] == 0.0) continue;
      const double ratio = std::fabs(*xlj) / qraux[j - 1];
      double tt = 1.0 - ratio * ratio;
      if (tt < 0.0) tt = 0.0;
      t = tt;
      const double growth = qraux[j - 1] / work[j - 1];
      tt = 1.0 + 0.05 * tt * (growth * growth);
      if (tt != 1.0) {
        qraux[j - 1] = qraux[j - 1] * std::sqrt(t);
      } else {
        // Downdated norm has lost its accuracy: recompute it.
        qraux[j - 1] = Blas1::DNrm2(n - l, xlj + 1, 1);
        work[j - 1] = qraux[j - 1];
      }
    }

    // Save the transformation.
    qraux[l - 1] = *xll;
    *xll = -nrmxl;
  }
}

// Uses Dqrdc's output for the first k columns X_k of X P, 1 <= k <= min(n, p) (LINPACK
// DQRSL, Users' Guide 1979, ch. 9). job is the decimal digits abcde: a != 0 gives qy = Q y;
// any of b..e != 0 gives qty = Q'y (qty must then be supplied); c the least-squares
// coefficients b of min ||y - X_k b||, d the residual rsd, e the fitted values xb = X_k b.
// Tests hold b, rsd and xb within 1e-14 of LAPACK dgels (O(1) data, cond < 100). Returns 0,
// or, when b is requested, the largest j with R(j, j) == 0.0: back substitution stops there,
// with b(j+1..k) solved and b(1..j) partly updated; qy, qty, rsd and xb are still right.
int Linpack::Dqrsl(double * const x, int ldx, int n, int k, double * const qraux, double * const y,
                   double * const qy, double * const qty, double * const b, double * const rsd,
                   double * const xb, int job) {
  int info = 0;
  const bool cqy = job / 10000 != 0;
  const bool cqty = job % 10000 != 0;
  const bool cb = (job % 1000) / 100 != 0;
  const bool cr = (job % 100) / 10 != 0;
  const bool cxb = job % 10 != 0;
  const int ju = Min(k, n - 1);

  // Special action when n == 1.
  if (ju == 0) {
    if (cqy) qy[0] = y[0];
    if (cqty) qty[0] = y[0];
    if (cxb) xb[0] = y[0];
    if (cb) {
      if (x[0] != 0.0) {
        b[0] = y[0] / x[0];
      } else {
        info = 1;
      }
    }
    if (cr) rsd[0] = 0.0;
    return info;
  }

  // Q y and Q'y.
  if (cqy) Blas1::DCopy(n, y, 1, qy, 1);
  if (cqty) Blas1::DCopy(n, y, 1, qty, 1);
  if (cqy) {
    for (int jj = 1; jj <= ju; ++jj) {
      const int j = ju - jj + 1;
      if (qraux[j - 1] != 0.0) ApplyHouseholder(x, ldx, n, j, qraux, qy);
    }
  }
  if (cqty) {
    for (int j = 1; j <= ju; ++j)
      if (qraux[j - 1] != 0.0) ApplyHouseholder(x, ldx, n, j, qraux, qty);
  }

  // Set up b, rsd and xb from Q'y.
  if (cb) Blas1::DCopy(k, qty, 1, b, 1);
  const int kp1 = k + 1;
  if (cxb) Blas1::DCopy(k, qty, 1, xb, 1);
  if (cr && k < n) Blas1::DCopy(n - k, qty + k, 1, rsd + k, 1);
  if (cxb) {
    for (int i = kp1; i <= n; ++i) xb[i - 1] = 0.0;
  }
  if (cr) {
    for (int i = 1; i <= k; ++i) rsd[i - 1] = 0.0;
  }
  if (cb) {
    // Back substitution with R.
    for (int jj = 1; jj <= k; ++jj) {
      const int j = k - jj + 1;
      const double rjj = *At(x, ldx, j, j);
      if (rjj == 0.0) {
        info = j;
        break;
      }
      b[j - 1] = b[j - 1] / rjj;
      if (j != 1) Blas1::Daxpy(j - 1, -b[j - 1], At(x, ldx, 1, j), 1, b, 1);
    }
  }

  // rsd and xb back in the original coordinates.
  if (cr || cxb) {
    for (int jj = 1; jj <= ju; ++jj) {
      const int j = ju - jj + 1;
      if (qraux[j - 1] == 0.0) continue;
      if (cr) ApplyHouseholder(x, ldx, n, j, qraux, rsd);
      if (cxb) ApplyHouseholder(x, ldx, n, j, qraux, xb);
    }
  }
  return info;
}

}  // namespace ZRMath_920
