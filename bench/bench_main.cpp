// Benchmark driver. Benchmarks come in pairs named "<Work>/zr/<args>" (this library) and
// "<Work>/ref/<args>" (a reference library on the same data); after the usual report a
// table gives, for each pair, the ratio of this library's time to the reference's. The
// header names the files the two sides were loaded from.
#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "zrcommon920r/math/matrix/kernels.h"

namespace {

// The file that holds the code at addr, symlinks resolved.
std::string LoadedFrom(const void * addr) {
  Dl_info info;
  if (addr == nullptr || dladdr(addr, &info) == 0 || info.dli_fname == nullptr)
    return "(not found)";
  char path[PATH_MAX];
  return realpath(info.dli_fname, path) != nullptr ? path : info.dli_fname;
}

// The file a call to the Fortran routine name binds to.
std::string RoutineFrom(const char * name) { return LoadedFrom(dlsym(RTLD_DEFAULT, name)); }

class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run> & runs) override {
    for (const Run & run : runs) {
      if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
      const std::string name = run.benchmark_name();
      for (const char * side : {"/zr/", "/ref/"}) {
        const std::size_t at = name.find(side);
        if (at == std::string::npos) continue;
        const std::string key =
            name.substr(0, at) + "/" + name.substr(at + std::string(side).size());
        (side[1] == 'z' ? fZr : fRef)[key] = run.GetAdjustedRealTime();
      }
    }
    ConsoleReporter::ReportRuns(runs);
  }

  void PrintRatios() const {
    std::printf("\n%-48s %14s %14s %8s\n", "work", "zr time", "ref time", "zr/ref");
    for (const auto & [key, zr] : fZr) {
      const auto ref = fRef.find(key);
      if (ref == fRef.end() || ref->second <= 0.0) continue;
      std::printf("%-48s %14.1f %14.1f %8.3f\n", key.c_str(), zr, ref->second, zr / ref->second);
    }
  }

 private:
  std::map<std::string, double> fZr, fRef;
};

}  // namespace

int main(int argc, char ** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::AddCustomContext("ref BLAS (dgemm_)", RoutineFrom("dgemm_"));
  benchmark::AddCustomContext("ref LAPACK (dgetrf_)", RoutineFrom("dgetrf_"));
  benchmark::AddCustomContext(
      "zr", LoadedFrom(reinterpret_cast<const void *>(&ZRMath_920::Blas1::DDot)));
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.PrintRatios();
  benchmark::Shutdown();
  return 0;
}
