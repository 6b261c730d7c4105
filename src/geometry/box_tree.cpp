#include "geometry/box_tree.h"

#include <algorithm>
#include <cmath>

namespace rv {

namespace {

/// Entries of a node, leaf or inner.
constexpr std::size_t kFanout = 16;

struct Entry {
  PlainBox box;
  uint32_t id;
};

double CentreX(const PlainBox& b) { return b.left * 0.5 + b.right * 0.5; }
double CentreY(const PlainBox& b) { return b.bottom * 0.5 + b.top * 0.5; }

PlainBox Union(const PlainBox& a, const PlainBox& b) {
  return {std::min(a.left, b.left), std::min(a.bottom, b.bottom), std::max(a.right, b.right), std::max(a.top, b.top)};
}

// Puts the entries into tile order: vertical slices of about sqrt(nodes)
// nodes each by centre x, each slice by centre y.
void TileOrder(std::vector<Entry>& entries) {
  const std::size_t nodes = (entries.size() + kFanout - 1) / kFanout;
  const auto slices = std::size_t(std::ceil(std::sqrt(double(nodes))));
  const std::size_t perSlice = ((nodes + slices - 1) / slices) * kFanout;
  std::sort(entries.begin(), entries.end(),
            [](const Entry& a, const Entry& b) { return CentreX(a.box) < CentreX(b.box); });
  for (std::size_t s = 0; s < entries.size(); s += perSlice) {
    const auto end = entries.begin() + std::ptrdiff_t(std::min(entries.size(), s + perSlice));
    std::sort(entries.begin() + std::ptrdiff_t(s), end,
              [](const Entry& a, const Entry& b) { return CentreY(a.box) < CentreY(b.box); });
  }
}

}  // namespace

BoxTree::BoxTree(const std::vector<PlainBox>& boxes) : m_boxes(boxes) {
  if (boxes.empty()) return;
  std::vector<Entry> level;
  level.reserve(boxes.size());
  for (std::size_t i = 0; i < boxes.size(); ++i) level.push_back(Entry{boxes[i], uint32_t(i)});
  bool leaves = true;
  for (;;) {
    TileOrder(level);
    std::vector<Entry> parents;
    for (std::size_t k = 0; k < level.size(); k += kFanout) {
      Node node;
      node.first = uint32_t(m_slots.size());
      node.leaf = leaves;
      node.box = level[k].box;
      for (std::size_t e = k; e < std::min(level.size(), k + kFanout); ++e) {
        node.box = Union(node.box, level[e].box);
        m_slots.push_back(level[e].id);
      }
      node.count = uint32_t(m_slots.size() - node.first);
      parents.push_back(Entry{node.box, uint32_t(m_nodes.size())});
      m_nodes.push_back(node);
    }
    if (parents.size() == 1) break;
    level = std::move(parents);
    leaves = false;
  }
}

}  // namespace rv
