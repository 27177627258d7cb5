// ZRPower: statuses and guards by table, results against closed forms and mpmath values;
// ZRMV: the missing value and the display lines, written by hand.
#include "zrcommon920r/math/dist/power.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/capture.h"
#include "support/refdata.h"

namespace {

using ZRCommon_920::ZRMV;
using ZRMath_920::ZRPower;
constexpr double kMiss = ZRCommon_920::kSysMisValue;
constexpr double kEps = 2.220446049250313e-16;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

// want is compared exactly (a zero's sign included) when tol is 0, else by relative error.
void ExpectValue(double got, double want, double tol) {
  const bool exact = got == want && std::signbit(got) == std::signbit(want);
  EXPECT_TRUE(tol == 0.0 ? exact : zrtest::RelErr(got, want) <= tol) << got;
}

struct StatusCase {
  int line;
  double x, e;  // e == kNoE: Exponent(x), else Power(x, e)
  int status;
  double want, tol;
};
constexpr double kNoE = -12345.0;

// Statuses 0 to 7 each appear; r must be miss wherever no result is given. Integers have
// no lower bound: -2999999999 is odd, -inf even.
TEST(ZRPower, StatusAndResult) {
  constexpr double kTol = 8 * kEps;  // |t| <= 5: exp's rounding plus |t| times log's
  const StatusCase cases[] = {
      {__LINE__, std::nextafter(709.0, kInf), kNoE, 2, kMiss, 0},   // past the guard
      {__LINE__, std::nextafter(-708.39, -kInf), kNoE, 1, 0.0, 0},  // past the guard
      // mpmath: e^709 = 8.21840746155497218924e307, e^-708.39 = 2.23940149888046784448e-308
      {__LINE__, 709.0, kNoE, 0, 8.218407461554972e307, kEps},
      {__LINE__, -708.39, kNoE, 0, 2.2394014988804677e-308, kEps},
      {__LINE__, kInf, kNoE, 2, kMiss, 0},
      {__LINE__, -kInf, kNoE, 1, 0.0, 0},
      {__LINE__, kNaN, kNoE, 2, kMiss, 0},
      {__LINE__, 0, 0, 7, 1.0, 0},
      {__LINE__, 0, 2.5, 0, 0.0, 0},
      {__LINE__, -0.0, -1, 6, kMiss, 0},
      {__LINE__, -8, 1.0 / 3, 0, -2.0, kTol},
      {__LINE__, -27, -1.0 / 3, 0, -1.0 / 3, kTol},
      {__LINE__, -8, 0.5, 4, kMiss, 0},
      {__LINE__, -2, 3, 0, -8.0, kTol},
      {__LINE__, -2, 0, 5, 1.0, 0},
      {__LINE__, 2, 0.5, 0, 1.4142135623730951, kTol},
      {__LINE__, 10, -400, 1, 0.0, 0},
      {__LINE__, -10, 400, 2, kMiss, 0},
      {__LINE__, -10, -400, 1, 0.0, 0},
      {__LINE__, -10, 401, 3, kMiss, 0},
      {__LINE__, -0.1, -401, 2, kMiss, 0},
      {__LINE__, -10, -401, 1, -0.0, 0},
      {__LINE__, -1, -2999999999.0, 0, -1.0, 0},
      {__LINE__, -1, 3e9, 4, kMiss, 0},
      {__LINE__, kNaN, 0, 4, kMiss, 0},
      {__LINE__, 2, kNaN, 4, kMiss, 0},
      {__LINE__, kInf, -2, 1, 0.0, 0},
      {__LINE__, -kInf, 3, 3, kMiss, 0},
      {__LINE__, -kInf, -3, 1, -0.0, 0},
      {__LINE__, 2, kInf, 2, kMiss, 0},
      {__LINE__, 1, kInf, 0, 1.0, 0},
      {__LINE__, -1, -kInf, 0, 1.0, 0},
      {__LINE__, -2, kInf, 4, kMiss, 0},
      {__LINE__, 0, -kInf, 6, kMiss, 0}};
  for (const StatusCase & c : cases) {
    SCOPED_TRACE(c.line);
    double r = 12345.0;
    EXPECT_EQ(c.e == kNoE ? ZRPower::Exponent(c.x, r) : ZRPower::Power(c.x, c.e, r), c.status);
    ExpectValue(r, c.want, c.tol);
  }
}

TEST(ZRPower, MultiplyThroughLogs) {
  struct {
    int line;
    double a, b, want, tol;
  } const cases[] = {
      {__LINE__, 1e200, 1e200, kMiss, 0},
      {__LINE__, -1e200, 1e-300, -1e-100, 2e-13},  // (|log a| + |log b| + |t|) eps / 2 = 1.5e-13
      {__LINE__, 3, -4, -12, 8 * kEps},            // exp of a rounded log 2.48
      {__LINE__, -2.5, -4, 10, 8 * kEps},
      {__LINE__, 1e308, 1.5, kMiss, 0},     // a * b is finite, its log 709.6 is not
      {__LINE__, 1e-300, 1e-10, 0.0, 0},    // a * b is subnormal, its log -713.8 underflows
      {__LINE__, 1e-200, -1e-200, 0.0, 0},  // +0 whatever the signs
      {__LINE__, 0, kInf, 0.0, 0},
      {__LINE__, -kInf, -2, kMiss, 0},
      {__LINE__, 1, kNaN, kMiss, 0}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ExpectValue(ZRPower::Multiply(c.a, c.b), c.want, c.tol);
  }
}

TEST(ZRPower, AlmostEqualIsRelativeToTheLarger) {
  const double belowEight = std::nextafter(8.0, 0.0);
  struct {
    int line;
    double a, b, mult;
    bool want;
  } const cases[] = {
      {__LINE__, 1, 1 + 4e-16, 8, true},
      {__LINE__, 1, -1, 8, false},
      {__LINE__, 0, 1e-300, 8, false},
      {__LINE__, 0, -0.0, 8, true},
      {__LINE__, -3, -3 * (1 + 10 * kEps), 8, false},
      // 8 eps / (1 + 8 eps) is just below 8 eps, 8 eps / 1 is not: the larger divides.
      {__LINE__, 1, 1 + 8 * kEps, belowEight, true},
      {__LINE__, 1 + 8 * kEps, 1, belowEight, true},
      {__LINE__, kInf, kInf, 8, true},
      {__LINE__, kInf, 1e308, 8, false},
      {__LINE__, -kInf, kInf, 8, false},
      {__LINE__, 0, kNaN, 8, false}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(ZRPower::AlmostEqual(c.a, c.b, c.mult), c.want);
  }
}

// The one-over tests take 1 / x (+-inf gives +-0, even): 3.000000000000003 at
// 0.333333333333333, whose (1/x + 1) / 2 is 3.4 eps from 2: odd with 32 eps, not with 2.
TEST(ZRPower, IntegerTestsHaveOnlyAnUpperBound) {
  struct {
    int line;
    double x;
    bool integer, even, odd, overEven, overOdd;
  } const cases[] = {{__LINE__, 4, true, true, false, false, false},
                     {__LINE__, -3, true, false, true, false, false},
                     {__LINE__, -0.0, true, true, false, false, false},
                     {__LINE__, 0.5, false, false, false, true, false},
                     {__LINE__, 1.0 / 3, false, false, false, false, true},
                     {__LINE__, 1, true, false, true, false, true},
                     {__LINE__, 1e-10, false, false, false, false, false},
                     {__LINE__, -1e-300, false, false, false, true, true},
                     {__LINE__, 0.333333333333333, false, false, false, false, true},
                     {__LINE__, 2147483647, true, false, true, false, false},
                     {__LINE__, 2147483648.0, false, false, false, false, false},
                     {__LINE__, 3e9, false, false, false, false, false},
                     {__LINE__, -3e9, true, true, false, false, false},
                     {__LINE__, -3e9 - 1, true, false, true, false, false},
                     {__LINE__, -kInf, true, true, false, true, false},
                     {__LINE__, kInf, false, false, false, true, false},
                     {__LINE__, kNaN, false, false, false, false, false}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(ZRPower::IsInteger(c.x), c.integer);
    EXPECT_EQ(ZRPower::IsEvenInteger(c.x), c.even);
    EXPECT_EQ(ZRPower::IsOddInteger(c.x), c.odd);
    EXPECT_EQ(ZRPower::IsOneOverEvenInteger(c.x, 32), c.overEven);
    EXPECT_EQ(ZRPower::IsOneOverOddInteger(c.x, 32), c.overOdd);
  }
  EXPECT_FALSE(ZRPower::IsOneOverOddInteger(0.333333333333333, 2));
}

TEST(ZRMV, MissingValueIsTheLowestDouble) {
  EXPECT_TRUE(ZRMV::IsMissing(ZRMV::Missing()));
  EXPECT_EQ(ZRMV::Missing(), std::numeric_limits<double>::lowest());
  for (double v : {std::nextafter(kMiss, 0.0), -kInf, kNaN}) EXPECT_FALSE(ZRMV::IsMissing(v)) << v;
}

TEST(ZRMV, DisplayLines) {  // one known code and one unknown per function
  zrtest::DisplayCapture cap;
  ZRMV::DisplayMeasureLevel("level", 4);
  ZRMV::DisplayRole("role", 7);
  ZRMV::DisplayStorage("storage", 0);
  ZRMV::DisplayRounding("rounding", 2);
  ZRMV::DisplayMeasureLevel("m", 5);
  ZRMV::DisplayRole("r", 8);
  ZRMV::DisplayStorage("s", 7);
  ZRMV::DisplayRounding("", -1);
  EXPECT_EQ(cap.Text(),
            "\nlevel = Frequency weight\nrole = Record ID variable"
            "\nstorage = Undefined variable storage\nrounding = As is - no change"
            "\nm = unrecognized\nr = unrecognized\ns = unrecognized\n = unrecognized");
}

}  // namespace
