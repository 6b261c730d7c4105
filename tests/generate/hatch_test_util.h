// Small builders for the hatching order tests: lines, boxes and a HatchWork
// with the host's defaults.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "generate/hatch_mesh.h"
#include "generate/hatch_work.h"

namespace hatchtest {

inline RVHATCHLINE Line(double x1, double y, double x2) {
  return RVHATCHLINE{x1, y, x2, y, rv::kMarkUnset, rv::kMarkUnset};
}

/// Box from its left, bottom, right and top.
inline RVRECT Box(double left, double bottom, double right, double top) { return RVRECT{top, left, right, bottom}; }

/// A HatchWork with the defaults of the parameter record and `bounds` as
/// the box of the line stack.
inline rv::HatchWork Work(const RVRECT& bounds) {
  rv::HatchWork work;
  work.info.pitch = 5.0;
  work.info.keepShift = 1;
  work.info.spreadLines = 1;
  work.info.generate = 1;
  work.info.reserved = 5;
  work.lineBounds = bounds;
  return work;
}

/// "x1>x2@y" for each line, so that an order reads as one string.
inline std::string Text(const std::vector<RVHATCHLINE>& lines) {
  std::string out;
  char buffer[96];
  for (const RVHATCHLINE& l : lines) {
    std::snprintf(buffer, sizeof buffer, "%g>%g@%g ", l.x1, l.x2, l.y1);
    out += buffer;
  }
  return out;
}

/// `count` horizontal lines of random rows and ends in [0, size), runs of
/// either direction, some on shared rows.
inline std::vector<RVHATCHLINE> RandomLines(std::size_t count, double size, unsigned seed) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> coordinate(0.0, size);
  std::uniform_int_distribution<int> row(0, int(count / 3 + 1));
  std::vector<RVHATCHLINE> lines;
  for (std::size_t i = 0; i < count; ++i) {
    const double y = double(row(random)) * size / double(count / 3 + 2);
    lines.push_back(Line(coordinate(random), y, coordinate(random)));
  }
  return lines;
}

}  // namespace hatchtest
