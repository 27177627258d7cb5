// Singular value decomposition: values against LAPACK dgesvd, X = U S V' and orthogonal
// factors for every job and shape, exact small cases and the iteration-limit info.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <string>
#include <vector>

#include "support/colmajor.h"
#include "support/lapack.h"
#include "support/watchdog.h"
#include "zrcommon920r/math/matrix/kernels.h"

namespace {

using ZRMath_920::Linpack;
using zrtest::ColMatrix;
using zrtest::Identity;
using zrtest::Multiply;
using zrtest::RandomGeneral;
using zrtest::ResidualRatio;
using zrtest::Transposed;

constexpr double kEps = 2.220446049250313e-16;
constexpr double kUnset = 1234.5;  // marks elements the routine must not write

struct Svd {
  std::vector<double> s, e;
  ColMatrix u, v;
  int info;
};

Svd Decompose(ColMatrix x, int job) {
  const int n = x.rows, p = x.cols;
  Svd r{std::vector<double>(std::max(std::min(n + 1, p), 1), kUnset), std::vector<double>(p),
        ColMatrix(n, n), ColMatrix(p, p), 0};
  std::fill(r.u.a.begin(), r.u.a.end(), kUnset);
  std::fill(r.v.a.begin(), r.v.a.end(), kUnset);
  std::vector<double> work(n);
  r.info = Linpack::Dsvdc(x.data(), n, n, p, r.s.data(), r.e.data(), r.u.data(), n, r.v.data(), p,
                          work.data(), job);
  return r;
}

ColMatrix Columns(const ColMatrix & a, int cols) {
  ColMatrix c(a.rows, cols);
  std::copy(a.a.begin(), a.a.begin() + static_cast<std::ptrdiff_t>(a.rows) * cols, c.a.begin());
  return c;
}

TEST(LinpackDsvdc, AgreesWithLapackAndReproducesMatrixForEveryJob) {
  const struct {
    int n, p;
  } shapes[] = {{1, 1}, {1, 5}, {5, 1}, {6, 6}, {10, 4}, {4, 10}, {30, 20}, {20, 30}};
  for (const auto & sh : shapes) {
    const int n = sh.n, p = sh.p, r = std::min(n, p);
    for (const std::string kind : {"random", "rank 2", "graded", "zero in bidiagonal"}) {
      ColMatrix x = RandomGeneral(n, p, 10 * n + p);
      if (kind == "rank 2") x = Multiply(RandomGeneral(n, 2, n), RandomGeneral(2, p, p));
      for (int j = 0; j < p && kind == "zero in bidiagonal"; ++j)  // the split at s(2) = 0
        for (int i = 0; i < n; ++i)
          if ((i != j && i + 1 != j) || (i == 1 && j == 1)) x(i, j) = 0.0;
      if (kind == "graded")  // singular values spread over 12 decades
        for (int j = 0; j < p; ++j)
          for (int i = 0; i < n; ++i) x(i, j) *= std::pow(10.0, -12.0 * j / std::max(p - 1, 1));
      ColMatrix a = x;
      std::vector<double> want(r), work(1000);
      const int lwork = 1000, one = 1;
      int info = 0;
      dgesvd_("N", "N", &n, &p, a.data(), &n, want.data(), nullptr, &one, nullptr, &one,
              work.data(), &lwork, &info);
      ASSERT_EQ(info, 0);
      const std::vector<double> s0 = Decompose(x, 0).s;
      for (int job : {0, 1, 10, 11, 20, 21}) {
        SCOPED_TRACE(testing::Message() << n << "x" << p << " " << kind << " job=" << job);
        const Svd d = Decompose(x, job);
        ASSERT_EQ(d.info, 0);
        EXPECT_EQ(d.s, s0);  // the vectors requested do not change the values
        for (int i = 0; i < r; ++i)
          EXPECT_LE(std::fabs(d.s[i] - want[i]), 1e-14 * want[0]);  // seen 2e-15
        for (int i = r; i < std::min(n + 1, p); ++i) EXPECT_EQ(d.s[i], 0.0);
        for (int i = 0; i + 1 < r; ++i) EXPECT_GE(d.s[i], d.s[i + 1]);
        for (int i = 0; i < std::min(n + 1, p); ++i) EXPECT_EQ(d.e[i], 0.0);
        const int ncu = job / 10 == 1 ? n : r;
        const ColMatrix u = Columns(d.u, ncu), v = d.v;
        if (job / 10 != 0) {
          EXPECT_LT(ResidualRatio(Multiply(Transposed(u), u), Identity(ncu), Identity(ncu)), 30.);
          for (std::size_t k = u.a.size(); k < d.u.a.size(); ++k) EXPECT_EQ(d.u.a[k], kUnset);
          // Row i of U'X has norm s(i) whether or not V is formed.
          const ColMatrix utx = Multiply(Transposed(Columns(u, r)), x);
          for (int i = 0; i < r; ++i) {
            double ss = 0.0;
            for (int j = 0; j < p; ++j) ss += utx(i, j) * utx(i, j);
            EXPECT_LE(std::fabs(std::sqrt(ss) - d.s[i]), 30 * n * kEps * want[0]);
          }
        } else {
          EXPECT_EQ(d.u.a, std::vector<double>(d.u.a.size(), kUnset));
        }
        if (job % 10 != 0) {
          EXPECT_LT(ResidualRatio(Multiply(Transposed(v), v), Identity(p), Identity(p)), 30.0);
        } else {
          EXPECT_EQ(d.v.a, std::vector<double>(d.v.a.size(), kUnset));
        }
        if (job / 10 != 0 && job % 10 != 0) {
          ColMatrix us = Columns(u, r);
          for (int j = 0; j < r; ++j)
            for (int i = 0; i < n; ++i) us(i, j) *= d.s[j];
          const ColMatrix usvt = Multiply(us, Transposed(Columns(v, r)));
          EXPECT_LT(ResidualRatio(usvt, x, x), 30.0);
        }
      }
    }
  }
}

TEST(LinpackDsvdc, ExactSmallCases) {
  ColMatrix neg(1, 1);
  neg(0, 0) = -3.0;  // the sign moves into V
  Svd d = Decompose(neg, 11);
  EXPECT_EQ(d.s[0], 3.0);
  EXPECT_EQ(d.u(0, 0), 1.0);
  EXPECT_EQ(d.v(0, 0), -1.0);

  ColMatrix diag(3, 3);  // values sorted, signs dropped
  diag(0, 0) = 1.0, diag(1, 1) = -4.0, diag(2, 2) = 2.0;
  EXPECT_EQ(Decompose(diag, 0).s, (std::vector<double>{4.0, 2.0, 1.0}));

  d = Decompose(ColMatrix(4, 3), 11);  // zero matrix: zero values, identity factors
  EXPECT_EQ(d.info, 0);
  EXPECT_EQ(d.s, std::vector<double>(3, 0.0));
  EXPECT_EQ(d.u.a, Identity(4).a);
  EXPECT_EQ(d.v.a, Identity(3).a);
}

TEST(LinpackDsvdc, NonConvergenceAndEmptyInput) {
  for (int n : {3, 5}) {  // a NaN never passes the negligibility tests: 30 QR steps, then stop
    SCOPED_TRACE(n);
    ColMatrix x = RandomGeneral(n, 4, 1);
    x(1, 1) = NAN;
    EXPECT_EQ(Decompose(x, 11).info, std::min(n + 1, 4));
  }
  for (int n : {0, 2}) {
    SCOPED_TRACE(n);
    const Svd d = Decompose(ColMatrix(n, 2 - n), 11);
    EXPECT_EQ(d.info, 0);
    EXPECT_EQ(d.s[0], kUnset);
  }
}

// Fault: an infinite element kept a negligibility test true, so the split pass repeated
// for ever without counting a QR step. Now such input returns with info != 0.
TEST(LinpackDsvdc, InfiniteElementsReturnWithFailure) {
  zrtest::Watchdog dog(std::chrono::seconds(20));  // a hang ends the run with its name
  for (double bad : {INFINITY, -INFINITY}) {
    for (int at = 0; at < 4; ++at) {
      SCOPED_TRACE(testing::Message() << bad << " at (" << at << ", " << at << ")");
      ColMatrix x = RandomGeneral(4, 4, 7);
      x(at, at) = bad;
      dog.Run("Dsvdc with an infinite diagonal element",
              [&] { EXPECT_NE(Decompose(x, 11).info, 0); });
    }
  }
}

// Fault: elements near the largest double overflowed the sums of the negligibility tests
// (a wrong split and a hang at 1.797e308, a wrong success, s(1) = 1.247e308 instead of
// 1.430e308, at 3e307). Scaled by a power of two the routine must give LAPACK's values on
// the same matrix scaled exactly into range, or report the values that overflow through info.
TEST(LinpackDsvdc, ExtremeMagnitudesAreScaledOrReported) {
  constexpr double kMax = 1.7976931348623157e308;
  const struct {
    const char * what;
    double scale;  // applied to a random 4 x 4 matrix; diagonal entry replaced when set
    double diag;
  } cases[] = {{"3e307 x random", 3e307, 0.0},       {"1e-300 x random", 1e-300, 0.0},
               {"4e-320 x random", 4e-320, 0.0},     {"+max on the diagonal", 1.0, kMax},
               {"-max on the diagonal", 1.0, -kMax}, {"max x random", kMax, 0.0}};
  for (const auto & c : cases) {
    for (int at = 0; at < 4; ++at) {
      SCOPED_TRACE(testing::Message() << c.what << " at " << at);
      ColMatrix x = RandomGeneral(4, 4, 3);
      for (double & v : x.a) v *= c.scale;
      if (c.diag != 0.0) x(at, at) = c.diag;
      // Reference: LAPACK on x / 2^k, k moving the largest element near 1, values times 2^k.
      ColMatrix a = x;
      double amax = 0.0;
      for (double v : a.a) amax = std::max(amax, std::fabs(v));
      const int k = std::ilogb(amax);
      for (double & v : a.a) v = std::ldexp(v, -k);
      const ColMatrix scaled = a;
      std::vector<double> want(4), work(1000);
      const int n = 4, lwork = 1000, one = 1;
      int info = 0;
      dgesvd_("N", "N", &n, &n, a.data(), &n, want.data(), nullptr, &one, nullptr, &one,
              work.data(), &lwork, &info);
      ASSERT_EQ(info, 0);
      const Svd d = Decompose(x, 11);
      int overflowing = 0;
      for (int i = 0; i < 4; ++i)
        if (std::ldexp(want[i], k) > kMax) overflowing = i + 1;
      EXPECT_EQ(d.info, overflowing);
      // A value of order s(1) eps is absolute noise; a subnormal result is rounded once more.
      const double tol = 1e-14 * want[0] + std::ldexp(4.9406564584124654e-324, -k);
      for (int i = overflowing; i < 4; ++i)
        EXPECT_LE(std::fabs(std::ldexp(d.s[i], -k) - want[i]), tol) << i;
      if (overflowing == 0 && std::isnormal(want[3]) && std::isnormal(std::ldexp(want[3], k))) {
        ColMatrix us = d.u;  // U S V' reproduces x, compared at scale 2^-k
        for (int j = 0; j < 4; ++j)
          for (int i = 0; i < 4; ++i) us(i, j) *= std::ldexp(d.s[j], -k);
        EXPECT_LT(ResidualRatio(Multiply(us, Transposed(d.v)), scaled, scaled), 30.0);
      }
    }
  }
}

}  // namespace
