// The packed-triangle loops of packed_kernels.h in three builds: the baseline (SSE2 on
// x86-64), AVX2 and AVX-512F, each picked per call by the active path. The wide builds use
// separate multiplies and adds in the baseline's order (never a fused multiply-add), so
// every element is rounded exactly as the baseline rounds it; tails are finished by
// narrower steps, or masked lanes, doing the same operations.
#include "zrcommon920r/math/matrix/detail/packed_kernels.h"

#include <cstddef>
#include <cstdint>

#include "zrcommon920r/math/matrix/detail/simd.h"

#if ZR_SIMD_X86
#include <immintrin.h>
#endif

namespace ZRMath_920 {
namespace matrix_detail {

namespace {

// Offset of row i in a packed triangle, in size_t so that no order can overflow it.
inline std::size_t RowStart(int i) {
  return static_cast<std::size_t>(i) * static_cast<std::size_t>(i + 1) / 2;
}

// ---------------------------------------------------------------------------------------
// Baseline: the loops as first written, which every wider path matches bit for bit.

// a += w x x' row by row; a zero x_i skips row i.
void AddOuterBase(double * a, const double * x, int n, double w) {
  for (int i = 0; i < n; ++i) {
    const double xi = x[i];
    if (xi == 0.0) continue;
    const double wxi = w * xi;
    double * const row = a + RowStart(i);
    for (int j = 0; j <= i; ++j) row[j] += wxi * x[j];
  }
}

// a += b element by element.
void AddBase(double * a, const double * b, std::size_t count) {
  for (std::size_t k = 0; k < count; ++k) a[k] += b[k];
}

// The new means mn = (mo - m) f + m, stored over m, and their distances dm = mn - m and
// dmo = mn - mo. All are found before the pass over the triangle: a vector load of dm just
// after a scalar store into it would wait for the store to retire.
inline void MergeMeans(double * m, const double * mo, double * dm, double * dmo, int p, double f) {
  for (int i = 0; i < p; ++i) {
    const double mi = m[i];
    const double moi = mo[i];
    const double mn = (moi - mi) * f + mi;
    dm[i] = mn - mi;
    dmo[i] = mn - moi;
    m[i] = mn;
  }
}

// The merge's pass over the p-row triangle, one element after another.
inline void MergeRows(double * a, const double * ao, const double * dm, const double * dmo, int p,
                      double n, double no) {
  for (int i = 0; i < p; ++i) {
    const double ai = dm[i] * n;
    const double bi = dmo[i] * no;
    const std::size_t k = RowStart(i);
    for (int j = 0; j <= i; ++j) a[k + j] += ((dm[j] * ai) + ao[k + j]) + (dmo[j] * bi);
  }
}

// The merge of MergeCorrectedPacked, one row of the triangle after another.
void MergeCorrectedBase(double * a, const double * ao, double * m, const double * mo, double * dm,
                        double * dmo, int p, double n, double no, double f) {
  MergeMeans(m, mo, dm, dmo, p, f);
  MergeRows(a, ao, dm, dmo, p, n, no);
}

// a += sum of (d_r d_r') w_r, one row r of dev after another over the whole triangle.
void AddProductsBase(double * a, const double * dev, std::size_t stride, const double * w, int rows,
                     int p) {
  for (int r = 0; r < rows; ++r) {
    const double * const d = dev + stride * static_cast<std::size_t>(r);
    std::size_t k = 0;
    if (w != nullptr) {
      const double wr = w[r];
      for (int i = 0; i < p; ++i) {
        const double di = d[i];
        for (int j = 0; j <= i; ++j) a[k + j] += (d[j] * di) * wr;
        k += static_cast<std::size_t>(i) + 1;
      }
    } else {
      for (int i = 0; i < p; ++i) {
        const double di = d[i];
        for (int j = 0; j <= i; ++j) a[k + j] += d[j] * di;
        k += static_cast<std::size_t>(i) + 1;
      }
    }
  }
}

// The saved pivots q = 0 .. count - 1 on row[jBeg .. jEnd), four to a pass over the
// stretch, each element adding its terms one by one in pivot order.
void AddSavedBase(double * row, int jBeg, int jEnd, const double * f, const double * c,
                  std::size_t s, int count) {
  int q = 0;
  for (; q + 4 <= count; q += 4) {
    const std::size_t o = static_cast<std::size_t>(q) * s;
    const double f0 = f[o], f1 = f[o + s], f2 = f[o + 2 * s], f3 = f[o + 3 * s];
    const double * c0 = c + o;
    const double * c1 = c0 + s;
    const double * c2 = c1 + s;
    const double * c3 = c2 + s;
    for (int j = jBeg; j < jEnd; ++j) {
      double x = row[j];
      x += f0 * c0[j];
      x += f1 * c1[j];
      x += f2 * c2[j];
      x += f3 * c3[j];
      row[j] = x;
    }
  }
  for (; q < count; ++q) {
    const std::size_t o = static_cast<std::size_t>(q) * s;
    const double f0 = f[o];
    const double * c0 = c + o;
    for (int j = jBeg; j < jEnd; ++j) row[j] += f0 * c0[j];
  }
}

// The row updates one source row at a time, four rows to a pass over the stretch.
void AddRowUpdatesBase(double * const * rows, int nrows, int jBeg, int jEnd,
                       const double * const * cols, const double * f, int count) {
  for (int q = 0; q < count; ++q) {
    const double * const col = cols[q];
    const double * const fq = f + 8 * q;
    int b = 0;
    for (; b + 4 <= nrows; b += 4) {
      double * const r0 = rows[b];
      double * const r1 = rows[b + 1];
      double * const r2 = rows[b + 2];
      double * const r3 = rows[b + 3];
      const double f0 = fq[b], f1 = fq[b + 1], f2 = fq[b + 2], f3 = fq[b + 3];
      for (int j = jBeg; j < jEnd; ++j) {
        const double c = col[j];
        r0[j] += c * f0;
        r1[j] += c * f1;
        r2[j] += c * f2;
        r3[j] += c * f3;
      }
    }
    for (; b < nrows; ++b)
      for (int j = jBeg; j < jEnd; ++j) rows[b][j] += col[j] * fq[b];
  }
}

// The 8 x 8 dot products as four 4 x 4 tiles of scalar sums, reading the rows themselves.
void DotTileBase(const double * const * rows, const double * const * c, int kEnd, double * s) {
  for (int rg = 0; rg < 8; rg += 4) {
    for (int cg = 0; cg < 8; cg += 4) {
      double acc[4][4] = {};
      for (int k = 0; k < kEnd; ++k) {
        for (int ii = 0; ii < 4; ++ii) {
          const double li = rows[rg + ii][k];
          for (int jj = 0; jj < 4; ++jj) acc[ii][jj] += li * c[cg + jj][k];
        }
      }
      for (int jj = 0; jj < 4; ++jj)
        for (int ii = 0; ii < 4; ++ii) s[8 * (cg + jj) + rg + ii] = acc[ii][jj];
    }
  }
}

#if ZR_SIMD_X86

// ---------------------------------------------------------------------------------------
// AVX2: four lanes, then two, then one. The tails write exactly their own elements: a
// masked store reaching into the next row would stall that row's first loads.

// row[j] += s x[j] for the few elements j .. len - 1 left by a wider loop.
__attribute__((target("avx2"))) inline void AddScaledTail(double * row, const double * x, double s,
                                                          int j, int len) {
  for (; j + 4 <= len; j += 4) {
    const __m256d p0 = _mm256_mul_pd(_mm256_set1_pd(s), _mm256_loadu_pd(x + j));
    _mm256_storeu_pd(row + j, _mm256_add_pd(_mm256_loadu_pd(row + j), p0));
  }
  if (j + 2 <= len) {
    const __m128d p0 = _mm_mul_pd(_mm_set1_pd(s), _mm_loadu_pd(x + j));
    _mm_storeu_pd(row + j, _mm_add_pd(_mm_loadu_pd(row + j), p0));
    j += 2;
  }
  if (j < len) row[j] += s * x[j];
}

// The merge's row[j] += ((dm[j] ai) + rowo[j]) + (dmo[j] bi) for the few elements
// j .. len - 1 left by a wider loop.
__attribute__((target("avx2"))) inline void MergeTail(double * row, const double * rowo,
                                                      const double * dm, const double * dmo,
                                                      double ai, double bi, int j, int len) {
  for (; j + 4 <= len; j += 4) {
    const __m256d t = _mm256_add_pd(_mm256_mul_pd(_mm256_loadu_pd(dm + j), _mm256_set1_pd(ai)),
                                    _mm256_loadu_pd(rowo + j));
    const __m256d u = _mm256_add_pd(t, _mm256_mul_pd(_mm256_loadu_pd(dmo + j), _mm256_set1_pd(bi)));
    _mm256_storeu_pd(row + j, _mm256_add_pd(_mm256_loadu_pd(row + j), u));
  }
  for (; j < len; ++j) row[j] += ((dm[j] * ai) + rowo[j]) + (dmo[j] * bi);
}

__attribute__((target("avx2"))) void AddOuterAvx2(double * a, const double * x, int n, double w) {
  for (int i = 0; i < n; ++i) {
    const double xi = x[i];
    if (xi == 0.0) continue;
    const double wxi = w * xi;
    double * const row = a + RowStart(i);
    const int len = i + 1;
    const __m256d s4 = _mm256_set1_pd(wxi);
    int j = 0;
    for (; j + 8 <= len; j += 8) {
      const __m256d p0 = _mm256_mul_pd(s4, _mm256_loadu_pd(x + j));
      const __m256d p1 = _mm256_mul_pd(s4, _mm256_loadu_pd(x + j + 4));
      _mm256_storeu_pd(row + j, _mm256_add_pd(_mm256_loadu_pd(row + j), p0));
      _mm256_storeu_pd(row + j + 4, _mm256_add_pd(_mm256_loadu_pd(row + j + 4), p1));
    }
    AddScaledTail(row, x, wxi, j, len);
  }
}

__attribute__((target("avx2"))) void AddAvx2(double * a, const double * b, std::size_t count) {
  std::size_t k = 0;
  for (; k + 4 <= count; k += 4)
    _mm256_storeu_pd(a + k, _mm256_add_pd(_mm256_loadu_pd(a + k), _mm256_loadu_pd(b + k)));
  for (; k < count; ++k) a[k] += b[k];
}

__attribute__((target("avx2"))) void MergeCorrectedAvx2(double * a, const double * ao, double * m,
                                                        const double * mo, double * dm,
                                                        double * dmo, int p, double n, double no,
                                                        double f) {
  MergeMeans(m, mo, dm, dmo, p, f);
  for (int i = 0; i < p; ++i) {
    const double ai = dm[i] * n;
    const double bi = dmo[i] * no;
    double * const row = a + RowStart(i);
    const double * const rowo = ao + RowStart(i);
    const int len = i + 1;
    const __m256d a4 = _mm256_set1_pd(ai);
    const __m256d b4 = _mm256_set1_pd(bi);
    int j = 0;
    for (; j + 4 <= len; j += 4) {
      const __m256d t =
          _mm256_add_pd(_mm256_mul_pd(_mm256_loadu_pd(dm + j), a4), _mm256_loadu_pd(rowo + j));
      const __m256d u = _mm256_add_pd(t, _mm256_mul_pd(_mm256_loadu_pd(dmo + j), b4));
      _mm256_storeu_pd(row + j, _mm256_add_pd(_mm256_loadu_pd(row + j), u));
    }
    MergeTail(row, rowo, dm, dmo, ai, bi, j, len);
  }
}

// NR rows by NV vectors of four columns from column j through all the saved pivots, in
// registers: each pivot's column vector serves every row of the tile.
template <int NR, int NV>
__attribute__((target("avx2"))) inline void SavedTileAvx2(double * const * rows, int j,
                                                          const double * f, const double * c,
                                                          std::size_t s, int count) {
  __m256d x[NR][NV];
  for (int r = 0; r < NR; ++r)
    for (int v = 0; v < NV; ++v) x[r][v] = _mm256_loadu_pd(rows[r] + j + 4 * v);
  for (int q = 0; q < count; ++q) {
    const std::size_t o = static_cast<std::size_t>(q) * s;
    __m256d cv[NV];
    for (int v = 0; v < NV; ++v) cv[v] = _mm256_loadu_pd(c + o + j + 4 * v);
    for (int r = 0; r < NR; ++r) {
      const __m256d fr = _mm256_set1_pd(f[o + r]);
      for (int v = 0; v < NV; ++v) x[r][v] = _mm256_add_pd(x[r][v], _mm256_mul_pd(fr, cv[v]));
    }
  }
  for (int r = 0; r < NR; ++r)
    for (int v = 0; v < NV; ++v) _mm256_storeu_pd(rows[r] + j + 4 * v, x[r][v]);
}

__attribute__((target("avx2"))) void AddSaved4Avx2(double * const * rows, int jBeg, int jEnd,
                                                   const double * f, const double * c,
                                                   std::size_t s, int count) {
  int j = jBeg;
  for (; j + 8 <= jEnd; j += 8) SavedTileAvx2<4, 2>(rows, j, f, c, s, count);
  for (; j + 4 <= jEnd; j += 4) SavedTileAvx2<4, 1>(rows, j, f, c, s, count);
  for (int r = 0; r < 4; ++r) AddSavedBase(rows[r], j, jEnd, f + r, c, s, count);
}

// Rows b0 .. b0 + NR - 1 by NV vectors of four columns from j through all count updates.
template <int NR, int NV>
__attribute__((target("avx2"))) inline void RowUpdateTileAvx2(double * const * rows, int b0, int j,
                                                              const double * const * cols,
                                                              const double * f, int count) {
  __m256d x[NR][NV];
  for (int r = 0; r < NR; ++r)
    for (int v = 0; v < NV; ++v) x[r][v] = _mm256_loadu_pd(rows[b0 + r] + j + 4 * v);
  for (int q = 0; q < count; ++q) {
    __m256d cv[NV];
    for (int v = 0; v < NV; ++v) cv[v] = _mm256_loadu_pd(cols[q] + j + 4 * v);
    for (int r = 0; r < NR; ++r) {
      const __m256d fr = _mm256_set1_pd(f[8 * q + b0 + r]);
      for (int v = 0; v < NV; ++v) x[r][v] = _mm256_add_pd(x[r][v], _mm256_mul_pd(cv[v], fr));
    }
  }
  for (int r = 0; r < NR; ++r)
    for (int v = 0; v < NV; ++v) _mm256_storeu_pd(rows[b0 + r] + j + 4 * v, x[r][v]);
}

__attribute__((target("avx2"))) void AddRowUpdatesAvx2(double * const * rows, int jEnd,
                                                       const double * const * cols,
                                                       const double * f, int count) {
  int j = 0;
  for (; j + 8 <= jEnd; j += 8) {
    RowUpdateTileAvx2<4, 2>(rows, 0, j, cols, f, count);
    RowUpdateTileAvx2<4, 2>(rows, 4, j, cols, f, count);
  }
  AddRowUpdatesBase(rows, 8, j, jEnd, cols, f, count);
}

// The 8 x 8 dot products four columns at a time, the eight rows in two vectors.
__attribute__((target("avx2"))) void DotTileAvx2(const double * p, const double * const * c,
                                                 int kEnd, double * s) {
  for (int cg = 0; cg < 8; cg += 4) {
    __m256d acc[4][2];
    for (int jj = 0; jj < 4; ++jj) acc[jj][0] = acc[jj][1] = _mm256_setzero_pd();
    for (int k = 0; k < kEnd; ++k) {
      const __m256d p0 = _mm256_loadu_pd(p + 8 * k), p1 = _mm256_loadu_pd(p + 8 * k + 4);
      for (int jj = 0; jj < 4; ++jj) {
        const __m256d ck = _mm256_set1_pd(c[cg + jj][k]);
        acc[jj][0] = _mm256_add_pd(acc[jj][0], _mm256_mul_pd(p0, ck));
        acc[jj][1] = _mm256_add_pd(acc[jj][1], _mm256_mul_pd(p1, ck));
      }
    }
    for (int jj = 0; jj < 4; ++jj) {
      _mm256_storeu_pd(s + 8 * (cg + jj), acc[jj][0]);
      _mm256_storeu_pd(s + 8 * (cg + jj) + 4, acc[jj][1]);
    }
  }
}

// Tile of triangle row i: NC vectors of four from column j, held in registers
// while every row of dev adds its product.
template <int NC>
__attribute__((target("avx2"))) inline void ProductTileAvx2(double * arow, const double * dev,
                                                            std::size_t stride, const double * w,
                                                            int rows, int i, int j) {
  __m256d c[NC];
  for (int t = 0; t < NC; ++t) c[t] = _mm256_loadu_pd(arow + j + 4 * t);
  const double * d = dev;
  for (int r = 0; r < rows; ++r, d += stride) {
    const __m256d di = _mm256_set1_pd(d[i]);
    if (w != nullptr) {
      const __m256d wr = _mm256_set1_pd(w[r]);
      for (int t = 0; t < NC; ++t)
        c[t] = _mm256_add_pd(c[t],
                             _mm256_mul_pd(_mm256_mul_pd(_mm256_loadu_pd(d + j + 4 * t), di), wr));
    } else {
      for (int t = 0; t < NC; ++t)
        c[t] = _mm256_add_pd(c[t], _mm256_mul_pd(_mm256_loadu_pd(d + j + 4 * t), di));
    }
  }
  for (int t = 0; t < NC; ++t) _mm256_storeu_pd(arow + j + 4 * t, c[t]);
}

// The last NF * 4 + rem (rem < 4) elements of triangle row i from column j: NF full
// vectors and one of rem masked lanes, summed in the same pass over the rows.
template <int NF>
__attribute__((target("avx2"))) inline void ProductRestAvx2(double * arow, const double * dev,
                                                            std::size_t stride, const double * w,
                                                            int rows, int i, int j, int rem) {
  const __m256i lanes = _mm256_cmpgt_epi64(_mm256_set1_epi64x(rem), _mm256_setr_epi64x(0, 1, 2, 3));
  double * const last = arow + j + 4 * NF;
  __m256d c[NF + 1];
  for (int t = 0; t < NF; ++t) c[t] = _mm256_loadu_pd(arow + j + 4 * t);
  c[NF] = _mm256_maskload_pd(last, lanes);
  const double * d = dev;
  for (int r = 0; r < rows; ++r, d += stride) {
    const __m256d di = _mm256_set1_pd(d[i]);
    __m256d t[NF + 1];
    for (int u = 0; u < NF; ++u) t[u] = _mm256_mul_pd(_mm256_loadu_pd(d + j + 4 * u), di);
    t[NF] = _mm256_mul_pd(_mm256_maskload_pd(d + j + 4 * NF, lanes), di);
    if (w != nullptr) {
      const __m256d wr = _mm256_set1_pd(w[r]);
      for (int u = 0; u <= NF; ++u) t[u] = _mm256_mul_pd(t[u], wr);
    }
    for (int u = 0; u <= NF; ++u) c[u] = _mm256_add_pd(c[u], t[u]);
  }
  for (int t = 0; t < NF; ++t) _mm256_storeu_pd(arow + j + 4 * t, c[t]);
  _mm256_maskstore_pd(last, lanes, c[NF]);
}

// Triangle row i from column j to its end, tiles of eight vectors first.
__attribute__((target("avx2"))) inline void ProductRowAvx2(double * a, const double * dev,
                                                           std::size_t stride, const double * w,
                                                           int rows, int i, int j) {
  double * const arow = a + RowStart(i);
  const int len = i + 1;
  for (; j + 32 <= len; j += 32) ProductTileAvx2<8>(arow, dev, stride, w, rows, i, j);
  if (j + 16 <= len) {
    ProductTileAvx2<4>(arow, dev, stride, w, rows, i, j);
    j += 16;
  }
  const int rest = len - j;  // below 16
  switch (rest % 4 == 0 ? rest / 4 : 4 + rest / 4) {
    case 1:
      ProductTileAvx2<1>(arow, dev, stride, w, rows, i, j);
      break;
    case 2:
      ProductTileAvx2<2>(arow, dev, stride, w, rows, i, j);
      break;
    case 3:
      ProductTileAvx2<3>(arow, dev, stride, w, rows, i, j);
      break;
    case 4:
      ProductRestAvx2<0>(arow, dev, stride, w, rows, i, j, rest % 4);
      break;
    case 5:
      ProductRestAvx2<1>(arow, dev, stride, w, rows, i, j, rest % 4);
      break;
    case 6:
      ProductRestAvx2<2>(arow, dev, stride, w, rows, i, j, rest % 4);
      break;
    case 7:
      ProductRestAvx2<3>(arow, dev, stride, w, rows, i, j, rest % 4);
      break;
    default:
      break;
  }
}

// Triangle rows i0 .. i0 + NR - 1 by NC vectors of four from column j (columns all the
// rows have), held in registers while every row of dev adds its products.
template <int NR, int NC>
__attribute__((target("avx2"))) inline void ProductRowsAvx2(double * a, const double * dev,
                                                            std::size_t stride, const double * w,
                                                            int rows, int i0, int j) {
  double * arow[NR];
  __m256d c[NR][NC];
  for (int t = 0; t < NR; ++t) {
    arow[t] = a + RowStart(i0 + t) + j;
    for (int v = 0; v < NC; ++v) c[t][v] = _mm256_loadu_pd(arow[t] + 4 * v);
  }
  const double * d = dev;
  for (int r = 0; r < rows; ++r, d += stride) {
    __m256d dj[NC];
    for (int v = 0; v < NC; ++v) dj[v] = _mm256_loadu_pd(d + j + 4 * v);
    for (int t = 0; t < NR; ++t) {
      const __m256d di = _mm256_set1_pd(d[i0 + t]);
      if (w != nullptr) {
        const __m256d wr = _mm256_set1_pd(w[r]);
        for (int v = 0; v < NC; ++v)
          c[t][v] = _mm256_add_pd(c[t][v], _mm256_mul_pd(_mm256_mul_pd(dj[v], di), wr));
      } else {
        for (int v = 0; v < NC; ++v) c[t][v] = _mm256_add_pd(c[t][v], _mm256_mul_pd(dj[v], di));
      }
    }
  }
  for (int t = 0; t < NR; ++t)
    for (int v = 0; v < NC; ++v) _mm256_storeu_pd(arow[t] + 4 * v, c[t][v]);
}

// Four triangle rows at a time over the whole vectors they share, then each row's rest.
__attribute__((target("avx2"))) void AddProductsAvx2(double * a, const double * dev,
                                                     std::size_t stride, const double * w, int rows,
                                                     int p) {
  int i = 0;
  for (; i + 4 <= p; i += 4) {
    const int shared = (i + 1) / 4 * 4;
    int j = 0;
    for (; j + 8 <= shared; j += 8) ProductRowsAvx2<4, 2>(a, dev, stride, w, rows, i, j);
    for (; j + 4 <= shared; j += 4) ProductRowsAvx2<4, 1>(a, dev, stride, w, rows, i, j);
    for (int t = 0; t < 4; ++t) ProductRowAvx2(a, dev, stride, w, rows, i + t, j);
  }
  for (; i < p; ++i) ProductRowAvx2(a, dev, stride, w, rows, i, 0);
}

// ---------------------------------------------------------------------------------------
// AVX-512F: eight lanes, the tails as in AVX2 except in the block products, which mask
// them: there the next row is not loaded until a whole block of rows has been added.

// Row of the triangle: row[j] += s x[j] for j < len, eight lanes at a time.
__attribute__((target("avx512f"))) inline void AddScaledRowAvx512(double * row, const double * x,
                                                                  double s, int len) {
  const __m512d s8 = _mm512_set1_pd(s);
  int j = 0;
  for (; j + 8 <= len; j += 8) {
    const __m512d p0 = _mm512_mul_pd(s8, _mm512_loadu_pd(x + j));
    _mm512_storeu_pd(row + j, _mm512_add_pd(_mm512_loadu_pd(row + j), p0));
  }
  AddScaledTail(row, x, s, j, len);
}

__attribute__((target("avx512f"))) void AddOuterAvx512(double * a, const double * x, int n,
                                                       double w) {
  int i = 0;
  // Rows in pairs, each load of x serving both; a pair with a zero x_i goes one row at a time.
  for (; i + 2 <= n; i += 2) {
    double * const row0 = a + RowStart(i);
    double * const row1 = row0 + i + 1;
    if (x[i] == 0.0 || x[i + 1] == 0.0) {
      if (x[i] != 0.0) AddScaledRowAvx512(row0, x, w * x[i], i + 1);
      if (x[i + 1] != 0.0) AddScaledRowAvx512(row1, x, w * x[i + 1], i + 2);
      continue;
    }
    const double s0 = w * x[i], s1 = w * x[i + 1];
    const __m512d v0 = _mm512_set1_pd(s0), v1 = _mm512_set1_pd(s1);
    const int len = i + 1;
    int j = 0;
    for (; j + 8 <= len; j += 8) {
      const __m512d xv = _mm512_loadu_pd(x + j);
      const __m512d p0 = _mm512_mul_pd(v0, xv);
      const __m512d p1 = _mm512_mul_pd(v1, xv);
      _mm512_storeu_pd(row0 + j, _mm512_add_pd(_mm512_loadu_pd(row0 + j), p0));
      _mm512_storeu_pd(row1 + j, _mm512_add_pd(_mm512_loadu_pd(row1 + j), p1));
    }
    AddScaledTail(row0, x, s0, j, len);
    AddScaledTail(row1, x, s1, j, len + 1);
  }
  if (i < n && x[i] != 0.0) AddScaledRowAvx512(a + RowStart(i), x, w * x[i], i + 1);
}

__attribute__((target("avx512f"))) void AddAvx512(double * a, const double * b, std::size_t count) {
  std::size_t k = 0;
  for (; k + 8 <= count; k += 8)
    _mm512_storeu_pd(a + k, _mm512_add_pd(_mm512_loadu_pd(a + k), _mm512_loadu_pd(b + k)));
  for (; k < count; ++k) a[k] += b[k];
}

// Row and column of each of the first 32 elements of a packed triangle.
alignas(64) constexpr std::int64_t kHeadRow[32] = {0, 1, 1, 2, 2, 2, 3, 3, 3, 3, 4, 4, 4, 4, 4, 5,
                                                   5, 5, 5, 5, 5, 6, 6, 6, 6, 6, 6, 6, 7, 7, 7, 7};
alignas(64) constexpr std::int64_t kHeadCol[32] = {0, 0, 1, 0, 1, 2, 0, 1, 2, 3, 0, 1, 2, 3, 4, 0,
                                                   1, 2, 3, 4, 5, 0, 1, 2, 3, 4, 5, 6, 0, 1, 2, 3};

// Lane L of the result is v's lane index[L] (the all-lanes mask spares GCC's warning on
// the unmasked form's undefined source).
__attribute__((target("avx512f"))) inline __m512d Pick(__m512i index, __m512d v) {
  return _mm512_mask_permutexvar_pd(v, 0xFF, index, v);
}

// The merge as one stream of vectors of eight over the whole triangle rather than row by
// row: a vector that runs past the end of row i takes its first lanes from row i and the
// rest from the start of row i + 1, with each lane's own dm_j, dmo_j and row factors, so
// no row ends in a scalar tail. The first 32 elements (the rows shorter than a vector)
// take their lanes' values by index from the first eight of dm and dmo, which p > 7 makes
// one load each; the few elements up to the next 64-byte boundary of a are done one at a
// time, and the stream runs from there (loads and stores that split a cache line cost
// twice as much).
__attribute__((target("avx512f"))) void MergeCorrectedAvx512(double * a, const double * ao,
                                                             double * m, const double * mo,
                                                             double * dm, double * dmo, int p,
                                                             double n, double no, double f) {
  MergeMeans(m, mo, dm, dmo, p, f);
  if (p < 8) {
    MergeRows(a, ao, dm, dmo, p, n, no);
    return;
  }
  const __m512d dmHead = _mm512_loadu_pd(dm), dmoHead = _mm512_loadu_pd(dmo);
  // Elements 0 .. 31 (rows 0 .. 6 and four of row 7) as four vectors whose lanes pick
  // their dm_j, dmo_j and row factors from the first eight by index.
  for (int v = 0; v < 4; ++v) {
    const __m512i rows = _mm512_loadu_si512(kHeadRow + 8 * v);
    const __m512i cols = _mm512_loadu_si512(kHeadCol + 8 * v);
    const __m512d av = _mm512_mul_pd(Pick(rows, dmHead), _mm512_set1_pd(n));
    const __m512d bv = _mm512_mul_pd(Pick(rows, dmoHead), _mm512_set1_pd(no));
    const __m512d t =
        _mm512_add_pd(_mm512_mul_pd(Pick(cols, dmHead), av), _mm512_loadu_pd(ao + 8 * v));
    const __m512d u = _mm512_add_pd(t, _mm512_mul_pd(Pick(cols, dmoHead), bv));
    _mm512_storeu_pd(a + 8 * v, _mm512_add_pd(_mm512_loadu_pd(a + 8 * v), u));
  }
  int i = 7, j = 4;
  std::size_t k = 32;
  double ai = dm[i] * n, bi = dmo[i] * no;
  const std::uintptr_t at = reinterpret_cast<std::uintptr_t>(a + k);
  const int peel = at % sizeof(double) != 0 ? 0 : static_cast<int>((64 - at % 64) % 64 / 8);
  for (int q = 0; q < peel; ++q, ++k) {
    a[k] += ((dm[j] * ai) + ao[k]) + (dmo[j] * bi);
    if (++j > i) {
      if (++i == p) return;
      j = 0;
      ai = dm[i] * n;
      bi = dmo[i] * no;
    }
  }
  const __m512i iota = _mm512_set_epi64(7, 6, 5, 4, 3, 2, 1, 0);
  __m512d a8 = _mm512_set1_pd(ai), b8 = _mm512_set1_pd(bi);
  for (;;) {
    const int len = i + 1;
    for (; j + 8 <= len; j += 8, k += 8) {
      const __m512d t =
          _mm512_add_pd(_mm512_mul_pd(_mm512_loadu_pd(dm + j), a8), _mm512_loadu_pd(ao + k));
      const __m512d u = _mm512_add_pd(t, _mm512_mul_pd(_mm512_loadu_pd(dmo + j), b8));
      _mm512_storeu_pd(a + k, _mm512_add_pd(_mm512_loadu_pd(a + k), u));
    }
    const int r = len - j;  // elements of row i left, fewer than eight
    if (r == 0) {
      if (len == p) return;
      i = len;
      j = 0;
      a8 = _mm512_set1_pd(dm[i] * n);
      b8 = _mm512_set1_pd(dmo[i] * no);
      continue;
    }
    const __mmask8 lo = static_cast<__mmask8>((1u << r) - 1);
    if (len == p) {  // the last row's end: only its own lanes are read and written
      const __m512d t = _mm512_add_pd(_mm512_mul_pd(_mm512_maskz_loadu_pd(lo, dm + j), a8),
                                      _mm512_maskz_loadu_pd(lo, ao + k));
      const __m512d u = _mm512_add_pd(t, _mm512_mul_pd(_mm512_maskz_loadu_pd(lo, dmo + j), b8));
      _mm512_mask_storeu_pd(a + k, lo, _mm512_add_pd(_mm512_maskz_loadu_pd(lo, a + k), u));
      return;
    }
    // Lanes r .. 7 are row i + 1, columns 0 .. 7 - r: lane L takes dm[L - r] from the
    // first eight.
    const __m512i from = _mm512_sub_epi64(iota, _mm512_set1_epi64(r));
    const __m512d an = _mm512_set1_pd(dm[len] * n), bn = _mm512_set1_pd(dmo[len] * no);
    const __mmask8 hi = static_cast<__mmask8>(~lo);
    const __m512d dmv =
        _mm512_mask_permutexvar_pd(_mm512_maskz_loadu_pd(lo, dm + j), hi, from, dmHead);
    const __m512d dmov =
        _mm512_mask_permutexvar_pd(_mm512_maskz_loadu_pd(lo, dmo + j), hi, from, dmoHead);
    const __m512d t = _mm512_add_pd(_mm512_mul_pd(dmv, _mm512_mask_blend_pd(lo, an, a8)),
                                    _mm512_loadu_pd(ao + k));
    const __m512d u = _mm512_add_pd(t, _mm512_mul_pd(dmov, _mm512_mask_blend_pd(lo, bn, b8)));
    _mm512_storeu_pd(a + k, _mm512_add_pd(_mm512_loadu_pd(a + k), u));
    k += 8;
    i = len;
    j = 8 - r;
    a8 = an;
    b8 = bn;
  }
}

// NR rows by NV vectors of eight columns from column j through all the saved pivots.
template <int NR, int NV>
__attribute__((target("avx512f"))) inline void SavedTileAvx512(double * const * rows, int j,
                                                               const double * f, const double * c,
                                                               std::size_t s, int count) {
  __m512d x[NR][NV];
  for (int r = 0; r < NR; ++r)
    for (int v = 0; v < NV; ++v) x[r][v] = _mm512_loadu_pd(rows[r] + j + 8 * v);
  for (int q = 0; q < count; ++q) {
    const std::size_t o = static_cast<std::size_t>(q) * s;
    __m512d cv[NV];
    for (int v = 0; v < NV; ++v) cv[v] = _mm512_loadu_pd(c + o + j + 8 * v);
    for (int r = 0; r < NR; ++r) {
      const __m512d fr = _mm512_set1_pd(f[o + r]);
      for (int v = 0; v < NV; ++v) x[r][v] = _mm512_add_pd(x[r][v], _mm512_mul_pd(fr, cv[v]));
    }
  }
  for (int r = 0; r < NR; ++r)
    for (int v = 0; v < NV; ++v) _mm512_storeu_pd(rows[r] + j + 8 * v, x[r][v]);
}

__attribute__((target("avx512f"))) void AddSaved4Avx512(double * const * rows, int jBeg, int jEnd,
                                                        const double * f, const double * c,
                                                        std::size_t s, int count) {
  int j = jBeg;
  for (; j + 32 <= jEnd; j += 32) SavedTileAvx512<4, 4>(rows, j, f, c, s, count);
  for (; j + 8 <= jEnd; j += 8) SavedTileAvx512<4, 1>(rows, j, f, c, s, count);
  for (int r = 0; r < 4; ++r) AddSavedBase(rows[r], j, jEnd, f + r, c, s, count);
}

// The eight rows by NV vectors of eight columns from j through all count updates.
template <int NV>
__attribute__((target("avx512f"))) inline void RowUpdateTileAvx512(double * const * rows, int j,
                                                                   const double * const * cols,
                                                                   const double * f, int count) {
  __m512d x[8][NV];
  for (int r = 0; r < 8; ++r)
    for (int v = 0; v < NV; ++v) x[r][v] = _mm512_loadu_pd(rows[r] + j + 8 * v);
  for (int q = 0; q < count; ++q) {
    __m512d cv[NV];
    for (int v = 0; v < NV; ++v) cv[v] = _mm512_loadu_pd(cols[q] + j + 8 * v);
    for (int r = 0; r < 8; ++r) {
      const __m512d fr = _mm512_set1_pd(f[8 * q + r]);
      for (int v = 0; v < NV; ++v) x[r][v] = _mm512_add_pd(x[r][v], _mm512_mul_pd(cv[v], fr));
    }
  }
  for (int r = 0; r < 8; ++r)
    for (int v = 0; v < NV; ++v) _mm512_storeu_pd(rows[r] + j + 8 * v, x[r][v]);
}

__attribute__((target("avx512f"))) void AddRowUpdatesAvx512(double * const * rows, int jEnd,
                                                            const double * const * cols,
                                                            const double * f, int count) {
  int j = 0;
  for (; j + 16 <= jEnd; j += 16) RowUpdateTileAvx512<2>(rows, j, cols, f, count);
  for (; j + 8 <= jEnd; j += 8) RowUpdateTileAvx512<1>(rows, j, cols, f, count);
  AddRowUpdatesBase(rows, 8, j, jEnd, cols, f, count);
}

// The 8 x 8 dot products with the eight rows in one vector, one sum per column.
__attribute__((target("avx512f"))) void DotTileAvx512(const double * p, const double * const * c,
                                                      int kEnd, double * s) {
  __m512d acc[8];
  for (int jj = 0; jj < 8; ++jj) acc[jj] = _mm512_setzero_pd();
  for (int k = 0; k < kEnd; ++k) {
    const __m512d pk = _mm512_loadu_pd(p + 8 * k);
    for (int jj = 0; jj < 8; ++jj)
      acc[jj] = _mm512_add_pd(acc[jj], _mm512_mul_pd(pk, _mm512_set1_pd(c[jj][k])));
  }
  for (int jj = 0; jj < 8; ++jj) _mm512_storeu_pd(s + 8 * jj, acc[jj]);
}

// Tile of triangle row i: NC vectors of eight from column j, held in registers
// while every row of dev adds its product.
template <int NC>
__attribute__((target("avx512f"))) inline void ProductTileAvx512(double * arow, const double * dev,
                                                                 std::size_t stride,
                                                                 const double * w, int rows, int i,
                                                                 int j) {
  __m512d c[NC];
  for (int t = 0; t < NC; ++t) c[t] = _mm512_loadu_pd(arow + j + 8 * t);
  const double * d = dev;
  for (int r = 0; r < rows; ++r, d += stride) {
    const __m512d di = _mm512_set1_pd(d[i]);
    if (w != nullptr) {
      const __m512d wr = _mm512_set1_pd(w[r]);
      for (int t = 0; t < NC; ++t)
        c[t] = _mm512_add_pd(c[t],
                             _mm512_mul_pd(_mm512_mul_pd(_mm512_loadu_pd(d + j + 8 * t), di), wr));
    } else {
      for (int t = 0; t < NC; ++t)
        c[t] = _mm512_add_pd(c[t], _mm512_mul_pd(_mm512_loadu_pd(d + j + 8 * t), di));
    }
  }
  for (int t = 0; t < NC; ++t) _mm512_storeu_pd(arow + j + 8 * t, c[t]);
}

// The last NF * 8 + rem (rem < 8) elements of triangle row i from column j: NF full
// vectors and one of rem masked lanes, all summed in the same pass over the rows, so that
// a short remainder still keeps several adds in flight.
template <int NF>
__attribute__((target("avx512f"))) inline void ProductRestAvx512(double * arow, const double * dev,
                                                                 std::size_t stride,
                                                                 const double * w, int rows, int i,
                                                                 int j, int rem) {
  const __mmask8 lanes = static_cast<__mmask8>((1u << rem) - 1u);
  double * const last = arow + j + 8 * NF;
  __m512d c[NF + 1];
  for (int t = 0; t < NF; ++t) c[t] = _mm512_loadu_pd(arow + j + 8 * t);
  c[NF] = _mm512_maskz_loadu_pd(lanes, last);
  const double * d = dev;
  for (int r = 0; r < rows; ++r, d += stride) {
    const __m512d di = _mm512_set1_pd(d[i]);
    __m512d t[NF + 1];
    for (int u = 0; u < NF; ++u) t[u] = _mm512_mul_pd(_mm512_loadu_pd(d + j + 8 * u), di);
    t[NF] = _mm512_mul_pd(_mm512_maskz_loadu_pd(lanes, d + j + 8 * NF), di);
    if (w != nullptr) {
      const __m512d wr = _mm512_set1_pd(w[r]);
      for (int u = 0; u <= NF; ++u) t[u] = _mm512_mul_pd(t[u], wr);
    }
    for (int u = 0; u <= NF; ++u) c[u] = _mm512_add_pd(c[u], t[u]);
  }
  for (int t = 0; t < NF; ++t) _mm512_storeu_pd(arow + j + 8 * t, c[t]);
  _mm512_mask_storeu_pd(last, lanes, c[NF]);
}

// Triangle row i from column j to its end, tiles of eight vectors first.
__attribute__((target("avx512f"))) inline void ProductRowAvx512(double * a, const double * dev,
                                                                std::size_t stride,
                                                                const double * w, int rows, int i,
                                                                int j) {
  double * const arow = a + RowStart(i);
  const int len = i + 1;
  for (; j + 64 <= len; j += 64) ProductTileAvx512<8>(arow, dev, stride, w, rows, i, j);
  if (j + 32 <= len) {
    ProductTileAvx512<4>(arow, dev, stride, w, rows, i, j);
    j += 32;
  }
  const int rest = len - j;  // below 32
  switch (rest % 8 == 0 ? rest / 8 : 4 + rest / 8) {
    case 1:
      ProductTileAvx512<1>(arow, dev, stride, w, rows, i, j);
      break;
    case 2:
      ProductTileAvx512<2>(arow, dev, stride, w, rows, i, j);
      break;
    case 3:
      ProductTileAvx512<3>(arow, dev, stride, w, rows, i, j);
      break;
    case 4:
      ProductRestAvx512<0>(arow, dev, stride, w, rows, i, j, rest % 8);
      break;
    case 5:
      ProductRestAvx512<1>(arow, dev, stride, w, rows, i, j, rest % 8);
      break;
    case 6:
      ProductRestAvx512<2>(arow, dev, stride, w, rows, i, j, rest % 8);
      break;
    case 7:
      ProductRestAvx512<3>(arow, dev, stride, w, rows, i, j, rest % 8);
      break;
    default:
      break;
  }
}

// Triangle rows i0 .. i0 + NR - 1 by NC vectors of eight from column j (columns all the
// rows have), held in registers while every row of dev adds its products: each load of
// dev serves the NR rows.
template <int NR, int NC>
__attribute__((target("avx512f"))) inline void ProductRowsAvx512(double * a, const double * dev,
                                                                 std::size_t stride,
                                                                 const double * w, int rows, int i0,
                                                                 int j) {
  double * arow[NR];
  __m512d c[NR][NC];
  for (int t = 0; t < NR; ++t) {
    arow[t] = a + RowStart(i0 + t) + j;
    for (int v = 0; v < NC; ++v) c[t][v] = _mm512_loadu_pd(arow[t] + 8 * v);
  }
  const double * d = dev;
  for (int r = 0; r < rows; ++r, d += stride) {
    __m512d dj[NC];
    for (int v = 0; v < NC; ++v) dj[v] = _mm512_loadu_pd(d + j + 8 * v);
    for (int t = 0; t < NR; ++t) {
      const __m512d di = _mm512_set1_pd(d[i0 + t]);
      if (w != nullptr) {
        const __m512d wr = _mm512_set1_pd(w[r]);
        for (int v = 0; v < NC; ++v)
          c[t][v] = _mm512_add_pd(c[t][v], _mm512_mul_pd(_mm512_mul_pd(dj[v], di), wr));
      } else {
        for (int v = 0; v < NC; ++v) c[t][v] = _mm512_add_pd(c[t][v], _mm512_mul_pd(dj[v], di));
      }
    }
  }
  for (int t = 0; t < NR; ++t)
    for (int v = 0; v < NC; ++v) _mm512_storeu_pd(arow[t] + 8 * v, c[t][v]);
}

// Four triangle rows at a time over the whole vectors they share, then each row's rest.
__attribute__((target("avx512f"))) void AddProductsAvx512(double * a, const double * dev,
                                                          std::size_t stride, const double * w,
                                                          int rows, int p) {
  int i = 0;
  for (; i + 4 <= p; i += 4) {
    const int shared = (i + 1) / 8 * 8;
    int j = 0;
    for (; j + 32 <= shared; j += 32) ProductRowsAvx512<4, 4>(a, dev, stride, w, rows, i, j);
    for (; j + 8 <= shared; j += 8) ProductRowsAvx512<4, 1>(a, dev, stride, w, rows, i, j);
    for (int t = 0; t < 4; ++t) ProductRowAvx512(a, dev, stride, w, rows, i + t, j);
  }
  for (; i < p; ++i) ProductRowAvx512(a, dev, stride, w, rows, i, 0);
}

#endif  // ZR_SIMD_X86

}  // namespace

void AddOuterPacked(double * a, const double * x, int n, double w) {
#if ZR_SIMD_X86
  switch (ActiveSimdPath()) {
    case SimdPath::kAvx512:
      return AddOuterAvx512(a, x, n, w);
    case SimdPath::kAvx2:
      return AddOuterAvx2(a, x, n, w);
    case SimdPath::kBaseline:
      break;
  }
#endif
  AddOuterBase(a, x, n, w);
}

void AddPacked(double * a, const double * b, std::size_t count) {
#if ZR_SIMD_X86
  switch (ActiveSimdPath()) {
    case SimdPath::kAvx512:
      return AddAvx512(a, b, count);
    case SimdPath::kAvx2:
      return AddAvx2(a, b, count);
    case SimdPath::kBaseline:
      break;
  }
#endif
  AddBase(a, b, count);
}

void MergeCorrectedPacked(double * a, const double * ao, double * m, const double * mo, double * dm,
                          double * dmo, int p, double n, double no, double f) {
#if ZR_SIMD_X86
  switch (ActiveSimdPath()) {
    case SimdPath::kAvx512:
      return MergeCorrectedAvx512(a, ao, m, mo, dm, dmo, p, n, no, f);
    case SimdPath::kAvx2:
      return MergeCorrectedAvx2(a, ao, m, mo, dm, dmo, p, n, no, f);
    case SimdPath::kBaseline:
      break;
  }
#endif
  MergeCorrectedBase(a, ao, m, mo, dm, dmo, p, n, no, f);
}

void AddProductsPacked(double * a, const double * dev, std::size_t stride, const double * w,
                       int rows, int p) {
#if ZR_SIMD_X86
  switch (ActiveSimdPath()) {
    case SimdPath::kAvx512:
      return AddProductsAvx512(a, dev, stride, w, rows, p);
    case SimdPath::kAvx2:
      return AddProductsAvx2(a, dev, stride, w, rows, p);
    case SimdPath::kBaseline:
      break;
  }
#endif
  AddProductsBase(a, dev, stride, w, rows, p);
}

void AddSavedPivots(double * row, int jBeg, int jEnd, const double * f, const double * c,
                    std::size_t s, int count) {
  AddSavedBase(row, jBeg, jEnd, f, c, s, count);
}

void AddSavedPivots4(double * const * rows, int jBeg, int jEnd, const double * f, const double * c,
                     std::size_t s, int count) {
#if ZR_SIMD_X86
  switch (ActiveSimdPath()) {
    case SimdPath::kAvx512:
      return AddSaved4Avx512(rows, jBeg, jEnd, f, c, s, count);
    case SimdPath::kAvx2:
      return AddSaved4Avx2(rows, jBeg, jEnd, f, c, s, count);
    case SimdPath::kBaseline:
      break;
  }
#endif
  for (int r = 0; r < 4; ++r) AddSavedBase(rows[r], jBeg, jEnd, f + r, c, s, count);
}

void AddRowUpdates(double * const * rows, int nrows, int jEnd, const double * const * cols,
                   const double * f, int count) {
#if ZR_SIMD_X86
  if (nrows == 8) {
    switch (ActiveSimdPath()) {
      case SimdPath::kAvx512:
        return AddRowUpdatesAvx512(rows, jEnd, cols, f, count);
      case SimdPath::kAvx2:
        return AddRowUpdatesAvx2(rows, jEnd, cols, f, count);
      case SimdPath::kBaseline:
        break;
    }
  }
#endif
  AddRowUpdatesBase(rows, nrows, 0, jEnd, cols, f, count);
}

void DotTile8x8(const double * p, const double * const * rows, const double * const * c, int kEnd,
                double * s) {
#if ZR_SIMD_X86
  switch (ActiveSimdPath()) {
    case SimdPath::kAvx512:
      return DotTileAvx512(p, c, kEnd, s);
    case SimdPath::kAvx2:
      return DotTileAvx2(p, c, kEnd, s);
    case SimdPath::kBaseline:
      break;
  }
#endif
  DotTileBase(rows, c, kEnd, s);
}

}  // namespace matrix_detail
}  // namespace ZRMath_920
