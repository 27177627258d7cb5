// ZRCancelInfo against a scripted ZRQueryCancel (the latch, the calls made, ownership),
// and a caller's ProgressReportVect read through ProgressReport &.
#include "zrcommon920r/common/cancel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "zrcommon920r/common/progress.h"

namespace {

// Answers from two scripts of 'T' and 'F', the last repeated; counts the questions and its
// own destruction.
class ScriptedCancel : public ZRCommon_920::ZRQueryCancel {
 public:
  ScriptedCancel(const char * requested, const char * pending, int & destroyed)
      : fRequested(requested), fPending(pending), fDestroyed(destroyed) {}
  ~ScriptedCancel() override { ++fDestroyed; }
  bool IsCancelRequested() override { return Next(fRequested, nRequested); }
  bool IsCancelPending() override { return Next(fPending, nPending); }
  int nRequested = 0, nPending = 0;

 private:
  static bool Next(const std::string & script, int & calls) {
    const std::size_t at = std::min<std::size_t>(calls++, script.size() - 1);
    return script[at] == 'T';
  }
  std::string fRequested, fPending;
  int & fDestroyed;
};

TEST(ZRCancelInfo, ScriptedAnswersLatchAndCountCalls) {
  // ops: 'I' IsCancel, 'W' WillCancel (answers T or F), 'S' SetCancel(), 'C' SetCancel(false).
  struct {
    int line;
    const char *requested, *pending, *ops, *want;  // a null requested: no pointer
    int nRequested, nPending;
  } const cases[] = {
      {__LINE__, "FTFF", "F", "IIII", "FTTT", 2, 0},  // latched: not asked again
      {__LINE__, "F", "TF", "WWI", "TFF", 1, 2},      // WillCancel never latches
      {__LINE__, "T", "F", "IW", "TT", 1, 0},         // latched: WillCancel asks nothing
      {__LINE__, "T", "F", "SIW", "-TT", 0, 0},
      {__LINE__, "TF", "F", "IICI", "TT-F", 2, 0},  // cleared: asked again
      {__LINE__, nullptr, nullptr, "IWSIWCI", "FF-TT-F", 0, 0},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    int destroyed = 0;
    ScriptedCancel query(c.requested ? c.requested : "T", c.pending ? c.pending : "T", destroyed);
    {
      ZRMath_920::ZRCancelInfo info(c.requested ? &query : nullptr);
      std::string got;
      for (const char op : std::string(c.ops)) {
        if (op == 'I') got += info.IsCancel() ? 'T' : 'F';
        if (op == 'W') got += info.WillCancel() ? 'T' : 'F';
        if (op == 'S' || op == 'C') {
          info.SetCancel(op == 'S');
          got += '-';
        }
      }
      EXPECT_EQ(got, c.want);
    }
    EXPECT_EQ(query.nRequested, c.nRequested);
    EXPECT_EQ(query.nPending, c.nPending);
    EXPECT_EQ(destroyed, 0);  // the object stays the caller's
  }
}

class CallerProgress : public ZRCommon_920::ProgressReportVect {
 public:
  int DiscreteMeasure(const std::string &) override { return 7; }
  double ScaleMeasure(const std::string &) override { return -12.5; }
  const std::vector<double> * VectorMeasure(const std::string &) override { return &fParams; }
  std::vector<double> fParams{1.5, -2.0};
};

TEST(ProgressReportVect, ReadThroughTheBaseInterface) {
  CallerProgress progress;
  ZRCommon_920::ProgressReport & report = progress;
  EXPECT_EQ(report.DiscreteMeasure("iterNum") + report.ScaleMeasure("loglik"), 7 - 12.5);
  auto & vect = dynamic_cast<ZRCommon_920::ProgressReportVect &>(report);  // throws if not
  EXPECT_EQ(vect.VectorMeasure("paramEstim")->at(1), -2.0);
}

}  // namespace
