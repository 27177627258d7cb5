// Level 1 BLAS in double precision (Lawson, Hanson, Kincaid and Krogh 1979, Basic linear
// algebra subprograms for Fortran usage, ACM TOMS 5, 308-323), with the machine-constant
// routine and the small helpers the LINPACK routines share.
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <iostream>

#include "zrcommon920r/math/matrix/kernels.h"

namespace ZRMath_920 {

namespace {

// Index of the first element touched for a stride, BLAS rule: a negative stride starts at
// the far end so that the same n elements are walked backwards.
inline std::ptrdiff_t StartIndex(int n, int inc) {
  return inc < 0 ? static_cast<std::ptrdiff_t>(-n + 1) * inc : 0;
}

}  // namespace

// Sum of |x(i)|. Intended: the stride is not tested; a negative stride walks the same
// elements from the far end and a zero stride adds |x(1)| n times, so nothing outside
// the n strided elements is read.
double Blas1::DASum(int n, double * const x, int incx) {
  double sum = 0.0;
  if (n < 1) return sum;
  if (incx == 1) {
    const int m = n % 6;
    for (int i = 0; i < m; ++i) sum += std::fabs(x[i]);
    for (int i = m; i < n; i += 6)
      sum = sum + std::fabs(x[i]) + std::fabs(x[i + 1]) + std::fabs(x[i + 2]) +
            std::fabs(x[i + 3]) + std::fabs(x[i + 4]) + std::fabs(x[i + 5]);
    return sum;
  }
  std::ptrdiff_t ix = StartIndex(n, incx);
  for (int i = 0; i < n; ++i, ix += incx) sum += std::fabs(x[ix]);
  return sum;
}

void Blas1::Daxpy(int n, double a, double * const x, int incx, double * const y, int incy) {
  if (n < 1 || a == 0.0) return;
  if (incx == 1 && incy == 1) {
    const int m = n % 4;
    for (int i = 0; i < m; ++i) y[i] += a * x[i];
    for (int i = m; i < n; i += 4) {
      y[i] += a * x[i];
      y[i + 1] += a * x[i + 1];
      y[i + 2] += a * x[i + 2];
      y[i + 3] += a * x[i + 3];
    }
    return;
  }
  std::ptrdiff_t ix = StartIndex(n, incx), iy = StartIndex(n, incy);
  for (int i = 0; i < n; ++i, ix += incx, iy += incy) y[iy] += a * x[ix];
}

void Blas1::DCopy(int n, double * const x, int incx, double * const y, int incy) {
  if (n < 1) return;
  if (incx == 1 && incy == 1) {
    for (int i = 0; i < n; ++i) y[i] = x[i];
    return;
  }
  std::ptrdiff_t ix = StartIndex(n, incx), iy = StartIndex(n, incy);
  for (int i = 0; i < n; ++i, ix += incx, iy += incy) y[iy] = x[ix];
}

double Blas1::DDot(int n, double * const x, int incx, double * const y, int incy) {
  double dot = 0.0;
  if (n < 1) return dot;
  if (incx == 1 && incy == 1) {
    const int m = n % 5;
    for (int i = 0; i < m; ++i) dot += x[i] * y[i];
    for (int i = m; i < n; i += 5)
      dot = dot + x[i] * y[i] + x[i + 1] * y[i + 1] + x[i + 2] * y[i + 2] + x[i + 3] * y[i + 3] +
            x[i + 4] * y[i + 4];
    return dot;
  }
  std::ptrdiff_t ix = StartIndex(n, incx), iy = StartIndex(n, incy);
  for (int i = 0; i < n; ++i, ix += incx, iy += incy) dot += x[ix] * y[iy];
  return dot;
}

// Scaled sum of squares (the form of reference BLAS 3.x, not the older three-phase one).
double Blas1::DNrm2(int n, double * const x, int incx) {
  if (n < 1 || incx < 1) return 0.0;
  if (n == 1) return std::fabs(x[0]);
  double scale = 0.0, ssq = 1.0;
  const std::ptrdiff_t end = static_cast<std::ptrdiff_t>(n - 1) * incx;
  for (std::ptrdiff_t ix = 0; ix <= end; ix += incx) {
    if (x[ix] == 0.0) continue;  // a NaN compares unequal and is taken
    const double a = std::fabs(x[ix]);
    if (scale < a) {
      const double r = scale / a;
      ssq = 1.0 + ssq * (r * r);
      scale = a;
    } else {
      const double r = a / scale;
      ssq += r * r;
    }
  }
  return scale * std::sqrt(ssq);
}

void Blas1::DRot(int n, double * const x, int incx, double * const y, int incy, double c,
                 double s) {
  if (n < 1) return;
  std::ptrdiff_t ix = StartIndex(n, incx), iy = StartIndex(n, incy);
  for (int i = 0; i < n; ++i, ix += incx, iy += incy) {
    const double t = c * x[ix] + s * y[iy];
    y[iy] = c * y[iy] - s * x[ix];
    x[ix] = t;
  }
}

void Blas1::DRotG(double * a, double * b, double * c, double * s) {
  const double da = *a, db = *b;
  const double roe = std::fabs(da) > std::fabs(db) ? da : db;
  const double scale = std::fabs(da) + std::fabs(db);
  double r = 0.0;
  if (scale == 0.0) {
    *c = 1.0;
    *s = 0.0;
  } else {
    const double ra = da / scale, rb = db / scale;
    r = scale * std::sqrt(ra * ra + rb * rb);
    if (roe < 0.0) r = -r;
    *c = da / r;
    *s = db / r;
  }
  // Intended: z = 1 / c only when c != 0 and s >= |c|; otherwise z = s (not the BLAS rule).
  const double z = (std::fabs(*c) > 0.0 && *s >= std::fabs(*c)) ? 1.0 / *c : *s;
  *a = r;
  *b = z;
}

void Blas1::DScal(int n, double a, double * const x, int incx) {
  if (n < 1 || incx < 1) return;
  if (incx == 1) {
    const int m = n % 5;
    for (int i = 0; i < m; ++i) x[i] *= a;
    for (int i = m; i < n; i += 5) {
      x[i] *= a;
      x[i + 1] *= a;
      x[i + 2] *= a;
      x[i + 3] *= a;
      x[i + 4] *= a;
    }
    return;
  }
  const std::ptrdiff_t end = static_cast<std::ptrdiff_t>(n - 1) * incx;
  for (std::ptrdiff_t ix = 0; ix <= end; ix += incx) x[ix] *= a;
}

void Blas1::DSwap(int n, double * const x, int incx, double * const y, int incy) {
  if (n < 1) return;
  std::ptrdiff_t ix = StartIndex(n, incx), iy = StartIndex(n, incy);
  for (int i = 0; i < n; ++i, ix += incx, iy += incy) {
    const double t = x[ix];
    x[ix] = y[iy];
    y[iy] = t;
  }
}

int Blas1::IDAMax(int n, double * const x, int incx) {
  if (n < 1 || incx < 1) return 0;
  int best = 1;
  double big = std::fabs(x[0]);
  std::ptrdiff_t ix = incx;
  for (int i = 2; i <= n; ++i, ix += incx) {
    const double a = std::fabs(x[ix]);
    if (a > big) {
      best = i;
      big = a;
    }
  }
  return best;
}

// The constants are found by arithmetic on each call, so they describe the arithmetic the
// program actually runs on. volatile keeps the loops from being folded with extended
// precision.
double Blas1::DMach(int job) {
  volatile double eps = 1.0;
  volatile double sum = 2.0;
  eps = 0.5;
  sum = 1.0 + eps / 2.0;
  while (sum > 1.0) {
    eps = eps / 2.0;
    sum = 1.0 + eps / 2.0;
  }
  volatile double s = 1.0;
  volatile double next = 1.0 * 0.0625;
  while (next != 0.0) {
    s = next;
    next = s * 0.0625;
  }
  const double tiny = (s / eps) * 100.0;
  switch (job) {
    case 1:
      return eps;
    case 2:
      return tiny;
    case 3:
      return 1.0 / tiny;
    default:
      XErBla("DMACH", 1);
  }
}

double Blas1::D_Abs(double x) {
  return x >= 0.0 ? x : -x;
}

double Blas1::D_Max(double a, double b) {
  return a > b ? a : b;
}

double Blas1::D_Sign(double x) {
  return 0.0 > x ? -1.0 : 1.0;
}

int Blas1::I_Max(int a, int b) {
  return a > b ? a : b;
}

int Blas1::I_Min(int a, int b) {
  return a < b ? a : b;
}

bool Blas1::LSame(char a, char b) {
  const auto upper = [](char ch) {
    return (ch >= 'a' && ch <= 'z') ? static_cast<char>(ch - 32) : ch;
  };
  return upper(a) == upper(b);
}

void Blas1::XErBla(const char * name, int param) {
  std::cout << "\n"
            << "XERBLA - Fatal error!\n"
            << "  On entry to routine " << name << "\n"
            << "  input parameter number " << param << " had an illegal value.\n";
  std::cout.flush();
  std::exit(1);
}

}  // namespace ZRMath_920
