// The exported tombo sort: a frame round CRvPointSort.
#include "frame/error_codes.h"
#include "frame/frame.h"
#include "output/tombo_sort.h"

extern "C" {

RV_API uint32_t RvFreeTomboSort(const RVTOMBOPOINTS* input, RVTOMBOPOINTS* output) {
  return rv::Guard([&] {
    if (input == nullptr || output == nullptr) rv::Raise(rv::kErrTomboPoints);
    rv::CRvPointSort::Instance().FreeTomboSort(*input, *output);
  });
}

}  // extern "C"
