// The ordering steps of the cut-order sorts on made-up entries.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "output/sort_core.h"

namespace {

std::vector<rv::RVSORTENTRY> Entries(std::initializer_list<int> keys) {
  std::vector<rv::RVSORTENTRY> out;
  std::intptr_t id = 1;
  for (int k : keys) out.push_back(rv::RVSORTENTRY{k, 0.0, reinterpret_cast<void*>(id++)});
  return out;
}

std::vector<std::intptr_t> Ids(const std::vector<rv::RVSORTENTRY>& e) {
  std::vector<std::intptr_t> out;
  for (const auto& x : e) out.push_back(reinterpret_cast<std::intptr_t>(x.art));
  return out;
}

TEST(SortCore, KeyOrderIsStable) {
  auto e = Entries({5, 1, 5, 10500, 1, 0});
  rv::SortEntriesByKey(e);
  EXPECT_EQ(Ids(e), (std::vector<std::intptr_t>{6, 2, 5, 1, 3, 4}));
}

TEST(SortCore, NearestStartWithinRunsOfEqualKeys) {
  // Art i starts at starts[i] and ends at ends[i] (ids 1..).
  std::vector<RVPOINT> starts = {{0, 0}, {30, 0}, {10, 0}, {20, 0}, {500, 500}, {90, 0}, {80, 0}};
  std::vector<RVPOINT> ends = {{0, 1}, {31, 0}, {11, 0}, {21, 0}, {500, 500}, {91, 0}, {81, 0}};
  auto startOf = [&](void* art) { return starts[std::size_t(reinterpret_cast<std::intptr_t>(art) - 1)]; };
  auto endOf = [&](void* art) { return ends[std::size_t(reinterpret_cast<std::intptr_t>(art) - 1)]; };
  // Keys: ids 1..4 in one run, 5 alone, 6 and 7 a run of two.
  auto e = Entries({3, 3, 3, 3, 4, 9, 9});
  std::vector<std::size_t> reports;
  rv::RefineByNearestStart(e, RVPOINT{12, 0}, startOf, endOf, [&](std::size_t done) { reports.push_back(done); });
  // From (12,0): id 3 (10,0) nearest, pen to (11,0); id 4 (20,0) at 9 beats id 1 (0,0)
  // at 11; pen to (21,0); then the last two ordered once: id 2 (30,0) at 9 before id 1.
  // Id 5 alone. Pen at id 1's end (0,1): id 7 (80,0) before id 6 (90,0).
  EXPECT_EQ(Ids(e), (std::vector<std::intptr_t>{3, 4, 2, 1, 5, 7, 6}));
  EXPECT_EQ(reports, (std::vector<std::size_t>{4, 5, 7}));
  EXPECT_EQ(e[4].value, 0.0);  // a lone entry is never measured

  // Ties keep the order they had; distances beyond the cap count as the cap.
  starts = {{5, 0}, {-5, 0}, {1e9, 0}, {-1e9, 0}};
  ends = starts;
  e = Entries({1, 1, 1, 1});
  rv::RefineByNearestStart(e, RVPOINT{0, 0}, startOf, endOf, [](std::size_t) {});
  // First pass: 1 and 2 tie at 5, 1 settles; pen (5,0): 2 at 10, 3 and 4 capped.
  // Then 3 and 4 both capped: order kept.
  EXPECT_EQ(Ids(e), (std::vector<std::intptr_t>{1, 2, 3, 4}));
  EXPECT_EQ(e[3].value, rv::kDistanceCap);

  e.clear();
  rv::RefineByNearestStart(e, RVPOINT{0, 0}, startOf, endOf, [](std::size_t) { ADD_FAILURE(); });
}

TEST(SortCore, NearestStartGivesTheOrderOfThePlainProcedure) {
  // Starts and ends on a small integer grid, so that many distances tie
  // exactly; some starts repeat, some lie beyond the cap; keys in few runs.
  std::mt19937 gen(11);
  for (int round = 0; round < 300; ++round) {
    const int count = 1 + int(gen() % 40);
    std::vector<RVPOINT> starts, ends;
    std::vector<rv::RVSORTENTRY> e;
    std::uniform_int_distribution<int> cell(0, round % 3 == 0 ? 2 : 6);
    for (int k = 0; k < count; ++k) {
      RVPOINT s{double(cell(gen)), double(cell(gen))};
      if (gen() % 10 == 0) s.x += 200000.0;  // beyond the cap
      starts.push_back(s);
      ends.push_back(RVPOINT{double(cell(gen)), double(cell(gen))});
      e.push_back(rv::RVSORTENTRY{int(gen() % 3), 0.0, reinterpret_cast<void*>(std::intptr_t(k + 1))});
    }
    rv::SortEntriesByKey(e);
    auto startOf = [&](void* art) { return starts[std::size_t(reinterpret_cast<std::intptr_t>(art) - 1)]; };
    auto endOf = [&](void* art) { return ends[std::size_t(reinterpret_cast<std::intptr_t>(art) - 1)]; };
    auto plain = e;
    std::vector<std::size_t> fastReports, plainReports;
    const RVPOINT pen{double(cell(gen)), 0.0};
    rv::RefineByNearestStart(e, pen, startOf, endOf, [&](std::size_t d) { fastReports.push_back(d); });
    rv::RefineByNearestStartPlain(plain, pen, startOf, endOf, [&](std::size_t d) { plainReports.push_back(d); });
    ASSERT_EQ(Ids(e), Ids(plain)) << "round " << round;
    for (std::size_t k = 0; k < e.size(); ++k) EXPECT_EQ(e[k].value, plain[k].value) << "round " << round;
    EXPECT_EQ(fastReports, plainReports);
  }
}

TEST(SortCore, PercentOfARefinement) {
  EXPECT_EQ(rv::RefinePercent(0, 4), 50);
  EXPECT_EQ(rv::RefinePercent(1, 3), 66);
  EXPECT_EQ(rv::RefinePercent(4, 4), 100);
}

TEST(SortCore, IntegerBoxesRoundAndOrder) {
  RVRECT r;
  r.top = 20.4;
  r.left = 1.5;
  r.right = 10.49;
  r.bottom = 5.5;
  const rv::IntRect b = rv::IntegerBox(r);
  EXPECT_EQ(b.left, 2);
  EXPECT_EQ(b.right, 10);
  EXPECT_EQ(b.top, 6);  // the smaller of 20 and 6
  EXPECT_EQ(b.bottom, 20);
  r.left = -3.7;  // whole part of -3.2
  EXPECT_EQ(rv::IntegerBox(r).left, -3);
}

// The plain double loop, for comparison.
void Reference(std::vector<rv::RVSORTENTRY>& e, std::vector<rv::IntRect>& boxes) {
  for (std::size_t i = 0; i + 1 < e.size(); ++i) {
    rv::IntRect a = boxes[i];
    a.top -= 1;
    a.right += 1;
    for (std::size_t j = i + 1; j < e.size(); ++j) {
      const rv::IntRect& b = boxes[j];
      rv::IntRect c;
      bool swap = rv::IntersectRect(c, a, b) && e[j].value < e[i].value;
      swap = swap || (rv::PtInRect(a, b.left, b.top) && rv::PtInRect(a, b.right, b.top) &&
                      rv::PtInRect(a, b.left, b.bottom) && rv::PtInRect(a, b.right, b.bottom));
      if (swap) {
        std::swap(e[i], e[j]);
        std::swap(boxes[i], boxes[j]);
        a = boxes[i];
        a.top -= 1;
        a.right += 1;
      }
    }
  }
}

rv::RVSORTENTRY WithBox(std::intptr_t id, const rv::IntRect& b) {
  return rv::RVSORTENTRY{0, 2.0 * (b.right - b.left) + 2.0 * (b.bottom - b.top), reinterpret_cast<void*>(id)};
}

TEST(SortCore, BoundsRefinementMovesInnerAndSmallerArtsForward) {
  // Equal boxes don't exchange; one smaller by 1 on every side moves forward.
  std::vector<rv::IntRect> boxes = {{0, 0, 10, 10}, {0, 0, 10, 10}, {1, 1, 9, 9}};
  std::vector<rv::RVSORTENTRY> e = {WithBox(1, boxes[0]), WithBox(2, boxes[1]), WithBox(3, boxes[2])};
  std::vector<std::size_t> reports;
  rv::RefineByBounds(e, boxes, [&](std::size_t i) { reports.push_back(i); });
  // a = 1: id 2 equal (no), id 3 inside -> 3 first; A = box of 3; id 1 and 2 (now at
  // 2) don't lie in it. a = 2nd (id 2): id 1 equal, no.
  EXPECT_EQ(Ids(e), (std::vector<std::intptr_t>{3, 2, 1}));
  EXPECT_EQ(reports, (std::vector<std::size_t>{0, 1}));
  EXPECT_EQ(boxes[0].left, 1);

  // Overlap: the shorter perimeter goes first; touching edges aren't overlap but the
  // grown box reaches one unit further right and up.
  boxes = {{0, 0, 10, 10}, {10, 5, 14, 9}, {20, 0, 30, 10}, {25, 10, 27, 12}};
  e = {WithBox(1, boxes[0]), WithBox(2, boxes[1]), WithBox(3, boxes[2]), WithBox(4, boxes[3])};
  rv::RefineByBounds(e, boxes, [](std::size_t) {});
  // id 2 meets the grown box of id 1 (right + 1) with a smaller perimeter: first.
  // id 4 touches id 3 at its bottom edge (y 10) only: stays.
  EXPECT_EQ(Ids(e), (std::vector<std::intptr_t>{2, 1, 3, 4}));

  // Empty and single lists are left alone.
  e.clear();
  boxes.clear();
  rv::RefineByBounds(e, boxes, [](std::size_t) { ADD_FAILURE(); });
}

TEST(SortCore, BoundsRefinementGivesTheOrderOfThePlainDoubleLoop) {
  std::mt19937 gen(7);
  for (int round = 0; round < 30; ++round) {
    const int n = 50 + round * 37;
    std::uniform_int_distribution<int> pos(0, 400 + round * 20), size(0, round % 3 == 0 ? 120 : 25);
    std::vector<rv::IntRect> boxes;
    std::vector<rv::RVSORTENTRY> e;
    for (int i = 0; i < n; ++i) {
      const int x = pos(gen), y = pos(gen);
      const rv::IntRect b{x, y, x + size(gen), y + size(gen)};
      boxes.push_back(b);
      e.push_back(WithBox(i + 1, b));
    }
    // Keep the key order's spatial coherence on some rounds, random on others.
    if (round % 2 == 0) {
      std::vector<std::size_t> idx(static_cast<std::size_t>(n));
      for (std::size_t i = 0; i < idx.size(); ++i) idx[i] = i;
      std::sort(idx.begin(), idx.end(), [&](std::size_t a, std::size_t b) {
        return boxes[a].top / 50 * 100 + boxes[a].left / 50 < boxes[b].top / 50 * 100 + boxes[b].left / 50;
      });
      std::vector<rv::IntRect> b2;
      std::vector<rv::RVSORTENTRY> e2;
      for (std::size_t k : idx) {
        b2.push_back(boxes[k]);
        e2.push_back(e[k]);
      }
      boxes.swap(b2);
      e.swap(e2);
    }
    auto refE = e;
    auto refBoxes = boxes;
    Reference(refE, refBoxes);
    rv::RefineByBounds(e, boxes, [](std::size_t) {});
    ASSERT_EQ(Ids(e), Ids(refE)) << "round " << round;
  }
}

}  // namespace
