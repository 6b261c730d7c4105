// The open starts of one run of the nearest-start refinement, in a k-d tree
// from which settled starts are taken out.
//
// The tree is balanced once over the run's finite starts (median splits,
// the wider side of each box first) and never rebuilt: taking a start out
// only lowers the counts of open starts on its path, and a search passes
// over subtrees that have none. A search gives the least distance from the
// pen, computed as Distance computes it, and every start at exactly that
// distance, so that the caller can break ties by its own rule. A subtree is
// passed over only when the distance to its box, which is never above the
// distance to any of its starts (rounding is monotone), exceeds the best so
// far; so no start at the least distance is missed.
#pragma once

#include <cstdint>
#include <vector>

#include "rvdataaccess.h"

namespace rv {

class StartTree {
 public:
  /// The tree of the finite ones of `starts`; a start is named by its index.
  explicit StartTree(const std::vector<RVPOINT>& starts);

  /// Takes start `id` out; it must be in the tree.
  void Remove(std::size_t id);

  /// The least Distance(pen, start) over the open finite starts, with the
  /// ids of all starts at exactly that distance in `ties` (any order).
  /// Infinity and no ties when the tree is empty or no distance compares
  /// (a NaN pen).
  double Nearest(const RVPOINT& pen, std::vector<std::size_t>& ties) const;

 private:
  struct Node {
    RVPOINT point;
    double left, bottom, right, top;  // box of the subtree
    uint32_t id;
    uint32_t open;  // open starts in the subtree
    bool splitX;
  };
  // The subtree of [lo, hi) in m_nodes has its root at the middle.
  void Build(std::size_t lo, std::size_t hi);

  std::vector<Node> m_nodes;
  std::vector<uint32_t> m_place;  // node of each id, or kNone
  std::vector<bool> m_removed;    // by node
  mutable std::vector<uint32_t> m_stack;
};

}  // namespace rv
