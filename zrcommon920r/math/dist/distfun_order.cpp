// ZRDistFun: order-based statistics of frequency tables: the percentile of grouped data
// and the order-statistic confidence interval for the median.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/dist/distfun.h"

namespace ZRMath_920 {
namespace {

constexpr double kMiss = ZRCommon_920::kSysMisValue;

// Linear interpolation between the limits lower and upper of a class whose cumulative
// weights are cumLo and cumHi at its ends; exactly lower where c == cumLo, miss for 0 / 0.
double Interpolate(double c, double cumLo, double cumHi, double lower, double upper) {
  const double den = cumHi - cumLo;
  if (den == 0.0) return kMiss;
  const double f = (c - cumLo) / den;
  return f == 0.0 ? lower : (1.0 - f) * lower + f * upper;
}

// Walk of classes [lower[i], upper[i]] with cumulative cum[i] at each upper end: the first
// class whose cumulative reaches c (its upper limit when exactly c), status 2 beyond.
void WalkClasses(double c, const std::vector<double> & lower, const std::vector<double> & upper,
                 const std::vector<double> & cum, double & result, std::int32_t & status) {
  if (c < 0.0) {
    status = 1;
    return;
  }
  double prev = 0.0;
  for (std::size_t i = 0; i < cum.size(); ++i) {
    if (cum[i] == c) {
      result = upper[i];
      return;
    }
    if (cum[i] > c) {
      result = Interpolate(c, prev, cum[i], lower[i], upper[i]);
      return;
    }
    prev = cum[i];
  }
  status = 2;
}

}  // namespace

// Percentile of grouped data; see the declaration.
void ZRDistFun::GPTile(std::int32_t n, double pct, const std::vector<double> & values,
                       const std::vector<double> & freqs, const std::vector<double> & bounds,
                       std::int32_t method, double & result, std::int32_t & status) {
  result = kMiss;
  status = -1;
  if (n < 2) return;
  const std::size_t nn = static_cast<std::size_t>(n);
  if (values.size() < nn || freqs.size() < nn || std::isnan(pct)) return;
  if (method == 1 && bounds.empty()) return;
  if (method >= 2 && bounds.size() < static_cast<std::size_t>(method)) return;
  status = 0;
  double total = 0.0;
  for (std::size_t i = 0; i < nn; ++i) total += freqs[i];
  const double c = total * pct / 100.0;

  if (method <= 0) {  // each class a point, half its frequency at its value
    std::vector<double> mid(nn);
    double cum = 0.0;
    for (std::size_t i = 0; i < nn; ++i) {
      mid[i] = cum + 0.5 * freqs[i];
      cum += freqs[i];
    }
    if (mid[0] > c) {
      status = 1;
      return;
    }
    if (mid[nn - 1] < c) {
      status = 2;
      return;
    }
    for (std::size_t i = 1; i < nn; ++i) {
      if (c < mid[i]) {
        result = Interpolate(c, mid[i - 1], mid[i], values[i - 1], values[i]);
        return;
      }
    }
    result = values[nn - 1];  // c is the last mid-cumulative
    return;
  }

  std::vector<double> lower, upper, cum;
  if (method == 1) {  // equal widths bounds[0] centred on the values
    const double half = bounds[0] * 0.5;
    double run = 0.0;
    for (std::size_t i = 0; i < nn; ++i) {
      run += freqs[i];
      lower.push_back(values[i] - half);
      upper.push_back(values[i] + half);
      cum.push_back(run);
    }
  } else {  // explicit upper limits bounds[0..method-1], one more class mirrored beyond
    const std::size_t nb = static_cast<std::size_t>(method);
    std::vector<double> limits(bounds.begin(), bounds.begin() + static_cast<std::ptrdiff_t>(nb));
    const double last = limits.back();
    for (std::size_t i = 0; i < nn; ++i) {
      if (values[i] > last) {
        limits.push_back(2.0 * values[i] - last);
        break;
      }
    }
    // The lower end of the first class mirrors its limit about the smallest value.
    double prevLimit = values[0] <= limits[0] ? 2.0 * values[0] - limits[0] : values[0];
    for (double limit : limits) {
      double run = 0.0;
      for (std::size_t i = 0; i < nn; ++i)
        if (values[i] < limit) run += freqs[i];
      lower.push_back(prevLimit);
      upper.push_back(limit);
      cum.push_back(run);
      prevLimit = limit;
    }
  }
  WalkClasses(c, lower, upper, cum, result, status);
  if (status == 2 && c == total && !upper.empty() && cum.back() == total) {
    status = 0;
    result = upper.back();
  }
}

// Confidence interval for the median; see the declaration.
void ZRDistFun::Mednci(std::int32_t n, const std::vector<double> & values,
                       const std::vector<double> & freqs, double total, double level,
                       bool wantCoverage, double & lower, double & upper, double & coverage) {
  lower = upper = coverage = kMiss;
  if (n < 1) return;
  const std::size_t nn = static_cast<std::size_t>(n);
  if (values.size() < nn || freqs.size() < nn) return;
  if (total == 2.0) {
    lower = values[0];
    upper = values[nn - 1];
    coverage = 100.0;
    return;
  }
  if (!(total >= 2.0)) return;
  std::int32_t err = 0;
  const double q = IdfBin(0.5 - level / 200.0, total, 0.5, err);
  if (err != 0) return;
  if (q < 0.0) {
    lower = values[0];
    upper = values[nn - 1];
    coverage = 100.0;
    return;
  }

  double r = q + 1.0;
  if (r < total) {
    double cum = 0.0;
    lower = values[nn - 1];  // reached by the last class if the first n - 1 fall short
    for (std::size_t i = 0; i + 1 < nn; ++i) {
      cum += freqs[i];
      if (cum >= r) {
        lower = values[i];
        break;
      }
    }
  } else {
    r = total;
    lower = values[nn - 1];
  }

  double r2 = total - q;
  if (!(r2 > 1.0)) {
    r2 = 1.0;
    upper = values[0];
  } else {
    double remaining = total;
    upper = values[0];  // reached by the first class if the frequencies fall short
    for (std::size_t i = nn; i-- > 0;) {
      remaining -= freqs[i];
      if (r2 > remaining) {
        upper = values[i];
        break;
      }
    }
  }

  if (!wantCoverage) return;
  const double v = cdfbet(0.5, r, r2, err);
  if (err != 0) return;
  coverage = (v - 0.5) * 200.0;
  if (coverage < 0.0) coverage = 0.0;
}

}  // namespace ZRMath_920
