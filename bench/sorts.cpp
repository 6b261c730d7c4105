// Cut-order sorts over 20,000 and 100,000 arts: the key order and the two
// refinements, over a sheet, in one block, and with one large piece
// holding all the others.
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

// Small shapes spread over a 2000 x 1000 area, a few large ones among them;
// `nested`: one more piece first, holding all of them; `oneBlock`: the
// whole scene shrunk into one block of 50 mm.
Scene MakeScene(int arts, bool nested, bool oneBlock) {
  Scene s;
  std::mt19937 gen(42);
  const double scale = oneBlock ? 0.02 : 1.0;
  std::uniform_real_distribution<double> x(0, 2000 * scale), y(0, 1000 * scale), size(1 * scale, 20 * scale);
  rv::BlockGrid grid;
  grid.areaWidth = 2000;
  grid.areaHeight = 1000;
  auto add = [&](double px, double py, double w, double h) {
    const rv::IntRect b{int(px), int(py), int(px + w), int(py + h)};
    s.boxes.push_back(b);
    s.starts.push_back(RVPOINT{px, py});
    s.entries.push_back(rv::RVSORTENTRY{rv::BlockKey(grid, py, px), 0, 2 * w + 2 * h,
                                        reinterpret_cast<void*>(std::intptr_t(s.entries.size()))});
  };
  if (nested) add(-1, -1, 2002 * scale, 1002 * scale);
  for (int i = 0; i < arts; ++i) {
    const double px = x(gen), py = y(gen);
    const bool large = i % 500 == 0;
    add(px, py, large ? 300 * scale : size(gen), large ? 200 * scale : size(gen));
  }
  return s;
}

// Args: arts, nested, one block.
void BM_KeyOrderAndNearestStart(benchmark::State& state) {
  const Scene scene = MakeScene(int(state.range(0)), state.range(1) != 0, state.range(2) != 0);
  for (auto _ : state) {
    auto entries = scene.entries;
    rv::SortEntriesByKey(entries);
    auto at = [&](void* art) { return scene.starts[std::size_t(reinterpret_cast<std::intptr_t>(art))]; };
    rv::RefineByNearestStart(entries, RVPOINT{0, 0}, at, at, [](std::size_t) {});
    benchmark::DoNotOptimize(entries.data());
  }
}
BENCHMARK(BM_KeyOrderAndNearestStart)
    ->ArgsProduct({{20000, 100000}, {0, 1}, {0, 1}})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

// The plain nearest-start procedure, all starts in one block: a sort per
// settled entry (only the smaller size; it grows with the square).
void BM_NearestStartPlainInOneBlock(benchmark::State& state) {
  const Scene scene = MakeScene(int(state.range(0)), false, true);
  for (auto _ : state) {
    auto entries = scene.entries;
    for (auto& e : entries) e.key = 0;
    auto at = [&](void* art) { return scene.starts[std::size_t(reinterpret_cast<std::intptr_t>(art))]; };
    rv::RefineByNearestStartPlain(entries, RVPOINT{0, 0}, at, at, [](std::size_t) {});
    benchmark::DoNotOptimize(entries.data());
  }
}
BENCHMARK(BM_NearestStartPlainInOneBlock)->Arg(2000)->Unit(benchmark::kMillisecond)->Iterations(1);

void BM_KeyOrderAndBounds(benchmark::State& state) {
  const Scene scene = MakeScene(int(state.range(0)), state.range(1) != 0, state.range(2) != 0);
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
// In one block the refinement by bounds finds its entries through grids of
// the drawing: only the smaller size there.
BENCHMARK(BM_KeyOrderAndBounds)
    ->ArgsProduct({{20000, 100000}, {0, 1}, {0}})
    ->ArgsProduct({{20000}, {0, 1}, {1}})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

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
