// A watchdog for tests that must not hang: each case runs under a time limit, and a case
// that passes it ends the process with a failure status after naming itself on stderr.
#ifndef ZRCOMMON920R_TESTS_SUPPORT_WATCHDOG_H
#define ZRCOMMON920R_TESTS_SUPPORT_WATCHDOG_H

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace zrtest {

class Watchdog {
 public:
  // The limit is per case; the watching thread looks once a second. While the object
  // lives, an abort (a sanitizer's report, a failed heap check) names the running case too;
  // a heap check, firing late, may name a case after the one that did the damage.
  explicit Watchdog(std::chrono::seconds limit);
  ~Watchdog();
  Watchdog(const Watchdog &) = delete;
  Watchdog & operator=(const Watchdog &) = delete;

  // Runs body once. If it is still running after the limit, "hang: <name>" goes to stderr
  // and the process ends at once with exit status 1 (a hung call cannot be unwound).
  void Run(const std::string & name, const std::function<void()> & body);

 private:
  void Watch();

  std::chrono::seconds fLimit;
  std::mutex fMutex;
  std::condition_variable fWake;
  std::string fsCase;
  std::chrono::steady_clock::time_point fStart;
  bool fbBusy = false;
  bool fbStop = false;
  void (*fPrevAbort)(int);
  std::thread fThread;
};

}  // namespace zrtest

#endif  // ZRCOMMON920R_TESTS_SUPPORT_WATCHDOG_H
