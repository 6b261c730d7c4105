#include "geometry/judge_shape.h"

#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

#include "geometry/affine.h"
#include "geometry/curve_core.h"

namespace rv {

namespace {

// An edge whose angle seen from the point has |sin| below this is "near":
// rounding could move its atan2 across the +-pi cut, or flip the side of the
// point. Far larger than the rounding of the products (a few 1e-16).
constexpr double kNearSine = 1e-9;
constexpr double kNearSine2 = kNearSine * kNearSine;

}  // namespace

template <class F>
void NestingShape::ForEachEdge(F&& f) const {
  m_line.ForEachEdgeAt([&](std::size_t k) { f(m_line.points[k], m_line.points[k + 1]); });
}

NestingShape::NestingShape(CoarsePolyline line) : m_line(std::move(line)) {
  // Kept while the whole drawing is judged: no room to grow.
  m_line.points.shrink_to_fit();
  m_line.ends.shrink_to_fit();
  const auto& pts = m_line.points;
  if (pts.empty()) return;
  m_box = Box::At(pts[0].x, pts[0].y);
  for (const RVPOINT& p : pts) {
    if (!std::isfinite(p.x) || !std::isfinite(p.y)) {
      m_finite = false;
      return;
    }
    m_box.Take(p.x, p.y);
  }
  // The probes are the first point of each edge.
  bool first = true;
  ForEachEdge([&](const RVPOINT& p, const RVPOINT&) {
    ++m_edgeCount;
    if (first) {
      m_probeBox = Box::At(p.x, p.y);
      first = false;
    }
    m_probeBox.Take(p.x, p.y);
  });
  // Outside the box by more than this, every edge is seen under an angle
  // well away from +-pi, so the angle sum is 0 up to rounding.
  m_margin = 1e-9 * ((m_box.right - m_box.left) + (m_box.top - m_box.bottom));
  if (!std::isfinite(m_margin) || m_edgeCount >= std::numeric_limits<uint32_t>::max() / 16 ||
      pts.size() >= std::numeric_limits<uint32_t>::max()) {
    m_finite = false;  // the plain sum serves
    return;
  }
  // The bands are made when the shape is first asked about a point: most
  // shapes of a drawing never hold another's probes.
}

const EdgeBands& NestingShape::Bands() const {
  if (m_bands.Empty()) {
    // An edge sits in every band that its height touches, widened by far
    // more than the distance at which a point counts as near it; so a
    // point's band holds every edge that crosses its horizontal or that it
    // is near.
    const double widen = 1e-8 * ((m_box.right - m_box.left) + (m_box.top - m_box.bottom));
    m_bands.Make(m_box.bottom, m_box.top, widen, m_edgeCount, [&](auto&& f) {
      m_line.ForEachEdgeAt([&](std::size_t k) { f(k, m_line.points[k], m_line.points[k + 1]); });
    });
  }
  return m_bands;
}

int NestingShape::CrossingInside(const RVPOINT& q) const {
  const EdgeBands& bands = Bands();
  int winding = 0;
  const std::size_t band = bands.BandOf(q.y);
  const RVPOINT* pts = m_line.points.data();
  const uint32_t* edge = bands.begin(band);
  const uint32_t* end = bands.end(band);
  for (; edge != end; ++edge) {
    const RVPOINT& a = pts[*edge];
    const RVPOINT& b = pts[*edge + 1];
    const double ux = a.x - q.x, uy = a.y - q.y;
    const double vx = b.x - q.x, vy = b.y - q.y;
    const double cross = ux * vy - uy * vx;
    const bool upFrom = a.y <= q.y;
    const bool straddles = upFrom != (b.y <= q.y);
    const double uu = ux * ux + uy * uy, vv = vx * vx + vy * vy;
    if (!(cross * cross > kNearSine2 * uu * vv)) {
      // Nearly in line with the point. Harmless only when the edge is seen
      // under a small angle (well below 60 degrees) and doesn't cross the
      // point's horizontal; that also covers an edge of length 0.
      const double dot = ux * vx + uy * vy;
      if (straddles || !(dot > 0.0 && dot * dot > 0.25 * uu * vv)) return -1;
      continue;
    }
    if (!straddles) continue;
    if (upFrom) {
      if (cross > 0) ++winding;  // upward edge with the point on its left
    } else {
      if (cross < 0) --winding;  // downward edge with the point on its right
    }
  }
  return winding != 0 ? 1 : 0;
}

int NestingShape::FastContains(const RVPOINT& q) const {
  if (!m_finite || !std::isfinite(q.x) || !std::isfinite(q.y)) return -1;
  if (q.x < m_box.left - m_margin || q.x > m_box.right + m_margin || q.y < m_box.bottom - m_margin ||
      q.y > m_box.top + m_margin) {
    return 0;
  }
  return CrossingInside(q);
}

int NestingShape::AngleSumInside(const RVPOINT& q) const {
  // The angle of edge a-b seen from q is phi(b) - phi(a) + 2 pi k, with phi
  // the direction from q (atan2, in (-pi, pi]) and k the turn by which the
  // edge crosses phi's cut, the ray from q towards -x. Summed over the closed
  // polyline the phi terms cancel, but for the edges that the rule gives
  // another angle: those through q, or so nearly in line with q that only
  // their own atan2 is trusted; these take their angle as the plain sum
  // does. Only the edges of q's band can cross the cut or be such edges.
  if (!m_finite || !std::isfinite(q.x) || !std::isfinite(q.y) || m_line.points.empty()) return -1;
  const EdgeBands& bands = Bands();
  const RVPOINT* pts = m_line.points.data();
  auto phi = [&](const RVPOINT& p) { return std::atan2(p.y - q.y, p.x - q.x); };
  double sum = 0.0;
  long turns = 0, crossings = 0, own = 0;
  // The phi terms where one edge doesn't start at the end of the one before.
  const RVPOINT* last = nullptr;
  const RVPOINT* first = nullptr;
  for (std::size_t list = 0; list < m_line.ListCount(); ++list) {
    const std::size_t begin = m_line.ListBegin(list), end = m_line.ends[list];
    if (end < begin + 2) continue;
    if (first == nullptr) {
      first = &pts[begin];
    } else if (!SamePoint(*last, pts[begin])) {
      sum += phi(*last) - phi(pts[begin]);
      ++own;
    }
    last = &pts[end - 1];
  }
  if (first == nullptr) return -1;
  if (!SamePoint(*last, *first)) {
    sum += phi(*last) - phi(*first);
    ++own;
  }
  const std::size_t band = bands.BandOf(q.y);
  for (const uint32_t* e = bands.begin(band); e != bands.end(band); ++e) {
    const RVPOINT& a = pts[*e];
    const RVPOINT& b = pts[*e + 1];
    const double ux = a.x - q.x, uy = a.y - q.y;
    const double vx = b.x - q.x, vy = b.y - q.y;
    const double cross = ux * vy - uy * vx;
    if (!(cross * cross > kNearSine2 * (ux * ux + uy * uy) * (vx * vx + vy * vy))) {
      sum += AngleOfThreePoints(a, q, b) - (phi(b) - phi(a));
      ++own;
      continue;
    }
    // Up across the cut left of q turns by -1, down across it by +1.
    if (uy < 0.0 && vy >= 0.0 && cross < 0.0) --turns, ++crossings;
    if (uy >= 0.0 && vy < 0.0 && cross > 0.0) ++turns, ++crossings;
  }
  sum += 2.0 * std::numbers::pi * double(turns);
  // The plain sum differs from the true one by a few units in the last place
  // per edge, and by its own rounding, which grows with its partial sums
  // (at most a turn per crossing or own edge and two more).
  const double edges = double(m_edgeCount);
  const double slack = edges * (1e-15 + 2.3e-16 * 2.0 * std::numbers::pi * double(2 + crossings + own)) + 1e-12;
  if (std::fabs(sum) > kHalfTurnF + slack) return 1;
  if (std::fabs(sum) < kHalfTurnF - slack) return 0;
  return -1;
}

bool NestingShape::Contains(const RVPOINT& q) const {
  int fast = FastContains(q);
  if (fast < 0) fast = AngleSumInside(q);
  return fast >= 0 ? fast == 1 : IsInsideAngle(WindingAngle(m_line, q));
}

PlainBox NestingShape::Reach() const {
  return m_box.Grown(m_margin);
}

bool NestingShape::InsideOf(const NestingShape& outer) const {
  if (m_line.points.empty() || outer.m_line.points.empty() || (m_finite && m_edgeCount == 0)) return false;
  if (m_finite && outer.m_finite) {
    // A probe outside the outer box (with its margin) is outside.
    const double m = outer.m_margin;
    if (m_probeBox.left < outer.m_box.left - m || m_probeBox.right > outer.m_box.right + m ||
        m_probeBox.bottom < outer.m_box.bottom - m || m_probeBox.top > outer.m_box.top + m) {
      return false;
    }
  }
  // Every probe must be inside, so the order of asking is free: first the
  // probes that the crossings decide, then the few that need the angle sum.
  bool any = false, inside = true;
  std::vector<RVPOINT> undecided;
  ForEachEdge([&](const RVPOINT& p, const RVPOINT&) {
    if (!inside) return;
    any = true;
    const int fast = outer.FastContains(p);
    if (fast < 0) {
      undecided.push_back(p);
    } else {
      inside = fast == 1;
    }
  });
  if (!any || !inside) return false;
  for (const RVPOINT& p : undecided) {
    const int sure = outer.AngleSumInside(p);
    if (sure >= 0 ? sure == 0 : !IsInsideAngle(WindingAngle(outer.m_line, p))) return false;
  }
  return true;
}

}  // namespace rv
