// A static tree of axis-parallel boxes that answers "which boxes hold this
// point" without looking at every box.
//
// The tree is packed once from its boxes (sort-tile-recursive: sorted by
// centre x into vertical slices, each slice sorted by centre y, and cut into
// nodes of kFanout), so neighbours in space share a node. A query descends
// only into nodes whose box holds the point. The nesting judgment asks it
// for the outlines that may hold a path; it knows nothing of arts.
#pragma once

#include <cstdint>
#include <vector>

namespace rv {

/// A box of doubles with closed sides. Boxes given to the tree are finite
/// and have left <= right, bottom <= top.
struct PlainBox {
  double left = 0, bottom = 0, right = 0, top = 0;

  bool Holds(double x, double y) const { return left <= x && x <= right && bottom <= y && y <= top; }
};

class BoxTree {
 public:
  /// The tree of `boxes`; a box is named by its index in the vector.
  explicit BoxTree(const std::vector<PlainBox>& boxes);

  /// Calls visit(index) for every box that holds (x, y), in no particular
  /// order.
  template <class Visit>
  void Stab(double x, double y, Visit&& visit) const {
    if (m_nodes.empty()) return;
    std::vector<uint32_t>& stack = m_stack;
    stack.assign(1, uint32_t(m_nodes.size() - 1));
    while (!stack.empty()) {
      const Node& node = m_nodes[stack.back()];
      stack.pop_back();
      if (!node.box.Holds(x, y)) continue;
      for (uint32_t k = node.first; k < node.first + node.count; ++k) {
        if (node.leaf) {
          if (m_boxes[m_slots[k]].Holds(x, y)) visit(std::size_t(m_slots[k]));
        } else {
          stack.push_back(m_slots[k]);
        }
      }
    }
  }

 private:
  /// Entries of a node: leaves name boxes, inner nodes name nodes, both
  /// through m_slots[first .. first + count).
  struct Node {
    PlainBox box;
    uint32_t first = 0;
    uint32_t count = 0;
    bool leaf = true;
  };

  std::vector<PlainBox> m_boxes;
  std::vector<Node> m_nodes;  // level by level, the root last
  std::vector<uint32_t> m_slots;
  mutable std::vector<uint32_t> m_stack;  // the work list of Stab, kept for its storage
};

}  // namespace rv
