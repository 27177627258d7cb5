// Builds and sets the test locales of locales.h. localedef writes into a directory of its
// own per process and the result is renamed into place, so test processes that ctest runs
// side by side may race for the same locale and all end up loading one complete copy.
#include "support/locales.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>
#include <vector>

extern char ** environ;

namespace zrtest {

namespace {

namespace fs = std::filesystem;

// Where the built locales live: a directory of the build tree (tests/CMakeLists.txt).
const char * const kLocaleDir = ZR_TEST_LOCALE_DIR;
// Where localedef finds its sources by default (Debian package locales).
const char * const kI18nDir = "/usr/share/i18n";

bool IsBuilt(const fs::path & localeDir) {
  std::error_code ec;
  return fs::exists(localeDir / "LC_CTYPE", ec);
}

// Whether the locale sources are installed at all; a name they lack is a test's error.
bool HaveSourceTree() {
  std::error_code ec;
  const fs::path root(kI18nDir);
  return fs::is_directory(root / "locales", ec) && fs::is_directory(root / "charmaps", ec);
}

bool HaveSources(const std::string & source, const std::string & charmap) {
  std::error_code ec;
  const fs::path root(kI18nDir);
  return fs::exists(root / "locales" / source, ec) &&
         (fs::exists(root / "charmaps" / charmap, ec) ||
          fs::exists(root / "charmaps" / (charmap + ".gz"), ec));
}

std::string ReadFile(const fs::path & path) {
  std::ifstream in(path);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// Runs "localedef -c -i source -f charmap out" with its output in log. Returns the spawn
// error (0 when it started) and the exit status in status. -c makes localedef write its
// output even after warnings; whether a locale came out is judged by the files.
int RunLocaledef(const std::string & source, const std::string & charmap, const fs::path & out,
                 const fs::path & log, int & status) {
  std::vector<std::string> args = {"localedef", "-c", "-i", source, "-f", charmap, out.string()};
  std::vector<char *> argv;
  for (std::string & arg : args) argv.push_back(&arg[0]);
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  posix_spawn_file_actions_adddup2(&actions, 1, 2);
  pid_t pid = 0;
  const int err = posix_spawnp(&pid, "localedef", &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (err != 0) return err;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  return 0;
}

// Builds locale name into dir/name unless another process does so first. False, with the
// reason in why (and missing set when localedef cannot be started), when no locale results.
bool Build(const fs::path & dir, const std::string & name, const std::string & source,
           const std::string & charmap, std::string & why, bool & missing) {
  std::error_code ec;
  const fs::path work = dir / (".build-" + std::to_string(getpid()));
  fs::remove_all(work, ec);
  fs::create_directories(work, ec);
  if (ec) {
    why = "cannot make " + work.string() + ": " + ec.message();
    return false;
  }
  int status = 0;
  const int err = RunLocaledef(source, charmap, work / name, work / "localedef.log", status);
  if (err != 0) {
    missing = err == ENOENT;
    why = "localedef does not start (" + std::string(std::strerror(err)) + ")" +
          (missing ? std::string(": ") + kLocalesAptLine : std::string());
  } else if (!IsBuilt(work / name)) {
    why = "localedef -i " + source + " -f " + charmap + " made no locale (status " +
          std::to_string(status) + "):\n" + ReadFile(work / "localedef.log");
  } else {
    fs::rename(work / name, dir / name, ec);  // fails when another process got there first
    if (!IsBuilt(dir / name)) why = "cannot move the locale to " + (dir / name).string();
  }
  fs::remove_all(work, ec);
  return IsBuilt(dir / name);
}

// setlocale(LC_ALL, name) with LOCPATH pointing at dir for the one call: glibc reads the
// locale files then, and other tests keep the system's locales.
bool SetFromDir(const fs::path & dir, const std::string & name) {
  const char * old = std::getenv("LOCPATH");
  const bool hadOld = old != nullptr;
  const std::string saved = hadOld ? old : "";
  setenv("LOCPATH", dir.c_str(), 1);
  const bool ok = std::setlocale(LC_ALL, name.c_str()) != nullptr;
  if (hadOld) {
    setenv("LOCPATH", saved.c_str(), 1);
  } else {
    unsetenv("LOCPATH");
  }
  return ok;
}

}  // namespace

ScopedLocale::ScopedLocale(const std::string & name) {
  if (std::setlocale(LC_ALL, name.c_str()) != nullptr) {
    fbOk = true;
    return;
  }
  const std::size_t dot = name.find('.');
  if (dot == std::string::npos || dot == 0 || dot + 1 == name.size() ||
      name.find('/') != std::string::npos) {
    fsWhy = "not a <source>.<charmap> locale name: \"" + name + "\"";
    ADD_FAILURE() << fsWhy;
    return;
  }
  const std::string source = name.substr(0, dot);
  const std::string charmap = name.substr(dot + 1);
  const fs::path dir(kLocaleDir);
  if (!IsBuilt(dir / name)) {
    if (!HaveSourceTree()) {
      fsWhy = name + " needs the locale sources: " + kLocalesAptLine;
      return;
    }
    if (!HaveSources(source, charmap)) {
      fsWhy = "no locale source " + source + " or charmap " + charmap + " in " + kI18nDir;
      ADD_FAILURE() << fsWhy;
      return;
    }
    bool missing = false;
    if (!Build(dir, name, source, charmap, fsWhy, missing)) {
      if (!missing) ADD_FAILURE() << fsWhy;
      return;
    }
  }
  if (!SetFromDir(dir, name)) {
    fsWhy = "setlocale refuses the locale built in " + (dir / name).string();
    ADD_FAILURE() << fsWhy;
    return;
  }
  fbOk = true;
}

ScopedLocale::~ScopedLocale() {
  std::setlocale(LC_ALL, "C");
}

}  // namespace zrtest
