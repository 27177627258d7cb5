// ZRDistFun: the regularised incomplete beta function, its Peizer-Pratt helper and its
// inverse (AS 109), and the public beta distribution and quantile.
#include <cmath>
#include <cstdint>
#include <utility>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/dist/distfun.h"

namespace ZRMath_920 {
namespace {

constexpr double kMiss = ZRCommon_920::kSysMisValue;
constexpr double kEps = ZRCommon_920::kMachineEpsilon;
constexpr double kLargestDouble = 1.7976931348623157e308;
constexpr double kPi = 3.141592653589793;
constexpr double kExpUnderflow = -708.0;
constexpr double kExpOverflow = 709.0;
constexpr int kBetaPasses = 10000;    // series terms and continued-fraction passes
constexpr double kSeriesTol = 1e-15;  // absolute, on a term of a sum that starts at 1
constexpr double kBetinvFail = -1.0;
constexpr int kNewtonPasses = 50;
constexpr int kDampingCap = 2000;   // divisions of the Newton step by 3
constexpr double kStartLow = 1e-8;  // the start value is kept within these
constexpr double kStartHigh = 0.9999999;
constexpr double kSwampedShape = 1e-20;  // a * 1e-20 >= b: all the mass sits at 1

// The continued fraction has converged when both values are 0, or when they share a sign
// and differ by at most tol relative to the larger.
bool FractionSettled(double sNew, double sOld, double tol) {
  if (sNew == 0.0 && sOld == 0.0) return true;
  if (sNew == 0.0 || sOld == 0.0 || (sNew > 0.0) != (sOld > 0.0)) return false;
  const double aNew = std::fabs(sNew), aOld = std::fabs(sOld);
  return std::fabs(aNew - aOld) / (aNew > aOld ? aNew : aOld) <= tol;
}

// Shapes up to which the log-gammas of the series test below are trusted.
constexpr double kTrustedShapes = 1e6;

}  // namespace

// Regularised incomplete beta I_x(a, b): closed forms for a or b == 1; with a <= 1 it is
// 1 - I_(1-x)(b, a). A shape <= 1 tries the power series first (10001 terms, to a term
// below 1e-15); then the continued fraction (Abramowitz and Stegun 26.5.8) below x = (a +
// 1) / (a + b + 2), to a change of 10 max(1, a + b) eps; after 10000 passes the Peizer-
// Pratt normal approximation (JASA 63 (1968), 1416-1456). The prefactor is formed in logs
// (0 below -708, at most 1); accuracy: see CdfBeta. err 1 and miss unless a, b are positive
// and finite and x is not NaN; 0 for x <= 0, 1 for x >= 1; err 2 and miss if a NaN forms.
double ZRDistFun::cdfbet(const double & x, const double & a, const double & b, std::int32_t & err) {
  err = 0;
  if (!(a > 0.0 && b > 0.0) || std::isinf(a) || std::isinf(b) || std::isnan(x)) {
    err = 1;
    return kMiss;
  }
  if (x <= 0.0) return 0.0;
  if (1.0 - x <= 0.0) return 1.0;
  if (a == 1.0) {
    if (b == 1.0) return x;
    const double t = std::log(1.0 - x) * b;  // 1 - x rounds: good to eps absolute only
    return t < kExpUnderflow ? 1.0 : 1.0 - std::exp(t);
  }
  if (b == 1.0) {
    const double t = std::log(x) * a;
    return t < kExpUnderflow ? 0.0 : std::exp(t);
  }

  double xx = x, yy = 1.0 - x, pp = a, qq = b;
  bool direct = true;
  if (a <= 1.0) {
    std::swap(xx, yy);
    std::swap(pp, qq);
    direct = false;
  }

  double s = 1.0;
  bool summed = false;
  // Speed only, the answer is the same: the series is skipped when it cannot reach a term
  // below kSeriesTol within its kBetaPasses + 1 terms, since its sum would then be thrown
  // away for the continued fraction. The ratio of consecutive terms, x (i + a + b) / (i +
  // a + 1), is monotone in i, so the smallest term is the first or the last, the last
  // taken in logs; a margin of a factor e covers the rounding of the product and of the
  // log-gammas, which are trusted while a + b stays below 1e6.
  if (a <= 1.0 || b <= 1.0) {
    bool cannotSettle = false;
    if (pp + qq < kTrustedShapes && (pp + qq) / (pp + 1.0) * xx >= kSeriesTol) {
      const double n = kBetaPasses + 1.0;
      const double logLast = n * std::log(xx) + dnlgam(n + pp + qq) - dnlgam(pp + qq) -
                             dnlgam(n + pp + 1.0) + dnlgam(pp + 1.0);
      cannotSettle = logLast > std::log(kSeriesTol) + 1.0;
    }
    double c = 1.0;
    for (int i = 0; i <= kBetaPasses && !summed && !cannotSettle; ++i) {
      c *= (i + pp + qq) / (i + pp + 1.0) * xx;
      s += c;
      summed = std::fabs(c) < kSeriesTol;
    }
  }

  if (!summed) {
    if (xx >= (pp + 1.0) / (pp + qq + 2.0)) {  // the fraction converges below the mean
      std::swap(xx, yy);
      std::swap(pp, qq);
      direct = !direct;
    }
    const double tol = 10.0 * (pp + qq > 1.0 ? pp + qq : 1.0) * kEps;
    double am = 1.0, bm = 1.0, az = 1.0, bz = 1.0 - ((pp + qq) / (pp + 1.0)) * xx;
    s = 1.0 / bz;
    bool settled = false;
    for (int m = 1; m <= kBetaPasses && !settled; ++m) {
      const double t = pp + 2.0 * m;
      const double d = ((qq - m) / (t - 1.0)) * (m / t) * xx;  // even step
      const double ap = az + d * am, bp = bz + d * bm;
      const double d2 = -((pp + qq + m) / (t + 1.0)) * ((pp + m) / t) * xx;  // odd step
      const double app = ap + d2 * az, bpp = bp + d2 * bz;
      if (bpp != 0.0) {
        az = app / bpp;
        am = ap / bpp;
        bm = bp / bpp;
        bz = 1.0;
        settled = FractionSettled(az, s, tol);
        s = az;
      } else {  // left unnormalised for one pass; s and the test wait
        az = app;
        am = ap;
        bm = bp;
        bz = 0.0;
      }
    }
    if (!settled) {  // Peizer-Pratt normal approximation
      const double n1 = pp + qq - 1.0;
      // Intended: g at (a - 0.5) / n1 weighted by x (and the mirror term), not Peizer and
      // Pratt's g((a - 0.5) / (n1 x)) weighted by y: z about 10% too large at equal shapes.
      const double t = (cbtaux((pp - 0.5) / n1) * xx + cbtaux((qq - 0.5) / n1) * yy + 1.0) /
                       ((n1 + 1.0 / 6.0) * xx * yy);
      double z = 0.0;
      if (t > 0.0) {
        z = std::sqrt(t) * ((xx / qq - yy / pp + (xx - 0.5) / (pp + qq)) / 50.0 +
                            ((xx - pp / n1) * n1 + (xx + 1.0) / 3.0));
      }
      if (std::isnan(t) || std::isnan(z)) {  // prbnrm would give 0.5 for NaN
        err = 2;
        return kMiss;
      }
      return prbnrm(direct ? z : -z);
    }
  }

  double v = 0.0;
  if (s > 0.0) {
    const double t = dnlgam(pp + qq) - dnlgam(pp + 1.0) - dnlgam(qq) + qq * std::log(yy) +
                     pp * std::log(xx) + std::log(s);
    if (std::isnan(t)) {  // inf - inf in the log-gammas of extreme shapes
      err = 2;
      return kMiss;
    }
    // Intended: v is at most 1. t > 0 is rounding, or the digits that the log-gammas lose at
    // extreme shapes; 1 - v must not go negative.
    v = t < kExpUnderflow ? 0.0 : (t > 0.0 ? 1.0 : std::exp(t));
  }
  return direct ? v : 1.0 - v;
}

// Auxiliary function g(x) = (1 - x^2 + 2 x log x) / (1 - x)^2 of the Peizer-Pratt
// approximation: 1 at 0, 0 where 1 - x rounds to 0, -1 above M = sqrt of the largest
// double, miss for negative x and NaN.
double ZRDistFun::cbtaux(const double & x) {
  static const double kM = std::sqrt(kLargestDouble);
  if (std::isnan(x) || x < 0.0) return kMiss;
  if (x == 0.0) return 1.0;
  if (x > kM) return -1.0;
  if (1.0 - x == 0.0) return 0.0;
  return (std::log(x) * 2.0 * x + 1.0 - x * x) / ((1.0 - x) * (1.0 - x));
}

// Inverse of the incomplete beta: the x with I_x(a, b) = p. Algorithm AS 109: Cran, G.
// W., Martin, K. J. and Thomas, G. E. (1977), Applied Statistics 26, 111-114, with the
// start values of AS R83: Berry, K. J., Mielke, P. W. and Cran, G. W. (1990), Applied
// Statistics 39, 309-310. Damped Newton (at most 50 passes, 2000 divisions of a step) until
// a step is below sqrt(acu) or eps; accuracy: see IdfBeta. 0 for p == 0, 1 for p == 1
// whatever the shapes; -1.0 for any other p outside (0, 1), shapes not positive and
// finite, a NaN argument, or a failed pass; a / (a + b) where an exponent passes 709.
double ZRDistFun::betinv(const double & p, const double & a, const double & b, const double & acu,
                         const double & eps) {
  if (std::isnan(p) || std::isnan(a) || std::isnan(b) || std::isnan(acu) || std::isnan(eps) ||
      std::isinf(a) || std::isinf(b)) {
    return kBetinvFail;
  }
  if (p == 0.0) return 0.0;
  if (p == 1.0) return 1.0;
  if (!(p > 0.0 && p < 1.0 && a > 0.0 && b > 0.0)) return kBetinvFail;

  if (a == b) {
    if (p == 0.5) return 0.5;
    if (a == 0.5) {  // arcsine distribution
      const double s = std::sin(p * 0.5 * kPi);
      return s * s;
    }
  }
  if (a == 1.0) {
    if (1.0 - p <= 0.0) return 1.0;
    const double t = std::log(1.0 - p) / b;
    return t < kExpUnderflow ? 1.0 : 1.0 - std::exp(t);
  }
  if (b == 1.0) {
    const double t = std::log(p) / a;
    return t < kExpUnderflow ? 0.0 : std::exp(t);
  }
  if (a * kSwampedShape >= b) return 1.0;

  // AS 109 works on the smaller tail r with shapes pp, qq; y is its upper normal deviate.
  double y = probit(p);
  if (y == kMiss) return kBetinvFail;
  double r = 0.0, pp = 0.0, qq = 0.0;
  if (p <= 0.5) {
    r = p;
    pp = a;
    qq = b;
    y = -y;
  } else {
    r = 1.0 - p;
    pp = b;
    qq = a;
  }
  const double beta = dnlgam(qq) + dnlgam(pp) - dnlgam(qq + pp);  // log B(pp, qq)

  double x = 0.0;
  if (pp > 1.0 && qq > 1.0) {  // AS R83: Carter's approximation
    const double c = (y * y - 3.0) / 6.0;
    const double s = 1.0 / (2.0 * pp - 1.0), t = 1.0 / (2.0 * qq - 1.0);
    const double h = 2.0 / (s + t);
    const double w = std::sqrt(h + c) * y / h - (c + 5.0 / 6.0 - 2.0 / (3.0 * h)) * (t - s);
    x = pp / (std::exp(2.0 * w) * qq + pp);
  } else {  // AS R83: Wilson-Hilferty chi-square, or the tail's leading power term
    const double f = 1.0 / (9.0 * qq);
    const double u = std::sqrt(f) * y + 1.0 - f;
    const double d = u * u * u * 2.0 * qq;
    if (d > 0.0) {
      const double t = (4.0 * pp + 2.0 * qq - 2.0) / d;
      if (t > 1.0) {
        x = 1.0 - 2.0 / (t + 1.0);
      } else {
        const double e = (std::log(r * pp) + beta) / pp;
        // Intended: the mean a / (a + b) as it stands, not mapped back to p's side.
        if (e > kExpOverflow) return a / (a + b);
        x = e < kExpUnderflow ? 0.0 : std::exp(e);
      }
    } else {
      const double e = (std::log((1.0 - r) * qq) + beta) / qq;
      // Intended: the mean a / (a + b) as it stands.
      if (e > kExpOverflow) return a / (a + b);
      x = e < kExpUnderflow ? 1.0 : 1.0 - std::exp(e);
    }
  }
  if (!(x >= kStartLow)) x = kStartLow;
  if (x > kStartHigh) x = kStartHigh;

  double prev = 1.0, sq = 1.0, yprev = 0.0;
  for (int pass = 0; pass < kNewtonPasses; ++pass) {
    std::int32_t cerr = 0;
    const double c = cdfbet(x, pp, qq, cerr);
    if (cerr != 0) return kBetinvFail;
    const double e = std::log(1.0 - x) * (1.0 - qq) + (std::log(x) * (1.0 - pp) + beta);
    // Intended: the mean a / (a + b) as it stands, even after some passes.
    if (e > kExpOverflow) return a / (a + b);
    const double step = e < kExpUnderflow ? 0.0 : (c - r) * std::exp(e);  // AS 109's y
    if (step * yprev <= 0.0) prev = sq;
    double g = 1.0, tx = x;
    for (int division = 0;; ++division) {  // shrink the step until it stays inside (0, 1)
      const double adj = g * step;
      sq = adj * adj;
      if (prev > sq) {
        tx = x - adj;
        if (std::fabs(tx) < eps) tx = eps;
        if (std::fabs(tx - 1.0) < eps) tx = 1.0 - eps;
        if (tx > 0.0 && tx < 1.0) break;
      }
      if (division == kDampingCap) return kBetinvFail;
      g /= 3.0;
    }
    if (prev <= acu || step * step <= acu || std::fabs(tx - x) < eps) break;
    x = tx;
    yprev = step;
  }
  return p <= 0.5 ? x : 1.0 - x;
}

double ZRDistFun::CdfBeta(double x, double a, double b) {
  std::int32_t err = 0;
  const double v = cdfbet(x, a, b, err);
  return err != 0 ? kMiss : v;
}

double ZRDistFun::IdfBeta(const double & p, const double & a, const double & b) {
  return betinv(p, a, b, 1e-20, 1e-12);
}

}  // namespace ZRMath_920
