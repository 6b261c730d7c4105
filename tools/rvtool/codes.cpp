#include "codes.h"

#include <cstdio>
#include <vector>

#include "failure.h"
#include "frame/error_codes.h"

namespace rvtool {
namespace {

// The library's own table of codes and meanings, and the one result that
// isn't a failure of the library but is one for the tool.
const std::vector<CodeWords>& Codes() {
  static const std::vector<CodeWords> codes = [] {
    std::vector<CodeWords> rows;
    for (const rv::ErrorCodeWords& row : rv::kErrorCodeTable) rows.push_back({row.code, row.words});
    rows.push_back({1u, "the file draws nothing"});
    return rows;
  }();
  return codes;
}

}  // namespace

const CodeWords* KnownCodes(std::size_t* count) {
  *count = Codes().size();
  return Codes().data();
}

std::string DescribeCode(uint32_t code) {
  for (const CodeWords& entry : Codes()) {
    if (entry.code == code) return entry.words;
  }
  char text[96];
  if ((code & 0xFFu) == 1u && (code >> 24) != 0u) {
    std::snprintf(text, sizeof text, "an unknown failure (module %u, detail %u)", code >> 24,
                  (code >> 8) & 0xFFFFu);
  } else {
    std::snprintf(text, sizeof text, "an unknown failure");
  }
  return text;
}

std::string FormatCode(uint32_t code) {
  char text[32];
  if ((code & 0xFFu) == 1u && (code >> 24) != 0u) {
    std::snprintf(text, sizeof text, "0x%08X", code);
  } else {
    std::snprintf(text, sizeof text, "%u", code);
  }
  return text;
}

int ExitStatusFor(uint32_t code) {
  const uint32_t module = code >> 24;
  if ((code & 0xFFu) == 1u && module >= 1u && module <= 10u) return static_cast<int>(module);
  if (code >= 11u && code <= 15u) return static_cast<int>(code);
  if (code == 65535u) return 16;
  if (code == 1u) return kNoDrawingStatus;
  return 17;
}

}  // namespace rvtool
