// Example charts: gathers chart data from a small data set and draws each chart as an SVG
// 1.1 document, built as an XML tree and written as UTF-8. From the bundled vehicles it
// makes a histogram of fuel use, a binned scatter plot of engine size against fuel use, a
// bar chart of the drive, and the gains chart of the vehicles ranked by the fuel use a
// least-squares line on engine size predicts, each case weighted by its count.
//
// Usage: zr_charts [data.csv [folder]]   (defaults: the bundled examples/data/fuel.csv and
// the build folder). The file needs the fields engine, drive, fuel and count; a record takes
// part when engine, fuel and count are numbers, count is above 0 and drive is not empty.
// Writes histogram.svg (fuel in 12 equal bins over its range), scatter.svg (10 x 10 bins over
// the ranges of engine and fuel), bars.svg (drive, its categories in the order first met)
// and gains.svg (10 segments) into the folder, which is made when missing.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "fueldata.h"
#include "zrcommon920r/zrcommon920r.h"

namespace {

using ZRMath_920::ZRBarChartData;
using ZRMath_920::ZRHistogramData;
using ZRMath_920::ZRScatterPlotData;
using ZRXML_920::XMLElement;
using ZRXML_920::ZRVariateData;
using ZRXML_920::ZRXMLCoordinates;

constexpr int kHistogramBins = 12;
constexpr int kScatterBins = 10;
constexpr int kGainsSegments = 10;
// The drawing: its size, the margins around the plot area and the largest point's radius.
constexpr double kWidth = 640.0, kHeight = 420.0;
constexpr double kLeft = 70.0, kRight = 30.0, kTop = 40.0, kBottom = 60.0;
constexpr double kMaxRadius = 14.0;
constexpr const char * kSvgNamespace = "http://www.w3.org/2000/svg";

struct Case {
  double engine, fuel, count;
  int drive;  // the category's code: its rank among the drives as first met
};

// The records that take part, and the drive categories by code. False, with a message,
// when the file can't be read, lacks a field or has no record that takes part.
bool LoadCases(const std::string & path, std::vector<Case> & cases,
               std::vector<std::string> & drives) {
  std::vector<std::string> names;
  std::vector<std::vector<std::string>> records;
  ZRMath_920::ZRCancelInfo never;
  if (!zrexample::ReadCsv(path, names, records, never)) {
    std::fprintf(stderr, "cannot read %s\n", path.c_str());
    return false;
  }
  std::size_t col[4];
  const char * const kFields[4] = {"engine", "drive", "fuel", "count"};
  for (int k = 0; k < 4; ++k) {
    col[k] = std::find(names.begin(), names.end(), kFields[k]) - names.begin();
    if (col[k] == names.size()) {
      std::fprintf(stderr, "%s has no field %s\n", path.c_str(), kFields[k]);
      return false;
    }
  }
  for (const std::vector<std::string> & r : records) {
    Case c{0.0, 0.0, 0.0, 0};
    if (!zrexample::ParseNumber(r[col[0]], c.engine) ||
        !zrexample::ParseNumber(r[col[2]], c.fuel) || !zrexample::ParseNumber(r[col[3]], c.count) ||
        !(c.count > 0.0) || r[col[1]].empty())
      continue;
    const auto at = std::find(drives.begin(), drives.end(), r[col[1]]);
    c.drive = static_cast<int>(at - drives.begin());
    if (at == drives.end()) drives.push_back(r[col[1]]);
    cases.push_back(c);
  }
  if (cases.empty()) std::fprintf(stderr, "%s has no usable record\n", path.c_str());
  return !cases.empty();
}

// ---- Drawing helpers shared by the four charts ----------------------------------------

// A linear map of [lo, hi] onto the pixels [from, to], ticked every step from lo.
struct Scale {
  double lo, hi, step, from, to;
  double operator()(double v) const { return from + (v - lo) / (hi - lo) * (to - from); }
};

// A scale whose ends are multiples of a round step (1, 2 or 5 times a power of ten) around
// [lo, hi], some six ticks apart. An empty or non-finite range is widened to one.
Scale RoundScale(double lo, double hi, double from, double to) {
  if (!std::isfinite(lo) || !std::isfinite(hi)) lo = 0.0, hi = 1.0;
  if (!(hi > lo)) lo -= 0.5, hi += 0.5;
  const double raw = (hi - lo) / 6.0;
  const double power = std::pow(10.0, std::floor(std::log10(raw)));
  const double m = raw / power;
  const double step = (m < 1.5 ? 1.0 : m < 3.0 ? 2.0 : m < 7.0 ? 5.0 : 10.0) * power;
  return {std::floor(lo / step) * step, std::ceil(hi / step) * step, step, from, to};
}

Scale XScale(double lo, double hi) {
  return RoundScale(lo, hi, kLeft, kWidth - kRight);
}
Scale YScale(double lo, double hi) {
  return RoundScale(lo, hi, kHeight - kBottom, kTop);
}

struct Tick {
  double at;  // in the scale's units
  std::string label;
};

// A tick at every multiple of the scale's step in its range, labelled by its value.
std::vector<Tick> Ticks(const Scale & s) {
  std::vector<Tick> ticks;
  const long first = std::lround(s.lo / s.step), last = std::lround(s.hi / s.step);
  for (long k = first; k <= last; ++k) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", static_cast<double>(k) * s.step);
    ticks.push_back({static_cast<double>(k) * s.step, text});
  }
  return ticks;
}

// A new element appended to parent, with numeric attributes to 0.01 and, when not null, a
// class; a reference to it.
XMLElement & Add(XMLElement & parent, const char * name,
                 std::initializer_list<std::pair<const char *, double>> numbers,
                 const char * cls = nullptr) {
  std::unique_ptr<XMLElement> child(XMLElement::Create(name));
  if (cls != nullptr) child->AddAttribute("class", std::string(cls));
  for (const auto & n : numbers) child->AddAttribute(n.first, std::round(n.second * 100.0) / 100.0);
  parent.AddElement(child.get());
  return *child.release();
}

// Text at (x, y), anchored "start", "middle" or "end", turned by angle degrees about it.
void AddText(XMLElement & parent, double x, double y, const std::string & text, const char * anchor,
             const char * cls, double angle = 0.0) {
  XMLElement & t = Add(parent, "text", {{"x", x}, {"y", y}}, cls);
  t.AddAttribute("text-anchor", std::string(anchor));
  if (angle != 0.0) {
    char turn[64];
    std::snprintf(turn, sizeof turn, "rotate(%g %.2f %.2f)", angle, x, y);
    t.AddAttribute("transform", std::string(turn));
  }
  t.AddElement(ZRXML_920::XMLString::Create(text));
}

// An axis title from a coordinates record: the field's name with its role, or the role.
std::string Title(const ZRXMLCoordinates & c) {
  return c.fField.empty() ? c.fFeature : c.fField + " (" + c.fFeature + ")";
}

// The document of one chart: the svg root with its size and a style for the marks, the
// title, and both axes along the plot area with their ticks and titles.
std::unique_ptr<XMLElement> Chart(const std::string & title, const Scale & x,
                                  const std::vector<Tick> & xTicks, const std::string & xTitle,
                                  const Scale & y, const std::string & yTitle) {
  std::unique_ptr<XMLElement> svg(XMLElement::Create("svg"));
  svg->AddAttribute("xmlns", std::string(kSvgNamespace));
  svg->AddAttribute("version", std::string("1.1"));
  svg->AddAttribute("width", kWidth);
  svg->AddAttribute("height", kHeight);
  char box[64];
  std::snprintf(box, sizeof box, "0 0 %g %g", kWidth, kHeight);
  svg->AddAttribute("viewBox", std::string(box));
  svg->AddAttribute("font-family", std::string("sans-serif"));
  svg->AddAttribute("font-size", 12.0);
  XMLElement & style = Add(*svg, "style", {});
  style.AddAttribute("type", std::string("text/css"));
  style.AddElement(ZRXML_920::XMLString::Create(
      ".axis,.tick{stroke:#333}.bar{fill:#4c78a8;fill-opacity:0.8}"
      ".point{fill:#e45756;fill-opacity:0.6;stroke:#b03030}"
      ".curve{fill:none;stroke:#4c78a8;stroke-width:2}.diagonal{stroke:#999;stroke-dasharray:4 4}"
      ".title{font-size:15px}"));
  AddText(*svg, kWidth / 2.0, kTop / 2.0 + 5.0, title, "middle", "title");
  const double x0 = x.from, x1 = x.to, y0 = y.from, y1 = y.to;
  Add(*svg, "line", {{"x1", x0}, {"y1", y0}, {"x2", x1}, {"y2", y0}}, "axis");
  Add(*svg, "line", {{"x1", x0}, {"y1", y0}, {"x2", x0}, {"y2", y1}}, "axis");
  for (const Tick & t : xTicks) {
    Add(*svg, "line", {{"x1", x(t.at)}, {"y1", y0}, {"x2", x(t.at)}, {"y2", y0 + 5.0}}, "tick");
    AddText(*svg, x(t.at), y0 + 18.0, t.label, "middle", "tick-label");
  }
  for (const Tick & t : Ticks(y)) {
    Add(*svg, "line", {{"x1", x0 - 5.0}, {"y1", y(t.at)}, {"x2", x0}, {"y2", y(t.at)}}, "tick");
    AddText(*svg, x0 - 8.0, y(t.at) + 4.0, t.label, "end", "tick-label");
  }
  AddText(*svg, (x0 + x1) / 2.0, kHeight - 15.0, xTitle, "middle", "axis-title");
  AddText(*svg, 18.0, (y0 + y1) / 2.0, yTitle, "middle", "axis-title", -90.0);
  return svg;
}

// The document written as UTF-8 to folder/name; false, with a message, on failure.
bool Save(const XMLElement & svg, const std::string & folder, const char * name) {
  const std::string path = folder + "/" + name;
  std::ofstream out(path, std::ios::binary);
  ZRXML_920::WriteTreeUTF8(out, nullptr, &svg, true);
  out << '\n';
  out.close();
  if (!out) {
    std::fprintf(stderr, "cannot write %s\n", path.c_str());
    return false;
  }
  ZRDisplay_920::DisplayS("chart", path);
  return true;
}

double Largest(const std::vector<double> & v) {
  return v.empty() ? 0.0 : *std::max_element(v.begin(), v.end());
}

// ---- The four charts ------------------------------------------------------------------

// Histogram: a bar per non-empty bin, one bin wide, standing at the mean of its cases.
std::unique_ptr<XMLElement> HistogramSvg(const ZRVariateData & record, double lo, double hi) {
  const ZRXMLCoordinates & means = record.fCoordinates[0];
  const ZRXMLCoordinates & freqs = record.fCoordinates[1];
  const double half = (hi - lo) / kHistogramBins / 2.0;
  const Scale x = XScale(lo - half, hi + half);
  const Scale y = YScale(0.0, Largest(freqs.fDoubleValues));
  std::unique_ptr<XMLElement> svg =
      Chart("Histogram of " + means.fField, x, Ticks(x), Title(means), y, Title(freqs));
  for (std::size_t i = 0; i < means.fDoubleValues.size(); ++i) {
    const double m = means.fDoubleValues[i], f = freqs.fDoubleValues[i];
    Add(*svg, "rect",
        {{"x", x(m - half)},
         {"y", y(f)},
         {"width", x(m + half) - x(m - half)},
         {"height", y(0.0) - y(f)}},
        "bar");
  }
  return svg;
}

// Scatter plot: a point per non-empty cell at the means of its cases, its area in
// proportion to the cell's frequency.
std::unique_ptr<XMLElement> ScatterSvg(const ZRVariateData & record, double xLo, double xHi,
                                       double yLo, double yHi) {
  const ZRXMLCoordinates & xs = record.fCoordinates[0];
  const ZRXMLCoordinates & ys = record.fCoordinates[1];
  const std::vector<double> & freqs = record.fCoordinates[2].fDoubleValues;
  const Scale x = XScale(xLo, xHi), y = YScale(yLo, yHi);
  std::unique_ptr<XMLElement> svg =
      Chart(ys.fField + " against " + xs.fField, x, Ticks(x), Title(xs), y, Title(ys));
  const double largest = Largest(freqs);
  for (std::size_t i = 0; i < freqs.size(); ++i) {
    const double r = kMaxRadius * std::sqrt(freqs[i] / largest);
    Add(*svg, "circle", {{"cx", x(xs.fDoubleValues[i])}, {"cy", y(ys.fDoubleValues[i])}, {"r", r}},
        "point");
  }
  return svg;
}

// Bar chart: a bar per non-empty category, in the record's order.
std::unique_ptr<XMLElement> BarsSvg(const ZRVariateData & record) {
  const ZRXMLCoordinates & labels = record.fCoordinates[0];
  const std::vector<double> & counts = record.fCoordinates[1].fDoubleValues;
  const int n = static_cast<int>(counts.size());
  const Scale x{0.0, static_cast<double>(std::max(n, 1)), 1.0, kLeft, kWidth - kRight};
  const Scale y = YScale(0.0, Largest(counts));
  std::vector<Tick> ticks;
  for (int k = 0; k < n; ++k) ticks.push_back({k + 0.5, labels.fStringValues[k]});
  std::unique_ptr<XMLElement> svg = Chart("Bar chart of " + labels.fField, x, ticks, Title(labels),
                                          y, Title(record.fCoordinates[1]));
  for (int k = 0; k < n; ++k) {
    Add(*svg, "rect",
        {{"x", x(k + 0.2)},
         {"y", y(counts[k])},
         {"width", x(k + 0.8) - x(k + 0.2)},
         {"height", y(0.0) - y(counts[k])}},
        "bar");
  }
  return svg;
}

// Gains chart: the cumulative share of the value against the cumulative share of records,
// from (0, 0) through the end of each row, a point marking each row, and the diagonal that
// a ranking by chance would follow. The shares are of the last row's cumulative totals.
std::unique_ptr<XMLElement> GainsSvg(const std::vector<ZRMath_920::LiftInfo> & rows,
                                     const std::string & value) {
  const Scale x = XScale(0.0, 1.0), y = YScale(0.0, 1.0);
  std::unique_ptr<XMLElement> svg =
      Chart("Gains chart of " + value, x, Ticks(x), "cumulative share of records", y,
            "cumulative share of " + value);
  Add(*svg, "line", {{"x1", x(0.0)}, {"y1", y(0.0)}, {"x2", x(1.0)}, {"y2", y(1.0)}}, "diagonal");
  double total = 0.0;
  for (const ZRMath_920::LiftInfo & row : rows) total += row.fdSum;
  const double count = rows.empty() ? 0.0 : rows.back().fnCumCount;
  XMLElement & curve = Add(*svg, "polyline", {}, "curve");
  double sum = 0.0;
  char pair[64];
  std::snprintf(pair, sizeof pair, "%.2f,%.2f", x(0.0), y(0.0));
  std::string points = pair;
  for (const ZRMath_920::LiftInfo & row : rows) {
    sum += row.fdSum;
    const double px = x(row.fnCumCount / count), py = y(sum / total);
    std::snprintf(pair, sizeof pair, " %.2f,%.2f", px, py);
    points += pair;
    Add(*svg, "circle", {{"cx", px}, {"cy", py}, {"r", 3.0}}, "point");
  }
  curve.AddAttribute("points", points);
  return svg;
}

// The slope and intercept of the weighted least-squares line of fuel on engine, by sweeping
// the engine row out of their corrected cross-products. False when the sweep refuses it
// (engine constant).
bool FitLine(const std::vector<Case> & cases, double & slope, double & intercept) {
  ZRMath_920::ZRRectMatrix design;
  design.SetNRowsCols(static_cast<int>(cases.size()), 3, true);
  for (std::size_t r = 0; r < cases.size(); ++r) {
    const int i = static_cast<int>(r);
    design.SetElem(i, 0, cases[r].engine);
    design.SetElem(i, 1, cases[r].fuel);
    design.SetElem(i, 2, cases[r].count);
  }
  ZRMath_920::ZRMeansXProducts summary(2, true, true, false);
  if (!summary.Compute(design, 0)) return false;
  ZRMath_920::ZRSymMatrix a = summary.GetXProds();
  ZRMath_920::ZRBitSet entered;
  double logDet = 0.0;
  std::vector<double> b;
  if (!a.SweepOnMany(1, 1e-10, true, entered, logDet, true, nullptr) || !entered.IsIn(0) ||
      !a.GetRegCoeffs(b, entered))
    return false;
  slope = b[0];
  intercept = summary.GetMeans()[1] - slope * summary.GetMeans()[0];
  return true;
}

}  // namespace

int main(int argc, char ** argv) {
  if (argc > 3) {
    std::fprintf(stderr, "usage: zr_charts [data.csv [folder]]\n");
    return 2;
  }
  const std::string dataPath = argc > 1 ? argv[1] : ZR_CHARTS_DATA;
  const std::string folder = argc > 2 ? argv[2] : ZR_CHARTS_BUILD_DIR;
  std::vector<Case> cases;
  std::vector<std::string> drives;
  if (!LoadCases(dataPath, cases, drives)) return 1;
  std::error_code made;
  std::filesystem::create_directories(folder, made);

  const auto engineRange =
      std::minmax_element(cases.begin(), cases.end(),
                          [](const Case & a, const Case & b) { return a.engine < b.engine; });
  const auto fuelRange = std::minmax_element(
      cases.begin(), cases.end(), [](const Case & a, const Case & b) { return a.fuel < b.fuel; });
  const double engineLo = engineRange.first->engine, engineHi = engineRange.second->engine;
  const double fuelLo = fuelRange.first->fuel, fuelHi = fuelRange.second->fuel;

  ZRHistogramData histogram(kHistogramBins, fuelLo, fuelHi, true);
  ZRScatterPlotData scatter(kScatterBins, kScatterBins, engineLo, engineHi, fuelLo, fuelHi, true);
  ZRBarChartData bars(static_cast<int>(drives.size()), false);
  for (const Case & c : cases) {
    histogram.UpdateData(c.count, 1.0, c.fuel);
    scatter.UpdateData(c.count, 1.0, c.engine, c.fuel);
    bars.UpdateData(c.count, c.drive);
  }

  double slope = 0.0, intercept = 0.0;
  if (!FitLine(cases, slope, intercept)) {
    std::fprintf(stderr, "engine does not vary: no line to rank the vehicles by\n");
    return 1;
  }
  std::vector<ZRMath_920::RegDataInfo> ranked;
  for (const Case & c : cases) ranked.emplace_back(intercept + slope * c.engine, c.fuel, c.count);
  ZRMath_920::RegGainsChart gains;
  gains.SetCountOfSegment(kGainsSegments);
  const std::vector<ZRMath_920::LiftInfo> rows = gains.CalculateGains(ranked);

  ZRDisplay_920::DisplayS("data set", dataPath);
  ZRDisplay_920::DisplayI("cases", static_cast<int>(cases.size()));
  ZRDisplay_920::DisplayD("weighted cases", histogram.GetTotalWeight());
  ZRDisplay_920::DisplayD("fitted fuel at engine 0", intercept);
  ZRDisplay_920::DisplayD("fitted fuel per litre of engine", slope);
  const bool ok = Save(*HistogramSvg(histogram.GenerateZRVariateData("fuel"), fuelLo, fuelHi),
                       folder, "histogram.svg") &&
                  Save(*ScatterSvg(scatter.GetZRVariateData("engine", "observed", "mean", "fuel",
                                                            "observed", "mean"),
                                   engineLo, engineHi, fuelLo, fuelHi),
                       folder, "scatter.svg") &&
                  Save(*BarsSvg(bars.GenerateZRVariateData("drive", drives)), folder, "bars.svg") &&
                  Save(*GainsSvg(rows, "fuel"), folder, "gains.svg");
  std::printf("\n");
  return ok ? 0 : 1;
}
