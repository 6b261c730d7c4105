// Curve commands of the plot interpreter: arcs, circles, rectangles, wedges,
// ellipses and smooth curves. A circular arc without a chord angle stays a
// true arc and is handed over whole; everything else is flattened into
// pen-down moves here, with the chord rules of a plotter's firmware.
#include <algorithm>
#include <array>
#include <cmath>

#include "formats/plot_interpreter.h"
#include "formats/plot_math.h"

namespace rv {

using namespace plot;

namespace {

/// The firmware's value of pi in the chord-length rule.
constexpr double kFirmwarePi = 3.141592654;
/// Centres and radii beyond this make a three-point arc fall back to lines.
constexpr double kArcLimit = 67108863.0;

struct Vec {
  double c;  // cosine
  double s;  // sine
};

/// v turned by `a` degrees, clockwise when `sense` is -1, else counter-clockwise.
Vec Rot(Vec v, double a, int sense) {
  const double r = Radians(sense == -1 ? -a : a);
  const double k = std::cos(r), n = std::sin(r);
  return {v.c * k - v.s * n, v.c * n + v.s * k};
}

int SignOf(double v) { return v > 0.0 ? 1 : (v < 0.0 ? -1 : 0); }

/// Quadrant of a point seen from the centre, as the firmware numbers them.
int Quadrant(double x, double y) {
  if (x > 0.0 && y >= 0.0) return 1;
  if (x <= 0.0 && y >= 0.0) return 2;
  if (x < 0.0 && y <= 0.0) return 3;
  return 4;
}

Vec Unit(double x, double y) {
  const double r = std::hypot(x, y);
  if (r == 0.0) return {1.0, 0.0};
  return {x / r, y / r};
}

/// A sweep from the end angle less the start angle, brought to the sense of
/// `direction`. A clockwise arc whose end angle lies below its start angle
/// keeps a negative sweep; its magnitude is the swept angle.
double SweepToward(double sweep, int direction) {
  if (sweep != 0.0 && SignOf(sweep) != direction) {
    sweep = direction == 1 ? sweep + 360.0 : 360.0 - sweep;
  }
  return sweep;
}

}  // namespace

CRvPlotInterpreter::ArcWork& CRvPlotInterpreter::NewArcWork(int chordArg) {
  m_arc = ArcWork{};
  if (chordArg >= 0 && m_count > chordArg && m_args[chordArg] != 0.0) {
    m_arc.trueArc = false;
    m_arc.chord = m_args[chordArg];
  }
  return m_arc;
}

// ---------------------------------------------------------------------------
// Arcs about a centre: AA, AR
// ---------------------------------------------------------------------------

void CRvPlotInterpreter::DoAA(bool relative) {
  if (m_count < 3) return;
  const double* a = m_args;
  ArcWork& w = NewArcWork(3);
  const double cx = relative ? m_curX + a[0] : a[0];
  const double cy = relative ? m_curY + a[1] : a[1];
  const double dx = m_curX - cx, dy = m_curY - cy;
  if (dx == 0.0 && dy == 0.0) return;  // the position is on the centre
  const double r = std::hypot(dx, dy);
  w.centreX = cx;
  w.centreY = cy;
  w.radiusX = w.radiusY = r;
  w.startCos = dx / r;
  w.startSin = dy / r;
  w.direction = SignOf(a[2]);
  w.sweep = std::fabs(a[2]);
  const Vec end = Rot({w.startCos, w.startSin}, w.sweep, w.direction);
  w.endCos = end.c;
  w.endSin = end.s;
  if (w.trueArc) {
    MarkArc();
    if (w.sweep != 360.0) {
      m_curX = cx + r * end.c;
      m_curY = cy + r * end.s;
    }
    SetArcTo(m_curX, m_curY);
  } else {
    Flatten();
  }
}

// ---------------------------------------------------------------------------
// Circle: CI
// ---------------------------------------------------------------------------

void CRvPlotInterpreter::DoCI() {
  if (m_count < 1) return;
  const double* a = m_args;
  ArcWork& w = NewArcWork(1);
  const int16_t pen = m_penDown;
  const double cx = m_curX, cy = m_curY;
  double r = a[0];
  w.centreX = cx;
  w.centreY = cy;
  w.sweep = 360.0;
  w.direction = 1;
  double sx;
  if (r >= 0.0) {
    sx = cx + r;
    w.startCos = w.endCos = 1.0;
  } else {
    r = -r;
    sx = cx - r;
    w.startCos = w.endCos = -1.0;
  }
  w.startSin = w.endSin = 0.0;
  w.radiusX = w.radiusY = r;
  m_penDown = 0;
  MoveTo(sx, cy);  // ends any open path
  m_penDown = 1;
  if (w.trueArc) {
    MarkArc();
    SetArcTo(sx, cy);
    m_penDown = 0;
    m_curX = cx;  // back to the centre without a move
    m_curY = cy;
  } else {
    Flatten();
    m_penDown = 0;
    MoveTo(cx, cy);
  }
  m_penDown = pen;
}

// ---------------------------------------------------------------------------
// Arcs through three points: AT, RT, ZC
// ---------------------------------------------------------------------------

bool CRvPlotInterpreter::ArcThroughThreePoints(ArcWork& w, const PlotPoint& p0, const PlotPoint& p1,
                                               const PlotPoint& p2) {
  const double x0 = p0.x, y0 = p0.y, x1 = p1.x, y1 = p1.y, x2 = p2.x, y2 = p2.y;
  // The meeting of the perpendicular bisectors, relative to P0.
  const double bx = x1 - x0, by = y1 - y0, qx = x2 - x0, qy = y2 - y0;
  const double d = 2.0 * (bx * qy - by * qx);
  const double b2 = bx * bx + by * by, q2 = qx * qx + qy * qy;
  const double cx = x0 + Divide(qy * b2 - by * q2, d);
  const double cy = y0 + Divide(bx * q2 - qx * b2, d);
  const double r = std::hypot(x0 - cx, y0 - cy);
  if (!(std::fabs(cx) <= kArcLimit) || !(std::fabs(cy) <= kArcLimit) || !(r <= kArcLimit) || r == 0.0) return false;
  const double v0x = x0 - cx, v0y = y0 - cy, v1x = x1 - cx, v1y = y1 - cy, v2x = x2 - cx, v2y = y2 - cy;
  const double a0 = AngleOf(v0x, v0y), a1 = AngleOf(v1x, v1y), a2 = AngleOf(v2x, v2y);
  int direction;
  if (Quadrant(v0x, v0y) == Quadrant(v1x, v1y)) {
    // Inside one quadrant: the sense that leads from P0 to P1 there.
    direction = (v0x * v1y - v0y * v1x) >= 0.0 ? 1 : -1;
  } else {
    // Otherwise the sense that meets P1 before P2.
    const double toP1 = std::fmod(a1 - a0 + 360.0, 360.0);
    const double toP2 = std::fmod(a2 - a0 + 360.0, 360.0);
    direction = toP1 < toP2 ? 1 : -1;
  }
  w.centreX = cx;
  w.centreY = cy;
  w.radiusX = w.radiusY = r;
  const Vec s = Unit(v0x, v0y), e = Unit(v2x, v2y);
  w.startCos = s.c;
  w.startSin = s.s;
  w.endCos = e.c;
  w.endSin = e.s;
  w.direction = direction;
  w.sweep = SweepToward(a2 - a0, direction);
  return true;
}

void CRvPlotInterpreter::DoAT(int kind) {
  if (m_count < 4) return;
  const double* a = m_args;
  ArcWork& w = NewArcWork(4);
  double x1 = a[0], y1 = a[1], x2 = a[2], y2 = a[3];
  if (kind == 1) {
    x1 += m_curX;
    y1 += m_curY;
    x2 += m_curX;
    y2 += m_curY;
  }
  const int16_t pen = m_penDown;
  if (kind == 2) m_penDown = 1;
  const double x0 = m_curX, y0 = m_curY;

  bool arc = false;
  if ((x0 == x1 && y0 == y1) || (x1 == x2 && y1 == y2)) {
    MoveTo(x0, y0);
    MoveTo(x2, y2);
  } else if (x0 == x2 && y0 == y2) {
    // A full circle with P0 and P1 on its diameter.
    w.centreX = (x0 + x1) / 2.0;
    w.centreY = (y0 + y1) / 2.0;
    w.radiusX = w.radiusY = std::hypot(x1 - x0, y1 - y0) / 2.0;
    const Vec s = Unit(x0 - w.centreX, y0 - w.centreY);
    w.startCos = w.endCos = s.c;
    w.startSin = w.endSin = s.s;
    w.direction = 1;
    w.sweep = 360.0;
    arc = true;
  } else if ((x1 - x0) * (y2 - y0) == (y1 - y0) * (x2 - x0)) {
    MoveTo(x0, y0);  // the points are in a line
    MoveTo(x2, y2);
  } else {
    arc = ArcThroughThreePoints(w, {x0, y0}, {x1, y1}, {x2, y2});
    if (!arc) {
      MoveTo(x0, y0);
      MoveTo(x1, y1);
      MoveTo(x2, y2);
    }
  }
  if (arc) {
    if (w.trueArc) {
      MarkArc();
      SetArcTo(x2, y2);
    } else {
      Flatten();
    }
  }
  m_curX = x2;
  m_curY = y2;
  if (kind == 2) m_penDown = pen;
}

// ---------------------------------------------------------------------------
// Rectangles: EA, ER
// ---------------------------------------------------------------------------

void CRvPlotInterpreter::DoEA(bool relative) {
  if (m_count < 2) return;
  const int16_t pen = m_penDown;
  const double x1 = m_curX, y1 = m_curY;
  const double x2 = relative ? x1 + m_args[0] : m_args[0];
  const double y2 = relative ? y1 + m_args[1] : m_args[1];
  m_penDown = 1;
  MoveTo(x2, y1);
  MoveTo(x2, y2);
  MoveTo(x1, y2);
  MoveTo(x1, y1);
  m_penDown = pen;
}

// ---------------------------------------------------------------------------
// Wedge: EW
// ---------------------------------------------------------------------------

void CRvPlotInterpreter::DoEW() {
  if (m_count < 3) return;
  const double* a = m_args;
  ArcWork& w = NewArcWork(3);
  const int16_t pen = m_penDown;
  const double px = m_curX, py = m_curY;
  double start = std::fmod(a[1], 360.0);
  if (start < 0.0) start += 360.0;
  const double sweep = std::clamp(a[2], -360.0, 360.0);
  Vec s{std::cos(Radians(start)), std::sin(Radians(start))};
  double r = a[0];
  if (r < 0.0) {
    s = {-s.c, -s.s};
    r = -r;
  }
  w.centreX = px;
  w.centreY = py;
  w.radiusX = w.radiusY = r;
  w.startCos = s.c;
  w.startSin = s.s;
  w.direction = SignOf(sweep);
  w.sweep = std::fabs(sweep);
  const Vec e = Rot(s, w.sweep, w.direction);
  w.endCos = e.c;
  w.endSin = e.s;
  const int16_t sideline = w.sweep == 360.0 ? 0 : 1;
  m_penDown = sideline;
  MoveTo(px + r * s.c, py + r * s.s);
  m_penDown = 1;
  Flatten();
  m_penDown = sideline;
  MoveTo(px, py);
  m_penDown = pen;
}

// ---------------------------------------------------------------------------
// Ellipse: ZE
// ---------------------------------------------------------------------------

PlotPoint CRvPlotInterpreter::EllipsePoint(double tDegrees) const {
  const ArcWork& w = m_arc;
  const double a = w.radiusX, b = w.radiusY;
  const double t = Radians(tDegrees);
  const double sa = a * std::sin(t), cb = b * std::cos(t);
  const double R = Divide(a * b, std::sqrt(sa * sa + cb * cb));
  const double u = Radians(tDegrees + w.rotation);
  return {w.centreX + R * std::cos(u), w.centreY + R * std::sin(u)};
}

void CRvPlotInterpreter::DoZE() {
  if (m_count < 2) return;
  const double* a = m_args;
  if (a[0] * a[1] == 0.0) return;
  double rotation = m_count >= 3 ? a[2] : 0.0;
  ArcWork& w = NewArcWork();
  const int16_t pen = m_penDown;
  const double px = m_curX, py = m_curY;
  double ra = std::fabs(a[0]), rb = std::fabs(a[1]);
  if (rb > ra) std::swap(ra, rb);
  double cx = px, cy = py;
  const bool scaling = m_scaling;
  if (scaling) {
    cx *= m_ratioX;
    cy *= m_ratioY;
    m_curX *= m_ratioX;
    m_curY *= m_ratioY;
    ra = std::fabs(ra * m_ratioX);
    rb = std::fabs(rb * m_ratioY);
    if (m_ratioX < 0.0) rotation += 90.0;
    if (m_ratioY < 0.0) rotation += m_ratioX < 0.0 ? 90.0 : 270.0;
  }
  m_penDown = 0;
  m_scaling = false;
  const double rr = Radians(rotation);
  MoveTo(cx + ra * std::cos(rr), cy + ra * std::sin(rr));
  m_penDown = 1;
  w.centreX = cx;
  w.centreY = cy;
  w.radiusX = ra;
  w.radiusY = rb;
  w.rotation = rotation;
  w.trueArc = true;
  w.ellipse = true;
  w.sweep = 360.0;
  w.direction = 1;
  Flatten();
  m_penDown = 0;
  m_scaling = scaling;
  MoveTo(px, py);
  m_penDown = pen;
}

// ---------------------------------------------------------------------------
// Flattening
// ---------------------------------------------------------------------------

bool CRvPlotInterpreter::FlattenEllipseBands(double chord) {
  ArcWork& w = m_arc;
  const double a = w.radiusX, b = w.radiusY;
  const double ratio = Divide(2.0 * b, a);
  const double k = ratio * ratio;
  const double d = chord / 2.0;
  const double s = Degrees(std::atan(k * std::tan(Radians(d))));
  double T1 = Degrees(std::atan(k * 1.7320500808));
  double T2 = Degrees(std::atan(k * 5.67128182));
  double T3 = Degrees(std::atan(k * 17.16933693));
  double T4 = Degrees(std::atan(k * 51.55973722));
  if (T4 + d > 90.0) T4 = 90.0;
  const double width[5] = {T1, T2 - T1, T3 - T2, T4 - T3, 90.0 - T4};
  const double q = Divide(width[0], s);
  if (!(s > 0.0) || !std::isfinite(q)) return false;
  static constexpr double kShare[5] = {1.0, 0.666666666, 0.222222222, 0.074074074, 0.037037037};
  double count[5], step[5];
  for (int j = 0; j < 5; ++j) {
    if (width[j] == 0.0) {
      count[j] = 0.0;
      step[j] = 0.0;
      continue;
    }
    double n = std::trunc(q * kShare[j]);
    if (n < 1.0) n = 1.0;
    step[j] = width[j] / n;
    if (step[j] > d) {
      n = std::trunc(width[j] / d);
      step[j] = width[j] / n;
    }
    count[j] = n;
  }
  // The first band steps by the first step size brought through the limits
  // and the whole-count rule of a 360 degree sweep.
  double first = step[0];
  if (first >= 180.0) {
    first = 120.0;
  } else if (!(first > 0.05)) {
    first = 0.05;
  }
  const double whole = std::ceil(360.0 / first);
  if (whole != 360.0 / first) first = 360.0 / whole;

  static constexpr int kBandClass[20] = {1, 2, 3, 4, 5, 5, 4, 3, 2, 1, 1, 2, 3, 4, 5, 5, 4, 3, 2, 1};
  double total = 0.0;
  for (int band : kBandClass) total += count[band - 1];
  if (!(total >= 1.0) || total > double(kMaxCurveMoves)) return false;
  w.chord = first;
  w.chordCount = int32_t(total);

  int32_t emitted = 0;
  double t = 0.0;
  for (int i = 0; i < 20; ++i) {
    const int c = kBandClass[i] - 1;
    const double by = i == 0 ? first : step[c];
    for (int32_t j = 0; j < int32_t(count[c]); ++j) {
      t += by;
      if (emitted < w.chordCount - 1) {
        const PlotPoint p = EllipsePoint(t);
        MoveTo(p.x, p.y);
        ++emitted;
      }
    }
  }
  const PlotPoint end = EllipsePoint(0.0);  // the ellipse ends at its start
  MoveTo(end.x, end.y);
  MoveTo(end.x, end.y);
  return true;
}

void CRvPlotInterpreter::Flatten() {
  ArcWork& w = m_arc;
  if (w.sweep == 0.0 || w.radiusX == 0.0 || w.radiusY == 0.0) return;
  if (!std::isfinite(w.sweep)) return;

  // A plain arc under scaling is worked out in plotter units.
  ArcFrame f{w.centreX, w.centreY, w.radiusX, w.radiusY};
  bool unscale = false;
  if (m_scaling && !w.ellipse && !w.spiral) {
    f = {f.cx * m_ratioX, f.cy * m_ratioY, f.rx * m_ratioX, f.ry * m_ratioY};
    m_curX *= m_ratioX;
    m_curY *= m_ratioY;
    m_scaling = false;
    unscale = true;
  }

  bool bands = false;
  double chord = ChordAngle(f, bands);
  if (w.ellipse) {
    if (chord == 0.0) chord = 1.0;
    if (bands && !(Divide(f.ry, f.rx) > 0.5) && FlattenEllipseBands(chord)) return;
  }
  EmitChords(f, chord);

  if (unscale) {
    m_scaling = true;
    m_curX = Divide(m_curX, m_ratioX);
    m_curY = Divide(m_curY, m_ratioY);
  }
}

double CRvPlotInterpreter::ChordAngle(const ArcFrame& f, bool& bands) const {
  const ArcWork& w = m_arc;
  double chord = std::fabs(w.chord);
  if (m_chordIsDeviation) {
    const double r = w.radiusX;
    chord = r > chord ? std::min(DeviationAngle(r, chord), 45.0) : 5.0;
  }
  if (!w.trueArc) return chord;
  if (m_ellipseMode == 1) return Divide(360.0, std::max(kFirmwarePi * (f.rx + f.ry) / m_ellipseValue, m_ellipseMinChords));
  const double r = std::max(f.rx, f.ry);
  const double e = m_ellipseMode == 2 ? m_ellipseValue : 0.0;
  if (!(r > e)) return 5.0;
  bands = w.ellipse;
  return DeviationAngle(r, e);
}

void CRvPlotInterpreter::EmitChords(ArcFrame f, double chord) {
  ArcWork& w = m_arc;
  const double sweep = std::fabs(w.sweep);
  if (chord >= 180.0) {
    chord = 120.0;
  } else if (!(chord > 0.05)) {
    chord = 0.05;
  }
  double count;
  if (chord > sweep) {
    chord = sweep;
    count = 1.0;
  } else {
    const double exact = sweep / chord;
    count = std::ceil(exact);
    if (count > double(kMaxCurveMoves)) {
      count = double(kMaxCurveMoves);
      chord = sweep / count;
    } else if (count != exact) {
      chord = sweep / count;
    }
  }
  w.chord = chord;
  w.chordCount = int32_t(count);

  const double grow = w.spiral ? (w.endRadius - f.rx) / count : 0.0;
  const double turn = Radians(w.direction == -1 ? -chord : chord);
  const double k = std::cos(turn), n = std::sin(turn);
  Vec v{w.startCos, w.startSin};
  for (int32_t i = 1; i < w.chordCount; ++i) {
    if (w.ellipse) {
      const PlotPoint p = EllipsePoint(chord * i);
      MoveTo(p.x, p.y);
      continue;
    }
    v = {v.c * k - v.s * n, v.c * n + v.s * k};
    f.rx += grow;
    f.ry += grow;
    MoveTo(f.cx + f.rx * v.c, f.cy + f.ry * v.s);
  }
  PlotPoint end;
  if (w.ellipse) {
    end = EllipsePoint(0.0);
  } else if (w.spiral) {
    end = {f.cx + w.endRadius * w.endCos, f.cy + w.endRadius * w.endSin};
  } else {
    end = {f.cx + f.rx * w.endCos, f.cy + f.ry * w.endSin};
  }
  MoveTo(end.x, end.y);  // the last anchor stands twice
  MoveTo(end.x, end.y);
}

// ---------------------------------------------------------------------------
// Smooth curve: ZS and its step ZD; ellipse flattening ZW
// ---------------------------------------------------------------------------

/// The knots of a smooth curve: points L[0] to L[m - 1] (L[m] repeats the
/// last), T[i] the chord length from L[0] to L[i].
struct SmoothKnots {
  std::array<PlotPoint, 131> L;
  std::array<double, 132> T{};
  int m = 0;
};

namespace {

/// Second derivatives of the natural spline through the knots, for one
/// coordinate.
template <class Coord>
void SolveSpline(const SmoothKnots& k, Coord coord, std::array<double, 132>& M) {
  const auto& T = k.T;
  const int m = k.m;
  std::array<double, 132> B{}, D{};
  auto v = [&](int i) { return coord(k.L[i]); };
  const double h1 = T[2] - T[1];
  B[1] = 2.0;
  D[1] = 6.0 * (T[1] * (v(2) - v(1)) - h1 * (v(1) - v(0))) / (T[1] * T[2] * h1);
  const double u = h1 / T[2];
  for (int i = 2; i <= m - 2; ++i) {
    const double hp = T[i] - T[i - 1], hi = T[i + 1] - T[i], span = T[i + 1] - T[i - 1];
    const double g = hp / (span * B[i - 1]);
    B[i] = 2.0 - u * g;
    D[i] = 6.0 * (hp * (v(i + 1) - v(i)) - hi * (v(i) - v(i - 1))) / (hp * span * hi) - D[i - 1] * g;
  }
  M[m - 2] = D[m - 2] / B[m - 2];
  for (int i = m - 3; i >= 1; --i) {
    const double hi = T[i + 1] - T[i];
    M[i] = (D[i] - hi * M[i + 1] / (T[i + 1] - T[i - 1])) / B[i];
  }
}

}  // namespace

void CRvPlotInterpreter::DoZS() {
  const int pairs = std::min(m_count / 2, 128);
  if (pairs < 2) return;
  const int n = pairs - 1;
  const double* a = m_args;
  const int16_t pen = m_penDown;
  const PlotPoint last{a[2 * n], a[2 * n + 1]};
  m_penDown = 1;
  const bool scaling = m_scaling;
  const double sx = scaling ? m_ratioX : 1.0, sy = scaling ? m_ratioY : 1.0;
  std::array<PlotPoint, 128> P;
  for (int i = 0; i < pairs; ++i) P[i] = {a[2 * i] * sx, a[2 * i + 1] * sy};
  m_curX *= sx;
  m_curY *= sy;
  m_scaling = false;

  // The point list: lead-in, position, then the pairs, without repeats.
  SmoothKnots k;
  int size = 0;
  k.L[size++] = P[0];
  k.L[size++] = {m_curX, m_curY};
  for (int i = 1; i <= n; ++i) {
    const PlotPoint& b = k.L[size - 1];
    if (P[i].x != b.x || P[i].y != b.y) k.L[size++] = P[i];
  }
  if (size >= 3 && k.L[0].x == k.L[1].x && k.L[0].y == k.L[1].y) {
    k.L[0] = {k.L[1].x - (k.L[2].x - k.L[1].x), k.L[1].y - (k.L[2].y - k.L[1].y)};  // the second point mirrored
  }
  k.m = size;
  bool polyline = k.m < 4;
  if (!polyline) {
    k.L[k.m] = k.L[k.m - 1];
    for (int i = 1; i <= k.m; ++i) k.T[i] = k.T[i - 1] + std::hypot(k.L[i].x - k.L[i - 1].x, k.L[i].y - k.L[i - 1].y);
    polyline = !std::isfinite(k.T[k.m]);
  }
  if (polyline) {
    for (int i = 1; i <= n; ++i) MoveTo(P[i].x, P[i].y);
  } else {
    DrawSmoothKnots(k);
  }
  m_scaling = scaling;
  m_curX = last.x;
  m_curY = last.y;
  m_penDown = pen;
}

bool CRvPlotInterpreter::SmoothSteps(const SmoothKnots& k, std::array<double, 132>& step) const {
  int shortSpans = 0;
  double estimate = 0.0;
  for (int i = 1; i <= k.m; ++i) {
    const double h = k.T[i] - k.T[i - 1];
    double s;
    if (m_curveMode == 2) {
      s = h * m_curveStep;
      if (s < 16.0) {
        s = 16.0;
        ++shortSpans;
      }
    } else if (m_curveMode == 1) {
      s = m_curveStep;
    } else {
      // Without a step of its own the curve steps as if the step were 20
      // plotter units: a sixteenth of the span, kept within 20 and 40.
      const double base = m_curveStep > 0.0 ? m_curveStep : 20.0;
      s = std::clamp(h / 16.0, base, 2.0 * base);
    }
    step[i] = s;
    if (s > 0.0) estimate += h / s;
  }
  if (estimate > double(kMaxCurveMoves)) {
    const double widen = estimate / double(kMaxCurveMoves);
    for (int i = 1; i <= k.m; ++i) step[i] *= widen;
  }
  return shortSpans >= 8;
}

void CRvPlotInterpreter::DrawSmoothKnots(const SmoothKnots& k) {
  const auto& T = k.T;
  const int m = k.m;
  std::array<double, 132> step{};
  const bool fine = SmoothSteps(k, step);
  std::array<double, 132> Mx{}, My{};
  SolveSpline(k, [](const PlotPoint& p) { return p.x; }, Mx);
  SolveSpline(k, [](const PlotPoint& p) { return p.y; }, My);

  auto pointAt = [&](int i, double t) {
    const double h = T[i] - T[i - 1];
    if (!(h > 0.0)) return k.L[i];
    const double ea = T[i] - t, eb = t - T[i - 1];
    auto f = [&](const std::array<double, 132>& M, double v0, double v1) {
      return ((M[i - 1] / 6.0) * (ea * ea - h * h) + v0) * ea / h + ((M[i] / 6.0) * (eb * eb - h * h) + v1) * eb / h;
    };
    return PlotPoint{f(Mx, k.L[i - 1].x, k.L[i].x), f(My, k.L[i - 1].y, k.L[i].y)};
  };

  const double limit = T[m] - 10.0;
  double t = T[1];
  if (fine || T[1] > limit) t = T[1] + 10.0;
  int i = 1;
  bool entered = false;
  int32_t moves = 0;
  while (i <= m) {
    if (t > T[i]) {
      ++i;
      entered = true;
      continue;
    }
    if (t > limit) break;
    const PlotPoint p = pointAt(i, t);
    MoveTo(p.x, p.y);
    // Entering a new span, the step is the mean of the new span's and the
    // one before.
    const double advance = entered ? (step[i] + step[i - 1]) / 2.0 : step[i];
    entered = false;
    const double next = t + advance;
    if (!(next > t) || ++moves >= 2 * kMaxCurveMoves) break;  // no progress left
    t = next;
  }
  MoveTo(k.L[m - 1].x, k.L[m - 1].y);
}

void CRvPlotInterpreter::DoZD() {
  if (m_count != 2) return;
  const double first = m_args[0], v = m_args[1];
  if (first != 0.0 && first != 1.0) return;
  if (v == 0.0) {
    m_curveMode = 0;
    m_curveStep = 0.0;
    return;
  }
  const double n = std::max(1.0, std::floor(std::fabs(v) * 10.0));
  if (first == 0.0) {
    m_curveStep = n * 20.0;
    m_curveMode = 1;
  } else {
    m_curveStep = n / 1000.0;
    m_curveMode = 2;
  }
}

void CRvPlotInterpreter::DoZW() {
  const double* a = m_args;
  if (m_count != 2 && m_count != 3) {
    m_ellipseMode = 0;
    return;
  }
  if (m_count == 3 && a[2] != 0.0) {
    m_ellipseMode = 2;
    m_ellipseValue = a[2] * 200.0;
    return;
  }
  if (a[0] != 0.0 && a[1] != 0.0) {
    m_ellipseMode = 1;
    m_ellipseMinChords = 360.0 / std::fabs(a[0]);
    m_ellipseValue = std::max(1.0, std::floor(std::fabs(a[1]) * 10.0)) * 20.0;
  } else {
    m_ellipseMode = 0;
  }
}

// ---------------------------------------------------------------------------
// Single-letter arcs: W, ], *
// ---------------------------------------------------------------------------

void CRvPlotInterpreter::DoW() {
  if (m_count < 6) return;
  const double* a = m_args;
  ArcWork& w = NewArcWork();
  const double x = a[0], y = a[1], r1 = a[2], r2 = a[3];
  const double t1 = a[4] / 10.0, t2 = a[5] / 10.0;
  w.centreX = x;
  w.centreY = y;
  w.radiusX = w.radiusY = r1;
  w.endRadius = r2;
  const double n1 = Radians(Normal(t1)), n2 = Radians(Normal(t2));
  w.startCos = std::cos(n1);
  w.startSin = std::sin(n1);
  w.endCos = std::cos(n2);
  w.endSin = std::sin(n2);
  w.direction = SignOf(t2 - t1);
  if (w.direction == 0) return;
  w.sweep = std::fabs(t2 - t1);  // whole turns are kept
  const double sx = x + r1 * w.startCos, sy = y + r1 * w.startSin;
  if (std::trunc(sx) != std::trunc(m_curX) || std::trunc(sy) != std::trunc(m_curY)) {
    m_penDown = 0;
    MoveTo(sx, sy);
  }
  m_penDown = 1;
  w.trueArc = true;
  w.spiral = true;
  // Before any '&' the factors are 0 and their quotients not numbers, so
  // the test fails and the arc is flattened.
  const bool sameFactor = Divide(m_factor[0], m_factor[2]) == Divide(m_factor[1], m_factor[2]);
  if (sameFactor && r1 == r2) {
    MarkArc();
  } else {
    Flatten();
  }
  if (w.sweep != 360.0) {
    m_curX = x + r1 * w.endCos;
    m_curY = y + r1 * w.endSin;
  }
  if (m_arcPending) SetArcTo(m_curX, m_curY);
  w.spiral = false;
}

void CRvPlotInterpreter::DoBracket() {
  if (m_count < 4) return;
  const double* a = m_args;
  ArcWork& w = NewArcWork();
  const double r1 = a[0], r2 = a[1];
  const double t1 = a[2] / 10.0, t2 = a[3] / 10.0;
  const double n1 = Radians(Normal(t1)), n2 = Radians(Normal(t2));
  w.startCos = std::cos(n1);
  w.startSin = std::sin(n1);
  w.endCos = std::cos(n2);
  w.endSin = std::sin(n2);
  // The centre lies so that the position is at radius r1 and angle t1.
  w.centreX = m_curX - r1 * w.startCos;
  w.centreY = m_curY - r1 * w.startSin;
  w.radiusX = w.radiusY = r1;
  w.endRadius = r2;
  w.direction = SignOf(t2 - t1);
  if (w.direction == 0) return;
  w.sweep = std::fabs(t2 - t1);
  m_penDown = 1;
  w.trueArc = true;
  w.spiral = true;
  MarkArc();
  if (w.sweep != 360.0) {
    m_curX = w.centreX + r1 * w.endCos;
    m_curY = w.centreY + r1 * w.endSin;
  }
  SetArcTo(m_curX, m_curY);
  w.spiral = false;
}

void CRvPlotInterpreter::DoStar() {
  if (m_count < 7) return;
  const double* a = m_args;
  if (a[0] != 1.0 && a[0] != -1.0) return;
  ArcWork& w = NewArcWork();
  const double x1 = a[1], y1 = a[2], x2 = a[3], y2 = a[4], cx = a[5], cy = a[6];
  w.direction = a[0] == 1.0 ? -1 : 1;
  w.centreX = cx;
  w.centreY = cy;
  w.radiusX = w.radiusY = std::hypot(x1 - cx, y1 - cy);
  const Vec s = Unit(x1 - cx, y1 - cy), e = Unit(x2 - cx, y2 - cy);
  w.startCos = s.c;
  w.startSin = s.s;
  w.endCos = e.c;
  w.endSin = e.s;
  const double sweep = AngleOf(x2 - cx, y2 - cy) - AngleOf(x1 - cx, y1 - cy);
  w.sweep = sweep == 0.0 ? 360.0 : SweepToward(sweep, w.direction);
  if (std::trunc(x1) != std::trunc(m_curX) || std::trunc(y1) != std::trunc(m_curY)) {
    m_penDown = 0;
    MoveTo(x1, y1);
  }
  m_penDown = 1;
  MarkArc();
  SetArcTo(x2, y2);
  m_curX = x2;
  m_curY = y2;
}

}  // namespace rv
