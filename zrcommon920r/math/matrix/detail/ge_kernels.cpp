// The grouped elimination steps of ge_kernels.h in three builds: the baseline (SSE2 on
// x86-64), AVX2 and AVX-512F, each picked per call by the active path. The wide builds use
// separate multiplies and adds in the baseline's order (never a fused multiply-add), so
// every element is rounded exactly as the baseline rounds it; tails are finished by
// masked lanes doing the same operations.
#include "zrcommon920r/math/matrix/detail/ge_kernels.h"

#include <cstddef>

#include "zrcommon920r/math/matrix/detail/simd.h"

#if ZR_SIMD_X86
#include <immintrin.h>
#elif defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace ZRMath_920 {
namespace matrix_detail {

namespace {

// Rows a group of steps can swap: the steps' own rows and one pivot row per step below them.
constexpr int kMaxSwapRows = 2 * kGeMaxSteps;
static_assert(kGeMaxColumns % 8 == 0, "the buffer's rows are whole 8-lane vectors");

// Rows of the bulk pass taken through every column before moving down: that strip of the
// steps' columns (at most 256 x 8 doubles, 16 KiB) then stays in L1 across the columns.
constexpr int kBulkStrip = 256;

// Column j of a, counted from 0.
inline double * Col(double * a, int lda, int j) {
  return a + static_cast<std::ptrdiff_t>(j) * lda;
}

// One group of steps on one block of columns. The rows the steps swap (the set S: the
// steps' own rows and their pivot rows below them) are copied to buf, one buffer row per
// row of S and one buffer column per column of the block, and the steps are replayed there
// in order, swaps included. That gives the final values of S and each step's multiplier
// in each column. No other row below the steps is swapped by them, so each such row just
// receives the steps' multiply-adds in step order, in the bulk pass; the rows of S below
// the steps get wrong values there and are then overwritten from buf.
struct GeGroup {
  int steps;               // the group's steps k0 .. k0 + steps - 1
  int rows;                // rows of S: the steps' rows, then the pivot rows below them
  int cols;                // columns of the block
  int width;               // cols rounded up to a whole number of 8-lane vectors
  int row[kMaxSwapRows];   // row of a (from 0) held in each buffer row
  int pivot[kGeMaxSteps];  // buffer row of each step's pivot row; -1 for a zero pivot
  alignas(64) double x[kGeMaxSteps][kMaxSwapRows];  // x[q][r] = a(row[r], k0 + q) for r > q
  alignas(64) double buf[kMaxSwapRows][kGeMaxColumns];
  alignas(64) double t[kGeMaxSteps][kGeMaxColumns];  // multipliers; 0.0 where a step skips
};

// Finds S, reads the steps' columns at its rows and copies the block's values there
// (padding lanes hold 0.0). k0 and j0 count from 0.
void Gather(GeGroup & g, double * a, int lda, const int * ipvt, int k0, int steps, int j0,
            int cols) {
  g.steps = steps;
  g.cols = cols;
  g.width = (cols + 7) / 8 * 8;
  int rows = steps;
  for (int q = 0; q < steps; ++q) g.row[q] = k0 + q;
  for (int q = 0; q < steps; ++q) {
    const int k = k0 + q;
    // A zero pivot left u(k, k) == 0.0 and the step does nothing, not even its swap.
    if (Col(a, lda, k)[k] == 0.0) {
      g.pivot[q] = -1;
      continue;
    }
    const int l = ipvt[k] - 1;
    int r = l - k0;
    if (l >= k0 + steps) {
      // Below the steps: a new row of S, unless an earlier step pivoted on the same row.
      int e = 0;
      while (e < q && (g.pivot[e] < steps || ipvt[k0 + e] - 1 != l)) ++e;
      if (e < q) {
        r = g.pivot[e];
      } else {
        r = rows++;
        g.row[r] = l;
      }
    }
    g.pivot[q] = r;
  }
  g.rows = rows;
  for (int q = 0; q < steps; ++q) {
    const double * const ak = Col(a, lda, k0 + q);
    for (int r = q + 1; r < rows; ++r) g.x[q][r] = ak[g.row[r]];
  }
  for (int r = 0; r < rows; ++r)
    for (int c = cols; c < g.width; ++c) g.buf[r][c] = 0.0;
  for (int c = 0; c < cols; ++c) {
    const double * const y = Col(a, lda, j0 + c);
    for (int r = 0; r < rows; ++r) g.buf[r][c] = y[g.row[r]];
  }
}

// The steps on the buffer, in order: swap, then the multiply-adds of the rows below the
// step (UpdateRows, one build per path).
template <void (*UpdateRows)(GeGroup &, int)>
void Replay(GeGroup & g) {
  for (int q = 0; q < g.steps; ++q) {
    double * const tq = g.t[q];
    const int p = g.pivot[q];
    if (p < 0) {
      for (int c = 0; c < g.width; ++c) tq[c] = 0.0;
      continue;
    }
    double * const bq = g.buf[q];
    if (p != q) {
      double * const bp = g.buf[p];
      for (int c = 0; c < g.width; ++c) {
        const double s = bp[c];
        bp[c] = bq[c];
        bq[c] = s;
      }
    }
    for (int c = 0; c < g.width; ++c) tq[c] = bq[c];
    UpdateRows(g, q);
  }
}

// Writes S back over the block: the steps' rows, and the pivot rows below them over the
// values the bulk pass left there.
void Scatter(const GeGroup & g, double * a, int lda, int j0) {
  for (int c = 0; c < g.cols; ++c) {
    double * const y = Col(a, lda, j0 + c);
    for (int r = 0; r < g.rows; ++r) y[g.row[r]] = g.buf[r][c];
  }
}

// The steps that reach one column of the block in the bulk pass: those whose multiplier
// there is not 0.0, in step order, with the multiplier and the step's column.
struct ColumnSteps {
  int count;
  double t[kGeMaxSteps];
  const double * x[kGeMaxSteps];
};

// Each column's steps, from the replayed multipliers (k0 counts from 0).
void CollectSteps(const GeGroup & g, double * a, int lda, int k0, ColumnSteps * steps) {
  for (int c = 0; c < g.cols; ++c) {
    ColumnSteps & cs = steps[c];
    cs.count = 0;
    for (int q = 0; q < g.steps; ++q) {
      if (g.t[q][c] == 0.0) continue;
      cs.t[cs.count] = g.t[q][c];
      cs.x[cs.count] = Col(a, lda, k0 + q);
      ++cs.count;
    }
  }
}

// ---------------------------------------------------------------------------------------
// Baseline: SSE2 where the target has it (every x86-64), two lanes and a tile of eight
// vectors; plain loops elsewhere.

#if defined(__SSE2__)

// Step q's multiply-adds on the buffer rows below it; lanes whose multiplier is 0.0 keep
// their value (a NaN multiplier is not 0.0 and adds, as in the scalar test t != 0.0).
void UpdateRowsBase(GeGroup & g, int q) {
  const double * const tq = g.t[q];
  for (int c = 0; c < g.width; c += 2) {
    const __m128d tv = _mm_loadu_pd(tq + c);
    const __m128d nz = _mm_cmpneq_pd(tv, _mm_setzero_pd());
    for (int r = q + 1; r < g.rows; ++r) {
      double * const b = g.buf[r] + c;
      const __m128d bv = _mm_loadu_pd(b);
      const __m128d sum = _mm_add_pd(bv, _mm_mul_pd(tv, _mm_set1_pd(g.x[q][r])));
      _mm_storeu_pd(b, _mm_or_pd(_mm_and_pd(nz, sum), _mm_andnot_pd(nz, bv)));
    }
  }
}

// NV vectors of two rows from row i of y.
template <int NV>
inline void BulkTileBase(double * y, const ColumnSteps & cs, int i) {
  __m128d v[NV];
  for (int u = 0; u < NV; ++u) v[u] = _mm_loadu_pd(y + i + 2 * u);
  for (int s = 0; s < cs.count; ++s) {
    const __m128d t = _mm_set1_pd(cs.t[s]);
    const double * const x = cs.x[s] + i;
    for (int u = 0; u < NV; ++u) v[u] = _mm_add_pd(v[u], _mm_mul_pd(t, _mm_loadu_pd(x + 2 * u)));
  }
  for (int u = 0; u < NV; ++u) _mm_storeu_pd(y + i + 2 * u, v[u]);
}

// Rows i .. i1 - 1 of y (fewer than sixteen): whole pairs in one tile, then an odd row.
inline void BulkRestBase(double * y, const ColumnSteps & cs, int i, int i1) {
  using Tile = void (*)(double *, const ColumnSteps &, int);
  static constexpr Tile kTiles[] = {nullptr,         BulkTileBase<1>, BulkTileBase<2>,
                                    BulkTileBase<3>, BulkTileBase<4>, BulkTileBase<5>,
                                    BulkTileBase<6>, BulkTileBase<7>};
  if (const int pairs = (i1 - i) / 2) kTiles[pairs](y, cs, i);
  if ((i1 - i) % 2 != 0) {
    double v = y[i1 - 1];
    for (int s = 0; s < cs.count; ++s) v += cs.t[s] * cs.x[s][i1 - 1];
    y[i1 - 1] = v;
  }
}

#else

// The same in plain loops, one element at a time.
void UpdateRowsBase(GeGroup & g, int q) {
  const double * const tq = g.t[q];
  for (int r = q + 1; r < g.rows; ++r) {
    const double x = g.x[q][r];
    double * const b = g.buf[r];
    for (int c = 0; c < g.width; ++c)
      if (tq[c] != 0.0) b[c] += tq[c] * x;
  }
}

template <int NV>
inline void BulkTileBase(double * y, const ColumnSteps & cs, int i) {
  double v[2 * NV];
  for (int u = 0; u < 2 * NV; ++u) v[u] = y[i + u];
  for (int s = 0; s < cs.count; ++s) {
    const double t = cs.t[s];
    const double * const x = cs.x[s] + i;
    for (int u = 0; u < 2 * NV; ++u) v[u] += t * x[u];
  }
  for (int u = 0; u < 2 * NV; ++u) y[i + u] = v[u];
}

inline void BulkRestBase(double * y, const ColumnSteps & cs, int i, int i1) {
  for (; i < i1; ++i) {
    double v = y[i];
    for (int s = 0; s < cs.count; ++s) v += cs.t[s] * cs.x[s][i];
    y[i] = v;
  }
}

#endif

// Rows k0 + steps .. n - 1 of the block: y(i) += t a(i, k), over the steps k in order,
// sixteen rows at a time held in registers over all the steps.
void BulkBase(const GeGroup & g, double * a, int lda, int n, int k0, int j0) {
  ColumnSteps steps[kGeMaxColumns];
  CollectSteps(g, a, lda, k0, steps);
  for (int i0 = k0 + g.steps; i0 < n; i0 += kBulkStrip) {
    const int i1 = n - i0 > kBulkStrip ? i0 + kBulkStrip : n;
    for (int c = 0; c < g.cols; ++c) {
      const ColumnSteps & cs = steps[c];
      if (cs.count == 0) continue;
      double * const y = Col(a, lda, j0 + c);
      int i = i0;
      for (; i + 16 <= i1; i += 16) BulkTileBase<8>(y, cs, i);
      BulkRestBase(y, cs, i, i1);
    }
  }
}

#if ZR_SIMD_X86

// ---------------------------------------------------------------------------------------
// AVX2: the replay four columns at a time, a blend keeping the lanes whose multiplier is
// 0.0; the bulk in tiles of up to eight vectors of four rows, the last one masked.

__attribute__((target("avx2"))) void UpdateRowsAvx2(GeGroup & g, int q) {
  const double * const tq = g.t[q];
  for (int c = 0; c < g.width; c += 4) {
    const __m256d tv = _mm256_loadu_pd(tq + c);
    const __m256d nz = _mm256_cmp_pd(tv, _mm256_setzero_pd(), _CMP_NEQ_UQ);
    for (int r = q + 1; r < g.rows; ++r) {
      double * const b = g.buf[r] + c;
      const __m256d bv = _mm256_loadu_pd(b);
      const __m256d sum = _mm256_add_pd(bv, _mm256_mul_pd(tv, _mm256_set1_pd(g.x[q][r])));
      _mm256_storeu_pd(b, _mm256_blendv_pd(bv, sum, nz));
    }
  }
}

// NV vectors of rows from row i of y, the last one limited to the lanes of last.
template <int NV>
__attribute__((target("avx2"))) inline void BulkTileAvx2(double * y, const ColumnSteps & cs, int i,
                                                         __m256i last) {
  __m256d v[NV];
  for (int u = 0; u + 1 < NV; ++u) v[u] = _mm256_loadu_pd(y + i + 4 * u);
  v[NV - 1] = _mm256_maskload_pd(y + i + 4 * (NV - 1), last);
  for (int s = 0; s < cs.count; ++s) {
    const __m256d t = _mm256_set1_pd(cs.t[s]);
    const double * const x = cs.x[s] + i;
    for (int u = 0; u + 1 < NV; ++u)
      v[u] = _mm256_add_pd(v[u], _mm256_mul_pd(t, _mm256_loadu_pd(x + 4 * u)));
    v[NV - 1] =
        _mm256_add_pd(v[NV - 1], _mm256_mul_pd(t, _mm256_maskload_pd(x + 4 * (NV - 1), last)));
  }
  for (int u = 0; u + 1 < NV; ++u) _mm256_storeu_pd(y + i + 4 * u, v[u]);
  _mm256_maskstore_pd(y + i + 4 * (NV - 1), last, v[NV - 1]);
}

__attribute__((target("avx2"))) void BulkAvx2(const GeGroup & g, double * a, int lda, int n, int k0,
                                              int j0) {
  using Tile = void (*)(double *, const ColumnSteps &, int, __m256i);
  static constexpr Tile kTiles[] = {nullptr,         BulkTileAvx2<1>, BulkTileAvx2<2>,
                                    BulkTileAvx2<3>, BulkTileAvx2<4>, BulkTileAvx2<5>,
                                    BulkTileAvx2<6>, BulkTileAvx2<7>, BulkTileAvx2<8>};
  ColumnSteps steps[kGeMaxColumns];
  CollectSteps(g, a, lda, k0, steps);
  const __m256i all = _mm256_set1_epi64x(-1);
  for (int i0 = k0 + g.steps; i0 < n; i0 += kBulkStrip) {
    const int i1 = n - i0 > kBulkStrip ? i0 + kBulkStrip : n;
    for (int c = 0; c < g.cols; ++c) {
      const ColumnSteps & cs = steps[c];
      if (cs.count == 0) continue;
      double * const y = Col(a, lda, j0 + c);
      int i = i0;
      for (; i + 32 <= i1; i += 32) BulkTileAvx2<8>(y, cs, i, all);
      const int rest = i1 - i;
      if (rest == 0) continue;
      const __m256i last = rest % 4 == 0 ? all
                                         : _mm256_cmpgt_epi64(_mm256_set1_epi64x(rest % 4),
                                                              _mm256_setr_epi64x(0, 1, 2, 3));
      kTiles[(rest + 3) / 4](y, cs, i, last);
    }
  }
}

// ---------------------------------------------------------------------------------------
// AVX-512F: as AVX2 with eight lanes, the replay's skipped lanes kept by a masked add.

__attribute__((target("avx512f"))) void UpdateRowsAvx512(GeGroup & g, int q) {
  const double * const tq = g.t[q];
  for (int c = 0; c < g.width; c += 8) {
    const __m512d tv = _mm512_loadu_pd(tq + c);
    const __mmask8 nz = _mm512_cmp_pd_mask(tv, _mm512_setzero_pd(), _CMP_NEQ_UQ);
    for (int r = q + 1; r < g.rows; ++r) {
      double * const b = g.buf[r] + c;
      const __m512d bv = _mm512_loadu_pd(b);
      const __m512d prod = _mm512_mul_pd(tv, _mm512_set1_pd(g.x[q][r]));
      _mm512_storeu_pd(b, _mm512_mask_add_pd(bv, nz, bv, prod));
    }
  }
}

template <int NV>
__attribute__((target("avx512f"))) inline void BulkTileAvx512(double * y, const ColumnSteps & cs,
                                                              int i, __mmask8 last) {
  __m512d v[NV];
  for (int u = 0; u + 1 < NV; ++u) v[u] = _mm512_loadu_pd(y + i + 8 * u);
  v[NV - 1] = _mm512_maskz_loadu_pd(last, y + i + 8 * (NV - 1));
  for (int s = 0; s < cs.count; ++s) {
    const __m512d t = _mm512_set1_pd(cs.t[s]);
    const double * const x = cs.x[s] + i;
    for (int u = 0; u + 1 < NV; ++u)
      v[u] = _mm512_add_pd(v[u], _mm512_mul_pd(t, _mm512_loadu_pd(x + 8 * u)));
    v[NV - 1] =
        _mm512_add_pd(v[NV - 1], _mm512_mul_pd(t, _mm512_maskz_loadu_pd(last, x + 8 * (NV - 1))));
  }
  for (int u = 0; u + 1 < NV; ++u) _mm512_storeu_pd(y + i + 8 * u, v[u]);
  _mm512_mask_storeu_pd(y + i + 8 * (NV - 1), last, v[NV - 1]);
}

__attribute__((target("avx512f"))) void BulkAvx512(const GeGroup & g, double * a, int lda, int n,
                                                   int k0, int j0) {
  using Tile = void (*)(double *, const ColumnSteps &, int, __mmask8);
  static constexpr Tile kTiles[] = {nullptr,           BulkTileAvx512<1>, BulkTileAvx512<2>,
                                    BulkTileAvx512<3>, BulkTileAvx512<4>, BulkTileAvx512<5>,
                                    BulkTileAvx512<6>, BulkTileAvx512<7>, BulkTileAvx512<8>};
  ColumnSteps steps[kGeMaxColumns];
  CollectSteps(g, a, lda, k0, steps);
  constexpr __mmask8 kAll = 0xFF;
  for (int i0 = k0 + g.steps; i0 < n; i0 += kBulkStrip) {
    const int i1 = n - i0 > kBulkStrip ? i0 + kBulkStrip : n;
    for (int c = 0; c < g.cols; ++c) {
      const ColumnSteps & cs = steps[c];
      if (cs.count == 0) continue;
      double * const y = Col(a, lda, j0 + c);
      int i = i0;
      for (; i + 64 <= i1; i += 64) BulkTileAvx512<8>(y, cs, i, kAll);
      const int rest = i1 - i;
      if (rest == 0) continue;
      const __mmask8 last = rest % 8 == 0 ? kAll : static_cast<__mmask8>((1u << (rest % 8)) - 1u);
      kTiles[(rest + 7) / 8](y, cs, i, last);
    }
  }
}

#endif  // ZR_SIMD_X86

}  // namespace

void ApplyGeSteps(double * a, int lda, int n, const int * ipvt, int k0, int steps, int j0,
                  int count) {
  GeGroup g;
  Gather(g, a, lda, ipvt, k0 - 1, steps, j0 - 1, count);
#if ZR_SIMD_X86
  switch (ActiveSimdPath()) {
    case SimdPath::kAvx512:
      Replay<UpdateRowsAvx512>(g);
      BulkAvx512(g, a, lda, n, k0 - 1, j0 - 1);
      Scatter(g, a, lda, j0 - 1);
      return;
    case SimdPath::kAvx2:
      Replay<UpdateRowsAvx2>(g);
      BulkAvx2(g, a, lda, n, k0 - 1, j0 - 1);
      Scatter(g, a, lda, j0 - 1);
      return;
    case SimdPath::kBaseline:
      break;
  }
#endif
  Replay<UpdateRowsBase>(g);
  BulkBase(g, a, lda, n, k0 - 1, j0 - 1);
  Scatter(g, a, lda, j0 - 1);
}

}  // namespace matrix_detail
}  // namespace ZRMath_920
