// The PMML data dictionary against tinyxml2 on one document: kFields string fields of
// kCategories labelled categories each. PmmlDictionary times ExportDataDictionary of the
// variable list plus WriteTree into memory; tinyxml2 builds the same DataDictionary from
// the same names, categories and labels (XMLDocument, NewElement, SetAttribute) and prints
// it with XMLPrinter. Times are per field.
#include <benchmark/benchmark.h>
#include <tinyxml2.h>

#include <memory>
#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

#include "zrcommon920r/xml/export/pmml.h"

namespace {

namespace zx = ZRXML_920;
namespace tx = tinyxml2;

constexpr int kFields = 1000;
constexpr int kCategories = 10;

struct Field {
  std::string name, label;
  std::vector<std::string> categories, labels;
};

// "f12", "Field 12", categories "f12c3" labelled "Category 3 of 12".
const std::vector<Field> & Fields() {
  static const std::vector<Field> fields = [] {
    std::vector<Field> all(kFields);
    for (int i = 0; i < kFields; ++i) {
      Field & f = all[i];
      f.name = "f" + std::to_string(i);
      f.label = "Field " + std::to_string(i);
      for (int c = 0; c < kCategories; ++c) {
        f.categories.push_back(f.name + "c" + std::to_string(c));
        f.labels.push_back("Category " + std::to_string(c) + " of " + std::to_string(i));
      }
    }
    return all;
  }();
  return fields;
}

zx::ZRVarList MakeList() {
  zx::ZRVarList list;
  for (const Field & f : Fields()) {
    const int i =
        list.AddCatVar(f.name, f.label, f.categories, f.labels, zx::IZRVariable::kRoleInput);
    list.GetVarAt(i)->SetVariableStorage(zx::IZRVariable::kStorageString);
  }
  return list;
}

// A stream buffer that appends to a string, cleared but not freed between runs.
class StringSink : public std::streambuf {
 public:
  std::string text;

 protected:
  int_type overflow(int_type c) override {
    if (!traits_type::eq_int_type(c, traits_type::eof())) text += traits_type::to_char_type(c);
    return traits_type::not_eof(c);
  }
  std::streamsize xsputn(const char * s, std::streamsize n) override {
    text.append(s, static_cast<std::size_t>(n));
    return n;
  }
};

void BuildTx(tx::XMLDocument & doc) {
  doc.InsertEndChild(doc.NewDeclaration());
  tx::XMLElement * dictionary = doc.NewElement("DataDictionary");
  doc.InsertEndChild(dictionary);
  for (const Field & f : Fields()) {
    tx::XMLElement * field = doc.NewElement("DataField");
    field->SetAttribute("name", f.name.c_str());
    field->SetAttribute("displayName", f.label.c_str());
    field->SetAttribute("optype", "categorical");
    field->SetAttribute("dataType", "string");
    for (int c = 0; c < kCategories; ++c) {
      tx::XMLElement * value = doc.NewElement("Value");
      value->SetAttribute("value", f.categories[c].c_str());
      value->SetAttribute("displayValue", f.labels[c].c_str());
      value->SetAttribute("property", "valid");
      field->InsertEndChild(value);
    }
    dictionary->InsertEndChild(field);
  }
  dictionary->SetAttribute("numberOfFields", kFields);
}

// The number of occurrences of "<Value " and of "displayValue=\"Category 9 of 999\"", so
// both sides are seen printing the same fields.
bool SameDocument(benchmark::State & state, const std::string & text) {
  std::size_t values = 0;
  for (std::size_t at = text.find("<Value "); at != std::string::npos;
       at = text.find("<Value ", at + 1))
    ++values;
  const bool last = text.find("displayValue=\"Category 9 of 999\"") != std::string::npos;
  if (values != static_cast<std::size_t>(kFields) * kCategories || !last) {
    state.SkipWithError(("printed " + std::to_string(values) + " values").c_str());
    return false;
  }
  return true;
}

void ExportPrintZr(benchmark::State & state) {
  const zx::ZRVarList list = MakeList();
  ZRCommon_920::ZRPMMLExporter exporter(nullptr);
  StringSink sink;
  const auto run = [&] {
    zx::XMLElement * dictionary = nullptr;
    exporter.ExportDataDictionary(list, {}, dictionary);
    const std::unique_ptr<zx::XMLElement> owned(dictionary);
    sink.text.clear();
    std::ostream out(&sink);
    zx::WriteTree(out, nullptr, dictionary, true);
  };
  run();
  if (!SameDocument(state, sink.text)) return;
  for (auto _ : state) {
    run();
    benchmark::DoNotOptimize(sink.text.data());
  }
  state.counters["calls"] = kFields;
}

void BuildPrintTx(benchmark::State & state) {
  tx::XMLPrinter printer;
  const auto run = [&] {
    tx::XMLDocument doc;
    BuildTx(doc);
    printer.ClearBuffer();
    doc.Print(&printer);
  };
  run();
  if (!SameDocument(state, printer.CStr())) return;
  for (auto _ : state) {
    run();
    benchmark::DoNotOptimize(printer.CStr());
  }
  state.counters["calls"] = kFields;
}

bool RegisterAll() {
  const std::string args = "/fields:" + std::to_string(kFields);
  benchmark::RegisterBenchmark(("PmmlDictionary/zr" + args).c_str(), ExportPrintZr)
      ->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark(("PmmlDictionary/tinyxml2" + args).c_str(), BuildPrintTx)
      ->Unit(benchmark::kMillisecond);
  return true;
}

[[maybe_unused]] const bool kRegistered = RegisterAll();

}  // namespace
