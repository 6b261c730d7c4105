// Exported function of the CL milling export.
#include <memory>

#include "formats/cl_import.h"
#include "frame/error_codes.h"
#include "frame/frame.h"
#include "model/export_util.h"

using namespace rv;

extern "C" RV_API uint32_t RvExCLMillingToRVL(const char* path, int16_t documentIndex, const RVPLOTPARAM* param) {
  return Guard([&] {
    const RVPLOTPARAM& copy = NeedRecord(param, kErrNullArt);
    CRvFile file(std::make_unique<CRvCLFormat>(copy));
    Check(file.Export(path, documentIndex, nullptr));
  });
}
