// LU factorisation and one solve of a general matrix: Dgefa + Dgesl against reference
// LAPACK's blocked dgetrf and unblocked dgetf2, each followed by dgetrs, on the same data.
// The blocked pair is also run with OpenBLAS's dgetrf and dgetrs. Every side copies the
// matrix and right-hand side inside the timed loop. Flops counted: 2n^3/3 + 2n^2.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "openblas.h"
#include "zrcommon920r/math/matrix/kernels.h"

extern "C" {
void dgetrf_(const int * m, const int * n, double * a, const int * lda, int * ipiv, int * info);
void dgetf2_(const int * m, const int * n, double * a, const int * lda, int * ipiv, int * info);
void dgetrs_(const char * trans, const int * n, const int * nrhs, const double * a, const int * lda,
             const int * ipiv, double * b, const int * ldb, int * info);
}

namespace {

using ZRMath_920::Linpack;

using DgetrfFn = void (*)(const int *, const int *, double *, const int *, int *, int *);
using DgetrsFn = void (*)(const char *, const int *, const int *, const double *, const int *,
                          const int *, double *, const int *, int *);

void CountLuSolveFlops(benchmark::State & state, int n) {
  zrbench::CountFlops(state, 2.0 / 3.0 * n * n * n + 2.0 * n * n, "2n^3/3+2n^2");
}

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
  CountLuSolveFlops(state, n);
}

// Factorisation by factor (dgetrf or dgetf2), then getrs (dgetrs).
void LuSolve_ref(benchmark::State & state, DgetrfFn factor, DgetrsFn getrs) {
  const int n = static_cast<int>(state.range(0)), one = 1;
  const System sys(n);
  std::vector<double> a, b;
  std::vector<int> ipiv(n);
  int info = 0;
  for (auto _ : state) {
    a = sys.a;
    b = sys.b;
    factor(&n, &n, a.data(), &n, ipiv.data(), &info);
    getrs("N", &n, &one, a.data(), &n, ipiv.data(), b.data(), &n, &info);
    benchmark::DoNotOptimize(b.data());
  }
  CountLuSolveFlops(state, n);
}

// The blocked pair with OpenBLAS, then the same work under a second name against the
// unblocked reference, so that the driver prints that ratio too.
bool RegisterAll() {
  const zrbench::OpenBlas & openblas = zrbench::OpenBlas::Get();
  const auto obDgetrf = openblas.Find<DgetrfFn>("dgetrf_");
  const auto obDgetrs = openblas.Find<DgetrsFn>("dgetrs_");
  const auto sizes = [](benchmark::internal::Benchmark * b) {
    b->Arg(100)->Arg(500)->Unit(benchmark::kMicrosecond);
  };
  benchmark::RegisterBenchmark("LuSolve/zr", LuSolve_zr)->Apply(sizes);
  benchmark::RegisterBenchmark("LuSolve/ref", LuSolve_ref, &dgetrf_, &dgetrs_)->Apply(sizes);
  if (obDgetrf != nullptr && obDgetrs != nullptr)
    benchmark::RegisterBenchmark("LuSolve/openblas", LuSolve_ref, obDgetrf, obDgetrs)->Apply(sizes);
  benchmark::RegisterBenchmark("LuSolveUnblocked/zr", LuSolve_zr)->Apply(sizes);
  benchmark::RegisterBenchmark("LuSolveUnblocked/ref", LuSolve_ref, &dgetf2_, &dgetrs_)
      ->Apply(sizes);
  return true;
}

[[maybe_unused]] const bool kRegistered = RegisterAll();

}  // namespace
