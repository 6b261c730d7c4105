// The exported doors of the router output: tiled jobs and milling jobs. Each
// builds a CRvRVLFormat, hands it the tiles or the offset maker, and runs
// the file export.
#include <memory>

#include "formats/file_frame.h"
#include "frame/error_codes.h"
#include "frame/frame.h"
#include "output/rvl_format.h"

extern "C" {

RV_API uint32_t RvExRIFTileToRVL(const char* path, int16_t documentIndex, RVPLOTPARAM* param,
                                 const RVTILEPARAM* tileParam, void* progressContext) {
  return rv::Guard([&] {
    if (param == nullptr || tileParam == nullptr) rv::Raise(rv::kErrNullArt);
    if (tileParam->tiles == nullptr && tileParam->tileCount > 0) rv::Raise(rv::kErrNullArt);
    // The caller's originY changes only when the whole job succeeded.
    double finalOriginY = param->originY;
    auto format = std::make_unique<rv::CRvRVLFormat>(*param);
    format->SetTiles(*tileParam, &finalOriginY);
    rv::CRvFile file(std::move(format));
    rv::Check(file.Export(path, documentIndex, progressContext));
    param->originY = finalOriginY;
  });
}

RV_API uint32_t RvExRIFMillingToRVL(const char* path, int16_t documentIndex, const RVPLOTPARAM* param,
                                    void* progressContext, void* callbackUser, RvMakeOffsetArtFunc makeOffsetArt) {
  return rv::Guard([&] {
    if (param == nullptr) rv::Raise(rv::kErrNullArt);
    auto format = std::make_unique<rv::CRvRVLFormat>(*param);
    format->SetOffsetMaker(callbackUser, makeOffsetArt);
    rv::CRvFile file(std::move(format));
    rv::Check(file.Export(path, documentIndex, progressContext));
  });
}

}  // extern "C"
