// Gains tables: the segment shapes worked by hand (n = 1000, 50, 7, 101), fractional and
// unusable frequencies, NaN scores, the classifier's hits and missing probabilities; the
// segmenting rule's properties over n = 0..300 and 1..120 segments, each row's records
// recovered from its count and lowest score; the classification matrix's bounds.
#include "zrcommon920r/math/stats/gains.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <vector>

namespace {

using ZRMath_920::ClassDataInfo;
using ZRMath_920::ClassGainsChart;
using ZRMath_920::LiftInfo;
using ZRMath_920::RegDataInfo;
using ZRMath_920::RegGainsChart;
using ZRMath_920::ZRClassificationMatrix;
constexpr double kMiss = ZRCommon_920::kSysMisValue;
const double kNaN = std::numeric_limits<double>::quiet_NaN();

// n records of frequency 1 and value 1 whose scores 1..n arrive shuffled, so that sorted
// position p holds score n - p.
std::vector<RegDataInfo> Ranked(int n, unsigned seed) {
  std::vector<RegDataInfo> data;
  for (int i = 1; i <= n; ++i) data.emplace_back(i, 1.0, 1.0);
  std::shuffle(data.begin(), data.end(), std::mt19937(seed));
  return data;
}

RegGainsChart RegChart(int segments) {
  RegGainsChart chart;
  chart.SetCountOfSegment(segments);
  return chart;
}

TEST(RegGainsChart, SegmentShapesWorkedByHand) {
  // Each case: rows expected, then (row, first record, last record) for a few rows; the
  // scores n - p make a row's lowest score n - last and its mean n - (first + last) / 2.
  struct Span {
    int row, first, last;
  };
  struct {
    int line, n, segments, rows, finalCum;
    std::vector<Span> spans;
  } const cases[] = {
      // t = 10: 11 leading records, s = 50, 20 + 1 rows, the last from 961 to 999.
      {__LINE__, 1000, 20, 21, 1000, {{0, 0, 10}, {1, 11, 60}, {19, 911, 960}, {20, 961, 999}}},
      // t = 0.5 is not above 0.5: no leading row, s = 2, rows 0 and 1 both records 0-1, the
      // last row from 36 to the end; the overlap adds 2 to the final count.
      {__LINE__, 50, 20, 20, 52, {{0, 0, 1}, {1, 0, 1}, {2, 2, 3}, {19, 36, 49}}},
      // s = 0 becomes 1: 7 rows, rows 0 and 1 both record 0, the last row records 5 and 6.
      {__LINE__, 7, 20, 7, 8, {{0, 0, 0}, {1, 0, 0}, {2, 1, 1}, {6, 5, 6}}},
      // t = 0.51: 1 leading record; s = 51 / 2 = 25; the remainder goes to the last row.
      {__LINE__, 51, 2, 3, 51, {{0, 0, 0}, {1, 1, 25}, {2, 26, 50}}},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    std::vector<RegDataInfo> data = Ranked(c.n, 7);
    const std::vector<LiftInfo> rows = RegChart(c.segments).CalculateGains(data);
    ASSERT_EQ(rows.size(), static_cast<std::size_t>(c.rows));
    EXPECT_EQ(rows.back().fnCumCount, c.finalCum);
    for (const Span & s : c.spans) {
      SCOPED_TRACE(s.row);
      const LiftInfo & r = rows[s.row];
      const int count = s.last - s.first + 1;
      EXPECT_EQ(r.fnCumCount - (s.row > 0 ? rows[s.row - 1].fnCumCount : 0), count);
      EXPECT_EQ(r.fdSum, count);
      EXPECT_EQ(r.fdMinScore, c.n - s.last);
      EXPECT_EQ(r.fdMeanScore, c.n - (s.first + s.last) / 2.0);
    }
    for (int p = 0; p < c.n; ++p) ASSERT_EQ(data[p].fdScore, c.n - p) << "sorted in place";
  }
}

TEST(RegGainsChart, FrequenciesAndDegenerateInputs) {
  for (int segments : {0, -1}) {  // no rows, and no division by zero
    std::vector<RegDataInfo> data = Ranked(10, 1);
    EXPECT_TRUE(RegChart(segments).CalculateGains(data).empty()) << segments;
  }
  // One segment of two records: count = int(2.7) + int(1.5) = 3; sum of freq * value =
  // 27 + 6 = 33; mean score (3 * 2.7 + 1 * 1.5) / 3 = 3.2.
  std::vector<RegDataInfo> data = {{1.0, 4.0, 1.5}, {3.0, 10.0, 2.7}};
  std::vector<LiftInfo> rows = RegChart(1).CalculateGains(data);
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0].fnCumCount, 3);
  EXPECT_DOUBLE_EQ(rows[0].fdSum, 33.0);
  EXPECT_EQ(rows[0].fdMinScore, 1.0);
  EXPECT_DOUBLE_EQ(rows[0].fdMeanScore, 3.2);

  // A NaN frequency or one outside the int range counts no record, yet weighs in the sums.
  data = {{2.0, 1.0, kNaN}, {1.0, 1.0, 3e9}, {0.5, 1.0, -3e9}, {0.25, 1.0, 2.0}};
  rows = RegChart(1).CalculateGains(data);
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0].fnCumCount, 2);
  EXPECT_TRUE(std::isnan(rows[0].fdSum));

  // A zero count divides as doubles: 1.0 / 0 is +infinity.
  data = {{2.0, 1.0, 0.5}};
  rows = RegChart(1).CalculateGains(data);
  EXPECT_EQ(rows[0].fnCumCount, 0);
  EXPECT_EQ(rows[0].fdMeanScore, std::numeric_limits<double>::infinity());
}

TEST(RegGainsChart, NaNScoresRankLastWithoutBreakingTheSort) {
  // Fault guarded: sorting by the records' own comparison, which is no ordering once a NaN
  // appears, is undefined; in practice it leaves numbers out of order.
  std::vector<RegDataInfo> data;
  for (int i = 0; i < 400; ++i) data.emplace_back(i % 3 == 0 ? kNaN : i, 1.0, 1.0);
  const std::vector<LiftInfo> rows = RegChart(4).CalculateGains(data);
  ASSERT_EQ(rows.size(), 5u);
  EXPECT_EQ(rows.back().fnCumCount, 400);
  for (std::size_t p = 0; p + 1 < 266; ++p) ASSERT_GT(data[p].fdScore, data[p + 1].fdScore);
  for (std::size_t p = 266; p < 400; ++p) ASSERT_TRUE(std::isnan(data[p].fdScore));
  EXPECT_EQ(rows[1].fdMinScore, 242.0);  // records 5..104: scores 391 down to 242
  EXPECT_TRUE(std::isnan(rows[4].fdMinScore));
}

TEST(RegGainsChart, SegmentingPropertiesOverSizes) {
  // Scores n - p let each row's records be recovered: its last record is n - fdMinScore
  // and its first that less the row's count plus 1.
  for (int n = 0; n <= 300; ++n) {
    const std::vector<RegDataInfo> base = Ranked(n, static_cast<unsigned>(n));
    for (int segments = 1; segments <= 120; ++segments) {
      SCOPED_TRACE(testing::Message() << "n " << n << " segments " << segments);
      std::vector<RegDataInfo> data = base;
      const std::vector<LiftInfo> rows = RegChart(segments).CalculateGains(data);
      const std::size_t wantRows = n == 0 ? 0 : n < segments ? n : segments + (n > 50 ? 1 : 0);
      ASSERT_EQ(rows.size(), wantRows);
      if (n == 0) continue;
      int prevCum = 0, prevEnd = 0, overlap = 0;
      for (std::size_t k = 0; k < rows.size(); ++k) {
        const int count = rows[k].fnCumCount - prevCum;
        prevCum = rows[k].fnCumCount;
        if (rows[k].fdMinScore == kMiss) {  // only a trailing row (n = 101, 100) reads none
          ASSERT_EQ(count, 0);
          ASSERT_EQ(prevEnd, n);
          ASSERT_TRUE(std::isnan(rows[k].fdMeanScore));  // 0 / 0
          continue;
        }
        const int end = n - static_cast<int>(rows[k].fdMinScore) + 1;
        const int begin = end - count;
        ASSERT_EQ(rows[k].fdSum, count);
        ASSERT_GE(begin, 0);
        ASSERT_LE(begin, prevEnd) << "row " << k << " leaves a gap";
        overlap += std::max(0, prevEnd - begin);
        prevEnd = std::max(prevEnd, end);
      }
      ASSERT_EQ(prevEnd, n);
      ASSERT_EQ(rows.back().fnCumCount, n + overlap);
    }
  }
}

TEST(ClassGainsChart, HitsMissingProbabilitiesAndEmptyClasses) {
  // Class 0, three segments of three records: s = 1, no leading row, rows 0 and 1 both the
  // top record, row 2 the rest.
  std::vector<std::vector<ClassDataInfo>> data(2);
  data[0] = {{0.5, false, 1.0}, {kMiss, true, 2.0}, {0.9, true, 2.7}};
  ClassGainsChart chart;
  chart.SetCountOfSegment(3);
  const auto tables = chart.CalculateGains(data);
  ASSERT_EQ(tables.size(), 2u);
  EXPECT_TRUE(tables[1].empty());
  ASSERT_EQ(tables[0].size(), 3u);
  EXPECT_EQ(data[0][0].fdProb, 0.9);
  EXPECT_EQ(data[0][2].fdProb, kMiss);
  for (int k : {0, 1}) {
    SCOPED_TRACE(k);
    const LiftInfo & r = tables[0][k];
    EXPECT_EQ(r.fnCumCount, 2 * (k + 1));
    // Intended: the hit adds int(2.7) = 2 while the mean divides 0.9 * 2.7 by that 2.
    EXPECT_EQ(r.fdSum, 2.0);
    EXPECT_EQ(r.fdMinScore, 0.9);
    EXPECT_DOUBLE_EQ(r.fdMeanScore, 1.215);
  }
  // A missing probability makes the row's statistics missing, but its records count.
  const LiftInfo & r = tables[0][2];
  EXPECT_EQ(r.fnCumCount, 7);
  EXPECT_EQ(r.fdSum, 2.0);
  EXPECT_EQ(r.fdMinScore, kMiss);
  EXPECT_EQ(r.fdMeanScore, kMiss);

  chart.SetCountOfSegment(0);
  const auto none = chart.CalculateGains(data);
  ASSERT_EQ(none.size(), 2u);
  EXPECT_TRUE(none[0].empty());
  EXPECT_TRUE(none[1].empty());
}

TEST(ZRClassificationMatrix, BoundsAndWeights) {
  ZRClassificationMatrix m(3);
  struct {
    int line;
    double weight;
    int row, col;
  } const refused[] = {
      {__LINE__, 0.0, 0, 0}, {__LINE__, -1.0, 1, 1}, {__LINE__, kNaN, 1, 1}, {__LINE__, 1.0, 3, 0},
      {__LINE__, 1.0, 0, 3}, {__LINE__, 1.0, -1, 0}, {__LINE__, 1.0, 0, -1},
  };
  for (const auto & c : refused) {
    SCOPED_TRACE(c.line);
    EXPECT_FALSE(m.UpdateData(c.weight, c.row, c.col));
  }
  EXPECT_EQ(m.GetTotal(), 0.0);
  EXPECT_TRUE(m.UpdateData(1.5, 2, 0));
  EXPECT_TRUE(m.UpdateData(0.25, 2, 0));
  EXPECT_TRUE(m.UpdateData(2.0, 0, 2));
  const ZRClassificationMatrix before = m;
  EXPECT_TRUE(m.UpdateData(4.0, 1, 1));
  EXPECT_EQ(m.GetTotal(), 7.75);
  const double want[3][3] = {{0, 0, 2.0}, {0, 4.0, 0}, {1.75, 0, 0}};
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) EXPECT_EQ(m.GetMatrix().GetElem(i, j), want[i][j]);
  EXPECT_EQ(before.GetMatrix().GetElem(1, 1), 0.0) << "copy shares the counts";
  EXPECT_EQ(before.GetTotal(), 3.75);

  // No classes, negative counts and a table too large to hold refuse every update.
  for (int n : {0, -2, 50000}) {
    SCOPED_TRACE(n);
    ZRClassificationMatrix empty(n);
    EXPECT_FALSE(empty.UpdateData(1.0, 0, 0));
    EXPECT_EQ(empty.GetTotal(), 0.0);
  }
}

}  // namespace
