#include "output/bounds_index.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace rv {

bool ExchangesWith(const IntRect& a, double va, const IntRect& b, double vb) {
  IntRect common;
  if (IntersectRect(common, a, b) && vb < va) return true;
  return PtInRect(a, b.left, b.top) && PtInRect(a, b.right, b.top) && PtInRect(a, b.left, b.bottom) &&
         PtInRect(a, b.right, b.bottom);
}

BoundsIndex::Node BoundsIndex::Empty() {
  constexpr int32_t lo = std::numeric_limits<int32_t>::min(), hi = std::numeric_limits<int32_t>::max();
  return Node{hi, lo, hi, lo, hi, lo, hi, lo, std::numeric_limits<double>::infinity(), 0};
}

BoundsIndex::BoundsIndex(std::vector<IntRect> boxes, std::vector<double> values)
    : m_boxes(std::move(boxes)), m_values(std::move(values)) {
  const std::size_t n = m_boxes.size();
  // Both tests need a point of b in a's box, so the cells of b are those of
  // its extent, taken over both orders of its sides.
  if (n != 0) {
    int64_t x0 = std::numeric_limits<int64_t>::max(), y0 = x0, x1 = std::numeric_limits<int64_t>::min(), y1 = x1;
    for (const IntRect& b : m_boxes) {
      x0 = std::min<int64_t>(x0, std::min(b.left, b.right));
      x1 = std::max<int64_t>(x1, std::max(b.left, b.right));
      y0 = std::min<int64_t>(y0, std::min(b.top, b.bottom));
      y1 = std::max<int64_t>(y1, std::max(b.top, b.bottom));
    }
    m_x0 = x0, m_y0 = y0, m_width = x1 - x0 + 1, m_height = y1 - y0 + 1;
  }
  // 64 cells, split between columns and rows so that a cell is about as
  // wide as high: a long strip of a drawing gets more columns than rows.
  const double columnBits = std::round((std::log2(double(m_width) / double(m_height)) + 6.0) / 2.0);
  m_columnBits = uint32_t(std::clamp(columnBits, 0.0, 6.0));
  m_cells.resize(n);
  for (std::size_t k = 0; k < n; ++k) {
    const IntRect& b = m_boxes[k];
    m_cells[k] = CellsOf(std::min(b.left, b.right), std::max(b.left, b.right), std::min(b.top, b.bottom),
                         std::max(b.top, b.bottom));
  }
  while (m_buckets * kBucket < n) m_buckets *= 2;
  m_nodes.assign(2 * m_buckets, Empty());
  for (std::size_t b = 0; b * kBucket < n; ++b) m_nodes[m_buckets + b] = Bucket(b);
  for (std::size_t k = m_buckets - 1; k >= 1; --k) Join(m_nodes[k], m_nodes[2 * k], m_nodes[2 * k + 1]);
}

BoundsIndex::Node BoundsIndex::Bucket(std::size_t b) const {
  Node node = Empty();
  for (std::size_t k = b * kBucket; k < std::min(size(), (b + 1) * kBucket); ++k) Join(node, node, Leaf(k));
  return node;
}

uint64_t BoundsIndex::CellsOf(int64_t x0, int64_t x1, int64_t y0, int64_t y1) const {
  // Monotone in x and y, so a point in two ranges has its cell in both maps.
  auto cell = [](int64_t v, int64_t origin, int64_t extent, int64_t count) {
    if (v <= origin) return int64_t{0};
    const int64_t c = (v - origin) * count / extent;
    return c > count - 1 ? count - 1 : c;
  };
  const int64_t cols = int64_t{1} << m_columnBits, rows = int64_t{64} >> m_columnBits;
  const int64_t c0 = cell(x0, m_x0, m_width, cols), c1 = cell(x1, m_x0, m_width, cols);
  const uint64_t row = (~uint64_t{0} >> (63 - (c1 - c0))) << c0;
  uint64_t cells = 0;
  for (int64_t r = cell(y0, m_y0, m_height, rows), r1 = cell(y1, m_y0, m_height, rows); r <= r1; ++r) {
    cells |= row << (cols * r);
  }
  return cells;
}

BoundsIndex::Node BoundsIndex::Leaf(std::size_t position) const {
  const IntRect& b = m_boxes[position];
  const double value = m_values[position];
  return Node{b.left,   b.left,  b.right,  b.right, b.top, b.top, b.bottom, b.bottom,
              std::isnan(value) ? std::numeric_limits<double>::infinity() : value, m_cells[position]};
}

void BoundsIndex::Join(Node& out, const Node& l, const Node& r) {
  out.minLeft = std::min(l.minLeft, r.minLeft), out.maxLeft = std::max(l.maxLeft, r.maxLeft);
  out.minRight = std::min(l.minRight, r.minRight), out.maxRight = std::max(l.maxRight, r.maxRight);
  out.minTop = std::min(l.minTop, r.minTop), out.maxTop = std::max(l.maxTop, r.maxTop);
  out.minBottom = std::min(l.minBottom, r.minBottom), out.maxBottom = std::max(l.maxBottom, r.maxBottom);
  out.minValue = std::min(l.minValue, r.minValue);
  out.cells = l.cells | r.cells;
}

void BoundsIndex::Exchange(std::size_t i, std::size_t j) {
  std::swap(m_boxes[i], m_boxes[j]);
  std::swap(m_values[i], m_values[j]);
  std::swap(m_cells[i], m_cells[j]);
  // Searches start after i only, and test the positions of their first
  // bucket one by one: only j's bucket and its ancestors change, up to the
  // first node that stays as it was.
  std::size_t node = m_buckets + j / kBucket;
  Node now = Bucket(j / kBucket);
  while (node >= 1 && !(now == m_nodes[node])) {
    m_nodes[node] = now;
    node /= 2;
    if (node >= 1) Join(now, m_nodes[2 * node], m_nodes[2 * node + 1]);
  }
}

[[gnu::always_inline]] inline bool BoundsIndex::MayHold(const Node& n, const IntRect& a, double va,
                                                        uint64_t cells) const {
  if ((n.cells & cells) == 0) return false;
  // Meeting with a smaller value: some left below a's right, some right
  // beyond a's left, the same in y, and some value below va.
  const bool meets = n.minValue < va && n.minLeft < a.right && n.maxRight > a.left && n.minTop < a.bottom &&
                     n.maxBottom > a.top;
  // Lying in a: every side of some box within a's half-open ranges.
  const bool within = n.maxLeft >= a.left && n.minLeft < a.right && n.maxRight >= a.left && n.minRight < a.right &&
                      n.maxTop >= a.top && n.minTop < a.bottom && n.maxBottom >= a.top && n.minBottom < a.bottom;
  return meets || within;
}

std::size_t BoundsIndex::FirstFrom(std::size_t from, const IntRect& a, double va) const {
  // Both tests need a point of b in a, and a has none when it is empty.
  const std::size_t none = size();
  if (from >= none || a.right <= a.left || a.bottom <= a.top) return none;
  // The rest of the first bucket, one by one.
  const std::size_t first = from / kBucket;
  for (std::size_t k = from; k < std::min(none, (first + 1) * kBucket); ++k) {
    if (ExchangesWith(a, va, m_boxes[k], m_values[k])) return k;
  }
  const uint64_t cells = CellsOf(a.left, int64_t(a.right) - 1, a.top, int64_t(a.bottom) - 1);
  // From the next bucket rightward: a node that may hold an answer is
  // entered at its left child, any other is passed by moving to the next
  // subtree on the right (up while it is a right child, then across).
  std::size_t node = m_buckets + first;
  for (;;) {
    while (node & 1) node /= 2;
    if (node == 0) return none;
    ++node;
    while (MayHold(m_nodes[node], a, va, cells)) {
      if (node >= m_buckets) {
        const std::size_t b = node - m_buckets;
        for (std::size_t k = b * kBucket; k < std::min(none, (b + 1) * kBucket); ++k) {
          if (ExchangesWith(a, va, m_boxes[k], m_values[k])) return k;
        }
        break;
      }
      node *= 2;
    }
  }
}

}  // namespace rv
