// Exported view of the hatching order: the travel of the last ordering.
#include "frame/error_codes.h"
#include "frame/frame.h"
#include "generate/hatching.h"

using namespace rv;

extern "C" {

RV_API uint32_t RvGetHatchingTravel(double* chosen, double* clipper) {
  return Guard([&] {
    if (chosen == nullptr || clipper == nullptr) Raise(kErrGenerateArgument);
    const HatchWork& work = CRvHatching::Instance().Work();
    *chosen = work.chosenTravel;
    *clipper = work.clipperTravel;
  });
}

}  // extern "C"
