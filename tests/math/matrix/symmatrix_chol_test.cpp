// ZRSymMatrix Cholesky family: factors, redundant pivots at their strict tolerances,
// determinants and inverses against LAPACK, generalised solutions, rank-one update and
// downdate against refactoring, indefinite solves and the positive definite shift.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "support/colmajor.h"
#include "support/lapack.h"
#include "support/symmatrices.h"
#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace {

using ZRMath_920::ZRBitSet;
using ZRMath_920::ZRSymMatrix;
using zrtest::ColMatrix;
using zrtest::FromSym;
using zrtest::LowerFromSym;
using zrtest::ToSym;

constexpr double kEps = 2.220446049250313e-16;
constexpr double kRatio = 30.0;  // LAPACK's threshold for a scaled residual

std::vector<double> Diagonal(const ZRSymMatrix & a) {
  std::vector<double> d;
  a.GetDiagonal(d);
  return d;
}

ZRSymMatrix FromRows(int n, const std::vector<double> & lowerByRows) {
  ZRSymMatrix s(n, true);
  for (int k = 0; k < static_cast<int>(lowerByRows.size()); ++k) s.SetElem(k, lowerByRows[k]);
  return s;
}

// 4 4 2 / 4 4 2 / 2 2 5: row 1 duplicates row 0, so
// L = (2; 2 0; 1 0 2) exactly.
ZRSymMatrix Duplicated() {
  return FromRows(3, {4, 4, 4, 2, 2, 5});
}

// A = X X' for a random 7 x 6 X whose row 5 repeats row 1: rank 6, row 5 aliased.
ColMatrix RankDeficient() {
  ColMatrix x = zrtest::RandomGeneral(7, 6, 11);
  for (int j = 0; j < 6; ++j) x(5, j) = x(1, j);
  ColMatrix a = zrtest::Multiply(x, zrtest::Transposed(x));
  for (int j = 0; j < 7; ++j)
    for (int i = 0; i < j; ++i) a(j, i) = a(i, j);
  return a;
}

// ||A x - b||_1 / (n ||A||_1 ||x||_1 eps) with b given as a vector.
double SolveRatio(const ColMatrix & a, const std::vector<double> & x,
                  const std::vector<double> & b) {
  return zrtest::SolveResidualRatio(a, x, b);
}

std::vector<double> Times(const ColMatrix & a, const std::vector<double> & x) {
  std::vector<double> y(a.rows, 0.0);
  for (int i = 0; i < a.rows; ++i)
    for (int j = 0; j < a.cols; ++j) y[i] += a(i, j) * x[j];
  return y;
}

TEST(ZRSymMatrixCholesky, FactorReproducesMatrix) {
  for (int n : {1, 2, 7, 60}) {
    SCOPED_TRACE(n);
    const ZRSymMatrix a = zrtest::RandomSpd(n, /*seed=*/n);
    ZRSymMatrix l = a;
    ASSERT_EQ(l.LTChol(Diagonal(a), 1e-12, true), 0);
    EXPECT_LT(zrtest::FactorResidualRatio(a, l), kRatio);
    ZRSymMatrix m = a;
    ZRBitSet set(n + 3);
    set.Set(n + 1, true);  // a longer set is cleared
    ASSERT_EQ(m.LTChol(Diagonal(a), 1e-12, set, true), 0);
    EXPECT_EQ(set.Size(), n + 3);
    EXPECT_EQ(set.InSet(), n);
    double minPivot = 0.0;
    ZRSymMatrix p = a;
    ASSERT_EQ(p.LTChol(1e-12, minPivot, true), 0);
    double smallest = p.GetElem(0, 0);
    for (int i = 1; i < n; ++i) smallest = std::min(smallest, p.GetElem(i, i));
    EXPECT_EQ(minPivot, smallest);
  }
}

TEST(ZRSymMatrixCholesky, DuplicatedRowGivesOneZeroColumn) {
  ZRSymMatrix l = Duplicated();
  ZRBitSet set;  // shorter than n: resized
  ASSERT_EQ(l.LTChol(Diagonal(Duplicated()), 1e-8, set, true), 1);
  const std::vector<double> want = {2, 2, 0, 1, 0, 2};
  for (int k = 0; k < 6; ++k) EXPECT_EQ(l.GetElem(k), want[k]) << k;
  ASSERT_EQ(set.Size(), 3);
  EXPECT_TRUE(set.IsIn(0));
  EXPECT_FALSE(set.IsIn(1));
  EXPECT_TRUE(set.IsIn(2));
}

TEST(ZRSymMatrixCholesky, PivotEqualToToleranceIsRedundant) {
  // 4 2 / 2 2: the second pivot is exactly 1.0, tested against tol x diag.
  struct {
    int line;
    double tol, d1;
    int want;
  } const cases[] = {{__LINE__, 0.5, 2.0, 1},
                     {__LINE__, 0.49999999, 2.0, 0},
                     {__LINE__, 0.25, 4.0, 1},
                     {__LINE__, 0.0, 0.0, 0}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ZRSymMatrix a = FromRows(2, {4, 2, 2});
    EXPECT_EQ(a.LTChol({4.0, c.d1}, c.tol, true), c.want);
    EXPECT_EQ(a.GetElem(1, 1), c.want ? 0.0 : 1.0);
  }
  // The minPivot form measures both pivots against the largest diagonal element, 4.
  ZRSymMatrix a = FromRows(2, {4, 2, 2});
  double minPivot = 1.0;
  EXPECT_EQ(a.LTChol(0.25, minPivot, true), 1);
  EXPECT_EQ(minPivot, 0.0);
}

TEST(ZRSymMatrixCholesky, RefusesBadArgumentsUnchanged) {
  const double nan = std::nan("");
  struct {
    int line;
    std::vector<double> diag;
    double tol;
    bool check;
  } const cases[] = {{__LINE__, {4, 2}, -1e-9, true},
                     {__LINE__, {4, -2}, 0.1, true},
                     {__LINE__, {4, nan}, 0.1, true},
                     {__LINE__, {4, 2}, nan, true},
                     {__LINE__, {4}, 0.1, false}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ZRSymMatrix a = FromRows(2, {4, 2, 2});
    ZRBitSet set(2);
    set.Set(0, true);
    EXPECT_EQ(a.LTChol(c.diag, c.tol, c.check), -1);
    EXPECT_EQ(a.LTChol(c.diag, c.tol, set, c.check), -1);
    EXPECT_EQ(FromSym(a).a, FromSym(FromRows(2, {4, 2, 2})).a);
    EXPECT_TRUE(set.IsIn(0));
  }
  double minPivot = 0.0;
  ZRSymMatrix a = FromRows(2, {4, 2, 2});
  EXPECT_EQ(a.LTChol(-1.0, minPivot, true), -1);
  EXPECT_EQ(minPivot, ZRCommon_920::kSysMisValue);
  ZRSymMatrix empty;
  EXPECT_EQ(empty.LTChol(std::vector<double>(), 0.1, true), 0);
}

TEST(ZRSymMatrixCholesky, CholIndNonRedListsAcceptedRows) {
  ZRSymMatrix a = Duplicated();
  std::vector<int> idx = {9};
  EXPECT_EQ(a.CholIndNonRed(0, 1e-8, idx), 2);
  EXPECT_EQ(idx, (std::vector<int>{0, 2}));
  EXPECT_EQ(a.CholIndNonRed(1, 1e-8, idx), 1);
  EXPECT_EQ(idx, (std::vector<int>{0}));
  EXPECT_EQ(a.CholIndNonRed(0, -1.0, idx), 0);
  EXPECT_TRUE(idx.empty());
  EXPECT_EQ(FromSym(a).a, FromSym(Duplicated()).a);  // not changed
}

TEST(ZRSymMatrixDeterminant, ExactCases) {
  const double kNone = -7.0;
  struct {
    int line;
    ZRSymMatrix a;
    bool ok;
    double det0, det1;
  } const cases[] = {{__LINE__, FromRows(1, {0.04}), true, 4.0, -2.0},
                     {__LINE__, Duplicated(), true, 0.0, 0.0},
                     {__LINE__, FromRows(2, {100, 0, 100}), true, 1.0, 4.0},
                     {__LINE__, FromRows(2, {-1, 0, -1}), true, 0.0, 0.0},  // not positive definite
                     {__LINE__, ZRSymMatrix(), false, kNone, kNone}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    double det[2] = {kNone, kNone};
    EXPECT_EQ(c.a.ComputeDeterminant(1e-10, det), c.ok);
    EXPECT_EQ(det[0], c.det0);
    EXPECT_EQ(det[1], c.det1);
  }
}

TEST(ZRSymMatrixDeterminant, MatchesLapackLu) {
  for (int n : {2, 7, 60}) {
    for (double scale : {1.0, 1e-3, 1e5}) {
      SCOPED_TRACE(testing::Message() << n << " x " << scale);
      ColMatrix a = zrtest::RandomSpdCol(n, 3 * n);
      for (double & x : a.a) x *= scale;
      double det[2];
      ASSERT_TRUE(ToSym(a).ComputeDeterminant(1e-12, det));
      EXPECT_GE(std::fabs(det[0]), 1.0);
      EXPECT_LT(std::fabs(det[0]), 10.0);
      std::vector<int> ipiv(n);
      int info = 0;
      dgetrf_(&n, &n, a.data(), &n, ipiv.data(), &info);
      ASSERT_EQ(info, 0);
      double log10Det = 0.0;  // positive definite: the pivots' signs cancel
      for (int i = 0; i < n; ++i) log10Det += std::log10(std::fabs(a(i, i)));
      // Each pivot within a few eps (well conditioned), and each of the n logarithms and
      // normalising steps rounds by an ulp of a term of size |log10Det| / n.
      const double tol = 2 * n * kEps * (1.0 + std::fabs(log10Det) / n);
      EXPECT_NEAR(std::log10(det[0]) + det[1], log10Det, tol);
    }
  }
}

TEST(ZRSymMatrixDeterminant, LtDetInverseJobDigits) {
  struct {
    int line, job;
    bool det, inverse;
  } const cases[] = {{__LINE__, 1, true, false},
                     {__LINE__, 10, false, true},
                     {__LINE__, 11, true, true},
                     {__LINE__, 0, false, false}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ZRSymMatrix l = FromRows(2, {2, 1, 4});  // L = (2; 1 4), det 8
    double det[2] = {-7.0, -7.0};
    EXPECT_EQ(l.LTDetInverse(det, c.job), 0);
    EXPECT_EQ(det[0], c.det ? 8.0 : -7.0);
    EXPECT_EQ(det[1], c.det ? 0.0 : -7.0);
    // L^-1 = (0.5; -0.125 0.25)
    const std::vector<double> want =
        c.inverse ? std::vector<double>{0.5, -0.125, 0.25} : std::vector<double>{2, 1, 4};
    for (int k = 0; k < 3; ++k) EXPECT_EQ(l.GetElem(k), want[k]) << k;
  }
  ZRSymMatrix l = FromRows(3, {2, 2, 0, 1, 0, 2});
  double det[2];
  EXPECT_EQ(l.LTDetInverse(det, 11), 1);
  EXPECT_EQ(det[0], 0.0);
  EXPECT_EQ(det[1], 0.0);
}

TEST(ZRSymMatrixInverse, FullRankTimesMatrixIsIdentity) {
  for (int n : {1, 7, 60}) {
    SCOPED_TRACE(n);
    const ColMatrix a = zrtest::RandomSpdCol(n, 5 * n);
    ZRSymMatrix g = ToSym(a);
    ASSERT_EQ(g.LTChol(Diagonal(g), 1e-12, true), 0);
    EXPECT_TRUE(g.LTInverse());
    const ColMatrix ag = zrtest::Multiply(a, FromSym(g));
    const ColMatrix id = zrtest::Identity(n);
    double err = 0.0;
    for (int j = 0; j < n; ++j) {
      double col = 0.0;
      for (int i = 0; i < n; ++i) col += std::fabs(ag(i, j) - id(i, j));
      err = std::max(err, col);
    }
    // LAPACK's dpot03 ratio: ||I - A G||_1 / (n ||A||_1 ||G||_1 eps).
    EXPECT_LT(err / (n * zrtest::Norm1(a) * zrtest::Norm1(FromSym(g)) * kEps), kRatio);
  }
}

TEST(ZRSymMatrixInverse, SingularGivesGeneralisedInverse) {
  const ColMatrix a = RankDeficient();
  ZRSymMatrix g = ToSym(a);
  ASSERT_EQ(g.LTChol(Diagonal(g), 1e-10, true), 1);
  EXPECT_TRUE(g.LTInverse());
  const ColMatrix gm = FromSym(g);
  for (int j = 0; j < 7; ++j) EXPECT_EQ(gm(5, j), 0.0) << j;  // the aliased row
  const ColMatrix aga = zrtest::Multiply(zrtest::Multiply(a, gm), a);
  const double norm = zrtest::Norm1(a);
  EXPECT_LT(zrtest::ResidualRatio(aga, a, a) / (norm * zrtest::Norm1(gm)), kRatio);
}

TEST(ZRSymMatrixSolve, LtSolveGivesGeneralisedSolution) {
  ZRSymMatrix a = Duplicated();
  std::vector<double> x;
  EXPECT_EQ(a.LTSolve({6, 6, 9}, 1e-8, x), 1);
  EXPECT_EQ(x, (std::vector<double>{0.75, 0.0, 1.5}));  // worked by hand from L
  for (int n : {1, 7, 60}) {
    SCOPED_TRACE(n);
    const ColMatrix m = zrtest::RandomSpdCol(n, 7 * n);
    ZRSymMatrix s = ToSym(m);
    const std::vector<double> b = zrtest::RandomGeneral(n, 1, n).a;
    std::vector<double> y = b;  // b and x the same vector
    ASSERT_EQ(s.LTSolve(y, 1e-12, y), 0);
    EXPECT_LT(SolveRatio(m, y, b), kRatio);
    EXPECT_LT(zrtest::FactorResidualRatio(ToSym(m), s), kRatio);  // keeps the factor
  }
  ZRSymMatrix b = Duplicated();
  EXPECT_EQ(b.LTSolve({6, 6, 9}, 0.0, x), -1);
  EXPECT_EQ(b.LTSolve({6, 6}, 1e-8, x), -1);
}

TEST(ZRSymMatrixSolve, SubstitutionsInvertTheStoredFactor) {
  const int n = 7;
  const ColMatrix m = zrtest::RandomSpdCol(n, 21);
  ZRSymMatrix l = ToSym(m);
  ASSERT_EQ(l.LTChol(Diagonal(l), 1e-12, true), 0);
  const ColMatrix lower = LowerFromSym(l);
  const std::vector<double> b = zrtest::RandomGeneral(n, 1, 4).a;
  std::vector<double> x;
  ASSERT_TRUE(l.TSolveSubst(b, x, false));
  EXPECT_LT(SolveRatio(lower, x, b), kRatio);
  ASSERT_TRUE(l.TSolveSubst(b, x, true));
  EXPECT_LT(SolveRatio(zrtest::Transposed(lower), x, b), kRatio);
  ASSERT_EQ(l.LTSubstitute(b, x), 0);
  EXPECT_LT(SolveRatio(m, x, b), kRatio);
  std::vector<double> longer = b;
  longer.push_back(1.0);
  EXPECT_FALSE(l.TSolveSubst(longer, x, false));
  EXPECT_EQ(l.LTSubstitute(std::vector<double>(n - 1, 1.0), x), -1);
}

TEST(ZRSymMatrixRankOne, UpdateAndDowndateMatchRefactoring) {
  for (int n : {1, 7, 60}) {
    SCOPED_TRACE(n);
    const ColMatrix a = zrtest::RandomSpdCol(n, 9 * n);
    std::vector<double> v = zrtest::RandomGeneral(n, 1, n + 1).a;
    ColMatrix plus = a;
    for (int i = 0; i < n; ++i)
      for (int j = 0; j < n; ++j) plus(i, j) += v[i] * v[j];
    ZRSymMatrix l = ToSym(a);
    ASSERT_EQ(l.LTChol(Diagonal(l), 1e-12, true), 0);
    std::vector<double> c(n), s(n);
    ASSERT_TRUE(l.LTCholUpdateR1(v, c, s));
    EXPECT_LT(zrtest::FactorResidualRatio(ToSym(plus), l), kRatio);
    ASSERT_TRUE(l.LTCholDowndate(v, c, s, false));
    EXPECT_LT(zrtest::FactorResidualRatio(ToSym(a), l), kRatio);
  }
  ZRSymMatrix l = FromRows(2, {2, 1, 4});
  std::vector<double> c(2), s(2), shortC(1);
  EXPECT_FALSE(l.LTCholUpdateR1({1, 1}, shortC, s));
  EXPECT_FALSE(l.LTCholDowndate({1, 1}, shortC, s, true));
  ZRSymMatrix zero = FromRows(2, {0, 1, 4});
  EXPECT_FALSE(zero.LTCholDowndate({1, 1}, c, s, true));
}

TEST(ZRSymMatrixRankOne, DowndateRescueScalesTheFactor) {
  // v' A^-1 v = rho^2 >= 1: A - v v' is not positive definite. The rescue downdates
  // (rho / 0.9)^2 A instead. rho comes from LAPACK's Cholesky solve.
  const int n = 7;
  const ColMatrix a = zrtest::RandomSpdCol(n, 17);
  std::vector<double> v = zrtest::RandomGeneral(n, 1, 18).a;
  for (double & x : v) x *= 10.0;
  ColMatrix f = a;
  std::vector<double> y = v;
  int info = 0, one = 1;
  dpotrf_("L", &n, f.data(), &n, &info);
  dpotrs_("L", &n, &one, f.data(), &n, y.data(), &n, &info);
  double rho2 = 0.0;
  for (int i = 0; i < n; ++i) rho2 += v[i] * y[i];
  ASSERT_GT(rho2, 1.0);
  ZRSymMatrix l = ToSym(a);
  ASSERT_EQ(l.LTChol(Diagonal(l), 1e-12, true), 0);
  std::vector<double> c(n), s(n);
  EXPECT_FALSE(l.LTCholDowndate(v, c, s, false));
  ASSERT_TRUE(l.LTCholDowndate(v, c, s, true));
  ColMatrix want = a;
  const double scale2 = rho2 / (0.9 * 0.9);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) want(i, j) = scale2 * a(i, j) - v[i] * v[j];
  EXPECT_LT(zrtest::FactorResidualRatio(ToSym(want), l), kRatio);
}

TEST(ZRSymMatrixIndefinite, SolvesFullRankAndSingularSystems) {
  const int n = 7;
  const ColMatrix a = zrtest::RandomSymmetric(n, 23);  // indefinite
  const std::vector<double> b = zrtest::RandomGeneral(n, 1, 24).a;
  std::vector<double> x;
  ZRSymMatrix s = ToSym(a);
  ASSERT_TRUE(s.SolveIndefinite(1e-10, b, x));
  EXPECT_LT(SolveRatio(a, x, b), kRatio);
  EXPECT_EQ(FromSym(s).a, a.a);  // not changed

  // Row and column 4 repeat row and column 2: a consistent b is solved with x[4] = 0.
  ColMatrix d = a;
  for (int j = 0; j < n; ++j) d(4, j) = d(j, 4) = d(2, j);
  d(4, 4) = d(2, 2);
  const std::vector<double> bd = Times(d, zrtest::RandomGeneral(n, 1, 25).a);
  ZRSymMatrix sd = ToSym(d);
  ASSERT_TRUE(sd.SolveIndefinite(1e-10, bd, x));
  EXPECT_EQ(x[4], 0.0);
  EXPECT_LT(SolveRatio(d, x, bd), kRatio);

  ZRBitSet set(n);
  for (int i = 0; i < n; ++i) set.Set(i, i != 2);
  ASSERT_TRUE(sd.SolveIndefinite(set, bd, x));
  EXPECT_EQ(x[2], 0.0);
  EXPECT_LT(SolveRatio(d, x, bd), kRatio);

  ASSERT_TRUE(sd.SolveIndefiniteGI(1e-10, bd, x));
  // Through the normal equations the residual grows with cond(D)^2 (measured 0.04 here).
  EXPECT_LT(SolveRatio(d, x, bd), 1e3);
}

TEST(ZRSymMatrixIndefinite, FailureValues) {
  std::vector<double> x = {7.0};
  ZRSymMatrix s = FromRows(2, {1, 2, 1});
  ZRSymMatrix zero(2, true), empty;
  ZRBitSet none(2), shortSet(1);
  EXPECT_FALSE(s.SolveIndefinite(-1.0, {1, 1}, x));
  EXPECT_FALSE(s.SolveIndefinite(0.1, {1}, x));
  EXPECT_FALSE(zero.SolveIndefinite(0.1, {1, 1}, x));
  EXPECT_FALSE(empty.SolveIndefinite(0.1, {}, x));
  EXPECT_FALSE(s.SolveIndefinite(none, {1, 1}, x));
  EXPECT_FALSE(s.SolveIndefinite(shortSet, {1, 1}, x));
  EXPECT_FALSE(s.SolveIndefiniteGI(-1.0, {1, 1}, x));
  EXPECT_FALSE(zero.SolveIndefiniteGI(0.1, {1, 1}, x));
  EXPECT_EQ(x, std::vector<double>{7.0});
}

TEST(ZRSymMatrixPositiveDefinite, ShiftMakesMatrixFactor) {
  ZRSymMatrix id = FromRows(3, {1, 0, 1, 0, 0, 1});
  bool changed = true;
  double shift = 5.0;
  EXPECT_EQ(id.TransformToPositiveDefinite(1e-8, changed, shift), 1);
  EXPECT_FALSE(changed);
  EXPECT_EQ(shift, 0.0);
  EXPECT_EQ(FromSym(id).a, zrtest::Identity(3).a);

  for (int n : {2, 7}) {
    SCOPED_TRACE(n);
    ColMatrix a = zrtest::RandomSymmetric(n, 31 * n);
    a(0, 0) = -1.0;  // indefinite
    ZRSymMatrix s = ToSym(a);
    const int count = s.TransformToPositiveDefinite(1e-6, changed, shift);
    EXPECT_GT(count, 1);
    EXPECT_TRUE(changed);
    ColMatrix f = FromSym(s);
    int info = 0;
    dpotrf_("L", &n, f.data(), &n, &info);
    EXPECT_EQ(info, 0);
    // The result is (A + shift I) / (shift + d), d the largest diagonal element of A.
    const double ratio = s.GetElem(1, 0) / a(1, 0);
    EXPECT_NEAR(s.GetElem(0, 0), (a(0, 0) + shift) * ratio, 1e-14);
  }
  ZRSymMatrix one(1, true), nan = FromRows(2, {1, std::nan(""), 1});
  EXPECT_EQ(one.TransformToPositiveDefinite(1e-8, changed, shift), -1);
  EXPECT_EQ(id.TransformToPositiveDefinite(0.0, changed, shift), -2);
  EXPECT_EQ(nan.TransformToPositiveDefinite(1e-8, changed, shift), -3);
  EXPECT_FALSE(changed);
}

}  // namespace
