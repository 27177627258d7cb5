// The benchmarks' fixed source of pseudo-random values: a 64-bit LCG with Knuth's MMIX
// constants, so every run sees the same values.
#ifndef ZRCOMMON920R_BENCH_BENCHLCG_H
#define ZRCOMMON920R_BENCH_BENCHLCG_H

#include <cstdint>

namespace zrbench {

class Lcg {
 public:
  explicit Lcg(std::uint64_t seed) : fState(seed) {}
  std::uint64_t Next() {
    fState = fState * 6364136223846793005u + 1442695040888963407u;
    return fState >> 11;
  }
  // Uniform on [0, 1).
  double Uniform() { return static_cast<double>(Next()) * 0x1p-53; }
  // Uniform on 0 .. n - 1.
  int Below(int n) { return static_cast<int>(Next() % static_cast<std::uint64_t>(n)); }

 private:
  std::uint64_t fState;
};

}  // namespace zrbench

#endif  // ZRCOMMON920R_BENCH_BENCHLCG_H
