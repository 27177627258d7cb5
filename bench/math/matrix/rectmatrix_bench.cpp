// Dense rectangular products against the reference BLAS, and Householder QR with its full
// orthogonal factor against reference LAPACK, on the same data. The square product is also
// run with OpenBLAS's dgemm; it counts 2n^3 flops.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <vector>

#include "openblas.h"
#include "refblas.h"
#include "zrcommon920r/math/matrix/rectmatrix.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace {

using ZRMath_920::ZRRectMatrix;
using ZRMath_920::ZRSymMatrix;

using DgemmFn = void (*)(const char *, const char *, const int *, const int *, const int *,
                         const double *, const double *, const int *, const double *, const int *,
                         const double *, double *, const int *);

void CountProductFlops(benchmark::State & state, int n) {
  zrbench::CountFlops(state, 2.0 * n * n * n, "2n^3");
}

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
  CountProductFlops(state, n);
}

// Row-major C = A B is column-major C' = B' A'.
void ComputeMatrixProduct_ref(benchmark::State & state, DgemmFn dgemm) {
  const int n = static_cast<int>(state.range(0));
  const std::vector<double> a = Flat(RandomMatrix(n, n, 2)), b = Flat(RandomMatrix(n, n, 3));
  std::vector<double> c(a.size());
  const double one = 1.0, zero = 0.0;
  for (auto _ : state) {
    dgemm("N", "N", &n, &n, &n, &one, b.data(), &n, a.data(), &n, &zero, c.data(), &n);
    benchmark::DoNotOptimize(c.data());
  }
  CountProductFlops(state, n);
}

void QRDecompositionH_zr(benchmark::State & state) {
  const int m = static_cast<int>(state.range(0)), n = static_cast<int>(state.range(1));
  const ZRRectMatrix a = RandomMatrix(m, n, 4);
  ZRSymMatrix r;
  ZRRectMatrix q;
  for (auto _ : state) {
    a.QRDecompositionH(r, q);
    benchmark::DoNotOptimize(&q);
  }
}

// The same work: T and the full m x m Q, by dgeqrf on a copy of A in the first n columns
// of an m x m array, then dorgqr with the n reflectors.
void QRDecompositionH_ref(benchmark::State & state) {
  const int m = static_cast<int>(state.range(0)), n = static_cast<int>(state.range(1));
  const std::vector<double> byRows = Flat(RandomMatrix(m, n, 4));
  std::vector<double> byCols(byRows.size()), qa(static_cast<std::size_t>(m) * m), tau(n);
  for (int i = 0; i < m; ++i)
    for (int j = 0; j < n; ++j)
      byCols[static_cast<std::size_t>(j) * m + i] = byRows[static_cast<std::size_t>(i) * n + j];
  int info = 0, query = -1;
  double size1 = 0.0, size2 = 0.0;
  dgeqrf_(&m, &n, qa.data(), &m, tau.data(), &size1, &query, &info);
  dorgqr_(&m, &m, &n, qa.data(), &m, tau.data(), &size2, &query, &info);
  const int lwork = static_cast<int>(std::max(size1, size2));
  std::vector<double> work(lwork);
  for (auto _ : state) {
    std::copy(byCols.begin(), byCols.end(), qa.begin());
    dgeqrf_(&m, &n, qa.data(), &m, tau.data(), work.data(), &lwork, &info);
    dorgqr_(&m, &m, &n, qa.data(), &m, tau.data(), work.data(), &lwork, &info);
    benchmark::DoNotOptimize(qa.data());
  }
}

bool RegisterProducts() {
  const auto sizes = [](benchmark::internal::Benchmark * b) {
    b->Arg(1000)->Unit(benchmark::kMillisecond);
  };
  benchmark::RegisterBenchmark("ComputeMatrixProduct/zr", ComputeMatrixProduct_zr)->Apply(sizes);
  benchmark::RegisterBenchmark("ComputeMatrixProduct/ref", ComputeMatrixProduct_ref, &dgemm_)
      ->Apply(sizes);
  if (const auto dgemm = zrbench::OpenBlas::Get().Find<DgemmFn>("dgemm_"))
    benchmark::RegisterBenchmark("ComputeMatrixProduct/openblas", ComputeMatrixProduct_ref, dgemm)
        ->Apply(sizes);
  return true;
}

}  // namespace

BENCHMARK(QRDecompositionH_zr)
    ->Name("QRDecompositionH/zr")
    ->Args({200, 50})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(QRDecompositionH_ref)
    ->Name("QRDecompositionH/ref")
    ->Args({200, 50})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(ComputeRV_zr)->Name("ComputeRV/zr")->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(ComputeRV_ref)->Name("ComputeRV/ref")->Arg(1000)->Unit(benchmark::kMicrosecond);

// After the macros above, so that the products run after them as before.
[[maybe_unused]] static const bool kProductsRegistered = RegisterProducts();
