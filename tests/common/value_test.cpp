// Value: comparison, conversion and strict access, SetValue, indexing, copies, clears, display
// text, and the IsZeroDiff tolerance against tests/data/common/iszerodiff.py.
#include "zrcommon920r/common/value.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <iomanip>
#include <iostream>
#include <limits>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>

#include "support/refdata.h"
#include "support/textio.h"

namespace {

using ZRCommon_920::Value;
using ZRCommon_920::ZRException;
constexpr double kMiss = Value::SYSMISVALUE;
constexpr double kInf = Value::ZRVALUE_INFINITY;
const double kNaN = std::numeric_limits<double>::quiet_NaN();

Value Arr(std::initializer_list<Value> elems) {
  Value v;
  v.Resize(0);
  for (const Value & e : elems) v[v.Size()] = e;
  return v;
}

Value MapOf(std::initializer_list<std::pair<const char *, Value>> entries) {
  Value v;  // the first name index turns the null into a map
  for (const auto & e : entries) v[e.first] = e.second;
  return v;
}

std::uint64_t Bits(double d) {
  std::uint64_t u;
  std::memcpy(&u, &d, sizeof u);
  return u;
}

// Runs f and expects a ZRException with this code and message.
void ExpectZR(const std::function<void()> & f, int code, const char * message) {
  try {
    f();
    ADD_FAILURE() << "no ZRException";
  } catch (const ZRException & e) {
    EXPECT_EQ(e.GetCode(), code);
    EXPECT_EQ(e.GetMessage(), message);
  }
}

constexpr const char * kTypeWrong = "Value type wrong!";
constexpr const char * kNotArray = "This value is not an array!";
constexpr const char * kBounds = "Out of this array bounds!";

TEST(ValueConstants, BitPatternsAndTypes) {
  EXPECT_EQ(Bits(Value::GetSysmisValue()), 0xFFEFFFFFFFFFFFFFu);
  EXPECT_EQ(Bits(Value::GetInfinity()), 0x7FF0000000000000u);
  EXPECT_EQ(Bits(Value::EPSILON), 0x3CB00001DD9DC7D3u);  // the literal, not 2^-52
  EXPECT_TRUE(Value::NULL_VALUE.IsNull());
  EXPECT_EQ(Value::BOOL_VALUE.GetType(), 1);
  EXPECT_FALSE(static_cast<bool>(Value::BOOL_VALUE));
  EXPECT_EQ(static_cast<long long>(Value::INTEGER_VALUE), 0);
  EXPECT_EQ(static_cast<double>(Value::REAL_VALUE), kMiss);
  EXPECT_TRUE(Value::REAL_VALUE.IsMissing());
  EXPECT_EQ(Value::STRING_VALUE.GetType(), 4);
  // Non-strings hand out the very string STRING_VALUE holds.
  EXPECT_EQ(&Value(5).GetStringRef(), &Value::STRING_VALUE.GetStringRef());
  Value s = Value::STRING_VALUE;  // a copy of the constant is an ordinary, writable string
  static_cast<std::string &>(s) += "ab";
  EXPECT_EQ(s.GetString(), "ab");
  EXPECT_EQ(Value::STRING_VALUE.GetStringRef(), "");
}

TEST(ValueComparison, EqualityRules) {
  const Value a12 = Arr({1, 2});
  struct {
    int line;
    Value a, b;
    bool eq;
  } const cases[] = {
      {__LINE__, Value(), Value(), false},  // a null equals nothing
      {__LINE__, true, true, true},
      {__LINE__, true, false, false},
      {__LINE__, 3, 3LL, true},
      {__LINE__, 1, 1.0, false},  // tags differ
      {__LINE__, 1.0, 1.0 + 1e-15, true},
      {__LINE__, 1.0, 1.0 + 3e-14, false},  // beyond 100 * EPSILON relative
      {__LINE__, 0.0, 1e-300, false},       // zero equals only zero
      {__LINE__, 0.0, -0.0, true},
      {__LINE__, kMiss, kMiss, true},
      {__LINE__, kMiss, std::nextafter(kMiss, 0.0), false},  // though within tolerance
      {__LINE__, kInf, kInf, false},                         // inf - inf is a NaN
      {__LINE__, kNaN, kNaN, false},
      {__LINE__, "ab", "ab", true},
      {__LINE__, std::string("a\0b", 3), std::string("a\0c", 3), false},
      {__LINE__, a12, Arr({1, 2}), true},
      {__LINE__, a12, Arr({1}), false},
      {__LINE__, Arr({1.0}), Arr({1.0 + 1e-15}), true},
      {__LINE__, Arr({Value()}), Arr({Value()}), false},
      {__LINE__, MapOf({{"x", 1}}), MapOf({{"x", 1}}), true},
      {__LINE__, MapOf({{"x", 1}}), MapOf({{"y", 1}}), false},
      {__LINE__, MapOf({{"x", Value()}}), MapOf({{"x", Value()}}), false},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(c.a == c.b, c.eq);
    EXPECT_EQ(c.b == c.a, c.eq);
    EXPECT_EQ(c.a != c.b, !c.eq);
  }
}

TEST(ValueComparison, OrderingRules) {
  struct {
    int line;
    Value a, b;
    bool lt, gt, le, ge;
  } const cases[] = {
      {__LINE__, 10, "9", true, false, true, false},  // different tags: "10" < "9"
      {__LINE__, 1, 1.0, false, false, false, false},
      {__LINE__, Value(), Value(), false, false, false, false},
      {__LINE__, Value(), 0, true, false, true, false},  // "" < "0"
      {__LINE__, false, true, true, true, true, true},   // false > true holds for bools
      {__LINE__, true, false, false, false, false, false},
      {__LINE__, true, true, false, false, true, true},
      {__LINE__, 10, 9, false, true, false, true},
      {__LINE__, kMiss, 1.0, false, false, false, false},
      {__LINE__, 1.0, kMiss, false, false, false, false},
      {__LINE__, 1.0, 1.0 + 1e-15, true, false, true, true},  // exact <, tolerant ==
      {__LINE__, "ab", "abc", true, false, true, false},
      {__LINE__, Arr({1, 2}), Arr({1, 3}), true, false, true, false},
      {__LINE__, Arr({1}), Arr({1, 0}), true, false, true, false},  // a prefix is lesser
      {__LINE__, Arr({2}), Arr({1, 5}), false, true, false, true},
      {__LINE__, Arr({false}), Arr({true}), true, false, true, false},  // no bool rule inside
      {__LINE__, MapOf({{"a", 9}}), MapOf({{"b", 0}}), true, false, true, false},
      {__LINE__, MapOf({{"a", 1}}), MapOf({{"a", 2}}), true, false, true, false},
      {__LINE__, MapOf({{"a", 1}}), MapOf({{"a", 1}, {"b", 0}}), true, false, true, false},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(c.a < c.b, c.lt);
    EXPECT_EQ(c.a > c.b, c.gt);
    EXPECT_EQ(c.a <= c.b, c.le);
    EXPECT_EQ(c.a >= c.b, c.ge);
  }
}

TEST(ValueConversion, ConvertingGettersOfEveryType) {
  struct {
    int line;
    Value v;
    bool b;
    long long n;
    double d;
    const char * s;
  } const cases[] = {
      {__LINE__, Value(), false, 0, kMiss, ""},
      {__LINE__, true, true, 1, 1.0, "1"},
      {__LINE__, LLONG_MIN, true, LLONG_MIN, -9223372036854775808.0, "-9223372036854775808"},
      {__LINE__, 2.9, true, 2, 2.9, "2.9"},
      {__LINE__, -2.9, true, -2, -2.9, "-2.9"},
      {__LINE__, 0.1, true, 0, 0.1, "0.1"},
      {__LINE__, -0.0, false, 0, -0.0, "-0"},
      {__LINE__, 1234567.0, true, 1234567, 1234567.0, "1.23457e+06"},
      {__LINE__, kMiss, true, LLONG_MIN, kMiss, "-1.79769e+308"},  // saturates
      {__LINE__, 1e19, true, LLONG_MAX, 1e19, "1e+19"},
      {__LINE__, kNaN, true, 0, kNaN, "nan"},
      {__LINE__, kInf, true, LLONG_MAX, kInf, "inf"},
      // Streams: a bool reads a long (0 false, 1 true, other numbers true, words false);
      // a failed conversion stores 0, but nothing is stored when only blanks are met.
      {__LINE__, "42", true, 42, 42.0, "42"},
      {__LINE__, "0", false, 0, 0.0, "0"},
      {__LINE__, "true", false, 0, 0.0, "true"},
      {__LINE__, " 2.5x", true, 2, 2.5, " 2.5x"},
      {__LINE__, "-0.5", false, 0, -0.5, "-0.5"},
      {__LINE__, "", false, 0, kMiss, ""},
      {__LINE__, "  ", false, 0, kMiss, "  "},
      {__LINE__, Arr({1, "a"}), true, 2, 2.0, "{1,a}"},
      {__LINE__, Arr({}), false, 0, 0.0, "{}"},
      {__LINE__, MapOf({{"x", 2.5}}), true, 1, 1.0, "[x:2.5]"},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(c.v.GetBool(), c.b);
    EXPECT_EQ(c.v.GetInteger(), c.n);
    EXPECT_EQ(Bits(c.v.GetReal()), Bits(c.d));
    EXPECT_EQ(c.v.GetString(), c.s);
  }
}

TEST(ValueConversion, TextFollowsCoutForReadingAndNoLocaleForWriting) {
  const std::locale comma(std::locale::classic(), new zrtest::CommaPunct);
  const std::locale classic = std::locale::classic();
  struct Restore {
    std::locale c = std::cout.getloc(), g;  // g: the global locale
    ~Restore() {
      std::cout.imbue(c);
      std::locale::global(g);
    }
  } restore;
  struct {
    int line;
    const std::locale &out, &global;
  } const settings[] = {
      {__LINE__, comma, classic}, {__LINE__, comma, comma}, {__LINE__, classic, comma}};
  for (const auto & c : settings) {
    SCOPED_TRACE(c.line);
    std::cout.imbue(c.out);
    std::locale::global(c.global);
    EXPECT_EQ(Value("2.5").GetReal(), 2.5);            // read in std::cout's locale
    EXPECT_EQ(Value(12345.5).GetString(), "12345.5");  // no comma, no grouping dot
    EXPECT_EQ(Arr({1.5, 12345.5}).GetString(), "{1.5,12345.5}");
  }
  std::cout.imbue(comma);
  EXPECT_EQ(Value("2,5").GetReal(), 2.5);
  std::ostringstream os;
  os.imbue(comma);
  Arr({1.5}).Display(os);  // Display honours the caller's stream
  EXPECT_EQ(os.str(), "{1,5}");
}

TEST(ValueStrictAccess, WrongTypesThrowAndNullsAdopt) {
  struct {
    int line;
    Value v;
    void (*access)(Value &);
  } const wrong[] = {
      {__LINE__, Value(), [](Value & v) { (void)static_cast<bool>(std::as_const(v)); }},
      {__LINE__, Value(), [](Value & v) { (void)static_cast<long long>(std::as_const(v)); }},
      {__LINE__, 7, [](Value & v) { (void)static_cast<double>(std::as_const(v)); }},
      {__LINE__, 2.5, [](Value & v) { (void)static_cast<std::string>(std::as_const(v)); }},
      {__LINE__, true, [](Value & v) { (void)static_cast<long long>(std::as_const(v)); }},
      {__LINE__, "s", [](Value & v) { (void)static_cast<bool>(std::as_const(v)); }},
      {__LINE__, Arr({1}), [](Value & v) { (void)static_cast<double>(std::as_const(v)); }},
      {__LINE__, 1.0, [](Value & v) { (void)static_cast<long long &>(v); }},
      {__LINE__, 1LL, [](Value & v) { (void)static_cast<double &>(v); }},
      {__LINE__, "x", [](Value & v) { (void)static_cast<bool &>(v); }},
      {__LINE__, true, [](Value & v) { (void)static_cast<std::string &>(v); }},
  };
  for (const auto & c : wrong) {
    SCOPED_TRACE(c.line);
    Value v = c.v;
    ExpectZR([&] { c.access(v); }, 13, kTypeWrong);
    EXPECT_EQ(v.GetType(), c.v.GetType());  // unchanged
  }
  Value n1, n2, n3, n4(5LL);
  n4.Clear();  // a cleared integer must not show its old payload
  EXPECT_EQ(static_cast<long long &>(n4), 0);
  EXPECT_EQ(n4.GetType(), 2);
  EXPECT_EQ(static_cast<double &>(n1), 0.0);
  EXPECT_EQ(n1.GetType(), 3);
  EXPECT_FALSE(static_cast<bool &>(n2));
  EXPECT_EQ(n2.GetType(), 1);
  static_cast<std::string &>(n3) = "w";  // writes through the reference
  EXPECT_EQ(n3.GetString(), "w");
}

TEST(ValueSetValue, TagStaysAndBitsAreStored) {
  struct {
    int line;
    Value v;
    std::function<void(Value &)> set;
    int type;
    std::uint64_t bits;  // payload read as GetInteger or GetReal's bits, or 0/1 for bools
  } const cases[] = {
      {__LINE__, Value(), [](Value & v) { v.SetValue(1.5); }, 3, 0x3FF8000000000000u},
      {__LINE__, Value(), [](Value & v) { v.SetValue(3); }, 2, 3},
      {__LINE__, Value(), [](Value & v) { v.SetValue(true); }, 1, 1},
      {__LINE__, 0LL, [](Value & v) { v.SetValue(1.5); }, 2, 0x3FF8000000000000u},
      {__LINE__, 0.0, [](Value & v) { v.SetValue(1LL); }, 3, 1},             // smallest subnormal
      {__LINE__, 0.0, [](Value & v) { v.SetValue(-1); }, 3, ~0ull},          // int widens first
      {__LINE__, 0x1234LL, [](Value & v) { v.SetValue(true); }, 2, 0x1201},  // low byte only
      {__LINE__, 0x1201LL, [](Value & v) { v.SetValue(false); }, 2, 0x1200},
      {__LINE__, 1.0, [](Value & v) { v.SetValue(true); }, 3, 0x3FF0000000000001u},
      {__LINE__, false, [](Value & v) { v.SetValue(2); }, 1, 1},    // low byte 0x02
      {__LINE__, true, [](Value & v) { v.SetValue(256); }, 1, 0},   // low byte 0x00
      {__LINE__, true, [](Value & v) { v.SetValue(1.5); }, 1, 0},   // low byte 0x00
      {__LINE__, false, [](Value & v) { v.SetValue(0.1); }, 1, 1},  // low byte 0x9A
      {__LINE__, "x", [](Value & v) { v.SetValue(2.5); }, 3, 0x4004000000000000u},
      {__LINE__, Arr({1}), [](Value & v) { v.SetValue(true); }, 1, 1},
      {__LINE__, MapOf({{"k", 1}}), [](Value & v) { v.SetValue(7); }, 2, 7},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    Value v = c.v;
    c.set(v);
    ASSERT_EQ(v.GetType(), c.type);
    const std::uint64_t got =
        c.type == 3 ? Bits(v.GetReal()) : static_cast<std::uint64_t>(v.GetInteger());
    EXPECT_EQ(got, c.bits);
  }
  Value n(4LL);
  n.SetValue("s");
  EXPECT_EQ(n.GetType(), 4);
  Value m = MapOf({{"a", "text"}});
  m.SetValue(m["a"].GetStringRef());  // fault: the argument lived in the released map
  EXPECT_EQ(static_cast<std::string>(m), "text");
}

TEST(ValueArrays, IndexingGrowthAndFailures) {
  Value grown;
  grown[3];
  ASSERT_EQ(grown.GetType(), 5);
  ASSERT_EQ(grown.Size(), 4);
  for (int i = 0; i < 4; ++i) EXPECT_TRUE(grown[i].IsNull()) << i;

  const Value cnull, cpair = Arr({1, 2});
  ExpectZR([&] { (void)cnull[0]; }, 13, kNotArray);
  ExpectZR([&] { (void)cpair[2]; }, 14, kBounds);
  ExpectZR([&] { (void)cpair[INT_MAX]; }, 14, kBounds);  // i + 1 must not overflow
  ExpectZR([] { Value("ab")[0]; }, 13, kNotArray);
  ExpectZR([] { Value(1).Resize(2); }, 13, kNotArray);
  EXPECT_EQ(static_cast<long long>(cpair[1]), 2);
  EXPECT_THROW((void)cpair[-1], std::out_of_range);
  Value null;
  EXPECT_THROW(null[-1], std::out_of_range);
  EXPECT_EQ(null.Size(), 0);  // it became an (empty) array on the way

  Value r;
  r.Resize(3);
  EXPECT_EQ(r.Size(), 3);
  r[0] = 1;
  r.Resize(1);
  EXPECT_EQ(r, Arr({1}));
  EXPECT_THROW(r.Resize(-1), std::length_error);
  EXPECT_EQ(r, Arr({1}));

  Value five(5);
  five["a"];
  EXPECT_EQ(five.GetType(), 6);
  EXPECT_EQ(five.Names(), std::vector<std::string>{"a"});
  EXPECT_TRUE(five["a"].IsNull());
  Value text("key");
  text[text.GetStringRef()] = 1;  // fault: the key lived in the discarded string
  EXPECT_EQ(text.Names(), std::vector<std::string>{"key"});

  const Value m = MapOf({{"b", 1}, {"a", 2}});
  EXPECT_EQ(m.Names(), (std::vector<std::string>{"a", "b"}));
  EXPECT_TRUE(m.Contains("a"));
  EXPECT_FALSE(m.Contains("c"));
  EXPECT_FALSE(Value("a").Contains("a"));
  struct {
    int line;
    Value v;
    int size;
  } const sizes[] = {{__LINE__, 5, -1},
                     {__LINE__, Value(), -1},
                     {__LINE__, "", 0},
                     {__LINE__, "abc", 3},
                     {__LINE__, m, 2}};
  for (const auto & c : sizes) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(c.v.Size(), c.size);
  }
}

TEST(ValueCopy, CopiesAreDeepAndPartsMayBeAssigned) {
  const Value original = MapOf({{"list", Arr({1, "s", Arr({2.5})})}, {"name", "n"}});
  const std::string before = original.GetString();
  Value copy = original;
  Value assigned;
  assigned = original;
  Value * clone = original.Clone();
  for (Value * v : {&copy, &assigned, clone}) {
    (*v)["list"][1] = "changed";
    (*v)["list"][2][0] = 9;
    static_cast<std::string &>((*v)["name"]) += "!";
    (*v)["new"] = 1;
  }
  EXPECT_EQ(original.GetString(), before);
  EXPECT_EQ(copy.GetString(), "[list:{1,changed,{9}},name:n!,new:1]");
  EXPECT_EQ(*clone, copy);
  delete clone;

  Value nested = Arr({Arr({1, 2}), 3});
  nested = nested[0];  // fault: the source was released before it was copied
  EXPECT_EQ(nested, Arr({1, 2}));
  Value moved = Arr({4});
  Value target = std::move(moved);
  EXPECT_TRUE(moved.IsNull());  // a moved-from Value is a null
  target = std::move(target[0]);
  EXPECT_EQ(target, Value(4));
}

TEST(ValueClear, ClearValueKeepsShapeClearDropsIt) {
  Value v = MapOf({{"a", Arr({1, 2, 3})}, {"b", "s"}, {"c", MapOf({{"d", true}})}});
  v.ClearValue();
  ASSERT_EQ(v.GetType(), 6);
  EXPECT_EQ(v.Names(), (std::vector<std::string>{"a", "b", "c"}));
  ASSERT_EQ(v["a"].Size(), 3);
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(v["a"][i].IsNull()) << i;
  EXPECT_TRUE(v["b"].IsNull());
  EXPECT_EQ(v["c"].Names(), std::vector<std::string>{"d"});
  EXPECT_TRUE(v["c"]["d"].IsNull());
  v.Clear();
  EXPECT_TRUE(v.IsNull());
  Value s("x");
  s.ClearValue();
  EXPECT_TRUE(s.IsNull());
}

TEST(ValueDisplay, ExactText) {
  struct {
    int line;
    Value v;
    const char * want;
  } const cases[] = {
      {__LINE__, Arr({1, "a", MapOf({{"x", 2}})}), "{1,a,[x:2]}"},
      {__LINE__, Value(), ""},
      {__LINE__, Arr({Value(), Value()}), "{,}"},
      {__LINE__, true, "1"},
      {__LINE__, -3, "-3"},
      {__LINE__, 0.1, "0.1"},
      {__LINE__, kMiss, "-1.79769e+308"},
      {__LINE__, MapOf({{"b", Arr({})}, {"a", "t u"}}), "[a:t u,b:{}]"},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    std::ostringstream os;
    os << c.v;
    EXPECT_EQ(os.str(), c.want);
  }
  std::ostringstream fmt;  // the stream's flags and precision apply
  fmt << std::boolalpha << std::setprecision(3) << Arr({true, 3.14159});
  EXPECT_EQ(fmt.str(), "{true,3.14}");
}

TEST(ValueZeroDiff, BoundariesMatchIeeeScript) {  // data: tests/data/common/iszerodiff.csv
  for (const zrtest::RefRow & row : zrtest::LoadRefTable("common/iszerodiff.csv", 3)) {
    SCOPED_TRACE(row.where);
    EXPECT_EQ(Value::IsZeroDiff(row.in[0], row.in[1], row.in[2]), row.out[0] != 0.0);
  }
}

TEST(ValueZeroDiff, ZeroNaNAndInfinity) {
  const double ulpAbove1 = std::nextafter(1.0, 2.0);
  struct {
    int line;
    double a, b, m;
    bool want;
  } const cases[] = {
      {__LINE__, 0.0, -0.0, 0.0, true},        {__LINE__, 0.0, 1e-300, 1e300, false},
      {__LINE__, 1e-300, 0.0, kInf, false},    {__LINE__, kNaN, kNaN, 100.0, false},
      {__LINE__, kNaN, 1.0, 100.0, false},     {__LINE__, kInf, kInf, 100.0, false},
      {__LINE__, -kInf, -kInf, 100.0, false},  {__LINE__, 1.0, 1.0, kNaN, true},
      {__LINE__, 1.0, ulpAbove1, kNaN, false}, {__LINE__, 1.0, ulpAbove1, -1.0, false},
      {__LINE__, 1e308, -1e308, 1e300, true},  // |a - b| overflows, the bound too
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(Value::IsZeroDiff(c.a, c.b, c.m), c.want);
  }
}

// Opens the protected checks to the test.
struct ValueProbe : Value {
  using Value::AssertArray;
  using Value::AssertMap;
  using Value::AssertTypeOrInvalid;
  using Value::Invalidate;
  using Value::Value;
};

TEST(ValueProtected, AssertionsShapeNullsAndCheckSizes) {
  ValueProbe s;
  s.AssertTypeOrInvalid(4);
  EXPECT_EQ(s.GetType(), 4);
  ValueProbe bad;
  ExpectZR([&] { bad.AssertTypeOrInvalid(7); }, 13, kTypeWrong);
  EXPECT_TRUE(bad.IsNull());
  const ValueProbe cnull;
  ExpectZR([&] { cnull.AssertTypeOrInvalid(2); }, 13, kTypeWrong);

  struct {
    int line;
    int start, required;
    bool exact;
    int size;
  } const cases[] = {
      {__LINE__, -1, 3, true, 3}, {__LINE__, -1, -2, false, 0}, {__LINE__, 3, 2, false, 3},
      {__LINE__, 3, 5, false, 5}, {__LINE__, 3, 2, true, 2},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ValueProbe v;  // start -1: a null
    if (c.start >= 0) v.Resize(c.start);
    v.AssertArray(c.required, c.exact);
    EXPECT_EQ(v.Size(), c.size);
  }
  ValueProbe three;
  three.Resize(3);
  const ValueProbe & cthree = three;
  cthree.AssertArray(3);
  ExpectZR([&] { cthree.AssertArray(4); }, 14, kBounds);
  ValueProbe word("w");
  ExpectZR([&] { word.AssertArray(0, false); }, 13, kNotArray);
  word.AssertMap();
  EXPECT_EQ(word.GetType(), 6);
  EXPECT_EQ(word.Size(), 0);
  word.Invalidate();
  EXPECT_TRUE(word.IsNull());
}

}  // namespace
