// Differential checks of the writer's text helpers on the input's bytes.
// Escape against its definition: ten passes over the text, in order, each a full
// replace-all that resumes after what it inserted. ReplaceAll and ReplaceString against
// the same replace-all, with a pattern and replacement taken from the input. Number text
// against a "C"-locale stream: each 8 of the first 128 bytes as a double ("%.15g", and fixed
// with 16 decimals) and as a long.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ios>
#include <locale>
#include <sstream>
#include <string>

#include "fuzzcheck.h"
#include "zrcommon920r/xml/core/numtext.h"
#include "zrcommon920r/xml/core/xmltree.h"

namespace {

using zrfuzz::Fail;
using zrfuzz::Shown;

// The numbers are read from the first bytes only, which keeps each run short.
constexpr std::size_t kNumberBytes = 128;

// One search and replacement from position on. A miss lowers position by one (the offset
// of a miss is -1) and returns -1; a hit moves position to it, replaces, and returns it.
int ReplaceAtPos(std::string & text, const std::string & pattern, const std::string & replacement,
                 int & position) {
  if (position > static_cast<int>(text.size())) return -1;
  const std::size_t hit = text.find(pattern, static_cast<std::size_t>(position));
  const int offset = hit == std::string::npos ? -1 : static_cast<int>(hit) - position;
  position += offset;
  if (hit == std::string::npos) return -1;
  text.replace(hit, pattern.size(), replacement);  // head, replacement, tail
  return position;
}

int LiteralReplaceAll(std::string & text, const std::string & pattern,
                      const std::string & replacement) {
  if (pattern.empty()) return -1;
  int position = 0;
  while (ReplaceAtPos(text, pattern, replacement, position) != -1) {
    position += static_cast<int>(replacement.size());
  }
  return position;
}

std::string LiteralEscape(std::string text) {
  LiteralReplaceAll(text, "&", "&amp;");
  LiteralReplaceAll(text, "<", "&lt;");
  LiteralReplaceAll(text, ">", "&gt;");
  LiteralReplaceAll(text, "\"", "&quot;");
  LiteralReplaceAll(text, "\t", "&#9;");
  LiteralReplaceAll(text, "\n", "&#10;");
  LiteralReplaceAll(text, "\r", "&#13;");
  LiteralReplaceAll(text, "  ", " &#32;");
  if (!text.empty() && text.front() == ' ') text.replace(0, 1, "&#32;");
  if (!text.empty() && text.back() == ' ') text.replace(text.size() - 1, 1, "&#32;");
  return text;
}

void CheckEscape(const std::string & text) {
  const std::string got = ZRXML_920::XMLUtil::Escape(text);
  const std::string want = LiteralEscape(text);
  if (got != want) {
    Fail("Escape(\"" + Shown(text) + "\") gave \"" + Shown(got) + "\", the passes \"" +
         Shown(want) + "\"");
  }
}

// Byte 0 gives the pattern's length (1 to 4), byte 1 the replacement's (0 to 7); the pattern,
// the replacement and the text follow. The pattern is cut at a NUL, as a C string would be.
void CheckReplace(const std::uint8_t * data, std::size_t size) {
  if (size < 2) return;
  const std::size_t patternSize = 1 + data[0] % 4;
  const std::size_t replacementSize = data[1] % 8;
  if (size < 2 + patternSize + replacementSize) return;
  const char * p = reinterpret_cast<const char *>(data + 2);
  const std::string pattern(p, strnlen(p, patternSize));
  const std::string replacement(p + patternSize, replacementSize);
  const std::string text(p + patternSize + replacementSize,
                         size - 2 - patternSize - replacementSize);

  std::string got = text;
  std::string want = text;
  const int gotAll = ZRXML_920::XMLUtil::ReplaceAll(got, pattern.c_str(), replacement);
  const int wantAll = LiteralReplaceAll(want, pattern, replacement);
  if (got != want || gotAll != wantAll) {
    Fail("ReplaceAll(\"" + Shown(text) + "\", \"" + Shown(pattern) + "\", \"" + Shown(replacement) +
         "\") gave " + std::to_string(gotAll) + " \"" + Shown(got) + "\", the definition " +
         std::to_string(wantAll) + " \"" + Shown(want) + "\"");
  }
  got = text;
  want = text;
  int position = 0;
  const int gotOne = ZRXML_920::XMLUtil::ReplaceString(got, pattern.c_str(), replacement);
  const int wantOne = pattern.empty() ? -1 : ReplaceAtPos(want, pattern, replacement, position);
  if (got != want || gotOne != wantOne) {
    Fail("ReplaceString(\"" + Shown(text) + "\", \"" + Shown(pattern) + "\") gave " +
         std::to_string(gotOne) + " \"" + Shown(got) + "\", the definition " +
         std::to_string(wantOne) + " \"" + Shown(want) + "\"");
  }
}

// A "C"-locale stream, emptied and reset for each number.
std::ostringstream & ClassicStream() {
  static std::ostringstream out = [] {
    std::ostringstream made;
    made.imbue(std::locale::classic());
    return made;
  }();
  out.str(std::string());
  out.flags(std::ios_base::dec);
  return out;
}

std::string StreamText(double value, bool fixed) {
  std::ostringstream & out = ClassicStream();
  if (fixed) out.setf(std::ios_base::fixed, std::ios_base::floatfield);
  out.precision(fixed ? 16 : 15);
  out << value;
  return out.str();
}

std::string StreamText(long value) {
  std::ostringstream & out = ClassicStream();
  out << value;
  return out.str();
}

void CheckNumbers(const std::uint8_t * data, std::size_t size) {
  for (std::size_t at = 0; at + 8 <= std::min(size, kNumberBytes); at += 8) {
    double value;
    long whole;
    std::memcpy(&value, data + at, sizeof value);
    std::memcpy(&whole, data + at, sizeof whole);
    const std::string general = StreamText(value, false);
    const std::string fixed = StreamText(value, true);
    const std::string digits = StreamText(whole);
    char bits[24];
    std::snprintf(bits, sizeof bits, "%a", value);
    if (ZRXML_920::ReplaceSep(value, nullptr) != general ||
        ZRXML_920::Format(value, false, nullptr) != general ||
        ZRXML_920::Format(value, false, "%.3f") != general) {
      Fail(std::string("general text of ") + bits + ": \"" + ZRXML_920::ReplaceSep(value, nullptr) +
           "\", \"" + ZRXML_920::Format(value, false, nullptr) + "\", the stream \"" + general +
           "\"");
    }
    if (ZRXML_920::ReplaceSep(value) != fixed) {
      Fail(std::string("fixed text of ") + bits + ": \"" + ZRXML_920::ReplaceSep(value) +
           "\", the stream \"" + fixed + "\"");
    }
    if (ZRXML_920::Format(whole) != digits) {
      Fail("digits of " + digits + ": \"" + ZRXML_920::Format(whole) + "\"");
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t * data, std::size_t size) {
  CheckEscape(std::string(reinterpret_cast<const char *>(data), size));
  CheckReplace(data, size);
  CheckNumbers(data, size);
  return 0;
}
