// Exported function of the CL import.
#include <memory>

#include "formats/cl_import.h"
#include "frame/frame.h"
#include "model/data_access.h"

extern "C" RV_API uint32_t RvImCLToRIF(const char* path, int16_t mode, int16_t* documentIndex,
                                       const double* unitScale, const char* layerName) {
  return rv::Guard([&] {
    // A new CL job replaces every document, whether or not its file opens.
    if (mode == 0) rv::CRvDataAccess::Instance().DeleteAllDocuments();
    rv::CRvFile file(std::make_unique<rv::CRvCLFormat>(unitScale, layerName));
    rv::Check(file.Import(path, uint16_t(mode), documentIndex));
  });
}
