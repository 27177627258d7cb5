// The processor-time stopwatch.
#include "zrcommon920r/common/timeutil.h"

#include <cstdint>
#include <ctime>

#include "zrcommon920r/display/display.h"

namespace ZRMath_920 {

namespace {

// v reduced modulo 2^32 into int's range, without relying on a narrowing conversion.
int Wrap32(std::int64_t v) {
  const std::int64_t low = static_cast<std::int64_t>(static_cast<std::uint32_t>(v));
  return static_cast<int>(low >= 0x80000000LL ? low - 0x100000000LL : low);
}

// clock() in milliseconds, whatever CLOCKS_PER_SEC is. Whole seconds and the remainder
// are scaled apart, so the 64-bit product cannot overflow for any clock_t value.
int ClockMs() {
  const std::clock_t now = std::clock();
  if (now == static_cast<std::clock_t>(-1)) return 0;
  const std::int64_t ticks = static_cast<std::int64_t>(now);
  const std::int64_t perSec = static_cast<std::int64_t>(CLOCKS_PER_SEC);
  return Wrap32(ticks / perSec * 1000 + ticks % perSec * 1000 / perSec);
}

}  // namespace

ZRTimeUtil::ZRTimeUtil() : ZRTimeUtil(std::string()) {}

ZRTimeUtil::ZRTimeUtil(const std::string & name)
    : fsName(name), fStart(ClockMs()), fAccumulated(0), fCalls(0) {}

int ZRTimeUtil::Reset() {
  fStart = ClockMs();
  fAccumulated = 0;
  fCalls = 0;
  return fStart;
}

int ZRTimeUtil::Start() {
  fStart = ClockMs();
  return fStart;
}

int ZRTimeUtil::Accumulate() {
  // Intended: fStart stays where it is.
  fAccumulated = Wrap32(static_cast<std::int64_t>(fAccumulated) + ClockMs() - fStart);
  fCalls = Wrap32(static_cast<std::int64_t>(fCalls) + 1);
  return fAccumulated;
}

int ZRTimeUtil::Decrement(int ticks) {
  fAccumulated = Wrap32(static_cast<std::int64_t>(fAccumulated) - ticks);
  return fAccumulated;
}

void ZRTimeUtil::GetTime(int & ticks, double & seconds, int & calls) const {
  ticks = fAccumulated;
  seconds = fAccumulated / 1000.0;
  calls = fCalls;
}

void ZRTimeUtil::Display() const {
  ZRDisplay_920::DisplayText(1, "ZRTimeUtil display start ");
  ZRDisplay_920::DisplayText(1, fsName);
  ZRDisplay_920::DisplayI("Accumulated int milliseconds", fAccumulated);
  ZRDisplay_920::DisplayI("Number of calls", fCalls);
  ZRDisplay_920::DisplayText(1, "ZRTimeUtil display end");
}

}  // namespace ZRMath_920
