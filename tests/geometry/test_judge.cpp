#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <random>
#include <string>
#include <vector>

#include "frame/frame.h"
#include "geometry/judge.h"
#include "rvdataaccess.h"

using namespace rv;

namespace {

RVBEZIERPOINT Corner(double x, double y) {
  RVBEZIERPOINT p{};
  p.anchor = p.in = p.out = RVPOINT{x, y};
  return p;
}

RVBEZIERPOINT Smooth(RVPOINT anchor, RVPOINT in, RVPOINT out) {
  RVBEZIERPOINT p{};
  p.anchor = anchor;
  p.in = in;
  p.out = out;
  return p;
}

bool SamePoint(const RVPOINT& p, const RVPOINT& q) { return p.x == q.x && p.y == q.y; }
bool SameRecord(const RVBEZIERPOINT& p, const RVBEZIERPOINT& q) {
  return SamePoint(p.anchor, q.anchor) && SamePoint(p.in, q.in) && SamePoint(p.out, q.out) && p.flags == q.flags;
}

std::vector<std::string>* gTraced = nullptr;
void CollectTrace(void*, const char* text) {
  if (gTraced != nullptr) gTraced->emplace_back(text);
}

// Every test works in a document of its own with one layer.
class Judge : public ::testing::Test {
 protected:
  void SetUp() override {
    int16_t index = -1;
    ASSERT_EQ(RvGiCreateDocument(0, &index), 0u);
    void* layer = nullptr;
    ASSERT_EQ(RvGiCreateLayer(1, nullptr, &layer), 0u);
  }
  void TearDown() override { RvGiDeleteActiveDocument(); }

  // A path art with one Bezier component holding `records` as they stand.
  void* PathOf(const std::vector<RVBEZIERPOINT>& records, int32_t closed = 1) {
    void* path = nullptr;
    void* bezier = nullptr;
    EXPECT_EQ(RvGiCreateArt(4, 3, nullptr, &path), 0u);
    EXPECT_EQ(RvGiCreateArt(2, 5, path, &bezier), 0u);
    for (const RVBEZIERPOINT& r : records) EXPECT_EQ(RvGiAddBezierPoint(bezier, &r), 0u);
    EXPECT_EQ(RvGiSetPathClosed(path, closed), 0u);
    return path;
  }

  // A closed polygon in the library's closed shape: the start stored twice.
  void* Polygon(const std::vector<RVPOINT>& corners) {
    std::vector<RVBEZIERPOINT> records;
    for (const RVPOINT& c : corners) records.push_back(Corner(c.x, c.y));
    records.push_back(records.front());
    return PathOf(records);
  }

  void* Square(double left, double bottom, double size) {
    return Polygon({{left, bottom}, {left, bottom + size}, {left + size, bottom + size}, {left + size, bottom}});
  }

  static void* First(void* path) {
    void* child = nullptr;
    EXPECT_EQ(RvGiGetArtFirstChild(path, &child), 0u);
    return child;
  }

  static std::vector<RVBEZIERPOINT> Records(void* component) {
    int32_t count = 0;
    EXPECT_EQ(RvGiGetPathSegmentCount(component, &count), 0u);
    std::vector<RVBEZIERPOINT> records(std::size_t(count > 0 ? count : 0));
    for (int32_t i = 0; i < count; ++i) EXPECT_EQ(RvGiGetBezierPoint(component, i, &records[std::size_t(i)]), 0u);
    return records;
  }

  static int32_t InsidePoint(void* path, RVPOINT p) {
    int32_t inside = -1;
    EXPECT_EQ(RvMiJudgeInsidePoint(path, &p, &inside), 0u);
    return inside;
  }

  static int32_t InsidePath(void* path, void* outer) {
    int32_t inside = -1;
    EXPECT_EQ(RvMiJudgeInsidePath(path, outer, &inside), 0u);
    return inside;
  }
};

// A circle of radius r about (cx, cy) in four Bezier quarters,
// counter-clockwise from the right, start stored twice.
std::vector<RVBEZIERPOINT> Circle(double cx, double cy, double r) {
  const double k = 0.5522847498 * r;
  std::vector<RVBEZIERPOINT> q = {
      Smooth({cx + r, cy}, {cx + r, cy - k}, {cx + r, cy + k}),
      Smooth({cx, cy + r}, {cx + k, cy + r}, {cx - k, cy + r}),
      Smooth({cx - r, cy}, {cx - r, cy + k}, {cx - r, cy - k}),
      Smooth({cx, cy - r}, {cx - k, cy - r}, {cx + k, cy - r}),
  };
  RVBEZIERPOINT last = q[0];
  last.out = last.anchor;
  q[0].in = q[0].anchor;
  q.push_back(last);
  return q;
}

TEST_F(Judge, OrientationOfAComponent) {
  void* square = Square(0, 0, 10);  // (0,0) (0,10) (10,10) (10,0): clockwise
  EXPECT_EQ(RvMiJudgePathClockwise(First(square), 1), 1);
  EXPECT_EQ(RvMiJudgePathClockwise(First(square), 0), 1) << "closed has no effect";
  void* reverse = Polygon({{10, 0}, {10, 10}, {0, 10}, {0, 0}});
  EXPECT_EQ(RvMiJudgePathClockwise(First(reverse), 1), 2);
  EXPECT_EQ(RvGiReverseBezierPoint(First(square)), 0u);
  EXPECT_EQ(RvMiJudgePathClockwise(First(square), 1), 2);

  void* eight = Polygon({{0, 0}, {0, 4}, {4, 0}, {4, 4}});  // equal lobes
  EXPECT_EQ(RvMiJudgePathClockwise(First(eight), 1), 0);
  void* circle = PathOf(Circle(0, 0, 10));
  EXPECT_EQ(RvMiJudgePathClockwise(First(circle), 1), 2);

  // The matrix of the path isn't applied: a mirror leaves the answer.
  void* mirrored = Square(0, 0, 10);
  const RVRIFMATRIX mirror{-1, 0, 0, 1, 0, 0};
  EXPECT_EQ(RvGiSetArtMatrix(mirrored, &mirror), 0u);
  EXPECT_EQ(RvMiJudgePathClockwise(First(mirrored), 1), 1);
  // Nor does the start segment change it.
  EXPECT_EQ(RvGiSetPathStartSegment(First(mirrored), 2), 0u);
  EXPECT_EQ(RvMiJudgePathClockwise(First(mirrored), 1), 1);

  // What can't be read judges 0.
  EXPECT_EQ(RvMiJudgePathClockwise(nullptr, 1), 0);
  EXPECT_EQ(RvMiJudgePathClockwise(square, 1), 0) << "the path art isn't a component";
  void* arcPath = nullptr;
  void* arc = nullptr;
  RvGiCreateArt(4, 3, nullptr, &arcPath);
  RvGiCreateArt(5, 5, arcPath, &arc);
  EXPECT_EQ(RvMiJudgePathClockwise(arc, 1), 0);
  EXPECT_EQ(RvMiJudgePathClockwise(First(PathOf({})), 1), 0);
  EXPECT_EQ(g_ExceptionContext, nullptr);
}

TEST_F(Judge, InsidePointByWindingAngle) {
  void* square = Square(0, 0, 10);
  EXPECT_EQ(InsidePoint(square, {5, 5}), 1);
  EXPECT_EQ(InsidePoint(square, {15, 5}), 0);
  EXPECT_EQ(InsidePoint(square, {5, -0.5}), 0);
  EXPECT_EQ(InsidePoint(square, {9.99, 0.01}), 1);
  // A vertex: the two edges there count 0, the rest a quarter turn.
  EXPECT_EQ(InsidePoint(square, {0, 0}), 0);
  EXPECT_EQ(InsidePoint(PathOf(Circle(0, 0, 10)), {0, 9.5}), 1);
  EXPECT_EQ(InsidePoint(PathOf(Circle(0, 0, 10)), {7.5, 7.5}), 0);

  // The path's matrix maps the anchors only: scaled by 2, the corners go to (0,0) (0,20) (20,20)
  // (20,0) while the handles stay on the old corners, so the top side
  // becomes the curve (0,20) (0,10) (10,10) (20,20), which dips to
  // (6.25, 12.5) half way, and the right side bends in to (12.5, 6.25).
  void* scaled = Square(0, 0, 10);
  const RVRIFMATRIX twice{2, 0, 0, 2, 0, 0};
  RvGiSetArtMatrix(scaled, &twice);
  EXPECT_EQ(InsidePoint(scaled, {6.25, 14}), 0);
  EXPECT_EQ(InsidePoint(scaled, {15, 6.25}), 0);
  EXPECT_EQ(InsidePoint(scaled, {3, 3}), 1);
  EXPECT_EQ(InsidePoint(scaled, {6.25, 11}), 1) << "outside the unscaled square";
  EXPECT_EQ(InsidePoint(scaled, {3, 12}), 1) << "the top is at 13.3 there";

  int32_t inside = 7;
  RVPOINT p{5, 5};
  EXPECT_EQ(RvMiJudgeInsidePoint(nullptr, &p, &inside), 0x06001001u);
  EXPECT_EQ(inside, 0);
  void* empty = nullptr;
  RvGiCreateArt(4, 3, nullptr, &empty);
  EXPECT_EQ(RvMiJudgeInsidePoint(empty, &p, &inside), 0x05000D01u);
  void* arcPath = nullptr;
  void* arc = nullptr;
  RvGiCreateArt(4, 3, nullptr, &arcPath);
  RvGiCreateArt(5, 5, arcPath, &arc);
  EXPECT_EQ(RvMiJudgeInsidePoint(arcPath, &p, &inside), 0x05000E01u);
  EXPECT_EQ(g_ExceptionContext, nullptr);
}

TEST_F(Judge, InsidePathNeedsEveryPointInside) {
  void* outer = Square(0, 0, 10);
  void* inner = Square(2, 2, 4);
  void* across = Square(8, 2, 4);
  void* apart = Square(20, 0, 10);
  EXPECT_EQ(InsidePath(inner, outer), 1);
  EXPECT_EQ(InsidePath(outer, inner), 0);
  EXPECT_EQ(InsidePath(across, outer), 0);
  EXPECT_EQ(InsidePath(apart, outer), 0);
  EXPECT_EQ(InsidePath(PathOf(Circle(5, 5, 4)), outer), 1);
  EXPECT_EQ(InsidePath(PathOf(Circle(5, 5, 5.5)), outer), 0);
  EXPECT_EQ(InsidePath(PathOf({}), outer), 0) << "no segments";

  int32_t inside = 5;
  EXPECT_EQ(RvMiJudgeInsidePath(inner, nullptr, &inside), 0x06001001u);
  EXPECT_EQ(inside, 0);
}

std::vector<int32_t> Flags(const std::vector<RVINSIDEPATH>& list) {
  std::vector<int32_t> flags;
  for (const auto& item : list) flags.push_back(item.inside);
  return flags;
}

TEST_F(Judge, NestingGivesHolesByDepth) {
  void* outer = Square(0, 0, 30);
  void* middle = Square(5, 5, 20);
  void* inner = Square(10, 10, 10);
  for (int32_t invert : {0, 1}) {
    std::vector<RVINSIDEPATH> list = {{inner, 0}, {outer, 0}, {middle, 0}, {nullptr, 0}};
    EXPECT_EQ(RvMiJudgeInsideOutsidePath(list.data(), invert), 0u);
    list.pop_back();
    EXPECT_EQ(list[0].art, outer);
    EXPECT_EQ(list[1].art, middle);
    EXPECT_EQ(list[2].art, inner);
    if (invert == 0) {
      EXPECT_EQ(Flags(list), (std::vector<int32_t>{0, 1, 0}));
    } else {
      EXPECT_EQ(Flags(list), (std::vector<int32_t>{1, 0, 1}));
    }
  }
  std::vector<RVINSIDEPATH> apart = {{Square(0, 0, 10), 0}, {Square(20, 0, 10), 0}, {nullptr, 0}};
  EXPECT_EQ(RvMiJudgeInsideOutsidePath(apart.data(), 0), 0u);
  apart.pop_back();
  EXPECT_EQ(Flags(apart), (std::vector<int32_t>{0, 0}));

  // Equal areas keep their order; two islands in one hole are both at depth 2.
  void* a = Square(1, 1, 3);
  void* b = Square(5, 1, 3);
  void* hole = Square(0.5, 0.5, 9);
  std::vector<RVINSIDEPATH> islands = {{a, 0}, {b, 0}, {outer, 0}, {hole, 0}, {nullptr, 0}};
  EXPECT_EQ(RvMiJudgeInsideOutsidePath(islands.data(), 0), 0u);
  islands.pop_back();
  EXPECT_EQ(islands[0].art, outer);
  EXPECT_EQ(islands[1].art, hole);
  EXPECT_EQ(islands[2].art, a);
  EXPECT_EQ(islands[3].art, b);
  EXPECT_EQ(Flags(islands), (std::vector<int32_t>{0, 1, 0, 0}));

  // One element: only the inversion; none: nothing at all, the terminator
  // stays as it is.
  std::vector<RVINSIDEPATH> one = {{inner, 0}, {nullptr, 0}};
  EXPECT_EQ(RvMiJudgeInsideOutsidePath(one.data(), 1), 0u);
  EXPECT_EQ(one[0].inside, 1);
  EXPECT_EQ(one[1].inside, 0);
  std::vector<RVINSIDEPATH> none = {{nullptr, 0}};
  EXPECT_EQ(RvMiJudgeInsideOutsidePath(none.data(), 1), 0u);
  EXPECT_EQ(none[0].inside, 0);
  EXPECT_EQ(RvMiJudgeInsideOutsidePath(nullptr, 1), 0u);
}

// Rings of many points around scattered centres: nested, crossing, apart,
// some of curves, some with a matrix.
class JudgeOracle : public Judge {
 protected:
  std::vector<void*> MakeScene(int clusters, int depth, unsigned seed) {
    std::mt19937 rng(seed);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    std::vector<void*> paths;
    for (int c = 0; c < clusters; ++c) {
      const double cx = (c % 5) * 30.0 + unit(rng), cy = (c / 5) * 30.0;
      for (int d = 0; d < depth; ++d) {
        const double r = 12.0 - d * (10.0 / depth) + (d % 3 == 2 ? 0.0 : unit(rng));
        const int n = 6 + int(unit(rng) * 30);
        std::vector<RVPOINT> corners;
        for (int i = 0; i < n; ++i) {
          const double t = 2 * M_PI * i / n + (d % 2) * 0.1;
          const double wobble = 1.0 + 0.15 * std::sin(5 * t + c);
          corners.push_back({cx + r * wobble * std::cos(t), cy + r * wobble * std::sin(t)});
        }
        void* path = (d % 4 == 3) ? PathOf(Circle(cx + 0.5, cy, r * 0.9)) : Polygon(corners);
        if (d % 5 == 4) {
          const RVRIFMATRIX shift{1, 0, 0, 1, 0.25, -0.25};
          RvGiSetArtMatrix(path, &shift);
        }
        paths.push_back(path);
      }
    }
    std::shuffle(paths.begin(), paths.end(), rng);
    return paths;
  }
};

TEST_F(JudgeOracle, FastNestingMatchesThePlainAlgorithm) {
  for (unsigned seed : {1u, 2u, 3u}) {
    const std::vector<void*> paths = MakeScene(10, 6, seed);
    for (bool invert : {false, true}) {
      std::vector<RVINSIDEPATH> fast, plain;
      for (void* p : paths) {
        fast.push_back({p, 0});
        plain.push_back({p, 0});
      }
      JudgeInsideOutside(fast, invert);
      JudgeInsideOutsidePlain(plain.data(), plain.size(), invert);
      ASSERT_EQ(fast.size(), plain.size());
      int holes = 0;
      for (std::size_t i = 0; i < fast.size(); ++i) {
        EXPECT_EQ(fast[i].art, plain[i].art) << "seed " << seed << " at " << i;
        EXPECT_EQ(fast[i].inside, plain[i].inside) << "seed " << seed << " at " << i;
        holes += plain[i].inside != (invert ? 1 : 0);
      }
      EXPECT_GT(holes, 10) << "the scene must nest";
      EXPECT_LT(holes, 50) << "the scene must nest in depth, not only by pairs";
    }
  }
}

TEST_F(JudgeOracle, AFailingPathLeavesTheSameStateAsThePlainAlgorithm) {
  std::vector<void*> paths = MakeScene(2, 4, 9);
  void* empty = nullptr;
  RvGiCreateArt(4, 3, nullptr, &empty);  // a path without component
  paths.insert(paths.begin() + 3, empty);
  std::vector<RVINSIDEPATH> fast, plain;
  for (void* p : paths) {
    fast.push_back({p, 0});
    plain.push_back({p, 0});
  }
  fast.push_back({nullptr, 0});
  const uint32_t fastCode = RvMiJudgeInsideOutsidePath(fast.data(), 0);
  fast.pop_back();
  EXPECT_EQ(fastCode, 0x05000D01u);
  uint32_t plainCode = 0;
  try {
    JudgeInsideOutsidePlain(plain.data(), plain.size(), false);
  } catch (const RvError& e) {
    plainCode = e.code();
  }
  EXPECT_EQ(plainCode, fastCode);
  for (std::size_t i = 0; i < fast.size(); ++i) {
    EXPECT_EQ(fast[i].art, plain[i].art);
    EXPECT_EQ(fast[i].inside, plain[i].inside);
  }
  EXPECT_EQ(g_ExceptionContext, nullptr);
}

TEST(JudgeBothSides, StrictComparisonsAndTraceTexts) {
  std::vector<std::string> traced;
  gTraced = &traced;
  RvGiSetTraceFunction(CollectTrace, nullptr);
  EXPECT_EQ(RvMiIsBothSidesCutLine(45.0, 30.0, 1, 0), 1);
  EXPECT_EQ(RvMiIsBothSidesCutLine(30.0, 30.0, 0, 1), 0) << "equal isn't above";
  EXPECT_EQ(RvMiIsBothSidesCutLine(-45.0, 30.0, 1, 0), 0);
  EXPECT_EQ(RvMiIsBothSidesCutLine(-45.0, 30.0, 1, 1), 1);
  EXPECT_EQ(RvMiIsBothSidesCutLine(-30.0, 30.0, 0, 0), 0) << "equal isn't below";
  EXPECT_EQ(RvMiIsBothSidesCutLine(45.0, 30.0, 0, 0), 0);
  RvGiSetTraceFunction(nullptr, nullptr);
  gTraced = nullptr;
  ASSERT_EQ(traced.size(), 6u);
  EXPECT_EQ(traced[0], "Angle:45.000000 LimitAngle:30.000000");
  EXPECT_EQ(traced[3], "bInside==bClockwise Angle:-45.000000 LimitAngle:30.000000");
}

// A "D": the straight side A (0,0) -> B (0,20) and a bulge through P
// (20,10), stored from P with the start twice: P, A, B, P.
std::vector<RVBEZIERPOINT> DShape() {
  return {
      Smooth({20, 10}, {20, 10}, {20, 2}),   // P, start: in on the anchor
      Smooth({0, 0}, {8, 0}, {0, 0}),        // A: a corner, straight out
      Smooth({0, 20}, {0, 20}, {8, 20}),     // B: a corner, curved out
      Smooth({20, 10}, {20, 18}, {20, 10}),  // P again, out on the anchor
  };
}

TEST_F(Judge, StartMovesToTheCornerOfTheStraightSide) {
  void* path = PathOf(DShape());
  RVPOINT startIn{20, 18};
  RvGiSetBezierStartInPoint(First(path), &startIn);
  RvGiSetPathStartSegment(First(path), 3);
  int16_t start = -1;
  EXPECT_EQ(RvMiOptimizeStartSegment(path, nullptr, 0, &start), 0u);
  EXPECT_EQ(start, 0);
  std::vector<RVBEZIERPOINT> r = Records(First(path));
  ASSERT_EQ(r.size(), 4u);
  // A, B, P, A: the closed shape, the start's in handle kept aside.
  EXPECT_EQ(r[0].anchor.x, 0.0);
  EXPECT_EQ(r[0].anchor.y, 0.0);
  EXPECT_EQ(r[1].anchor.y, 20.0);
  EXPECT_EQ(r[2].anchor.x, 20.0);
  EXPECT_EQ(r[3].anchor.x, 0.0);
  EXPECT_EQ(r[3].anchor.y, 0.0);
  EXPECT_EQ(r[3].in.x, 8.0) << "the start's real in handle closes the shape";
  int16_t segment = -1;
  RvGiGetPathStartSegment(First(path), &segment);
  EXPECT_EQ(segment, 0);

  // Type 5: the corner where the side ends comes first, by rotation alone.
  void* other = PathOf(DShape());
  EXPECT_EQ(RvMiOptimizeStartSegment(other, nullptr, 5, &start), 0u);
  EXPECT_EQ(start, 2);
  r = Records(First(other));
  ASSERT_EQ(r.size(), 4u);
  EXPECT_EQ(r[0].anchor.y, 20.0);  // B
  EXPECT_EQ(r[0].out.x, 8.0);
  EXPECT_EQ(r[1].anchor.x, 20.0);  // P again, as stored
  EXPECT_EQ(r[1].in.y, 18.0);
  EXPECT_EQ(r[3].anchor.x, 0.0);  // A

  // The judgment goes through the matrix: mirrored, the same corner wins.
  void* mirrored = PathOf(DShape());
  const RVRIFMATRIX mirror{-1, 0, 0, 1, 0, 0};
  EXPECT_EQ(RvMiOptimizeStartSegment(mirrored, &mirror, 5, &start), 0u);
  EXPECT_EQ(start, 2);
}

TEST_F(Judge, StartOfCurvedAndSmoothShapes) {
  // A circle has no corner but its stored start: nothing moves.
  void* circle = PathOf(Circle(0, 0, 10));
  const RVPOINT startIn = Circle(0, 0, 10).back().in;
  RvGiSetBezierStartInPoint(First(circle), &startIn);
  const std::vector<RVBEZIERPOINT> before = Records(First(circle));
  int16_t start = -1;
  EXPECT_EQ(RvMiOptimizeStartSegment(circle, nullptr, 0, &start), 0u);
  EXPECT_EQ(start, 0);
  const std::vector<RVBEZIERPOINT> after = Records(First(circle));
  ASSERT_EQ(after.size(), before.size());
  for (std::size_t i = 0; i < before.size(); ++i) {
    EXPECT_TRUE(SameRecord(after[i], before[i])) << "record " << i;
  }

  // Curved sides only, corners everywhere (start not stored twice): the
  // longest chord leaving a corner wins; chords Q0-Q1 10, Q1-Q2 30, Q2-Q0
  // 31.6. Type 5 starts at its end.
  const std::vector<RVBEZIERPOINT> curved = {
      Smooth({0, 0}, {-3, 3}, {3, 3}),
      Smooth({10, 0}, {7, 3}, {13, 3}),
      Smooth({10, 30}, {13, 27}, {7, 27}),
  };
  void* bulgy = PathOf(curved);
  EXPECT_EQ(RvMiOptimizeStartSegment(bulgy, nullptr, 5, &start), 0u);
  EXPECT_EQ(start, 0) << "the chord Q2-Q0 ends at Q0";
  void* shorter = PathOf({curved[1], curved[2], curved[0]});  // chord Q2-Q0 now from index 1
  EXPECT_EQ(RvMiOptimizeStartSegment(shorter, nullptr, 5, &start), 0u);
  EXPECT_EQ(start, 2);
  EXPECT_EQ(Records(First(shorter))[0].anchor.y, 0.0);

  // An open path is left alone and the output isn't written.
  void* open = PathOf(DShape(), 0);
  start = 42;
  EXPECT_EQ(RvMiOptimizeStartSegment(open, nullptr, 0, &start), 0u);
  EXPECT_EQ(start, 42);
  EXPECT_EQ(Records(First(open))[0].anchor.x, 20.0);
}

TEST_F(Judge, StartFailureOfTheClosedReadGoesToTheCallersFrame) {
  int16_t start = 42;
  // No recovery point of the host: traced, and the code comes back.
  EXPECT_EQ(RvMiOptimizeStartSegment(nullptr, nullptr, 0, &start), 0x05000D01u);
  EXPECT_EQ(start, 42);
  ExceptionInfo info;
  volatile int jumped = 0;
  if (setjmp(info.context) == 0) {
    PushExceptionInfo(&info);
    RvMiOptimizeStartSegment(nullptr, nullptr, 0, &start);
    PopExceptionInfo(&info);
  } else {
    jumped = 1;
  }
  EXPECT_EQ(jumped, 1);
  EXPECT_EQ(gGetLastError(), 0x05000D01u);
  EXPECT_EQ(g_ExceptionContext, nullptr);
}

TEST_F(Judge, JointPointAtALengthAlongTheCurve) {
  // A straight side of 100 units; the joint 30 units along lies within the
  // length search's 1.0 of (30, 0).
  void* path = PathOf({Corner(0, 0), Corner(100, 0), Corner(100, 50)}, 0);
  void* component = First(path);
  RVBEZIERPOINT a = Corner(0, 0), b = Corner(100, 0);
  const RVRIFMATRIX identity{1, 0, 0, 1, 0, 0};
  RvMiCreateJointSegment(component, 0, &a, &b, &identity, 30.0);
  std::vector<RVBEZIERPOINT> r = Records(component);
  ASSERT_EQ(r.size(), 4u);
  EXPECT_NEAR(r[1].anchor.x, 30.0, 1.0);
  EXPECT_EQ(r[1].anchor.y, 0.0);
  EXPECT_EQ(r[2].anchor.x, 100.0);
  EXPECT_EQ(r[0].anchor.x, 0.0);

  // a and b come in the mapped space: scaled by 2 the side is 200 long
  // there, and 60 along it is 30 in the component's own units.
  void* scaled = PathOf({Corner(0, 0), Corner(100, 0)}, 0);
  const RVRIFMATRIX twice{2, 0, 0, 2, 0, 0};
  RVBEZIERPOINT a2 = Corner(0, 0), b2 = Corner(200, 0);
  RvMiCreateJointSegment(First(scaled), 0, &a2, &b2, &twice, 60.0);
  r = Records(First(scaled));
  ASSERT_EQ(r.size(), 3u);
  EXPECT_NEAR(r[1].anchor.x, 30.0, 0.5);
  EXPECT_EQ(r[2].anchor.x, 100.0);

  // A matrix without inverse changes nothing; the code reaches the host.
  const RVRIFMATRIX flat{1, 0, 0, 0, 0, 0};
  ExceptionInfo info;
  volatile int jumped = 0;
  if (setjmp(info.context) == 0) {
    PushExceptionInfo(&info);
    RvMiCreateJointSegment(First(scaled), 0, &a2, &b2, &flat, 60.0);
    PopExceptionInfo(&info);
  } else {
    jumped = 1;
  }
  EXPECT_EQ(jumped, 1);
  EXPECT_EQ(gGetLastError(), 0x08001901u);
  EXPECT_EQ(Records(First(scaled)).size(), 3u);
}

}  // namespace
