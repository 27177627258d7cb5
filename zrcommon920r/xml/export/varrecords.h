// The variate data records: plain values that hold what a StatXML data element will say
// (counts, statistics, coordinates, coordinate groups, record infos) before ZRStatXMLUtil
// writes it. Chart gatherers fill a ZRVariateData; its getters turn it into elements.
// Every record copies and assigns as a value; the fields are public.
#ifndef ZRCOMMON920R_XML_EXPORT_VARRECORDS_H
#define ZRCOMMON920R_XML_EXPORT_VARRECORDS_H

#include <string>
#include <vector>

#include "zrcommon920r/xml/core/xmltree.h"

namespace ZRXML_920 {

// Which vector of a coordinates or record-info record is in use.
enum ZRXMLValueKind : int {
  kZRXMLNoValues = -1,  // nothing set: no element can be made
  kZRXMLIntValues = 0,
  kZRXMLDoubleValues = 1,
  kZRXMLStringValues = 2
};

// The frequencies of one Counts element: total, missing and invalid frequency and the
// number of distinct values. A field that ZRStatXMLUtil::CreateElemCounts finds outside
// its range is left out of the element.
class ZRXMLCounts {
 public:
  // A total of 0 and the other three the system-missing value: the counts of nothing.
  ZRXMLCounts();
  ZRXMLCounts(double totalFreq, double missingFreq, double invalidFreq, double cardinality);
  ZRXMLCounts(const ZRXMLCounts &) = default;
  ZRXMLCounts(ZRXMLCounts &&) = default;
  ZRXMLCounts & operator=(const ZRXMLCounts &) = default;
  ZRXMLCounts & operator=(ZRXMLCounts &&) = default;
  virtual ~ZRXMLCounts() = default;

  double fTotalFreq;
  double fMissingFreq;
  double fInvalidFreq;
  double fCardinality;
};

// One axis of a chart or table: what it shows (feature), of which field, by which
// statistic, and its values in the one vector that fValueKind names.
class ZRXMLCoordinates {
 public:
  // Empty texts and vectors, kind kZRXMLNoValues: no element can be made from it.
  ZRXMLCoordinates();
  // The texts, and values as the vector in use with the matching kind.
  ZRXMLCoordinates(const std::string & feature, const std::string & field,
                   const std::string & statistic, const std::vector<int> & values);
  ZRXMLCoordinates(const std::string & feature, const std::string & field,
                   const std::string & statistic, const std::vector<double> & values);
  ZRXMLCoordinates(const std::string & feature, const std::string & field,
                   const std::string & statistic, const std::vector<std::string> & values);
  ZRXMLCoordinates(const ZRXMLCoordinates &) = default;
  ZRXMLCoordinates(ZRXMLCoordinates &&) = default;
  ZRXMLCoordinates & operator=(const ZRXMLCoordinates &) = default;
  ZRXMLCoordinates & operator=(ZRXMLCoordinates &&) = default;
  virtual ~ZRXMLCoordinates() = default;

  // A new Coordinates element owned by the caller, as ZRStatXMLUtil::CreateElemCoordinates
  // makes it from this record; null when fValueKind is not 0, 1 or 2.
  XMLElement * GetCoordinates() const;
  // Prints " Coordinates display start: ", feature, field and statistic, the values in use
  // under " values " (" values  = Error" for an unset kind), and " Coordinates display end. ".
  void Display() const;

  std::string fFeature;
  std::string fField;
  std::string fStatistic;
  std::vector<int> fIntValues;
  std::vector<double> fDoubleValues;
  std::vector<std::string> fStringValues;
  int fValueKind;
};

// Coordinates that belong together, under one description.
class ZRXMLCoordinatesGroup {
 public:
  ZRXMLCoordinatesGroup() = default;
  ZRXMLCoordinatesGroup(const std::string & description,
                        const std::vector<ZRXMLCoordinates> & coordinates);
  ZRXMLCoordinatesGroup(const ZRXMLCoordinatesGroup &) = default;
  ZRXMLCoordinatesGroup(ZRXMLCoordinatesGroup &&) = default;
  ZRXMLCoordinatesGroup & operator=(const ZRXMLCoordinatesGroup &) = default;
  ZRXMLCoordinatesGroup & operator=(ZRXMLCoordinatesGroup &&) = default;
  virtual ~ZRXMLCoordinatesGroup() = default;

  // A new CoordinatesGroup element owned by the caller, as
  // ZRStatXMLUtil::CreateElemCoordinatesGroup makes it; records of an unset kind are skipped.
  XMLElement * GetCoordinatesGroup() const;
  // Prints " CoordinatesGroup display start: ", the description, each record's Display and
  // " CoordinatesGroup display end. ".
  void Display() const;

  std::string fDescription;
  std::vector<ZRXMLCoordinates> fCoordinates;
};

// One data record: an identifier, a label and rows of values in the one vector of vectors
// that fValueKind names.
class ZRXMLRecordInfo {
 public:
  // Empty texts and vectors, kind kZRXMLNoValues: no element can be made from it.
  ZRXMLRecordInfo();
  ZRXMLRecordInfo(const std::string & recordId, const std::string & recordLabel,
                  const std::vector<std::vector<int>> & values);
  ZRXMLRecordInfo(const std::string & recordId, const std::string & recordLabel,
                  const std::vector<std::vector<double>> & values);
  ZRXMLRecordInfo(const std::string & recordId, const std::string & recordLabel,
                  const std::vector<std::vector<std::string>> & values);
  ZRXMLRecordInfo(const ZRXMLRecordInfo &) = default;
  ZRXMLRecordInfo(ZRXMLRecordInfo &&) = default;
  ZRXMLRecordInfo & operator=(const ZRXMLRecordInfo &) = default;
  ZRXMLRecordInfo & operator=(ZRXMLRecordInfo &&) = default;
  virtual ~ZRXMLRecordInfo() = default;

  // Prints " RecordInfo display start: ", the identifier, the label (under " RecordLable "),
  // one "value" list per row of the kind in use (none for an unset kind) and
  // " RecordInfo display end. ".
  void Display() const;

  std::string fRecordId;
  std::string fRecordLabel;
  std::vector<std::vector<int>> fIntValues;
  std::vector<std::vector<double>> fDoubleValues;
  std::vector<std::vector<std::string>> fStringValues;
  int fValueKind;
};

// Everything one Univariate, Bivariate or Multivariate data element holds: counts, named
// statistics (strings when fStringStats, doubles otherwise), coordinates and their groups,
// and the record infos, which only ZRStatXMLUtil::AddRecordInfos writes.
class ZRVariateData {
 public:
  ZRVariateData() = default;
  ZRVariateData(const ZRVariateData &) = default;
  ZRVariateData(ZRVariateData &&) = default;
  ZRVariateData & operator=(const ZRVariateData &) = default;
  ZRVariateData & operator=(ZRVariateData &&) = default;
  virtual ~ZRVariateData() = default;

  // A new element owned by the caller, as ZRStatXMLUtil::CreateElemVarData makes it with the
  // tag "UnivariateData" (at most 2 coordinates), "BivariateData" (at most 3) or
  // "MultivariateData" (the groups, then every coordinates record) and fDescription.
  XMLElement * GetUnivariateDataElem() const;
  XMLElement * GetBivariateDataElem() const;
  XMLElement * GetMultiVariateDataElem() const;
  // Prints " ZRVariateData display start: ", the description, each count's frequencies that
  // are not system-missing, the statistic names and values, each coordinates record and
  // group, each record info, and " ZRVariateData display end. ".
  void Display() const;

  std::vector<ZRXMLCounts> fCounts;
  std::vector<std::string> fStatNames;
  bool fStringStats = true;
  std::vector<std::string> fStatStrings;
  std::vector<double> fStatDoubles;
  std::vector<ZRXMLCoordinates> fCoordinates;
  std::vector<ZRXMLRecordInfo> fRecordInfos;
  std::string fDescription;
  std::vector<ZRXMLCoordinatesGroup> fGroups;
};

}  // namespace ZRXML_920

#endif  // ZRCOMMON920R_XML_EXPORT_VARRECORDS_H
