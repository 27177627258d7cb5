// The settings tree over arbitrary texts. The whole input, and each of its first kPieces
// NUL-separated pieces, go to every ZRStrValue getter: GetBool is true only for "true",
// GetInt is GetLongLong held to the int range, GetString gives the bytes back. The pieces
// enter a tree as a text vector through AddNewSetting(char **) and come back from every
// vector lookup: a false conversion leaves an empty vector, a true one an element per text
// (an int read agreeing with GetInt), texts byte-equal; copies compare equal. Each piece
// is also a setting named by itself, found under its name and then removed, leaving the
// tree empty. The first 8 bytes, as a double, make a ZRNumValue, which must equal itself
// unless it is NaN, infinite or a subnormal below 2^-1022.
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "fuzzcheck.h"
#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/display/display.h"
#include "zrcommon920r/xml/settings/settings.h"

namespace {

using namespace ZRXML_920;
using zrfuzz::Fail;
using zrfuzz::Shown;

constexpr std::size_t kPieces = 32;  // keeps the quadratic removals short

void CheckText(const std::string & text) {
  const ZRStrValue value(text);
  if (value.GetString() != text) Fail("GetString of \"" + Shown(text) + "\" changed it");
  if (value.GetLength() != static_cast<int>(text.size())) Fail("GetLength of " + Shown(text));
  if (value.GetBool() != (text == "true")) Fail("GetBool of \"" + Shown(text) + "\"");
  const long long wide = value.GetLongLong();
  const int held = wide > INT_MAX ? INT_MAX : wide < INT_MIN ? INT_MIN : static_cast<int>(wide);
  if (value.GetInt() != held) {
    Fail("GetInt of \"" + Shown(text) + "\" is " + std::to_string(value.GetInt()) +
         ", GetLongLong " + std::to_string(wide));
  }
  if (text.empty() && value.GetDouble() != ZRCommon_920::kSysMisValue) Fail("GetDouble of \"\"");
  value.GetDouble();
}

void CheckNumber(double d) {
  const ZRNumValue value(d);
  value.GetString();
  value.GetBool();
  const bool comparable = d == 0.0 || (std::isfinite(d) && std::fabs(d) >= DBL_MIN);
  if (comparable && !(value == ZRNumValue(d))) Fail("a number unequal to itself");
}

// Looks "v" up as a vector of T, starting from an empty one: false must leave it empty,
// true give one element per text.
template <typename T>
std::vector<T> Converted(const ZRSettings & tree, std::size_t count, const char * what) {
  std::vector<T> out;
  const bool ok = tree.GetSettingValByName("v", out);
  if (ok ? out.size() != count : !out.empty()) {
    Fail(std::string(what) + ": " + (ok ? "true" : "false") + " with " +
         std::to_string(out.size()) + " elements from " + std::to_string(count) + " texts");
  }
  return out;
}

void CheckTree(const std::vector<std::string> & pieces) {
  std::vector<char *> texts;
  for (const std::string & piece : pieces) texts.push_back(const_cast<char *>(piece.c_str()));
  ZRSettings tree;
  tree.AddNewSetting("v", texts.data(), static_cast<int>(texts.size()), "texts");
  const std::size_t n = pieces.size();

  const std::vector<int> ints = Converted<int>(tree, n, "vector<int>");
  for (std::size_t i = 0; i < ints.size(); ++i)
    if (ints[i] != ZRStrValue(pieces[i]).GetInt())
      Fail("int of \"" + Shown(pieces[i]) + "\" read as " + std::to_string(ints[i]));
  Converted<double>(tree, n, "vector<double>");
  if (Converted<std::string>(tree, n, "vector<string>") != pieces) Fail("texts changed");
  std::vector<ZRSettings> lists;
  std::vector<std::pair<std::string, std::string>> pairs;
  if (tree.GetSettingValByName("v", lists) || tree.GetSettingValByName("v", pairs) ||
      !lists.empty() || !pairs.empty())
    Fail("texts converted to lists or pairs");

  ZRSettings named;
  for (const std::string & piece : pieces) named.AddSetting(piece, piece, false);
  for (const std::string & piece : pieces) {
    std::string found;
    if (!named.GetSettingValByName(piece, found) || found != piece)
      Fail("\"" + Shown(piece) + "\" found as \"" + Shown(found) + "\"");
  }
  named.AddNewSetting("tree", tree, "");
  ZRSettings copy(named);
  ZRSettings assigned;
  assigned = named;
  if (!(copy == named) || !(assigned == named) || copy < named || named < copy)
    Fail("a copy compares unequal");
  std::ostringstream shown;
  std::ostream * const saved = ZRDisplay_920::GetOutStream();
  ZRDisplay_920::SetOutStream(shown);
  copy.Display();
  ZRDisplay_920::SetOutStream(*saved);

  named.RemoveSetting("tree", false);
  for (const std::string & piece : pieces) named.RemoveSetting(piece, true);
  if (named.Size() != 0) Fail(std::to_string(named.Size()) + " settings left after removal");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t * data, std::size_t size) {
  const std::string input(reinterpret_cast<const char *>(data), size);
  CheckText(input);
  std::vector<std::string> pieces;
  for (std::size_t start = 0; start <= size && pieces.size() < kPieces;) {
    std::size_t end = input.find('\0', start);
    if (end == std::string::npos) end = size;
    pieces.push_back(input.substr(start, end - start));
    start = end + 1;
  }
  for (const std::string & piece : pieces) CheckText(piece);
  CheckTree(pieces);
  if (size >= sizeof(double)) {
    double d;
    std::memcpy(&d, data, sizeof d);
    CheckNumber(d);
  }
  return 0;
}
