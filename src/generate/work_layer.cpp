#include "generate/work_layer.h"

#include "frame/error_codes.h"
#include "frame/frame.h"
#include "generate/clipper.h"
#include "geometry/affine.h"
#include "geometry/convert_pt.h"
#include "model/data_access.h"
#include "model/refmap.h"

namespace rv {

void ForEachLayerPath(CRvArt* layer, const std::function<void(CRvArt* path)>& visit) {
  if (layer == nullptr) return;
  CRvDataAccess& store = CRvDataAccess::Instance();
  for (CRvArt* art = store.GetArtFirstChild(layer); art != nullptr; art = store.GetArtSibling(art)) {
    const int16_t type = store.GetArtType(art);
    if (type == kArtPath) {
      visit(art);
    } else if (type == kArtCompound) {
      for (CRvArt* path = store.GetArtFirstChild(art); path != nullptr; path = store.GetArtSibling(path)) {
        if (store.GetArtType(path) == kArtPath) visit(path);
      }
    }
  }
}

bool TakesPart(CRvArt* path, bool includeOpen) {
  CRvDataAccess& store = CRvDataAccess::Instance();
  const uint8_t flags = store.GetPathAttrFlag(path);
  if ((flags & kAttrCounted) == 0 || (flags & kAttrExcluded) != 0) return false;
  if (store.GetPathClosed(path) == 0 && !includeOpen) return false;
  CRvArt* first = store.GetArtFirstChild(path);
  return first != nullptr && store.GetArtType(first) == kArtBezier;
}

FlatPath FlattenPath(CRvArt* path, const RVRIFMATRIX& extra) {
  CRvDataAccess& store = CRvDataAccess::Instance();
  CRvArt* bezier = store.GetArtFirstChild(path);
  const int32_t count = store.GetPathSegmentCount(bezier);
  const RVRIFMATRIX own = store.GetArtMatrix(path);
  std::vector<RVBEZIERPOINT> points(std::size_t(count > 0 ? count : 0));
  for (int32_t i = 0; i < count; ++i) {
    RVBEZIERPOINT p = store.GetBezierPoint(bezier, i);
    p.anchor = Apply(extra, Apply(own, p.anchor));
    p.in = Apply(extra, Apply(own, p.in));
    p.out = Apply(extra, Apply(own, p.out));
    RequireFinite({p.anchor.x, p.anchor.y, p.in.x, p.in.y, p.out.x, p.out.y});
    points[std::size_t(i)] = p;
  }
  CRvConvertPt worker;
  worker.m_maxLength = kFlattenMaxLength;
  worker.m_tolerance = kFlattenTolerance;
  worker.m_mode = kFlattenMode;
  FlatPath flat;
  flat.points = worker.CurvesToPoints(points.data(), count);
  flat.closed = store.GetPathClosed(path) != 0;
  for (const RVCURVEPOINT& p : flat.points) {
    CRvClipper::ToGrid(p.point.x);  // raises for a point the grid can't hold
    CRvClipper::ToGrid(p.point.y);
  }
  return flat;
}

RunPlotInfo ReadRunPlotInfo(CRvArt* workLayer) {
  RunPlotInfo info;
  if (workLayer == nullptr) return info;
  CRvDataAccess& store = CRvDataAccess::Instance();
  CRvArt* art = store.GetArtFirstChild(workLayer);
  if (art != nullptr && store.GetArtType(art) == kArtCompound) art = store.GetArtFirstChild(art);
  if (art == nullptr) return info;
  // A path without plot info (a copy made by the router) reads as none.
  const PlotInfo* plot = art->GetPlotInfo();
  if (plot == nullptr) return info;
  info.number = plot->plotValue;
  info.text = plot->plotText;
  return info;
}

CRvArt* FindOrCreateLayer(const std::string& name) {
  CRvDataAccess& store = CRvDataAccess::Instance();
  if (CRvArt* layer = store.GetLayerFromName(name)) return layer;
  CRvLayer* layer = store.CreateLayer(0, nullptr);
  store.SetLayerName(layer, name);
  return layer;
}

int16_t HatchingPlotMap() {
  RefMapStore& maps = RefMapStore::Instance();
  const int16_t map = MapIndex(maps.hatchingPlotIndex);
  if (map < 0 || std::size_t(map) >= maps.TableCount()) Raise(kErrGenerateNoMap);
  return map;
}

void RequireDocument(int16_t document) {
  const CRvDataAccess& store = CRvDataAccess::Instance();
  if (document < 0 || std::size_t(document) >= store.m_documents.size() ||
      store.m_documents[std::size_t(document)] == nullptr) {
    Raise(kErrNoDocument);
  }
}

void RequireFinite(std::initializer_list<double> values) {
  for (double v : values) {
    if (!std::isfinite(v)) Raise(kErrClipCoordinate);
  }
}

void RequireFinite(const RVRIFMATRIX& m) { RequireFinite({m.a, m.b, m.c, m.d, m.tx, m.ty}); }

CRvArt* CopyPathDeep(CRvArt* parent, CRvArt* source) {
  CRvDataAccess& store = CRvDataAccess::Instance();
  CRvArt* copy = store.CopyArt(kArtPath, kLastChild, parent, source);
  store.SetPathClosed(copy, store.GetPathClosed(source));
  store.SetPathProp(copy, store.GetPathAttrFlag(source));
  for (CRvArt* part = store.GetArtFirstChild(source); part != nullptr; part = store.GetArtSibling(part)) {
    const int16_t type = store.GetArtType(part);
    if (type == kArtBezier) {
      store.CopyArt(kArtBezier, kLastChild, copy, part);
    } else if (type == kArtArc || type == kArtSpline) {
      store.CopyPath(part, kLastChild, copy);
    }
  }
  return copy;
}

}  // namespace rv
