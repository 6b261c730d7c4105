// Placement matrices, the output flip, integer rectangles and block keys,
// worked out by hand for a job rectangle left 10, bottom 20, right 110,
// top 70 (w = 100, h = 50).
#include <gtest/gtest.h>

#include <cmath>

#include "geometry/affine.h"
#include "output/block_key.h"
#include "output/int_rect.h"
#include "output/placement.h"

namespace {

RVRECT JobRect() {
  RVRECT r;
  r.top = 70;
  r.left = 10;
  r.right = 110;
  r.bottom = 20;
  return r;
}

RVPLOTPARAM Param(uint16_t cls) {
  RVPLOTPARAM p{};
  p.plotterClass = cls;
  p.scaleX = 100.0;
  p.scaleY = 100.0;
  p.deviceUnit = 1.0;
  return p;
}

void ExpectMaps(const RVRIFMATRIX& m, double x, double y, double ex, double ey) {
  const RVPOINT q = rv::Apply(m, RVPOINT{x, y});
  EXPECT_NEAR(q.x, ex, 1e-5) << "(" << x << ", " << y << ")";
  EXPECT_NEAR(q.y, ey, 1e-5) << "(" << x << ", " << y << ")";
}

TEST(Placement, OffsetsAndDeviceOriginPerClassFamily) {
  RVPLOTPARAM p = Param(0);
  p.originX = 5;
  p.originY = 7;
  p.deviceMinX = 1;
  p.deviceMinY = 2;
  RVRIFMATRIX m = rv::ComputePlacement(p, JobRect());
  EXPECT_EQ(m.a, 1.0);
  EXPECT_EQ(m.d, 1.0);
  EXPECT_EQ(m.b, 0.0);
  EXPECT_EQ(m.c, 0.0);
  EXPECT_EQ(m.tx, -16.0);  // -10 - originX - deviceMinX
  EXPECT_EQ(m.ty, -11.0);  // -20 + originY + deviceMinY

  p.plotterClass = 3;  // offsets as class 0, device origin as the others
  m = rv::ComputePlacement(p, JobRect());
  EXPECT_EQ(m.tx, -14.0);
  EXPECT_EQ(m.ty, -11.0);

  p.plotterClass = 8;
  m = rv::ComputePlacement(p, JobRect());
  EXPECT_EQ(m.tx, -4.0);   // -10 + originX + deviceMinX
  EXPECT_EQ(m.ty, -29.0);  // -20 - originY - deviceMinY

  p.plotterClass = 2;
  m = rv::ComputePlacement(p, JobRect());
  EXPECT_EQ(m.tx, -4.0);
  EXPECT_EQ(m.ty, -11.0);

  p.plotterClass = 0;
  p.drawFrame = 1;
  p.frameMarginX = 3;
  p.frameMarginY = 4;
  m = rv::ComputePlacement(p, JobRect());
  EXPECT_EQ(m.tx, -19.0);
  EXPECT_EQ(m.ty, -7.0);
  p.plotterClass = 9;
  m = rv::ComputePlacement(p, JobRect());
  EXPECT_EQ(m.tx, -1.0);   // -10 + 5 + 3 + 1
  EXPECT_EQ(m.ty, -33.0);  // -20 - 7 - 4 - 2
}

TEST(Placement, OnlyTheThreeSinglePrecisionRotationsAct) {
  RVPLOTPARAM p = Param(2);
  for (double r : {0.0, 0.5, 1.5707963267948966, 3.141592653589793, 4.71238898038469, -1.5707963705062866}) {
    p.rotation = r;
    const RVRIFMATRIX m = rv::ComputePlacement(p, JobRect());
    EXPECT_EQ(m.a, 1.0) << r;
    EXPECT_EQ(m.b, 0.0) << r;
    EXPECT_EQ(m.tx, -10.0) << r;
    EXPECT_EQ(m.ty, -20.0) << r;
  }

  // Half turn, other classes: translation (w, h).
  p.rotation = rv::kHalfTurn;
  RVRIFMATRIX m = rv::ComputePlacement(p, JobRect());
  EXPECT_EQ(m.a, std::cos(3.1415927410125732));
  EXPECT_NE(m.b, 0.0);  // single precision: the sine isn't 0
  ExpectMaps(m, 10, 20, 100, 50);
  ExpectMaps(m, 110, 70, 0, 0);

  // Quarter turn, other classes: translation (h, 0).
  p.rotation = rv::kQuarterTurn;
  m = rv::ComputePlacement(p, JobRect());
  EXPECT_NE(m.a, 0.0);
  ExpectMaps(m, 10, 20, 50, 0);
  ExpectMaps(m, 110, 20, 50, 100);
  ExpectMaps(m, 10, 70, 0, 0);

  // Three quarters, classes 0, 3, 4, 11: translation (w - h, w).
  p = Param(4);
  p.rotation = rv::kThreeQuarterTurn;
  m = rv::ComputePlacement(p, JobRect());
  ExpectMaps(m, 10, 20, 50, 100);
  ExpectMaps(m, 110, 20, 50, 0);
  ExpectMaps(m, 10, 70, 100, 100);

  // Quarter turn, classes 8, 9: translation (h, h - w).
  p = Param(8);
  p.rotation = rv::kQuarterTurn;
  m = rv::ComputePlacement(p, JobRect());
  ExpectMaps(m, 10, 20, 50, -50);
  ExpectMaps(m, 110, 20, 50, 50);

  // Three quarters, milling classes, scaled: ((w - h) sx, sy w), then the scale.
  p = Param(5);
  p.rotation = rv::kThreeQuarterTurn;
  p.scaleX = 50;
  p.scaleY = 200;
  m = rv::BasePlacement(p, JobRect());
  // (0,0) -> rotated (0,0) -> + (25, 200) -> scaled (12.5, 400)
  ExpectMaps(m, 10, 20, 12.5, 400);
}

TEST(Placement, MirrorAndScale) {
  RVPLOTPARAM p = Param(0);
  p.mirror = 1;
  p.scaleX = 50;
  RVRIFMATRIX m = rv::ComputePlacement(p, JobRect());
  // (0,0) -> mirrored (0,0) -> + (w, 0) -> x 0.5 -> + rw (1 - 0.5)
  ExpectMaps(m, 10, 20, 100, 0);
  ExpectMaps(m, 110, 20, 50, 0);
  ExpectMaps(m, 110, 70, 50, 50);

  p = Param(2);
  p.mirror = 1;
  p.rotation = rv::kQuarterTurn;
  m = rv::BasePlacement(p, JobRect());
  // rotated corner (10,20) lands at (50, 0); mirrored: -50 + h = 0.
  ExpectMaps(m, 10, 20, 0, 0);
  ExpectMaps(m, 10, 70, 50, 0);

  p = Param(11);
  p.mirror = 1;
  p.rotation = rv::kQuarterTurn;
  m = rv::BasePlacement(p, JobRect());
  // rotated: (x, y) -> (-y' + w, x'); corner (10,20) -> (100, 0); mirror t = 2w - h = 150.
  ExpectMaps(m, 10, 20, 50, 0);

  p = Param(12);
  p.mirror = 1;
  p.scaleX = 200;
  m = rv::BasePlacement(p, JobRect());
  // t = sx w = 200, then x 2: (0,0) -> 400.
  ExpectMaps(m, 10, 20, 400, 0);
}

TEST(Placement, TransformOfClasses8And10) {
  RVPLOTPARAM p = Param(10);
  p.usePlacementTransform = 1;
  p.placementScaleX = 2;
  p.placementScaleY = 3;
  p.placementOffsetX = 4;
  p.placementOffsetY = 5;
  RVRIFMATRIX m = rv::ComputePlacement(p, JobRect());
  ExpectMaps(m, 10, 20, 4, 5);
  ExpectMaps(m, 110, 70, 204, 155);

  p.plotterClass = 8;
  p.placementRotation = 3.141592653589793;
  m = rv::ComputePlacement(p, JobRect());
  // (x, y) -> (x, y - 50) -> (-x, 50 - y) -> (-x, 100 - y) -> (4 - x, 95 - y)
  ExpectMaps(m, 10, 20, 4, 95);
  ExpectMaps(m, 110, 70, -96, 45);

  p.plotterClass = 9;  // no transform outside 8 and 10
  m = rv::ComputePlacement(p, JobRect());
  ExpectMaps(m, 10, 20, 0, 0);
  p.plotterClass = 10;
  p.usePlacementTransform = 0;
  m = rv::ComputePlacement(p, JobRect());
  ExpectMaps(m, 10, 20, 0, 0);
}

TEST(Placement, OutputFlipAndMargins) {
  RVRIFMATRIX f = rv::OutputFlip(Param(0), JobRect());
  ExpectMaps(f, 30, 40, 70, 40);
  f = rv::OutputFlip(Param(9), JobRect());
  ExpectMaps(f, 30, 40, 30, 10);
  f = rv::OutputFlip(Param(1), JobRect());
  ExpectMaps(f, 30, 40, 30, 40);
  f = rv::OutputFlip(Param(13), JobRect());
  ExpectMaps(f, 30, 40, 30, 40);

  RVPLOTPARAM p = Param(0);
  p.marginLeft = 1;
  p.marginTop = 2;
  p.marginBottom = 3;
  p.marginRight = 4;
  const RVRECT g = rv::GrowByMargins(p, JobRect());
  EXPECT_EQ(g.left, 9);
  EXPECT_EQ(g.top, 72);
  EXPECT_EQ(g.bottom, 17);
  EXPECT_EQ(g.right, 114);
}

TEST(IntRect, EdgesAndEmptyIntersections) {
  const rv::IntRect r{0, 0, 10, 10};
  EXPECT_TRUE(rv::PtInRect(r, 0, 0));
  EXPECT_TRUE(rv::PtInRect(r, 9, 9));
  EXPECT_FALSE(rv::PtInRect(r, 10, 5));
  EXPECT_FALSE(rv::PtInRect(r, 5, 10));
  EXPECT_FALSE(rv::PtInRect(r, -1, 0));

  rv::IntRect out{1, 1, 1, 1};
  EXPECT_FALSE(rv::IntersectRect(out, r, rv::IntRect{10, 0, 20, 10}));  // touching
  EXPECT_EQ(out.right, 0);
  EXPECT_TRUE(rv::IntersectRect(out, r, rv::IntRect{5, 5, 15, 15}));
  EXPECT_EQ(out.left, 5);
  EXPECT_EQ(out.top, 5);
  EXPECT_EQ(out.right, 10);
  EXPECT_EQ(out.bottom, 10);
  EXPECT_FALSE(rv::IntersectRect(out, rv::IntRect{0, 0, 0, 10}, rv::IntRect{-5, -5, 5, 5}));
  EXPECT_FALSE(rv::IntersectRect(out, r, rv::IntRect{20, 20, 30, 30}));
  EXPECT_TRUE(rv::IntersectRect(out, r, r));
}

TEST(BlockKey, SerpentineRowsOverTheWorkingArea) {
  rv::BlockGrid g;  // class 0: 50 mm blocks, 1000 wide: 21 columns
  g.areaWidth = 1000;
  g.areaHeight = 500;
  EXPECT_EQ(rv::BlockKey(g, 120, 30), 2);
  EXPECT_EQ(rv::BlockKey(g, 120, 70), 21 + 19);  // odd row runs back
  EXPECT_EQ(rv::BlockKey(g, -5, 130), 42);       // left of the area: a = 0
  EXPECT_EQ(rv::BlockKey(g, 1200, 0), 19);       // beyond: a = extent - 1
  EXPECT_EQ(rv::BlockKey(g, 1000, 0), 20);       // on the extent itself
  EXPECT_EQ(rv::BlockKey(g, 0, 100000), int16_t(42000));  // 16-bit wrap

  g.minX = 100;  // x pairs with minY, y with minX outside class 1
  g.minY = 7;
  EXPECT_EQ(rv::BlockKey(g, 57, 150), 21 + 20);

  rv::BlockGrid c1;  // class 1: 10 mm blocks over the height
  c1.plotterClass = 1;
  c1.minX = 5;
  c1.minY = 10;
  c1.areaWidth = 3000;
  c1.areaHeight = 95;  // 10 columns
  EXPECT_EQ(rv::BlockKey(c1, 30, 35), 22);
  EXPECT_EQ(rv::BlockKey(c1, 30, 22), 10 + 8);
  EXPECT_EQ(rv::BlockSize(1), 10.0);
  EXPECT_EQ(rv::BlockSize(7), 50.0);
}

}  // namespace
