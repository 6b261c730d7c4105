#include "geometry/curve_core.h"

#include <cmath>
#include <limits>

namespace rv {

int32_t GridCell(double v) {
  const double scaled = v * 100.0;
  // NaN fails both comparisons and lands in the overflow cell too.
  if (!(scaled > -2147483649.0 && scaled < 2147483648.0)) return std::numeric_limits<int32_t>::min();
  return int32_t(scaled);
}

double AngleOfThreePoints(const RVPOINT& p1, const RVPOINT& vertex, const RVPOINT& p3) {
  auto same = [](const RVPOINT& p, const RVPOINT& q) { return p.x == q.x && p.y == q.y; };
  if (same(p1, vertex) || same(vertex, p3) || same(p1, p3)) return 0.0;
  const double ux = p1.x - vertex.x, uy = p1.y - vertex.y;
  const double vx = p3.x - vertex.x, vy = p3.y - vertex.y;
  return std::atan2(ux * vy - uy * vx, ux * vx + uy * vy);
}

void DivideBezier(RVBEZIERPOINT& a, RVBEZIERPOINT& b, double t, RVBEZIERPOINT& middle) {
  const double s = 1.0 - t;
  const RVPOINT p0 = a.anchor, p1 = a.out, p2 = b.in, p3 = b.anchor;
  auto mix3 = [](const RVPOINT& p, double wp, const RVPOINT& q, double wq, const RVPOINT& r, double wr) {
    return RVPOINT{p.x * wp + q.x * wq + r.x * wr, p.y * wp + q.y * wq + r.y * wr};
  };
  middle.in = mix3(p0, s * s, p1, 2 * t * s, p2, t * t);
  middle.anchor = RVPOINT{p0.x * s * s * s + p1.x * 3 * s * s * t + p2.x * 3 * s * t * t + p3.x * t * t * t,
                          p0.y * s * s * s + p1.y * 3 * s * s * t + p2.y * 3 * s * t * t + p3.y * t * t * t};
  middle.out = mix3(p1, s * s, p2, 2 * t * s, p3, t * t);
  a.out = RVPOINT{p0.x * s + p1.x * t, p0.y * s + p1.y * t};
  b.in = RVPOINT{p2.x * s + p3.x * t, p2.y * s + p3.y * t};
}

bool IsFlat(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b, double maxLength, double tolerance, int mode) {
  const int32_t ax = GridCell(a.anchor.x), ay = GridCell(a.anchor.y);
  const int32_t bx = GridCell(b.anchor.x), by = GridCell(b.anchor.y);
  if (ax == bx && ay == by) return true;

  const bool sameX = ax == bx, sameY = ay == by;
  const double m = (sameX || sameY) ? 0.0 : (b.anchor.y - a.anchor.y) / (b.anchor.x - a.anchor.x);
  const double q = b.anchor.y - m * b.anchor.x;

  const int32_t aox = GridCell(a.out.x), aoy = GridCell(a.out.y);
  const int32_t bix = GridCell(b.in.x), biy = GridCell(b.in.y);
  bool straight = (aox == ax && aoy == ay && bix == bx && biy == by) ||
                  (!sameY && aox == ax && bix == bx) || (!sameX && aoy == ay && biy == by);
  if (straight) {
    straight = std::fabs(AngleOfThreePoints(a.out, a.anchor, b.anchor)) <= tolerance &&
               std::fabs(AngleOfThreePoints(b.in, b.anchor, a.anchor)) <= tolerance;
  }

  const double dx = b.anchor.x - a.anchor.x, dy = b.anchor.y - a.anchor.y;
  const double d = std::sqrt(dx * dx + dy * dy);
  if (mode != 0 && straight) return maxLength > d;

  const double norm = std::sqrt(1.0 + m * m);
  if (std::fabs(m * a.out.x - a.out.y + q) / norm > tolerance) return false;
  if (std::fabs(m * b.in.x - b.in.y + q) / norm > tolerance) return false;
  return mode != 0 && maxLength > d;
}

namespace {

// Halving always brings the anchors into one grid cell; the depth limit only
// guards against arithmetic that never gets there (it is far beyond any
// curve whose coordinates fit the grid).
constexpr int kMaxDepth = 48;

void Flatten(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b, double maxLength, double tolerance, int mode,
             std::vector<RVPOINT>& out, int depth) {
  if (depth >= kMaxDepth || IsFlat(a, b, maxLength, tolerance, mode)) {
    out.push_back(b.anchor);
    return;
  }
  RVBEZIERPOINT left = a, right = b, middle{};
  DivideBezier(left, right, 0.5, middle);
  Flatten(left, middle, maxLength, tolerance, mode, out, depth + 1);
  Flatten(middle, right, maxLength, tolerance, mode, out, depth + 1);
}

}  // namespace

void FlattenCurve(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b, double maxLength, double tolerance,
                  int mode, std::vector<RVPOINT>& out) {
  Flatten(a, b, maxLength, tolerance, mode, out, 0);
}

}  // namespace rv
