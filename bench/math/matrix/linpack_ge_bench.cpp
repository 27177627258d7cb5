// LU factorisation and one solve of a general matrix: Dgefa + Dgesl against reference
// LAPACK's blocked dgetrf and unblocked dgetf2, each followed by dgetrs, on the same data.
// Every side copies the matrix and right-hand side inside the timed loop.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "zrcommon920r/math/matrix/kernels.h"

extern "C" {
void dgetrf_(const int * m, const int * n, double * a, const int * lda, int * ipiv, int * info);
void dgetf2_(const int * m, const int * n, double * a, const int * lda, int * ipiv, int * info);
void dgetrs_(const char * trans, const int * n, const int * nrhs, const double * a, const int * lda,
             const int * ipiv, double * b, const int * ldb, int * info);
}

namespace {

using ZRMath_920::Linpack;

// Column-major n x n with entries uniform on [-1, 1), and a right-hand side.
struct System {
  std::vector<double> a, b;
  explicit System(int n) : a(static_cast<std::size_t>(n) * n), b(n) {
    std::mt19937 gen(static_cast<unsigned>(n));
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    for (double & x : a) x = u(gen);
    for (double & x : b) x = u(gen);
  }
};

void LuSolve_zr(benchmark::State & state) {
  const int n = static_cast<int>(state.range(0));
  const System sys(n);
  std::vector<double> a, b;
  std::vector<int> ipvt(n);
  for (auto _ : state) {
    a = sys.a;
    b = sys.b;
    benchmark::DoNotOptimize(Linpack::Dgefa(a.data(), n, n, ipvt.data()));
    Linpack::Dgesl(a.data(), n, n, ipvt.data(), b.data(), 0);
    benchmark::DoNotOptimize(b.data());
  }
}

// Factorisation by `factor` (dgetrf or dgetf2), then dgetrs.
template <void (*factor)(const int *, const int *, double *, const int *, int *, int *)>
void LuSolve_ref(benchmark::State & state) {
  const int n = static_cast<int>(state.range(0)), one = 1;
  const System sys(n);
  std::vector<double> a, b;
  std::vector<int> ipiv(n);
  int info = 0;
  for (auto _ : state) {
    a = sys.a;
    b = sys.b;
    factor(&n, &n, a.data(), &n, ipiv.data(), &info);
    dgetrs_("N", &n, &one, a.data(), &n, ipiv.data(), b.data(), &n, &info);
    benchmark::DoNotOptimize(b.data());
  }
}

}  // namespace

BENCHMARK(LuSolve_zr)->Name("LuSolve/zr")->Arg(100)->Arg(500)->Unit(benchmark::kMicrosecond);
BENCHMARK(LuSolve_ref<dgetrf_>)
    ->Name("LuSolve/ref")
    ->Arg(100)
    ->Arg(500)
    ->Unit(benchmark::kMicrosecond);
// The same work under a second name, so that the driver prints the unblocked ratio too.
BENCHMARK(LuSolve_zr)
    ->Name("LuSolveUnblocked/zr")
    ->Arg(100)
    ->Arg(500)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(LuSolve_ref<dgetf2_>)
    ->Name("LuSolveUnblocked/ref")
    ->Arg(100)
    ->Arg(500)
    ->Unit(benchmark::kMicrosecond);
