// Chi-square, gamma and exponential distributions and their kernels (incomplete gamma,
// chi-square quantile, bisection) against mpmath tables; failure values and edge inputs.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <limits>

#include "support/refdata.h"
#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/dist/distfun.h"

namespace {

using zrtest::RelErr;
using D = ZRMath_920::ZRDistFun;
constexpr double kMiss = ZRCommon_920::kSysMisValue;
constexpr double kEps = ZRCommon_920::kMachineEpsilon;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

struct K : D {
  using D::cdfexp;
  using D::gammad;
  using D::idfchb;
  using D::tarnidfchi;
};

// Absolute error bounds of P(a, h) and Q(a, h) from gammad. exp(a log h - h - lnGamma(a))
// carries eps times the size of its terms, above the 1e-14 at which the sums stop; the
// series (h <= 1 or h <= a) forms P, the fraction (and a == 1) Q, the other tail is 1 minus
// it. From a shape of 1.7e7, points within 6e-8 below a + 1 go to the normal forms:
// Wilson-Hilferty for P, and for Q Peizer-Pratt, whose 1 - y + y log y keeps eps absolute
// only, which moves Q by up to sqrt(2 eps h) / 2.
struct Bound {
  double p, q;
};
Bound TailBound(double h, double a, double p, double q) {
  if (a >= 1.7e7 && h <= a && h >= (a + 1) * (1 - 6.1e-8)) return {1e-9, std::sqrt(kEps * h / 2)};
  const double rel =
      1e-13 + 2 * kEps * (a * std::fabs(std::log(h)) + h + std::fabs(std::lgamma(a)));
  const bool series = a != 1 && (h <= 1 || h <= a);
  const double direct = rel * (series ? p : q), other = direct + kEps * (series ? q : p);
  return series ? Bound{direct, other} : Bound{other, direct};
}
double Rel(double bound, double want) {
  return want == 0 ? bound : bound / want;
}

// Relative error bound of the quantile h of P(a, .) at p. Start values and steps exponentiate
// sums that carry eps times their terms over a. A start below 5e-7 on the chi-square scale
// is returned as it is (off by about h / (a + 1)); otherwise p is compared with the lower
// tail: P's error over h times the density. Where the chi-square density is below e^-141.8
// the Taylor steps cannot be formed and the bisection (1e-8) finishes.
double QuantileTol(double p, double a, double h) {
  const double logHf = a * std::log(h) - h - std::lgamma(a);
  const double terms = std::fabs(std::log(p)) + std::fabs(std::log(a)) + std::fabs(std::lgamma(a));
  const double base = 4 * kEps * (1 + terms / a);
  if (2 * h < 5e-7) return base + 1.1 * h / (a + 1);
  if (logHf - std::log(4 * h) < -141.8 + 5) return 1e-8;
  return base + TailBound(h, a, p, 1 - p).p / std::exp(logHf);
}

TEST(ZRDistFunChi, BothTailsMatchMpmath) {  // data: tests/data/math/dist/cdfchi.csv
  for (const auto & row : zrtest::LoadRefTable("math/dist/cdfchi.csv", 2)) {
    SCOPED_TRACE(row.where);
    const double x = row.in[0], df = row.in[1], p = row.out[0], q = row.out[1];
    const Bound b = TailBound(x / 2, df / 2, p, q);
    EXPECT_LE(RelErr(D::CdfChi(x, df), p), Rel(b.p, p));
    EXPECT_LE(RelErr(D::SigChi(x, df), q), Rel(b.q, q));
  }
}

TEST(ZRDistFunChi, QuantileAndBisectionMatchMpmath) {  // data: tests/data/math/dist/idfchi.csv
  for (const auto & row : zrtest::LoadRefTable("math/dist/idfchi.csv", 2)) {
    SCOPED_TRACE(row.where);
    const double p = row.in[0], df = row.in[1], x = row.out[0], tol = QuantileTol(p, df / 2, x / 2);
    EXPECT_LE(RelErr(D::IdfChi(p, df), x), tol);
    // The bisection alone, from starts off by up to 2 (from 0.3 x it widens the bracket), where
    // P tells the ends apart: not so near p = 1, nor 1 - exp(-h) at df 2 below 1e-10.
    if (p > 1 - 1e-6 || (df == 2 && p < 1e-10)) continue;
    for (double start : {0.6 * x, 0.3 * x, 1.9 * x}) {
      std::int32_t err = -1;
      EXPECT_LE(RelErr(K::idfchb(p, df, start, err), x), 1e-8 + tol);
      EXPECT_EQ(err, 0);
    }
  }
}

TEST(ZRDistFunGamma, QuantileCdfAndDensityMatchMpmath) {  // data: tests/data/math/dist/gamma.csv
  for (const auto & row : zrtest::LoadRefTable("math/dist/gamma.csv", 3)) {
    SCOPED_TRACE(row.where);
    const double p = row.in[0], shape = row.in[1], rate = row.in[2], x = row.out[0];
    const double cdf = row.out[1], pdf = row.out[2], h = x * rate;
    EXPECT_LE(RelErr(D::IdfGam(p, shape, rate), x), QuantileTol(p, shape, h));
    // x rate is rounded, which moves the cdf by up to eps h f(h).
    const double roundingOfH = kEps * std::exp(shape * std::log(h) - h - std::lgamma(shape));
    EXPECT_LE(RelErr(D::CdfGam(x, shape, rate), cdf),
              Rel(TailBound(h, shape, cdf, 1 - cdf).p + roundingOfH, cdf));
    // The density's exponent carries eps times its terms, the rounding of h adds shape eps.
    const double terms = std::fabs((shape - 1) * std::log(h)) + std::fabs(std::log(rate)) + h +
                         std::fabs(std::lgamma(shape)) + shape;
    EXPECT_LE(RelErr(D::PdfGamma(x, shape, rate), pdf), 1e-14 + 2 * kEps * terms);
  }
}

TEST(ZRDistFunGamma, FailureValuesLimitsAndErrorCodes) {
  std::int32_t e[7] = {-1, -1, -1, -1, -1, -1, -1};  // each kernel must set its code
  zrtest::ExpectExact(
      {{__LINE__, D::CdfChi(1, 0), kMiss},
       {__LINE__, D::CdfChi(1, kInf), kMiss},
       {__LINE__, D::CdfChi(kNaN, 3), kMiss},
       {__LINE__, D::SigChi(0, 3), 1},
       {__LINE__, D::SigChi(kInf, 3), 0},  // the limit, not Peizer-Pratt's 0.5
       {__LINE__, D::IdfChi(0, 3), 0},
       {__LINE__, D::IdfChi(1, 3), kMiss},
       {__LINE__, D::CdfGam(1, 0, 1), kMiss},
       {__LINE__, D::CdfGam(1, 2, kInf), kMiss},
       // Intended: shape 0 passes IdfGam's test and the kernel's miss comes back.
       {__LINE__, D::IdfGam(0.5, 0, 4), kMiss},
       {__LINE__, D::IdfGam(0, 0, 4), 0},
       {__LINE__, D::IdfGam(0.5, 2, 0), kMiss},
       {__LINE__, D::PdfGamma(0, 1, 2.5), 2.5},
       {__LINE__, D::PdfGamma(0, 2, 1), 0},
       {__LINE__, D::PdfGamma(0, 0.5, 1), kMiss},
       {__LINE__, D::PdfGamma(-1, 0.5, 1), 0},
       {__LINE__, D::PdfGamma(kInf, 0.5, 1), 0},
       // Exponent guards: below -708.39 the density is 0; above 709 (1e315 here) it is miss.
       {__LINE__, D::PdfGamma(708.4, 1, 1), 0},
       {__LINE__, D::PdfGamma(1e-320, 0.01, 1), kMiss},
       {__LINE__, K::gammad(kNaN, 2, true, e[0]), kMiss},
       {__LINE__, K::gammad(1e10, 1e308, true, e[1]), kMiss},  // a log x - x: inf - inf
       {__LINE__, K::cdfexp(1, 0, e[2]), kMiss},
       {__LINE__, K::tarnidfchi(0.5, 1e62, e[3]), kMiss},  // log df + 3 log w passes 141.8
       {__LINE__, K::idfchb(0.5, 3, 0, e[4]), kMiss},
       // The median of chi-square(3), 2.366, lies outside [start / 2, 4 start] for both.
       {__LINE__, K::idfchb(0.5, 3, 3 * 2.366, e[5]), kMiss},
       {__LINE__, K::idfchb(0.5, 3, 0.2 * 2.366, e[6]), kMiss}});
  const std::int32_t wantErr[7] = {1, 2, 1, 2, 1, 2, 2};
  for (int i = 0; i < 7; ++i) EXPECT_EQ(e[i], wantErr[i]) << "e[" << i << "]";
  EXPECT_GT(D::PdfGamma(708.38, 1, 1), 0);
}

TEST(ZRDistFunGamma, ExtremeParametersReturnPromptly) {
  // Every loop has a cap: each call ends with a probability, a quantile, a density or miss.
  for (double v : {1e-300, 1e-30, 1.0, 1e30, 1e300}) {
    for (double w : {1e-300, 1.0, 1e300}) {
      SCOPED_TRACE(testing::Message() << v << " " << w);
      for (double r : {D::CdfChi(v, w), D::SigChi(v, w), D::CdfGam(v, w, w), D::CdfGam(v, w, 1 / w),
                       D::IdfChi(0.5, w), D::IdfGam(0.9, w, v), D::PdfGamma(v, w, v)})
        EXPECT_TRUE(r == kMiss || (r >= 0 && !std::isinf(r))) << r;
    }
  }
  EXPECT_EQ(D::IdfGam(0.5, 1e-300, 1), 0);           // 0.5^1e300 underflows
  EXPECT_NEAR(D::CdfChi(1e300, 1e300), 0.5, 1e-15);  // P(a, a) -> 1/2 as a grows
  EXPECT_NEAR(D::SigChi(1e300, 1e300), 0.5, 1e-15);
}

}  // namespace
