// Level 1 BLAS: strides, unrolled remainders, the rotation and norm deviations, the
// machine constants and the fatal-error exit.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <vector>

#include <unistd.h>

#include "support/lapack.h"
#include "support/refdata.h"
#include "zrcommon920r/math/matrix/kernels.h"

namespace {

using ZRMath_920::Blas1;
using zrtest::RelErr;

std::vector<double> RandomVector(int n, unsigned seed) {
  std::mt19937 gen(seed);
  std::uniform_real_distribution<double> u(-2.0, 2.0);
  std::vector<double> v(n);
  for (double & x : v) x = u(gen);
  return v;
}

// Position of the k-th (0-based) element of an n-element walk with stride inc, BLAS rule.
std::size_t At(int n, int inc, int k) {
  const int step = inc < 0 ? -inc : inc;
  return static_cast<std::size_t>(inc < 0 ? (n - 1 - k) * step : k * step);
}

// Every length from 0 past two turns of the longest unroll (6), unit and non-unit strides,
// so that the unrolled path, its remainder and the strided path all meet the plain loop.
TEST(Blas1Vector, MatchPlainLoopsForAllLengthsAndStrides) {
  for (int n = 0; n <= 13; ++n) {
    for (int incx : {1, 2, -1, -3}) {
      for (int incy : {1, 3, -2}) {
        SCOPED_TRACE(testing::Message() << "n=" << n << " incx=" << incx << " incy=" << incy);
        const int lenx = 1 + 3 * std::max(n, 1), leny = 1 + 3 * std::max(n, 1);
        std::vector<double> x = RandomVector(lenx, 10 + n), y = RandomVector(leny, 20 + n);

        long double dot = 0.0L, asum = 0.0L;
        for (int k = 0; k < n; ++k) {
          dot += static_cast<long double>(x[At(n, incx, k)]) * y[At(n, incy, k)];
          asum += std::fabs(x[At(n, incx, k)]);
        }
        EXPECT_LE(std::fabs(Blas1::DDot(n, x.data(), incx, y.data(), incy) - dot), 1e-14 * n);
        EXPECT_LE(std::fabs(Blas1::DASum(n, x.data(), incx) - asum), 1e-14 * n);

        std::vector<double> want = y, got = y;
        for (int k = 0; k < n; ++k) want[At(n, incy, k)] += 0.75 * x[At(n, incx, k)];
        Blas1::Daxpy(n, 0.75, x.data(), incx, got.data(), incy);
        EXPECT_EQ(got, want);  // one multiply and one add per element: exact

        want = y, got = y;
        for (int k = 0; k < n; ++k) want[At(n, incy, k)] = x[At(n, incx, k)];
        Blas1::DCopy(n, x.data(), incx, got.data(), incy);
        EXPECT_EQ(got, want);

        std::vector<double> wantX = x, gotX = x;
        want = y, got = y;
        for (int k = 0; k < n; ++k) std::swap(wantX[At(n, incx, k)], want[At(n, incy, k)]);
        Blas1::DSwap(n, gotX.data(), incx, got.data(), incy);
        EXPECT_EQ(gotX, wantX);
        EXPECT_EQ(got, want);

        const double c = 0.6, s = 0.8;
        wantX = x, gotX = x, want = y, got = y;
        for (int k = 0; k < n; ++k) {
          double & xv = wantX[At(n, incx, k)];
          double & yv = want[At(n, incy, k)];
          const double t = c * xv + s * yv;
          yv = c * yv - s * xv;
          xv = t;
        }
        Blas1::DRot(n, gotX.data(), incx, got.data(), incy, c, s);
        EXPECT_EQ(gotX, wantX);
        EXPECT_EQ(got, want);

        if (incx > 0) {
          wantX = x, gotX = x;
          for (int k = 0; k < n; ++k) wantX[At(n, incx, k)] *= -1.5;
          Blas1::DScal(n, -1.5, gotX.data(), incx);
          EXPECT_EQ(gotX, wantX);
        }
      }
    }
  }
}

TEST(Blas1Vector, AxpyWithZeroMultiplierLeavesNaNAlone) {
  std::vector<double> x{NAN, 1.0}, y{1.0, 2.0};
  Blas1::Daxpy(2, 0.0, x.data(), 1, y.data(), 1);  // returns at once for a == 0
  EXPECT_EQ(y, (std::vector<double>{1.0, 2.0}));
}

TEST(Blas1Vector, NonPositiveStridesOfScalAndNormDoNothing) {
  std::vector<double> x{3.0, 4.0};
  Blas1::DScal(2, 2.0, x.data(), 0);
  Blas1::DScal(2, 2.0, x.data(), -1);
  EXPECT_EQ(x, (std::vector<double>{3.0, 4.0}));
  EXPECT_EQ(Blas1::DNrm2(2, x.data(), 0), 0.0);
  EXPECT_EQ(Blas1::DNrm2(0, x.data(), 1), 0.0);
  EXPECT_EQ(Blas1::DASum(0, x.data(), 1), 0.0);
  EXPECT_EQ(Blas1::DDot(-1, x.data(), 1, x.data(), 1), 0.0);
}

TEST(Blas1Norm, AgreesWithReferenceAndAvoidsOverflow) {
  for (int n : {1, 2, 5, 17, 100}) {
    for (double scale : {1.0, 1e300, 1e-300}) {
      SCOPED_TRACE(testing::Message() << "n=" << n << " scale=" << scale);
      std::vector<double> x = RandomVector(2 * n, n);
      for (double & v : x) v *= scale;
      const int two = 2;
      const double want = dnrm2_(&n, x.data(), &two);
      EXPECT_LE(RelErr(Blas1::DNrm2(n, x.data(), 2), want), 4e-16 * n);  // ~1 ulp per term
    }
  }
  std::vector<double> zeros(7, 0.0), single{-2.5}, nan{1.0, NAN, 2.0};
  EXPECT_EQ(Blas1::DNrm2(7, zeros.data(), 1), 0.0);
  EXPECT_EQ(Blas1::DNrm2(1, single.data(), 1), 2.5);
  EXPECT_TRUE(std::isnan(Blas1::DNrm2(3, nan.data(), 1)));  // a NaN is a non-zero element
  std::vector<double> pair{3e300, 4e300};
  EXPECT_LE(RelErr(Blas1::DNrm2(2, pair.data(), 1), 5e300), 2.3e-16);
}

TEST(Blas1Norm, IDAMaxFindsFirstLargestOneBased) {
  std::vector<double> x{1.0, -4.0, 2.0, 4.0, -4.0};
  EXPECT_EQ(Blas1::IDAMax(0, x.data(), 1), 0);
  EXPECT_EQ(Blas1::IDAMax(1, x.data(), 1), 1);
  EXPECT_EQ(Blas1::IDAMax(5, x.data(), 1), 2);  // first of the ties
  EXPECT_EQ(Blas1::IDAMax(3, x.data(), 2), 3);  // elements 1, 2, -4
  EXPECT_EQ(Blas1::IDAMax(5, x.data(), 0), 0);
}

// r carries the sign of the larger of |a|, |b| (b on a tie); z is 1 / c only when
// c != 0 and s >= |c|, and s otherwise.
TEST(Blas1Rotation, RotGMatchesReferenceAndReconstructionRule) {
  struct {
    int line;
    double a, b;
    bool zIsInverseC;
  } const cases[] = {
      {__LINE__, 0.0, -1.0, false},  // c == 0: z = s, not 1
      {__LINE__, 1.0, -3.0, true},  {__LINE__, 3.0, -1.0, false},
      {__LINE__, 3.0, 4.0, true},   {__LINE__, -3.0, -4.0, true},  // r = -5: c = 3/5, s = 4/5
      {__LINE__, 4.0, 3.0, false},  {__LINE__, 2.0, 2.0, true},
      {__LINE__, -2.0, 2.0, true},  {__LINE__, 1e-300, 1e300, false},  // c underflows to 0: z = s
  };
  for (const auto & cs : cases) {
    SCOPED_TRACE(cs.line);
    double a = cs.a, b = cs.b, c = 0.0, s = 0.0;
    Blas1::DRotG(&a, &b, &c, &s);
    double ra = cs.a, rb = cs.b, rc = 0.0, rs = 0.0;
    drotg_(&ra, &rb, &rc, &rs);
    EXPECT_LE(RelErr(a, ra), 4e-16);
    EXPECT_LE(std::fabs(c - rc), 4e-16);
    EXPECT_LE(std::fabs(s - rs), 4e-16);
    // The rotation annihilates b: -s a + c b == 0 and c a + s b == r.
    EXPECT_LE(std::fabs(-s * cs.a + c * cs.b), 4e-16 * std::fabs(a));
    EXPECT_LE(RelErr(c * cs.a + s * cs.b, a), 4e-16);
    if (cs.zIsInverseC) {
      EXPECT_EQ(b, 1.0 / c);
    } else {
      EXPECT_EQ(b, s);
    }
  }
}

TEST(Blas1Rotation, RotGOfZeroIsIdentity) {
  double a = 0.0, b = 0.0, c = -7.0, s = -7.0;
  Blas1::DRotG(&a, &b, &c, &s);
  EXPECT_EQ(a, 0.0);
  EXPECT_EQ(c, 1.0);
  EXPECT_EQ(s, 0.0);
  EXPECT_EQ(b, 0.0);  // z = s
}

TEST(Blas1Rotation, RotGSignsForNegativeB) {
  double a = 0.0, b = -1.0, c = 0.0, s = 0.0;
  Blas1::DRotG(&a, &b, &c, &s);
  EXPECT_EQ(a, -1.0);
  EXPECT_EQ(c, 0.0);  // -0.0 compares equal
  EXPECT_EQ(s, 1.0);
  EXPECT_EQ(b, 1.0);
}

TEST(Blas1Machine, ConstantsAreThoseOfIeeeDouble) {
  EXPECT_EQ(Blas1::DMach(1), std::ldexp(1.0, -52));
  // Smallest power of 1/16 before underflow to 0 is 2^-1072 (a subnormal).
  const double tiny = std::ldexp(1.0, -1072) / std::ldexp(1.0, -52) * 100.0;
  EXPECT_EQ(Blas1::DMach(2), tiny);
  EXPECT_EQ(Blas1::DMach(3), 1.0 / tiny);
}

TEST(Blas1Machine, InvalidJobEndsProcessThroughXErBla) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  // The message goes to standard output; the child sends it to stderr for matching.
  EXPECT_EXIT(
      {
        std::fflush(stdout);
        dup2(fileno(stderr), fileno(stdout));
        Blas1::DMach(4);
      },
      testing::ExitedWithCode(1),
      "XERBLA - Fatal error!\n  On entry to routine DMACH\n  input parameter number 1 had "
      "an illegal value\\.\n");
}

TEST(Blas1Helpers, ScalarHelpersFollowTheirOneLineRules) {
  EXPECT_EQ(Blas1::D_Abs(-2.0), 2.0);
  EXPECT_TRUE(std::signbit(Blas1::D_Abs(std::copysign(NAN, 1.0))));  // NaN is negated
  EXPECT_EQ(Blas1::D_Max(1.0, 2.0), 2.0);
  EXPECT_TRUE(std::isnan(Blas1::D_Max(1.0, NAN)));  // a > b fails: b
  EXPECT_EQ(Blas1::D_Max(NAN, 1.0), 1.0);
  EXPECT_EQ(Blas1::D_Sign(-0.5), -1.0);
  EXPECT_EQ(Blas1::D_Sign(-0.0), 1.0);
  EXPECT_EQ(Blas1::D_Sign(NAN), 1.0);
  EXPECT_EQ(Blas1::I_Max(-3, 2), 2);
  EXPECT_EQ(Blas1::I_Min(-3, 2), -3);
  EXPECT_TRUE(Blas1::LSame('a', 'A'));
  EXPECT_TRUE(Blas1::LSame('Z', 'z'));
  EXPECT_FALSE(Blas1::LSame('a', 'b'));
  EXPECT_FALSE(Blas1::LSame('[', '{'));  // 32 apart but not letters
}

}  // namespace
