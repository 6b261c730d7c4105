// The library's error frame.
//
// Inside the library a failure is a C++ exception of type RvError carrying the
// 32-bit code. Every exported function that can fail runs its body in a
// Frame (through Guard), which catches the code and returns it. The frame also
// keeps the exported recovery stack (g_ExceptionContext) in step with the
// calls: each library frame pushes its record on entry and pops it on every
// way out, also when a standard exception crosses it, so that a host that
// pushes its own ExceptionInfo always finds its record at the head again
// after a call, and Exception() reaches the host's record only from code that
// runs outside every library frame.
#pragma once

#include <cstdint>
#include <exception>
#include <utility>

#include "rvdataaccess.h"

namespace rv {

/// The library's own failure: a code of the library's error table.
class RvError : public std::exception {
 public:
  explicit RvError(uint32_t code) noexcept : m_code(code) {}
  uint32_t code() const noexcept { return m_code; }
  const char* what() const noexcept override { return "RvDataAccess error"; }

 private:
  uint32_t m_code;
};

/// Builds a module/detail code (same as the exported gMakeErrCode).
constexpr uint32_t ErrCode(uint8_t module, uint16_t detail) {
  return (uint32_t(module) << 24) | (uint32_t(detail) << 8) | 1u;
}

/// Raises `code` towards the innermost library frame: records it as the last
/// error and throws. Must only be called under a Frame (every export has one).
[[noreturn]] void Raise(uint32_t code);

/// While one lives, Raise on its thread throws without recording the last
/// error: for a helper thread, whose failures the calling thread meets
/// again, and records, when it redoes the work itself. A helper thread
/// catches its RvError itself and enters no Frame.
class QuietRaises {
 public:
  QuietRaises() noexcept;
  ~QuietRaises();
  QuietRaises(const QuietRaises&) = delete;
  QuietRaises& operator=(const QuietRaises&) = delete;
};

/// The `Exception(f(...))` idiom of the library: raises a non-zero code.
inline void Check(uint32_t code) {
  if (code != 0) Raise(code);
}

/// One recovery point of the library. Pushes its ExceptionInfo on
/// construction and restores g_ExceptionContext to what it was on destruction,
/// whichever way the scope is left.
class Frame {
 public:
  Frame() noexcept;
  ~Frame();
  Frame(const Frame&) = delete;
  Frame& operator=(const Frame&) = delete;

  /// True when `info` is the record of the innermost library frame.
  static bool IsLibraryHead(const ExceptionInfo* info) noexcept;

 private:
  ExceptionInfo m_info;
  Frame* m_outer;
  int m_uncaught;
};

/// Runs `body` in a frame and returns 0, or the code of the library failure
/// that ended it. Standard exceptions pass through (the frame is still
/// popped).
template <class Body>
uint32_t Guard(Body&& body) {
  Frame frame;
  try {
    std::forward<Body>(body)();
  } catch (const RvError& e) {
    return e.code();
  }
  return 0;
}

/// For exports that have no frame of their own: a failure inside is handed
/// to Exception() once the body has been left, so that it reaches a recovery
/// point that the host pushed (or the trace sink when there is none).
template <class Body>
void GuardThenException(Body&& body) {
  uint32_t code = Guard(std::forward<Body>(body));
  if (code != 0) Exception(code);
}

/// The trace sink: a printf format and up to three arguments.
void Trace(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// Shows a text to the user through the message sink (default: the trace sink).
void ShowMessage(const char* text, const char* title);

}  // namespace rv
