// zr_parallel end to end: threaded builds agree with the one-thread build, and the fit
// recovers the generating model.
#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "support/textio.h"

namespace {

struct ExampleRun {
  int exitCode = -1;  // -1 when it could not be run or did not exit
  std::string output;
};

ExampleRun RunParallel(const std::string & args) {
  const zrtest::ScratchFolder dir("zr_parallel");
  ExampleRun run;
  run.exitCode = zrtest::ShellExitCode(std::string("'") + ZR_PARALLEL_EXE + "' " + args + " >'" +
                                       (dir / "output.txt") + "' 2>&1");
  run.output = zrtest::ReadFile(dir / "output.txt");
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
