// Generalised inverse of a block-diagonal matrix: ZRSymBlockDiagMatrix::CholInverse, which
// factors and inverts each block apart, against the dense ZRSymMatrix::CholInverse of the
// same matrix filled out to order n. 100 dense blocks of 10 give n = 1000.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "zrcommon920r/math/matrix/blockmatrix.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace {

using ZRMath_920::ZRSymBlockDiagMatrix;
using ZRMath_920::ZRSymMatrix;

constexpr double kTol = 1e-12;
constexpr int kBlockSize = 10;

// Off-diagonal entries uniform on [-1, 1), diagonal m: diagonally dominant blocks.
ZRSymBlockDiagMatrix RandomBlockDiag(int nBlocks, unsigned seed) {
  std::mt19937 gen(seed);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  ZRSymBlockDiagMatrix g;
  ZRSymMatrix block(kBlockSize, true);
  for (int b = 0; b < nBlocks; ++b) {
    for (int i = 0; i < kBlockSize; ++i)
      for (int j = 0; j <= i; ++j) block.SetElem(i, j, i == j ? double{kBlockSize} : u(gen));
    g.AddBlock(block);
  }
  return g;
}

void BlockCholInverse_zr(benchmark::State & state) {
  const ZRSymBlockDiagMatrix g = RandomBlockDiag(static_cast<int>(state.range(0)), 1);
  std::vector<double> diag;
  g.GetDiagonal(diag);
  ZRSymBlockDiagMatrix out;
  for (auto _ : state) {
    benchmark::DoNotOptimize(g.CholInverse(diag, kTol, out));
    benchmark::ClobberMemory();
  }
}

void BlockCholInverse_ref(benchmark::State & state) {
  const ZRSymBlockDiagMatrix g = RandomBlockDiag(static_cast<int>(state.range(0)), 1);
  ZRSymMatrix a;
  g.FillDenseMatrix(a);
  std::vector<double> diag;
  a.GetDiagonal(diag);
  ZRSymMatrix out;
  for (auto _ : state) {
    benchmark::DoNotOptimize(a.CholInverse(diag, kTol, out));
    benchmark::ClobberMemory();
  }
}

}  // namespace

BENCHMARK(BlockCholInverse_zr)
    ->Name("BlockCholInverse/zr")
    ->Arg(100)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BlockCholInverse_ref)
    ->Name("BlockCholInverse/ref")
    ->Arg(100)
    ->Unit(benchmark::kMillisecond);
