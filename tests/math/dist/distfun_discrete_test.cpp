// Binomial, negative binomial and hypergeometric functions against mpmath tables; the
// quantile's defining property, failure codes and edge inputs.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
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

// Log-space pmfs carry eps times lnGamma(n + 1), the largest of the log-gammas.
double LogSpaceTol(double n) {
  return 1e-13 + 4 * kEps * std::lgamma(n + 1);
}

TEST(ZRDistFunBinomial, PmfAndCdfMatchMpmath) {  // data: tests/data/math/dist/binom.csv
  for (const auto & row : zrtest::LoadRefTable("math/dist/binom.csv", 4)) {
    SCOPED_TRACE(row.where);
    const double x = row.in[1], n = row.in[2], p = row.in[3], pmf = row.out[0], lo = row.out[1];
    std::int32_t err = -1;
    if (row.in[0] == 1) {  // negative binomial, n is r
      EXPECT_LE(RelErr(D::PdfNegBin(x, n, p, err), pmf), LogSpaceTol(x + n));
      EXPECT_EQ(err, 0);
      continue;
    }
    if (pmf < 1e-306)  // below e^-708 the pmf is 0
      EXPECT_LT(D::PdfBin(x, n, p, err), 1e-306);
    else
      EXPECT_LE(RelErr(D::PdfBin(x, n, p, err), pmf), LogSpaceTol(n));
    EXPECT_EQ(err, 0);
    // Peizer-Pratt where the pmf underflows: its own error, about 1e-2 relative out there.
    const double tol = row.out[3] == 1 ? 2e-2 : LogSpaceTol(n);
    EXPECT_LE(RelErr(D::CdfBin(x, n, p, err), lo), tol);
    EXPECT_EQ(err, 0);
  }
}

// IdfBin is the largest k with CdfBin(k) <= prob: checked at the tabulated cdf moved by d
// either way, d above CdfBin's error, the step-4 tolerance 2^-45 and the rounding of the
// walk's running sum, where the neighbouring pmfs are wider than 4 d.
TEST(ZRDistFunBinomial, QuantileIsLargestKWithCdfAtMostProb) {
  for (const auto & row : zrtest::LoadRefTable("math/dist/binom.csv", 4)) {
    const double k = std::floor(row.in[1]), n = row.in[2], p = row.in[3];
    const double pmf = row.out[0], lo = row.out[1];
    if (row.in[0] == 1 || row.in[1] != k || !(lo < 1)) continue;
    SCOPED_TRACE(row.where);
    const double d = std::fmax(1e-13, 2 * LogSpaceTol(n) * lo);
    const double pmfNext = pmf * ((n - k) * p / ((k + 1) * (1 - p)));
    std::int32_t err = -1;
    if (pmfNext > 4 * d) {
      EXPECT_EQ(D::IdfBin(lo + d, n, p, err), k);
      EXPECT_EQ(err, 0);
    }
    if (pmf > 4 * d && lo - d > 0 && k > 0) {  // k == 0: see FailureCodesAndLimits
      EXPECT_EQ(D::IdfBin(lo - d, n, p, err), k - 1);
    }
  }
}

TEST(ZRDistFunBinomial, FailureCodesAndLimits) {
  using Call = double (*)(std::int32_t &);
  struct {
    int line;
    Call call;
    std::int32_t code;
    double want;
  } const cases[] = {
      {__LINE__, [](std::int32_t & err) { return D::CdfBin(3, 10.5, 0.5, err); }, 3, kMiss},
      {__LINE__, [](std::int32_t & err) { return D::CdfBin(3, kNaN, 0.5, err); }, 3, kMiss},
      {__LINE__, [](std::int32_t & err) { return D::CdfBin(3, 0, 0.5, err); }, 1, kMiss},
      {__LINE__, [](std::int32_t & err) { return D::CdfBin(3, 10, 1.5, err); }, 1, kMiss},
      {__LINE__, [](std::int32_t & err) { return D::CdfBin(kNaN, 10, 0.5, err); }, 1, kMiss},
      {__LINE__, [](std::int32_t & err) { return D::CdfBin(3, 4294967296.0, 0.5, err); }, 1, kMiss},
      {__LINE__, [](std::int32_t & err) { return D::CdfBin(0, 10, 0, err); }, 0, 1.0},
      {__LINE__, [](std::int32_t & err) { return D::CdfBin(-0.5, 10, 0.3, err); }, 0,
       0.0},  // floor: -1
      {__LINE__, [](std::int32_t & err) { return D::CdfBin(9, 10, 1, err); }, 0, 0.0},
      {__LINE__, [](std::int32_t & err) { return D::CdfBin(1e300, 10, 0.3, err); }, 0, 1.0},
      {__LINE__, [](std::int32_t & err) { return D::CdfBin(-kInf, 10, 0.3, err); }, 0, 0.0},
      {__LINE__, [](std::int32_t & err) { return D::IdfBin(0.5, 10.5, 0.5, err); }, 1, kMiss},
      {__LINE__, [](std::int32_t & err) { return D::IdfBin(0.5, 10, 1.5, err); }, 2, kMiss},
      {__LINE__, [](std::int32_t & err) { return D::IdfBin(kNaN, 10, 0.5, err); }, 2, kMiss},
      {__LINE__, [](std::int32_t & err) { return D::IdfBin(0.5, 10, kNaN, err); }, 2, kMiss},
      {__LINE__, [](std::int32_t & err) { return D::IdfBin(0, 10, 0.3, err); }, 0, -1.0},
      {__LINE__, [](std::int32_t & err) { return D::IdfBin(0, 10, 1, err); }, 0, 9.0},
      {__LINE__, [](std::int32_t & err) { return D::IdfBin(1, 10, 0, err); }, 0, 0.0},
      {__LINE__, [](std::int32_t & err) { return D::IdfBin(1, 10, 0.2, err); }, 0, 10.0},
      // Intended: CdfBin(0, 2, 0.999) = 1e-6 is above prob, yet the walk down from the
      // normal start 1 stops at k == 0 rather than going on to -1.
      {__LINE__, [](std::int32_t & err) { return D::IdfBin(0.999999e-6, 2, 0.999, err); }, 0, 0.0},
      {__LINE__, [](std::int32_t & err) { return D::IdfBin(0.5e-3, 10, 0.5, err); }, 0, -1.0},
      {__LINE__, [](std::int32_t & err) { return D::IdfBin(0.3, 10, 1, err); }, 0, 9.0},
      {__LINE__, [](std::int32_t & err) { return D::IdfBin(0.3, 10, 0, err); }, 0, -1.0},
      {__LINE__, [](std::int32_t & err) { return D::PdfBin(2.5, 10, 0.5, err); }, 0, 0.0},
      {__LINE__, [](std::int32_t & err) { return D::PdfBin(11, 10, 0.5, err); }, 0, 0.0},
      {__LINE__, [](std::int32_t & err) { return D::PdfBin(0, 10, 0, err); }, 0, 1.0},
      {__LINE__, [](std::int32_t & err) { return D::PdfBin(3, 10, -0.1, err); }, 1, kMiss},
      {__LINE__, [](std::int32_t & err) { return D::PdfBin(3, 0.5, 0.5, err); }, 1, kMiss},
      {__LINE__, [](std::int32_t & err) { return D::PdfBin(kNaN, 10, 0.5, err); }, 1, kMiss},
      {__LINE__, [](std::int32_t & err) { return D::PdfNegBin(3, 2, 0, err); }, 1, kMiss},
      {__LINE__, [](std::int32_t & err) { return D::PdfNegBin(3, -1, 0.5, err); }, 1, kMiss},
      {__LINE__, [](std::int32_t & err) { return D::PdfNegBin(3.5, 2, 0.5, err); }, 0, 0.0},
      {__LINE__, [](std::int32_t & err) { return D::PdfNegBin(0, 2, 1, err); }, 0, 1.0},
      {__LINE__, [](std::int32_t & err) { return D::PdfNegBin(4, 0, 0.5, err); }, 0, 0.0},
      {__LINE__, [](std::int32_t & err) { return D::PdfNegBin(0, 0, 0.5, err); }, 0, 1.0},
      {__LINE__, [](std::int32_t & err) { return D::PdfNegBin(kInf, 2, 0.5, err); }, 0, 0.0},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    std::int32_t err = -1;
    EXPECT_EQ(c.call(err), c.want);
    EXPECT_EQ(err, c.code);
  }
  // Where the pmf at the start underflows the normal approximation answers: 2.6e-310 by
  // mpmath, below the smallest normal double.
  std::int32_t err = -1;
  const double deep = D::CdfBin(88900, 1e6, 0.1, err);
  EXPECT_EQ(err, 0);
  EXPECT_TRUE(deep >= 0 && deep < 1e-305);
}

TEST(ZRDistFunHypergeometric, PmfAndCdfMatchMpmath) {  // data: tests/data/math/dist/hyper.csv
  for (const auto & row : zrtest::LoadRefTable("math/dist/hyper.csv", 4)) {
    SCOPED_TRACE(row.where);
    const double x = row.in[0], total = row.in[1], sample = row.in[2], succ = row.in[3];
    const double tol = LogSpaceTol(total);
    EXPECT_LE(
        RelErr(D::PdfHyper(static_cast<std::int32_t>(x), static_cast<std::int32_t>(total),
                           static_cast<std::int32_t>(sample), static_cast<std::int32_t>(succ)),
               row.out[0]),
        tol);
    int err = -1;
    // Flagged rows hold the normal approximation itself, evaluated by mpmath.
    const double cdfTol = row.out[2] == 1 ? 1e-13 * (1 + std::fabs(x)) : tol;
    EXPECT_LE(RelErr(D::CDFHyper(x, total, sample, succ, err), row.out[1]), cdfTol);
    EXPECT_EQ(err, 0);
  }
}

TEST(ZRDistFunHypergeometric, OutsideSupportAndBadArguments) {
  int err = -1;
  zrtest::ExpectExact({
      {__LINE__, D::PdfHyper(6, 20, 5, 7), kMiss},  // x above min(sample, successes)
      {__LINE__, D::PdfHyper(-1, 20, 5, 7), kMiss},
      {__LINE__, D::PdfHyper(0, 20, 15, 12), kMiss},  // below sample - total + successes
      {__LINE__, D::PdfHyper(1, 20, 0, 7), kMiss},
      {__LINE__, D::PdfHyper(1, 20, 5, 21), kMiss},
      {__LINE__, D::CDFHyper(6, 20, 5, 7, err), 1.0},
      {__LINE__, D::CDFHyper(6, 20, 15, 12, err), 0.0},
      {__LINE__, D::CDFHyper(1e300, 20, 5, 7, err), 1.0},
      {__LINE__, D::CDFHyper(-1e300, 20, 5, 7, err), 0.0},
      {__LINE__, D::CDFHyper(-0.5, 20, 5, 7, err), D::CDFHyper(0, 20, 5, 7, err)},  // int()
      {__LINE__, D::CDFHyper(2, 20.5, 5, 7, err), kMiss},
      {__LINE__, D::CDFHyper(2, 20, 5.5, 7, err), kMiss},
      {__LINE__, D::CDFHyper(2, 20, 5, 21, err), kMiss},
      {__LINE__, D::CDFHyper(2, 3e9, 5, 7, err), kMiss},
      {__LINE__, D::CDFHyper(kNaN, 20, 5, 7, err), kMiss},
      {__LINE__, D::CDFHyper(2, kNaN, 5, 7, err), kMiss},
  });
  D::CDFHyper(2, 20, 0, 7, err);
  EXPECT_EQ(err, 1);
}

}  // namespace
