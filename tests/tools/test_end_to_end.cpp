// The built rvtool on the samples: what `info` prints, the pictures of
// `render`, and failures that end in one clear line.
#include <gtest/gtest.h>
#include <pugixml.hpp>

#include "picture_check.h"
#include "test_support.h"
#include "tool_runner.h"

namespace {

using tooltest::RunTool;
using tooltest::Sample;

bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

int CountCuts(const std::string& svgPath) {
  pugi::xml_document doc;
  if (!doc.load_file(svgPath.c_str())) return -1;
  pugi::xml_node cuts = doc.child("svg").find_child_by_attribute("g", "id", "cuts");
  int n = 0;
  for (pugi::xml_node p : cuts.children("path")) n += p.attribute("d") ? 1 : 0;
  return n;
}

TEST(ToolEndToEnd, InfoOfTheSquare) {
  const auto run = RunTool({"info", Sample("square.plt")});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.err, "");
  // PU400,400;PD1200,400,1200,1200,400,1200,400,400 at 0.025 mm a unit.
  EXPECT_EQ(run.out, "file        " + Sample("square.plt") +
                         "\n"
                         "layers      1\n"
                         "paths       1 (1 closed, 0 open)\n"
                         "components  1 (1 Bezier, 0 arcs, 0 splines)\n"
                         "points      5\n"
                         "bounds      x 10.000 .. 30.000, y 10.000 .. 30.000 mm (20.000 x 20.000 mm)\n"
                         "\n"
                         "layer 0 \"KFPlotFileLayer\"\n"
                         "  paths       1 (1 closed)\n"
                         "  components  1\n"
                         "  points      5\n"
                         "  bounds      x 10.000 .. 30.000, y 10.000 .. 30.000 mm (20.000 x 20.000 mm)\n");
}

TEST(ToolEndToEnd, InfoOfTheSign) {
  // Worked out from samples/sign.plt: two frames (5 points each), the "R"
  // (lines, an arc, a line: 3 + 1 + 2 points) and its leg (2), the "V" (3),
  // two circles (one arc point each), a triangle and its hole (4 each), the
  // "D" (an arc and a line: 1 + 2). Open: the R, its leg and the V.
  const auto run = RunTool({"info", Sample("sign.plt")});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(Contains(run.out, "paths       10 (7 closed, 3 open)\n")) << run.out;
  EXPECT_TRUE(Contains(run.out, "components  13 (9 Beziers, 4 arcs, 0 splines)\n")) << run.out;
  EXPECT_TRUE(Contains(run.out, "points      34\n")) << run.out;
  EXPECT_TRUE(Contains(run.out, "bounds      x 0.000 .. 200.000, y 0.000 .. 75.000 mm (200.000 x 75.000 mm)\n"))
      << run.out;
  // Another unit scales the bounds.
  const auto doubled = RunTool({"info", Sample("sign.plt"), "--unit", "0.05"});
  EXPECT_TRUE(Contains(doubled.out, "(400.000 x 150.000 mm)")) << doubled.out;
}

TEST(ToolEndToEnd, RenderWritesWellFormedPicturesOfEveryPath) {
  rvtest::TempDir dir;
  const auto svg = RunTool({"render", Sample("sign.plt"), "-o", dir.file("sign.svg")});
  ASSERT_EQ(svg.status, 0) << svg.err;
  EXPECT_TRUE(Contains(svg.out, dir.file("sign.svg"))) << svg.out;
  EXPECT_EQ(CountCuts(dir.file("sign.svg")), 10);

  const auto png = RunTool({"render", Sample("sign.plt"), "-o", dir.file("sign.png"), "--width", "800"});
  ASSERT_EQ(png.status, 0) << png.err;
  const tooltest::PngSummary summary = tooltest::CheckPng(dir.file("sign.png"));
  ASSERT_TRUE(summary.valid) << summary.problem;
  // 200 x 75 mm and the origin, with a margin of 6 mm: 212 x 87 mm.
  EXPECT_EQ(summary.width, 800);
  EXPECT_EQ(summary.height, 329);  // 87 / 212 * 800 = 328.3, rounded up
  EXPECT_GT(summary.black, 3000);
  EXPECT_GT(summary.red, 10 * 8);  // ten start marks
  EXPECT_GT(summary.blue, 100);
}

TEST(ToolEndToEnd, MissingInputFailsWithTheLibrarysWords) {
  rvtest::TempDir dir;
  const std::string missing = dir.file("nothing.plt");
  for (const char* command : {"info", "render"}) {
    std::vector<std::string> args{command, missing};
    if (std::string(command) == "render") args.insert(args.end(), {"-o", dir.file("x.png")});
    const auto run = RunTool(args);
    EXPECT_EQ(run.status, 1) << command;
    EXPECT_EQ(run.err, "rvtool: import of '" + missing + "' failed: the file can't be opened (code 0x01000201)\n")
        << command;
    EXPECT_EQ(run.out, "");
  }
  EXPECT_FALSE(std::filesystem::exists(dir.file("x.png")));
}

TEST(ToolEndToEnd, FileThatDrawsNothingFails) {
  rvtest::TempDir dir;
  ASSERT_TRUE(rvtest::WriteFile(dir.file("up.plt"), "IN;PU100,100;PU0,0;"));
  const auto run = RunTool({"info", dir.file("up.plt")});
  EXPECT_EQ(run.status, 17);
  EXPECT_TRUE(Contains(run.err, "the file draws nothing (code 1)")) << run.err;
}

TEST(ToolEndToEnd, UnwritablePictureFailsWith73) {
  const auto run = RunTool({"render", Sample("square.plt"), "-o", "/nonexistent-folder/x.svg"});
  EXPECT_EQ(run.status, 73);
  EXPECT_TRUE(Contains(run.err, "writing the picture of '/nonexistent-folder/x.svg' failed: ")) << run.err;
}

}  // namespace
