// ZRDistFun: the non-central chi-square, F (through the non-central incomplete beta) and t
// distributions, the non-central t density, and the searches for a non-centrality.
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/dist/detail/distfun_util.h"
#include "zrcommon920r/math/dist/distfun.h"
#include "zrcommon920r/math/dist/power.h"

namespace ZRMath_920 {
namespace {

using distfun_detail::IsFinitePositive;

constexpr double kMiss = ZRCommon_920::kSysMisValue;
constexpr double kExpUnderflowTight = -708.39;
constexpr double kExpOverflow = 709.0;
constexpr double kLn2 = 0.6931471805599453;
constexpr double kHalfLn2 = 0.34657359027997264;
constexpr double kLogPi = 1.1447298858494002;
constexpr double kSqrt2 = 1.4142135623730951;
constexpr double kSqrtDblMax = 1.3407807929942596e154;  // sqrt(1.7976931348623157e308)

// The Poisson series start this many standard deviations below the peak (Phi of minus it
// is about 1e-12), and stop after this many terms.
constexpr double kPoissonStartSd = 7.0344838253011;
constexpr int kMaxSeriesPasses = 60000;
constexpr double kChiSeriesTol = 1e-12;

constexpr int kPdfTMaxRounds = 10001;
constexpr double kPdfTRelTol = 1e-10;

constexpr int kMaxSearchSteps = 2000;
constexpr double kMaxDelta = 1073741608.7516353;
constexpr double kAgreeUlps = 8.0;

bool IsFiniteNonNegative(double v) {
  return v >= 0.0 && !std::isinf(v);
}

double Clamp01(double v) {
  return std::max(0.0, std::min(v, 1.0));
}

// The first index of the Poisson(h) sum.
double PoissonStart(double h) {
  return std::floor(std::max(0.0, h - kPoissonStartSd * std::sqrt(h)));
}

// exp(e) with the exponent guards: 0 below -708.39; false (no value) above 709 or NaN.
bool GuardedExp(double e, double & v) {
  if (!(e <= kExpOverflow)) return false;
  v = e < kExpUnderflowTight ? 0.0 : std::exp(e);
  return true;
}

// Bisection shared by the searches: cdfMinusP(v) falls as v grows, d(lo) > 0 > d(hi). The
// result is mid once |d(mid)| <= tol with the bracket within tol, or lo and hi agree to
// 8 eps; stopAtZero also takes a mid whose difference is exactly 0.
template <class F>
double Bisect(F cdfMinusP, double lo, double hi, double tol, bool stopAtZero) {
  for (int step = 0; step < kMaxSearchSteps; ++step) {
    const double mid = (lo + hi) * 0.5;
    const double d = cdfMinusP(mid);
    if (d == kMiss) return kMiss;
    if ((std::fabs(d) <= tol && std::fabs(hi - lo) <= tol) ||
        ZRPower::AlmostEqual(lo, hi, kAgreeUlps))
      return mid;
    if (stopAtZero && d == 0.0) return mid;
    if (d > 0.0)
      lo = mid;
    else
      hi = mid;
  }
  return kMiss;
}

// FindNCParamChi and FindNCParamF: cdf(lambda) falls with lambda; first trial lambda1.
template <class F>
double FindLambda(F cdf, double p, double tol, double lambda1) {
  const double c0 = cdf(0.0);
  if (c0 == kMiss) return kMiss;
  if (c0 <= p) return 0.0;
  const auto diff = [&](double lambda) {
    const double c = cdf(lambda);
    return c == kMiss ? kMiss : c - p;
  };
  double lambda = lambda1, d = diff(lambda);
  if (d == kMiss) return kMiss;
  if (d == 0.0) return lambda;
  double lo, hi;
  if (d > 0.0) {
    for (int step = 0;; ++step) {
      if (step == kMaxSearchSteps) return kMiss;
      lo = lambda;
      lambda *= 2.0;
      d = diff(lambda);
      if (d == kMiss) return kMiss;
      if (!(d > 0.0)) break;
    }
    hi = lambda;
  } else {
    for (int step = 0;; ++step) {
      if (step == kMaxSearchSteps) return kMiss;
      hi = lambda;
      lambda *= 0.5;
      d = diff(lambda);
      if (d == kMiss) return kMiss;
      if (d > 0.0) break;
    }
    lo = lambda;
  }
  return Bisect(diff, lo, hi, tol, false);
}

}  // namespace

// Non-central incomplete beta; see the declaration. i runs over the Poisson index, t is
// I_x(a + i, b) - I_x(a + i + 1, b), G the I of the next index, w the Poisson weight.
double ZRDistFun::ncdbet(const double & x, const double & a, const double & b,
                         const double & lambda, std::int32_t & err, const double & tol) {
  err = 0;
  if (!IsFinitePositive(a) || !IsFinitePositive(b) || !IsFiniteNonNegative(lambda) ||
      std::isnan(x) || std::isnan(tol)) {
    err = 1;
    return kMiss;
  }
  if (x <= 0.0) return 0.0;
  if (x >= 1.0) return 1.0;
  std::int32_t berr = 0;
  if (lambda == 0.0) {
    const double v = cdfbet(x, a, b, berr);
    if (berr != 0) err = 2;
    return v;
  }
  const double h = lambda / 2.0, i0 = PoissonStart(h), a0 = a + i0;
  const double first = cdfbet(x, a0, b, berr);
  if (berr != 0) {
    err = 2;
    return kMiss;
  }
  const double tExp = std::log(1.0 - x) * b + std::log(x) * a0 - dnlgam(a0) - dnlgam(b) +
                      dnlgam(a0 + b) - std::log(a0);
  if (tExp > kExpOverflow) return 0.0;
  double t = 0.0;
  if (tExp < kExpUnderflowTight) {
    if (first == 0.0) return 0.0;
  } else {
    t = std::exp(tExp);
  }
  double g = first - t;
  double q = -h;
  if (i0 > 0.0) q += std::log(h) * i0 - dnlgam(i0 + 1.0);
  if (!(q <= kExpOverflow) || q < kExpUnderflowTight) return 0.0;
  double w = std::exp(q), rest = 1.0 - w, s = w * first;
  if (tol >= 1.0) return Clamp01(s);
  double i = i0;
  for (int pass = 0; pass < kMaxSeriesPasses; ++pass) {
    i += 1.0;
    t *= (a + b + i - 1.0) * x / (a + i);
    w *= h / i;
    rest -= w;
    s += w * g;
    g -= t;
    // Also once the weight underflows: nothing later can change s, while rest, formed as
    // 1 minus the weights, may settle just above tol when t underflowed at the start.
    if (rest * g <= tol || w == 0.0) return Clamp01(s);
  }
  err = 2;
  return kMiss;
}

double ZRDistFun::NonCentralCdfF(double x, double df1, double df2, double lambda, double tol) {
  if (!IsFinitePositive(df1) || !IsFinitePositive(df2) || !IsFiniteNonNegative(lambda) ||
      std::isnan(x) || std::isnan(tol))
    return kMiss;
  if (x <= 0.0) return 0.0;
  if (std::isinf(x)) return 1.0;
  std::int32_t err = 0;
  const double v = ncdbet(x * df1 / (x * df1 + df2), df1 / 2.0, df2 / 2.0, lambda, err, tol);
  return err != 0 ? kMiss : v;
}

// Non-central chi-square; see the declaration. The same scheme as ncdbet on P(df/2 + i, u).
double ZRDistFun::NonCentralCdfChi(double x, double df, double lambda) {
  if (!IsFinitePositive(df) || !IsFiniteNonNegative(lambda) || std::isnan(x)) return kMiss;
  if (x <= 0.0) return 0.0;
  if (std::isinf(x)) return 1.0;
  const double u = x / 2.0, h = lambda / 2.0, i0 = PoissonStart(h), a0 = df / 2.0 + i0;
  std::int32_t err = 0;
  double g = gammad(u, a0, true, err);
  if (err != 0) return kMiss;
  if (g == 0.0) return 0.0;
  const double tExp = std::log(u) * a0 - dnlgam(a0 + 1.0) - u;
  if (!(tExp <= kExpOverflow)) return kMiss;
  double t = tExp < kExpUnderflowTight ? 0.0 : std::exp(tExp);
  const double first = g;
  g -= t;
  double q = -h;
  if (i0 > 0.0) q += std::log(h) * i0 - dnlgam(i0 + 1.0);
  if (!(q <= kExpOverflow)) return kMiss;
  if (q < kExpUnderflowTight) return 0.0;
  double w = std::exp(q), rest = 1.0 - w, s = w * first;
  double i = i0;
  for (int pass = 0; pass < kMaxSeriesPasses; ++pass) {
    i += 1.0;
    t *= u / (i + df / 2.0);
    w *= h / i;
    s += w * g;
    g -= t;
    rest -= w;
    if (rest * g <= kChiSeriesTol || w == 0.0) return Clamp01(s);  // as in ncdbet
  }
  return kMiss;
}

// Non-central t, AS 243; see the declaration. Names as in the paper: p and q the Poisson
// weights of the odd and even halves, xodd and xeven the incomplete betas, godd and geven
// their steps, s the Poisson mass not yet used.
double ZRDistFun::NonCentralCdfT(double t, double df, double delta, double tol) {
  if (!IsFinitePositive(df) || std::isnan(t) || !std::isfinite(delta) || std::isnan(tol))
    return kMiss;
  std::int32_t err = 0;
  if (delta == 0.0) {
    const double v = tarncdft(t, df, err);
    return err != 0 ? kMiss : v;
  }
  if (t == 0.0) return prbnrm(-delta);
  const double tt = delta >= 0.0 ? t : -t;
  if (std::fabs(t) >= kSqrtDblMax) return t >= delta ? 1.0 : 0.0;
  const double x = t * t / (t * t + df);
  if (!(x > 0.0)) return kMiss;
  const double lg = std::log(df) - std::log(t * t + df);
  const double h = delta * delta / 2.0, i0 = PoissonStart(h);

  const double aExp = std::log(h) * i0 - (h + kLn2);
  double p, q;
  if (!GuardedExp(aExp - dnlgam(i0 + 1.0), p)) return kMiss;
  if (!GuardedExp(std::log(std::fabs(delta)) + (aExp - kHalfLn2) - dnlgam(i0 + 1.5), q))
    return kMiss;
  if (tt < 0.0) q = -q;

  double a = i0 + 0.5;
  const double b = df / 2.0, bl = b * lg - dnlgam(b);
  double xodd = cdfbet(x, a, b, err);
  if (err != 0) return kMiss;
  double xeven = cdfbet(x, a + 0.5, b, err);
  if (err != 0) return kMiss;
  double godd, geven;
  if (!GuardedExp(dnlgam(a + b) + bl - dnlgam(a + 1.0) + std::log(x) * a, godd)) return kMiss;
  if (!GuardedExp(dnlgam(a + 0.5 + b) + bl - dnlgam(a + 1.5) + std::log(x) * (a + 0.5), geven))
    return kMiss;
  double j = i0;

  double s = 0.5 - p;
  double sum = xeven * q + xodd * p;
  xodd -= godd;
  xeven -= geven;
  double bound;
  int pass = 0;
  do {  // Intended: at least one pass, as AS 243 runs
    if (pass++ == kMaxSeriesPasses) return kMiss;
    a += 1.0;
    j += 1.0;
    godd *= (a + b - 1.0) * x / a;
    geven *= (a + b - 0.5) * x / (a + 0.5);
    p *= h / j;
    q *= h / (j + 0.5);
    s -= p;
    sum += xeven * q + xodd * p;
    xodd -= godd;
    xeven -= geven;
    bound = 2.0 * s * xodd;
  } while (bound > tol);

  const double r = prbnrm(-std::fabs(delta));
  double v = tt >= 0.0 ? sum + r : r - sum;
  if (delta < 0.0) v = 1.0 - v;
  return Clamp01(v);
}

// Non-central t density; see the declaration. g_k = lnGamma((df + k + 1) / 2) steps by
// g_(k+2) = g_k + log((df + k + 1) / 2), so only the two seeds at the peak take lnGamma.
double ZRDistFun::NonCentralPdfT(double x, double df, double delta, std::int32_t & err) {
  err = 0;
  if (!IsFinitePositive(df) || std::isnan(x) || std::isnan(delta)) {
    err = 1;
    return kMiss;
  }
  if (delta == 0.0) {
    const double v = PdfT(x, df, err);
    return err != 0 ? kMiss : std::max(v, 0.0);
  }
  if (std::isinf(x)) return 0.0;
  const double logGammaHalf = dnlgam(df / 2.0);
  if (x == 0.0) {
    const double tExp = dnlgam(df / 2.0 + 0.5) - delta * delta / 2.0 - logGammaHalf - 0.5 * kLogPi -
                        0.5 * std::log(df);
    if (!(tExp <= kExpOverflow)) {
      err = 2;
      return kMiss;
    }
    return tExp <= kExpUnderflowTight ? 0.0 : std::max(std::exp(tExp), 0.0);
  }
  // x^2 + df and x / sqrt(x^2 + df) without overflowing x^2.
  const double ax = std::fabs(x);
  const double ratio = ax > 1.0 ? df / ax / ax : 0.0;
  const double logX2Df = ax > 1.0 ? 2.0 * std::log(ax) + std::log1p(ratio) : std::log(x * x + df);
  const double xOverRoot = ax > 1.0 ? 1.0 / std::sqrt(1.0 + ratio) : ax / std::sqrt(x * x + df);
  const double logY = std::log(kSqrt2 * std::fabs(delta) * xOverRoot);
  const double c = ax > 1.0 ? delta * delta / (1.0 + ratio) : delta * delta * x * x / (x * x + df);
  const double m = (std::sqrt((c - 2.0 + 4.0 * df) * c + 1.0) + c - 3.0) / 2.0;
  if (!(m + 10000.0 < 2147483647.0)) {
    err = 2;
    return kMiss;
  }
  const double k0 = std::max(std::floor(m) + 1.0, 0.0);
  const bool alternate = (x < 0.0) != (delta < 0.0);
  const double logC = df / 2.0 * std::log(df) - delta * delta / 2.0 - 0.5 * kLogPi - logGammaHalf -
                      (df + 1.0) / 2.0 * logX2Df;

  // Log of term k without C: g_k - log k! + k log|y|.
  struct Walker {
    double k, g, gNext, logFact;  // g_k, g_(k+1) (or g_(k-1) going down), log k!
  };
  const auto logTerm = [&](const Walker & w) { return w.g - w.logFact + w.k * logY + logC; };
  Walker up{k0 + 1.0, dnlgam((df + k0 + 2.0) / 2.0), dnlgam((df + k0 + 3.0) / 2.0),
            dnlgam(k0 + 2.0)};
  Walker down{k0, dnlgam((df + k0 + 1.0) / 2.0), dnlgam((df + k0) / 2.0), dnlgam(k0 + 1.0)};
  const double kMin = std::max(k0 - 10000.0, 0.0), kMax = k0 + 10000.0;
  double sum = 0.0;
  const auto signed_term = [&](const Walker & w, double & v) {
    if (!GuardedExp(logTerm(w), v)) return false;
    if (alternate && std::fmod(w.k, 2.0) == 1.0) v = -v;
    return true;
  };
  for (int round = 0; round < kPdfTMaxRounds; ++round) {
    double lower = 0.0, upper = 0.0;
    if (down.k >= kMin && !signed_term(down, lower)) {
      err = 2;
      return kMiss;
    }
    if (up.k <= kMax && !signed_term(up, upper)) {
      err = 2;
      return kMiss;
    }
    sum += lower + upper;
    if ((std::fabs(upper) + std::fabs(lower)) / std::fabs(sum) <= kPdfTRelTol) break;
    // Step down: g_(k-1) is held; g_(k-2) = g_k - log((df + k - 1) / 2).
    if (down.k > 0.0) {
      const double gPrev = down.g - std::log((df + down.k - 1.0) / 2.0);
      down.logFact -= std::log(down.k);
      down.k -= 1.0;
      down.g = down.gNext;
      down.gNext = gPrev;
    } else {
      down.k = -1.0;
    }
    const double gNextNext = up.g + std::log((df + up.k + 1.0) / 2.0);
    up.k += 1.0;
    up.logFact += std::log(up.k);
    up.g = up.gNext;
    up.gNext = gNextNext;
  }
  return std::max(sum, 0.0);
}

double ZRDistFun::FindNCParamChi(double x, double df, double p, double tol) {
  if (!IsFinitePositive(df) || !(p >= 0.0 && p <= 1.0) || !(tol >= 0.0) || std::isnan(x))
    return kMiss;
  return FindLambda([&](double lambda) { return NonCentralCdfChi(x, df, lambda); }, p, tol, x);
}

double ZRDistFun::FindNCParamF(double x, double df1, double df2, double p, double tol) {
  if (!IsFinitePositive(df1) || !IsFinitePositive(df2) || !(p >= 0.0 && p <= 1.0) ||
      !(tol >= 0.0) || std::isnan(x))
    return kMiss;
  return FindLambda([&](double lambda) { return NonCentralCdfF(x, df1, df2, lambda, tol); }, p, tol,
                    x * df1);
}

// The search for delta: CDF(delta) falls as delta grows. Negative x is refused at entry,
// so the reflection for it is not kept.
double ZRDistFun::FindNCParamT(double x, double df, double p, double tol, double tolCdf) {
  if (!(x >= 0.0) || !(p >= 0.0 && p <= 1.0) || !IsFinitePositive(df) || !(tol >= 0.0))
    return kMiss;
  const auto diff = [&](double delta) {
    if (!(std::fabs(delta) <= kMaxDelta)) return kMiss;
    const double c = NonCentralCdfT(x, df, delta, tolCdf);
    return c == kMiss ? kMiss : c - p;
  };
  const double c0 = NonCentralCdfT(x, df, 0.0, tolCdf);
  if (c0 == kMiss) return kMiss;
  if (c0 == p) return 0.0;
  const double step = x > 1.0 ? x : 1.0;
  double delta = 0.0, lo, hi;
  if (c0 > p) {
    for (int i = 0;; ++i) {
      if (i == kMaxSearchSteps) return kMiss;
      lo = delta;
      delta += step;
      const double d = diff(delta);
      if (d == kMiss) return kMiss;
      if (d == 0.0) return delta;
      if (d < 0.0) break;
    }
    hi = delta;
  } else {
    for (int i = 0;; ++i) {
      if (i == kMaxSearchSteps) return kMiss;
      hi = delta;
      delta -= step;
      const double d = diff(delta);
      if (d == kMiss) return kMiss;
      if (d == 0.0) return delta;
      if (d > 0.0) break;
    }
    lo = delta;
  }
  return Bisect(diff, lo, hi, tol, true);
}

}  // namespace ZRMath_920
