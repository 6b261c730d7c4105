// The built rvtool as a user meets it: help, what `info` and `render` make of
// the samples, the jobs of `plot` byte for byte and read back as pictures,
// failures that end in one clear line, and `prefs` showing a preference file
// and writing it again at the version that a save writes.
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <tuple>

#include "test_support.h"
#include "tool_test.h"

namespace {

using tooltest::Contains;
using tooltest::RunTool;
using tooltest::Sample;

TEST(ToolCli, HelpOfTheToolAndOfEachCommandAndTheVersion) {
  const std::vector<std::pair<std::vector<std::string>, std::vector<std::string>>> rows{
      {{"--help"}, {"info", "plot", "render", "Exit status"}},
      {{"plot", "--help"}, {"hpgl-pen|hpgl-tool|move-draw|silent|hpgl|laser|coating", "lines|arcs|splines"}},
      {{"--version"}, {"librvdataaccess 1.3.0"}}};
  for (const auto& [args, parts] : rows) {
    SCOPED_TRACE(args.front());
    const auto run = RunTool(args);
    EXPECT_EQ(run.status, 0);
    for (const std::string& part : parts) EXPECT_TRUE(Contains(run.out, part)) << part;
  }
}

TEST(ToolCli, InfoOfTheSamples) {
  auto run = RunTool({"info", Sample("square.plt")});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.err, "");
  // PU400,400;PD1200,400,1200,1200,400,1200,400,400 at 0.025 mm a unit.
  const std::string bounds = "bounds      x 10.000 .. 30.000, y 10.000 .. 30.000 mm (20.000 x 20.000 mm)\n";
  EXPECT_EQ(run.out, "file        " + Sample("square.plt") +
                         "\nlayers      1\npaths       1 (1 closed, 0 open)\n"
                         "components  1 (1 Bezier, 0 arcs, 0 splines)\npoints      5\n" +
                         bounds + "\nlayer 0 \"KFPlotFileLayer\"\n  paths       1 (1 closed)\n"
                         "  components  1\n  points      5\n  " + bounds);

  // Worked out from samples/sign.plt: two frames (5 points each), the "R"
  // (lines, an arc, a line: 3 + 1 + 2 points) and its leg (2), the "V" (3),
  // two circles (one arc point each), a triangle and its hole (4 each), the
  // "D" (an arc and a line: 1 + 2). Open: the R, its leg and the V.
  run = RunTool({"info", Sample("sign.plt")});
  ASSERT_EQ(run.status, 0) << run.err;
  for (const char* part : {"paths       10 (7 closed, 3 open)\n",
                           "components  13 (9 Beziers, 4 arcs, 0 splines)\n", "points      34\n",
                           "bounds      x 0.000 .. 200.000, y 0.000 .. 75.000 mm (200.000 x 75.000 mm)\n"})
    EXPECT_TRUE(Contains(run.out, part)) << part << run.out;
  // Another unit scales the bounds.
  run = RunTool({"info", Sample("sign.plt"), "--unit", "0.05"});
  EXPECT_TRUE(Contains(run.out, "(400.000 x 150.000 mm)")) << run.out;
}

TEST(ToolCli, CmxDrawingsAreToldByTheirFirstBytes) {
  // samples/shapes.cmx under the name of a plot file: a triangle and a
  // compound of two open paths on "curves", three rectangles on "boxes".
  rvtest::TempDir dir;
  std::filesystem::copy_file(Sample("shapes.cmx"), dir.file("shapes.plt"));
  const auto run = RunTool({"info", dir.file("shapes.plt")});
  ASSERT_EQ(run.status, 0) << run.err;
  for (const char* part : {"layers      2\n", "paths       6 (4 closed, 2 open)\n", "layer 0 \"boxes\"\n  paths       3 (3 closed)",
                           "layer 1 \"curves\"\n  paths       3 (1 closed)"})
    EXPECT_TRUE(Contains(run.out, part)) << part << run.out;
}

TEST(ToolCli, RenderWritesWellFormedPicturesOfEveryPath) {
  rvtest::TempDir dir;
  const auto svg = RunTool({"render", Sample("sign.plt"), "-o", dir.file("sign.svg")});
  ASSERT_EQ(svg.status, 0) << svg.err;
  EXPECT_TRUE(Contains(svg.out, dir.file("sign.svg"))) << svg.out;
  EXPECT_EQ(tooltest::SvgSummary(dir.file("sign.svg")), "10 cuts, box 200 x 75");

  const auto png = RunTool({"render", Sample("sign.plt"), "-o", dir.file("sign.png"), "--width", "800"});
  ASSERT_EQ(png.status, 0) << png.err;
  const tooltest::PngSummary summary = tooltest::CheckPng(dir.file("sign.png"));
  ASSERT_TRUE(summary.valid);
  // 200 x 75 mm and the origin, with a margin of 6 mm: 212 x 87 mm.
  EXPECT_EQ(summary.width, 800);
  EXPECT_EQ(summary.height, 329);  // 87 / 212 * 800 = 328.3, rounded up
  EXPECT_GT(summary.black, 3000);
  EXPECT_GT(summary.white, 800 * 329 / 2);
  EXPECT_GT(summary.red, 10 * 8);  // ten start marks
  EXPECT_GT(summary.blue, 100);    // dashed travel

  // The square and the origin, 0..30 x 0..30 mm: a square picture, though
  // 511 / 31.8 * 31.8 comes out a hair above 511.
  ASSERT_EQ(RunTool({"render", Sample("square.plt"), "-o", dir.file("square.png"), "--width", "511"}).status, 0);
  EXPECT_EQ(tooltest::CheckPng(dir.file("square.png")).height, 511);
}

TEST(ToolCli, FailuresEndInOneClearLineWithTheirStatus) {
  rvtest::TempDir dir;
  const std::string square = Sample("square.plt"), conditions = Sample("sign-conditions.xml");
  const std::string missing = dir.file("none.plt"), job = dir.file("job.rvl"), up = dir.file("up.plt");
  const std::string bad = dir.file("bad.xml"), deep = dir.file("no/such/folder/job.rvl"), empty = dir.file("empty.plt");
  const std::string gone = "/no-such-folder/x";
  ASSERT_TRUE(rvtest::WriteFile(up, "IN;PU100,100;PU0,0;"));
  ASSERT_TRUE(rvtest::WriteFile(empty, ""));
  ASSERT_TRUE(rvtest::WriteFile(bad, "<TQCutConditionList version=\"1.00\"><CutCondition>"));
  const std::string cantOpen = "' failed: the file can't be opened (code 0x01000201)\n";
  auto plot = [&](std::vector<std::string> options) {
    options.insert(options.begin(), {"plot", square, "-o", job});
    return options;
  };
  // Arguments, exit status, and what follows "rvtool: " if it ends the line, else a part of it.
  std::vector<std::tuple<std::vector<std::string>, int, std::string>> rows{
      // A bad command line: 64, before any work.
      {{}, 64, ""}, {{"frobnicate"}, 64, ""}, {{"info"}, 64, ""}, {{"info", "x.plt", "--unit", "-1"}, 64, ""},
      {{"info", "x.plt", "--frobnicate"}, 64, "--frobnicate"}, {{"render", "x.plt"}, 64, "--output"},
      {{"render", "x.plt", "-o", "x.png", "--width", "3"}, 64, ""},
      {{"render", square, "-o", "x.jpg"}, 64,
       "render of 'x.jpg' failed: the picture must be a .svg or .png file\n"},
      // Failures of the library: the module of the code, or the XML code itself.
      {{"info", missing}, 1, "import of '" + missing + cantOpen},
      {{"plot", missing, "-o", job}, 1, "import of '" + missing + cantOpen},
      {{"info", up}, 65, "import of '" + up + "' failed: the file draws nothing (code 1)\n"},
      // What the tool tells apart before the library reads the file.
      {{"info", dir.path().string()}, 1, "import of '" + dir.path().string() + "' failed: it is a folder, not a file\n"},
      {{"plot", empty, "-o", job}, 65, "import of '" + empty + "' failed: the file is empty\n"},
      {{"plot", square, "-o", deep}, 1, "export of '" + deep + cantOpen},
      {plot({"--conditions", bad}), 13,
       "loading the conditions of '" + bad + "' failed: the XML file can't be loaded (code 13)\n"},
      {plot({"--conditions", conditions, "--machine", "WD"}), 15,  // the root of another machine family
       "a required element or attribute is missing from the XML file (code 15)\n"},
      {plot({"--csv", dir.file("none.csv")}), 1,
       "loading the conditions of '" + dir.file("none.csv") +
           "' failed: the CSV file can't be opened (code 0x01001001)\n"},
      // Pictures that can't be written, and media that don't fit.
      {{"render", square, "-o", gone + ".svg"}, 73, "writing the picture of '" + gone + ".svg' failed: "},
      {{"render", square, "-o", gone + ".png"}, 73, "writing the picture of '" + gone + ".png' failed: "},
      {plot({"--media", "Vinyl"}), 64,
       "--media needs the conditions that hold it: --conditions FILE or --csv FILE\n"},
      {plot({"--conditions", conditions, "--media", "Paper"}), 64,
       "media 'Paper' isn't in the conditions of '" + conditions +
           "' (they hold 'Vinyl', 'Sandblast mask')\n"},
      {plot({"--conditions", conditions, "--media", "Cuts=Vinyl"}), 64,
       "--media Cuts=Vinyl: no path is filed under 'Cuts' (the keys are 'KFPlotFileLayer')\n"}};
  for (const std::vector<std::string>& options : std::vector<std::vector<std::string>>{
           {"--dialect", "postscript"}, {"--dialect", "7"}, {"--class", "13"}, {"--rotate", "45"},
           {"--curves", "beziers"}, {"--origin", "5"}, {"--scale", "0"}, {"--scale", "x"},
           {"--machine", "XY"}, {"--machine", "17"}, {"--unit", "0"}, {"--tool-pen", "3"},
           {"--conditions", "a.xml", "--csv", "b.csv"}, {"--frobnicate"}})
    rows.push_back({plot(options), 64, ""});
  // Every status the tool returns stands in the README's table and in --help.
  const std::string readme = rvtest::ReadFile(std::string(RV_SAMPLES_DIR) + "/../README.md");
  const std::string help = RunTool({"--help"}).out;
  // A row "| 2 to 10 | ..." of the table, or a line "  2 to 10  ..." of --help.
  auto listed = [](const std::string& text, const std::string& row, int status) {
    const std::regex first("\n" + row + "([0-9]+)( to ([0-9]+))? ");
    for (std::sregex_iterator it(text.begin(), text.end(), first), end; it != end; ++it) {
      const int low = std::stoi((*it)[1]), high = (*it)[3].matched ? std::stoi((*it)[3]) : low;
      if (status >= low && status <= high) return true;
    }
    return false;
  };
  for (const auto& [args, status, line] : rows) {
    SCOPED_TRACE(testing::PrintToString(args));
    const auto run = RunTool(args);
    EXPECT_EQ(run.status, status);
    EXPECT_TRUE(listed(readme, "\\| ", status)) << "README table lacks " << status;
    EXPECT_TRUE(listed(help, "  ", status)) << "--help lacks " << status;
    EXPECT_EQ(run.err.rfind("rvtool: ", 0), 0u) << run.err;
    EXPECT_TRUE(Contains(run.err, line)) << run.err;
    if (!line.empty() && line.back() == '\n') {
      EXPECT_EQ(run.err.find('\n'), run.err.size() - 1);
    }
    EXPECT_EQ(run.out, "");
  }
  EXPECT_FALSE(std::filesystem::exists(job));
}

// samples/square.plt is the square (10,10)-(30,30) mm drawn counter-clockwise
// from (10,10). The job places its lower left corner at the origin; class 1
// writes x then y, in units of 0.025 mm; a closed Bezier repeats its start, so
// its closing curve from the last point to the first has no length and ends
// in one more "PD" on the start. Then the pen goes up.
const std::string kSquarePath =
    "PU0.00,0.00;PD0.00,0.00;PD800.00,0.00;PD800.00,800.00;PD0.00,800.00;PD0.00,0.00;PD0.00,0.00;";

TEST(ToolPlot, SquareJobByteForByteInOtherUnitsPlacesDialectsAndMedia) {
  const std::string conditions = Sample("sign-conditions.xml"), csv = Sample("media.csv");
  const std::vector<std::pair<std::vector<std::string>, std::string>> rows{
      {{}, kSquarePath + "PU;"},
      // Device units of 0.01 mm.
      {{"--unit", "0.01"},
       "PU0.00,0.00;PD0.00,0.00;PD2000.00,0.00;PD2000.00,2000.00;PD0.00,2000.00;PD0.00,0.00;PD0.00,0.00;PU;"},
      // Moved by 5 mm in x and 10 mm in y: 200 and 400 units.
      {{"--origin", "5,10"},
       "PU200.00,400.00;PD200.00,400.00;PD1000.00,400.00;PD1000.00,1200.00;PD200.00,1200.00;"
       "PD200.00,400.00;PD200.00,400.00;PU;"},
      // Half size.
      {{"--scale", "50"},
       "PU0.00,0.00;PD0.00,0.00;PD400.00,0.00;PD400.00,400.00;PD0.00,400.00;PD0.00,0.00;PD0.00,0.00;PU;"},
      // Single-letter commands, each ended by byte 3; the pen goes up with "O0,0".
      {{"--dialect", "move-draw"},
       "M0.00,0.00\x03" "D0.00,0.00\x03" "D800.00,0.00\x03" "D800.00,800.00\x03" "D0.00,800.00\x03"
       "D0.00,0.00\x03" "D0.00,0.00\x03" "O0,0\x03"},
      // The silent dialect writes nothing at all, and by number too.
      {{"--dialect", "silent"}, ""},
      {{"--dialect", "3"}, ""},
      // "Vinyl": tool 1, speed 30, pressure 60, offset 0.25: pen 1.
      {{"--conditions", conditions, "--media", "Vinyl"}, "SP1;VS30,1;ZF60,1;ZO0.25;" + kSquarePath + "PU;"},
      // "Sandblast mask": two passes, the second with tool 2; a closed path
      // runs on without lifting or moving the pen.
      {{"--conditions", conditions, "--machine", "TQ", "--media", "KFPlotFileLayer=Sandblast mask"},
       "SP1;VS20,1;ZF90,1;ZO0.30;" + kSquarePath +
           "SP2;VS10,2;ZF140,2;ZO0.30;PD0.00,0.00;PD800.00,0.00;PD800.00,800.00;PD0.00,800.00;PD0.00,0.00;"
           "PD0.00,0.00;PU;"},
      // "Paper" of the CSV: tool 3, speed 40, pressure 30, offset 0.15; tool 3 mapped to pen 8.
      {{"--csv", csv, "--media", "Paper"}, "SP3;VS40,3;ZF30,3;ZO0.15;" + kSquarePath + "PU;"},
      {{"--csv", csv, "--media", "Paper", "--tool-pen", "1=2", "--tool-pen", "3=8"},
       "SP8;VS40,8;ZF30,8;ZO0.15;" + kSquarePath + "PU;"}};
  rvtest::TempDir dir;
  for (const auto& [options, job] : rows) {
    SCOPED_TRACE(testing::PrintToString(options));
    // Repeatable options take one value each, so the file may follow them.
    std::vector<std::string> args{"plot"};
    args.insert(args.end(), options.begin(), options.end());
    args.insert(args.end(), {Sample("square.plt"), "-o", dir.file("job.rvl")});
    const auto run = RunTool(args);
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(rvtest::ReadFile(dir.file("job.rvl")), job);
    if (options.empty()) {
      EXPECT_EQ(run.out, "job: " + dir.file("job.rvl") + " (1 path under 1 key, dialect hpgl-pen, 95 bytes)\n");
    }
  }
}

TEST(ToolPlot, JobOfTheSignReadsBackAsAPicture) {
  rvtest::TempDir dir;
  for (const char* dialect : {"hpgl-pen", "move-draw"}) {
    SCOPED_TRACE(dialect);
    const auto plot = RunTool({"plot", Sample("sign.plt"), "-o", dir.file("sign.rvl"), "--dialect", dialect,
                               "--conditions", Sample("sign-conditions.xml"), "--media", "Vinyl", "--sort",
                               "--optimize-start"});
    ASSERT_EQ(plot.status, 0) << plot.err;
    ASSERT_EQ(RunTool({"render", dir.file("sign.rvl"), "-o", dir.file("sign.svg")}).status, 0);
    // The job starts at the origin and keeps the sign's size: 200 x 75 mm.
    EXPECT_EQ(tooltest::SvgSummary(dir.file("sign.svg")), "10 cuts, box 200 x 75");
    ASSERT_EQ(RunTool({"render", dir.file("sign.rvl"), "-o", dir.file("sign.png")}).status, 0);
    EXPECT_EQ(tooltest::CheckPng(dir.file("sign.png")).width, 1200);  // the default width
  }
}

TEST(ToolPrefs, ShowsAnOldMainFileUpToDateAndUpgradesIt) {
  rvtest::TempDir dir;
  const std::string old = dir.file("old.xml"), out = dir.file("new.xml");
  ASSERT_TRUE(rvtest::WriteFile(
      old, "<?xml version=\"1.0\"?><Kerflow_Preference version=\"1.00\"><PlotterUserSetup><Setup>7</Setup>"
           "</PlotterUserSetup><TomboEnv><TQTombo/><WDTombo><SepCount>3</SepCount></WDTombo></TomboEnv>"
           "</Kerflow_Preference>"));
  auto run = RunTool({"prefs", "show", old});
  ASSERT_EQ(run.status, 0) << run.err;
  for (const char* part : {"[PlotterUserSetup]\nSetup = 7\n", "TQTombo/SepLineWidth = 0.500000\n",
                           "TQTombo/SepCount = 2\n", "WDTombo/SepCount = 3\n", "[Dotbridge]\n"}) {
    EXPECT_TRUE(Contains(run.out, part)) << part;
  }

  const std::string shownOld = run.out.substr(run.out.find('\n'));  // past the "file:" line
  run = RunTool({"prefs", "upgrade", old, "-o", out});
  ASSERT_EQ(run.status, 0) << run.err;
  const std::string written = rvtest::ReadFile(out);
  EXPECT_TRUE(Contains(written, "<Kerflow_Preference version=\"8.00\"><PlotterUserSetup><Setup>7</Setup>"));
  EXPECT_TRUE(Contains(written, "<SepCount>2</SepCount>"));
  // The written file shows the same values.
  const std::string shownNew = RunTool({"prefs", "show", out}).out;
  EXPECT_EQ(shownNew.substr(shownNew.find('\n')), shownOld);

  // Failures: a missing file (13), another root that is no outline tool's (15).
  ASSERT_TRUE(rvtest::WriteFile(dir.file("x.xml"), "<Other version=\"1.00\"/>"));
  EXPECT_EQ(RunTool({"prefs", "show", dir.file("none.xml")}).status, 13);
  run = RunTool({"prefs", "show", dir.file("x.xml")});
  EXPECT_EQ(run.status, 15);
  EXPECT_TRUE(Contains(run.err, "x.xml")) << run.err;
}

}  // namespace
