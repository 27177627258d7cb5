// Cholesky with diagonal pivoting, rank one update and downdate, and column exchanges:
// reconstructions of the permuted or modified matrix, LAPACK's pivoted Cholesky, and the
// least-squares identities R'z = X'y, rho^2 = ||y||^2 - ||z||^2 that z and rho must keep.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "support/colmajor.h"
#include "support/refdata.h"
#include "zrcommon920r/math/matrix/kernels.h"

extern "C" {
void dgeqrf_(const int * m, const int * n, double * a, const int * lda, double * tau, double * work,
             const int * lwork, int * info);
void dpstrf_(const char * uplo, const int * n, double * a, const int * lda, int * piv, int * rank,
             const double * tol, double * work, int * info);
}

namespace {

using ZRMath_920::Linpack;
using zrtest::ColMatrix;
using zrtest::Multiply;
using zrtest::Norm1;
using zrtest::RelErr;
using zrtest::ResidualRatio;
using zrtest::Transposed;
using Vec = std::vector<double>;

constexpr double kEps = 2.220446049250313e-16;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// The upper triangle of a; below it zeros, or with poison NaNs that nothing may read.
ColMatrix Upper(ColMatrix a, bool poison = false) {
  for (int j = 0; j < a.cols; ++j)
    for (int i = j + 1; i < a.rows; ++i) a(i, j) = poison ? kNaN : 0.0;
  return a;
}

// R'R from the upper triangle of r.
ColMatrix Gram(const ColMatrix & r) {
  return Multiply(Transposed(Upper(r)), Upper(r));
}

// A(perm(i), perm(j)) with a 1-based permutation.
ColMatrix Permuted(const ColMatrix & a, const std::vector<int> & perm) {
  ColMatrix b(a.rows, a.cols);
  for (int i = 0; i < a.rows; ++i)
    for (int j = 0; j < a.cols; ++j) b(i, j) = a(perm[i] - 1, perm[j] - 1);
  return b;
}

ColMatrix Minus(ColMatrix a, const ColMatrix & b) {
  for (std::size_t k = 0; k < a.a.size(); ++k) a.a[k] -= b.a[k];
  return a;
}

// Dchdc on a copy of a with a poisoned lower triangle; r returns the factor.
int Chdc(const ColMatrix & a, ColMatrix & r, std::vector<int> & jpvt, int job) {
  r = Upper(a, true);
  Vec work(a.rows);
  return Linpack::Dchdc(r.data(), a.rows, a.rows, work.data(), jpvt.data(), job);
}

// Least-squares state of the first n rows of (X, Y), from LAPACK's QR of [X Y] = Q [R Z; 0 T]:
// R'R = X'X, R'z = X'Y, rho(j) = ||y_j - X b_j|| = ||T e_j||.
struct LsState {
  ColMatrix r, z;
  Vec rho;
  LsState(const ColMatrix & x, const ColMatrix & y, int n)
      : r(x.cols, x.cols), z(x.cols, y.cols), rho(y.cols) {
    const int p = x.cols, m = p + y.cols, lwork = 64 * m;
    ColMatrix xy(n, m);
    for (int i = 0; i < n; ++i)
      for (int j = 0; j < m; ++j) xy(i, j) = j < p ? x(i, j) : y(i, j - p);
    Vec tau(m), work(lwork);
    int info = 0;
    dgeqrf_(&n, &m, xy.data(), &n, tau.data(), work.data(), &lwork, &info);
    for (int j = 0; j < m; ++j)
      for (int i = 0; i <= j; ++i) {
        if (j < p) r(i, j) = xy(i, j);
        if (j >= p && i < p) z(i, j - p) = xy(i, j);
        if (i >= p) rho[j - p] = std::hypot(rho[j - p], xy(i, j));
      }
  }
  // R'R, R'z and rho against those of want, from the same rows.
  void ExpectSame(const LsState & want) const {
    EXPECT_LT(ResidualRatio(Gram(r), Gram(want.r), Gram(want.r)), 30.0);
    const ColMatrix rz = Multiply(Transposed(r), z), ref = Multiply(Transposed(want.r), want.z);
    EXPECT_LE(Norm1(Minus(rz, ref)), 30.0 * r.rows * Norm1(r) * Norm1(z) * kEps);
    for (std::size_t j = 0; j < rho.size(); ++j)
      EXPECT_LE(RelErr(rho[j], want.rho[j]), 1e-13);  // ||y||^2 / rho^2 ~ 2 for these data
  }
};

TEST(LinpackCholeskyPivoted, ReproducesPermutedMatrixAndMatchesLapack) {
  for (int n : {1, 5, 30}) {
    SCOPED_TRACE(n);
    const ColMatrix a = zrtest::RandomSpdCol(n, n + 11);
    ColMatrix r;
    std::vector<int> jpvt(n, 0);
    ASSERT_EQ(Chdc(a, r, jpvt, 0), n);
    EXPECT_EQ(jpvt, std::vector<int>(n, 0));  // untouched without pivoting
    EXPECT_LT(ResidualRatio(Gram(r), a, a), 30.0);

    ASSERT_EQ(Chdc(a, r, jpvt, 1), n);
    EXPECT_LT(ResidualRatio(Gram(r), Permuted(a, jpvt), a), 30.0);
    ColMatrix ref = a;
    std::vector<int> piv(n);
    Vec work(2 * n);
    int rank = 0, info = 0;
    const double tol = -1.0;
    dpstrf_("U", &n, ref.data(), &n, piv.data(), &rank, &tol, work.data(), &info);
    EXPECT_EQ(jpvt, piv);
    EXPECT_LT(ResidualRatio(Upper(r), Upper(ref), Upper(ref)), 30.0);
  }
}

TEST(LinpackCholeskyPivoted, StopsAtFirstNonPositivePivot) {
  struct {
    int line, n;
    Vec a;  // column-major
    int job, info;
    std::vector<int> jpvt;  // expected with job 1
  } const cases[] = {
      // R'R with R = [1 1 2; 0 1 1; 0 0 0]: rank 2, every step exact.
      {__LINE__, 3, {1.0, 1.0, 2.0, 1.0, 2.0, 3.0, 2.0, 3.0, 5.0}, 0, 2, {0, 0, 0}},
      // A zero row and column go last; the third pivot is exactly 0.0.
      {__LINE__, 3, {4.0, 0.0, 2.0, 0.0, 0.0, 0.0, 2.0, 0.0, 5.0}, 1, 2, {3, 1, 2}},
      {__LINE__, 1, {-1.0}, 1, 0, {1}},
      {__LINE__, 2, {1.0, 2.0, 2.0, 1.0}, 0, 1, {0, 0}},
      {__LINE__, 2, {0.0, 0.0, 0.0, 0.0}, 1, 0, {1, 2}},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ColMatrix a(c.n, c.n), r;
    a.a = c.a;
    std::vector<int> jpvt(c.n, 0);
    EXPECT_EQ(Chdc(a, r, jpvt, c.job), c.info);
    EXPECT_EQ(jpvt, c.jpvt);
    if (c.line == cases[0].line) {  // its rows 1 and 2: [1 1 2], [. 1 1]
      EXPECT_EQ((Vec{r(0, 0), r(0, 1), r(0, 2), r(1, 1), r(1, 2)}), (Vec{1, 1, 2, 1, 1}));
    }
  }
}

TEST(LinpackCholeskyPivoted, HonoursInitialAndFinalColumns) {
  struct {
    int line;
    std::vector<int> jpvt;   // > 0 initial, < 0 final, 0 free
    std::vector<int> fixed;  // expected jpvt, 0 where the column is free
  } const cases[] = {
      {__LINE__, {0, 1, 0, -1, 1, 0}, {2, 5, 0, 0, 0, 4}},
      {__LINE__, {-1, 0, 0, 1, 0, -1}, {4, 0, 0, 0, 1, 6}},  // the final flag moves with 1
      {__LINE__, {1, 1, 1, 1, 1, 1}, {1, 2, 3, 4, 5, 6}},
      {__LINE__, {-1, -1, -1, -1, -1, -1}, {1, 2, 3, 4, 5, 6}},
  };
  const ColMatrix a = zrtest::RandomSpdCol(6, 5);
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ColMatrix r;
    std::vector<int> jpvt = c.jpvt;
    ASSERT_EQ(Chdc(a, r, jpvt, 1), 6);
    for (int k = 0; k < 6; ++k) {
      if (c.fixed[k] != 0) {
        EXPECT_EQ(jpvt[k], c.fixed[k]);
      } else if (k + 1 < 6 && c.fixed[k + 1] == 0) {
        EXPECT_GE(r(k, k), r(k + 1, k + 1));  // free pivots in decreasing order
      }
    }
    EXPECT_LT(ResidualRatio(Gram(r), Permuted(a, jpvt), a), 30.0);  // jpvt a permutation too
  }
}

// Adding row 12 to the least-squares state of rows 1..11, and removing it again.
TEST(LinpackCholeskyUpdate, UpdateAndDowndateMatchRefactoring) {
  constexpr int n = 12, p = 5, nz = 2;
  const ColMatrix x = zrtest::RandomGeneral(n, p, 31), y = zrtest::RandomGeneral(n, nz, 32);
  Vec row(p), yrow(nz), c(p), s(p);
  for (int j = 0; j < p; ++j) row[j] = x(n - 1, j);
  for (int j = 0; j < nz; ++j) yrow[j] = y(n - 1, j);
  const LsState fewer(x, y, n - 1), all(x, y, n);

  LsState up = fewer;
  up.r = Upper(up.r, true);
  Linpack::Dchud(up.r.data(), p, p, row.data(), up.z.data(), p, nz, yrow.data(), up.rho.data(),
                 c.data(), s.data());
  up.r = Upper(up.r);
  up.ExpectSame(all);

  LsState down = all;
  down.r = Upper(down.r, true);
  EXPECT_EQ(Linpack::Dchdd(down.r.data(), p, p, row.data(), down.z.data(), p, nz, yrow.data(),
                           down.rho.data(), c.data(), s.data()),
            0);
  down.r = Upper(down.r);
  down.ExpectSame(fewer);

  up = fewer;  // a negative rho is left alone
  up.rho[1] = -1.0;
  Linpack::Dchud(up.r.data(), p, p, row.data(), up.z.data(), p, nz, yrow.data(), up.rho.data(),
                 c.data(), s.data());
  EXPECT_EQ(up.rho[1], -1.0);
}

TEST(LinpackCholeskyUpdate, DowndateFailures) {
  const LsState st(zrtest::RandomGeneral(9, 4, 51), zrtest::RandomGeneral(9, 1, 52), 9);
  struct {
    int line;
    double xScale, rhoScale;  // x = xScale R'e1, so that inv(R') x = xScale e1 exactly
    int info;
  } const cases[] = {
      {__LINE__, 1.0, 1.0, -1},  // ||inv(R') x|| == 1: X'X - x x' is singular
      {__LINE__, 2.0, 1.0, -1},
      {__LINE__, 0.5, 1e-3, 1},  // R downdates; rho is smaller than |zeta|
  };
  for (const auto & cs : cases) {
    SCOPED_TRACE(cs.line);
    LsState d = st;
    Vec x(4), y{5.0}, c(4, kNaN), s(4, kNaN);
    for (int j = 0; j < 4; ++j) x[j] = cs.xScale * st.r(0, j);
    d.rho[0] *= cs.rhoScale;
    const int info = Linpack::Dchdd(d.r.data(), 4, 4, x.data(), d.z.data(), 4, 1, y.data(),
                                    d.rho.data(), c.data(), s.data());
    EXPECT_EQ(info, cs.info);
    if (info == -1) {
      EXPECT_EQ(d.r.a, st.r.a);  // nothing downdated
      EXPECT_EQ(d.z.a, st.z.a);
      EXPECT_EQ(d.rho, st.rho);
      EXPECT_EQ(s[0], cs.xScale);  // s holds inv(R') x
    } else {
      EXPECT_EQ(d.rho[0], -1.0);
      ColMatrix xx(4, 1);
      xx.a = x;
      const ColMatrix want = Minus(Gram(st.r), Multiply(xx, Transposed(xx)));
      EXPECT_LT(ResidualRatio(Gram(d.r), want, Gram(st.r)), 30.0);
    }
  }
  double one = 1.0, untouched = -3.0;  // p = 0: nothing is read or written
  EXPECT_EQ(Linpack::Dchdd(&one, 1, 0, &one, &one, 1, 0, &one, &one, &untouched, &untouched), 0);
  EXPECT_EQ(untouched, -3.0);
}

TEST(LinpackCholeskyExchange, ShiftsMatchPermutedMatrix) {
  constexpr int p = 6, nz = 2;
  const ColMatrix a = zrtest::RandomSpdCol(p, 61), z0 = zrtest::RandomGeneral(p, nz, 62);
  ColMatrix r0 = a;
  ASSERT_EQ(Linpack::Dpofa(r0.data(), p, p), 0);
  r0 = Upper(r0);
  const ColMatrix rz0 = Multiply(Transposed(r0), z0);
  struct {
    int line, k, l, job;
    std::vector<int> perm;  // new column order, 1-based
  } const cases[] = {
      {__LINE__, 2, 5, 1, {1, 5, 2, 3, 4, 6}},  // right: column l moves to k
      {__LINE__, 2, 5, 2, {1, 3, 4, 5, 2, 6}},  // left: column k moves to l
      {__LINE__, 1, 6, 1, {6, 1, 2, 3, 4, 5}}, {__LINE__, 1, 6, 2, {2, 3, 4, 5, 6, 1}},
      {__LINE__, 3, 4, 1, {1, 2, 4, 3, 5, 6}}, {__LINE__, 5, 6, 2, {1, 2, 3, 4, 6, 5}},
      {__LINE__, 2, 4, 0, {1, 4, 2, 3, 5, 6}},  // job other than 2: right shift
  };
  for (const auto & cs : cases) {
    SCOPED_TRACE(cs.line);
    ColMatrix r = Upper(r0, true), z = z0;
    Vec c(p, kNaN), s(p, kNaN);
    Linpack::Dchex(r.data(), p, p, cs.k, cs.l, z.data(), p, nz, c.data(), s.data(), cs.job);
    EXPECT_LT(ResidualRatio(Gram(r), Permuted(a, cs.perm), a), 30.0);
    // (Q'R P)'(Q'z) = P'(R'z): the rotations reach z too.
    const ColMatrix rz = Multiply(Transposed(Upper(r)), z);
    for (int i = 0; i < p; ++i)
      for (int j = 0; j < nz; ++j)
        EXPECT_LE(std::fabs(rz(i, j) - rz0(cs.perm[i] - 1, j)),
                  30.0 * p * Norm1(r0) * Norm1(z0) * kEps);
  }
}

}  // namespace
