#include "frame/progress.h"

#include <cstdio>

#include "model/data_access.h"

namespace rv {

void ProgressCallbacks::BeginStage(void* context) const {
  if (onBegin != nullptr) onBegin(context);
  if (onRange != nullptr) onRange(context, 0, 100);
}

void ProgressCallbacks::EndStage(void* context) const {
  if (onEnd != nullptr) onEnd(context);
}

bool ProgressCallbacks::Step(void* context, int16_t percent, const char* format) const {
  if (onStep == nullptr) return false;
  int32_t cancel = 0;
  onStep(context, percent, &cancel);
  if (onMessage != nullptr) {
    char text[128];
    std::snprintf(text, sizeof text, format, int(percent));
    onMessage(context, text);
  }
  return cancel != 0;
}

const ProgressCallbacks& Progress() { return CRvDataAccess::Instance().m_progress; }

}  // namespace rv

extern "C" {

RV_API uint32_t RvGiSetProgressFunction(RvProgressStepFunc onStep, RvProgressRangeFunc onRange,
                                        RvProgressBeginFunc onBegin, RvProgressEndFunc onEnd,
                                        RvProgressMessageFunc onMessage) {
  rv::ProgressCallbacks& p = rv::CRvDataAccess::Instance().m_progress;
  p.onStep = onStep;
  p.onRange = onRange;
  p.onBegin = onBegin;
  p.onEnd = onEnd;
  p.onMessage = onMessage;
  return 0;
}

RV_API void RvGiGetLibVersion(int16_t* major, int16_t* minor, int16_t* revision) {
  *major = 1;
  *minor = 3;
  *revision = 0;
}

RV_API void RvGiSetUseLibVersion(int16_t major, int16_t minor) {
  rv::CRvDataAccess& da = rv::CRvDataAccess::Instance();
  da.m_useMajor = uint16_t(major);
  da.m_useMinor = uint16_t(minor);
}

}  // extern "C"
