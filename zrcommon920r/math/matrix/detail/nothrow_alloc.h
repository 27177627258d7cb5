// Sizing of matrix buffers that reports a failed allocation instead of throwing, so that
// no exception leaves a matrix class. Not installed.
#ifndef ZRCOMMON920R_MATH_MATRIX_DETAIL_NOTHROW_ALLOC_H
#define ZRCOMMON920R_MATH_MATRIX_DETAIL_NOTHROW_ALLOC_H

#include <cstddef>
#include <new>
#include <stdexcept>
#include <vector>

namespace ZRMath_920 {
namespace matrix_detail {

// Runs op() and answers false when it ran out of memory or past the container's limit.
template <typename Op>
bool NoThrow(Op op) {
  try {
    op();
  } catch (const std::bad_alloc &) {
    return false;
  } catch (const std::length_error &) {
    return false;
  }
  return true;
}

// Runs f() and gives its result, or fail when it ran out of memory or past a container's
// limit.
template <typename R, typename F>
R NoThrow(R fail, F && f) {
  try {
    return f();
  } catch (const std::bad_alloc &) {
    return fail;
  } catch (const std::length_error &) {
    return fail;
  }
}

// v.resize(n), v.assign(n, x) and dst = src without exceptions.
inline bool ResizeNoThrow(std::vector<double> & v, std::size_t n) {
  return NoThrow([&] { v.resize(n); });
}
inline bool AssignNoThrow(std::vector<double> & v, std::size_t n, double x) {
  return NoThrow([&] { v.assign(n, x); });
}
inline bool CopyNoThrow(std::vector<double> & dst, const std::vector<double> & src) {
  return NoThrow([&] { dst = src; });
}

}  // namespace matrix_detail
}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_MATRIX_DETAIL_NOTHROW_ALLOC_H
