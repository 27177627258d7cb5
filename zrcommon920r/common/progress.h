// Progress interfaces: what an estimator publishes about its latest iteration, read by a
// caller that polls it by measure name without knowing the estimator.
#ifndef ZRCOMMON920R_COMMON_PROGRESS_H
#define ZRCOMMON920R_COMMON_PROGRESS_H

#include <string>
#include <vector>

namespace ZRCommon_920 {

// Integer and real measures by name. What the names are, and what an unknown name gives,
// is the implementation's to say.
class ProgressReport {
 public:
  virtual ~ProgressReport();
  // The integer measure called name (an iteration number, a count of step halvings).
  virtual int DiscreteMeasure(const std::string & name) = 0;
  // The real measure called name (a log-likelihood, an elapsed time).
  virtual double ScaleMeasure(const std::string & name) = 0;
};

// Adds vector measures. The vector belongs to the implementation and is read as it stands
// when read; a null pointer means there is none.
class ProgressReportVect : public ProgressReport {
 public:
  ~ProgressReportVect() override;
  // The vector measure called name (parameter estimates), or null.
  virtual const std::vector<double> * VectorMeasure(const std::string & name) = 0;
};

}  // namespace ZRCommon_920

#endif  // ZRCOMMON920R_COMMON_PROGRESS_H
