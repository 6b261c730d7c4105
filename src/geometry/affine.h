// Small inline helpers on the public point and matrix records.
#pragma once

#include <cmath>

#include "rvdataaccess.h"

namespace rv {

constexpr RVRIFMATRIX kIdentity{1.0, 0.0, 0.0, 1.0, 0.0, 0.0};

inline RVPOINT Apply(const RVRIFMATRIX& m, const RVPOINT& p) {
  return RVPOINT{m.a * p.x + m.c * p.y + m.tx, m.b * p.x + m.d * p.y + m.ty};
}

/// Whether Apply(m, p) gives p back for every finite p but one with a -0
/// coordinate.
inline bool IsIdentity(const RVRIFMATRIX& m) {
  return m.a == 1.0 && m.b == 0.0 && m.c == 0.0 && m.d == 1.0 && m.tx == 0.0 && m.ty == 0.0;
}

inline double Distance(const RVPOINT& p, const RVPOINT& q) {
  const double dx = q.x - p.x, dy = q.y - p.y;
  return std::sqrt(dx * dx + dy * dy);
}

inline bool SamePoint(const RVPOINT& p, const RVPOINT& q) { return p.x == q.x && p.y == q.y; }

/// m followed by a translation.
inline void ConcatTranslate(RVRIFMATRIX& m, double dx, double dy) {
  m.tx += dx;
  m.ty += dy;
}

/// m followed by a scale.
inline void ConcatScale(RVRIFMATRIX& m, double sx, double sy) {
  m.a *= sx;
  m.c *= sx;
  m.tx *= sx;
  m.b *= sy;
  m.d *= sy;
  m.ty *= sy;
}

/// m followed by a rotation by `angle` radians.
inline void ConcatRotate(RVRIFMATRIX& m, double angle) {
  const double s = std::sin(angle), k = std::cos(angle);
  auto turn = [&](double& p, double& q) {
    const double np = p * k - q * s, nq = p * s + q * k;
    p = np;
    q = nq;
  };
  turn(m.a, m.b);
  turn(m.c, m.d);
  turn(m.tx, m.ty);
}

/// The inverse of m; false when the determinant is exactly 0.
inline bool Invert(const RVRIFMATRIX& m, RVRIFMATRIX& out) {
  const double det = m.a * m.d - m.c * m.b;
  if (det == 0.0) return false;
  out.a = m.d / det;
  out.b = -(m.b / det);
  out.c = -(m.c / det);
  out.d = m.a / det;
  out.tx = (m.c * m.ty - m.tx * m.d) / det;
  out.ty = (m.tx * m.b - m.a * m.ty) / det;
  return true;
}

}  // namespace rv
