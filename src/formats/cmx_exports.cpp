// The exported door of the CMX import.
#include <memory>

#include "formats/cmx_container.h"
#include "frame/frame.h"
#include "rvdataaccess.h"

extern "C" RV_API uint32_t RvImCMXToRIF(const char* path, int16_t mode, int16_t* documentIndex, const char* text) {
  return rv::Guard([&] {
    rv::CRvFile file(std::make_unique<rv::CRvCMXFormat>(text));
    rv::Check(file.Import(path, uint16_t(mode), documentIndex));
  });
}
