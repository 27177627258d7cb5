// The XML tree's nodes, their printing to a string or a stream, and the text helpers of
// XMLUtil. The conversion of narrow text to UTF-8 is in xmlutf8.cpp.
#include "zrcommon920r/xml/core/xmltree.h"

#include <cfloat>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <memory>
#include <typeinfo>
#include <utility>

#include "zrcommon920r/xml/core/detail/xmlutf8.h"
#include "zrcommon920r/xml/core/numtext.h"

namespace ZRXML_920 {

namespace {

// A chunk buffer that grew past this is given back after use rather than kept per thread.
constexpr std::size_t kKeepChunk = std::size_t{1} << 16;

// What an attribute value turns each byte into before blanks are looked at: nullptr for a
// byte kept as it is. The blank is handled by runs, apart from this table.
const char * AttributeReference(unsigned char c) {
  switch (c) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\t':
      return "&#9;";
    case '\n':
      return "&#10;";
    case '\r':
      return "&#13;";
    default:
      return nullptr;
  }
}

// Whether a byte of an attribute value is escaped or starts a run of blanks.
struct AttributeSpecials {
  bool special[256] = {};
  constexpr AttributeSpecials() {
    for (const unsigned char c : {'&', '<', '>', '"', '\t', '\n', '\r', ' '}) special[c] = true;
  }
};
constexpr AttributeSpecials kAttributeSpecials;

// Appends text escaped for an attribute value, in one pass. It gives what the ten passes
// of the escaping rules give one after the other: the seven references cannot make a byte
// that a later rule looks at, and a run of k blanks comes out as k / 2 pairs " &#32;" and,
// when k is odd, one more blank, whose first blank (at the start of the text) and last
// blank (at the end) are then written as references.
void AppendAttributeEscaped(std::string & out, const std::string & text) {
  const char * const p = text.data();
  const std::size_t n = text.size();
  std::size_t done = 0;
  std::size_t i = 0;
  while (i < n) {
    const unsigned char c = static_cast<unsigned char>(p[i]);
    if (!kAttributeSpecials.special[c]) {
      ++i;
      continue;
    }
    out.append(p + done, i - done);
    if (c != ' ') {
      out += AttributeReference(c);
      done = ++i;
      continue;
    }
    std::size_t end = i;
    while (end < n && p[end] == ' ') ++end;
    const std::size_t run = end - i;
    for (std::size_t k = 0; k < run; ++k) {
      // Intended: the first blank of the text and an unpaired last blank of the text become
      // references too, so that no blank is lost at either end; a lone blank only once.
      const bool paired = (k % 2) == 1;
      const bool lead = i == 0 && k == 0;
      const bool tail = end == n && k + 1 == run && !(i == 0 && run == 1);
      if (paired || lead || tail) {
        out += "&#32;";
      } else {
        out += ' ';
      }
    }
    done = i = end;
  }
  out.append(p + done, n - done);
}

// Appends character data with "&" and "<" escaped; nothing else is touched.
void AppendTextEscaped(std::string & out, const std::string & text) {
  const char * const p = text.data();
  const std::size_t n = text.size();
  std::size_t done = 0;
  for (std::size_t i = 0; i < n; ++i) {
    if (p[i] != '&' && p[i] != '<') continue;
    out.append(p + done, i - done);
    out += p[i] == '&' ? "&amp;" : "&lt;";
    done = i + 1;
  }
  out.append(p + done, n - done);
}

void AppendTabs(std::string & out, int count) {
  if (count > 0) out.append(static_cast<std::size_t>(count), '\t');
}

// The per-thread buffer in which ToStream gathers text between sends. Whoever uses it
// clears it first and sends it before calling out to another node's ToStream.
std::string & Chunk() {
  thread_local std::string chunk;
  return chunk;
}

void Send(std::ostream & out, std::string & chunk) {
  out.write(chunk.data(), static_cast<std::streamsize>(chunk.size()));
  chunk.clear();
  if (chunk.capacity() > kKeepChunk) std::string().swap(chunk);
}

// Converts the bytes of out from start on to UTF-8 in place, as one piece of text.
void ConvertFrom(std::string & out, std::size_t start) {
  if (detail::IsAscii(out.data() + start, out.size() - start)) return;
  const std::string raw = out.substr(start);
  out.resize(start);
  detail::AppendUtf8(out, raw.data(), raw.size());
}

// The shared ToStream of the leaf nodes: the node's ToString text, converted when utf8.
template <class Node>
int LeafToStream(const Node & node, std::ostream & out, ExportFormat & format, bool utf8) {
  std::string & chunk = Chunk();
  chunk.clear();
  node.ToString(chunk, format);
  if (utf8) ConvertFrom(chunk, 0);
  Send(out, chunk);
  return 0;
}

// Position of the first occurrence of pattern in text at or after position, rebuilding
// text with replacement in its place. position moves to the hit, or one below where the
// search began on a miss. Returns the new position, or -1 on a miss or when position
// lies past the end (position then unchanged).
int ReplaceAtPos(std::string & text, const char * pattern, const std::string & replacement,
                 int & position) {
  if (position < 0 || static_cast<std::size_t>(position) > text.size()) return -1;
  const std::size_t length = std::strlen(pattern);
  const std::size_t hit = text.find(pattern, static_cast<std::size_t>(position), length);
  const int offset = hit == std::string::npos ? -1 : static_cast<int>(hit) - position;
  // Intended: a miss adds its offset of -1 too, so position ends one below the search start.
  position += offset;
  if (hit == std::string::npos) return -1;
  text.replace(hit, length, replacement);
  return position;
}

}  // namespace

// ---- XMLAttribute ----

XMLAttribute::XMLAttribute(std::string name, std::string value)
    : fName(std::move(name)), fValue(std::move(value)) {}

XMLAttribute * XMLAttribute::Create(const std::string & name, const std::string & value) {
  return new XMLAttribute(name, value);
}

XMLAttribute * XMLAttribute::Create(const std::string & name, double value) {
  return new XMLAttribute(name, Format(value, false, nullptr));
}

XMLAttribute * XMLAttribute::Create(const std::string & name, double value, bool fixed) {
  return fixed ? new XMLAttribute(name, ReplaceSep(value)) : Create(name, value);
}

int XMLAttribute::ToString(std::string & out, ExportFormat &) const {
  out += fName;
  out += "=\"";
  AppendAttributeEscaped(out, fValue);
  out += '"';
  return 0;
}

int XMLAttribute::ToStream(std::ostream & out, ExportFormat & format, bool utf8) const {
  return LeafToStream(*this, out, format, utf8);
}

XMLAttribute * XMLAttribute::Clone() const {
  return new XMLAttribute(*this);
}

// ---- XMLString ----

XMLString::XMLString(std::string text) : fText(std::move(text)) {}

XMLString * XMLString::Create(const std::string & text) {
  return new XMLString(text);
}

int XMLString::ToString(std::string & out, ExportFormat & format) const {
  AppendTextEscaped(out, fText);
  format.fIsNewParagraph = false;
  return 0;
}

int XMLString::ToStream(std::ostream & out, ExportFormat & format, bool utf8) const {
  return LeafToStream(*this, out, format, utf8);
}

XMLString * XMLString::Clone() const {
  return new XMLString(*this);
}

// ---- XMLDocType ----

XMLDocType::XMLDocType(std::string name, std::string system, std::int32_t number)
    : fName(std::move(name)), fSystem(std::move(system)), fNumber(number) {}

XMLDocType * XMLDocType::Create(const std::string & name, const std::string & system,
                                std::int32_t number) {
  return new XMLDocType(name, system, number);
}

int XMLDocType::AddExtension(const std::string & text) {
  fExtension += '\n';
  fExtension += text;
  return static_cast<int>(fExtension.size());
}

int XMLDocType::ToString(std::string & out, ExportFormat &) const {
  out += XMLUtil::FIRST_LINE;
  out += "\n<!DOCTYPE ";
  out += fName;
  out += " SYSTEM \"";
  out += fSystem;
  out += '"';
  if (!fExtension.empty()) {
    out += "\n[";
    out += fExtension;
    out += "\n]";
  }
  out += ">\n";
  return 0;
}

int XMLDocType::ToStream(std::ostream & out, ExportFormat & format, bool utf8) const {
  return LeafToStream(*this, out, format, utf8);
}

XMLDocType * XMLDocType::Clone() const {
  return new XMLDocType(*this);
}

// ---- XMLElement ----

XMLElement::XMLElement(std::string name) : fName(std::move(name)) {}

XMLElement * XMLElement::Create(const std::string & name) {
  return new XMLElement(name);
}

XMLElement::~XMLElement() {
  for (XMLAttribute * attribute : fAttributes) delete attribute;
  for (XMLInterface * node : fContent) delete node;
}

XMLElement * XMLElement::Clone() const {
  std::unique_ptr<XMLElement> copy(new XMLElement(fName));
  // Room first, so that no push_back can throw and lose a clone.
  copy->fAttributes.reserve(fAttributes.size());
  copy->fContent.reserve(fContent.size());
  for (const XMLAttribute * attribute : fAttributes) {
    copy->fAttributes.push_back(attribute != nullptr ? attribute->Clone() : nullptr);
  }
  for (const XMLInterface * node : fContent) {
    copy->fContent.push_back(node != nullptr ? node->Clone() : nullptr);
  }
  return copy.release();
}

int XMLElement::AddElement(XMLElement * child) {
  fContent.push_back(child);
  return static_cast<int>(fContent.size());
}

int XMLElement::AddElement(XMLString * text) {
  fContent.push_back(text);
  return static_cast<int>(fContent.size());
}

void XMLElement::AddAttribute(XMLAttribute * attribute) {
  fAttributes.push_back(attribute);
}

void XMLElement::AddAttribute(const std::string & name, const std::string & value) {
  std::unique_ptr<XMLAttribute> attribute(XMLAttribute::Create(name, value));
  fAttributes.push_back(attribute.get());
  attribute.release();
}

void XMLElement::AddAttribute(const std::string & name, double value) {
  AddAttribute(name, value, false);
}

void XMLElement::AddAttribute(const std::string & name, double value, bool fixed) {
  if (!(value >= -DBL_MAX && value <= DBL_MAX)) return;
  std::unique_ptr<XMLAttribute> attribute(XMLAttribute::Create(name, value, fixed));
  fAttributes.push_back(attribute.get());
  attribute.release();
}

void XMLElement::OpenTag(std::string & out, ExportFormat & format, bool utf8) const {
  if (format.fFormat) {
    // Intended: line feed and tabs are independent, so after text the tabs come alone.
    if (format.fIsNewParagraph) out += '\n';
    if (format.fIndentation) AppendTabs(out, format.fTabs);
  }
  out += '<';
  const std::size_t start = out.size();
  out += fName;
  if (utf8) ConvertFrom(out, start);
}

void XMLElement::CloseTag(std::string & out, const ExportFormat & format, int level,
                          bool utf8) const {
  if (format.fFormat) {
    if (format.fIsNewParagraph) out += '\n';
    // Intended: with indentation the tabs are written even right after text.
    if (format.fIndentation) AppendTabs(out, level);
  }
  out += "</";
  const std::size_t start = out.size();
  out += fName;
  if (utf8) ConvertFrom(out, start);
  out += '>';
}

int XMLElement::ToString(std::string & out, ExportFormat & format) const {
  const int level = format.fTabs;
  OpenTag(out, format, false);
  if (!fAttributes.empty()) {
    ++format.fTabs;
    for (const XMLAttribute * attribute : fAttributes) {
      if (attribute == nullptr) continue;
      out += ' ';
      // Intended: attributes stay on the element's line, with tabs after the blank.
      if (format.HasIndentation()) AppendTabs(out, format.fTabs);
      attribute->ToString(out, format);
    }
    --format.fTabs;
  }
  if (fContent.empty()) {
    out += "/>";
  } else {
    out += '>';
    ++format.fTabs;
    for (const XMLInterface * node : fContent) {
      if (node != nullptr) node->ToString(out, format);
    }
    --format.fTabs;
    CloseTag(out, format, level, false);
  }
  format.fIsNewParagraph = true;
  return 0;
}

int XMLElement::ToStream(std::ostream & out, ExportFormat & format, bool utf8) const {
  const int level = format.fTabs;
  std::string & chunk = Chunk();
  chunk.clear();
  OpenTag(chunk, format, utf8);
  if (!fAttributes.empty()) {
    ++format.fTabs;
    for (const XMLAttribute * attribute : fAttributes) {
      if (attribute == nullptr) continue;
      chunk += ' ';
      if (format.HasIndentation()) AppendTabs(chunk, format.fTabs);
      const std::size_t start = chunk.size();
      attribute->ToString(chunk, format);
      if (utf8) ConvertFrom(chunk, start);
    }
    --format.fTabs;
  }
  if (fContent.empty()) {
    chunk += "/>";
  } else {
    chunk += '>';
    ++format.fTabs;
    for (const XMLInterface * node : fContent) {
      if (node == nullptr) continue;
      // A text node is printed into the chunk, exactly as its own ToStream would send it;
      // any other node prints itself, so the chunk goes out first.
      if (typeid(*node) == typeid(XMLString)) {
        const std::size_t start = chunk.size();
        static_cast<const XMLString *>(node)->ToString(chunk, format);
        if (utf8) ConvertFrom(chunk, start);
      } else {
        Send(out, chunk);
        node->ToStream(out, format, utf8);
      }
    }
    --format.fTabs;
    CloseTag(chunk, format, level, utf8);
  }
  Send(out, chunk);
  format.fIsNewParagraph = true;
  return 0;
}

// ---- XMLUtil ----

std::string XMLUtil::toString(int value) {
  char buf[16];
  const std::to_chars_result r = std::to_chars(buf, buf + sizeof buf, value);
  return std::string(buf, r.ptr);
}

std::string XMLUtil::GetTabs(int count) {
  std::string tabs;
  AppendTabs(tabs, count);
  return tabs;
}

std::string XMLUtil::Escape(const std::string & text) {
  std::string escaped;
  escaped.reserve(text.size());
  AppendAttributeEscaped(escaped, text);
  return escaped;
}

int XMLUtil::ReplaceString(std::string & text, const char * pattern,
                           const std::string & replacement) {
  if (pattern == nullptr || *pattern == '\0') return -1;
  int position = 0;
  return ReplaceAtPos(text, pattern, replacement, position);
}

int XMLUtil::ReplaceAll(std::string & text, const char * pattern, const std::string & replacement) {
  // An empty pattern would be found again after every replacement, for ever.
  if (pattern == nullptr || *pattern == '\0') return -1;
  int position = 0;
  while (ReplaceAtPos(text, pattern, replacement, position) != -1) {
    position += static_cast<int>(replacement.size());
  }
  // Intended: a position, one below where the last search began, and not a count.
  return position;
}

// ---- Printing a document ----

int Write(std::ostream & out, const std::string & text) {
  out.write(text.data(), static_cast<std::streamsize>(text.size()));
  return 0;
}

int WriteUTF(std::ostream & out, const std::string & text) {
  if (detail::IsAscii(text.data(), text.size())) return Write(out, text);
  std::string converted;
  detail::AppendUtf8(converted, text.data(), text.size());
  return Write(out, converted);
}

namespace {

int PrintTree(std::ostream & out, const XMLDocType * docType, const XMLElement * root, bool format,
              bool utf8) {
  ExportFormat cursor;
  cursor.SetFormat(format);
  // Intended: the declaration says UTF-8 even where WriteTree sends other bytes as they
  // stand, and the root's own line feed leaves an empty line under the header.
  if (docType != nullptr) {
    docType->ToStream(out, cursor, utf8);
  } else {
    Write(out, XMLUtil::FIRST_LINE);
    out.put('\n');
  }
  root->ToStream(out, cursor, utf8);
  return 0;
}

}  // namespace

int WriteTree(std::ostream & out, const XMLDocType * docType, const XMLElement * root,
              bool format) {
  return PrintTree(out, docType, root, format, false);
}

int WriteTreeUTF8(std::ostream & out, const XMLDocType * docType, const XMLElement * root,
                  bool format) {
  return PrintTree(out, docType, root, format, true);
}

}  // namespace ZRXML_920
