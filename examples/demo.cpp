// Example procedure: a weighted linear regression as an analytic procedure builds it.
// It describes the fields of a small data set with a variable list (predictors, a target
// and a frequency weight), encodes each record through it, dropping the cases whose weight
// is missing, and polls for cancellation (Ctrl-C) between records. It accumulates weighted
// means and corrected cross-products in one pass and again in two halves on two threads
// joined with Merge, with each field's summary pooled from the halves, sweeps the
// predictors out of the cross-product matrix, takes the residuals in a second pass, and
// reports coefficients, their standard errors, t-test p-values and the residual standard
// deviation on the diagnostic stream, then as an XML document and a JSON record, and last
// the processor time the build took.
//
// Usage: zr_demo [file.csv] [name=value ...]   (default: the bundled examples/data/fuel.csv)
// Options, read from a settings tree: tolerance=1e-10 (the sweep's), rounding=nearest (of
// the frequency weight; or truncate, asis).
#include <cmath>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "zrcommon920r/zrcommon920r.h"

namespace {

using ZRMath_920::ZRBitSet;
using ZRMath_920::ZRMeansXProducts;
using ZRMath_920::ZRRectMatrix;
using ZRMath_920::ZRSymMatrix;
namespace disp = ZRDisplay_920;
namespace xml = ZRXML_920;

// A comma-separated file with a header line of names; every other line holds numbers, an
// empty field standing for a missing value.
struct DataSet {
  std::vector<std::string> names;
  ZRRectMatrix rows;  // encoded cases: predictors, response, then the frequency weight
};

// The procedure's options, read from a settings tree.
struct Options {
  double tolerance = 1e-10;  // the sweep's pivot tolerance
  xml::IZRVariable::WRoundingOption rounding = xml::IZRVariable::kRoundNearest;
};

// The options as a settings tree: the defaults, each then replaced by an argument
// name=value of the same name. The other arguments are returned in order.
xml::ZRSettings OptionSettings(int argc, char ** argv, std::vector<std::string> & positional) {
  xml::ZRSettings settings;
  const Options defaults;
  settings.AddSetting("tolerance", defaults.tolerance, false);
  settings.AddSetting("rounding", std::string("nearest"), false);  // truncate, nearest, asis
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    const std::size_t eq = arg.find('=');
    if (eq == std::string::npos) {
      positional.push_back(arg);
      continue;
    }
    double number = 0.0;
    std::istringstream text(arg.substr(eq + 1));
    if (text >> number && text.eof())
      settings.AddSetting(arg.substr(0, eq), number, true);
    else
      settings.AddSetting(arg.substr(0, eq), arg.substr(eq + 1), true);
  }
  return settings;
}

Options ReadOptions(const xml::ZRSettings & settings) {
  Options options;
  settings.GetSettingValByName("tolerance", options.tolerance);
  std::string rounding;
  settings.GetSettingValByName("rounding", rounding);
  options.rounding = rounding == "truncate" ? xml::IZRVariable::kRoundTruncate
                     : rounding == "asis"   ? xml::IZRVariable::kRoundAsIs
                                            : xml::IZRVariable::kRoundNearest;
  return options;
}

// The fields of the file: every column but the last two is a predictor, the next-to-last
// the response (the target) and the last a frequency weight, rounded as the options say;
// a weight that is missing or not above 0 after rounding is missing.
void DescribeFields(const std::vector<std::string> & names, const Options & options,
                    xml::ZRVarList & fields) {
  const int nCols = static_cast<int>(names.size());
  for (int j = 0; j + 2 < nCols; ++j)
    fields.AddContVar(names[j], names[j], xml::IZRVariable::kRoleInput);
  fields.AddContVar(names[nCols - 2], names[nCols - 2], xml::IZRVariable::kRoleTarget);
  fields.SetWeightVar(names[nCols - 1], "frequency weight", options.rounding);
  fields.SetListwiseDeletion(true);  // the fit has no use for a case with a value missing
}

// Reads the file and encodes each record through the variable list. A case whose weight is
// missing is dropped and counted as a bad weight; with listwise deletion, so is a case with
// any other value missing. The list keeps the counts of the run. False when the file can't
// be read or has no usable case, or when cancel says stop (polled before each record).
bool ReadCsv(const std::string & path, const Options & options, xml::ZRVarList & fields,
             DataSet & data, ZRMath_920::ZRCancelInfo & cancel) {
  std::ifstream in(path);
  std::string line, field;
  if (!in || !std::getline(in, line)) return false;
  std::stringstream header(line);
  while (std::getline(header, field, ',')) data.names.push_back(field);
  const int nCols = static_cast<int>(data.names.size());
  if (nCols < 3) return false;
  DescribeFields(data.names, options, fields);
  const int weightIndex = fields.GetFreqWeightIndex();

  std::vector<double> encoded(nCols);
  double cases = 0.0, weighted = 0.0, dropped = 0.0, badWeights = 0.0;
  data.rows.SetNRowsCols(0, nCols, true);
  while (std::getline(in, line)) {
    if (cancel.IsCancel()) return false;
    if (line.empty()) continue;
    std::stringstream values(line);
    bool missing = false;
    for (int j = 0; j < nCols; ++j) {
      if (!std::getline(values, field, ',')) field.clear();
      const double raw = field.empty() ? ZRCommon_920::kSysMisValue : std::stod(field);
      encoded[j] = fields.GetEncoderAt(j)->Encode(raw);
      missing = missing || encoded[j] == ZRCommon_920::kSysMisValue;
    }
    cases += 1.0;
    if (encoded[weightIndex] == ZRCommon_920::kSysMisValue) {
      badWeights += 1.0;
      continue;
    }
    if (missing && fields.GetListwiseDeletion()) {
      dropped += 1.0;
      continue;
    }
    weighted += encoded[weightIndex];
    const int row = data.rows.AddRow() - 1;
    for (int j = 0; j < nCols; ++j) data.rows.SetElem(row, j, encoded[j]);
  }
  fields.SetUnWeightedCount(cases);
  fields.SetWeightedCount(weighted);
  fields.SetDroppedCount(dropped);
  fields.SetBadWeightCount(badWeights);
  return data.rows.GetNRows() > 0;
}

// Summarises rows [first, first + count) of the block: the cross-products of the variables,
// weighted by the last column, and each variable's weighted mean, variance and range.
bool Summarise(const ZRRectMatrix & block, int first, int count, ZRMeansXProducts & out,
               std::vector<ZRMath_920::ZRContStats> & fields) {
  const int nVars = block.GetNCols() - 1;
  fields.assign(nVars, ZRMath_920::ZRContStats());
  for (int r = first; r < first + count; ++r)
    for (int j = 0; j < nVars; ++j)
      fields[j].Update(block.GetElem(r, j), block.GetElem(r, nVars), 1.0);
  ZRRectMatrix part;
  return part.CopyRows(block, first, count) && out.Compute(part, 0);
}

// Ctrl-C asks the procedure to stop: the reading loop polls this through a ZRCancelInfo.
volatile std::sig_atomic_t gInterrupted = 0;

class InterruptCancel : public ZRCommon_920::ZRQueryCancel {
 public:
  bool IsCancelRequested() override { return gInterrupted != 0; }
  bool IsCancelPending() override { return gInterrupted != 0; }
};

// Regression of the last variable on the others by sweeping the corrected cross-products.
// The residual sum of squares comes from a second pass over the data, weighted as they are:
// the element the sweep leaves behind is a difference of large sums and can even come out
// negative when the fit is exact.
void Fit(const ZRMeansXProducts & summary, const ZRRectMatrix & rows,
         const std::vector<std::string> & names, double tolerance) {
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

  double rss = 0.0;  // b[j] is 0.0 for a predictor left out
  for (int r = 0; r < rows.GetNRows(); ++r) {
    double e = rows.GetElem(r, p) - intercept;
    for (int j = 0; j < p; ++j) e -= b[j] * rows.GetElem(r, j);
    rss += rows.GetElem(r, p + 1) * e * e;
  }
  const double df = n - entered.InSet() - 1.0;
  // An exact fit: the swept sum fell below zero, nothing is left over, or no df remain.
  const bool perfect = a.GetElem(p, p) < 0.0 || rss == 0.0 || df <= 0.0;
  const double sigma2 = perfect ? 0.0 : rss / df;

  // Estimates with their standard errors and two-sided p-values from the t distribution.
  struct Term {
    std::string name;
    double estimate, se;
  };
  std::vector<Term> terms{{"intercept", intercept, std::sqrt(sigma2 * (1.0 / n + meanQuad))}};
  for (int j = 0; j < p; ++j) {
    terms.push_back(
        {names[j], b[j],
         entered.IsIn(j) ? std::sqrt(-a.GetElem(j, j) * sigma2) : ZRCommon_920::kSysMisValue});
  }
  auto pValue = [&](const Term & t) {
    if (perfect || !(t.se > 0.0)) return ZRCommon_920::kSysMisValue;
    return 2.0 * ZRMath_920::ZRDistFun::SigT(std::fabs(t.estimate / t.se), df);
  };

  disp::DisplayText(1, "Regression of ");
  disp::DisplayText(0, names[p]);
  disp::DisplayD("weighted cases", n);
  disp::DisplayI("predictors entered", entered.InSet());
  if (perfect) disp::DisplayText(1, "perfect fit: the residuals are rounding error");
  for (const Term & t : terms) {
    disp::DisplayDF(t.name == "intercept" ? t.name : "coefficient of " + t.name, t.estimate);
    disp::DisplayDF("  standard error", t.se);
    disp::DisplayDF("  p-value", pValue(t));
  }
  disp::DisplayDF("residual sum of squares", rss);
  disp::DisplayDF("residual standard deviation", std::sqrt(sigma2));

  // The same results as an XML document (UTF-8) and as a JSON record.
  std::unique_ptr<xml::XMLElement> root(xml::XMLElement::Create("Regression"));
  root->AddAttribute("response", names[p]);
  root->AddAttribute("cases", n);
  root->AddAttribute("residualSD", std::sqrt(sigma2));
  xml::JsonObject record;
  for (const Term & t : terms) {
    xml::XMLElement * row = xml::XMLElement::Create("Coefficient");
    row->AddAttribute("name", t.name);
    row->AddAttribute("estimate", t.estimate);
    if (t.se != ZRCommon_920::kSysMisValue) row->AddAttribute("standardError", t.se);
    if (pValue(t) != ZRCommon_920::kSysMisValue) row->AddAttribute("pValue", pValue(t));
    root->AddElement(row);
    record.AddPair(t.name, xml::JsonObject::CreateNumDataText(t.name, t.estimate));
  }
  std::printf("\n");
  xml::WriteTreeUTF8(std::cout, nullptr, root.get(), true);
  std::cout << "\n" << record.GetJsonString(true) << std::flush;
}

}  // namespace

int main(int argc, char ** argv) {
  std::vector<std::string> positional;
  const xml::ZRSettings settings = OptionSettings(argc, argv, positional);
  const Options options = ReadOptions(settings);
  const std::string path = !positional.empty() ? positional[0] : ZR_DEMO_DATA;
  ZRMath_920::ZRTimeUtil clock("model build");
  std::signal(SIGINT, [](int) { gInterrupted = 1; });
  InterruptCancel interrupt;
  ZRMath_920::ZRCancelInfo cancel(&interrupt);
  DataSet data;
  xml::ZRVarList fields;
  if (!ReadCsv(path, options, fields, data, cancel)) {
    std::fprintf(stderr, cancel.IsCancel() ? "cancelled while reading %s\n" : "cannot read %s\n",
                 path.c_str());
    return 1;
  }
  const int nVars = data.rows.GetNCols() - 1;  // the last column is a frequency weight
  const int nRows = data.rows.GetNRows();
  disp::DisplayS("data set", path);
  disp::DisplayD("option tolerance", options.tolerance);
  ZRCommon_920::ZRMV::DisplayRounding("option rounding", options.rounding);
  disp::DisplayI("predictors", fields.GetNumInputVars());
  xml::IZRVariable * target = fields.GetVarAt(fields.GetTargetIndex());
  disp::DisplayS("response", target != nullptr ? target->GetVariableName() : "none");
  disp::DisplayD("records read", fields.GetUnWeightedCount());
  disp::DisplayD("dropped for a missing weight", fields.GetBadWeightCount());
  disp::DisplayD("dropped for a missing value", fields.GetDroppedCount());
  disp::DisplayI("cases", nRows);
  disp::DisplayD("weighted cases", fields.GetWeightedCount());

  // One pass over all cases.
  ZRMeansXProducts whole(nVars, true, true, false);
  if (!whole.Compute(data.rows, 0)) return 1;

  // The same in two halves, one per thread, joined afterwards.
  ZRMeansXProducts first(nVars, true, true, false), second(nVars, true, true, false);
  std::vector<ZRMath_920::ZRContStats> firstFields, secondFields;
  bool okFirst = false, okSecond = false;
  std::thread t1([&] { okFirst = Summarise(data.rows, 0, nRows / 2, first, firstFields); });
  std::thread t2(
      [&] { okSecond = Summarise(data.rows, nRows / 2, nRows - nRows / 2, second, secondFields); });
  t1.join();
  t2.join();
  if (!okFirst || !okSecond || !first.Merge(second)) return 1;

  // Each field's summary, its two halves pooled.
  for (int j = 0; j < nVars; ++j) {
    ZRMath_920::ZRContStats & stats = firstFields[j];
    stats.Pool(secondFields[j]);
    disp::DisplayText(1, "summary of ");
    disp::DisplayText(0, data.names[j]);
    disp::DisplayD("  weighted mean", stats.GetMean());
    disp::DisplayD("  standard deviation", std::sqrt(stats.GetVariance()));
    disp::DisplayD("  minimum", stats.GetExtrema().first);
    disp::DisplayD("  maximum", stats.GetExtrema().second);
  }

  double maxDiff = 0.0;
  for (int i = 0; i < nVars; ++i)
    for (int j = 0; j <= i; ++j)
      maxDiff = std::fmax(
          maxDiff, std::fabs(first.GetXProds().GetElem(i, j) - whole.GetXProds().GetElem(i, j)));
  disp::DisplayDV("means", whole.GetMeans(), false);
  disp::DisplayD("largest difference, merged halves against one pass", maxDiff);

  Fit(first, data.rows, data.names, options.tolerance);
  clock.Accumulate();
  int ms = 0, calls = 0;
  double seconds = 0.0;
  clock.GetTime(ms, seconds, calls);
  disp::DisplayI("processor time of the model build, ms", ms);
  std::printf("\n");
  return 0;
}
