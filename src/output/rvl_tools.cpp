#include <cctype>
#include <cstring>

#include "output/rvl_commands.h"

namespace rv {

namespace {

// The tool name read as a decimal number, as a 32-bit atol reads it (leading
// blanks, a sign, digits up to the first other character, saturating at the
// 32-bit limits); only the low 16 bits are used.
long long ReadDecimal(const char* text, std::size_t length) {
  std::size_t i = 0;
  while (i < length && std::isspace(static_cast<unsigned char>(text[i]))) ++i;
  bool negative = false;
  if (i < length && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
  unsigned long long value = 0;
  for (; i < length && text[i] >= '0' && text[i] <= '9'; ++i) {
    value = value * 10 + unsigned(text[i] - '0');
    if (value > 0x80000000ULL) value = 0x80000000ULL;  // saturated
  }
  if (negative) return -static_cast<long long>(value);
  return value > 0x7FFFFFFFULL ? 0x7FFFFFFFLL : static_cast<long long>(value);
}

struct ToolRow {
  int16_t pen;
  ToolProperties flags;
};

constexpr ToolRow kToolTable[14] = {
    {10, {false, true, false}},  {20, {false, true, false}},  {11, {false, true, false}},
    {15, {false, true, false}},  {25, {false, true, false}},  {35, {false, true, false}},
    {13, {true, false, false}},  {14, {true, false, false}},  {24, {true, false, false}},
    {-15, {true, false, false}}, {-25, {true, false, false}}, {-35, {true, false, false}},
    {17, {true, false, true}},   {27, {true, false, true}},
};

}  // namespace

uint16_t ToolToPen(const RVPLOTPARAM& param, const char* toolName) {
  const std::size_t nameLength = std::strlen(toolName);
  for (const RVTOOLPEN& entry : param.toolPens) {
    const std::size_t entryLength = strnlen(entry.name, sizeof entry.name);
    if (entryLength == 0) break;
    if (entryLength == nameLength && std::memcmp(entry.name, toolName, nameLength) == 0 && entry.pen != 0) {
      return entry.pen;
    }
  }
  return static_cast<uint16_t>(ReadDecimal(toolName, nameLength));
}

bool LookUpToolProperties(int16_t pen, ToolProperties& out) {
  for (const ToolRow& row : kToolTable) {
    if (static_cast<uint16_t>(row.pen) == static_cast<uint16_t>(pen)) {
      out = row.flags;
      return true;
    }
  }
  out = ToolProperties{};
  return false;
}

}  // namespace rv
