// Integer rectangles of the cut-order sorts, with the point and
// intersection tests of a window system: left and top edges inside, right and
// bottom edges outside, y growing downward in the rectangle's own terms
// (top is the smaller value).
#pragma once

#include <cstdint>

namespace rv {

struct IntRect {
  int32_t left = 0;
  int32_t top = 0;
  int32_t right = 0;
  int32_t bottom = 0;
};

/// True when the rectangle has no area (right <= left or bottom <= top).
inline bool IsRectEmpty(const IntRect& r) { return r.right <= r.left || r.bottom <= r.top; }

/// True when (x, y) lies in r: left <= x < right and top <= y < bottom.
inline bool PtInRect(const IntRect& r, int32_t x, int32_t y) {
  return x >= r.left && x < r.right && y >= r.top && y < r.bottom;
}

/// The common part of a and b in `out`. False, with `out` all zeros, when
/// either has no area or they share no area (touching edges don't count).
inline bool IntersectRect(IntRect& out, const IntRect& a, const IntRect& b) {
  IntRect r;
  r.left = a.left > b.left ? a.left : b.left;
  r.top = a.top > b.top ? a.top : b.top;
  r.right = a.right < b.right ? a.right : b.right;
  r.bottom = a.bottom < b.bottom ? a.bottom : b.bottom;
  if (IsRectEmpty(a) || IsRectEmpty(b) || IsRectEmpty(r)) {
    out = IntRect{};
    return false;
  }
  out = r;
  return true;
}

}  // namespace rv
