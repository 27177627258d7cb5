// The category encoders: codes, missing values, const forms, decoding, copies and display;
// then every encoder's persistence round trip and allocation-free per-case paths.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "support/alloccount.h"
#include "support/locales.h"
#include "support/persist.h"
#include "support/textio.h"
#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/xml/vars/encoder.h"

namespace {

using namespace ZRXML_920;
using zrtest::Shown;
using Strings = std::vector<std::string>;
constexpr double kMiss = ZRCommon_920::kSysMisValue;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Everything the saved fields show through the interface, as text to compare.
std::string Fields(IZREncoder & e) {
  std::ostringstream s;
  s.precision(17);
  double low = 0, high = 0;
  s << e.GetNumberOfCategories() << " w=" << e.EncodeConst(2.5);  // w shows a rounding option
  if (e.GetMissingInterval(low, high)) s << " [" << low << ", " << high << "]";
  for (int i = 0; e.GetValueLabels() != nullptr && i < e.GetNumberOfCategories(); ++i) {
    s << " " << e.Decode(i);
    if (e.DecodeNum(i) != kMiss) s << "|" << e.DecodeNum(i);
  }
  if (e.GetValueLabels() != nullptr)
    for (const std::string & l : *e.GetValueLabels()) s << " '" << l << "'";
  s << " miss:";
  if (e.GetDiscreteMissValues() != nullptr)
    for (double v : *e.GetDiscreteMissValues()) s << " " << v;
  if (e.GetDiscreteMissValuesStr() != nullptr)
    for (const std::string & v : *e.GetDiscreteMissValuesStr()) s << " " << v;
  for (const std::string & l : *e.GetMissValueLabels()) s << " '" << l << "'";
  return s.str();
}

// Each step: EncodeConst (which must not learn), then Encode, then the category count.
TEST(ZRCatNumEncoder, CodesFollowFirstAppearanceAndMissingComesFirst) {
  ZRCatNumEncoder enc(2);
  struct {
    int line;
    double x, constCode, code;
    int n;
  } const steps[] = {
      {__LINE__, 5, -1, 0, 1},       {__LINE__, 3, -1, 1, 2},     {__LINE__, 5, 0, 0, 2},
      {__LINE__, kMiss, -1, -1, 2},  {__LINE__, kNaN, -1, -1, 2},  // NaN is no category
      {__LINE__, 0.0, -1, 2, 3},     {__LINE__, -0.0, 2, 2, 3},    // -0.0 == 0.0
      {__LINE__, DBL_MAX, -1, 3, 4}, {__LINE__, 7, -1, 4, 5},
  };
  for (const auto & s : steps) {
    SCOPED_TRACE(s.line);
    EXPECT_EQ(static_cast<const ZRCatNumEncoder &>(enc).EncodeConst(s.x), s.constCode);
    EXPECT_EQ(enc.Encode(s.x), s.code);
    EXPECT_EQ(enc.GetNumberOfCategories(), s.n);
  }
  EXPECT_FALSE(enc.IsMissing(kNaN));
  EXPECT_EQ(enc.DecodeNum(1), 3.0);
  EXPECT_EQ(enc.DecodeNum(-1), kMiss);
  EXPECT_EQ(enc.DecodeNum(5), kMiss);
  // A known category made missing keeps its code but encodes -1.0 from now on.
  EXPECT_TRUE(enc.AddDiscreteUserMissing(5, "x"));
  EXPECT_TRUE(enc.SetMissingInterval(6, 8));
  for (double x : {5.0, 6.0, 7.0, 8.0, 6.5}) {
    EXPECT_EQ(enc.Encode(x), -1.0) << x;
    EXPECT_EQ(enc.EncodeConst(x), -1.0) << x;
  }
  EXPECT_EQ(enc.GetNumberOfCategories(), 5);
  EXPECT_EQ(enc.DecodeNum(0), 5.0);
  EXPECT_EQ(enc.Encode(8.5), 5.0);
  // Text is always missing to a numeric encoder.
  EXPECT_TRUE(enc.Encode("5") == -1.0 && enc.EncodeConst("5") == -1.0 && enc.IsMissing("5"));
  EXPECT_FALSE(enc.AddDiscreteUserMissing("5", ""));
  EXPECT_EQ(ZRCatNumEncoder(std::vector<double>{5, 3, 5, kNaN, 7}).GetNumberOfCategories(), 3);
}

// The value at 15 significant digits with a "." whatever the process locale.
TEST(ZRCatNumEncoder, DecodeIsGeneralFormAtFifteenDigits) {
  ZRCatNumEncoder enc(std::vector<double>{3, 0.1, 1e20, 1.0 / 3, 1e-5, 1234567.5, -2.5e-300});
  const Strings want = {"3",     "0.1",       "1e+20",    "0.333333333333333",
                        "1e-05", "1234567.5", "-2.5e-300"};
  zrtest::ScopedLocale comma("de_DE.UTF-8");
  for (int i = 0; i < 7; ++i) EXPECT_EQ(enc.Decode(i), want[i]) << comma.why();
  EXPECT_EQ(enc.Decode(-1), "");
  EXPECT_EQ(enc.Decode(7), "");
}

TEST(ZRCategoryEncoders, SetValueLabelGrowsToTheCategories) {
  ZRCatNumEncoder num(std::vector<double>{1, 2, 3});
  ZRStringEncoder str(Strings{"a", "b", "c"});
  for (IZREncoder * e : std::vector<IZREncoder *>{&num, &str}) {
    e->SetValueLabel(10, "x");
    EXPECT_EQ(*e->GetValueLabels(), (Strings{"", "", ""}));
    e->SetValueLabel(1, "b");
    e->SetValueLabel(-1, "y");
    EXPECT_EQ(*e->GetValueLabels(), (Strings{"", "b", ""}));
    e->SetValueLabels({"p"});
    e->SetValueLabel(2, "r");
    EXPECT_EQ(*e->GetValueLabels(), (Strings{"p", "", "r"}));
  }
}

TEST(ZRStringEncoder, MissingStringsCompareByLengthAndBytes) {
  ZRStringEncoder enc(Strings{"b", "a", "b"});
  const std::string aNul("a\0", 2);
  EXPECT_EQ(enc.EncodeConst("c"), -1.0);
  EXPECT_EQ(enc.GetNumberOfCategories(), 2);
  EXPECT_TRUE(enc.AddDiscreteUserMissing("a", "gone"));
  EXPECT_TRUE(enc.IsMissing("a"));
  EXPECT_EQ(enc.Encode("a"), -1.0);  // known, but missing is tested first
  EXPECT_EQ(enc.EncodeConst("a"), -1.0);
  for (const std::string & s : {aNul, std::string("A"), std::string(), std::string("a ")}) {
    EXPECT_FALSE(enc.IsMissing(s));
    const double next = enc.GetNumberOfCategories();
    EXPECT_EQ(enc.Encode(s), next);
  }
  EXPECT_EQ(enc.GetNumberOfCategories(), 6);
  EXPECT_EQ(enc.Decode(2), aNul);
  EXPECT_EQ(enc.Decode(4) + enc.Decode(-1) + enc.Decode(6), "");
  // Numbers are always missing to a string encoder.
  EXPECT_TRUE(enc.Encode(1.0) == -1.0 && enc.EncodeConst(1.0) == -1.0 && enc.IsMissing(1.0));
  EXPECT_FALSE(enc.AddDiscreteUserMissing(1.0, ""));
  EXPECT_EQ(enc.DecodeNum(0), kMiss);
}

// Under ASan a copy still pointing into the source's map fails once the source is gone.
TEST(ZRStringEncoder, CopiesDecodeFromTheirOwnTable) {
  const std::string longer = "a category name longer than the short-string buffer";
  auto source = std::make_unique<ZRStringEncoder>(Strings{"alpha", longer});
  ZRStringEncoder copied(*source), assigned(Strings{"x", "y", "z"});
  assigned = *source;
  ZRStringEncoder & alias = assigned;
  assigned = alias;
  const std::unique_ptr<IZREncoder> cloned(source->Clone());
  source->Encode("beta");
  *source = ZRStringEncoder(Strings{"q"});
  source.reset();
  for (IZREncoder * e : std::vector<IZREncoder *>{&copied, &assigned, cloned.get()}) {
    EXPECT_EQ(e->GetNumberOfCategories(), 2);
    EXPECT_EQ(e->Decode(0), "alpha");
    EXPECT_EQ(e->Decode(1), longer);
    EXPECT_EQ(e->Encode("gamma"), 2.0);
    EXPECT_EQ(e->Encode(longer), 1.0);
    EXPECT_EQ(e->Decode(2), "gamma");
  }
}

TEST(ZRCategoryEncoders, DisplayTexts) {
  EXPECT_EQ(Shown(ZRCatNumEncoder(1)),
            "\tBNCatNumEncoder: \nLast code =  = -1\n\t\tNumeric values of categories: "
            "\nNumeric values of categories (size = 0)\nDiscrete user missing values (size = 0)");
  ZRCatNumEncoder num(std::vector<double>{5, 0.5});
  num.SetValueLabels({"five"});
  num.AddDiscreteUserMissing(9, "nine");
  num.SetMissingInterval(-1, 1e6);
  EXPECT_EQ(Shown(num),
            "\tBNCatNumEncoder: \nLast code =  = 1\n\t\tNumeric values of categories: "
            "\nNumeric values of categories (size = 2)\n  5 0.5\nValue Labels: (size = 1)"
            "\n  \"five\"\nDiscrete user missing values (size = 1)\n  9"
            "\n\t\tMissing Value Labels: (size = 1)\n  \"nine\""
            "\n\t\tUser-missing interval for this encoder: \n\t\t[ -1, 1e+06 ]");
  EXPECT_EQ(Shown(ZRStringEncoder(1)),
            "\n\tBNStringEncoder object:\nLast code = -1\nValue Labels: (size = 0)");
  ZRStringEncoder str(Strings{"a", "b"});
  str.SetValueLabels({"A"});
  str.AddDiscreteUserMissing("x", "ex");
  EXPECT_EQ(Shown(str),
            "\n\tBNStringEncoder object:\nLast code = 1\n\t\t0: a\n\t\t1: b"
            "\nValue Labels: (size = 1)\n  \"A\"\n\t\tMissing Values and their Labels: \nx = ex");
}

TEST(ZRCatNumEncoder, WritesExpectedTextAndReadClearsFirst) {
  ZRCatNumEncoder enc(std::vector<double>{3, 0.5});
  enc.SetValueLabels({"R&D"});
  enc.SetMissingInterval(6, 7.5);
  enc.AddDiscreteUserMissing(9, "nine");
  const std::string text =
      "\n\t<Obj name=\"ZRCatNumEncoder\">\n\t\t<Int value=\"2\"/>\n\t\t<Double value=\"3\"/>"
      "\n\t\t<Double value=\"0.5\"/>\n\t\t<Int value=\"1\"/>\n\t\t<String value=\"R&amp;D\"/>"
      "\n\t\t<Int value=\"1\"/>\n\t\t<Double value=\"6\"/>\n\t\t<Double value=\"7.5\"/>"
      "\n\t\t<Int value=\"1\"/>\n\t\t<Double value=\"9\"/>\n\t\t<String value=\"nine\"/>"
      "\n\t</Obj>";
  int count = 0;
  EXPECT_EQ(zrtest::WriteText(enc, 1, &count), text);
  EXPECT_EQ(count, 13);

  ZRCatNumEncoder back(std::vector<double>{1, 0.5, 3});
  back.SetValueLabels({"p", "q"});
  back.SetMissingInterval(0, 1);
  back.AddDiscreteUserMissing(2, "two");
  ASSERT_TRUE(zrtest::ReadWhole(zrtest::ReadText(text, zrtest::ReaderInto(back)), 13));
  // Intended: the label comes back as written, still escaped.
  EXPECT_EQ(Fields(back), "2 w=-1 [6, 7.5] 3|3 0.5|0.5 'R&amp;D' miss: 9 'nine'");
}

// Every encoder class: written, read into a fresh encoder, shown alike through the
// interface, written again to the same bytes; every truncation fails with one line.
TEST(ZREncoders, PersistenceRoundTrip) {
  ZRContEncoder cont(std::vector<double>{1, 2.5});  // 3 bins; the binning is not saved
  cont.SetMissingInterval(1e300, DBL_MAX);  // DBL_MAX overflows at 15 digits, reads as itself
  cont.AddDiscreteUserMissing(kMiss, "sysmis");
  cont.AddDiscreteUserMissing(0.1 + 0.2, "");  // written at 15 digits: reads 0.3
  ZRRoundEncoder round(IZRVariable::kRoundNearest), plain;
  round.SetMissingInterval(7, 8);
  round.AddDiscreteUserMissing(1e-300, "tiny");
  ZRCatNumEncoder num(std::vector<double>{5, -2.5, DBL_MAX, 1e-300});
  num.SetValueLabels({"five", "", "big"});
  num.AddDiscreteUserMissing(kMiss, "sysmis");
  ZRStringEncoder str(Strings{"b", "a b", ""});
  str.SetValueLabels({"B"});
  str.AddDiscreteUserMissing("zz", "sleep");
  const zrtest::Reader freshNum = [](std::istream & in) {
    return ZRCatNumEncoder(1).ReadObjectXML(in);
  };
  const zrtest::Reader freshStr = [](std::istream & in) {
    return ZRStringEncoder(1).ReadObjectXML(in);
  };
  const zrtest::Reader freshRound = zrtest::FreshReader<ZRRoundEncoder>();
  struct {
    IZREncoder * written;
    std::unique_ptr<IZREncoder> back;
    zrtest::Reader fresh;
    std::string fields, failure;
  } cases[] = {
      {&cont, std::make_unique<ZRContEncoder>(), zrtest::FreshReader<ZRContEncoder>(),
       "3 w=2.5 [1.0000000000000001e+300, 1.7976931348623157e+308] miss: "
       "-1.7976931348623157e+308 0.29999999999999999 'sysmis' ''",
       "Failure reading ZRContEncoder!\n"},
      {&round, std::make_unique<ZRRoundEncoder>(), freshRound, "0 w=3 [7, 8] miss: 1e-300 'tiny'",
       "Failure reading ZRRoundEncoder from XML!\n"},
      {&plain, std::make_unique<ZRRoundEncoder>(), freshRound,
       "0 w=2 miss:", "Failure reading ZRRoundEncoder from XML!\n"},
      {&num, std::make_unique<ZRCatNumEncoder>(1), freshNum,
       "4 w=-1 5|5 -2.5|-2.5 1.79769313486232e+308|1.7976931348623157e+308 1e-300|1e-300 "
       "'five' '' 'big' miss: -1.7976931348623157e+308 'sysmis'",
       "Failure reading ZRCatNumEncoder!\n"},
      {&str, std::make_unique<ZRStringEncoder>(1), freshStr, "3 w=-1 b a b  'B' miss: zz 'sleep'",
       "Failure reading ZRStringEncoder!\n"},
  };
  for (auto & c : cases) {
    SCOPED_TRACE(c.fields);
    int count = 0;
    const std::string text = zrtest::WriteText(*c.written, 1, &count);
    ASSERT_TRUE(zrtest::ReadWhole(zrtest::ReadText(text, zrtest::ReaderInto(*c.back)), count));
    EXPECT_EQ(Fields(*c.back), c.fields);
    EXPECT_EQ(zrtest::WriteText(*c.back, 1), text);
    EXPECT_EQ(zrtest::ReadText(text.substr(0, text.size() / 2), c.fresh).err, c.failure);
    zrtest::ExpectTruncationsFail(text, c.fresh, count);
  }
}

// The per-case paths of every encoder, over seen, unseen and missing values.
TEST(ZREncoders, PerCasePathsAllocateNothing) {
  Strings words;
  for (int n = 3; n <= 30; ++n) words.push_back(std::string(n, static_cast<char>('a' + n % 26)));
  const std::string missing(20, 'm'), unseen(30, 'u');
  ZRStringEncoder str(words);
  str.AddDiscreteUserMissing(missing, "");
  ZRCatNumEncoder num(std::vector<double>{5, 3, 7});
  ZRContEncoder cont(0, 10, 5);
  ZRRoundEncoder round;
  for (IZREncoder * e : std::vector<IZREncoder *>{&num, &cont, &round}) {
    e->AddDiscreteUserMissing(9, "");
    e->SetMissingInterval(10, 20);
  }
  std::vector<double> cuts;
  for (int i = 0; i < 999; ++i) cuts.push_back(0.01 * i);
  const ZRBinningEncoder bins(cuts);
  volatile double sink = 0;
  zrtest::AllocCounter counter;
  for (const std::string & w : words) {
    sink = str.Encode(w) + str.EncodeConst(w) + str.EncodeConst(unseen) + str.Encode(missing);
    sink = str.IsMissing(w) + str.IsMissing(missing) + str.DecodeNum(0);
  }
  for (double x : {5.0, 3.0, 7.0, 9.0, 15.0, kMiss, kNaN})  // seen or missing: nothing to learn
    sink = num.Encode(x) + num.EncodeConst(x) + num.EncodeConst(x + 0.25) + num.DecodeNum(1);
  for (double x : {5.0, 9.0, 15.0, 2.5, -1.0, kMiss, kNaN}) {
    sink = num.IsMissing(x) + cont.Encode(x) + cont.EncodeConst(x) + cont.IsMissing(x);
    sink = round.Encode(x) + round.EncodeConst(x) + round.IsMissing(x) + bins.Encode(x);
  }
  const long count = counter.Count();
  static_cast<void>(sink);
  EXPECT_EQ(count, 0);
  zrtest::AllocCounter learning;  // the counter does see the library's allocations
  str.Encode(unseen);
  if (zrtest::CountsAllocations()) {
    EXPECT_GT(learning.Count(), 0);
  }
}

}  // namespace
