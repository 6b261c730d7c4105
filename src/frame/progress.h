// The host's progress callbacks and the way the library reports through them.
#pragma once

#include <cstdint>

#include "rvdataaccess.h"

namespace rv {

struct ProgressCallbacks {
  RvProgressStepFunc onStep = nullptr;
  RvProgressRangeFunc onRange = nullptr;
  RvProgressBeginFunc onBegin = nullptr;
  RvProgressEndFunc onEnd = nullptr;
  RvProgressMessageFunc onMessage = nullptr;

  /// A stage starts: onBegin, then onRange(0, 100).
  void BeginStage(void* context) const;
  /// A stage ends: onEnd.
  void EndStage(void* context) const;
  /// onStep(percent) and, if onStep is set, onMessage with `format` filled
  /// with the percent. Returns true when the host asked to cancel.
  bool Step(void* context, int16_t percent, const char* format) const;
};

/// The callbacks that the host set last (they live in CRvDataAccess).
const ProgressCallbacks& Progress();

}  // namespace rv
