// ZRDistFun, log-gamma family: the log of the gamma function and of the binomial
// coefficient.
#include <cmath>
#include <limits>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/dist/detail/distfun_util.h"
#include "zrcommon920r/math/dist/distfun.h"

namespace ZRMath_920 {
namespace {

using distfun_detail::Horner;

constexpr double kMiss = ZRCommon_920::kSysMisValue;
constexpr double kInf = std::numeric_limits<double>::infinity();
// lgamma(0.5) = log(pi) / 2, rounded to nearest.
constexpr double kLogSqrtPi = 0.5723649429247001;
// log(2 pi) / 2, the constant of Stirling's series.
constexpr double kHalfLog2Pi = 0.9189385332046728;
// Whole n up to this take the product form of the binomial coefficient.
constexpr double kBinomProductMax = 33.0;

// s(w) of Stirling's series for x >= 8, w = 1 / x^2, highest power first.
constexpr double kStirling[6] = {-0.0016331235920050082, 0.0008364453370338596,
                                 -0.0005951894757572819, 0.0007936505750541542,
                                 -0.0027777777773546303, 0.08333333333333309};

// Written by tools/fit_distfun_tables.py (mpmath 1.3.0); do not edit.
// lgamma(x), 3.5 <= x < 8: row floor(x) - 3, polynomial in x - (floor(x) + 0.5).
constexpr double kLogGammaMid[5][13] = {
    {2.195413232854438e-07, -7.28112077800418e-07, 1.2624951224515944e-06, -2.2743323412969086e-06,
     6.8501099899356415e-06, -2.7568725310850186e-05, 0.00012092820406394836,
     -0.0005666373852081711, 0.002929410770993131, -0.018034008631715948, 0.16517887805096532,
     1.1031566406452298, 1.2009736023470743},
    {1.550410009483203e-09, -6.942665183055346e-09, 3.4163092505294106e-08, -1.785310886794916e-07,
     9.526365950728068e-07, -5.24830092009702e-06, 3.02364597087765e-05, -0.0001858396115281003,
     0.0012634378563944073, -0.010259470220196428, 0.12436255151949105, 1.3888709263595291,
     2.4537365708424423},
    {3.9807722177352735e-10, -8.068158251042465e-10, 4.726526157735031e-09, -3.175351206387241e-08,
     2.092824664322167e-07, -1.4252031742235475e-06, 1.0165240628107899e-05, -7.745505018942854e-05,
     0.0006537746955916713, -0.006601491253557441, 0.09967119349478978, 1.6110931485817512,
     3.9578139676187165},
    {3.3968067575218854e-10, -1.3324498155353905e-10, 7.366685518616669e-10, -7.636201587146031e-09,
     6.001321076873435e-08, -4.868549792660091e-07, 4.144183421158977e-06, -3.771608571675244e-05,
     0.0003805693135863297, -0.004597985117810022, 0.08314226787495076, 1.792911330399933,
     5.662562059857142},
    {-3.4518567159632956e-10, -3.241848135167914e-11, 5.397741740223455e-10, -2.268602054157289e-09,
     2.0613515951120895e-08, -1.9544318288758405e-07, 1.934329572680408e-06,
     -2.0479024842032374e-05, 0.00024051819304536147, -0.0033842087561112262, 0.07130794834838258,
     1.9467574842460869, 7.534364236758733},
};
// lgamma(x), 0.5 < x < 3.5: y = x - 4.5 / (x + 0.5), row r = floor(y + 4),
// polynomial in y - (r - 3.5).
constexpr double kLogGammaLow[7][14] = {
    {-9.034086219111928e-11, 2.1559678873593023e-10, 9.003411124536945e-10, 1.1530793291690393e-08,
     -2.5575638654359717e-08, -1.5236081819258514e-07, -3.1680492846965834e-06,
     1.2290360898805877e-06, 2.3343724611753643e-05, 0.001115440380957627, 0.0034471705172391108,
     0.03198287045148572, -0.32705333652955404, 0.4012044244095393},
    {-3.3030797864021256e-11, -8.377197377769603e-10, -2.577311702722453e-09, 1.456209744546083e-08,
     1.3512681986606831e-07, 2.989872402207792e-07, -3.5810733332942085e-06,
     -2.4452608010623615e-05, -4.4171277559116364e-05, 0.0011285945518834666, 0.008046944543465174,
     0.049197757471267235, -0.24818372840948852, 0.11071780856646862},
    {3.153769914284449e-10, 1.6115761748961576e-09, -4.066311834335228e-09, -5.089595713450649e-08,
     -2.0291679767093115e-08, 1.3513037664107421e-06, 3.914299910020675e-06, -2.871505693525512e-05,
     -0.0002305213753318645, 0.0004553465638651208, 0.0115344458559292, 0.07924014651650442,
     -0.12152192626936502, -0.07916438300260539},
    {-4.976614435127362e-10, -1.1571052183814923e-09, 1.2369338394998333e-08,
     2.9377438875205484e-08, -3.062115635813862e-07, -7.740952995680529e-07, 8.167538301564307e-06,
     2.4124334002091546e-05, -0.00026061217602854283, -0.0009100008765999014, 0.010680938505982819,
     0.11395654404408526, 0.07209569059984076, -0.10971041451764267},
    {4.0597537731350816e-10, -1.360708552317507e-10, -1.0031972125887242e-08, 2.56954701867764e-08,
     2.0336195830217125e-07, -1.1809777050321613e-06, -3.0066033896824964e-06,
     4.402212909970623e-05, -1.462405872831762e-05, -0.001648737955968032, 0.005139275208662918,
     0.138435807535906, 0.3273019097825406, 0.08588339725978625},
    {-3.209916615115557e-11, 7.18177546639468e-10, 1.5082246470472851e-09, -2.6612332646778457e-08,
     7.622615424856793e-08, 4.7606115445522006e-07, -4.907493277291418e-06, 8.215127828287355e-06,
     0.00014804944103122386, -0.001221522557435624, -0.0008742528920649953, 0.14438703699657396,
     0.6131588973359555, 0.5551370815997648},
    {1.0798156611927473e-09, 4.17198243282022e-09, 9.683803235994299e-09, 9.078436745453335e-09,
     -4.3859471043453615e-08, 3.817147292174099e-07, -7.383972091083461e-07,
     -1.0888780185793784e-05, 0.00012491818876130461, -0.0004917178943187007, -0.004257070893126333,
     0.13595080378482394, 0.8951835600314992, 1.3107391253519625},
};
// Q(x) = 1 / Gamma(1 + x), polynomial in x: row 0 for x < 0.25 (kept as it stands,
// not refitted), row 1 for 0.25 <= x < 0.5.
constexpr double kRecipGamma[2][11] = {
    {9.967270908702825e-05, -0.00019831672170162227, -0.0011708531534962581, 0.007220128109483195,
     -0.00962213009367803, -0.04219772092994235, 0.1665386106524361, -0.04200263501129018,
     -0.6558780715206193, 0.5772156649015352, 1.0},
    {4.6733077563916276e-05, -6.817071088973147e-05, -0.0013252276686923814, 0.007335124981987823,
     -0.00968089821413877, -0.04217645489546724, 0.1665331448940835, -0.04200165663195994,
     -0.6558781876740784, 0.5772156731312317, 0.9999999997364181},
};

}  // namespace

// Log of the gamma function for x > 0. x >= 8: Stirling's series log(x) (x - 0.5) - x +
// log(2 pi) / 2 + s(1 / x^2) / x with s of degree 5; 3.5 <= x < 8 and 0.5 < x < 3.5: the
// tables kLogGammaMid and kLogGammaLow, fitted by tools/fit_distfun_tables.py to under
// 1 eps; exactly 0 at 1 and 2 and log(pi) / 2 at 0.5; below 0.5, -log(x Q(x)) with Q the
// reciprocal gamma series 1 / Gamma(1 + x). Tested to 4 eps relative plus 2e-16 absolute
// (all there is near the zeros at 1 and 2) against mpmath from 5e-324 to 1e300. +inf
// above about 2.5e305, where the value overflows. miss for x <= 0, +inf and NaN.
double ZRDistFun::dnlgam(const double & x) {
  // Intended: x <= 0 refused at once; x Q(x) is positive between -2.1 and -1.
  if (!(x > 0.0) || x == kInf) return kMiss;
  if (x >= 8.0) {
    const double w = 1.0 / (x * x);
    return std::log(x) * (x - 0.5) - x + kHalfLog2Pi + Horner(kStirling, w) / x;
  }
  if (x >= 3.5) {
    const double fl = std::floor(x);
    return Horner(kLogGammaMid[static_cast<int>(fl) - 3], x - (fl + 0.5));
  }
  if (x == 1.0 || x == 2.0) return 0.0;
  if (x > 0.5) {
    // y rounds into [-4, 2.375), so r is 0 to 6.
    const double y = x - 4.5 / (x + 0.5);
    const int r = static_cast<int>(std::floor(y + 4.0));
    return Horner(kLogGammaLow[r], y - (r - 3.5));
  }
  if (x == 0.5) return kLogSqrtPi;
  const double h = Horner(kRecipGamma[x < 0.25 ? 0 : 1], x) * x;
  if (!(h > 0.0)) return kMiss;
  return -std::log(h);
}

double ZRDistFun::tarndnlgam(const double & x) {
  return dnlgam(x);
}

// Log of the binomial coefficient C(n, k) = Gamma(n + 1) / (Gamma(k + 1) Gamma(n - k + 1))
// for real 0 <= k <= n. 0 for k == 0 or k == n. Whole n <= 33: the log of the product of
// (n - i) / (m - i), i < m = min(k, n - k), tested to 4 eps relative. Otherwise
// dnlgam(n + 1) - (dnlgam(k + 1) + dnlgam(n - k + 1)), a negative result (rounding
// only: the coefficient is at least 1) becoming 0; the difference loses about eps times
// the size of the three terms and of their slopes, and is tested to 2 eps times that.
// err 1 and miss unless 0 <= k <= n with n finite; err 2 and miss, or +inf, where the
// log-gammas overflow (n above about 2.5e305).
double ZRDistFun::dnlbnc(const double & n, const double & k, std::int32_t & err) {
  err = 0;
  if (!(n >= 0.0 && k >= 0.0 && n >= k) || n == kInf) {
    err = 1;
    return kMiss;
  }
  if (k == 0.0 || k == n) return 0.0;
  if (n <= kBinomProductMax && n == std::floor(n) && k == std::floor(k)) {
    const double m = n < 2.0 * k ? n - k : k;
    double prod = 1.0;
    for (int i = 0; i < static_cast<int>(m); ++i) prod *= (n - i) / (m - i);
    return std::log(prod);
  }
  const double r = dnlgam(n + 1.0) - (dnlgam(k + 1.0) + dnlgam(n - k + 1.0));
  if (std::isnan(r)) {  // inf - inf
    err = 2;
    return kMiss;
  }
  return r < 0.0 ? 0.0 : r;
}

}  // namespace ZRMath_920
