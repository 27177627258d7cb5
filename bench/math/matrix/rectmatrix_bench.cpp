// Dense rectangular products against the reference BLAS on the same data.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "refblas.h"
#include "zrcommon920r/math/matrix/rectmatrix.h"

namespace {

using ZRMath_920::ZRRectMatrix;

ZRRectMatrix RandomMatrix(int rows, int cols, unsigned seed) {
  std::mt19937 gen(seed);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  ZRRectMatrix m(rows, cols, false);
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j) m.SetElem(i, j, u(gen));
  return m;
}

std::vector<double> Flat(const ZRRectMatrix & m) {
  std::vector<double> flat(static_cast<std::size_t>(m.GetNRows()) * m.GetNCols());
  for (int i = 0; i < m.GetNRows(); ++i)
    for (int j = 0; j < m.GetNCols(); ++j)
      flat[static_cast<std::size_t>(i) * m.GetNCols() + j] = m.GetElem(i, j);
  return flat;
}

void ComputeRV_zr(benchmark::State & state) {
  const int n = static_cast<int>(state.range(0));
  const ZRRectMatrix a = RandomMatrix(n, n, 1);
  std::vector<double> v(n, 0.5), out;
  for (auto _ : state) {
    a.ComputeRV(v, out);
    benchmark::DoNotOptimize(out.data());
  }
}

// Row-major A is column-major A', so y = A v is dgemv with "T".
void ComputeRV_ref(benchmark::State & state) {
  const int n = static_cast<int>(state.range(0));
  const std::vector<double> a = Flat(RandomMatrix(n, n, 1));
  std::vector<double> v(n, 0.5), out(n);
  const double one = 1.0, zero = 0.0;
  const int inc = 1;
  for (auto _ : state) {
    dgemv_("T", &n, &n, &one, a.data(), &n, v.data(), &inc, &zero, out.data(), &inc);
    benchmark::DoNotOptimize(out.data());
  }
}

void ComputeMatrixProduct_zr(benchmark::State & state) {
  const int n = static_cast<int>(state.range(0));
  const ZRRectMatrix a = RandomMatrix(n, n, 2), b = RandomMatrix(n, n, 3);
  ZRRectMatrix c;
  for (auto _ : state) {
    a.ComputeMatrixProduct(b, c);
    benchmark::DoNotOptimize(&c);
  }
}

// Row-major C = A B is column-major C' = B' A'.
void ComputeMatrixProduct_ref(benchmark::State & state) {
  const int n = static_cast<int>(state.range(0));
  const std::vector<double> a = Flat(RandomMatrix(n, n, 2)), b = Flat(RandomMatrix(n, n, 3));
  std::vector<double> c(a.size());
  const double one = 1.0, zero = 0.0;
  for (auto _ : state) {
    dgemm_("N", "N", &n, &n, &n, &one, b.data(), &n, a.data(), &n, &zero, c.data(), &n);
    benchmark::DoNotOptimize(c.data());
  }
}

}  // namespace

BENCHMARK(ComputeRV_zr)->Name("ComputeRV/zr")->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(ComputeRV_ref)->Name("ComputeRV/ref")->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(ComputeMatrixProduct_zr)
    ->Name("ComputeMatrixProduct/zr")
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(ComputeMatrixProduct_ref)
    ->Name("ComputeMatrixProduct/ref")
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond);
