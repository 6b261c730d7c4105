#include "router.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "drawing.h"
#include "failure.h"
#include "geometry.h"

namespace rvtool {
std::vector<RVTILE> FileTiles(const std::vector<FiledKey>& groups, int16_t map, int count) {
  const std::string operation = "filing the tiles";
  Bounds all;
  std::vector<std::pair<void*, RVPOINT>> centres;
  for (const FiledKey& group : groups) {
    for (void* path : group.paths) {
      RVRECT r{};
      Check(RvGiGetArtBounds(path, &r), operation, "");
      const RVPOINT centre{(r.left + r.right) / 2, (r.top + r.bottom) / 2};
      all.Add(RVPOINT{std::fmin(r.left, r.right), std::fmin(r.top, r.bottom)});
      all.Add(RVPOINT{std::fmax(r.left, r.right), std::fmax(r.top, r.bottom)});
      centres.emplace_back(path, centre);
    }
  }
  std::vector<RVTILE> tiles(static_cast<std::size_t>(count));
  const double height = all.height() / count;
  for (int i = 0; i < count; ++i) {
    RVTILE& t = tiles[static_cast<std::size_t>(i)];
    std::memset(&t, 0, sizeof t);
    t.number = i + 1;
    t.rects[0] = RVRECT{all.bottom + height * (i + 1), all.left, all.right, all.bottom + height * i};
  }
  int16_t tileMap = -1;
  Check(RvGiCreateRefMapTable(&tileMap), operation, "");
  // A key's arts stand newest first: file backwards to cut in drawing order.
  for (auto it = centres.rbegin(); it != centres.rend(); ++it) {
    int strip = height > 0 ? static_cast<int>((it->second.y - all.bottom) / height) : 0;
    strip = std::min(std::max(strip, 0), count - 1);
    const std::string key = kTilePrefix + std::to_string(strip + 1);
    Check(RvGiAddRefMapData(map, key.c_str(), kOutputInfo, it->first), operation, "");
    Check(RvGiAddRefMapData(tileMap, key.c_str(), kOutputInfo, it->first), operation, "");
  }
  RvGiSetRefMapTileIndex(tileMap);
  if (RvGiRegistTileCutOrder(kTilePrefix, count) != 0) throw Failure("the tile table can't be ordered", 70);
  return tiles;
}

namespace {

// The layers through which the hatching generator's frame step makes the
// offsets (kWorkLayer and kFrameLayer): a work layer that holds one copy of
// the art at a time, and the frame layer that receives each offset as its
// first child.
constexpr int16_t kLayerAtEnd = 1;
constexpr int32_t kFrameOnly = 2;      // RVHATCHINGINFO.generate: the frame alone
constexpr uint8_t kAttrCounted = 2;    // the generators take paths with this bit
constexpr uint8_t kAttrExcluded = 16;  // and without this one

void* LayerNamed(const char* name) {
  void* layer = nullptr;
  RvGiGetLayerFromName(&layer, name);
  return layer;
}

// A copy of the path `art` with its components as the last child of `layer`.
uint32_t CopyPathInto(void* art, void* layer, void** copy) {
  uint32_t code = RvGiCopyPath(art, kLastChild, layer, copy);
  void* component = nullptr;
  if (code == 0) code = RvGiGetArtFirstChild(art, &component);
  while (code == 0 && component != nullptr) {
    void* part = nullptr;
    code = RvGiCopyPath(component, kLastChild, *copy, &part);
    if (code == 0) code = RvGiGetArtSibling(component, &component);
  }
  uint8_t flags = 0;
  if (code == 0) code = RvGiGetPathAttrFlag(*copy, &flags);
  if (code == 0) code = RvGiSetPathAttrFlag(*copy, uint8_t((flags | kAttrCounted) & ~kAttrExcluded));
  return code;
}

}  // namespace

OffsetMaker::OffsetMaker(int16_t document) : m_document(document) {
  for (const char* name : {kWorkLayer, kFrameLayer}) {
    if (LayerNamed(name) != nullptr) continue;
    void* layer = nullptr;
    Check(RvGiCreateLayer(kLayerAtEnd, nullptr, &layer), "making the offset layers", "");
    Check(RvGiSetLayerName(layer, name), "making the offset layers", "");
  }
  Check(RvGiCreateRefMapTable(&m_table), "making the offset layers", "");
}

uint32_t OffsetMaker::Make(void* user, void* art, double offset, void** result) {
  if (offset == 0.0) {
    *result = art;
    return 0;
  }
  auto& maker = *static_cast<OffsetMaker*>(user);
  int16_t type = -1;
  uint32_t code = RvGiGetArtType(art, &type);
  if (code != 0) return code;
  if (type != kTypePath) return type == kTypeCompound ? 0x05000E01u : 0x06001001u;
  void* copy = nullptr;
  code = CopyPathInto(art, LayerNamed(kWorkLayer), &copy);
  // The frame step files its result in the table of hatching plots: a table
  // of the tool's own, so that the job's tables stay as they are.
  const int16_t hatchingTable = RvGiGetRefMapHatchingPlotIndex();
  RvGiSetRefMapHatchingPlotIndex(maker.m_table);
  RVHATCHINGINFO info{};
  RvInitializeHatchingInfo(&info);
  info.generate = kFrameOnly;
  info.frameOffset = offset;
  int16_t document = maker.m_document;
  if (code == 0) code = RvCreateHatching(&document, &info);
  RvGiSetRefMapHatchingPlotIndex(hatchingTable);
  if (copy != nullptr) RvGiDeleteArt(&copy);  // unlinked: the work layer is empty again
  if (code == 0) code = RvGiGetArtFirstChild(LayerNamed(kFrameLayer), result);
  return code == 0 && *result == nullptr ? 0x06001001u : code;
}

}  // namespace rvtool
