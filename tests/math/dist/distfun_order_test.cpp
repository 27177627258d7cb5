// Percentiles of grouped data and the median's confidence interval on small frequency
// tables worked by hand.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/dist/distfun.h"

namespace {

using D = ZRMath_920::ZRDistFun;
constexpr double kMiss = ZRCommon_920::kSysMisValue;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Values 1..4 with frequencies 2, 4, 2, 2 (N = 10). Mid-cumulatives 1, 4, 7, 9; widths 1
// give the classes [0.5, 1.5] .. [3.5, 4.5] with cumulatives 2, 6, 8, 10; the limits 1.5
// and 3 give [0.5, 1.5], [1.5, 3], [3, 5] (5 = 2 * 4 - 3, 0.5 = 2 * 1 - 1.5) with 2, 6, 10.
TEST(ZRDistFunGPTile, HandWorkedTable) {
  const std::vector<double> values{1, 2, 3, 4}, freqs{2, 4, 2, 2}, limits{1.5, 3.0};
  struct {
    int line;
    std::int32_t method;
    double pct, want;
    std::int32_t status;
  } const cases[] = {
      {__LINE__, 0, 50, 2 + 1.0 / 3, 0},  // c = 5 between mids 4 and 7
      {__LINE__, 0, 10, 1, 0},            // c = 1 is the first mid: its value exactly
      {__LINE__, 0, 90, 4, 0},            // c = 9 is the last mid
      {__LINE__, 0, 5, kMiss, 1},         // c = 0.5 below the first mid
      {__LINE__, 0, 95, kMiss, 2},       {__LINE__, 1, 50, 2.25, 0},  // 3/4 of [1.5, 2.5]
      {__LINE__, 1, 60, 2.5, 0},  // cumulative exactly 6: the upper bound
      {__LINE__, 1, 0, 0.5, 0},          {__LINE__, 1, 100, 4.5, 0},
      {__LINE__, 1, 120, kMiss, 2},      {__LINE__, 1, -5, kMiss, 1},
      {__LINE__, 2, 50, 2.625, 0},  // 3/4 of [1.5, 3]
      {__LINE__, 2, 10, 1.0, 0},    // half of [0.5, 1.5]
      {__LINE__, 2, 20, 1.5, 0},         {__LINE__, 2, 100, 5.0, 0},
      {__LINE__, 3, 50, kMiss, -1},  // three limits asked for, two given
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    double result = 0;
    std::int32_t status = 9;
    D::GPTile(4, c.pct, values, freqs, c.method == 1 ? std::vector<double>{1.0} : limits, c.method,
              result, status);
    EXPECT_EQ(status, c.status);
    if (c.want == kMiss)
      EXPECT_EQ(result, kMiss);
    else
      EXPECT_NEAR(result, c.want, 1e-15 * c.want);
  }
}

TEST(ZRDistFunGPTile, NotComputed) {
  double result = 0;
  std::int32_t status = 9;
  D::GPTile(1, 50, {1}, {3}, {}, 0, result, status);
  EXPECT_EQ(status, -1);
  EXPECT_EQ(result, kMiss);
  D::GPTile(3, 50, {1, 2}, {3, 3}, {}, 0, result, status);  // vectors shorter than n
  EXPECT_EQ(status, -1);
  D::GPTile(2, kNaN, {1, 2}, {3, 3}, {}, 0, result, status);
  EXPECT_EQ(status, -1);
}

// Values 1..5 with frequencies 1, 2, 3, 2, 2 (total 10). Level 95: q = IdfBin(0.025, 10,
// 0.5) = 1 (P(X <= 1) = 11/1024), r = 2 falls in class 2 (cumulative 3), r2 = 9 in class 5;
// coverage 200 (P(X >= 2) - 0.5) = 200 (1013/1024 - 1/2). Level 50: q = 3 (176/1024 <= 0.25
// < 386/1024), r = 4 in class 3, r2 = 7 in class 4, coverage 200 (848/1024 - 1/2).
TEST(ZRDistFunMednci, HandWorkedTable) {
  const std::vector<double> values{1, 2, 3, 4, 5}, freqs{1, 2, 3, 2, 2};
  struct {
    int line;
    double total, level;
    bool wantCoverage;
    double lower, upper, coverage;
  } const cases[] = {
      {__LINE__, 10, 95, true, 2, 5, 200.0 * 501 / 1024},
      {__LINE__, 10, 50, true, 3, 4, 200.0 * 336 / 1024},
      {__LINE__, 10, 50, false, 3, 4, kMiss},
      {__LINE__, 10, 99.9, true, 1, 5, 100},  // q = -1: the whole range
      {__LINE__, 2, 95, true, 1, 5, 100},
      {__LINE__, 1, 95, true, kMiss, kMiss, kMiss},
      {__LINE__, 10.5, 95, true, kMiss, kMiss, kMiss},  // IdfBin: n not whole
      {__LINE__, kNaN, 95, true, kMiss, kMiss, kMiss},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    double lower = 0, upper = 0, coverage = 0;
    D::Mednci(5, values, freqs, c.total, c.level, c.wantCoverage, lower, upper, coverage);
    EXPECT_EQ(lower, c.lower);
    EXPECT_EQ(upper, c.upper);
    if (c.coverage == kMiss)
      EXPECT_EQ(coverage, kMiss);
    else
      EXPECT_NEAR(coverage, c.coverage, 1e-12);  // I_0.5 to a few eps, times 200
  }
}

}  // namespace
