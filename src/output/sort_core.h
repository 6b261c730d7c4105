// The ordering steps of the cut-order sorts, apart from the drawing: the
// first ordering by block key, the nearest-start refinement within runs of
// equal keys, and the refinement by bounds that moves what lies inside or
// overlaps a larger art in front of it.
#pragma once

#include <algorithm>
#include <climits>
#include <optional>
#include <cstdint>
#include <utility>
#include <vector>

#include "geometry/affine.h"
#include "output/bounds_index.h"
#include "output/grid_bounds_index.h"
#include "output/int_rect.h"
#include "output/start_tree.h"

namespace rv {

/// One art of a sort: its block key, a value whose meaning depends on the
/// sort (distance from the pen, or perimeter of the bounds) and the art;
/// marks that the sort's user reads off the art as the entry is made.
struct RVSORTENTRY {
  int32_t key = 0;
  uint32_t marks = 0;
  double value = 0.0;
  void* art = nullptr;
};

/// Largest distance that the nearest-start refinement keeps.
constexpr double kDistanceCap = 170000.0;

/// Runs of the nearest-start refinement up to this length are searched
/// entry by entry; longer ones through a StartTree.
constexpr std::size_t kShortRun = 64;

/// Orders by key, ascending; equal keys keep their order.
void SortEntriesByKey(std::vector<RVSORTENTRY>& entries);

/// Percent of a refinement at `done` of `total`: 50 + done / total * 50,
/// truncated to 16 bits.
int16_t RefinePercent(std::size_t done, std::size_t total);

/// Nearest-start refinement, as the plain procedure states it. Within each
/// run of equal keys, while more than two entries are open: every open
/// entry's value becomes the distance from the pen to its start (distances at
/// or above the cap count as the cap), the open entries are sorted by value,
/// stable, and the first is settled; the pen moves to its end. The last two
/// are measured and ordered once, and the pen moves on to the end of the
/// last. A run of one leaves the pen where it is. startOf(art) and endOf(art)
/// give points of plot space; report(done) runs after each entry or run and
/// may raise. Costs a sort per settled entry; kept as the measure of
/// RefineByNearestStart.
template <class StartOf, class EndOf, class Report>
void RefineByNearestStartPlain(std::vector<RVSORTENTRY>& entries, RVPOINT pen, StartOf&& startOf, EndOf&& endOf,
                               Report&& report) {
  const std::size_t n = entries.size();
  std::size_t i = 0;
  while (i < n) {
    std::size_t runEnd = i + 1;
    while (runEnd < n && entries[runEnd].key == entries[i].key) ++runEnd;
    if (runEnd - i > 1) {
      auto measure = [&](std::size_t from) {
        for (std::size_t k = from; k < runEnd; ++k) {
          const double d = Distance(pen, startOf(entries[k].art));
          entries[k].value = d < kDistanceCap ? d : kDistanceCap;
        }
        std::stable_sort(entries.begin() + std::ptrdiff_t(from), entries.begin() + std::ptrdiff_t(runEnd),
                         [](const RVSORTENTRY& a, const RVSORTENTRY& b) { return a.value < b.value; });
      };
      std::size_t open = i;
      while (runEnd - open > 2) {
        measure(open);
        pen = endOf(entries[open].art);
        ++open;
      }
      measure(open);
      pen = endOf(entries[runEnd - 1].art);
    }
    i = runEnd;
    report(i);
  }
}

/// The same order and values as RefineByNearestStartPlain, without a sort.
/// The first entry of the sorted open list is the least by (distance now,
/// place in the list before), and the place in the list before is decided by
/// the distance from the pen before that, and so on back to the order of
/// the run. So the entries at the least distance now, found in a StartTree,
/// are the only candidates, and only those that tie look back at earlier
/// pens. Where the least distance reaches the cap, every open entry ties at
/// the cap and all of them are compared.
template <class StartOf, class EndOf, class Report>
void RefineByNearestStart(std::vector<RVSORTENTRY>& entries, RVPOINT pen, StartOf&& startOf, EndOf&& endOf,
                          Report&& report) {
  const std::size_t n = entries.size();
  std::vector<RVSORTENTRY> run;
  std::vector<RVPOINT> starts;
  std::vector<RVPOINT> pens;        // the pen of each measurement of the run
  std::vector<std::size_t> open;    // indexes into run, in no particular order
  std::vector<std::size_t> slot;    // place of each open index in `open`
  std::vector<std::size_t> ties;
  auto capped = [](const RVPOINT& p, const RVPOINT& q) {
    const double d = Distance(p, q);
    return d < kDistanceCap ? d : kDistanceCap;
  };
  // Whether x stands before y in the list sorted at measurement `step`.
  auto before = [&](std::size_t x, std::size_t y, std::size_t step) {
    if (starts[x].x != starts[y].x || starts[x].y != starts[y].y) {
      for (std::size_t s = step + 1; s-- > 0;) {
        const double dx = capped(pens[s], starts[x]);
        const double dy = capped(pens[s], starts[y]);
        if (dx != dy) return dx < dy;
      }
    }
    return x < y;  // the order of the run
  };
  // The first of the candidates in the list sorted at measurement `step`.
  auto first = [&](const std::vector<std::size_t>& candidates, std::size_t step) {
    std::size_t best = candidates[0];
    double least = capped(pens[step], starts[best]);
    for (std::size_t m = 1; m < candidates.size(); ++m) {
      const std::size_t c = candidates[m];
      const double d = capped(pens[step], starts[c]);
      if (d < least || (d == least && (step == 0 ? c < best : before(c, best, step - 1)))) {
        best = c;
        least = d;
      }
    }
    return best;
  };
  std::size_t i = 0;
  while (i < n) {
    std::size_t runEnd = i + 1;
    while (runEnd < n && entries[runEnd].key == entries[i].key) ++runEnd;
    const std::size_t k = runEnd - i;
    if (k > 1) {
      run.assign(entries.begin() + std::ptrdiff_t(i), entries.begin() + std::ptrdiff_t(runEnd));
      starts.resize(k);
      for (std::size_t j = 0; j < k; ++j) starts[j] = startOf(run[j].art);
      pens.clear();
      open.resize(k);
      slot.resize(k);
      for (std::size_t j = 0; j < k; ++j) open[j] = slot[j] = j;
      std::optional<StartTree> tree;
      if (k > kShortRun) tree.emplace(starts);
      std::size_t out = i;
      while (open.size() > 2) {
        const std::size_t step = pens.size();
        pens.push_back(pen);
        const bool near = tree && tree->Nearest(pen, ties) < kDistanceCap;
        const std::size_t j = first(near ? ties : open, step);
        run[j].value = capped(pen, starts[j]);
        entries[out++] = run[j];
        pen = endOf(run[j].art);
        if (tree) tree->Remove(j);
        open[slot[j]] = open.back();  // the order of `open` doesn't matter
        slot[open.back()] = slot[j];
        open.pop_back();
      }
      const std::size_t step = pens.size();
      pens.push_back(pen);
      const std::size_t lead = first(open, step), second = open[0] == lead ? open[1] : open[0];
      run[lead].value = capped(pen, starts[lead]);
      run[second].value = capped(pen, starts[second]);
      entries[out++] = run[lead];
      entries[out++] = run[second];
      pen = endOf(run[second].art);
    }
    i = runEnd;
    report(i);
  }
}

/// The integer box of an art's bounds: each side rounded as whole part of
/// (value + 0.5), ordered so that left <= right and top <= bottom.
IntRect IntegerBox(const RVRECT& bounds);

/// Refinement by bounds. For each entry a from the first to the last but
/// one, with A its box grown by 1 (top - 1, right + 1): every later entry b
/// whose box B meets A and whose value is below a's, or whose four corners
/// lie in A, changes places with a, and A is taken anew from the new a; the
/// walk over b goes on from there. report(indexOfA) runs after each a and
/// may raise. `boxes` holds the box of each entry and is permuted with the
/// entries. The result is that of the plain double loop; the next b is found
/// through an Index (BoundsIndex or GridBoundsIndex).
template <class Index, class Report>
void RefineByBoundsWith(std::vector<RVSORTENTRY>& entries, std::vector<IntRect>& boxes, Report&& report) {
  const std::size_t n = entries.size();
  if (n < 2) return;
  std::vector<double> values(n);
  for (std::size_t k = 0; k < n; ++k) values[k] = entries[k].value;
  Index index(boxes, std::move(values));
  auto grown = [](IntRect r) {  // saturating at the 32-bit limits
    if (r.top > INT32_MIN) r.top -= 1;
    if (r.right < INT32_MAX) r.right += 1;
    return r;
  };
  for (std::size_t i = 0; i + 1 < n; ++i) {
    IntRect a = grown(boxes[i]);
    for (std::size_t j = index.FirstFrom(i + 1, a, entries[i].value); j < n;
         j = index.FirstFrom(j + 1, a, entries[i].value)) {
      std::swap(entries[i], entries[j]);
      std::swap(boxes[i], boxes[j]);
      index.Exchange(i, j);
      a = grown(boxes[i]);
    }
    report(i);
  }
}

/// Whether at least half of the entries share one block key: their order
/// (the drawing's) says nothing of where they lie.
bool MostlyOneBlock(const std::vector<RVSORTENTRY>& entries);

/// RefineByBoundsWith the index that suits the entries: BoundsIndex, whose
/// runs of positions lie near each other in the order of the block keys, or
/// GridBoundsIndex for entries mostly of one block.
template <class Report>
void RefineByBounds(std::vector<RVSORTENTRY>& entries, std::vector<IntRect>& boxes, Report&& report) {
  if (MostlyOneBlock(entries)) {
    RefineByBoundsWith<GridBoundsIndex>(entries, boxes, std::forward<Report>(report));
  } else {
    RefineByBoundsWith<BoundsIndex>(entries, boxes, std::forward<Report>(report));
  }
}

}  // namespace rv
