// ZRMathFun: strided vector kernels, packed-triangle helpers, searches, small tests and the
// digamma and trigamma functions used throughout the numerical code.
#ifndef ZRCOMMON920R_MATH_DIST_MATHFUN_H
#define ZRCOMMON920R_MATH_DIST_MATHFUN_H

#include <vector>

namespace ZRMath_920 {

// Static functions only; nothing throws, prints or allocates.
//
// The strided kernels walk n elements of a vector from `start` by `stride` elements. For
// stride >= 0 element i sits at start + i * stride. For a negative stride the walk starts at
// the far end, as in the Level 1 BLAS (Lawson, Hanson, Kincaid and Krogh (1979), ACM TOMS
// 5, 308-323): element i sits at start + (n - 1 - i) * |stride|, so the same elements are
// visited in reverse order. Elements whose index falls outside the vector are skipped (not
// read, not written); in the two-vector kernels the pair is skipped. Index arithmetic is
// done in 64 bits and never overflows. Stride 1 runs through a loop unrolled by four whose
// additions happen in the same order as in the plain loop, so both give the same bits.
// NaN and infinite elements take part in the arithmetic as IEEE 754 says.
class ZRMathFun {
 public:
  // Sum of |x_i| over the walk. 0 for n < 1 or an empty vector.
  static double DASum(int n, const std::vector<double> & x, int stride, int start);

  // Sets the n walked elements of x to a. Nothing for n < 1 or a negative start.
  static void DLoad(int n, double a, std::vector<double> & x, int start, int stride);

  // x_i <- a * x_i over the walk (so a == 0 turns a NaN or infinite x_i into NaN).
  static void DScal(int n, double a, std::vector<double> & x, int start, int stride);

  // Sum of x[0], x[stride], x[2 * stride], ...; a negative stride sums the same elements
  // from the far end. With stride 0 the result is n * x[0], one product. 0 for n < 1.
  static double DSum(int n, const std::vector<double> & x, int stride);

  // Dot product sum x_i * y_i of two walks, summed in walk order. 0 for n < 1.
  static double DDot(int n, const std::vector<double> & x, int startX, int strideX,
                     const std::vector<double> & y, int startY, int strideY);

  // y_i <- y_i + a * x_i over two walks, in walk order (so x and y may be the same
  // vector). As in the BLAS, a == 0 returns at once and leaves y unchanged.
  static void Daxpy(int n, double a, const std::vector<double> & x, int startX, int strideX,
                    std::vector<double> & y, int startY, int strideY);

  // Euclidean norm of the walk by the one-pass scaled sum of squares of the reference
  // BLAS DNRM2 (1982 version): no overflow or harmful underflow for any finite elements;
  // tested to (n + 2) eps relative against a long double sum. 0 for n < 1; |x[start]| for
  // n == 1.
  // A NaN element gives NaN; an infinite one (and no NaN) gives +infinity.
  static double DNrm2(int n, const std::vector<double> & x, int start, int stride);

  // The II kernels do the same as Daxpy, DDot, DLoad and DScal along a column of a packed
  // lower triangle: the k-th step (k = 0, 1, ...) advances the index by stride + k, so
  // from (i, j) at i(i+1)/2 + j a stride of i + 1 walks down column j. The stride is used
  // as given, also when negative; indices outside the vector are skipped as above.
  static void IIAxpy(int n, double a, const std::vector<double> & x, int startX, int strideX,
                     std::vector<double> & y, int startY, int strideY);
  static double IIDot(int n, const std::vector<double> & x, int startX, int strideX,
                      const std::vector<double> & y, int startY, int strideY);
  static void IIInit(int n, double a, std::vector<double> & x, int start, int stride);
  static void IIScal(int n, double a, std::vector<double> & x, int start, int stride);

  // Sets x[start .. start + n - 1] to 0, skipping indices outside the vector.
  static void LRZero(std::vector<double> & x, int start, int n);

  // Replaces the packed lower-triangular L (n rows, (i, j) at i(i+1)/2 + j) by the lower
  // triangle of L'L, in place, column by column: (L'L)(i, j) = sum over k >= i of
  // L(k, i) L(k, j), each sum taken in ascending k. Nothing for n < 1 or when l holds
  // fewer than n(n+1)/2 elements.
  static void LTGltl(int n, std::vector<double> & l);

  // Row `row` of the packed symmetric S (n rows) times the walk x[0], x[stride], ...:
  // along the stored row up to the diagonal, then down the column. Returns
  // ZRCommon_920::kSysMisValue unless n >= 1, 0 <= row < n, l holds n(n+1)/2 elements and
  // x holds the whole walk ((n - 1) * |stride| + 1 elements).
  static double RVD(const std::vector<double> & l, int n, int row, const std::vector<double> & x,
                    int stride);

  // Quadratic form x'Sx for the packed symmetric S of order n. 0 for n == 0 whatever the
  // vectors; ZRCommon_920::kSysMisValue for n < 0, or when x holds fewer than n elements
  // or s fewer than n(n+1)/2.
  static double VSV(const std::vector<double> & s, int n, const std::vector<double> & x);

  // Class index of key in the ascending boundaries x[first..last] by halving: the position
  // whose boundary is the smallest above key; `upper` puts a key equal to a boundary in the
  // class above it. -1 when key is above x[last] (or equal, with upper), when first > 0 and
  // key is below x[first - 1] (or equal, without upper), and for a NaN key. -2 when
  // first < 0, first > last or last >= x.size(). first == last gives first once the key
  // passes those checks.
  static int BinSearch(const std::vector<double> & x, int first, int last, double key, bool upper);
  static int BinSearch(const std::vector<int> & x, int first, int last, int key, bool upper);

  // a >= b, the two largest elements of x (a == b for a tied maximum). Places with no
  // element get ZRCommon_920::kSysMisValue: both for an empty x, b for one element. NaN
  // elements are passed over, as std::fmax does.
  static void FindTwoLargest(const std::vector<double> & x, double & a, double & b);

  // As FindTwoLargest over the elements other than kSysMisValue (and NaN): with a single
  // such element b is missing, with none both are.
  static void FindTwoLargestNonMiss(const std::vector<double> & x, double & a, double & b);

  // max |x_i - y_i| / (|y_i| + |d|) over the shorter length; d == 0 stands for 1e-6.
  // 0 for an empty vector; NaN as soon as one term is NaN (never passed over).
  static double VMaxRelDiff(const std::vector<double> & x, const std::vector<double> & y, double d);

  // max |x_i - y_i| over the shorter length (the maximum, despite the name). 0 for an
  // empty vector; NaN as soon as one difference is NaN.
  static double VNrm1Diff(const std::vector<double> & x, const std::vector<double> & y);

  // True when scale > 0 and |x| < scale * 2.220446049250313e-16, so x is lost against
  // scale. False for NaN in either argument.
  static bool QLReps(double x, double scale);

  // x unless |x| < floor; then floor with the sign of x, +floor for x == +-0. A NaN x comes
  // back as it is, and a NaN floor leaves x unchanged.
  static double ReplaceIfSmall(double x, double floor);

  // True for finite x (-1.7976931348623157e308 <= x <= 1.7976931348623157e308, the
  // missing value included); false for NaN and infinities.
  static bool IsValidDouble(double x);

  // Digamma psi(x) = d/dx log Gamma(x). Asymptotic series at y = x + 10 through the
  // 691/32760 y^-12 term (truncation below 1e-16 relative) plus the recurrence
  // psi(x) = psi(x + 10) - sum 1/(x + j) (Abramowitz and Stegun (1964), Handbook of
  // Mathematical Functions, 6.3.18 and 6.3.5); -0.5772156649015329 - 1/x for x < 1e-5.
  // Tested against mpmath to 4 eps relative (absolute where |psi| < 1, around the zero at
  // 1.4616); below 1e-5 to the dropped (pi^2/6) x^2 relative. kSysMisValue for x <= 1e-16
  // and NaN; +inf for +inf.
  static double Digamma(double x);

  // Trigamma psi'(x). Asymptotic series at y = x + 10 through the 691/2730 y^-13 term plus
  // the recurrence psi'(x) = psi'(x + 10) + sum 1/(x + j)^2 (same source, 6.4.12 and
  // 6.4.6); 1/x^2 for x < 1e-4. Tested against mpmath to 2 eps relative; below 1e-4 to the
  // dropped (pi^2/6) x^2 relative. kSysMisValue for x <= 1e-16 and NaN; 0 for +inf.
  static double Trigamma(double x);
};

}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_DIST_MATHFUN_H
