// Tests of ZRMeansXProdData, ZRProvMeans and ZRMeansXProducts: against long double
// two-pass sums written here, the block, case and merge paths against each other, the NIST
// StRD NumAcc sets, and the refusals.
#include "zrcommon920r/math/stats/meansxprod.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "support/refdata.h"

namespace {

using ZRMath_920::ZRMeansXProdData;
using ZRMath_920::ZRMeansXProducts;
using ZRMath_920::ZRProvMeans;
using ZRMath_920::ZRRectMatrix;
using Vec = std::vector<double>;
using Grid = std::vector<Vec>;
using LVec = std::vector<long double>;

constexpr double kEps = 2.220446049250313e-16;

// n cases of p correlated variables, column i about offset (i + 1) with spread 1 + i,
// then a frequency weight (1 to 4) and a regression weight (0.5 to 2).
Grid RandomData(int n, int p, unsigned seed, double offset) {
  std::mt19937 gen(seed);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  Grid d(n, Vec(p + 2));
  for (Vec & row : d) {
    const double common = u(gen);
    for (int i = 0; i < p; ++i) row[i] = offset * (i + 1) + (1.0 + i) * u(gen) + common;
    row[p] = 1.0 + static_cast<double>(gen() % 4);
    row[p + 1] = 1.25 + 0.75 * u(gen);
  }
  return d;
}

double Weight(const Vec & row, int p, bool fw, bool rw) {
  return (fw ? row[p] : 1.0) * (rw ? row[p + 1] : 1.0);
}

// Rows first .. first + n - 1 as a block: the p variables and the weight columns asked for.
ZRRectMatrix Block(const Grid & d, int p, bool fw, bool rw, int first = 0, int n = -1) {
  if (n < 0) n = static_cast<int>(d.size()) - first;
  ZRRectMatrix m(n, p + fw + rw, true);
  for (int r = 0; r < n; ++r) {
    const Vec & row = d[first + r];
    for (int i = 0; i < p; ++i) m.SetElem(r, i, row[i]);
    if (fw) m.SetElem(r, p, row[p]);
    if (rw) m.SetElem(r, p + fw, row[p + 1]);
  }
  return m;
}

// Weighted count, means and packed sums of products (about the means, or raw).
struct Ref {
  long double n = 0;
  LVec mean, xp;
};

Ref TwoPass(const Grid & d, int p, bool fw, bool rw, bool intercept) {
  Ref s;
  s.mean.assign(p, 0);
  s.xp.assign(p * (p + 1) / 2, 0);
  for (const Vec & row : d) {
    s.n += Weight(row, p, fw, rw);
    for (int i = 0; i < p; ++i) s.mean[i] += Weight(row, p, fw, rw) * row[i];
  }
  for (long double & m : s.mean) m /= s.n;
  for (const Vec & row : d)
    for (int i = 0, k = 0; i < p; ++i)
      for (int j = 0; j <= i; ++j, ++k)
        s.xp[k] += Weight(row, p, fw, rw) * (row[i] - (intercept ? s.mean[i] : 0.0L)) *
                   (row[j] - (intercept ? s.mean[j] : 0.0L));
  return s;
}

Ref Of(const ZRMeansXProdData & a) {
  Ref s;
  s.n = a.GetNCases();
  s.mean.assign(a.GetMeans().begin(), a.GetMeans().end());
  for (int k = 0; k < a.GetNVars() * (a.GetNVars() + 1) / 2; ++k)
    s.xp.push_back(a.GetXProds().GetElem(k));
  return s;
}

// Count relative, mean i relative to |mean| + spread, element (i, j) relative to
// sqrt(want(i, i) want(j, j)), exact where that is 0.
void ExpectNear(const ZRMeansXProdData & got, const Ref & want, double tol) {
  const Ref g = Of(got);
  ASSERT_EQ(g.xp.size(), want.xp.size());
  EXPECT_LE(std::fabs(g.n - want.n), tol * want.n);
  auto diag = [&](int i) { return std::fabs(want.xp[i * (i + 3) / 2]); };
  for (int i = 0, k = 0; i < static_cast<int>(want.mean.size()); ++i) {
    const long double spread = std::sqrt(diag(i) / want.n);
    EXPECT_LE(std::fabs(g.mean[i] - want.mean[i]), tol * (std::fabs(want.mean[i]) + spread)) << i;
    for (int j = 0; j <= i; ++j, ++k)
      EXPECT_LE(std::fabs(g.xp[k] - want.xp[k]), tol * std::sqrt(diag(i) * diag(j))) << i << j;
  }
}

void ExpectSame(const ZRMeansXProdData & got, const ZRMeansXProdData & want) {
  const Ref g = Of(got), w = Of(want);
  EXPECT_EQ(g.n, w.n);
  EXPECT_EQ(g.mean, w.mean);
  EXPECT_EQ(g.xp, w.xp);
}

struct Config {
  int line, p, rows;
  bool intercept, fw, rw;
  double offset;
};
const Config kConfigs[] = {
    {__LINE__, 1, 1, true, false, false, 0.0},       // one case: a zero matrix
    {__LINE__, 3, 50, true, false, false, 0.0},      //
    {__LINE__, 20, 1000, true, true, false, 100.0},  //
    {__LINE__, 7, 300, true, false, true, 1e3},      //
    {__LINE__, 7, 300, true, true, true, 10.0},      // weight = product of both columns
    {__LINE__, 5, 200, false, false, false, 1.0},    // raw products
    {__LINE__, 5, 200, false, true, true, 1.0},      //
};

// Seed of a configuration's data: its place in the table, plus a test's own offset.
unsigned Seed(const Config & c, unsigned offset) {
  return static_cast<unsigned>(&c - kConfigs) + offset;
}

TEST(ZRMeansXProductsCompute, MatchesLongDoubleTwoPass) {
  constexpr double kTol = 64 * kEps;  // sums of up to 1000 terms in order (observed 15 eps)
  for (const Config & c : kConfigs) {
    SCOPED_TRACE(c.line);
    const Grid d = RandomData(c.rows, c.p, Seed(c, 1), c.offset);
    ZRMeansXProducts acc(c.p, c.intercept, c.fw, c.rw);
    ASSERT_TRUE(acc.Compute(Block(d, c.p, c.fw, c.rw), 0));
    ExpectNear(acc, TwoPass(d, c.p, c.fw, c.rw, c.intercept), kTol);
  }
}

TEST(ZRMeansXProductsCompute, ConstantColumnHasExactMeanAndZeros) {
  // 0.1 summed over 10 rows and divided by the count misses 0.1 by an ulp.
  for (const bool rw : {false, true}) {
    SCOPED_TRACE(rw);
    Grid d = RandomData(10, 3, 7, 0.0);
    double sum = 0.0, n = 0.0;
    for (Vec & row : d) {
      row[1] = 0.1;
      sum += 0.1 * Weight(row, 3, false, rw);
      n += Weight(row, 3, false, rw);
    }
    ASSERT_NE(sum / n, 0.1);
    ZRMeansXProducts acc(3, true, false, rw);
    ASSERT_TRUE(acc.Compute(Block(d, 3, false, rw), 0));
    EXPECT_EQ(acc.GetMeans()[1], 0.1);
    for (int j = 0; j < 3; ++j) EXPECT_EQ(acc.GetXProds().GetElem(1, j), 0.0) << j;
  }
}

TEST(ZRMeansXProductsUpdate, BlocksEqualComputeOfWhole) {
  // Each merge forms differences of means carrying eps |mean| against spreads of about 1:
  // a few eps plus about the offset in eps (observed 700 eps at offset 1000).
  for (const Config & c : kConfigs) {
    if (c.rows < 200) continue;
    SCOPED_TRACE(c.line);
    const Grid d = RandomData(200, c.p, Seed(c, 11), c.offset);
    ZRMeansXProducts whole(c.p, c.intercept, c.fw, c.rw), parts = whole, first = whole;
    ASSERT_TRUE(whole.Compute(Block(d, c.p, c.fw, c.rw), 0));
    ASSERT_TRUE(parts.Update(Block(d, c.p, c.fw, c.rw), 7));  // rows 0 .. 6
    ASSERT_TRUE(first.Compute(Block(d, c.p, c.fw, c.rw, 0, 7), 0));
    ExpectSame(parts, first);  // on an empty object Update is Compute
    ASSERT_TRUE(parts.Update(Block(d, c.p, c.fw, c.rw, 7, 1), -1));
    ASSERT_TRUE(parts.Update(Block(d, c.p, c.fw, c.rw, 8), 500));  // cut to the 192 rows
    ExpectNear(parts, Of(whole), (64.0 + 2.0 * c.offset) * kEps);
  }
}

TEST(ZRMeansXProducts, WrongColumnCountChangesNothing) {
  struct {
    int line;
    bool fw, rw;
    int delta;
  } const cases[] = {{__LINE__, false, false, -2}, {__LINE__, false, false, 1},
                     {__LINE__, true, false, -1},  {__LINE__, true, true, -1},
                     {__LINE__, true, true, -2},   {__LINE__, false, true, 1}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    const Grid d = RandomData(20, 3, 5, 2.0);
    ZRMeansXProducts acc(3, true, c.fw, c.rw);
    ASSERT_TRUE(acc.Compute(Block(d, 3, c.fw, c.rw, 0, 10), 0));
    ASSERT_TRUE(acc.UpdateOnePass(Block(d, 3, c.fw, c.rw, 10, 10), 0));
    ZRMeansXProducts before = acc;
    const ZRRectMatrix bad(5, 3 + c.fw + c.rw + c.delta, true);
    EXPECT_FALSE(acc.Compute(bad, 0));
    EXPECT_FALSE(acc.Update(bad, 0));
    EXPECT_FALSE(acc.UpdateOnePass(bad, 0));
    ExpectSame(acc, before);
    acc.FinishUpdateOnePass();  // the one-pass sums are untouched too
    before.FinishUpdateOnePass();
    ExpectSame(acc, before);
  }
}

TEST(ZRMeansXProductsOnePass, MatchesTwoPassAndIsAlwaysCorrected) {
  constexpr double kTol = 64 * kEps;  // centred data, little cancellation (observed 8 eps)
  for (const bool intercept : {true, false}) {
    for (const bool w : {false, true}) {
      SCOPED_TRACE(std::to_string(intercept) + std::to_string(w));
      const Grid d = RandomData(600, 6, 17, 0.0);
      ZRMeansXProducts acc(6, intercept, w, w);
      ASSERT_TRUE(acc.Compute(Block(d, 6, w, w, 0, 100), 0));  // apart from the one-pass sums
      for (int at = 0; at < 600; at += 200)  // the first call starts the sums by itself
        ASSERT_TRUE(acc.UpdateOnePass(Block(d, 6, w, w, at, 200), 0));
      acc.FinishUpdateOnePass();
      ExpectNear(acc, TwoPass(d, 6, w, w, /*intercept=*/true), kTol);
      acc.StartUpdateOnePass();
      acc.FinishUpdateOnePass();  // nothing gathered: cleared
      ExpectSame(acc, ZRMeansXProdData(6, intercept));
    }
  }
}

TEST(ZRMeansXProductsCompute, NistNumAccDigits) {  // data: tests/data/math/stats/numacc*.csv
  // Floors: what summing in order, then the squared deviations, reaches. The certified
  // values are decimals, so the data's representation error bounds the digits of sd
  // (9.46 for NumAcc3, 8.25 for NumAcc4, numacc_cert.csv); the sums of 1001 values cost
  // the mean its last two digits. One pass over raw sums keeps 1 digit of NumAcc3's sd.
  const double floors[4][2] = {{15.0, 15.0}, {14.0, 14.5}, {15.0, 9.4}, {14.0, 8.2}};
  const auto cert = zrtest::LoadRefTable("math/stats/numacc_cert.csv", 1);
  ASSERT_EQ(cert.size(), 4u);
  for (int set = 0; set < 4; ++set) {
    SCOPED_TRACE(cert[set].where);
    const std::string name = "numacc" + std::to_string(set + 1);
    const auto rows = zrtest::LoadRefTable("math/stats/" + name + ".csv", 0);
    ZRRectMatrix x(static_cast<int>(rows.size()), 1, true);
    for (int r = 0; r < x.GetNRows(); ++r) x.SetElem(r, 0, rows[r].out[0]);
    ZRMeansXProducts acc(1, true, false, false), onePass = acc;
    ASSERT_TRUE(acc.Compute(x, 0));
    ASSERT_TRUE(onePass.UpdateOnePass(x, 0));
    onePass.FinishUpdateOnePass();
    const double n1 = acc.GetNCases() - 1.0;
    const double sd = std::sqrt(acc.GetXProds().GetElem(0) / n1);
    const Vec & c = cert[set].out;  // certified mean, sd; exact mean, sd of the doubles
    const double lreMean = zrtest::Lre(acc.GetMeans()[0], c[0]), lreSd = zrtest::Lre(sd, c[1]);
    std::printf(
        "NumAcc%d LRE: mean %.2f, sd %.2f (exact for the doubles: %.2f, %.2f; "
        "one-pass sd %.2f)\n",
        set + 1, lreMean, lreSd, zrtest::Lre(acc.GetMeans()[0], c[2]), zrtest::Lre(sd, c[3]),
        zrtest::Lre(std::sqrt(std::fabs(onePass.GetXProds().GetElem(0)) / n1), c[1]));
    RecordProperty(name + "_lre_mean", std::to_string(lreMean));
    RecordProperty(name + "_lre_sd", std::to_string(lreSd));
    EXPECT_GE(lreMean, floors[set][0]);
    EXPECT_GE(lreSd, floors[set][1]);
  }
}

TEST(ZRProvMeansUpdate, AddAndDeleteMatchTwoPass) {
  constexpr double kTol = 64 * kEps;  // a few roundings per case (observed 15 eps)
  for (const Config & c : kConfigs) {
    SCOPED_TRACE(c.line);
    Grid d = RandomData(std::min(c.rows, 300), c.p, Seed(c, 21), std::min(c.offset, 10.0));
    ZRProvMeans acc(c.p, c.intercept);
    for (const Vec & row : d) ASSERT_TRUE(acc.Update(row, Weight(row, c.p, c.fw, c.rw)));
    if (d.size() < 2) continue;
    const Ref held = Of(acc);
    Vec extra(c.p + 3, 7.5);  // longer than p: the surplus is not read
    ASSERT_TRUE(acc.Update(extra, 2.5));
    ASSERT_TRUE(acc.Update(extra, -2.5));
    ExpectNear(acc, held, kTol);
    ASSERT_TRUE(acc.Update(d[0], -Weight(d[0], c.p, c.fw, c.rw)));  // one case out again
    d.erase(d.begin());
    ExpectNear(acc, TwoPass(d, c.p, c.fw, c.rw, c.intercept), kTol);
  }
}

TEST(ZRProvMeansUpdate, RefusalsAndClearing) {
  ZRProvMeans start(3, true);
  for (const Vec & row : RandomData(5, 3, 31, 1.0)) ASSERT_TRUE(start.Update(row, 2.0));
  const Vec x = {1.0, 2.0, 3.0};
  struct {
    int line;
    Vec x;
    double w;
    bool result;
    ZRMeansXProdData after;
  } const cases[] = {
      {__LINE__, {1.0, 2.0}, 1.0, false, start},  // short case
      {__LINE__, x, -10.5, false, start},         // the count, 10, would become negative
      // Intended: a NaN weight is neither positive, negative nor zero: nothing, true.
      {__LINE__, x, std::numeric_limits<double>::quiet_NaN(), true, start},
      {__LINE__, x, 0.0, true, start},
      {__LINE__, x, -10.0, true, ZRMeansXProdData(3, true)},  // count exactly 0: cleared
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ZRProvMeans acc = start;
    EXPECT_EQ(acc.Update(c.x, c.w), c.result);
    ExpectSame(acc, c.after);
  }
}

TEST(ZRMeansXProdDataMerge, PartialSummariesEqualOnePass) {
  constexpr double kTol = 32 * kEps;  // a few roundings per merge (observed 3 eps)
  const int sizes[] = {0, 1, 150, 249};
  for (const bool intercept : {true, false}) {
    SCOPED_TRACE(intercept);
    const Grid d = RandomData(400, 5, 37, 5.0);
    std::vector<ZRMeansXProducts> part(4, ZRMeansXProducts(5, intercept, true, true));
    for (int t = 0, at = 0; t < 4; at += sizes[t++]) {  // one summary per thread
      if (sizes[t] > 0) {
        ASSERT_TRUE(part[t].Compute(Block(d, 5, true, true, at, sizes[t]), 0));
      }
    }
    ZRMeansXProdData total, viaConst;  // no variables: they take the first one's shape
    ASSERT_TRUE(total.Merge(
        std::vector<ZRMeansXProdData *>{nullptr, &part[0], &part[1], nullptr, &part[2], &part[3]}));
    ExpectNear(total, TwoPass(d, 5, true, true, intercept), kTol);
    ASSERT_TRUE(viaConst.Merge(
        std::vector<const ZRMeansXProdData *>{&part[0], &part[1], &part[2], &part[3]}));
    ExpectSame(viaConst, total);
    ZRMeansXProdData twice = total;  // a fault reading o after writing would show here
    ASSERT_TRUE(twice.Merge(twice));
    EXPECT_EQ(twice.GetNCases(), 2.0 * total.GetNCases());
    EXPECT_EQ(twice.GetMeans(), total.GetMeans());
    EXPECT_EQ(twice.GetXProds().GetElem(7), 2.0 * total.GetXProds().GetElem(7));
  }
}

TEST(ZRMeansXProdDataMerge, ShapeRules) {
  ZRProvMeans two(2, true), raw(2, false), three(3, true);
  for (const Vec & row : RandomData(8, 3, 41, 1.0)) {
    two.Update(row, 1.0);
    raw.Update(row, 1.0);
    three.Update(row, 1.0);
  }
  const ZRMeansXProdData empty(2, true);
  struct {
    int line;
    ZRMeansXProdData target;
    const ZRMeansXProdData & other;
    bool result;
    const ZRMeansXProdData & after;
  } cases[] = {
      {__LINE__, two, three, false, two},              // numbers of variables differ
      {__LINE__, two, raw, false, two},                // intercept indicators differ
      {__LINE__, empty, empty, true, empty},           // nothing to merge: true
      {__LINE__, empty, two, true, two},               // into an empty one: a copy
      {__LINE__, ZRMeansXProdData(), raw, true, raw},  // no variables: takes the shape
  };
  for (auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(c.target.Merge(c.other), c.result);
    ExpectSame(c.target, c.after);
    EXPECT_EQ(c.target.IsIntercept(), c.after.IsIntercept());
  }
  ZRMeansXProdData target = two;
  EXPECT_FALSE(target.Merge(std::vector<ZRMeansXProdData *>{nullptr}));
  EXPECT_FALSE(target.Merge(std::vector<const ZRMeansXProdData *>{}));
  EXPECT_FALSE(target.Merge(std::vector<const ZRMeansXProdData *>{&three, &two}));
  ExpectSame(target, two);
}

}  // namespace

namespace {

bool AnyNaN(const ZRMeansXProdData & d) {
  bool nan = std::isnan(d.GetNCases());
  for (double m : d.GetMeans()) nan = nan || std::isnan(m);
  for (int i = 0; i < d.GetNVars(); ++i)
    for (int j = 0; j <= i; ++j) nan = nan || std::isnan(d.GetXProds().GetElem(i, j));
  return nan;
}

// No operation tests its input: non-finite values and weights propagate, except through
// Merge, which passes over a summary whose combined count is NaN (not above 0).
TEST(ZRMeansXProdDataNonFinite, ValuesAndWeightsPropagate) {
  const double inf = std::numeric_limits<double>::infinity(), nan = std::nan("");
  ZRProvMeans good(2, true);
  for (const Vec & row : RandomData(4, 2, 5, 1.0)) good.AddCase(row, 1.0);
  struct {
    int line;
    Vec x;
    double w;
  } const cases[] = {{__LINE__, {1.0, 2.0}, inf},  // c = N inf / inf is NaN
                     {__LINE__, {1.0, 2.0}, nan},
                     {__LINE__, {nan, 2.0}, 1.0},
                     {__LINE__, {inf, 2.0}, 1.0},
                     {__LINE__, {-1.7976931348623157e308, 1.7976931348623157e308}, 1.0}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ZRProvMeans acc = good;
    acc.AddCase(c.x, c.w);
    EXPECT_TRUE(AnyNaN(acc) || std::isinf(acc.GetXProds().GetElem(0, 0)));
    ZRMeansXProdData merged = good;
    EXPECT_TRUE(merged.Merge(acc));
    if (std::isnan(acc.GetNCases())) {
      ExpectSame(merged, good);  // N + No is NaN, not above 0: passed over
    } else {
      EXPECT_TRUE(AnyNaN(merged) || std::isinf(merged.GetXProds().GetElem(0, 0)));
    }
  }
  // Blocks: a NaN weight makes the count NaN; a NaN value its mean and row.
  ZRMeansXProducts block(2, true, true, false);
  ZRRectMatrix x = Block(RandomData(6, 2, 7, 1.0), 2, true, false);
  x.SetElem(3, 2, nan);
  ASSERT_TRUE(block.Compute(x, 0));
  EXPECT_TRUE(std::isnan(block.GetNCases()));
  x.SetElem(3, 2, 1.0);
  x.SetElem(2, 1, nan);
  ASSERT_TRUE(block.Compute(x, 0));
  EXPECT_FALSE(std::isnan(block.GetNCases()) || std::isnan(block.GetMeans()[0]));
  EXPECT_TRUE(std::isnan(block.GetMeans()[1]) && std::isnan(block.GetXProds().GetElem(1, 0)));
  // No rows: nothing is read (not even row 0's weight), count 0, true.
  ZRMeansXProducts empty(2, true, true, true);
  EXPECT_TRUE(empty.Compute(ZRRectMatrix(0, 4, true), 0));
  ExpectSame(empty, ZRMeansXProdData(2, true));
}

}  // namespace
