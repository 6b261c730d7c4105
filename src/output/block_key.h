// The grid of blocks that the cut-order sorts lay over the machine's working
// area: the key of a point runs row by row, and every odd row runs back
// against the even ones (a serpentine).
#pragma once

#include <cstdint>

namespace rv {

/// Side of a block: 10 mm for plotter class 1, 50 mm for all others.
inline double BlockSize(uint16_t plotterClass) { return plotterClass == 1 ? 10.0 : 50.0; }

/// The working area as the block key reads it.
struct BlockGrid {
  uint16_t plotterClass = 0;
  double minX = 0.0;        // deviceMinX
  double minY = 0.0;        // deviceMinY
  double areaWidth = 0.0;   // deviceMaxX - deviceMinX
  double areaHeight = 0.0;  // deviceMaxY - deviceMinY
};

/// The key of a point of plot space. Class 1 measures across from minX and
/// along from minY over the area's height; the other classes measure across
/// from minY and along from minX over the area's width. The result is
/// row * columns + column in signed 16-bit arithmetic.
int32_t BlockKey(const BlockGrid& grid, double x, double y);

}  // namespace rv
