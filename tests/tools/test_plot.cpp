// `rvtool plot` end to end: jobs of the samples byte for byte, jobs read back
// as pictures, and the failures of a plot.
#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <filesystem>

#include "picture_check.h"
#include "test_support.h"
#include "tool_runner.h"

namespace {

using tooltest::RunTool;
using tooltest::Sample;

bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// samples/square.plt is the square (10,10)-(30,30) mm drawn counter-clockwise
// from (10,10). The job places its lower left corner at the origin; class 1
// writes x then y, in units of 0.025 mm; a closed Bezier repeats its start, so
// its closing curve from the last point to the first has no length and ends
// in one more "PD" on the start. Then the pen goes up.
const std::string kSquarePath =
    "PU0.00,0.00;PD0.00,0.00;PD800.00,0.00;PD800.00,800.00;PD0.00,800.00;PD0.00,0.00;PD0.00,0.00;";

std::string Plot(const std::vector<std::string>& options, const rvtest::TempDir& dir, int expectStatus = 0) {
  std::vector<std::string> args{"plot", Sample("square.plt"), "-o", dir.file("job.rvl")};
  args.insert(args.end(), options.begin(), options.end());
  const auto run = RunTool(args);
  EXPECT_EQ(run.status, expectStatus) << run.err;
  return rvtest::ReadFile(dir.file("job.rvl"));
}

TEST(ToolPlot, SquareJobByteForByte) {
  rvtest::TempDir dir;
  const auto run = RunTool({"plot", Sample("square.plt"), "-o", dir.file("job.rvl")});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out, "job: " + dir.file("job.rvl") + " (1 path under 1 key, dialect hpgl-pen, 95 bytes)\n");
  EXPECT_EQ(rvtest::ReadFile(dir.file("job.rvl")), kSquarePath + "PU;");
}

TEST(ToolPlot, SquareJobInOtherUnitsPlacesAndDialects) {
  rvtest::TempDir dir;
  // Device units of 0.01 mm.
  EXPECT_EQ(Plot({"--unit", "0.01"}, dir),
            "PU0.00,0.00;PD0.00,0.00;PD2000.00,0.00;PD2000.00,2000.00;PD0.00,2000.00;PD0.00,0.00;"
            "PD0.00,0.00;PU;");
  // Moved by 5 mm in x and 10 mm in y: 200 and 400 units.
  EXPECT_EQ(Plot({"--origin", "5,10"}, dir),
            "PU200.00,400.00;PD200.00,400.00;PD1000.00,400.00;PD1000.00,1200.00;PD200.00,1200.00;"
            "PD200.00,400.00;PD200.00,400.00;PU;");
  // Half size.
  EXPECT_EQ(Plot({"--scale", "50"}, dir),
            "PU0.00,0.00;PD0.00,0.00;PD400.00,0.00;PD400.00,400.00;PD0.00,400.00;PD0.00,0.00;"
            "PD0.00,0.00;PU;");
  // Single-letter commands, each ended by byte 3; the pen goes up with "O0,0".
  EXPECT_EQ(Plot({"--dialect", "move-draw"}, dir),
            std::string("M0.00,0.00\x03" "D0.00,0.00\x03" "D800.00,0.00\x03" "D800.00,800.00\x03"
                        "D0.00,800.00\x03" "D0.00,0.00\x03" "D0.00,0.00\x03" "O0,0\x03"));
  // The silent dialect writes nothing at all, and by number too.
  EXPECT_EQ(Plot({"--dialect", "silent"}, dir), "");
  EXPECT_EQ(Plot({"--dialect", "3"}, dir), "");
}

TEST(ToolPlot, MediaOfAConditionFileWritesItsPasses) {
  rvtest::TempDir dir;
  // "Vinyl": tool 1, speed 30, pressure 60, offset 0.25: pen 1.
  EXPECT_EQ(Plot({"--conditions", Sample("sign-conditions.xml"), "--media", "Vinyl"}, dir),
            "SP1;VS30,1;ZF60,1;ZO0.25;" + kSquarePath + "PU;");
  // "Sandblast mask": two passes, the second with tool 2; a closed path runs
  // on without lifting or moving the pen.
  const std::string second =
      "PD0.00,0.00;PD800.00,0.00;PD800.00,800.00;PD0.00,800.00;PD0.00,0.00;PD0.00,0.00;";
  EXPECT_EQ(Plot({"--conditions", Sample("sign-conditions.xml"), "--machine", "TQ", "--media",
                  "KFPlotFileLayer=Sandblast mask"},
                 dir),
            "SP1;VS20,1;ZF90,1;ZO0.30;" + kSquarePath + "SP2;VS10,2;ZF140,2;ZO0.30;" + second + "PU;");
  // "Paper" of the CSV: tool 3, speed 40, pressure 30, offset 0.15.
  EXPECT_EQ(Plot({"--csv", Sample("media.csv"), "--media", "Paper"}, dir),
            "SP3;VS40,3;ZF30,3;ZO0.15;" + kSquarePath + "PU;");
  // A tool mapped to another pen.
  EXPECT_EQ(Plot({"--csv", Sample("media.csv"), "--media", "Paper", "--tool-pen", "3=7"}, dir),
            "SP7;VS40,7;ZF30,7;ZO0.15;" + kSquarePath + "PU;");
  // Repeatable options take one value each, so the file may follow them.
  const auto run = RunTool({"plot", "--csv", Sample("media.csv"), "--media", "Paper", "--tool-pen", "1=2",
                            "--tool-pen", "3=8", Sample("square.plt"), "-o", dir.file("late.rvl")});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(rvtest::ReadFile(dir.file("late.rvl")), "SP8;VS40,8;ZF30,8;ZO0.15;" + kSquarePath + "PU;");
}

TEST(ToolPlot, JobOfTheSignReadsBackAsAPicture) {
  rvtest::TempDir dir;
  for (const char* dialect : {"hpgl-pen", "move-draw"}) {
    SCOPED_TRACE(dialect);
    const auto plot = RunTool({"plot", Sample("sign.plt"), "-o", dir.file("sign.rvl"), "--dialect", dialect,
                               "--conditions", Sample("sign-conditions.xml"), "--media", "Vinyl", "--sort",
                               "--optimize-start"});
    ASSERT_EQ(plot.status, 0) << plot.err;
    const auto svg = RunTool({"render", dir.file("sign.rvl"), "-o", dir.file("sign.svg")});
    ASSERT_EQ(svg.status, 0) << svg.err;
    pugi::xml_document doc;
    ASSERT_TRUE(doc.load_file(dir.file("sign.svg").c_str()));
    pugi::xml_node root = doc.child("svg");
    int cuts = 0;
    for (pugi::xml_node p : root.find_child_by_attribute("g", "id", "cuts").children("path")) cuts += !!p;
    EXPECT_EQ(cuts, 10);
    // The job starts at the origin and keeps the sign's size: 200 x 75 mm.
    pugi::xml_node box = root.find_child_by_attribute("rect", "id", "box");
    EXPECT_STREQ(box.attribute("width").value(), "200");
    EXPECT_STREQ(box.attribute("height").value(), "75");

    const auto png = RunTool({"render", dir.file("sign.rvl"), "-o", dir.file("sign.png")});
    ASSERT_EQ(png.status, 0) << png.err;
    const tooltest::PngSummary summary = tooltest::CheckPng(dir.file("sign.png"));
    ASSERT_TRUE(summary.valid) << summary.problem;
    EXPECT_GT(summary.black, 3000);
  }
}

TEST(ToolPlot, FailuresNameTheOperationTheFileAndTheMeaning) {
  rvtest::TempDir dir;
  const std::string job = dir.file("job.rvl");
  auto run = RunTool({"plot", dir.file("none.plt"), "-o", job});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "rvtool: import of '" + dir.file("none.plt") +
                         "' failed: the file can't be opened (code 0x01000201)\n");

  // A condition file that isn't there, and one that isn't XML.
  run = RunTool({"plot", Sample("square.plt"), "-o", job, "--conditions", dir.file("none.xml")});
  EXPECT_EQ(run.status, 13);
  EXPECT_EQ(run.err, "rvtool: loading the conditions of '" + dir.file("none.xml") +
                         "' failed: the XML file can't be loaded (code 13)\n");
  ASSERT_TRUE(rvtest::WriteFile(dir.file("bad.xml"), "<TQCutConditionList version=\"1.00\"><CutCondition>"));
  run = RunTool({"plot", Sample("square.plt"), "-o", job, "--conditions", dir.file("bad.xml")});
  EXPECT_EQ(run.status, 13);
  // The root of another machine family.
  run = RunTool({"plot", Sample("square.plt"), "-o", job, "--conditions", Sample("sign-conditions.xml"),
                 "--machine", "WD"});
  EXPECT_EQ(run.status, 15);
  EXPECT_TRUE(Contains(run.err, "a required element or attribute is missing from the XML file (code 15)"))
      << run.err;
  run = RunTool({"plot", Sample("square.plt"), "-o", job, "--csv", dir.file("none.csv")});
  EXPECT_EQ(run.status, 1);
  EXPECT_TRUE(Contains(run.err, "the CSV file can't be opened (code 0x01001001)")) << run.err;
  EXPECT_FALSE(std::filesystem::exists(job));

  // A job that can't be written.
  run = RunTool({"plot", Sample("square.plt"), "-o", dir.file("no/such/folder/job.rvl")});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "rvtool: export of '" + dir.file("no/such/folder/job.rvl") +
                         "' failed: the file can't be opened (code 0x01000201)\n");
}

TEST(ToolPlot, BadMediaAndOptionsAreUsageErrors) {
  rvtest::TempDir dir;
  const std::string job = dir.file("job.rvl");
  auto run = RunTool({"plot", Sample("square.plt"), "-o", job, "--media", "Vinyl"});
  EXPECT_EQ(run.status, 64);
  EXPECT_TRUE(Contains(run.err, "--media needs the conditions")) << run.err;
  run = RunTool({"plot", Sample("square.plt"), "-o", job, "--conditions", Sample("sign-conditions.xml"),
                 "--media", "Paper"});
  EXPECT_EQ(run.status, 64);
  EXPECT_TRUE(Contains(run.err, "media 'Paper' isn't in the conditions")) << run.err;
  run = RunTool({"plot", Sample("square.plt"), "-o", job, "--conditions", Sample("sign-conditions.xml"),
                 "--media", "Cuts=Vinyl"});
  EXPECT_EQ(run.status, 64);
  EXPECT_TRUE(Contains(run.err, "no path is filed under 'Cuts' (the keys are 'KFPlotFileLayer')")) << run.err;
  EXPECT_FALSE(std::filesystem::exists(job));

  for (const std::vector<std::string>& bad : std::vector<std::vector<std::string>>{
           {"--dialect", "postscript"}, {"--dialect", "7"}, {"--class", "13"}, {"--rotate", "45"},
           {"--curves", "beziers"}, {"--origin", "5"}, {"--scale", "0"}, {"--scale", "x"},
           {"--machine", "XY"}, {"--machine", "17"}, {"--unit", "0"}, {"--tool-pen", "3"},
           {"--conditions", "a.xml", "--csv", "b.csv"}, {"--frobnicate"}}) {
    std::vector<std::string> args{"plot", Sample("square.plt"), "-o", job};
    args.insert(args.end(), bad.begin(), bad.end());
    run = RunTool(args);
    EXPECT_EQ(run.status, 64) << bad[0];
    EXPECT_TRUE(Contains(run.err, "rvtool: ")) << bad[0];
  }
  EXPECT_FALSE(std::filesystem::exists(job));
}

TEST(ToolPlot, HelpListsTheOptions) {
  const auto run = RunTool({"plot", "--help"});
  EXPECT_EQ(run.status, 0);
  for (const char* option :
       {"--by-colour", "--conditions", "--csv", "--machine", "--media", "--dialect", "--class", "--unit",
        "--rotate", "--mirror", "--scale", "--origin", "--frame", "--sort", "--curves", "--optimize-start",
        "hpgl-pen|hpgl-tool|move-draw|silent|hpgl|laser|coating", "lines|arcs|splines"})
    EXPECT_TRUE(Contains(run.out, option)) << option;
}

}  // namespace
