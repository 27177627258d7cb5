// ZRDistFun: Student's t distribution, its upper tail, quantile and density, through the
// incomplete beta and its inverse.
#include <cmath>
#include <cstdint>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/dist/detail/distfun_util.h"
#include "zrcommon920r/math/dist/distfun.h"

namespace ZRMath_920 {
namespace {

constexpr double kMiss = ZRCommon_920::kSysMisValue;
constexpr double kPi = 3.141592653589793;
constexpr double kLogSqrtPi = 0.5723649429247001;
constexpr double kExpUnderflow = -708.0;
constexpr double kNormalDf = 1e8;  // CdfT above, IdfT from here on: the normal

}  // namespace

// t distribution P(T <= x): Phi(x) above 1e8 df, atan(x) / pi + 0.5 for df == 1, else
// I_(df/(df+x^2))(df/2, 1/2) / 2 (or 1 minus it) for |x| > 1 and (1 +- I_(x^2/(df+x^2))(1/2,
// df/2)) / 2 otherwise. Accuracy: see CdfT. err 1 and miss unless df > 0 (infinite df
// takes Phi) and x is not NaN; 0 or 1 for infinite x; err 2 and miss if the beta fails.
double ZRDistFun::tarncdft(const double & x, const double & df, std::int32_t & err) {
  err = 0;
  if (std::isnan(x) || !(df > 0.0)) {
    err = 1;
    return kMiss;
  }
  if (std::isinf(x)) return x > 0.0 ? 1.0 : 0.0;
  if (df > kNormalDf) {
    const double v = prbnrm(x);
    if (v == kMiss) err = 2;
    return v;
  }
  if (x == 0.0) return 0.5;
  if (df == 1.0) return std::atan(x) / kPi + 0.5;
  const double a = std::fabs(x), v = df / a;
  std::int32_t berr = 0;
  if (a > 1.0) {
    const double c = cdfbet(v / (v + a), df / 2.0, 0.5, berr);
    if (berr != 0) {
      err = 2;
      return kMiss;
    }
    return x > 1.0 ? 1.0 - c / 2.0 : c / 2.0;
  }
  double c = cdfbet(a / (v + a), 0.5, df / 2.0, berr);
  if (berr != 0) {
    err = 2;
    return kMiss;
  }
  if (x < 0.0) c = -c;
  return c / 2.0 + 0.5;
}

double ZRDistFun::CdfT(double x, double df) {
  std::int32_t err = 0;
  const double v = tarncdft(x, df, err);
  return err != 0 ? kMiss : v;
}

double ZRDistFun::SigT(double x, double df) {
  if (std::isnan(x) || !distfun_detail::IsFinitePositive(df)) return kMiss;
  if (std::isinf(x)) return x > 0.0 ? 0.0 : 1.0;
  if (x == 0.0) return 0.5;
  if (df == 1.0) return 0.5 - std::atan(x) / kPi;
  const double a = std::fabs(x), v = df / a;
  std::int32_t err = 0;
  if (a > 1.0) {
    const double c = cdfbet(v / (v + a), df / 2.0, 0.5, err);
    if (err != 0) return kMiss;
    // Intended: (0.5 - c/2) + 0.5 in this order, not 1 - c/2.
    return x > 1.0 ? c / 2.0 : (0.5 - c / 2.0) + 0.5;
  }
  double c = cdfbet(a / (v + a), 0.5, df / 2.0, err);
  if (err != 0) return kMiss;
  if (x > 0.0) c = -c;
  return c / 2.0 + 0.5;
}

// t quantile: probit(p) from 1e8 df; otherwise b = betinv(q, df/2, 1/2, acu, eps), q =
// 2p below 0.5 and 2 - p - p above, and -+sqrt((1/b - 1) df). Accuracy: see IdfT. err 1
// and miss unless 0 < p < 1, df > 0 (infinite takes probit) and acu, eps are not NaN; 0
// for p == 0.5; err 2 and miss when betinv fails (-1.0), its closed forms underflow to
// b == 0 (df 1 or 2 at tiny p), or the quantile would be infinite.
double ZRDistFun::tarnidft(const double & p, const double & df, std::int32_t & err,
                           const double & acu, const double & eps) {
  err = 0;
  if (!(p > 0.0 && p < 1.0 && df > 0.0) || std::isnan(acu) || std::isnan(eps)) {
    err = 1;
    return kMiss;
  }
  if (p == 0.5) return 0.0;
  if (df >= kNormalDf) {
    const double z = probit(p);
    if (z == kMiss) err = 2;
    return z;
  }
  const double q = p < 0.5 ? 2.0 * p : 2.0 - p - p;
  const double b = betinv(q, df / 2.0, 0.5, acu, eps);
  if (b == -1.0 || b == 0.0) {  // -1.0: betinv failed; 0: underflow, an infinite quantile
    err = 2;
    return kMiss;
  }
  const double x = (1.0 / b - 1.0) * df;
  if (!(x >= 0.0) || std::isinf(x)) {
    err = 2;
    return kMiss;
  }
  const double t = std::sqrt(x);
  return p < 0.5 ? -t : t;
}

double ZRDistFun::IdfT(double p, double df, double acu, double eps) {
  std::int32_t err = 0;
  const double v = tarnidft(p, df, err, acu, eps);
  return err != 0 ? kMiss : v;
}

double ZRDistFun::PdfT(double x, double df, std::int32_t & err) {
  err = 0;
  if (std::isnan(x) || !distfun_detail::IsFinitePositive(df)) {
    err = 1;
    return kMiss;
  }
  if (std::isinf(x)) return 0.0;
  double t = dnlgam(df / 2.0 + 0.5) - 0.5 * std::log(df) - dnlgam(df / 2.0) - kLogSqrtPi;
  if (x != 0.0) t -= std::log(x * x / df + 1.0) * ((df + 1.0) * 0.5);
  const double v = t < kExpUnderflow ? 0.0 : std::exp(t);
  if (!std::isfinite(v)) {  // a log-gamma failed (df / 2 underflows to 0)
    err = 2;
    return kMiss;
  }
  return v;
}

}  // namespace ZRMath_920
