// The built rvtool as a user meets it: help, usage errors, exit statuses.
#include <gtest/gtest.h>

#include "tool_runner.h"

namespace {

using tooltest::RunTool;

bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST(ToolCli, HelpOfTheToolAndOfEachCommand) {
  const auto top = RunTool({"--help"});
  EXPECT_EQ(top.status, 0);
  for (const char* command : {"info", "plot", "render"}) EXPECT_TRUE(Contains(top.out, command)) << top.out;
  EXPECT_TRUE(Contains(top.out, "Exit status")) << top.out;

  const auto info = RunTool({"info", "--help"});
  EXPECT_EQ(info.status, 0);
  EXPECT_TRUE(Contains(info.out, "--unit")) << info.out;

  const auto render = RunTool({"render", "--help"});
  EXPECT_EQ(render.status, 0);
  for (const char* option : {"--output", "--unit", "--width", "--no-travel"})
    EXPECT_TRUE(Contains(render.out, option)) << option;
}

TEST(ToolCli, UsageErrorsExitWith64AndOneClearLine) {
  const auto unknownOption = RunTool({"info", "x.plt", "--frobnicate"});
  EXPECT_EQ(unknownOption.status, 64);
  EXPECT_TRUE(Contains(unknownOption.err, "rvtool: ")) << unknownOption.err;
  EXPECT_TRUE(Contains(unknownOption.err, "--frobnicate")) << unknownOption.err;
  EXPECT_EQ(unknownOption.out, "");

  EXPECT_EQ(RunTool({}).status, 64);
  EXPECT_EQ(RunTool({"frobnicate"}).status, 64);
  EXPECT_EQ(RunTool({"info"}).status, 64);
  EXPECT_EQ(RunTool({"render", "x.plt"}).status, 64);               // no --output
  EXPECT_EQ(RunTool({"render", "x.plt", "-o", "x.png", "--width", "3"}).status, 64);
  EXPECT_EQ(RunTool({"info", "x.plt", "--unit", "-1"}).status, 64);
}

TEST(ToolCli, PictureOfAnUnknownTypeIsRefusedBeforeAnyWork) {
  const auto run = RunTool({"render", tooltest::Sample("square.plt"), "-o", "x.jpg"});
  EXPECT_EQ(run.status, 64);
  EXPECT_TRUE(Contains(run.err, "x.jpg")) << run.err;
  EXPECT_TRUE(Contains(run.err, ".svg or .png")) << run.err;
}

TEST(ToolCli, VersionNamesTheLibrary) {
  const auto run = RunTool({"--version"});
  EXPECT_EQ(run.status, 0);
  EXPECT_TRUE(Contains(run.out, "librvdataaccess 1.3.0")) << run.out;
}

}  // namespace
