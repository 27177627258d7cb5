// Chart data: histogram bins at the edges and in degenerate ranges, its moments against long
// double two-pass sums, the mean-to-zero rule; the bar chart's range test and single
// hand-over; raw and binned scatter plots; the records as StatXML elements written out by
// hand; no allocation per case; the Display labels.
#include "zrcommon920r/math/stats/chartdata.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "support/alloccount.h"
#include "support/capture.h"
#include "support/markup.h"
#include "zrcommon920r/common/numconst.h"

namespace {

using ZRMath_920::ZRBarChartData;
using ZRMath_920::ZRHistogramData;
using ZRMath_920::ZRScatterPlotData;
using ZRXML_920::XMLElement;
using Vec = std::vector<double>;
constexpr double kMiss = ZRCommon_920::kSysMisValue;
const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();

// The markup of made without layout, "(null)" for a null pointer; made is deleted.
constexpr auto & Text = zrtest::TakeFlatMarkup;

template <class Chart>
std::string Shown(const Chart & chart) {
  zrtest::DisplayCapture capture;
  chart.Display();
  return capture.Text();
}

TEST(ZRHistogramDataBins, EdgesDegenerateRangesAndNonFiniteValues) {
  struct {
    int line;
    int nBins;
    double min, max, x;
    int wantBins, wantBin;
  } const cases[] = {
      {__LINE__, 4, 0.0, 8.0, -1.0, 4, 0},  // below min: first bin
      {__LINE__, 4, 0.0, 8.0, 2.0, 4, 1},   // inner boundary opens the upper bin
      {__LINE__, 4, 0.0, 8.0, 1.75, 4, 0},
      {__LINE__, 4, 0.0, 8.0, 8.0, 4, 3},   // exactly max: last bin by the upper limit
      {__LINE__, 4, 0.0, 8.0, 9.0, 4, 3},   // above max: last bin
      {__LINE__, 4, 0.0, 8.0, kInf, 4, 3},  // no conversion of an infinite quotient
      {__LINE__, 4, 0.0, 8.0, -kInf, 4, 0},
      {__LINE__, 4, 0.0, 8.0, kNaN, 4, 0},
      {__LINE__, 0, 0.0, 8.0, 5.0, 1, 0},  // no bins asked: one bin
      {__LINE__, -3, 0.0, 8.0, 5.0, 1, 0},
      {__LINE__, 4, 8.0, 0.0, 5.0, 1, 0},  // min above max: one bin
      {__LINE__, 4, 3.0, 3.0, 5.0, 4, 0},  // min = max: length 0, all in bin 0
      {__LINE__, 4, 3.0, 3.0, 1.0, 4, 0},
      {__LINE__, 4, 0.0, kNaN, 5.0, 4, 0},  // NaN range: length 0
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ZRHistogramData h(c.nBins, c.min, c.max, false);
    EXPECT_TRUE(h.UpdateData(2.0, 1.0, c.x));
    Vec want(static_cast<std::size_t>(c.wantBins), 0.0);
    want[static_cast<std::size_t>(c.wantBin)] = 2.0;
    EXPECT_EQ(h.GetBinFreqs(), want);
  }
  ZRHistogramData none;  // no bins: totals only
  EXPECT_TRUE(none.UpdateData(2.0, 1.0, 5.0));
  EXPECT_TRUE(none.GetBinFreqs().empty());
  EXPECT_EQ(none.GetTotalWeight(), 2.0);
  EXPECT_EQ(none.GetMean(), 5.0);
}

TEST(ZRHistogramDataMoments, WeightedDataMatchTwoPassLongDouble) {
  constexpr double kTol = 1e-13;  // 2000 West steps, each within a few eps of the mean
  std::mt19937 gen(16);
  std::uniform_real_distribution<double> frac(0.05, 0.95), weight(0.5, 3.0);
  std::uniform_int_distribution<int> bin(0, 9);
  struct Case {
    double f, r, x;
  };
  std::vector<Case> data;
  // x = k + u keeps each case well inside bin k of [0, 10), so the bins are known.
  for (int i = 0; i < 2000; ++i) data.push_back({weight(gen), weight(gen), bin(gen) + frac(gen)});
  ZRHistogramData h(10, 0.0, 10.0, true);
  for (const Case & c : data) h.UpdateData(c.f, c.r, c.x);

  long double sw = 0, swx = 0, binW[10] = {}, binWx[10] = {};
  for (const Case & c : data) {
    const long double w = static_cast<long double>(c.f) * c.r;
    sw += w;
    swx += w * c.x;
    binW[static_cast<int>(c.x)] += w;
    binWx[static_cast<int>(c.x)] += w * c.x;
  }
  const long double mean = swx / sw;
  long double ssq = 0;
  for (const Case & c : data)
    ssq += static_cast<long double>(c.f) * c.r * (c.x - mean) * (c.x - mean);
  const double sd = static_cast<double>(std::sqrt(ssq / (sw - 1)));
  EXPECT_NEAR(h.GetMean(), static_cast<double>(mean), kTol * static_cast<double>(mean));
  EXPECT_NEAR(h.GetStdDev(), sd, kTol * sd);
  for (int b = 0; b < 10; ++b) {
    SCOPED_TRACE(b);
    const double want = static_cast<double>(binWx[b] / binW[b]);
    EXPECT_NEAR(h.GetBinMeans()[static_cast<std::size_t>(b)], want, kTol * want);
  }
}

TEST(ZRHistogramDataMoments, MeanToZeroFirstCasesAndMissingStdDev) {
  // 1.1 + 2.2 - 3.3 leaves 2.2e-16 in the running mean without the rule.
  ZRHistogramData zero(3, -4.0, 4.0, true);
  for (double x : {1.1, 2.2, -3.3}) zero.UpdateData(1.0, 1.0, x);
  EXPECT_EQ(zero.GetMean(), 0.0);

  ZRHistogramData one(3, 0.0, 3.0, true);
  one.UpdateData(1.0, 1.0, 2.5);
  EXPECT_EQ(one.GetMean(), 2.5);
  EXPECT_EQ(one.GetStdDev(), 0.0);  // weighted N of 1: no standard deviation
  one.UpdateData(1.0, 1.0, 0.5);
  EXPECT_EQ(one.GetStdDev(), std::sqrt(2.0));

  ZRHistogramData noMoment(3, 0.0, 3.0, false);
  for (double x : {0.5, 2.5}) noMoment.UpdateData(1.0, 1.0, x);
  EXPECT_EQ(noMoment.GetStdDev(), 0.0);

  ZRHistogramData zeroWeight(3, 0.0, 3.0, true);  // 0 / 0 gives NaN, not a trap
  EXPECT_TRUE(zeroWeight.UpdateData(0.0, 1.0, 1.0));
  EXPECT_TRUE(std::isnan(zeroWeight.GetMean()));
}

TEST(ZRHistogramDataRecord, BarsAtBinMeansStatisticsAndOneHandOver) {
  ZRHistogramData h(4, 0.0, 4.0, true);
  h.UpdateData(1.0, 1.0, 0.5);
  h.UpdateData(3.0, 1.0, 0.75);
  h.UpdateData(2.0, 0.5, 3.5);
  EXPECT_EQ(h.GetBinMeans(), (Vec{0.6875, kMiss, kMiss, 3.5}));
  // Worked by hand: mean 6.25 / 5, sd sqrt(6.375 / 4); bins 1 and 2 are empty.
  const std::string want =
      "<UnivariateData><Counts totalFreq=\"6\"/><Statistic name=\"mean\" value=\"1.25\"/>"
      "<Statistic name=\"stdDeviation\" value=\"1.26243811729526\"/>"
      "<Coordinates feature=\"observed\" field=\"x\"><Array type=\"real\" n=\"2\">0.6875 3.5"
      "</Array></Coordinates><Coordinates feature=\"frequency\"><Array type=\"real\" n=\"2\">4 2"
      "</Array></Coordinates></UnivariateData>";
  EXPECT_EQ(Text(h.GenerateZRVariateData("x").GetUnivariateDataElem()), want);
  h.UpdateData(1.0, 1.0, 1.5);
  EXPECT_EQ(Text(h.GenerateZRVariateData("other").GetUnivariateDataElem()), want);

  ZRHistogramData unnamed(1, 0.0, 1.0, false);
  unnamed.UpdateData(1.0, 1.0, 0.5);
  EXPECT_EQ(Text(unnamed.GenerateZRVariateData("").GetUnivariateDataElem()),
            "<UnivariateData><Counts totalFreq=\"1\"/><Statistic name=\"mean\" value=\"0.5\"/>"
            "<Coordinates feature=\"\"><Array type=\"real\" n=\"1\">0.5</Array></Coordinates>"
            "<Coordinates feature=\"frequency\"><Array type=\"real\" n=\"1\">1</Array>"
            "</Coordinates></UnivariateData>");
}

TEST(ZRBarChartData, RangeTestOnTheDoubleAndTruncation) {
  ZRBarChartData bars(3, false);
  struct {
    int line;
    double category;
    bool want;
  } const cases[] = {{__LINE__, -0.5, false}, {__LINE__, 3.0, false}, {__LINE__, kNaN, false},
                     {__LINE__, kInf, false}, {__LINE__, 2.7, true},  {__LINE__, 0.0, true}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(bars.UpdateData(1.0, c.category), c.want);
  }
  EXPECT_EQ(bars.GetTotalWeight(), 2.0);
  EXPECT_EQ(bars.GenerateZRVariateData("d", {"a", "b", "c"}).fCoordinates[1].fDoubleValues,
            (Vec{1.0, 1.0}));  // 2.7 counted in category 2, category 1 absent
  EXPECT_FALSE(ZRBarChartData(-2, false).UpdateData(1.0, 0.0));
}

TEST(ZRBarChartData, ProportionsDividedOnceEmptyCategoriesAbsent) {
  ZRBarChartData bars(3, true);
  bars.UpdateData(1.0, 0.0);
  bars.UpdateData(3.0, 2.0);
  const std::string want =
      "<UnivariateData><Counts totalFreq=\"4\"/><Coordinates feature=\"observed\" "
      "field=\"drive\"><Array type=\"string\" n=\"2\">front rear</Array></Coordinates>"
      "<Coordinates feature=\"frequency\"><Array type=\"real\" n=\"2\">0.25 0.75</Array>"
      "</Coordinates></UnivariateData>";
  EXPECT_EQ(
      Text(bars.GenerateZRVariateData("drive", {"front", "all", "rear"}).GetUnivariateDataElem()),
      want);
  bars.UpdateData(4.0, 1.0);
  EXPECT_EQ(
      Text(bars.GenerateZRVariateData("drive", {"front", "all", "rear"}).GetUnivariateDataElem()),
      want);

  ZRBarChartData fewNames(3, false);  // fewer names than categories: no read past the end
  fewNames.UpdateData(1.0, 0.0);
  fewNames.UpdateData(1.0, 2.0);
  const auto & record = fewNames.GenerateZRVariateData("", {"front"});
  EXPECT_EQ(record.fCoordinates[0].fStringValues, (std::vector<std::string>{"front", ""}));
  EXPECT_EQ(record.fCoordinates[0].fFeature, "");
  EXPECT_EQ(record.fCoordinates[0].fValueKind, ZRXML_920::kZRXMLStringValues);
}

TEST(ZRScatterPlotData, RawKeepsEveryCaseAndIgnoresRegressionWeight) {
  ZRScatterPlotData raw;
  raw.UpdateData(2.0, 5.0, 1.0, 2.0);
  raw.UpdateData(1.0, 0.0, 3.0, 4.0);
  EXPECT_EQ(raw.GetXCoordinates(), (Vec{1.0, 3.0}));
  EXPECT_EQ(raw.GetYCoordinates(), (Vec{2.0, 4.0}));
  EXPECT_EQ(raw.GetFrequencies(), (Vec{2.0, 1.0}));
  EXPECT_EQ(raw.GetTotalWeight(), 3.0);
  EXPECT_EQ(
      Text(raw.GetZRVariateData("a", "observed", "", "b", "observed", "").GetBivariateDataElem()),
      "<BivariateData><Counts totalFreq=\"3\"/><Coordinates feature=\"observed\" "
      "field=\"a\"><Array type=\"real\" n=\"2\">1 3</Array></Coordinates><Coordinates "
      "feature=\"observed\" field=\"b\"><Array type=\"real\" n=\"2\">2 4</Array>"
      "</Coordinates><Coordinates feature=\"frequency\"><Array type=\"real\" n=\"2\">2 1"
      "</Array></Coordinates></BivariateData>");
  const std::string shown = Shown(raw);
  EXPECT_NE(shown.find("\nWeighted number of cases including both weights = 0\n"),
            std::string::npos);
  EXPECT_NE(shown.find("\nThe total unweighted number of cases = 0\n"), std::string::npos);
}

TEST(ZRScatterPlotData, BinnedOrderXFirstAndSecondHandOverRenamesOnly) {
  ZRScatterPlotData grid(2, 2, 0.0, 2.0, 0.0, 2.0, true);
  grid.UpdateData(1.0, 1.0, 1.5, 0.5);    // bin (1, 0)
  grid.UpdateData(1.0, 1.0, 0.5, 1.5);    // bin (0, 1)
  grid.UpdateData(1.0, 1.0, 0.25, 1.75);  // bin (0, 1)
  grid.UpdateData(2.0, 0.5, 7.0, -5.0);   // bin (1, 0), w = 1: each axis clamped on its own
  grid.GetZRVariateData("engine", "observed", "mean", "fuel", "observed", "mean");
  EXPECT_EQ(grid.GetXCoordinates(), (Vec{0.375, 4.25}));
  grid.UpdateData(1.0, 1.0, 0.5, 0.5);
  const std::string want =
      "<BivariateData><Counts totalFreq=\"5\"/><Coordinates feature=\"role\" field=\"e\" "
      "statistic=\"m\"><Array type=\"real\" n=\"2\">0.375 4.25</Array></Coordinates>"
      "<Coordinates feature=\"role\" field=\"f\"><Array type=\"real\" n=\"2\">1.625 -2.25"
      "</Array></Coordinates><Coordinates feature=\"frequency\"><Array type=\"real\" "
      "n=\"2\">2 3</Array></Coordinates></BivariateData>";
  EXPECT_EQ(Text(grid.GetZRVariateData("e", "role", "m", "f", "role", "").GetBivariateDataElem()),
            want);
}

TEST(ZRChartDataAllocation, BinnedUpdatesAllocateNothing) {
  ZRHistogramData h(50, 0.0, 1.0, true);
  ZRScatterPlotData s(50, 50, 0.0, 1.0, 0.0, 1.0, true);
  zrtest::AllocCounter counter;
  for (int i = 0; i < 1000; ++i) {
    h.UpdateData(1.0, 2.0, i / 999.0);
    s.UpdateData(1.0, 2.0, i / 999.0, 1.0 - i / 999.0);
  }
  EXPECT_EQ(counter.Count(), 0);
}

TEST(ZRChartDataDisplay, LabelsInFieldOrder) {
  EXPECT_EQ(Shown(ZRBarChartData(2, true)),
            "\nZRBarChartData display start\nThe number of categories = 2"
            "\nN cases of each category considering frequency weight (size = 2)\n  0 0"
            "\nTotal frequency weight = 0\nZRBarChartData display end");
  EXPECT_EQ(Shown(ZRHistogramData(1, 0.0, 1.0, true)),
            "\nZRHistogramData display start\nThe number of bins = 1\nThe length of a bin = 0"
            "\nThe means of each bin (size = 1)\n  miss"
            "\nN cases of each bin considering frequency weight only (size = 1)\n  0"
            "\nThe weighted (both frequency and regression weight) N cases (size = 1)\n  0"
            "\nMinimum value from constructor = 0\nMaximum value from constructor = 1"
            "\nWeighted number of cases including both weights = 0\nTotal frequency weight = 0"
            "\nThe total unweighted number of cases = 0\nThe mean of all cases = 0"
            "\nThe second moment around mean = miss\nZRHistogramData display end");
  EXPECT_EQ(Shown(ZRScatterPlotData()),
            "\nZRScatterPlotData display start\nThe number of bins for X = 0"
            "\nThe number of bins for Y = 0\nThe length of a bin for X = 0"
            "\nThe length of a bin for Y = 0\nMinimum X value from constructor = miss"
            "\nMaximum X value from constructor = miss\nMinimum Y value from constructor = miss"
            "\nMaximum Y value from constructor = miss\nThe means for X in each bin  <none>"
            "\nThe means for Y in each bin  <none>"
            "\nN cases of each bin considering frequency weight only <none>"
            "\nThe weighted (frequency and regression weight) N cases <none>"
            "\nWeighted number of cases including both weights = 0\nTotal frequency weight = 0"
            "\nThe total unweighted number of cases = 0\nZRScatterPlotData display end");
}

}  // namespace
