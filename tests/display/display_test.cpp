// Tests of the diagnostic display functions: exact text of every form, written by hand.
#include "zrcommon920r/display/display.h"

#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <locale>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "support/capture.h"
#include "support/textio.h"
#include "zrcommon920r/common/numconst.h"

namespace {

using namespace ZRDisplay_920;
constexpr double kMiss = ZRCommon_920::kSysMisValue;

struct TextCase {
  int line;
  std::function<void()> call;
  const char * want;
};

void ExpectTexts(const std::vector<TextCase> & cases) {
  for (const TextCase & c : cases) {
    SCOPED_TRACE(c.line);
    zrtest::DisplayCapture cap;
    c.call();
    EXPECT_EQ(cap.Text(), c.want);
  }
}

std::vector<double> Iota(int n) {
  std::vector<double> v;
  for (int i = 1; i <= n; ++i) v.push_back(i);
  return v;
}

// Records the characters written and a '|' at every flush.
class FlushMarkBuf : public std::stringbuf {
 protected:
  int sync() override { return sputc('|') == '|' ? 0 : -1; }
};

// The stream starts as std::cout and follows SetOutStream; each line is flushed after its
// break and after its text.
TEST(ZRDisplayStream, FollowsSetOutStreamAndFlushesEachLine) {
  EXPECT_EQ(GetOutStream(), &std::cout);
  FlushMarkBuf buf;
  std::ostream os(&buf);
  SetOutStream(os);
  DisplayB("b", true);
  DisplayIV("v", {1, 2});
  DisplayText(2, "t");
  SetOutStream(std::cout);
  EXPECT_EQ(buf.str(), "\n|b = true|\n|v (size = 2)|\n|  1 2|\n\nt|");
}

TEST(ZRDisplayStream, StreamLocaleAndFlagsDoNotChangeText) {
  zrtest::DisplayCapture cap;
  std::ostream & os = *GetOutStream();
  os.imbue(std::locale(std::locale::classic(), new zrtest::CommaPunct));
  os.width(30);
  os.fill('*');
  os.precision(2);
  os.setf(std::ios::showpos | std::ios::fixed | std::ios::uppercase);
  DisplayD("x", 12345.5);
  DisplayDF("y", 0.5);
  DisplayI("n", 1234567);
  DisplayDV("v", Iota(1));
  EXPECT_EQ(cap.Text(), "\nx = 12345.5\ny = 0.5\nn = 1234567\nv (size = 1)\n  1");
}

// Scalars: "miss" only for the missing value itself, not for its neighbour. Text: breaks
// then text; a null pointer prints nothing, a string stops at its first NUL.
TEST(ZRDisplayScalars, ExactLinesAndText) {
  const double lowestButOne = -1.7976931348623155e308;
  const std::string withNul("ab\0cd", 5);
  ExpectTexts({
      {__LINE__, [] { DisplayB("b", false); }, "\nb = false"},
      {__LINE__, [] { DisplayD("x", kMiss); }, "\nx = miss"},
      {__LINE__, [] { DisplayD("x", 123456789.0); }, "\nx = 1.23457e+08"},
      {__LINE__, [] { DisplayD("x", -0.0); }, "\nx = -0"},
      {__LINE__, [&] { DisplayD("x", lowestButOne); }, "\nx = -1.79769e+308"},
      {__LINE__, [] { DisplayDF("x", 0.1); }, "\nx = 0.10000000000000001"},
      {__LINE__, [] { DisplayDF("x", kMiss); }, "\nx = miss"},
      {__LINE__, [&] { DisplayDF("x", lowestButOne); }, "\nx = -1.7976931348623155e+308"},
      {__LINE__, [] { DisplayI("i", INT_MIN); }, "\ni = -2147483648"},
      {__LINE__, [] { DisplayL("l", INT32_MAX); }, "\nl = 2147483647"},
      {__LINE__, [] { DisplayS("s", "a b"); }, "\ns = a b"},
      {__LINE__, [] { DisplayText(3, "abc"), DisplayText(-2, "d"); }, "\n\n\nabcd"},
      {__LINE__, [] { DisplayText(2, static_cast<const char *>(nullptr)); }, ""},
      {__LINE__, [&] { DisplayText(1, withNul); }, "\nab"},
      {__LINE__, [] { DisplayI("n", 4), DisplayText(0, std::string(" more")); }, "\nn = 4 more"},
  });
}

TEST(ZRDisplayScalars, TimeStampForm) {
  zrtest::DisplayCapture cap;
  DisplayTimeStamp("at");
  const std::string text = cap.Text();
  std::smatch m;  // year, month, day, hour, minute, second (60: a leap second)
  const std::regex form(R"(\nat: (\d{4,})-(0[1-9]|1[0-2])-(0[1-9]|[12]\d|3[01]))"
                        R"(-([01]\d|2[0-3])-[0-5]\d-([0-5]\d|60))");
  ASSERT_TRUE(std::regex_match(text, m, form)) << text;
  EXPECT_GE(std::stoll(m[1]), 1970);
}

// Packed lines: 10 doubles, strings or pairs, 25 ints, 35 bools to a line; no empty line
// after a full one.
TEST(ZRDisplayPacked, LineFillAndElementText) {
  const double da[] = {2.5, kMiss, -3};
  const std::vector<double> special = {kMiss, 1e300, 0.25}, mixed = {0.1, kMiss, -2};
  const std::vector<double> v21 = Iota(21);
  const std::vector<unsigned int> uints = {0u, 4294967295u};
  const std::vector<std::string> strings = {"a", "", "b c"};
  const std::vector<std::pair<int, int>> pairs(11, {0, -1});
  const std::vector<std::pair<double, double>> dd = {{1.5, kMiss}, {kMiss, -2}};
  const std::vector<std::pair<double, int>> di = {{0.5, 3}, {kMiss, -1}};
  std::vector<int> ints(26, 7);
  ints[0] = INT_MIN;
  std::vector<bool> flags(36, false);
  flags[0] = flags[35] = true;
  ExpectTexts({
      {__LINE__, [] { DisplayDV("v", {}); }, "\nv (size = 0)"},
      {__LINE__, [] { DisplayDV("v", Iota(11)); }, "\nv (size = 11)\n  1 2 3 4 5 6 7 8 9 10\n  11"},
      {__LINE__, [&] { DisplayDV("v", special); }, "\nv (size = 3)\n  miss 1e+300 0.25"},
      {__LINE__, [&] { DisplayDV("v", mixed, true); },
       "\nv (size = 3)\n  = 0.10000000000000001\n miss\n  = -2"},
      {__LINE__, [&] { DisplayDA("a", da, 3, true); }, "\na (size = 3)\n  2.5 miss -3"},
      {__LINE__, [&] { DisplayDA("a", da, 2, false); }, "\na\n  2.5 miss"},
      {__LINE__, [&] { DisplayDA("a", da, -1, true); }, "\na (size = -1)"},
      {__LINE__, [] { DisplayDA("a", nullptr, 4, false); }, "\na"},
      // Intended: the headerless form's first line is one blank shorter.
      {__LINE__, [&] { DisplayDAS(v21.data(), 21); },
       "\n 1 2 3 4 5 6 7 8 9 10\n  11 12 13 14 15 16 17 18 19 20\n  21"},
      {__LINE__, [] { DisplayDAS(nullptr, 2); }, ""},
      {__LINE__, [&] { DisplayIV("i", ints); },
       "\ni (size = 26)\n  -2147483648 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7\n  7"},
      {__LINE__, [&] { DisplayUV("u", uints); }, "\nu (size = 2)\n  0 4294967295"},
      {__LINE__, [&] { DisplayBV("b", flags); },
       "\nb (size = 36)\n  t f f f f f f f f f f f f f f f f f f f f f f f f f f f f f f f f f f"
       "\n  t"},
      {__LINE__, [&] { DisplaySV("s", strings); }, "\ns (size = 3)\n  \"a\" \"\" \"b c\""},
      {__LINE__, [] { DisplaySV("s", std::vector<std::string>(11, "x")); },
       "\ns (size = 11)\n  \"x\" \"x\" \"x\" \"x\" \"x\" \"x\" \"x\" \"x\" \"x\" \"x\"\n  \"x\""},
      {__LINE__, [&] { DisplayVPII("p", pairs); },
       "\np (size = 11)\n (0,-1) (0,-1) (0,-1) (0,-1) (0,-1) (0,-1) (0,-1) (0,-1) (0,-1) (0,-1) "
       "\n (0,-1) "},
      {__LINE__, [&] { DisplayVPD("p", dd); }, "\np (size = 2)\n  1.5  miss\n  miss  -2"},
      {__LINE__, [&] { DisplayVPDI("p", di); }, "\np (size = 2)\n  0.5 3\n  miss -1"},
  });
}

TEST(ZRDisplayNested, VectorsOfVectorsAndTriangles) {
  const std::vector<std::vector<double>> dvv = {{1, 2}, {}};
  const std::vector<std::vector<std::string>> svv = {{"a"}, {"b", "c"}};
  const std::vector<std::vector<bool>> bvv = {{true, false, true}, {}, {false}};
  ExpectTexts({
      {__LINE__, [] { DisplayDVV("m", {}), DisplaySVV("m", {}); }, "\nm <none>\nm <none>"},
      {__LINE__, [&] { DisplayDVV("m", dvv, true); },
       "\nm\nvec[0] (size = 2)\n  = 1\n  = 2\nvec[1] (size = 0)"},
      {__LINE__, [&] { DisplaySVV("m", svv); },
       "\nm\nvec[0] (size = 1)\n  \"a\"\nvec[1] (size = 2)\n  \"b\" \"c\""},
      {__LINE__, [] { DisplayBVV("b", {}, "0", "1"); }, "\nb ( number of rows =  0 )"},
      {__LINE__, [&] { DisplayBVV("b", bvv, ".", "X"); },
       "\nb ( number of rows =  3, number of columns =  3 )\nX.X\n\n."},
      // Row i takes i + 1 elements: cut by the rows or by the end of the values.
      {__LINE__, [] { DisplayDVTR("t", Iota(3), 5); },
       "\nt (number of elements = 3, number of rows = 5)\nrow  0: \n  1\nrow  1: \n  2 3"},
      {__LINE__, [] { DisplayDVTR("t", Iota(10), 2); },
       "\nt (number of elements = 10, number of rows = 2)\nrow  0: \n  1\nrow  1: \n  2 3"},
      {__LINE__, [] { DisplayDVTRS(Iota(5), 3); }, "\n 1\n 2 3\n 4 5"},
  });
}

TEST(ZRDisplayMaps, EntriesInKeyOrderAndEmptyMaps) {
  std::map<int, int> eleven;
  for (int k = 11; k >= 1; --k) eleven[k] = -k;
  const std::map<double, double> dd = {{2.5, kMiss}, {-1, 0.125}};
  const std::map<std::vector<std::string>, double> sld = {{{"b"}, 1}, {{"a", "z"}, kMiss}};
  const std::map<std::vector<int>, std::vector<double>> ivdv = {{{2}, {}}, {{1, 5}, {0.5}}};
  const std::map<std::vector<int>, int> ivi = {{{3}, 7}, {{}, -1}};
  ExpectTexts({
      {__LINE__,
       [] {
         DisplayIIM("m", {}), DisplayDDM("m", {}), DisplayVIM("m", {}), DisplaySLDM("m", {});
         DisplayIntVecDVecMap("m", {}), DisplayIntVecIntMap("m", {});
       },
       "\nm <empty>\nm <empty>\nm <empty>\nm <empty>\nm <empty>\nm <empty>"},
      {__LINE__, [&] { DisplayIIM("m", eleven); },
       "\nm\nmap size = 11\n (1,-1) (2,-2) (3,-3) (4,-4) (5,-5) (6,-6) (7,-7) (8,-8) (9,-9)"
       " (10,-10)\n  (11,-11)"},
      {__LINE__, [&] { DisplayVIM("m", eleven); },
       "\nm\n (1,-1) (2,-2) (3,-3) (4,-4) (5,-5) (6,-6) (7,-7) (8,-8) (9,-9) (10,-10) (11,-11)"},
      // Intended: no "miss" in DisplayDDM.
      {__LINE__, [&] { DisplayDDM("m", dd); },
       "\nm\nmap size = 2\n (-1,0.125) (2.5,-1.79769e+308)"},
      {__LINE__, [&] { DisplaySLDM("m", sld); },
       "\nm\nMap's StringList: (size = 2)\n  \"a\" \"z\"\nMap's double = miss"
       "\nMap's StringList: (size = 1)\n  \"b\"\nMap's double = 1"},
      {__LINE__, [&] { DisplayIntVecDVecMap("m", ivdv); },
       "\nm\nMap key (size = 2)\n  1 5\nMap value (size = 1)\n  0.5"
       "\nMap key (size = 1)\n  2\nMap value (size = 0)"},
      {__LINE__, [&] { DisplayIntVecIntMap("m", ivi); },
       "\nm\nMap key (size = 0)\nMap value = -1\nMap key (size = 1)\n  3\nMap value = 7"},
  });
}

}  // namespace
