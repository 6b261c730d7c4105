#include <gtest/gtest.h>

#include <tuple>

#include "drawing_host.h"
#include "frame/frame.h"
#include "model/data_access.h"

using namespace drawtest;

namespace {

rv::CRvDataAccess& Store() { return rv::CRvDataAccess::Instance(); }

// Bounds of a path through the internal entry point, as importers use it.
uint32_t Bounds(void* path, RVRECT& box) {
  return rv::Guard([&] { Store().GetPathBounds(rv::ArtOf(path), box); });
}
// A path with one arc component of 90 degrees.
void* ArcPath(RVPOINT from, RVPOINT to, RVPOINT centre, int16_t direction, void* path) {
  const RVARCPOINT arc{from, to, centre, 90.0, direction};
  void* component = nullptr;
  EXPECT_EQ(RvGiCreateArt(5, 5, path, &component), 0u);
  EXPECT_EQ(rv::Guard([&] { Store().AddArcPoint(rv::ArtOf(component), arc); }), 0u);
  return path;
}
double Area(void* path) { return static_cast<rv::CRvPath*>(path)->GetArea(); }

TEST_F(Drawing, PathBoundsFollowArcsCurvesAndJoinsAndNeedAComponent) {
  Layer();
  // Quarter from (10, 0) to (0, 10) counter-clockwise; the same ends
  // clockwise run three quarters round; from (10, 0) clockwise to (0, -10):
  // the lower right quarter; start and end alike: a full turn.
  const std::tuple<RVPOINT, RVPOINT, RVPOINT, int16_t, V> arcs[] = {
      {{10, 0}, {0, 10}, {0, 0}, 1, {10, 0, 10, 0}},      {{10, 0}, {0, 10}, {0, 0}, -1, {10, -10, 10, -10}},
      {{10, 0}, {0, -10}, {0, 0}, -1, {0, 0, 10, -10}},   {{12, 5}, {12, 5}, {5, 5}, 1, {12, -2, 12, -2}}};
  RVRECT box{};
  for (auto [from, to, centre, direction, expected] : arcs) {
    ASSERT_EQ(Bounds(ArcPath(from, to, centre, direction, Art(4, 3, nullptr)), box), 0u);
    EXPECT_EQ(Rect(box), expected) << from.x << " " << to.y << " " << direction;
  }
  // Spline (0,0) (5,0); straight join to the Bezier (5,5) (8,5); curve join
  // to the arc from (8,-2), which turns counter-clockwise round (8,0) to (8,2).
  void* path = PathOf({Pt(5, 5), Pt(8, 5)});
  void* spline = Art(6, 4, path);
  for (RVPOINT p : {RVPOINT{0, 0}, RVPOINT{5, 0}}) {
    ASSERT_EQ(rv::Guard([&] { Store().AddSplinePoint(rv::ArtOf(spline), p); }), 0u);
  }
  ArcPath({8, -2}, {8, 2}, {8, 0}, 1, path);
  ASSERT_EQ(Bounds(path, box), 0u);
  EXPECT_EQ(Rect(box), (V{5, 0, 10, -2}));
  // The stored bounds aren't read and the matrix isn't applied.
  const RVRIFMATRIX scale{3, 0, 0, 3, 0, 0};
  const RVRECT stored{100, 100, 100, 100};
  ASSERT_EQ(RvGiSetArtMatrix(path, &scale), 0u);
  ASSERT_EQ(RvGiSetBoundingBox(path, &stored), 0u);
  ASSERT_EQ(Bounds(path, box), 0u);
  EXPECT_EQ(Rect(box), (V{5, 0, 10, -2}));
  // Handles at height 10 lift the curve's middle to 7.5.
  ASSERT_EQ(Bounds(PathOf({Pt(0, 0, 0, 0, 0, 10), Pt(10, 0, 10, 10, 10, 0)}), box), 0u);
  EXPECT_DOUBLE_EQ(box.top, 7.5);
  EXPECT_EQ((V{box.left, box.right, box.bottom}), (V{0, 10, 0}));
  // Pieces that no flattening within the point limit can measure are held by
  // their control points: ends 5000 m apart, and a piece beyond the grid
  // (whose flattened middle would reach only 3; left stays at the empty
  // box's 32767).
  ASSERT_EQ(Bounds(PathOf({Pt(0, 0, 0, 0, 1e6, 3), Pt(5e6, 0, 4e6, -1, 5e6, 0)}), box), 0u);
  EXPECT_EQ(Rect(box), (V{3, 0, 5e6, -1}));
  ASSERT_EQ(Bounds(PathOf({Pt(3e7, 0, 3e7, 0, 3e7 + 2, 4), Pt(3e7 + 10, 0, 3e7 + 8, 4, 3e7 + 10, 0)}), box), 0u);
  EXPECT_EQ(Rect(box), (V{4, 32767, 3e7 + 10, 0}));

  // Without a component: a failure, and the box as it was.
  path = Art(4, 3, nullptr);
  box = RVRECT{1, 2, 3, 4};
  EXPECT_EQ(Bounds(path, box), 0x05000801u);
  EXPECT_EQ(Rect(box), (V{1, 2, 3, 4}));
  // A single point draws no piece: the box stays at its empty start.
  const RVBEZIERPOINT lone = Pt(4, 4);
  ASSERT_EQ(RvGiSetBezierPoint(Art(2, 5, path), &lone), 0u);
  ASSERT_EQ(Bounds(path, box), 0u);
  EXPECT_EQ(Rect(box), (V{-32768, 32767, -32768, 32767}));
  // Other arts have no bounds of their own and leave the box.
  box = RVRECT{1, 2, 3, 4};
  ASSERT_EQ(Bounds(Art(1, 3, nullptr), box), 0u);
  EXPECT_EQ(Rect(box), (V{1, 2, 3, 4}));
  EXPECT_EQ(Bounds(nullptr, box), kNullPath);
}

TEST(ThreePointTest, DecidesTheSideOfTheArc) {
  // Start equals end: a full turn; |d| = 0.9 is below 1; nearly straight: a
  // circle of radius beyond 14000.
  const std::tuple<RVPOINT, RVPOINT, RVPOINT, int> cases[] = {
      {{1, 1}, {1, 1}, {5, 5}, 1},   {{1, 1}, {2, 2}, {1, 1}, 0},    {{1, 1}, {2, 2}, {2, 2}, 0},
      {{10, 0}, {0, 10}, {-10, 0}, -1}, {{10, 0}, {-10, 0}, {0, 10}, 1}, {{0, 0}, {1, 0}, {0.5, 0.9}, 0},
      {{0, 0}, {100, 0}, {50, 0.05}, 0}};
  for (auto [p0, p1, p2, side] : cases) EXPECT_EQ(rv::ThreePointTest(p0, p1, p2), side) << p2.x << ", " << p2.y;
}

TEST_F(Drawing, AreaIsSignedAndSeesTheMatrix) {
  Layer();
  void* path = Art(4, 3, nullptr);
  EXPECT_EQ(Area(path), 0.0) << "no child";
  void* bez = Art(2, 5, path);
  EXPECT_EQ(Area(path), 0.0) << "no points";
  // A closed square, counter-clockwise, stored with its start twice.
  const std::vector<RVBEZIERPOINT> square = {Pt(0, 0), Pt(10, 0), Pt(10, 10), Pt(0, 10), Pt(0, 0)};
  for (const RVBEZIERPOINT& p : square) ASSERT_EQ(RvGiSetBezierPoint(bez, &p), 0u);
  EXPECT_DOUBLE_EQ(Area(path), -100.0);
  ASSERT_EQ(RvGiSetPathStartSegment(path, 2), 0u);
  EXPECT_DOUBLE_EQ(Area(path), -100.0) << "the start only moves where the sum begins";
  ASSERT_EQ(RvGiReverseBezierPoint(bez), 0u);
  EXPECT_DOUBLE_EQ(Area(path), 100.0);
  // The matrix moves the anchors only; the handles stay where they are. With
  // the handles already where the anchors land, the sides stay straight.
  std::vector<RVBEZIERPOINT> corners;
  for (const RVBEZIERPOINT& p : square) {
    const double x = p.anchor.x, y = p.anchor.y;
    corners.push_back(Pt(x, y, 2 * x + 5, 3 * y + 5, 2 * x + 5, 3 * y + 5));
  }
  void* mapped = PathOf(corners);
  const RVRIFMATRIX scale{2, 0, 0, 3, 5, 5};
  ASSERT_EQ(RvGiSetArtMatrix(mapped, &scale), 0u);
  EXPECT_DOUBLE_EQ(Area(mapped), -600.0);
}

TEST_F(Drawing, CompoundChildrenSortBySizeStably) {
  Layer();
  void* compound = Art(3, 3, nullptr);
  auto square = [&](double s) { return PathOf({Pt(0, 0), Pt(s, 0), Pt(s, s), Pt(0, s), Pt(0, 0)}, compound); };
  void* big1 = square(10);
  void* small = square(2);
  void* big2 = square(10);
  void* middle = square(5);
  auto sort = [&] { return rv::Guard([&] { static_cast<rv::CRvCompound*>(compound)->SortChildren(); }); };
  ASSERT_EQ(sort(), 0u);
  EXPECT_EQ(Children(compound), (Arts{small, middle, big1, big2}));
  EXPECT_EQ(ChildrenBackwards(big2), (Arts{small, middle, big1, big2}));
  // A path without components can't be measured.
  Art(4, 5, compound);
  EXPECT_EQ(sort(), 0x05000801u);
}

struct TraceLog {
  Arts seen;
  void* stopAt = nullptr;
  bool deleteSeen = false;
};

uint32_t Record(void* context, void* path) {
  auto* log = static_cast<TraceLog*>(context);
  log->seen.push_back(path);
  if (log->deleteSeen) {
    void* handle = path;
    EXPECT_EQ(RvGiDeleteArt(&handle), 0u);
  }
  return path == log->stopAt ? 0x0A001F01u : 0u;
}

TEST_F(Drawing, TraceVisitsMatchingPathsDepthFirst) {
  void* layer = Layer();
  void* group = Art(1, 3, nullptr);
  void* a = Art(4, 5, group);
  void* inner = Art(1, 5, group);
  void* b = Art(4, 5, inner);
  void* c = Art(4, 5, Art(3, 3, nullptr));
  void* d = Art(4, 3, nullptr);
  void* skipped = Art(4, 3, nullptr);
  Art(1, 3, nullptr);  // an empty group on the way
  for (void* p : {a, b, c, d, group}) ASSERT_EQ(RvGiSetPathAttrFlag(p, 7), 0u);  // groups are entered, never passed
  ASSERT_EQ(RvGiSetPathAttrFlag(skipped, 16), 0u);
  auto trace = [](void* art, uint8_t mask, TraceLog log = {}) {
    EXPECT_EQ(RvGiTracePath(art, mask, &log, Record), 0u);
    return log.seen;
  };
  EXPECT_EQ(trace(layer, 2), (Arts{a, b, c, d}));
  EXPECT_EQ(trace(group, 0xFF), (Arts{a, b})) << "the walk stays below its art";
  EXPECT_TRUE(trace(a, 0xFF).empty()) << "the art itself is never passed";
  EXPECT_TRUE(trace(layer, 8).empty());
  // A non-zero result stops the walk and comes back.
  TraceLog log;
  log.stopAt = b;
  EXPECT_EQ(RvGiTracePath(layer, 2, &log, Record), 0x0A001F01u);
  EXPECT_EQ(log.seen, (Arts{a, b}));
  // A callback that unlinks each path it sees still reaches them all.
  TraceLog deleting;
  deleting.deleteSeen = true;
  EXPECT_EQ(trace(layer, 2, deleting), (Arts{a, b, c, d}));
  EXPECT_TRUE(Children(inner).empty());
  EXPECT_EQ(Children(layer).size(), 4u);  // group, compound, skipped, empty group
  EXPECT_EQ(RvGiTracePath(nullptr, 2, &log, Record), kNullPath);
}

}  // namespace
