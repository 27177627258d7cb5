// Conversions between the packed symmetric matrix and column-major test matrices, random
// symmetric test matrices, and the scaled residual of a Cholesky factor.
#ifndef ZRCOMMON920R_TESTS_SUPPORT_SYMMATRICES_H
#define ZRCOMMON920R_TESTS_SUPPORT_SYMMATRICES_H

#include "support/colmajor.h"
#include "zrcommon920r/math/matrix/symmatrix.h"

namespace zrtest {

// The symmetric matrix whose lower triangle is that of a.
ZRMath_920::ZRSymMatrix ToSym(const ColMatrix & a);
// The full symmetric matrix held by s.
ColMatrix FromSym(const ZRMath_920::ZRSymMatrix & s);
// The stored triangle of s read as a lower-triangular matrix (zeros above the diagonal).
ColMatrix LowerFromSym(const ZRMath_920::ZRSymMatrix & s);
// A' A + n I for a random A: well-conditioned, symmetric positive definite.
ZRMath_920::ZRSymMatrix RandomSpd(int n, unsigned seed);
// ||L L' - A||_1 / (n ||A||_1 eps) for the factor held in l; below 30 for a good factor.
double FactorResidualRatio(const ZRMath_920::ZRSymMatrix & a, const ZRMath_920::ZRSymMatrix & l);

}  // namespace zrtest

#endif  // ZRCOMMON920R_TESTS_SUPPORT_SYMMATRICES_H
