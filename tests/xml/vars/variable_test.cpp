// The variables: defaults and encoders, flags, category counts, status tables, deep copies,
// the object stream and the display, worked by hand.
#include "zrcommon920r/xml/vars/variable.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/persist.h"
#include "support/textio.h"
#include "zrcommon920r/common/numconst.h"
#include "zrcommon920r/xml/core/xmltree.h"

namespace {

using namespace ZRXML_920;
using V = IZRVariable;
using Strings = std::vector<std::string>;
constexpr double kMiss = ZRCommon_920::kSysMisValue;
constexpr V::VariableRole kIn = V::kRoleInput;
constexpr V::MeasureLevel kNum = V::kLevelNumericCategorical, kText = V::kLevelStringCategorical;

// Storage 2 but for the min/max constructor, ZRCatVar and ZRWeightVar; cut points give
// cuts + 1 bins; binning needs max > min and 2 bins, else a one-category ZRContEncoder.
// Updating makes a continuous variable's fNBins the encoder's count. Only categorical
// levels 2 and 3 take the flag mark.
TEST(ZRVariableConstruct, DefaultsEncodersAndFlagMark) {
  const std::vector<double> cuts{1, 2, 3}, one{1}, none;
  const auto cat = [](V::MeasureLevel level) { return new ZRCatVar("c", "", 3, level, kIn, 0); };
  constexpr int kNo = -2;  // not continuous
  struct {
    int line;
    std::function<V *()> make;
    int storage, nBins, encoderType, categories;  // encoder type 0: none
    bool flag;
  } const cases[] = {
      {__LINE__, [] { return new ZRContVar(); }, 2, -1, 0, -1, false},
      {__LINE__, [] { return new ZRContVar("x", "X", V::kRoleTarget); }, 2, -1, 1, 1, false},
      {__LINE__, [] { return new ZRContVar("x", "X", 0, 10, kIn, true, 5); }, 0, 5, 1, 5, false},
      {__LINE__, [] { return new ZRContVar("x", "X", 0, 10, kIn, true, 1); }, 0, 1, 1, 1, false},
      {__LINE__, [] { return new ZRContVar("x", "X", 10, 0, kIn, true, 5); }, 0, 5, 1, 1, false},
      {__LINE__, [] { return new ZRContVar("x", "X", 0, 10, kIn, false, 5); }, 0, 5, 1, 1, false},
      {__LINE__, [&] { return new ZRContVar("x", "X", cuts, true, kIn); }, 2, 4, 1, 4, false},
      {__LINE__, [&] { return new ZRContVar("x", "X", cuts, false, kIn); }, 2, 4, 1, 1, false},
      {__LINE__, [&] { return new ZRContVar("x", "X", one, true, kIn); }, 2, 2, 1, 2, false},
      {__LINE__, [&] { return new ZRContVar("x", "X", none, true, kIn); }, 2, 1, 1, 1, false},
      {__LINE__, [&] { return new ZRContVar("x", "X", 0, 9, one, true, kIn); }, 2, 2, 1, 2, 0},
      {__LINE__, [&] { return cat(kNum); }, 0, kNo, 2, 3, true},
      {__LINE__, [&] { return cat(kText); }, 0, kNo, 3, 3, true},
      {__LINE__, [&] { return cat(V::kLevelContinuous); }, 0, kNo, 3, 3, false},  // text
      {__LINE__, [] { return new ZRWeightVar("w", "W", V::kRoundAsIs); }, 0, kNo, 4, 0, false},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    std::unique_ptr<V> v(c.make());
    EXPECT_EQ(v->GetVariableStorage(), c.storage);
    EXPECT_EQ(v->GetEncoder() == nullptr ? 0 : v->GetEncoder()->GetEncoderType(), c.encoderType);
    EXPECT_EQ(v->GetNumberOfCategories(), c.categories);
    auto * cont = dynamic_cast<ZRContVar *>(v.get());
    EXPECT_EQ(cont == nullptr ? kNo : cont->GetNBins(), c.nBins);
    EXPECT_EQ(v->UpdateNumberOfCategories(), c.categories);
    if (cont != nullptr) {
      EXPECT_EQ(cont->GetNBins(), c.categories);
    }
    EXPECT_EQ(v->SetFlagVariable(true), c.flag);
    EXPECT_EQ(v->IsFlagVariable(), c.flag);
  }
}

TEST(ZRCatVar, BinaryFlagTakesOnlyIndexZeroOrOne) {
  ZRCatVar v("b", "B", 2, kNum, kIn, false);
  EXPECT_EQ(std::make_pair(v.GetBinaryFlag(), v.GetBinaryFlagTrueIndex()),
            std::make_pair(false, -1));
  // line; flag and index given; flag and index afterwards
  const std::tuple<int, bool, int, bool, int> steps[] = {
      {__LINE__, true, 1, true, 1},        {__LINE__, true, 2, false, 1},
      {__LINE__, true, 0, true, 0},        {__LINE__, true, -1, false, 0},  // as unsigned
      {__LINE__, true, INT_MIN, false, 0}, {__LINE__, true, 1, true, 1},
      {__LINE__, false, 0, false, 1}};  // clearing keeps the index
  for (const auto & [line, flag, index, wantFlag, wantIndex] : steps) {
    SCOPED_TRACE(line);
    v.SetBinaryFlag(flag, index);
    EXPECT_EQ(std::make_pair(v.GetBinaryFlag(), v.GetBinaryFlagTrueIndex()),
              std::make_pair(wantFlag, wantIndex));
  }
}

// The stored count is raised to the encoder's only when asked, and never falls; only
// ChangeEncoder sets it, down as well (a null encoder is ignored).
TEST(ZRCatVar, CategoryCountRisesAndNeverFalls) {
  ZRCatVar v("c", "C", 0, kText, kIn, false);
  for (const char * s : {"a", "b", "a", "c"}) v.GetEncoder()->Encode(s);
  EXPECT_EQ(v.GetNumberOfCategories(), 0);
  EXPECT_EQ(v.UpdateNumberOfCategories(), 3);
  v.SetNumberOfCategories(10);
  EXPECT_EQ(v.UpdateNumberOfCategories(), 10);
  v.ChangeEncoder(new ZRStringEncoder(Strings{"x"}));
  EXPECT_EQ(v.GetNumberOfCategories(), 1);
  v.ChangeEncoder(nullptr);
  EXPECT_EQ(v.GetEncoder()->Decode(0), "x");
}

TEST(ZRVariables, VarStatusTables) {
  // line; min, max; status
  const std::tuple<int, double, double, int> cont[] = {{__LINE__, 3, 2, 2},
                                                       {__LINE__, 2, 2, 1},
                                                       {__LINE__, -0.0, 0, 1},
                                                       {__LINE__, 1, 2, 0},
                                                       {__LINE__, kMiss, DBL_MAX, 0}};
  for (const auto & [line, min, max, want] : cont) {
    SCOPED_TRACE(line);
    ZRContVar v;
    v.SetMinMax(min, max);
    EXPECT_EQ(v.GetVarStatus(), want);
  }
  // A categorical variable first raises its count. line; count stored, values the encoder
  // knows; status, count afterwards
  const std::tuple<int, int, int, int, int> cat[] = {
      {__LINE__, 0, 0, 2, 0}, {__LINE__, 0, 1, 1, 1}, {__LINE__, 1, 0, 1, 1},
      {__LINE__, 0, 2, 0, 2}, {__LINE__, 5, 1, 0, 5}, {__LINE__, -1, 0, 2, 0}};
  for (const auto & [line, stored, known, want, after] : cat) {
    SCOPED_TRACE(line);
    ZRCatVar v("c", "C", stored, kNum, kIn, false);
    for (int k = 0; k < known; ++k) v.GetEncoder()->Encode(10.0 + k);
    EXPECT_EQ(v.GetVarStatus(), want);
    EXPECT_EQ(v.GetNumberOfCategories(), after);
  }
}

TEST(ZRWeightVar, FixedAnswersWhateverWasSet) {
  ZRWeightVar w("w", "W", V::kRoundNearest);
  w.SetVariableRole(V::kRoleTarget);
  w.SetMissingValueReplacement("1");
  EXPECT_EQ(std::make_tuple(w.GetVariableRole(), w.GetMeasureLevel(), w.GetVarStatus()),
            std::make_tuple(V::kRoleFrequencyWeight, V::kLevelFrequencyWeight, V::kVarUsable));
  EXPECT_EQ(w.GetNumberOfCategories() + w.UpdateNumberOfCategories(), 0);
  EXPECT_EQ(w.GetMissingValueReplacement(), nullptr);
  EXPECT_EQ(w.GetEncoder()->EncodeConst(0.6), 1.0);  // the option reached the encoder
}

// Copies (copy, operator=, self-assignment, Clone) keep working after the original's
// encoder has changed and the original is gone; AddressSanitizer reports a shared encoder.
// The field format is shared as a pointer.
template <class T>
void ExpectDeepCopies(T * made, T assigned) {
  std::unique_ptr<T> original(made);
  std::unique_ptr<XMLElement> format(XMLElement::Create("Field"));
  original->SetFieldFormatElement(format.get());
  const auto probe = [](const IZREncoder & e) {
    return std::make_pair(e.EncodeConst(5.0), e.EncodeConst(std::string("5")));
  };
  const auto before = probe(*original->GetEncoder());
  T copied(*original);
  assigned = *original;
  T & alias = assigned;
  assigned = alias;
  std::unique_ptr<V> cloned(original->Clone());
  original->GetEncoder()->AddDiscreteUserMissing(5.0, "five");
  original->GetEncoder()->AddDiscreteUserMissing("5", "five");
  EXPECT_NE(probe(*original->GetEncoder()), before);
  const std::string name = original->GetVariableName();
  original.reset();
  for (V * v : {static_cast<V *>(&copied), static_cast<V *>(&assigned), cloned.get()}) {
    EXPECT_EQ(v->GetVariableName(), name);
    EXPECT_EQ(probe(*v->GetEncoder()), before);
    EXPECT_EQ(v->GetFieldFormatElement(), format.get());
  }
}

TEST(ZRVariableCopy, CopiesOwnTheirEncoders) {
  ExpectDeepCopies(new ZRContVar("x", "X", kIn), ZRContVar());
  auto * num = new ZRCatVar("n", "N", 0, kNum, kIn, false);
  num->GetEncoder()->Encode(5.0);
  ExpectDeepCopies(num, ZRCatVar("o", "O", 1, kText, V::kRoleTarget, true));
  auto * text = new ZRCatVar("s", "S", 0, kText, kIn, false);
  text->GetEncoder()->Encode("5");
  ExpectDeepCopies(text, ZRCatVar("o", "O", 1, kNum, V::kRoleTarget, true));
  ExpectDeepCopies(new ZRWeightVar("w", "W", V::kRoundAsIs),
                   ZRWeightVar("v", "", V::kRoundTruncate));
  const ZRContVar bare;
  EXPECT_EQ(ZRContVar(bare).GetEncoder(), nullptr);
}

ZRCatVar SampleCat() {
  ZRCatVar v("grade", "Grade", 0, kText, V::kRolePossibleInput, false);
  v.SetVariableStorage(V::kStorageString);
  v.SetBinaryFlag(true, 0);
  v.SetMissingValueReplacement("a");
  for (const char * s : {"a", "b"}) v.GetEncoder()->Encode(s);
  v.GetEncoder()->SetValueLabels({"A"});
  v.GetEncoder()->AddDiscreteUserMissing("?", "unknown");
  v.UpdateNumberOfCategories();
  return v;
}

TEST(ZRCatVarPersist, WritesExpectedTextAndReadsBack) {
  const std::string want =
      "\n\t<Obj name=\"ZRCatVar\">\n\t\t<String value=\"grade\"/>\n\t\t<String value=\"Grade\"/>"
      "\n\t\t<Int value=\"5\"/>\n\t\t<Int value=\"3\"/>"  // role, storage
      "\n\t\t<Int value=\"2\"/>\n\t\t<Int value=\"3\"/>"  // categories, level
      "\n\t\t<Int value=\"0\"/>\n\t\t<Int value=\"1\"/>"  // ordinal, binary flag
      "\n\t\t<Int value=\"0\"/>"                          // true index
      "\n\t\t<Int value=\"1\"/>\n\t\t<String value=\"a\"/>\n\t\t<Int value=\"3\"/>"
      "\n\t\t<Obj name=\"ZRStringEncoder\">"
      "\n\t\t\t<Int value=\"2\"/>\n\t\t\t<String value=\"a\"/>\n\t\t\t<String value=\"b\"/>"
      "\n\t\t\t<Int value=\"1\"/>\n\t\t\t<String value=\"A\"/>"
      "\n\t\t\t<Int value=\"1\"/>\n\t\t\t<String value=\"?\"/>\n\t\t\t<String value=\"unknown\"/>"
      "\n\t\t</Obj>\n\t</Obj>";
  int count = 0;
  EXPECT_EQ(zrtest::WriteText(SampleCat(), 1, &count), want);
  EXPECT_EQ(count, 24);
  ZRCatVar back("", "", 0, kNum, kIn, false);
  ASSERT_TRUE(zrtest::ReadWhole(zrtest::ReadText(want, zrtest::ReaderInto(back)), 24));
  // Written again to the same text, so every saved field came back; the lookup was rebuilt.
  EXPECT_EQ(back.GetEncoder()->EncodeConst(std::string("b")), 1.0);
  ASSERT_NE(back.GetMissingValueReplacement(), nullptr);
  EXPECT_EQ(*back.GetMissingValueReplacement(), "a");
  EXPECT_EQ(zrtest::WriteText(back, 1), want);
}

// Settled quirks: strings come back escaped, doubles at 15 digits, the highest double as
// itself (an overflowing extraction stores it). Binning is not saved.
TEST(ZRContVarPersist, ReadsBackFieldByFieldWithSettledQuirks) {
  ZRContVar v("income", "R&D income", 0, 10, V::kRoleTarget, true, 5);
  v.SetVariableStorage(V::kStorageDate);
  v.SetMinMax(-0.5, DBL_MAX);
  v.SetMean(0.1 + 0.2);
  v.SetStdDev(kMiss);
  v.SetSumFreqWts(1e20);
  v.SetSumCompWts(2.5);
  v.SetMissingValueReplacement("");
  v.GetEncoder()->SetMissingInterval(-3, 7.5);
  v.GetEncoder()->AddDiscreteUserMissing(-99, "R&D code");
  int count = 0;
  const std::string text = zrtest::WriteText(v, 0, &count);
  EXPECT_EQ(count, 2 + 14 + 9);  // start and end, 14 values with the replacement, encoder
  ZRContVar back;
  ASSERT_TRUE(zrtest::ReadWhole(zrtest::ReadText(text, zrtest::ReaderInto(back)), count));
  EXPECT_EQ(back.GetVariableName() + "/" + back.GetVariableLabel(), "income/R&amp;D income");
  EXPECT_EQ(
      std::make_tuple(back.GetVariableRole(), back.GetVariableStorage(), back.GetNBins(),
                      back.GetMin(), back.GetMax(), back.GetMean(), back.GetStdDev(),
                      back.GetSumFreqWts(), back.GetSumCompWts()),
      std::make_tuple(V::kRoleTarget, V::kStorageDate, 5, -0.5, DBL_MAX, 0.3, kMiss, 1e20, 2.5));
  ASSERT_NE(back.GetMissingValueReplacement(), nullptr);
  EXPECT_EQ(*back.GetMissingValueReplacement(), "");
  const auto * e = dynamic_cast<const ZRContEncoder *>(back.GetEncoder());
  ASSERT_NE(e, nullptr);
  EXPECT_EQ(e->GetBinningEncoder(), nullptr);
  EXPECT_EQ(e->GetNumberOfCategories(), 5);
  std::string again = text;  // written again, each "&" is escaped once more; the rest alike
  for (std::size_t at = again.find('&'); at != std::string::npos; at = again.find('&', at + 1)) {
    again.insert(at + 1, "amp;");
  }
  EXPECT_EQ(zrtest::WriteText(back, 0), again);
}

// Intended: without an encoder the type written is 0, which no read accepts.
TEST(ZRContVarPersist, WithoutEncoderCannotBeReadBack) {
  int count = 0;
  const std::string text = zrtest::WriteText(ZRContVar(), 0, &count);
  EXPECT_EQ(count, 15);                                       // start, 13 values, end
  const std::string tail = "\n\t<Int value=\"0\"/>\n</Obj>";  // the type, then the end
  EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
  testing::internal::CaptureStdout();
  const zrtest::ReadOutcome outcome = zrtest::ReadText(text, zrtest::FreshReader<ZRContVar>());
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "Wrong encoder type in ZRContVar!\n");
  EXPECT_TRUE(outcome.threw);
  EXPECT_EQ(outcome.err, "Failure reading ZRContVar!\n");
}

TEST(ZRCatVarDisplay, LinesByHand) {
  EXPECT_EQ(zrtest::Shown(SampleCat()),
            "\nCategorical variable: name = grade\nLabel = Grade\nVariable role = Possible Input"
            "\nVariable storage = String\nMeasurement Level = String Categorical"
            "\nNumber of categories = 2\nOrdinal variable indicator = false"
            "\nBinary Flag variable indicator = true\nIndex of Binary Flag's true value = 0"
            "\nMissing value replacement = a"
            "\n\tBNStringEncoder object:\nLast code = 1\n\t\t0: a\n\t\t1: b"
            "\nValue Labels: (size = 1)\n  \"A\""
            "\n\t\tMissing Values and their Labels: \n? = unknown");
}

}  // namespace
