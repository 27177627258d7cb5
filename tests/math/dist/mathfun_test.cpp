// ZRMathFun: kernels against plain loops, packed helpers against full matrices, searches
// and small functions by table, digamma and trigamma against mpmath.
#include "zrcommon920r/math/dist/mathfun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <random>
#include <vector>

#include "support/refdata.h"
#include "zrcommon920r/common/numconst.h"

namespace {

using ZRMath_920::ZRMathFun;
using Vec = std::vector<double>;
constexpr double kMiss = ZRCommon_920::kSysMisValue;
constexpr double kEps = ZRCommon_920::kMachineEpsilon;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

// Expected results, each traced to its line; a NaN want asks for a NaN.
struct Case {
  int line;
  double got, want;
};
void ExpectAll(std::initializer_list<Case> cases) {
  for (const Case & c : cases) {
    SCOPED_TRACE(c.line);
    if (std::isnan(c.want)) {
      EXPECT_TRUE(std::isnan(c.got)) << c.got;
    } else {
      EXPECT_EQ(c.got, c.want);
    }
  }
}

// Values over 16 decades, so that any change in the order of additions changes the bits.
Vec Spread(int n, unsigned seed) {
  std::mt19937_64 g(seed);
  Vec v(n);
  for (double & e : v) {
    const double u = static_cast<double>(g() >> 11) * 0x1p-53 - 0.5;
    e = u * std::pow(10.0, static_cast<int>(g() % 17) - 8);
  }
  return v;
}

// Index of element i of an n-element walk (far end first for a negative stride), or -1
// when it falls outside a vector of `size` elements.
long long At(int n, int start, int stride, int i, std::size_t size) {
  const long long k = stride >= 0 ? start + 1LL * i * stride : start - 1LL * (n - 1 - i) * stride;
  return k >= 0 && k < static_cast<long long>(size) ? k : -1;
}

// Element (i, j) of a packed symmetric matrix, from either triangle.
double Get(const Vec & l, int i, int j) {
  return i >= j ? l[i * (i + 1) / 2 + j] : l[j * (j + 1) / 2 + i];
}

TEST(ZRMathFunKernels, MatchPlainLoopsBitForBit) {
  // Sizes 0..17 cover the unrolled turns and every remainder, 300 gives a grouping of the
  // additions many chances to show; long walks leave the vector.
  const Vec x = Spread(280, 1), y0 = Spread(280, 2);
  for (int n : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 300})
    for (int stride : {-3, -1, 0, 1, 2})
      for (int start : {-2, -1, 0, 3}) {
        SCOPED_TRACE(testing::Message() << "n " << n << " stride " << stride << " start " << start);
        double asum = 0, dot = 0, sum = 0;
        Vec y = y0, scaled = x, loaded = x;
        for (int i = 0; i < n; ++i) {
          const long long k = At(n, start, stride, i, x.size()), ky = At(n, 1, 1, i, y.size());
          if (k >= 0) asum += std::fabs(x[k]), scaled[k] *= -0.75, loaded[k] = 4;
          if (k >= 0 && ky >= 0) dot += x[k] * y0[ky], y[ky] += 1.5 * x[k];
          if (At(n, 0, stride, i, x.size()) >= 0) sum += x[At(n, 0, stride, i, x.size())];
        }
        EXPECT_EQ(ZRMathFun::DASum(n, x, stride, start), asum);
        EXPECT_EQ(ZRMathFun::DDot(n, x, start, stride, y0, 1, 1), dot);
        EXPECT_EQ(ZRMathFun::DDot(n, y0, 1, 1, x, start, stride), dot);
        EXPECT_EQ(ZRMathFun::DSum(n, x, stride), stride == 0 ? n * x[0] : sum);
        Vec got = y0;
        ZRMathFun::Daxpy(n, 1.5, x, start, stride, got, 1, 1);
        EXPECT_EQ(got, y);
        ZRMathFun::DScal(n, -0.75, got = x, start, stride);
        EXPECT_EQ(got, scaled);
        ZRMathFun::DLoad(n, 4, got = x, start, stride);
        EXPECT_EQ(got, start < 0 ? x : loaded);  // a negative start loads nothing
      }
}

TEST(ZRMathFunKernels, HandWorkedWalksAndBounds) {
  const Vec x = {1, 2, 3, 4, 5}, y = {10, 20, 30};
  Vec z = y, w = {1, 1, 1, 1};
  ZRMathFun::Daxpy(3, 2, x, 0, 2, z, 0, -1);  // y[2] += 2*1, y[1] += 2*3, y[0] += 2*5
  ZRMathFun::Daxpy(3, 0, {kNaN, kNaN, kNaN}, 0, 1, w, 0, 1);  // a == 0: nothing, as in BLAS
  ZRMathFun::LRZero(w, 2, 5);
  ExpectAll({{__LINE__, ZRMathFun::DASum(2, x, -2, 1), 4 + 2},  // start moves to 1 + 2
             {__LINE__, ZRMathFun::DDot(3, x, 0, 2, y, 0, -1), 1 * 30 + 3 * 20 + 5 * 10},
             {__LINE__, ZRMathFun::DDot(3, x, 0, -2, y, 0, -1), 1 * 10 + 3 * 20 + 5 * 30},
             {__LINE__, ZRMathFun::DDot(5, x, 0, 1, y, 0, 1), 1 * 10 + 2 * 20 + 3 * 30},
             {__LINE__, ZRMathFun::DSum(3, x, -2), 1 + 3 + 5},
             {__LINE__, ZRMathFun::DSum(3, {}, 1), 0},
             {__LINE__, ZRMathFun::DASum(3, x, 3, 6), 0},              // starts past the end
             {__LINE__, ZRMathFun::DASum(INT_MAX, x, INT_MAX, 0), 1},  // no overflow, no long loop
             {__LINE__, ZRMathFun::DASum(INT_MAX, x, INT_MIN, 4), 5},  // only the last step is in
             {__LINE__, z[0] * 10000 + z[1] * 100 + z[2], 20 * 10000 + 26 * 100 + 32},
             {__LINE__, w[0] + w[1] * 10 + w[2] * 100 + w[3] * 1000, 11}});
}

TEST(ZRMathFunKernels, Nrm2IsAccurateAndScaled) {
  for (int n = 2; n <= 17; ++n) {
    const Vec x = Spread(2 * n, n);
    long double ss = 0;
    for (int i = 0; i < 2 * n; i += 2) ss += static_cast<long double>(x[i]) * x[i];
    // Each element rounds a ratio, its square and a sum; the sqrt halves their weight.
    EXPECT_LE(zrtest::RelErr(ZRMathFun::DNrm2(n, x, 0, 2), std::sqrt(static_cast<double>(ss))),
              (n + 2) * kEps);
  }
  const auto nrm2 = [](const Vec & v) { return ZRMathFun::DNrm2(int(v.size()), v, 0, 1); };
  ExpectAll({{__LINE__, nrm2({1e300, -1e300, 1e300, 1e300}), 2e300},
             {__LINE__, nrm2({3e-300, 4e-300}), 5e-300},
             {__LINE__, nrm2({-3}), 3},
             {__LINE__, nrm2({1, kNaN, 1e10}), kNaN},
             {__LINE__, nrm2({kInf, 1}), kInf},
             {__LINE__, nrm2({kInf, -kInf}), kInf}});  // fault fixed: inf / inf gave NaN
}

TEST(ZRMathFunPacked, ColumnKernelsWalkDownColumns) {
  const int n = 7;
  const Vec l = Spread(n * (n + 1) / 2, 3);
  for (int j = 0; j < n; ++j)
    for (int i = j; i < n; ++i) {
      SCOPED_TRACE(testing::Message() << "rows " << i << ".. of columns " << i << ", " << j);
      const int at = i * (i + 1) / 2;
      double dot = 0;
      Vec axpy = l, scal = l, init = l;
      for (int k = i; k < n; ++k) {
        const int kj = k * (k + 1) / 2 + j;
        dot += Get(l, k, i) * l[kj], axpy[kj] += 0.5 * Get(l, k, i), scal[kj] *= 3, init[kj] = -1;
      }
      EXPECT_EQ(ZRMathFun::IIDot(n - i, l, at + i, i + 1, l, at + j, i + 1), dot);
      Vec got = l;
      ZRMathFun::IIAxpy(n - i, 0.5, l, at + i, i + 1, got, at + j, i + 1);
      EXPECT_EQ(got, axpy);
      ZRMathFun::IIScal(n - i + 5, 3, got = l, at + j, i + 1);  // too long: the rest skipped
      EXPECT_EQ(got, scal);
      ZRMathFun::IIInit(n - i, -1, got = l, at + j, i + 1);
      EXPECT_EQ(got, init);
    }
  Vec got = l;
  ZRMathFun::IIInit(3, 0, got, -1, 1);
  EXPECT_EQ(got, l);  // negative start: nothing
}

TEST(ZRMathFunPacked, LTGltlMatchesExplicitProduct) {
  for (int n : {1, 2, 3, 5, 8, 17}) {
    SCOPED_TRACE(n);
    const Vec l = Spread(n * (n + 1) / 2, 10 + n);
    Vec got = l;
    ZRMathFun::LTGltl(n, got);
    for (int i = 0; i < n; ++i)
      for (int j = 0; j <= i; ++j) {
        long double want = 0, mag = 0;
        for (int k = i; k < n; ++k) want += static_cast<long double>(Get(l, k, i)) * Get(l, k, j);
        for (int k = i; k < n; ++k) mag += std::fabs(Get(l, k, i) * Get(l, k, j));
        // Dot-product bound: n roundings of at most eps each, on the sum of |terms|.
        EXPECT_LE(std::fabs(got[i * (i + 1) / 2 + j] - want), n * kEps * mag) << i << "," << j;
      }
  }
  Vec shortL = {1, 2};
  ZRMathFun::LTGltl(2, shortL);
  EXPECT_EQ(shortL, (Vec{1, 2}));  // fewer than n(n+1)/2 elements: unchanged
}

TEST(ZRMathFunPacked, RvdAndVsvMatchFullMatrix) {
  for (int n : {1, 2, 4, 9}) {
    const Vec s = Spread(n * (n + 1) / 2, 20 + n), x = Spread(3 * n, 30 + n);
    long double q = 0, qmag = 0;
    for (int row = 0; row < n; ++row) {
      for (int stride : {1, 3, -2, 0}) {
        SCOPED_TRACE(testing::Message() << "n " << n << " row " << row << " stride " << stride);
        long double want = 0, mag = 0;
        for (int j = 0; j < n; ++j) {
          const double t = Get(s, row, j) * x[At(n, 0, stride, j, x.size())];
          want += t, mag += std::fabs(t);
        }
        // Dot-product bound as for LTGltl.
        EXPECT_LE(std::fabs(ZRMathFun::RVD(s, n, row, x, stride) - want), n * kEps * mag);
      }
      for (int j = 0; j < n; ++j) {
        q += static_cast<long double>(x[row]) * Get(s, row, j) * x[j];
        qmag += std::fabs(x[row] * Get(s, row, j) * x[j]);
      }
    }
    // Two more roundings per row than a dot product: the doubling and the outer product.
    EXPECT_LE(std::fabs(ZRMathFun::VSV(s, n, x) - q), (n + 2) * kEps * qmag) << n;
  }
  const Vec s3 = {1, 2, 3, 4, 5, 6}, x3 = {1, 1, 1};
  ExpectAll({{__LINE__, ZRMathFun::VSV({}, 0, {}), 0},
             {__LINE__, ZRMathFun::VSV(s3, -1, x3), kMiss},
             {__LINE__, ZRMathFun::VSV(s3, 3, {1, 1}), kMiss},
             {__LINE__, ZRMathFun::VSV({1, 2}, 2, x3), kMiss},
             {__LINE__, ZRMathFun::VSV(s3, 3, x3), 1 + 3 + 6 + 2 * (2 + 4 + 5)},
             {__LINE__, ZRMathFun::RVD(s3, 3, 1, x3, 1), 2 + 3 + 5},
             {__LINE__, ZRMathFun::RVD(s3, 0, 0, x3, 1), kMiss},
             {__LINE__, ZRMathFun::RVD(s3, 3, 3, x3, 1), kMiss},
             {__LINE__, ZRMathFun::RVD(s3, 3, -1, x3, 1), kMiss},
             {__LINE__, ZRMathFun::RVD(s3, 3, 0, x3, 2), kMiss},
             {__LINE__, ZRMathFun::RVD({1, 2}, 2, 0, x3, 1), kMiss}});
}

TEST(ZRMathFunSearch, BinSearchMatchesLinearScan) {
  // Reference: the first p in first..last whose boundary lies above the key (at or above it
  // without `upper`); -1 when there is none or the key belongs below x[first - 1].
  const Vec x = {1, 2, 3.5, 4, 7, 9};
  const std::vector<int> xi = {1, 2, 3, 4, 7, 9};
  for (int first = 0; first < 6; ++first)
    for (int last = first; last < 6; ++last)
      for (double key : {0.5, 1.0, 1.5, 2.0, 3.0, 3.5, 4.0, 6.0, 7.0, 9.0, 9.5})
        for (bool upper : {false, true}) {
          SCOPED_TRACE(testing::Message() << first << ".." << last << " key " << key << upper);
          int want = -1;
          for (int p = last; p >= first; --p)
            if (upper ? key < x[p] : key <= x[p]) want = p;
          if (first > 0 && (upper ? key < x[first - 1] : key <= x[first - 1])) want = -1;
          EXPECT_EQ(ZRMathFun::BinSearch(x, first, last, key, upper), want);
          if (key == std::floor(key) && key != 3.0) {  // the int boundaries have 3, not 3.5
            EXPECT_EQ(ZRMathFun::BinSearch(xi, first, last, static_cast<int>(key), upper), want);
          }
        }
  const Vec v = {1, 2, 3};
  ExpectAll({{__LINE__, 1.0 * ZRMathFun::BinSearch(v, 0, 2, kNaN, false), -1},
             {__LINE__, 1.0 * ZRMathFun::BinSearch(v, 0, 3, 1, false), -2},
             {__LINE__, 1.0 * ZRMathFun::BinSearch(v, 2, 1, 1, false), -2},
             {__LINE__, 1.0 * ZRMathFun::BinSearch(v, -1, 1, 1, false), -2},
             {__LINE__, 1.0 * ZRMathFun::BinSearch(Vec{}, 0, 0, 1, false), -2}});
}

TEST(ZRMathFunSearch, FindTwoLargest) {
  const auto two = [](int line, const Vec & x, bool nonMiss, double a, double b) {
    SCOPED_TRACE(line);
    double gotA = 0, gotB = 0;
    (nonMiss ? ZRMathFun::FindTwoLargestNonMiss : ZRMathFun::FindTwoLargest)(x, gotA, gotB);
    EXPECT_TRUE(gotA == a && gotB == b) << gotA << ", " << gotB;
  };
  two(__LINE__, {}, false, kMiss, kMiss);
  two(__LINE__, {4}, false, 4, kMiss);
  two(__LINE__, {1, 5, 3, 5}, false, 5, 5);
  two(__LINE__, {9, 1, 3, 2}, false, 9, 3);
  two(__LINE__, {kMiss, 2, kMiss}, false, 2, kMiss);
  two(__LINE__, {kNaN, 2, kNaN, 1}, false, 2, 1);
  two(__LINE__, {kMiss, 2, kMiss, 1}, true, 2, 1);
  two(__LINE__, {kMiss}, true, kMiss, kMiss);
  two(__LINE__, {kMiss, kMiss, 3}, true, 3, kMiss);
  two(__LINE__, {-1, -7, -3}, true, -1, -3);
}

TEST(ZRMathFunTests, DifferencesAndScalarTests) {
  ExpectAll({{__LINE__, ZRMathFun::VMaxRelDiff({1, 2, 9}, {0.5, 2}, -0.5), 0.5},  // |d| = 0.5
             {__LINE__, ZRMathFun::VMaxRelDiff({1e-6}, {0}, 0), 1},  // d = 0 stands for 1e-6
             {__LINE__, ZRMathFun::VMaxRelDiff({kNaN, 5}, {1, 1}, 1), kNaN},
             {__LINE__, ZRMathFun::VNrm1Diff({1, -4, 7}, {2, 2}), 6},
             {__LINE__, ZRMathFun::VNrm1Diff({1, kNaN}, {1, 1}), kNaN},
             {__LINE__, ZRMathFun::ReplaceIfSmall(-1e-9, 1e-6), -1e-6},
             {__LINE__, ZRMathFun::ReplaceIfSmall(-0.0, 1e-6), 1e-6},
             {__LINE__, ZRMathFun::ReplaceIfSmall(1e-9, kNaN), 1e-9},
             {__LINE__, ZRMathFun::ReplaceIfSmall(kNaN, 1), kNaN}});
  EXPECT_TRUE(ZRMathFun::QLReps(1e-17, 1) && ZRMathFun::IsValidDouble(kMiss));
  EXPECT_FALSE(ZRMathFun::QLReps(0, 0) || ZRMathFun::QLReps(kEps, 1) || ZRMathFun::QLReps(kNaN, 1));
  EXPECT_FALSE(ZRMathFun::IsValidDouble(-kInf) || ZRMathFun::IsValidDouble(kNaN));
}

TEST(ZRMathFunPolygamma, MatchMpmath) {  // data: tests/data/math/dist/digamma.csv
  for (const zrtest::RefRow & row : zrtest::LoadRefTable("math/dist/digamma.csv", /*nIn=*/1)) {
    SCOPED_TRACE(row.where);
    const double x = row.in[0], psi = row.out[0];
    // Below the switches the one-term forms drop (pi^2/6) x: (pi^2/6) x^2 relative, 1.645.
    const double dropped = 1.645 * x * x + 2 * kEps;
    // Terms of size 1 to 4 cancel around the zero at 1.4616, so the error is absolute there.
    const double psiErr = std::fabs(ZRMathFun::Digamma(x) - psi) / std::max(std::fabs(psi), 1.0);
    // Measured 3.1 eps (x = 0.5): log(y), the series and the shift sum round, then cancel.
    EXPECT_LE(psiErr, x < 1e-5 ? dropped : 4 * kEps);
    // Measured 1.3 eps: all terms positive, the shift sum joins the series once.
    EXPECT_LE(zrtest::RelErr(ZRMathFun::Trigamma(x), row.out[1]), x < 1e-4 ? dropped : 2 * kEps);
  }
  for (double x : {1e-16, 0.0, -2.5, -kInf, kNaN}) {  // at or below 1e-16, and NaN: missing
    EXPECT_EQ(ZRMathFun::Digamma(x), kMiss) << x;
    EXPECT_EQ(ZRMathFun::Trigamma(x), kMiss) << x;
  }
  EXPECT_EQ(ZRMathFun::Digamma(kInf), kInf);
  EXPECT_EQ(ZRMathFun::Trigamma(kInf), 0.0);
}

}  // namespace
