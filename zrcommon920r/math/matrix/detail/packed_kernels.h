// Hot loops over packed lower triangles and their rows, shared by the symmetric matrix's
// sweeps and Cholesky family and by the accumulators, each built for every instruction set
// of simd.h and dispatched on the active path. Every path gives the bits of the baseline
// loop. Not installed.
#ifndef ZRCOMMON920R_MATH_MATRIX_DETAIL_PACKED_KERNELS_H
#define ZRCOMMON920R_MATH_MATRIX_DETAIL_PACKED_KERNELS_H

#include <cstddef>

namespace ZRMath_920 {
namespace matrix_detail {

// a += w x x' on the first n rows of the packed triangle a: element (i, j) becomes
// a(i, j) + (w x_i) x_j, and a row whose x_i is 0.0 (or -0.0) is skipped, so a NaN or
// infinite x_j does not reach it. Allocates nothing.
void AddOuterPacked(double * a, const double * x, int n, double w);

// a[k] += b[k] for k < count; a and b may be the same array.
void AddPacked(double * a, const double * b, std::size_t count);

// The corrected part of the pairwise merge of two p-variable summaries (counts n and no,
// means m and mo, packed matrices a and ao; f = no / (n + no)), in one pass over a.
// First the new means mn_i = (mo_i - m_i) f + m_i replace m, with dm_i = mn_i - m_i and
// dmo_i = mn_i - mo_i kept in the p-element scratch dm and dmo; then each element (i, j),
// j <= i, becomes a + (((dm_j (dm_i n)) + ao) + (dmo_j (dmo_i no))).
// m may be mo and a may be ao (a summary merged with itself): each is read before the
// same element is written.
void MergeCorrectedPacked(double * a, const double * ao, double * m, const double * mo, double * dm,
                          double * dmo, int p, double n, double no, double f);

// a += sum over r < rows of (d_r d_r') w_r on the p-row packed triangle a, where d_r is
// the p values at dev + r * stride and w_r = w[r] (1 with no multiply when w is null).
// Element (i, j), j <= i, gains d_r[j] d_r[i], times w_r when weighted, one row r after
// another in order, as a row-by-row loop adds them; the wide paths keep tiles of a in
// registers over all the rows. Allocates nothing.
void AddProductsPacked(double * a, const double * dev, std::size_t stride, const double * w,
                       int rows, int p);

// row[j] += f[q s] c[q s + j] for j = jBeg .. jEnd - 1, the terms q = 0 .. count - 1
// added to each element one by one in that order: the delayed updates of count saved
// sweep pivots (multiplier f[q s] of this row, rescaled pivot column c + q s) applied to a
// stretch of one row, four pivots to a pass over it.
void AddSavedPivots(double * row, int jBeg, int jEnd, const double * f, const double * c,
                    std::size_t s, int count);

// The same for four rows at once, row r with the multipliers f[q s + r] (four consecutive
// rows of a triangle): the wide paths hold a tile of the four rows in registers over all
// the pivots, so that each load of a pivot column serves four rows.
void AddSavedPivots4(double * const * rows, int jBeg, int jEnd, const double * f, const double * c,
                     std::size_t s, int count);

// rows[b][j] += cols[q][j] f[8 q + b] for b < nrows (at most 8) and j < jEnd, the terms
// q = 0 .. count - 1 added to each element one by one in that order: the updates that a
// block of rows of a triangular inverse, or of L'L, receives from count other rows. The
// wide paths hold a tile of all eight rows in registers over the count rows.
void AddRowUpdates(double * const * rows, int nrows, int jEnd, const double * const * cols,
                   const double * f, int count);

// s[8 jj + r] = sum over k < kEnd of rows[r][k] c[jj][k], each summed from 0.0 in
// ascending k, for r, jj < 8: the dot products of eight rows with eight others, as the
// Cholesky factor's tiles need them. p holds the same eight rows k-major (p[8 k + r] is
// rows[r][k]): the vector paths load it, the baseline reads the rows.
void DotTile8x8(const double * p, const double * const * rows, const double * const * c, int kEnd,
                double * s);

}  // namespace matrix_detail
}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_MATRIX_DETAIL_PACKED_KERNELS_H
