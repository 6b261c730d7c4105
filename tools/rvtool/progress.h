// The progress bar on standard error and the Ctrl-C handling.
//
// The library reports sorting and writing through its progress callbacks;
// the bar follows them and, through the cancel flag of the step callback,
// hands a Ctrl-C on to the library, which then stops with its cancel code.
// An import reports no progress: the bar shows the stage without a figure.
#pragma once

#include <cstdint>
#include <string>

namespace rvtool {

/// Installs the SIGINT handler: the first Ctrl-C only sets a flag, a second
/// one ends the process as an unhandled Ctrl-C would.
void InstallInterruptHandler();
/// Whether Ctrl-C was pressed.
bool Interrupted();
/// Clears the flag (tests).
void ResetInterrupted();
/// Whether standard error is a terminal that can show the bar.
bool IsTerminal();

class ProgressBar {
 public:
  /// Sets the library's progress callbacks; they draw only when `visible`
  /// (standard error is a terminal), but they pass on Ctrl-C in any case.
  explicit ProgressBar(bool visible);
  /// Clears the bar's line and unsets the callbacks.
  ~ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  /// The context to hand to the exports; the callbacks find the bar by it.
  void* context() { return this; }
  /// Names what follows, for example ("import", "sign.plt").
  void Stage(const std::string& label, const std::string& subject);
  /// Clears the bar's line.
  void Clear();

  /// Number of step callbacks seen and the last percent (tests).
  int steps() const { return m_steps; }
  int lastPercent() const { return m_percent; }

 private:
  static void OnStep(void* context, int16_t percent, int32_t* cancel);
  static void OnRange(void* context, int16_t low, int16_t high);
  static void OnBegin(void* context);
  static void OnEnd(void* context);
  static void OnMessage(void* context, char* text);
  void Draw();

  bool m_visible;
  bool m_shown = false;
  bool m_hasPercent = false;
  int m_percent = 0;
  int m_drawnPercent = -1;
  int m_steps = 0;
  std::string m_label;
  std::string m_subject;
};

}  // namespace rvtool
