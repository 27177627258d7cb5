// The chart gatherers: bin placement, the weighted running means and moment, and the
// hand-over of each chart as a variate data record.
#include "zrcommon920r/math/stats/chartdata.h"

#include <cmath>
#include <cstddef>
#include <utility>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/display/display.h"

namespace ZRMath_920 {

using ZRXML_920::ZRVariateData;
using ZRXML_920::ZRXMLCoordinates;
using ZRXML_920::ZRXMLCounts;

namespace {

constexpr double kMiss = ZRCommon_920::kSysMisValue;
constexpr double kEps = ZRCommon_920::kMachineEpsilon;

const char kObserved[] = "observed";
const char kFrequency[] = "frequency";

// The bin of x among nBins bins of the given length from min, from the quotient
// q = (x - min) / length. The quotient is tested as a double before it is converted, so no
// value reaches an out-of-range conversion: a length of 0 (q is then not read), NaN and
// anything below min give bin 0, anything at or past the end the last bin.
int BinOfQuotient(double q, double length, int nBins) {
  if (nBins <= 1 || length == 0.0) return 0;
  if (!(q >= 0.0)) return 0;
  // Intended: +infinity goes to the last bin, with the other values past the end.
  if (q >= static_cast<double>(nBins)) return nBins - 1;
  return static_cast<int>(q);
}

// q0 = a0 / b0 and q1 = a1 / b1 in one two-lane division where the processor has one.
// Each lane is rounded as a scalar division is, so the quotients are the same; the
// histogram's update is bound by the throughput of its five divisions, not by latency.
inline void Divide2(double a0, double b0, double a1, double b1, double & q0, double & q1) {
#if defined(__SSE2__)
  const __m128d q = _mm_div_pd(_mm_set_pd(a1, a0), _mm_set_pd(b1, b0));
  q0 = _mm_cvtsd_f64(q);
  q1 = _mm_cvtsd_f64(_mm_unpackhi_pd(q, q));
#else
  q0 = a0 / b0;
  q1 = a1 / b1;
#endif
}

// The length of one of nBins bins over [min, max]; 0 unless there are bins to split and
// max > min.
double BinLength(int nBins, double min, double max) {
  return nBins > 1 && max > min ? (max - min) / nBins : 0.0;
}

std::vector<std::vector<double>> Table(int rows, int columns) {
  return std::vector<std::vector<double>>(static_cast<std::size_t>(rows),
                                          std::vector<double>(static_cast<std::size_t>(columns)));
}

}  // namespace

// ---------------------------------------------------------------------------------------
// ZRBarChartData

ZRBarChartData::ZRBarChartData(int nCategories, bool proportions)
    : fnCategories(nCategories < 0 ? 0 : nCategories),
      fvCounts(static_cast<std::size_t>(fnCategories), 0.0),
      fbProportions(proportions),
      fdTotalWeight(0.0) {}

bool ZRBarChartData::UpdateData(double weight, double category) {
  // The range test is on the double: -0.5 would truncate into category 0.
  if (!(category >= 0.0 && category < static_cast<double>(fnCategories))) return false;
  fvCounts[static_cast<std::size_t>(category)] += weight;
  fdTotalWeight += weight;
  return true;
}

const ZRVariateData & ZRBarChartData::GenerateZRVariateData(
    const std::string & name, const std::vector<std::string> & categories) {
  // Intended: the hand-over happens once; later updates never reach the record.
  if (!fVariateData.fCounts.empty()) return fVariateData;
  // Intended: the proportions replace the counts, so the counts are lost from here on.
  if (fbProportions)
    for (double & c : fvCounts) c /= fdTotalWeight;
  fVariateData.fCounts.push_back(ZRXMLCounts(fdTotalWeight, kMiss, kMiss, kMiss));
  ZRXMLCoordinates labels("", "", "", std::vector<std::string>());
  if (!name.empty()) {
    labels.fFeature = kObserved;
    labels.fField = name;
  }
  ZRXMLCoordinates counts(kFrequency, "", "", std::vector<double>());
  for (std::size_t i = 0; i < fvCounts.size(); ++i) {
    if (!(fvCounts[i] > 0.0)) continue;
    labels.fStringValues.push_back(i < categories.size() ? categories[i] : std::string());
    counts.fDoubleValues.push_back(fvCounts[i]);
  }
  fVariateData.fCoordinates.push_back(std::move(labels));
  fVariateData.fCoordinates.push_back(std::move(counts));
  return fVariateData;
}

void ZRBarChartData::Display() const {
  using namespace ZRDisplay_920;
  DisplayText(1, "ZRBarChartData display start");
  DisplayI("The number of categories", fnCategories);
  DisplayDV("N cases of each category considering frequency weight", fvCounts);
  DisplayD("Total frequency weight", fdTotalWeight);
  DisplayText(1, "ZRBarChartData display end");
}

// ---------------------------------------------------------------------------------------
// ZRHistogramData

ZRHistogramData::ZRHistogramData()
    : fnBins(0),
      fdBinLength(0.0),
      fdMin(kMiss),
      fdMax(kMiss),
      fbSecondMoment(false),
      fbEqualRange(false),
      fdWeightedN(0.0),
      fdTotalFreq(0.0),
      fdUnweightedN(0.0),
      fdMean(0.0),
      fdSecondMoment(kMiss) {}

ZRHistogramData::ZRHistogramData(int nBins, double min, double max, bool secondMoment)
    : fnBins(nBins < 1 || max < min ? 1 : nBins),
      fdBinLength(BinLength(fnBins, min, max)),
      fvBinMeans(static_cast<std::size_t>(fnBins), kMiss),
      fvBinFreq(static_cast<std::size_t>(fnBins), 0.0),
      fvBinWeighted(static_cast<std::size_t>(fnBins), 0.0),
      fdMin(min),
      fdMax(max),
      fbSecondMoment(secondMoment),
      fbEqualRange(min == max),
      fdWeightedN(0.0),
      fdTotalFreq(0.0),
      fdUnweightedN(0.0),
      fdMean(0.0),
      fdSecondMoment(kMiss) {}

bool ZRHistogramData::UpdateData(double freqWeight, double regWeight, double x) {
  // Intended: values outside [min, max] are kept, in the first or the last bin.
  const double w = freqWeight * regWeight;
  const double w0 = fdWeightedN;
  const double w1 = w0 + w;
  fdWeightedN = w1;
  // The divisions go in pairs: the bin's quotient with w / w1, then w0 / w with w0 / w1.
  // A length of 0 gives a quotient that BinOfQuotient never reads.
  double quotient, wOverW1;
  Divide2(x - fdMin, fdBinLength, w, w1, quotient, wOverW1);
  const int bin = BinOfQuotient(quotient, fdBinLength, fnBins);
  // Intended: a first case of weight 0 makes w / w1 = 0 / 0, a NaN mean (no trap).
  const double d = wOverW1 * (x - fdMean);
  const double m = d + fdMean;
  // Intended: a mean that cancels down to rounding noise of the old mean is exactly 0.
  fdMean = 2.0 * std::fabs(fdMean) * kEps > std::fabs(m) ? 0.0 : m;
  fdTotalFreq += freqWeight;
  fdUnweightedN += 1.0;
  if (fbSecondMoment) {
    const double s = fdSecondMoment == kMiss ? 0.0 : fdSecondMoment;
    // Intended: West's update in this order, (w0 / w) d^2 + (w0 / w1) s, with d already
    // scaled by w / w1: the variance with divisor w1.
    double w0OverW, w0OverW1;
    Divide2(w0, w, w0, w1, w0OverW, w0OverW1);
    fdSecondMoment = w0OverW * d * d + w0OverW1 * s;
  }
  if (fnBins < 1) return true;  // the () form has no bins
  double & mean = fvBinMeans[static_cast<std::size_t>(bin)];
  double & binWeighted = fvBinWeighted[static_cast<std::size_t>(bin)];
  if (mean == kMiss) mean = 0.0;
  binWeighted += w;
  fvBinFreq[static_cast<std::size_t>(bin)] += freqWeight;
  mean = (w / binWeighted) * (x - mean) + mean;
  return true;
}

double ZRHistogramData::GetStdDev() const {
  // Intended: 0, not the missing value, when there is no standard deviation.
  if (!fbSecondMoment || !(fdWeightedN > 1.0)) return 0.0;
  return std::sqrt(fdWeightedN * fdSecondMoment / (fdWeightedN - 1.0));
}

ZRVariateData & ZRHistogramData::GenerateZRVariateData(const std::string & name) {
  // Intended: the hand-over happens once; later updates never reach the record.
  if (!fVariateData.fCounts.empty()) return fVariateData;
  fVariateData.fCounts.push_back(ZRXMLCounts(fdTotalFreq, kMiss, kMiss, kMiss));
  ZRXMLCoordinates means("", "", "", std::vector<double>());
  if (!name.empty()) {
    means.fFeature = kObserved;
    means.fField = name;
  }
  ZRXMLCoordinates freqs(kFrequency, "", "", std::vector<double>());
  for (std::size_t b = 0; b < fvBinFreq.size(); ++b) {
    if (!(fvBinFreq[b] > 0.0)) continue;
    // Intended: a bar stands at the mean of its cases, not at the bin's mid-point.
    means.fDoubleValues.push_back(fvBinMeans[b]);
    freqs.fDoubleValues.push_back(fvBinFreq[b]);
  }
  fVariateData.fCoordinates.push_back(std::move(means));
  fVariateData.fCoordinates.push_back(std::move(freqs));
  fVariateData.fStringStats = false;
  fVariateData.fStatNames.push_back("mean");
  fVariateData.fStatDoubles.push_back(fdMean);
  if (fbSecondMoment) {
    fVariateData.fStatNames.push_back("stdDeviation");
    fVariateData.fStatDoubles.push_back(GetStdDev());
  }
  return fVariateData;
}

void ZRHistogramData::Display() const {
  using namespace ZRDisplay_920;
  DisplayText(1, "ZRHistogramData display start");
  DisplayI("The number of bins", fnBins);
  DisplayD("The length of a bin", fdBinLength);
  DisplayDV("The means of each bin", fvBinMeans);
  DisplayDV("N cases of each bin considering frequency weight only", fvBinFreq);
  DisplayDV("The weighted (both frequency and regression weight) N cases", fvBinWeighted);
  DisplayD("Minimum value from constructor", fdMin);
  DisplayD("Maximum value from constructor", fdMax);
  DisplayD("Weighted number of cases including both weights", fdWeightedN);
  DisplayD("Total frequency weight", fdTotalFreq);
  DisplayD("The total unweighted number of cases", fdUnweightedN);
  DisplayD("The mean of all cases", fdMean);
  DisplayD("The second moment around mean", fdSecondMoment);
  DisplayText(1, "ZRHistogramData display end");
}

// ---------------------------------------------------------------------------------------
// ZRScatterPlotData

ZRScatterPlotData::ZRScatterPlotData()
    : fnBinsX(0),
      fnBinsY(0),
      fdBinLengthX(0.0),
      fdBinLengthY(0.0),
      fdMinX(kMiss),
      fdMaxX(kMiss),
      fdMinY(kMiss),
      fdMaxY(kMiss),
      fbBinned(false),
      fdWeightedN(0.0),
      fdTotalFreq(0.0),
      fdUnweightedN(0.0) {
  StartRecord();
}

ZRScatterPlotData::ZRScatterPlotData(int nBinsX, int nBinsY, double minX, double maxX, double minY,
                                     double maxY, bool binned)
    : fnBinsX(nBinsX < 1 ? 1 : nBinsX),
      fnBinsY(nBinsY < 1 ? 1 : nBinsY),
      fdBinLengthX(binned ? BinLength(fnBinsX, minX, maxX) : 0.0),
      fdBinLengthY(binned ? BinLength(fnBinsY, minY, maxY) : 0.0),
      fdMinX(minX),
      fdMaxX(maxX),
      fdMinY(minY),
      fdMaxY(maxY),
      fbBinned(binned),
      fvMeansX(Table(fnBinsX, fnBinsY)),
      fvMeansY(Table(fnBinsX, fnBinsY)),
      fvBinFreq(Table(fnBinsX, fnBinsY)),
      fvBinWeighted(Table(fnBinsX, fnBinsY)),
      fdWeightedN(0.0),
      fdTotalFreq(0.0),
      fdUnweightedN(0.0) {
  StartRecord();
}

void ZRScatterPlotData::StartRecord() {
  fVariateData.fCounts.push_back(ZRXMLCounts(0.0, kMiss, kMiss, kMiss));
  fVariateData.fCoordinates.assign(2, ZRXMLCoordinates("", "", "", std::vector<double>()));
  fVariateData.fCoordinates.push_back(ZRXMLCoordinates(kFrequency, "", "", std::vector<double>()));
}

void ZRScatterPlotData::UpdateData(double freqWeight, double regWeight, double x, double y) {
  if (!fbBinned) {
    // Intended: the raw form ignores r and leaves the weighted and unweighted counts alone.
    fVariateData.fCounts[0].fTotalFreq += freqWeight;
    fVariateData.fCoordinates[0].fDoubleValues.push_back(x);
    fVariateData.fCoordinates[1].fDoubleValues.push_back(y);
    fVariateData.fCoordinates[2].fDoubleValues.push_back(freqWeight);
    fdTotalFreq += freqWeight;
    return;
  }
  double qx, qy;
  Divide2(x - fdMinX, fdBinLengthX, y - fdMinY, fdBinLengthY, qx, qy);
  const std::size_t bx = static_cast<std::size_t>(BinOfQuotient(qx, fdBinLengthX, fnBinsX));
  const std::size_t by = static_cast<std::size_t>(BinOfQuotient(qy, fdBinLengthY, fnBinsY));
  const double w = freqWeight * regWeight;
  fdUnweightedN += 1.0;
  fdTotalFreq += freqWeight;
  fdWeightedN += w;
  double & binWeighted = fvBinWeighted[bx][by];
  binWeighted += w;
  fvBinFreq[bx][by] += freqWeight;
  const double q = w / binWeighted;
  double & meanX = fvMeansX[bx][by];
  double & meanY = fvMeansY[bx][by];
  meanX = (x - meanX) * q + meanX;
  meanY = (y - meanY) * q + meanY;
}

const ZRVariateData & ZRScatterPlotData::GetZRVariateData(
    const std::string & xName, const std::string & xRole, const std::string & xStatistic,
    const std::string & yName, const std::string & yRole, const std::string & yStatistic) {
  ZRXMLCoordinates & xs = fVariateData.fCoordinates[0];
  ZRXMLCoordinates & ys = fVariateData.fCoordinates[1];
  xs.fField = xName;
  xs.fFeature = xRole;
  xs.fStatistic = xStatistic;
  ys.fField = yName;
  ys.fFeature = yRole;
  ys.fStatistic = yStatistic;
  // Intended: a record total still 0 marks bins not yet handed over, so a total weight of
  // 0 at the first call lets a later call hand them over again.
  if (!fbBinned || fVariateData.fCounts[0].fTotalFreq != 0.0) return fVariateData;
  fVariateData.fCounts[0].fTotalFreq = fdTotalFreq;
  ZRXMLCoordinates & fs = fVariateData.fCoordinates[2];
  for (std::size_t bx = 0; bx < fvBinFreq.size(); ++bx) {
    for (std::size_t by = 0; by < fvBinFreq[bx].size(); ++by) {
      if (!(fvBinFreq[bx][by] > 0.0)) continue;
      xs.fDoubleValues.push_back(fvMeansX[bx][by]);
      ys.fDoubleValues.push_back(fvMeansY[bx][by]);
      fs.fDoubleValues.push_back(fvBinFreq[bx][by]);
    }
  }
  return fVariateData;
}

const std::vector<double> & ZRScatterPlotData::GetXCoordinates() const {
  return fVariateData.fCoordinates[0].fDoubleValues;
}

const std::vector<double> & ZRScatterPlotData::GetYCoordinates() const {
  return fVariateData.fCoordinates[1].fDoubleValues;
}

const std::vector<double> & ZRScatterPlotData::GetFrequencies() const {
  return fVariateData.fCoordinates[2].fDoubleValues;
}

void ZRScatterPlotData::Display() const {
  using namespace ZRDisplay_920;
  DisplayText(1, "ZRScatterPlotData display start");
  DisplayI("The number of bins for X", fnBinsX);
  DisplayI("The number of bins for Y", fnBinsY);
  DisplayD("The length of a bin for X", fdBinLengthX);
  DisplayD("The length of a bin for Y", fdBinLengthY);
  DisplayD("Minimum X value from constructor", fdMinX);
  DisplayD("Maximum X value from constructor", fdMaxX);
  DisplayD("Minimum Y value from constructor", fdMinY);
  DisplayD("Maximum Y value from constructor", fdMaxY);
  DisplayDVV("The means for X in each bin ", fvMeansX);
  DisplayDVV("The means for Y in each bin ", fvMeansY);
  DisplayDVV("N cases of each bin considering frequency weight only", fvBinFreq);
  DisplayDVV("The weighted (frequency and regression weight) N cases", fvBinWeighted);
  DisplayD("Weighted number of cases including both weights", fdWeightedN);
  DisplayD("Total frequency weight", fdTotalFreq);
  DisplayD("The total unweighted number of cases", fdUnweightedN);
  DisplayText(1, "ZRScatterPlotData display end");
}

}  // namespace ZRMath_920
