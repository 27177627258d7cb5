// Fortran entry points of the reference BLAS and LAPACK used as yardsticks.
#ifndef ZRCOMMON920R_BENCH_REFBLAS_H
#define ZRCOMMON920R_BENCH_REFBLAS_H

extern "C" {
void dgemv_(const char * trans, const int * m, const int * n, const double * alpha,
            const double * a, const int * lda, const double * x, const int * incx,
            const double * beta, double * y, const int * incy);
void dgemm_(const char * transa, const char * transb, const int * m, const int * n, const int * k,
            const double * alpha, const double * a, const int * lda, const double * b,
            const int * ldb, const double * beta, double * c, const int * ldc);
// Householder QR and the explicit orthogonal factor.
void dgeqrf_(const int * m, const int * n, double * a, const int * lda, double * tau, double * work,
             const int * lwork, int * info);
void dorgqr_(const int * m, const int * n, const int * k, double * a, const int * lda,
             const double * tau, double * work, const int * lwork, int * info);
}

#endif  // ZRCOMMON920R_BENCH_REFBLAS_H
