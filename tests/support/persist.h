// The harness of the persistence tests: writes an object into memory, reads text back
// through a reader with std::cerr captured, and judges how the read ended. Readers of the
// library end a failed read in one of two ways, both after one line "Failure reading
// <class>!" on std::cerr: they return 0, or they throw a new IOException *, which the
// harness catches and deletes. A class joins with a few lines:
//
//   int written = 0;
//   const std::string text = zrtest::WriteText(obj, 0, &written);
//   ZRCatVar back;
//   EXPECT_TRUE(zrtest::ReadWhole(zrtest::ReadText(text, zrtest::ReaderInto(back)), written));
//   ... compare back with obj ...
//   zrtest::ExpectTruncationsFail(text, zrtest::FreshReader<ZRCatVar>(), written);
#ifndef ZRCOMMON920R_TESTS_SUPPORT_PERSIST_H
#define ZRCOMMON920R_TESTS_SUPPORT_PERSIST_H

#include <gtest/gtest.h>

#include <functional>
#include <istream>
#include <sstream>
#include <string>

namespace zrtest {

// A read of one object from a stream: what ReadObjectXML returns.
using Reader = std::function<int(std::istream &)>;

// How one read ended.
struct ReadOutcome {
  int count = 0;       // what the reader returned; 0 when it threw
  bool threw = false;  // it threw an IOException *, caught and deleted by ReadText
  std::string err;     // what it printed on std::cerr
};

// The text obj.WriteObjectXML(out, nTabs) writes into a clean stream; the count it
// returned goes to *count when count is not null.
template <class T>
std::string WriteText(const T & obj, int nTabs = 0, int * count = nullptr) {
  std::ostringstream out;
  const int written = obj.WriteObjectXML(out, nTabs);
  if (count != nullptr) *count = written;
  return out.str();
}

// A reader into target, which must outlive it.
template <class T>
Reader ReaderInto(T & target) {
  return [&target](std::istream & in) { return target.ReadObjectXML(in); };
}

// A reader into a default-constructed T made for each read.
template <class T>
Reader FreshReader() {
  return [](std::istream & in) {
    T target;
    return target.ReadObjectXML(in);
  };
}

// Runs read over text with std::cerr captured, catching (and deleting) an IOException *.
// Any other exception passes through.
ReadOutcome ReadText(const std::string & text, const Reader & read);

// Success: count elements read, nothing thrown, nothing printed.
testing::AssertionResult ReadWhole(const ReadOutcome & outcome, int count);

// A clean failure: 0 returned or an IOException * thrown, after exactly one line on
// std::cerr that starts "Failure reading " and ends "!".
testing::AssertionResult FailedCleanly(const ReadOutcome & outcome);

// Feeds read every proper prefix of text, from the empty one up; each must fail cleanly,
// but for the prefix that lacks only a final ">", which must read whole with count
// elements. Stops at the first prefix that does otherwise and reports its length.
void ExpectTruncationsFail(const std::string & text, const Reader & read, int count);

}  // namespace zrtest

#endif  // ZRCOMMON920R_TESTS_SUPPORT_PERSIST_H
