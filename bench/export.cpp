// Export speed: 10,000 open paths with 1,000,000 line segments in dialect 0.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>
#include <vector>

#include "output/rvl_format.h"

namespace {

std::vector<std::unique_ptr<rv::CRvBezier>> MakePaths() {
  std::vector<std::unique_ptr<rv::CRvBezier>> paths;
  for (int k = 0; k < 10000; ++k) {
    auto b = std::make_unique<rv::CRvBezier>();
    for (int i = 0; i <= 100; ++i) {
      RVBEZIERPOINT p{};
      p.anchor = {k * 0.37 + i * 1.25, (i % 2) * 3.5 + k * 0.11};
      p.in = p.anchor;
      p.out = p.anchor;
      b->AddPoint(p);
    }
    paths.push_back(std::move(b));
  }
  return paths;
}

void BM_PathWriterDialect0(benchmark::State& state) {
  const auto paths = MakePaths();
  RVPLOTPARAM param{};
  param.plotterClass = 0;
  param.dialect = 0;
  param.deviceUnit = 0.025;
  param.scaleX = param.scaleY = 100.0;
  param.curveMaxLength = 31000.0;
  param.curveTolerance = 0.03;
  int64_t segments = 0;
  for (auto _ : state) {
    rv::CRvRVLFormat format(param);
    format.m_file = std::fopen("/dev/null", "wb");
    RVRECT rect{};
    rect.right = 4000;
    rect.top = 1200;
    format.SetPlacement(rv::kIdentity, rect);
    for (const auto& path : paths) {
      int needMove = 1;
      format.WritePath(*path, rv::kIdentity, false, true, needMove);
    }
    std::fclose(format.m_file);
    format.m_file = nullptr;
    segments += 1000000;
  }
  state.counters["segments/s"] = benchmark::Counter(double(segments), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_PathWriterDialect0)->Unit(benchmark::kMillisecond);

}  // namespace
