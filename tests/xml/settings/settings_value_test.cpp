// The setting values: every getter of every class, equality and order at the tolerance's
// edges, and the locale rules of the text conversions, worked by hand.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <iostream>
#include <limits>
#include <locale>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "zrcommon920r/xml/settings/settings.h"

namespace {

using namespace ZRXML_920;
using V = IZRSettingValue;
using Ptr = std::shared_ptr<V>;
constexpr double kMiss = ZRCommon_920::kSysMisValue;
constexpr double kEps = 2.220446049250313e-16;  // the machine's, 2^-52
const double kNaN = std::numeric_limits<double>::quiet_NaN();

Ptr Num(int v) {
  return std::make_shared<ZRNumValue>(v);
}
Ptr Num(double v) {
  return std::make_shared<ZRNumValue>(v);
}
Ptr Num(long long v) {
  return std::make_shared<ZRNumValue>(v);
}
Ptr Str(const std::string & v) {
  return std::make_shared<ZRStrValue>(v);
}
template <typename T>
Ptr Vec(const std::vector<T> & v) {
  return std::make_shared<ZRVecValue<T>>(v);
}

TEST(ZRSettingValue, EveryGetterOfEveryClass) {
  const std::string nul5("true\0", 5), nulSeven("7\0 8", 4);
  struct Row {
    int line;
    Ptr value;
    int i;
    double d;
    std::string s;
    bool b;
    long long ll;
    V::ValueType type;
  } const rows[] = {
      {__LINE__, std::make_shared<ZRNumValue>(), INT_MIN, kMiss, "Undefined", false, INT_MIN,
       V::eNumValue},
      {__LINE__, Num(7), 7, 7.0, "7", true, 7, V::eNumValue},
      {__LINE__, Num(-2.7), -2, -2.7, "-2.7", false, -2, V::eNumValue},
      {__LINE__, Num(0.5), 0, 0.5, "0.5", true, 0, V::eNumValue},  // bool from the double
      {__LINE__, Num(1234567.0), 1234567, 1234567.0, "1.23457e+06", true, 1234567, V::eNumValue},
      {__LINE__, Num(2147483648.0), INT_MIN, 2147483648.0, "2.14748e+09", true, 2147483648LL,
       V::eNumValue},
      {__LINE__, Num(-2147483648.9), INT_MIN, -2147483648.9, "-2.14748e+09", false, -2147483648LL,
       V::eNumValue},
      {__LINE__, Num(1e19), INT_MIN, 1e19, "1e+19", true, LLONG_MIN, V::eNumValue},
      {__LINE__, Num(kNaN), INT_MIN, kNaN, "nan", false, LLONG_MIN, V::eNumValue},
      {__LINE__, Num(-HUGE_VAL), INT_MIN, -HUGE_VAL, "Undefined", false, LLONG_MIN, V::eNumValue},
      {__LINE__, Num(kMiss), INT_MIN, kMiss, "Undefined", false, LLONG_MIN, V::eNumValue},
      {__LINE__, Num(4294967297LL), 1, 4294967297.0, "4294967297", true, 4294967297LL,
       V::eNumValue},
      {__LINE__, Num(4294967296LL), 0, 4294967296.0, "4294967296", true, 4294967296LL,
       V::eNumValue},  // bool from the long long, not the int
      {__LINE__, Num(2147483648LL), INT_MIN, 2147483648.0, "2147483648", true, 2147483648LL,
       V::eNumValue},
      {__LINE__, Num(LLONG_MIN), 0, -9223372036854775808.0, "-9223372036854775808", false,
       LLONG_MIN, V::eNumValue},
      {__LINE__, Str(""), 0, kMiss, "", false, 0, V::eStrValue},
      {__LINE__, Str("42"), 42, 42.0, "42", false, 42, V::eStrValue},
      {__LINE__, Str("true"), 0, 0.0, "true", true, 0, V::eStrValue},
      {__LINE__, Str("True"), 0, 0.0, "True", false, 0, V::eStrValue},
      {__LINE__, Str(nul5), 0, 0.0, nul5, false, 0, V::eStrValue},
      {__LINE__, Str(" -12abc"), -12, -12.0, " -12abc", false, -12, V::eStrValue},
      {__LINE__, Str("99999999999"), INT_MAX, 99999999999.0, "99999999999", false, 99999999999LL,
       V::eStrValue},
      {__LINE__, Str("-99999999999999999999"), INT_MIN, -1e20, "-99999999999999999999", false,
       LLONG_MIN, V::eStrValue},
      {__LINE__, Str("1,5"), 1, 1.0, "1,5", false, 1, V::eStrValue},
      {__LINE__, Str("abc"), 0, 0.0, "abc", false, 0, V::eStrValue},
      {__LINE__, Str(nulSeven), 7, 7.0, nulSeven, false, 7, V::eStrValue},
      {__LINE__, std::make_shared<ZRSettingListValue>(), INT_MIN, 2.2250738585072014e-308, "",
       false, LLONG_MIN, V::eListValue},
      {__LINE__, Vec<int>({1, 2, 3}), 3, kMiss, "Vector Value: Length of vector = 3", true, 3,
       V::eVecValue},
      {__LINE__, Vec<long>({}), 0, kMiss, "Vector Value: Length of vector = 0", false, 0,
       V::eVecValue},
  };
  for (const Row & r : rows) {
    SCOPED_TRACE(r.line);
    EXPECT_EQ(r.value->GetInt(), r.i);
    EXPECT_TRUE(r.value->GetDouble() == r.d ||
                (std::isnan(r.d) && std::isnan(r.value->GetDouble())));
    EXPECT_EQ(r.value->GetString(), r.s);
    EXPECT_EQ(r.value->GetBool(), r.b);
    EXPECT_EQ(r.value->GetLongLong(), r.ll);
    EXPECT_EQ(std::unique_ptr<V>(r.value->Clone())->GetType(), r.type);
  }
}

template <typename T>
V::ValueSubType SubTypeOf() {
  return ZRVecValue<T>(std::vector<T>{}).GetSubType();
}

TEST(ZRSettingValue, SubTypeNamesTheSevenElementTypes) {
  using S = std::string;
  EXPECT_EQ(SubTypeOf<int>(), V::eIntSubType);
  EXPECT_EQ(SubTypeOf<double>(), V::eDoubleSubType);
  EXPECT_EQ(SubTypeOf<S>(), V::eStringSubType);
  EXPECT_EQ((SubTypeOf<std::pair<S, int>>()), V::ePairIntSubType);
  EXPECT_EQ((SubTypeOf<std::pair<S, double>>()), V::ePairDoubleSubType);
  EXPECT_EQ((SubTypeOf<std::pair<S, S>>()), V::ePairStringSubType);
  EXPECT_EQ(SubTypeOf<ZRSettings>(), V::eSettingsSubType);
  EXPECT_EQ(SubTypeOf<float>(), V::eNoSubType);
  EXPECT_EQ((SubTypeOf<std::pair<S, long>>()), V::eNoSubType);
  EXPECT_EQ(ZRNumValue(1).GetSubType(), V::eNoSubType);
}

TEST(ZRSettingValue, EqualityAndOrderAcrossTypesAndTolerance) {
  ZRSettings one, two;
  one.AddSetting("a", 1.0, false);
  two.AddSetting("a", 2.0, false);
  const Ptr missNeighbour = Num(std::nextafter(kMiss, 0.0));
  struct Row {
    int line;
    Ptr a, b;
    bool equal, less;  // rows run in ascending order, so b < a is always false
  } const rows[] = {
      {__LINE__, Num(1.0), Num(1.0 + kEps), true, true},  // 1 ulp; no tolerance in <
      {__LINE__, Num(1.0), Num(1.0 + 2 * kEps), false, true},
      // 2 ulps just below 2 are still equal, as the stored tolerance exceeds 2^-52.
      {__LINE__, Num(2.0 - 3 * kEps), Num(2.0 - kEps), true, true},
      {__LINE__, Num(0.0), Num(-0.0), true, false},
      {__LINE__, Num(0.0), Num(1e-300), false, true},
      {__LINE__, Num(kMiss), Num(kMiss), true, false},
      {__LINE__, Num(kMiss), missNeighbour, false, true},
      {__LINE__, Num(HUGE_VAL), Num(HUGE_VAL), false, false},
      {__LINE__, Num(kNaN), Num(kNaN), false, false},
      {__LINE__, Num(1), Num(1.9), true, false},  // unlike types: the ints
      {__LINE__, Num(1.9), Num(2), false, true},
      {__LINE__, Num(1), Num(4294967297LL), true, false},
      {__LINE__, Num(1LL), Num(4294967297LL), false, true},
      {__LINE__, Num(0), Str("0"), false, false},
      {__LINE__, Str("a"), Str("\x80"), false, true},  // bytes as unsigned
      {__LINE__, Str(std::string("a\0\x01", 3)), Str(std::string("a\0\xff", 3)), false, true},
      {__LINE__, Str(std::string("a\0b", 3)), Str(std::string("a\0b", 3)), true, false},
      {__LINE__, Str("ab"), Str("abc"), false, true},
      {__LINE__, Vec<int>({1, 2}), Vec<int>({1, 2, 0}), false, true},
      {__LINE__, Vec<int>({5}), Vec<int>({5}), true, false},
      {__LINE__, Vec<int>({5}), Vec<double>({5.0}), false, false},
      {__LINE__, Vec<int>({}), Vec<long>({}), false, false},
      {__LINE__, Vec<ZRSettings>({one}), Vec<ZRSettings>({two}), false, true},
      {__LINE__, std::make_shared<ZRSettingListValue>(one),
       std::make_shared<ZRSettingListValue>(two), false, true},
      {__LINE__, std::make_shared<ZRSettingListValue>(one),
       std::make_shared<ZRSettingListValue>(one), true, false},
  };
  for (const Row & r : rows) {
    SCOPED_TRACE(r.line);
    EXPECT_EQ(*r.a == *r.b, r.equal);
    EXPECT_EQ(*r.b == *r.a, r.equal);
    EXPECT_EQ(*r.a < *r.b, r.less);
    EXPECT_FALSE(*r.b < *r.a);
  }
}

// A numpunct whose decimal separator is a comma.
struct CommaPunct : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
};

std::locale Comma(bool comma) {
  return comma ? std::locale(std::locale::classic(), new CommaPunct) : std::locale::classic();
}

// Gives std::cout and the global C++ locale a comma or a point while the object lives.
struct CppLocales {
  CppLocales(bool coutComma, bool globalComma)
      : fOldGlobal(std::locale::global(Comma(globalComma))),
        fOldCout(std::cout.imbue(Comma(coutComma))) {}
  ~CppLocales() {
    std::cout.imbue(fOldCout);
    std::locale::global(fOldGlobal);
  }
  const std::locale fOldGlobal, fOldCout;
};

TEST(ZRSettingValue, TextConversionsFollowTheirLocales) {
  struct Row {
    int line;
    bool coutComma, globalComma;
    const char * text;
    double d;
  } const rows[] = {
      {__LINE__, true, true, "1.5", 1.5},    // '.' becomes ',' and is read as one
      {__LINE__, true, true, "1.5.5", 1.5},  // only the first '.'
      {__LINE__, true, false, "1.5", 1.0},   // "1,5" read by a point locale
      {__LINE__, false, true, "1.5", 1.0},   // '.' kept, read by a comma locale
      {__LINE__, false, true, "1,5", 1.5},  {__LINE__, false, false, "1,5", 1.0},
  };
  for (const Row & r : rows) {
    SCOPED_TRACE(r.line);
    const CppLocales locales(r.coutComma, r.globalComma);
    EXPECT_EQ(ZRStrValue(r.text).GetDouble(), r.d);
  }
  const CppLocales comma(false, true);
  EXPECT_EQ(ZRNumValue(1.5).GetString(), "1,5");  // a default stream: the global locale
}

}  // namespace
