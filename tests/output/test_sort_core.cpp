// The ordering steps of the cut-order sorts on made-up entries whose arts
// are the ids 1, 2, 3...; the fast refinements against their plain oracles.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "output/sort_core.h"

namespace {

using Ids = std::vector<std::intptr_t>;

std::intptr_t Id(void* art) { return reinterpret_cast<std::intptr_t>(art); }
void* Art(std::intptr_t id) { return reinterpret_cast<void*>(id); }

std::vector<rv::RVSORTENTRY> Entries(std::initializer_list<int> keys) {
  std::vector<rv::RVSORTENTRY> out;
  for (int k : keys) out.push_back(rv::RVSORTENTRY{k, 0, 0.0, Art(std::intptr_t(out.size()) + 1)});
  return out;
}

Ids IdsOf(const std::vector<rv::RVSORTENTRY>& e) {
  Ids out;
  for (const auto& x : e) out.push_back(Id(x.art));
  return out;
}

// The point of art id in `points` (ids count from 1).
auto PointOf(const std::vector<RVPOINT>& points) {
  return [&points](void* art) { return points[std::size_t(Id(art) - 1)]; };
}

// The key order is a stable sort; whole percentages of the refinements are
// in the progress of the whole exports.
TEST(SortCore, RefinementPercentTruncates) { EXPECT_EQ(rv::RefinePercent(1, 3), 66); }

TEST(SortCore, NearestStartWithinRunsOfEqualKeys) {
  std::vector<RVPOINT> starts = {{0, 0}, {30, 0}, {10, 0}, {20, 0}, {500, 500}, {90, 0}, {80, 0}};
  std::vector<RVPOINT> ends = {{0, 1}, {31, 0}, {11, 0}, {21, 0}, {500, 500}, {91, 0}, {81, 0}};
  // Ids 1..4 in one run, 5 alone, 6 and 7 a run of two.
  auto e = Entries({3, 3, 3, 3, 4, 9, 9});
  std::vector<std::size_t> reports;
  rv::RefineByNearestStart(e, RVPOINT{12, 0}, PointOf(starts), PointOf(ends),
                           [&](std::size_t done) { reports.push_back(done); });
  // From (12,0): id 3 (10,0) nearest, pen to (11,0); id 4 (20,0) at 9 beats
  // id 1 (0,0) at 11; pen to (21,0); the last two ordered once: id 2 (30,0)
  // at 9 before id 1. Id 5 alone. Pen at id 1's end (0,1): 7 before 6.
  EXPECT_EQ(IdsOf(e), (Ids{3, 4, 2, 1, 5, 7, 6}));
  EXPECT_EQ(reports, (std::vector<std::size_t>{4, 5, 7}));
  EXPECT_EQ(e[4].value, 0.0);  // a lone entry is never measured

  // Ties keep the order they had; distances beyond the cap count as the cap.
  // First pass: 1 and 2 tie at 5, 1 settles; pen (5,0): 2 at 10, 3 and 4
  // capped; then 3 and 4 both capped: order kept.
  starts = {{5, 0}, {-5, 0}, {1e9, 0}, {-1e9, 0}};
  ends = starts;
  e = Entries({1, 1, 1, 1});
  rv::RefineByNearestStart(e, RVPOINT{0, 0}, PointOf(starts), PointOf(ends), [](std::size_t) {});
  EXPECT_EQ(IdsOf(e), (Ids{1, 2, 3, 4}));
  EXPECT_EQ(e[3].value, rv::kDistanceCap);
  e.clear();
  rv::RefineByNearestStart(e, RVPOINT{0, 0}, PointOf(starts), PointOf(ends), [](std::size_t) { ADD_FAILURE(); });
}

TEST(SortCore, NearestStartGivesTheOrderOfThePlainProcedure) {
  // Starts and ends on a small integer grid, so that many distances tie
  // exactly; some starts repeat, some lie beyond the cap; keys in few runs.
  // The last rounds hold runs long enough for the tree search, a NaN start
  // among them, and one round of 1 500 in one run.
  std::mt19937 gen(11);
  for (int round = 0; round < 340; ++round) {
    const int count = round < 300 ? 1 + int(gen() % 40) : round < 339 ? 30 + int(gen() % 600) : 1500;
    std::vector<RVPOINT> starts, ends;
    std::vector<rv::RVSORTENTRY> e;
    std::uniform_int_distribution<int> cell(0, round % 3 == 0 ? 2 : round < 300 ? 6 : 40);
    for (int k = 0; k < count; ++k) {
      RVPOINT s{double(cell(gen)), double(cell(gen))};
      if (gen() % 10 == 0) s.x += 200000.0;  // beyond the cap
      if (round >= 300 && k == 7) s.y = std::nan("");
      starts.push_back(s);
      ends.push_back(RVPOINT{double(cell(gen)), double(cell(gen))});
      e.push_back(rv::RVSORTENTRY{round < 339 ? int(gen() % 3) : 0, 0, 0.0, Art(k + 1)});
    }
    rv::SortEntriesByKey(e);
    auto plain = e;
    std::vector<std::size_t> fastReports, plainReports;
    const RVPOINT pen{double(cell(gen)), 0.0};
    rv::RefineByNearestStart(e, pen, PointOf(starts), PointOf(ends), [&](std::size_t d) { fastReports.push_back(d); });
    rv::RefineByNearestStartPlain(plain, pen, PointOf(starts), PointOf(ends),
                                  [&](std::size_t d) { plainReports.push_back(d); });
    ASSERT_EQ(IdsOf(e), IdsOf(plain)) << "round " << round;
    for (std::size_t k = 0; k < e.size(); ++k) EXPECT_EQ(e[k].value, plain[k].value) << "round " << round;
    EXPECT_EQ(fastReports, plainReports);
  }
}

TEST(SortCore, IntegerBoxesRoundAndOrder) {
  RVRECT r{20.4, 1.5, 10.49, 5.5};  // top, left, right, bottom
  const rv::IntRect b = rv::IntegerBox(r);  // top: the smaller of 20 and 6
  EXPECT_TRUE(b.left == 2 && b.right == 10 && b.top == 6 && b.bottom == 20);
  r.left = -3.7;  // whole part of -3.2
  EXPECT_EQ(rv::IntegerBox(r).left, -3);
}

// The plain double loop of the refinement by bounds, the oracle.
void PlainByBounds(std::vector<rv::RVSORTENTRY>& e, std::vector<rv::IntRect>& boxes) {
  for (std::size_t i = 0; i + 1 < e.size(); ++i) {
    for (std::size_t j = i + 1; j < e.size(); ++j) {
      // Grown by one unit up and right, held at the 32-bit limits.
      const rv::IntRect a{boxes[i].left, std::max(boxes[i].top, INT32_MIN + 1) - 1,
                          std::min(boxes[i].right, INT32_MAX - 1) + 1, boxes[i].bottom};
      const rv::IntRect& b = boxes[j];
      rv::IntRect c;
      const bool swap = (rv::IntersectRect(c, a, b) && e[j].value < e[i].value) ||
                        (rv::PtInRect(a, b.left, b.top) && rv::PtInRect(a, b.right, b.top) &&
                         rv::PtInRect(a, b.left, b.bottom) && rv::PtInRect(a, b.right, b.bottom));
      if (swap) {
        std::swap(e[i], e[j]);
        std::swap(boxes[i], boxes[j]);
      }
    }
  }
}

// Entries with the perimeter of their boxes, ids 1, 2, 3...
std::vector<rv::RVSORTENTRY> WithBoxes(const std::vector<rv::IntRect>& boxes) {
  std::vector<rv::RVSORTENTRY> e;
  for (const rv::IntRect& b : boxes) {
    e.push_back(rv::RVSORTENTRY{0, 0, 2.0 * (double(b.right) - b.left) + 2.0 * (double(b.bottom) - b.top),
                                Art(std::intptr_t(e.size()) + 1)});
  }
  return e;
}

TEST(SortCore, BoundsRefinementMovesInnerAndSmallerArtsForward) {
  // Equal boxes don't exchange; one smaller by 1 on every side moves forward:
  // a = 1st: id 2 equal (no), id 3 inside -> 3 first; ids 1 and 2 don't lie
  // in its box. a = 2nd (id 2): id 1 equal, no.
  std::vector<rv::IntRect> boxes = {{0, 0, 10, 10}, {0, 0, 10, 10}, {1, 1, 9, 9}};
  auto e = WithBoxes(boxes);
  std::vector<std::size_t> reports;
  rv::RefineByBounds(e, boxes, [&](std::size_t i) { reports.push_back(i); });
  EXPECT_EQ(IdsOf(e), (Ids{3, 2, 1}));
  EXPECT_EQ(reports, (std::vector<std::size_t>{0, 1}));
  EXPECT_EQ(boxes[0].left, 1);

  // Overlap: the shorter perimeter goes first. Id 2 meets the box of id 1
  // grown one unit right; id 4 touches id 3 at its bottom edge (y 10) only.
  boxes = {{0, 0, 10, 10}, {10, 5, 14, 9}, {20, 0, 30, 10}, {25, 10, 27, 12}};
  e = WithBoxes(boxes);
  rv::RefineByBounds(e, boxes, [](std::size_t) {});
  EXPECT_EQ(IdsOf(e), (Ids{2, 1, 3, 4}));

  e.clear();
  boxes.clear();
  rv::RefineByBounds(e, boxes, [](std::size_t) { ADD_FAILURE(); });
}

TEST(SortCore, BoundsRefinementGivesTheOrderOfThePlainDoubleLoop) {
  std::mt19937 gen(7);
  for (int round = 0; round < 30; ++round) {
    const int n = 50 + round * 37;
    // Every fourth round in one small block, where boxes pile up.
    std::uniform_int_distribution<int> pos(0, round % 4 == 3 ? 12 : 400 + round * 20),
        size(0, round % 3 == 0 ? 120 : 25);
    std::vector<rv::IntRect> boxes;
    for (int i = 0; i < n; ++i) {
      const int x = pos(gen), y = pos(gen);
      boxes.push_back(rv::IntRect{x, y, x + size(gen), y + size(gen)});
    }
    // Spatially coherent, as after the key order, on some rounds; random on others.
    if (round % 2 == 0) {
      std::stable_sort(boxes.begin(), boxes.end(), [](const rv::IntRect& a, const rv::IntRect& b) {
        return a.top / 50 * 100 + a.left / 50 < b.top / 50 * 100 + b.left / 50;
      });
    }
    // Near the 32-bit limits on some rounds, where the growth saturates.
    if (round % 5 == 4) {
      for (rv::IntRect& b : boxes) b.right = INT32_MAX - (b.right % 3), b.top = INT32_MIN + (b.top % 3);
    }
    auto e = WithBoxes(boxes);
    // Values that never compare below another: NaN.
    if (round % 3 == 1) {
      for (std::size_t k = 0; k < e.size(); k += 7) e[k].value = std::nan("");
    }
    auto plain = e;
    auto plainBoxes = boxes;
    PlainByBounds(plain, plainBoxes);
    auto byGrid = e;
    auto gridBoxes = boxes;
    rv::RefineByBoundsWith<rv::BoundsIndex>(e, boxes, [](std::size_t) {});
    ASSERT_EQ(IdsOf(e), IdsOf(plain)) << "round " << round;
    rv::RefineByBoundsWith<rv::GridBoundsIndex>(byGrid, gridBoxes, [](std::size_t) {});
    ASSERT_EQ(IdsOf(byGrid), IdsOf(plain)) << "grid, round " << round;
  }
}

}  // namespace
