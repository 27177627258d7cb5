// ZRRandomValues: the distribution setters, the uniform, normal, gamma, chi-square,
// multivariate normal and Wishart draws on a ZRURandom, and the display.
#include <cmath>
#include <limits>
#include <string>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/display/display.h"
#include "zrcommon920r/math/random/detail/normal_kr.h"
#include "zrcommon920r/math/random/variates.h"

namespace ZRMath_920 {

namespace {

constexpr double kMiss = ZRCommon_920::kSysMisValue;
constexpr double kE = 2.718281828459045;
constexpr double kGammaExpMin = -708.39;
// Rejections allowed in one gamma draw. Ahrens and Dieter's accept at least 7 in 10; Fishman's
// about 1 in sqrt(2 pi shape), so shapes up to about 1e12 are served.
constexpr int kGammaTries = 1000;
constexpr int kFishmanTries = 10000000;

bool Finite(double x) {
  return std::isfinite(x);
}

}  // namespace

ZRRandomValues::ZRRandomValues() : fpURNG(new ZRURandom(34567, true, true)) {}

ZRRandomValues::ZRRandomValues(const ZRRandomValues & other)
    : fpURNG(other.fbOwnURNG ? new ZRURandom(*other.fpURNG) : other.fpURNG),
      fbOwnURNG(other.fbOwnURNG) {
  CopySettings(other);
}

ZRRandomValues & ZRRandomValues::operator=(const ZRRandomValues & other) {
  if (this == &other) return *this;
  ZRURandom * const source = other.fbOwnURNG ? new ZRURandom(*other.fpURNG) : other.fpURNG;
  if (fbOwnURNG) delete fpURNG;
  fpURNG = source;
  fbOwnURNG = other.fbOwnURNG;
  CopySettings(other);
  return *this;
}

ZRRandomValues::~ZRRandomValues() {
  if (fbOwnURNG) delete fpURNG;
}

void ZRRandomValues::CopySettings(const ZRRandomValues & o) {
  fSeed = o.fSeed;
  fdTolerance = o.fdTolerance;
  fnDistribution = o.fnDistribution;
  fbUnivariate = o.fbUnivariate;
  fnVariates = o.fnVariates;
  fbStandard = o.fbStandard;
  fdUniLow = o.fdUniLow;
  fdUniHigh = o.fdUniHigh;
  fvUniLow = o.fvUniLow;
  fvUniHigh = o.fvUniHigh;
  fdNormMean = o.fdNormMean;
  fvNormMeans = o.fvNormMeans;
  fdNormSigma2 = o.fdNormSigma2;
  fmNormCov = o.fmNormCov;
  fdChiDF = o.fdChiDF;
  fvChiDF = o.fvChiDF;
  fdGamShape = o.fdGamShape;
  fdGamScale = o.fdGamScale;
  fnWishartP = o.fnWishartP;
  fdWishartM = o.fdWishartM;
  fmWishartScale = o.fmWishartScale;
  fdNormSigma = o.fdNormSigma;
  fmNormChol = o.fmNormChol;
  fmWishartChol = o.fmWishartChol;
}

// ---- Source and tolerance ---------------------------------------------------------------

void ZRRandomValues::SetSeed(std::uint32_t seed) {
  ZRURandom * const source = new ZRURandom(seed, true, true);
  // A caller's source is dropped, never freed.
  if (fbOwnURNG) delete fpURNG;
  fpURNG = source;
  fbOwnURNG = true;
  fSeed = seed;
}

bool ZRRandomValues::SetTolerance(double tol) {
  if (!(tol > 0.0) || !Finite(tol)) return false;
  fdTolerance = tol;
  return true;
}

bool ZRRandomValues::SetURNGPtr(ZRURandom * source) {
  if (source == nullptr) return false;
  // Intended: only an owned source is replaced, so a second call changes nothing.
  if (fbOwnURNG && source != fpURNG) {
    delete fpURNG;
    fpURNG = source;
    fbOwnURNG = false;
  }
  return true;
}

// ---- Setters ------------------------------------------------------------------------------

void ZRRandomValues::Univariate(int distribution, bool standard) {
  fnDistribution = distribution;
  fbUnivariate = true;
  fnVariates = 1;
  fbStandard = standard;
}

void ZRRandomValues::Multivariate(int distribution, int n, bool standard) {
  fnDistribution = distribution;
  fbUnivariate = n == 1;
  fnVariates = n;
  fbStandard = standard;
}

bool ZRRandomValues::FactorCovariance(const ZRSymMatrix & cov, ZRSymMatrix & chol) {
  chol = cov;
  double minPivot = 0.0;
  const int redundant = chol.LTChol(fdTolerance, minPivot, false);
  // Intended: a rank-deficient matrix passes as long as one pivot is kept.
  return redundant != -1 && redundant < fnVariates;
}

bool ZRRandomValues::SetParamUniform() {
  return SetParamUniform(0.0, 1.0);
}

bool ZRRandomValues::SetParamUniform(double low, double high) {
  if (!(high > low) || !Finite(low) || !Finite(high)) return false;
  fdUniLow = low;
  fdUniHigh = high;
  Univariate(kUniform, low == 0.0 && high == 1.0);
  return true;
}

bool ZRRandomValues::SetParamUniform(int n) {
  if (n < 1) return false;
  fvUniLow.assign(static_cast<std::size_t>(n), 0.0);
  fvUniHigh.assign(static_cast<std::size_t>(n), 1.0);
  fdUniLow = 0.0;
  fdUniHigh = 1.0;
  Multivariate(kUniform, n, true);
  return true;
}

bool ZRRandomValues::SetParamUniform(const std::vector<double> & low,
                                     const std::vector<double> & high) {
  if (low.empty() || low.size() != high.size()) return false;
  bool standard = true;
  for (std::size_t i = 0; i < low.size(); ++i) {
    if (!(low[i] < high[i]) || !Finite(low[i]) || !Finite(high[i])) return false;
    standard = standard && low[i] == 0.0 && high[i] == 1.0;
  }
  fvUniLow = low;
  fvUniHigh = high;
  if (low.size() == 1) {
    fdUniLow = low[0];
    fdUniHigh = high[0];
  }
  Multivariate(kUniform, static_cast<int>(low.size()), standard);
  return true;
}

bool ZRRandomValues::SetParamNormal() {
  fdNormMean = 0.0;
  fdNormSigma2 = 1.0;
  fdNormSigma = 1.0;
  Univariate(kNormal, true);
  return true;
}

bool ZRRandomValues::SetParamNormal(double mean, double sigma2) {
  if (!(sigma2 > 0.0) || !Finite(sigma2) || !Finite(mean)) return false;
  fdNormMean = mean;
  fdNormSigma2 = sigma2;
  fdNormSigma = std::sqrt(sigma2);
  // Intended: never standard, also for (0, 1).
  Univariate(kNormal, false);
  return true;
}

bool ZRRandomValues::SetParamNormal(int n) {
  if (n < 1) return false;
  fdNormMean = 0.0;
  fdNormSigma2 = 1.0;
  fdNormSigma = 1.0;
  // Intended: the means are 1.0; the standard draw never reads them.
  fvNormMeans.assign(static_cast<std::size_t>(n), 1.0);
  fmNormCov.SetNRows(n, true);
  for (int i = 0; i < n; ++i) fmNormCov.SetElem(i, i, 1.0);
  fmNormChol = fmNormCov;
  Multivariate(kNormal, n, true);
  return true;
}

bool ZRRandomValues::SetParamNormal(const std::vector<double> & means, double sigma2,
                                    const ZRSymMatrix & cov) {
  if (means.empty() || cov.GetNRows() != static_cast<int>(means.size()) || !(sigma2 > 0.0) ||
      !Finite(sigma2)) {
    return false;
  }
  fvNormMeans = means;
  fdNormSigma2 = sigma2;
  fdNormSigma = std::sqrt(sigma2);
  fmNormCov = cov;
  Multivariate(kNormal, static_cast<int>(means.size()), false);
  if (means.size() == 1) {
    fdNormMean = means[0];
    return true;
  }
  return FactorCovariance(cov, fmNormChol);
}

bool ZRRandomValues::SetParamChi(double df) {
  if (!(df > 0.0) || !Finite(df)) return false;
  fdChiDF = df;
  Univariate(kChiSquare, false);
  return true;
}

bool ZRRandomValues::SetParamGamma(double shape, double scale) {
  if (!(shape > 0.0) || !(scale > 0.0) || !Finite(shape) || !Finite(scale)) return false;
  fdGamShape = shape;
  fdGamScale = scale;
  Univariate(kGamma, false);
  return true;
}

bool ZRRandomValues::SetParamWishart(int p, double m) {
  if (p < 1 || !(m >= p) || !Finite(m)) return false;
  fnWishartP = p;
  fdWishartM = m;
  fmWishartScale.SetNRows(p, true);
  for (int i = 0; i < p; ++i) fmWishartScale.SetElem(i, i, 1.0);
  fmWishartChol = fmWishartScale;
  Multivariate(kWishart, p, true);
  fbUnivariate = false;
  return true;
}

bool ZRRandomValues::SetParamWishart(int p, double m, const ZRSymMatrix & scale) {
  if (p < 1 || !(m >= p) || !Finite(m) || scale.GetNRows() != p) return false;
  fnWishartP = p;
  fdWishartM = m;
  fmWishartScale = scale;
  Multivariate(kWishart, p, false);
  fbUnivariate = false;
  return FactorCovariance(scale, fmWishartChol);
}

// ---- Variates -----------------------------------------------------------------------------

double ZRRandomValues::RVSNor() {
  ZRURandom & source = *fpURNG;
  return random_detail::StdNormalKR([&source] { return source.GetRandom(); });
}

// Gamma(shape) / rate. Shape 1: the exponential -log(1 - u). Above 1: Fishman's rejection
// from the exponential of mean shape (Fishman, G. S. (1976), Sampling from the gamma
// distribution on a computer, Communications of the ACM 19, 407-409). Below 1: Ahrens, J. H.
// and Dieter, U. (1974), Computer methods for sampling from gamma, beta, Poisson and
// binomial distributions, Computing 12, 223-246, algorithm GS.
double ZRRandomValues::RVGam(double shape, double rate) {
  if (!(shape > 0.0) || !(rate > 0.0) || !Finite(shape)) return kMiss;
  ZRURandom & source = *fpURNG;
  if (shape == 1.0) {
    const double u = source.GetRandom();
    // Intended: u == 1 gives miss / rate, not miss.
    return u < 1.0 ? -std::log(1.0 - u) / rate : kMiss / rate;
  }
  if (shape > 1.0) {
    for (int tries = 0; tries < kFishmanTries; ++tries) {
      const double x = -std::log(1.0 - source.GetRandom());
      const double w = std::log(1.0 - source.GetRandom());
      if ((std::log(x) + 1.0 - x) * (shape - 1.0) >= w) return x * shape / rate;
    }
    return kMiss;
  }
  const double b = (shape + kE) / kE;
  for (int tries = 0; tries < kGammaTries; ++tries) {
    double u = source.GetRandom();
    for (int redraws = 0; u == 0.0 && redraws < kGammaTries; ++redraws) u = source.GetRandom();
    if (u == 0.0) return kMiss;
    const double q = u * b;
    if (q <= 1.0) {  // GS step 2: x = q^(1/shape), accepted with probability e^-x
      const double t = std::log(q) / shape;  // t <= 0, so only the underflow guard applies
      const double x = t < kGammaExpMin ? 0.0 : std::exp(t);
      if (std::exp(-x) >= source.GetRandom()) return x / rate;
    } else {  // GS step 3: x = -log((b - q) / shape), accepted with probability x^(shape-1)
      const double x = -std::log((b - q) / shape);
      if (x > 0.0 && std::log(x) * (shape - 1.0) >= std::log(1.0 - source.GetRandom())) {
        return x / rate;
      }
    }
  }
  return kMiss;
}

double ZRRandomValues::RVExp(double rate) {
  if (!(rate > 0.0)) return kMiss;
  const double u = fpURNG->GetRandom();
  return u < 1.0 ? -std::log(1.0 - u) / rate : kMiss;
}

double ZRRandomValues::RVNor(double mean, double sigma) {
  if (sigma == 0.0) return mean;
  if (!(sigma > 0.0)) return kMiss;
  const double z = RVSNor();
  return z == kMiss ? kMiss : z * sigma + mean;
}

double ZRRandomValues::RVUni(double low, double high) {
  if (!(high >= low)) return kMiss;
  return fpURNG->GetRandom() * (high - low) + low;
}

double ZRRandomValues::RVChi(double df) {
  return df > 0.0 ? RVGam(df / 2.0, 0.5) : kMiss;
}

// ---- Draws --------------------------------------------------------------------------------

double ZRRandomValues::GetRandom() {
  if (!fbUnivariate) return kMiss;
  switch (fnDistribution) {
    case kUniform:
      return RVUni(fdUniLow, fdUniHigh);
    case kNormal:
      return RVNor(fdNormMean, fdNormSigma);
    case kChiSquare:
      return fdChiDF > 0.0 ? RVGam(fdChiDF * 0.5, 0.5) : kMiss;
    case kGamma:
      // Intended: the "scale" divides, so it acts as a rate.
      return RVGam(fdGamShape, fdGamScale);
    default:
      return kMiss;
  }
}

bool ZRRandomValues::GetRandom(std::vector<double> & values) {
  if (fbUnivariate || (fnDistribution != kUniform && fnDistribution != kNormal)) return false;
  const std::size_t n = static_cast<std::size_t>(fnVariates);
  values.resize(n);
  if (fnDistribution == kUniform) {
    for (std::size_t i = 0; i < n; ++i) values[i] = RVUni(fvUniLow[i], fvUniHigh[i]);
    return true;
  }
  for (std::size_t i = 0; i < n; ++i) values[i] = RVSNor();
  if (fbStandard) return true;
  // y = L z in place (ComputeLV reads only rows above the one it writes), then scale and
  // shift.
  fmNormChol.ComputeLV(values, values);
  for (std::size_t i = 0; i < n; ++i) values[i] = values[i] * fdNormSigma + fvNormMeans[i];
  return true;
}

// Bartlett's decomposition with one fixed departure: every diagonal element is the root of
// a chi-square variate on m - p degrees of freedom, so E(A A') = diag(m - p + i), i from 0.
bool ZRRandomValues::GetRandom(ZRSymMatrix & out) {
  if (fbUnivariate || fnDistribution != kWishart) return false;
  const int p = fnWishartP;
  // Intended: the same m - p degrees of freedom on every row, and none (false) for m == p.
  const double df = fdWishartM - p;
  if (!(df > 0.0)) return false;
  ZRSymMatrix a(p, true);
  if (!a.IsValidMatrix()) return false;
  for (int i = 0; i < p; ++i) {
    const double chi = RVGam(df * 0.5, 0.5);
    if (chi == kMiss || chi < 0.0) return false;
    a.SetElem(i, i, std::sqrt(chi));
    for (int j = 0; j < i; ++j) {
      const double z = RVSNor();
      if (z == kMiss) return false;
      a.SetElem(i, j, z);
    }
  }
  if (fbStandard) {
    out = a;
    out.LTLLTrans();
    return out.IsValidMatrix();
  }
  a.LTLLTrans();
  return a.ComputeLSLTrans(fmWishartChol, out);
}

// ---- Display ------------------------------------------------------------------------------

void ZRRandomValues::Display() const {
  using namespace ZRDisplay_920;
  static const char * const kNames[] = {"Uniform", "Normal", "Chi-square", "Gamma", "Wishart"};
  DisplayText(1, "ZRRandomValues display start");
  DisplayS("Current seed", std::to_string(fSeed));
  DisplayD("Computational tolerance", fdTolerance);
  DisplayText(1, fpURNG != nullptr ? "Standard uniform random number generator is defined"
                                   : "Standard uniform random number generator undefined");
  const bool known = fnDistribution >= kUniform && fnDistribution <= kWishart;
  DisplayText(1, std::string("Distribution type: ") + (known ? kNames[fnDistribution] : "?"));
  DisplayText(1, fbUnivariate ? "Distribution is univariate" : "Distribution is multivariate");
  DisplayI("Number of variates", fnVariates);
  DisplayText(1, fbStandard ? "Distribution is standard" : "Distribution is not standard");
  switch (fnDistribution) {
    case kUniform:
      if (fbUnivariate) {
        DisplayD("Uniform low boundary", fdUniLow);
        DisplayD("Uniform upper boundary", fdUniHigh);
      } else {
        DisplayDV("Uniform low boundaries", fvUniLow);
        DisplayDV("Uniform upper boundaries", fvUniHigh);
      }
      break;
    case kNormal:
      if (fbUnivariate) {
        DisplayD("Normal mean", fdNormMean);
      } else {
        DisplayDV("Normal means", fvNormMeans);
      }
      DisplayD("Normal sigma squared", fdNormSigma2);
      DisplayD("Normal sigma", fdNormSigma);
      if (!fbUnivariate) {
        DisplayText(1, "Multivariate normal proportional covariance matrix:");
        fmNormCov.Display();
        DisplayText(1, "Multivariate normal Cholesky factor:");
        fmNormChol.Display();
      }
      break;
    case kChiSquare:
      DisplayD("Chi-square number of degrees of freedom", fdChiDF);
      DisplayDV("Chi-square numbers of degrees of freedom", fvChiDF);
      break;
    case kGamma:
      DisplayD("Gamma shape parameter", fdGamShape);
      DisplayD("Gamma scale parameter", fdGamScale);
      break;
    case kWishart:
      DisplayI("Wishart parameter P", fnWishartP);
      DisplayD("Wishart parameter M", fdWishartM);
      DisplayText(1, "Wishart scale matrix:");
      fmWishartScale.Display();
      DisplayText(1, "Cholesky factor fmWishartChol:");
      fmWishartChol.Display();
      break;
    default:
      break;
  }
  DisplayText(1, "ZRRandomValues display end");
}

}  // namespace ZRMath_920
