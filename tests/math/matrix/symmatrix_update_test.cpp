// Tests of the rank-one updates of ZRSymMatrix against explicit sums of outer products,
// and of their failure values.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <vector>

#include "zrcommon920r/math/matrix/rectmatrix.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace {

using ZRMath_920::ZRBitSet;
using ZRMath_920::ZRRectMatrix;
using ZRMath_920::ZRSymMatrix;
using Vec = std::vector<double>;
using Idx = std::vector<int>;

constexpr double kEps = 2.220446049250313e-16;
constexpr int kN = 7;

Vec RandomVec(int n, unsigned seed) {
  std::mt19937 gen(seed);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  Vec v(n);
  for (double & x : v) x = u(gen);
  return v;
}

ZRSymMatrix RandomSym(int n, unsigned seed) {
  const Vec v = RandomVec(n * (n + 1) / 2, seed);
  ZRSymMatrix s(n, true);
  for (int k = 0; k < n * (n + 1) / 2; ++k) s.SetElem(k, v[k]);
  return s;
}

Vec Packed(const ZRSymMatrix & s) {
  Vec v(s.GetNRows() * (s.GetNRows() + 1) / 2);
  for (int k = 0; k < static_cast<int>(v.size()); ++k) v[k] = s.GetElem(k);
  return v;
}

ZRRectMatrix Rect(int rows, int cols, const Vec & v) {
  ZRRectMatrix r(rows, cols, true);
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j) r.SetElem(i, j, v[i * cols + j]);
  return r;
}

// s0 + w sum_r x_r x_r' element by element in long double; every element within a few
// roundings of its terms' magnitude.
void ExpectOuterSum(const ZRSymMatrix & got, const ZRSymMatrix & s0, double w,
                    const std::vector<Vec> & xs) {
  for (int i = 0; i < kN; ++i)
    for (int j = 0; j <= i; ++j) {
      long double want = s0.GetElem(i, j), size = std::fabs(s0.GetElem(i, j));
      for (const Vec & x : xs) {
        want += static_cast<long double>(w) * x[i] * x[j];
        size += std::fabs(w * x[i] * x[j]);
      }
      SCOPED_TRACE(testing::Message() << "(" << i << ", " << j << ")");
      EXPECT_LE(std::fabs(got.GetElem(i, j) - static_cast<double>(want)),
                (xs.size() + 2) * kEps * static_cast<double>(size));
    }
}

TEST(ZRSymMatrixUpdate, MatchExplicitOuterProducts) {
  const ZRSymMatrix s0 = RandomSym(kN, 1);
  Vec x = RandomVec(kN, 2);
  x[1] = x[4] = 0.0;  // dummy-coded zeros skip their rows
  const Vec z(x.begin(), x.end() - 1);
  const double y = x.back();
  const Vec sv{0.5, -2.0, 0.75};
  ZRBitSet set(kN);
  set.SetSubset({0, 1, 3, 5, 6}, true);
  Vec masked = x;
  for (int i : {2, 4}) masked[i] = 0.0;
  const Vec ab = RandomVec(5 * kN, 3);  // [A B], A the first 3 columns
  Vec av, bv;
  std::vector<Vec> rows;
  for (int r = 0; r < 5; ++r) {
    rows.emplace_back(ab.begin() + r * kN, ab.begin() + (r + 1) * kN);
    av.insert(av.end(), rows.back().begin(), rows.back().begin() + 3);
    bv.insert(bv.end(), rows.back().begin() + 3, rows.back().end());
  }
  const ZRRectMatrix a = Rect(5, 3, av), b = Rect(5, 4, bv);
  struct {
    int line;
    std::function<bool(ZRSymMatrix &)> op;
    double w;
    std::vector<Vec> xs;
  } const cases[] = {
      {__LINE__, [&](ZRSymMatrix & s) { return s.UpdateXX(x, 0.75); }, 0.75, {x}},
      {__LINE__, [&](ZRSymMatrix & s) { return s.UpdateXXPosNegW(x, -1.5); }, -1.5, {x}},
      {__LINE__,
       [&](ZRSymMatrix & s) {
         return s.UpdateXXSparse(2, {0, 1, 4}, sv, 2.0);
       },
       2.0,
       {{0, 0, 0.5, -2.0, 0, 0, 0.75}}},
      {__LINE__,
       [&](ZRSymMatrix & s) {
         return s.UpdateXXCornerSparse(3, {0, 2, 3}, sv, 0.5, 4);
       },
       0.5,
       {{0, 0, 0, 0.5, 0, -2.0, 0.75}}},
      {__LINE__, [&](ZRSymMatrix & s) { return s.UpdateXXNonRedun(x, set, 1.25); }, 1.25, {masked}},
      {__LINE__, [&](ZRSymMatrix & s) { return s.UpdateZZ(z, y, 0.5), true; }, 0.5, {x}},
      {__LINE__, [&](ZRSymMatrix & s) { return s.IncrementByVV(x.data(), 3.0), true; }, 3.0, {x}},
      {__LINE__, [&](ZRSymMatrix & s) { return s.UpdateXXMat2(a, b, 0.5); }, 0.5, rows},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ZRSymMatrix s = s0;
    ASSERT_TRUE(c.op(s));
    ExpectOuterSum(s, s0, c.w, c.xs);
  }
}

TEST(ZRSymMatrixUpdate, FailuresLeaveMatrixUnchanged) {
  const ZRSymMatrix s0 = RandomSym(kN, 4);
  ZRSymMatrix s = s0;
  const Vec x = RandomVec(kN, 5), shortX(kN - 1, 1.0), v2{1.0, 2.0};
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const ZRRectMatrix a(3, 3, true), b(3, 4, true), b5(3, 5, true), b2rows(2, 4, true);
  struct {
    int line;
    bool got, want;
  } const cases[] = {
      {__LINE__, s.UpdateXX(x, 0.0), false},
      {__LINE__, s.UpdateXX(x, -1.0), false},
      {__LINE__, s.UpdateXX(x, nan), false},
      {__LINE__, s.UpdateXX(shortX, 1.0), false},
      {__LINE__, s.UpdateXXPosNegW(x, 0.0), true},  // adds nothing
      {__LINE__, s.UpdateXXPosNegW(shortX, -1.0), false},
      {__LINE__, s.UpdateXXSparse(0, {0, 1}, {1.0}, 1.0), false},
      {__LINE__, s.UpdateXXSparse(0, {1, 0}, v2, 1.0), false},
      {__LINE__, s.UpdateXXSparse(0, {1, 1}, v2, 1.0), false},
      {__LINE__, s.UpdateXXSparse(5, {0, 2}, v2, 1.0), false},
      {__LINE__, s.UpdateXXSparse(-1, {0, 2}, v2, 1.0), false},
      {__LINE__, s.UpdateXXSparse(0, {0, 2}, v2, 0.0), false},
      {__LINE__, s.UpdateXXCornerSparse(4, {0}, {1.0}, 1.0, 4), false},
      {__LINE__, s.UpdateXXCornerSparse(0, {0, 3}, v2, 1.0, 3), false},
      {__LINE__, s.UpdateXXCornerSparse(0, {}, {}, 1.0, 0), false},
      {__LINE__, s.UpdateXXNonRedun(x, ZRBitSet(kN - 1), 1.0), false},
      {__LINE__, s.UpdateXXMat2(a, b5, 1.0), false},
      {__LINE__, s.UpdateXXMat2(a, b2rows, 1.0), false},
      {__LINE__, s.UpdateXXMat2(a, b, 0.0), false},
      {__LINE__, s.SetToVW(x, shortX), false},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(c.got, c.want);
  }
  s.UpdateZZ(x, 1.0, 1.0);  // z must have n - 1 elements
  s.IncrementByVV(nullptr, 1.0);
  EXPECT_EQ(Packed(s), Packed(s0));
}

TEST(ZRSymMatrixUpdate, SetToOuterProductsResizeAndOverwrite) {
  ZRSymMatrix s = RandomSym(5, 6);
  ASSERT_TRUE(s.SetToVV({1.0, -2.0, 3.0}));
  EXPECT_EQ(s.GetNRows(), 3);
  EXPECT_EQ(Packed(s), (Vec{1, -2, 4, 3, -6, 9}));
  ASSERT_TRUE(s.SetToVW({1.0, 2.0}, {3.0, -1.0}));  // v_i w_j + w_i v_j
  EXPECT_EQ(s.GetNRows(), 2);
  EXPECT_EQ(Packed(s), (Vec{6, 5, -4}));
  ASSERT_TRUE(s.SetToVV({}));
  EXPECT_EQ(s.GetNRows(), 0);
}

}  // namespace
