// The object stream: XMLObj, the root writers, and the line scanner behind the readers.
// Numbers are read in the "C" locale whatever the process locale, and the scanner keeps
// its position in a local object, so readers on separate threads do not interfere.
#include "zrcommon920r/xml/core/objstream.h"

#include <cstring>
#include <limits>
#include <locale>
#include <new>
#include <sstream>
#include <string>
#include <utility>

#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/xml/core/numtext.h"
#include "zrcommon920r/xml/core/xmltree.h"

#include <locale.h>  // newlocale, locale_t
#include <stdlib.h>  // strtod_l

namespace ZRXML_920 {

const std::string kObjStreamRoot = "ZRXMLRoot";
const std::string kObjStreamCopyright = "copyright";
const std::string kObjStreamObj = "Obj";
const std::string kObjStreamName = "name";
const std::string kObjStreamInt = "Int";
const std::string kObjStreamLong = "Long";
const std::string kObjStreamDouble = "Double";
const std::string kObjStreamString = "String";
const std::string kObjStreamValue = "value";
const std::string kObjStreamMissing = "Missing";
const std::string kObjStreamRootName = "ZRXMLRoot";
const std::string kObjStreamDtdFile = "savexml.dtd";

namespace {

// getline's buffer: a line of kLineBuffer bytes or more fails the read.
constexpr std::streamsize kLineBuffer = 256;

// Delimiter sets of the scanner, each for its step.
constexpr const char * kHeaderDelims = " \t\r\n<>=\"";  // first token of the header lines
constexpr const char * kObjDelims = " \t\r\n<=\"";      // "Obj" and "name"
constexpr const char * kQuoteDelim = "\"";              // the object name
constexpr const char * kElementDelims = " \t\r\n=<\"";  // element name, number text
constexpr const char * kKeywordDelims = "=\"";          // "value"
constexpr const char * kStringDelims = "\r\n\"";        // string text
constexpr const char * kEndDelims = " \t\r\n<>";        // "/Obj"

constexpr const char * kXmlDeclToken = "?xml";
constexpr const char * kDocTypeToken = "!DOCTYPE";
constexpr const char * kEndObjToken = "/Obj";
// What an empty string value leaves around its token: the delimiters eat both quotes of
// value=""/> and the token comes back as "/>".
constexpr char kEmptyStringTail[] = "\"\"/>";

// Splits a NUL-terminated line in place with strtok's rules: leading delimiters are
// skipped, a token runs to the next delimiter, which is overwritten by NUL, and the next
// call starts after it. Each call may name its own delimiters. The position lives in the
// object, not in static state.
class LineTokens {
 public:
  explicit LineTokens(char * line) : fNext(line) {}

  // The next token, or null when only delimiters remain.
  char * Next(const char * delims) {
    char * begin = fNext + std::strspn(fNext, delims);
    if (*begin == '\0') {
      fNext = begin;
      return nullptr;
    }
    char * end = begin + std::strcspn(begin, delims);
    fNext = end;
    if (*end != '\0') {
      *end = '\0';
      ++fNext;
    }
    return begin;
  }

 private:
  char * fNext;
};

// Reads one line into line; false when the stream fails (end of input before any byte, a
// line of kLineBuffer bytes or more, or a stream that was already failed).
bool ReadLine(std::istream & in, char (&line)[kLineBuffer]) {
  in.getline(line, kLineBuffer);
  return !in.fail();
}

bool IsToken(const char * token, const char * want) {
  return token != nullptr && std::strcmp(token, want) == 0;
}

bool IsToken(const char * token, const std::string & want) {
  return token != nullptr && want == token;
}

// Reads one line of a value element and checks that its first token is element and its
// second "value"; token is then the next token by delims, null when there is none.
bool ReadValueToken(std::istream & in, const std::string & element, const char * delims,
                    char (&line)[kLineBuffer], char *& token) {
  if (!ReadLine(in, line)) return false;
  LineTokens tokens(line);
  if (!IsToken(tokens.Next(kElementDelims), element)) return false;
  if (!IsToken(tokens.Next(kKeywordDelims), kObjStreamValue)) return false;
  token = tokens.Next(delims);
  return true;
}

// White space as isspace sees it in the "C" locale.
bool IsCSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

// The integer at the start of text as atoi and atol read it in the "C" locale: leading
// white space, an optional sign, then decimal digits up to the first other character (no
// digits give 0). Saturates at the range of Int instead of overflowing.
template <class Int>
Int ParseDecimal(const char * text) {
  constexpr Int kMax = std::numeric_limits<Int>::max();
  constexpr Int kMin = std::numeric_limits<Int>::min();
  while (IsCSpace(*text)) ++text;
  bool negative = false;
  if (*text == '+' || *text == '-') negative = *text++ == '-';
  Int result = 0;
  for (; *text >= '0' && *text <= '9'; ++text) {
    const Int digit = static_cast<Int>(*text - '0');
    if (negative) {
      if (result < (kMin + digit) / 10) return kMin;  // division rounds up here
      result = result * 10 - digit;
    } else {
      if (result > (kMax - digit) / 10) return kMax;
      result = result * 10 + digit;
    }
  }
  return result;
}

// The "C" locale as a handle for the _l conversion functions, made once.
locale_t CLocale() {
  static const locale_t c = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(0));
  if (c == static_cast<locale_t>(0)) throw std::bad_alloc();
  return c;
}

// atof in the "C" locale: strtod's full syntax (hexadecimal, "inf", "nan"), 0 for no number.
double ParseCDouble(const char * text) {
  return strtod_l(text, nullptr, CLocale());
}

// value truncated to unsigned int: NaN and values below 1 give 0, values of 2^32 or more
// the largest unsigned int.
unsigned int TruncateToUnsigned(double value) {
  constexpr unsigned int kMax = std::numeric_limits<unsigned int>::max();
  constexpr double kLimit = static_cast<double>(kMax) + 1.0;  // exact: 2^32
  if (!(value > 0.0)) return 0;
  if (value >= kLimit) return kMax;
  return static_cast<unsigned int>(value);
}

// Sends text to out as it stands.
void Send(std::ostream & out, const std::string & text) {
  out.write(text.data(), static_cast<std::streamsize>(text.size()));
}

}  // namespace

int StartRoot(std::ostream & out, std::string copyright) {
  Send(out, "<" + kObjStreamRoot + " " + kObjStreamCopyright + "=\"" + XMLUtil::Escape(copyright) +
                "\">");
  return 0;
}

int WriteHeader(std::ostream & out, std::string copyright) {
  return StartRoot(out, std::move(copyright));
}

int EndRoot(std::ostream & out) {
  Send(out, "\n</" + kObjStreamRoot + ">");
  return 0;
}

int EndHeader(std::ostream & out) {
  return EndRoot(out);
}

XMLObj::XMLObj(std::string name, int nTabs) : fName(std::move(name)), fNTabs(nTabs) {}

int XMLObj::StartObj(std::ostream & out) const {
  Send(out, "\n" + XMLUtil::GetTabs(fNTabs) + "<" + kObjStreamObj + " " + kObjStreamName + "=\"" +
                fName + "\">");
  return 0;
}

int XMLObj::WriteSubElement(std::ostream & out, int value) const {
  return WriteValue(out, kObjStreamInt, Format(static_cast<double>(value), false, nullptr));
}

int XMLObj::WriteSubElement(std::ostream & out, unsigned int value) const {
  return WriteValue(out, kObjStreamInt, Format(static_cast<double>(value), false, nullptr));
}

int XMLObj::WriteSubElement(std::ostream & out, bool value) const {
  return WriteValue(out, kObjStreamInt, value ? "1" : "0");
}

int XMLObj::WriteSubElement(std::ostream & out, long value) const {
  // Exact digits: a 64-bit long past 2^53 would not survive the trip through a double.
  return WriteValue(out, kObjStreamLong, Format(value));
}

int XMLObj::WriteSubElement(std::ostream & out, double value) const {
  const bool missing = value == ZRCommon_920::kSysMisValue;
  return WriteValue(out, kObjStreamDouble,
                    missing ? kObjStreamMissing : Format(value, false, nullptr));
}

int XMLObj::WriteSubElement(std::ostream & out, const std::string & value) const {
  return WriteValue(out, kObjStreamString, XMLUtil::Escape(value));
}

int XMLObj::WriteSubElement(std::ostream & out, const char * value) const {
  return WriteSubElement(out, std::string(value != nullptr ? value : ""));
}

int XMLObj::EndObj(std::ostream & out) const {
  Send(out, "\n" + XMLUtil::GetTabs(fNTabs) + "</" + kObjStreamObj + ">");
  return 0;
}

int XMLObj::WriteValue(std::ostream & out, const std::string & kind,
                       const std::string & text) const {
  // The depth of the object's values, without overflow at the top of int.
  const int depth = fNTabs < std::numeric_limits<int>::max() ? fNTabs + 1 : fNTabs;
  Send(out,
       "\n" + XMLUtil::GetTabs(depth) + "<" + kind + " " + kObjStreamValue + "=\"" + text + "\"/>");
  return 0;
}

bool ParseStartXML(std::istream & in) {
  const char * const firstTokens[] = {kXmlDeclToken, kDocTypeToken, kObjStreamRoot.c_str()};
  for (const char * want : firstTokens) {
    char line[kLineBuffer];
    if (!ReadLine(in, line)) return false;
    LineTokens tokens(line);
    if (!IsToken(tokens.Next(kHeaderDelims), want)) return false;
  }
  return true;
}

bool ParseStartObj(std::istream & in, const std::string & name) {
  char line[kLineBuffer];
  if (!ReadLine(in, line)) return false;
  // The writer starts every element with a line feed, so a stream holding objects alone
  // begins with an empty line.
  if (line[0] == '\0' && !ReadLine(in, line)) return false;
  LineTokens tokens(line);
  if (!IsToken(tokens.Next(kObjDelims), kObjStreamObj)) return false;
  if (!IsToken(tokens.Next(kObjDelims), kObjStreamName)) return false;
  return IsToken(tokens.Next(kQuoteDelim), name);
}

bool ParseValue(std::istream & in, int & value) {
  char line[kLineBuffer];
  char * text = nullptr;
  if (!ReadValueToken(in, kObjStreamInt, kElementDelims, line, text) || text == nullptr) {
    return false;
  }
  // Intended: atoi's reading, so "1e3" is 1 (the unsigned reader makes it 1000).
  value = ParseDecimal<int>(text);
  return true;
}

bool ParseValue(std::istream & in, unsigned int & value) {
  char line[kLineBuffer];
  char * text = nullptr;
  if (!ReadValueToken(in, kObjStreamInt, kElementDelims, line, text) || text == nullptr) {
    return false;
  }
  value = TruncateToUnsigned(ParseCDouble(text));
  return true;
}

bool ParseValue(std::istream & in, long & value) {
  char line[kLineBuffer];
  char * text = nullptr;
  if (!ReadValueToken(in, kObjStreamLong, kElementDelims, line, text) || text == nullptr) {
    return false;
  }
  value = ParseDecimal<long>(text);
  return true;
}

bool ParseValue(std::istream & in, double & value) {
  char line[kLineBuffer];
  char * text = nullptr;
  if (!ReadValueToken(in, kObjStreamDouble, kElementDelims, line, text) || text == nullptr) {
    return false;
  }
  if (kObjStreamMissing == text) {
    value = ZRCommon_920::kSysMisValue;
    return true;
  }
  std::istringstream number(text);
  number.imbue(std::locale::classic());
  double read = 0.0;
  // Intended: true whether or not a number was extracted; a failed extraction stores 0,
  // so "nan" and "inf", which the writer makes, read back as 0.
  number >> read;
  value = read;
  return true;
}

bool ParseValue(std::istream & in, std::string & value) {
  char line[kLineBuffer];
  char * text = nullptr;
  if (!ReadValueToken(in, kObjStreamString, kStringDelims, line, text)) return false;
  // Intended: only the four bytes ""/> are looked at, so value=""/>junk is empty too.
  const bool emptyValue =
      text == nullptr || (text - line >= 2 && std::memcmp(text - 2, kEmptyStringTail,
                                                          sizeof kEmptyStringTail - 1) == 0);
  value = emptyValue ? std::string() : std::string(text);
  return true;
}

bool ParseValue(std::istream & in, bool & value) {
  char line[kLineBuffer];
  char * text = nullptr;
  if (!ReadValueToken(in, kObjStreamInt, kElementDelims, line, text) || text == nullptr) {
    return false;
  }
  const int number = ParseDecimal<int>(text);
  if (number != 0 && number != 1) return false;
  value = number == 1;
  return true;
}

bool ParseEndObj(std::istream & in) {
  char line[kLineBuffer];
  if (!ReadLine(in, line)) return false;
  LineTokens tokens(line);
  return IsToken(tokens.Next(kEndDelims), kEndObjToken);
}

}  // namespace ZRXML_920
