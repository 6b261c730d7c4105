// Cut-order sorts over 20,000 arts: the key order and the two refinements.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "filed_drawing.h"
#include "geometry/affine.h"
#include "output/art_sort.h"
#include "output/block_key.h"
#include "output/sort_core.h"
#include "rvdataaccess.h"

namespace {

constexpr int kArts = 20000;

struct Scene {
  std::vector<rv::RVSORTENTRY> entries;
  std::vector<rv::IntRect> boxes;
  std::vector<RVPOINT> starts;
};

// Small shapes spread over a 2000 x 1000 area, a few large ones among them.
Scene MakeScene() {
  Scene s;
  std::mt19937 gen(42);
  std::uniform_real_distribution<double> x(0, 2000), y(0, 1000), size(1, 20);
  rv::BlockGrid grid;
  grid.areaWidth = 2000;
  grid.areaHeight = 1000;
  for (int i = 0; i < kArts; ++i) {
    const double px = x(gen), py = y(gen);
    const double w = i % 500 == 0 ? 300 : size(gen), h = i % 500 == 0 ? 200 : size(gen);
    const rv::IntRect b{int(px), int(py), int(px + w), int(py + h)};
    s.boxes.push_back(b);
    s.starts.push_back(RVPOINT{px, py});
    s.entries.push_back(rv::RVSORTENTRY{rv::BlockKey(grid, py, px), 2 * w + 2 * h,
                                        reinterpret_cast<void*>(std::intptr_t(i))});
  }
  return s;
}

void BM_KeyOrderAndNearestStart(benchmark::State& state) {
  const Scene scene = MakeScene();
  for (auto _ : state) {
    auto entries = scene.entries;
    rv::SortEntriesByKey(entries);
    auto at = [&](void* art) { return scene.starts[std::size_t(reinterpret_cast<std::intptr_t>(art))]; };
    rv::RefineByNearestStart(entries, RVPOINT{0, 0}, at, at, [](std::size_t) {});
    benchmark::DoNotOptimize(entries.data());
  }
}
BENCHMARK(BM_KeyOrderAndNearestStart)->Unit(benchmark::kMillisecond);

// The worst case of the block sort: all 20,000 starts in one block, so the
// nearest-start refinement settles them one by one.
void BM_NearestStartInOneBlock(benchmark::State& state) {
  std::mt19937 gen(5);
  std::uniform_real_distribution<double> u(0, 50);
  std::vector<RVPOINT> starts(kArts);
  std::vector<rv::RVSORTENTRY> scene(kArts);
  for (int i = 0; i < kArts; ++i) {
    starts[std::size_t(i)] = RVPOINT{u(gen), u(gen)};
    scene[std::size_t(i)] = rv::RVSORTENTRY{0, 0.0, reinterpret_cast<void*>(std::intptr_t(i))};
  }
  auto at = [&](void* art) { return starts[std::size_t(reinterpret_cast<std::intptr_t>(art))]; };
  for (auto _ : state) {
    auto entries = scene;
    rv::RefineByNearestStart(entries, RVPOINT{0, 0}, at, at, [](std::size_t) {});
    benchmark::DoNotOptimize(entries.data());
  }
}
BENCHMARK(BM_NearestStartInOneBlock)->Unit(benchmark::kMillisecond)->Iterations(1);

void BM_KeyOrderAndBounds(benchmark::State& state) {
  const Scene scene = MakeScene();
  for (auto _ : state) {
    auto entries = scene.entries;
    rv::SortEntriesByKey(entries);
    std::vector<rv::IntRect> boxes;
    boxes.reserve(entries.size());
    for (const auto& e : entries) boxes.push_back(scene.boxes[std::size_t(reinterpret_cast<std::intptr_t>(e.art))]);
    rv::RefineByBounds(entries, boxes, [](std::size_t) {});
    benchmark::DoNotOptimize(entries.data());
  }
}
BENCHMARK(BM_KeyOrderAndBounds)->Unit(benchmark::kMillisecond);

// The sort classes over a drawing of 20,000 open paths filed in a RefMap
// table: the walk, the block keys, the key order and the refinement.
void MakeDrawing() {
  RvGiDeleteRefMapTable();
  RvGiDeleteAllDocuments();
  const rvbench::FiledDrawing drawing = rvbench::NewFiledDrawing();
  std::mt19937 gen(7);
  std::uniform_real_distribution<double> x(0, 2000), y(0, 1000), size(1, 20);
  for (int i = 0; i < kArts; ++i) {
    const double px = x(gen), py = y(gen);
    const double w = i % 500 == 0 ? 300 : size(gen), h = i % 500 == 0 ? 200 : size(gen);
    const RVPOINT corners[3] = {{px, py}, {px + w, py}, {px + w, py + h}};
    RVBEZIERPOINT points[3]{};
    for (int k = 0; k < 3; ++k) points[k].anchor = points[k].in = points[k].out = corners[k];
    AddFiledPath(drawing, "arts", points, 3, RVRECT{py + h, px, px + w, py});
  }
  RVRECT page{1000, 0, 2000, 0};
  RvGiSetDocBoundingBox(&page);
}

RVPLOTPARAM SortParam(uint16_t cls) {
  RVPLOTPARAM p{};
  p.plotterClass = cls;
  p.scaleX = p.scaleY = 100.0;
  p.deviceUnit = 1.0;
  p.deviceMaxX = 2000;
  p.deviceMaxY = 1000;
  return p;
}

template <class Sort>
void RunSort(benchmark::State& state, uint16_t cls) {
  MakeDrawing();
  const RVPLOTPARAM param = SortParam(cls);
  for (auto _ : state) {
    Sort sort(rv::kIdentity, param);
    if (sort.SortTable(nullptr, 1) != 0) state.SkipWithError("sort failed");
    benchmark::DoNotOptimize(sort.m_entries.data());
  }
  RvGiDeleteRefMapTable();
  RvGiDeleteAllDocuments();
}

void BM_BlockBubbleSortOfADrawing(benchmark::State& state) { RunSort<rv::CRvBlockBubbleSort>(state, 0); }
BENCHMARK(BM_BlockBubbleSortOfADrawing)->Unit(benchmark::kMillisecond);

void BM_ArtSortByBoundsOfADrawing(benchmark::State& state) { RunSort<rv::CRvArtSortByBounds>(state, 6); }
BENCHMARK(BM_ArtSortByBoundsOfADrawing)->Unit(benchmark::kMillisecond);

}  // namespace
