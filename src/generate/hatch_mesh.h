// Regions and mesh cells of a hatching run.
//
// Before the order rules (hatch_order.h) can work piece by piece, the hatched
// area is cut into pieces on two levels, all in the turned space where every
// hatch line is horizontal. Regions are boxes round the offset shapes, merged
// where they lie close, so that the head finishes one island before it goes
// to the next. Mesh cells are rectangles inside a region or inside the whole
// area, in the order in which the head visits them; they come from a grid or
// from mesh lines, the verticals at those x where a shape's outline changes
// the number of its edges.
//
// The region steps (CollectRegions, MergeRegions, FindMeshLines, declared in
// hatch_order.h) read "Rivlen_HatchingOffsetLayer" of the active document;
// everything else here works on a HatchWork and plain arrays only.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "generate/hatch_work.h"
#include "rvdataaccess.h"

namespace rv {

/// Marks of an RVHATCHLINE: unset, and a line that has been removed (an
/// empty line or one taken in by a join).
constexpr uint16_t kMarkUnset = 65535;
constexpr uint16_t kMarkRemoved = 65534;

/// Order rules of the hatch lines (the numbers are the host's).
enum HatchOrderRule : int16_t {
  kRuleNoSort = 0,             ///< leaves the lines as they are
  kRuleHeadMoveShortest = 1,   ///< the nearest line next, over all lines
  kRuleOnSameLine = 2,         ///< corner order over all lines
  kRuleMeshArea = 3,           ///< mesh order over all lines, in lineBounds
  kRuleBoundingBox = 4,        ///< region order, corner order in each region
  kRuleMeshAndBoundingBox = 5, ///< region order, two-column mesh in each region
  kRuleTangentAndBoundingBox = 6,  ///< region order, mesh split at the tangent lines
};

/// The layer whose shapes give the regions and mesh lines.
inline constexpr const char* kHatchingOffsetLayer = "Rivlen_HatchingOffsetLayer";

/// Step of the mesh-line sweep and the distance within which two sweep
/// lines of one region count as one, mm. The step sets the accuracy.
constexpr double kSweepStep = 0.01;
constexpr double kSweepMergeDistance = 0.011;
/// Most steps of one sweep (1 km of width at kSweepStep): a wider region's
/// sweep stops there instead of running for hours.
constexpr int64_t kMaxSweepSteps = 100'000'000;
/// Widening of a mesh box on its left and right, mm.
constexpr double kMeshSideMargin = 1.0;

/// A line with all four coordinates 0.
inline bool IsEmptyLine(const RVHATCHLINE& line) {
  return line.x1 == 0.0 && line.y1 == 0.0 && line.x2 == 0.0 && line.y2 == 0.0;
}
/// A box of four zeros: a removed region.
inline bool IsZeroBox(const RVRECT& box) {
  return box.top == 0.0 && box.left == 0.0 && box.right == 0.0 && box.bottom == 0.0;
}
/// v lies between a and b, both included, whichever of them is larger.
inline bool Between(double v, double a, double b) {
  return a <= b ? (a <= v && v <= b) : (b <= v && v <= a);
}

/// Index of the box with a corner nearest to `head`, over the boxes that
/// aren't zero; corners in the order (left, bottom), (left, top),
/// (right, bottom), (right, top); a tie keeps the first seen. -1 for none.
int32_t NearestBox(const RVPOINT& head, const std::vector<RVRECT>& boxes);

/// Fills work.meshCells for a mesh in `box` walked from the corner nearest
/// to `head` as a serpentine: a grid of info.meshWidth by info.meshHeight,
/// two columns for rule 5 (which writes info.meshWidth), or one row split at
/// the mesh lines for rule 6. Cells are stored with left <= right and
/// bottom <= top.
void BuildMesh(HatchWork& work, const RVRECT& box, const RVPOINT& head, int16_t rule);

/// Writes each unset firstMark: kMarkRemoved for an empty line, else the
/// index of the first cell that holds one of the line's ends (y1 within the
/// cell's rows, x1 or x2 within its columns). Lines in no cell stay unset.
void AssignMesh(const HatchWork& work, std::vector<RVHATCHLINE>& lines);
/// The same with work.regionBoxes and secondMark.
void AssignRegion(const HatchWork& work, std::vector<RVHATCHLINE>& lines);

/// The first of `boxes` (cells or regions) that holds an end of `line`, by a
/// scan over all of them: the test oracle of the indexed search.
int32_t FirstHoldingBoxPlain(const RVHATCHLINE& line, const std::vector<RVRECT>& boxes);

/// Appends to work.meshLines the sweep lines of one polyline (x, y pairs) in
/// region `region` with box `box`, and thins them to one per 0.011 mm.
void SweepPolyline(HatchWork& work, const std::vector<RVPOINT>& polyline, uint16_t region,
                   const RVRECT& box);
/// The same, counting the crossed edges anew at every step: the oracle of
/// the event-driven count that SweepPolyline uses.
void SweepPolylinePlain(HatchWork& work, const std::vector<RVPOINT>& polyline, uint16_t region,
                        const RVRECT& box);

}  // namespace rv
