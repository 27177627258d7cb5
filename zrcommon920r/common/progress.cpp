// Progress interfaces. The destructors are defined here so that the interfaces' type
// information lives in the library and dynamic_cast works across its boundary.
#include "zrcommon920r/common/progress.h"

namespace ZRCommon_920 {

ProgressReport::~ProgressReport() = default;
ProgressReportVect::~ProgressReportVect() = default;

}  // namespace ZRCommon_920
