// The PMML exporter: fragments by hand, status codes and partial trees, cancels, and documents
// checked by xmllint against the PMML 4.3 schema (valid, or invalid where intended).
#include "zrcommon920r/xml/export/pmml.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <regex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "support/markup.h"
#include "support/xmllint.h"

namespace {

using namespace ZRCommon_920;
using namespace ZRXML_920;
using Tree = std::unique_ptr<XMLElement>;
using V = IZRVariable;
using Strings = std::vector<std::string>;
constexpr double kMiss = -1.7976931348623157e308;
const std::string kExt = "extender=\"zrcommon920r\"";

// The element as one line, without layout.
constexpr auto & Text = zrtest::FlatMarkup;

// xmllint's verdict on the document WriteTree prints from root against the PMML schema
// (exit code 0 valid, 3 schema-invalid; a missing tool or schema gives another code, so the
// test fails rather than skips); a fragment's root gets the PMML namespace first.
zrtest::XmllintResult SchemaCheck(const XMLElement & root, bool fragment) {
  std::ostringstream out;
  WriteTree(out, nullptr, &root, true);
  std::string text = out.str();
  if (fragment) {
    std::size_t at = text.find('<', text.find("?>"));
    at = text.find_first_of(" />", at);
    text.insert(at, " xmlns=\"" + PMML_NAMESPACE_4_3 + "\"");
  }
  zrtest::XmllintResult lint =
      zrtest::RunXmllint(text, std::string("--noout --nonet --schema '") + ZR_PMML_SCHEMA + "'");
  lint.output += "\n" + text;
  return lint;
}

// Answers true at poll number k (from 1) and counts the polls.
class ScriptedCancel : public ZRQueryCancel {
 public:
  explicit ScriptedCancel(int k) : fK(k) {}
  bool IsCancelRequested() override { return ++fPolls == fK; }
  bool IsCancelPending() override { return false; }
  int fK, fPolls = 0;
};

// Reads as level 3 until cloned into a list, where the copy answers level.
class OddLevelVar : public ZRCatVar {
 public:
  explicit OddLevelVar(MeasureLevel level)
      : ZRCatVar("odd", "", 1, kLevelStringCategorical, kRoleInput, false), fLevel(level) {}
  MeasureLevel GetMeasureLevel() override { return fCloned ? fLevel : ZRCatVar::GetMeasureLevel(); }
  IZRVariable * Clone() const override {
    OddLevelVar * copy = new OddLevelVar(*this);
    copy->fCloned = true;
    return copy;
  }

 private:
  MeasureLevel fLevel;
  bool fCloned = false;
};

ZRCatVar & Cat(ZRVarList & list, int i) {
  return dynamic_cast<ZRCatVar &>(*list.GetVarAt(i));
}

// 0 age (interval), 1 drive (string, labels, trailing blank, missing text), 2 doors
// (numeric flag and ordinal, missing number), 3 count (weight), 4 spare (role 6).
ZRVarList FieldList() {
  ZRVarList list;
  list.AddContVar("age", "Age in years", V::kRoleInput);
  list.GetEncoderAt(0)->SetMissingInterval(-std::numeric_limits<double>::max(), -1.0);
  list.AddCatVar("drive", "Drive", Strings{"front", "rear ", "all"},
                 Strings{"Front", "", "All wheels"}, V::kRoleInput);
  list.GetVarAt(1)->SetVariableStorage(V::kStorageString);
  list.GetEncoderAt(1)->AddDiscreteUserMissing("none", "No answer");
  list.AddCatVar("doors", "", std::vector<double>{2.0, 4.0}, V::kRoleTarget);
  list.GetVarAt(2)->SetVariableStorage(V::kStorageInteger);
  Cat(list, 2).SetBinaryFlag(true, 1);
  Cat(list, 2).SetOrdinalFlag(true);
  list.GetEncoderAt(2)->AddDiscreteUserMissing(9.5, "");
  list.SetWeightVar("count", "", V::kRoundNearest);
  list.AddContVar("spare", "", V::kRoleUnused);
  list.GetVarAt(4)->SetVariableStorage(V::kStorageTimestamp);
  return list;
}

TEST(ZRPMMLExporter, RootElement) {
  ZRPMMLExporter exporter(nullptr);
  const std::string want =
      "<PMML version=\"4.3\" xmlns=\"http://www.dmg.org/PMML-4_3\" "
      "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
      "xsi:schemaLocation=\"http://www.dmg.org/PMML-4_3 pmml-4-3.xsd\"/>";
  EXPECT_EQ(Text(Tree(exporter.ExportPMMLElement()).get()), want);
  EXPECT_EQ(Text(Tree(exporter.ExportPMMLElement40()).get()), want);
}

TEST(ZRPMMLExporter, HeaderAttributesAndApplication) {
  const std::string dflt = "copyright=\"Copyright (c) zrcommon920r contributors\"";
  ZRApplicInfo4XML full{7, "zr_demo", "1.2", "(c) Us & Co"}, empty{}, versionOnly{0, "", "2", ""};
  struct {
    int line;
    const ZRApplicInfo4XML * info;
    std::string description, want;
  } const cases[] = {
      {__LINE__, nullptr, "", "<Header " + dflt + "/>"},
      {__LINE__, &empty, "fit", "<Header " + dflt + " description=\"fit\"/>"},
      {__LINE__, &full, "",
       "<Header copyright=\"(c) Us &amp; Co\"><Application name=\"zr_demo\" version=\"1.2\"/>"
       "</Header>"},
      // Intended: no name, though the schema requires one.
      {__LINE__, &versionOnly, "", "<Header " + dflt + "><Application version=\"2\"/></Header>"}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ZRPMMLExporter exporter(nullptr);
    XMLElement * header = nullptr;
    EXPECT_TRUE(exporter.ExportHeader(c.info, c.description, false, header).IsOK());
    EXPECT_EQ(Text(Tree(header).get()), c.want);
  }
}

TEST(ZRPMMLExporter, TimestampIsCtimeWithoutLineFeed) {
  ZRPMMLExporter exporter(nullptr);
  XMLElement * header = nullptr;
  exporter.ExportHeader(nullptr, "", true, header);
  const std::string text = Text(Tree(header).get());
  const std::regex want(
      "<Header [^>]*><Timestamp>[A-Z][a-z]{2} [A-Z][a-z]{2} [ 1-3][0-9] "
      "[0-2][0-9]:[0-5][0-9]:[0-6][0-9] [0-9]{4}</Timestamp></Header>");
  EXPECT_TRUE(std::regex_match(text, want)) << text;
}

TEST(ZRPMMLExporter, DataFieldsByHand) {
  const std::string close = "</DataDictionary>";
  const std::string fields[] = {
      // Only the upper bound: the lower is the most negative double.
      "<DataField name=\"age\" displayName=\"Age in years\" optype=\"continuous\" "
      "dataType=\"double\"><Extension name=\"invalidRangeUpper\" value=\"-1\" " +
          kExt + "/></DataField>",
      // A trailing blank: noSpaceTrim, and the blank kept as a reference.
      "<DataField name=\"drive\" displayName=\"Drive\" optype=\"categorical\" "
      "dataType=\"string\"><Extension " +
          kExt +
          " name=\"noSpaceTrim\" value=\"true\"/>"
          "<Value value=\"front\" displayValue=\"Front\" property=\"valid\"/>"
          "<Value value=\"rear&#32;\" property=\"valid\"/>"
          "<Value value=\"all\" displayValue=\"All wheels\" property=\"valid\"/>"
          "<Value value=\"none\" displayValue=\"No answer\" property=\"missing\"/></DataField>",
      "<DataField name=\"doors\" optype=\"ordinal\" dataType=\"integer\"><Extension " + kExt +
          " name=\"flagTypeTrueValue\" value=\"4\"/><Value value=\"2\" property=\"valid\"/>"
          "<Value value=\"4\" property=\"valid\"/><Value value=\"9.5\" property=\"missing\"/>"
          "</DataField>",
      "<DataField name=\"count\" optype=\"continuous\" dataType=\"double\"/>",
      "<DataField name=\"spare\" optype=\"continuous\" "
      "dataType=\"dateTimeSecondsSince[1970]\"/>"};
  // Without indices the role-6 field is left out; named, it is written, in the order given.
  const std::pair<std::vector<int>, std::string> cases[] = {
      {{}, "4\">" + fields[0] + fields[1] + fields[2] + fields[3]},
      {{4, 0}, "2\">" + fields[4] + fields[0]}};
  const ZRVarList list = FieldList();
  for (const auto & [indices, want] : cases) {
    SCOPED_TRACE(want);
    ZRPMMLExporter exporter(nullptr);
    XMLElement * dictionary = nullptr;
    EXPECT_TRUE(exporter.ExportDataDictionary(list, indices, dictionary).IsOK());
    EXPECT_EQ(Text(Tree(dictionary).get()), "<DataDictionary numberOfFields=\"" + want + close);
  }
}

TEST(ZRPMMLExporter, CategoryTextsDependOnLevelAndCounts) {
  ZRVarList list;
  // Level 2 holding text: values written, but no noSpaceTrim (a level-3 test).
  list.AddCatVar("n", "", std::vector<double>{1.0}, V::kRoleInput);
  Cat(list, 0).ChangeEncoder(new ZRStringEncoder(Strings{"a "}));
  Cat(list, 0).SetBinaryFlag(true, 0);
  // Labels dropped once the variable counts more categories than its encoder.
  list.AddCatVar("s", "", Strings{"a", "b"}, Strings{"A", "B"}, V::kRoleInput);
  Cat(list, 1).SetNumberOfCategories(3);
  // A missing interval open at both ends gives no Extension.
  list.AddContVar("c", "", V::kRoleInput);
  list.GetEncoderAt(2)->SetMissingInterval(-std::numeric_limits<double>::max(),
                                           std::numeric_limits<double>::max());
  ZRPMMLExporter exporter(nullptr);
  XMLElement * dictionary = nullptr;
  exporter.ExportDataDictionary(list, {}, dictionary);
  EXPECT_EQ(Text(Tree(dictionary).get()),
            "<DataDictionary numberOfFields=\"3\">"
            "<DataField name=\"n\" optype=\"categorical\" dataType=\"double\"><Extension " +
                kExt +
                " name=\"flagTypeTrueValue\" value=\"a&#32;\"/>"
                "<Value value=\"a&#32;\" property=\"valid\"/></DataField>"
                "<DataField name=\"s\" optype=\"categorical\" dataType=\"double\">"
                "<Value value=\"a\" property=\"valid\"/>"
                "<Value value=\"b\" property=\"valid\"/></DataField>"
                "<DataField name=\"c\" optype=\"continuous\" dataType=\"double\"/>"
                "</DataDictionary>");
}

TEST(ZRPMMLExporter, DataModelByHand) {
  ZRVarList list = FieldList();
  Tree formats(XMLElement::Create("FieldFormats"));
  Tree ageFormat(XMLElement::Create("Format"));
  ageFormat->AddAttribute("width", "8");
  list.SetFieldFormatsElement(formats.get());
  list.GetVarAt(0)->SetFieldFormatElement(ageFormat.get());
  list.AddCatVar("id", "", Strings{"x"}, V::kRoleRecordId);
  list.AddCatVar("kind", "Kind", Strings{"x"}, V::kRoleTargetResponse);
  Cat(list, 6).SetOrdinalFlag(true);
  ZRPMMLExporter exporter(nullptr);
  XMLElement * model = nullptr;
  EXPECT_TRUE(exporter.ExportDataModel(list, {}, model).IsOK());
  // The flag test comes before the ordinal one; role 6 is written, as "none".
  EXPECT_EQ(Text(Tree(model).get()),
            "<DataModel><FieldFormats/><Fields count=\"7\">"
            "<Field name=\"age\" displayLabel=\"Age in years\" measure=\"continuous\" "
            "storage=\"real\" role=\"input\"><Format width=\"8\"/></Field>"
            "<Field name=\"drive\" displayLabel=\"Drive\" measure=\"nominal\" storage=\"string\" "
            "role=\"input\"/>"
            "<Field name=\"doors\" measure=\"flag\" storage=\"integer\" role=\"target\"/>"
            "<Field name=\"count\" measure=\"continuous\" storage=\"real\" role=\"freqWeight\"/>"
            "<Field name=\"spare\" measure=\"continuous\" storage=\"timestamp\" role=\"none\"/>"
            "<Field name=\"id\" measure=\"nominal\" storage=\"real\" role=\"recordId\"/>"
            "<Field name=\"kind\" displayLabel=\"Kind\" measure=\"ordinal\" storage=\"real\" "
            "role=\"target\"/>"
            "</Fields></DataModel>");
}

TEST(ZRPMMLExporter, PositionOutOfRangeHandsOverPartialTree) {
  const ZRVarList list = FieldList();
  for (int bad : {-1, 5, 1 << 30}) {
    SCOPED_TRACE(bad);
    ZRPMMLExporter exporter(nullptr);
    XMLElement * dictionary = nullptr;
    const ZRStatus status = exporter.ExportDataDictionary(list, {3, bad, 0}, dictionary);
    EXPECT_EQ(status.GetErrorCode(), 101);
    EXPECT_TRUE(status.IsError());
    EXPECT_EQ(status.GetDiscreteDatum(0), bad);
    EXPECT_EQ(Text(Tree(dictionary).get()),
              "<DataDictionary numberOfFields=\"1\"><DataField name=\"count\" "
              "optype=\"continuous\" dataType=\"double\"/></DataDictionary>");
    XMLElement * model = nullptr;
    const ZRStatus modelStatus = exporter.ExportDataModel(list, {bad}, model);
    EXPECT_EQ(modelStatus.GetErrorCode(), 101);
    EXPECT_EQ(modelStatus.GetDiscreteDatum(0), bad);
    EXPECT_EQ(Text(Tree(model).get()), "<DataModel><Fields count=\"0\"/></DataModel>");
  }
}

TEST(ZRPMMLExporter, CancelAtEveryPollDeletesTheTree) {
  const ZRVarList list = FieldList();
  using Export =
      ZRStatus (ZRPMMLExporter::*)(const ZRVarList &, const std::vector<int> &, XMLElement *&);
  // Four fields and the final poll; five fields in the data model.
  const struct {
    const char * name;
    Export run;
    int polls;
  } exports[] = {{"dictionary", &ZRPMMLExporter::ExportDataDictionary, 5},
                 {"model", &ZRPMMLExporter::ExportDataModel, 6}};
  for (const auto & e : exports) {
    for (int k = 1; k <= e.polls + 1; ++k) {
      SCOPED_TRACE(std::string(e.name) + " k=" + std::to_string(k));
      ScriptedCancel cancel(k);
      ZRPMMLExporter exporter(&cancel);
      XMLElement * element = nullptr;
      const ZRStatus status = (exporter.*e.run)(list, {}, element);
      Tree owned(element);
      EXPECT_EQ(cancel.fPolls, std::min(k, e.polls));
      if (k <= e.polls) {
        EXPECT_EQ(status.GetErrorCode(), 1);
        EXPECT_TRUE(status.IsError());
        EXPECT_EQ(element, nullptr);
      } else {
        EXPECT_TRUE(status.IsOK());
        EXPECT_NE(element, nullptr);
      }
    }
  }
}

ZRUniStats::SummStats Summ(double min, double negatedMax, double mean, double sd) {
  ZRUniStats::SummStats s;
  s.fdMin = min;
  s.fdMax = negatedMax;
  s.fdMean = mean;
  s.fdStdDev = sd;
  return s;
}

TEST(ZRPMMLExporter, UnivariateStatsByHand) {
  const double inf = std::numeric_limits<double>::infinity();
  struct {
    int line;
    ZRUniStats stats;
    std::string want;
  } const cases[] = {
      {__LINE__, ZRUniStats("drive", 10.5, {4.0, 0.0, 6.5}),
       "<UnivariateStats field=\"drive\"><Counts totalFreq=\"10.5\"/><DiscrStats>"
       "<Array type=\"real\">4 0 6.5</Array></DiscrStats></UnivariateStats>"},
      {__LINE__, ZRUniStats("drive", inf, {}),
       "<UnivariateStats field=\"drive\"><DiscrStats><Array type=\"real\"></Array></DiscrStats>"
       "</UnivariateStats>"},
      // fdMax holds -7: the maximum is 7.
      {__LINE__, ZRUniStats("age", 3.0, Summ(1.5, -7.0, 3.25, 0.125), {}, {}),
       "<UnivariateStats field=\"age\"><Counts totalFreq=\"3\"/><NumericInfo minimum=\"1.5\" "
       "maximum=\"7\" mean=\"3.25\" standardDeviation=\"0.125\"/></UnivariateStats>"},
      {__LINE__, ZRUniStats("age", 3.0, Summ(kMiss, -7.0, 2.0, inf), {}, {}),
       "<UnivariateStats field=\"age\"><Counts totalFreq=\"3\"/><NumericInfo maximum=\"7\" "
       "mean=\"2\"/></UnivariateStats>"},
      // Intended: an unset maximum, turned, is the largest double.
      {__LINE__, ZRUniStats(),
       "<UnivariateStats field=\"x\"><Counts totalFreq=\"0\"/>"
       "<NumericInfo maximum=\"1.79769313486232e+308\"/></UnivariateStats>"}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ZRPMMLExporter exporter(nullptr);
    XMLElement * uni = nullptr;
    EXPECT_TRUE(exporter.ExportUniStats(c.stats, uni).IsOK());
    Tree owned(uni);
    EXPECT_EQ(Text(uni), c.want);
    const zrtest::XmllintResult lint = SchemaCheck(*uni, true);
    EXPECT_EQ(lint.exitCode, 0) << lint.output;
  }
}

TEST(ZRPMMLExporter, InvalidStatisticsGiveCode117AndNull) {
  // Minimum 5 above the maximum 4 (held as -4).
  const ZRUniStats::SummStats crossed = Summ(5.0, -4.0, 4.5, 0.5);
  for (const ZRUniStats & stats : {ZRUniStats("", 1.0, {1.0}), ZRUniStats("c", 2.0, {-1.0}),
                                   ZRUniStats("x", 2.0, crossed, {}, {})}) {
    ZRPMMLExporter exporter(nullptr);
    Tree stale(XMLElement::Create("Stale"));
    XMLElement * uni = stale.get();
    const ZRStatus status = exporter.ExportUniStats(stats, uni);
    EXPECT_EQ(status.GetErrorCode(), 117);
    EXPECT_TRUE(status.IsError());
    EXPECT_EQ(uni, nullptr);
  }
}

TEST(ZRPMMLExporter, ExtensionPutsExtenderLast) {
  struct {
    int line;
    std::string name, text;
    double number;
    std::string wantText, wantNumber;
  } const cases[] = {
      {__LINE__, "k", "v", 0.1, "<Extension name=\"k\" value=\"v\" " + kExt + "/>",
       "<Extension name=\"k\" value=\"0.1\" " + kExt + "/>"},
      {__LINE__, "", "", std::nan(""), "<Extension " + kExt + "/>", "<Extension " + kExt + "/>"},
      {__LINE__, "k", "a\"b", -std::numeric_limits<double>::infinity(),
       "<Extension name=\"k\" value=\"a&quot;b\" " + kExt + "/>",
       "<Extension name=\"k\" " + kExt + "/>"}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ZRPMMLExporter exporter(nullptr);
    XMLElement * text = nullptr;
    XMLElement * number = nullptr;
    exporter.ExportExtension(c.name, c.text, text);
    exporter.ExportExtension(c.name, c.number, number);
    EXPECT_EQ(Text(Tree(text).get()), c.wantText);
    EXPECT_EQ(Text(Tree(number).get()), c.wantNumber);
  }
}

// A list of 1 to 8 variables of every kind, with texts that need escaping, labels, flags,
// user-missing values and intervals, but none of the five schema-invalid forms.
ZRVarList RandomList(std::mt19937 & rng) {
  const auto pick = [&rng](unsigned n) { return static_cast<int>(rng() % n); };
  const auto word = [&]() {
    static const char kChars[] = "ab <&>\"'x1 ";
    std::string w(1 + pick(5), 'a');
    for (char & ch : w) ch = kChars[pick(sizeof kChars - 1)];
    return w;
  };
  ZRVarList list;
  const int n = 1 + pick(8);
  for (int i = 0; i < n; ++i) {
    const std::string name = "v" + std::to_string(i);
    // The first variable is an input, so the dictionary is never empty.
    const auto role = static_cast<V::VariableRole>(i == 0 ? 4 : pick(8));
    int kind = pick(4);
    if (kind == 3 && list.GetFreqWeightIndex() >= 0) kind = 0;  // one weight per list
    if (kind == 0) {
      list.AddContVar(name, pick(2) ? word() : "", role);
      IZREncoder & enc = *list.GetEncoderAt(i);
      if (pick(2)) {
        enc.AddDiscreteUserMissing(-99.5 * pick(3), pick(2) ? word() : "");
      } else if (pick(2)) {
        enc.SetMissingInterval(pick(2) ? -1e300 : -std::numeric_limits<double>::max(), 1e-7);
      }
    } else if (kind == 1) {
      Strings cats, labels;
      for (int c = 1 + pick(4); c > 0; --c) cats.push_back(word()), labels.push_back(word());
      list.AddCatVar(name, word(), cats, labels, role);
      list.GetEncoderAt(i)->AddDiscreteUserMissing(word() + "!", pick(2) ? word() : "");
    } else if (kind == 2) {
      std::vector<double> cats;
      for (int c = 1 + pick(4); c > 0; --c)
        cats.push_back(std::ldexp(pick(1000) - 500, pick(80) - 40));
      list.AddCatVar(name, "", cats, role);
      Cat(list, i).SetBinaryFlag(pick(2) != 0, pick(2));
      Cat(list, i).SetOrdinalFlag(pick(2) != 0);
      list.GetEncoderAt(i)->AddDiscreteUserMissing(1e-300 * pick(3), "");
    } else {
      list.SetWeightVar(name, word(), V::kRoundAsIs);
    }
    list.GetVarAt(i)->SetVariableStorage(static_cast<V::VariableStorage>(pick(8)));
  }
  return list;
}

TEST(ZRPMMLSchema, DocumentsValidate) {
  std::mt19937 rng(20240914u);
  for (int round = 0; round < 25; ++round) {
    SCOPED_TRACE(round);
    const ZRVarList list = RandomList(rng);
    ZRPMMLExporter exporter(nullptr);
    Tree pmml(exporter.ExportPMMLElement());
    XMLElement * part = nullptr;
    const ZRApplicInfo4XML info{0, "zr <test>", round % 2 ? "1.0" : "", ""};
    exporter.ExportHeader(round % 3 ? &info : nullptr, "random & list", round % 2 == 0, part);
    pmml->AddElement(part);
    ASSERT_TRUE(exporter.ExportDataDictionary(list, {}, part).IsOK());
    pmml->AddElement(part);
    // The data model is the library's own block: it travels inside an Extension.
    ASSERT_TRUE(exporter.ExportDataModel(list, {}, part).IsOK());
    XMLElement * extension = nullptr;
    exporter.ExportExtension("model", "", extension);
    extension->AddElement(part);
    pmml->AddElement(extension);
    const zrtest::XmllintResult lint = SchemaCheck(*pmml, false);
    ASSERT_EQ(lint.exitCode, 0) << lint.output;
  }
}

TEST(ZRPMMLSchema, IntendedDeparturesAreSchemaInvalid) {
  ZRVarList ranged;  // (1) interval Extensions after the Value children
  ranged.AddCatVar("r", "", std::vector<double>{1.0}, V::kRoleInput);
  ranged.GetEncoderAt(0)->SetMissingInterval(7.0, 9.0);
  ZRVarList odd;  // (2) no optype for level 5
  odd.AddNewVar(std::make_unique<OddLevelVar>(static_cast<V::MeasureLevel>(5)).get());
  ZRVarList unused, empty, nanMissing;  // (4) empty dictionaries; (5) Value without value
  unused.AddContVar("u", "", V::kRoleUnused);
  nanMissing.AddContVar("m", "", V::kRoleInput);
  nanMissing.GetEncoderAt(0)->AddDiscreteUserMissing(std::nan(""), "not a number");
  struct {
    const char * name;
    const ZRVarList & list;
    std::vector<int> indices;
  } const dictionaries[] = {{"invalid range after values", ranged, {}},
                            {"no optype outside levels 1 to 4", odd, {}},
                            {"empty list", empty, {}},
                            {"all of role 6", unused, {}},
                            {"stop before the first field", unused, {1}},
                            {"non-finite missing value", nanMissing, {}}};
  for (const auto & d : dictionaries) {
    SCOPED_TRACE(d.name);
    ZRPMMLExporter exporter(nullptr);
    XMLElement * dictionary = nullptr;
    exporter.ExportDataDictionary(d.list, d.indices, dictionary);
    Tree owned(dictionary);
    ASSERT_NE(dictionary, nullptr);
    EXPECT_EQ(SchemaCheck(*dictionary, true).exitCode, 3);
  }
  SCOPED_TRACE("application without name");  // (3)
  ZRPMMLExporter exporter(nullptr);
  const ZRApplicInfo4XML versionOnly{0, "", "2.0", ""};
  XMLElement * header = nullptr;
  exporter.ExportHeader(&versionOnly, "", false, header);
  Tree owned(header);
  EXPECT_EQ(SchemaCheck(*header, true).exitCode, 3);
}

}  // namespace
