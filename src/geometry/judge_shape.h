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
// edge or vertex, non-finite coordinates) the angle sum itself decides, so
// every answer is the one of the plain test.
#pragma once

#include <cstdint>
#include <vector>

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

 private:
  struct Edge {
    RVPOINT a, b;
  };
  struct Box {
    double left = 0, right = 0, bottom = 0, top = 0;
  };
  /// -1 when the crossing count can't be trusted for q, else 0 or 1.
  int CrossingInside(const RVPOINT& q) const;

  CoarsePolyline m_line;
  std::size_t m_edgeCount = 0;   // pairs of successive points within the lists
  bool m_finite = true;          // all coordinates finite: the fast answers apply
  Box m_box;                     // of all points
  double m_margin = 0;           // a point this far outside the box is surely outside
  Box m_probeBox;                // of the points that the path test asks about
  // Horizontal bands over the box: band k holds copies of its edges in
  // m_bandEdges[m_bandStart[k] .. m_bandStart[k + 1]).
  double m_bandHeight = 0;
  std::vector<uint32_t> m_bandStart;
  std::vector<Edge> m_bandEdges;

  template <class F>
  void ForEachEdge(F&& f) const;
  std::size_t BandOf(double y) const;
  void MakeBands();
};

}  // namespace rv
