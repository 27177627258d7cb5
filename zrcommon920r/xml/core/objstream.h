// The object stream: the line format in which persistent classes save and restore
// themselves. It looks like XML but is read one element to a line, strictly in the order of
// writing, by a small scanner: there is no tree and no general parser behind it.
//
//   <ZRXMLRoot copyright="...">
//   <Obj name="ZRCatVar">
//       <Int value="3"/>
//       <String value="a&amp;b"/>
//   </Obj>
//   </ZRXMLRoot>
//
// Every element starts with its own line feed, so a stream has no line feed at its end;
// an object's lines start with one tab per level of nesting, its values with one more.
// A persistent class has
//   int WriteObjectXML(std::ostream & out, int nTabs) const;
//   int ReadObjectXML(std::istream & in);
// The writer returns 0 at once on a stream that is not clean; otherwise it writes an
// XMLObj of its literal class name at depth nTabs, its members in a fixed order (a member
// object by its own WriteObjectXML at nTabs + 1) and the end of the object, and returns the
// number of elements written, nested ones and its own start and end included. The reader
// asks for the same elements in the same order and returns their number; on a stream that
// was not clean or on any false it prints "Failure reading <class>!" and a line feed on
// std::cerr, then returns 0 (or throws a new IOException, see common/status.h).
#ifndef ZRCOMMON920R_XML_CORE_OBJSTREAM_H
#define ZRCOMMON920R_XML_CORE_OBJSTREAM_H

#include <istream>
#include <ostream>
#include <string>

namespace ZRXML_920 {

// Names of the format, set up at load time.
extern const std::string kObjStreamRoot;       // "ZRXMLRoot", the root element
extern const std::string kObjStreamCopyright;  // "copyright", the root's attribute
extern const std::string kObjStreamObj;        // "Obj", an object
extern const std::string kObjStreamName;       // "name", the object's attribute
extern const std::string kObjStreamInt;        // "Int": int, unsigned int and bool
extern const std::string kObjStreamLong;       // "Long": long
extern const std::string kObjStreamDouble;     // "Double": double
extern const std::string kObjStreamString;     // "String": string
extern const std::string kObjStreamValue;      // "value", the attribute of a value element
extern const std::string kObjStreamMissing;    // "Missing", the system-missing double
// Not used by the library: a second root name, and a file name for callers.
extern const std::string kObjStreamRootName;  // "ZRXMLRoot"
extern const std::string kObjStreamDtdFile;   // "savexml.dtd"

// Writes the root start <ZRXMLRoot copyright="..."> with copyright escaped as an attribute
// value, with no line feed before or after, and no <?xml or <!DOCTYPE line. Returns 0; the
// state of out is not inspected.
int StartRoot(std::ostream & out, std::string copyright);
// The same as StartRoot.
int WriteHeader(std::ostream & out, std::string copyright);
// Writes the root end: a line feed and </ZRXMLRoot>. Returns 0; the state of out is not
// inspected. Nothing reads it back.
int EndRoot(std::ostream & out);
// The same as EndRoot.
int EndHeader(std::ostream & out);

// The writer of one object: its name and its nesting depth, which sets the tabs that
// start its lines (the object's own lines get nTabs, its values nTabs + 1). Holds no state
// between calls. Every write returns 0 and leaves the state of out uninspected.
class XMLObj {
 public:
  XMLObj(std::string name, int nTabs);

  // The nesting depth given at construction.
  int GetNTabs() const { return fNTabs; }

  // Writes the object start: a line feed, nTabs tabs and <Obj name="name">, the name as it
  // stands (not escaped). A depth below 1 writes no tabs.
  int StartObj(std::ostream & out) const;
  // Writes an Int element, <Int value="digits"/>, on a new line at depth nTabs + 1; a bool
  // gives 0 or 1.
  int WriteSubElement(std::ostream & out, int value) const;
  int WriteSubElement(std::ostream & out, unsigned int value) const;
  int WriteSubElement(std::ostream & out, bool value) const;
  // Writes a Long element with the exact digits of value, over the whole range of long.
  int WriteSubElement(std::ostream & out, long value) const;
  // Writes a Double element: "Missing" for the system-missing value, else the "C"-locale
  // text with 15 significant digits (0.1 + 0.2 gives "0.3"; NaN "nan", infinity "inf").
  int WriteSubElement(std::ostream & out, double value) const;
  // Writes a String element with value escaped as an attribute value: references for
  // & < > " tab, line feed and carriage return, and for doubled, leading and trailing blanks.
  int WriteSubElement(std::ostream & out, const std::string & value) const;
  // The same as the string form (a literal would otherwise pick the bool form); a null
  // pointer writes an empty String.
  int WriteSubElement(std::ostream & out, const char * value) const;
  // Writes the object end: a line feed, nTabs tabs and </Obj>.
  int EndObj(std::ostream & out) const;

 private:
  // One value element of the given kind with its text.
  int WriteValue(std::ostream & out, const std::string & kind, const std::string & text) const;

  std::string fName;
  int fNTabs;
};

// The readers take one line at a time, by getline into 256 bytes: a line of 256 bytes or
// more, or a read at end of input, fails the stream and the reader returns false. A last
// line without a line feed reads normally. Tokens are compared exactly, but tabs and the
// position of tokens in the line are not checked, and no reader undoes the escaping of the
// writer ("a&amp;b" stays so). Each reader consumes one line unless it says otherwise;
// after a false the stream is left where it stands, with no attempt to resynchronise.

// Reads three lines whose first tokens must be "?xml", "!DOCTYPE" and "ZRXMLRoot" in turn;
// the rest of each line is not looked at. False at the first mismatch, missing token or
// failed read. Intended: StartRoot writes neither of the first two lines, so a stream made
// by StartRoot alone is refused; a caller writes those two lines itself.
bool ParseStartXML(std::istream & in);
// Reads an object start <Obj name="name">, true when its name equals name in length and
// bytes. An empty first line is skipped, once; the other readers skip none.
bool ParseStartObj(std::istream & in, const std::string & name);
// Reads an Int element into value: the digits as atoi takes them ("1e3" gives 1),
// saturated at the range of int. False, value unchanged, when the line is no Int element
// or has no value text.
bool ParseValue(std::istream & in, int & value);
// Reads an Int element into value: the text read as a "C"-locale double ("1e3" gives
// 1000), truncated; NaN and negatives give 0, 2^32 and more 4294967295. False, value
// unchanged, when the line is no Int element or has no value text.
bool ParseValue(std::istream & in, unsigned int & value);
// Reads a Long element into value: the digits as atol takes them, saturated at the range
// of long. False, value unchanged, when the line is no Long element or has no value text.
bool ParseValue(std::istream & in, long & value);
// Reads a Double element into value: "Missing" gives the system-missing value, else the
// longest number a "C"-locale stream extracts from the text; a text that starts with no
// number ("nan", "inf") gives 0 and true. False, value unchanged, when the line is no
// Double element or has no value text.
bool ParseValue(std::istream & in, double & value);
// Reads a String element into value, escaped text as written. A missing value text or
// value=""/> gives the empty string. False, value unchanged, when the line is no String
// element (or is 256 bytes or longer).
bool ParseValue(std::istream & in, std::string & value);
// Reads an Int element into value: atoi of the text, 0 giving false and 1 true. False,
// value unchanged, for any other number, a line that is no Int element or no value text.
bool ParseValue(std::istream & in, bool & value);
// Reads an object end </Obj>; false for any other first token or a failed read.
bool ParseEndObj(std::istream & in);

}  // namespace ZRXML_920

#endif  // ZRCOMMON920R_XML_CORE_OBJSTREAM_H
