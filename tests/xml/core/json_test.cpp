// JsonObject: printed text against hand-written JSON, the type and depth rules, and python3's
// strict json module as an independent reader of the printed text.
#include "zrcommon920r/xml/core/json.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

#include "support/locales.h"
#include "support/textio.h"
#include "zrcommon920r/common/value.h"

namespace {

using ZRXML_920::JsonObject;
using List = std::vector<JsonObject>;

constexpr double kMax = std::numeric_limits<double>::max();
const double kNaN = std::numeric_limits<double>::quiet_NaN();

// A literal must stay a string (not the bool a pointer converts to); close has no effect.
TEST(JsonObject, ScalarsIgnoreClose) {
  EXPECT_EQ(JsonObject(0.1 + 0.2).GetJsonString(false), "0.3");  // 15 digits
  EXPECT_EQ(JsonObject(false).GetJsonString(false), "false");
  EXPECT_EQ(JsonObject("x").GetJsonString(false), "\"x\"");
  EXPECT_EQ(JsonObject(static_cast<const char *>(nullptr)).GetJsonString(true), "\"\"");
  // Intended: no escaping, so a quote and a backslash go out as they are.
  EXPECT_EQ(JsonObject(std::string("say \"hi\" \\")).GetJsonString(true), "\"say \"hi\" \\\"");
}

// Keys print in byte order, not as added ("B" before "a", "a" before "ab"); a repeated key
// replaces its value in place. Nested objects close with their own "\n}\n", so the outer
// ",\n" stands on a line of its own; one tab at every depth; close false leaves only the
// outermost level open; empty values print "{\n\n}\n" and "[]".
TEST(JsonObject, KeyOrderNestingAndClose) {
  JsonObject record;
  record.AddPair("b", 1.0)
      .AddPair("ab", JsonObject(List{1.0, "s", JsonObject("k", false)}))
      .AddPair("a", JsonObject("x", std::string("y")))
      .AddPair("B", JsonObject(List()))
      .AddPair("b", JsonObject())
      .AddPair("c", true);
  const std::string body =
      "{\n"
      "\t\"B\" : [],\n"
      "\t\"a\" : {\n\t\"x\" : \"y\"\n}\n"
      ",\n"
      "\t\"ab\" : [1,\n\"s\",\n{\n\t\"k\" : false\n}\n],\n"
      "\t\"b\" : {\n\n}\n"
      ",\n"
      "\t\"c\" : true\n";
  EXPECT_EQ(record.GetJsonString(true), body + "}\n");
  EXPECT_EQ(record.GetJsonString(false), body);

  EXPECT_EQ(JsonObject().GetJsonString(false), "{\n\n");
  const JsonObject lists(List{JsonObject(List{-0.5, "t"}), JsonObject(List()), JsonObject()});
  EXPECT_EQ(lists.GetJsonString(true), "[[-0.5,\n\"t\"],\n[],\n{\n\n}\n]");
  EXPECT_EQ(lists.GetJsonString(false), "[[-0.5,\n\"t\"],\n[],\n{\n\n}\n");
  EXPECT_EQ(JsonObject(List()).GetJsonString(false), "[");
}

// Adding never changes the type: a pair on a list or scalar, an element on an object, are
// kept unprinted; Clear keeps type and scalar. Depth is the height, never lowered by adding.
TEST(JsonObject, TypeStaysAndDepthIsHeight) {
  JsonObject list{List{1.0}};
  list.AddPair("k", 2.0);
  EXPECT_EQ(list.GetJsonString(true), "[1]");
  JsonObject object("k", 1.0);
  object.AddToList(JsonObject(2.0));
  EXPECT_EQ(object.GetJsonString(true), "{\n\t\"k\" : 1\n}\n");
  object.Clear();
  EXPECT_EQ(object.GetJsonString(true), "{\n\n}\n");

  JsonObject scalar(2.5);
  EXPECT_EQ(scalar.GetDepth(), 0);
  scalar.AddPair("k", JsonObject("x", 1.0)).AddToList(JsonObject(List{}));
  EXPECT_EQ(scalar.GetDepth(), 2);  // raised by the pair although it never prints
  EXPECT_EQ(scalar.GetJsonString(true), "2.5");
  scalar.Clear();
  EXPECT_EQ(scalar.GetDepth(), 1);  // Intended: Clear sets 1, a scalar's too
  EXPECT_EQ(scalar.GetJsonString(true), "2.5");

  EXPECT_EQ(JsonObject::CreateNumDataText("age", 42.5).GetDepth(), 3);  // texts by python3 below
  EXPECT_EQ(JsonObject(List{1.0, JsonObject(List{JsonObject()})}).GetDepth(), 3);
  JsonObject deep("a", JsonObject("b", JsonObject("c", 1.0)));
  deep.AddPair("a", 1.0);
  EXPECT_EQ(deep.GetDepth(), 3);
}

// Fault guarded: adding an object to itself must copy what it was before the insertion;
// inserting first would copy a half-changed value or a moved element.
TEST(JsonObject, AddingItselfCopiesTheValueBefore) {
  JsonObject list{List{1.0}};
  list.AddToList(list).AddToList(list);
  EXPECT_EQ(list.GetJsonString(true), "[1,\n[1],\n[1,\n[1]]]");
  EXPECT_EQ(list.GetDepth(), 3);
  JsonObject object("a", 1.0);
  object.AddPair("b", object).AddPair("a", object);
  EXPECT_EQ(object.GetJsonString(true),
            "{\n\t\"a\" : {\n\t\"a\" : 1,\n\t\"b\" : {\n\t\"a\" : 1\n}\n\n}\n,\n"
            "\t\"b\" : {\n\t\"a\" : 1\n}\n\n}\n");
}

TEST(JsonObject, NumbersKeepThePointUnderACommaLocale) {
  zrtest::ScopedLocale comma("de_DE.UTF-8");
  if (!comma.ok()) GTEST_SKIP() << comma.why();
  EXPECT_EQ(JsonObject(List{-1.25, 1e-7}).GetJsonString(true), "[-1.25,\n1e-07]");
}

// python3's strict reading of text (NaN and Infinity refused too): its exit status and, on
// success, its canonical dump with sorted keys.
struct PythonRead {
  int status;
  std::string dump;
};

PythonRead ReadWithPython(const std::string & text) {
  const zrtest::ScratchFolder dir("zr_json");
  const int status = zrtest::ShellExitCode(
      "python3 -c 'import json, sys\n"
      "def refuse(name): raise ValueError(name)\n"
      "value = json.loads(open(sys.argv[1], \"rb\").read(), parse_constant=refuse)\n"
      "open(sys.argv[2], \"w\").write(json.dumps(value, sort_keys=True))' " +
      dir.Write("in.json", text) + " " + (dir / "out.json") + " 2>/dev/null");
  return {status, zrtest::ReadFile(dir / "out.json")};
}

const bool kHavePython = std::system("python3 -c pass >/dev/null 2>&1") == 0;
#define SKIP_WITHOUT_PYTHON() \
  if (!kHavePython) GTEST_SKIP() << "python3 is missing: apt-get install python3"

TEST(JsonObject, PythonReadsOrdinaryRecords) {
  SKIP_WITHOUT_PYTHON();
  JsonObject record;
  record.AddPair("n", -2.5e-7)
      .AddPair("list", JsonObject(List{1.0, true, "x", JsonObject(List()), JsonObject()}))
      .AddPair("obj", JsonObject("inner", JsonObject("z", false)))
      .AddPair("facts", JsonObject(List{JsonObject::CreateStringText("k", "v"),
                                        JsonObject::CreateVariableText("age"),
                                        JsonObject::CreateNumDataText("age", 1e-300),
                                        JsonObject::CreateStringDataText("city", "K\xC3\xB6ln")}));
  const PythonRead read = ReadWithPython(record.GetJsonString(true));
  EXPECT_EQ(read.status, 0);
  EXPECT_EQ(read.dump,
            R"({"facts": [{"text": {"stringText": {"key": "k", "value": "v"}}}, )"
            R"({"text": {"variableText": {"variable": "age"}}}, )"
            R"({"text": {"numericDataText": {"value": 1e-300, "variable": "age"}}}, )"
            R"({"text": {"stringDataText": {"value": "K\u00f6ln", "variable": "city"}}}], )"
            R"("list": [1, true, "x", [], {}], "n": -2.5e-07, "obj": {"inner": {"z": false}}})");
  EXPECT_EQ(ReadWithPython(JsonObject().GetJsonString(true)).dump, "{}");
}

// Intended: no NaN guard and no escaping, so such values give text a strict reader refuses;
// the largest doubles and the missing value print past the range of double at 15 digits and
// read back as infinities.
TEST(JsonObject, PythonRefusesNanInfinityAndRawQuotes) {
  SKIP_WITHOUT_PYTHON();
  struct {
    int line;
    JsonObject value;
    const char * text;
  } const refused[] = {
      {__LINE__, JsonObject("v", kNaN), "{\n\t\"v\" : nan\n}\n"},
      {__LINE__, JsonObject("v", "a\"b"), "{\n\t\"v\" : \"a\"b\"\n}\n"},
      {__LINE__, JsonObject("k\"", 1.0), "{\n\t\"k\"\" : 1\n}\n"},
  };
  for (const auto & c : refused) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(c.value.GetJsonString(true), c.text);
    EXPECT_NE(ReadWithPython(c.text).status, 0);
  }
  const JsonObject extremes(List{kMax, -kMax, ZRCommon_920::Value::SYSMISVALUE});
  const std::string text = extremes.GetJsonString(true);
  EXPECT_EQ(text, "[1.79769313486232e+308,\n-1.79769313486232e+308,\n-1.79769313486232e+308]");
  const PythonRead read = ReadWithPython(text);
  EXPECT_EQ(read.status, 0);
  EXPECT_EQ(read.dump, "[Infinity, -Infinity, -Infinity]");
}

}  // namespace
