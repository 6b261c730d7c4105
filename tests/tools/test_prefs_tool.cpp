// rvtool prefs: a preference file shown by section and written again at the
// version that a save writes.
#include <gtest/gtest.h>

#include "test_support.h"
#include "tool_test.h"

namespace {

using tooltest::Contains;
using tooltest::RunTool;

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
