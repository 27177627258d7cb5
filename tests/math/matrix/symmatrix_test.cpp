// ZRSymMatrix storage and the operations around it: sizes and allocation failure, row and
// column walks of the packed buffer, diagonal edits, zeroing rules at their boundaries,
// sub-matrices and expansion, model checks and the display text.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "support/capture.h"
#include "support/colmajor.h"
#include "support/matrixconv.h"
#include "support/symmatrices.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace {

using ZRMath_920::ZRBitSet;
using ZRMath_920::ZRRectMatrix;
using ZRMath_920::ZRSymMatrix;
using zrtest::ColMatrix;
using zrtest::FromSym;
using zrtest::Packed;
using zrtest::SymFromRows;
using Vec = std::vector<double>;

Vec RowMajor(const ZRRectMatrix & r) {
  Vec v;
  for (int i = 0; i < r.GetNRows(); ++i)
    for (int j = 0; j < r.GetNCols(); ++j) v.push_back(r.GetElem(i, j));
  return v;
}

ZRBitSet Bits(const std::vector<bool> & b) {
  return ZRBitSet(b);
}

// got(i, j) must be a(at[i], at[j]), or 0.0 where at[i] or at[j] is -1.
void ExpectPicked(const ColMatrix & got, const ColMatrix & a, const std::vector<int> & at) {
  ASSERT_EQ(got.rows, static_cast<int>(at.size()));
  for (int i = 0; i < got.rows; ++i)
    for (int j = 0; j < got.rows; ++j)
      EXPECT_EQ(got(i, j), at[i] < 0 || at[j] < 0 ? 0.0 : a(at[i], at[j])) << i << "," << j;
}

// Dense in storage, but not exactly ZRSymMatrix: operations read it through GetElem.
class Derived : public ZRSymMatrix {
 public:
  using ZRSymMatrix::ZRSymMatrix;
};

TEST(ZRSymMatrixStorage, SizesAllocationFailureAndResize) {
  // 65536 rows need 2,147,516,416 elements, past INT_MAX: refused before allocating.
  struct {
    int line;
    ZRSymMatrix m;
    int rows, blocks, blockSize;
  } const cases[] = {{__LINE__, ZRSymMatrix(), 0, 0, 0},
                     {__LINE__, ZRSymMatrix(-3, true), 0, 1, 0},
                     {__LINE__, ZRSymMatrix(3, true), 3, 1, 3},
                     {__LINE__, ZRSymMatrix(2, 3, true), 6, 2, 3},
                     {__LINE__, ZRSymMatrix(0, 3, true), 0, 0, 0},
                     {__LINE__, ZRSymMatrix(65535, -1, true), 0, 0, 0},
                     {__LINE__, ZRSymMatrix(65536, false), -1, 1, -1},
                     {__LINE__, ZRSymMatrix(2, 32768, false), -1, 1, -1},
                     {__LINE__, ZRSymMatrix(65536, 65536, false), -1, 1, -1}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(c.m.GetNRows(), c.rows);
    EXPECT_EQ(c.m.GetNBlocks(), c.blocks);
    EXPECT_EQ(c.m.GetBlockSize(), c.blockSize);
    EXPECT_EQ(ZRSymMatrix(c.m).GetNRows(), c.rows);
  }
  ZRSymMatrix m(65536, false);
  EXPECT_FALSE(m.Resize(65536));
  EXPECT_TRUE(m.Resize(2));  // an invalid matrix can be sized again
  EXPECT_EQ(Packed(m), Vec(3, 0.0));
  m = SymFromRows(3, {1, 2, 3, 4, 5, 6});
  ASSERT_TRUE(m.Resize(2));  // packed by rows: the leading triangle stays
  EXPECT_EQ(Packed(m), (Vec{1, 2, 3}));
  ASSERT_TRUE(m.Resize(3));
  EXPECT_EQ(Packed(m), (Vec{1, 2, 3, 0, 0, 0}));
  EXPECT_TRUE(m.SetNRows(-1, false));
  EXPECT_TRUE(m.GetNRows() == 0 && m.GetNBlocks() == 0);

  ZRSymMatrix b(10, true);
  EXPECT_FALSE(b.SetNBlocks(3) || b.SetNBlocks(0));
  ASSERT_TRUE(b.SetNBlocks(5));
  EXPECT_EQ(b.GetBlockSize(), 2);
  b.SetElem(7, 2, 1.5);  // block (3, 1), element (1, 0)
  EXPECT_EQ(b.GetElem(3, 1, 1, 0), 1.5);
  EXPECT_EQ(b.GetElem(1, 3, 0, 1), 1.5);
}

TEST(ZRSymMatrixAccess, RowsWalkAlongAndDownThePackedTriangle) {
  const ColMatrix a = zrtest::RandomSymmetric(6, 1);
  ZRSymMatrix s = zrtest::ToSym(a);
  Vec row;
  for (int i = 0; i < 6; ++i) {
    ASSERT_TRUE(s.GetRow(i, row));
    EXPECT_EQ(row, Vec(a.a.begin() + 6 * i, a.a.begin() + 6 * (i + 1))) << i;  // column i
  }
  const Vec v = {10, 11, 12, 13, 14, 15};
  EXPECT_FALSE(s.GetRow(6, row) || s.GetRow(-1, row) || s.PutRow(2, Vec(5, 1.0)) ||
               s.PutRow(6, v) || s.ZeroOut(6) || s.SetElem(21, 1.0) || s.SetElem(-1, 1.0));
  ASSERT_TRUE(s.PutRow(2, v) && s.SetRowColToConst(4, -2.0) && s.ZeroOut(1));
  ColMatrix want = a;  // the three edits in order, on the full matrix
  for (int k = 0; k < 6; ++k) want(2, k) = want(k, 2) = v[k];
  for (int k = 0; k < 6; ++k) want(4, k) = want(k, 4) = -2.0;
  for (int k = 0; k < 6; ++k) want(1, k) = want(k, 1) = 0.0;
  EXPECT_EQ(FromSym(s).a, want.a);
  EXPECT_TRUE(s.SetElem(20, 1.0));
}

TEST(ZRSymMatrixAccess, IsZeroRowLooksAtSetColumnsOnly) {
  // Row 1 of 0 1 0 / 1 0 NaN / 0 NaN 5: non-zero in columns 0 and 2 only.
  const ZRSymMatrix m = SymFromRows(3, {0, 1, 0, 0, std::nan(""), 5});
  struct {
    int line, row;
    std::vector<bool> set;
    bool want;
  } const cases[] = {
      {__LINE__, 1, {false, true, false}, true}, {__LINE__, 1, {true, true, false}, false},
      {__LINE__, 1, {false, true, true}, false},  // NaN is not zero
      {__LINE__, 1, {false, true}, true},         // short set
      {__LINE__, 0, {false, false, true}, true}, {__LINE__, 3, {true, true, true}, false}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(m.IsZeroRow(c.row, Bits(c.set)), c.want);
  }
}

TEST(ZRSymMatrixArithmetic, AXpYReadsDenseAndOtherMatrices) {
  ZRSymMatrix m = SymFromRows(2, {1, 2, 3});
  Derived d(2, true);
  d.SetElem(1, 0, 10.0);
  ASSERT_TRUE(m.ComputeAXpY(2.0, SymFromRows(2, {1, 1, 1})) && m.ComputeAXpY(-1.0, d));
  EXPECT_EQ(Packed(m), (Vec{3, -6, 5}));
  EXPECT_FALSE(m.ComputeAXpY(1.0, ZRSymMatrix(3, true)));
  m.ChangeSign();
  m.MultiplyByNumber(0.5);
  m.AddToDiagonal(1.0);
  EXPECT_EQ(Packed(m), (Vec{-0.5, 3, -1.5}));
}

TEST(ZRSymMatrixDiagonal, CheckedDiagonalsAndExtremes) {
  Vec d;
  SymFromRows(3, {1, 9, 4, 9, 9, 2}).GetNCheckDiagonal(d, 0.5, 7.0);  // Intended: lo, hi ignored
  EXPECT_EQ(d, (Vec{4, 4, 4}));
  SymFromRows(2, {-1, 0, -2}).GetNCheckDiagonal(d, 0.5, 7.0);
  EXPECT_EQ(d, (Vec{0, 0}));
  SymFromRows(3, {1, 9, 4, 9, 9, 2}).GetNCheckDiagonalOld(d, 3.0, 7.0);  // Intended: the old rule
  EXPECT_EQ(d, (Vec{7, 4, 7}));

  double maxD = 1, minD = 2, maxO = 3, minO = 4;
  ZRSymMatrix().MaxMinDiagOffDiag(maxD, minD, maxO, minO);
  EXPECT_EQ(Vec({maxD, minD, maxO, minO}), (Vec{1, 2, 3, 4}));  // untouched
  SymFromRows(3, {1, -7, 4, 8, 0.5, -2}).MaxMinDiagOffDiag(maxD, minD, maxO, minO);
  EXPECT_EQ(Vec({maxD, minD, maxO, minO}), (Vec{4, -2, 8, -7}));
  SymFromRows(1, {3}).MaxMinDiagOffDiag(maxD, minD, maxO, minO);
  EXPECT_EQ(Vec({maxO, minO}), (Vec{-1.7976931348623157e308, 1.7976931348623157e308}));

  ZRSymMatrix m(3, true);
  EXPECT_FALSE(m.AddToDiagonalPart(2, 2, 1.0) || m.AddToDiagonalPart(-1, 1, 1.0) ||
               m.AddToDiagonalPart(0, 0, 1.0));
  ASSERT_TRUE(m.AddToDiagonalPart(1, 2, 1.0));
  EXPECT_EQ(Packed(m), (Vec{0, 0, 1, 0, 0, 1}));  // nothing from the refused calls
}

TEST(ZRSymMatrixDiagonal, RepairsOfDiagonalAndCorrelations) {
  ZRSymMatrix m = SymFromRows(4, {8, 1, -1, 2, 3, 0.8, 4, 5, 6, 0.08});
  ASSERT_TRUE(m.ReplaceDiagZeroes(0.1));  // 0.1 = 0.8 / 8 is not above eps: replaced
  EXPECT_EQ(Packed(m), (Vec{8, 1, 8, 2, 3, 8, 4, 5, 6, 8}));
  ZRSymMatrix neg = SymFromRows(2, {-1, 0, 0});
  EXPECT_FALSE(m.ReplaceDiagZeroes(-0.1) || neg.ReplaceDiagZeroes(0.1));

  ZRSymMatrix a = SymFromRows(3, {1, 1, 2, 1, 1, 3}), b = SymFromRows(3, {1, 1, 0, 1, 1, 3});
  ASSERT_TRUE(a.SetCovarZeros(b));  // row 1 has no variance in b
  EXPECT_EQ(Packed(a), (Vec{1, 0, 0, 1, 0, 3}));
  EXPECT_EQ(Packed(b), Packed(a));
  EXPECT_FALSE(a.SetCovarZeros(neg));

  ZRSymMatrix c = SymFromRows(3, {1, 1.5, 1, -1, 0.99, 1});
  ASSERT_TRUE(c.AdjustOffDiagCorr(0.25));
  EXPECT_EQ(Packed(c), (Vec{1, 0.75, 1, -0.75, 0.99, 1}));
  EXPECT_FALSE(c.AdjustOffDiagCorr(1.0) || c.AdjustOffDiagCorr(-0.1));
}

TEST(ZRSymMatrixZeroing, ThresholdsAtTheirBoundaries) {
  // Off-diagonal 0.5 against tol x sqrt(4 x 1) = 0.5: "not above" zeroes it.
  ZRSymMatrix m = SymFromRows(3, {4, 0.5, 1, 0.50001, -0.2, 1});
  m.ZeroOutNonDiag(0.25);
  EXPECT_EQ(Packed(m), (Vec{4, 0, 1, 0.50001, 0, 1}));
  m.ZeroOutNonDiag(0.0);  // nothing without a positive tol
  EXPECT_EQ(m.GetElem(2, 0), 0.50001);

  ZRSymMatrix s = SymFromRows(3, {-10, 0.999, 2, 1, -1, 0.5});
  s.ZeroOutAllSmall(0.1);  // below 0.1 x 10, diagonal included
  EXPECT_EQ(Packed(s), (Vec{-10, 0, 2, 1, -1, 0}));

  // Running maximum 0, 4, 4, 4: rows 0 (maximum still 0) and 2 (0.1 / 4 < tol) go.
  ZRSymMatrix r = SymFromRows(4, {0, 1, 4, 1, 1, 0.1, 1, 1, 1, 2});
  r.ZeroOutRowsForSmallDiag(0.05);
  EXPECT_EQ(Packed(r), (Vec{0, 0, 4, 0, 0, 0, 0, 1, 0, 2}));

  ZRSymMatrix z = SymFromRows(3, {1, 2, 3, 4, 5, 6});
  EXPECT_FALSE(z.ZeroOutRedundant(Bits({true, false})));
  ASSERT_TRUE(z.ZeroOutRedundant(Bits({true, false, true})));
  EXPECT_EQ(Packed(z), (Vec{1, 0, 0, 4, 0, 6}));
}

TEST(ZRSymMatrixSubmatrix, DeleteExtractAndExpand) {
  const ColMatrix a = zrtest::RandomSymmetric(5, 2);
  const ZRSymMatrix s = zrtest::ToSym(a);
  const std::vector<int> picks[] = {{3, 0, 3}, {}, {4, 2, 1, 0}};
  for (const auto & idx : picks) {
    SCOPED_TRACE(idx.size());
    ZRSymMatrix out(1, true);
    ASSERT_TRUE(s.ExtractSubmatrix(idx, out));
    ExpectPicked(FromSym(out), a, idx);
  }
  ZRSymMatrix out, del = s, kept, one(1, true);
  EXPECT_FALSE(s.ExtractSubmatrix({0, 5}, out));
  ASSERT_TRUE(del.DeleteOneRow(1));
  EXPECT_FALSE(del.DeleteOneRow(4));
  ExpectPicked(FromSym(del), a, {0, 2, 3, 4});
  s.ExtractFirstNRows(kept);
  ExpectPicked(FromSym(kept), a, {0, 1, 2, 3});
  one.ExtractFirstNRows(one);
  EXPECT_EQ(one.GetNRows(), 0);

  // Rows 0..2 of a 3 x 3 go to the set bits 1, 3, 4 of a 6-bit set; rows 0, 2, 5 are zero.
  ZRSymMatrix small = SymFromRows(3, {1, 2, 3, 4, 5, 6}), big;
  small.Expand(Bits({false, true, false, true, true, false}), big);
  ExpectPicked(FromSym(big), FromSym(small), {-1, 0, -1, 1, 2, -1});
}

TEST(ZRSymMatrixSubmatrix, BorderedMatricesAndCopiesIntoColumns) {
  const ZRSymMatrix s = SymFromRows(2, {1, 2, 3});
  ZRRectMatrix r(1, 2, true), rect;
  r.SetElem(0, 0, 7.0);
  r.SetElem(0, 1, 8.0);
  ZRSymMatrix sym;
  ASSERT_TRUE(s.ExpandSym(r, sym) && s.ExpandSymToRect(r, rect));
  EXPECT_EQ(Packed(sym), (Vec{1, 2, 3, 7, 8, 0}));
  EXPECT_EQ(RowMajor(rect), (Vec{1, 2, 7, 2, 3, 8, 7, 8, 0}));
  EXPECT_FALSE(s.ExpandSym(ZRRectMatrix(1, 3, true), sym) ||
               ZRSymMatrix().ExpandSymToRect(ZRRectMatrix(1, 0, true), rect));

  ZRSymMatrix t = SymFromRows(3, {9, 9, 9, 9, 9, 9});
  ASSERT_TRUE(t.ReplaceFirstRows(s, 2));
  EXPECT_EQ(Packed(t), (Vec{1, 2, 3, 9, 9, 9}));
  EXPECT_FALSE(t.ReplaceFirstRows(s, 3));

  // Rows 0 and 2 of 1 2 4 / 2 3 5 / 4 5 6, first 3 elements each, into columns 1 and 2.
  const ZRSymMatrix m = SymFromRows(3, {1, 2, 3, 4, 5, 6});
  ZRRectMatrix h(3, 3, true);
  ZRBitSet done;
  int cols = 1;
  ASSERT_TRUE(m.ExtractH(0, 2, Bits({true, false, true}), h, cols, done, 3));
  EXPECT_EQ(cols, 3);
  EXPECT_EQ(RowMajor(h), (Vec{0, 1, 4, 0, 2, 5, 0, 4, 6}));
  EXPECT_EQ(done, Bits({true, false, true}));
  EXPECT_FALSE(m.ExtractH(0, 2, Bits({true, false, true}), h, cols, done, 3) ||  // H is full
               m.ExtractH(2, 3, Bits({true, true, true}), h, cols, done, 3) ||
               m.CopyRowToRColumn(1, h, 3, 3));
  ASSERT_TRUE(m.CopyRowToRColumn(1, h, 0, 2));
  EXPECT_EQ(RowMajor(h), (Vec{2, 1, 4, 3, 2, 5, 0, 4, 6}));
}

TEST(ZRSymMatrixModelChecks, GmgDependenciesAndCoefficients) {
  const ZRSymMatrix g(3, true);
  ZRSymMatrix s = SymFromRows(3, {2, 1, 0, 1, 1, 5});
  ZRBitSet neg;
  bool allGone = true;
  int count = -1;
  // M(0, 0) < 0 marks row 0; row 1 keeps S(1, 1) = 0, not above 0; row 2 is not in set.
  ASSERT_TRUE(g.CheckGMG({-1, 0, 1, 0, 0, 1}, Bits({true, true, false}), s, neg, allGone, count));
  EXPECT_TRUE(count == 2 && allGone);
  EXPECT_EQ(neg, Bits({true, false, false}));
  EXPECT_EQ(Packed(s), (Vec{0, 0, 0, 0, 0, 5}));
  EXPECT_FALSE(g.CheckGMG({1, 0, 1}, Bits({true, true, true}), s, neg, allGone, count));

  // Rows 0, 1, 3 of M, where row 3 = row 0 + row 1: one dependency.
  const Vec M = {1, 0, 1, 7, 7, 7, 1, 1, 7, 2};
  ZRSymMatrix w;
  EXPECT_EQ(w.CheckMDependent(4, M, Bits({true, true, false, true}), 1e-10), 1);
  EXPECT_EQ(w.GetNRows(), 3);
  EXPECT_EQ(w.CheckMDependent(3, M, Bits({true, true, false, true}), 1e-10), 0);
  EXPECT_EQ(w.CheckMDependent(0, M, Bits({}), 1e-10), 0);
  EXPECT_TRUE(w.CheckMDependent(-1, M, Bits({}), 1e-10) == -1 &&
              w.CheckMDependent(5, M, Bits({true, true, true, true, true}), 1e-10) == -1);

  Vec b;
  ASSERT_TRUE(SymFromRows(3, {1, 2, 3, 4, 5, 6}).GetRegCoeffs(b, Bits({false, true})));
  EXPECT_EQ(b, (Vec{0, 5}));
  EXPECT_FALSE(SymFromRows(3, {1, 2, 3, 4, 5, 6}).GetRegCoeffs(b, Bits({true})));
  ASSERT_TRUE(ZRSymMatrix(1, true).GetRegCoeffs(b, Bits({})));
  EXPECT_TRUE(b.empty());
}

TEST(ZRSymMatrixDisplay, ExactText) {
  const ZRSymMatrix m = SymFromRows(2, {1, 2.5, -3});
  zrtest::DisplayCapture cap;
  m.Display();
  EXPECT_EQ(cap.Text(),
            "\nZRSymMatrix display start\nThe number of rows = 2\nThe number of blocks = 1"
            "\nThe block size = 2\nLower triangular (number of elements = 3, number of rows = 2)"
            "\nrow  0: \n  1\nrow  1: \n  2.5 -3\nZRSymMatrix display end");
  cap.Clear();
  m.DisplayF();
  EXPECT_EQ(cap.Text(),
            "\nZRSymMatrix full matrix display start\nNumber of rows = 2"
            "\nrow 0:  (size = 2)\n  = 1\n  = 2.5\nrow 1:  (size = 2)\n  = 2.5\n  = -3"
            "\nZRSymMatrix display end");
  cap.Clear();
  m.DisplayS();
  EXPECT_EQ(cap.Text(), "\n 1\n 2.5 -3");
}

}  // namespace
