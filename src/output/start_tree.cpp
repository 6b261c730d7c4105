#include "output/start_tree.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "geometry/affine.h"

namespace rv {

namespace {

constexpr uint32_t kNone = UINT32_MAX;

// Distance from p to the box, never above Distance(p, q) for a q in it.
double BoxDistance(const RVPOINT& p, double left, double bottom, double right, double top) {
  const double gx = p.x < left ? left - p.x : (p.x > right ? p.x - right : 0.0);
  const double gy = p.y < bottom ? bottom - p.y : (p.y > top ? p.y - top : 0.0);
  return std::sqrt(gx * gx + gy * gy);
}

}  // namespace

StartTree::StartTree(const std::vector<RVPOINT>& starts) : m_place(starts.size(), kNone) {
  for (std::size_t i = 0; i < starts.size(); ++i) {
    const RVPOINT& p = starts[i];
    if (!std::isfinite(p.x) || !std::isfinite(p.y)) continue;
    m_nodes.push_back(Node{p, p.x, p.y, p.x, p.y, uint32_t(i), 1, true});
  }
  m_removed.assign(m_nodes.size(), false);
  Build(0, m_nodes.size());
  for (std::size_t k = 0; k < m_nodes.size(); ++k) m_place[m_nodes[k].id] = uint32_t(k);
}

void StartTree::Build(std::size_t lo, std::size_t hi) {
  if (hi - lo <= 1) return;
  double left = m_nodes[lo].point.x, right = left, bottom = m_nodes[lo].point.y, top = bottom;
  for (std::size_t k = lo; k < hi; ++k) {
    const RVPOINT& p = m_nodes[k].point;
    left = std::min(left, p.x);
    right = std::max(right, p.x);
    bottom = std::min(bottom, p.y);
    top = std::max(top, p.y);
  }
  const bool splitX = right - left >= top - bottom;
  const std::size_t mid = lo + (hi - lo) / 2;
  std::nth_element(m_nodes.begin() + std::ptrdiff_t(lo), m_nodes.begin() + std::ptrdiff_t(mid),
                   m_nodes.begin() + std::ptrdiff_t(hi), [splitX](const Node& a, const Node& b) {
                     return splitX ? a.point.x < b.point.x : a.point.y < b.point.y;
                   });
  Build(lo, mid);
  Build(mid + 1, hi);
  Node& node = m_nodes[mid];
  node.left = left;
  node.bottom = bottom;
  node.right = right;
  node.top = top;
  node.open = uint32_t(hi - lo);
  node.splitX = splitX;
}

void StartTree::Remove(std::size_t id) {
  const uint32_t target = m_place[id];
  if (target == kNone || m_removed[target]) return;
  std::size_t lo = 0, hi = m_nodes.size();
  for (;;) {
    const std::size_t mid = lo + (hi - lo) / 2;
    --m_nodes[mid].open;
    if (mid == target) break;
    if (target < mid) {
      hi = mid;
    } else {
      lo = mid + 1;
    }
  }
  m_removed[target] = true;
}

double StartTree::Nearest(const RVPOINT& pen, std::vector<std::size_t>& ties) const {
  ties.clear();
  double best = std::numeric_limits<double>::infinity();
  // Ranges [lo, hi) to visit, the nearer child pushed last.
  std::vector<uint32_t>& stack = m_stack;
  stack.clear();
  if (!m_nodes.empty()) stack.insert(stack.end(), {0u, uint32_t(m_nodes.size())});
  while (!stack.empty()) {
    const std::size_t hi = stack.back();
    stack.pop_back();
    const std::size_t lo = stack.back();
    stack.pop_back();
    if (lo >= hi) continue;
    const std::size_t mid = lo + (hi - lo) / 2;
    const Node& node = m_nodes[mid];
    if (node.open == 0 || BoxDistance(pen, node.left, node.bottom, node.right, node.top) > best) continue;
    if (!m_removed[mid]) {
      const double d = Distance(pen, node.point);
      if (d < best) {
        best = d;
        ties.assign(1, node.id);
      } else if (d == best) {
        ties.push_back(node.id);
      }
    }
    const bool lowFirst = node.splitX ? pen.x < node.point.x : pen.y < node.point.y;
    const uint32_t low[2] = {uint32_t(lo), uint32_t(mid)}, high[2] = {uint32_t(mid + 1), uint32_t(hi)};
    const uint32_t* far = lowFirst ? high : low;
    const uint32_t* near = lowFirst ? low : high;
    stack.insert(stack.end(), {far[0], far[1], near[0], near[1]});
  }
  return best;
}

}  // namespace rv
