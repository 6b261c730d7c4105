// The core of curve work: the 0.01 grid, angles, de Casteljau splits and the
// adaptive flattening of one Bezier curve. Everything that turns curves into
// points goes through here.
//
// A curve between two points of a path is two consecutive RVBEZIERPOINT
// records a, b: a.anchor, a.out, b.in, b.anchor.
#pragma once

#include <cstdint>
#include <vector>

#include "frame/error_codes.h"
#include "frame/frame.h"
#include "geometry/curve_list.h"
#include "rvdataaccess.h"

namespace rv {

// kErrCurveArgument: a null pointer, a negative count or another argument
// out of range given to a curve operation. kErrCurveTooLarge: a curve that
// can't be worked within the library's limits (its flattening would pass
// kMaxFlattenPoints, or an arc fit makes no progress). Both are in
// frame/error_codes.h.

/// The kinds of RVCURVEPOINT records.
enum CurveRecordKind : int16_t {
  kRecordPoint = 0,   ///< a point of a polyline
  kRecordArc = 1,     ///< an arc
  kRecordBezier = 2,  ///< a Bezier point with its handles
  kRecordSpline = 3,  ///< a spline triple
};

/// Most points that the flattening of one curve may produce. At the 0.01 grid
/// this is a curve of about 10 km; only coordinates far outside any drawing
/// (or a maxLength of 0 on such a curve) get there.
constexpr std::size_t kMaxFlattenPoints = std::size_t(1) << 20;

/// Grid cell of a coordinate: the value times 100, truncated toward zero to a
/// 32-bit integer. Values outside the 32-bit range (and NaN) share the cell
/// kGridOverflow (INT32_MIN), as the processor's truncating conversion gives.
constexpr int32_t kGridOverflow = INT32_MIN;
int32_t GridCell(double v);

/// True when p and q lie in the same 0.01 cell.
inline bool SameCell(const RVPOINT& p, const RVPOINT& q) {
  return GridCell(p.x) == GridCell(q.x) && GridCell(p.y) == GridCell(q.y);
}

/// Signed angle at `vertex` from p1 to p3: atan2 of the cross and the dot
/// product of p1 - vertex and p3 - vertex; 0 when any two of the three points
/// are exactly equal. A straight angle may come out as -pi when the cross
/// product is a negative zero.
double AngleOfThreePoints(const RVPOINT& p1, const RVPOINT& vertex, const RVPOINT& p3);

/// De Casteljau split of the curve a-b at t: fills middle's in, anchor and
/// out, and updates a.out and b.in. Other fields stay as they are; t isn't
/// clamped.
void DivideBezier(RVBEZIERPOINT& a, RVBEZIERPOINT& b, double t, RVBEZIERPOINT& middle);

/// The point of the curve a-b at parameter t.
RVPOINT PointOnCurve(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b, double t);

/// The flatness test: may the curve a-b stand as one chord? `tolerance` is an
/// angle in radians for handles that sit on the chord's grid line and a
/// distance for the others; `maxLength` the longest chord allowed. With mode 0
/// only anchors in one grid cell make a flat curve.
bool IsFlat(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b, double maxLength, double tolerance, int mode);

/// Appends the end points of the chords of the curve a-b: b.anchor last,
/// a.anchor not included. Halves at t = 0.5 until each piece is flat. Raises
/// kErrCurveTooLarge past kMaxFlattenPoints points.
void FlattenCurve(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b, double maxLength, double tolerance,
                  int mode, std::vector<RVPOINT>& out);

/// The same, appending kind 0 RVCURVEPOINT records.
void FlattenCurve(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b, double maxLength, double tolerance,
                  int mode, CurveList& out);

/// The polyline of a curve as RvMiCurvesToPoints gives it for two points:
/// a.anchor, then the chords' end points.
inline void CurveToPoints(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b, double maxLength, double tolerance,
                          int mode, std::vector<RVPOINT>& out) {
  out.push_back(a.anchor);
  FlattenCurve(a, b, maxLength, tolerance, mode, out);
}

/// Depth of the halving past which a piece counts as flat.
constexpr int kMaxFlattenDepth = 64;

/// The chords of FlattenCurve(a, b, ...) in order, but a piece of the
/// halving (the whole curve included) whose ends u, v give skip(u, v) goes
/// whole to passed(u, v) without being halved further; every other chord
/// goes to chord(u, v). Each piece is halved exactly as FlattenCurve halves
/// it, so the chords made are the same points. No point limit: for curves
/// whose flattening can't reach it.
template <class Skip, class Passed, class Chord>
void FlattenPruned(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b, double maxLength, double tolerance, int mode,
                   Skip&& skip, Passed&& passed, Chord&& chord, int depth = 0) {
  if (skip(a.anchor, b.anchor)) {
    passed(a.anchor, b.anchor);
    return;
  }
  if (depth >= kMaxFlattenDepth || IsFlat(a, b, maxLength, tolerance, mode)) {
    chord(a.anchor, b.anchor);
    return;
  }
  RVBEZIERPOINT left = a, right = b, middle{};
  DivideBezier(left, right, 0.5, middle);
  FlattenPruned(left, middle, maxLength, tolerance, mode, skip, passed, chord, depth + 1);
  FlattenPruned(middle, right, maxLength, tolerance, mode, skip, passed, chord, depth + 1);
}

/// Widens `box` by the points that FlattenCurve appends for the curve a-b,
/// without keeping them. Raises kErrCurveTooLarge as FlattenCurve does.
void MergeFlattenedCurve(RVRECT& box, const RVBEZIERPOINT& a, const RVBEZIERPOINT& b, double maxLength,
                         double tolerance, int mode);

/// Number of points that FlattenCurve appends for the curve a-b.
std::size_t CountFlattenPoints(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b, double maxLength,
                               double tolerance, int mode);

/// Length of the polyline of the curve a-b flattened with the given
/// parameters: the sum of the distances of consecutive points, in order.
double PolylineLength(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b, double maxLength, double tolerance,
                      int mode);

/// A kind 0 record.
inline RVCURVEPOINT PointRecord(const RVPOINT& p) {
  RVCURVEPOINT r{};
  r.kind = kRecordPoint;
  r.point = p;
  return r;
}

}  // namespace rv
