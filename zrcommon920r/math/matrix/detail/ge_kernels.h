// The delayed updates of Gaussian elimination with partial pivoting (Linpack::Dgefa):
// several elimination steps applied to several later columns in one pass over their rows,
// built for every instruction set of simd.h and dispatched on the active path. Every path
// gives the bits of the one-step-at-a-time column sweep. Not installed.
#ifndef ZRCOMMON920R_MATH_MATRIX_DETAIL_GE_KERNELS_H
#define ZRCOMMON920R_MATH_MATRIX_DETAIL_GE_KERNELS_H

namespace ZRMath_920 {
namespace matrix_detail {

// Most elimination steps, and most columns, one call of ApplyGeSteps takes.
constexpr int kGeMaxSteps = 8;
constexpr int kGeMaxColumns = 64;

// Applies elimination steps k0 .. k0 + steps - 1 of Dgefa to columns j0 .. j0 + count - 1
// of the n x n column-major a (indices from 1, as in Dgefa), the steps in order: step k,
// with pivot row l = ipvt[k - 1], swaps rows k and l of the column and then, unless the
// multiplier t (the new a(k, j)) is 0.0, adds t a(i, k) to a(i, j) for i = k + 1 .. n, one
// rounded multiply and one rounded add. A step whose pivot a(k, k) is 0.0 does nothing.
// Needs 1 <= steps <= kGeMaxSteps, 1 <= count <= kGeMaxColumns, columns k0 .. k0 + steps - 1
// already factored and j0 past them. Allocates nothing.
void ApplyGeSteps(double * a, int lda, int n, const int * ipvt, int k0, int steps, int j0,
                  int count);

}  // namespace matrix_detail
}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_MATRIX_DETAIL_GE_KERNELS_H
