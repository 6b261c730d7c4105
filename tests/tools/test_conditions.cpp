// Conditions of a run: the sample files load, media are checked against the
// table, and the table is empty again afterwards.
#include <gtest/gtest.h>

#include "conditions.h"
#include "failure.h"
#include "test_support.h"
#include "tool_runner.h"

namespace {

using rvtool::ConditionTable;
using tooltest::Sample;

TEST(ToolConditions, SampleConditionFileHoldsItsMedia) {
  {
    ConditionTable table;
    table.LoadXml(Sample("sign-conditions.xml"), 0);
    EXPECT_EQ(table.MediaNames(), (std::vector<std::string>{"Vinyl", "Sandblast mask"}));
    EXPECT_EQ(table.Passes("Vinyl"), 1);
    EXPECT_EQ(table.Passes("Sandblast mask"), 2);
    EXPECT_EQ(table.Passes("Paper"), 0);
    CondPair pair{};
    ASSERT_EQ(RvGetCutConditionByKeyAtRepeat("Sandblast mask", 2, &pair), 0u);
    EXPECT_STREQ(pair.record->Tool, "2");
    EXPECT_EQ(pair.record->Press, 140);
    EXPECT_DOUBLE_EQ(pair.record->Offset, 0.3);
  }
  EXPECT_EQ(RvGetRepeatCount("Vinyl"), 0);  // the table went with its owner
}

TEST(ToolConditions, SampleCsvLoadsThroughATemporaryConditionFile) {
  ConditionTable table;
  table.LoadCsv(Sample("media.csv"), 0);
  EXPECT_EQ(table.MediaNames(), (std::vector<std::string>{"Vinyl", "Reflective film", "Paper"}));
  CondPair pair{};
  ASSERT_EQ(RvGetCutConditionByKeyAtRepeat("Paper", 1, &pair), 0u);
  EXPECT_STREQ(pair.record->Tool, "3");
  EXPECT_EQ(pair.record->Speed, 40);
}

TEST(ToolConditions, MediaNotInTheTableIsRefusedWithTheNamesItHolds) {
  ConditionTable table;
  table.LoadXml(Sample("sign-conditions.xml"), 0);
  EXPECT_NO_THROW(table.CheckMedia({"Vinyl", "Sandblast mask"}, "c.xml"));
  try {
    table.CheckMedia({"Vinyl", "Paper"}, "c.xml");
    FAIL() << "no failure";
  } catch (const rvtool::Failure& failure) {
    EXPECT_STREQ(failure.what(),
                 "media 'Paper' isn't in the conditions of 'c.xml' (they hold 'Vinyl', 'Sandblast mask')");
    EXPECT_EQ(failure.status(), rvtool::kUsageStatus);
  }
}

TEST(ToolConditions, UnreadableFilesFailWithTheLibrarysCode) {
  rvtest::TempDir dir;
  ConditionTable table;
  try {
    table.LoadXml(dir.file("missing.xml"), 0);
    FAIL() << "no failure";
  } catch (const rvtool::Failure& failure) {
    EXPECT_EQ(failure.status(), 13);
    EXPECT_NE(std::string(failure.what()).find("the XML file can't be loaded (code 13)"), std::string::npos)
        << failure.what();
  }
  // The file of another machine family has the wrong root.
  try {
    table.LoadXml(Sample("sign-conditions.xml"), 1);
    FAIL() << "no failure";
  } catch (const rvtool::Failure& failure) {
    EXPECT_EQ(failure.status(), 15);
  }
  try {
    table.LoadCsv(dir.file("missing.csv"), 0);
    FAIL() << "no failure";
  } catch (const rvtool::Failure& failure) {
    EXPECT_EQ(failure.status(), 1);
    EXPECT_NE(std::string(failure.what()).find("the CSV file can't be opened (code 0x01001001)"),
              std::string::npos)
        << failure.what();
  }
}

}  // namespace
