#include "output/block_key.h"

#include <cmath>

#include "output/number_format.h"

namespace rv {

int32_t BlockKey(const BlockGrid& grid, double x, double y) {
  const double u = BlockSize(grid.plotterClass);
  double a, b, extent;
  if (grid.plotterClass == 1) {
    a = x - grid.minX;
    b = y - grid.minY;
    extent = grid.areaHeight;
  } else {
    a = x - grid.minY;
    b = y - grid.minX;
    extent = grid.areaWidth;
  }
  if (a < 0.0) a = 0.0;
  if (a > extent) a = extent - 1.0;
  const int64_t columns = int64_t(TruncToInt32(extent / u)) + 1;
  const int64_t row = TruncToInt32(b / u);
  int64_t column;
  if (std::fmod(double(row), 2.0) == 0.0) {
    column = TruncToInt32(a / u);
  } else {
    column = columns - TruncToInt32(a / u);
  }
  const int64_t key = row * columns + column;
  return int16_t(uint16_t(uint64_t(key) & 0xFFFFu));
}

}  // namespace rv
