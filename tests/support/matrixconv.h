// Small conversions shared by the dense matrix tests: packed triangles, triangles given by
// rows, and rectangular matrices to and from column-major test matrices.
#ifndef ZRCOMMON920R_TESTS_SUPPORT_MATRIXCONV_H
#define ZRCOMMON920R_TESTS_SUPPORT_MATRIXCONV_H

#include <vector>

#include "support/colmajor.h"
#include "zrcommon920r/math/matrix/rectmatrix.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace zrtest {

// The packed lower triangle of s, by rows.
inline std::vector<double> Packed(const ZRMath_920::ZRSymMatrix & s) {
  std::vector<double> v(static_cast<std::size_t>(s.GetNRows()) * (s.GetNRows() + 1) / 2);
  for (std::size_t k = 0; k < v.size(); ++k) v[k] = s.GetElem(static_cast<int>(k));
  return v;
}

// The symmetric matrix of order n whose packed lower triangle, by rows, starts with lower.
inline ZRMath_920::ZRSymMatrix SymFromRows(int n, const std::vector<double> & lower) {
  ZRMath_920::ZRSymMatrix s(n, true);
  for (std::size_t k = 0; k < lower.size(); ++k) s.SetElem(static_cast<int>(k), lower[k]);
  return s;
}

inline ZRMath_920::ZRRectMatrix ToRect(const ColMatrix & a) {
  ZRMath_920::ZRRectMatrix r(a.rows, a.cols, true);
  for (int i = 0; i < a.rows; ++i)
    for (int j = 0; j < a.cols; ++j) r.SetElem(i, j, a(i, j));
  return r;
}

inline ColMatrix FromRect(const ZRMath_920::IZRRectMatrix & r) {
  ColMatrix a(r.GetNRows(), r.GetNCols());
  for (int i = 0; i < a.rows; ++i)
    for (int j = 0; j < a.cols; ++j) a(i, j) = r.GetElem(i, j);
  return a;
}

}  // namespace zrtest

#endif  // ZRCOMMON920R_TESTS_SUPPORT_MATRIXCONV_H
