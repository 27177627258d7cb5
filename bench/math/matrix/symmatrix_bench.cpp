// Packed symmetric inverses and rank-one updates against reference LAPACK and BLAS on the
// same data: SweepOnAll and LTChol + LTInverse against dpptrf + dpptri, UpdateXX against
// dspr, each reference both from reference BLAS/LAPACK and from OpenBLAS. The lower
// triangle by rows is the upper triangle by columns, so all sides read the very same
// buffer. Flops counted: n^3 for an inverse (n^3/3 each for the factor, the triangular
// inverse and its product with its transpose), p(p + 1) for a rank-one update.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "openblas.h"
#include "zrcommon920r/math/bitset.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

extern "C" {
void dpptrf_(const char * uplo, const int * n, double * ap, int * info);
void dpptri_(const char * uplo, const int * n, double * ap, int * info);
void dspr_(const char * uplo, const int * n, const double * alpha, const double * x,
           const int * incx, double * ap);
}

namespace {

using ZRMath_920::ZRBitSet;
using ZRMath_920::ZRSymMatrix;

using DpptrfFn = void (*)(const char *, const int *, double *, int *);
using DsprFn = void (*)(const char *, const int *, const double *, const double *, const int *,
                        double *);

constexpr double kTol = 1e-12;

void CountInverseFlops(benchmark::State & state, int n) {
  zrbench::CountFlops(state, static_cast<double>(n) * n * n, "n^3");
}
void CountUpdateFlops(benchmark::State & state, int p) {
  zrbench::CountFlops(state, static_cast<double>(p) * (p + 1), "p(p+1)");
}

// Off-diagonal entries uniform on [-1, 1), diagonal n: diagonally dominant, so positive
// definite and well conditioned.
ZRSymMatrix RandomSpd(int n, unsigned seed) {
  std::mt19937 gen(seed);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  ZRSymMatrix a(n, true);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j <= i; ++j) a.SetElem(i, j, i == j ? static_cast<double>(n) : u(gen));
  return a;
}

std::vector<double> Packed(const ZRSymMatrix & a) {
  const int n = a.GetNRows();
  std::vector<double> ap(static_cast<std::size_t>(n) * (n + 1) / 2);
  for (std::size_t k = 0; k < ap.size(); ++k) ap[k] = a.GetElem(static_cast<int>(k));
  return ap;
}

// Dense rows without zeros, cycled through by the update benchmarks.
std::vector<std::vector<double>> RandomRows(int count, int p, unsigned seed) {
  std::mt19937 gen(seed);
  std::uniform_real_distribution<double> u(0.5, 1.5);
  std::vector<std::vector<double>> rows(count, std::vector<double>(p));
  for (auto & row : rows)
    for (double & x : row) x = gen() % 2 ? u(gen) : -u(gen);
  return rows;
}

void SweepOnAll_zr(benchmark::State & state) {
  const int n = static_cast<int>(state.range(0));
  const ZRSymMatrix a = RandomSpd(n, 1);
  ZRSymMatrix work;
  ZRBitSet set(n);
  for (auto _ : state) {
    work = a;
    work.SweepOnAll(kTol, set, false, false, true, nullptr);
    benchmark::DoNotOptimize(&work);
  }
  CountInverseFlops(state, n);
}

// dpptrf then dpptri (the same signature) of one library.
void CholInverse_ref(benchmark::State & state, DpptrfFn dpptrf, DpptrfFn dpptri) {
  const int n = static_cast<int>(state.range(0));
  const std::vector<double> packed = Packed(RandomSpd(n, 1));
  std::vector<double> ap;
  int info = 0;
  for (auto _ : state) {
    ap = packed;
    dpptrf("U", &n, ap.data(), &info);
    dpptri("U", &n, ap.data(), &info);
    benchmark::DoNotOptimize(ap.data());
  }
  CountInverseFlops(state, n);
}

void LTCholInverse_zr(benchmark::State & state) {
  const int n = static_cast<int>(state.range(0));
  const ZRSymMatrix a = RandomSpd(n, 1);
  std::vector<double> diag;
  a.GetDiagonal(diag);
  ZRSymMatrix work;
  for (auto _ : state) {
    work = a;
    work.LTChol(diag, kTol, false);
    work.LTInverse();
    benchmark::DoNotOptimize(&work);
  }
  CountInverseFlops(state, n);
}

constexpr int kRows = 64;

void UpdateXX_zr(benchmark::State & state) {
  const int p = static_cast<int>(state.range(0));
  const auto rows = RandomRows(kRows, p, 2);
  ZRSymMatrix s(p, true);
  std::size_t r = 0;
  for (auto _ : state) {
    s.UpdateXX(rows[r], 1.0);
    r = (r + 1) % kRows;
    benchmark::DoNotOptimize(&s);
  }
  CountUpdateFlops(state, p);
}

void UpdateXX_ref(benchmark::State & state, DsprFn dspr) {
  const int p = static_cast<int>(state.range(0));
  const auto rows = RandomRows(kRows, p, 2);
  std::vector<double> ap(static_cast<std::size_t>(p) * (p + 1) / 2, 0.0);
  const double one = 1.0;
  const int inc = 1;
  std::size_t r = 0;
  for (auto _ : state) {
    dspr("U", &p, &one, rows[r].data(), &inc, ap.data());
    r = (r + 1) % kRows;
    benchmark::DoNotOptimize(ap.data());
  }
  CountUpdateFlops(state, p);
}

// Each work on our side, then reference BLAS/LAPACK, then OpenBLAS when it is there. At
// n = 1000 a call takes a good part of a second, so the large orders run few iterations.
bool RegisterAll() {
  const zrbench::OpenBlas & openblas = zrbench::OpenBlas::Get();
  const auto obDpptrf = openblas.Find<DpptrfFn>("dpptrf_");
  const auto obDpptri = openblas.Find<DpptrfFn>("dpptri_");
  const auto obDspr = openblas.Find<DsprFn>("dspr_");
  const auto inverses = [](benchmark::internal::Benchmark * b) {
    b->Arg(100)->Arg(400)->Arg(1000)->Unit(benchmark::kMillisecond);
  };
  for (const char * work : {"SweepOnAll", "LTCholInverse"}) {
    const std::string name = work;
    benchmark::RegisterBenchmark((name + "/zr").c_str(),
                                 name == "SweepOnAll" ? SweepOnAll_zr : LTCholInverse_zr)
        ->Apply(inverses);
    benchmark::RegisterBenchmark((name + "/ref").c_str(), CholInverse_ref, &dpptrf_, &dpptri_)
        ->Apply(inverses);
    if (obDpptrf != nullptr && obDpptri != nullptr)
      benchmark::RegisterBenchmark((name + "/openblas").c_str(), CholInverse_ref, obDpptrf,
                                   obDpptri)
          ->Apply(inverses);
  }
  const auto updates = [](benchmark::internal::Benchmark * b) {
    b->Arg(20)->Arg(100)->Arg(400)->Unit(benchmark::kMicrosecond);
  };
  benchmark::RegisterBenchmark("UpdateXX/zr", UpdateXX_zr)->Apply(updates);
  benchmark::RegisterBenchmark("UpdateXX/ref", UpdateXX_ref, &dspr_)->Apply(updates);
  if (obDspr != nullptr)
    benchmark::RegisterBenchmark("UpdateXX/openblas", UpdateXX_ref, obDspr)->Apply(updates);
  return true;
}

[[maybe_unused]] const bool kRegistered = RegisterAll();

}  // namespace
