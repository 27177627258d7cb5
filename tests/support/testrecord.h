// A test-only record that saves and restores itself through the object stream by the
// contract of the library's persistent classes: every kind of value, the system-missing
// double among them, and a nested object. The persistence tests and the fuzzer drive it.
#ifndef ZRCOMMON920R_TESTS_SUPPORT_TESTRECORD_H
#define ZRCOMMON920R_TESTS_SUPPORT_TESTRECORD_H

#include <istream>
#include <ostream>
#include <string>

namespace zrtest {

// The nested object of TestRecord.
struct TestRecordPart {
  int fnLevel = 0;
  std::string fsCode;

  // Writes object "TestRecordPart" at depth nTabs: Int level, String code. Returns the 4
  // elements written, or 0 at once when out is not clean.
  int WriteObjectXML(std::ostream & out, int nTabs) const;
  // Reads what WriteObjectXML wrote into this object and returns 4. On a stream that is not
  // clean or a refused line, prints "Failure reading TestRecordPart!" and a line feed on
  // std::cerr and returns 0, leaving the fields read so far changed.
  int ReadObjectXML(std::istream & in);
};

// A record with one member of each kind the stream holds.
struct TestRecord {
  int fnCount = 0;
  unsigned int fnSeed = 0;
  bool fbWeighted = false;
  long fnTotal = 0;
  double fdMean = 0.0;
  double fdVariance = 0.0;
  std::string fsLabel;
  TestRecordPart fPart;

  // Writes object "TestRecord" at depth nTabs: Int count, Int seed, Int weighted, Long
  // total, Double mean, Double variance, String label, then the part at nTabs + 1. Returns
  // the 13 elements written, or 0 at once when out is not clean.
  int WriteObjectXML(std::ostream & out, int nTabs) const;
  // Reads what WriteObjectXML wrote into this record and returns 13. On a stream that is
  // not clean or a refused line, prints "Failure reading TestRecord!" and a line feed on
  // std::cerr and returns 0; a part that fails has printed its own line, and no second
  // line follows (as when a nested reader throws).
  int ReadObjectXML(std::istream & in);
};

// Field by field; doubles by ==, so a NaN member never compares equal.
bool operator==(const TestRecordPart & a, const TestRecordPart & b);
bool operator==(const TestRecord & a, const TestRecord & b);

}  // namespace zrtest

#endif  // ZRCOMMON920R_TESTS_SUPPORT_TESTRECORD_H
