// The test record's persistence, written the way a persistent class of the library writes it.
#include "support/testrecord.h"

#include <iostream>

#include "zrcommon920r/xml/core/objstream.h"

namespace zrtest {

namespace {

using ZRXML_920::ParseEndObj;
using ZRXML_920::ParseStartObj;
using ZRXML_920::ParseValue;
using ZRXML_920::XMLObj;

const char * const kRecordName = "TestRecord";
const char * const kPartName = "TestRecordPart";
constexpr int kPartElements = 4;
constexpr int kRecordOwnElements = 9;  // start, seven values, end

int ReportFailure(const char * name) {
  std::cerr << "Failure reading " << name << "!\n";
  return 0;
}

}  // namespace

int TestRecordPart::WriteObjectXML(std::ostream & out, int nTabs) const {
  if (!out.good()) return 0;
  const XMLObj obj(kPartName, nTabs);
  obj.StartObj(out);
  obj.WriteSubElement(out, fnLevel);
  obj.WriteSubElement(out, fsCode);
  obj.EndObj(out);
  return kPartElements;
}

int TestRecordPart::ReadObjectXML(std::istream & in) {
  if (in.good() && ParseStartObj(in, kPartName) && ParseValue(in, fnLevel) &&
      ParseValue(in, fsCode) && ParseEndObj(in)) {
    return kPartElements;
  }
  return ReportFailure(kPartName);
}

int TestRecord::WriteObjectXML(std::ostream & out, int nTabs) const {
  if (!out.good()) return 0;
  const XMLObj obj(kRecordName, nTabs);
  obj.StartObj(out);
  obj.WriteSubElement(out, fnCount);
  obj.WriteSubElement(out, fnSeed);
  obj.WriteSubElement(out, fbWeighted);
  obj.WriteSubElement(out, fnTotal);
  obj.WriteSubElement(out, fdMean);
  obj.WriteSubElement(out, fdVariance);
  obj.WriteSubElement(out, fsLabel);
  const int nested = fPart.WriteObjectXML(out, nTabs + 1);
  obj.EndObj(out);
  return kRecordOwnElements + nested;
}

int TestRecord::ReadObjectXML(std::istream & in) {
  if (!(in.good() && ParseStartObj(in, kRecordName) && ParseValue(in, fnCount) &&
        ParseValue(in, fnSeed) && ParseValue(in, fbWeighted) && ParseValue(in, fnTotal) &&
        ParseValue(in, fdMean) && ParseValue(in, fdVariance) && ParseValue(in, fsLabel))) {
    return ReportFailure(kRecordName);
  }
  const int nested = fPart.ReadObjectXML(in);
  if (nested == 0) return 0;
  if (!ParseEndObj(in)) return ReportFailure(kRecordName);
  return kRecordOwnElements + nested;
}

bool operator==(const TestRecordPart & a, const TestRecordPart & b) {
  return a.fnLevel == b.fnLevel && a.fsCode == b.fsCode;
}

bool operator==(const TestRecord & a, const TestRecord & b) {
  return a.fnCount == b.fnCount && a.fnSeed == b.fnSeed && a.fbWeighted == b.fbWeighted &&
         a.fnTotal == b.fnTotal && a.fdMean == b.fdMean && a.fdVariance == b.fdVariance &&
         a.fsLabel == b.fsLabel && a.fPart == b.fPart;
}

}  // namespace zrtest
