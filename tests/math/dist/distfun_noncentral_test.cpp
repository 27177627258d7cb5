// Non-central chi-square, F and t distributions and the t density against mpmath; the
// searches for a non-centrality as round trips; limits, failure values and prompt returns.
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
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

struct K : D {
  using D::ncdbet;
};

TEST(ZRDistFunNonCentral, CdfsAndTDensityMatchMpmath) {  // data: noncentral.csv
  for (const auto & row : zrtest::LoadRefTable("math/dist/noncentral.csv", 5)) {
    SCOPED_TRACE(row.where);
    const double x = row.in[1], df = row.in[2], b = row.in[3], lambda = row.in[4];
    const double p = row.out[0];
    switch (static_cast<int>(row.in[0])) {
      case 0:  // the stop at 1e-12, plus the Poisson mass below the start (about 1e-12)
        EXPECT_NEAR(D::NonCentralCdfChi(x, df, lambda), p, 5e-12);
        break;
      case 1:
        EXPECT_NEAR(D::NonCentralCdfF(x, df, b, lambda, 1e-12), p, 5e-12);
        break;
      default: {  // AS 243 leaves out the Poisson mass below its start: about 1e-10
        EXPECT_NEAR(D::NonCentralCdfT(x, df, b, 1e-12), p, 1e-10);
        std::int32_t err = -1;
        const double dens = D::NonCentralPdfT(x, df, b, err);
        EXPECT_EQ(err, 0);
        // Alternating terms (x, delta of opposite signs) cancel: absolute there.
        if (!std::isnan(row.out[1])) {
          if ((x < 0) != (b < 0))
            EXPECT_NEAR(dens, row.out[1], 1e-12);
          else  // stop at 1e-10 of the last pair; slow tails (small df, large delta) leave ~2e-9
            EXPECT_LE(RelErr(dens, row.out[1]), 1e-8);
        }
      }
    }
  }
}

// Each search recovers a parameter whose distribution function gives back the tabulated p.
TEST(ZRDistFunNonCentral, SearchesRoundTripTabulatedValues) {
  for (const auto & row : zrtest::LoadRefTable("math/dist/noncentral.csv", 5)) {
    const double x = row.in[1], df = row.in[2], b = row.in[3], lambda = row.in[4];
    const double p = row.out[0];
    if (!(p > 1e-6 && p < 1 - 1e-6)) continue;
    SCOPED_TRACE(row.where);
    switch (static_cast<int>(row.in[0])) {
      case 0:
        if (lambda == 0) continue;
        EXPECT_LE(RelErr(D::FindNCParamChi(x, df, p, 1e-12), lambda), 1e-6);
        break;
      case 1:
        if (lambda == 0) continue;
        EXPECT_LE(RelErr(D::FindNCParamF(x, df, b, p, 1e-12), lambda), 1e-6);
        break;
      default:
        if (x < 0) continue;  // refused at entry
        EXPECT_NEAR(D::FindNCParamT(x, df, p, 1e-12, 1e-12), b, 1e-5 * (1 + std::fabs(b)));
    }
  }
}

TEST(ZRDistFunNonCentral, LimitsAndFailureValues) {
  std::int32_t err = -1;
  zrtest::ExpectExact({
      {__LINE__, D::NonCentralCdfChi(0, 3, 2), 0.0},
      {__LINE__, D::NonCentralCdfChi(kInf, 3, 2), 1.0},
      {__LINE__, D::NonCentralCdfChi(1, 0, 2), kMiss},
      {__LINE__, D::NonCentralCdfChi(1, 3, -1), kMiss},
      {__LINE__, D::NonCentralCdfChi(kNaN, 3, 2), kMiss},
      {__LINE__, D::NonCentralCdfChi(1, 3, kInf), kMiss},
      {__LINE__, D::NonCentralCdfChi(1e6, 3, 1e300), 0.0},  // prompt: the first term is 0
      {__LINE__, D::NonCentralCdfF(-1, 3, 4, 2, 1e-12), 0.0},
      {__LINE__, D::NonCentralCdfF(kInf, 3, 4, 2, 1e-12), 1.0},
      {__LINE__, D::NonCentralCdfF(1, 3, 4, 2, kNaN), kMiss},
      {__LINE__, D::NonCentralCdfF(1, 0, 4, 2, 1e-12), kMiss},
      {__LINE__, D::NonCentralCdfT(0, 7, 1.5, 1e-12), D::CdfStdNorm(-1.5)},
      {__LINE__, D::NonCentralCdfT(0, 7, 0, 1e-12), 0.5},
      {__LINE__, D::NonCentralCdfT(1.5, 7, 0, 1e-12), D::CdfT(1.5, 7)},
      {__LINE__, D::NonCentralCdfT(2e154, 7, 3, 1e-12), 1.0},
      {__LINE__, D::NonCentralCdfT(-2e154, 7, 3, 1e-12), 0.0},
      {__LINE__, D::NonCentralCdfT(1e-200, 7, 3, 1e-12), kMiss},  // t^2 underflows
      {__LINE__, D::NonCentralCdfT(1, 0, 3, 1e-12), kMiss},
      {__LINE__, D::NonCentralCdfT(kNaN, 7, 3, 1e-12), kMiss},
      {__LINE__, D::NonCentralCdfT(1, 7, 1e200, 1e-12), kMiss},
      {__LINE__, D::NonCentralPdfT(kInf, 7, 3, err), 0.0},
      {__LINE__, D::NonCentralPdfT(1, 7, 0, err), D::PdfT(1, 7, err)},
      {__LINE__, K::ncdbet(0, 2, 3, 1, err, 1e-12), 0.0},
      {__LINE__, K::ncdbet(1, 2, 3, 1, err, 1e-12), 1.0},
  });
  D::NonCentralPdfT(1, -1, 3, err);
  EXPECT_EQ(err, 1);
  EXPECT_EQ(D::NonCentralPdfT(1, 7, 1e200, err), kMiss);  // peak index beyond 2^31
  EXPECT_EQ(err, 2);
  EXPECT_EQ(K::ncdbet(0.5, 2, 3, -1, err, 1e-12), kMiss);
  EXPECT_EQ(err, 1);
  // tol >= 1 keeps the first term alone: below the converged sum, which it starts.
  const double first = K::ncdbet(0.5, 2, 3, 40, err, 1.0);
  const double full = K::ncdbet(0.5, 2, 3, 40, err, 1e-14);
  EXPECT_GT(first, 0.0);
  EXPECT_LT(first, full * 0.5);
}

TEST(ZRDistFunNonCentral, SearchEdgesAndRefusals) {
  zrtest::ExpectExact({
      {__LINE__, D::FindNCParamChi(3, 4, 0.9, 1e-12), 0.0},  // CdfChi(3, 4) = 0.44 <= 0.9
      {__LINE__, D::FindNCParamF(1, 4, 9, 0.99, 1e-12), 0.0},
      {__LINE__, D::FindNCParamT(1, 9, D::CdfT(1, 9), 1e-12, 1e-12), 0.0},
      {__LINE__, D::FindNCParamT(-1, 9, 0.5, 1e-12, 1e-12), kMiss},
      {__LINE__, D::FindNCParamChi(3, 0, 0.1, 1e-12), kMiss},
      {__LINE__, D::FindNCParamChi(3, 4, 1.5, 1e-12), kMiss},
      {__LINE__, D::FindNCParamChi(3, 4, 0.1, -1), kMiss},
      {__LINE__, D::FindNCParamChi(kNaN, 4, 0.1, 1e-12), kMiss},
      {__LINE__, D::FindNCParamT(1, 9, kNaN, 1e-12, 1e-12), kMiss},
  });
}

}  // namespace
