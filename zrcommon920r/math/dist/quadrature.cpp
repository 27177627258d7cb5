// Adaptive five-point Gauss-Lobatto quadrature (LobattoQuad) and the list of intervals it
// works along (BoundsList).
#include "zrcommon920r/math/dist/quadrature.h"

#include <cmath>
#include <iterator>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/common/status.h"
#include "zrcommon920r/display/display.h"

namespace ZRMath_920 {
namespace {

constexpr double kMiss = ZRCommon_920::kSysMisValue;
constexpr int kWarnMaxIter = 901;
constexpr int kWarnMissing = 902;

// Five-point Lobatto rule on [0, 1]: the ends, 0.5 -+ sqrt(3 / 28) and the centre.
const double kInnerOffset = std::sqrt(0.10714285714285714);
constexpr double kEndWeight = 0.05;
constexpr double kInnerWeight = 0.2722222222222222;  // 49 / 180
constexpr double kCentreWeight = 16.0 / 45.0;

// Routes the display functions to os for the lifetime of the object.
class StreamScope {
 public:
  explicit StreamScope(std::ostream & os) : fpSaved(ZRDisplay_920::GetOutStream()) {
    ZRDisplay_920::SetOutStream(os);
  }
  ~StreamScope() { ZRDisplay_920::SetOutStream(*fpSaved); }
  StreamScope(const StreamScope &) = delete;
  StreamScope & operator=(const StreamScope &) = delete;

 private:
  std::ostream * fpSaved;
};

}  // namespace

// ---- BoundsList -------------------------------------------------------------------------

void BoundsList::Initialize(double left, double right) {
  fLeft.assign(1, left);
  fRight.assign(1, right);
}

void BoundsList::ComputeI0andI1(double & i0, double & i1) const {
  i0 = i1 = 0.0;
  if (fLeft.empty() || fpIntegrator == nullptr) return;
  const double l = fLeft.front(), r = fRight.front(), m = (r - l) * 0.5 + l;
  i0 = fpIntegrator->SumUp(l, r);
  const double lo = fpIntegrator->SumUp(l, m), hi = fpIntegrator->SumUp(m, r);
  i1 = lo == kMiss || hi == kMiss ? kMiss : lo + hi;
}

int BoundsList::Remove() {
  if (fLeft.empty()) return 0;
  fLeft.pop_front();
  fRight.pop_front();
  return static_cast<int>(fLeft.size());
}

int BoundsList::Split() {
  if (fLeft.empty()) return 0;
  const double l = fLeft.front(), r = fRight.front(), m = (r - l) * 0.5 + l;
  fRight.front() = m;
  fLeft.insert(std::next(fLeft.begin()), m);
  fRight.insert(std::next(fRight.begin()), r);
  return static_cast<int>(fLeft.size());
}

double BoundsList::GetFirstLeft() const {
  return fLeft.empty() ? 0.0 : fLeft.front();
}

void BoundsList::Display(std::ostream & os) {
  const StreamScope scope(os);
  ZRDisplay_920::DisplayText(1, "BoundsList display start");
  ZRDisplay_920::DisplayI("Size of the list", static_cast<int>(fLeft.size()));
  int index = 0;
  for (auto l = fLeft.begin(), r = fRight.begin(); l != fLeft.end(); ++l, ++r, ++index) {
    ZRDisplay_920::DisplayI("List index", index);
    ZRDisplay_920::DisplayD("Left boundary", *l);
    ZRDisplay_920::DisplayD("Right boundary", *r);
  }
  ZRDisplay_920::DisplayText(1, "BoundsList display end");
}

// ---- LobattoQuad ------------------------------------------------------------------------

void LobattoQuad::SetTolerance(double tol) {
  if (tol > 0.0) fdTolerance = tol;
}

void LobattoQuad::SetCloseness(double ratio) {
  if (ratio > 0.0) fdCloseness = ratio;
}

void LobattoQuad::SetMaxIter(int maxIter) {
  if (maxIter > 0) fnMaxIter = maxIter;
}

void LobattoQuad::SetMaxSplits(int maxSplits) {
  if (maxSplits > 0) fnMaxSplits = maxSplits;
}

double LobattoQuad::Eval(double x) const {
  const double v = fpIntegrand->Evaluate(x);
  return std::isnan(v) ? kMiss : v;
}

void LobattoQuad::Warn(int code) {
  fWarnings.AddWarning(ZRCommon_920::ZRStatus(code, true), ZRCommon_920::ZRWarnings::DestBoth);
}

double LobattoQuad::SumUp(double a, double b) {
  if (!(a < b)) return 0.0;
  if (fpIntegrand == nullptr) return 0.0;
  const double h = b - a;
  const double points[5] = {0.0, 0.5 - kInnerOffset, 0.5, 0.5 + kInnerOffset, 1.0};
  const double weights[5] = {kEndWeight, kInnerWeight, kCentreWeight, kInnerWeight, kEndWeight};
  double sum = 0.0;
  for (int i = 0; i < 5; ++i) {
    const double f = Eval(points[i] * h + a);
    if (f == kMiss) return kMiss;
    sum += weights[i] * f;
  }
  return sum * h;
}

bool LobattoQuad::StopInnerLoop(int splits, double i0, double i1) const {
  if (splits > fnMaxSplits) return true;
  double d = std::fabs(i1 - i0);
  if (fbAbsConvergence == 0.0) {
    const double m = std::fmax(std::fabs(i0), std::fabs(i1));
    if (m == 0.0) return true;
    d /= m;
  }
  return d <= fdTolerance;
}

bool LobattoQuad::StopOuterLoop(int size, double left, double right, double range) const {
  return size == 0 || fnIter >= fnMaxIter || (right - left) / range <= fdCloseness;
}

double LobattoQuad::Integrate(double a, double b) {
  fnIter = 0;
  if (fpIntegrand == nullptr) return 0.0;
  // Not an interval of the real line: nothing to evaluate.
  if (!std::isfinite(a) || !std::isfinite(b)) return kMiss;
  const double givenA = a, pivot = fdAdjustPivot;
  bool failed = false;

  // Bring a limit in towards the pivot, halving the step until |f| reaches the threshold,
  // and stop at twice that step. A step that halves to 0 leaves the limit at the pivot.
  const auto pullIn = [&](double limit, double sign, double threshold) {
    const double fl = Eval(limit);
    if (fl == kMiss) {
      failed = true;
      return limit;
    }
    if (!(std::fabs(fl) < threshold)) return limit;
    double h = (limit - pivot) * sign;
    for (;;) {
      h *= 0.5;
      if (h == 0.0) return pivot;
      const double f = Eval(pivot + sign * h);
      if (f == kMiss) {
        failed = true;
        return limit;
      }
      if (std::fabs(f) >= threshold) break;
    }
    return sign * 2.0 * h + pivot;
  };
  // Intended: the limits move only when a <= pivot <= b; a pivot outside the interval
  // would otherwise drag a limit past it (exp(200 x) on [0, 0.5] with the pivot at 1).
  if ((fbAdjustRight || fbAdjustLeft) && a <= pivot && pivot <= b) {
    const double fp = Eval(pivot);
    if (fp == kMiss) {
      failed = true;
    } else {
      const double threshold = std::fabs(fp) * fdAdjustCoef;
      if (fbAdjustRight) b = pullIn(b, 1.0, threshold);
      if (fbAdjustLeft && !failed) a = pullIn(a, -1.0, threshold);
    }
  }
  if (!(b > givenA) && !failed) return 0.0;
  if (failed) {
    Warn(kWarnMissing);
    return kMiss;
  }

  BoundsList list(this);
  list.Initialize(a, b);
  const double range = b - a;
  double left = a, sum = 0.0, i0 = 0.0, i1 = 0.0;
  int size = 1;
  const auto missing = [&]() { return i0 == kMiss || i1 == kMiss; };
  while (!StopOuterLoop(size, left, b, range)) {
    list.ComputeI0andI1(i0, i1);
    for (int splits = 0; !missing() && !StopInnerLoop(splits, i0, i1); ++splits) {
      list.Split();
      list.ComputeI0andI1(i0, i1);
    }
    if (missing()) {
      Warn(kWarnMissing);
      return kMiss;
    }
    sum += i1;
    ++fnIter;
    size = list.Remove();
    if (size > 0) left = list.GetFirstLeft();
  }
  // The rest in one coarse estimate. A list already emptied has no rest to add.
  if (fnIter >= fnMaxIter && size > 0) {
    list.Initialize(left, b);
    list.ComputeI0andI1(i0, i1);
    if (missing()) {
      Warn(kWarnMissing);
      return kMiss;
    }
    sum += i1;
    Warn(kWarnMaxIter);
  }
  return sum;
}

void LobattoQuad::Display(std::ostream & os) const {
  const StreamScope scope(os);
  ZRDisplay_920::DisplayText(1, "LobattoQuad display start");
  ZRDisplay_920::DisplayD("Tolerance", fdTolerance);
  ZRDisplay_920::DisplayD("Check for absolute convergence indicator", fbAbsConvergence);
  ZRDisplay_920::DisplayI("Maximum number of iterations (in outer loop)", fnMaxIter);
  ZRDisplay_920::DisplayI("Maximum number of splits (in inner loop)", fnMaxSplits);
  ZRDisplay_920::DisplayI("Number of performed iterations", fnIter);
  ZRDisplay_920::DisplayD("Closeness ratio", fdCloseness);
  ZRDisplay_920::DisplayText(1, "LobattoQuad display end");
}

}  // namespace ZRMath_920
