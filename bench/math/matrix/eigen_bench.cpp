// Symmetric eigenvalues, and eigenvalues with eigenvectors, against dspev of reference
// LAPACK (linked by its own path) and of OpenBLAS (loaded apart, one thread) on the same
// packed matrix: the lower triangle by rows is the upper triangle by columns. Eigenvalues
// alone count the 4n^3/3 flops of the reduction to tridiagonal form, which dominates.
#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include "openblas.h"
#include "zrcommon920r/math/matrix/eigen.h"

extern "C" {
void dspev_(const char * jobz, const char * uplo, const int * n, double * ap, double * w,
            double * z, const int * ldz, double * work, int * info);
}

namespace {

using ZRMath_920::ZREigenValues;
using ZRMath_920::ZRRectMatrix;
using ZRMath_920::ZRSymMatrix;

using DspevFn = void (*)(const char *, const char *, const int *, double *, double *, double *,
                         const int *, double *, int *);

// Entries uniform on [-1, 1): indefinite, eigenvalues spread over about +-2 sqrt(n / 3).
std::vector<double> RandomPacked(int n) {
  std::mt19937 gen(static_cast<unsigned>(n));
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  std::vector<double> ap(static_cast<std::size_t>(n) * (n + 1) / 2);
  for (double & x : ap) x = u(gen);
  return ap;
}

void CountValuesFlops(benchmark::State & state, int n) {
  zrbench::CountFlops(state, 4.0 / 3.0 * n * n * n, "4n^3/3");
}

ZRSymMatrix ToSym(const std::vector<double> & ap, int n) {
  ZRSymMatrix h(n, true);
  for (std::size_t k = 0; k < ap.size(); ++k) h.SetElem(static_cast<int>(k), ap[k]);
  return h;
}

void ValuesZr(benchmark::State & state) {
  const int n = static_cast<int>(state.range(0));
  ZREigenValues eig(ToSym(RandomPacked(n), n), 0.0, 0);
  std::vector<double> values;
  for (auto _ : state) {
    if (eig.Compute(values) != n) state.SkipWithError("not all eigenvalues converged");
    benchmark::DoNotOptimize(values.data());
  }
  CountValuesFlops(state, n);
}

void VectorsZr(benchmark::State & state) {
  const int n = static_cast<int>(state.range(0));
  ZREigenValues eig(ToSym(RandomPacked(n), n), 0.0, 0);
  std::vector<double> values;
  ZRRectMatrix vectors;
  for (auto _ : state) {
    if (eig.Compute(values, vectors) != n) state.SkipWithError("not all eigenvalues converged");
    benchmark::DoNotOptimize(&vectors);
  }
}

void Dspev(benchmark::State & state, DspevFn dspev, const char * jobz) {
  const int n = static_cast<int>(state.range(0));
  const std::vector<double> packed = RandomPacked(n);
  std::vector<double> ap, w(n), z(*jobz == 'V' ? static_cast<std::size_t>(n) * n : 1),
      work(3 * static_cast<std::size_t>(n));
  const int ldz = *jobz == 'V' ? n : 1;
  int info = 0;
  for (auto _ : state) {
    ap = packed;
    dspev(jobz, "U", &n, ap.data(), w.data(), z.data(), &ldz, work.data(), &info);
    if (info != 0) state.SkipWithError("dspev failed");
    benchmark::DoNotOptimize(z.data());
  }
  if (*jobz == 'N') CountValuesFlops(state, n);
}

bool RegisterAll() {
  const auto openblas = zrbench::OpenBlas::Get().Find<DspevFn>("dspev_");
  for (const char * jobz : {"N", "V"}) {
    const std::string work = *jobz == 'N' ? "EigenValues" : "EigenVectors";
    const auto add = [&](const char * side, auto run) {
      auto * b = benchmark::RegisterBenchmark((work + "/" + side).c_str(), run);
      b->Arg(100)->Arg(400)->Arg(1000)->Unit(benchmark::kMillisecond);
    };
    add("zr", *jobz == 'N' ? ValuesZr : VectorsZr);
    add("ref", [jobz](benchmark::State & state) { Dspev(state, &dspev_, jobz); });
    if (openblas != nullptr)
      add("openblas", [jobz, openblas](benchmark::State & state) { Dspev(state, openblas, jobz); });
  }
  return true;
}

[[maybe_unused]] const bool kRegistered = RegisterAll();

}  // namespace
