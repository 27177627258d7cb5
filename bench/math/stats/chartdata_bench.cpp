// The chart gatherers against GSL's histograms on the same cases, and the gains table
// against the sort it starts with. ZRHistogramData::UpdateData (50 bins, second moment on)
// against gsl_histogram_accumulate, and the binned ZRScatterPlotData::UpdateData (50 x 50)
// against gsl_histogram2d_accumulate, per case over kPasses passes through kCases cases; GSL
// is given the frequency weight, the library both weights, and GSL keeps no means or
// moments. Each side keeps one accumulator across iterations. Before timing, one pass of
// each side is compared bin by bin (the frequencies, summed in the same order, must agree
// exactly); a mismatch skips the benchmark. RegGainsChart::CalculateGains on kRecords
// records against std::sort of the same records by score alone, the shuffled records
// copied back outside the timing; the library's order of scores must be the sort's.
#include <benchmark/benchmark.h>

#include <gsl/gsl_histogram.h>
#include <gsl/gsl_histogram2d.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "zrcommon920r/math/stats/chartdata.h"
#include "zrcommon920r/math/stats/gains.h"

#include "benchlcg.h"

namespace {

using zrbench::Lcg;

using ZRMath_920::RegDataInfo;
using ZRMath_920::RegGainsChart;
using ZRMath_920::ZRHistogramData;
using ZRMath_920::ZRScatterPlotData;

constexpr int kCases = 1000000;
constexpr int kPasses = 10;  // 10^7 cases per iteration
constexpr int kBins = 50;
constexpr int kRecords = 1000000;

// ---- Histograms ----

// Cases on [0, 1) x [0, 1), frequency weights 1 to 4, regression weights 0.5 to 2.
struct Cases {
  std::vector<double> x, y, f, r;
};

const Cases & TheCases() {
  static const Cases cases = [] {
    Lcg gen(0x853C49E6748FEA9Bu);
    Cases c;
    for (std::vector<double> * v : {&c.x, &c.y, &c.f, &c.r}) v->resize(kCases);
    for (int i = 0; i < kCases; ++i) {
      c.x[i] = gen.Uniform();
      c.y[i] = gen.Uniform();
      c.f[i] = 1.0 + gen.Below(4);
      c.r[i] = 0.5 + 1.5 * gen.Uniform();
    }
    return c;
  }();
  return cases;
}

// Skips the benchmark, saying where, unless the frequencies agree bin by bin.
bool SameFreqs(benchmark::State & state, const std::vector<double> & zr,
               const std::vector<double> & ref) {
  if (zr.size() != ref.size()) {
    char message[96];
    std::snprintf(message, sizeof message, "%zu non-empty bins, GSL %zu", zr.size(), ref.size());
    state.SkipWithError(message);
    return false;
  }
  for (std::size_t b = 0; b < zr.size(); ++b) {
    if (zr[b] == ref[b]) continue;
    char message[96];
    std::snprintf(message, sizeof message, "bin %zu: zr %.17g, GSL %.17g", b, zr[b], ref[b]);
    state.SkipWithError(message);
    return false;
  }
  return true;
}

void PerCase(benchmark::State & state) {
  state.counters["calls"] = static_cast<double>(kCases) * kPasses;
}

struct GslHist {
  GslHist() : h(gsl_histogram_alloc(kBins)) { gsl_histogram_set_ranges_uniform(h, 0.0, 1.0); }
  ~GslHist() { gsl_histogram_free(h); }
  GslHist(const GslHist &) = delete;
  GslHist & operator=(const GslHist &) = delete;
  gsl_histogram * h;
};

struct GslHist2d {
  GslHist2d() : h(gsl_histogram2d_alloc(kBins, kBins)) {
    gsl_histogram2d_set_ranges_uniform(h, 0.0, 1.0, 0.0, 1.0);
  }
  ~GslHist2d() { gsl_histogram2d_free(h); }
  GslHist2d(const GslHist2d &) = delete;
  GslHist2d & operator=(const GslHist2d &) = delete;
  gsl_histogram2d * h;
};

// One pass of each side, the frequencies compared.
bool HistogramsAgree(benchmark::State & state) {
  const Cases & c = TheCases();
  ZRHistogramData zr(kBins, 0.0, 1.0, true);
  GslHist ref;
  for (int i = 0; i < kCases; ++i) {
    zr.UpdateData(c.f[i], c.r[i], c.x[i]);
    gsl_histogram_accumulate(ref.h, c.x[i], c.f[i]);
  }
  std::vector<double> refFreqs(kBins);
  for (int b = 0; b < kBins; ++b) refFreqs[b] = gsl_histogram_get(ref.h, b);
  return SameFreqs(state, zr.GetBinFreqs(), refFreqs);
}

bool ScatterPlotsAgree(benchmark::State & state) {
  const Cases & c = TheCases();
  ZRScatterPlotData zr(kBins, kBins, 0.0, 1.0, 0.0, 1.0, true);
  GslHist2d ref;
  for (int i = 0; i < kCases; ++i) {
    zr.UpdateData(c.f[i], c.r[i], c.x[i], c.y[i]);
    gsl_histogram2d_accumulate(ref.h, c.x[i], c.y[i], c.f[i]);
  }
  // The record lists the non-empty bins x index first, as GSL's row-major order does.
  std::vector<double> refFreqs;
  for (int bx = 0; bx < kBins; ++bx)
    for (int by = 0; by < kBins; ++by)
      if (gsl_histogram2d_get(ref.h, bx, by) > 0.0)
        refFreqs.push_back(gsl_histogram2d_get(ref.h, bx, by));
  return SameFreqs(
      state, zr.GetZRVariateData("x", "", "", "y", "", "").fCoordinates[2].fDoubleValues, refFreqs);
}

void HistogramZr(benchmark::State & state) {
  if (!HistogramsAgree(state)) return;
  const Cases & c = TheCases();
  ZRHistogramData zr(kBins, 0.0, 1.0, true);
  for (auto _ : state) {
    for (int pass = 0; pass < kPasses; ++pass)
      for (int i = 0; i < kCases; ++i) zr.UpdateData(c.f[i], c.r[i], c.x[i]);
    benchmark::DoNotOptimize(zr.GetMean());
  }
  PerCase(state);
}

void HistogramGsl(benchmark::State & state) {
  const Cases & c = TheCases();
  GslHist ref;
  for (auto _ : state) {
    for (int pass = 0; pass < kPasses; ++pass)
      for (int i = 0; i < kCases; ++i) gsl_histogram_accumulate(ref.h, c.x[i], c.f[i]);
    benchmark::DoNotOptimize(gsl_histogram_get(ref.h, 0));
  }
  PerCase(state);
}

void ScatterPlotZr(benchmark::State & state) {
  if (!ScatterPlotsAgree(state)) return;
  const Cases & c = TheCases();
  ZRScatterPlotData zr(kBins, kBins, 0.0, 1.0, 0.0, 1.0, true);
  for (auto _ : state) {
    for (int pass = 0; pass < kPasses; ++pass)
      for (int i = 0; i < kCases; ++i) zr.UpdateData(c.f[i], c.r[i], c.x[i], c.y[i]);
    benchmark::DoNotOptimize(zr.GetTotalWeight());
  }
  PerCase(state);
}

void ScatterPlotGsl(benchmark::State & state) {
  const Cases & c = TheCases();
  GslHist2d ref;
  for (auto _ : state) {
    for (int pass = 0; pass < kPasses; ++pass)
      for (int i = 0; i < kCases; ++i) gsl_histogram2d_accumulate(ref.h, c.x[i], c.y[i], c.f[i]);
    benchmark::DoNotOptimize(gsl_histogram2d_get(ref.h, 0, 0));
  }
  PerCase(state);
}

// ---- Gains ----

// Scores on [0, 1) (one in 64 repeating an earlier one, so ties occur), values near the
// score, frequency weights 1 to 4.
const std::vector<RegDataInfo> & TheRecords() {
  static const std::vector<RegDataInfo> records = [] {
    Lcg gen(0xDA3E39CB94B95BDBu);
    std::vector<RegDataInfo> r;
    r.reserve(kRecords);
    for (int i = 0; i < kRecords; ++i) {
      const double score = i > 0 && gen.Below(64) == 0 ? r[gen.Below(i)].fdScore : gen.Uniform();
      r.emplace_back(score, score + 0.1 * gen.Uniform(), 1.0 + gen.Below(4));
    }
    return r;
  }();
  return records;
}

void ByScore(std::vector<RegDataInfo> & data) {
  std::sort(data.begin(), data.end(),
            [](const RegDataInfo & a, const RegDataInfo & b) { return a.fdScore > b.fdScore; });
}

void GainsZr(benchmark::State & state) {
  const RegGainsChart chart;
  std::vector<RegDataInfo> data = TheRecords(), sorted = TheRecords();
  chart.CalculateGains(data);
  ByScore(sorted);
  for (std::size_t i = 0; i < data.size(); ++i) {
    if (data[i].fdScore == sorted[i].fdScore) continue;
    char message[96];
    std::snprintf(message, sizeof message, "rank %zu: zr score %.17g, std::sort %.17g", i,
                  data[i].fdScore, sorted[i].fdScore);
    state.SkipWithError(message);
    return;
  }
  for (auto _ : state) {
    state.PauseTiming();
    data = TheRecords();
    state.ResumeTiming();
    std::vector<ZRMath_920::LiftInfo> rows = chart.CalculateGains(data);
    benchmark::DoNotOptimize(rows.data());
  }
}

void GainsSort(benchmark::State & state) {
  std::vector<RegDataInfo> data;
  for (auto _ : state) {
    state.PauseTiming();
    data = TheRecords();
    state.ResumeTiming();
    ByScore(data);
    benchmark::DoNotOptimize(data.data());
  }
}

// ---- Registration ----

bool RegisterAll() {
  const std::string bins = "bins:" + std::to_string(kBins);
  const std::string grid = "bins:" + std::to_string(kBins) + "x" + std::to_string(kBins);
  const std::string records = "n:" + std::to_string(kRecords);
  benchmark::RegisterBenchmark(("HistogramUpdate/zr/" + bins).c_str(), HistogramZr)
      ->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark(("HistogramUpdate/gsl/" + bins).c_str(), HistogramGsl)
      ->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark(("ScatterPlotUpdate/zr/" + grid).c_str(), ScatterPlotZr)
      ->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark(("ScatterPlotUpdate/gsl/" + grid).c_str(), ScatterPlotGsl)
      ->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark(("RegGains/zr/" + records).c_str(), GainsZr)
      ->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark(("RegGains/ref/" + records).c_str(), GainsSort)
      ->Unit(benchmark::kMillisecond);
  return true;
}

[[maybe_unused]] const bool kRegistered = RegisterAll();

}  // namespace
