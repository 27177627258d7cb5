// Every BLAS level 1 and LINPACK routine and every operation of the dense rectangular and
// symmetric matrices returns on non-finite, extreme, empty, singular and indefinite input.
// Each call runs once under a watchdog that names it if it hangs; the values it returns are
// for the other tests to check.
#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <chrono>
#include <cstdio>
#include <functional>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "support/capture.h"
#include "support/colmajor.h"
#include "support/symmatrices.h"
#include "support/watchdog.h"
#include "zrcommon920r/math/matrix/kernels.h"
#include "zrcommon920r/math/matrix/rectmatrix.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace {

using ZRMath_920::Blas1;
using ZRMath_920::Linpack;
using ZRMath_920::ZRBitSet;
using ZRMath_920::ZRRectMatrix;
using ZRMath_920::ZRSparseVector;
using ZRMath_920::ZRSymMatrix;
using zrtest::ColMatrix;
using Vec = std::vector<double>;
using IVec = std::vector<int>;

constexpr double kInf = std::numeric_limits<double>::infinity();
const double kNaN = std::numeric_limits<double>::quiet_NaN();
// A case takes microseconds; 20 s leaves room for a sanitizer build on a loaded machine.
constexpr std::chrono::seconds kLimit(20);

// A named symmetric test matrix in full column-major storage.
struct Input {
  std::string name;
  ColMatrix a;
};

// 0 x 0; ordinary, singular (row 3 repeats row 0) and indefinite 4 x 4 matrices; and for
// each of NaN, +-Inf and +-DBL_MAX (-DBL_MAX is the system-missing value): a 1 x 1 matrix
// of it, a 4 x 4 matrix full of it, and the ordinary matrix with it at (1, 1), at (3, 3),
// or at (1, 3) and (3, 1), counted from 0.
std::vector<Input> Inputs() {
  const ColMatrix spd = zrtest::RandomSpdCol(4, 11);
  ColMatrix singular = spd, indefinite(4, 4);
  for (int i = 0; i < 3; ++i) singular(3, i) = singular(i, 3) = spd(0, i);
  singular(3, 3) = spd(0, 0);
  indefinite.a = {1, 2, 0, 1, 2, 1, 1, 0, 0, 1, -3, 1, 1, 0, 1, 2};  // eigenvalues of both signs
  std::vector<Input> in = {{"0x0", ColMatrix(0, 0)},
                           {"ordinary", spd},
                           {"singular", singular},
                           {"indefinite", indefinite}};
  const std::pair<const char *, double> specials[] = {
      {"NaN", kNaN}, {"+Inf", kInf}, {"-Inf", -kInf}, {"+DBL_MAX", DBL_MAX}, {"sysmis", -DBL_MAX}};
  for (const auto & [name, x] : specials) {
    const std::string what = name;
    ColMatrix one(1, 1), all(4, 4), diag1 = spd, diag3 = spd, off = spd;
    one(0, 0) = diag1(1, 1) = diag3(3, 3) = off(1, 3) = off(3, 1) = x;
    std::fill(all.a.begin(), all.a.end(), x);
    in.push_back({"1x1 " + what, one});
    in.push_back({"4x4 all " + what, all});
    in.push_back({what + " at (1,1)", diag1});
    in.push_back({what + " at (3,3)", diag3});
    in.push_back({what + " at (1,3) and (3,1)", off});
  }
  return in;
}

template <class Case>
using Ops = std::vector<std::pair<const char *, std::function<void(Case &)>>>;

// Table rows: statements on the case c, named by their own text in a hang report, or by
// a name given first.
// clang-format off
#define CALL(...) {#__VA_ARGS__, []([[maybe_unused]] auto & c) { __VA_ARGS__; }}
#define NAMED(name, ...) {name, [](auto & c) { __VA_ARGS__; }}
// clang-format on

// Runs every call on a fresh case made from every input and every parameter value (a tol or
// a stride, named by param); making the case is timed too, as it may factor the input.
template <class Case>
void RunAll(const Ops<Case> & ops, const char * family, const char * param, const Vec & values) {
  zrtest::Watchdog dog(kLimit);
  zrtest::DisplayCapture quiet;  // the Display operations print
  for (const Input & in : Inputs()) {
    for (double value : values) {
      char suffix[64] = "";
      if (param != nullptr) std::snprintf(suffix, sizeof suffix, ", %s %g", param, value);
      for (const auto & op : ops) {
        dog.Run(std::string(family) + ": " + op.first + " on " + in.name + suffix, [&] {
          Case c(in.a, value);
          op.second(c);
        });
        quiet.Clear();
      }
    }
  }
}

// The input's elements as x, and reversed as y, walked with stride inc.
struct Blas {
  Vec x, y;
  int n, inc;
  double cs = 0.0, sn = 0.0;
  Blas(const ColMatrix & a, double stride)
      : x(a.a),
        y(a.a.rbegin(), a.a.rend()),
        n(static_cast<int>(x.size())),
        inc(static_cast<int>(stride)) {}
  double * X() { return x.data(); }
  double * Y() { return y.data(); }
};

TEST(BadInputReturns, Blas1) {
  const Ops<Blas> ops = {
    CALL(Blas1::DASum(c.n, c.X(), c.inc)),
    CALL(Blas1::Daxpy(c.n, 2.5, c.X(), c.inc, c.Y(), 1)),
    CALL(Blas1::Daxpy(c.n, c.n > 0 ? c.x[0] : 1.0, c.Y(), 1, c.X(), c.inc)),
    CALL(Blas1::DCopy(c.n, c.X(), c.inc, c.Y(), 1)),
    CALL(Blas1::DDot(c.n, c.X(), c.inc, c.Y(), 1)),
    CALL(Blas1::DNrm2(c.n, c.X(), c.inc)),
    CALL(Blas1::DRot(c.n, c.X(), c.inc, c.Y(), 1, 0.6, 0.8)),
    CALL(for (int i = 0; i < c.n; ++i) Blas1::DRotG(&c.x[i], &c.y[i], &c.cs, &c.sn)),
    CALL(Blas1::DScal(c.n, 2.5, c.X(), c.inc)),
    CALL(Blas1::DScal(c.n, c.n > 0 ? c.x[0] : 1.0, c.Y(), 1)),
    CALL(Blas1::DSwap(c.n, c.X(), c.inc, c.Y(), 1)),
    // The index picks a pivot row in the factorisations: it must stay inside x.
    CALL(const int k = Blas1::IDAMax(c.n, c.X(), 1);
         EXPECT_TRUE(c.n == 0 ? k == 0 : k >= 1 && k <= c.n)),
    CALL(for (int i = 0; i < c.n; ++i) Blas1::D_Max(Blas1::D_Abs(c.x[i]), Blas1::D_Sign(c.y[i]))),
    CALL(for (int job = 1; job <= 3; ++job) Blas1::DMach(job)),
  };
  RunAll<Blas>(ops, "Blas1", "stride", {1.0, -1.0});
}

// Band storage with ml sub- and mu superdiagonals, leading dimension 2 ml + mu + 1; with
// ml = 0 it is also the positive definite band form with m = mu.
Vec Band(const ColMatrix & a, int ml, int mu) {
  const int n = a.rows, lda = 2 * ml + mu + 1, m = ml + mu + 1;
  Vec abd(static_cast<std::size_t>(lda) * std::max(n, 1), 0.0);
  for (int j = 0; j < n; ++j)
    for (int i = std::max(0, j - mu); i <= std::min(n - 1, j + ml); ++i)
      abd[static_cast<std::size_t>(j) * lda + i - j + m - 1] = a(i, j);
  return abd;
}

// A fresh copy of the input in every storage form, and every factorisation of it, with
// the other arguments sized as documented: the ...sl and ...di routines get the factors
// their ...fa routine made, even when that reported a failure.
struct Lin {
  ColMatrix a, ge, po, si;  // ge, po, si: after Dgefa, Dpofa, Dsifa
  int n, lda, bw;           // bw: sub- and superdiagonals of the band forms
  IVec piv, gepiv, gbpiv, sipiv, sppiv;
  Vec z, b, x, work, cs, sn, ap, ppf, spf, gb, gbf, pb, pbf, sub, diag, super, y{2.0}, rho{1.0};
  double det[2] = {0.0, 0.0};
  int inert[3] = {0, 0, 0};
  Lin(const ColMatrix & in, double)
      : a(in), ge(in), po(in), si(in), n(in.rows), lda(std::max(1, n)), bw(n > 1 ? 1 : 0) {
    for (IVec * v : {&piv, &gepiv, &gbpiv, &sipiv, &sppiv}) v->assign(n + 1, 0);
    for (Vec * v : {&z, &b, &x, &work, &cs, &sn, &sub, &diag, &super}) v->assign(n + 1, 1.0);
    for (int i = 0; i < n; ++i) {
      x[i] = a(i, 0);
      diag[i] = a(i, i);
      sub[i] = i > 0 ? a(i, i - 1) : 0.0;
      super[i] = i + 1 < n ? a(i, i + 1) : 0.0;
    }
    ap = ppf = spf = zrtest::PackUpper(a);
    gb = gbf = Band(a, bw, bw);
    pb = pbf = Band(a, 0, bw);
    Linpack::Dgefa(ge.data(), lda, n, gepiv.data());
    Linpack::Dgbfa(gbf.data(), 3 * bw + 1, n, bw, bw, gbpiv.data());
    Linpack::Dpofa(po.data(), lda, n);
    Linpack::Dppfa(ppf.data(), n);
    Linpack::Dpbfa(pbf.data(), bw + 1, n, bw);
    Linpack::Dsifa(si.data(), lda, n, sipiv.data());
    Linpack::Dspfa(spf.data(), n, sppiv.data());
  }
  double * A() { return a.data(); }
  double * B() { return b.data(); }
  double * Z() { return z.data(); }

  // Dqrdc, then Dqrsl with every output, on the leading rows x cols part of a (sizes below
  // 0 count as 0).
  void Qr(int m, int p, int job) {
    const int rows = std::max(m, 0), cols = std::max(p, 0), k = std::min(rows, cols);
    Vec qraux(cols + 1), w(cols + 1), y(rows + 1, 1.0), qy(rows + 1), qty(rows + 1), b(k + 1),
        rsd(rows + 1), xb(rows + 1);
    Linpack::Dqrdc(A(), lda, rows, cols, qraux.data(), piv.data(), w.data(), job);
    if (k >= 1)
      Linpack::Dqrsl(A(), lda, rows, k, qraux.data(), y.data(), qy.data(), qty.data(), b.data(),
                     rsd.data(), xb.data(), 11111);
  }
  // Dsvdc on the leading rows x cols part of a, as Qr.
  void Svd(int m, int p, int job) {
    const int rows = std::max(m, 0), cols = std::max(p, 0);
    const int ldu = std::max(1, rows), ldv = std::max(1, cols);
    Vec s(cols + 1), e(cols + 1), u(ldu * ldu), v(ldv * ldv), w(ldu);
    Linpack::Dsvdc(A(), lda, rows, cols, s.data(), e.data(), u.data(), ldu, v.data(), ldv, w.data(),
                   job);
  }
};

TEST(BadInputReturns, Linpack) {
  const Ops<Lin> ops = {
    CALL(Linpack::Dgefa(c.A(), c.lda, c.n, c.piv.data())),
    CALL(Linpack::Dgeco(c.A(), c.lda, c.n, c.piv.data(), c.Z())),
    CALL(Linpack::Dgesl(c.ge.data(), c.lda, c.n, c.gepiv.data(), c.B(), 0)),
    CALL(Linpack::Dgesl(c.ge.data(), c.lda, c.n, c.gepiv.data(), c.B(), 1)),
    CALL(Linpack::Dgedi(c.ge.data(), c.lda, c.n, c.gepiv.data(), c.det, c.work.data(), 11)),
    CALL(Linpack::Dgbfa(c.gb.data(), 3 * c.bw + 1, c.n, c.bw, c.bw, c.piv.data())),
    CALL(Linpack::Dgbco(c.gb.data(), 3 * c.bw + 1, c.n, c.bw, c.bw, c.piv.data(), c.Z())),
    CALL(Linpack::Dgbsl(c.gbf.data(), 3 * c.bw + 1, c.n, c.bw, c.bw, c.gbpiv.data(), c.B(), 0)),
    CALL(Linpack::Dgbsl(c.gbf.data(), 3 * c.bw + 1, c.n, c.bw, c.bw, c.gbpiv.data(), c.B(), 1)),
    CALL(Linpack::Dgbdi(c.gbf.data(), 3 * c.bw + 1, c.n, c.bw, c.bw, c.gbpiv.data(), c.det)),
    CALL(Linpack::Dpofa(c.A(), c.lda, c.n)),
    CALL(Linpack::Dpoco(c.A(), c.lda, c.n, c.Z())),
    CALL(Linpack::Dposl(c.po.data(), c.lda, c.n, c.B())),
    CALL(Linpack::Dpodi(c.po.data(), c.lda, c.n, c.det, 11)),
    CALL(Linpack::Dppfa(c.ap.data(), c.n)),
    CALL(Linpack::Dppco(c.ap.data(), c.n, c.Z())),
    CALL(Linpack::Dppsl(c.ppf.data(), c.n, c.B())),
    CALL(Linpack::Dppdi(c.ppf.data(), c.n, c.det, 11)),
    CALL(Linpack::Dpbfa(c.pb.data(), c.bw + 1, c.n, c.bw)),
    CALL(Linpack::Dpbco(c.pb.data(), c.bw + 1, c.n, c.bw, c.Z())),
    CALL(Linpack::Dpbsl(c.pbf.data(), c.bw + 1, c.n, c.bw, c.B())),
    CALL(Linpack::Dpbdi(c.pbf.data(), c.bw + 1, c.n, c.bw, c.det)),
    CALL(Linpack::Dsifa(c.A(), c.lda, c.n, c.piv.data())),
    CALL(Linpack::Dsico(c.A(), c.lda, c.n, c.piv.data(), c.Z())),
    CALL(Linpack::Dsisl(c.si.data(), c.lda, c.n, c.sipiv.data(), c.B())),
    CALL(Linpack::Dsidi(c.si.data(), c.lda, c.n, c.sipiv.data(), c.det, c.inert, c.work.data(),
                        111)),
    CALL(Linpack::Dspfa(c.ap.data(), c.n, c.piv.data())),
    CALL(Linpack::Dspco(c.ap.data(), c.n, c.piv.data(), c.Z())),
    CALL(Linpack::Dspsl(c.spf.data(), c.n, c.sppiv.data(), c.B())),
    CALL(Linpack::Dspdi(c.spf.data(), c.n, c.sppiv.data(), c.det, c.inert, c.work.data(), 111)),
    CALL(Linpack::Dtrco(c.A(), c.lda, c.n, c.Z(), 0)),
    CALL(Linpack::Dtrco(c.A(), c.lda, c.n, c.Z(), 1)),
    CALL(Linpack::Dtrsl(c.A(), c.lda, c.n, c.B(), 0)),
    CALL(Linpack::Dtrsl(c.A(), c.lda, c.n, c.B(), 1)),
    CALL(Linpack::Dtrsl(c.A(), c.lda, c.n, c.B(), 10)),
    CALL(Linpack::Dtrsl(c.A(), c.lda, c.n, c.B(), 11)),
    CALL(Linpack::Dtrdi(c.A(), c.lda, c.n, c.det, 110)),
    CALL(Linpack::Dtrdi(c.A(), c.lda, c.n, c.det, 111)),
    CALL(Linpack::Dgtsl(c.n, c.sub.data(), c.diag.data(), c.super.data(), c.B())),
    CALL(Linpack::Dptsl(c.n, c.diag.data(), c.super.data(), c.B())),
    CALL(Linpack::Dchdc(c.A(), c.lda, c.n, c.work.data(), c.piv.data(), 0)),
    CALL(Linpack::Dchdc(c.A(), c.lda, c.n, c.work.data(), c.piv.data(), 1)),
    // The input's upper triangle serves as the factor R, its first column as the row x.
    CALL(Linpack::Dchud(c.A(), c.lda, c.n, c.x.data(), c.Z(), c.lda, 1, c.y.data(), c.rho.data(),
                        c.cs.data(), c.sn.data())),
    CALL(Linpack::Dchdd(c.A(), c.lda, c.n, c.x.data(), c.Z(), c.lda, 1, c.y.data(), c.rho.data(),
                        c.cs.data(), c.sn.data())),
    // Dchex needs 1 <= k < l <= p.
    CALL(if (c.n >= 2) Linpack::Dchex(c.A(), c.lda, c.n, 1, c.n, c.Z(), c.lda, 1, c.cs.data(),
                                      c.sn.data(), 1)),
    CALL(if (c.n >= 2) Linpack::Dchex(c.A(), c.lda, c.n, 1, c.n, c.Z(), c.lda, 1, c.cs.data(),
                                      c.sn.data(), 2)),
    CALL(c.Qr(c.n, c.n, 0)),
    CALL(c.Qr(c.n, c.n, 1)),
    CALL(c.Qr(c.n, c.n - 1, 1)),
    CALL(c.Qr(c.n - 1, c.n, 1)),
    CALL(c.Svd(c.n, c.n, 0)),
    CALL(c.Svd(c.n, c.n, 11)),
    CALL(c.Svd(c.n, c.n, 21)),
    CALL(c.Svd(c.n, c.n - 1, 11)),
    CALL(c.Svd(c.n - 1, c.n, 0)),
    CALL(c.Svd(c.n - 1, c.n, 11)),
    CALL(c.Svd(c.n - 1, c.n, 21)),
  };
  RunAll<Lin>(ops, "Linpack", nullptr, {0.0});
}

// A fresh copy of the input as a rectangular matrix (and again as other), with the
// indices i = 1 and j = n - 1 (both 0 for 1 x 1, both bad for 0 x 0) whose rows and columns
// hold the special values, v row i of the input and idx = 0 .. n - 1.
struct Rect {
  ZRRectMatrix m, other, d;
  int n, i, j, k = 0;
  double tol, x = 0.0;
  Vec v, out;
  IVec idx;
  Rect(const ColMatrix & a, double t)
      : m(a.rows, a.cols, true), n(a.rows), i(std::min(1, n - 1)), j(n - 1), tol(t) {
    out.assign(n, 1.0);
    for (int r = 0; r < n; ++r) {
      idx.push_back(r);
      for (int q = 0; q < n; ++q) m.SetElem(r, q, a(r, q));
    }
    other = m;
    for (int q = 0; q < n; ++q) v.push_back(a(i, q));
  }
};

TEST(BadInputReturns, ZRRectMatrix) {
  const Ops<Rect> ops = {
    CALL(c.m.ColNorm(c.j)),
    CALL(c.m.RowNorm(c.i)),
    CALL(c.m.ComputeMatrixProduct(c.other, c.d)),
    CALL(c.m.ComputeProductMatrixTrans(c.other, c.d)),
    CALL(c.m.ComputeRV(c.v, c.out)),
    CALL(c.m.ComputeRV(c.v.data(), c.out.data())),
    CALL(c.m.ComputeRV(c.idx, c.v, c.out)),
    CALL(c.m.ComputeVR(c.v, c.out)),
    CALL(c.m.ComputeVR(c.idx, c.v, c.out)),
    CALL(c.m.ComputeRDiagV(c.v, c.out)),
    CALL(c.m.ComputeSpVRSpW(0, c.idx, c.v, 0, c.idx, c.v)),
    CALL(c.m.ComputeVRW(c.idx, c.v, c.idx, c.v)),
    CALL(c.m.ComputeVecProduct(c.v, c.v)),
    CALL(c.m.ComputeAXpY(2.0, c.other)),
    CALL(c.m.AddToColumn(c.i, c.other, c.j, 2.0)),
    CALL(c.m.AddToDiagonal(1.0)),
    CALL(c.m.ColScale(c.j, 0.5)),
    CALL(c.m.CheckForOnes(c.tol)),
    CALL(for (int j = 0; j < c.n; ++j) c.m.ColClean(j, c.tol)),
    CALL(c.m.DotProductCol(c.i, c.j)),
    CALL(c.m.DotProductRows(c.i, c.j)),
    CALL(c.m.DotProductColCol(c.i, c.other, c.j)),
    CALL(c.m.DotProductRowCol(c.i, c.other, c.j)),
    CALL(c.m.DotProductRowRow(c.i, c.other, c.j)),
    CALL(c.m.IncrVecByColumn(c.j, c.out, 0, c.n, 2.0, true)),
    CALL(c.m.IsRowZero(c.i)),
    CALL(c.m.IsColZero(c.j)),
    CALL(c.m.FindFirstNonZeroInRow(c.i, c.tol)),
    CALL(c.m.IsERowMultipleOfAnother(c.i, c.j, 1.0, 2.0, c.x)),
    CALL(c.m.IsERowMultipleOfAnother(c.j, c.i, 0.0, 0.0, c.x)),
    CALL(for (int r = 0; r < c.n; ++r) c.m.ZeroOutPivotRow(r, c.tol, c.k)),
    CALL(ZRSparseVector(c.idx, c.v).InnerProductWithPart(c.v, 0)),
    CALL(ZRSparseVector(c.idx, c.v).IncrementPart(c.out, 0, 2.0)),
    CALL(
        ZRSparseVector::InnerProduct(c.idx.data(), c.v.data(), c.n, c.idx.data(), c.v.data(), c.n)),
    NAMED("operations that only move values, in one row",
          if (c.n > 0) c.m.SetElem(c.j, c.i, c.m.GetElem(c.i, c.j));
          c.m.GetRow(c.i, c.out); c.m.GetCol(c.j, c.out); c.m.CopyColToVec(c.j, c.out);
          c.m.GetColPtr(c.j); c.m.GetRowPtr(c.i); c.m.Display(); c.m.DisplayF();
          c.m.CopyRowToRow(c.i, c.j, c.other); c.m.CopyColToCol(c.i, c.j, c.other);
          c.m.CopyColToRow(c.other, c.j, c.i); c.m.SetRow(c.i, ZRSparseVector(c.idx, c.v));
          c.m.CreateBlockDiagonal(2, c.d); c.m.ShiftColumns(1, c.d); c.m.ShiftRows(1, c.d);
          c.m.ExtractColumns(c.idx, c.d); c.m.ExtractRows(c.idx, c.d);
          c.m.ExpandSquare(c.other, c.d); c.m.ExpandRectangular(c.other); c.m.Transpose();
          c.m.CopyRows(c.other, 0, c.n); c.m.AddRow(ZRSparseVector(c.idx, c.v));
          c.m.CopyColumns(c.other, 0, c.n); c.m.ZeroOutRowPart(c.i, 0, c.j); c.m.ZeroOutCol(c.j);
          c.m.DeleteOneCol(c.i); c.m.DeleteOneRow(c.j); c.m.AddRow(); c.m.AddColumn();
          c.m.Resize(c.n + 1, c.n); c.m.SetNRowsCols(c.n, c.n + 1, false); c.m.Clear()),
  };
  RunAll<Rect>(ops, "ZRRectMatrix", "tol", {1e-10, 1e-300, kNaN});
}

// A fresh copy of the input as a symmetric matrix s, and its operands: the input again (t)
// and as a rectangular matrix (r); indices, v and idx as in Rect, w ones; the packed
// triangle, whose column 0 is a growing walk with first step 1; its diagonal; the sets of
// all and of no rows. g is an ordinary matrix of the same order and l its Cholesky factor,
// for the operations whose vector argument carries the special values.
struct Sym {
  ZRSymMatrix s, t, o, g, l, half;  // half: of order n / 2, the L by which s is read in blocks
  ZRRectMatrix r, ro;
  int n, i, j, k = 0;
  double tol, x = 0.0, y = 0.0, det[2] = {0.0, 0.0};
  Vec v, w, packed, diag, out, cs, sn, work;
  IVec idx, kept;
  ZRBitSet all, none, done;
  bool flag = false;
  Sym(const ColMatrix & a, double t)
      : s(zrtest::ToSym(a)), t(s), g(zrtest::RandomSpd(a.rows, 5)), n(a.rows), tol(t) {
    l = g;
    half.SetNRows(n / 2, true);
    half.AddToDiagonal(1.0);
    all.Resize(n, true);
    none.Resize(n, false);
    const Rect rect(a, t);
    r = rect.m;
    i = rect.i;
    j = rect.j;
    v = rect.v;
    idx = rect.idx;
    l.LTChol(1e-12, x, true);
    for (Vec * u : {&w, &out, &cs, &sn}) u->assign(n, 1.0);
    for (int p = 0; p < n * (n + 1) / 2; ++p) packed.push_back(s.GetElem(p));
    s.GetDiagonal(diag);
  }
};

TEST(BadInputReturns, ZRSymMatrix) {
  const Ops<Sym> ops = {
    CALL(c.s.CholInverse(c.diag, c.tol, c.o, c.x)),
    CALL(c.s.CholInverse(c.diag, c.tol, c.o, c.none)),
    CALL(c.s.CholInverse(c.diag, c.tol, c.s)),
    CALL(c.s.ComputeAXpY(2.0, c.t)),
    CALL(c.s.ComputeDeterminant(c.tol, c.det)),
    CALL(c.s.ComputeDotProduct2Rows(c.i, c.j)),
    CALL(c.s.ComputeGMG(c.packed, c.o)),
    CALL(c.s.ComputeGMGNG(c.t, c.t, c.o, c.work)),
    CALL(c.s.ComputeMGN(c.t, c.t, c.o)),
    CALL(c.s.ComputeGSG(c.t, c.o)),
    CALL(c.s.ComputeLSLTrans(c.t, c.o)),
    CALL(c.s.ComputeLTransSL(c.t, c.o, 1)),
    CALL(c.s.ComputeLTransSL(c.half, c.o, 2)),
    CALL(c.s.ComputeLTransV(c.v, c.out)),
    CALL(c.s.ComputeLTransV(c.idx, c.v, c.out)),
    CALL(c.s.ComputeLV(c.v, c.v)),
    CALL(c.s.ComputeLV(c.idx, c.v, c.out)),
    CALL(c.s.ComputeRowDotProductS(c.i, c.packed, c.j)),
    CALL(c.s.ComputeRowDotProductS(c.i, c.t, c.j)),
    CALL(c.s.ComputeRowDotProductS(c.i, c.packed, c.packed, c.j, c.x, c.y)),
    CALL(c.s.ComputeRowDotProductS(c.i, c.t, c.t, c.j, c.x, c.y)),
    CALL(c.s.ComputeRS(c.r, c.ro)),
    CALL(c.s.ComputeRTransS(c.r, c.ro)),
    CALL(c.s.ComputeSS(c.t, c.ro)),
    CALL(c.s.ComputeRSRTrans(c.r, c.o)),
    CALL(c.s.ComputeRTransSR(c.r, c.o)),
    CALL(c.s.ComputeSTransS(c.o)),
    CALL(c.s.ComputeRTransSV(c.r, c.v, c.out)),
    CALL(c.s.ComputeRVD(c.i, c.v.data(), 1)),
    CALL(c.s.ComputeRVD(c.i, c.v, -1)),
    CALL(c.s.ComputeSV(c.v, c.v)),
    CALL(c.s.ComputeSV(c.n, c.v, c.out)),
    CALL(c.s.ComputeVSV(c.v)),
    CALL(c.s.ComputeVSV(c.r, c.i)),
    CALL(c.s.ComputeVSV(c.idx, c.v)),
    CALL(c.s.SquareRootVSV(c.v)),
    CALL(c.s.SquareRootVSV(c.w)),
    CALL(c.s.ComputeVSW(c.v, c.w)),
    CALL(c.s.ComputeVSW(c.packed, c.n, c.i, c.j)),
    CALL(c.s.ComputeVSW(c.v.data(), 1, c.w.data(), -1)),
    CALL(c.s.ComputeVSWParts(c.v.data(), c.n, c.w.data(), c.n)),
    CALL(c.s.ComputeVSWParts(c.v, c.n, c.w, c.j)),
    CALL(c.s.ComputeVSWParts(c.v.data(), -1, c.n, c.w.data(), 1, c.n)),
    CALL(c.s.ComputeSpVSSpW(0, c.idx, c.v, 0, c.idx, c.w)),
    CALL(c.s.ComputeViiSW(c.packed.data(), 1, c.w.data(), c.n)),
    CALL(c.s.ComputeVSWii(c.w.data(), c.n, c.packed.data(), 1)),
    CALL(c.s.ComputeVSSubWParts(c.v.data(), 0, c.n, 1, c.w.data(), 0, c.n, 1, 0, c.n)),
    CALL(c.s.ComputeVSymSubW(0, c.n, c.v, 0, c.w, 0)),
    CALL(c.s.ComputeBlockVSW(0, 0, c.v, c.w)),
    CALL(c.s.ComputeBlockVSV(0, 0, c.v)),
    CALL(c.s.GetNCheckDiagonal(c.out, 0.0, 1.0)),
    CALL(c.s.GetNCheckDiagonalOld(c.out, 0.0, 1.0)),
    CALL(c.s.IncrVecByRow(c.i, c.out, 0, c.n, 2.0, true)),
    CALL(c.s.IsZeroRow(c.i, c.all)),
    CALL(c.s.LTChol(c.tol, c.x, true)),
    CALL(c.s.LTChol(c.tol, c.x, false)),
    CALL(c.s.LTChol(c.diag, c.tol, c.none, true)),
    CALL(c.s.LTChol(c.diag, c.tol, true)),
    CALL(c.s.LTChol(c.diag, c.tol, false)),
    CALL(c.s.LTDetInverse(c.det, 11)),
    CALL(c.s.LTInverse()),
    CALL(c.s.LTSubstitute(c.w, c.out)),
    CALL(c.s.TSolveSubst(c.w, c.out, false)),
    CALL(c.s.TSolveSubst(c.v, c.v, true)),
    CALL(c.s.LTChol(c.tol, c.x, false); c.s.LTDetInverse(c.det, 11)),
    CALL(c.s.LTChol(c.tol, c.x, false); c.s.LTInverse()),
    CALL(c.s.LTChol(c.tol, c.x, false); c.s.LTSubstitute(c.w, c.out)),
    CALL(c.s.LTLLTrans()),
    CALL(c.s.LTLTransL()),
    CALL(c.s.LTSolve(c.w, c.tol, c.out)),
    CALL(c.s.LTCholUpdateR1(c.v, c.cs, c.sn)),
    CALL(c.s.LTCholDowndate(c.v, c.cs, c.sn, false)),
    CALL(c.s.LTCholDowndate(c.v, c.cs, c.sn, true)),
    CALL(c.s.LTChol(c.tol, c.x, false); c.s.LTCholUpdateR1(c.w, c.cs, c.sn);
         c.s.LTCholDowndate(c.w, c.cs, c.sn, true)),
    CALL(c.g.SquareRootVSV(c.v)),
    CALL(c.g.LTSolve(c.v, c.tol, c.out)),
    CALL(c.l.LTSubstitute(c.v, c.out)),
    CALL(c.l.LTCholUpdateR1(c.v, c.cs, c.sn)),
    CALL(c.l.LTCholDowndate(c.v, c.cs, c.sn, false)),
    CALL(c.l.LTCholDowndate(c.v, c.cs, c.sn, true)),
    CALL(c.g.SolveIndefinite(c.tol, c.v, c.out)),
    CALL(c.g.SolveIndefiniteGI(c.tol, c.v, c.out)),
    CALL(c.s.CholIndNonRed(0, c.tol, c.kept)),
    CALL(c.s.CholIndNonRed(1, c.tol, c.kept)),
    CALL(c.s.SolveIndefinite(c.tol, c.w, c.out)),
    CALL(c.s.SolveIndefinite(c.all, c.w, c.out)),
    CALL(c.s.SolveIndefiniteGI(c.tol, c.w, c.out)),
    CALL(c.s.TransformToPositiveDefinite(c.tol, c.flag, c.x)),
    CALL(c.s.MaxMinDiag(c.x, c.y)),
    CALL(c.s.MaxMinDiagOffDiag(c.x, c.y, c.x, c.y)),
    CALL(c.s.Trace()),
    CALL(c.s.TraceOfProduct(c.t)),
    CALL(c.s.TraceOfProductOfThree(c.t, c.t)),
    CALL(c.s.TraceOfProductSubMatSym(0, c.t, c.x)),
    CALL(c.s.TraceOfProductSubSym(c.packed, 0, c.x)),
    CALL(c.s.ZeroOutNonDiag(c.tol)),
    CALL(c.s.ZeroOutAllSmall(c.tol)),
    CALL(c.s.ZeroOutRowsForSmallDiag(c.tol)),
    CALL(c.s.AdjustOffDiagCorr(1e-10)),
    CALL(c.s.ReplaceDiagZeroes(c.tol)),
    CALL(c.s.SetCovarZeros(c.t)),
    CALL(c.s.UpdateXX(c.v, 1.0)),
    CALL(c.s.UpdateXXPosNegW(c.v, -1.0)),
    CALL(c.s.UpdateXXNonRedun(c.v, c.all, 2.0)),
    CALL(c.s.UpdateXXSparse(0, c.idx, c.v, 1.0)),
    CALL(c.s.UpdateXXCornerSparse(0, c.idx, c.v, 1.0, c.n)),
    CALL(c.s.UpdateZZ(Vec(c.v.begin(), c.v.end() - (c.n > 0)), 2.0, 1.0)),
    CALL(c.s.IncrementByVV(c.v.data(), 1.0)),
    CALL(c.s.SetToVV(c.v)),
    CALL(c.s.SetToVW(c.v, c.w)),
    CALL(c.s.UpdateXXMat2(c.r, ZRRectMatrix(c.n, 0, true), 1.0)),
    CALL(c.s.ComputeRByRTrans(c.r)),
    CALL(c.s.ComputeRTransByR(c.r)),
    CALL(c.s.CheckGMG(c.packed, c.all, c.t, c.done, c.flag, c.k)),
    CALL(c.o.CheckMDependent(c.n, c.packed, c.all, c.tol)),
    CALL(c.s.GetRegCoeffs(c.out, c.all)),
    CALL(c.s.ComputeVecPartByL(c.v, 0)),
    CALL(c.s.ComputeVecIIncPartByL(c.packed, 0, 1)),
    CALL(c.s.ComputeDotColVecIIncrPart(c.j, c.packed, 0, 1, c.x)),
    CALL(c.s.ComputeDotLColVecIIncrDiag(0, c.packed, 0, 1, c.x)),
    CALL(c.s.ComputeDotLColVecIIncrPart(0, c.j, c.packed, 0, 1, c.x)),
    CALL(c.s.DotLColVecDelayedIIncrPart(0, 1, c.n - 2, c.packed, 0, 1, c.x)),
    CALL(c.s.DotRowVecDelayedIIncrPart(c.i, 0, c.n, c.packed, 0, 1, c.x)),
    CALL(c.s.ComputeDotLColVecPart(0, c.j, c.v, 1, c.x)),
    CALL(c.s.ComputeDotLRowVecPart(c.i, c.i, c.v, 0, c.x)),
    CALL(c.s.DotProdRowBeforeDiagFrontVec(c.i, c.v, c.x)),
    CALL(c.s.DotProdColBelowDiagBackVec(0, c.v, c.x)),
    CALL(c.s.DotLColRowPart(0, c.j, 0, c.j, c.x)),
    CALL(c.s.DotProductLColRowPart(0, c.t, c.i, 0, c.n, c.x)),
    CALL(if (c.n >= 2) c.s.DotProductLBlockColRow(0, 1, 0, c.half, 0, c.x)),
    CALL(if (c.n >= 2) c.s.DotProductLBlockDiagColRow(1, 1, c.half, 0, c.x)),
    CALL(for (int k = 0; k < 2 * c.n; ++k) c.s.Sweep(k % c.n, c.tol, c.diag.data(), c.none, false)),
    CALL(for (int k = 0; k < 2 * c.n; ++k) c.s.Sweep(k % c.n, c.tol, c.diag, c.all, true)),
    CALL(for (int k = 0; k < c.n; ++k) c.s.SweepOrig(k, c.tol, c.diag, c.none, false)),
    CALL(c.s.SweepOnMany(c.n, c.tol, true, c.none, c.x, false, nullptr)),
    CALL(c.s.SweepOnMany(c.n, c.tol, false, c.all, c.x, true, c.diag.data())),
    CALL(c.s.SweepOnSelected(c.idx, c.tol, c.none, false, nullptr)),
    CALL(c.s.SweepOnSelected(c.idx, c.tol, c.all, true, c.diag.data())),
    CALL(c.s.SweepOnAll(c.tol, c.none, false, true, true, nullptr)),
    CALL(c.s.SweepOnAll(c.tol, c.all, true, false, false, c.diag.data())),
    NAMED("operations that only move values, in one row",
          if (c.n > 0) c.s.SetElem(c.j, c.i, c.s.GetElem(c.i, c.j) + c.s.GetElem(c.n - 1));
          c.s.SetElem(0, c.n > 0 ? c.s.GetElem(0, 0, c.i, c.j) : 1.0); c.s.GetRow(c.i, c.out);
          c.s.GetDiagonal(c.out); c.s.Display(); c.s.DisplayF(); c.s.DisplayS();
          c.s.AddToDiagonal(1.0); c.s.AddToDiagonalPart(0, c.n, 1.0); c.s.ChangeSign();
          c.s.MultiplyByNumber(0.5); c.s.PutRow(c.j, c.v); c.s.SetRowColToConst(c.i, 2.0);
          c.s.ExtractSubmatrix({c.j, 0, c.j}, c.o); c.s.Expand(c.all, c.o); c.s.ExpandSym(c.r, c.o);
          c.s.ExpandSymToRect(c.r, c.ro); c.s.ReplaceFirstRows(c.t, c.n); c.ro = c.r;
          c.s.CopyRowToRColumn(c.i, c.ro, c.j, c.n);
          c.s.ExtractH(0, c.j, c.all, c.ro, c.k, c.done, c.n); c.s.ZeroOutRedundant(c.none);
          c.s.ZeroOut(c.j); c.s.DeleteOneRow(c.i); c.s.ExtractFirstNRows(c.s); c.s.SetNBlocks(1);
          c.s.SetData(c.t); c.s.ComputeAXpY(1.0, c.s); c.s.Resize(c.n + 1);
          c.s.SetNRows(c.n, false); c.s.Clear()),
  };
  RunAll<Sym>(ops, "ZRSymMatrix", "tol", {1e-10, 1e-300, kNaN});
}

}  // namespace
