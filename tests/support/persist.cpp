// The persistence harness: captured reads and the judgement of their endings.
#include "support/persist.h"

#include <cstddef>

#include "zrcommon920r/common/status.h"

namespace zrtest {

ReadOutcome ReadText(const std::string & text, const Reader & read) {
  ReadOutcome outcome;
  std::istringstream in(text);
  testing::internal::CaptureStderr();
  try {
    outcome.count = read(in);
  } catch (ZRXML_920::IOException * e) {
    delete e;
    outcome.threw = true;
  } catch (...) {
    testing::internal::GetCapturedStderr();
    throw;
  }
  outcome.err = testing::internal::GetCapturedStderr();
  return outcome;
}

testing::AssertionResult ReadWhole(const ReadOutcome & outcome, int count) {
  if (outcome.threw) return testing::AssertionFailure() << "threw, printing: " << outcome.err;
  if (outcome.count != count || !outcome.err.empty()) {
    return testing::AssertionFailure()
           << "read " << outcome.count << " of " << count << ", printing: " << outcome.err;
  }
  return testing::AssertionSuccess();
}

testing::AssertionResult FailedCleanly(const ReadOutcome & outcome) {
  const std::string head = "Failure reading ";
  const std::string & err = outcome.err;
  const bool oneLine = err.size() > head.size() + 2 && err.compare(0, head.size(), head) == 0 &&
                       err.find('\n') == err.size() - 1 && err[err.size() - 2] == '!';
  if (outcome.count != 0 || !oneLine) {
    return testing::AssertionFailure()
           << "returned " << outcome.count << (outcome.threw ? " (threw)" : "") << ", printing: \""
           << err << "\"";
  }
  return testing::AssertionSuccess();
}

void ExpectTruncationsFail(const std::string & text, const Reader & read, int count) {
  for (std::size_t length = 0; length < text.size(); ++length) {
    const ReadOutcome outcome = ReadText(text.substr(0, length), read);
    // Intended: ">" only ends the tag's last token, so "</Obj" closes an object as well.
    const bool lacksOnlyFinalBracket = length + 1 == text.size() && text.back() == '>';
    const testing::AssertionResult ok =
        lacksOnlyFinalBracket ? ReadWhole(outcome, count) : FailedCleanly(outcome);
    if (!ok) {
      ADD_FAILURE() << "prefix of " << length << " bytes: " << ok.message() << "\nprefix: \""
                    << text.substr(0, length) << "\"";
      return;
    }
  }
}

}  // namespace zrtest
