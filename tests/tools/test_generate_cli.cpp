// rvtool hatch and contour on the bundled letters: the job holds the lines,
// the pictures and logs are written, the pen-up travel of the chosen line
// order is reported against the clipper's, and a shape that shrinks away
// ends in status 65.
#include <gtest/gtest.h>

#include <regex>

#include "test_support.h"
#include "tool_test.h"

namespace {

using tooltest::Contains;
using tooltest::RunTool;
using tooltest::Sample;

TEST(ToolGenerate, HatchAndContourOfTheLettersWriteJobsAndPictures) {
  rvtest::TempDir dir;
  const std::string job = dir.file("job.rvl"), png = dir.file("fill.png"), svg = dir.file("fill.svg");
  auto run = RunTool({"hatch", Sample("letters.plt"), "-o", job, "--pitch", "2", "--angle", "30", "--png", png,
                      "--svg", svg, "--log-folder", dir.path().string()});
  ASSERT_EQ(run.status, 0) << run.err;
  // Seven outlines and holes; the frame of each is written before the lines.
  EXPECT_TRUE(Contains(run.out, "(7 shapes, ")) << run.out;
  EXPECT_TRUE(Contains(run.out, " 7 frame paths)")) << run.out;
  EXPECT_GT(rvtest::ReadFile(job).size(), 1000u);
  EXPECT_FALSE(rvtest::ReadFile(png).empty());
  EXPECT_TRUE(Contains(rvtest::ReadFile(svg), "<svg"));
  EXPECT_FALSE(rvtest::ReadFile(dir.file("HatchingLogFile.txt")).empty() &&
               rvtest::ReadFile(dir.file("HatchingLogFile2.txt")).empty());
  std::smatch m;
  const std::string out = run.out;
  ASSERT_TRUE(std::regex_search(out, m, std::regex("pen-up travel: ([0-9.]+) mm in the chosen order, ([0-9.]+) mm "
                                                   "in the clipper's \\(([0-9.]+) % saved\\)")))
      << run.out;
  EXPECT_LT(std::stod(m[1]), std::stod(m[2]));  // the letters' rows cross several shapes

  run = RunTool({"contour", Sample("letters.plt"), "-o", job, "--offset", "-2.5"});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(Contains(run.out, "16 echo paths, 0 corner lines")) << run.out;

  // Shrunk away: nothing to hatch or to frame.
  run = RunTool({"hatch", Sample("letters.plt"), "-o", job, "--offset", "-40", "--generate", "lines"});
  EXPECT_EQ(run.status, 65) << run.err;
  // A contour offset of 0 would never end: refused by the library (module 8).
  run = RunTool({"contour", Sample("letters.plt"), "-o", job, "--offset", "0"});
  EXPECT_EQ(run.status, 8) << run.err;
  EXPECT_TRUE(Contains(run.err, "0x08004501")) << run.err;
}

}  // namespace
