// rvtool hatch reports the pen-up travel of its line order against the
// clipper's order.
#include <gtest/gtest.h>

#include <regex>

#include "test_support.h"
#include "tool_test.h"

namespace {

TEST(ToolHatch, PrintsThePenUpTravelOfTheChosenOrderAgainstTheClippers) {
  rvtest::TempDir dir;
  const auto run = tooltest::RunTool({"hatch", tooltest::Sample("letters.plt"), "-o", dir.file("letters.rvl"),
                                      "--pitch", "1", "--log-folder", dir.path().string()});
  ASSERT_EQ(run.status, 0) << run.err;
  std::smatch m;
  const std::string out = run.out;
  ASSERT_TRUE(std::regex_search(out, m, std::regex("pen-up travel: ([0-9.]+) mm in the chosen order, ([0-9.]+) mm "
                                                   "in the clipper's \\(([0-9.]+) % saved\\)")))
      << run.out;
  EXPECT_LT(std::stod(m[1]), std::stod(m[2]));  // the letters' rows cross several shapes
  EXPECT_FALSE(rvtest::ReadFile(dir.file("HatchingLogFile.txt")).empty() &&
               rvtest::ReadFile(dir.file("HatchingLogFile2.txt")).empty());
}

}  // namespace
