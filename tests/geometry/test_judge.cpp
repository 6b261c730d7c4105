// The path judgments through the exported functions, on paths of a document.
#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <random>
#include <string>
#include <tuple>
#include <utility>

#include "frame/frame.h"
#include "geometry/judge.h"
#include "geometry_test.h"

using namespace rv;
using namespace geotest;

namespace {

using Nested = std::vector<std::pair<void*, int32_t>>;

// A circle of radius r about (cx, cy) in four Bezier quarters,
// counter-clockwise from the right, start stored twice.
std::vector<RVBEZIERPOINT> Circle(double cx, double cy, double r) {
  const double k = 0.5522847498 * r;
  return {Smooth({cx + r, cy}, {cx + r, cy}, {cx + r, cy + k}),
          Smooth({cx, cy + r}, {cx + k, cy + r}, {cx - k, cy + r}),
          Smooth({cx - r, cy}, {cx - r, cy + k}, {cx - r, cy - k}),
          Smooth({cx, cy - r}, {cx - k, cy - r}, {cx + k, cy - r}),
          Smooth({cx + r, cy}, {cx + r, cy - k}, {cx + r, cy})};
}

// A "D": the straight side A (0,0) -> B (0,20) and a bulge through P
// (20,10), stored from P with the start twice: P (in on the anchor), A (a
// corner, straight out), B (a corner, curved out), P (out on the anchor).
const std::vector<RVBEZIERPOINT> kD = {Smooth({20, 10}, {20, 10}, {20, 2}), Smooth({0, 0}, {8, 0}, {0, 0}),
                                       Smooth({0, 20}, {0, 20}, {8, 20}), Smooth({20, 10}, {20, 18}, {20, 10})};

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
void* First(void* path) {
  void* child = nullptr;
  EXPECT_EQ(RvGiGetArtFirstChild(path, &child), 0u);
  return child;
}
// The records of a component, flags last.
std::vector<V> Rows(void* component) {
  int32_t count = 0;
  EXPECT_EQ(RvGiGetPathSegmentCount(component, &count), 0u);
  std::vector<V> rows;
  for (int32_t i = 0; i < count; ++i) {
    RVBEZIERPOINT p{};
    EXPECT_EQ(RvGiGetBezierPoint(component, i, &p), 0u);
    rows.push_back(Row(p));
    rows.back().push_back(p.flags);
  }
  return rows;
}
int16_t OptimizeStart(void* path, const RVRIFMATRIX* matrix, int16_t type) {
  int16_t start = 42;
  EXPECT_EQ(RvMiOptimizeStartSegment(path, matrix, type, &start), 0u);
  return start;
}
// Calls `body` inside a recovery point of the host; true when it jumped back.
template <class Body>
bool JumpsToTheHost(Body body) {
  ExceptionInfo info;
  if (setjmp(info.context) != 0) return true;
  PushExceptionInfo(&info);
  body();
  PopExceptionInfo(&info);
  return false;
}

// Every test works in a document of its own with one layer.
class Judge : public ::testing::Test {
 protected:
  void SetUp() override {
    int16_t index = -1;
    void* layer = nullptr;
    ASSERT_EQ(RvGiCreateDocument(0, &index), 0u);
    ASSERT_EQ(RvGiCreateLayer(1, nullptr, &layer), 0u);
    ASSERT_EQ(RvGiCreateArt(4, 3, nullptr, &m_arcPath), 0u);
    ASSERT_EQ(RvGiCreateArt(5, 5, m_arcPath, &m_arc), 0u);
    ASSERT_EQ(RvGiCreateArt(4, 3, nullptr, &m_empty), 0u);
  }
  void TearDown() override { RvGiDeleteActiveDocument(); }
  void* m_arcPath = nullptr;  // a path whose only component is the arc m_arc
  void* m_arc = nullptr;
  void* m_empty = nullptr;  // a path without component
};

TEST_F(Judge, OrientationOfAComponent) {
  void* square = Square(0, 0, 10);  // (0,0) (0,10) (10,10) (10,0): clockwise
  // Neither the path's matrix nor the start segment changes the answer.
  void* mirrored = Square(0, 0, 10);
  const RVRIFMATRIX mirror{-1, 0, 0, 1, 0, 0};
  EXPECT_EQ(RvGiSetArtMatrix(mirrored, &mirror), 0u);
  EXPECT_EQ(RvGiSetPathStartSegment(First(mirrored), 2), 0u);
  const std::pair<void*, int32_t> cases[] = {
      {First(square), 1}, {First(Polygon({{10, 0}, {10, 10}, {0, 10}, {0, 0}})), 2},
      {First(Polygon({{0, 0}, {0, 4}, {4, 0}, {4, 4}})), 0},  // equal lobes
      {First(PathOf(Circle(0, 0, 10))), 2}, {First(mirrored), 1},
      // What can't be read judges 0; the path art itself isn't a component.
      {nullptr, 0}, {square, 0}, {m_arc, 0}, {First(PathOf({})), 0}};
  for (auto [component, expected] : cases) EXPECT_EQ(RvMiJudgePathClockwise(component, 1), expected) << component;
  EXPECT_EQ(RvMiJudgePathClockwise(First(square), 0), 1) << "closed has no effect";
  EXPECT_EQ(g_ExceptionContext, nullptr);
}

TEST_F(Judge, InsidePointByWindingAngleAndPathByAllItsPoints) {
  void* square = Square(0, 0, 10);
  void* circle = PathOf(Circle(0, 0, 10));
  // The matrix maps the anchors only: scaled by 2, the handles stay on the
  // old corners, so the top side (0,20) (0,10) (10,10) (20,20) dips to
  // (6.25, 12.5) half way; (6.25, 11) is inside, outside the unscaled square.
  void* scaled = Square(0, 0, 10);
  const RVRIFMATRIX twice{2, 0, 0, 2, 0, 0};
  RvGiSetArtMatrix(scaled, &twice);
  const std::tuple<void*, RVPOINT, int32_t> points[] = {
      {square, {5, 5}, 1}, {square, {15, 5}, 0}, {square, {9.99, 0.01}, 1},
      {square, {0, 0}, 0},  // a vertex: the two edges there count 0, the rest a quarter turn
      {circle, {0, 9.5}, 1}, {circle, {7.5, 7.5}, 0}, {scaled, {6.25, 14}, 0}, {scaled, {6.25, 11}, 1}};
  for (auto [path, p, expected] : points) {
    int32_t inside = -1;
    EXPECT_EQ(RvMiJudgeInsidePoint(path, &p, &inside), 0u);
    EXPECT_EQ(inside, expected) << p.x << ", " << p.y;
  }
  void* inner = Square(2, 2, 4);
  const std::tuple<void*, void*, int32_t> paths[] = {
      {inner, square, 1}, {square, inner, 0}, {Square(8, 2, 4), square, 0}, {PathOf(Circle(5, 5, 4)), square, 1},
      {PathOf(Circle(5, 5, 5.5)), square, 0}, {PathOf({}), square, 0}};
  for (auto [path, outer, expected] : paths) {
    int32_t inside = -1;
    EXPECT_EQ(RvMiJudgeInsidePath(path, outer, &inside), 0u);
    EXPECT_EQ(inside, expected);
  }

  int32_t inside = 7;
  const RVPOINT p{5, 5};
  EXPECT_EQ(RvMiJudgeInsidePoint(nullptr, &p, &inside), 0x06001001u);
  EXPECT_EQ(inside, 0);
  EXPECT_EQ(RvMiJudgeInsidePoint(m_empty, &p, &inside), 0x05000D01u);
  EXPECT_EQ(RvMiJudgeInsidePoint(m_arcPath, &p, &inside), 0x05000E01u);
  inside = 5;
  EXPECT_EQ(RvMiJudgeInsidePath(inner, nullptr, &inside), 0x06001001u);
  EXPECT_EQ(inside, 0);
  EXPECT_EQ(g_ExceptionContext, nullptr);
}

// The nesting judgment of `arts`: the arts in their new order with their
// flags. The terminator stays as it was.
Nested Nest(const std::vector<void*>& arts, int32_t invert) {
  std::vector<RVINSIDEPATH> list;
  for (void* art : arts) list.push_back({art, 0});
  list.push_back({nullptr, 7});
  EXPECT_EQ(RvMiJudgeInsideOutsidePath(list.data(), invert), 0u);
  EXPECT_EQ(list.back().inside, 7);
  Nested out;
  for (std::size_t i = 0; i + 1 < list.size(); ++i) out.emplace_back(list[i].art, list[i].inside);
  return out;
}

TEST_F(Judge, NestingGivesHolesByDepth) {
  void* outer = Square(0, 0, 30);
  void* middle = Square(5, 5, 20);
  void* inner = Square(10, 10, 10);
  EXPECT_EQ(Nest({inner, outer, middle}, 0), (Nested{{outer, 0}, {middle, 1}, {inner, 0}}));
  EXPECT_EQ(Nest({inner, outer, middle}, 1), (Nested{{outer, 1}, {middle, 0}, {inner, 1}}));
  // Equal areas keep their order; two islands apart in one hole are both at
  // depth 2.
  void* a = Square(1, 1, 3);
  void* b = Square(5, 1, 3);
  void* hole = Square(0.5, 0.5, 9);
  EXPECT_EQ(Nest({a, b, outer, hole}, 0), (Nested{{outer, 0}, {hole, 1}, {a, 0}, {b, 0}}));
  // One element: only the inversion; none: nothing at all.
  EXPECT_EQ(Nest({inner}, 1), (Nested{{inner, 1}}));
  EXPECT_EQ(Nest({}, 1), Nested{});
  EXPECT_EQ(RvMiJudgeInsideOutsidePath(nullptr, 1), 0u);
}

// Rings of many points about scattered centres: nested, crossing, apart,
// some of curves, some with a matrix.
std::vector<void*> MakeScene(int clusters, int depth, unsigned seed) {
  std::mt19937 rng(seed);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  const RVRIFMATRIX shift{1, 0, 0, 1, 0.25, -0.25};
  std::vector<void*> paths;
  for (int c = 0; c < clusters; ++c) {
    const double cx = (c % 5) * 30.0 + unit(rng), cy = (c / 5) * 30.0;
    for (int d = 0; d < depth; ++d) {
      const double r = 12.0 - d * (10.0 / depth) + (d % 3 == 2 ? 0.0 : unit(rng));
      std::vector<RVPOINT> corners(6 + std::size_t(unit(rng) * 30));
      for (std::size_t i = 0; i < corners.size(); ++i) {
        const double t = 2 * kPi * double(i) / double(corners.size()) + (d % 2) * 0.1;
        const double wobble = 1.0 + 0.15 * std::sin(5 * t + c);
        corners[i] = {cx + r * wobble * std::cos(t), cy + r * wobble * std::sin(t)};
      }
      paths.push_back((d % 4 == 3) ? PathOf(Circle(cx + 0.5, cy, r * 0.9)) : Polygon(corners));
      if (d % 5 == 4) RvGiSetArtMatrix(paths.back(), &shift);
    }
  }
  std::shuffle(paths.begin(), paths.end(), rng);
  return paths;
}

// The exported (fast) judgment against the plain algorithm: the same code
// and the same list, also when a path fails half way. Returns the holes.
int ExpectSameAsPlain(const std::vector<void*>& paths, bool invert, uint32_t code) {
  std::vector<RVINSIDEPATH> fast;
  for (void* p : paths) fast.push_back({p, 0});
  std::vector<RVINSIDEPATH> plain = fast;
  fast.push_back({nullptr, 0});
  EXPECT_EQ(RvMiJudgeInsideOutsidePath(fast.data(), invert), code);
  EXPECT_EQ(Guard([&] { JudgeInsideOutsidePlain(plain.data(), plain.size(), invert); }), code);
  // The flags-only judgment leaves the array in its order.
  std::vector<RVINSIDEPATH> flags;
  for (void* p : paths) flags.push_back({p, 0});
  const std::vector<RVINSIDEPATH> given = flags;
  EXPECT_EQ(Guard([&] { JudgeNestingFlags(flags.data(), flags.size(), invert); }), code);
  // The same on a thread, started in another order, given the final order
  // ahead, or another one, or none.
  auto pairs = [](const std::vector<RVINSIDEPATH>& list) {
    std::vector<std::pair<void*, int32_t>> out;
    for (const RVINSIDEPATH& e : list) out.emplace_back(e.art, e.inside);
    return out;
  };
  for (int handed : {0, 1, 2}) {
    (void)Guard([] { Raise(0x7F000101u); });
    NestingJob job({given.rbegin(), given.rend()}, 0);
    EXPECT_EQ(job.Readable(), code == 0);
    EXPECT_EQ(gGetLastError(), 0x7F000101u) << "a failure on the thread is the caller's to meet";
    if (handed == 1) job.Order(given, invert);
    if (handed == 2) job.Order({given.begin() + 1, given.end()}, invert);
    std::vector<RVINSIDEPATH> late = given;
    EXPECT_EQ(Guard([&] { job.Finish(late.data(), late.size(), invert); }), code);
    if (code == 0) {
      EXPECT_EQ(pairs(late), pairs(flags)) << "handed " << handed;
    }
  }
  NestingJob abandoned(given, 0);  // stops and ends unfinished
  int holes = 0;
  for (std::size_t i = 0; i < plain.size(); ++i) {
    EXPECT_EQ((std::pair{fast[i].art, fast[i].inside}), (std::pair{plain[i].art, plain[i].inside})) << i;
    holes += plain[i].inside != (invert ? 1 : 0);
    if (code != 0) continue;
    const auto same = std::find_if(flags.begin(), flags.end(), [&](const auto& e) { return e.art == plain[i].art; });
    EXPECT_EQ(same->inside, plain[i].inside) << "flags only, " << i;
  }
  return holes;
}

// Straight pieces as a nesting program draws them: a cut line; a sew line
// inside that shares some of its corners and sides; notches from the cut
// line inward; a label; neighbours that share a side; an exact copy; a line
// across; long sides of many chords, at coordinates that don't round
// evenly.
std::vector<void*> PieceScene(unsigned seed) {
  std::mt19937 rng(seed);
  std::uniform_int_distribution<int> pick(0, 3);
  std::vector<void*> paths;
  auto line = [&](RVPOINT a, RVPOINT b) { paths.push_back(PathOf({Corner(a.x, a.y), Corner(b.x, b.y)}, 0)); };
  for (int p = 0; p < 8; ++p) {
    const double w = 60.0 + 0.025 * pick(rng), h = p == 7 ? 2000.125 : 45.075;
    const double x0 = 10.225 + (p % 4) * w, y0 = 10.175 + (p / 4) * 50.0;
    const double midX = x0 + w / 2;
    // The middle of the top side is a corner that doesn't turn.
    const std::vector<RVPOINT> cut = {{x0, y0}, {x0, y0 + h}, {midX, y0 + h}, {x0 + w, y0 + h}, {x0 + w, y0}};
    std::vector<RVPOINT> sew = cut;
    for (std::size_t k = 0; k < sew.size(); ++k) {
      if (pick(rng) == 0) continue;  // shared with the cut line
      sew[k].x += k < 3 ? 1.0 : -1.0;
      sew[k].y += (k == 0 || k == 4) ? 1.0 : (k == 2 ? 0.0 : -1.0);
    }
    paths.push_back(Polygon(cut));
    paths.push_back(Polygon(sew));
    if (p == 2) paths.push_back(Polygon(cut));  // a copy: the same area
    line({midX, y0 + h}, {midX, y0 + h - 3.0});
    line({x0, y0 + h / 3}, {x0 + 2.5, y0 + h / 3});
    line({x0 + w, y0 + 5.0}, {x0 + w - 2.0, y0 + 5.0 + pick(rng)});
    paths.push_back(Square(x0 + 20.0, y0 + 12.5, 4.0 + pick(rng)));
    if (pick(rng) == 0) line({x0 - 5.0, y0 + 7.0}, {x0 + w + 5.0, y0 + 9.0});
  }
  std::shuffle(paths.begin(), paths.end(), rng);
  return paths;
}

TEST_F(Judge, FastNestingMatchesThePlainAlgorithm) {
  for (unsigned seed : {1u, 2u, 3u}) {
    const std::vector<void*> paths = MakeScene(10, 6, seed);
    for (bool invert : {false, true}) {
      SCOPED_TRACE(seed);
      const int holes = ExpectSameAsPlain(paths, invert, 0);
      EXPECT_GT(holes, 10) << "the scene must nest";
      EXPECT_LT(holes, 50) << "the scene must nest in depth, not only by pairs";
    }
  }
  // One large piece holding a hundred.
  std::vector<void*> held = MakeScene(25, 4, 4);
  held.insert(held.begin() + 50, Square(-20, -20, 200));
  EXPECT_GT(ExpectSameAsPlain(held, false, 0), 50);
  for (unsigned seed : {5u, 6u, 7u, 8u}) {
    SCOPED_TRACE(seed);
    EXPECT_GT(ExpectSameAsPlain(PieceScene(seed), seed % 2 == 0, 0), 15);
  }
  // A side so nearly level that it crosses the height of a corner lying
  // just off it far along: the corner's test counts that crossing. Both
  // ways round, so that the crossing lies before and after the corner.
  for (bool reversed : {false, true}) {
    std::vector<RVPOINT> outer = {{0, 0}, {2000, 1e-7}, {2000, 50}, {0, 50}};
    if (reversed) std::reverse(outer.begin(), outer.end());
    for (double y : {1e-8, 1.4e-7}) {
      ExpectSameAsPlain({Polygon(outer), Polygon({{1500, y}, {1500, 10}, {1510, 10}, {1510, y}})}, false, 0);
    }
  }
  // A bow tie has no area, nor has a stroke: the stroke in one loop lies
  // inside the tie only where the tie comes first.
  void* bow = Polygon({{0, 0}, {10, 10}, {10, 0}, {0, 10}});
  void* stroke = PathOf({Corner(8, 4), Corner(8, 6)}, 0);
  EXPECT_EQ(ExpectSameAsPlain({bow, stroke}, false, 0), 1);
  EXPECT_EQ(ExpectSameAsPlain({stroke, bow}, false, 0), 0);
  // Squares that share a corner and two sides; a path without points.
  ExpectSameAsPlain({Square(0, 0, 10), PathOf({}), Square(0, 0, 5)}, false, 0);
  std::vector<void*> paths = MakeScene(2, 4, 9);
  paths.insert(paths.begin() + 3, m_empty);
  ExpectSameAsPlain(paths, false, 0x05000D01u);
  EXPECT_EQ(g_ExceptionContext, nullptr);
}

std::vector<std::string> gTraced;
TEST(JudgeBothSides, StrictComparisonsAndTraceTexts) {
  RvGiSetTraceFunction([](void*, const char* text) { gTraced.emplace_back(text); }, nullptr);
  // angle, inside, clockwise, both sides; equal to the limit is neither above nor below.
  const std::tuple<double, int32_t, int32_t, int32_t> cases[] = {
      {45, 1, 0, 1}, {30, 0, 1, 0}, {-45, 1, 0, 0}, {-45, 1, 1, 1}, {-30, 0, 0, 0}, {45, 0, 0, 0}};
  for (auto [angle, inside, clockwise, expected] : cases) {
    EXPECT_EQ(RvMiIsBothSidesCutLine(angle, 30.0, inside, clockwise), expected) << angle;
  }
  RvGiSetTraceFunction(nullptr, nullptr);
  ASSERT_EQ(gTraced.size(), 6u);
  EXPECT_EQ(gTraced[0], "Angle:45.000000 LimitAngle:30.000000");
  EXPECT_EQ(gTraced[3], "bInside==bClockwise Angle:-45.000000 LimitAngle:30.000000");
}

TEST_F(Judge, StartMovesToACorner) {
  void* path = PathOf(kD);
  const RVPOINT startIn{20, 18};
  RvGiSetBezierStartInPoint(First(path), &startIn);
  RvGiSetPathStartSegment(First(path), 3);
  EXPECT_EQ(OptimizeStart(path, nullptr, 0), 0);
  // A, B, P, A in the closed shape: the start's in handle kept aside and its
  // real one (8, 0) closing the shape; the start segment is 0 again.
  EXPECT_EQ(Rows(First(path)), (std::vector<V>{{0, 0, 0, 0, 0, 0, 0}, {0, 20, 0, 20, 8, 20, 0},
                                              {20, 10, 20, 18, 20, 2, 0}, {0, 0, 8, 0, 0, 0, 0}}));
  int16_t segment = -1;
  RvGiGetPathStartSegment(First(path), &segment);
  EXPECT_EQ(segment, 0);
  // Type 5: the corner where the side ends comes first, by rotation alone;
  // the judgment goes through the matrix: mirrored, the same corner wins.
  void* other = PathOf(kD);
  EXPECT_EQ(OptimizeStart(other, nullptr, 5), 2);
  EXPECT_EQ(Rows(First(other)), (std::vector<V>{{0, 20, 0, 20, 8, 20, 0}, {20, 10, 20, 18, 20, 10, 0},
                                               {20, 10, 20, 10, 20, 2, 0}, {0, 0, 8, 0, 0, 0, 0}}));
  const RVRIFMATRIX mirror{-1, 0, 0, 1, 0, 0};
  EXPECT_EQ(OptimizeStart(PathOf(kD), &mirror, 5), 2);

  // A circle has no corner but its stored start: nothing moves.
  void* circle = PathOf(Circle(0, 0, 10));
  const RVPOINT circleIn = Circle(0, 0, 10).back().in;
  RvGiSetBezierStartInPoint(First(circle), &circleIn);
  const std::vector<V> before = Rows(First(circle));
  EXPECT_EQ(OptimizeStart(circle, nullptr, 0), 0);
  EXPECT_EQ(Rows(First(circle)), before);
  // Curved sides only, corners everywhere (start not stored twice): the
  // longest chord leaving a corner wins; chords Q0-Q1 10, Q1-Q2 30, Q2-Q0
  // 31.6. Type 5 starts at its end.
  const std::vector<RVBEZIERPOINT> curved = {Smooth({0, 0}, {-3, 3}, {3, 3}), Smooth({10, 0}, {7, 3}, {13, 3}),
                                             Smooth({10, 30}, {13, 27}, {7, 27})};
  EXPECT_EQ(OptimizeStart(PathOf(curved), nullptr, 5), 0) << "the chord Q2-Q0 ends at Q0";
  // An open path is left alone and the output isn't written.
  void* open = PathOf(kD, 0);
  EXPECT_EQ(OptimizeStart(open, nullptr, 0), 42);
  EXPECT_EQ(Rows(First(open))[0][0], 20.0);

  // A failure of the closed read comes back without a recovery point of
  // the host (traced), and goes to the host's one when there is.
  int16_t start = 42;
  EXPECT_EQ(RvMiOptimizeStartSegment(nullptr, nullptr, 0, &start), 0x05000D01u);
  EXPECT_EQ(start, 42);
  EXPECT_TRUE(JumpsToTheHost([&] { RvMiOptimizeStartSegment(nullptr, nullptr, 0, &start); }));
  EXPECT_EQ(gGetLastError(), 0x05000D01u);
  EXPECT_EQ(g_ExceptionContext, nullptr);
}

TEST_F(Judge, JointPointAtALengthAlongTheCurve) {
  // a and b come in the mapped space: scaled by 2 the side of 100 is 200
  // long there, and 60 along it (within the search's 1.0) is 30 in the
  // component's own units. The rest of the path stays.
  void* path = PathOf({Corner(0, 0), Corner(100, 0), Corner(100, 50)}, 0);
  RVBEZIERPOINT a = Corner(0, 0), b = Corner(200, 0);
  const RVRIFMATRIX twice{2, 0, 0, 2, 0, 0}, flat{1, 0, 0, 0, 0, 0};
  RvMiCreateJointSegment(First(path), 0, &a, &b, &twice, 60.0);
  const std::vector<V> r = Rows(First(path));
  ASSERT_EQ(r.size(), 4u);
  EXPECT_NEAR(r[1][0], 30.0, 0.5);
  EXPECT_EQ((V{r[0][0], r[1][1], r[2][0], r[3][1]}), (V{0, 0, 100, 50}));
  // A matrix without inverse changes nothing; the code reaches the host.
  EXPECT_TRUE(JumpsToTheHost([&] { RvMiCreateJointSegment(First(path), 0, &a, &b, &flat, 60.0); }));
  EXPECT_EQ(gGetLastError(), 0x08001901u);
  EXPECT_EQ(Rows(First(path)), r);
}

}  // namespace
