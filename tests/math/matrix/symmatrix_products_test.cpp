// ZRSymMatrix products, forms, traces, Gram matrices and the parts of the triangle. Each
// result is compared with a long double computation on the full matrix, element by
// element, to the bound of recursive summation (Higham 2002, Accuracy and Stability of
// Numerical Algorithms, section 3.1): |error| <= k u sum |terms|, u = eps / 2, k the
// roundings along the longest chain of sums plus the reference's own. Arguments and
// outputs come as the dense classes and as subclasses reached through the interface.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <functional>
#include <memory>
#include <vector>

#include "support/colmajor.h"
#include "support/matrixconv.h"
#include "support/symmatrices.h"
#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace {

using ZRCommon_920::kSysMisValue;
using ZRMath_920::IZRRectMatrix;
using ZRMath_920::IZRSymMatrix;
using ZRMath_920::ZRRectMatrix;
using ZRMath_920::ZRSymMatrix;
using zrtest::ColMatrix;
using zrtest::FromRect;
using zrtest::FromSym;
using zrtest::LowerFromSym;
using zrtest::Multiply;
using zrtest::Packed;
using zrtest::ToRect;
using zrtest::Transposed;
using Vec = std::vector<double>;

constexpr double kU = 2.220446049250313e-16 / 2;  // unit roundoff

// Not exactly the dense classes, so operations read and write them through the interface.
template <class Dense>
class Iface : public Dense {
 public:
  Iface() = default;
  explicit Iface(const Dense & d) : Dense(d) {}
};
using SymIface = Iface<ZRSymMatrix>;
using RectIface = Iface<ZRRectMatrix>;
// Kinds that operations refuse or treat apart.
class SparseTyped : public ZRRectMatrix {
 public:
  using ZRRectMatrix::ZRRectMatrix;
  RectMatrixType GetMatrixType() const override { return kSparseRectMatrix; }
};
class DiagTyped : public ZRSymMatrix {
 public:
  explicit DiagTyped(const ZRSymMatrix & s) : ZRSymMatrix(s) {}
  SymMatrixType GetType() const override { return kDiagSymMatrix; }
};
class RefusingSym : public ZRSymMatrix {
 public:
  bool SetElem(int, int, double) override { return false; }
};
class RefusingRect : public ZRRectMatrix {
 public:
  bool SetElem(int, int, double) override { return false; }
};

ZRSymMatrix RandSym(int n, unsigned seed) {
  return zrtest::ToSym(zrtest::RandomSymmetric(n, seed));
}
Vec RandVec(int n, unsigned seed) {
  return zrtest::RandomGeneral(n, 1, seed).a;
}
ColMatrix Col(const Vec & v) {
  ColMatrix a(static_cast<int>(v.size()), 1);
  a.a = v;
  return a;
}
ColMatrix Abs(ColMatrix a) {
  for (double & x : a.a) x = std::fabs(x);
  return a;
}

// Largest |got - want| / (u bound) over the elements (i >= j only when lower), want the
// long double product of the factors and bound that of their absolute values: infinite
// for a shape mismatch, a NaN, or any difference where the bound is 0.
double ProductErr(const ColMatrix & got, const std::vector<ColMatrix> & factors,
                  bool lower = false) {
  ColMatrix want = factors[0], bound = Abs(factors[0]);
  for (std::size_t f = 1; f < factors.size(); ++f) {
    want = Multiply(want, factors[f]);
    bound = Multiply(bound, Abs(factors[f]));
  }
  if (got.rows != want.rows || got.cols != want.cols) return HUGE_VAL;
  double worst = 0.0;
  for (int i = 0; i < got.rows; ++i)
    for (int j = 0; j < (lower ? i + 1 : got.cols); ++j) {
      const double d = std::fabs(got(i, j) - want(i, j));
      if (std::isnan(d)) return HUGE_VAL;
      if (d > 0.0) worst = std::max(worst, d / (kU * bound(i, j)));
    }
  return worst;
}

// A scalar reference in long double with the sum of its absolute terms.
struct Ref {
  long double value = 0.0L, abs = 0.0L;
  void Add(long double t) { value += t, abs += std::fabs(t); }
};
::testing::AssertionResult Near(double got, const Ref & ref, double rounds) {
  const long double d = std::fabs(static_cast<long double>(got) - ref.value);
  if (d <= rounds * kU * ref.abs) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << got << " against " << static_cast<double>(ref.value);
}
// v' A w for the full matrix a.
Ref Bilinear(const ColMatrix & a, const Vec & v, const Vec & w) {
  Ref r;
  for (int i = 0; i < a.rows; ++i)
    for (int j = 0; j < a.cols; ++j) r.Add(static_cast<long double>(v[i]) * a(i, j) * w[j]);
  return r;
}

TEST(ZRSymMatrixProducts, MatrixProductsMatchLongDouble) {
  for (int n : {0, 1, 2, 5, 12}) {
    for (bool iface : {false, true}) {
      SCOPED_TRACE(::testing::Message() << "n " << n << (iface ? " via interface" : " dense"));
      const ZRSymMatrix g = RandSym(n, 10 + n), m = RandSym(n, 20 + n), nm = RandSym(n, 30 + n);
      const SymIface im(m), in(nm);
      const ZRSymMatrix & am = iface ? im : m;
      const ZRSymMatrix & an = iface ? in : nm;
      const ColMatrix G = FromSym(g), M = FromSym(m), N = FromSym(nm), L = LowerFromSym(m);
      const ColMatrix Lt = Transposed(L), R = zrtest::RandomGeneral(3, n, 40 + n),
                      Rt = Transposed(R);
      const ZRRectMatrix r = ToRect(R), rt = ToRect(Rt);
      const RectIface ir(r), irt(rt);
      const ZRRectMatrix & ar = iface ? ir : r;
      const ZRRectMatrix & art = iface ? irt : rt;
      Vec work;
      using SM = ZRSymMatrix;
      using RM = IZRRectMatrix;
      enum Out { kRect, kSym, kLower };  // kLower: not symmetric, its lower triangle kept
      struct {
        int line;
        std::function<bool(SM &, RM &)> run;
        std::vector<ColMatrix> factors;  // k + 1 factors: k chained sums of n terms
        Out out;
      } const cases[] = {
          {__LINE__, [&](SM & o, RM &) { return g.ComputeGMG(Packed(m), o); }, {G, M, G}, kSym},
          {__LINE__, [&](SM & o, RM &) { return g.ComputeGSG(am, o); }, {G, M, G}, kSym},
          {__LINE__,
           [&](SM & o, RM &) { return g.ComputeGMGNG(am, an, o, work); },
           {G, M, G, N, G},
           kLower},
          {__LINE__, [&](SM & o, RM &) { return g.ComputeMGN(am, an, o); }, {M, G, N}, kLower},
          {__LINE__, [&](SM & o, RM &) { return g.ComputeLSLTrans(am, o); }, {L, G, Lt}, kSym},
          {__LINE__, [&](SM & o, RM &) { return g.ComputeSTransS(o), true; }, {G, G}, kSym},
          {__LINE__, [&](SM & o, RM &) { return g.ComputeRSRTrans(ar, o); }, {R, G, Rt}, kSym},
          {__LINE__, [&](SM & o, RM &) { return g.ComputeRTransSR(art, o); }, {R, G, Rt}, kSym},
          {__LINE__, [&](SM &, RM & o) { return g.ComputeRS(ar, o); }, {R, G}, kRect},
          {__LINE__, [&](SM &, RM & o) { return g.ComputeRTransS(art, o); }, {R, G}, kRect},
          {__LINE__, [&](SM &, RM & o) { return g.ComputeSS(am, o); }, {G, M}, kRect}};
      for (const auto & c : cases) {
        SCOPED_TRACE(c.line);
        std::unique_ptr<SM> so(iface ? new SymIface : new SM(3, true));
        std::unique_ptr<ZRRectMatrix> ro(iface ? new RectIface : new ZRRectMatrix(2, 2, true));
        ASSERT_TRUE(c.run(*so, *ro));
        // The reference rounds once per product: k (n + 2) u covers both.
        EXPECT_LE(
            ProductErr(c.out == kRect ? FromRect(*ro) : FromSym(*so), c.factors, c.out == kLower),
            (c.factors.size() - 1.0) * (n + 2));
      }
      const Vec v = RandVec(n + 2, 50);  // a surplus is ignored
      Vec out;
      ASSERT_TRUE(g.ComputeRTransSV(art, v, out));
      EXPECT_LE(ProductErr(Col(out), {R, G, Col({v.begin(), v.begin() + n})}), 2.0 * (n + 2));
      // An output may be an input (results are formed apart): the same bits as apart.
      Vec x = v;
      SM apart, asThis = g, asArg = m;
      ZRRectMatrix rApart, rAlias = r;
      EXPECT_TRUE(g.ComputeRTransSV(art, x, x) && x == out);
      ASSERT_TRUE(g.ComputeGSG(m, apart) && asThis.ComputeGSG(m, asThis) &&
                  g.ComputeGSG(asArg, asArg));
      EXPECT_TRUE(Packed(asThis) == Packed(apart) && Packed(asArg) == Packed(apart));
      ASSERT_TRUE(g.ComputeRS(r, rApart) && g.ComputeRS(rAlias, rAlias));
      EXPECT_EQ(FromRect(rAlias).a, FromRect(rApart).a);
    }
  }
}

TEST(ZRSymMatrixProducts, VectorProductsMatchLongDouble) {
  for (int n : {1, 2, 5, 12}) {
    SCOPED_TRACE(::testing::Message() << "n " << n);
    const ZRSymMatrix g = RandSym(n, 60 + n), m = RandSym(n, 70 + n), nm = RandSym(n, 80 + n);
    const ColMatrix G = FromSym(g), M = FromSym(m), N = FromSym(nm), L = LowerFromSym(g),
                    Lt = Transposed(L);
    const Vec v = RandVec(n, 90 + n), buf = RandVec(3 * n + 2, 100 + n);
    Vec out, sparse(n, 0.0);
    const std::vector<int> idx = {n - 1, 0, n - 1};  // no order, a repeat: they add up
    const Vec val = {0.5, -2.0, 0.25};
    for (int e = 0; e < 3; ++e) sparse[idx[e]] += val[e];
    struct {
      int line;
      std::function<bool(const Vec &, Vec &)> run;  // the first argument is v
      std::vector<ColMatrix> factors;
    } const cases[] = {
        {__LINE__, [&](const Vec & x, Vec & o) { return g.ComputeSV(x, o); }, {G, Col(v)}},
        {__LINE__, [&](const Vec & x, Vec & o) { return g.ComputeLV(x, o); }, {L, Col(v)}},
        {__LINE__, [&](const Vec & x, Vec & o) { return g.ComputeLTransV(x, o); }, {Lt, Col(v)}},
        {__LINE__,
         [&](const Vec &, Vec & o) { return g.ComputeLV(idx, val, o); },
         {L, Col(sparse)}},
        {__LINE__,
         [&](const Vec &, Vec & o) { return g.ComputeLTransV(idx, val, o); },
         {Lt, Col(sparse)}}};
    for (const auto & c : cases) {
      SCOPED_TRACE(c.line);
      ASSERT_TRUE(c.run(v, out));
      EXPECT_LE(ProductErr(Col(out), c.factors), n + 4.0);
      Vec x = v;  // out may be the input: the result is formed apart, the same bits
      ASSERT_TRUE(c.run(x, x));
      EXPECT_EQ(x, out);
    }
    const int k = (n + 1) / 2;  // the leading k x k block
    ASSERT_TRUE(g.ComputeSV(k, v, out));
    ColMatrix Gk(k, k);
    for (int i = 0; i < k; ++i)
      for (int j = 0; j < k; ++j) Gk(i, j) = G(i, j);
    EXPECT_LE(ProductErr(Col(out), {Gk, Col({v.begin(), v.begin() + k})}), k + 4.0);
    const Vec pm = Packed(m), pn = Packed(nm);
    const SymIface im(m), in(nm);
    for (int i = 0; i < n; ++i) {
      for (int stride : {1, 3, -2}) {  // BLAS rule: a negative stride reads from the far end
        Ref r;
        for (int t = 0; t < n; ++t)
          r.Add(G(i, t) * buf[stride > 0 ? t * stride : (n - 1 - t) * -stride]);
        EXPECT_TRUE(Near(g.ComputeRVD(i, buf, stride), r, n + 4.0)) << stride;
      }
      for (int j = 0; j < n; ++j) {
        SCOPED_TRACE(::testing::Message() << "i " << i << " j " << j);
        Ref gg, mg, ng;
        for (int t = 0; t < n; ++t) {
          gg.Add(static_cast<long double>(G(i, t)) * G(t, j));
          mg.Add(static_cast<long double>(M(i, t)) * G(t, j));
          ng.Add(static_cast<long double>(N(i, t)) * G(t, j));
        }
        EXPECT_TRUE(Near(g.ComputeDotProduct2Rows(i, j), gg, n + 4.0));
        EXPECT_TRUE(Near(g.ComputeRowDotProductS(i, pm, j), mg, n + 4.0));
        EXPECT_TRUE(Near(g.ComputeRowDotProductS(i, m, j), mg, n + 4.0));
        EXPECT_TRUE(Near(g.ComputeRowDotProductS(i, im, j), mg, n + 4.0));
        double a = 0.0, b = 0.0;
        g.ComputeRowDotProductS(i, pm, pn, j, a, b);
        EXPECT_TRUE(Near(a, mg, n + 4.0) && Near(b, ng, n + 4.0));
        g.ComputeRowDotProductS(i, im, in, j, a, b);
        EXPECT_TRUE(Near(a, mg, n + 4.0) && Near(b, ng, n + 4.0));
      }
      Vec acc = buf;  // one multiply-add per element: exact against this
      ASSERT_TRUE(g.IncrVecByRow(i, acc, 2, n, 0.5, true));
      for (int t = 0; t < static_cast<int>(acc.size()); ++t)
        EXPECT_EQ(acc[t], t >= 2 && t < 2 + n ? buf[t] + 0.5 * G(i, t - 2) : buf[t]);
    }
  }
}

TEST(ZRSymMatrixProducts, BlockTransformLTransSL) {
  for (int k : {1, 3}) {
    for (int m : {1, 4}) {
      SCOPED_TRACE(::testing::Message() << "k " << k << " m " << m);
      const ZRSymMatrix s = RandSym(k * m, 110 + k * m), l = RandSym(m, 120 + m);
      ColMatrix B(k * m, k * m);  // block diagonal with k copies of L
      const ColMatrix L = LowerFromSym(l);
      for (int t = 0; t < k * m * m; ++t) {
        const int b = t / (m * m), i = t / m % m, j = t % m;
        B(b * m + i, b * m + j) = L(i, j);
      }
      ZRSymMatrix out;
      SymIface iout;
      ASSERT_TRUE(s.ComputeLTransSL(l, out, k) && s.ComputeLTransSL(SymIface(l), iout, k));
      EXPECT_LE(ProductErr(FromSym(out), {Transposed(B), FromSym(s), B}), 2.0 * m + 4);
      EXPECT_EQ(Packed(out), Packed(iout));
    }
  }
}

TEST(ZRSymMatrixForms, FormsMatchLongDouble) {
  constexpr int n = 8;
  ZRSymMatrix g = RandSym(n, 140);
  ASSERT_TRUE(g.SetNBlocks(2));
  const ColMatrix G = FromSym(g);
  const Vec v = RandVec(n, 141), w = RandVec(n, 142), buf = RandVec(60, 143);
  const ZRSymMatrix m5 = RandSym(5, 144);
  const ZRRectMatrix r = ToRect(zrtest::RandomGeneral(3, n, 145));
  Vec r1, gi(5), gj(5);
  r.GetRow(1, r1);
  for (int t = 0; t < 5; ++t) gi[t] = G(1, t), gj[t] = G(4, t);
  // Dense equivalents: count elements from position first, element t taken from src at
  // t * step (BLAS rule for a negative step) or, with grow, at t * step + t (t - 1) / 2.
  auto at = [&](const Vec & src, int first, int count, int step, bool grow) {
    Vec d(n, 0.0);
    for (int t = 0; t < count; ++t)
      d[first + t] +=
          src[grow ? t * step + t * (t - 1) / 2 : (step >= 0 ? t * step : (count - 1 - t) * -step)];
    return d;
  };
  const Vec sp = {-1.5, 0, 0, 0.75, 0, 2.5, 0, 0};  // the sparse v below
  struct {
    int line;
    double got;
    Ref want;
  } const cases[] = {
      {__LINE__, g.ComputeVSW(v, w), Bilinear(G, v, w)},
      {__LINE__, g.ComputeVSV(v), Bilinear(G, v, v)},
      {__LINE__, g.ComputeVSW(buf.data(), 2, buf.data(), -3),
       Bilinear(G, at(buf, 0, n, 2, false), at(buf, 0, n, -3, false))},
      {__LINE__, g.ComputeVSWParts(v.data(), 3, w.data(), 6),
       Bilinear(G, at(v, 0, 3, 1, false), at(w, 0, 6, 1, false))},
      {__LINE__, g.ComputeVSWParts(v, 0, w, 6), Ref()},
      {__LINE__, g.ComputeVSWParts(v, n, w, 2), Bilinear(G, v, at(w, 0, 2, 1, false))},
      {__LINE__, g.ComputeVSWParts(buf.data(), 3, 5, buf.data(), -1, 4),
       Bilinear(G, at(buf, 0, 5, 3, false), at(buf, 0, 4, -1, false))},
      {__LINE__, g.ComputeVSW(Packed(m5), 5, 1, 4), Bilinear(FromSym(m5), gi, gj)},
      {__LINE__, g.ComputeVSV(r, 1), Bilinear(G, r1, r1)},
      {__LINE__, g.ComputeVSV(RectIface(r), 1), Bilinear(G, r1, r1)},
      {__LINE__, g.ComputeVSV({5, 0, 5, 3}, {0.5, -1.5, 2.0, 0.75}), Bilinear(G, sp, sp)},
      {__LINE__, g.ComputeSpVSSpW(1, {0, 4}, {1.25, -0.5}, 2, {1, 3, 4}, {2.0, 0.5, -1.0}),
       Bilinear(G, {0, 1.25, 0, 0, 0, -0.5, 0, 0}, {0, 0, 0, 2.0, 0, 0.5, -1.0, 0})},
      {__LINE__, g.ComputeViiSW(buf.data(), 3, w.data(), 6),
       Bilinear(G, at(buf, 0, 6, 3, true), at(w, 0, 6, 1, false))},
      {__LINE__, g.ComputeVSWii(v.data(), 6, buf.data(), 3),
       Bilinear(G, at(v, 0, 6, 1, false), at(buf, 0, 6, 3, true))},
      // Sub-matrix of order 6 at diagonal 1: v at its positions 1..3 (stride 2), w at 0..4.
      {__LINE__, g.ComputeVSSubWParts(buf.data(), 1, 3, 2, buf.data(), 0, 5, -1, 1, 6),
       Bilinear(G, at(buf, 2, 3, 2, false), at(buf, 1, 5, -1, false))},
      {__LINE__, g.ComputeVSymSubW(2, 4, v, 1, w, 3),
       Bilinear(G, at({v.begin() + 1, v.end()}, 2, 4, 1, false),
                at({w.begin() + 3, w.end()}, 2, 4, 1, false))},
      {__LINE__, g.ComputeBlockVSW(1, 2, v, w),  // rows 4..7 against v[2..5] and w[2..5]
       Bilinear(G, at({v.begin() + 2, v.end()}, 4, 4, 1, false),
                at({w.begin() + 2, w.end()}, 4, 4, 1, false))},
      {__LINE__, g.ComputeBlockVSV(0, 0, v),
       Bilinear(G, at(v, 0, 4, 1, false), at(v, 0, 4, 1, false))}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_TRUE(Near(c.got, c.want, 2.0 * n + 4));
  }
}

TEST(ZRSymMatrixForms, SquareRootVSVGuards) {
  auto diag = [](int n, double d) {
    ZRSymMatrix s(n, true);
    for (int i = 0; i < n; ++i) s.SetElem(i, i, d);
    return s;
  };
  ZRSymMatrix hollow(2, true);  // zero diagonal, nothing to rescale: the form is -DBL_MAX
  hollow.SetElem(1, 0, -DBL_MAX / 2);
  const double nan = std::nan("");
  struct {
    int line;
    ZRSymMatrix s;
    Vec v;
    double want;
  } const cases[] = {
      {__LINE__, diag(4, 1.0), Vec(4, 3.0), 6.0},
      {__LINE__, diag(4, 1.0), Vec(3, 3.0), 0.0},              // size isn't n
      {__LINE__, diag(2, -1.0), {1.0, 1.0}, 0.0},              // form below 0
      {__LINE__, diag(2, 1.0), {1.0, nan}, 0.0},               // a NaN form
      {__LINE__, hollow, {1.0, 1.0}, kSysMisValue},            // passed on as it is
      {__LINE__, diag(4, 1e20), Vec(4, 1e300), kSysMisValue},  // 2e310
      {__LINE__, diag(2, 1e308), {1e308, 1e308}, 0.0},         // half the excess passes 709
      {__LINE__, ZRSymMatrix(), {}, 0.0},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(c.s.SquareRootVSV(c.v), c.want);
  }
  // 2 log 1e200 + 2 log 4 passes 709, so v is scaled down first: sqrt(4) x 1e200, with
  // roundings in the scaling, four terms and the root (12 u).
  EXPECT_NEAR(diag(4, 1.0).SquareRootVSV(Vec(4, 1e200)), 2e200, 12 * kU * 2e200);
}

TEST(ZRSymMatrixTraces, TracesAndGramMatricesMatchLongDouble) {
  for (int n : {1, 5, 9}) {
    SCOPED_TRACE(::testing::Message() << "n " << n);
    const ZRSymMatrix g = RandSym(n, 150 + n), s = RandSym(n, 151), t = RandSym(n, 152);
    const ColMatrix G = FromSym(g), S = FromSym(s), T = FromSym(t);
    Ref tr, tr2, tr3;
    for (int i = 0; i < n; ++i) {
      tr.Add(G(i, i));
      for (int j = 0; j < n; ++j) {
        tr2.Add(static_cast<long double>(G(i, j)) * S(j, i));
        for (int k = 0; k < n; ++k) tr3.Add(static_cast<long double>(G(i, j)) * S(j, k) * T(k, i));
      }
    }
    EXPECT_TRUE(Near(g.Trace(), tr, n + 2.0));
    EXPECT_TRUE(Near(g.TraceOfProduct(s), tr2, 2.0 * n + 4));
    EXPECT_TRUE(Near(g.TraceOfProduct(SymIface(s)), tr2, 2.0 * n + 4));
    EXPECT_TRUE(Near(g.TraceOfProductOfThree(s, t), tr3, 3.0 * n + 4));
    EXPECT_TRUE(Near(g.TraceOfProductOfThree(SymIface(s), SymIface(t)), tr3, 3.0 * n + 4));
    const int m = std::min(n, 3);
    for (int off : {0, n - m}) {
      SCOPED_TRACE(::testing::Message() << "off " << off);
      const ZRSymMatrix sub = RandSym(m, 153 + m);
      const ColMatrix U = FromSym(sub);
      Ref want, diagOnly;
      for (int i = 0; i < m; ++i) {
        diagOnly.Add(static_cast<long double>(G(off + i, off + i)) * U(i, i));
        for (int k = 0; k < m; ++k)
          want.Add(static_cast<long double>(G(off + i, off + k)) * U(k, i));
      }
      double got = 0.0;
      EXPECT_TRUE(g.TraceOfProductSubMatSym(off, sub, got) && Near(got, want, 2.0 * m + 4));
      EXPECT_TRUE(g.TraceOfProductSubMatSym(off, SymIface(sub), got) &&
                  Near(got, want, 2.0 * m + 4));
      EXPECT_TRUE(g.TraceOfProductSubSym(Packed(sub), off, got) && Near(got, want, 2.0 * m + 4));
      // A diagonal matrix is read by its diagonal: the off-diagonal elements don't count.
      EXPECT_TRUE(g.TraceOfProductSubMatSym(off, DiagTyped(sub), got) &&
                  Near(got, diagOnly, m + 2.0));
    }
    for (int cols : {0, 3, 7}) {  // Gram matrices, empty shapes included
      const ColMatrix R = zrtest::RandomGeneral(n, cols, 154);
      ZRSymMatrix out(2, true);
      ASSERT_TRUE(out.ComputeRByRTrans(ToRect(R)));
      EXPECT_LE(ProductErr(FromSym(out), {R, Transposed(R)}), cols + 4.0);
      ASSERT_TRUE(out.ComputeRTransByR(ToRect(R)));
      EXPECT_LE(ProductErr(FromSym(out), {Transposed(R), R}), n + 4.0);
    }
  }
}

TEST(ZRSymMatrixParts, PartsMatchTheirDefinitions) {
  constexpr int n = 6;
  const ZRSymMatrix t = RandSym(n, 160), s = RandSym(n, 161), l3 = RandSym(3, 162);
  const ColMatrix F = FromSym(t), S = FromSym(s), L3 = LowerFromSym(l3);
  const Vec v = RandVec(40, 163);
  auto at = [](int start, int step, int k) { return start + k * step + k * (k - 1) / 2; };
  double got = 0.0;
  // A valid call must match the sum of count terms in long double; an invalid one must give
  // false with 0.0.
  auto check = [&](bool ok, bool valid, const std::function<long double(int)> & term, int count) {
    if (!valid) return !ok && got == 0.0;
    Ref r;
    for (int k = 0; k < count; ++k) r.Add(term(k));
    return ok && Near(got, r, n + 2.0);
  };
  // Ranges run one step past their ends, and growing walks past the end of v.
  for (int j = -1; j <= n; ++j) {
    const bool jOk = j >= 0 && j < n;
    for (int start : {-1, 0, 5})
      for (int step : {0, 1, 3, 6}) {
        SCOPED_TRACE(::testing::Message() << "j " << j << " start " << start << " step " << step);
        const bool wOk = jOk && start >= 0 && step >= 1;
        auto walk = [&](int k) { return v[at(start, step, k)]; };
        auto fits = [&](int count) { return count == 0 || at(start, step, count - 1) < 40; };
        EXPECT_TRUE(check(
            t.ComputeDotColVecIIncrPart(j, v, start, step, got), wOk && fits(n),
            [&](int k) { return F(k, j) * walk(k); }, n));
        EXPECT_TRUE(check(
            t.ComputeDotLColVecIIncrDiag(j, v, start, step, got), wOk && fits(n - j),
            [&](int k) { return F(j + k, j) * walk(k); }, n - j));
        for (int delay = -1; delay <= n; ++delay)
          for (int count = 0; delay + count <= n + 1; ++count) {
            const bool rowOk = wOk && delay >= 0 && delay + count <= n && fits(count);
            EXPECT_TRUE(check(
                t.DotRowVecDelayedIIncrPart(j, delay, count, v, start, step, got), rowOk,
                [&](int k) { return F(j, delay + k) * walk(k); }, count));
            const bool colOk = rowOk && j + 1 + delay + count <= n;
            auto col = [&](int k) { return F(j + 1 + delay + k, j) * walk(k); };
            EXPECT_TRUE(check(t.DotLColVecDelayedIIncrPart(j, delay, count, v, start, step, got),
                              colOk, col, count));
            if (delay == 0) {  // the same stretch, undelayed
              EXPECT_TRUE(check(t.ComputeDotLColVecIIncrPart(j, count, v, start, step, got), colOk,
                                col, count));
            }
          }
      }
    EXPECT_TRUE(check(
        t.DotProdColBelowDiagBackVec(j, v, got), jOk,
        [&](int k) { return F(j + 1 + k, j) * v[j + 1 + k]; }, n - 1 - j));
    EXPECT_TRUE(check(
        t.DotProdRowBeforeDiagFrontVec(j, v, got), jOk, [&](int k) { return F(j, k) * v[k]; }, j));
    for (int count = -1; count <= n; ++count) {
      EXPECT_TRUE(check(
          t.ComputeDotLColVecPart(j, count, v, 36, got),
          jOk && count >= 0 && j + 1 + count <= n && 36 + count <= 40,
          [&](int k) { return F(j + 1 + k, j) * v[36 + k]; }, count));
      EXPECT_TRUE(check(
          t.ComputeDotLRowVecPart(j, count, v, 2, got), jOk && count >= 0 && count <= j,
          [&](int k) { return F(j, k) * v[2 + k]; }, count));
    }
    for (int i = -1; i <= n; ++i)
      for (int first = j - 1; first <= n; ++first)
        for (int count = 0; first + count <= n + 1; ++count) {
          SCOPED_TRACE(::testing::Message() << "j " << j << " i " << i << " first " << first);
          const bool ok = jOk && first >= j && i >= 0 && i < n && first + count <= n;
          // The triangle alone: row i up to its diagonal.
          EXPECT_TRUE(check(
              t.DotLColRowPart(j, i, first, count, got), ok && first + count <= i + 1,
              [&](int k) { return F(first + k, j) * F(i, first + k); }, count));
          EXPECT_TRUE(check(
              t.DotProductLColRowPart(j, s, i, first, count, got), ok,
              [&](int k) { return F(first + k, j) * S(i, first + k); }, count));
        }
  }
  // This as 2 x 2 blocks of order 3, times the triangle of l3: element (r, c) of S(bi, bj) L.
  for (int bi = -1; bi <= 2; ++bi)
    for (int bj = -1; bj <= 2; ++bj)
      for (int r = 0; r <= 3; ++r)
        for (int c = -1; c < 3; ++c) {
          const bool ok = bi >= 0 && bi < 2 && bj >= 0 && bj < 2 && r < 3 && c >= 0;
          auto term = [&](int k) { return F(3 * bi + r, 3 * bj + c + k) * L3(c + k, c); };
          EXPECT_TRUE(
              bi == bj ? check(t.DotProductLBlockDiagColRow(bi, r, l3, c, got), ok, term, 3 - c)
                       : check(t.DotProductLBlockColRow(bi, bj, r, l3, c, got), ok, term, 3 - c));
        }
  // x' L in place, on a stretch of v and on a growing walk; nothing else changes.
  const ColMatrix Lt = Transposed(LowerFromSym(t));
  for (bool grow : {false, true}) {
    Vec x = v, before(n), after(n), rest = v;
    for (int k = 0; k < n; ++k) before[k] = v[grow ? at(2, 3, k) : 5 + k];
    ASSERT_TRUE(grow ? t.ComputeVecIIncPartByL(x, 2, 3) : t.ComputeVecPartByL(x, 5));
    for (int k = 0; k < n; ++k) {
      const int p = grow ? at(2, 3, k) : 5 + k;
      after[k] = x[p], rest[p] = x[p];
    }
    EXPECT_EQ(x, rest);
    EXPECT_LE(ProductErr(Col(after), {Lt, Col(before)}), n + 4.0);
    EXPECT_FALSE(grow ? t.ComputeVecIIncPartByL(x, 22, 3) : t.ComputeVecPartByL(x, 35));
    EXPECT_EQ(x, rest);  // a stretch past the end of v: v left alone
  }
}

TEST(ZRSymMatrixProducts, FailureValues) {
  const ZRSymMatrix g = RandSym(4, 170), s3 = RandSym(3, 171), s2 = RandSym(2, 172), empty;
  ZRSymMatrix g2 = g, so;
  g2.SetNBlocks(2);
  const DiagTyped diagTyped(g);
  const Vec v3(3, 1.0), v4(4, 1.0), v5(5, 1.0), v7(7, 1.0), p10(10, 1.0), ps3 = Packed(s3);
  const ZRRectMatrix r23(2, 3, true), r24(2, 4, true), r32(3, 2, true), r42(4, 2, true);
  ZRRectMatrix ro;
  RefusingSym refusingSym;
  RefusingRect refusingRect;
  DiagTyped diagOut(g);
  Vec out, work, acc(4, 1.0);
  double a = 7.0, b = 7.0;
  g.ComputeRowDotProductS(0, g, g, 4, a, b);
  // A part of the triangle fails as documented: false with its result 0.0.
  auto fails = [](const std::function<bool(double &)> & f) {
    double x = 7.0;
    return !f(x) && x == 0.0;
  };
  // One operation, or one family, a row: every call listed is refused.
  struct {
    int line;
    std::vector<bool> refused;
  } const calls[] = {
      {__LINE__, {!g.ComputeGMG(v5, so), !g.ComputeGSG(s3, so), !g.ComputeGSG(g, refusingSym)}},
      {__LINE__, {!g.ComputeGMGNG(g, s3, so, work), !g.ComputeMGN(s3, g, so)}},
      {__LINE__, {!g.ComputeLSLTrans(s3, so), !g.ComputeLTransSL(s2, so, 0)}},
      {__LINE__, {!g.ComputeLTransSL(s3, so, 2), !g.ComputeLTransSL(s2, diagOut, 2)}},
      {__LINE__,
       {!g.ComputeRS(r23, ro), !g.ComputeRS(r24, refusingRect), !g.ComputeRTransS(r32, ro)}},
      {__LINE__, {!g.ComputeRSRTrans(r23, so), !g.ComputeRTransSR(r32, so), !g.ComputeSS(s3, ro)}},
      {__LINE__, {!g.ComputeRTransSV(r42, v3, out), !g.ComputeSV(v3, out)}},
      {__LINE__, {!g.ComputeSV(5, v5, out), !g.ComputeSV(-1, v5, out)}},
      {__LINE__,
       {!g.ComputeLV(v5, out), !g.ComputeLTransV(v3, out), !g.ComputeLV({4}, {1.0}, out)}},
      {__LINE__, {!g.ComputeLTransV({0, 1}, {1.0}, out), !g.ComputeLTransV({-1}, {1.0}, out)}},
      {__LINE__,
       {!g.IncrVecByRow(4, acc, 0, 4, 1.0, true), !g.IncrVecByRow(0, acc, 0, 5, 1.0, true)}},
      {__LINE__,
       {!g.IncrVecByRow(0, acc, 1, 4, 1.0, true), !g.IncrVecByRow(0, acc, 0, 0, 1.0, true)}},
      {__LINE__, {fails([&](double & y) { return g.TraceOfProductSubMatSym(2, s3, y); })}},
      {__LINE__, {fails([&](double & y) { return g.TraceOfProductSubMatSym(-1, s3, y); })}},
      {__LINE__, {fails([&](double & y) { return g.TraceOfProductSubSym(v5, 0, y); })}},
      {__LINE__, {fails([&](double & y) { return g.TraceOfProductSubSym(ps3, 2, y); })}}};
  for (const auto & c : calls) {
    SCOPED_TRACE(c.line);
    for (std::size_t k = 0; k < c.refused.size(); ++k) EXPECT_TRUE(c.refused[k]) << "call " << k;
  }
  const double miss = kSysMisValue;
  struct {
    int line;
    double got, want;
  } const values[] = {
      {__LINE__, g.ComputeDotProduct2Rows(-1, 0), 0.0},
      {__LINE__, g.ComputeDotProduct2Rows(0, 4), 0.0},
      {__LINE__, g.ComputeRVD(4, v4, 1), 0.0},
      {__LINE__, g.ComputeRVD(0, nullptr, 1), 0.0},
      {__LINE__, g.ComputeRVD(0, v7, 3), 0.0},  // the walk needs 10 elements
      {__LINE__, g.ComputeRowDotProductS(0, v7, 0), 0.0},
      {__LINE__, g.ComputeRowDotProductS(0, s3, 0), 0.0},
      {__LINE__, a, 0.0},
      {__LINE__, b, 0.0},
      {__LINE__, g.TraceOfProduct(diagTyped), miss},
      {__LINE__, g.TraceOfProduct(s3), 0.0},
      {__LINE__, empty.TraceOfProduct(empty), 0.0},
      {__LINE__, g.TraceOfProductOfThree(g, diagTyped), miss},
      {__LINE__, g.TraceOfProductOfThree(s3, s3), 0.0},
      {__LINE__, g.ComputeVSV(SparseTyped(2, 4, true), 0), miss},
      {__LINE__, g.ComputeVSV(r23, 0), 0.0},
      {__LINE__, g.ComputeVSV(r24, 2), 0.0},
      {__LINE__, g.ComputeVSV(v3), 0.0},
      {__LINE__, g.ComputeVSW(v4, v3), 0.0},
      {__LINE__, g.ComputeVSW(p10, 5, 0, 0), 0.0},  // order above this's
      {__LINE__, g.ComputeVSW(v5, 3, 0, 0), 0.0},   // M too short for order 3
      {__LINE__, g.ComputeVSW(p10, 3, 3, 0), 0.0},
      {__LINE__, g.ComputeVSW(nullptr, 1, v4.data(), 1), 0.0},
      {__LINE__, empty.ComputeVSW(v4.data(), 1, v4.data(), 1), 0.0},
      {__LINE__, g.ComputeVSWParts(v5.data(), 5, v4.data(), 1), 0.0},
      {__LINE__, g.ComputeVSWParts(v3, 4, v4, 1), 0.0},
      {__LINE__, g.ComputeVSV({4}, {1.0}), 0.0},
      {__LINE__, g.ComputeVSV({0, 1}, {1.0}), 0.0},
      {__LINE__, g.ComputeSpVSSpW(1, {3}, {1.0}, 0, {0}, {1.0}), 0.0},
      {__LINE__, g.ComputeSpVSSpW(0, {0}, {1.0}, 0, {0, 1}, {1.0}), 0.0},
      {__LINE__, g.ComputeViiSW(v4.data(), 0, v4.data(), 2), 0.0},
      {__LINE__, g.ComputeViiSW(v4.data(), 1, v4.data(), 5), 0.0},
      {__LINE__, g.ComputeVSSubWParts(v4.data(), 1, 3, 1, v4.data(), 0, 1, 1, 0, 3), 0.0},
      {__LINE__, g.ComputeVSSubWParts(v4.data(), 0, 1, 1, v4.data(), 0, 1, 1, 2, 3), 0.0},
      {__LINE__, g.ComputeVSymSubW(2, 3, v4, 0, v4, 0), 0.0},
      {__LINE__, g.ComputeVSymSubW(0, 3, v4, 2, v4, 0), 0.0},
      {__LINE__, g2.ComputeBlockVSV(2, 0, v4), 0.0},
      {__LINE__, g2.ComputeBlockVSW(1, 3, v4, v4), 0.0}};
  for (const auto & c : values) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(c.got, c.want);
  }
}

}  // namespace
