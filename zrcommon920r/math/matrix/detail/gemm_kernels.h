// The dense matrix product of the rectangular matrices, packed and cache-blocked, built for
// every instruction set of simd.h. Every path gives the bits of the plain triple loop.
// Not installed.
#ifndef ZRCOMMON920R_MATH_MATRIX_DETAIL_GEMM_KERNELS_H
#define ZRCOMMON920R_MATH_MATRIX_DETAIL_GEMM_KERNELS_H

namespace ZRMath_920 {
namespace matrix_detail {

// C = A B for A m x p, B p x n and C m x n, all stored by rows without gaps; c is apart
// from a and b and is overwritten. Each C(i, j) is the sum from 0.0 of A(i, k) B(k, j)
// over k = 0, 1, .., p - 1 in that order, one rounded multiply and one rounded add per
// term, exactly as a dot product of row i and column j in one double. Uses scratch of at
// most a few megabytes when it can get it; without it, the same sums by a slower loop.
void MultiplyDense(const double * a, const double * b, double * c, int m, int p, int n);

}  // namespace matrix_detail
}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_MATRIX_DETAIL_GEMM_KERNELS_H
