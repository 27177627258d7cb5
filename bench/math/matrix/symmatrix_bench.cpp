// Packed symmetric inverses and rank-one updates against reference LAPACK and BLAS on the
// same data: SweepOnAll and LTChol + LTInverse against dpptrf + dpptri, UpdateXX against
// dspr. The lower triangle by rows is the upper triangle by columns, so both sides read
// the very same buffer.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <random>
#include <vector>

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

constexpr double kTol = 1e-12;

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
}

void CholInverse_ref(benchmark::State & state) {
  const int n = static_cast<int>(state.range(0));
  const std::vector<double> packed = Packed(RandomSpd(n, 1));
  std::vector<double> ap;
  int info = 0;
  for (auto _ : state) {
    ap = packed;
    dpptrf_("U", &n, ap.data(), &info);
    dpptri_("U", &n, ap.data(), &info);
    benchmark::DoNotOptimize(ap.data());
  }
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
}

void UpdateXX_ref(benchmark::State & state) {
  const int p = static_cast<int>(state.range(0));
  const auto rows = RandomRows(kRows, p, 2);
  std::vector<double> ap(static_cast<std::size_t>(p) * (p + 1) / 2, 0.0);
  const double one = 1.0;
  const int inc = 1;
  std::size_t r = 0;
  for (auto _ : state) {
    dspr_("U", &p, &one, rows[r].data(), &inc, ap.data());
    r = (r + 1) % kRows;
    benchmark::DoNotOptimize(ap.data());
  }
}

}  // namespace

BENCHMARK(SweepOnAll_zr)
    ->Name("SweepOnAll/zr")
    ->Arg(100)
    ->Arg(400)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(CholInverse_ref)
    ->Name("SweepOnAll/ref")
    ->Arg(100)
    ->Arg(400)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(LTCholInverse_zr)
    ->Name("LTCholInverse/zr")
    ->Arg(100)
    ->Arg(400)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(CholInverse_ref)
    ->Name("LTCholInverse/ref")
    ->Arg(100)
    ->Arg(400)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(UpdateXX_zr)
    ->Name("UpdateXX/zr")
    ->Arg(20)
    ->Arg(100)
    ->Arg(400)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(UpdateXX_ref)
    ->Name("UpdateXX/ref")
    ->Arg(20)
    ->Arg(100)
    ->Arg(400)
    ->Unit(benchmark::kMicrosecond);
