// Triangular and tridiagonal LINPACK routines against reference LAPACK on the same
// matrices, and hand-computed cases.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "support/colmajor.h"
#include "support/lapack.h"
#include "zrcommon920r/math/matrix/kernels.h"

extern "C" {
void dtrcon_(const char * norm, const char * uplo, const char * diag, const int * n,
             const double * a, const int * lda, double * rcond, double * work, int * iwork,
             int * info);
}

namespace {

using ZRMath_920::Linpack;
using zrtest::ColMatrix;
using zrtest::Norm1;
using Vec = std::vector<double>;

constexpr double kEps = 2.220446049250313e-16;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

// A random triangle: `t` with zeros elsewhere, `stored` with NaN there (never read). With
// bump the diagonal moves 2 away from 0; without it cond grows quickly with n.
struct Tri {
  ColMatrix t, stored;
  bool upper;
};

Tri RandomTriangular(int n, bool upper, bool bump, unsigned seed) {
  Tri c{zrtest::RandomGeneral(n, n, seed), ColMatrix(), upper};
  c.stored = c.t;
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) {
      if (upper ? i > j : i < j) c.t(i, j) = 0.0, c.stored(i, j) = kNaN;
      if (i == j && bump) c.t(i, i) = c.stored(i, i) += c.t(i, i) < 0.0 ? -2.0 : 2.0;
    }
  return c;
}

// 1 / (||A||_1 ||inv(A)||_1) with the inverse from LAPACK.
double TrueRcond(const ColMatrix & a) {
  const int n = a.rows, lwork = 4 * n;
  ColMatrix inv = a;
  std::vector<int> ipiv(n);
  Vec work(lwork);
  int info = 0;
  dgetrf_(&n, &n, inv.data(), &n, ipiv.data(), &info);
  dgetri_(&n, inv.data(), &n, ipiv.data(), work.data(), &lwork, &info);
  return 1.0 / (Norm1(a) * Norm1(inv));
}

TEST(LinpackTriangular, SolveEstimateAndInverseAgreeWithLapack) {
  for (bool upper : {true, false}) {
    for (int n : {1, 2, 5, 30, -30}) {  // -30: ill-conditioned, n = 30
      const Tri c =
          RandomTriangular(std::abs(n), upper, n > 0, static_cast<unsigned>(n + 100 + 50 * upper));
      SCOPED_TRACE(testing::Message() << (upper ? "upper" : "lower") << " n=" << n);
      const int m = c.t.rows;
      ColMatrix stored = c.stored;
      for (int job : {0, 10}) {
        const Vec b = zrtest::RandomGeneral(m, 1, 11).a;
        Vec x = b;
        ASSERT_EQ(Linpack::Dtrsl(stored.data(), m, m, x.data(), job + upper), 0);
        const ColMatrix op = job == 0 ? c.t : zrtest::Transposed(c.t);
        EXPECT_LT(zrtest::SolveResidualRatio(op, x, b), 30.0) << "job " << job + upper;
      }
      Vec z(m), work(3 * m);
      std::vector<int> iwork(m);
      const double rcond = Linpack::Dtrco(stored.data(), m, m, z.data(), upper);
      double dtrcon = 0.0;
      int info = 0;
      dtrcon_("1", upper ? "U" : "L", "N", &m, c.t.a.data(), &m, &dtrcon, work.data(), iwork.data(),
              &info);
      const double trueRcond = TrueRcond(c.t);
      EXPECT_GE(rcond, 0.9 * trueRcond);  // lower bound on ||inv(T)||, up to rounding
      EXPECT_LE(rcond, 10.0 * trueRcond);
      EXPECT_GE(rcond, 0.1 * dtrcon);
      EXPECT_LE(rcond, 10.0 * dtrcon);
      double det[2] = {-3.0, -4.0};
      ASSERT_EQ(Linpack::Dtrdi(stored.data(), m, m, det, 10 + upper), 0);
      EXPECT_EQ(det[0], -3.0);  // no determinant asked for
      for (int j = 0; j < m; ++j)
        for (int i = 0; i < m; ++i)
          if (upper ? i > j : i < j) stored(i, j) = 0.0;  // still NaN: never written
      // ||inv(T) T - I||_1 / (n ||T||_1 ||inv(T)||_1 eps), LAPACK's dtrt01 ratio; Norm1 passes
      // over NaN columns, so finiteness is checked first.
      for (double v : stored.a) ASSERT_TRUE(std::isfinite(v));
      const ColMatrix id = zrtest::Identity(m);
      EXPECT_LT(zrtest::ResidualRatio(zrtest::Multiply(stored, c.t), id, id) /
                    (Norm1(c.t) * Norm1(stored)),
                30.0);
    }
  }
}

TEST(LinpackTriangular, ZeroDiagonalsAndHandComputedValues) {
  // Dtrsl stops at the first zero diagonal and leaves b alone.
  for (int job : {0, 1, 10, 11}) {
    Tri c = RandomTriangular(5, job % 10 != 0, true, 3);
    c.stored(2, 2) = c.stored(4, 4) = 0.0;
    const Vec b = {1, 2, 3, 4, 5};
    Vec x = b;
    EXPECT_EQ(Linpack::Dtrsl(c.stored.data(), 5, 5, x.data(), job), 3) << job;
    EXPECT_EQ(x, b) << job;
  }
  // Dtrdi inverts upper columns left to right and lower ones right to left, so it stops at
  // the first or the last zero.
  struct {
    int line, job, info;
  } const stops[] = {{__LINE__, 11, 2}, {__LINE__, 10, 4}, {__LINE__, 110, 4}, {__LINE__, 101, 0}};
  for (const auto & c : stops) {
    SCOPED_TRACE(c.line);
    const bool upper = c.job % 10 != 0;
    Tri tc = RandomTriangular(5, upper, true, 13);
    tc.stored(1, 1) = tc.stored(3, 3) = 0.0;
    ColMatrix t = tc.stored;
    double det[2] = {-3.0, -4.0};
    EXPECT_EQ(Linpack::Dtrdi(t.data(), 5, 5, det, c.job), c.info);
    EXPECT_EQ(det[0], c.job >= 100 ? 0.0 : -3.0);
  }
  // Condition estimates traced by hand: the sign choice for e (2 x 2, both triangles) and
  // the look-ahead (3 x 3); true values 1/4 and 1/176.
  struct {
    int line, n, job;
    Vec t;
    double rcond;
  } const estimates[] = {{__LINE__, 2, 1, {1, kNaN, 1, 1}, 0.3},
                         {__LINE__, 2, 0, {1, 1, kNaN, 1}, 0.3},
                         {__LINE__, 3, 1, {1, kNaN, kNaN, 1, 1, kNaN, 10, 5, 1}, 3.0 / 488.0},
                         {__LINE__, 0, 1, {}, 0.0}};
  for (const auto & c : estimates) {
    Vec t = c.t, z(c.n);
    EXPECT_NEAR(Linpack::Dtrco(t.data(), std::max(c.n, 1), c.n, z.data(), c.job), c.rcond, 8 * kEps)
        << c.line;
  }
  // Determinants, far outside the double range too. An overflowing or NaN product ends the
  // scaling (it would loop forever as published).
  struct {
    int line;
    Vec diag;
    double det0, det1;
  } const dets[] = {
      {__LINE__, {2, -5, 0.5, 8}, -4.0, 1.0},  // every step exact
      {__LINE__, {1e-300, 1e-300, 1e-300}, 1.0, -900.0},
      {__LINE__, {1e300, 1e300, -1e300}, -1.0, 900.0},
      {__LINE__, {3, 0, 2}, 0.0, 0.0},
      {__LINE__, {9, 1e308}, kInf, 0.0},
      {__LINE__, {9, kNaN}, kNaN, 0.0},
  };
  for (const auto & c : dets) {
    SCOPED_TRACE(c.line);
    const int n = static_cast<int>(c.diag.size());
    ColMatrix t(n, n);
    for (int i = 0; i < n; ++i) t(i, i) = c.diag[i];
    double det[2];
    EXPECT_EQ(Linpack::Dtrdi(t.data(), n, n, det, 100), 0);
    if (!std::isfinite(c.det0)) {
      EXPECT_FALSE(std::isfinite(det[0]));
      continue;
    }
    EXPECT_TRUE(det[0] == 0.0 || (std::fabs(det[0]) >= 1.0 && std::fabs(det[0]) < 10.0));
    // Scalings by ten are inexact: 300 of them cost ~1e-13.
    EXPECT_NEAR(det[0] * std::pow(10.0, det[1] - c.det1), c.det0, 1e-12);
  }
}

TEST(LinpackTridiagonal, SolvesAgreeWithLapack) {
  for (int n : {1, 2, 3, 4, 5, 6, 7, 10, 51}) {  // Dptsl meets its centre at each parity
    SCOPED_TRACE(n);
    Vec c = zrtest::RandomGeneral(n, 1, n).a, d = zrtest::RandomGeneral(n, 1, 2 * n).a,
        e = zrtest::RandomGeneral(n, 1, 3 * n).a;
    const Vec b = zrtest::RandomGeneral(n, 1, 4 * n).a;
    // General: entries on [-1, 1), not diagonally dominant, so rows get interchanged.
    ColMatrix a(n, n), spd(n, n);
    for (int i = 0; i < n; ++i) {
      a(i, i) = d[i];
      spd(i, i) = 3.0 + d[i];  // >= 2 > |e(i-1)| + |e(i)|: positive definite
      if (i > 0) a(i, i - 1) = c[i], spd(i, i - 1) = e[i - 1];
      if (i + 1 < n) a(i, i + 1) = e[i], spd(i, i + 1) = e[i];
    }
    Vec cc = c, dd = d, ee = e, x = b, xRef = b;
    cc[0] = ee[n - 1] = kNaN;  // workspace: what it held must not matter
    Vec dl(c.begin() + 1, c.end()), du(e.begin(), e.end() - 1), dr = d;
    const int one = 1;
    int info = 0;
    ASSERT_EQ(Linpack::Dgtsl(n, cc.data(), dd.data(), ee.data(), x.data()), 0);
    dgtsv_(&n, &one, dl.data(), dr.data(), du.data(), xRef.data(), &n, &info);
    EXPECT_LT(zrtest::SolveResidualRatio(a, x, b), 30.0);
    const double tol = 30.0 * n * kEps / TrueRcond(a);
    for (int i = 0; i < n; ++i) EXPECT_NEAR(x[i], xRef[i], tol * std::fabs(xRef[i]) + tol) << i;

    for (int i = 0; i < n; ++i) dd[i] = dr[i] = spd(i, i);
    ee = e, x = xRef = b, ee[n - 1] = kNaN;
    Linpack::Dptsl(n, dd.data(), ee.data(), x.data());
    dptsv_(&n, &one, dr.data(), e.data(), xRef.data(), &n, &info);
    EXPECT_LT(zrtest::SolveResidualRatio(spd, x, b), 30.0);
    for (int i = 0; i < n; ++i)
      EXPECT_NEAR(x[i], xRef[i], 30 * n * kEps * (std::fabs(xRef[i]) + 1));
  }
}

TEST(LinpackTridiagonal, ZeroPivotsGiveTheirIndex) {
  // c[0] and e[n - 1] are workspace: NaN there must not matter.
  struct {
    int line;
    Vec c, d, e;
    int info;
  } const cases[] = {
      {__LINE__, {kNaN}, {0}, {kNaN}, 1},
      {__LINE__, {kNaN, 1}, {1, 1}, {1, kNaN}, 2},           // [1 1; 1 1]
      {__LINE__, {kNaN, 0, 1}, {0, 2, 3}, {1, 1, kNaN}, 1},  // first column zero
      {__LINE__, {}, {}, {}, 0},
  };
  for (const auto & c : cases) {
    Vec cc = c.c, dd = c.d, ee = c.e, b(c.d.size(), 1.0);
    const int n = static_cast<int>(c.d.size());
    EXPECT_EQ(Linpack::Dgtsl(n, cc.data(), dd.data(), ee.data(), b.data()), c.info) << c.line;
  }
}

}  // namespace
