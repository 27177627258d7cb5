// Tests of ZRSymBlockDiagMatrix against the dense ZRSymMatrix holding the same matrix
// (FillDenseMatrix), on random structures of dense and diagonal blocks; and of the
// container ZRSymBlockMatrix.
#include "zrcommon920r/math/matrix/blockmatrix.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <limits>
#include <random>
#include <type_traits>
#include <vector>

#include "support/capture.h"
#include "support/colmajor.h"
#include "support/symmatrices.h"
#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/matrix/diagmatrix.h"

namespace {

using ZRMath_920::IZRSymMatrix;
using ZRMath_920::ZRBitSet;
using ZRMath_920::ZRDiagMatrix;
using ZRMath_920::ZRRectMatrix;
using ZRMath_920::ZRSymBlockDiagMatrix;
using ZRMath_920::ZRSymBlockMatrix;
using ZRMath_920::ZRSymMatrix;
using Vec = std::vector<double>;

constexpr double kU = DBL_EPSILON / 2;

// A random block-diagonal matrix: blocks of sizes 1 to 6, dense or diagonal in random
// order. Dense blocks are A' A + m I; with singular, the second block is made singular
// (a dense block gets a duplicated row, a diagonal one a zero).
ZRSymBlockDiagMatrix RandomBlocks(unsigned seed, bool singular) {
  std::mt19937 gen(seed);
  std::uniform_int_distribution<int> size(1, 6), kind(0, 1), count(3, 6);
  std::uniform_real_distribution<double> value(0.5, 4.0);
  ZRSymBlockDiagMatrix g;
  const int nBlocks = count(gen);
  for (int b = 0; b < nBlocks; ++b) {
    const int m = size(gen);
    const bool bad = singular && b == 1;
    if (kind(gen) == 0) {
      Vec d(m);
      for (double & x : d) x = value(gen);
      if (bad) d[0] = 0.0;
      g.AddBlock(d);
      continue;
    }
    ZRSymMatrix a = zrtest::RandomSpd(m, seed * 31 + b);
    if (bad && m > 1) {
      for (int j = 0; j < m; ++j) a.SetElem(m - 1, j, a.GetElem(0, j));
      a.SetElem(m - 1, m - 1, a.GetElem(0, 0));
    } else if (bad) {
      a.SetElem(0, 0, 0.0);
    }
    g.AddBlock(a);
  }
  return g;
}

ZRSymMatrix Dense(const ZRSymBlockDiagMatrix & g) {
  ZRSymMatrix d;
  EXPECT_TRUE(g.FillDenseMatrix(d));
  return d;
}

Vec RandomVec(int n, unsigned seed) {
  return zrtest::RandomGeneral(n, 1, seed).a;
}

ZRRectMatrix RandomRect(int r, int c, unsigned seed) {
  const zrtest::ColMatrix a = zrtest::RandomGeneral(r, c, seed);
  ZRRectMatrix m(r, c, true);
  for (int i = 0; i < r; ++i)
    for (int j = 0; j < c; ++j) m.SetElem(i, j, a(i, j));
  return m;
}

// The lower triangle by rows.
Vec Packed(const IZRSymMatrix & s) {
  Vec p;
  for (int i = 0; i < s.GetNRows(); ++i)
    for (int j = 0; j <= i; ++j) p.push_back(s.GetElem(i, j));
  return p;
}

int Cols(const IZRSymMatrix & s) {
  return s.GetNRows();
}
int Cols(const ZRRectMatrix & r) {
  return r.GetNCols();
}

template <class M>
double FrobNorm(const M & m) {
  double sum = 0.0;
  for (int i = 0; i < m.GetNRows(); ++i)
    for (int j = 0; j < Cols(m); ++j) sum += m.GetElem(i, j) * m.GetElem(i, j);
  return std::sqrt(sum);
}

double VecNorm(const Vec & v) {
  double sum = 0.0;
  for (double x : v) sum += x * x;
  return std::sqrt(sum);
}

template <class A, class B>
void ExpectNear(const A & a, const B & b, double tol) {
  ASSERT_EQ(a.GetNRows(), b.GetNRows());
  ASSERT_EQ(Cols(a), Cols(b));
  for (int i = 0; i < a.GetNRows(); ++i)
    for (int j = 0; j < Cols(a); ++j)
      EXPECT_NEAR(a.GetElem(i, j), b.GetElem(i, j), tol) << i << "," << j;
}

void ExpectNear(const Vec & a, const Vec & b, double tol) {
  ASSERT_EQ(a.size(), b.size());
  for (std::size_t i = 0; i < a.size(); ++i) EXPECT_NEAR(a[i], b[i], tol) << i;
}

// False only when f reports a failure; a void operation cannot.
template <class F>
bool Succeeds(F f) {
  if constexpr (std::is_void_v<decltype(f())>) {
    f();
    return true;
  } else {
    return f();
  }
}

// Runs the operation, writing its result to `out` of type Out, on the block form g and on
// the dense form d, and compares the two results within tol.
#define EXPECT_SAME_RESULT(g, d, Out, tol, ...)             \
  do {                                                      \
    SCOPED_TRACE(#__VA_ARGS__);                             \
    const auto run = [&](const IZRSymMatrix & m) {          \
      Out out;                                              \
      EXPECT_TRUE(Succeeds([&] { return m.__VA_ARGS__; })); \
      return out;                                           \
    };                                                      \
    ExpectNear(run(g), run(d), tol);                        \
  } while (false)

TEST(ZRSymBlockDiagMatrixStructure, TablesLookupsAndRefusals) {
  ZRBitSet isDiag(2);
  isDiag.Set(1, true);
  ZRSymBlockDiagMatrix m({2, 3}, isDiag);
  EXPECT_EQ(m.GetNRows(), 5);
  EXPECT_EQ(m.GetType(), IZRSymMatrix::kBlockDiagSymMatrix);
  EXPECT_EQ(m.GetBlockIndexForRow(), (std::vector<int>{0, 0, 1, 1, 1}));
  EXPECT_EQ(m.GetBlockStartIndex(1), 2);
  EXPECT_EQ(m.GetBlockStartIndex(2), -1);
  EXPECT_EQ(m.GetBlockSize(-1), -1);
  EXPECT_EQ(m.GetNDenseBlocks(), 1);
  EXPECT_EQ(m.GetNDiagBlocks(), 1);
  struct {
    int line, i, j;
    bool ok;
  } const sets[] = {{__LINE__, 1, 0, true}, {__LINE__, 0, 3, false}, {__LINE__, 3, 4, false},
                    {__LINE__, 3, 3, true}, {__LINE__, 5, 5, false}, {__LINE__, -1, 0, false}};
  for (const auto & c : sets) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(m.SetElem(c.i, c.j, 2.0), c.ok);
    EXPECT_EQ(m.GetElem(c.i, c.j), c.ok ? 2.0 : 0.0);
  }
  EXPECT_EQ(m.GetElem(0, 1), 2.0);  // the symmetric partner of (1, 0)
  // The structure is fixed: the three refused operations change nothing.
  ZRSymMatrix out;
  EXPECT_FALSE(m.Resize(3));
  EXPECT_FALSE(m.SetNRows(3, true));
  EXPECT_FALSE(m.ComputeMGN(m, m, out));
  EXPECT_EQ(m.GetNRows(), 5);
  EXPECT_EQ(m.GetElem(3, 3), 2.0);
  // The stored blocks are handed out, not copied.
  ZRSymMatrix * dense = nullptr;
  Vec * diag = nullptr;
  ASSERT_TRUE(m.GetDenseBlock(0, dense));
  EXPECT_FALSE(m.GetDenseBlock(1, dense));
  ASSERT_TRUE(m.GetDiagonalBlock(1, diag));
  EXPECT_FALSE(m.GetDiagonalBlock(0, diag));
  (*diag)[2] = 7.0;
  dense->SetElem(0, 0, 9.0);
  EXPECT_EQ(m.GetElem(4, 4), 7.0);
  EXPECT_EQ(m.GetElem(0, 0), 9.0);
  // A negative size fails the whole structure.
  EXPECT_FALSE(m.SetStructure({2, -1}, isDiag));
  EXPECT_FALSE(m.IsValidMatrix());
  EXPECT_EQ(m.GetNBlocks(), -1);
}

TEST(ZRSymBlockDiagMatrixStructure, AddReplaceFlattenAndCompare) {
  ZRSymBlockDiagMatrix g;
  EXPECT_EQ(g.AddBlock(Vec{}), -1);
  EXPECT_EQ(g.AddBlock(ZRSymMatrix()), -1);
  // Fault fixed: appending a block re-initialised the kinds of the earlier blocks.
  EXPECT_EQ(g.AddBlock(Vec{5.0}), 0);
  EXPECT_EQ(g.AddBlock(zrtest::RandomSpd(2, 1)), 1);
  EXPECT_TRUE(g.GetIsBlockDiagonal(0));
  EXPECT_FALSE(g.GetIsBlockDiagonal(1));
  EXPECT_EQ(g.GetElem(0, 0), 5.0);
  // Replacement keeps kind and size.
  EXPECT_FALSE(g.ReplaceBlock(0, zrtest::RandomSpd(1, 2)));
  EXPECT_FALSE(g.ReplaceBlock(1, zrtest::RandomSpd(3, 2)));
  EXPECT_FALSE(g.ReplaceBlock(1, Vec{1.0, 2.0}));
  EXPECT_FALSE(g.ReplaceBlock(0, Vec{1.0, 2.0}));
  EXPECT_TRUE(g.ReplaceBlock(0, Vec{6.0}));
  const ZRSymMatrix s = zrtest::RandomSpd(2, 3);
  EXPECT_TRUE(g.ReplaceBlock(1, s));
  EXPECT_EQ(g.GetElem(2, 1), s.GetElem(1, 0));
  // A nested block matrix is flattened into its blocks.
  ZRSymMatrix one = zrtest::RandomSpd(3, 4);
  const ZRSymBlockDiagMatrix list({&one, &g, &one});
  EXPECT_EQ(list.GetNBlocks(), 4);
  EXPECT_EQ(list.GetBlockSizes(), (std::vector<int>{3, 1, 2, 3}));
  EXPECT_TRUE(list.GetIsBlockDiagonal(1));
  EXPECT_EQ(list.GetElem(3, 3), 6.0);
  EXPECT_EQ(ZRSymBlockDiagMatrix(std::vector<IZRSymMatrix *>{}).GetNRows(), 0);
  // Structure comparisons.
  ZRSymBlockDiagMatrix copy;
  ASSERT_TRUE(list.CopyStructure(copy));
  EXPECT_TRUE(list.IsSameStructure(copy));
  EXPECT_EQ(copy.GetElem(0, 0), 0.0);
  EXPECT_FALSE(list.IsSameStructure(g));
  EXPECT_FALSE(list.IsSameStructure(one));
  copy.ClearAll();
  EXPECT_EQ(copy.GetNRows(), 0);
  EXPECT_EQ(copy.GetBlockStartIndex(0), -1);
}

// The diagonal class as a member: taken as a diagonal block by the list constructor,
// AddBlock and ReplaceBlock, added to the diagonal by ComputeAXpY; and the diagonal
// class's inverse written into a block-diagonal out of its size.
TEST(ZRSymBlockDiagMatrixStructure, DiagonalClassMembers) {
  ZRDiagMatrix d(Vec{2.0, 4.0});
  ZRSymMatrix s = zrtest::RandomSpd(2, 5);
  ZRSymBlockDiagMatrix g({&d, &s});
  ASSERT_EQ(g.GetNRows(), 4);
  EXPECT_TRUE(g.GetIsBlockDiagonal(0));
  EXPECT_FALSE(g.GetIsBlockDiagonal(1));
  EXPECT_EQ(g.GetElem(1, 1), 4.0);
  EXPECT_EQ(g.GetElem(0, 1), 0.0);
  EXPECT_EQ(g.AddBlock(ZRDiagMatrix(Vec{7.0})), 2);
  EXPECT_TRUE(g.GetIsBlockDiagonal(2));
  EXPECT_FALSE(g.ReplaceBlock(1, d));  // a dense block keeps its kind
  EXPECT_TRUE(g.ReplaceBlock(0, ZRDiagMatrix(Vec{3.0, 5.0})));
  const ZRSymMatrix before = Dense(g);
  ZRDiagMatrix x(Vec{1.0, 2.0, 3.0, 4.0, 5.0});
  ASSERT_TRUE(g.ComputeAXpY(0.5, x));
  for (int i = 0; i < 5; ++i)
    for (int j = 0; j <= i; ++j)
      EXPECT_EQ(g.GetElem(i, j), before.GetElem(i, j) + (i == j ? 0.5 * (i + 1) : 0.0));
  EXPECT_FALSE(g.ComputeAXpY(1.0, ZRDiagMatrix(Vec{1.0})));
  ZRSymBlockDiagMatrix out;
  ASSERT_TRUE(g.CopyStructure(out));
  EXPECT_EQ(x.CholInverse(Vec(5, 1.0), 0.0, out), 5);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(out.GetElem(i, i), 1.0 / (i + 1));
  EXPECT_EQ(out.GetElem(4, 3), 0.0);
}

// Each row and vector operation equals the dense one on the filled matrix: exactly where
// the same non-zero terms add in the same order, else within (n + 2) u of the Cauchy-Schwarz
// bound of the sum of |terms|.
TEST(ZRSymBlockDiagMatrixOps, RowAndVectorOperationsMatchDense) {
  for (unsigned seed : {1u, 2u, 3u, 4u}) {
    SCOPED_TRACE(seed);
    const ZRSymBlockDiagMatrix g = RandomBlocks(seed, seed % 2 == 0);
    const ZRSymMatrix d = Dense(g);
    const int n = g.GetNRows();
    const Vec v = RandomVec(n, seed), w = RandomVec(n, seed + 50);
    const double tol = (n + 2) * kU * FrobNorm(d) * VecNorm(v) * VecNorm(w) + 1e-300;
    EXPECT_SAME_RESULT(g, d, Vec, 0.0, GetDiagonal(out));
    EXPECT_EQ(g.Trace(), d.Trace());
    for (int i = 0; i < n; ++i) {
      EXPECT_SAME_RESULT(g, d, Vec, 0.0, GetRow(i, out));
      EXPECT_NEAR(g.ComputeRVD(i, v, 1), d.ComputeRVD(i, v, 1), tol);
      EXPECT_NEAR(g.ComputeRVD(i, v.data(), -1), d.ComputeRVD(i, v.data(), -1), tol);
      for (int j = 0; j < n; j += 3) {
        EXPECT_NEAR(g.ComputeDotProduct2Rows(i, j), d.ComputeDotProduct2Rows(i, j), tol);
        EXPECT_NEAR(g.ComputeRowDotProductS(i, d, j), d.ComputeRowDotProductS(i, d, j),
                    tol * FrobNorm(d));
      }
    }
    EXPECT_SAME_RESULT(g, d, Vec, tol, ComputeSV(v, out));
    EXPECT_SAME_RESULT(g, d, Vec, tol, ComputeSV(n - 1, v, out));
    EXPECT_NEAR(g.ComputeVSW(v, w), d.ComputeVSW(v, w), tol);
    EXPECT_NEAR(g.ComputeVSV(v), d.ComputeVSV(v), tol);
    EXPECT_NEAR(g.ComputeVSW(v.data(), -1, w.data(), 1), d.ComputeVSW(v.data(), -1, w.data(), 1),
                tol);
    EXPECT_NEAR(g.ComputeVSWParts(v, n / 2, w, n - 1), d.ComputeVSWParts(v, n / 2, w, n - 1), tol);
    Vec a = v, b = v;
    g.IncrVecByRow(n / 2, a, 0, n, 2.0, true);
    d.IncrVecByRow(n / 2, b, 0, n, 2.0, true);
    ExpectNear(a, b, tol);
    const auto extremes = [](const IZRSymMatrix & m) {
      Vec e(4);
      m.MaxMinDiagOffDiag(e[0], e[1], e[2], e[3]);
      return e;
    };
    EXPECT_EQ(extremes(g), extremes(d));
  }
}

TEST(ZRSymBlockDiagMatrixOps, MatrixProductsMatchDense) {
  for (unsigned seed : {5u, 6u, 7u}) {
    SCOPED_TRACE(seed);
    const ZRSymBlockDiagMatrix g = RandomBlocks(seed, seed == 6);
    const ZRSymMatrix d = Dense(g);
    const int n = g.GetNRows();
    const ZRSymMatrix s = zrtest::RandomSpd(n, seed + 7);
    const double t = (n + 2) * kU, gn = FrobNorm(d), sn = FrobNorm(s);
    const Vec packed = Packed(s);
    Vec work;
    EXPECT_SAME_RESULT(g, d, ZRSymMatrix, 2 * t * gn * gn * sn, ComputeGMG(packed, out));
    EXPECT_SAME_RESULT(g, d, ZRSymMatrix, 2 * t * gn * gn * sn, ComputeGSG(s, out));
    EXPECT_SAME_RESULT(g, d, ZRSymMatrix, 4 * t * gn * gn * gn * sn * sn,
                       ComputeGMGNG(s, s, out, work));
    EXPECT_SAME_RESULT(g, d, ZRSymMatrix, 2 * t * gn * sn * sn, ComputeLSLTrans(s, out));
    EXPECT_SAME_RESULT(g, d, ZRSymMatrix, 2 * t * gn * sn * sn, ComputeLTransSL(s, out, 1));
    EXPECT_SAME_RESULT(g, d, ZRSymMatrix, t * gn * gn, ComputeSTransS(out));
    ZRSymBlockDiagMatrix square;
    ZRSymMatrix y;
    g.ComputeSTransS(square);  // a block-diagonal out keeps the structure
    d.ComputeSTransS(y);
    EXPECT_TRUE(square.IsSameStructure(g));
    ExpectNear(square, y, t * gn * gn);
    EXPECT_NEAR(g.TraceOfProduct(s), d.TraceOfProduct(s), 2 * t * gn * sn);
    EXPECT_NEAR(g.TraceOfProductOfThree(s, s), d.TraceOfProductOfThree(s, s),
                (3 * n + 4) * kU * gn * sn * sn);
    // Rectangular operands of 3 rows or columns.
    const ZRRectMatrix r = RandomRect(3, n, seed), rt = RandomRect(n, 3, seed + 1);
    const double rn = FrobNorm(r), rtn = FrobNorm(rt);
    const Vec v = RandomVec(n, seed);
    EXPECT_SAME_RESULT(g, d, ZRRectMatrix, t * rn * gn, ComputeRS(r, out));
    EXPECT_SAME_RESULT(g, d, ZRRectMatrix, t * rtn * gn, ComputeRTransS(rt, out));
    EXPECT_SAME_RESULT(g, d, ZRRectMatrix, t * sn * gn, ComputeSS(s, out));
    EXPECT_SAME_RESULT(g, d, ZRSymMatrix, 2 * t * rn * rn * gn, ComputeRSRTrans(r, out));
    EXPECT_SAME_RESULT(g, d, ZRSymMatrix, 2 * t * rtn * rtn * gn, ComputeRTransSR(rt, out));
    EXPECT_SAME_RESULT(g, d, Vec, 2 * t * rtn * gn * VecNorm(v), ComputeRTransSV(rt, v, out));
    EXPECT_NEAR(g.ComputeVSV(r, 1), d.ComputeVSV(r, 1), 2 * t * rn * rn * gn);
    ZRSymBlockDiagMatrix refused(g);  // a block-diagonal out refuses the dense result
    EXPECT_FALSE(g.ComputeGSG(s, refused));
  }
}

// Edits applied to both forms leave the block form equal to the edited dense form, except
// that positions outside the blocks stay zero.
TEST(ZRSymBlockDiagMatrixOps, EditsAndExtractionsMatchDense) {
  const ZRSymBlockDiagMatrix g = RandomBlocks(14, false);
  const ZRSymMatrix dense = Dense(g);
  const int n = g.GetNRows();
  EXPECT_SAME_RESULT(g, dense, ZRSymMatrix, 0.0, ExtractSubmatrix({n - 1, 0, 2, 2}, out));
  EXPECT_SAME_RESULT(g, dense, ZRSymMatrix, 0.0, ExtractFirstNRows(out));
  const Vec packed = Packed(zrtest::RandomSpd(n, 5));
  for (int i = 0; i < n; i += 2)
    EXPECT_NEAR(g.ComputeVSW(packed, n - 1, i, n - 2 - i / 2),
                dense.ComputeVSW(packed, n - 1, i, n - 2 - i / 2), 1e-12);
#define EDIT(...)                                   \
  {                                                 \
    __LINE__, [](IZRSymMatrix & m) { __VA_ARGS__; } \
  }
  struct {
    int line;
    void (*edit)(IZRSymMatrix &);
  } const edits[] = {
    EDIT(m.ZeroOut(2)),
    EDIT(m.ZeroOutNonDiag(0.5)),
    EDIT(m.MultiplyByNumber(-2.5)),
    EDIT(m.AddToDiagonal(1.5)),
    EDIT(m.ChangeSign()),
    EDIT(m.SetRowColToConst(m.GetNRows() - 1, 3.0)),
    EDIT(m.PutRow(1, RandomVec(m.GetNRows(), 3))),
    EDIT(m.LTChol(Vec(m.GetNRows(), 1.0), 1e-10, false); m.LTInverse()),
  };
#undef EDIT
  const std::vector<int> & block = g.GetBlockIndexForRow();
  for (const auto & e : edits) {
    SCOPED_TRACE(e.line);
    ZRSymBlockDiagMatrix b(g);
    ZRSymMatrix d = dense;
    e.edit(b);
    e.edit(d);
    for (int i = 0; i < n; ++i)
      for (int j = 0; j <= i; ++j) {
        const bool inBlock = block[i] == block[j] && (!g.GetIsBlockDiagonal(block[i]) || i == j);
        EXPECT_NEAR(b.GetElem(i, j), inBlock ? d.GetElem(i, j) : 0.0, (n + 2) * kU * FrobNorm(d))
            << i << "," << j;
      }
    ZRBitSet all(n);
    all.SetRange(0, n - 1, true);
    for (int i = 0; i < n; ++i) EXPECT_EQ(b.IsZeroRow(i, all), d.IsZeroRow(i, all)) << i;
  }
}

// With the same diag the block factor, solve and inverse equal the dense ones: a dense
// factor of a block-diagonal matrix is block diagonal and its sums only add exact zeros.
TEST(ZRSymBlockDiagMatrixCholesky, FactorSolveInverseMatchDense) {
  for (unsigned seed : {8u, 9u, 10u, 11u}) {
    SCOPED_TRACE(seed);
    const ZRSymBlockDiagMatrix g = RandomBlocks(seed, seed % 2 == 1);
    const ZRSymMatrix d = Dense(g);
    const int n = g.GetNRows();
    Vec diag, a, b;
    d.GetDiagonal(diag);
    ZRSymBlockDiagMatrix gl(g);
    ZRSymMatrix dl(d);
    ZRBitSet gs, ds;
    EXPECT_EQ(gl.LTChol(diag, 1e-10, gs, true), dl.LTChol(diag, 1e-10, ds, true));
    EXPECT_EQ(gs, ds);
    ExpectNear(gl, dl, 0.0);
    const Vec v = RandomVec(n, seed);
    const double tol = (n + 2) * kU * FrobNorm(dl) * VecNorm(v);
    EXPECT_SAME_RESULT(gl, dl, Vec, tol, ComputeLV(v, out));
    EXPECT_SAME_RESULT(gl, dl, Vec, tol, ComputeLTransV(v, out));
    EXPECT_SAME_RESULT(gl, dl, Vec, tol, ComputeLTransV({1, 0, 1}, {1.0, 2.0, -3.0}, out));
    for (auto product : {&IZRSymMatrix::LTLLTrans, &IZRSymMatrix::LTLTransL}) {
      ZRSymBlockDiagMatrix g2(gl);
      ZRSymMatrix d2(dl);
      (g2.*product)();
      (d2.*product)();
      ExpectNear(g2, d2, (n + 2) * kU * FrobNorm(d));
    }
    // Generalised inverse, rank and solve.
    ZRSymBlockDiagMatrix gi;
    ZRSymMatrix di;
    double gmin = 0.0, dmin = 0.0;
    EXPECT_EQ(g.CholInverse(diag, 1e-10, gi, gmin), d.CholInverse(diag, 1e-10, di, dmin));
    EXPECT_EQ(gmin, dmin);
    ExpectNear(gi, di, (n + 2) * kU * FrobNorm(di));
    ZRSymBlockDiagMatrix gx(g);
    ZRSymMatrix dx(d);
    EXPECT_EQ(gx.LTSolve(v, 1e-10, a), dx.LTSolve(v, 1e-10, b));
    ExpectNear(a, b, (n + 2) * kU * FrobNorm(di) * VecNorm(v));
  }
}

// The intended differences from the dense class: tolerance bases local to each block, and
// a singular block left out of the determinant.
TEST(ZRSymBlockDiagMatrixCholesky, LocalBasesAndSingularBlockDeterminant) {
  ZRSymBlockDiagMatrix g;
  g.AddBlock(Vec{1e-12, 4.0});
  ZRSymMatrix small(1, true);
  small.SetElem(0, 0, 1e-12);
  g.AddBlock(small);
  const ZRSymMatrix d = Dense(g);
  Vec gd, dd;
  g.GetNCheckDiagonal(gd, 0.0, 1.0);
  d.GetNCheckDiagonal(dd, 0.0, 1.0);
  EXPECT_EQ(gd, (Vec{1e-12, 4.0, 1e-12}));
  EXPECT_EQ(dd, (Vec{4.0, 4.0, 4.0}));
  double gmin = 0.0, dmin = 0.0;
  ZRSymBlockDiagMatrix gl(g);
  ZRSymMatrix dl(d);
  // The small dense pivot is measured against itself and kept; the small diagonal element
  // falls below lo and is measured against hi; the dense class refuses both against 4.
  EXPECT_EQ(gl.LTChol(1e-6, gmin, true), 1);
  EXPECT_EQ(dl.LTChol(1e-6, dmin, true), 2);
  EXPECT_EQ(gl.GetElem(2, 2), 1e-6);
  double det[2], denseDet[2];
  ZRSymBlockDiagMatrix h;
  h.AddBlock(Vec{4.0});
  h.AddBlock(small);
  ASSERT_TRUE(h.ComputeDeterminant(1e-6, det));
  ASSERT_TRUE(Dense(h).ComputeDeterminant(1e-6, denseDet));
  EXPECT_NEAR(det[0], 4.0, 4 * DBL_EPSILON);  // 4 x 1e-12
  EXPECT_EQ(det[1], -12.0);
  EXPECT_EQ(denseDet[0], 0.0);
  // LTDetInverse counts the zero pivots and multiplies the other blocks only.
  ZRSymBlockDiagMatrix f;
  f.AddBlock(Vec{2.0, 0.0});
  ZRSymMatrix l(2, true);
  l.SetElem(0, 0, 5.0);
  l.SetElem(1, 1, 3.0);
  f.AddBlock(l);
  EXPECT_EQ(f.LTDetInverse(det, 11), 1);
  EXPECT_EQ(det[0], 1.5);  // 5 x 3 only; the diagonal block holds a zero
  EXPECT_EQ(det[1], 1.0);
  EXPECT_EQ(f.GetElem(0, 0), 0.5);
  EXPECT_EQ(f.GetElem(1, 1), 0.0);
  EXPECT_EQ(f.GetElem(2, 2), 0.2);
  // An infinite element ends the normalisation instead of dividing by 10 forever.
  ZRSymBlockDiagMatrix inf;
  inf.AddBlock(Vec{std::numeric_limits<double>::infinity(), 2.0});
  EXPECT_EQ(inf.LTDetInverse(det, 1), 0);
  EXPECT_TRUE(std::isinf(det[0]));
}

TEST(ZRSymBlockDiagMatrixOps, FailureValues) {
  ZRSymBlockDiagMatrix g = RandomBlocks(12, false);
  const int n = g.GetNRows();
  ZRSymMatrix dense(n, true);
  Vec diag(n, 1.0), x;
  double minPivot = 0.0;
  EXPECT_EQ(g.CholInverse(diag, 1e-10, dense), -1);
  EXPECT_EQ(g.CholInverse(diag, 1e-10, dense, minPivot), -1);
  EXPECT_EQ(minPivot, ZRCommon_920::kSysMisValue);
  ZRSymBlockDiagMatrix out;
  EXPECT_EQ(g.CholInverse(Vec(n - 1, 1.0), 1e-10, out), -1);
  EXPECT_EQ(g.LTChol(diag, -1.0, true), -1);
  EXPECT_EQ(g.LTSolve(diag, 0.0, x), -1);
  EXPECT_EQ(g.LTSolve(Vec(n - 1), 1e-10, x), -1);
  EXPECT_EQ(g.ComputeDotProduct2Rows(0, n), 0.0);
  EXPECT_EQ(g.ComputeRVD(n, diag, 1), 0.0);
  EXPECT_FALSE(g.GetRow(n, x));
  EXPECT_FALSE(g.PutRow(0, Vec(n - 1)));
  EXPECT_FALSE(g.ComputeSV(n + 1, diag, x));
  double det[2] = {7.0, 7.0};
  EXPECT_FALSE(ZRSymBlockDiagMatrix().ComputeDeterminant(1e-10, det));
  EXPECT_EQ(det[0], 7.0);
  // ComputeAXpY by the type of X.
  ZRSymBlockDiagMatrix same;
  g.CopyStructure(same);
  same.AddToDiagonal(1.0);
  ZRSymBlockDiagMatrix sum(g);
  ASSERT_TRUE(sum.ComputeAXpY(2.0, same));
  EXPECT_EQ(sum.GetElem(0, 0), g.GetElem(0, 0) + 2.0);
  EXPECT_FALSE(sum.ComputeAXpY(1.0, dense));  // several blocks
  EXPECT_FALSE(sum.ComputeAXpY(1.0, RandomBlocks(13, false)));
  ZRSymBlockDiagMatrix single;
  single.AddBlock(zrtest::RandomSpd(3, 1));
  const ZRSymMatrix s = zrtest::RandomSpd(3, 2);
  ASSERT_TRUE(single.ComputeAXpY(1.0, s));
  EXPECT_EQ(single.GetElem(2, 1), zrtest::RandomSpd(3, 1).GetElem(2, 1) + s.GetElem(2, 1));
}

TEST(ZRSymBlockDiagMatrixDisplay, ExactText) {
  ZRSymBlockDiagMatrix g;
  ZRSymMatrix a(2, true);
  a.SetElem(0, 0, 1.0);
  a.SetElem(1, 0, 2.5);
  a.SetElem(1, 1, -3.0);
  g.AddBlock(Vec{4.0});
  g.AddBlock(a);
  zrtest::DisplayCapture cap;
  g.Display();
  EXPECT_EQ(cap.Text(),
            "\nLower triangular of ZRSymBlockDiagMatrix display start\nNumber of rows = 3"
            "\nNumber of columns = 3\nNumber of blocks = 2\nBlock sizes (size = 2)\n  1 2"
            "\nBlock indices (size = 2)\n  0 0\nStart Indices (size = 3)\n  0 1 3"
            "\nBlock indices for each row (size = 3)\n  0 1 1\nrow  0: \n  4\nrow  1: \n  1"
            "\nrow  2: \n  2.5 -3");
  cap.Clear();
  g.DisplayF();
  EXPECT_EQ(cap.Text(),
            "\nZRSymBlockDiagMatrix display start\nNumber of rows = 3\nNumber of columns = 3"
            "\nNumber of blocks = 2\nrow  0: \n  4 0 0\nrow  1: \n  0 1 2.5\nrow  2: \n  0 2.5 -3");
}

TEST(ZRSymBlockMatrix, CopyToSymMatrixAndDisplay) {
  ZRSymBlockMatrix m(2, 2);
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j <= i; ++j)
      for (int p = 0; p < 2; ++p)
        for (int q = 0; q < 2; ++q)
          m.GetElemSSRef(i, j).SetElem(p, q, 10 * i + j + 0.1 * p + 0.1 * q);
  ZRSymMatrix out;
  ASSERT_EQ(m.CopyToSymMatrix(out), 4);
  // Member (1, 0) element (p, q) sits at row 2 + p, column q; a diagonal member is symmetric.
  const double want[4][4] = {{0.0, 0.1, 10.0, 10.1},
                             {0.1, 0.2, 10.1, 10.2},
                             {10.0, 10.1, 11.0, 11.1},
                             {10.1, 10.2, 11.1, 11.2}};
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) EXPECT_EQ(out.GetElem(i, j), want[i][j]) << i << "," << j;
  EXPECT_TRUE(m.SetNRows(-2, 3, true));
  EXPECT_EQ(m.GetNRows(), 0);
  ZRSymBlockMatrix one(1, 1);
  zrtest::DisplayCapture cap;
  one.Display();
  EXPECT_EQ(cap.Text(),
            "\nZRSymBlockMatrix display start\nThe number of rows in the ZRSymBlockMatrix = 1"
            "\nThe number of rows in each ZRMATH_NAMESPACE::ZRSymMatrix matrix = 1"
            "\nRow number in the ZRSymBlockMatrix = 0\nColumn number in the ZRSymBlockMatrix = 0"
            "\nZRMATH_NAMESPACE::ZRSymMatrix matrix:\nZRSymMatrix display start"
            "\nThe number of rows = 1\nThe number of blocks = 1\nThe block size = 1"
            "\nLower triangular (number of elements = 1, number of rows = 1)\nrow  0: \n  0"
            "\nZRSymMatrix display end\nZRSymBlockMatrix display end");
}

}  // namespace
