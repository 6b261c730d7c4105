// Curve operations through the exported functions, checked against values
// worked out by hand from the algorithms (and, for the single-precision arc
// fit, by following each float step on paper).
#include <cmath>
#include <cstddef>
#include <limits>
#include <tuple>
#include <utility>

#include "geometry_test.h"

using namespace geotest;

namespace {

constexpr uint32_t kBadArgument = 0x08000D01u;
constexpr uint32_t kTooLarge = 0x08000E01u;
const double kNaN = std::numeric_limits<double>::quiet_NaN();
using Curve = std::vector<RVBEZIERPOINT>;
using Rows = std::vector<V>;

static_assert(sizeof(RVCURVEPOINT) == 80 && offsetof(RVCURVEPOINT, point) == 8 && offsetof(RVCURVEPOINT, arc) == 8 &&
                  offsetof(RVCURVEPOINT, bezier) == 8 && offsetof(RVCURVEARC, direction) == 64 &&
                  sizeof(RVBEZIERPOINT) == 56,
              "one record size for all kinds");

// Owns an array handed out by the library (none after a failure: freeing
// null succeeds too).
struct Records {
  RVCURVEPOINT* data = nullptr;
  int32_t count = -1;
  ~Records() { EXPECT_EQ(RvMiFreePoints(data), 0u); }
  // One row a record: its kind, then its fields.
  Rows All() const {
    Rows out;
    for (int i = 0; i < count; ++i) {
      const RVCURVEPOINT& r = data[i];
      const RVCURVEARC& a = r.arc;
      const RVPOINT* s = r.spline;
      if (r.kind == 0) out.push_back({0, r.point.x, r.point.y});
      const RVBEZIERPOINT& b = r.bezier;
      if (r.kind == 1) {
        out.push_back({1, a.startX, a.startY, a.endX, a.endY, a.midX, a.midY, a.centreX, a.centreY, 0.0 + a.direction});
      }
      if (r.kind == 2) out.push_back({2, b.anchor.x, b.anchor.y, b.in.x, b.in.y, b.out.x, b.out.y, 0.0 + b.flags});
      if (r.kind == 3) out.push_back({3, s[0].x, s[0].y, s[1].x, s[1].y, s[2].x, s[2].y});
    }
    return out;
  }
};

// The polyline of RvMiCurvesToPoints: x and y of every record, all of kind 0.
V PointsOf(const Curve& pts, double maxLength, double tolerance, int32_t mode = 1) {
  Records r;
  EXPECT_EQ(RvMiCurvesToPoints(pts.data(), int32_t(pts.size()), maxLength, tolerance, &r.data, &r.count, mode), 0u);
  EXPECT_EQ(r.data == nullptr, r.count == 0);
  V out;
  for (const V& row : r.All()) {
    EXPECT_EQ(row[0], 0);
    out.insert(out.end(), row.begin() + 1, row.end());
  }
  return out;
}
Rows Arc(const RVARCPOINT& arc) {
  Records r;
  EXPECT_EQ(RvMiArcToCurves(&arc, &r.data, &r.count), 0u);
  return r.All();
}
Rows FitArcs(const Curve& pts, double scale) {
  Records r;
  EXPECT_EQ(RvMiCurvesToArc(pts.data(), int32_t(pts.size()), 31000, 0.03, &r.data, &r.count, scale), 0u);
  return r.All();
}
Rows Spline(Curve& pts, double maxLength, double tolerance, double scale) {
  Records r;
  EXPECT_EQ(RvMiCurvesToSpline(pts.data(), int32_t(pts.size()), maxLength, tolerance, &r.data, &r.count, scale), 0u);
  return r.All();
}

// A straight line along x whose handles sit at its thirds.
Curve EvenLine(double length) {
  return {Smooth({0, 0}, {0, 0}, {length / 3, 0}), Smooth({length, 0}, {2 * length / 3, 0}, {length, 0})};
}
// (0,0) (0,1) (10,1) (10,0): one halving brings the handles within 0.5 of the
// chords (0.4945 and 0.3709 from them), not within 0.49.
const Curve kHump = {Smooth({0, 0}, {0, 0}, {0, 1}), Smooth({10, 0}, {10, 1}, {10, 0})};

TEST(CurvesToPoints, HandWorkedPolylines) {
  const Curve line{Corner(0, 0), Corner(100, 0)};
  // Near-vertical, handles in their anchors' x cells: a straight candidate,
  // whose tolerance is then the angle (here 0.05/30 rad).
  const Curve steep{Smooth({0, 0}, {0, 0}, {0.005, 3}), Smooth({0, 10}, {0.005, 7}, {0, 10})};
  const std::tuple<const char*, Curve, double, double, int32_t, V> cases[] = {
      {"short enough", line, 31000, 0.03, 1, {0, 0, 100, 0}},
      // Handles on the anchors: x(t) = 100 (3t^2 - 2t^3) halves unevenly.
      {"halved for maxLength", line, 30, 0.03, 1,
       {0, 0, 15.625, 0, 31.640625, 0, 50, 0, 68.359375, 0, 84.375, 0, 100, 0}},
      {"shared anchor twice", {Corner(0, 0), Corner(10, 0), Corner(10, 20)}, 31000, 0.03, 1,
       {0, 0, 10, 0, 10, 0, 10, 20}},
      {"one point", {Corner(1, 1)}, 31000, 0.03, 1, {}},
      {"hump", kHump, 31000, 0.5, 1, {0, 0, 5, 0.75, 10, 0}},
      {"hump finer", kHump, 31000, 0.49, 1, {0, 0, 1.5625, 0.5625, 5, 0.75, 8.4375, 0.5625, 10, 0}},
      {"cells truncate toward zero", {Smooth({-0.005, 0}, {0, 0}, {0, 50}), Smooth({0.005, 0}, {0, -50}, {0, 0})},
       31000, 0.03, 0, {-0.005, 0, 0.005, 0}},
      {"off the grid: one shared cell", {Corner(1e300, 0), Corner(-1e300, 0.001)}, 31000, 0.03, 1, {1e300, 0, -1e300, 0.001}},
      {"steep within the angle", steep, 31000, 0.81, 1, {0, 0, 0, 10}},
  };
  for (const auto& [what, pts, maxLength, tolerance, mode, expected] : cases) {
    EXPECT_EQ(PointsOf(pts, maxLength, tolerance, mode), expected) << what;
  }
  EXPECT_GT(PointsOf(steep, 31000, 0.001).size(), 4u) << "beyond the angle";
  // Mode 0 across a cell boundary: the halvings close in on it and stop.
  const V xs = PointsOf({Corner(0, 0), Corner(0.015, 0)}, 31000, 0.03, 0);
  ASSERT_GT(xs.size(), 6u);
  EXPECT_LT(xs.size(), 400u);
  EXPECT_EQ(xs[xs.size() - 2], 0.015);
  for (std::size_t i = 2; i < xs.size(); i += 2) EXPECT_GE(xs[i], xs[i - 2]);
}

TEST(CurveExports, FailuresGiveCodesAndLeaveNothing) {
  RVCURVEPOINT* out = reinterpret_cast<RVCURVEPOINT*>(0x1);
  int32_t n = 7;
  RVBEZIERPOINT pts[2] = {Corner(0, 0), Corner(1, 1)};
  EXPECT_EQ(RvMiCurvesToPoints(pts, -1, 31000, 0.03, &out, &n, 1), kBadArgument);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(n, 0);
  EXPECT_EQ(RvMiCurvesToPoints(nullptr, 2, 31000, 0.03, &out, &n, 1), kBadArgument);
  EXPECT_EQ(RvMiCurvesToPoints(pts, 2, 31000, 0.03, nullptr, &n, 1), kBadArgument);
  EXPECT_EQ(RvMiCurvesToPoints(pts, 2, 31000, 0.03, &out, nullptr, 1), kBadArgument);
  EXPECT_EQ(RvMiArcToCurves(nullptr, &out, &n), kBadArgument);
  // The arc fit needs a scale and coordinates that fit single precision.
  const RVBEZIERPOINT far[2] = {Corner(0, 0), Corner(1e300, 0)}, odd[2] = {Corner(kNaN, 0), Corner(1, 0)};
  EXPECT_EQ(RvMiCurvesToArc(far, 2, 31000, 0.03, &out, &n, 1.0), kBadArgument);
  EXPECT_EQ(RvMiCurvesToArc(odd, 2, 31000, 0.03, &out, &n, 1.0), kBadArgument);
  EXPECT_EQ(RvMiCurvesToArc(pts, 2, 31000, 0.03, &out, &n, 0.0), kBadArgument);
  EXPECT_EQ(RvMiCurvesToSpline(pts, 2, 31000, 0.042, &out, &n, 0.0), kBadArgument);

  // A 2 km line with maxLength 0 would need 200 million chords. The arc fit
  // and the spline fail half way, with records already collected: the
  // sanitizer build checks that nothing leaks.
  RVBEZIERPOINT huge[2] = {Corner(-1e6, 0), Corner(1e6, 0)};
  for (int op = 0; op < 3; ++op) {
    out = reinterpret_cast<RVCURVEPOINT*>(0x1);
    EXPECT_EQ(op == 0   ? RvMiCurvesToPoints(huge, 2, 0.0, 0.03, &out, &n, 1)
              : op == 1 ? RvMiCurvesToArc(huge, 2, 0.0, 0.03, &out, &n, 1.0)
                        : RvMiCurvesToSpline(huge, 2, 0.0, 0.03, &out, &n, 1.0),
              kTooLarge);
    EXPECT_EQ(out, nullptr) << op;
  }
  EXPECT_EQ(g_ExceptionContext, nullptr);

  // NaN and infinite coordinates end (the depth limit) without a failure.
  EXPECT_GE(PointsOf({Corner(kNaN, 0), Corner(std::numeric_limits<double>::infinity(), 5)}, 31000, 0.03).size(), 4u);
}

TEST(ArcToCurves, RoundedPiecesOfAtMostSixtyDegrees) {
  // Centre 0, radius 10, 90 degrees: P1 at 45 degrees, handles 40 tan(pi/16)
  // / 3 = 2.65216.. long, all rounded to 0.001. Clockwise below the x axis
  // mirrors it (the sign of the sweep doesn't matter).
  Rows ccw = {{2, 10, 0, 10, 0, 10, 2.652, 0},
              {2, 7.071, 7.071, 8.946, 5.196, 5.196, 8.946, 0},
              {2, 0, 10, 2.652, 10, 0, 10, 0}};
  EXPECT_EQ(Arc({{10, 0}, {0, 10}, {0, 0}, 90.0, 1}), ccw);
  for (V& row : ccw) {
    for (std::size_t i = 2; i < row.size(); i += 2) row[i] = -row[i];
  }
  EXPECT_EQ(Arc({{10, 0}, {0, -10}, {0, 0}, -90.0, -1}), ccw);
  const std::pair<double, std::size_t> counts[] = {{60, 2}, {60.5, 3}, {360, 7}, {1e300, 7}};
  for (auto [sweep, records] : counts) EXPECT_EQ(Arc({{10, 0}, {10, 0}, {0, 0}, sweep, 1}).size(), records) << sweep;
  // Round3 moves half a unit away from zero before truncating. Counter-
  // clockwise at (-10.001, 0) runs downward; handles 10.0006 * 4 * tan(pi/12)
  // / 3 = 3.57287..; at (5, -8.661) the tangent is (8.661, 5) / 10.000646.
  EXPECT_EQ(Arc({{-10.0006, 0}, {5.0004, -8.6606}, {0, 0}, 60.0, 1}),
            (Rows{{2, -10.001, 0, -10.001, 0, -10.001, -3.573, 0}, {2, 5.0, -8.661, 1.906, -10.447, 5.0, -8.661, 0}}));
  // Without a sweep (or with NaN): `from` and `to`; `from` on the centre:
  // everything collapses onto it, no NaN.
  for (double sweep : {0.0, kNaN}) {
    EXPECT_EQ(Arc({{1.0004, 2}, {3, 4.0006}, {0, 0}, sweep, 1}),
              (Rows{{2, 1.0, 2, 1.0, 2, 1.0, 2, 0}, {2, 3, 4.001, 3, 4.001, 3, 4.001, 0}}));
  }
  EXPECT_EQ(Arc({{2, 3}, {2, 3}, {2, 3}, 180.0, 1}), Rows(4, V{2, 2, 3, 2, 3, 2, 3, 0}));
}

// Arc fitting in single precision. Coordinates first become
// float(trunc(double(float(c * 1000)) + 0.5) / 1000): 5.523 -> 5.5229997..,
// -10 -> -9.999 (the truncation runs toward zero), 1.0004999999 -> 1.001.
TEST(CurvesToArc, HandWorkedFits) {
  // A quarter circle is one arc: M = (10 + 30 + 3 * 5.5229997f) / 8 in float
  // steps; R = c / (2 sin beta) = 9.9998073..f; C1 = P0 + (e.y, -e.x) R / h1;
  // counter-clockwise (-1): the centre lies left of the travel.
  EXPECT_EQ(FitArcs({Smooth({10, 0}, {10, 0}, {10, 5.523}), Smooth({0, 10}, {5.523, 10}, {0, 10})}, 1.0),
            (Rows{{1, 10, 0, 0, 10, 7.071125030517578, 7.071125030517578, 0.0001926422119140625, 0, -1}}));
  // Half a circle clockwise over the top, divided by the scale.
  EXPECT_EQ(FitArcs({Smooth({-10, 0}, {-10, 0}, {-10, 13.333}), Smooth({10, 0}, {10, 13.333}, {10, 0})}, 0.5),
            (Rows{{1, double(-9.999f) / 0.5, 0, 20, 0, 0.0005002021789550781 / 0.5, 9.999750137329102 / 0.5,
                   0.0005006790161132812 / 0.5, 0, 1}}));
  // Straight pieces: start, the polyline's end, the end again, not divided;
  // only the last pair of points counts.
  EXPECT_EQ(FitArcs({Corner(1.0004999999, 0), Corner(-2.0006, 0)}, 0.025),
            (Rows{{0, double(1.001f), 0}, {0, -2.0, 0}, {0, -2.0, 0}}));
  EXPECT_EQ(FitArcs({Corner(50, 50), Corner(0, 0), Corner(3, 4)}, 1.0), (Rows{{0, 0, 0}, {0, 3, 4}, {0, 3, 4}}));

  // An S has handles on both sides of the chord: refused whole, it is fitted
  // piece by piece, continuously, each arc on its circle.
  const Rows pieces = FitArcs({Smooth({0, 0}, {0, 0}, {30, 30}), Smooth({60, 0}, {30, -30}, {60, 0})}, 1.0);
  ASSERT_EQ(pieces.at(0)[0], 1);
  V last{0, 0};
  for (const V& r : pieces) {
    if (r[0] == 1) {
      ExpectNear({r[1], r[2]}, last, 1e-4);
      const double radius = std::hypot(r[1] - r[7], r[2] - r[8]);
      EXPECT_NEAR(std::hypot(r[3] - r[7], r[4] - r[8]), radius, 0.002 * radius);
    }
    last = r[0] == 0 ? V{r[1], r[2]} : V{r[3], r[4]};
  }
  ExpectNear(last, {60, 0}, 1e-4);
}

TEST(CurvesToSpline, HandlesWithinTheAngleGoAndPointsFormTriples) {
  // Handles 0.05 degree off the chord are dropped, in the caller's array too;
  // at 0.2 degree they stay.
  const double off = 10 * std::tan(0.05 * kPi / 180), bent = 10 * std::tan(0.2 * kPi / 180);
  Curve pts = {Smooth({0, 0}, {-1, 0}, {10, off}), Smooth({30, 0}, {20, -off}, {31, 0})};
  EXPECT_EQ(Spline(pts, 31000, 0.042, 0.025), (Rows{{0, 0, 0}, {0, 30, 0}})) << "kind 0 records are not divided";
  EXPECT_EQ(Row(pts[0]), (V{0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(Row(pts[1]), (V{30, 0, 30, 0, 30, 0}));
  Curve keep = {Smooth({0, 0}, {0, 0}, {10, bent}), Smooth({30, 0}, {20, bent}, {30, 0})};
  Spline(keep, 31000, 0.042, 1.0);
  EXPECT_EQ(keep[0].out.y, bent);

  // The straight line loses its handles, then x(t) = 96 (3t^2 - 2t^3) halves
  // into 0, 15, 30.375, 48, 65.625, 81, 96; the triples, divided by the
  // scale 2, reach back: (Q0 Q1 Q2), (Q1 Q3 Q4), (Q3 Q5 Q6).
  Curve line = EvenLine(96);
  EXPECT_EQ(Spline(line, 30, 0.042, 2.0),
            (Rows{{3, 0, 0, 7.5, 0, 15.1875, 0}, {3, 7.5, 0, 24, 0, 32.8125, 0}, {3, 24, 0, 40.5, 0, 48, 0}}));
  // Handles bunched at the start split unevenly (0, 12.5, 42.1875, 100); an
  // even count ends with a point.
  Curve bunched = {Corner(0, 0), Smooth({100, 0}, {0, 0.5}, {100, 0})};
  EXPECT_EQ(Spline(bunched, 60, 10, 1.0), (Rows{{3, 0, 0, 12.5, 0.1875, 42.1875, 0.2109375}, {0, 100, 0}}));
}

TEST(SplineToPoints, InterpolatesThroughThePointsInStepsByChordLength) {
  RVPOINT out[63];
  int32_t n = 0;
  auto steps = [&](const RVPOINT* pts, int32_t count) {
    n = -1;
    EXPECT_EQ(RvMiSplineToPoints(pts, count, out, &n), 0u);
    return n;
  };
  // Points 1..3 = (0,0), (3,4), (6,0): tangents (0.6, 1.2), (0.6, 0),
  // (0.6, -1.2); the pieces are (3u, 6u - 2u^3) and (3 + 3u, 4 + 2u^3 - 6u^2).
  // Chords of 5 with three points: 3 * 5 * 1.5 = 22 steps, clamped to 21.
  const RVPOINT pts[4] = {{99, 99}, {0, 0}, {3, 4}, {6, 0}};
  ASSERT_EQ(steps(pts, 3), 42);
  const std::tuple<int, double, double> samples[] = {
      {6, 1, 2 - 2.0 / 27}, {20, 3, 4}, {27, 4, 4 + 2.0 / 27 - 6.0 / 9}, {41, 6, 0}};
  for (auto [i, x, y] : samples) ExpectNear(XY(out[i]), {x, y}, 1e-12);
  // A chord of 0.5 is one step; chords 5 -> 15 steps, 7 -> 21.
  const RVPOINT shortChord[3] = {{0, 0}, {1, 1}, {1.3, 1.4}}, four[5] = {{0, 0}, {0, 0}, {3, 4}, {3, 11}, {3, 11.5}};
  ASSERT_EQ(steps(shortChord, 2), 1);
  ExpectNear(XY(out[0]), {1.3, 1.4}, 1e-12);
  ASSERT_EQ(steps(four, 4), 15 + 21 + 1);
  EXPECT_NEAR(out[14].x, 3, 1e-12);
  EXPECT_NEAR(out[36].y, 11.5, 1e-12);
  // A repeated point is one step; one point gives none.
  const RVPOINT repeat[4] = {{0, 0}, {1, 2}, {1, 2}, {5, 5}};
  ASSERT_EQ(steps(repeat, 3), 3);
  EXPECT_EQ((V{out[0].x, out[0].y, out[2].x, out[2].y}), (V{1, 2, 5, 5}));
  EXPECT_EQ(steps(repeat, 1), 0);
  std::vector<RVPOINT> many(201, RVPOINT{0, 0});
  EXPECT_EQ(RvMiSplineToPoints(many.data(), 200, out, &n), kBadArgument);
  EXPECT_EQ(RvMiSplineToPoints(repeat, -1, out, &n), kBadArgument);
  EXPECT_EQ(RvMiSplineToPoints(repeat, 3, nullptr, &n), kBadArgument);
}

TEST(DivideBezier, DeCasteljauAtAnyParameterAndByLength) {
  RVBEZIERPOINT a = kHump[0], b = kHump[1], m{};
  m.flags = 128;
  ASSERT_EQ(RvMiDivideBezier(&a, &b, 0.25, &m), 0u);
  EXPECT_EQ(Row(m), (V{1.5625, 0.5625, 0.625, 0.4375, 4.375, 0.9375}));
  EXPECT_EQ(Row(a), (V{0, 0, 0, 0, 0, 0.25}));
  EXPECT_EQ(Row(b), (V{10, 0, 10, 0.75, 10, 0}));
  EXPECT_EQ(m.flags, 128);
  a = kHump[0], b = kHump[1];
  ASSERT_EQ(RvMiDivideBezier(&a, &b, 2.0, &m), 0u);  // not clamped
  EXPECT_EQ(XY(m.anchor), (V{-40, -6}));
  EXPECT_EQ(RvMiDivideBezier(&a, nullptr, 0.5, &m), kBadArgument);

  // By length, t walks until the first part is within 1 of it: on x(t) =
  // 100 (3t^2 - 2t^3), t = 0.5 gives 50, 0.25 15.625, 0.375 31.640625.
  a = Corner(0, 0), b = Corner(100, 0);
  RvMiDivideBezierByLength(&a, &b, 31.0, &m);
  EXPECT_EQ(Row(m), (V{31.640625, 0, 14.0625, 0, 60.9375, 0}));
  // Negative counts as 0: t halves until the first part is at most 1 long.
  RvMiDivideBezierByLength(&a, &b, -5.0, &m);
  EXPECT_LE(m.anchor.x, 1.0);
  EXPECT_GT(m.anchor.x, 0.0);
  // A curve of no length can't reach 5, nor a short line 1000: the search
  // ends anyway.
  a = b = Corner(7, 7);
  RvMiDivideBezierByLength(&a, &b, 5.0, &m);
  for (const RVBEZIERPOINT& p : {m, a, b}) EXPECT_EQ(Row(p), V(6, 7));
  a = Corner(0, 0), b = Corner(2, 0);
  RvMiDivideBezierByLength(&a, &b, 1000.0, &m);
  // A loop that starts and ends in one point still has length: the half up
  // to t = 0.5, ending at (0, 7.5), is about 9.4 long; the part up to
  // t = 0.25, ending at (30 st (s - t), 30 st (s + t)) = (2.8125, 5.625), 6.7.
  a = Smooth({0, 0}, {0, 0}, {10, 10});
  b = Smooth({0, 0}, {-10, 10}, {0, 0});
  RvMiDivideBezierByLength(&a, &b, 7.0, &m);
  EXPECT_EQ(XY(m.anchor), (V{2.8125, 5.625}));
  EXPECT_EQ(g_ExceptionContext, nullptr);
}

TEST(BezierLength, IsThePolylineAtFineTolerance) {
  const RVBEZIERPOINT a = Corner(0, 0), b = Corner(3, 4);
  double length = -1;
  RvMiGetBezierLength(&a, &b, &length);
  EXPECT_EQ(length, 5.0);
  // The hump's polyline of RvMiCurvesToPoints with 31000 and 0.042, a bit
  // shorter than the curve (10.3463 by numeric integration of its speed).
  RvMiGetBezierLength(&kHump[0], &kHump[1], &length);
  const V p = PointsOf(kHump, 31000, 0.042);
  double sum = 0;
  for (std::size_t i = 2; i < p.size(); i += 2) sum += std::hypot(p[i] - p[i - 2], p[i + 1] - p[i - 1]);
  EXPECT_EQ(length, sum);
  EXPECT_LT(length, 10.3463);
  EXPECT_GT(length, 10.3);
  length = -1;
  RvMiGetBezierLength(&a, nullptr, &length);  // reported to the trace sink
  EXPECT_EQ(length, -1);
  EXPECT_EQ(g_ExceptionContext, nullptr);
}

TEST(Angles, ThreePointsBezierTurnsAndArcCentres) {
  // p1 on the vertex: 0, where the signed zeros alone would give atan2(0, -0) = pi.
  const RVPOINT o{0, 0}, x{1, 0}, y{0, 1}, down{-1, -1};
  EXPECT_EQ(RvMiCalcAngleOfThreePoints(&x, &o, &y), kPi / 2);
  EXPECT_EQ(RvMiCalcAngleOfThreePoints(&y, &o, &x), -kPi / 2);
  EXPECT_EQ(RvMiCalcAngleOfThreePoints(&o, &o, &down), 0.0);
  EXPECT_EQ(RvMiCalcAngleOfThreePoints(nullptr, &o, &x), 0.0);

  // The turn of a path at a point: collinear in order without handles, pi;
  // a left turn of 90 degrees takes the replacement handles (9.72, 0) and
  // (10, 0.28): -pi/2, i.e. 3 pi / 2; handles of its own count as they stand.
  EXPECT_EQ(RvMiCalcAngleOfBezier(Corner(10, 0), Corner(0, 0), Corner(20, 0)), kPi);
  EXPECT_NEAR(RvMiCalcAngleOfBezier(Corner(10, 0), Corner(0, 0), Corner(10, 10)), 1.5 * kPi, 1e-12);
  EXPECT_EQ(RvMiCalcAngleOfBezier(Smooth({10, 0}, {10, -1}, {11, 0}), Corner(0, 0), Corner(10, 10)), kPi / 2);
  // A missing in-handle comes from the curve at single-precision 0.9.
  auto expected = [](double t) {
    const double s = 1 - t, ux = 30 * s * t * t + 10 * t * t * t - 10, uy = 30 * s * s * t;
    const double r = std::atan2(ux * 1 - uy * 2, ux * 2 + uy * 1);
    return r < 0 ? r + 2 * kPi : r;
  };
  const double got =
      RvMiCalcAngleOfBezier(Smooth({10, 0}, {10, 0}, {12, 1}), Smooth({0, 0}, {0, 0}, {0, 10}), Corner(20, 0));
  EXPECT_EQ(got, expected(double(0.9f)));
  EXPECT_NE(got, expected(0.9));

  // The centre angle of a point on an arc, from its start in its direction
  // (the other way with reverse); none without a direction.
  const RVPOINT top{0, 10}, left{-10, 0}, bottom{0, -10}, start{10, 0};
  const RVARCPOINT ccw{{10, 0}, {10, 0}, {0, 0}, 360, 1}, cw{{10, 0}, {10, 0}, {0, 0}, 360, -1},
      none{{10, 0}, {10, 0}, {0, 0}, 360, 0};
  const std::tuple<const RVARCPOINT*, const RVPOINT*, int32_t, double> cases[] = {
      {&ccw, &top, 0, kPi / 2},    {&ccw, &top, 1, 1.5 * kPi}, {&ccw, &bottom, 0, 1.5 * kPi}, {&ccw, &left, 0, kPi},
      {&ccw, &start, 0, 2 * kPi},  {&cw, &top, 0, 1.5 * kPi},  {&cw, &bottom, 0, kPi / 2},    {&none, &top, 0, 0},
      {nullptr, &top, 0, 0}};
  for (auto [arc, point, reverse, angle] : cases) EXPECT_NEAR(RvMiGetCenterAngle(arc, point, reverse), angle, 4e-15);
}

}  // namespace
