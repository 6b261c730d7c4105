// The search of the refinement by bounds for entries in no spatial order.
//
// BoundsIndex prunes by runs of positions, which works when neighbouring
// positions lie near each other (the order of the block keys). Entries of
// one block keep the drawing's order, which may scatter them anywhere.
// GridBoundsIndex lists the boxes by place instead: grids of growing cells
// over the drawing, each box in the finest grid where it touches at most
// four cells, each cell's list in position order. The first entry at or
// after a position that exchanges with an art is the least of, in each cell
// under the art's box, the first such entry of the cell's list from that
// position. An art over many cells is walked plainly. Only the exact test
// decides, so the answer is that of the plain walk.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "output/int_rect.h"

namespace rv {

class GridBoundsIndex {
 public:
  /// Position k holds boxes[k] with values[k]; the two have the same size.
  GridBoundsIndex(const std::vector<IntRect>& boxes, std::vector<double> values);

  /// As BoundsIndex::FirstFrom.
  std::size_t FirstFrom(std::size_t from, const IntRect& a, double va) const;
  /// Positions i < j change their boxes and values.
  void Exchange(std::size_t i, std::size_t j);
  std::size_t size() const { return m_boxes.size(); }

 private:
  /// An inclusive range of cells of a grid.
  struct CellRange {
    int64_t x0, x1, y0, y1;
    int64_t count() const { return (x1 - x0 + 1) * (y1 - y0 + 1); }
  };
  /// A box listed in a cell: its position now and its identity.
  struct Listed {
    uint32_t pos;
    uint32_t id;
  };
  /// Cell c lists entries[start[c] .. start[c + 1]) by position.
  struct Grid {
    int64_t perX = 1, perY = 1;
    double scaleX = 1, scaleY = 1;  // cells per unit
    std::vector<uint32_t> start;
    std::vector<Listed> entries;
  };
  CellRange CellsOf(int64_t x0, int64_t x1, int64_t y0, int64_t y1, const Grid& g) const;
  void MakeGrids();
  template <class F>
  void EachCell(uint32_t id, F&& f) const {
    const CellRange& r = m_rangeOf[id];
    const int64_t perX = m_grids[m_gridOf[id]].perX;
    for (int64_t y = r.y0; y <= r.y1; ++y) {
      for (int64_t x = r.x0; x <= r.x1; ++x) f(std::size_t(y * perX + x));
    }
  }

  std::vector<IntRect> m_boxes;  // by identity: the first position of each box
  std::vector<double> m_values;
  std::vector<uint32_t> m_idAt;   // identity at each position
  int64_t m_x0 = 0, m_y0 = 0, m_width = 1, m_height = 1;  // the drawing's extent
  std::vector<Grid> m_grids;      // finest first
  std::vector<CellRange> m_rangeOf;  // the cells of each identity
  std::vector<uint8_t> m_gridOf;     // and their grid
};

}  // namespace rv
