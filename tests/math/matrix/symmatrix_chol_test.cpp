// ZRSymMatrix Cholesky family: factors, redundant pivots at their strict tolerances,
// determinants and inverses against LAPACK, generalised solutions, rank-one update and
// downdate against refactoring, indefinite solves and the positive definite shift.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <vector>

#include "support/colmajor.h"
#include "support/lapack.h"
#include "support/matrixconv.h"
#include "support/symmatrices.h"
#include "support/watchdog.h"
#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace {

using ZRMath_920::ZRBitSet;
using ZRMath_920::ZRSymMatrix;
using zrtest::ColMatrix;
using zrtest::FromSym;
using zrtest::Packed;
using zrtest::SymFromRows;
using zrtest::ToSym;
using Vec = std::vector<double>;

constexpr double kEps = 2.220446049250313e-16;
constexpr double kRatio = 30.0;  // LAPACK's threshold for a scaled residual

Vec Diagonal(const ZRSymMatrix & a) {
  Vec d;
  a.GetDiagonal(d);
  return d;
}

// 4 4 2 / 4 4 2 / 2 2 5: row 1 duplicates row 0, so L = (2; 2 0; 1 0 2) exactly.
ZRSymMatrix Duplicated() {
  return SymFromRows(3, {4, 4, 4, 2, 2, 5});
}

TEST(ZRSymMatrixCholesky, DuplicatedRowGivesOneZeroColumn) {
  ZRSymMatrix l = Duplicated(), m = Duplicated();
  ZRBitSet shorter, longer(std::vector<bool>{false, true, false, true});  // resized; cleared
  ASSERT_EQ(l.LTChol(Diagonal(Duplicated()), 1e-8, shorter, true), 1);
  ASSERT_EQ(m.LTChol(Diagonal(Duplicated()), 1e-8, longer, true), 1);
  EXPECT_EQ(Packed(l), (Vec{2, 2, 0, 1, 0, 2}));
  EXPECT_EQ(shorter, ZRBitSet(std::vector<bool>{true, false, true}));
  EXPECT_EQ(longer, ZRBitSet(std::vector<bool>{true, false, true, false}));
  double det[2];
  EXPECT_EQ(l.LTDetInverse(det, 11), 1);
  EXPECT_EQ(Vec(det, det + 2), (Vec{0.0, 0.0}));

  ZRSymMatrix a = Duplicated();
  std::vector<int> idx = {9};
  EXPECT_EQ(a.CholIndNonRed(0, 1e-8, idx), 2);
  EXPECT_EQ(idx, (std::vector<int>{0, 2}));
  EXPECT_EQ(a.CholIndNonRed(1, 1e-8, idx), 1);
  EXPECT_EQ(idx, (std::vector<int>{0}));
  EXPECT_EQ(a.CholIndNonRed(0, -1.0, idx), 0);
  EXPECT_TRUE(idx.empty());
  EXPECT_EQ(Packed(a), Packed(Duplicated()));  // not changed
  Vec x;
  EXPECT_EQ(a.LTSolve({6, 6, 9}, 1e-8, x), 1);
  EXPECT_EQ(x, (Vec{0.75, 0.0, 1.5}));  // worked by hand from L
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
    ZRSymMatrix a = SymFromRows(2, {4, 2, 2});
    EXPECT_EQ(a.LTChol({4.0, c.d1}, c.tol, true), c.want);
    EXPECT_EQ(a.GetElem(1, 1), c.want ? 0.0 : 1.0);
  }
  // Intended: the minPivot form measures both pivots against the largest diagonal, 4;
  // minPivot is the smallest diagonal element of L, here 0.0 and then L(1, 1) = 1.
  ZRSymMatrix a = SymFromRows(2, {4, 2, 2}), b = SymFromRows(3, {4, 2, 2, 0, 0, 9});
  double minPivot = 1.0;
  EXPECT_EQ(a.LTChol(0.25, minPivot, true), 1);
  EXPECT_EQ(minPivot, 0.0);
  EXPECT_EQ(b.LTChol(0.1, minPivot, true), 0);
  EXPECT_EQ(minPivot, 1.0);
}

TEST(ZRSymMatrixCholesky, FailureValuesLeaveMatrixUnchanged) {
  const double nan = std::nan("");
  const ZRSymMatrix orig = SymFromRows(2, {4, 2, 2});
  struct {
    int line;
    Vec diag;
    double tol;
    bool check;
  } const cases[] = {{__LINE__, {4, 2}, -1e-9, true},
                     {__LINE__, {4, -2}, 0.1, true},
                     {__LINE__, {4, 2}, nan, true},
                     {__LINE__, {4}, 0.1, false}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ZRSymMatrix a = orig;
    ZRBitSet set(std::vector<bool>{true, false});
    EXPECT_EQ(a.LTChol(c.diag, c.tol, c.check), -1);
    EXPECT_EQ(a.LTChol(c.diag, c.tol, set, c.check), -1);
    EXPECT_EQ(Packed(a), Packed(orig));
    EXPECT_TRUE(set.IsIn(0));
  }
  double minPivot = 0.0;
  ZRSymMatrix a = orig, empty;
  EXPECT_EQ(a.LTChol(-1.0, minPivot, true), -1);
  EXPECT_EQ(minPivot, ZRCommon_920::kSysMisValue);
  EXPECT_EQ(empty.LTChol(Vec(), 0.1, true), 0);

  // The solves and the factor's updates: false or -1, the output and factor unchanged.
  ZRSymMatrix l = SymFromRows(2, {2, 1, 4}), zero = SymFromRows(2, {0, 1, 4});
  ZRSymMatrix dup = Duplicated(), zero2(2, true), none;
  Vec x = {7.0}, c(2), s(2), shortC(1);
  const ZRBitSet noBits(2), shortSet(1);
  struct {
    int line;
    bool refused;
  } const calls[] = {{__LINE__, dup.LTSolve({6, 6, 9}, 0.0, x) == -1},
                     {__LINE__, dup.LTSolve({6, 6}, 1e-8, x) == -1},
                     {__LINE__, l.LTSubstitute(Vec{1.0}, x) == -1},
                     {__LINE__, !l.TSolveSubst({1, 1, 1}, x, false)},
                     {__LINE__, !l.LTCholUpdateR1({1, 1}, shortC, s)},
                     {__LINE__, !l.LTCholDowndate({1, 1}, shortC, s, true)},
                     {__LINE__, !zero.LTCholDowndate({1, 1}, c, s, true)},  // L(0, 0) not above 0
                     {__LINE__, !l.SolveIndefinite(-1.0, {1, 1}, x)},
                     {__LINE__, !l.SolveIndefinite(0.1, {1}, x)},
                     {__LINE__, !zero2.SolveIndefinite(0.1, {1, 1}, x)},
                     {__LINE__, !none.SolveIndefinite(0.1, {}, x)},
                     {__LINE__, !l.SolveIndefinite(noBits, {1, 1}, x)},
                     {__LINE__, !l.SolveIndefinite(shortSet, {1, 1}, x)},
                     {__LINE__, !l.SolveIndefiniteGI(-1.0, {1, 1}, x)},
                     {__LINE__, !zero2.SolveIndefiniteGI(0.1, {1, 1}, x)}};
  for (const auto & call : calls) {
    SCOPED_TRACE(call.line);
    EXPECT_TRUE(call.refused);
  }
  EXPECT_EQ(x, Vec{7.0});
  EXPECT_EQ(Packed(dup), Packed(Duplicated()));
  EXPECT_EQ(Packed(l), (Vec{2, 1, 4}));
}

TEST(ZRSymMatrixDeterminant, ExactCases) {
  const double kNone = -7.0;
  struct {
    int line;
    ZRSymMatrix a;
    bool ok;
    double det0, det1;
  } const cases[] = {
      {__LINE__, SymFromRows(1, {0.04}), true, 4.0, -2.0},
      {__LINE__, Duplicated(), true, 0.0, 0.0},
      {__LINE__, SymFromRows(2, {100, 0, 100}), true, 1.0, 4.0},
      {__LINE__, SymFromRows(2, {-1, 0, -1}), true, 0.0, 0.0},  // not positive definite
      // Each pivot against the largest diagonal: a span past 1 / tol is singular.
      {__LINE__, SymFromRows(2, {1, 0, 1e-13}), true, 0.0, 0.0},
      {__LINE__, ZRSymMatrix(), false, kNone, kNone}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    double det[2] = {kNone, kNone};
    EXPECT_EQ(c.a.ComputeDeterminant(1e-10, det), c.ok);
    EXPECT_EQ(Vec(det, det + 2), (Vec{c.det0, c.det1}));
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
      EXPECT_TRUE(std::fabs(det[0]) >= 1.0 && std::fabs(det[0]) < 10.0) << det[0];
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
    ZRSymMatrix l = SymFromRows(2, {2, 1, 4});  // L = (2; 1 4), det 8, L^-1 = (0.5; -0.125 0.25)
    double det[2] = {-7.0, -7.0};
    EXPECT_EQ(l.LTDetInverse(det, c.job), 0);
    EXPECT_EQ(Vec(det, det + 2), (c.det ? Vec{8.0, 0.0} : Vec{-7.0, -7.0}));
    EXPECT_EQ(Packed(l), (c.inverse ? Vec{0.5, -0.125, 0.25} : Vec{2, 1, 4}));
  }
}

TEST(ZRSymMatrixInverse, FullRankTimesMatrixIsIdentityAndSingularIsGeneralised) {
  for (int n : {1, 7, 60}) {  // LAPACK's dpot03 ratio ||I - A G||_1 / (n ||A||_1 ||G||_1 eps)
    SCOPED_TRACE(n);
    const ColMatrix a = zrtest::RandomSpdCol(n, 5 * n);
    ZRSymMatrix g = ToSym(a);
    ASSERT_EQ(g.LTChol(Diagonal(g), 1e-12, true), 0);
    EXPECT_TRUE(g.LTInverse());
    const ColMatrix gm = FromSym(g), ag = zrtest::Multiply(a, gm);
    EXPECT_LT(zrtest::ResidualRatio(ag, zrtest::Identity(n), a) / zrtest::Norm1(gm), kRatio);
  }
  // Duplicated's factor gives the inverse of its rows and columns 0 and 2, 4 2 / 2 5,
  // exactly, with row and column 1 zero: A G A = A.
  ZRSymMatrix d = Duplicated();
  ASSERT_EQ(d.LTChol(Diagonal(d), 1e-10, true), 1);
  EXPECT_TRUE(d.LTInverse());
  EXPECT_EQ(Packed(d), (Vec{0.3125, 0, 0, -0.125, 0, 0.25}));  // Intended: row 1 stays zero
}

TEST(ZRSymMatrixSolve, SolvesAndSubstitutionsThroughTheFactor) {
  for (int n : {1, 7, 60}) {
    SCOPED_TRACE(n);
    const ColMatrix m = zrtest::RandomSpdCol(n, 7 * n);
    ZRSymMatrix l = ToSym(m);
    const Vec b = zrtest::RandomGeneral(n, 1, n).a;
    Vec x = b;  // b and x the same vector
    ASSERT_EQ(l.LTSolve(x, 1e-12, x), 0);
    EXPECT_LT(zrtest::SolveResidualRatio(m, x, b), kRatio);
    EXPECT_LT(zrtest::FactorResidualRatio(ToSym(m), l), kRatio);  // keeps the factor
    const ColMatrix lower = zrtest::LowerFromSym(l);
    ASSERT_EQ(l.LTSubstitute(b, x), 0);
    EXPECT_LT(zrtest::SolveResidualRatio(m, x, b), kRatio);
    ASSERT_TRUE(l.TSolveSubst(b, x, false));
    EXPECT_LT(zrtest::SolveResidualRatio(lower, x, b), kRatio);
    ASSERT_TRUE(l.TSolveSubst(b, x, true));
    EXPECT_LT(zrtest::SolveResidualRatio(zrtest::Transposed(lower), x, b), kRatio);
  }
}

TEST(ZRSymMatrixRankOne, UpdateAndDowndateMatchRefactoring) {
  for (int n : {1, 7, 60}) {
    SCOPED_TRACE(n);
    const ColMatrix a = zrtest::RandomSpdCol(n, 9 * n);
    const Vec v = zrtest::RandomGeneral(n, 1, n + 1).a;
    ColMatrix plus = a;
    for (int i = 0; i < n; ++i)
      for (int j = 0; j < n; ++j) plus(i, j) += v[i] * v[j];
    ZRSymMatrix l = ToSym(a);
    ASSERT_EQ(l.LTChol(Diagonal(l), 1e-12, true), 0);
    Vec c(n), s(n);
    ASSERT_TRUE(l.LTCholUpdateR1(v, c, s));
    EXPECT_LT(zrtest::FactorResidualRatio(ToSym(plus), l), kRatio);
    ASSERT_TRUE(l.LTCholDowndate(v, c, s, false));
    EXPECT_LT(zrtest::FactorResidualRatio(ToSym(a), l), kRatio);
  }
}

TEST(ZRSymMatrixRankOne, DowndateRescueScalesTheFactor) {
  // v' A^-1 v = rho^2 >= 1: A - v v' is not positive definite. The rescue downdates
  // (rho / 0.9)^2 A instead. rho comes from LAPACK's Cholesky solve.
  const int n = 7;
  const ColMatrix a = zrtest::RandomSpdCol(n, 17);
  Vec v = zrtest::RandomGeneral(n, 1, 18).a;
  for (double & x : v) x *= 10.0;
  ColMatrix f = a;
  Vec y = v;
  int info = 0, one = 1;
  dpotrf_("L", &n, f.data(), &n, &info);
  dpotrs_("L", &n, &one, f.data(), &n, y.data(), &n, &info);
  double rho2 = 0.0;
  for (int i = 0; i < n; ++i) rho2 += v[i] * y[i];
  ASSERT_GT(rho2, 1.0);
  ZRSymMatrix l = ToSym(a);
  ASSERT_EQ(l.LTChol(Diagonal(l), 1e-12, true), 0);
  Vec c(n), s(n);
  EXPECT_FALSE(l.LTCholDowndate(v, c, s, false));
  ASSERT_TRUE(l.LTCholDowndate(v, c, s, true));
  ColMatrix want = a;
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) want(i, j) = rho2 / (0.9 * 0.9) * a(i, j) - v[i] * v[j];
  EXPECT_LT(zrtest::FactorResidualRatio(ToSym(want), l), kRatio);
}

TEST(ZRSymMatrixIndefinite, SolvesFullRankAndSingularSystems) {
  const int n = 7;
  const ColMatrix a = zrtest::RandomSymmetric(n, 23);  // indefinite
  const Vec b = zrtest::RandomGeneral(n, 1, 24).a;
  Vec x;
  ZRSymMatrix s = ToSym(a);
  ASSERT_TRUE(s.SolveIndefinite(1e-10, b, x));
  EXPECT_LT(zrtest::SolveResidualRatio(a, x, b), kRatio);
  EXPECT_EQ(FromSym(s).a, a.a);  // not changed

  // Row and column 4 repeat row and column 2: a consistent b is solved with x[4] = 0.
  ColMatrix d = a;
  for (int j = 0; j < n; ++j) d(4, j) = d(j, 4) = d(2, j);
  d(4, 4) = d(2, 2);
  const Vec bd = zrtest::Multiply(d, zrtest::RandomGeneral(n, 1, 25)).a;
  ZRSymMatrix sd = ToSym(d);
  ASSERT_TRUE(sd.SolveIndefinite(1e-10, bd, x));
  EXPECT_EQ(x[4], 0.0);
  EXPECT_LT(zrtest::SolveResidualRatio(d, x, bd), kRatio);

  ZRBitSet set(n);
  for (int i = 0; i < n; ++i) set.Set(i, i != 2);
  ASSERT_TRUE(sd.SolveIndefinite(set, bd, x));
  EXPECT_EQ(x[2], 0.0);
  EXPECT_LT(zrtest::SolveResidualRatio(d, x, bd), kRatio);

  ASSERT_TRUE(sd.SolveIndefiniteGI(1e-10, bd, x));
  // Through the normal equations the residual grows with cond(D)^2 (measured 0.04 here).
  EXPECT_LT(zrtest::SolveResidualRatio(d, x, bd), 1e3);
}

TEST(ZRSymMatrixPositiveDefinite, ShiftMakesMatrixFactor) {
  ZRSymMatrix id = SymFromRows(3, {1, 0, 1, 0, 0, 1});
  bool changed = true;
  double shift = 5.0;
  EXPECT_EQ(id.TransformToPositiveDefinite(1e-8, changed, shift), 1);
  EXPECT_TRUE(!changed && shift == 0.0);
  EXPECT_EQ(FromSym(id).a, zrtest::Identity(3).a);  // untouched

  for (int n : {2, 7}) {
    SCOPED_TRACE(n);
    ColMatrix a = zrtest::RandomSymmetric(n, 31 * n);
    a(0, 0) = -1.0;  // indefinite
    ZRSymMatrix s = ToSym(a);
    EXPECT_GT(s.TransformToPositiveDefinite(1e-6, changed, shift), 1);
    EXPECT_TRUE(changed);
    ColMatrix f = FromSym(s);
    int info = 0;
    dpotrf_("L", &n, f.data(), &n, &info);
    EXPECT_EQ(info, 0);
    // Intended: the result is (A + shift I) / (shift + d), d A's largest diagonal element.
    const double ratio = s.GetElem(1, 0) / a(1, 0);
    EXPECT_NEAR(s.GetElem(0, 0), (a(0, 0) + shift) * ratio, 1e-14);
  }
  ZRSymMatrix one(1, true), nan = SymFromRows(2, {1, std::nan(""), 1});
  EXPECT_EQ(one.TransformToPositiveDefinite(1e-8, changed, shift), -1);
  EXPECT_EQ(id.TransformToPositiveDefinite(0.0, changed, shift), -2);
  EXPECT_EQ(nan.TransformToPositiveDefinite(1e-8, changed, shift), -3);
  EXPECT_FALSE(changed);
}

// Faults: with 1.7976931348623157e308 on the diagonal the shifted diagonal overflowed and
// the call reported success with shift +inf and NaN in the matrix; with a tol below the
// spacing of doubles the bisection never ended.
TEST(ZRSymMatrixPositiveDefinite, ShiftSearchFailsCleanlyOrEnds) {
  constexpr double kMax = 1.7976931348623157e308;
  for (double big : {kMax, -kMax}) {
    SCOPED_TRACE(big);
    ZRSymMatrix a = SymFromRows(3, {big, 0.5, -1.0, 0.0, 0.0, 1.0});
    const Vec before = Packed(a);
    bool changed = true;
    double shift = 5.0;
    EXPECT_EQ(a.TransformToPositiveDefinite(1e-8, changed, shift), -3);
    EXPECT_TRUE(!changed && shift == 0.0);
    EXPECT_EQ(Packed(a), before);
  }
  for (double tol : {1e-300, 5e-324}) {
    SCOPED_TRACE(tol);
    ColMatrix a = zrtest::RandomSymmetric(5, 77);
    a(0, 0) = -1.0;
    ZRSymMatrix s = ToSym(a);
    bool changed = false;
    double shift = 0.0;
    zrtest::Watchdog dog(std::chrono::seconds(20));  // a hang ends the run with its name
    dog.Run("TransformToPositiveDefinite with a tiny tol",
            [&] { EXPECT_GT(s.TransformToPositiveDefinite(tol, changed, shift), 1); });
    EXPECT_TRUE(changed && std::isfinite(shift));
    ColMatrix f = FromSym(s);
    int info = 0, n = 5;
    dpotrf_("L", &n, f.data(), &n, &info);
    EXPECT_EQ(info, 0);
  }
}

}  // namespace
