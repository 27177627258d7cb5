// The blocked schedules of the factorisations against the one-pivot-at-a-time loops they
// replaced, kept here as written before: results, return values and pivot sets must agree
// bit for bit on random, rank-deficient, near-singular and non-finite inputs.
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <random>
#include <utility>
#include <vector>

#include "support/simdpaths.h"
#include "zrcommon920r/math/bitset.h"
#include "zrcommon920r/math/matrix/detail/simd.h"
#include "zrcommon920r/math/matrix/kernels.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace {

using ZRMath_920::Linpack;
using ZRMath_920::ZRBitSet;
using ZRMath_920::ZRSymMatrix;
using ZRMath_920::matrix_detail::SimdPath;
using Vec = std::vector<double>;

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();

std::size_t RowStart(int i) {
  return static_cast<std::size_t>(i) * (i + 1) / 2;
}
std::size_t At(int i, int j) {
  return i >= j ? RowStart(i) + j : RowStart(j) + i;
}

// ---- The one-pivot sweep as it stood before the blocked schedule --------------------

bool OldForwardAccepted(const Vec & a, int n, int k, double d, double tol, const Vec & diag,
                        const ZRBitSet & set) {
  if (!(tol * diag[k] < d)) return false;
  const int bits = set.Size() < n ? set.Size() : n;
  for (int j = 0; j < bits; ++j) {
    if (!set.IsIn(j)) continue;
    const double ajk = a[At(j, k)];
    const double after = a[At(j, j)] - ajk / d * ajk;
    if (!(after * tol * diag[j] > -1.0)) return false;
  }
  return true;
}

bool OldSweep(Vec & a, int n, int k, double tol, const Vec & diag, ZRBitSet & set) {
  const double d = a[At(k, k)];
  const bool forward = !set.IsIn(k);
  if (forward && !OldForwardAccepted(a, n, k, d, tol, diag, set)) return false;
  const double r = -1.0 / d;
  a[At(k, k)] = r;
  const double m = std::fabs(r);
  for (int i = 0; i < n; ++i) {
    if (i == k) continue;
    const double old = a[At(i, k)];
    a[At(i, k)] = old * m;
    const double f = r < 0.0 ? -old : old;
    for (int j = 0; j <= i; ++j)
      if (j != k) a[RowStart(i) + j] += f * a[At(j, k)];
  }
  set.Set(k, forward);
  return true;
}

// ---- The factor and its inverse as they stood before the blocked schedules ------------

int OldFactor(Vec & a, int n, const Vec & diag, double tol, ZRBitSet * set) {
  int redundant = 0;
  for (int i = 0; i < n; ++i) {
    double * rowI = a.data() + RowStart(i);
    for (int j = 0; j < i; ++j) {
      const double * rowJ = a.data() + RowStart(j);
      double s = 0.0;
      for (int k = 0; k < j; ++k) s += rowI[k] * rowJ[k];
      rowI[j] = rowJ[j] != 0.0 ? (rowI[j] - s) / rowJ[j] : 0.0;
    }
    double s = 0.0;
    for (int k = 0; k < i; ++k) s += rowI[k] * rowI[k];
    const double x = rowI[i] - s;
    if (x > tol * diag[i]) {
      rowI[i] = std::sqrt(x);
      if (set != nullptr) set->Set(i, true);
    } else {
      rowI[i] = 0.0;
      ++redundant;
    }
  }
  return redundant;
}

// L^-1 by DTRDI's column sweep, then L^-T L^-1 row by row.
void OldInverse(Vec & a, int n) {
  for (int k = n - 1; k >= 0; --k) {
    double * rowK = a.data() + RowStart(k);
    if (rowK[k] == 0.0) {
      for (int j = 0; j <= k; ++j) rowK[j] = 0.0;
      for (int i = k + 1; i < n; ++i) a[At(i, k)] = 0.0;
      continue;
    }
    const double t = 1.0 / rowK[k];
    rowK[k] = t;
    for (int i = k + 1; i < n; ++i) {
      double * rowI = a.data() + RowStart(i);
      const double f = rowI[k] * -t;
      rowI[k] = f;
      for (int j = 0; j < k; ++j) rowI[j] += rowK[j] * f;
    }
    for (int j = 0; j < k; ++j) rowK[j] = 0.0 + rowK[j] * t;
  }
  for (int i = 0; i < n; ++i) {
    double * rowI = a.data() + RowStart(i);
    const double lii = rowI[i];
    for (int j = 0; j < i; ++j) rowI[j] *= lii;
    double dsum = lii * lii;
    for (int m = i + 1; m < n; ++m) {
      const double * rowM = a.data() + RowStart(m);
      for (int j = 0; j < i; ++j) rowI[j] += rowM[i] * rowM[j];
      dsum += rowM[i] * rowM[i];
    }
    rowI[i] = dsum;
  }
}

// ---- Gaussian elimination as it stood before the delayed schedule ----------------------

// Column-major, 1-based pivots; Daxpy's skip of a zero multiplier kept.
int OldGefa(Vec & a, int lda, int n, std::vector<int> & ipvt) {
  auto at = [&](int i, int j) -> double & {
    return a[static_cast<std::size_t>(j - 1) * lda + i - 1];
  };
  int info = 0;
  for (int k = 1; k <= n - 1; ++k) {
    int l = k;
    double big = std::fabs(at(k, k));
    for (int i = k + 1; i <= n; ++i)
      if (std::fabs(at(i, k)) > big) {
        big = std::fabs(at(i, k));
        l = i;
      }
    ipvt[k - 1] = l;
    if (at(l, k) == 0.0) {
      info = k;
      continue;
    }
    std::swap(at(l, k), at(k, k));
    const double t = -1.0 / at(k, k);
    for (int i = k + 1; i <= n; ++i) at(i, k) *= t;
    for (int j = k + 1; j <= n; ++j) {
      const double tj = at(l, j);
      if (l != k) {
        at(l, j) = at(k, j);
        at(k, j) = tj;
      }
      if (tj == 0.0) continue;
      for (int i = k + 1; i <= n; ++i) at(i, j) += tj * at(i, k);
    }
  }
  ipvt[n - 1] = n;
  if (at(n, n) == 0.0) info = n;
  return info;
}

// ---- Inputs ---------------------------------------------------------------------------

enum class Kind { kFullRank, kDeficient, kNearSingular, kIndefinite, kNonFinite };

// X'X of a random X whose columns repeat (exactly, or with noise of 1e-9) for the
// rank-deficient kinds; a random symmetric matrix for kIndefinite; kNonFinite puts a NaN,
// an Inf and a -Inf in a full-rank one.
Vec MakePacked(int n, Kind kind, std::mt19937_64 & rng) {
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  Vec a(RowStart(n));
  if (kind == Kind::kIndefinite) {
    for (double & x : a) x = u(rng);
    return a;
  }
  const int m = n + 3;
  std::vector<Vec> x(static_cast<std::size_t>(n), Vec(static_cast<std::size_t>(m)));
  for (int j = 0; j < n; ++j) {
    const bool copy =
        j >= 2 && (kind == Kind::kDeficient || kind == Kind::kNearSingular) && rng() % 3 == 0;
    const int from = copy ? static_cast<int>(rng() % static_cast<unsigned>(j)) : -1;
    for (int r = 0; r < m; ++r) {
      x[j][r] = from < 0 ? u(rng) : x[from][r];
      if (from >= 0 && kind == Kind::kNearSingular) x[j][r] += 1e-9 * u(rng);
    }
  }
  for (int i = 0; i < n; ++i)
    for (int j = 0; j <= i; ++j) {
      double s = 0.0;
      for (int r = 0; r < m; ++r) s += x[i][r] * x[j][r];
      a[RowStart(i) + j] = s;
    }
  if (kind == Kind::kNonFinite && n >= 3) {
    a[At(n / 2, n / 3)] = kNaN;
    a[At(n - 1, 0)] = kInf;
    a[At(n / 3, n / 3)] = -kInf;
  }
  return a;
}

ZRSymMatrix FromPacked(const Vec & a, int n) {
  ZRSymMatrix s(n, true);
  for (std::size_t k = 0; k < a.size(); ++k) s.SetElem(static_cast<int>(k), a[k]);
  return s;
}

Vec Packed(const ZRSymMatrix & s) {
  Vec v(RowStart(s.GetNRows()));
  for (std::size_t k = 0; k < v.size(); ++k) v[k] = s.GetElem(static_cast<int>(k));
  return v;
}

// Equal bits, a NaN matching any NaN: which operand's NaN an addition passes on is the
// compiler's choice of operand order, and the pivot-by-pivot Sweep and SweepOrig already
// differ in NaN signs on the same input.
bool SameBits(double x, double y) {
  return std::memcmp(&x, &y, sizeof x) == 0 || (std::isnan(x) && std::isnan(y));
}

bool SameBits(const Vec & x, const Vec & y) {
  if (x.size() != y.size()) return false;
  for (std::size_t k = 0; k < x.size(); ++k)
    if (!SameBits(x[k], y[k])) return false;
  return true;
}

std::vector<bool> Bits(const ZRBitSet & s) {
  std::vector<bool> b;
  for (int i = 0; i < s.Size(); ++i) b.push_back(s.IsIn(i));
  return b;
}

struct Case {
  int n;
  Kind kind;
};

// Every order up to 70, then orders past the one from which the sweeps take several
// pivots per pass (192), with partial blocks of pivots at the end.
std::vector<Case> Cases() {
  std::vector<Case> cases;
  const Kind kinds[] = {Kind::kFullRank, Kind::kDeficient, Kind::kNearSingular, Kind::kIndefinite,
                        Kind::kNonFinite};
  for (int n = 1; n <= 70; ++n) cases.push_back({n, kinds[n % 5]});
  for (Kind k : kinds) cases.push_back({37, k});
  for (Kind k : kinds) cases.push_back({193, k});
  cases.push_back({192, Kind::kNearSingular});
  cases.push_back({200, Kind::kDeficient});
  cases.push_back({217, Kind::kNonFinite});
  cases.push_back({257, Kind::kNearSingular});
  cases.push_back({333, Kind::kIndefinite});
  return cases;
}

// ---- Sweeps -------------------------------------------------------------------------------

TEST(ZRScheduleBits, SweepOnAllMatchesPivotByPivotSweep) {
  const std::vector<SimdPath> paths = zrtest::SupportedPaths();
  std::mt19937_64 rng(20);
  for (const Case & c : Cases()) {
    for (double tol : {1e-12, 1e-6, 0.5}) {
      SCOPED_TRACE(testing::Message()
                   << "n " << c.n << " kind " << static_cast<int>(c.kind) << " tol " << tol);
      const Vec a = MakePacked(c.n, c.kind, rng);
      Vec diag(static_cast<std::size_t>(c.n));
      for (int i = 0; i < c.n; ++i) diag[i] = std::fabs(a[At(i, i)]);

      Vec want = a;
      ZRBitSet wantSet(c.n);
      for (int k = 0; k < c.n; ++k) OldSweep(want, c.n, k, tol, diag, wantSet);

      // Orders that take several pivots per pass run on every vector path.
      for (SimdPath path : c.n >= 192 ? paths : std::vector<SimdPath>{SimdPath::kBaseline}) {
        SCOPED_TRACE(ZRMath_920::matrix_detail::SimdPathName(path));
        zrtest::ForcedPath forced(path);
        ASSERT_TRUE(forced.Ok());
        ZRSymMatrix s = FromPacked(a, c.n);
        ZRBitSet set;
        Vec d = diag;
        ASSERT_TRUE(s.SweepOnAll(tol, set, false, false, false, d.data()));
        EXPECT_TRUE(SameBits(Packed(s), want));
        EXPECT_EQ(Bits(set), Bits(wantSet));
      }
    }
  }
}

TEST(ZRScheduleBits, SweepOnManyMatchesPivotByPivotSweep) {
  std::mt19937_64 rng(21);
  for (const Case & c : Cases()) {
    // Rows past the count keep their bits, so that the variance-inflation test reads
    // rows entered before the call; a count past the order sweeps every row.
    for (int count : {1, 17, (c.n + 1) / 2, c.n, c.n + 3}) {
      for (bool logPivot : {false, true}) {
        if (c.n > 100 && logPivot != (count % 2 == 0)) continue;  // one of the two suffices
        SCOPED_TRACE(testing::Message() << "n " << c.n << " kind " << static_cast<int>(c.kind)
                                        << " count " << count << " logPivot " << logPivot);
        const Vec a = MakePacked(c.n, c.kind, rng);
        Vec diag(static_cast<std::size_t>(c.n));
        for (int i = 0; i < c.n; ++i) diag[i] = std::fabs(a[At(i, i)]);
        ZRBitSet start(c.n);
        for (int i = count; i < c.n; ++i) start.Set(i, rng() % 4 == 0);

        Vec want = a;
        ZRBitSet wantSet = start;
        double wantLog = 0.0;
        for (int k = 0; k < count && k < c.n; ++k) wantSet.Set(k, false);
        for (int k = 0; k < count && k < c.n; ++k) {
          double p = logPivot ? want[At(k, k)] : 0.0;
          const bool swept = OldSweep(want, c.n, k, 1e-8, diag, wantSet);
          if (swept && !logPivot) p = -want[At(k, k)];
          if (swept && p > 0.0) wantLog += std::log(p);
        }

        ZRSymMatrix s = FromPacked(a, c.n);
        ZRBitSet set = start;
        Vec d = diag;
        double logDet = -1.0;
        ASSERT_TRUE(s.SweepOnMany(count, 1e-8, logPivot, set, logDet, false, d.data()));
        EXPECT_TRUE(SameBits(Packed(s), want));
        EXPECT_EQ(Bits(set), Bits(wantSet));
        EXPECT_TRUE(SameBits(logDet, wantLog)) << logDet << " vs " << wantLog;
      }
    }
  }
}

// The checked call raises the reference diagonal to 1.0 before the pivots, as the
// pivot-by-pivot loop did, and writes it back through the caller's array.
TEST(ZRScheduleBits, CheckedSweepOnAllRaisesDiagonalFirst) {
  std::mt19937_64 rng(22);
  const int n = 201;
  Vec a = MakePacked(n, Kind::kNearSingular, rng);
  for (int i = 0; i < n; i += 3)
    for (int j = 0; j <= i; ++j) a[At(i, j)] *= 1e-3;  // diagonals below 1.0
  Vec diag(static_cast<std::size_t>(n));
  for (int i = 0; i < n; ++i) diag[i] = a[At(i, i)];
  Vec raised = diag;
  for (double & x : raised) x = x < 1.0 ? 1.0 : x;

  Vec want = a;
  ZRBitSet wantSet(n);
  for (int k = 0; k < n; ++k) OldSweep(want, n, k, 1e-7, raised, wantSet);

  ZRSymMatrix s = FromPacked(a, n);
  ZRBitSet set;
  ASSERT_TRUE(s.SweepOnAll(1e-7, set, true, false, false, diag.data()));
  EXPECT_TRUE(SameBits(Packed(s), want));
  EXPECT_EQ(Bits(set), Bits(wantSet));
  EXPECT_TRUE(SameBits(diag, raised));
}

// ---- Cholesky factor and inverse ----------------------------------------------------

TEST(ZRScheduleBits, LTCholAndInverseMatchRowByRowLoops) {
  const std::vector<SimdPath> paths = zrtest::SupportedPaths();
  std::mt19937_64 rng(23);
  for (const Case & c : Cases()) {
    for (double tol : {1e-12, 1e-4}) {
      SCOPED_TRACE(testing::Message()
                   << "n " << c.n << " kind " << static_cast<int>(c.kind) << " tol " << tol);
      const Vec a = MakePacked(c.n, c.kind, rng);
      Vec diag(static_cast<std::size_t>(c.n));
      for (int i = 0; i < c.n; ++i) diag[i] = std::fabs(a[At(i, i)]);

      Vec want = a;
      ZRBitSet wantSet(c.n);
      const int wantRedundant = OldFactor(want, c.n, diag, tol, &wantSet);

      const Vec factor = want;
      OldInverse(want, c.n);
      for (SimdPath path : paths) {
        SCOPED_TRACE(ZRMath_920::matrix_detail::SimdPathName(path));
        zrtest::ForcedPath forced(path);
        ASSERT_TRUE(forced.Ok());
        ZRSymMatrix s = FromPacked(a, c.n);
        ZRBitSet set;
        ASSERT_EQ(s.LTChol(diag, tol, set, false), wantRedundant);
        EXPECT_TRUE(SameBits(Packed(s), factor));
        EXPECT_EQ(Bits(set), Bits(wantSet));
        ASSERT_TRUE(s.LTInverse());
        EXPECT_TRUE(SameBits(Packed(s), want));
      }
    }
  }
}

// The inverse of a factor with zero pivots, an Inf and a NaN on its diagonal, and zeros
// within rows: the zeroed rows and columns pick up signed zeros from the later columns.
TEST(ZRScheduleBits, InverseOfFactorWithZeroAndNonFinitePivots) {
  const std::vector<SimdPath> paths = zrtest::SupportedPaths();
  std::mt19937_64 rng(24);
  std::uniform_real_distribution<double> u(-2.0, 2.0);
  for (int n : {1, 4, 5, 9, 17, 25, 64, 131}) {
    SCOPED_TRACE(n);
    Vec l(RowStart(n));
    for (double & x : l) x = rng() % 7 == 0 ? 0.0 : u(rng);
    for (int i = 0; i < n; ++i) l[At(i, i)] = i % 5 == 2 ? 0.0 : 0.5 + std::fabs(u(rng));
    if (n > 8) {
      l[At(7, 7)] = kInf;
      l[At(n - 1, 3)] = kNaN;
      l[At(8, 8)] = -0.0;
    }
    Vec want = l;
    OldInverse(want, n);
    for (SimdPath path : paths) {
      SCOPED_TRACE(ZRMath_920::matrix_detail::SimdPathName(path));
      zrtest::ForcedPath forced(path);
      ASSERT_TRUE(forced.Ok());
      ZRSymMatrix s = FromPacked(l, n);
      ASSERT_TRUE(s.LTInverse());
      EXPECT_TRUE(SameBits(Packed(s), want));
    }
  }
}

// ---- Gaussian elimination ----------------------------------------------------------------

// Random matrices with zero columns (zero pivots), repeated columns (pivots that cancel
// to zero or nearly), sparse zeros (zero multipliers next to Inf and -0.0, which the
// skipped multiply-add keeps) and a leading dimension past n, under every vector path the
// processor has. Orders around the column blocks (64), the step groups (8) and the strips
// of rows (256 below a group) leave partial tiles, vectors and groups; large diagonal
// entries keep some pivots on the diagonal, others pivot far below their group.
TEST(ZRScheduleBits, DgefaMatchesColumnSweep) {
  std::mt19937_64 rng(25);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  std::vector<int> sizes;
  for (int n = 1; n <= 70; ++n) sizes.push_back(n);
  for (int n : {71, 72, 73, 127, 128, 129, 135, 203, 264, 265, 500}) sizes.push_back(n);
  const std::vector<SimdPath> paths = zrtest::SupportedPaths();
  for (int n : sizes) {
    SCOPED_TRACE(n);
    const int lda = n + n % 3;
    Vec a(static_cast<std::size_t>(lda) * n);
    for (double & x : a) x = rng() % 5 == 0 ? 0.0 : u(rng);
    for (int j = 1; j < n; ++j) {
      double * col = a.data() + static_cast<std::size_t>(j) * lda;
      switch (rng() % 8) {
        case 0:  // a multiple of an earlier column
          for (int i = 0; i < n; ++i) col[i] = 2.0 * a[static_cast<std::size_t>(j / 2) * lda + i];
          break;
        case 1:
          for (int i = 0; i < n; ++i) col[i] = 0.0;
          break;
        case 2:
          col[rng() % n] = rng() % 2 ? kInf : -0.0;
          break;
        case 3:
          col[j] = 4.0 * n;
          break;
        default:
          break;
      }
    }
    if (n > 20 && n % 4 == 1) a[static_cast<std::size_t>(n / 2) * lda + 3] = kNaN;

    Vec want = a;
    std::vector<int> wantPivots(static_cast<std::size_t>(n));
    const int wantInfo = OldGefa(want, lda, n, wantPivots);
    for (SimdPath path : paths) {
      SCOPED_TRACE(ZRMath_920::matrix_detail::SimdPathName(path));
      zrtest::ForcedPath forced(path);
      ASSERT_TRUE(forced.Ok());
      Vec got = a;
      std::vector<int> pivots(static_cast<std::size_t>(n));
      const int info = Linpack::Dgefa(got.data(), lda, n, pivots.data());
      EXPECT_EQ(info, wantInfo);
      EXPECT_EQ(pivots, wantPivots);
      EXPECT_TRUE(SameBits(got, want));
    }
  }
}

}  // namespace
