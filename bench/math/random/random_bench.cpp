// Random numbers against the C++ standard library (std) and GSL (gsl), each side drawing
// kBatch values per iteration from its own MT19937 seeded alike: raw 32-bit words, standard
// normals (GSL's ziggurat), beta, binomial and gamma variates. This library's generators run
// on ZRRNGUTwister (ZRRandomValues on its own twister ZRURandom), so every side pays for the
// same kind of uniform source.
#include <benchmark/benchmark.h>
#include <gsl/gsl_randist.h>
#include <gsl/gsl_rng.h>

#include <cstdint>
#include <random>
#include <string>

#include "zrcommon920r/math/random/uniform.h"
#include "zrcommon920r/math/random/variates.h"

namespace {

using ZRMath_920::ZRRandomTwister;
using ZRMath_920::ZRRandomValues;
using ZRMath_920::ZRRNGBeta;
using ZRMath_920::ZRRNGBinomial;
using ZRMath_920::ZRRNGNormal;
using ZRMath_920::ZRRNGUTwister;

constexpr int kBatch = 1024;
constexpr unsigned kSeed = 5489;

// GSL's MT19937, freed with the benchmark.
class GslRng {
 public:
  GslRng() : fRng(gsl_rng_alloc(gsl_rng_mt19937)) { gsl_rng_set(fRng, kSeed); }
  ~GslRng() { gsl_rng_free(fRng); }
  GslRng(const GslRng &) = delete;
  GslRng & operator=(const GslRng &) = delete;
  gsl_rng * get() const { return fRng; }

 private:
  gsl_rng * fRng;
};

template <class Draw>
void Batch(benchmark::State & state, Draw draw) {
  for (auto _ : state) {
    double sum = 0.0;
    for (int i = 0; i < kBatch; ++i) sum += draw();
    benchmark::DoNotOptimize(sum);
  }
  state.counters["calls"] = kBatch;
}

void WordZr(benchmark::State & state) {
  ZRRandomTwister engine;
  engine.Initialize(kSeed);
  for (auto _ : state) {
    std::uint32_t acc = 0;
    for (int i = 0; i < kBatch; ++i) acc ^= engine.GetInteger32();
    benchmark::DoNotOptimize(acc);
  }
  state.counters["calls"] = kBatch;
}
void WordStd(benchmark::State & state) {
  std::mt19937 engine(kSeed);
  for (auto _ : state) {
    std::uint32_t acc = 0;
    for (int i = 0; i < kBatch; ++i) acc ^= static_cast<std::uint32_t>(engine());
    benchmark::DoNotOptimize(acc);
  }
  state.counters["calls"] = kBatch;
}
void WordGsl(benchmark::State & state) {
  GslRng rng;
  for (auto _ : state) {
    unsigned long acc = 0;
    for (int i = 0; i < kBatch; ++i) acc ^= gsl_rng_get(rng.get());
    benchmark::DoNotOptimize(acc);
  }
  state.counters["calls"] = kBatch;
}
BENCHMARK(WordZr)->Name("MT19937Word/zr");
BENCHMARK(WordStd)->Name("MT19937Word/std");
BENCHMARK(WordGsl)->Name("MT19937Word/gsl");

void NormalZr(benchmark::State & state) {
  ZRRNGUTwister source;
  source.SetSeed(kSeed);
  ZRRNGNormal normal;
  normal.SetURNGenerator(source);
  Batch(state, [&] { return normal.GetNext(); });
}
void NormalStd(benchmark::State & state) {
  std::mt19937 engine(kSeed);
  std::normal_distribution<double> normal;
  Batch(state, [&] { return normal(engine); });
}
void NormalGsl(benchmark::State & state) {
  GslRng rng;
  Batch(state, [&] { return gsl_ran_gaussian_ziggurat(rng.get(), 1.0); });
}
BENCHMARK(NormalZr)->Name("Normal/zr");
BENCHMARK(NormalStd)->Name("Normal/std");
BENCHMARK(NormalGsl)->Name("Normal/gsl");

// Works whose arguments vary, registered side by side.
bool RegisterAll() {
  struct {
    double a, b;
    const char * args;
  } const betas[] = {{0.5, 0.5, "a:0.5/b:0.5"}, {2.0, 3.0, "a:2/b:3"}, {50.0, 50.0, "a:50/b:50"}};
  for (const auto & c : betas) {
    const double a = c.a, b = c.b;
    benchmark::RegisterBenchmark((std::string("Beta/zr/") + c.args).c_str(),
                                 [a, b](benchmark::State & state) {
                                   ZRRNGUTwister source;
                                   source.SetSeed(kSeed);
                                   ZRRNGBeta beta(a, b);
                                   beta.SetURNGenerator(source);
                                   Batch(state, [&] { return beta.GetNext(); });
                                 });
    benchmark::RegisterBenchmark((std::string("Beta/gsl/") + c.args).c_str(),
                                 [a, b](benchmark::State & state) {
                                   GslRng rng;
                                   Batch(state, [&] { return gsl_ran_beta(rng.get(), a, b); });
                                 });
  }
  for (const int n : {20, 1000, 1000000}) {
    const std::string args = "n:" + std::to_string(n) + "/p:0.3";
    benchmark::RegisterBenchmark(("Binomial/zr/" + args).c_str(), [n](benchmark::State & state) {
      ZRRNGUTwister source;
      source.SetSeed(kSeed);
      ZRRNGBinomial binomial(n, 0.3);
      binomial.SetURNGenerator(source);
      Batch(state, [&] { return binomial.GetNext(); });
    });
    benchmark::RegisterBenchmark(("Binomial/std/" + args).c_str(), [n](benchmark::State & state) {
      std::mt19937 engine(kSeed);
      std::binomial_distribution<int> binomial(n, 0.3);
      Batch(state, [&] { return static_cast<double>(binomial(engine)); });
    });
    benchmark::RegisterBenchmark(("Binomial/gsl/" + args).c_str(), [n](benchmark::State & state) {
      GslRng rng;
      Batch(state, [&] {
        return static_cast<double>(gsl_ran_binomial(rng.get(), 0.3, static_cast<unsigned>(n)));
      });
    });
  }
  for (const double shape : {0.5, 4.5}) {
    const std::string args = shape < 1.0 ? "shape:0.5" : "shape:4.5";
    benchmark::RegisterBenchmark(("Gamma/zr/" + args).c_str(), [shape](benchmark::State & state) {
      ZRRandomValues values;
      values.SetSeed(kSeed);
      Batch(state, [&] { return values.RVGam(shape, 1.0); });
    });
    benchmark::RegisterBenchmark(("Gamma/std/" + args).c_str(), [shape](benchmark::State & state) {
      std::mt19937 engine(kSeed);
      std::gamma_distribution<double> gamma(shape, 1.0);
      Batch(state, [&] { return gamma(engine); });
    });
    benchmark::RegisterBenchmark(("Gamma/gsl/" + args).c_str(), [shape](benchmark::State & state) {
      GslRng rng;
      Batch(state, [&] { return gsl_ran_gamma(rng.get(), shape, 1.0); });
    });
  }
  return true;
}

[[maybe_unused]] const bool kRegistered = RegisterAll();

}  // namespace
