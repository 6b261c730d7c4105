// Fuzz target: arbitrary bytes as a CL file through RvImCLToRIF (as the
// numbered layer 1 of a job), then the router's clearing and the CL milling
// export of that job with joints, then the same bytes as the plot file of a cut preview.
// The content of a file never fails the import (0, or 1 when nothing is
// drawn); the route fails only for a drawing beyond the clipper's grid or a
// path of kilometres; the preview fails only for curves too large to
// flatten, and its counts agree with its passes; nothing may crash, hang or
// leak.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "rvdataaccess.h"

namespace {

const std::string& InputPath() {
  static const std::string path = [] {
    char name[] = "/tmp/fuzz_cl_import_XXXXXX";
    const int fd = mkstemp(name);
    if (fd < 0) std::abort();
    close(fd);
    return std::string(name);
  }();
  return path;
}

void Require(bool condition) {
  if (!condition) std::abort();
}

/// A milling condition of two passes with different Milling values, so
/// that the router offsets every closed art twice.
void LoadConditions() {
  static bool loaded = false;
  if (loaded) return;
  CLCondition passes[2] = {};
  for (CLCondition& c : passes) {
    std::strcpy(c.Tool, "3");
    c.Thickness = 10.0;
    c.hasCuttingDepth = 1;
    c.hasMilling = 1;
  }
  passes[0].CuttingDepth = 4.0, passes[0].Milling = 2.0;
  passes[1].CuttingDepth = 8.0, passes[1].Milling = 4.0;
  Require(RvCLSetCutCondition("FUZZ", passes, 2) == 0);
  loaded = true;
}

/// Clearing and milling of the CL job in document `index`.
void RunRoute(int16_t index, const std::string& output, int16_t dialect) {
  RVPLOTPARAM param{};
  param.dialect = dialect;
  param.deviceUnit = 1.0;
  param.scaleX = param.scaleY = 100.0;
  param.curveMaxLength = 31000.0;
  param.curveTolerance = 0.03;
  param.conditionSource = 3;
  std::strcpy(param.conditionKey, "FUZZ");
  param.routerOverlap = 0.5;
  param.outputMicroJoints = 1;
  // Pass 1 (depth 6) is below the limit: its joints are built and cut free
  // after the job.
  param.jointDepthLimit = 7.0;
  param.routerJointLength = 2.0;
  param.routerJointCount = 3;
  param.routerLeadIn = 1;
  param.writeToolDefaults = -1;
  // Beyond the clipper's grid (a kilometre) the route refuses the drawing;
  // the hatching also refuses more lines than it can hold.
  const uint32_t hatch = RvExCLCreateHatching(uint16_t(index), &param);
  // A path of kilometres is too long for the judgment that turns holes
  // against outlines.
  constexpr uint32_t kTooLong = 0x08000E01u;
  if (!(hatch == 0 || hatch == 1 || hatch == 0x08004001u || hatch == 0x08004401u || hatch == kTooLong)) {
    std::fprintf(stderr, "clearing failed: 0x%08X\n", hatch);
    std::abort();
  }
  const uint32_t mill = RvExCLMillingToRVL(output.c_str(), index, &param);
  if (!(mill == 0 || mill == 0x08004001u || mill == kTooLong)) {
    std::fprintf(stderr, "milling failed: 0x%08X\n", mill);
    std::abort();
  }
}

/// A preview call that must succeed; says which failed and with what.
void RequireCall(const char* name, uint32_t code) {
  if (code == 0) return;
  std::fprintf(stderr, "%s failed: 0x%08X\n", name, code);
  std::abort();
}

/// The preview of the plot layer of the active document `index`.
void RunPreview(int16_t index) {
  RequireCall("RvExCLConvertToBezierArt", RvExCLConvertToBezierArt());
  RequireCall("RvExCLSetCutPreviewMatrix", RvExCLSetCutPreviewMatrix(2, 400.0, 300.0));
  // A path that the matrix leaves kilometres long has curves too large to
  // flatten; the passes made before it stay and are checked below.
  const uint32_t made = RvExCLMakeCutPreviewData(uint16_t(index));
  if (made != 0x08000E01u) RequireCall("RvExCLMakeCutPreviewData", made);
  int32_t passCount = -1, pointCount = -1;
  RequireCall("RvExCLGetCutPreviewDataCount", RvExCLGetCutPreviewDataCount(&passCount, &pointCount));
  std::vector<RVCUTPREVIEWPASS> passes(static_cast<std::size_t>(passCount));
  RequireCall("RvExCLGetCutPreviewData", RvExCLGetCutPreviewData(passes.data()));
  long total = 0;
  for (const RVCUTPREVIEWPASS& pass : passes) total += pass.pointCount;
  if (total != pointCount) {
    std::fprintf(stderr, "preview passes hold %ld points, the count says %d\n", total, pointCount);
    std::abort();
  }
  std::vector<RVPOINT> points(static_cast<std::size_t>(pointCount));
  RequireCall("RvExCLGetCutPreviewPointData", RvExCLGetCutPreviewPointData(points.data()));
  RequireCall("RvExCLInitializeCutPreviewData", RvExCLInitializeCutPreviewData());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string& path = InputPath();
  std::FILE* f = std::fopen(path.c_str(), "wb");
  if (f == nullptr) std::abort();
  if (size != 0 && std::fwrite(data, 1, size, f) != size) std::abort();
  std::fclose(f);

  int16_t index = -1;
  const double scale = 0.0;
  const uint32_t code = RvImCLToRIF(path.c_str(), 0, &index, &scale, "CLPlotFileLayer1");
  Require(code == 0 || code == 1);
  if (code == 0) {
    LoadConditions();
    // Moves in the tool-machine dialect or the pen dialect.
    RunRoute(index, path + ".rvl", int16_t(size % 2));
    // The same bytes as a plot file, into the same document: the preview's
    // source layer.
    Require(RvImPLTToRIF(path.c_str(), 1, &index, &scale) == 0);
    Require(RvGiSetActiveDocument(index) == 0);
    RunPreview(index);
  }
  // The host destroys the tables first, then the documents; every CL import
  // with mode 0 empties the store, so document indexes never run out.
  Require(RvGiDeleteRefMapTable() == 0);
  return 0;
}
