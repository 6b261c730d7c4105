// The coarse polyline of the judgments and the banded shape that answers
// inside questions fast, against the plain winding-angle sum.
#include <cmath>
#include <limits>
#include <random>

#include "geometry/judge_polyline.h"
#include "geometry/judge_shape.h"
#include "geometry_test.h"

using namespace rv;
using namespace geotest;

namespace {

CoarsePolyline Polygon(const std::vector<RVPOINT>& corners, int32_t start = 0, const RVRIFMATRIX* matrix = nullptr) {
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

// Asks the shape of `line` and the plain sum about every probe; returns how
// many lie inside.
int ExpectSameAnswers(const CoarsePolyline& line, const std::vector<RVPOINT>& probes) {
  const NestingShape shape(line);
  int inside = 0;
  for (const RVPOINT& q : probes) {
    const bool expected = PlainContains(line, q);
    EXPECT_EQ(shape.Contains(q), expected) << q.x << ", " << q.y;
    inside += expected;
  }
  return inside;
}

TEST(CoarsePolyline, SegmentsWrapFromTheStartAndCloseToPointZero) {
  // Start 4 of 3 counts as 1: the lists run 1 -> 2, 2 -> 0, 0 -> 1.
  const CoarsePolyline line = Polygon({{0, 0}, {0, 10}, {10, 10}}, 4);
  ASSERT_EQ(line.ListCount(), 3u);
  const V ends[3] = {{0, 10, 10, 10}, {10, 10, 0, 0}, {0, 0, 0, 10}};
  for (std::size_t list = 0; list < 3; ++list) {
    V got = XY(line.points[line.ListBegin(list)]);
    for (double v : XY(line.points[line.ends[list] - 1])) got.push_back(v);
    EXPECT_EQ(got, ends[list]) << list;
    // Sides of 10 are halved until every chord is below 2 units, on the side.
    EXPECT_GE(line.ends[list] - line.ListBegin(list), 7u);
    for (std::size_t k = line.ListBegin(list); k + 1 < line.ends[list]; ++k) {
      const RVPOINT &p = line.points[k], &q = line.points[k + 1];
      EXPECT_LT(std::hypot(q.x - p.x, q.y - p.y), 2.0);
      if (list == 1) {
        EXPECT_DOUBLE_EQ(p.x, p.y) << "on the diagonal";
      }
    }
  }
  EXPECT_TRUE(MakeCoarsePolyline(nullptr, 0, 0, nullptr).points.empty());
}

TEST(NestingShape, ContainsAgreesWithTheAngleSumEverywhere) {
  std::mt19937 rng(12345);
  std::uniform_real_distribution<double> coord(-20.0, 20.0);
  std::uniform_int_distribution<int> grid(-20, 20);
  int checked = 0, inside = 0;
  for (int shapeNo = 0; shapeNo < 200; ++shapeNo) {
    SCOPED_TRACE(shapeNo);
    // Random polygons (often self-crossing) alternate with grid polygons,
    // whose edges and vertices the grid probes hit exactly.
    std::vector<RVPOINT> corners;
    for (int k = 0; k < 3 + shapeNo % 9; ++k) {
      corners.push_back(shapeNo % 2 == 0 ? RVPOINT{coord(rng), coord(rng)}
                                         : RVPOINT{double(grid(rng)), double(grid(rng))});
    }
    if (shapeNo % 7 == 0) corners.push_back(corners.front());  // stored start twice
    const CoarsePolyline line = Polygon(corners, shapeNo % 5);
    std::vector<RVPOINT> probes;
    for (int k = 0; k < 60; ++k) probes.push_back({coord(rng) * 1.3, coord(rng) * 1.3});
    for (int x = -21; x <= 21; x += 3) {
      for (int y = -21; y <= 21; y += 3) probes.push_back({double(x), double(y)});
    }
    for (std::size_t k = 0; k < line.points.size(); ++k) {
      const RVPOINT& p = line.points[k];
      probes.insert(probes.end(), {p, {std::nextafter(p.x, 1e9), p.y}, {p.x, std::nextafter(p.y, -1e9)}});
      if (k + 1 == line.points.size()) break;
      const RVPOINT mid{(p.x + line.points[k + 1].x) / 2, (p.y + line.points[k + 1].y) / 2};
      probes.insert(probes.end(), {mid, {mid.x + 1e-13, mid.y}, {mid.x, mid.y - 1e-13}});
    }
    inside += ExpectSameAnswers(line, probes);
    checked += int(probes.size());
    if (HasFailure()) return;
  }
  EXPECT_GT(inside, checked / 20) << "the probes must reach inside too";

  // A comb of 300 teeth, each side running the full height: the edges can't
  // be spread over many bands, so the shape makes do with fewer.
  std::vector<RVPOINT> comb;
  for (int t = 0; t < 300; ++t) comb.insert(comb.end(), {{t * 4.0, 0}, {t * 4.0 + 1, 30}, {t * 4.0 + 3, 30}});
  comb.insert(comb.end(), {{1200, 0}, {1200, -5}, {0, -5}});
  std::mt19937 combRng(5);
  std::uniform_real_distribution<double> x(-10.0, 1210.0), y(-8.0, 33.0);
  std::vector<RVPOINT> probes;
  for (int k = 0; k < 3000; ++k) probes.push_back({x(combRng), y(combRng)});
  inside = ExpectSameAnswers(Polygon(comb), probes);
  EXPECT_GT(inside, 300);
  EXPECT_LT(inside, 2700);
}

TEST(NestingShape, NonFiniteCoordinatesTakeThePlainRoute) {
  const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
  const CoarsePolyline square = Polygon({{0, 0}, {0, 10}, {10, 10}, {10, 0}});
  const CoarsePolyline broken = Polygon({{0, 0}, {0, nan}, {10, 10}, {inf, 0}});
  ExpectSameAnswers(square, {{nan, 5}, {5, nan}, {inf, 5}, {5, -inf}});
  ExpectSameAnswers(broken, {{5, 5}, {50, 5}, {0, 0}});
  const NestingShape shape(square), odd(broken);
  EXPECT_EQ(odd.InsideOf(shape), PlainInside(broken, square));
  EXPECT_EQ(shape.InsideOf(odd), PlainInside(square, broken));
}

}  // namespace
