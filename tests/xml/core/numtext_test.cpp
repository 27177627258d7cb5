// Number text: the "C" route by hand and against a classic-locale stream, the sprintf route
// with its formats, long texts and comma locales, and exact digits of long.
#include "zrcommon920r/xml/core/numtext.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iomanip>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <string>

#include "support/locales.h"
#include "zrcommon920r/common/value.h"

namespace {

using ZRXML_920::Format;
using ZRXML_920::ReplaceSep;

constexpr double kMiss = ZRCommon_920::Value::SYSMISVALUE;
constexpr double kMax = std::numeric_limits<double>::max();
constexpr double kInf = std::numeric_limits<double>::infinity();
const double kNaN = std::numeric_limits<double>::quiet_NaN();

// The exact value of the largest double, which the fixed form prints in full.
const std::string kMaxDigits =
    "17976931348623157081452742373170435679807056752584499659891747680315726078002853876058955"
    "86327668781715404589535143824642343213268894641827684675467035375169860499105765512820762"
    "45490090389328944075868508455133942304583236903222948165808559332123348274797826204144723"
    "168738177180919299881250404026184124858368";

TEST(NumText, CRouteGeneralAndFixedForms) {
  struct {
    int line;
    double value;
    const char * general;  // "%.15g"
    std::string fixed;     // "%.16f"
  } const cases[] = {
      {__LINE__, 0.1 + 0.2, "0.3", "0.3000000000000000"},  // 0.30000000000000004
      {__LINE__, -0.0, "-0", "-0.0000000000000000"},
      {__LINE__, 123456789012345.0, "123456789012345", "123456789012345.0000000000000000"},
      {__LINE__, 999999999999999.9, "1e+15", "999999999999999.8750000000000000"},  // carry
      {__LINE__, 100000000000001.5, "100000000000002", "100000000000001.5000000000000000"},
      {__LINE__, 0x1p-17, "7.62939453125e-06", "0.0000076293945312"},  // ties go to even
      {__LINE__, -1e-17, "-1e-17", "-0.0000000000000000"},
      {__LINE__, std::numeric_limits<double>::denorm_min(), "4.94065645841247e-324",
       "0.0000000000000000"},
      {__LINE__, kMiss, "-1.79769313486232e+308", "-" + kMaxDigits + ".0000000000000000"},
      {__LINE__, -kInf, "-inf", "-inf"},
      {__LINE__, -kNaN, "-nan", "-nan"},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(Format(c.value, false, nullptr), c.general);
    EXPECT_EQ(Format(c.value, false, "%.2f"), c.general);  // the format has no effect here
    EXPECT_EQ(ReplaceSep(c.value, "%e"), c.general);
    EXPECT_EQ(ReplaceSep(c.value), c.fixed);
  }
}

// The "C" route must match a classic-locale stream (precision 15; fixed, precision 16) byte
// for byte. Raw bit patterns reach NaNs of either sign, subnormals and both ends of the
// exponent range; scaled decimal integers reach the rounding carries of the fixed form.
TEST(NumText, CRouteMatchesClassicStreamOnRandomDoubles) {
  std::ostringstream general, fixed;
  general.imbue(std::locale::classic());
  fixed.imbue(std::locale::classic());
  general << std::setprecision(15);
  fixed << std::fixed << std::setprecision(16);
  std::mt19937_64 gen(920);
  std::uniform_int_distribution<std::int64_t> digits(0, 99999999999999999);
  std::uniform_int_distribution<int> scale(-24, 24);
  int mismatches = 0;
  for (int i = 0; i < 300000 && mismatches < 10; ++i) {
    double value = static_cast<double>(digits(gen)) * std::pow(10.0, scale(gen));
    if (i % 3 != 0) {
      const std::uint64_t bits = gen();
      std::memcpy(&value, &bits, sizeof value);
    }
    general.str(std::string());
    fixed.str(std::string());
    general << value;
    fixed << value;
    if (Format(value, false, nullptr) != general.str() || ReplaceSep(value) != fixed.str()) {
      ++mismatches;
      ADD_FAILURE() << std::hexfloat << value << ": " << Format(value, false, nullptr) << " vs "
                    << general.str() << ", " << ReplaceSep(value) << " vs " << fixed.str();
    }
  }
}

// The sprintf route takes the format (null: "%.15g"). Fault guarded: its text lands in a
// 112-byte buffer, which a text of 112 bytes or more would overrun or be cut at.
TEST(NumText, PrintfRouteFollowsTheFormatAtAnyLength) {
  struct {
    int line;
    double value;
    const char * format;
    std::string want;
  } const cases[] = {
      {__LINE__, 1.5, "%.2f", "1.50"},
      {__LINE__, 1.0 / 3.0, nullptr, "0.333333333333333"},
      {__LINE__, 0.25, "x=%g!", "x=0.25!"},
      {__LINE__, -kNaN, nullptr, "-nan"},
      {__LINE__, 1.0, "%0111.1f", std::string(108, '0') + "1.0"},
      {__LINE__, -1.0, "%0112.1f", "-" + std::string(108, '0') + "1.0"},
      {__LINE__, kMax, "%.16f", kMaxDigits + ".0000000000000000"},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(Format(c.value, true, c.format), c.want);
  }
}

// Fault guarded: the route through double would print 2^53 + 1 as "9.00719925474099e+15".
TEST(NumText, LongGivesItsExactDigits) {
  EXPECT_EQ(Format(0L) + " " + Format(-2147483647L - 1), "0 -2147483648");
  if (sizeof(long) >= 8) {
    EXPECT_EQ(Format(static_cast<long>(9007199254740993LL)), "9007199254740993");
    EXPECT_EQ(Format(static_cast<long>(LLONG_MIN)), "-9223372036854775808");
  }
}

// Under a comma locale the sprintf route writes "1,5" while the "C" route, the fixed form
// and long keep "."; the list separator stays ";". The last lines check "C" is back.
TEST(NumText, CommaLocalesChangeOnlyThePrintfRoute) {
  for (const char * name : {"de_DE.UTF-8", "de_DE.CP1252"}) {
    SCOPED_TRACE(name);
    zrtest::ScopedLocale comma(name);
    if (!comma.ok()) GTEST_SKIP() << comma.why();
    EXPECT_EQ(ZRXML_920::GetDecimalCharacter(), ",");
    EXPECT_EQ(ZRXML_920::GetListSeparator(), ";");
    EXPECT_EQ(Format(1.5, true, "%.2f"), "1,50");
    EXPECT_EQ(Format(-1234567.25, true, nullptr), "-1234567,25");  // %g does not group
    EXPECT_EQ(Format(1.5, false, "%.2f"), "1.5");
    EXPECT_EQ(ReplaceSep(1.5), "1.5000000000000000");
    EXPECT_EQ(Format(1234567L), "1234567");
  }
  EXPECT_EQ(ZRXML_920::GetDecimalCharacter(), ".");
  EXPECT_EQ(ZRXML_920::GetListSeparator(), ";");
  EXPECT_EQ(Format(1.5, true, nullptr), "1.5");
}

}  // namespace
