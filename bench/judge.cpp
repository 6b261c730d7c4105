// Nesting judgment over many closed paths: the fast JudgeInsideOutside
// (and the flags alone) against the plain algorithm, which they must match
// exactly.
//
// The scene: 2,000 closed paths of 100 corners each, in 200 clusters of 10
// nested rings; the clusters lie apart. Run with
//   build/bench/bench_judge --benchmark_filter=Fast
// for the fast one alone (the plain one takes about half a minute at full
// size).
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "geometry/judge.h"
#include "rvdataaccess.h"

namespace {

std::vector<void*> MakeScene(int clusters, int rings, int corners) {
  int16_t document = -1;
  void* layer = nullptr;
  if (RvGiCreateDocument(0, &document) != 0 || RvGiCreateLayer(1, nullptr, &layer) != 0) std::abort();
  std::vector<void*> paths;
  for (int c = 0; c < clusters; ++c) {
    const double cx = (c % 20) * 25.0, cy = (c / 20) * 25.0;
    for (int d = 0; d < rings; ++d) {
      const double r = 10.0 - 0.9 * d;
      void* path = nullptr;
      void* bezier = nullptr;
      if (RvGiCreateArt(4, 3, nullptr, &path) != 0 || RvGiCreateArt(2, 5, path, &bezier) != 0) std::abort();
      RVBEZIERPOINT first{};
      for (int i = 0; i < corners; ++i) {
        const double t = 2.0 * M_PI * i / corners;
        const double wobble = 1.0 + 0.03 * std::sin(7.0 * t + c + d);
        RVBEZIERPOINT p{};
        p.anchor = p.in = p.out = RVPOINT{cx + r * wobble * std::cos(t), cy + r * wobble * std::sin(t)};
        if (i == 0) first = p;
        RvGiAddBezierPoint(bezier, &p);
      }
      RvGiAddBezierPoint(bezier, &first);  // the start stored twice
      RvGiSetPathClosed(path, 1);
      paths.push_back(path);
    }
  }
  // Interleave the clusters so that the sort has work to do.
  std::vector<void*> mixed;
  for (int d = rings - 1; d >= 0; --d) {
    for (int c = 0; c < clusters; ++c) mixed.push_back(paths[std::size_t(c * rings + d)]);
  }
  return mixed;
}

const std::vector<void*>& Scene(int clusters) {
  static std::vector<std::vector<void*>> scenes(201);
  if (scenes[std::size_t(clusters)].empty()) scenes[std::size_t(clusters)] = MakeScene(clusters, 10, 100);
  return scenes[std::size_t(clusters)];
}

std::vector<RVINSIDEPATH> Fresh(const std::vector<void*>& paths) {
  std::vector<RVINSIDEPATH> list;
  list.reserve(paths.size());
  for (void* p : paths) list.push_back(RVINSIDEPATH{p, 0});
  return list;
}

int Holes(const std::vector<RVINSIDEPATH>& list) {
  int holes = 0;
  for (const auto& item : list) holes += item.inside;
  return holes;
}

void BM_InsideOutsideFast(benchmark::State& state) {
  const auto& paths = Scene(int(state.range(0)));
  int holes = 0;
  for (auto _ : state) {
    std::vector<RVINSIDEPATH> list = Fresh(paths);
    rv::JudgeInsideOutside(list, false);
    holes = Holes(list);
    benchmark::DoNotOptimize(list.data());
  }
  state.counters["paths"] = double(paths.size());
  state.counters["holes"] = holes;
}

void BM_InsideOutsidePlain(benchmark::State& state) {
  const auto& paths = Scene(int(state.range(0)));
  int holes = 0;
  for (auto _ : state) {
    std::vector<RVINSIDEPATH> list = Fresh(paths);
    rv::JudgeInsideOutsidePlain(list.data(), list.size(), false);
    holes = Holes(list);
    benchmark::DoNotOptimize(list.data());
  }
  state.counters["paths"] = double(paths.size());
  state.counters["holes"] = holes;
}

// Drawings of many closed paths, as a nesting job gives them: `arts` small
// rings of 8 corners. Random: scattered over a sheet, every tenth holding a
// smaller ring. Nested: one large piece holding all the others.
std::vector<void*> ManyRings(int arts, bool nested) {
  int16_t document = -1;
  void* layer = nullptr;
  if (RvGiCreateDocument(0, &document) != 0 || RvGiCreateLayer(1, nullptr, &layer) != 0) std::abort();
  std::vector<void*> paths;
  auto ring = [&](double cx, double cy, double r, int corners) {
    void* path = nullptr;
    void* bezier = nullptr;
    if (RvGiCreateArt(4, 3, nullptr, &path) != 0 || RvGiCreateArt(2, 5, path, &bezier) != 0) std::abort();
    RVBEZIERPOINT first{};
    for (int i = 0; i < corners; ++i) {
      const double t = 2.0 * M_PI * i / corners;
      RVBEZIERPOINT p{};
      p.anchor = p.in = p.out = RVPOINT{cx + r * std::cos(t), cy + r * std::sin(t)};
      if (i == 0) first = p;
      RvGiAddBezierPoint(bezier, &p);
    }
    RvGiAddBezierPoint(bezier, &first);
    RvGiSetPathClosed(path, 1);
    paths.push_back(path);
  };
  const double side = std::sqrt(double(arts)) * 12.0;  // about 12 mm of sheet per ring
  if (nested) ring(side / 2, side / 2, side, 400);
  uint32_t seed = 99;
  auto unit = [&seed] {
    seed = seed * 1103515245u + 12345u;
    return double(seed >> 8) / double(1u << 24);
  };
  while (int(paths.size()) < arts) {
    const double cx = unit() * side, cy = unit() * side;
    ring(cx, cy, 4.0, 8);
    if (paths.size() % 10 == 0) ring(cx, cy, 2.0, 8);
  }
  return paths;
}

// Arg 2: 0 the full judgment (sorted array), 1 the flags alone, 2 the flags
// alone as the sorted plot takes them: on a second thread, started in the
// reverse order and finished in this one (the time of the whole job).
void BM_NestingOfManyArts(benchmark::State& state) {
  const std::vector<void*> paths = ManyRings(int(state.range(0)), state.range(1) != 0);
  const int64_t how = state.range(2);
  int holes = 0;
  for (auto _ : state) {
    std::vector<RVINSIDEPATH> list = Fresh(paths);
    if (how == 2) {
      rv::NestingJob job({list.rbegin(), list.rend()}, 0);
      job.Finish(list.data(), list.size(), false);
    } else if (how == 1) {
      rv::JudgeNestingFlags(list.data(), list.size(), false);
    } else {
      rv::JudgeInsideOutside(list, false);
    }
    holes = Holes(list);
    benchmark::DoNotOptimize(list.data());
  }
  state.counters["paths"] = double(paths.size());
  state.counters["holes"] = holes;
  RvGiDeleteActiveDocument();
}

}  // namespace

// Args: arts, nested (0 random, 1 in one large piece), how (see above).
BENCHMARK(BM_NestingOfManyArts)
    ->ArgsProduct({{20000, 100000}, {0, 1}, {0, 1, 2}})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(BM_InsideOutsideFast)->Arg(20)->Arg(200)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_InsideOutsidePlain)->Arg(20)->Arg(200)->Iterations(1)->Unit(benchmark::kMillisecond);
