// StatXML documents: ZRStatXMLUtil, the factories of every element of a document (the root,
// the data holders and their records, coordinates, record infos and the matrix family), and
// the vocabulary of tag and attribute names as STATXML_ constants.
//
// Ownership: each factory returns a new element that the caller owns. An element handed to
// a factory belongs to the result from the call on, whether it is attached or not (a
// matrix pair of other than two elements is deleted), and is deleted with the result, or at
// once should the factory throw std::bad_alloc. Hand each element in once. Nothing else fails.
#ifndef ZRCOMMON920R_XML_EXPORT_STATXML_H
#define ZRCOMMON920R_XML_EXPORT_STATXML_H

#include <string>
#include <vector>

#include "zrcommon920r/xml/core/xmltree.h"
#include "zrcommon920r/xml/export/varrecords.h"

namespace ZRXML_920 {

// The vocabulary: each constant holds the text after STATXML_, every character outside
// [A-Za-z0-9_] written "_" in the name (STATXML_pm_Counts holds "pm:Counts"). The first
// group holds the names ZRStatXMLUtil reads; the further ones stand ready for callers.
extern const std::string STATXML_StatXML;
extern const std::string STATXML_Array;
extern const std::string STATXML_type;
extern const std::string STATXML_int;
extern const std::string STATXML_real;
extern const std::string STATXML_string;
extern const std::string STATXML_n;
extern const std::string STATXML_Counts;
extern const std::string STATXML_totalFreq;
extern const std::string STATXML_missingFreq;
extern const std::string STATXML_invalidFreq;
extern const std::string STATXML_cardinality;
extern const std::string STATXML_Statistic;
extern const std::string STATXML_name;
extern const std::string STATXML_value;
extern const std::string STATXML_Coordinates;
extern const std::string STATXML_feature;
extern const std::string STATXML_field;
extern const std::string STATXML_statistic;
extern const std::string STATXML_CoordinatesGroup;
extern const std::string STATXML_description;
extern const std::string STATXML_UnivariateData;
extern const std::string STATXML_BivariateData;
extern const std::string STATXML_MultivariateData;
extern const std::string STATXML_StructuredData;
extern const std::string STATXML_RecordInfo;
extern const std::string STATXML_recordId;
extern const std::string STATXML_recordLabel;
extern const std::string STATXML_FieldInfo;
extern const std::string STATXML_fieldName;
extern const std::string STATXML_fieldValue;
extern const std::string STATXML_isNull;
extern const std::string STATXML_true;
extern const std::string STATXML_false;
extern const std::string STATXML_Covariate;
extern const std::string STATXML_power;
extern const std::string STATXML_Factor;
extern const std::string STATXML_nest;
extern const std::string STATXML_RegressionParameter;
extern const std::string STATXML_isIntercept;
extern const std::string STATXML_Label;
extern const std::string STATXML_label;
extern const std::string STATXML_RowColLabels;
extern const std::string STATXML_dimension;
extern const std::string STATXML_MatrixLabels;
extern const std::string STATXML_SegmentInfo;
extern const std::string STATXML_SegmentData;
extern const std::string STATXML_Indices;
extern const std::string STATXML_Matrix;
extern const std::string STATXML_kind;
extern const std::string STATXML_symmetric;
extern const std::string STATXML_nbRows;
extern const std::string STATXML_nbCols;
extern const std::string STATXML_rowMajor;
extern const std::string STATXML_xml;
extern const std::string STATXML_1_0;
extern const std::string STATXML_PMMLModel;
extern const std::string STATXML_segmentID;
extern const std::string STATXML_BuildSettings;
extern const std::string STATXML_PredictiveSummary;
extern const std::string STATXML_dataName;
extern const std::string STATXML_dataUsage;
extern const std::string STATXML_pm_Counts;
extern const std::string STATXML_totalCount;
extern const std::string STATXML_droppedCount;
extern const std::string STATXML_badWeightCount;
extern const std::string STATXML_droppedFreq;
extern const std::string STATXML_predictors;
extern const std::string STATXML_modelSize;
extern const std::string STATXML_accuracy;
extern const std::string STATXML_training;
extern const std::string STATXML_testing;
extern const std::string STATXML_verificating;
extern const std::string STATXML_ModelDiagnostics;
extern const std::string STATXML_ModelTestStats;
extern const std::string STATXML_testID;
extern const std::string STATXML_testType;
extern const std::string STATXML_III;
extern const std::string STATXML_modelEffect;
extern const std::string STATXML_meanSquare;
extern const std::string STATXML_FTest;
extern const std::string STATXML_sig;
extern const std::string STATXML_df1;
extern const std::string STATXML_df2;
extern const std::string STATXML_TrainingSummary;
extern const std::string STATXML_IterationHistory;
extern const std::string STATXML_Iteration;
extern const std::string STATXML_iterationNumber;
extern const std::string STATXML_ParameterEstimates;
extern const std::string STATXML_ParameterStats;
extern const std::string STATXML_block;
extern const std::string STATXML_paramIndex;
extern const std::string STATXML_paramName;
extern const std::string STATXML_paramLabel;
extern const std::string STATXML_estimate;
extern const std::string STATXML_expEstimate;
extern const std::string STATXML_confIntervalLower;
extern const std::string STATXML_confIntervalUpper;
extern const std::string STATXML_tTest;
extern const std::string STATXML_chiSquare;
extern const std::string STATXML_isRedundant;
extern const std::string STATXML_expCILower;
extern const std::string STATXML_expCIUpper;
extern const std::string STATXML_fixedEffectIndex;
extern const std::string STATXML_zTest;
extern const std::string STATXML_effectSize;
extern const std::string STATXML_lowerCIEffectSize;
extern const std::string STATXML_upperCIEffectSize;
extern const std::string STATXML_etaSquared;
extern const std::string STATXML_lowerCIEtaSquared;
extern const std::string STATXML_upperCIEtaSquared;
extern const std::string STATXML_partialEtaSquared;
extern const std::string STATXML_lowerCIPartialEtaSquared;
extern const std::string STATXML_upperCIPartialEtaSquared;
extern const std::string STATXML_observed;
extern const std::string STATXML_Message;
extern const std::string STATXML_warning;
extern const std::string STATXML_error;
extern const std::string STATXML_BuildModelFailedErr;
extern const std::string STATXML_Printable;
extern const std::string STATXML_PrintableList;
extern const std::string STATXML_pattern;
extern const std::string STATXML_isKey;
extern const std::string STATXML_mapId;
extern const std::string STATXML_PrintableVList;
extern const std::string STATXML_PrintableValue;
extern const std::string STATXML_StringFormat;
extern const std::string STATXML_NumberFormat;
extern const std::string STATXML_formatType;
extern const std::string STATXML_standard;
extern const std::string STATXML_decimalPlaces;
extern const std::string STATXML_decimalSymbol;
extern const std::string STATXML_groupingSymbol;
extern const std::string STATXML_local;
extern const std::string STATXML_hexadecimal;
extern const std::string STATXML_col;
extern const std::string STATXML_both;
extern const std::string STATXML_any;
extern const std::string STATXML_StructuredValue;
extern const std::string STATXML_Attribute;
extern const std::string STATXML_ListValue;
extern const std::string STATXML_NestingLevels;
extern const std::string STATXML_StringMap;
extern const std::string STATXML_MapEntry;
extern const std::string STATXML_DescriptiveModel;
extern const std::string STATXML_BivariateSummaries;
extern const std::string STATXML_BivariateSummarie;
extern const std::string STATXML_fieldA;
extern const std::string STATXML_fieldB;
extern const std::string STATXML_dependentField;
extern const std::string STATXML_eta;
extern const std::string STATXML_oneWayAnovaFTest;
extern const std::string STATXML_conditionalMean;
extern const std::string STATXML_binnedScatterPlot;
extern const std::string STATXML_statisticWithinEachCategory;
extern const std::string STATXML_variance;
extern const std::string STATXML_pearsonsR;
extern const std::string STATXML_totalPairs;
extern const std::string STATXML_covariance;
extern const std::string STATXML_cramersV;
extern const std::string STATXML_spearmanCorrelationh;
extern const std::string STATXML_pearsonChiSquare;
extern const std::string STATXML_theoreticalFrequencies;
extern const std::string STATXML_ChiTest;
extern const std::string STATXML_Crosstabulation;
extern const std::string STATXML_frequency;
extern const std::string STATXML_ZRXMLRoot;
extern const std::string STATXML_Obj;
extern const std::string STATXML_Int;
extern const std::string STATXML_Long;
extern const std::string STATXML_Double;
extern const std::string STATXML_Missing;
extern const std::string STATXML_String;
extern const std::string STATXML_savexml_dtd;

// Factories of StatXML elements. A class of static functions; it holds no data.
class ZRStatXMLUtil {
 public:
  ZRStatXMLUtil() = default;
  virtual ~ZRStatXMLUtil() = default;

  // The root StatXML with, in order, xmlns = "http://zrcommon920r.org/statxml", xmlns:xsi =
  // the XML Schema instance namespace, version = "1.0" and xsi:schemaLocation = the
  // namespace and "http://zrcommon920r.org/statxml/statxml-1.0.xsd", blank-separated.
  static XMLElement * BuildRoot();

  // An element tag with one attribute name="value".
  static XMLElement * CreateElem(const std::string & tag, const std::string & name,
                                 const std::string & value);
  // The same with a number in the "C" locale, "%.15g"; a NaN or an infinity is left out.
  static XMLElement * CreateElem(const std::string & tag, const std::string & name, double value);
  // Two or three attributes, in the order given; numbers as above.
  static XMLElement * CreateElem(const std::string & tag, const std::string & name1,
                                 const std::string & value1, const std::string & name2,
                                 const std::string & value2);
  static XMLElement * CreateElem(const std::string & tag, const std::string & name1, double value1,
                                 const std::string & name2, double value2);
  static XMLElement * CreateElem(const std::string & tag, const std::string & name1,
                                 const std::string & value1, const std::string & name2,
                                 const std::string & value2, const std::string & name3,
                                 const std::string & value3);
  static XMLElement * CreateElem(const std::string & tag, const std::string & name1, double value1,
                                 const std::string & name2, double value2,
                                 const std::string & name3, double value3);

  // The data holders UnivariateData, BivariateData, MultivariateData and StructuredData,
  // with a description attribute only when description is not empty.
  static XMLElement * CreateElemUnivarData(const std::string & description);
  static XMLElement * CreateElemBivarData(const std::string & description);
  static XMLElement * CreateElemMultivariateData(const std::string & description);
  static XMLElement * CreateElemStructuredData(const std::string & description);

  // Counts: totalFreq when finite (a system-missing total is written as a number);
  // missingFreq and invalidFreq when finite and above the system-missing value;
  // cardinality when finite and not negative.
  static XMLElement * CreateElemCounts(double total, double missing, double invalid,
                                       double cardinality);
  static XMLElement * CreateElemCounts(const ZRXMLCounts & counts);
  // Statistic with name and value; the numeric value only when finite.
  static XMLElement * CreateElemStatistic(const std::string & name, const std::string & value);
  static XMLElement * CreateElemStatistic(const std::string & name, double value);
  // FieldInfo: fieldName; fieldValue when the text is not empty or the number finite;
  // isNull "true" or "false".
  static XMLElement * CreateElemFieldInfo(const std::string & name, const std::string & value,
                                          bool isNull);
  static XMLElement * CreateElemFieldInfo(const std::string & name, double value, bool isNull);
  // Covariate: field, and power printed as a number.
  static XMLElement * CreateElemCovariate(const std::string & field, int power);
  // Factor: field, value (the numeric one only when finite), nest "true" or "false".
  static XMLElement * CreateElemFactor(const std::string & field, const std::string & value,
                                       bool nest);
  static XMLElement * CreateElemFactor(const std::string & field, double value, bool nest);
  // RegressionParameter: name when not empty, isIntercept "true" or "false"; the second
  // form holds the non-null elements of first, then those of second.
  static XMLElement * CreateElemRegressionParameter(const std::string & name, bool isIntercept);
  static XMLElement * CreateElemRegressionParameter(const std::vector<XMLElement *> & first,
                                                    const std::vector<XMLElement *> & second,
                                                    const std::string & name, bool isIntercept);
  // Label with the attribute label; the second form holds child when not null, the third a
  // RegressionParameter made from first, second, name and isIntercept.
  static XMLElement * CreateElemLabel(const std::string & label);
  static XMLElement * CreateElemLabel(const std::string & label, XMLElement * child);
  static XMLElement * CreateElemLabel(const std::vector<XMLElement *> & first,
                                      const std::vector<XMLElement *> & second,
                                      const std::string & name, bool isIntercept,
                                      const std::string & label);

  // Coordinates: feature always, field and statistic when not empty, then an Array of the
  // values as the CreateElemArray of the same argument makes it; the forms with extra add
  // it after the Array when not null. The record form is null for an unset value kind.
  static XMLElement * CreateElemCoordinates(const std::string & feature, const std::string & field,
                                            const std::string & statistic, const int * values,
                                            int count);
  static XMLElement * CreateElemCoordinates(const std::string & feature, const std::string & field,
                                            const std::string & statistic,
                                            const std::vector<int> & values);
  static XMLElement * CreateElemCoordinates(const std::string & feature, const std::string & field,
                                            const std::string & statistic, const double * values,
                                            int count);
  static XMLElement * CreateElemCoordinates(const std::string & feature, const std::string & field,
                                            const std::string & statistic,
                                            const std::vector<double> & values);
  static XMLElement * CreateElemCoordinates(const std::string & feature, const std::string & field,
                                            const std::string & statistic, const std::string & text,
                                            int count);
  static XMLElement * CreateElemCoordinates(const std::string & feature, const std::string & field,
                                            const std::string & statistic,
                                            const std::vector<std::string> & values);
  static XMLElement * CreateElemCoordinates(const std::string & feature, const std::string & field,
                                            const std::string & statistic,
                                            const std::vector<int> & values, XMLElement * extra);
  static XMLElement * CreateElemCoordinates(const std::string & feature, const std::string & field,
                                            const std::string & statistic,
                                            const std::vector<double> & values, XMLElement * extra);
  static XMLElement * CreateElemCoordinates(const std::string & feature, const std::string & field,
                                            const std::string & statistic,
                                            const std::vector<std::string> & values,
                                            XMLElement * extra);
  static XMLElement * CreateElemCoordinates(const ZRXMLCoordinates & coordinates);

  // CoordinatesGroup: description when not empty, then the Coordinates of each record in
  // order (records of an unset kind make none); or first and then the elements of others,
  // each when not null.
  static XMLElement * CreateElemCoordinatesGroup(const ZRXMLCoordinatesGroup & group);
  static XMLElement * CreateElemCoordinatesGroup(XMLElement * first,
                                                 const std::vector<XMLElement *> & others,
                                                 const std::string & description);

  // RecordInfo: recordId, recordLabel when not empty, and one Array per row of values, in
  // order. The record form dispatches on the value kind and is null for an unset one.
  static XMLElement * CreateElemRecordInfo(const std::string & id, const std::string & label,
                                           const std::vector<std::vector<int>> & values);
  static XMLElement * CreateElemRecordInfo(const std::string & id, const std::string & label,
                                           const std::vector<std::vector<double>> & values);
  static XMLElement * CreateElemRecordInfo(const std::string & id, const std::string & label,
                                           const std::vector<std::vector<std::string>> & values);
  static XMLElement * CreateElemRecordInfo(const ZRXMLRecordInfo & record);
  // Appends to parent one RecordInfo per record that makes one, in order.
  static void AddRecordInfos(XMLElement & parent, const std::vector<ZRXMLRecordInfo> & records);

  // RowColLabels with dimension, holding child or the non-null children.
  static XMLElement * CreateElemRowColLabels(const std::string & dimension);
  static XMLElement * CreateElemRowColLabels(XMLElement * child, const std::string & dimension);
  static XMLElement * CreateElemRowColLabels(const std::vector<XMLElement *> & children,
                                             const std::string & dimension);
  // MatrixLabels holding the non-null children.
  static XMLElement * CreateElemMatrixLabels(const std::vector<XMLElement *> & children);
  // Indices with dimension, holding child when not null.
  static XMLElement * CreateElemIndices(XMLElement * child, const std::string & dimension);
  // SegmentInfo holding child, or the non-null children.
  static XMLElement * CreateElemSegmentInfo(XMLElement * child);
  static XMLElement * CreateElemSegmentInfo(const std::vector<XMLElement *> & children);
  // SegmentData holding first and second, each when not null.
  static XMLElement * CreateElemSegmentData(XMLElement * first, XMLElement * second);
  // Matrix: kind, nbRows, nbCols (left out when kind is "symmetric"), rowMajor "true" or
  // "false"; then first, the two elements of pair only when it holds exactly two (otherwise
  // they are deleted), third and fourth, each when not null.
  static XMLElement * CreateElemMatrix(XMLElement * first, std::vector<XMLElement *> pair,
                                       XMLElement * third, XMLElement * fourth, unsigned int rows,
                                       unsigned int cols, const std::string & kind, bool rowMajor);

  // An element tag with description when not empty, one Counts per count record, one
  // Statistic per value (string values when data.fStringStats, else doubles; each named by
  // position, "" past the last name) and the coordinates the tag allows: "UnivariateData"
  // the first 2, "BivariateData" the first 3, "MultivariateData" each group and then every
  // record; any other tag none. Record infos are left to AddRecordInfos.
  static XMLElement * CreateElemVarData(const std::string & tag, const std::string & description,
                                        const ZRVariateData & data);
  // Appends to element the Coordinates of the first min(size, max) records, in order; a
  // record of an unset kind takes its place and makes nothing.
  static void AddCoordinatesToVarData(XMLElement & element,
                                      const std::vector<ZRXMLCoordinates> & coordinates, int min,
                                      int max);

  // Array type="int" without n: the values by "%.0g" (AddIntList's pointer form).
  static XMLElement * CreateElemArray(const int * values, int count);
  // Array type="int", n = the size: the values by "%.15g".
  static XMLElement * CreateElemArray(const std::vector<int> & values);
  // Array type="real", n = the number of values written (0 for a null pointer or a count
  // below 1): the values as AddDoublesList writes them.
  static XMLElement * CreateElemArray(const double * values, int count);
  static XMLElement * CreateElemArray(const std::vector<double> & values);
  // Array type="string", n = the size: each value with a double quote or a backslash
  // escaped by ReplaceSpecialChar, then each non-empty one holding a blank quoted, joined
  // by one blank. An empty value leaves no trace in the list but counts in n.
  static XMLElement * CreateElemArray(const std::vector<std::string> & values);
  // Array type="string", n = count, with text as it stands (nothing when it is empty).
  static XMLElement * CreateElemArray(const std::string & text, int count);

  // Each appends one text node to element with the values joined by one blank, or nothing
  // for a null pointer, a count below 1 or an empty vector. Integers: the pointer form by
  // Format(value, true, "%.0g"), one significant digit (123 gives "1e+02"), the vector form
  // by Format(value, true, nullptr). Doubles: the system-missing value as "__MISSING__",
  // others by Format(value, false, nullptr). Strings as they stand.
  static void AddIntList(XMLElement & element, const int * values, int count);
  static void AddIntList(XMLElement & element, const std::vector<int> & values);
  static void AddDoublesList(XMLElement & element, const double * values, int count);
  static void AddDoublesList(XMLElement & element, const std::vector<double> & values);
  static void AddStringList(XMLElement & element, const std::vector<std::string> & values);

  // text with each double quote written as a backslash and a double quote and each
  // backslash as two backslashes.
  static std::string ReplaceSpecialChar(const std::string & text);
};

}  // namespace ZRXML_920

#endif  // ZRCOMMON920R_XML_EXPORT_STATXML_H
