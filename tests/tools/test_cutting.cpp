// Paths made ready for the cutter: one Bezier component per path, arcs as
// Bezier pieces.
#include <gtest/gtest.h>

#include <cmath>
#include <csignal>

#include "api_drawing.h"
#include "cutting.h"
#include "drawing.h"
#include "filing.h"
#include "progress.h"
#include "test_support.h"

namespace {

using tooltest::ApiDrawing;
using tooltest::Corner;

std::vector<RVBEZIERPOINT> Points(void* bezier) {
  int32_t count = 0;
  EXPECT_EQ(RvGiGetPathSegmentCount(bezier, &count), 0u);
  std::vector<RVBEZIERPOINT> out(static_cast<std::size_t>(count));
  for (int32_t i = 0; i < count; ++i) EXPECT_EQ(RvGiGetBezierPoint(bezier, i, &out[i]), 0u);
  return out;
}

void ExpectPoint(const RVPOINT& p, double x, double y) {
  EXPECT_NEAR(p.x, x, 1e-9);
  EXPECT_NEAR(p.y, y, 1e-9);
}

TEST(ToolCutting, AnArcPathBecomesOneBezierOfItsPieces) {
  ApiDrawing drawing;
  EXPECT_TRUE(rvtool::PrepareForCutting(drawing.arc));
  const std::vector<void*> parts = rvtool::Components(drawing.arc);
  ASSERT_EQ(parts.size(), 1u);
  EXPECT_EQ(rvtool::ArtType(parts[0]), 2);
  // Half a turn about (40,20) from (50,20), counter-clockwise: three pieces of
  // 60 degrees, anchors at 0, 60, 120 and 180 degrees, rounded to 0.001.
  const auto points = Points(parts[0]);
  ASSERT_EQ(points.size(), 4u);
  ExpectPoint(points[0].anchor, 50, 20);
  ExpectPoint(points[1].anchor, 45, 28.66);
  ExpectPoint(points[2].anchor, 35, 28.66);
  ExpectPoint(points[3].anchor, 30, 20);
  ExpectPoint(points[0].in, 50, 20);   // far handles on their anchors
  ExpectPoint(points[3].out, 30, 20);
  EXPECT_GT(points[0].out.y, 20.5);    // the curve leaves upwards
}

TEST(ToolCutting, ComponentsJoinAtTheirSharedPoint) {
  ApiDrawing drawing;
  void* layer = rvtool::Layers()[0];
  void* path = nullptr;
  ASSERT_EQ(RvGiCreateArt(4, 5, layer, &path), 0u);
  void* first = nullptr;
  void* arc = nullptr;
  void* last = nullptr;
  ASSERT_EQ(RvGiCreateArt(2, 5, path, &first), 0u);
  ASSERT_EQ(RvGiCreateArt(5, 5, path, &arc), 0u);
  ASSERT_EQ(RvGiCreateArt(2, 5, path, &last), 0u);
  for (const RVBEZIERPOINT& p : {Corner(0, 0), Corner(10, 0)}) ASSERT_EQ(RvGiAddBezierPoint(first, &p), 0u);
  // Half a turn about (10,5) from (10,0) to (10,10), counter-clockwise.
  ASSERT_EQ(rv::Guard([&] {
              rv::CRvDataAccess::Instance().AddArcPoint(rv::ArtOf(arc),
                                                         RVARCPOINT{{10, 0}, {10, 10}, {10, 5}, 180, 1});
            }),
            0u);
  for (const RVBEZIERPOINT& p : {Corner(10, 10), Corner(0, 10), Corner(0, 0)})
    ASSERT_EQ(RvGiAddBezierPoint(last, &p), 0u);
  ASSERT_EQ(RvGiSetPathClosed(path, 1), 0u);

  EXPECT_TRUE(rvtool::PrepareForCutting(path));
  const std::vector<void*> parts = rvtool::Components(path);
  ASSERT_EQ(parts.size(), 1u);
  // (0,0) (10,0)=arc start, two inner arc anchors, (10,10)=arc end, (0,10), (0,0).
  const auto points = Points(parts[0]);
  ASSERT_EQ(points.size(), 7u);
  ExpectPoint(points[1].anchor, 10, 0);
  ExpectPoint(points[1].in, 10, 0);        // arrives straight, as the line did
  EXPECT_GT(points[1].out.x, 10.5);        // leaves along the arc
  ExpectPoint(points[2].anchor, 14.33, 2.5);  // 60 degrees on: 10 + 5 sin 60, 5 - 5 cos 60
  ExpectPoint(points[4].anchor, 10, 10);
  EXPECT_GT(points[4].in.x, 10.5);         // arrives along the arc
  ExpectPoint(points[4].out, 10, 10);      // leaves straight
  ExpectPoint(points[6].anchor, 0, 0);
  // The old components are gone from the path; a second pass changes nothing.
  EXPECT_FALSE(rvtool::PrepareForCutting(path));
}

TEST(ToolCutting, EmptyPathsStayAndAreNotFiled) {
  ApiDrawing drawing;
  void* layer = rvtool::Layers()[0];
  void* empty = nullptr;
  ASSERT_EQ(RvGiCreateArt(4, 5, layer, &empty), 0u);
  EXPECT_EQ(rvtool::PrepareAllForCutting(), 1);  // the arc path only
  EXPECT_TRUE(rvtool::Components(empty).empty());
  const auto groups = rvtool::GroupPaths(rvtool::FileBy::Layer);
  ASSERT_EQ(groups.size(), 2u);
  EXPECT_EQ(groups[0].paths, (std::vector<void*>{drawing.square}));
}

TEST(ToolCutting, CtrlCReachesTheExportThroughTheProgressBar) {
  ApiDrawing drawing;
  rvtool::PrepareAllForCutting();
  rvtool::RefMapTables tables;
  rvtool::FileInRefMap(rvtool::GroupPaths(rvtool::FileBy::Layer), rvtool::FileBy::Layer);
  RVPLOTPARAM param{};
  param.plotterClass = 1;
  param.scaleX = param.scaleY = 100;
  param.deviceUnit = 0.025;
  param.curveMaxLength = 31000;
  param.curveTolerance = 0.03;
  rvtest::TempDir dir;
  rvtool::ProgressBar bar(false);
  ASSERT_EQ(RvExRIFToRVL(dir.file("a.rvl").c_str(), drawing.index(), &param, bar.context()), 0u);
  EXPECT_EQ(bar.steps(), 2);  // one step per art
  EXPECT_EQ(bar.lastPercent(), 100);

  rvtool::InstallInterruptHandler();
  std::raise(SIGINT);
  EXPECT_TRUE(rvtool::Interrupted());
  EXPECT_EQ(RvExRIFToRVL(dir.file("b.rvl").c_str(), drawing.index(), &param, bar.context()), 0x06001F01u);
  param.sortArts = 1;
  EXPECT_EQ(RvExRIFToRVL(dir.file("c.rvl").c_str(), drawing.index(), &param, bar.context()), 0x0A001F01u);
  rvtool::ResetInterrupted();
  std::signal(SIGINT, SIG_DFL);
}

}  // namespace
