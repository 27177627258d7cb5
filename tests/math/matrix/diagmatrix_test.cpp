// ZRDiagMatrix against the dense ZRSymMatrix holding the same diagonal: every operation of
// the interface on random diagonals and arguments, exactly where both add the same terms
// in the same order, otherwise to (n + 2) u of the same operation on absolute values. Then
// the intended differences from the dense rules, the edge cases, and ComputeDiagR.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "support/capture.h"
#include "support/colmajor.h"
#include "support/symmatrices.h"
#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/matrix/diagmatrix.h"

namespace {

using ZRCommon_920::kSysMisValue;
using ZRMath_920::IZRSymMatrix;
using ZRMath_920::ZRBitSet;
using ZRMath_920::ZRDiagMatrix;
using ZRMath_920::ZRRectMatrix;
using ZRMath_920::ZRSymMatrix;
using Vec = std::vector<double>;

constexpr double kU = 2.220446049250313e-16 / 2;  // unit roundoff

ZRSymMatrix DenseOf(const Vec & d) {
  ZRSymMatrix g(static_cast<int>(d.size()), true);
  for (int i = 0; i < static_cast<int>(d.size()); ++i) g.SetElem(i, i, d[i]);
  return g;
}
ZRRectMatrix RandRect(int m, int p, unsigned seed) {
  const zrtest::ColMatrix a = zrtest::RandomGeneral(m, p, seed);
  ZRRectMatrix r(m, p, true);
  for (int i = 0; i < m; ++i)
    for (int j = 0; j < p; ++j) r.SetElem(i, j, a(i, j));
  return r;
}
ZRRectMatrix AbsRect(ZRRectMatrix r) {
  for (int i = 0; i < r.GetNRows(); ++i)
    for (int j = 0; j < r.GetNCols(); ++j) r.SetElem(i, j, std::fabs(r.GetElem(i, j)));
  return r;
}
Vec AbsVec(Vec v) {
  for (double & x : v) x = std::fabs(x);
  return v;
}
ZRSymMatrix AbsSym(ZRSymMatrix s) {
  for (int k = 0; k < s.GetNRows() * (s.GetNRows() + 1) / 2; ++k)
    s.SetElem(k, std::fabs(s.GetElem(k)));
  return s;
}
void Append(Vec & out, const IZRSymMatrix & s) {
  for (int i = 0; i < s.GetNRows(); ++i)
    for (int j = 0; j < s.GetNRows(); ++j) out.push_back(s.GetElem(i, j));
}
void Append(Vec & out, const ZRRectMatrix & r) {
  for (int i = 0; i < r.GetNRows(); ++i)
    for (int j = 0; j < r.GetNCols(); ++j) out.push_back(r.GetElem(i, j));
}

// The arguments of one case: symmetric S and T, R (m x n) and Q (n x p), vectors v, w.
struct Args {
  ZRSymMatrix s, t;
  ZRRectMatrix r, q;
  Vec v, w, packed;
};
Args MakeArgs(int n, unsigned seed) {
  Args a{zrtest::ToSym(zrtest::RandomSymmetric(n, seed)),
         zrtest::ToSym(zrtest::RandomSymmetric(n, seed + 1)),
         RandRect(3, n, seed + 2),
         RandRect(n, 2, seed + 3),
         zrtest::RandomGeneral(n, 1, seed + 4).a,
         zrtest::RandomGeneral(n, 1, seed + 5).a,
         {}};
  for (int k = 0; k < n * (n + 1) / 2; ++k) a.packed.push_back(a.s.GetElem(k));
  return a;
}
Args AbsArgs(const Args & a) {
  return {AbsSym(a.s), AbsSym(a.t), AbsRect(a.r),    AbsRect(a.q),
          AbsVec(a.v), AbsVec(a.w), AbsVec(a.packed)};
}

// A read-only operation: its result flattened into out; false when the operation failed.
using Op = std::function<bool(const IZRSymMatrix &, const Args &, Vec &)>;
struct OpRow {
  const char * name;
  bool exact;  // both classes add the same terms in the same order
  Op op;
};

// An operation writing a matrix of type Out, flattened after it succeeds.
template <class Out, class F>
Op Into(F f) {
  return [f](const IZRSymMatrix & g, const Args & a, Vec & o) {
    Out out;
    return f(g, a, out) && (Append(o, out), true);
  };
}

// A row whose operation writes a symmetric or rectangular matrix through call.
#define ZR_INTO(Out, call) \
  Into<Out>([](auto & g, auto & a, auto & o) { return static_cast<void>(a), g.call; })

const std::vector<OpRow> & ReadOps() {
  static const std::vector<OpRow> ops = {
      {"GSG", true, ZR_INTO(ZRSymMatrix, ComputeGSG(a.s, o))},
      {"MGN", true, ZR_INTO(ZRSymMatrix, ComputeMGN(a.s, a.t, o))},
      {"GMG", true, ZR_INTO(ZRSymMatrix, ComputeGMG(a.packed, o))},
      {"LSLTrans", true, ZR_INTO(ZRSymMatrix, ComputeLSLTrans(a.s, o))},
      {"LTransSL", true, ZR_INTO(ZRSymMatrix, ComputeLTransSL(a.s, o, 1))},
      {"SS", true, ZR_INTO(ZRRectMatrix, ComputeSS(a.s, o))},
      {"RS", true, ZR_INTO(ZRRectMatrix, ComputeRS(a.r, o))},
      {"RTransS", true, ZR_INTO(ZRRectMatrix, ComputeRTransS(a.q, o))},
      {"RSRTrans", true, ZR_INTO(ZRSymMatrix, ComputeRSRTrans(a.r, o))},
      {"RTransSR", true, ZR_INTO(ZRSymMatrix, ComputeRTransSR(a.q, o))},
      {"GMGNG", true, Into<ZRSymMatrix>([](auto & g, auto & a, auto & o) {
         Vec work;
         return g.ComputeGMGNG(a.s, a.t, o, work);
       })},
      {"vector products", true,
       [](auto & g, auto & a, Vec & o) {
         const int last = g.GetNRows() - 1;
         const std::vector<int> idx = {last, 0, last};
         const Vec val = {a.v[0], a.w[0], a.v[last]};
         Vec r[7];
         const bool ok = g.ComputeRTransSV(a.q, a.v, r[0]) && g.ComputeSV(a.v, r[1]) &&
                         g.ComputeSV(last, a.v, r[2]) && g.ComputeLV(a.v, r[3]) &&
                         g.ComputeLTransV(a.v, r[4]) && g.ComputeLV(idx, val, r[5]) &&
                         g.ComputeLTransV(idx, val, r[6]);
         for (const Vec & x : r) o.insert(o.end(), x.begin(), x.end());
         ZRSymMatrix square;
         g.ComputeSTransS(square);
         Append(o, square);
         return ok;
       }},
      {"forms", true,
       [](auto & g, auto & a, Vec & o) {
         const int n = g.GetNRows();
         o = {g.ComputeVSV(a.v), g.ComputeVSW(a.v, a.w),
              g.ComputeVSW(a.v.data(), 1, a.w.data(), -1), g.ComputeVSWParts(a.v, n - 1, a.w, n),
              g.ComputeVSWParts(a.v.data(), n, a.w.data(), 1)};
         for (int row = 0; row < a.r.GetNRows(); ++row) o.push_back(g.ComputeVSV(a.r, row));
         return true;
       }},
      {"VSW packed", false,
       [](auto & g, auto & a, Vec & o) {
         const int n = g.GetNRows();
         for (int i = 0; i < n; ++i)
           for (int j = 0; j < n; ++j) o.push_back(g.ComputeVSW(a.packed, n, i, j));
         return true;
       }},
      {"row products", true,
       [](auto & g, auto & a, Vec & o) {
         const int n = g.GetNRows();
         for (int i = 0; i < n; ++i) {
           o.push_back(g.ComputeRVD(i, a.v, 1));
           o.push_back(g.ComputeRVD(i, a.v, -1));
           for (int j = 0; j < n; ++j) {
             o.push_back(g.ComputeRowDotProductS(i, a.packed, j));
             o.push_back(g.ComputeRowDotProductS(i, a.s, j));
             o.push_back(g.ComputeDotProduct2Rows(i, j));
           }
           Vec inc = a.w;
           EXPECT_TRUE(g.IncrVecByRow(i, inc, 0, n, 2.5, true));
           o.insert(o.end(), inc.begin(), inc.end());
         }
         return true;
       }},
      {"traces", true,
       [](auto & g, auto & a, Vec & o) {
         o = {g.Trace(), g.TraceOfProduct(a.s), g.TraceOfProductOfThree(a.s, a.t)};
         return true;
       }},
      {"rows and sub-matrices", true,
       [](auto & g, auto &, Vec & o) {
         const int n = g.GetNRows();
         Vec row;
         ZRBitSet all(n);
         all.SetRange(0, n - 1, true);
         for (int i = 0; i < n; ++i) {
           EXPECT_TRUE(g.GetRow(i, row));
           o.insert(o.end(), row.begin(), row.end());
           o.push_back(g.IsZeroRow(i, all));
         }
         double mm[4];
         g.MaxMinDiagOffDiag(mm[0], mm[1], mm[2], mm[3]);
         o.insert(o.end(), mm, mm + 4);
         ZRSymMatrix sub, lead;
         if (!g.ExtractSubmatrix({n - 1, 0, n - 1}, sub)) return false;
         g.ExtractFirstNRows(lead);
         Append(o, sub);
         Append(o, lead);
         return true;
       }},
  };
  return ops;
}

// Random diagonals of the orders 1 to 8, with an exact zero in one.
struct DiagCase {
  int n;
  unsigned seed;
  Vec Diag() const {
    Vec d = zrtest::RandomGeneral(n, 1, seed).a;
    if (n == 5) d[2] = 0.0;
    return d;
  }
};
constexpr DiagCase kCases[] = {{1, 11}, {2, 21}, {5, 31}, {8, 41}};

TEST(ZRDiagMatrixVsDense, ReadOnlyOperations) {
  for (const DiagCase & c : kCases) {
    const Vec d = c.Diag();
    const ZRDiagMatrix diag(d);
    const ZRSymMatrix dense = DenseOf(d), absDense = DenseOf(AbsVec(d));
    const Args args = MakeArgs(c.n, c.seed), absArgs = AbsArgs(args);
    for (const OpRow & row : ReadOps()) {
      SCOPED_TRACE(std::string(row.name) + " n=" + std::to_string(c.n));
      Vec got, want, scale;
      ASSERT_TRUE(row.op(dense, args, want));
      ASSERT_TRUE(row.op(absDense, absArgs, scale));
      ASSERT_TRUE(row.op(diag, args, got));
      ASSERT_EQ(got.size(), want.size());
      for (std::size_t k = 0; k < got.size(); ++k) {
        if (row.exact) {
          EXPECT_EQ(got[k], want[k]) << "element " << k;
        } else {  // three factors in another order
          EXPECT_LE(std::fabs(got[k] - want[k]), (c.n + 2) * kU * scale[k]) << "element " << k;
        }
      }
    }
  }
}

// Operations that change the matrix, applied to fresh copies of both.
TEST(ZRDiagMatrixVsDense, ChangingOperations) {
  using Change = std::function<Vec(IZRSymMatrix &)>;
  const Vec ones(8, 1.0);
  const struct {
    const char * name;
    Change op;
  } rows[] = {
      {"arithmetic, rows and size",
       [](IZRSymMatrix & g) {
         const int n = g.GetNRows();
         g.AddToDiagonal(0.25);
         g.ChangeSign();
         g.MultiplyByNumber(3.0);
         const ZRSymMatrix x = DenseOf(Vec(n, 0.5));
         Vec v(n, 0.0);
         v[0] = 7.0;
         Vec out = {double(g.ComputeAXpY(-2.0, x)), double(g.ComputeAXpY(1.0, g)),
                    double(g.PutRow(0, v)),         double(g.ZeroOut(n - 1)),
                    double(g.PutRow(0, Vec{})),     double(g.ZeroOut(n))};
         g.Resize(n + 2);
         g.Resize(n + 1);
         return out;
       }},
      {"factor and inverse",
       [ones](IZRSymMatrix & g) {
         ZRBitSet set;
         double det[2] = {-1, -1};
         const int r = g.LTChol(ones, 0.3, set, true);
         const int z = g.LTDetInverse(det, 11);
         return Vec{double(r), double(z), det[0], det[1], double(set.InSet())};
       }},
      {"factor products",
       [ones](IZRSymMatrix & g) {
         Vec out = {double(g.LTChol(ones, 0.0, true))};
         g.LTLLTrans();
         g.LTLTransL();
         return out;
       }},
  };
  for (const DiagCase & c : kCases) {
    for (const auto & row : rows) {
      SCOPED_TRACE(std::string(row.name) + " n=" + std::to_string(c.n));
      ZRDiagMatrix diag(c.Diag());
      ZRSymMatrix dense = DenseOf(c.Diag());
      Vec got = row.op(diag), want = row.op(dense);
      Append(got, diag);
      Append(want, dense);
      EXPECT_EQ(got, want);
    }
  }
}

// CholInverse with a unit reference diagonal and the determinant of a positive diagonal
// agree with the dense forms, which square and take roots: to (n + 2) u relative.
TEST(ZRDiagMatrixVsDense, InverseAndDeterminantToRounding) {
  for (const DiagCase & c : kCases) {
    SCOPED_TRACE(c.n);
    const Vec d = AbsVec(c.Diag());
    const Vec ones(c.n, 1.0);
    ZRSymMatrix want, got;
    ASSERT_EQ(ZRDiagMatrix(d).CholInverse(ones, 0.1, got), DenseOf(d).CholInverse(ones, 0.1, want));
    for (int i = 0; i < c.n; ++i)
      for (int j = 0; j < c.n; ++j)
        EXPECT_NEAR(got.GetElem(i, j), want.GetElem(i, j),
                    (c.n + 2) * kU * std::fabs(want.GetElem(i, j)));
    double dg[2], dd[2];
    ASSERT_TRUE(ZRDiagMatrix(d).ComputeDeterminant(1e-12, dg));
    ASSERT_TRUE(DenseOf(d).ComputeDeterminant(1e-12, dd));
    if (dd[0] == 0.0) {  // the zero element
      EXPECT_EQ(Vec(dg, dg + 2), (Vec{0.0, 0.0}));
    } else {  // two normalisations of roundings, within 4 (n + 2) u of |det[0]| < 10
      EXPECT_NEAR(dg[0] * std::pow(10.0, dg[1] - dd[1]), dd[0], 40 * (c.n + 2) * kU);
    }
  }
}

// Each difference from the dense rules, shown against the dense class on the same matrix.
TEST(ZRDiagMatrixIntended, DiffersFromDense) {
  const Vec d = {1.0, 4.0, 2.0};
  const ZRDiagMatrix diag(d);
  const ZRSymMatrix dense = DenseOf(d);
  Vec a, b;
  diag.GetNCheckDiagonal(a, 3.0, 9.0);  // the old rule
  dense.GetNCheckDiagonal(b, 3.0, 9.0);
  EXPECT_EQ(a, (Vec{9.0, 4.0, 9.0}));
  EXPECT_EQ(b, (Vec{4.0, 4.0, 4.0}));

  double det[2];  // the plain product, tol unused: negative, and with a negative tol
  ASSERT_TRUE(ZRDiagMatrix(Vec{-2.0, 30.0}).ComputeDeterminant(-1.0, det));
  EXPECT_EQ(Vec(det, det + 2), (Vec{-6.0, 1.0}));
  EXPECT_FALSE(DenseOf({-2.0, 30.0}).ComputeDeterminant(-1.0, det));

  ZRDiagMatrix f = diag;  // LTInverse does not square: the factor's inverse
  ZRSymMatrix g = dense;
  f.LTChol(d, 0.1, false), g.LTChol(d, 0.1, false);
  f.LTInverse(), g.LTInverse();
  EXPECT_EQ(f.GetElem(1), 0.5);
  EXPECT_EQ(g.GetElem(1, 1), 0.25);

  // LTSolve tests absolutely, keeps x[i] = d at a small element, refuses a negative one.
  Vec x = {5.0};
  ZRDiagMatrix s(Vec{0.5, 0.25, 8.0});
  EXPECT_EQ(s.LTSolve({1.0, 1.0, 4.0}, 0.3, x), 1);
  EXPECT_EQ(x, (Vec{2.0, 0.25, 0.5}));
  ZRSymMatrix sd = DenseOf({0.5, 0.25, 8.0});
  EXPECT_EQ(sd.LTSolve({1.0, 1.0, 4.0}, 0.3, x), 0);  // relative: 0.25 > 0.3 x 0.25
  x = {5.0};
  EXPECT_EQ(ZRDiagMatrix(Vec{1.0, -1.0}).LTSolve({1.0, 1.0}, 0.1, x), -1);
  EXPECT_EQ(x, (Vec{5.0}));

  // CholInverse ignores diag, and its minPivot form starts from out's (0, 0), skipping d_0.
  ZRSymMatrix out;
  EXPECT_EQ(diag.CholInverse({100.0, 100.0, 100.0}, 1.5, out), 2);
  EXPECT_EQ(dense.CholInverse({100.0, 100.0, 100.0}, 1.5, out), 0);
  double minPivot = 0.0;
  ZRSymMatrix primed = DenseOf({-1.0});
  EXPECT_EQ(diag.CholInverse(d, 0.0, primed, minPivot), -1);
  EXPECT_EQ(minPivot, kSysMisValue);
  EXPECT_EQ(primed.GetElem(0, 0), -1.0);  // untouched
  EXPECT_EQ(ZRDiagMatrix(Vec{-3.0, 2.0}).CholInverse(d, 0.0, out, minPivot), 1);
  EXPECT_EQ(minPivot, 0.0);  // out's (0, 0) from the call above, not -3.0
  ZRDiagMatrix empty;
  minPivot = 7.0;
  EXPECT_EQ(empty.CholInverse(d, 0.0, out, minPivot), -1);
  EXPECT_EQ(minPivot, 7.0);

  // Bad indices give the system-missing value where the dense family gives 0.0.
  const ZRRectMatrix r = RandRect(2, 3, 5);
  EXPECT_EQ(diag.ComputeDotProduct2Rows(0, 3), kSysMisValue);
  EXPECT_EQ(dense.ComputeDotProduct2Rows(0, 3), 0.0);
  EXPECT_EQ(diag.ComputeRVD(1, r, 1, 2), 4.0 * r.GetElem(1, 2));
  EXPECT_EQ(diag.ComputeRTransVD(1, r, 2, 1), 4.0 * r.GetElem(1, 2));
  EXPECT_EQ(diag.ComputeRVD(1, r, 2, 0), kSysMisValue);
  EXPECT_EQ(diag.ComputeRTransVD(3, r, 0, 0), kSysMisValue);

  // LTChol(tol, minPivot): each element against tol x (1.0 below tol, else itself).
  ZRDiagMatrix c(Vec{4.0, 0.2});
  ZRSymMatrix cd = DenseOf({4.0, 0.2});
  double mp = 0.0, mpd = 0.0;
  EXPECT_EQ(c.LTChol(0.1, mp, true), 0);
  EXPECT_EQ(cd.LTChol(0.1, mpd, true), 1);  // 0.2 is not above 0.1 x 4
  EXPECT_EQ(mp, std::sqrt(0.2));
}

TEST(ZRDiagMatrixIntended, DisplayWritesNoEndLine) {
  const ZRDiagMatrix m(Vec{1.0, -2.5});
  zrtest::DisplayCapture cap;
  m.Display();
  EXPECT_EQ(cap.Text(),
            "\nZRDiagMatrix display start\nNumber of rows = 2\nNumber of columns = 2"
            "\nrow  0: \n  1\nrow  1: \n  -2.5");
  cap.Clear();
  m.DisplayF();
  EXPECT_EQ(cap.Text(),
            "\nZRDiagMatrix display start\nNumber of rows = 2\nNumber of columns = 2"
            "\nrow 0:  (size = 2)\n  = 1\n  = 0\nrow 1:  (size = 2)\n  = 0\n  = -2.5");
}

// A block matrix stand-in: type 2, and it cannot be resized.
class FixedBlockTyped : public ZRSymMatrix {
 public:
  explicit FixedBlockTyped(int n) : ZRSymMatrix(n, true) {}
  SymMatrixType GetType() const override { return kBlockDiagSymMatrix; }
  bool SetNRows(int, bool) override { return false; }
};

TEST(ZRDiagMatrixEdges, StatedCases) {
  ZRDiagMatrix m(Vec{1.0, 2.0, 3.0});
  EXPECT_EQ(m.GetElem(1, 2), 0.0);
  EXPECT_FALSE(m.SetElem(1, 2, 5.0));
  EXPECT_EQ(m.GetElem(1, 3), kSysMisValue);

  double det[2] = {9, 9};
  ASSERT_TRUE(ZRDiagMatrix(Vec{3.0, 0.0, 5.0}).ComputeDeterminant(0.0, det));
  EXPECT_EQ(Vec(det, det + 2), (Vec{0.0, 0.0}));
  EXPECT_FALSE(ZRDiagMatrix().ComputeDeterminant(0.0, det));
  // The normalisation stops on a non-finite product instead of dividing by 10 for ever.
  ASSERT_TRUE(ZRDiagMatrix(Vec{2.0, INFINITY, 3.0}).ComputeDeterminant(0.0, det));
  EXPECT_EQ(det[0], INFINITY);
  ZRDiagMatrix nan(Vec{NAN, 2.0});
  EXPECT_EQ(nan.LTDetInverse(det, 1), 0);
  EXPECT_TRUE(std::isnan(det[0]));

  ZRDiagMatrix l(Vec{4.0, 0.0});
  EXPECT_EQ(l.LTChol({4.0, 4.0}, 0.5, true), 1);
  EXPECT_EQ((Vec{l.GetElem(0), l.GetElem(1)}), (Vec{2.0, 0.0}));
  EXPECT_EQ(l.LTChol({4.0, -1.0}, 0.5, true), -1);

  ZRSymMatrix out(5, true);  // resized to 2 and cleared
  out.SetElem(0, 0, 9.0);
  EXPECT_EQ(ZRDiagMatrix(Vec{2.0, 1.0}).CholInverse({}, 1.0, out), 1);  // equality refused
  EXPECT_EQ(out.GetNRows(), 2);
  EXPECT_EQ(out.GetElem(0, 0), 0.5);
  EXPECT_EQ(out.GetElem(1, 1), 0.0);

  ZRDiagMatrix self(Vec{4.0, 0.5});  // out may be this
  ZRBitSet set;
  EXPECT_EQ(self.CholInverse({}, 1.0, self, set), 1);
  EXPECT_EQ((Vec{self.GetElem(0), self.GetElem(1)}), (Vec{0.25, 0.0}));
  EXPECT_TRUE(set.IsIn(0));
  EXPECT_FALSE(set.IsIn(1));

  FixedBlockTyped same(2), other(3);  // a block matrix is cleared, not resized
  EXPECT_EQ(ZRDiagMatrix(Vec{2.0, 4.0}).CholInverse({}, 0.0, same), 2);
  EXPECT_EQ(same.GetElem(1, 1), 0.25);
  EXPECT_EQ(ZRDiagMatrix(Vec{2.0, 4.0}).CholInverse({}, 0.0, other), -1);

  Vec x;
  EXPECT_EQ(ZRDiagMatrix(Vec{2.0, 0.0}).LTSolve({4.0, 4.0}, 0.5, x), 1);
  EXPECT_EQ(x, (Vec{2.0, 0.0}));
  EXPECT_EQ(ZRDiagMatrix(Vec{2.0}).LTSolve({4.0}, 0.0, x), -1);
}

// Decisions where the interface was open: a sum that would not be diagonal is refused.
TEST(ZRDiagMatrixEdges, RefusesResultsThatAreNotDiagonal) {
  ZRDiagMatrix m(Vec{1.0, 2.0});
  ZRSymMatrix full(2, true);
  full.SetElem(1, 0, 0.5);
  EXPECT_FALSE(m.ComputeAXpY(1.0, full));
  EXPECT_EQ(m.GetElem(0), 1.0);
  ZRDiagMatrix sub;
  EXPECT_FALSE(m.ExtractSubmatrix({1, 1}, sub));
  EXPECT_TRUE(m.ExtractSubmatrix({1, 0}, sub));
  EXPECT_EQ(sub.GetElem(0), 2.0);
  ZRDiagMatrix dout;  // a diagonal out takes a diagonal product, and refuses another
  EXPECT_TRUE(m.ComputeGSG(ZRDiagMatrix(Vec{3.0, 5.0}), dout));
  EXPECT_EQ(dout.GetElem(1), 20.0);
  EXPECT_FALSE(m.ComputeGSG(full, dout));
  EXPECT_EQ(m.ComputeVSV(RandRect(1, 3, 2), 0), 0.0);
}

// D R scales rows: it is the transpose of the dense R' D, and ComputeLTransR stacks the
// scaled copies, as ComputeDiagR does on the stacked matrix.
TEST(ZRDiagMatrixRect, ScaledRowsMatchDenseProducts) {
  const Vec d = {1.5, -2.0, 0.0};
  const ZRRectMatrix r = RandRect(3, 4, 9);
  ZRRectMatrix dr = r, rtd;
  ASSERT_TRUE(dr.ComputeDiagR(ZRDiagMatrix(d)));
  ASSERT_TRUE(DenseOf(d).ComputeRTransS(r, rtd));
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 4; ++j) EXPECT_EQ(dr.GetElem(i, j), rtd.GetElem(j, i));
  EXPECT_FALSE(dr.ComputeDiagR(ZRDiagMatrix(Vec{1.0})));

  const ZRRectMatrix small = RandRect(2, 3, 4);
  ZRRectMatrix stacked = small, out;
  for (int b = 1; b < 3; ++b) stacked.ExpandRectangular(small);
  ASSERT_TRUE(stacked.ComputeDiagR(ZRDiagMatrix(Vec{1.5, 1.5, -2.0, -2.0, 0.0, 0.0})));
  ASSERT_TRUE(ZRDiagMatrix(d).ComputeLTransR(small, out, 3));
  ASSERT_EQ(out.GetNRows(), 6);
  for (int i = 0; i < 6; ++i)
    for (int j = 0; j < 3; ++j) EXPECT_EQ(out.GetElem(i, j), stacked.GetElem(i, j));
  EXPECT_FALSE(ZRDiagMatrix(d).ComputeLTransR(small, out, 2));
  EXPECT_FALSE(ZRDiagMatrix().ComputeLTransR(small, out, 0));
  EXPECT_EQ(out.GetNRows(), 6);
}

}  // namespace
