// Exported functions of the generators: hatching and contour.
#include "frame/error_codes.h"
#include "frame/frame.h"
#include "generate/contour.h"
#include "generate/hatching.h"
#include "generate/work_layer.h"

using namespace rv;

namespace {

template <class T>
const T& NeedArgument(const T* pointer) {
  if (pointer == nullptr) Raise(kErrGenerateArgument);
  return *pointer;
}

}  // namespace

extern "C" {

RV_API uint32_t RvInitializeHatchingInfo(RVHATCHINGINFO* info) {
  if (info != nullptr) WriteGeneratorDefaults(*info);
  return 0;
}

RV_API uint32_t RvCreateHatching(int16_t* document, const RVHATCHINGINFO* info) {
  return Guard([&] {
    Check(CRvHatching::Instance().Run(NeedArgument(document), NeedArgument(info)));
  });
}

RV_API uint32_t RvInitializeContourInfo(RVCONTOURINFO* info) {
  if (info != nullptr) WriteGeneratorDefaults(*info);
  return 0;
}

RV_API uint32_t RvCreateContour(int16_t* document, const RVCONTOURINFO* info) {
  return Guard([&] { CRvContour::Instance().Run(NeedArgument(document), NeedArgument(info)); });
}

}  // extern "C"
