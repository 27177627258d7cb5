// Tests of the rank-one updates of ZRSymMatrix against explicit sums of outer products,
// and of their failure values.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <vector>

#include "support/colmajor.h"
#include "support/matrixconv.h"
#include "support/symmatrices.h"
#include "zrcommon920r/math/matrix/rectmatrix.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace {

using ZRMath_920::ZRBitSet;
using ZRMath_920::ZRRectMatrix;
using ZRMath_920::ZRSymMatrix;
using zrtest::Packed;
using Vec = std::vector<double>;

constexpr double kEps = 2.220446049250313e-16;
constexpr int kN = 7;

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
      EXPECT_LE(std::fabs(got.GetElem(i, j) - static_cast<double>(want)),
                (xs.size() + 2) * kEps * static_cast<double>(size))
          << "(" << i << ", " << j << ")";
    }
}

TEST(ZRSymMatrixUpdate, MatchExplicitOuterProducts) {
  const ZRSymMatrix s0 = zrtest::ToSym(zrtest::RandomSymmetric(kN, 1));
  Vec x = zrtest::RandomGeneral(kN, 1, 2).a;
  x[1] = x[4] = 0.0;  // dummy-coded zeros skip their rows
  const Vec z(x.begin(), x.end() - 1), sv{0.5, -2.0, 0.75};
  const std::vector<int> at{0, 1, 3};  // sv at 2 + at, and in the corner at 3 + at
  const Vec sparse{0, 0, 0.5, -2.0, 0, 0.75, 0}, corner{0, 0, 0, 0.5, -2.0, 0, 0.75};
  const ZRBitSet set(std::vector<bool>{true, true, false, true, false, true, true});
  const Vec masked{x[0], 0, 0, x[3], 0, x[5], x[6]};  // x outside the set counts as 0
  std::vector<Vec> rows;                              // rows of [A B], A the first 3 columns
  ZRRectMatrix a(5, 3, true), b(5, 4, true);
  for (int r = 0; r < 5; ++r) {
    rows.push_back(zrtest::RandomGeneral(kN, 1, 3 + r).a);
    for (int j = 0; j < kN; ++j)
      j < 3 ? a.SetElem(r, j, rows[r][j]) : b.SetElem(r, j - 3, rows[r][j]);
  }
  using S = ZRSymMatrix;
  struct {
    int line;
    double w;
    std::vector<Vec> xs;
    std::function<bool(S &)> op;
  } const cases[] = {
      {__LINE__, 0.75, {x}, [&](S & s) { return s.UpdateXX(x, 0.75); }},
      {__LINE__, -1.5, {x}, [&](S & s) { return s.UpdateXXPosNegW(x, -1.5); }},
      {__LINE__, 2.0, {sparse}, [&](S & s) { return s.UpdateXXSparse(2, at, sv, 2.0); }},
      {__LINE__, 0.5, {corner}, [&](S & s) { return s.UpdateXXCornerSparse(3, at, sv, 0.5, 4); }},
      {__LINE__, 1.25, {masked}, [&](S & s) { return s.UpdateXXNonRedun(x, set, 1.25); }},
      {__LINE__, 0.5, {x}, [&](S & s) { return s.UpdateZZ(z, x.back(), 0.5), true; }},
      {__LINE__, 3.0, {x}, [&](S & s) { return s.IncrementByVV(x.data(), 3.0), true; }},
      {__LINE__, 0.5, rows, [&](S & s) { return s.UpdateXXMat2(a, b, 0.5); }},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ZRSymMatrix s = s0;
    ASSERT_TRUE(c.op(s));
    ExpectOuterSum(s, s0, c.w, c.xs);
  }
}

TEST(ZRSymMatrixUpdate, FailuresLeaveMatrixUnchanged) {
  const ZRSymMatrix s0 = zrtest::ToSym(zrtest::RandomSymmetric(kN, 4));
  ZRSymMatrix s = s0;
  const Vec x = zrtest::RandomGeneral(kN, 1, 5).a, shortX(kN - 1, 1.0), v2{1.0, 2.0};
  const ZRRectMatrix a(3, 3, true), b(3, 4, true), b5(3, 5, true), b2rows(2, 4, true);
  struct {
    int line;
    bool got, want;
  } const cases[] = {{__LINE__, s.UpdateXX(x, 0.0), false},
                     {__LINE__, s.UpdateXX(x, -1.0), false},
                     {__LINE__, s.UpdateXX(x, std::nan("")), false},
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
                     {__LINE__, s.SetToVW(x, shortX), false}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(c.got, c.want);
  }
  s.UpdateZZ(x, 1.0, 1.0);  // z must have n - 1 elements
  s.IncrementByVV(nullptr, 1.0);
  EXPECT_EQ(Packed(s), Packed(s0));
}

TEST(ZRSymMatrixUpdate, SetToOuterProductsResizeAndOverwrite) {
  ZRSymMatrix s = zrtest::ToSym(zrtest::RandomSymmetric(5, 6));
  ASSERT_TRUE(s.SetToVV({1.0, -2.0, 3.0}));
  EXPECT_EQ(Packed(s), (Vec{1, -2, 4, 3, -6, 9}));  // and so 3 rows
  ASSERT_TRUE(s.SetToVW({1.0, 2.0}, {3.0, -1.0}));  // v_i w_j + w_i v_j
  EXPECT_EQ(Packed(s), (Vec{6, 5, -4}));
  ASSERT_TRUE(s.SetToVV({}));
  EXPECT_EQ(s.GetNRows(), 0);
}

}  // namespace
