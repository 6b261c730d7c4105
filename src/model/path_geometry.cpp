// Geometry of path arts: true bounds of the components, signed area, and the
// order of compound children by size.
#include <cmath>
#include <unordered_map>
#include <vector>

#include "frame/error_codes.h"
#include "frame/frame.h"
#include "geometry/affine.h"
#include "geometry/curve_core.h"
#include "geometry/judge_polyline.h"
#include "model/art.h"

namespace rv {

namespace {

// Flattening of curves for bounds and areas: coarse chords, as the inside
// and orientation judgments use them.
constexpr double kCoarseLength = 2.0;
constexpr double kCoarseTolerance = 2.0;
constexpr int kFlattenMode = 1;

}  // namespace

int ThreePointTest(const RVPOINT& p0, const RVPOINT& p1, const RVPOINT& p2) {
  if (SamePoint(p0, p1)) return 1;  // a full turn: every point lies on it
  if (SamePoint(p2, p0) || SamePoint(p2, p1)) return 0;
  const double d = (p1.y - p2.y) * (p2.x - p0.x) - (p2.y - p0.y) * (p1.x - p2.x);
  if (std::fabs(d) < 1.0) return 0;
  // Radius of the circle through the three points: the product of the sides
  // over twice the (doubled) triangle area.
  const double radius = Distance(p0, p1) * Distance(p1, p2) * Distance(p2, p0) / (2.0 * std::fabs(d));
  if (radius > 14000.0) return 0;
  return d > 0 ? 1 : -1;
}

void MergePoint(RVRECT& box, const RVPOINT& p) {
  if (p.y > box.top) box.top = p.y;
  if (p.y < box.bottom) box.bottom = p.y;
  if (p.x < box.left) box.left = p.x;
  if (p.x > box.right) box.right = p.x;
}

void MergeCurve(RVRECT& box, const RVBEZIERPOINT& a, const RVBEZIERPOINT& b) {
  MergePoint(box, a.anchor);
  // The chords of a piece whose handles sit on its anchors stay on the
  // straight line between them: its ends are its box. Long straight runs of
  // plot files are thus measured at once instead of in 2-unit chords.
  if (SamePoint(a.out, a.anchor) && SamePoint(b.in, b.anchor)) {
    MergePoint(box, b.anchor);
    return;
  }
  // A piece that can't be flattened within the point limit is held by its
  // control points. Two kinds are known beforehand, so that a file full of
  // them costs no more than their count: a piece reaching beyond the 0.01
  // grid (its cells saturate, halving never makes it flat), and one whose
  // ends lie farther apart than the limit's chords span (every chord of a
  // piece inside the grid is shorter than kCoarseLength).
  const RVPOINT hull[4] = {a.anchor, a.out, b.in, b.anchor};
  bool flattenable = Distance(a.anchor, b.anchor) < kCoarseLength * double(kMaxFlattenPoints);
  for (const RVPOINT& p : hull) {
    flattenable = flattenable && GridCell(p.x) != kGridOverflow && GridCell(p.y) != kGridOverflow;
  }
  if (flattenable) {
    try {
      MergeFlattenedCurve(box, a, b, kCoarseLength, kCoarseTolerance, kFlattenMode);
      return;
    } catch (const RvError& e) {
      if (e.code() != kErrCurveTooLarge) throw;
    }
  }
  for (const RVPOINT& p : {a.out, b.in, b.anchor}) MergePoint(box, p);
}

void MergeArcPiece(RVRECT& box, const RVPOINT& start, const RVPOINT& end, const RVPOINT& centre,
                   int16_t direction) {
  const double r = Distance(start, centre);
  MergePoint(box, start);
  MergePoint(box, end);
  const RVPOINT axis[4] = {{centre.x + r, centre.y},
                           {centre.x, centre.y + r},
                           {centre.x - r, centre.y},
                           {centre.x, centre.y - r}};
  for (const RVPOINT& q : axis) {
    if (ThreePointTest(start, end, q) == direction) MergePoint(box, q);
  }
}

namespace {

// The walk of a path's components for its bounds: the previous component's
// type and last point join it to the next one.
class BoundsWalk {
 public:
  explicit BoundsWalk(RVRECT& box) : m_box(box) {}

  void Add(const CRvArt& child) {
    switch (child.GetType()) {
      case kArtBezier: AddBezier(static_cast<const CRvBezier&>(child)); break;
      case kArtArc: AddArc(static_cast<const CRvArc&>(child)); break;
      case kArtSpline: AddSpline(static_cast<const CRvSpline&>(child)); break;
      default: break;
    }
  }

 private:
  // The joining piece from the previous component's last point to `first`.
  // A Bezier that follows a Bezier joins by the curve between the two
  // records; `firstRecord` is that record.
  void Join(const RVPOINT& first, const RVBEZIERPOINT* firstRecord) {
    switch (m_prevType) {
      case kArtBezier: {
        if (firstRecord != nullptr) {
          MergeCurve(m_box, m_prevBezier, *firstRecord);
        } else {
          RVBEZIERPOINT to{};
          to.anchor = to.in = to.out = first;
          to.flags = m_prevBezier.flags;
          MergeCurve(m_box, m_prevBezier, to);
        }
        break;
      }
      case kArtArc:
        MergeArcPiece(m_box, m_prevArc.from, first, m_prevArc.centre, m_prevArc.direction);
        break;
      case kArtSpline:
        MergePoint(m_box, m_prevPoint);
        MergePoint(m_box, first);
        break;
      default: break;
    }
  }

  void AddBezier(const CRvBezier& bezier) {
    const auto& pts = bezier.m_points;
    if (pts.empty()) return;
    // After a spline the join is a straight line whatever follows.
    Join(pts.front().anchor, m_prevType == kArtBezier ? &pts.front() : nullptr);
    for (std::size_t i = 1; i < pts.size(); ++i) MergeCurve(m_box, pts[i - 1], pts[i]);
    m_prevType = kArtBezier;
    m_prevBezier = pts.back();
  }

  void AddArc(const CRvArc& arc) {
    const auto& pts = arc.m_points;
    if (pts.empty()) return;
    Join(pts.front().from, nullptr);
    // An arc component is a chain: piece i runs from the `from` of point
    // i - 1 to the `from` of point i, around the centre of point i - 1.
    for (std::size_t i = 1; i < pts.size(); ++i) {
      MergeArcPiece(m_box, pts[i - 1].from, pts[i].from, pts[i - 1].centre, pts[i - 1].direction);
    }
    if (pts.size() == 1) MergeArcPiece(m_box, pts[0].from, pts[0].to, pts[0].centre, pts[0].direction);
    m_prevType = kArtArc;
    m_prevArc = pts.back();
  }

  void AddSpline(const CRvSpline& spline) {
    const auto& pts = spline.m_points;
    if (pts.empty()) return;
    Join(pts.front(), nullptr);
    for (std::size_t i = 1; i < pts.size(); ++i) {
      MergePoint(m_box, pts[i - 1]);
      MergePoint(m_box, pts[i]);
    }
    m_prevType = kArtSpline;
    m_prevPoint = pts.back();
  }

  RVRECT& m_box;
  int16_t m_prevType = kArtAbstract;  // none yet
  RVBEZIERPOINT m_prevBezier{};
  RVARCPOINT m_prevArc{};
  RVPOINT m_prevPoint{};
};

}  // namespace

uint32_t CRvPath::GetBounds(RVRECT& out) {
  RVRECT box{-32768.0, 32767.0, -32768.0, 32767.0};
  const auto& items = m_children.items();
  if (items.empty()) return kErrPathComponent;
  for (const CRvArt* child : items) {
    if (!IsComponentType(child->GetType())) return kErrPathComponent;
  }
  BoundsWalk walk(box);
  for (const CRvArt* child : items) walk.Add(*child);
  out = box;
  return 0;
}

double CRvPath::GetArea() const {
  const CRvArt* first = GetChild(0);
  if (first == nullptr) return 0.0;
  std::vector<RVBEZIERPOINT> records;
  if (first->GetType() == kArtBezier) {
    const auto& points = static_cast<const CRvBezier*>(first)->m_points;
    records.assign(points.begin(), points.end());
  } else if (first->GetType() == kArtSpline) {
    for (const RVPOINT& p : static_cast<const CRvSpline*>(first)->m_points) {
      RVBEZIERPOINT r{};
      r.anchor = r.in = r.out = p;
      records.push_back(r);
    }
  } else {
    return 0.0;
  }
  if (records.empty()) return 0.0;
  return OrientationSum(MakeCoarsePolyline(records.data(), int32_t(records.size()), StartSegment(), &Matrix()));
}

void CRvCompound::SortChildren() {
  auto& items = m_children.items();
  std::unordered_map<const CRvArt*, double> measure;
  measure.reserve(items.size());
  for (CRvArt* child : items) {
    RVRECT box{};
    Check(child->GetBounds(box));
    measure[child] = 2.0 * (box.right - box.left) + 2.0 * (box.top - box.bottom);
  }
  // std::list::sort is a stable merge that relinks nodes: positions stay valid.
  items.sort([&](const CRvArt* a, const CRvArt* b) { return measure[a] < measure[b]; });
}

}  // namespace rv
