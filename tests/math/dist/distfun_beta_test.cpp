// ZRDistFun: the incomplete beta and its inverse, and the t and F distributions built on
// them, against mpmath; closed forms, failure values and extreme arguments.
#include "zrcommon920r/math/dist/distfun.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>

#include "support/refdata.h"
#include "zrcommon920r/common/numconst.h"

namespace {

using ZRMath_920::ZRDistFun;
using zrtest::RelErr;
constexpr double kMiss = ZRCommon_920::kSysMisValue;
constexpr double kEps = ZRCommon_920::kMachineEpsilon;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kUnderflow = 3.307553003638408e-308;  // exp(-708): smaller results are 0

struct Kernels : ZRDistFun {
  using ZRDistFun::betinv;
  using ZRDistFun::cbtaux;
  using ZRDistFun::cdfbet;
  using ZRDistFun::tarnidft;
};

// Relative bound for I_x(a, b), s = a + b: the series' tail (up to 290 terms below 1e-15
// near x = 0.9966), the fraction's stopping rule 10 s eps, and the log-space prefactor,
// eps times its terms, about 4 |log Gamma(s)|.
double BetaRel(double s) {
  return 2e-13 + kEps * (10.0 * std::fmax(1.0, s) + 4.0 * std::fabs(std::lgamma(s)));
}

TEST(ZRDistFunBeta, MatchesMpmath) {  // data: tests/data/math/dist/cdfbeta.csv
  for (const auto & row : zrtest::LoadRefTable("math/dist/cdfbeta.csv", 3)) {
    SCOPED_TRACE(row.where);
    const double x = row.in[0], a = row.in[1], b = row.in[2], want = row.out[0];
    // Complements are good to an absolute error only: 1 - exp() for a == 1, and
    // 1 - I_(1-x)(b, a) from x = (a + 1) / (a + b + 2) on (eps) or, for a < 1, by the
    // series from x = 0.0034 on (1e-13, its tail near 10000 terms).
    double abs = a == 1.0 || x * (a + b + 2) >= a + 1 ? 2 * kEps : 0.0;
    if (a < 1.0 && x > 0.003) abs = 1e-13;
    EXPECT_LE(std::fabs(ZRDistFun::CdfBeta(x, a, b) - want),
              BetaRel(a + b) * want + abs + kUnderflow);
  }
}

TEST(ZRDistFunBeta, QuantileMatchesMpmath) {  // data: tests/data/math/dist/idfbeta.csv
  for (const auto & row : zrtest::LoadRefTable("math/dist/idfbeta.csv", 3)) {
    SCOPED_TRACE(row.where);
    const double p = row.in[0], a = row.in[1], b = row.in[2], want = row.out[0];
    const double got = ZRDistFun::IdfBeta(p, a, b);
    if (a == 1.0 || b == 1.0 || (a == 0.5 && b == 0.5)) {  // closed forms
      // exp(log(p) / a) loses |log p| eps relative; 1 - exp(log(1 - p) / b) eps absolute.
      EXPECT_LE(std::fabs(got - want), 4 * kEps * ((1 - std::log(p)) * want + 1));
    } else if (p >= 1e-20) {
      // The last Newton step, up to sqrt(acu) = 1e-10, is not taken (nor, after a change of
      // sign, the one before): absolute on the beta scale.
      EXPECT_LE(std::fabs(got - want), 3e-10);
    } else {  // below 1e-20 it may stop at once or at a / (a + b): a value, no failure
      EXPECT_TRUE(got >= 0.0 && got <= 1.0) << got;
    }
  }
}

TEST(ZRDistFunT, BothTailsAndDensityMatchMpmath) {  // data: tests/data/math/dist/cdft.csv
  for (const auto & row : zrtest::LoadRefTable("math/dist/cdft.csv", 2)) {
    SCOPED_TRACE(row.where);
    const double x = row.in[0], df = row.in[1], p = row.out[0], q = row.out[1];
    const double rel = BetaRel(df / 2 + 0.5);
    const double abs = (df == 1.0 || df == 2.0 ? 2 * kEps : 0.0) + kUnderflow;  // atan, 1 - exp()
    // Above 1e8 df CdfT is Phi(x), off by about phi(x) |x^3 + x| / (4 df): below
    // (1 + x^2)^2 / (2 df) relative (4.7e-4 at x = -37, df 1e9; 2.3e-3 at df 2e8).
    const double normal = std::fmin((1 + x * x) * (1 + x * x) / (2 * df), 0.01);
    EXPECT_LE(std::fabs(ZRDistFun::CdfT(x, df) - p), (df > 1e8 ? normal : rel) * p + abs);
    EXPECT_LE(std::fabs(ZRDistFun::SigT(x, df) - q), rel * q + abs);
    // The density's logs: eps times its terms, two log-gammas and the power of 1 + x^2/df.
    const double terms = 2 * std::fabs(std::lgamma(df / 2)) + (df + 1) * std::log1p(x * x / df);
    std::int32_t err = -1;
    EXPECT_LE(std::fabs(ZRDistFun::PdfT(x, df, err) - row.out[2]),
              (1e-14 + 2 * kEps * terms) * row.out[2] + kUnderflow);
    EXPECT_EQ(err, 0);
  }
}

TEST(ZRDistFunT, QuantileMatchesMpmath) {  // data: tests/data/math/dist/idft.csv
  for (const auto & row : zrtest::LoadRefTable("math/dist/idft.csv", 2)) {
    SCOPED_TRACE(row.where);
    const double p = row.in[0], df = row.in[1], t = row.out[0], w = row.out[1];
    const double got = ZRDistFun::IdfT(p, df, 1e-20, 1e-12);
    if (got == kMiss) {  // betinv's closed forms underflow to 0: no infinite quantile
      EXPECT_TRUE((df == 1.0 && p < 1e-150) || (df == 2.0 && p < 1e-16));
    } else if (df >= 1e8) {  // the normal quantile z; t is about z + (z^3 + z) / (4 df)
      EXPECT_LE(RelErr(got, t), (1 + t * t) / (2 * df) + 4 * kEps);
    } else if (std::fmin(p, 1 - p) >= 1e-20) {
      // betinv's 3e-10 on the beta scale w = df / (df + t^2); above 0.5 the tail 2 - p - p
      // rounds by up to 1.7e-16, times dw/dq.
      const double bound = 3e-10 + (p > 0.5 ? 1.7e-16 * row.out[2] : 0.0);
      EXPECT_LE(std::fabs(df / (df + got * got) - w), bound);
    } else {  // below 1e-20 betinv may stop at once: only the sign holds
      EXPECT_LT(got, 0.0);
    }
  }
}

TEST(ZRDistFunF, BothTailsMatchMpmath) {  // data: tests/data/math/dist/cdff.csv
  for (const auto & row : zrtest::LoadRefTable("math/dist/cdff.csv", 3)) {
    SCOPED_TRACE(row.where);
    const double x = row.in[0], df1 = row.in[1], df2 = row.in[2], p = row.out[0];
    const double q = row.out[1], rel = BetaRel((df1 + df2) / 2);
    // Absolute only: a shape of 1 (df 2), 1 - exp(), eps; df1 1, 2 CdfT - 1, with the t's
    // 5e-14 near its centre doubled.
    double abs = df1 == 2.0 || df2 == 2.0 ? 4 * kEps + kUnderflow : kUnderflow;
    if (df1 == 1.0) abs = 1e-13;
    EXPECT_LE(std::fabs(ZRDistFun::CdfF(x, df1, df2) - p), rel * p + abs);
    EXPECT_LE(std::fabs(ZRDistFun::SigF(x, df1, df2) - q), rel * q + abs);
  }
}

TEST(ZRDistFunF, QuantileMatchesMpmath) {  // data: tests/data/math/dist/idff.csv
  for (const auto & row : zrtest::LoadRefTable("math/dist/idff.csv", 3)) {
    SCOPED_TRACE(row.where);
    const double p = row.in[0], df1 = row.in[1], df2 = row.in[2], b = row.out[1];
    const double got = ZRDistFun::IdfF(p, df1, df2);
    // betinv's 3e-10 on the beta scale b = df1 F / (df1 F + df2); for df1 1, p / 2 + 0.5
    // and the t quantile's 2 - p - p round by up to 3e-16, times db/dp.
    const double bound = 3e-10 + (df1 == 1.0 ? 3e-16 * row.out[2] : 0.0);
    if (p >= 1e-20) {
      EXPECT_LE(std::fabs(df1 * got / (df1 * got + df2) - b), bound);
    } else {  // betinv may stop at once: a value all the same
      EXPECT_GE(got, 0.0);
    }
  }
}

TEST(ZRDistFunBeta, ExactPointsAndFailureValues) {
  std::int32_t e[4] = {-1, -1, -1, -1};
  zrtest::ExpectExact(
      {{__LINE__, ZRDistFun::IdfBeta(0.5, 3.0, 3.0), 0.5},
       {__LINE__, ZRDistFun::IdfBeta(0.3, 1e30, 1e-11), 1.0},  // a 1e-20 >= b: mass at 1
       {__LINE__, ZRDistFun::IdfBeta(0.0, -1.0, 2.0), 0.0},    // p 0 or 1: whatever the shapes
       {__LINE__, ZRDistFun::CdfT(0.0, 3.5), 0.5},
       {__LINE__, ZRDistFun::SigT(0.0, 3.5), 0.5},
       {__LINE__, ZRDistFun::IdfT(0.5, 3.5, 1e-20, 1e-12), 0.0},
       {__LINE__, ZRDistFun::IdfF(0.0, 2.5, 3.0), 0.0},
       // Infinite points give the limits; the dfs are checked first.
       {__LINE__, ZRDistFun::CdfBeta(kInf, 2.0, 3.0), 1.0},
       {__LINE__, ZRDistFun::CdfT(kInf, kInf), 1.0},
       {__LINE__, ZRDistFun::SigT(-kInf, 3.0), 1.0},
       {__LINE__, ZRDistFun::PdfT(-kInf, 3.0, e[0]), 0.0},
       {__LINE__, ZRDistFun::SigF(kInf, 1.0, 3.0), 0.0},
       {__LINE__, ZRDistFun::CdfF(-1.0, 0.0, 3.0), kMiss},
       // Failure values: -1.0 from IdfBeta (NaN before p == 0), miss elsewhere.
       {__LINE__, ZRDistFun::IdfBeta(0.5, -1.0, 2.0), -1.0},
       {__LINE__, ZRDistFun::IdfBeta(0.0, kNaN, 3.0), -1.0},
       {__LINE__, ZRDistFun::IdfBeta(0.5, 2.0, kInf), -1.0},
       {__LINE__, Kernels::betinv(0.3, 2.0, 3.0, kNaN, 1e-12), -1.0},
       {__LINE__, ZRDistFun::CdfBeta(kNaN, 2.0, 3.0), kMiss},
       {__LINE__, Kernels::cdfbet(0.5, 2.0, kInf, e[1]), kMiss},
       {__LINE__, ZRDistFun::SigT(1.0, kInf), kMiss},  // no normal branch in the upper tail
       {__LINE__, ZRDistFun::IdfT(0.3, 3.0, kNaN, 1e-12), kMiss},
       {__LINE__, ZRDistFun::IdfT(1e-17, 2.0, 1e-20, 1e-12), kMiss},           // 1 - 2p rounds to 1
       {__LINE__, Kernels::tarnidft(1e-300, 1.0, e[2], 1e-20, 1e-12), kMiss},  // sin^2 is 0
       {__LINE__, ZRDistFun::PdfT(1.0, -2.0, e[3]), kMiss},
       {__LINE__, ZRDistFun::CdfF(2.0, 1.0, kInf), kMiss},  // even where t would take it
       {__LINE__, ZRDistFun::IdfF(1.0, 2.5, 3.0), kMiss},
       {__LINE__, ZRDistFun::IdfF(0.5, 1e-300, 1e300), kMiss},  // df2 / df1 is inf
       {__LINE__, Kernels::cbtaux(0.0), 1.0},
       {__LINE__, Kernels::cbtaux(1.0), 0.0},
       {__LINE__, Kernels::cbtaux(1e300), -1.0},
       {__LINE__, Kernels::cbtaux(-1e-300), kMiss}});
  EXPECT_TRUE(e[0] == 0 && e[1] == 1 && e[2] == 2 && e[3] == 1);
  // mpmath: g(1/2) = 3 - 4 log 2; Cauchy quantiles tan(pi (p - 1/2)); the normal quantile
  // at infinite df; Peizer-Pratt at the mean of Beta(1e12, 1e12), where the fraction stalls.
  EXPECT_LE(RelErr(Kernels::cbtaux(0.5), 0.22741127776021876), 8 * kEps);
  EXPECT_LE(RelErr(ZRDistFun::IdfT(0.75, 1.0, 1e-20, 1e-12), 1.0), 4 * kEps);
  EXPECT_LE(RelErr(ZRDistFun::IdfT(0.025, 1.0, 1e-20, 1e-12), -12.706204736174704), 64 * kEps);
  EXPECT_LE(RelErr(ZRDistFun::IdfT(0.3, kInf, 1e-20, 1e-12), -0.5244005127080408), 4 * kEps);
  EXPECT_LE(std::fabs(ZRDistFun::CdfBeta(0.5, 1e12, 1e12) - 0.5), 1e-9);
}

TEST(ZRDistFunBeta, ExtremeArgumentsGiveAValueOrTheFailureValue) {
  const auto unit = [](double v, double fail) { return v == fail || (v >= 0.0 && v <= 1.0); };
  const double extremes[] = {5e-324, 1e-300, 1e-3, 1.0, 1e5, 1e300, DBL_MAX};
  for (double a : extremes) {
    for (double b : extremes) {
      for (double x : {1e-300, 0.3, 1.0 - 1e-16, 1e300}) {
        SCOPED_TRACE(testing::Message() << x << " " << a << " " << b);
        const double p = x < 1.0 ? x : 0.7;
        std::int32_t err = 0;
        EXPECT_TRUE(unit(ZRDistFun::CdfBeta(x, a, b), kMiss) &&
                    unit(ZRDistFun::IdfBeta(p, a, b), -1.0));
        EXPECT_TRUE(unit(ZRDistFun::CdfF(x, a, b), kMiss) && unit(ZRDistFun::SigF(x, a, b), kMiss));
        EXPECT_TRUE(unit(ZRDistFun::CdfT(-x, a), kMiss) && unit(ZRDistFun::SigT(-x, a), kMiss));
        // Unbounded results: miss, or finite and (but for the t quantile) not negative.
        for (double v : {ZRDistFun::IdfF(p, a, b), ZRDistFun::PdfT(x, a, err),
                         std::fabs(ZRDistFun::IdfT(p, a, 1e-20, 1e-12))})
          EXPECT_TRUE(v == kMiss || (v >= 0.0 && std::isfinite(v))) << v;
      }
    }
  }
}

}  // namespace
