// Small helpers shared by the LINPACK translation units: 1-based column-major addressing,
// Fortran's dsign, the scaling of determinants by powers of ten, and the symmetric
// classes' determinant through their Cholesky factor. Not installed.
#ifndef ZRCOMMON920R_MATH_MATRIX_DETAIL_LINPACK_UTIL_H
#define ZRCOMMON920R_MATH_MATRIX_DETAIL_LINPACK_UTIL_H

#include <cmath>
#include <cstddef>

namespace ZRMath_920 {
namespace linpack_detail {

// Base of a determinant's exponent: det = det[0] * 10^det[1].
constexpr double kDetBase = 10.0;

// Element (i, j), counted from 1, of a column-major array with leading dimension ld.
inline double * At(double * const a, int ld, int i, int j) {
  return a + (static_cast<std::ptrdiff_t>(j) - 1) * ld + (i - 1);
}

inline int Min(int a, int b) {
  return a < b ? a : b;
}
inline int Max(int a, int b) {
  return a > b ? a : b;
}

// Fortran dsign(a, b): |a| with the sign of b.
inline double Sign(double a, double b) {
  return b >= 0.0 ? std::fabs(a) : -std::fabs(a);
}

// Brings det[0] into 1 <= |det[0]| < 10 by powers of ten counted in det[1]. Returns false
// when det[0] is 0.0, where the published loop exits. Intended: it also stops on an
// infinite or NaN det[0], where the published rescaling loops never end.
inline bool NormaliseDet(double * const det) {
  if (det[0] == 0.0 || !std::isfinite(det[0])) return false;
  while (std::fabs(det[0]) < 1.0) {
    det[0] = kDetBase * det[0];
    det[1] = det[1] - 1.0;
  }
  while (std::fabs(det[0]) >= kDetBase) {
    det[0] = det[0] / kDetBase;
    det[1] = det[1] + 1.0;
  }
  return true;
}

// The determinant of a symmetric matrix m through the Cholesky factor of a copy: false
// for an empty m, a null det, a bad tol or a copy that cannot be made; det[0] = det[1] =
// 0.0 when a pivot is refused; otherwise the squared product of the factor's diagonal,
// normalised. M is a symmetric matrix class with LTChol(tol, minPivot, check) and
// LTDetInverse(det, job).
template <typename M>
bool CholeskyDeterminant(const M & m, double tol, double * const det) {
  if (m.GetNRows() < 1 || det == nullptr || !(tol >= 0.0)) return false;
  M work(m);
  if (!work.IsValidMatrix()) return false;
  double minPivot = 0.0;
  if (work.LTChol(tol, minPivot, false) == -1) return false;
  if (minPivot == 0.0) {
    det[0] = det[1] = 0.0;
    return true;
  }
  work.LTDetInverse(det, 1);
  det[0] *= det[0];
  det[1] *= 2.0;
  NormaliseDet(det);
  return true;
}

}  // namespace linpack_detail
}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_MATRIX_DETAIL_LINPACK_UTIL_H
