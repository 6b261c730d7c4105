// rvtool's router jobs: the outline offsets it has the library make, the reading of a milling job
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

// A closed square (0,0)-(10,10) in a new layer, running clockwise (through
// (0,10) first) or not (through (10,0) first).
void* Square(bool clockwise) {
  void* layer = nullptr;
  EXPECT_EQ(RvGiCreateLayer(0, nullptr, &layer), 0u);
  void* path = tooltest::NewArt(4, layer);
  const double t = clockwise ? 10 : 0;
  tooltest::AddCorners(tooltest::NewArt(2, path), {{0, 0}, {10 - t, t}, {10, 10}, {t, 10 - t}, {0, 0}});
  EXPECT_EQ(RvGiSetPathClosed(path, 1), 0u);
  EXPECT_EQ(RvGiSetPathAttrFlag(path, 7), 0u);
  return path;
}

TEST(ToolRouter, TheLibraryOffsetsOutlinesOutwardWhicheverWayTheyRun) {
  struct Row { bool clockwise; double offset; RVRECT bounds; };  // top, left, right, bottom
  const Row rows[] = {
      {false, 1, {11, -1, 11, -1}},   // out by 1 (square corners stay within the box)
      {true, 1, {11, -1, 11, -1}},    // the same for a square that runs the other way
      {false, -2, {8, 2, 8, 2}},      // in by 2
  };
  for (const Row& row : rows) {
    int16_t document = -1;
    ASSERT_EQ(RvGiCreateDocument(0, &document), 0u);
    void* square = Square(row.clockwise);
    rvtool::OffsetMaker maker(document);
    void* same = nullptr;
    EXPECT_EQ(rvtool::OffsetMaker::Make(&maker, square, 0.0, &same), 0u);
    EXPECT_EQ(same, square);  // offset 0 mills the art itself
    void* moved = nullptr;
    ASSERT_EQ(rvtool::OffsetMaker::Make(&maker, square, row.offset, &moved), 0u);
    ASSERT_NE(moved, nullptr);
    RVRECT r{};
    ASSERT_EQ(RvGiGetArtBounds(moved, &r), 0u);
    EXPECT_NEAR(r.top, row.bounds.top, 1e-3);
    EXPECT_NEAR(r.left, row.bounds.left, 1e-3);
    EXPECT_NEAR(r.right, row.bounds.right, 1e-3);
    EXPECT_NEAR(r.bottom, row.bounds.bottom, 1e-3);
    void* work = nullptr;
    RvGiGetLayerFromName(&work, "Rivlen_HatchingWorkLayer");
    void* left = nullptr;
    RvGiGetArtFirstChild(work, &left);
    EXPECT_EQ(left, nullptr);  // the work copy is gone again
    RvGiDeleteRefMapTable();
    RvGiDeleteActiveDocument();
  }
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

TEST(ToolRouter, MillAndPreviewOfTheSampleCLJob) {
  rvtest::TempDir dir;
  const std::string cl = Sample("router_plate.cl"), conditions = Sample("router-conditions.xml");
  // Each way of clearing makes a milling job in three depth passes.
  for (const std::string clear : {"none", "hatching", "contour"}) {
    SCOPED_TRACE(clear);
    const std::string job = dir.file(clear + ".rvl");
    std::vector<std::string> args{"mill", cl, "-o", job, "--conditions", conditions, "--clear", clear};
    if (clear == "contour") args.push_back("--inside");
    const auto run = RunTool(args);
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(Contains(run.out, "(media 'Plywood 6', 3 passes, clearing: " + clear + ")")) << run.out;
    const std::string bytes = rvtest::ReadFile(job);
    EXPECT_EQ(bytes.rfind("DF1;", 0), 0u) << bytes.substr(0, 40);
    EXPECT_TRUE(Contains(bytes, "JZ-39;") && Contains(bytes, "PD1800.00,3000.00;")) << bytes.substr(0, 120);
  }
  // Joints keep 1 mm of the 6 mm sheet: the first pass (4 mm left) rises to
  // it over each joint ("JZ-9;"), and after the job the joints are cut free
  // in blocks of their own.
  const std::string plain = rvtest::ReadFile(dir.file("none.rvl")), jointed = dir.file("joints.rvl");
  ASSERT_EQ(RunTool({"mill", cl, "-o", jointed, "--conditions", conditions, "--joints", "2"}).status, 0);
  const std::string bytes = rvtest::ReadFile(jointed);
  auto blocks = [](const std::string& job) {
    std::size_t n = 0;
    for (std::size_t at = job.find("DF1;"); at != std::string::npos; at = job.find("DF1;", at + 1)) ++n;
    return n;
  };
  EXPECT_FALSE(Contains(plain, "JZ-9;"));
  EXPECT_TRUE(Contains(bytes, "JZ-9;"));
  EXPECT_GT(blocks(bytes), blocks(plain));
  const auto preview = RunTool({"preview", cl, "-o", dir.file("preview.svg")});
  ASSERT_EQ(preview.status, 0) << preview.err;
  EXPECT_TRUE(Contains(preview.out, "(3 passes, 1028 points")) << preview.out;
  EXPECT_TRUE(Contains(rvtest::ReadFile(dir.file("preview.svg")), "<svg"));
  // Contour clearing runs inward only; a CL file that isn't there is a file failure.
  EXPECT_EQ(RunTool({"mill", cl, "-o", dir.file("x.rvl"), "--conditions", conditions, "--clear", "contour"}).status,
            64);
  EXPECT_EQ(RunTool({"mill", dir.file("none.cl"), "-o", dir.file("x.rvl"), "--conditions", conditions}).status, 1);
}

}  // namespace
