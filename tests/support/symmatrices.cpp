// Packed symmetric test matrices.
#include "support/symmatrices.h"

namespace zrtest {

using ZRMath_920::ZRSymMatrix;

ZRSymMatrix ToSym(const ColMatrix & a) {
  ZRSymMatrix s(a.rows, true);
  for (int i = 0; i < a.rows; ++i)
    for (int j = 0; j <= i; ++j) s.SetElem(i, j, a(i, j));
  return s;
}

ColMatrix FromSym(const ZRSymMatrix & s) {
  const int n = s.GetNRows();
  ColMatrix a(n, n);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) a(i, j) = s.GetElem(i, j);
  return a;
}

ColMatrix LowerFromSym(const ZRSymMatrix & s) {
  const int n = s.GetNRows();
  ColMatrix l(n, n);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j <= i; ++j) l(i, j) = s.GetElem(i, j);
  return l;
}

ZRSymMatrix RandomSpd(int n, unsigned seed) {
  return ToSym(RandomSpdCol(n, seed));
}

double FactorResidualRatio(const ZRSymMatrix & a, const ZRSymMatrix & l) {
  const ColMatrix lower = LowerFromSym(l);
  const ColMatrix full = FromSym(a);
  return ResidualRatio(Multiply(lower, Transposed(lower)), full, full);
}

}  // namespace zrtest
