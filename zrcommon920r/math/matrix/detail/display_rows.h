// The full-matrix display shared by the matrix classes. Not installed.
#ifndef ZRCOMMON920R_MATH_MATRIX_DETAIL_DISPLAY_ROWS_H
#define ZRCOMMON920R_MATH_MATRIX_DETAIL_DISPLAY_ROWS_H

#include <cstdio>
#include <string>
#include <vector>

#include "zrcommon920r/display/display.h"

namespace ZRMath_920 {
namespace matrix_detail {

// One line "row i: " and the whole of row i, read by m.GetRow(i, row), for each of the
// first nRows rows; a row that cannot be read shows empty.
template <typename M>
void DisplayFullRows(const M & m, int nRows) {
  char number[16];
  std::vector<double> row;
  for (int i = 0; i < nRows; ++i) {
    std::snprintf(number, sizeof number, "%d", i);
    if (!m.GetRow(i, row)) row.clear();
    ZRDisplay_920::DisplayDV(std::string("row ") + number + ": ", row, true);
  }
}

}  // namespace matrix_detail
}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_MATRIX_DETAIL_DISPLAY_ROWS_H
