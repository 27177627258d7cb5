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
#include "support/symmatrices.h"
#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace {

using ZRMath_920::ZRBitSet;
using ZRMath_920::ZRSymMatrix;
using zrtest::ColMatrix;
using Vec = std::vector<double>;

constexpr double kEps = 2.220446049250313e-16;
const double kNaN = std::numeric_limits<double>::quiet_NaN();

// Reports itself as not dense, as a diagonal or block matrix would.
class NotDense : public ZRSymMatrix {
 public:
  using ZRSymMatrix::ZRSymMatrix;
  SymMatrixType GetType() const override { return kDiagSymMatrix; }
};

std::vector<std::uint64_t> Bits(const ZRSymMatrix & s) {
  const int n = s.GetNRows();
  std::vector<std::uint64_t> bits(static_cast<std::size_t>(n) * (n + 1) / 2);
  for (std::size_t k = 0; k < bits.size(); ++k) {
    const double x = s.GetElem(static_cast<int>(k));
    std::memcpy(&bits[k], &x, sizeof x);
  }
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
  if (alias >= 2)
    for (int i = 0; i < m; ++i) x(i, alias) = x(i, 0) + x(i, 1);
  return zrtest::Multiply(zrtest::Transposed(x), x);
}

// ||got - want||_1 / (n scale eps): the scaled residual of an identity holding to
// rounding; scale is the product of the norms the identity multiplies.
double Ratio(const ColMatrix & got, const ColMatrix & want, double scale) {
  ColMatrix d = got;
  for (std::size_t k = 0; k < d.a.size(); ++k) d.a[k] -= want.a[k];
  return zrtest::Norm1(d) / (got.rows * scale * kEps);
}

// ||A G A - A||_1 / (n ||A||^2 ||G|| eps): G is a generalised inverse of A.
double GInverseRatio(const ColMatrix & a, const ColMatrix & g) {
  const double na = zrtest::Norm1(a);
  return Ratio(zrtest::Multiply(zrtest::Multiply(a, g), a), a, na * na * zrtest::Norm1(g));
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

TEST(ZRSymMatrixSweep, ExactTwoByTwoAndRoundTrip) {
  ZRSymMatrix a = Make({{4}, {2, 3}});
  ZRBitSet set(2);
  ASSERT_TRUE(a.Sweep(0, 1e-8, Vec{4, 3}, set, true));
  EXPECT_EQ(a.GetElem(0, 0), -0.25);
  EXPECT_EQ(a.GetElem(1, 0), 0.5);
  EXPECT_EQ(a.GetElem(1, 1), 2.0);
  EXPECT_TRUE(set.IsIn(0));
  ASSERT_TRUE(a.Sweep(0, 1e-8, Vec{4, 3}, set, true));
  EXPECT_EQ(Bits(a), Bits(Make({{4}, {2, 3}})));
  EXPECT_FALSE(set.IsIn(0));

  for (int n : {1, 2, 5, 17, 40}) {
    SCOPED_TRACE(n);
    const ZRSymMatrix orig = zrtest::RandomSpd(n, 100 + n);
    const ColMatrix full = zrtest::FromSym(orig);
    for (int k = 0; k < n; ++k) {
      ZRSymMatrix s = orig;
      ZRBitSet bits(n);
      ASSERT_TRUE(s.Sweep(k, 1e-8, Diag(orig), bits, true));
      ASSERT_TRUE(s.Sweep(k, 1e-8, Diag(orig), bits, true));
      EXPECT_LT(Ratio(zrtest::FromSym(s), full, zrtest::Norm1(full)), 30.0);
    }
    // All rows in, then all out again: A^-1 in between, A at the end.
    ZRSymMatrix s = orig;
    ZRBitSet bits;
    double logDet = 0.0;
    Vec diag = Diag(orig);  // kept by the caller across the series
    ASSERT_TRUE(s.SweepOnMany(n, 1e-8, true, bits, logDet, true, diag.data()));
    ColMatrix inv = zrtest::FromSym(s);
    for (double & x : inv.a) x = -x;
    EXPECT_LT(Ratio(zrtest::Multiply(inv, full), zrtest::Identity(n),
                    zrtest::Norm1(full) * zrtest::Norm1(inv)),
              30.0);
    std::vector<int> all(n);
    for (int k = 0; k < n; ++k) all[k] = k;
    ASSERT_TRUE(s.SweepOnSelected(all, 1e-8, bits, true, diag.data()));
    EXPECT_EQ(bits.InSet(), 0);
    EXPECT_LT(Ratio(zrtest::FromSym(s), full, zrtest::Norm1(full)), 30.0);
  }
}

// Coefficients and residual sum of squares of y on X by dgels; the swept [X y]'[X y]
// must hold them in its last row.
void ExpectLeastSquares(const ZRSymMatrix & swept, const ColMatrix & x, const Vec & y,
                        const std::vector<int> & cols) {
  const int m = x.rows, p = static_cast<int>(cols.size()), one = 1, lwork = 64 * (m + p);
  ColMatrix xs(m, p);
  for (int j = 0; j < p; ++j)
    for (int i = 0; i < m; ++i) xs(i, j) = x(i, cols[j]);
  Vec b = y, work(lwork);
  int info = 0;
  dgels_("N", &m, &p, &one, xs.data(), &m, b.data(), &m, work.data(), &lwork, &info);
  ASSERT_EQ(info, 0);
  double rss = 0.0;
  for (int i = p; i < m; ++i) rss += b[i] * b[i];
  const int last = x.cols;
  constexpr double kTol = 1e-12;  // X'X of random X has condition near 10: ~1e3 eps
  for (int j = 0; j < p; ++j) {
    SCOPED_TRACE(cols[j]);
    EXPECT_NEAR(swept.GetElem(last, cols[j]), b[j], kTol * (1.0 + std::fabs(b[j])));
  }
  EXPECT_NEAR(swept.GetElem(last, last), rss, kTol * rss);
}

TEST(ZRSymMatrixSweep, LeastSquaresMatchDgelsAndTermsCanBeRemoved) {
  const int m = 30, p = 5;
  ColMatrix xy = zrtest::RandomGeneral(m, p + 1, 7);
  for (int i = 0; i < m; ++i) xy(i, p) += 2.0 * xy(i, 0) - xy(i, 3);  // y with a signal
  ZRSymMatrix c = zrtest::ToSym(zrtest::Multiply(zrtest::Transposed(xy), xy));
  ColMatrix x(m, p);
  Vec y(m);
  for (int i = 0; i < m; ++i) {
    for (int j = 0; j < p; ++j) x(i, j) = xy(i, j);
    y[i] = xy(i, p);
  }
  ZRBitSet set;
  double logDet = 0.0;
  Vec diag = Diag(c);
  ASSERT_TRUE(c.SweepOnMany(p, 1e-10, true, set, logDet, true, diag.data()));
  EXPECT_EQ(set.InSet(), p);
  ExpectLeastSquares(c, x, y, {0, 1, 2, 3, 4});
  // A stepwise caller takes out terms 3 and 1 by sweeping them again.
  ASSERT_TRUE(c.SweepOnSelected({3, 1}, 1e-10, set, true, diag.data()));
  EXPECT_FALSE(set.IsIn(3) || set.IsIn(1));
  ExpectLeastSquares(c, x, y, {0, 2, 4});
}

TEST(ZRSymMatrixSweep, RefusedPivotsLeaveMatrixAndSetUnchanged) {
  const double above = std::nextafter(1.0, 2.0);
  struct {
    int line;
    std::vector<Vec> rows;
    Vec diag;
    double tol;
    int entered, k;  // entered: a row swept in first (-1 none)
    bool want;
  } const cases[] = {
      {__LINE__, {{1.0}}, {4.0}, 0.25, -1, 0, false},  // pivot == tol * diag exactly
      {__LINE__, {{above}}, {4.0}, 0.25, -1, 0, true},
      {__LINE__, {{0.0}}, {0.0}, 1e-8, -1, 0, false},
      {__LINE__, {{-2.0}}, {2.0}, 1e-8, -1, 0, false},
      {__LINE__, {{kNaN}}, {1.0}, 1e-8, -1, 0, false},
      // Entered row 0 would reach a(0,0) = -4/3: -4/3 * tol * 4 is above -1 only for
      // tol < 3/16, although the pivot 0.75 passes 1.0 * tol for both tolerances.
      {__LINE__, {{1.0}, {0.5, 1.0}}, {4.0, 1.0}, 0.2, 0, 1, false},
      {__LINE__, {{1.0}, {0.5, 1.0}}, {4.0, 1.0}, 0.1, 0, 1, true},
      // Here a(0,0) would reach exactly -2 and -2 * 0.125 * 4 is -1: not above, refused.
      {__LINE__, {{1.0}, {0.5, 0.5}}, {4.0, 1.0}, 0.125, 0, 1, false},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ZRSymMatrix a = Make(c.rows), b = a;
    ZRBitSet sa(a.GetNRows()), sb = sa;
    if (c.entered >= 0) {
      ASSERT_TRUE(a.Sweep(c.entered, c.tol, c.diag, sa, true));
      ASSERT_TRUE(b.SweepOrig(c.entered, c.tol, c.diag, sb, true));
    }
    const auto before = Bits(a);
    const ZRBitSet setBefore = sa;
    EXPECT_EQ(a.Sweep(c.k, c.tol, c.diag, sa, true), c.want);
    EXPECT_EQ(b.SweepOrig(c.k, c.tol, c.diag, sb, true), c.want);
    if (!c.want) {
      EXPECT_EQ(Bits(a), before);
      EXPECT_TRUE(sa == setBefore);
    }
  }
}

TEST(ZRSymMatrixSweep, CheckedArgumentsRefused) {
  const ZRSymMatrix orig = Make({{4}, {1, 3}});
  const Vec good{4, 3};
  struct {
    int line;
    int k;
    double tol;
    Vec diag;
    int bits;
    bool check, want;
  } const cases[] = {
      {__LINE__, 0, 1e-8, good, 2, true, true},
      {__LINE__, -1, 1e-8, good, 2, true, false},
      {__LINE__, 2, 1e-8, good, 2, true, false},
      {__LINE__, 2, 1e-8, good, 2, false, false},  // a bad k is refused unchecked too
      {__LINE__, 0, 0.0, good, 2, true, false},
      {__LINE__, 0, kNaN, good, 2, true, false},
      {__LINE__, 0, 1e-8, {4}, 2, true, false},
      {__LINE__, 0, 1e-8, {4, -1}, 2, true, false},
      {__LINE__, 0, 1e-8, {4, -1}, 2, false, true},
      {__LINE__, 0, 1e-8, {4, kNaN}, 2, true, false},
      {__LINE__, 0, 1e-8, good, 1, true, false},
      {__LINE__, 1, 1e-8, good, 1, false, true},  // row outside the set: forward, bit kept
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ZRSymMatrix a = orig, b = orig, p = orig;
    ZRBitSet sa(c.bits), sb(c.bits), sp(c.bits);
    EXPECT_EQ(a.Sweep(c.k, c.tol, c.diag, sa, c.check), c.want);
    EXPECT_EQ(b.SweepOrig(c.k, c.tol, c.diag, sb, c.check), c.want);
    if (c.diag.size() == 2) {
      EXPECT_EQ(p.Sweep(c.k, c.tol, c.diag.data(), sp, c.check), c.want);
    }
    EXPECT_EQ(a.GetElem(0, 0) == orig.GetElem(0, 0), !c.want);
    EXPECT_EQ(sa.InSet(), c.want && c.k < c.bits ? 1 : 0);
  }
}

TEST(ZRSymMatrixSweep, SweepOnManyLogDeterminantMatchesDpotrf) {
  for (int n : {1, 6, 30}) {
    SCOPED_TRACE(n);
    ColMatrix l = zrtest::RandomSpdCol(n, 40 + n);
    const ZRSymMatrix a = zrtest::ToSym(l);
    int info = 0;
    dpotrf_("L", &n, l.data(), &n, &info);
    ASSERT_EQ(info, 0);
    const int m = n / 2 + 1;  // the leading block's factor is the leading part of L
    double want = 0.0;
    for (int i = 0; i < m; ++i) want += 2.0 * std::log(l(i, i));
    for (bool logPivot : {true, false}) {
      ZRSymMatrix s = a;
      ZRBitSet set;
      double logDet = 7.0;
      ASSERT_TRUE(s.SweepOnMany(m, 1e-10, logPivot, set, logDet, true, nullptr));
      EXPECT_EQ(set.Size(), n);
      EXPECT_EQ(set.InSet(), m);
      EXPECT_NEAR(logDet, logPivot ? want : -want, 1e-13 * (1.0 + std::fabs(want)));
    }
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
  using Op = bool (*)(ZRSymMatrix &, ZRBitSet &, double *);
  const Op ops[] = {[](ZRSymMatrix & s, ZRBitSet & set, double * d) {
                      double logDet = 0.0;
                      return s.SweepOnMany(2, 0.6, true, set, logDet, true, d);
                    },
                    [](ZRSymMatrix & s, ZRBitSet & set, double * d) {
                      return s.SweepOnSelected({0, 1}, 0.6, set, true, d);
                    },
                    [](ZRSymMatrix & s, ZRBitSet & set, double * d) {
                      return s.SweepOnAll(0.6, set, true, false, false, d);
                    }};
  for (Op op : ops) {
    Vec diag{0.5, 2.0};
    ZRSymMatrix s = Make({{0.5}, {0.1, 2.0}});
    ZRBitSet set;
    ASSERT_TRUE(op(s, set, diag.data()));
    EXPECT_EQ(diag, (Vec{1.0, 2.0}));
    EXPECT_FALSE(set.IsIn(0));
    EXPECT_TRUE(set.IsIn(1));
  }
}

TEST(ZRSymMatrixSweep, SweepOnAllGivesGeneralisedInverse) {
  ZRSymMatrix tiny = Make({{1}, {2, 4}});  // collinear rows: (1 / a(0, 0)) and zeros
  ZRBitSet set(5);
  ASSERT_TRUE(tiny.SweepOnAll(1e-8, set, true, true, true, nullptr));
  EXPECT_EQ(set.Size(), 2);
  EXPECT_TRUE(set.IsIn(0) && !set.IsIn(1));
  EXPECT_EQ(tiny.GetElem(0, 0), 1.0);
  EXPECT_EQ(tiny.GetElem(1, 0), 0.0);
  EXPECT_EQ(tiny.GetElem(1, 1), 0.0);

  const ColMatrix a = CrossProducts(12, 6, 3, 4);  // column 4 = column 0 + column 1
  ZRSymMatrix g = zrtest::ToSym(a);
  ASSERT_TRUE(g.SweepOnAll(1e-9, set, true, true, true, nullptr));
  EXPECT_EQ(set.InSet(), 5);
  EXPECT_FALSE(set.IsIn(4));
  for (int j = 0; j < 6; ++j) EXPECT_EQ(g.GetElem(4, j), 0.0);
  for (int i = 0; i < 6; ++i) EXPECT_TRUE(i == 4 || g.GetElem(i, i) > 0.0);
  EXPECT_LT(GInverseRatio(a, zrtest::FromSym(g)), 30.0);
}

TEST(ZRSymMatrixSweep, SweepOnAllRefusedArgumentsStillTidy) {
  const ZRSymMatrix orig = Make({{2}, {1, 3}});
  struct {
    int line;
    double tol, d1;
    bool zero;
    std::vector<Vec> want;
  } const cases[] = {
      {__LINE__, 0.0, 3.0, false, {{-2}, {-1, -3}}},  // no sweep, signs flipped
      {__LINE__, 1e-8, -3.0, false, {{-2}, {-1, -3}}},
      // Intended: no row entered, so zeroRedundant clears everything.
      {__LINE__, 0.0, 3.0, true, {{0}, {0, 0}}},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ZRSymMatrix s = orig;
    ZRBitSet set;
    Vec diag{2.0, c.d1};
    EXPECT_FALSE(s.SweepOnAll(c.tol, set, true, c.zero, true, diag.data()));
    EXPECT_EQ(set.Size(), 2);
    EXPECT_EQ(set.InSet(), 0);
    for (int i = 0; i < 2; ++i)
      for (int j = 0; j <= i; ++j) EXPECT_EQ(s.GetElem(i, j), c.want[i][j]);
  }
}

TEST(ZRSymMatrixCholInverse, FullRankInvertsAndSingularGivesRank) {
  for (int n : {1, 3, 20}) {
    SCOPED_TRACE(n);
    ColMatrix l = zrtest::RandomSpdCol(n, 60 + n);
    const ColMatrix full = l;
    const ZRSymMatrix a = zrtest::ToSym(full);
    int info = 0;
    dpotrf_("L", &n, l.data(), &n, &info);
    ASSERT_EQ(info, 0);
    double smallest = l(0, 0);
    for (int i = 1; i < n; ++i) smallest = std::fmin(smallest, l(i, i));
    ZRSymMatrix out;
    double minPivot = 0.0;
    ASSERT_EQ(a.CholInverse(Diag(a), 1e-10, out, minPivot), n);
    EXPECT_NEAR(minPivot, smallest, 1e-13 * smallest);
    const ColMatrix inv = zrtest::FromSym(out);
    EXPECT_LT(Ratio(zrtest::Multiply(inv, full), zrtest::Identity(n),
                    zrtest::Norm1(full) * zrtest::Norm1(inv)),
              30.0);
    ZRSymMatrix self = a;  // out may be the object itself
    ASSERT_EQ(self.CholInverse(Diag(a), 1e-10, self), n);
    EXPECT_EQ(Bits(self), Bits(out));
  }
  const ColMatrix a = CrossProducts(10, 5, 9, 3);  // column 3 = column 0 + column 1
  const ZRSymMatrix s = zrtest::ToSym(a);
  ZRSymMatrix out;
  ZRBitSet set;
  ASSERT_EQ(s.CholInverse(Diag(s), 1e-9, out, set), 4);
  EXPECT_EQ(set.InSet(), 4);
  EXPECT_FALSE(set.IsIn(3));
  for (int j = 0; j < 5; ++j) EXPECT_EQ(out.GetElem(3, j), 0.0);
  EXPECT_LT(GInverseRatio(a, zrtest::FromSym(out)), 30.0);
}

TEST(ZRSymMatrixCholInverse, RefusesNonDenseOutAndShortDiag) {
  const ZRSymMatrix a = Make({{4}, {1, 3}});
  NotDense notDense(2, true);
  double minPivot = 0.0;
  ZRBitSet set;
  EXPECT_EQ(a.CholInverse({4, 3}, 1e-8, notDense, minPivot), -1);
  EXPECT_EQ(minPivot, ZRCommon_920::kSysMisValue);
  EXPECT_EQ(a.CholInverse({4, 3}, 1e-8, notDense, set), -1);
  EXPECT_EQ(a.CholInverse({4, 3}, 1e-8, notDense), -1);
  EXPECT_EQ(notDense.GetElem(1, 0), 0.0);
  ZRSymMatrix out(1, true);
  EXPECT_EQ(a.CholInverse({4}, 1e-8, out), -1);
  EXPECT_EQ(out.GetNRows(), 1);
}

}  // namespace
