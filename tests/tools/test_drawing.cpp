// The tool's work on a drawing made through the exported functions: paths
// below deep nesting, flattened geometry, the report of `info`, paths made
// one Bezier each and filed in a RefMap table with their media, and Ctrl-C
// handed to the export through the progress bar.
#include <gtest/gtest.h>

#include <cmath>
#include <csignal>
#include <sstream>
#include <tuple>

#include "commands.h"
#include "conditions.h"
#include "cutting.h"
#include "drawing.h"
#include "failure.h"
#include "filing.h"
#include "geometry.h"
#include "progress.h"
#include "drawing_text.h"
#include "test_support.h"
#include "tool_test.h"

namespace {

using rvtool::FileBy;
using tooltest::ApiDrawing;
using tooltest::NewArt;

std::string Text(const RVPOINT& p) {
  char text[64];
  std::snprintf(text, sizeof text, "%g,%g", std::round(p.x * 1e6) / 1e6, std::round(p.y * 1e6) / 1e6);
  return text;
}

TEST(ToolDrawing, DeepNestingFlatteningOfCornersAndArcsAndTheMatrix) {
  ApiDrawing drawing;
  // Paths below deep nesting are found without recursion.
  void* parent = drawing.frame;
  for (int i = 0; i < 20000; ++i) parent = NewArt(1, parent);
  void* deep = NewArt(4, parent);
  std::vector<void*> paths;
  rvtool::ForEachPath(drawing.frame, [&](void* p) { paths.push_back(p); });
  EXPECT_EQ(paths, (std::vector<void*>{drawing.square, drawing.a, drawing.b, deep}));
  const rvtool::Scene scene = rvtool::SceneOfActiveDocument();
  ASSERT_EQ(scene.strokes.size(), 4u);  // the deep path has nothing to draw
  std::string square;
  for (const RVPOINT& p : scene.strokes[0].points) square += Text(p) + " ";
  EXPECT_EQ(square, "10,10 30,10 30,30 10,30 10,10 ");
  EXPECT_TRUE(scene.strokes[0].closed);
  const rvtool::Stroke& arc = scene.strokes[3];
  EXPECT_FALSE(arc.closed);
  ASSERT_GE(arc.points.size(), 7u);  // at least three pieces of 60 degrees, bent
  EXPECT_EQ(Text(arc.points.front()) + " " + Text(arc.points.back()), "50,20 30,20");
  for (const RVPOINT& p : arc.points) {
    EXPECT_NEAR(std::hypot(p.x - 40, p.y - 20), 10.0, 0.03);  // flatness 0.02 plus rounding
    EXPECT_GE(p.y, 20 - 1e-9);  // counter-clockwise from (50,20): over the top
  }
  // The scene's bounds: the lines' start, the arc's right end and its top (within the flatness).
  EXPECT_EQ(Text({scene.bounds.left, scene.bounds.bottom}) + " " +
                Text({scene.bounds.right, std::round(scene.bounds.top * 10) / 10}),
            "0,0 50,30");
  RVRIFMATRIX shift{1, 0, 0, 1, 100, -5};
  ASSERT_EQ(RvGiSetArtMatrix(drawing.square, &shift), 0u);
  EXPECT_EQ(Text(rvtool::FlattenPath(drawing.square).points.at(2)), "130,25");
}

TEST(ToolDrawing, InfoReportListsEveryLayerAndFailedReadsBecomeFailures) {
  // The report of the samples is checked through the tool; here a document
  // of three layers, one of them empty.
  ApiDrawing drawing;
  void* empty = nullptr;
  ASSERT_EQ(RvGiCreateLayer(1, nullptr, &empty), 0u);  // the library names it "Layer3"
  std::ostringstream out;
  rvtool::DescribeActiveDocument("api", out);
  for (const char* part : {"file        api\nlayers      3\npaths       4 (1 closed, 3 open)\n",
                           "\nlayer 1 \"Arcs\"\n  paths       1 (0 closed)\n  components  1\n  points      1\n",
                           "\nlayer 2 \"Layer3\"\n  paths       0 (0 closed)\n  components  0\n  points      0\n"
                           "  bounds      none\n"})
    EXPECT_TRUE(tooltest::Contains(out.str(), part)) << part << "\nin\n" << out.str();
  ASSERT_EQ(RvGiDeleteActiveDocument(), 0u);
  void* layer = nullptr;
  EXPECT_THROW(rvtool::CheckRead(RvGiGetLayer(&layer, 0)), rvtool::Failure);  // no document is active
}

TEST(ToolCutting, ComponentsBecomeOneBezierJoinedAtTheirSharedPoints) {
  ApiDrawing drawing;
  // Lines (0,0)-(10,0), half a turn about (10,5) to (10,10), lines back to (0,0).
  void* path = NewArt(4, drawing.frame);
  tooltest::AddCorners(NewArt(2, path), {{0, 0}, {10, 0}});
  tooltest::AddArc(NewArt(5, path), RVARCPOINT{{10, 0}, {10, 10}, {10, 5}, 180, 1});
  tooltest::AddCorners(NewArt(2, path), {{10, 10}, {0, 10}, {0, 0}});
  EXPECT_TRUE(rvtool::PrepareForCutting(path));
  const std::vector<void*> parts = rvtool::Components(path);
  ASSERT_EQ(parts.size(), 1u);
  ASSERT_EQ(rvtool::ArtType(parts[0]), 2);
  // The arc in three pieces of 60 degrees (anchors rounded to 0.001: 10 + 5
  // sin 60, 5 -+ 5 cos 60, handles 5 * 4/3 tan 15 = 1.786 along the
  // tangents); where it meets the lines, one point that arrives straight
  // and leaves along the arc, or the other way round.
  EXPECT_EQ(rvtest::ComponentText(parts[0]), "B(0,0 10,0{10,0;11.786,0} 14.33,2.5{13.437,0.953;15.223,4.047} "
            "14.33,7.5{15.223,5.953;13.437,9.047} 10,10{11.786,10;10,10} 0,10 0,0)");
  EXPECT_FALSE(rvtool::PrepareForCutting(path));  // one Bezier already
}

TEST(ToolFiling, KeysAreLayerOrStrokeColourNamesInOrderOfTheirFirstPath) {
  ApiDrawing drawing;
  void* empty = NewArt(4, drawing.frame);
  EXPECT_EQ(rvtool::PrepareAllForCutting(), 1);  // the arc path only
  EXPECT_TRUE(rvtool::Components(empty).empty());  // so it has nothing to cut and stays out
  for (auto [path, name] : {std::pair{drawing.a, "Red"}, {drawing.arc, "Red"}, {drawing.b, "Blue"}}) {
    RVCOLOR colour{};
    colour.kind = 1;
    ASSERT_EQ(RvGiSetPathColor(2, path, &colour, name), 0u);
  }
  ASSERT_EQ(RvGiSetPathAttrFlag(drawing.a, 4), 0u);
  // Filing, the keys with their numbers of paths, and the paths in their
  // order. By colour the square, without a stroke colour, is "None".
  using Row = std::tuple<FileBy, std::vector<std::string>, std::vector<void*>>;
  const ApiDrawing& d = drawing;
  for (const auto& [by, keys, filed] :
       {Row{FileBy::Layer, {"Frame 3", "Arcs 1"}, {d.square, d.a, d.b, d.arc}},
        Row{FileBy::Colour, {"None 1", "Red 2", "Blue 1"}, {d.square, d.a, d.arc, d.b}}}) {
    rvtool::RefMapTables tables;
    const auto groups = rvtool::GroupPaths(by);
    std::vector<std::string> counted;
    for (const rvtool::FiledKey& group : groups)
      counted.push_back(group.key + " " + std::to_string(group.paths.size()));
    EXPECT_EQ(counted, keys);
    const int16_t map = rvtool::FileInRefMap(groups, by);
    EXPECT_EQ(map, 0);  // the first table: the one before went with its owner
    // The table's arts marked for output (info 2), in the trace's order:
    // the keys' paths in drawing order.
    std::vector<void*> traced;
    auto collect = [](void* context, void* art) -> uint32_t {
      static_cast<std::vector<void*>*>(context)->push_back(art);
      return 0;
    };
    ASSERT_EQ(RvGiRefMapTableTrace(map, 2, &traced, collect, 1), 0u);
    EXPECT_EQ(traced, filed);
    EXPECT_EQ(RvGiGetRefMapArtCount(map), static_cast<int32_t>(keys.size()));
  }
  // Every path counts for the job's bounds; flags already set stay.
  uint8_t flags = 0;
  ASSERT_EQ(RvGiGetPathAttrFlag(drawing.square, &flags), 0u);
  EXPECT_EQ(flags, 2);
  ASSERT_EQ(RvGiGetPathAttrFlag(drawing.a, &flags), 0u);
  EXPECT_EQ(flags, 6);
}

TEST(ToolFiling, MediaGoesIntoThePlotInfoByKeyOrForAll) {
  ApiDrawing drawing;
  const auto groups = rvtool::GroupPaths(FileBy::Layer);
  char text[256] = {};
  int32_t value = -1;
  // Without a default only the named keys get one.
  EXPECT_EQ(rvtool::AssignMedia(groups, {{"Arcs", "Film"}}, ""), 1);
  EXPECT_EQ(RvGiGetPathPlotInfo(drawing.square, &value, text), 0x06001001u);
  EXPECT_EQ(rvtool::AssignMedia(groups, {{"Arcs", "Film"}}, "Vinyl"), 4);
  ASSERT_EQ(RvGiGetPathPlotInfo(drawing.b, &value, text), 0u);
  EXPECT_STREQ(text, "Vinyl");
  ASSERT_EQ(RvGiGetPathPlotInfo(drawing.arc, &value, text), 0u);
  EXPECT_STREQ(text, "Film");
}

TEST(ToolConditions, TheTableIsEmptiedWithItsOwner) {
  {
    rvtool::ConditionTable table;
    table.LoadXml(tooltest::Sample("sign-conditions.xml"), 0);
    EXPECT_EQ(table.Passes("Sandblast mask"), 2);
  }
  EXPECT_EQ(RvGetRepeatCount("Sandblast mask"), 0);
}

TEST(ToolCutting, CtrlCReachesTheExportAndTheSortThroughTheProgressBar) {
  ApiDrawing drawing;
  rvtool::PrepareAllForCutting();
  rvtool::RefMapTables tables;
  rvtool::FileInRefMap(rvtool::GroupPaths(FileBy::Layer), FileBy::Layer);
  RVPLOTPARAM param{};
  param.plotterClass = 1;
  param.scaleX = param.scaleY = 100;
  param.deviceUnit = 0.025;
  param.curveMaxLength = 31000;
  param.curveTolerance = 0.03;
  rvtest::TempDir dir;
  rvtool::ProgressBar bar(false);
  ASSERT_EQ(RvExRIFToRVL(dir.file("a.rvl").c_str(), drawing.index, &param, bar.context()), 0u);
  EXPECT_EQ(bar.steps(), 4);  // one step per art
  EXPECT_EQ(bar.lastPercent(), 100);

  rvtool::InstallInterruptHandler();
  std::raise(SIGINT);
  EXPECT_TRUE(rvtool::Interrupted());
  EXPECT_EQ(RvExRIFToRVL(dir.file("b.rvl").c_str(), drawing.index, &param, bar.context()), 0x06001F01u);
  param.sortArts = 1;
  EXPECT_EQ(RvExRIFToRVL(dir.file("c.rvl").c_str(), drawing.index, &param, bar.context()), 0x0A001F01u);
  rvtool::ResetInterrupted();
  std::signal(SIGINT, SIG_DFL);
}

}  // namespace
