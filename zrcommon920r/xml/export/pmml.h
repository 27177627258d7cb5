// The model-independent parts of a PMML 4.3 document: the root element, the Header, the
// DataDictionary of a variable list, this library's DataModel block of the same fields,
// UnivariateStats and Extension elements. Each is a new XMLElement tree handed to the
// caller, who joins them with a model element and prints the document with WriteTree.
// The vocabulary for building model elements is in pmmlvocab.h.
#ifndef ZRCOMMON920R_XML_EXPORT_PMML_H
#define ZRCOMMON920R_XML_EXPORT_PMML_H

#include <string>
#include <vector>

#include "zrcommon920r/common/cancel.h"
#include "zrcommon920r/common/status.h"
#include "zrcommon920r/math/stats/unistats.h"
#include "zrcommon920r/xml/core/xmltree.h"
#include "zrcommon920r/xml/export/pmmlvocab.h"
#include "zrcommon920r/xml/vars/varlist.h"

namespace ZRCommon_920 {

// What a caller says about itself in the Header. The exporter reads the three texts and
// never touches fReserved.
struct ZRApplicInfo4XML {
  int fReserved = 0;
  std::string fName;
  std::string fVersion;
  std::string fCopyright;
};

// Builds the PMML fragments. One export at a time per object: the tree under construction
// sits in fElement until it is handed over, so that an exception on the way leaves nothing
// leaked (the destructor deletes it). The cancel object is polled once per field and once
// at the end of the field exports; a true answer deletes the tree and gives code 1.
//
// Status codes: 0 OK; errors (level -1) 1 cancelled (element null), 101 a position out of
// range and 102 a null variable (position in discrete datum 0; the fields made so far are
// handed over), 117 statistics that fail IsValid (element null).
class ZRPMMLExporter {
 public:
  // Keeps cancel (not owned, may be null); no tree.
  explicit ZRPMMLExporter(ZRQueryCancel * cancel);
  ZRPMMLExporter(const ZRPMMLExporter &) = delete;
  ZRPMMLExporter & operator=(const ZRPMMLExporter &) = delete;
  // Deletes a tree left by an export that threw.
  ~ZRPMMLExporter();

  // A new root <PMML version="4.3" xmlns=... xmlns:xsi=... xsi:schemaLocation=...>, owned
  // by the caller. Throws std::bad_alloc only.
  ZRXML_920::XMLElement * ExportPMMLElement() const;
  // The same element: the version is always 4.3.
  ZRXML_920::XMLElement * ExportPMMLElement40() const;

  // A Header: copyright (info's, or the library's line when info is null or its text
  // empty), description when not empty, an Application with the non-empty name and
  // version when info has either, and with timestamp a Timestamp holding the local time as
  // ctime_r writes it, without its line feed. Always code 0.
  ZRStatus ExportHeader(const ZRApplicInfo4XML * info, const std::string & description,
                        bool timestamp, ZRXML_920::XMLElement *& element);
  // A DataDictionary with one DataField per position of indices, or, when it is empty, per
  // variable of the list that is not of role 6 (unused). A field carries its optype and
  // dataType, flag and trailing-blank Extensions, its categories and user-missing values as
  // Value children, and its missing interval as Extensions; numberOfFields comes last.
  // Codes 0, 1, 101, 102 (see the class).
  ZRStatus ExportDataDictionary(const ZRXML_920::ZRVarList & variables,
                                const std::vector<int> & indices, ZRXML_920::XMLElement *& element);
  // A DataModel: a clone of the list's field formats element when there is one, then
  // Fields with one Field (name, displayLabel, measure, storage, role) per position of
  // indices, or of every variable when it is empty, and count last. Codes as above.
  ZRStatus ExportDataModel(const ZRXML_920::ZRVarList & variables, const std::vector<int> & indices,
                           ZRXML_920::XMLElement *& element);
  // UnivariateStats of one field: Counts with the number of cases when it is finite; then
  // DiscrStats with the frequencies as a real Array (system-missing as "NaN") for
  // categorical statistics, or NumericInfo with the finite, non-missing minimum, maximum
  // (read negated from fdMax), mean and standard deviation. Code 117 and a null element
  // when stats.IsValid() is false.
  ZRStatus ExportUniStats(const ZRXML_920::ZRUniStats & stats, ZRXML_920::XMLElement *& element);
  // A new Extension, owned by the caller: name when not empty, value when not empty (text)
  // or finite (number, as "%.15g" in the "C" locale), then extender.
  void ExportExtension(const std::string & name, const std::string & value,
                       ZRXML_920::XMLElement *& element);
  void ExportExtension(const std::string & name, double value, ZRXML_920::XMLElement *& element);

 private:
  // Deletes a tree left by an export that threw, then starts a new tree named name.
  ZRXML_920::XMLElement & Start(const std::string & name);
  // Whether the caller asks to stop; false without a cancel object.
  bool Cancelled() const;
  // Deletes the tree and gives the status of a cancelled export.
  ZRStatus Abandon(ZRXML_920::XMLElement *& element);
  // Hands the tree over in element and returns status.
  ZRStatus HandOver(ZRXML_920::XMLElement *& element, const ZRStatus & status);
  // The field of the dictionary for variable, appended to dictionary.
  void AddDataField(ZRXML_920::IZRVariable & variable, ZRXML_920::XMLElement & dictionary);

  ZRXML_920::XMLElement * fElement;
  ZRQueryCancel * fCancel;
};

}  // namespace ZRCommon_920

#endif  // ZRCOMMON920R_XML_EXPORT_PMML_H
