// Fortran entry points of reference LAPACK and BLAS, used by the tests as independent
// references. Column-major arrays; every argument by pointer.
#ifndef ZRCOMMON920R_TESTS_SUPPORT_LAPACK_H
#define ZRCOMMON920R_TESTS_SUPPORT_LAPACK_H

extern "C" {
// LU factorisation and solve of a general matrix; determinant and inverse through them.
void dgetrf_(const int * m, const int * n, double * a, const int * lda, int * ipiv, int * info);
void dgetrs_(const char * trans, const int * n, const int * nrhs, const double * a, const int * lda,
             const int * ipiv, double * b, const int * ldb, int * info);
void dgetri_(const int * n, double * a, const int * lda, const int * ipiv, double * work,
             const int * lwork, int * info);
void dgesv_(const int * n, const int * nrhs, double * a, const int * lda, int * ipiv, double * b,
            const int * ldb, int * info);
void dgecon_(const char * norm, const int * n, const double * a, const int * lda,
             const double * anorm, double * rcond, double * work, int * iwork, int * info);
// General band.
void dgbtrf_(const int * m, const int * n, const int * kl, const int * ku, double * ab,
             const int * ldab, int * ipiv, int * info);
void dgbtrs_(const char * trans, const int * n, const int * kl, const int * ku, const int * nrhs,
             const double * ab, const int * ldab, const int * ipiv, double * b, const int * ldb,
             int * info);
// Cholesky: full, packed, band.
void dpotrf_(const char * uplo, const int * n, double * a, const int * lda, int * info);
void dpotrs_(const char * uplo, const int * n, const int * nrhs, const double * a, const int * lda,
             double * b, const int * ldb, int * info);
void dpotri_(const char * uplo, const int * n, double * a, const int * lda, int * info);
void dpptrf_(const char * uplo, const int * n, double * ap, int * info);
void dpptri_(const char * uplo, const int * n, double * ap, int * info);
void dpbtrf_(const char * uplo, const int * n, const int * kd, double * ab, const int * ldab,
             int * info);
// Symmetric indefinite: full and packed.
void dsytrf_(const char * uplo, const int * n, double * a, const int * lda, int * ipiv,
             double * work, const int * lwork, int * info);
void dsptrf_(const char * uplo, const int * n, double * ap, int * ipiv, int * info);
void dsptrs_(const char * uplo, const int * n, const int * nrhs, const double * ap,
             const int * ipiv, double * b, const int * ldb, int * info);
// Triangular and tridiagonal.
void dtrtri_(const char * uplo, const char * diag, const int * n, double * a, const int * lda,
             int * info);
void dgtsv_(const int * n, const int * nrhs, double * dl, double * d, double * du, double * b,
            const int * ldb, int * info);
void dptsv_(const int * n, const int * nrhs, double * d, double * e, double * b, const int * ldb,
            int * info);
// Least squares, QR with pivoting, singular values, symmetric eigenvalues.
void dgels_(const char * trans, const int * m, const int * n, const int * nrhs, double * a,
            const int * lda, double * b, const int * ldb, double * work, const int * lwork,
            int * info);
void dgelsd_(const int * m, const int * n, const int * nrhs, double * a, const int * lda,
             double * b, const int * ldb, double * s, const double * rcond, int * rank,
             double * work, const int * lwork, int * iwork, int * info);
void dgeqp3_(const int * m, const int * n, double * a, const int * lda, int * jpvt, double * tau,
             double * work, const int * lwork, int * info);
void dgesvd_(const char * jobu, const char * jobvt, const int * m, const int * n, double * a,
             const int * lda, double * s, double * u, const int * ldu, double * vt,
             const int * ldvt, double * work, const int * lwork, int * info);
void dsyev_(const char * jobz, const char * uplo, const int * n, double * a, const int * lda,
            double * w, double * work, const int * lwork, int * info);
void dspev_(const char * jobz, const char * uplo, const int * n, double * ap, double * w,
            double * z, const int * ldz, double * work, int * info);
void dsygv_(const int * itype, const char * jobz, const char * uplo, const int * n, double * a,
            const int * lda, double * b, const int * ldb, double * w, double * work,
            const int * lwork, int * info);
// BLAS level 1 for cross-checks.
double dnrm2_(const int * n, const double * x, const int * incx);
double ddot_(const int * n, const double * x, const int * incx, const double * y, const int * incy);
void drotg_(double * a, double * b, double * c, double * s);
}

#endif  // ZRCOMMON920R_TESTS_SUPPORT_LAPACK_H
