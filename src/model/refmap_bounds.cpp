// RefMap operations that read the drawing: bounds of many arts, and the
// register-mark check.
#include "frame/error_codes.h"
#include "frame/frame.h"
#include "model/data_access.h"
#include "model/refmap.h"

namespace rv {

namespace {

// Union of art bounds: the first box is copied, later ones widen it (the
// boxes come as RvGiGetArtBounds maps them, top the larger y).
class BoundsUnion {
 public:
  void Add(const RVRECT& r) {
    if (!m_any) {
      m_rect = r;
      m_any = true;
      return;
    }
    if (r.left < m_rect.left) m_rect.left = r.left;
    if (r.top > m_rect.top) m_rect.top = r.top;
    if (r.right > m_rect.right) m_rect.right = r.right;
    if (r.bottom < m_rect.bottom) m_rect.bottom = r.bottom;
  }
  const RVRECT& rect() const { return m_rect; }

 private:
  RVRECT m_rect{0.0, 0.0, 0.0, 0.0};
  bool m_any = false;
};

void RequireLayer(CRvDataAccess& drawing) {
  if (drawing.GetLayerCount() <= 0) Raise(kErrNoLayer);
}

}  // namespace

RVRECT ArtsBoundsByFlag(uint8_t mask, int32_t mode) {
  CRvDataAccess& drawing = CRvDataAccess::Instance();
  RequireLayer(drawing);
  RefMapStore& store = RefMapStore::Instance();
  BoundsUnion all;
  store.Trace(MapIndex(store.refMapIndex), mask, false, [&](CRvArt* art, void*) {
    const uint8_t flags = drawing.GetPathAttrFlag(art);
    const bool counted = (flags & kAttrCounted) != 0 && (mode != 0 || (flags & kAttrExcluded) == 0);
    if (counted) all.Add(drawing.GetArtBounds(art));
    return 0u;
  });
  return all.rect();
}

RVRECT ArtsBoundsByKey(const std::string& key) {
  CRvDataAccess& drawing = CRvDataAccess::Instance();
  RequireLayer(drawing);
  RefMapStore& store = RefMapStore::Instance();
  BoundsUnion all;
  store.MatchTrace(MapIndex(store.refMapIndex), key, kRefMapOutput, true, [&](CRvArt* art, void*) {
    if ((drawing.GetPathAttrFlag(art) & kAttrCounted) != 0) all.Add(drawing.GetArtBounds(art));
    return 0u;
  });
  return all.rect();
}

void CheckTombo(int16_t map) {
  CRvDataAccess& drawing = CRvDataAccess::Instance();
  RefMapStore::Instance().Trace(map, kRefMapOutput, true, [&](CRvArt* path, void*) -> uint32_t {
    const uint32_t notTombo = 0xFFFFFFFFu;
    if (drawing.GetPathClosed(path) != 0) return notTombo;
    CRvArt* parent = drawing.GetArtParent(path);
    if (parent == nullptr || drawing.GetArtType(parent) != kArtGroup) return notTombo;
    RVCOLOR fill{};
    if (drawing.GetPathColor(1, path, fill)) return notTombo;
    if (drawing.GetPathSegmentCount(path) != 3) return notTombo;
    return 0;
  });
}

}  // namespace rv

extern "C" {

RV_API uint32_t RvGiGetArtsBoundsByFlag(RVRECT* rect, uint8_t mask, int32_t mode) {
  return rv::Guard([&] {
    const RVRECT bounds = rv::ArtsBoundsByFlag(mask, mode);
    if (rect != nullptr) *rect = bounds;
  });
}

RV_API uint32_t RvGiGetArtsBoundsByKey(RVRECT* rect, const char* key) {
  return rv::Guard([&] {
    const RVRECT bounds = rv::ArtsBoundsByKey(key != nullptr ? key : "");
    if (rect != nullptr) *rect = bounds;
  });
}

RV_API uint32_t RvGiCheckTombo(int16_t map) {
  return rv::Guard([&] { rv::CheckTombo(map); });
}

}  // extern "C"
