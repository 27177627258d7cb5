// ZRWarnings: destinations, de-duplication per list in arrival order (NaN data included),
// ClearWarnings, parameter rows keyed by code, the GetParameters scratch, and the merge.
#include "zrcommon920r/common/warnings.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

namespace {

using ZRCommon_920::ZRStatus;
using ZRCommon_920::ZRWarnings;
using Param = ZRWarnings::ZRParameterValue;

ZRStatus Warning(std::int32_t code, double scale0 = 0.0) {
  ZRStatus s(code, true);
  s.SetScaleDatum(0, scale0);
  return s;
}

// A list as "code:scale0 ...".
std::string Text(const std::vector<ZRStatus> & list) {
  std::ostringstream text;
  for (const ZRStatus & s : list) text << s.GetErrorCode() << ':' << s.GetScaleDatum(0) << ' ';
  return text.str();
}

// A parameter row as "type:integer,double,string ..." with every field read, whatever the
// type ("i:7,0, d:0,2.5,").
std::string Text(const std::vector<Param> & row) {
  std::ostringstream text;
  for (const Param & p : row) {
    text << "ids"[p.GetType()] << ':' << p.ToInteger() << ',' << p.ToDouble() << ',' << p.ToString()
         << ' ';
  }
  return text.str();
}

TEST(ZRWarningsAdd, DestinationChoosesListsAndOnlyWarningsAreKept) {
  struct {
    int line;
    ZRStatus status;
    std::int32_t destination;
    std::size_t first, second;
  } const cases[] = {
      {__LINE__, Warning(1), ZRWarnings::DestFirst, 1, 0},
      {__LINE__, Warning(1), ZRWarnings::DestSecond, 0, 1},
      {__LINE__, Warning(1), ZRWarnings::DestBoth, 1, 1},
      {__LINE__, Warning(1), 3, 1, 1},  // any other value acts as both
      {__LINE__, Warning(1), INT32_MIN, 1, 1},
      {__LINE__, ZRStatus(5, false), ZRWarnings::DestBoth, 0, 0},
      {__LINE__, ZRStatus(), ZRWarnings::DestFirst, 0, 0},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    ZRWarnings w;
    w.AddWarning(c.status, static_cast<ZRWarnings::Destination>(c.destination));
    EXPECT_EQ(w.GetWarnings(true).size(), c.first);
    EXPECT_EQ(w.GetWarnings(false).size(), c.second);
  }
}

TEST(ZRWarningsAdd, EachListKeepsDistinctWarningsInOrderOfFirstArrival) {
  ZRWarnings w;
  w.AddWarning(Warning(7), ZRWarnings::DestFirst);
  w.AddWarning(Warning(8), ZRWarnings::DestSecond);
  w.AddWarning(Warning(7), ZRWarnings::DestBoth);        // new to the second list only
  w.AddWarning(Warning(8), ZRWarnings::DestBoth);        // new to the first list only
  w.AddWarning(Warning(7, -0.0), ZRWarnings::DestBoth);  // equal to Warning(7)
  w.AddWarning(Warning(7, 2.0), ZRWarnings::DestFirst);  // same code, other data: kept
  w.AddWarning(Warning(9, NAN), ZRWarnings::DestFirst);  // never equal: kept each time
  w.AddWarning(Warning(9, NAN), ZRWarnings::DestFirst);
  w.AddWarnings({ZRStatus(4, false), Warning(8), Warning(6)});  // to the first list
  ZRStatus eight = Warning(8);
  eight.SetDiscreteDatum(2, 1);  // equality looks past the first slots
  w.AddWarning(eight, ZRWarnings::DestSecond);
  EXPECT_EQ(Text(w.GetWarnings(true)), "7:0 8:0 7:2 9:nan 9:nan 6:0 ");
  EXPECT_EQ(Text(w.GetWarnings(false)), "8:0 7:0 8:0 ");

  w.AddParameter(Warning(8), 1);
  w.ClearWarnings();  // empties the first list only
  EXPECT_EQ(Text(w.GetWarnings(true)), "");
  EXPECT_EQ(Text(w.GetWarnings(false)), "8:0 7:0 8:0 ");
  EXPECT_TRUE(w.HasParameter(Warning(8)));
}

TEST(ZRWarningsParameters, RowsAreKeyedByCodeAloneAndKeepEveryValueInOrder) {
  ZRWarnings w;
  ZRStatus error(901, false);
  error.SetDiscreteDatum(2, 5);
  EXPECT_TRUE(w.AddParameter(error, 7));  // never added as a warning: still keyed by 901
  EXPECT_TRUE(w.AddParameter(Warning(902), std::string("x")));
  EXPECT_TRUE(w.AddParameter(Warning(901, 3.0), 2.5));
  EXPECT_TRUE(w.AddParameter(ZRStatus(901, true), 7));  // duplicates stay
  EXPECT_TRUE(w.AddParameter(Warning(901), "tail"));
  // To... reads the stored field as it is: no conversion between types.
  EXPECT_EQ(Text(w.GetParameters(Warning(901))), "i:7,0, d:0,2.5, i:7,0, s:0,0,tail ");
  EXPECT_EQ(Text(w.GetParameters(Warning(902))), "s:0,0,x ");
  EXPECT_EQ(Text(std::vector<Param>(1)), "i:0,0, ");  // a default value

  EXPECT_FALSE(w.HasParameter(Warning(903)));
  EXPECT_TRUE(w.GetParameters(Warning(903)).empty());
  EXPECT_FALSE(w.HasParameter(Warning(903)));  // the lookup made no row
}

TEST(ZRWarningsParameters, GetParametersReturnsOneScratchThatTheNextCallOverwrites) {
  ZRWarnings w;
  w.AddParameter(Warning(1), 10);
  w.AddParameter(Warning(2), 20);
  w.AddParameter(Warning(2), 21);
  const std::vector<Param> & first = w.GetParameters(Warning(1));
  ASSERT_EQ(first.size(), 1u);
  EXPECT_EQ(&w.GetParameters(Warning(2)), &first);
  EXPECT_EQ(Text(first), "i:20,0, i:21,0, ");
  w.GetParameters(Warning(3));
  EXPECT_TRUE(first.empty());
}

TEST(ZRWarningsMerge, ListsMergeDistinctAndThisObjectsParameterRowWins) {
  ZRWarnings mine, other;
  mine.AddWarning(Warning(1), ZRWarnings::DestBoth);
  mine.AddParameter(Warning(50), 1);
  mine.AddParameter(Warning(20), 2);
  other.AddWarning(Warning(2), ZRWarnings::DestFirst);
  other.AddWarning(Warning(1), ZRWarnings::DestBoth);
  other.AddWarning(Warning(3), ZRWarnings::DestSecond);
  other.AddParameter(Warning(40), 4);  // other's rows 0, 2 become rows 3, 2 here
  other.AddParameter(Warning(20), 99);
  other.AddParameter(Warning(30), 3);
  mine.AddWarnings(other);
  EXPECT_EQ(Text(mine.GetWarnings(true)), "1:0 2:0 ");
  EXPECT_EQ(Text(mine.GetWarnings(false)), "1:0 3:0 ");
  EXPECT_EQ(Text(mine.GetParameters(Warning(20))), "i:2,0, ");  // other's 99 is dropped
  EXPECT_EQ(Text(mine.GetParameters(Warning(30))), "i:3,0, ");
  EXPECT_EQ(Text(mine.GetParameters(Warning(40))), "i:4,0, ");
  EXPECT_EQ(Text(mine.GetParameters(Warning(50))), "i:1,0, ");

  mine.AddParameter(Warning(40), 5);  // a merged row is this object's own
  EXPECT_EQ(Text(other.GetParameters(Warning(40))), "i:4,0, ");
  mine.AddWarnings(mine);  // merging with itself changes nothing
  EXPECT_EQ(Text(mine.GetWarnings(true)), "1:0 2:0 ");
  EXPECT_EQ(Text(mine.GetParameters(Warning(40))), "i:4,0, i:5,0, ");
}

TEST(ZRWarningsCopy, CopiesAreIndependentAndSelfAssignmentKeepsEverything) {
  ZRWarnings w;
  w.AddWarning(Warning(1), ZRWarnings::DestSecond);
  w.AddParameter(Warning(1), 1);
  ZRWarnings copy(w);
  copy.AddParameter(Warning(1), 2);
  ZRWarnings & alias = w;
  w = alias;
  w = std::move(alias);
  EXPECT_EQ(Text(w.GetWarnings(false)), "1:0 ");
  EXPECT_EQ(Text(w.GetParameters(Warning(1))), "i:1,0, ");
  w = copy;
  EXPECT_EQ(Text(w.GetParameters(Warning(1))), "i:1,0, i:2,0, ");
}

}  // namespace
