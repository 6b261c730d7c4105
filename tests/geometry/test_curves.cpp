// Curve operations through the exported functions, checked against values
// worked out by hand from the algorithms (and, for the single-precision arc
// fit, by following each float step on paper).
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "geometry/convert_pt.h"
#include "geometry/curve_core.h"
#include "rvdataaccess.h"

namespace {

constexpr double kPi = 3.141592653589793;
constexpr uint32_t kBadArgument = 0x08000D01u;
constexpr uint32_t kTooLarge = 0x08000E01u;

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

// Owns an array handed out by the library.
struct Records {
  RVCURVEPOINT* data = nullptr;
  int32_t count = -1;
  ~Records() { EXPECT_EQ(RvMiFreePoints(data), 0u); }
  const RVCURVEPOINT& operator[](int i) const { return data[i]; }
};

void ExpectPoint(const RVCURVEPOINT& r, double x, double y) {
  EXPECT_EQ(r.kind, 0);
  EXPECT_EQ(r.point.x, x);
  EXPECT_EQ(r.point.y, y);
}

void ExpectXY(const RVPOINT& p, double x, double y) {
  EXPECT_EQ(p.x, x);
  EXPECT_EQ(p.y, y);
}

uint32_t ToPoints(const std::vector<RVBEZIERPOINT>& pts, double maxLength, double tolerance, Records& out,
                  int32_t mode = 1) {
  return RvMiCurvesToPoints(pts.data(), int32_t(pts.size()), maxLength, tolerance, &out.data, &out.count, mode);
}

// A straight line along x whose handles sit at its thirds.
std::vector<RVBEZIERPOINT> EvenLine(double length) {
  return {Smooth({0, 0}, {0, 0}, {length / 3, 0}), Smooth({length, 0}, {2 * length / 3, 0}, {length, 0})};
}

// The curve (0,0) (0,1) (10,1) (10,0): with tolerance 0.5 one halving makes
// it flat (handle distances 0.4945 and 0.3709 from the chords).
std::vector<RVBEZIERPOINT> Hump() {
  return {Smooth({0, 0}, {0, 0}, {0, 1}), Smooth({10, 0}, {10, 1}, {10, 0})};
}

TEST(CurveRecord, OneSizeForAllKinds) {
  EXPECT_EQ(sizeof(RVCURVEPOINT), 80u);
  EXPECT_EQ(offsetof(RVCURVEPOINT, kind), 0u);
  EXPECT_EQ(offsetof(RVCURVEPOINT, point), 8u);
  EXPECT_EQ(offsetof(RVCURVEPOINT, arc), 8u);
  EXPECT_EQ(offsetof(RVCURVEPOINT, bezier), 8u);
  EXPECT_EQ(offsetof(RVCURVEARC, direction), 64u);
  EXPECT_EQ(sizeof(RVBEZIERPOINT), 56u);
}

TEST(CurvesToPoints, StraightLinesHalveOnlyForMaxLength) {
  const std::vector<RVBEZIERPOINT> line{Corner(0, 0), Corner(100, 0)};
  {
    Records r;
    ASSERT_EQ(ToPoints(line, 31000.0, 0.03, r), 0u);
    ASSERT_EQ(r.count, 2);
    ExpectPoint(r[0], 0, 0);
    ExpectPoint(r[1], 100, 0);
  }
  {
    // Handles on the anchors: x(t) = 100 (3t^2 - 2t^3), so the halvings at
    // t = 0.5 aren't even: 15.625, 31.640625, 50, ... until chords are < 30.
    Records r;
    ASSERT_EQ(ToPoints(line, 30.0, 0.03, r), 0u);
    ASSERT_EQ(r.count, 7);
    const double xs[7] = {0, 15.625, 31.640625, 50, 68.359375, 84.375, 100};
    for (int i = 0; i < 7; ++i) ExpectPoint(r[i], xs[i], 0);
  }
  {
    // Handles at the thirds: even halvings, chords of 24 (of 25 for 100).
    Records r;
    ASSERT_EQ(ToPoints(EvenLine(96), 30.0, 0.03, r), 0u);
    ASSERT_EQ(r.count, 5);
    for (int i = 0; i < 5; ++i) ExpectPoint(r[i], 24.0 * i, 0);
    Records h;
    ASSERT_EQ(ToPoints(EvenLine(100), 30.0, 0.03, h), 0u);
    ASSERT_EQ(h.count, 5);
    for (int i = 0; i < 5; ++i) EXPECT_NEAR(h[i].point.x, 25.0 * i, 1e-12);
  }
  {
    // Three points: the middle anchor ends one curve and starts the next.
    Records r;
    const std::vector<RVBEZIERPOINT> two{Corner(0, 0), Corner(10, 0), Corner(10, 20)};
    ASSERT_EQ(ToPoints(two, 31000.0, 0.03, r), 0u);
    ASSERT_EQ(r.count, 4);
    ExpectPoint(r[0], 0, 0);
    ExpectPoint(r[1], 10, 0);
    ExpectPoint(r[2], 10, 0);
    ExpectPoint(r[3], 10, 20);
  }
  {
    Records r;
    ASSERT_EQ(ToPoints({Corner(1, 1)}, 31000.0, 0.03, r), 0u);
    EXPECT_EQ(r.count, 0);
    EXPECT_EQ(r.data, nullptr);
  }
}

TEST(CurvesToPoints, AnchorsInOneGridCellGiveOneChordWhateverTheHandles) {
  Records r;
  const std::vector<RVBEZIERPOINT> pts{Smooth({1.001, 2.009}, {0, 0}, {50, -50}),
                                       Smooth({1.0099, 2.0001}, {-80, 90}, {0, 0})};
  ASSERT_EQ(ToPoints(pts, 31000.0, 0.03, r), 0u);
  ASSERT_EQ(r.count, 2);
  ExpectPoint(r[1], 1.0099, 2.0001);

  // Cells truncate toward zero: -0.005 and 0.005 both lie in cell 0.
  Records z;
  const std::vector<RVBEZIERPOINT> across{Smooth({-0.005, 0}, {0, 0}, {0, 50}),
                                          Smooth({0.005, 0}, {0, -50}, {0, 0})};
  ASSERT_EQ(ToPoints(across, 31000.0, 0.03, z, 0), 0u);
  EXPECT_EQ(z.count, 2);
}

TEST(CurvesToPoints, CurvesHalveUntilHandlesAreWithinTolerance) {
  Records r;
  ASSERT_EQ(ToPoints(Hump(), 31000.0, 0.5, r), 0u);
  ASSERT_EQ(r.count, 3);
  ExpectPoint(r[0], 0, 0);
  ExpectPoint(r[1], 5, 0.75);
  ExpectPoint(r[2], 10, 0);

  Records finer;
  ASSERT_EQ(ToPoints(Hump(), 31000.0, 0.49, finer), 0u);
  EXPECT_GT(finer.count, 3);

  // A near-vertical line whose handles stay in their anchors' x cells is a
  // straight candidate; tolerance is then the angle (here 0.05/30 rad).
  const std::vector<RVBEZIERPOINT> steep{Smooth({0, 0}, {0, 0}, {0.005, 3}), Smooth({0, 10}, {0.005, 7}, {0, 10})};
  Records one;
  ASSERT_EQ(ToPoints(steep, 31000.0, 0.81, one), 0u);
  EXPECT_EQ(one.count, 2);
  Records more;
  ASSERT_EQ(ToPoints(steep, 31000.0, 0.001, more), 0u);
  EXPECT_GT(more.count, 2);
}

TEST(CurvesToPoints, ModeZeroSplitsDownToTheGridAndEnds) {
  Records same;
  ASSERT_EQ(ToPoints({Corner(0, 0), Corner(0.004, 0.003)}, 31000.0, 0.03, same, 0), 0u);
  EXPECT_EQ(same.count, 2);

  // Crossing a cell boundary: the halvings close in on it and stop.
  Records crossing;
  ASSERT_EQ(ToPoints({Corner(0, 0), Corner(0.015, 0)}, 31000.0, 0.03, crossing, 0), 0u);
  ASSERT_GT(crossing.count, 3);
  EXPECT_LT(crossing.count, 200);
  ExpectPoint(crossing[crossing.count - 1], 0.015, 0);
  for (int i = 1; i < crossing.count; ++i) EXPECT_GE(crossing[i].point.x, crossing[i - 1].point.x);
}

TEST(CurvesToPoints, BadInputGivesCodesAndNoArray) {
  RVCURVEPOINT* out = reinterpret_cast<RVCURVEPOINT*>(0x1);
  int32_t n = 7;
  const RVBEZIERPOINT pts[2] = {Corner(0, 0), Corner(1, 1)};
  EXPECT_EQ(RvMiCurvesToPoints(pts, -1, 31000.0, 0.03, &out, &n, 1), kBadArgument);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(n, 0);
  EXPECT_EQ(RvMiCurvesToPoints(nullptr, 2, 31000.0, 0.03, &out, &n, 1), kBadArgument);
  EXPECT_EQ(RvMiCurvesToPoints(pts, 2, 31000.0, 0.03, nullptr, &n, 1), kBadArgument);
  EXPECT_EQ(RvMiCurvesToPoints(pts, 2, 31000.0, 0.03, &out, nullptr, 1), kBadArgument);

  // A 2 km line with maxLength 0 would need 200 million chords.
  const RVBEZIERPOINT huge[2] = {Corner(-1e6, 0), Corner(1e6, 0)};
  EXPECT_EQ(RvMiCurvesToPoints(huge, 2, 0.0, 0.03, &out, &n, 1), kTooLarge);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(g_ExceptionContext, nullptr);

  // NaN and infinite coordinates end (the depth limit) without a failure.
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const RVBEZIERPOINT odd[2] = {Corner(nan, 0), Corner(std::numeric_limits<double>::infinity(), 5)};
  Records r;
  EXPECT_EQ(RvMiCurvesToPoints(odd, 2, 31000.0, 0.03, &r.data, &r.count, 1), 0u);
  EXPECT_GE(r.count, 2);
  EXPECT_EQ(RvMiFreePoints(nullptr), 0u);
}

TEST(ArcToCurves, QuarterCircleInTwoRoundedPieces) {
  // Centre 0, radius 10, 90 degrees counter-clockwise: P1 at 45 degrees,
  // handle length 40 tan(pi/16) / 3 = 2.65216..., all rounded to 0.001.
  const RVARCPOINT arc{{10, 0}, {0, 10}, {0, 0}, 90.0, 1};
  Records r;
  ASSERT_EQ(RvMiArcToCurves(&arc, &r.data, &r.count), 0u);
  ASSERT_EQ(r.count, 3);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(r[i].kind, 2);
    EXPECT_EQ(r[i].bezier.flags, 0);
  }
  ExpectXY(r[0].bezier.anchor, 10, 0);
  ExpectXY(r[0].bezier.in, 10, 0);
  ExpectXY(r[0].bezier.out, 10, 2.652);
  ExpectXY(r[1].bezier.anchor, 7.071, 7.071);
  ExpectXY(r[1].bezier.in, 8.946, 5.196);
  ExpectXY(r[1].bezier.out, 5.196, 8.946);
  ExpectXY(r[2].bezier.anchor, 0, 10);
  ExpectXY(r[2].bezier.in, 2.652, 10);
  ExpectXY(r[2].bezier.out, 0, 10);

  // The same clockwise, below the x axis (sweep sign doesn't matter).
  const RVARCPOINT cw{{10, 0}, {0, -10}, {0, 0}, -90.0, -1};
  Records c;
  ASSERT_EQ(RvMiArcToCurves(&cw, &c.data, &c.count), 0u);
  ASSERT_EQ(c.count, 3);
  ExpectXY(c[0].bezier.out, 10, -2.652);
  ExpectXY(c[1].bezier.anchor, 7.071, -7.071);
  ExpectXY(c[1].bezier.in, 8.946, -5.196);
  ExpectXY(c[2].bezier.in, 2.652, -10);
}

TEST(ArcToCurves, PieceCountsAndRounding) {
  auto count = [](double sweep) {
    const RVARCPOINT arc{{10, 0}, {10, 0}, {0, 0}, sweep, 1};
    Records r;
    EXPECT_EQ(RvMiArcToCurves(&arc, &r.data, &r.count), 0u);
    return r.count;
  };
  EXPECT_EQ(count(60.0), 2);
  EXPECT_EQ(count(60.5), 3);
  EXPECT_EQ(count(30.0), 2);
  EXPECT_EQ(count(360.0), 7);
  EXPECT_EQ(count(720.0), 7);  // counts as one full turn
  EXPECT_EQ(count(1e300), 7);

  // Round3 moves half a unit away from zero before truncating.
  const RVARCPOINT arc{{-10.0006, 0}, {5.0004, -8.6606}, {0, 0}, 60.0, 1};
  Records r;
  ASSERT_EQ(RvMiArcToCurves(&arc, &r.data, &r.count), 0u);
  ASSERT_EQ(r.count, 2);
  ExpectXY(r[0].bezier.anchor, -10.001, 0);
  ExpectXY(r[1].bezier.anchor, 5.0, -8.661);
  // Counter-clockwise at (-10.001, 0) runs downward; handle 10.0006 * 4 *
  // tan(pi/12) / 3 = 3.57289...
  ExpectXY(r[0].bezier.out, -10.001, -3.573);
  ExpectXY(r[0].bezier.in, -10.001, 0);
  ExpectXY(r[1].bezier.out, 5.0, -8.661);
}

TEST(ArcToCurves, DegenerateArcsGiveDocumentedResults) {
  for (double sweep : {0.0, std::numeric_limits<double>::quiet_NaN()}) {
    const RVARCPOINT arc{{1.0004, 2}, {3, 4.0006}, {0, 0}, sweep, 1};
    Records r;
    ASSERT_EQ(RvMiArcToCurves(&arc, &r.data, &r.count), 0u);
    ASSERT_EQ(r.count, 2);
    ExpectXY(r[0].bezier.anchor, 1.0, 2);
    ExpectXY(r[0].bezier.out, 1.0, 2);
    ExpectXY(r[1].bezier.anchor, 3, 4.001);
    ExpectXY(r[1].bezier.in, 3, 4.001);
  }
  // `from` on the centre: everything collapses onto it, no NaN.
  const RVARCPOINT dot{{2, 3}, {2, 3}, {2, 3}, 180.0, 1};
  Records d;
  ASSERT_EQ(RvMiArcToCurves(&dot, &d.data, &d.count), 0u);
  ASSERT_EQ(d.count, 4);
  for (int i = 0; i < 4; ++i) {
    ExpectXY(d[i].bezier.anchor, 2, 3);
    ExpectXY(d[i].bezier.in, 2, 3);
    ExpectXY(d[i].bezier.out, 2, 3);
  }
  RVCURVEPOINT* out = nullptr;
  int32_t n = 0;
  EXPECT_EQ(RvMiArcToCurves(nullptr, &out, &n), kBadArgument);
}

// Arc fitting in single precision. Coordinates first become
// float(trunc(double(float(c * 1000)) + 0.5) / 1000): 5.523 -> 5.5229997..,
// -10 -> -9.999 (the truncation runs toward zero), 1.0004999999 -> 1.001.
TEST(CurvesToArc, QuarterCircleIsOneArc) {
  const RVBEZIERPOINT pts[2] = {Smooth({10, 0}, {10, 0}, {10, 5.523}), Smooth({0, 10}, {5.523, 10}, {0, 10})};
  Records r;
  ASSERT_EQ(RvMiCurvesToArc(pts, 2, 31000.0, 0.03, &r.data, &r.count, 1.0), 0u);
  ASSERT_EQ(r.count, 1);
  const RVCURVEARC& a = r[0].arc;
  EXPECT_EQ(r[0].kind, 1);
  EXPECT_EQ(a.startX, 10.0);
  EXPECT_EQ(a.startY, 0.0);
  EXPECT_EQ(a.endX, 0.0);
  EXPECT_EQ(a.endY, 10.0);
  // M = (10 + 30 + 3 * 5.5229997f) / 8 in float steps.
  EXPECT_EQ(a.midX, 7.071125030517578);
  EXPECT_EQ(a.midY, 7.071125030517578);
  // R = c / (2 sin beta) = 9.9998073..f; C1 = P0 + (e.y, -e.x) R / h1.
  EXPECT_EQ(a.centreX, 0.0001926422119140625);
  EXPECT_EQ(a.centreY, 0.0);
  EXPECT_EQ(a.direction, -1);  // counter-clockwise: centre left of the travel
}

TEST(CurvesToArc, HalfCircleAndScale) {
  const RVBEZIERPOINT pts[2] = {Smooth({-10, 0}, {-10, 0}, {-10, 13.333}), Smooth({10, 0}, {10, 13.333}, {10, 0})};
  Records r;
  ASSERT_EQ(RvMiCurvesToArc(pts, 2, 31000.0, 0.03, &r.data, &r.count, 0.5), 0u);
  ASSERT_EQ(r.count, 1);
  const RVCURVEARC& a = r[0].arc;
  EXPECT_EQ(a.startX, double(-9.999f) / 0.5);
  EXPECT_EQ(a.startY, 0.0);
  EXPECT_EQ(a.endX, 20.0);
  EXPECT_EQ(a.midX, 0.0005002021789550781 / 0.5);
  EXPECT_EQ(a.midY, 9.999750137329102 / 0.5);
  EXPECT_EQ(a.centreX, 0.0005006790161132812 / 0.5);
  EXPECT_EQ(a.centreY, 0.0);
  EXPECT_EQ(a.direction, 1);  // clockwise over the top
}

TEST(CurvesToArc, StraightPiecesAreRoundedPolylines) {
  const RVBEZIERPOINT pts[2] = {Corner(1.0004999999, 0), Corner(-2.0006, 0)};
  Records r;
  ASSERT_EQ(RvMiCurvesToArc(pts, 2, 31000.0, 0.03, &r.data, &r.count, 0.025), 0u);
  ASSERT_EQ(r.count, 3);  // start, the polyline's end, the end again
  ExpectPoint(r[0], double(1.001f), 0);  // not divided by the scale
  ExpectPoint(r[1], -2.0, 0);
  ExpectPoint(r[2], -2.0, 0);

  // Only the last pair counts.
  const RVBEZIERPOINT three[3] = {Corner(50, 50), Corner(0, 0), Corner(3, 4)};
  Records t;
  ASSERT_EQ(RvMiCurvesToArc(three, 3, 31000.0, 0.03, &t.data, &t.count, 1.0), 0u);
  ASSERT_EQ(t.count, 3);
  ExpectPoint(t[0], 0, 0);
  ExpectPoint(t[2], 3, 4);
}

TEST(CurvesToArc, RefusedPiecesAreHalvedAndTheResultIsContinuous) {
  // An S: the handles lie on both sides of the chord, so the whole curve
  // is refused and fitted piece by piece.
  const RVBEZIERPOINT pts[2] = {Smooth({0, 0}, {0, 0}, {30, 30}), Smooth({60, 0}, {30, -30}, {60, 0})};
  Records one, half;
  ASSERT_EQ(RvMiCurvesToArc(pts, 2, 31000.0, 0.03, &one.data, &one.count, 1.0), 0u);
  ASSERT_EQ(RvMiCurvesToArc(pts, 2, 31000.0, 0.03, &half.data, &half.count, 0.5), 0u);
  ASSERT_GT(one.count, 1);
  ASSERT_EQ(one.count, half.count);
  RVPOINT last{0, 0};
  int arcs = 0;
  for (int i = 0; i < one.count; ++i) {
    const RVCURVEPOINT& r = one[i];
    ASSERT_TRUE(r.kind == 0 || r.kind == 1);
    ASSERT_EQ(half[i].kind, r.kind);
    if (r.kind == 1) {
      ++arcs;
      EXPECT_NEAR(r.arc.startX, last.x, 1e-4);
      EXPECT_NEAR(r.arc.startY, last.y, 1e-4);
      const double r1 = std::hypot(r.arc.startX - r.arc.centreX, r.arc.startY - r.arc.centreY);
      const double r2 = std::hypot(r.arc.endX - r.arc.centreX, r.arc.endY - r.arc.centreY);
      EXPECT_NEAR(r1, r2, 0.002 * r1);
      EXPECT_EQ(half[i].arc.endX, r.arc.endX / 0.5);
      EXPECT_EQ(half[i].arc.centreY, r.arc.centreY / 0.5);
      last = RVPOINT{r.arc.endX, r.arc.endY};
    } else {
      EXPECT_EQ(half[i].point.x, r.point.x);  // points stay undivided
      last = r.point;
    }
  }
  EXPECT_GT(arcs, 0);
  EXPECT_NEAR(last.x, 60, 1e-4);
  EXPECT_NEAR(last.y, 0, 1e-4);
}

TEST(CurvesToArc, BadInput) {
  const RVBEZIERPOINT pts[2] = {Corner(0, 0), Corner(1e300, 0)};
  RVCURVEPOINT* out = nullptr;
  int32_t n = 0;
  EXPECT_EQ(RvMiCurvesToArc(pts, 2, 31000.0, 0.03, &out, &n, 1.0), kBadArgument);
  const RVBEZIERPOINT ok[2] = {Corner(0, 0), Corner(1, 0)};
  EXPECT_EQ(RvMiCurvesToArc(ok, 2, 31000.0, 0.03, &out, &n, 0.0), kBadArgument);
  EXPECT_EQ(out, nullptr);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const RVBEZIERPOINT odd[2] = {Corner(nan, 0), Corner(1, 0)};
  EXPECT_EQ(RvMiCurvesToArc(odd, 2, 31000.0, 0.03, &out, &n, 1.0), kBadArgument);

  // Failing half way (the start record is already collected) leaves nothing
  // behind: the sanitizer build checks that no memory leaks.
  const RVBEZIERPOINT huge[2] = {Corner(-1e6, 0), Corner(1e6, 0)};
  out = reinterpret_cast<RVCURVEPOINT*>(0x1);
  EXPECT_EQ(RvMiCurvesToArc(huge, 2, 0.0, 0.03, &out, &n, 1.0), kTooLarge);
  EXPECT_EQ(out, nullptr);
  RVBEZIERPOINT line[2] = {Corner(-1e6, 0), Corner(1e6, 0)};
  EXPECT_EQ(RvMiCurvesToSpline(line, 2, 0.0, 0.03, &out, &n, 1.0), kTooLarge);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(g_ExceptionContext, nullptr);
}

TEST(CurvesToSpline, NearlyStraightCurvesLoseTheirHandles) {
  // Handles 0.05 degree off the chord.
  const double off = 10 * std::tan(0.05 * kPi / 180);
  RVBEZIERPOINT pts[2] = {Smooth({0, 0}, {-1, 0}, {10, off}), Smooth({30, 0}, {20, -off}, {31, 0})};
  Records r;
  ASSERT_EQ(RvMiCurvesToSpline(pts, 2, 31000.0, 0.042, &r.data, &r.count, 0.025), 0u);
  ExpectXY(pts[0].in, 0, 0);
  ExpectXY(pts[0].out, 0, 0);
  ExpectXY(pts[1].in, 30, 0);
  ExpectXY(pts[1].out, 30, 0);
  ASSERT_EQ(r.count, 2);
  ExpectPoint(r[0], 0, 0);  // kind 0 records are not divided
  ExpectPoint(r[1], 30, 0);

  // 0.2 degree is a curve: the handles stay.
  const double bent = 10 * std::tan(0.2 * kPi / 180);
  RVBEZIERPOINT keep[2] = {Smooth({0, 0}, {0, 0}, {10, bent}), Smooth({30, 0}, {20, bent}, {30, 0})};
  Records k;
  ASSERT_EQ(RvMiCurvesToSpline(keep, 2, 31000.0, 0.042, &k.data, &k.count, 1.0), 0u);
  EXPECT_EQ(keep[0].out.y, bent);
}

TEST(CurvesToSpline, TriplesReachBackAndAnEvenCountEndsWithAPoint) {
  {
    // Three polyline points: one triple, divided by the scale.
    auto hump = Hump();
    Records r;
    ASSERT_EQ(RvMiCurvesToSpline(hump.data(), 2, 31000.0, 0.5, &r.data, &r.count, 2.0), 0u);
    ASSERT_EQ(r.count, 1);
    EXPECT_EQ(r[0].kind, 3);
    ExpectXY(r[0].spline[0], 0, 0);
    ExpectXY(r[0].spline[1], 2.5, 0.375);
    ExpectXY(r[0].spline[2], 5, 0);
  }
  {
    // A straight line first loses its handles (written back into the
    // caller's array); then x(t) = 96 (3t^2 - 2t^3) halves into the seven
    // points 0, 15, 30.375, 48, 65.625, 81, 96, and the triples are
    // (Q0 Q1 Q2), (Q1 Q3 Q4), (Q3 Q5 Q6).
    auto line = EvenLine(96);
    Records q;
    ASSERT_EQ(RvMiCurvesToSpline(line.data(), 2, 30.0, 0.042, &q.data, &q.count, 1.0), 0u);
    ExpectXY(line[0].out, 0, 0);
    ExpectXY(line[1].in, 96, 0);
    ASSERT_EQ(q.count, 3);
    ExpectXY(q[0].spline[0], 0, 0);
    ExpectXY(q[0].spline[1], 15, 0);
    ExpectXY(q[0].spline[2], 30.375, 0);
    ExpectXY(q[1].spline[0], 15, 0);
    ExpectXY(q[1].spline[1], 48, 0);
    ExpectXY(q[1].spline[2], 65.625, 0);
    ExpectXY(q[2].spline[0], 48, 0);
    ExpectXY(q[2].spline[1], 81, 0);
    ExpectXY(q[2].spline[2], 96, 0);
  }
  {
    // Handles bunched at the start split unevenly: 0, 12.5, 42.1875, 100.
    RVBEZIERPOINT pts[2] = {Smooth({0, 0}, {0, 0}, {0, 0}), Smooth({100, 0}, {0, 0.5}, {100, 0})};
    Records r;
    ASSERT_EQ(RvMiCurvesToSpline(pts, 2, 60.0, 10.0, &r.data, &r.count, 1.0), 0u);
    ASSERT_EQ(r.count, 2);
    EXPECT_EQ(r[0].kind, 3);
    ExpectXY(r[0].spline[0], 0, 0);
    ExpectXY(r[0].spline[1], 12.5, 0.1875);
    ExpectXY(r[0].spline[2], 42.1875, 0.2109375);
    ExpectPoint(r[1], 100, 0);
  }
  RVBEZIERPOINT pts[2] = {Corner(0, 0), Corner(1, 0)};
  RVCURVEPOINT* out = nullptr;
  int32_t n = 0;
  EXPECT_EQ(RvMiCurvesToSpline(pts, 2, 31000.0, 0.042, &out, &n, 0.0), kBadArgument);
}

TEST(SplineToPoints, InterpolatesThroughThePoints) {
  // Points 1..3 = (0,0), (3,4), (6,0): tangents (0.6, 1.2), (0.6, 0),
  // (0.6, -1.2); the pieces are (3u, 6u - 2u^3) and (3 + 3u, 4 + 2u^3 - 6u^2).
  // Chords of 5 with three points: 3 * 5 * 1.5 = 22 steps, clamped to 21.
  const RVPOINT pts[4] = {{99, 99}, {0, 0}, {3, 4}, {6, 0}};
  RVPOINT out[42];
  int32_t n = 0;
  ASSERT_EQ(RvMiSplineToPoints(pts, 3, out, &n), 0u);
  ASSERT_EQ(n, 42);
  EXPECT_NEAR(out[6].x, 1.0, 1e-12);  // u = 1/3
  EXPECT_NEAR(out[6].y, 2 - 2.0 / 27, 1e-12);
  EXPECT_NEAR(out[20].x, 3.0, 1e-12);
  EXPECT_NEAR(out[20].y, 4.0, 1e-12);
  EXPECT_NEAR(out[27].x, 4.0, 1e-12);
  EXPECT_NEAR(out[27].y, 4 + 2.0 / 27 - 6.0 / 9, 1e-12);
  EXPECT_NEAR(out[41].x, 6.0, 1e-12);
  EXPECT_NEAR(out[41].y, 0.0, 1e-12);
}

TEST(SplineToPoints, StepCountsAndSpecialInputs) {
  RVPOINT out[21 * 3];
  int32_t n = 0;
  const RVPOINT shortChord[3] = {{0, 0}, {1, 1}, {1.3, 1.4}};  // length 0.5: one step
  ASSERT_EQ(RvMiSplineToPoints(shortChord, 2, out, &n), 0u);
  ASSERT_EQ(n, 1);
  EXPECT_NEAR(out[0].x, 1.3, 1e-12);
  EXPECT_NEAR(out[0].y, 1.4, 1e-12);

  const RVPOINT mixed[4] = {{0, 0}, {0, 0}, {3, 4}, {3, 11}};  // 5 -> 15 steps, 7 -> 21
  ASSERT_EQ(RvMiSplineToPoints(mixed, 3, out, &n), 0u);
  EXPECT_EQ(n, 21 + 21);  // three points: 15 * 1.5 = 22.5 -> 21
  const RVPOINT four[5] = {{0, 0}, {0, 0}, {3, 4}, {3, 11}, {3, 11.5}};
  ASSERT_EQ(RvMiSplineToPoints(four, 4, out, &n), 0u);
  EXPECT_EQ(n, 15 + 21 + 1);
  EXPECT_NEAR(out[14].x, 3, 1e-12);
  EXPECT_NEAR(out[36].y, 11.5, 1e-12);

  const RVPOINT repeat[4] = {{0, 0}, {1, 2}, {1, 2}, {5, 5}};
  ASSERT_EQ(RvMiSplineToPoints(repeat, 3, out, &n), 0u);
  ASSERT_EQ(n, 3);
  ExpectXY(out[0], 1, 2);
  ExpectXY(out[2], 5, 5);

  ASSERT_EQ(RvMiSplineToPoints(repeat, 1, out, &n), 0u);
  EXPECT_EQ(n, 0);
  std::vector<RVPOINT> many(201, RVPOINT{0, 0});
  EXPECT_EQ(RvMiSplineToPoints(many.data(), 200, out, &n), kBadArgument);
  EXPECT_EQ(RvMiSplineToPoints(repeat, -1, out, &n), kBadArgument);
  EXPECT_EQ(RvMiSplineToPoints(repeat, 3, nullptr, &n), kBadArgument);
}

TEST(DivideBezier, DeCasteljauAtAnyParameter) {
  auto hump = Hump();
  RVBEZIERPOINT a = hump[0], b = hump[1], m{};
  m.flags = 128;
  ASSERT_EQ(RvMiDivideBezier(&a, &b, 0.25, &m), 0u);
  ExpectXY(m.anchor, 1.5625, 0.5625);
  ExpectXY(m.in, 0.625, 0.4375);
  ExpectXY(m.out, 4.375, 0.9375);
  ExpectXY(a.out, 0, 0.25);
  ExpectXY(b.in, 10, 0.75);
  ExpectXY(a.anchor, 0, 0);
  EXPECT_EQ(m.flags, 128);

  a = hump[0];
  b = hump[1];
  ASSERT_EQ(RvMiDivideBezier(&a, &b, 2.0, &m), 0u);  // not clamped
  ExpectXY(m.anchor, -40, -6);
  EXPECT_EQ(RvMiDivideBezier(&a, nullptr, 0.5, &m), kBadArgument);
}

TEST(BezierLength, PolylineLengthAtFineTolerance) {
  const RVBEZIERPOINT a = Corner(0, 0), b = Corner(3, 4);
  double length = -1;
  RvMiGetBezierLength(&a, &b, &length);
  EXPECT_EQ(length, 5.0);

  // The hump against a numeric integration of its speed.
  const auto hump = Hump();
  RvMiGetBezierLength(&hump[0], &hump[1], &length);
  double exact = 0;
  const int steps = 200000;
  for (int i = 0; i < steps; ++i) {
    const double t = (i + 0.5) / steps, s = 1 - t;
    const double dx = 3 * s * s * 0 + 6 * s * t * 10 + 3 * t * t * 0;
    const double dy = 3 * s * s * 1 + 6 * s * t * 0 + 3 * t * t * -1;
    exact += std::hypot(dx, dy) / steps;
  }
  EXPECT_LT(length, exact);
  EXPECT_NEAR(length, exact, 0.05);
  // It is the polyline of RvMiCurvesToPoints with 31000 and 0.042.
  Records poly;
  ASSERT_EQ(ToPoints(hump, 31000.0, 0.042, poly), 0u);
  double sum = 0;
  for (int i = 1; i < poly.count; ++i) {
    sum += std::hypot(poly[i].point.x - poly[i - 1].point.x, poly[i].point.y - poly[i - 1].point.y);
  }
  EXPECT_EQ(length, sum);

  length = -1;
  RvMiGetBezierLength(&a, nullptr, &length);  // reported to the trace sink
  EXPECT_EQ(length, -1);
  EXPECT_EQ(g_ExceptionContext, nullptr);
}

TEST(DivideBezierByLength, WalksTUntilWithinOne) {
  // x(t) = 100 (3t^2 - 2t^3): t = 0.5 gives 50, 0.25 gives 15.625, 0.375
  // gives 31.640625, within 1 of 31.
  RVBEZIERPOINT a = Corner(0, 0), b = Corner(100, 0), m{};
  RvMiDivideBezierByLength(&a, &b, 31.0, &m);
  ExpectXY(m.anchor, 31.640625, 0);
  ExpectXY(m.in, 14.0625, 0);
  ExpectXY(m.out, 60.9375, 0);
  ExpectXY(a.out, 0, 0);
  ExpectXY(b.in, 100, 0);

  // Negative counts as 0: t halves until the first part is at most 1 long.
  a = Corner(0, 0);
  b = Corner(100, 0);
  RvMiDivideBezierByLength(&a, &b, -5.0, &m);
  EXPECT_LE(m.anchor.x, 1.0);
  EXPECT_GT(m.anchor.x, 0.0);

  // A curve of no length can't reach 5: the search ends anyway.
  a = Corner(7, 7);
  b = Corner(7, 7);
  RvMiDivideBezierByLength(&a, &b, 5.0, &m);
  ExpectXY(m.anchor, 7, 7);
  ExpectXY(a.out, 7, 7);
  ExpectXY(b.in, 7, 7);

  // A loop that starts and ends in one point still has length, so the
  // search runs: the half up to t = 0.5, ending at (0, 7.5), is about 9.4
  // long; the part up to t = 0.25, ending at (30 st (s - t), 30 st (s + t))
  // = (2.8125, 5.625), about 6.7.
  a = Smooth({0, 0}, {0, 0}, {10, 10});
  b = Smooth({0, 0}, {-10, 10}, {0, 0});
  RvMiDivideBezierByLength(&a, &b, 7.0, &m);
  ExpectXY(m.anchor, 2.8125, 5.625);

  // Far beyond the end of a short line the search still ends.
  a = Corner(0, 0);
  b = Corner(2, 0);
  RvMiDivideBezierByLength(&a, &b, 1000.0, &m);
  EXPECT_TRUE(std::isfinite(m.anchor.x) || std::isnan(m.anchor.x));
}

TEST(Angles, ThreePoints) {
  const RVPOINT o{0, 0}, x{1, 0}, y{0, 1};
  EXPECT_EQ(RvMiCalcAngleOfThreePoints(&x, &o, &y), kPi / 2);
  EXPECT_EQ(RvMiCalcAngleOfThreePoints(&y, &o, &x), -kPi / 2);
  EXPECT_EQ(RvMiCalcAngleOfThreePoints(&o, &o, &y), 0.0);
  EXPECT_EQ(RvMiCalcAngleOfThreePoints(&x, &o, &x), 0.0);
  EXPECT_EQ(RvMiCalcAngleOfThreePoints(nullptr, &o, &x), 0.0);
}

TEST(Angles, TurnOfAPathAtABezierPoint) {
  // Collinear in order, no handles: pi.
  EXPECT_EQ(RvMiCalcAngleOfBezier(Corner(10, 0), Corner(0, 0), Corner(20, 0)), kPi);
  // A left turn of 90 degrees: the replacement handles (9.72, 0) and
  // (10, 0.28) give -pi/2, i.e. 3 pi / 2.
  EXPECT_NEAR(RvMiCalcAngleOfBezier(Corner(10, 0), Corner(0, 0), Corner(10, 10)), 6.283185307179586 - kPi / 2, 1e-12);
  // Handles of its own are used as they stand.
  EXPECT_EQ(RvMiCalcAngleOfBezier(Smooth({10, 0}, {10, -1}, {11, 0}), Corner(0, 0), Corner(10, 10)), kPi / 2);

  // The missing in-handle comes from the curve at single-precision 0.9.
  const RVBEZIERPOINT prev = Smooth({0, 0}, {0, 0}, {0, 10});
  const RVBEZIERPOINT point = Smooth({10, 0}, {10, 0}, {12, 1});
  auto expected = [&](double t) {
    const double s = 1 - t;
    const double ix = 0 * s * s * s + 0 * 3 * s * s * t + 10 * 3 * s * t * t + 10 * t * t * t;
    const double iy = 0 * s * s * s + 10 * 3 * s * s * t + 0 * 3 * s * t * t + 0 * t * t * t;
    const double ux = ix - 10, uy = iy, vx = 2, vy = 1;
    double r = std::atan2(ux * vy - uy * vx, ux * vx + uy * vy);
    return r < 0 ? r + 6.283185307179586 : r;
  };
  const double got = RvMiCalcAngleOfBezier(point, prev, Corner(20, 0));
  EXPECT_EQ(got, expected(double(0.9f)));
  EXPECT_NE(got, expected(0.9));
}

TEST(Angles, CentreAngleOfAPointOnAnArc) {
  const RVARCPOINT ccw{{10, 0}, {10, 0}, {0, 0}, 360, 1};
  const RVPOINT top{0, 10}, left{-10, 0}, bottom{0, -10}, start{10, 0};
  EXPECT_DOUBLE_EQ(RvMiGetCenterAngle(&ccw, &top, 0), kPi / 2);
  EXPECT_DOUBLE_EQ(RvMiGetCenterAngle(&ccw, &top, 1), 3 * kPi / 2);
  EXPECT_DOUBLE_EQ(RvMiGetCenterAngle(&ccw, &bottom, 0), 3 * kPi / 2);
  EXPECT_EQ(RvMiGetCenterAngle(&ccw, &left, 0), kPi);
  EXPECT_EQ(RvMiGetCenterAngle(&ccw, &start, 0), 6.283185307179586);
  const RVARCPOINT cw{{10, 0}, {10, 0}, {0, 0}, 360, -1};
  EXPECT_DOUBLE_EQ(RvMiGetCenterAngle(&cw, &top, 0), 3 * kPi / 2);
  EXPECT_DOUBLE_EQ(RvMiGetCenterAngle(&cw, &bottom, 0), kPi / 2);
  const RVARCPOINT none{{10, 0}, {10, 0}, {0, 0}, 360, 0};
  EXPECT_EQ(RvMiGetCenterAngle(&none, &top, 0), 0.0);
  EXPECT_EQ(RvMiGetCenterAngle(nullptr, &top, 0), 0.0);
}

TEST(ConvertPt, InternalCallersGetVectorsAndTheWorkerStaysEmpty) {
  rv::CRvConvertPt worker;
  EXPECT_EQ(worker.m_tolerance, 0.81);
  EXPECT_EQ(worker.m_maxLength, 31000.0);
  worker.m_maxLength = 30.0;
  const auto line = EvenLine(96);
  EXPECT_EQ(worker.CurvesToPoints(line.data(), 2).size(), 5u);
  EXPECT_EQ(worker.CurvesToPoints(line.data(), 2).size(), 5u);  // nothing left over from the first call
  std::vector<RVPOINT> poly;
  rv::CurveToPoints(line[0], line[1], 30.0, 0.03, 1, poly);
  EXPECT_EQ(poly.size(), 5u);
  EXPECT_EQ(rv::GridCell(-0.019), -1);
  EXPECT_EQ(rv::GridCell(0.019), 1);
  EXPECT_EQ(rv::GridCell(1e300), std::numeric_limits<int32_t>::min());
}

}  // namespace
