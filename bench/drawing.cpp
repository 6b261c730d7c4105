// Building and walking a large drawing through the exported functions, as a
// host does: 10,000 paths of 100 Bezier points each (1,000,000 points).
#include <benchmark/benchmark.h>

#include <cstdint>

#include "rvdataaccess.h"

namespace {

constexpr int kPaths = 10000;
constexpr int kPointsPerPath = 100;

void Fail(benchmark::State& state, const char* what) { state.SkipWithError(what); }

// Builds the drawing into a fresh document; returns its layer.
void* Build(benchmark::State& state) {
  int16_t index = 0;
  void* layer = nullptr;
  if (RvGiCreateDocument(0, &index) != 0 || RvGiCreateLayer(1, nullptr, &layer) != 0) {
    Fail(state, "document");
    return nullptr;
  }
  for (int p = 0; p < kPaths; ++p) {
    void* path = nullptr;
    void* bez = nullptr;
    if (RvGiCreateArt(4, 3, nullptr, &path) != 0 || RvGiCreateArt(2, 5, path, &bez) != 0) {
      Fail(state, "art");
      return nullptr;
    }
    RvGiSetPathAttrFlag(path, 7);
    RvGiSetPathClosed(path, 0);
    for (int i = 0; i < kPointsPerPath; ++i) {
      RVBEZIERPOINT point{};
      point.anchor = RVPOINT{double(i), double(p)};
      point.in = RVPOINT{i - 0.25, double(p)};
      point.out = RVPOINT{i + 0.25, double(p)};
      if (RvGiSetBezierPoint(bez, &point) != 0) {
        Fail(state, "point");
        return nullptr;
      }
    }
  }
  return layer;
}

// Walks every path and reads every point back; returns the number of points.
int64_t Walk(void* layer, double& checksum) {
  int64_t points = 0;
  void* path = nullptr;
  RvGiGetArtFirstChild(layer, &path);
  while (path != nullptr) {
    void* component = nullptr;
    RvGiGetArtFirstChild(path, &component);
    while (component != nullptr) {
      int32_t count = 0;
      RvGiGetPathSegmentCount(component, &count);
      for (int32_t i = 0; i < count; ++i) {
        RVBEZIERPOINT point;
        RvGiGetBezierPoint(component, i, &point);
        checksum += point.anchor.x;
      }
      points += count;
      RvGiGetArtSibling(component, &component);
    }
    RvGiGetArtSibling(path, &path);
  }
  return points;
}

void BM_BuildDrawing(benchmark::State& state) {
  for (auto _ : state) {
    void* layer = Build(state);
    benchmark::DoNotOptimize(layer);
    state.PauseTiming();
    RvGiDeleteActiveDocument();
    state.ResumeTiming();
  }
  state.counters["points/s"] =
      benchmark::Counter(double(kPaths) * kPointsPerPath * double(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_BuildDrawing)->Unit(benchmark::kMillisecond);

void BM_WalkDrawing(benchmark::State& state) {
  void* layer = Build(state);
  if (layer == nullptr) return;
  double checksum = 0;
  int64_t points = 0;
  for (auto _ : state) {
    points = Walk(layer, checksum);
    benchmark::DoNotOptimize(checksum);
  }
  if (points != int64_t(kPaths) * kPointsPerPath) state.SkipWithError("walk missed points");
  state.counters["points/s"] =
      benchmark::Counter(double(points) * double(state.iterations()), benchmark::Counter::kIsRate);
  RvGiDeleteActiveDocument();
}
BENCHMARK(BM_WalkDrawing)->Unit(benchmark::kMillisecond);

}  // namespace
