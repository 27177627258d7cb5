// Non-finite elements in a cross-product matrix: a NaN or infinite pivot is a redundant
// (aliased) row for the Cholesky, sweep, inverse, solve and determinant operations, never
// an error and never NaN in what the caller reads back.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "support/colmajor.h"
#include "support/symmatrices.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace {

using ZRMath_920::ZRBitSet;
using ZRMath_920::ZRSymMatrix;
using Vec = std::vector<double>;

constexpr double kTol = 1e-10;
constexpr double kMiss = -1.7976931348623157e308;  // the system-missing value

struct Poisoned {
  const char * what;
  int i, j;  // element (i, j) and (j, i) replaced by value
  double value;
  Vec aliased;  // 1.0 at the rows that must come out redundant
};

// A well-conditioned 5 x 5 SPD matrix with one element replaced.
ZRSymMatrix Make(const Poisoned & p) {
  ZRSymMatrix a = zrtest::RandomSpd(5, 11);
  a.SetElem(p.i, p.j, p.value);
  return a;
}

bool AllFinite(const ZRSymMatrix & a) {
  for (int i = 0; i < a.GetNRows(); ++i)
    for (int j = 0; j <= i; ++j)
      if (!std::isfinite(a.GetElem(i, j))) return false;
  return true;
}

bool RowIsZero(const ZRSymMatrix & a, int i) {
  for (int j = 0; j < a.GetNRows(); ++j)
    if (a.GetElem(i, j) != 0.0) return false;
  return true;
}

const Poisoned kCases[] = {
    {"NaN pivot", 2, 2, NAN, {0, 0, 1, 0, 0}},
    {"NaN off the diagonal: the later row is aliased", 3, 1, NAN, {0, 0, 0, 1, 0}},
    {"+inf pivot against its own diagonal", 4, 4, INFINITY, {0, 0, 0, 0, 1}},
    {"-inf pivot", 0, 0, -INFINITY, {1, 0, 0, 0, 0}},
    {"system-missing pivot is a plain negative number", 1, 1, kMiss, {0, 1, 0, 0, 0}},
};

// LTChol against the matrix's own diagonal: the pivot fails x > tol diag[i], its bit stays
// clear, L(i, i) and the column below are 0.0; the substitutions give x[i] = 0.0.
TEST(ZRSymMatrixNonFinite, CholeskyMarksRowRedundant) {
  for (const Poisoned & p : kCases) {
    SCOPED_TRACE(p.what);
    const ZRSymMatrix a = Make(p);
    Vec diag;
    a.GetDiagonal(diag);
    ZRSymMatrix l = a;
    ZRBitSet set;
    // With check a NaN in diag is data, not a bad argument; a negative one is refused.
    EXPECT_EQ(l.LTChol(diag, kTol, set, !(p.value < 0.0)), 1);
    for (int r = 0; r < 5; ++r) {
      EXPECT_EQ(set.IsIn(r), p.aliased[r] == 0.0) << r;
      if (p.aliased[r] == 0.0) continue;
      for (int below = r; below < 5; ++below) EXPECT_EQ(l.GetElem(below, r), 0.0);
    }
    ZRSymMatrix s = a;
    Vec x;
    EXPECT_EQ(s.LTSolve(Vec(5, 1.0), kTol, x), 1);
    for (int r = 0; r < 5; ++r) {
      EXPECT_TRUE(std::isfinite(x[r])) << r;
      if (p.aliased[r] != 0.0) {
        EXPECT_EQ(x[r], 0.0);
      }
    }
  }
}

// The generalised inverses: CholInverse, LTChol + LTInverse and SweepOnAll with both flags
// zero the aliased row and column and agree with each other on the rest, all finite.
TEST(ZRSymMatrixNonFinite, GeneralisedInversesZeroTheRowAndAgree) {
  for (const Poisoned & p : kCases) {
    SCOPED_TRACE(p.what);
    const ZRSymMatrix a = Make(p);
    Vec diag;
    a.GetDiagonal(diag);
    ZRSymMatrix chol;
    EXPECT_EQ(a.CholInverse(diag, kTol, chol), 4);
    ZRSymMatrix lt = a;
    lt.LTChol(diag, kTol, false);
    EXPECT_TRUE(lt.LTInverse());
    ZRSymMatrix swept = a;
    ZRBitSet set;
    EXPECT_TRUE(swept.SweepOnAll(kTol, set, !(p.value < 0.0), true, true, nullptr));
    for (const ZRSymMatrix * g : {&chol, &lt, &swept}) {
      EXPECT_TRUE(AllFinite(*g));
      for (int r = 0; r < 5; ++r) {
        if (p.aliased[r] != 0.0) {
          EXPECT_TRUE(RowIsZero(*g, r)) << r;
        }
        for (int c = 0; c <= r; ++c)  // cond(A) ~ 10: a few hundred eps
          EXPECT_NEAR(g->GetElem(r, c), chol.GetElem(r, c), 1e-13) << r << "," << c;
      }
    }
    for (int r = 0; r < 5; ++r) EXPECT_EQ(set.IsIn(r), p.aliased[r] == 0.0) << r;
  }
}

// The indefinite solve drops the rows its rank search on A A finds NaN or infinite in
// (both rows of an off-diagonal NaN), and the determinant of a matrix with a redundant
// pivot is 0.0 with true.
TEST(ZRSymMatrixNonFinite, SolveDropsRowsAndDeterminantIsZero) {
  for (const Poisoned & p : kCases) {
    SCOPED_TRACE(p.what);
    ZRSymMatrix a = Make(p);
    Vec x;
    ASSERT_TRUE(a.SolveIndefinite(kTol, Vec(5, 1.0), x));
    for (int r = 0; r < 5; ++r) {
      EXPECT_TRUE(std::isfinite(x[r])) << r;
      if (p.aliased[r] != 0.0 || (std::isnan(p.value) && r == p.j)) {
        EXPECT_EQ(x[r], 0.0) << r;
      }
    }
    double det[2] = {7.0, 7.0};
    EXPECT_TRUE(a.ComputeDeterminant(kTol, det));
    EXPECT_TRUE(det[0] == 0.0 && det[1] == 0.0) << det[0] << " " << det[1];
  }
}

}  // namespace
