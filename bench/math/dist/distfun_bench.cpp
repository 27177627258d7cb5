// Distribution functions against R's standalone math library (rmath) and Boost.Math
// (boost), each side timed on the same grid of kPoints inputs and reported per call; Lobatto
// quadrature against Boost's 15-point Gauss-Kronrod on the same integrands.
// Boost runs in double throughout (promote_double<false>), not its default long double.
#include <benchmark/benchmark.h>
#include <boost/math/distributions/binomial.hpp>
#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/fisher_f.hpp>
#include <boost/math/distributions/hypergeometric.hpp>
#include <boost/math/distributions/non_central_chi_squared.hpp>
#include <boost/math/distributions/non_central_f.hpp>
#include <boost/math/distributions/non_central_t.hpp>
#include <boost/math/distributions/normal.hpp>
#include <boost/math/distributions/students_t.hpp>
#include <boost/math/quadrature/gauss_kronrod.hpp>
#include <boost/math/special_functions/beta.hpp>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <string>
#include <vector>

#include "zrcommon920r/math/dist/distfun.h"
#include "zrcommon920r/math/dist/quadrature.h"

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

// ---- Quadrature --------------------------------------------------------------------------

// An integrand from a plain function, counting its evaluations.
struct Counted : ZRMath_920::IIntegrand {
  double (*fn)(double);
  long evals = 0;
  explicit Counted(double (*f)(double)) : fn(f) {}
  double Evaluate(double x) override {
    ++evals;
    return fn(x);
  }
};

double NormalDensity(double x) {
  return std::exp(-x * x / 2) * 0.3989422804014327;
}
double Lorentz(double x) {
  return 1.0 / (1.0 + x * x);
}
double Oscillating(double x) {
  return std::sin(20 * x) * std::exp(-x) + 1.0;
}

// One integral per iteration at tolerance 1e-6 on both sides; "evals" counts the integrand's
// evaluations of one integral and "value" reports it (the two rules stop differently).
void RegisterQuadrature() {
  struct {
    const char * args;
    double (*fn)(double);
    double a, b;
  } const cases[] = {{"normal/-8:8", NormalDensity, -8.0, 8.0},
                     {"lorentz/0:10", Lorentz, 0.0, 10.0},
                     {"oscillating/0:3", Oscillating, 0.0, 3.0}};
  for (const auto & c : cases) {
    const auto fn = c.fn;
    const double a = c.a, b = c.b;
    benchmark::RegisterBenchmark(
        (std::string("Quadrature/zr/") + c.args).c_str(), [fn, a, b](benchmark::State & state) {
          Counted f(fn);
          ZRMath_920::LobattoQuad q(&f);
          q.SetBoundaryAdjustmentPivot((a + b) / 2);
          double v = 0;
          for (auto _ : state) benchmark::DoNotOptimize(v = q.Integrate(a, b));
          state.counters["evals"] = static_cast<double>(f.evals) / state.iterations();
          state.counters["value"] = v;
        });
    benchmark::RegisterBenchmark(
        (std::string("Quadrature/boost/") + c.args).c_str(), [fn, a, b](benchmark::State & state) {
          long evals = 0;
          const auto g = [&](double x) {
            ++evals;
            return fn(x);
          };
          double v = 0;
          for (auto _ : state)
            benchmark::DoNotOptimize(
                v = bm::quadrature::gauss_kronrod<double, 15>::integrate(g, a, b, 15, 1e-6));
          state.counters["evals"] = static_cast<double>(evals) / state.iterations();
          state.counters["value"] = v;
        });
  }
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

  // Discrete and non-central: counts are floored on every side (Boost's binomial cdf would
  // interpolate between integers). Binomial n = 1000, p = 0.3 over k in [200, 400];
  // hypergeometric population 1000, sample 300, successes 400 over [90, 150] (the product
  // route); non-central chi-square df 4, lambda 10 on [0, 40]; t df 10, delta 2 on [-2, 8];
  // F (5, 20), lambda 10 on [0, 8]. The non-central series run to 1e-12.
  const bm::binomial_distribution<double, Policy> binom(1000.0, 0.3);
  Register(
      "BinomialCdf", "n:1000/p:0.3", Grid(200.0, 400.0),
      [](double x) {
        std::int32_t err = 0;
        return ZRDistFun::CdfBin(x, 1000.0, 0.3, err);
      },
      [](double x) { return pbinom(std::floor(x), 1000.0, 0.3, 1, 0); },
      [binom](double x) { return bm::cdf(binom, std::floor(x)); });
  const bm::hypergeometric_distribution<double, Policy> hyper(400, 300, 1000);
  Register(
      "HypergeometricCdf", "N:1000/n:300/K:400", Grid(90.0, 150.0),
      [](double x) {
        int err = 0;
        return ZRDistFun::CDFHyper(x, 1000.0, 300.0, 400.0, err);
      },
      [](double x) { return phyper(std::floor(x), 400.0, 600.0, 300.0, 1, 0); },
      [hyper](double x) { return bm::cdf(hyper, static_cast<unsigned>(x)); });
  const bm::non_central_chi_squared_distribution<double, Policy> ncchi(4.0, 10.0);
  Register(
      "NonCentralChiSquareCdf", "df:4/lambda:10", Grid(0.0, 40.0),
      [](double x) { return ZRDistFun::NonCentralCdfChi(x, 4.0, 10.0); },
      [](double x) { return pnchisq(x, 4.0, 10.0, 1, 0); },
      [ncchi](double x) { return bm::cdf(ncchi, x); });
  const bm::non_central_t_distribution<double, Policy> nct(10.0, 2.0);
  Register(
      "NonCentralTCdf", "df:10/delta:2", Grid(-2.0, 8.0),
      [](double x) { return ZRDistFun::NonCentralCdfT(x, 10.0, 2.0, 1e-12); },
      [](double x) { return pnt(x, 10.0, 2.0, 1, 0); },
      [nct](double x) { return bm::cdf(nct, x); });
  const bm::non_central_f_distribution<double, Policy> ncf(5.0, 20.0, 10.0);
  Register(
      "NonCentralFCdf", "df:5/20/lambda:10", Grid(0.0, 8.0),
      [](double x) { return ZRDistFun::NonCentralCdfF(x, 5.0, 20.0, 10.0, 1e-12); },
      [](double x) { return pnf(x, 5.0, 20.0, 10.0, 1, 0); },
      [ncf](double x) { return bm::cdf(ncf, x); });

  RegisterQuadrature();
  return true;
}

[[maybe_unused]] const bool kRegistered = RegisterAll();

}  // namespace
