// JsonObject: construction, the depth bookkeeping of added children, and printing, which
// appends each value's text to one string.
#include "zrcommon920r/xml/core/json.h"

#include <utility>

#include "zrcommon920r/xml/core/numtext.h"

namespace ZRXML_920 {

JsonObject::JsonObject() : fType(object), fDepth(1) {}

JsonObject::JsonObject(double value) : fType(number), fDepth(0), fNumber(value) {}

JsonObject::JsonObject(bool value) : fType(boolean), fDepth(0), fBool(value) {}

JsonObject::JsonObject(const std::string & value) : fType(string), fDepth(0), fString(value) {}

JsonObject::JsonObject(const char * value)
    : fType(string), fDepth(0), fString(value != nullptr ? value : "") {}

JsonObject::JsonObject(const std::vector<JsonObject> & values)
    : fType(list), fDepth(1), fList(values) {
  for (const JsonObject & element : fList) RaiseDepth(element.fDepth);
}

JsonObject::JsonObject(const std::string & key, const JsonObject & value) : JsonObject() {
  AddPair(key, value);
}

JsonObject::JsonObject(const std::string & key, const char * value) : JsonObject() {
  AddPair(key, value);
}

JsonObject::JsonObject(const std::string & key, const std::string & value) : JsonObject() {
  AddPair(key, value);
}

JsonObject::JsonObject(const std::string & key, double value) : JsonObject() {
  AddPair(key, value);
}

JsonObject::JsonObject(const std::string & key, bool value) : JsonObject() {
  AddPair(key, value);
}

void JsonObject::RaiseDepth(int childDepth) {
  if (childDepth + 1 > fDepth) fDepth = childDepth + 1;
}

JsonObject & JsonObject::AddPair(const std::string & key, const JsonObject & value) {
  // Copies first: key or value may live inside this object, and inserting the key would
  // change or move them.
  std::string keyCopy(key);
  JsonObject valueCopy(value);
  RaiseDepth(valueCopy.fDepth);
  fPairs[std::move(keyCopy)] = std::move(valueCopy);
  return *this;
}

JsonObject & JsonObject::AddPair(const std::string & key, double value) {
  return AddPair(key, JsonObject(value));
}

JsonObject & JsonObject::AddPair(const std::string & key, const std::string & value) {
  return AddPair(key, JsonObject(value));
}

JsonObject & JsonObject::AddPair(const std::string & key, bool value) {
  return AddPair(key, JsonObject(value));
}

JsonObject & JsonObject::AddPair(const std::string & key, const char * value) {
  return AddPair(key, JsonObject(value));
}

JsonObject & JsonObject::AddToList(const JsonObject & value) {
  JsonObject valueCopy(value);  // value may be this object or one of its elements
  RaiseDepth(valueCopy.fDepth);
  fList.push_back(std::move(valueCopy));
  return *this;
}

void JsonObject::Clear() {
  fPairs.clear();
  fList.clear();
  fDepth = 1;  // Intended: a cleared scalar has depth 1 too.
}

std::string JsonObject::GetJsonString(bool close) const {
  std::string out;
  Append(out, close);
  return out;
}

void JsonObject::Append(std::string & out, bool close) const {
  switch (fType) {
    case string:
      // Intended: no escaping; a quote or backslash inside goes out as it is.
      out += '"';
      out += fString;
      out += '"';
      break;
    case number:
      // Intended: no guard against NaN or infinities, which print as "nan", "inf".
      out += Format(fNumber, false, nullptr);
      break;
    case boolean:
      out += fBool ? "true" : "false";
      break;
    case list:
      out += '[';
      for (std::size_t i = 0; i < fList.size(); ++i) {
        if (i > 0) out += ",\n";
        fList[i].Append(out, true);
      }
      if (close) out += ']';
      break;
    case object: {
      out += "{\n";
      bool first = true;
      for (const auto & pair : fPairs) {
        // Intended: after a nested object's own "\n}\n" this separator stands on a line of its
        // own, and every pair line has one tab whatever its depth.
        if (!first) out += ",\n";
        first = false;
        out += "\t\"";
        out += pair.first;
        out += "\" : ";
        pair.second.Append(out, true);
      }
      out += '\n';
      if (close) out += "}\n";
      break;
    }
  }
}

JsonObject JsonObject::TextRecord(const std::string & kind, const JsonObject & body) {
  return JsonObject("text", JsonObject(kind, body));
}

JsonObject JsonObject::CreateStringText(const std::string & key, const std::string & value) {
  return TextRecord("stringText", JsonObject("key", key).AddPair("value", value));
}

JsonObject JsonObject::CreateVariableText(const std::string & variable) {
  return TextRecord("variableText", JsonObject("variable", variable));
}

JsonObject JsonObject::CreateNumDataText(const std::string & variable, double value) {
  return TextRecord("numericDataText", JsonObject("variable", variable).AddPair("value", value));
}

JsonObject JsonObject::CreateStringDataText(const std::string & variable,
                                            const std::string & value) {
  return TextRecord("stringDataText", JsonObject("variable", variable).AddPair("value", value));
}

}  // namespace ZRXML_920
