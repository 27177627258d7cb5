// Tests of ZRSparseRectMatrix and of the sparse operations on symmetric matrices: products
// against the dense copy made by CreateFullMatrix, UpdateXXCornerBlock against UpdateXX
// and ComputeRTransSR, the multinomial logit against a long double softmax.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "support/alloccount.h"
#include "support/capture.h"
#include "zrcommon920r/math/matrix/rectmatrix.h"
#include "zrcommon920r/math/matrix/sparsematrix.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace {

using ZRMath_920::ZRRectMatrix;
using ZRMath_920::ZRSparseRectMatrix;
using ZRMath_920::ZRSparseVector;
using ZRMath_920::ZRSymMatrix;
using Vec = std::vector<double>;
using Idx = std::vector<int>;

constexpr double kEps = 2.220446049250313e-16;
constexpr double kMiss = -1.7976931348623157e308;

// rows x cols with nz stored elements a row at random ascending columns; every fifth value
// is a stored 0.0.
ZRSparseRectMatrix RandomSparse(int rows, int cols, int nz, unsigned seed) {
  std::mt19937 gen(seed);
  std::uniform_real_distribution<double> u(-2.0, 2.0);
  ZRSparseRectMatrix m(2, cols, nz);
  Idx all(cols);
  for (int j = 0; j < cols; ++j) all[j] = j;
  for (int i = 0; i < rows; ++i) {
    std::shuffle(all.begin(), all.end(), gen);
    Idx idx(all.begin(), all.begin() + nz);
    std::sort(idx.begin(), idx.end());
    Vec val(nz);
    for (int k = 0; k < nz; ++k) val[k] = (i * nz + k) % 5 == 4 ? 0.0 : u(gen);
    EXPECT_EQ(m.AddRow(ZRSparseVector(idx, val)), i + 1);
  }
  return m;
}

ZRRectMatrix Full(const ZRSparseRectMatrix & s) {
  ZRRectMatrix f;
  EXPECT_TRUE(s.CreateFullMatrix(f));
  return f;
}

ZRRectMatrix RandomDense(int rows, int cols, unsigned seed) {
  std::mt19937 gen(seed);
  std::uniform_real_distribution<double> u(-2.0, 2.0);
  ZRRectMatrix m(rows, cols, true);
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j) m.SetElem(i, j, u(gen));
  return m;
}

void ExpectSameMatrix(const ZRRectMatrix & got, const ZRRectMatrix & want) {
  ASSERT_EQ(got.GetNRows(), want.GetNRows());
  ASSERT_EQ(got.GetNCols(), want.GetNCols());
  for (int i = 0; i < want.GetNRows(); ++i)
    for (int j = 0; j < want.GetNCols(); ++j)
      ASSERT_EQ(got.GetElem(i, j), want.GetElem(i, j)) << "(" << i << ", " << j << ")";
}

// Every product over the stored pairs adds the dense product's non-zero terms in its order,
// so results agree to the bit.
TEST(ZRSparseRectMatrixProducts, EqualDenseCopyExactly) {
  struct {
    int rows, cols, nz;
  } const shapes[] = {{1, 1, 1}, {7, 5, 2}, {30, 12, 4}, {9, 6, 6}};
  for (const auto & sh : shapes) {
    SCOPED_TRACE(sh.rows * 100 + sh.cols);
    const ZRSparseRectMatrix a = RandomSparse(sh.rows, sh.cols, sh.nz, sh.rows);
    const ZRRectMatrix f = Full(a);
    const ZRSparseRectMatrix bs = RandomSparse(sh.cols, 4, std::min(sh.nz, 4), 7);
    const ZRSparseRectMatrix ct = RandomSparse(5, sh.cols, sh.nz, 8);  // for A B'
    const ZRRectMatrix bd = Full(bs), cd = Full(ct), dense = RandomDense(sh.cols, 3, 9);
    const ZRRectMatrix vm = RandomDense(1, std::max(sh.rows, sh.cols) + 1, 3);
    const Vec v(vm.GetRowPtr(0), vm.GetRowPtr(0) + vm.GetNCols());  // longer than needed
    Vec got, want;
    ASSERT_TRUE(a.ComputeRV(v, got) && f.ComputeRV(v, want));
    EXPECT_EQ(got, want);
    ASSERT_TRUE(a.ComputeVR(v, got) && f.ComputeVR(v, want));
    EXPECT_EQ(got, want);
    ZRRectMatrix p, q;
    for (const ZRMath_920::IZRRectMatrix * b :
         std::vector<const ZRMath_920::IZRRectMatrix *>{&bs, &bd, &dense}) {
      ASSERT_TRUE(a.ComputeMatrixProduct(*b, p));
      ASSERT_TRUE(f.ComputeMatrixProduct(
          b == &bs ? static_cast<const ZRMath_920::IZRRectMatrix &>(bd) : *b, q));
      ExpectSameMatrix(p, q);
    }
    ASSERT_TRUE(a.ComputeProductMatrixTrans(ct, p) && f.ComputeProductMatrixTrans(cd, q));
    ExpectSameMatrix(p, q);
    ASSERT_TRUE(a.ComputeProductMatrixTrans(cd, p));
    ExpectSameMatrix(p, q);
    ASSERT_TRUE(f.ComputeProductMatrixTrans(ct, p));  // the dense class reading sparse pairs
    ExpectSameMatrix(p, q);
    for (int i = 0; i < sh.rows; ++i) {
      for (int k = 0; k < sh.rows; ++k) EXPECT_EQ(a.DotProductRows(i, k), f.DotProductRows(i, k));
      for (int j = 0; j < 3; ++j)
        EXPECT_EQ(a.DotProductRowCol(i, dense, j), f.DotProductRowCol(i, dense, j));
      EXPECT_EQ(a.RowNorm(i), f.RowNorm(i));
    }
    for (int j = 0; j < sh.cols; ++j) {
      for (int k = 0; k < sh.cols; ++k) EXPECT_EQ(a.DotProductCol(j, k), f.DotProductCol(j, k));
      EXPECT_EQ(a.ColNorm(j), f.ColNorm(j));
      Vec x(sh.rows + 2, 1.0), y = x;
      EXPECT_TRUE(a.IncrVecByColumn(j, x, 1, sh.rows, -0.5, true) &&
                  f.IncrVecByColumn(j, y, 1, sh.rows, -0.5, true));
      EXPECT_EQ(x, y);
    }
  }
}

TEST(ZRSparseRectMatrixProducts, BadArguments) {
  const ZRSparseRectMatrix a = RandomSparse(4, 5, 2, 1);
  ZRRectMatrix c(1, 1, true), wrong(3, 2, true);
  Vec out{9.0};
  ZRSparseRectMatrix sparseOut(1, 1, 1);
  Vec v(3, 0.0);
  EXPECT_FALSE(a.ComputeRV(Vec(4), out) || a.ComputeVR(Vec(3), out) ||
               a.ComputeMatrixProduct(wrong, c) || a.ComputeProductMatrixTrans(wrong, c) ||
               a.ComputeMatrixProduct(RandomDense(5, 2, 1), sparseOut) ||  // result is dense
               a.IncrVecByColumn(0, v, 0, 4, 1.0, true));                  // runs past v
  EXPECT_TRUE(out == Vec{9.0} && c.GetNRows() == 1);
  for (double got : {a.DotProductRows(0, 4), a.DotProductCol(5, 0), a.DotProductRowRow(0, wrong, 0),
                     a.DotProductRowCol(0, wrong, 0), a.ColNorm(-1), a.RowNorm(4)})
    EXPECT_EQ(got, kMiss);
}

// The corner block of a larger matrix: the w form against UpdateXX over the zero-padded
// dense rows (the same products in the same order), the S form against ComputeRTransSR.
TEST(ZRSymMatrixSparse, UpdateXXCornerBlockMatchesDenseForms) {
  const int n = 40, q = 9, off = 3;
  const ZRSparseRectMatrix r = RandomSparse(n, q, 3, 11);
  const ZRRectMatrix f = Full(r);
  ZRSymMatrix s0(off + q, true);
  for (int i = 0; i < off + q; ++i)
    for (int j = 0; j <= i; ++j) s0.SetElem(i, j, RandomDense(1, 1, 100 * i + j).GetElem(0, 0));
  Vec w(n);
  for (int i = 0; i < n; ++i) w[i] = 0.25 + i % 7;

  ZRSymMatrix got = s0, want = s0;
  ASSERT_TRUE(got.UpdateXXCornerBlock(r, w));
  for (int i = 0; i < n; ++i) {
    Vec x(off + q, 0.0);
    for (int j = 0; j < q; ++j) x[off + j] = f.GetElem(i, j);
    ASSERT_TRUE(want.UpdateXX(x, w[i]));
  }
  for (int k = 0; k < (off + q) * (off + q + 1) / 2; ++k)
    EXPECT_EQ(got.GetElem(k), want.GetElem(k));

  ZRSymMatrix spd(n, true);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j <= i; ++j) spd.SetElem(i, j, i == j ? n : std::sin(i * 7.0 + j));
  ZRSymMatrix rsr;
  ASSERT_TRUE(spd.ComputeRTransSR(f, rsr));
  got = s0;
  ASSERT_TRUE(got.UpdateXXCornerBlock(r, spd));
  for (int a = 0; a < off + q; ++a)
    for (int b = 0; b <= a; ++b) {
      if (a < off) {
        EXPECT_EQ(got.GetElem(a, b), s0.GetElem(a, b));
        continue;
      }
      // |R'||S||R| bounds the terms of both sums; then one addition to s0.
      long double size = 0.0L;
      for (int i = 0; i < n; ++i)
        for (int t = 0; t < n; ++t)
          size += std::fabs(f.GetElem(i, a - off) * spd.GetElem(i, t) *
                            (b < off ? 0.0 : f.GetElem(t, b - off)));
      const double tol =
          2.0 * (n + 2) * kEps * static_cast<double>(size) + kEps * std::fabs(got.GetElem(a, b));
      const double rs = b < off ? 0.0 : rsr.GetElem(a - off, b - off);
      EXPECT_NEAR(got.GetElem(a, b), s0.GetElem(a, b) + rs, tol) << a << ", " << b;
    }

  // Refusals leave the matrix unchanged.
  ZRSparseRectMatrix empty(4, q, 2);
  ASSERT_EQ(empty.AddRow(), 1);  // a row of empty slots: nothing stored
  ZRSymMatrix tiny(q - 1, true), order2(2, true);
  const ZRSymMatrix before = got;
  EXPECT_FALSE(got.UpdateXXCornerBlock(r, Vec(n - 1, 1.0)) || got.UpdateXXCornerBlock(r, order2) ||
               got.UpdateXXCornerBlock(empty, Vec(1, 1.0)) ||
               got.UpdateXXCornerBlock(empty, ZRSymMatrix(1, true)) ||
               tiny.UpdateXXCornerBlock(r, w));
  for (int k = 0; k < (off + q) * (off + q + 1) / 2; ++k)
    EXPECT_EQ(got.GetElem(k), before.GetElem(k));
  zrtest::AllocCounter counter;
  got.UpdateXXCornerBlock(r, w);
  EXPECT_EQ(counter.Count(), 0);
}

// Softmax with the reference category at z = 0, in long double.
std::vector<long double> Softmax(const Vec & z, long double & lse) {
  long double m = 0.0L;
  for (double x : z) m = std::max<long double>(m, x);
  long double sum = std::exp(-m);
  for (double x : z) sum += std::exp(static_cast<long double>(x) - m);
  lse = m + std::log(sum);
  std::vector<long double> p;
  for (double x : z) p.push_back(std::exp(static_cast<long double>(x) - lse));
  p.push_back(std::exp(-lse));
  return p;
}

TEST(ZRSparseVectorLogit, ProbabilitiesMatchLongDoubleSoftmax) {
  // The predictors are e_0, so z[k] = b[k p] exactly.
  const Idx idx{0};
  const Vec one{1.0};
  const ZRSparseVector x(idx, one);
  struct {
    int line;
    Vec z;
  } const cases[] = {{__LINE__, {800.0, 0.0}},
                     {__LINE__, {1e4, -1e4, 3.0}},
                     {__LINE__, {-1e4, -9000.0}},
                     {__LINE__, {-800.0, -750.5, -709.9}},
                     {__LINE__, {0.5, -0.25, 2.0, 0.0}},
                     {__LINE__, {5.0, -800.0}},
                     {__LINE__, {709.5, 708.0}},
                     {__LINE__, {1000.0, 1000.0}},
                     {__LINE__, {-1000.0, -1000.0}},
                     {__LINE__, {1.5, 1.5, 1.5}},
                     {__LINE__, {-3.0}}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    const int K = static_cast<int>(c.z.size()) + 1, p = 2;
    Vec b(static_cast<std::size_t>(K - 1) * p, 7.0);
    bool shifted = false;
    for (int k = 0; k < K - 1; ++k) {
      b[k * p] = c.z[k];
      shifted = shifted || c.z[k] > 709.0 || c.z[k] < -708.39;
    }
    Vec probs;
    double logRef = 0.0;
    ASSERT_TRUE(x.ComputeProbabilities(b, K, p, probs, logRef));
    long double lse = 0.0L;
    const std::vector<long double> want = Softmax(c.z, lse);
    // L is the log-sum after the shift: near 709 + log K when a z passes the limits.
    const double L = shifted ? 709.0 + std::log(K) : std::fabs(static_cast<double>(lse));
    const double tol = (K + 2.0 * L + 4.0) * kEps;
    long double sum = 0.0L;
    for (int k = 0; k < K; ++k) {
      sum += probs[k];
      if (want[k] > 1e-300L)
        EXPECT_LE(std::fabs(probs[k] - want[k]) / want[k], tol) << k;
      else
        EXPECT_LE(probs[k], 1e-300) << k;
    }
    EXPECT_LE(std::fabs(sum - 1.0L), tol);
    EXPECT_LE(std::fabs(logRef + lse), (2.0 * L + 4.0) * kEps * std::max(1.0L, std::fabs(lse)));
  }
}

TEST(ZRSparseVectorLogit, Refusals) {
  const Idx idx{0, 2};
  const Vec val{1.0, 2.0};
  const ZRSparseVector x(idx, val);
  Vec probs{4.0};
  double logRef = 4.0;
  struct {
    int line;
    int K, p;
    std::size_t bSize;
  } const cases[] = {
      {__LINE__, 0, 3, 9}, {__LINE__, 3, 0, 9}, {__LINE__, 3, 3, 5}, {__LINE__, 3, 2, 9}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_FALSE(x.ComputeProbabilities(Vec(c.bSize, 0.1), c.K, c.p, probs, logRef));
    EXPECT_EQ(probs, Vec{4.0});
    EXPECT_EQ(logRef, 4.0);
  }
  ASSERT_TRUE(x.ComputeProbabilities(Vec(3), 1, 3, probs, logRef));
  EXPECT_TRUE(probs == Vec{1.0} && logRef == 0.0);
  EXPECT_FALSE(x.ComputeProbabilities(Vec{NAN, 0.0, 0.0, 1.0, 0.0, 0.0}, 3, 3, probs, logRef));
  EXPECT_TRUE(std::isnan(probs[2]) && std::isnan(logRef));
}

// Outer products at the stored positions equal the dense updates of the same vector.
TEST(ZRSparseVectorOuter, EqualDenseUpdates) {
  const Idx idx{1, 3, 4};
  const Vec val{0.5, -2.0, 3.0}, dense{0.0, 0.5, 0.0, -2.0, 3.0};
  const ZRSparseVector x(idx, val);
  ZRSymMatrix got, want;
  x.QuadraticOuterProduct(got);
  ASSERT_TRUE(want.SetToVV(dense));
  ASSERT_EQ(got.GetNRows(), 5);
  for (int k = 0; k < 15; ++k) EXPECT_EQ(got.GetElem(k), want.GetElem(k));

  ZRSymMatrix s(8, true), ref(8, true);
  for (int k = 0; k < 36; ++k) s.SetElem(k, 0.1 * k), ref.SetElem(k, 0.1 * k);
  x.QuadraticOuterProductIncr(s, -1.5);
  ASSERT_TRUE(x.QuadraticOuterProductPartIncr(s, 3, 2.0));
  ASSERT_TRUE(x.IncrementRowPart(s, 6, 2, 4.0));
  Vec d0(8, 0.0), d3(8, 0.0);
  for (int k = 0; k < 3; ++k) d0[idx[k]] = val[k], d3[idx[k] + 3] = val[k];
  ASSERT_TRUE(ref.UpdateXXPosNegW(d0, -1.5));
  ASSERT_TRUE(ref.UpdateXXPosNegW(d3, 2.0));
  for (int k = 0; k < 3; ++k) ref.SetElem(6, idx[k] + 2, ref.GetElem(6, idx[k] + 2) + 4.0 * val[k]);
  for (int k = 0; k < 36; ++k) EXPECT_EQ(s.GetElem(k), ref.GetElem(k)) << k;

  const ZRSymMatrix before = s;
  EXPECT_FALSE(x.QuadraticOuterProductPartIncr(s, -1, 1.0) ||
               x.QuadraticOuterProductPartIncr(s, 4, 1.0) ||  // 4 + 4 is past order 8
               x.IncrementRowPart(s, 8, 0, 1.0) || x.IncrementRowPart(s, -1, 0, 1.0) ||
               x.IncrementRowPart(s, 0, 4, 1.0));
  x.QuadraticOuterProductIncr(got = ZRSymMatrix(4, true), 1.0);  // too small: nothing
  for (int k = 0; k < 36; ++k) EXPECT_EQ(s.GetElem(k), before.GetElem(k));
}

// The reserve grows by the rule 4 -> 10 -> 15 -> 22 -> 33 and 8 -> 12 -> 18; a row added
// inside the reserve allocates nothing.
TEST(ZRSparseRectMatrixGrowth, ReserveRuleAcrossManyAddRows) {
  const Idx idx{0, 2};
  const Vec val{1.0, -1.0};
  struct {
    int line;
    int reserve;
    std::vector<int> growsAt;
  } const cases[] = {
      {__LINE__, 4, {5, 11, 16, 23, 34}}, {__LINE__, 8, {9, 13, 19}}, {__LINE__, 1, {2, 11}}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ZRSparseRectMatrix m(c.reserve, 3, 2);
    for (int row = 1; row <= c.growsAt.back(); ++row) {
      const ZRSparseVector s(idx, val);
      zrtest::AllocCounter counter;
      const int added = row % 2 ? m.AddRow(s) : m.AddRow();
      const long allocations = counter.Count();
      ASSERT_EQ(added, row);
      const bool grows = std::find(c.growsAt.begin(), c.growsAt.end(), row) != c.growsAt.end();
      if (zrtest::CountsAllocations()) {
        EXPECT_EQ(allocations > 0, grows) << row;
      }
    }
  }
  ZRSparseRectMatrix m(1, 1000, 3);
  for (int i = 0; i < 5000; ++i) {
    if (i % 7 == 3) {
      ASSERT_EQ(m.AddRow(), i + 1);  // a new row keeps its new, empty slots
      continue;
    }
    const Idx at{i % 500, 500 + i % 499, 999};
    const Vec val{1.0 * i, 2.0, 3.0};
    ASSERT_EQ(m.AddRow(ZRSparseVector(at, val)), i + 1);
  }
  for (int i = 0; i < 5000; i += 97) {
    const bool stored = i % 7 != 3;
    EXPECT_EQ(m.GetElem(i, i % 500), stored ? 1.0 * i : 0.0) << i;
    EXPECT_EQ(m.GetElem(i, 999), stored ? 3.0 : 0.0) << i;
  }
}

TEST(ZRSparseRectMatrixEdges, ElementsRowsAndSizes) {
  ZRSparseRectMatrix m(4, 6, 2);
  const Idx i13{1, 3}, i15{1, 5}, i16{1, 6}, i1{1};
  const Vec v2{2.0, 0.0}, v1{1.0};
  EXPECT_EQ(m.AddRow(ZRSparseVector(i1, v1)), -1);   // count other than nz
  EXPECT_EQ(m.AddRow(ZRSparseVector(i16, v2)), -1);  // last index + 1 above the width
  ASSERT_EQ(m.AddRow(ZRSparseVector(i13, v2)), 1);
  ASSERT_EQ(m.AddRow(ZRSparseVector(i15, v2)), 2);
  EXPECT_TRUE(m.SetElem(0, 2, 0.0));   // not stored, 0.0: true, nothing written
  EXPECT_FALSE(m.SetElem(0, 2, 1.0));  // not stored: can't be created
  EXPECT_TRUE(m.SetElem(0, 3, 7.0));   // a stored zero is an element
  EXPECT_TRUE(m.GetElem(0, 3) == 7.0 && m.GetElem(0, 2) == 0.0);
  EXPECT_FALSE(m.SetRow(0, ZRSparseVector(i16, v2)) || m.SetRow(2, ZRSparseVector(i13, v2)));
  Vec last;
  m.ExtractLastCol(last);
  EXPECT_EQ(last, (Vec{0.0, 0.0}));  // row 1 stores column 5, but its value is 0.0
  ASSERT_TRUE(m.SetElem(1, 5, 4.5));
  m.ExtractLastCol(last);
  EXPECT_EQ(last, (Vec{0.0, 4.5}));
  EXPECT_TRUE(m.ZeroOutRowPart(1, 0, 6));  // Intended: to may equal the width
  EXPECT_FALSE(m.ZeroOutRowPart(1, 0, 7) || m.ZeroOutRowPart(1, 3, 2));
  EXPECT_TRUE(m.GetElem(1, 5) == 0.0 && m.IsRowZero(1));
  m.Clear();
  EXPECT_EQ(m.GetElem(0, 1), 0.0);  // a cleared row: every slot empty
  EXPECT_FALSE(m.SetElem(0, 1, 1.0));
  std::vector<std::vector<int>> rows;
  std::vector<std::vector<double>> vals;
  EXPECT_FALSE(m.GetSparseMatrixColumns(rows, vals));

  // AddRow(s, first, start): entries from start (searched when negative), indices - first.
  const Idx wide{2, 5, 7, 9, 12};
  const Vec wv{1, 2, 3, 4, 5};
  const ZRSparseVector s(wide, wv);
  ZRSparseRectMatrix t(2, 8, 3);
  struct {
    int line, first, start, want;
    Idx cols;
  } const cases[] = {
      {__LINE__, 5, -1, 1, {0, 2, 4}}, {__LINE__, 3, -1, 2, {2, 4, 6}},
      {__LINE__, 1, 1, 3, {4, 6}},  // Intended: 9 - 1 equal to the width passes, empty
      {__LINE__, 0, 2, -1, {}},     // 12 above the width
      {__LINE__, -1, 0, -1, {}},       {__LINE__, 13, -1, -1, {}},
      {__LINE__, 8, -1, -1, {}},  // from 9 on only two entries remain
      {__LINE__, 2, 3, -1, {}}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ASSERT_EQ(t.AddRow(s, c.first, c.start), c.want);
    if (c.want < 0) continue;
    Idx got;
    Vec gv;
    ASSERT_TRUE(t.GetRow(c.want - 1, got, gv));
    EXPECT_EQ(got, c.cols);
  }

  // Sizes: validity, Resize lowering nz, SetNRowsCols storing a width of 0.
  EXPECT_FALSE(ZRSparseRectMatrix(0, 3, 2).IsValidMatrix() ||
               ZRSparseRectMatrix(2, 3, 4).IsValidMatrix());
  ZRSparseRectMatrix r = RandomSparse(3, 5, 3, 2);
  EXPECT_TRUE(r.Resize(20, 2) && r.IsValidMatrix());
  EXPECT_TRUE(r.GetNNZRowElements() == 2 && r.GetNRows() == 20);
  EXPECT_TRUE(r.SetNRowsCols(5, 1, true));
  EXPECT_EQ(r.GetNCols(), 0);  // Intended: a width below nz is stored as 0
  EXPECT_FALSE(r.IsValidMatrix());
}

// Copies into sparse and dense targets hold what the dense class makes of the full copy.
TEST(ZRSparseRectMatrixCopies, SparseAndDenseTargetsMatchDenseOperations) {
  const ZRSparseRectMatrix a = RandomSparse(6, 5, 3, 4);
  const ZRRectMatrix f = Full(a);
  using Op = std::function<bool(const ZRMath_920::IZRRectMatrix &, ZRMath_920::IZRRectMatrix &)>;
  struct {
    int line;
    Op op;
  } const cases[] = {
      {__LINE__,
       [](auto & m, auto & d) {
         return m.ExtractColumns({0, 2, 4}, d) == 3;
       }},
      {__LINE__,
       [](auto & m, auto & d) {
         return m.ExtractColumns({-1, 3}, d) == 1;
       }},
      {__LINE__,
       [](auto & m, auto & d) {
         return m.ExtractRows({5, 1, 1}, d) == 3;
       }},
      {__LINE__, [](auto & m, auto & d) { return m.ShiftColumns(2, d); }},
      {__LINE__, [](auto & m, auto & d) { return m.ShiftRows(3, d); }},
      {__LINE__, [](auto & m, auto & d) { return m.CreateBlockDiagonal(3, d); }},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ZRRectMatrix want, dense;
    ZRSparseRectMatrix sparse(1, 1, 1);
    ASSERT_TRUE(c.op(f, want));
    ASSERT_TRUE(c.op(a, dense));
    ASSERT_TRUE(c.op(a, sparse));
    ExpectSameMatrix(dense, want);
    ExpectSameMatrix(Full(sparse), want);
  }
  ZRSparseRectMatrix rows(1, 1, 1), sub(1, 1, 1);
  ASSERT_TRUE(rows.CopyRows(a, 2, 3));
  ZRRectMatrix want;
  ASSERT_TRUE(want.CopyRows(f, 2, 3));
  ExpectSameMatrix(Full(rows), want);
  ASSERT_TRUE(rows.CopyRows(f, 2, 3));  // from dense: the non-zeros of each row
  ExpectSameMatrix(Full(rows), want);
  ASSERT_TRUE(a.ExtractSubSparseRectMat(1, 4, 2, sub, 5));
  ASSERT_TRUE(want.CopyRows(f, 1, 3));
  ZRRectMatrix cols;
  ASSERT_TRUE(cols.CopyColumns(want, 2, 3));
  ExpectSameMatrix(Full(sub), cols);
  EXPECT_FALSE(a.ExtractSubSparseRectMat(2, 2, 0, sub, 5));
  EXPECT_FALSE(a.ExtractSubSparseRectMat(0, 2, 0, sub, 6));

  ZRSparseRectMatrix copy = a;
  ZRRectMatrix copyDense = f;
  ASSERT_TRUE(a.CopyRowToRow(0, 3, copy));
  ASSERT_TRUE(a.CopyRowToRow(0, 3, copyDense));
  ExpectSameMatrix(Full(copy), copyDense);
  ZRSparseRectMatrix square = RandomSparse(3, 3, 2, 5);
  ZRRectMatrix bordered, wantBordered, col(3, 2, true);
  col.SetElem(1, 1, 2.5);
  const ZRSparseRectMatrix border = RandomSparse(2, 3, 1, 6);
  ASSERT_TRUE(square.ExpandSquare(border, bordered));
  ASSERT_TRUE(Full(square).ExpandSquare(Full(border), wantBordered));
  ExpectSameMatrix(bordered, wantBordered);
  ASSERT_TRUE(square.CopyColToRow(col, 1, 2));
  EXPECT_EQ(square.GetElem(2, 1), 2.5);
  EXPECT_EQ(square.GetElem(2, 0), 0.0);
  EXPECT_FALSE(square.CopyColToRow(RandomDense(3, 1, 1), 0, 0));  // three non-zeros, nz 2
}

TEST(ZRSparseRectMatrixDisplay, StoredAndDenseRows) {
  const Idx idx{2};
  const Vec val{1.5};
  ZRSparseRectMatrix m(1, 3, 1);
  ASSERT_EQ(m.AddRow(ZRSparseVector(idx, val)), 1);
  zrtest::DisplayCapture capture;
  m.Display();
  const std::string stored = capture.Text();
  capture.Clear();
  m.DisplayF();
  const std::string full = capture.Text();
  EXPECT_EQ(stored.rfind("\nZRSparseRectMatrix display start", 0), 0u) << stored;
  EXPECT_NE(stored.find("Number of rows"), std::string::npos);
  EXPECT_EQ(full.rfind("\nZRSparseRectMatrix full matrix display start", 0), 0u) << full;
  EXPECT_NE(full.find("1.5"), std::string::npos);
  const std::string end = "\nZRSparseRectMatrix display end";
  EXPECT_EQ(full.substr(full.size() - end.size()), end);
}

}  // namespace
