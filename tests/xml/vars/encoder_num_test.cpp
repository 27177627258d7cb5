// The numeric encoders: the bin search against std::lower_bound, cut points, merging of empty
// bins, missing values and rounding, copies and display texts.
#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "support/textio.h"
#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/xml/vars/encoder.h"

namespace {

using namespace ZRXML_920;
using zrtest::Shown;
using Cuts = std::vector<double>;
constexpr double kMiss = ZRCommon_920::kSysMisValue;  // also the lowest double

// Strictly ascending cut points with random gaps, some very small, crossing zero.
Cuts RandomCuts(int n, std::mt19937_64 & rng) {
  std::uniform_real_distribution<double> gap(1e-9, 3.0);
  Cuts cuts;
  double c = -0.4 * n;
  for (int i = 0; i < n; ++i) cuts.push_back(c += (i % 7 == 3 ? 1e-12 : gap(rng)));
  return cuts;
}

TEST(ZRBinningEncoder, SearchCountsCutPointsBelowValue) {
  std::mt19937_64 rng(20240611);
  for (int n : {1, 2, 9, 999}) {
    SCOPED_TRACE(n);
    const Cuts cuts = RandomCuts(n, rng);
    const ZRBinningEncoder enc(cuts);
    ASSERT_EQ(enc.GetNumberOfCategories(), n + 1);
    Cuts probes = {cuts.front() - 1.0, cuts.back() + 1.0, -DBL_MAX * 0.5, DBL_MAX, INFINITY};
    for (std::size_t i = 0; i < cuts.size(); ++i) {
      probes.insert(probes.end(), {cuts[i], std::nextafter(cuts[i], -INFINITY),
                                   std::nextafter(cuts[i], INFINITY)});
      if (i > 0) probes.push_back(0.5 * (cuts[i - 1] + cuts[i]));
    }
    for (double x : probes) {
      const auto below = std::lower_bound(cuts.begin(), cuts.end(), x) - cuts.begin();
      ASSERT_EQ(enc.Encode(x), static_cast<double>(below)) << "x = " << x;
    }
    EXPECT_EQ(enc.Encode(kMiss), -1.0);
    EXPECT_EQ(enc.Encode(NAN),
              static_cast<double>(n));  // no comparison holds, so the search runs to the top
  }
}

// Intended: below 2 bins no cut point is looked at; only the sign of x counts.
TEST(ZRBinningEncoder, BelowTwoBinsOnlyTheSignCounts) {
  const ZRBinningEncoder none, one(Cuts{}), equalOne(0.0, 10.0, 1), equalNone(0.0, 10.0, 0);
  for (const ZRBinningEncoder * enc : {&none, &one, &equalOne, &equalNone}) {
    EXPECT_TRUE(enc->GetBinningCutpoints().empty());
    const Cuts got = {enc->Encode(kMiss), enc->Encode(-1e-300), enc->Encode(0.0),
                      enc->Encode(123.0), enc->Encode(NAN)};
    EXPECT_EQ(got, (Cuts{-1, 0, 1, 1, 1}));
  }
}

TEST(ZRBinningEncoder, EqualWidthCutPointsFormedAfresh) {
  EXPECT_EQ(ZRBinningEncoder(0.0, 10.0, 5).GetBinningCutpoints(), (Cuts{2, 4, 6, 8}));
  // Over [0, 1] in tenths a running sum gives 0.7999999999999999 at i = 8, not 0.8.
  const double low = 0.0, step = (1.0 - low) / 10;
  const ZRBinningEncoder enc(low, 1.0, 10);
  EXPECT_EQ(enc.GetNumberOfCategories(), 10);
  ASSERT_EQ(enc.GetBinningCutpoints().size(), 9u);
  double sum = low;
  int sumDiffers = 0;
  for (int i = 1; i < 10; ++i) {
    EXPECT_EQ(enc.GetBinningCutpoints()[i - 1], low + i * step) << i;
    sumDiffers += (sum += step) != low + i * step;
  }
  EXPECT_GT(sumDiffers, 0);  // the case tells the two apart
}

// Each row worked by hand: bins (-inf, c0], (c0, c1], ..., (c_last, inf). A run of empty
// bins between occupied ones is split at the middle of the outer cut points; leading
// empty bins take the lowest double, trailing ones the highest.
TEST(ZRBinningEncoder, EmptyBinsMergeIntoNeighbours) {
  const double lo = kMiss, hi = DBL_MAX;
  const auto Bins = [](const ZRBinningEncoder & e) {
    return static_cast<int>(e.GetBinningCutpoints().size()) + 1;
  };
  struct {
    int line;
    Cuts cuts, freqs;
    bool merges;
    Cuts adjusted, rebinned;  // when merges
  } const cases[] = {
      {__LINE__, {1, 2, 3}, {3, 0, 0, 5}, true, {2}, {2, 2, 2}},
      {__LINE__, {1, 2, 3}, {0, 0, 3, 5}, true, {3}, {lo, lo, 3}},
      {__LINE__, {1, 2, 3}, {2, 5, 0, 0}, true, {1}, {1, hi, hi}},
      {__LINE__, {1, 2, 3, 4}, {1, 1, 0, 1, 1}, true, {1, 2.5, 4}, {1, 2.5, 2.5, 4}},
      {__LINE__, {1, 2, 3, 4, 5}, {1, 0, 2, 0, 0, 3}, true, {1.5, 4}, {1.5, 1.5, 4, 4, 4}},
      {__LINE__, {1, 2, 3, 4, 5}, {0, 2, -1, 3, 0, 0}, true, {2.5}, {lo, 2.5, 2.5, hi, hi}},
      {__LINE__, {1, 2}, {0, 0, 3}, false, {}, {}},  // one bin occupied
      {__LINE__, {1, 2}, {0, 0, 0}, false, {}, {}},
      {__LINE__, {1, 2}, {1, 4, 1}, false, {}, {}},     // all occupied
      {__LINE__, {1, 2}, {3, 0, 0, 5}, false, {}, {}},  // one frequency too many
      {__LINE__, {1, 2, 3}, {3, 0, 5}, false, {}, {}},  // one too few
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ZRBinningEncoder enc(c.cuts);
    const std::unique_ptr<ZRBinningEncoder> rebinned(enc.CreateRebinned(c.freqs));
    ASSERT_NE(rebinned, nullptr);
    EXPECT_EQ(rebinned->GetBinningCutpoints(), c.merges ? c.rebinned : c.cuts);
    EXPECT_EQ(rebinned->GetNumberOfCategories(), Bins(*rebinned));
    EXPECT_EQ(enc.GetBinningCutpoints(), c.cuts);  // the source is left alone
    EXPECT_EQ(enc.AdjustBinning(c.freqs), c.merges);
    EXPECT_EQ(enc.GetBinningCutpoints(), c.merges ? c.adjusted : c.cuts);
    EXPECT_EQ(enc.GetNumberOfCategories(), Bins(enc));
  }
}

// Rows: an encoder with the interval [3, 7.5] and the discrete missing value 10.
TEST(ZRNumericEncoders, MissingValuesAndRounding) {
  using R = IZRVariable::WRoundingOption;
  const double justAbove = std::nextafter(7.5, 8.0);
  struct {
    int line;
    double x;
    double cont, truncate, nearest, asIs;  // what each EncodeConst gives
  } const cases[] = {
      {__LINE__, kMiss, kMiss, kMiss, kMiss, kMiss},
      {__LINE__, 3.0, kMiss, kMiss, kMiss, kMiss},  // both ends of the interval are missing
      {__LINE__, 7.5, kMiss, kMiss, kMiss, kMiss},
      {__LINE__, 10.0, kMiss, kMiss, kMiss, kMiss},
      {__LINE__, 2.5, 2.5, 2.0, 3.0, 2.5},
      {__LINE__, justAbove, justAbove, 7.0, 8.0, justAbove},
      {__LINE__, 0.4, 0.4, kMiss, kMiss, 0.4},  // a weight rounding to 0 is missing
      {__LINE__, 0.6, 0.6, kMiss, 1.0, 0.6},
      {__LINE__, -0.0, -0.0, kMiss, kMiss, kMiss},  // a weight not above 0 is missing
      {__LINE__, -2.0, -2.0, kMiss, kMiss, kMiss},
      {__LINE__, DBL_MAX, DBL_MAX, DBL_MAX, DBL_MAX, DBL_MAX},
  };
  ZRContEncoder cont(0.0, 10.0, 5);
  ZRRoundEncoder truncate, nearest(R::kRoundNearest), asIs(R::kRoundAsIs);
  const std::vector<IZREncoder *> all = {&cont, &truncate, &nearest, &asIs};
  for (IZREncoder * e : all) {
    ASSERT_TRUE(e->SetMissingInterval(3.0, 7.5));
    ASSERT_TRUE(e->AddDiscreteUserMissing(10.0, "ten"));
  }
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    const double want[] = {c.cont, c.truncate, c.nearest, c.asIs};
    int k = 0;
    for (IZREncoder * e : all) {
      SCOPED_TRACE(k);
      EXPECT_EQ(e->EncodeConst(c.x), want[k]);
      EXPECT_EQ(e->Encode(c.x), want[k]);  // the continuous encoder never bins
      EXPECT_EQ(e->IsMissing(c.x), k == 0 ? c.cont == kMiss : c.asIs == kMiss);
      ++k;
    }
  }
  // NaN passes every missing test; rounding keeps it NaN, and NaN <= 0 is false. Text is
  // always missing, and there is nothing to decode.
  for (IZREncoder * e : all) {
    EXPECT_FALSE(e->IsMissing(NAN));
    EXPECT_TRUE(std::isnan(e->EncodeConst(NAN)));
    EXPECT_TRUE(e->Encode("1") == kMiss && e->EncodeConst("") == kMiss && e->IsMissing("1"));
    EXPECT_FALSE(e->AddDiscreteUserMissing("1", "one"));
    EXPECT_TRUE(e->Decode(0).empty() && e->DecodeNum(0) == kMiss);
  }
}

// Under ASan a copy sharing the source's binning fails once the source is gone.
TEST(ZRContEncoder, CopiesOwnTheirBinning) {
  auto source = std::make_unique<ZRContEncoder>(Cuts{1, 2, 4});
  ZRContEncoder copied(*source), assigned(0.0, 1.0, 7), emptied(Cuts{5});
  assigned = *source;
  emptied = ZRContEncoder();
  const std::unique_ptr<IZREncoder> cloned(source->Clone());
  source.reset();
  auto * clone = dynamic_cast<ZRContEncoder *>(cloned.get());
  ASSERT_NE(clone, nullptr);
  for (const ZRContEncoder * e : {&copied, &assigned, clone}) {
    ASSERT_NE(e->GetBinningEncoder(), nullptr);
    EXPECT_EQ(e->GetBinningEncoder()->GetBinningCutpoints(), (Cuts{1, 2, 4}));
    EXPECT_EQ(e->GetNumberOfCategories(), 4);
  }
  EXPECT_EQ(emptied.GetBinningEncoder(), nullptr);
}

TEST(ZREncoders, IntervalIsSetOnceAndStrictly) {
  ZRContEncoder cont;
  ZRRoundEncoder round;
  ZRCatNumEncoder num(1);
  for (IZREncoder * e : std::vector<IZREncoder *>{&cont, &round, &num}) {
    double low = 0, high = 0;
    EXPECT_FALSE(e->SetMissingInterval(3.0, 3.0) || e->SetMissingInterval(4.0, 3.0) ||
                 e->SetMissingInterval(NAN, 3.0) || e->GetMissingInterval(low, high));
    EXPECT_TRUE(e->SetMissingInterval(3.0, 3.5));
    EXPECT_FALSE(e->SetMissingInterval(0.0, 9.0));
    EXPECT_TRUE(e->GetMissingInterval(low, high));
    EXPECT_TRUE(low == 3.0 && high == 3.5);
    EXPECT_FALSE(e->IsMissing(5.0));
  }
  double low = 0, high = 0;
  ZRStringEncoder str(1);
  EXPECT_FALSE(str.SetMissingInterval(1, 2) || str.GetMissingInterval(low, high));
}

TEST(ZRNumericEncoders, DisplayTexts) {
  ZRContEncoder cont;
  cont.AddDiscreteUserMissing(9, "nine");
  cont.AddDiscreteUserMissing(1e6, "big");
  cont.SetMissingInterval(-1, 7.5);
  EXPECT_EQ(Shown(cont),
            "\tZRContEncoder: \nnumber of bins = 1\nDiscrete user missing values (size = 2)"
            "\n  9 1e+06\n\t\tMissing Value Labels: (size = 2)\n  \"nine\" \"big\""
            "\n\t\tUser-missing interval for this encoder: \n\t\t[ -1, 7.5 ]");
  EXPECT_EQ(Shown(ZRRoundEncoder()),
            "\nZRRoundEncoder: option = Truncate to smaller int"
            "\nDiscrete user missing values (size = 0)\n\t\tMissing Value Labels: (size = 0)");
  EXPECT_EQ(Shown(ZRBinningEncoder(0, 10, 5)),
            "\n\tZRBinningEncoder: number of bins = 5\n\t\tCutpoints (size = 4)\n  2 4 6 8");
}

}  // namespace
