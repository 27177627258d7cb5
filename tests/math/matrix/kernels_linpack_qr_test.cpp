// QR decomposition and its least-squares use: X P = Q R, pivoting against LAPACK dgeqp3,
// solutions against LAPACK dgels, the job digits and the zero-diagonal info.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "support/colmajor.h"
#include "support/lapack.h"
#include "zrcommon920r/math/matrix/kernels.h"

namespace {

using ZRMath_920::Linpack;
using zrtest::ColMatrix;
using zrtest::Identity;
using zrtest::Multiply;
using zrtest::RandomGeneral;
using zrtest::ResidualRatio;
using zrtest::Transposed;

struct Qr {
  ColMatrix x;  // R above the diagonal, Householder vectors below
  std::vector<double> qraux;
  std::vector<int> jpvt;
};

Qr Factor(const ColMatrix & x, int job, std::vector<int> jpvt = {}) {
  Qr f{x, std::vector<double>(x.cols), jpvt};
  f.jpvt.resize(x.cols, 0);
  std::vector<double> work(x.cols);
  Linpack::Dqrdc(f.x.data(), x.rows, x.rows, x.cols, f.qraux.data(), f.jpvt.data(), work.data(),
                 job);
  return f;
}

// Q y (job 10000) or Q'y (job 1000) for each column of y.
ColMatrix ApplyQ(Qr & f, ColMatrix y, int job) {
  const int n = f.x.rows;
  std::vector<double> out(n);
  for (int j = 0; j < y.cols; ++j) {
    Linpack::Dqrsl(f.x.data(), n, n, std::min(n, f.x.cols), f.qraux.data(), &y(0, j), out.data(),
                   out.data(), nullptr, nullptr, nullptr, job);
    std::copy(out.begin(), out.end(), &y(0, j));
  }
  return y;
}

ColMatrix UpperR(const Qr & f) {
  ColMatrix r(f.x.rows, f.x.cols);
  for (int j = 0; j < r.cols; ++j)
    for (int i = 0; i <= std::min(j, r.rows - 1); ++i) r(i, j) = f.x(i, j);
  return r;
}

// The columns of x in the order jpvt gives (1-based), or as they are when jpvt is empty.
ColMatrix Permuted(const ColMatrix & x, const std::vector<int> & jpvt, int cols) {
  ColMatrix xp(x.rows, cols);
  for (int j = 0; j < cols; ++j)
    for (int i = 0; i < x.rows; ++i) xp(i, j) = x(i, jpvt.empty() ? j : jpvt[j] - 1);
  return xp;
}

// Column norms are spread so that no pivot is a near tie, and LAPACK's dgeqp3 must pivot
// alike; the nearly singular variant has its last column within 1e-10 of the first.
TEST(LinpackDqrdc, QTimesRReproducesPermutedMatrixAndPivotsAsLapack) {
  const struct {
    int n, p;
  } shapes[] = {{1, 1}, {1, 4}, {4, 1},   {3, 8},   {6, 6},
                {9, 4}, {4, 9}, {20, 20}, {40, 25}, {25, 40}};
  for (const auto & sh : shapes) {
    for (bool nearlySingular : {false, true}) {
      ColMatrix x = RandomGeneral(sh.n, sh.p, 100 * sh.n + sh.p);
      for (int j = 0; j < sh.p; ++j)
        for (int i = 0; i < sh.n; ++i) x(i, j) *= 1.0 + 0.3 * ((5 * j) % sh.p);
      if (nearlySingular && sh.p > 1)  // cond ~1e10
        for (int i = 0; i < sh.n; ++i) x(i, sh.p - 1) = x(i, 0) + 1e-10 * x(i, sh.p - 1);
      for (int job : {0, 1}) {
        SCOPED_TRACE(testing::Message()
                     << sh.n << "x" << sh.p << " near=" << nearlySingular << " job=" << job);
        Qr f = Factor(x, job);
        const ColMatrix q = ApplyQ(f, Identity(sh.n), 10000);
        const ColMatrix xp = Permuted(x, job ? f.jpvt : std::vector<int>{}, sh.p);
        EXPECT_LT(ResidualRatio(Multiply(q, UpperR(f)), xp, x), 30.0);
        EXPECT_LT(ResidualRatio(Multiply(Transposed(q), q), Identity(sh.n), Identity(sh.n)), 30.0);
        for (int k = 1; job && k < std::min(sh.n, sh.p); ++k)  // largest reduced norm first
          EXPECT_LE(std::fabs(f.x(k, k)), std::fabs(f.x(k - 1, k - 1)) * (1.0 + 1e-12));
        if (!job || nearlySingular) continue;
        ColMatrix a = x;
        std::vector<int> jpvt(sh.p, 0);
        std::vector<double> tau(sh.p), work(1000);
        const int lwork = 1000;
        int info = 0;
        dgeqp3_(&sh.n, &sh.p, a.data(), &sh.n, jpvt.data(), tau.data(), work.data(), &lwork, &info);
        ASSERT_EQ(info, 0);
        EXPECT_EQ(f.jpvt, jpvt);
        for (int k = 0; k < std::min(sh.n, sh.p); ++k)
          EXPECT_LE(std::fabs(std::fabs(f.x(k, k)) - std::fabs(a(k, k))),
                    1e-14 * std::fabs(a(0, 0)));  // both backward stable; seen 2e-16
      }
    }
  }
}

// Initial columns (jpvt > 0) go first in their order, final ones (jpvt < 0) last, and the
// free ones between by norm. Orthogonal columns keep their norms, so R is known exactly.
TEST(LinpackDqrdc, InitialAndFinalColumnsKeepTheirPlaces) {
  ColMatrix x(6, 6);
  x(0, 2) = 1.0;                  // initial
  x(1, 0) = 2.0;                  // free, norm 2
  x(2, 3) = 3.0;                  // free, norm 3
  x(3, 5) = 1.5;                  // free, norm 1.5
  x(4, 1) = 10.0, x(0, 1) = 4.0;  // final: largest norm, still last but one
  x(5, 4) = 7.0, x(1, 4) = 5.0;   // final
  const Qr f = Factor(x, 1, {0, -1, 1, 0, -1, 0});
  EXPECT_EQ(f.jpvt, (std::vector<int>{3, 4, 1, 6, 2, 5}));
  const double diag[] = {1.0, 3.0, 2.0, 1.5, 10.0, 7.0};
  for (int k = 0; k < 6; ++k) EXPECT_NEAR(std::fabs(f.x(k, k)), diag[k], 1e-15 * diag[k]);
}

TEST(LinpackDqrsl, LeastSquaresMatchesLapackDgels) {
  const struct {
    int n, p, k;
  } cases[] = {{5, 5, 5}, {12, 4, 4}, {12, 4, 2}, {40, 15, 15}, {40, 15, 9}, {1, 3, 1}};
  for (const auto & c : cases) {
    for (int job : {0, 1}) {
      SCOPED_TRACE(testing::Message() << c.n << "x" << c.p << " k=" << c.k << " job=" << job);
      const ColMatrix x = RandomGeneral(c.n, c.p, 3 * c.n + c.p);
      ColMatrix y = RandomGeneral(c.n, 1, 99);
      Qr f = Factor(x, job);
      std::vector<double> qty(c.n), b(c.k), rsd(c.n), xb(c.n);
      ASSERT_EQ(Linpack::Dqrsl(f.x.data(), c.n, c.n, c.k, f.qraux.data(), y.data(), nullptr,
                               qty.data(), b.data(), rsd.data(), xb.data(), 111),
                0);
      // LAPACK on the same k leading columns of X P: y and b are O(1), cond below 100; seen
      // 1e-15.
      const ColMatrix xk = Permuted(x, job ? f.jpvt : std::vector<int>{}, c.k);
      ColMatrix a = xk, want = y;
      const int one = 1, lwork = 1000;
      std::vector<double> work(lwork);
      int info = 0;
      dgels_("N", &c.n, &c.k, &one, a.data(), &c.n, want.data(), &c.n, work.data(), &lwork, &info);
      ASSERT_EQ(info, 0);
      want.rows = c.k;  // the solution: the first k elements
      want.a.resize(c.k);
      const ColMatrix fit = Multiply(xk, want);
      for (int j = 0; j < c.k; ++j) EXPECT_LE(std::fabs(b[j] - want.a[j]), 1e-14);
      for (int i = 0; i < c.n; ++i) {
        EXPECT_LE(std::fabs(xb[i] - fit(i, 0)), 1e-14);
        EXPECT_LE(std::fabs(rsd[i] - (y(i, 0) - fit(i, 0))), 1e-14);
      }
    }
  }
}

// Each digit of abcde writes its own output and no other; Q'y is the work array of b, rsd
// and xb. Outputs do not depend on which others are requested.
TEST(LinpackDqrsl, JobDigitsSelectOutputs) {
  const int n = 6, p = 4, k = 3;
  const ColMatrix x = RandomGeneral(n, p, 5);
  ColMatrix y = RandomGeneral(n, 1, 6);
  Qr f = Factor(x, 1);
  std::vector<std::vector<double>> all(5, std::vector<double>(n, 0.0));
  Linpack::Dqrsl(f.x.data(), n, n, k, f.qraux.data(), y.data(), all[0].data(), all[1].data(),
                 all[2].data(), all[3].data(), all[4].data(), 11111);
  const double kUnset = 1234.5;
  for (int job : {10000, 1000, 100, 10, 1, 10101, 20002}) {
    SCOPED_TRACE(job);
    std::vector<std::vector<double>> out(5, std::vector<double>(n, kUnset));
    Linpack::Dqrsl(f.x.data(), n, n, k, f.qraux.data(), y.data(), out[0].data(), out[1].data(),
                   out[2].data(), out[3].data(), out[4].data(), job);
    const bool want[5] = {job / 10000 != 0, job % 10000 != 0, job / 100 % 10 != 0,
                          job / 10 % 10 != 0, job % 10 != 0};
    for (int o = 0; o < 5; ++o) {
      SCOPED_TRACE(o);
      const int len = o == 2 ? k : n;  // b has k elements
      for (int i = 0; i < len; ++i) EXPECT_EQ(out[o][i], want[o] ? all[o][i] : kUnset);
    }
  }
}

TEST(LinpackDqrsl, ZeroDiagonalOfRGivesInfo) {
  struct {
    int line;
    std::vector<int> zeroCols;  // 0-based columns of a 5 x 4 X set to zero
    int job, info;
  } const cases[] = {
      {__LINE__, {1}, 100, 2},
      {__LINE__, {0, 2}, 100, 3},
      {__LINE__, {0, 1, 2, 3}, 100, 4},  // last met first; zero X
      {__LINE__, {1}, 11011, 0},         // b not requested
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ColMatrix x = RandomGeneral(5, 4, 11);
    for (int j : c.zeroCols)
      for (int i = 0; i < 5; ++i) x(i, j) = 0.0;
    Qr f = Factor(x, 0);
    std::vector<double> y(5, 1.0), out(5), qty(5), b(4);
    EXPECT_EQ(Linpack::Dqrsl(f.x.data(), 5, 5, 4, f.qraux.data(), y.data(), out.data(), qty.data(),
                             b.data(), out.data(), out.data(), c.job),
              c.info);
  }
}

// n == 1 takes its own path: Q = 1, the fit is exact, b = y / x; a zero x gives info 1.
TEST(LinpackDqrsl, OneObservation) {
  for (double x11 : {4.0, 0.0}) {
    SCOPED_TRACE(x11);
    double x[3] = {x11, 1.0, 2.0}, qraux[3], y = 8.0, out[5] = {0, 0, -1.0, -1.0, 0};
    Linpack::Dqrdc(x, 1, 1, 3, qraux, nullptr, nullptr, 0);
    EXPECT_EQ(x[0], x11);
    EXPECT_EQ(qraux[0], 0.0);
    EXPECT_EQ(Linpack::Dqrsl(x, 1, 1, 1, qraux, &y, out, out + 1, out + 2, out + 3, out + 4, 11111),
              x11 == 0.0 ? 1 : 0);
    const double want[5] = {8.0, 8.0, x11 == 0.0 ? -1.0 : 2.0, 0.0, 8.0};  // qy qty b rsd xb
    for (int o = 0; o < 5; ++o) EXPECT_EQ(out[o], want[o]);
  }
}

}  // namespace
