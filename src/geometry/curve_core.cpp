#include "geometry/curve_core.h"

#include <cmath>

#include "geometry/affine.h"

namespace rv {

int32_t GridCell(double v) {
  const double scaled = v * 100.0;
  // NaN fails both comparisons and lands in the overflow cell too.
  if (!(scaled > -2147483649.0 && scaled < 2147483648.0)) return kGridOverflow;
  return int32_t(scaled);
}

double AngleOfThreePoints(const RVPOINT& p1, const RVPOINT& vertex, const RVPOINT& p3) {
  if (SamePoint(p1, vertex) || SamePoint(vertex, p3) || SamePoint(p1, p3)) return 0.0;
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
  middle.anchor = PointOnCurve(a, b, t);
  middle.out = mix3(p1, s * s, p2, 2 * t * s, p3, t * t);
  a.out = RVPOINT{p0.x * s + p1.x * t, p0.y * s + p1.y * t};
  b.in = RVPOINT{p2.x * s + p3.x * t, p2.y * s + p3.y * t};
}

RVPOINT PointOnCurve(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b, double t) {
  const double s = 1.0 - t;
  const RVPOINT p0 = a.anchor, p1 = a.out, p2 = b.in, p3 = b.anchor;
  return RVPOINT{p0.x * s * s * s + p1.x * 3 * s * s * t + p2.x * 3 * s * t * t + p3.x * t * t * t,
                 p0.y * s * s * s + p1.y * 3 * s * s * t + p2.y * 3 * s * t * t + p3.y * t * t * t};
}

bool IsFlat(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b, double maxLength, double tolerance, int mode) {
  // Anchors in one cell: nothing left to draw.
  const int32_t ax = GridCell(a.anchor.x), ay = GridCell(a.anchor.y);
  const int32_t bx = GridCell(b.anchor.x), by = GridCell(b.anchor.y);
  if (ax == bx && ay == by) return true;
  // A chord as long as maxLength, or longer (or NaN), is never flat.
  const double d = Distance(a.anchor, b.anchor);
  if (!(maxLength > d)) return false;

  // The chord as y = m x + q; a chord on one grid line counts as m = 0.
  const bool sameX = ax == bx, sameY = ay == by;
  const double m = (sameX || sameY) ? 0.0 : (b.anchor.y - a.anchor.y) / (b.anchor.x - a.anchor.x);
  const double q = b.anchor.y - m * b.anchor.x;

  // Mode 0 never takes a chord as flat here. Otherwise the piece is flat
  // when both handles lie within `tolerance` of the chord's line, or when it
  // is a straight candidate: handles on their anchors' cells, or on their
  // anchors' grid lines, that also leave their anchors along the chord. The
  // line test is the cheaper, so it goes first.
  if (mode == 0) return false;
  const double norm = std::sqrt(1.0 + m * m);
  if (!(std::fabs(m * a.out.x - a.out.y + q) / norm > tolerance) &&
      !(std::fabs(m * b.in.x - b.in.y + q) / norm > tolerance)) {
    return true;
  }
  const int32_t aox = GridCell(a.out.x), aoy = GridCell(a.out.y);
  const int32_t bix = GridCell(b.in.x), biy = GridCell(b.in.y);
  const bool candidate = (aox == ax && aoy == ay && bix == bx && biy == by) ||
                         (!sameY && aox == ax && bix == bx) || (!sameX && aoy == ay && biy == by);
  return candidate && std::fabs(AngleOfThreePoints(a.out, a.anchor, b.anchor)) <= tolerance &&
         std::fabs(AngleOfThreePoints(b.in, b.anchor, a.anchor)) <= tolerance;
}

namespace {

// Halving always brings the anchors into one grid cell; the depth limit only
// guards against arithmetic that never gets there (NaN or coordinates beyond
// the grid, or a chain of halvings that keeps straddling a cell boundary).
// Plain double arithmetic collapses such chains well before kMaxFlattenDepth.
// The plain flattening is the pruned one that passes no piece, with the
// point limit.
template <class Sink>
void Flatten(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b, double maxLength, double tolerance, int mode,
             Sink& sink) {
  std::size_t count = 0;
  FlattenPruned(
      a, b, maxLength, tolerance, mode, [](const RVPOINT&, const RVPOINT&) { return false; },
      [](const RVPOINT&, const RVPOINT&) {},
      [&](const RVPOINT&, const RVPOINT& v) {
        if (++count > kMaxFlattenPoints) Raise(kErrCurveTooLarge);
        sink(v);
      });
}

}  // namespace

void FlattenCurve(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b, double maxLength, double tolerance,
                  int mode, std::vector<RVPOINT>& out) {
  auto sink = [&out](const RVPOINT& p) { out.push_back(p); };
  Flatten(a, b, maxLength, tolerance, mode, sink);
}

void FlattenCurve(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b, double maxLength, double tolerance,
                  int mode, CurveList& out) {
  auto sink = [&out](const RVPOINT& p) { out.push_back(PointRecord(p)); };
  Flatten(a, b, maxLength, tolerance, mode, sink);
}

void MergeFlattenedCurve(RVRECT& box, const RVBEZIERPOINT& a, const RVBEZIERPOINT& b, double maxLength,
                         double tolerance, int mode) {
  auto sink = [&box](const RVPOINT& p) {
    if (p.y > box.top) box.top = p.y;
    if (p.y < box.bottom) box.bottom = p.y;
    if (p.x < box.left) box.left = p.x;
    if (p.x > box.right) box.right = p.x;
  };
  Flatten(a, b, maxLength, tolerance, mode, sink);
}

std::size_t CountFlattenPoints(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b, double maxLength,
                               double tolerance, int mode) {
  std::size_t count = 0;
  auto sink = [&count](const RVPOINT&) { ++count; };
  Flatten(a, b, maxLength, tolerance, mode, sink);
  return count;
}

double PolylineLength(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b, double maxLength, double tolerance,
                      int mode) {
  RVPOINT last = a.anchor;
  double sum = 0.0;
  auto sink = [&](const RVPOINT& p) {
    sum += Distance(last, p);
    last = p;
  };
  Flatten(a, b, maxLength, tolerance, mode, sink);
  return sum;
}

}  // namespace rv
