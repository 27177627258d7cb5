// Means and cross-product accumulators against the reference BLAS doing the same work:
// ZRProvMeans::Update per case against a mean update and dspr, ZRMeansXProducts::Compute
// of a block against the means, centring and dsyrk, ZRMeansXProdData::Merge against daxpy
// of the packed matrices and a dspr correction, and ZRAccumXProdPair::Update per case. The
// lower triangle by rows is the upper triangle by columns, so dspr works on our layout.
// Compute and Merge also run with OpenBLAS's routines. Flops counted: rows p (p + 3) for a
// block (the sums for the means, the centring, the products), 3p(p + 1)/2 for a merge (the
// sum of the matrices and the rank-one correction).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <random>
#include <vector>

#include "openblas.h"
#include "zrcommon920r/math/matrix/rectmatrix.h"
#include "zrcommon920r/math/stats/meansxprod.h"
#include "zrcommon920r/math/stats/xprodpair.h"

extern "C" {
void dspr_(const char * uplo, const int * n, const double * alpha, const double * x,
           const int * incx, double * ap);
void dsyrk_(const char * uplo, const char * trans, const int * n, const int * k,
            const double * alpha, const double * a, const int * lda, const double * beta,
            double * c, const int * ldc);
void daxpy_(const int * n, const double * alpha, const double * x, const int * incx, double * y,
            const int * incy);
}

namespace {

using ZRMath_920::ZRAccumXProdPair;
using ZRMath_920::ZRMeansXProdData;
using ZRMath_920::ZRMeansXProducts;
using ZRMath_920::ZRProvMeans;
using ZRMath_920::ZRRectMatrix;

using DsprFn = void (*)(const char *, const int *, const double *, const double *, const int *,
                        double *);
using DsyrkFn = void (*)(const char *, const char *, const int *, const int *, const double *,
                         const double *, const int *, const double *, double *, const int *);
using DaxpyFn = void (*)(const int *, const double *, const double *, const int *, double *,
                         const int *);

constexpr int kRows = 10000;  // rows of a block
constexpr int kCases = 1000;  // cases cycled through by the per-case benchmarks

// Values 10 +- 1: no zeros, and means away from 0 as in real data.
std::vector<std::vector<double>> RandomRows(int count, int p, unsigned seed) {
  std::mt19937 gen(seed);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  std::vector<std::vector<double>> rows(count, std::vector<double>(p));
  for (auto & row : rows)
    for (double & x : row) x = 10.0 + u(gen);
  return rows;
}

ZRRectMatrix Block(const std::vector<std::vector<double>> & rows) {
  const int p = static_cast<int>(rows[0].size());
  ZRRectMatrix m(static_cast<int>(rows.size()), p, false);
  for (int r = 0; r < m.GetNRows(); ++r)
    for (int i = 0; i < p; ++i) m.SetElem(r, i, rows[r][i]);
  return m;
}

void CountComputeFlops(benchmark::State & state, int p) {
  zrbench::CountFlops(state, static_cast<double>(kRows) * p * (p + 3), "10000p(p+3)");
}
void CountMergeFlops(benchmark::State & state, int p) {
  zrbench::CountFlops(state, 1.5 * p * (p + 1), "3p(p+1)/2");
}

void ProvMeansUpdate_zr(benchmark::State & state) {
  const int p = static_cast<int>(state.range(0));
  const auto rows = RandomRows(kCases, p, 1);
  ZRProvMeans acc(p, true);
  std::size_t r = 0;
  for (auto _ : state) {
    acc.Update(rows[r], 1.0);
    if (++r == rows.size()) r = 0;
  }
  benchmark::DoNotOptimize(acc.GetNCases());
  state.SetItemsProcessed(state.iterations());
}

// The same provisional-means step: d = x - mean, packed += c d d', mean += d w / N.
void ProvMeansUpdate_ref(benchmark::State & state) {
  const int p = static_cast<int>(state.range(0));
  const auto rows = RandomRows(kCases, p, 1);
  std::vector<double> ap(static_cast<std::size_t>(p) * (p + 1) / 2, 0.0), mean(p, 0.0), d(p);
  double n = 0.0;
  const int inc = 1;
  std::size_t r = 0;
  for (auto _ : state) {
    const double nNew = n + 1.0;
    const double c = n / nNew;
    for (int i = 0; i < p; ++i) d[i] = rows[r][i] - mean[i];
    dspr_("U", &p, &c, d.data(), &inc, ap.data());
    const double f = 1.0 / nNew;
    for (int i = 0; i < p; ++i) mean[i] += d[i] * f;
    n = nNew;
    if (++r == rows.size()) r = 0;
  }
  benchmark::DoNotOptimize(ap.data());
  state.SetItemsProcessed(state.iterations());
}

void Compute_zr(benchmark::State & state) {
  const int p = static_cast<int>(state.range(0));
  const ZRRectMatrix x = Block(RandomRows(kRows, p, 2));
  ZRMeansXProducts acc(p, true, false, false);
  for (auto _ : state) {
    acc.Compute(x, 0);
    benchmark::DoNotOptimize(acc.GetXProds().GetElem(0));
  }
  state.SetItemsProcessed(state.iterations() * kRows);
  CountComputeFlops(state, p);
}

// The same two passes: column means, the centred block, then C = X'X by dsyrk. Row-major
// X is column-major X' (p x rows), so X'X is A A' with A = X': dsyrk "N".
void Compute_ref(benchmark::State & state, DsyrkFn dsyrk) {
  const int p = static_cast<int>(state.range(0));
  const auto rows = RandomRows(kRows, p, 2);
  std::vector<double> x(static_cast<std::size_t>(kRows) * p), centred(x.size());
  for (int r = 0; r < kRows; ++r)
    for (int i = 0; i < p; ++i) x[static_cast<std::size_t>(r) * p + i] = rows[r][i];
  std::vector<double> mean(p), c(static_cast<std::size_t>(p) * p);
  const double one = 1.0, zero = 0.0;
  const int k = kRows;
  for (auto _ : state) {
    std::fill(mean.begin(), mean.end(), 0.0);
    for (int r = 0; r < kRows; ++r)
      for (int i = 0; i < p; ++i) mean[i] += x[static_cast<std::size_t>(r) * p + i];
    for (double & m : mean) m /= kRows;
    for (int r = 0; r < kRows; ++r)
      for (int i = 0; i < p; ++i) {
        const std::size_t at = static_cast<std::size_t>(r) * p + i;
        centred[at] = x[at] - mean[i];
      }
    dsyrk("U", "N", &p, &k, &one, centred.data(), &p, &zero, c.data(), &p);
    benchmark::DoNotOptimize(c.data());
  }
  state.SetItemsProcessed(state.iterations() * kRows);
  CountComputeFlops(state, p);
}

// Merges of one summary of 1000 cases into a growing one.
void Merge_zr(benchmark::State & state) {
  const int p = static_cast<int>(state.range(0));
  ZRMeansXProducts part(p, true, false, false);
  part.Compute(Block(RandomRows(kCases, p, 3)), 0);
  ZRMeansXProdData total = part;
  for (auto _ : state) {
    total.Merge(part);
    benchmark::DoNotOptimize(total.GetNCases());
  }
  state.SetItemsProcessed(state.iterations());
  CountMergeFlops(state, p);
}

// The same merge: means moved, packed += packed_o (daxpy), then the rank-one correction
// (m_o - m) (m_o - m)' N N_o / N' (dspr).
void Merge_ref(benchmark::State & state, DaxpyFn daxpy, DsprFn dspr) {
  const int p = static_cast<int>(state.range(0));
  ZRMeansXProducts part(p, true, false, false);
  part.Compute(Block(RandomRows(kCases, p, 3)), 0);
  const int count = p * (p + 1) / 2;
  std::vector<double> apo(count);
  for (int k = 0; k < count; ++k) apo[k] = part.GetXProds().GetElem(k);
  std::vector<double> ap = apo, mean = part.GetMeans(), d(p);
  const std::vector<double> & meanO = part.GetMeans();
  const double no = part.GetNCases();
  double n = no;
  const double one = 1.0;
  const int inc = 1;
  for (auto _ : state) {
    const double nNew = n + no;
    const double c = n * no / nNew;
    for (int i = 0; i < p; ++i) d[i] = meanO[i] - mean[i];
    daxpy(&count, &one, apo.data(), &inc, ap.data(), &inc);
    dspr("U", &p, &c, d.data(), &inc, ap.data());
    const double f = no / nNew;
    for (int i = 0; i < p; ++i) mean[i] += d[i] * f;
    n = nNew;
    benchmark::DoNotOptimize(ap.data());
  }
  state.SetItemsProcessed(state.iterations());
  CountMergeFlops(state, p);
}

// Every pair of a complete case of p variables: p (p - 1) / 2 pair updates, folded every
// 100 cases. No reference routine; the time per pair is reported.
void PairUpdate_zr(benchmark::State & state) {
  const int p = static_cast<int>(state.range(0));
  const auto rows = RandomRows(kCases, p, 4);
  ZRAccumXProdPair acc(p, 100);
  std::size_t r = 0;
  for (auto _ : state) {
    const std::vector<double> & x = rows[r];
    for (int i = 1, pair = 0; i < p; ++i)
      for (int j = 0; j < i; ++j, ++pair) acc.Update(pair, x[i], x[j], 1.0);
    if (++r == rows.size()) r = 0;
  }
  benchmark::DoNotOptimize(acc.GetCovar().GetElem(0));
  state.SetItemsProcessed(state.iterations() * p * (p - 1) / 2);
}

// Compute and Merge: our side, reference BLAS, then OpenBLAS when it is there.
bool RegisterBlocks() {
  const zrbench::OpenBlas & openblas = zrbench::OpenBlas::Get();
  const auto obDsyrk = openblas.Find<DsyrkFn>("dsyrk_");
  const auto obDaxpy = openblas.Find<DaxpyFn>("daxpy_");
  const auto obDspr = openblas.Find<DsprFn>("dspr_");
  const auto blocks = [](benchmark::internal::Benchmark * b) {
    b->Arg(20)->Arg(100)->Unit(benchmark::kMicrosecond);
  };
  benchmark::RegisterBenchmark("Compute/zr", Compute_zr)->Apply(blocks);
  benchmark::RegisterBenchmark("Compute/ref", Compute_ref, &dsyrk_)->Apply(blocks);
  if (obDsyrk != nullptr)
    benchmark::RegisterBenchmark("Compute/openblas", Compute_ref, obDsyrk)->Apply(blocks);
  const auto merges = [](benchmark::internal::Benchmark * b) { b->Arg(20)->Arg(100); };
  benchmark::RegisterBenchmark("Merge/zr", Merge_zr)->Apply(merges);
  benchmark::RegisterBenchmark("Merge/ref", Merge_ref, &daxpy_, &dspr_)->Apply(merges);
  if (obDaxpy != nullptr && obDspr != nullptr)
    benchmark::RegisterBenchmark("Merge/openblas", Merge_ref, obDaxpy, obDspr)->Apply(merges);
  return true;
}

}  // namespace

BENCHMARK(ProvMeansUpdate_zr)->Name("ProvMeansUpdate/zr")->Arg(20)->Arg(100);
BENCHMARK(ProvMeansUpdate_ref)->Name("ProvMeansUpdate/ref")->Arg(20)->Arg(100);
[[maybe_unused]] static const bool kBlocksRegistered = RegisterBlocks();
BENCHMARK(PairUpdate_zr)->Name("PairUpdate/zr")->Arg(20)->Arg(100);
