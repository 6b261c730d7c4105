// The working state of one hatching run.
//
// CRvHatching (hatching.h) takes over the host's RVHATCHINGINFO and keeps
// everything a run works on in one HatchWork: the turned-space lines, the box
// of the line stack, the head's start, the regions, mesh lines and mesh cells
// and the costs of the order rules tried. The generation steps fill `lines`;
// the region, mesh and order steps (hatch_order.h) read and reorder them.
// Everything here is in the turned space, where every hatch line is
// horizontal and runs from (x1, y1) to (x2, y2).
#pragma once

#include <cstdint>
#include <vector>

#include "rvdataaccess.h"

namespace rv {

/// The cost of one order rule: the head's travel between lines (-1.0 when
/// there are no lines) and the rule's number.
struct RVSORTDATA {
  double cost = -1.0;
  int16_t rule = 0;
};

/// What a hatching run works on; fields in the order the instance holds them.
struct HatchWork {
  RVHATCHINGINFO info{};                 ///< working copy of the host's record
  RVRIFMATRIX workMatrix{1, 0, 0, 1, 0, 0};
  std::vector<RVHATCHLINE> lines;        ///< the lines under work
  RVRECT lineBounds{};                   ///< the box that the stack of lines fills
  RVPOINT headStart{};                   ///< where the head stands before the first line
  std::vector<RVRECT> meshCells;         ///< in the order in which the head visits them
  std::vector<RVRECT> regionBoxes;       ///< a box of four zeros is a removed box
  std::vector<RVHATCHLINE> meshLines;    ///< vertical lines, region index in firstMark
  std::vector<RVSORTDATA> sortDataSet;   ///< the rules tried, with their costs
  int32_t bestRule = 0;                  ///< index into sortDataSet
  /// Pen-up travel of the last ordering, measured as the rules are: of the
  /// lines as the clipper gave them and in the order applied (-1.0: none).
  double clipperTravel = -1.0;
  double chosenTravel = -1.0;
};

}  // namespace rv
