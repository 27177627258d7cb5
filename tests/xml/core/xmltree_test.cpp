// The XML tree: printed text by hand, escaping against the literal replacement passes, and
// random trees printed as UTF-8 in three locales and read back by libxml2.
#include "zrcommon920r/xml/core/xmltree.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <sstream>
#include <string>

#include "support/locales.h"
#include "support/textio.h"
#include "zrcommon920r/common/value.h"

namespace {

using namespace ZRXML_920;
using Tree = std::unique_ptr<XMLElement>;

const std::string kDecl = "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n";

// root printed by ToString and, checked to be the same characters, by ToStream.
std::string Printed(const XMLElement & root, bool format, bool indent) {
  ExportFormat cursor;
  cursor.SetFormat(format);
  cursor.SetIndentation(indent);
  ExportFormat again = cursor;
  std::string out;
  root.ToString(out, cursor);
  std::ostringstream stream;
  root.ToStream(stream, again, false);
  EXPECT_EQ(stream.str(), out);
  return out;
}

std::string Document(const XMLDocType * docType, const XMLElement & root, bool format, bool utf8) {
  std::ostringstream out;
  (utf8 ? WriteTreeUTF8 : WriteTree)(out, docType, &root, format);
  return out.str();
}

using zrtest::XmlDoc;
constexpr auto & Parse = zrtest::ParseXml;

// r x="1" holding c y="2" (attributes only), the text "t", d holding "u": text then an
// element, an element holding only text, a parent closing after a child element.
Tree Sample() {
  Tree r(XMLElement::Create("r"));
  r->AddAttribute("x", "1");
  XMLElement * c = XMLElement::Create("c");
  c->AddAttribute(XMLAttribute::Create("y", 2.0));
  r->AddElement(c);
  r->AddElement(XMLString::Create("t"));
  XMLElement * d = XMLElement::Create("d");
  d->AddElement(XMLString::Create("u"));
  EXPECT_EQ(r->AddElement(d), 3);
  return r;
}

TEST(XMLElementPrint, LayoutWithAndWithoutIndentation) {
  struct {
    int line;
    bool format, indent;
    const char * want;
  } const cases[] = {
      {__LINE__, true, false, "\n<r x=\"1\">\n<c y=\"2\"/>t<d>u</d>\n</r>"},
      // Intended: tabs after the blank before attributes, and before </d> right after text.
      {__LINE__, true, true, "\n<r \tx=\"1\">\n\t<c \t\ty=\"2\"/>t\t<d>u\t</d>\n</r>"},
      {__LINE__, false, true, "<r x=\"1\"><c y=\"2\"/>t<d>u</d></r>"}};  // indent needs format
  Tree r = Sample();  // null nodes are skipped, and a clone stands alone
  r->AddAttribute(nullptr);
  r->AddElement(static_cast<XMLElement *>(nullptr));
  r->AddElement(static_cast<XMLString *>(nullptr));
  const Tree copy(r->Clone());
  r.reset();
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(Printed(*copy, c.format, c.indent), c.want);
    EXPECT_TRUE(Parse(c.want));
  }
  // Intended: content of null nodes alone is not empty content, so the element is not "/>".
  const Tree e(XMLElement::Create("e"));
  e->AddElement(static_cast<XMLString *>(nullptr));
  EXPECT_EQ(Printed(*e, true, false), "\n<e>\n</e>");
  const Tree a(XMLElement::Create("a"));
  EXPECT_EQ(Document(nullptr, *a, true, false), kDecl + "\n<a/>");  // no line feed at the end
  EXPECT_EQ(Document(nullptr, *a, false, true), kDecl + "<a/>");
}

TEST(XMLElementPrint, DocTypeWithExtensions) {
  const Tree a(XMLElement::Create("a"));
  std::unique_ptr<XMLDocType> doc(XMLDocType::Create("a", "a.dtd", 7));
  const std::string head = kDecl + "<!DOCTYPE a SYSTEM \"a.dtd\"";
  EXPECT_EQ(Document(doc.get(), *a, true, false), head + ">\n\n<a/>");
  EXPECT_EQ(doc->AddExtension("<!ENTITY e \"x\">"), 16);
  EXPECT_EQ(doc->AddExtension("<!ATTLIST a z CDATA #IMPLIED>"), 46);
  const std::string want =
      head + "\n[\n<!ENTITY e \"x\">\n<!ATTLIST a z CDATA #IMPLIED>\n]>\n\n<a/>";
  EXPECT_EQ(Document(doc.get(), *a, true, false), want);
  EXPECT_EQ(Document(doc.get(), *a, true, true), want);
  EXPECT_TRUE(Parse(want));
  std::unique_ptr<XMLDocType> copy(doc->Clone());
  doc.reset();
  EXPECT_EQ(Document(copy.get(), *a, true, false), want);
}

TEST(XMLElementPrint, NumbersAndTheGuardOnAddAttribute) {
  const double inf = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  zrtest::ScopedLocale comma("de_DE.UTF-8");  // the decimal point stays "."
  if (!comma.ok()) GTEST_SKIP() << comma.why();
  const Tree a(XMLElement::Create("a"));
  for (const double v : {nan, inf, -inf}) {
    a->AddAttribute("n", v);
    a->AddAttribute("n", v, true);
  }
  a->AddAttribute("x", 1.5);
  a->AddAttribute("y", 1.5, true);
  a->AddAttribute("m", ZRCommon_920::Value::SYSMISVALUE);
  a->AddAttribute("b", std::numeric_limits<double>::max());
  // Intended: Create itself keeps what AddAttribute drops.
  a->AddAttribute(XMLAttribute::Create("p", nan));
  a->AddAttribute(XMLAttribute::Create("q", -inf, true));
  EXPECT_EQ(Printed(*a, false, false),
            "<a x=\"1.5\" y=\"1.5000000000000000\" m=\"-1.79769313486232e+308\" "
            "b=\"1.79769313486232e+308\" p=\"nan\" q=\"-inf\"/>");
}

// The ten replacement passes of attribute escaping, literally, one after the other.
std::string TenPasses(std::string text) {
  const char * const rules[][2] = {{"&", "&amp;"},   {"<", "&lt;"},   {">", "&gt;"},
                                   {"\"", "&quot;"}, {"\t", "&#9;"},  {"\n", "&#10;"},
                                   {"\r", "&#13;"},  {"  ", " &#32;"}};
  for (const auto & rule : rules) {
    const std::string from = rule[0], to = rule[1];
    for (std::size_t at = text.find(from); at != std::string::npos;
         at = text.find(from, at + to.size())) {
      text.replace(at, from.size(), to);
    }
  }
  if (!text.empty() && text.front() == ' ') text.replace(0, 1, "&#32;");
  if (!text.empty() && text.back() == ' ') text.replace(text.size() - 1, 1, "&#32;");
  return text;
}

TEST(XMLUtilEscape, HandWorkedExamplesAndTextEscaping) {
  struct {
    int line;
    const char *in, *want;
  } const cases[] = {{__LINE__, "", ""},
                     {__LINE__, " ", "&#32;"},
                     {__LINE__, "  a", "&#32;&#32;a"},
                     {__LINE__, "a   b", "a &#32; b"},
                     {__LINE__, "a    b", "a &#32; &#32;b"},
                     {__LINE__, "   ", "&#32;&#32;&#32;"},
                     {__LINE__, "    ", "&#32;&#32; &#32;"},
                     {__LINE__, "a ", "a&#32;"},
                     {__LINE__, "&lt;\"'>", "&amp;lt;&quot;'&gt;"},
                     {__LINE__, "\t\n\r", "&#9;&#10;&#13;"}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(XMLUtil::Escape(c.in), c.want);
  }
  const Tree a(XMLElement::Create("a"));
  a->AddAttribute("v", "a<b");
  a->AddElement(XMLString::Create("a>b&c<d \"q\"\t\n  "));
  const std::string want = "<a v=\"a&lt;b\">a>b&amp;c&lt;d \"q\"\t\n  </a>";
  EXPECT_EQ(Printed(*a, true, false), "\n" + want);
  EXPECT_TRUE(Parse(want));
}

TEST(XMLUtilEscape, OnePassEqualsTheTenPasses) {
  const char alphabet[] = " &<>\"\t\n\r#;a";
  std::mt19937 rng(20240610);
  for (int trial = 0; trial < 20000; ++trial) {
    std::string text(rng() % 13, ' ');
    for (char & ch : text) {
      ch = rng() % 8 == 0 ? static_cast<char>(rng()) : alphabet[rng() % (sizeof alphabet - 1)];
    }
    ASSERT_EQ(XMLUtil::Escape(text), TenPasses(text)) << '"' << text << '"';
  }
}

TEST(XMLUtilReplace, ReturnsPositionsNotCounts) {
  struct {
    int line;
    bool all;
    const char *text, *pattern, *replacement, *wantText;
    int want;
  } const cases[] = {
      {__LINE__, true, "a&b", "&", "&amp;", "a&amp;b", 5},  // last search began at 6
      {__LINE__, true, "aXbXc", "X", "YY", "aYYbYYc", 5},
      {__LINE__, true, "aa", "a", "aa", "aaaa", 3},  // ends though the replacement matches
      {__LINE__, true, "abc", "c", "", "ab", 1},     // searching from the very end is a miss
      {__LINE__, true, "abc", "x", "y", "abc", -1},
      {__LINE__, true, "abc", "", "y", "abc", -1},
      {__LINE__, true, "abc", nullptr, "y", "abc", -1},
      {__LINE__, false, "xayaz", "a", "bb", "xbbyaz", 1},
      {__LINE__, false, "abc", "x", "y", "abc", -1},
      {__LINE__, false, "abc", "", "y", "abc", -1},
      {__LINE__, false, "abc", nullptr, "y", "abc", -1}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    std::string text = c.text;
    EXPECT_EQ(c.all ? XMLUtil::ReplaceAll(text, c.pattern, c.replacement)
                    : XMLUtil::ReplaceString(text, c.pattern, c.replacement),
              c.want);
    EXPECT_EQ(text, c.wantText);
  }
  EXPECT_EQ(XMLUtil::GetTabs(0) + XMLUtil::GetTabs(-3), "");
  EXPECT_EQ(XMLUtil::toString(INT_MIN), "-2147483648");
}

// The character a byte stands for: C reads ISO-8859-1, CP1252 its published table, with
// U+FFFD for its five unassigned bytes.
char32_t SingleByte(bool cp1252, unsigned char b) {
  static const char32_t k80[32] = {0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                   0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD,
                                   0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                   0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};
  return cp1252 && b >= 0x80 && b < 0xA0 ? k80[b - 0x80] : b;
}

void AppendUtf8(std::string & out, char32_t c) {
  static const unsigned char kLead[] = {0, 0, 0xC0, 0xE0, 0xF0};
  const int n = c < 0x80 ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
  out += static_cast<char>(kLead[n] | c >> 6 * (n - 1));
  for (int k = n - 2; k >= 0; --k) out += static_cast<char>(0x80 | (c >> 6 * k & 0x3F));
}

enum class Codeset { kC, kUtf8, kCp1252 };

// Random narrow text in codeset and, in want, the UTF-8 of the characters it stands for.
// Under UTF-8, rejected bytes (lone, cut off, overlong, surrogate, past U+10FFFF) each
// stand for U+FFFD. C0 controls but tab, LF and CR, and U+FFFE and U+FFFF are left out: they
// make no XML.
std::string RandomText(std::mt19937 & rng, Codeset codeset, std::string & want) {
  static const char * const kRejected[] = {
      "\xC3",         "\xE2\x82",     "\xF0\x9F\x98",    "\xC0\xAF",
      "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80"};
  std::string text;
  const int n = static_cast<int>(rng() % 8);
  for (int i = 0; i < n; ++i) {
    if (codeset != Codeset::kUtf8) {
      const unsigned char b = static_cast<unsigned char>(rng());
      if (b < 0x20 && b != '\t' && b != '\n' && b != '\r') continue;
      text += static_cast<char>(b);
      AppendUtf8(want, SingleByte(codeset == Codeset::kCp1252, b));
    } else if (rng() % 3 == 0) {
      const std::string bad =
          rng() % 2 == 0 ? std::string(1, static_cast<char>(0x80 | rng())) : kRejected[rng() % 7];
      text += bad + "x";  // an ASCII byte after it, so that nothing completes it
      for (std::size_t k = 0; k < bad.size(); ++k) AppendUtf8(want, 0xFFFD);
      want += 'x';
    } else {
      static const char32_t kTops[] = {0x7F, 0x7FF, 0xFFFD, 0x10FFFF};
      char32_t c = 0x20 + rng() % (kTops[rng() % 4] - 0x1F);
      if (c >= 0xD800 && c < 0xE000) c = 0xE000;
      if (c == 0xFFFE || c == 0xFFFF) c = 0xFFFD;
      AppendUtf8(text, c);
      AppendUtf8(want, c);
    }
  }
  return text;
}

// A random tree of depth below depth; the characters it is made of go to want, in the
// form Describe gives a parsed tree.
XMLElement * RandomTree(std::mt19937 & rng, Codeset codeset, int depth, std::string & want) {
  const std::string name = "e" + std::to_string(depth);
  XMLElement * e = XMLElement::Create(name);
  want += "<" + name;
  for (int i = static_cast<int>(rng() % 4); i > 0; --i) {
    want += " a" + std::to_string(i) + "=";
    e->AddAttribute("a" + std::to_string(i), RandomText(rng, codeset, want));
  }
  want += ">";
  for (int i = static_cast<int>(rng() % 5); i >= 0; --i) {
    std::string chars;
    std::string text = RandomText(rng, codeset, chars);
    std::size_t cr;
    while ((cr = chars.find('\r')) != std::string::npos) {  // the parser's line-end handling
      chars.replace(cr, chars.compare(cr, 2, "\r\n") == 0 ? 2 : 1, "\n");
    }
    if (chars.find("]]>") == std::string::npos && !text.empty()) {
      e->AddElement(XMLString::Create(text));
      want += chars;
    }
    if (i > 0 && depth > 1) e->AddElement(RandomTree(rng, codeset, depth - 1, want));
  }
  want += "</>";
  return e;
}

std::string Describe(const xmlNode * node) {
  std::string out = "<" + std::string(reinterpret_cast<const char *>(node->name));
  for (const xmlAttr * a = node->properties; a != nullptr; a = a->next) {
    xmlChar * value = xmlNodeGetContent(reinterpret_cast<const xmlNode *>(a));
    out += " " + std::string(reinterpret_cast<const char *>(a->name)) + "=" +
           reinterpret_cast<const char *>(value);
    xmlFree(value);
  }
  out += ">";
  for (const xmlNode * c = node->children; c != nullptr; c = c->next) {
    out += c->type == XML_ELEMENT_NODE ? Describe(c)
                                       : std::string(reinterpret_cast<const char *>(c->content));
  }
  return out + "</>";
}

void RandomTreesReadBack(const char * locale, Codeset codeset) {
  SCOPED_TRACE(locale);
  zrtest::ScopedLocale scoped(locale);
  if (!scoped.ok()) GTEST_SKIP() << scoped.why();  // the other locales still run
  std::mt19937 rng(7);
  for (int trial = 0; trial < 300; ++trial) {
    std::string want;
    const Tree root(RandomTree(rng, codeset, 4, want));
    const std::string bare = Document(nullptr, *root, false, true);
    const XmlDoc doc = Parse(bare);
    ASSERT_TRUE(doc) << bare;
    EXPECT_EQ(Describe(xmlDocGetRootElement(doc.get())), want);
    EXPECT_TRUE(Parse(Document(nullptr, *root, true, true)));
  }
}

TEST(WriteTreeUTF8, RandomTreesReadBackInThreeLocales) {
  RandomTreesReadBack("C", Codeset::kC);
  RandomTreesReadBack("de_DE.UTF-8", Codeset::kUtf8);
  RandomTreesReadBack("de_DE.CP1252", Codeset::kCp1252);
}

TEST(WriteTreeUTF8, IllFormedWhereIntended) {
  struct {
    int line;
    const char * locale;
    const char * text;
    bool utf8;
    const char * want;
  } const cases[] = {
      {__LINE__, "C", "\x01", true, "<a>\x01</a>"},                            // C0 control
      {__LINE__, "de_DE.UTF-8", "\xEF\xBF\xBE", true, "<a>\xEF\xBF\xBE</a>"},  // U+FFFE
      {__LINE__, "C", "a]]>b", true, "<a>a]]>b</a>"},
      {__LINE__, "C", "\xE9", false, "<a>\xE9</a>"}};  // WriteTree sends the byte as it is
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    zrtest::ScopedLocale scoped(c.locale);
    if (!scoped.ok()) GTEST_SKIP() << scoped.why();
    const Tree a(XMLElement::Create("a"));
    a->AddElement(XMLString::Create(c.text));
    const std::string doc = Document(nullptr, *a, false, c.utf8);
    EXPECT_EQ(doc, kDecl + c.want);
    EXPECT_FALSE(Parse(doc));
  }
  const Tree a(XMLElement::Create("caf\xE9"));  // the name is converted as well
  a->AddAttribute("x", "1");
  EXPECT_TRUE(Parse(Document(nullptr, *a, false, true)));
  a->AddAttribute("x", "1");
  EXPECT_EQ(Document(nullptr, *a, false, true), kDecl + "<caf\xC3\xA9 x=\"1\" x=\"1\"/>");
  EXPECT_FALSE(Parse(Document(nullptr, *a, false, true)));
}

}  // namespace
