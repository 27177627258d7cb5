// Locales for tests: a comma-decimal or single-byte codeset locale is built with localedef
// into the build tree on first use, so such cases run on any machine with the locale sources.
#ifndef ZRCOMMON920R_TESTS_SUPPORT_LOCALES_H
#define ZRCOMMON920R_TESTS_SUPPORT_LOCALES_H

#include <string>

namespace zrtest {

// The line that installs the locale sources; a test skips with it when they are missing.
inline constexpr char kLocalesAptLine[] = "apt-get install locales";

// Sets the process locale, as setlocale(LC_ALL, name), while the object lives, and "C" again
// when it ends. "C" and "POSIX" are set directly; a name the system has is used as it is;
// any other "<source>.<charmap>" ("de_DE.CP1252") is built by localedef from the system's
// locale sources into a directory of the build tree, once for all runs, and loaded from there.
// ok() is false, the locale unchanged, when it cannot be set: why() then holds the reason,
// kLocalesAptLine among it when the locale sources or localedef are missing. Any other
// failure (a name the sources lack, localedef making nothing, setlocale refusing what it
// made) also fails the running test.
//
//   zrtest::ScopedLocale comma("de_DE.UTF-8");
//   if (!comma.ok()) GTEST_SKIP() << comma.why();
class ScopedLocale {
 public:
  explicit ScopedLocale(const std::string & name);
  ~ScopedLocale();
  ScopedLocale(const ScopedLocale &) = delete;
  ScopedLocale & operator=(const ScopedLocale &) = delete;

  bool ok() const { return fbOk; }
  const std::string & why() const { return fsWhy; }

 private:
  bool fbOk = false;
  std::string fsWhy;
};

}  // namespace zrtest

#endif  // ZRCOMMON920R_TESTS_SUPPORT_LOCALES_H
