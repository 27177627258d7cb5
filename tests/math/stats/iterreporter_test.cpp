// The iteration reporter read through the progress interfaces: names matched exactly, the
// two SetInfo forms leaving what they do not set, Reset, copies sharing the estimator's
// vectors, and the display text.
#include "zrcommon920r/math/stats/iterreporter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/capture.h"
#include "zrcommon920r/common/numconst.h"

namespace {

using ZRCommon_920::ProgressReport;
using ZRCommon_920::ProgressReportVect;
using ZRMath_920::ZRIterationReporter;
constexpr double kMiss = ZRCommon_920::kSysMisValue;

TEST(ZRIterationReporter, NamesMatchExactly) {
  ZRIterationReporter rep;
  const std::vector<double> a = {1.0}, b = {2.0}, c = {3.0};
  rep.SetInfo(&a, &b, &c, 4, 12.5, 0.25);
  ProgressReportVect & v = rep;
  ProgressReport & p = rep;
  EXPECT_EQ(p.DiscreteMeasure("iterNum"), 4);
  EXPECT_EQ(p.ScaleMeasure("loglik"), 12.5);
  EXPECT_EQ(p.ScaleMeasure("time"), 0.25);
  EXPECT_EQ(v.VectorMeasure("paramEstim"), &a);
  EXPECT_EQ(v.VectorMeasure("paramEstim2"), &b);
  EXPECT_EQ(v.VectorMeasure("paramEstim3"), &c);
  // Case, blanks, prefixes, a trailing NUL byte and the other kinds' names all miss.
  for (const std::string & name :
       {std::string("IterNum"), std::string("iterNum "), std::string("iter"),
        std::string("iterNum\0", 8), std::string("time\0", 5), std::string("paramEstim2\0", 12),
        std::string("paramEstim1"), std::string("loglik"), std::string("time"),
        std::string("paramEstim")}) {
    SCOPED_TRACE(name);
    if (name != "loglik" && name != "time") {
      EXPECT_EQ(p.ScaleMeasure(name), kMiss);
    }
    if (name != "paramEstim") {
      EXPECT_EQ(v.VectorMeasure(name), nullptr);
    }
    EXPECT_EQ(p.DiscreteMeasure(name), -1);
  }
}

TEST(ZRIterationReporter, SetInfoFormsKeepWhatTheyDoNotSet) {
  ZRIterationReporter rep;
  ProgressReportVect & v = rep;
  EXPECT_EQ(v.DiscreteMeasure("iterNum"), 0);
  EXPECT_EQ(v.VectorMeasure("paramEstim"), nullptr);

  const std::vector<double> a = {1.0}, b = {2.0}, c = {3.0}, d = {4.0};
  rep.SetInfo(&a, 1, 3, 10.0, 0.5);
  rep.SetInfo(&b, &c, &d, 2, 9.0, 1.0);
  EXPECT_EQ(v.DiscreteMeasure("stepHalving"), 3);  // the six-argument form leaves it
  EXPECT_EQ(v.DiscreteMeasure("iterNum"), 2);
  rep.SetInfo(&a, 3, 0, 8.0, 1.5);
  EXPECT_EQ(v.VectorMeasure("paramEstim"), &a);
  EXPECT_EQ(v.VectorMeasure("paramEstim2"), &c);  // the five-argument form leaves these
  EXPECT_EQ(v.VectorMeasure("paramEstim3"), &d);
  EXPECT_EQ(v.DiscreteMeasure("stepHalving"), 0);

  // Copies share the estimator's vectors and see later changes to them.
  std::vector<double> live = {0.5};
  rep.SetInfo(&live, 4, 1, 7.0, 2.0);
  ZRIterationReporter copy(rep), assigned;
  assigned = rep;
  live[0] = -0.5;
  for (ProgressReportVect * r :
       {static_cast<ProgressReportVect *>(&copy), static_cast<ProgressReportVect *>(&assigned)}) {
    ASSERT_EQ(r->VectorMeasure("paramEstim"), &live);
    EXPECT_EQ((*r->VectorMeasure("paramEstim"))[0], -0.5);
    EXPECT_EQ(r->DiscreteMeasure("stepHalving"), 1);
    EXPECT_EQ(r->VectorMeasure("paramEstim3"), &d);
  }

  rep.Reset();
  for (const char * name : {"paramEstim", "paramEstim2", "paramEstim3"})
    EXPECT_EQ(v.VectorMeasure(name), nullptr) << name;
  EXPECT_EQ(v.DiscreteMeasure("iterNum"), 0);
  EXPECT_EQ(v.DiscreteMeasure("stepHalving"), 0);
  EXPECT_EQ(v.ScaleMeasure("loglik"), 0.0);
  EXPECT_EQ(v.ScaleMeasure("time"), 0.0);
  EXPECT_EQ(copy.DiscreteMeasure("iterNum"), 4) << "a copy keeps its own fields";
}

TEST(ZRIterationReporter, Display) {
  ZRIterationReporter rep;
  {
    zrtest::DisplayCapture out;
    rep.Display();
    EXPECT_EQ(out.Text(),
              "\nZRIterationReporter display start\nIteration number = 0\n"
              "Number of step halving = 0\nPseudo -2 log-likelihood = 0\n"
              "Elapsed time in sec = 0\nParameter estimates pointer is 0\n"
              "ZRIterationReporter display end");
  }
  const std::vector<double> a = {1.5, -2.0}, c = {kMiss};
  rep.SetInfo(&a, nullptr, &c, 7, 123.25, 0.5);
  zrtest::DisplayCapture out;
  rep.Display();
  EXPECT_EQ(out.Text(),
            "\nZRIterationReporter display start\nIteration number = 7\n"
            "Number of step halving = 0\nPseudo -2 log-likelihood = 123.25\n"
            "Elapsed time in sec = 0.5\nParameter estimates (size = 2)\n  1.5 -2\n"
            "Parameter estimates, third vector (size = 1)\n  miss\n"
            "ZRIterationReporter display end");
}

}  // namespace
