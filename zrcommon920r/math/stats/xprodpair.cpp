// Pairwise accumulator: raw sums per pair, their fold into running statistics, merging of
// accumulators and the correlations.
#include "zrcommon920r/math/stats/xprodpair.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/display/display.h"

namespace ZRMath_920 {

ZRAccumXProdPair::ZRAccumXProdPair(int nVars, int nAccum)
    : fnVars(std::max(nVars, 0)),
      fnAccum(std::max(nAccum, 1)),
      fmCounts(fnVars - 1, true),
      fmAccumCases(fnVars - 1, true),
      fmSum1(fnVars - 1, true),
      fmSum2(fnVars - 1, true),
      fmSumSq1(fnVars - 1, true),
      fmSumSq2(fnVars - 1, true),
      fmSumXY(fnVars - 1, true),
      fmTotalCases(fnVars - 1, true),
      fmMean1(fnVars - 1, true),
      fmMean2(fnVars - 1, true),
      fmVar1(fnVars - 1, true),
      fmVar2(fnVars - 1, true),
      fmCovar(fnVars - 1, true),
      fmCorr() {
  TakePointers();
}

ZRAccumXProdPair::ZRAccumXProdPair(const ZRAccumXProdPair & other)
    : fnVars(other.fnVars),
      fnAccum(other.fnAccum),
      fmCounts(other.fmCounts),
      fmAccumCases(other.fmAccumCases),
      fmSum1(other.fmSum1),
      fmSum2(other.fmSum2),
      fmSumSq1(other.fmSumSq1),
      fmSumSq2(other.fmSumSq2),
      fmSumXY(other.fmSumXY),
      fmTotalCases(other.fmTotalCases),
      fmMean1(other.fmMean1),
      fmMean2(other.fmMean2),
      fmVar1(other.fmVar1),
      fmVar2(other.fmVar2),
      fmCovar(other.fmCovar),
      fmCorr(other.fmCorr) {
  TakePointers();
}

ZRAccumXProdPair & ZRAccumXProdPair::operator=(const ZRAccumXProdPair & other) {
  if (this == &other) return *this;
  fnVars = other.fnVars;
  fnAccum = other.fnAccum;
  fmCounts = other.fmCounts;
  fmAccumCases = other.fmAccumCases;
  fmSum1 = other.fmSum1;
  fmSum2 = other.fmSum2;
  fmSumSq1 = other.fmSumSq1;
  fmSumSq2 = other.fmSumSq2;
  fmSumXY = other.fmSumXY;
  fmTotalCases = other.fmTotalCases;
  fmMean1 = other.fmMean1;
  fmMean2 = other.fmMean2;
  fmVar1 = other.fmVar1;
  fmVar2 = other.fmVar2;
  fmCovar = other.fmCovar;
  fmCorr = other.fmCorr;
  TakePointers();
  return *this;
}

void ZRAccumXProdPair::TakePointers() {
  ZRSymMatrix * const stores[] = {&fmCounts, &fmAccumCases, &fmSum1,       &fmSum2,  &fmSumSq1,
                                  &fmSumSq2, &fmSumXY,      &fmTotalCases, &fmMean1, &fmMean2,
                                  &fmVar1,   &fmVar2,       &fmCovar};
  double ** const pointers[] = {&fpCounts, &fpAccumCases, &fpSum1,       &fpSum2,  &fpSumSq1,
                                &fpSumSq2, &fpSumXY,      &fpTotalCases, &fpMean1, &fpMean2,
                                &fpVar1,   &fpVar2,       &fpCovar};
  fnPairs = 0;
  for (double ** p : pointers) *p = nullptr;
  if (fnVars < 2) return;
  const std::int64_t pairs = static_cast<std::int64_t>(fnVars) * (fnVars - 1) / 2;
  for (const ZRSymMatrix * m : stores) {
    if (static_cast<std::int64_t>(m->fvLowerTri.size()) < pairs) return;
  }
  for (std::size_t s = 0; s < sizeof stores / sizeof stores[0]; ++s)
    *pointers[s] = stores[s]->fvLowerTri.data();
  fnPairs = static_cast<int>(pairs);
}

void ZRAccumXProdPair::InitAll() {
  // Intended: fmCounts keeps its size and contents.
  for (ZRSymMatrix * m : {&fmTotalCases, &fmMean1, &fmMean2, &fmVar1, &fmVar2, &fmCovar,
                          &fmAccumCases, &fmSum1, &fmSum2, &fmSumSq1, &fmSumSq2, &fmSumXY})
    m->SetNRows(fnVars, true);
  TakePointers();
}

void ZRAccumXProdPair::InitAccumCounts(int pair) {
  fpCounts[pair] = 0.0;
  fpAccumCases[pair] = 0.0;
  fpSum1[pair] = 0.0;
  fpSum2[pair] = 0.0;
  fpSumSq1[pair] = 0.0;
  fpSumSq2[pair] = 0.0;
  fpSumXY[pair] = 0.0;
}

bool ZRAccumXProdPair::Update(int i, double xi, int j, double xj, double w) {
  if (j < 0 || i <= j || i >= fnVars) return false;
  return Update(j + i * (i - 1) / 2, xi, xj, w);
}

bool ZRAccumXProdPair::Update(int pair, double x, double y, double w) {
  if (pair < 0 || pair >= fnPairs) return false;  // also no pointers (fnPairs 0)
  const double count = fpCounts[pair] + 1.0;
  fpCounts[pair] = count;
  const double xw = x * w;
  const double yw = y * w;
  fpAccumCases[pair] += w;
  fpSum1[pair] += xw;
  fpSum2[pair] += yw;
  fpSumSq1[pair] += xw * x;
  fpSumSq2[pair] += yw * y;
  fpSumXY[pair] += yw * x;
  // The counts are whole numbers, so comparing them as doubles is the integer test.
  if (count < static_cast<double>(fnAccum)) return true;
  return IncrStats(pair);
}

bool ZRAccumXProdPair::IncrStats(int pair) {
  const double n0 = fpTotalCases[pair];
  const double dn = fpAccumCases[pair];
  const double n = n0 + dn;
  if (!(n > 1.0) || !(dn > 0.0)) return n > 1.0;
  const double m1 = fpMean1[pair];
  const double m2 = fpMean2[pair];
  const double s1 = m1 * n0 + fpSum1[pair];
  const double s2 = (m2 * n0) + fpSum2[pair];
  const double m1New = s1 / n;
  const double m2New = s2 / n;
  // For the first fold (n0 = 0) the terms (n0 - 1) v are -1 x 0 and vanish.
  fpVar1[pair] =
      ((n0 - 1.0) * fpVar1[pair] + (m1 * n0) * m1 + fpSumSq1[pair] - m1New * s1) / (n - 1.0);
  fpVar2[pair] =
      ((n0 - 1.0) * fpVar2[pair] + (m2 * n0) * m2 + fpSumSq2[pair] - m2New * s2) / (n - 1.0);
  fpCovar[pair] =
      ((n0 - 1.0) * fpCovar[pair] + (m2 * n0) * m1 + fpSumXY[pair] - s2 * m1New) / (n - 1.0);
  fpMean1[pair] = m1New;
  fpMean2[pair] = m2New;
  fpTotalCases[pair] = n;
  InitAccumCounts(pair);
  return true;
}

bool ZRAccumXProdPair::Finish() {
  if (fnVars < 2) return true;
  if (fnPairs == 0) return false;  // stores that could not be sized
  for (int pair = 0; pair < fnPairs; ++pair) {
    if (!IncrStats(pair)) return false;
  }
  return true;
}

bool ZRAccumXProdPair::Merge(const ZRAccumXProdPair & o) {
  if (fnVars == 0) {
    fnVars = o.fnVars;
    // An object built with no variables has no counts yet: give it one per pair.
    const int pairRows = std::max(fnVars - 1, 0);
    if (fmCounts.GetNRows() != pairRows) fmCounts.SetNRows(pairRows, true);
    InitAll();
  }
  if (fnVars != o.fnVars) return false;
  if (fnVars >= 2 && (fnPairs == 0 || o.fnPairs != fnPairs)) return false;  // unsized stores

  // Intended: only the first p elements of each raw store are added, not one per pair,
  // and the counts are not merged; the caller finishes o first so that its sums are zero.
  ZRSymMatrix * const mine[] = {&fmAccumCases, &fmSum1, &fmSum2, &fmSumSq1, &fmSumSq2, &fmSumXY};
  const ZRSymMatrix * const theirs[] = {&o.fmAccumCases, &o.fmSum1,   &o.fmSum2,
                                        &o.fmSumSq1,     &o.fmSumSq2, &o.fmSumXY};
  for (std::size_t s = 0; s < sizeof mine / sizeof mine[0]; ++s) {
    std::vector<double> & a = mine[s]->fvLowerTri;
    const std::vector<double> & b = theirs[s]->fvLowerTri;
    const std::size_t count = std::min({static_cast<std::size_t>(fnVars), a.size(), b.size()});
    for (std::size_t k = 0; k < count; ++k) a[k] += b[k];
  }

  for (int pair = 0; pair < fnPairs; ++pair) {
    const double n = fpTotalCases[pair];
    const double no = o.fpTotalCases[pair];
    const double nNew = n + no;
    if (!(nNew > 1.0) || !(no > 0.0)) continue;
    // o may be this object: everything of o is read before the pair is written.
    const double m1 = fpMean1[pair], m2 = fpMean2[pair];
    const double v1 = fpVar1[pair], v2 = fpVar2[pair], c = fpCovar[pair];
    const double mo1 = o.fpMean1[pair];
    const double vo1 = o.fpVar1[pair], vo2 = o.fpVar2[pair], co = o.fpCovar[pair];
    const double a1 = m1 * n;
    const double a2 = m2 * n;
    // Intended: B, from o's mean of the first variable, serves both variables; o's second
    // mean is not read.
    const double b = mo1 * no;
    const double m1New = (b + a1) / nNew;
    const double m2New = (b + a2) / nNew;
    fpVar1[pair] =
        ((n - 1.0) * v1 + a1 * m1 + (no - 1.0) * vo1 + b * mo1 - m1New * (b + a1)) / (nNew - 1.0);
    fpVar2[pair] =
        ((n - 1.0) * v2 + a2 * m2 + (no - 1.0) * vo2 + b * mo1 - m2New * (b + a2)) / (nNew - 1.0);
    // Intended: with n = 0 the term a2 a1 / n is 0 / 0, and the covariance NaN.
    fpCovar[pair] =
        ((n - 1.0) * c + a2 * a1 / n + (no - 1.0) * co + b * b / no - (b + a2) * (b + a1) / nNew) /
        (nNew - 1.0);
    fpMean1[pair] = m1New;
    fpMean2[pair] = m2New;
    fpTotalCases[pair] = nNew;
    IncrStats(pair);
  }
  return true;
}

template <typename Ptr>
bool ZRAccumXProdPair::MergeList(const std::vector<Ptr> & list) {
  const ZRAccumXProdPair * first = nullptr;
  for (const Ptr & q : list) {
    if (q != nullptr) {
      first = q;
      break;
    }
  }
  const int n = first != nullptr ? first->fnVars : 0;
  if (n < 1 || (fnVars != 0 && fnVars != n)) return false;
  for (const Ptr & q : list) {
    if (q != nullptr && !Merge(*q)) return false;
  }
  return true;
}

bool ZRAccumXProdPair::Merge(const std::vector<ZRAccumXProdPair *> & list) {
  return MergeList(list);
}

bool ZRAccumXProdPair::Merge(const std::vector<const ZRAccumXProdPair *> & list) {
  return MergeList(list);
}

const ZRSymMatrix & ZRAccumXProdPair::GetCorr() {
  fmCorr.Resize(fnVars);
  if (!fmCorr.IsValidMatrix()) return fmCorr;
  const std::vector<double> & cov = fmCovar.fvLowerTri;
  const std::size_t nCov = cov.size();
  double * r = fmCorr.fvLowerTri.data();
  // Intended: the covariance store is read by symmetric packed indices as it stands, so
  // the last row's diagonal lies past it (taken as a zero variance); and the quotient
  // takes the square root of the square root of each diagonal element.
  auto rootOfDiag = [&](int i) {
    const std::size_t d = static_cast<std::size_t>(i) * (static_cast<std::size_t>(i) + 3) / 2;
    return d < nCov ? std::sqrt(cov[d]) : 0.0;
  };
  std::size_t k = 0;
  for (int i = 0; i < fnVars; ++i) {
    const double si = rootOfDiag(i);
    for (int j = 0; j <= i; ++j, ++k) {
      const double sj = rootOfDiag(j);
      r[k] = si > 0.0 && sj > 0.0 ? cov[k] / std::sqrt(si) / std::sqrt(sj)
                                  : ZRCommon_920::kSysMisValue;
    }
  }
  return fmCorr;
}

void ZRAccumXProdPair::Display() const {
  auto show = [](const char * label, const ZRSymMatrix & m) {
    ZRDisplay_920::DisplayDVTR(label, m.fvLowerTri, m.fnRows);
  };
  ZRDisplay_920::DisplayText(1, "ZRAccumXProdPair display start");
  ZRDisplay_920::DisplayI("Number of variables", fnVars);
  ZRDisplay_920::DisplayI("Number of accumulations", fnAccum);
  show("The matrix of counts of accumulations", fmCounts);
  show("The matrix of accumulated numbers of cases", fmAccumCases);
  show("The matrix of accumulated sums of first variable", fmSum1);
  show("The matrix of accumulated sums of second variable", fmSum2);
  // Intended: the sums of squares of the first variable are labelled but fmSum1 is shown,
  // and those of the second variable are not shown at all.
  show("The matrix of accumulated sums of squares of first variable", fmSum1);
  show("The matrix of accumulated sums of cross-products", fmSumXY);
  show("The matrix of total numbers of cases", fmTotalCases);
  show("The matrix of means of first variable", fmMean1);
  show("The matrix of means of second variable", fmMean2);
  show("The matrix of variances of first variable", fmVar1);
  show("The matrix of variances of second variable", fmVar2);
  show("The matrix of covariances", fmCovar);
  if (fmCorr.GetNRows() > 0) show("The matrix of correlations", fmCorr);
  ZRDisplay_920::DisplayText(1, "ZRAccumXProdPair display end");
}

}  // namespace ZRMath_920
