// Runs kernels under each instruction set the processor supports, to compare their bits.
#ifndef ZRCOMMON920R_TESTS_SUPPORT_SIMDPATHS_H
#define ZRCOMMON920R_TESTS_SUPPORT_SIMDPATHS_H

#include <cstdio>
#include <vector>

#include "zrcommon920r/math/matrix/detail/simd.h"

namespace zrtest {

// Forces one path for a scope and returns to the detected one after.
class ForcedPath {
 public:
  explicit ForcedPath(ZRMath_920::matrix_detail::SimdPath path)
      : fOk(ZRMath_920::matrix_detail::ForceSimdPath(path)) {}
  ~ForcedPath() { ZRMath_920::matrix_detail::ResetSimdPath(); }
  ForcedPath(const ForcedPath &) = delete;
  ForcedPath & operator=(const ForcedPath &) = delete;
  bool Ok() const { return fOk; }

 private:
  bool fOk;
};

// The paths to run here; the ones this processor lacks are named in the test's output.
inline std::vector<ZRMath_920::matrix_detail::SimdPath> SupportedPaths() {
  using ZRMath_920::matrix_detail::SimdPath;
  std::vector<SimdPath> paths;
  for (SimdPath path : {SimdPath::kBaseline, SimdPath::kAvx2, SimdPath::kAvx512}) {
    if (ZRMath_920::matrix_detail::SimdPathSupported(path)) {
      paths.push_back(path);
    } else {
      std::printf("[  SKIPPED ] path %s: not supported by this processor or build\n",
                  ZRMath_920::matrix_detail::SimdPathName(path));
    }
  }
  return paths;
}

}  // namespace zrtest

#endif  // ZRCOMMON920R_TESTS_SUPPORT_SIMDPATHS_H
