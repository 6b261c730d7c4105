// The head-move rule: from where the head stands, the nearest line next,
// either way round.
//
// The plain walk scans every line for every step, which is quadratic. The
// fast walk keeps the start points of the lines still to draw in a grid of
// buckets and searches rings of buckets outward from the head until no
// farther bucket can hold a nearer point; the choice among equal distances
// (the lowest index) is the same, so the two walks give the same order.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "generate/hatch_mesh.h"
#include "generate/hatch_rules.h"

namespace rv {

namespace {

/// Most buckets of the grid along one side.
constexpr int64_t kMaxGridSide = 4096;

/// The nearest start point found: its index and distance, or index -1.
struct Nearest {
  int64_t index = -1;
  double distance = 0.0;

  void Offer(int64_t i, double d) {
    if (index < 0 || d < distance || (d == distance && i < index)) {
      index = i;
      distance = d;
    }
  }
};

/// Start points of lines in buckets; points can be taken out.
class StartGrid {
 public:
  explicit StartGrid(const std::vector<RVHATCHLINE>& lines) : m_lines(lines) {
    m_slot.assign(lines.size(), kNone);
    std::vector<std::size_t> live;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      if (!IsEmptyLine(lines[i])) live.push_back(i);
    }
    Build(live);
  }

  /// Takes line i out of the search.
  void Remove(std::size_t i) {
    if (m_slot[i] == kNone) return;
    std::vector<std::size_t>& bucket = m_buckets[m_bucketOf[i]];
    const std::size_t at = m_slot[i];
    bucket[at] = bucket.back();
    m_slot[bucket[at]] = at;
    bucket.pop_back();
    m_slot[i] = kNone;
    if (--m_live * 4 < m_builtFor && m_live > 64) Rebuild();
  }

  /// The nearest start point to `head` that is still in, lowest index first.
  Nearest Find(const RVPOINT& head) const {
    Nearest best;
    if (m_live == 0) return best;
    const int64_t cx = std::clamp(CellOf(head.x, m_minX), int64_t(0), m_nx - 1);
    const int64_t cy = std::clamp(CellOf(head.y, m_minY), int64_t(0), m_ny - 1);
    for (int64_t ring = 0;; ++ring) {
      const int64_t x0 = cx - ring, x1 = cx + ring, y0 = cy - ring, y1 = cy + ring;
      const auto visit = [&](int64_t x, int64_t y) {
        if (x < 0 || x >= m_nx) return;
        for (std::size_t i : m_buckets[std::size_t(y * m_nx + x)]) {
          const RVHATCHLINE& line = m_lines[i];
          best.Offer(int64_t(i), HeadDistance(head, line.x1, line.y1));
        }
      };
      for (int64_t y = std::max(y0, int64_t(0)); y <= std::min(y1, m_ny - 1); ++y) {
        if (y == y0 || y == y1) {
          for (int64_t x = std::max(x0, int64_t(0)); x <= std::min(x1, m_nx - 1); ++x) visit(x, y);
        } else {
          visit(x0, y);
          visit(x1, y);
        }
      }
      // The nearest that a farther ring could hold, over the sides where
      // buckets lie beyond this ring.
      double bound = std::numeric_limits<double>::infinity();
      if (x0 > 0) bound = std::min(bound, head.x - (m_minX + double(x0) * m_cell));
      if (x1 < m_nx - 1) bound = std::min(bound, m_minX + double(x1 + 1) * m_cell - head.x);
      if (y0 > 0) bound = std::min(bound, head.y - (m_minY + double(y0) * m_cell));
      if (y1 < m_ny - 1) bound = std::min(bound, m_minY + double(y1 + 1) * m_cell - head.y);
      if (std::isinf(bound)) return best;
      if (best.index >= 0 && bound - m_slack > best.distance) return best;
    }
  }

 private:
  static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

  int64_t CellOf(double v, double min) const {
    const double c = std::floor((v - min) / m_cell);
    if (!(c > -1e18 && c < 1e18)) return c > 0 ? std::numeric_limits<int32_t>::max() : -1;
    return int64_t(c);
  }

  void Build(const std::vector<std::size_t>& live) {
    m_live = m_builtFor = live.size();
    double minX = 0, maxX = 0, minY = 0, maxY = 0;
    for (std::size_t k = 0; k < live.size(); ++k) {
      const RVHATCHLINE& l = m_lines[live[k]];
      if (k == 0) {
        minX = maxX = l.x1;
        minY = maxY = l.y1;
      }
      minX = std::min(minX, l.x1), maxX = std::max(maxX, l.x1);
      minY = std::min(minY, l.y1), maxY = std::max(maxY, l.y1);
    }
    const double w = maxX - minX, h = maxY - minY;
    const double n = double(std::max<std::size_t>(live.size(), 1));
    double cell = std::sqrt(w * h / n);
    if (!(cell > 0.0)) cell = std::max(w, h) / n;
    if (!(cell > 0.0) || !std::isfinite(cell)) cell = 1.0;
    cell = std::max({cell, w / double(kMaxGridSide), h / double(kMaxGridSide)});
    m_cell = cell;
    m_slack = cell * 1e-9;
    m_minX = minX;
    m_minY = minY;
    m_nx = std::clamp(int64_t(w / cell) + 1, int64_t(1), kMaxGridSide);
    m_ny = std::clamp(int64_t(h / cell) + 1, int64_t(1), kMaxGridSide);
    m_buckets.assign(std::size_t(m_nx * m_ny), {});
    m_bucketOf.assign(m_lines.size(), 0);
    for (std::size_t i : live) {
      const int64_t cx = std::clamp(CellOf(m_lines[i].x1, m_minX), int64_t(0), m_nx - 1);
      const int64_t cy = std::clamp(CellOf(m_lines[i].y1, m_minY), int64_t(0), m_ny - 1);
      const std::size_t b = std::size_t(cy * m_nx + cx);
      m_bucketOf[i] = b;
      m_slot[i] = m_buckets[b].size();
      m_buckets[b].push_back(i);
    }
  }

  void Rebuild() {
    std::vector<std::size_t> live;
    for (const auto& bucket : m_buckets) live.insert(live.end(), bucket.begin(), bucket.end());
    Build(live);
  }

  const std::vector<RVHATCHLINE>& m_lines;
  std::vector<std::vector<std::size_t>> m_buckets;
  std::vector<std::size_t> m_bucketOf, m_slot;
  std::size_t m_live = 0, m_builtFor = 0;
  double m_minX = 0, m_minY = 0, m_cell = 1, m_slack = 0;
  int64_t m_nx = 1, m_ny = 1;
};

/// The nearest start point by a scan over all lines.
Nearest ScanNearest(const std::vector<RVHATCHLINE>& lines, const RVPOINT& head) {
  Nearest best;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (!IsEmptyLine(lines[i])) best.Offer(int64_t(i), HeadDistance(head, lines[i].x1, lines[i].y1));
  }
  return best;
}

/// Steps 1 to 4 of the rule: the joined lines in both directions, extended
/// and shifted for the walk.
void PrepareBothWays(HatchWork& work, std::vector<RVHATCHLINE>& lines, std::vector<RVHATCHLINE>& a,
                     std::vector<RVHATCHLINE>& b) {
  HeadStart(work);
  JoinLines(lines, work.info.joinLimit);
  a = lines;
  b = lines;
  for (RVHATCHLINE& line : b) {
    std::swap(line.x1, line.x2);
    std::swap(line.y1, line.y2);
  }
  for (auto* side : {&a, &b}) {
    ExtendLines(*side, work.info.lineStartExtension, work.info.lineEndExtension);
    ShiftLines(*side, work.info.startShift, work.info.endShift);
  }
}

/// Steps 6 and 7: the walk's lines without the shift (unless kept) and
/// without the extensions.
void FinishWalk(const HatchWork& work, std::vector<RVHATCHLINE>& lines) {
  if (work.info.keepShift == 0) UnshiftLines(lines, work.info.startShift, work.info.endShift);
  UnextendLines(lines, work.info.lineStartExtension, work.info.lineEndExtension);
}

/// The greedy walk over both ways with `find(side, pos)` and `take(i)`.
template <class Find, class Take>
void Walk(HatchWork& work, std::vector<RVHATCHLINE>& lines, const std::vector<RVHATCHLINE>& a,
          const std::vector<RVHATCHLINE>& b, Find&& find, Take&& take) {
  RVPOINT pos = work.headStart;
  lines.clear();
  for (std::size_t step = 0; step < a.size(); ++step) {
    const Nearest na = find(0, pos);
    const Nearest nb = find(1, pos);
    if (na.index < 0 && nb.index < 0) break;
    const bool fromA = nb.index < 0 || (na.index >= 0 && !(na.distance > nb.distance));
    const std::size_t i = std::size_t(fromA ? na.index : nb.index);
    const RVHATCHLINE& line = fromA ? a[i] : b[i];
    lines.push_back(line);
    pos = RVPOINT{line.x2, line.y2};
    take(i);
  }
}

}  // namespace

void HeadMoveOrder(HatchWork& work, std::vector<RVHATCHLINE>& lines) {
  std::vector<RVHATCHLINE> a, b;
  PrepareBothWays(work, lines, a, b);
  StartGrid grids[2] = {StartGrid(a), StartGrid(b)};
  Walk(
      work, lines, a, b, [&](int side, const RVPOINT& pos) { return grids[side].Find(pos); },
      [&](std::size_t i) {
        grids[0].Remove(i);
        grids[1].Remove(i);
      });
  FinishWalk(work, lines);
}

void HeadMoveOrderPlain(HatchWork& work, std::vector<RVHATCHLINE>& lines) {
  std::vector<RVHATCHLINE> a, b;
  PrepareBothWays(work, lines, a, b);
  std::vector<RVHATCHLINE> sides[2] = {a, b};
  Walk(
      work, lines, a, b, [&](int side, const RVPOINT& pos) { return ScanNearest(sides[side], pos); },
      [&](std::size_t i) {
        sides[0][i] = sides[1][i] = RVHATCHLINE{0, 0, 0, 0, kMarkRemoved, kMarkRemoved};
      });
  FinishWalk(work, lines);
}

}  // namespace rv
