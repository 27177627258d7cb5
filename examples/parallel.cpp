// Example procedure: a weighted linear regression over a data set too large to hold,
// built by several threads. The cases are generated in chunks, each from its own seed, so
// the data set is the same whatever the number of threads. Worker t takes chunks t, t + T,
// t + 2T, ... and keeps its own accumulators (cross-products, each continuous field's
// summary, the counts of the text field) and its own random source; it touches nothing
// shared. The main thread joins the workers' summaries in worker order with Merge and
// Pool, sweeps the predictors out and compares the fit with the one-thread build.
//
// Usage: zr_parallel [cases [predictors]]   (defaults 10000000 and 50; at least 4
// predictors: three indicator columns of a four-category field, the rest continuous).
// Prints the cases per second for 1, 2 and 4 threads and the largest difference of each
// against the one-thread build: means relative, cross-products relative to
// sqrt(C_ii C_jj), slopes normwise, the intercept relative to the terms it is formed from,
// field summaries relative. The processor time beside the wall clock shows how much of
// the machine the run had. Exits with 1 when a
// build fails or a difference passes 1e-12.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <thread>
#include <vector>

#include "generated_cases.h"
#include "zrcommon920r/zrcommon920r.h"

namespace {

using ZRMath_920::ZRBitSet;
using ZRMath_920::ZRCatStats;
using ZRMath_920::ZRContStats;
using ZRMath_920::ZRMeansXProdData;
using ZRMath_920::ZRMeansXProducts;
using ZRMath_920::ZRRandomTwister;
using ZRMath_920::ZRRectMatrix;
using ZRMath_920::ZRSymMatrix;

using zr_examples::GenerateChunk;
using zr_examples::kChunkRows;
using zr_examples::kIndicators;
using zr_examples::Shape;

constexpr double kBound = 1e-12;  // largest difference accepted against one thread

// What one worker gathers over its chunks.
struct Partial {
  ZRMeansXProducts xprods;
  std::vector<ZRContStats> numbers;  // the continuous predictors, then the response
  ZRCatStats region;                 // counts of the four-category field
  bool ok = true;
};

// Worker t of n: its chunks into out. Allocates its block once.
void Work(const Shape & shape, int t, int n, Partial & out) {
  ZRRandomTwister source;
  ZRRectMatrix block(kChunkRows, shape.Columns(), true);
  std::vector<double> codes(kChunkRows);
  const int p = shape.predictors;
  for (long long c = t; c < shape.Chunks(); c += n) {
    const int rows = shape.Rows(c);
    GenerateChunk(shape, c, rows, source, block, codes);
    for (int r = 0; r < rows; ++r) {
      const double w = block.GetElem(r, p + 1);
      out.region.Update(codes[r], w);
      for (int j = kIndicators; j <= p; ++j)
        out.numbers[j - kIndicators].Update(block.GetElem(r, j), w, 1.0);
    }
    out.ok = out.xprods.Update(block, rows) && out.ok;
  }
}

// A build on n threads: the joined summaries and its wall-clock time.
struct Build {
  ZRMeansXProdData xprods;
  std::vector<ZRContStats> numbers;
  ZRCatStats region;
  double seconds = 0.0;     // wall clock
  double cpuSeconds = 0.0;  // all threads of the process
  bool ok = true;
};

Build RunBuild(const Shape & shape, int n) {
  const auto start = std::chrono::steady_clock::now();
  const std::clock_t cpuStart = std::clock();
  std::vector<Partial> parts(n);
  for (Partial & part : parts) {
    part.xprods = ZRMeansXProducts(shape.predictors + 1, true, true, false);
    part.numbers.assign(shape.Continuous() + 1, ZRContStats());
  }
  std::vector<std::thread> workers;
  for (int t = 0; t < n; ++t)
    workers.emplace_back(Work, std::cref(shape), t, n, std::ref(parts[t]));
  for (std::thread & w : workers) w.join();

  Build build;
  build.numbers.assign(shape.Continuous() + 1, ZRContStats());
  for (const Partial & part : parts) {
    build.ok = build.ok && part.ok;
    if (part.xprods.GetNCases() <= 0.0) continue;  // a worker left without chunks
    build.ok = build.xprods.Merge(part.xprods) && build.ok;
    for (std::size_t j = 0; j < part.numbers.size(); ++j) build.numbers[j].Pool(part.numbers[j]);
    build.region.Pool(part.region);
  }
  build.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  build.cpuSeconds = static_cast<double>(std::clock() - cpuStart) / CLOCKS_PER_SEC;
  return build;
}

// The slopes of the response on the predictors, by sweeping the corrected cross-products,
// then the intercept; empty when a predictor is refused.
std::vector<double> Fit(const ZRMeansXProdData & s) {
  const int p = s.GetNVars() - 1;
  ZRSymMatrix a = s.GetXProds();
  ZRBitSet entered;
  double logDet = 0.0;
  std::vector<double> b;
  if (!a.SweepOnMany(p, 1e-10, true, entered, logDet, true, nullptr) || entered.InSet() != p ||
      !a.GetRegCoeffs(b, entered))
    return {};
  double intercept = s.GetMeans()[p];
  for (int j = 0; j < p; ++j) intercept -= b[j] * s.GetMeans()[j];
  b.push_back(intercept);
  return b;
}

double RelDiff(double got, double want) {
  return want == 0.0 ? std::fabs(got) : std::fabs(got - want) / std::fabs(want);
}

// The largest differences of a build against the one-thread build.
struct Differences {
  double means = 0.0, xprods = 0.0, coefficients = 0.0, fields = 0.0;
  double Largest() const { return std::max({means, xprods, coefficients, fields}); }
};

Differences Compare(const Build & got, const Build & one) {
  Differences d;
  const ZRMeansXProdData & a = got.xprods;
  const ZRMeansXProdData & b = one.xprods;
  for (int i = 0; i < b.GetNVars(); ++i) {
    d.means = std::max(d.means, RelDiff(a.GetMeans()[i], b.GetMeans()[i]));
    for (int j = 0; j <= i; ++j) {
      const double scale = std::sqrt(b.GetXProds().GetElem(i, i) * b.GetXProds().GetElem(j, j));
      d.xprods = std::max(
          d.xprods, std::fabs(a.GetXProds().GetElem(i, j) - b.GetXProds().GetElem(i, j)) / scale);
    }
  }
  // Slopes normwise; the intercept, mean_y - sum b_j mean_j, relative to the size of the
  // terms it is the difference of, which with means far from 0 is much larger than itself.
  const std::vector<double> ca = Fit(a), cb = Fit(b);
  const int p = b.GetNVars() - 1;
  if (ca.size() != cb.size() || cb.empty()) {
    d.coefficients = INFINITY;
  } else {
    double diff = 0.0, norm = 0.0, terms = std::fabs(b.GetMeans()[p]);
    for (int k = 0; k < p; ++k) {
      diff += (ca[k] - cb[k]) * (ca[k] - cb[k]);
      norm += cb[k] * cb[k];
      terms += std::fabs(cb[k] * b.GetMeans()[k]);
    }
    d.coefficients = std::max(std::sqrt(diff / norm), std::fabs(ca[p] - cb[p]) / terms);
  }
  for (std::size_t j = 0; j < one.numbers.size(); ++j) {
    d.fields = std::max(d.fields, RelDiff(got.numbers[j].GetMean(), one.numbers[j].GetMean()));
    d.fields =
        std::max(d.fields, RelDiff(got.numbers[j].GetVariance(), one.numbers[j].GetVariance()));
  }
  for (unsigned int c = 0; c < 4; ++c)  // whole-number weights: exact in any order
    d.fields = std::max(d.fields, RelDiff(got.region.GetCatCount(c), one.region.GetCatCount(c)));
  return d;
}

// A positive whole number from text; false for anything else.
bool ParseCount(const char * text, long long & value) {
  char * end = nullptr;
  value = std::strtoll(text, &end, 10);
  return *text != '\0' && *end == '\0' && value > 0;
}

}  // namespace

int main(int argc, char ** argv) {
  Shape shape{10000000, 50};
  long long predictors = shape.predictors;
  if (argc > 3 || (argc > 1 && !ParseCount(argv[1], shape.cases)) ||
      (argc > 2 &&
       (!ParseCount(argv[2], predictors) || predictors < kIndicators + 1 || predictors > 2000))) {
    std::fprintf(stderr, "usage: zr_parallel [cases [predictors]]   (predictors 4 to 2000)\n");
    return 2;
  }
  shape.predictors = static_cast<int>(predictors);
  std::printf("%lld cases, %d predictors, %lld chunks of %d; %u hardware threads\n", shape.cases,
              shape.predictors, shape.Chunks(), kChunkRows, std::thread::hardware_concurrency());

  const Build one = RunBuild(shape, 1);
  const std::vector<double> b = Fit(one.xprods);
  if (!one.ok || b.empty()) {
    std::fprintf(stderr, "the one-thread build failed\n");
    return 1;
  }
  std::printf("weighted cases %.0f; intercept %.10g, first slopes %.10g %.10g %.10g %.10g\n",
              one.xprods.GetNCases(), b.back(), b[0], b[1], b[2], b[3]);
  std::printf("T=1: %.4g cases per second (%.3f s, processor %.3f s)\n", shape.cases / one.seconds,
              one.seconds, one.cpuSeconds);
  bool ok = true;
  for (const int n : {2, 4}) {
    const Build build = RunBuild(shape, n);
    const Differences d = Compare(build, one);
    std::printf("T=%d: %.4g cases per second (%.3f s, processor %.3f s), speed-up %.2f\n", n,
                shape.cases / build.seconds, build.seconds, build.cpuSeconds,
                one.seconds / build.seconds);
    std::printf(
        "T=%d: largest difference %.3g (means %.3g, cross-products %.3g, coefficients %.3g, "
        "field summaries %.3g)\n",
        n, d.Largest(), d.means, d.xprods, d.coefficients, d.fields);
    // Written as !(d <= bound) so that a NaN difference fails too.
    if (!build.ok || !(d.Largest() <= kBound)) ok = false;
  }
  if (!ok) std::fprintf(stderr, "a threaded build differs from one thread by more than 1e-12\n");
  return ok ? 0 : 1;
}
