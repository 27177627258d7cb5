// What a fuzz target does when a property fails: it says which, shows the bytes involved and
// aborts, which libFuzzer reports as a crash, saving the input that caused it; and the
// capture of std::cerr the reader targets share.
#ifndef ZRCOMMON920R_FUZZ_FUZZCHECK_H
#define ZRCOMMON920R_FUZZ_FUZZCHECK_H

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>

#include "zrcommon920r/display/display.h"

namespace zrfuzz {

// text with every byte outside printable ASCII, and the backslash, as \xHH.
inline std::string Shown(const std::string & text) {
  std::string shown;
  for (const char c : text) {
    const unsigned char u = static_cast<unsigned char>(c);
    if (u >= 0x20 && u < 0x7F && u != '\\') {
      shown += c;
    } else {
      char hex[5];
      std::snprintf(hex, sizeof hex, "\\x%02X", u);
      shown += hex;
    }
  }
  return shown;
}

[[noreturn]] inline void Fail(const std::string & what) {
  std::fprintf(stderr, "\nproperty failed: %s\n", what.c_str());
  std::abort();
}

// What object.Display() prints, taken from the diagnostic stream.
template <class T>
std::string DisplayedText(const T & object) {
  std::ostringstream out;
  std::ostream * const saved = ZRDisplay_920::GetOutStream();
  ZRDisplay_920::SetOutStream(out);
  object.Display();
  ZRDisplay_920::SetOutStream(*saved);
  return out.str();
}

// std::cerr goes to a string while the object lives. Unlike the test harness's capture of
// file descriptor 2, a sanitizer's report still reaches the terminal.
class CerrToString {
 public:
  CerrToString() : fSaved(std::cerr.rdbuf(fText.rdbuf())) {}
  ~CerrToString() { std::cerr.rdbuf(fSaved); }
  CerrToString(const CerrToString &) = delete;
  CerrToString & operator=(const CerrToString &) = delete;
  std::string Text() const { return fText.str(); }

 private:
  std::ostringstream fText;
  std::streambuf * fSaved;
};

}  // namespace zrfuzz

#endif  // ZRCOMMON920R_FUZZ_FUZZCHECK_H
