// ZRSparseRectMatrix: norms, scalar products and products over the stored pairs; and the
// multinomial logit probabilities of a ZRSparseVector.
#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/dist/power.h"
#include "zrcommon920r/math/matrix/detail/nothrow_alloc.h"
#include "zrcommon920r/math/matrix/sparsematrix.h"

namespace ZRMath_920 {

namespace {

using matrix_detail::AssignNoThrow;
using matrix_detail::CopyNoThrow;
using matrix_detail::ResizeNoThrow;
using ZRCommon_920::kSysMisValue;

// Exponent guards of exp(): above kExpMax it overflows, below kExpMin it counts as 0.
constexpr double kExpMax = ZRPower::gMachineMaxExp;
constexpr double kExpMin = ZRPower::gMachineMinExp;

const ZRRectMatrix * AsDense(const IZRRectMatrix & m) {
  return dynamic_cast<const ZRRectMatrix *>(&m);
}
ZRRectMatrix * AsDense(IZRRectMatrix & m) {
  return dynamic_cast<ZRRectMatrix *>(&m);
}
const ZRSparseRectMatrix * AsSparse(const IZRRectMatrix & m) {
  return dynamic_cast<const ZRSparseRectMatrix *>(&m);
}

// Euclidean norm as a scaled sum of squares (the reference BLAS dnrm2: Hammarling's
// scaling), zeros skipped; a NaN gives NaN.
class ScaledNorm {
 public:
  void Add(double x) {
    if (x == 0.0) return;
    const double a = std::fabs(x);
    if (fScale < a) {
      const double r = fScale / a;
      fSsq = 1.0 + fSsq * r * r;
      fScale = a;
    } else {
      const double r = a / fScale;
      fSsq += r * r;
    }
  }
  double Norm() const { return fScale * std::sqrt(fSsq); }

 private:
  double fScale = 0.0;
  double fSsq = 1.0;
};

// Sum of the products of the pairs two ascending rows share, columns outside [0, width)
// skipped, in ascending column order.
double MergeRows(const int * i1, const double * v1, const int * i2, const double * v2, int n, int m,
                 int width) {
  double sum = 0.0;
  int a = 0, b = 0;
  while (a < n && b < m) {
    const int ca = i1[a], cb = i2[b];
    if (ca < 0 || ca >= width) {
      ++a;
    } else if (cb < 0 || cb >= width) {
      ++b;
    } else if (ca < cb) {
      ++a;
    } else if (cb < ca) {
      ++b;
    } else {
      sum += v1[a++] * v2[b++];
    }
  }
  return sum;
}

}  // namespace

// ---------------------------------------------------------------------------------------
// Norms and scalar products

double ZRSparseRectMatrix::ColNorm(int j) const {
  if (!Live(j) || fnRows < 0) return kSysMisValue;
  ScaledNorm norm;
  for (int i = 0; i < fnRows; ++i) {
    const int at = FindIndex(i, j);
    if (at >= 0) norm.Add(fvValues[at]);
  }
  return norm.Norm();
}

double ZRSparseRectMatrix::RowNorm(int i) const {
  if (!GoodRow(i)) return kSysMisValue;
  ScaledNorm norm;
  const std::size_t at = Slot(i);
  for (int k = 0; k < fnNZRow; ++k) {
    if (Live(fvIndices[at + k])) norm.Add(fvValues[at + k]);
  }
  return norm.Norm();
}

double ZRSparseRectMatrix::DotProductCol(int j, int k) const {
  if (!Live(j) || !Live(k) || fnRows < 0) return kSysMisValue;
  double sum = 0.0;
  for (int i = 0; i < fnRows; ++i) {
    const int a = FindIndex(i, j);
    if (a < 0) continue;
    const int b = FindIndex(i, k);
    if (b >= 0) sum += fvValues[a] * fvValues[b];
  }
  return sum;
}

double ZRSparseRectMatrix::DotProductRows(int i, int k) const {
  if (!GoodRow(i) || !GoodRow(k)) return kSysMisValue;
  return MergeRows(fvIndices.data() + Slot(i), fvValues.data() + Slot(i),
                   fvIndices.data() + Slot(k), fvValues.data() + Slot(k), fnNZRow, fnNZRow, fnCols);
}

double ZRSparseRectMatrix::DotProductRowCol(int i, const IZRRectMatrix & B, int j) const {
  if (!GoodRow(i) || j < 0 || j >= B.GetNCols() || B.GetNRows() < fnCols) return kSysMisValue;
  const std::size_t at = Slot(i);
  double sum = 0.0;
  for (int k = 0; k < fnNZRow; ++k) {
    const int c = fvIndices[at + k];
    if (Live(c)) sum += fvValues[at + k] * B.GetElem(c, j);
  }
  return sum;
}

double ZRSparseRectMatrix::DotProductRowRow(int i, const IZRRectMatrix & B, int k) const {
  if (!GoodRow(i) || k < 0 || k >= B.GetNRows() || B.GetNCols() != fnCols) return kSysMisValue;
  const std::size_t at = Slot(i);
  if (const ZRSparseRectMatrix * bs = AsSparse(B)) {
    return MergeRows(fvIndices.data() + at, fvValues.data() + at,
                     bs->fvIndices.data() + bs->Slot(k), bs->fvValues.data() + bs->Slot(k), fnNZRow,
                     bs->fnNZRow, fnCols);
  }
  const ZRRectMatrix * bd = AsDense(B);
  const double * row = bd != nullptr ? bd->GetRowPtr(k) : nullptr;
  double sum = 0.0;
  for (int m = 0; m < fnNZRow; ++m) {
    const int c = fvIndices[at + m];
    if (Live(c)) sum += fvValues[at + m] * (row != nullptr ? row[c] : B.GetElem(k, c));
  }
  return sum;
}

bool ZRSparseRectMatrix::IncrVecByColumn(int j, std::vector<double> & v, int start, int count,
                                         double f, bool check) const {
  if (check && (!Live(j) || start < 0 || count < 1 || count > fnRows ||
                static_cast<std::int64_t>(start) + count > static_cast<std::int64_t>(v.size()))) {
    return false;
  }
  const int n = std::min(count, fnRows);
  for (int i = 0; i < n; ++i) {
    const int at = FindIndex(i, j);
    if (at >= 0 && Live(j)) v[start + i] += f * fvValues[at];
  }
  return true;
}

// ---------------------------------------------------------------------------------------
// Products

bool ZRSparseRectMatrix::ComputeRV(const std::vector<double> & v, std::vector<double> & out) const {
  if (!IsValidMatrix() || v.size() < static_cast<std::size_t>(fnCols)) return false;
  if (&v == &out) {
    std::vector<double> copy;
    return CopyNoThrow(copy, v) && ComputeRV(copy, out);
  }
  if (!ResizeNoThrow(out, static_cast<std::size_t>(fnRows))) return false;
  const int * idx = fvIndices.data();
  const double * val = fvValues.data();
  const unsigned width = static_cast<unsigned>(fnCols);
  for (int i = 0; i < fnRows; ++i, idx += fnNZRow, val += fnNZRow) {
    double sum = 0.0;
    for (int k = 0; k < fnNZRow; ++k) {
      // One unsigned compare tests both ends: empty slots hold negative columns.
      if (static_cast<unsigned>(idx[k]) < width) sum += val[k] * v[idx[k]];
    }
    out[i] = sum;
  }
  return true;
}

bool ZRSparseRectMatrix::ComputeVR(const std::vector<double> & v, std::vector<double> & out) const {
  if (!IsValidMatrix() || v.size() < static_cast<std::size_t>(fnRows)) return false;
  if (&v == &out) {
    std::vector<double> copy;
    return CopyNoThrow(copy, v) && ComputeVR(copy, out);
  }
  if (!AssignNoThrow(out, static_cast<std::size_t>(fnCols), 0.0)) return false;
  const int * idx = fvIndices.data();
  const double * val = fvValues.data();
  const unsigned width = static_cast<unsigned>(fnCols);
  for (int i = 0; i < fnRows; ++i, idx += fnNZRow, val += fnNZRow) {
    const double vi = v[i];
    for (int k = 0; k < fnNZRow; ++k) {
      if (static_cast<unsigned>(idx[k]) < width) out[idx[k]] += vi * val[k];
    }
  }
  return true;
}

bool ZRSparseRectMatrix::ComputeMatrixProduct(const IZRRectMatrix & B, IZRRectMatrix & C) const {
  ZRRectMatrix * cd = AsDense(C);
  if (cd == nullptr || !IsValidMatrix() || !B.IsValidMatrix() || B.GetNRows() != fnCols) {
    return false;
  }
  const int n = B.GetNCols();
  ZRRectMatrix scratch;
  ZRRectMatrix & dst = (&C == &B) ? scratch : *cd;
  if (!dst.SetNRowsCols(fnRows, n, true)) return false;
  const ZRRectMatrix * bd = AsDense(B);
  const ZRSparseRectMatrix * bs = AsSparse(B);
  for (int i = 0; i < fnRows && n > 0; ++i) {
    // Row i of C gathers v * (row c of B) for its pairs (c, v) in ascending c: each
    // element receives its terms in the order of the dense dot product.
    // dst is this routine's own output; the dense class lends rows only as const.
    double * out = const_cast<double *>(dst.GetRowPtr(i));
    const std::size_t at = Slot(i);
    for (int k = 0; k < fnNZRow; ++k) {
      const int c = fvIndices[at + k];
      if (!Live(c)) continue;
      const double f = fvValues[at + k];
      if (bd != nullptr) {
        const double * brow = bd->GetRowPtr(c);
        for (int j = 0; j < n; ++j) out[j] += f * brow[j];
      } else if (bs != nullptr) {
        const std::size_t bt = bs->Slot(c);
        for (int m = 0; m < bs->fnNZRow; ++m) {
          const int j = bs->fvIndices[bt + m];
          if (j >= 0 && j < n) out[j] += f * bs->fvValues[bt + m];
        }
      } else {
        for (int j = 0; j < n; ++j) out[j] += f * B.GetElem(c, j);
      }
    }
  }
  if (&dst == &scratch) *cd = scratch;
  return cd->IsValidMatrix();
}

bool ZRSparseRectMatrix::ComputeProductMatrixTrans(const IZRRectMatrix & B,
                                                   ZRRectMatrix & C) const {
  if (!IsValidMatrix() || !B.IsValidMatrix() || B.GetNCols() != fnCols) return false;
  const int n = B.GetNRows();
  ZRRectMatrix scratch;
  ZRRectMatrix & dst = (&C == &B) ? scratch : C;
  if (!dst.SetNRowsCols(fnRows, n, true)) return false;
  for (int i = 0; i < fnRows; ++i) {
    for (int k = 0; k < n; ++k) dst.SetElem(i, k, DotProductRowRow(i, B, k));
  }
  if (&dst == &scratch) C = scratch;
  return C.IsValidMatrix();
}

// ---------------------------------------------------------------------------------------
// ZRSparseVector: multinomial logit

bool ZRSparseVector::ComputeProbabilities(const std::vector<double> & b, int K, int p,
                                          std::vector<double> & probs, double & logRef) const {
  if (K < 1 || p < 1) return false;
  const std::int64_t need = static_cast<std::int64_t>(K - 1) * p;
  const int minSize = GetMinVecSize();
  if (need > INT_MAX || static_cast<std::int64_t>(b.size()) < need || minSize < 0 || minSize > p) {
    return false;
  }
  if (probs.size() < static_cast<std::size_t>(K) &&
      !ResizeNoThrow(probs, static_cast<std::size_t>(K))) {
    return false;
  }
  if (K == 1) {
    probs[0] = 1.0;
    logRef = 0.0;
    return true;
  }
  // The linear predictors go into probs, then are replaced by the probabilities.
  double mx = std::numeric_limits<double>::lowest(), mn = std::numeric_limits<double>::max();
  bool finite = true;
  for (int k = 0; k < K - 1; ++k) {
    const double z = InnerProductWithPart(b, k * p);
    probs[k] = z;
    finite = finite && std::isfinite(z);
    mx = std::max(mx, z);
    mn = std::min(mn, z);
  }
  if (!finite) {
    std::fill(probs.begin(), probs.begin() + K, std::numeric_limits<double>::quiet_NaN());
    logRef = std::numeric_limits<double>::quiet_NaN();
    return false;
  }
  if (mx == mn) {
    const double z = mx;
    if (z > kExpMax) {
      std::fill(probs.begin(), probs.begin() + (K - 1), 1.0 / (K - 1));
      probs[K - 1] = 0.0;
      logRef = -z - std::log(static_cast<double>(K - 1));
    } else if (z < kExpMin) {
      std::fill(probs.begin(), probs.begin() + (K - 1), 0.0);
      probs[K - 1] = 1.0;
      logRef = 0.0;
    } else {
      const double e = std::exp(z);
      const double den = (K - 1) * e + 1.0;
      std::fill(probs.begin(), probs.begin() + (K - 1), e / den);
      probs[K - 1] = 1.0 / den;
      logRef = -std::log(den);
    }
    return true;
  }
  // Intended: when every z is so negative that exp(-mx) would overflow, the centre is
  // the reference's 0 instead of mx, so that the probabilities still sum to 1.
  const double top = (-mx > kExpMax) ? 0.0 : mx;
  // The integer shift s keeps z - s exact; kept in a double (trunc is the int conversion)
  // so that a z beyond the int range cannot overflow it.
  double s = 0.0;
  if (top > kExpMax) {
    s = std::trunc(top - kExpMax);
  } else if (mn < kExpMin) {
    s = std::max(std::trunc(top - kExpMax), std::trunc(mn - kExpMin));
  }
  double sum = (-top >= kExpMin) ? std::exp(-top) : 0.0;
  for (int k = 0; k < K - 1; ++k) {
    if (probs[k] - top >= kExpMin) sum += std::exp(probs[k] - top);
  }
  const double L = std::log(sum) + (top - s);
  for (int k = 0; k < K - 1; ++k) {
    const double e = probs[k] - s - L;
    probs[k] = e < kExpMin ? 0.0 : std::exp(e);
  }
  logRef = -s - L;
  probs[K - 1] = logRef < kExpMin ? 0.0 : std::exp(logRef);
  return true;
}

}  // namespace ZRMath_920
