// Tests of the sweep family and CholInverse: the blocked Sweep against SweepOrig bit for
// bit, round trips, least squares and log determinants against LAPACK, refused pivots and
// argument checks, generalised inverses with aliased rows.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include "support/colmajor.h"
#include "support/lapack.h"
#include "support/matrixconv.h"
#include "support/symmatrices.h"
#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace {

using ZRMath_920::ZRBitSet;
using ZRMath_920::ZRSymMatrix;
using zrtest::ColMatrix;
using zrtest::FromSym;
using zrtest::Norm1;
using zrtest::Packed;
using Vec = std::vector<double>;

const double kNaN = std::numeric_limits<double>::quiet_NaN();

// Reports itself as not dense, as a diagonal or block matrix would.
class NotDense : public ZRSymMatrix {
 public:
  using ZRSymMatrix::ZRSymMatrix;
  SymMatrixType GetType() const override { return kDiagSymMatrix; }
};

std::vector<std::uint64_t> Bits(const ZRSymMatrix & s) {
  const Vec v = Packed(s);
  std::vector<std::uint64_t> bits(v.size());
  if (!v.empty()) std::memcpy(bits.data(), v.data(), v.size() * sizeof v[0]);
  return bits;
}

Vec Diag(const ZRSymMatrix & s) {
  Vec d;
  s.GetDiagonal(d);
  return d;
}

// Lower triangle given by rows.
ZRSymMatrix Make(const std::vector<Vec> & rows) {
  ZRSymMatrix s(static_cast<int>(rows.size()), true);
  for (int i = 0; i < s.GetNRows(); ++i)
    for (int j = 0; j <= i; ++j) s.SetElem(i, j, rows[i][j]);
  return s;
}

// X'X for a random m x p X whose column `alias` (if any) is the sum of columns 0 and 1.
ColMatrix CrossProducts(int m, int p, unsigned seed, int alias) {
  ColMatrix x = zrtest::RandomGeneral(m, p, seed);
  for (int i = 0; alias >= 2 && i < m; ++i) x(i, alias) = x(i, 0) + x(i, 1);
  return zrtest::Multiply(zrtest::Transposed(x), x);
}

// ||G A - I||_1 / (n ||A||_1 ||G||_1 eps): G is the inverse of A.
double InverseRatio(const ColMatrix & a, const ColMatrix & g) {
  return zrtest::ResidualRatio(zrtest::Multiply(g, a), zrtest::Identity(a.rows), a) / Norm1(g);
}

// ||A G A - A||_1 / (n ||A||_1^2 ||G||_1 eps): G is a generalised inverse of A.
double GInverseRatio(const ColMatrix & a, const ColMatrix & g) {
  const ColMatrix aga = zrtest::Multiply(zrtest::Multiply(a, g), a);
  return zrtest::ResidualRatio(aga, a, a) / (Norm1(a) * Norm1(g));
}

TEST(ZRSymMatrixSweep, BlockedEqualsPlainBitForBit) {
  // Entered rows, aliased and indefinite pivots, forward and backward, every k.
  for (int n = 1; n <= 40; ++n) {
    for (bool indefinite : {false, true}) {
      SCOPED_TRACE(testing::Message() << "n " << n << (indefinite ? " indefinite" : ""));
      const ColMatrix full = indefinite ? zrtest::RandomSymmetric(n, n)
                                        : CrossProducts(n + 3, n, n, n >= 3 ? n - 1 : -1);
      ZRSymMatrix a = zrtest::ToSym(full), b = a;
      const Vec diag = Diag(a);
      ZRBitSet sa(n), sb(n);
      std::vector<int> order;
      for (int k = 1; k < n; k += 3) order.push_back(k);
      for (int k = 0; k < n; ++k) order.push_back(k);
      for (int k = n - 1; k >= 0; k -= 2) order.push_back(k);
      for (int k : order) {
        SCOPED_TRACE(k);
        ASSERT_EQ(a.Sweep(k, 1e-9, diag, sa, true), b.SweepOrig(k, 1e-9, diag, sb, true));
        ASSERT_TRUE(sa == sb);
        ASSERT_EQ(Bits(a), Bits(b));
      }
    }
  }
}

TEST(ZRSymMatrixSweep, RoundTripInverseAndLogDeterminant) {
  ZRSymMatrix a = Make({{4}, {2, 3}});
  ZRBitSet set(2);
  ASSERT_TRUE(a.Sweep(0, 1e-8, Vec{4, 3}, set, true));
  EXPECT_EQ(Packed(a), (Vec{-0.25, 0.5, 2.0}));
  EXPECT_TRUE(set.IsIn(0));
  ASSERT_TRUE(a.Sweep(0, 1e-8, Vec{4, 3}, set, true));
  EXPECT_EQ(Bits(a), Bits(Make({{4}, {2, 3}})));
  EXPECT_FALSE(set.IsIn(0));

  for (int n : {1, 2, 5, 17, 40}) {
    SCOPED_TRACE(n);
    ColMatrix l = zrtest::RandomSpdCol(n, 100 + n);
    const ColMatrix full = l;
    const ZRSymMatrix orig = zrtest::ToSym(full);
    for (int k = 0; k < n; ++k) {  // forward then back restores A
      ZRSymMatrix s = orig;
      ZRBitSet bits(n);
      ASSERT_TRUE(s.Sweep(k, 1e-8, Diag(orig), bits, true));
      ASSERT_TRUE(s.Sweep(k, 1e-8, Diag(orig), bits, true));
      EXPECT_LT(zrtest::ResidualRatio(FromSym(s), full, full), 30.0) << k;
    }
    int info = 0;
    dpotrf_("L", &n, l.data(), &n, &info);
    ASSERT_EQ(info, 0);
    Vec want(n + 1, 0.0);  // log det of the leading blocks, from LAPACK's factor
    for (int i = 0; i < n; ++i) want[i + 1] = want[i] + 2.0 * std::log(l(i, i));
    for (bool logPivot : {true, false}) {
      const int m = logPivot ? n : n / 2 + 1;  // all rows in (-A^-1), or the leading m
      ZRSymMatrix s = orig;
      ZRBitSet bits;
      double logDet = 7.0;
      ASSERT_TRUE(s.SweepOnMany(m, 1e-10, logPivot, bits, logDet, true, nullptr));
      EXPECT_TRUE(bits.Size() == n && bits.InSet() == m);
      EXPECT_NEAR(logDet, logPivot ? want[m] : -want[m], 1e-13 * (1.0 + std::fabs(want[m])));
      if (!logPivot) continue;
      ColMatrix inv = FromSym(s);
      for (double & x : inv.a) x = -x;
      EXPECT_LT(InverseRatio(full, inv), 30.0);
    }
  }
}

// Coefficients and residual sum of squares of the last column of xy on the columns cols,
// by dgels; the swept xy'xy must hold them in its last row.
void ExpectLeastSquares(const ZRSymMatrix & swept, const ColMatrix & xy,
                        const std::vector<int> & cols) {
  const int m = xy.rows, p = static_cast<int>(cols.size()), last = xy.cols - 1, one = 1,
            lwork = 64 * (m + p);
  ColMatrix xs(m, p);
  for (int j = 0; j < p; ++j)
    for (int i = 0; i < m; ++i) xs(i, j) = xy(i, cols[j]);
  Vec b(xy.a.end() - m, xy.a.end()), work(lwork);
  int info = 0;
  dgels_("N", &m, &p, &one, xs.data(), &m, b.data(), &m, work.data(), &lwork, &info);
  ASSERT_EQ(info, 0);
  double rss = 0.0;
  for (int i = p; i < m; ++i) rss += b[i] * b[i];
  constexpr double kTol = 1e-12;  // X'X of random X has condition near 10: ~1e3 eps
  for (int j = 0; j < p; ++j)
    EXPECT_NEAR(swept.GetElem(last, cols[j]), b[j], kTol * (1.0 + std::fabs(b[j]))) << cols[j];
  EXPECT_NEAR(swept.GetElem(last, last), rss, kTol * rss);
}

TEST(ZRSymMatrixSweep, LeastSquaresMatchDgelsAndTermsCanBeRemoved) {
  const int m = 30, p = 5;
  ColMatrix xy = zrtest::RandomGeneral(m, p + 1, 7);
  for (int i = 0; i < m; ++i) xy(i, p) += 2.0 * xy(i, 0) - xy(i, 3);  // y with a signal
  ZRSymMatrix c = zrtest::ToSym(zrtest::Multiply(zrtest::Transposed(xy), xy));
  ZRBitSet set;
  double logDet = 0.0;
  Vec diag = Diag(c);
  ASSERT_TRUE(c.SweepOnMany(p, 1e-10, true, set, logDet, true, diag.data()));
  EXPECT_EQ(set.InSet(), p);
  ExpectLeastSquares(c, xy, {0, 1, 2, 3, 4});
  // Intended: set isn't cleared, so a stepwise caller takes out terms 3 and 1 by sweeping
  // them again.
  ASSERT_TRUE(c.SweepOnSelected({3, 1}, 1e-10, set, true, diag.data()));
  EXPECT_FALSE(set.IsIn(3) || set.IsIn(1));
  ExpectLeastSquares(c, xy, {0, 2, 4});
}

TEST(ZRSymMatrixSweep, RefusalsLeaveMatrixAndSetUnchanged) {
  const double above = std::nextafter(1.0, 2.0);
  const Vec good{4, 3};
  struct {
    int line;
    Vec lower, diag;  // lower: the triangle by rows, order 1 or 2
    double tol;
    int entered, k, bits;  // entered: a row swept in first (-1 none)
    bool check, want;
  } const cases[] = {
      {__LINE__, {1.0}, {4.0}, 0.25, -1, 0, 1, true, false},  // pivot == tol * diag exactly
      {__LINE__, {above}, {4.0}, 0.25, -1, 0, 1, true, true},
      {__LINE__, {0.0}, {0.0}, 1e-8, -1, 0, 1, true, false},
      {__LINE__, {-2.0}, {2.0}, 1e-8, -1, 0, 1, true, false},
      {__LINE__, {kNaN}, {1.0}, 1e-8, -1, 0, 1, true, false},
      // Entered row 0 would reach a(0,0) = -4/3: -4/3 * tol * 4 is above -1 only for
      // tol < 3/16, although the pivot 0.75 passes 1.0 * tol for both tolerances.
      {__LINE__, {1.0, 0.5, 1.0}, {4.0, 1.0}, 0.2, 0, 1, 2, true, false},
      {__LINE__, {1.0, 0.5, 1.0}, {4.0, 1.0}, 0.1, 0, 1, 2, true, true},
      // Here a(0,0) would reach exactly -2 and -2 * 0.125 * 4 is -1: not above, refused.
      {__LINE__, {1.0, 0.5, 0.5}, {4.0, 1.0}, 0.125, 0, 1, 2, true, false},
      // Argument checks on 4 1 / 1 3.
      {__LINE__, {4, 1, 3}, good, 1e-8, -1, -1, 2, true, false},
      {__LINE__, {4, 1, 3}, good, 1e-8, -1, 2, 2, true, false},
      {__LINE__, {4, 1, 3}, good, 1e-8, -1, 2, 2, false, false},  // a bad k even unchecked
      {__LINE__, {4, 1, 3}, good, 0.0, -1, 0, 2, true, false},
      {__LINE__, {4, 1, 3}, good, kNaN, -1, 0, 2, true, false},
      {__LINE__, {4, 1, 3}, {4}, 1e-8, -1, 0, 2, true, false},
      {__LINE__, {4, 1, 3}, {4, -1}, 1e-8, -1, 0, 2, true, false},
      {__LINE__, {4, 1, 3}, {4, -1}, 1e-8, -1, 0, 2, false, true},
      // A NaN reference value is data: it passes the check and refuses its own pivot only.
      {__LINE__, {4, 1, 3}, {4, kNaN}, 1e-8, -1, 0, 2, true, true},
      {__LINE__, {4, 1, 3}, {kNaN, 3}, 1e-8, -1, 0, 2, true, false},
      {__LINE__, {4, 1, 3}, good, 1e-8, -1, 0, 1, true, false},
      {__LINE__, {4, 1, 3}, good, 1e-8, -1, 1, 1, false, true},  // outside the set: bit kept
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    const int n = c.lower.size() == 1 ? 1 : 2;
    ZRSymMatrix a(n, true);
    for (int k = 0; k < n * (n + 1) / 2; ++k) a.SetElem(k, c.lower[k]);
    ZRSymMatrix b = a;
    ZRBitSet sa(c.bits), sb = sa;
    if (c.entered >= 0) {
      ASSERT_TRUE(a.Sweep(c.entered, c.tol, c.diag, sa, true) &&
                  b.SweepOrig(c.entered, c.tol, c.diag, sb, true));
    }
    const auto before = Bits(a);
    const ZRBitSet setBefore = sa;
    EXPECT_EQ(a.Sweep(c.k, c.tol, c.diag, sa, c.check), c.want);
    EXPECT_EQ(b.SweepOrig(c.k, c.tol, c.diag, sb, c.check), c.want);
    EXPECT_EQ(Bits(a) == before, !c.want);
    EXPECT_TRUE(c.want || sa == setBefore);
    EXPECT_EQ(sa.InSet() - setBefore.InSet(), c.want && c.k < c.bits ? 1 : 0);
  }
}

TEST(ZRSymMatrixSweep, SweepOnManyArgumentsAndRefusedPivots) {
  // Row 1's pivot after row 0 is 0.5, refused by 0.2 * 4.5: skipped, and the loop goes on.
  const ZRSymMatrix orig = Make({{1}, {2, 4.5}, {0, 0, 3}});
  const Vec d{1, 4.5, 3};
  struct {
    int line;
    int n;
    double tol;
    Vec diag;
    int bits;  // all set on entry
    bool check, want;
    double logDet;
    int wantBits;
  } const cases[] = {
      {__LINE__, 3, 0.2, d, 3, true, true, std::log(3.0), 2},
      {__LINE__, 0, 0.2, d, 0, false, true, 0.0, 0},
      {__LINE__, 0, 0.2, d, 0, true, false, 7.0, 0},
      {__LINE__, 4, 0.2, d, 0, true, false, 7.0, 0},
      {__LINE__, 3, 0.0, d, 0, true, false, 7.0, 0},
      {__LINE__, 3, 0.2, {1, -4.5, 3}, 0, true, false, 7.0, 0},
      {__LINE__, 3, 0.2, d, 2, true, false, 7.0, 2},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ZRSymMatrix s = orig;
    ZRBitSet set(c.bits);
    if (c.bits > 0) set.SetRange(0, c.bits - 1, true);
    Vec diag = c.diag;
    double logDet = 7.0;
    EXPECT_EQ(s.SweepOnMany(c.n, c.tol, true, set, logDet, c.check, diag.data()), c.want);
    EXPECT_NEAR(logDet, c.logDet, 1e-15);
    EXPECT_EQ(set.InSet(), c.wantBits);
    EXPECT_EQ(s.GetElem(2, 2) == 3.0, !(c.want && c.n == 3));
  }
  // With check, the caller's diag is raised in place to at least 1.0, and the pivot 0.5
  // then fails 0.6 * 1.0 where it would have passed 0.6 * 0.5.
  for (int op = 0; op < 3; ++op) {
    SCOPED_TRACE(op);
    Vec diag{0.5, 2.0};
    ZRSymMatrix s = Make({{0.5}, {0.1, 2.0}});
    ZRBitSet set;
    double logDet = 0.0;
    ASSERT_TRUE(op == 0   ? s.SweepOnMany(2, 0.6, true, set, logDet, true, diag.data())
                : op == 1 ? s.SweepOnSelected({0, 1}, 0.6, set, true, diag.data())
                          : s.SweepOnAll(0.6, set, true, false, false, diag.data()));
    EXPECT_EQ(diag, (Vec{1.0, 2.0}));
    EXPECT_TRUE(!set.IsIn(0) && set.IsIn(1));
  }
}

TEST(ZRSymMatrixSweep, SweepOnAllGivesGeneralisedInverse) {
  ZRSymMatrix tiny = Make({{1}, {2, 4}});  // collinear rows: (1 / a(0, 0)) and zeros
  ZRBitSet set(5);
  ASSERT_TRUE(tiny.SweepOnAll(1e-8, set, true, true, true, nullptr));
  EXPECT_TRUE(set.Size() == 2 && set.IsIn(0) && !set.IsIn(1));
  EXPECT_EQ(Packed(tiny), (Vec{1, 0, 0}));

  const ColMatrix a = CrossProducts(12, 6, 3, 4);  // column 4 = column 0 + column 1
  ZRSymMatrix g = zrtest::ToSym(a);
  ASSERT_TRUE(g.SweepOnAll(1e-9, set, true, true, true, nullptr));
  EXPECT_TRUE(set.InSet() == 5 && !set.IsIn(4));
  for (int j = 0; j < 6; ++j) EXPECT_EQ(g.GetElem(4, j), 0.0);
  for (int i = 0; i < 6; ++i) EXPECT_TRUE(i == 4 || g.GetElem(i, i) > 0.0);
  EXPECT_LT(GInverseRatio(a, FromSym(g)), 30.0);

  // Intended: refused arguments still get the tidying; with no row entered, zeroRedundant
  // clears everything.
  struct {
    int line;
    double tol, d1;
    bool zero;
    Vec want;
  } const refused[] = {
      {__LINE__, 0.0, 3.0, false, {-2, -1, -3}},  // no sweep, signs flipped
      {__LINE__, 1e-8, -3.0, false, {-2, -1, -3}},
      {__LINE__, 0.0, 3.0, true, {0, 0, 0}},
  };
  for (const auto & c : refused) {
    SCOPED_TRACE(c.line);
    ZRSymMatrix s = Make({{2}, {1, 3}});
    Vec diag{2.0, c.d1};
    EXPECT_FALSE(s.SweepOnAll(c.tol, set, true, c.zero, true, diag.data()));
    EXPECT_TRUE(set.Size() == 2 && set.InSet() == 0);
    EXPECT_EQ(Packed(s), c.want);
  }
}

TEST(ZRSymMatrixCholInverse, FullRankInvertsAndSingularGivesRank) {
  for (int n : {1, 7, 60}) {
    SCOPED_TRACE(n);
    ColMatrix l = zrtest::RandomSpdCol(n, 60 + n);
    const ZRSymMatrix a = zrtest::ToSym(l);
    int info = 0;
    dpotrf_("L", &n, l.data(), &n, &info);
    ASSERT_EQ(info, 0);
    double smallest = l(0, 0), minPivot = 0.0;
    for (int i = 1; i < n; ++i) smallest = std::fmin(smallest, l(i, i));
    ZRSymMatrix out, self = a;  // out may be the object itself
    ASSERT_EQ(a.CholInverse(Diag(a), 1e-10, out, minPivot), n);
    EXPECT_NEAR(minPivot, smallest, 1e-13 * smallest);
    EXPECT_LT(InverseRatio(FromSym(a), FromSym(out)), 30.0);
    ASSERT_EQ(self.CholInverse(Diag(a), 1e-10, self), n);
    EXPECT_EQ(Bits(self), Bits(out));
  }
  const ColMatrix a = CrossProducts(10, 5, 9, 3);  // column 3 = column 0 + column 1
  const ZRSymMatrix s = zrtest::ToSym(a);
  ZRSymMatrix out;
  ZRBitSet set;
  ASSERT_EQ(s.CholInverse(Diag(s), 1e-9, out, set), 4);
  EXPECT_TRUE(set.InSet() == 4 && !set.IsIn(3));
  for (int j = 0; j < 5; ++j) EXPECT_EQ(out.GetElem(3, j), 0.0);
  EXPECT_LT(GInverseRatio(a, FromSym(out)), 30.0);

  // Failures: -1, out unchanged, for an out that isn't dense or a short diag.
  const ZRSymMatrix two = Make({{4}, {1, 3}});
  NotDense notDense(2, true);
  ZRSymMatrix one(1, true);
  double minPivot = 0.0;
  EXPECT_EQ(two.CholInverse({4, 3}, 1e-8, notDense, minPivot), -1);
  EXPECT_EQ(minPivot, ZRCommon_920::kSysMisValue);
  EXPECT_EQ(two.CholInverse({4, 3}, 1e-8, notDense, set), -1);
  EXPECT_EQ(two.CholInverse({4, 3}, 1e-8, notDense), -1);
  EXPECT_EQ(notDense.GetElem(1, 0), 0.0);
  EXPECT_EQ(two.CholInverse({4}, 1e-8, one), -1);
  EXPECT_EQ(one.GetNRows(), 1);
}

}  // namespace
