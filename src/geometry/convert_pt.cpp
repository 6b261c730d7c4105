#include "geometry/convert_pt.h"

#include <array>
#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <utility>
#include <vector>

#include "frame/frame.h"
#include "geometry/affine.h"
#include "geometry/curve_core.h"

namespace rv {
namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kTwoPi = 6.283185307179586;

RVCURVEPOINT BezierRecord(const RVPOINT& anchor, const RVPOINT& in, const RVPOINT& out) {
  RVCURVEPOINT r{};
  r.kind = kRecordBezier;
  r.bezier.anchor = anchor;
  r.bezier.in = in;
  r.bezier.out = out;
  r.bezier.flags = 0;
  return r;
}

// ---------------------------------------------------------------------------
// Arcs to Bezier points

// Rounds half away from zero to 0.001.
double Round3(double v) {
  if (v > 0) {
    v += 0.0005;
  } else if (v < 0) {
    v -= 0.0005;
  }
  return std::trunc(v * 1000.0) / 1000.0;
}

RVPOINT Round3(const RVPOINT& p) { return RVPOINT{Round3(p.x), Round3(p.y)}; }

// Unit tangent of the circle about `centre` through p in the direction of
// travel; (0, 0) when p is the centre itself.
RVPOINT ArcTangent(const RVPOINT& p, const RVPOINT& centre, bool counterClockwise) {
  double x = -(p.y - centre.y), y = p.x - centre.x;
  const double length = std::sqrt(x * x + y * y);
  if (length == 0.0) return RVPOINT{0.0, 0.0};
  x /= length;
  y /= length;
  return counterClockwise ? RVPOINT{x, y} : RVPOINT{-x, -y};
}

// ---------------------------------------------------------------------------
// Arc fitting in single precision

struct FPoint {
  float x, y;
};

// A cubic piece: start, start handle, end handle, end.
struct FCurve {
  FPoint p[4];
};

float Length(float dx, float dy) { return std::sqrt(dx * dx + dy * dy); }

// A coordinate of the curve to fit: its single-precision value times 1000,
// plus 0.5 in double precision, truncated, divided by 1000.
float RoundToMilli(double c) {
  const double scaled = c * 1000.0;
  if (!(std::fabs(scaled) <= double(FLT_MAX))) Raise(kErrCurveArgument);
  const float single = static_cast<float>(scaled);
  const double whole = std::trunc(double(single) + 0.5);
  return static_cast<float>(whole / 1000.0);
}

// De Casteljau split in single precision, as rv::DivideBezier does it.
void SplitSingle(const FCurve& c, float t, FCurve* left, FCurve* right) {
  const float s = 1.0f - t;
  const FPoint p0 = c.p[0], p1 = c.p[1], p2 = c.p[2], p3 = c.p[3];
  auto mix3 = [](const FPoint& p, float wp, const FPoint& q, float wq, const FPoint& r, float wr) {
    return FPoint{p.x * wp + q.x * wq + r.x * wr, p.y * wp + q.y * wq + r.y * wr};
  };
  const FPoint midIn = mix3(p0, s * s, p1, 2 * t * s, p2, t * t);
  const FPoint mid{p0.x * s * s * s + p1.x * 3 * s * s * t + p2.x * 3 * s * t * t + p3.x * t * t * t,
                   p0.y * s * s * s + p1.y * 3 * s * s * t + p2.y * 3 * s * t * t + p3.y * t * t * t};
  const FPoint midOut = mix3(p1, s * s, p2, 2 * t * s, p3, t * t);
  if (left) *left = FCurve{{p0, FPoint{p0.x * s + p1.x * t, p0.y * s + p1.y * t}, midIn, mid}};
  if (right) *right = FCurve{{mid, midOut, FPoint{p2.x * s + p3.x * t, p2.y * s + p3.y * t}, p3}};
}

enum class Fit { kLine, kArc, kRefused };

// Judges one piece: a line, an arc (then *arc is filled), or refused.
Fit FitPiece(const FCurve& k, double scale, RVCURVEPOINT* arc) {
  const FPoint P0 = k.p[0], P1 = k.p[1], P2 = k.p[2], P3 = k.p[3];
  const FPoint M{(P0.x + 3 * P1.x + 3 * P2.x + P3.x) / 8, (P0.y + 3 * P1.y + 3 * P2.y + P3.y) / 8};
  const float c = Length(P3.x - P0.x, P3.y - P0.y);
  const float p = Length(M.x - P0.x, M.y - P0.y);
  const float q = Length(P3.x - M.x, P3.y - M.y);
  const float h1 = Length(P0.x - P1.x, P0.y - P1.y);
  const float h2 = Length(P2.x - P3.x, P2.y - P3.y);

  if (h1 < 0.35 && h2 < 0.35) return Fit::kLine;
  if (p < 0.7) return Fit::kLine;

  // Both handles must lie on the same side of the chord.
  const FPoint w{P0.x - P3.x, P0.y - P3.y};
  const float s1 = w.x * (P1.y - P0.y) + w.y * (P0.x - P1.x);
  const float s2 = w.x * (P2.y - P0.y) + w.y * (P0.x - P2.x);
  if (s1 * s2 <= 0) return Fit::kRefused;

  // Circle through start, middle and end: the angle at the middle.
  const float beta = static_cast<float>(std::acos(double((p * p + q * q - c * c) / (2 * p * q))));
  if (beta < 0 || beta > 3.14159265) return Fit::kRefused;
  const float R = c / (2 * static_cast<float>(std::sin(double(beta))));

  // Centres seen from both ends, along the normals of the handles.
  const FPoint e{P0.x - P1.x, P0.y - P1.y};
  const FPoint f{P2.x - P3.x, P2.y - P3.y};
  FPoint C1, C2;
  int16_t direction;
  if ((M.x - P0.x) / (M.y - P0.y) > (P3.x - P0.x) / (P3.y - P0.y)) {
    C1 = FPoint{P0.x + e.y * R / h1, P0.y + -e.x * R / h1};
    C2 = FPoint{P3.x + f.y * R / h2, P3.y + -f.x * R / h2};
    direction = -1;
  } else {
    C1 = FPoint{P0.x + -e.y * R / h1, P0.y + e.x * R / h1};
    C2 = FPoint{P3.x + -f.y * R / h2, P3.y + f.x * R / h2};
    direction = 1;
  }
  if (!(0.001 * R > Length(C1.x - C2.x, C1.y - C2.y))) return Fit::kRefused;

  *arc = RVCURVEPOINT{};
  arc->kind = kRecordArc;
  arc->arc.startX = P0.x / scale;
  arc->arc.startY = P0.y / scale;
  arc->arc.endX = P3.x / scale;
  arc->arc.endY = P3.y / scale;
  arc->arc.midX = M.x / scale;
  arc->arc.midY = M.y / scale;
  arc->arc.centreX = C1.x / scale;
  arc->arc.centreY = C1.y / scale;
  arc->arc.direction = direction;
  return Fit::kArc;
}

RVBEZIERPOINT ToBezierPoint(const FPoint& anchor, const FPoint& in, const FPoint& out) {
  RVBEZIERPOINT b{};
  b.anchor = RVPOINT{anchor.x, anchor.y};
  b.in = RVPOINT{in.x, in.y};
  b.out = RVPOINT{out.x, out.y};
  return b;
}

// Upper bound of the fitting passes of one curve; pieces halve and advance,
// so ordinary curves stay far below it.
constexpr int kMaxArcPasses = 1 << 20;

void CheckScale(double scale) {
  if (scale == 0.0 || !std::isfinite(scale)) Raise(kErrCurveArgument);
}

}  // namespace

// ---------------------------------------------------------------------------

CurveList CRvConvertPt::TakeList() { return std::move(m_list); }

void CRvConvertPt::AppendPolyline(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b) {
  m_list.push_back(PointRecord(a.anchor));
  FlattenCurve(a, b, m_maxLength, m_tolerance, m_mode, m_list);
  CheckListSize();
}

void CRvConvertPt::CheckListSize() const {
  if (m_list.size() > kMaxRecords) Raise(kErrCurveTooLarge);
}

CurveList CRvConvertPt::ArcToCurves(const RVARCPOINT& arc) {
  m_list.clear();
  double sweep = std::fabs(arc.sweep);
  if (!(sweep > 0.0)) {
    // No sweep (or not a number): a straight piece from `from` to `to`.
    const RVPOINT from = Round3(arc.from), to = Round3(arc.to);
    m_list.push_back(BezierRecord(from, from, from));
    m_list.push_back(BezierRecord(to, to, to));
    return TakeList();
  }
  if (sweep > 360.0) sweep = 360.0;  // at most one full turn
  const int n = int(sweep / 60.0) + (std::fmod(sweep, 60.0) != 0.0 ? 1 : 0);

  const RVPOINT centre = arc.centre;
  const double radius = Distance(centre, arc.from);
  const double phi = sweep / 180.0 * kPi;
  double alpha = std::atan((arc.from.y - centre.y) / (arc.from.x - centre.x));
  if (arc.from.x < centre.x) alpha += kPi;
  if (radius == 0.0) alpha = 0.0;  // `from` on the centre: every anchor is the centre
  const bool ccw = arc.direction == 1;

  std::array<RVPOINT, 7> anchors;
  anchors[0] = Round3(arc.from);
  for (int i = 1; i < n; ++i) {
    const double angle = ccw ? alpha + phi * i / n : alpha - phi * i / n;
    anchors[i] = Round3(RVPOINT{centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle)});
  }
  anchors[n] = Round3(arc.to);

  const double handle = radius * 4.0 * std::tan(phi / n / 4.0) / 3.0;
  for (int i = 0; i <= n; ++i) {
    const RVPOINT p = anchors[i];
    const RVPOINT t = ArcTangent(p, centre, ccw);
    const RVPOINT in = i == 0 ? p : Round3(RVPOINT{p.x - handle * t.x, p.y - handle * t.y});
    const RVPOINT out = i == n ? p : Round3(RVPOINT{p.x + handle * t.x, p.y + handle * t.y});
    m_list.push_back(BezierRecord(p, in, out));
  }
  return TakeList();
}

CurveList CRvConvertPt::CurvesToPoints(const RVBEZIERPOINT* points, int32_t count) {
  m_list.clear();
  // Count first, then fill a list of the exact size: flattening costs less
  // than growing (copying and faulting in) a large result array.
  std::size_t total = 0;
  for (int32_t i = 0; i + 1 < count; ++i) {
    total += 1 + CountFlattenPoints(points[i], points[i + 1], m_maxLength, m_tolerance, m_mode);
    if (total > kMaxRecords) Raise(kErrCurveTooLarge);
  }
  m_list.reserve(total);
  for (int32_t i = 0; i + 1 < count; ++i) AppendPolyline(points[i], points[i + 1]);
  return TakeList();
}

CurveList CRvConvertPt::CurvesToArc(const RVBEZIERPOINT* points, int32_t count, double scale) {
  m_list.clear();
  CheckScale(scale);
  if (count < 2) return TakeList();
  m_mode = 1;
  const RVBEZIERPOINT& a = points[count - 2];
  const RVBEZIERPOINT& b = points[count - 1];
  auto round = [](const RVPOINT& p) { return FPoint{RoundToMilli(p.x), RoundToMilli(p.y)}; };
  const FCurve whole{{round(a.anchor), round(a.out), round(b.in), round(b.anchor)}};

  FCurve piece = whole;
  double lo = 0.0, hi = 1.0;
  for (int pass = 0;; ++pass) {
    if (pass >= kMaxArcPasses) Raise(kErrCurveTooLarge);
    RVCURVEPOINT arc;
    const Fit fit = FitPiece(piece, scale, &arc);
    if (fit == Fit::kRefused) {
      SplitSingle(piece, 0.5f, &piece, nullptr);
      const double next = lo + (hi - lo) * 0.5;
      if (!(next > lo)) Raise(kErrCurveTooLarge);
      hi = next;
      continue;
    }
    if (fit == Fit::kArc) {
      m_list.push_back(arc);
    } else {
      const FPoint* k = piece.p;
      AppendPolyline(ToBezierPoint(k[0], k[0], k[1]), ToBezierPoint(k[3], k[2], k[3]));
      m_list.push_back(PointRecord(RVPOINT{k[3].x, k[3].y}));
    }
    if (hi >= 1.0) break;
    lo = hi;
    hi = 1.0;
    SplitSingle(whole, static_cast<float>(lo), nullptr, &piece);
  }
  return TakeList();
}

CurveList CRvConvertPt::CurvesToSpline(RVBEZIERPOINT* points, int32_t count, double scale) {
  m_list.clear();
  CheckScale(scale);
  if (count < 2) return TakeList();
  m_mode = 1;
  RVBEZIERPOINT& a = points[0];
  RVBEZIERPOINT& b = points[1];

  // Within 0.1 degree of the chord at both ends the curve is a straight line.
  constexpr double kStraight = 0.0017453293005625407;
  if (std::fabs(AngleOfThreePoints(a.out, a.anchor, b.anchor)) <= kStraight &&
      std::fabs(AngleOfThreePoints(b.in, b.anchor, a.anchor)) <= kStraight) {
    a.in = a.out = a.anchor;
    b.in = b.out = b.anchor;
  }

  std::vector<RVPOINT> q;
  CurveToPoints(a, b, m_maxLength, m_tolerance, m_mode, q);
  const std::size_t n = q.size();
  if (n <= 2) {
    for (const RVPOINT& p : q) m_list.push_back(PointRecord(p));
    return TakeList();
  }
  auto scaled = [scale](const RVPOINT& p) { return RVPOINT{p.x / scale, p.y / scale}; };
  std::size_t i = 2;
  for (; i < n; i += 2) {
    RVCURVEPOINT r{};
    r.kind = kRecordSpline;
    if (i == 2) {
      r.spline[0] = scaled(q[0]);
      r.spline[1] = scaled(q[1]);
      r.spline[2] = scaled(q[2]);
    } else {
      // From the second triple on, the first member reaches back behind the
      // end of the triple before.
      r.spline[0] = scaled(q[i - 3]);
      r.spline[1] = scaled(q[i - 1]);
      r.spline[2] = scaled(q[i]);
    }
    m_list.push_back(r);
  }
  if (i == n) m_list.push_back(PointRecord(q[n - 1]));
  return TakeList();
}

int32_t CRvConvertPt::SplineToPoints(const RVPOINT* P, int32_t n, RVPOINT* result) {
  if (n < 0 || n > kMaxSplinePoints) Raise(kErrCurveArgument);
  if (n < 2) return 0;

  // Indexes run from 1 to n as in the caller's array.
  std::array<double, 200> len{};
  std::array<RVPOINT, 200> dir{};
  for (int i = 1; i < n; ++i) {
    const double cx = P[i + 1].x - P[i].x, cy = P[i + 1].y - P[i].y;
    if (cx == 0.0 && cy == 0.0) {
      // A repeated point: the input stands as the result.
      for (int k = 1; k <= n; ++k) result[k - 1] = P[k];
      return n;
    }
    len[i] = std::sqrt(cx * cx + cy * cy);
    dir[i] = RVPOINT{cx / len[i], cy / len[i]};
  }

  // Tangents: a tridiagonal system, every row normalised to a diagonal of 1.
  // upper[i] is the normalised coefficient of T[i+1], rhs[i] the right side.
  std::array<double, 200> upper{};
  std::array<RVPOINT, 200> rhs{};
  upper[1] = 0.5;
  rhs[1] = RVPOINT{1.5 * dir[1].x, 1.5 * dir[1].y};
  for (int i = 2; i < n; ++i) {
    const double b = 1.0 / len[i];
    const double d = 2.0 * (len[i] + len[i - 1]);
    const double pivot = b * d - upper[i - 1];
    upper[i] = b * len[i - 1] / pivot;
    const double rx = 3.0 * (len[i] * dir[i - 1].x + len[i - 1] * dir[i].x);
    const double ry = 3.0 * (len[i] * dir[i - 1].y + len[i - 1] * dir[i].y);
    rhs[i] = RVPOINT{(b * rx - rhs[i - 1].x) / pivot, (b * ry - rhs[i - 1].y) / pivot};
  }
  {
    const double pivot = 1.0 * 2.0 - upper[n - 1];
    rhs[n] = RVPOINT{(3.0 * dir[n - 1].x - rhs[n - 1].x) / pivot, (3.0 * dir[n - 1].y - rhs[n - 1].y) / pivot};
  }
  std::array<RVPOINT, 200> T{};
  T[n] = rhs[n];
  for (int i = n - 1; i >= 1; --i) {
    T[i] = RVPOINT{rhs[i].x - upper[i] * T[i + 1].x, rhs[i].y - upper[i] * T[i + 1].y};
  }

  // Hermite pieces, up to 21 steps a chord.
  int32_t written = 0;
  for (int i = 1; i < n; ++i) {
    double steps = 3.0 * std::trunc(len[i]);
    if (n == 3) steps = std::trunc(1.5 * steps);
    if (!(steps >= 1.0)) steps = 1.0;
    if (steps > 21.0) steps = 21.0;
    const int k = int(steps);
    const RVPOINT A{T[i].x + T[i + 1].x - 2.0 * dir[i].x, T[i].y + T[i + 1].y - 2.0 * dir[i].y};
    const RVPOINT B{dir[i].x - A.x - T[i].x, dir[i].y - A.y - T[i].y};
    for (int j = 1; j <= k; ++j) {
      const double u = double(j) / k;
      result[written++] = RVPOINT{P[i].x + len[i] * (((A.x * u + B.x) * u + T[i].x) * u),
                                  P[i].y + len[i] * (((A.y * u + B.y) * u + T[i].y) * u)};
    }
  }
  return written;
}

double CRvConvertPt::BezierLength(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b) {
  return PolylineLength(a, b, 31000.0, 0.042, 1);
}

void CRvConvertPt::DivideBezierByLength(RVBEZIERPOINT& a, RVBEZIERPOINT& b, double length,
                                        RVBEZIERPOINT& middle) {
  if (length < 0) length = 0;
  if (SamePoint(a.anchor, a.out) && SamePoint(a.anchor, b.in) && SamePoint(a.anchor, b.anchor)) {
    // A curve of no length: every split is the same point; take the middle.
    DivideBezier(a, b, 0.5, middle);
    return;
  }
  RVBEZIERPOINT bestA = a, bestB = b, bestMiddle = middle;
  double bestError = std::numeric_limits<double>::infinity();
  bool haveBest = false;
  double t = 0.5;
  for (int pass = 0; pass < kMaxLengthSearchPasses; ++pass) {
    RVBEZIERPOINT a1 = a, b1 = b, m1 = middle;
    DivideBezier(a1, b1, t, m1);
    const double L = BezierLength(a1, m1);
    const double error = std::fabs(L - length);
    if (length > L) {
      t += t / 2;
    } else {
      t -= t / 2;
    }
    if (error <= 1.0) {
      a = a1;
      b = b1;
      middle = m1;
      return;
    }
    if (!haveBest || error < bestError) {
      bestA = a1;
      bestB = b1;
      bestMiddle = m1;
      bestError = error;
      haveBest = true;
    }
    if (!std::isfinite(t)) break;
  }
  // No pass came within 1.0 (t walked out of range far beyond the curve's
  // end): the pass that came closest.
  a = bestA;
  b = bestB;
  middle = bestMiddle;
}

double CRvConvertPt::AngleOfBezier(const RVBEZIERPOINT& point, const RVBEZIERPOINT& previous,
                                   const RVBEZIERPOINT& next) {
  RVPOINT in = point.in, out = point.out;
  // A handle on its anchor gives no direction: look a little way along the
  // curve instead (t = 0.9 and 0.1 in single precision).
  if (SameCell(in, point.anchor)) in = PointOnCurve(previous, point, 0.8999999761581421);
  if (SameCell(out, point.anchor)) out = PointOnCurve(point, next, 0.10000000149011612);
  double r = AngleOfThreePoints(in, point.anchor, out);
  if (r < 0) r += kTwoPi;
  return r;
}

double CRvConvertPt::CenterAngle(const RVARCPOINT& arc, const RVPOINT& point, bool reverse) {
  if (arc.direction == 0) return 0.0;
  const double dx = point.x - arc.from.x, dy = point.y - arc.from.y;
  const double d2 = dx * dx + dy * dy;
  if (d2 == 0.0) return kTwoPi;
  const RVPOINT c = arc.centre;
  const double cross = (point.y - c.y) * (c.x - arc.from.x) - (c.y - arc.from.y) * (point.x - c.x);
  if (cross == 0.0) return kPi;
  const int v = reverse ? -int(arc.direction) : int(arc.direction);
  return std::fabs(2 * std::atan(2 * cross / d2) + v * kPi);
}

void HandOut(CurveList&& list, RVCURVEPOINT** result, int32_t* count) {
  CurveList owned = std::move(list);
  if (owned.size() > std::size_t(std::numeric_limits<int32_t>::max())) Raise(kErrCurveTooLarge);
  const auto n = int32_t(owned.size());
  *result = owned.Release();
  *count = n;
}

}  // namespace rv
