// Partial summaries of one data set, made over many runs of cases and merged in several
// orders, against the two-pass summary of the whole: the accuracy that a build spread over
// threads or processes relies on. Also the NIST StRD NumAcc sets through 64 merged parts.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "support/refdata.h"
#include "zrcommon920r/math/bitset.h"
#include "zrcommon920r/math/matrix/rectmatrix.h"
#include "zrcommon920r/math/matrix/symmatrix.h"
#include "zrcommon920r/math/stats/meansxprod.h"

namespace {

using ZRMath_920::ZRBitSet;
using ZRMath_920::ZRMeansXProdData;
using ZRMath_920::ZRMeansXProducts;
using ZRMath_920::ZRRectMatrix;
using ZRMath_920::ZRSymMatrix;
using Vec = std::vector<double>;

// n cases of p - 1 correlated predictors about large offsets, a response linear in them
// plus noise, and a whole-number frequency weight (1 to 5) in the last column.
ZRRectMatrix RegressionData(int n, int p, unsigned seed) {
  std::mt19937 gen(seed);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  ZRRectMatrix x(n, p + 1, true);
  for (int r = 0; r < n; ++r) {
    const double common = u(gen);
    double y = 3.0;
    for (int i = 0; i + 1 < p; ++i) {
      const double v = 50.0 * (i + 1) + (1.0 + 0.5 * i) * u(gen) + 0.7 * common;
      x.SetElem(r, i, v);
      y += (i % 2 == 0 ? 1.5 : -0.25 * i) * v;
    }
    x.SetElem(r, p - 1, y + 0.3 * u(gen));
    x.SetElem(r, p, 1.0 + static_cast<double>(gen() % 5));
  }
  return x;
}

// Boundaries 0 = b0 <= b1 <= ... <= b_parts = n of the runs of cases.
enum class Split { kEven, kRandom, kLopsided };
std::vector<int> Cuts(int n, int parts, Split split, unsigned seed) {
  std::vector<int> cut(parts + 1, 0);
  std::mt19937 gen(seed);
  for (int k = 1; k < parts; ++k) {
    if (split == Split::kEven) {
      cut[k] = static_cast<int>(static_cast<long long>(n) * k / parts);
    } else if (split == Split::kRandom) {
      cut[k] = static_cast<int>(gen() % static_cast<unsigned>(n + 1));  // repeats: empty runs
    } else {
      cut[k] = std::min(n, k * k);  // runs of 1, 3, 5, ... cases, the rest in the last
    }
  }
  cut[parts] = n;
  std::sort(cut.begin(), cut.end());
  return cut;
}

// Two-pass summaries of the non-empty runs, in run order.
std::vector<ZRMeansXProducts> Parts(const ZRRectMatrix & x, int p, const std::vector<int> & cut,
                                    bool freqWt) {
  std::vector<ZRMeansXProducts> parts;
  for (std::size_t k = 0; k + 1 < cut.size(); ++k) {
    if (cut[k + 1] == cut[k]) continue;  // Compute would read 0 rows as all of them
    ZRRectMatrix block;
    EXPECT_TRUE(block.CopyRows(x, cut[k], cut[k + 1] - cut[k]));
    parts.emplace_back(p, true, freqWt, false);
    EXPECT_TRUE(parts.back().Compute(block, 0));
  }
  return parts;
}

// The parts joined in run order, reversed, shuffled, or pairwise as a tree.
enum class Order { kForward, kReverse, kShuffled, kTree };
ZRMeansXProdData Join(const std::vector<ZRMeansXProducts> & parts, Order order, unsigned seed) {
  std::vector<ZRMeansXProdData> work(parts.begin(), parts.end());
  if (order == Order::kReverse) std::reverse(work.begin(), work.end());
  if (order == Order::kShuffled) std::shuffle(work.begin(), work.end(), std::mt19937(seed));
  if (order == Order::kTree) {
    for (std::size_t width = 1; width < work.size(); width *= 2)
      for (std::size_t k = 0; k + width < work.size(); k += 2 * width)
        EXPECT_TRUE(work[k].Merge(work[k + width]));
    return work.front();
  }
  ZRMeansXProdData total;  // no variables: it takes the first one's shape
  for (const ZRMeansXProdData & part : work) EXPECT_TRUE(total.Merge(part));
  return total;
}

// Regression coefficients of the last variable on the others, by sweeping the predictors.
Vec Coefficients(const ZRMeansXProdData & s) {
  const int p = s.GetNVars() - 1;
  ZRSymMatrix a = s.GetXProds();
  ZRBitSet entered;
  double logDet = 0.0;
  EXPECT_TRUE(a.SweepOnMany(p, 1e-10, true, entered, logDet, true, nullptr));
  EXPECT_EQ(entered.InSet(), p);
  Vec b;
  EXPECT_TRUE(a.GetRegCoeffs(b, entered));
  return b;
}

// Largest errors of a merged summary against the whole's: means relative, element (i, j)
// relative to sqrt(C_ii C_jj), coefficients normwise.
struct Errors {
  double mean = 0.0, xprod = 0.0, coef = 0.0;
  void Max(const Errors & o) {
    mean = std::max(mean, o.mean);
    xprod = std::max(xprod, o.xprod);
    coef = std::max(coef, o.coef);
  }
};

Errors Compare(const ZRMeansXProdData & got, const ZRMeansXProdData & want) {
  Errors e;
  const int p = want.GetNVars();
  for (int i = 0; i < p; ++i) {
    e.mean = std::max(e.mean, zrtest::RelErr(got.GetMeans()[i], want.GetMeans()[i]));
    for (int j = 0; j <= i; ++j) {
      const double scale =
          std::sqrt(want.GetXProds().GetElem(i, i) * want.GetXProds().GetElem(j, j));
      e.xprod = std::max(
          e.xprod,
          std::fabs(got.GetXProds().GetElem(i, j) - want.GetXProds().GetElem(i, j)) / scale);
    }
  }
  const Vec b = Coefficients(got), b1 = Coefficients(want);
  double diff = 0.0, norm = 0.0;
  for (std::size_t k = 0; k < b1.size(); ++k) {
    diff += (b[k] - b1[k]) * (b[k] - b1[k]);
    norm += b1[k] * b1[k];
  }
  e.coef = std::sqrt(diff / norm);
  return e;
}

TEST(ZRMeansXProdDataMergeScale, ManyPartsInAnyOrderMatchTheWhole) {
  // Bounds a threaded or distributed fit promises against one process. Each merge adds a
  // few roundings of the offset between means, and the whole's own sums differ from the
  // parts' by as much (observed 5e-15 for the means, 1.4e-14 for the cross-products); the
  // coefficients add the condition of the predictors' matrix (observed 3e-14).
  constexpr double kMeanTol = 1e-12, kXProdTol = 1e-12, kCoefTol = 1e-12;
  constexpr int kCases = 6000, kVars = 8;
  const ZRRectMatrix x = RegressionData(kCases, kVars, 2024);
  ZRMeansXProducts whole(kVars, true, true, false);
  ASSERT_TRUE(whole.Compute(x, 0));

  Errors worst;
  for (const int nParts : {1, 2, 7, 64}) {
    for (const Split split : {Split::kEven, Split::kRandom, Split::kLopsided}) {
      const std::vector<int> cut = Cuts(kCases, nParts, split, 17u * nParts);
      const std::vector<ZRMeansXProducts> parts = Parts(x, kVars, cut, true);
      for (const Order order : {Order::kForward, Order::kReverse, Order::kShuffled, Order::kTree}) {
        SCOPED_TRACE(testing::Message() << nParts << " parts, split " << static_cast<int>(split)
                                        << ", order " << static_cast<int>(order));
        const ZRMeansXProdData total = Join(parts, order, 5u + nParts);
        EXPECT_EQ(total.GetNCases(), whole.GetNCases());  // sums of whole numbers: exact
        const Errors e = Compare(total, whole);
        EXPECT_LE(e.mean, kMeanTol);
        EXPECT_LE(e.xprod, kXProdTol);
        EXPECT_LE(e.coef, kCoefTol);
        worst.Max(e);
      }
    }
  }
  std::printf("merged against one pass: means %.2g, cross-products %.2g, coefficients %.2g\n",
              worst.mean, worst.xprod, worst.coef);
  RecordProperty("max_mean_relerr", std::to_string(worst.mean));
  RecordProperty("max_xprod_relerr", std::to_string(worst.xprod));
  RecordProperty("max_coef_relerr", std::to_string(worst.coef));
}

TEST(ZRMeansXProdDataMergeScale, NistNumAccKeepTheirDigits) {  // data: numacc*.csv
  // Log relative error (digits) against the certified mean and sd; a merged summary may
  // lose at most one digit against the two-pass summary of the whole set.
  const auto cert = zrtest::LoadRefTable("math/stats/numacc_cert.csv", 1);
  ASSERT_EQ(cert.size(), 4u);
  for (int set = 0; set < 4; ++set) {
    const auto rows =
        zrtest::LoadRefTable("math/stats/numacc" + std::to_string(set + 1) + ".csv", 0);
    const int n = static_cast<int>(rows.size());
    ZRRectMatrix x(n, 1, true);
    for (int r = 0; r < n; ++r) x.SetElem(r, 0, rows[r].out[0]);
    ZRMeansXProducts whole(1, true, false, false);
    ASSERT_TRUE(whole.Compute(x, 0));
    auto digits = [&](const ZRMeansXProdData & s, double & mean, double & sd) {
      mean = zrtest::Lre(s.GetMeans()[0], cert[set].out[0]);
      sd = zrtest::Lre(std::sqrt(s.GetXProds().GetElem(0) / (s.GetNCases() - 1.0)),
                       cert[set].out[1]);
    };
    double mean1 = 0.0, sd1 = 0.0, worstMean = 16.0, worstSd = 16.0;
    digits(whole, mean1, sd1);
    for (const Split split : {Split::kEven, Split::kRandom, Split::kLopsided}) {
      for (const Order order : {Order::kForward, Order::kShuffled, Order::kTree}) {
        SCOPED_TRACE(testing::Message() << cert[set].where << ", split " << static_cast<int>(split)
                                        << ", order " << static_cast<int>(order));
        const auto parts = Parts(x, 1, Cuts(n, 64, split, 3u + set), false);
        const ZRMeansXProdData total = Join(parts, order, 11u + set);
        ASSERT_EQ(total.GetNCases(), n);
        double mean = 0.0, sd = 0.0;
        digits(total, mean, sd);
        EXPECT_GE(mean, mean1 - 1.0) << "one pass " << mean1;
        EXPECT_GE(sd, sd1 - 1.0) << "one pass " << sd1;
        worstMean = std::min(worstMean, mean);
        worstSd = std::min(worstSd, sd);
      }
    }
    std::printf(
        "NumAcc%d digits, one pass / fewest merged from 64: mean %.2f / %.2f, sd %.2f / %.2f\n",
        set + 1, mean1, worstMean, sd1, worstSd);
  }
}

}  // namespace
