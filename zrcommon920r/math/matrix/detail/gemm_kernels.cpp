// The dense product C = A B in three builds: baseline (SSE2 on x86-64), AVX2 and AVX-512F.
//
// Schedule: B is copied a block of kKc rows by up to kNc columns at a time into strips
// kNr columns wide, A a block of kMc rows by kKc columns into strips kMr rows tall, and a
// small kernel keeps a kMr x kNr tile of C in registers while it runs down the kKc terms
// of the block. A tile starts from 0.0 in the first block of terms and from the partial
// sums stored in C in the later ones, and each kernel adds its terms in k order, one
// multiply and one add each (never fused): every element of C therefore meets the same
// rounded operations as the dot product of a row of A and a column of B summed from 0.0,
// whatever the tile sizes or the vector width. Tiles cut off by the edges of C run in a
// local tile padded with zeros; only their own elements are read back and stored.
#include "zrcommon920r/math/matrix/detail/gemm_kernels.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "zrcommon920r/math/matrix/detail/simd.h"

#if ZR_SIMD_X86
#include <immintrin.h>
#endif

namespace ZRMath_920 {
namespace matrix_detail {

namespace {

// Depth of a block of terms, and the rows of A and columns of B copied at a time: a strip
// of B stays in the first-level cache, the block of A in the second.
constexpr int kKc = 256;
constexpr int kMc = 96;
constexpr int kNc = 2016;

// Below this many multiply-adds copying does not pay: the blocked loop in place.
constexpr double kPackedFrom = 32.0 * 32.0 * 32.0;

// The product by rows in place, each C(i, j) gaining A(i, k) B(k, j) for k ascending
// (blocked over j and k). C is zeroed first. Needs no scratch.
void MultiplyInPlace(const double * a, const double * b, double * c, int m, int p, int n) {
  constexpr int kColBlock = 512, kDepthBlock = 128;
  const std::size_t ldA = static_cast<std::size_t>(p), ldB = static_cast<std::size_t>(n);
  std::fill(c, c + static_cast<std::size_t>(m) * ldB, 0.0);
  for (int j0 = 0; j0 < n; j0 += kColBlock) {
    const int nj = std::min(kColBlock, n - j0);
    for (int k0 = 0; k0 < p; k0 += kDepthBlock) {
      const int k1 = std::min(p, k0 + kDepthBlock);
      for (int i = 0; i < m; ++i) {
        double * ci = c + i * ldB + j0;
        const double * ai = a + i * ldA;
        for (int k = k0; k < k1; ++k) {
          const double f = ai[k];
          const double * bk = b + k * ldB + j0;
          for (int j = 0; j < nj; ++j) ci[j] += f * bk[j];
        }
      }
    }
  }
}

// A kernel: the kMr x kNr tile at c (rows ldc apart) becomes its start (0.0 when first,
// else its own values) plus, for k = 0 .. kc - 1 in order, ap[k kMr + r] bp[k kNr + j].
using Kernel = void (*)(int kc, const double * ap, const double * bp, double * c, std::size_t ldc,
                        bool first);

// Baseline tile: 4 x 4 in plain doubles, which the compiler keeps in SSE2 registers.
constexpr int kBaseMr = 4, kBaseNr = 4;

void KernelBase(int kc, const double * ap, const double * bp, double * c, std::size_t ldc,
                bool first) {
  double acc[kBaseMr][kBaseNr];
  for (int r = 0; r < kBaseMr; ++r)
    for (int j = 0; j < kBaseNr; ++j) acc[r][j] = first ? 0.0 : c[r * ldc + j];
  for (int k = 0; k < kc; ++k) {
    const double * x = ap + k * kBaseMr;
    const double * y = bp + k * kBaseNr;
    for (int r = 0; r < kBaseMr; ++r)
      for (int j = 0; j < kBaseNr; ++j) acc[r][j] += x[r] * y[j];
  }
  for (int r = 0; r < kBaseMr; ++r)
    for (int j = 0; j < kBaseNr; ++j) c[r * ldc + j] = acc[r][j];
}

#if ZR_SIMD_X86

// AVX2 tile: 4 rows by 2 vectors of 4 columns, eight accumulators.
constexpr int kAvx2Mr = 4, kAvx2Nr = 8;

__attribute__((target("avx2"))) void KernelAvx2(int kc, const double * ap, const double * bp,
                                                double * c, std::size_t ldc, bool first) {
  __m256d acc[kAvx2Mr][2];
#pragma GCC unroll 4
  for (int r = 0; r < kAvx2Mr; ++r) {
    acc[r][0] = first ? _mm256_setzero_pd() : _mm256_loadu_pd(c + r * ldc);
    acc[r][1] = first ? _mm256_setzero_pd() : _mm256_loadu_pd(c + r * ldc + 4);
  }
  for (int k = 0; k < kc; ++k) {
    const __m256d y0 = _mm256_loadu_pd(bp + k * kAvx2Nr);
    const __m256d y1 = _mm256_loadu_pd(bp + k * kAvx2Nr + 4);
#pragma GCC unroll 4
    for (int r = 0; r < kAvx2Mr; ++r) {
      const __m256d x = _mm256_broadcast_sd(ap + k * kAvx2Mr + r);
      acc[r][0] = _mm256_add_pd(acc[r][0], _mm256_mul_pd(x, y0));
      acc[r][1] = _mm256_add_pd(acc[r][1], _mm256_mul_pd(x, y1));
    }
  }
#pragma GCC unroll 4
  for (int r = 0; r < kAvx2Mr; ++r) {
    _mm256_storeu_pd(c + r * ldc, acc[r][0]);
    _mm256_storeu_pd(c + r * ldc + 4, acc[r][1]);
  }
}

// AVX-512 tile: 8 rows by 3 vectors of 8 columns, 24 accumulators.
constexpr int kAvx512Mr = 8, kAvx512Nr = 24;

__attribute__((target("avx512f"))) void KernelAvx512(int kc, const double * ap, const double * bp,
                                                     double * c, std::size_t ldc, bool first) {
  __m512d acc[kAvx512Mr][3];
#pragma GCC unroll 8
  for (int r = 0; r < kAvx512Mr; ++r) {
#pragma GCC unroll 3
    for (int v = 0; v < 3; ++v)
      acc[r][v] = first ? _mm512_setzero_pd() : _mm512_loadu_pd(c + r * ldc + 8 * v);
  }
  for (int k = 0; k < kc; ++k) {
    const double * y = bp + k * kAvx512Nr;
    const __m512d y0 = _mm512_loadu_pd(y);
    const __m512d y1 = _mm512_loadu_pd(y + 8);
    const __m512d y2 = _mm512_loadu_pd(y + 16);
#pragma GCC unroll 8
    for (int r = 0; r < kAvx512Mr; ++r) {
      const __m512d x = _mm512_set1_pd(ap[k * kAvx512Mr + r]);
      acc[r][0] = _mm512_add_pd(acc[r][0], _mm512_mul_pd(x, y0));
      acc[r][1] = _mm512_add_pd(acc[r][1], _mm512_mul_pd(x, y1));
      acc[r][2] = _mm512_add_pd(acc[r][2], _mm512_mul_pd(x, y2));
    }
  }
#pragma GCC unroll 8
  for (int r = 0; r < kAvx512Mr; ++r) {
#pragma GCC unroll 3
    for (int v = 0; v < 3; ++v) _mm512_storeu_pd(c + r * ldc + 8 * v, acc[r][v]);
  }
}

#endif  // ZR_SIMD_X86

// Scratch of count doubles starting on a 64-byte boundary, or null.
struct AlignedScratch {
  std::unique_ptr<double[]> block;
  double * data = nullptr;
  explicit AlignedScratch(std::size_t count) : block(new (std::nothrow) double[count + 8]) {
    if (!block) return;
    const std::uintptr_t at = reinterpret_cast<std::uintptr_t>(block.get());
    data = block.get() + ((64 - at % 64) % 64) / sizeof(double);
  }
};

// Rows i0 .. i0 + rows - 1, columns k0 .. k0 + kc - 1 of A into strips of mr rows, each
// strip k-major (mr values per term), the rows past the edge as zeros.
void PackA(const double * a, std::size_t lda, int i0, int rows, int k0, int kc, int mr,
           double * out) {
  for (int s = 0; s < rows; s += mr) {
    const int live = std::min(mr, rows - s);
    for (int k = 0; k < kc; ++k) {
      for (int r = 0; r < live; ++r) out[r] = a[(i0 + s + r) * lda + k0 + k];
      for (int r = live; r < mr; ++r) out[r] = 0.0;
      out += mr;
    }
  }
}

// Rows k0 .. k0 + kc - 1, columns j0 .. j0 + cols - 1 of B into strips of nr columns,
// each strip k-major (nr values per term), the columns past the edge as zeros.
void PackB(const double * b, std::size_t ldb, int k0, int kc, int j0, int cols, int nr,
           double * out) {
  for (int s = 0; s < cols; s += nr) {
    const int live = std::min(nr, cols - s);
    for (int k = 0; k < kc; ++k) {
      const double * row = b + (k0 + k) * ldb + j0 + s;
      for (int j = 0; j < live; ++j) out[j] = row[j];
      for (int j = live; j < nr; ++j) out[j] = 0.0;
      out += nr;
    }
  }
}

// The blocked product with the kernel of one path, in scratch ap (kMc x kKc rounded up to
// whole strips) and bp (kKc x kNc rounded up likewise).
template <int Mr, int Nr>
void MultiplyBlocked(Kernel kernel, const double * a, const double * b, double * c, int m, int p,
                     int n, double * ap, double * bp) {
  const std::size_t lda = static_cast<std::size_t>(p), ldc = static_cast<std::size_t>(n);
  double edge[Mr * Nr];
  for (int j0 = 0; j0 < n; j0 += kNc) {
    const int nc = std::min(kNc, n - j0);
    for (int k0 = 0; k0 < p; k0 += kKc) {
      const int kc = std::min(kKc, p - k0);
      const bool first = k0 == 0;
      PackB(b, ldc, k0, kc, j0, nc, Nr, bp);
      for (int i0 = 0; i0 < m; i0 += kMc) {
        const int mc = std::min(kMc, m - i0);
        PackA(a, lda, i0, mc, k0, kc, Mr, ap);
        for (int js = 0; js < nc; js += Nr) {
          const int nr = std::min(Nr, nc - js);
          const double * bs = bp + static_cast<std::size_t>(js) * kc;
          for (int is = 0; is < mc; is += Mr) {
            const int mr = std::min(Mr, mc - is);
            const double * as = ap + static_cast<std::size_t>(is) * kc;
            double * ct = c + (i0 + is) * ldc + j0 + js;
            if (mr == Mr && nr == Nr) {
              kernel(kc, as, bs, ct, ldc, first);
              continue;
            }
            for (int r = 0; r < Mr; ++r)
              for (int j = 0; j < Nr; ++j)
                edge[r * Nr + j] = (!first && r < mr && j < nr) ? ct[r * ldc + j] : 0.0;
            kernel(kc, as, bs, edge, Nr, first);
            for (int r = 0; r < mr; ++r)
              for (int j = 0; j < nr; ++j) ct[r * ldc + j] = edge[r * Nr + j];
          }
        }
      }
    }
  }
}

// The product with the kernel of one path, or in place when scratch is short.
template <int Mr, int Nr>
void MultiplyPath(Kernel kernel, const double * a, const double * b, double * c, int m, int p,
                  int n) {
  const int mc = std::min(kMc, m), kc = std::min(kKc, p), nc = std::min(kNc, n);
  const std::size_t apCount = static_cast<std::size_t>((mc + Mr - 1) / Mr * Mr) * kc;
  const std::size_t bpCount = static_cast<std::size_t>((nc + Nr - 1) / Nr * Nr) * kc;
  AlignedScratch scratch(apCount + bpCount + 8);
  if (scratch.data == nullptr) {
    MultiplyInPlace(a, b, c, m, p, n);
    return;
  }
  // The strips of B start on a 64-byte boundary too.
  double * const bp = scratch.data + (apCount + 7) / 8 * 8;
  MultiplyBlocked<Mr, Nr>(kernel, a, b, c, m, p, n, scratch.data, bp);
}

}  // namespace

void MultiplyDense(const double * a, const double * b, double * c, int m, int p, int n) {
  if (m < 1 || n < 1) return;
  if (p < 1) {
    std::fill(c, c + static_cast<std::size_t>(m) * static_cast<std::size_t>(n), 0.0);
    return;
  }
  if (static_cast<double>(m) * p * n < kPackedFrom) {
    MultiplyInPlace(a, b, c, m, p, n);
    return;
  }
  switch (ActiveSimdPath()) {
#if ZR_SIMD_X86
    case SimdPath::kAvx512:
      MultiplyPath<kAvx512Mr, kAvx512Nr>(KernelAvx512, a, b, c, m, p, n);
      return;
    case SimdPath::kAvx2:
      MultiplyPath<kAvx2Mr, kAvx2Nr>(KernelAvx2, a, b, c, m, p, n);
      return;
#endif
    default:
      MultiplyPath<kBaseMr, kBaseNr>(KernelBase, a, b, c, m, p, n);
      return;
  }
}

}  // namespace matrix_detail
}  // namespace ZRMath_920
