// The object stream: the writers' exact text, the readers' strictness and leniencies, and
// the persistence contract, every truncation of the record's stream included.
#include "zrcommon920r/xml/core/objstream.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cfloat>
#include <climits>
#include <cmath>
#include <functional>
#include <sstream>
#include <string>
#include <thread>
#include <tuple>
#include <utility>

#include "support/locales.h"
#include "support/persist.h"
#include "support/testrecord.h"
#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/common/status.h"

namespace {

using namespace ZRXML_920;
using zrtest::TestRecord;
constexpr double kMiss = ZRCommon_920::kSysMisValue;

// One reader over text; value keeps what it held unless the reader sets it.
template <class T>
bool ReadOne(const std::string & text, T & value) {
  std::istringstream in(text);
  return ParseValue(in, value);
}

TestRecord SampleRecord() {
  TestRecord r;
  r.fnCount = INT_MIN;
  r.fnSeed = UINT_MAX;
  r.fbWeighted = true;
  r.fnTotal = 9007199254740993L;  // 2^53 + 1: no double holds it
  r.fdMean = 0.1 + 0.2;
  r.fdVariance = kMiss;
  r.fsLabel = " a\tb<\"c\">  ";
  r.fPart.fnLevel = 2;
  return r;
}

TEST(ObjStreamWrite, RootAndRecordAsExpectedText) {
  std::ostringstream out;
  EXPECT_EQ(WriteHeader(out, "(c) zrcommon920r  & co"), 0);
  EXPECT_EQ(SampleRecord().WriteObjectXML(out, 0), 13);
  EXPECT_EQ(EndHeader(out), 0);
  EXPECT_EQ(out.str(),
            "<ZRXMLRoot copyright=\"(c) zrcommon920r &#32;&amp; co\">"
            "\n<Obj name=\"TestRecord\">"
            "\n\t<Int value=\"-2147483648\"/>"
            "\n\t<Int value=\"4294967295\"/>"
            "\n\t<Int value=\"1\"/>"
            "\n\t<Long value=\"9007199254740993\"/>"
            "\n\t<Double value=\"0.3\"/>"
            "\n\t<Double value=\"Missing\"/>"
            "\n\t<String value=\"&#32;a&#9;b&lt;&quot;c&quot;&gt; &#32;\"/>"
            "\n\t<Obj name=\"TestRecordPart\">"
            "\n\t\t<Int value=\"2\"/>"
            "\n\t\t<String value=\"\"/>"
            "\n\t</Obj>"
            "\n</Obj>"
            "\n</ZRXMLRoot>");
  std::ostringstream more;
  const XMLObj obj("A", -1);  // no tabs below depth 1
  obj.WriteSubElement(more, -INFINITY);
  obj.WriteSubElement(more, "x");  // a literal is a String, not a bool
  EXPECT_EQ(more.str(), "\n<Double value=\"-inf\"/>\n<String value=\"x\"/>");
}

TEST(ObjStreamRecord, ReadsBackFieldByFieldAndEveryTruncationFails) {
  int count = 0;
  const std::string text = zrtest::WriteText(SampleRecord(), 0, &count);
  TestRecord back;
  EXPECT_TRUE(zrtest::ReadWhole(zrtest::ReadText(text, zrtest::ReaderInto(back)), count));
  TestRecord want = SampleRecord();  // every field back, extremes and 2^53 + 1 included
  want.fdMean = 0.3;                 // 15 digits: not 0.30000000000000004
  want.fsLabel = "&#32;a&#9;b&lt;&quot;c&quot;&gt; &#32;";  // Intended: as written
  EXPECT_TRUE(back == want);
  zrtest::ExpectTruncationsFail(text, zrtest::FreshReader<TestRecord>(), count);
}

// The failure line names the object that failed, once: a failing part reports itself and
// the record adds nothing. A stream that is not clean is neither written nor read.
TEST(ObjStreamRecord, FailureIsOneLineNamingTheFailedObject) {
  const std::string text = zrtest::WriteText(SampleRecord());
  const zrtest::Reader read = zrtest::FreshReader<TestRecord>();
  std::string badPart = text;
  badPart.replace(text.find("\t\t<Int") + 3, 3, "Long");
  EXPECT_EQ(zrtest::ReadText(badPart, read).err, "Failure reading TestRecordPart!\n");
  EXPECT_EQ(zrtest::ReadText(text.substr(0, 5), read).err, "Failure reading TestRecord!\n");

  std::stringstream eof(text);
  eof.setstate(std::ios::eofbit);
  EXPECT_EQ(SampleRecord().WriteObjectXML(eof, 0), 0);
  TestRecord record;
  EXPECT_TRUE(zrtest::FailedCleanly(zrtest::ReadText(text, [&](std::istream & in) {
    in.setstate(std::ios::eofbit);
    return record.ReadObjectXML(in);
  })));
  EXPECT_TRUE(record == TestRecord());
}

// Only the element name decides: bool and the integers share Int, and any other line is
// refused with its target unchanged (7, or false).
TEST(ObjStreamRead, ElementNameDecidesTheReader) {
  struct {
    int line;
    const char * text;
    char reader;  // 'I' int, unsigned and bool; 'L' long; 'D' double; 'S' string; 0 none
  } const cases[] = {
      {__LINE__, "<Int value=\"1\"/>", 'I'},    {__LINE__, "<Long value=\"1\"/>", 'L'},
      {__LINE__, "<Double value=\"1\"/>", 'D'}, {__LINE__, "<String value=\"1\"/>", 'S'},
      {__LINE__, "\t\t Int value=1", 'I'},  // tokens, not layout
      {__LINE__, "<int value=\"1\"/>", 0},      {__LINE__, "<Int  value=\"1\"/>", 0},  // " value"
      {__LINE__, "<Int value=\"", 0},  // no value text
      {__LINE__, "\n<Int value=\"1\"/>", 0},    {__LINE__, "", 0}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    int i = 7;
    unsigned int u = 7;
    bool b = false;
    long l = 7;
    double d = 7;
    std::string s = "7";
    const bool isInt = c.reader == 'I';  // every accepted line holds 1
    EXPECT_EQ(ReadOne(c.text, i) + 2 * ReadOne(c.text, u) + 4 * ReadOne(c.text, b), isInt ? 7 : 0);
    EXPECT_EQ(ReadOne(c.text, l), c.reader == 'L');
    EXPECT_EQ(ReadOne(c.text, d), c.reader == 'D');
    EXPECT_EQ(ReadOne(c.text, s), c.reader == 'S');
    EXPECT_TRUE(i == (isInt ? 1 : 7) && u == (isInt ? 1u : 7u) && b == isInt);
    EXPECT_TRUE(l == (c.reader == 'L' ? 1 : 7) && d == (c.reader == 'D' ? 1 : 7));
    EXPECT_EQ(s, c.reader == 'S' ? "1" : "7");
  }
}

// int and long read as atoi and atol, unsigned as atof truncated, bool as atoi taking only
// 0 and 1; where the C functions would overflow, the integers saturate.
TEST(ObjStreamRead, IntegerTextAsAtoiAtolOrAtof) {
  constexpr int kNo = -1;  // the bool reader refuses, its target unchanged
  struct {
    int line;
    const char * text;
    int asInt;
    unsigned int asUnsigned;
    int asBool;
    long asLong;
  } const cases[] = {
      {__LINE__, "1e3", 1, 1000u, 1, 1},  // Intended: atoi stops at "e", atof does not
      {__LINE__, "-5", -5, 0u, kNo, -5},
      {__LINE__, "+01", 1, 1u, 1, 1},
      {__LINE__, "2", 2, 2u, kNo, 2},
      {__LINE__, "4294967295.9", INT_MAX, UINT_MAX, kNo, 4294967295L},
      {__LINE__, "-9223372036854775809", INT_MIN, 0u, kNo, LONG_MIN},
      {__LINE__, "9223372036854775808", INT_MAX, UINT_MAX, kNo, LONG_MAX},
      {__LINE__, "0x10", 0, 16u, 0, 0},
      {__LINE__, "nan", 0, 0u, 0, 0},
      {__LINE__, "inf", 0, UINT_MAX, 0, 0},
      {__LINE__, "", 0, 0u, 0, 0},  // Intended: value=""/> leaves the token "/>", read as 0
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    const std::string value = std::string(" value=\"") + c.text + "\"/>";
    int i = 7;
    unsigned int u = 7;
    long l = 7;
    bool b = false, bTrue = true;
    EXPECT_TRUE(ReadOne("<Int" + value, i) && ReadOne("<Int" + value, u));
    EXPECT_TRUE(ReadOne("<Long" + value, l));
    EXPECT_EQ(ReadOne("<Int" + value, b), c.asBool != kNo);
    EXPECT_EQ(ReadOne("<Int" + value, bTrue), c.asBool != kNo);
    EXPECT_EQ(std::make_tuple(i, u, l), std::make_tuple(c.asInt, c.asUnsigned, c.asLong));
    EXPECT_EQ(std::make_pair(b, bTrue), std::make_pair(c.asBool == 1, c.asBool != 0));
  }
}

// A double is what a classic-locale stream extracts, 0 when it extracts nothing, with true
// either way; a string is the text between the quotes as written. A line of 256 bytes or
// more is refused, and so is every read after it.
TEST(ObjStreamRead, DoubleAndStringText) {
  struct {
    int line;
    const char * text;
    double want;
  } const doubles[] = {
      {__LINE__, "Missing", kMiss},
      {__LINE__, "missing", 0.0},
      {__LINE__, "nan", 0.0},  // Intended: what the writer makes of NaN reads as 0
      {__LINE__, "1e3x", 1000.0},
      {__LINE__, "1e400", DBL_MAX},  // a stream stores the largest double on overflow
      {__LINE__, "", 0.0},
  };
  for (const auto & c : doubles) {
    SCOPED_TRACE(c.line);
    double d = 7;
    EXPECT_TRUE(ReadOne(std::string("<Double value=\"") + c.text + "\"/>", d));
    EXPECT_EQ(d, c.want);
  }
  struct {
    int line;
    const char * text;
    const char * want;  // null: false, the target unchanged
  } const strings[] = {
      {__LINE__, "<String value=\"x\"/>\r", "x"},    {__LINE__, "<String value=\"\"/>\r", ""},
      {__LINE__, "<String value=\"\"/>junk", ""},  // only the four bytes ""/> are looked at
      {__LINE__, "\t<String value=\"", ""},          {__LINE__, "<String value=\"x", "x"},
      {__LINE__, "<String value=\"/>", "/>"},  // one quote: not the empty value
      {__LINE__, "<String  value=\"x\"/>", nullptr}, {__LINE__, "<Double value=\"\"", nullptr},
  };
  for (const auto & c : strings) {
    SCOPED_TRACE(c.line);
    std::string s = "7";
    EXPECT_EQ(ReadOne(c.text, s), c.want != nullptr);
    EXPECT_EQ(s, c.want != nullptr ? c.want : "7");
  }
  const std::string head = "<String value=\"", tail = "\"/>";
  for (std::size_t length : {255u, 256u}) {
    for (const std::string after : {"", "\n</Obj>"}) {
      SCOPED_TRACE(testing::Message() << length << " bytes, then \"" << after << "\"");
      const std::string text(length - head.size() - tail.size(), 'x');
      std::istringstream in(head + text + tail + after);
      std::string s = "7";
      const bool fits = length < 256;
      EXPECT_EQ(ParseValue(in, s), fits);
      EXPECT_EQ(s, fits ? text : "7");
      EXPECT_EQ(ParseEndObj(in), fits && !after.empty());
    }
  }
}

// Object starts and ends and the header lines compare tokens, not layout. Only the object
// start skips an empty line, and nothing reads the root end.
TEST(ObjStreamRead, StructureLinesCompareTokens) {
  using Read = std::function<bool(std::istream &)>;
  const Read startA = [](std::istream & in) { return ParseStartObj(in, "A"); };
  const Read startEmpty = [](std::istream & in) { return ParseStartObj(in, ""); };
  const Read end = ParseEndObj, header = ParseStartXML;
  // Intended: the root writers make neither of the first two lines ParseStartXML requires.
  std::ostringstream written;
  StartRoot(written, "zrcommon920r");
  XMLObj("A", 0).StartObj(written);
  const std::string prolog = "<?xml version=\"1.0\"?>\n<!DOCTYPE ZRXMLRoot SYSTEM \"x\">\n";
  struct {
    int line;
    const Read & read;
    std::string text;
    bool ok;
  } const cases[] = {
      {__LINE__, startA, "Obj name=\"A\"", true},
      {__LINE__, startA, "\n<Obj name=\"A\">", true},
      {__LINE__, startA, "\n\n<Obj name=\"A\">", false},
      {__LINE__, startA, "<Obj name=\"AB\">", false},
      {__LINE__, startA, "<obj name=\"A\">", false},
      {__LINE__, startA, "<Obj nom=\"A\">", false},
      {__LINE__, startEmpty, "<Obj name=\"\">", false},  // Intended: the name token is ">"
      {__LINE__, startEmpty, "\n", false},
      {__LINE__, end, "\t\t</Obj>\r", true},
      {__LINE__, end, "< /Obj > x", true},
      {__LINE__, end, "</ObjX>", false},
      {__LINE__, end, "\n</Obj>", false},
      {__LINE__, end, "</ZRXMLRoot>", false},
      {__LINE__, header, written.str(), false},
      {__LINE__, header, prolog + written.str(), true},
      {__LINE__, header, "<?xml\n<DOCTYPE\n<ZRXMLRoot>", false},
      {__LINE__, header, "<?xml\n<!DOCTYPE\n<ZRXMLRoot2>", false},
      {__LINE__, header, "<?xml\n\n<!DOCTYPE\n<ZRXMLRoot>", false},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    std::istringstream in(c.text);
    EXPECT_EQ(c.read(in), c.ok);
  }
  std::istringstream full(prolog + written.str());
  EXPECT_TRUE(ParseStartXML(full) && ParseStartObj(full, "A"));  // three lines, then the object
}

// A tokenizer with state shared between threads (strtok's) would mix the two streams. The
// threads start together; 640000 value lines each showed such a tokenizer in every trial.
TEST(ObjStreamRead, ReadersOnTwoThreadsDoNotInterfere) {
  constexpr int kValues = 16, kPasses = 40000;
  std::atomic<int> waiting{2};
  const auto readMany = [&waiting](const std::string & name, int value, int * failures) {
    std::ostringstream out;
    const XMLObj obj(name, 0);
    obj.StartObj(out);
    for (int k = 0; k < kValues; ++k) obj.WriteSubElement(out, value + k);
    obj.EndObj(out);
    const std::string text = out.str();
    --waiting;
    while (waiting > 0) std::this_thread::yield();
    for (int pass = 0; pass < kPasses; ++pass) {
      std::istringstream in(text);
      bool ok = ParseStartObj(in, name);
      for (int k = 0, i = 0; k < kValues; ++k) ok = ok && ParseValue(in, i) && i == value + k;
      if (!(ok && ParseEndObj(in))) ++*failures;
    }
  };
  int failures[2] = {0, 0};
  std::thread a(readMany, "Alpha", 100, &failures[0]);
  std::thread b(readMany, "Beta Gamma", 2000000, &failures[1]);
  a.join();
  b.join();
  EXPECT_EQ(failures[0] + failures[1], 0);
}

// Numbers are written and read in the "C" locale: a comma locale's strtod would stop
// "1.5e3" at the point.
TEST(ObjStreamRead, NumbersIgnoreACommaLocale) {
  zrtest::ScopedLocale comma("de_DE.UTF-8");
  if (!comma.ok()) GTEST_SKIP() << comma.why();
  std::ostringstream out;
  XMLObj("A", 0).WriteSubElement(out, 2.5);
  EXPECT_EQ(out.str(), "\n\t<Double value=\"2.5\"/>");
  unsigned int u = 0;
  double d = 0;
  EXPECT_TRUE(ReadOne("<Int value=\"1.5e3\"/>", u) && ReadOne("<Double value=\"2.5\"/>", d));
  EXPECT_TRUE(u == 1500u && d == 2.5);
}

}  // namespace
