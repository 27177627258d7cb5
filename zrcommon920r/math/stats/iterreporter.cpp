// The iteration reporter.
#include "zrcommon920r/math/stats/iterreporter.h"

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/display/display.h"

namespace ZRMath_920 {

ZRIterationReporter::~ZRIterationReporter() = default;

int ZRIterationReporter::DiscreteMeasure(const std::string & name) {
  if (name == "iterNum") return fnIter;
  if (name == "stepHalving") return fnStepHalving;
  return -1;
}

double ZRIterationReporter::ScaleMeasure(const std::string & name) {
  if (name == "loglik") return fdLogLik;
  if (name == "time") return fdTime;
  return ZRCommon_920::kSysMisValue;
}

const std::vector<double> * ZRIterationReporter::VectorMeasure(const std::string & name) {
  if (name == "paramEstim") return fpParams;
  if (name == "paramEstim2") return fpParams2;
  if (name == "paramEstim3") return fpParams3;
  return nullptr;
}

void ZRIterationReporter::Reset() {
  fpParams = fpParams2 = fpParams3 = nullptr;
  fnIter = fnStepHalving = 0;
  fdLogLik = fdTime = 0.0;
}

void ZRIterationReporter::SetInfo(const std::vector<double> * params, int iter, int halving,
                                  double logLik, double time) {
  fpParams = params;
  fnIter = iter;
  fnStepHalving = halving;
  fdLogLik = logLik;
  fdTime = time;
}

void ZRIterationReporter::SetInfo(const std::vector<double> * p1, const std::vector<double> * p2,
                                  const std::vector<double> * p3, int iter, double logLik,
                                  double time) {
  fpParams = p1;
  fpParams2 = p2;
  fpParams3 = p3;
  fnIter = iter;
  fdLogLik = logLik;
  fdTime = time;
}

void ZRIterationReporter::Display() const {
  ZRDisplay_920::DisplayText(1, "ZRIterationReporter display start");
  ZRDisplay_920::DisplayI("Iteration number", fnIter);
  ZRDisplay_920::DisplayI("Number of step halving", fnStepHalving);
  ZRDisplay_920::DisplayD("Pseudo -2 log-likelihood", fdLogLik);
  ZRDisplay_920::DisplayD("Elapsed time in sec", fdTime);
  if (fpParams != nullptr) {
    ZRDisplay_920::DisplayDV("Parameter estimates", *fpParams);
  } else {
    ZRDisplay_920::DisplayText(1, "Parameter estimates pointer is 0");
  }
  if (fpParams2 != nullptr)
    ZRDisplay_920::DisplayDV("Parameter estimates, second vector", *fpParams2);
  if (fpParams3 != nullptr)
    ZRDisplay_920::DisplayDV("Parameter estimates, third vector", *fpParams3);
  ZRDisplay_920::DisplayText(1, "ZRIterationReporter display end");
}

}  // namespace ZRMath_920
