// ZRRectMatrix decompositions and mixed operations: Householder QR by its properties and
// against LAPACK's singular values, square solves against dgesv, generalised solutions and
// projections against least squares (dgelsd), redundancy at its squared tolerance,
// estimability on a one-way layout, and the products with symmetric matrices.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "support/colmajor.h"
#include "support/lapack.h"
#include "support/matrixconv.h"
#include "support/refdata.h"
#include "support/symmatrices.h"
#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/bitset.h"
#include "zrcommon920r/math/matrix/rectmatrix.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace {

using ZRMath_920::ZRBitSet;
using ZRMath_920::ZRRectMatrix;
using ZRMath_920::ZRSymMatrix;
using zrtest::ColMatrix;
using zrtest::FromRect;
using zrtest::Multiply;
using zrtest::RandomGeneral;
using zrtest::ToRect;
using zrtest::Transposed;
using Vec = std::vector<double>;
using Grid = std::vector<Vec>;
using Bits = std::vector<bool>;

constexpr double kEps = 2.220446049250313e-16;
constexpr double kRatio = 30.0;  // LAPACK's threshold for a scaled residual
const double kNaN = std::numeric_limits<double>::quiet_NaN();

ColMatrix FromRows(const Grid & rows) {
  ColMatrix a(static_cast<int>(rows.size()), static_cast<int>(rows[0].size()));
  for (int i = 0; i < a.rows; ++i)
    for (int j = 0; j < a.cols; ++j) a(i, j) = rows[i][j];
  return a;
}
ZRRectMatrix Make(const Grid & rows) {
  return ToRect(FromRows(rows));
}

// Singular values by LAPACK's dgesvd.
Vec SingularValues(ColMatrix a) {
  const int m = a.rows, n = a.cols, one = 1, lwork = 5 * (m + n) + 64;
  Vec s(std::min(m, n)), work(lwork);
  double none = 0.0;
  int info = 0;
  dgesvd_("N", "N", &m, &n, a.data(), &m, s.data(), &none, &one, &none, &one, work.data(), &lwork,
          &info);
  EXPECT_EQ(info, 0);
  return s;
}

// Minimum-norm least squares solution of A X = B by LAPACK's dgelsd (m >= n); singular
// values below rcond times the largest count as zero.
ColMatrix LeastSquares(ColMatrix a, ColMatrix b, double rcond) {
  const int m = a.rows, n = a.cols, nrhs = b.cols, lwork = 64 * (m + n) * (nrhs + 8);
  Vec s(n), work(lwork);
  std::vector<int> iwork(64 * (m + n));
  int rank = 0, info = 0;
  dgelsd_(&m, &n, &nrhs, a.data(), &m, b.data(), &m, s.data(), &rcond, &rank, work.data(), &lwork,
          iwork.data(), &info);
  EXPECT_EQ(info, 0);
  ColMatrix x(n, nrhs);
  for (int j = 0; j < nrhs; ++j)
    for (int i = 0; i < n; ++i) x(i, j) = b(i, j);
  return x;
}

// Largest elementwise difference over the largest element of want.
double MaxRelDiff(const Vec & got, const Vec & want) {
  double diff = 0.0, scale = 0.0;
  for (std::size_t i = 0; i < want.size(); ++i) {
    diff = std::max(diff, std::fabs(got[i] - want[i]));
    scale = std::max(scale, std::fabs(want[i]));
  }
  return got.size() == want.size() ? diff / scale : HUGE_VAL;
}

TEST(ZRRectMatrixQR, OrthogonalFactorReproducesMatrixAndSingularValues) {
  struct {
    int line, rows, cols;
  } const cases[] = {{__LINE__, 1, 1},   {__LINE__, 6, 3},   {__LINE__, 3, 6},
                     {__LINE__, 40, 12}, {__LINE__, 12, 40}, {__LINE__, 30, 30}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    const ColMatrix a = RandomGeneral(c.rows, c.cols, c.line);
    ZRSymMatrix r;
    ZRRectMatrix q;
    ASSERT_TRUE(ToRect(a).QRDecompositionH(r, q));
    const ColMatrix tall = c.rows < c.cols ? Transposed(a) : a;  // what Q T gives
    const int m = tall.cols;
    ColMatrix t(tall.rows, m);
    double det = 1.0, detRef = 1.0, frob = 0.0, frobRef = 0.0;
    for (int i = 0; i < m; ++i) {
      for (int j = i; j < m; ++j) t(i, j) = r.GetElem(i, j), frob += t(i, j) * t(i, j);
      det *= std::fabs(t(i, i));
    }
    for (double s : SingularValues(a)) detRef *= s, frobRef += s * s;
    const ColMatrix qc = FromRect(q), id = zrtest::Identity(tall.rows);
    EXPECT_LT(zrtest::ResidualRatio(Multiply(Transposed(qc), qc), id, id), kRatio);
    EXPECT_LT(zrtest::ResidualRatio(Multiply(qc, t), tall, tall), kRatio);
    EXPECT_LE(zrtest::RelErr(det, detRef), 1e-11);  // m M eps cond(A); cond below 1e3 here
    EXPECT_LE(zrtest::RelErr(std::sqrt(frob), std::sqrt(frobRef)), 1e-13);  // M eps, both sides
  }
}

TEST(ZRRectMatrixQR, SignRuleExactOnTriangularInput) {
  // Each step's column is (A(k, k), 0, ..): reflected by u = +-e_k to -A(k, k) whatever its
  // sign (a = -A(k, k) when positive, |A(k, k)| otherwise), so T = -A and Q = diag(-1, -1,
  // -1, 1, 1) exactly, for the matrix and for its transpose.
  const Grid upper = {{2, -1, 4}, {0, -3, 5}, {0, 0, 0.5}, {0, 0, 0}, {0, 0, 0}};
  for (bool wide : {false, true}) {
    SCOPED_TRACE(wide);
    ZRRectMatrix a = Make(upper), q(1, 1, true);
    if (wide) a.Transpose();
    ZRSymMatrix r(7, true);
    ASSERT_TRUE(a.QRDecompositionH(r, q));
    ASSERT_EQ(r.GetNRows(), 3);
    for (int i = 0; i < 3; ++i)
      for (int j = i; j < 3; ++j) EXPECT_EQ(r.GetElem(i, j), -upper[i][j]) << i << "," << j;
    for (int i = 0; i < 5; ++i)
      for (int j = 0; j < 5; ++j) EXPECT_EQ(q.GetElem(i, j), i != j ? 0.0 : i < 3 ? -1.0 : 1.0);
  }
}

TEST(ZRRectMatrixQR, ZeroColumnStopsWithReflectorsSoFar) {
  // (3, 4, 0) reflects to (-5, 0, 0) through u = (8, 4, 0) / sqrt(80), H = I - 2 u u' =
  // (-0.6 -0.8 0; -0.8 0.6 0; 0 0 1); the second column is zero, so b is 0 at step 1.
  ZRRectMatrix q;
  ZRSymMatrix r;
  EXPECT_FALSE(Make({{3, 0}, {4, 0}, {0, 0}}).QRDecompositionH(r, q));
  EXPECT_NEAR(r.GetElem(0, 0), -5.0, 5 * kEps);
  EXPECT_EQ(r.GetElem(1, 1), 0.0);
  const ColMatrix h = FromRows({{-0.6, -0.8, 0}, {-0.8, 0.6, 0}, {0, 0, 1}});
  EXPECT_LE(MaxRelDiff(FromRect(q).a, h.a), 4 * kEps);
  // No rows, and a NaN (which would otherwise fill T and Q).
  EXPECT_FALSE(ZRRectMatrix(0, 3, true).QRDecompositionH(r, q));
  EXPECT_FALSE(Make({{1, kNaN}, {2, 3}}).QRDecompositionH(r, q));
}

TEST(ZRRectMatrixSolve, MatchesDgesv) {
  for (int n : {1, 5, 40}) {
    SCOPED_TRACE(n);
    const ColMatrix a = RandomGeneral(n, n, 7 * n);
    const Vec b = RandomGeneral(n, 1, n).a;
    Vec x, ref = b;
    ASSERT_TRUE(ToRect(a).SolveLinearSquare(b, x, 1e-12));
    EXPECT_LT(zrtest::SolveResidualRatio(a, x, b), kRatio);
    ColMatrix lu = a;
    std::vector<int> ipiv(n);
    int info = 0, one = 1;
    dgesv_(&n, &one, lu.data(), &n, ipiv.data(), ref.data(), &n, &info);
    EXPECT_LE(MaxRelDiff(x, ref), 1e-11);  // both backward stable: n eps cond(A), cond < 1e4
  }
}

TEST(ZRRectMatrixSolve, RefusalsLeaveXUntouched) {
  ZRRectMatrix hilbert(10, 10, true);  // cond_1 about 3.5e13
  for (int i = 0; i < 10; ++i)
    for (int j = 0; j < 10; ++j) hilbert.SetElem(i, j, 1.0 / (i + j + 1));
  const ZRRectMatrix four = Make({{4}});  // rcond of a 1 x 1 matrix is exactly 1
  struct {
    int line;
    const ZRRectMatrix & a;
    Vec b;
    double tol;
    bool want;
  } const cases[] = {
      {__LINE__, hilbert, Vec(10, 1.0), 1e-10, false},
      {__LINE__, hilbert, Vec(10, 1.0), 0.0, true},
      {__LINE__, four, {2}, 1.0, false},  // rcond must be strictly above tol
      {__LINE__, four, {2}, std::nextafter(1.0, 0.0), true},
      {__LINE__, four, {2}, -1.0, false},
      {__LINE__, four, {}, 0.0, false},
      {__LINE__, Make({{1, 2, 3}, {4, 5, 6}}), {1, 1}, 0.0, false},
      {__LINE__, Make({{1, kNaN}, {2, 3}}), {1, 1}, 0.0, false},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    Vec x = {42.0};
    EXPECT_EQ(c.a.SolveLinearSquare(c.b, x, c.tol), c.want);
    EXPECT_EQ(x.size(), c.want ? c.a.GetNRows() : 1u);
  }
}

TEST(ZRRectMatrixEstimate, FullRankMatchesDgelsd) {
  for (int rows : {30, 4, 1}) {  // square ones are solved directly
    SCOPED_TRACE(rows);
    const int cols = std::min(rows, 5);
    const ColMatrix a = RandomGeneral(rows, cols, rows), b = RandomGeneral(rows, 1, 2);
    const Vec s = SingularValues(a);
    Vec x;
    ASSERT_EQ(ToRect(a).EstimateLinearGI(b.a, x, 1e-10), 0);
    const double cond = s.front() / s.back();  // squared by the normal equations
    EXPECT_LE(MaxRelDiff(x, LeastSquares(a, b, -1.0).a), 100 * cond * cond * kEps);
  }
}

TEST(ZRRectMatrixEstimate, AliasedColumnGetsZeroAndTheSameFit) {
  for (int rows : {20, 4}) {  // 4 x 4: refused as a square solve, then the normal equations
    SCOPED_TRACE(rows);
    ColMatrix a = RandomGeneral(rows, 4, rows), x(4, 1);
    for (int i = 0; i < rows; ++i) a(i, 3) = a(i, 0) - a(i, 1);
    const ColMatrix b = RandomGeneral(rows, 1, 3);
    ASSERT_EQ(ToRect(a).EstimateLinearGI(b.a, x.a, 1e-9), 1);
    EXPECT_EQ(x(3, 0), 0.0);
    const ColMatrix fit = Multiply(a, LeastSquares(a, b, 1e-10));
    EXPECT_LE(MaxRelDiff(Multiply(a, x).a, fit.a), 1e-12);
  }
  const ZRRectMatrix a = Make({{1, 2}, {3, 4}, {5, 6}});
  Vec x = {7.0};
  for (double tol : {0.0, kNaN}) EXPECT_EQ(a.EstimateLinearGI({1, 2, 3}, x, tol), -1);
  EXPECT_EQ(a.EstimateLinearGI({1, 2}, x, 1e-9), -1);  // b shorter than the rows
  EXPECT_EQ(ZRRectMatrix(0, 2, true).EstimateLinearGI({}, x, 1e-9), -1);
  EXPECT_EQ(x, Vec{7.0});
}

TEST(ZRRectMatrixRedundancy, ToleranceIsSquaredAtItsBoundary) {
  // Vectors (1, 0, 0, 0) and (3, 1, 1, 1): the second's squared distance from the first is
  // exactly 3, its squared length 12, so it is redundant once tol^2 12 >= 3, from tol = 0.5
  // on (0.25 * 12 == 3 exactly); an unsquared tol would drop it already at 0.25.
  const ColMatrix byCols = FromRows({{1, 3}, {0, 1}, {0, 1}, {0, 1}});
  struct {
    int line;
    double tol;
    int want;
  } const cases[] = {{__LINE__, 0.25, 0},
                     {__LINE__, std::nextafter(0.5, 0.0), 0},
                     {__LINE__, 0.5, 1},
                     {__LINE__, -1.0, -1},
                     {__LINE__, kNaN, -1}};
  for (const auto & c : cases) {
    for (bool rows : {true, false}) {
      SCOPED_TRACE(testing::Message() << "line " << c.line << (rows ? " rows" : " columns"));
      ZRRectMatrix m = ToRect(rows ? Transposed(byCols) : byCols), d;
      ZRBitSet set(Bits{false, false, true});  // LTChol keeps a longer set's size
      std::vector<int> idx = {9};
      const int kept = c.want < 0 ? -1 : 2 - c.want;
      ASSERT_EQ(m.FindRedundancies(c.tol, set, rows), c.want);
      EXPECT_EQ(set,
                ZRBitSet(c.want < 0 ? Bits{false, false, true} : Bits{true, c.want == 0, false}));
      EXPECT_EQ(m.FindNonRedunIndices(c.tol, idx, rows), kept);
      const std::vector<int> wantIdx = c.want < 0 ? std::vector<int>{9}
                                       : c.want   ? std::vector<int>{0}
                                                  : std::vector<int>{0, 1};
      EXPECT_EQ(idx, wantIdx);
      EXPECT_EQ(m.ExtractFullRank(c.tol, d, idx, rows), kept);
      if (kept > 0) {
        EXPECT_EQ(rows ? d.GetNRows() : d.GetNCols(), kept);
      }
    }
  }
}

TEST(ZRRectMatrixEstimable, OneWayLayout) {
  // y = mu + alpha_g, three groups of two, X = [1 d1 d2 d3] with d1 aliased (group 1 the
  // baseline): G is the inverse of the block on columns 0, 2, 3, (6 2 2; 2 2 0; 2 0 2), by
  // hand (0.5 -0.5 -0.5; -0.5 1 0.5; -0.5 0.5 1), and X'X G on those columns has rows
  // (1 0 0), (1 -1 -1), (0 1 0), (0 0 1). The set's gap checks that H is read compactly.
  const ZRRectMatrix h = Make({{1, 0, 0}, {1, -1, -1}, {0, 1, 0}, {0, 0, 1}});
  const ZRBitSet set(Bits{true, false, true, true});
  struct {
    int line;
    Grid l;
    double tol;
    bool want;
  } const cases[] = {
      {__LINE__, {{1, 1, 0, 0}}, 1e-8, true},                 // mean of group 1
      {__LINE__, {{1e6, 0, 0, 1e6}}, 1e-8, true},             // mean of group 3, scaled
      {__LINE__, {{0, 1, -1, 0}, {0, 0, 0, 0}}, 1e-8, true},  // a contrast; zero rows skipped
      {__LINE__, {{1, 0, 0, 0}}, 1e-8, false},                // the intercept alone
      {__LINE__, {{0, 1, 0, 0}}, 1e-8, false},                // an effect alone
      {__LINE__, {{1, 1, 0, 0}, {0, 0, 1, 0}}, 1e-8, false},  // one row fails: all fail
      // (2, 1, 0, 0) misses by (0, 1, 0, 0) / sqrt(5): a squared distance of 0.2, which
      // passes at tol 0.5 (0.25) and fails at 0.4 (0.16; unsquared it would pass).
      {__LINE__, {{2, 1, 0, 0}}, 0.5, true},
      {__LINE__, {{2, 1, 0, 0}}, 0.4, false},
      {__LINE__, {{1, 1, 0, 0}}, 0.0, false},
      {__LINE__, {{1, 1, 0, kNaN}}, 1e-8, false},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(Make(c.l).IsEstimable(h, set, c.tol), c.want);
  }
  ZRRectMatrix l = Make({{1, 1, 0, 0}});
  EXPECT_FALSE(ZRRectMatrix().IsEstimable(h, set, 1e-8));
  EXPECT_FALSE(l.IsEstimable(h, ZRBitSet(Bits{true, false, true}), 1e-8));  // set too short
  EXPECT_FALSE(l.IsEstimable(Make({{1, 0, 0}}), set, 1e-8));                // H's rows
  EXPECT_FALSE(l.IsEstimable(Make(Grid(4, Vec{1, 0})), set, 1e-8));         // H too narrow
}

TEST(ZRRectMatrixProjection, ResidualsMatchLeastSquares) {
  // Z's column 3 is column 0 + column 2 (aliased); X's column 2 lies in Z's span.
  const int n = 25;
  ColMatrix z = RandomGeneral(n, 4, 11), x = RandomGeneral(n, 3, 12);
  for (int i = 0; i < n; ++i) {
    z(i, 3) = z(i, 0) + z(i, 2);
    x(i, 2) = 2.0 * z(i, 1) - z(i, 0);
  }
  const ColMatrix fit = Multiply(z, LeastSquares(z, x, 1e-10));
  ZRRectMatrix resid = ToRect(x);
  ZRBitSet zSet, xSet;
  ASSERT_TRUE(resid.ResidOfOrthProjection(ToRect(z), 1e-9, zSet, xSet));
  EXPECT_EQ(zSet, ZRBitSet(Bits{true, true, true, false}));
  EXPECT_EQ(xSet, ZRBitSet(Bits{true, true, false}));
  const Vec got = FromRect(resid).a;
  for (int k = 0; k < n * 3; ++k) {
    // Sweeping squares cond(Z), here below 10: 100 eps cond^2 of elements below 4.
    EXPECT_NEAR(got[k], x.a[k] - fit.a[k], 1e-11) << k;
  }
  // Refused: rows that differ, tol not above 0; X unchanged.
  EXPECT_FALSE(resid.ResidOfOrthProjection(ToRect(RandomGeneral(n - 1, 2, 1)), 1e-9, zSet, xSet));
  EXPECT_FALSE(resid.ResidOfOrthProjection(ToRect(z), 0.0, zSet, xSet));
  EXPECT_NEAR(resid.GetElem(0, 0), x(0, 0) - fit(0, 0), 1e-11);
}

TEST(ZRRectMatrixColumns, SingleNonZeroRowsAndSizeRules) {
  // Row 0 fixes column 0 and row 3 column 2; row 1 has two non-zeros; column 3 is zero.
  const ZRRectMatrix m = Make({{1, 0, 0, 0}, {0, 2, 3, 0}, {0, 0, 0, 0}, {0, 0, 5, 0}});
  struct {
    int line;
    Bits cols;
    int want;
    Bits out;
  } const cases[] = {
      {__LINE__, {true, true, true, true}, 1, {false, true, false, true}},
      // Column 2 left out: row 1 then fixes column 1.
      {__LINE__, {true, true, false, true}, 0, {false, false, false, true}},
      // Shorter: columns past its end count in the rows and stay set in out (column 2).
      {__LINE__, {true, true}, 2, {false, true, true, true}},
      {__LINE__, {true, true, true, true, true, true}, 1, {false, true, false, true}},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ZRBitSet out;
    EXPECT_EQ(m.CheckAddColRedundancies(ZRBitSet(c.cols), out), c.want);
    EXPECT_EQ(out, ZRBitSet(c.out));
  }
  ZRBitSet out;
  EXPECT_EQ(ZRRectMatrix(0, 3, true).CheckAddColRedundancies(ZRBitSet(Bits(3, true)), out), 3);
  int col = 7;
  EXPECT_FALSE(m.IsRowZeroButOne(1, ZRBitSet(Bits(4, true)), col));
  EXPECT_EQ(col, 1);  // the first of two
  EXPECT_TRUE(Make({{0, kNaN}}).IsRowZeroButOne(0, ZRBitSet(), col));
  EXPECT_EQ(col, 1);

  // Expand: the k-th set bit gets row (column) k; the scan stops after the last one.
  const ZRRectMatrix a = Make({{1, 2}, {3, 4}});
  const ZRBitSet spread(Bits{true, false, true, true, false});
  ZRRectMatrix d;
  ASSERT_TRUE(a.Expand(spread, true, d));
  EXPECT_EQ(FromRect(d).a, FromRows({{1, 2}, {0, 0}, {3, 4}, {0, 0}, {0, 0}}).a);
  ASSERT_TRUE(a.Expand(spread, false, d));
  EXPECT_EQ(FromRect(d).a, FromRows({{1, 0, 2, 0, 0}, {3, 0, 4, 0, 0}}).a);
}

// A symmetric matrix that reports itself diagonal: only its diagonal may be read.
class DiagTyped : public ZRSymMatrix {
 public:
  using ZRSymMatrix::ZRSymMatrix;
  SymMatrixType GetType() const override { return kDiagSymMatrix; }
};

// The rows x cols block of a from (r0, c0).
ColMatrix Block(const ColMatrix & a, int r0, int c0, int rows, int cols) {
  ColMatrix b(rows, cols);
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j) b(i, j) = a(r0 + i, c0 + j);
  return b;
}

TEST(ZRRectMatrixMixed, ProductsAndTracesWithSymmetricMatrices) {
  const ColMatrix a = RandomGeneral(3, 7, 1), s = zrtest::RandomSymmetric(7, 2);
  const ColMatrix b = RandomGeneral(7, 7, 3), s3 = Block(s, 0, 0, 3, 3);
  const ZRSymMatrix sym = zrtest::ToSym(s);
  const double tol = 7 * 9 * kEps;  // (p + 2) eps times sums of p |terms| below 1, p = 7
  ZRRectMatrix c;
  ASSERT_TRUE(ToRect(a).ComputeMatrixProduct(sym, c));
  EXPECT_LE(MaxRelDiff(FromRect(c).a, Multiply(a, s).a), tol);
  EXPECT_EQ(ToRect(a).DotProductRowCol(2, sym, 4), c.GetElem(2, 4));
  // R1 (2 x 3) at rows 2, 3 and R2 (3 x 3) at rows 1 .. 3 of S's block from (1, 1) meet
  // the part of S from (3, 2).
  const ColMatrix r1 = RandomGeneral(2, 3, 4), r2 = RandomGeneral(3, 3, 5);
  ASSERT_TRUE(c.ComputeR1TransSR2(ToRect(r1), 2, ToRect(r2), 1, sym, 1, 5));
  const ColMatrix sandwich = Multiply(Transposed(r1), Multiply(Block(s, 3, 2, 2, 3), r2));
  EXPECT_LE(MaxRelDiff(FromRect(c).a, sandwich.a), 3 * tol);

  double tr = 0.0, trFull = 0.0, trPart = 0.0, trDiag = 0.0;
  for (int i = 0; i < 7; ++i)
    for (int j = 0; j < 7; ++j) trFull += b(i, j) * s(j, i);
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) trPart += b(4 + i, 4 + j) * s3(j, i);
    trDiag += b(4 + i, 4 + i) * s3(i, i);
  }
  ASSERT_TRUE(ToRect(b).TraceOfProductSqS(sym, tr));
  EXPECT_NEAR(tr, trFull, 7 * tol);
  ASSERT_TRUE(ToRect(b).TraceOfProductSubMatSym(4, zrtest::ToSym(s3), tr));
  EXPECT_NEAR(tr, trPart, 3 * tol);
  DiagTyped diag(3, true);
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j <= i; ++j) diag.SetElem(i, j, s3(i, j));
  ASSERT_TRUE(ToRect(b).TraceOfProductSubMatSym(4, diag, tr));
  EXPECT_NEAR(tr, trDiag, 3 * tol);

  ZRRectMatrix sum = ToRect(b), diff = ToRect(b);
  ZRSymMatrix symCopy = sym;
  ASSERT_TRUE(sum.ComputeAXpY(0.5, symCopy) && diff.SubtractSymMatrix(sym, 2.0));
  EXPECT_EQ(sum.GetElem(1, 5), b(1, 5) + 0.5 * s(1, 5));  // above the stored triangle
  EXPECT_EQ(diff.GetElem(5, 1), b(5, 1) - 2.0 * s(5, 1));

  // Shapes refused, outputs as documented.
  ZRRectMatrix wide = ToRect(a), out = Make({{9}});
  EXPECT_FALSE(wide.ComputeMatrixProduct(zrtest::ToSym(s3), out));
  EXPECT_EQ(wide.DotProductRowCol(3, sym, 0), ZRCommon_920::kSysMisValue);
  EXPECT_FALSE(wide.ComputeAXpY(1.0, symCopy) || wide.SubtractSymMatrix(sym, 1.0));
  EXPECT_FALSE(wide.TraceOfProductSqS(sym, tr) || ToRect(b).TraceOfProductSubMatSym(5, diag, tr));
  EXPECT_EQ(tr, 0.0);
  EXPECT_FALSE(out.ComputeR1TransSR2(ToRect(r1), 4, ToRect(r2), 1, sym, 1, 5));  // past the block
  EXPECT_FALSE(out.ComputeR1TransSR2(ToRect(r1), 2, Make({{1, 2}}), 1, sym, 1, 5));  // widths
  EXPECT_EQ(FromRect(out).a, Vec{9.0});
}

}  // namespace
