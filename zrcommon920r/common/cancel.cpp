// Cancellation polling.
#include "zrcommon920r/common/cancel.h"

namespace ZRCommon_920 {

// Defined here so that the interface's type information lives in the library.
ZRQueryCancel::~ZRQueryCancel() = default;

}  // namespace ZRCommon_920

namespace ZRMath_920 {

bool ZRCancelInfo::IsCancel() {
  if (fbCancelled) return true;
  if (fCancelPtr == nullptr) return false;
  fbCancelled = fCancelPtr->IsCancelRequested();
  return fbCancelled;
}

bool ZRCancelInfo::WillCancel() const {
  if (fbCancelled) return true;
  return fCancelPtr != nullptr && fCancelPtr->IsCancelPending();
}

}  // namespace ZRMath_920
