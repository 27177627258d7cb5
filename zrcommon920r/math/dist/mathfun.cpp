// ZRMathFun: strided vector kernels, packed-triangle helpers, searches, small tests and the
// digamma and trigamma functions.
#include "zrcommon920r/math/dist/mathfun.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "zrcommon920r/common/numconst.h"

namespace ZRMath_920 {
namespace {

// Every index is computed in 64 bits: |start| < 2^31 and (n - 1) * |stride| < 2^62, and a
// packed walk adds at most n(n - 1)/2 < 2^61 more, so nothing can overflow.
using Index = std::int64_t;

constexpr double kMiss = ZRCommon_920::kSysMisValue;
constexpr double kEps = ZRCommon_920::kMachineEpsilon;
constexpr double kMaxDouble = std::numeric_limits<double>::max();
constexpr double kRelDiffFloor = 1e-6;      // VMaxRelDiff's |d| when d == 0
constexpr double kPolygammaLowest = 1e-16;  // Digamma, Trigamma: no value at or below
constexpr double kDigammaSmall = 1e-5;      // below: -gamma - 1/x
constexpr double kTrigammaSmall = 1e-4;     // below: 1/x^2
constexpr double kEulerGamma = 0.5772156649015329;
constexpr int kShift = 10;  // recurrence steps up to y = x + 10 before the series

// -B(2k) / (2k) for k = 6 down to 1, Horner order in w = 1/y^2, for
// psi(y) ~ log y - 1/(2y) - sum B(2k) / (2k y^2k), B the Bernoulli numbers.
constexpr double kDigammaSeries[] = {0.021092796092796094, -0.007575757575757576,
                                     0.004166666666666667, -0.003968253968253968,
                                     0.008333333333333333, -0.08333333333333333};
// B(2k) for k = 6 down to 1, then 1: psi'(y) ~ 1/y + 1/(2y^2) + sum B(2k) / y^(2k+1).
constexpr double kTrigammaSeries[] = {-0.2531135531135531,
                                      0.07575757575757576,
                                      -0.03333333333333333,
                                      0.023809523809523808,
                                      -0.03333333333333333,
                                      0.16666666666666666,
                                      1.0};

// Floor and ceiling of a / b for b > 0.
Index FloorDiv(Index a, Index b) {
  const Index q = a / b;
  return (a % b != 0 && a < 0) ? q - 1 : q;
}
Index CeilDiv(Index a, Index b) {
  const Index q = a / b;
  return (a % b != 0 && a > 0) ? q + 1 : q;
}

// The part of an n-element walk that lies inside a vector: element i, lo <= i < hi, at
// first + i * step. All other elements of the walk fall outside and are skipped.
struct Walk {
  Index first = 0;
  Index step = 0;
  Index lo = 0;
  Index hi = 0;
  Index At(Index i) const { return first + i * step; }
  bool Empty() const { return lo >= hi; }
};

// A negative stride starts at the far end, start + (n - 1) * |stride| (the BLAS rule).
Walk MakeWalk(int n, int start, int stride, std::size_t size) {
  Walk w;
  if (n < 1 || size == 0) return w;
  const Index count = n;
  const Index last = static_cast<Index>(size) - 1;
  w.step = stride;
  w.first = stride < 0 ? start - (count - 1) * w.step : start;
  Index lo = 0;
  Index hi = count;
  if (w.step > 0) {
    lo = std::max(lo, CeilDiv(-w.first, w.step));
    hi = std::min(hi, FloorDiv(last - w.first, w.step) + 1);
  } else if (w.step < 0) {
    lo = std::max(lo, CeilDiv(w.first - last, -w.step));
    hi = std::min(hi, FloorDiv(w.first, -w.step) + 1);
  } else if (w.first < 0 || w.first > last) {
    hi = 0;
  }
  w.lo = lo;
  w.hi = std::max(lo, hi);
  return w;
}

// Both walks restricted to the steps where both are inside their vectors.
void Intersect(Walk & a, Walk & b) {
  a.lo = b.lo = std::max(a.lo, b.lo);
  a.hi = b.hi = std::max(a.lo, std::min(a.hi, b.hi));
}

// Sum of f(x_i) along the walk, in walk order; stride 1 unrolled by four with the
// additions in the order of the plain loop.
template <class F>
double SumWalk(const Walk & w, const double * px, F f) {
  double sum = 0.0;
  if (w.Empty()) return sum;
  if (w.step == 1) {
    const double * p = px + w.At(w.lo);
    const Index m = w.hi - w.lo;
    Index i = 0;
    for (; i + 4 <= m; i += 4) sum = sum + f(p[i]) + f(p[i + 1]) + f(p[i + 2]) + f(p[i + 3]);
    for (; i < m; ++i) sum = sum + f(p[i]);
  } else {
    for (Index i = w.lo; i < w.hi; ++i) sum = sum + f(px[w.At(i)]);
  }
  return sum;
}

// Applies f to every element of the walk, in walk order; stride 1 unrolled by four.
template <class F>
void UpdateWalk(const Walk & w, double * px, F f) {
  if (w.Empty()) return;
  if (w.step == 1) {
    double * p = px + w.At(w.lo);
    const Index m = w.hi - w.lo;
    Index i = 0;
    for (; i + 4 <= m; i += 4) {
      p[i] = f(p[i]);
      p[i + 1] = f(p[i + 1]);
      p[i + 2] = f(p[i + 2]);
      p[i + 3] = f(p[i + 3]);
    }
    for (; i < m; ++i) p[i] = f(p[i]);
  } else {
    for (Index i = w.lo; i < w.hi; ++i) px[w.At(i)] = f(px[w.At(i)]);
  }
}

// Calls f(index) for the steps of a packed-column walk inside a vector of `size`
// elements: index_0 = start, index_{k+1} = index_k + stride + k.
template <class F>
void ForPacked(int n, int start, int stride, std::size_t size, F f) {
  const Index end = static_cast<Index>(size);
  Index idx = start;
  for (Index k = 0; k < n; ++k) {
    if (idx >= 0 && idx < end) {
      f(idx);
    } else if (idx >= end && stride + k >= 0) {
      return;  // steps only grow from here: the walk never comes back
    }
    idx += stride + k;
  }
}

// Calls f(ix, iy) for the steps at which two packed-column walks are both inside.
template <class F>
void ForPacked2(int n, int startX, int strideX, std::size_t sizeX, int startY, int strideY,
                std::size_t sizeY, F f) {
  const Index endX = static_cast<Index>(sizeX);
  const Index endY = static_cast<Index>(sizeY);
  Index ix = startX;
  Index iy = startY;
  for (Index k = 0; k < n; ++k) {
    const bool inX = ix >= 0 && ix < endX;
    const bool inY = iy >= 0 && iy < endY;
    if (inX && inY) {
      f(ix, iy);
    } else if ((ix >= endX && strideX + k >= 0) || (iy >= endY && strideY + k >= 0)) {
      return;
    }
    ix += strideX + k;
    iy += strideY + k;
  }
}

// One element of the scaled sum of squares: the norm is sqrt(ssq) * scale.
void ScaledSquare(double v, double & scale, double & ssq) {
  if (v == 0.0) return;  // NaN is not 0 and goes on to poison ssq
  const double a = std::fabs(v);
  if (a > scale) {
    const double r = scale / a;
    ssq = r * ssq * r + 1.0;
    scale = a;
  } else {
    // Intended: a == scale adds exactly 1 without dividing (the same for finite a), so
    // that two infinite elements give infinity rather than inf / inf = NaN.
    const double r = a == scale ? 1.0 : a / scale;
    ssq = ssq + r * r;
  }
}

bool IsNan(double v) {
  return std::isnan(v);
}
bool IsNan(int) {
  return false;
}

// BinSearch for both element types; see the header for the result.
template <class T>
int BinSearchImpl(const std::vector<T> & x, int first, int last, T key, bool upper) {
  if (first < 0 || first > last || static_cast<std::size_t>(last) >= x.size()) return -2;
  if (IsNan(key)) return -1;
  if (key > x[last] || (upper && key == x[last])) return -1;
  if (first > 0 && (key < x[first - 1] || (!upper && key == x[first - 1]))) return -1;
  if (first == last) return first;
  int lo = first;
  int hi = last - 1;
  int mid = first;
  while (lo <= hi) {
    mid = lo + (hi - lo) / 2;  // (lo + hi) / 2 without the overflow
    if (x[mid] == key) return upper ? mid + 1 : mid;
    if (x[mid] < key) {
      lo = mid + 1;
    } else {
      hi = mid - 1;
    }
  }
  return x[mid] > key ? mid : mid + 1;
}

// The two largest elements other than NaN (and, with skipMiss, other than kMiss).
void TwoLargest(const std::vector<double> & x, bool skipMiss, double & a, double & b) {
  a = kMiss;
  b = kMiss;
  int found = 0;
  for (const double v : x) {
    if (std::isnan(v) || (skipMiss && v == kMiss)) continue;
    if (found == 0) {
      a = v;
    } else if (found == 1) {
      if (v > a) {
        b = a;
        a = v;
      } else {
        b = v;
      }
    } else if (v > a) {
      b = a;
      a = v;
    } else if (v > b) {
      b = v;
    }
    if (found < 2) ++found;
  }
}

}  // namespace

double ZRMathFun::DASum(int n, const std::vector<double> & x, int stride, int start) {
  return SumWalk(MakeWalk(n, start, stride, x.size()), x.data(),
                 [](double v) { return std::fabs(v); });
}

void ZRMathFun::DLoad(int n, double a, std::vector<double> & x, int start, int stride) {
  if (start < 0) return;
  UpdateWalk(MakeWalk(n, start, stride, x.size()), x.data(), [a](double) { return a; });
}

void ZRMathFun::DScal(int n, double a, std::vector<double> & x, int start, int stride) {
  UpdateWalk(MakeWalk(n, start, stride, x.size()), x.data(), [a](double v) { return a * v; });
}

double ZRMathFun::DSum(int n, const std::vector<double> & x, int stride) {
  if (n < 1 || x.empty()) return 0.0;
  if (stride == 0) return static_cast<double>(n) * x[0];
  return SumWalk(MakeWalk(n, 0, stride, x.size()), x.data(), [](double v) { return v; });
}

double ZRMathFun::DDot(int n, const std::vector<double> & x, int startX, int strideX,
                       const std::vector<double> & y, int startY, int strideY) {
  Walk wx = MakeWalk(n, startX, strideX, x.size());
  Walk wy = MakeWalk(n, startY, strideY, y.size());
  Intersect(wx, wy);
  double sum = 0.0;
  if (wx.Empty()) return sum;
  if (wx.step == 1 && wy.step == 1) {
    const double * p = x.data() + wx.At(wx.lo);
    const double * q = y.data() + wy.At(wy.lo);
    const Index m = wx.hi - wx.lo;
    Index i = 0;
    for (; i + 4 <= m; i += 4) {
      sum = sum + p[i] * q[i] + p[i + 1] * q[i + 1] + p[i + 2] * q[i + 2] + p[i + 3] * q[i + 3];
    }
    for (; i < m; ++i) sum = sum + p[i] * q[i];
  } else {
    for (Index i = wx.lo; i < wx.hi; ++i) sum = sum + x[wx.At(i)] * y[wy.At(i)];
  }
  return sum;
}

void ZRMathFun::Daxpy(int n, double a, const std::vector<double> & x, int startX, int strideX,
                      std::vector<double> & y, int startY, int strideY) {
  if (a == 0.0) return;
  Walk wx = MakeWalk(n, startX, strideX, x.size());
  Walk wy = MakeWalk(n, startY, strideY, y.size());
  Intersect(wx, wy);
  if (wx.Empty()) return;
  // Element by element in walk order, so that x and y may overlap as in the plain loop.
  if (wx.step == 1 && wy.step == 1) {
    const double * p = x.data() + wx.At(wx.lo);
    double * q = y.data() + wy.At(wy.lo);
    const Index m = wx.hi - wx.lo;
    Index i = 0;
    for (; i + 4 <= m; i += 4) {
      q[i] = q[i] + a * p[i];
      q[i + 1] = q[i + 1] + a * p[i + 1];
      q[i + 2] = q[i + 2] + a * p[i + 2];
      q[i + 3] = q[i + 3] + a * p[i + 3];
    }
    for (; i < m; ++i) q[i] = q[i] + a * p[i];
  } else {
    for (Index i = wx.lo; i < wx.hi; ++i) y[wy.At(i)] = y[wy.At(i)] + a * x[wx.At(i)];
  }
}

double ZRMathFun::DNrm2(int n, const std::vector<double> & x, int start, int stride) {
  const Walk w = MakeWalk(n, start, stride, x.size());
  if (w.Empty()) return 0.0;
  if (n == 1) return std::fabs(x[w.At(0)]);
  double scale = 0.0;
  double ssq = 1.0;
  if (w.step == 1) {
    const double * p = x.data() + w.At(w.lo);
    const Index m = w.hi - w.lo;
    Index i = 0;
    for (; i + 4 <= m; i += 4) {
      ScaledSquare(p[i], scale, ssq);
      ScaledSquare(p[i + 1], scale, ssq);
      ScaledSquare(p[i + 2], scale, ssq);
      ScaledSquare(p[i + 3], scale, ssq);
    }
    for (; i < m; ++i) ScaledSquare(p[i], scale, ssq);
  } else {
    for (Index i = w.lo; i < w.hi; ++i) ScaledSquare(x[w.At(i)], scale, ssq);
  }
  return std::sqrt(ssq) * scale;
}

void ZRMathFun::IIAxpy(int n, double a, const std::vector<double> & x, int startX, int strideX,
                       std::vector<double> & y, int startY, int strideY) {
  if (a == 0.0) return;
  ForPacked2(n, startX, strideX, x.size(), startY, strideY, y.size(),
             [&](Index ix, Index iy) { y[iy] = y[iy] + a * x[ix]; });
}

double ZRMathFun::IIDot(int n, const std::vector<double> & x, int startX, int strideX,
                        const std::vector<double> & y, int startY, int strideY) {
  double sum = 0.0;
  ForPacked2(n, startX, strideX, x.size(), startY, strideY, y.size(),
             [&](Index ix, Index iy) { sum = sum + x[ix] * y[iy]; });
  return sum;
}

void ZRMathFun::IIInit(int n, double a, std::vector<double> & x, int start, int stride) {
  if (start < 0) return;
  ForPacked(n, start, stride, x.size(), [&](Index i) { x[i] = a; });
}

void ZRMathFun::IIScal(int n, double a, std::vector<double> & x, int start, int stride) {
  ForPacked(n, start, stride, x.size(), [&](Index i) { x[i] = a * x[i]; });
}

void ZRMathFun::LRZero(std::vector<double> & x, int start, int n) {
  const Walk w = MakeWalk(n, start, 1, x.size());
  if (w.Empty()) return;
  std::fill(x.begin() + w.At(w.lo), x.begin() + w.At(w.hi - 1) + 1, 0.0);
}

void ZRMathFun::LTGltl(int n, std::vector<double> & l) {
  if (n < 1) return;
  const Index order = n;
  if (static_cast<Index>(l.size()) < order * (order + 1) / 2) return;
  double * p = l.data();
  // Column j ascending, rows i >= j ascending: (L'L)(i, j) reads L(k, i) and L(k, j) for
  // k >= i only, which no earlier result has overwritten.
  for (Index j = 0; j < order; ++j) {
    for (Index i = j; i < order; ++i) {
      const Index rowI = i * (i + 1) / 2;
      Index rowK = rowI;
      double sum = 0.0;
      for (Index k = i; k < order; ++k) {
        sum = sum + p[rowK + i] * p[rowK + j];
        rowK += k + 1;
      }
      p[rowI + j] = sum;
    }
  }
}

double ZRMathFun::RVD(const std::vector<double> & l, int n, int row, const std::vector<double> & x,
                      int stride) {
  if (n < 1 || row < 0 || row >= n) return kMiss;
  const Index order = n;
  const Index r = row;
  if (static_cast<Index>(l.size()) < order * (order + 1) / 2) return kMiss;
  const Index reach = (order - 1) * std::abs(static_cast<Index>(stride));
  if (static_cast<Index>(x.size()) <= reach) return kMiss;
  const Walk w = MakeWalk(n, 0, stride, x.size());  // the whole walk is inside
  const double * pl = l.data();
  const double * px = x.data();
  double sum = 0.0;
  // Along the stored row: S(row, j) for j <= row.
  const double * lr = pl + r * (r + 1) / 2;
  if (w.step == 1) {
    Index j = 0;
    for (; j + 4 <= r + 1; j += 4) {
      sum = sum + lr[j] * px[j] + lr[j + 1] * px[j + 1] + lr[j + 2] * px[j + 2] +
            lr[j + 3] * px[j + 3];
    }
    for (; j <= r; ++j) sum = sum + lr[j] * px[j];
  } else {
    for (Index j = 0; j <= r; ++j) sum = sum + lr[j] * px[w.At(j)];
  }
  // Down the column: S(i, row) at i(i+1)/2 + row for i > row.
  Index idx = (r + 1) * (r + 2) / 2 + r;
  for (Index i = r + 1; i < order; ++i) {
    sum = sum + pl[idx] * px[w.At(i)];
    idx += i + 1;
  }
  return sum;
}

double ZRMathFun::VSV(const std::vector<double> & s, int n, const std::vector<double> & x) {
  if (n == 0) return 0.0;
  if (n < 0) return kMiss;
  const Index order = n;
  if (static_cast<Index>(x.size()) < order ||
      static_cast<Index>(s.size()) < order * (order + 1) / 2) {
    return kMiss;
  }
  const double * px = x.data();
  const double * row = s.data();
  double q = 0.0;
  // x'Sx = sum_i x_i (2 sum_{j<i} S(i, j) x_j + S(i, i) x_i), one stored row at a time.
  for (Index i = 0; i < order; row += i + 1, ++i) {
    double t = 0.0;
    Index j = 0;
    for (; j + 4 <= i; j += 4) {
      t = t + row[j] * px[j] + row[j + 1] * px[j + 1] + row[j + 2] * px[j + 2] +
          row[j + 3] * px[j + 3];
    }
    for (; j < i; ++j) t = t + row[j] * px[j];
    q = q + px[i] * (t + t + row[i] * px[i]);
  }
  return q;
}

int ZRMathFun::BinSearch(const std::vector<double> & x, int first, int last, double key,
                         bool upper) {
  return BinSearchImpl(x, first, last, key, upper);
}

int ZRMathFun::BinSearch(const std::vector<int> & x, int first, int last, int key, bool upper) {
  return BinSearchImpl(x, first, last, key, upper);
}

void ZRMathFun::FindTwoLargest(const std::vector<double> & x, double & a, double & b) {
  TwoLargest(x, /*skipMiss=*/false, a, b);
}

void ZRMathFun::FindTwoLargestNonMiss(const std::vector<double> & x, double & a, double & b) {
  TwoLargest(x, /*skipMiss=*/true, a, b);
}

double ZRMathFun::VMaxRelDiff(const std::vector<double> & x, const std::vector<double> & y,
                              double d) {
  const double floor = d == 0.0 ? kRelDiffFloor : std::fabs(d);
  const std::size_t m = std::min(x.size(), y.size());
  double worst = 0.0;
  for (std::size_t i = 0; i < m; ++i) {
    const double r = std::fabs(x[i] - y[i]) / (std::fabs(y[i]) + floor);
    if (std::isnan(r)) return r;
    worst = std::max(worst, r);
  }
  return worst;
}

double ZRMathFun::VNrm1Diff(const std::vector<double> & x, const std::vector<double> & y) {
  const std::size_t m = std::min(x.size(), y.size());
  double worst = 0.0;
  for (std::size_t i = 0; i < m; ++i) {
    const double r = std::fabs(x[i] - y[i]);
    if (std::isnan(r)) return r;
    worst = std::max(worst, r);
  }
  return worst;
}

bool ZRMathFun::QLReps(double x, double scale) {
  return scale > 0.0 && std::fabs(x) < scale * kEps;
}

double ZRMathFun::ReplaceIfSmall(double x, double floor) {
  if (!(std::fabs(x) < floor)) return x;
  return x >= 0.0 ? floor : -floor;
}

bool ZRMathFun::IsValidDouble(double x) {
  return x >= -kMaxDouble && x <= kMaxDouble;
}

double ZRMathFun::Digamma(double x) {
  if (!(x > kPolygammaLowest)) return kMiss;
  // Intended: one term past the pole; drops (pi^2/6) x, 1.6e-10 relative at the switch.
  if (x < kDigammaSmall) return -kEulerGamma - 1.0 / x;
  const double y = x + kShift;
  const double w = 1.0 / (y * y);
  double series = 0.0;
  for (const double c : kDigammaSeries) series = (series + c) * w;
  // Intended: psi(x) = psi(x + 10) - sum 1/(x + j). The shift terms use x + j, not
  // (x + 10) - k: the same numbers without the rounding of x + 10, which near x = 1e-5
  // would cost 1e-10 relative. Smallest term first.
  double shift = 0.0;
  for (int j = kShift - 1; j >= 0; --j) shift = shift + 1.0 / (x + j);
  return std::log(y) - 0.5 / y + series - shift;
}

double ZRMathFun::Trigamma(double x) {
  if (!(x > kPolygammaLowest)) return kMiss;
  // Intended: leading term only; drops pi^2/6, 1.6e-8 relative at the switch.
  if (x < kTrigammaSmall) return 1.0 / (x * x);
  const double y = x + kShift;
  const double w = 1.0 / (y * y);
  double series = 0.0;
  for (const double c : kTrigammaSeries) series = series * w + c;
  // psi'(x) = psi'(x + 10) + sum 1/(x + j)^2, with x + j as in Digamma. The shift terms
  // are summed apart, smallest first, and join the series once: added one by one to a
  // large series part they would round ten times.
  double shift = 0.0;
  for (int j = kShift - 1; j >= 0; --j) {
    const double t = x + j;
    shift = shift + 1.0 / (t * t);
  }
  return (0.5 * w + shift) + series / y;
}

}  // namespace ZRMath_920
