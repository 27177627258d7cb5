// Column-major test matrices and LAPACK-style scaled residuals for the kernel tests.
#ifndef ZRCOMMON920R_TESTS_SUPPORT_COLMAJOR_H
#define ZRCOMMON920R_TESTS_SUPPORT_COLMAJOR_H

#include <cstddef>
#include <vector>

namespace zrtest {

// An m x n column-major matrix with leading dimension m.
struct ColMatrix {
  int rows = 0;
  int cols = 0;
  std::vector<double> a;
  ColMatrix() = default;
  ColMatrix(int m, int n) : rows(m), cols(n), a(static_cast<std::size_t>(m) * n, 0.0) {}
  double & operator()(int i, int j) { return a[static_cast<std::size_t>(j) * rows + i]; }
  double operator()(int i, int j) const { return a[static_cast<std::size_t>(j) * rows + i]; }
  double * data() { return a.data(); }
};

// Entries uniform on [-1, 1) from a fixed seed.
ColMatrix RandomGeneral(int m, int n, unsigned seed);
// A' A + n I for a random A: symmetric positive definite, well conditioned.
ColMatrix RandomSpdCol(int n, unsigned seed);
// Symmetric with entries uniform on [-1, 1): indefinite in general.
ColMatrix RandomSymmetric(int n, unsigned seed);
// Product a * b, accumulated in long double.
ColMatrix Multiply(const ColMatrix & a, const ColMatrix & b);
ColMatrix Transposed(const ColMatrix & a);
ColMatrix Identity(int n);
// Maximum absolute column sum.
double Norm1(const ColMatrix & a);
// ||a - b||_1 / (max(m, n) * ||ref||_1 * eps), LAPACK's scaled residual; small (< 30)
// for a backward-stable computation.
double ResidualRatio(const ColMatrix & a, const ColMatrix & b, const ColMatrix & ref);
// ||A x - b||_1 / (n ||A||_1 ||x||_1 eps) for one right-hand side.
double SolveResidualRatio(const ColMatrix & a, const std::vector<double> & x,
                          const std::vector<double> & b);
// Packs the upper triangle by columns (the LINPACK packed form).
std::vector<double> PackUpper(const ColMatrix & a);

}  // namespace zrtest

#endif  // ZRCOMMON920R_TESTS_SUPPORT_COLMAJOR_H
