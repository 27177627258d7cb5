// ZRURandom's object stream reader over arbitrary text. Every read must end as the
// persistence harness accepts: the whole object (5 elements, nothing printed) or a clean
// failure (0 and one "Failure reading ZRURandom!" line) that leaves the object as it was.
// An object read whole must draw, and write text that reads back to the same object.
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <sstream>
#include <string>

#include "fuzzcheck.h"
#include "support/persist.h"
#include "zrcommon920r/display/display.h"
#include "zrcommon920r/math/random/uniform.h"

namespace {

using zrfuzz::Fail;
using zrfuzz::Shown;
using ZRMath_920::ZRURandom;
using zrtest::ReadOutcome;

constexpr int kElements = 5;

ReadOutcome Read(const std::string & text, ZRURandom & u) {
  ReadOutcome outcome;
  std::istringstream in(text);
  zrfuzz::CerrToString err;
  outcome.count = u.ReadObjectXML(in);
  outcome.err = err.Text();
  return outcome;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t * data, std::size_t size) {
  const std::string text(reinterpret_cast<const char *>(data), size);
  ZRURandom u(2718281828u, true, false);
  const std::string before = zrfuzz::DisplayedText(u);
  const ReadOutcome outcome = Read(text, u);
  if (zrtest::ReadWhole(outcome, kElements)) {
    for (int i = 0; i < 3; ++i) {
      const double x = u.GetRandom();
      if (!(x >= 0.0 && x <= 1.0)) Fail("a draw after the read gave " + std::to_string(x));
    }
    std::ostringstream out;
    if (u.WriteObjectXML(out, 1) != kElements) Fail("the object did not write 5 elements");
    ZRURandom back(1, false, false);
    if (!zrtest::ReadWhole(Read(out.str(), back), kElements) ||
        zrfuzz::DisplayedText(back) != zrfuzz::DisplayedText(u)) {
      Fail("the object's own text did not read back: \"" + Shown(out.str()) + "\"");
    }
    return 0;
  }
  if (!zrtest::FailedCleanly(outcome)) {
    Fail("neither a whole read nor a clean failure: returned " + std::to_string(outcome.count) +
         ", printing \"" + Shown(outcome.err) + "\"");
  }
  if (zrfuzz::DisplayedText(u) != before)
    Fail("a failed read changed the object: " + Shown(zrfuzz::DisplayedText(u)));
  return 0;
}
