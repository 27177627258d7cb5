// Scaling of the threaded model build: the cross-products of 50 predictors and a response
// over a block of cases, summed by one thread and by two, each thread with its own
// ZRMeansXProducts over its own chunks, joined with Merge. Both builds run in every
// iteration, so the cases per second of each, the speed-up and the efficiency (speed-up
// over threads) come from the same moment of a shared machine.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <thread>
#include <vector>

#include "zrcommon920r/math/matrix/rectmatrix.h"
#include "zrcommon920r/math/stats/meansxprod.h"

namespace {

using ZRMath_920::ZRMeansXProdData;
using ZRMath_920::ZRMeansXProducts;
using ZRMath_920::ZRRectMatrix;

constexpr int kVars = 51;         // 50 predictors and the response
constexpr int kCases = 1 << 17;   // cases of the data set
constexpr int kChunkRows = 2048;  // cases a worker copies out and sums at a time

// The cases, then a whole-number frequency weight; values about 10 j +- 0.5.
ZRRectMatrix Cases() {
  std::mt19937 gen(7);
  std::uniform_real_distribution<double> u(-0.5, 0.5);
  ZRRectMatrix x(kCases, kVars + 1, false);
  for (int r = 0; r < kCases; ++r) {
    for (int j = 0; j < kVars; ++j) x.SetElem(r, j, 10.0 * j + u(gen));
    x.SetElem(r, kVars, 1.0 + static_cast<double>(gen() % 3));
  }
  return x;
}

// Chunks t, t + n, ... of x summed by worker t of n; the parts joined in worker order.
// Returns the seconds taken.
double Build(const ZRRectMatrix & x, int n, ZRMeansXProdData & total) {
  const auto start = std::chrono::steady_clock::now();
  std::vector<ZRMeansXProducts> parts(n, ZRMeansXProducts(kVars, true, true, false));
  std::vector<std::thread> workers;
  for (int t = 0; t < n; ++t) {
    workers.emplace_back([&x, &parts, t, n] {
      ZRRectMatrix block(kChunkRows, kVars + 1, false);
      for (int first = t * kChunkRows; first < kCases; first += n * kChunkRows) {
        const int rows = std::min(kChunkRows, kCases - first);
        block.CopyRows(x, first, rows);
        parts[t].Update(block, rows);
      }
    });
  }
  for (std::thread & w : workers) w.join();
  total = ZRMeansXProdData();
  for (const ZRMeansXProducts & part : parts) total.Merge(part);
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void ThreadedBuildScaling(benchmark::State & state) {
  const ZRRectMatrix x = Cases();
  double one = 0.0, two = 0.0;
  ZRMeansXProdData total;
  for (auto _ : state) {
    one += Build(x, 1, total);
    two += Build(x, 2, total);
    benchmark::DoNotOptimize(total.GetNCases());
  }
  const double runs = static_cast<double>(state.iterations());
  state.counters["cases_per_s_T1"] = kCases * runs / one;
  state.counters["cases_per_s_T2"] = kCases * runs / two;
  state.counters["speedup_T2"] = one / two;
  state.counters["efficiency_T2"] = one / two / 2.0;
}
BENCHMARK(ThreadedBuildScaling)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2.0);

}  // namespace
