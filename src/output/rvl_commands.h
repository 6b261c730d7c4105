// The command vocabulary of plot output (g_RvlCommands) as the writers use
// it: row numbers by name, the cell of a dialect, the tool-to-pen map and the
// tool property table.
#pragma once

#include <cstdint>
#include <string>

#include "rvdataaccess.h"

namespace rv {

constexpr int kRvlRowCount = 101;
constexpr int kRvlDialectCount = 7;

/// Rows that the library writes.
enum RvlRow : int {
  kRowMove = 3,                // pen up to a point
  kRowDraw = 4,                // pen down to a point
  kRowPen = 13,                // pen or tool selection
  kRowSpeed = 15,              // whole-number speed, pen
  kRowPress = 16,              // pressure, pen
  kRowOffset = 17,             // blade offset
  kRowPenDown = 28,            // pen down in place
  kRowPenUp = 29,              // pen up in place
  kRowArc = 35,                // arc record
  kRowSpline = 37,             // spline triple
  kRowTheta = 43,              // one Theta value with its number
  kRowDepth = 45,              // depth in tenths of a millimetre
  kRowRpm = 47,                // spindle speed
  kRowThickness = 49,          // thickness in tenths of a millimetre
  kRowToolDefaults = 51,       // "DF1;"
  kRowSpeedDecimal = 52,       // decimal speed, pen
  kRowZSpeed = 54,             // plunge speed
  kRowPark = 56,               // park before the micro joints
  kRowLaserSpeed = 66,
  kRowLaserPower = 68,
  kRowLaserFreq = 70,
  kRowCoatingFeed = 79,
  kRowCoatingZ = 81,
  kRowCoatingFillMode = 86,
  kRowCoatingMoveOffset = 88,
  kRowCoatingNozzle = 90,
  kRowVCut = 95,               // V-cut settings
  kRowVCutDraw = 96,           // pen down to a point while V-cutting
};

/// The cell of `row` in `dialect`; the empty text for a row or dialect
/// outside the table.
inline const char* RvlCell(int row, int dialect) {
  if (row < 0 || row >= kRvlRowCount || dialect < 0 || dialect >= kRvlDialectCount) return "";
  return g_RvlCommands[row][dialect];
}

/// The pen of a tool: the pen of the first entry of `param.toolPens` whose
/// name equals `toolName` exactly and whose pen isn't 0 (an empty name ends
/// the map, as do its 40 entries); failing that, the low 16 bits of the tool
/// name read as a decimal number (0 for a name that isn't a number).
uint16_t ToolToPen(const RVPLOTPARAM& param, const char* toolName);

/// Flags of a pen in the tool property table.
struct ToolProperties {
  bool useDepth = false;
  bool usePress = false;
  bool vCut = false;
};

/// Looks `pen` up in the tool property table (pens 10, 11, 13, 14, 15, 17,
/// 20, 24, 25, 27, 35, -15, -25, -35, compared as unsigned 16-bit values).
/// Returns false, with `out` cleared, for a pen that isn't in it.
bool LookUpToolProperties(int16_t pen, ToolProperties& out);

}  // namespace rv
