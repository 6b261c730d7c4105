// Milling export speed: 2,000 closed paths of 100 segments, each cut in four
// depth passes (800,000 segments written), with and without micro joints,
// through RvExRIFMillingToRVL in dialect 1; with joints, the stretches cut
// after the job count on top.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>

#include "filed_drawing.h"
#include "rvdataaccess.h"

namespace {

constexpr int kPaths = 2000;
constexpr int kSegments = 100;  // per path, closed
constexpr int kPasses = 4;

RVPLOTPARAM Param() {
  RVPLOTPARAM param{};
  param.plotterClass = 5;
  param.dialect = 1;
  param.deviceUnit = 0.025;
  param.scaleX = param.scaleY = 100.0;
  param.curveMaxLength = 31000.0;
  param.curveTolerance = 0.03;
  param.deviceMaxX = param.deviceMaxY = 5000.0;
  param.conditionSource = 1;
  param.jointDepthLimit = 1.0;
  return param;
}

// The art itself at every pass: the cost of the host's offset is not ours.
uint32_t SameArt(void*, void* art, double, void** result) {
  *result = art;
  return 0;
}

void BM_MillingExport(benchmark::State& state) {
  const bool joints = state.range(0) != 0;
  RvGiDeleteRefMapTable();
  RvDeleteAllCutCondition();
  CLCondition passes[kPasses]{};
  for (int k = 0; k < kPasses; ++k) {
    std::strcpy(passes[k].Tool, "3");
    passes[k].Thickness = 6.0, passes[k].hasCuttingDepth = 1, passes[k].CuttingDepth = 1.5 * (k + 1);
    passes[k].hasMilling = 1, passes[k].Milling = 2.0;
  }
  RvCLSetCutCondition("M", passes, kPasses);
  const rvbench::FiledDrawing drawing = rvbench::NewFiledDrawing();
  RvGiSetRefMapRouterOffsetSIndex(drawing.map);
  RvGiSetRefMapRouterOffsetEIndex(drawing.map);
  RVBEZIERPOINT points[kSegments];
  for (int k = 0; k < kPaths; ++k) {
    const double cx = (k % 50) * 80.0, cy = (k / 50) * 80.0;
    for (int i = 0; i < kSegments; ++i) {
      const double a = 2 * 3.141592653589793 * i / kSegments;
      points[i] = RVBEZIERPOINT{};
      points[i].anchor = points[i].in = points[i].out = RVPOINT{cx + 30 * std::cos(a), cy + 30 * std::sin(a)};
    }
    rvbench::AddFiledPath(drawing, "M", points, kSegments, RVRECT{cy + 30, cx - 30, cx + 30, cy - 30});
  }
  // The paths of the key, newest first: close each and give it its media.
  bool tagJoints = joints;
  RvGiRefMapTableTrace(drawing.map, 2, &tagJoints, [](void* context, void* path) -> uint32_t {
    RvGiSetPathClosed(path, 1);
    RvGiSetPathPlotInfo(path, 0, "M");
    void* bezier = nullptr;
    RvGiGetArtFirstChild(path, &bezier);
    if (*static_cast<const bool*>(context)) RvGiSetArtTag(bezier, "RivlenKerflowMicroJointTag", "2,10,12,60,62");
    return 0;
  }, 1);
  RVPLOTPARAM param = Param();
  param.outputMicroJoints = joints ? 1 : 0;  // the stretches are written and their layer goes each time
  int64_t segments = 0;
  for (auto _ : state) {
    if (RvExRIFMillingToRVL("/dev/null", drawing.document, &param, nullptr, nullptr, SameArt) != 0) {
      state.SkipWithError("export failed");
      break;
    }
    segments += int64_t(kPaths) * kSegments * kPasses;
  }
  state.counters["segments/s"] = benchmark::Counter(double(segments), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_MillingExport)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace
