#include "frame/frame.h"

#include <csetjmp>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

// The exported recovery stack.
extern "C" {
RV_API ExceptionInfo* g_ExceptionContext = nullptr;
}

namespace rv {
namespace {

uint32_t gLastError = 0;
// Set on a helper thread whose failures its caller redoes (QuietRaises).
thread_local bool tQuietRaises = false;
Frame* gInnermost = nullptr;  // innermost library frame, for IsLibraryHead

RvTraceFunc gTraceSink = nullptr;
void* gTraceContext = nullptr;
RvMessageFunc gMessageSink = nullptr;
void* gMessageContext = nullptr;

bool TraceToStderr() {
  static const bool on = std::getenv("RVDATAACCESS_TRACE") != nullptr;
  return on;
}

}  // namespace

Frame::Frame() noexcept : m_outer(gInnermost), m_uncaught(std::uncaught_exceptions()) {
  PushExceptionInfo(&m_info);
  gInnermost = this;
}

Frame::~Frame() {
  // Left by an ordinary return the frame pops its record as any frame does;
  // left by an exception (ours or a standard one) it only restores the
  // stack as it found it.
  if (std::uncaught_exceptions() == m_uncaught) {
    PopExceptionInfo(&m_info);
  }
  g_ExceptionContext = m_info.previous;
  gInnermost = m_outer;
}

bool Frame::IsLibraryHead(const ExceptionInfo* info) noexcept {
  return gInnermost != nullptr && info == &gInnermost->m_info;
}

QuietRaises::QuietRaises() noexcept { tQuietRaises = true; }

QuietRaises::~QuietRaises() { tQuietRaises = false; }

void Raise(uint32_t code) {
  if (!tQuietRaises) gLastError = code;
  throw RvError(code);
}

void Trace(const char* format, ...) {
  if (gTraceSink == nullptr && !TraceToStderr()) return;
  char text[1024];
  va_list args;
  va_start(args, format);
  std::vsnprintf(text, sizeof text, format, args);
  va_end(args);
  if (gTraceSink != nullptr) {
    gTraceSink(gTraceContext, text);
  } else {
    std::fputs(text, stderr);
  }
}

void ShowMessage(const char* text, const char* title) {
  if (gMessageSink != nullptr) {
    gMessageSink(gMessageContext, text, title);
  } else {
    Trace("%s: %s\n", title, text);
  }
}

}  // namespace rv

extern "C" {

RV_API uint32_t gMakeErrCode(uint8_t module, uint16_t detail) { return rv::ErrCode(module, detail); }

RV_API void gGetErrContens(uint32_t code, uint8_t* module, uint16_t* detail, uint8_t* low) {
  *module = uint8_t(code >> 24);
  *detail = uint16_t(code >> 8);
  *low = uint8_t(code);
}

RV_API void Exception(uint32_t code) {
  if (code == 0) return;
  ExceptionInfo* head = g_ExceptionContext;
  if (head == nullptr) {
    rv::Trace("Error:program stopped.(code = %d)", int(code));
    return;
  }
  if (rv::Frame::IsLibraryHead(head)) {
    // A library frame is the recovery point: unwind to it as C++ does.
    rv::Raise(code);
  }
  rv::gLastError = code;
  g_ExceptionContext = head->previous;
  std::longjmp(head->context, 1);
}

RV_API void PushExceptionInfo(ExceptionInfo* info) {
  info->previous = g_ExceptionContext;
  g_ExceptionContext = info;
}

RV_API void PopExceptionInfo(ExceptionInfo* info) {
  ExceptionInfo* head = g_ExceptionContext;
  if (info != head) rv::Trace("Fatal error in internalroutine of exception handler.\n");
  if (head != nullptr) g_ExceptionContext = head->previous;
}

RV_API uint32_t gGetLastError(void) { return rv::gLastError; }

RV_API void RvGiSetTraceFunction(RvTraceFunc sink, void* context) {
  rv::gTraceSink = sink;
  rv::gTraceContext = context;
}

RV_API void RvGiSetMessageFunction(RvMessageFunc sink, void* context) {
  rv::gMessageSink = sink;
  rv::gMessageContext = context;
}

}  // extern "C"
