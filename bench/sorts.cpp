// Cut-order sorts over 20,000 arts: the key order and the two refinements.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "output/block_key.h"
#include "output/sort_core.h"

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

}  // namespace
