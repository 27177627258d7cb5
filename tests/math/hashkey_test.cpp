// ZRHashKey: hand-computed hash codes (wrapping, prime cycle, offset), copies, ordering.
// ZRPackedInt: the unit split at the element bound, and pack / unpack of every sequence
// against a Horner-scheme mixed-radix value computed here.
#include "zrcommon920r/math/hashkey.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <initializer_list>
#include <new>
#include <utility>
#include <vector>

#include "support/capture.h"

namespace {

using ZRMath_920::ZRHashKey;
using ZRMath_920::ZRPackedInt;
using Ints = std::vector<int>;
constexpr int kCeiling = 9377657;  // the element bound at offset 0, 1663 * 5639

struct OffsetScope {  // sets the process-wide element offset for one scope
  explicit OffsetScope(int offset) { ZRHashKey::SetElementOffset(offset); }
  ~OffsetScope() { ZRHashKey::SetElementOffset(0); }
};

// A key of the given elements, or of `length` zeros but for a 1 at `at`; code up to date.
ZRHashKey Key(std::initializer_list<int> elems, int length = 0, int at = -1) {
  ZRHashKey k(length > 0 ? length : static_cast<int>(elems.size()));
  int i = 0;
  for (int e : elems) k[i++] = e;
  if (at >= 0) k[at] = 1;
  k.UpdateHashCode();
  return k;
}

TEST(ZRHashKeyCode, HandComputedCodesAndTheBound) {
  struct {
    int line, offset;
    ZRHashKey key;
    int want;
  } const cases[] = {
      {__LINE__, 0, Key({1, 1}), 3 ^ 5},
      {__LINE__, 10, Key({1, 2}), (3 * 11) ^ (5 * 12)},
      {__LINE__, 7, Key({}), 0},
      {__LINE__, 0, Key({}, 49, 48), 229},  // the last prime
      {__LINE__, 0, Key({}, 51, 49), 3},    // the primes start again after 49 positions
      {__LINE__, 0, Key({}, 51, 50), 5},
      {__LINE__, 0, Key({INT_MAX}), 0x7FFFFFFD},  // 3 * (2^31 - 1) mod 2^32
      {__LINE__, 0, Key({-1}), -3},               // 3 * (2^32 - 1) mod 2^32
      {__LINE__, 1, Key({INT_MAX}), INT_MIN},     // 3 * 2^31 mod 2^32
      {__LINE__, INT_MIN, Key({INT_MIN}), 0},     // 2^31 + 2^31 wraps to 0
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    OffsetScope scope(c.offset);
    ZRHashKey k = c.key;  // a copy keeps the stored code: recompute under this offset
    k.UpdateHashCode();
    EXPECT_EQ(k.GetHashcode(), c.want);
  }
  // The element bound follows the offset and saturates at INT_MAX.
  for (const auto & [offset, want] :
       {std::pair{-100, 9377757}, std::pair{INT_MAX, -2138105990}, std::pair{-2138105990, INT_MAX},
        std::pair{-2138105991, INT_MAX}, std::pair{INT_MIN, INT_MAX}}) {
    OffsetScope scope(offset);
    EXPECT_EQ(ZRHashKey::GetElementUpperBound(), want) << offset;
  }
}

TEST(ZRHashKeyCode, StoredCodeDecidesFirstAndIsCopiedNotRecomputed) {
  ZRHashKey a = Key({1, 2, 3});
  a[0] = 9;                                                         // the code of {1, 2, 3} stays
  EXPECT_FALSE(a == Key({9, 2, 3}) || Key({5, 0}) == Key({0, 3}));  // both codes 15
  EXPECT_TRUE(ZRHashKey() == Key({}));
  EXPECT_THROW(ZRHashKey(-1), std::bad_array_new_length);
  for (int length : {0, 3, 5}) {  // shorter, equal and longer targets; ASan checks frees
    SCOPED_TRACE(length);
    ZRHashKey b(a), c(length);
    c = b;
    b[1] = 8;  // deep copies
    const ZRHashKey & self = c;
    c = self;
    EXPECT_TRUE(c.GetHashcode() == (3 ^ 10 ^ 21) && c == a);
    c.UpdateHashCode();
    EXPECT_TRUE(c == Key({9, 2, 3}));
    c = ZRHashKey();
    EXPECT_EQ(ZRHashKey(c).GetLength(), 0);
  }
}

TEST(ZRHashKeyOrder, LengthFirstThenElements) {
  struct {
    int line;
    ZRHashKey a, b;
    bool less;
    int mismatch;
  } const cases[] = {{__LINE__, Key({9, 9}), Key({0, 0, 0}), true, 0},
                     {__LINE__, Key({0, 0, 0}), Key({0, 0}), false, 2},
                     {__LINE__, Key({1, 2}), Key({1, 3}), true, 1},
                     {__LINE__, Key({-4, 6}), Key({-4, 6}), false, 2},
                     {__LINE__, ZRHashKey(), Key({}), false, 0}};
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(c.a < c.b, c.less);
    EXPECT_EQ(c.a.Mismatch(c.b), c.mismatch);
  }
}

// The packed value of each unit of `groups` consecutive positions, by Horner's scheme from
// the unit's last (slowest) position.
Ints MixedRadix(const Ints & seq, int lower, const Ints & nDiff, const Ints & groups) {
  Ints packed;
  int end = 0;
  for (int size : groups) {
    long long v = 0;
    for (int j = (end += size) - 1; j >= end - size; --j) v = v * nDiff[j] + (seq[j] - lower);
    packed.push_back(static_cast<int>(v));
  }
  return packed;
}

TEST(ZRPackedIntPack, UnitSplitAndRoundTripOfEverySequence) {
  struct {
    int line, offset;
    Ints nDiff, groups;  // groups: the number of positions in each unit
  } const cases[] = {
      {__LINE__, 0, {2, 3, 4}, {3}},
      {__LINE__, kCeiling - 13, {3, 1, 4, 2, 5}, {3, 2}},
      {__LINE__, kCeiling - 11, {1, 2, 1, 3, 2, 1}, {4, 2}},
      {__LINE__, 0, {10000, 10000}, {1, 1}},
      {__LINE__, 0, {1663, 5640}, {1, 1}},
      {__LINE__, 0, {1, kCeiling, 1}, {3}},  // log(bound) + 0 is not above log(bound)
      {__LINE__, 0, {kCeiling + 1, 2}, {1, 1}},
      {__LINE__, kCeiling - 99999999, {10000, 10000}, {1, 1}},  // bound 10^8 - 1
      {__LINE__, kCeiling - 100000001, {10000, 10000}, {2}},    // bound 10^8 + 1
      {__LINE__, kCeiling, {1, 2, 3}, {1, 1, 1}},               // bound 0
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    OffsetScope scope(c.offset);
    const int lower = c.line % 2 ? -3 : 7;  // varies with the row
    const ZRPackedInt p(static_cast<int>(c.nDiff.size()), lower, c.nDiff);
    Ints seq(c.nDiff.size(), lower), packed, back;
    for (bool more = true; more;) {  // all sequences, first position fastest; else corners
      ASSERT_TRUE(p.Pack(seq, packed, true) && p.Unpack(back, packed));
      ASSERT_EQ(packed, MixedRadix(seq, lower, c.nDiff, c.groups));
      ASSERT_EQ(back, seq);
      more = false;
      for (std::size_t i = 0; i < seq.size() && !more; ++i) {
        const int top = lower + c.nDiff[i] - 1;
        seq[i] = c.nDiff[i] > 10 && seq[i] == lower ? top : seq[i] + 1;
        more = seq[i] <= top;
        if (!more) seq[i] = lower;
      }
    }
  }
}

TEST(ZRPackedIntPack, ProductEqualToTheBoundStaysInOneUnit) {
  // 1663 * 5639 == 9377657, and the correctly rounded logs of 1663 and 5639 add up to
  // exactly the correctly rounded log of 9377657 (checked with mpmath at 50 digits).
  if (std::log(1663.0) + std::log(5639.0) != std::log(static_cast<double>(kCeiling))) {
    GTEST_SKIP() << "this libm's log is not correctly rounded at these points";
  }
  Ints packed;
  ASSERT_TRUE(ZRPackedInt(2, 0, {1663, 5639}).Pack({1662, 5638}, packed, true));
  EXPECT_EQ(packed, Ints{kCeiling - 1});
}

TEST(ZRPackedIntPack, RefusalsLeaveOutputsUntouched) {
  ZRPackedInt p(1, 0, {4});
  EXPECT_FALSE(p.SetForSequence(3, 0, {2, 0, 4}) || p.SetForSequence(0, 0, {2, 0, 4}) ||
               p.SetForSequence(-1, 0, {2, 0, 4}) || p.SetForSequence(4, 0, {2, 3, 4}));
  EXPECT_TRUE(p.GetSeqSize() == 0 && p.GetNDiffVal(0) == -1);
  ASSERT_TRUE(p.SetForSequence(3, 1, {2, 3, 4, 0}));  // entries past the sequence unused
  Ints packed{-7, -7}, seq{0, 0, 0, 42};
  // 4 == lower bound + 3 values; 0 is below it; a short sequence; no units to unpack.
  EXPECT_FALSE(p.Pack({2, 4, 4}, packed, true) || p.Pack({0, 1, 1}, packed, true) ||
               p.Pack({1, 1}, packed, false) || p.Unpack(seq, {}));
  EXPECT_EQ(packed, (Ints{-7, -7}));
  ASSERT_TRUE(p.Pack({2, 3, 4}, packed, true) && p.Unpack(seq, packed));
  EXPECT_EQ(packed, Ints{23});          // 1 + 2 * 2 + 3 * 6
  EXPECT_EQ(seq, (Ints{2, 3, 4, 42}));  // a longer seq keeps its tail
  // Unchecked packing and unpacking of values Pack could not make: no overflow.
  EXPECT_TRUE(p.Pack({INT_MIN, INT_MAX, -5}, packed, false) && p.Unpack(seq, Ints{INT_MIN}) &&
              ZRPackedInt(1, INT_MAX - 1, {2}).Unpack(seq, Ints{INT_MAX}));
}

TEST(ZRHashKeyDisplay, KeyAndPackingExactText) {
  zrtest::DisplayCapture cap;
  Key({1, -2}).Display();
  ZRPackedInt(3, 1, {2, 3, 4}).Display();
  EXPECT_EQ(cap.Text(),
            "\n\t Key:   1  -2\nZRPackedInt display start\nThe sequence size = 3"
            "\nThe lower bound = 1\nThe vector of numbers of different values (size = 3)\n  2 3 4"
            "\nThe number of packed storage units = 1"
            "\nThe vector of packed storage unit indices (size = 3)\n  0 0 0"
            "\nThe vector of products (size = 3)\n  2 6 24\nZRPackedInt display end");
}

}  // namespace
