#include "geometry.h"

#include <algorithm>

#include "drawing.h"

namespace rvtool {
namespace {

void Append(std::vector<RVPOINT>& out, const RVPOINT& p) {
  if (!out.empty() && out.back().x == p.x && out.back().y == p.y) return;
  out.push_back(p);
}

// The polyline of consecutive Bezier points, appended to out.
void AppendCurves(const std::vector<RVBEZIERPOINT>& points, double flatness,
                  std::vector<RVPOINT>& out) {
  if (points.empty()) return;
  if (points.size() == 1) {
    Append(out, points.front().anchor);
    return;
  }
  RVCURVEPOINT* raw = nullptr;
  int32_t count = 0;
  CheckRead(RvMiCurvesToPoints(points.data(), static_cast<int32_t>(points.size()), kMaxChord,
                               flatness, &raw, &count, 1));
  CurvePoints result(raw);
  for (int32_t i = 0; i < count; ++i) Append(out, result.get()[i].point);
}

void AppendBezier(void* component, double flatness, std::vector<RVPOINT>& out) {
  int32_t count = 0;
  CheckRead(RvGiGetPathSegmentCount(component, &count));
  std::vector<RVBEZIERPOINT> points(static_cast<std::size_t>(std::max(count, 0)));
  for (int32_t i = 0; i < count; ++i) CheckRead(RvGiGetBezierPoint(component, i, &points[i]));
  // Handles on their anchors everywhere: each curve is its own chord.
  const bool straight = std::all_of(points.begin(), points.end(), [](const RVBEZIERPOINT& p) {
    return p.in.x == p.anchor.x && p.in.y == p.anchor.y && p.out.x == p.anchor.x && p.out.y == p.anchor.y;
  });
  if (straight) {
    for (const RVBEZIERPOINT& p : points) Append(out, p.anchor);
    return;
  }
  AppendCurves(points, flatness, out);
}

void AppendArc(void* component, double flatness, std::vector<RVPOINT>& out) {
  int32_t count = 0;
  CheckRead(RvGiGetPathSegmentCount(component, &count));
  for (int32_t i = 0; i < count; ++i) {
    RVARCPOINT arc{};
    CheckRead(RvGiGetArcPoint(component, i, &arc));
    RVCURVEPOINT* raw = nullptr;
    int32_t pieces = 0;
    CheckRead(RvMiArcToCurves(&arc, &raw, &pieces));
    CurvePoints result(raw);
    std::vector<RVBEZIERPOINT> points;
    points.reserve(static_cast<std::size_t>(std::max(pieces, 0)));
    for (int32_t k = 0; k < pieces; ++k) points.push_back(result.get()[k].bezier);
    AppendCurves(points, flatness, out);
  }
}

void AppendSpline(void* component, std::vector<RVPOINT>& out) {
  int32_t count = 0;
  CheckRead(RvGiGetPathSegmentCount(component, &count));
  for (int32_t i = 0; i < count; ++i) {
    RVPOINT p{};
    CheckRead(RvGiGetPathSegment(component, i, &p));
    Append(out, p);
  }
}

}  // namespace

void Bounds::Add(const RVPOINT& p) {
  if (empty) {
    left = right = p.x;
    bottom = top = p.y;
    empty = false;
    return;
  }
  left = std::min(left, p.x);
  right = std::max(right, p.x);
  bottom = std::min(bottom, p.y);
  top = std::max(top, p.y);
}

void Bounds::Add(const Bounds& other) {
  if (other.empty) return;
  Add(RVPOINT{other.left, other.bottom});
  Add(RVPOINT{other.right, other.top});
}

Stroke FlattenPath(void* path, double flatness) {
  Stroke stroke;
  int32_t closed = 0;
  CheckRead(RvGiGetPathClosed(path, &closed));
  stroke.closed = closed != 0;
  for (void* component : Components(path)) {
    switch (ArtType(component)) {
      case kTypeBezier:
        AppendBezier(component, flatness, stroke.points);
        break;
      case kTypeArc:
        AppendArc(component, flatness, stroke.points);
        break;
      case kTypeSpline:
        AppendSpline(component, stroke.points);
        break;
      default:
        break;
    }
  }
  RVRIFMATRIX matrix{};
  CheckRead(RvGiGetArtMatrix(path, &matrix));
  int32_t identity = 0;
  CheckRead(RvMiIsMatrixIdentity(&matrix, &identity));
  if (!identity) {
    for (RVPOINT& p : stroke.points) CheckRead(RvMiMatrixCalcPoint(&matrix, &p, &p));
  }
  return stroke;
}

Scene SceneOfActiveDocument(double flatness) {
  Scene scene;
  for (void* layer : Layers()) {
    ForEachPath(layer, [&](void* path) {
      Stroke stroke = FlattenPath(path, flatness);
      if (stroke.points.empty()) return;
      for (const RVPOINT& p : stroke.points) scene.bounds.Add(p);
      scene.strokes.push_back(std::move(stroke));
    });
  }
  return scene;
}

}  // namespace rvtool
