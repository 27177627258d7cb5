// ZREigenValues: eigenpairs by LAPACK's scaled residuals and against dspev, dsyev and
// dsygv on the same matrices, the generalised problem with E of full and lower rank, bad
// input, the iteration cap, sorting, the clipped positive definite H and the display.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "support/capture.h"
#include "support/colmajor.h"
#include "support/lapack.h"
#include "support/symmatrices.h"
#include "zrcommon920r/math/matrix/eigen.h"

namespace {

using ZRMath_920::ZREigenValues;
using ZRMath_920::ZRRectMatrix;
using ZRMath_920::ZRSymMatrix;
using zrtest::ColMatrix;
using Vec = std::vector<double>;

constexpr double kEps = 2.220446049250313e-16;
constexpr double kRatio = 30.0;  // LAPACK's threshold for a scaled residual
constexpr double kTight = 1e-15;

Vec Sorted(Vec v) {
  std::sort(v.begin(), v.end());
  return v;
}
double MaxAbs(const Vec & v) {
  double m = 0.0;
  for (double x : v) m = std::max(m, std::fabs(x));
  return m;
}

// Eigenvalues by LAPACK: dspev on the packed triangle (the lower triangle by rows is the
// upper by columns), dsyev on the full matrix; ascending.
Vec Dspev(const ColMatrix & a) {
  int n = a.rows, one = 1, info = 0;
  Vec ap = zrtest::PackUpper(a), w(n), work(3 * n);
  dspev_("N", "U", &n, ap.data(), w.data(), nullptr, &one, work.data(), &info);
  return w;
}
Vec Dsyev(ColMatrix a, ColMatrix * vectors = nullptr) {
  int n = a.rows, lwork = 3 * n, info = 0;
  Vec w(n), work(lwork);
  dsyev_(vectors ? "V" : "N", "U", &n, a.data(), &n, w.data(), work.data(), &lwork, &info);
  if (vectors) *vectors = a;
  return w;
}
// Generalised eigenvalues of (h, e), e positive definite, ascending.
Vec Dsygv(ColMatrix h, ColMatrix e) {
  int one = 1, n = h.rows, lwork = 3 * n, info = 0;
  Vec w(n), work(lwork);
  dsygv_(&one, "N", "U", &n, h.data(), &n, e.data(), &n, w.data(), work.data(), &lwork, &info);
  EXPECT_EQ(info, 0);
  return w;
}

// The rows of z as columns.
ColMatrix Columns(const ZRRectMatrix & z) {
  ColMatrix c(z.GetNCols(), z.GetNRows());
  for (int r = 0; r < z.GetNRows(); ++r)
    for (int k = 0; k < z.GetNCols(); ++k) c(k, r) = z.GetElem(r, k);
  return c;
}
// ||A Z - Z diag(l)||_1 / (n ||A||_1 eps) and ||Z'Z - I||_1 / (n eps), Z's columns the
// eigenvectors.
double EigenResidualRatio(const ColMatrix & a, const ColMatrix & z, const Vec & l) {
  ColMatrix zl = z;
  for (int j = 0; j < z.cols; ++j)
    for (int i = 0; i < z.rows; ++i) zl(i, j) *= l[j];
  return zrtest::ResidualRatio(zrtest::Multiply(a, z), zl, a);
}
double OrthogonalityRatio(const ColMatrix & z) {
  const int n = z.rows;
  return zrtest::ResidualRatio(zrtest::Multiply(zrtest::Transposed(z), z), zrtest::Identity(n),
                               zrtest::Identity(n));
}

// Q diag(l) Q' with Q the eigenvectors of a random symmetric matrix.
ColMatrix WithSpectrum(const Vec & l, unsigned seed) {
  const int n = static_cast<int>(l.size());
  ColMatrix q, ql(n, n);
  Dsyev(zrtest::RandomSymmetric(n, seed), &q);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) ql(i, j) = q(i, j) * l[j];
  ColMatrix a = zrtest::Multiply(ql, zrtest::Transposed(q));
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < j; ++i) a(j, i) = a(i, j);
  return a;
}
template <typename F>
ColMatrix Scaled(ColMatrix a, F f) {
  for (int j = 0; j < a.cols; ++j)
    for (int i = 0; i < a.rows; ++i) a(i, j) *= f(i, j);
  return a;
}
ColMatrix Diagonal(const Vec & d) {
  ColMatrix a(static_cast<int>(d.size()), static_cast<int>(d.size()));
  for (int i = 0; i < a.rows; ++i) a(i, i) = d[i];
  return a;
}
// W21+: tridiagonal with diagonal |10 - i| and ones beside it; pairs of eigenvalues agree
// to many digits.
ColMatrix Wilkinson21() {
  ColMatrix a(21, 21);
  for (int i = 0; i < 21; ++i) {
    a(i, i) = std::abs(10 - i);
    if (i > 0) a(i, i - 1) = a(i - 1, i) = 1.0;
  }
  return a;
}
// B B' with B of small integers, 7 x 4: exactly of rank 4, so three eigenvalues are 0.
ColMatrix RankDeficient() {
  ColMatrix b(7, 4);
  for (int i = 0; i < 7; ++i)
    for (int j = 0; j < 4; ++j) b(i, j) = (i * 3 + j * 5) % 7 - 3 + (i == j);
  return zrtest::Multiply(b, zrtest::Transposed(b));
}

struct Family {
  const char * name;
  ColMatrix a;
};
std::vector<Family> Families() {
  std::vector<Family> f;
  for (int n : {2, 9, 60}) f.push_back({"random", zrtest::RandomSymmetric(n, 7u + n)});
  f.push_back({"triple", WithSpectrum({2, 2, 2, -1, 0.5, 3, 7, -4}, 3)});
  f.push_back({"cluster", WithSpectrum({1, 1 + 1e-10, 1 + 2e-10, 1 + 3e-10, -2, 5}, 4)});
  f.push_back({"wilkinson", Wilkinson21()});
  f.push_back({"rank4", RankDeficient()});
  const ColMatrix r = zrtest::RandomSymmetric(12, 5);
  f.push_back({"graded down", Scaled(r, [](int i, int j) { return std::pow(0.05, i + j); })});
  f.push_back({"graded up", Scaled(r, [](int i, int j) { return std::pow(0.05, 22 - i - j); })});
  f.push_back({"1e300", Scaled(r, [](int, int) { return 1e300; })});
  f.push_back({"1e-300", Scaled(r, [](int, int) { return 1e-300; })});
  f.push_back({"diagonal", Diagonal({3, -1, 2, 0.5})});
  f.push_back({"1x1", Diagonal({-7.5})});
  f.push_back({"zero", ColMatrix(4, 4)});
  return f;
}

TEST(ZREigenValues, FamiliesMatchLapack) {
  for (const Family & fam : Families()) {
    SCOPED_TRACE(fam.name);
    const int n = fam.a.rows;
    const Vec ref = Dspev(fam.a);
    const double scale = MaxAbs(ref), norm = zrtest::Norm1(fam.a);
    ZREigenValues tight(zrtest::ToSym(fam.a), kTight, 30), loose(zrtest::ToSym(fam.a), 0, 0);
    Vec l, lLoose;
    ZRRectMatrix z;
    ASSERT_EQ(tight.Compute(l, z), n);
    ASSERT_EQ(loose.Compute(lLoose), n);
    const ColMatrix zc = Columns(z);
    EXPECT_LT(EigenResidualRatio(fam.a, zc, l), kRatio);
    EXPECT_LT(OrthogonalityRatio(zc), kRatio);
    const Vec sorted = Sorted(l), sortedLoose = Sorted(lLoose), sy = Dsyev(fam.a);
    for (int i = 0; i < n; ++i) {
      EXPECT_LE(std::fabs(sorted[i] - ref[i]), 4 * n * kEps * scale) << i;  // LAPACK's level
      EXPECT_LE(std::fabs(sorted[i] - sy[i]), 4 * n * kEps * scale) << i;
      // Weyl: each deflation moves the values by at most 2 tol ||H||.
      EXPECT_LE(std::fabs(sortedLoose[i] - ref[i]), 2 * n * 1e-12 * norm + 4 * n * kEps * scale);
    }
  }
}

// x = L'^-1 y turns an eigenvector y of V H V' into one of the pencil (H, E).
TEST(ZREigenValues, FullRankPencilMatchesDsygv) {
  for (int n : {1, 6, 40}) {
    SCOPED_TRACE(n);
    const ColMatrix h = zrtest::RandomSymmetric(n, 20u + n), e = zrtest::RandomSpdCol(n, 30u + n);
    ZREigenValues eig(zrtest::ToSym(h), zrtest::ToSym(e), 0, 0);
    ASSERT_TRUE(eig.IsValidEMatrix());
    ASSERT_TRUE(eig.SetTolerance(kTight));
    Vec l;
    ZRRectMatrix y;
    ASSERT_EQ(eig.Compute(l, y), n);
    ZRSymMatrix factor = zrtest::ToSym(e);
    Vec diag, yr, x;
    factor.GetDiagonal(diag);
    ASSERT_EQ(factor.LTChol(diag, 1e-12, false), 0);
    const Vec ref = Dsygv(h, e), sorted = Sorted(l);
    const double hNorm = zrtest::Norm1(h), eNorm = zrtest::Norm1(e);
    for (int r = 0; r < n; ++r) {
      ASSERT_TRUE(y.GetRow(r, yr));
      ASSERT_TRUE(factor.TSolveSubst(yr, x, true));
      ColMatrix xc(n, 1);
      xc.a = x;
      const ColMatrix hx = zrtest::Multiply(h, xc), ex = zrtest::Multiply(e, xc);
      double res = 0.0;
      for (int i = 0; i < n; ++i) res += std::fabs(hx.a[i] - l[r] * ex.a[i]);
      const double xNorm = zrtest::Norm1(xc);
      EXPECT_LT(res / ((hNorm + std::fabs(l[r]) * eNorm) * xNorm * n * kEps), kRatio) << r;
      EXPECT_LE(std::fabs(sorted[r] - ref[r]), 4 * n * kEps * MaxAbs(ref)) << r;
    }
  }
}

// E = B B' with B 9 x 5: the first five pivots are kept, so V H V' has four zero rows and
// the other values are those of the pencil on the leading 5 x 5 blocks.
TEST(ZREigenValues, RankDeficientEGivesZerosAndTheAcceptedPencil) {
  const int n = 9, k = 5;
  const ColMatrix b = zrtest::RandomGeneral(n, k, 41), h = zrtest::RandomSymmetric(n, 42);
  const ColMatrix e = zrtest::Multiply(b, zrtest::Transposed(b));
  ZREigenValues eig(zrtest::ToSym(h), 0, 0);
  ASSERT_TRUE(eig.SetEMatrix(zrtest::ToSym(e)));  // at the default tol, then tighten
  ASSERT_TRUE(eig.SetTolerance(kTight));
  Vec l;
  ASSERT_EQ(eig.Compute(l), n);
  ColMatrix h11(k, k), e11(k, k);
  for (int j = 0; j < k; ++j)
    for (int i = 0; i < k; ++i) h11(i, j) = h(i, j), e11(i, j) = e(i, j);
  Vec ref = Dsygv(h11, e11);
  ref.insert(ref.end(), n - k, 0.0);
  ref = Sorted(ref);
  const Vec got = Sorted(l);
  for (int i = 0; i < n; ++i)  // seen: 1.1 n eps; E11 is moderately conditioned
    EXPECT_LE(std::fabs(got[i] - ref[i]), 16 * n * kEps * MaxAbs(ref)) << i;
}

TEST(ZREigenValues, BadEFallsBackToH) {
  const ZRSymMatrix h = zrtest::RandomSpd(4, 50);
  ZRSymMatrix nan = zrtest::RandomSpd(4, 51), inf = nan;
  nan.SetElem(2, 1, NAN);
  inf.SetElem(3, 3, INFINITY);
  const ZRSymMatrix bad[] = {zrtest::RandomSpd(3, 52), nan, inf, ZRSymMatrix(4, true)};
  Vec plain;
  ZREigenValues(h, 0, 0).Compute(plain);
  for (const ZRSymMatrix & e : bad) {
    SCOPED_TRACE(e.GetNRows());
    ZREigenValues eig(h, zrtest::RandomSpd(4, 53), 0, 0);
    ASSERT_TRUE(eig.IsValidEMatrix());
    EXPECT_FALSE(eig.SetEMatrix(e));
    EXPECT_FALSE(eig.IsValidEMatrix());
    Vec l;
    EXPECT_EQ(eig.Compute(l), 4);
    EXPECT_EQ(l, plain);
  }
}

TEST(ZREigenValues, NonFiniteOrEmptyHIsRefused) {
  ZRSymMatrix nanOff = zrtest::RandomSpd(3, 60), infDiag = nanOff, nan1(1, true);
  nanOff.SetElem(1, 0, NAN);
  infDiag.SetElem(2, 2, -INFINITY);
  nan1.SetElem(0, 0, NAN);
  for (const ZRSymMatrix & h : {nanOff, infDiag, nan1, ZRSymMatrix()}) {
    ZREigenValues eig(h, 0, 0);
    Vec l = {42.0};
    ZRRectMatrix z(1, 1, true), out;
    bool isPD = true;
    EXPECT_EQ(eig.Compute(l), -2);
    EXPECT_EQ(eig.Compute(l, z), -2);
    EXPECT_EQ(eig.GetSorted(l, z, false), -2);
    EXPECT_EQ(l, Vec{42.0});
    EXPECT_EQ(z.GetNRows(), 1);
    EXPECT_FALSE(eig.IsPDHMatrix(0, isPD));
    EXPECT_TRUE(isPD);
    ZRSymMatrix pd;
    EXPECT_FALSE(eig.GetPDHMatrix(0, pd));
  }
}

TEST(ZREigenValues, IterationCapStopsTheCount) {
  // 5 stands apart; the 3 x 3 block after it needs more than one iteration.
  ColMatrix a = Diagonal({5, 1, 2, 3});
  a(1, 2) = a(2, 1) = a(2, 3) = a(3, 2) = a(1, 3) = a(3, 1) = 0.7;
  ZREigenValues eig(zrtest::ToSym(a), -1.0, 1);
  EXPECT_EQ(eig.GetTolerance(), 1e-12);  // not above 0: the default
  EXPECT_FALSE(eig.SetTolerance(NAN) || eig.SetTolerance(0.0) || eig.SetMaxIter(0));
  EXPECT_EQ(eig.GetMaxIter(), 1);
  Vec l = {-1};
  EXPECT_EQ(eig.Compute(l), 1);
  EXPECT_EQ(l, (Vec{5, 0, 0, 0}));
  ASSERT_TRUE(eig.SetMaxIter(30));
  EXPECT_EQ(eig.Compute(l), 4);
  EXPECT_EQ(l, (Vec{5, 0, 0, 0}));   // Intended: a repeated call keeps the first values
  eig.SetHMatrix(zrtest::ToSym(a));  // a new problem
  EXPECT_EQ(eig.Compute(l), 4);
  EXPECT_LE(std::fabs(Sorted(l)[3] - Dspev(a)[3]), 1e-11);

  ZREigenValues general(zrtest::ToSym(zrtest::RandomSymmetric(3, 61)), 0, 1);
  l = {-1};
  EXPECT_EQ(general.Compute(l), 0);
  EXPECT_EQ(l, Vec{-1});
}

TEST(ZREigenValues, SortedPairsStayEigenpairs) {
  // A diagonal H comes back in its own order, unit vectors as they stand.
  ZREigenValues diag(zrtest::ToSym(Diagonal({3, 1, 2})), 0, 0);
  Vec l;
  ZRRectMatrix z;
  ASSERT_EQ(diag.Compute(l, z), 3);
  EXPECT_EQ(l, (Vec{3, 1, 2}));
  EXPECT_EQ(Columns(z).a, zrtest::Identity(3).a);
  ASSERT_EQ(diag.GetSorted(l, false), 3);
  EXPECT_EQ(l, (Vec{1, 2, 3}));
  ASSERT_EQ(diag.GetSorted(l, z, true), 3);
  EXPECT_EQ(l, (Vec{3, 2, 1}));
  EXPECT_EQ(Columns(z).a, (Vec{1, 0, 0, 0, 0, 1, 0, 1, 0}));

  // The triple eigenvalue 2 may come as any basis of its space: compare projectors.
  const ColMatrix a = WithSpectrum({2, 5, 2, -1, 2, 0.5}, 9);
  ColMatrix q;
  Dsyev(a, &q);  // ascending: -1, 0.5, 2, 2, 2, 5
  for (bool descending : {false, true}) {
    SCOPED_TRACE(descending);
    ZREigenValues eig(zrtest::ToSym(a), kTight, 30);
    ASSERT_EQ(eig.GetSorted(l, z, descending), 6);
    EXPECT_TRUE(descending ? std::is_sorted(l.rbegin(), l.rend())
                           : std::is_sorted(l.begin(), l.end()));
    const ColMatrix zc = Columns(z);
    EXPECT_LT(EigenResidualRatio(a, zc, l), kRatio);
    const int first = descending ? 1 : 2, refFirst = 2;
    double worst = 0.0;
    for (int i = 0; i < 6; ++i)
      for (int j = 0; j < 6; ++j) {
        double p = 0.0, pRef = 0.0;
        for (int t = 0; t < 3; ++t) {
          p += zc(i, first + t) * zc(j, first + t);
          pRef += q(i, refFirst + t) * q(j, refFirst + t);
        }
        worst = std::max(worst, std::fabs(p - pRef));
      }
    EXPECT_LT(worst, 24 * kEps);  // 4 n eps; seen 3.75 eps
  }
}

TEST(ZREigenValues, PositiveDefiniteByClipping) {
  ZRSymMatrix out;
  bool changed = true;
  const ZRSymMatrix spd = zrtest::RandomSpd(5, 70);
  ZREigenValues pd(spd, 0, 0);
  ASSERT_TRUE(pd.GetPDHMatrix(0.5, out, changed));
  EXPECT_FALSE(changed);
  EXPECT_EQ(zrtest::FromSym(out).a, zrtest::FromSym(spd).a);

  ZREigenValues two(zrtest::ToSym(Diagonal({1, -1})), 0, 0);
  ASSERT_TRUE(two.GetPDHMatrix(0.0, out, changed));
  EXPECT_TRUE(changed);
  EXPECT_EQ(zrtest::FromSym(out).a, Diagonal({1, 1e-6}).a);

  // A second decomposition of the clipped matrix gives max(l, tol).
  const ColMatrix a = zrtest::RandomSymmetric(8, 71);
  ZREigenValues eig(zrtest::ToSym(a), kTight, 30);
  bool isPD = true;
  ASSERT_TRUE(eig.IsPDHMatrix(0.1, isPD));
  EXPECT_FALSE(isPD);
  ASSERT_TRUE(eig.GetPDHMatrix(0.1, out, changed));
  EXPECT_TRUE(changed);
  Vec want = Dspev(a), got;
  for (double & x : want) x = std::max(x, 0.1);
  ZREigenValues second(out, kTight, 30);
  ASSERT_TRUE(second.GetSorted(got, false) == 8 && second.IsPDHMatrix(0.09, isPD));
  EXPECT_TRUE(isPD);
  want = Sorted(want);
  for (int i = 0; i < 8; ++i)
    EXPECT_LE(std::fabs(got[i] - want[i]), 32 * kEps * MaxAbs(want));  // 4 n eps
}

TEST(ZREigenValues, DisplayLeavesOutEmptyParts) {
  zrtest::DisplayCapture capture;
  ZREigenValues eig(zrtest::RandomSpd(3, 80), 0, 0);
  eig.Display();
  const std::string before = capture.Text();
  Vec l;
  ZRRectMatrix z;
  ASSERT_TRUE(eig.SetEMatrix(zrtest::RandomSpd(3, 81)));
  ASSERT_EQ(eig.GetSorted(l, z, true), 3);
  capture.Clear();
  eig.Display();
  const std::string after = capture.Text();
  EXPECT_EQ(before.find("fmOrthInfo:"), std::string::npos);
  EXPECT_EQ(before.find("fvEigenVal"), std::string::npos);
  const std::vector<std::pair<std::string, std::vector<const char *>>> cases = {
      {before,
       {"\nZREigenValues display start\nNumber of rows = 3\nTolerance = 1e-12\n"
        "Maximum number of iterations = 30\nCompute eigenvectors indicator = false\n"
        "Matrix H:\nZRSymMatrix display start",
        "\nMatrix E is identity\nNumber of computed eigenvalues = 0\n"
        "ZREigenValues display end"}},
      {after,
       {"= true", "\nMatrix E:\n", "\nfvEDiag (size = 3)", "\nChol(E):\n",
        "\nGen.Inverse of Chol(E):\n", "\nfmVHV:\n", "\nRank of the E matrix = 3",
        "\nfmOrthInfo:\n", "\nfvDiag3 (size = 3)", "\nfvSubdiag3 (size = 3)",
        "\nNumber of computed eigenvalues = 3", "\nfvEigenVal (size = 3)", "\nfmEigenVectors:\n",
        "\nfvEigPairs (size = 3)", "\nZREigenValues display end"}}};
  for (const auto & [text, labels] : cases) {
    std::size_t at = 0;
    for (const char * label : labels) {
      at = text.find(label, at);
      EXPECT_NE(at, std::string::npos) << label;
    }
  }
}

}  // namespace
