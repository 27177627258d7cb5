// The watching thread of Watchdog, and the abort handler that names the running case.
#include "support/watchdog.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace zrtest {

namespace {

// The running case's name, kept where the abort handler can read it without locking.
char gCase[1024] = "";

extern "C" void NameCaseOnAbort(int sig) {
  std::fprintf(stderr, "abort in case: %s\n", gCase);
  std::fflush(stderr);
  std::signal(sig, SIG_DFL);
  std::raise(sig);
}

}  // namespace

Watchdog::Watchdog(std::chrono::seconds limit)
    : fLimit(limit),
      fPrevAbort(std::signal(SIGABRT, NameCaseOnAbort)),
      fThread([this] { Watch(); }) {}

Watchdog::~Watchdog() {
  {
    std::lock_guard<std::mutex> lock(fMutex);
    fbStop = true;
  }
  fWake.notify_one();
  fThread.join();
  std::signal(SIGABRT, fPrevAbort);
  gCase[0] = '\0';
}

void Watchdog::Run(const std::string & name, const std::function<void()> & body) {
  {
    std::lock_guard<std::mutex> lock(fMutex);
    fsCase = name;
    std::snprintf(gCase, sizeof gCase, "%s", name.c_str());
    fStart = std::chrono::steady_clock::now();
    fbBusy = true;
  }
  body();
  std::lock_guard<std::mutex> lock(fMutex);
  fbBusy = false;
}

void Watchdog::Watch() {
  std::unique_lock<std::mutex> lock(fMutex);
  while (!fbStop) {
    fWake.wait_for(lock, std::chrono::seconds(1));
    if (fbBusy && std::chrono::steady_clock::now() - fStart > fLimit) {
      std::fprintf(stderr, "hang: %s (still running after %lld s)\n", fsCase.c_str(),
                   static_cast<long long>(fLimit.count()));
      std::fflush(stderr);
      std::_Exit(1);
    }
  }
}

}  // namespace zrtest
