// Column-major test matrices and scaled residuals.
#include "support/colmajor.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace zrtest {

namespace {
constexpr double kEps = 2.220446049250313e-16;
}

ColMatrix RandomGeneral(int m, int n, unsigned seed) {
  std::mt19937 gen(seed);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  ColMatrix a(m, n);
  for (double & x : a.a) x = u(gen);
  return a;
}

ColMatrix RandomSpdCol(int n, unsigned seed) {
  const ColMatrix g = RandomGeneral(n, n, seed);
  ColMatrix a = Multiply(Transposed(g), g);
  for (int i = 0; i < n; ++i) a(i, i) += n;
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < j; ++i) a(j, i) = a(i, j);  // exactly symmetric
  return a;
}

ColMatrix RandomSymmetric(int n, unsigned seed) {
  ColMatrix a = RandomGeneral(n, n, seed);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < j; ++i) a(j, i) = a(i, j);
  return a;
}

ColMatrix Multiply(const ColMatrix & a, const ColMatrix & b) {
  ColMatrix c(a.rows, b.cols);
  for (int i = 0; i < a.rows; ++i)
    for (int j = 0; j < b.cols; ++j) {
      long double s = 0.0L;
      for (int k = 0; k < a.cols; ++k) s += static_cast<long double>(a(i, k)) * b(k, j);
      c(i, j) = static_cast<double>(s);
    }
  return c;
}

ColMatrix Transposed(const ColMatrix & a) {
  ColMatrix t(a.cols, a.rows);
  for (int i = 0; i < a.rows; ++i)
    for (int j = 0; j < a.cols; ++j) t(j, i) = a(i, j);
  return t;
}

ColMatrix Identity(int n) {
  ColMatrix a(n, n);
  for (int i = 0; i < n; ++i) a(i, i) = 1.0;
  return a;
}

double Norm1(const ColMatrix & a) {
  double best = 0.0;
  for (int j = 0; j < a.cols; ++j) {
    double s = 0.0;
    for (int i = 0; i < a.rows; ++i) s += std::fabs(a(i, j));
    if (!(s <= best)) best = s;  // a NaN column sum must make the norm NaN, not be skipped
  }
  return best;
}

double ResidualRatio(const ColMatrix & a, const ColMatrix & b, const ColMatrix & ref) {
  ColMatrix d(a.rows, a.cols);
  for (std::size_t k = 0; k < d.a.size(); ++k) d.a[k] = a.a[k] - b.a[k];
  const double denom = std::max(a.rows, a.cols) * Norm1(ref) * kEps;
  return denom > 0.0 ? Norm1(d) / denom : Norm1(d);
}

double SolveResidualRatio(const ColMatrix & a, const std::vector<double> & x,
                          const std::vector<double> & b) {
  double r = 0.0, xn = 0.0;
  for (int i = 0; i < a.rows; ++i) {
    long double s = -static_cast<long double>(b[i]);
    for (int j = 0; j < a.cols; ++j) s += static_cast<long double>(a(i, j)) * x[j];
    r += std::fabs(static_cast<double>(s));
  }
  for (double v : x) xn += std::fabs(v);
  const double denom = a.cols * Norm1(a) * xn * kEps;
  return denom > 0.0 ? r / denom : r;
}

std::vector<double> PackUpper(const ColMatrix & a) {
  std::vector<double> ap;
  for (int j = 0; j < a.cols; ++j)
    for (int i = 0; i <= j; ++i) ap.push_back(a(i, j));
  return ap;
}

}  // namespace zrtest
