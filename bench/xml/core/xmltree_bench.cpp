// The XML tree writer against tinyxml2 on one document: kRows elements
// <Row name="v123" type="continuous" value="..."/> under one root, printed into memory.
// XmlBuildPrint times building the tree and printing it (tinyxml2: XMLDocument, NewElement,
// SetAttribute with the value text from snprintf("%.15g"), then XMLPrinter in its default,
// indented layout); XmlPrint times printing a tree built beforehand. XmlStreamPrint is
// tinyxml2's XMLPrinter fed without a document, for scale. XmlPrintUTF8 is WriteTreeUTF8
// over WriteTree on the same (ASCII) tree, and XmlFormat the number text alone against
// snprintf. Times are per element or per number.
#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <tinyxml2.h>

#include <charconv>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

#include "zrcommon920r/xml/core/numtext.h"
#include "zrcommon920r/xml/core/xmltree.h"

namespace {

namespace zx = ZRXML_920;
namespace tx = tinyxml2;

constexpr int kRows = 100000;

// A stream buffer that appends to a string. The string is cleared, not freed, between
// runs, as tinyxml2's printer keeps its buffer through ClearBuffer.
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

// Row values: 15-digit mantissas with exponents from -7 to 7 (so both the fixed and the
// exponent form of "%.15g" occur), every eighth a short decimal (a multiple of 1/4), a third
// of them negative. A fixed generator, so every run prints the same text.
std::vector<double> RowValues() {
  std::vector<double> values(kRows);
  std::uint64_t state = 0x9E3779B97F4A7C15u;
  for (int i = 0; i < kRows; ++i) {
    state = state * 6364136223846793005u + 1442695040888963407u;
    const double mantissa = 1.0 + 9.0 * static_cast<double>(state >> 11) * 0x1p-53;
    const double v =
        i % 8 == 7 ? (i % 1000) / 4.0 : mantissa * std::pow(10.0, static_cast<double>(i % 15 - 7));
    values[i] = i % 3 == 0 ? -v : v;
  }
  return values;
}

const std::vector<double> & Values() {
  static const std::vector<double> values = RowValues();
  return values;
}

// "v" and the row number, NUL-terminated, into name (16 bytes).
void RowName(int row, char * name) {
  name[0] = 'v';
  *std::to_chars(name + 1, name + 15, row).ptr = '\0';
}

void FormatValue(double value, char * text, std::size_t size) {
  std::snprintf(text, size, "%.15g", value);
}

// ---- This library ----

std::unique_ptr<zx::XMLElement> BuildZr() {
  const std::vector<double> & values = Values();
  std::unique_ptr<zx::XMLElement> root(zx::XMLElement::Create("Root"));
  char name[16];
  for (int i = 0; i < kRows; ++i) {
    zx::XMLElement * row = zx::XMLElement::Create("Row");
    RowName(i, name);
    row->AddAttribute("name", name);
    row->AddAttribute("type", "continuous");
    row->AddAttribute("value", values[i]);
    root->AddElement(row);
  }
  return root;
}

void PrintZr(StringSink & sink, const zx::XMLElement & root, bool utf8) {
  sink.text.clear();
  std::ostream out(&sink);
  if (utf8) {
    zx::WriteTreeUTF8(out, nullptr, &root, true);
  } else {
    zx::WriteTree(out, nullptr, &root, true);
  }
}

// ---- tinyxml2 ----

void BuildTx(tx::XMLDocument & doc) {
  const std::vector<double> & values = Values();
  doc.InsertEndChild(doc.NewDeclaration());
  tx::XMLElement * root = doc.NewElement("Root");
  doc.InsertEndChild(root);
  char name[16];
  char value[32];
  for (int i = 0; i < kRows; ++i) {
    tx::XMLElement * row = doc.NewElement("Row");
    RowName(i, name);
    FormatValue(values[i], value, sizeof value);
    row->SetAttribute("name", name);
    row->SetAttribute("type", "continuous");
    row->SetAttribute("value", value);
    root->InsertEndChild(row);
  }
}

void PrintTx(tx::XMLPrinter & printer, const tx::XMLDocument & doc) {
  printer.ClearBuffer();
  doc.Print(&printer);
}

// ---- Checks ----

// The attribute values of the elements from the root on, in order of appearance.
std::vector<std::string> AttributeValues(const char * text, std::size_t size) {
  const std::string all(text, size);
  std::vector<std::string> found;
  for (std::size_t at = all.find("<Root"); at != std::string::npos;) {
    const std::size_t open = all.find("=\"", at);
    if (open == std::string::npos) break;
    const std::size_t close = all.find('"', open + 2);
    if (close == std::string::npos) break;
    found.push_back(all.substr(open + 2, close - open - 2));
    at = close + 1;
  }
  return found;
}

// Whether text holds every row with the attribute texts snprintf gives, so that neither
// side is timed printing anything else; on a mismatch the benchmark is skipped with why.
bool PrintedAllRows(benchmark::State & state, const char * text, std::size_t size) {
  const std::vector<std::string> found = AttributeValues(text, size);
  if (found.size() != 3u * kRows) {
    state.SkipWithError(("printed " + std::to_string(found.size()) + " attributes").c_str());
    return false;
  }
  char name[16];
  char value[32];
  for (int i = 0; i < kRows; ++i) {
    RowName(i, name);
    FormatValue(Values()[i], value, sizeof value);
    if (found[3 * i] != name || found[3 * i + 1] != "continuous" || found[3 * i + 2] != value) {
      const std::string why =
          "row " + std::to_string(i) + " value " + found[3 * i + 2] + ", snprintf " + value;
      state.SkipWithError(why.c_str());
      return false;
    }
  }
  return true;
}

void PerElement(benchmark::State & state) {
  state.counters["calls"] = kRows;
}

// ---- Benchmarks ----

void BuildPrintZr(benchmark::State & state) {
  StringSink sink;
  PrintZr(sink, *BuildZr(), false);
  if (!PrintedAllRows(state, sink.text.data(), sink.text.size())) return;
  for (auto _ : state) {
    const std::unique_ptr<zx::XMLElement> root = BuildZr();
    PrintZr(sink, *root, false);
    benchmark::DoNotOptimize(sink.text.data());
  }
  PerElement(state);
}

void BuildPrintTx(benchmark::State & state) {
  tx::XMLPrinter printer;
  {
    tx::XMLDocument doc;
    BuildTx(doc);
    PrintTx(printer, doc);
  }
  if (!PrintedAllRows(state, printer.CStr(), printer.CStrSize() - 1)) return;
  for (auto _ : state) {
    tx::XMLDocument doc;
    BuildTx(doc);
    PrintTx(printer, doc);
    benchmark::DoNotOptimize(printer.CStr());
  }
  PerElement(state);
}

void PrintOnlyZr(benchmark::State & state) {
  const std::unique_ptr<zx::XMLElement> root = BuildZr();
  StringSink sink;
  PrintZr(sink, *root, false);
  if (!PrintedAllRows(state, sink.text.data(), sink.text.size())) return;
  for (auto _ : state) {
    PrintZr(sink, *root, false);
    benchmark::DoNotOptimize(sink.text.data());
  }
  PerElement(state);
}

void PrintOnlyTx(benchmark::State & state) {
  tx::XMLDocument doc;
  BuildTx(doc);
  tx::XMLPrinter printer;
  PrintTx(printer, doc);
  if (!PrintedAllRows(state, printer.CStr(), printer.CStrSize() - 1)) return;
  for (auto _ : state) {
    PrintTx(printer, doc);
    benchmark::DoNotOptimize(printer.CStr());
  }
  PerElement(state);
}

// tinyxml2's printer fed element by element, with no document behind it.
void StreamTx(tx::XMLPrinter & printer) {
  const std::vector<double> & values = Values();
  printer.ClearBuffer();
  printer.PushHeader(false, true);
  printer.OpenElement("Root");
  char name[16];
  char value[32];
  for (int i = 0; i < kRows; ++i) {
    RowName(i, name);
    FormatValue(values[i], value, sizeof value);
    printer.OpenElement("Row");
    printer.PushAttribute("name", name);
    printer.PushAttribute("type", "continuous");
    printer.PushAttribute("value", value);
    printer.CloseElement();
  }
  printer.CloseElement();
}

void StreamPrintTx(benchmark::State & state) {
  tx::XMLPrinter printer;
  StreamTx(printer);
  if (!PrintedAllRows(state, printer.CStr(), printer.CStrSize() - 1)) return;
  for (auto _ : state) {
    StreamTx(printer);
    benchmark::DoNotOptimize(printer.CStr());
  }
  PerElement(state);
}

// WriteTreeUTF8 (utf8) or WriteTree of the same tree, which is ASCII throughout.
void PrintTreeZr(benchmark::State & state, bool utf8) {
  const std::unique_ptr<zx::XMLElement> root = BuildZr();
  StringSink narrow;
  StringSink sink;
  PrintZr(narrow, *root, false);
  PrintZr(sink, *root, utf8);
  if (sink.text != narrow.text) {
    state.SkipWithError("WriteTreeUTF8 and WriteTree differ on ASCII text");
    return;
  }
  for (auto _ : state) {
    PrintZr(sink, *root, utf8);
    benchmark::DoNotOptimize(sink.text.data());
  }
  PerElement(state);
}

void FormatZr(benchmark::State & state) {
  char value[32];
  for (const double v : Values()) {
    FormatValue(v, value, sizeof value);
    const std::string text = zx::Format(v, false, nullptr);
    if (text != value) {
      state.SkipWithError(("Format gives " + text + ", snprintf " + value).c_str());
      return;
    }
  }
  for (auto _ : state)
    for (const double v : Values()) benchmark::DoNotOptimize(zx::Format(v, false, nullptr));
  PerElement(state);
}

void FormatSnprintf(benchmark::State & state) {
  char value[32];
  for (auto _ : state) {
    for (const double v : Values()) {
      FormatValue(v, value, sizeof value);
      benchmark::DoNotOptimize(value);
    }
  }
  PerElement(state);
}

// The file tinyxml2's code was loaded from, symlinks resolved, and the headers' version.
std::string TinyXml2Origin() {
  const std::string version = std::to_string(TINYXML2_MAJOR_VERSION) + "." +
                              std::to_string(TINYXML2_MINOR_VERSION) + "." +
                              std::to_string(TINYXML2_PATCH_VERSION);
  void (*const toStr)(double, char *, int) = &tx::XMLUtil::ToStr;
  Dl_info info;
  char path[PATH_MAX];
  if (dladdr(reinterpret_cast<const void *>(toStr), &info) == 0 || info.dli_fname == nullptr)
    return "(not found), headers " + version;
  return std::string(realpath(info.dli_fname, path) != nullptr ? path : info.dli_fname) +
         ", headers " + version;
}

bool RegisterAll() {
  benchmark::AddCustomContext("tinyxml2", TinyXml2Origin());
  const std::string rows = "/rows:" + std::to_string(kRows);
  const auto add = [&rows](const char * work, const char * side, void (*run)(benchmark::State &)) {
    benchmark::RegisterBenchmark((std::string(work) + "/" + side + rows).c_str(), run)
        ->Unit(benchmark::kMillisecond);
  };
  add("XmlBuildPrint", "zr", BuildPrintZr);
  add("XmlBuildPrint", "tinyxml2", BuildPrintTx);
  add("XmlPrint", "zr", PrintOnlyZr);
  add("XmlPrint", "tinyxml2", PrintOnlyTx);
  add("XmlStreamPrint", "tinyxml2", StreamPrintTx);
  add("XmlPrintUTF8", "zr", [](benchmark::State & state) { PrintTreeZr(state, true); });
  add("XmlPrintUTF8", "WriteTree", [](benchmark::State & state) { PrintTreeZr(state, false); });
  add("XmlFormat", "zr", FormatZr);
  add("XmlFormat", "snprintf", FormatSnprintf);
  return true;
}

[[maybe_unused]] const bool kRegistered = RegisterAll();

}  // namespace
