// zr_demo end to end: its PMML validated by xmllint, and the coefficients in it and in the
// StatXML table it prints compared with R's fit (tests/data/examples/fuel_lm.R).
#include <gtest/gtest.h>
#include <libxml/tree.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "support/refdata.h"
#include "support/textio.h"
#include "support/xmllint.h"

namespace {

using zrtest::LoadRefTable;
using zrtest::RefRow;
using zrtest::RelErr;

// Parameters in the order of fuel_lm.csv, as the demo labels them.
const std::vector<std::string> kTerms = {"intercept", "engine",     "weight",
                                         "age",       "drive=rear", "drive=all"};

// One run of the demo with the bundled data, the document written into a scratch folder.
struct DemoRun {
  int exitCode = -1;   // -1 when it could not be run or did not exit
  std::string output;  // both streams
  std::string pmml;    // the document; empty when none was written
};

DemoRun RunDemo() {
  const zrtest::ScratchFolder dir("zr_demo");
  DemoRun run;
  run.exitCode =
      zrtest::ShellExitCode(std::string("'") + ZR_DEMO_EXE + "' '" + ZR_DEMO_CSV + "' '" +
                            (dir / "fuel.pmml") + "' >'" + (dir / "output.txt") + "' 2>&1");
  run.output = zrtest::ReadFile(dir / "output.txt");
  run.pmml = zrtest::ReadFile(dir / "fuel.pmml");
  return run;
}

using zrtest::XmlDoc;

// The elements named name under node, depth first in document order.
void Collect(xmlNodePtr node, const char * name, std::vector<xmlNodePtr> & out) {
  for (xmlNodePtr child = node->children; child != nullptr; child = child->next) {
    if (child->type != XML_ELEMENT_NODE) continue;
    if (xmlStrEqual(child->name, reinterpret_cast<const xmlChar *>(name))) out.push_back(child);
    Collect(child, name, out);
  }
}

std::vector<xmlNodePtr> Elements(const XmlDoc & doc, const char * name) {
  std::vector<xmlNodePtr> out;
  if (doc != nullptr) Collect(reinterpret_cast<xmlNodePtr>(doc.get()), name, out);
  return out;
}

// An attribute's text; empty when it is not there.
std::string Attr(xmlNodePtr node, const char * name) {
  xmlChar * value = xmlGetProp(node, reinterpret_cast<const xmlChar *>(name));
  std::string text = value != nullptr ? reinterpret_cast<const char *>(value) : "";
  xmlFree(value);
  return text;
}

double Number(const std::string & text) {
  char * end = nullptr;
  const double x = std::strtod(text.c_str(), &end);
  return !text.empty() && *end == '\0' ? x : NAN;
}

// The one run the tests share.
const DemoRun & Demo() {
  static const DemoRun run = RunDemo();
  return run;
}

TEST(ZRDemo, WritesASchemaValidPmmlDocument) {
  ASSERT_EQ(Demo().exitCode, 0) << Demo().output;
  ASSERT_FALSE(Demo().pmml.empty());
  // A missing schema makes xmllint fail (exit 5), so this cannot pass without one.
  const zrtest::XmllintResult lint = zrtest::RunXmllint(
      Demo().pmml, std::string("--noout --nonet --schema '") + ZR_PMML_SCHEMA + "'");
  EXPECT_EQ(lint.exitCode, 0) << lint.output << "\n" << Demo().pmml;
}

TEST(ZRDemo, PmmlCoefficientsMatchR) {  // data: tests/data/examples/fuel_lm.csv
  // The document prints 15 significant digits; these cross-products lose about 3 more.
  constexpr double kTol = 1e-10;
  const XmlDoc doc = zrtest::ParseXml(Demo().pmml);
  const std::vector<xmlNodePtr> tables = Elements(doc, "RegressionTable");
  ASSERT_EQ(tables.size(), 1u) << Demo().pmml;
  std::vector<double> got = {Number(Attr(tables[0], "intercept"))};
  std::vector<std::string> names = {"intercept"};
  for (xmlNodePtr p : Elements(doc, "NumericPredictor")) {
    got.push_back(Number(Attr(p, "coefficient")));
    names.push_back(Attr(p, "name"));
  }
  for (xmlNodePtr p : Elements(doc, "CategoricalPredictor")) {
    ASSERT_EQ(Attr(p, "name"), "drive");
    const double coefficient = Number(Attr(p, "coefficient"));
    if (Attr(p, "value") == "front") {
      EXPECT_EQ(coefficient, 0.0);  // the reference category
    } else {
      got.push_back(coefficient);
      names.push_back("drive=" + Attr(p, "value"));
    }
  }
  ASSERT_EQ(names, kTerms);  // the predictors in R's order, as the reference rows assume
  const std::vector<RefRow> rows = LoadRefTable("examples/fuel_lm.csv", /*nIn=*/1);
  ASSERT_EQ(got.size(), rows.size()) << Demo().pmml;
  for (const RefRow & row : rows) {
    SCOPED_TRACE(row.where);
    EXPECT_LE(RelErr(got[static_cast<int>(row.in[0])], row.out[0]), kTol);
  }
}

TEST(ZRDemo, StatXmlTableMatchesR) {  // data: tests/data/examples/fuel_lm.csv
  constexpr double kTol = 1e-10;      // estimates, errors and t values: as in the PMML test
  // p-values near 1e-24 move about 70 times as fast as t, relatively (d log p / d log t).
  constexpr double kSigTol = 1e-9;
  const std::size_t begin = Demo().output.find("<StatXML");
  const std::size_t end = Demo().output.find("</StatXML>");
  ASSERT_NE(begin, std::string::npos) << Demo().output;
  ASSERT_NE(end, std::string::npos) << Demo().output;
  const XmlDoc doc = zrtest::ParseXml(Demo().output.substr(begin, end + 10 - begin));
  ASSERT_NE(doc, nullptr) << Demo().output;

  std::vector<std::string> rowLabels, colLabels;
  for (xmlNodePtr labels : Elements(doc, "RowColLabels")) {
    std::vector<std::string> & out = Attr(labels, "dimension") == "row" ? rowLabels : colLabels;
    for (xmlNodePtr l = labels->children; l != nullptr; l = l->next)
      if (l->type == XML_ELEMENT_NODE) out.push_back(Attr(l, "label"));
  }
  EXPECT_EQ(rowLabels, kTerms);
  EXPECT_EQ(colLabels, (std::vector<std::string>{"estimate", "stdError", "tValue", "df", "sig"}));

  const std::vector<xmlNodePtr> arrays = Elements(doc, "Array");
  ASSERT_EQ(arrays.size(), 1u);
  xmlChar * content = xmlNodeGetContent(arrays[0]);
  std::istringstream text(reinterpret_cast<const char *>(content));
  xmlFree(content);
  std::vector<double> values;
  for (std::string item; text >> item;) values.push_back(Number(item));
  ASSERT_EQ(values.size(), 5 * kTerms.size());

  for (const RefRow & row : LoadRefTable("examples/fuel_lm.csv", /*nIn=*/1)) {
    SCOPED_TRACE(row.where);
    const double * got = &values[5 * static_cast<int>(row.in[0])];
    for (int k = 0; k < 3; ++k) EXPECT_LE(RelErr(got[k], row.out[k]), kTol) << k;
    EXPECT_EQ(got[3], row.out[3]);  // residual df: whole numbers
    EXPECT_LE(RelErr(got[4], row.out[4]), kSigTol);
  }
}

}  // namespace
