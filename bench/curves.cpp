// Curve conversion throughput: flattening many curves of a path in one call,
// and turning arcs into Bezier points. Items are curves (or arcs) per second.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

#include "rvdataaccess.h"

namespace {

// A wavy path of `count` Bezier points, 20 to 60 mm apart, with handles of
// varied length and direction, the kind of curves a drawing carries.
std::vector<RVBEZIERPOINT> MakePath(int count) {
  std::mt19937 rng(12345);
  std::uniform_real_distribution<double> step(20.0, 60.0), turn(-1.2, 1.2), reach(0.1, 0.45);
  std::vector<RVBEZIERPOINT> path(count);
  double x = 0, y = 0, heading = 0;
  for (auto& p : path) {
    heading += turn(rng);
    const double d = step(rng);
    x += d * std::cos(heading);
    y += d * std::sin(heading);
    const double h = d * reach(rng), tilt = heading + turn(rng) * 0.5;
    p.anchor = RVPOINT{x, y};
    p.in = RVPOINT{x - h * std::cos(tilt), y - h * std::sin(tilt)};
    p.out = RVPOINT{x + h * std::cos(tilt), y + h * std::sin(tilt)};
    p.flags = 0;
  }
  return path;
}

// args: curves per call, maxLength, tolerance (x1000)
void BM_CurvesToPoints(benchmark::State& state) {
  const int curves = int(state.range(0));
  const double maxLength = double(state.range(1));
  const double tolerance = double(state.range(2)) / 1000.0;
  const auto path = MakePath(curves + 1);
  int64_t points = 0;
  for (auto _ : state) {
    RVCURVEPOINT* out = nullptr;
    int32_t n = 0;
    if (RvMiCurvesToPoints(path.data(), int32_t(path.size()), maxLength, tolerance, &out, &n, 1) != 0) {
      state.SkipWithError("conversion failed");
      break;
    }
    points += n;
    benchmark::DoNotOptimize(out);
    RvMiFreePoints(out);
  }
  state.SetItemsProcessed(state.iterations() * curves);
  state.counters["points/curve"] = double(points) / double(state.iterations() * curves);
}
BENCHMARK(BM_CurvesToPoints)
    ->Args({10000, 31000, 30})  // offset and clip work
    ->Args({10000, 31000, 42})  // lengths
    ->Args({10000, 2, 2000})    // judgments and areas
    ->Args({10000, 5, 300})     // cut preview
    ->Unit(benchmark::kMillisecond);

void BM_CurveLength(benchmark::State& state) {
  const auto path = MakePath(1001);
  double sum = 0;
  for (auto _ : state) {
    for (std::size_t i = 0; i + 1 < path.size(); ++i) {
      double length = 0;
      RvMiGetBezierLength(&path[i], &path[i + 1], &length);
      sum += length;
    }
  }
  benchmark::DoNotOptimize(sum);
  state.SetItemsProcessed(state.iterations() * int64_t(path.size() - 1));
}
BENCHMARK(BM_CurveLength);

void BM_ArcToCurves(benchmark::State& state) {
  std::vector<RVARCPOINT> arcs;
  for (int i = 0; i < 1000; ++i) {
    const double sweep = 5.0 + (i * 37) % 356;
    const double a0 = i * 0.01, r = 1.0 + i % 50;
    const double a1 = a0 + sweep * 3.141592653589793 / 180.0;
    arcs.push_back(RVARCPOINT{{r * std::cos(a0), r * std::sin(a0)},
                              {r * std::cos(a1), r * std::sin(a1)},
                              {0, 0},
                              sweep,
                              int16_t(i % 2 ? 1 : -1)});
  }
  for (auto _ : state) {
    for (const auto& arc : arcs) {
      RVCURVEPOINT* out = nullptr;
      int32_t n = 0;
      RvMiArcToCurves(&arc, &out, &n);
      benchmark::DoNotOptimize(out);
      RvMiFreePoints(out);
    }
  }
  state.SetItemsProcessed(state.iterations() * int64_t(arcs.size()));
}
BENCHMARK(BM_ArcToCurves);

void BM_CurvesToArc(benchmark::State& state) {
  const auto path = MakePath(1001);
  for (auto _ : state) {
    for (std::size_t i = 0; i + 1 < path.size(); ++i) {
      RVCURVEPOINT* out = nullptr;
      int32_t n = 0;
      RvMiCurvesToArc(&path[i], 2, 31000.0, 0.03, &out, &n, 0.025);
      benchmark::DoNotOptimize(out);
      RvMiFreePoints(out);
    }
  }
  state.SetItemsProcessed(state.iterations() * int64_t(path.size() - 1));
}
BENCHMARK(BM_CurvesToArc);

}  // namespace
