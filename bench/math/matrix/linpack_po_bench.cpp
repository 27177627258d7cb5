// Positive definite factor and solve (Dpofa + Dposl) against reference LAPACK's blocked
// dpotrf and unblocked dpotf2, each followed by dpotrs, on the same matrix and right-hand
// side. The copies that the factorisation overwrites are made inside the timed loop on
// both sides.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "zrcommon920r/math/matrix/kernels.h"

extern "C" {
void dpotrf_(const char * uplo, const int * n, double * a, const int * lda, int * info);
void dpotf2_(const char * uplo, const int * n, double * a, const int * lda, int * info);
void dpotrs_(const char * uplo, const int * n, const int * nrhs, const double * a, const int * lda,
             double * b, const int * ldb, int * info);
}

namespace {

// G'G + n I for G uniform on [-1, 1), column-major with leading dimension n.
std::vector<double> SpdMatrix(int n, unsigned seed) {
  std::mt19937 gen(seed);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  std::vector<double> g(static_cast<std::size_t>(n) * n), a(g.size(), 0.0);
  for (double & x : g) x = u(gen);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) {
      double s = 0.0;
      for (int k = 0; k < n; ++k) s += g[static_cast<std::size_t>(i) * n + k] * g[j * n + k];
      a[static_cast<std::size_t>(j) * n + i] = s + (i == j ? n : 0.0);
    }
  return a;
}

void CholeskySolve_zr(benchmark::State & state) {
  const int n = static_cast<int>(state.range(0));
  const std::vector<double> a0 = SpdMatrix(n, 1), b0(n, 1.0);
  std::vector<double> a(a0.size()), b(n);
  for (auto _ : state) {
    a = a0;
    b = b0;
    if (ZRMath_920::Linpack::Dpofa(a.data(), n, n) != 0) state.SkipWithError("not SPD");
    ZRMath_920::Linpack::Dposl(a.data(), n, n, b.data());
    benchmark::DoNotOptimize(b.data());
  }
}

template <void (*Factor)(const char *, const int *, double *, const int *, int *)>
void CholeskySolveLapack(benchmark::State & state) {
  const int n = static_cast<int>(state.range(0));
  const std::vector<double> a0 = SpdMatrix(n, 1), b0(n, 1.0);
  std::vector<double> a(a0.size()), b(n);
  const int one = 1;
  int info = 0;
  for (auto _ : state) {
    a = a0;
    b = b0;
    Factor("U", &n, a.data(), &n, &info);
    if (info != 0) state.SkipWithError("not SPD");
    dpotrs_("U", &n, &one, a.data(), &n, b.data(), &n, &info);
    benchmark::DoNotOptimize(b.data());
  }
}

}  // namespace

// The same work is registered twice on our side so that the driver pairs it with both the
// blocked and the unblocked reference.
BENCHMARK(CholeskySolve_zr)
    ->Name("CholeskySolve/zr")
    ->Arg(100)
    ->Arg(500)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(CholeskySolveLapack<dpotrf_>)
    ->Name("CholeskySolve/ref")
    ->Arg(100)
    ->Arg(500)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(CholeskySolve_zr)
    ->Name("CholeskySolveUnblocked/zr")
    ->Arg(100)
    ->Arg(500)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(CholeskySolveLapack<dpotf2_>)
    ->Name("CholeskySolveUnblocked/ref")
    ->Arg(100)
    ->Arg(500)
    ->Unit(benchmark::kMicrosecond);
