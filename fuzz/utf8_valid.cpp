// WriteUTF and WriteTreeUTF8 on arbitrary bytes must give valid UTF-8, whatever the codeset of
// the thread's locale. Byte 0 picks the locale (byte % 3: "C", de_DE.UTF-8, de_DE.CP1252, the
// last two built by localedef into the build tree at start-up), and its bits 4 and 8 give the
// tree a document type and layout; the rest is the text. Beyond validity, each codeset's
// reading is checked character by character: "C" reads every byte as ISO-8859-1; UTF-8 keeps
// each well-formed sequence and turns every other byte into U+FFFD; CP1252 gives one character
// per byte, U+FFFD exactly for its five unassigned bytes.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include <locale.h>
#include <sanitizer/lsan_interface.h>

#include "fuzzcheck.h"
#include "support/locales.h"
#include "zrcommon920r/xml/core/xmltree.h"

namespace {

using zrfuzz::Fail;
using zrfuzz::Shown;

constexpr char32_t kReplacement = 0xFFFD;

enum Codeset { kC, kUtf8, kCp1252 };
const char * const kLocaleNames[] = {"C", "de_DE.UTF-8", "de_DE.CP1252"};
locale_t gLocales[3];

// The locale's LC_CTYPE as a handle for uselocale: first as the system has it, else from
// the directory where zrtest::ScopedLocale builds it.
locale_t OpenLocale(const char * name) {
  zrtest::ScopedLocale built(name);  // builds it on first use; sets, then resets, the process's
  if (!built.ok()) {
    std::fprintf(stderr, "cannot set locale %s: %s\n", name, built.why().c_str());
    std::abort();
  }
  locale_t handle = newlocale(LC_CTYPE_MASK, name, static_cast<locale_t>(0));
  if (handle == static_cast<locale_t>(0)) {
    setenv("LOCPATH", ZR_TEST_LOCALE_DIR, 1);
    handle = newlocale(LC_CTYPE_MASK, name, static_cast<locale_t>(0));
    unsetenv("LOCPATH");
  }
  if (handle == static_cast<locale_t>(0)) {
    std::fprintf(stderr, "newlocale refuses %s\n", name);
    std::abort();
  }
  return handle;
}

// The length of the well-formed UTF-8 sequence at p, with its code point in cp; 0 when the
// bytes there start none. Overlong forms, surrogates and code points past U+10FFFF are
// ill-formed.
std::size_t Decode(const unsigned char * p, std::size_t left, char32_t & cp) {
  const unsigned char lead = p[0];
  if (lead < 0x80) {
    cp = lead;
    return 1;
  }
  std::size_t length;
  char32_t least;
  if ((lead & 0xE0) == 0xC0) {
    length = 2;
    cp = lead & 0x1F;
    least = 0x80;
  } else if ((lead & 0xF0) == 0xE0) {
    length = 3;
    cp = lead & 0x0F;
    least = 0x800;
  } else if ((lead & 0xF8) == 0xF0) {
    length = 4;
    cp = lead & 0x07;
    least = 0x10000;
  } else {
    return 0;
  }
  if (left < length) return 0;
  for (std::size_t k = 1; k < length; ++k) {
    if ((p[k] & 0xC0) != 0x80) return 0;
    cp = (cp << 6) | (p[k] & 0x3F);
  }
  if (cp < least || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return 0;
  return length;
}

// The code points of text, which must be valid UTF-8.
std::vector<char32_t> DecodeAll(const std::string & text, const char * what) {
  std::vector<char32_t> cps;
  const unsigned char * p = reinterpret_cast<const unsigned char *>(text.data());
  for (std::size_t i = 0; i < text.size();) {
    char32_t cp;
    const std::size_t length = Decode(p + i, text.size() - i, cp);
    if (length == 0) {
      Fail(std::string(what) + " gave invalid UTF-8 at byte " + std::to_string(i) + ": \"" +
           Shown(text) + "\"");
    }
    cps.push_back(cp);
    i += length;
  }
  return cps;
}

// What reading text as UTF-8 must give: each well-formed sequence, and U+FFFD for each
// byte that starts none, reading on at the next byte.
std::vector<char32_t> ReadAsUtf8(const std::string & text) {
  std::vector<char32_t> cps;
  const unsigned char * p = reinterpret_cast<const unsigned char *>(text.data());
  for (std::size_t i = 0; i < text.size();) {
    char32_t cp;
    const std::size_t length = Decode(p + i, text.size() - i, cp);
    cps.push_back(length == 0 ? kReplacement : cp);
    i += length == 0 ? 1 : length;
  }
  return cps;
}

bool IsCp1252Unassigned(unsigned char c) {
  return c == 0x81 || c == 0x8D || c == 0x8F || c == 0x90 || c == 0x9D;
}

void CheckReading(Codeset codeset, const std::string & text, const std::vector<char32_t> & cps) {
  const std::string where = std::string(kLocaleNames[codeset]) + ", \"" + Shown(text) + "\"";
  if (codeset == kUtf8) {
    if (cps != ReadAsUtf8(text)) Fail("UTF-8 reading differs: " + where);
    return;
  }
  if (cps.size() != text.size()) Fail("not one character per byte: " + where);
  for (std::size_t i = 0; i < text.size(); ++i) {
    const unsigned char c = static_cast<unsigned char>(text[i]);
    bool ok;
    if (codeset == kC || c < 0x80 || c >= 0xA0) {
      ok = cps[i] == c;  // ISO-8859-1, and CP1252's ASCII and upper half
    } else if (IsCp1252Unassigned(c)) {
      ok = cps[i] == kReplacement;
    } else {
      ok = cps[i] >= 0x100 && cps[i] != kReplacement;  // the euro sign, quotes, dashes...
    }
    if (!ok) {
      char cp[16];
      std::snprintf(cp, sizeof cp, "U+%04X", static_cast<unsigned>(cps[i]));
      Fail("byte " + std::to_string(i) + " read as " + cp + ": " + where);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
  // glibc's setlocale and newlocale do not free the search list they build from LOCPATH
  // (46 bytes a call here); once at start-up, it is no finding.
  __lsan_disable();
  for (int k = 0; k < 3; ++k) gLocales[k] = OpenLocale(kLocaleNames[k]);
  __lsan_enable();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t * data, std::size_t size) {
  if (size == 0) return 0;
  const Codeset codeset = static_cast<Codeset>(data[0] % 3);
  const std::string text(reinterpret_cast<const char *>(data + 1), size - 1);
  const locale_t previous = uselocale(gLocales[codeset]);

  std::ostringstream out;
  ZRXML_920::WriteUTF(out, text);
  CheckReading(codeset, text, DecodeAll(out.str(), "WriteUTF"));

  // The tree converts node by node, from buffers of its own; the document must be valid too.
  ZRXML_920::XMLElement * root = ZRXML_920::XMLElement::Create("r");
  root->AddAttribute("a", text);
  root->AddElement(ZRXML_920::XMLString::Create(text));
  ZRXML_920::XMLElement * child = ZRXML_920::XMLElement::Create(text.substr(0, 8));
  child->AddElement(ZRXML_920::XMLString::Create(text));
  root->AddElement(child);
  ZRXML_920::XMLDocType * docType = ZRXML_920::XMLDocType::Create("r", text.substr(0, 16), 0);
  docType->AddExtension(text);
  std::ostringstream tree;
  ZRXML_920::WriteTreeUTF8(tree, data[0] & 4 ? docType : nullptr, root, (data[0] & 8) != 0);
  DecodeAll(tree.str(), "WriteTreeUTF8");
  delete docType;
  delete root;

  uselocale(previous);
  return 0;
}
