// WriteUTF: bytes of the C, CP1252 and UTF-8 codesets against UTF-8 written out by hand,
// rejected bytes included, and each thread reading its own LC_CTYPE.
#include <gtest/gtest.h>

#include <locale.h>
#include <clocale>
#include <set>
#include <sstream>
#include <string>
#include <thread>

#include "support/locales.h"
#include "zrcommon920r/xml/core/xmltree.h"

namespace {

using ZRXML_920::WriteUTF;

std::string Utf8(const std::string & text) {
  std::ostringstream out;
  WriteUTF(out, text);
  return out.str();
}

#define R "\xEF\xBF\xBD"  // U+FFFD, for each rejected byte

TEST(WriteUTF, EachCodesetByHand) {
  const std::string nul(1, '\0');
  const std::string euros(700, '\x80');
  std::string euroText;
  for (int i = 0; i < 700; ++i) euroText += "\xE2\x82\xAC";  // three bytes out for one in
  struct {
    int line;
    const char * locale;
    std::string in, want;
  } const cases[] = {
      {__LINE__, "C", "a" + nul + "\xE9\x80\xFF", "a" + nul + "\xC3\xA9\xC2\x80\xC3\xBF"},
      {__LINE__, "de_DE.CP1252", nul + "\x80\x9F\xE9", nul + "\xE2\x82\xAC\xC5\xB8\xC3\xA9"},
      {__LINE__, "de_DE.CP1252", "\x81\x8D\x8F\x90\x9Dz", R R R R R "z"},  // unassigned
      {__LINE__, "de_DE.CP1252", euros, euroText},
      {__LINE__, "de_DE.UTF-8", "\xC3\xA9\xF0\x9F\x98\x80\xEF\xBF\xBE",  // U+FFFE is kept
       "\xC3\xA9\xF0\x9F\x98\x80\xEF\xBF\xBE"},
      {__LINE__, "de_DE.UTF-8", "\xC3", R},
      {__LINE__, "de_DE.UTF-8", "\xE2\x82!", R R "!"}};  // cut off: each byte on its own
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    zrtest::ScopedLocale scoped(c.locale);
    if (!scoped.ok()) GTEST_SKIP() << scoped.why();
    EXPECT_EQ(Utf8(c.in), c.want);
  }
}

TEST(WriteUTF, EachThreadReadsItsOwnLocale) {
  zrtest::ScopedLocale cp1252("de_DE.CP1252");
  if (!cp1252.ok()) GTEST_SKIP() << cp1252.why();
  const locale_t c = newlocale(LC_ALL_MASK, "C", nullptr);
  ASSERT_NE(c, nullptr);
  const auto run = [](locale_t locale, std::set<std::string> & seen) {
    uselocale(locale);
    for (int i = 0; i < 2000; ++i) seen.insert(Utf8("\x80"));
  };
  std::set<std::string> inC, inGlobal;
  std::thread a(run, c, std::ref(inC));
  std::thread b(run, LC_GLOBAL_LOCALE, std::ref(inGlobal));
  a.join();
  b.join();
  freelocale(c);
  EXPECT_EQ(inC, std::set<std::string>{"\xC2\x80"});
  EXPECT_EQ(inGlobal, std::set<std::string>{"\xE2\x82\xAC"});
}

#undef R

}  // namespace
