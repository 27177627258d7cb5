// Positive definite LINPACK routines in full, packed and band storage: factors, solves,
// condition estimates, determinants and inverses against reference LAPACK and exact cases.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "support/colmajor.h"
#include "support/lapack.h"
#include "support/refdata.h"
#include "zrcommon920r/math/matrix/kernels.h"

extern "C" {
void dpocon_(const char * uplo, const int * n, const double * a, const int * lda,
             const double * anorm, double * rcond, double * work, int * iwork, int * info);
}

namespace {

using ZRMath_920::Linpack;
using zrtest::ColMatrix;
using zrtest::Multiply;
using zrtest::Norm1;
using zrtest::RelErr;
using zrtest::Transposed;
using Vec = std::vector<double>;

constexpr double kEps = 2.220446049250313e-16;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Random symmetric band matrix with m superdiagonals, made diagonally dominant.
ColMatrix BandSpd(int n, int m, unsigned seed) {
  ColMatrix a = zrtest::RandomSymmetric(n, seed);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i)
      a(i, j) = std::abs(i - j) > m ? 0.0 : a(i, j) + (i == j) * (2 * m + 1);
  return a;
}

struct Case {
  std::string name;
  ColMatrix a;
  int m;  // band width: n - 1 for a dense matrix
};

std::vector<Case> TestMatrices() {
  std::vector<Case> cases{{"band m=0", BandSpd(9, 0, 3), 0}, {"band m=3", BandSpd(40, 3, 5), 3}};
  for (int n : {1, 2, 7, 60})
    cases.push_back({"random n=" + std::to_string(n), zrtest::RandomSpdCol(n, n), n - 1});
  for (int n : {2, 8}) {  // Hilbert: cond 19 and 1.5e10
    ColMatrix h(n, n);
    for (int i = 0; i < n; ++i)
      for (int j = 0; j < n; ++j) h(i, j) = 1.0 / (i + j + 1);
    cases.push_back({"hilbert n=" + std::to_string(n), h, n - 1});
  }
  return cases;
}

// Band form, A(i, j) at abd(m + 1 + i - j, j); unused slots NaN, which nothing may read.
Vec ToBand(const ColMatrix & a, int m, int lda) {
  Vec abd(static_cast<std::size_t>(lda) * a.cols, kNaN);
  for (int j = 0; j < a.cols; ++j)
    for (int i = std::max(0, j - m); i <= j; ++i) abd[j * lda + m + i - j] = a(i, j);
  return abd;
}

// The upper triangle of a; below it zeros, or with full the mirror image.
ColMatrix Upper(const ColMatrix & a, bool full = false) {
  ColMatrix r = a;
  for (int j = 0; j < a.cols; ++j)
    for (int i = j + 1; i < a.rows; ++i) r(i, j) = full ? a(j, i) : 0.0;
  return r;
}

// One matrix in the three storages (the band one with a spare row), run through each
// routine family side by side. Results come back full, packed and band, in that order.
struct Stored {
  int n, m, lda;
  ColMatrix full;
  Vec ap, abd;
  Stored(const ColMatrix & a, int bandWidth) : n(a.rows), m(bandWidth), lda(m + 2), full(a) {
    ap = zrtest::PackUpper(a);
    abd = ToBand(a, m, lda);
    for (int j = 0; j < n; ++j)  // the strict lower triangle is never read
      for (int i = j + 1; i < n; ++i) full(i, j) = kNaN;
  }
  std::vector<int> Fa() {
    return {Linpack::Dpofa(full.data(), n, n), Linpack::Dppfa(ap.data(), n),
            Linpack::Dpbfa(abd.data(), lda, n, m)};
  }
  Vec Co(std::vector<Vec> & z) {
    z.assign(3, Vec(n));
    return {Linpack::Dpoco(full.data(), n, n, z[0].data()),
            Linpack::Dppco(ap.data(), n, z[1].data()),
            Linpack::Dpbco(abd.data(), lda, n, m, z[2].data())};
  }
  std::vector<Vec> Sl(const Vec & b) {
    std::vector<Vec> x(3, b);
    Linpack::Dposl(full.data(), n, n, x[0].data());
    Linpack::Dppsl(ap.data(), n, x[1].data());
    Linpack::Dpbsl(abd.data(), lda, n, m, x[2].data());
    return x;
  }
  std::vector<Vec> Di(int job) {
    std::vector<Vec> det(3, Vec{-7.0, -7.0});
    Linpack::Dpodi(full.data(), n, n, det[0].data(), job);
    Linpack::Dppdi(ap.data(), n, det[1].data(), job);
    Linpack::Dpbdi(abd.data(), lda, n, m, det[2].data());
    return det;
  }
  // The upper triangles (factor or inverse) as full matrices with zeros below.
  std::vector<ColMatrix> Triangles() const {
    std::vector<ColMatrix> t(3, ColMatrix(n, n));
    for (int j = 0, k = 0; j < n; ++j)
      for (int i = 0; i <= j; ++i, ++k) {
        t[0](i, j) = full(i, j);
        t[1](i, j) = ap[k];
        if (i >= j - m) t[2](i, j) = abd[j * lda + m + i - j];
      }
    return t;
  }
};

// LAPACK's factor, its rcond estimate from dpocon, the true 1 / (||A||_1 ||inv(A)||_1), and
// det(A) = detMantissa * 10^detExponent from the factor's diagonal.
struct LapackRef {
  ColMatrix r;
  double rcond = 0.0, trueRcond = 0.0, detMantissa = 0.0, detExponent = 0.0;
  explicit LapackRef(const ColMatrix & a) : r(a) {
    int n = a.rows, info = 0;
    Vec work(3 * n);
    std::vector<int> iwork(n);
    const double anorm = Norm1(a);
    dpotrf_("U", &n, r.data(), &n, &info);
    dpocon_("U", &n, r.data(), &n, &anorm, &rcond, work.data(), iwork.data(), &info);
    r = Upper(r);
    ColMatrix inv = r;
    dpotri_("U", &n, inv.data(), &n, &info);
    trueRcond = 1.0 / (anorm * Norm1(Upper(inv, true)));
    double log10Det = 0.0;
    for (int i = 0; i < n; ++i) log10Det += 2.0 * std::log10(r(i, i));
    detExponent = std::floor(log10Det);
    detMantissa = std::pow(10.0, log10Det - detExponent);
  }
};

// Factor, solve, condition estimate (with its null vector), determinant and inverse of
// every test matrix in the three storages, against LAPACK and the scaled residuals.
TEST(LinpackPositiveDefinite, AllStoragesAgreeWithLapack) {
  for (const Case & c : TestMatrices()) {
    SCOPED_TRACE(c.name);
    const int n = c.a.rows;
    Stored s(c.a, c.m);
    const LapackRef ref(c.a);
    std::vector<Vec> z;
    const Vec rcond = s.Co(z), b = zrtest::RandomGeneral(n, 1, 99).a;
    const std::vector<ColMatrix> r = s.Triangles();
    const std::vector<Vec> x = s.Sl(b), det = s.Di(11);
    const std::vector<ColMatrix> inv = s.Triangles();
    const double detTol = 10.0 * n * n * kEps / ref.trueRcond;  // ~n eps per pivot, times cond
    for (int k = 0; k < 3; ++k) {
      SCOPED_TRACE(k);  // full, packed, band
      EXPECT_LT(zrtest::ResidualRatio(Multiply(Transposed(r[k]), r[k]), c.a, c.a), 30.0);
      // First-order perturbation of a Cholesky factor: ||dR|| / ||R|| <~ n cond(A) eps.
      EXPECT_LT(zrtest::ResidualRatio(r[k], ref.r, ref.r), 30.0 / ref.trueRcond);
      EXPECT_LT(zrtest::SolveResidualRatio(c.a, x[k], b), 30.0);
      for (double want : {ref.rcond, ref.trueRcond}) {  // estimates agree within ~10
        EXPECT_LE(rcond[k] / want, 10.0);
        EXPECT_GE(rcond[k] / want, 0.1);
      }
      // z is an approximate null vector: ||A z|| ~ rcond ||A|| ||z||.
      ColMatrix zc(n, 1);
      zc.a = z[k];
      EXPECT_LE(Norm1(Multiply(c.a, zc)), 10.0 * rcond[k] * Norm1(c.a) * Norm1(zc));
      EXPECT_TRUE(det[k][0] >= 1.0 && det[k][0] < 10.0);
      EXPECT_LE(RelErr(det[k][0] * std::pow(10.0, det[k][1] - ref.detExponent), ref.detMantissa),
                detTol);
      if (k == 2) continue;  // the band routine has no inverse
      // ||inv(A) A - I||_1 / (n ||A||_1 ||inv(A)||_1 eps), LAPACK's inverse residual.
      const ColMatrix ai = Upper(inv[k], true);
      EXPECT_LT(zrtest::ResidualRatio(Multiply(ai, c.a), zrtest::Identity(n), c.a) / Norm1(ai),
                30.0);
    }
  }
}

// Every branch of the estimator, on A = R'R with integer R (factored exactly), against an
// exact rational trace of the published algorithm; one row traced by hand.
TEST(LinpackPositiveDefinite, ConditionEstimatesMatchExactTrace) {
  constexpr int kIn = 1 + 6 * 7 / 2;  // n, then R packed, padded to n = 6
  std::vector<zrtest::RefRow> rows = zrtest::LoadRefTable("math/matrix/linpack_po_rcond.csv", kIn);
  // By hand, R = [2 1; 0 2]: anorm 7, ynorm 208/85; the lookahead meets a tie s == sm.
  rows.push_back({"hand 2x2", {2.0, 2.0, 1.0, 2.0}, {208.0 / 595.0}});
  rows.back().in.resize(kIn, 0.0);
  for (const zrtest::RefRow & row : rows) {
    SCOPED_TRACE(row.where);
    const int n = static_cast<int>(row.in[0]);
    ColMatrix r(n, n);
    int m = 0;  // band width of R, which is that of A
    for (int j = 0, k = 1; j < n; ++j)
      for (int i = 0; i <= j; ++i, ++k) {
        r(i, j) = row.in[k];
        if (r(i, j) != 0.0) m = std::max(m, j - i);
      }
    Stored s(Multiply(Transposed(r), r), m);
    std::vector<Vec> z;
    for (double rcond : s.Co(z))
      EXPECT_LE(RelErr(rcond, row.out[0]), 1e-14);  // 2 eps seen; a wrong branch is far off
    for (const ColMatrix & f : s.Triangles()) EXPECT_EQ(f.a, r.a);  // the trace's premise
  }
}

// info is the order of the first leading minor that is not positive definite (LAPACK's
// dpotrf has the same definition), and rcond is then 0.0; the empty matrix gets 0.0 too.
TEST(LinpackPositiveDefinite, NotPositiveDefiniteGivesOrderOfFirstBadMinor) {
  struct {
    int line, n;
    Vec a;  // column-major
    int info;
  } const cases[] = {
      {__LINE__, 1, {0.0}, 1},
      {__LINE__, 1, {-1.0}, 1},
      {__LINE__, 2, {1.0, 2.0, 2.0, 1.0}, 2},
      {__LINE__, 2, {1.0, 1.0, 1.0, 1.0}, 2},  // pivot exactly 0.0
      {__LINE__, 3, {4.0, 2.0, 0.0, 2.0, 1.0, 0.0, 0.0, 0.0, 1.0}, 2},
      {__LINE__, 3, {2.0, 0.0, 0.0, 0.0, 3.0, 0.0, 0.0, 0.0, -1e-300}, 3},
      {__LINE__, 2, {0.0, 0.0, 0.0, 0.0}, 1},
      {__LINE__, 0, {}, 0},  // zero norm
      // Fault: a NaN pivot passed the test s <= 0.0, leaving info 0 and NaN in the factor.
      {__LINE__, 2, {kNaN, 1.0, 1.0, 2.0}, 1},
      {__LINE__, 2, {4.0, 1.0, kNaN, 2.0}, 2},  // off the diagonal: column 2's pivot is NaN
      {__LINE__, 3, {4.0, 0.0, 0.0, 0.0, 4.0, 0.0, 0.0, 0.0, kNaN}, 3},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ColMatrix a(c.n, c.n);
    a.a = c.a;
    ColMatrix lapack = a;
    const int lda = std::max(c.n, 1);
    int info = -1;
    dpotrf_("U", &c.n, lapack.data(), &lda, &info);
    EXPECT_EQ(info, c.info);
    EXPECT_EQ(Stored(a, std::max(c.n - 1, 0)).Fa(), (std::vector<int>(3, c.info)));
    std::vector<Vec> z;
    EXPECT_EQ(Stored(a, std::max(c.n - 1, 0)).Co(z), Vec(3, 0.0));
    // Without pivoting Dchdc meets the same bad pivot and returns the rank before it.
    std::vector<int> jpvt(c.n);
    Vec work(c.n);
    EXPECT_EQ(Linpack::Dchdc(a.data(), lda, c.n, work.data(), jpvt.data(), 0),
              c.info == 0 ? c.n : c.info - 1);
  }
}

// The Pascal matrix P(i, j) = C(i + j, i) (0-based) is R'R with R(i, j) = C(j, i), and
// inv(R)(i, j) = (-1)^(i + j) C(j, i): every step is exact in integers.
TEST(LinpackPositiveDefinite, PascalMatrixIsFactoredSolvedAndInvertedExactly) {
  constexpr int n = 6;
  auto binom = [](int a, int b) {
    double c = 1.0;
    for (int i = 1; i <= b; ++i) c = c * (a - b + i) / i;
    return c;
  };
  ColMatrix p(n, n), r(n, n), s(n, n);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) {
      p(i, j) = binom(i + j, i);
      r(i, j) = i <= j ? binom(j, i) : 0.0;
      s(i, j) = ((i + j) % 2 ? -1.0 : 1.0) * r(i, j);
    }
  ColMatrix x(n, 1);
  x.a = {1.0, -2.0, 3.0, -4.0, 5.0, -6.0};
  const Vec b = Multiply(p, x).a;

  Stored st(p, n - 1);
  EXPECT_EQ(st.Fa(), (std::vector<int>{0, 0, 0}));
  for (const ColMatrix & f : st.Triangles()) EXPECT_EQ(f.a, r.a);
  for (const Vec & got : st.Sl(b)) EXPECT_EQ(got, x.a);
  const Stored factored = st;
  const ColMatrix inverse = Upper(Multiply(s, Transposed(s)));
  for (int job : {1, 10, 11}) {
    SCOPED_TRACE(job);
    st = factored;
    const std::vector<Vec> det = st.Di(job);
    for (int k : {0, 1}) {  // the band routine has no job
      EXPECT_EQ(det[k], job == 1 ? (Vec{-7.0, -7.0}) : (Vec{1.0, 0.0}));
      EXPECT_EQ(st.Triangles()[k].a, job == 10 ? r.a : inverse.a);
    }
    EXPECT_EQ(det[2], (Vec{1.0, 0.0}));
  }
}

// Fault fixed: the published rescaling loop never ends once r^2 det[0] overflows.
TEST(LinpackPositiveDefinite, DeterminantBeyondDoubleRange) {
  const double inf = std::numeric_limits<double>::infinity();
  struct {
    int line;
    Vec diag;           // of R
    double det0, det1;  // det0 NaN: det is 10^det1 up to rounding
  } const cases[] = {
      {__LINE__, {1e50, 1e50, 1e50, 1e50, 1e50}, kNaN, 500.0},
      {__LINE__, {std::sqrt(2.0), 1e154}, inf, 0.0},
      {__LINE__, {3.0, 0.0, 2.0}, 0.0, 0.0},  // a zero pivot stops at once
      {__LINE__, {}, 1.0, 0.0},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    const int n = static_cast<int>(c.diag.size());
    ColMatrix r(n, n);
    for (int i = 0; i < n; ++i) r(i, i) = c.diag[i];
    for (const Vec & det : Stored(r, 0).Di(10)) {
      if (std::isnan(c.det0)) {
        EXPECT_LE(RelErr(det[0] * std::pow(10.0, det[1] - c.det1), 1.0), 1e-13);  // 500 divisions
      } else {
        EXPECT_EQ(det, (Vec{c.det0, c.det1}));
      }
    }
  }
}

}  // namespace
