// Detection of the widest vector instruction set usable here, and the override the
// tests use to run every path.
#include "zrcommon920r/math/matrix/detail/simd.h"

#include <atomic>

namespace ZRMath_920 {
namespace matrix_detail {

namespace {

constexpr int kUndecided = -1;

// The active path as an int, kUndecided until first asked. Threads that race on the first
// call detect the same answer, so a relaxed atomic is enough.
std::atomic<int> gActivePath{kUndecided};

// The widest path this processor supports; the library's x86-64 builds check the
// processor's feature bits, which also say whether the OS saves the wider registers.
SimdPath DetectPath() {
#if ZR_SIMD_X86
  __builtin_cpu_init();
  if (__builtin_cpu_supports("avx512f")) return SimdPath::kAvx512;
  if (__builtin_cpu_supports("avx2")) return SimdPath::kAvx2;
#endif
  return SimdPath::kBaseline;
}

}  // namespace

SimdPath ActiveSimdPath() {
  int path = gActivePath.load(std::memory_order_relaxed);
  if (path == kUndecided) {
    path = static_cast<int>(DetectPath());
    gActivePath.store(path, std::memory_order_relaxed);
  }
  return static_cast<SimdPath>(path);
}

bool SimdPathSupported(SimdPath path) {
  return static_cast<int>(path) <= static_cast<int>(DetectPath());
}

bool ForceSimdPath(SimdPath path) {
  if (!SimdPathSupported(path)) return false;
  gActivePath.store(static_cast<int>(path), std::memory_order_relaxed);
  return true;
}

void ResetSimdPath() {
  gActivePath.store(static_cast<int>(DetectPath()), std::memory_order_relaxed);
}

const char * SimdPathName(SimdPath path) {
  switch (path) {
    case SimdPath::kAvx2:
      return "avx2";
    case SimdPath::kAvx512:
      return "avx512";
    case SimdPath::kBaseline:
      break;
  }
  return "baseline";
}

}  // namespace matrix_detail
}  // namespace ZRMath_920
