// Placement matrices, the output flip, integer rectangles and block keys,
// worked out by hand for a job rectangle left 10, bottom 20, right 110,
// top 70 (w = 100, h = 50).
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "export_fixture.h"
#include "geometry/affine.h"
#include "output/block_key.h"
#include "output/int_rect.h"
#include "output/placement.h"

namespace {

const RVRECT kJob = rvtest::Rect(10, 20, 110, 70);

RVPLOTPARAM Param(uint16_t cls) { return rvtest::Param(cls, 0); }

// Each {x, y, x', y'}: m maps (x, y) to (x', y').
void ExpectMaps(const RVRIFMATRIX& m, const std::vector<std::array<double, 4>>& maps) {
  for (const auto& [x, y, ex, ey] : maps) {
    const RVPOINT q = rv::Apply(m, RVPOINT{x, y});
    EXPECT_NEAR(q.x, ex, 1e-5) << "(" << x << ", " << y << ")";
    EXPECT_NEAR(q.y, ey, 1e-5) << "(" << x << ", " << y << ")";
  }
}

// The offsets of classes 0, 1, 2, 8 and 9 without a frame are in the
// whole-export tests.
TEST(Placement, JobOffsetsAndDeviceOriginPerClassFamily) {
  // Origin (5, 7), device minimum (1, 2), frame margins (3, 4).
  struct Row { uint16_t cls; int32_t frame; double tx, ty; };
  const Row rows[] = {
      {3, 0, -14, -11},  // offsets as class 0, device origin as the others
      {0, 1, -19, -7},   // -10 - 5 - 3 - 1, -20 + 7 + 4 + 2
      {9, 1, -1, -33},   // -10 + 5 + 3 + 1, -20 - 7 - 4 - 2
  };
  for (const auto& row : rows) {
    RVPLOTPARAM p = Param(row.cls);
    p.originX = 5, p.originY = 7, p.deviceMinX = 1, p.deviceMinY = 2;
    p.drawFrame = row.frame, p.frameMarginX = 3, p.frameMarginY = 4;
    const RVRIFMATRIX m = rv::ComputePlacement(p, kJob);
    EXPECT_TRUE(m.a == 1.0 && m.b == 0.0 && m.c == 0.0 && m.d == 1.0) << row.cls;
    EXPECT_EQ(m.tx, row.tx) << row.cls;
    EXPECT_EQ(m.ty, row.ty) << row.cls;
  }
}

// Rotations of class 6 are in the whole-export tests; here the other sides
// of the rotated placement, the milling classes and the mirror.
TEST(Placement, RotationMirrorAndScale) {
  struct Row { uint16_t cls; double rotation; int32_t mirror; double scaleX, scaleY; bool baseOnly;
               std::vector<std::array<double, 4>> maps; };
  const Row rows[] = {
      // Three quarters, classes 0, 3, 4, 11: translation (w - h, w).
      {4, rv::kThreeQuarterTurn, 0, 100, 100, false, {{10, 20, 50, 100}, {110, 20, 50, 0}, {10, 70, 100, 100}}},
      // Quarter turn, classes 8, 9: translation (h, h - w).
      {8, rv::kQuarterTurn, 0, 100, 100, false, {{10, 20, 50, -50}, {110, 20, 50, 50}}},
      // Three quarters, milling: (0,0) -> rotated (0,0) -> + ((w - h) sx, sy w) = (25, 200) -> scaled.
      {5, rv::kThreeQuarterTurn, 0, 50, 200, true, {{10, 20, 12.5, 400}}},
      // (0,0) -> mirrored (0,0) -> + (w, 0) -> x 0.5 -> + rw (1 - 0.5).
      {0, 0.0, 1, 50, 100, false, {{10, 20, 100, 0}, {110, 20, 50, 0}, {110, 70, 50, 50}}},
      // The rotated corner (10,20) lands at (50, 0); mirrored: -50 + h = 0.
      {2, rv::kQuarterTurn, 1, 100, 100, true, {{10, 20, 0, 0}, {10, 70, 50, 0}}},
      // Rotated: corner (10,20) -> (100, 0); mirror t = 2w - h = 150.
      {11, rv::kQuarterTurn, 1, 100, 100, true, {{10, 20, 50, 0}}},
      // t = sx w = 200, then x 2: (0,0) -> 400.
      {12, 0.0, 1, 200, 100, true, {{10, 20, 400, 0}}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(::testing::Message() << row.cls << " " << row.rotation << " " << row.mirror);
    RVPLOTPARAM p = Param(row.cls);
    p.rotation = row.rotation, p.mirror = row.mirror, p.scaleX = row.scaleX, p.scaleY = row.scaleY;
    ExpectMaps(row.baseOnly ? rv::BasePlacement(p, kJob) : rv::ComputePlacement(p, kJob), row.maps);
  }
}

TEST(Placement, TransformOfClasses8And10) {
  RVPLOTPARAM p = Param(10);
  p.usePlacementTransform = 1;
  p.placementScaleX = 2, p.placementScaleY = 3, p.placementOffsetX = 4, p.placementOffsetY = 5;
  ExpectMaps(rv::ComputePlacement(p, kJob), {{10, 20, 4, 5}, {110, 70, 204, 155}});
  p.plotterClass = 8, p.placementRotation = 3.141592653589793;
  // (x, y) -> (x, y - 50) -> (-x, 50 - y) -> (-x, 100 - y) -> (4 - x, 95 - y)
  ExpectMaps(rv::ComputePlacement(p, kJob), {{10, 20, 4, 95}, {110, 70, -96, 45}});
  p.plotterClass = 9;  // no transform outside 8 and 10
  ExpectMaps(rv::ComputePlacement(p, kJob), {{10, 20, 0, 0}});
  p.plotterClass = 10, p.usePlacementTransform = 0;
  ExpectMaps(rv::ComputePlacement(p, kJob), {{10, 20, 0, 0}});
}

// The flips of classes 0, 1 and 9 show in the whole exports.
TEST(Placement, OutputFlipAndMargins) {
  ExpectMaps(rv::OutputFlip(Param(13), kJob), {{30, 40, 30, 40}});
  RVPLOTPARAM p = Param(0);
  p.marginLeft = 1, p.marginTop = 2, p.marginBottom = 3, p.marginRight = 4;
  const RVRECT g = rv::GrowByMargins(p, kJob);
  EXPECT_TRUE(g.left == 9 && g.top == 72 && g.bottom == 17 && g.right == 114);
}

TEST(IntRect, EdgesAndEmptyIntersections) {
  const rv::IntRect r{0, 0, 10, 10};
  EXPECT_TRUE(rv::PtInRect(r, 0, 0) && rv::PtInRect(r, 9, 9));
  EXPECT_FALSE(rv::PtInRect(r, 10, 5) || rv::PtInRect(r, 5, 10) || rv::PtInRect(r, -1, 0));
  rv::IntRect out{1, 1, 1, 1};
  EXPECT_FALSE(rv::IntersectRect(out, r, rv::IntRect{10, 0, 20, 10}));  // touching
  EXPECT_EQ(out.right, 0);
  EXPECT_TRUE(rv::IntersectRect(out, r, rv::IntRect{5, 5, 15, 15}));
  EXPECT_TRUE(out.left == 5 && out.top == 5 && out.right == 10 && out.bottom == 10);
  EXPECT_FALSE(rv::IntersectRect(out, rv::IntRect{0, 0, 0, 10}, rv::IntRect{-5, -5, 5, 5}));
  EXPECT_FALSE(rv::IntersectRect(out, r, rv::IntRect{20, 20, 30, 30}));
  EXPECT_TRUE(rv::IntersectRect(out, r, r));
}

TEST(BlockKey, SerpentineRowsOverTheWorkingArea) {
  rv::BlockGrid g;  // class 0: 50 mm blocks, 1000 wide: 21 columns
  g.areaWidth = 1000;
  g.areaHeight = 500;
  rv::BlockGrid shifted = g;
  shifted.minX = 100, shifted.minY = 7;  // x pairs with minY, y with minX outside class 1
  rv::BlockGrid c1;  // class 1: 10 mm blocks over the height: 10 columns
  c1.plotterClass = 1, c1.minX = 5, c1.minY = 10, c1.areaWidth = 3000, c1.areaHeight = 95;
  struct Row { const rv::BlockGrid& grid; double x, y; int32_t key; };
  const Row rows[] = {
      {g, 120, 30, 2},        {g, 120, 70, 21 + 19},  // odd rows run back
      {g, -5, 130, 42},                               // left of the area: a = 0
      {g, 1200, 0, 19},                               // beyond: a = extent - 1
      {g, 1000, 0, 20},                               // on the extent itself
      {g, 0, 100000, int16_t(42000)},                 // 16-bit wrap
      {shifted, 57, 150, 21 + 20}, {c1, 30, 35, 22}, {c1, 30, 22, 10 + 8},
  };
  for (const auto& row : rows) EXPECT_EQ(rv::BlockKey(row.grid, row.x, row.y), row.key) << row.x << " " << row.y;
}

}  // namespace
