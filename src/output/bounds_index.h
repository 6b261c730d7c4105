// The search of the refinement by bounds: which later entry does the
// current art exchange places with?
//
// The refinement walks every later entry of each art and takes the first
// that meets its box with a smaller value, or that lies in its box. A plain
// walk costs every pair. BoundsIndex answers "the first such entry at or
// after a position" from a tree over the positions whose nodes keep the
// extremes of their boxes' sides, their least value and a coarse map of the
// cells of the drawing that their boxes touch (64 cells, about square). The
// search walks from the start rightward and passes over every node that can
// hold no such entry; only the exact test at a leaf decides, so the answer
// is that of the plain walk. The lowest nodes stand for buckets of a few
// positions, which the search tests one by one. Entries in the order of the
// block keys lie near their neighbours, and the nodes prune well; entries
// all in one block, in no spatial order, prune little.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "frame/large_pages.h"
#include "output/int_rect.h"

namespace rv {

/// The exchange test of the refinement: b (value vb) changes places with the
/// art of grown box a (value va) when b meets a and vb < va, or when all four
/// corners of b lie in a.
bool ExchangesWith(const IntRect& a, double va, const IntRect& b, double vb);

class BoundsIndex {
 public:
  /// Position k holds boxes[k] with values[k]; the two have the same size.
  BoundsIndex(std::vector<IntRect> boxes, std::vector<double> values);

  /// The first position k >= from whose box and value exchange with (a, va);
  /// size() when there is none. `from` lies beyond every position i that
  /// Exchange was given as its first.
  std::size_t FirstFrom(std::size_t from, const IntRect& a, double va) const;
  /// Positions i < j change their boxes and values; no search starts at or
  /// before i any more.
  void Exchange(std::size_t i, std::size_t j);
  std::size_t size() const { return m_boxes.size(); }

 private:
  struct Node {
    int32_t minLeft, maxLeft, minRight, maxRight;
    int32_t minTop, maxTop, minBottom, maxBottom;
    double minValue;  // NaN never counts
    uint64_t cells;   // the cells over the drawing that the boxes touch
    bool operator==(const Node&) const = default;
  };
  static Node Empty();
  Node Leaf(std::size_t position) const;
  static void Join(Node& out, const Node& l, const Node& r);
  /// The cells touched by the x range [x0, x1] and y range [y0, y1].
  uint64_t CellsOf(int64_t x0, int64_t x1, int64_t y0, int64_t y1) const;
  bool MayHold(const Node& node, const IntRect& a, double va, uint64_t cells) const;

  std::vector<IntRect> m_boxes;
  std::vector<double> m_values;
  std::vector<uint64_t> m_cells;  // of each position's box
  // The drawing's extent: the least corner and the sizes.
  int64_t m_x0 = 0, m_y0 = 0, m_width = 1, m_height = 1;
  uint32_t m_columnBits = 3;  // 2^m_columnBits columns of cells, 64 cells in all
  // Positions in buckets of kBucket; m_buckets (a power of two) bucket
  // nodes from m_buckets on, node k with children 2k and 2k + 1 above them.
  static constexpr std::size_t kBucket = 4;
  std::size_t m_buckets = 1;
  LargeArray<Node> m_nodes;

  /// The node of bucket b from its positions' boxes and values.
  Node Bucket(std::size_t b) const;
};

}  // namespace rv
