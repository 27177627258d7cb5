// OpenBLAS as a second yardstick beside the reference BLAS and LAPACK: libopenblas.so.0
// loaded once per process with its own symbols (RTLD_LOCAL | RTLD_DEEPBIND, so neither
// library's calls bind to the other's routines), on one thread; and the flop counts of the
// works timed against them.
#ifndef ZRCOMMON920R_BENCH_OPENBLAS_H
#define ZRCOMMON920R_BENCH_OPENBLAS_H

#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace zrbench {

class OpenBlas {
 public:
  // The process's one loading. When the library is absent a line on stderr says so and
  // every routine is null; when present the file, its build and its kernels go into the
  // report's context. With AVX-512 the SkylakeX kernels are asked for (unless the
  // environment already names a core), as OpenBLAS does not always pick them on its own.
  static const OpenBlas & Get() {
    static const OpenBlas instance;
    return instance;
  }

  bool Loaded() const { return fLib != nullptr; }

  // The routine name ("dgemm_") of OpenBLAS, or null.
  template <typename Fn>
  Fn Find(const char * name) const {
    return fLib == nullptr ? nullptr : reinterpret_cast<Fn>(dlsym(fLib, name));
  }

 private:
  OpenBlas() {
    setenv("OPENBLAS_NUM_THREADS", "1", 1);
    if (__builtin_cpu_supports("avx512f")) setenv("OPENBLAS_CORETYPE", "SkylakeX", 0);
    fLib = dlopen("libopenblas.so.0", RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND);
    if (fLib == nullptr) {
      std::fprintf(stderr,
                   "libopenblas.so.0 not found (apt-get install libopenblas0-pthread): the "
                   "OpenBLAS column is skipped\n");
      return;
    }
    using SetThreads = void (*)(int);
    if (auto set = Find<SetThreads>("openblas_set_num_threads")) set(1);
    std::string origin = "(not found)";
    Dl_info info;
    char path[PATH_MAX];
    const void * dgemm = dlsym(fLib, "dgemm_");
    if (dgemm != nullptr && dladdr(dgemm, &info) != 0 && info.dli_fname != nullptr)
      origin = realpath(info.dli_fname, path) != nullptr ? path : info.dli_fname;
    using Text = const char * (*)();
    if (auto config = Find<Text>("openblas_get_config")) origin += std::string(", ") + config();
    if (auto core = Find<Text>("openblas_get_corename"))
      origin += std::string(", kernels ") + core();
    const char * coretype = std::getenv("OPENBLAS_CORETYPE");
    if (coretype != nullptr) origin += std::string(" (OPENBLAS_CORETYPE=") + coretype + ")";
    benchmark::AddCustomContext("openblas (dgemm_)", origin);
  }

  void * fLib = nullptr;
};

// States the flops of one iteration (value, counted as formula, "2n^3") of a work timed
// against the BLAS, from which the driver reports the GFLOP/s of each side.
inline void CountFlops(benchmark::State & state, double value, const char * formula) {
  state.counters["flops"] = value;
  state.SetLabel(formula);
}

}  // namespace zrbench

#endif  // ZRCOMMON920R_BENCH_OPENBLAS_H
