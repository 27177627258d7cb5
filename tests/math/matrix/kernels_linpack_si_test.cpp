// LINPACK symmetric indefinite family, full and packed: solutions, condition estimates,
// inverses, inertia and determinants against reference LAPACK, exact hand-worked cases,
// singular input and the job digits. Every run goes through both storage forms, which must
// agree bit for bit (same operations in the same order).
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "support/colmajor.h"
#include "support/lapack.h"
#include "support/refdata.h"
#include "zrcommon920r/math/matrix/kernels.h"

namespace {

using ZRMath_920::Linpack;
using zrtest::ColMatrix;
using zrtest::PackUpper;
using zrtest::RelErr;
using Vec = std::vector<double>;
using IVec = std::vector<int>;

constexpr double kEps = 2.220446049250313e-16;
constexpr double kInf = std::numeric_limits<double>::infinity();

// Eigenvalues of a symmetric matrix (LAPACK dsyev), ascending.
Vec Eigen(ColMatrix a) {
  const int n = a.rows, lwork = 64 * (n + 1);
  Vec w(n + 1), work(lwork);
  int info = 0;
  dsyev_("N", "U", &n, a.data(), &n, w.data(), work.data(), &lwork, &info);
  EXPECT_EQ(info, 0);
  w.resize(n);
  return w;
}

// The symmetric matrix whose upper triangle ap holds by columns: a11, a12, a22, a13, ...
ColMatrix Unpack(const Vec & ap) {
  int n = 0;
  while (n * (n + 1) / 2 < static_cast<int>(ap.size())) ++n;
  ColMatrix a(n, n);
  for (int j = 0, m = 0; j < n; ++j)
    for (int i = 0; i <= j; ++i, ++m) a(i, j) = a(j, i) = ap[m];
  return a;
}

struct Case {
  std::string name;
  ColMatrix a;
};

// Indefinite matrices of every pivot pattern: random, zero diagonal (2 x 2 pivots with
// interchanges), 2 x 2 blocks [[0, 1], [1, 0]] scattered by a permutation, and nearly
// singular ones.
std::vector<Case> Cases() {
  std::vector<Case> cases;
  for (int n : {1, 2, 3, 8, 40}) cases.push_back({"random", zrtest::RandomSymmetric(n, n)});
  for (int n : {2, 5, 33}) {
    cases.push_back({"zero diagonal", zrtest::RandomSymmetric(n, n + 10)});
    for (int i = 0; i < n; ++i) cases.back().a(i, i) = 0.0;
  }
  ColMatrix blocks(6, 6);  // pairs (0, 4), (1, 3), (2, 5)
  blocks(0, 4) = blocks(4, 0) = 1.0;
  blocks(1, 3) = blocks(3, 1) = -2.0;
  blocks(2, 5) = blocks(5, 2) = 3.0;
  blocks(2, 2) = 1e-3;
  cases.push_back({"blocks", blocks});
  for (int n : {6, 7, 9}) {  // one eigenvalue moved to about -1e-10: cond about 1e10
    ColMatrix a = zrtest::RandomSymmetric(n, n);
    const double shift = Eigen(a)[n / 2] + 1e-10;
    for (int i = 0; i < n; ++i) a(i, i) -= shift;
    cases.push_back({"nearly singular", a});
  }
  for (Case & c : cases) c.name += " n=" + std::to_string(c.a.rows);
  return cases;
}

// What both storage forms give for A: the ...co factor and rcond, the solution of A x = b,
// then the ...di outputs for job, on det and inert preset to 7 and -9 (ap holds the inverse
// when job asks for it). The full form gets null pointers for outputs not asked for, and
// must agree with the packed one bit for bit.
struct Both {
  Vec ap, x, det{7.0, 7.0};
  IVec kpvt, inert{-9, -9, -9};
  double rcond = 0.0;
};

Both RunBoth(const ColMatrix & a, Vec b, int job) {
  const int n = a.rows;
  Both p{PackUpper(a), b, {7.0, 7.0}, IVec(n)};
  Both f{{}, b, p.det, IVec(n)};
  ColMatrix full = a;
  Vec z(n), work(n);
  p.rcond = Linpack::Dspco(p.ap.data(), n, p.kpvt.data(), z.data());
  EXPECT_EQ(Linpack::Dsico(full.data(), n, n, f.kpvt.data(), z.data()), p.rcond);
  EXPECT_EQ(f.kpvt, p.kpvt);
  EXPECT_EQ(PackUpper(full), p.ap);
  Linpack::Dspsl(p.ap.data(), n, p.kpvt.data(), p.x.data());
  Linpack::Dsisl(full.data(), n, n, f.kpvt.data(), f.x.data());
  EXPECT_EQ(f.x, p.x);
  Linpack::Dspdi(p.ap.data(), n, p.kpvt.data(), p.det.data(), p.inert.data(), work.data(), job);
  Linpack::Dsidi(full.data(), n, n, f.kpvt.data(), job / 10 % 10 ? f.det.data() : nullptr,
                 job / 100 ? f.inert.data() : nullptr, job % 10 ? work.data() : nullptr, job);
  EXPECT_EQ(PackUpper(full), p.ap);
  EXPECT_EQ(f.det, p.det);
  EXPECT_EQ(f.inert, p.inert);
  return p;
}

// What LAPACK's LU says about A: det(A) (U's diagonal, negated per interchange), dgecon's
// estimate of 1 / cond_1(A), and the true value from the dgetri inverse.
struct LapackLu {
  double det = 1.0, estimate = 0.0, truth = 0.0;
  explicit LapackLu(ColMatrix a) {
    const int n = a.rows, lwork = 64 * n;
    const double anorm = zrtest::Norm1(a);
    IVec ipiv(n), iwork(n);
    Vec work(4 * n + lwork);
    int info = 0;
    dgetrf_(&n, &n, a.data(), &n, ipiv.data(), &info);
    for (int i = 0; i < n; ++i) det *= ipiv[i] != i + 1 ? -a(i, i) : a(i, i);
    dgecon_("1", &n, a.data(), &n, &anorm, &estimate, work.data(), iwork.data(), &info);
    dgetri_(&n, a.data(), &n, ipiv.data(), work.data(), &lwork, &info);
    truth = 1.0 / (anorm * zrtest::Norm1(a));
  }
};

TEST(LinpackSymIndefinite, AgreesWithLapackInBothStorageForms) {
  bool swapped1 = false, swapped2 = false;  // the table must reach both interchanges
  for (const Case & c : Cases()) {
    SCOPED_TRACE(c.name);
    const int n = c.a.rows;
    const Vec b = zrtest::Multiply(c.a, zrtest::RandomGeneral(n, 1, 100 + n)).a;
    const Both r = RunBoth(c.a, b, 111);
    for (int k = 0; k < n; ++k) swapped1 |= r.kpvt[k] > 0 && r.kpvt[k] != k + 1;
    for (int k = 1; k < n; ++k)
      swapped2 |= r.kpvt[k] < 0 && r.kpvt[k - 1] == r.kpvt[k] && -r.kpvt[k] != k;
    EXPECT_LT(zrtest::SolveResidualRatio(c.a, r.x, b), 30.0);
    Vec ap = PackUpper(c.a), xl = b;
    IVec ipiv(n);
    const int one = 1;
    int info = 0;
    dsptrf_("U", &n, ap.data(), ipiv.data(), &info);
    ASSERT_EQ(info, 0);
    dsptrs_("U", &n, &one, ap.data(), ipiv.data(), xl.data(), &n, &info);
    double diff = 0.0, size = 0.0;
    for (int i = 0; i < n; ++i) diff += std::fabs(r.x[i] - xl[i]), size += std::fabs(xl[i]);
    // Both are backward stable, so they differ by the forward error, about eps / rcond.
    EXPECT_LE(diff / size, 30.0 * n * kEps / r.rcond);

    const LapackLu lu(c.a);
    EXPECT_LE(lu.truth, r.rcond * (1.0 + 1e-6));  // ||z|| / ||y|| never exceeds ||inverse(A)||
    EXPECT_LE(r.rcond, 10.0 * lu.truth);
    EXPECT_LE(r.rcond, 10.0 * lu.estimate);
    EXPECT_LE(lu.estimate, 10.0 * r.rcond);
    // ||A inverse(A) - I||_1 / (n ||A||_1 ||inverse(A)||_1 eps), LAPACK's inverse test ratio.
    const ColMatrix inv = Unpack(r.ap);
    EXPECT_LT(zrtest::ResidualRatio(zrtest::Multiply(c.a, inv), zrtest::Identity(n), c.a) /
                  zrtest::Norm1(inv),
              30.0);
    IVec want{0, 0, 0};
    for (double w : Eigen(c.a)) ++want[w > 0.0 ? 0 : 1];  // none nearer 0 than about 1e-10
    EXPECT_EQ(r.inert, want);
    EXPECT_TRUE(std::fabs(r.det[0]) >= 1.0 && std::fabs(r.det[0]) < 10.0);
    EXPECT_EQ(r.det[1], std::floor(r.det[1]));
    // Each pivot carries a relative error of about eps / rcond, and so does the product.
    EXPECT_LE(RelErr(r.det[0] * std::pow(10.0, r.det[1]), lu.det), 30.0 * n * kEps / r.rcond);
  }
  EXPECT_TRUE(swapped1 && swapped2);
}

// Hand-worked factors: every division is exact, so all outputs are compared exactly, for
// every job; outputs not asked for are left as they were. Matrices, inverses: upper
// triangles by columns.
TEST(LinpackSymIndefinite, ExactSmallCases) {
  struct {
    int line;
    Vec a, b, x, inverse;
    IVec kpvt;
    Vec det;
    IVec inert;
  } const cases[] = {
      {__LINE__, {-4}, {2}, {-0.5}, {-0.25}, {1}, {-4, 0}, {0, 1, 0}},  // 1 x 1, negative
      // Zero diagonal: one 2 x 2 pivot without interchange.
      {__LINE__, {0, 1, 0}, {2, 3}, {3, 2}, {0, 1, 0}, {-1, -1}, {-1, 0}, {1, 1, 0}},
      // |a22| < alpha |a12| but |a11| >= alpha |a12|: a 1 x 1 pivot after interchanging 1, 2.
      {__LINE__, {4, 2, 0}, {2, 2}, {1, -1}, {0, 0.5, -1}, {1, 1}, {-4, 0}, {1, 1, 0}},
      // A 2 x 2 pivot on rows 1 and 3, moved to rows 2 and 3 by an interchange.
      {__LINE__,
       {0, 0, 2, 1, 0, 0},
       {1, 2, 3},
       {3, 1, 1},
       {0, 0, 0.5, 1, 0, 0},
       {1, -1, -1},
       {-2, 0},
       {2, 1, 0}},
  };
  for (const auto & c : cases) {
    const Vec factor = RunBoth(Unpack(c.a), c.b, 0).ap;
    for (int job : {0, 1, 10, 100, 11, 101, 110, 111}) {  // each digit switches one output
      SCOPED_TRACE(testing::Message() << "line " << c.line << " job " << job);
      const Both r = RunBoth(Unpack(c.a), c.b, job);
      EXPECT_EQ(r.kpvt, c.kpvt);
      EXPECT_EQ(r.x, c.x);
      EXPECT_EQ(r.det, job / 10 % 10 ? c.det : (Vec{7.0, 7.0}));
      EXPECT_EQ(r.inert, job / 100 ? c.inert : (IVec{-9, -9, -9}));
      EXPECT_EQ(r.ap, job % 10 ? c.inverse : factor);
    }
  }
}
// Pivot decisions traced by hand. The tests run in the published order: a 1 x 1 pivot
// with interchange when |a(imax, imax)| >= alpha rowmax, before the test that keeps a(k, k).
TEST(LinpackSymIndefinite, PivotChoicesFollowThePublishedTests) {
  struct {
    int line;
    Vec a;  // upper triangle by columns
    IVec kpvt;
  } const cases[] = {
      // |a33| >= alpha |a23|: 1 x 1 pivots, no interchange.
      {__LINE__, {1, 0, 1, 1, 1, 2}, {1, 2, 3}},
      // Both tests pass at k = 3 (a22 = 3 >= alpha 4, and 0.5 >= alpha / 4): the first wins
      // and rows 2, 3 are interchanged; then a(1,1) = -13/3 is taken over 1/6 the same way.
      {__LINE__, {1, 4, 3, 0, 1, 0.5}, {1, 1, 2}},
      // Only the second test passes: a33 = 0.5 stays (0.5 >= alpha 1 * (1 / 4)); the rest,
      // [[1, 4], [4, -1.9]], needs a 2 x 2 pivot without interchange.
      {__LINE__, {1, 4, 0.1, 0, 1, 0.5}, {-1, -1, 3}},
      // Neither passes: a 2 x 2 pivot on rows 2, 3; then a 1 x 1.
      {__LINE__, {1, 0.5, 0.1, 0.5, 1, 0.1}, {1, -2, -2}},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    Vec ap = c.a;
    ColMatrix full = Unpack(c.a);
    IVec kpvt(3), kpvtFull(3);
    Linpack::Dspfa(ap.data(), 3, kpvt.data());
    Linpack::Dsifa(full.data(), 3, 3, kpvtFull.data());
    EXPECT_EQ(kpvt, c.kpvt);
    EXPECT_EQ(kpvtFull, c.kpvt);
  }
}

// info is the smallest k whose pivot is exactly zero; the factor is still finished.
TEST(LinpackSymIndefinite, SingularInputReportsZeroPivot) {
  struct {
    int line;
    Vec a;  // upper triangle by columns
    int info;
    IVec inert;
    double rcond;  // hand-traced through the estimator; -1 where not traced
  } const cases[] = {
      {__LINE__, {0.0}, 1, {0, 0, 1}, 0.0},
      {__LINE__, Vec(6, 0.0), 1, {0, 0, 3}, 0.0},  // every column zero
      {__LINE__, {2, 1, 3, 0, 0, 0}, 3, {2, 0, 1}, -1.0},
      {__LINE__, {1, 0, 0, 0, 0, 0}, 2, {1, 0, 2}, -1.0},  // zero columns 3, 2
      {__LINE__, {1, 1, 1}, 1, {1, 0, 1}, 0.0},            // rank one: a11 - 1 * 1 = 0
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ColMatrix full = Unpack(c.a);
    const int n = full.rows;
    Vec ap = c.a, z(n), det(2);
    IVec kpvt(n), inert(3);
    EXPECT_EQ(Linpack::Dsifa(full.data(), n, n, kpvt.data()), c.info);
    EXPECT_EQ(Linpack::Dspfa(ap.data(), n, kpvt.data()), c.info);
    Linpack::Dspdi(ap.data(), n, kpvt.data(), det.data(), inert.data(), nullptr, 110);
    EXPECT_EQ(inert, c.inert);
    EXPECT_EQ(det[0], 0.0);
    ap = c.a;
    if (c.rcond >= 0.0) {
      EXPECT_EQ(Linpack::Dspco(ap.data(), n, kpvt.data(), z.data()), c.rcond);
    }
  }
}

// The determinant is kept as det[0] * 10^det[1] so that it neither underflows nor
// overflows, and a 2 x 2 block enters as (d / t * c - t) * t. Fixed fault: the published
// rescaling loops never end once det[0] is infinite or NaN.
TEST(LinpackSymIndefinite, DeterminantScalingSpansTheExponentRange) {
  struct {
    int line;
    Vec a;  // upper triangle by columns
    double log10Abs, sign;
  } const cases[] = {
      {__LINE__, {0.5, 0, -4, 0, 0, 1e-300, 0, 0, 0, 1e-300}, std::log10(2.0) - 600.0, -1.0},
      {__LINE__, {0, 1e200, 0}, 400.0, -1.0},
      // A 2 x 2 pivot whose a11 * a22 would overflow: (0.5 * 0.5e300 - 1e300) * 1e300.
      {__LINE__, {5e299, 1e300, 5e299}, 600.0 + std::log10(0.75), -1.0},
      {__LINE__, {1e-200, 1e-200, 0}, -400.0, -1.0},
      {__LINE__, {5.0, 0.0, 1e308}, kInf, 1.0},  // 5 * 1e308 overflows
      {__LINE__, {NAN, 0.0, 1.0}, NAN, 0.0},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    Vec ap = c.a;
    const int n = Unpack(c.a).rows;
    IVec kpvt(n);
    const int info = Linpack::Dspfa(ap.data(), n, kpvt.data());
    ASSERT_TRUE(info == 0 || std::isnan(c.log10Abs));
    double det[2];
    Linpack::Dspdi(ap.data(), n, kpvt.data(), det, nullptr, nullptr, 10);
    if (std::isnan(c.log10Abs)) {
      EXPECT_TRUE(std::isnan(det[0]));
    } else if (std::isinf(c.log10Abs)) {
      EXPECT_EQ(det[0], c.sign * kInf);
    } else {
      EXPECT_EQ(std::copysign(1.0, det[0]), c.sign);
      EXPECT_NEAR(det[1] + std::log10(std::fabs(det[0])), c.log10Abs, 1e-12);  // 600 scalings
    }
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
  EXPECT_EQ((Vec{ap[0], b[0], det[0], det[1]}), (Vec{3.0, 3.0, 1.0, 0.0}));
  EXPECT_EQ((IVec{kpvt[0], inert[0], inert[1], inert[2]}), (IVec{5, 0, 0, 0}));
}

}  // namespace
