// The box grid and the indexed nesting pass against their plain measures:
// every box that holds a point, and the flags of the pair loop.
#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <random>

#include "geometry/affine.h"
#include "geometry/box_grid.h"
#include "geometry/curve_core.h"
#include "geometry/judge_polyline.h"
#include "geometry/judge_shape.h"
#include "geometry_test.h"

using namespace rv;
using namespace geotest;

namespace {

TEST(BoxGrid, StabFindsExactlyTheBoxesThatHoldThePoint) {
  std::mt19937 rng(77);
  std::uniform_real_distribution<double> at(0.0, 100.0), size(0.0, 30.0);
  std::uniform_int_distribution<int> grid(0, 20);
  // Rows: box count; grid boxes share sides and corners with the grid probes.
  for (std::size_t count : {0u, 1u, 15u, 16u, 17u, 300u, 5000u}) {
    SCOPED_TRACE(count);
    LargeArray<PlainBox> boxes;
    for (std::size_t k = 0; k < count; ++k) {
      if (k % 3 == 0) {
        const double l = grid(rng) * 5.0, b = grid(rng) * 5.0;
        boxes.push_back({l, b, l + grid(rng) * 5.0, b + (k % 2) * grid(rng) * 5.0});  // some flat
      } else {
        const double l = at(rng), b = at(rng);
        boxes.push_back({l, b, l + size(rng), b + size(rng)});
      }
    }
    const BoxGrid tree(boxes);
    std::vector<RVPOINT> probes;
    for (int k = 0; k < 200; ++k) probes.push_back({at(rng), at(rng)});
    for (int x = 0; x <= 130; x += 5) probes.push_back({double(x), double(x % 35)});
    for (const RVPOINT& q : probes) {
      std::vector<std::size_t> found, expected;
      tree.Stab(q.x, q.y, [&](std::size_t k) { found.push_back(k); });
      for (std::size_t k = 0; k < count; ++k) {
        if (boxes[k].Holds(q.x, q.y)) expected.push_back(k);
      }
      std::sort(found.begin(), found.end());
      ASSERT_EQ(found, expected) << q.x << ", " << q.y;
    }
  }
}

CoarsePolyline Ring(double cx, double cy, double r, int corners, double phase) {
  std::vector<RVBEZIERPOINT> records;
  for (int i = 0; i <= corners; ++i) {
    const double t = 2 * kPi * (i % corners) / corners + phase;
    const double wobble = 1.0 + 0.2 * std::sin(3 * t + phase);
    records.push_back(Corner(cx + r * wobble * std::cos(t), cy + r * wobble * std::sin(t)));
  }
  return MakeCoarsePolyline(records.data(), int32_t(records.size()), 0, nullptr);
}

// Runs both passes over the shapes in the given order and compares the
// flags; returns the number of holes.
int ExpectSameFlags(const std::vector<std::unique_ptr<NestingShape>>& owned) {
  std::vector<const NestingShape*> shapes;
  for (const auto& s : owned) shapes.push_back(s.get());
  std::vector<RVINSIDEPATH> byPairs(shapes.size(), RVINSIDEPATH{nullptr, 0}), byIndex = byPairs;
  FlipNestedByPairs(shapes, byPairs.data());
  FlipNestedByIndex(shapes, byIndex.data());
  int holes = 0;
  for (std::size_t k = 0; k < shapes.size(); ++k) {
    EXPECT_EQ(byIndex[k].inside, byPairs[k].inside) << k;
    holes += byPairs[k].inside;
  }
  return holes;
}

TEST(NestingIndex, FlagsMatchThePairLoop) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  std::mt19937 rng(2024);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  // Rows: clusters of rings nested `depth` deep, in random order (not by
  // area: the pass must hold for any order), with shapes that the boxes
  // can't decide (infinite and NaN corners) and shapes without edges among
  // them.
  struct Row {
    int clusters, depth;
    bool odd;
  };
  for (const Row row : {Row{1, 1, false}, Row{40, 5, false}, Row{30, 4, true}, Row{200, 2, true}}) {
    std::vector<std::unique_ptr<NestingShape>> shapes;
    for (int c = 0; c < row.clusters; ++c) {
      const double cx = (c % 10) * 20.0 + unit(rng) * 5, cy = (c / 10) * 20.0;
      for (int d = 0; d < row.depth; ++d) {
        const double r = 9.0 - d * 1.5 + unit(rng) * 4;  // neighbours' rings overlap
        shapes.push_back(std::make_unique<NestingShape>(Ring(cx, cy, r, 5 + c % 20, unit(rng))));
      }
    }
    if (row.odd) {
      // A strip open to the right (its angle sums still hold the rings in
      // it), and a ring whose last point, which is no probe, lies at
      // infinity.
      const double inf = std::numeric_limits<double>::infinity();
      CoarsePolyline strip;
      strip.points = {{0, -1000}, {0, 1000}, {inf, 1000}, {inf, -1000}, {0, -1000}};
      strip.ends.push_back(strip.points.size());
      shapes.push_back(std::make_unique<NestingShape>(strip));
      CoarsePolyline tail = Ring(30, 10, 1, 6, 0.2);
      tail.points.back() = {inf, 0};
      shapes.push_back(std::make_unique<NestingShape>(tail));
      CoarsePolyline broken = Ring(50, 50, 80, 12, 0.3);
      broken.points[3].y = nan;
      shapes.push_back(std::make_unique<NestingShape>(broken));
      CoarsePolyline dot;
      dot.points.push_back({40, 40});
      dot.ends.push_back(1);
      shapes.push_back(std::make_unique<NestingShape>(dot));
      shapes.push_back(std::make_unique<NestingShape>(CoarsePolyline{}));
    }
    std::shuffle(shapes.begin(), shapes.end(), rng);
    const int holes = ExpectSameFlags(shapes);
    if (row.clusters > 1) {
      EXPECT_GT(holes, 0);
    }
    if (HasFailure()) return;
  }
}

TEST(FlattenPruned, MakesTheChordsOfTheFlatteningOutsideThePiecesItPasses) {
  // A long straight segment and a curve; the pieces left of 30 or right of
  // 60 (by their ends) are passed whole.
  for (const auto& [a, b] : {std::pair{Corner(0, 0), Corner(100, 3)},
                             std::pair{Smooth({0, 0}, {0, 0}, {20, 80}), Smooth({100, 0}, {80, -80}, {100, 0})}}) {
    std::vector<RVPOINT> all{a.anchor};
    FlattenCurve(a, b, kJudgeLength, kJudgeTolerance, kJudgeMode, all);
    std::size_t at = 0, passed = 0, made = 0;  // `at`: the walk's place in `all`
    auto step = [&](const RVPOINT& u, const RVPOINT& v, bool chord) {
      ASSERT_TRUE(SamePoint(u, all[at]));
      const std::size_t from = at;
      while (at + 1 < all.size() && !SamePoint(all[at], v)) ++at;
      ASSERT_TRUE(SamePoint(all[at], v));
      // A chord is one chord of the flattening; a passed piece lies outside
      // 30..60 and holds no chord that reaches in.
      if (chord) {
        EXPECT_EQ(at, from + 1);
      }
      for (std::size_t k = from; !chord && k < at; ++k) EXPECT_FALSE(all[k + 1].x > 30 && all[k].x < 60) << k;
      ++(chord ? made : passed);
    };
    FlattenPruned(
        a, b, kJudgeLength, kJudgeTolerance, kJudgeMode,
        [](const RVPOINT& u, const RVPOINT& v) { return v.x <= 30 || u.x >= 60; },
        [&](const RVPOINT& u, const RVPOINT& v) { step(u, v, false); },
        [&](const RVPOINT& u, const RVPOINT& v) { step(u, v, true); });
    EXPECT_EQ(at + 1, all.size());
    EXPECT_GT(passed, 1u);
    EXPECT_GT(made, 2u);
  }
}

}  // namespace
