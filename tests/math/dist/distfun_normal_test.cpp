// ZRDistFun, normal family: erf, erfc, the normal distribution, density and quantile
// against mpmath tables; exact points, the underflow guard, failure values, non-finite input.
#include <gtest/gtest.h>

#include <cmath>
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
  using ZRDistFun::derf;
  using ZRDistFun::derfc;
  using ZRDistFun::prbnrm;
  using ZRDistFun::probit;
};

TEST(ZRDistFunNormal, ErfAndErfcMatchMpmath) {  // data: tests/data/math/dist/erf.csv
  for (const auto & row : zrtest::LoadRefTable("math/dist/erf.csv", 1)) {
    SCOPED_TRACE(row.where);
    const double x = row.in[0];
    // Fitted tables under 1 eps, then x P or 1 - P^16 rounded once.
    EXPECT_LE(RelErr(Kernels::derf(x), row.out[0]), 2 * kEps);
    // g good to 4 eps; exp(log g - x^2) carries the rounding of x^2 and of the difference.
    EXPECT_LE(RelErr(Kernels::derfc(x), row.out[1]), (4 + x * x) * kEps);
  }
}

TEST(ZRDistFunNormal, ExactPointsLimitsAndFailures) {
  zrtest::ExpectExact(
      {{__LINE__, Kernels::derf(0.0), 0.0},
       {__LINE__, Kernels::derfc(0.0), 1.0},
       {__LINE__, Kernels::derf(-6.9), -1.0},  // from 6.9 on, exactly 1
       {__LINE__, Kernels::derf(kInf), 1.0},
       {__LINE__, Kernels::derfc(-kInf), 2.0},
       // Intended: log(g) - x^2 below -708 gives 0, though erfc(26.6) = 6e-310 is subnormal.
       {__LINE__, Kernels::derfc(26.6), 0.0},
       {__LINE__, Kernels::derfc(1e300), 0.0},  // x^2 overflows: no NaN
       {__LINE__, Kernels::derf(kNaN), kMiss},
       {__LINE__, Kernels::derfc(kNaN), kMiss},
       {__LINE__, ZRDistFun::CdfStdNorm(0.0), 0.5},
       {__LINE__, ZRDistFun::CdfStdNorm(9.0), 1.0},
       {__LINE__, ZRDistFun::CdfStdNorm(-kInf), 0.0},
       {__LINE__, ZRDistFun::CdfNorm(kInf, 1.0, 2.0), 1.0},
       {__LINE__, ZRDistFun::CdfNorm(-1e308, 1e308, 1.0), 0.0},  // x - mean overflows
       {__LINE__, ZRDistFun::CdfStdNorm(kNaN), kMiss},           // while the kernel keeps 0.5:
       {__LINE__, Kernels::prbnrm(kNaN), 0.5},
       {__LINE__, ZRDistFun::CdfNorm(kNaN, 0.0, 1.0), kMiss},
       {__LINE__, ZRDistFun::CdfNorm(0.0, kInf, 1.0), kMiss},
       {__LINE__, ZRDistFun::CdfNorm(0.0, 0.0, -1.0), kMiss},
       {__LINE__, ZRDistFun::PdfNormalStandard(-kInf), 0.0},
       {__LINE__, ZRDistFun::PdfNormalStandard(kNaN), kMiss},
       {__LINE__, ZRDistFun::PdfNormal(kInf, 0.0, 1.0), 0.0},
       {__LINE__, ZRDistFun::PdfNormal(1.0, 1.0, 0.0), kMiss},  // sd 0 is the only refusal
       {__LINE__, ZRDistFun::PdfNormal(0.0, kNaN, 1.0), kMiss},
       {__LINE__, ZRDistFun::PdfNormal(0.0, 0.0, -kInf), kMiss},
       {__LINE__, ZRDistFun::IdfStdNorm(0.5), 0.0},
       {__LINE__, Kernels::probit(0.5), 0.0},
       {__LINE__, ZRDistFun::IdfNorm(0.5, -1e300, 1e300), -1e300},
       {__LINE__, ZRDistFun::IdfStdNorm(0.0), kMiss},
       {__LINE__, ZRDistFun::IdfStdNorm(1.0), kMiss},
       {__LINE__, ZRDistFun::IdfStdNorm(kNaN), kMiss},
       {__LINE__, Kernels::probit(kNaN), kMiss},
       {__LINE__, ZRDistFun::IdfNorm(0.0, 0.0, 1.0), kMiss},
       {__LINE__, ZRDistFun::IdfNorm(0.3, 0.0, 0.0), kMiss},
       {__LINE__, ZRDistFun::IdfNorm(0.3, 0.0, kInf), kMiss}});
}

// Rows with mean 0 and sd 1 go to the standard functions.
TEST(ZRDistFunNormal, CdfAndPdfMatchMpmath) {  // data: tests/data/math/dist/normal.csv
  for (const auto & row : zrtest::LoadRefTable("math/dist/normal.csv", 3)) {
    SCOPED_TRACE(row.where);
    const double x = row.in[0], mean = row.in[1], sd = row.in[2];
    const double z = (mean - x) / sd;
    // Lower tail through derfc at z / sqrt 2, whose rounding adds to that of x^2 in derfc;
    // exp(-z^2 / 2) carries the rounding of z^2.
    const double cdfTol = (4 + 1.5 * z * z) * kEps, pdfTol = (2 + z * z) * kEps;
    if (mean == 0.0 && sd == 1.0) {
      EXPECT_LE(RelErr(ZRDistFun::CdfStdNorm(x), row.out[0]), cdfTol);
      EXPECT_LE(RelErr(ZRDistFun::PdfNormalStandard(x), row.out[1]), pdfTol);
    }
    EXPECT_LE(RelErr(ZRDistFun::CdfNorm(x, mean, sd), row.out[0]), cdfTol);
    EXPECT_LE(RelErr(ZRDistFun::PdfNormal(x, mean, sd), row.out[1]), pdfTol);
    // Intended: a negative sd is accepted and gives the density with its sign.
    EXPECT_LE(RelErr(ZRDistFun::PdfNormal(x, mean, -sd), -row.out[1]), pdfTol);
  }
}

TEST(ZRDistFunNormal, QuantileMatchesMpmath) {  // data: tests/data/math/dist/probit.csv
  constexpr double kTol = 4 * kEps;             // AS 241: about 1e-16 relative (measured 2.1 eps)
  for (const auto & row : zrtest::LoadRefTable("math/dist/probit.csv", 1)) {
    SCOPED_TRACE(row.where);
    const double p = row.in[0];
    EXPECT_LE(RelErr(Kernels::probit(p), row.out[0]), kTol);
    EXPECT_LE(RelErr(ZRDistFun::IdfStdNorm(p), row.out[0]), kTol);
    // 40 + z / 2 lies in [20, 44]: no cancellation, so z's relative error carries over.
    EXPECT_LE(RelErr(ZRDistFun::IdfNorm(p, 40.0, 0.5), row.out[1]), kTol);
  }
}

}  // namespace
