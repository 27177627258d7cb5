// General LINPACK routines in full and band storage against reference LAPACK on the same
// matrices, and hand-computed cases.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "support/colmajor.h"
#include "support/lapack.h"
#include "zrcommon920r/math/matrix/kernels.h"

extern "C" {
void dgbcon_(const char * norm, const int * n, const int * kl, const int * ku, const double * ab,
             const int * ldab, const int * ipiv, const double * anorm, double * rcond,
             double * work, int * iwork, int * info);
}

namespace {

using ZRMath_920::Linpack;
using zrtest::ColMatrix;
using zrtest::Norm1;
using zrtest::ResidualRatio;
using zrtest::SolveResidualRatio;
using Vec = std::vector<double>;
using IVec = std::vector<int>;

constexpr double kEps = 2.220446049250313e-16;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

ColMatrix FromValues(int n, Vec values) {
  ColMatrix a(n, n);
  a.a = std::move(values);
  return a;
}

// A test matrix with band widths (n - 1 when dense) and a label for traces.
struct Case {
  std::string name;
  ColMatrix a;
  int ml, mu;
};

Case Band(int n, int ml, int mu) {
  ColMatrix a = zrtest::RandomGeneral(n, n, n + 10 * ml + 100 * mu);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i)
      if (i - j > ml || j - i > mu) a(i, j) = 0.0;
  return {"band n=" + std::to_string(n) + " ml=" + std::to_string(ml) + " mu=" + std::to_string(mu),
          a, ml, mu};
}

std::vector<Case> Matrices() {
  std::vector<Case> cases;
  for (int n : {1, 2, 3, 7, 40}) cases.push_back(Band(n, n - 1, n - 1));
  ColMatrix hilbert(8, 8), nearSingular = zrtest::RandomGeneral(12, 12, 5);
  for (int i = 0; i < 8; ++i)
    for (int j = 0; j < 8; ++j) hilbert(i, j) = 1.0 / (i + j + 1);
  cases.push_back({"hilbert 8, cond 3e10", hilbert, 7, 7});
  for (int i = 0; i < 12; ++i)  // last column = first + second + 1e-9 noise
    nearSingular(i, 11) = nearSingular(i, 0) + nearSingular(i, 1) + 1e-9 * std::sin(i + 1.0);
  cases.push_back({"nearly singular", nearSingular, 11, 11});
  for (const auto & s : {IVec{6, 0, 0}, {7, 2, 1}, {7, 1, 3}, {10, 0, 2}, {10, 3, 0}})
    cases.push_back(Band(s[0], s[1], s[2]));
  cases.push_back(Band(30, 2, 2));
  for (int i = 0; i < 30; ++i) cases.back().a(i, 11) *= 1e-10;
  cases.back().name += ", one column scaled by 1e-10";
  return cases;
}

// LINPACK's (and LAPACK's) band form: lda = 2 ml + mu + 1, A(i, j) at abd(ml + mu + 1 + i - j, j)
// counted from 1; everything else, fill-in rows included, is `fill`.
Vec ToBand(const ColMatrix & a, int ml, int mu, double fill) {
  const int n = a.rows, lda = 2 * ml + mu + 1;
  Vec abd(static_cast<std::size_t>(lda) * n, fill);
  for (int j = 0; j < n; ++j)
    for (int i = std::max(0, j - mu); i <= std::min(n - 1, j + ml); ++i)
      abd[j * lda + ml + mu + i - j] = a(i, j);
  return abd;
}

// What LAPACK says about A: LU pivots of dgetrf and dgbtrf, log10 |det| with its sign, the
// true 1 / cond_1 from the dgetri inverse, and the estimates of dgecon and dgbcon.
struct Reference {
  IVec ipiv, bandIpiv;
  double logDet = 0.0, detSign = 1.0, rcond = 0.0, dgecon = 0.0, dgbcon = 0.0;
  explicit Reference(const Case & c) : ipiv(c.a.rows), bandIpiv(c.a.rows) {
    const int n = c.a.rows, lwork = 4 * n, lda = 2 * c.ml + c.mu + 1;
    const double anorm = Norm1(c.a);
    ColMatrix lu = c.a;
    Vec work(lwork), band = ToBand(c.a, c.ml, c.mu, 0.0);
    IVec iwork(n);
    int info = 0;
    dgetrf_(&n, &n, lu.data(), &n, ipiv.data(), &info);
    for (int i = 0; i < n; ++i) {
      if ((ipiv[i] != i + 1) != (lu(i, i) < 0.0)) detSign = -detSign;
      logDet += std::log10(std::fabs(lu(i, i)));
    }
    dgecon_("1", &n, lu.data(), &n, &anorm, &dgecon, work.data(), iwork.data(), &info);
    dgetri_(&n, lu.data(), &n, ipiv.data(), work.data(), &lwork, &info);
    rcond = 1.0 / (anorm * Norm1(lu));
    dgbtrf_(&n, &n, &c.ml, &c.mu, band.data(), &lda, bandIpiv.data(), &info);
    dgbcon_("1", &n, &c.ml, &c.mu, band.data(), &lda, bandIpiv.data(), &anorm, &dgbcon, work.data(),
            iwork.data(), &info);
  }

  // rcond within a factor of 10 of LAPACK's estimate and of the truth; the estimate of
  // ||inv(A)|| is a lower bound, so rcond >= true rcond up to rounding.
  void ExpectRcond(double got, double lapackEstimate) const {
    EXPECT_GE(got, 0.9 * rcond);
    EXPECT_LE(got, 10.0 * rcond);
    EXPECT_GE(got, 0.1 * lapackEstimate);
    EXPECT_LE(got, 10.0 * lapackEstimate);
  }
  // The normal form 1 <= |det[0]| < 10, and LAPACK's determinant: both LUs are backward
  // stable, so they agree to about n eps cond_1(A).
  void ExpectDet(const double * det) const {
    EXPECT_GE(std::fabs(det[0]), 1.0);
    EXPECT_LT(std::fabs(det[0]), 10.0);
    EXPECT_EQ(det[0] < 0.0 ? -1.0 : 1.0, detSign);
    const double relTol = std::max(1e-12, 30.0 * ipiv.size() * kEps / rcond);
    EXPECT_NEAR(det[1] + std::log10(std::fabs(det[0])), logDet, relTol / std::log(10.0));
  }
};

// Undoes Dgefa's elimination: A = P1 E1^-1 P2 E2^-1 ... U, where E_k adds t(i) row k to row i
// and Dgefa keeps t below the diagonal.
ColMatrix RebuildFromGefa(const ColMatrix & lu, const IVec & ipvt) {
  const int n = lu.rows;
  ColMatrix m(n, n);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i <= j; ++i) m(i, j) = lu(i, j);
  for (int k = n - 2; k >= 0; --k) {
    for (int i = k + 1; i < n; ++i)
      for (int j = 0; j < n; ++j) m(i, j) -= lu(i, k) * m(k, j);
    for (int j = 0; j < n; ++j) std::swap(m(k, j), m(ipvt[k] - 1, j));
  }
  return m;
}

// Full and band storage side by side; NaN outside the band proves that no band routine
// reads there.
TEST(LinpackGeneral, FullAndBandAgreeWithLapack) {
  for (const Case & c : Matrices()) {
    SCOPED_TRACE(c.name);
    const int n = c.a.rows, lda = 2 * c.ml + c.mu + 1;
    const Reference ref(c);
    ColMatrix lu = c.a;
    IVec ipvt(n), bandIpvt(n);
    Vec z(n), work(n, kNaN), abd = ToBand(c.a, c.ml, c.mu, kNaN);
    ref.ExpectRcond(Linpack::Dgeco(lu.data(), n, n, ipvt.data(), z.data()), ref.dgecon);
    ref.ExpectRcond(Linpack::Dgbco(abd.data(), lda, n, c.ml, c.mu, bandIpvt.data(), z.data()),
                    ref.dgbcon);
    EXPECT_EQ(ipvt, ref.ipiv);
    EXPECT_EQ(bandIpvt, ref.bandIpiv);
    EXPECT_LT(ResidualRatio(RebuildFromGefa(lu, ipvt), c.a, c.a), 30.0);
    const Vec b = zrtest::RandomGeneral(n, 1, 77).a;
    for (int job : {0, 1}) {
      SCOPED_TRACE(job);
      Vec x = b, xBand = b;
      Linpack::Dgesl(lu.data(), n, n, ipvt.data(), x.data(), job);
      Linpack::Dgbsl(abd.data(), lda, n, c.ml, c.mu, bandIpvt.data(), xBand.data(), job);
      const ColMatrix op = job == 0 ? c.a : zrtest::Transposed(c.a);
      EXPECT_LT(SolveResidualRatio(op, x, b), 30.0);
      EXPECT_LT(SolveResidualRatio(op, xBand, b), 30.0);
    }
    // Job 10 gives the determinant and leaves a alone; job 01 inverts and leaves det alone.
    const ColMatrix factors = lu;
    double det[2], untouched[2] = {-9.0, -9.0};
    Linpack::Dgbdi(abd.data(), lda, n, c.ml, c.mu, bandIpvt.data(), det);
    ref.ExpectDet(det);
    Linpack::Dgedi(lu.data(), n, n, ipvt.data(), det, nullptr, 10);
    ref.ExpectDet(det);
    EXPECT_EQ(lu.a, factors.a);
    Linpack::Dgedi(lu.data(), n, n, ipvt.data(), untouched, work.data(), 1);
    EXPECT_EQ(untouched[0], -9.0);
    // ||inv(A) A - I||_1 / (n ||A||_1 ||inv(A)||_1 eps), LAPACK's dget03 ratio; Norm1 passes
    // over NaN columns, so finiteness is checked first (a stale NaN from work shows there).
    for (double v : lu.a) ASSERT_TRUE(std::isfinite(v));
    const ColMatrix id = zrtest::Identity(n);
    EXPECT_LT(ResidualRatio(zrtest::Multiply(lu, c.a), id, id) / (Norm1(c.a) * Norm1(lu)), 30.0);
  }
}

// Condition estimates traced by hand: the 2 x 2 needs the sign choice for e (without it 0.5),
// the 3 x 3 the look-ahead at k = 2. True 1/cond: 1/4 and 1/176. Both are upper triangular,
// so the band routine with ml = 0 must give the same.
TEST(LinpackGeneral, ConditionEstimatesMatchHandTrace) {
  struct {
    int line, n;
    Vec a;
    double rcond;
  } const exact[] = {{__LINE__, 2, {1, 0, 1, 1}, 0.3},
                     {__LINE__, 3, {1, 0, 0, 1, 1, 0, 10, 5, 1}, 3.0 / 488.0}};
  for (const auto & c : exact) {
    SCOPED_TRACE(c.line);
    Vec a = c.a, z(c.n), abd = ToBand(FromValues(c.n, c.a), 0, c.n - 1, kNaN);
    IVec piv(c.n);
    EXPECT_NEAR(Linpack::Dgeco(a.data(), c.n, c.n, piv.data(), z.data()), c.rcond, 8 * kEps);
    EXPECT_NEAR(Linpack::Dgbco(abd.data(), c.n, c.n, 0, c.n - 1, piv.data(), z.data()), c.rcond,
                8 * kEps);
  }
}

TEST(LinpackGeneral, SingularInputAndDeterminantScaling) {
  // info is the last zero pivot, in full and band storage alike; these singular matrices
  // get det 0 and rcond 0.
  Case zeroCols = Band(5, 4, 4), tridiag = Band(6, 1, 1), diag = Band(5, 0, 0);
  for (int i = 0; i < 6; ++i) {
    if (i < 5) zeroCols.a(i, 1) = zeroCols.a(i, 3) = diag.a(i, 1) = diag.a(i, 3) = 0.0;
    tridiag.a(i, 2) = 0.0;
  }
  const struct {
    Case c;
    int info;
  } singular[] = {{{"zero 1 x 1", ColMatrix(1, 1), 0, 0}, 1},
                  {{"u22 = 4 - 0.5 * 4 = 0 exactly", FromValues(2, {1, 2, 2, 4}), 1, 1}, 2},
                  {{"zero first column", FromValues(2, {0, 0, 1, 2}), 1, 1}, 1},
                  {{"zero 3 x 3", ColMatrix(3, 3), 2, 2}, 3},
                  {{"columns 2 and 4 zero", zeroCols.a, 4, 4}, 4},
                  {{"diagonal, columns 2 and 4 zero", diag.a, 0, 0}, 4},
                  {{"tridiagonal, column 3 zero", tridiag.a, 1, 1}, 3}};
  for (const auto & [c, info] : singular) {
    SCOPED_TRACE(c.name);
    const int n = c.a.rows, lda = 2 * c.ml + c.mu + 1;
    ColMatrix lu = c.a;
    IVec ipvt(n + 1, -7);
    Vec z(n), abd = ToBand(c.a, c.ml, c.mu, kNaN);
    double det[2];
    EXPECT_EQ(Linpack::Dgefa(lu.data(), n, n, ipvt.data()), info);
    EXPECT_EQ(ipvt[n - 1], n);
    EXPECT_EQ(ipvt[n], -7);
    Linpack::Dgedi(lu.data(), n, n, ipvt.data(), det, nullptr, 10);
    EXPECT_EQ(det[0], 0.0);
    EXPECT_EQ(Linpack::Dgbfa(abd.data(), lda, n, c.ml, c.mu, ipvt.data()), info);
    Linpack::Dgbdi(abd.data(), lda, n, c.ml, c.mu, ipvt.data(), det);
    EXPECT_EQ(det[0], 0.0);
    lu = c.a;
    EXPECT_EQ(Linpack::Dgeco(lu.data(), n, n, ipvt.data(), z.data()), 0.0);
  }
  IVec untouched = {-7};
  EXPECT_EQ(Linpack::Dgefa(nullptr, 1, 0, untouched.data()), 0);
  EXPECT_EQ(Linpack::Dgeco(nullptr, 1, 0, untouched.data(), nullptr), 0.0);
  EXPECT_EQ(untouched[0], -7);

  // Determinants far outside the double range keep their exponent in det[1].
  struct {
    int line;
    Vec diag;
    double log10Det, sign;
  } const scaled[] = {
      {__LINE__, {1e-200, 1e-200, 1e-5}, -405.0, 1.0},
      {__LINE__, {1e200, -1e200, 10.0}, 401.0, -1.0},
      {__LINE__, {1, 1, 1, 1}, 0.0, 1.0},
      {__LINE__, {9, 1e308}, kInf, 1.0},  // overflow and NaN end the scaling, which would
      {__LINE__, {9, kNaN}, kNaN, 1.0},   // loop forever as published
  };
  for (const auto & c : scaled) {
    SCOPED_TRACE(c.line);
    const int n = static_cast<int>(c.diag.size());
    ColMatrix a(n, n);
    for (int i = 0; i < n; ++i) a(i, i) = c.diag[i];
    IVec ipvt(n);
    ASSERT_EQ(Linpack::Dgefa(a.data(), n, n, ipvt.data()), 0);
    double det[2];
    Linpack::Dgedi(a.data(), n, n, ipvt.data(), det, nullptr, 10);
    EXPECT_EQ(det[0] < 0.0 ? -1.0 : 1.0, c.sign);
    if (std::isfinite(c.log10Det)) {
      EXPECT_NEAR(det[1] + std::log10(std::fabs(det[0])), c.log10Det, 1e-13);  // 400 scalings
    } else {
      EXPECT_FALSE(std::isfinite(det[0]));
    }
  }
}

}  // namespace
