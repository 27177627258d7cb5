// Small helpers shared by the distribution sources: polynomial evaluation of the fitted
// tables and the test of a shape or degrees-of-freedom parameter. Not installed.
#ifndef ZRCOMMON920R_MATH_DIST_DETAIL_DISTFUN_UTIL_H
#define ZRCOMMON920R_MATH_DIST_DETAIL_DISTFUN_UTIL_H

#include <cmath>

namespace ZRMath_920 {
namespace distfun_detail {

// Polynomial with coefficients c, highest power first, at v (Horner's rule).
template <int N>
double Horner(const double (&c)[N], double v) {
  double s = c[0];
  for (int i = 1; i < N; ++i) s = s * v + c[i];
  return s;
}

// Whether a shape, rate or degrees of freedom is usable: above 0 and finite (NaN is not).
inline bool IsFinitePositive(double v) {
  return v > 0.0 && !std::isinf(v);
}

}  // namespace distfun_detail
}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_DIST_DETAIL_DISTFUN_UTIL_H
