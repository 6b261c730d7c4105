#include "geometry/box_grid.h"

#include <algorithm>
#include <cmath>

namespace rv {

BoxGrid::Placed BoxGrid::Place(const PlainBox& b, uint32_t levels) const {
  Placed p{0, Cell(b.left, m_all.left, m_scaleX, m_sideX), Cell(b.bottom, m_all.bottom, m_scaleY, m_sideY),
           Cell(b.right, m_all.left, m_scaleX, m_sideX), Cell(b.top, m_all.bottom, m_scaleY, m_sideY)};
  while (p.level + 1 < levels && ((p.x1 >> p.level) - (p.x0 >> p.level) > 1 || (p.y1 >> p.level) - (p.y0 >> p.level) > 1)) {
    ++p.level;
  }
  p.x0 >>= p.level;
  p.x1 >>= p.level;
  p.y0 >>= p.level;
  p.y1 >>= p.level;
  return p;
}

BoxGrid::BoxGrid(LargeArray<PlainBox> boxes) : m_boxes(std::move(boxes)) {
  if (m_boxes.empty()) return;
  m_all = m_boxes[0];
  for (const PlainBox& b : m_boxes) {
    m_all.Take(b.left, b.bottom);
    m_all.Take(b.right, b.top);
  }
  // About one cell per two boxes; each doubling goes to the side whose
  // cells are longer, so that a long strip of a drawing gets cells about
  // as wide as high.
  const double width = m_all.right - m_all.left, height = m_all.top - m_all.bottom;
  constexpr uint32_t kMostCells = 1u << 12;  // per side
  while (2.0 * double(m_sideX) * double(m_sideY) < double(m_boxes.size())) {
    const bool wider = width / double(m_sideX) >= height / double(m_sideY);
    if (wider && m_sideX < kMostCells) {
      m_sideX *= 2;
    } else if (m_sideY < kMostCells) {
      m_sideY *= 2;
    } else if (m_sideX < kMostCells) {
      m_sideX *= 2;
    } else {
      break;
    }
  }
  uint32_t levels = 1;
  while ((std::max(m_sideX, m_sideY) >> (levels - 1)) > 1) ++levels;
  m_scaleX = width > 0 ? double(m_sideX) / width : 0.0;
  m_scaleY = height > 0 ? double(m_sideY) / height : 0.0;
  if (!std::isfinite(m_scaleX)) m_scaleX = 0.0;
  if (!std::isfinite(m_scaleY)) m_scaleY = 0.0;

  m_levels.resize(levels);
  for (uint32_t l = 0; l < levels; ++l) {
    Level& level = m_levels[l];
    level.shift = l;
    level.sideX = std::max<std::size_t>(m_sideX >> l, 1);
    level.start.assign(level.sideX * std::max<std::size_t>(m_sideY >> l, 1) + 1, 0);
  }
  // Two passes over the boxes: count each cell's boxes, then file them.
  auto forCells = [&](std::size_t i, auto&& f) {
    const Placed p = Place(m_boxes[i], levels);
    Level& level = m_levels[p.level];
    for (uint32_t y = p.y0; y <= p.y1; ++y) {
      for (uint32_t x = p.x0; x <= p.x1; ++x) f(level, std::size_t(y) * level.sideX + x);
    }
  };
  for (std::size_t i = 0; i < m_boxes.size(); ++i) forCells(i, [](Level& level, std::size_t cell) { ++level.start[cell]; });
  // Each cell's start becomes the end of its run; filing counts it back down.
  for (Level& level : m_levels) {
    for (std::size_t c = 0; c + 1 < level.start.size(); ++c) level.start[c + 1] += level.start[c];
    level.ids.resize(level.start.back());
  }
  for (std::size_t i = m_boxes.size(); i-- > 0;) {
    forCells(i, [&](Level& level, std::size_t cell) { level.ids[--level.start[cell]] = uint32_t(i); });
  }
  // Levels without boxes cost a lookup each; drop them.
  std::erase_if(m_levels, [](const Level& level) { return level.ids.empty(); });
}

}  // namespace rv
