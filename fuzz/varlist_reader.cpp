// The variable list's reader over arbitrary text. Every read must end in one of the two ways
// the persistence harness accepts: the whole list (a count of at least the list's own 7
// elements, nothing on std::cerr) or a clean failure (an IOException * after one "Failure
// reading ...!" line). Either way the list read into must stay usable: it is written again,
// asked for its summaries, updated and displayed, all under the sanitizers.
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "fuzzcheck.h"
#include "support/persist.h"
#include "zrcommon920r/common/status.h"
#include "zrcommon920r/display/display.h"
#include "zrcommon920r/xml/vars/varlist.h"

namespace {

using zrfuzz::Fail;
using zrfuzz::Shown;
using zrtest::ReadOutcome;

constexpr int kListElements = 7;  // start, variable count, four ints, end

// std::cerr goes to a string and std::cout is silenced while the object lives; a
// sanitizer's report still reaches the terminal.
class Quiet {
 public:
  Quiet() : fSavedErr(std::cerr.rdbuf(fErr.rdbuf())), fSavedOut(std::cout.rdbuf(fOut.rdbuf())) {}
  ~Quiet() {
    std::cerr.rdbuf(fSavedErr);
    std::cout.rdbuf(fSavedOut);
  }
  Quiet(const Quiet &) = delete;
  Quiet & operator=(const Quiet &) = delete;
  std::string Err() const { return fErr.str(); }

 private:
  std::ostringstream fErr;
  std::ostringstream fOut;
  std::streambuf * fSavedErr;
  std::streambuf * fSavedOut;
};

ReadOutcome Read(const std::string & text, ZRXML_920::ZRVarList & list) {
  ReadOutcome outcome;
  std::istringstream in(text);
  Quiet quiet;
  try {
    outcome.count = list.ReadObjectXML(in);
  } catch (ZRXML_920::IOException * e) {
    delete e;
    outcome.threw = true;
  }
  outcome.err = quiet.Err();
  return outcome;
}

// Everything a caller may do with a list it has read, whatever the indices in the text.
void Use(ZRXML_920::ZRVarList & list) {
  std::ostringstream out;
  const int written = list.WriteObjectXML(out, 0);
  if (written < kListElements) Fail("the list read wrote " + std::to_string(written));
  std::vector<std::string> inputs, responses;
  list.GetVarNames(inputs, responses);
  list.GetNInputCats();
  list.GetNTargetCats();
  list.GetNOutputCats();
  list.UpdateNumbersOfCategories();
  std::ostringstream shown;
  std::ostream * const saved = ZRDisplay_920::GetOutStream();
  ZRDisplay_920::SetOutStream(shown);
  list.Display();
  ZRDisplay_920::SetOutStream(*saved);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t * data, std::size_t size) {
  const std::string text(reinterpret_cast<const char *>(data), size);
  ZRXML_920::ZRVarList list;
  const ReadOutcome outcome = Read(text, list);
  const bool whole = !outcome.threw && outcome.err.empty() && outcome.count >= kListElements;
  if (!whole && !(outcome.threw && zrtest::FailedCleanly(outcome))) {
    Fail("neither a whole read nor a clean failure: returned " + std::to_string(outcome.count) +
         (outcome.threw ? " (threw)" : "") + ", printing \"" + Shown(outcome.err) + "\"");
  }
  Use(list);
  return 0;
}
