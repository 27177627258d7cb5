// ZRDistFun: the F distribution, its upper tail and quantile, through the incomplete beta
// and its inverse (and through t when the numerator has one degree of freedom).
#include <cmath>
#include <cstdint>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/dist/detail/distfun_util.h"
#include "zrcommon920r/math/dist/distfun.h"

namespace ZRMath_920 {
namespace {

constexpr double kMiss = ZRCommon_920::kSysMisValue;

using distfun_detail::IsFinitePositive;

}  // namespace

// F distribution P(F <= x): with r = df2 / df1, I_(x/(r+x))(df1/2, df2/2) below 1,
// 1 - I_(r/(r+x))(df2/2, df1/2) from 1, 2 P(T <= sqrt x) - 1 with df2 for df1 == 1.
// Accuracy: see CdfF. err 1 and miss unless both df are positive and finite and x is not
// NaN; 0 for x <= 0, 1 for x == +inf; err 2 and miss if the t or beta kernel fails.
double ZRDistFun::tarncdff(const double & x, const double & df1, const double & df2,
                           std::int32_t & err) {
  err = 0;
  if (std::isnan(x) || !IsFinitePositive(df1) || !IsFinitePositive(df2)) {
    err = 1;
    return kMiss;
  }
  if (x <= 0.0) return 0.0;
  if (std::isinf(x)) return 1.0;
  std::int32_t kerr = 0;
  if (df1 == 1.0) {
    const double t = tarncdft(std::sqrt(x), df2, kerr);
    if (kerr != 0 || t == kMiss) {
      err = 2;
      return kMiss;
    }
    return 2.0 * t - 1.0;
  }
  const double r = df2 / df1;
  const double v = x >= 1.0 ? 1.0 - cdfbet(r / (r + x), df2 / 2.0, df1 / 2.0, kerr)
                            : cdfbet(x / (r + x), df1 / 2.0, df2 / 2.0, kerr);
  if (kerr != 0) {
    err = 2;
    return kMiss;
  }
  return v;
}

double ZRDistFun::CdfF(double x, double df1, double df2) {
  std::int32_t err = 0;
  const double v = tarncdff(x, df1, df2, err);
  return err != 0 ? kMiss : v;
}

double ZRDistFun::SigF(double x, double df1, double df2) {
  if (std::isnan(x) || !IsFinitePositive(df1) || !IsFinitePositive(df2)) return kMiss;
  if (x <= 0.0) return 1.0;
  if (std::isinf(x)) return 0.0;
  const double r = df2 / df1;
  std::int32_t err = 0;
  const double v = x >= 1.0 ? cdfbet(r / (r + x), df2 / 2.0, df1 / 2.0, err)
                            : 1.0 - cdfbet(x / (r + x), df1 / 2.0, df2 / 2.0, err);
  return err != 0 ? kMiss : v;
}

// F quantile: for df1 == 1 the square of the t quantile at p / 2 + 0.5; otherwise, with
// b = betinv(p, df1/2, df2/2, 1e-20, 1e-12), b / (1 - b) df2 / df1. Accuracy: see IdfF.
// err 1 and miss unless 0 <= p < 1 and both df are positive and finite; 0 for p == 0;
// err 2 and miss when the t quantile fails, b is outside [0, 1), or F would be infinite.
double ZRDistFun::tarnidff(const double & p, const double & df1, const double & df2,
                           std::int32_t & err) {
  err = 0;
  if (!(p >= 0.0 && p < 1.0) || !IsFinitePositive(df1) || !IsFinitePositive(df2)) {
    err = 1;
    return kMiss;
  }
  if (p == 0.0) return 0.0;
  if (df1 == 1.0) {
    const double t = tarnidft(p * 0.5 + 0.5, df2, err, 1e-20, 1e-12);
    if (err != 0 || t == kMiss) {
      err = 2;
      return kMiss;
    }
    return t * t;
  }
  const double b = betinv(p, df1 / 2.0, df2 / 2.0, 1e-20, 1e-12);
  const double f = b / (1.0 - b) * (df2 / df1);
  if (!(b >= 0.0 && b < 1.0) || !std::isfinite(f)) {
    err = 2;
    return kMiss;
  }
  return f;
}

double ZRDistFun::IdfF(double p, double df1, double df2) {
  std::int32_t err = 0;
  const double v = tarnidff(p, df1, df2, err);
  return err != 0 ? kMiss : v;
}

}  // namespace ZRMath_920
