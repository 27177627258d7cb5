// ZRDistFun, log-gamma family: dnlgam and dnlbnc against mpmath tables, exact points,
// overflow and failure values.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include "support/refdata.h"
#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/dist/distfun.h"

namespace {

using ZRMath_920::ZRDistFun;
using zrtest::RelErr;
constexpr double kMiss = ZRCommon_920::kSysMisValue;
constexpr double kEps = ZRCommon_920::kMachineEpsilon;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

struct Kernels : ZRDistFun {
  using ZRDistFun::dnlbnc;
  using ZRDistFun::dnlgam;
};

TEST(ZRDistFunLogGamma, MatchesMpmath) {  // data: tests/data/math/dist/lgamma.csv
  for (const auto & row : zrtest::LoadRefTable("math/dist/lgamma.csv", 1)) {
    SCOPED_TRACE(row.where);
    const double want = row.out[0];
    // Tables and series under 2 eps; the rounding of y = x - 4.5 / (x + 0.5) and the last
    // Horner step leave about 1e-16 absolute, which is all there is near the zeros at 1, 2.
    EXPECT_LE(std::fabs(Kernels::dnlgam(row.in[0]) - want), 4 * kEps * std::fabs(want) + 2e-16);
  }
}

TEST(ZRDistFunLogGamma, ExactPointsOverflowAndFailures) {
  zrtest::ExpectExact(
      {{__LINE__, Kernels::dnlgam(1.0), 0.0},
       {__LINE__, Kernels::dnlgam(2.0), 0.0},
       {__LINE__, Kernels::dnlgam(0.5), 0.5723649429247001},  // log(pi) / 2, nearest double
       {__LINE__, Kernels::dnlgam(1e306), kInf},              // the value, about 7e308, overflows
       {__LINE__, Kernels::dnlgam(0.0), kMiss},
       // Intended: refused, though x Q(x) is positive here and the series gives a number.
       {__LINE__, Kernels::dnlgam(-1.5), kMiss},
       {__LINE__, Kernels::dnlgam(kInf), kMiss},  // Stirling would form inf - inf
       {__LINE__, Kernels::dnlgam(kNaN), kMiss},
       {__LINE__, ZRDistFun::tarndnlgam(0.0), kMiss}});
}

TEST(ZRDistFunLogGamma, BinomialMatchesMpmath) {  // data: tests/data/math/dist/lbinom.csv
  for (const auto & row : zrtest::LoadRefTable("math/dist/lbinom.csv", 2)) {
    SCOPED_TRACE(row.where);
    const double n = row.in[0], k = row.in[1];
    std::int32_t err = -1;
    const double got = Kernels::dnlbnc(n, k, err);
    EXPECT_EQ(err, 0);
    EXPECT_GE(got, 0.0);  // the coefficient is at least 1; rounding below 0 is clamped
    if (n <= 33.0 && n == std::floor(n) && k == std::floor(k)) {
      EXPECT_LE(RelErr(got, row.out[0]), 4 * kEps);  // a product of at most 16 ratios
    } else {
      // A difference of log-gammas at rounded arguments: eps times out[1], the sum of
      // their sizes and of their sensitivities to the arguments.
      EXPECT_LE(std::fabs(got - row.out[0]), 2 * kEps * row.out[1]);
    }
  }
}

TEST(ZRDistFunLogGamma, BinomialEndsAndFailures) {
  struct {
    int line;
    double n, k, want;
    std::int32_t err;
  } const cases[] = {{__LINE__, 5.0, 0.0, 0.0, 0},      {__LINE__, 7.5, 7.5, 0.0, 0},
                     {__LINE__, 3.0, 4.0, kMiss, 1},    {__LINE__, -1.0, 0.0, kMiss, 1},
                     {__LINE__, 3.0, -1.0, kMiss, 1},   {__LINE__, kNaN, 1.0, kMiss, 1},
                     {__LINE__, 3.0, kNaN, kMiss, 1},   {__LINE__, kInf, 1.0, kMiss, 1},
                     {__LINE__, 1e306, 5e305, kMiss, 2}};  // log-gammas overflow: inf - inf
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    std::int32_t err = 7;  // every call resets it
    EXPECT_EQ(Kernels::dnlbnc(c.n, c.k, err), c.want);
    EXPECT_EQ(err, c.err);
  }
}

}  // namespace
