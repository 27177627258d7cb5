// ZRStatXMLUtil: the factories of StatXML elements and the number and string lists of
// their Array elements.
#include "zrcommon920r/xml/export/statxml.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>

#include "zrcommon920r/common/value.h"
#include "zrcommon920r/xml/core/numtext.h"

namespace ZRXML_920 {

namespace {

using Owned = std::unique_ptr<XMLElement>;

constexpr double kSysMis = ZRCommon_920::Value::SYSMISVALUE;
const char * const kNamespaceUri = "http://zrcommon920r.org/statxml";
const char * const kSchemaUri = "http://zrcommon920r.org/statxml/statxml-1.0.xsd";
const char * const kXsiUri = "http://www.w3.org/2001/XMLSchema-instance";
const char * const kMissingText = "__MISSING__";
// Intended: the pointer form of the integer list keeps one significant digit.
const char * const kPointerIntFormat = "%.0g";

// The elements handed to one factory call, in the order they are attached. Whatever has
// not been attached when the guard goes out of scope is deleted, so a handed element never
// outlives the call unowned, neither when it is refused nor when an allocation throws.
// Holds views of the caller's arguments and allocates nothing.
class Handed {
 public:
  Handed() = default;
  Handed(const Handed &) = delete;
  Handed & operator=(const Handed &) = delete;
  ~Handed() {
    for (; fNext < fCount; ++fNext, fPos = 0) {
      const Span & s = fSpans[fNext];
      for (; fPos < s.size; ++fPos) delete s.data[fPos];
    }
  }

  // Adds the next group: one element (held by reference: it must outlive the guard) or
  // the elements of a vector.
  void Add(XMLElement * const & one) { Push(&one, 1); }
  void Add(const std::vector<XMLElement *> & many) { Push(many.data(), many.size()); }

  // Appends the non-null elements of the next group to parent, which owns each from then on.
  void AttachNext(XMLElement & parent) {
    const Span & s = fSpans[fNext];
    for (; fPos < s.size; ++fPos) {
      if (s.data[fPos] != nullptr) parent.AddElement(s.data[fPos]);
    }
    ++fNext;
    fPos = 0;
  }
  // Deletes the elements of the next group.
  void DropNext() {
    const Span & s = fSpans[fNext];
    for (; fPos < s.size; ++fPos) delete s.data[fPos];
    ++fNext;
    fPos = 0;
  }

 private:
  struct Span {
    XMLElement * const * data;
    std::size_t size;
  };
  void Push(XMLElement * const * data, std::size_t size) { fSpans[fCount++] = Span{data, size}; }

  std::array<Span, 4> fSpans{};
  std::size_t fCount = 0;
  std::size_t fNext = 0;
  std::size_t fPos = 0;
};

const std::string & BoolText(bool value) {
  return value ? STATXML_true : STATXML_false;
}

Owned WithDescription(const std::string & tag, const std::string & description) {
  Owned e(XMLElement::Create(tag));
  if (!description.empty()) e->AddAttribute(STATXML_description, description);
  return e;
}

// Appends made, a new element, to parent; nothing for null.
void AddOwned(XMLElement & parent, XMLElement * made) {
  Owned e(made);
  if (e == nullptr) return;
  parent.AddElement(e.get());
  e.release();
}

// The value of a string list: escaped first, then quoted when it holds a blank, so that
// quotes inside a value are escaped and the quotes around it are not.
std::string ListItem(const std::string & value) {
  std::string item = value.find_first_of("\"\\") != std::string::npos
                         ? ZRStatXMLUtil::ReplaceSpecialChar(value)
                         : value;
  if (!item.empty() && item.find(' ') != std::string::npos) item = '"' + item + '"';
  return item;
}

// One text node holding the words joined by one blank; nothing when there are none.
template <typename T, typename Word>
void AddJoined(XMLElement & element, const T * values, std::size_t count, Word word) {
  if (values == nullptr || count == 0) return;
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0) text += ' ';
    text += word(values[i]);
  }
  std::unique_ptr<XMLString> node(XMLString::Create(text));
  element.AddElement(node.get());
  node.release();
}

std::string DoubleWord(double value) {
  return value == kSysMis ? std::string(kMissingText) : Format(value, false, nullptr);
}

Owned CoordinatesWith(const std::string & feature, const std::string & field,
                      const std::string & statistic, XMLElement * array) {
  Owned values(array);
  Owned e(XMLElement::Create(STATXML_Coordinates));
  e->AddAttribute(STATXML_feature, feature);
  if (!field.empty()) e->AddAttribute(STATXML_field, field);
  if (!statistic.empty()) e->AddAttribute(STATXML_statistic, statistic);
  e->AddElement(values.get());
  values.release();
  return e;
}

// A Coordinates element around values, then extra when not null; extra is deleted should
// anything throw.
template <typename V>
XMLElement * CoordinatesAndExtra(const std::string & feature, const std::string & field,
                                 const std::string & statistic, const V & values,
                                 XMLElement * extra) {
  Handed handed;
  handed.Add(extra);
  Owned e = CoordinatesWith(feature, field, statistic, ZRStatXMLUtil::CreateElemArray(values));
  handed.AttachNext(*e);
  return e.release();
}

template <typename T>
XMLElement * RecordInfoOf(const std::string & id, const std::string & label,
                          const std::vector<std::vector<T>> & values) {
  Owned e(XMLElement::Create(STATXML_RecordInfo));
  e->AddAttribute(STATXML_recordId, id);
  if (!label.empty()) e->AddAttribute(STATXML_recordLabel, label);
  for (const std::vector<T> & row : values) AddOwned(*e, ZRStatXMLUtil::CreateElemArray(row));
  return e.release();
}

// An element tag holding the non-null elements of children, and the attribute name=value
// when name is not empty.
XMLElement * Holder(const std::string & tag, const std::vector<XMLElement *> & children,
                    const std::string & name, const std::string & value) {
  Handed handed;
  handed.Add(children);
  Owned e(XMLElement::Create(tag));
  if (!name.empty()) e->AddAttribute(name, value);
  handed.AttachNext(*e);
  return e.release();
}

XMLElement * Holder(const std::string & tag, XMLElement * child, const std::string & name,
                    const std::string & value) {
  Handed handed;
  handed.Add(child);
  Owned e(XMLElement::Create(tag));
  if (!name.empty()) e->AddAttribute(name, value);
  handed.AttachNext(*e);
  return e.release();
}

}  // namespace

XMLElement * ZRStatXMLUtil::BuildRoot() {
  Owned e(XMLElement::Create(STATXML_StatXML));
  e->AddAttribute("xmlns", kNamespaceUri);
  e->AddAttribute("xmlns:xsi", kXsiUri);
  e->AddAttribute("version", STATXML_1_0);
  e->AddAttribute("xsi:schemaLocation", std::string(kNamespaceUri) + ' ' + kSchemaUri);
  return e.release();
}

XMLElement * ZRStatXMLUtil::CreateElem(const std::string & tag, const std::string & name,
                                       const std::string & value) {
  Owned e(XMLElement::Create(tag));
  e->AddAttribute(name, value);
  return e.release();
}

XMLElement * ZRStatXMLUtil::CreateElem(const std::string & tag, const std::string & name,
                                       double value) {
  Owned e(XMLElement::Create(tag));
  e->AddAttribute(name, value);
  return e.release();
}

XMLElement * ZRStatXMLUtil::CreateElem(const std::string & tag, const std::string & name1,
                                       const std::string & value1, const std::string & name2,
                                       const std::string & value2) {
  Owned e(CreateElem(tag, name1, value1));
  e->AddAttribute(name2, value2);
  return e.release();
}

XMLElement * ZRStatXMLUtil::CreateElem(const std::string & tag, const std::string & name1,
                                       double value1, const std::string & name2, double value2) {
  Owned e(CreateElem(tag, name1, value1));
  e->AddAttribute(name2, value2);
  return e.release();
}

XMLElement * ZRStatXMLUtil::CreateElem(const std::string & tag, const std::string & name1,
                                       const std::string & value1, const std::string & name2,
                                       const std::string & value2, const std::string & name3,
                                       const std::string & value3) {
  Owned e(CreateElem(tag, name1, value1, name2, value2));
  e->AddAttribute(name3, value3);
  return e.release();
}

XMLElement * ZRStatXMLUtil::CreateElem(const std::string & tag, const std::string & name1,
                                       double value1, const std::string & name2, double value2,
                                       const std::string & name3, double value3) {
  Owned e(CreateElem(tag, name1, value1, name2, value2));
  e->AddAttribute(name3, value3);
  return e.release();
}

XMLElement * ZRStatXMLUtil::CreateElemUnivarData(const std::string & description) {
  return WithDescription(STATXML_UnivariateData, description).release();
}

XMLElement * ZRStatXMLUtil::CreateElemBivarData(const std::string & description) {
  return WithDescription(STATXML_BivariateData, description).release();
}

XMLElement * ZRStatXMLUtil::CreateElemMultivariateData(const std::string & description) {
  return WithDescription(STATXML_MultivariateData, description).release();
}

XMLElement * ZRStatXMLUtil::CreateElemStructuredData(const std::string & description) {
  return WithDescription(STATXML_StructuredData, description).release();
}

XMLElement * ZRStatXMLUtil::CreateElemCounts(double total, double missing, double invalid,
                                             double cardinality) {
  Owned e(XMLElement::Create(STATXML_Counts));
  // Intended: a system-missing total is finite, so it is written as a number.
  e->AddAttribute(STATXML_totalFreq, total);
  if (missing > kSysMis) e->AddAttribute(STATXML_missingFreq, missing);
  if (invalid > kSysMis) e->AddAttribute(STATXML_invalidFreq, invalid);
  if (cardinality >= 0.0) e->AddAttribute(STATXML_cardinality, cardinality);
  return e.release();
}

XMLElement * ZRStatXMLUtil::CreateElemCounts(const ZRXMLCounts & counts) {
  return CreateElemCounts(counts.fTotalFreq, counts.fMissingFreq, counts.fInvalidFreq,
                          counts.fCardinality);
}

XMLElement * ZRStatXMLUtil::CreateElemStatistic(const std::string & name,
                                                const std::string & value) {
  return CreateElem(STATXML_Statistic, STATXML_name, name, STATXML_value, value);
}

XMLElement * ZRStatXMLUtil::CreateElemStatistic(const std::string & name, double value) {
  Owned e(CreateElem(STATXML_Statistic, STATXML_name, name));
  e->AddAttribute(STATXML_value, value);
  return e.release();
}

XMLElement * ZRStatXMLUtil::CreateElemFieldInfo(const std::string & name, const std::string & value,
                                                bool isNull) {
  Owned e(CreateElem(STATXML_FieldInfo, STATXML_fieldName, name));
  if (!value.empty()) e->AddAttribute(STATXML_fieldValue, value);
  e->AddAttribute(STATXML_isNull, BoolText(isNull));
  return e.release();
}

XMLElement * ZRStatXMLUtil::CreateElemFieldInfo(const std::string & name, double value,
                                                bool isNull) {
  Owned e(CreateElem(STATXML_FieldInfo, STATXML_fieldName, name));
  e->AddAttribute(STATXML_fieldValue, value);
  e->AddAttribute(STATXML_isNull, BoolText(isNull));
  return e.release();
}

XMLElement * ZRStatXMLUtil::CreateElemCovariate(const std::string & field, int power) {
  Owned e(CreateElem(STATXML_Covariate, STATXML_field, field));
  e->AddAttribute(STATXML_power, static_cast<double>(power));
  return e.release();
}

XMLElement * ZRStatXMLUtil::CreateElemFactor(const std::string & field, const std::string & value,
                                             bool nest) {
  return CreateElem(STATXML_Factor, STATXML_field, field, STATXML_value, value, STATXML_nest,
                    BoolText(nest));
}

XMLElement * ZRStatXMLUtil::CreateElemFactor(const std::string & field, double value, bool nest) {
  Owned e(CreateElem(STATXML_Factor, STATXML_field, field));
  e->AddAttribute(STATXML_value, value);
  e->AddAttribute(STATXML_nest, BoolText(nest));
  return e.release();
}

XMLElement * ZRStatXMLUtil::CreateElemRegressionParameter(const std::string & name,
                                                          bool isIntercept) {
  Owned e(XMLElement::Create(STATXML_RegressionParameter));
  if (!name.empty()) e->AddAttribute(STATXML_name, name);
  e->AddAttribute(STATXML_isIntercept, BoolText(isIntercept));
  return e.release();
}

XMLElement * ZRStatXMLUtil::CreateElemRegressionParameter(const std::vector<XMLElement *> & first,
                                                          const std::vector<XMLElement *> & second,
                                                          const std::string & name,
                                                          bool isIntercept) {
  Handed handed;
  handed.Add(first);
  handed.Add(second);
  Owned e(CreateElemRegressionParameter(name, isIntercept));
  handed.AttachNext(*e);
  handed.AttachNext(*e);
  return e.release();
}

XMLElement * ZRStatXMLUtil::CreateElemLabel(const std::string & label) {
  return CreateElem(STATXML_Label, STATXML_label, label);
}

XMLElement * ZRStatXMLUtil::CreateElemLabel(const std::string & label, XMLElement * child) {
  return Holder(STATXML_Label, child, STATXML_label, label);
}

XMLElement * ZRStatXMLUtil::CreateElemLabel(const std::vector<XMLElement *> & first,
                                            const std::vector<XMLElement *> & second,
                                            const std::string & name, bool isIntercept,
                                            const std::string & label) {
  return CreateElemLabel(label, CreateElemRegressionParameter(first, second, name, isIntercept));
}

XMLElement * ZRStatXMLUtil::CreateElemCoordinates(const std::string & feature,
                                                  const std::string & field,
                                                  const std::string & statistic, const int * values,
                                                  int count) {
  return CoordinatesWith(feature, field, statistic, CreateElemArray(values, count)).release();
}

XMLElement * ZRStatXMLUtil::CreateElemCoordinates(const std::string & feature,
                                                  const std::string & field,
                                                  const std::string & statistic,
                                                  const std::vector<int> & values) {
  return CoordinatesWith(feature, field, statistic, CreateElemArray(values)).release();
}

XMLElement * ZRStatXMLUtil::CreateElemCoordinates(const std::string & feature,
                                                  const std::string & field,
                                                  const std::string & statistic,
                                                  const double * values, int count) {
  return CoordinatesWith(feature, field, statistic, CreateElemArray(values, count)).release();
}

XMLElement * ZRStatXMLUtil::CreateElemCoordinates(const std::string & feature,
                                                  const std::string & field,
                                                  const std::string & statistic,
                                                  const std::vector<double> & values) {
  return CoordinatesWith(feature, field, statistic, CreateElemArray(values)).release();
}

XMLElement * ZRStatXMLUtil::CreateElemCoordinates(const std::string & feature,
                                                  const std::string & field,
                                                  const std::string & statistic,
                                                  const std::string & text, int count) {
  return CoordinatesWith(feature, field, statistic, CreateElemArray(text, count)).release();
}

XMLElement * ZRStatXMLUtil::CreateElemCoordinates(const std::string & feature,
                                                  const std::string & field,
                                                  const std::string & statistic,
                                                  const std::vector<std::string> & values) {
  return CoordinatesWith(feature, field, statistic, CreateElemArray(values)).release();
}

XMLElement * ZRStatXMLUtil::CreateElemCoordinates(const std::string & feature,
                                                  const std::string & field,
                                                  const std::string & statistic,
                                                  const std::vector<int> & values,
                                                  XMLElement * extra) {
  return CoordinatesAndExtra(feature, field, statistic, values, extra);
}

XMLElement * ZRStatXMLUtil::CreateElemCoordinates(const std::string & feature,
                                                  const std::string & field,
                                                  const std::string & statistic,
                                                  const std::vector<double> & values,
                                                  XMLElement * extra) {
  return CoordinatesAndExtra(feature, field, statistic, values, extra);
}

XMLElement * ZRStatXMLUtil::CreateElemCoordinates(const std::string & feature,
                                                  const std::string & field,
                                                  const std::string & statistic,
                                                  const std::vector<std::string> & values,
                                                  XMLElement * extra) {
  return CoordinatesAndExtra(feature, field, statistic, values, extra);
}

XMLElement * ZRStatXMLUtil::CreateElemCoordinates(const ZRXMLCoordinates & c) {
  switch (c.fValueKind) {
    case kZRXMLIntValues:
      return CreateElemCoordinates(c.fFeature, c.fField, c.fStatistic, c.fIntValues);
    case kZRXMLDoubleValues:
      return CreateElemCoordinates(c.fFeature, c.fField, c.fStatistic, c.fDoubleValues);
    case kZRXMLStringValues:
      return CreateElemCoordinates(c.fFeature, c.fField, c.fStatistic, c.fStringValues);
    default:  // unset: no vector is in use, so there is no element to make
      return nullptr;
  }
}

XMLElement * ZRStatXMLUtil::CreateElemCoordinatesGroup(const ZRXMLCoordinatesGroup & group) {
  Owned e = WithDescription(STATXML_CoordinatesGroup, group.fDescription);
  for (const ZRXMLCoordinates & c : group.fCoordinates) AddOwned(*e, CreateElemCoordinates(c));
  return e.release();
}

XMLElement * ZRStatXMLUtil::CreateElemCoordinatesGroup(XMLElement * first,
                                                       const std::vector<XMLElement *> & others,
                                                       const std::string & description) {
  Handed handed;
  handed.Add(first);
  handed.Add(others);
  Owned e = WithDescription(STATXML_CoordinatesGroup, description);
  handed.AttachNext(*e);
  handed.AttachNext(*e);
  return e.release();
}

XMLElement * ZRStatXMLUtil::CreateElemRecordInfo(const std::string & id, const std::string & label,
                                                 const std::vector<std::vector<int>> & values) {
  return RecordInfoOf(id, label, values);
}

XMLElement * ZRStatXMLUtil::CreateElemRecordInfo(const std::string & id, const std::string & label,
                                                 const std::vector<std::vector<double>> & values) {
  return RecordInfoOf(id, label, values);
}

XMLElement * ZRStatXMLUtil::CreateElemRecordInfo(
    const std::string & id, const std::string & label,
    const std::vector<std::vector<std::string>> & values) {
  return RecordInfoOf(id, label, values);
}

XMLElement * ZRStatXMLUtil::CreateElemRecordInfo(const ZRXMLRecordInfo & r) {
  switch (r.fValueKind) {
    case kZRXMLIntValues:
      return CreateElemRecordInfo(r.fRecordId, r.fRecordLabel, r.fIntValues);
    case kZRXMLDoubleValues:
      return CreateElemRecordInfo(r.fRecordId, r.fRecordLabel, r.fDoubleValues);
    case kZRXMLStringValues:
      return CreateElemRecordInfo(r.fRecordId, r.fRecordLabel, r.fStringValues);
    default:
      return nullptr;
  }
}

void ZRStatXMLUtil::AddRecordInfos(XMLElement & parent,
                                   const std::vector<ZRXMLRecordInfo> & records) {
  for (const ZRXMLRecordInfo & r : records) AddOwned(parent, CreateElemRecordInfo(r));
}

XMLElement * ZRStatXMLUtil::CreateElemRowColLabels(const std::string & dimension) {
  return CreateElem(STATXML_RowColLabels, STATXML_dimension, dimension);
}

XMLElement * ZRStatXMLUtil::CreateElemRowColLabels(XMLElement * child,
                                                   const std::string & dimension) {
  return Holder(STATXML_RowColLabels, child, STATXML_dimension, dimension);
}

XMLElement * ZRStatXMLUtil::CreateElemRowColLabels(const std::vector<XMLElement *> & children,
                                                   const std::string & dimension) {
  return Holder(STATXML_RowColLabels, children, STATXML_dimension, dimension);
}

XMLElement * ZRStatXMLUtil::CreateElemMatrixLabels(const std::vector<XMLElement *> & children) {
  return Holder(STATXML_MatrixLabels, children, std::string(), std::string());
}

XMLElement * ZRStatXMLUtil::CreateElemIndices(XMLElement * child, const std::string & dimension) {
  return Holder(STATXML_Indices, child, STATXML_dimension, dimension);
}

XMLElement * ZRStatXMLUtil::CreateElemSegmentInfo(XMLElement * child) {
  return Holder(STATXML_SegmentInfo, child, std::string(), std::string());
}

XMLElement * ZRStatXMLUtil::CreateElemSegmentInfo(const std::vector<XMLElement *> & children) {
  return Holder(STATXML_SegmentInfo, children, std::string(), std::string());
}

XMLElement * ZRStatXMLUtil::CreateElemSegmentData(XMLElement * first, XMLElement * second) {
  Handed handed;
  handed.Add(first);
  handed.Add(second);
  Owned e(XMLElement::Create(STATXML_SegmentData));
  handed.AttachNext(*e);
  handed.AttachNext(*e);
  return e.release();
}

XMLElement * ZRStatXMLUtil::CreateElemMatrix(XMLElement * first, std::vector<XMLElement *> pair,
                                             XMLElement * third, XMLElement * fourth,
                                             unsigned int rows, unsigned int cols,
                                             const std::string & kind, bool rowMajor) {
  Handed handed;
  handed.Add(first);
  handed.Add(pair);
  handed.Add(third);
  handed.Add(fourth);
  Owned e(CreateElem(STATXML_Matrix, STATXML_kind, kind));
  e->AddAttribute(STATXML_nbRows, static_cast<double>(rows));
  if (kind != STATXML_symmetric) e->AddAttribute(STATXML_nbCols, static_cast<double>(cols));
  e->AddAttribute(STATXML_rowMajor, BoolText(rowMajor));
  handed.AttachNext(*e);
  if (pair.size() == 2) {
    handed.AttachNext(*e);
  } else {  // a pair is two elements or nothing; the elements of any other are refused
    handed.DropNext();
  }
  handed.AttachNext(*e);
  handed.AttachNext(*e);
  return e.release();
}

XMLElement * ZRStatXMLUtil::CreateElemVarData(const std::string & tag,
                                              const std::string & description,
                                              const ZRVariateData & data) {
  Owned e = WithDescription(tag, description);
  for (const ZRXMLCounts & c : data.fCounts) AddOwned(*e, CreateElemCounts(c));
  const std::size_t nStats =
      data.fStringStats ? data.fStatStrings.size() : data.fStatDoubles.size();
  for (std::size_t i = 0; i < nStats; ++i) {
    const std::string name = i < data.fStatNames.size() ? data.fStatNames[i] : std::string();
    AddOwned(*e, data.fStringStats ? CreateElemStatistic(name, data.fStatStrings[i])
                                   : CreateElemStatistic(name, data.fStatDoubles[i]));
  }
  const int all = static_cast<int>(data.fCoordinates.size());
  if (tag == STATXML_UnivariateData) {
    AddCoordinatesToVarData(*e, data.fCoordinates, 1, 2);
  } else if (tag == STATXML_BivariateData) {
    AddCoordinatesToVarData(*e, data.fCoordinates, 2, 3);
  } else if (tag == STATXML_MultivariateData) {
    for (const ZRXMLCoordinatesGroup & g : data.fGroups)
      AddOwned(*e, CreateElemCoordinatesGroup(g));
    AddCoordinatesToVarData(*e, data.fCoordinates, 0, all);
  }
  return e.release();
}

void ZRStatXMLUtil::AddCoordinatesToVarData(XMLElement & element,
                                            const std::vector<ZRXMLCoordinates> & coordinates,
                                            int /*min*/, int max) {
  // Intended: min is not checked; fewer records than min are written as they are.
  const std::size_t n = max <= 0 ? 0 : std::min(coordinates.size(), static_cast<std::size_t>(max));
  for (std::size_t i = 0; i < n; ++i) AddOwned(element, CreateElemCoordinates(coordinates[i]));
}

XMLElement * ZRStatXMLUtil::CreateElemArray(const int * values, int count) {
  // Intended: the pointer form has no n attribute.
  Owned e(CreateElem(STATXML_Array, STATXML_type, STATXML_int));
  AddIntList(*e, values, count);
  return e.release();
}

XMLElement * ZRStatXMLUtil::CreateElemArray(const std::vector<int> & values) {
  Owned e(CreateElem(STATXML_Array, STATXML_type, STATXML_int));
  e->AddAttribute(STATXML_n, static_cast<double>(values.size()));
  AddIntList(*e, values);
  return e.release();
}

XMLElement * ZRStatXMLUtil::CreateElemArray(const double * values, int count) {
  const int n = values != nullptr && count > 0 ? count : 0;
  Owned e(CreateElem(STATXML_Array, STATXML_type, STATXML_real));
  e->AddAttribute(STATXML_n, static_cast<double>(n));
  AddDoublesList(*e, values, count);
  return e.release();
}

XMLElement * ZRStatXMLUtil::CreateElemArray(const std::vector<double> & values) {
  Owned e(CreateElem(STATXML_Array, STATXML_type, STATXML_real));
  e->AddAttribute(STATXML_n, static_cast<double>(values.size()));
  AddDoublesList(*e, values);
  return e.release();
}

XMLElement * ZRStatXMLUtil::CreateElemArray(const std::vector<std::string> & values) {
  std::vector<std::string> items;
  items.reserve(values.size());
  for (const std::string & v : values) items.push_back(ListItem(v));
  Owned e(CreateElem(STATXML_Array, STATXML_type, STATXML_string));
  e->AddAttribute(STATXML_n, static_cast<double>(values.size()));
  AddStringList(*e, items);
  return e.release();
}

XMLElement * ZRStatXMLUtil::CreateElemArray(const std::string & text, int count) {
  Owned e(CreateElem(STATXML_Array, STATXML_type, STATXML_string));
  e->AddAttribute(STATXML_n, static_cast<double>(count));
  if (!text.empty()) AddStringList(*e, std::vector<std::string>{text});
  return e.release();
}

void ZRStatXMLUtil::AddIntList(XMLElement & element, const int * values, int count) {
  AddJoined(element, values, count > 0 ? static_cast<std::size_t>(count) : 0,
            [](int v) { return Format(static_cast<double>(v), true, kPointerIntFormat); });
}

void ZRStatXMLUtil::AddIntList(XMLElement & element, const std::vector<int> & values) {
  AddJoined(element, values.data(), values.size(),
            [](int v) { return Format(static_cast<double>(v), true, nullptr); });
}

void ZRStatXMLUtil::AddDoublesList(XMLElement & element, const double * values, int count) {
  AddJoined(element, values, count > 0 ? static_cast<std::size_t>(count) : 0, DoubleWord);
}

void ZRStatXMLUtil::AddDoublesList(XMLElement & element, const std::vector<double> & values) {
  AddJoined(element, values.data(), values.size(), DoubleWord);
}

void ZRStatXMLUtil::AddStringList(XMLElement & element, const std::vector<std::string> & values) {
  AddJoined(element, values.data(), values.size(), [](const std::string & v) { return v; });
}

std::string ZRStatXMLUtil::ReplaceSpecialChar(const std::string & text) {
  std::string out;
  out.reserve(text.size() + 8);
  for (char ch : text) {
    if (ch == '"' || ch == '\\') out += '\\';
    out += ch;
  }
  return out;
}

}  // namespace ZRXML_920
