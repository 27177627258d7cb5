// The variable list: operation sequences against states worked by hand, encoder replacement,
// answers out of range, summaries, copies, the object stream and the display.
#include "zrcommon920r/xml/vars/varlist.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "support/persist.h"
#include "support/textio.h"

namespace {

using namespace ZRXML_920;
using V = IZRVariable;
using Strings = std::vector<std::string>;
using Doubles = std::vector<double>;
constexpr V::VariableRole kIn = V::kRoleInput, kTarget = V::kRoleTarget,
                          kResp = V::kRoleTargetResponse;

// "name:role ... | fNCont fNCat | target first-response weight | responses".
std::string Describe(ZRVarList & list) {
  std::ostringstream out;
  for (int i = 0; list.GetVarAt(i) != nullptr; ++i) {
    out << list.GetVarAt(i)->GetVariableName() << ':' << list.GetVariableRole(i) << ' ';
  }
  out << "| " << list.GetNumContVar() << ' ' << list.GetNumCatVar() << " | "
      << list.GetTargetIndex() << ' ' << list.GetTargetRespIndex() << ' '
      << list.GetFreqWeightIndex() << " |";
  for (int r : list.GetMutipleResponseVariables()) out << ' ' << r;
  return out.str();
}

struct Step {
  int line;
  std::function<int(ZRVarList &)> op;
  int want;            // the result; bools as 0 and 1
  const char * state;  // Describe afterwards
};
// One step of a sequence: l.call, its result and the state after it.
// clang-format off
#define ZR_STEP(call, want, state) Step{__LINE__, [&](ZRVarList & l) { return int(l.call); }, want, state}
// clang-format on

void RunSteps(const std::vector<Step> & steps) {
  ZRVarList list;
  for (const Step & s : steps) {
    SCOPED_TRACE(s.line);
    EXPECT_EQ(s.op(list), s.want);
    EXPECT_EQ(Describe(list), s.state);
  }
}

TEST(ZRVarList, AddSetAndRemoveKeepIndicesAsStated) {
  const V::MeasureLevel num = V::kLevelNumericCategorical, text = V::kLevelStringCategorical;
  RunSteps({
      ZR_STEP(AddContVar("age", "Age", kIn), 0, "age:4 | 1 0 | -1 -1 -1 |"),
      ZR_STEP(AddContVar("age", "Again", kTarget), -1, "age:4 | 1 0 | -1 -1 -1 |"),
      ZR_STEP(AddCatVar("", "E", 2, num, kIn), -1, "age:4 | 1 0 | -1 -1 -1 |"),
      ZR_STEP(AddCatVar("y1", "Y1", 3, num, kIn), 1, "age:4 y1:4 | 1 1 | -1 -1 -1 |"),
      ZR_STEP(AddCatVar("y2", "Y2", 2, text, kTarget), 2, "age:4 y1:4 y2:1 | 1 2 | 2 -1 -1 |"),
      // The last added target wins, but a role change keeps the first.
      ZR_STEP(AddContVar("x", "X", 0, 1, kTarget, 0, 5), 3,
              "age:4 y1:4 y2:1 x:1 | 2 2 | 3 -1 -1 |"),
      ZR_STEP(SetVariableRole(1, kTarget), 1, "age:4 y1:1 y2:1 x:1 | 2 2 | 3 -1 -1 |"),
      ZR_STEP(AddCatVar("r1", "R1", Strings{"a", "b", "a"}, kResp), 4,
              "age:4 y1:1 y2:1 x:1 r1:2 | 2 3 | 3 4 -1 | 4"),
      ZR_STEP(AddContVar("r2", "R2", Doubles{1, 2}, true, kResp), 5,
              "age:4 y1:1 y2:1 x:1 r1:2 r2:2 | 3 3 | 3 4 -1 | 4 5"),
      ZR_STEP(SetWeightVar("w", "W", V::kRoundTruncate), 6,
              "age:4 y1:1 y2:1 x:1 r1:2 r2:2 w:3 | 3 3 | 3 4 6 | 4 5"),
      // Intended: the weight's name is not checked, and a new weight takes the old slot.
      ZR_STEP(SetWeightVar("age", "W2", V::kRoundAsIs), 6,
              "age:4 y1:1 y2:1 x:1 r1:2 r2:2 age:3 | 3 3 | 3 4 6 | 4 5"),
      // Below the target and the weight, which move down; the responses are not renumbered.
      ZR_STEP(RemoveVar(0), 1, "y1:1 y2:1 x:1 r1:2 r2:2 age:3 | 2 3 | 2 4 5 | 4 5"),
      // Intended: a categorical variable of role 1 leaves fNCat and clears the target.
      ZR_STEP(RemoveVar(0), 1, "y2:1 x:1 r1:2 r2:2 age:3 | 2 3 | -1 4 4 | 4 5"),
      ZR_STEP(RemoveVar(std::string("age")), 1, "y2:1 x:1 r1:2 r2:2 | 2 3 | -1 4 -1 | 4 5"),
      ZR_STEP(RemoveVar(4), 0, "y2:1 x:1 r1:2 r2:2 | 2 3 | -1 4 -1 | 4 5"),
  });
}

// Responses are taken off after the gap is closed, so the last index is out of range and
// stays listed (Intended), and later entries keep their old indices.
TEST(ZRVarList, ResponsesFollowTheClosedGap) {
  RunSteps({
      ZR_STEP(AddContVar("a", "A", kResp), 0, "a:2 | 1 0 | -1 0 -1 | 0"),
      ZR_STEP(AddCatVar("b", "B", Doubles{1, 2}, kResp), 1, "a:2 b:2 | 1 1 | -1 0 -1 | 0 1"),
      ZR_STEP(AddContVar("c", "C", kResp), 2, "a:2 b:2 c:2 | 2 1 | -1 0 -1 | 0 1 2"),
      ZR_STEP(RemoveVar(0), 1, "b:2 c:2 | 1 1 | -1 1 -1 | 1 2"),
      ZR_STEP(RemoveVar(1), 1, "b:2 | 0 1 | -1 1 -1 | 1 2"),
      ZR_STEP(SetVariableRole(0, kResp), 1, "b:2 | 0 1 | -1 1 -1 | 1 2 0"),
      ZR_STEP(SetVariableRole(0, kTarget), 1, "b:1 | 0 1 | 0 1 -1 | 1 2 0"),  // still listed
      ZR_STEP(SetVariableRole(0, V::kRoleUnused), 1, "b:6 | 0 1 | -1 1 -1 | 1 2 0"),
  });
}

TEST(ZRVarList, AddNewVarCopiesByLevel) {
  const ZRContVar cont("a", "A", kTarget);
  const ZRCatVar cat("b", "B", 2, V::kLevelStringCategorical, kResp, false);
  const ZRWeightVar w("w", "W", V::kRoundTruncate), v("v", "V", V::kRoundAsIs);
  const ZRCatVar unknown("u", "U", 2, V::kLevelUnknown, kIn, false);
  RunSteps({
      ZR_STEP(AddNewVar(nullptr), -1, "| 0 0 | -1 -1 -1 |"),
      ZR_STEP(AddNewVar(&cont), 0, "a:1 | 1 0 | 0 -1 -1 |"),
      ZR_STEP(AddNewVar(&cont), -1, "a:1 | 1 0 | 0 -1 -1 |"),
      ZR_STEP(AddNewVar(&cat), 1, "a:1 b:2 | 1 1 | 0 1 -1 | 1"),
      ZR_STEP(AddNewVar(&w), 2, "a:1 b:2 w:3 | 1 1 | 0 1 2 | 1"),
      ZR_STEP(AddNewVar(&v), 2, "a:1 b:2 v:3 | 1 1 | 0 1 2 | 1"),
      ZR_STEP(AddNewVar(&unknown), -1, "a:1 b:2 v:3 | 1 1 | 0 1 2 | 1"),
      ZR_STEP(GetVarAt(1) != &cat, 1, "a:1 b:2 v:3 | 1 1 | 0 1 2 | 1"),  // a copy
  });
}
#undef ZR_STEP

// Intended: a category target's encoder is replaced even when the answer is false; null,
// a continuous target or none change nothing (and the encoder given is freed).
TEST(ZRVarList, ChangeTargetEncoderReplacesEvenWhenFalse) {
  ZRVarList list;
  list.AddContVar("x", "X", kIn);
  list.AddCatVar("y", "Y", Strings{"a", "b"}, kTarget);
  // line; encoder given; answer; the target's encoder type and categories afterwards
  const std::tuple<int, std::function<IZREncoder *()>, bool, int, int> cases[] = {
      {__LINE__,
       [] {
         return new ZRCatNumEncoder(Doubles{1, 2, 3});
       },
       true, 2, 3},
      {__LINE__, [] { return new ZRContEncoder(); }, false, 1, 1},
      {__LINE__, [] { return new ZRStringEncoder(4); }, false, 3, 0},
      {__LINE__, [] { return new ZRStringEncoder(Strings{"p"}); }, true, 3, 1},
  };
  for (const auto & [line, make, want, type, categories] : cases) {
    SCOPED_TRACE(line);
    EXPECT_EQ(list.ChangeTargetEncoder(make()), want);
    EXPECT_EQ(list.GetEncoderAt(1)->GetEncoderType(), type);
    EXPECT_EQ(list.GetNTargetCats(), categories);
  }
  const IZREncoder * kept = list.GetEncoderAt(1);
  EXPECT_FALSE(list.ChangeTargetEncoder(nullptr));
  EXPECT_EQ(list.GetEncoderAt(1), kept);
  list.SetVariableRole(1, kIn);
  EXPECT_FALSE(list.ChangeTargetEncoder(new ZRStringEncoder(Strings{"p"})));
  list.SetVariableRole(0, kTarget);
  EXPECT_FALSE(list.ChangeTargetEncoder(new ZRCatNumEncoder(Doubles{1})));
  EXPECT_EQ(list.GetEncoderAt(0)->GetEncoderType(), IZREncoder::kContinuous);
  EXPECT_EQ(list.GetEncoderAt(1), kept);
}

TEST(ZRVarList, OutOfRangeAnswersNullZeroOrFalse) {
  ZRVarList list;
  EXPECT_TRUE(!list.GetTargetVariable() && !list.GetTargetRespVariable() &&
              !list.GetFreqWeightVariable());
  EXPECT_EQ(list.GetNTargetCats() + list.GetNOutputCats(), 0);
  list.AddContVar("x", "X", kTarget);
  const ZRVarList & constList = list;
  for (int i : {-1, 1}) {
    SCOPED_TRACE(i);
    EXPECT_TRUE(!list.GetVarAt(i) && !constList.GetVarAt(i) && !list.GetEncoderAt(i) &&
                !constList.GetEncoderAt(i));
    EXPECT_EQ(list.GetVariableRole(i), V::kRoleUndefined);
    EXPECT_FALSE(list.SetVariableRole(i, kIn) || list.SetMissingValueReplacement(i, "0") ||
                 list.RemoveVar(i));
  }
  EXPECT_TRUE(!list.GetVariable("nope") && !list.RemoveVar(std::string("nope")));
  EXPECT_EQ(Describe(list), "x:1 | 1 0 | 0 -1 -1 |");
}

TEST(ZRVarList, SummariesByRole) {
  ZRVarList list;
  list.AddContVar("a", "A", kIn);  // the default encoder's one category
  list.AddCatVar("b", "B", Doubles{5, 3, 5, 7}, Doubles{1, 2, 3}, Strings{"five", "three"}, kIn);
  list.AddCatVar("c", "C", Strings{"p", "q"}, kResp);
  list.AddContVar("d", "D", 0, 1, V::kRolePossibleInput, false, 4);
  list.SetWeightVar("w", "W", V::kRoundNearest);
  Strings inputs{"z"}, responses;
  list.GetVarNames(inputs, responses);
  EXPECT_EQ(inputs, (Strings{"z", "a", "b"}));
  EXPECT_EQ(responses, Strings{"c"});
  EXPECT_EQ(list.GetNInputCats(), (std::vector<int>{1, 3}));
  EXPECT_EQ(list.GetNumInputVars(), 2);
  EXPECT_EQ(list.GetNumPossibleInputVars(), 1);
  EXPECT_EQ(list.GetNOutputCats(), 2);
  Doubles sums;
  EXPECT_TRUE(dynamic_cast<ZRCatVar *>(list.GetVarAt(1))->GetSumFreqWts(sums));
  EXPECT_EQ(sums, (Doubles{1, 2, 3}));
  EXPECT_EQ(*list.GetEncoderAt(1)->GetValueLabels(), (Strings{"five", "three"}));
  EXPECT_EQ(list.UpdateNumbersOfCategories(), 1 + 3 + 2 + 1 + 0);
  EXPECT_TRUE(list.SetMissingValueReplacement(0, "0"));
  EXPECT_EQ(*list.GetVarAt(0)->GetMissingValueReplacement(), "0");
}

// Fixed fault: category counts read from a stream overflowed the int sum (found by fuzzing).
TEST(ZRVarList, CategorySumHeldAtIntLimits) {
  ZRVarList list;
  list.AddCatVar("big", "B", INT_MAX, V::kLevelNumericCategorical, kIn);
  list.AddCatVar("more", "M", Doubles{1, 2, 3}, kIn);
  EXPECT_EQ(list.UpdateNumbersOfCategories(), INT_MAX);
}

TEST(ZRVarList, CopiesAreDeep) {
  auto original = std::make_unique<ZRVarList>();
  original->AddContVar("x", "X", kResp);
  original->AddCatVar("y", "Y", Strings{"a", "b"}, kTarget);
  original->SetWeightVar("w", "W", V::kRoundNearest);
  const std::string want = Describe(*original);
  ZRVarList copied(*original);
  ZRVarList assigned;
  assigned.AddContVar("old", "Old", kIn);
  assigned = *original;
  original->GetEncoderAt(1)->Encode("c");
  original.reset();
  for (ZRVarList * l : {&copied, &assigned}) {
    EXPECT_EQ(Describe(*l), want);
    EXPECT_EQ(l->GetEncoderAt(1)->GetNumberOfCategories(), 2);
    EXPECT_EQ(l->GetEncoderAt(1)->EncodeConst(std::string("b")), 1.0);
  }
}

// Every variable and encoder kind, with labels, missing values and an interval wherever
// the encoder keeps them, so that every branch of the readers runs.
ZRVarList SampleList() {
  ZRVarList list;
  list.AddContVar("x", "X", 0, 10, kIn, true, 5);
  list.GetEncoderAt(0)->SetMissingInterval(-3, 7.5);
  list.GetEncoderAt(0)->AddDiscreteUserMissing(-99, "none");
  list.AddCatVar("n", "N", Doubles{5, 3, 7}, Strings{"five", "three"}, kTarget);
  list.GetEncoderAt(1)->SetMissingInterval(100, 200);
  list.GetEncoderAt(1)->AddDiscreteUserMissing(9, "nine");
  list.SetMissingValueReplacement(1, "5");
  list.AddCatVar("s", "S", Strings{"a", "b"}, Strings{"A"}, kResp);
  list.GetEncoderAt(2)->AddDiscreteUserMissing("?", "unknown");
  list.SetWeightVar("w", "W", V::kRoundNearest);
  list.GetEncoderAt(3)->SetMissingInterval(1000, 2000);
  list.GetEncoderAt(3)->AddDiscreteUserMissing(99, "unknown");
  return list;
}

// A read first empties the list and restores what was written; the weight index and the
// responses are not saved. Every proper prefix is refused with one line and an exception.
TEST(ZRVarListPersist, ReadsBackAndRefusesEveryTruncation) {
  ZRVarList list = SampleList();
  int count = 0;
  const std::string text = zrtest::WriteText(list, 0, &count);
  // 2, then 1 and each variable's elements (ZRContVar 15 + its encoder 9; numeric ZRCatVar
  // 14 + 15; string ZRCatVar 13 + 10; ZRWeightVar 5 + 9), then 5.
  EXPECT_EQ(count, 2 + (1 + 24) + (1 + 29) + (1 + 23) + (1 + 14) + 5);
  ZRVarList back;
  back.AddContVar("old", "Old", kTarget);
  back.SetWeightVar("v", "V", V::kRoundAsIs);
  ASSERT_TRUE(zrtest::ReadWhole(zrtest::ReadText(text, zrtest::ReaderInto(back)), count));
  EXPECT_EQ(Describe(list), "x:4 n:1 s:2 w:3 | 1 2 | 1 2 3 | 2");
  EXPECT_EQ(Describe(back), "x:4 n:1 s:2 w:3 | 1 2 | 1 2 -1 |");
  EXPECT_EQ(zrtest::WriteText(back, 0), text);  // each variable of its kind, every field back
  EXPECT_EQ(back.GetEncoderAt(1)->EncodeConst(3.0), 1.0);  // lookups rebuilt
  EXPECT_EQ(back.GetEncoderAt(2)->EncodeConst(std::string("b")), 1.0);
  EXPECT_EQ(back.GetEncoderAt(3)->EncodeConst(1.6), 2.0);  // the weight's rounding
  zrtest::ExpectTruncationsFail(text, zrtest::FreshReader<ZRVarList>(), count);
}

TEST(ZRVarListDisplay, LinesByHand) {
  ZRVarList list;
  list.SetWeightVar("w", "W", V::kRoundNearest);
  list.GetEncoderAt(0)->AddDiscreteUserMissing(99, "unknown");
  list.GetEncoderAt(0)->SetMissingInterval(3, 7.5);
  EXPECT_EQ(zrtest::Shown(list),
            "\nBegin display of ZRVarList object.\nTotal variables = 1"
            "\nNumber of Continuous Variables = 0\nNumber of Categorical Variables = 0"
            "\nVariable 0\nFrequency weight variable: name = w\nLabel = W"
            "\nVariable storage = Undefined variable storage"
            "\nZRRoundEncoder: option = Round to closest int"
            "\nDiscrete user missing values (size = 1)\n  99"
            "\n\t\tMissing Value Labels: (size = 1)\n  \"unknown\""
            "\n\t\tUser-missing interval for this encoder: \n\t\t[ 3, 7.5 ]"
            "\nEnd of display for ZRVarList object.");
}

}  // namespace
