// A CL job from file to milling job, byte for byte: the import, the router's
// turn, merge and per-art offset, and the milling writer's passes.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "export_fixture.h"

namespace {

using namespace rvtest;

struct ClJob {
  TempDir dir;
  int16_t document = -1;

  /// Imports `commands` (scale 1) as the numbered layer 1 of a new job.
  void Import(const std::string& commands) {
    const std::string file = dir.file("job.cl");
    WriteFile(file, commands);
    const double scale = 1.0;
    ASSERT_EQ(RvImCLToRIF(file.c_str(), 0, &document, &scale, "CLPlotFileLayer1"), 0u);
  }
  std::string Mill(const RVPLOTPARAM& param) {
    const std::string file = dir.file("job.rvl");
    EXPECT_EQ(RvExCLMillingToRVL(file.c_str(), document, &param), 0u);
    return ReadFile(file);
  }
};

CLCondition Pass(double cuttingDepth, double milling) {
  CLCondition c{};
  std::strcpy(c.Tool, "3");
  c.Thickness = 10.0, c.WDZUnit = 2;
  c.hasCuttingDepth = 1, c.CuttingDepth = cuttingDepth;
  c.hasMilling = 1, c.Milling = milling;
  return c;
}

RVPLOTPARAM ClParam() {
  RVPLOTPARAM p = Param(0, 1);
  p.conditionSource = 3;
  std::strcpy(p.conditionKey, "WOOD");
  return p;
}

// A 20 x 10 rectangle drawn counter-clockwise from the origin and an open
// line (30,0)-(40,0), milled in two passes 4 and 8 deep into 10 (depths 6
// and 2: "JZ-59;" and "JZ-19;" count downward from 0.5), both with Milling 2.
// Dialect 1 writes y before x.
//  - The base step turns the rectangle clockwise and merges both into the
//    base layer; the table hands out the line first.
//  - The line is open: milled as it stands in both passes, the tool rising
//    ("PU;") before the depth changes; it ends at (40,0).
//  - The rectangle is offset by 0 at pass 1: the clipper gives it back
//    counter-clockwise from (20,10), (0,10), (0,0), (20,0) and (20,10) again.
//    The start nearest to the tool is (20,0), index 3; reversing it (its
//    source runs clockwise) leaves index 3 on (0,10), so the cut runs (0,10)
//    (20,10), the stored start again, (20,0) (0,0) and back to (0,10). Pass 2
//    has the same Milling: the same path, at the new depth.
TEST(ClMilling, RectangleAndLineFromFileToMillingJob) {
  ClJob job;
  job.Import("PD20,0,20,10,0,10,0,0;PU30,0;PD40,0;");
  const CLCondition passes[2] = {Pass(4, 2), Pass(8, 2)};
  ASSERT_EQ(RvCLSetCutCondition("WOOD", passes, 2), 0u);
  const std::string block1 = "DF1;JT3,2;JW100;JZ-59;", block2 = "DF1;JT3,2;JW100;PU;JZ-19;";
  const std::string line = "PU0.00,30.00;PD0.00,30.00;PD0.00,40.00;";
  const std::string rectangle =
      "PU10.00,0.00;PD10.00,0.00;PD10.00,20.00;PD10.00,20.00;PD0.00,20.00;PD0.00,0.00;PD10.00,0.00;";
  EXPECT_EQ(job.Mill(ClParam()),
            block1 + line + block2 + line + "PU;" + block1 + rectangle + block2 + rectangle + "PU;");
  // The route's layers stay: the base layer, the per-art result and the
  // working layer of the import.
  for (const char* name : {"CLRouterBaseOffsetLayer", "CLRouterOffsetLayerA", "CLTempFileLayer"}) {
    EXPECT_NE(LayerNamed(name), nullptr) << name;
  }
}

}  // namespace

// Joints in a CL job whose moves are written in dialect 0: the router gives
// the 40 x 40 square one joint from its start (to 4.59 along the first
// side). Pass 1 (depth 6) runs above the joint limit 5, pass 2 (CuttingDepth
// 12, depth -2 held at 0) is the first below it, so the joint is built there.
// Every condition and depth row is the tool-machine dialect's, which counts
// downward and raises the tool over a joint only where it stands above the
// limit: "JZ-49;" over the joint in pass 1, nothing in pass 2 (dialect 0
// would write "JZ50;" there). After the job the joint is cut free at -2 held
// at -1.5 ("JZ15;"), and its layer is gone.
TEST(ClMilling, JointsKeepTheToolMachineRowsAndAreCutFreeBelowTheSheet) {
  ClJob job;
  job.Import("PD40,0,40,40,0,40,0,0;");
  const CLCondition passes[2] = {Pass(4, 2), Pass(12, 2)};
  ASSERT_EQ(RvCLSetCutCondition("WOOD", passes, 2), 0u);
  RVPLOTPARAM p = ClParam();
  p.dialect = 0;
  p.outputMicroJoints = 1, p.routerJointCount = 1, p.routerJointLength = 5.0;
  p.jointDepthLimit = 5.0;
  const std::string joint = "PU0.00,0.00;PD0.00,0.00;PD4.59,0.00;";
  const std::string rest =
      "PD4.59,0.00;PD40.00,0.00;PD40.00,0.00;PD40.00,40.00;PD40.00,40.00;PD40.00,40.00;PD40.00,40.00;"
      "PD0.00,40.00;PD0.00,40.00;PD0.00,0.00;";
  EXPECT_EQ(job.Mill(p), "DF1;JT3,2;JW100;JZ-59;JZ-49;" + joint + "JZ-59;" + rest +  //
                             "DF1;JT3,2;JW100;PU;JZ0;" + joint + "JZ0;" + rest + "PU;" +
                             "DF1;JT3,2;JW100;JZ15;" + joint + "PU;");
  EXPECT_EQ(LayerNamed("MicroJointLayer"), nullptr);
}
