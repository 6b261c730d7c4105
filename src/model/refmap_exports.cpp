// Exported RefMap table functions.
#include <cstring>
#include <stdexcept>

#include "frame/frame.h"
#include "model/refmap.h"

namespace {

using rv::RefMapStore;

std::string Text(const char* s) { return s != nullptr ? std::string(s) : std::string(); }

rv::RefMapVisitor Plain(void* context, RvRefMapTraceFunc callback) {
  return [context, callback](rv::CRvArt* art, void*) { return callback != nullptr ? callback(context, art) : 0u; };
}

void SetUserInfo(rv::RefMapEntry& entry, int16_t type, void* data) {
  entry.userInfoType = type;
  if (type != 1) return;
  if (data == nullptr) {
    entry.userInfo = nullptr;
    return;
  }
  const char* text = static_cast<const char*>(data);
  const std::size_t size = std::strlen(text) + 1;
  auto copy = std::make_unique<char[]>(size);
  std::memcpy(copy.get(), text, size);
  entry.userInfo = copy.get();
  entry.texts.push_back(std::move(copy));
}

}  // namespace

extern "C" {

RV_API uint32_t RvGiCreateRefMapTable(int16_t* map) {
  return rv::Guard([&] {
    const int16_t index = RefMapStore::Instance().CreateTable();
    if (map != nullptr) *map = index;
  });
}

RV_API uint32_t RvGiDeleteRefMapTable(void) {
  return rv::Guard([] { RefMapStore::Instance().DeleteAll(); });
}

RV_API uint32_t RvGiDeleteSpecificRefMapTable(int16_t map) {
  return rv::Guard([&] { RefMapStore::Instance().DeleteTable(map); });
}

RV_API uint32_t RvGiAddRefMapData(int16_t map, const char* key, uint8_t info, void* art) {
  return rv::Guard([&] { RefMapStore::Instance().Table(map).Add(Text(key), info, rv::ArtOf(art)); });
}

RV_API uint32_t RvGiSetRefMapInfo(int16_t map, const char* key, uint8_t info) {
  return rv::Guard([&] {
    if (rv::RefMapEntry* entry = RefMapStore::Instance().Table(map).Find(Text(key))) entry->info = info;
  });
}

RV_API uint32_t RvGiFindRefMapInfo(int16_t map, const char* key, uint8_t* info) {
  return rv::Guard([&] {
    rv::RefMapEntry* entry = RefMapStore::Instance().Table(map).Find(Text(key));
    if (info != nullptr) *info = entry != nullptr ? entry->info : 0;
  });
}

RV_API uint32_t RvGiSetRefMapUserInfo(int16_t map, const char* key, int16_t type, void* data) {
  return rv::Guard([&] {
    if (rv::RefMapEntry* entry = RefMapStore::Instance().Table(map).Find(Text(key))) SetUserInfo(*entry, type, data);
  });
}

RV_API uint32_t RvGiSetAllRefMapUserInfo(int16_t map, int16_t type, void* data) {
  return rv::Guard([&] {
    for (auto& [key, entry] : RefMapStore::Instance().Table(map).entries) SetUserInfo(*entry, type, data);
  });
}

RV_API uint32_t RvGiGetRefMapUserInfo(int16_t map, const char* key, uint64_t* value) {
  return rv::Guard([&] {
    rv::RefMapEntry* entry = RefMapStore::Instance().Table(map).Find(Text(key));
    if (value != nullptr) *value = entry != nullptr ? uint64_t(reinterpret_cast<uintptr_t>(entry->userInfo)) : 0;
  });
}

RV_API int32_t RvGiGetRefMapArtCount(int16_t map) {
  return int32_t(RefMapStore::Instance().Table(map).entries.size());
}

RV_API void RvGiGetInfoAtCutOrder(int16_t map, int16_t order, char* key, char* userInfo) {
  rv::RefMapTable& table = RefMapStore::Instance().Table(map);
  if (order < 0 || std::size_t(order) >= table.cutOrder.size()) throw std::out_of_range("invalid deque<T> subscript");
  const auto& pos = table.cutOrder[std::size_t(order)];
  if (key != nullptr) std::memcpy(key, pos->first.c_str(), pos->first.size() + 1);
  const void* text = pos->second->userInfo;
  if (text != nullptr && userInfo != nullptr) std::strcpy(userInfo, static_cast<const char*>(text));
}

RV_API int32_t RvGiChangeCutOrder(int16_t map, const char* key, int32_t position) {
  return RefMapStore::Instance().Table(map).ChangeCutOrder(Text(key), position) ? 0 : -1;
}

RV_API int32_t RvGiRegistTileCutOrder(const char* prefix, int32_t count) {
  RefMapStore& store = RefMapStore::Instance();
  if (store.tileIndex == rv::kNoRefMap) return -1;
  store.Table(rv::MapIndex(store.tileIndex)).RegistTileOrder(Text(prefix), count);
  return 0;
}

RV_API void RvGiInitializeCutOrder(void) { RefMapStore::Instance().InitializeCutOrder(); }

RV_API void RvGiReverseRefMapCurOrder(int16_t map) { RefMapStore::Instance().Table(map).Reverse(); }

// ---------------------------------------------------------------- traces

RV_API uint32_t RvGiRefMapTableTrace(int16_t map, uint8_t mask, void* context, RvRefMapTraceFunc callback,
                                     int32_t drill) {
  return rv::Guard([&] { RefMapStore::Instance().Trace(map, mask, drill != 0, Plain(context, callback)); });
}

RV_API uint32_t RvGiRefMapTableTraceWithInfo(int16_t map, uint8_t mask, void* context,
                                             RvRefMapTraceInfoFunc callback, int32_t drill) {
  return rv::Guard([&] {
    RefMapStore::Instance().Trace(map, mask, drill != 0, [&](rv::CRvArt* art, void* userInfo) {
      return callback != nullptr ? callback(context, art, userInfo) : 0u;
    });
  });
}

RV_API uint32_t RvGiRefMapTablePathTrace(int16_t map, uint8_t mask, void* context, RvRefMapTraceFunc callback) {
  return rv::Guard([&] { RefMapStore::Instance().PathTrace(map, mask, Plain(context, callback)); });
}

RV_API uint32_t RvGiRefMapTableMatchTrace(int16_t map, const char* key, uint8_t mask, void* context,
                                          RvRefMapTraceFunc callback, int32_t drill) {
  return rv::Guard(
      [&] { RefMapStore::Instance().MatchTrace(map, Text(key), mask, drill != 0, Plain(context, callback)); });
}

RV_API uint32_t RvGiRefMapTableOrderTrace(int16_t map, uint8_t mask, int16_t* state, void* context,
                                          RvRefMapTraceFunc callback, int32_t drill) {
  int16_t start = 0;
  int16_t& step = state != nullptr ? *state : start;
  return rv::Guard(
      [&] { RefMapStore::Instance().OrderTrace(map, mask, step, drill != 0, Plain(context, callback)); });
}

RV_API uint32_t RvGiRefMapTableUniqTrace(int16_t map, void* context, RvRefMapTraceFunc callback) {
  return rv::Guard([&] { RefMapStore::Instance().UniqTrace(map, Plain(context, callback)); });
}

// ---------------------------------------------------------------- remembered indexes

#define RV_REFMAP_SETTER(name, field)             \
  RV_API uint32_t name(int16_t map) {             \
    RefMapStore::Instance().field = uint16_t(map); \
    return 0;                                     \
  }

RV_REFMAP_SETTER(RvGiSetRefMapIndex, refMapIndex)
RV_REFMAP_SETTER(RvGiSetRefMapLayerIndex, layerIndex)
RV_REFMAP_SETTER(RvGiSetRefMapColorIndex, colorIndex)
RV_REFMAP_SETTER(RvGiSetRefMapTileIndex, tileIndex)
RV_REFMAP_SETTER(RvGiSetRefMapRouterOffsetSIndex, routerOffsetSIndex)
RV_REFMAP_SETTER(RvGiSetRefMapRouterOffsetEIndex, routerOffsetEIndex)
RV_REFMAP_SETTER(RvGiSetRefMapRouterPlotIndex, routerPlotIndex)
RV_REFMAP_SETTER(RvGiSetRefMapPlotConditionIndex, plotConditionIndex)
RV_REFMAP_SETTER(RvGiSetRefMapHatchingSIndex, hatchingSIndex)
RV_REFMAP_SETTER(RvGiSetRefMapHatchingEIndex, hatchingEIndex)
RV_REFMAP_SETTER(RvGiSetRefMapHatchingPlotIndex, hatchingPlotIndex)

#undef RV_REFMAP_SETTER

RV_API int16_t RvGiGetRefMapHatchingPlotIndex(void) {
  return rv::MapIndex(RefMapStore::Instance().hatchingPlotIndex);
}

RV_API int16_t RvGiGetRefMapPlotConditionIndex(void) {
  return rv::MapIndex(RefMapStore::Instance().plotConditionIndex);
}

RV_API int16_t RvGiGetRefMapRouterPlotIndex(void) { return rv::MapIndex(RefMapStore::Instance().routerPlotIndex); }

}  // extern "C"
