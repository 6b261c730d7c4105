// Exported matrix and point functions.
#include <cmath>

#include "frame/error_codes.h"
#include "frame/frame.h"
#include "geometry/affine.h"

extern "C" {

RV_API uint32_t RvMiSetMatrix(RVRIFMATRIX* m, double a, double b, double c, double d, double tx,
                              double ty) {
  *m = RVRIFMATRIX{a, b, c, d, tx, ty};
  return 0;
}

RV_API uint32_t RvMiSetMatrixIdentity(RVRIFMATRIX* m) {
  *m = rv::kIdentity;
  return 0;
}

RV_API uint32_t RvMiSetMatrixTranslate(RVRIFMATRIX* m, double dx, double dy) {
  *m = RVRIFMATRIX{1.0, 0.0, 0.0, 1.0, dx, dy};
  return 0;
}

RV_API uint32_t RvMiSetMatrixScale(RVRIFMATRIX* m, double sx, double sy) {
  *m = RVRIFMATRIX{sx, 0.0, 0.0, sy, 0.0, 0.0};
  return 0;
}

RV_API uint32_t RvMiSetMatrixRotate(RVRIFMATRIX* m, double angle) {
  const double s = std::sin(angle), k = std::cos(angle);
  *m = RVRIFMATRIX{k, s, -s, k, 0.0, 0.0};
  return 0;
}

RV_API uint32_t RvMiSetInvertMatrix(const RVRIFMATRIX* source, RVRIFMATRIX* result) {
  return rv::Guard([&] {
    RVRIFMATRIX inverse;
    if (!rv::Invert(*source, inverse)) rv::Raise(rv::kErrSingularMatrix);
    *result = inverse;
  });
}

RV_API uint32_t RvMiConcatMatrixTranslate(RVRIFMATRIX* m, double dx, double dy) {
  rv::ConcatTranslate(*m, dx, dy);
  return 0;
}

RV_API uint32_t RvMiConcatMatrixScale(RVRIFMATRIX* m, double sx, double sy) {
  rv::ConcatScale(*m, sx, sy);
  return 0;
}

RV_API uint32_t RvMiConcatMatrixRotate(RVRIFMATRIX* m, double angle) {
  rv::ConcatRotate(*m, angle);
  return 0;
}

RV_API uint32_t RvMiMatrixCalcPoint(const RVRIFMATRIX* m, const RVPOINT* in, RVPOINT* out) {
  *out = rv::Apply(*m, *in);
  return 0;
}

RV_API uint32_t RvMiMatrixCalcRect(const RVRIFMATRIX* m, const RVRECT* rect, RVPOINT* p1, RVPOINT* p2,
                                   RVPOINT* p3, RVPOINT* p4) {
  const RVRECT r = *rect;
  *p1 = rv::Apply(*m, RVPOINT{r.left, r.top});
  *p2 = rv::Apply(*m, RVPOINT{r.left, r.bottom});
  *p3 = rv::Apply(*m, RVPOINT{r.right, r.top});
  *p4 = rv::Apply(*m, RVPOINT{r.right, r.bottom});
  return 0;
}

RV_API uint32_t RvMiIsMatrixIdentity(const RVRIFMATRIX* m, int32_t* result) {
  *result = (m->a == 1.0 && m->b == 0.0 && m->c == 0.0 && m->d == 1.0 && m->tx == 0.0 && m->ty == 0.0)
                ? 1
                : 0;
  return 0;
}

RV_API int32_t RvMiPointEqual(const RVPOINT* p1, const RVPOINT* p2, double tolerance) {
  return (std::fabs(p2->x - p1->x) <= tolerance && std::fabs(p2->y - p1->y) <= tolerance) ? 1 : 0;
}

RV_API double RvMiPointLength(const RVPOINT* p1, const RVPOINT* p2) {
  const double dx = p2->x - p1->x, dy = p2->y - p1->y;
  return std::sqrt(dx * dx + dy * dy);
}

}  // extern "C"
