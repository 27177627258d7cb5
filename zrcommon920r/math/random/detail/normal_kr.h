// The standard normal draw shared by ZRRNGNormal and ZRRandomValues, on any source of
// uniforms. Not installed.
#ifndef ZRCOMMON920R_MATH_RANDOM_DETAIL_NORMAL_KR_H
#define ZRCOMMON920R_MATH_RANDOM_DETAIL_NORMAL_KR_H

#include <algorithm>
#include <cmath>

#include "zrcommon920r/common/numconst.h"

namespace ZRMath_920 {
namespace random_detail {

// Rejections allowed in one region before a draw gives up. A working source needs more
// than 20 with probability below 1e-20; only a degenerate one (a constant, say) gets here.
constexpr int kMaxRegionTries = 1000;

constexpr double kKrXi = 2.216035867166471;
constexpr double kKrA = 0.479727404222441;
constexpr double kKrTail = 2.455407482284127;  // xi^2 / 2

// Kinderman and Ramage's auxiliary function: the normal density less the triangular
// density 0.180025191068563 (xi - |x|) under it, limited to 0 from below; 0 at x = 0.
inline double RVAuxF(double x) {
  if (x == 0.0) return 0.0;
  const double f = std::exp(x * (-0.5) * x) * 0.3989422804014327 -
                   0.180025191068563 * std::max(0.0, kKrXi - std::fabs(x));
  return f < 0.0 ? 0.0 : f;
}

// Standard normal variate by Kinderman, A. J. and Ramage, J. G. (1976), Computer
// generation of normal random variables, JASA 71, 893-896: the first uniform u picks the
// region (triangle, three wedges, tail); the wedges draw pairs (a, b) until accepted and
// negate z when a >= b. next() gives the next uniform. The system-missing value after
// kMaxRegionTries rejections in one region.
template <class Next>
double StdNormalKR(Next && next) {
  const double u = next();
  if (u < 0.884070402298758) return (next() + u * 1.13113163544418) * kKrXi - kKrXi;
  double a = 0.0, b = 0.0, z = 0.0;
  int tries = 0;
  if (u < 0.911312780288703) {
    for (;; ++tries) {
      if (tries == kMaxRegionTries) return ZRCommon_920::kSysMisValue;
      a = next();
      b = next();
      z = kKrA - 0.59550713801594 * std::min(a, b);
      if (std::max(a, b) <= 0.805577924423817) break;
      // Intended: a negative z is not tested but drawn again.
      if (z >= 0.0 && std::fabs(a - b) * 0.053377549506886 <= RVAuxF(z)) break;
    }
  } else if (u < 0.958720824790463) {
    for (;; ++tries) {
      if (tries == kMaxRegionTries) return ZRCommon_920::kSysMisValue;
      a = next();
      b = next();
      z = 1.10547366102207 * std::min(a, b) + kKrA;
      if (std::max(a, b) <= 0.87283497667179) break;
      if (std::fabs(a - b) * 0.049264496373128 <= RVAuxF(z)) break;
    }
  } else if (u < 0.973310954173898) {
    for (;; ++tries) {
      if (tries == kMaxRegionTries) return ZRCommon_920::kSysMisValue;
      a = next();
      b = next();
      z = kKrXi - 0.63083480192196 * std::min(a, b);
      if (std::max(a, b) <= 0.755591531667601) break;
      if (std::fabs(a - b) * 0.034240503750111 <= RVAuxF(z)) break;
    }
  } else {
    double t = 0.0;
    for (;; ++tries) {  // the tail beyond xi, by Marsaglia's method
      if (tries == kMaxRegionTries) return ZRCommon_920::kSysMisValue;
      a = next();
      const double v = next();
      t = kKrTail - std::log(v);
      if (a * a * t <= kKrTail) break;
    }
    z = std::sqrt(2.0 * t);
    return u >= 0.986655477086949 ? -z : z;
  }
  return a >= b ? -z : z;
}

}  // namespace random_detail
}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_RANDOM_DETAIL_NORMAL_KR_H
