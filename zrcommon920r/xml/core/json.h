// JSON text: JsonObject, one JSON value (a string, number, boolean, list or object of
// values) that prints itself, and the four factories of the short text records that
// procedures pass upward. It only writes; there is no parsing.
#ifndef ZRCOMMON920R_XML_CORE_JSON_H
#define ZRCOMMON920R_XML_CORE_JSON_H

#include <map>
#include <string>
#include <vector>

namespace ZRXML_920 {

// One JSON value, owned by value: copies are deep. Its type is fixed by the constructor;
// no later operation changes it. Its depth is the height of the value: 0 for a scalar, at
// least 1 for a list or object, raised by every child added to one more than the child's.
// The scalar constructors are implicit, so that AddToList and lists take plain values.
class JsonObject {
 public:
  enum ObjectType { string = 0, number = 1, boolean = 2, list = 3, object = 4 };

  // An empty object: type object, depth 1.
  JsonObject();
  // A number, printed as 15 significant digits in the "C" locale; NaN, infinities and the
  // system-missing value are kept as they are and print as the run-time prints them.
  JsonObject(double value);
  // A boolean, printed "true" or "false".
  JsonObject(bool value);
  // A string, printed between double quotes byte for byte: no character is escaped, so a
  // quote, backslash or control character in value gives text that is not valid JSON.
  JsonObject(const std::string & value);
  // A string as above; a null pointer gives the empty string.
  JsonObject(const char * value);
  // A list of copies of values, in order: depth 1, or one more than the deepest element.
  explicit JsonObject(const std::vector<JsonObject> & values);
  // An object with the one pair key = value, the value given as a JsonObject, a string, a
  // number or a boolean; depth one more than the value's, at least 1.
  JsonObject(const std::string & key, const JsonObject & value);
  JsonObject(const std::string & key, const char * value);
  JsonObject(const std::string & key, const std::string & value);
  JsonObject(const std::string & key, double value);
  JsonObject(const std::string & key, bool value);

  // The type given at construction.
  ObjectType GetType() const { return fType; }
  // The height of the value, as above; printing does not read it.
  int GetDepth() const { return fDepth; }

  // Sets the pair key to a copy of value, replacing an earlier value of that key, and
  // raises the depth to the value's plus one when that is more; returns *this. The type is
  // left as it is: on a scalar or a list the pair is kept but never printed. value may be
  // this object or a part of it.
  JsonObject & AddPair(const std::string & key, const JsonObject & value);
  JsonObject & AddPair(const std::string & key, double value);
  JsonObject & AddPair(const std::string & key, const std::string & value);
  JsonObject & AddPair(const std::string & key, bool value);
  JsonObject & AddPair(const std::string & key, const char * value);
  // Appends a copy of value to the list elements and raises the depth as AddPair does;
  // returns *this. The type is left as it is: on anything but a list the element is kept
  // but never printed. value may be this object or a part of it.
  JsonObject & AddToList(const JsonObject & value);
  // Removes every pair and list element and sets the depth to 1, a scalar's too; the type
  // and the scalar value are left as they are.
  void Clear();

  // The value as JSON text. A string is quoted without escaping; a number is the "C"-locale
  // "%.15g" text (so "nan" or "inf" may appear); a list is "[", its elements joined by
  // ",\n", "]"; an object is "{\n", its pairs in byte order of the keys, each a tab, the
  // quoted key, " : " and the value, joined by ",\n", then "\n}\n". close false leaves off
  // the final "]" or "}\n" of the outermost level only, so the caller may append and close
  // it; nested values are always closed, and a scalar ignores close.
  std::string GetJsonString(bool close) const;

  // {"text": {"stringText": {"key": key, "value": value}}}, both strings.
  static JsonObject CreateStringText(const std::string & key, const std::string & value);
  // {"text": {"variableText": {"variable": variable}}}.
  static JsonObject CreateVariableText(const std::string & variable);
  // {"text": {"numericDataText": {"variable": variable, "value": value}}}, value a number.
  static JsonObject CreateNumDataText(const std::string & variable, double value);
  // {"text": {"stringDataText": {"variable": variable, "value": value}}}, value a string.
  static JsonObject CreateStringDataText(const std::string & variable, const std::string & value);

 private:
  // A one-pair object whose value is a text record of the given kind: the shape shared by
  // the factories.
  static JsonObject TextRecord(const std::string & kind, const JsonObject & body);
  void Append(std::string & out, bool close) const;
  void RaiseDepth(int childDepth);

  ObjectType fType;
  int fDepth;
  double fNumber = 0.0;
  bool fBool = false;
  std::string fString;
  std::vector<JsonObject> fList;
  std::map<std::string, JsonObject> fPairs;
};

}  // namespace ZRXML_920

#endif  // ZRCOMMON920R_XML_CORE_JSON_H
