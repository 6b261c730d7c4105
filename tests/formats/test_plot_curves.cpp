// Curve commands of the plot interpreter. Expected moves are worked out by
// hand: points on circles at whole-degree steps are rounded to whole plotter
// units, chord counts follow from the chord rules (sweep / chord rounded up).
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "plot_test_util.h"

namespace {

using rvtest::Single;
using rvtest::Two;

constexpr double kDeg = 3.14159265358979323846 / 180.0;

double R(double v) { return std::floor(v + 0.5); }

TEST(PlotArcs, TrueArcsAboutACentre) {
  auto p = Two("PA10,0;AA0,0,90;");
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_ARC(p->moves[1], 10, 0, 0, 0, 0, 10, 90, 1);
  EXPECT_EQ(p->in.PenDown(), 1);  // an arc leaves the pen down
  EXPECT_NEAR(p->in.Position().y, 10.0, 1e-9);

  p = Two("PA10,0;AA0,0,-90;");
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_ARC(p->moves[1], 10, 0, 0, 0, 0, -10, 90, -1);

  // AR: the centre relative to the position.
  p = Two("PA10,0;AR-10,0,180;");
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_ARC(p->moves[1], 10, 0, 0, 0, -10, 0, 180, 1);

  // A full turn ends where it starts, and the position stays.
  p = Two("PA10,0;AA0,0,360;");
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_ARC(p->moves[1], 10, 0, 0, 0, 10, 0, 360, 1);
  EXPECT_EQ(p->in.Position().x, 10.0);

  // The position on the centre, or fewer than three parameters: nothing.
  EXPECT_EQ(Two("PA5,5;AA5,5,90;")->moves.size(), 1u);
  EXPECT_EQ(Two("PA5,5;AA0,0;")->moves.size(), 1u);
}

TEST(PlotArcs, ChordAnglesFlatten) {
  // A chord of 5 degrees over 90: 18 chords, 17 points and the end twice.
  auto p = Two("PA1000,0;PD;AA0,0,90,5;");
  ASSERT_EQ(p->moves.size(), 1u + 19u);
  for (int k = 1; k <= 17; ++k) {
    SCOPED_TRACE(k);
    EXPECT_LINE(p->moves[k], k == 1 ? 1000 : R(1000 * std::cos(5 * (k - 1) * kDeg)),
                k == 1 ? 0 : R(1000 * std::sin(5 * (k - 1) * kDeg)), R(1000 * std::cos(5 * k * kDeg)),
                R(1000 * std::sin(5 * k * kDeg)), 1);
  }
  EXPECT_LINE(p->moves[18], 87, 996, 0, 1000, 1);
  EXPECT_LINE(p->moves[19], 0, 1000, 0, 1000, 1);

  // A chord above the sweep: one chord, the end twice.
  p = Two("PA1000,0;PD;AA0,0,90,200;");
  ASSERT_EQ(p->moves.size(), 3u);
  EXPECT_LINE(p->moves[1], 1000, 0, 0, 1000, 1);

  // Chords of 0.05 degrees and less are 0.05: 1800 chords over 90.
  EXPECT_EQ(Two("PA1000,0;PD;AA0,0,90,0.01;")->moves.size(), 1u + 1801u);

  // A chord that doesn't divide the sweep is shrunk: 90 / 40 -> 3 chords of 30.
  p = Two("PA1000,0;PD;AA0,0,90,40;");
  ASSERT_EQ(p->moves.size(), 1u + 4u);
  EXPECT_LINE(p->moves[1], 1000, 0, 866, 500, 1);
  EXPECT_LINE(p->moves[2], 866, 500, 500, 866, 1);
}

TEST(PlotArcs, ChordAsDeviation) {
  // CT1: a deviation of 10 on radius 1000 is 2 atan(sqrt(1000^2 - 990^2)/990)
  // = 16.22 degrees; 90 / 16.22 -> 6 chords of 15 degrees.
  auto p = Two("CT1;PA1000,0;PD;AA0,0,90,10;");
  ASSERT_EQ(p->moves.size(), 1u + 7u);
  EXPECT_LINE(p->moves[1], 1000, 0, 966, 259, 1);
  // Radius 100, deviation 10: 51.7 degrees, limited to 45: 2 chords.
  p = Two("CT1;PA100,0;PD;AA0,0,90,10;");
  ASSERT_EQ(p->moves.size(), 1u + 3u);
  EXPECT_LINE(p->moves[1], 100, 0, 71, 71, 1);
  // A deviation above the radius gives 5 degrees: 18 chords.
  EXPECT_EQ(Two("CT1;PA100,0;PD;AA0,0,90,200;")->moves.size(), 1u + 19u);
}

TEST(PlotArcs, FlatteningUnderScaling) {
  // Ratios 2000 and 1000: the unit circle is worked out in plotter units,
  // so it becomes an ellipse of 2000 by 1000; the position comes back in
  // user units.
  auto p = Two("IP0,0,2000,1000;SC0,1,0,1;PA1,0;PD;AA0,0,90,45;PA1,1;");
  ASSERT_EQ(p->moves.size(), 5u);
  EXPECT_LINE(p->moves[1], 2000, 0, 1414, 707, 1);
  EXPECT_LINE(p->moves[2], 1414, 707, 0, 1000, 1);
  EXPECT_LINE(p->moves[4], 0, 1000, 2000, 1000, 1);
  EXPECT_TRUE(p->in.Scaling());
}

TEST(PlotArcs, Circles) {
  // CI10 about (5,5): a pen-up move to the start, then one full arc.
  auto p = Two("PA5,5;CI10;");
  ASSERT_EQ(p->moves.size(), 3u);
  EXPECT_LINE(p->moves[1], 5, 5, 15, 5, 0);
  EXPECT_ARC(p->moves[2], 15, 5, 5, 5, 15, 5, 360, 1);
  EXPECT_EQ(p->in.Position().x, 5.0);
  EXPECT_EQ(p->in.PenDown(), 1);

  p = Two("CI-10;");  // starts on the left of the centre
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_LINE(p->moves[0], 0, 0, -10, 0, 0);
  EXPECT_ARC(p->moves[1], -10, 0, 0, 0, -10, 0, 360, 1);

  p = Two("CI0;");
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_ARC(p->moves[1], 0, 0, 0, 0, 0, 0, 360, 1);

  // With a chord of 90: four chords, pen up back to the centre.
  p = Two("CI1000,90;");
  ASSERT_EQ(p->moves.size(), 7u);
  EXPECT_LINE(p->moves[0], 0, 0, 1000, 0, 0);
  EXPECT_LINE(p->moves[1], 1000, 0, 0, 1000, 1);
  EXPECT_LINE(p->moves[2], 0, 1000, -1000, 0, 1);
  EXPECT_LINE(p->moves[3], -1000, 0, 0, -1000, 1);
  EXPECT_LINE(p->moves[4], 0, -1000, 1000, 0, 1);
  EXPECT_LINE(p->moves[5], 1000, 0, 1000, 0, 1);
  EXPECT_LINE(p->moves[6], 1000, 0, 0, 0, 0);
  EXPECT_EQ(p->in.PenDown(), 0);

  EXPECT_TRUE(Two("CI;")->moves.empty());
}

TEST(PlotArcs, ThreePointArcs) {
  // Three equal points, or P0 = P1: two moves.
  auto p = Two("PA5,5;PD;AT5,5,5,5;");
  ASSERT_EQ(p->moves.size(), 3u);
  EXPECT_LINE(p->moves[1], 5, 5, 5, 5, 1);
  EXPECT_LINE(p->moves[2], 5, 5, 5, 5, 1);
  // Points in a line: two moves.
  p = Two("PD;AT5,5,10,10;");
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_LINE(p->moves[1], 0, 0, 10, 10, 1);
  // P0 = P2: a full circle on the diameter P0 P1.
  p = Two("AT10,0,0,0;");
  ASSERT_EQ(p->moves.size(), 1u);
  EXPECT_ARC(p->moves[0], 0, 0, 5, 0, 0, 0, 360, 1);
  // A centre beyond 67108863: three moves.
  p = Two("PD;AT49999999,1,99999998,0;");
  ASSERT_EQ(p->moves.size(), 3u);
  EXPECT_LINE(p->moves[1], 0, 0, 49999999, 1, 1);
  EXPECT_LINE(p->moves[2], 49999999, 1, 99999998, 0, 1);

  // Counter-clockwise: P1 lies in another quadrant and comes before P2.
  p = Two("PA10,0;AT0,10,-10,0;");
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_ARC(p->moves[1], 10, 0, 0, 0, -10, 0, 180, 1);
  // Clockwise through (0,-10).
  p = Two("PA10,0;AT0,-10,-10,0;");
  EXPECT_ARC(p->moves[1], 10, 0, 0, 0, -10, 0, 180, -1);
  // P0 and P1 in one quadrant (x <= 0, y >= 0) from (-10,0) to (0,10) is
  // clockwise; the end angle 0 lies below the start angle 180, so the sweep
  // stays -180.
  p = Two("PA-10,0;AT0,10,10,0;");
  EXPECT_ARC(p->moves[1], -10, 0, 0, 0, 10, 0, -180, -1);

  // RT is relative; the position ends exactly at P2.
  p = Two("PA10.4,0;RT-10.4,10.4,-20.8,0;");
  EXPECT_ARC(p->moves[1], 10, 0, 0, 0, -10, 0, 180, 1);
  EXPECT_EQ(p->in.Position().x, 10.4 - 20.8);
  EXPECT_EQ(p->in.Position().y, 0.0);

  // ZC takes four numbers (a fifth is dropped), so it is always a true arc;
  // the arc leaves the pen down although ZC restores it.
  p = Two("PU;PA10,0;ZC0,10,-10,0,90;PA0,0;");
  ASSERT_EQ(p->moves.size(), 3u);
  EXPECT_ARC(p->moves[1], 10, 0, 0, 0, -10, 0, 180, 1);
  EXPECT_LINE(p->moves[2], -10, 0, 0, 0, 1);
}

TEST(PlotArcs, RectanglesAndWedges) {
  auto p = Two("PA1,2;EA5,7;PA0,0;");
  ASSERT_EQ(p->moves.size(), 6u);
  EXPECT_LINE(p->moves[1], 1, 2, 5, 2, 1);
  EXPECT_LINE(p->moves[2], 5, 2, 5, 7, 1);
  EXPECT_LINE(p->moves[3], 5, 7, 1, 7, 1);
  EXPECT_LINE(p->moves[4], 1, 7, 1, 2, 1);
  EXPECT_LINE(p->moves[5], 1, 2, 0, 0, 0);  // pen and position as before
  p = Two("PA1,2;ER4,5;");
  ASSERT_EQ(p->moves.size(), 5u);
  EXPECT_LINE(p->moves[2], 5, 2, 5, 7, 1);
  EXPECT_EQ(Two("EA5;")->moves.size(), 0u);

  // A wedge of 90 degrees: both sides drawn, two chords of 45.
  p = Two("EW1000,0,90,45;");
  ASSERT_EQ(p->moves.size(), 5u);
  EXPECT_LINE(p->moves[0], 0, 0, 1000, 0, 1);
  EXPECT_LINE(p->moves[1], 1000, 0, 707, 707, 1);
  EXPECT_LINE(p->moves[2], 707, 707, 0, 1000, 1);
  EXPECT_LINE(p->moves[3], 0, 1000, 0, 1000, 1);
  EXPECT_LINE(p->moves[4], 0, 1000, 0, 0, 1);
  EXPECT_EQ(p->in.PenDown(), 0);

  // A full wedge: its sides are pen-up moves.
  p = Two("EW1000,0,360,90;");
  ASSERT_EQ(p->moves.size(), 7u);
  EXPECT_EQ(p->moves[0].pen, 0);
  EXPECT_EQ(p->moves[1].pen, 1);
  EXPECT_EQ(p->moves[6].pen, 0);
  // Without a chord, in the automatic mode, the chord is 0.05 degrees.
  EXPECT_EQ(Two("EW10,0,360;")->moves.size(), 1u + 7201u + 1u);

  // A negative radius turns the start vector round.
  p = Two("EW-1000,0,90,90;");
  ASSERT_EQ(p->moves.size(), 4u);
  EXPECT_LINE(p->moves[0], 0, 0, -1000, 0, 1);
  EXPECT_LINE(p->moves[1], -1000, 0, 0, -1000, 1);
}

TEST(PlotArcs, EllipseAndWedgeFlatteningModes) {
  // ZW10,1: chord length 200 (1 * 10 * 20) and at least 36 chords per turn:
  // 360 / max(pi * 2000 / 200, 36) = 10 degrees, 9 chords over 90.
  auto p = Two("ZW10,1;EW1000,0,90;");
  EXPECT_EQ(p->in.EllipseMode(), 1);
  EXPECT_EQ(p->in.EllipseValue(), 200.0);
  EXPECT_EQ(p->in.EllipseMinChords(), 36.0);
  EXPECT_EQ(p->moves.size(), 1u + 10u + 1u);
  // ZW0,0,1: deviation 200 on radius 1000 is 2 atan(600/800) = 73.7 degrees:
  // two chords of 45 over 90.
  p = Two("ZW0,0,1;EW1000,0,90;");
  EXPECT_EQ(p->in.EllipseMode(), 2);
  ASSERT_EQ(p->moves.size(), 1u + 3u + 1u);
  EXPECT_LINE(p->moves[1], 1000, 0, 707, 707, 1);
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
  EXPECT_LINE(p->moves[0], 0, 0, 1000, 0, 0);
  EXPECT_EQ(p->moves[90].to.x, 0);  // t = 90: R = b
  EXPECT_EQ(p->moves[90].to.y, 600);
  EXPECT_EQ(p->moves[180].to.x, -1000);
  EXPECT_LINE(p->moves[361], 1000, 0, 1000, 0, 1);
  EXPECT_LINE(p->moves[362], 1000, 0, 0, 0, 0);
  for (int i = 1; i <= 359; ++i) {
    const double x = p->moves[i].to.x, y = p->moves[i].to.y;
    EXPECT_NEAR(std::atan2(y, x) / kDeg + (y < 0 ? 360 : 0), i, 0.2) << i;
  }

  // Radii 1000 and 400 (b/a 0.4): 20 bands. With k = 0.64 and d = 0.5 the
  // step s is 0.32 degrees; band widths 47.95, 26.65, 10.20, 3.46, 1.74;
  // counts 149, 99, 33, 11, 5 per quarter: 4 * 297 = 1188 steps.
  p = Two("ZE1000,400;");
  ASSERT_EQ(p->moves.size(), 1u + 1187u + 2u + 1u);
  double last = 0.0;
  for (int i = 1; i <= 1187; ++i) {
    const double x = p->moves[i].to.x, y = p->moves[i].to.y;
    // On the ellipse within the rounding to whole units.
    EXPECT_NEAR(std::hypot(x / 1000.0, y / 400.0), 1.0, 0.0026) << i;
    double t = std::atan2(y, x) / kDeg;
    if (t < -1e-9) t += 360.0;
    EXPECT_GE(t + 0.2, last) << i;
    last = t;
  }
  // The first band ends at 149 steps of 360/1119 degrees = 47.94 degrees.
  {
    const double x = p->moves[149].to.x, y = p->moves[149].to.y;
    EXPECT_NEAR(std::atan2(y, x) / kDeg, 47.94, 0.1);
  }
  // Radii swapped, or one of them 0: the same ellipse, or nothing.
  EXPECT_EQ(Two("ZE400,1000;")->moves.size(), p->moves.size());
  EXPECT_TRUE(Two("ZE1000,0;")->moves.empty());
  // A rotation of 90 starts on the y axis.
  p = Two("ZE1000,600,90;");
  EXPECT_LINE(p->moves[0], 0, 0, 0, 1000, 0);
  EXPECT_EQ(p->moves[90].to.x, -600);
}

TEST(PlotSmoothCurves, StepsAndLeadIn) {
  // Points on a line are followed exactly: the spline of a straight run is
  // the line. ZD0,0.1: fixed step 20. The curve runs from the position
  // (T = 100) up to 10 before the end (T = 390), then to the last point.
  auto p = Two("PA0,0;PD;ZD0,0.1;ZS-100,0,100,0,200,0,300,0;");
  EXPECT_EQ(p->in.CurveMode(), 1);
  EXPECT_EQ(p->in.CurveStep(), 20.0);
  ASSERT_EQ(p->moves.size(), 1u + 16u);
  for (int k = 0; k < 15; ++k) {
    EXPECT_EQ(p->moves[1 + k].to.x, 20.0 * k) << k;
    EXPECT_EQ(p->moves[1 + k].to.y, 0.0) << k;
    EXPECT_EQ(p->moves[1 + k].pen, 1);
  }
  EXPECT_LINE(p->moves[16], 280, 0, 300, 0, 1);
  EXPECT_EQ(p->in.Position().x, 300.0);

  // A lead-in equal to the position is the mirror of the next point: the same curve.
  auto q = Two("PA0,0;PD;ZD0,0.1;ZS0,0,100,0,200,0,300,0;");
  ASSERT_EQ(q->moves.size(), p->moves.size());
  for (size_t i = 0; i < p->moves.size(); ++i) EXPECT_EQ(q->moves[i].to.x, p->moves[i].to.x);

  // No step set: a sixteenth of each span, kept between 20 and 40 units.
  q = Two("PA0,0;PD;ZS-100,0,100,0,200,0,300,0;");
  EXPECT_EQ(q->moves.size(), p->moves.size());
  q = Two("PA0,0;PD;ZS-1000,0,1000,0,2000,0,3000,0;");
  ASSERT_EQ(q->moves.size(), 1u + 75u + 1u);  // t = 1000 + 40k up to 3990
  EXPECT_EQ(q->moves[75].to.x, 2960.0);

  // ZD1,0.25: step proportional to the span, 2 / 1000 of it, at least 16.
  EXPECT_EQ(Two("ZD1,0.25;")->in.CurveMode(), 2);
  EXPECT_EQ(Two("ZD1,0.25;")->in.CurveStep(), 0.002);
  EXPECT_EQ(Two("ZD1,0.25;ZD2,1;")->in.CurveMode(), 2);  // first value 2: no effect
  EXPECT_EQ(Two("ZD1,0.25;ZD0,0;")->in.CurveMode(), 0);

  // Fewer than four points in the list: straight moves to the pairs.
  p = Two("PA0,0;PD;ZS-100,0,100,0;");
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_LINE(p->moves[1], 0, 0, 100, 0, 1);
  // One pair: nothing.
  EXPECT_EQ(Two("PA0,0;PD;ZS-100,0;")->moves.size(), 1u);
}

TEST(PlotSmoothCurves, CurvedRunsAndTheParameterLimit) {
  // Eight points on a quarter circle of radius 1000: the curve stays close
  // to the circle between them and ends on the last point.
  std::string zs = "PA1000,0;PD;ZD0,0.1;ZS1000,-130";
  for (int k = 1; k <= 7; ++k) {
    zs += "," + std::to_string(int(R(1000 * std::cos(k * 15 * kDeg)))) + "," +
          std::to_string(int(R(1000 * std::sin(k * 15 * kDeg))));
  }
  auto p = Two(zs + ";");
  ASSERT_GT(p->moves.size(), 60u);
  for (size_t i = 1; i < p->moves.size(); ++i) {
    EXPECT_NEAR(std::hypot(p->moves[i].to.x, p->moves[i].to.y), 1000.0, 6.0) << i;
  }
  EXPECT_EQ(p->moves.back().to.x, R(1000 * std::cos(105 * kDeg)));

  // 130 pairs: the form holds 256 numbers, so the curve ends at pair 127.
  std::string many = "PA10,0;PD;ZD0,0.1;ZS0,0";
  for (int k = 1; k < 130; ++k) many += "," + std::to_string(10 * k) + ",0";
  p = Two(many + ";");
  EXPECT_EQ(p->in.Position().x, 1270.0);
  EXPECT_EQ(p->moves.back().to.x, 1270.0);
}

TEST(PlotSingleLetterArcs, ArcsSpiralsAndStartEndCentre) {
  // With equal factors and equal radii W is a true arc.
  auto p = Single("&1,1,1\x03W0,0,1000,1000,0,900\x03");
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_LINE(p->moves[0], 0, 0, 1000, 0, 0);
  EXPECT_ARC(p->moves[1], 1000, 0, 0, 0, 0, 1000, 90, 1);
  // Whole turns are kept.
  p = Single("&1,1,1\x03W0,0,1000,1000,0,4500\x03");
  EXPECT_ARC(p->moves[1], 1000, 0, 0, 0, 0, 1000, 450, 1);

  // Before any '&' the arc is flattened, in the automatic mode at 0.05 degrees.
  EXPECT_EQ(Single("W0,0,1000,1000,0,900\x03")->moves.size(), 1u + 1801u);
  // A spiral from radius 1000 to 2000: at 45 degrees the radius is 1500.
  p = Single("W0,0,1000,2000,0,900\x03");
  ASSERT_EQ(p->moves.size(), 1u + 1801u);
  EXPECT_EQ(p->moves[900].to.x, 1061);
  EXPECT_EQ(p->moves[900].to.y, 1061);
  EXPECT_LINE(p->moves[1801], 0, 2000, 0, 2000, 1);
  EXPECT_NEAR(p->in.Position().y, 1000.0, 1e-9);  // the position uses the first radius

  // ']' from the position: the centre lies at radius r1, angle t1 behind it.
  p = Single("M1000,0\x03]1000,1000,0,900\x03");
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_ARC(p->moves[1], 1000, 0, 0, 0, 0, 1000, 90, 1);

  // '*' by start, end and centre; sense 1 is clockwise: 360 - 90 = 270.
  p = Single("*1,1000,0,0,1000,0,0\x03");
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_LINE(p->moves[0], 0, 0, 1000, 0, 0);
  EXPECT_ARC(p->moves[1], 1000, 0, 0, 0, 0, 1000, 270, -1);
  p = Single("M1000,0\x03*-1,1000,0,0,1000,0,0\x03");
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_ARC(p->moves[1], 1000, 0, 0, 0, 0, 1000, 90, 1);
  p = Single("M1000,0\x03*-1,1000,0,1000,0,0,0\x03");  // start = end: a full turn
  EXPECT_ARC(p->moves[1], 1000, 0, 0, 0, 1000, 0, 360, 1);
  EXPECT_EQ(Single("*2,1000,0,0,1000,0,0\x03")->moves.size(), 0u);
}

TEST(PlotArcs, HugeSweepsAreBounded) {
  // 99999999 degrees at 0.06 would be 1.7e9 chords: a curve command makes
  // at most kMaxCurveMoves moves.
  auto p = Two("PA1000,0;PD;AA0,0,99999999,0.06;");
  EXPECT_EQ(p->moves.size(), 1u + size_t(rv::kMaxCurveMoves) + 1u);
}

}  // namespace
