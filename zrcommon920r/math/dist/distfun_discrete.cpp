// ZRDistFun: the binomial, negative binomial and hypergeometric distributions, through the
// log-binomial coefficient and the pmfs' term-to-term recurrences.
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/dist/distfun.h"

namespace ZRMath_920 {
namespace {

constexpr double kMiss = ZRCommon_920::kSysMisValue;
constexpr double kExpUnderflow = -708.0;
constexpr double kExpUnderflowTight = -708.39;
constexpr double kExpOverflow = 709.0;
constexpr double kInt32Max = 2147483647.0;
constexpr double kIdfBinStartTol = 2.842170943040401e-14;  // 2^-45

// AS 152's limits: the product route up to this population, the normal from above the
// second, and the scale that keeps the tail terms clear of underflow.
constexpr double kHyperProductMax = 1000.0;
constexpr double kHyperNormalMin = 10000.0;
constexpr double kHyperNormalRatio = 16.0;
constexpr double kHyperScale = 1e35;
constexpr double kLogHyperScale = 80.59047825479832;  // log(1e35)

bool IsWhole(double v) {
  return std::floor(v) == v;
}

}  // namespace

// Binomial distribution; see the declaration for method, accuracy and failure values.
double ZRDistFun::CdfBin(double x, double n, double p, std::int32_t & err) {
  err = 0;
  if (!IsWhole(n)) {  // NaN too
    err = 3;
    return kMiss;
  }
  if (!(n >= 1.0 && n <= kInt32Max && p >= 0.0 && p <= 1.0) || std::isnan(x)) {
    err = 1;
    return kMiss;
  }
  const double k = std::floor(x);
  if (p == 0.0) return k >= 0.0 ? 1.0 : 0.0;
  if (p == 1.0) return k >= n ? 1.0 : 0.0;
  if (k < 0.0) return 0.0;
  if (k == 0.0) {
    const double t = std::log(1.0 - p) * n;
    return t < kExpUnderflow ? 0.0 : std::exp(t);
  }
  if (k >= n) return 1.0;

  // n <= 2^31 - 1 and 0 < p < 1 keep both conversions in range.
  const std::int64_t m = static_cast<std::int64_t>(p * (n + 1.0));
  const std::int64_t ik = static_cast<std::int64_t>(k);
  const std::int64_t j = std::min(ik, m);
  const double dj = static_cast<double>(j);
  double logf;
  if (j == 0) {
    logf = std::log(1.0 - p) * n;
  } else if (dj == n) {
    logf = std::log(p) * n;
  } else {
    const double c = dnlgam(n + 1.0) - dnlgam(dj + 1.0) - dnlgam(n + 1.0 - dj);
    logf = p == 0.5 ? std::log(0.5) * n + c : std::log(1.0 - p) * (n - dj) + (std::log(p) * dj + c);
  }

  if (!(logf < kExpUnderflow)) {
    const double fj = std::exp(logf);
    double f = fj, s = fj;
    const double odds = (1.0 - p) / p;
    for (std::int64_t i = j - 1; i >= 0; --i) {
      const double di = static_cast<double>(i);
      f *= (di + 1.0) / (n - di) * odds;
      const double next = s + f;
      if (!(next > s)) break;
      s = next;
    }
    if (ik > m) {
      f = fj;  // j == m here: start from the pmf at m
      const double ratio = p / (1.0 - p);
      for (std::int64_t i = m + 1; i <= ik; ++i) {
        const double di = static_cast<double>(i);
        f *= (n + 1.0 - di) / di * ratio;
        const double next = s + f;
        if (!(next > s)) break;
        s = next;
      }
    }
    return std::min(s, 1.0);
  }

  // Peizer-Pratt. Intended: + 1 - 1, in this order, sheds the low bits of d.
  const double d = 0.5 / n + (k / n - p) + 1.0 - 1.0;
  if (d == 0.0) return 0.5;
  const double v = d + p, w = 1.0 - v;
  const double q = std::log(w / (1.0 - p)) * w + std::log(v / p) * v;
  if (!(q > 0.0)) return 0.5;
  const double z = (((((1.0 - p) / (k + 1.0) - p / (n - k)) + (0.5 - p) / (n + 1.0)) / (50.0 * n)) +
                    ((2.0 - p) / (3.0 * n) + (k / n - p))) /
                   std::fabs(d) * std::sqrt(2.0 * q) * (n / std::sqrt(n + 1.0 / 6.0));
  return prbnrm(z);
}

// Binomial quantile; see the declaration.
double ZRDistFun::IdfBin(double prob, double n, double p, std::int32_t & err) {
  err = 0;
  if (!IsWhole(n)) {
    err = 1;
    return kMiss;
  }
  if (!(n >= 1.0 && n <= kInt32Max && p >= 0.0 && p <= 1.0 && prob >= 0.0 && prob <= 1.0)) {
    err = 2;
    return kMiss;
  }
  if (prob == 0.0) return p >= 1.0 ? n - 1.0 : -1.0;
  if (prob == 1.0) return p > 0.0 ? n : 0.0;
  // The stepping below divides by p and 1 - p; at p == 1 every k < n has cumulative 0.
  if (p == 1.0) return n - 1.0;

  const double z = probit(prob);
  double k = std::floor(z * std::sqrt(n * p * (1.0 - p)) + n * p - 0.5);
  k = std::max(0.0, std::min(k, n));
  std::int32_t e = 0;
  double c = CdfBin(k, n, p, e);
  if (std::fabs(c - prob) < kIdfBinStartTol) return k;
  double f = PdfBin(k, n, p, e);
  if (c > prob) {
    for (;;) {
      c -= f;
      k -= 1.0;
      // Intended: stopping at k == 0 returns 0 even if CdfBin(0) is still above prob.
      if (!(c > prob) || !(k > 0.0)) return k;
      f = ((1.0 - p) / p * f) * ((k + 1.0) / (n - k));
      if (f == 0.0) return 0.0;  // c can no longer fall: the walk would end at k == 0
    }
  }
  for (;;) {
    f = (n - k) / (k + 1.0) * (p / (1.0 - p) * f);
    c += f;
    if (c > prob || k > n) return std::min(k, n);
    if (f == 0.0) return n;  // c can no longer rise: the walk would run out at n
    k += 1.0;
  }
}

// Binomial probability; see the declaration.
double ZRDistFun::PdfBin(double x, double n, double p, std::int32_t & err) {
  err = 0;
  if (!(p >= 0.0 && p <= 1.0 && n >= 1.0 && n < HUGE_VAL) || std::isnan(x)) {
    err = 1;
    return kMiss;
  }
  if (std::floor(x + 0.5) != x || x < 0.0 || x > n) return 0.0;
  if (p == 0.0) return x == 0.0 ? 1.0 : 0.0;
  if (p == 1.0) return x == n ? 1.0 : 0.0;
  if (x == n) return std::pow(p, n);
  if (x == 0.0) return std::pow(1.0 - p, n);
  std::int32_t e = 0;
  const double lb = dnlbnc(n, x, e);
  const double t = lb + std::log(p) * x + std::log(1.0 - p) * (n - x);
  if (e != 0 || !(t <= kExpOverflow)) {
    err = 2;
    return kMiss;
  }
  return t < kExpUnderflow ? 0.0 : std::exp(t);
}

// Negative binomial probability; see the declaration.
double ZRDistFun::PdfNegBin(double x, double r, double p, std::int32_t & err) {
  err = 0;
  if (!(p > 0.0 && p <= 1.0 && r >= 0.0 && r < HUGE_VAL) || std::isnan(x)) {
    err = 1;
    return kMiss;
  }
  if (std::floor(x + 0.5) != x || x < 0.0 || std::isinf(x)) return 0.0;
  if (p == 1.0) return x == 0.0 ? 1.0 : 0.0;
  if (x == 1.0) return r == 1.0 ? (1.0 - p) * p : std::pow(p, r) * ((1.0 - p) * r);
  if (r == 1.0) return std::pow(1.0 - p, x) * p;
  if (x == 0.0) return std::pow(p, r);
  if (r == 0.0) return 0.0;  // no successes to wait for: all mass at x == 0
  std::int32_t e = 0;
  // Below r = 1 the coefficient Gamma(x + r) / (x! Gamma(r)) has k = x above n = x + r - 1.
  const double lb =
      r < 1.0 ? dnlgam(x + r) - dnlgam(x + 1.0) - dnlgam(r) : dnlbnc(x + r - 1.0, x, e);
  const double t = lb + std::log(p) * r + std::log(1.0 - p) * x;
  if (e != 0 || !(t <= kExpOverflow)) {
    err = 2;
    return kMiss;
  }
  return t < kExpUnderflow ? 0.0 : std::exp(t);
}

// Hypergeometric probability; see the declaration.
double ZRDistFun::PdfHyper(std::int32_t x, std::int32_t total, std::int32_t sample,
                           std::int32_t successes) {
  if (!(sample >= 1 && sample <= total && successes >= 1 && successes <= total)) return kMiss;
  const std::int64_t lo = std::max<std::int64_t>(std::int64_t{sample} - total + successes, 0);
  if (x < lo || x > std::min(sample, successes)) return kMiss;
  std::int32_t e1 = 0, e2 = 0, e3 = 0;
  const double t = dnlbnc(double(total) - successes, double(sample) - x, e1) +
                   dnlbnc(successes, x, e2) - dnlbnc(total, sample, e3);
  return t < kExpUnderflowTight ? 0.0 : std::exp(t);
}

// Hypergeometric distribution; see the declaration. The working names follow the
// symmetry reductions: s the working sample, k the working successes, y the point.
double ZRDistFun::CDFHyper(double x, double total, double sample, double successes, int & err) {
  err = 0;
  if (!(total <= kInt32Max && sample >= 1.0 && successes >= 1.0 && sample <= total &&
        successes <= total) ||
      std::trunc(total) != total || std::trunc(sample) != sample ||
      std::trunc(successes) != successes || std::isnan(x)) {
    err = 1;
    return kMiss;
  }
  const double lo = std::max(sample - total + successes, 0.0);
  const double hi = std::min(sample, successes);
  // Intended: int(x) truncates toward zero, so x in (-1, 0) counts as 0.
  const double kx = std::trunc(x);
  if (kx < lo) return 0.0;
  if (kx >= hi) return 1.0;

  const double nn = total;
  if (nn > kHyperNormalMin) {
    const double r = successes / (total - successes);
    if (std::min(sample, total - sample) > kHyperNormalRatio * std::max(r, 1.0 / r)) {
      // Intended: the normal approximation even where the exact tail is affordable.
      const double mu = sample / total * successes;
      const double var = (total - sample) / (total - 1.0) * ((total - successes) / total) * mu;
      return prbnrm((kx - mu + 0.5) / std::sqrt(var));
    }
  }

  double s = sample, k = successes, y = kx;
  bool lower = true;  // P(X <= y) wanted; false: P(X >= y)
  if (std::min(k, nn - k) <= std::min(s, nn - s)) std::swap(s, k);
  if (s > nn * 0.5) {  // the unsampled part: k - X has the same law with nn - s draws
    s = nn - s;
    y = k - y;
    lower = false;
  }
  const double ylo = std::max(s - nn + k, 0.0), yhi = std::min(s, k);

  double base;
  if (nn <= kHyperProductMax) {
    // C(s, y) k^(y falling) (nn - k)^((s - y) falling) / nn^(s falling), factor by factor.
    base = 1.0;
    const int iy = static_cast<int>(y), is = static_cast<int>(s);
    for (int i = 0; i < iy; ++i) base *= (s - i) * (k - i) / ((y - i) * (nn - i));
    for (int i = iy; i < is; ++i) base *= (nn - k - (i - y)) / (nn - i);
  } else {
    std::int32_t e1 = 0, e2 = 0, e3 = 0;
    const double t = dnlbnc(nn - k, s - y, e1) + dnlbnc(k, y, e2) - dnlbnc(nn, s, e3);
    if (t > kExpOverflow) {
      err = 2;
      return kMiss;
    }
    base = t < kExpUnderflowTight ? 0.0 : std::exp(t);
  }
  double term;
  if (base == 0.0) {
    std::int32_t e1 = 0, e2 = 0, e3 = 0;
    const double t =
        dnlbnc(nn - k, s - y, e1) + dnlbnc(k, y, e2) - dnlbnc(nn, s, e3) + kLogHyperScale;
    term = t < kExpUnderflowTight ? 0.0 : std::exp(t);
  } else {
    term = base * kHyperScale;
  }

  // Sum the shorter tail, beyond the point, by the pmf's ratio of adjacent terms.
  double sum = 0.0;
  const double rest = nn - k - s;
  if (s * k / nn > y) {
    for (double i = y; i > ylo && term > 0.0; i -= 1.0) {
      term *= i * (rest + i) / ((k - i + 1.0) * (s - i + 1.0));
      sum += term;
    }
  } else {
    lower = !lower;
    for (double i = y; i < yhi && term > 0.0; i += 1.0) {
      term *= (k - i) * (s - i) / ((i + 1.0) * (rest + i + 1.0));
      sum += term;
    }
  }
  const double v = lower ? base + sum / kHyperScale : 1.0 - sum / kHyperScale;
  return std::max(0.0, std::min(v, 1.0));
}

}  // namespace ZRMath_920
