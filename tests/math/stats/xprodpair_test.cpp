// Tests of ZRAccumXProdPair: pairwise statistics against long double two-pass sums over
// each pair's complete cases, the timing of folds, merging, the correlations' reading of
// the covariance store, copies and resizes, and the fixed diagnostic listing.
#include "zrcommon920r/math/stats/xprodpair.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "support/capture.h"
#include "zrcommon920r/common/numconst.h"

namespace {

using ZRMath_920::ZRAccumXProdPair;
using Vec = std::vector<double>;
using Grid = std::vector<Vec>;  // a case: p values (NaN when missing), then its weight

constexpr double kEps = 2.220446049250313e-16;
const double kMiss = ZRCommon_920::kSysMisValue;
const double kNaN = std::numeric_limits<double>::quiet_NaN();

// Column i about offset (i + 1) with spread 1 + i and a common part; a value is missing
// with probability 0.2; weights 0.5 to 2.
Grid RandomData(int n, int p, unsigned seed, double offset) {
  std::mt19937 gen(seed);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  Grid d(n, Vec(p + 1));
  for (Vec & x : d) {
    const double common = u(gen);
    for (int i = 0; i < p; ++i) {
      x[i] = offset * (i + 1) + (1.0 + i) * u(gen) + common;
      if (u(gen) < -0.6) x[i] = kNaN;
    }
    x[p] = 1.25 + 0.75 * u(gen);
  }
  return d;
}

// Every pair with both values present, as a procedure does under pairwise deletion.
void Feed(ZRAccumXProdPair & acc, const Grid & d) {
  for (const Vec & x : d)
    for (int i = 1; i + 1 < static_cast<int>(x.size()); ++i)
      for (int j = 0; j < i; ++j)
        if (!std::isnan(x[i]) && !std::isnan(x[j])) acc.Update(i, x[i], j, x[j], x.back());
}

// Running statistics of pair k within tol of a two-pass over the cases of all sets:
// count, variances and covariance relative to their scale, means to |mean| + spread.
void ExpectTwoPass(const ZRAccumXProdPair & acc, const std::vector<const Grid *> & sets,
                   double tol) {
  for (int i = 1, k = 0; i < acc.GetNVars(); ++i) {
    for (int j = 0; j < i; ++j, ++k) {
      SCOPED_TRACE("pair " + std::to_string(k));
      long double n = 0, m1 = 0, m2 = 0, v1 = 0, v2 = 0, c = 0;
      for (int pass = 0; pass < 2; ++pass) {
        for (const Grid * d : sets) {
          for (const Vec & x : *d) {
            if (std::isnan(x[i]) || std::isnan(x[j])) continue;
            const long double w = x.back(), d1 = x[i] - m1, d2 = x[j] - m2;
            if (pass == 0) {
              n += w, m1 += w * x[i], m2 += w * x[j];
            } else {
              v1 += w * d1 * d1, v2 += w * d2 * d2, c += w * d1 * d2;
            }
          }
        }
        if (pass == 0) m1 /= n, m2 /= n;
      }
      const double s1 = std::sqrt(v1 / (n - 1)), s2 = std::sqrt(v2 / (n - 1));
      EXPECT_LE(std::fabs(acc.GetTotalCases().GetElem(k) - n), tol * n);
      EXPECT_LE(std::fabs(acc.GetMean1().GetElem(k) - m1), tol * (std::fabs(m1) + s1));
      EXPECT_LE(std::fabs(acc.GetMean2().GetElem(k) - m2), tol * (std::fabs(m2) + s2));
      EXPECT_LE(std::fabs(acc.GetVar1().GetElem(k) - v1 / (n - 1)), tol * s1 * s1);
      EXPECT_LE(std::fabs(acc.GetVar2().GetElem(k) - v2 / (n - 1)), tol * s2 * s2);
      EXPECT_LE(std::fabs(acc.GetCovar().GetElem(k) - c / (n - 1)), tol * s1 * s2);
    }
  }
}

TEST(ZRAccumXProdPairFinish, MatchesLongDoubleTwoPass) {
  // Each fold subtracts m' S from sums of size N m^2: about eps (mean / spread)^2 a fold,
  // a random walk over the folds. Observed over four seeds: centred 6 eps; mean / spread
  // up to 3, 240 eps; up to 20 (about 200 folds at nAccum 1), 13500 eps.
  struct {
    int line, nAccum;
    double offset, tol;
  } const cases[] = {
      {__LINE__, 1, 0.0, 64 * kEps},     {__LINE__, 100, 0.0, 64 * kEps},
      {__LINE__, 7, 3.0, 1024 * kEps},   {__LINE__, 1000, 3.0, 1024 * kEps},
      {__LINE__, 1, 20.0, 32768 * kEps},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    const Grid d = RandomData(300, 5, static_cast<unsigned>(c.nAccum + 7), c.offset);
    ZRAccumXProdPair acc(5, c.nAccum);
    Feed(acc, d);
    ASSERT_TRUE(acc.Finish());
    ExpectTwoPass(acc, {&d}, c.tol);
  }
}

TEST(ZRAccumXProdPairUpdate, FoldsEveryNAccumCases) {
  ZRAccumXProdPair slow(2, 100);  // nothing moves before the hundredth case
  for (int r = 1; r < 100; ++r) ASSERT_TRUE(slow.Update(0, r, 2.0 * r, 1.0));
  EXPECT_EQ(slow.GetTotalCases().GetElem(0), 0.0);
  ASSERT_TRUE(slow.Update(0, 100.0, 200.0, 1.0));
  EXPECT_EQ(slow.GetTotalCases().GetElem(0), 100.0);
  EXPECT_EQ(slow.GetMean2().GetElem(0), 101.0);

  // nAccum 0 is raised to 1; a lone case of weight 1 has no variance and waits.
  ZRAccumXProdPair fast(2, 0);
  EXPECT_FALSE(fast.Update(1, 1.0, 0, 10.0, 1.0));
  EXPECT_EQ(fast.GetTotalCases().GetElem(0), 0.0);
  EXPECT_TRUE(fast.Update(1, 3.0, 0, 10.0, 1.0));
  EXPECT_EQ(fast.GetVar1().GetElem(0), 2.0);
  EXPECT_TRUE(fast.Update(1, 5.0, 0, 10.0, 1.0));
  EXPECT_EQ(fast.GetVar1().GetElem(0), 4.0);  // 1, 3, 5
  EXPECT_EQ(fast.GetVar2().GetElem(0), 0.0);

  // Bad pairs: false, nothing changed; variable 3 against 1 is pair 3 (3 - 1) / 2 + 1 = 4.
  ZRAccumXProdPair acc(4, 2);
  for (const auto & bad : {Vec{0, 1}, Vec{2, 2}, Vec{4, 0}, Vec{2, -1}})
    EXPECT_FALSE(acc.Update(static_cast<int>(bad[0]), 1.0, static_cast<int>(bad[1]), 2.0, 1.0));
  EXPECT_FALSE(acc.Update(-1, 1.0, 2.0, 1.0));
  EXPECT_FALSE(acc.Update(6, 1.0, 2.0, 1.0));
  acc.Update(3, 1.0, 1, 10.0, 1.0);
  ASSERT_TRUE(acc.Update(3, 3.0, 1, 30.0, 1.0));
  for (int k = 0; k < 6; ++k) EXPECT_EQ(acc.GetTotalCases().GetElem(k), k == 4 ? 2.0 : 0.0);
  EXPECT_EQ(acc.GetCovar().GetElem(4), 20.0);
  for (int p : {-2, 0, 1}) {  // no pairs at all
    ZRAccumXProdPair none(p, 1);
    EXPECT_FALSE(none.Update(0, 1.0, 2.0, 1.0));
    EXPECT_TRUE(none.Finish());
  }
}

TEST(ZRAccumXProdPairFinish, StopsAtFirstPairWithoutVariance) {
  struct {
    int line, thin, cases;  // pair thin gets this many cases of weight 1, the others 3
    Vec totals;             // after Finish, which is true only when all are folded
  } const cases[] = {{__LINE__, 0, 3, {3, 3, 3}},
                     {__LINE__, 0, 1, {0, 0, 0}},
                     {__LINE__, 1, 1, {3, 0, 0}},
                     {__LINE__, 2, 0, {3, 3, 0}}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ZRAccumXProdPair acc(3, 100);
    for (int k = 0; k < 3; ++k)
      for (int r = 0; r < (k == c.thin ? c.cases : 3); ++r) acc.Update(k, r, -r, 1.0);
    EXPECT_EQ(acc.Finish(), c.totals[2] == 3.0);
    for (int k = 0; k < 3; ++k) EXPECT_EQ(acc.GetTotalCases().GetElem(k), c.totals[k]) << k;
  }
}

TEST(ZRAccumXProdPairMerge, FinishedPartsEqualOnePass) {
  constexpr double kTol = 64 * kEps;  // as folding, plus one combination (observed 7 eps)
  const Grid a = RandomData(150, 4, 3, 2.0);
  // Complete cases of weight 1, each column a shuffle of one list: each pair's two means
  // agree, the case in which the merge (first variable's mean for both) is exact.
  Grid b(80, Vec(5, 1.0));
  Vec values(80);
  std::mt19937 gen(5);
  for (double & v : values) v = 2.0 + 3.0 * std::uniform_real_distribution<double>(-1, 1)(gen);
  for (int i = 0; i < 4; ++i) {
    std::shuffle(values.begin(), values.end(), gen);
    for (int r = 0; r < 80; ++r) b[r][i] = values[r];
  }
  ZRAccumXProdPair partA(4, 10), partB(4, 10);
  Feed(partA, a);
  Feed(partB, b);
  ASSERT_TRUE(partA.Finish() && partB.Finish());
  ZRAccumXProdPair one = partA, list = partA;
  ASSERT_TRUE(one.Merge(partB));
  ExpectTwoPass(one, {&a, &b}, kTol);
  ASSERT_TRUE(list.Merge(std::vector<const ZRAccumXProdPair *>{nullptr, &partB}));
  ExpectTwoPass(list, {&a, &b}, kTol);

  const ZRAccumXProdPair before = one;  // refusals change nothing
  ZRAccumXProdPair five(5, 1);
  EXPECT_FALSE(one.Merge(five));
  EXPECT_FALSE(one.Merge(std::vector<ZRAccumXProdPair *>{nullptr}));
  EXPECT_FALSE(one.Merge(std::vector<const ZRAccumXProdPair *>{&five, &partB}));
  for (int k = 0; k < 6; ++k) EXPECT_EQ(one.GetCovar().GetElem(k), before.GetCovar().GetElem(k));
}

TEST(ZRAccumXProdPairMerge, SecondMeanTakenFromFirstVariable) {
  // Intended quirk, by hand: this (1, 10), (3, 10): n 2, means 2, 10, variances 2, 0,
  // covariance 0; o (5, 20), (7, 40): means 6, 30, variances 2, 200, covariance 20. With
  // a1 = 4, a2 = 20 and b = 6 x 2 = 12 for both variables, m2' = (12 + 20) / 4 = 8 (the
  // pooled mean is 20), v2' = (0 + 200 + 200 + 72 - 256) / 3 = 72 and
  // c' = (0 + 40 + 20 + 72 - 128) / 3 = 4 / 3, while the first variable's are right.
  ZRAccumXProdPair acc(2, 1), o(2, 1);
  acc.Update(1, 1.0, 0, 10.0, 1.0);
  acc.Update(1, 3.0, 0, 10.0, 1.0);
  o.Update(1, 5.0, 0, 20.0, 1.0);
  o.Update(1, 7.0, 0, 40.0, 1.0);
  ASSERT_TRUE(acc.Merge(o));
  EXPECT_EQ(acc.GetTotalCases().GetElem(0), 4.0);
  EXPECT_EQ(acc.GetMean1().GetElem(0), 4.0);
  EXPECT_EQ(acc.GetVar1().GetElem(0), 20.0 / 3.0);
  EXPECT_EQ(acc.GetMean2().GetElem(0), 8.0);
  EXPECT_EQ(acc.GetVar2().GetElem(0), 72.0);
  EXPECT_EQ(acc.GetCovar().GetElem(0), 4.0 / 3.0);
}

TEST(ZRAccumXProdPairMerge, IntoEmptyPairGivesNaNCovariance) {
  ZRAccumXProdPair o(3, 1);
  Feed(o, RandomData(40, 3, 9, 1.0));
  ASSERT_TRUE(o.Finish());
  for (const int p : {3, 0}) {  // 0: an empty accumulator first takes o's shape
    SCOPED_TRACE(p);
    ZRAccumXProdPair acc(p, 1);
    ASSERT_TRUE(acc.Merge(o));
    for (int k = 0; k < 3; ++k) {  // o's statistics, but a2 a1 / n = 0 / 0 in the covariance
      EXPECT_EQ(acc.GetTotalCases().GetElem(k), o.GetTotalCases().GetElem(k));
      EXPECT_NEAR(acc.GetVar1().GetElem(k), o.GetVar1().GetElem(k),
                  64 * kEps * o.GetVar1().GetElem(k));
      EXPECT_TRUE(std::isnan(acc.GetCovar().GetElem(k))) << k;
    }
  }
}

// The inputs are not tested: a NaN weight makes the pair's raw weight NaN, so its fold
// never falls due and the running statistics keep their values; a NaN value folds in.
TEST(ZRAccumXProdPair, NonFiniteInputPropagates) {
  ZRAccumXProdPair acc(2, 1);
  ASSERT_FALSE(acc.Update(1, 1.0, 0, 2.0, 1.0));  // total 1: not above 1 yet
  ASSERT_TRUE(acc.Update(1, 3.0, 0, 5.0, 1.0));
  const double covar = acc.GetCovar().GetElem(0);
  EXPECT_FALSE(acc.Update(1, 4.0, 0, 1.0, kNaN));
  EXPECT_FALSE(acc.Update(1, 4.0, 0, 1.0, 1.0));  // the raw weight stays NaN
  EXPECT_FALSE(acc.Finish());
  EXPECT_EQ(acc.GetCovar().GetElem(0), covar);
  ZRAccumXProdPair values(2, 1);
  values.Update(1, 1.0, 0, 2.0, 1.0);
  EXPECT_TRUE(values.Update(1, kNaN, 0, 5.0, 1.0));
  EXPECT_TRUE(std::isnan(values.GetCovar().GetElem(0)) && std::isnan(values.GetMean1().GetElem(0)));
  EXPECT_EQ(values.GetMean2().GetElem(0), 3.5);
}

TEST(ZRAccumXProdPairCorr, ReadsCovarianceStoreAsItStands) {
  // Covariances 16, 12, 81 of pairs 0, 1, 2 are read as the elements (0, 0), (1, 0),
  // (1, 1) of a symmetric matrix whose diagonal enters through its fourth root; row 2's
  // diagonal lies past the store: missing. Then a zero, negative or NaN diagonal.
  for (const double v : {16.0, 0.0, -4.0, kNaN}) {
    SCOPED_TRACE(v);
    ZRAccumXProdPair acc(3, 2);
    acc.Update(0, 0.0, 0.0, 1.0);
    acc.Update(0, v, 2.0, 1.0);  // covariance v
    acc.Update(1, 0.0, 0.0, 1.0);
    acc.Update(1, 6.0, 4.0, 1.0);  // 12
    acc.Update(2, 0.0, 0.0, 1.0);
    acc.Update(2, 9.0, 18.0, 1.0);  // 81
    const double d0 = v > 0.0 ? v / std::sqrt(std::sqrt(v)) / std::sqrt(std::sqrt(v)) : kMiss;
    const double r10 = v > 0.0 ? 12.0 / 3.0 / std::sqrt(std::sqrt(v)) : kMiss;
    const Vec want = {d0, r10, 81.0 / 3.0 / 3.0, kMiss, kMiss, kMiss};
    for (int k = 0; k < 6; ++k) EXPECT_EQ(acc.GetCorr().GetElem(k), want[k]) << k;
  }
}

TEST(ZRAccumXProdPair, CopiesAndResizesUseTheirOwnStores) {
  // Element pointers kept from another object or from before a resize would write there
  // (or into freed memory, which the sanitizers catch).
  ZRAccumXProdPair original(3, 1);
  {
    ZRAccumXProdPair copy(original), assigned(2, 3);  // assigned's stores must grow
    assigned = original;
    for (ZRAccumXProdPair * acc : {&copy, &assigned}) {
      acc->Update(2, 1.0, 0, 2.0, 1.0);
      ASSERT_TRUE(acc->Update(2, 3.0, 0, 5.0, 1.0));
      EXPECT_EQ(acc->GetTotalCases().GetElem(1), 2.0);
    }
  }
  EXPECT_EQ(original.GetTotalCases().GetElem(1), 0.0);
  original.Update(1, 1.0, 0, 2.0, 1.0);  // waits in the raw sums
  original.InitAll();                    // 3 rows each, zero; the counts stay
  EXPECT_EQ(original.GetCovar().GetNRows(), 3);
  const Grid d = RandomData(60, 3, 19, 1.0);
  Feed(original, d);
  ASSERT_TRUE(original.Finish());
  ExpectTwoPass(original, {&d}, 64 * kEps);
}

TEST(ZRAccumXProdPairDisplay, FixedListing) {
  ZRAccumXProdPair acc(2, 5);
  acc.Update(1, 3.0, 0, 4.0, 2.0);  // sums 2, 6, 8; squares 18 and 32; products 24
  std::string want =
      "\nZRAccumXProdPair display start\nNumber of variables = 2"
      "\nNumber of accumulations = 5";
  const char * const rows[][2] = {
      {"counts of accumulations", "1"},
      {"accumulated numbers of cases", "2"},
      {"accumulated sums of first variable", "6"},
      {"accumulated sums of second variable", "8"},
      {"accumulated sums of squares of first variable", "6"},  // Intended: fmSum1 again
      {"accumulated sums of cross-products", "24"},            // fmSumSq2 not shown
      {"total numbers of cases", "0"},
      {"means of first variable", "0"},
      {"means of second variable", "0"},
      {"variances of first variable", "0"},
      {"variances of second variable", "0"},
      {"covariances", "0"}};
  for (const auto & row : rows)
    want += std::string("\nThe matrix of ") + row[0] +
            " (number of elements = 1, number of rows = 1)\nrow  0: \n  " + row[1];
  for (const bool corr : {false, true}) {
    if (corr) {  // two rows, all missing: a zero variance and a diagonal past the store
      acc.GetCorr();
      want +=
          "\nThe matrix of correlations (number of elements = 3, number of rows = 2)"
          "\nrow  0: \n  miss\nrow  1: \n  miss miss";
    }
    zrtest::DisplayCapture cap;
    acc.Display();
    EXPECT_EQ(cap.Text(), want + "\nZRAccumXProdPair display end");
  }
}

}  // namespace
