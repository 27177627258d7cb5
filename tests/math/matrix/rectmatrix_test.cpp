// Tests of ZRRectMatrix and ZRSparseVector: products against plain loops (bit for bit,
// as the summation order is fixed), failure values, the settled quirks and the exact
// diagnostic text.
#include "zrcommon920r/math/matrix/rectmatrix.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstddef>
#include <initializer_list>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "support/capture.h"
#include "zrcommon920r/common/numconst.h"

namespace {

using ZRMath_920::IZRRectMatrix;
using ZRMath_920::ZRRectMatrix;
using ZRMath_920::ZRSparseVector;
using Grid = std::vector<std::vector<double>>;
using Vec = std::vector<double>;
using Idx = std::vector<int>;

const double kMiss = ZRCommon_920::kSysMisValue;
const double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kEps = 2.220446049250313e-16;

// A row of a table: the results of one or more calls, each of which should be `want`.
template <typename T>
struct Case {
  int line;
  std::vector<T> got;
  T want;
};
template <typename T>
void ExpectAll(std::initializer_list<Case<T>> cases) {
  for (const Case<T> & c : cases) {
    SCOPED_TRACE(c.line);
    for (std::size_t k = 0; k < c.got.size(); ++k) EXPECT_EQ(T(c.got[k]), c.want) << "call " << k;
  }
}

ZRRectMatrix Make(const Grid & rows) {
  const int n = static_cast<int>(rows.size());
  ZRRectMatrix a(n, n > 0 ? static_cast<int>(rows[0].size()) : 0, true);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < a.GetNCols(); ++j) a.SetElem(i, j, rows[i][j]);
  return a;
}

Grid Rows(const IZRRectMatrix & a) {
  Grid out(a.GetNRows(), Vec(a.GetNCols()));
  for (int i = 0; i < a.GetNRows(); ++i)
    for (int j = 0; j < a.GetNCols(); ++j) out[i][j] = a.GetElem(i, j);
  return out;
}

// The elements of m after an operation that should have succeeded.
Grid After(bool ok, const IZRRectMatrix & m) {
  EXPECT_TRUE(ok) << "refused";
  return Rows(m);
}

Vec RandomVec(int n, unsigned seed) {
  std::mt19937 gen(seed);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  Vec v(n);
  for (double & x : v) x = u(gen);
  return v;
}

ZRRectMatrix Random(int rows, int cols, unsigned seed) {
  const Vec v = RandomVec(rows * cols, seed);
  ZRRectMatrix a(rows, cols, true);
  for (int k = 0; k < rows * cols; ++k) a.SetElem(k / cols, k % cols, v[k]);
  return a;
}

// A matrix that isn't a ZRRectMatrix, so operations take their generic path with it or
// refuse it where a dense one is required. The generic path reads and writes only through
// the members forwarded here; the others are never called.
class OtherMatrix : public IZRRectMatrix {
 public:
  using I = IZRRectMatrix;
  using S = ZRSparseVector;
  explicit OtherMatrix(const ZRRectMatrix & m) : m(m) {}
  RectMatrixType GetMatrixType() const override { return kSparseRectMatrix; }
  bool IsValidMatrix() const override { return m.IsValidMatrix(); }
  int GetNRows() const override { return m.GetNRows(); }
  int GetNCols() const override { return m.GetNCols(); }
  double GetElem(int i, int j) const override { return m.GetElem(i, j); }
  bool SetElem(int i, int j, double x) override { return m.SetElem(i, j, x); }
  bool SetNRowsCols(int r, int c, bool z) override { return m.SetNRowsCols(r, c, z); }
  bool GetRow(int, Vec &) const override { return false; }
  bool GetCol(int, Vec &) const override { return false; }
  int AddRow(const S &) override { return -1; }
  int AddRow() override { return -1; }
  void Clear() override {}
  double ColNorm(int) const override { return 0; }
  bool ComputeMatrixProduct(const I &, I &) const override { return false; }
  bool ComputeProductMatrixTrans(const I &, ZRRectMatrix &) const override { return false; }
  bool ComputeRV(const Vec &, Vec &) const override { return false; }
  bool ComputeVR(const Vec &, Vec &) const override { return false; }
  bool CopyColToVec(int, Vec &) const override { return false; }
  bool CopyRows(const I &, int, int) override { return false; }
  bool CopyRowToRow(int, int, I &) const override { return false; }
  bool CreateBlockDiagonal(int, I &) const override { return false; }
  double DotProductCol(int, int) const override { return 0; }
  double DotProductRows(int, int) const override { return 0; }
  double DotProductRowCol(int, const I &, int) const override { return 0; }
  double DotProductRowRow(int, const I &, int) const override { return 0; }
  int ExtractColumns(const Idx &, I &) const override { return -1; }
  int ExtractRows(const Idx &, I &) const override { return -1; }
  bool IncrVecByColumn(int, Vec &, int, int, double, bool) const override { return false; }
  bool IsRowZero(int) const override { return false; }
  bool Resize(int, int) override { return false; }
  double RowNorm(int) const override { return 0; }
  bool SetRow(int, const S &) override { return false; }
  bool ShiftColumns(int, I &) const override { return false; }
  bool ShiftRows(int, I &) const override { return false; }
  bool ZeroOutRowPart(int, int, int) override { return false; }
  void Display() const override {}
  void DisplayF() const override {}

 private:
  ZRRectMatrix m;
};

TEST(ZRRectMatrixSizing, FlatResizeAndElementCountPastIntMax) {
  ZRRectMatrix a(-3, 2, true), emptied = Make({{1, 2}, {3, 4}});  // -3 counts as 0
  Vec v{9.0};
  EXPECT_TRUE(a.IsValidMatrix() && a.GetNRows() == 0 && !a.GetRow(0, v) && v == Vec{9.0});
  ASSERT_TRUE(emptied.Resize(0, 2));  // storage may remain, but no element (0, 0) exists
  EXPECT_TRUE(emptied.GetColPtr(0) == nullptr && emptied.GetRowPtr(0) == nullptr);
  ZRRectMatrix b = Make({{1, 2, 3}, {4, 5, 6}});  // the flat order is kept
  EXPECT_EQ(After(b.Resize(3, 2), b), (Grid{{1, 2}, {3, 4}, {5, 6}}));
  EXPECT_EQ(After(b.Resize(2, 4), b), (Grid{{1, 2, 3, 4}, {5, 6, 0, 0}}));

  // 46341^2 passes INT_MAX: refused before any allocation, as flat indices are ints.
  ZRRectMatrix big(46341, 46341, true), tall(INT_MAX, 0, true), wide(0, INT_MAX, true);
  EXPECT_TRUE(big.GetNRows() == -1 && big.GetNCols() == -1 && !big.IsValidMatrix());
  EXPECT_FALSE(b.Resize(65536, 32768) || b.IsValidMatrix() || ZRRectMatrix(b).IsValidMatrix());
  EXPECT_TRUE(b.AddRow() == -1 && b.AddColumn() == -1);             // an invalid matrix isn't grown
  EXPECT_EQ(After(b.SetNRowsCols(1, 2, true), b), (Grid{{0, 0}}));  // sizing again repairs it
  EXPECT_TRUE(tall.IsValidMatrix() && tall.AddRow() == -1 && wide.AddColumn() == -1);
  EXPECT_FALSE(tall.IsValidMatrix() || wide.IsValidMatrix());
  const ZRRectMatrix one = Make({{1, 2}});
  ZRRectMatrix d1 = one, d2 = one, d3 = one;
  EXPECT_FALSE(one.CreateBlockDiagonal(INT_MAX / 2 + 1, d1));  // 2^31 columns
  EXPECT_FALSE(one.ShiftColumns(INT_MAX - 1, d2) || one.ShiftRows(INT_MAX, d3));
  EXPECT_FALSE(d1.IsValidMatrix() || d2.IsValidMatrix() || d3.IsValidMatrix());
}

// Bad indices and shapes: the documented failure value, and nothing written.
TEST(ZRRectMatrixFailure, RefusedArgumentsChangeNothing) {
  ZRRectMatrix a = Make({{1, 2, 3}, {4, 5, 6}}), d = Make({{9}}), r(3, 2, true);
  const ZRRectMatrix b = Make({{1, 0}, {0, 1}, {2, 2}}), shortB = Make({{1}, {0}});
  const ZRRectMatrix empty(0, 2, true), noCols(2, 0, true);
  OtherMatrix other(a);
  Vec v(4, 0.0), out{42.0};
  const Idx idx{0, 3}, wide{3};
  const Vec val{1, 2}, one{1};
  // Among them: a D that isn't dense, widths or heights that differ, a B too short for
  // DotProductRowCol to read, not-square ExpandSquare.
  ExpectAll<bool>({
      {__LINE__, {a.ComputeRV(Vec{1.0}, out), a.ComputeVR(Vec{1.0}, out)}, false},
      {__LINE__, {empty.ComputeRDiagV({1, 2}, out), a.ComputeAXpY(0.0, r)}, false},
      {__LINE__, {a.ComputeMatrixProduct(a, d), a.ComputeProductMatrixTrans(b, d)}, false},
      {__LINE__, {d.CopyRows(a, -1, 1), d.CopyRows(a, 0, 0), d.CopyRows(a, 1, 2)}, false},
      {__LINE__, {d.CopyRows(a, INT_MAX, 1), d.CopyColumns(a, 2, 2)}, false},
      {__LINE__, {a.CopyRowToRow(0, 0, other), a.CopyRowToRow(0, 0, r)}, false},
      {__LINE__, {a.CopyColToCol(0, 0, r), d.CopyColToRow(b, 0, 0)}, false},
      {__LINE__, {a.CreateBlockDiagonal(0, d), a.CreateBlockDiagonal(2, other)}, false},
      {__LINE__, {empty.CreateBlockDiagonal(2, d), a.ShiftColumns(-1, d)}, false},
      {__LINE__, {a.ShiftRows(1, other), empty.ShiftRows(1, d)}, false},
      {__LINE__, {a.ExpandSquare(a, d), d.ExpandSquare(a, d), a.ExpandRectangular(b)}, false},
      {__LINE__,
       {a.SetRow(2, ZRSparseVector(idx, val)), a.SetRow(0, ZRSparseVector(wide, one))},
       false},
      {__LINE__, {a.ZeroOutRowPart(0, 2, 1), a.ZeroOutRowPart(0, 1, 3)}, false},
      {__LINE__, {a.ZeroOutRowPart(0, -1, 0), a.AddToColumn(0, b, 0, 1.0)}, false},
      {__LINE__, {a.AddToDiagonal(1.0), a.ColScale(3, 1.0), a.ColClean(3, 1.0)}, false},
      {__LINE__, {a.ZeroOutCol(-1), a.DeleteOneCol(3), a.DeleteOneRow(2), a.GetCol(3, v)}, false},
      {__LINE__, {a.IsRowZero(2), a.IsColZero(-1), noCols.IsRowZero(0), empty.IsColZero(0)}, false},
  });
  ExpectAll<int>({
      {__LINE__, {a.AddRow(ZRSparseVector(wide, one)), a.ExtractColumns({0}, other)}, -1},
      {__LINE__, {a.ExtractRows({}, other), a.FindFirstNonZeroInRow(2, 1.0)}, -1},
      {__LINE__, {a.FindFirstNonZeroInRow(0, 0.0), a.FindFirstNonZeroInRow(0, kNaN)}, -1},
  });
  ExpectAll<double>({
      {__LINE__, {a.DotProductCol(0, 3), a.DotProductRows(-1, 0)}, kMiss},
      {__LINE__, {a.DotProductRowCol(0, b, 2), a.DotProductRowCol(0, shortB, 0)}, kMiss},
      {__LINE__, {a.DotProductRowRow(0, b, 0), a.DotProductRowRow(0, a, 2)}, kMiss},
      {__LINE__, {a.DotProductColCol(0, b, 0), a.ColNorm(3), a.RowNorm(2)}, kMiss},
  });
  EXPECT_EQ(Rows(a), (Grid{{1, 2, 3}, {4, 5, 6}}));
  EXPECT_EQ(Rows(d), (Grid{{9}}));
  EXPECT_EQ(Rows(other), Rows(a));
  EXPECT_TRUE(out == Vec{42.0} && v == Vec(4, 0.0));
  EXPECT_TRUE(a.GetRowPtr(2) == nullptr && a.GetColPtr(-1) == nullptr);
}

// Products: each element is summed from k = 0 upward in one double, so results must
// equal plain loops bit for bit (and so carry the recursive summation bound).
TEST(ZRRectMatrixProduct, MatchesOrderedLoop) {
  // 7 x 300 x 530 crosses the groups of four rows, the depth block and the column block.
  for (const auto & [m, p, n] : {std::tuple{1, 1, 1}, std::tuple{5, 9, 4}, std::tuple{3, 0, 2},
                                 std::tuple{0, 3, 2}, std::tuple{7, 300, 530}}) {
    SCOPED_TRACE(::testing::Message() << m << " x " << p << " x " << n);
    const ZRRectMatrix a = Random(m, p, 1), b = Random(p, n, 2);
    ZRRectMatrix c = Make({{7, 7, 7}});  // old contents and shape must not matter
    ASSERT_TRUE(a.ComputeMatrixProduct(b, c));
    ASSERT_TRUE(c.GetNRows() == m && c.GetNCols() == n);
    for (int i = 0; i < m; ++i) {
      for (int j = 0; j < n; ++j) {
        double sum = 0.0;
        for (int k = 0; k < p; ++k) sum += a.GetElem(i, k) * b.GetElem(k, j);
        ASSERT_EQ(c.GetElem(i, j), sum) << i << ", " << j;
        ASSERT_EQ(c.GetElem(i, j), a.DotProductRowCol(i, b, j));
      }
    }
  }
}

TEST(ZRRectMatrixProduct, AliasesAndGenericOperands) {
  const ZRRectMatrix a = Random(6, 6, 3), b = Random(6, 5, 4);
  ZRRectMatrix want, square, self = a, aat = a, bt = b, viaTrans;
  ASSERT_TRUE(a.ComputeMatrixProduct(b, want) && a.ComputeMatrixProduct(a, square));
  EXPECT_EQ(After(self.ComputeMatrixProduct(self, self), self), Rows(square));  // C is both
  OtherMatrix oc(Make({{1}}));
  EXPECT_EQ(After(a.ComputeMatrixProduct(OtherMatrix(b), oc), oc), Rows(want));
  bt.Transpose();  // A (B')' = A B, summed in the same order
  EXPECT_EQ(After(a.ComputeProductMatrixTrans(bt, viaTrans), viaTrans), Rows(want));
  EXPECT_EQ(After(a.ComputeProductMatrixTrans(OtherMatrix(bt), viaTrans), viaTrans), Rows(want));
  ASSERT_TRUE(aat.ComputeProductMatrixTrans(aat, aat));
  for (int i = 0; i < 6; ++i) EXPECT_EQ(aat.GetElem(i, i), a.DotProductRows(i, i));
}

TEST(ZRRectMatrixProduct, MatrixVectorMatchesOrderedLoops) {
  for (int m : {0, 1, 5, 8, 11}) {  // whole and partial groups of four rows
    SCOPED_TRACE(m);
    const int p = 7;
    const ZRRectMatrix a = Random(m, p, 7);
    const Vec v = RandomVec(p + 2, 8), w = RandomVec(m, 9);  // v's surplus is ignored
    Vec av, wa, raw(m + 1, -1.0), inPlace = v, wantAv(m, 0.0), wantWa(p, 0.0);
    ASSERT_TRUE(a.ComputeRV(v, av) && a.ComputeVR(w, wa) && a.ComputeRV(v.data(), raw.data()));
    for (int i = 0; i < m; ++i)
      for (int j = 0; j < p; ++j) wantAv[i] += a.GetElem(i, j) * v[j];
    for (int j = 0; j < p; ++j)
      for (int i = 0; i < m; ++i) wantWa[j] += w[i] * a.GetElem(i, j);
    EXPECT_EQ(av, wantAv);
    EXPECT_EQ(wa, wantWa);
    EXPECT_EQ(Vec(raw.begin(), raw.end() - 1), wantAv);
    EXPECT_EQ(raw[m], -1.0);  // exactly m elements written
    ASSERT_TRUE(a.ComputeRV(inPlace, inPlace));
    EXPECT_EQ(inPlace, av);
  }
  Vec out;
  ASSERT_TRUE(Make({{1, 2}, {3, 4}, {5, 6}}).ComputeRDiagV({1, 0, 0, 1, 9}, out));
  EXPECT_EQ(out, (Vec{1, 3, 5, 2, 4, 6}));  // blocks of 2; the 9 is ignored
}

TEST(ZRRectMatrixProduct, SparseVectorAndBilinearForms) {
  const ZRRectMatrix a = Make({{1, 2, 3}, {4, 5, 6}});
  // a s by ComputeRV, else s' a by ComputeVR; out starts as four -5s.
  const auto sparse = [&](int line, bool rv, const Idx & idx, const Vec & val, bool ok,
                          const Vec & want) {
    SCOPED_TRACE(line);
    Vec out(4, -5.0);
    EXPECT_EQ(rv ? a.ComputeRV(idx, val, out) : a.ComputeVR(idx, val, out), ok);
    EXPECT_EQ(out, want);
  };
  sparse(__LINE__, true, {0, 2}, {10, 1}, true, {13, 46});
  sparse(__LINE__, true, {}, {}, true, {0, 0});
  sparse(__LINE__, true, {1, 3}, {1, 100}, true, {2, 5});   // Intended: index 3 passes, adds 0
  sparse(__LINE__, true, {1, 4}, {1, 100}, false, {0, 0});  // out is zeroed all the same
  sparse(__LINE__, true, {1, 2}, {1}, false, {0, 0});
  sparse(__LINE__, false, {1}, {2}, true, {8, 10, 12});
  sparse(__LINE__, false, {0, 2}, {1, 7}, true, {1, 2, 3});
  sparse(__LINE__, false, {3}, {1}, false, {0, 0, 0});

  const ZRRectMatrix s = Make({{1, 2, 3}, {4, 5, 6}, {7, 8, 10}});
  const Idx i02{0, 2}, i01{0, 1}, i0{0}, i1{1}, i2{2}, none{};
  const Vec v21{2, 1}, v13{1, 3}, v11{1, 1}, v1{1}, v2{2}, empty{};
  ExpectAll<double>({
      // 2 (s00 + 3 s02) + (s20 + 3 s22) = 2 * 10 + 37
      {__LINE__,
       {s.ComputeSpVRSpW(0, i02, v21, 0, i02, v13), s.ComputeVRW(i02, v21, i02, v13)},
       57},
      {__LINE__, {s.ComputeSpVRSpW(1, i01, v11, 2, i0, v2)}, 32},  // rows 1, 2 of column 2
      {__LINE__,
       {s.ComputeSpVRSpW(0, i0, v1, 0, none, empty), s.ComputeVRW(none, empty, i1, v1)},
       0.0},
      // Shifted row 3, shifted column 3, a bad row, list lengths that differ.
      {__LINE__,
       {s.ComputeSpVRSpW(1, i02, v11, 0, i0, v1), s.ComputeSpVRSpW(0, i0, v1, 1, i2, v1)},
       kMiss},
      {__LINE__,
       {s.ComputeSpVRSpW(-1, i0, v1, 0, i0, v1), s.ComputeSpVRSpW(0, i01, v1, 0, i0, v1)},
       kMiss},
      {__LINE__,
       {s.ComputeSpVRSpW(0, i0, v1, INT_MAX, i1, v1), s.ComputeVRW(i0, v1, Idx{3}, v1)},
       kMiss},
  });
}

TEST(ZRRectMatrixProduct, OuterProductAndAxpy) {
  ZRRectMatrix a, y = Make({{1, 2}, {3, 4}}), x = Make({{1, kNaN}, {INFINITY, -1}});
  EXPECT_EQ(After(a.ComputeVecProduct({1, -2}, {3, 0.5, 4}), a), (Grid{{3, 0.5, 4}, {-6, -1, -8}}));
  // Intended: 0 times NaN or inf isn't formed.
  EXPECT_EQ(After(y.ComputeAXpY(0.0, x), y), (Grid{{1, 2}, {3, 4}}));
  ZRRectMatrix ones = Make({{1, 1}, {1, 1}});
  EXPECT_EQ(After(y.ComputeAXpY(-2.0, ones), y), (Grid{{-1, 0}, {1, 2}}));
}

TEST(ZRRectMatrixDot, ExactValuesQuirksAndNorms) {
  const ZRRectMatrix a = Make({{1, 2, 3}, {4, 5, 6}}), c = Make({{1, 1, 1}});
  const ZRRectMatrix b = Make({{1, 0}, {0, 1}, {2, 2}, {9, 9}});
  const ZRRectMatrix noCols(2, 0, true), noRows(0, 3, true);
  ExpectAll<double>({
      {__LINE__, {a.DotProductCol(0, 2)}, 27},
      {__LINE__, {a.DotProductRows(0, 1)}, 32},
      {__LINE__, {a.DotProductRowCol(1, b, 1)}, 17},  // Intended: B's 4th row isn't read
      {__LINE__, {a.DotProductRowCol(1, OtherMatrix(b), 0)}, 16},
      {__LINE__, {a.DotProductRowRow(1, c, 0), a.DotProductRowRow(1, OtherMatrix(c), 0)}, 15},
      {__LINE__, {a.DotProductColCol(2, a, 1)}, 36},
      {__LINE__, {noRows.DotProductCol(0, 1), noCols.DotProductRows(0, 1)}, 0.0},
      {__LINE__, {noCols.DotProductRowCol(0, b, 0), noRows.DotProductColCol(0, noRows, 2)}, 0.0},
      // Norms by scaled sums: no overflow at 1e300.
      {__LINE__, {Make({{3}, {4}}).ColNorm(0)}, 5.0},
      {__LINE__, {Make({{3, 1e300}}).RowNorm(0)}, 1e300},
      {__LINE__, {Make({{1e300, 1e300}}).RowNorm(0) / 1e300}, std::sqrt(2.0)},
      {__LINE__, {noRows.ColNorm(1)}, 0.0},
  });
}

TEST(ZRRectMatrixCopy, RowsColumnsAndBlocks) {
  const ZRRectMatrix a = Make({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
  ZRRectMatrix r, self = a, own = a, d(2, 3, true), e(3, 3, true);
  EXPECT_EQ(After(r.CopyRows(OtherMatrix(a), 0, 1), r), (Grid{{1, 2, 3}}));
  EXPECT_EQ(After(self.CopyRows(self, 1, 2), self), (Grid{{4, 5, 6}, {7, 8, 9}}));
  EXPECT_EQ(After(r.CopyColumns(a, 1, 2), r), (Grid{{2, 3}, {5, 6}, {8, 9}}));
  EXPECT_EQ(After(a.CopyRowToRow(2, 1, d), d), (Grid{{0, 0, 0}, {7, 8, 9}}));
  EXPECT_EQ(After(a.CopyColToCol(0, 2, e), e), (Grid{{0, 0, 1}, {0, 0, 4}, {0, 0, 7}}));
  // (2, 0) must be read before row 2 is written.
  EXPECT_EQ(After(own.CopyColToRow(own, 0, 2), own), (Grid{{1, 2, 3}, {4, 5, 6}, {1, 4, 7}}));
  Vec v{1, 2, 3, 4, 5};
  EXPECT_FALSE(a.CopyColToVec(-1, v));  // resized all the same
  EXPECT_EQ(v, (Vec{1, 2, 3}));
  EXPECT_TRUE(a.GetCol(1, v) && v == (Vec{2, 5, 8}));

  const ZRRectMatrix s = Make({{1, 2}, {3, 4}}), row = Make({{5, 6}});
  ZRRectMatrix t, shifted = s, grow = s;
  EXPECT_EQ(After(s.CreateBlockDiagonal(2, t), t),
            (Grid{{1, 2, 0, 0}, {3, 4, 0, 0}, {0, 0, 1, 2}, {0, 0, 3, 4}}));
  EXPECT_EQ(After(s.ShiftColumns(1, t), t), (Grid{{0, 1, 2}, {0, 3, 4}}));
  EXPECT_EQ(After(s.ShiftRows(1, t), t), (Grid{{0, 0}, {1, 2}, {3, 4}}));
  const bool ok = shifted.ShiftColumns(1, shifted) && shifted.CreateBlockDiagonal(1, shifted);
  EXPECT_EQ(After(ok, shifted), (Grid{{0, 1, 2}, {0, 3, 4}}));
  EXPECT_EQ(After(s.ExpandSquare(row, t), t), (Grid{{1, 2, 5}, {3, 4, 6}, {5, 6, 0}}));
  EXPECT_EQ(After(grow.ExpandRectangular(row) && grow.ExpandRectangular(grow), grow),
            (Grid{{1, 2}, {3, 4}, {5, 6}, {1, 2}, {3, 4}, {5, 6}}));
}

TEST(ZRRectMatrixCopy, ExtractSkipsAndTestsOnlyTheLastIndex) {
  const ZRRectMatrix a = Make({{1, 2, 3}, {4, 5, 6}});
  const auto extract = [&](int line, bool cols, const Idx & idx, int want, const Grid & result) {
    SCOPED_TRACE(line);
    ZRRectMatrix d = Make({{9}});
    EXPECT_EQ(cols ? a.ExtractColumns(idx, d) : a.ExtractRows(idx, d), want);
    EXPECT_EQ(Rows(d), result);
  };
  extract(__LINE__, true, {-1, 1}, 1, {{2}, {5}});
  extract(__LINE__, true, {2, 0, 2}, 3, {{3, 1, 3}, {6, 4, 6}});
  extract(__LINE__, true, {7, 1}, 1, {{2}, {5}});  // Intended: 7 isn't refused
  extract(__LINE__, true, {}, 0, Grid(2));
  extract(__LINE__, true, {0, 3}, -1, {{9}});
  extract(__LINE__, false, {-4, 1}, 1, {{4, 5, 6}});
  extract(__LINE__, false, {1, 0}, 2, {{4, 5, 6}, {1, 2, 3}});
  extract(__LINE__, false, {2}, -1, {{9}});
  ZRRectMatrix self = a;
  EXPECT_EQ(self.ExtractColumns({2, 0}, self), 2);
  EXPECT_EQ(Rows(self), (Grid{{3, 1}, {6, 4}}));
}

TEST(ZRRectMatrixCopy, GrowDeleteTranspose) {
  ZRRectMatrix a = Make({{1, 2}, {3, 4}, {5, 6}}), empty;
  const Idx idx{0, 2};
  const Vec val{7, 8};
  ExpectAll<int>({{__LINE__, {a.AddColumn()}, 3},
                  {__LINE__, {a.AddRow(ZRSparseVector(idx, val))}, 4},
                  {__LINE__, {a.AddRow()}, 5},
                  {__LINE__, {empty.AddColumn(), empty.AddRow()}, 1}});
  EXPECT_EQ(Rows(empty), (Grid{{0}}));
  EXPECT_EQ(After(a.SetRow(0, ZRSparseVector(idx, val)), a),
            (Grid{{7, 0, 8}, {3, 4, 0}, {5, 6, 0}, {7, 0, 8}, {0, 0, 0}}));
  EXPECT_EQ(After(a.DeleteOneCol(1) && a.DeleteOneRow(0), a),
            (Grid{{3, 0}, {5, 0}, {7, 8}, {0, 0}}));
  for (const auto & [in, out] :
       {std::pair{Grid{{1, 2, 3}, {4, 5, 6}}, Grid{{1, 4}, {2, 5}, {3, 6}}},
        std::pair{Grid{{1, 2}, {3, 4}}, Grid{{1, 3}, {2, 4}}},
        std::pair{Grid{{1, 2, 3}}, Grid{{1}, {2}, {3}}}}) {
    ZRRectMatrix t = Make(in);
    t.Transpose();
    EXPECT_EQ(Rows(t), out);
  }
}

TEST(ZRRectMatrixElements, IncrVecByColumnChecks) {
  const ZRRectMatrix a = Make({{1, 2}, {3, 4}, {5, 6}});
  const auto incr = [&](int line, int j, int start, int count, bool check, bool ok,
                        const Vec & want) {
    SCOPED_TRACE(line);
    Vec v(4, 0.0);
    EXPECT_EQ(a.IncrVecByColumn(j, v, start, count, 2.0, check), ok);
    EXPECT_EQ(v, want);
  };
  const Vec zeros(4, 0.0);
  incr(__LINE__, 1, 1, 2, true, true, {0, 4, 8, 0});
  incr(__LINE__, 0, 1, 4, false, true, {0, 2, 6, 10});  // bounded by the rows
  incr(__LINE__, 2, 0, 1, true, false, zeros);
  incr(__LINE__, 0, -1, 1, true, false, zeros);
  incr(__LINE__, 0, 0, 0, true, false, zeros);
  incr(__LINE__, 0, 0, 4, true, false, zeros);  // count past the rows
  incr(__LINE__, 0, 2, 3, true, false, zeros);  // past the end of v
  incr(__LINE__, 0, INT_MAX, 3, true, false, zeros);
}

TEST(ZRRectMatrixElements, ZeroTestsSearchesAndOnes) {
  const ZRRectMatrix a = Make({{0, -0.0, 0}, {0, kNaN, 0}, {0, 1e-3, -2}});
  ExpectAll<bool>({{__LINE__, {a.IsRowZero(0), a.IsColZero(0)}, true},     // -0.0 == 0.0
                   {__LINE__, {a.IsRowZero(1), a.IsColZero(1)}, false}});  // NaN is non-zero
  ExpectAll<int>({{__LINE__, {a.FindFirstNonZeroInRow(2, 1e-4)}, 1},
                  {__LINE__, {a.FindFirstNonZeroInRow(2, 1e-3)}, 2},  // above, not equal
                  {__LINE__, {a.FindFirstNonZeroInRow(2, 2.0)}, -1}});
  EXPECT_EQ(a.GetColPtr(2)[2 * 3], -2.0);  // the stride is the column count

  ZRRectMatrix ones = Make({{1.0 + 1e-9, -1.0 + 1e-9, 1.1, 0.0}});
  ones.CheckForOnes(0.0);  // off unless eps > 0
  EXPECT_EQ(ones.GetElem(0, 0), 1.0 + 1e-9);
  ones.CheckForOnes(1e-8);
  EXPECT_EQ(Rows(ones), (Grid{{1.0, -1.0, 1.1, 0.0}}));
}

TEST(ZRRectMatrixElements, ColClean) {
  // tol = eps * 1e4 * 2.22e-16: eps = 1e6 gives 2.22e-6, relative to the norm (about 5).
  ZRRectMatrix a = Make({{3, 0, 1e-30}, {4e-6, 0, 1e-30}, {4, 0, 0}});
  EXPECT_TRUE(a.ColClean(0, 1e6));
  EXPECT_EQ(a.GetElem(1, 0), 0.0);                              // 8e-7 of the norm
  EXPECT_LE(std::fabs(a.GetElem(0, 0) - 3.0), 3.0 * 3 * kEps);  // x * (1 / n) * n: 3 roundings
  EXPECT_LE(std::fabs(a.GetElem(2, 0) - 4.0), 4.0 * 3 * kEps);
  EXPECT_TRUE(a.ColClean(1, 0.0));  // a zero column stays zero, not 0 * inf
  EXPECT_TRUE(a.ColClean(2, 1.0));  // norm 1.4e-30 below tol 2.2e-12: all zero
  EXPECT_TRUE(a.IsColZero(1) && a.IsColZero(2));

  const Vec col{0.1, 1e-300, -7.3};
  ZRRectMatrix b = Make({{col[0]}, {col[1]}, {col[2]}});
  EXPECT_TRUE(b.ColClean(0, 0.0));  // off: values kept up to the roundings
  for (int i = 0; i < 3; ++i) {
    EXPECT_LE(std::fabs(b.GetElem(i, 0) - col[i]), std::fabs(col[i]) * 3 * kEps);
  }
}

TEST(ZRRectMatrixElements, ZeroOutPivotRowAddsUnscaledMultiples) {
  // Row 0's first element above 0.5 is in column 1. Intended: column j gets column 1
  // times element (0, j) added, not divided by the pivot 2, then column 1 is zeroed.
  ZRRectMatrix a = Make({{0.25, 2, 3}, {1, 5, 7}}), z = Make({{0, 1e-9}});
  int pivot = 99;
  ASSERT_TRUE(a.ZeroOutPivotRow(0, 0.5, pivot));
  EXPECT_EQ(pivot, 1);
  EXPECT_EQ(Rows(a), (Grid{{0.25 + 0.25 * 2, 0, 3 + 3 * 2}, {1 + 0.25 * 5, 0, 7 + 3 * 5}}));
  for (const auto & [row, tol] : {std::pair{0, 1e-6}, std::pair{0, 0.0}, std::pair{1, 1.0}}) {
    pivot = 99;
    EXPECT_FALSE(z.ZeroOutPivotRow(row, tol, pivot));
    EXPECT_EQ(pivot, -1);
  }
  EXPECT_EQ(Rows(z), (Grid{{0, 1e-9}}));
}

TEST(ZRRectMatrixElements, RowMultiples) {
  const Grid rows{{0, 2, 4}, {0, 1, 2}, {0, 1, 2.5},  {0, 0, 0},
                  {0, 0, 0}, {1, 2, 4}, {0, kNaN, 2}, {1e-300, 1, 2}};
  const ZRRectMatrix a = Make(rows);
  // mult is written only on success.
  const auto multiple = [&](int line, int i, int k, double e1, double e2, bool ok, double want) {
    SCOPED_TRACE(line);
    double mult = -123.0;
    EXPECT_EQ(a.IsERowMultipleOfAnother(i, k, e1, e2, mult), ok);
    EXPECT_EQ(mult, ok ? want : -123.0);
  };
  multiple(__LINE__, 0, 1, 6, 3, true, 2.0);
  multiple(__LINE__, 1, 0, 3, 6, true, 0.5);
  multiple(__LINE__, 0, 1, 6, 3.5, false, 0);  // extra elements disagree
  multiple(__LINE__, 0, 2, 6, 3, false, 0);
  multiple(__LINE__, 3, 4, 3, -1.5, true, -2.0);  // zero rows: e1 / e2
  multiple(__LINE__, 3, 4, 3, 0, false, 0);
  multiple(__LINE__, 0, 5, 6, 3, false, 0);
  multiple(__LINE__, 6, 1, 2, 2, false, 0);  // NaN refuses
  // Within the relative test, but leading zeros must match exactly.
  multiple(__LINE__, 1, 7, 3, 3, false, 0);
  multiple(__LINE__, 0, 8, 1, 1, false, 0);
}

TEST(ZRSparseVector, ValidityDenseViewsAndInnerProducts) {
  const auto valid = [](int line, const Idx & idx, const Vec & val, bool ok, int minSize) {
    SCOPED_TRACE(line);
    const ZRSparseVector s(idx, val);
    EXPECT_TRUE(s.IsValid() == ok && s.GetMinVecSize() == minSize);
  };
  valid(__LINE__, {0, 3, 7}, {1, 2, 3}, true, 8);
  valid(__LINE__, {}, {}, false, 0);
  valid(__LINE__, {1, 2}, {1}, false, 3);
  valid(__LINE__, {-1, 2}, {1, 1}, false, 3);
  valid(__LINE__, {2, 2}, {1, 1}, false, 3);
  valid(__LINE__, {3, 1}, {1, 1}, false, 2);
  valid(__LINE__, {INT_MAX}, {1}, true, -1);
  const Idx idx{1, 3};
  const Vec val{2, -1};
  const ZRSparseVector s(idx, val);
  Vec v{9, 9}, w{1, 1, 1, 1, 1};
  EXPECT_EQ(s.ConvertToRegularVector(v), 4);
  EXPECT_EQ(v, (Vec{0, 2, 0, -1}));
  EXPECT_TRUE(s.IncrementPart(w, 1, 3.0));
  EXPECT_FALSE(s.IncrementPart(w, 2, 1.0) || s.IncrementPart(w, -1, 1.0) ||
               s.IncrementPart(w, INT_MAX, 1.0));
  EXPECT_EQ(w, (Vec{1, 1, 7, 1, -2}));
  const int i1[] = {0, 2, 5, 9}, i2[] = {2, 3, 9};
  const double v1[] = {1, 2, 3, 4}, v2[] = {10, 20, 30};
  ExpectAll<double>({
      {__LINE__, {s.GetValue(2), s.InnerProductWithPart(w, 2)}, kMiss},
      {__LINE__, {s.InnerProductWithPart(w, 1)}, 2 * 7 + -1 * -2},
      {__LINE__,
       {ZRSparseVector::InnerProduct(i1, v1, 4, i2, v2, 3),
        ZRSparseVector::InnerProduct(i2, v2, 3, i1, v1, 4)},
       2 * 10 + 4 * 30},
      {__LINE__, {ZRSparseVector::InnerProduct(i1, v1, 0, i2, v2, 3)}, 0.0},
      {__LINE__,
       {ZRSparseVector::InnerProduct(i1, v1, -1, i2, v2, 3),
        ZRSparseVector::InnerProduct(nullptr, v1, 0, i2, v2, 3)},
       kMiss},
  });
}

// Diagnostic text, written out by hand: every line starts with its break.
TEST(ZRRectMatrixDisplay, ExactText) {
  const ZRRectMatrix a = Make({{1, 2.5, -3}, {kMiss, 1e-20, 123456789}});
  zrtest::DisplayCapture cap;
  a.Display();
  EXPECT_EQ(cap.Text(),
            "\nZRRectMatrix display start\nNumber of rows = 2\nNumber of columns = 3"
            "\nrow  0: \n  1 2.5 -3\nrow  1: \n  miss 1e-20 1.23457e+08"
            "\nZRRectMatrix display end");
  cap.Clear();
  a.DisplayF();
  EXPECT_EQ(cap.Text(),
            "\nZRRectMatrix full matrix display start\nNumber of rows = 2\nNumber of columns = 3"
            "\nrow 0:  (size = 3)\n  = 1\n  = 2.5\n  = -3"
            "\nrow 1:  (size = 3)\n miss\n  = 9.9999999999999995e-21\n  = 123456789"
            "\nZRRectMatrix display end");
  cap.Clear();
  const Idx idx{0, 3};
  const Vec val{1.5, -2};
  ZRSparseVector(idx, val).Display();
  EXPECT_EQ(cap.Text(),
            "\nZRSparseVector display start\nNumber of sparse vector elements = 2"
            "\nVector of indices (size = 2)\n  0 3\nVector of values (size = 2)\n  1.5 -2"
            "\nValidity indicator = true\nZRSparseVector display end");
}

}  // namespace
