// LINPACK symmetric indefinite family, full and packed: solutions, condition estimates,
// inverses, inertia and determinants against reference LAPACK, exact hand-worked cases,
// singular input and the job digits.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "support/colmajor.h"
#include "support/lapack.h"
#include "support/refdata.h"
#include "zrcommon920r/math/matrix/kernels.h"

extern "C" {
void dsptrs_(const char * uplo, const int * n, const int * nrhs, const double * ap,
             const int * ipiv, double * b, const int * ldb, int * info);
}

namespace {

using ZRMath_920::Linpack;
using zrtest::ColMatrix;
using zrtest::RelErr;

constexpr double kEps = 2.220446049250313e-16;

// Eigenvalues of a symmetric matrix (LAPACK dsyev), ascending; with vectors, q gets them.
std::vector<double> Eigen(ColMatrix a, ColMatrix * q = nullptr) {
  const int n = a.rows, lwork = 64 * (n + 1);
  std::vector<double> w(n + 1), work(lwork);
  int info = 0;
  dsyev_(q ? "V" : "N", "U", &n, a.data(), &n, w.data(), work.data(), &lwork, &info);
  EXPECT_EQ(info, 0);
  if (q) *q = a;
  w.resize(n);
  return w;
}

// Q diag(lambda) Q' with Q the eigenvectors of a random symmetric matrix.
ColMatrix WithEigenvalues(const std::vector<double> & lambda, unsigned seed) {
  const int n = static_cast<int>(lambda.size());
  ColMatrix q;
  Eigen(zrtest::RandomSymmetric(n, seed), &q);
  ColMatrix ql = q;
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) ql(i, j) *= lambda[j];
  ColMatrix a = zrtest::Multiply(ql, zrtest::Transposed(q));
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < j; ++i) a(j, i) = a(i, j);
  return a;
}

ColMatrix ZeroDiagonal(int n, unsigned seed) {
  ColMatrix a = zrtest::RandomSymmetric(n, seed);
  for (int i = 0; i < n; ++i) a(i, i) = 0.0;
  return a;
}

ColMatrix Unpack(const std::vector<double> & ap, int n) {
  ColMatrix a(n, n);
  for (int j = 0, m = 0; j < n; ++j)
    for (int i = 0; i <= j; ++i, ++m) a(i, j) = a(j, i) = ap[m];
  return a;
}

ColMatrix FromRows(int n, std::vector<double> rows) {
  ColMatrix a(n, n);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) a(i, j) = rows[i * n + j];
  return a;
}

// det(A) from LAPACK's LU: the product of U's diagonal, negated per row interchange.
double LuDeterminant(ColMatrix a) {
  const int n = a.rows;
  std::vector<int> ipiv(n + 1);
  int info = 0;
  dgetrf_(&n, &n, a.data(), &n, ipiv.data(), &info);
  double det = 1.0;
  for (int i = 0; i < n; ++i) det *= ipiv[i] != i + 1 ? -a(i, i) : a(i, i);
  return det;
}

// LAPACK's 1-norm condition estimate, and the true 1 / (||A||_1 ||inverse(A)||_1).
void LapackRcond(ColMatrix a, double * estimate, double * truth) {
  const int n = a.rows, lwork = 64 * n;
  const double anorm = zrtest::Norm1(a);
  std::vector<int> ipiv(n), iwork(n);
  std::vector<double> work(4 * n + lwork);
  int info = 0;
  dgetrf_(&n, &n, a.data(), &n, ipiv.data(), &info);
  dgecon_("1", &n, a.data(), &n, &anorm, estimate, work.data(), iwork.data(), &info);
  dgetri_(&n, a.data(), &n, ipiv.data(), work.data(), &lwork, &info);
  *truth = 1.0 / (anorm * zrtest::Norm1(a));
}

// ||A inverse(A) - I||_1 / (n ||A||_1 ||inverse(A)||_1 eps), LAPACK's inverse test ratio.
double InverseRatio(const ColMatrix & a, const ColMatrix & inv) {
  ColMatrix r = zrtest::Multiply(a, inv);
  for (int i = 0; i < a.rows; ++i) r(i, i) -= 1.0;
  return zrtest::Norm1(r) / (a.rows * zrtest::Norm1(a) * zrtest::Norm1(inv) * kEps);
}

struct Case {
  int line;
  ColMatrix a;
};

// Indefinite matrices of every pivot pattern: random, zero diagonal (2 x 2 pivots with
// interchanges), 2 x 2 blocks [[0, 1], [1, 0]] scattered by a permutation, eigenvalues of
// both signs chosen, and nearly singular (cond about 1e10).
std::vector<Case> Cases() {
  ColMatrix blocks(6, 6);  // pairs (0, 4), (1, 3), (2, 5)
  blocks(0, 4) = blocks(4, 0) = 1.0;
  blocks(1, 3) = blocks(3, 1) = -2.0;
  blocks(2, 5) = blocks(5, 2) = 3.0;
  blocks(2, 2) = 1e-3;
  return {
      {__LINE__, zrtest::RandomSymmetric(1, 1)},
      {__LINE__, zrtest::RandomSymmetric(2, 2)},
      {__LINE__, zrtest::RandomSymmetric(3, 3)},
      {__LINE__, zrtest::RandomSymmetric(8, 8)},
      {__LINE__, zrtest::RandomSymmetric(40, 40)},
      {__LINE__, ZeroDiagonal(2, 12)},
      {__LINE__, ZeroDiagonal(5, 15)},
      {__LINE__, ZeroDiagonal(33, 33)},
      {__LINE__, blocks},
      {__LINE__, WithEigenvalues({-3.0, -1.0, 0.5, 2.0, 4.0, -0.25, 1.0}, 7)},
      {__LINE__, WithEigenvalues({1.0, -1.0, 1e-10, 2.0, -3.0, 0.5}, 6)},
      {__LINE__, WithEigenvalues({2.0, -1e-10, 1.0, -4.0, 3.0, -1.0, 0.5, 1.5, 2.5}, 9)},
  };
}

// One factorisation through both storage forms.
struct Factors {
  std::vector<double> full, packed;
  std::vector<int> kpvtFull, kpvtPacked;
  double rcondFull = 0.0, rcondPacked = 0.0;
};

Factors FactorBoth(const ColMatrix & a) {
  const int n = a.rows;
  Factors f;
  f.full = a.a;
  f.packed = zrtest::PackUpper(a);
  f.kpvtFull.assign(n, 0);
  f.kpvtPacked.assign(n, 0);
  std::vector<double> z(n);
  f.rcondFull = Linpack::Dsico(f.full.data(), n, n, f.kpvtFull.data(), z.data());
  f.rcondPacked = Linpack::Dspco(f.packed.data(), n, f.kpvtPacked.data(), z.data());
  return f;
}

TEST(LinpackSymIndefinite, FullAndPackedFormsAgreeExactly) {
  bool swapped1 = false, swapped2 = false;  // the table must reach both interchanges
  for (const Case & c : Cases()) {
    SCOPED_TRACE(c.line);
    const int n = c.a.rows;
    Factors f = FactorBoth(c.a);
    EXPECT_EQ(f.kpvtFull, f.kpvtPacked);
    EXPECT_EQ(f.rcondFull, f.rcondPacked);  // same operations in the same order
    ColMatrix factor(n, n);
    factor.a = f.full;
    EXPECT_EQ(zrtest::PackUpper(factor), f.packed);
    for (int k = 0; k < n; ++k) {
      const int p = f.kpvtPacked[k];
      if (p > 0 && p != k + 1) swapped1 = true;
      if (p < 0 && k > 0 && f.kpvtPacked[k - 1] == p && -p != k) swapped2 = true;
    }

    std::vector<double> bFull(n), bPacked(n);
    for (int i = 0; i < n; ++i) bFull[i] = bPacked[i] = 1.0 + i;
    Linpack::Dsisl(f.full.data(), n, n, f.kpvtFull.data(), bFull.data());
    Linpack::Dspsl(f.packed.data(), n, f.kpvtPacked.data(), bPacked.data());
    EXPECT_EQ(bFull, bPacked);

    double detFull[2], detPacked[2];
    int inertFull[3], inertPacked[3];
    std::vector<double> work(n);
    Linpack::Dsidi(f.full.data(), n, n, f.kpvtFull.data(), detFull, inertFull, work.data(), 111);
    Linpack::Dspdi(f.packed.data(), n, f.kpvtPacked.data(), detPacked, inertPacked, work.data(),
                   111);
    factor.a = f.full;
    EXPECT_EQ(zrtest::PackUpper(factor), f.packed);  // the inverses
    EXPECT_EQ(std::vector<double>(detFull, detFull + 2),
              std::vector<double>(detPacked, detPacked + 2));
    EXPECT_EQ(std::vector<int>(inertFull, inertFull + 3),
              std::vector<int>(inertPacked, inertPacked + 3));
  }
  EXPECT_TRUE(swapped1);
  EXPECT_TRUE(swapped2);
}

TEST(LinpackSymIndefinite, SolveIsBackwardStableAndAgreesWithLapack) {
  for (const Case & c : Cases()) {
    SCOPED_TRACE(c.line);
    const int n = c.a.rows;
    Factors f = FactorBoth(c.a);
    const ColMatrix xTrue = zrtest::RandomGeneral(n, 1, 100 + n);
    const ColMatrix bm = zrtest::Multiply(c.a, xTrue);
    std::vector<double> x = bm.a;
    Linpack::Dspsl(f.packed.data(), n, f.kpvtPacked.data(), x.data());
    EXPECT_LT(zrtest::SolveResidualRatio(c.a, x, bm.a), 30.0);

    std::vector<double> ap = zrtest::PackUpper(c.a), xl = bm.a;
    std::vector<int> ipiv(n);
    const int one = 1;
    int info = 0;
    dsptrf_("U", &n, ap.data(), ipiv.data(), &info);
    ASSERT_EQ(info, 0);
    dsptrs_("U", &n, &one, ap.data(), ipiv.data(), xl.data(), &n, &info);
    double diff = 0.0, size = 0.0;
    for (int i = 0; i < n; ++i) diff += std::fabs(x[i] - xl[i]), size += std::fabs(xl[i]);
    // Both are backward stable, so they differ by the forward error, about eps / rcond.
    EXPECT_LE(diff / size, 30.0 * n * kEps / f.rcondPacked);
  }
}

TEST(LinpackSymIndefinite, ConditionEstimateWithinTenOfLapack) {
  for (const Case & c : Cases()) {
    SCOPED_TRACE(c.line);
    const double rcond = FactorBoth(c.a).rcondPacked;
    double lapack = 0.0, truth = 0.0;
    LapackRcond(c.a, &lapack, &truth);
    EXPECT_LE(truth, rcond * (1.0 + 1e-6));  // ||z|| / ||y|| never exceeds ||inverse(A)||
    EXPECT_LE(rcond, 10.0 * truth);
    EXPECT_LE(rcond, 10.0 * lapack);
    EXPECT_LE(lapack, 10.0 * rcond);
  }
}

TEST(LinpackSymIndefinite, InverseTimesMatrixIsIdentity) {
  for (const Case & c : Cases()) {
    SCOPED_TRACE(c.line);
    const int n = c.a.rows;
    Factors f = FactorBoth(c.a);
    std::vector<double> work(n);
    Linpack::Dspdi(f.packed.data(), n, f.kpvtPacked.data(), nullptr, nullptr, work.data(), 1);
    EXPECT_LT(InverseRatio(c.a, Unpack(f.packed, n)), 30.0);  // Dsidi: same numbers
  }
}

TEST(LinpackSymIndefinite, InertiaAndDeterminantMatchLapack) {
  for (const Case & c : Cases()) {
    SCOPED_TRACE(c.line);
    const int n = c.a.rows;
    Factors f = FactorBoth(c.a);
    double det[2];
    int inert[3];
    Linpack::Dspdi(f.packed.data(), n, f.kpvtPacked.data(), det, inert, nullptr, 110);
    int want[3] = {0, 0, 0};
    for (double w : Eigen(c.a)) ++want[w > 0.0 ? 0 : 1];  // no eigenvalue within 1e-10 of 0
    EXPECT_EQ(inert[0], want[0]);
    EXPECT_EQ(inert[1], want[1]);
    EXPECT_EQ(inert[2], 0);

    EXPECT_GE(std::fabs(det[0]), 1.0);
    EXPECT_LT(std::fabs(det[0]), 10.0);
    EXPECT_EQ(det[1], std::floor(det[1]));
    // Each pivot carries a relative error of about eps / rcond, and so does the product.
    EXPECT_LE(RelErr(det[0] * std::pow(10.0, det[1]), LuDeterminant(c.a)),
              30.0 * n * kEps / f.rcondPacked);
  }
}

// Hand-worked factors: every division is exact, so all outputs are compared exactly.
TEST(LinpackSymIndefinite, ExactSmallCases) {
  struct {
    int line, n;
    std::vector<double> rows, b, x, inverse;
    std::vector<int> kpvt;
    double det0, det1;
    std::vector<int> inert;
  } const cases[] = {
      // 1 x 1, negative.
      {__LINE__, 1, {-4.0}, {2.0}, {-0.5}, {-0.25}, {1}, -4.0, 0.0, {0, 1, 0}},
      // Zero diagonal: one 2 x 2 pivot without interchange.
      {__LINE__, 2, {0, 1, 1, 0}, {2, 3}, {3, 2}, {0, 1, 1, 0}, {-1, -1}, -1.0, 0.0, {1, 1, 0}},
      // |a22| < alpha |a12| but |a11| >= alpha |a12|: a 1 x 1 pivot after interchanging 1, 2.
      {__LINE__, 2, {4, 2, 2, 0}, {2, 2}, {1, -1}, {0, 0.5, 0.5, -1}, {1, 1}, -4.0, 0.0, {1, 1, 0}},
      // A 2 x 2 pivot on rows 1 and 3, moved to rows 2 and 3 by an interchange.
      {__LINE__,
       3,
       {0, 0, 1, 0, 2, 0, 1, 0, 0},
       {1, 2, 3},
       {3, 1, 1},
       {0, 0, 1, 0, 0.5, 0, 1, 0, 0},
       {1, -1, -1},
       -2.0,
       0.0,
       {2, 1, 0}},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    const ColMatrix a = FromRows(c.n, c.rows);
    Factors f = FactorBoth(a);
    EXPECT_EQ(f.kpvtPacked, c.kpvt);
    EXPECT_EQ(f.kpvtFull, c.kpvt);
    std::vector<double> x = c.b, xFull = c.b;
    Linpack::Dspsl(f.packed.data(), c.n, f.kpvtPacked.data(), x.data());
    Linpack::Dsisl(f.full.data(), c.n, c.n, f.kpvtFull.data(), xFull.data());
    EXPECT_EQ(x, c.x);
    EXPECT_EQ(xFull, c.x);
    double det[2];
    int inert[3];
    std::vector<double> work(c.n);
    Linpack::Dspdi(f.packed.data(), c.n, f.kpvtPacked.data(), det, inert, work.data(), 111);
    EXPECT_EQ(det[0], c.det0);
    EXPECT_EQ(det[1], c.det1);
    EXPECT_EQ(std::vector<int>(inert, inert + 3), c.inert);
    EXPECT_EQ(f.packed, zrtest::PackUpper(FromRows(c.n, c.inverse)));
    Linpack::Dsidi(f.full.data(), c.n, c.n, f.kpvtFull.data(), det, inert, work.data(), 1);
    ColMatrix inv(c.n, c.n);
    inv.a = f.full;
    EXPECT_EQ(zrtest::PackUpper(inv), zrtest::PackUpper(FromRows(c.n, c.inverse)));
  }
}

// Pivot decisions traced by hand. The tests run in the published order: a 1 x 1 pivot
// with interchange when |a(imax, imax)| >= alpha rowmax, before the test that keeps a(k, k).
TEST(LinpackSymIndefinite, PivotChoicesFollowThePublishedTests) {
  struct {
    int line, n;
    std::vector<double> rows;
    std::vector<int> kpvt;
  } const cases[] = {
      // |a33| >= alpha |a23|: 1 x 1 pivots, no interchange.
      {__LINE__, 3, {1, 0, 1, 0, 1, 1, 1, 1, 2}, {1, 2, 3}},
      // Both tests pass at k = 3 (a22 = 3 >= alpha 4, and 0.5 >= alpha / 4): the first wins
      // and rows 2, 3 are interchanged; then a(1,1) = -13/3 is taken over 1/6 the same way.
      {__LINE__, 3, {1, 4, 0, 4, 3, 1, 0, 1, 0.5}, {1, 1, 2}},
      // Only the second test passes: a33 = 0.5 stays (0.5 >= alpha 1 * (1 / 4)); the rest,
      // [[1, 4], [4, -1.9]], needs a 2 x 2 pivot without interchange.
      {__LINE__, 3, {1, 4, 0, 4, 0.1, 1, 0, 1, 0.5}, {-1, -1, 3}},
      // Neither passes: a 2 x 2 pivot on rows 2, 3; then a 1 x 1.
      {__LINE__, 3, {1, 0.5, 0.5, 0.5, 0.1, 1, 0.5, 1, 0.1}, {1, -2, -2}},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    const Factors f = FactorBoth(FromRows(c.n, c.rows));
    EXPECT_EQ(f.kpvtPacked, c.kpvt);
    EXPECT_EQ(f.kpvtFull, c.kpvt);
  }
}

// info is the smallest k whose pivot is exactly zero; the factor is still finished.
TEST(LinpackSymIndefinite, SingularInputReportsZeroPivot) {
  struct {
    int line, n;
    std::vector<double> rows;
    int info;
    std::vector<int> inert;
    double rcond;  // hand-traced through the estimator; -1 where not traced
  } const cases[] = {
      {__LINE__, 1, {0.0}, 1, {0, 0, 1}, 0.0},
      {__LINE__, 3, std::vector<double>(9, 0.0), 1, {0, 0, 3}, 0.0},  // every column zero
      {__LINE__, 3, {2, 1, 0, 1, 3, 0, 0, 0, 0}, 3, {2, 0, 1}, -1.0},
      {__LINE__, 3, {1, 0, 0, 0, 0, 0, 0, 0, 0}, 2, {1, 0, 2}, -1.0},  // zero columns 3, 2
      {__LINE__, 2, {1, 1, 1, 1}, 1, {1, 0, 1}, 0.0},                  // rank one: a11 - 1 * 1 = 0
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    const ColMatrix a = FromRows(c.n, c.rows);
    std::vector<double> ap = zrtest::PackUpper(a), full = a.a;
    std::vector<int> kpvt(c.n), kpvtFull(c.n);
    EXPECT_EQ(Linpack::Dspfa(ap.data(), c.n, kpvt.data()), c.info);
    EXPECT_EQ(Linpack::Dsifa(full.data(), c.n, c.n, kpvtFull.data()), c.info);
    double det[2];
    int inert[3];
    Linpack::Dspdi(ap.data(), c.n, kpvt.data(), det, inert, nullptr, 110);
    EXPECT_EQ(std::vector<int>(inert, inert + 3), c.inert);
    EXPECT_EQ(det[0], 0.0);
    if (c.rcond >= 0.0) {
      std::vector<double> z(c.n);
      ap = zrtest::PackUpper(a);
      EXPECT_EQ(Linpack::Dspco(ap.data(), c.n, kpvt.data(), z.data()), c.rcond);
    }
  }
}

// Each digit of job = abc switches one output; the others are left exactly as they were.
TEST(LinpackSymIndefinite, JobDigitsSelectOutputs) {
  const ColMatrix a = FromRows(3, {0, 0, 1, 0, 2, 0, 1, 0, 0});
  for (int job : {0, 1, 10, 100, 11, 101, 110, 111}) {
    SCOPED_TRACE(job);
    const bool inv = job % 10 != 0, det = job / 10 % 10 != 0, ert = job / 100 != 0;
    Factors f = FactorBoth(a);
    const std::vector<double> factor = f.packed;
    double d[2] = {7.0, 7.0};
    int in[3] = {-9, -9, -9};
    std::vector<double> work(3);
    Linpack::Dspdi(f.packed.data(), 3, f.kpvtPacked.data(), d, in, work.data(), job);
    EXPECT_EQ(d[0], det ? -2.0 : 7.0);
    EXPECT_EQ(d[1], det ? 0.0 : 7.0);
    EXPECT_EQ(in[0], ert ? 2 : -9);
    EXPECT_EQ(in[2], ert ? 0 : -9);
    EXPECT_EQ(f.packed == factor, !inv);
    double dFull[2] = {7.0, 7.0};
    Linpack::Dsidi(f.full.data(), 3, 3, f.kpvtFull.data(), dFull, in, work.data(), job);
    EXPECT_EQ(dFull[0], det ? -2.0 : 7.0);
  }
}

// The determinant is kept as det[0] * 10^det[1] so that it neither underflows nor
// overflows, and a 2 x 2 block enters as (d / t * c - t) * t.
TEST(LinpackSymIndefinite, DeterminantScalingSpansTheExponentRange) {
  struct {
    int line, n;
    std::vector<double> rows;
    double log10Abs, sign;
  } const cases[] = {
      {__LINE__,
       4,
       {0.5, 0, 0, 0, 0, -4, 0, 0, 0, 0, 1e-300, 0, 0, 0, 0, 1e-300},
       std::log10(2.0) - 600.0,
       -1.0},
      {__LINE__, 2, {0, 1e200, 1e200, 0}, 400.0, -1.0},
      // A 2 x 2 pivot whose a11 * a22 would overflow: (0.5 * 0.5e300 - 1e300) * 1e300.
      {__LINE__, 2, {5e299, 1e300, 1e300, 5e299}, 600.0 + std::log10(0.75), -1.0},
      {__LINE__, 2, {1e-200, 1e-200, 1e-200, 0}, -400.0, -1.0},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    const ColMatrix a = FromRows(c.n, c.rows);
    std::vector<double> ap = zrtest::PackUpper(a);
    std::vector<int> kpvt(c.n);
    ASSERT_EQ(Linpack::Dspfa(ap.data(), c.n, kpvt.data()), 0);
    double det[2];
    Linpack::Dspdi(ap.data(), c.n, kpvt.data(), det, nullptr, nullptr, 10);
    EXPECT_EQ(std::copysign(1.0, det[0]), c.sign);
    EXPECT_NEAR(det[1] + std::log10(std::fabs(det[0])), c.log10Abs, 1e-12);  // 600 scalings
  }
}

// Fixed fault: the published rescaling loops never end once det[0] is infinite or NaN.
TEST(LinpackSymIndefinite, NonFiniteDeterminantDoesNotHang) {
  struct {
    int line;
    std::vector<double> ap;  // diagonal 2 x 2, packed
    bool isNaN;
  } const cases[] = {
      {__LINE__, {5.0, 0.0, 1e308}, false},  // 5 * 1e308 overflows
      {__LINE__, {NAN, 0.0, 1.0}, true},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    std::vector<double> ap = c.ap;
    std::vector<int> kpvt(2);
    Linpack::Dspfa(ap.data(), 2, kpvt.data());
    double det[2];
    Linpack::Dspdi(ap.data(), 2, kpvt.data(), det, nullptr, nullptr, 10);
    EXPECT_EQ(std::isnan(det[0]), c.isNaN);
    EXPECT_FALSE(std::isfinite(det[0]));
  }
}

TEST(LinpackSymIndefinite, EmptyMatrixIsANoOp) {
  double ap[1] = {3.0}, z[1] = {3.0}, b[1] = {3.0}, det[2];
  int kpvt[1] = {5}, inert[3];
  EXPECT_EQ(Linpack::Dspfa(ap, 0, kpvt), 0);
  EXPECT_EQ(Linpack::Dsifa(ap, 1, 0, kpvt), 0);
  EXPECT_EQ(Linpack::Dspco(ap, 0, kpvt, z), 0.0);
  Linpack::Dspsl(ap, 0, kpvt, b);
  Linpack::Dspdi(ap, 0, kpvt, det, inert, z, 111);
  EXPECT_EQ(ap[0], 3.0);
  EXPECT_EQ(b[0], 3.0);
  EXPECT_EQ(kpvt[0], 5);
  EXPECT_EQ(det[0], 1.0);
  EXPECT_EQ(inert[0] + inert[1] + inert[2], 0);
}

}  // namespace
