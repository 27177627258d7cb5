// The variate data records: their constructors, the getters that hand them to
// ZRStatXMLUtil, and their diagnostic displays.
#include "zrcommon920r/xml/export/varrecords.h"

#include "zrcommon920r/common/value.h"
#include "zrcommon920r/display/display.h"
#include "zrcommon920r/xml/export/statxml.h"

namespace ZRXML_920 {

using namespace ZRDisplay_920;

namespace {

constexpr double kSysMis = ZRCommon_920::Value::SYSMISVALUE;

}  // namespace

ZRXMLCounts::ZRXMLCounts() : ZRXMLCounts(0.0, kSysMis, kSysMis, kSysMis) {}

ZRXMLCounts::ZRXMLCounts(double totalFreq, double missingFreq, double invalidFreq,
                         double cardinality)
    : fTotalFreq(totalFreq),
      fMissingFreq(missingFreq),
      fInvalidFreq(invalidFreq),
      fCardinality(cardinality) {}

ZRXMLCoordinates::ZRXMLCoordinates() : fValueKind(kZRXMLNoValues) {}

ZRXMLCoordinates::ZRXMLCoordinates(const std::string & feature, const std::string & field,
                                   const std::string & statistic, const std::vector<int> & values)
    : fFeature(feature),
      fField(field),
      fStatistic(statistic),
      fIntValues(values),
      fValueKind(kZRXMLIntValues) {}

ZRXMLCoordinates::ZRXMLCoordinates(const std::string & feature, const std::string & field,
                                   const std::string & statistic,
                                   const std::vector<double> & values)
    : fFeature(feature),
      fField(field),
      fStatistic(statistic),
      fDoubleValues(values),
      fValueKind(kZRXMLDoubleValues) {}

ZRXMLCoordinates::ZRXMLCoordinates(const std::string & feature, const std::string & field,
                                   const std::string & statistic,
                                   const std::vector<std::string> & values)
    : fFeature(feature),
      fField(field),
      fStatistic(statistic),
      fStringValues(values),
      fValueKind(kZRXMLStringValues) {}

XMLElement * ZRXMLCoordinates::GetCoordinates() const {
  return ZRStatXMLUtil::CreateElemCoordinates(*this);
}

void ZRXMLCoordinates::Display() const {
  DisplayText(1, " Coordinates display start: ");
  DisplayS("feature", fFeature);
  DisplayS("field", fField);
  DisplayS("statistic", fStatistic);
  switch (fValueKind) {
    case kZRXMLIntValues:
      DisplayIV(" values ", fIntValues);
      break;
    case kZRXMLDoubleValues:
      DisplayDV(" values ", fDoubleValues);
      break;
    case kZRXMLStringValues:
      DisplaySV(" values ", fStringValues);
      break;
    default:
      DisplayS(" values ", "Error");
      break;
  }
  DisplayText(1, " Coordinates display end. ");
}

ZRXMLCoordinatesGroup::ZRXMLCoordinatesGroup(const std::string & description,
                                             const std::vector<ZRXMLCoordinates> & coordinates)
    : fDescription(description), fCoordinates(coordinates) {}

XMLElement * ZRXMLCoordinatesGroup::GetCoordinatesGroup() const {
  return ZRStatXMLUtil::CreateElemCoordinatesGroup(*this);
}

void ZRXMLCoordinatesGroup::Display() const {
  DisplayText(1, " CoordinatesGroup display start: ");
  DisplayS(" Description ", fDescription);
  for (const ZRXMLCoordinates & c : fCoordinates) c.Display();
  DisplayText(1, " CoordinatesGroup display end. ");
}

ZRXMLRecordInfo::ZRXMLRecordInfo() : fValueKind(kZRXMLNoValues) {}

ZRXMLRecordInfo::ZRXMLRecordInfo(const std::string & recordId, const std::string & recordLabel,
                                 const std::vector<std::vector<int>> & values)
    : fRecordId(recordId),
      fRecordLabel(recordLabel),
      fIntValues(values),
      fValueKind(kZRXMLIntValues) {}

ZRXMLRecordInfo::ZRXMLRecordInfo(const std::string & recordId, const std::string & recordLabel,
                                 const std::vector<std::vector<double>> & values)
    : fRecordId(recordId),
      fRecordLabel(recordLabel),
      fDoubleValues(values),
      fValueKind(kZRXMLDoubleValues) {}

ZRXMLRecordInfo::ZRXMLRecordInfo(const std::string & recordId, const std::string & recordLabel,
                                 const std::vector<std::vector<std::string>> & values)
    : fRecordId(recordId),
      fRecordLabel(recordLabel),
      fStringValues(values),
      fValueKind(kZRXMLStringValues) {}

void ZRXMLRecordInfo::Display() const {
  DisplayText(1, " RecordInfo display start: ");
  DisplayS(" RecordID ", fRecordId);
  // Intended: the label's line is spelled " RecordLable ".
  DisplayS(" RecordLable ", fRecordLabel);
  switch (fValueKind) {
    case kZRXMLIntValues:
      for (const std::vector<int> & row : fIntValues) DisplayIV("value", row);
      break;
    case kZRXMLDoubleValues:
      for (const std::vector<double> & row : fDoubleValues) DisplayDV("value", row);
      break;
    case kZRXMLStringValues:
      for (const std::vector<std::string> & row : fStringValues) DisplaySV("value", row);
      break;
    default:
      break;
  }
  DisplayText(1, " RecordInfo display end. ");
}

XMLElement * ZRVariateData::GetUnivariateDataElem() const {
  return ZRStatXMLUtil::CreateElemVarData(STATXML_UnivariateData, fDescription, *this);
}

XMLElement * ZRVariateData::GetBivariateDataElem() const {
  return ZRStatXMLUtil::CreateElemVarData(STATXML_BivariateData, fDescription, *this);
}

XMLElement * ZRVariateData::GetMultiVariateDataElem() const {
  return ZRStatXMLUtil::CreateElemVarData(STATXML_MultivariateData, fDescription, *this);
}

void ZRVariateData::Display() const {
  DisplayText(1, " ZRVariateData display start: ");
  DisplayS(" Description ", fDescription);
  DisplayText(1, " Counts: ");
  // Intended: the cardinality is not shown.
  for (const ZRXMLCounts & c : fCounts) {
    if (c.fTotalFreq != kSysMis) DisplayD(" fTotalFreq ", c.fTotalFreq);
    if (c.fMissingFreq != kSysMis) DisplayD(" fMissingFreq ", c.fMissingFreq);
    if (c.fInvalidFreq != kSysMis) DisplayD(" fInvalidFreq ", c.fInvalidFreq);
  }
  DisplayText(1, " Statistics: ");
  DisplaySV(" Names ", fStatNames);
  if (fStringStats) {
    DisplaySV(" Values ", fStatStrings);
  } else {
    DisplayDV(" Values ", fStatDoubles);
  }
  DisplayText(1, " Coordinates: ");
  for (const ZRXMLCoordinates & c : fCoordinates) c.Display();
  for (const ZRXMLCoordinatesGroup & g : fGroups) g.Display();
  DisplayText(1, " RecordInfo: ");
  for (const ZRXMLRecordInfo & r : fRecordInfos) r.Display();
  DisplayText(1, " ZRVariateData display end. ");
}

}  // namespace ZRXML_920
