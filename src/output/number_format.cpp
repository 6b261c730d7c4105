#include "output/number_format.h"

#include <cmath>
#include <cstdio>
#include <climits>
#include <cstring>

namespace rv {
namespace {

using u128 = unsigned __int128;

constexpr uint64_t kPow10[] = {1ULL,       10ULL,       100ULL,       1000ULL,       10000ULL,
                               100000ULL,  1000000ULL,  10000000ULL,  100000000ULL,  1000000000ULL};

// Writes the decimal digits of v (v < 10^38) right-aligned ending at `end`;
// returns the first digit's position. At least `minDigits` digits.
char* WriteDigits(char* end, u128 v, int minDigits) {
  char* p = end;
  int written = 0;
  while (v >= 10000000000000000000ULL) {  // peel 19 digits at a time
    uint64_t low = uint64_t(v % 10000000000000000000ULL);
    v /= 10000000000000000000ULL;
    for (int k = 0; k < 19; ++k) {
      *--p = char('0' + low % 10);
      low /= 10;
    }
    written += 19;
  }
  uint64_t rest = uint64_t(v);
  do {
    *--p = char('0' + rest % 10);
    rest /= 10;
    ++written;
  } while (rest != 0);
  while (written < minDigits) {
    *--p = '0';
    ++written;
  }
  return p;
}

void AppendFallback(std::string& out, double value, int precision) {
  char text[400];
  const int n = std::snprintf(text, sizeof text, "%.*f", precision, value);
  if (n > 0) out.append(text, std::size_t(n) < sizeof text ? std::size_t(n) : sizeof text - 1);
}

}  // namespace

void AppendFixed(std::string& out, double value, int precision) {
  if (precision < 0 || precision > 9 || !std::isfinite(value) || std::fabs(value) >= 1e17) {
    AppendFallback(out, value, precision);
    return;
  }
  uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  const bool negative = (bits >> 63) != 0;
  const int biased = int((bits >> 52) & 0x7FF);
  uint64_t mantissa = bits & ((1ULL << 52) - 1);
  int exponent;  // value = mantissa * 2^exponent exactly
  if (biased == 0) {
    exponent = -1074;
  } else {
    mantissa |= 1ULL << 52;
    exponent = biased - 1075;
  }
  const u128 scaled = u128(mantissa) * kPow10[precision];
  u128 q;
  if (exponent >= 0) {
    q = scaled << exponent;  // below 1e17 * 1e9, far inside 128 bits
  } else {
    const int s = -exponent;
    if (s >= 127) {
      q = 0;  // the value is far below half a unit of the last place
    } else {
      q = scaled >> s;
      const u128 rem = scaled & ((u128(1) << s) - 1);
      const u128 half = u128(1) << (s - 1);
      if (rem > half || (rem == half && (q & 1) != 0)) ++q;
    }
  }
  char text[64];
  char* end = text + sizeof text;
  char* p;
  if (precision == 0) {
    p = WriteDigits(end, q, 1);
  } else {
    const u128 unit = kPow10[precision];
    char* fracStart = WriteDigits(end, q % unit, precision);
    *--fracStart = '.';
    p = WriteDigits(fracStart, q / unit, 1);
  }
  if (negative) *--p = '-';
  out.append(p, std::size_t(end - p));
}

int32_t TruncToInt32(double value) {
  if (!(value > -2147483649.0 && value < 2147483648.0)) return INT32_MIN;
  return static_cast<int32_t>(value);
}

void AppendInteger(std::string& out, long long value) {
  char text[24];
  char* end = text + sizeof text;
  const bool negative = value < 0;
  const unsigned long long magnitude = negative ? 0ULL - static_cast<unsigned long long>(value)
                                                : static_cast<unsigned long long>(value);
  char* p = WriteDigits(end, magnitude, 1);
  if (negative) *--p = '-';
  out.append(p, std::size_t(end - p));
}

void AppendFormatted(std::string& out, const char* format, std::initializer_list<RowArg> args) {
  const RowArg* arg = args.begin();
  const RowArg* const argEnd = args.end();
  const char* p = format;
  while (*p != '\0') {
    const char* literal = p;
    while (*p != '\0' && *p != '%') ++p;
    out.append(literal, std::size_t(p - literal));
    if (*p == '\0') break;
    // p at '%'
    const char* spec = p++;
    if (*p == '%') {
      out.push_back('%');
      ++p;
      continue;
    }
    int precision = 6;
    if (*p == '.') {
      ++p;
      precision = 0;
      while (*p >= '0' && *p <= '9') precision = precision * 10 + (*p++ - '0');
    }
    bool halfWidth = false;
    if (*p == 'h') {
      halfWidth = true;
      ++p;
    } else if (*p == 'l') {
      ++p;
    }
    const char conversion = *p;
    if (conversion != 'd' && conversion != 'f') {
      // Not a conversion of the table: copy it as it stands.
      out.append(spec, std::size_t(p - spec));
      continue;
    }
    ++p;
    const bool have = arg != argEnd;
    const RowArg value = have ? *arg++ : RowArg(0);
    if (conversion == 'd') {
      long long v = value.isInteger ? value.integer : static_cast<long long>(TruncToInt32(value.real));
      v = halfWidth ? static_cast<long long>(static_cast<int16_t>(v)) : static_cast<long long>(static_cast<int32_t>(v));
      AppendInteger(out, v);
    } else {
      AppendFixed(out, value.isInteger ? double(value.integer) : value.real, precision);
    }
  }
}

}  // namespace rv
