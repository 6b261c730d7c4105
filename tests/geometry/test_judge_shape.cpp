#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "geometry/judge_polyline.h"
#include "geometry/judge_shape.h"

using namespace rv;

namespace {

RVBEZIERPOINT Corner(double x, double y) {
  RVBEZIERPOINT p{};
  p.anchor = p.in = p.out = RVPOINT{x, y};
  return p;
}

CoarsePolyline Polygon(const std::vector<RVPOINT>& corners, int32_t start = 0,
                       const RVRIFMATRIX* matrix = nullptr) {
  std::vector<RVBEZIERPOINT> records;
  for (const RVPOINT& p : corners) records.push_back(Corner(p.x, p.y));
  return MakeCoarsePolyline(records.data(), int32_t(records.size()), start, matrix);
}

bool PlainContains(const CoarsePolyline& line, const RVPOINT& q) { return IsInsideAngle(WindingAngle(line, q)); }

bool PlainInside(const CoarsePolyline& inner, const CoarsePolyline& outer) {
  bool any = false;
  for (std::size_t list = 0; list < inner.ListCount(); ++list) {
    for (std::size_t k = inner.ListBegin(list); k + 1 < inner.ends[list]; ++k) {
      if (!PlainContains(outer, inner.points[k])) return false;
      any = true;
    }
  }
  return any;
}

TEST(CoarsePolyline, SegmentsWrapFromTheStartAndCloseToPointZero) {
  // Straight sides of 10 units flatten in halves to chords below 2 units.
  const CoarsePolyline line = Polygon({{0, 0}, {0, 10}, {10, 10}}, 1);
  ASSERT_EQ(line.ListCount(), 3u);
  // Each list runs from one anchor to the next: 1 -> 2, 2 -> 0, 0 -> 1.
  EXPECT_EQ(line.points[line.ListBegin(0)].y, 10.0);
  EXPECT_EQ(line.points[line.ListBegin(0)].x, 0.0);
  EXPECT_EQ(line.points[line.ends[0] - 1].x, 10.0);
  EXPECT_EQ(line.points[line.ListBegin(1)].x, 10.0);
  EXPECT_EQ(line.points[line.ends[1] - 1].x, 0.0);
  EXPECT_EQ(line.points[line.ends[1] - 1].y, 0.0);
  EXPECT_EQ(line.points[line.ends[2] - 1].y, 10.0);
  // Straight sides are cut until every chord is below 2 units, and the
  // cuts stay on the side.
  for (std::size_t list = 0; list < line.ListCount(); ++list) {
    EXPECT_GE(line.ends[list] - line.ListBegin(list), 7u);
    for (std::size_t k = line.ListBegin(list); k + 1 < line.ends[list]; ++k) {
      const RVPOINT& p = line.points[k];
      const RVPOINT& q = line.points[k + 1];
      EXPECT_LT(std::hypot(q.x - p.x, q.y - p.y), 2.0);
    }
  }
  for (std::size_t k = line.ListBegin(1); k < line.ends[1]; ++k) {
    EXPECT_DOUBLE_EQ(line.points[k].x, line.points[k].y) << "on the diagonal";
  }

  // A start past the end counts round; the matrix moves anchors only.
  const RVRIFMATRIX shift{1, 0, 0, 1, 100, 0};
  const CoarsePolyline moved = Polygon({{0, 0}, {0, 10}, {10, 10}}, 4, &shift);
  EXPECT_EQ(moved.points[0].x, 100.0);
  EXPECT_EQ(moved.points[0].y, 10.0);
  EXPECT_TRUE(MakeCoarsePolyline(nullptr, 0, 0, nullptr).points.empty());
}

TEST(CoarsePolyline, OrientationAndWinding) {
  // (0,0) (0,10) (10,10) (10,0) runs clockwise with y up: the sum is 100.
  const CoarsePolyline square = Polygon({{0, 0}, {0, 10}, {10, 10}, {10, 0}});
  EXPECT_DOUBLE_EQ(OrientationSum(square), 100.0);
  EXPECT_DOUBLE_EQ(OrientationSum(Polygon({{10, 0}, {10, 10}, {0, 10}, {0, 0}})), -100.0);
  // Equal lobes of a figure of eight cancel exactly.
  EXPECT_EQ(OrientationSum(Polygon({{0, 0}, {0, 4}, {4, 0}, {4, 4}})), 0.0);

  EXPECT_NEAR(WindingAngle(square, {5, 5}), -2 * M_PI, 1e-12);
  EXPECT_NEAR(WindingAngle(square, {15, 5}), 0.0, 1e-12);
  EXPECT_TRUE(IsInsideAngle(WindingAngle(square, {5, 5})));
  EXPECT_FALSE(IsInsideAngle(WindingAngle(square, {15, 5})));
  // On a vertex the two edges there count 0; the rest make a quarter turn.
  EXPECT_NEAR(std::fabs(WindingAngle(square, {0, 0})), M_PI / 2, 1e-12);
}

TEST(NestingShape, AgreesWithTheAngleSumEverywhere) {
  std::mt19937 rng(12345);
  std::uniform_real_distribution<double> coord(-20.0, 20.0);
  std::uniform_int_distribution<int> grid(-20, 20);
  int checked = 0, inside = 0;
  for (int shapeNo = 0; shapeNo < 200; ++shapeNo) {
    // Alternate random polygons (often self-crossing) with grid polygons,
    // whose edges and vertices the grid probes hit exactly.
    std::vector<RVPOINT> corners;
    const int n = 3 + shapeNo % 9;
    for (int k = 0; k < n; ++k) {
      if (shapeNo % 2 == 0) {
        corners.push_back({coord(rng), coord(rng)});
      } else {
        corners.push_back({double(grid(rng)), double(grid(rng))});
      }
    }
    if (shapeNo % 7 == 0) corners.push_back(corners.front());  // stored start twice
    const CoarsePolyline line = Polygon(corners, shapeNo % 5);
    const NestingShape shape(line);
    std::vector<RVPOINT> probes;
    for (int k = 0; k < 60; ++k) probes.push_back({coord(rng) * 1.3, coord(rng) * 1.3});
    for (int x = -21; x <= 21; x += 3) {
      for (int y = -21; y <= 21; y += 3) probes.push_back({double(x), double(y)});
    }
    for (const RVPOINT& p : line.points) {
      probes.push_back(p);
      probes.push_back({std::nextafter(p.x, 1e9), p.y});
      probes.push_back({p.x, std::nextafter(p.y, -1e9)});
    }
    for (std::size_t k = 0; k + 1 < line.points.size(); ++k) {
      const RVPOINT& a = line.points[k];
      const RVPOINT& b = line.points[k + 1];
      const RVPOINT mid{(a.x + b.x) / 2, (a.y + b.y) / 2};
      probes.push_back(mid);
      probes.push_back({mid.x + 1e-13, mid.y});
      probes.push_back({mid.x, mid.y - 1e-13});
    }
    for (const RVPOINT& q : probes) {
      const bool expected = PlainContains(line, q);
      ASSERT_EQ(shape.Contains(q), expected) << "shape " << shapeNo << " at " << q.x << ", " << q.y;
      inside += expected;
      ++checked;
    }
  }
  EXPECT_GT(inside, checked / 20) << "the probes must reach inside too";
}

TEST(NestingShape, PathTestAgreesWithThePlainOne) {
  std::mt19937 rng(777);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  std::vector<CoarsePolyline> lines;
  // Rings about a few centres, some nested, some touching, some apart.
  for (int k = 0; k < 40; ++k) {
    const double cx = (k % 4) * 25.0, cy = 0.0;
    const double r = 2.0 + (k % 10) * 1.5 + (k % 3 == 0 ? 0.0 : unit(rng));
    std::vector<RVPOINT> corners;
    const int n = 5 + k % 7;
    for (int i = 0; i < n; ++i) {
      const double t = 2 * M_PI * i / n;
      corners.push_back({cx + r * std::cos(t), cy + r * std::sin(t)});
    }
    lines.push_back(Polygon(corners, k % 3));
  }
  lines.push_back(Polygon({{0, 0}, {0, 10}, {10, 10}, {10, 0}}));
  lines.push_back(Polygon({{0, 0}, {0, 5}, {5, 5}, {5, 0}}));  // shares a corner and two sides
  lines.push_back(CoarsePolyline{});
  std::vector<NestingShape> shapes;
  for (const auto& line : lines) shapes.emplace_back(line);
  int nested = 0;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    for (std::size_t j = 0; j < lines.size(); ++j) {
      const bool expected = PlainInside(lines[j], lines[i]);
      ASSERT_EQ(shapes[j].InsideOf(shapes[i]), expected) << j << " in " << i;
      nested += expected;
    }
  }
  EXPECT_GT(nested, 20);
  EXPECT_FALSE(shapes.back().InsideOf(shapes[0])) << "a path without points is never inside";
}

TEST(NestingShape, SteepCombAgreesToo) {
  // A comb of 300 teeth, each side running the full height: the edges can't
  // be spread over many bands, so the shape makes do with fewer.
  std::vector<RVPOINT> corners;
  for (int t = 0; t < 300; ++t) {
    corners.push_back({t * 4.0, 0.0});
    corners.push_back({t * 4.0 + 1.0, 30.0});
    corners.push_back({t * 4.0 + 3.0, 30.0});
  }
  corners.push_back({1200.0, 0.0});
  corners.push_back({1200.0, -5.0});
  corners.push_back({0.0, -5.0});
  const CoarsePolyline comb = Polygon(corners);
  const NestingShape shape(comb);
  std::mt19937 rng(5);
  std::uniform_real_distribution<double> x(-10.0, 1210.0), y(-8.0, 33.0);
  int inside = 0;
  for (int k = 0; k < 3000; ++k) {
    const RVPOINT q{x(rng), y(rng)};
    const bool expected = PlainContains(comb, q);
    ASSERT_EQ(shape.Contains(q), expected) << q.x << ", " << q.y;
    inside += expected;
  }
  EXPECT_GT(inside, 300);
  EXPECT_LT(inside, 2700);
}

TEST(NestingShape, NonFiniteCoordinatesTakeThePlainRoute) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  const CoarsePolyline square = Polygon({{0, 0}, {0, 10}, {10, 10}, {10, 0}});
  const NestingShape shape(square);
  for (RVPOINT q : {RVPOINT{nan, 5}, RVPOINT{5, nan}, RVPOINT{inf, 5}, RVPOINT{5, -inf}}) {
    EXPECT_EQ(shape.Contains(q), PlainContains(square, q));
  }
  const CoarsePolyline broken = Polygon({{0, 0}, {0, nan}, {10, 10}, {inf, 0}});
  const NestingShape odd(broken);
  for (RVPOINT q : {RVPOINT{5, 5}, RVPOINT{50, 5}, RVPOINT{0, 0}}) {
    EXPECT_EQ(odd.Contains(q), PlainContains(broken, q));
  }
  EXPECT_EQ(odd.InsideOf(shape), PlainInside(broken, square));
  EXPECT_EQ(shape.InsideOf(odd), PlainInside(square, broken));
}

}  // namespace
