// Redirects the diagnostic stream into a string for the lifetime of the object.
#ifndef ZRCOMMON920R_TESTS_SUPPORT_CAPTURE_H
#define ZRCOMMON920R_TESTS_SUPPORT_CAPTURE_H

#include <ostream>
#include <sstream>
#include <string>

#include "zrcommon920r/display/display.h"

namespace zrtest {

class DisplayCapture {
 public:
  DisplayCapture() : fSaved(ZRDisplay_920::GetOutStream()) { ZRDisplay_920::SetOutStream(fOut); }
  ~DisplayCapture() { ZRDisplay_920::SetOutStream(*fSaved); }
  DisplayCapture(const DisplayCapture &) = delete;
  DisplayCapture & operator=(const DisplayCapture &) = delete;

  // Everything printed since construction (or the last Clear).
  std::string Text() const { return fOut.str(); }
  void Clear() { fOut.str(std::string()); }

 private:
  std::ostream * fSaved;
  std::ostringstream fOut;
};

}  // namespace zrtest

#endif  // ZRCOMMON920R_TESTS_SUPPORT_CAPTURE_H
