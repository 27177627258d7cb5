// Gains tables of a regression model and of a classifier, and the classification matrix.
#include "zrcommon920r/math/stats/gains.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace ZRMath_920 {

namespace {

constexpr double kMiss = ZRCommon_920::kSysMisValue;

// Records counted by a frequency: truncated toward 0, and 0 when NaN or when the truncated
// value would not fit an int (converting it would be undefined).
std::int64_t RecordCount(double freq) {
  if (!(freq > -2147483649.0 && freq < 2147483648.0)) return 0;
  return static_cast<std::int64_t>(static_cast<int>(freq));
}

// A running count held in 64 bits, stored saturated into an int row field.
int SaturatedInt(std::int64_t v) {
  if (v > INT_MAX) return INT_MAX;
  if (v < INT_MIN) return INT_MIN;
  return static_cast<int>(v);
}

// Sorts highest key first, NaN keys last. operator< on the records is no ordering once a
// NaN appears, and std::sort with it is undefined, so the NaN keys are moved to the back
// first (one pass that moves nothing when there are none) and the sort then compares
// numbers only, by the records' own order, with no NaN test per comparison.
template <class Rec, class Key>
void SortDescending(std::vector<Rec> & data, Key key) {
  const auto numbers = std::partition(data.begin(), data.end(),
                                      [key](const Rec & r) { return !std::isnan(key(r)); });
  std::sort(data.begin(), numbers, [key](const Rec & a, const Rec & b) { return key(a) > key(b); });
}

// The row bounds [begin, end) of the segmenting rule for n sorted records.
struct RowRange {
  std::size_t begin, end;
};

std::vector<RowRange> Segment(std::size_t n, int nSegments) {
  std::vector<RowRange> rows;
  if (n == 0 || nSegments <= 0) return rows;
  const std::size_t segs = static_cast<std::size_t>(nSegments);
  std::size_t s = n / segs;
  const double t = static_cast<double>(n) * 0.01;
  // The top 1% forms a leading row once there are more than 50 records.
  const std::size_t first = t > 0.5 ? static_cast<std::size_t>(t) + 1 : 0;
  std::size_t nRows;
  if (s == 0) {
    s = 1;
    nRows = n;
  } else {
    nRows = segs + (first >= 1 ? 1 : 0);
  }
  rows.reserve(nRows);
  rows.push_back({0, first > 0 ? first : s});
  for (std::size_t k = 1; k < nRows; ++k) {
    // Intended: with first == 0 row 1 starts at record 0 again, overlapping row 0.
    const std::size_t start = std::min((k - 1) * s + first, n);
    const std::size_t end = k + 1 == nRows ? n : std::min(start + s, n);
    rows.push_back({start, end});
  }
  return rows;
}

}  // namespace

GainsChart::~GainsChart() = default;

std::vector<LiftInfo> RegGainsChart::CalculateGains(std::vector<RegDataInfo> & data) const {
  SortDescending(data, [](const RegDataInfo & r) { return r.fdScore; });
  const std::vector<RowRange> ranges = Segment(data.size(), fnSegments);
  std::vector<LiftInfo> result(ranges.size());
  std::int64_t cumCount = 0;
  for (std::size_t k = 0; k < ranges.size(); ++k) {
    LiftInfo & row = result[k];
    std::int64_t count = 0;
    double weighted = 0.0;
    for (std::size_t i = ranges[k].begin; i < ranges[k].end; ++i) {
      const RegDataInfo & r = data[i];
      count += RecordCount(r.fdFreq);
      row.fdSum += r.fdFreq * r.fdValue;
      weighted += r.fdScore * r.fdFreq;
      // !(x >= min) also lets a NaN score through, so the row's minimum shows it.
      if (i == ranges[k].begin || !(r.fdScore >= row.fdMinScore)) row.fdMinScore = r.fdScore;
    }
    cumCount += count;
    row.fnCumCount = SaturatedInt(cumCount);
    // Intended: the fractional weighted sum over the whole-record count; 0 / 0 is NaN.
    row.fdMeanScore = weighted / static_cast<double>(count);
  }
  return result;
}

std::vector<std::vector<LiftInfo>> ClassGainsChart::CalculateGains(
    std::vector<std::vector<ClassDataInfo>> & data) const {
  std::vector<std::vector<LiftInfo>> result(data.size());
  for (std::size_t c = 0; c < data.size(); ++c) {
    std::vector<ClassDataInfo> & recs = data[c];
    SortDescending(recs, [](const ClassDataInfo & r) { return r.fdProb; });
    const std::vector<RowRange> ranges = Segment(recs.size(), fnSegments);
    std::vector<LiftInfo> & table = result[c];
    table.resize(ranges.size());
    std::int64_t cumCount = 0;
    for (std::size_t k = 0; k < ranges.size(); ++k) {
      LiftInfo & row = table[k];
      std::int64_t count = 0, hits = 0;
      double weighted = 0.0, minProb = kMiss;
      bool anyMissing = false;
      for (std::size_t i = ranges[k].begin; i < ranges[k].end; ++i) {
        const ClassDataInfo & r = recs[i];
        const std::int64_t n = RecordCount(r.fdFreq);
        count += n;
        if (r.fbHit) hits += n;
        if (r.fdProb == kMiss) anyMissing = true;
        weighted += r.fdProb * r.fdFreq;
        if (i == ranges[k].begin || !(r.fdProb >= minProb)) minProb = r.fdProb;
      }
      cumCount += count;
      row.fnCumCount = SaturatedInt(cumCount);
      // Intended: hits add whole records (int(fdFreq)) while the mean below divides the
      // fractional sum of fdProb fdFreq by the whole-record count.
      row.fdSum = static_cast<double>(hits);
      if (!anyMissing && ranges[k].begin < ranges[k].end) row.fdMinScore = minProb;
      row.fdMeanScore = anyMissing ? kMiss : weighted / static_cast<double>(count);
    }
  }
  return result;
}

ZRClassificationMatrix::ZRClassificationMatrix(int n) : fnClasses(n), fmCounts(n, n, true) {}

ZRClassificationMatrix::~ZRClassificationMatrix() = default;

bool ZRClassificationMatrix::UpdateData(double weight, int row, int col) {
  if (!(weight > 0.0)) return false;
  if (row < 0 || row >= fnClasses || col < 0 || col >= fnClasses) return false;
  if (!fmCounts.IsValidMatrix()) return false;
  fmCounts.SetElem(row, col, fmCounts.GetElem(row, col) + weight);
  fdTotal += weight;
  return true;
}

}  // namespace ZRMath_920
