// Placement of a plot job: where the drawing lands on the machine. Pure
// functions of the parameter block and the rectangle that the job occupies.
#pragma once

#include <cstdint>

#include "rvdataaccess.h"

namespace rv {

/// The only rotations that act: a quarter, a half and three quarters of a
/// turn, in single precision. Any other value, the double-precision
/// quarter turn included, leaves a job unrotated.
constexpr double kQuarterTurn = 1.5707963705062866;
constexpr double kHalfTurn = 3.1415927410125732;
constexpr double kThreeQuarterTurn = 4.71238899230957;
static_assert(kQuarterTurn == double(float(1.5707963267948966)));
static_assert(kHalfTurn == double(float(3.141592653589793)));
static_assert(kThreeQuarterTurn == double(float(4.71238898038469)));

/// The sets of plotter classes that steer the output. A class outside 0 to
/// 12 belongs to none of them.
namespace plotter {
/// The classes with a placement transform of their own, and the class of
/// hatching machines, whose unsorted route writes frames and lines only.
constexpr uint16_t kPlacementRotatedAtTop = 8;
constexpr uint16_t kHatchingMachine = 10;
inline bool BlockSorts(uint16_t c) { return c == 0; }
inline bool IsMilling(uint16_t c) { return c == 5 || c == 12; }
inline bool SkipsBothSides(uint16_t c) { return c == 8 || c == 9 || c == 10; }
/// The classes whose sorted route judges the nesting of every path it writes.
inline bool JudgesSortedNesting(uint16_t c) { return c != 0 && !IsMilling(c); }
inline bool HonoursStartPoints(uint16_t c) { return c == 1 || c == 4 || c == 11; }
inline bool NeverTheta(uint16_t c) { return c == 0 || c == 5 || c == 8 || c == 9 || c == 10 || c == 12; }
inline bool MirrorsX(uint16_t c) { return c == 0 || c == 3 || c == 4 || c == 5 || c == 11 || c == 12; }
inline bool MirrorsY(uint16_t c) { return c == 8 || c == 9; }
inline bool ExchangesXY(uint16_t c) { return c == 1 || c == 2 || c == 8 || c == 9 || c == 10; }
inline bool RotatedSide(uint16_t c) { return c == 0 || c == 3 || c == 4 || c == 11; }
inline bool NegatesMinX(uint16_t c) { return c == 0 || c == 4 || c == 5 || c == 11 || c == 12; }
inline bool NegatesMinY(uint16_t c) { return c == 8 || c == 9; }
}  // namespace plotter

/// Steps 4 to 7 of the base placement: translation to the rectangle's
/// lower left, rotation by one of the three acting values with its
/// translation, mirror, scale.
RVRIFMATRIX BasePlacement(const RVPLOTPARAM& param, const RVRECT& rect);

/// Concatenates the job offsets (scale correction, origin, frame margins)
/// and the device origin to `m`.
void ConcatJobOffsets(RVRIFMATRIX& m, const RVPLOTPARAM& param, const RVRECT& rect);

/// Concatenates the placement transform of classes 8 and 10 when
/// `usePlacementTransform` is on; other classes are left alone.
void ConcatPlacementTransform(RVRIFMATRIX& m, const RVPLOTPARAM& param, const RVRECT& rect);

/// The whole placement: base, job offsets, placement transform.
RVRIFMATRIX ComputePlacement(const RVPLOTPARAM& param, const RVRECT& rect);

/// The flip applied to every point right before it is written: x mirrored
/// in the x-mirroring classes, y in the y-mirroring classes, else identity.
RVRIFMATRIX OutputFlip(const RVPLOTPARAM& param, const RVRECT& rect);

/// `rect` grown by the four margins of `param` (left and bottom outward).
RVRECT GrowByMargins(const RVPLOTPARAM& param, const RVRECT& rect);

}  // namespace rv
