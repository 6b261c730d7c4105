// The coarse polyline on which all path judgments are made, and the two
// sums taken over it: the orientation sum and the winding angle of a point.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "rvdataaccess.h"

namespace rv {

/// Flattening of the judgments: chords of at most 2 units, 2 units off.
constexpr double kJudgeLength = 2.0;
constexpr double kJudgeTolerance = 2.0;
constexpr int kJudgeMode = 1;

/// Pi in single precision: the winding threshold between outside (about 0)
/// and inside (about 2 pi).
constexpr double kHalfTurnF = 3.1415927410125732;

/// One closed Bezier curve as a list of point lists, one list per segment:
/// from the start segment round to the one before it, the last segment
/// closing to point 0. Successive points of one list are the polyline's
/// edges; the lists share their end points.
struct CoarsePolyline {
  std::vector<RVPOINT> points;    // all lists, one after the other
  std::vector<std::size_t> ends;  // one past the last point of each list

  std::size_t ListCount() const { return ends.size(); }
  std::size_t ListBegin(std::size_t list) const { return list == 0 ? 0 : ends[list - 1]; }
  /// f(k) for each edge points[k] - points[k + 1], list by list.
  template <class F>
  void ForEachEdgeAt(F&& f) const {
    for (std::size_t list = 0; list < ListCount(); ++list) {
      for (std::size_t k = ListBegin(list); k + 1 < ends[list]; ++k) f(k);
    }
  }
};

/// The coarse polyline of `count` Bezier records, walked from `start` (taken
/// modulo the count). With a matrix only the anchors are mapped; the handles
/// stay as stored.
CoarsePolyline MakeCoarsePolyline(const RVBEZIERPOINT* records, int32_t count, int32_t start,
                                  const RVRIFMATRIX* matrix);

/// Sum of (x[k+1] - x[k]) * (y[k+1] + y[k]) * 0.5 over the edges: positive for
/// a clockwise curve (y up), negative for a counter-clockwise one. It is
/// also a path's signed area (CRvPath::GetArea).
double OrientationSum(const CoarsePolyline& line);

/// Sum of the signed angles that the edges span seen from `q`: about +-2 pi
/// for a point inside, about 0 outside. An edge with an end on `q`
/// contributes 0.
double WindingAngle(const CoarsePolyline& line, const RVPOINT& q);

inline bool IsInsideAngle(double sum) { return std::fabs(sum) > kHalfTurnF; }

}  // namespace rv
