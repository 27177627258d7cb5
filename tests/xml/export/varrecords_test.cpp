// The variate data records: what their getters make (defaults, unset kinds, record infos
// kept out) and their Display texts, written out by hand.
#include "zrcommon920r/xml/export/varrecords.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "support/markup.h"
#include "support/textio.h"
#include "zrcommon920r/common/value.h"

namespace {

using namespace ZRXML_920;
using zrtest::Shown;

const double kMiss = ZRCommon_920::Value::SYSMISVALUE;

// The markup of made without layout, "(null)" for a null pointer; made is deleted.
constexpr auto & Text = zrtest::TakeFlatMarkup;

const std::string kUnsetCoordinates =
    "\n Coordinates display start: \nfeature = \nfield = \nstatistic = \n values  = Error"
    "\n Coordinates display end. ";

TEST(ZRVariateDataElements, DefaultRecordGivesBareElements) {
  const ZRVariateData data;
  EXPECT_EQ(Text(data.GetUnivariateDataElem()), "<UnivariateData/>");
  EXPECT_EQ(Text(data.GetBivariateDataElem()), "<BivariateData/>");
  EXPECT_EQ(Text(data.GetMultiVariateDataElem()), "<MultivariateData/>");
}

TEST(ZRVariateDataElements, RecordInfosAndUnsetCoordinatesNeverReachTheGetters) {
  ZRVariateData data;
  data.fDescription = "d";
  data.fRecordInfos = {ZRXMLRecordInfo("r", "R", std::vector<std::vector<int>>{{1}})};
  data.fCoordinates = {ZRXMLCoordinates(), ZRXMLCoordinates()};
  data.fGroups = {ZRXMLCoordinatesGroup("", {ZRXMLCoordinates()})};
  EXPECT_EQ(Text(data.GetUnivariateDataElem()), "<UnivariateData description=\"d\"/>");
  EXPECT_EQ(Text(data.GetBivariateDataElem()), "<BivariateData description=\"d\"/>");
  EXPECT_EQ(Text(data.GetMultiVariateDataElem()),
            "<MultivariateData description=\"d\"><CoordinatesGroup/></MultivariateData>");
  EXPECT_EQ(Text(ZRXMLCoordinates().GetCoordinates()), "(null)");
}

TEST(ZRXMLCoordinatesDisplay, ValuesOfTheKindInUseOrError) {
  ZRXMLCoordinates unknown("x", "", "", std::vector<int>{1});
  unknown.fValueKind = 5;
  struct {
    int line;
    ZRXMLCoordinates record;
    std::string want;
  } const cases[] = {
      {__LINE__, ZRXMLCoordinates("x", "age", "", std::vector<int>{1, 2}),
       "\n Coordinates display start: \nfeature = x\nfield = age\nstatistic = "
       "\n values  (size = 2)\n  1 2\n Coordinates display end. "},
      {__LINE__, ZRXMLCoordinates("y", "", "mean", std::vector<double>{0.5, kMiss}),
       "\n Coordinates display start: \nfeature = y\nfield = \nstatistic = mean"
       "\n values  (size = 2)\n  0.5 miss\n Coordinates display end. "},
      {__LINE__, ZRXMLCoordinates("z", "", "", std::vector<std::string>{"a b"}),
       "\n Coordinates display start: \nfeature = z\nfield = \nstatistic = "
       "\n values  (size = 1)\n  \"a b\"\n Coordinates display end. "},
      {__LINE__, ZRXMLCoordinates(), kUnsetCoordinates},
      {__LINE__, unknown,
       "\n Coordinates display start: \nfeature = x\nfield = \nstatistic = \n values  = Error"
       "\n Coordinates display end. "},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(Shown(c.record), c.want);
  }
}

TEST(ZRXMLCoordinatesGroupDisplay, DescriptionThenEachRecord) {
  EXPECT_EQ(Shown(ZRXMLCoordinatesGroup("g", {ZRXMLCoordinates()})),
            "\n CoordinatesGroup display start: \n Description  = g" + kUnsetCoordinates +
                "\n CoordinatesGroup display end. ");
}

TEST(ZRXMLRecordInfoDisplay, LabelLineSpelledAsItStands) {
  EXPECT_EQ(Shown(ZRXMLRecordInfo("r1", "first", std::vector<std::vector<int>>{{1}, {2, 3}})),
            "\n RecordInfo display start: \n RecordID  = r1\n RecordLable  = first"
            "\nvalue (size = 1)\n  1\nvalue (size = 2)\n  2 3\n RecordInfo display end. ");
  EXPECT_EQ(Shown(ZRXMLRecordInfo("r2", "", std::vector<std::vector<std::string>>{{"s"}})),
            "\n RecordInfo display start: \n RecordID  = r2\n RecordLable  = "
            "\nvalue (size = 1)\n  \"s\"\n RecordInfo display end. ");
  EXPECT_EQ(Shown(ZRXMLRecordInfo()),
            "\n RecordInfo display start: \n RecordID  = \n RecordLable  = "
            "\n RecordInfo display end. ");
}

TEST(ZRVariateDataDisplay, SectionsWithMissingFrequenciesLeftOut) {
  ZRVariateData data;
  data.fDescription = "d";
  data.fCounts = {ZRXMLCounts(5, kMiss, 1, 9), ZRXMLCounts(kMiss, 2, kMiss, 0)};
  data.fStatNames = {"mean"};
  data.fStringStats = false;
  data.fStatStrings = {"not shown"};
  data.fStatDoubles = {2.5};
  data.fCoordinates = {ZRXMLCoordinates()};
  data.fGroups = {ZRXMLCoordinatesGroup("g", {})};
  data.fRecordInfos = {ZRXMLRecordInfo()};
  EXPECT_EQ(Shown(data),
            "\n ZRVariateData display start: \n Description  = d\n Counts: "
            "\n fTotalFreq  = 5\n fInvalidFreq  = 1\n fMissingFreq  = 2"
            "\n Statistics: \n Names  (size = 1)\n  \"mean\"\n Values  (size = 1)\n  2.5"
            "\n Coordinates: " +
                kUnsetCoordinates +
                "\n CoordinatesGroup display start: \n Description  = g"
                "\n CoordinatesGroup display end. "
                "\n RecordInfo: \n RecordInfo display start: \n RecordID  = \n RecordLable  = "
                "\n RecordInfo display end. \n ZRVariateData display end. ");

  data.fStringStats = true;
  data.fCounts.clear();
  data.fCoordinates.clear();
  data.fGroups.clear();
  data.fRecordInfos.clear();
  EXPECT_EQ(Shown(data),
            "\n ZRVariateData display start: \n Description  = d\n Counts: \n Statistics: "
            "\n Names  (size = 1)\n  \"mean\"\n Values  (size = 1)\n  \"not shown\""
            "\n Coordinates: \n RecordInfo: \n ZRVariateData display end. ");
}

}  // namespace
