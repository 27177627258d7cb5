// Distribution functions against R's standalone math library (rmath) and Boost.Math
// (boost), each side timed on the same grid of kPoints inputs and reported per call.
// Boost runs in double throughout (promote_double<false>), not its default long double.
#include <benchmark/benchmark.h>
#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/fisher_f.hpp>
#include <boost/math/distributions/normal.hpp>
#include <boost/math/distributions/students_t.hpp>
#include <boost/math/special_functions/beta.hpp>

#include <cmath>
#include <cstdio>
#include <initializer_list>
#include <string>
#include <vector>

#include "zrcommon920r/math/dist/distfun.h"

// Last: it defines pnorm and qnorm as macros.
#include <Rmath.h>

namespace {

namespace bm = boost::math;
using ZRMath_920::ZRDistFun;
using Policy = bm::policies::policy<bm::policies::promote_double<false>>;

constexpr int kPoints = 1024;
// Every side must agree with rmath to this, relative to max(1, |value|), before it is
// timed: a function that fails fast on the grid must not look fast. IdfT, IdfF and the
// beta quantile behind them stop at about 1e-10 on the beta scale, which near p = 0.5 is
// about 2e-7 in t at 30 df.
constexpr double kAgree = 1e-6;

// kPoints cell midpoints of [lo, hi]; for probabilities, (0, 1) without its ends.
std::vector<double> Grid(double lo, double hi) {
  std::vector<double> grid(kPoints);
  for (int i = 0; i < kPoints; ++i) grid[i] = lo + (hi - lo) * (i + 0.5) / kPoints;
  return grid;
}

// One iteration calls f once per grid point.
template <class F, class Check>
void PerCall(benchmark::State & state, const std::vector<double> & grid, F f, Check check) {
  for (double x : grid) {
    const double got = f(x), want = check(x);
    if (!(std::fabs(got - want) <= kAgree * std::fmax(1.0, std::fabs(want)))) {
      char message[96];
      std::snprintf(message, sizeof message, "%.17g at %.17g, rmath %.17g", got, x, want);
      state.SkipWithError(message);
      return;
    }
  }
  for (auto _ : state)
    for (double x : grid) benchmark::DoNotOptimize(f(x));
  state.counters["calls"] = kPoints;
}

// Registers "<work>/zr/<args>", "<work>/rmath/<args>" and "<work>/boost/<args>" in that
// order, so the three run one after another.
template <class Zr, class Rm, class Bo>
void Register(const std::string & work, const std::string & args, const std::vector<double> & grid,
              Zr zr, Rm rmath, Bo boost) {
  const auto name = [&](const char * side) {
    return work + "/" + side + (args.empty() ? "" : "/" + args);
  };
  benchmark::RegisterBenchmark(name("zr").c_str(), PerCall<Zr, Rm>, grid, zr, rmath);
  benchmark::RegisterBenchmark(name("rmath").c_str(), PerCall<Rm, Rm>, grid, rmath, rmath);
  benchmark::RegisterBenchmark(name("boost").c_str(), PerCall<Bo, Rm>, grid, boost, rmath);
}

// Points: x in [-8, 8] for the normal and t, [0, 8] for F(5, 20) and [0, 20] for
// chi-square with 4 df (upper tails of 3e-4 and 5e-4 at the top), (0, 1) for the
// incomplete beta; quantiles at p in (0, 1). Boost's distribution objects are built
// outside the timed loop.
bool RegisterAll() {
  const std::vector<double> symmetric = Grid(-8.0, 8.0), prob = Grid(0.0, 1.0);

  const bm::normal_distribution<double, Policy> normal;
  Register(
      "NormalCdf", "", symmetric, [](double x) { return ZRDistFun::CdfStdNorm(x); },
      [](double x) { return pnorm(x, 0.0, 1.0, 1, 0); },
      [normal](double x) { return bm::cdf(normal, x); });
  Register(
      "NormalQuantile", "", prob, [](double p) { return ZRDistFun::IdfStdNorm(p); },
      [](double p) { return qnorm(p, 0.0, 1.0, 1, 0); },
      [normal](double p) { return bm::quantile(normal, p); });

  for (const double df : {3.0, 30.0}) {
    const bm::students_t_distribution<double, Policy> t(df);
    Register(
        "TCdf", "df:" + std::to_string(static_cast<int>(df)), symmetric,
        [df](double x) { return ZRDistFun::CdfT(x, df); },
        [df](double x) { return pt(x, df, 1, 0); }, [t](double x) { return bm::cdf(t, x); });
  }
  for (const double df : {3.0, 30.0}) {
    const bm::students_t_distribution<double, Policy> t(df);
    Register(
        "TQuantile", "df:" + std::to_string(static_cast<int>(df)), prob,
        [df](double p) { return ZRDistFun::IdfT(p, df, 1e-20, 1e-12); },
        [df](double p) { return qt(p, df, 1, 0); }, [t](double p) { return bm::quantile(t, p); });
  }

  const bm::fisher_f_distribution<double, Policy> f(5.0, 20.0);
  Register(
      "FCdf", "df:5/20", Grid(0.0, 8.0), [](double x) { return ZRDistFun::CdfF(x, 5.0, 20.0); },
      [](double x) { return pf(x, 5.0, 20.0, 1, 0); }, [f](double x) { return bm::cdf(f, x); });
  Register(
      "FQuantile", "df:5/20", prob, [](double p) { return ZRDistFun::IdfF(p, 5.0, 20.0); },
      [](double p) { return qf(p, 5.0, 20.0, 1, 0); },
      [f](double p) { return bm::quantile(f, p); });

  const bm::chi_squared_distribution<double, Policy> chi(4.0);
  Register(
      "ChiSquareCdf", "df:4", Grid(0.0, 20.0), [](double x) { return ZRDistFun::CdfChi(x, 4.0); },
      [](double x) { return pchisq(x, 4.0, 1, 0); }, [chi](double x) { return bm::cdf(chi, x); });
  Register(
      "ChiSquareQuantile", "df:4", prob, [](double p) { return ZRDistFun::IdfChi(p, 4.0); },
      [](double p) { return qchisq(p, 4.0, 1, 0); },
      [chi](double p) { return bm::quantile(chi, p); });

  struct {
    double a, b;
    const char * args;
  } const betas[] = {{2.5, 7.5, "a:2.5/b:7.5"}, {50.0, 80.0, "a:50/b:80"}};
  for (const auto & beta : betas) {
    const double a = beta.a, b = beta.b;
    Register(
        "IncompleteBeta", beta.args, prob, [a, b](double x) { return ZRDistFun::CdfBeta(x, a, b); },
        [a, b](double x) { return pbeta(x, a, b, 1, 0); },
        [a, b](double x) { return bm::ibeta(a, b, x, Policy()); });
  }
  return true;
}

[[maybe_unused]] const bool kRegistered = RegisterAll();

}  // namespace
