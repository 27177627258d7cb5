// The model build over MPI processes end to end: zr_mpi on the bundled data set with one
// rank and with four (on this machine, over loopback) must give the same coefficients, and
// the four-rank document must be valid PMML 4.3.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "support/xmllint.h"

namespace {

#ifdef ZR_MPI_EXE

std::string ReadFile(const std::string & path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

struct MpiRun {
  int exitCode = -1;  // -1 when it could not be run or did not exit
  std::string output, pmml;
  std::vector<double> coefficients;  // the intercept first, as printed
};

MpiRun RunRanks(int ranks) {
  MpiRun run;
  char dir[] = "/tmp/zr_mpi_XXXXXX";
  if (mkdtemp(dir) == nullptr) return run;
  const std::string pmmlPath = std::string(dir) + "/model.pmml";
  const std::string outPath = std::string(dir) + "/output.txt";
  // mpirun refuses root unless told; the processes stay on this machine.
  const std::string command = std::string("'") + ZR_MPIEXEC + "' " +
                              (geteuid() == 0 ? "--allow-run-as-root " : "") +
                              "--oversubscribe -np " + std::to_string(ranks) + " '" + ZR_MPI_EXE +
                              "' '" + ZR_DEMO_CSV + "' '" + pmmlPath + "' >'" + outPath + "' 2>&1";
  const int status = std::system(command.c_str());
  if (status != -1 && WIFEXITED(status)) run.exitCode = WEXITSTATUS(status);
  run.output = ReadFile(outPath);
  run.pmml = ReadFile(pmmlPath);
  const std::regex line(R"(coefficient \S+ (\S+) )");
  for (std::sregex_iterator m(run.output.begin(), run.output.end(), line), end; m != end; ++m)
    run.coefficients.push_back(std::stod((*m)[1]));
  unlink(pmmlPath.c_str());
  unlink(outPath.c_str());
  rmdir(dir);
  return run;
}

TEST(ZRMpiExample, FourRanksFitAsOneAndWriteValidPmml) {
  const MpiRun one = RunRanks(1), four = RunRanks(4);
  ASSERT_EQ(one.exitCode, 0) << one.output;
  ASSERT_EQ(four.exitCode, 0) << four.output;
  // engine, weight and age: the numeric predictors of the bundled data set.
  ASSERT_EQ(one.coefficients.size(), 4u) << one.output;
  ASSERT_EQ(four.coefficients.size(), one.coefficients.size()) << four.output;
  double diff = 0.0, norm = 0.0;
  for (std::size_t k = 0; k < one.coefficients.size(); ++k) {
    diff += std::pow(four.coefficients[k] - one.coefficients[k], 2);
    norm += std::pow(one.coefficients[k], 2);
  }
  // Merging four shards reorders the sums: a few eps times the predictors' condition.
  EXPECT_LE(std::sqrt(diff / norm), 1e-12) << one.output << four.output;
  const zrtest::XmllintResult lint = zrtest::RunXmllint(
      four.pmml, std::string("--noout --nonet --schema '") + ZR_PMML_SCHEMA + "'");
  EXPECT_EQ(lint.exitCode, 0) << lint.output << "\n" << four.pmml;
}

#else

TEST(ZRMpiExample, FourRanksFitAsOneAndWriteValidPmml) {
  GTEST_SKIP() << "MPI was not found (or a sanitizer build): apt-get install libopenmpi-dev "
                  "openmpi-bin";
}

#endif

}  // namespace
