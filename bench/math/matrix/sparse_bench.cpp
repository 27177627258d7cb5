// The sparse design matrix against the dense path on the same data: a dummy-coded design
// of 100000 rows, 10 factors of 20 levels (200 columns, 10 stored a row, 5% density).
// X'WX by UpdateXXCornerBlock against UpdateXX per dense row and against ComputeRTransByR;
// X b and X'r by ComputeRV and ComputeVR against the dense matrix. Each run reports its
// matrix's memory in the counter "MB".
#include <benchmark/benchmark.h>

#include <cstddef>
#include <random>
#include <vector>

#include "zrcommon920r/math/matrix/rectmatrix.h"
#include "zrcommon920r/math/matrix/sparsematrix.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace {

using ZRMath_920::ZRRectMatrix;
using ZRMath_920::ZRSparseRectMatrix;
using ZRMath_920::ZRSparseVector;
using ZRMath_920::ZRSymMatrix;

constexpr int kRows = 100000;
constexpr int kFactors = 10;
constexpr int kLevels = 20;
constexpr int kCols = kFactors * kLevels;

struct Design {
  ZRSparseRectMatrix sparse{kRows, kCols, kFactors};
  ZRRectMatrix dense;
  std::vector<double> w, b, r;
  Design() {
    std::mt19937 gen(17);
    std::uniform_int_distribution<int> level(0, kLevels - 1);
    std::uniform_real_distribution<double> u(0.5, 2.0);
    std::vector<int> idx(kFactors);
    const std::vector<double> ones(kFactors, 1.0);
    for (int i = 0; i < kRows; ++i) {
      for (int f = 0; f < kFactors; ++f) idx[f] = f * kLevels + level(gen);
      sparse.AddRow(ZRSparseVector(idx, ones));
      w.push_back(u(gen));
      r.push_back(u(gen) - 1.25);
    }
    for (int j = 0; j < kCols; ++j) b.push_back(u(gen));
    sparse.CreateFullMatrix(dense);
  }
};

const Design & TheDesign() {
  static const Design design;
  return design;
}

double SparseMB() {
  return static_cast<double>(kRows) * kFactors * (sizeof(double) + sizeof(int)) / 1e6;
}
double DenseMB() {
  return static_cast<double>(kRows) * kCols * sizeof(double) / 1e6;
}

void XtWX_zr(benchmark::State & state) {
  const Design & d = TheDesign();
  ZRSymMatrix s(kCols, true);
  for (auto _ : state) {
    s.SetNRows(kCols, true);
    s.UpdateXXCornerBlock(d.sparse, d.w);
    benchmark::DoNotOptimize(&s);
  }
  state.counters["MB"] = SparseMB();
}

// UpdateXX per dense row, which skips the row's zeros; the row is fetched by GetRow.
void XtWX_ref(benchmark::State & state) {
  const Design & d = TheDesign();
  ZRSymMatrix s(kCols, true);
  std::vector<double> row;
  for (auto _ : state) {
    s.SetNRows(kCols, true);
    for (int i = 0; i < kRows; ++i) {
      d.dense.GetRow(i, row);
      s.UpdateXX(row, d.w[i]);
    }
    benchmark::DoNotOptimize(&s);
  }
  state.counters["MB"] = DenseMB();
}

void XtX_zr(benchmark::State & state) {
  const Design & d = TheDesign();
  const std::vector<double> ones(kRows, 1.0);
  ZRSymMatrix s(kCols, true);
  for (auto _ : state) {
    s.SetNRows(kCols, true);
    s.UpdateXXCornerBlock(d.sparse, ones);
    benchmark::DoNotOptimize(&s);
  }
  state.counters["MB"] = SparseMB();
}

void XtX_ref(benchmark::State & state) {
  const Design & d = TheDesign();
  ZRSymMatrix s;
  for (auto _ : state) {
    s.ComputeRTransByR(d.dense);
    benchmark::DoNotOptimize(&s);
  }
  state.counters["MB"] = DenseMB();
}

template <bool kSparse>
void Xb(benchmark::State & state) {
  const Design & d = TheDesign();
  std::vector<double> out;
  for (auto _ : state) {
    if (kSparse) {
      d.sparse.ComputeRV(d.b, out);
    } else {
      d.dense.ComputeRV(d.b, out);
    }
    benchmark::DoNotOptimize(out.data());
  }
  state.counters["MB"] = kSparse ? SparseMB() : DenseMB();
}

template <bool kSparse>
void Xtr(benchmark::State & state) {
  const Design & d = TheDesign();
  std::vector<double> out;
  for (auto _ : state) {
    if (kSparse) {
      d.sparse.ComputeVR(d.r, out);
    } else {
      d.dense.ComputeVR(d.r, out);
    }
    benchmark::DoNotOptimize(out.data());
  }
  state.counters["MB"] = kSparse ? SparseMB() : DenseMB();
}

}  // namespace

BENCHMARK(XtWX_zr)->Name("SparseXtWX/zr")->Unit(benchmark::kMillisecond);
BENCHMARK(XtWX_ref)->Name("SparseXtWX/ref")->Unit(benchmark::kMillisecond);
BENCHMARK(XtX_zr)->Name("SparseXtX/zr")->Unit(benchmark::kMillisecond);
BENCHMARK(XtX_ref)->Name("SparseXtX/ref")->Unit(benchmark::kMillisecond);
BENCHMARK(Xb<true>)->Name("SparseXb/zr")->Unit(benchmark::kMillisecond);
BENCHMARK(Xb<false>)->Name("SparseXb/ref")->Unit(benchmark::kMillisecond);
BENCHMARK(Xtr<true>)->Name("SparseXtr/zr")->Unit(benchmark::kMillisecond);
BENCHMARK(Xtr<false>)->Name("SparseXtr/ref")->Unit(benchmark::kMillisecond);
