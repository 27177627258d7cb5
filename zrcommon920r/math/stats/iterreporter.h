// The iteration reporter: the state of an iterative estimator's latest iteration under
// fixed measure names, for a caller polling the progress interfaces.
#ifndef ZRCOMMON920R_MATH_STATS_ITERREPORTER_H
#define ZRCOMMON920R_MATH_STATS_ITERREPORTER_H

#include <string>
#include <vector>

#include "zrcommon920r/common/progress.h"

namespace ZRMath_920 {

// Publishes the iteration number ("iterNum"), the number of step halvings ("stepHalving"),
// the pseudo -2 log-likelihood ("loglik"), the elapsed time in seconds ("time") and up to
// three vectors of estimates ("paramEstim", "paramEstim2", "paramEstim3"). Names match
// exactly, by length and bytes. The vectors belong to the estimator and must outlive their
// use here; a reader sees them as they stand when read. Nothing is locked.
class ZRIterationReporter : public ZRCommon_920::ProgressReportVect {
 public:
  // Everything zero or null.
  ZRIterationReporter() = default;
  // Copies share the estimator's vectors: the pointers are copied, not the vectors.
  ZRIterationReporter(const ZRIterationReporter &) = default;
  ZRIterationReporter & operator=(const ZRIterationReporter &) = default;
  ~ZRIterationReporter() override;

  // fnIter for "iterNum", fnStepHalving for "stepHalving", -1 for any other name.
  int DiscreteMeasure(const std::string & name) override;
  // fdLogLik for "loglik", fdTime for "time", the system-missing value for any other name.
  double ScaleMeasure(const std::string & name) override;
  // The vector pointer for "paramEstim", "paramEstim2" or "paramEstim3"; null otherwise.
  const std::vector<double> * VectorMeasure(const std::string & name) override;
  // Back to the state after construction: every field zero or null.
  virtual void Reset();
  // The fields on the diagnostic stream between "ZRIterationReporter display start" and
  // "ZRIterationReporter display end" lines; the first vector, or a line saying its pointer
  // is 0, and the second and third only when set.
  virtual void Display() const;

  // One iteration's state with one vector of estimates; the second and third vectors stay.
  void SetInfo(const std::vector<double> * params, int iter, int halving, double logLik,
               double time);
  // One iteration's state with three vectors of estimates; the step halvings stay.
  void SetInfo(const std::vector<double> * p1, const std::vector<double> * p2,
               const std::vector<double> * p3, int iter, double logLik, double time);

 private:
  const std::vector<double> * fpParams = nullptr;
  const std::vector<double> * fpParams2 = nullptr;
  const std::vector<double> * fpParams3 = nullptr;
  int fnIter = 0;
  int fnStepHalving = 0;
  double fdLogLik = 0.0;
  double fdTime = 0.0;
};

}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_MATH_STATS_ITERREPORTER_H
