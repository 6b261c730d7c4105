// Small numeric helpers of the plot interpreter. A plot file can hold any
// number, so every conversion from double to integer saturates and every
// division that could meet a zero is spelled out.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

namespace rv::plot {

constexpr double kPi = 3.14159265358979323846;

inline double Radians(double degrees) { return degrees * (kPi / 180.0); }
inline double Degrees(double radians) { return radians * (180.0 / kPi); }

/// The double as a 32-bit integer, clamped to the range; NaN gives 0.
inline int32_t SaturateInt32(double v) {
  if (!(v == v)) return 0;
  if (v >= 2147483647.0) return std::numeric_limits<int32_t>::max();
  if (v <= -2147483648.0) return std::numeric_limits<int32_t>::min();
  return int32_t(v);
}

/// The largest integer not above v + 0.5, as a 32-bit integer (saturated).
/// Written without floor(), which is a library call on plain x86-64.
inline int32_t RoundHalfUp(double v) {
  const double w = v + 0.5;
  if (!(w > -2147483648.0 && w < 2147483647.0)) return SaturateInt32(w);
  int32_t t = int32_t(w);  // towards zero
  if (double(t) > w) --t;
  return t;
}

/// a / b with the IEEE results for b == 0 (infinities and NaN), written so
/// that no division by zero is executed.
inline double Divide(double a, double b) {
  if (b != 0.0) return a / b;
  if (a == 0.0 || !(a == a)) return std::numeric_limits<double>::quiet_NaN();
  const bool negative = std::signbit(a) != std::signbit(b);
  return negative ? -std::numeric_limits<double>::infinity() : std::numeric_limits<double>::infinity();
}

/// An angle in degrees brought into 0 up to 360, the way the firmware does:
/// a negative angle has its magnitude reduced modulo 360 when above 360, is
/// negated and gets 360 added; a positive one is reduced when above 360.
inline double Normal(double a) {
  if (!std::isfinite(a)) return 0.0;
  if (a < 0.0) {
    double m = -a;
    if (m > 360.0) m = std::fmod(m, 360.0);
    return 360.0 - m;
  }
  if (a > 360.0) return std::fmod(a, 360.0);
  return a;
}

/// The angle of (x, y) in degrees, in 0 up to (not including) 360.
inline double AngleOf(double x, double y) {
  double a = Degrees(std::atan2(y, x));
  if (a < 0.0) a += 360.0;
  if (a >= 360.0) a -= 360.0;
  return a;
}

/// The chord angle, in degrees, at which a chord of a circle of radius r
/// stands off the circle by e: 2 atan(sqrt(r^2 - (r-e)^2) / (r-e)).
inline double DeviationAngle(double r, double e) {
  const double q = r - e;
  return Degrees(2.0 * std::atan(Divide(std::sqrt(r * r - q * q), q)));
}

}  // namespace rv::plot
