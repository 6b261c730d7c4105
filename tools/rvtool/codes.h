// The library's result codes in words, and the tool's exit status for them.
#pragma once

#include <cstdint>
#include <string>

namespace rvtool {

/// One known code of the library and what it means for a user.
struct CodeWords {
  uint32_t code;
  const char* words;
};

/// Every code that the library documents, in the order of its table.
const CodeWords* KnownCodes(std::size_t* count);

/// The meaning of `code` in words; for a code that isn't in the table, the
/// module and detail numbers it is made of.
std::string DescribeCode(uint32_t code);

/// "0x06001F01" for codes built from module and detail, the decimal value for
/// the plain codes of the XML layer.
std::string FormatCode(uint32_t code);

/// Exit status of the tool for a failure with `code`: the module number for
/// codes built from a module (1 file ... 10 sort), the value itself for the
/// plain codes 11 to 15, 16 for 65535, 65 for the result 1 (nothing drawn or
/// made) and 17 for anything else.
int ExitStatusFor(uint32_t code);

}  // namespace rvtool
