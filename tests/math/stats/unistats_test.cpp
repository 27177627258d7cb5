// Univariate statistics: ZRContStats on the NIST StRD NumAcc sets (case by case, pooled
// from parts, as frequency-weighted distinct values) and on weighted data against long
// double two-pass sums, pooled parts against one pass, its weight and refusal rules;
// ZRCatStats and its GetNCategories quirk; one ZRUniStats::IsValid case per rule;
// ZRExtremeNum::SumSqRoot at 1e+-200 in every sign case; the displays.
#include "zrcommon920r/math/stats/unistats.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <iterator>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/alloccount.h"
#include "support/capture.h"
#include "support/refdata.h"

namespace {

using ZRMath_920::ZRCatStats;
using ZRMath_920::ZRContStats;
using ZRXML_920::ZRUniStats;
using Vec = std::vector<double>;
using zrtest::Lre;
constexpr double kEps = 2.220446049250313e-16, kMiss = ZRCommon_920::kSysMisValue;
const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();

TEST(ZRContStatsNist, NumAccDigits) {  // data: tests/data/math/stats/numacc*.csv
  // Certified values are decimals: their representation error bounds sd at 9.46 digits for
  // NumAcc3, 8.25 for NumAcc4 (numacc_cert.csv). Against the doubles' exact values, case by
  // case keeps about 10.7 digits of sd at mean / sd = 1e8; pooling and frequency weights
  // difference means rounded once to doubles (|mean| eps: 2e-8 of sd in NumAcc4), an error
  // the case-by-case steps average out.
  const char * const paths[3] = {"update", "pool", "freq"};
  const double certSd[4] = {15.0, 15.0, 9.4, 8.2},
               exactSd[3][4] = {
                   {15.5, 15.0, 11.3, 10.5}, {15.5, 15.0, 11.3, 9.6}, {15.5, 15.0, 9.7, 8.7}};
  const auto cert = zrtest::LoadRefTable("math/stats/numacc_cert.csv", 1);
  ASSERT_EQ(cert.size(), 4u);
  for (int set = 0; set < 4; ++set) {
    SCOPED_TRACE(cert[set].where);
    Vec x;
    for (const auto & row :
         zrtest::LoadRefTable("math/stats/numacc" + std::to_string(set + 1) + ".csv", 0))
      x.push_back(row.out[0]);
    const std::size_t n = x.size();
    ZRContStats s[3];
    for (double v : x) ASSERT_TRUE(s[0].Update(v));
    std::size_t cuts[] = {0, 1, 2, n / 7, n / 3, n / 2, n};  // seven parts, some empty
    std::sort(std::begin(cuts), std::end(cuts));
    for (std::size_t k = 0; k + 1 < std::size(cuts); ++k) {
      ZRContStats part;
      for (std::size_t i = cuts[k]; i < cuts[k + 1]; ++i) part.Update(x[i]);
      s[1].Pool(part);
    }
    std::map<double, double> freq;
    for (double v : x) freq[v] += 1.0;
    for (const auto & [v, f] : freq) ASSERT_TRUE(s[2].Update(v, f, 1.0));
    const Vec & c = cert[set].out;  // certified mean, sd; exact mean, sd of the doubles
    for (int p = 0; p < 3; ++p) {
      SCOPED_TRACE(paths[p]);
      const double mean = s[p].GetMean(), sd = std::sqrt(s[p].GetVariance());
      const double lre[4] = {Lre(mean, c[0]), Lre(sd, c[1]), Lre(mean, c[2]), Lre(sd, c[3])};
      std::printf("NumAcc%d %-6s LRE: mean %5.2f sd %5.2f (exact for the doubles %5.2f %5.2f)\n",
                  set + 1, paths[p], lre[0], lre[1], lre[2], lre[3]);
      RecordProperty("numacc" + std::to_string(set + 1) + "_" + paths[p] + "_lre_sd",
                     std::to_string(lre[1]));
      EXPECT_GE(std::min(lre[0], lre[2]), 15.0);
      EXPECT_GE(lre[1], certSd[set]);
      EXPECT_GE(lre[3], exactSd[p][set]);
      EXPECT_EQ(s[p].GetSumFreq(), static_cast<double>(n));
      EXPECT_EQ(s[p].GetExtrema(), std::make_pair(*std::min_element(x.begin(), x.end()),
                                                  *std::max_element(x.begin(), x.end())));
    }
  }
}

// Cases x about offset with spread 1, frequency weights 1 to 4 and regression weights 0.5
// to 2; one case in 8 gets a frequency, one in 8 a regression weight, of 0 or below.
struct Case {
  double x, f, r;
};
struct Summary {
  double min, max, sumFreq, sumWt, mean, variance;
};
std::vector<Case> RandomCases(int n, double offset, unsigned seed) {
  std::mt19937 gen(seed);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  std::vector<Case> cases(n);
  for (int i = 0; i < n; ++i) {
    cases[i] = {offset + u(gen), 1.0 + static_cast<double>(gen() % 4), 1.25 + 0.75 * u(gen)};
    if (i % 8 == 3) cases[i].f = i % 16 == 3 ? 0.0 : -2.0;
    if (i % 8 == 5) cases[i].r = i % 16 == 5 ? 0.0 : -0.5;
  }
  return cases;
}

// Two passes in long double, a weight not above 0 taken as 1.
Summary TwoPass(const std::vector<Case> & cases) {
  long double sumF = 0, sumC = 0, sumCx = 0, ssq = 0;
  auto weight = [](double w) -> long double { return w > 0 ? w : 1.0; };
  for (const Case & c : cases) {
    sumF += weight(c.f);
    sumC += weight(c.f) * weight(c.r);
    sumCx += weight(c.f) * weight(c.r) * c.x;
  }
  const long double mean = sumCx / sumC;
  for (const Case & c : cases) ssq += weight(c.f) * weight(c.r) * (c.x - mean) * (c.x - mean);
  const auto byX = [](const Case & a, const Case & b) { return a.x < b.x; };
  return {std::min_element(cases.begin(), cases.end(), byX)->x,
          std::max_element(cases.begin(), cases.end(), byX)->x,
          double(sumF),
          double(sumC),
          double(mean),
          double(ssq / (sumF - 1))};
}

TEST(ZRContStats, WeightedAndPooledMatchTwoPassLongDouble) {
  // In eps times scale = 1 + |offset| / spread. Mean: each step rounds it relative to its
  // size, n steps adding like a random walk (observed 9 at n = 5000): 32 absolute.
  // Variance: each d^2 carries the mean's rounding (observed 2): 8 relative. Weight sum:
  // n rounded additions (observed 9 eps): 32 eps.
  struct {
    int line, n;
    double offset;
  } const configs[] = {{__LINE__, 2, 0.0},
                       {__LINE__, 50, 0.0},
                       {__LINE__, 1000, 0.0},
                       {__LINE__, 1000, 1e3},
                       {__LINE__, 5000, -1e3}};
  for (const auto & cfg : configs) {
    SCOPED_TRACE(cfg.line);
    const auto cases = RandomCases(cfg.n, cfg.offset, cfg.line);
    const std::size_t n = cases.size();
    const double scale = 1.0 + std::fabs(cfg.offset);
    auto expectNear = [&](const ZRContStats & s, const Summary & want) {
      EXPECT_EQ(s.GetExtrema(), std::make_pair(want.min, want.max));
      EXPECT_EQ(s.GetSumFreq(), want.sumFreq);  // small integers: exact
      EXPECT_LE(zrtest::RelErr(s.GetSumWt(), want.sumWt), 32 * kEps);
      EXPECT_LE(std::fabs(s.GetMean() - want.mean), 32 * kEps * scale);
      EXPECT_LE(zrtest::RelErr(s.GetVariance(), want.variance), 8 * kEps * scale);
    };
    const Summary want = TwoPass(cases);
    ZRContStats one;
    zrtest::AllocCounter counter;
    for (const Case & c : cases) one.Update(c.x, c.f, c.r);
    EXPECT_EQ(counter.Count(), 0);
    expectNear(one, want);
    // Pooled parts, empty ones at either end and in the middle among them.
    for (const std::vector<std::size_t> & cuts : {std::vector<std::size_t>{0, 0, n},
                                                  {0, n, n},
                                                  {0, 1, n},
                                                  {0, n / 2, n / 2, n},
                                                  {0, n / 5, n / 3, n - 1, n}}) {
      ZRContStats pooled;
      for (std::size_t k = 0; k + 1 < cuts.size(); ++k) {
        ZRContStats part;
        for (std::size_t i = cuts[k]; i < cuts[k + 1]; ++i)
          part.Update(cases[i].x, cases[i].f, cases[i].r);
        pooled.Pool(part);
      }
      expectNear(pooled, want);
    }
    // Pooled with itself: every case twice, that is frequencies doubled.
    std::vector<Case> doubled = cases;
    for (Case & c : doubled) c.f = 2.0 * (c.f > 0.0 ? c.f : 1.0);
    one.Pool(one);
    expectNear(one, TwoPass(doubled));
  }
}

TEST(ZRContStats, WeightRulesRefusalsAndEmptyAnswers) {
  struct {
    int line;
    std::vector<Case> cases;
    const char * taken;  // '.' taken, 'r' refused, per case
    double sumFreq, mean, variance;
  } const rows[] = {
      {__LINE__, {}, "", 0.0, kMiss, kMiss},
      {__LINE__, {{1.0, 0.0, 0.0}}, ".", 1.0, 1.0, kMiss},  // weights 0 count as 1
      {__LINE__, {{4.0, 2.0, 1.0}}, ".", 2.0, 4.0, 0.0},    // one case of frequency 2
      {__LINE__, {{1.0, -3.0, 1.0}, {3.0, 1.0, -1.0}}, "..", 2.0, 2.0, 2.0},
      {__LINE__, {{5.0, kMiss, 1.0}, {kMiss, 1.0, 1.0}, {5.0, 1.0, kMiss}}, "rrr", 0, kMiss, kMiss},
      // Composite weights 1 and 3: mean 13 / 4, SSQ (1 * 3 / 4) 3^2 = 6.75. Intended: over
      // the frequency sum less 1.
      {__LINE__, {{1.0, 1.0, 1.0}, {4.0, 1.0, 3.0}}, "..", 2.0, 3.25, 6.75},
  };
  for (const auto & row : rows) {
    SCOPED_TRACE(row.line);
    ZRContStats s, copy;
    std::string taken;
    for (const Case & c : row.cases) taken += s.Update(c.x, c.f, c.r) ? '.' : 'r';
    EXPECT_EQ(taken, row.taken);
    copy.Pool(s);           // into an empty one: a copy
    s.Pool(ZRContStats());  // an empty one: nothing
    for (const ZRContStats * t : {&s, &copy}) {
      EXPECT_EQ(t->GetSumFreq(), row.sumFreq);
      EXPECT_EQ(t->GetMean(), row.mean);
      EXPECT_EQ(t->GetVariance(), row.variance);
    }
  }
  ZRContStats s;
  EXPECT_FALSE(s.Update(kMiss));
  ASSERT_TRUE(s.Update(kNaN, 1.0, kNaN));  // not refused: NaN carries into the sums
  EXPECT_TRUE(std::isnan(s.GetMean()));
}

TEST(ZRCatStats, CountsRefusalsPoolAndShrinkingBound) {
  ZRCatStats s;
  struct {
    int line;
    double category, weight;
    bool taken;
  } const updates[] = {
      {__LINE__, 2.9, 1.0, true},           {__LINE__, 0.0, 2.5, true},   // 2.9 counts in 2
      {__LINE__, 2.0, 0.0, true},           {__LINE__, 5.0, -4.0, true},  // weights <= 0 count 1
      {__LINE__, -0.5, 1.0, false},         {__LINE__, kMiss, 1.0, false},
      {__LINE__, 1.0, kMiss, false},        {__LINE__, kNaN, 1.0, false},
      {__LINE__, 4294967296.0, 1.0, false}, {__LINE__, kInf, 1.0, false},
  };
  for (const auto & u : updates) {
    SCOPED_TRACE(u.line);
    EXPECT_EQ(s.Update(u.category, u.weight), u.taken);
  }
  EXPECT_EQ(s.GetCounts(), (Vec{2.5, 0.0, 2.0, 0.0, 0.0, 1.0}));
  EXPECT_EQ(s.GetSumCounts(), 5.5);
  EXPECT_EQ(s.GetCatCount(6), 0.0);
  EXPECT_EQ(s.GetNCategories(true), 6u);
  // Intended: each zero lowers the scan's bound, so zeros near the end go unseen:
  // (2.5, 0, 2, 0, 0, 1) gives 4, and (0, 0, 0, 5) gives 2.
  EXPECT_EQ(s.GetNCategories(false), 4u);
  ZRCatStats zeros;
  zeros.Update(3.0, 5.0);
  EXPECT_EQ(zeros.GetNCategories(false), 2u);
  ZRCatStats shorter;
  shorter.Update(0.0, 1.0);
  shorter.Update(3.0, 4.0);
  shorter.Pool(s);  // lengthened to s's size
  EXPECT_EQ(shorter.GetCounts(), (Vec{3.5, 0.0, 2.0, 4.0, 0.0, 1.0}));
  shorter.Pool(shorter);  // with itself: doubled
  EXPECT_EQ(shorter.GetCounts(), (Vec{7.0, 0.0, 4.0, 8.0, 0.0, 2.0}));
}

TEST(ZRUniStats, IsValidOneCasePerRule) {
  auto summ = [](double min, double max, double mean, double sd) {
    ZRUniStats::SummStats s;
    s.fdMin = min;
    s.fdMax = max == kMiss ? kMiss : -max;  // held negated
    s.fdMean = mean;
    s.fdStdDev = sd;
    return s;
  };
  const auto good = summ(1.0, 5.0, 2.0, 1.5);
  const Vec freqs = {2.0, 3.0};
  struct {
    int line;
    ZRUniStats stats;
    bool valid;
  } const cases[] = {
      {__LINE__, ZRUniStats(), true},  // "x", continuous, 0 cases
      {__LINE__, ZRUniStats("v", 5, good, {0.0, 2.0, 6.0}, freqs), true},
      {__LINE__, ZRUniStats("", 5, good, {}, {}), false},  // 1: a name, cases >= 0
      {__LINE__, ZRUniStats("v", -1, good, {}, {}), false},
      {__LINE__, ZRUniStats("c", 1, {0.0, 4.0}), true},  // 2: categorical, none negative
      {__LINE__, ZRUniStats("c", 1, {1.0, -0.5}), false},
      {__LINE__, ZRUniStats("v", 5, good, {0.0, 2.0}, freqs), false},  // 3: one more bound
      {__LINE__, ZRUniStats("v", 5, good, {kMiss, 2.0, kMiss}, freqs), true},
      {__LINE__, ZRUniStats("v", 5, good, {0.0, kMiss, 6.0}, freqs), false},  // missing inside
      {__LINE__, ZRUniStats("v", 5, good, {kMiss, kMiss}, {5.0}), false},     // none known
      {__LINE__, ZRUniStats("v", 5, good, {0.0, 2.0, 2.0}, freqs), false},    // not rising
      {__LINE__, ZRUniStats("v", 5, good, {0.0, 2.0, 6.0}, {2.0, -3.0}), false},
      {__LINE__, ZRUniStats("v", 5, good, {0.0}, {}), false},  // 4: no frequencies, no bounds
      {__LINE__, ZRUniStats("v", 1.5, good, {}, {}), false},   // 5: below 2 cases, no sd
      {__LINE__, ZRUniStats("v", 1, summ(2.0, 2.0, 2.0, kMiss), {}, {}), true},
      {__LINE__, ZRUniStats("v", 0, summ(kMiss, kMiss, 2.0, kMiss), {}, {}), false},
      {__LINE__, ZRUniStats("v", 5, summ(1.0, 5.0, 2.0, -0.1), {}, {}), false},  // 6: sd >= 0
      {__LINE__, ZRUniStats("v", 5, summ(6.0, 5.0, 5.5, 0.1), {}, {}), false},   // min > max
      {__LINE__, ZRUniStats("v", 5, summ(5.0, 5.0, 5.0, 0.0), {}, {}), true},
      {__LINE__, ZRUniStats("v", 5, summ(6.0, kMiss, 6.0, 0.1), {}, {}), true},
      {__LINE__, ZRUniStats("v", kNaN, good, {}, {}), false},  // a NaN anywhere
      {__LINE__, ZRUniStats("v", 5, summ(1.0, 5.0, kNaN, 1.5), {}, {}), false},
      {__LINE__, ZRUniStats("v", 5, good, {0.0, kNaN, 6.0}, freqs), false},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(c.stats.IsValid(), c.valid);
  }
  ZRContStats acc;
  for (double x : {2.0, 4.0, 9.0}) acc.Update(x);  // mean 5, variance 26 / 2
  const ZRUniStats::SummStats s(acc);
  EXPECT_EQ(std::make_tuple(s.fdMin, s.fdMax, s.fdMean), std::make_tuple(2.0, -9.0, 5.0));
  EXPECT_LE(zrtest::RelErr(s.fdStdDev, std::sqrt(13.0)), 2 * kEps);
}

TEST(ZRExtremeNum, SumSqRootEverySignAtExtremeScales) {
  // Pythagorean triples at 1e+-200, whose squares overflow or underflow.
  struct {
    int line;
    double a, b, c, d, want;  // want NaN: false
  } const cases[] = {
      {__LINE__, 3e200, 1.0, 4e200, 1.0, 5e200},
      {__LINE__, 4e200, 1.0, 3e200, 1.0, 5e200},
      {__LINE__, 5e200, 1.0, 3e200, -1.0, 4e200},
      {__LINE__, 3e200, -1.0, 5e200, 1.0, 4e200},
      {__LINE__, 5e200, -1.0, 3e200, 1.0, kNaN},
      {__LINE__, 3e200, 1.0, 5e200, -1.0, kNaN},
      {__LINE__, 5e200, -1.0, 3e200, -1.0, kNaN},
      {__LINE__, 0.0, -1.0, 0.0, -1.0, kNaN},
      {__LINE__, 1e200, 1.0, 1e200, 1.0, std::sqrt(2.0) * 1e200},
      {__LINE__, 1e200, -1.0, 1e200, 1.0, 0.0},
      {__LINE__, 1e200, 1.0, 1e200, -1.0, 0.0},
      {__LINE__, 3e-200, 1.0, 4e-200, 1.0, 5e-200},
      {__LINE__, 5e-200, 1.0, 4e-200, -1.0, 3e-200},
      {__LINE__, 4e-200, -1.0, 5e-200, 1.0, 3e-200},
      {__LINE__, -3e100, 1e200, 4e100, 1e200, 5e200},  // p = |a| sqrt|b|
      {__LINE__, 5.0, 1.0, 7.0, -0.0, 5.0},            // -0.0 is not negative
      {__LINE__, kInf, 1.0, 1.0, -1.0, kInf},
      {__LINE__, 1.0, 1.0, 1.0, kNaN, kNaN},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    double r = -7.0;
    EXPECT_EQ(ZRMath_920::ZRExtremeNum::SumSqRoot(c.a, c.b, c.c, c.d, r), !std::isnan(c.want));
    if (std::isnan(c.want)) {
      EXPECT_EQ(r, -7.0);  // unchanged
    } else {
      EXPECT_LE(zrtest::RelErr(r, c.want), 4 * kEps);  // a division, a root, two products
    }
  }
}

TEST(ZRContStats, DisplayByteForByte) {
  ZRContStats cont;
  cont.Update(1.0, 2.0, 1.5);
  cont.Update(4.0, 1.0, 1.0);  // composite weights 3 and 1: mean 1.75, SSQ 6.75
  ZRCatStats cat;
  cat.Update(2.0, 1.5);
  zrtest::DisplayCapture capture;
  cont.Display();
  cat.Display();
  EXPECT_EQ(capture.Text(),
            "\nZRContStats display start\nMin & max\n  1 4\nSum of freq. wgts, composite wgts"
            "\n  3 4\nMean = 1.75\nSSQ = 6.75\nZRContStats display end\nZRCatStats display "
            "start\nCategory counts (size = 3)\n  0 0 1.5\nZRCatStats display end");
}

}  // namespace
