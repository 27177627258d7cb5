// ZRContStats::Update(x, f, r) per value against Boost.Accumulators' weighted mean and
// weighted variance fed the same values with the composite weight f r. Both sides keep one
// accumulator across iterations and are timed per value. Before timing, the two are run
// over the values once and their means and sums of squares compared; a mismatch skips the
// benchmark and says by how much.
#include <benchmark/benchmark.h>

#include <boost/accumulators/accumulators.hpp>
#include <boost/accumulators/statistics/stats.hpp>
#include <boost/accumulators/statistics/weighted_mean.hpp>
#include <boost/accumulators/statistics/weighted_variance.hpp>

#include <cmath>
#include <cstdio>
#include <random>
#include <vector>

#include "zrcommon920r/math/stats/unistats.h"

namespace {

namespace ba = boost::accumulators;
using ZRMath_920::ZRContStats;
using BoostWeighted =
    ba::accumulator_set<double, ba::stats<ba::tag::weighted_mean, ba::tag::weighted_variance>,
                        double>;

constexpr int kValues = 100000;

// Values 10 +- 1, frequency weights 1 to 4, regression weights 0.5 to 2.
struct Data {
  std::vector<double> x, f, r;
};
const Data & TheData() {
  static const Data data = [] {
    std::mt19937 gen(7);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    Data d;
    for (int i = 0; i < kValues; ++i) {
      d.x.push_back(10.0 + u(gen));
      d.f.push_back(1.0 + static_cast<double>(gen() % 4));
      d.r.push_back(1.25 + 0.75 * u(gen));
    }
    return d;
  }();
  return data;
}

// Skips the benchmark unless both sides give the same mean and sum of squares about it.
bool SameAnswers(benchmark::State & state) {
  const Data & d = TheData();
  ZRContStats zr;
  BoostWeighted ref;
  for (int i = 0; i < kValues; ++i) {
    zr.Update(d.x[i], d.f[i], d.r[i]);
    ref(d.x[i], ba::weight = d.f[i] * d.r[i]);
  }
  const double zrSsq = zr.GetVariance() * (zr.GetSumFreq() - 1.0);
  const double refSsq = ba::weighted_variance(ref) * ba::sum_of_weights(ref);
  const double meanDiff = std::fabs(zr.GetMean() - ba::weighted_mean(ref));
  const double ssqDiff = std::fabs(zrSsq - refSsq) / refSsq;
  if (meanDiff <= 1e-12 && ssqDiff <= 1e-10) return true;
  char message[96];
  std::snprintf(message, sizeof message, "mean differs by %.3g, SSQ by %.3g relative", meanDiff,
                ssqDiff);
  state.SkipWithError(message);
  return false;
}

void ContStatsUpdate_zr(benchmark::State & state) {
  if (!SameAnswers(state)) return;
  const Data & d = TheData();
  ZRContStats acc;
  for (auto _ : state) {
    for (int i = 0; i < kValues; ++i) acc.Update(d.x[i], d.f[i], d.r[i]);
    benchmark::ClobberMemory();
  }
  benchmark::DoNotOptimize(acc.GetMean());
  state.counters["calls"] = kValues;
}

void ContStatsUpdate_ref(benchmark::State & state) {
  if (!SameAnswers(state)) return;
  const Data & d = TheData();
  BoostWeighted acc;
  for (auto _ : state) {
    for (int i = 0; i < kValues; ++i) acc(d.x[i], ba::weight = d.f[i] * d.r[i]);
    benchmark::ClobberMemory();
  }
  benchmark::DoNotOptimize(ba::weighted_variance(acc));
  state.counters["calls"] = kValues;
}

}  // namespace

BENCHMARK(ContStatsUpdate_zr)->Name("ContStatsUpdate/zr")->Unit(benchmark::kMicrosecond);
BENCHMARK(ContStatsUpdate_ref)->Name("ContStatsUpdate/ref")->Unit(benchmark::kMicrosecond);
