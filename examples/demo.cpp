// Example procedure: a weighted linear regression built the way an analytic procedure
// builds a model. It describes the fields of a small data set with a variable list
// (continuous and text predictors, a target and a frequency weight), encodes each record
// through the list's encoders, dropping the cases whose weight or any other value is
// missing, and polls for cancellation (Ctrl-C) between records. A text predictor enters
// the model as indicator columns of its categories, all but a reference one. The procedure
// accumulates weighted means and corrected cross-products, with each field's summary, in
// one pass and again in two halves on two threads joined afterwards, sweeps the predictors
// out of the cross-product matrix, takes the residuals in a second pass and t-tests each
// coefficient. It reports on the diagnostic stream, then as an XML document and a JSON
// record, writes the model as a PMML 4.3 document, prints the coefficient table as
// StatXML, and last the processor time the build took.
//
// Usage: zr_demo [data.csv [model.pmml]] [name=value ...]   (defaults: the bundled
// examples/data/fuel.csv, and fuel.pmml in the build folder). The options come from a
// settings tree: tolerance=1e-10 (the sweep's), reference=0 (the code of each text
// predictor's reference category), rounding=nearest (of the frequency weight; or truncate,
// asis), data=..., pmml=....
#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "fueldata.h"
#include "zrcommon920r/zrcommon920r.h"

namespace {

using ZRMath_920::ZRBitSet;
using ZRMath_920::ZRCatStats;
using ZRMath_920::ZRContStats;
using ZRMath_920::ZRMeansXProducts;
using ZRMath_920::ZRRectMatrix;
using ZRMath_920::ZRSymMatrix;
namespace disp = ZRDisplay_920;
namespace xml = ZRXML_920;
namespace pmml = ZRCommon_920;
using xml::IZRVariable;
using xml::XMLElement;
using zrexample::ParseNumber;
using zrexample::ReadCsv;

constexpr double kMiss = ZRCommon_920::kSysMisValue;

// What the run is asked to do, read from a settings tree (see OptionSettings).
struct Options {
  std::string dataPath = ZR_DEMO_DATA;
  std::string pmmlPath = std::string(ZR_DEMO_BUILD_DIR) + "/fuel.pmml";
  // The sweep refuses a predictor when tolerance * its sum of squares >= what is left of it.
  double sweepTolerance = 1e-10;
  // The code of each text predictor's reference category, the one without an indicator
  // column: 0 is the category met first in the file.
  int referenceCategory = 0;
  // How the frequency weight is made whole.
  IZRVariable::WRoundingOption rounding = IZRVariable::kRoundNearest;
};

// The options as a settings tree: the defaults under the names data, pmml, tolerance,
// reference and rounding (truncate, nearest or asis); then the arguments, where a
// name=value replaces the setting of that name and the first two others are data and pmml.
// False for a third plain argument.
bool OptionSettings(int argc, char ** argv, xml::ZRSettings & settings) {
  const Options defaults;
  settings.AddSetting("data", defaults.dataPath, false);
  settings.AddSetting("pmml", defaults.pmmlPath, false);
  settings.AddSetting("tolerance", defaults.sweepTolerance, false);
  settings.AddSetting("reference", defaults.referenceCategory, false);
  settings.AddSetting("rounding", std::string("nearest"), false);
  const char * const kPositional[] = {"data", "pmml"};
  int nPositional = 0;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    const std::size_t eq = arg.find('=');
    if (eq == std::string::npos) {
      if (nPositional == 2) return false;
      settings.AddSetting(kPositional[nPositional++], arg, true);
      continue;
    }
    double number = 0.0;
    std::istringstream text(arg.substr(eq + 1));
    if (text >> number && text.eof())
      settings.AddSetting(arg.substr(0, eq), number, true);
    else
      settings.AddSetting(arg.substr(0, eq), arg.substr(eq + 1), true);
  }
  return true;
}

Options ReadOptions(const xml::ZRSettings & settings) {
  Options options;
  settings.GetSettingValByName("data", options.dataPath);
  settings.GetSettingValByName("pmml", options.pmmlPath);
  settings.GetSettingValByName("tolerance", options.sweepTolerance);
  settings.GetSettingValByName("reference", options.referenceCategory);
  std::string rounding;
  settings.GetSettingValByName("rounding", rounding);
  options.rounding = rounding == "truncate" ? IZRVariable::kRoundTruncate
                     : rounding == "asis"   ? IZRVariable::kRoundAsIs
                                            : IZRVariable::kRoundNearest;
  return options;
}

// A column of the design matrix: a continuous predictor (category -1) or the indicator of
// one category of a text predictor. The intercept is field -1.
struct Column {
  int field;
  int category;
  std::string name;   // the field's name
  std::string value;  // the category, empty for a continuous predictor
  std::string label;  // name, or "name=value"
};

// The cases of the file after encoding.
struct DataSet {
  std::vector<std::string> names;
  ZRRectMatrix encoded;  // one column per field (categories by code), the weight last
  std::vector<Column> columns;
  ZRRectMatrix design;  // the columns, then the response and the weight
};

// Each field's summary over a run of cases; a field uses the one that fits its level.
struct FieldStats {
  std::vector<ZRContStats> numbers;
  std::vector<ZRCatStats> categories;
};

struct Coefficient {
  Column column;
  double estimate, se, t, sig;  // se, t and sig missing for a predictor left out
};

struct Model {
  std::string response;
  double cases = 0.0, df = 0.0, rss = 0.0, sigma = 0.0;
  int entered = 0;
  bool perfect = false;
  std::vector<Coefficient> coefficients;  // the intercept first, then the columns
};

// The fields of the file: every column but the last two is a predictor, continuous when
// each of its values is a number or empty and a text categorical one (level 3, storage
// string) otherwise, where an empty text is a missing category. The next-to-last column is
// the response (the target), the last a frequency weight, rounded as the options say; a
// weight that is missing or not above 0 after rounding is missing.
void DescribeFields(const std::vector<std::string> & names,
                    const std::vector<std::vector<std::string>> & records,
                    IZRVariable::WRoundingOption rounding, xml::ZRVarList & fields) {
  const int nCols = static_cast<int>(names.size());
  for (int j = 0; j + 2 < nCols; ++j) {
    std::set<std::string> texts;
    bool numbers = true;
    double x = 0.0;
    for (const std::vector<std::string> & record : records) {
      if (record[j].empty()) continue;
      texts.insert(record[j]);
      numbers = numbers && ParseNumber(record[j], x);
    }
    if (numbers) {
      fields.AddContVar(names[j], names[j], IZRVariable::kRoleInput);
      continue;
    }
    const int index =
        fields.AddCatVar(names[j], names[j], static_cast<int>(texts.size()),
                         IZRVariable::kLevelStringCategorical, IZRVariable::kRoleInput);
    IZRVariable * text = fields.GetVarAt(index);
    text->SetVariableStorage(IZRVariable::kStorageString);
    text->GetEncoder()->AddDiscreteUserMissing(std::string(), std::string());
  }
  fields.AddContVar(names[nCols - 2], names[nCols - 2], IZRVariable::kRoleTarget);
  fields.SetWeightVar(names[nCols - 1], "frequency weight", rounding);
  fields.SetListwiseDeletion(true);
}

bool IsText(xml::ZRVarList & fields, int j) {
  return fields.GetVarAt(j)->GetMeasureLevel() == IZRVariable::kLevelStringCategorical;
}

// Encodes each record through the variable list into data.encoded, a missing value (a
// text one included) as the system-missing value. A case whose weight is missing is
// dropped and counted as a bad weight; with listwise deletion, so is a case with any other
// value missing. The list keeps the counts of the run and learns the categories. False
// when no case is left, or when cancel says stop (polled before each record).
bool EncodeRecords(const std::vector<std::vector<std::string>> & records, xml::ZRVarList & fields,
                   DataSet & data, ZRMath_920::ZRCancelInfo & cancel) {
  const int nCols = static_cast<int>(data.names.size());
  const int weightIndex = fields.GetFreqWeightIndex();
  std::vector<double> encoded(nCols);
  double weighted = 0.0, dropped = 0.0, badWeights = 0.0;
  data.encoded.SetNRowsCols(0, nCols, true);
  for (const std::vector<std::string> & record : records) {
    if (cancel.IsCancel()) return false;
    bool missing = false;
    for (int j = 0; j < nCols; ++j) {
      xml::IZREncoder * encoder = fields.GetEncoderAt(j);
      if (IsText(fields, j)) {
        const double code = encoder->Encode(record[j]);
        encoded[j] = code < 0.0 ? kMiss : code;
      } else {
        double raw = kMiss;
        if (!ParseNumber(record[j], raw)) raw = kMiss;
        encoded[j] = encoder->Encode(raw);
      }
      missing = missing || encoded[j] == kMiss;
    }
    if (encoded[weightIndex] == kMiss) {
      badWeights += 1.0;
      continue;
    }
    if (missing && fields.GetListwiseDeletion()) {
      dropped += 1.0;
      continue;
    }
    weighted += encoded[weightIndex];
    const int row = data.encoded.AddRow() - 1;
    for (int j = 0; j < nCols; ++j) data.encoded.SetElem(row, j, encoded[j]);
  }
  fields.UpdateNumbersOfCategories();
  fields.SetUnWeightedCount(static_cast<double>(records.size()));
  fields.SetWeightedCount(weighted);
  fields.SetDroppedCount(dropped);
  fields.SetBadWeightCount(badWeights);
  return data.encoded.GetNRows() > 0;
}

// The design matrix: a column per continuous predictor and, for a text predictor, the
// indicators of its categories but the reference one, in field order; then the response
// and the weight.
void BuildDesign(xml::ZRVarList & fields, int reference, DataSet & data) {
  const int nPredictors = static_cast<int>(data.names.size()) - 2;
  for (int j = 0; j < nPredictors; ++j) {
    const std::string & name = data.names[j];
    if (!IsText(fields, j)) {
      data.columns.push_back({j, -1, name, std::string(), name});
      continue;
    }
    xml::IZREncoder * encoder = fields.GetEncoderAt(j);
    for (int c = 0; c < encoder->GetNumberOfCategories(); ++c) {
      if (c != reference)
        data.columns.push_back({j, c, name, encoder->Decode(c), name + "=" + encoder->Decode(c)});
    }
  }
  const int p = static_cast<int>(data.columns.size());
  const int nRows = data.encoded.GetNRows();
  data.design.SetNRowsCols(nRows, p + 2, true);
  for (int r = 0; r < nRows; ++r) {
    for (int k = 0; k < p; ++k) {
      const Column & c = data.columns[k];
      const double x = data.encoded.GetElem(r, c.field);
      data.design.SetElem(r, k, c.category < 0 ? x : (x == c.category ? 1.0 : 0.0));
    }
    data.design.SetElem(r, p, data.encoded.GetElem(r, nPredictors));
    data.design.SetElem(r, p + 1, data.encoded.GetElem(r, nPredictors + 1));
  }
}

// Summarises cases [first, first + count): the weighted cross-products of the design
// columns and each field's weighted summary (the weight's own excepted).
bool Summarise(xml::ZRVarList & fields, const DataSet & data, int first, int count,
               ZRMeansXProducts & out, FieldStats & stats) {
  const int weight = data.encoded.GetNCols() - 1;
  stats.numbers.assign(weight, ZRContStats());
  stats.categories.assign(weight, ZRCatStats());
  for (int r = first; r < first + count; ++r) {
    const double w = data.encoded.GetElem(r, weight);
    for (int j = 0; j < weight; ++j) {
      if (IsText(fields, j)) {
        stats.categories[j].Update(data.encoded.GetElem(r, j), w);
      } else {
        stats.numbers[j].Update(data.encoded.GetElem(r, j), w, 1.0);
      }
    }
  }
  ZRRectMatrix part;
  return part.CopyRows(data.design, first, count) && out.Compute(part, 0);
}

// Ctrl-C asks the procedure to stop: the reading loops poll this through a ZRCancelInfo,
// the PMML export directly.
volatile std::sig_atomic_t gInterrupted = 0;

class InterruptCancel : public ZRCommon_920::ZRQueryCancel {
 public:
  bool IsCancelRequested() override { return gInterrupted != 0; }
  bool IsCancelPending() override { return gInterrupted != 0; }
};

// Regression of the response on the design columns by sweeping the corrected
// cross-products, with a two-sided t test of each coefficient. The residual sum of squares
// comes from a second pass over the data, weighted as they are: the element the sweep
// leaves behind is a difference of large sums and can even come out negative when the fit
// is exact.
Model Fit(const ZRMeansXProducts & summary, const DataSet & data, double tolerance) {
  const int p = summary.GetNVars() - 1;  // predictors; the response is the last variable
  const double n = summary.GetNCases();
  const std::vector<double> & means = summary.GetMeans();
  ZRSymMatrix a = summary.GetXProds();

  ZRBitSet entered;
  double logDet = 0.0;
  a.SweepOnMany(p, tolerance, true, entered, logDet, true, nullptr);
  std::vector<double> b;
  a.GetRegCoeffs(b, entered);

  // After the sweep the entered block holds -(X'X)^-1 of the centred predictors.
  double intercept = means[p], meanQuad = 0.0;
  for (int j = 0; j < p; ++j) {
    intercept -= b[j] * means[j];
    for (int k = 0; k < p; ++k)
      if (entered.IsIn(j) && entered.IsIn(k)) meanQuad -= means[j] * a.GetElem(j, k) * means[k];
  }

  Model model;
  model.response = data.names[data.names.size() - 2];
  model.cases = n;
  for (int r = 0; r < data.design.GetNRows(); ++r) {
    double e = data.design.GetElem(r, p) - intercept;
    for (int j = 0; j < p; ++j) e -= b[j] * data.design.GetElem(r, j);  // 0.0 when left out
    model.rss += data.design.GetElem(r, p + 1) * e * e;
  }
  model.entered = entered.InSet();
  model.df = n - model.entered - 1.0;
  // An exact fit: the swept sum fell below zero, nothing is left over, or no df remain.
  model.perfect = a.GetElem(p, p) < 0.0 || model.rss == 0.0 || model.df <= 0.0;
  const double sigma2 = model.perfect ? 0.0 : model.rss / model.df;
  model.sigma = std::sqrt(sigma2);

  auto add = [&](const Column & column, double estimate, double se) {
    Coefficient c{column, estimate, se, kMiss, kMiss};
    if (!model.perfect && se != kMiss && se > 0.0) {
      c.t = estimate / se;
      c.sig = 2.0 * ZRMath_920::ZRDistFun::SigT(std::fabs(c.t), model.df);
    }
    model.coefficients.push_back(c);
  };
  add({-1, -1, "intercept", std::string(), "intercept"}, intercept,
      std::sqrt(sigma2 * (1.0 / n + meanQuad)));
  for (int j = 0; j < p; ++j)
    add(data.columns[j], b[j], entered.IsIn(j) ? std::sqrt(-a.GetElem(j, j) * sigma2) : kMiss);
  return model;
}

// The fit on the diagnostic stream, then as an XML document (UTF-8) and a JSON record.
void Report(const Model & model) {
  disp::DisplayText(1, "Regression of ");
  disp::DisplayText(0, model.response);
  disp::DisplayD("weighted cases", model.cases);
  disp::DisplayI("predictors entered", model.entered);
  if (model.perfect) disp::DisplayText(1, "perfect fit: the residuals are rounding error");
  for (const Coefficient & c : model.coefficients) {
    const std::string & label = c.column.label;
    disp::DisplayDF(c.column.field < 0 ? label : "coefficient of " + label, c.estimate);
    disp::DisplayDF("  standard error", c.se);
    disp::DisplayDF("  p-value", c.sig);
  }
  disp::DisplayDF("residual sum of squares", model.rss);
  disp::DisplayDF("residual standard deviation", model.sigma);

  std::unique_ptr<XMLElement> root(XMLElement::Create("Regression"));
  root->AddAttribute("response", model.response);
  root->AddAttribute("cases", model.cases);
  root->AddAttribute("residualSD", model.sigma);
  xml::JsonObject record;
  for (const Coefficient & c : model.coefficients) {
    std::unique_ptr<XMLElement> row(XMLElement::Create("Coefficient"));
    row->AddAttribute("name", c.column.label);
    row->AddAttribute("estimate", c.estimate);
    if (c.se != kMiss) row->AddAttribute("standardError", c.se);
    if (c.sig != kMiss) row->AddAttribute("pValue", c.sig);
    root->AddElement(row.get());
    row.release();
    record.AddPair(c.column.label, xml::JsonObject::CreateNumDataText(c.column.label, c.estimate));
  }
  std::printf("\n");
  xml::WriteTreeUTF8(std::cout, nullptr, root.get(), true);
  std::cout << "\n" << record.GetJsonString(true) << std::flush;
}

// A new element name appended to parent; a reference to it.
XMLElement & AddChild(XMLElement & parent, const std::string & name) {
  std::unique_ptr<XMLElement> child(XMLElement::Create(name));
  parent.AddElement(child.get());
  return *child.release();
}

// Appends element, which an export handed over, to parent; false (element deleted) and a
// message when the export failed.
bool Adopt(XMLElement & parent, const ZRCommon_920::ZRStatus & status, XMLElement * element,
           const char * what) {
  std::unique_ptr<XMLElement> owned(element);
  if (!status.IsOK() || owned == nullptr) {
    std::fprintf(stderr, "PMML export of the %s failed: code %d\n", what,
                 static_cast<int>(status.GetErrorCode()));
    return false;
  }
  parent.AddElement(owned.get());
  owned.release();
  return true;
}

// The RegressionModel: a MiningSchema (the target predicted, the weight a frequency
// weight), ModelStats with each field's summary, and a RegressionTable whose
// CategoricalPredictors give every category of a text predictor, its reference one with
// coefficient 0.
bool AddRegressionModel(XMLElement & root, xml::ZRVarList & fields,
                        const std::vector<xml::ZRUniStats> & stats, const Model & model,
                        int reference, pmml::ZRPMMLExporter & exporter) {
  XMLElement & regression = AddChild(root, pmml::PMML_RegressionModel);
  regression.AddAttribute(pmml::PMML_modelName, "linear regression of " + model.response);
  regression.AddAttribute(pmml::PMML_functionName, pmml::PMML_regression);
  regression.AddAttribute(pmml::PMML_algorithmName, "least squares by sweeping");

  XMLElement & schema = AddChild(regression, pmml::PMML_MiningSchema);
  for (int j = 0; fields.GetVarAt(j) != nullptr; ++j) {
    XMLElement & field = AddChild(schema, pmml::PMML_MiningField);
    field.AddAttribute(pmml::PMML_name, fields.GetVarAt(j)->GetVariableName());
    if (j == fields.GetTargetIndex())
      field.AddAttribute(pmml::PMML_usageType, pmml::PMML_predicted);
    if (j == fields.GetFreqWeightIndex())
      field.AddAttribute(pmml::PMML_usageType, pmml::PMML_frequencyWeight);
  }

  XMLElement & modelStats = AddChild(regression, pmml::PMML_ModelStats);
  for (const xml::ZRUniStats & s : stats) {
    XMLElement * uni = nullptr;
    const ZRCommon_920::ZRStatus status = exporter.ExportUniStats(s, uni);
    if (!Adopt(modelStats, status, uni, "field statistics")) return false;
  }

  XMLElement & table = AddChild(regression, pmml::PMML_RegressionTable);
  table.AddAttribute(pmml::PMML_intercept, model.coefficients[0].estimate);
  for (const Coefficient & c : model.coefficients) {
    if (c.column.field < 0 || c.column.category >= 0) continue;
    XMLElement & predictor = AddChild(table, pmml::PMML_NumericPredictor);
    predictor.AddAttribute(pmml::PMML_name, c.column.name);
    predictor.AddAttribute(pmml::PMML_coefficient, c.estimate);
  }
  for (int j = 0; fields.GetVarAt(j) != nullptr; ++j) {
    if (fields.GetVariableRole(j) != IZRVariable::kRoleInput || !IsText(fields, j)) continue;
    xml::IZREncoder * encoder = fields.GetEncoderAt(j);
    for (int category = 0; category < encoder->GetNumberOfCategories(); ++category) {
      double coefficient = 0.0;
      for (const Coefficient & c : model.coefficients)
        if (c.column.field == j && c.column.category == category) coefficient = c.estimate;
      XMLElement & predictor = AddChild(table, pmml::PMML_CategoricalPredictor);
      predictor.AddAttribute(pmml::PMML_name, fields.GetVarAt(j)->GetVariableName());
      predictor.AddAttribute(pmml::PMML_value, encoder->Decode(category));
      predictor.AddAttribute(pmml::PMML_coefficient, category == reference ? 0.0 : coefficient);
    }
  }
  return true;
}

// The model as a PMML 4.3 document (UTF-8) in path: the Header, the DataDictionary, the
// RegressionModel, and the DataModel of the fields inside an Extension. False, with a
// message, when an export fails, is cancelled, or the file can't be written.
bool WritePmml(const std::string & path, xml::ZRVarList & fields,
               const std::vector<xml::ZRUniStats> & stats, const Model & model, int reference,
               ZRCommon_920::ZRQueryCancel * cancel) {
  pmml::ZRPMMLExporter exporter(cancel);
  std::unique_ptr<XMLElement> root(exporter.ExportPMMLElement());
  pmml::ZRApplicInfo4XML info;
  info.fName = "zr_demo";
  info.fVersion = ZR_DEMO_VERSION;
  XMLElement * element = nullptr;
  ZRCommon_920::ZRStatus status = exporter.ExportHeader(
      &info, "Weighted linear regression of " + model.response, true, element);
  if (!Adopt(*root, status, element, "header")) return false;
  status = exporter.ExportDataDictionary(fields, {}, element);
  if (!Adopt(*root, status, element, "data dictionary")) return false;
  if (!AddRegressionModel(*root, fields, stats, model, reference, exporter)) return false;
  XMLElement * extension = nullptr;
  exporter.ExportExtension(std::string(), std::string(), extension);
  if (!Adopt(*root, ZRCommon_920::ZRStatus(), extension, "extension")) return false;
  status = exporter.ExportDataModel(fields, {}, element);
  if (!Adopt(*extension, status, element, "data model")) return false;

  std::ofstream out(path, std::ios::binary);
  xml::WriteTreeUTF8(out, nullptr, root.get(), true);
  out.close();
  if (!out) {
    std::fprintf(stderr, "cannot write %s\n", path.c_str());
    return false;
  }
  return true;
}

// The coefficient table as a StatXML Matrix: a row per coefficient, labelled by a Label
// around its RegressionParameter (with a Covariate or a Factor), the columns estimate,
// stdError, tValue, df and sig, and the values row by row in SegmentData.
void PrintStatXml(const Model & model) {
  using U = xml::ZRStatXMLUtil;
  const std::vector<std::string> statistics = {xml::STATXML_estimate, "stdError", "tValue", "df",
                                               xml::STATXML_sig};
  std::vector<XMLElement *> rows, cols;
  std::vector<double> values;
  for (const Coefficient & c : model.coefficients) {
    std::vector<XMLElement *> terms;
    if (c.column.field >= 0 && c.column.category < 0)
      terms.push_back(U::CreateElemCovariate(c.column.name, 1));
    if (c.column.category >= 0)
      terms.push_back(U::CreateElemFactor(c.column.name, c.column.value, false));
    rows.push_back(
        U::CreateElemLabel(terms, {}, c.column.label, c.column.field < 0, c.column.label));
    values.insert(values.end(), {c.estimate, c.se, c.t, model.df, c.sig});
  }
  for (const std::string & s : statistics) cols.push_back(U::CreateElemLabel(s));
  std::unique_ptr<XMLElement> root(U::BuildRoot());
  root->AddElement(U::CreateElemMatrix(
      U::CreateElemMatrixLabels({U::CreateElemLabel("coefficients of " + model.response)}),
      {U::CreateElemRowColLabels(rows, "row"), U::CreateElemRowColLabels(cols, "col")}, nullptr,
      U::CreateElemSegmentData(U::CreateElemArray(values), nullptr),
      static_cast<unsigned int>(model.coefficients.size()),
      static_cast<unsigned int>(statistics.size()), "general", true));
  std::printf("\n");
  xml::WriteTreeUTF8(std::cout, nullptr, root.get(), true);
  std::cout << std::flush;
}

}  // namespace

int main(int argc, char ** argv) {
  xml::ZRSettings settings;
  if (!OptionSettings(argc, argv, settings)) {
    std::fprintf(stderr, "usage: zr_demo [data.csv [model.pmml]] [name=value ...]\n");
    return 2;
  }
  const Options options = ReadOptions(settings);

  ZRMath_920::ZRTimeUtil clock("model build");
  std::signal(SIGINT, [](int) { gInterrupted = 1; });
  InterruptCancel interrupt;
  ZRMath_920::ZRCancelInfo cancel(&interrupt);
  DataSet data;
  std::vector<std::vector<std::string>> records;
  xml::ZRVarList fields;
  const bool read = ReadCsv(options.dataPath, data.names, records, cancel);
  if (read) DescribeFields(data.names, records, options.rounding, fields);
  if (!read || !EncodeRecords(records, fields, data, cancel)) {
    std::fprintf(stderr, cancel.IsCancel() ? "cancelled while reading %s\n" : "cannot read %s\n",
                 options.dataPath.c_str());
    return 1;
  }
  BuildDesign(fields, options.referenceCategory, data);
  const int nFields = static_cast<int>(data.names.size()) - 1;  // the weight's excepted
  const int nVars = data.design.GetNCols() - 1;  // the last column is a frequency weight
  const int nRows = data.design.GetNRows();
  disp::DisplayS("data set", options.dataPath);
  disp::DisplayD("option tolerance", options.sweepTolerance);
  disp::DisplayI("option reference", options.referenceCategory);
  ZRCommon_920::ZRMV::DisplayRounding("option rounding", options.rounding);
  disp::DisplayI("predictors", fields.GetNumInputVars());
  disp::DisplayI("design columns", nVars - 1);
  disp::DisplayS("response", data.names[fields.GetTargetIndex()]);
  disp::DisplayD("records read", fields.GetUnWeightedCount());
  disp::DisplayD("dropped for a missing weight", fields.GetBadWeightCount());
  disp::DisplayD("dropped for a missing value", fields.GetDroppedCount());
  disp::DisplayI("cases", nRows);
  disp::DisplayD("weighted cases", fields.GetWeightedCount());

  // One pass over all cases.
  ZRMeansXProducts whole(nVars, true, true, false);
  if (!whole.Compute(data.design, 0)) return 1;

  // The same in two halves, one per thread, joined afterwards.
  ZRMeansXProducts first(nVars, true, true, false), second(nVars, true, true, false);
  FieldStats firstFields, secondFields;
  bool okFirst = false, okSecond = false;
  std::thread t1([&] { okFirst = Summarise(fields, data, 0, nRows / 2, first, firstFields); });
  std::thread t2([&] {
    okSecond = Summarise(fields, data, nRows / 2, nRows - nRows / 2, second, secondFields);
  });
  t1.join();
  t2.join();
  if (!okFirst || !okSecond || !first.Merge(second)) return 1;

  // Each field's summary, its two halves pooled, and as the model export reads it.
  std::vector<xml::ZRUniStats> stats;
  for (int j = 0; j < nFields; ++j) {
    disp::DisplayText(1, "summary of ");
    disp::DisplayText(0, data.names[j]);
    if (IsText(fields, j)) {
      ZRCatStats & counts = firstFields.categories[j];
      counts.Pool(secondFields.categories[j]);
      xml::IZREncoder * encoder = fields.GetEncoderAt(j);
      std::vector<double> freqs(encoder->GetNumberOfCategories(), 0.0);
      for (std::size_t c = 0; c < freqs.size(); ++c) {
        freqs[c] = counts.GetCatCount(static_cast<unsigned int>(c));
        disp::DisplayD("  weighted count of " + encoder->Decode(static_cast<int>(c)), freqs[c]);
      }
      stats.emplace_back(data.names[j], counts.GetSumCounts(), freqs);
      continue;
    }
    ZRContStats & s = firstFields.numbers[j];
    s.Pool(secondFields.numbers[j]);
    disp::DisplayD("  weighted mean", s.GetMean());
    disp::DisplayD("  standard deviation", std::sqrt(s.GetVariance()));
    disp::DisplayD("  minimum", s.GetExtrema().first);
    disp::DisplayD("  maximum", s.GetExtrema().second);
    stats.emplace_back(data.names[j], s.GetSumFreq(), xml::ZRUniStats::SummStats(s),
                       std::vector<double>(), std::vector<double>());
  }

  double maxDiff = 0.0;
  for (int i = 0; i < nVars; ++i)
    for (int j = 0; j <= i; ++j)
      maxDiff = std::fmax(
          maxDiff, std::fabs(first.GetXProds().GetElem(i, j) - whole.GetXProds().GetElem(i, j)));
  disp::DisplayDV("means", whole.GetMeans(), false);
  disp::DisplayD("largest difference, merged halves against one pass", maxDiff);

  const Model model = Fit(first, data, options.sweepTolerance);
  Report(model);
  if (!WritePmml(options.pmmlPath, fields, stats, model, options.referenceCategory, &interrupt))
    return 1;
  disp::DisplayS("PMML document", options.pmmlPath);
  PrintStatXml(model);
  clock.Accumulate();
  int ms = 0, calls = 0;
  double seconds = 0.0;
  clock.GetTime(ms, seconds, calls);
  disp::DisplayI("processor time of the model build, ms", ms);
  std::printf("\n");
  return 0;
}
