// Fuzz target: arbitrary bytes as a CL file through RvImCLToRIF, then the
// same bytes as the plot file of a cut preview. The content of a file never
// fails the import (0, or 1 when nothing is drawn), the preview of what was
// drawn never fails, its counts agree with its passes, and nothing may
// crash, hang or leak.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
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

/// The preview of the plot layer of the active document `index`.
void RunPreview(int16_t index) {
  Require(RvExCLConvertToBezierArt() == 0);
  Require(RvExCLSetCutPreviewMatrix(2, 400.0, 300.0) == 0);
  Require(RvExCLMakeCutPreviewData(uint16_t(index)) == 0);
  int32_t passCount = -1, pointCount = -1;
  Require(RvExCLGetCutPreviewDataCount(&passCount, &pointCount) == 0);
  std::vector<RVCUTPREVIEWPASS> passes(static_cast<std::size_t>(passCount));
  Require(RvExCLGetCutPreviewData(passes.data()) == 0);
  long total = 0;
  for (const RVCUTPREVIEWPASS& pass : passes) total += pass.pointCount;
  Require(total == pointCount);
  std::vector<RVPOINT> points(static_cast<std::size_t>(pointCount));
  Require(RvExCLGetCutPreviewPointData(points.data()) == 0);
  Require(RvExCLInitializeCutPreviewData() == 0);
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
  const uint32_t code = RvImCLToRIF(path.c_str(), 0, &index, &scale, nullptr);
  Require(code == 0 || code == 1);
  if (code == 0) {
    // The same bytes as a plot file, into the same document: the preview's
    // source layer.
    Require(RvImPLTToRIF(path.c_str(), 1, &index, &scale) == 0);
    RunPreview(index);
  }
  // Every CL import with mode 0 empties the store, so document indexes never
  // run out.
  return 0;
}
