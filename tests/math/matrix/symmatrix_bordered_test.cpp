// Bordered-block operations of ZRSymMatrix, ZRRectMatrix::ComputeBlockDiagSR and the
// block-factor pieces of ZRSymBlockDiagMatrix. Random block structures (dense and
// diagonal blocks of 1 to 6 rows in any order) are mirrored by full matrices in long
// double, and each result is compared with the same product formed there by plain loops:
// |error| <= k u sum |terms|, u = eps / 2, k the roundings along the chain of sums (nb + 2
// per product of order nb, one more level per factor).
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>
#include <vector>

#include "zrcommon920r/math/matrix/blockmatrix.h"
#include "zrcommon920r/math/matrix/rectmatrix.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace {

using ZRMath_920::ZRRectMatrix;
using ZRMath_920::ZRSymBlockDiagMatrix;
using ZRMath_920::ZRSymMatrix;
using LD = long double;
using Vec = std::vector<double>;

constexpr double kU = 2.220446049250313e-16 / 2;  // unit roundoff

// A full row-major matrix in long double.
struct Full {
  int r = 0, c = 0;
  std::vector<LD> a;
  Full(int rows, int cols) : r(rows), c(cols), a(static_cast<std::size_t>(rows) * cols, 0.0L) {}
  LD & operator()(int i, int j) { return a[static_cast<std::size_t>(i) * c + j]; }
  LD operator()(int i, int j) const { return a[static_cast<std::size_t>(i) * c + j]; }
};

Full Mul(const Full & x, const Full & y) {
  Full z(x.r, y.c);
  for (int i = 0; i < x.r; ++i)
    for (int j = 0; j < y.c; ++j)
      for (int k = 0; k < x.c; ++k) z(i, j) += x(i, k) * y(k, j);
  return z;
}
Full T(const Full & x) {
  Full z(x.c, x.r);
  for (int i = 0; i < x.r; ++i)
    for (int j = 0; j < x.c; ++j) z(j, i) = x(i, j);
  return z;
}
Full Abs(const Full & x) {
  Full z = x;
  for (LD & e : z.a) e = std::fabs(e);
  return z;
}
Full Part(const Full & x, int r, int c, int m, int k) {
  Full z(m, k);
  for (int i = 0; i < m; ++i)
    for (int j = 0; j < k; ++j) z(i, j) = x(r + i, c + j);
  return z;
}
// Writes p at (r, c) and its mirror, keeping x symmetric.
void Put(Full & x, int r, int c, const Full & p) {
  for (int i = 0; i < p.r; ++i)
    for (int j = 0; j < p.c; ++j) x(r + i, c + j) = x(c + j, r + i) = p(i, j);
}

// A value and the sum of the magnitudes of its terms.
struct Ref {
  Full v, b;
};
Ref Chain(const std::vector<Full> & f) {
  Ref z{f[0], Abs(f[0])};
  for (std::size_t k = 1; k < f.size(); ++k) z = {Mul(z.v, f[k]), Mul(z.b, Abs(f[k]))};
  return z;
}

void ExpectNear(double got, LD want, LD bound, double k) {
  EXPECT_LE(std::fabs(got - want), k * kU * bound) << got << " vs " << static_cast<double>(want);
}
void ExpectSym(const ZRSymMatrix & got, const Ref & want, double k) {
  ASSERT_EQ(got.GetNRows(), want.v.r);
  for (int i = 0; i < want.v.r; ++i)
    for (int j = 0; j <= i; ++j) ExpectNear(got.GetElem(i, j), want.v(i, j), want.b(i, j), k);
}
void ExpectVec(const Vec & got, const Ref & want, double k) {
  ASSERT_EQ(static_cast<int>(got.size()), want.v.r * want.v.c);
  for (std::size_t i = 0; i < got.size(); ++i) ExpectNear(got[i], want.v.a[i], want.b.a[i], k);
}

// Entries uniform on [-1, 1); symmetric when asked.
Full Random(std::mt19937 & g, int m, int n, bool sym = false) {
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  Full f(m, n);
  for (int i = 0; i < m; ++i)
    for (int j = 0; j < n; ++j) f(i, j) = u(g);
  for (int i = 0; sym && i < m; ++i)
    for (int j = i + 1; j < n; ++j) f(i, j) = f(j, i);
  return f;
}
ZRSymMatrix ToSym(const Full & f) {
  ZRSymMatrix m(f.r, true);
  for (int i = 0; i < f.r; ++i)
    for (int j = 0; j <= i; ++j) m.SetElem(i, j, static_cast<double>(f(i, j)));
  return m;
}
ZRRectMatrix ToRect(const Full & f) {
  ZRRectMatrix m(f.r, f.c, true);
  for (int i = 0; i < f.r; ++i)
    for (int j = 0; j < f.c; ++j) m.SetElem(i, j, static_cast<double>(f(i, j)));
  return m;
}
Full Col(const Vec & v, int from, int n) {
  Full z(n, 1);
  for (int i = 0; i < n; ++i) z.a[i] = v[from + i];
  return z;
}

// A random block-diagonal B (1 to 4 blocks of 1 to 6 rows, dense or diagonal), its full
// symmetric form and its factor reading L.
struct Blocks {
  ZRSymBlockDiagMatrix B;
  Full sym{0, 0}, low{0, 0};
  int n = 0;
};
Blocks RandomBlocks(std::mt19937 & g) {
  Blocks z;
  std::vector<int> sizes(1 + g() % 4);
  ZRMath_920::ZRBitSet isDiag;
  isDiag.Resize(static_cast<int>(sizes.size()), false);
  for (std::size_t b = 0; b < sizes.size(); ++b) {
    sizes[b] = 1 + static_cast<int>(g() % 6);
    isDiag.Set(static_cast<int>(b), g() % 2 == 1);
    z.n += sizes[b];
  }
  z.B.SetStructure(sizes, isDiag);
  z.sym = z.low = Full(z.n, z.n);
  for (int b = 0, at = 0; b < static_cast<int>(sizes.size()); at += sizes[b++]) {
    const Full x = Random(g, sizes[b], sizes[b], true);
    ZRSymMatrix * m = nullptr;
    Vec * d = nullptr;
    for (int i = 0; i < sizes[b]; ++i)
      for (int j = 0; j <= i; ++j) {
        if (z.B.GetDiagonalBlock(b, d) && i != j) continue;
        if (z.B.GetDenseBlock(b, m)) m->SetElem(i, j, static_cast<double>(x(i, j)));
        if (z.B.GetDiagonalBlock(b, d)) (*d)[i] = static_cast<double>(x(i, i));
        z.sym(at + i, at + j) = z.sym(at + j, at + i) = z.low(at + i, at + j) = x(i, j);
      }
  }
  return z;
}

constexpr int kCases = 12;

TEST(ZRSymMatrixBordered, AugmentIsCongruenceWithBlockFactor) {
  for (int seed = 1; seed <= kCases; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 g(seed);
    Blocks b = RandomBlocks(g);
    const int r = seed % 4, n = b.n, N = 2 * n + 1 + r;
    const Full mf = Random(g, N, N, true);
    ZRSymMatrix m = ToSym(mf);
    Full d(N, N);  // D = diag(I_r, L, I_n, 1)
    for (int i = 0; i < N; ++i) d(i, i) = 1.0L;
    for (int i = 0; i < n; ++i)
      for (int j = 0; j <= i; ++j) d(r + i, r + j) = b.low(i, j);
    ASSERT_TRUE(m.AugmentUsingBlockDiagL(r, n, b.B));
    ExpectSym(m, Chain({T(d), mf, d}), 2 * n + 4);  // L' M L: two sums of up to n terms
  }
}

// Each transformation of a part against the full matrix with that part replaced.
TEST(ZRSymMatrixBordered, PartsTimesFactorMatchFullProducts) {
  for (int seed = 1; seed <= kCases; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 g(100 + seed);
    Blocks b = RandomBlocks(g);
    const int nb = b.n, N = 2 * nb + 9, r = nb + 2 + seed % 4, c = 1 + seed % 2, m = 3;
    const Full mf = Random(g, N, N, true), L = b.low, Lt = T(b.low);
    struct {
      std::function<bool(ZRSymMatrix &)> run;
      int r, c;
      std::vector<Full> chain;
      double k;
    } const ops[] = {
        {[&](ZRSymMatrix & s) { return s.SubSymVectBlockL(r, c, b.B); },
         r,
         c,
         {Part(mf, r, c, 1, nb), L},
         nb + 2.0},
        {[&](ZRSymMatrix & s) { return s.SubSymSBlockL(r, c, m, b.B); },
         r,
         c,
         {Part(mf, r, c, m, nb), L},
         nb + 2.0},
        {[&](ZRSymMatrix & s) { return s.SubSymRectTBlockL(r, 0, m, b.B); },
         r,
         0,
         {Lt, Part(mf, r, 0, nb, m)},
         nb + 2.0},
        {[&](ZRSymMatrix & s) { return s.SubSymBlockLTSBlockL(c, b.B); },
         c,
         c,
         {Lt, Part(mf, c, c, nb, nb), L},
         2 * nb + 4.0},
    };
    for (const auto & op : ops) {
      ZRSymMatrix s = ToSym(mf);
      ASSERT_TRUE(op.run(s));
      const Ref part = Chain(op.chain);
      Ref want{mf, Abs(mf)};
      Put(want.v, op.r, op.c, part.v);
      Put(want.b, op.r, op.c, part.b);
      ExpectSym(s, want, op.k);
    }
  }
}

TEST(ZRSymMatrixBordered, PartTimesVectorAndFormsInB) {
  for (int seed = 1; seed <= kCases; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 g(200 + seed);
    Blocks b = RandomBlocks(g);
    const int nb = b.n, N = 2 * nb + 3, r = nb + 1 + seed % 3, c = seed % 2, i = N - 1, j = r + 1;
    const Full mf = Random(g, N, N, true), v = Random(g, nb, 1);
    const ZRSymMatrix s = ToSym(mf);
    const Vec vv(v.a.begin(), v.a.end());
    Vec out;
    ASSERT_TRUE(s.SubSymRectV(2, nb, r, c, vv, out));
    ExpectVec(out, Chain({Part(mf, r, c, 2, nb), v}), nb + 2);
    ASSERT_TRUE(s.SubSymRectTV(nb, 2, r, c, vv, out));
    ExpectVec(out, Chain({T(Part(mf, r, c, nb, 2)), Part(v, 0, 0, nb, 1)}), nb + 2);
    ASSERT_TRUE(s.SubSymSV(nb, c + 1, vv, out));
    ExpectVec(out, Chain({Part(mf, c + 1, c + 1, nb, nb), v}), nb + 2);
    // v' B w: rows i and j from column c; row i and a vector; columns c and c + 1 from c + 1.
    double got[3] = {};
    ASSERT_TRUE(s.ComputeVBW(i, j, c, b.B, got[0]));
    ASSERT_TRUE(s.ComputeVBW(i, c, vv, b.B, got[1]));
    ASSERT_TRUE(s.ComputeVBW(b.B, c + 1, c, c + 1, got[2]));
    const Ref want[3] = {
        Chain({Part(mf, i, c, 1, nb), b.sym, T(Part(mf, j, c, 1, nb))}),
        Chain({Part(mf, i, c, 1, nb), b.sym, v}),
        Chain({T(Part(mf, c + 1, c, nb, 1)), b.sym, Part(mf, c + 1, c + 1, nb, 1)})};
    for (int k = 0; k < 3; ++k) ExpectNear(got[k], want[k].v.a[0], want[k].b.a[0], 2 * nb + 4);
  }
}

TEST(ZRSymMatrixBordered, CongruencesMatchFullProducts) {
  for (int seed = 1; seed <= kCases; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 g(300 + seed);
    Blocks b = RandomBlocks(g);
    const int nb = b.n, p = 1 + seed % 4, N = nb + p + 1;
    const Full mf = Random(g, N, N, true), rf = Random(g, nb, p), wf = Random(g, p, nb + 2),
               sf = Random(g, nb, nb, true), w0 = Part(wf, 0, 1, p, nb);
    const Full rect = Part(mf, p, 0, nb, p);  // M(U, X) below the leading square of order p
    const ZRSymMatrix m0 = ToSym(mf);
    ZRSymMatrix out, schur = m0;
    ASSERT_TRUE(out.ComputeSSubBSSub(m0, p, 0, p, b.B));
    ExpectSym(out, Chain({T(rect), b.sym, rect}), 2 * nb + 4);
    ASSERT_TRUE(schur.ComputeSSubBSSub(p, 0, p, b.B, 0));  // M(X, X) -= M(U, X)' B M(U, X)
    const Ref corr = Chain({T(rect), b.sym, rect});
    Ref want{mf, Abs(mf)};
    for (int i = 0; i < p; ++i)
      for (int j = 0; j < p; ++j) want.v(i, j) -= corr.v(i, j), want.b(i, j) += corr.b(i, j);
    ExpectSym(schur, want, 2 * nb + 5);
    ASSERT_TRUE(out.ComputeRTransBlockDiagR(ToRect(rf), b.B));
    ExpectSym(out, Chain({T(rf), b.sym, rf}), 2 * nb + 4);
    ASSERT_TRUE(out.ComputeRTransSymR(ToRect(rf), m0, 1));
    ExpectSym(out, Chain({T(rf), Part(mf, 1, 1, nb, nb), rf}), 2 * nb + 4);
    ASSERT_TRUE(out.ComputeRDiagSRDiagTrans(ToRect(w0), b.B, ToSym(sf)));
    ExpectSym(out, Chain({w0, b.sym, sf, b.sym, T(w0)}), 4 * nb + 8);
    ASSERT_TRUE(out.ComputeRSRTrans2(ToRect(w0), b.B));
    ExpectSym(out, Chain({w0, b.sym, T(w0)}), 2 * nb + 4);
    ASSERT_TRUE(out.ComputeRSRTrans2(ToRect(wf), 1, b.B));  // columns 1 .. nb of W
    ExpectSym(out, Chain({w0, b.sym, T(w0)}), 2 * nb + 4);
  }
}

TEST(ZRSymMatrixBordered, ExtractionsCopyTheirParts) {
  std::mt19937 g(400);
  const int N = 9;
  const Full mf = Random(g, N, N, true), none(N, N);  // copies are exact: zero bounds
  const ZRSymMatrix m = ToSym(mf);
  ZRSymMatrix out, acc = m;
  ASSERT_TRUE(m.ExtractBlockAndLastRow(2, 4, out));
  Ref want{Part(mf, 2, 2, 5, 5), none};
  Put(want.v, 4, 0, Part(mf, N - 1, 2, 1, 5));
  want.v(4, 4) = mf(N - 1, N - 1);
  ExpectSym(out, want, 0);
  ZRRectMatrix rect;
  ASSERT_TRUE(m.ExtractBlockInLowTriangular(5, 1, 3, 4, rect));
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 4; ++j) EXPECT_EQ(rect.GetElem(i, j), mf(5 + i, 1 + j));
  ASSERT_TRUE(m.ExtractDiagBlock(0, N, acc));  // added, not copied
  for (int i = 0; i < N; ++i) EXPECT_EQ(acc.GetElem(i, 0), 2 * mf(i, 0));
  Vec v;
  ASSERT_TRUE(m.ExtractPartOfLastRow(3, 6, v));
  ExpectVec(v, {T(Part(mf, N - 1, 3, 1, 6)), none}, 0);
  ASSERT_TRUE(m.GetPCol(4, 2, 6, v));  // crosses the diagonal at row 4
  ExpectVec(v, {Part(mf, 2, 4, 6, 1), none}, 0);
}

TEST(ZRRectMatrixBlockDiag, ComputeBlockDiagSRMatchesFullProduct) {
  for (int seed = 1; seed <= kCases; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 g(500 + seed);
    Blocks b = RandomBlocks(g);
    const int off = seed % 3, n = b.n + off + 1, r = 2 + seed % 2, c = seed % 2, m = 3;
    const Full sf = Random(g, r + n, r + n, true);
    ZRRectMatrix out;
    ASSERT_TRUE(out.ComputeBlockDiagSR(b.B, off, ToSym(sf), r, c, n, m));
    const Ref want = Chain({b.sym, Part(sf, r + off, c, b.n, m)});
    ASSERT_EQ(out.GetNRows(), b.n);
    ASSERT_EQ(out.GetNCols(), m);
    for (int i = 0; i < b.n; ++i)
      for (int j = 0; j < m; ++j)
        ExpectNear(out.GetElem(i, j), want.v(i, j), want.b(i, j), b.n + 2);
  }
}

// The pieces not already reached through the operations above.
TEST(ZRSymBlockDiagMatrixFactor, PiecesMatchFullProducts) {
  for (int seed = 1; seed <= kCases; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 g(600 + seed);
    Blocks b = RandomBlocks(g);
    const int nb = b.n, N = nb + 4, r = 3, q = seed % 3, k = nb + 2;
    const Full mf = Random(g, N, N, true);
    ZRSymMatrix s = ToSym(mf), s2 = s;
    Vec packed;  // the packed triangle of mf
    for (int i = 0; i < N; ++i)
      for (int j = 0; j <= i; ++j) packed.push_back(static_cast<double>(mf(i, j)));
    const auto at = [](int i, int j) { return i >= j ? i * (i + 1) / 2 + j : j * (j + 1) / 2 + i; };
    Vec y = packed;  // (x' L) squared, x = packed[1 ..], bound (|x'| |L|)^2
    ASSERT_TRUE(b.B.ComputeProductLAndSquare(y, 1));
    Ref sq = Chain({T(Col(packed, 1, nb)), b.low});
    for (std::size_t t = 0; t < sq.v.a.size(); ++t) sq.v.a[t] *= sq.v.a[t], sq.b.a[t] *= sq.b.a[t];
    ExpectVec(Vec(y.begin() + 1, y.begin() + 1 + nb), sq, 2 * k + 1);
    y = packed;  // row r + 1 from column 1, reflected past the diagonal
    ASSERT_TRUE(b.B.ComputeSymRowByL(y, 1, 1 + nb, r + 1));
    const Ref row = Chain({Part(mf, r + 1, 1, 1, nb), b.low});
    for (int t = 0; t < nb; ++t) ExpectNear(y[at(r + 1, 1 + t)], row.v.a[t], row.b.a[t], k);
    for (int j = 0; j < nb; ++j) {
      SCOPED_TRACE(j);
      double got = 0.0;
      ASSERT_TRUE(b.B.DotProductLColVecIIncrPart(j, packed, r * (r + 1) / 2 + q, r + 1, got));
      Ref want = Chain({T(Part(b.low, 0, j, nb, 1)), Part(mf, r, q, nb, 1)});
      ExpectNear(got, want.v.a[0], want.b.a[0], k);
      ASSERT_TRUE(b.B.DotProductLColDenseRowPart(j, s, r, 2, got));
      want = Chain({Part(mf, r, 2, 1, nb), Part(b.low, 0, j, nb, 1)});
      ExpectNear(got, want.v.a[0], want.b.a[0], k);
      want = Chain({Part(b.sym, j, 0, 1, nb - 1), Col(packed, 0, nb - 1)});  // leading nb - 1
      ExpectNear(b.B.ComputeRVDParts(j, packed, nb - 1), want.v.a[0], want.b.a[0], k);
      ASSERT_TRUE(b.B.UpdateDenseColumnPart(s2, 1, q, j, 0.5));  // S(1 + t, q) += B(t, j) / 2
      int index = -1;
      const double * data = nullptr;
      ASSERT_TRUE(b.B.GetIndexFirstInRow(j, index, data));
      const int bl = b.B.GetBlockIndexForRow()[j], rel = j - b.B.GetBlockStartIndex(bl);
      EXPECT_EQ(data[index + (b.B.GetIsBlockDiagonal(bl) ? 0 : rel)], b.sym(j, j));
    }
    for (int t = 0; t < nb; ++t) {
      LD sum = mf(1 + t, q), bound = std::fabs(sum);
      for (int j = 0; j < nb; ++j)
        sum += 0.5L * b.sym(t, j), bound += std::fabs(0.5L * b.sym(t, j));
      ExpectNear(s2.GetElem(1 + t, q), sum, bound, k);
    }
  }
}

// Every refusal leaves this matrix and the outputs unchanged.
TEST(ZRSymMatrixBordered, BadArgumentsAreRefusedAndChangeNothing) {
  std::mt19937 g(700);
  Blocks b = RandomBlocks(g);
  const int nb = b.n, N = 2 * nb + 3;
  const Full mf = Random(g, N, N, true);
  const ZRSymMatrix m0 = ToSym(mf);
  ZRSymMatrix m = m0, out(2, true);
  ZRRectMatrix R(nb + 1, 2, true), rout(1, 1, true);
  Vec v(N, 1.0), vout(1, 7.0), packed(4, 0.0);
  double d = 7.0;
  struct {
    int line;
    std::function<bool()> call;
  } const cases[] = {
      {__LINE__, [&] { return m.AugmentUsingBlockDiagL(0, nb, b.B); }},  // order 2 nb + 3
      {__LINE__, [&] { return m.AugmentUsingBlockDiagL(-2, nb + 1, b.B); }},
      {__LINE__, [&] { return m.SubSymVectBlockL(nb - 2, 0, b.B); }},  // passes the diagonal
      {__LINE__, [&] { return m.SubSymSBlockL(N - 1, 0, 2, b.B); }},   // passes the last row
      {__LINE__, [&] { return m.SubSymRectTBlockL(N - nb + 1, 0, 1, b.B); }},
      {__LINE__, [&] { return m.SubSymBlockLTSBlockL(N - nb + 1, b.B); }},
      {__LINE__, [&] { return m.SubSymRectV(1, 3, 1, 0, v, vout); }},           // c + n > r + 1
      {__LINE__, [&] { return m.SubSymRectTV(N, 1, 1, 0, v, vout); }},          // r + m > N
      {__LINE__, [&] { return m.ComputeVBW(N - 1, 0, Vec(nb - 1), b.B, d); }},  // short w
      {__LINE__, [&] { return m.ComputeVBW(b.B, 0, 1, 0, d); }},                // r < i
      {__LINE__, [&] { return m.ComputeSSubBSSub(nb, 0, nb, b.B, N - nb + 1); }},
      {__LINE__, [&] { return out.ComputeRTransBlockDiagR(R, b.B); }},  // nb + 1 rows
      {__LINE__, [&] { return out.ComputeRDiagSRDiagTrans(R, b.B, m0); }},
      {__LINE__, [&] { return out.ComputeRSRTrans2(R, 1, b.B); }},
      {__LINE__, [&] { return m.ExtractBlockAndLastRow(1, N - 1, out); }},  // takes the last row
      {__LINE__, [&] { return m.ExtractDiagBlock(0, 3, out); }},            // out has order 2
      {__LINE__, [&] { return m.ExtractPartOfLastRow(0, 0, vout); }},
      {__LINE__, [&] { return rout.ComputeBlockDiagSR(b.B, 1, m0, 0, 0, nb, 1); }},  // nb + 1 > n
      {__LINE__, [&] { return b.B.ComputeVecIIncrPartByL(packed, 0, 1, nb + 1); }},
      {__LINE__, [&] { return b.B.ComputeSymRowByL(packed, 0, nb, 2); }},
      {__LINE__, [&] { return b.B.UpdateDenseColumnPart(m, N - nb + 1, 0, 0, 1.0); }},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_FALSE(c.call());
    ExpectSym(m, {mf, Full(N, N)}, 0);
    EXPECT_TRUE(out.GetNRows() == 2 && rout.GetNRows() == 1);
    EXPECT_EQ(vout, Vec(1, 7.0));
    EXPECT_EQ(packed, Vec(4, 0.0));
  }
  EXPECT_EQ(b.B.ComputeRVDParts(nb, v, 1), 0.0);  // bad row
}

}  // namespace
