// Runs the built rvtool as a separate process and collects what it printed.
#pragma once

#include <string>
#include <vector>

namespace tooltest {

struct ToolRun {
  int status = -1;  // exit status, or 128 + signal
  std::string out;  // standard output
  std::string err;  // standard error
};

/// Runs rvtool with `args` (not including the program name), standard input
/// from /dev/null, in the current directory.
ToolRun RunTool(const std::vector<std::string>& args);

/// Path of a file of samples/.
std::string Sample(const std::string& name);

}  // namespace tooltest
