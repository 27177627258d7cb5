// ZRDistFun: distribution, density and quantile functions of the continuous central
// distributions (normal, chi-square, gamma, beta, F, t), the discrete ones (binomial,
// negative binomial, hypergeometric), the non-central chi-square, F and t, percentiles and
// a median interval of frequency tables, and the numerical kernels they are built on
// (error function, normal quantile, log-gamma, incomplete gamma and beta and the inverse
// of the incomplete beta, the non-central incomplete beta).
#ifndef ZRCOMMON920R_MATH_DIST_DISTFUN_H
#define ZRCOMMON920R_MATH_DIST_DISTFUN_H

#include <cstdint>
#include <vector>

namespace ZRMath_920 {

// Static functions only: no state, no heap, nothing thrown or printed. Every function is
// pure and re-entrant (the two constants formed at first use are function-local statics).
//
// Failure: a public function returns the system-missing value miss
// (-1.7976931348623157e308, tested by exact equality) when it has no result; IdfBeta
// returns -1.0 instead. The kernels also set err: 0 success, 1 invalid parameter, 2 the
// computation failed.
//
// Non-finite arguments, the same for every public function and kernel: a NaN argument
// gives miss (err 1; -1.0 from IdfBeta), CdfStdNorm and CdfNorm included, while the kernel
// prbnrm keeps 0.5 for NaN. An infinite point gives the limit (0 or 1, density 0). An
// infinite parameter gives miss, except in CdfT's df > 1e8 branch and IdfT's df >= 1e8
// branch, which use the normal. No function returns NaN: a NaN formed inside (inf - inf)
// becomes miss with err 2.
//
// Exponent guards: exp of an argument below -708 (-708.39 where stated) counts as 0, and
// above 709 (141.8 in AS 91) as an overflow, as each routine says.
class ZRDistFun {
 public:
  ZRDistFun() = default;
  ZRDistFun(const ZRDistFun &) = default;
  ZRDistFun(ZRDistFun &&) = default;
  // Intended: the class has no state, so assignment does nothing.
  ZRDistFun & operator=(const ZRDistFun &) { return *this; }
  ZRDistFun & operator=(ZRDistFun &&) { return *this; }
  ~ZRDistFun() = default;

  // ---- Normal ------------------------------------------------------------------------
  // Standard normal distribution Phi(x), through the error function (prbnrm): erf above
  // 0, erfc below, so the lower tail keeps its relative accuracy down to about 5e-308
  // (x = -37.5) and is 0 beyond. exp(-x^2 / 2) carries the rounding of x^2: tested on both
  // tails to (4 + 1.5 x^2) eps relative against mpmath (1.7e-13 seen at -37). 0.5 at
  // 0; 0 and 1 at -inf and +inf; miss for NaN.
  static double CdfStdNorm(double x);
  // Normal distribution Phi((x - mean) / sd), as CdfStdNorm at (x - mean) / sd. 0 and 1
  // at x = -inf and +inf. miss unless sd > 0, and for NaN or an infinite mean or sd.
  static double CdfNorm(double x, double mean, double sd);
  // Standard normal quantile: the z with Phi(z) = p (probit: Algorithm AS 241, Wichura
  // 1988). Published accuracy about 1e-16 relative; tested to 4 eps relative against
  // mpmath for p from 5e-324 to 1 - 1e-12. Exactly 0.0 at p = 0.5; miss unless 0 < p < 1.
  static double IdfStdNorm(double p);
  // Normal quantile z(p) sd + mean, z as IdfStdNorm, tested to the same 4 eps; exactly
  // mean at p = 0.5. miss unless 0 < p < 1 and sd > 0, and for NaN or an infinite mean or sd.
  static double IdfNorm(double p, double mean, double sd);
  // Standard normal density exp(-x^2 / 2) / sqrt(2 pi), formed as exp(x (-0.5) x) x
  // 0.3989422804014327; tested to (2 + x^2) eps relative against mpmath (exp carries the
  // rounding of x^2). 0 at -inf and +inf; miss for NaN.
  static double PdfNormalStandard(double x);
  // Normal density exp(-z^2 / 2) / sqrt(2 pi) / sd, z = (x - mean) / sd, accuracy as
  // PdfNormalStandard at z. 0 at x = -inf and +inf. miss for sd == 0, for NaN, and for an
  // infinite mean or sd. Intended: a negative sd is not refused and gives a negative density.
  static double PdfNormal(double x, double mean, double sd);

  // ---- Chi-square and gamma ----------------------------------------------------------
  // Chi-square distribution P(df / 2, x / 2) by gammad (AS 239). Relative error about eps
  // times a |log h| + h + |lnGamma(a)| (a = df / 2, h = x / 2), tested to 1e-13 + twice that
  // against mpmath for df 0.1 to 1e9 and values down to 1e-300: 2.4e-13 measured up to df
  // 1000, 2.3e-6 at 1e9. df 2 is 1 - exp(-h): eps absolute only. From df 3.4e7, h within
  // 6e-8 below a + 1 is Wilson-Hilferty's (1e-9 absolute tested, 3e-12 measured). 0 for
  // x <= 0, 1 for x == +inf; miss unless df > 0 is finite and x is not NaN, and (inf - inf
  // in the exponent) for df above about 5e305.
  static double CdfChi(double x, double df);
  // Upper tail Q(df / 2, x / 2) by gammad, formed directly where the continued fraction
  // serves (h > 1 and h > a), else as 1 - P, whose relative error is then P / Q times
  // CdfChi's. Where CdfChi is Wilson-Hilferty's this is Peizer-Pratt's, whose 1 - y + y log y
  // keeps eps absolute only: up to sqrt(eps h / 2) absolute tested, 2.2e-4 relative
  // measured at df 1e9 (4e-3 absolute at df 1e12). 1 for x <= 0, 0 for x == +inf (not the
  // approximation's 0.5); miss as CdfChi.
  static double SigChi(double x, double df);
  // Chi-square quantile, the x with CdfChi(x, df) = p (tarnidfchi, AS 91 on AS 239). p is
  // compared with the lower tail, so the relative error is P's absolute error over x f(x):
  // tested to that bound plus 4 eps, measured 1.8e-13 (df to 2e5), 5e-11 (df 1e9), 1.9e-6
  // at p = 1 - 1e-12 (about eps / ((1 - p) x)). Where the density is below e^-141.8 (p
  // below about 1e-60) the bisection gives 1e-8 (3e-9 measured); a start below 5e-7 is
  // returned as it is, off by about x / (df + 2). Tested for df 0.1 to 1e9 and p 1e-300 to
  // 1 - 1e-12. 0 for p == 0; miss unless 0 <= p < 1 and df > 0 is finite, for df above
  // about 4e61, or when the computation fails.
  static double IdfChi(double p, double df);
  // Gamma distribution P(shape, h), h = x rate, by gammad (AS 239); exactly shape 1 is
  // 1 - exp(-h) (1 below -708.39), good to eps absolute only. Accuracy as CdfChi with
  // a = shape, plus the rounding of x rate (eps h f(h)); measured 1e-12 to shape 1000, 2.6e-6
  // at 1e9. 0 for x <= 0, 1 for x == +inf; miss unless shape and rate are positive and
  // finite and x is not NaN, and (inf - inf) for shape above about 3e305.
  static double CdfGam(double x, double shape, double rate);
  // Gamma quantile tarnidfchi(p, 2 shape) x 0.5 / rate, accurate as IdfChi with df =
  // 2 shape (measured 2.5e-14 to shape 1000 in the body, 1.5e-6 at p = 1 - 1e-12). 0 for
  // p == 0. miss unless 0 <= p < 1, 0 <= shape < inf and 0 < rate < inf. Intended: shape 0
  // passes this test and the kernel's miss is returned unscaled. A quantile beyond the
  // largest double (rate below about 1e-308) overflows to +inf.
  static double IdfGam(const double & p, const double & shape, const double & rate);
  // Gamma density rate (x rate)^(shape - 1) exp(-x rate) / Gamma(shape), through logs: the
  // relative error is eps times the size of the exponent's terms (tested to 1e-14 + twice
  // that; 1.2e-12 measured to shape 1000, 3e-6 at 1e9). 0 below -708.39, miss above 709. At
  // x == 0: rate for shape 1, 0 above 1, miss below 1; 0 for x < 0 and x == +inf. miss
  // unless shape and rate are positive and finite and x is not NaN, or when the exponent is
  // inf - inf.
  static double PdfGamma(double x, double shape, double rate);

  // ---- Beta --------------------------------------------------------------------------
  // Beta(a, b) distribution: the regularised incomplete beta I_x(a, b) (cdfbet). No
  // published figure; tested against mpmath to 2e-13 + eps (10 max(1, s) + 4 |log
  // Gamma(s)|) relative, s = a + b, for the series' tail, the fraction's stopping rule and
  // the log-space prefactor (measured 5e-14 for small shapes, 7.9e-10 at shapes 1e5). A
  // result formed as a complement is good to an absolute error only: 2 eps (a == 1, or
  // x >= (a + 1) / (s + 2)), 1e-13 for a < 1 and x above about 0.0034 (measured 7e-14).
  // 0 for x <= 0, 1 for x >= 1; miss unless a, b are positive and finite and x is not NaN.
  static double CdfBeta(double x, double a, double b);
  // Beta quantile: the x with I_x(a, b) = p, betinv(p, a, b, 1e-20, 1e-12) (AS 109 with AS
  // R83 start values). Closed forms for a == b == 0.5 and for a or b == 1 (tested to 4 eps
  // (1 + |log p|)); otherwise about 1e-10 absolute (tested 3e-10, measured 1.0e-10), never
  // below about 1e-12, and below p = 1e-20 it may stop at once or return a / (a + b). 0 for
  // p == 0 and 1 for p == 1 whatever the shapes. Intended: -1.0, not miss, for any other p
  // outside (0, 1), shapes not positive and finite, a NaN argument, or a failure.
  static double IdfBeta(const double & p, const double & a, const double & b);

  // ---- F -----------------------------------------------------------------------------
  // F distribution P(F <= x) (tarncdff): the incomplete beta, accurate as CdfBeta with
  // s = (df1 + df2) / 2 (3.4e-6 measured at df 1e9); for df1 == 1, 2 CdfT(sqrt x, df2) - 1,
  // good to an absolute error only (tested 1e-13, measured 2e-14 near the t's centre; Phi
  // above 1e8 df2, as CdfT). 0 for x <= 0, 1 for x == +inf; miss unless both df are
  // positive and finite and x is not NaN.
  static double CdfF(double x, double df1, double df2);
  // Upper tail P(F > x) from the complementary beta forms (never 1 - CdfF), accurate as
  // CdfBeta also for df1 == 1. 1 for x <= 0, 0 for x == +inf; miss as CdfF.
  static double SigF(double x, double df1, double df2);
  // F quantile (tarnidff): betinv on (df1 / 2, df2 / 2), or the square of the t quantile
  // at p / 2 + 0.5 for df1 == 1. As IdfBeta on the beta scale df1 F / (df1 F + df2), 3e-10
  // tested (for df1 == 1 plus 3e-16 db/dp, p / 2 + 0.5 and 2 - p - p rounding). 0 for
  // p == 0; miss unless 0 <= p < 1 and both df are positive and finite, or on failure.
  static double IdfF(double p, double df1, double df2);

  // ---- Student t ---------------------------------------------------------------------
  // t distribution P(T <= x) (tarncdft): atan(x) / pi + 0.5 for df == 1 and the shape-1
  // beta for df == 2 (2 eps absolute only); Phi(x) above 1e8 df, off by about phi(x) |x^3 +
  // x| / (4 df) (4.7e-4 relative at x = -37, df 1e9); otherwise the incomplete beta,
  // accurate as CdfBeta with s = (df + 1) / 2 (measured 9e-14 below df 1e3, 1.9e-7 at 5e7).
  // Exactly 0.5 at 0; 0 or 1 for infinite x, and once df / x^2 underflows. miss unless
  // df > 0 (infinite df takes Phi) and x is not NaN.
  static double CdfT(double x, double df);
  // Upper tail P(T > x) from the complementary beta forms, accurate as CdfT below 1e8 df;
  // no normal branch, so large df loses digits in logs (1.4e-6 above 1e8 df); infinite df
  // gives miss. Intended: below x = -1, (0.5 - c / 2) + 0.5 in that order.
  static double SigT(double x, double df);
  // t quantile (tarnidft) with the betinv tolerances acu and eps: probit(p) from 1e8 df (off
  // by about (z^2 + 1) / (4 df) relative), else from betinv on the beta scale w = df / (df +
  // t^2), about 1e-10 absolute in w (tested 3e-10; 1e-10 df / t^2 relative in t, 0.5% at df
  // 5e7 near the centre); above p = 0.5 the tail 2 - p - p rounds (5.5e-5 relative at
  // 1 - 1e-12). 0 for p == 0.5; miss unless 0 < p < 1, df > 0 and acu, eps are not NaN, and
  // where w underflows to 0 (df 1 or 2, p below about 1e-150 or 1e-16) or betinv fails.
  static double IdfT(double p, double df, double acu, double eps);
  // t density Gamma((df + 1) / 2) / (sqrt(df pi) Gamma(df / 2)) (1 + x^2 / df)^(-(df +
  // 1) / 2), through logs (0 below -708): loses eps times the terms, about 2 eps |log
  // Gamma(df / 2)| (1.2e-6 relative at df 1e9). 0 for infinite x. err 1 and miss unless df
  // > 0 is finite and x is not NaN; err 2 and miss if a log-gamma fails (df / 2 == 0).
  static double PdfT(double x, double df, std::int32_t & err);

  // ---- Binomial, negative binomial, hypergeometric -----------------------------------
  // Binomial distribution P(X <= floor(x)), n trials of probability p: the pmf at
  // min(floor(x), int(p (n + 1))) in logs, then recurrences down to 0 and up to floor(x),
  // each stopping once the sum no longer grows; where that log is below -708 the Peizer-
  // Pratt normal approximation (JASA 63 (1968), 1416-1456). The log-gammas lose about
  // eps lnGamma(n + 1) relative (3e-9 at n = 1e6; tested to 1e-13 + 4 eps lnGamma(n + 1)
  // against mpmath, down to 1e-300). err 3 and miss for a non-integer n (NaN included);
  // err 1 and miss for n < 1, n above 2147483647, p outside [0, 1] or a NaN x or p.
  static double CdfBin(double x, double n, double p, std::int32_t & err);
  // Binomial quantile: the largest k with CdfBin(k) <= prob, from a normal start stepped by
  // the pmf; a start whose CdfBin is within 2.842170943040401e-14 of prob is taken as it is.
  // -1 for prob == 0 and p < 1, n - 1 for prob == 0 and p == 1, n for prob == 1 and p > 0.
  // err 1 and miss for a non-integer n (NaN included); err 2 and miss for n < 1, n above
  // 2147483647, p or prob outside [0, 1] or NaN.
  static double IdfBin(double prob, double n, double p, std::int32_t & err);
  // Binomial probability C(n, x) p^x (1 - p)^(n - x) through logs (accuracy as CdfBin); 0
  // unless x is a whole number in [0, n]; pow() at x == 0 and x == n. err 1 and miss unless
  // 0 <= p <= 1 and 1 <= n < inf and x is not NaN; err 2 and miss if the exponent passes 709.
  static double PdfBin(double x, double n, double p, std::int32_t & err);
  // Negative binomial probability C(x + r - 1, x) p^r (1 - p)^x of x failures before the
  // r-th success, through logs (accuracy as PdfBin with n = x + r). 0 unless x is a whole
  // number >= 0; r == 0 is the point mass at 0. err 1 and miss unless 0 < p <= 1,
  // 0 <= r < inf and x is not NaN; err 2 and miss if the exponent passes 709.
  static double PdfNegBin(double x, double r, double p, std::int32_t & err);
  // Hypergeometric probability C(successes, x) C(total - successes, sample - x) /
  // C(total, sample) through logs (accuracy as PdfBin with n = total); 0 below -708.39.
  // miss outside the support or unless 1 <= sample, successes <= total.
  static double PdfHyper(std::int32_t x, std::int32_t total, std::int32_t sample,
                         std::int32_t successes);
  // Hypergeometric distribution P(X <= int(x)), after Algorithm AS 152: Lund, R. E.
  // (1980), Cumulative hypergeometric probabilities, Applied Statistics 29, 221-223: the
  // pmf at the point (a product up to a population of 1000, logs above), scaled by 1e35,
  // and the shorter tail summed by the pmf's recurrence. Above a population of 10000, when
  // min(sample, total - sample) > 16 max(r, 1 / r), r = successes / (total - successes),
  // the normal approximation Phi((int(x) - mu + 0.5) / sigma) instead (its own error, up
  // to 1e-2 absolute). Exact route: accuracy as CdfBin with n = total. err 1 and miss for
  // total above 2147483647, non-integer total, sample or successes, or sample, successes
  // outside [1, total], and for NaN x; 0 or 1 outside the support.
  static double CDFHyper(double x, double total, double sample, double successes, int & err);

  // ---- Non-central chi-square, F and t -----------------------------------------------
  // Non-central chi-square P(X <= x): the Poisson(lambda / 2) mixture of P(df / 2 + i, x / 2),
  // summed upward from 7.0344838253011 standard deviations below the Poisson peak until the
  // remaining weight times the next P is at most 1e-12 (at most 60000 terms): about 1e-12
  // absolute, with the Poisson mass below the start (tested 5e-12 against mpmath, lambda
  // to 1e4; 4.7e-12 seen). 0 for x <= 0, 1 for x == +inf;
  // miss unless df > 0 and lambda >= 0 are finite and x is not NaN, or when a kernel fails.
  static double NonCentralCdfChi(double x, double df, double lambda);
  // Non-central F P(F <= x) = ncdbet(x df1 / (x df1 + df2), df1 / 2, df2 / 2, lambda, tol):
  // tol absolute plus the mass below the start (tested 5e-12 at tol 1e-12). 0 for x <= 0, 1 for x
  // == +inf; miss unless df1, df2 > 0 and lambda >= 0 are finite, x and tol are not NaN, or when
  // ncdbet fails.
  static double NonCentralCdfF(double x, double df1, double df2, double lambda, double tol);
  // Non-central t P(T <= t), Algorithm AS 243: Lenth, R. V. (1989), Cumulative distribution
  // function of the non-central t distribution, Applied Statistics 38, 185-189, started at
  // the Poisson peak less 7.0344838253011 standard deviations and run at least one pass,
  // then until the bound 2 s xodd is at most tol (60000 passes). About 1e-10 absolute at
  // tol 1e-12 (tested 1e-10); for t < 0 it is Phi(-|delta|) minus the sum, and 1 - x rounds
  // away once t^2 / df passes about 1e12. Phi(-delta) at t == 0, CdfT for delta == 0; 0 or
  // 1 for |t| >= sqrt(largest double). miss unless df > 0 is finite, delta is finite, t
  // and tol are not NaN, where t^2 underflows, or when the passes do not converge.
  static double NonCentralCdfT(double t, double df, double delta, double tol);
  // Non-central t density: C sum_k Gamma((df + k + 1) / 2) / k! (sqrt 2 delta x / sqrt(x^2 +
  // df))^k, summed outward from the largest term (at most 10001 rounds each way, to a
  // relative change of 1e-10), signs alternating when x and delta differ in sign; tested to
  // 1e-9 relative against mpmath where the terms do not cancel. PdfT for delta == 0; 0 for
  // infinite x. err 1 and miss unless df > 0 is finite and x, delta are not NaN; err 2 and
  // miss when an exponent passes 709 or the peak index passes 2^31 - 10001.
  static double NonCentralPdfT(double x, double df, double delta, std::int32_t & err);
  // The lambda >= 0 with NonCentralCdfChi(x, df, lambda) = p: 0 when the central value is
  // already <= p; else lambda = x doubled or halved to a bracket, then bisection until
  // |CDF - p| <= tol and the bracket is within tol, or lo, hi agree to 8 eps. miss unless
  // df > 0, 0 <= p <= 1 and tol >= 0, for NaN x, when a CDF is miss, or after 2000 steps.
  static double FindNCParamChi(double x, double df, double p, double tol);
  // As FindNCParamChi for NonCentralCdfF(x, df1, df2, ., tol), first trial lambda = x df1.
  static double FindNCParamF(double x, double df1, double df2, double p, double tol);
  // The delta with NonCentralCdfT(x, df, delta, tolCdf) = p, x >= 0: 0 when CdfT(x) == p;
  // delta stepped by max(x, 1) up (CdfT(x) > p) or down to a bracket, then the bisection of
  // FindNCParamChi; a difference of exactly 0 returns that delta. miss unless x >= 0,
  // 0 <= p <= 1, df > 0 and tol >= 0, beyond |delta| = 1073741608.7516353, when a CDF is
  // miss, or after 2000 steps.
  static double FindNCParamT(double x, double df, double p, double tol, double tolCdf);

  // ---- Order-based statistics of frequency tables ------------------------------------
  // Percentile pct (0 to 100) of n classes with ascending values and frequencies freqs,
  // interpolated linearly at the target c = N pct / 100, N = sum of freqs. method <= 0:
  // each class a point weighted half its frequency at its value; method 1: classes of
  // width bounds[0] centred on the values; method >= 2: bounds[0..method-1] are ascending
  // upper class limits, the class above the last ends at 2 v - b (v the first value above
  // it) and the first class starts at 2 values[0] - bounds[0] (values[0] if that is above
  // bounds[0]). status -1 (result miss) for n < 2, vectors shorter than n (or than method
  // for the limits, bounds empty for method 1) or NaN pct; 1 below the first class, 2
  // above the last (result miss); 0 computed (result miss if an interpolation is 0 / 0).
  static void GPTile(std::int32_t n, double pct, const std::vector<double> & values,
                     const std::vector<double> & freqs, const std::vector<double> & bounds,
                     std::int32_t method, double & result, std::int32_t & status);
  // Confidence interval of level percent for the median of n ascending values with
  // frequencies adding to total: the order statistics r = q + 1 and r2 = total - q,
  // q = IdfBin(0.5 - level / 200, total, 0.5), and the coverage 200 (I_0.5(r, r2) - 0.5)
  // percent, 0 if negative. total == 2 (or q < 0) gives the whole range and 100. All three
  // outputs stay miss for total < 2, n < 1, short vectors or an IdfBin error; coverage
  // alone stays miss when wantCoverage is false or the incomplete beta fails.
  static void Mednci(std::int32_t n, const std::vector<double> & values,
                     const std::vector<double> & freqs, double total, double level,
                     bool wantCoverage, double & lower, double & upper, double & coverage);

  // Log of the gamma function log Gamma(x), x > 0: dnlgam (method, accuracy and failure
  // values there), public for other families.
  static double tarndnlgam(const double & x);

 protected:
  // The kernels. Protected rather than private so that tests, and the discrete and
  // non-central families built on them, can reach them through a derived class.

  // Error function erf(x): x P(frac(x^2)) for |x| < 2.2, 1 - P(frac(|x|))^16 for |x| < 6.9,
  // P of degree 12 from tables fitted by tools/fit_distfun_tables.py (under 1 eps); 1
  // beyond; odd. Tested to 2 eps relative against mpmath. miss for NaN.
  static double derf(const double & x);
  // Complementary error function erfc(x) = t g(t - 0.5) exp(-x^2), t = k / (|x| + k),
  // k = 3.97886080735226, g of degree 22 (23 coefficients); 2 minus that for negative x. 0
  // once log(g) - x^2 is below -708 (|x| above about 26.54). g is good to 4 eps and
  // exp(-x^2) carries the rounding of x^2: tested to (4 + x^2) eps relative against
  // mpmath. miss for NaN.
  static double derfc(const double & x);
  // Standard normal distribution: (derf(z / sqrt 2) + 1) / 2 for z > 0, derfc(-z /
  // sqrt 2) / 2 for z < 0, and 0.5 otherwise (z == 0, and NaN: kept as it stands).
  // Accuracy as CdfStdNorm.
  static double prbnrm(const double & z);
  // Standard normal quantile, Algorithm AS 241 (PPND16): Wichura, M. J. (1988), The
  // percentage points of the normal distribution, Applied Statistics 37, 477-484.
  // Published accuracy about 1e-16 relative; tested to 4 eps relative against mpmath. miss
  // unless 0 < p < 1 (NaN included); 0 for p == 0.5.
  static double probit(const double & p);
  // Log of the gamma function for x > 0: Stirling's series from 8, tables fitted by
  // tools/fit_distfun_tables.py on 0.5 to 8, exact 0 at 1 and 2, log(pi) / 2 at 0.5,
  // -log(x Q(x)) with the reciprocal gamma series below 0.5. Tested to 4 eps relative plus
  // 2e-16 absolute (all there is near the zeros at 1 and 2) from 5e-324 to 1e300; +inf
  // where the value overflows (x above about 2.5e305). miss for x <= 0, +inf and NaN.
  static double dnlgam(const double & x);
  // Log of the binomial coefficient C(n, k): a product for whole n <= 33 (tested to 4 eps
  // relative), log-gammas otherwise, losing about eps times their size (tested to 2 eps
  // times it); a negative result becomes 0. err 1 and miss unless 0 <= k <= n, n finite;
  // err 2 and miss, or +inf, where the log-gammas overflow (n above about 2.5e305).
  static double dnlbnc(const double & n, const double & k, std::int32_t & err);
  // Regularised incomplete gamma P(a, x) or Q(a, x) = 1 - P(a, x), Algorithm AS 239: Shea,
  // B. L. (1988), Chi-squared and incomplete gamma integral, Applied Statistics 37, 466-473;
  // underflow -708, rescaling 1.34e154, series tolerance 1e-14. Pearson's series forms P (x <= 1
  // or x <= a), Legendre's fraction Q, each times exp(a log x - x - lnGamma): eps times its
  // terms (1e-9 relative at a = 1e6, 1e-6 at 5e8); a == 1 is 1 - exp(-x), 1e-16 absolute only.
  // Past 2^31 - 1 series terms (x within 6e-8 below a, from a = 1.7e7), x^4 past e^709 or 100000
  // fraction passes: Wilson-Hilferty for P (1e-11), Peizer-Pratt for Q, whose y log y + 1 - y
  // cancels (sqrt(eps x / 2) absolute, 1e-4 at a = 5e8). Above a = 1e12 the series may take
  // seconds. err 1 and miss unless 0 < a < inf and x is not NaN; x == +inf gives the limit;
  // err 2 and miss when the exponent is inf - inf (a above about 3e305).
  static double gammad(const double & x, const double & a, const bool & lowerTail,
                       std::int32_t & err);
  // Regularised incomplete beta I_x(a, b): closed forms for a or b == 1; with a <= 1 it is
  // 1 - I_(1-x)(b, a). A shape <= 1 tries the power series first (10001 terms, to a term
  // below 1e-15); then the continued fraction (Abramowitz and Stegun 26.5.8) below x = (a +
  // 1) / (a + b + 2), to a change of 10 max(1, a + b) eps; after 10000 passes the Peizer-
  // Pratt normal approximation (JASA 63 (1968), 1416-1456). The prefactor is formed in logs
  // (0 below -708, at most 1); accuracy: see CdfBeta. err 1 and miss unless a, b are positive
  // and finite and x is not NaN; 0 for x <= 0, 1 for x >= 1; err 2 and miss if a NaN forms.
  static double cdfbet(const double & x, const double & a, const double & b, std::int32_t & err);
  // Auxiliary function g(x) = (1 - x^2 + 2 x log x) / (1 - x)^2 of the Peizer-Pratt
  // approximation: 1 at 0, 0 where 1 - x rounds to 0, -1 above M = sqrt of the largest
  // double, miss for negative x and NaN.
  static double cbtaux(const double & x);
  // Inverse of the incomplete beta: the x with I_x(a, b) = p. Algorithm AS 109: Cran, G.
  // W., Martin, K. J. and Thomas, G. E. (1977), Applied Statistics 26, 111-114, with the
  // start values of AS R83: Berry, K. J., Mielke, P. W. and Cran, G. W. (1990), Applied
  // Statistics 39, 309-310. Damped Newton (at most 50 passes, 2000 divisions of a step) until
  // a step is below sqrt(acu) or eps; accuracy: see IdfBeta. 0 for p == 0, 1 for p == 1
  // whatever the shapes; -1.0 for any other p outside (0, 1), shapes not positive and
  // finite, a NaN argument, or a failed pass; a / (a + b) where an exponent passes 709.
  static double betinv(const double & p, const double & a, const double & b, const double & acu,
                       const double & eps);
  // Exponential distribution 1 - exp(-x rate), 1 once the exponent is below -708.39; good to
  // about 1e-16 absolute, not relative, for small x rate. 0 for x <= 0, 1 for x == +inf.
  // err 1 and miss unless rate > 0 is finite and x is not NaN.
  static double cdfexp(const double & x, const double & rate, std::int32_t & err);
  // F distribution P(F <= x): with r = df2 / df1, I_(x/(r+x))(df1/2, df2/2) below 1,
  // 1 - I_(r/(r+x))(df2/2, df1/2) from 1, 2 P(T <= sqrt x) - 1 with df2 for df1 == 1.
  // Accuracy: see CdfF. err 1 and miss unless both df are positive and finite and x is not
  // NaN; 0 for x <= 0, 1 for x == +inf; err 2 and miss if the t or beta kernel fails.
  static double tarncdff(const double & x, const double & df1, const double & df2,
                         std::int32_t & err);
  // t distribution P(T <= x): Phi(x) above 1e8 df, atan(x) / pi + 0.5 for df == 1, else
  // I_(df/(df+x^2))(df/2, 1/2) / 2 (or 1 minus it) for |x| > 1 and (1 +- I_(x^2/(df+x^2))(1/2,
  // df/2)) / 2 otherwise. Accuracy: see CdfT. err 1 and miss unless df > 0 (infinite df
  // takes Phi) and x is not NaN; 0 or 1 for infinite x; err 2 and miss if the beta fails.
  static double tarncdft(const double & x, const double & df, std::int32_t & err);
  // Chi-square quantile: the x with P(df / 2, x / 2) = p. Algorithm AS 91: Best, D. J. and
  // Roberts, D. E. (1975), The percentage points of the chi-squared distribution, Applied
  // Statistics 24, 385-388: a start value (small-x series, an iteration for df <= 0.32, or
  // Wilson-Hilferty), then at most 20 Taylor steps on AS 239 until a step is below 5e-7
  // relative; idfchb from the start value when they fail. A start below 5e-7 is returned as
  // it is (about x / (df + 2) relative). 0 for p == 0; err 1 and miss unless 0 <= p < 1 and
  // df > 0 is finite; err 2 and miss when a start value's exponent passes 141.8 (df above
  // about 4e61), and as idfchb says.
  static double tarnidfchi(const double & p, const double & df, std::int32_t & err);
  // Chi-square quantile by bisection of P(df / 2, v) = p on the gamma scale, over [start / 4,
  // start], widened to [start / 4, 2 start] when P(start) < p; the result is 2 mid once the
  // bracket is within 1e-8 of mid, or after 40 halvings. err 1 and miss unless 0 < start <
  // inf, df > 0 is finite and p is not NaN; err 2 and miss when p is outside the bracket.
  static double idfchb(const double & p, const double & df, const double & start,
                       std::int32_t & err);
  // F quantile: for df1 == 1 the square of the t quantile at p / 2 + 0.5; otherwise, with
  // b = betinv(p, df1/2, df2/2, 1e-20, 1e-12), b / (1 - b) df2 / df1. Accuracy: see IdfF.
  // err 1 and miss unless 0 <= p < 1 and both df are positive and finite; 0 for p == 0;
  // err 2 and miss when the t quantile fails, b is outside [0, 1), or F would be infinite.
  static double tarnidff(const double & p, const double & df1, const double & df2,
                         std::int32_t & err);
  // t quantile: probit(p) from 1e8 df; otherwise b = betinv(q, df/2, 1/2, acu, eps), q =
  // 2p below 0.5 and 2 - p - p above, and -+sqrt((1/b - 1) df). Accuracy: see IdfT. err 1
  // and miss unless 0 < p < 1, df > 0 (infinite takes probit) and acu, eps are not NaN; 0
  // for p == 0.5; err 2 and miss when betinv fails (-1.0), its closed forms underflow to
  // b == 0 (df 1 or 2 at tiny p), or the quantile would be infinite.
  static double tarnidft(const double & p, const double & df, std::int32_t & err,
                         const double & acu, const double & eps);
  // Non-central incomplete beta: the Poisson(lambda / 2) mixture of I_x(a + i, b), summed
  // upward from 7.0344838253011 standard deviations below the Poisson peak until the
  // remaining weight times the next I is at most tol (tol >= 1: the first term alone), at
  // most 60000 terms; accurate to tol absolute. 0 for x <= 0, 1 for x >= 1, cdfbet for
  // lambda == 0. err 1 and miss unless a, b > 0 and lambda >= 0 are finite and x, tol are
  // not NaN; err 2 and miss when cdfbet fails or the sum does not converge.
  static double ncdbet(const double & x, const double & a, const double & b, const double & lambda,
                       std::int32_t & err, const double & tol);
};

}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_DIST_DISTFUN_H
