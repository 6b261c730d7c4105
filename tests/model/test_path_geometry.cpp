#include <gtest/gtest.h>

#include <vector>

#include "drawing_host.h"
#include "frame/frame.h"
#include "model/data_access.h"

using namespace drawtest;

namespace {

using Arts = std::vector<void*>;

rv::CRvDataAccess& Store() { return rv::CRvDataAccess::Instance(); }

// Bounds of a path through the internal entry point, as importers use it.
uint32_t Bounds(void* path, RVRECT& box) {
  return rv::Guard([&] { Store().GetPathBounds(rv::ArtOf(path), box); });
}

void AddArc(void* arc, RVPOINT from, RVPOINT to, RVPOINT centre, int16_t direction) {
  ASSERT_EQ(rv::Guard([&] { Store().AddArcPoint(rv::ArtOf(arc), RVARCPOINT{from, to, centre, 90.0, direction}); }),
            0u);
}

void AddSpline(void* spline, RVPOINT p) {
  ASSERT_EQ(rv::Guard([&] { Store().AddSplinePoint(rv::ArtOf(spline), p); }), 0u);
}

void ExpectBox(const RVRECT& box, double top, double left, double right, double bottom) {
  EXPECT_DOUBLE_EQ(box.top, top);
  EXPECT_DOUBLE_EQ(box.left, left);
  EXPECT_DOUBLE_EQ(box.right, right);
  EXPECT_DOUBLE_EQ(box.bottom, bottom);
}

TEST_F(Drawing, ArcBoundsTakeTheAxisPointsOnTheirSide) {
  Layer();
  // A quarter from (10, 0) to (0, 10) around the origin, counter-clockwise.
  void* path = Art(4, 3, nullptr);
  void* arc = Art(5, 5, path);
  AddArc(arc, {10, 0}, {0, 10}, {0, 0}, 1);
  RVRECT box{};
  ASSERT_EQ(Bounds(path, box), 0u);
  ExpectBox(box, 10, 0, 10, 0);
  // The same ends clockwise run three quarters round.
  void* cw = Art(4, 3, nullptr);
  AddArc(Art(5, 5, cw), {10, 0}, {0, 10}, {0, 0}, -1);
  ASSERT_EQ(Bounds(cw, box), 0u);
  ExpectBox(box, 10, -10, 10, -10);
  // From (10, 0) clockwise to (0, -10): the lower right quarter.
  void* low = Art(4, 3, nullptr);
  AddArc(Art(5, 5, low), {10, 0}, {0, -10}, {0, 0}, -1);
  ASSERT_EQ(Bounds(low, box), 0u);
  ExpectBox(box, 0, 0, 10, -10);
  // Start and end alike: a full turn counter-clockwise.
  void* full = Art(4, 3, nullptr);
  AddArc(Art(5, 5, full), {12, 5}, {12, 5}, {5, 5}, 1);
  ASSERT_EQ(Bounds(full, box), 0u);
  ExpectBox(box, 12, -2, 12, -2);
}

TEST_F(Drawing, PathBoundsJoinTheComponents) {
  Layer();
  void* path = Art(4, 3, nullptr);
  // Spline (0,0) (5,0); straight join to the Bezier (5,5) (8,5); curve join
  // to the arc from (8,-2), which turns counter-clockwise round (8,0) to (8,2).
  void* spline = Art(6, 5, path);
  AddSpline(spline, {0, 0});
  AddSpline(spline, {5, 0});
  void* bez = Art(2, 5, path);
  const RVBEZIERPOINT b0 = Pt(5, 5), b1 = Pt(8, 5);
  ASSERT_EQ(RvGiSetBezierPoint(bez, &b0), 0u);
  ASSERT_EQ(RvGiSetBezierPoint(bez, &b1), 0u);
  void* arc = Art(5, 5, path);
  AddArc(arc, {8, -2}, {8, 2}, {8, 0}, 1);
  RVRECT box{};
  ASSERT_EQ(Bounds(path, box), 0u);
  ExpectBox(box, 5, 0, 10, -2);
  // The stored bounds aren't read and the matrix isn't applied.
  RVRIFMATRIX scale{3, 0, 0, 3, 0, 0};
  ASSERT_EQ(RvGiSetArtMatrix(path, &scale), 0u);
  RVRECT stored{100, 100, 100, 100};
  ASSERT_EQ(RvGiSetBoundingBox(path, &stored), 0u);
  ASSERT_EQ(Bounds(path, box), 0u);
  ExpectBox(box, 5, 0, 10, -2);
}

TEST_F(Drawing, PathBoundsFollowTheCurveNotItsHandles) {
  Layer();
  void* path = Art(4, 3, nullptr);
  void* bez = Art(2, 5, path);
  // Handles at height 10 lift the curve's middle to 7.5.
  const RVBEZIERPOINT a = Pt(0, 0, 0, 0, 0, 10), b = Pt(10, 0, 10, 10, 10, 0);
  ASSERT_EQ(RvGiSetBezierPoint(bez, &a), 0u);
  ASSERT_EQ(RvGiSetBezierPoint(bez, &b), 0u);
  RVRECT box{};
  ASSERT_EQ(Bounds(path, box), 0u);
  ExpectBox(box, 7.5, 0, 10, 0);
}

TEST_F(Drawing, PathBoundsNeedAComponent) {
  Layer();
  void* path = Art(4, 3, nullptr);
  RVRECT box{1, 2, 3, 4};
  EXPECT_EQ(Bounds(path, box), 0x05000801u);
  ExpectBox(box, 1, 2, 3, 4);
  // A single point draws no piece: the box stays at its empty start.
  const RVBEZIERPOINT lone = Pt(4, 4);
  ASSERT_EQ(RvGiSetBezierPoint(Art(2, 5, path), &lone), 0u);
  ASSERT_EQ(Bounds(path, box), 0u);
  ExpectBox(box, -32768, 32767, -32768, 32767);
  // Other arts have no bounds of their own and leave the box.
  void* group = Art(1, 3, nullptr);
  box = RVRECT{1, 2, 3, 4};
  ASSERT_EQ(Bounds(group, box), 0u);
  ExpectBox(box, 1, 2, 3, 4);
  EXPECT_EQ(Bounds(nullptr, box), kNullPath);
}

TEST(ThreePointTest, DecidesTheSideOfTheArc) {
  using rv::ThreePointTest;
  EXPECT_EQ(ThreePointTest({1, 1}, {1, 1}, {5, 5}), 1) << "start equals end: a full turn";
  EXPECT_EQ(ThreePointTest({1, 1}, {2, 2}, {1, 1}), 0);
  EXPECT_EQ(ThreePointTest({1, 1}, {2, 2}, {2, 2}), 0);
  EXPECT_EQ(ThreePointTest({10, 0}, {0, 10}, {-10, 0}), -1);
  EXPECT_EQ(ThreePointTest({10, 0}, {-10, 0}, {0, 10}), 1);
  EXPECT_EQ(ThreePointTest({0, 0}, {1, 0}, {0.5, 0.9}), 0) << "|d| = 0.9 is below 1";
  // Nearly straight: a circle of radius beyond 14000.
  EXPECT_EQ(ThreePointTest({0, 0}, {100, 0}, {50, 0.05}), 0);
}

TEST_F(Drawing, AreaIsSignedAndSeesTheMatrix) {
  Layer();
  void* path = Art(4, 3, nullptr);
  EXPECT_EQ(static_cast<rv::CRvPath*>(path)->GetArea(), 0.0) << "no child";
  void* bez = Art(2, 5, path);
  EXPECT_EQ(static_cast<rv::CRvPath*>(path)->GetArea(), 0.0) << "no points";
  // A closed square, counter-clockwise, stored with its start twice.
  for (auto p : {Pt(0, 0), Pt(10, 0), Pt(10, 10), Pt(0, 10), Pt(0, 0)}) {
    ASSERT_EQ(RvGiSetBezierPoint(bez, &p), 0u);
  }
  auto* square = static_cast<rv::CRvPath*>(path);
  EXPECT_DOUBLE_EQ(square->GetArea(), -100.0);
  ASSERT_EQ(RvGiSetPathStartSegment(path, 2), 0u);
  EXPECT_DOUBLE_EQ(square->GetArea(), -100.0) << "the start only moves where the sum begins";
  ASSERT_EQ(RvGiReverseBezierPoint(bez), 0u);
  EXPECT_DOUBLE_EQ(square->GetArea(), 100.0);

  // The matrix moves the anchors only; the handles stay where they are. With
  // the handles already where the anchors land, the sides stay straight.
  void* mapped = Art(4, 3, nullptr);
  void* mbez = Art(2, 5, mapped);
  const double corners[5][2] = {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}};
  for (const auto& c : corners) {
    RVBEZIERPOINT p = Pt(c[0], c[1]);
    p.in = p.out = RVPOINT{2 * c[0] + 5, 3 * c[1] + 5};
    ASSERT_EQ(RvGiSetBezierPoint(mbez, &p), 0u);
  }
  RVRIFMATRIX scale{2, 0, 0, 3, 5, 5};
  ASSERT_EQ(RvGiSetArtMatrix(mapped, &scale), 0u);
  EXPECT_DOUBLE_EQ(static_cast<rv::CRvPath*>(mapped)->GetArea(), -600.0);
}

TEST_F(Drawing, CompoundChildrenSortBySizeStably) {
  Layer();
  void* compound = Art(3, 3, nullptr);
  auto square = [&](double size) {
    void* path = Art(4, 5, compound);
    void* bez = Art(2, 5, path);
    for (auto p : {Pt(0, 0), Pt(size, 0), Pt(size, size), Pt(0, size), Pt(0, 0)}) {
      EXPECT_EQ(RvGiSetBezierPoint(bez, &p), 0u);
    }
    return path;
  };
  void* big1 = square(10);
  void* small = square(2);
  void* big2 = square(10);
  void* middle = square(5);
  ASSERT_EQ(rv::Guard([&] { static_cast<rv::CRvCompound*>(compound)->SortChildren(); }), 0u);
  EXPECT_EQ(Children(compound), (Arts{small, middle, big1, big2}));
  EXPECT_EQ(ChildrenBackwards(big2), (Arts{small, middle, big1, big2}));
  // A path without components can't be measured.
  Art(4, 5, compound);
  EXPECT_EQ(rv::Guard([&] { static_cast<rv::CRvCompound*>(compound)->SortChildren(); }), 0x05000801u);
}

struct TraceLog {
  std::vector<void*> seen;
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
  void* compound = Art(3, 3, nullptr);
  void* c = Art(4, 5, compound);
  void* d = Art(4, 3, nullptr);
  void* skipped = Art(4, 3, nullptr);
  Art(1, 3, nullptr);  // an empty group on the way
  for (void* p : {a, b, c, d}) ASSERT_EQ(RvGiSetPathAttrFlag(p, 7), 0u);
  ASSERT_EQ(RvGiSetPathAttrFlag(skipped, 16), 0u);
  ASSERT_EQ(RvGiSetPathAttrFlag(group, 7), 0u);  // groups are entered, never passed

  TraceLog log;
  ASSERT_EQ(RvGiTracePath(layer, 2, &log, Record), 0u);
  EXPECT_EQ(log.seen, (Arts{a, b, c, d}));
  log.seen.clear();
  ASSERT_EQ(RvGiTracePath(group, 0xFF, &log, Record), 0u);
  EXPECT_EQ(log.seen, (Arts{a, b})) << "the walk stays below its art";
  log.seen.clear();
  ASSERT_EQ(RvGiTracePath(a, 0xFF, &log, Record), 0u);
  EXPECT_TRUE(log.seen.empty()) << "the art itself is never passed";
  ASSERT_EQ(RvGiTracePath(layer, 8, &log, Record), 0u);
  EXPECT_TRUE(log.seen.empty());
  // A non-zero result stops the walk and comes back.
  log.stopAt = b;
  EXPECT_EQ(RvGiTracePath(layer, 2, &log, Record), 0x0A001F01u);
  EXPECT_EQ(log.seen, (Arts{a, b}));
  EXPECT_EQ(g_ExceptionContext, nullptr);
  // A callback that unlinks each path it sees still reaches them all.
  TraceLog deleting;
  deleting.deleteSeen = true;
  ASSERT_EQ(RvGiTracePath(layer, 2, &deleting, Record), 0u);
  EXPECT_EQ(deleting.seen, (Arts{a, b, c, d}));
  EXPECT_TRUE(Children(inner).empty());
  EXPECT_EQ(Children(layer).size(), 4u);  // group, compound, skipped, empty group
  EXPECT_EQ(RvGiTracePath(nullptr, 2, &log, Record), kNullPath);
}

}  // namespace
