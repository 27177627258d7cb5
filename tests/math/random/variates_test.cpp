// Variate generators on scripted uniforms: every branch of the normal, beta, binomial and
// gamma draws, the draw order of multivariate and Wishart values; the sharing and copying
// of sources; ZRRandomValues's setters and their settled quirks; draws allocate nothing.
#include "zrcommon920r/math/random/variates.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "support/alloccount.h"
#include "support/capture.h"
#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/dist/distfun.h"

namespace {

using ZRMath_920::ZRRandom;
using ZRMath_920::ZRRandomValues;
using ZRMath_920::ZRRNGBeta;
using ZRMath_920::ZRRNGBinomial;
using ZRMath_920::ZRRNGenerator;
using ZRMath_920::ZRRNGNormal;
using ZRMath_920::ZRRNGUCongruential;
using ZRMath_920::ZRSymMatrix;
using ZRMath_920::ZRURandom;
constexpr double kMiss = ZRCommon_920::kSysMisValue;
constexpr double kXi = 2.216035867166471;  // Kinderman and Ramage's xi
constexpr double kA = 0.479727404222441;
// Region 1 with u = 0.5 gives z = (w + 0.5 1.13113163544418) xi - xi: w = kZ0 + d gives
// z = d xi, up to the rounding of the sum.
constexpr double kZ0 = 1.0 - 0.5 * 1.13113163544418;
constexpr double kTol = 1e-14;  // a few roundings of numbers near 1

// Uniforms from a script, then fill (0.5 unless given) once it runs out.
class Script : public ZRRNGenerator, public ZRRandom {
 public:
  explicit Script(std::vector<double> values, double fill = 0.5)
      : fvValues(std::move(values)), fdFill(fill) {}
  void SetSeed(double) override {}
  double GetNext() override {
    return fnUsed < fvValues.size() ? fvValues[fnUsed++] : (++fnUsed, fdFill);
  }
  double GetRandom() override { return GetNext(); }
  std::size_t Used() const { return fnUsed; }

 private:
  std::vector<double> fvValues;
  double fdFill;
  std::size_t fnUsed = 0;
};

// ZRRandomValues drawing from a script through a ZRURandom.
struct ScriptedValues {
  explicit ScriptedValues(std::vector<double> uniforms = {}) : script(std::move(uniforms)) {
    values.SetURNGPtr(&source);
  }
  Script script;
  ZRURandom source{1, true, true, &script};
  ZRRandomValues values;
};

struct ScriptCase {
  int line;
  std::vector<double> uniforms;
  double want;
  std::size_t used;  // uniforms consumed
};

TEST(ZRRNGNormal, EveryRegionOnScriptedUniforms) {
  const ScriptCase cases[] = {
      // Region 1, the triangle: no rejection.
      {__LINE__, {0.5, kZ0 + 0.25}, 0.25 * kXi, 2},
      // Region 2: accepted by max(a, b); negated when a >= b.
      {__LINE__, {0.89, 0.3, 0.6}, kA - 0.59550713801594 * 0.3, 3},
      {__LINE__, {0.89, 0.6, 0.3}, -(kA - 0.59550713801594 * 0.3), 3},
      // Region 2: a negative z is drawn again, not tested.
      {__LINE__, {0.89, 0.85, 0.95, 0.3, 0.6}, kA - 0.59550713801594 * 0.3, 5},
      // Region 2's density test: |a - b| c <= RVAuxF(z) accepts (0.0374 <= 0.0398) or
      // rejects (0.0480 > 0.0426).
      {__LINE__, {0.89, 0.2, 0.9}, kA - 0.59550713801594 * 0.2, 3},
      {__LINE__, {0.89, 0.05, 0.95, 0.3, 0.6}, kA - 0.59550713801594 * 0.3, 5},
      // Region 3: by max, by the density (0.0296 <= 0.0342), after a rejection.
      {__LINE__, {0.93, 0.3, 0.6}, 1.10547366102207 * 0.3 + kA, 3},
      {__LINE__, {0.93, 0.9, 0.3}, -(1.10547366102207 * 0.3 + kA), 3},
      {__LINE__, {0.93, 0.5, 0.95, 0.3, 0.6}, 1.10547366102207 * 0.3 + kA, 5},
      // Region 4: by max, by the density (0.0257 <= 0.0310), after a rejection.
      {__LINE__, {0.965, 0.3, 0.6}, kXi - 0.63083480192196 * 0.3, 3},
      {__LINE__, {0.965, 0.8, 0.05}, -(kXi - 0.63083480192196 * 0.05), 3},
      {__LINE__, {0.965, 0.5, 0.95, 0.3, 0.6}, kXi - 0.63083480192196 * 0.3, 5},
      // Region 5, the tail: sign by u, and a rejected pair (a^2 t > xi^2 / 2).
      {__LINE__, {0.98, 0.5, 0.5}, std::sqrt(2 * (kXi * kXi / 2 + std::log(2.0))), 3},
      {__LINE__, {0.99, 0.5, 0.5}, -std::sqrt(2 * (kXi * kXi / 2 + std::log(2.0))), 3},
      {__LINE__, {0.98, 0.99, 0.5, 0.5, 0.5}, std::sqrt(2 * (kXi * kXi / 2 + std::log(2.0))), 5},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    Script normalScript(c.uniforms);
    ZRRNGNormal normal;
    normal.SetURNGenerator(normalScript);
    EXPECT_NEAR(normal.GetNext(), c.want, kTol);
    EXPECT_EQ(normalScript.Used(), c.used);
    // ZRRandomValues's RVSNor is the same routine on a ZRURandom.
    ScriptedValues v(c.uniforms);
    EXPECT_NEAR(v.values.RVSNor(), c.want, kTol);
    EXPECT_EQ(v.script.Used(), c.used);
  }
}

TEST(ZRRNGNormal, ParametersAndDegenerateSources) {
  Script script({0.5, kZ0 + 0.25, 0.5, kZ0 + 0.25, 0.5, kZ0 + 0.25, 0.5, kZ0 + 0.25});
  ZRRNGNormal normal(10.0, 2.0);
  normal.SetURNGenerator(script);
  EXPECT_NEAR(normal.GetNext(), 10.0 + 0.5 * kXi, 1e-13);
  EXPECT_NEAR(normal.GetNext(3.0, -1.0), 0.25 * kXi, kTol);  // a negative sd: N(0, 1)
  EXPECT_EQ(normal.GetNext(7.0, 0.0), 7.0);                  // sd 0: the mean ...
  EXPECT_EQ(script.Used(), 6u);                              // ... after its uniforms
  normal.SetParameters(5.0, std::nan(""));                   // NaN sd: N(0, 1)
  EXPECT_NEAR(normal.GetNext(), 0.25 * kXi, kTol);
  // A constant source is rejected for ever in region 2: miss after the tries, no hang.
  Script stuck({}, 0.9);
  normal.SetURNGenerator(stuck);
  EXPECT_EQ(normal.GetNext(), kMiss);
}

TEST(ZRRNGBeta, EveryRouteOnScriptedUniforms) {
  struct {
    int line;
    double a, b;
    std::vector<double> uniforms;
    double want;
    std::size_t used;
  } const cases[] = {
      {__LINE__, 1.0, 1.0, {0.3}, 0.3, 1},
      {__LINE__, 2.0, 1.0, {0.25}, 0.5, 1},  // u^(1/a)
      {__LINE__, 2.0, 1.0, {0.0}, 0.0, 1},
      {__LINE__, 1.0, 2.0, {0.25}, 0.5, 1},  // 1 - u^(1/b)
      {__LINE__, 1.0, 2.0, {0.0}, 1.0, 1},
      {__LINE__, 0.5, 1.0, {1e-300}, 0.0, 1},  // log(u) / a below -708: 0
      // Johnk: x = u^2, y = v^2; (0.81, 0.81) gives x + y > 1 and is rejected, a u of 0 is
      // drawn again, then x = y = 1/16 gives 1/2.
      {__LINE__, 0.5, 0.5, {0.81, 0.81, 0.0, 0.25, 0.25}, 0.5, 5},
      // Rejection from the normal at (2, 2): z = 1 (x = 0.854) with log(0.9) > -0.19 is
      // rejected; a z of 2.18 puts x outside [0, 1] and is drawn again; z = 0 gives 1/2.
      {__LINE__, 2.0, 2.0, {0.5, kZ0 + 1 / kXi, 0.9, 0.88, 0.99, 0.5, kZ0, 0.5}, 0.5, 8},
      // Shapes 0 or below act as 1, 1.
      {__LINE__, 0.0, 1.0, {0.3}, 0.3, 1},
      {__LINE__, 2.0, -1.0, {0.3}, 0.3, 1},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    Script script(c.uniforms);
    ZRRNGBeta beta(c.a, c.b);
    beta.SetURNGenerator(script);
    EXPECT_NEAR(beta.GetNext(), c.want, kTol);
    EXPECT_EQ(script.Used(), c.used);
  }
}

TEST(ZRRNGBeta, RejectionGivesUpAfter5000TriesForTheQuantile) {
  struct {
    int line;
    double a, b, stuck;
    std::size_t used;
  } const cases[] = {
      // Johnk with 0.99: x + y > 1 every time; two uniforms a try.
      {__LINE__, 0.5, 0.5, 0.99, 10000},
      // The normal route with 0.97: every z is -1.60 (region 4, a == b), which puts x below
      // 0; 5000 redraws of three uniforms.
      {__LINE__, 2.0, 2.0, 0.97, 15000},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    std::vector<double> uniforms(c.used, c.stuck);
    uniforms.push_back(0.3);  // the quantile's uniform
    Script script(uniforms);
    ZRRNGBeta beta(c.a, c.b);
    beta.SetURNGenerator(script);
    EXPECT_EQ(beta.GetNext(), ZRMath_920::ZRDistFun::IdfBeta(0.3, c.a, c.b));
    EXPECT_EQ(script.Used(), c.used + 1);
  }
}

TEST(ZRRNGBinomial, CountsAndSplitsOnScriptedUniforms) {
  // Relles's split at n = 100: one Bernoulli trial makes k = 99, the median Beta(50, 50) is
  // drawn with z = 0 (three uniforms, x = 1/2 accepted at u = 1/2), then 49 trials remain.
  std::vector<double> below = {0.3, 0.5, kZ0, 0.5};  // u == r counts
  std::vector<double> above = {0.9, 0.5, kZ0, 0.5};
  for (int i = 0; i < 49; ++i) below.push_back(i == 0 ? 0.55 : 0.65);  // r = 0.3 / 0.5
  for (int i = 0; i < 49; ++i) above.push_back(i == 0 ? 0.35 : 0.45);  // r = 0.2 / 0.5
  struct {
    int line;
    double n, p;
    std::vector<double> uniforms;
    double want;
    std::size_t used;
  } const cases[] = {
      {__LINE__, 3.0, 0.5, {0.5, 0.7, 0.2}, 2.0, 3},  // u <= p counts, u == p too
      {__LINE__, 100.0, 0.3, below, 2.0, 53},         // p below the median: 1 + 1
      {__LINE__, 100.0, 0.7, above, 51.0, 53},        // above: the lower 50, then 1
      {__LINE__, 5.0, 1.0, {}, 5.0, 0},               // r = 1: every trial, no uniforms
      {__LINE__, 5.0, 0.0, {}, 0.0, 0},
      {__LINE__, 2.5, 0.3, {}, 0.0, 0},  // n not whole
      {__LINE__, 5.0, 1.5, {}, 0.0, 0},  // p above 1
      {__LINE__, -3.0, 0.5, {}, 0.0, 0},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    Script script(c.uniforms);
    ZRRNGBinomial binomial;
    binomial.SetURNGenerator(script);
    EXPECT_EQ(binomial.GetNext(c.n, c.p), c.want);
    EXPECT_EQ(script.Used(), c.used);
  }
  // n = 99: 99 Bernoulli trials, no split.
  Script trials({});
  ZRRNGBinomial binomial(99.0, 0.25);
  binomial.SetURNGenerator(trials);
  EXPECT_EQ(binomial.GetNext(), 0.0);
  EXPECT_EQ(trials.Used(), 99u);
}

TEST(ZRRNGBinomial, CertainSuccessCountsEveryTrialAfterSplitting) {
  // Fault: with r exactly 1 required, lo + width rounding away from 1 lost trials at p = 1.
  ZRRNGBinomial binomial(1000.0, 1.0);
  binomial.SetSeed(12345.0);
  for (int i = 0; i < 200; ++i) ASSERT_EQ(binomial.GetNext(), 1000.0) << i;
  EXPECT_EQ(binomial.GetNext(1e6, 1.0), 1e6);
}

TEST(ZRRNGenerators, OwnedSourcesAreCopiedAndCallersShared) {
  // Each generator makes its congruential source at first use; a copy continues from a
  // duplicate of it, so the original and the copy give the same values.
  const auto copyContinues = [](auto original) {
    original.GetNext();
    auto copy = original;
    for (int i = 0; i < 5; ++i) EXPECT_EQ(copy.GetNext(), original.GetNext());
  };
  copyContinues(ZRRNGNormal(1.0, 2.0));
  copyContinues(ZRRNGBeta(2.5, 3.5));
  copyContinues(ZRRNGBinomial(500.0, 0.3));
  // The default source is the congruential generator from state 1; SetSeed reaches it.
  ZRRNGBeta uniform;
  ZRRNGUCongruential reference;
  EXPECT_EQ(uniform.GetNext(), reference.GetNext());
  uniform.SetSeed(99.0);
  reference.SetSeed(99.0);
  EXPECT_EQ(uniform.GetNext(), reference.GetNext());

  // A caller's source is shared by the copies, and by the inner generators.
  ZRRNGUCongruential shared;
  ZRRNGBinomial onShared(300.0, 0.5);
  onShared.SetURNGenerator(shared);
  ZRRNGBinomial sharing = onShared;
  ZRRNGUCongruential replay;
  onShared.GetNext();
  sharing.GetNext();
  ZRRNGBinomial onReplay(300.0, 0.5);
  onReplay.SetURNGenerator(replay);
  onReplay.GetNext();
  onReplay.GetNext();
  EXPECT_EQ(shared.GetNext(), replay.GetNext());  // both drew all their uniforms from it
}

// ---- ZRRandomValues -----------------------------------------------------------------------

TEST(ZRRandomValuesGamma, EveryRouteOnScriptedUniforms) {
  const double e1 = 1.0 - std::exp(-1.0), e3 = 1.0 - std::exp(-3.0);
  const double b = (0.5 + 2.718281828459045) / 2.718281828459045;  // GS's b at shape 0.5
  struct {
    int line;
    double shape, rate;
    std::vector<double> uniforms;
    double want;
    std::size_t used;
  } const cases[] = {
      {__LINE__, 1.0, 2.0, {0.5}, std::log(2.0) / 2.0, 1},
      // Fishman: x = 3 with log(1 - 0.3) above log 3 + 1 - 3 is rejected; x = 1 accepted.
      {__LINE__, 2.0, 4.0, {e3, 0.3, e1, 0.9}, 2.0 / 4.0, 4},
      // GS, q = u b <= 1: x = q^2, accepted when e^-x >= v (0.70 against 0.5, not 0.9);
      // a u of 0 is drawn again.
      {__LINE__, 0.5, 1.0, {0.0, 0.5, 0.5}, (0.5 * b) * (0.5 * b), 3},
      {__LINE__, 0.5, 2.0, {0.5, 0.9, 0.5, 0.5}, (0.5 * b) * (0.5 * b) / 2.0, 4},
      // GS, q > 1: x = -log((b - q) / 0.5) = 1.44, accepted when x^-0.5 >= 1 - v (v = 0.5,
      // not 0.1).
      {__LINE__, 0.5, 1.0, {0.9, 0.1, 0.9, 0.5}, -std::log((b - 0.9 * b) / 0.5), 4},
      {__LINE__, 0.0, 1.0, {}, kMiss, 0},
      {__LINE__, 2.0, -1.0, {}, kMiss, 0},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ScriptedValues v(c.uniforms);
    EXPECT_NEAR(v.values.RVGam(c.shape, c.rate), c.want, kTol * std::fabs(c.want));
    EXPECT_EQ(v.script.Used(), c.used);
  }
  // Intended: shape 1 with u == 1 is miss / rate.
  EXPECT_EQ(ScriptedValues(std::vector<double>{1.0}).values.RVGam(1.0, 4.0), kMiss / 4.0);
}

TEST(ZRRandomValuesGamma, SecondParameterDividesAndChiSquareHalves) {
  ScriptedValues v;
  ZRRandomValues & values = v.values;
  ASSERT_TRUE(values.SetParamGamma(1.0, 4.0));  // Intended: 4 is a rate, whatever the label
  EXPECT_NEAR(values.GetRandom(), std::log(2.0) / 4.0, kTol);
  ASSERT_TRUE(values.SetParamChi(2.0));  // Gamma(1) / 0.5
  EXPECT_NEAR(values.GetRandom(), 2.0 * std::log(2.0), kTol);
  EXPECT_NEAR(values.RVExp(2.0), std::log(2.0) / 2.0, kTol);
  EXPECT_EQ(values.RVNor(3.0, 0.0), 3.0);
  EXPECT_EQ(values.RVNor(3.0, -1.0), kMiss);
  EXPECT_EQ(values.RVUni(2.0, 1.0), kMiss);
  EXPECT_EQ(values.RVUni(1.0, 3.0), 2.0);
  EXPECT_EQ(values.RVChi(0.0), kMiss);
}

TEST(ZRRandomValues, SettersAndTheirSettledQuirks) {
  ZRRandomValues v;
  std::vector<double> out;
  ZRSymMatrix w;
  EXPECT_TRUE(v.SetParamNormal(0.0, 1.0));
  const auto standardness = [&v] {
    zrtest::DisplayCapture capture;
    v.Display();
    return capture.Text().find("Distribution is standard") != std::string::npos;
  };
  EXPECT_FALSE(standardness());  // Intended: (0, 1) given explicitly is not standard
  EXPECT_TRUE(v.SetParamUniform(0.0, 1.0));
  EXPECT_TRUE(standardness());
  EXPECT_FALSE(v.SetParamUniform(1.0, 1.0));
  EXPECT_FALSE(v.SetParamUniform(std::vector<double>{0, 0}, std::vector<double>{1}));
  EXPECT_FALSE(v.SetParamNormal(0.0, 0.0));
  EXPECT_FALSE(v.SetParamNormal(0));
  EXPECT_FALSE(v.SetParamChi(-1.0));
  EXPECT_FALSE(v.SetParamGamma(1.0, 0.0));
  EXPECT_FALSE(v.SetParamWishart(3, 2.9));
  EXPECT_FALSE(v.SetTolerance(0.0));

  // Univariate and multivariate draws refuse each other's settings.
  ASSERT_TRUE(v.SetParamNormal(3));
  EXPECT_EQ(v.GetRandom(), kMiss);
  EXPECT_FALSE(v.GetRandom(w));
  ASSERT_TRUE(v.SetParamNormal());
  EXPECT_FALSE(v.GetRandom(out));
  ASSERT_TRUE(v.SetParamGamma(2.0, 1.0));
  EXPECT_FALSE(v.GetRandom(out));

  // Intended: SetParamWishart(3, 3.0) is accepted, but its draws fail (m - p is 0).
  ASSERT_TRUE(v.SetParamWishart(3, 3.0));
  EXPECT_FALSE(v.GetRandom(w));
  EXPECT_FALSE(v.GetRandom(out));

  // Intended: a rank-deficient covariance passes; only all pivots redundant fails.
  ZRSymMatrix rank1(2, true), zero(2, true);
  rank1.SetElem(0, 0, 1.0), rank1.SetElem(1, 0, 1.0), rank1.SetElem(1, 1, 1.0);
  EXPECT_TRUE(v.SetParamNormal({0.0, 0.0}, 1.0, rank1));
  EXPECT_TRUE(v.GetRandom(out));
  EXPECT_EQ(out[0], out[1]);  // both rows of L are (1, 0)
  EXPECT_FALSE(v.SetParamNormal({0.0, 0.0}, 1.0, zero));
  EXPECT_FALSE(v.SetParamWishart(2, 5.0, zero));
  EXPECT_FALSE(v.SetParamNormal({0.0, 0.0, 0.0}, 1.0, rank1));  // rows differ
}

TEST(ZRRandomValues, SourceOwnership) {
  ZRURandom mine(5), other(6);
  ZRRandomValues v;
  EXPECT_FALSE(v.SetURNGPtr(nullptr));
  EXPECT_TRUE(v.SetURNGPtr(&mine));
  const double fromMine = ZRURandom(5).GetRandom();
  EXPECT_EQ(v.GetRandom(), fromMine);
  EXPECT_TRUE(v.SetURNGPtr(&other));  // Intended: a second call changes nothing
  ZRURandom mineAgain(5);
  mineAgain.GetRandom();
  EXPECT_EQ(v.GetRandom(), mineAgain.GetRandom());
  // A copy shares the caller's source.
  ZRRandomValues sharing(v);
  sharing.GetRandom();
  mineAgain.GetRandom();
  EXPECT_EQ(v.GetRandom(), mineAgain.GetRandom());
  // SetSeed drops the caller's source without freeing it (the sanitizer run would see a
  // double free) and owns a new twister, after which SetURNGPtr works once more.
  v.SetSeed(77);
  EXPECT_EQ(v.GetRandom(), ZRURandom(77).GetRandom());
  EXPECT_EQ(mine.GetUseTwister(), true);
  EXPECT_TRUE(v.SetURNGPtr(&other));
  EXPECT_EQ(v.GetRandom(), ZRURandom(6).GetRandom());
  // A copy of an owned twister restarts it from its seed.
  ZRRandomValues owner;
  owner.SetSeed(31);
  const double first = owner.GetRandom();
  ZRRandomValues restarted(owner);
  EXPECT_EQ(restarted.GetRandom(), first);
  restarted = owner;
  EXPECT_EQ(restarted.GetRandom(), first);
}

TEST(ZRRandomValues, DrawOrderOfMultivariateAndWishartValues) {
  // Two normals z = (0.1 xi, 0.2 xi) through L of [[4, 2], [2, 5]], i.e. [[2, 0], [1, 2]],
  // times sigma 2, plus the means.
  ScriptedValues normals(std::vector<double>{0.5, kZ0 + 0.1, 0.5, kZ0 + 0.2});
  ZRSymMatrix cov(2, true);
  cov.SetElem(0, 0, 4.0), cov.SetElem(1, 0, 2.0), cov.SetElem(1, 1, 5.0);
  ASSERT_TRUE(normals.values.SetParamNormal({10.0, -10.0}, 4.0, cov));
  std::vector<double> out;
  ASSERT_TRUE(normals.values.GetRandom(out));
  ASSERT_EQ(out.size(), 2u);
  EXPECT_NEAR(out[0], 10.0 + 2 * (2 * 0.1 * kXi), 1e-13);
  EXPECT_NEAR(out[1], -10.0 + 2 * (0.1 * kXi + 2 * 0.2 * kXi), 1e-13);

  // Wishart p = 2, m = 4: diagonal 0 from a chi-square on 2 df (-2 log(1 - u) = 4), then
  // diagonal 1 (= 1), then element (1, 0) = z; W = A A'.
  const std::vector<double> wishart = {1.0 - std::exp(-2.0), 1.0 - std::exp(-0.5), 0.5, kZ0 + 0.3};
  ScriptedValues plain(wishart), scaled(wishart);
  ASSERT_TRUE(plain.values.SetParamWishart(2, 4.0));
  ZRSymMatrix w;
  ASSERT_TRUE(plain.values.GetRandom(w));
  const double z = 0.3 * kXi;
  EXPECT_NEAR(w.GetElem(0, 0), 4.0, kTol * 4);
  EXPECT_NEAR(w.GetElem(1, 0), 2.0 * z, kTol * 4);
  EXPECT_NEAR(w.GetElem(1, 1), z * z + 1.0, kTol * 4);
  // With a scale S = L L', the draw is L (A A') L'.
  ASSERT_TRUE(scaled.values.SetParamWishart(2, 4.0, cov));  // L = [[2, 0], [1, 2]]
  ASSERT_TRUE(scaled.values.GetRandom(w));
  EXPECT_NEAR(w.GetElem(0, 0), 4.0 * 4.0, 1e-13);
  EXPECT_NEAR(w.GetElem(1, 0), 2.0 * (4.0 + 2.0 * 2.0 * z), 1e-13);
  EXPECT_NEAR(w.GetElem(1, 1), 4.0 + 4.0 * 2.0 * z + 4.0 * (z * z + 1.0), 1e-13);
}

TEST(ZRRandomValues, DisplayPrintsTheDistributionsFields) {
  ZRRandomValues v;
  ASSERT_TRUE(v.SetParamGamma(2.0, 3.0));
  zrtest::DisplayCapture capture;
  v.Display();
  EXPECT_EQ(capture.Text(),
            "\nZRRandomValues display start\nCurrent seed = 34567\nComputational tolerance = "
            "1e-12\nStandard uniform random number generator is defined\nDistribution type: "
            "Gamma\nDistribution is univariate\nNumber of variates = 1\nDistribution is not "
            "standard\nGamma shape parameter = 2\nGamma scale parameter = 3\nZRRandomValues "
            "display end");
}

TEST(RandomDraws, AllocateNothing) {
  ZRRNGNormal normal;
  ZRRNGBeta beta(0.5, 0.7), betaNormal(30.0, 40.0);
  ZRRNGBinomial binomial(100000.0, 0.3);
  ZRRandomValues uni, multi, gamma;
  ASSERT_TRUE(multi.SetParamNormal({1.0, 2.0}, 2.0, [] {
    ZRSymMatrix cov(2, true);
    cov.SetElem(0, 0, 2.0), cov.SetElem(1, 0, 1.0), cov.SetElem(1, 1, 2.0);
    return cov;
  }()));
  ASSERT_TRUE(gamma.SetParamGamma(0.5, 1.0));
  std::vector<double> out(2);
  for (ZRRNGenerator * g : std::vector<ZRRNGenerator *>{&normal, &beta, &betaNormal, &binomial}) {
    g->GetNext();  // each makes its source
  }
  zrtest::AllocCounter counter;
  double sum = 0.0;
  for (int i = 0; i < 100; ++i) {
    sum += normal.GetNext() + beta.GetNext() + betaNormal.GetNext() + binomial.GetNext() +
           uni.GetRandom() + gamma.GetRandom() + gamma.RVGam(5.0, 1.0);
    multi.GetRandom(out);
  }
  const long allocations = counter.Count();
  EXPECT_EQ(allocations, 0);
  EXPECT_TRUE(std::isfinite(sum));
}

}  // namespace
