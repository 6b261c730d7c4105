#include "geometry/straight_outline.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

#include "geometry/affine.h"
#include "geometry/curve_core.h"
#include "geometry/judge_polyline.h"

namespace rv {

namespace {

// Coordinates beyond this are left to the polyline itself.
constexpr double kLargestCoordinate = 1e12;
// Rounding unit of a double.
constexpr double kUnit = std::numeric_limits<double>::epsilon() / 2;

// Whether q lies within `near` of the segment a-b. The arithmetic errs by a
// few rounding units of the coordinates, far less than the half of `near`
// that the test allows on top.
bool PointNear(const RVPOINT& q, const RVPOINT& a, const RVPOINT& b, double near) {
  const double limit = 1.5 * near;
  if (q.x < std::min(a.x, b.x) - limit || q.x > std::max(a.x, b.x) + limit || q.y < std::min(a.y, b.y) - limit ||
      q.y > std::max(a.y, b.y) + limit) {
    return false;
  }
  const double ex = b.x - a.x, ey = b.y - a.y;
  const double qx = q.x - a.x, qy = q.y - a.y;
  const double ee = ex * ex + ey * ey;
  double t = ee > 0 ? (qx * ex + qy * ey) / ee : 0.0;
  t = std::clamp(t, 0.0, 1.0);
  const double dx = qx - t * ex, dy = qy - t * ey;
  return dx * dx + dy * dy <= limit * limit;
}

// Side of r from the line p-q: +1 left, -1 right, 0 when the arithmetic
// can't tell.
int Side(const RVPOINT& p, const RVPOINT& q, const RVPOINT& r) {
  const double ex = q.x - p.x, ey = q.y - p.y;
  const double fx = r.x - p.x, fy = r.y - p.y;
  const double cross = ex * fy - ey * fx;
  const double error = 1e-14 * (std::fabs(ex * fy) + std::fabs(ey * fx));
  if (cross > error) return 1;
  if (cross < -error) return -1;
  return 0;
}

// How the edge a-b, far from q, crosses the ray from q towards -x: -1 up
// across it, 1 down across it, 0 not at all. A point on q's height counts
// as above it.
int RayCrossing(const RVPOINT& a, const RVPOINT& b, const RVPOINT& q) {
  const double uy = a.y - q.y, vy = b.y - q.y;
  if ((uy < 0.0) == (vy < 0.0)) return 0;
  const double cross = (a.x - q.x) * (b.y - a.y) - (a.y - q.y) * (b.x - a.x);
  if (uy < 0.0 && cross < 0.0) return -1;
  if (uy >= 0.0 && cross > 0.0) return 1;
  return 0;
}

}  // namespace

bool StraightOutline::Make(const RVBEZIERPOINT* records, int32_t count, int32_t start, double& areaLow,
                           double& areaHigh) {
  if (count <= 0) return false;
  m_records = records;
  m_count = uint32_t(count);
  m_start = uint32_t(start % count + (start % count < 0 ? count : 0));
  m_bands.reset();
  double length = 0, chords = 0, sum = 0;
  m_scale = 0;
  const RVPOINT& first = Corner(0);
  m_box = PlainBox::At(first.x, first.y);
  for (std::size_t k = 0; k < m_count; ++k) {
    const RVPOINT& a = Corner(k);
    const RVPOINT& b = Corner(k + 1);
    // Every record is the start of one segment and the end of another.
    const RVBEZIERPOINT& record = m_records[k];
    if (!SamePoint(record.in, record.anchor) || !SamePoint(record.out, record.anchor)) return false;
    if (!(std::fabs(a.x) <= kLargestCoordinate && std::fabs(a.y) <= kLargestCoordinate)) return false;
    // The polyline maps its anchors, which turns -0 into 0, and the sign of
    // a zero can decide an angle of pi.
    if ((a.x == 0.0 && std::signbit(a.x)) || (a.y == 0.0 && std::signbit(a.y))) return false;
    // A piece is cut in halves while it is 2 units or longer, so a segment
    // gives fewer than twice its length plus one chords.
    const double d = Distance(a, b);
    if (4.0 * (d + 2.0) >= double(kMaxFlattenPoints)) return false;
    length += d;
    chords += 4.0 * (d + 2.0);
    sum += (b.x - a.x) * (b.y + a.y) * 0.5;
    m_scale = std::max({m_scale, std::fabs(a.x), std::fabs(a.y)});
    m_box.Take(a.x, a.y);
  }
  // The polyline's sum differs from the polygon's by the thin areas between
  // each segment and its chords, and by the rounding of both sums.
  const double magnitude = (m_scale + 1.0) * (length + 1.0);
  const double slack = 4.0 * kUnit * magnitude * (chords + double(m_count) + 8.0) + 4.0 * Tolerance() * (length + 1.0);
  areaLow = std::max(0.0, std::fabs(sum) - slack);
  areaHigh = std::fabs(sum) + slack;
  m_chords = chords;
  return true;
}

PlainBox StraightOutline::Reach() const {
  return m_box.Grown(2.0 * Tolerance() + 2e-9 * ((m_box.right - m_box.left) + (m_box.top - m_box.bottom) + 1.0));
}

namespace {

// Outlines of up to this many edges share one band that lists them all: the
// short lines and notches asked most need no lookup of their own.
constexpr uint32_t kSharedBands = 4;

const EdgeBands& WholeBands(uint32_t edges) {
  static const auto kBands = [] {
    std::array<EdgeBands, kSharedBands + 1> bands;
    for (uint32_t n = 1; n <= kSharedBands; ++n) {
      bands[n].Make(0.0, 0.0, 0.0, n, [&](auto&& f) {
        for (std::size_t k = 0; k < n; ++k) f(k, RVPOINT{}, RVPOINT{});
      });
    }
    return bands;
  }();
  return kBands[edges];
}

}  // namespace

const EdgeBands& StraightOutline::Bands() const {
  if (m_count <= kSharedBands) return WholeBands(m_count);
  if (!m_bands) {
    m_bands = std::make_unique<EdgeBands>();
    m_bands->Make(m_box.bottom, m_box.top, 0.0, m_count, [&](auto&& f) {
      for (std::size_t k = 0; k < m_count; ++k) f(k, Corner(k), Corner(k + 1));
    });
  }
  return *m_bands;
}

template <class F>
bool StraightOutline::AnyEdgeNear(double low, double high, F&& f) const {
  const EdgeBands& bands = Bands();
  const std::size_t last = bands.BandOf(high);
  for (std::size_t band = bands.BandOf(low); band <= last; ++band) {
    for (const uint32_t* e = bands.begin(band); e != bands.end(band); ++e) {
      if (f(std::size_t(*e))) return true;
    }
  }
  return false;
}

int StraightOutline::Winds(const RVPOINT& q, double near) const {
  if (!m_box.Grown(near).Holds(q.x, q.y)) return 0;
  // The edges near q and those that cross its horizontal: one walk when
  // they all sit in q's band.
  const EdgeBands& bands = Bands();
  const std::size_t band = bands.BandOf(q.y);
  auto nearQ = [&](std::size_t k) { return PointNear(q, Corner(k), Corner(k + 1), near); };
  const bool oneBand = bands.BandOf(q.y - near) == band && bands.BandOf(q.y + near) == band;
  if (!oneBand && AnyEdgeNear(q.y - near, q.y + near, nearQ)) return -1;
  int winding = 0;
  for (const uint32_t k : EdgesAt(q.y)) {
    if (oneBand && nearQ(k)) return -1;
    winding += RayCrossing(Corner(k), Corner(k + 1), q);
  }
  // Far from every edge: the crossings of its ray count.
  return winding != 0 ? 1 : 0;
}

template <class F>
bool StraightOutline::AnyEdgeMeeting(const PlainBox& box, F&& f) const {
  if (!m_box.Meets(box)) return false;
  return AnyEdgeNear(box.bottom, box.top, [&](std::size_t k) {
    const RVPOINT& c = Corner(k);
    const RVPOINT& d = Corner(k + 1);
    PlainBox edge = PlainBox::At(c.x, c.y);
    edge.Take(d.x, d.y);
    return edge.Meets(box) && f(c, d);
  });
}

bool StraightOutline::Touches(const RVPOINT& a, const RVPOINT& b, double near) const {
  // Boxes grown by twice `near`: a corner that Winds finds near an edge is
  // found here too.
  PlainBox box = PlainBox::At(a.x, a.y);
  box.Take(b.x, b.y);
  return AnyEdgeMeeting(box.Grown(2.0 * near), [&](const RVPOINT& c, const RVPOINT& d) {
    if (PointNear(a, c, d, near) || PointNear(b, c, d, near) || PointNear(c, a, b, near) ||
        PointNear(d, a, b, near)) {
      return true;
    }
    const int s1 = Side(c, d, a), s2 = Side(c, d, b), s3 = Side(a, b, c), s4 = Side(a, b, d);
    if (s1 == 0 || s2 == 0 || s3 == 0 || s4 == 0) return true;
    return s1 != s2 && s3 != s4;
  });
}

bool StraightOutline::MeetsBox(const PlainBox& box) const {
  return AnyEdgeMeeting(box, [](const RVPOINT&, const RVPOINT&) { return true; });
}

void StraightOutline::SegmentPoints(std::size_t k, std::vector<RVPOINT>& out) const {
  // The handles of a straight segment sit on their anchors.
  const RVBEZIERPOINT a{Corner(k), Corner(k), Corner(k), 0};
  const RVBEZIERPOINT b{Corner(k + 1), Corner(k + 1), Corner(k + 1), 0};
  out.clear();
  CurveToPoints(a, b, kJudgeLength, kJudgeTolerance, kJudgeMode, out);
}

int StraightOutline::ChordsInside(const RVPOINT& q, double near) const {
  // The winding angle is the sum of the angles that the chords span seen
  // from q. The angle of a chord u-v that passes q at a distance is
  // phi(v) - phi(u) + 2 pi k, phi the direction from q and k the turn by
  // which it crosses the ray from q towards -x; over a segment far from q
  // its chords span what the segment spans, and over the closed polygon the
  // phi terms cancel, also within a segment. So only the chords near q take
  // their own angle, as the polyline's test takes it, less their phi terms;
  // the rest give their turns.
  auto phi = [&](const RVPOINT& p) { return std::atan2(p.y - q.y, p.x - q.x); };
  long turns = 0;
  auto turn = [&](const RVPOINT& a, const RVPOINT& b) { turns += RayCrossing(a, b, q); };
  std::vector<uint32_t> nearEdges;
  AnyEdgeNear(q.y - near, q.y + near, [&](std::size_t k) {
    if (PointNear(q, Corner(k), Corner(k + 1), near)) nearEdges.push_back(uint32_t(k));
    return false;
  });
  std::sort(nearEdges.begin(), nearEdges.end());
  nearEdges.erase(std::unique(nearEdges.begin(), nearEdges.end()), nearEdges.end());
  for (const uint32_t k : EdgesAt(q.y)) {
    if (!std::binary_search(nearEdges.begin(), nearEdges.end(), k)) turn(Corner(k), Corner(k + 1));
  }
  double sum = 0.0;
  for (uint32_t k : nearEdges) {
    // The chords' ends run along the segment at least a unit apart, so their
    // positions along it rise. Only the chords whose span comes within twice
    // `near` of q's position can be near q; a piece of the halving before or
    // after them is far from q all along and crosses the ray as its ends
    // joined straight do, so it isn't halved any further.
    const RVPOINT& from = Corner(k);
    const RVPOINT& to = Corner(k + 1);
    const double dx = to.x - from.x, dy = to.y - from.y;
    auto along = [&](const RVPOINT& p) { return (p.x - from.x) * dx + (p.y - from.y) * dy; };
    const double reach = 2.0 * near * std::sqrt(dx * dx + dy * dy);
    const double low = along(q) - reach, high = along(q) + reach;
    // The handles of a straight segment sit on their anchors.
    const RVBEZIERPOINT a{from, from, from, 0};
    const RVBEZIERPOINT b{to, to, to, 0};
    FlattenPruned(
        a, b, kJudgeLength, kJudgeTolerance, kJudgeMode,
        [&](const RVPOINT& u, const RVPOINT& v) { return along(v) <= low || along(u) >= high; }, turn,
        [&](const RVPOINT& u, const RVPOINT& v) {
          if (PointNear(q, u, v, near)) {
            sum += AngleOfThreePoints(u, q, v) - (phi(v) - phi(u));
          } else {
            turn(u, v);
          }
        });
  }
  sum += 2.0 * std::numbers::pi * double(turns);
  // The polyline's own sum differs from this one by the rounding of its
  // angles and of its partial sums.
  const double terms = m_chords + double(CornerCount()) + 8.0;
  const double slack = 8.0 * kUnit * std::numbers::pi * terms * (terms + 4.0);
  if (std::fabs(sum) > kHalfTurnF + slack) return 1;
  if (std::fabs(sum) < kHalfTurnF - slack) return 0;
  return -1;
}

}  // namespace rv
