// Benchmark driver. Benchmarks are named "<Work>/<side>/<args>" (the args may be absent):
// side "zr" is this library, any other side a reference library on the same data. After
// the usual report, works measured against "ref" alone get a table of this library's time
// against the reference's; works measured against reference BLAS/LAPACK ("ref") and
// OpenBLAS ("openblas") get one table of the three CPU times per call, both ratios and the
// GFLOP/s each side reaches, from the flops per iteration a benchmark states in its
// "flops" counter; works with other references get one table per set of them, in CPU
// nanoseconds per call, with this library's time over the fastest reference's. The header
// names the files (or version) each reference came from. The MPI build's scaling, which has
// no reference, closes the report as a table of its own.
#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <boost/version.hpp>

#include <Rmath.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "openblas.h"
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
std::string RoutineFrom(const char * name) {
  return LoadedFrom(dlsym(RTLD_DEFAULT, name));
}

// "1_74" as "1.74".
std::string BoostVersion() {
  std::string version = BOOST_LIB_VERSION;
  std::replace(version.begin(), version.end(), '_', '.');
  return version;
}

class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run> & runs) override {
    for (const Run & run : runs) {
      if (run.run_type == Run::RT_Iteration && run.benchmark_name().rfind(kMpiWork, 0) == 0) {
        fMpiRun = run;
        fMpiSeen = true;
      }
      if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
      const std::string name = run.benchmark_name();
      const std::size_t sideAt = name.find('/');
      if (sideAt == std::string::npos) continue;
      const std::size_t argsAt = name.find('/', sideAt + 1);
      const std::string side = name.substr(sideAt + 1, argsAt - sideAt - 1);
      const std::string key =
          name.substr(0, sideAt) + (argsAt == std::string::npos ? "" : name.substr(argsAt));
      // A benchmark that times a batch of calls per iteration says how many in "calls".
      const auto calls = run.counters.find("calls");
      const double perCall =
          calls != run.counters.end() && calls->second.value > 0.0 ? calls->second.value : 1.0;
      // With --benchmark_repetitions the fastest repetition counts: noise only adds time.
      Times & times = fWorks[key];
      const auto flops = run.counters.find("flops");
      if (flops != run.counters.end()) {
        times.flops = flops->second.value / perCall;
        times.formula = run.report_label;
      }
      const double own = run.GetAdjustedRealTime();
      const auto seen = times.own.find(side);
      if (seen == times.own.end() || own < seen->second) times.own[side] = own;
      // CPU time: the calls are single-threaded, and on a shared machine the wall clock
      // also counts the time the process waited for a processor.
      const double ns = run.GetAdjustedCPUTime() * 1e9 /
                        benchmark::GetTimeUnitMultiplier(run.time_unit) / perCall;
      const auto seenNs = times.nsPerCall.find(side);
      if (seenNs == times.nsPerCall.end() || ns < seenNs->second) times.nsPerCall[side] = ns;
      if (std::find(fOrder.begin(), fOrder.end(), key) == fOrder.end()) fOrder.push_back(key);
      if (side != "zr" && std::find(fSides.begin(), fSides.end(), side) == fSides.end())
        fSides.push_back(side);
    }
    ConsoleReporter::ReportRuns(runs);
  }

  // The MPI build's figures as a table, or the one line that says why there are none;
  // nothing when its benchmark did not run.
  void PrintMpiScaling() const {
    if (!fMpiSeen) return;
    if (fMpiRun.error_occurred) {
      std::printf("\nMPI build: skipped (%s)\n", fMpiRun.error_message.c_str());
      return;
    }
    std::printf("\nMPI build: %s\n%6s %14s %9s %11s\n", kMpiWork, "ranks", "cases/s", "speed-up",
                "efficiency");
    for (const char * ranks : {"1", "2", "4"}) {
      const std::string n = ranks;
      const auto rate = fMpiRun.counters.find("cases_per_s_R" + n);
      if (rate == fMpiRun.counters.end()) continue;
      std::printf("%6s %14.4g %9.2f %11.2f\n", ranks, rate->second.value,
                  fMpiRun.counters.at("speedup_R" + n).value,
                  fMpiRun.counters.at("efficiency_R" + n).value);
    }
  }

  void PrintRatios() const {
    // Works against "ref" alone: times in each benchmark's own unit, sorted by name.
    bool header = false;
    for (const auto & [key, times] : fWorks) {
      if (References(times) != std::vector<std::string>{"ref"} || InBlasTable(times)) continue;
      const double zr = times.own.at("zr"), ref = times.own.at("ref");
      if (ref <= 0.0) continue;
      if (!header) std::printf("\n%-48s %14s %14s %8s\n", "work", "zr time", "ref time", "zr/ref");
      header = true;
      std::printf("%-48s %14.1f %14.1f %8.3f\n", key.c_str(), zr, ref, zr / ref);
    }
    PrintBlasTable();
    // Every other set of references: a table each, in the order the works ran.
    std::vector<std::vector<std::string>> printed{{"ref"}, {}, {"ref", "openblas"}};
    for (const std::string & first : fOrder) {
      const std::vector<std::string> sides = References(fWorks.at(first));
      if (std::find(printed.begin(), printed.end(), sides) != printed.end()) continue;
      printed.push_back(sides);
      std::printf("\n%-36s %10s", "work (CPU ns per call)", "zr");
      for (const std::string & side : sides) std::printf(" %10s", side.c_str());
      std::printf(" %12s\n", sides.size() == 1 ? ("zr/" + sides[0]).c_str() : "zr/fastest");
      for (const std::string & key : fOrder) {
        const Times & times = fWorks.at(key);
        if (References(times) != sides) continue;
        double fastest = 0.0;
        std::printf("%-36s %10.1f", key.c_str(), times.nsPerCall.at("zr"));
        for (const std::string & side : sides) {
          const double t = times.nsPerCall.at(side);
          std::printf(" %10.1f", t);
          if (fastest <= 0.0 || t < fastest) fastest = t;
        }
        if (fastest > 0.0) std::printf(" %12.3f", times.nsPerCall.at("zr") / fastest);
        std::printf("\n");
      }
    }
  }

 private:
  struct Times {
    std::map<std::string, double> own;        // per iteration, in the benchmark's unit
    std::map<std::string, double> nsPerCall;  // CPU time in ns, divided by "calls"
    double flops = 0.0;                       // per call; 0 when not stated
    std::string formula;                      // how flops was counted, "2n^3"
  };

  // Works against reference BLAS/LAPACK and OpenBLAS; without OpenBLAS, the works against
  // the reference that state their flops, whose tables would otherwise have held it.
  static bool InBlasTable(const Times & times) {
    return times.own.count("zr") != 0 && times.own.count("ref") != 0 &&
           (times.own.count("openblas") != 0 ||
            (times.flops > 0.0 && !zrbench::OpenBlas::Get().Loaded()));
  }

  // ns as a time with a unit and four significant digits: "812.3 us".
  static std::string Duration(double ns) {
    static const char * const kUnits[] = {"ns", "us", "ms", "s"};
    int unit = 0;
    for (; unit < 3 && ns >= 1000.0; ++unit) ns /= 1000.0;
    char text[32];
    std::snprintf(text, sizeof text, "%.4g %s", ns, kUnits[unit]);
    return text;
  }

  // The three columns, in the order the works ran; "-" for what was not measured.
  void PrintBlasTable() const {
    const bool openblas = zrbench::OpenBlas::Get().Loaded();
    bool header = false;
    for (const std::string & key : fOrder) {
      const Times & times = fWorks.at(key);
      if (!InBlasTable(times)) continue;
      if (!header) {
        std::printf("\nOne thread, CPU time per call; GFLOP/s = flops / time%s\n",
                    openblas ? "" : " (no OpenBLAS: its columns are skipped)");
        std::printf("%-28s %9s %10s %10s", "work", "flops", "zr", "ref");
        if (openblas) std::printf(" %10s", "openblas");
        std::printf(" %7s", "zr/ref");
        if (openblas) std::printf(" %7s", "zr/ob");
        std::printf(" %8s %8s", "zr GF/s", "ref GF/s");
        if (openblas) std::printf(" %8s", "ob GF/s");
        std::printf("  flops as\n");
        header = true;
      }
      std::vector<std::string> sides{"zr", "ref"};
      if (openblas) sides.push_back("openblas");
      const auto ns = [&](const std::string & side) {
        const auto at = times.nsPerCall.find(side);
        return at == times.nsPerCall.end() ? 0.0 : at->second;
      };
      if (times.flops > 0.0)
        std::printf("%-28s %9.3g", key.c_str(), times.flops);
      else
        std::printf("%-28s %9s", key.c_str(), "-");
      for (const std::string & side : sides)
        std::printf(" %10s", ns(side) > 0.0 ? Duration(ns(side)).c_str() : "-");
      for (std::size_t k = 1; k < sides.size(); ++k) {
        if (ns(sides[k]) > 0.0)
          std::printf(" %7.2f", ns("zr") / ns(sides[k]));
        else
          std::printf(" %7s", "-");
      }
      for (const std::string & side : sides) {
        if (times.flops > 0.0 && ns(side) > 0.0)
          std::printf(" %8.2f", times.flops / ns(side));
        else
          std::printf(" %8s", "-");
      }
      std::printf("%s%s\n", times.formula.empty() ? "" : "  ", times.formula.c_str());
    }
  }

  // The reference sides measured for a work, in the order first seen; empty without zr.
  std::vector<std::string> References(const Times & times) const {
    std::vector<std::string> sides;
    if (times.own.count("zr") == 0) return sides;
    for (const std::string & side : fSides)
      if (times.own.count(side) != 0) sides.push_back(side);
    return sides;
  }

  static constexpr const char * kMpiWork = "MpiBuildScaling";

  std::map<std::string, Times> fWorks;
  std::vector<std::string> fOrder, fSides;
  Run fMpiRun;
  bool fMpiSeen = false;
};

}  // namespace

int main(int argc, char ** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::AddCustomContext("ref BLAS (dgemm_)", RoutineFrom("dgemm_"));
  benchmark::AddCustomContext("ref LAPACK (dgetrf_)", RoutineFrom("dgetrf_"));
  benchmark::AddCustomContext("rmath (pnorm5)", LoadedFrom(reinterpret_cast<const void *>(&pnorm)));
  benchmark::AddCustomContext("boost (headers)", BoostVersion());
  benchmark::AddCustomContext("zr",
                              LoadedFrom(reinterpret_cast<const void *>(&ZRMath_920::Blas1::DDot)));
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.PrintRatios();
  reporter.PrintMpiScaling();
  benchmark::Shutdown();
  return 0;
}
