// Allocation-free number formatting with exactly the bytes of the C
// library's printf conversions "%d" and "%.Nf" (round half to even on the
// exact binary value, "-0.00" for negative values that round to zero).
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>

namespace rv {

/// Appends `value` as printf("%.<precision>f") would write it. Precision 0
/// to 9; other precisions, infinities, NaN and huge values go through
/// snprintf.
void AppendFixed(std::string& out, double value, int precision);

/// Appends `value` as printf("%lld").
void AppendInteger(std::string& out, long long value);

/// Truncates toward zero to 32 bits as the processor's conversion does:
/// NaN and values outside the 32-bit range give INT32_MIN.
int32_t TruncToInt32(double value);

/// One argument of a command row: a whole number or a double.
struct RowArg {
  RowArg(int v) : isInteger(true), integer(v) {}        // NOLINT(runtime/explicit)
  RowArg(long v) : isInteger(true), integer(v) {}       // NOLINT(runtime/explicit)
  RowArg(long long v) : isInteger(true), integer(v) {}  // NOLINT(runtime/explicit)
  RowArg(double v) : isInteger(false), real(v) {}       // NOLINT(runtime/explicit)
  bool isInteger;
  long long integer = 0;
  double real = 0.0;
};

/// Formats the printf-style `format` with `args` and appends the bytes to
/// `out`. The conversions of the command table are understood: %d, %hd,
/// %f, %lf, %.Nf, %.Nlf and %%. A whole number given for a real conversion
/// is converted, and the other way round it is truncated toward zero; a
/// missing argument formats as 0; surplus arguments are ignored. Any other
/// text, control bytes included, is copied as it stands.
void AppendFormatted(std::string& out, const char* format, std::initializer_list<RowArg> args);

}  // namespace rv
