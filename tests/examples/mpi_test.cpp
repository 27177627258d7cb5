// zr_mpi end to end: one rank and several give the same coefficients, on the bundled data
// (the four-rank document valid PMML) and on generated data.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <regex>
#include <string>
#include <vector>

#include "support/textio.h"
#include "support/xmllint.h"

namespace {

#ifdef ZR_MPI_EXE

struct MpiRun {
  int exitCode = -1;  // -1 when it could not be run or did not exit
  std::string output, pmml;
  std::vector<double> coefficients;  // the intercept first, as printed
};

// zr_mpi on ranks processes with the arguments args, the document's path appended.
MpiRun RunRanks(int ranks, const std::string & args) {
  const zrtest::ScratchFolder dir("zr_mpi");
  MpiRun run;
  // mpirun refuses root unless told; the processes stay on this machine.
  run.exitCode = zrtest::ShellExitCode(
      std::string("'") + ZR_MPIEXEC + "' " + (geteuid() == 0 ? "--allow-run-as-root " : "") +
      "--oversubscribe -np " + std::to_string(ranks) + " '" + ZR_MPI_EXE + "' " + args + " '" +
      (dir / "model.pmml") + "' >'" + (dir / "output.txt") + "' 2>&1");
  run.output = zrtest::ReadFile(dir / "output.txt");
  run.pmml = zrtest::ReadFile(dir / "model.pmml");
  const std::regex line(R"(coefficient \S+ (\S+) )");
  for (std::sregex_iterator m(run.output.begin(), run.output.end(), line), end; m != end; ++m)
    run.coefficients.push_back(std::stod((*m)[1]));
  return run;
}

// ||b - want|| / ||want||; infinite when the lengths differ or nothing was printed.
double NormwiseDiff(const std::vector<double> & b, const std::vector<double> & want) {
  if (b.size() != want.size() || want.empty()) return INFINITY;
  double diff = 0.0, norm = 0.0;
  for (std::size_t k = 0; k < want.size(); ++k) {
    diff += std::pow(b[k] - want[k], 2);
    norm += std::pow(want[k], 2);
  }
  return std::sqrt(diff / norm);
}

TEST(ZRMpiExample, FourRanksFitAsOneAndWriteValidPmml) {
  const std::string csv = std::string("'") + ZR_DEMO_CSV + "'";
  const MpiRun one = RunRanks(1, csv), four = RunRanks(4, csv);
  ASSERT_EQ(one.exitCode, 0) << one.output;
  ASSERT_EQ(four.exitCode, 0) << four.output;
  // engine, weight and age: the numeric predictors of the bundled data set.
  ASSERT_EQ(one.coefficients.size(), 4u) << one.output;
  // Merging four shards reorders the sums: a few eps times the predictors' condition.
  EXPECT_LE(NormwiseDiff(four.coefficients, one.coefficients), 1e-12) << one.output << four.output;
  const zrtest::XmllintResult lint = zrtest::RunXmllint(
      four.pmml, std::string("--noout --nonet --schema '") + ZR_PMML_SCHEMA + "'");
  EXPECT_EQ(lint.exitCode, 0) << lint.output << "\n" << four.pmml;
}

// Five chunks of generated cases, split 3 + 2 over two ranks: the data set and the fit do
// not depend on how the chunks are shared, and the timing line is there.
TEST(ZRMpiExample, GeneratedDataFitOnTwoRanksAsOnOne) {
  const MpiRun one = RunRanks(1, "--generate 10000 6"), two = RunRanks(2, "--generate 10000 6");
  ASSERT_EQ(one.exitCode, 0) << one.output;
  ASSERT_EQ(two.exitCode, 0) << two.output;
  ASSERT_EQ(one.coefficients.size(), 7u) << one.output;
  EXPECT_LE(NormwiseDiff(two.coefficients, one.coefficients), 1e-12) << one.output << two.output;
  EXPECT_NE(two.output.find("cases_per_second "), std::string::npos) << two.output;
}

#else

constexpr char kNoMpi[] =
    "MPI was not found (or a sanitizer build): apt-get install libopenmpi-dev openmpi-bin";
TEST(ZRMpiExample, FourRanksFitAsOneAndWriteValidPmml) {
  GTEST_SKIP() << kNoMpi;
}
TEST(ZRMpiExample, GeneratedDataFitOnTwoRanksAsOnOne) {
  GTEST_SKIP() << kNoMpi;
}

#endif

}  // namespace
