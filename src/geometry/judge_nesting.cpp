// Which of a set of closed paths are holes: the nesting judgment, plain and
// fast.
#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "frame/error_codes.h"
#include "frame/frame.h"
#include "geometry/judge.h"
#include "geometry/judge_shape.h"

namespace rv {

namespace {

void Flip(int32_t& flag) { flag = flag == 0 ? 1 : 0; }

void InvertAll(RVINSIDEPATH* paths, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) Flip(paths[i].inside);
}

}  // namespace

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
  std::vector<PlainBox> reaches;
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
  const BoxTree tree(reaches);
  std::vector<uint32_t> candidates;
  for (std::size_t j = 1; j < shapes.size(); ++j) {
    const NestingShape& inner = *shapes[j];
    if (!inner.CanBeInside()) continue;
    candidates.clear();
    if (inner.Boxed()) {
      const PlainBox probes = inner.Probes();
      tree.Stab(probes.left, probes.bottom, [&](std::size_t r) {
        if (boxedAt[r] < j && reaches[r].Holds(probes.right, probes.top)) candidates.push_back(boxedAt[r]);
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
