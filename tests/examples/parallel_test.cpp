// The threaded model build end to end: zr_parallel on a small generated data set must
// agree with its one-thread build within its bound on 2 and 4 threads, and its fit must
// recover the coefficients the generator put in.
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

namespace {

struct ExampleRun {
  int exitCode = -1;  // -1 when it could not be run or did not exit
  std::string output;
};

ExampleRun RunParallel(const std::string & args) {
  ExampleRun run;
  char path[] = "/tmp/zr_parallel_XXXXXX";
  const int fd = mkstemp(path);
  if (fd < 0) return run;
  close(fd);
  const std::string command =
      std::string("'") + ZR_PARALLEL_EXE + "' " + args + " >'" + path + "' 2>&1";
  const int status = std::system(command.c_str());
  if (status != -1 && WIFEXITED(status)) run.exitCode = WEXITSTATUS(status);
  std::ifstream in(path);
  std::ostringstream text;
  text << in.rdbuf();
  run.output = text.str();
  unlink(path);
  return run;
}

TEST(ZRParallelExample, ThreadedBuildsMatchOneThread) {
  // 50000 cases: 25 chunks, so 4 workers get unequal shares.
  const ExampleRun run = RunParallel("50000 12");
  ASSERT_EQ(run.exitCode, 0) << run.output;
  const std::regex line(R"(T=(\d): largest difference (\S+) )");
  int builds = 0;
  for (std::sregex_iterator m(run.output.begin(), run.output.end(), line), end; m != end; ++m) {
    SCOPED_TRACE(m->str());
    EXPECT_LE(std::stod((*m)[2]), 1e-12);  // the bound a merged build promises
    ++builds;
  }
  EXPECT_EQ(builds, 2) << run.output;
}

TEST(ZRParallelExample, FitRecoversTheGeneratingModel) {
  // The generator adds 0.75 per category step and 0.5 per unit of predictor 3, with
  // uniform noise of sd 0.29: over 200000 weighted cases the standard errors are below
  // 0.003, so 0.02 is more than 6 of them.
  const ExampleRun run = RunParallel("200000 8");
  ASSERT_EQ(run.exitCode, 0) << run.output;
  std::smatch m;
  const std::regex slopes(R"(first slopes (\S+) (\S+) (\S+) (\S+))");
  ASSERT_TRUE(std::regex_search(run.output, m, slopes)) << run.output;
  const double want[] = {0.75, 1.5, 2.25, 0.5};
  for (int k = 0; k < 4; ++k) EXPECT_NEAR(std::stod(m[k + 1]), want[k], 0.02) << k;
  EXPECT_NE(run.output.find("T=4: "), std::string::npos);
}

TEST(ZRParallelExample, RefusesBadArguments) {
  for (const char * args : {"0", "100 3", "x", "10 10 10"}) {
    SCOPED_TRACE(args);
    EXPECT_EQ(RunParallel(args).exitCode, 2);
  }
}

}  // namespace
