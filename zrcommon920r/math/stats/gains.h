// Model-evaluation summaries: gains tables of a regression model (RegGainsChart) and of a
// classifier (ClassGainsChart) over records ranked by score, and the weighted table of
// observed against predicted classes (ZRClassificationMatrix).
#ifndef ZRCOMMON920R_MATH_STATS_GAINS_H
#define ZRCOMMON920R_MATH_STATS_GAINS_H

#include <vector>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/matrix/rectmatrix.h"

namespace ZRMath_920 {

// One scored record of a regression model: its predicted score, its observed value and
// its frequency weight.
struct RegDataInfo {
  // Zeros.
  RegDataInfo() = default;
  RegDataInfo(double score, double value, double freq)
      : fdScore(score), fdValue(value), fdFreq(freq) {}
  // True when this score is the greater, so that sorting puts the highest score first.
  bool operator<(const RegDataInfo & o) const { return fdScore > o.fdScore; }

  double fdScore = 0.0;
  double fdValue = 0.0;
  double fdFreq = 0.0;
};

// One scored record of a classifier for one class: the predicted probability of the class,
// whether the record's observed class is that class, and its frequency weight.
struct ClassDataInfo {
  // Zeros and false.
  ClassDataInfo() = default;
  ClassDataInfo(double prob, bool hit, double freq) : fdProb(prob), fbHit(hit), fdFreq(freq) {}
  // True when this probability is the greater, so that sorting puts the highest first.
  bool operator<(const ClassDataInfo & o) const { return fdProb > o.fdProb; }

  double fdProb = 0.0;
  bool fbHit = false;
  double fdFreq = 0.0;
};

// One row of a gains table: the cumulative record count up to and including this row, the
// row's sum (of weighted values, or of hits), its lowest score and its mean score.
struct LiftInfo {
  int fnCumCount = 0;
  double fdSum = 0.0;
  double fdMinScore = ZRCommon_920::kSysMisValue;
  double fdMeanScore = ZRCommon_920::kSysMisValue;
};

// Gains tables over n records sorted by score from high to low (records, not weights, are
// counted; tied scores stay in whatever order the sort leaves). With s = n / fnSegments
// (integer division) and t = 0.01 n, the top first = int(t) + 1 records form a leading row
// when t > 0.5 (first = 0 otherwise). When s is 0 it becomes 1 and there are n rows;
// otherwise fnSegments rows, plus the leading one when first >= 1. Row 0 holds records
// 0 .. first - 1 (or 0 .. s - 1 when first is 0); row k >= 1 starts at (k - 1) s + first and
// holds s records, except the last row, which runs to the end of the data. With first = 0
// rows 0 and 1 therefore cover the same records and the cumulative counts carry the
// overlap. A row that starts at or past the end reads no record.
// In a row, a record counts int(fdFreq) records (truncated toward 0; 0 for a NaN frequency
// or one outside the int range); fnCumCount is the running sum of those counts, held at
// INT_MAX or INT_MIN when it leaves the int range. Empty data, or fnSegments <= 0, give no
// rows. Scores are ranked by operator<, except that a NaN score ranks after every number.
class GainsChart {
 public:
  GainsChart() = default;
  virtual ~GainsChart();
  // The number of segments, stored as it stands (20 until set).
  virtual void SetCountOfSegment(int n) { fnSegments = n; }

 protected:
  int fnSegments = 20;
};

class RegGainsChart : public GainsChart {
 public:
  // Sorts data in place (highest score first) and returns one row per segment as above.
  // A row's fdSum is sum fdFreq fdValue, fdMinScore its lowest score (NaN if any score of
  // the row is NaN), fdMeanScore sum fdScore fdFreq / count as doubles: a count of 0 gives
  // an infinity or NaN; a row that reads no record keeps fdMinScore at the missing value.
  std::vector<LiftInfo> CalculateGains(std::vector<RegDataInfo> & data) const;
};

class ClassGainsChart : public GainsChart {
 public:
  // One gains table per class (one vector per element of data, each sorted in place). A
  // row's fdSum is the sum of int(fdFreq) over its hits; fdMinScore is its lowest
  // probability and fdMeanScore sum fdProb fdFreq / count, both the missing value when
  // any probability of the row is the missing value (the records still count). A class
  // without records, and every class when fnSegments <= 0, gets an empty vector.
  std::vector<std::vector<LiftInfo>> CalculateGains(
      std::vector<std::vector<ClassDataInfo>> & data) const;
};

// Weighted counts of (observed, predicted) class pairs, an fnClasses x fnClasses matrix.
class ZRClassificationMatrix {
 public:
  // n classes, all counts and the total 0. A negative n gives an empty table that refuses
  // every update; so does an n whose square passes INT_MAX (the matrix is then invalid).
  explicit ZRClassificationMatrix(int n);
  ZRClassificationMatrix(const ZRClassificationMatrix &) = default;
  ZRClassificationMatrix & operator=(const ZRClassificationMatrix &) = default;
  virtual ~ZRClassificationMatrix();

  // Adds weight to count (row, col) and to the total. False, nothing changed, unless
  // weight > 0 (NaN is refused, +infinity accepted) and 0 <= row, col < fnClasses.
  bool UpdateData(double weight, int row, int col);
  // The counts, observed class by row and predicted class by column.
  const ZRRectMatrix & GetMatrix() const { return fmCounts; }
  // The sum of all weights accepted.
  double GetTotal() const { return fdTotal; }

 private:
  int fnClasses;
  double fdTotal = 0.0;
  ZRRectMatrix fmCounts;
};

}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_STATS_GAINS_H
