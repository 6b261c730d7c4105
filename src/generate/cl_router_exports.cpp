// Exported function of the CL router.
#include "frame/error_codes.h"
#include "frame/frame.h"
#include "generate/cl_router.h"
#include "model/export_util.h"

using namespace rv;

extern "C" RV_API uint32_t RvExCLCreateHatching(uint16_t documentIndex, const RVPLOTPARAM* param) {
  return Guard([&] {
    const RVPLOTPARAM copy = NeedRecord(param, kErrNullArt);
    CRvCLRouter::Instance().CreateHatching(int16_t(documentIndex), copy);
  });
}
