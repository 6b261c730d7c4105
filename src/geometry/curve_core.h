// The core of curve work: the 0.01 grid, angles, de Casteljau splits and the
// adaptive flattening of one Bezier curve. Everything that turns curves into
// points goes through here.
#pragma once

#include <cstdint>
#include <vector>

#include "rvdataaccess.h"

namespace rv {

/// Grid cell of a coordinate: the value times 100, truncated toward zero to a
/// 32-bit integer. Values outside the 32-bit range (and NaN) share the cell
/// INT32_MIN, as the processor's truncating conversion gives.
int32_t GridCell(double v);

/// True when p and q lie in the same 0.01 cell.
inline bool SameCell(const RVPOINT& p, const RVPOINT& q) {
  return GridCell(p.x) == GridCell(q.x) && GridCell(p.y) == GridCell(q.y);
}

/// Signed angle at `vertex` from p1 to p3, in (-pi, pi]; 0 when any two of
/// the three points are equal.
double AngleOfThreePoints(const RVPOINT& p1, const RVPOINT& vertex, const RVPOINT& p3);

/// De Casteljau split of the curve a-b at t: fills middle's in, anchor and
/// out, and updates a.out and b.in. Other fields stay as they are.
void DivideBezier(RVBEZIERPOINT& a, RVBEZIERPOINT& b, double t, RVBEZIERPOINT& middle);

/// The flatness test: may the curve a-b stand as one chord?
bool IsFlat(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b, double maxLength, double tolerance, int mode);

/// Appends the end points of the chords of the curve a-b: b.anchor last,
/// a.anchor not included. Halves at t = 0.5 until each piece is flat.
void FlattenCurve(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b, double maxLength, double tolerance,
                  int mode, std::vector<RVPOINT>& out);

/// The polyline of a curve as RvMiCurvesToPoints gives it for two points:
/// a.anchor, then the chords' end points.
inline void CurveToPoints(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b, double maxLength, double tolerance,
                          int mode, std::vector<RVPOINT>& out) {
  out.push_back(a.anchor);
  FlattenCurve(a, b, maxLength, tolerance, mode, out);
}

}  // namespace rv
