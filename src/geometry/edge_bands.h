// Horizontal bands over the edges of a polyline, so that the edges near a
// height are found without looking at every edge.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "rvdataaccess.h"

namespace rv {

/// Bands of equal height over [bottom, top]. Band k lists its edges, each as
/// the index of its first point, in Edges(k); an edge belongs to every band
/// that its height, widened by `widen`, touches.
class EdgeBands {
 public:
  bool Empty() const { return m_start.empty(); }

  /// Makes the bands for the edges that forEachEdge(f) names by calling
  /// f(index, a, b). As many bands as there are pairs of edges, fewer when
  /// steep edges would sit in too many of them, down to one band that holds
  /// every edge.
  template <class ForEachEdge>
  void Make(double bottom, double top, double widen, std::size_t edgeCount, ForEachEdge&& forEachEdge);

  std::size_t BandOf(double y) const {
    const std::size_t bands = m_start.size() - 1;
    if (bands == 1 || !(y > m_bottom)) return 0;
    const double k = std::floor((y - m_bottom) / m_height);
    return k >= double(bands - 1) ? bands - 1 : std::size_t(k);
  }
  const uint32_t* begin(std::size_t band) const { return m_edges.data() + m_start[band]; }
  const uint32_t* end(std::size_t band) const { return m_edges.data() + m_start[band + 1]; }

 private:
  double m_bottom = 0;
  double m_height = 0;
  std::vector<uint32_t> m_start;
  std::vector<uint32_t> m_edges;
};

template <class ForEachEdge>
void EdgeBands::Make(double bottom, double top, double widen, std::size_t edgeCount, ForEachEdge&& forEachEdge) {
  m_bottom = bottom;
  const double height = top - bottom;
  auto range = [&](const RVPOINT& a, const RVPOINT& b) {
    return std::pair{BandOf((a.y < b.y ? a.y : b.y) - widen), BandOf((a.y < b.y ? b.y : a.y) + widen)};
  };
  const std::size_t budget = 8 * edgeCount + 64;
  std::size_t bands = edgeCount / 2 + 1;
  for (;;) {
    m_start.assign(bands + 1, 0);
    m_height = height / double(bands);
    if (bands == 1 || !(m_height > 0)) {
      m_start.assign({0, 0});
      break;
    }
    std::size_t entries = 0;
    forEachEdge([&](std::size_t, const RVPOINT& a, const RVPOINT& b) {
      const auto [low, high] = range(a, b);
      entries += high - low + 1;
    });
    if (entries <= budget) break;
    bands /= 2;
  }
  bands = m_start.size() - 1;
  forEachEdge([&](std::size_t, const RVPOINT& a, const RVPOINT& b) {
    const auto [low, high] = range(a, b);
    for (std::size_t k = low; k <= high; ++k) ++m_start[k + 1];
  });
  for (std::size_t k = 0; k < bands; ++k) m_start[k + 1] += m_start[k];
  m_edges.resize(m_start[bands]);
  std::vector<uint32_t> fill(m_start.begin(), m_start.end() - 1);
  forEachEdge([&](std::size_t e, const RVPOINT& a, const RVPOINT& b) {
    const auto [low, high] = range(a, b);
    for (std::size_t k = low; k <= high; ++k) m_edges[fill[k]++] = uint32_t(e);
  });
}

}  // namespace rv
