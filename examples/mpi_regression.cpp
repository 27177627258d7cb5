// Example procedure: a weighted linear regression built by several processes with MPI.
// Each rank reads the data set and keeps its own shard, the records r with
// r % size == rank, and summarises it: weighted means and corrected cross-products, and
// each field's summary. The matrices have no persistent form, so every rank packs its
// summary into a plain array of doubles (count, means, lower triangle by rows, then six
// numbers per field) and rank 0 gathers them, unpacks them in rank order, joins them with
// Merge and Pool, sweeps the predictors out, t-tests each coefficient and writes the model
// as a PMML 4.3 document. The numeric fields are used: every column but the last two is a
// predictor when all its values are numbers, the next-to-last is the response, the last a
// frequency weight; a record with a field that is not a number, or a weight not above 0,
// is dropped.
//
// With --generate, the ranks draw a data set instead, the one the threaded example builds:
// chunks of cases from their own seeds, rank r taking chunks r, r + N, ..., so the data do
// not depend on the number of ranks. Its fields are x1..xP (x1..x3 indicators of a
// four-category field), the response y and a weight; no record is dropped.
//
// Usage: mpirun -np N zr_mpi data.csv model.pmml
//        mpirun -np N zr_mpi --generate cases predictors [model.pmml]   (predictors 4..2000)
// Rank 0 prints "coefficient <name> <estimate> <se> <t> <sig>" lines, estimates with 17
// digits, so that runs on different numbers of ranks can be compared. With --generate it
// also prints "cases_per_second <value>": the cases over the wall-clock time from MPI's
// start to the end of the fit, the PMML document excepted.
#include <mpi.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "generated_cases.h"
#include "zrcommon920r/zrcommon920r.h"

namespace {

using ZRMath_920::ZRBitSet;
using ZRMath_920::ZRContStats;
using ZRMath_920::ZRMeansXProdData;
using ZRMath_920::ZRSymMatrix;
namespace xml = ZRXML_920;
namespace pmml = ZRCommon_920;
using xml::IZRVariable;
using xml::XMLElement;

constexpr double kMiss = ZRCommon_920::kSysMisValue;

// The summary's state as a flat array and back: count, means, then the packed triangle.
class PackedSummary : public ZRMeansXProdData {
 public:
  explicit PackedSummary(int nVars) : ZRMeansXProdData(nVars, true) {}
  static int Length(int nVars) { return 1 + nVars + nVars * (nVars + 1) / 2; }
  void Pack(const ZRMeansXProdData & s, double * out) const {
    *out++ = s.GetNCases();
    for (double m : s.GetMeans()) *out++ = m;
    for (int i = 0; i < s.GetNVars(); ++i)
      for (int j = 0; j <= i; ++j) *out++ = s.GetXProds().GetElem(i, j);
  }
  void Unpack(const double * in) {
    fdNCases = *in++;
    for (double & m : fvMeans) m = *in++;
    for (int i = 0; i < fnVars; ++i)
      for (int j = 0; j <= i; ++j) fmXProds.SetElem(i, j, *in++);
  }
};

// A field's summary as six doubles and back.
class PackedStats : public ZRContStats {
 public:
  static constexpr int kLength = 6;
  void Pack(double * out) const {
    const double state[kLength] = {fdMin, fdMax, fdSumFreq, fdSumWt, fdMean, fdSSQ};
    for (double x : state) *out++ = x;
  }
  void Unpack(const double * in) {
    fdMin = in[0];
    fdMax = in[1];
    fdSumFreq = in[2];
    fdSumWt = in[3];
    fdMean = in[4];
    fdSSQ = in[5];
  }
};

bool ParseNumber(const std::string & text, double & value) {
  char * end = nullptr;
  value = std::strtod(text.c_str(), &end);
  return !text.empty() && end == text.c_str() + text.size();
}

// The file's names and records, every field split at commas.
bool ReadCsv(const std::string & path, std::vector<std::string> & names,
             std::vector<std::vector<std::string>> & records) {
  std::ifstream in(path);
  std::string line, field;
  if (!in || !std::getline(in, line)) return false;
  std::stringstream header(line);
  while (std::getline(header, field, ',')) names.push_back(field);
  while (std::getline(in, line)) {
    if (line.empty()) continue;
    std::stringstream values(line);
    std::vector<std::string> record;
    while (std::getline(values, field, ',')) record.push_back(field);
    record.resize(names.size());
    records.push_back(record);
  }
  return names.size() >= 3 && !records.empty();
}

// The columns used: the numeric predictors, then the response, then the weight.
std::vector<int> NumericColumns(const std::vector<std::string> & names,
                                const std::vector<std::vector<std::string>> & records) {
  std::vector<int> columns;
  const int n = static_cast<int>(names.size());
  for (int j = 0; j + 2 < n; ++j) {
    bool numbers = true;
    double x = 0.0;
    for (const auto & record : records) numbers = numbers && ParseNumber(record[j], x);
    if (numbers) columns.push_back(j);
  }
  columns.push_back(n - 2);
  columns.push_back(n - 1);
  return columns;
}

struct Coefficient {
  std::string name;
  double estimate, se, t, sig;
};

// Coefficients by sweeping, the intercept first; the residual sum of squares is what the
// sweep leaves of the response. Empty when a predictor is refused.
std::vector<Coefficient> Fit(const ZRMeansXProdData & s, const std::vector<std::string> & names) {
  const int p = s.GetNVars() - 1;
  ZRSymMatrix a = s.GetXProds();
  ZRBitSet entered;
  double logDet = 0.0;
  std::vector<double> b;
  if (!a.SweepOnMany(p, 1e-10, true, entered, logDet, true, nullptr) || entered.InSet() != p ||
      !a.GetRegCoeffs(b, entered))
    return {};
  const double n = s.GetNCases(), df = n - p - 1.0;
  const double sigma2 = df > 0.0 ? a.GetElem(p, p) / df : 0.0;
  double intercept = s.GetMeans()[p], meanQuad = 0.0;
  for (int j = 0; j < p; ++j) {
    intercept -= b[j] * s.GetMeans()[j];
    for (int k = 0; k < p; ++k) meanQuad -= s.GetMeans()[j] * a.GetElem(j, k) * s.GetMeans()[k];
  }
  std::vector<Coefficient> out;
  auto add = [&](const std::string & name, double estimate, double variance) {
    Coefficient c{name, estimate, std::sqrt(variance), kMiss, kMiss};
    if (c.se > 0.0 && df > 0.0) {
      c.t = estimate / c.se;
      c.sig = 2.0 * ZRMath_920::ZRDistFun::SigT(std::fabs(c.t), df);
    }
    out.push_back(c);
  };
  add("intercept", intercept, sigma2 * (1.0 / n + meanQuad));
  for (int j = 0; j < p; ++j) add(names[j], b[j], -a.GetElem(j, j) * sigma2);
  return out;
}

XMLElement & AddChild(XMLElement & parent, const std::string & name) {
  std::unique_ptr<XMLElement> child(XMLElement::Create(name));
  parent.AddElement(child.get());
  return *child.release();
}

// Appends element, which an export handed over, to parent; false (element deleted) and a
// message when the export failed.
bool Adopt(XMLElement & parent, const ZRCommon_920::ZRStatus & status, XMLElement * element) {
  std::unique_ptr<XMLElement> owned(element);
  if (!status.IsOK() || owned == nullptr) {
    std::fprintf(stderr, "PMML export failed: code %d\n", static_cast<int>(status.GetErrorCode()));
    return false;
  }
  parent.AddElement(owned.release());
  return true;
}

// The model as a PMML 4.3 document: Header, DataDictionary and a RegressionModel with its
// MiningSchema, each field's statistics and the RegressionTable.
bool WritePmml(const std::string & path, const std::vector<std::string> & names,
               const std::vector<ZRContStats> & stats, const std::vector<Coefficient> & model) {
  const int nVars = static_cast<int>(names.size()) - 1;  // the weight's excepted
  xml::ZRVarList fields;
  for (int j = 0; j < nVars; ++j)
    fields.AddContVar(names[j], names[j],
                      j + 1 == nVars ? IZRVariable::kRoleTarget : IZRVariable::kRoleInput);
  fields.SetWeightVar(names[nVars], "frequency weight", IZRVariable::kRoundNearest);
  pmml::ZRPMMLExporter exporter(nullptr);
  std::unique_ptr<XMLElement> root(exporter.ExportPMMLElement());
  pmml::ZRApplicInfo4XML info;
  info.fName = "zr_mpi";
  info.fVersion = ZR_MPI_VERSION;
  XMLElement * element = nullptr;
  ZRCommon_920::ZRStatus status =
      exporter.ExportHeader(&info, "Weighted linear regression", true, element);
  if (!Adopt(*root, status, element)) return false;
  status = exporter.ExportDataDictionary(fields, {}, element);
  if (!Adopt(*root, status, element)) return false;
  XMLElement & regression = AddChild(*root, pmml::PMML_RegressionModel);
  regression.AddAttribute(pmml::PMML_functionName, pmml::PMML_regression);
  XMLElement & schema = AddChild(regression, pmml::PMML_MiningSchema);
  for (int j = 0; j <= nVars; ++j) {
    XMLElement & field = AddChild(schema, pmml::PMML_MiningField);
    field.AddAttribute(pmml::PMML_name, names[j]);
    if (j + 1 == nVars) field.AddAttribute(pmml::PMML_usageType, pmml::PMML_predicted);
    if (j == nVars) field.AddAttribute(pmml::PMML_usageType, pmml::PMML_frequencyWeight);
  }
  XMLElement & modelStats = AddChild(regression, pmml::PMML_ModelStats);
  for (int j = 0; j < nVars; ++j) {
    const xml::ZRUniStats uni(names[j], stats[j].GetSumFreq(), xml::ZRUniStats::SummStats(stats[j]),
                              {}, {});
    status = exporter.ExportUniStats(uni, element);
    if (!Adopt(modelStats, status, element)) return false;
  }
  XMLElement & table = AddChild(regression, pmml::PMML_RegressionTable);
  table.AddAttribute(pmml::PMML_intercept, model[0].estimate);
  for (std::size_t k = 1; k < model.size(); ++k) {
    XMLElement & predictor = AddChild(table, pmml::PMML_NumericPredictor);
    predictor.AddAttribute(pmml::PMML_name, model[k].name);
    predictor.AddAttribute(pmml::PMML_coefficient, model[k].estimate);
  }
  std::ofstream out(path, std::ios::binary);
  xml::WriteTreeUTF8(out, nullptr, root.get(), true);
  out.close();
  return static_cast<bool>(out);
}

// Rank 0's part once the summaries are gathered: unpack, join in rank order, fit, write the
// document unless pmmlPath is empty. With cases > 0, prints them over the seconds since
// start.
int Finish(const std::vector<double> & all, int size, int nVars,
           const std::vector<std::string> & used, const std::string & pmmlPath, double start,
           long long cases) {
  const int length = PackedSummary::Length(nVars) + nVars * PackedStats::kLength;
  ZRMeansXProdData total;
  std::vector<ZRContStats> stats(nVars);
  for (int r = 0; r < size; ++r) {
    const double * in = &all[static_cast<std::size_t>(r) * length];
    PackedSummary part(nVars);
    part.Unpack(in);
    if (part.GetNCases() <= 0.0) continue;  // a rank left without records
    if (!total.Merge(part)) return 1;
    in += PackedSummary::Length(nVars);
    for (int j = 0; j < nVars; ++j) {
      PackedStats s;
      s.Unpack(in + j * PackedStats::kLength);
      stats[j].Pool(s);
    }
  }
  const std::vector<Coefficient> model = Fit(total, used);
  const double seconds = MPI_Wtime() - start;
  if (model.empty()) {
    std::fprintf(stderr, "the fit failed\n");
    return 1;
  }
  std::printf("ranks %d, weighted cases %.17g\n", size, total.GetNCases());
  for (const Coefficient & c : model)
    std::printf("coefficient %s %.17g %.6g %.6g %.6g\n", c.name.c_str(), c.estimate, c.se, c.t,
                c.sig);
  if (cases > 0) std::printf("cases_per_second %.6g\n", static_cast<double>(cases) / seconds);
  if (!pmmlPath.empty() && !WritePmml(pmmlPath, used, stats, model)) {
    std::fprintf(stderr, "cannot write %s\n", pmmlPath.c_str());
    return 1;
  }
  return 0;
}

// Gathers every rank's summary and field summaries on rank 0, into all there.
std::vector<double> GatherSummaries(int rank, int size, const ZRMeansXProdData & summary,
                                    const std::vector<PackedStats> & stats) {
  const int nVars = static_cast<int>(stats.size());
  const int length = PackedSummary::Length(nVars) + nVars * PackedStats::kLength;
  std::vector<double> mine(length), all;
  PackedSummary(nVars).Pack(summary, mine.data());
  for (int k = 0; k < nVars; ++k)
    stats[k].Pack(&mine[PackedSummary::Length(nVars) + k * PackedStats::kLength]);
  if (rank == 0) all.resize(static_cast<std::size_t>(length) * size);
  MPI_Gather(mine.data(), length, MPI_DOUBLE, rank == 0 ? all.data() : nullptr, length, MPI_DOUBLE,
             0, MPI_COMM_WORLD);
  return all;
}

// A positive whole number from text; false for anything else.
bool ParseCount(const char * text, long long & value) {
  char * end = nullptr;
  value = std::strtoll(text, &end, 10);
  return *text != '\0' && *end == '\0' && value > 0;
}

// This rank's chunks of the generated data set, summarised, then joined and fitted on rank 0.
int RunGenerated(int rank, int size, const zr_examples::Shape & shape, const std::string & pmmlPath,
                 double start) {
  const int p = shape.predictors, nVars = p + 1;
  ZRMath_920::ZRRandomTwister source;
  ZRMath_920::ZRRectMatrix block(zr_examples::kChunkRows, shape.Columns(), true);
  std::vector<double> codes(zr_examples::kChunkRows);
  ZRMath_920::ZRMeansXProducts summary(nVars, true, true, false);
  std::vector<PackedStats> stats(nVars);
  bool ok = true;
  for (long long c = rank; c < shape.Chunks(); c += size) {
    const int rows = shape.Rows(c);
    zr_examples::GenerateChunk(shape, c, rows, source, block, codes);
    for (int r = 0; r < rows; ++r) {
      const double w = block.GetElem(r, p + 1);
      for (int k = 0; k < nVars; ++k) stats[k].Update(block.GetElem(r, k), w, 1.0);
    }
    ok = summary.Update(block, rows) && ok;
  }
  std::vector<std::string> used;
  for (int j = 1; j <= p; ++j) used.push_back("x" + std::to_string(j));
  used.push_back("y");
  used.push_back("weight");
  const std::vector<double> all = GatherSummaries(rank, size, summary, stats);
  int okAll = ok ? 1 : 0;
  MPI_Allreduce(MPI_IN_PLACE, &okAll, 1, MPI_INT, MPI_MIN, MPI_COMM_WORLD);
  if (rank != 0) return 0;
  if (okAll == 0) {
    std::fprintf(stderr, "a rank's summary failed\n");
    return 1;
  }
  return Finish(all, size, nVars, used, pmmlPath, start, shape.cases);
}

// The data set's stripe of this rank, summarised, then joined and fitted on rank 0. Returns
// 2 on every rank, having gathered nothing, when the arguments or the file are unusable.
int RunCsv(int rank, int size, int argc, char ** argv, double start) {
  std::vector<std::string> names;
  std::vector<std::vector<std::string>> records;
  if (argc != 3 || !ReadCsv(argv[1], names, records)) {
    if (rank == 0)
      std::fprintf(stderr,
                   "usage: mpirun -np N zr_mpi data.csv model.pmml\n"
                   "       mpirun -np N zr_mpi --generate cases predictors [model.pmml]\n");
    return 2;
  }
  // Every rank decides the columns from the whole file, so that all agree on them.
  const std::vector<int> columns = NumericColumns(names, records);
  const int nVars = static_cast<int>(columns.size()) - 1;
  std::vector<std::string> used;
  for (int c : columns) used.push_back(names[c]);

  // This rank's shard: its cases as a block, each field's summary beside.
  ZRMath_920::ZRRectMatrix block(0, nVars + 1, true);
  std::vector<PackedStats> stats(nVars);
  std::vector<double> x(nVars + 1);
  for (std::size_t r = static_cast<std::size_t>(rank); r < records.size();
       r += static_cast<std::size_t>(size)) {
    bool ok = true;
    for (int k = 0; k <= nVars; ++k) ok = ParseNumber(records[r][columns[k]], x[k]) && ok;
    if (!ok || !(x[nVars] > 0.0)) continue;
    const int row = block.AddRow() - 1;
    for (int k = 0; k <= nVars; ++k) block.SetElem(row, k, x[k]);
    for (int k = 0; k < nVars; ++k) stats[k].Update(x[k], x[nVars], 1.0);
  }
  ZRMath_920::ZRMeansXProducts summary(nVars, true, true, false);
  if (block.GetNRows() > 0) summary.Compute(block, 0);  // 0 rows would read as all rows

  const std::vector<double> all = GatherSummaries(rank, size, summary, stats);
  return rank == 0 ? Finish(all, size, nVars, used, argv[2], start, 0) : 0;
}

}  // namespace

int main(int argc, char ** argv) {
  MPI_Init(&argc, &argv);
  const double start = MPI_Wtime();
  int rank = 0, size = 1;
  MPI_Comm_rank(MPI_COMM_WORLD, &rank);
  MPI_Comm_size(MPI_COMM_WORLD, &size);
  int status = 0;
  if (argc >= 2 && std::string(argv[1]) == "--generate") {
    zr_examples::Shape shape{0, 0};
    long long predictors = 0;
    if ((argc != 4 && argc != 5) || !ParseCount(argv[2], shape.cases) ||
        !ParseCount(argv[3], predictors) || predictors < zr_examples::kIndicators + 1 ||
        predictors > 2000) {
      if (rank == 0)
        std::fprintf(stderr,
                     "usage: mpirun -np N zr_mpi --generate cases predictors [model.pmml]   "
                     "(predictors 4 to 2000)\n");
      MPI_Finalize();
      return 2;
    }
    shape.predictors = static_cast<int>(predictors);
    status = RunGenerated(rank, size, shape, argc == 5 ? argv[4] : "", start);
  } else {
    status = RunCsv(rank, size, argc, argv, start);
    if (status == 2) {
      MPI_Finalize();
      return 2;
    }
  }
  MPI_Bcast(&status, 1, MPI_INT, 0, MPI_COMM_WORLD);
  MPI_Finalize();
  return status;
}
