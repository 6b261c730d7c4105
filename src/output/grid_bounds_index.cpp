#include "output/grid_bounds_index.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "output/bounds_index.h"

namespace rv {

namespace {

// The grids answer when the art's box lies over at most this many cells of
// all levels; else the positions are walked plainly.
constexpr int64_t kGridCells = 64;
// A box is listed in the finest grid where it touches at most this many cells.
constexpr int64_t kCellsPerBox = 4;
constexpr int64_t kMaxGridSide = 4096;

std::pair<int64_t, int64_t> Span(int32_t a, int32_t b) { return {std::min(a, b), std::max(a, b)}; }

}  // namespace

GridBoundsIndex::GridBoundsIndex(const std::vector<IntRect>& boxes, std::vector<double> values)
    : m_boxes(boxes), m_values(std::move(values)), m_idAt(boxes.size()) {
  for (std::size_t k = 0; k < boxes.size(); ++k) m_idAt[k] = uint32_t(k);
  if (boxes.empty()) return;
  // Both tests need a point of b in a's box, so b's extent, over both orders
  // of its sides, is all that the grids need.
  int64_t x0 = INT64_MAX, y0 = INT64_MAX, x1 = INT64_MIN, y1 = INT64_MIN;
  for (const IntRect& b : boxes) {
    const auto [l, r] = Span(b.left, b.right);
    const auto [t, u] = Span(b.top, b.bottom);
    x0 = std::min(x0, l), x1 = std::max(x1, r), y0 = std::min(y0, t), y1 = std::max(y1, u);
  }
  m_x0 = x0, m_y0 = y0, m_width = x1 - x0 + 1, m_height = y1 - y0 + 1;
  MakeGrids();
}

GridBoundsIndex::CellRange GridBoundsIndex::CellsOf(int64_t x0, int64_t x1, int64_t y0, int64_t y1,
                                                    const Grid& g) const {
  // Monotone in x and y, and the same function for every box and art, so a
  // point in two ranges has its cell in both.
  auto cell = [](int64_t v, int64_t origin, double scale, int64_t per) {
    if (v <= origin) return int64_t{0};
    const int64_t c = int64_t(double(v - origin) * scale);
    return c >= per ? per - 1 : c;
  };
  return CellRange{cell(x0, m_x0, g.scaleX, g.perX), cell(x1, m_x0, g.scaleX, g.perX),
                   cell(y0, m_y0, g.scaleY, g.perY), cell(y1, m_y0, g.scaleY, g.perY)};
}

void GridBoundsIndex::MakeGrids() {
  const std::size_t n = m_boxes.size();
  // The finest cells: about as large as the median box, no smaller than one
  // box per cell of the drawing or a unit.
  std::vector<int64_t> extents(n);
  for (std::size_t id = 0; id < n; ++id) {
    const auto [l, r] = Span(m_boxes[id].left, m_boxes[id].right);
    const auto [t, u] = Span(m_boxes[id].top, m_boxes[id].bottom);
    extents[id] = std::max(r - l, u - t);
  }
  std::nth_element(extents.begin(), extents.begin() + std::ptrdiff_t(n / 2), extents.end());
  const double density = std::sqrt(double(m_width) * double(m_height) / double(n));
  const int64_t side0 = std::max<int64_t>({1, extents[n / 2], int64_t(density)});
  for (int level = 0;; ++level) {
    const int64_t side = side0 << level;
    Grid g;
    g.perX = std::min(kMaxGridSide, (m_width + side - 1) / side);
    g.perY = std::min(kMaxGridSide, (m_height + side - 1) / side);
    g.scaleX = double(g.perX) / double(m_width);
    g.scaleY = double(g.perY) / double(m_height);
    m_grids.push_back(std::move(g));
    if (m_grids.back().perX * m_grids.back().perY <= kCellsPerBox) break;
  }
  // Each box into the finest grid where it touches few cells (the last has
  // at most four cells in all); grids that list nothing are dropped.
  m_rangeOf.resize(n);
  m_gridOf.resize(n);
  std::vector<std::size_t> listed(m_grids.size());
  for (std::size_t id = 0; id < n; ++id) {
    const auto [l, r] = Span(m_boxes[id].left, m_boxes[id].right);
    const auto [t, u] = Span(m_boxes[id].top, m_boxes[id].bottom);
    for (std::size_t level = 0; level < m_grids.size(); ++level) {
      m_rangeOf[id] = CellsOf(l, r, t, u, m_grids[level]);
      m_gridOf[id] = uint8_t(level);
      if (m_rangeOf[id].count() <= kCellsPerBox) break;
    }
    ++listed[m_gridOf[id]];
  }
  std::vector<uint8_t> renumber(m_grids.size());
  std::size_t kept = 0;
  for (std::size_t level = 0; level < m_grids.size(); ++level) {
    renumber[level] = uint8_t(kept);
    if (listed[level] != 0) m_grids[kept++] = std::move(m_grids[level]);
  }
  m_grids.resize(kept);
  for (uint8_t& level : m_gridOf) level = renumber[level];

  for (Grid& g : m_grids) g.start.assign(std::size_t(g.perX * g.perY) + 1, 0);
  for (std::size_t id = 0; id < n; ++id) {
    EachCell(uint32_t(id), [&](std::size_t c) { ++m_grids[m_gridOf[id]].start[c + 1]; });
  }
  std::vector<std::vector<uint32_t>> fill(m_grids.size());
  for (std::size_t level = 0; level < m_grids.size(); ++level) {
    Grid& g = m_grids[level];
    for (std::size_t c = 1; c < g.start.size(); ++c) g.start[c] += g.start[c - 1];
    g.entries.resize(g.start.back());
    fill[level].assign(g.start.begin(), g.start.end() - 1);
  }
  // In identity order, which is position order at the start.
  for (std::size_t id = 0; id < n; ++id) {
    EachCell(uint32_t(id), [&](std::size_t c) {
      m_grids[m_gridOf[id]].entries[fill[m_gridOf[id]][c]++] = Listed{uint32_t(id), uint32_t(id)};
    });
  }
}

void GridBoundsIndex::Exchange(std::size_t i, std::size_t j) {
  const uint32_t moved = m_idAt[j], back = m_idAt[i];  // j -> i, i -> j
  m_idAt[i] = moved, m_idAt[j] = back;
  // The lists stay in position order. A cell that lists both keeps its
  // positions: the two change identities. Elsewhere the box moving to i
  // steps back over the positions between, the other steps forward.
  auto slotOf = [](Grid& g, std::size_t c, std::size_t pos) {
    const auto begin = g.entries.begin() + g.start[c], end = g.entries.begin() + g.start[c + 1];
    return std::lower_bound(begin, end, pos, [](const Listed& e, std::size_t p) { return e.pos < p; });
  };
  EachCell(moved, [&](std::size_t c) {
    Grid& g = m_grids[m_gridOf[moved]];
    auto at = slotOf(g, c, j);
    const auto begin = g.entries.begin() + g.start[c];
    const auto other = slotOf(g, c, i);
    if (other != g.entries.begin() + g.start[c + 1] && other->pos == i) {
      std::swap(at->id, other->id);
      return;
    }
    at->pos = uint32_t(i);
    for (; at != begin && (at - 1)->pos > i; --at) std::iter_swap(at, at - 1);
  });
  EachCell(back, [&](std::size_t c) {
    Grid& g = m_grids[m_gridOf[back]];
    auto at = slotOf(g, c, i);
    if (at == g.entries.begin() + g.start[c + 1] || at->pos != i || at->id != back) return;  // shared: done
    at->pos = uint32_t(j);
    const auto last = g.entries.begin() + g.start[c + 1] - 1;
    for (; at != last && (at + 1)->pos < j; ++at) std::iter_swap(at, at + 1);
  });
}

std::size_t GridBoundsIndex::FirstFrom(std::size_t from, const IntRect& a, double va) const {
  const std::size_t n = size();
  // Both tests need a point of b in a, and a has none when it is empty.
  if (from >= n || a.right <= a.left || a.bottom <= a.top) return n;
  CellRange ranges[64];
  int64_t cells = 0;
  bool few = m_grids.size() <= 64;
  for (std::size_t level = 0; few && level < m_grids.size(); ++level) {
    ranges[level] = CellsOf(a.left, int64_t(a.right) - 1, a.top, int64_t(a.bottom) - 1, m_grids[level]);
    cells += ranges[level].count();
    few = cells <= kGridCells;
  }
  if (!few) {
    for (std::size_t p = from; p < n; ++p) {
      const uint32_t id = m_idAt[p];
      if (ExchangesWith(a, va, m_boxes[id], m_values[id])) return p;
    }
    return n;
  }
  // In each cell, from the first entry at or after `from` up to the first
  // that exchanges or the best found so far.
  std::size_t found = n;
  auto before = [](const Listed& e, std::size_t p) { return e.pos < p; };
  for (std::size_t level = 0; level < m_grids.size(); ++level) {
    const Grid& g = m_grids[level];
    const CellRange& r = ranges[level];
    for (int64_t y = r.y0; y <= r.y1; ++y) {
      for (int64_t x = r.x0; x <= r.x1; ++x) {
        const std::size_t c = std::size_t(y * g.perX + x);
        const Listed* end = g.entries.data() + g.start[c + 1];
        for (const Listed* k = std::lower_bound(g.entries.data() + g.start[c], end, from, before); k != end; ++k) {
          if (k->pos >= found) break;
          if (ExchangesWith(a, va, m_boxes[k->id], m_values[k->id])) {
            found = k->pos;
            break;
          }
        }
      }
    }
  }
  return found;
}

}  // namespace rv
