// The write-only XML tree: elements, attributes, character data and a document-type header
// behind XMLInterface, the printing cursor ExportFormat, the text helpers of XMLUtil, and
// the functions that print a tree as narrow text or as UTF-8.
#ifndef ZRCOMMON920R_XML_CORE_XMLTREE_H
#define ZRCOMMON920R_XML_CORE_XMLTREE_H

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace ZRXML_920 {

class ExportFormat;

// A node of the tree. Nodes live on the heap (made by Create or Clone); an element owns
// what is added to it, and the caller owns a root and whatever is not yet added.
class XMLInterface {
 public:
  // The base holds nothing: construction, copy and assignment do nothing, and the
  // destructor is virtual so that an element can delete any node it owns.
  XMLInterface() = default;
  XMLInterface(const XMLInterface &) = default;
  XMLInterface & operator=(const XMLInterface &) = default;
  virtual ~XMLInterface() = default;

  // The node's markup appended to out, laid out by the cursor format, which moves on.
  // Returns 0; nothing here fails but allocation, which throws std::bad_alloc.
  virtual int ToString(std::string & out, ExportFormat & format) const = 0;
  // The node's markup sent to out, bytes as they stand or, when utf8, each node's text
  // converted as by WriteUTF. Returns 0; the state of the stream is not inspected.
  virtual int ToStream(std::ostream & out, ExportFormat & format, bool utf8) const = 0;
  // A deep copy of the node on the heap, owned by the caller. Throws std::bad_alloc when
  // memory runs out, leaving nothing allocated.
  virtual XMLInterface * Clone() const = 0;
};

// The cursor of one printing run: whether the next element starts a new line, whether
// nesting is shown by tabs, whether any layout is made at all, and the current level.
// A plain value; the printing operations move fIsNewParagraph and fTabs as they go.
class ExportFormat {
 public:
  // The cursor at the start of a run: new paragraph pending, no indentation, layout on,
  // level 0.
  ExportFormat() = default;

  // Whether elements are indented: true only with layout and indentation both on.
  // Any cursor state is valid; nothing fails.
  bool HasIndentation() const { return fFormat && fIndentation; }
  // Whether the next element starts on a new line: true only with layout on and a new
  // paragraph pending. Any cursor state is valid; nothing fails.
  bool IsNewParagraph() const { return fFormat && fIsNewParagraph; }
  // Each sets its one flag: layout, indentation (which acts only with layout on), and a
  // pending new paragraph. Any value is valid; the level is left alone.
  void SetFormat(bool format) { fFormat = format; }
  void SetIndentation(bool indentation) { fIndentation = indentation; }
  void SetIsNewParagraph(bool isNewParagraph) { fIsNewParagraph = isNewParagraph; }

 private:
  friend class XMLElement;
  friend class XMLString;

  bool fIsNewParagraph = true;
  bool fIndentation = false;
  bool fFormat = true;
  int fTabs = 0;
};

// An attribute: a name and a value held as text, printed as name="value" with the value
// escaped by XMLUtil::Escape and the name as it stands.
class XMLAttribute final : public XMLInterface {
 public:
  // A new attribute, owned by the caller, holding name and the value text as given; any
  // text is accepted. Throws std::bad_alloc when memory runs out.
  static XMLAttribute * Create(const std::string & name, const std::string & value);
  // A new attribute whose text is value in the "C" locale with 15 significant digits
  // (Format(value, false, nullptr)), whatever the process locale. Every double is taken:
  // NaN and infinities are kept as "nan", "inf", "-inf". Throws std::bad_alloc.
  static XMLAttribute * Create(const std::string & name, double value);
  // With fixed, a new attribute whose text is value in the "C" locale with 16 digits after
  // the point (ReplaceSep(value)): 1.5 gives "1.5000000000000000"; without, as
  // Create(name, value). Every double is taken. Throws std::bad_alloc.
  static XMLAttribute * Create(const std::string & name, double value, bool fixed);

  // Copies name and value from other. Throws std::bad_alloc when memory runs out.
  XMLAttribute & operator=(const XMLAttribute & other) = default;

  // name="value" appended to out: the name as it stands, the value escaped by
  // XMLUtil::Escape. format is left alone. Returns 0.
  int ToString(std::string & out, ExportFormat & format) const override;
  // ToString's text sent to out, converted by WriteUTF when utf8. Returns 0; the state of
  // the stream is not inspected.
  int ToStream(std::ostream & out, ExportFormat & format, bool utf8) const override;
  // A new attribute with the same name and value, owned by the caller. Throws
  // std::bad_alloc when memory runs out.
  XMLAttribute * Clone() const override;

 private:
  XMLAttribute(std::string name, std::string value);
  XMLAttribute(const XMLAttribute &) = default;

  std::string fName;
  std::string fValue;
};

// Character data. Only "&" and "<" are escaped when printed; everything else, ">" and
// line feeds included, passes unchanged.
class XMLString final : public XMLInterface {
 public:
  // A new text node, owned by the caller, holding text; any text is accepted. Throws
  // std::bad_alloc when memory runs out.
  static XMLString * Create(const std::string & text);

  // Copies the text of other. Throws std::bad_alloc when memory runs out.
  XMLString & operator=(const XMLString & other) = default;

  // The text appended to out with "&" and "<" escaped; then the new-paragraph flag of
  // format is cleared, so that an element holding only text stays on one line. Returns 0.
  int ToString(std::string & out, ExportFormat & format) const override;
  // ToString's text sent to out, converted by WriteUTF when utf8. Returns 0; the state of
  // the stream is not inspected.
  int ToStream(std::ostream & out, ExportFormat & format, bool utf8) const override;
  // A new text node with the same text, owned by the caller. Throws std::bad_alloc when
  // memory runs out.
  XMLString * Clone() const override;

 private:
  explicit XMLString(std::string text);
  XMLString(const XMLString &) = default;

  std::string fText;
};

// The document header: the XML declaration and a DOCTYPE line naming the root element and
// a system identifier, with an optional internal subset. Nothing in it is escaped.
class XMLDocType final : public XMLInterface {
 public:
  // A new header, owned by the caller, for root element name and system identifier
  // system, with an empty internal subset; number is kept with the header and never
  // printed. Any texts are accepted. Throws std::bad_alloc when memory runs out.
  static XMLDocType * Create(const std::string & name, const std::string & system,
                             std::int32_t number);

  // Copies name, system identifier, internal subset and number from other. Throws
  // std::bad_alloc when memory runs out.
  XMLDocType & operator=(const XMLDocType & other) = default;

  // The new length in bytes of the internal subset, after a line feed and text are
  // appended to it. Any text is accepted; throws std::bad_alloc when memory runs out.
  int AddExtension(const std::string & text);

  // The declaration line and the DOCTYPE line appended to out, each ended by a line feed;
  // the internal subset, when not empty, sits between "[" and "]" on lines of its own.
  // Nothing is escaped and format is left alone. Returns 0.
  int ToString(std::string & out, ExportFormat & format) const override;
  // ToString's text sent to out, converted by WriteUTF when utf8. Returns 0; the state of
  // the stream is not inspected.
  int ToStream(std::ostream & out, ExportFormat & format, bool utf8) const override;
  // A new header with the same fields, internal subset and number included, owned by the
  // caller. Throws std::bad_alloc when memory runs out.
  XMLDocType * Clone() const override;

 private:
  XMLDocType(std::string name, std::string system, std::int32_t number);
  XMLDocType(const XMLDocType &) = default;

  std::string fName;
  std::string fSystem;
  std::string fExtension;
  // Intended: kept and copied with the header, but neither printed nor read.
  [[maybe_unused]] std::int32_t fNumber = 0;
};

// An element: a name, attributes in the order added, and content (child elements and text
// nodes) in the order added. It owns every node added to it and deletes them with itself;
// null pointers may be added, are skipped when printing and stay null in a clone. Not
// copyable: Clone is the copy.
class XMLElement : public XMLInterface {
 public:
  // A new element, owned by the caller, named name, without attributes or content. The
  // name is printed as it stands, never escaped. Throws std::bad_alloc.
  static XMLElement * Create(const std::string & name);

  XMLElement(const XMLElement &) = delete;
  XMLElement & operator=(const XMLElement &) = delete;
  // Deletes every attribute and content node the element holds, skipping null pointers.
  ~XMLElement() override;

  // The element and its subtree appended to out. With layout on: a line feed before the
  // start tag when a new paragraph is pending, tabs to the level when indenting. A blank
  // (and, indenting, tabs to the next level) before each attribute; "/>" for an element
  // without content, else ">", the content and the end tag laid out as the start tag.
  // Leaves a new paragraph pending. Returns 0; throws std::bad_alloc only.
  int ToString(std::string & out, ExportFormat & format) const override;
  // The same characters sent to out in chunks, each node's text converted by WriteUTF
  // when utf8. Returns 0; the state of the stream is not inspected.
  int ToStream(std::ostream & out, ExportFormat & format, bool utf8) const override;
  // A deep copy owned by the caller: every attribute and content node cloned in order,
  // null pointers kept null. Throws std::bad_alloc, leaving nothing allocated.
  XMLElement * Clone() const override;

  // The new number of content nodes, after child is appended to the content; the element
  // owns it from then on. A null child is kept and skipped when printing. Should the
  // append throw std::bad_alloc, the child stays the caller's.
  virtual int AddElement(XMLElement * child);
  // The new number of content nodes, after the text node is appended; as for a child
  // element, the element owns it, a null one is skipped, and on a throw it stays the
  // caller's.
  virtual int AddElement(XMLString * text);

  // Appends attribute, which the element then owns, with no test for a duplicate name; a
  // null one is skipped when printing. Should the append throw std::bad_alloc, the
  // attribute stays the caller's.
  void AddAttribute(XMLAttribute * attribute);
  // Appends a new attribute holding name and the value text. Throws std::bad_alloc,
  // leaving the element unchanged.
  void AddAttribute(const std::string & name, const std::string & value);
  // Appends a new attribute with value as by XMLAttribute::Create(name, value), but only
  // for a finite value: a NaN or an infinity adds nothing and reports nothing. The
  // system-missing value, being finite, is added as a number. Throws std::bad_alloc,
  // leaving the element unchanged.
  void AddAttribute(const std::string & name, double value);
  // As AddAttribute(name, value), with the fixed form of XMLAttribute::Create when fixed.
  void AddAttribute(const std::string & name, double value, bool fixed);

 protected:
  // An element named name, for a class that extends the element; others use Create.
  explicit XMLElement(std::string name);

 private:
  // Appends the start-tag layout, "<" and the name (converted when utf8).
  void OpenTag(std::string & out, ExportFormat & format, bool utf8) const;
  // Appends the end-tag layout at level, "</", the name and ">".
  void CloseTag(std::string & out, const ExportFormat & format, int level, bool utf8) const;

  std::vector<XMLAttribute *> fAttributes;
  std::string fName;
  std::vector<XMLInterface *> fContent;
};

// Text helpers of the writer and the markup strings it is made of.
class XMLUtil {
 public:
  static inline const std::string AMPERSAND = "&";
  static inline const std::string BEGIN_ELEMENT = "<";
  static inline const std::string BEGIN_END_ELEMENT = "/";
  static inline const std::string BEGIN_PREPROCESSOR = "!";
  static inline const std::string END_ELEMENT = ">";
  static inline const std::string EQUAL = "=";
  static inline const std::string FIRST_LINE = "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>";
  static inline const std::string GREATER_THAN = ">";
  static inline const std::string ITEMINDENT = "\t";
  static inline const std::string LESS_THAN = "<";
  static inline const std::string QUOTE = "\"";
  static inline const std::string ROWSEP = "\n";
  static inline const std::string SPACE = " ";
  // Intended: published with the other constants, though the printing never uses it.
  static constexpr int TAB_LENGTH = 8;
  static inline const std::string XML_AMPERSAND = "&amp;";
  static inline const std::string XML_CHARREF_CR = "&#13;";
  static inline const std::string XML_CHARREF_NL = "&#10;";
  static inline const std::string XML_CHARREF_SP = "&#32;";
  static inline const std::string XML_CHARREF_TAB = "&#9;";
  static inline const std::string XML_GREATER_THAN = "&gt;";
  static inline const std::string XML_LESS_THAN = "&lt;";
  static inline const std::string XML_QUOTE = "&quot;";
  static inline const std::string XML_SP_CHARREF_SP = " &#32;";

  // value in decimal, as "%d" prints it: digits with a leading minus when negative. Every
  // int is taken; nothing fails but allocation.
  static std::string toString(int value);
  // count tab characters; empty when count is below 1. Nothing fails but allocation, which
  // throws std::bad_alloc.
  static std::string GetTabs(int count);
  // text made fit for an attribute value: "&", "<", ">", the double quote, tab, line feed
  // and carriage return become references; of each run of blanks every second blank
  // becomes "&#32;", and so do a leading blank and a trailing one. "  a" gives
  // "&#32;&#32;a", "a   b" gives "a &#32; b", " " gives "&#32;". Any bytes are taken;
  // those not named pass unchanged.
  static std::string Escape(const std::string & text);
  // The position where the replacement begins, after the first occurrence of pattern in
  // text is replaced by replacement; -1 when pattern does not occur or is null or empty,
  // text then unchanged.
  static int ReplaceString(std::string & text, const char * pattern,
                           const std::string & replacement);
  // Replaces every occurrence of pattern, searching on after each replacement, so a
  // replacement holding the pattern is not replaced again. Returns one less than where
  // the last, failed search began, or -1 when nothing was replaced or pattern is null or
  // empty (text unchanged): a position, not a count.
  static int ReplaceAll(std::string & text, const char * pattern, const std::string & replacement);
};

// The bytes of text sent to out as they are, NUL bytes included. Returns 0; the state of
// the stream is not inspected.
int Write(std::ostream & out, const std::string & text);
// Sends text converted to UTF-8 from the codeset of the calling thread's LC_CTYPE locale,
// read as ISO-8859-1 when that codeset is ASCII (the "C" and "POSIX" locales) or unknown
// to iconv. Each byte the codeset rejects becomes U+FFFD and reading goes on at the next
// byte, so the output is always UTF-8. Returns 0; the state of the stream is not inspected.
int WriteUTF(std::ostream & out, const std::string & text);
// Prints a document: docType (or, when null, the XML declaration and a line feed), then
// root, laid out when format (each element on a new line, none at the end), with no
// indentation and bytes as they stand, so the output is UTF-8 only for text that was.
// root must not be null. Returns 0; the state of the stream is not inspected.
int WriteTree(std::ostream & out, const XMLDocType * docType, const XMLElement * root, bool format);
// A document printed as by WriteTree, with every node's text, the header included,
// converted by WriteUTF. root must not be null. Returns 0.
int WriteTreeUTF8(std::ostream & out, const XMLDocType * docType, const XMLElement * root,
                  bool format);

}  // namespace ZRXML_920

#endif  // ZRCOMMON920R_XML_CORE_XMLTREE_H
