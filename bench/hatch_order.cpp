// Ordering 100,000 hatch lines in 50 regions: the time of the order step,
// and the pen-up travel of the chosen order against the clipper's order and
// against a plain greedy nearest-line walk over the same lines.
//
// The drawing: 50 islands 40 mm across on a 10 x 5 grid 50 mm apart, every
// other one a ring with a hole 16 mm across, hatched at a pitch of 0.024 mm.
// The lines are the stack over the whole drawing cut by the islands in the
// clipper, in the order it hands them out.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <vector>

#include "frame/frame.h"
#include "generate/clipper.h"
#include "generate/hatch_mesh.h"
#include "generate/hatch_order.h"
#include "generate/hatch_rules.h"
#include "generate/hatch_work.h"

namespace {

constexpr int kColumns = 10, kRows = 5;
constexpr double kSpacing = 50.0, kOuter = 20.0, kHole = 8.0, kPitch = 0.024;
constexpr int kOutlinePoints = 256;

struct Island {
  double cx, cy;
  bool ring;
};

std::vector<Island> Islands() {
  std::vector<Island> islands;
  for (int r = 0; r < kRows; ++r) {
    for (int c = 0; c < kColumns; ++c) {
      islands.push_back({kSpacing * c + kOuter, kSpacing * r + kOuter, (r + c) % 2 == 1});
    }
  }
  return islands;
}

std::vector<RVPOINT> Circle(double cx, double cy, double radius) {
  std::vector<RVPOINT> points;
  for (int k = 0; k <= kOutlinePoints; ++k) {
    const double a = 2.0 * M_PI * k / kOutlinePoints;
    points.push_back({cx + radius * std::cos(a), cy + radius * std::sin(a)});
  }
  return points;
}

/// The outline as the clipper takes it.
std::vector<RVCURVEPOINT> Records(const std::vector<RVPOINT>& points) {
  std::vector<RVCURVEPOINT> records(points.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    records[i].kind = 0;
    records[i].point = points[i];
  }
  return records;
}

/// The run's state as the generation leaves it before the order step.
rv::HatchWork MakeWork() {
  rv::HatchWork work;
  work.info.pitch = kPitch;
  work.info.keepShift = 1;
  work.info.reserved = 5;
  const std::vector<Island> islands = Islands();
  work.lineBounds = RVRECT{kSpacing * (kRows - 1) + 2 * kOuter, 0.0, kSpacing * (kColumns - 1) + 2 * kOuter, 0.0};
  for (std::size_t g = 0; g < islands.size(); ++g) {
    const Island& is = islands[g];
    const RVRECT box{is.cy + kOuter, is.cx - kOuter, is.cx + kOuter, is.cy - kOuter};
    work.regionBoxes.push_back(box);
    rv::SweepPolyline(work, Circle(is.cx, is.cy, kOuter), uint16_t(g), box);
    if (is.ring) rv::SweepPolyline(work, Circle(is.cx, is.cy, kHole), uint16_t(g), box);
  }
  // The stack over the whole drawing, cut by the islands in the clipper.
  rv::CRvClipper& clipper = rv::CRvClipper::Instance();
  const uint32_t code = rv::Guard([&] {
    for (const Island& is : islands) {
      const auto outer = Records(Circle(is.cx, is.cy, kOuter));
      clipper.AddClipPath(outer.data(), int32_t(outer.size()), true, rv::ClipRole::kClip);
      if (is.ring) {
        const auto hole = Records(Circle(is.cx, is.cy, kHole));
        clipper.AddClipPath(hole.data(), int32_t(hole.size()), true, rv::ClipRole::kClip);
      }
    }
    std::vector<RVHATCHLINE> stack;
    for (double y = kPitch / 2; y < work.lineBounds.top; y += kPitch) {
      stack.push_back(RVHATCHLINE{work.lineBounds.left, y, work.lineBounds.right, y, rv::kMarkUnset, rv::kMarkUnset});
    }
    clipper.AddLines(std::move(stack));
    work.lines = clipper.ExecuteToLines(rv::ClipOperation::kIntersection, rv::ClipFill::kEvenOdd);
    clipper.ClearClipper();
  });
  if (code != 0) std::abort();
  return work;
}

const rv::HatchWork& Base() {
  static const rv::HatchWork work = MakeWork();
  return work;
}

void ReportTravel(benchmark::State& state, double clipper, double chosen, const char* name) {
  state.counters["lines"] = double(Base().lines.size());
  state.counters["travel_clipper_mm"] = clipper;
  state.counters[std::string("travel_") + name + "_mm"] = chosen;
  state.counters["saved_pct"] = 100.0 * (clipper - chosen) / clipper;
}

void BM_OrderLines(benchmark::State& state) {
  rv::HatchWork last;
  for (auto _ : state) {
    state.PauseTiming();
    rv::HatchWork work = Base();
    state.ResumeTiming();
    rv::OrderLines(work);
    benchmark::DoNotOptimize(work.lines.data());
    state.PauseTiming();
    last = std::move(work);
    state.ResumeTiming();
  }
  rv::HatchWork measure = Base();
  const double clipper = rv::MeasureTravel(measure, measure.lines);
  ReportTravel(state, clipper, rv::MeasureTravel(measure, last.lines), "chosen");
  state.counters["best_index"] = last.bestRule;
}
BENCHMARK(BM_OrderLines)->Unit(benchmark::kMillisecond)->Iterations(3);

// The plain greedy walk over the same lines: the nearest line next, either
// way round, over all lines (the head-move rule, with its grid search).
void BM_GreedyNearest(benchmark::State& state) {
  std::vector<RVHATCHLINE> ordered;
  for (auto _ : state) {
    rv::HatchWork work = Base();
    rv::HeadMoveOrder(work, work.lines);
    ordered = std::move(work.lines);
  }
  rv::HatchWork measure = Base();
  ReportTravel(state, rv::MeasureTravel(measure, measure.lines), rv::MeasureTravel(measure, ordered), "greedy");
}
BENCHMARK(BM_GreedyNearest)->Unit(benchmark::kMillisecond)->Iterations(3);

// The grid search against the scan over all lines, on every tenth line.
template <bool kPlain>
void BM_GreedyTenth(benchmark::State& state) {
  rv::HatchWork sample = Base();
  std::vector<RVHATCHLINE> tenth;
  for (std::size_t i = 0; i < sample.lines.size(); i += 10) tenth.push_back(sample.lines[i]);
  for (auto _ : state) {
    rv::HatchWork work = sample;
    work.lines = tenth;
    if (kPlain) {
      rv::HeadMoveOrderPlain(work, work.lines);
    } else {
      rv::HeadMoveOrder(work, work.lines);
    }
    benchmark::DoNotOptimize(work.lines.data());
  }
  state.counters["lines"] = double(tenth.size());
}
BENCHMARK_TEMPLATE(BM_GreedyTenth, false)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK_TEMPLATE(BM_GreedyTenth, true)->Unit(benchmark::kMillisecond)->Iterations(1);

// The sweep for mesh lines of one island 40 mm across.
void BM_SweepIsland(benchmark::State& state) {
  const std::vector<RVPOINT> outline = Circle(20, 20, kOuter);
  for (auto _ : state) {
    rv::HatchWork work;
    rv::SweepPolyline(work, outline, 0, RVRECT{40, 0, 40, 0});
    benchmark::DoNotOptimize(work.meshLines.data());
  }
}
BENCHMARK(BM_SweepIsland)->Unit(benchmark::kMicrosecond);

}  // namespace
