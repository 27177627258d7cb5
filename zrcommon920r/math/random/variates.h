// Variate generators. The object generators ZRRNGNormal, ZRRNGBeta and ZRRNGBinomial run on
// any ZRRNGenerator as their uniform source; ZRRandomValues is set to one distribution
// (uniform, normal, chi-square, gamma or Wishart; univariate or multivariate) and draws it
// from a ZRURandom.
//
// Sources: a generator given no source makes, at its first draw or SetSeed, a
// ZRRNGUCongruential with state 1, owns it and shares it with its inner generators (the
// beta's normal, the binomial's beta), which never own it. A copy of a generator that owns
// its source gets a congruential source of its own in the same state; a copy of one that
// does not shares the caller's. Draws allocate nothing.
#ifndef ZRCOMMON920R_MATH_RANDOM_VARIATES_H
#define ZRCOMMON920R_MATH_RANDOM_VARIATES_H

#include <cstdint>
#include <memory>
#include <vector>

#include "zrcommon920r/math/matrix/symmatrix.h"
#include "zrcommon920r/math/random/uniform.h"

namespace ZRMath_920 {

// Normal variates z sd + mean, z standard normal by Kinderman and Ramage's method:
// Kinderman, A. J. and Ramage, J. G. (1976), Computer generation of normal random
// variables, Journal of the American Statistical Association 71, 893-896. Five regions
// chosen by the first uniform; exact up to the uniforms' resolution (tested by
// Kolmogorov-Smirnov at fixed seeds). A source that keeps being rejected (a degenerate
// caller's source) stops after 1000 tries in a region and gives the system-missing value.
class ZRRNGNormal : public ZRRNGenerator {
 public:
  // A negative or NaN sd gives mean 0, sd 1.
  explicit ZRRNGNormal(double mean = 0.0, double sd = 1.0);
  ZRRNGNormal(const ZRRNGNormal & other);
  ZRRNGNormal & operator=(const ZRRNGNormal & other);
  ~ZRRNGNormal() override;

  // Draws from source from now on (not owned); an owned source is deleted.
  void SetURNGenerator(ZRRNGenerator & source);
  // Makes the default source if there is none, then SetSeed(seed) on the source.
  void SetSeed(double seed) override;
  // Stores the parameters; a negative or NaN sd stores mean 0, sd 1 instead.
  void SetParameters(double mean, double sd);
  // One draw z sd + mean; a negative or NaN sd draws with mean 0, sd 1 for this call. sd 0
  // gives the mean after the uniforms are drawn.
  double GetNext(double mean, double sd);
  double GetNext() override;

 private:
  struct Impl;
  std::unique_ptr<Impl> fpImpl;
};

// Beta(a, b) variates, by route: one uniform for a = b = 1; u^(1/a) for b = 1 and
// 1 - u^(1/b) for a = 1; Johnk's rejection for other shapes with a or b <= 1 (Johnk, M. D.
// (1964), Erzeugung von betaverteilten und gammaverteilten Zufallszahlen, Metrika 8,
// 5-15); above 1 both, rejection from a normal approximation. Either rejection gives up
// after 5000 tries and returns betinv(u, a, b, 1e-20, 1e-12) of a new uniform (-1.0 when
// that fails). Tested by Kolmogorov-Smirnov at fixed seeds. Default shapes 1, 1.
class ZRRNGBeta : public ZRRNGenerator {
 public:
  // A shape not positive and finite gives shapes 1, 1.
  explicit ZRRNGBeta(double a = 1.0, double b = 1.0);
  ZRRNGBeta(const ZRRNGBeta & other);
  ZRRNGBeta & operator=(const ZRRNGBeta & other);
  ~ZRRNGBeta() override;

  // As ZRRNGNormal's, and the inner normal draws from source too.
  void SetURNGenerator(ZRRNGenerator & source);
  void SetSeed(double seed) override;
  // Stores the shapes; a shape not positive and finite stores 1, 1.
  void SetParameters(double a, double b);
  // One draw in [0, 1]; shapes not positive and finite draw as 1, 1 for this call.
  double GetNext(double a, double b);
  double GetNext() override;

 private:
  struct Impl;
  std::unique_ptr<Impl> fpImpl;
};

// Binomial(n, p) variates by Relles's median splitting: while 100 or more trials remain,
// the median order statistic of the uniforms is drawn as a beta variate and halves the
// trials (Relles, D. A. (1972), A simple algorithm for generating binomial random
// variables when N is large, Journal of the American Statistical Association 67,
// 612-613); then one uniform per trial. Tested by chi-square at fixed seeds. Default 0, 0.
class ZRRNGBinomial : public ZRRNGenerator {
 public:
  // n must be a whole number in [0, 2^53] and p in [0, 1]; otherwise both are 0.
  explicit ZRRNGBinomial(double n = 0.0, double p = 0.0);
  ZRRNGBinomial(const ZRRNGBinomial & other);
  ZRRNGBinomial & operator=(const ZRRNGBinomial & other);
  ~ZRRNGBinomial() override;

  // As ZRRNGNormal's, and the inner beta (with its normal) draws from source too.
  void SetURNGenerator(ZRRNGenerator & source);
  void SetSeed(double seed) override;
  // Stores the parameters; invalid ones (see the constructor) store 0, 0.
  void SetParameters(double n, double p);
  // One count in [0, n] as a double; 0, drawing nothing, for invalid n or p, n 0 or p 0.
  double GetNext(double n, double p);
  double GetNext() override;

 private:
  struct Impl;
  std::unique_ptr<Impl> fpImpl;
};

// Draws the distribution it is set to from a ZRURandom: by default its own
// ZRURandom(34567, true, true), standard uniform on (0, 1). The setters choose the
// distribution and return false, changing nothing, for bad parameters (the two factoring
// setters excepted, see there); real parameters must also be finite. Draws give the
// system-missing value miss, or false, where they have no result, and allocate nothing but
// the Wishart draw's triangles.
class ZRRandomValues {
 public:
  ZRRandomValues();
  // Copies the settings; an owned source is copied (a twister restarts from its seed), a
  // caller's is shared.
  ZRRandomValues(const ZRRandomValues & other);
  ZRRandomValues & operator=(const ZRRandomValues & other);
  ~ZRRandomValues();

  // A new owned ZRURandom(seed, true, true) replaces the source; an owned one is freed, a
  // caller's is only dropped.
  void SetSeed(std::uint32_t seed);
  // The tolerance LTChol uses when the next covariance or scale matrix is factored; only a
  // positive finite value is taken.
  bool SetTolerance(double tol);
  // Whether source is not null. A caller's source replaces the owned one only while the
  // source is owned (the old one is freed); after that the call changes nothing.
  bool SetURNGPtr(ZRURandom * source);

  // Standard uniform on (0, 1).
  bool SetParamUniform();
  // Uniform on (low, high); false unless low < high. Standard exactly for (0, 1).
  bool SetParamUniform(double low, double high);
  // n standard uniforms; false for n < 1; n = 1 is univariate.
  bool SetParamUniform(int n);
  // Independent uniforms on (low[i], high[i]); false unless the vectors are of one non-zero
  // length with low[i] < high[i]. Standard exactly when every pair is (0, 1); one element
  // is univariate.
  bool SetParamUniform(const std::vector<double> & low, const std::vector<double> & high);
  // Standard normal.
  bool SetParamNormal();
  // Normal with mean and variance sigma2 > 0.
  bool SetParamNormal(double mean, double sigma2);
  // n independent standard normals; false for n < 1; n = 1 is univariate.
  bool SetParamNormal(int n);
  // Multivariate normal with means and covariance sigma2 cov; false unless means is not
  // empty, cov has as many rows and sigma2 > 0. One element is univariate (mean means[0],
  // variance sigma2). Otherwise cov is factored by LTChol at the tolerance: false when that
  // fails or finds as many redundant pivots as rows; the parameters stay set. A singular
  // cov with fewer redundant pivots is accepted and draws on its rank.
  bool SetParamNormal(const std::vector<double> & means, double sigma2, const ZRSymMatrix & cov);
  // Chi-square with df > 0 degrees of freedom.
  bool SetParamChi(double df);
  // Gamma with shape > 0 and the second parameter > 0, which divides the standard gamma
  // variate: a rate, though it is called scale.
  bool SetParamGamma(double shape, double scale);
  // Wishart of order p >= 1 with m >= p, identity scale.
  bool SetParamWishart(int p, double m);
  // Wishart of order p with scale matrix scale (p rows): false unless p >= 1 and m >= p;
  // scale is factored as in the multivariate normal setter, with its test.
  bool SetParamWishart(int p, double m, const ZRSymMatrix & scale);

  // One univariate value; miss for a multivariate setting or bad parameters.
  double GetRandom();
  // One multivariate uniform or normal vector, resized to the number of variates; false
  // for a univariate setting, chi-square, gamma and Wishart.
  bool GetRandom(std::vector<double> & values);
  // One Wishart matrix into out; false for any other setting, for m - p not positive or a
  // failed draw (out unchanged), or as ComputeLSLTrans says.
  bool GetRandom(ZRSymMatrix & out);

  // Standard normal, Kinderman and Ramage's method as ZRRNGNormal; miss when the source
  // keeps being rejected (1000 tries in a region).
  double RVSNor();
  // Gamma variate with shape and the divisor rate; miss unless both are positive.
  double RVGam(double shape, double rate);
  // Exponential variate -log(1 - u) / rate; miss unless rate > 0 and u < 1.
  double RVExp(double rate);
  // Normal variate RVSNor sigma + mean; mean for sigma 0 (no draw), miss for sigma < 0.
  double RVNor(double mean, double sigma);
  // Uniform u (high - low) + low; miss unless high >= low.
  double RVUni(double low, double high);
  // Chi-square variate RVGam(df / 2, 0.5); miss unless df > 0.
  double RVChi(double df);

  // "ZRRandomValues display start", the seed, tolerance, source, distribution and flags,
  // the present distribution's parameters by label, "ZRRandomValues display end".
  void Display() const;

 private:
  enum Distribution { kUniform = 0, kNormal = 1, kChiSquare = 2, kGamma = 3, kWishart = 4 };
  // Every field but the source and its ownership, from o.
  void CopySettings(const ZRRandomValues & o);
  // chol becomes cov factored by LTChol at the tolerance; false when LTChol fails or finds
  // fnVariates redundant pivots.
  bool FactorCovariance(const ZRSymMatrix & cov, ZRSymMatrix & chol);
  // Type, variate count and flags of a univariate setting, and of one with n variates.
  void Univariate(int distribution, bool standard);
  void Multivariate(int distribution, int n, bool standard);

  std::uint32_t fSeed = 34567;
  double fdTolerance = 1e-12;
  ZRURandom * fpURNG;
  bool fbOwnURNG = true;
  int fnDistribution = kUniform;
  bool fbUnivariate = true;
  int fnVariates = 0;
  bool fbStandard = true;
  double fdUniLow = 0.0, fdUniHigh = 1.0;
  std::vector<double> fvUniLow, fvUniHigh;
  double fdNormMean = 0.0;
  std::vector<double> fvNormMeans;
  double fdNormSigma2 = 1.0;
  ZRSymMatrix fmNormCov;
  double fdChiDF = 0.0;
  std::vector<double> fvChiDF;
  double fdGamShape = 0.0, fdGamScale = 0.0;
  int fnWishartP = 0;
  double fdWishartM = 0.0;
  ZRSymMatrix fmWishartScale;
  double fdNormSigma = 1.0;
  ZRSymMatrix fmNormChol;
  ZRSymMatrix fmWishartChol;
};

}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_RANDOM_VARIATES_H
