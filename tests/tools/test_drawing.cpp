// The tool's reading of a drawing: paths in drawing order, flattened
// geometry, and the report of `info`.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "api_drawing.h"
#include "commands.h"
#include "drawing.h"
#include "failure.h"
#include "geometry.h"

namespace {

using tooltest::ApiDrawing;

TEST(ToolDrawing, PathsAreFoundInDrawingOrderThroughGroups) {
  ApiDrawing drawing;
  const std::vector<void*> layers = rvtool::Layers();
  ASSERT_EQ(layers.size(), 2u);
  EXPECT_EQ(rvtool::LayerName(layers[0]), "Frame");
  EXPECT_EQ(rvtool::LayerName(layers[1]), "Arcs");
  std::vector<void*> paths;
  for (void* layer : layers) rvtool::ForEachPath(layer, [&](void* p) { paths.push_back(p); });
  EXPECT_EQ(paths, (std::vector<void*>{drawing.square, drawing.arc}));
}

TEST(ToolDrawing, DeepNestingIsWalkedWithoutRecursion) {
  ApiDrawing drawing;
  void* layer = rvtool::Layers()[0];
  void* parent = layer;
  for (int i = 0; i < 20000; ++i) {
    void* group = nullptr;
    ASSERT_EQ(RvGiCreateArt(1, 5, parent, &group), 0u);
    parent = group;
  }
  void* deep = nullptr;
  ASSERT_EQ(RvGiCreateArt(4, 5, parent, &deep), 0u);
  int count = 0;
  void* last = nullptr;
  rvtool::ForEachPath(layer, [&](void* p) { ++count; last = p; });
  EXPECT_EQ(count, 2);
  EXPECT_EQ(last, deep);
}

TEST(ToolDrawing, FlatteningKeepsCornersAndPutsArcsOnTheirCircle) {
  ApiDrawing drawing;
  const rvtool::Stroke square = rvtool::FlattenPath(drawing.square);
  EXPECT_TRUE(square.closed);
  const std::vector<std::pair<double, double>> corners{{10, 10}, {30, 10}, {30, 30}, {10, 30}, {10, 10}};
  ASSERT_EQ(square.points.size(), corners.size());
  for (std::size_t i = 0; i < corners.size(); ++i) {
    EXPECT_DOUBLE_EQ(square.points[i].x, corners[i].first);
    EXPECT_DOUBLE_EQ(square.points[i].y, corners[i].second);
  }

  const rvtool::Stroke arc = rvtool::FlattenPath(drawing.arc);
  EXPECT_FALSE(arc.closed);
  ASSERT_GE(arc.points.size(), 7u);  // at least three pieces of 60 degrees, bent
  EXPECT_NEAR(arc.points.front().x, 50, 1e-9);
  EXPECT_NEAR(arc.points.back().x, 30, 1e-9);
  double top = 0;
  for (const RVPOINT& p : arc.points) {
    EXPECT_NEAR(std::hypot(p.x - 40, p.y - 20), 10.0, 0.03);  // flatness 0.02 plus rounding
    EXPECT_GE(p.y, 20 - 1e-9);  // counter-clockwise from (50,20): over the top
    top = std::max(top, p.y);
  }
  EXPECT_NEAR(top, 30, 0.03);
}

TEST(ToolDrawing, PathMatrixMovesThePoints) {
  ApiDrawing drawing;
  RVRIFMATRIX shift{1, 0, 0, 1, 100, -5};
  ASSERT_EQ(RvGiSetArtMatrix(drawing.square, &shift), 0u);
  const rvtool::Stroke square = rvtool::FlattenPath(drawing.square);
  ASSERT_EQ(square.points.size(), 5u);
  EXPECT_DOUBLE_EQ(square.points[2].x, 130);
  EXPECT_DOUBLE_EQ(square.points[2].y, 25);
}

TEST(ToolDrawing, SceneHoldsEveryPathAndTheirBounds) {
  ApiDrawing drawing;
  const rvtool::Scene scene = rvtool::SceneOfActiveDocument();
  ASSERT_EQ(scene.strokes.size(), 2u);
  EXPECT_DOUBLE_EQ(scene.bounds.left, 10);
  EXPECT_DOUBLE_EQ(scene.bounds.bottom, 10);
  EXPECT_DOUBLE_EQ(scene.bounds.right, 50);
  EXPECT_NEAR(scene.bounds.top, 30, 0.03);
}

TEST(ToolDrawing, InfoReportCountsLayersPathsComponentsAndPoints) {
  ApiDrawing drawing;
  std::ostringstream out;
  rvtool::DescribeActiveDocument("api", out);
  const std::string text = out.str();
  EXPECT_NE(text.find("file        api\n"), std::string::npos) << text;
  EXPECT_NE(text.find("layers      2\n"), std::string::npos) << text;
  EXPECT_NE(text.find("paths       2 (1 closed, 1 open)\n"), std::string::npos) << text;
  EXPECT_NE(text.find("components  2 (1 Bezier, 1 arc, 0 splines)\n"), std::string::npos) << text;
  EXPECT_NE(text.find("points      6\n"), std::string::npos) << text;
  EXPECT_NE(text.find("layer 0 \"Frame\"\n  paths       1 (1 closed)\n  components  1\n  points      5\n"
                      "  bounds      x 10.000 .. 30.000, y 10.000 .. 30.000 mm (20.000 x 20.000 mm)\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("layer 1 \"Arcs\"\n  paths       1 (0 closed)\n  components  1\n  points      1\n"),
            std::string::npos)
      << text;
}

TEST(ToolDrawing, EmptyLayerHasNoBounds) {
  ApiDrawing drawing;
  void* empty = nullptr;
  ASSERT_EQ(RvGiCreateLayer(1, nullptr, &empty), 0u);
  std::ostringstream out;
  rvtool::DescribeActiveDocument("api", out);
  EXPECT_NE(out.str().find("layer 2 \"Layer3\"\n  paths       0 (0 closed)\n  components  0\n  points      0\n"
                           "  bounds      none\n"),
            std::string::npos)
      << out.str();
}

TEST(ToolDrawing, FailedReadsBecomeFailures) {
  // No active document: the layer read fails with the library's code.
  ApiDrawing drawing;
  ASSERT_EQ(RvGiDeleteActiveDocument(), 0u);
  try {
    rvtool::Layers();
    void* layer = nullptr;
    rvtool::CheckRead(RvGiGetLayer(&layer, 0));
    FAIL() << "no failure";
  } catch (const rvtool::Failure& failure) {
    EXPECT_EQ(failure.status(), 9);
    EXPECT_NE(std::string(failure.what()).find("no document is active"), std::string::npos);
  }
}

}  // namespace
