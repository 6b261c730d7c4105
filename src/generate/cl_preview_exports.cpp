// Exported functions of the CL cut preview.
#include <cstring>

#include "frame/frame.h"
#include "generate/cl_cut_preview.h"
#include "model/export_util.h"

using namespace rv;

namespace {
CRvCLCutPreview& Preview() { return CRvCLCutPreview::Instance(); }
}  // namespace

extern "C" {

RV_API uint32_t RvExCLConvertToBezierArt(void) {
  return Guard([&] { Preview().ConvertToBezierArt(); });
}

RV_API uint32_t RvExCLSetCutPreviewMatrix(uint16_t orientation, double width, double height) {
  return Guard([&] { Preview().SetMatrix(orientation, width, height); });
}

RV_API uint32_t RvExCLMakeCutPreviewData(uint16_t documentIndex) {
  return Guard([&] { Preview().MakeData(int16_t(documentIndex)); });
}

RV_API uint32_t RvExCLGetCutPreviewDataCount(int32_t* passCount, int32_t* pointCount) {
  return Guard([&] {
    Put(passCount, int32_t(Preview().Passes().size()));
    Put(pointCount, Preview().TotalPoints());
  });
}

RV_API uint32_t RvExCLGetCutPreviewData(RVCUTPREVIEWPASS* passes) {
  return Guard([&] {
    const auto& all = Preview().Passes();
    if (passes != nullptr && !all.empty()) std::memcpy(passes, all.data(), all.size() * sizeof *passes);
  });
}

RV_API uint32_t RvExCLGetCutPreviewDataPerPass(int32_t index, int32_t* pointCount, uint8_t* clockwise,
                                               uint8_t* closed, uint16_t* passType) {
  return Guard([&] {
    const auto& all = Preview().Passes();
    RVCUTPREVIEWPASS pass{};
    if (index >= 0 && std::size_t(index) < all.size()) pass = all[std::size_t(index)];
    Put(pointCount, pass.pointCount);
    Put(clockwise, uint8_t(pass.clockwise));
    Put(closed, uint8_t(pass.closed));
    Put(passType, pass.passType);
  });
}

RV_API uint32_t RvExCLGetCutPreviewPointData(RVPOINT* points) {
  return Guard([&] {
    const auto& all = Preview().Points();
    if (points != nullptr && !all.empty()) std::memcpy(points, all.data(), all.size() * sizeof *points);
  });
}

RV_API uint32_t RvExCLInitializeCutPreviewData(void) {
  return Guard([&] { Preview().Initialize(); });
}

}  // extern "C"
