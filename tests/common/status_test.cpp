// ZRStatus kinds, field-by-field equality with IEEE scale data, harmless out-of-range data
// slots; the shapes of ZRException and IOException that handlers rely on.
#include "zrcommon920r/common/status.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <exception>
#include <functional>
#include <type_traits>

namespace {

using ZRCommon_920::ZRException;
using ZRCommon_920::ZRStatus;

TEST(ZRStatusKind, FollowsTheSignOfTheLevelNotTheCode) {
  struct {
    int line;
    ZRStatus s;
    bool ok, error, warning;
  } const cases[] = {
      {__LINE__, ZRStatus(), true, false, false},
      {__LINE__, ZRStatus(0, true), false, false, true},  // code 0 is not OK by itself
      {__LINE__, ZRStatus(0, false), false, true, false},
      {__LINE__, ZRStatus(-7, true), false, false, true},
      {__LINE__, ZRStatus(INT32_MIN, false), false, true, false},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(c.s.IsOK(), c.ok);
    EXPECT_EQ(c.s.IsError(), c.error);
    EXPECT_EQ(c.s.IsWarning(), c.warning);
  }
}

// A status with data 10, 11, 12 and 0.0, 0.5, 1.0.
ZRStatus WithData(std::int32_t code, bool isWarning) {
  ZRStatus s(code, isWarning);
  for (unsigned i = 0; i < 3; ++i) {
    s.SetDiscreteDatum(i, static_cast<std::int32_t>(10 + i));
    s.SetScaleDatum(i, 0.5 * i);
  }
  return s;
}

TEST(ZRStatusEquality, EveryFieldCountsAndScaleDataCompareAsDoubles) {
  const ZRStatus base = WithData(901, true);
  using Edit = std::function<void(ZRStatus &)>;
  struct {
    int line;
    Edit edit;
    bool equal;
  } const cases[] = {
      {__LINE__, [](ZRStatus &) {}, true},
      {__LINE__, [](ZRStatus & s) { s = WithData(902, true); }, false},
      {__LINE__, [](ZRStatus & s) { s = WithData(901, false); }, false},
      {__LINE__, [](ZRStatus & s) { s.SetDiscreteDatum(0, 0); }, false},
      {__LINE__, [](ZRStatus & s) { s.SetDiscreteDatum(2, -12); }, false},
      {__LINE__, [](ZRStatus & s) { s.SetScaleDatum(1, std::nextafter(0.5, 1.0)); }, false},
      {__LINE__, [](ZRStatus & s) { s.SetScaleDatum(2, 1.0 + 1e-15); }, false},
      {__LINE__, [](ZRStatus & s) { s.SetScaleDatum(0, -0.0); }, true},  // +0.0 == -0.0
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ZRStatus edited = base;
    c.edit(edited);
    EXPECT_EQ(edited == base, c.equal);
    EXPECT_EQ(base == edited, c.equal);
  }
  for (unsigned i = 0; i < 3; ++i) {  // a NaN in any slot: unequal even to itself
    SCOPED_TRACE(i);
    ZRStatus s = base;
    s.SetScaleDatum(i, NAN);
    EXPECT_FALSE(s == s);
  }
}

TEST(ZRStatusData, IndexPastTheLastSlotReadsZeroAndWritesNothing) {
  ZRStatus s(3, false);
  for (unsigned i = 0; i < 3; ++i) {
    s.SetDiscreteDatum(i, -1);
    s.SetScaleDatum(i, -1.5);
  }
  const ZRStatus before = s;
  for (unsigned index : {3u, 4u, 1000u, UINT_MAX}) {
    SCOPED_TRACE(index);
    s.SetDiscreteDatum(index, 99);
    s.SetScaleDatum(index, 99.0);
    EXPECT_EQ(s.GetDiscreteDatum(index), 0);
    EXPECT_EQ(s.GetScaleDatum(index), 0.0);
    EXPECT_TRUE(s == before);
  }
}

// Handlers catch these by type (codes and messages are checked where Value throws): neither
// may become a std::exception, and a ZRException copied with new is deleted by its own type.
static_assert(!std::is_base_of<std::exception, ZRException>::value, "");
static_assert(std::has_virtual_destructor<ZRException>::value, "");
static_assert(std::is_empty<ZRXML_920::IOException>::value, "");

}  // namespace
