#include "model/one_bezier.h"

#include "geometry/convert_pt.h"
#include "model/data_access.h"

namespace rv {

CRvArt* JoinComponentsIntoBezier(CRvDataAccess& store, CRvArt* copy, const CRvArt* source) {
  const int32_t closed = store.GetPathClosed(source);
  CRvArt* output = nullptr;
  for (CRvArt* child = store.GetArtFirstChild(source); child != nullptr; child = store.GetArtSibling(child)) {
    const int16_t type = child->GetType();
    if (type == kArtBezier) {
      const auto* bezier = static_cast<const CRvBezier*>(child);
      if (output == nullptr) {
        output = store.CopyArt(kArtBezier, kLastChild, copy, child);
        store.SetPathClosed(output, closed);
        continue;
      }
      for (int32_t i = 0; i < bezier->GetPointCount(); ++i) store.AddBezierPoint(output, bezier->GetPoint(i));
    } else if (type == kArtArc) {
      if (output == nullptr) {
        output = store.CreateArt(kArtBezier, kLastChild, copy);
        store.SetPathClosed(output, closed);
      }
      const auto* arc = static_cast<const CRvArc*>(child);
      for (int32_t i = 0; i < arc->GetPointCount(); ++i) {
        const CurveList pieces = CRvConvertPt().ArcToCurves(arc->GetPoint(i));
        for (const RVCURVEPOINT& record : pieces) store.AddBezierPoint(output, record.bezier);
      }
    }
  }
  return output;
}

CRvArt* CopyPathShell(CRvDataAccess& store, CRvArt* parent, const CRvArt* source) {
  CRvArt* copy = store.CopyArt(kArtPath, kLastChild, parent, source);
  store.SetPathClosed(copy, store.GetPathClosed(source));
  store.SetPathProp(copy, store.GetPathAttrFlag(source));
  return copy;
}

}  // namespace rv
