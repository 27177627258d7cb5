// Level 1 BLAS: strides, unrolled remainders, the rotation and norm deviations, the
// machine constants and the fatal-error exit.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <tuple>
#include <vector>

#include <unistd.h>

#include "support/lapack.h"
#include "support/refdata.h"
#include "zrcommon920r/math/matrix/kernels.h"

namespace {

using ZRMath_920::Blas1;
using zrtest::RelErr;
using Vec = std::vector<double>;

Vec RandomVector(int n, unsigned seed) {
  std::mt19937 gen(seed);
  std::uniform_real_distribution<double> u(-2.0, 2.0);
  Vec v(n);
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
        Vec x = RandomVector(1 + 3 * std::max(n, 1), 10 + n);
        Vec y = RandomVector(1 + 3 * std::max(n, 1), 20 + n);
        long double dot = 0.0L, asum = 0.0L;
        Vec axpy = y, copy = y, swapX = x, swapY = y, rotX = x, rotY = y, scal = x, gx, gy;
        for (int k = 0; k < n; ++k) {  // one multiply and one add at most: exact
          const std::size_t i = At(n, incx, k), j = At(n, incy, k);
          dot += static_cast<long double>(x[i]) * y[j], asum += std::fabs(x[i]);
          axpy[j] += 0.75 * x[i], copy[j] = x[i], scal[i] *= -1.5;
          swapX[i] = y[j], swapY[j] = x[i];
          rotX[i] = 0.6 * x[i] + 0.8 * y[j], rotY[j] = 0.6 * y[j] - 0.8 * x[i];
        }
        EXPECT_LE(std::fabs(Blas1::DDot(n, x.data(), incx, y.data(), incy) - dot), 1e-14 * n);
        EXPECT_LE(std::fabs(Blas1::DASum(n, x.data(), incx) - asum), 1e-14 * n);
        Blas1::Daxpy(n, 0.75, x.data(), incx, (gy = y).data(), incy);
        EXPECT_EQ(gy, axpy);
        Blas1::DCopy(n, x.data(), incx, (gy = y).data(), incy);
        EXPECT_EQ(gy, copy);
        Blas1::DSwap(n, (gx = x).data(), incx, (gy = y).data(), incy);
        EXPECT_EQ(std::tie(gx, gy), std::tie(swapX, swapY));
        Blas1::DRot(n, (gx = x).data(), incx, (gy = y).data(), incy, 0.6, 0.8);
        EXPECT_EQ(std::tie(gx, gy), std::tie(rotX, rotY));
        if (incx > 0) {
          Blas1::DScal(n, -1.5, (gx = x).data(), incx);
          EXPECT_EQ(gx, scal);
        }
      }
    }
  }
}

// Early returns: a == 0 in Daxpy (a NaN in x is never multiplied), non-positive lengths
// and strides of DScal and DNrm2.
TEST(Blas1Vector, EarlyReturnsLeaveDataAlone) {
  Vec x{3.0, 4.0}, y{1.0, 2.0}, nan{NAN, 1.0};
  Blas1::Daxpy(2, 0.0, nan.data(), 1, y.data(), 1);
  Blas1::DScal(2, 2.0, x.data(), 0);
  Blas1::DScal(2, 2.0, x.data(), -1);
  EXPECT_TRUE(x == (Vec{3.0, 4.0}) && y == (Vec{1.0, 2.0}));
  for (double got : {Blas1::DNrm2(2, x.data(), 0), Blas1::DNrm2(0, x.data(), 1),
                     Blas1::DASum(0, x.data(), 1), Blas1::DDot(-1, x.data(), 1, x.data(), 1)}) {
    EXPECT_EQ(got, 0.0);
  }
}

TEST(Blas1Norm, AgreesWithReferenceAndAvoidsOverflow) {
  for (int n : {1, 2, 5, 17, 100}) {
    for (double scale : {1.0, 1e300, 1e-300}) {
      SCOPED_TRACE(testing::Message() << "n=" << n << " scale=" << scale);
      Vec x = RandomVector(2 * n, n);
      for (double & v : x) v *= scale;
      const int two = 2;
      const double want = dnrm2_(&n, x.data(), &two);
      EXPECT_LE(RelErr(Blas1::DNrm2(n, x.data(), 2), want), 4e-16 * n);  // ~1 ulp per term
    }
  }
  Vec zeros(7, 0.0), single{-2.5}, nan{1.0, NAN, 2.0}, pair{3e300, 4e300};
  EXPECT_EQ(Blas1::DNrm2(7, zeros.data(), 1), 0.0);
  EXPECT_EQ(Blas1::DNrm2(1, single.data(), 1), 2.5);
  EXPECT_TRUE(std::isnan(Blas1::DNrm2(3, nan.data(), 1)));  // a NaN is a non-zero element
  EXPECT_LE(RelErr(Blas1::DNrm2(2, pair.data(), 1), 5e300), 2.3e-16);
  // IDAMax: 1-based, the first of ties; elements 1, 2, -4 at stride 2.
  Vec m{1.0, -4.0, 2.0, 4.0, -4.0};
  const int found[] = {Blas1::IDAMax(0, m.data(), 1), Blas1::IDAMax(1, m.data(), 1),
                       Blas1::IDAMax(5, m.data(), 1), Blas1::IDAMax(3, m.data(), 2),
                       Blas1::IDAMax(5, m.data(), 0)};
  EXPECT_EQ(std::vector<int>(found, found + 5), (std::vector<int>{0, 1, 2, 3, 0}));
}

// r carries the sign of the larger of |a|, |b| (b on a tie); z is 1 / c only when
// c != 0 and s >= |c|, and s otherwise.
TEST(Blas1Rotation, RotGMatchesReferenceAndReconstructionRule) {
  struct {
    int line;
    double a, b;
    bool zIsInverseC;
  } const cases[] = {
      {__LINE__, 0.0, 0.0, false},   // identity: c = 1, s = 0, z = s
      {__LINE__, 0.0, -1.0, false},  // c == 0: z = s, not 1
      {__LINE__, 1.0, -3.0, true},  {__LINE__, 3.0, -1.0, false},
      {__LINE__, 3.0, 4.0, true},   {__LINE__, -3.0, -4.0, true},  // r = -5: c = 3/5, s = 4/5
      {__LINE__, 4.0, 3.0, false},  {__LINE__, 2.0, 2.0, true},
      {__LINE__, -2.0, 2.0, true},  {__LINE__, 1e-300, 1e300, false},  // c underflows to 0: z = s
  };
  for (const auto & cs : cases) {
    SCOPED_TRACE(cs.line);
    double a = cs.a, b = cs.b, c = -7.0, s = -7.0;
    Blas1::DRotG(&a, &b, &c, &s);
    double ra = cs.a, rb = cs.b, rc = 0.0, rs = 0.0;
    drotg_(&ra, &rb, &rc, &rs);
    EXPECT_LE(RelErr(a, ra), 4e-16);
    EXPECT_LE(std::fabs(c - rc), 4e-16);
    EXPECT_LE(std::fabs(s - rs), 4e-16);
    // The rotation annihilates b: -s a + c b == 0 and c a + s b == r.
    EXPECT_LE(std::fabs(-s * cs.a + c * cs.b), 4e-16 * std::fabs(a));
    EXPECT_LE(RelErr(c * cs.a + s * cs.b, a), 4e-16);
    EXPECT_EQ(b, cs.zIsInverseC ? 1.0 / c : s);
  }
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
  EXPECT_TRUE(std::signbit(Blas1::D_Abs(std::copysign(NAN, 1.0))));  // NaN is negated
  EXPECT_TRUE(std::isnan(Blas1::D_Max(1.0, NAN)));                   // a > b fails: b
  const double got[] = {Blas1::D_Abs(-2.0),        Blas1::D_Max(1.0, 2.0),   Blas1::D_Max(NAN, 1.0),
                        Blas1::D_Sign(-0.5),       Blas1::D_Sign(-0.0),      Blas1::D_Sign(NAN),
                        1.0 * Blas1::I_Max(-3, 2), 1.0 * Blas1::I_Min(-3, 2)};
  EXPECT_EQ(Vec(got, got + 8), (Vec{2.0, 2.0, 1.0, -1.0, 1.0, 1.0, 2, -3}));
  // Letters of either case are the same; '[' and '{' are 32 apart but not letters.
  EXPECT_TRUE(Blas1::LSame('a', 'A') && Blas1::LSame('Z', 'z'));
  EXPECT_FALSE(Blas1::LSame('a', 'b') || Blas1::LSame('[', '{'));
}

}  // namespace
