// Level 1 BLAS and the double-precision LINPACK, routine by routine as published.
//
// Conventions shared by every routine:
// - Matrices are column-major with a leading dimension: element (i, j), counted from 1, of
//   `a` with leading dimension `lda` is a[(j - 1) * lda + (i - 1)]. Packed symmetric and
//   triangular arrays hold the upper triangle by columns, which is the same sequence of
//   numbers as a lower triangle stored by rows.
// - Pivot vectors (ipvt, kpvt, jpvt) hold 1-based indices with the published sign
//   conventions; IDAMax also answers a 1-based index.
// - `job` arguments have their published meanings.
// - The published `info` output is the function result (int), and the published `rcond`
//   of the ...co routines is the function result (double); every other argument keeps its
//   published order. Only the pointed-to arrays are written.
// - Nothing checks its arguments: the caller guarantees sizes and leading dimensions.
//   Numerical failure is told only by `info` or `rcond`; XErBla is the one exit.
#ifndef ZRCOMMON920R_MATH_MATRIX_KERNELS_H
#define ZRCOMMON920R_MATH_MATRIX_KERNELS_H

namespace ZRMath_920 {

class Blas1 {
 public:
  // Sum of |x(i)| over n elements with stride incx. 0.0 for n < 1; incx is not tested
  // (a stride below 1 gives 0.0, as published).
  static double DASum(int n, double * const x, int incx);

  // y <- a x + y. Returns at once for n < 1 or a == 0.0. Negative strides start at the
  // far end, as published.
  static void Daxpy(int n, double a, double * const x, int incx, double * const y, int incy);

  // y <- x, published stride rules.
  static void DCopy(int n, double * const x, int incx, double * const y, int incy);

  // x'y in one accumulator from the first element upward; 0.0 for n < 1.
  static double DDot(int n, double * const x, int incx, double * const y, int incy);

  // Euclidean norm by a scaled sum of squares (no overflow or harmful underflow):
  // |x(1)| for n == 1; 0.0 for n < 1 or incx < 1. A NaN counts as a non-zero element.
  static double DNrm2(int n, double * const x, int incx);

  // Applies the plane rotation (c, s): x <- c x + s y, y <- c y - s x.
  static void DRot(int n, double * const x, int incx, double * const y, int incy, double c,
                   double s);

  // Constructs the Givens rotation that zeroes b: on return a holds r, b holds the
  // reconstruction value z, and c, s the rotation. z is 1 / c when |c| > 0 and s >= |c|,
  // otherwise s (not the published rule, which gives 1 for c == 0).
  static void DRotG(double * a, double * b, double * c, double * s);

  // x <- a x.
  static void DScal(int n, double a, double * const x, int incx);

  // Exchanges x and y.
  static void DSwap(int n, double * const x, int incx, double * const y, int incy);

  // 1-based index of the first element of largest absolute value; 0 for n < 1 or
  // incx < 1.
  static int IDAMax(int n, double * const x, int incx);

  // Machine constants computed at run time on every call: job 1 the relative precision
  // eps (2^-52), job 2 tiny = (smallest power of 1/16 found before 0) / eps * 100, job 3
  // 1 / tiny. Any other job ends the process through XErBla("DMACH", 1).
  static double DMach(int job);

  // x when x >= 0.0, else -x (so a NaN is negated).
  static double D_Abs(double x);
  // a when a > b, else b.
  static double D_Max(double a, double b);
  // -1.0 when 0.0 > x, else 1.0.
  static double D_Sign(double x);
  static int I_Max(int a, int b);
  static int I_Min(int a, int b);
  // True when a and b are the same letter regardless of ASCII case.
  static bool LSame(char a, char b);

  // Fatal error: prints "XERBLA - Fatal error!" with the routine's name and the number of
  // the bad parameter on standard output, then ends the process with exit status 1.
  [[noreturn]] static void XErBla(const char * name, int param);
};

class Linpack {
 public:
  // --- General matrices -------------------------------------------------------------
  // Factors A as Dgefa does and estimates the reciprocal of its 1-norm condition number
  // (LINPACK DGECO; Cline, Moler, Stewart and Wilkinson 1979, An estimate for the condition
  // number of a matrix, SIAM J. Numer. Anal. 16, 368-375). z returns a unit-1-norm vector
  // with ||A z||_1 ~ rcond ||A||_1 (an approximate null vector when A is nearly singular).
  // Tests hold rcond within a factor of 10 of LAPACK's dgecon and of the true 1/cond_1(A),
  // and to 8 eps of hand-traced values. Returns 0.0 for a zero A or n < 1; an exactly
  // singular U gives a tiny or zero rcond (Dgefa's info is not returned: test rcond).
  static double Dgeco(double * const a, int lda, int n, int * const ipvt, double * const z);

  // LU factors of the general n x n matrix A by Gaussian elimination with partial pivoting
  // (LINPACK DGEFA, Users' Guide 1979, ch. 1): a returns U and the negated multipliers,
  // ipvt the 1-based pivot rows (row interchanges are applied to later columns only).
  // Tests hold the rebuilt product to ||P1 L1 .. U - A||_1 / (n ||A||_1 eps) < 30 and ipvt
  // equal to LAPACK dgetrf's pivots. Returns 0, or the index k of the last zero pivot
  // u(k, k) == 0.0; the factors are complete even then, but Dgesl and Dgedi divide by it.
  static int Dgefa(double * const a, int lda, int n, int * const ipvt);

  // Solves A x = b (job == 0) or A'x = b (job != 0) with the factors from Dgeco or Dgefa
  // (LINPACK DGESL): forward and back substitution by columns, or by inner products for A'.
  // b is overwritten by x. Backward stable: tests hold ||A x - b||_1 / (n ||A||_1 ||x||_1 eps)
  // < 30 for both jobs. A zero pivot (Dgefa's info != 0) divides by zero: x is then inf/NaN.
  static void Dgesl(double * const a, int lda, int n, int * const ipvt, double * const b, int job);

  // Determinant and inverse of A from the factors of Dgeco or Dgefa (LINPACK DGEDI).
  // job = 10 * d + i: d != 0 gives det(A) = det[0] * 10^det[1] with 1 <= |det[0]| < 10, or
  // det[0] == 0.0 for a zero pivot; i != 0 replaces a by inv(A) = inv(U) inv(L), using work
  // (n doubles, not read otherwise). Tests hold det to 1e-12 relative of LAPACK's LU product
  // (n eps cond_1(A) when larger) and ||inv(A) A - I||_1 / (n cond_1(A) eps) < 30. Intended:
  // rescaling stops at an infinite or NaN det[0]. A singular A's inverse divides by zero.
  static void Dgedi(double * const a, int lda, int n, int * const ipvt, double * const det,
                    double * const work, int job);

  // --- General band matrices ----------------------------------------------------------
  // Band storage: A with ml sub- and mu super-diagonals sits in abd (lda >= 2 ml + mu + 1):
  // with m = ml + mu + 1, a(i, j) is abd(i - j + m, j); rows 1..ml of abd are fill-in space.

  // Factors the band matrix as Dgbfa does and estimates the reciprocal of its 1-norm
  // condition number (LINPACK DGBCO; Cline, Moler, Stewart and Wilkinson 1979, SIAM J.
  // Numer. Anal. 16, 368-375); z as for Dgeco. Tests hold rcond within a factor of 10 of
  // LAPACK's dgbcon and of the true 1/cond_1(A), and to 8 eps of hand-traced values.
  // Returns 0.0 for a zero A or n < 1. Needs 0 <= ml < n and 0 <= mu < n, as published.
  static double Dgbco(double * const abd, int lda, int n, int ml, int mu, int * const ipvt,
                      double * const z);

  // LU factors of the band matrix A by Gaussian elimination with partial pivoting (LINPACK
  // DGBFA, Users' Guide 1979, ch. 2): abd returns U (with up to ml extra super-diagonals of
  // fill-in, in rows 1..m) and the negated multipliers below row m; ipvt the pivot rows.
  // Tests hold the solve residual ratio < 30 and ipvt equal to LAPACK dgbtrf's pivots.
  // Returns 0, or the index k of the last zero pivot; the factors are complete even then.
  static int Dgbfa(double * const abd, int lda, int n, int ml, int mu, int * const ipvt);

  // Solves A x = b (job == 0) or A'x = b (job != 0) with the band factors from Dgbco or
  // Dgbfa (LINPACK DGBSL); b is overwritten by x. Tests hold ||A x - b||_1 / (n ||A||_1
  // ||x||_1 eps) < 30 for both jobs. A zero pivot divides by zero.
  static void Dgbsl(double * const abd, int lda, int n, int ml, int mu, int * const ipvt,
                    double * const b, int job);

  // Determinant of the band matrix from the factors of Dgbco or Dgbfa (LINPACK DGBDI):
  // det(A) = det[0] * 10^det[1] with 1 <= |det[0]| < 10, or det[0] == 0.0 for a zero pivot.
  // Tests hold it to 1e-12 relative of LAPACK's LU product (n eps cond_1(A) when larger).
  // Intended: rescaling stops at an infinite or NaN det[0] (det[1] then partial).
  static void Dgbdi(double * const abd, int lda, int n, int ml, int mu, int * const ipvt,
                    double * const det);

  // --- Positive definite matrices: full, packed and band ------------------------------
  // Factors the positive definite A as Dpofa does and estimates the reciprocal of its
  // 1-norm condition number (LINPACK DPOCO: Cline, Moler, Stewart and Wilkinson 1979, SIAM
  // J. Numer. Anal. 16, 368-375); z returns an approximate null vector when A is close to
  // singular. Tests: within 1e-14 relative of an exact rational trace of the published steps,
  // and within a factor of 10 of LAPACK's dpocon and of the true 1/cond. Returns 0.0 when A
  // is not positive definite (the published text leaves rcond unset): a then holds Dpofa's
  // partial factor and z the column sums of |A|.
  static double Dpoco(double * const a, int lda, int n, double * const z);

  // Cholesky factor R (upper triangular, A = R'R) of the symmetric positive definite A held
  // in the upper triangle of a, by inner products column by column (LINPACK DPOFA, Users'
  // Guide 1979, ch. 3). Backward stable: tests hold ||R'R - A||_1 / (n ||A||_1 eps) < 30.
  // Returns 0, or the order k of the first leading minor that is not positive definite
  // (its pivot not above 0.0); columns 1..k-1 then hold R, column k above the diagonal is
  // overwritten, and the strict lower triangle is never touched. A NaN pivot is not above
  // 0.0: a NaN anywhere in column k or before it makes the result k or less (as LAPACK's
  // dpotrf), never 0 with NaN in the factor.
  static int Dpofa(double * const a, int lda, int n);

  // Solves A x = b with the factor R from Dpoco or Dpofa: R'y = b by inner products, then
  // R x = y by columns (LINPACK DPOSL). b is overwritten by x. Backward stable: tests hold
  // ||A x - b||_1 / (n ||A||_1 ||x||_1 eps) < 30. A zero diagonal in R divides by zero
  // (Dpofa never leaves one).
  static void Dposl(double * const a, int lda, int n, double * const b);

  // Determinant and inverse of A from its factor R (LINPACK DPODI). job = 10 * d + i: d != 0
  // gives det(A) = det[0] * 10^det[1] with 1 <= det[0] < 10 (det[0] = 0.0 for a zero pivot);
  // i != 0 replaces the upper triangle of a by that of inv(A) = inv(R) inv(R)'. Tests: det
  // within 10 n^2 eps cond(A) relative of LAPACK's (from dpotrf), ||inv(A) A - I||_1 / (n
  // ||A||_1 ||inv(A)||_1 eps) < 30, both exact on the Pascal matrix. A zero pivot divides by
  // zero. Intended: scaling stops at an overflowing det[0] (inf, det[1] partial).
  static void Dpodi(double * const a, int lda, int n, double * const det, int job);

  // Factors the packed positive definite A as Dppfa does and estimates the reciprocal of
  // its 1-norm condition number (LINPACK DPPCO; Cline, Moler, Stewart and Wilkinson 1979).
  // Tests as for Dpoco: 1e-14 relative of the exact trace, a factor of 10 of LAPACK's
  // dpocon and of the true 1/cond. Returns 0.0 when A is not positive definite (the
  // published text leaves rcond unset): ap then holds Dppfa's partial factor and z the
  // column sums of |A|.
  static double Dppco(double * const ap, int n, double * const z);

  // Cholesky factor R of the positive definite A in packed form, overwriting ap (LINPACK
  // DPPFA, same operations as Dpofa). Tests hold ||R'R - A||_1 / (n ||A||_1 eps) < 30.
  // Returns 0, or the order k of the first leading minor that is not positive definite (a
  // NaN pivot included, as in Dpofa); columns 1..k-1 then hold R and column k above the
  // diagonal is overwritten.
  static int Dppfa(double * const ap, int n);

  // Solves A x = b with the packed factor R from Dppco or Dppfa (LINPACK DPPSL); b is
  // overwritten by x. Tests hold ||A x - b||_1 / (n ||A||_1 ||x||_1 eps) < 30. A zero
  // diagonal in R divides by zero.
  static void Dppsl(double * const ap, int n, double * const b);

  // Determinant and inverse of A from its packed factor R (LINPACK DPPDI), job as in Dpodi:
  // det(A) = det[0] * 10^det[1], 1 <= det[0] < 10, and/or ap replaced by the packed upper
  // triangle of inv(A). Tests as for Dpodi (determinant within 10 n^2 eps cond(A), inverse
  // residual ratio < 30). Intended: scaling stops at an overflowing det[0], as in Dpodi.
  static void Dppdi(double * const ap, int n, double * const det, int job);

  // Factors the positive definite band matrix as Dpbfa does and estimates the reciprocal
  // of its 1-norm condition number (LINPACK DPBCO; Cline, Moler, Stewart and Wilkinson
  // 1979). Tests as for Dpoco: 1e-14 relative of the exact trace, a factor of 10 of
  // LAPACK's dpocon on the full matrix. Returns 0.0 when A is not positive definite (the
  // published text leaves rcond unset): abd then holds Dpbfa's partial factor and z the
  // column sums of |A|.
  static double Dpbco(double * const abd, int lda, int n, int m, double * const z);

  // Cholesky factor R of the positive definite band matrix A with m superdiagonals, in
  // place in the same band form (LINPACK DPBFA, the Dpofa operations restricted to the
  // band). Tests hold ||R'R - A||_1 / (n ||A||_1 eps) < 30. Returns 0, or the order k of
  // the first leading minor that is not positive definite (a NaN pivot included, as in
  // Dpofa); columns 1..k-1 then hold R.
  static int Dpbfa(double * const abd, int lda, int n, int m);

  // Solves A x = b with the band factor R from Dpbco or Dpbfa (LINPACK DPBSL); b is
  // overwritten by x. Tests hold ||A x - b||_1 / (n ||A||_1 ||x||_1 eps) < 30. A zero
  // diagonal in R divides by zero.
  static void Dpbsl(double * const abd, int lda, int n, int m, double * const b);

  // Determinant of the band matrix A from its factor R (LINPACK DPBDI): det(A) = det[0] *
  // 10^det[1] with 1 <= det[0] < 10, or det[0] = 0.0 at a zero pivot. Tests hold it within
  // 10 n^2 eps cond(A) relative of LAPACK's (from dpotrf). Intended: scaling stops at an
  // overflowing det[0], as in Dpodi.
  static void Dpbdi(double * const abd, int lda, int n, int m, double * const det);

  // --- Symmetric indefinite matrices: full and packed ---------------------------------
  // Factors the symmetric A as Dsifa does and estimates the reciprocal of its 1-norm
  // condition number (LINPACK DSICO, Users' Guide 1979, ch. 5; estimator of Cline, Moler,
  // Stewart and Wilkinson 1979, SIAM J. Numer. Anal. 16, 368-375). Tests hold the estimate
  // within a factor of 10 of LAPACK's dgecon and of the true 1/cond. Returns 0.0 for a zero
  // matrix; Dsifa's info is not returned (as published), and an exactly zero pivot usually
  // gives 0.0. a and kpvt return the factor; z an approximate null vector when A is
  // close to singular.
  static double Dsico(double * const a, int lda, int n, int * const kpvt, double * const z);

  // Bunch-Kaufman factorisation A = U D U' of the symmetric A held in the upper triangle of a
  // (LINPACK DSIFA, Users' Guide 1979, ch. 5; Bunch and Kaufman 1977, Math. Comp. 31,
  // 163-179), diagonal pivoting with alpha = (1 + sqrt(17)) / 8; element growth at most
  // 2.57^(n-1). Tests hold Dsisl's ||A x - b||_1 / (n ||A||_1 ||x||_1 eps) < 30. a returns D
  // and the multipliers, kpvt the interchanges (kpvt(k) = kpvt(k-1) < 0 for a 2 x 2 block);
  // the strict lower triangle is not touched. Returns 0, or the smallest k whose pivot is an
  // exact zero (the loop runs from n down): the factor is then complete but singular, and
  // Dsisl and Dsidi would divide by zero.
  static int Dsifa(double * const a, int lda, int n, int * const kpvt);

  // Solves A x = b with the factor from Dsico or Dsifa (LINPACK DSISL, Users' Guide 1979,
  // ch. 5): b is overwritten by x. Backward stable: tests hold ||A x - b||_1 /
  // (n ||A||_1 ||x||_1 eps) < 30 and agreement with LAPACK's dsptrs. The factor must be
  // non-singular (Dsifa info 0); a zero pivot divides by zero and b then holds infinities
  // or NaNs. a and kpvt are not changed.
  static void Dsisl(double * const a, int lda, int n, int * const kpvt, double * const b);

  // Inertia, determinant and inverse of A from the factor of Dsico or Dsifa (LINPACK DSIDI,
  // Users' Guide 1979, ch. 5). job = abc: a != 0 gives inert = (positive, negative, zero)
  // eigenvalue counts, from the signs of D (Sylvester's law); b != 0 gives det(A) =
  // det[0] * 10^det[1], 1 <= |det[0]| < 10 or det[0] == 0.0; c != 0 overwrites the upper
  // triangle of a with that of inverse(A) (work: n scratch values). Tests: inverse(A) A = I
  // to ||.||_1 / (n ||A||_1 ||inverse(A)||_1 eps) < 30; det within 30 n eps / rcond relative
  // of LAPACK's LU. Outputs not asked for are untouched. The inverse needs a non-singular
  // factor (else it divides by zero); det[0] is left infinite or NaN if the product overflows.
  static void Dsidi(double * const a, int lda, int n, int * const kpvt, double * const det,
                    int * const inert, double * const work, int job);

  // Factors the packed symmetric A as Dspfa does and estimates the reciprocal of its 1-norm
  // condition number (LINPACK DSPCO, Users' Guide 1979, ch. 5; estimator of Cline, Moler,
  // Stewart and Wilkinson 1979, SIAM J. Numer. Anal. 16, 368-375). Tests hold the estimate
  // within a factor of 10 of LAPACK's dgecon and of the true 1/cond. Returns 0.0 for a zero
  // matrix; Dspfa's info is not returned (as published), and an exactly zero pivot usually
  // gives 0.0. ap and kpvt return the factor; z an approximate null vector when A is
  // close to singular.
  static double Dspco(double * const ap, int n, int * const kpvt, double * const z);

  // Bunch-Kaufman factorisation A = U D U' of the symmetric A packed by columns of its upper
  // triangle, as Dsifa does on full storage (LINPACK DSPFA, Users' Guide 1979, ch. 5; Bunch
  // and Kaufman 1977, Math. Comp. 31, 163-179), alpha = (1 + sqrt(17)) / 8. Backward stable:
  // tests hold ||A x - b||_1 / (n ||A||_1 ||x||_1 eps) < 30 through Dspsl. ap returns D and
  // the multipliers, kpvt the interchanges (kpvt(k) = kpvt(k-1) < 0 for a 2 x 2 block).
  // Returns 0, or the smallest k whose pivot is an exact zero (the loop runs from n down):
  // the factor is then complete but singular, and Dspsl and Dspdi would divide by zero.
  static int Dspfa(double * const ap, int n, int * const kpvt);

  // Solves A x = b with the packed factor from Dspco or Dspfa (LINPACK DSPSL, Users' Guide
  // 1979, ch. 5): b is overwritten by x. Backward stable: tests hold ||A x - b||_1 /
  // (n ||A||_1 ||x||_1 eps) < 30 and agreement with LAPACK's dsptrs. The factor must be
  // non-singular (Dspfa info 0); a zero pivot divides by zero and b then holds infinities
  // or NaNs. ap and kpvt are not changed.
  static void Dspsl(double * const ap, int n, int * const kpvt, double * const b);

  // Inertia, determinant and inverse of A from the packed factor of Dspco or Dspfa (LINPACK
  // DSPDI, Users' Guide 1979, ch. 5). job = abc: a != 0 gives inert = (positive, negative,
  // zero) eigenvalue counts, from the signs of D (Sylvester's law); b != 0 gives det(A) =
  // det[0] * 10^det[1], 1 <= |det[0]| < 10 or det[0] == 0.0; c != 0 overwrites ap with the
  // packed inverse(A) (work: n scratch values). Tests: inverse(A) A = I to ||.||_1 /
  // (n ||A||_1 ||inverse(A)||_1 eps) < 30; det within 30 n eps / rcond relative of LAPACK's
  // LU. Outputs not asked for are untouched. The inverse needs a non-singular factor (else
  // it divides by zero); det[0] is left infinite or NaN if the product overflows.
  static void Dspdi(double * const ap, int n, int * const kpvt, double * const det,
                    int * const inert, double * const work, int job);

  // --- Triangular matrices ------------------------------------------------------------
  // Reciprocal of the 1-norm condition number of the triangular T, estimated (LINPACK DTRCO;
  // Cline, Moler, Stewart and Wilkinson 1979, An estimate for the condition number of a
  // matrix, SIAM J. Numer. Anal. 16, 368-375). job == 0: T is lower triangular, otherwise
  // upper; the other triangle is not read. z returns a unit-1-norm vector with T z small
  // when T is nearly singular. Tests hold rcond within a factor of 10 of LAPACK's dtrcon
  // and of the true 1/cond_1(T), and to 8 eps of hand-traced values. Returns 0.0 for a zero
  // T or n < 1; T is not changed.
  static double Dtrco(double * const t, int ldt, int n, double * const z, int job);

  // Solves T x = b or T'x = b for the triangular T by substitution (LINPACK DTRSL); b is
  // overwritten by x. job: 00 T x = b, T lower; 01 T x = b, T upper; 10 T'x = b, T lower;
  // 11 T'x = b, T upper (units digit: upper; tens digit: transpose). Tests hold
  // ||T x - b||_1 / (n ||T||_1 ||x||_1 eps) < 30. Returns 0, or the index of the first zero
  // diagonal element, and then b is unchanged.
  static int Dtrsl(double * const t, int ldt, int n, double * const b, int job);

  // Determinant and inverse of the triangular T (LINPACK DTRDI). job = 100 d + 10 i + u:
  // d != 0 gives det(T) = det[0] * 10^det[1] with 1 <= |det[0]| < 10 (det[0] == 0.0 for a
  // zero diagonal); i != 0 replaces T in place by inv(T), upper when u != 0, else lower.
  // Tests hold det to 1e-12 relative of the diagonal product and inv(T) to ||inv(T) T -
  // I||_1 / (n cond_1(T) eps) < 30. Returns 0, or for a zero diagonal element the index
  // where inversion stopped (the first zero for upper, the last for lower); T is then partly
  // inverted. Returns 0 when no inverse is asked for. Intended: rescaling stops at an
  // infinite or NaN det[0].
  static int Dtrdi(double * const t, int ldt, int n, double * const det, int job);

  // --- Tridiagonal matrices -----------------------------------------------------------
  // Solves the general tridiagonal system A x = b by Gaussian elimination with partial
  // pivoting (LINPACK DGTSL, Users' Guide 1979, ch. 7). c, d, e, b have n elements: c holds
  // the subdiagonal in c[1..n-1], d the diagonal, e the superdiagonal in e[0..n-2] (c[0] and
  // e[n-1] are workspace); all are overwritten and b returns x. Tests hold ||A x - b||_1 /
  // (n ||A||_1 ||x||_1 eps) < 30 and agreement with LAPACK dgtsv. Returns 0, or the index k
  // of a zero pivot, found as elimination reaches it; b is then partly reduced, not solved.
  static int Dgtsl(int n, double * const c, double * const d, double * const e, double * const b);

  // Solves the symmetric positive definite tridiagonal system A x = b (LINPACK DPTSL): d
  // holds the diagonal, e the off-diagonal in e[0..n-2]; elimination runs from both ends
  // towards the centre, then substitution outwards. d is overwritten and b returns x. Tests
  // hold ||A x - b||_1 / (n ||A||_1 ||x||_1 eps) < 30 and agreement with LAPACK dptsv. No
  // pivoting and no check: a zero pivot (A not positive definite) divides by zero.
  static void Dptsl(int n, double * const d, double * const e, double * const b);

  // --- Cholesky with pivoting; updating, downdating and exchanging a factor -----------
  // Cholesky decomposition with diagonal pivoting, P'AP = R'R, of the symmetric positive
  // semidefinite A in the upper triangle of a (LINPACK DCHDC, Users' Guide 1979, ch. 8).
  // job 0: no pivoting. Otherwise jpvt(k) > 0 makes column k an initial column, < 0 a final
  // one, 0 free; at each step the largest remaining free diagonal is the pivot. On return
  // jpvt(k) is the original index of the k-th column. Returns p, or k - 1 when the k-th
  // pivot is not above 0.0 (a NaN pivot included): rows 1..k-1 of a then hold R11 and
  // R12 and the trailing block the unreduced Schur complement. Tests: ||R'R - P'AP||_1 /
  // (p ||A||_1 eps) < 30, exact ranks of singular matrices, and jpvt and R against
  // LAPACK's dpstrf.
  static int Dchdc(double * const a, int lda, int p, double * const work, int * const jpvt,
                   int job);

  // Updates the Cholesky factor R of X'X to that of X'X + x x' (an added row x) with p
  // plane rotations (LINPACK DCHUD, Users' Guide 1979, ch. 10), applying them also to the
  // nz columns of z (Z <- Q'[Z; y']) and updating the residual norms rho(j) to
  // sqrt(rho(j)^2 + zeta(j)^2); a negative rho(j) is left alone. c and s return the
  // rotations. Diagonals of R may turn negative (R'R is what is kept). Tests: ||R'R - (A +
  // x x')||_1 / (p ||A||_1 eps) < 30; R'z = X'y and rho = ||y - X b|| (1e-13 relative)
  // after adding a row to a least-squares problem.
  static void Dchud(double * const r, int ldr, int p, double * const x, double * const z, int ldz,
                    int nz, double * const y, double * const rho, double * const c,
                    double * const s);

  // Downdates the Cholesky factor R of X'X to that of X'X - x x' (a removed row x) with
  // plane rotations (LINPACK DCHDD, Users' Guide 1979, ch. 10), also downdating the nz
  // columns of z and the residual norms rho(j) to sqrt(rho(j)^2 - zeta(j)^2). c and s
  // return the rotations. Returns 0; -1 when ||inv(R') x|| >= 1 (X'X - x x' not positive
  // definite: R, z and rho unchanged, s holds inv(R') x); 1 when some rho(j) < |zeta(j)|
  // (that rho(j) is set to -1.0; R and z are downdated). Tests: ||R'R - (A - x x')||_1 /
  // (p ||A||_1 eps) < 30 for well-conditioned results; R'z and rho as for Dchud.
  static int Dchdd(double * const r, int ldr, int p, double * const x, double * const z, int ldz,
                   int nz, double * const y, double * const rho, double * const c,
                   double * const s);

  // Permutes columns k..l of R circularly and retriangularises it with plane rotations, so
  // that R'R becomes P'AP (LINPACK DCHEX, Users' Guide 1979, ch. 10). job 2: left shift
  // (the columns in order k+1..l, k); any other job: right shift (l, k..l-1). Needs 1 <= k
  // < l <= p. The rotations also apply to the nz columns of z, and c, s return them (l - k
  // of each). Tests: ||R'R - P'AP||_1 / (p ||A||_1 eps) < 30 for both shifts, and R'z kept
  // as P'(R'z) to 30 p ||R||_1 ||z||_1 eps.
  static void Dchex(double * const r, int ldr, int p, int k, int l, double * const z, int ldz,
                    int nz, double * const c, double * const s, int job);

  // --- QR decomposition and least squares ---------------------------------------------
  // QR decomposition X P = Q R of the n x p matrix x by Householder transformations
  // (LINPACK DQRDC, Users' Guide 1979, ch. 9). job 0: no pivoting, jpvt and work unused.
  // Otherwise columns with jpvt(k) > 0 go to the front, jpvt(k) < 0 to the back, and the free
  // ones (0) between are pivoted by largest reduced norm; jpvt returns the original index of
  // each column, work holds p norms. x returns R on and above its diagonal and the Householder
  // vectors below it, their leading elements in qraux (0.0: no transformation).
  // Backward stable: tests hold ||X P - Q R||_1 / (max(n, p) ||X||_1 eps) < 30. Never fails.
  static void Dqrdc(double * const x, int ldx, int n, int p, double * const qraux, int * const jpvt,
                    double * const work, int job);

  // Uses Dqrdc's output for the first k columns X_k of X P, 1 <= k <= min(n, p) (LINPACK
  // DQRSL, Users' Guide 1979, ch. 9). job is the decimal digits abcde: a != 0 gives qy = Q y;
  // any of b..e != 0 gives qty = Q'y (qty must then be supplied); c the least-squares
  // coefficients b of min ||y - X_k b||, d the residual rsd, e the fitted values xb = X_k b.
  // Tests hold b, rsd and xb within 1e-14 of LAPACK dgels (O(1) data, cond < 100). Returns 0,
  // or, when b is requested, the largest j with R(j, j) == 0.0: back substitution stops there,
  // with b(j+1..k) solved and b(1..j) partly updated; qy, qty, rsd and xb are still right.
  static int Dqrsl(double * const x, int ldx, int n, int k, double * const qraux, double * const y,
                   double * const qy, double * const qty, double * const b, double * const rsd,
                   double * const xb, int job);

  // --- Singular value decomposition ---------------------------------------------------
  // Singular value decomposition X = U S V' of the n x p matrix x (LINPACK DSVDC, Users'
  // Guide 1979, ch. 11; Golub and Reinsch 1970, Numer. Math. 14, 403-420). s returns the
  // singular values in decreasing order (s has min(n + 1, p) elements, s(n+1) = 0; e has p).
  // job ab: a = 0 no U, 1 all n columns (u n x n), >= 2 the first min(n, p); b != 0 V (p x p).
  // x is destroyed; work holds n. A matrix whose largest element is beyond 2^456 or below
  // 2^-456 is first scaled by a power of two (exact), and s and e are scaled back. Tests hold
  // s within 1e-14 s(1) of LAPACK dgesvd, also at 3e307 and 1e-300, and ||X - U S V'||_1 /
  // (max(n, p) ||X||_1 eps) < 30. Returns 0, or m when 30 QR steps fail to split off s(m),
  // or when more than min(n + 1, p) + 1 split passes follow one another (an infinite
  // element; a NaN ends through the 30 steps): s(m+1..) and their vectors are right, and
  // U'XV is still the bidiagonal matrix of s and e (superdiagonal). A singular value beyond
  // the largest double comes back infinite and info counts it. n < 1 or p < 1: returns 0
  // and writes nothing.
  static int Dsvdc(double * const x, int ldx, int n, int p, double * const s, double * const e,
                   double * const u, int ldu, double * const v, int ldv, double * const work,
                   int job);
};

}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_MATRIX_KERNELS_H
