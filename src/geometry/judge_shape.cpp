#include "geometry/judge_shape.h"

#include <cmath>

namespace rv {

namespace {

// An edge whose angle seen from the point has |sin| below this is "near":
// rounding could move its atan2 across the +-pi cut, or flip the side of the
// point. Far larger than the rounding of the products (a few 1e-16).
constexpr double kNearSine = 1e-9;
constexpr double kNearSine2 = kNearSine * kNearSine;

}  // namespace

NestingShape::NestingShape(CoarsePolyline line) : m_line(std::move(line)) {
  const auto& pts = m_line.points;
  for (const RVPOINT& p : pts) {
    if (!std::isfinite(p.x) || !std::isfinite(p.y)) m_finite = false;
  }
  for (std::size_t list = 0; list < m_line.ListCount(); ++list) {
    const std::size_t begin = m_line.ListBegin(list), end = m_line.ends[list];
    for (std::size_t k = begin; k + 1 < end; ++k) {
      m_edges.push_back(Edge{pts[k], pts[k + 1]});
      m_probes.push_back(pts[k]);
    }
  }
  if (!m_finite) return;
  auto boxOf = [](const std::vector<RVPOINT>& points, Box& box) {
    if (points.empty()) return;
    box = Box{points[0].x, points[0].x, points[0].y, points[0].y};
    for (const RVPOINT& p : points) {
      box.left = std::fmin(box.left, p.x);
      box.right = std::fmax(box.right, p.x);
      box.bottom = std::fmin(box.bottom, p.y);
      box.top = std::fmax(box.top, p.y);
    }
  };
  boxOf(pts, m_box);
  boxOf(m_probes, m_probeBox);
  // Outside the box by more than this, every edge is seen under an angle
  // well away from +-pi, so the angle sum is 0 up to rounding.
  m_margin = 1e-9 * ((m_box.right - m_box.left) + (m_box.top - m_box.bottom));
  if (!std::isfinite(m_margin)) m_finite = false;
}

int NestingShape::CrossingInside(const RVPOINT& q) const {
  int winding = 0;
  for (const Edge& e : m_edges) {
    const double ux = e.a.x - q.x, uy = e.a.y - q.y;
    const double vx = e.b.x - q.x, vy = e.b.y - q.y;
    const double cross = ux * vy - uy * vx;
    const bool upFrom = e.a.y <= q.y;
    const bool straddles = upFrom != (e.b.y <= q.y);
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

bool NestingShape::Contains(const RVPOINT& q) const {
  if (m_finite && std::isfinite(q.x) && std::isfinite(q.y)) {
    if (q.x < m_box.left - m_margin || q.x > m_box.right + m_margin || q.y < m_box.bottom - m_margin ||
        q.y > m_box.top + m_margin) {
      return false;
    }
    const int fast = CrossingInside(q);
    if (fast >= 0) return fast == 1;
  }
  return IsInsideAngle(WindingAngle(m_line, q));
}

bool NestingShape::InsideOf(const NestingShape& outer) const {
  if (m_probes.empty()) return false;
  if (m_finite && outer.m_finite) {
    // A probe outside the outer box (with its margin) is outside.
    const double m = outer.m_margin;
    if (m_probeBox.left < outer.m_box.left - m || m_probeBox.right > outer.m_box.right + m ||
        m_probeBox.bottom < outer.m_box.bottom - m || m_probeBox.top > outer.m_box.top + m) {
      return false;
    }
  }
  for (const RVPOINT& p : m_probes) {
    if (!outer.Contains(p)) return false;
  }
  return true;
}

}  // namespace rv
