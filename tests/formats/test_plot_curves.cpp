// Curve commands of the plot interpreter. Expected moves are worked out by
// hand: points on circles at whole-degree steps are rounded to whole plotter
// units, chord counts follow from the chord rules (sweep / chord rounded up).
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "plot_test_util.h"

namespace {

using rvtest::ExpectTraces;
using rvtest::Pt;
using rvtest::Two;

constexpr double kDeg = 3.14159265358979323846 / 180.0;

double R(double v) { return std::floor(v + 0.5); }

/// "x,y" of radius r at `degrees`, rounded to whole units.
std::string Polar(double r, double degrees) {
  return Pt(R(r * std::cos(degrees * kDeg)), R(r * std::sin(degrees * kDeg)));
}

TEST(PlotArcs, TrueArcsCirclesAndThreePointArcs) {
  ExpectTraces({
      {"PA10,0;AA0,0,90;", "U0,0>10,0 A10,0>0,10@0,0:90+", "pen 1 at 0,10"},
      {"PA10,0;AA0,0,-90;", "U0,0>10,0 A10,0>0,-10@0,0:90-"},
      // AR: the centre relative to the position. A full turn ends where it starts.
      {"PA10,0;AR-10,0,180;", "U0,0>10,0 A10,0>-10,0@0,0:180+"},
      {"PA10,0;AA0,0,360;", "U0,0>10,0 A10,0>10,0@0,0:360+", "pen 1 at 10,0"},
      // The position on the centre, or fewer than three parameters: nothing.
      {"PA5,5;AA5,5,90;", "U0,0>5,5"},
      {"PA5,5;AA0,0;", "U0,0>5,5"},
      // CI: a pen-up move to the start, then one full arc; CI-10 starts on the
      // left of the centre.
      {"PA5,5;CI10;", "U0,0>5,5 U5,5>15,5 A15,5>15,5@5,5:360+", "pen 1 at 5,5"},
      {"CI-10;", "U0,0>-10,0 A-10,0>-10,0@0,0:360+"},
      {"CI0;", "U0,0>0,0 A0,0>0,0@0,0:360+"},
      {"CI;", ""},
      // With a chord of 90: four chords, the end twice, pen up back to the centre.
      {"CI1000,90;",
       "U0,0>1000,0 D1000,0>0,1000 D0,1000>-1000,0 D-1000,0>0,-1000 D0,-1000>1000,0 D1000,0>1000,0 U1000,0>0,0",
       "pen 0 at 0,0"},
      // Three points: equal points, P0 = P1, or points in a line give two moves.
      {"PA5,5;PD;AT5,5,5,5;", "U0,0>5,5 D5,5>5,5 D5,5>5,5"},
      {"PD;AT5,5,10,10;", "D0,0>0,0 D0,0>10,10"},
      // P0 = P2: a full circle on the diameter P0 P1.
      {"AT10,0,0,0;", "A0,0>0,0@5,0:360+"},
      // A centre beyond 67108863: three moves.
      {"PD;AT49999999,1,99999998,0;", "D0,0>0,0 D0,0>49999999,1 D49999999,1>99999998,0"},
      // Counter-clockwise: P1 lies in another quadrant and comes before P2;
      // clockwise through (0,-10).
      {"PA10,0;AT0,10,-10,0;", "U0,0>10,0 A10,0>-10,0@0,0:180+"},
      {"PA10,0;AT0,-10,-10,0;", "U0,0>10,0 A10,0>-10,0@0,0:180-"},
      // P0 and P1 in one quadrant (x <= 0, y >= 0): from (-10,0) to (0,10) is
      // clockwise; the end angle 0 lies below the start angle 180, so the
      // sweep stays -180.
      {"PA-10,0;AT0,10,10,0;", "U0,0>-10,0 A-10,0>10,0@0,0:-180-"},
      // RT is relative.
      {"PA10.4,0;RT-10.4,10.4,-20.8,0;", "U0,0>10,0 A10,0>-10,0@0,0:180+", "pen 1 at -10.4,0"},
      // ZC takes four numbers (a fifth is dropped), so it is always a true
      // arc; the arc leaves the pen down although ZC restores it.
      {"PU;PA10,0;ZC0,10,-10,0,90;PA0,0;", "U0,0>10,0 A10,0>-10,0@0,0:180+ D-10,0>0,0"},
  });
}

TEST(PlotArcs, ChordRulesFlatten) {
  // A chord of 5 degrees over 90: 18 chords, 17 points and the end twice.
  auto p = Two("PA1000,0;PD;AA0,0,90,5;");
  ASSERT_EQ(p->moves.size(), 1u + 19u);
  for (int k : {1, 9, 18}) EXPECT_EQ(p->moves[k], "D" + Polar(1000, 5 * (k - 1)) + ">" + Polar(1000, 5 * k)) << k;
  EXPECT_EQ(p->moves[19], "D0,1000>0,1000");
  ExpectTraces({
      // A chord above the sweep: one chord, the end twice.
      {"PA1000,0;PD;AA0,0,90,200;", "U0,0>1000,0 D1000,0>0,1000 D0,1000>0,1000"},
      // A chord that doesn't divide the sweep is shrunk: 90 / 40 -> 3 chords of 30.
      {"PA1000,0;PD;AA0,0,90,40;", "U0,0>1000,0 D1000,0>866,500 D866,500>500,866 D500,866>0,1000 D0,1000>0,1000"},
      // CT1, radius 100, deviation 10: 2 atan(sqrt(100^2 - 90^2)/90) = 51.7
      // degrees, limited to 45: 2 chords.
      {"CT1;PA100,0;PD;AA0,0,90,10;", "U0,0>100,0 D100,0>71,71 D71,71>0,100 D0,100>0,100"},
      // Ratios 2000 and 1000: the unit circle is worked out in plotter units,
      // so it becomes an ellipse of 2000 by 1000; the position comes back in
      // user units.
      {"IP0,0,2000,1000;SC0,1,0,1;PA1,0;PD;AA0,0,90,45;PA1,1;",
       "U0,0>2000,0 D2000,0>1414,707 D1414,707>0,1000 D0,1000>0,1000 D0,1000>2000,1000"},
  });
  // Chords of 0.05 degrees and less are 0.05: 1800 chords over 90.
  EXPECT_EQ(Two("PA1000,0;PD;AA0,0,90,0.01;")->moves.size(), 1u + 1801u);
  // CT1: a deviation of 10 on radius 1000 is 2 atan(sqrt(1000^2 - 990^2)/990)
  // = 16.22 degrees; 90 / 16.22 -> 6 chords of 15 degrees.
  p = Two("CT1;PA1000,0;PD;AA0,0,90,10;");
  ASSERT_EQ(p->moves.size(), 1u + 7u);
  EXPECT_EQ(p->moves[1], "D1000,0>966,259");
  // A deviation above the radius gives 5 degrees: 18 chords.
  EXPECT_EQ(Two("CT1;PA100,0;PD;AA0,0,90,200;")->moves.size(), 1u + 19u);
  // 99999999 degrees at 0.06 would be 1.7e9 chords: a curve command makes
  // at most kMaxCurveMoves moves.
  EXPECT_EQ(Two("PA1000,0;PD;AA0,0,99999999,0.06;")->moves.size(), 1u + size_t(rv::kMaxCurveMoves) + 1u);
}

TEST(PlotArcs, RectanglesAndWedges) {
  ExpectTraces({
      // Pen and position come back as before.
      {"PA1,2;EA5,7;PA0,0;", "U0,0>1,2 D1,2>5,2 D5,2>5,7 D5,7>1,7 D1,7>1,2 U1,2>0,0"},
      {"PA1,2;ER4,5;", "U0,0>1,2 D1,2>5,2 D5,2>5,7 D5,7>1,7 D1,7>1,2"},
      {"EA5;", ""},
      // A wedge of 90 degrees: both sides drawn, two chords of 45.
      {"EW1000,0,90,45;", "D0,0>1000,0 D1000,0>707,707 D707,707>0,1000 D0,1000>0,1000 D0,1000>0,0", "pen 0 at 0,0"},
      // A full wedge: its sides are pen-up moves.
      {"EW1000,0,360,90;",
       "U0,0>1000,0 D1000,0>0,1000 D0,1000>-1000,0 D-1000,0>0,-1000 D0,-1000>1000,0 D1000,0>1000,0 U1000,0>0,0"},
      // A negative radius turns the start vector round.
      {"EW-1000,0,90,90;", "D0,0>-1000,0 D-1000,0>0,-1000 D0,-1000>0,-1000 D0,-1000>0,0"},
      // ZW0,0,1: deviation 200 on radius 1000 is 2 atan(600/800) = 73.7
      // degrees: two chords of 45 over 90.
      {"ZW0,0,1;EW1000,0,90;", "D0,0>1000,0 D1000,0>707,707 D707,707>0,1000 D0,1000>0,1000 D0,1000>0,0"},
  });
  // Without a chord, in the automatic mode, the chord is 0.05 degrees.
  EXPECT_EQ(Two("EW10,0,360;")->moves.size(), 1u + 7201u + 1u);
  // ZW10,1: chord length 200 (1 * 10 * 20) and at least 36 chords per turn:
  // 360 / max(pi * 2000 / 200, 36) = 10 degrees, 9 chords over 90.
  EXPECT_EQ(Two("ZW10,1;EW1000,0,90;")->moves.size(), 1u + 10u + 1u);
  // A deviation above the radius: 5 degrees, 18 chords.
  EXPECT_EQ(Two("ZW0,0,10;EW1000,0,90;")->moves.size(), 1u + 19u + 1u);
  // Other counts, or a zero value, give the automatic mode; so does DF.
  EXPECT_EQ(Two("ZW10,1;ZW;")->in.EllipseMode(), 0);
  EXPECT_EQ(Two("ZW0,1;")->in.EllipseMode(), 0);
  EXPECT_EQ(Two("ZW10,1;DF;")->in.EllipseMode(), 0);
}

TEST(PlotArcs, Ellipses) {
  // Radii 1000 and 600 (b/a above 0.5): even steps of 1 degree, 359 points
  // on the ellipse and its start twice, between two pen-up moves.
  auto p = Two("ZE1000,600;");
  ASSERT_EQ(p->moves.size(), 1u + 361u + 1u);
  EXPECT_EQ(p->moves[0], "U0,0>1000,0");
  EXPECT_EQ(Pt(p->ends[90].x, p->ends[90].y), "0,600");  // t = 90: R = b
  EXPECT_EQ(p->ends[180].x, -1000);
  EXPECT_EQ(p->moves[361], "D1000,0>1000,0");
  EXPECT_EQ(p->moves[362], "U1000,0>0,0");
  for (int i = 1; i <= 359; ++i) {
    const double x = p->ends[i].x, y = p->ends[i].y;
    EXPECT_NEAR(std::atan2(y, x) / kDeg + (y < 0 ? 360 : 0), i, 0.2) << i;
  }

  // Radii 1000 and 400 (b/a 0.4): 20 bands. With k = 0.64 and d = 0.5 the
  // step s is 0.32 degrees; band widths 47.95, 26.65, 10.20, 3.46, 1.74;
  // counts 149, 99, 33, 11, 5 per quarter: 4 * 297 = 1188 steps.
  p = Two("ZE1000,400;");
  ASSERT_EQ(p->moves.size(), 1u + 1187u + 2u + 1u);
  double last = 0.0;
  for (int i = 1; i <= 1187; ++i) {
    const double x = p->ends[i].x, y = p->ends[i].y;
    EXPECT_NEAR(std::hypot(x / 1000.0, y / 400.0), 1.0, 0.0026) << i;  // within the rounding
    const double t = std::atan2(y, x) / kDeg;
    EXPECT_GE((t < -1e-9 ? t + 360.0 : t) + 0.2, last) << i;
    last = t < -1e-9 ? t + 360.0 : t;
  }
  // The first band ends at 149 steps of 360/1119 degrees = 47.94 degrees.
  EXPECT_NEAR(std::atan2(p->ends[149].y, p->ends[149].x) / kDeg, 47.94, 0.1);
  // Radii swapped, or one of them 0: the same ellipse, or nothing.
  EXPECT_EQ(Two("ZE400,1000;")->moves.size(), p->moves.size());
  EXPECT_TRUE(Two("ZE1000,0;")->moves.empty());
  // A rotation of 90 starts on the y axis.
  p = Two("ZE1000,600,90;");
  EXPECT_EQ(p->moves[0], "U0,0>0,1000");
  EXPECT_EQ(p->ends[90].x, -600);
}

TEST(PlotSmoothCurves, StepsLeadInAndTheParameterLimit) {
  // Points on a line are followed exactly: the spline of a straight run is
  // the line. ZD0,0.1: fixed step 20. The curve runs from the position
  // (T = 100) up to 10 before the end (T = 390), then to the last point.
  // A lead-in equal to the position is the mirror of the next point: the
  // same curve; with no step set, a sixteenth of each span (kept between 20
  // and 40 units) is 20 here too.
  std::string line = "U0,0>0,0 D0,0>0,0";
  for (int k = 1; k < 15; ++k) line += " D" + Pt(20 * (k - 1), 0) + ">" + Pt(20 * k, 0);
  line += " D280,0>300,0";
  ExpectTraces({
      {"PA0,0;PD;ZD0,0.1;ZS-100,0,100,0,200,0,300,0;", line, "pen 1 at 300,0"},
      {"PA0,0;PD;ZD0,0.1;ZS0,0,100,0,200,0,300,0;", line},
      {"PA0,0;PD;ZS-100,0,100,0,200,0,300,0;", line},
      // Fewer than four points in the list: straight moves to the pairs; one pair: nothing.
      {"PA0,0;PD;ZS-100,0,100,0;", "U0,0>0,0 D0,0>100,0"},
      {"PA0,0;PD;ZS-100,0;", "U0,0>0,0"},
  });
  auto p = Two("PA0,0;PD;ZS-1000,0,1000,0,2000,0,3000,0;");
  ASSERT_EQ(p->moves.size(), 1u + 75u + 1u);  // t = 1000 + 40k up to 3990
  EXPECT_EQ(p->ends[75].x, 2960.0);

  // ZD1,0.25: step proportional to the span, 2 / 1000 of it, at least 16.
  EXPECT_EQ(Two("ZD1,0.25;")->in.CurveMode(), 2);
  EXPECT_EQ(Two("ZD1,0.25;")->in.CurveStep(), 0.002);
  EXPECT_EQ(Two("ZD1,0.25;ZD2,1;")->in.CurveMode(), 2);  // first value 2: no effect
  EXPECT_EQ(Two("ZD1,0.25;ZD0,0;")->in.CurveMode(), 0);

  // Eight points on a quarter circle of radius 1000: the curve stays close
  // to the circle between them and ends on the last point.
  std::string zs = "PA1000,0;PD;ZD0,0.1;ZS1000,-130";
  for (int k = 1; k <= 7; ++k) zs += "," + Polar(1000, k * 15);
  p = Two(zs + ";");
  ASSERT_GT(p->moves.size(), 60u);
  for (size_t i = 1; i < p->moves.size(); ++i) {
    EXPECT_NEAR(std::hypot(p->ends[i].x, p->ends[i].y), 1000.0, 6.0) << i;
  }
  EXPECT_EQ(p->ends.back().x, R(1000 * std::cos(105 * kDeg)));

  // 130 pairs: the form holds 256 numbers, so the curve ends at pair 127.
  std::string many = "PA10,0;PD;ZD0,0.1;ZS0,0";
  for (int k = 1; k < 130; ++k) many += "," + Pt(10 * k, 0);
  p = Two(many + ";");
  EXPECT_EQ(p->State(), "pen 1 at 1270,0");
}

TEST(PlotSingleLetterArcs, ArcsSpiralsAndStartEndCentre) {
  ExpectTraces(
      {
          // With equal factors and equal radii W is a true arc; whole turns are kept.
          {"&1,1,1\x03W0,0,1000,1000,0,900\x03", "U0,0>1000,0 A1000,0>0,1000@0,0:90+"},
          {"&1,1,1\x03W0,0,1000,1000,0,4500\x03", "U0,0>1000,0 A1000,0>0,1000@0,0:450+"},
          // ']' from the position: the centre lies at radius r1, angle t1 behind it.
          {"M1000,0\x03]1000,1000,0,900\x03", "U0,0>1000,0 A1000,0>0,1000@0,0:90+"},
          // '*' by start, end and centre; sense 1 is clockwise: 360 - 90 = 270.
          {"*1,1000,0,0,1000,0,0\x03", "U0,0>1000,0 A1000,0>0,1000@0,0:270-"},
          {"M1000,0\x03*-1,1000,0,0,1000,0,0\x03", "U0,0>1000,0 A1000,0>0,1000@0,0:90+"},
          {"M1000,0\x03*-1,1000,0,1000,0,0,0\x03", "U0,0>1000,0 A1000,0>1000,0@0,0:360+"},  // start = end
          {"*2,1000,0,0,1000,0,0\x03", ""},
      },
      rv::kDialectSingleLetter);
  // Before any '&' the arc is flattened, in the automatic mode at 0.05 degrees.
  EXPECT_EQ(Two("W0,0,1000,1000,0,900\x03", rv::kDialectSingleLetter)->moves.size(), 1u + 1801u);
  // A spiral from radius 1000 to 2000: at 45 degrees the radius is 1500.
  auto p = Two("W0,0,1000,2000,0,900\x03", rv::kDialectSingleLetter);
  ASSERT_EQ(p->moves.size(), 1u + 1801u);
  EXPECT_EQ(Pt(p->ends[900].x, p->ends[900].y), "1061,1061");
  EXPECT_EQ(p->moves[1801], "D0,2000>0,2000");
  EXPECT_EQ(p->State(), "pen 1 at 0,1000");  // the position uses the first radius
}

}  // namespace
