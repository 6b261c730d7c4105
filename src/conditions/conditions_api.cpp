// The exported condition functions: frames round CRvCutCdnMng.
#include <string>

#include "conditions/cut_cdn_mng.h"
#include "frame/error_codes.h"
#include "frame/frame.h"

namespace {

using rv::CRvCutCdnMng;

const uint32_t kNotInTable = rv::kErrNullArt;

rv::CRvCutCdnMng& Manager() { return CRvCutCdnMng::Instance(); }

/// A media argument: a null one names no media.
std::string MediaName(const char* media) {
  if (media == nullptr) rv::Raise(kNotInTable);
  return std::string(media);
}

/// A pair argument: one without a record is refused.
const CondPair& PairArg(const CondPair* pair) {
  if (pair == nullptr || pair->record == nullptr) rv::Raise(kNotInTable);
  return *pair;
}

/// The host's trace callback as a visitor of the table; it gets a copy of each pair.
CRvCutCdnMng::PassVisitor CallBack(void* ctx, RvCutConditionTraceFunc callback) {
  return [ctx, callback](const std::string& name, const CondPair& pair) {
    const CondPair copy = pair;
    return uint32_t(callback(ctx, name.c_str(), &copy));
  };
}

std::string PathOf(const char* path) { return path != nullptr ? std::string(path) : std::string(); }

}  // namespace

extern "C" {

RV_API uint32_t RvAddCutCondition(const char* media, int32_t repeatIndex, const CondPair* pair) {
  return rv::Guard([&] { rv::Check(Manager().AddCondition(MediaName(media), repeatIndex, PairArg(pair))); });
}

RV_API uint32_t RvInsertCutCondition(const char* media, int32_t position, const CondPair* pair) {
  return rv::Guard([&] { rv::Check(Manager().InsertCondition(MediaName(media), position, PairArg(pair))); });
}

RV_API uint32_t RvCLSetCutCondition(const char* media, const CLCondition* records, int32_t count) {
  return rv::Guard([&] { rv::Check(Manager().CLSetCondition(MediaName(media), records, count)); });
}

RV_API uint32_t RvDeleteCutCondition(const char* media, int32_t index) {
  return rv::Guard([&] { rv::Check(Manager().DeleteCondition(MediaName(media), index)); });
}

RV_API uint32_t RvDeleteCutConditionByMedia(const char* media) {
  return rv::Guard([&] {
    if (media == nullptr) return;
    rv::Check(Manager().DeleteMedia(media));
  });
}

RV_API uint32_t RvDeleteAllCutCondition(void) {
  return rv::Guard([&] { rv::Check(Manager().DeleteAll()); });
}

RV_API uint32_t RvCutConditionTrace(void* ctx, RvCutConditionTraceFunc callback) {
  return rv::Guard([&] {
    if (callback == nullptr) return;
    rv::Check(Manager().Trace(CallBack(ctx, callback)));
  });
}

RV_API uint32_t RvCutConditionTraceByKey(const char* media, void* ctx, RvCutConditionTraceFunc callback) {
  return rv::Guard([&] {
    if (media == nullptr || callback == nullptr) return;
    rv::Check(Manager().TraceByKey(media, CallBack(ctx, callback)));
  });
}

RV_API uint32_t RvGetMediaNameTrace(void* ctx, RvMediaNameTraceFunc callback) {
  return rv::Guard([&] {
    if (callback == nullptr) return;
    rv::Check(Manager().TraceNames([&](const std::string& name) { return uint32_t(callback(ctx, name.c_str())); }));
  });
}

RV_API uint32_t RvGetCutConditionByKeyAtRepeat(const char* media, int32_t repeat, CondPair* pair) {
  return rv::Guard([&] {
    if (media == nullptr) return;
    if (pair == nullptr) rv::Raise(kNotInTable);
    rv::Check(Manager().GetConditionAtRepeat(media, repeat, *pair));
  });
}

RV_API int32_t RvGetRepeatCount(const char* media) {
  return media == nullptr ? 0 : Manager().GetRepeatCount(media);
}

RV_API uint32_t RvSortCondition(void) {
  return rv::Guard([&] { rv::Check(Manager().SortMedia()); });
}

RV_API uint32_t RvLoadCutCondition(uint16_t machineType, const char* path) {
  return rv::Guard([&] { rv::Check(Manager().Load(machineType, PathOf(path))); });
}

RV_API uint32_t RvImportCutCondition(const char* path) {
  return rv::Guard([&] { rv::Check(Manager().Import(PathOf(path))); });
}

RV_API uint32_t RvSaveCutCondition(const char* path) {
  return rv::Guard([&] { rv::Check(Manager().Save(PathOf(path))); });
}

RV_API uint32_t RvLoadFromCSV(uint16_t machineType, const char* csvPath, const char* xmlPath) {
  return rv::Guard([&] { rv::Check(Manager().LoadFromCSV(machineType, PathOf(csvPath), PathOf(xmlPath))); });
}

RV_API uint32_t RvReadFavoriteFile(uint16_t machineType, const char* path, FavoriteEntry* colorTools,
                                   FavoriteEntry* colorMedias, FavoriteEntry* layerTools,
                                   FavoriteEntry* layerMedias) {
  return rv::Guard([&] {
    if (path == nullptr) return;
    FavoriteEntry* lists[4] = {colorTools, colorMedias, layerTools, layerMedias};
    rv::Check(Manager().ReadFavorites(machineType, path, lists));
  });
}

RV_API uint32_t RvWriteFavoriteFile(uint16_t machineType, const char* path, const FavoriteEntry* colorTools,
                                    const FavoriteEntry* colorMedias, const FavoriteEntry* layerTools,
                                    const FavoriteEntry* layerMedias) {
  return rv::Guard([&] {
    const FavoriteEntry* const lists[4] = {colorTools, colorMedias, layerTools, layerMedias};
    rv::Check(Manager().WriteFavorites(machineType, PathOf(path), lists));
  });
}

}  // extern "C"
