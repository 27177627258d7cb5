// Choice of the instruction set for the hot loops of the matrix and accumulator kernels:
// detected once per process, the same results on every path. Not installed.
#ifndef ZRCOMMON920R_MATH_MATRIX_DETAIL_SIMD_H
#define ZRCOMMON920R_MATH_MATRIX_DETAIL_SIMD_H

// 1 where the compiler can build functions for AVX2 and AVX-512 beside the baseline ones
// (target attributes) and ask the processor which it has; elsewhere only the baseline runs.
#if (defined(__GNUC__) || defined(__clang__)) && defined(__x86_64__)
#define ZR_SIMD_X86 1
#else
#define ZR_SIMD_X86 0
#endif

namespace ZRMath_920 {
namespace matrix_detail {

// The instruction sets a kernel may use. Every path gives the same bits: each element
// sees the same sequence of rounded operations, only the width of the vectors differs.
enum class SimdPath { kBaseline = 0, kAvx2 = 1, kAvx512 = 2 };

// The path the kernels take: the widest one the processor and the operating system
// support, unless a test has forced another. Cheap enough to read on every call.
SimdPath ActiveSimdPath();

// Whether this build and this processor can run the path (kBaseline always can).
bool SimdPathSupported(SimdPath path);

// For tests only: makes every kernel take path from now on, for all threads. Returns
// false, and changes nothing, when the path is not supported here.
bool ForceSimdPath(SimdPath path);

// For tests only: goes back to the path detected at start.
void ResetSimdPath();

// "baseline", "avx2" or "avx512", for messages.
const char * SimdPathName(SimdPath path);

}  // namespace matrix_detail
}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_MATRIX_DETAIL_SIMD_H
