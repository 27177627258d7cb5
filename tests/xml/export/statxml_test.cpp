// The StatXML factories: every element by hand, the list quirks, the ownership of handed
// elements, and whole documents checked by xmllint.
#include "zrcommon920r/xml/export/statxml.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "support/locales.h"
#include "support/markup.h"
#include "support/xmllint.h"
#include "zrcommon920r/common/value.h"

namespace {

using namespace ZRXML_920;
using U = ZRStatXMLUtil;
using Strings = std::vector<std::string>;
using Make = std::function<XMLElement *()>;

const double kMiss = ZRCommon_920::Value::SYSMISVALUE;

// The markup of made without layout, "(null)" for a null pointer; made is deleted.
constexpr auto & Text = zrtest::TakeFlatMarkup;

// An element that counts the live instances, to see who deletes a handed element.
class Tracked final : public XMLElement {
 public:
  Tracked(int & alive, const std::string & name) : XMLElement(name), fAlive(alive) { ++fAlive; }
  ~Tracked() override { --fAlive; }

 private:
  int & fAlive;
};

// One row of a table: the text an element printed and the text written by hand.
struct Case {
  int line;
  std::string got;
  std::string want;
};

void ExpectTexts(const std::vector<Case> & cases) {
  for (const Case & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(c.got, c.want);
  }
}

TEST(ZRStatXMLUtilRoot, NamespaceVersionAndSchemaInOrder) {
  EXPECT_EQ(Text(U::BuildRoot()),
            "<StatXML xmlns=\"http://zrcommon920r.org/statxml\""
            " xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" version=\"1.0\""
            " xsi:schemaLocation=\"http://zrcommon920r.org/statxml"
            " http://zrcommon920r.org/statxml/statxml-1.0.xsd\"/>");
}

TEST(ZRStatXMLUtilGeneric, AttributesInOrderNonFiniteNumbersLeftOut) {
  ExpectTexts({
      {__LINE__, Text(U::CreateElem("e", "a", "x&\"y")), "<e a=\"x&amp;&quot;y\"/>"},
      {__LINE__, Text(U::CreateElem("e", "a", 2.5)), "<e a=\"2.5\"/>"},
      {__LINE__, Text(U::CreateElem("e", "a", NAN)), "<e/>"},
      {__LINE__, Text(U::CreateElem("e", "b", "2", "a", "1")), "<e b=\"2\" a=\"1\"/>"},
      {__LINE__, Text(U::CreateElem("e", "a", 1.0, "b", INFINITY)), "<e a=\"1\"/>"},
      {__LINE__, Text(U::CreateElem("e", "a", "", "b", "", "c", "3")),
       "<e a=\"\" b=\"\" c=\"3\"/>"},
      {__LINE__, Text(U::CreateElem("e", "a", 0.1, "b", -0.0, "c", 1e20)),
       "<e a=\"0.1\" b=\"-0\" c=\"1e+20\"/>"},
  });
}

TEST(ZRStatXMLUtilHolders, DescriptionOnlyWhenNotEmpty) {
  ExpectTexts({
      {__LINE__, Text(U::CreateElemUnivarData("")), "<UnivariateData/>"},
      {__LINE__, Text(U::CreateElemUnivarData("age")), "<UnivariateData description=\"age\"/>"},
      {__LINE__, Text(U::CreateElemBivarData("a by b")), "<BivariateData description=\"a by b\"/>"},
      {__LINE__, Text(U::CreateElemMultivariateData("")), "<MultivariateData/>"},
      {__LINE__, Text(U::CreateElemStructuredData("s")), "<StructuredData description=\"s\"/>"},
  });
}

TEST(ZRStatXMLUtilCounts, EachFrequencyWithinItsRange) {
  ExpectTexts({
      {__LINE__, Text(U::CreateElemCounts(10, 2, 1, 3)),
       "<Counts totalFreq=\"10\" missingFreq=\"2\" invalidFreq=\"1\" cardinality=\"3\"/>"},
      // Intended: a system-missing total is written as a number; the others are dropped.
      {__LINE__, Text(U::CreateElemCounts(kMiss, kMiss, kMiss, -1)),
       "<Counts totalFreq=\"-1.79769313486232e+308\"/>"},
      {__LINE__, Text(U::CreateElemCounts(NAN, INFINITY, NAN, INFINITY)), "<Counts/>"},
      {__LINE__, Text(U::CreateElemCounts(0, 0, -5, 0)),
       "<Counts totalFreq=\"0\" missingFreq=\"0\" invalidFreq=\"-5\" cardinality=\"0\"/>"},
      {__LINE__, Text(U::CreateElemCounts(ZRXMLCounts())), "<Counts totalFreq=\"0\"/>"},
      {__LINE__, Text(U::CreateElemCounts(ZRXMLCounts(4.5, 1, -INFINITY, 2))),
       "<Counts totalFreq=\"4.5\" missingFreq=\"1\" cardinality=\"2\"/>"},
  });
}

TEST(ZRStatXMLUtilRecords, StatisticFieldInfoCovariateFactorParameterLabel) {
  ExpectTexts({
      {__LINE__, Text(U::CreateElemStatistic("mean", "n/a")),
       "<Statistic name=\"mean\" value=\"n/a\"/>"},
      {__LINE__, Text(U::CreateElemStatistic("mean", 0.25)),
       "<Statistic name=\"mean\" value=\"0.25\"/>"},
      {__LINE__, Text(U::CreateElemStatistic("mean", NAN)), "<Statistic name=\"mean\"/>"},
      {__LINE__, Text(U::CreateElemStatistic("min", kMiss)),
       "<Statistic name=\"min\" value=\"-1.79769313486232e+308\"/>"},
      {__LINE__, Text(U::CreateElemFieldInfo("x", "", true)),
       "<FieldInfo fieldName=\"x\" isNull=\"true\"/>"},
      {__LINE__, Text(U::CreateElemFieldInfo("x", "a b", false)),
       "<FieldInfo fieldName=\"x\" fieldValue=\"a b\" isNull=\"false\"/>"},
      {__LINE__, Text(U::CreateElemFieldInfo("x", 3.0, false)),
       "<FieldInfo fieldName=\"x\" fieldValue=\"3\" isNull=\"false\"/>"},
      {__LINE__, Text(U::CreateElemFieldInfo("x", INFINITY, true)),
       "<FieldInfo fieldName=\"x\" isNull=\"true\"/>"},
      {__LINE__, Text(U::CreateElemCovariate("age", 2)), "<Covariate field=\"age\" power=\"2\"/>"},
      {__LINE__, Text(U::CreateElemFactor("drive", "rear", false)),
       "<Factor field=\"drive\" value=\"rear\" nest=\"false\"/>"},
      {__LINE__, Text(U::CreateElemFactor("drive", 2.0, true)),
       "<Factor field=\"drive\" value=\"2\" nest=\"true\"/>"},
      {__LINE__, Text(U::CreateElemFactor("d", NAN, false)),
       "<Factor field=\"d\" nest=\"false\"/>"},
      {__LINE__, Text(U::CreateElemRegressionParameter("", true)),
       "<RegressionParameter isIntercept=\"true\"/>"},
      {__LINE__, Text(U::CreateElemRegressionParameter("b1", false)),
       "<RegressionParameter name=\"b1\" isIntercept=\"false\"/>"},
      {__LINE__, Text(U::CreateElemLabel("")), "<Label label=\"\"/>"},
      {__LINE__, Text(U::CreateElemLabel("x", nullptr)), "<Label label=\"x\"/>"},
      {__LINE__, Text(U::CreateElemLabel("x", U::CreateElemCovariate("age", 1))),
       "<Label label=\"x\"><Covariate field=\"age\" power=\"1\"/></Label>"},
      {__LINE__,
       Text(U::CreateElemRegressionParameter({U::CreateElemCovariate("age", 1), nullptr},
                                             {nullptr, U::CreateElemFactor("d", "all", true)}, "p",
                                             false)),
       "<RegressionParameter name=\"p\" isIntercept=\"false\"><Covariate field=\"age\" "
       "power=\"1\"/><Factor field=\"d\" value=\"all\" nest=\"true\"/></RegressionParameter>"},
      {__LINE__,
       Text(U::CreateElemLabel({U::CreateElemCovariate("age", 1)},
                               {U::CreateElemFactor("drive", "rear", false)}, "", false,
                               "age x drive")),
       "<Label label=\"age x drive\"><RegressionParameter isIntercept=\"false\"><Covariate "
       "field=\"age\" power=\"1\"/><Factor field=\"drive\" value=\"rear\" nest=\"false\"/>"
       "</RegressionParameter></Label>"},
  });
}

TEST(ZRStatXMLUtilArray, IntegerListsPointerFormKeepsOneDigitAndNoCount) {
  const int some[] = {123, 5};
  const int rounded[] = {0, -7, 14, 96, 1000000};
  ExpectTexts({
      // Intended: "%.0g" in the pointer form.
      {__LINE__, Text(U::CreateElemArray(some, 2)), "<Array type=\"int\">1e+02 5</Array>"},
      {__LINE__, Text(U::CreateElemArray(rounded, 5)),
       "<Array type=\"int\">0 -7 1e+01 1e+02 1e+06</Array>"},
      {__LINE__, Text(U::CreateElemArray(some, 0)), "<Array type=\"int\"/>"},
      {__LINE__, Text(U::CreateElemArray(some, -1)), "<Array type=\"int\"/>"},
      {__LINE__, Text(U::CreateElemArray(static_cast<const int *>(nullptr), 3)),
       "<Array type=\"int\"/>"},
      {__LINE__, Text(U::CreateElemArray(std::vector<int>{123, 5, INT_MIN})),
       "<Array type=\"int\" n=\"3\">123 5 -2147483648</Array>"},
      {__LINE__, Text(U::CreateElemArray(std::vector<int>{})), "<Array type=\"int\" n=\"0\"/>"},
  });
}

TEST(ZRStatXMLUtilArray, DoubleListsWriteMissingAsAWord) {
  const double some[] = {0.5, kMiss, 1e20};
  ExpectTexts({
      {__LINE__, Text(U::CreateElemArray(some, 3)),
       "<Array type=\"real\" n=\"3\">0.5 __MISSING__ 1e+20</Array>"},
      {__LINE__, Text(U::CreateElemArray(some, 0)), "<Array type=\"real\" n=\"0\"/>"},
      {__LINE__, Text(U::CreateElemArray(static_cast<const double *>(nullptr), 4)),
       "<Array type=\"real\" n=\"0\"/>"},
      {__LINE__, Text(U::CreateElemArray(std::vector<double>{-0.1, 1.0 / 3, kMiss})),
       "<Array type=\"real\" n=\"3\">-0.1 0.333333333333333 __MISSING__</Array>"},
      {__LINE__, Text(U::CreateElemArray(std::vector<double>{})), "<Array type=\"real\" n=\"0\"/>"},
  });
}

TEST(ZRStatXMLUtilArray, StringListsEscapeThenQuoteAndDropEmptyValues) {
  ExpectTexts({
      {__LINE__, Text(U::CreateElemArray(Strings{"a b", "c\"d"})),
       R"(<Array type="string" n="2">"a b" c\"d</Array>)"},
      // Quotes inside are escaped, the quotes around are not; empty values leave only their
      // separators but count in n; "&" and "<" are the text node's to escape.
      {__LINE__, Text(U::CreateElemArray(Strings{"", "x", "", "p\\q r", "s&t<u"})),
       R"(<Array type="string" n="5"> x  "p\\q r" s&amp;t&lt;u</Array>)"},
      {__LINE__, Text(U::CreateElemArray(Strings{"say \"hi\""})),
       R"(<Array type="string" n="1">"say \"hi\""</Array>)"},
      {__LINE__, Text(U::CreateElemArray(Strings{})), R"(<Array type="string" n="0"/>)"},
      {__LINE__, Text(U::CreateElemArray(std::string("a \"b\" c"), 3)),
       R"(<Array type="string" n="3">a "b" c</Array>)"},
      {__LINE__, Text(U::CreateElemArray(std::string(), 2)), R"(<Array type="string" n="2"/>)"},
  });
}

TEST(ZRStatXMLUtilArray, NumbersStayInTheCLocale) {
  zrtest::ScopedLocale comma("de_DE.UTF-8");
  if (!comma.ok()) GTEST_SKIP() << comma.why();
  EXPECT_EQ(Text(U::CreateElemArray(std::vector<double>{0.5, 2.25})),
            "<Array type=\"real\" n=\"2\">0.5 2.25</Array>");
  EXPECT_EQ(Text(U::CreateElemStatistic("mean", 0.25)),
            "<Statistic name=\"mean\" value=\"0.25\"/>");
}

TEST(ZRStatXMLUtilCoordinates, AttributesArrayAndTrailingElement) {
  const int ints[] = {260};
  const double doubles[] = {2.0};
  ExpectTexts({
      {__LINE__, Text(U::CreateElemCoordinates("x", "age", "mean", std::vector<double>{1.5})),
       "<Coordinates feature=\"x\" field=\"age\" statistic=\"mean\"><Array type=\"real\" "
       "n=\"1\">1.5</Array></Coordinates>"},
      {__LINE__, Text(U::CreateElemCoordinates("x", "", "", std::vector<int>{1, 2})),
       "<Coordinates feature=\"x\"><Array type=\"int\" n=\"2\">1 2</Array></Coordinates>"},
      {__LINE__, Text(U::CreateElemCoordinates("", "f", "", ints, 1)),
       "<Coordinates feature=\"\" field=\"f\"><Array type=\"int\">3e+02</Array></Coordinates>"},
      {__LINE__, Text(U::CreateElemCoordinates("y", "", "", doubles, 1)),
       "<Coordinates feature=\"y\"><Array type=\"real\" n=\"1\">2</Array></Coordinates>"},
      {__LINE__, Text(U::CreateElemCoordinates("x", "", "count", std::string("a b"), 2)),
       "<Coordinates feature=\"x\" statistic=\"count\"><Array type=\"string\" n=\"2\">a b</Array>"
       "</Coordinates>"},
      {__LINE__, Text(U::CreateElemCoordinates("x", "", "", Strings{"lo", "hi"})),
       "<Coordinates feature=\"x\"><Array type=\"string\" n=\"2\">lo hi</Array></Coordinates>"},
      {__LINE__,
       Text(U::CreateElemCoordinates("x", "", "", std::vector<int>{1}, U::CreateElemLabel("e"))),
       "<Coordinates feature=\"x\"><Array type=\"int\" n=\"1\">1</Array><Label label=\"e\"/>"
       "</Coordinates>"},
      {__LINE__,
       Text(U::CreateElemCoordinates("x", "", "", std::vector<double>{}, U::CreateElemLabel("e"))),
       "<Coordinates feature=\"x\"><Array type=\"real\" n=\"0\"/><Label "
       "label=\"e\"/></Coordinates>"},
      {__LINE__, Text(U::CreateElemCoordinates("x", "", "", Strings{"a"}, nullptr)),
       "<Coordinates feature=\"x\"><Array type=\"string\" n=\"1\">a</Array></Coordinates>"},
  });
}

TEST(ZRStatXMLUtilCoordinates, RecordFormFollowsTheValueKind) {
  ZRXMLCoordinates doubles("x", "f", "s", std::vector<double>{0.5});
  doubles.fIntValues = {7};  // not the vector in use
  ZRXMLCoordinates unknown("x", "", "", std::vector<int>{1});
  unknown.fValueKind = 7;
  struct {
    int line;
    ZRXMLCoordinates record;
    const char * want;
  } const cases[] = {
      {__LINE__, doubles,
       "<Coordinates feature=\"x\" field=\"f\" statistic=\"s\"><Array type=\"real\" "
       "n=\"1\">0.5</Array></Coordinates>"},
      {__LINE__, ZRXMLCoordinates("x", "", "", Strings{"a"}),
       "<Coordinates feature=\"x\"><Array type=\"string\" n=\"1\">a</Array></Coordinates>"},
      {__LINE__, ZRXMLCoordinates(), "(null)"},
      {__LINE__, unknown, "(null)"},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(Text(U::CreateElemCoordinates(c.record)), c.want);
    EXPECT_EQ(Text(c.record.GetCoordinates()), c.want);
  }
}

TEST(ZRStatXMLUtilGroups, RecordsInOrderUnsetOnesSkipped) {
  const ZRXMLCoordinatesGroup group(
      "g", {ZRXMLCoordinates("x", "", "", std::vector<int>{1}), ZRXMLCoordinates(),
            ZRXMLCoordinates("y", "", "", std::vector<double>{0.5})});
  const char * const want =
      "<CoordinatesGroup description=\"g\"><Coordinates feature=\"x\"><Array type=\"int\" "
      "n=\"1\">1</Array></Coordinates><Coordinates feature=\"y\"><Array type=\"real\" "
      "n=\"1\">0.5</Array></Coordinates></CoordinatesGroup>";
  ExpectTexts({
      {__LINE__, Text(U::CreateElemCoordinatesGroup(group)), want},
      {__LINE__, Text(group.GetCoordinatesGroup()), want},
      {__LINE__, Text(U::CreateElemCoordinatesGroup(ZRXMLCoordinatesGroup())),
       "<CoordinatesGroup/>"},
      {__LINE__,
       Text(U::CreateElemCoordinatesGroup(
           nullptr, {U::CreateElemLabel("a"), nullptr, U::CreateElemLabel("b")}, "")),
       "<CoordinatesGroup><Label label=\"a\"/><Label label=\"b\"/></CoordinatesGroup>"},
      {__LINE__, Text(U::CreateElemCoordinatesGroup(U::CreateElemLabel("f"), {}, "d")),
       "<CoordinatesGroup description=\"d\"><Label label=\"f\"/></CoordinatesGroup>"},
  });
}

TEST(ZRStatXMLUtilRecordInfo, OneArrayPerRowAndDispatchOnKind) {
  using IntRows = std::vector<std::vector<int>>;
  using DoubleRows = std::vector<std::vector<double>>;
  ExpectTexts({
      {__LINE__, Text(U::CreateElemRecordInfo("r1", "first", IntRows{{1, 2}, {3}})),
       "<RecordInfo recordId=\"r1\" recordLabel=\"first\"><Array type=\"int\" n=\"2\">1 2</Array>"
       "<Array type=\"int\" n=\"1\">3</Array></RecordInfo>"},
      {__LINE__, Text(U::CreateElemRecordInfo("r2", "", DoubleRows{{0.5}})),
       "<RecordInfo recordId=\"r2\"><Array type=\"real\" n=\"1\">0.5</Array></RecordInfo>"},
      {__LINE__, Text(U::CreateElemRecordInfo("", "", std::vector<std::vector<std::string>>{})),
       "<RecordInfo recordId=\"\"/>"},
      {__LINE__, Text(U::CreateElemRecordInfo(ZRXMLRecordInfo())), "(null)"},
  });

  std::unique_ptr<XMLElement> parent(XMLElement::Create("p"));
  U::AddRecordInfos(*parent, {ZRXMLRecordInfo("a", "", IntRows{{4}}), ZRXMLRecordInfo(),
                              ZRXMLRecordInfo("b", "B", std::vector<Strings>{{"u v"}})});
  EXPECT_EQ(Text(parent.release()),
            "<p><RecordInfo recordId=\"a\"><Array type=\"int\" n=\"1\">4</Array></RecordInfo>"
            "<RecordInfo recordId=\"b\" recordLabel=\"B\"><Array type=\"string\" n=\"1\">\"u v\""
            "</Array></RecordInfo></p>");
}

TEST(ZRStatXMLUtilMatrix, LabelsIndicesSegments) {
  ExpectTexts({
      {__LINE__, Text(U::CreateElemRowColLabels("row")), "<RowColLabels dimension=\"row\"/>"},
      {__LINE__, Text(U::CreateElemRowColLabels(U::CreateElemLabel("a"), "col")),
       "<RowColLabels dimension=\"col\"><Label label=\"a\"/></RowColLabels>"},
      {__LINE__,
       Text(U::CreateElemRowColLabels({U::CreateElemLabel("a"), nullptr, U::CreateElemLabel("b")},
                                      "row")),
       "<RowColLabels dimension=\"row\"><Label label=\"a\"/><Label label=\"b\"/></RowColLabels>"},
      {__LINE__, Text(U::CreateElemMatrixLabels({nullptr, U::CreateElemLabel("m")})),
       "<MatrixLabels><Label label=\"m\"/></MatrixLabels>"},
      {__LINE__, Text(U::CreateElemIndices(nullptr, "row")), "<Indices dimension=\"row\"/>"},
      {__LINE__, Text(U::CreateElemIndices(U::CreateElemArray(std::vector<int>{0, 1}), "col")),
       "<Indices dimension=\"col\"><Array type=\"int\" n=\"2\">0 1</Array></Indices>"},
      {__LINE__, Text(U::CreateElemSegmentInfo(static_cast<XMLElement *>(nullptr))),
       "<SegmentInfo/>"},
      {__LINE__, Text(U::CreateElemSegmentInfo({U::CreateElemLabel("a"), U::CreateElemLabel("b")})),
       "<SegmentInfo><Label label=\"a\"/><Label label=\"b\"/></SegmentInfo>"},
      {__LINE__, Text(U::CreateElemSegmentData(nullptr, U::CreateElemLabel("2"))),
       "<SegmentData><Label label=\"2\"/></SegmentData>"},
      {__LINE__, Text(U::CreateElemSegmentData(U::CreateElemLabel("1"), U::CreateElemLabel("2"))),
       "<SegmentData><Label label=\"1\"/><Label label=\"2\"/></SegmentData>"},
  });
}

TEST(ZRStatXMLUtilMatrix, AttributesAndChildOrder) {
  auto label = [](const char * text) { return U::CreateElemLabel(text); };
  ExpectTexts({
      {__LINE__, Text(U::CreateElemMatrix(nullptr, {}, nullptr, nullptr, 2, 3, "general", true)),
       "<Matrix kind=\"general\" nbRows=\"2\" nbCols=\"3\" rowMajor=\"true\"/>"},
      {__LINE__, Text(U::CreateElemMatrix(nullptr, {}, nullptr, nullptr, 4, 4, "symmetric", false)),
       "<Matrix kind=\"symmetric\" nbRows=\"4\" rowMajor=\"false\"/>"},
      {__LINE__, Text(U::CreateElemMatrix(nullptr, {}, nullptr, nullptr, UINT_MAX, 0, "", true)),
       "<Matrix kind=\"\" nbRows=\"4294967295\" nbCols=\"0\" rowMajor=\"true\"/>"},
      {__LINE__,
       Text(U::CreateElemMatrix(label("1"), {label("2"), label("3")}, label("4"), label("5"), 1, 1,
                                "k", true)),
       "<Matrix kind=\"k\" nbRows=\"1\" nbCols=\"1\" rowMajor=\"true\"><Label label=\"1\"/><Label "
       "label=\"2\"/><Label label=\"3\"/><Label label=\"4\"/><Label label=\"5\"/></Matrix>"},
      {__LINE__,
       Text(U::CreateElemMatrix(nullptr, {label("2")}, nullptr, label("5"), 1, 1, "k", true)),
       "<Matrix kind=\"k\" nbRows=\"1\" nbCols=\"1\" rowMajor=\"true\"><Label "
       "label=\"5\"/></Matrix>"},
  });
}

// Every element handed in belongs to the result: attached ones die with it, refused ones
// (a pair of other than two) at once.
TEST(ZRStatXMLUtilOwnership, HandedElementsDieWithTheResultOrAtOnce) {
  int alive = 0;
  auto t = [&alive] { return new Tracked(alive, "t"); };
  struct {
    int line;
    Make make;
    int aliveAfterCall;
  } const cases[] = {
      {__LINE__, [&] { return U::CreateElemMatrix(t(), {t()}, t(), t(), 1, 1, "k", true); }, 3},
      {__LINE__,
       [&] {
         return U::CreateElemMatrix(nullptr, {t(), t(), t()}, nullptr, nullptr, 1, 1, "k", true);
       },
       0},
      {__LINE__,
       [&] {
         return U::CreateElemMatrix(nullptr, {t(), t()}, nullptr, nullptr, 1, 1, "k", true);
       },
       2},
      {__LINE__,
       [&] {
         return U::CreateElemRegressionParameter({t(), nullptr}, {t()}, "p", true);
       },
       2},
      {__LINE__, [&] { return U::CreateElemLabel({t()}, {t()}, "p", true, "l"); }, 2},
      {__LINE__,
       [&] {
         return U::CreateElemCoordinatesGroup(t(), {nullptr, t()}, "d");
       },
       2},
      {__LINE__, [&] { return U::CreateElemCoordinates("f", "", "", Strings{"a"}, t()); }, 1},
      {__LINE__, [&] { return U::CreateElemSegmentData(t(), t()); }, 2},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    std::unique_ptr<XMLElement> made(c.make());
    EXPECT_EQ(alive, c.aliveAfterCall);
    made.reset();
    EXPECT_EQ(alive, 0);
  }
}

TEST(ZRStatXMLUtilVarData, TagDecidesTheCoordinatesKept) {
  ZRVariateData data;
  data.fCounts = {ZRXMLCounts(5, 0, kMiss, 2)};
  data.fStatNames = {"mean", "sd"};
  data.fStatStrings = {"1.5", "0.2", "x"};  // more values than names
  for (int i = 0; i < 5; ++i) {
    data.fCoordinates.push_back(
        ZRXMLCoordinates("c" + std::to_string(i), "", "", std::vector<int>{i}));
  }
  data.fGroups = {ZRXMLCoordinatesGroup("g", {})};
  data.fRecordInfos = {ZRXMLRecordInfo("r", "", std::vector<std::vector<int>>{{1}})};
  const std::string head =
      "<Counts totalFreq=\"5\" missingFreq=\"0\" cardinality=\"2\"/><Statistic name=\"mean\" "
      "value=\"1.5\"/><Statistic name=\"sd\" value=\"0.2\"/><Statistic name=\"\" value=\"x\"/>";
  auto coords = [](int from, int to) {
    std::string s;
    for (int i = from; i < to; ++i) {
      s += "<Coordinates feature=\"c" + std::to_string(i) + "\"><Array type=\"int\" n=\"1\">" +
           std::to_string(i) + "</Array></Coordinates>";
    }
    return s;
  };
  struct {
    int line;
    std::string tag;
    std::string want;
  } const cases[] = {
      {__LINE__, "UnivariateData",
       "<UnivariateData description=\"d\">" + head + coords(0, 2) + "</UnivariateData>"},
      {__LINE__, "BivariateData",
       "<BivariateData description=\"d\">" + head + coords(0, 3) + "</BivariateData>"},
      {__LINE__, "MultivariateData",
       "<MultivariateData description=\"d\">" + head + "<CoordinatesGroup description=\"g\"/>" +
           coords(0, 5) + "</MultivariateData>"},
      {__LINE__, "StructuredData",
       "<StructuredData description=\"d\">" + head + "</StructuredData>"},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(Text(U::CreateElemVarData(c.tag, "d", data)), c.want);
  }

  // Coordinates are cut by position: an unset record keeps its place and makes nothing.
  data.fCoordinates[0] = ZRXMLCoordinates();
  EXPECT_EQ(Text(U::CreateElemVarData("UnivariateData", "", data)),
            "<UnivariateData>" + head + coords(1, 2) + "</UnivariateData>");
}

TEST(ZRStatXMLUtilVarData, DoubleStatisticsWhenNotStrings) {
  ZRVariateData data;
  data.fStringStats = false;
  data.fStatNames = {"a", "b", "unused"};
  data.fStatStrings = {"ignored"};
  data.fStatDoubles = {0.5, NAN};
  EXPECT_EQ(Text(U::CreateElemVarData("BivariateData", "", data)),
            "<BivariateData><Statistic name=\"a\" value=\"0.5\"/><Statistic name=\"b\"/>"
            "</BivariateData>");
}

// A document made of every kind of element, printed both ways, must satisfy xmllint.
TEST(ZRStatXMLUtilDocument, WellFormedUnderXmllint) {
  const std::vector<std::string> names = {"(Intercept)", "engine", "drive=rear", "drive=all"};
  std::vector<XMLElement *> rowLabels;
  for (std::size_t i = 0; i < names.size(); ++i) {
    std::vector<XMLElement *> terms;
    if (i == 1) terms.push_back(U::CreateElemCovariate("engine", 1));
    if (i >= 2) terms.push_back(U::CreateElemFactor("drive", i == 2 ? "rear" : "all", false));
    rowLabels.push_back(U::CreateElemLabel(terms, {}, names[i], i == 0, names[i]));
  }
  std::vector<XMLElement *> colLabels;
  for (const char * c : {"estimate", "stdError", "tValue", "df", "sig"}) {
    colLabels.push_back(U::CreateElemLabel(c));
  }
  const double values[] = {1.5, 0.25, 6, 20, 1e-8, kMiss, NAN, INFINITY};
  XMLElement * matrix = U::CreateElemMatrix(
      U::CreateElemMatrixLabels({U::CreateElemLabel("coefficients & <tests>")}),
      {U::CreateElemRowColLabels(rowLabels, "row"), U::CreateElemRowColLabels(colLabels, "col")},
      U::CreateElemSegmentInfo(
          U::CreateElemIndices(U::CreateElemArray(std::vector<int>{0, 1}), "row")),
      U::CreateElemSegmentData(U::CreateElemArray(values, 8),
                               U::CreateElemArray(Strings{"a \"b\" <c>", ""})),
      4, 5, "general", true);

  ZRVariateData data;
  data.fDescription = "tab\there & \"quotes\"";
  data.fCounts = {ZRXMLCounts(), ZRXMLCounts(kMiss, 1, 2, 3)};
  data.fStatNames = {"mean"};
  data.fStatStrings = {"<1>"};
  data.fCoordinates = {ZRXMLCoordinates("x", "f", "", Strings{"p q", "r\\s"}), ZRXMLCoordinates()};
  data.fGroups = {ZRXMLCoordinatesGroup("g", data.fCoordinates)};
  const int ints[] = {1, 22};

  std::unique_ptr<XMLElement> root(U::BuildRoot());
  root->AddElement(matrix);
  root->AddElement(data.GetUnivariateDataElem());
  root->AddElement(data.GetBivariateDataElem());
  XMLElement * multi = data.GetMultiVariateDataElem();
  U::AddRecordInfos(*multi,
                    {ZRXMLRecordInfo("1", "one", std::vector<std::vector<double>>{{kMiss}})});
  root->AddElement(multi);
  XMLElement * structured = U::CreateElemStructuredData("");
  structured->AddElement(U::CreateElemFieldInfo("f", "v", false));
  structured->AddElement(U::CreateElemCoordinates("x", "", "", ints, 2));
  structured->AddElement(U::CreateElem("any", "a", 1.0, "b", 2.0, "c", 3.0));
  root->AddElement(structured);

  for (bool utf8 : {false, true}) {
    for (bool format : {false, true}) {
      SCOPED_TRACE(std::to_string(utf8) + std::to_string(format));
      std::ostringstream out;
      (utf8 ? WriteTreeUTF8 : WriteTree)(out, nullptr, root.get(), format);
      const zrtest::XmllintResult lint = zrtest::RunXmllint(out.str(), "--noout --nonet");
      EXPECT_EQ(lint.exitCode, 0) << lint.output << "\n" << out.str();
    }
  }
}

}  // namespace
