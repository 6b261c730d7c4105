#include "failure.h"

#include "codes.h"

namespace rvtool {
namespace {

std::string Head(const std::string& operation, const std::string& file) {
  if (file.empty()) return operation + " failed: ";
  return operation + " of '" + file + "' failed: ";
}

}  // namespace

Failure LibraryFailure(uint32_t code, const std::string& operation, const std::string& file) {
  return Failure(Head(operation, file) + DescribeCode(code) + " (code " + FormatCode(code) + ")",
                 ExitStatusFor(code));
}

std::string QuotedList(const std::vector<std::string>& names, const std::string& none) {
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? "'" : ", '") + name + "'";
  return list.empty() ? none : list;
}

Failure ToolFailure(const std::string& operation, const std::string& file, const std::string& why,
                    int status) {
  return Failure(Head(operation, file) + why, status);
}

}  // namespace rvtool
