#include "output/placement.h"

#include "geometry/affine.h"

namespace rv {

RVRIFMATRIX BasePlacement(const RVPLOTPARAM& param, const RVRECT& rect) {
  const uint16_t cls = param.plotterClass;
  const double w = rect.right - rect.left;
  const double h = rect.top - rect.bottom;
  const double sx = param.scaleX / 100.0;
  const double sy = param.scaleY / 100.0;
  RVRIFMATRIX m = kIdentity;
  ConcatTranslate(m, -rect.left, -rect.bottom);

  const double rotation = param.rotation;
  const bool quarter = rotation == kQuarterTurn;
  const bool half = rotation == kHalfTurn;
  const bool threeQuarter = rotation == kThreeQuarterTurn;
  if (quarter || half || threeQuarter) {
    double tx = 0.0, ty = 0.0;
    if (threeQuarter) {
      if (plotter::IsMilling(cls)) {
        tx = (w - h) * sx, ty = sy * w;
      } else if (plotter::RotatedSide(cls)) {
        tx = w - h, ty = w;
      } else if (plotter::MirrorsY(cls)) {
        tx = 0.0, ty = h;
      } else {
        tx = 0.0, ty = w;
      }
    } else if (half) {
      if (plotter::IsMilling(cls)) {
        tx = sx * w, ty = sy * h;
      } else {
        tx = w, ty = h;
      }
    } else {
      if (plotter::IsMilling(cls)) {
        tx = sx * w, ty = 0.0;
      } else if (plotter::RotatedSide(cls)) {
        tx = w, ty = 0.0;
      } else if (plotter::MirrorsY(cls)) {
        tx = h, ty = h - w;
      } else {
        tx = h, ty = 0.0;
      }
    }
    ConcatRotate(m, rotation);
    ConcatTranslate(m, tx, ty);
  }

  if (param.mirror != 0) {
    double t;
    if (quarter || threeQuarter) {
      if (plotter::IsMilling(cls)) {
        t = (2.0 * w - h) * sx;
      } else if (plotter::RotatedSide(cls)) {
        t = 2.0 * w - h;
      } else {
        t = h;
      }
    } else {
      t = plotter::IsMilling(cls) ? sx * w : w;
    }
    ConcatScale(m, -1.0, 1.0);
    ConcatTranslate(m, t, 0.0);
  }
  ConcatScale(m, sx, sy);
  return m;
}

void ConcatJobOffsets(RVRIFMATRIX& m, const RVPLOTPARAM& param, const RVRECT& rect) {
  const uint16_t cls = param.plotterClass;
  const double rw = rect.right - rect.left;
  const double rh = rect.top - rect.bottom;
  const double sx = param.scaleX / 100.0;
  const double sy = param.scaleY / 100.0;
  const bool frame = param.drawFrame != 0;
  if (plotter::MirrorsX(cls)) {
    ConcatTranslate(m, rw * (1.0 - sx), 0.0);
    ConcatTranslate(m, -param.originX, param.originY);
    if (frame) ConcatTranslate(m, -param.frameMarginX, param.frameMarginY);
  } else if (plotter::MirrorsY(cls)) {
    ConcatTranslate(m, 0.0, rh * (1.0 - sy));
    ConcatTranslate(m, param.originX, -param.originY);
    if (frame) ConcatTranslate(m, param.frameMarginX, -param.frameMarginY);
  } else {
    ConcatTranslate(m, param.originX, param.originY);
    if (frame) ConcatTranslate(m, param.frameMarginX, param.frameMarginY);
  }
  if (plotter::NegatesMinX(cls)) {
    ConcatTranslate(m, -param.deviceMinX, param.deviceMinY);
  } else if (plotter::NegatesMinY(cls)) {
    ConcatTranslate(m, param.deviceMinX, -param.deviceMinY);
  } else {
    ConcatTranslate(m, param.deviceMinX, param.deviceMinY);
  }
}

void ConcatPlacementTransform(RVRIFMATRIX& m, const RVPLOTPARAM& param, const RVRECT& rect) {
  if (param.usePlacementTransform == 0) return;
  if (param.plotterClass == plotter::kHatchingMachine) {
    ConcatScale(m, param.placementScaleX, param.placementScaleY);
    ConcatRotate(m, param.placementRotation);
    ConcatTranslate(m, param.placementOffsetX, param.placementOffsetY);
  } else if (param.plotterClass == plotter::kPlacementRotatedAtTop) {
    const double d = rect.bottom - rect.top;
    ConcatTranslate(m, 0.0, d);
    ConcatRotate(m, -param.placementRotation);
    ConcatTranslate(m, 0.0, -d);
    ConcatTranslate(m, param.placementOffsetX, -param.placementOffsetY);
  }
}

RVRIFMATRIX ComputePlacement(const RVPLOTPARAM& param, const RVRECT& rect) {
  RVRIFMATRIX m = BasePlacement(param, rect);
  ConcatJobOffsets(m, param, rect);
  ConcatPlacementTransform(m, param, rect);
  return m;
}

RVRIFMATRIX OutputFlip(const RVPLOTPARAM& param, const RVRECT& rect) {
  RVRIFMATRIX m = kIdentity;
  if (plotter::MirrorsX(param.plotterClass)) {
    ConcatScale(m, -1.0, 1.0);
    ConcatTranslate(m, rect.right - rect.left, 0.0);
  } else if (plotter::MirrorsY(param.plotterClass)) {
    ConcatScale(m, 1.0, -1.0);
    ConcatTranslate(m, 0.0, rect.top - rect.bottom);
  }
  return m;
}

RVRECT GrowByMargins(const RVPLOTPARAM& param, const RVRECT& rect) {
  RVRECT out = rect;
  out.left = rect.left - param.marginLeft;
  out.top = rect.top + param.marginTop;
  out.bottom = rect.bottom - param.marginBottom;
  out.right = rect.right + param.marginRight;
  return out;
}

}  // namespace rv
