// The vector paths of the matrix kernels: under every instruction set this processor
// supports, the rank-one updates, the accumulator merge, the dense product and the grouped
// elimination steps of the LU factorisation must give exactly the bits of the scalar loops
// they replace, and the per-case updates must not allocate.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>
#include <utility>
#include <vector>

#include "support/alloccount.h"
#include "support/simdpaths.h"
#include "zrcommon920r/math/matrix/detail/ge_kernels.h"
#include "zrcommon920r/math/matrix/detail/packed_kernels.h"
#include "zrcommon920r/math/matrix/detail/simd.h"
#include "zrcommon920r/math/matrix/rectmatrix.h"
#include "zrcommon920r/math/matrix/symmatrix.h"
#include "zrcommon920r/math/stats/meansxprod.h"

namespace {

using ZRMath_920::ZRMeansXProdData;
using ZRMath_920::ZRProvMeans;
using ZRMath_920::ZRSymMatrix;
using ZRMath_920::matrix_detail::SimdPath;
using ZRMath_920::matrix_detail::SimdPathName;
using Vec = std::vector<double>;

// NaN with the bits the processor itself produces (0 * inf, inf - inf), so that which
// operand's NaN an operation passes on cannot change the bits being compared.
double DefaultNaN() {
  const std::uint64_t bits = 0xFFF8000000000000ull;
  double d;
  std::memcpy(&d, &bits, sizeof d);
  return d;
}

// Orders tried: every one up to 70 (all remainders modulo 4, 8 and 16, short rows), and
// a few long rows.
std::vector<int> Orders() {
  std::vector<int> ps;
  for (int p = 1; p <= 70; ++p) ps.push_back(p);
  for (int p : {127, 128, 129, 400}) ps.push_back(p);
  return ps;
}

using zrtest::ForcedPath;
using zrtest::SupportedPaths;

// Mostly finite values over several magnitudes, with a sprinkling of exact zeros of both
// signs, infinities and NaNs when special is set.
Vec RandomValues(std::mt19937_64 & gen, std::size_t n, bool special) {
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  std::uniform_int_distribution<int> pick(0, 39), scale(-30, 30);
  const double specials[] = {0.0, -0.0, HUGE_VAL, -HUGE_VAL, DefaultNaN()};
  Vec v(n);
  for (double & x : v) {
    x = std::ldexp(unit(gen), scale(gen));
    if (!special) continue;
    const int k = pick(gen);
    if (k < 5) x = specials[k];
  }
  return v;
}

bool SameBits(const Vec & a, const Vec & b) {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0;
}

Vec Packed(const ZRSymMatrix & s) {
  const int n = s.GetNRows();
  Vec v(static_cast<std::size_t>(n) * static_cast<std::size_t>(n + 1) / 2);
  for (std::size_t k = 0; k < v.size(); ++k) v[k] = s.GetElem(static_cast<int>(k));
  return v;
}

ZRSymMatrix FromPacked(int n, const Vec & a) {
  ZRSymMatrix s(n, true);
  for (std::size_t k = 0; k < a.size(); ++k) s.SetElem(static_cast<int>(k), a[k]);
  return s;
}

// The scalar rank-one update as it stood before the vector paths: element (i, j) gains
// (w x_i) x_j, row by row, and a zero x_i skips its row.
void ScalarAddOuter(Vec & a, const Vec & x, int n, double w) {
  std::size_t k = 0;
  for (int i = 0; i < n; ++i) {
    const double xi = x[i];
    if (xi != 0.0) {
      const double wxi = w * xi;
      for (int j = 0; j <= i; ++j) a[k + j] += wxi * x[j];
    }
    k += static_cast<std::size_t>(i) + 1;
  }
}

// The scalar merge as it stood before the vector paths: new means first, then the
// corrected matrix (or the plain sum without an intercept).
void ScalarMerge(double n, Vec & m, Vec & a, double no, const Vec & mo, const Vec & ao,
                 bool intercept) {
  const int p = static_cast<int>(m.size());
  const double nNew = n + no;
  const double f = no / nNew;
  Vec mn(p), dm(p), dmo(p);
  for (int i = 0; i < p; ++i) {
    mn[i] = (mo[i] - m[i]) * f + m[i];
    dm[i] = mn[i] - m[i];
    dmo[i] = mn[i] - mo[i];
  }
  if (intercept) {
    int k = 0;
    for (int i = 0; i < p; ++i) {
      const double ai = dm[i] * n;
      const double bi = dmo[i] * no;
      for (int j = 0; j <= i; ++j) a[k + j] += ((dm[j] * ai) + ao[k + j]) + (dmo[j] * bi);
      k += i + 1;
    }
  } else {
    for (std::size_t k = 0; k < a.size(); ++k) a[k] += ao[k];
  }
  m = mn;
}

TEST(ZRSimdPaths, RankOneUpdatesMatchScalarBits) {
  const std::vector<SimdPath> paths = SupportedPaths();
  for (bool special : {false, true}) {
    for (int p : Orders()) {
      SCOPED_TRACE(testing::Message() << "p = " << p << (special ? ", non-finite" : ""));
      std::mt19937_64 gen(static_cast<std::uint64_t>(p) * 2 + special);
      const Vec a0 = RandomValues(gen, static_cast<std::size_t>(p) * (p + 1) / 2, special);
      const Vec x = RandomValues(gen, static_cast<std::size_t>(p), special);
      const double w = 0.75;
      Vec want = a0;
      ScalarAddOuter(want, x, p, w);
      Vec baseline;
      for (SimdPath path : paths) {
        SCOPED_TRACE(ZRMath_920::matrix_detail::SimdPathName(path));
        ForcedPath forced(path);
        ASSERT_TRUE(forced.Ok());
        ZRSymMatrix s = FromPacked(p, a0);
        ASSERT_TRUE(s.UpdateXX(x, w));
        const Vec got = Packed(s);
        EXPECT_TRUE(SameBits(got, want));
        if (path == SimdPath::kBaseline) baseline = got;
        EXPECT_TRUE(SameBits(got, baseline));
      }
    }
  }
}

// Two summaries of random cases (the second possibly with non-finite values), merged
// under every path, against the scalar merge of the same counts, means and matrices; and
// a summary merged with itself, which reads each element before writing it.
TEST(ZRSimdPaths, MergeMatchesScalarBits) {
  const std::vector<SimdPath> paths = SupportedPaths();
  for (bool intercept : {true, false}) {
    for (bool special : {false, true}) {
      for (int p : Orders()) {
        SCOPED_TRACE(testing::Message() << "p = " << p << (intercept ? "" : ", raw")
                                        << (special ? ", non-finite" : ""));
        std::mt19937_64 gen(static_cast<std::uint64_t>(p) * 4 + special * 2 + intercept);
        ZRProvMeans left(p, intercept), right(p, intercept);
        for (int r = 0; r < 3; ++r) {
          left.AddCase(RandomValues(gen, static_cast<std::size_t>(p), false), 1.5);
          right.AddCase(RandomValues(gen, static_cast<std::size_t>(p), special && r == 1), 0.5);
        }
        Vec wantM = left.GetMeans(), wantA = Packed(left.GetXProds());
        ScalarMerge(left.GetNCases(), wantM, wantA, right.GetNCases(), right.GetMeans(),
                    Packed(right.GetXProds()), intercept);
        Vec selfM = right.GetMeans(), selfA = Packed(right.GetXProds());
        ScalarMerge(right.GetNCases(), selfM, selfA, right.GetNCases(), selfM, selfA, intercept);
        for (SimdPath path : paths) {
          SCOPED_TRACE(ZRMath_920::matrix_detail::SimdPathName(path));
          ForcedPath forced(path);
          ASSERT_TRUE(forced.Ok());
          ZRMeansXProdData merged(left);
          ASSERT_TRUE(merged.Merge(right));
          EXPECT_TRUE(SameBits(merged.GetMeans(), wantM));
          EXPECT_TRUE(SameBits(Packed(merged.GetXProds()), wantA));
          ZRMeansXProdData doubled(right);
          ASSERT_TRUE(doubled.Merge(doubled));
          EXPECT_TRUE(SameBits(doubled.GetMeans(), selfM));
          EXPECT_TRUE(SameBits(Packed(doubled.GetXProds()), selfA));
        }
      }
    }
  }
}

// The merge kernel on triangles at every offset from a 64-byte boundary (the wide path
// aligns its stream on one), for orders around the first 32 elements and row ends.
TEST(ZRSimdPaths, MergeKernelAtEveryAlignment) {
  const std::vector<SimdPath> paths = SupportedPaths();
  for (int p : {1, 7, 8, 9, 10, 20, 37, 130}) {
    const std::size_t count = static_cast<std::size_t>(p) * (p + 1) / 2;
    std::mt19937_64 gen(static_cast<std::uint64_t>(p));
    const Vec a0 = RandomValues(gen, count, true), ao = RandomValues(gen, count, true);
    const Vec m0 = RandomValues(gen, static_cast<std::size_t>(p), false);
    const Vec mo = RandomValues(gen, static_cast<std::size_t>(p), false);
    Vec wantM = m0, wantA = a0;
    ScalarMerge(3.0, wantM, wantA, 5.0, mo, ao, true);
    for (SimdPath path : paths) {
      ForcedPath forced(path);
      ASSERT_TRUE(forced.Ok());
      for (std::size_t offset = 0; offset < 8; ++offset) {
        SCOPED_TRACE(testing::Message()
                     << "p = " << p << ", " << SimdPathName(path) << ", offset " << offset);
        Vec block(count + 16), m = m0, dm(static_cast<std::size_t>(p)), dmo(dm.size());
        double * a =
            block.data() +
            (64 - reinterpret_cast<std::uintptr_t>(block.data()) % 64) / sizeof(double) % 8 +
            offset;
        std::copy(a0.begin(), a0.end(), a);
        ZRMath_920::matrix_detail::MergeCorrectedPacked(
            a, ao.data(), m.data(), mo.data(), dm.data(), dmo.data(), p, 3.0, 5.0, 5.0 / 8.0);
        EXPECT_TRUE(SameBits(Vec(a, a + count), wantA));
        EXPECT_TRUE(SameBits(m, wantM));
      }
    }
  }
}

// The scalar second pass of ZRMeansXProducts::Compute: row after row, element (i, j)
// gains (d_j d_i) w, d the row's deviations from the means (its values without an
// intercept), w the product of its weight columns.
Vec ScalarProducts(const Vec & xs, int rows, int p, int nw, const Vec & means, bool intercept) {
  Vec a(static_cast<std::size_t>(p) * (p + 1) / 2, 0.0), d(static_cast<std::size_t>(p));
  const std::size_t stride = static_cast<std::size_t>(p + nw);
  for (int r = 0; r < rows; ++r) {
    const double * x = xs.data() + stride * r;
    for (int i = 0; i < p; ++i) d[i] = intercept ? x[i] - means[i] : x[i];
    const double w = nw == 0 ? 1.0 : nw == 1 ? x[p] : x[p] * x[p + 1];
    int k = 0;
    for (int i = 0; i < p; ++i) {
      for (int j = 0; j <= i; ++j) {
        if (nw != 0) {
          a[k + j] += (d[j] * d[i]) * w;
        } else {
          a[k + j] += d[j] * d[i];
        }
      }
      k += i + 1;
    }
  }
  return a;
}

// Blocks of rows, with 0 to 2 weight columns, row counts on both sides of the kernel's
// blocking; the means come from the object under test (the first pass is unchanged), the
// matrix from the scalar loop over the same deviations.
TEST(ZRSimdPaths, BlockProductsMatchScalarBits) {
  const std::vector<SimdPath> paths = SupportedPaths();
  struct {
    int rows, nw;
    bool intercept, special;
  } const shapes[] = {{1, 0, true, false},  {5, 1, true, true},  {31, 0, false, false},
                      {33, 2, true, false}, {64, 0, true, true}, {70, 1, false, true},
                      {97, 0, true, false}};
  for (const auto & shape : shapes) {
    for (int p : Orders()) {
      if (p > 129 && shape.rows > 40) continue;  // long rows: a few shapes suffice
      SCOPED_TRACE(testing::Message()
                   << "p = " << p << ", rows = " << shape.rows << ", weights = " << shape.nw);
      std::mt19937_64 gen(static_cast<std::uint64_t>(p) * 131 + shape.rows);
      const int cols = p + shape.nw;
      Vec xs = RandomValues(gen, static_cast<std::size_t>(shape.rows) * cols, shape.special);
      for (int r = 0; r < shape.rows; ++r)
        for (int c = p; c < cols; ++c) xs[static_cast<std::size_t>(r) * cols + c] = 0.5 + r % 3;
      ZRMath_920::ZRRectMatrix X(shape.rows, cols, true);
      for (int r = 0; r < shape.rows; ++r)
        for (int c = 0; c < cols; ++c) X.SetElem(r, c, xs[static_cast<std::size_t>(r) * cols + c]);
      Vec baseline;
      for (SimdPath path : paths) {
        SCOPED_TRACE(ZRMath_920::matrix_detail::SimdPathName(path));
        ForcedPath forced(path);
        ASSERT_TRUE(forced.Ok());
        ZRMath_920::ZRMeansXProducts acc(p, shape.intercept, shape.nw >= 1, shape.nw == 2);
        ASSERT_TRUE(acc.Compute(X, 0));
        const Vec got = Packed(acc.GetXProds());
        EXPECT_TRUE(SameBits(
            got, ScalarProducts(xs, shape.rows, p, shape.nw, acc.GetMeans(), shape.intercept)));
        if (path == SimdPath::kBaseline) baseline = got;
        EXPECT_TRUE(SameBits(got, baseline));
      }
    }
  }
}

// The dense products A B and A (B')' against a dot product per element summed from 0.0 in
// order. Shapes cross every tile edge of every path, the depth and row blocks (256 and 96)
// and, once, the column block (2016); the smallest run in place without copies.
TEST(ZRSimdPaths, MatrixProductMatchesDotProducts) {
  struct Shape {
    int m, p, n;
    bool special;
  };
  const Shape shapes[] = {{1, 1, 1, true},      {3, 5, 7, true},      {33, 32, 31, false},
                          {40, 40, 40, true},   {97, 257, 25, true},  {8, 513, 48, false},
                          {100, 30, 130, true}, {9, 300, 2030, false}};
  const std::vector<SimdPath> paths = SupportedPaths();
  for (const Shape & s : shapes) {
    SCOPED_TRACE(testing::Message() << s.m << " x " << s.p << " times " << s.p << " x " << s.n);
    std::mt19937_64 gen(static_cast<std::uint64_t>(s.m) * 7919 + s.p * 31 + s.n);
    const Vec av = RandomValues(gen, static_cast<std::size_t>(s.m) * s.p, s.special);
    const Vec bv = RandomValues(gen, static_cast<std::size_t>(s.p) * s.n, s.special);
    ZRMath_920::ZRRectMatrix A(s.m, s.p, true), B(s.p, s.n, true);
    for (int i = 0; i < s.m; ++i)
      for (int k = 0; k < s.p; ++k) A.SetElem(i, k, av[static_cast<std::size_t>(i) * s.p + k]);
    ZRMath_920::ZRRectMatrix Bt(s.n, s.p, true);
    for (int k = 0; k < s.p; ++k) {
      for (int j = 0; j < s.n; ++j) {
        B.SetElem(k, j, bv[static_cast<std::size_t>(k) * s.n + j]);
        Bt.SetElem(j, k, bv[static_cast<std::size_t>(k) * s.n + j]);
      }
    }
    Vec want(static_cast<std::size_t>(s.m) * s.n);
    for (int i = 0; i < s.m; ++i)
      for (int j = 0; j < s.n; ++j) {
        double sum = 0.0;
        for (int k = 0; k < s.p; ++k)
          sum +=
              av[static_cast<std::size_t>(i) * s.p + k] * bv[static_cast<std::size_t>(k) * s.n + j];
        want[static_cast<std::size_t>(i) * s.n + j] = sum;
      }
    for (SimdPath path : paths) {
      SCOPED_TRACE(ZRMath_920::matrix_detail::SimdPathName(path));
      ForcedPath forced(path);
      ASSERT_TRUE(forced.Ok());
      // A B, and A (B')' with B' given: both the same dot products.
      ZRMath_920::ZRRectMatrix C, D;
      ASSERT_TRUE(A.ComputeMatrixProduct(B, C));
      ASSERT_TRUE(A.ComputeProductMatrixTrans(Bt, D));
      Vec got(want.size()), gotTrans(want.size());
      for (int i = 0; i < s.m; ++i) {
        for (int j = 0; j < s.n; ++j) {
          got[static_cast<std::size_t>(i) * s.n + j] = C.GetElem(i, j);
          gotTrans[static_cast<std::size_t>(i) * s.n + j] = D.GetElem(i, j);
        }
      }
      EXPECT_TRUE(SameBits(got, want));
      EXPECT_TRUE(SameBits(gotTrans, want));
    }
  }
}

TEST(ZRSimdPaths, RankOneUpdatesAllocateNothing) {
  for (SimdPath path : SupportedPaths()) {
    SCOPED_TRACE(ZRMath_920::matrix_detail::SimdPathName(path));
    ForcedPath forced(path);
    ASSERT_TRUE(forced.Ok());
    for (int p : {1, 7, 20, 100}) {
      ZRSymMatrix s(p, true);
      const Vec x(static_cast<std::size_t>(p), 1.25);
      const Vec z(static_cast<std::size_t>(p - 1), -0.5);
      zrtest::AllocCounter counter;
      const bool ok = s.UpdateXX(x, 2.0) && s.UpdateXXPosNegW(x, -1.0);
      s.UpdateZZ(z, 3.0, 0.5);
      s.IncrementByVV(x.data(), 4.0);
      const long count = counter.Count();
      EXPECT_TRUE(ok);
      EXPECT_EQ(count, 0) << "p = " << p;
    }
  }
}

// Elimination steps one at a time, as the column sweep gives them to each later column j:
// rows k and l swap, then a(i, j) += t a(i, k) below row k unless t == 0.0; a step whose
// pivot a(k, k) is 0.0 does nothing. Indices from 1.
void ScalarGeSteps(Vec & a, int lda, int n, const std::vector<int> & ipvt, int k0, int steps,
                   int j0, int count) {
  auto at = [&](int i, int j) -> double & {
    return a[static_cast<std::size_t>(j - 1) * lda + (i - 1)];
  };
  for (int j = j0; j < j0 + count; ++j) {
    for (int k = k0; k < k0 + steps; ++k) {
      if (at(k, k) == 0.0) continue;
      std::swap(at(k, j), at(ipvt[k - 1], j));
      const double t = at(k, j);
      if (t == 0.0) continue;
      for (int i = k + 1; i <= n; ++i) at(i, j) += t * at(i, k);
    }
  }
}

// Groups of steps on blocks of columns, the pivot rows drawn at random (inside and below
// the group, some repeated), all on the last row, all on the diagonal, or random with
// every third pivot 0.0 (that step must not even swap); with and without zeros,
// infinities and NaNs among the values. The shapes leave partial groups, vectors, tiles
// and strips of rows. No call allocates.
TEST(ZRSimdPaths, GeStepsMatchStepByStep) {
  struct Shape {
    int n, lda, k0, steps, j0, count;
  };
  const Shape shapes[] = {{12, 12, 1, 8, 9, 4},   {40, 43, 3, 8, 11, 30},   {90, 90, 20, 5, 30, 17},
                          {70, 72, 60, 8, 68, 3}, {300, 301, 5, 8, 13, 64}, {9, 9, 1, 1, 2, 1}};
  const std::vector<SimdPath> paths = SupportedPaths();
  unsigned seed = 0;
  for (const Shape & s : shapes) {
    for (int pattern = 0; pattern < 4; ++pattern) {
      for (bool special : {false, true}) {
        SCOPED_TRACE(testing::Message()
                     << "n = " << s.n << ", steps " << s.k0 << " + " << s.steps << ", pattern "
                     << pattern << (special ? ", non-finite" : ""));
        std::mt19937_64 gen(++seed);
        Vec a = RandomValues(gen, static_cast<std::size_t>(s.lda) * s.n, special);
        std::vector<int> ipvt(static_cast<std::size_t>(s.n));
        for (int k = s.k0; k < s.k0 + s.steps; ++k) {
          const int below = k + static_cast<int>(gen() % static_cast<unsigned>(s.n - k + 1));
          ipvt[k - 1] = pattern == 1 ? s.n : pattern == 2 ? k : below;
          if (pattern == 3 && k % 3 == 0) a[static_cast<std::size_t>(k - 1) * s.lda + k - 1] = 0.0;
        }
        Vec want = a;
        ScalarGeSteps(want, s.lda, s.n, ipvt, s.k0, s.steps, s.j0, s.count);
        for (SimdPath path : paths) {
          SCOPED_TRACE(ZRMath_920::matrix_detail::SimdPathName(path));
          ForcedPath forced(path);
          ASSERT_TRUE(forced.Ok());
          Vec got = a;
          zrtest::AllocCounter counter;
          ZRMath_920::matrix_detail::ApplyGeSteps(got.data(), s.lda, s.n, ipvt.data(), s.k0,
                                                  s.steps, s.j0, s.count);
          const long count = counter.Count();
          EXPECT_EQ(count, 0);
          EXPECT_TRUE(SameBits(got, want));
        }
      }
    }
  }
}

}  // namespace
