// The exported door of the ITW import.
#include <memory>

#include "formats/file_frame.h"
#include "formats/itw_import.h"
#include "frame/frame.h"
#include "rvdataaccess.h"

extern "C" RV_API uint32_t RvImItwToRIF(const char* path, const char* fontFolder, const char* userFontFolder,
                                        int16_t mode, int16_t* documentIndex, int16_t* fileByte) {
  return rv::Guard([&] {
    rv::CRvFile file(std::make_unique<rv::CRvItwFormat>(fontFolder, userFontFolder, fileByte));
    rv::Check(file.Import(path, uint16_t(mode), documentIndex));
  });
}
