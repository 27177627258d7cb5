// ZRTimeUtil: a stopwatch of processor time in milliseconds, for a procedure that wants
// to report how long its stages took.
#ifndef ZRCOMMON920R_COMMON_TIMEUTIL_H
#define ZRCOMMON920R_COMMON_TIMEUTIL_H

#include <string>

namespace ZRMath_920 {

// Reads clock() as milliseconds, clock() * 1000 / CLOCKS_PER_SEC formed in 64 bits and
// kept to 32: on POSIX systems this is the processor time of the process, not the wall
// clock, and the int wraps after 2^31 ms (about 24.8 days) of it. A clock() that is not
// available (-1) reads as 0. The sums wrap in the same 32 bits instead of overflowing.
class ZRTimeUtil {
 public:
  // Starts now, with nothing accumulated and no calls; the name is a label for Display.
  ZRTimeUtil();
  explicit ZRTimeUtil(const std::string & name);
  virtual ~ZRTimeUtil() = default;

  // Starts now and forgets the accumulated time and the calls; returns the start time.
  int Reset();
  // Starts now; returns the start time. The accumulated time and calls are kept.
  int Start();
  // Adds the time since the start to the accumulated time, counts one call and returns
  // the accumulated time. Intended: the start is not moved, so a second Accumulate without
  // a Start in between adds the time from the same start again.
  int Accumulate();
  // Subtracts ticks from the accumulated time and returns what is left.
  int Decrement(int ticks);
  // The accumulated milliseconds, the same in seconds, and the number of Accumulate calls.
  void GetTime(int & ticks, double & seconds, int & calls) const;

  // Prints the name, the accumulated milliseconds and the calls on the diagnostic stream
  // between "ZRTimeUtil display start " and "ZRTimeUtil display end" lines.
  void Display() const;

 private:
  std::string fsName;
  int fStart;
  int fAccumulated;
  int fCalls;
};

}  // namespace ZRMath_920

#endif  // ZRCOMMON920R_COMMON_TIMEUTIL_H
