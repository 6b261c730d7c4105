// How the tool reports a failure: one line on standard error and an exit
// status. Commands throw Failure; main() prints it.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <vector>

namespace rvtool {

/// Exit statuses of the tool's own failures (library failures use
/// ExitStatusFor, codes.h).
constexpr int kFileStatus = 1;          // a file can't be read: as the library's file codes (module 1)
constexpr int kUsageStatus = 64;        // a bad command line
constexpr int kNoDrawingStatus = 65;    // the input is empty or draws nothing (the library's result 1)
constexpr int kInternalStatus = 70;     // the C++ runtime failed (out of memory)
constexpr int kOutputStatus = 73;       // a picture or file of the tool can't be written
constexpr int kInterruptedStatus = 130; // Ctrl-C outside a step that the library can cancel

class Failure : public std::exception {
 public:
  Failure(std::string line, int status) : m_line(std::move(line)), m_status(status) {}
  /// The whole message line, without the program name.
  const char* what() const noexcept override { return m_line.c_str(); }
  int status() const { return m_status; }

 private:
  std::string m_line;
  int m_status;
};

/// "import of 'FILE' failed: the file can't be opened (code 0x01000201)".
Failure LibraryFailure(uint32_t code, const std::string& operation, const std::string& file);

/// Throws LibraryFailure for a non-zero code.
inline void Check(uint32_t code, const std::string& operation, const std::string& file) {
  if (code != 0) throw LibraryFailure(code, operation, file);
}

/// "'A', 'B'" for the names of a message, `none` when there are none.
std::string QuotedList(const std::vector<std::string>& names, const std::string& none);

/// "OPERATION of 'FILE' failed: WHY".
Failure ToolFailure(const std::string& operation, const std::string& file, const std::string& why,
                    int status);

}  // namespace rvtool
