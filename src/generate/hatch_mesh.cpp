#include "generate/hatch_mesh.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "frame/error_codes.h"
#include "frame/frame.h"
#include "generate/hatch_order.h"
#include "generate/hatch_rules.h"
#include "geometry/convert_pt.h"
#include "model/art.h"
#include "model/data_access.h"

namespace rv {

namespace {

/// Most pieces (cells or regions) that 16-bit marks tell apart: 65534 and
/// 65535 are taken by kMarkRemoved and kMarkUnset.
constexpr std::size_t kMaxMarkedPieces = kMarkRemoved;

/// Flattening of the offset shapes for the sweep.
constexpr double kSweepMaxLength = 31000.0;
constexpr double kSweepTolerance = 0.03;

RVRECT Normalized(double x1, double y1, double x2, double y2) {
  RVRECT r;
  r.left = std::min(x1, x2);
  r.right = std::max(x1, x2);
  r.bottom = std::min(y1, y2);
  r.top = std::max(y1, y2);
  return r;
}

bool Holds(const RVRECT& box, const RVHATCHLINE& line) {
  return Between(line.y1, box.bottom, box.top) &&
         (Between(line.x1, box.left, box.right) || Between(line.x2, box.left, box.right));
}

/// Intervals [lo, hi] sorted by lo, with the running maximum of hi: a stab
/// at v walks back from the last lo <= v while that maximum still reaches v.
struct IntervalIndex {
  std::vector<double> lo, maxHi;
  std::vector<std::size_t> item;  // index into the owner's list

  void Build(std::vector<std::pair<std::pair<double, double>, std::size_t>> spans) {
    std::stable_sort(spans.begin(), spans.end(),
                     [](const auto& a, const auto& b) { return a.first.first < b.first.first; });
    double running = -std::numeric_limits<double>::infinity();
    for (const auto& s : spans) {
      lo.push_back(s.first.first);
      running = std::max(running, s.first.second);
      maxHi.push_back(running);
      item.push_back(s.second);
    }
  }
  template <class Visit>
  void Stab(double v, Visit&& visit) const {
    std::size_t k = std::size_t(std::upper_bound(lo.begin(), lo.end(), v) - lo.begin());
    while (k > 0 && maxHi[k - 1] >= v) visit(item[--k]);
  }
};

/// The boxes grouped into rows of equal bottom and top, each row indexed by
/// its columns: finds the first box that holds an end of a line without
/// scanning them all.
class BoxIndex {
 public:
  explicit BoxIndex(const std::vector<RVRECT>& boxes) : m_boxes(boxes) {
    std::vector<std::size_t> order(boxes.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
      const RVRECT ra = Normalized(boxes[a].left, boxes[a].bottom, boxes[a].right, boxes[a].top);
      const RVRECT rb = Normalized(boxes[b].left, boxes[b].bottom, boxes[b].right, boxes[b].top);
      return ra.bottom != rb.bottom ? ra.bottom < rb.bottom : ra.top < rb.top;
    });
    std::vector<std::pair<std::pair<double, double>, std::size_t>> rowSpans;
    for (std::size_t k = 0; k < order.size();) {
      const RVRECT first = Norm(order[k]);
      std::vector<std::pair<std::pair<double, double>, std::size_t>> columns;
      for (; k < order.size(); ++k) {
        const RVRECT r = Norm(order[k]);
        if (r.bottom != first.bottom || r.top != first.top) break;
        columns.push_back({{r.left, r.right}, order[k]});
      }
      rowSpans.push_back({{first.bottom, first.top}, m_rows.size()});
      m_rows.emplace_back();
      m_rows.back().Build(std::move(columns));
    }
    m_rowIndex.Build(std::move(rowSpans));
  }

  /// Index of the first box holding an end of `line`, or -1.
  int64_t FirstHolding(const RVHATCHLINE& line) const {
    std::size_t best = std::numeric_limits<std::size_t>::max();
    m_rowIndex.Stab(line.y1, [&](std::size_t row) {
      const RVRECT r = Norm(m_rows[row].item.front());
      if (!Between(line.y1, r.bottom, r.top)) return;
      for (double x : {line.x1, line.x2}) {
        m_rows[row].Stab(x, [&](std::size_t box) {
          if (box < best && Holds(m_boxes[box], line)) best = box;
        });
      }
    });
    return best == std::numeric_limits<std::size_t>::max() ? -1 : int64_t(best);
  }

 private:
  RVRECT Norm(std::size_t i) const {
    const RVRECT& b = m_boxes[i];
    return Normalized(b.left, b.bottom, b.right, b.top);
  }

  const std::vector<RVRECT>& m_boxes;
  std::vector<IntervalIndex> m_rows;
  IntervalIndex m_rowIndex;
};

/// Writes the mark of each unset line: removed for an empty one, else the
/// first box that holds it.
void MarkByBoxes(const std::vector<RVRECT>& boxes, std::vector<RVHATCHLINE>& lines,
                 uint16_t RVHATCHLINE::*mark) {
  if (boxes.empty()) return;
  if (boxes.size() > kMaxMarkedPieces) Raise(kErrHatchTooManyPieces);
  const BoxIndex index(boxes);
  for (RVHATCHLINE& line : lines) {
    if (line.*mark != kMarkUnset) continue;
    if (IsEmptyLine(line)) {
      line.*mark = kMarkRemoved;
      continue;
    }
    const int64_t box = index.FirstHolding(line);
    if (box >= 0) line.*mark = uint16_t(box);
  }
}

/// Arts of the offset layer that count as shapes: compounds and paths that
/// are counted for bounds and not excluded.
template <class Visit>
void ForEachOffsetShape(CRvDataAccess& store, Visit&& visit) {
  if (store.FindActiveDocument() == nullptr) return;
  CRvArt* layer = store.GetLayerFromName(kHatchingOffsetLayer);
  if (layer == nullptr) return;
  for (CRvArt* art = store.GetArtFirstChild(layer); art != nullptr; art = store.GetArtSibling(art)) {
    const int16_t type = art->GetType();
    if (type != kArtCompound && type != kArtPath) continue;
    const uint8_t flags = art->AttrFlags();
    if ((flags & kAttrCounted) == 0 || (flags & kAttrExcluded) != 0) continue;
    visit(art);
  }
}

/// The polyline of a path's first Bezier component, as the clipping sees it.
std::vector<RVPOINT> FlattenPath(CRvDataAccess& store, const CRvArt* path) {
  std::vector<RVPOINT> points;
  const auto* bezier = dynamic_cast<const CRvBezier*>(store.GetArtFirstChild(path));
  if (bezier == nullptr) return points;
  CRvConvertPt worker;
  worker.m_maxLength = kSweepMaxLength;
  worker.m_tolerance = kSweepTolerance;
  worker.m_mode = 1;
  const CurveList list = worker.CurvesToPoints(bezier->m_points.data(), bezier->GetPointCount());
  points.reserve(list.size());
  for (const RVCURVEPOINT& record : list) points.push_back(record.point);
  return points;
}

RVHATCHLINE MeshLine(double x, const RVRECT& box, uint16_t region) {
  return RVHATCHLINE{x, box.bottom, x, box.top, region, kMarkUnset};
}

/// Steps 4 and 5 of a sweep: all mesh lines in x order (stable), then the
/// later lines within kSweepMergeDistance of a line of `region` on the same
/// rows go. `oldCount` lines were in order before this sweep.
void SortAndThin(std::vector<RVHATCHLINE>& lines, std::size_t oldCount, uint16_t region) {
  const auto byX = [](const RVHATCHLINE& a, const RVHATCHLINE& b) { return a.x1 < b.x1; };
  const auto mid = lines.begin() + std::ptrdiff_t(oldCount);
  std::stable_sort(mid, lines.end(), byX);
  if (std::is_sorted(lines.begin(), mid, byX)) {
    std::inplace_merge(lines.begin(), mid, lines.end(), byX);
  } else {
    std::stable_sort(lines.begin(), lines.end(), byX);
  }
  // Sorted by x1, a line that goes lies within the merge distance after i.
  std::vector<char> gone(lines.size(), 0);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (gone[i] || lines[i].firstMark != region) continue;
    for (std::size_t j = i + 1; j < lines.size() && lines[j].x1 - lines[i].x1 <= kSweepMergeDistance; ++j) {
      if (!gone[j] && lines[j].y1 == lines[i].y1 && lines[j].y2 == lines[i].y2) gone[j] = 1;
    }
  }
  std::size_t kept = 0;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (!gone[i]) lines[kept++] = lines[i];
  }
  lines.resize(kept);
}

/// The x of a sweep: it starts at a box's left and grows by kSweepStep in
/// double arithmetic, one addition a step. AdvanceTo() jumps over steps and
/// lands on exactly the x and the step count that the additions one by one
/// would reach: between two powers of two every double is a multiple of one
/// unit u, so each addition adds the same kSweepStep rounded to u, unless
/// that rounding is a tie (then it steps one by one).
class SweepX {
 public:
  explicit SweepX(double left) : m_x(left) {}
  double x() const { return m_x; }
  int64_t step() const { return m_step; }
  void Next() {
    m_x += kSweepStep;
    ++m_step;
  }
  /// Steps on while x is below `target` and the count is below `limit`.
  void AdvanceTo(double target, int64_t limit) {
    while (m_x < target && m_step < limit) {
      Next();
      if (!(m_x < target) || m_step >= limit || !(std::fabs(m_x) >= kSmallest) || std::isinf(m_x)) continue;
      int e = 0;
      std::frexp(m_x, &e);  // |x| in [2^(e-1), 2^e)
      const double u = std::ldexp(1.0, e - 53);
      const double r = std::fmod(kSweepStep, u);
      if (2.0 * r == u) continue;  // ties go to even: no constant step
      const double delta = kSweepStep - r + (2.0 * r > u ? u : 0.0);
      if (delta == 0.0) {  // x no longer moves
        m_step = limit;
        break;
      }
      // The further steps that stay below the target and, with a unit of
      // room, inside this binade: y + delta there is the rounded sum.
      const double edge = m_x > 0.0 ? std::ldexp(1.0, e) - u : -std::ldexp(1.0, e - 1) - u;
      const auto inside = [&](double y) { return y < target && y <= edge; };
      const double room = std::min(target, edge + u) - m_x;
      int64_t j = std::min<int64_t>(limit - m_step, int64_t(std::max(0.0, std::min(room / delta, 1e18))));
      while (j > 0 && !inside(m_x + double(j) * delta)) --j;
      m_x += double(j) * delta;
      m_step += j;
    }
  }

 private:
  static constexpr double kSmallest = 1e-300;
  double m_x;
  int64_t m_step = 0;
};

/// The sweep of steps 1 to 3, with the count of crossed edges at x given by
/// `count(x)`; `nextChange()` gives the least x at which the count can
/// change after the last call of `count`, so that the steps before it are
/// skipped (their count is the last one, and they add no line).
template <class Count, class NextChange>
void SweepWith(HatchWork& work, uint16_t region, const RVRECT& box, Count&& count, NextChange&& nextChange) {
  std::vector<RVHATCHLINE>& out = work.meshLines;
  const std::size_t oldCount = out.size();
  out.push_back(MeshLine(box.left, box, region));
  SweepX x(box.left);
  std::size_t last = 0;
  // Past the right side the sweep ends.
  const double beyond = std::nextafter(box.right, std::numeric_limits<double>::infinity());
  while (x.x() <= box.right && x.step() < kMaxSweepSteps) {
    const std::size_t c = count(x.x());
    if (c != last) out.push_back(MeshLine(x.x(), box, region));
    last = c;
    x.Next();
    x.AdvanceTo(std::min(nextChange(), beyond), kMaxSweepSteps);
  }
  out.push_back(MeshLine(box.right, box, region));
  SortAndThin(out, oldCount, region);
}

}  // namespace

// ---- regions ----

void CollectRegions(HatchWork& work) {
  work.regionBoxes.clear();
  CRvDataAccess& store = CRvDataAccess::Instance();
  ForEachOffsetShape(store, [&](CRvArt* art) { work.regionBoxes.push_back(store.GetArtBounds(art)); });
}

void MergeRegions(HatchWork& work) {
  std::vector<RVRECT>& boxes = work.regionBoxes;
  const double mx = work.info.boxMarginX;
  const double my = work.info.boxMarginY;
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    if (IsZeroBox(boxes[i])) continue;
    for (std::size_t j = 0; j < boxes.size(); ++j) {
      if (j == i || IsZeroBox(boxes[j])) continue;
      RVRECT& a = boxes[i];
      const RVRECT& b = boxes[j];
      const bool rows = Between(a.bottom, b.bottom - my, b.top + my) || Between(a.top, b.bottom - my, b.top + my);
      const bool columns = Between(a.left, b.left - mx, b.right + mx) || Between(a.right, b.left - mx, b.right + mx);
      if (!rows || !columns) continue;
      a.top = std::max(a.top, b.top);
      a.left = std::min(a.left, b.left);
      a.right = std::max(a.right, b.right);
      a.bottom = std::min(a.bottom, b.bottom);
      boxes[j] = RVRECT{0, 0, 0, 0};
    }
  }
  boxes.erase(std::remove_if(boxes.begin(), boxes.end(), IsZeroBox), boxes.end());
}

void FindMeshLines(HatchWork& work) {
  work.meshLines.clear();
  CRvDataAccess& store = CRvDataAccess::Instance();
  std::vector<std::pair<CRvArt*, uint16_t>> noted;
  ForEachOffsetShape(store, [&](CRvArt* art) {
    const RVRECT b = store.GetArtBounds(art);
    const auto& regions = work.regionBoxes;
    for (std::size_t g = 0; g < regions.size() && g < kMaxMarkedPieces; ++g) {
      const RVRECT& r = regions[g];
      if ((Between(b.bottom, r.bottom, r.top) || Between(b.top, r.bottom, r.top)) &&
          (Between(b.left, r.left, r.right) || Between(b.right, r.left, r.right))) {
        noted.push_back({art, uint16_t(g)});
        break;
      }
    }
  });
  for (const auto& [art, region] : noted) {
    const RVRECT box = work.regionBoxes[region];
    if (art->GetType() == kArtCompound) {
      for (CRvArt* path = store.GetArtFirstChild(art); path != nullptr; path = store.GetArtSibling(path)) {
        SweepPolyline(work, FlattenPath(store, path), region, box);
      }
    } else {
      SweepPolyline(work, FlattenPath(store, art), region, box);
    }
  }
}

// ---- the sweep ----

void SweepPolyline(HatchWork& work, const std::vector<RVPOINT>& p, uint16_t region, const RVRECT& box) {
  // An edge is crossed at x when x lies between its ends: the count is the
  // edges begun at or before x less those ended before x.
  std::vector<double> starts, ends;
  for (std::size_t k = 1; k < p.size(); ++k) {
    starts.push_back(std::min(p[k - 1].x, p[k].x));
    ends.push_back(std::max(p[k - 1].x, p[k].x));
  }
  std::sort(starts.begin(), starts.end());
  std::sort(ends.begin(), ends.end());
  std::size_t begun = 0, ended = 0;
  constexpr double kNever = std::numeric_limits<double>::infinity();
  SweepWith(
      work, region, box,
      [&](double x) {
        while (begun < starts.size() && starts[begun] <= x) ++begun;
        while (ended < ends.size() && ends[ended] < x) ++ended;
        return begun - ended;
      },
      [&] {
        // The next edge to begin counts at its start, the next to end just
        // beyond its end.
        const double start = begun < starts.size() ? starts[begun] : kNever;
        const double end = ended < ends.size() ? std::nextafter(ends[ended], kNever) : kNever;
        return std::min(start, end);
      });
}

void SweepPolylinePlain(HatchWork& work, const std::vector<RVPOINT>& p, uint16_t region, const RVRECT& box) {
  SweepWith(
      work, region, box,
      [&](double x) {
        std::size_t c = 0;
        for (std::size_t k = 1; k < p.size(); ++k) {
          if ((p[k - 1].x - x) * (p[k].x - x) <= 0.0) ++c;
        }
        return c;
      },
      [] { return -std::numeric_limits<double>::infinity(); });
}

// ---- boxes and cells ----

int32_t NearestBox(const RVPOINT& head, const std::vector<RVRECT>& boxes) {
  int32_t best = -1;
  double bestDistance = 0.0;
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    const RVRECT& b = boxes[i];
    if (IsZeroBox(b)) continue;
    for (const RVPOINT corner : {RVPOINT{b.left, b.bottom}, RVPOINT{b.left, b.top}, RVPOINT{b.right, b.bottom},
                                 RVPOINT{b.right, b.top}}) {
      const double d = HeadDistance(head, corner.x, corner.y);
      if (best < 0 || d < bestDistance) {
        best = int32_t(i);
        bestDistance = d;
      }
    }
  }
  return best;
}

namespace {

/// Mesh lines of the region equal to `box`, or all of them when no region is.
std::vector<RVHATCHLINE> MeshLinesOf(const HatchWork& work, const RVRECT& box) {
  const auto& regions = work.regionBoxes;
  for (std::size_t g = 0; g < regions.size(); ++g) {
    const RVRECT& r = regions[g];
    if (r.top == box.top && r.left == box.left && r.right == box.right && r.bottom == box.bottom) {
      std::vector<RVHATCHLINE> lines;
      for (const RVHATCHLINE& line : work.meshLines) {
        if (line.firstMark == g) lines.push_back(line);
      }
      return lines;
    }
  }
  return work.meshLines;
}

/// Number of grid steps of `step` in `extent`, plus one; 1 for no step.
double GridCount(double extent, double step) {
  return step != 0.0 ? std::trunc(std::abs(extent) / step + 1.0) : 1.0;
}

}  // namespace

void BuildMesh(HatchWork& work, const RVRECT& box, const RVPOINT& head, int16_t rule) {
  work.meshCells.clear();
  const bool tangent = rule == kRuleTangentAndBoundingBox;
  std::vector<RVHATCHLINE> m = tangent ? MeshLinesOf(work, box) : std::vector<RVHATCHLINE>{};
  RVRECT r = box;
  r.left -= kMeshSideMargin;
  r.right += kMeshSideMargin;
  double nx = GridCount(r.right - r.left, work.info.meshWidth);
  double ny = GridCount(r.top - r.bottom, work.info.meshHeight);
  if (rule == kRuleMeshAndBoundingBox) {
    nx = 2.0;
    work.info.meshWidth = (r.right - r.left) / 2.0;
    if (work.info.meshWidth == 0.0) nx = 1.0;
  }
  // The start corner: the nearest of the four, a tie keeping the earlier.
  RVPOINT start{box.left, box.bottom};
  double best = HeadDistance(head, start.x, start.y);
  for (const RVPOINT c : {RVPOINT{box.left, box.top}, RVPOINT{box.right, box.bottom}, RVPOINT{box.right, box.top}}) {
    const double d = HeadDistance(head, c.x, c.y);
    if (d < best) {
      best = d;
      start = c;
    }
  }
  bool rightward = start.x == box.left;
  double sx = rightward ? work.info.meshWidth : -work.info.meshWidth;
  double x = rightward ? r.left : r.right;
  const auto byX = [](const RVHATCHLINE& a, const RVHATCHLINE& b) { return a.x1 < b.x1; };
  if (tangent) {
    if (rightward) {
      std::stable_sort(m.begin(), m.end(), byX);
    } else {
      std::stable_sort(m.begin(), m.end(), [&](const RVHATCHLINE& a, const RVHATCHLINE& b) { return byX(b, a); });
    }
  }
  const bool upward = start.y == box.bottom;
  double sy = upward ? work.info.meshHeight : -work.info.meshHeight;
  double y = upward ? r.bottom : r.top;
  if (tangent) {
    sy = 0.0;
    ny = 1.0;
  }
  const double cells = tangent ? (m.size() > 1 ? double(m.size() - 1) : 0.0) : nx * ny;
  if (!(cells <= double(kMaxMarkedPieces))) Raise(kErrHatchTooManyPieces);
  for (int64_t row = 0; row < int64_t(ny); ++row) {
    const double yFar = sy != 0.0 ? y + sy : (upward ? r.top : r.bottom);
    if (tangent) {
      for (std::size_t k = 1; k < m.size(); ++k) {
        work.meshCells.push_back(Normalized(x, y, m[k].x1, yFar));
        x = m[k].x1;
      }
    } else {
      for (int64_t column = 0; column < int64_t(nx); ++column) {
        const double xFar = sx != 0.0 ? x + sx : (rightward ? r.right : r.left);
        work.meshCells.push_back(Normalized(x, y, xFar, yFar));
        x = xFar;
      }
    }
    sx = -sx;
    rightward = !rightward;
    y = yFar;
  }
}

void AssignMesh(const HatchWork& work, std::vector<RVHATCHLINE>& lines) {
  MarkByBoxes(work.meshCells, lines, &RVHATCHLINE::firstMark);
}

void AssignRegion(const HatchWork& work, std::vector<RVHATCHLINE>& lines) {
  MarkByBoxes(work.regionBoxes, lines, &RVHATCHLINE::secondMark);
}

int32_t FirstHoldingBoxPlain(const RVHATCHLINE& line, const std::vector<RVRECT>& boxes) {
  for (std::size_t m = 0; m < boxes.size(); ++m) {
    if (Holds(boxes[m], line)) return int32_t(m);
  }
  return -1;
}

}  // namespace rv
