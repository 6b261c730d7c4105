// CRvConvertPt: the worker behind the curve exports. One lives for one call
// on the stack: set its parameters, call one operation, take the records.
//
// The operations that produce records return them as a CurveList and leave
// the worker's list empty; HandOut gives such a list to the host as the array
// that belongs to it until RvMiFreePoints. Failures are raised (rv::Raise) and reach
// the caller's frame; nothing is handed out then.
#pragma once

#include <cstddef>
#include <cstdint>

#include "geometry/curve_list.h"
#include "rvdataaccess.h"

namespace rv {

class CRvConvertPt {
 public:
  CRvConvertPt() = default;
  virtual ~CRvConvertPt() = default;
  CRvConvertPt(const CRvConvertPt&) = delete;
  CRvConvertPt& operator=(const CRvConvertPt&) = delete;

  /// Most records that one operation may collect (2.7 GB); beyond it the
  /// operation fails with kErrCurveTooLarge.
  static constexpr std::size_t kMaxRecords = std::size_t(1) << 25;

  // Parameters of the flattening (see rv::IsFlat).
  double m_tolerance = 0.81;
  double m_maxLength = 31000.0;
  int32_t m_mode = 1;

  /// Bezier points (kind 2) of an arc, at most 60 degrees a piece, every
  /// coordinate rounded to 0.001.
  CurveList ArcToCurves(const RVARCPOINT& arc);

  /// Polyline (kind 0) of the curves points[0..count-1] with m_maxLength,
  /// m_tolerance and m_mode: for each curve its first anchor, then its chords'
  /// end points. Fewer than two points give no records.
  CurveList CurvesToPoints(const RVBEZIERPOINT* points, int32_t count);

  /// Arcs (kind 1, divided by `scale`) and polylines (kind 0, undivided)
  /// fitted in single precision to the curve of the last two points.
  CurveList CurvesToArc(const RVBEZIERPOINT* points, int32_t count, double scale);

  /// Spline triples (kind 3, divided by `scale`) and points (kind 0) of the
  /// curve points[0]-points[1]. A nearly straight curve gets its four handles
  /// put on their anchors, in the caller's array.
  CurveList CurvesToSpline(RVBEZIERPOINT* points, int32_t count, double scale);

  /// Points of the interpolating spline through points[1..count] (element 0
  /// isn't read) into `result`, which has room for 21 * (count - 1) points.
  /// Returns the number written. count is 0 to kMaxSplinePoints.
  static int32_t SplineToPoints(const RVPOINT* points, int32_t count, RVPOINT* result);
  static constexpr int32_t kMaxSplinePoints = 199;

  /// Length of the curve a-b (polyline with 31000.0, 0.042, mode 1).
  static double BezierLength(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b);

  /// Splits the curve a-b where its first part is `length` long (within 1.0)
  /// and writes the parts back as with DivideBezier. See the public header for
  /// how the search ends on curves it can't split so.
  static void DivideBezierByLength(RVBEZIERPOINT& a, RVBEZIERPOINT& b, double length, RVBEZIERPOINT& middle);
  static constexpr int kMaxLengthSearchPasses = 10000;

  /// The turn of a path at `point`, in [0, 2 pi); pi on a smooth path.
  static double AngleOfBezier(const RVBEZIERPOINT& point, const RVBEZIERPOINT& previous,
                              const RVBEZIERPOINT& next);

  /// Angle of `point` on `arc` from its `from`, seen from its centre.
  static double CenterAngle(const RVARCPOINT& arc, const RVPOINT& point, bool reverse);

 private:
  CurveList TakeList();
  void AppendPolyline(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b);
  void CheckListSize() const;

  CurveList m_list;
};

/// Hands `list` to the host as the array that RvMiFreePoints releases: null
/// with count 0 when the list is empty. Sets *result and *count.
void HandOut(CurveList&& list, RVCURVEPOINT** result, int32_t* count);

}  // namespace rv
