// A coarse polyline prepared for many inside tests.
//
// The inside test of the judgments sums the winding angle of a point over
// every edge of the other path (an atan2 per edge), and the test of a path
// does that for each of its points. NestingShape gives the same answers
// faster: a point clearly outside the bounding box is outside, and any other
// point is counted by the crossings of the few edges in its horizontal band
// (every edge sits in the bands that its height, widened a little, touches).
// Wherever the crossing count could
// disagree with the angle sum (a point on or within rounding distance of an
// edge or vertex) the sum is taken from the directions of the few edges
// that need their own angle and the turns of the band's edges round the
// point, and decides when it lies clearly on one side of the threshold;
// only when it doesn't (or for non-finite coordinates) is every edge's angle
// summed. So every answer is the one of the plain test.
#pragma once

#include <cstdint>
#include <vector>

#include "geometry/box_grid.h"
#include "geometry/edge_bands.h"
#include "geometry/judge_polyline.h"

namespace rv {

class NestingShape {
 public:
  explicit NestingShape(CoarsePolyline line);

  /// Exactly IsInsideAngle(WindingAngle(line, q)).
  bool Contains(const RVPOINT& q) const;
  /// Exactly the inside test of a path: every point of every list of this
  /// polyline but the list's last lies inside `outer`; false without points.
  bool InsideOf(const NestingShape& outer) const;

  const CoarsePolyline& line() const { return m_line; }

  /// False when InsideOf is false whatever the outer shape: no points, or
  /// finite points that make no edge.
  bool CanBeInside() const { return !m_line.points.empty() && !(m_finite && m_edgeCount == 0); }
  /// Whether the box tests below decide: all coordinates finite.
  bool Boxed() const { return m_finite; }
  /// For a boxed shape: the box that the probes of a boxed inner shape must
  /// lie in (the box of all points, grown by the margin, computed as
  /// InsideOf does); the probes of this shape.
  PlainBox Reach() const;
  PlainBox Probes() const { return m_probeBox; }

 private:
  using Box = PlainBox;
  /// -1 when the crossing count can't be trusted for q, else 0 or 1.
  int CrossingInside(const RVPOINT& q) const;
  /// Contains(q) as 0 or 1 when the box or the crossings decide, else -1.
  int FastContains(const RVPOINT& q) const;
  /// Contains(q) as 0 or 1 from the angle sum taken edge by edge only where
  /// needed, when it is clearly away from the threshold; else -1.
  int AngleSumInside(const RVPOINT& q) const;

  CoarsePolyline m_line;
  std::size_t m_edgeCount = 0;   // pairs of successive points within the lists
  bool m_finite = true;          // all coordinates finite: the fast answers apply
  Box m_box;                     // of all points
  double m_margin = 0;           // a point this far outside the box is surely outside
  Box m_probeBox;                // of the points that the path test asks about
  // Horizontal bands over the box, made at the first point asked about.
  mutable EdgeBands m_bands;

  template <class F>
  void ForEachEdge(F&& f) const;
  const EdgeBands& Bands() const;
};

/// The nesting pass of the judgment over shapes in its order (largest area
/// first), paths[k] belonging to shapes[k]: for i from the first to the last
/// but one and each later j, flag j flips when both flags are equal and
/// shape j lies inside shape i. This one tests every pair; kept as the
/// measure of FlipNestedByIndex.
void FlipNestedByPairs(const std::vector<const NestingShape*>& shapes, RVINSIDEPATH* paths);

/// The same flags as FlipNestedByPairs. A flag can change only while the
/// earlier shapes are visited, and its changes depend on their flags alone,
/// so each j asks only the shapes i < j whose reach holds its probes, found
/// through a BoxGrid, in ascending i. Shapes with non-finite coordinates
/// take part in every pair, as the box tests don't decide for them.
void FlipNestedByIndex(const std::vector<const NestingShape*>& shapes, RVINSIDEPATH* paths);

}  // namespace rv
