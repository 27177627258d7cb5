// zr_charts end to end: each SVG document checked by xmllint, with as many bars or points as
// the CSV data, counted here, have non-empty bins, cells, categories or gains rows.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "support/textio.h"
#include "support/xmllint.h"

namespace {

// The bins and segments zr_charts documents in its usage.
constexpr int kHistogramBins = 12;
constexpr int kScatterBins = 10;
constexpr int kGainsSegments = 10;

// A run of zr_charts with args, in a fresh folder that is removed afterwards; each of the
// four documents read back, empty when not written.
struct ChartsRun {
  int exitCode = -1;  // -1 when it could not be run or did not exit
  std::string output;
  std::vector<std::pair<std::string, std::string>> files;  // name, document
};

ChartsRun RunCharts(const std::string & args) {
  const zrtest::ScratchFolder dir("zr_charts");
  ChartsRun run;
  run.exitCode = zrtest::ShellExitCode(std::string("'") + ZR_CHARTS_EXE + "' " + args + " '" +
                                       (dir / "svg") + "' >'" + (dir / "output.txt") + "' 2>&1");
  run.output = zrtest::ReadFile(dir / "output.txt");
  for (const char * name : {"histogram.svg", "scatter.svg", "bars.svg", "gains.svg"})
    run.files.emplace_back(name, zrtest::ReadFile(dir / ("svg/" + std::string(name))));
  return run;
}

// What the charts must show, counted from the CSV text: the records with engine, fuel and
// a count above 0 as numbers and a drive, binned over their own ranges.
struct Expected {
  int histogramBars = 0, scatterPoints = 0, driveBars = 0, gainsRows = 0;
};

Expected CountFromCsv(const std::string & path) {
  std::istringstream in(zrtest::ReadFile(path));
  std::string line;
  std::getline(in, line);
  std::vector<std::string> header;
  std::istringstream names(line);
  for (std::string f; std::getline(names, f, ',');) header.push_back(f);
  const auto col = [&](const char * name) {
    return std::find(header.begin(), header.end(), name) - header.begin();
  };
  const auto engineCol = col("engine"), fuelCol = col("fuel"), countCol = col("count");
  const auto driveCol = col("drive");
  std::vector<std::pair<double, double>> points;  // engine, fuel
  std::set<std::string> drives;
  while (std::getline(in, line)) {
    std::vector<std::string> f;
    std::istringstream fields(line);
    for (std::string v; std::getline(fields, v, ',');) f.push_back(v);
    f.resize(header.size());
    if (f[engineCol].empty() || f[fuelCol].empty() || f[countCol].empty() || f[driveCol].empty())
      continue;
    if (!(std::atof(f[countCol].c_str()) > 0.0)) continue;
    points.emplace_back(std::atof(f[engineCol].c_str()), std::atof(f[fuelCol].c_str()));
    drives.insert(f[driveCol]);
  }
  double lo[2] = {points[0].first, points[0].second}, hi[2] = {lo[0], lo[1]};
  for (const auto & p : points) {
    lo[0] = std::min(lo[0], p.first), hi[0] = std::max(hi[0], p.first);
    lo[1] = std::min(lo[1], p.second), hi[1] = std::max(hi[1], p.second);
  }
  // Equal bins over [lo, hi], the maximum in the last.
  const auto bin = [&](double v, int axis, int n) {
    return std::min(n - 1, static_cast<int>((v - lo[axis]) / ((hi[axis] - lo[axis]) / n)));
  };
  std::set<int> fuelBins;
  std::set<std::pair<int, int>> cells;
  for (const auto & p : points) {
    fuelBins.insert(bin(p.second, 1, kHistogramBins));
    cells.insert({bin(p.first, 0, kScatterBins), bin(p.second, 1, kScatterBins)});
  }
  Expected e;
  e.histogramBars = static_cast<int>(fuelBins.size());
  e.scatterPoints = static_cast<int>(cells.size());
  e.driveBars = static_cast<int>(drives.size());
  // Gains rows: one per record when there are fewer records than segments; otherwise one
  // per segment and a leading row of the top 1% (rounded up) when that is over half a record.
  const int n = static_cast<int>(points.size());
  e.gainsRows = n < kGainsSegments ? n : kGainsSegments + (0.01 * n > 0.5 ? 1 : 0);
  return e;
}

// What an XPath expression gives on document, as xmllint prints it.
std::string XPath(const std::string & document, const std::string & expression) {
  zrtest::XmllintResult r = zrtest::RunXmllint(document, "--xpath '" + expression + "'");
  r.output.erase(r.output.find_last_not_of(" \n") + 1);
  return r.exitCode == 0 ? r.output : "xmllint failed: " + r.output;
}

// Gaps in every chart: fuel bins 1-10 and most engine x fuel cells are empty; the rows
// with a count of 0, an empty count, fuel or drive, and a drive met only there, take no
// part; "all" repeats.
constexpr const char * kGappyCsv =
    "engine,weight,drive,fuel,count\n"
    "1.0,1,front,5.0,2\n1.2,1,all,5.2,1\n4.0,1,rear,16.9,3\n4.1,1,all,17.0,1\n"
    "2.0,1,van,10.0,0\n2.0,1,van,10.0,\n2.5,1,van,,1\n3.0,1,,11.0,1\n";

std::string Quoted(const std::string & path) {
  return "'" + path + "'";
}

TEST(ZRCharts, WritesFourWellFormedSvgDocuments) {
  const ChartsRun run = RunCharts(Quoted(ZR_DEMO_CSV));
  ASSERT_EQ(run.exitCode, 0) << run.output;
  for (const auto & file : run.files) {
    SCOPED_TRACE(file.first);
    ASSERT_FALSE(file.second.empty());
    const zrtest::XmllintResult lint = zrtest::RunXmllint(file.second, "--noout --nonet");
    EXPECT_EQ(lint.exitCode, 0) << lint.output;
    EXPECT_EQ(XPath(file.second, "local-name(/*)"), "svg");
    EXPECT_EQ(XPath(file.second, "namespace-uri(/*)"), "http://www.w3.org/2000/svg");
    EXPECT_EQ(XPath(file.second, "boolean(/*[@width and @height and @viewBox])"), "true");
  }
}

TEST(ZRCharts, MarksNumberTheNonEmptyBinsAndCategories) {
  const zrtest::ScratchFolder dir("zr_charts_csv");
  for (const std::string & csv : {std::string(ZR_DEMO_CSV), dir.Write("gappy.csv", kGappyCsv)}) {
    SCOPED_TRACE(csv);
    const ChartsRun run = RunCharts(Quoted(csv));
    ASSERT_EQ(run.exitCode, 0) << run.output;
    const Expected e = CountFromCsv(csv);
    struct {
      int line;
      std::size_t file;
      const char * element;
      const char * cls;
      int want;
    } const cases[] = {
        {__LINE__, 0, "rect", "bar", e.histogramBars},
        {__LINE__, 1, "circle", "point", e.scatterPoints},
        {__LINE__, 2, "rect", "bar", e.driveBars},
        {__LINE__, 3, "circle", "point", e.gainsRows},
        {__LINE__, 3, "polyline", "curve", 1},
        {__LINE__, 3, "line", "diagonal", 1},
    };
    for (const auto & c : cases) {
      SCOPED_TRACE(c.line);
      const std::string count = "count(//*[local-name()=\"" + std::string(c.element) +
                                "\" and @class=\"" + c.cls + "\"])";
      EXPECT_EQ(XPath(run.files[c.file].second, count), std::to_string(c.want));
    }
    // The curve runs from the origin through one point per gains row.
    const std::string points =
        XPath(run.files[3].second, "string(//*[local-name()=\"polyline\"]/@points)");
    EXPECT_EQ(std::count(points.begin(), points.end(), ','), e.gainsRows + 1) << points;
  }
}

TEST(ZRChartsArguments, RefusesWhatItCannotDraw) {
  const zrtest::ScratchFolder dir("zr_charts_csv");
  const std::string noCount = dir.Write("nocount.csv", "engine,drive,fuel\n2.0,front,9.5\n");
  const std::string noCase = dir.Write("nocase.csv", "engine,drive,fuel,count\n2.0,front,9.5,0\n");
  struct {
    int line;
    std::string args;
    int exitCode;
  } const cases[] = {
      {__LINE__, "/nonexistent/fuel.csv", 1},
      {__LINE__, Quoted(noCount), 1},
      {__LINE__, Quoted(noCase), 1},
      {__LINE__, "a b", 2},  // with the folder, a third argument
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    const ChartsRun run = RunCharts(c.args);
    EXPECT_EQ(run.exitCode, c.exitCode) << run.output;
    for (const auto & file : run.files) EXPECT_TRUE(file.second.empty()) << file.first;
  }
}

}  // namespace
