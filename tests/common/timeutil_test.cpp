// ZRTimeUtil against clock() read here in milliseconds: the start, the accumulated time and
// its quirk, 32-bit wrapping, and the display.
#include "zrcommon920r/common/timeutil.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <ctime>

#include "support/textio.h"

namespace {

using ZRMath_920::ZRTimeUtil;

// Processor time in whole milliseconds, in floating point (the library uses integers).
long long NowMs() {
  return std::llround(std::floor(std::clock() * 1000.0 / CLOCKS_PER_SEC));
}

// Spends processor time until the clock reads at least until.
void BurnUntil(long long until) {
  volatile double sink = 0.0;
  while (NowMs() < until)
    for (int i = 0; i < 10000; ++i) sink = sink + 1e-9 * i;
}

TEST(ZRTimeUtil, FollowsClockInMilliseconds) {
  ZRTimeUtil watch("stage");
  const long long before = NowMs();
  const int start = watch.Start();
  EXPECT_LE(before, start);
  EXPECT_LE(start, NowMs());
  BurnUntil(start + 30);
  const int first = watch.Accumulate();
  const long long after = NowMs();
  EXPECT_GE(first, 30);
  EXPECT_LE(first, after - before);
  // Intended: the start stays, so the second call adds the whole time since it again.
  BurnUntil(after + 30);
  const int second = watch.Accumulate();
  EXPECT_GE(second, 2 * first + 30);
  EXPECT_LE(second, first + (NowMs() - before));
  int ticks = 0, calls = 0;
  double seconds = 0.0;
  watch.GetTime(ticks, seconds, calls);
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(seconds, second / 1000.0);
}

TEST(ZRTimeUtil, DecrementWrapsIn32BitsAndDisplays) {
  ZRTimeUtil watch("fit stage");
  watch.Reset();
  struct {
    int line, ticks, want;
  } const steps[] = {{__LINE__, -1500, 1500},          {__LINE__, 1500, 0},
                     {__LINE__, INT_MIN, INT_MIN},  // 0 + 2^31 wraps
                     {__LINE__, 1, INT_MAX},           {__LINE__, -1, INT_MIN},
                     {__LINE__, -1500 - INT_MIN, 1500}};
  for (const auto & s : steps) {
    SCOPED_TRACE(s.line);
    EXPECT_EQ(watch.Decrement(s.ticks), s.want);
  }
  int ticks = 0, calls = -1;
  double seconds = 0.0;
  watch.GetTime(ticks, seconds, calls);
  EXPECT_EQ(seconds, 1.5);
  EXPECT_EQ(calls, 0);
  EXPECT_EQ(zrtest::Shown(watch),
            "\nZRTimeUtil display start \nfit stage\nAccumulated int milliseconds = 1500"
            "\nNumber of calls = 0\nZRTimeUtil display end");
}

}  // namespace
