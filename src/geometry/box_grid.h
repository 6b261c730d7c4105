// Boxes filed in a hierarchy of grids, to answer "which boxes hold this
// point" without looking at every box.
//
// Level 0 is a grid of about as many cells as there are boxes over the box
// of them all, its cells about as wide as high however long and thin that
// box is; each level above has cells twice as wide and high (one cell wide
// or high at the least), up to one cell. A box is filed at the lowest level
// where it spans at most two cells each way, in those cells. A point is
// looked up in its cell at each level. Small boxes sit in small cells and
// large ones in large cells, so however the boxes nest or crowd, a point
// meets few boxes that don't hold it. The nesting judgment asks it for the
// outlines that may hold a path; it knows nothing of arts.
#pragma once

#include <cstdint>
#include <vector>

#include "frame/large_pages.h"

namespace rv {

/// A box of doubles with closed sides. Boxes given to the grid are finite
/// and have left <= right, bottom <= top.
struct PlainBox {
  double left = 0, bottom = 0, right = 0, top = 0;

  /// The box of one point.
  static PlainBox At(double x, double y) { return PlainBox{x, y, x, y}; }
  bool Holds(double x, double y) const { return left <= x && x <= right && bottom <= y && y <= top; }
  /// Whether the two boxes share a point.
  bool Meets(const PlainBox& b) const { return !(b.right < left || b.left > right || b.top < bottom || b.bottom > top); }
  PlainBox Grown(double by) const { return PlainBox{left - by, bottom - by, right + by, top + by}; }
  /// Widens the box to hold (x, y).
  void Take(double x, double y) {
    if (x < left) left = x;
    if (x > right) right = x;
    if (y < bottom) bottom = y;
    if (y > top) top = y;
  }
};

class BoxGrid {
 public:
  /// The grid of `boxes`; a box is named by its index in the vector.
  explicit BoxGrid(LargeArray<PlainBox> boxes);

  const PlainBox& Box(std::size_t index) const { return m_boxes[index]; }

  /// Calls visit(index) for every box that holds (x, y), in no particular
  /// order.
  template <class Visit>
  void Stab(double x, double y, Visit&& visit) const {
    if (m_boxes.empty() || !m_all.Holds(x, y)) return;
    const uint32_t cx = Cell(x, m_all.left, m_scaleX, m_sideX), cy = Cell(y, m_all.bottom, m_scaleY, m_sideY);
    for (const Level& level : m_levels) {
      const std::size_t cell = std::size_t(cy >> level.shift) * level.sideX + (cx >> level.shift);
      for (uint32_t k = level.start[cell]; k < level.start[cell + 1]; ++k) {
        const uint32_t id = level.ids[k];
        if (m_boxes[id].Holds(x, y)) visit(std::size_t(id));
      }
    }
  }

 private:
  /// Cells of one level: cell c (row-major, `sideX` per row) holds
  /// ids[start[c] .. start[c + 1]); level-0 cell coordinates >> shift give
  /// this level's.
  struct Level {
    uint32_t shift = 0;
    std::size_t sideX = 1;
    std::vector<uint32_t> start;
    std::vector<uint32_t> ids;
  };

  LargeArray<PlainBox> m_boxes;
  PlainBox m_all;
  uint32_t m_sideX = 1, m_sideY = 1;  // level-0 cells per row and per column, powers of two
  double m_scaleX = 0, m_scaleY = 0;
  std::vector<Level> m_levels;

  /// The level of a box and its cells there.
  struct Placed {
    uint32_t level, x0, y0, x1, y1;
  };
  Placed Place(const PlainBox& b, uint32_t levels) const;

  static uint32_t Cell(double v, double origin, double scale, uint32_t side) {
    const double c = (v - origin) * scale;
    return c >= double(side - 1) ? side - 1 : (c > 0 ? uint32_t(c) : 0);
  }
};

}  // namespace rv
