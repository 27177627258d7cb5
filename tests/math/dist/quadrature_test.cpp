// Lobatto quadrature: exactness on one panel, limit adjustment, the closeness and iteration
// stops, missing values and warnings, and the display listings.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <sstream>
#include <vector>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/math/dist/quadrature.h"

namespace {

using ZRMath_920::BoundsList;
using ZRMath_920::IIntegrand;
using ZRMath_920::LobattoQuad;
constexpr double kMiss = ZRCommon_920::kSysMisValue;
constexpr double kEps = ZRCommon_920::kMachineEpsilon;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// An integrand from a function, recording every point it is asked for.
class Fn : public IIntegrand {
 public:
  explicit Fn(std::function<double(double)> f) : fF(std::move(f)) {}
  double Evaluate(double x) override {
    fvPoints.push_back(x);
    return fF(x);
  }
  std::vector<double> fvPoints;

 private:
  std::function<double(double)> fF;
};

// The codes in the first warning list (the second holds the same).
std::vector<int> Codes(const LobattoQuad & q) {
  std::vector<int> codes;
  for (const auto & s : q.GetWarnings().GetWarnings(true)) codes.push_back(s.GetErrorCode());
  EXPECT_EQ(q.GetWarnings().GetWarnings(false).size(), codes.size());
  return codes;
}

TEST(LobattoQuad, DegreeSevenExactInOnePanel) {
  // x^7 - 3 x^5 + 2 x^2 + 1 over [0, 2]: 32 - 32 + 16/3 + 2.
  Fn f([](double x) { return std::pow(x, 7) - 3 * std::pow(x, 5) + 2 * x * x + 1; });
  LobattoQuad q(&f);
  EXPECT_NEAR(q.SumUp(0, 2), 22.0 / 3, 64 * kEps * 22 / 3);  // terms up to 128
  EXPECT_NEAR(q.Integrate(0, 2), 22.0 / 3, 64 * kEps * 22 / 3);
  EXPECT_EQ(q.GetNIterations(), 1);
  // Degree 8 is not: x^8 over [0, 1] is 1/9, the rule gives 0.1 + 2 * 0.2722 * (...)^8.
  Fn g([](double x) { return std::pow(x, 8); });
  EXPECT_GT(std::fabs(LobattoQuad(&g).SumUp(0, 1) - 1.0 / 9), 1e-5);
}

TEST(LobattoQuad, NormalDensityOverHugeRangeWithPivotAtCentre) {
  Fn f([](double x) { return std::exp(-x * x / 2) / std::sqrt(2 * M_PI); });
  LobattoQuad q(&f);
  q.SetBoundaryAdjustmentPivot(0);
  EXPECT_NEAR(q.Integrate(-1e6, 1e6), 1.0, 2e-6);  // panel tolerance 1e-6 relative
  EXPECT_LT(q.GetNIterations(), 100);
  EXPECT_TRUE(Codes(q).empty());
}

TEST(LobattoQuad, ClosenessDropsTheLastPartOfTheRange) {
  // The walk stops once what is left is within 1% of the range: [1 - 1/128, 1] is dropped,
  // whose integral is (2/3) (1/128)^1.5.
  Fn f([](double x) { return std::sqrt(1 - x); });
  LobattoQuad q(&f);
  const double dropped = 2.0 / 3 * std::pow(1.0 / 128, 1.5);
  EXPECT_NEAR(q.Integrate(0, 1), 2.0 / 3 - dropped, 1e-7);
}

TEST(LobattoQuad, LimitComesInToTwiceTheLastHalvingStep) {
  // 1 up to 3, then 0: from b = 100 with the pivot at 1 the step 99 halves to 1.546875
  // (f(2.546875) = 1), so b = 1 + 2 * 1.546875 = 4.09375.
  Fn f([](double x) { return x <= 3 ? 1.0 : 0.0; });
  LobattoQuad q(&f);
  q.SetCloseness(1e-300);  // walk to the very end
  EXPECT_NEAR(q.Integrate(0, 100), 3.0, 1e-6 * 3);
  double largest = 0;
  for (std::size_t i = 9; i < f.fvPoints.size(); ++i) largest = std::fmax(largest, f.fvPoints[i]);
  EXPECT_EQ(f.fvPoints[8], 0.0);  // pivot, b, six halvings, then the left end
  EXPECT_EQ(largest, 4.09375);
}

TEST(LobattoQuad, PivotOutsideTheIntervalLeavesTheLimits) {
  // The pivot 1 lies right of [0, 0.5]: no limit moves (it would pull b past the pivot's
  // side and give 0).
  Fn f([](double x) { return std::exp(200 * x); });
  LobattoQuad q(&f);
  const double want = std::expm1(100.0) / 200;
  EXPECT_NEAR(q.Integrate(0, 0.5), want, 2e-6 * want);
}

TEST(LobattoQuad, MissingValuesGiveMissAndOneWarning) {
  struct {
    int line;
    double bad;
    bool adjust;
  } const cases[] = {{__LINE__, kMiss, true},
                     {__LINE__, kNaN, true},
                     {__LINE__, kMiss, false},
                     {__LINE__, kNaN, false}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    const double bad = c.bad;
    Fn f([bad](double x) { return x > 0.3 && x < 0.45 ? bad : 1.0; });
    Fn g([bad](double) { return bad; });  // fails at the pivot already
    LobattoQuad q(&f);
    q.SetAdjustLeft(c.adjust);
    q.SetAdjustRight(c.adjust);
    EXPECT_EQ(q.Integrate(0, 1), kMiss);
    EXPECT_EQ(q.Integrate(0, 1), kMiss);
    q.SetIntegrand(&g);
    EXPECT_EQ(q.Integrate(0, 1), kMiss);
    EXPECT_EQ(Codes(q), std::vector<int>{902});
  }
}

TEST(LobattoQuad, IterationCapAddsCoarseRestAndWarning) {
  Fn f([](double x) { return std::sqrt(1 - x); });
  LobattoQuad q(&f);
  q.SetMaxIter(2);
  const double v = q.Integrate(0, 1);
  EXPECT_EQ(q.GetNIterations(), 2);
  EXPECT_NEAR(v, 2.0 / 3, 1e-2);  // the rest in one coarse estimate, not dropped
  EXPECT_EQ(Codes(q), std::vector<int>{901});
}

TEST(LobattoQuad, DegenerateCallsReturnPromptly) {
  Fn zero([](double) { return 0.0; });
  LobattoQuad q(&zero);
  EXPECT_EQ(q.Integrate(0, 1), 0.0);  // both estimates 0 stop the splitting
  EXPECT_EQ(q.GetNIterations(), 1);
  EXPECT_EQ(q.Integrate(2, 1), 0.0);
  EXPECT_EQ(q.Integrate(kNaN, 1), kMiss);
  EXPECT_EQ(q.Integrate(0, HUGE_VAL), kMiss);
  EXPECT_EQ(LobattoQuad(nullptr).Integrate(0, 1), 0.0);
  // An adjustment coefficient above 1 halves the step to 0: b ends at the pivot.
  Fn one([](double) { return 1.0; });
  LobattoQuad r(&one);
  r.SetBoundaryAdjustmentCoef(2);
  r.SetAdjustLeft(false);
  r.SetBoundaryAdjustmentPivot(0.25);
  EXPECT_NEAR(r.Integrate(0, 1), 0.25, 1e-15);
  EXPECT_TRUE(Codes(q).empty());
}

TEST(LobattoQuad, DisplayListsSettingsByteForByte) {
  LobattoQuad q(nullptr);
  q.SetTolerance(0);  // ignored, as are the next three
  q.SetCloseness(-1);
  q.SetMaxIter(0);
  q.SetMaxSplits(-5);
  q.SetAbsConvergence(true);
  std::ostringstream os;
  q.Display(os);
  EXPECT_EQ(os.str(),
            "\nLobattoQuad display start\nTolerance = 1e-06\nCheck for absolute convergence "
            "indicator = 1\nMaximum number of iterations (in outer loop) = 2000\nMaximum number "
            "of splits (in inner loop) = 100\nNumber of performed iterations = 0\nCloseness "
            "ratio = 0.01\nLobattoQuad display end");
}

TEST(BoundsList, SplitRemoveAndDisplay) {
  BoundsList list(nullptr);
  EXPECT_EQ(list.Remove(), 0);
  EXPECT_EQ(list.Split(), 0);
  EXPECT_EQ(list.GetFirstLeft(), 0.0);
  list.Initialize(-1, 3);
  EXPECT_EQ(list.Split(), 2);  // [-1, 1], [1, 3]
  EXPECT_EQ(list.Split(), 3);  // [-1, 0], [0, 1], [1, 3]
  double i0 = 7, i1 = 7;
  list.ComputeI0andI1(i0, i1);  // no integrator
  EXPECT_EQ(i0, 0.0);
  EXPECT_EQ(i1, 0.0);
  EXPECT_EQ(list.Remove(), 2);
  EXPECT_EQ(list.GetFirstLeft(), 0.0);
  std::ostringstream os;
  list.Display(os);
  EXPECT_EQ(os.str(),
            "\nBoundsList display start\nSize of the list = 2\nList index = 0\nLeft boundary = "
            "0\nRight boundary = 1\nList index = 1\nLeft boundary = 1\nRight boundary = "
            "3\nBoundsList display end");
}

}  // namespace
