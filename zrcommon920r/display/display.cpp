// Diagnostic display: the output stream, the line primitive, the packed-line filler and
// the display functions built on them.
#include "zrcommon920r/display/display.h"

#include <cstddef>
#include <cstdio>
#include <ctime>
#include <iostream>

namespace ZRDisplay_920 {

namespace {

// The system-missing value, the lowest finite double, printed as "miss". Written out here
// because the display sits below the library's shared constants (common/numconst.h).
constexpr double kMissing = -1.7976931348623157e308;

// The one output stream. A function-local static is initialised on first use, so a
// display from another library's static initialiser still finds std::cout; the Init
// object guarantees std::cout itself is constructed by then.
std::ostream *& OutStream() {
  static const std::ios_base::Init kIoInit;
  static std::ostream * out = &std::cout;
  return out;
}

// Writes one line: a widened line break and a flush, then the text and a flush. Unformatted
// writes, so the stream's width and fill can't pad the text.
void WriteLine(const std::string & text) {
  std::ostream & os = *OutStream();
  os.put(os.widen('\n'));
  os.flush();
  os.write(text.data(), static_cast<std::streamsize>(text.size()));
  os.flush();
}

// Numbers are formatted with snprintf into a buffer, never through the stream, so the
// stream's locale and flags have no say. 32 chars hold any %.17g ("-1.7976931348623157e+308").
constexpr std::size_t kNumBuf = 32;

void AppendG(std::string & out, double value) {
  char buf[kNumBuf];
  std::snprintf(buf, sizeof buf, "%g", value);
  out += buf;
}

void AppendG17(std::string & out, double value) {
  char buf[kNumBuf];
  std::snprintf(buf, sizeof buf, "%.17g", value);
  out += buf;
}

void AppendInt(std::string & out, long long value) {
  char buf[kNumBuf];
  std::snprintf(buf, sizeof buf, "%lld", value);
  out += buf;
}

void AppendUnsigned(std::string & out, unsigned long long value) {
  char buf[kNumBuf];
  std::snprintf(buf, sizeof buf, "%llu", value);
  out += buf;
}

// Element text of a double in the packed forms: " miss" or " %g".
void AppendElemD(std::string & out, double value) {
  if (value == kMissing) {
    out += " miss";
  } else {
    out += ' ';
    AppendG(out, value);
  }
}

// "name (size = n)"
std::string SizeHeader(const std::string & name, std::size_t size) {
  std::string line = name;
  line += " (size = ";
  AppendUnsigned(line, size);
  line += ')';
  return line;
}

// Fills lines of perLine elements (0: no limit). The first line starts from firstStart,
// each later one from nextStart. Elements append to Text() and then call EndElement.
class LineFiller {
 public:
  LineFiller(std::size_t perLine, const char * firstStart, const char * nextStart)
      : fnPerLine(perLine), fsNextStart(nextStart), fsText(firstStart) {}

  std::string & Text() { return fsText; }

  void EndElement() {
    ++fnCount;
    if (fnCount == fnPerLine) {
      WriteLine(fsText);
      fsText = fsNextStart;
      fnCount = 0;
    }
  }

  // Prints a part-filled last line; an empty one is not printed.
  void Finish() {
    if (fnCount > 0) WriteLine(fsText);
  }

 private:
  std::size_t fnPerLine;
  const char * fsNextStart;
  std::string fsText;
  std::size_t fnCount = 0;
};

constexpr std::size_t kDoublesPerLine = 10;
constexpr std::size_t kIntsPerLine = 25;
constexpr std::size_t kBoolsPerLine = 35;
constexpr std::size_t kStringsPerLine = 10;
constexpr std::size_t kPairsPerLine = 10;

// Header "name (size = n)", then the elements of values through append, perLine a line.
template <class Container, class Append>
void DisplayPacked(const std::string & name, const Container & values, std::size_t perLine,
                   Append append) {
  WriteLine(SizeHeader(name, values.size()));
  LineFiller filler(perLine, " ", " ");
  for (const auto & value : values) {
    append(filler.Text(), value);
    filler.EndElement();
  }
  filler.Finish();
}

// Walks a packed lower triangle: row i takes the next i + 1 elements, cut at the end of
// values; show(row, first, count) prints each row.
template <class Show>
void WalkTriangle(const std::vector<double> & values, int rows, Show show) {
  std::size_t start = 0;
  for (int row = 0; row < rows && start < values.size(); ++row) {
    std::size_t len = static_cast<std::size_t>(row) + 1;
    if (len > values.size() - start) len = values.size() - start;
    show(row, values.data() + start, static_cast<int>(len));
    start += len;
  }
}

// "name <empty>" for an empty map; true when it was printed.
template <class Map>
bool DisplayIfEmpty(const std::string & name, const Map & values) {
  if (!values.empty()) return false;
  WriteLine(name + " <empty>");
  return true;
}

// Shared body of DisplayIIM and DisplayDDM.
template <class Map, class Append>
void DisplayMapPacked(const std::string & name, const Map & values, Append append) {
  if (DisplayIfEmpty(name, values)) return;
  WriteLine(name);
  std::string sizeLine = "map size = ";
  AppendUnsigned(sizeLine, values.size());
  WriteLine(sizeLine);
  LineFiller filler(kPairsPerLine, "", " ");
  for (const auto & entry : values) {
    append(filler.Text(), entry.first, entry.second);
    filler.EndElement();
  }
  filler.Finish();
}

}  // namespace

void SetOutStream(std::ostream & os) {
  OutStream() = &os;
}

std::ostream * GetOutStream() {
  return OutStream();
}

void DisplayText(const std::int32_t & count, const char * text) {
  if (text == nullptr) return;
  std::ostream & os = *OutStream();
  for (std::int32_t i = 0; i < count; ++i) os.put(os.widen('\n'));
  os.write(text, static_cast<std::streamsize>(std::char_traits<char>::length(text)));
  os.flush();
}

void DisplayText(const std::int32_t & count, const std::string & text) {
  DisplayText(count, text.c_str());
}

void DisplayB(std::string name, bool value) {
  name += value ? " = true" : " = false";
  WriteLine(name);
}

void DisplayD(std::string name, double value) {
  if (value == kMissing) {
    name += " = miss";
  } else {
    name += " = ";
    AppendG(name, value);
  }
  WriteLine(name);
}

void DisplayDF(std::string name, double value) {
  if (value == kMissing) {
    name += " = miss";
  } else {
    name += " = ";
    AppendG17(name, value);
  }
  WriteLine(name);
}

void DisplayI(std::string name, int value) {
  name += " = ";
  AppendInt(name, value);
  WriteLine(name);
}

void DisplayL(std::string name, std::int32_t value) {
  name += " = ";
  AppendInt(name, value);
  WriteLine(name);
}

void DisplayS(std::string name, std::string value) {
  name += " = ";
  name += value;
  WriteLine(name);
}

void DisplayTimeStamp(std::string name) {
  const std::time_t now = std::time(nullptr);
  if (now == static_cast<std::time_t>(-1)) return;
  std::tm local{};
#if defined(_WIN32)
  if (localtime_s(&local, &now) != 0) return;
#else
  if (localtime_r(&now, &local) == nullptr) return;
#endif
  char buf[96];
  std::snprintf(buf, sizeof buf, "%lld-%02d-%02d-%02d-%02d-%02d",
                static_cast<long long>(local.tm_year) + 1900, local.tm_mon + 1, local.tm_mday,
                local.tm_hour, local.tm_min, local.tm_sec);
  name += ": ";
  name += buf;
  WriteLine(name);
}

void DisplayDA(std::string name, const double * values, int count, bool showSize) {
  if (showSize) {
    name += " (size = ";
    AppendInt(name, count);
    name += ')';
  }
  WriteLine(name);
  if (values == nullptr) return;
  LineFiller filler(kDoublesPerLine, " ", " ");
  for (int i = 0; i < count; ++i) {
    AppendElemD(filler.Text(), values[i]);
    filler.EndElement();
  }
  filler.Finish();
}

void DisplayDV(std::string name, const std::vector<double> & values, bool full) {
  if (!full) {
    DisplayPacked(name, values, kDoublesPerLine, AppendElemD);
    return;
  }
  WriteLine(SizeHeader(name, values.size()));
  for (double value : values) {
    if (value == kMissing) {
      WriteLine(" miss");
    } else {
      std::string line = "  = ";
      AppendG17(line, value);
      WriteLine(line);
    }
  }
}

void DisplayIV(std::string name, const std::vector<int> & values) {
  DisplayPacked(name, values, kIntsPerLine, [](std::string & out, int value) {
    out += ' ';
    AppendInt(out, value);
  });
}

void DisplayUV(std::string name, const std::vector<unsigned int> & values) {
  DisplayPacked(name, values, kIntsPerLine, [](std::string & out, unsigned int value) {
    out += ' ';
    AppendUnsigned(out, value);
  });
}

void DisplayBV(std::string name, const std::vector<bool> & values) {
  DisplayPacked(name, values, kBoolsPerLine,
                [](std::string & out, bool value) { out += value ? " t" : " f"; });
}

void DisplaySV(std::string name, const std::vector<std::string> & values) {
  DisplayPacked(name, values, kStringsPerLine, [](std::string & out, const std::string & value) {
    out += " \"";
    out += value;
    out += '"';
  });
}

void DisplayVPII(std::string name, const std::vector<std::pair<int, int>> & values) {
  DisplayPacked(name, values, kPairsPerLine,
                [](std::string & out, const std::pair<int, int> & value) {
                  out += '(';
                  AppendInt(out, value.first);
                  out += ',';
                  AppendInt(out, value.second);
                  out += ") ";
                });
}

void DisplayDAS(const double * values, int count) {
  if (values == nullptr) return;
  // Intended: the first line starts empty and later ones with a blank, so the first line
  // is one blank shorter.
  LineFiller filler(kDoublesPerLine, "", " ");
  for (int i = 0; i < count; ++i) {
    AppendElemD(filler.Text(), values[i]);
    filler.EndElement();
  }
  filler.Finish();
}

void DisplayVPD(std::string name, const std::vector<std::pair<double, double>> & values) {
  WriteLine(SizeHeader(name, values.size()));
  for (const auto & value : values) {
    std::string line = " ";
    AppendElemD(line, value.first);
    line += ' ';
    AppendElemD(line, value.second);
    WriteLine(line);
  }
}

void DisplayVPDI(std::string name, const std::vector<std::pair<double, int>> & values) {
  WriteLine(SizeHeader(name, values.size()));
  for (const auto & value : values) {
    std::string line = " ";
    AppendElemD(line, value.first);
    line += ' ';
    AppendInt(line, value.second);
    WriteLine(line);
  }
}

void DisplayDVV(std::string name, const std::vector<std::vector<double>> & values, bool full) {
  if (values.empty()) {
    WriteLine(name + " <none>");
    return;
  }
  WriteLine(name);
  for (std::size_t i = 0; i < values.size(); ++i) {
    std::string vecName = "vec[";
    AppendUnsigned(vecName, i);
    vecName += ']';
    DisplayDV(vecName, values[i], full);
  }
}

void DisplaySVV(std::string name, const std::vector<std::vector<std::string>> & values) {
  if (values.empty()) {
    WriteLine(name + " <none>");
    return;
  }
  WriteLine(name);
  for (std::size_t i = 0; i < values.size(); ++i) {
    std::string vecName = "vec[";
    AppendUnsigned(vecName, i);
    vecName += ']';
    DisplaySV(vecName, values[i]);
  }
}

void DisplayBVV(std::string name, const std::vector<std::vector<bool>> & values,
                const std::string & falseText, const std::string & trueText) {
  // Intended: two blanks before each count, from the label's blank and the number's.
  name += " ( number of rows =  ";
  AppendUnsigned(name, values.size());
  if (!values.empty()) {
    name += ", number of columns =  ";
    AppendUnsigned(name, values.front().size());
  }
  name += " )";
  WriteLine(name);
  for (const std::vector<bool> & row : values) {
    std::string line;
    for (bool value : row) line += value ? trueText : falseText;
    WriteLine(line);
  }
}

void DisplayIIM(std::string name, const std::map<int, int> & values) {
  DisplayMapPacked(name, values, [](std::string & out, int key, int value) {
    out += " (";
    AppendInt(out, key);
    out += ',';
    AppendInt(out, value);
    out += ')';
  });
}

void DisplayDDM(std::string name, const std::map<double, double> & values) {
  // Intended: no test for the system-missing value here; it prints as a number.
  DisplayMapPacked(name, values, [](std::string & out, double key, double value) {
    out += " (";
    AppendG(out, key);
    out += ',';
    AppendG(out, value);
    out += ')';
  });
}

void DisplayVIM(std::string name, const std::map<int, int> & values) {
  if (DisplayIfEmpty(name, values)) return;
  WriteLine(name);
  std::string line;
  for (const auto & entry : values) {
    line += " (";
    AppendInt(line, entry.first);
    line += ',';
    AppendInt(line, entry.second);
    line += ')';
  }
  WriteLine(line);
}

void DisplaySLDM(std::string name, const std::map<std::vector<std::string>, double> & values) {
  if (DisplayIfEmpty(name, values)) return;
  WriteLine(name);
  for (const auto & entry : values) {
    DisplaySV("Map's StringList:", entry.first);
    DisplayD("Map's double", entry.second);
  }
}

void DisplayIntVecDVecMap(std::string name,
                          const std::map<std::vector<int>, std::vector<double>> & values) {
  if (DisplayIfEmpty(name, values)) return;
  WriteLine(name);
  for (const auto & entry : values) {
    DisplayIV("Map key", entry.first);
    DisplayDV("Map value", entry.second, false);
  }
}

void DisplayIntVecIntMap(std::string name, const std::map<std::vector<int>, int> & values) {
  if (DisplayIfEmpty(name, values)) return;
  WriteLine(name);
  for (const auto & entry : values) {
    DisplayIV("Map key", entry.first);
    DisplayI("Map value", entry.second);
  }
}

void DisplayDVTR(std::string name, const std::vector<double> & values, int rows) {
  name += " (number of elements = ";
  AppendUnsigned(name, values.size());
  name += ", number of rows = ";
  AppendInt(name, rows);
  name += ')';
  WriteLine(name);
  WalkTriangle(values, rows, [](int row, const double * first, int count) {
    // Intended: "row " and " %d" give two blanks before the row number.
    std::string label = "row  ";
    AppendInt(label, row);
    label += ": ";
    DisplayDA(label, first, count, false);
  });
}

void DisplayDVTRS(const std::vector<double> & values, int rows) {
  WalkTriangle(values, rows,
               [](int, const double * first, int count) { DisplayDAS(first, count); });
}

}  // namespace ZRDisplay_920
