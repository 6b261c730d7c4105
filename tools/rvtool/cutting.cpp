#include "cutting.h"

#include <vector>

#include "drawing.h"
#include "failure.h"
#include "rvdataaccess.h"

namespace rvtool {
namespace {

constexpr int16_t kFirstChild = 4;
// Arc pieces come with coordinates rounded to 0.001: a joint that close is one point.
constexpr double kJointTolerance = 0.001;

const char* const kPreparing = "preparing the paths for the cutter";

void Append(std::vector<RVBEZIERPOINT>& out, const RVBEZIERPOINT& p) {
  if (!out.empty() && RvMiPointEqual(&out.back().anchor, &p.anchor, kJointTolerance)) {
    out.back().out = p.out;
    return;
  }
  out.push_back(p);
}

RVBEZIERPOINT Corner(const RVPOINT& p) {
  RVBEZIERPOINT record{};
  record.anchor = record.in = record.out = p;
  return record;
}

void AppendComponent(void* component, std::vector<RVBEZIERPOINT>& out) {
  int32_t count = 0;
  Check(RvGiGetPathSegmentCount(component, &count), kPreparing, "");
  const int16_t type = ArtType(component);
  for (int32_t i = 0; i < count; ++i) {
    if (type == kTypeBezier) {
      RVBEZIERPOINT p{};
      Check(RvGiGetBezierPoint(component, i, &p), kPreparing, "");
      p.flags = 0;
      Append(out, p);
    } else if (type == kTypeArc) {
      RVARCPOINT arc{};
      Check(RvGiGetArcPoint(component, i, &arc), kPreparing, "");
      RVCURVEPOINT* raw = nullptr;
      int32_t pieces = 0;
      Check(RvMiArcToCurves(&arc, &raw, &pieces), kPreparing, "");
      CurvePoints records(raw);
      for (int32_t k = 0; k < pieces; ++k) Append(out, records.get()[k].bezier);
    } else if (type == kTypeSpline) {
      RVPOINT p{};
      Check(RvGiGetPathSegment(component, i, &p), kPreparing, "");
      Append(out, Corner(p));
    }
  }
}

}  // namespace

bool PrepareForCutting(void* path) {
  const std::vector<void*> components = Components(path);
  if (components.size() == 1 && ArtType(components.front()) == kTypeBezier) return false;
  std::vector<RVBEZIERPOINT> points;
  for (void* component : components) AppendComponent(component, points);
  if (points.empty()) return false;

  void* bezier = nullptr;
  Check(RvGiCreateArt(kTypeBezier, kFirstChild, path, &bezier), kPreparing, "");
  for (const RVBEZIERPOINT& p : points) Check(RvGiAddBezierPoint(bezier, &p), kPreparing, "");
  for (void* component : components) Check(RvGiDeleteArt(&component), kPreparing, "");
  return true;
}

long PrepareAllForCutting() {
  long changed = 0;
  for (void* layer : Layers()) {
    ForEachPath(layer, [&](void* path) { changed += PrepareForCutting(path) ? 1 : 0; });
  }
  return changed;
}

}  // namespace rvtool
