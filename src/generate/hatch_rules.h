// The order rules of hatch lines and the steps they are made of.
//
// OrderLines (hatch_order.h) tries rules 5, 4 and 6 on copies of the lines,
// measures the head's travel between lines for each and applies the cheapest.
// The steps below work on plain arrays of RVHATCHLINE in the turned space,
// where every line is horizontal and is drawn from (x1, y1) to (x2, y2); an
// empty line has four zero coordinates. They read the run's parameters and
// write its mesh cells through the HatchWork, and touch no document.
//
// Every sort here is stable, so lines with equal keys keep the order they
// had, and in the end the clipper's order decides among them.
//
// Two steps have a plain form beside the fast one, for the tests to hold one
// against the other: the greedy walk of the head-move rule (a grid search
// instead of a scan over all lines for each step) and the joining of lines
// (lines join only on exactly one y, so each y is joined on its own).
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

#include "generate/hatch_work.h"
#include "rvdataaccess.h"

namespace rv {

/// Distance from `head` to (x, y), the one measure of every nearest-first choice.
inline double HeadDistance(const RVPOINT& head, double x, double y) {
  const double dx = x - head.x;
  const double dy = y - head.y;
  return std::sqrt(dx * dx + dy * dy);
}

/// Sets and returns work.headStart: a corner of work.lineBounds chosen by
/// headFromRight and by whether the lines are turned (angle not 0).
RVPOINT HeadStart(HatchWork& work);

/// Moves the start of each line that isn't empty back against its travel by
/// `start` and its end back by `end`; a line reversed or shrunk to nothing by
/// it becomes empty.
void ShiftLines(std::vector<RVHATCHLINE>& lines, double start, double end);
/// The opposite of ShiftLines, without the test for collapse.
void UnshiftLines(std::vector<RVHATCHLINE>& lines, double start, double end);
/// Lengthens each line that isn't empty by `start` before its start and `end`
/// behind its end.
void ExtendLines(std::vector<RVHATCHLINE>& lines, double start, double end);
/// The opposite of ExtendLines, on every line.
void UnextendLines(std::vector<RVHATCHLINE>& lines, double start, double end);

/// Closes gaps narrower than `limit` between lines on exactly the same y:
/// the earlier line takes in the outer ends of the later, which becomes
/// empty with both marks kMarkRemoved; then every empty line is erased.
void JoinLines(std::vector<RVHATCHLINE>& lines, double limit);
/// JoinLines comparing every pair of lines: the test oracle.
void JoinLinesPlain(std::vector<RVHATCHLINE>& lines, double limit);

/// Sorts by corner c (0 to 3): rows of equal y1 upward (c 0, 1) or downward
/// (c 2, 3), lines made to run one way, each row by x1.
void SortByCorner(std::vector<RVHATCHLINE>& lines, int corner);
/// Turns lines so that the head runs each row the other way from the last,
/// starting at the end of the first line nearer to `head`.
void SerpentineDirections(std::vector<RVHATCHLINE>& lines, const RVPOINT& head);
/// Corner order: rows from the corner nearest to `head`, as a serpentine.
void CornerOrder(const HatchWork& work, std::vector<RVHATCHLINE>& lines, const RVPOINT& head);

/// Head-move rule: the nearest line next, either way round, from headStart.
void HeadMoveOrder(HatchWork& work, std::vector<RVHATCHLINE>& lines);
/// The same by a scan over all lines for every step: the test oracle.
void HeadMoveOrderPlain(HatchWork& work, std::vector<RVHATCHLINE>& lines);

/// Mesh order in `box` from `head`: joined lines, cell by cell in the order
/// of the mesh, corner order in each cell. Lines in no cell drop out.
void MeshOrder(HatchWork& work, std::vector<RVHATCHLINE>& lines, const RVRECT& box, const RVPOINT& head,
               int16_t rule);
/// Region order: the region nearest to the head next, its lines by a mesh
/// (rules 5 and 6) or joined in corner order. Lines in no region drop out.
void RegionOrder(HatchWork& work, std::vector<RVHATCHLINE>& lines, int16_t rule);

/// Puts `lines` in the order of `rule` (an unknown rule leaves them).
void ApplyRule(HatchWork& work, std::vector<RVHATCHLINE>& lines, int16_t rule);
/// The head's travel between the lines, measured with the shifts (unless
/// they are kept on the lines already) and extensions on: from headStart to
/// the first line and from each line's end to the next line's start. 0 for
/// one line, -1.0 for none.
double MeasureTravel(HatchWork& work, const std::vector<RVHATCHLINE>& lines);

/// Name of a rule in the order log; null for a number outside 0 to 6.
const char* RuleLogName(int16_t rule);

}  // namespace rv
