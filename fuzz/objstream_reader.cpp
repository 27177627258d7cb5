// Drives the object stream's readers over arbitrary text. The input is a script and a
// stream: byte 0 gives the number of reader calls (1 + byte % 16), the next bytes choose one
// call each (see Call), and the bytes after them are the stream. Beyond the sanitizers'
// checks, each call must keep the readers' promises: a false read leaves its target as it
// was, a string read is shorter than the 256-byte line, a failed stream stays refused, and a
// value or object-end reader that leaves the stream good has consumed exactly one line.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>

#include "fuzzcheck.h"
#include "zrcommon920r/xml/core/objstream.h"

namespace {

using zrfuzz::Fail;
using zrfuzz::Shown;

constexpr std::size_t kMaxCalls = 16;
constexpr std::size_t kLineLimit = 256;

// The reader a script byte calls: byte % 9; for kStartObj, byte / 9 % 4 picks the name.
enum Call { kStartXml, kStartObj, kInt, kUnsigned, kLong, kDouble, kString, kBool, kEndObj };
constexpr int kCalls = 9;
const char * const kNames[] = {"TestRecord", "TestRecordPart", "ZRCatVar", "a"};

// The targets of the value readers; each keeps what it held between calls, so that a false
// read is compared with a value an earlier read may have stored.
struct Targets {
  int i = 0x5A5A5A5A;
  unsigned int u = 0xA5A5A5A5u;
  long l = 0x5A5A5A5A5A5A5A5AL;
  double d = -0.0;
  std::string s = "unset";
  bool b = true;
};

std::streamoff Position(std::istream & in) {
  // Through the buffer: tellg would set failbit on a stream at its end.
  return in.rdbuf()->pubseekoff(0, std::ios_base::cur, std::ios_base::in);
}

// Where the line that starts at pos ends, its line feed included.
std::size_t LineEnd(const std::string & text, std::size_t pos) {
  const std::size_t feed = text.find('\n', pos);
  return feed == std::string::npos ? text.size() : feed + 1;
}

// Runs one value reader and checks that a false read left the target unchanged.
template <class T>
bool ReadValue(std::istream & in, T & target, const char * kind) {
  const T before = target;
  const bool ok = ZRXML_920::ParseValue(in, target);
  if (!ok && std::memcmp(&before, &target, sizeof(T)) != 0) {
    Fail(std::string("a false ") + kind + " read changed its target");
  }
  return ok;
}

bool ReadString(std::istream & in, std::string & target) {
  const std::string before = target;
  const bool ok = ZRXML_920::ParseValue(in, target);
  if (!ok && target != before) {
    Fail("a false string read changed its target from \"" + Shown(before) + "\" to \"" +
         Shown(target) + "\"");
  }
  if (ok && target.size() >= kLineLimit) {
    Fail("a string of " + std::to_string(target.size()) + " bytes was read");
  }
  return ok;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t * data, std::size_t size) {
  if (size == 0) return 0;
  const std::size_t calls = std::min<std::size_t>(1 + data[0] % kMaxCalls, size - 1);
  const std::uint8_t * script = data + 1;
  const std::string text(reinterpret_cast<const char *>(data + 1 + calls), size - 1 - calls);
  std::istringstream in(text);
  Targets t;
  for (std::size_t k = 0; k < calls; ++k) {
    const int call = script[k] % kCalls;
    const bool failedBefore = in.fail();
    const std::streamoff before = Position(in);
    bool ok = false;
    switch (call) {
      case kStartXml:
        ok = ZRXML_920::ParseStartXML(in);
        break;
      case kStartObj:
        ok = ZRXML_920::ParseStartObj(in, kNames[script[k] / kCalls % 4]);
        break;
      case kInt:
        ok = ReadValue(in, t.i, "int");
        break;
      case kUnsigned:
        ok = ReadValue(in, t.u, "unsigned");
        break;
      case kLong:
        ok = ReadValue(in, t.l, "long");
        break;
      case kDouble:
        ok = ReadValue(in, t.d, "double");
        break;
      case kString:
        ok = ReadString(in, t.s);
        break;
      case kBool:
        ok = ReadValue(in, t.b, "bool");
        break;
      case kEndObj:
        ok = ZRXML_920::ParseEndObj(in);
        break;
    }
    if (failedBefore && ok) Fail("call " + std::to_string(call) + " read a failed stream");
    if (in.fail()) continue;
    const std::streamoff after = Position(in);
    const std::size_t pos = static_cast<std::size_t>(before);
    if (call == kStartXml || call == kStartObj) {
      // These may read more than one line, but stop at the end of one.
      const bool atLineEnd = after == static_cast<std::streamoff>(text.size()) ||
                             (after > 0 && text[static_cast<std::size_t>(after) - 1] == '\n');
      if (after <= before || !atLineEnd) {
        Fail("call " + std::to_string(call) + " left the stream inside a line at " +
             std::to_string(after));
      }
    } else if (after != static_cast<std::streamoff>(LineEnd(text, pos))) {
      Fail("call " + std::to_string(call) + " consumed from " + std::to_string(before) + " to " +
           std::to_string(after) + ", not one line");
    }
  }
  return 0;
}
