// Export speed: 10,000 open paths with 1,000,000 line segments in dialect 0,
// through the path writer alone and through the whole export of a drawing.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>
#include <vector>

#include "filed_drawing.h"
#include "output/rvl_format.h"
#include "rvdataaccess.h"

namespace {

constexpr int kPaths = 10000;
constexpr int kSegments = 100;  // per path: 1,000,000 in all

RVBEZIERPOINT Point(int k, int i) {
  RVBEZIERPOINT p{};
  p.anchor = {k * 0.37 + i * 1.25, (i % 2) * 3.5 + k * 0.11};
  p.in = p.anchor;
  p.out = p.anchor;
  return p;
}

RVPLOTPARAM Param() {
  RVPLOTPARAM param{};
  param.plotterClass = 0;
  param.dialect = 0;
  param.deviceUnit = 0.025;
  param.scaleX = param.scaleY = 100.0;
  param.curveMaxLength = 31000.0;
  param.curveTolerance = 0.03;
  param.deviceMaxX = param.deviceMaxY = 5000.0;
  return param;
}

void BM_PathWriterDialect0(benchmark::State& state) {
  std::vector<std::unique_ptr<rv::CRvBezier>> paths;
  for (int k = 0; k < kPaths; ++k) {
    auto b = std::make_unique<rv::CRvBezier>();
    for (int i = 0; i <= kSegments; ++i) b->AddPoint(Point(k, i));
    paths.push_back(std::move(b));
  }
  int64_t segments = 0;
  for (auto _ : state) {
    rv::CRvRVLFormat format(Param());
    format.Open("/dev/null", "wb");
    RVRECT rect{};
    rect.right = 4000;
    rect.top = 1200;
    format.SetPlacement(rv::kIdentity, rect);
    for (const auto& path : paths) {
      int needMove = 1;
      format.WritePath(*path, rv::kIdentity, false, true, needMove);
    }
    format.Close();
    segments += int64_t(kPaths) * kSegments;
  }
  state.counters["segments/s"] = benchmark::Counter(double(segments), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_PathWriterDialect0)->Unit(benchmark::kMillisecond);

// The same drawing as arts of a document, filed in a RefMap table, written
// by RvExRIFToRVL (placement, passes, writer).
void BM_WholeExportDialect0(benchmark::State& state) {
  RvGiDeleteRefMapTable();
  const rvbench::FiledDrawing drawing = rvbench::NewFiledDrawing();
  RVBEZIERPOINT points[kSegments + 1];
  for (int k = 0; k < kPaths; ++k) {
    for (int i = 0; i <= kSegments; ++i) points[i] = Point(k, i);
    AddFiledPath(drawing, k % 2 == 0 ? "even" : "odd", points, kSegments + 1, RVRECT{1200.0, 0.0, 4000.0, 0.0});
  }
  const RVPLOTPARAM param = Param();
  int64_t segments = 0;
  for (auto _ : state) {
    if (RvExRIFToRVL("/dev/null", drawing.document, &param, nullptr) != 0) state.SkipWithError("export failed");
    segments += int64_t(kPaths) * kSegments;
  }
  state.counters["segments/s"] = benchmark::Counter(double(segments), benchmark::Counter::kIsRate);
  RvGiDeleteRefMapTable();
  RvGiDeleteAllDocuments();
}
BENCHMARK(BM_WholeExportDialect0)->Unit(benchmark::kMillisecond);

}  // namespace
