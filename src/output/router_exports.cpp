// The exported doors of the router output: tiled jobs and milling jobs.
#include "frame/error_codes.h"
#include "frame/frame.h"
#include "output/rvl_format.h"

extern "C" {

RV_API uint32_t RvExRIFTileToRVL(const char* path, int16_t documentIndex, RVPLOTPARAM* param,
                                 const RVTILEPARAM* tileParam, void* progressContext) {
  return rv::Guard([&] {
    if (param == nullptr || tileParam == nullptr) rv::Raise(rv::kErrNullArt);
    if (tileParam->tiles == nullptr && tileParam->tileCount > 0) rv::Raise(rv::kErrNullArt);
    rv::Check(rv::ExportTiledJob(path, documentIndex, *param, *tileParam, progressContext));
  });
}

RV_API uint32_t RvExRIFMillingToRVL(const char* path, int16_t documentIndex, const RVPLOTPARAM* param,
                                    void* progressContext, void* callbackUser, RvMakeOffsetArtFunc makeOffsetArt) {
  return rv::Guard([&] {
    if (param == nullptr) rv::Raise(rv::kErrNullArt);
    rv::Check(rv::ExportMillingJob(path, documentIndex, *param, progressContext, callbackUser, makeOffsetArt));
  });
}

}  // extern "C"
