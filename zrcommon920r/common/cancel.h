// Cancellation: ZRQueryCancel, the interface through which a procedure tells the library
// to stop, and ZRCancelInfo, which polls it and remembers a yes.
#ifndef ZRCOMMON920R_COMMON_CANCEL_H
#define ZRCOMMON920R_COMMON_CANCEL_H

namespace ZRCommon_920 {

// Implemented by the caller. The library keeps a pointer to such an object, asks it
// between stretches of work and never deletes it; the object must outlive that use.
class ZRQueryCancel {
 public:
  virtual ~ZRQueryCancel();
  // Whether the caller asks to stop now. A true answer is final for the ZRCancelInfo
  // that polls it.
  virtual bool IsCancelRequested() = 0;
  // Whether the caller is about to ask to stop; a hint that nothing latches.
  virtual bool IsCancelPending() = 0;
};

}  // namespace ZRCommon_920

namespace ZRMath_920 {

// Polls a caller's ZRQueryCancel and latches the first true answer: once IsCancel has
// been true it stays true, and the caller's object is not asked again. The pointer may be
// null (nothing to ask). Copies share the pointer; the object stays the caller's. No lock:
// one thread at a time.
class ZRCancelInfo {
 public:
  // Keeps cancel (not owned, may be null); not cancelled.
  explicit ZRCancelInfo(ZRCommon_920::ZRQueryCancel * cancel = nullptr)
      : fCancelPtr(cancel), fbCancelled(false) {}

  // Sets the latch to cancelled; SetCancel(false) clears it, so the caller is asked again.
  void SetCancel(bool cancelled = true) { fbCancelled = cancelled; }

  // True once latched. Otherwise false without a pointer, and with one the answer of its
  // IsCancelRequested, latched when true.
  bool IsCancel();
  // True once latched. Otherwise false without a pointer, and with one the answer of its
  // IsCancelPending; the latch is left as it is.
  bool WillCancel() const;

  void SetCancelPtr(ZRCommon_920::ZRQueryCancel * cancel) { fCancelPtr = cancel; }
  ZRCommon_920::ZRQueryCancel * GetCancelPtr() const { return fCancelPtr; }

 private:
  ZRCommon_920::ZRQueryCancel * fCancelPtr;
  bool fbCancelled;
};

}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_COMMON_CANCEL_H
