// ZRBitSet: counts against plain loops across word boundaries, refused updates that must
// change nothing, aliasing in DoAND and DoOR, ordering and the display text.
#include "zrcommon920r/math/bitset.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "support/capture.h"

namespace {

using ZRMath_920::ZRBitSet;

const std::vector<int> kGoodIndices{0, 3}, kBadIndices{0, 4, 3};

ZRBitSet Bits(const std::string & s) {
  std::vector<bool> b;
  for (char c : s) b.push_back(c == '1');
  return ZRBitSet(b);
}

TEST(ZRBitSetRanges, CountsMatchPlainLoopsAcrossWords) {
  std::vector<bool> bits(150);  // past two 64-bit words, irregular pattern
  for (int i = 0; i < 150; ++i) bits[i] = (i * i + 3 * i) % 7 < 3;
  ZRBitSet set(bits);
  for (int first : {0, 1, 63, 64, 65, 127, 149}) {
    for (int last : {first, first + 1, 63, 64, 128, 149}) {
      if (last < first || last > 149) continue;
      SCOPED_TRACE(std::to_string(first) + ".." + std::to_string(last));
      int want = 0;
      for (int i = first; i <= last; ++i) want += bits[i];
      EXPECT_EQ(set.InRange(first, last), want);
      EXPECT_EQ(set.InRangeS(first, last - first + 1), want);
      EXPECT_EQ(set.GetSubset(first, last),
                ZRBitSet({bits.begin() + first, bits.begin() + last + 1}));
    }
  }
  set.Negate();
  ASSERT_TRUE(set.Duplicate(2));
  ASSERT_EQ(set.Size(), 450);
  for (int i = 0; i < 450; ++i) ASSERT_EQ(set.IsIn(i), !bits[i % 150]) << i;
}

// Answers out of range, IsNewFalse (a bit past other's end reads as false) and the order:
// lexicographic, false first, the bits deciding before the sizes, a prefix the lesser.
TEST(ZRBitSetRanges, QueriesOrderAndTheirAnswersOutOfRange) {
  const ZRBitSet s = Bits("10110"), o = Bits("10100"), one = Bits("1");
  struct {
    int line, got, want;
  } const cases[] = {
      {__LINE__, s.InRange(2, 1), -1},           {__LINE__, s.InRange(-1, 2), -1},
      {__LINE__, s.InRangeS(2, 0), 0},           {__LINE__, s.InRangeS(5, 0), 0},
      {__LINE__, s.InRangeS(6, 0), -1},          {__LINE__, s.InRangeS(5, 1), -1},
      {__LINE__, s.InRangeS(1, -1), -1},         {__LINE__, s.InRangeS(1, INT_MAX), -1},
      {__LINE__, s.GetSubset(-3, 9).InSet(), 3}, {__LINE__, s.GetSubset(3, 2).Size(), 0},
      {__LINE__, s.IsNewFalse(s, 5), false},     {__LINE__, s.IsNewFalse(o, 5), true},
      {__LINE__, s.IsNewFalse(o, 3), false},     {__LINE__, s.IsNewFalse(one, 9), true},
      {__LINE__, s.IsNewFalse(o, -1), false},    {__LINE__, ZRBitSet(-1).Size(), 0},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(c.got, c.want);
  }
  EXPECT_TRUE(Bits("011") < Bits("10") && Bits("01") < Bits("010"));
  EXPECT_FALSE(Bits("010") < Bits("01") || Bits("101") < Bits("101") || Bits("10") == Bits("100"));
}

// Updates of "0110": refused ones change nothing. DoAND and DoOR keep the shorter length
// (a true bit in the longer operand's tail is dropped), overwrite every bit they keep and
// allow this set as an operand.
TEST(ZRBitSetUpdates, WritesRefusalsAndCombinations) {
  struct {
    int line;
    bool (*op)(ZRBitSet &);
    bool ok;
    const char * want;
  } const cases[] = {
      {__LINE__, [](ZRBitSet & s) { return s.Set(4, true); }, false, "0110"},
      {__LINE__, [](ZRBitSet & s) { return s.SetRange(0, 1, false); }, true, "0010"},
      {__LINE__, [](ZRBitSet & s) { return s.SetRange(2, 1, false); }, false, "0110"},
      {__LINE__, [](ZRBitSet & s) { return s.SetRange(0, 4, true); }, false, "0110"},
      {__LINE__, [](ZRBitSet & s) { return s.SetSubset(kGoodIndices, true); }, true, "1111"},
      {__LINE__, [](ZRBitSet & s) { return s.SetSubset(kBadIndices, true); }, false, "0110"},
      {__LINE__, [](ZRBitSet & s) { return s.Duplicate(-1); }, false, "0110"},
      {__LINE__, [](ZRBitSet & s) { return s.Duplicate(INT_MAX); }, false, "0110"},
      {__LINE__, [](ZRBitSet & s) { return s.Append(true) == 5; }, true, "01101"},
      {__LINE__, [](ZRBitSet & s) { return (s.Resize(5, true), true); }, true, "11111"},
      {__LINE__, [](ZRBitSet & s) { return (s.DoOR(Bits("100"), Bits("10001")), true); }, true,
       "100"},
      {__LINE__, [](ZRBitSet & s) { return (s.DoAND(Bits("10101"), Bits("110")), true); }, true,
       "100"},
      {__LINE__, [](ZRBitSet & s) { return (s.DoAND(s, Bits("110")), true); }, true, "010"},
      {__LINE__, [](ZRBitSet & s) { return (s.DoOR(Bits("110"), s), true); }, true, "111"},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ZRBitSet s = Bits("0110");
    EXPECT_EQ(c.op(s), c.ok);
    EXPECT_EQ(s, Bits(c.want));
  }
}

TEST(ZRBitSetDisplay, ExactText) {
  zrtest::DisplayCapture cap;
  Bits("101").Display();
  EXPECT_EQ(cap.Text(),
            "\nZRBitSet display start\nfbVec (size = 3)\n  t f t\nZRBitSet display end");
}

}  // namespace
