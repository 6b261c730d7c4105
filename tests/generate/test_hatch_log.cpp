// The order log: its record, and the two files taking turns at 100000 bytes.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "generate/hatch_log.h"
#include "generate/hatch_order.h"
#include "hatch_test_util.h"
#include "test_support.h"

using hatchtest::Box;
using hatchtest::Line;
using hatchtest::Work;

namespace {

/// A run over one line in one region, logging into `folder`.
rv::HatchWork OneLineWork(const std::string& folder) {
  rv::HatchWork work = Work(Box(0, 0, 10, 10));
  std::strncpy(work.info.logFolder, folder.c_str(), sizeof work.info.logFolder - 1);
  work.regionBoxes = {Box(0, 0, 10, 10)};
  rv::SweepPolyline(work, {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}}, 0, Box(0, 0, 10, 10));
  work.lines = {Line(0, 5, 10)};
  return work;
}

}  // namespace

TEST(HatchLog, TheLastRowOfTheTableThatAppliesChoosesTheFile) {
  struct Case {
    long a, b;
    int file;
    bool deleteOther;
  } cases[] = {
      {0, 0, 2, false},            // both empty: "a is 0, b below the limit" is the later row
      {500, 0, 1, false},          // a below the limit, b empty
      {0, 500, 2, false},          // a empty, b below the limit
      {500, 700, 1, false},        // no row applies
      {100000, 50000, 2, false},   // a full, b at most half
      {50000, 100000, 1, false},   // a at most half, b full
      {100000, 60000, 2, true},    // a full, b over half: file 1 goes
      {60000, 100000, 1, true},    // a over half, b full: file 2 goes
      {100000, 100000, 1, true},   // both full: the last row
  };
  for (const Case& c : cases) {
    const rv::HatchLogChoice choice = rv::ChooseHatchLog(c.a, c.b);
    EXPECT_EQ(choice.file, c.file) << c.a << " " << c.b;
    EXPECT_EQ(choice.deleteOther, c.deleteOther) << c.a << " " << c.b;
  }
}

TEST(HatchLog, FullFileGoesAndTheOtherGetsTheRecord) {
  rvtest::TempDir dir;
  const std::string file1 = dir.file("HatchingLogFile.txt");
  const std::string file2 = dir.file("HatchingLogFile2.txt");
  ASSERT_TRUE(rvtest::WriteFile(file1, std::string(100000, 'a')));
  ASSERT_TRUE(rvtest::WriteFile(file2, std::string(60000, 'b')));
  rv::HatchWork work = OneLineWork(dir.path().string());
  rv::OrderLines(work);

  // One line costs 0 under every rule tried; the first, rule 5, wins.
  const std::string record =
      "\n[HatchingSortLogData]========================================"
      "\nMaxBoundingBoxSize: B 0.000000, T 10.000000, L 0.000000, R 10.000000 "
      "\nSortDataSet: 5_MeshAndBoundingBox (0.000000), 4_BoundingBox (0.000000), "
      "6_kTangentAndBoundingBox (0.000000), "
      "\nMinCutOderRule: 5_MeshAndBoundingBox";
  EXPECT_FALSE(std::filesystem::exists(file1));
  EXPECT_EQ(rvtest::ReadFile(file2), std::string(60000, 'b') + record);

  // The next record goes to the same file; file 1 comes back empty.
  rv::HatchWork again = OneLineWork(dir.path().string());
  rv::OrderLines(again);
  EXPECT_EQ(rvtest::ReadFile(file2).size(), 60000 + 2 * record.size());
  EXPECT_EQ(std::filesystem::file_size(file1), 0u);
}

TEST(HatchLog, AFolderThatCantBeWrittenIsPassedOver) {
  rv::HatchWork work = OneLineWork("/nonexistent-folder/for/the/log");
  work.lines = {Line(10, 5, 0)};
  rv::OrderLines(work);
  ASSERT_EQ(work.lines.size(), 1u);
  EXPECT_EQ(work.lines[0].x1, 0.0);  // ordered all the same: from the head's side
}
