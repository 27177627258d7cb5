// The settings tree: both views through edits, the renaming quirk, lookups, deep copies,
// comparison, every vector conversion and the display, all worked by hand.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "support/alloccount.h"
#include "support/textio.h"
#include "zrcommon920r/xml/settings/settings.h"

namespace {

using namespace ZRXML_920;
using Strings = std::vector<std::string>;
using StringPair = std::pair<std::string, std::string>;

// "name:text ..." in insertion order, then "| name->text" for each name as a lookup finds
// it, so a stale index shows as a wrong or missing lookup.
std::string Describe(const ZRSettings & s) {
  std::ostringstream out;
  Strings names;
  s.GetSettingNames(names);
  for (std::size_t i = 0; i < s.Size(); ++i)
    out << names[i] << ':' << s.GetSettingAt(i)->GetValue()->GetString() << ' ';
  out << '|';
  for (const std::string & name : names) {
    std::string text = "(none)";
    s.GetSettingValByName(name, text);
    out << ' ' << name << "->" << text;
  }
  return out.str();
}

TEST(ZRSettings, DuplicatesReplaceAndRemovalKeepBothViews) {
  ZRSettings s;
  s.AddSetting("a", 1, false);
  s.AddSetting("b", "x", false);
  s.AddSetting("a", 2, false);
  s.AddSetting("c", 3, false);
  EXPECT_EQ(Describe(s), "a:1 b:x a:2 c:3 | a->1 b->x a->1 c->3");
  const std::vector<ZRSetting *> as = s.GetSettingByName("a");
  ASSERT_EQ(as.size(), 2u);
  EXPECT_EQ(as[1]->GetValue()->GetInt(), 2);
  EXPECT_TRUE(s.GetSettingByName("A").empty());  // names are case-sensitive

  EXPECT_TRUE(s.RemoveSetting("a", false));  // position 0: every later position drops by one
  EXPECT_EQ(Describe(s), "b:x a:2 c:3 | b->x a->2 c->3");
  EXPECT_EQ(s.GetSettingAt(3), nullptr);
  EXPECT_EQ(s.GetSettingAt(s.Size()), nullptr);
  EXPECT_FALSE(s.RemoveSetting("zz", true));

  s.AddSetting("b", 4, false);
  EXPECT_TRUE(s.AddSetting("b", 5, true));  // replace: every earlier "b" goes
  EXPECT_EQ(Describe(s), "a:2 c:3 b:5 | a->2 c->3 b->5");
  s.AddNewSetting("c", "y", "label");  // never replaces
  EXPECT_TRUE(s.RemoveSetting("c", true));
  EXPECT_EQ(Describe(s), "a:2 b:5 | a->2 b->5");
  s.Clear();
  EXPECT_EQ(Describe(s), "|");
}

TEST(ZRSettings, ScalarLookupsAllocateNothing) {
  ZRSettings s;
  for (const char * name : {"alpha", "a-name-longer-than-any-short-string-buffer", "z"})
    s.AddSetting(name, 2.5, false);
  const std::string name = "a-name-longer-than-any-short-string-buffer", absent = "b";
  int i = 0;
  double d = 0.0;
  bool b = false;
  long long ll = 0;
  zrtest::AllocCounter counter;
  const bool found = s.GetSettingValByName(name, i) && s.GetSettingValByName(name, d) &&
                     s.GetSettingValByName(name, b) && s.GetSettingValByName(name, ll) &&
                     !s.GetSettingValByName(absent, d);
  const long allocations = counter.Count();
  EXPECT_TRUE(found);
  EXPECT_EQ(allocations, 0);
}

TEST(ZRSettings, SetNameLeavesTheIndex) {
  ZRSettings s;
  s.AddSetting("a", 1, false);
  s.AddSetting("b", 2, false);
  s.GetSettingAt(0)->SetName("z");  // Intended: the index still files it under "a"
  int value = -7;
  EXPECT_FALSE(s.GetSettingValByName("z", value));
  EXPECT_EQ(value, -7);
  EXPECT_EQ(Describe(s), "z:1 b:2 | z->(none) b->2");
  EXPECT_TRUE(s.GetSettingValByName("a", value));
  EXPECT_EQ(value, 1);
  const ZRSettings copy(s);  // the index is copied as it stands
  EXPECT_TRUE(copy.GetSettingValByName("a", value));
  EXPECT_TRUE(s.RemoveSetting("a", false));
  EXPECT_EQ(Describe(s), "b:2 | b->2");
}

TEST(ZRSettings, ScalarLookupsAnswerWhateverTheClass) {
  ZRSettings inner, s;
  inner.AddSetting("x", 1, false);
  s.AddSetting("t", "true", false);
  s.AddSetting("half", 0.5, false);
  s.AddSetting("neg", -1, false);
  s.AddNewSetting("list", inner, "");
  // "int double text bool long-long" as found; absent names leave the outputs as they were.
  const auto scalars = [&](const char * name) {
    int i = 3;
    double d = 3.5;
    std::string text = "kept";
    bool b = true;
    long long ll = 4;
    const int found = s.GetSettingValByName(name, i) + s.GetSettingValByName(name, d) +
                      s.GetSettingValByName(name, text) + s.GetSettingValByName(name, b) +
                      s.GetSettingValByName(name, ll);
    std::ostringstream out;
    out.precision(17);
    out << found << ':' << i << ' ' << d << " '" << text << "' " << b << ' ' << ll;
    return out.str();
  };
  EXPECT_EQ(scalars("t"), "5:0 0 'true' 1 0");
  EXPECT_EQ(scalars("half"), "5:0 0.5 '0.5' 1 0");
  EXPECT_EQ(scalars("neg"), "5:-1 -1 '-1' 0 -1");
  EXPECT_EQ(scalars("list"), "5:-2147483648 2.2250738585072014e-308 '' 0 -9223372036854775808");
  EXPECT_EQ(scalars("none"), "0:3 3.5 'kept' 1 4");
  ZRSettings out;
  EXPECT_FALSE(s.GetSettingValByName("half", out));  // not a list
  EXPECT_TRUE(s.GetSettingValByName("list", out));
  EXPECT_EQ(Describe(out), "x:1 | x->1");
}

TEST(ZRSettings, CopiesOfNestedListsAreDeep) {
  ZRSettings leaf;
  leaf.AddSetting("x", 1, false);
  ZRSettings tree;
  tree.AddNewSetting("node", leaf, "n");
  ZRSettings * arrays[] = {&leaf, nullptr};
  tree.AddNewSetting("many", arrays, 2, "v");
  leaf.AddSetting("late", 2, false);  // the tree holds copies

  ZRSettings copy(tree);
  ZRSettings * nested =
      dynamic_cast<ZRSettingListValue *>(copy.GetSettingAt(0)->GetValue())->GetListValue();
  nested->AddSetting("y", 3, false);
  std::vector<ZRSettings> lists{ZRSettings()};
  ASSERT_TRUE(copy.GetSettingValByName("many", lists));
  ASSERT_EQ(lists.size(), 2u);  // assigned, not appended
  EXPECT_EQ(Describe(lists[0]), "x:1 | x->1");
  EXPECT_EQ(lists[1].Size(), 0u);
  ZRSettings original;
  ASSERT_TRUE(tree.GetSettingValByName("node", original));
  EXPECT_EQ(Describe(original), "x:1 | x->1");
  EXPECT_FALSE(copy == tree);

  // Setting a value from the collection it replaces: the new one is made first.
  ZRSetting setting = *copy.GetSettingAt(0);
  setting.SetValue(*dynamic_cast<ZRSettingListValue *>(setting.GetValue())->GetListValue());
  EXPECT_TRUE(setting.HasChild());
  EXPECT_FALSE(setting.IsList());
  setting.SetValue("now text");
  EXPECT_EQ(setting.GetValue()->GetType(), IZRSettingValue::eStrValue);
  EXPECT_TRUE(copy.GetSettingAt(1)->IsList());
}

TEST(ZRSettings, CompareUsesValuesInOrderOnly) {
  const auto make = [](std::vector<std::pair<std::string, double>> numbers,
                       const char * text = nullptr) {
    ZRSettings s;
    for (const auto & n : numbers) s.AddNewSetting(n.first, n.second, n.first + "-label");
    if (text != nullptr) s.AddSetting("t", text, false);
    return s;
  };
  struct Row {
    int line;
    ZRSettings a, b;
    int compare;  // -1, 0, 1
  } const rows[] = {
      {__LINE__, make({{"a", 1}, {"b", 2}}), make({{"x", 1}, {"y", 2}}), 0},  // names ignored
      {__LINE__, make({{"a", 1}}), make({{"a", 1}, {"b", 0}}), -1},
      {__LINE__, make({{"a", 1}, {"b", 3}}), make({{"a", 1}, {"b", 2}}), 1},
      // Intended: unlike classes are neither less nor greater.
      {__LINE__, make({{"a", 5}}), make({}, "abc"), 0},
      {__LINE__, make({{"a", 5}}, "b"), make({{"a", 5}}, "a"), 1},
  };
  for (const Row & r : rows) {
    SCOPED_TRACE(r.line);
    EXPECT_EQ(r.a == r.b, r.compare == 0);
    EXPECT_EQ(r.a < r.b, r.compare < 0);
    EXPECT_EQ(r.b < r.a, 0 < r.compare);
  }
  ZRSetting x("x", 1.0), y("y", 1.0), z("x", 2.0);
  EXPECT_FALSE(x == y);  // a setting's == takes the name, its < does not
  EXPECT_TRUE(x < z);
  const std::unique_ptr<ZRSetting> clone(x.Clone());
  EXPECT_TRUE(*clone == x);
}

template <typename T>
std::shared_ptr<IZRSettingValue> Vec(const std::vector<T> & v) {
  return std::make_shared<ZRVecValue<T>>(v);
}

// "true [elements]" or "false [elements]" after a vector lookup.
template <typename T>
std::string Mapped(const ZRSettings & s, std::vector<T> target) {
  std::ostringstream out;
  out.precision(17);
  out << (s.GetSettingValByName("v", target) ? "true [" : "false [");
  for (std::size_t i = 0; i < target.size(); ++i) {
    if (i > 0) out << ' ';
    if constexpr (std::is_same<T, ZRSettings>::value)
      out << 'S' << target[i].Size();
    else if constexpr (std::is_same<T, StringPair>::value)
      out << target[i].first << '=' << target[i].second;
    else
      out << target[i];
  }
  return out.str() + "]";
}

TEST(ZRSettings, EveryVectorConversion) {
  using S = std::string;
  ZRSettings one;
  one.AddSetting("a", 1, false);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  struct Row {
    int line;
    std::shared_ptr<IZRSettingValue> value;
    const char *toInt, *toDouble, *toString, *toSettings, *toPairs;
  } const rows[] = {
      // Targets start as [9], [9.5], [pre], [S0], [p=q]: assign replaces, converting appends.
      {__LINE__, Vec<int>({1, -2}), "true [1 -2]", "true [9.5 1 -2]", "true [pre 1 -2]",
       "false [S0]", "false [p=q]"},
      {__LINE__, Vec<double>({2.5, -1e10, 1234567, nan}),
       "true [9 2 -2147483648 1234567 -2147483648]", "true [2.5 -10000000000 1234567 nan]",
       "true [pre 2.5 -1e+10 1.23457e+06 nan]", "false [S0]", "false [p=q]"},
      {__LINE__, Vec<S>({"12abc", " 3", "-4.5"}), "true [9 12 3 -4]", "true [9.5 12 3 -4.5]",
       "true [12abc  3 -4.5]", "false [S0]", "false [p=q]"},
      {__LINE__, Vec<S>({"1", "x", "3"}), "false []", "false []", "true [1 x 3]", "false [S0]",
       "false [p=q]"},
      {__LINE__, Vec<std::pair<S, int>>({{"a", 1}}), "true [9]", "true [9.5]", "true [pre]",
       "false [S0]", "true [p=q a=1]"},
      {__LINE__, Vec<std::pair<S, double>>({{"b", 0.1}, {"c", 1234567}}), "true [9]", "true [9.5]",
       "true [pre]", "false [S0]", "true [p=q b=0.1 c=1.23457e+06]"},
      {__LINE__, Vec<StringPair>({{"c", "d"}}), "true [9]", "true [9.5]", "true [pre]",
       "false [S0]", "true [c=d]"},
      {__LINE__, Vec<ZRSettings>({one, ZRSettings()}), "true [9]", "true [9.5]", "true [pre]",
       "true [S1 S0]", "false [p=q]"},
      {__LINE__, Vec<long>({1}), "true [9]", "true [9.5]", "true [pre]", "false [S0]",
       "false [p=q]"},
      {__LINE__, std::make_shared<ZRNumValue>(5), "true [9]", "true [9.5]", "true [pre]",
       "false [S0]", "false [p=q]"},
      {__LINE__, std::make_shared<ZRStrValue>("7"), "true [9]", "true [9.5]", "true [pre]",
       "false [S0]", "false [p=q]"},
  };
  for (const Row & r : rows) {
    SCOPED_TRACE(r.line);
    ZRSettings s;
    s.AddNewSetting("v", *r.value, "");
    EXPECT_EQ(Mapped(s, std::vector<int>{9}), r.toInt);
    EXPECT_EQ(Mapped(s, std::vector<double>{9.5}), r.toDouble);
    EXPECT_EQ(Mapped(s, Strings{"pre"}), r.toString);
    EXPECT_EQ(Mapped(s, std::vector<ZRSettings>{ZRSettings()}), r.toSettings);
    EXPECT_EQ(Mapped(s, std::vector<StringPair>{{"p", "q"}}), r.toPairs);
  }
  const ZRSettings empty;
  EXPECT_EQ(Mapped(empty, std::vector<int>{9}), "false [9]");  // absent: untouched
}

TEST(ZRSettings, TextArraysKeepEveryByte) {
  char a[] = "a", b[] = "b\xff";
  char * texts[] = {a, nullptr, b};
  ZRSettings s;
  s.AddNewSetting("v", texts, 3, "");
  s.AddNewSetting("none", texts, 0, "");
  s.AddNewSetting("null", static_cast<char **>(nullptr), 2, "");
  Strings got;
  EXPECT_TRUE(s.GetSettingValByName("v", got));
  EXPECT_EQ(got, (Strings{"a", "", "b\xff"}));
  for (const char * name : {"none", "null"}) {
    EXPECT_TRUE(s.GetSettingValByName(name, got));
    EXPECT_TRUE(got.empty());
  }
  EXPECT_EQ(s.Size(), 3u);
}

TEST(ZRSettings, DisplayLinesByHand) {
  ZRSettings leaf;
  leaf.AddSetting("x", 2, false);
  char text[] = "q";
  char * texts[] = {text, text};
  ZRSettings s;
  s.AddNewSetting("n", 1.5, "opt");
  s.AddSetting("s", "abc", false);
  s.AddSetting("m", ZRCommon_920::kSysMisValue, false);
  s.AddNewSetting("v", texts, 2, "t");
  s.AddNewSetting("l", leaf, "");
  EXPECT_EQ(zrtest::Shown(s),
            "\nSetting Name = n\nSetting Type = opt\nSetting Value Type = Numeric"
            "\nSetting Value = 1.5"
            "\nSetting Name = s\nSetting Type = \nSetting Value Type = String"
            "\nSetting Value = abc"
            "\nSetting Name = m\nSetting Type = \nSetting Value Type = Numeric"
            "\nSetting Value = miss"
            "\nSetting Name = v\nSetting Type = t\nSetting Value Type = Vector"
            "\nTotal number of setting value = 2"
            "\nSetting Name = l\nSetting Type = \nSetting Name = x\nSetting Type = "
            "\nSetting Value Type = Numeric\nSetting Value = 2");
}

}  // namespace
