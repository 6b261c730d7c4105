#include "output/int_rect.h"

#include <algorithm>

namespace rv {

bool IntersectRect(IntRect& out, const IntRect& a, const IntRect& b) {
  IntRect r;
  r.left = std::max(a.left, b.left);
  r.top = std::max(a.top, b.top);
  r.right = std::min(a.right, b.right);
  r.bottom = std::min(a.bottom, b.bottom);
  if (IsRectEmpty(a) || IsRectEmpty(b) || IsRectEmpty(r)) {
    out = IntRect{};
    return false;
  }
  out = r;
  return true;
}

}  // namespace rv
