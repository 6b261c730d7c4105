// Which of a set of closed paths are holes: the nesting judgment, plain and
// fast.
#include <algorithm>
#include <atomic>
#include <climits>
#include <cmath>
#include <memory>
#include <numeric>
#include <system_error>
#include <thread>
#include <unordered_map>
#include <utility>

#include "frame/error_codes.h"
#include "frame/frame.h"
#include "frame/large_pages.h"
#include "geometry/affine.h"
#include "geometry/judge.h"
#include "geometry/judge_shape.h"
#include "geometry/straight_outline.h"

namespace rv {

namespace {

void Flip(int32_t& flag) { flag = flag == 0 ? 1 : 0; }

void InvertAll(RVINSIDEPATH* paths, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) Flip(paths[i].inside);
}

// One path of the flags-only judgment: bounds of its absolute area (equal
// once exact) and its outline, when its segments are straight.
struct NestItem {
  CRvArt* art = nullptr;
  double low = 0, high = 0;
  uint32_t outline = kNoOutline;
  static constexpr uint32_t kNoOutline = UINT32_MAX;
};

// The inside test of the polylines of two straight outlines, 1 or 0; -1
// when it takes the polylines themselves. Every point of the inner polyline
// lies within its tolerance of a segment, and where a segment doesn't come
// near the outer polygon all its points lie in one region of the outer
// polyline, that of its corners. Only the points of segments that come near
// are asked one by one, and those near the outer polygon by its chords.
int OutlineInside(const StraightOutline& inner, const StraightOutline& outer) {
  const double near = inner.Tolerance() + outer.Tolerance() + 1e-9 * (inner.Scale() + outer.Scale() + 1.0);
  // Most often the whole inner polygon keeps clear of every edge, and its
  // first corner tells.
  const int first = outer.Winds(inner.Corner(0), near);
  if (first == 0) return 0;
  if (first == 1 && !outer.MeetsBox(inner.Box().Grown(2.0 * near))) return 1;
  // The corners first, each a point of the polyline; one near an edge is
  // asked of the outer polyline at once, as a corner on its boundary mostly
  // lies outside it and settles the pair.
  bool undecided = false;
  for (std::size_t k = 0; k < inner.CornerCount(); ++k) {
    int winds = k == 0 ? first : outer.Winds(inner.Corner(k), near);
    if (winds < 0) winds = outer.ChordsInside(inner.Corner(k), near);
    if (winds == 0) return 0;
    if (winds < 0) undecided = true;
  }
  // Then the points between the corners, of the segments that come near.
  std::vector<RVPOINT> points;
  for (std::size_t k = 0; k < inner.CornerCount(); ++k) {
    if (!outer.Touches(inner.Corner(k), inner.Corner(k + 1), near)) continue;
    inner.SegmentPoints(k, points);
    for (std::size_t m = 1; m + 1 < points.size(); ++m) {
      int winds = outer.Winds(points[m], near);
      if (winds < 0) winds = outer.ChordsInside(points[m], near);
      if (winds == 0) return 0;
      if (winds < 0) undecided = true;
    }
  }
  return undecided ? -1 : 1;
}

// The flags-only judgment. A path without an outline has its polyline as a
// NestingShape from the start; a path with one gets it only where the
// outline can't decide. Which paths hold which doesn't depend on their
// order, only the ties of equal areas do: Relate finds the first, in any
// order, and Order settles the ties and the flags for one order.
class NestingFlags {
 public:
  /// Reads the paths; false where one can't be read or the boxes can't
  /// place it, for the full judgment to take over.
  bool Read(const RVINSIDEPATH* paths, std::size_t count);
  /// For each path, the others that hold it and are not smaller, those of
  /// equal area marked. False when `stop` was set before the end.
  bool Relate(const std::atomic<bool>* stop);
  /// The flags after the nesting pass for the paths in the order where
  /// position p holds item itemAt[p], from the flags given by position;
  /// the flags come by position.
  std::vector<int32_t> Order(const std::vector<uint32_t>& itemAt, const RVINSIDEPATH* given);
  std::size_t size() const { return m_items.size(); }
  CRvArt* Art(std::size_t k) const { return m_items[k].art; }

 private:
  static constexpr uint32_t kTie = 0x80000000u;  // a container of equal area
  LargeArray<NestItem> m_items;
  LargeArray<StraightOutline> m_outlines;
  // The polylines made so far, by item: few items need theirs.
  std::unordered_map<uint32_t, std::unique_ptr<NestingShape>> m_shapes;
  // containers[first[j] .. first[j + 1]): the paths that hold j and are
  // not smaller.
  std::vector<uint32_t> m_first;
  LargeArray<uint32_t> m_containers;

  const StraightOutline* Outline(std::size_t k) const {
    return m_items[k].outline == NestItem::kNoOutline ? nullptr : &m_outlines[m_items[k].outline];
  }
  /// The polyline of an item without an outline (made in Read).
  const NestingShape& MadeShape(std::size_t k) const { return *m_shapes.at(uint32_t(k)); }
  PlainBox Reach(std::size_t k) const { return Outline(k) ? Outline(k)->Reach() : MadeShape(k).Reach(); }
  /// The box of points that must lie inside a container (probes or corners).
  PlainBox Probes(std::size_t k) const { return Outline(k) ? Outline(k)->Box() : MadeShape(k).Probes(); }
  bool CanBeInside(std::size_t k) const { return Outline(k) || MadeShape(k).CanBeInside(); }
  const NestingShape& Shape(std::size_t k);
  /// 1 when x has the larger area, -1 the smaller, 0 an equal one.
  int CompareAreas(std::size_t x, std::size_t y);
  bool Inside(std::size_t inner, std::size_t outer);
};

bool NestingFlags::Read(const RVINSIDEPATH* paths, std::size_t count) {
  m_items.assign(count, NestItem{});
  m_outlines.reserve(count);
  for (std::size_t k = 0; k < count; ++k) {
    NestItem& item = m_items[k];
    item.art = ArtOf(paths[k].art);
    if (item.art == nullptr || item.art->GetType() != kArtPath) Raise(kErrPathKind);
    int32_t start = 0;
    RVRIFMATRIX matrix{};
    const CRvBezier& bezier = PathBezier(item.art, start, matrix);
    const int32_t points = bezier.GetPointCount();
    StraightOutline outline;
    // A matrix moves the anchors off their handles: only paths without one
    // keep their segments straight.
    if (IsIdentity(matrix) && outline.Make(points > 0 ? &bezier.GetPoint(0) : nullptr, points, start, item.low, item.high)) {
      item.outline = uint32_t(m_outlines.size());
      m_outlines.push_back(std::move(outline));
      continue;
    }
    const NestingShape& shape = Shape(k);
    // Areas that don't compare, and shapes that the boxes can't place, are
    // left to the full judgment.
    if (std::isnan(item.low) || !shape.Boxed()) return false;
  }
  return true;
}

const NestingShape& NestingFlags::Shape(std::size_t k) {
  std::unique_ptr<NestingShape>& shape = m_shapes[uint32_t(k)];
  if (!shape) {
    // Straight outlines were checked to flatten within the point limit.
    CoarsePolyline line = PathPolyline(m_items[k].art);
    m_items[k].low = m_items[k].high = std::fabs(OrientationSum(line));
    shape = std::make_unique<NestingShape>(std::move(line));
  }
  return *shape;
}

int NestingFlags::CompareAreas(std::size_t x, std::size_t y) {
  if (m_items[x].low > m_items[y].high) return 1;
  if (m_items[x].high < m_items[y].low) return -1;
  Shape(x);
  Shape(y);
  if (m_items[x].low != m_items[y].low) return m_items[x].low > m_items[y].low ? 1 : -1;
  return 0;
}

bool NestingFlags::Inside(std::size_t inner, std::size_t outer) {
  const StraightOutline* in = Outline(inner);
  const StraightOutline* out = Outline(outer);
  if (in != nullptr && out != nullptr) {
    const int sure = OutlineInside(*in, *out);
    if (sure >= 0) return sure == 1;
  }
  const NestingShape& shapeIn = Shape(inner);
  return shapeIn.InsideOf(Shape(outer));
}

bool NestingFlags::Relate(const std::atomic<bool>* stop) {
  const std::size_t count = m_items.size();
  LargeArray<PlainBox> reaches(count);
  for (std::size_t k = 0; k < count; ++k) reaches[k] = Reach(k);
  const BoxGrid tree(std::move(reaches));
  m_first.assign(count + 1, 0);
  m_containers.clear();
  std::vector<uint32_t> found;
  for (std::size_t j = 0; j < count; ++j) {
    if (stop != nullptr && j % 256 == 0 && stop->load(std::memory_order_relaxed)) return false;
    m_first[j] = uint32_t(m_containers.size());
    if (!CanBeInside(j)) continue;
    const PlainBox probes = Probes(j);
    found.clear();
    tree.Stab(probes.left, probes.bottom, [&](std::size_t i) {
      if (i != j && tree.Box(i).Holds(probes.right, probes.top) && !(m_items[i].high < m_items[j].low)) {
        found.push_back(uint32_t(i));
      }
    });
    for (uint32_t i : found) {
      if (!Inside(j, i)) continue;
      const int larger = CompareAreas(i, j);
      if (larger >= 0) m_containers.push_back(larger > 0 ? i : i | kTie);
    }
  }
  m_first[count] = uint32_t(m_containers.size());
  return true;
}

std::vector<int32_t> NestingFlags::Order(const std::vector<uint32_t>& itemAt, const RVINSIDEPATH* given) {
  const std::size_t count = m_items.size();
  std::vector<uint32_t> position(count);
  for (std::size_t p = 0; p < count; ++p) position[itemAt[p]] = uint32_t(p);
  // The containers that come before each path, in the order of the
  // judgment: larger area first, equal areas in the order given.
  LargeArray<uint32_t> before(m_containers.size());
  std::vector<uint32_t> last(count);
  for (std::size_t j = 0; j < count; ++j) {
    uint32_t end = m_first[j];
    for (uint32_t c = m_first[j]; c < m_first[j + 1]; ++c) {
      const uint32_t i = m_containers[c] & ~kTie;
      if ((m_containers[c] & kTie) == 0 || position[i] < position[j]) before[end++] = i;
    }
    last[j] = end;
    std::sort(before.begin() + m_first[j], before.begin() + end, [&](uint32_t x, uint32_t y) {
      const int larger = CompareAreas(x, y);
      return larger != 0 ? larger > 0 : position[x] < position[y];
    });
  }
  // A path's flag is final once the paths before it are done; each flips it
  // when its flag equals it. Containers come before their paths, so a walk
  // that settles the containers first never loops.
  std::vector<int32_t> flags(count);
  std::vector<uint8_t> done(count, 0);
  std::vector<uint32_t> stack;
  for (std::size_t root = 0; root < count; ++root) {
    stack.assign(1, uint32_t(root));
    while (!stack.empty()) {
      const uint32_t j = stack.back();
      if (done[j] != 0) {
        stack.pop_back();
        continue;
      }
      bool ready = true;
      for (uint32_t c = m_first[j]; c < last[j]; ++c) {
        if (done[before[c]] == 0) {
          stack.push_back(before[c]);
          ready = false;
        }
      }
      if (!ready) continue;
      int32_t flag = given[position[j]].inside;
      for (uint32_t c = m_first[j]; c < last[j]; ++c) {
        if (flags[before[c]] == flag) Flip(flag);
      }
      flags[j] = flag;
      done[j] = 1;
      stack.pop_back();
    }
  }
  std::vector<int32_t> byPosition(count);
  for (std::size_t p = 0; p < count; ++p) byPosition[p] = flags[itemAt[p]];
  return byPosition;
}

// For each path of the order given, its item among those read: the same
// arts in any order, each as often. False when they differ.
bool MatchItems(const NestingFlags& read, const RVINSIDEPATH* paths, std::size_t count, std::vector<uint32_t>& itemAt) {
  if (count != read.size()) return false;
  std::vector<std::pair<const CRvArt*, uint32_t>> byArt(count);
  for (std::size_t k = 0; k < count; ++k) byArt[k] = {read.Art(k), uint32_t(k)};
  std::sort(byArt.begin(), byArt.end());
  std::vector<uint8_t> taken(count, 0);
  itemAt.resize(count);
  for (std::size_t p = 0; p < count; ++p) {
    const CRvArt* art = ArtOf(paths[p].art);
    auto at = std::lower_bound(byArt.begin(), byArt.end(), std::make_pair(art, uint32_t(0)));
    while (at != byArt.end() && at->first == art && taken[at - byArt.begin()] != 0) ++at;
    if (at == byArt.end() || at->first != art) return false;
    taken[at - byArt.begin()] = 1;
    itemAt[p] = at->second;
  }
  return true;
}

// The flags of a related judgment for the paths in the order that itemAt
// gives, written into them.
void SettleFlags(NestingFlags& judgment, const std::vector<uint32_t>& itemAt, RVINSIDEPATH* paths,
                 std::size_t count, bool invert) {
  const std::vector<int32_t> flags = judgment.Order(itemAt, paths);
  for (std::size_t k = 0; k < count; ++k) paths[k].inside = flags[k];
  if (invert) InvertAll(paths, count);
}

}  // namespace

void JudgeNestingFlags(RVINSIDEPATH* paths, std::size_t count, bool invert) {
  if (count < 2) {
    if (invert) InvertAll(paths, count);
    return;
  }
  NestingFlags judgment;
  bool read = false;
  const uint32_t code = Guard([&] { read = judgment.Read(paths, count); });
  if (code != 0 || !read) {
    JudgeInsideOutside(paths, count, invert);
    return;
  }
  judgment.Relate(nullptr);
  std::vector<uint32_t> itemAt(count);
  std::iota(itemAt.begin(), itemAt.end(), 0u);
  SettleFlags(judgment, itemAt, paths, count, invert);
}

// ------------------------------------------------------------- NestingJob

struct NestingJob::Work {
  enum : int { kReading, kRead, kUnreadable, kRelated, kSettled, kCutShort };
  enum : int { kWaiting, kHanded, kWithdrawn };

  std::vector<RVINSIDEPATH> paths;  // as given at the start
  NestingFlags judgment;
  std::thread thread;
  std::atomic<int> state{kReading};
  std::atomic<bool> stop{false};
  // The final order, handed over once (Order) or withdrawn (Finish, the
  // destructor); written before `handed` is set.
  std::atomic<int> handed{kWaiting};
  std::vector<RVINSIDEPATH> ordered;
  bool invert = false;
  std::vector<RVINSIDEPATH> settled;  // `ordered` with its flags, once settled

  void Run() {
    const QuietRaises quiet;  // the calling thread redoes what fails here
    int end = kCutShort;
    try {
      const bool read = judgment.Read(paths.data(), paths.size());
      Announce(read ? kRead : kUnreadable);
      if (!read) return;
      if (!judgment.Relate(&stop)) return Announce(kCutShort);
      end = kRelated;
      handed.wait(kWaiting);
      std::vector<uint32_t> itemAt;
      if (handed.load() == kHanded && MatchItems(judgment, ordered.data(), ordered.size(), itemAt)) {
        settled = ordered;
        SettleFlags(judgment, itemAt, settled.data(), settled.size(), invert);
        end = kSettled;
      }
    } catch (const RvError&) {
      end = state.load() == kReading ? kUnreadable : kCutShort;
    } catch (...) {
      end = kCutShort;  // the calling thread meets it again
    }
    Announce(end);
  }
  void Announce(int now) {
    state.store(now);
    state.notify_all();
  }
  void Hand(int how) {
    handed.store(how);
    handed.notify_all();
  }
  /// Withdraws the order where none was handed over, and waits for the end.
  void Join() {
    if (!thread.joinable()) return;
    if (handed.load() == kWaiting) Hand(kWithdrawn);
    thread.join();
  }
};

NestingJob::NestingJob(std::vector<RVINSIDEPATH> paths, std::size_t threadFrom) {
  if (paths.size() < std::max<std::size_t>(threadFrom, 2) || std::thread::hardware_concurrency() == 1) return;
  auto work = std::make_unique<Work>();
  work->paths = std::move(paths);
  Work* running = work.get();
  try {
    work->thread = std::thread([running] { running->Run(); });
  } catch (const std::system_error&) {
    return;  // no thread to be had: the paths are judged when finished
  }
  m_work = std::move(work);
}

NestingJob::~NestingJob() {
  if (!m_work) return;
  m_work->stop.store(true);
  m_work->Join();
}

bool NestingJob::Readable() {
  if (!m_work) return false;
  m_work->state.wait(Work::kReading);
  const int state = m_work->state.load();
  return state != Work::kUnreadable && state != Work::kCutShort;
}

void NestingJob::Order(std::vector<RVINSIDEPATH> paths, bool invert) {
  if (!m_work || m_work->handed.load() != Work::kWaiting) return;
  m_work->ordered = std::move(paths);
  m_work->invert = invert;
  m_work->Hand(Work::kHanded);
}

void NestingJob::Finish(RVINSIDEPATH* paths, std::size_t count, bool invert) {
  if (m_work) m_work->Join();
  const int state = m_work ? m_work->state.load() : Work::kCutShort;
  if (state == Work::kSettled && invert == m_work->invert && count == m_work->ordered.size() &&
      std::equal(paths, paths + count, m_work->ordered.begin(), [](const RVINSIDEPATH& x, const RVINSIDEPATH& y) {
        return x.art == y.art && x.inside == y.inside;
      })) {
    for (std::size_t k = 0; k < count; ++k) paths[k].inside = m_work->settled[k].inside;
    return;
  }
  std::vector<uint32_t> itemAt;
  if ((state == Work::kRelated || state == Work::kSettled) && MatchItems(m_work->judgment, paths, count, itemAt)) {
    SettleFlags(m_work->judgment, itemAt, paths, count, invert);
    return;
  }
  JudgeNestingFlags(paths, count, invert);
}

void JudgeInsideOutsidePlain(RVINSIDEPATH* paths, std::size_t count, bool invert) {
  // Exchange sort, largest absolute area first; equal areas keep their order.
  for (std::size_t i = 0; i + 1 < count; ++i) {
    for (std::size_t j = count - 1; j > i; --j) {
      if (std::fabs(PathArea(ArtOf(paths[j].art))) > std::fabs(PathArea(ArtOf(paths[j - 1].art)))) {
        std::swap(paths[j], paths[j - 1]);
      }
    }
  }
  for (std::size_t i = 0; i + 1 < count; ++i) {
    for (std::size_t j = i + 1; j < count; ++j) {
      if (JudgeInsidePath(ArtOf(paths[j].art), ArtOf(paths[i].art)) && paths[i].inside == paths[j].inside) {
        Flip(paths[j].inside);
      }
    }
  }
  if (invert) InvertAll(paths, count);
}

void JudgeInsideOutside(RVINSIDEPATH* paths, std::size_t count, bool invert) {
  if (count < 2) {
    if (invert) InvertAll(paths, count);
    return;
  }
  // Everything that the plain algorithm reads, read once. A path that can't
  // be read leaves the work to the plain algorithm, which fails on it at the
  // same point and leaves the array in the same state.
  std::vector<double> areas;
  std::vector<NestingShape> shapes;
  areas.reserve(count);
  shapes.reserve(count);
  const uint32_t code = Guard([&] {
    for (std::size_t i = 0; i < count; ++i) {
      // A path's area is the area under its coarse polyline: one flattening
      // serves both.
      CRvArt* path = ArtOf(paths[i].art);
      if (path == nullptr || path->GetType() != kArtPath) Raise(kErrPathKind);  // the plain algorithm fails
      CoarsePolyline line = PathPolyline(path);
      areas.push_back(std::fabs(OrientationSum(line)));
      shapes.emplace_back(std::move(line));
    }
  });
  if (code != 0) {
    JudgeInsideOutsidePlain(paths, count, invert);
    return;
  }

  // The exchange sort moves a larger area ahead of a smaller one and never
  // moves equal ones: the same permutation as a stable sort, as long as all
  // areas compare (no NaN).
  std::vector<std::size_t> order(count);
  std::iota(order.begin(), order.end(), std::size_t{0});
  const bool comparable = std::none_of(areas.begin(), areas.end(), [](double a) { return std::isnan(a); });
  if (comparable) {
    std::stable_sort(order.begin(), order.end(), [&](std::size_t l, std::size_t r) { return areas[l] > areas[r]; });
  } else {
    for (std::size_t i = 0; i + 1 < count; ++i) {
      for (std::size_t j = count - 1; j > i; --j) {
        if (areas[order[j]] > areas[order[j - 1]]) std::swap(order[j], order[j - 1]);
      }
    }
  }
  const std::vector<RVINSIDEPATH> before(paths, paths + count);
  for (std::size_t k = 0; k < count; ++k) paths[k] = before[order[k]];

  std::vector<const NestingShape*> sorted(count);
  for (std::size_t k = 0; k < count; ++k) sorted[k] = &shapes[order[k]];
  FlipNestedByIndex(sorted, paths);
  if (invert) InvertAll(paths, count);
}

void FlipNestedByPairs(const std::vector<const NestingShape*>& shapes, RVINSIDEPATH* paths) {
  for (std::size_t i = 0; i + 1 < shapes.size(); ++i) {
    for (std::size_t j = i + 1; j < shapes.size(); ++j) {
      if (paths[i].inside == paths[j].inside && shapes[j]->InsideOf(*shapes[i])) Flip(paths[j].inside);
    }
  }
}

void FlipNestedByIndex(const std::vector<const NestingShape*>& shapes, RVINSIDEPATH* paths) {
  // The reaches of the boxed shapes go into the tree; the others are asked
  // by every later shape.
  LargeArray<PlainBox> reaches;
  std::vector<uint32_t> boxedAt;  // position of each reach's shape
  std::vector<uint32_t> unboxed;  // positions, ascending
  for (std::size_t k = 0; k < shapes.size(); ++k) {
    if (shapes[k]->Boxed()) {
      reaches.push_back(shapes[k]->Reach());
      boxedAt.push_back(uint32_t(k));
    } else {
      unboxed.push_back(uint32_t(k));
    }
  }
  const BoxGrid tree(std::move(reaches));
  std::vector<uint32_t> candidates;
  for (std::size_t j = 1; j < shapes.size(); ++j) {
    const NestingShape& inner = *shapes[j];
    if (!inner.CanBeInside()) continue;
    candidates.clear();
    if (inner.Boxed()) {
      const PlainBox probes = inner.Probes();
      tree.Stab(probes.left, probes.bottom, [&](std::size_t r) {
        if (boxedAt[r] < j && tree.Box(r).Holds(probes.right, probes.top)) candidates.push_back(boxedAt[r]);
      });
      for (uint32_t i : unboxed) {
        if (i >= j) break;
        candidates.push_back(i);
      }
      std::sort(candidates.begin(), candidates.end());
    } else {
      for (std::size_t i = 0; i < j; ++i) candidates.push_back(uint32_t(i));
    }
    for (uint32_t i : candidates) {
      if (paths[i].inside == paths[j].inside && inner.InsideOf(*shapes[i])) Flip(paths[j].inside);
    }
  }
}

}  // namespace rv
