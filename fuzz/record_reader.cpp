// The test record's reader, the way a persistent class is read, over arbitrary text. Every
// read must end in one of the two ways the persistence harness accepts: the whole record
// (13 elements, nothing printed) or a clean failure (0 returned or an IOException * thrown,
// after one "Failure reading ...!" line). A record read whole is written again and read
// back: its numbers must survive, and its strings come back escaped once more, since the
// readers do not undo the writer's escaping.
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <sstream>
#include <string>

#include "fuzzcheck.h"
#include "support/persist.h"
#include "support/testrecord.h"
#include "zrcommon920r/common/status.h"
#include "zrcommon920r/xml/core/numtext.h"
#include "zrcommon920r/xml/core/xmltree.h"

namespace {

using zrfuzz::Fail;
using zrfuzz::Shown;
using zrtest::ReadOutcome;
using zrtest::TestRecord;

constexpr int kRecordElements = 13;
constexpr std::size_t kLineLimit = 256;

ReadOutcome Read(const std::string & text, TestRecord & record) {
  ReadOutcome outcome;
  std::istringstream in(text);
  zrfuzz::CerrToString err;
  try {
    outcome.count = record.ReadObjectXML(in);
  } catch (ZRXML_920::IOException * e) {
    delete e;
    outcome.threw = true;
  }
  outcome.err = err.Text();
  return outcome;
}

bool HasLongLine(const std::string & text) {
  std::size_t start = 0;
  for (;;) {
    const std::size_t feed = text.find('\n', start);
    const std::size_t end = feed == std::string::npos ? text.size() : feed;
    if (end - start >= kLineLimit) return true;
    if (feed == std::string::npos) return false;
    start = feed + 1;
  }
}

// A record read whole, written and read again: integers exactly, doubles as the same
// 15-digit text (which reads back to a double with that text), strings escaped once more.
void CheckRereads(const TestRecord & first) {
  std::ostringstream out;
  const int written = first.WriteObjectXML(out, 0);
  if (written != kRecordElements) Fail("the record wrote " + std::to_string(written));
  TestRecord second;
  const ReadOutcome outcome = Read(out.str(), second);
  if (HasLongLine(out.str())) {
    // Escaping can push a line past the limit; the reader must then refuse it cleanly.
    if (!zrtest::FailedCleanly(outcome)) Fail("long reread: " + outcome.err);
    return;
  }
  if (!zrtest::ReadWhole(outcome, kRecordElements)) {
    Fail("the record's own text did not read back: \"" + Shown(out.str()) + "\": " + outcome.err);
  }
  using ZRXML_920::ReplaceSep;
  using ZRXML_920::XMLUtil;
  const bool same =
      second.fnCount == first.fnCount && second.fnSeed == first.fnSeed &&
      second.fbWeighted == first.fbWeighted && second.fnTotal == first.fnTotal &&
      ReplaceSep(second.fdMean, nullptr) == ReplaceSep(first.fdMean, nullptr) &&
      ReplaceSep(second.fdVariance, nullptr) == ReplaceSep(first.fdVariance, nullptr) &&
      second.fsLabel == XMLUtil::Escape(first.fsLabel) &&
      second.fPart.fnLevel == first.fPart.fnLevel &&
      second.fPart.fsCode == XMLUtil::Escape(first.fPart.fsCode);
  if (!same) Fail("the reread record differs; text: \"" + Shown(out.str()) + "\"");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t * data, std::size_t size) {
  const std::string text(reinterpret_cast<const char *>(data), size);
  TestRecord record;
  const ReadOutcome outcome = Read(text, record);
  if (zrtest::ReadWhole(outcome, kRecordElements)) {
    CheckRereads(record);
    return 0;
  }
  if (!zrtest::FailedCleanly(outcome)) {
    Fail("neither a whole read nor a clean failure: returned " + std::to_string(outcome.count) +
         (outcome.threw ? " (threw)" : "") + ", printing \"" + Shown(outcome.err) + "\"");
  }
  return 0;
}
