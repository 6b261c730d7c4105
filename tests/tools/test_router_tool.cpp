// rvtool's router jobs: its own outline offset, the reading of a milling job
// by depth, and `plot --mill`, `plot --tiles` and `render` of a milling job
// as a user meets them.
#include <gtest/gtest.h>

#include <vector>

#include "milling_job.h"
#include "router.h"
#include "test_support.h"
#include "tool_test.h"

namespace {

using tooltest::Contains;
using tooltest::RunTool;
using tooltest::Sample;

std::vector<RVPOINT> Square(bool clockwise) {
  std::vector<RVPOINT> s{{0, 0}, {10, 0}, {10, 10}, {0, 10}};
  if (clockwise) std::swap(s[1], s[3]);
  return s;
}

TEST(ToolRouter, OutlinesMoveOutwardWhicheverWayTheyRun) {
  struct Row { bool clockwise; double offset; std::vector<RVPOINT> expected; };
  const Row rows[] = {
      {false, 1, {{-1, -1}, {11, -1}, {11, 11}, {-1, 11}}},   // out by 1, corners mitred
      {true, 1, {{-1, -1}, {-1, 11}, {11, 11}, {11, -1}}},    // the same, in the order given
      {false, -2, {{2, 2}, {8, 2}, {8, 8}, {2, 8}}},          // in
  };
  for (const Row& row : rows) {
    const std::vector<RVPOINT> out = rvtool::OffsetOutline(Square(row.clockwise), row.offset);
    ASSERT_EQ(out.size(), row.expected.size());
    for (std::size_t i = 0; i < out.size(); ++i) {
      EXPECT_NEAR(out[i].x, row.expected[i].x, 1e-12) << i;
      EXPECT_NEAR(out[i].y, row.expected[i].y, 1e-12) << i;
    }
  }
  // A needle's mitre reaches at most twice the offset out.
  const std::vector<RVPOINT> needle = rvtool::OffsetOutline({{0, 0}, {100, 1}, {0, 2}}, 1);
  EXPECT_LE(needle[1].x, 102.0 + 1e-9);
}

TEST(ToolRouter, AMillingJobReadsAsCutsByDepth) {
  EXPECT_TRUE(rvtool::IsMillingJob("DF1;SP3;JW60;JZ40;PU0,0;"));
  EXPECT_FALSE(rvtool::IsMillingJob("PU0,0;PD10,0;PU;"));
  int depths = 0;
  // A cut at depth 70 lifted to 20 over a joint and back; then a lift.
  const rvtool::Scene scene =
      rvtool::SceneOfMillingJob("DF1;JZ70;PU0,0;PD10,0;JZ20;PD20,0;JZ70;PD30,0;PU;PU0,5;PD0,6;", 0.5, depths);
  EXPECT_EQ(depths, 2);
  struct Row { double fromX, toX, y; int shade; };
  const Row rows[] = {{0, 5, 0, 0}, {5, 10, 0, 1}, {10, 15, 0, 0}, {0, 0, 2.5, 0}};
  ASSERT_EQ(scene.strokes.size(), std::size(rows));
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    const rvtool::Stroke& s = scene.strokes[i];
    EXPECT_EQ(s.points.front().x, rows[i].fromX) << i;
    EXPECT_EQ(s.points.back().x, rows[i].toX) << i;
    EXPECT_EQ(s.points.front().y, rows[i].y) << i;
    EXPECT_EQ(s.shade, rows[i].shade) << i;
  }
}

TEST(ToolRouter, MillTilesAndThePictureOfTheirJobs) {
  rvtest::TempDir dir;
  const std::string job = dir.file("mill.rvl");
  auto run = RunTool({"plot", Sample("sign.plt"), "-o", job, "--mill", "--conditions", Sample("router-conditions.xml"),
                      "--machine", "WD3K", "--media", "Plywood 6"});
  ASSERT_EQ(run.status, 0) << run.err;
  const std::string bytes = rvtest::ReadFile(job);
  // Depths 4, 2 and 0 of 6, the tool raised before each change.
  EXPECT_TRUE(Contains(bytes, "DF1;SP3;JW60;VS20.0,3;JM18000;JZ40;JV5;PU")) << bytes.substr(0, 80);
  EXPECT_TRUE(Contains(bytes, ";PU;JZ20;") && Contains(bytes, ";PU;JZ0;"));
  run = RunTool({"render", job, "-o", dir.file("mill.svg")});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(Contains(run.out, "(30 cuts at 3 depths")) << run.out;

  // A milling job needs the conditions of a milling family.
  run = RunTool({"plot", Sample("sign.plt"), "-o", job, "--mill"});
  EXPECT_EQ(run.status, 64);
  EXPECT_TRUE(Contains(run.err, "--machine WD3K or WDZK")) << run.err;

  // The sign is one row of letters: one strip of 75 mm holds it all, the two
  // others are empty; 4 gaps of 5 mm.
  run = RunTool({"plot", Sample("sign.plt"), "-o", dir.file("tiles.rvl"), "--tiles", "3"});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(Contains(run.out, "the next job may start at y 95 mm")) << run.out;
}

}  // namespace
