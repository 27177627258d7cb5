// ZRPMMLExporter: the PMML root, Header, DataDictionary, DataModel, UnivariateStats and
// Extension elements.
#include "zrcommon920r/xml/export/pmml.h"

#include <cmath>
#include <ctime>
#include <limits>
#include <memory>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/xml/core/numtext.h"
#include "zrcommon920r/xml/vars/variable.h"

namespace ZRCommon_920 {

using ZRXML_920::IZREncoder;
using ZRXML_920::IZRVariable;
using ZRXML_920::XMLAttribute;
using ZRXML_920::XMLElement;
using ZRXML_920::XMLString;

namespace {

constexpr std::int32_t kCodeCancelled = 1;
constexpr std::int32_t kCodeBadPosition = 101;
constexpr std::int32_t kCodeNullVariable = 102;
constexpr std::int32_t kCodeBadStatistics = 117;
// ctime_r needs at least 26 bytes; the text is 24 characters, a line feed and a NUL.
constexpr std::size_t kCtimeBuffer = 64;

// A new element named name appended to parent, which owns it even if the append throws.
XMLElement & AddChild(XMLElement & parent, const std::string & name) {
  std::unique_ptr<XMLElement> child(XMLElement::Create(name));
  parent.AddElement(child.get());
  return *child.release();
}

// Appends a node made elsewhere; on a throw the node is deleted, not leaked.
void Adopt(XMLElement & parent, XMLElement * child) {
  std::unique_ptr<XMLElement> owned(child);
  parent.AddElement(owned.get());
  owned.release();
}

bool IsCategoryLevel(IZRVariable::MeasureLevel level) {
  return level == IZRVariable::kLevelNumericCategorical ||
         level == IZRVariable::kLevelStringCategorical;
}

bool IsContinuousLevel(IZRVariable::MeasureLevel level) {
  return level == IZRVariable::kLevelContinuous || level == IZRVariable::kLevelFrequencyWeight;
}

// The ordinal and binary-flag indicators live on the categorical class only.
const ZRXML_920::ZRCatVar * AsCatVar(const IZRVariable & variable) {
  return dynamic_cast<const ZRXML_920::ZRCatVar *>(&variable);
}

const std::string & DataType(IZRVariable::VariableStorage storage) {
  switch (storage) {
    case IZRVariable::kStorageInteger:
      return PMML_integer;
    case IZRVariable::kStorageString:
      return PMML_string;
    case IZRVariable::kStorageDate:
      return PMML_dateDaysSince_1970_;
    case IZRVariable::kStorageTime:
      return PMML_timeSeconds;
    case IZRVariable::kStorageTimestamp:
      return PMML_dateTimeSecondsSince_1970_;
    default:
      return PMML_double;
  }
}

const std::string & Storage(IZRVariable::VariableStorage storage) {
  switch (storage) {
    case IZRVariable::kStorageInteger:
      return PMML_integer;
    case IZRVariable::kStorageString:
      return PMML_string;
    case IZRVariable::kStorageDate:
      return PMML_date;
    case IZRVariable::kStorageTime:
      return PMML_time;
    case IZRVariable::kStorageTimestamp:
      return PMML_timestamp;
    default:
      return PMML_real;
  }
}

const std::string & Role(IZRVariable::VariableRole role) {
  switch (role) {
    case IZRVariable::kRoleTarget:
    case IZRVariable::kRoleTargetResponse:
      return PMML_target;
    case IZRVariable::kRoleFrequencyWeight:
      return PMML_freqWeight;
    case IZRVariable::kRoleUnused:
      return PMML_none;
    case IZRVariable::kRoleRecordId:
      return PMML_recordId;
    default:
      return PMML_input;
  }
}

// The number of variables: the list answers null from GetVarAt only past its end, as it
// never holds a null variable.
int Count(const ZRXML_920::ZRVarList & variables) {
  int n = 0;
  while (variables.GetVarAt(n) != nullptr) ++n;
  return n;
}

// The positions to export: indices, or every position of the list, less (with
// skipUnused) those whose variable is not null and has role 6.
std::vector<int> Positions(ZRXML_920::ZRVarList & variables, const std::vector<int> & indices,
                           bool skipUnused) {
  if (!indices.empty()) return indices;
  std::vector<int> positions;
  const int n = Count(variables);
  for (int i = 0; i < n; ++i) {
    const IZRVariable * var = variables.GetVarAt(i);
    if (skipUnused && var != nullptr &&
        const_cast<IZRVariable *>(var)->GetVariableRole() == IZRVariable::kRoleUnused)
      continue;
    positions.push_back(i);
  }
  return positions;
}

// "%.15g" in the "C" locale, the system-missing value as "NaN".
std::string ArrayItem(double value) {
  return value == kSysMisValue ? std::string("NaN") : ZRXML_920::Format(value, false, nullptr);
}

bool Reportable(double value) {
  return std::isfinite(value) && value != kSysMisValue;
}

}  // namespace

ZRPMMLExporter::ZRPMMLExporter(ZRQueryCancel * cancel) : fElement(nullptr), fCancel(cancel) {}

ZRPMMLExporter::~ZRPMMLExporter() {
  delete fElement;
}

XMLElement * ZRPMMLExporter::ExportPMMLElement() const {
  std::unique_ptr<XMLElement> root(XMLElement::Create(PMML_PMML));
  root->AddAttribute(PMML_version, PMML_4_3);
  root->AddAttribute(PMML_xmlns, PMML_NAMESPACE_4_3);
  root->AddAttribute(PMML_xmlns_xsi, PMML_XSI_NAMESPACE);
  root->AddAttribute(PMML_xsi_schemaLocation, PMML_SCHEMA_LOCATION_4_3);
  return root.release();
}

// Intended: the same document as ExportPMMLElement; no entry point selects another version.
XMLElement * ZRPMMLExporter::ExportPMMLElement40() const {
  return ExportPMMLElement();
}

XMLElement & ZRPMMLExporter::Start(const std::string & name) {
  // A tree is left here only by an export that threw; it is nobody's, so it goes.
  delete fElement;
  fElement = nullptr;
  fElement = XMLElement::Create(name);
  return *fElement;
}

bool ZRPMMLExporter::Cancelled() const {
  return fCancel != nullptr && fCancel->IsCancelRequested();
}

ZRStatus ZRPMMLExporter::Abandon(XMLElement *& element) {
  delete fElement;
  fElement = nullptr;
  element = nullptr;
  return ZRStatus(kCodeCancelled, false);
}

ZRStatus ZRPMMLExporter::HandOver(XMLElement *& element, const ZRStatus & status) {
  element = fElement;
  fElement = nullptr;
  return status;
}

ZRStatus ZRPMMLExporter::ExportHeader(const ZRApplicInfo4XML * info,
                                      const std::string & description, bool timestamp,
                                      XMLElement *& element) {
  XMLElement & header = Start(PMML_Header);
  const bool ownCopyright = info != nullptr && !info->fCopyright.empty();
  header.AddAttribute(PMML_copyright, ownCopyright ? info->fCopyright : PMML_DEFAULT_COPYRIGHT);
  if (!description.empty()) header.AddAttribute(PMML_description, description);
  if (info != nullptr && (!info->fName.empty() || !info->fVersion.empty())) {
    XMLElement & application = AddChild(header, PMML_Application);
    // Intended: with only a version the Application has no name, which the schema requires.
    if (!info->fName.empty()) application.AddAttribute(PMML_name, info->fName);
    if (!info->fVersion.empty()) application.AddAttribute(PMML_version, info->fVersion);
  }
  if (timestamp) {
    const std::time_t now = std::time(nullptr);
    char text[kCtimeBuffer] = {};
    std::string stamp;
    if (ctime_r(&now, text) != nullptr) {
      stamp = text;
      if (!stamp.empty() && stamp.back() == '\n') stamp.pop_back();
    }
    std::unique_ptr<XMLString> node(XMLString::Create(stamp));
    AddChild(header, PMML_Timestamp).AddElement(node.get());
    node.release();
  }
  return HandOver(element, ZRStatus());
}

ZRStatus ZRPMMLExporter::ExportDataDictionary(const ZRXML_920::ZRVarList & variables,
                                              const std::vector<int> & indices,
                                              XMLElement *& element) {
  // The variables' getters are not const.
  ZRXML_920::ZRVarList & list = const_cast<ZRXML_920::ZRVarList &>(variables);
  XMLElement & dictionary = Start(PMML_DataDictionary);
  ZRStatus status;
  int nFields = 0;
  for (int position : Positions(list, indices, true)) {
    if (Cancelled()) return Abandon(element);
    IZRVariable * var = list.GetVarAt(position);
    if (var == nullptr) {
      const bool inRange = position >= 0 && position < Count(list);
      status = ZRStatus(inRange ? kCodeNullVariable : kCodeBadPosition, false);
      status.SetDiscreteDatum(0, position);
      break;
    }
    AddDataField(*var, dictionary);
    ++nFields;
  }
  // Intended: added last, so it stands first only when it is the one attribute.
  dictionary.AddAttribute(PMML_numberOfFields, std::to_string(nFields));
  if (Cancelled()) return Abandon(element);
  return HandOver(element, status);
}

void ZRPMMLExporter::AddDataField(IZRVariable & var, XMLElement & dictionary) {
  XMLElement & field = AddChild(dictionary, PMML_DataField);
  const IZRVariable::MeasureLevel level = var.GetMeasureLevel();
  const ZRXML_920::ZRCatVar * catVar = AsCatVar(var);
  field.AddAttribute(PMML_name, var.GetVariableName());
  const std::string label = var.GetVariableLabel();
  if (!label.empty()) field.AddAttribute(PMML_displayName, label);
  if (IsContinuousLevel(level)) {
    field.AddAttribute(PMML_optype, PMML_continuous);
  } else if (IsCategoryLevel(level)) {
    const bool ordinal = catVar != nullptr && catVar->GetOrdinalFlag();
    field.AddAttribute(PMML_optype, ordinal ? PMML_ordinal : PMML_categorical);
  }  // Intended: no optype for other levels, though the schema requires one.
  field.AddAttribute(PMML_dataType, DataType(var.GetVariableStorage()));

  IZREncoder * encoder = var.GetEncoder();
  const bool categoryEncoder =
      encoder != nullptr && (encoder->GetEncoderType() == IZREncoder::kCatNumeric ||
                             encoder->GetEncoderType() == IZREncoder::kCatString);
  if (IsCategoryLevel(level) && catVar != nullptr && catVar->GetBinaryFlag() &&
      catVar->GetBinaryFlagTrueIndex() >= 0) {
    XMLElement & flag = AddChild(field, PMML_Extension);
    flag.AddAttribute(PMML_extender, PMML_EXTENDER_DOMAIN);
    flag.AddAttribute(PMML_name, PMML_flagTypeTrueValue);
    if (categoryEncoder)
      flag.AddAttribute(PMML_value, encoder->Decode(catVar->GetBinaryFlagTrueIndex()));
  }
  if (encoder == nullptr) return;
  const int nCategories = encoder->GetNumberOfCategories();
  if (level == IZRVariable::kLevelStringCategorical) {
    for (int i = 0; i < nCategories; ++i) {
      const std::string category = encoder->Decode(i);
      if (category.empty() || category.back() != ' ') continue;
      XMLElement & trim = AddChild(field, PMML_Extension);
      trim.AddAttribute(PMML_extender, PMML_EXTENDER_DOMAIN);
      trim.AddAttribute(PMML_name, PMML_noSpaceTrim);
      trim.AddAttribute(PMML_value, PMML_true);
      break;
    }
  }
  if (IsCategoryLevel(level)) {
    // Labels describe the categories only while both counts agree.
    const std::vector<std::string> * labels =
        nCategories == var.GetNumberOfCategories() ? encoder->GetValueLabels() : nullptr;
    for (int i = 0; i < nCategories; ++i) {
      XMLElement & value = AddChild(field, PMML_Value);
      value.AddAttribute(PMML_value, encoder->Decode(i));
      if (labels != nullptr && static_cast<std::size_t>(i) < labels->size() &&
          !(*labels)[i].empty())
        value.AddAttribute(PMML_displayValue, (*labels)[i]);
      value.AddAttribute(PMML_property, PMML_valid);
    }
  }
  const std::vector<std::string> * missLabels = encoder->GetMissValueLabels();
  const auto addMissLabel = [missLabels](XMLElement & value, std::size_t i) {
    if (missLabels != nullptr && i < missLabels->size() && !(*missLabels)[i].empty())
      value.AddAttribute(PMML_displayValue, (*missLabels)[i]);
  };
  const std::vector<std::string> * missText = encoder->GetDiscreteMissValuesStr();
  const std::vector<double> * missNumbers = encoder->GetDiscreteMissValues();
  if (missText != nullptr && !missText->empty()) {
    for (std::size_t i = 0; i < missText->size(); ++i) {
      XMLElement & value = AddChild(field, PMML_Value);
      value.AddAttribute(PMML_value, (*missText)[i]);
      addMissLabel(value, i);
      value.AddAttribute(PMML_property, PMML_missing);
    }
  } else if (missNumbers != nullptr) {
    for (std::size_t i = 0; i < missNumbers->size(); ++i) {
      XMLElement & value = AddChild(field, PMML_Value);
      // Intended: a NaN or infinite missing value leaves the required value out.
      if (std::isfinite((*missNumbers)[i]))
        value.AddAttribute(XMLAttribute::Create(PMML_value, (*missNumbers)[i]));
      addMissLabel(value, i);
      value.AddAttribute(PMML_property, PMML_missing);
    }
  }
  double lower = 0.0, upper = 0.0;
  if (encoder->GetMissingInterval(lower, upper)) {
    // Intended: these Extensions follow the Value children, where the schema wants them first.
    XMLElement * extension = nullptr;
    if (lower != -std::numeric_limits<double>::max()) {
      ExportExtension(PMML_invalidRangeLower, lower, extension);
      Adopt(field, extension);
    }
    if (upper != std::numeric_limits<double>::max()) {
      ExportExtension(PMML_invalidRangeUpper, upper, extension);
      Adopt(field, extension);
    }
  }
}

ZRStatus ZRPMMLExporter::ExportDataModel(const ZRXML_920::ZRVarList & variables,
                                         const std::vector<int> & indices, XMLElement *& element) {
  ZRXML_920::ZRVarList & list = const_cast<ZRXML_920::ZRVarList &>(variables);
  XMLElement & model = Start(PMML_DataModel);
  if (const XMLElement * formats = list.GetFieldFormatsElement()) Adopt(model, formats->Clone());
  XMLElement & fields = AddChild(model, PMML_Fields);
  ZRStatus status;
  int nFields = 0;
  for (int position : Positions(list, indices, false)) {
    if (Cancelled()) return Abandon(element);
    IZRVariable * var = list.GetVarAt(position);
    if (var == nullptr) {
      const bool inRange = position >= 0 && position < Count(list);
      status = ZRStatus(inRange ? kCodeNullVariable : kCodeBadPosition, false);
      status.SetDiscreteDatum(0, position);
      break;
    }
    XMLElement & field = AddChild(fields, PMML_Field);
    ++nFields;
    if (const XMLElement * format = var->GetFieldFormatElement()) Adopt(field, format->Clone());
    field.AddAttribute(PMML_name, var->GetVariableName());
    const std::string label = var->GetVariableLabel();
    if (!label.empty()) field.AddAttribute(PMML_displayLabel, label);
    const IZRVariable::MeasureLevel level = var->GetMeasureLevel();
    if (IsContinuousLevel(level)) {
      field.AddAttribute(PMML_measure, PMML_continuous);
    } else if (IsCategoryLevel(level)) {
      const ZRXML_920::ZRCatVar * catVar = AsCatVar(*var);
      // The flag test comes first: an ordinal flag is written as a flag.
      const std::string & measure = catVar != nullptr && catVar->GetBinaryFlag()    ? PMML_flag
                                    : catVar != nullptr && catVar->GetOrdinalFlag() ? PMML_ordinal
                                                                                    : PMML_nominal;
      field.AddAttribute(PMML_measure, measure);
    }
    field.AddAttribute(PMML_storage, Storage(var->GetVariableStorage()));
    field.AddAttribute(PMML_role, Role(var->GetVariableRole()));
  }
  fields.AddAttribute(PMML_count, std::to_string(nFields));
  if (Cancelled()) return Abandon(element);
  return HandOver(element, status);
}

ZRStatus ZRPMMLExporter::ExportUniStats(const ZRXML_920::ZRUniStats & stats,
                                        XMLElement *& element) {
  element = nullptr;
  if (!stats.IsValid()) return ZRStatus(kCodeBadStatistics, false);
  XMLElement & uni = Start(PMML_UnivariateStats);
  uni.AddAttribute(PMML_field, stats.GetVarName());
  const double total = stats.GetNumberOfCases();
  // No Counts at all without a finite total: totalFreq is required.
  if (std::isfinite(total)) AddChild(uni, PMML_Counts).AddAttribute(PMML_totalFreq, total);
  if (stats.IsCategorical()) {
    XMLElement & array = AddChild(AddChild(uni, PMML_DiscrStats), PMML_Array);
    array.AddAttribute(PMML_type, PMML_real);
    std::string text;
    for (double freq : stats.GetFrequencies()) {
      if (!text.empty()) text += ' ';
      text += ArrayItem(freq);
    }
    std::unique_ptr<XMLString> node(XMLString::Create(text));
    array.AddElement(node.get());
    node.release();
  } else {
    const ZRXML_920::ZRUniStats::SummStats & summary = stats.GetSummStats();
    // Intended: fdMax holds the maximum negated, so an unset one prints as the largest double.
    const double maximum = -summary.fdMax;
    XMLElement & info = AddChild(uni, PMML_NumericInfo);
    if (Reportable(summary.fdMin)) info.AddAttribute(PMML_minimum, summary.fdMin);
    if (Reportable(maximum)) info.AddAttribute(PMML_maximum, maximum);
    if (Reportable(summary.fdMean)) info.AddAttribute(PMML_mean, summary.fdMean);
    if (Reportable(summary.fdStdDev)) info.AddAttribute(PMML_standardDeviation, summary.fdStdDev);
  }
  return HandOver(element, ZRStatus());
}

void ZRPMMLExporter::ExportExtension(const std::string & name, const std::string & value,
                                     XMLElement *& element) {
  std::unique_ptr<XMLElement> extension(XMLElement::Create(PMML_Extension));
  if (!name.empty()) extension->AddAttribute(PMML_name, name);
  if (!value.empty()) extension->AddAttribute(PMML_value, value);
  extension->AddAttribute(PMML_extender, PMML_EXTENDER_DOMAIN);
  element = extension.release();
}

void ZRPMMLExporter::ExportExtension(const std::string & name, double value,
                                     XMLElement *& element) {
  std::unique_ptr<XMLElement> extension(XMLElement::Create(PMML_Extension));
  if (!name.empty()) extension->AddAttribute(PMML_name, name);
  extension->AddAttribute(PMML_value, value);  // adds nothing unless finite
  extension->AddAttribute(PMML_extender, PMML_EXTENDER_DOMAIN);
  element = extension.release();
}

}  // namespace ZRCommon_920
