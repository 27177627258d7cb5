// Adaptive five-point Gauss-Lobatto quadrature over a finite interval, worked from left to
// right along a list of adjoining intervals, for integrands supplied by the caller.
#ifndef ZRCOMMON920R_MATH_DIST_QUADRATURE_H
#define ZRCOMMON920R_MATH_DIST_QUADRATURE_H

#include <list>
#include <ostream>

#include "zrcommon920r/common/warnings.h"

namespace ZRMath_920 {

// A quadrature rule: one panel's estimate and the whole integral.
class INumIntegration {
 public:
  virtual ~INumIntegration() = default;
  // The rule's estimate on one panel [left, right].
  virtual double SumUp(double left, double right) = 0;
  // The integral over [left, right].
  virtual double Integrate(double left, double right) = 0;
};

// The function to integrate, implemented by the caller. Evaluate may return miss
// (Value::SYSMISVALUE) where the function has no value; NaN is treated the same way.
class IIntegrand {
 public:
  virtual ~IIntegrand() = default;
  // Kept for callers that use the slot; never called here.
  virtual void Reserved() {}
  virtual double Evaluate(double x) = 0;
};

// Adjoining intervals [left k, right k] in two lists of equal length, worked on from the
// head; the integrator (not owned) gives the panel estimates.
class BoundsList {
 public:
  explicit BoundsList(INumIntegration * integrator) : fpIntegrator(integrator) {}
  virtual ~BoundsList() = default;

  // Empties the lists and puts [left, right] in.
  void Initialize(double left, double right);
  // i0 = SumUp on the head, i1 = the sum of SumUp on its two halves, split at
  // (right - left) 0.5 + left. Both 0 for an empty list or no integrator.
  void ComputeI0andI1(double & i0, double & i1) const;
  // Pops the head of both lists; the new size (0 for an empty list).
  int Remove();
  // Halves the head in place, the right half going directly behind it; the new size. An
  // empty list is left alone.
  int Split();
  // Left end of the head; 0.0 for an empty list.
  double GetFirstLeft() const;
  // Prints the size and every interval between "BoundsList display start" and
  // "BoundsList display end" on os.
  void Display(std::ostream & os);

 private:
  std::list<double> fLeft;
  std::list<double> fRight;
  INumIntegration * fpIntegrator;
};

// Adaptive Lobatto quadrature. Each panel is split (at most fnMaxSplits times) until the
// five-point estimate and the sum of its halves agree to fdTolerance (relative, or absolute
// when fbAbsConvergence is set); the better estimate is added and the next panel taken.
// The walk stops when what is left is at most fdCloseness of the range (dropped without an
// estimate), or after fnMaxIter panels (the rest in one coarse estimate, warning 901).
// Before that the limits may be brought in towards fdAdjustPivot to where |f| falls below
// fdAdjustCoef |f(pivot)|, when a <= pivot <= b. A missing value (or NaN) from the
// integrand gives miss and warning 902, added once. Warnings accumulate across calls.
// Five-point Lobatto is exact for polynomials of degree 7 on one panel.
class LobattoQuad : public INumIntegration {
 public:
  // integrand is not owned; a null integrand integrates to 0.
  explicit LobattoQuad(IIntegrand * integrand) : fpIntegrand(integrand) {}

  void SetIntegrand(IIntegrand * integrand) { fpIntegrand = integrand; }
  // Setters of the tolerance, the closeness ratio and the iteration and split caps ignore
  // values that are not positive.
  void SetTolerance(double tol);
  void SetCloseness(double ratio);
  void SetAbsConvergence(bool absolute) { fbAbsConvergence = absolute ? 1.0 : 0.0; }
  void SetMaxIter(int maxIter);
  void SetMaxSplits(int maxSplits);
  void SetAdjustRight(bool adjust) { fbAdjustRight = adjust; }
  void SetAdjustLeft(bool adjust) { fbAdjustLeft = adjust; }
  void SetBoundaryAdjustmentCoef(double coef) { fdAdjustCoef = coef; }
  void SetBoundaryAdjustmentPivot(double pivot) { fdAdjustPivot = pivot; }

  // Panels completed by the last Integrate.
  int GetNIterations() const { return fnIter; }
  // Warnings of all calls so far, in both lists.
  const ZRCommon_920::ZRWarnings & GetWarnings() const { return fWarnings; }

  // Five-point Lobatto estimate on [a, b]: 0 for a >= b; miss at the first point (left to
  // right) where the integrand is miss or NaN.
  double SumUp(double a, double b) override;
  // The integral over [a, b] as described for the class; 0 when the (adjusted) right limit
  // does not exceed a; miss with warning 902 when the integrand fails.
  double Integrate(double a, double b) override;

  // Prints the settings between "LobattoQuad display start" and "LobattoQuad display end".
  void Display(std::ostream & os) const;

 private:
  bool StopOuterLoop(int size, double left, double right, double range) const;
  bool StopInnerLoop(int splits, double i0, double i1) const;
  // f(x), with NaN turned into miss.
  double Eval(double x) const;
  // Adds warning code to both lists.
  void Warn(int code);

  IIntegrand * fpIntegrand;
  double fdTolerance = 1e-6;
  double fbAbsConvergence = 0.0;
  int fnMaxIter = 2000;
  int fnMaxSplits = 100;
  int fnIter = 0;
  ZRCommon_920::ZRWarnings fWarnings;
  double fdCloseness = 0.01;
  bool fbAdjustRight = true;
  bool fbAdjustLeft = true;
  double fdAdjustCoef = 1e-12;
  double fdAdjustPivot = 1.0;
};

}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_DIST_QUADRATURE_H
