// Exported functions of the layer and path commands.
#include "frame/error_codes.h"
#include "frame/frame.h"
#include "model/export_util.h"

using namespace rv;

extern "C" {

// ---------------------------------------------------------------- layers

RV_API uint32_t RvGiCreateLayer(int16_t where, void* reference, void** layer) {
  Put(layer, nullptr);
  return Guard([&] { Put(layer, Handle(Store().CreateLayer(where, ArtOf(reference)))); });
}

RV_API uint32_t RvGiDeleteLayer(void* layer) {
  return Guard([&] { Store().DeleteLayer(ArtOf(layer)); });
}

RV_API uint32_t RvGiGetLayer(void** layer, int16_t index) {
  return Guard([&] { Put(layer, Handle(Store().GetLayer(index))); });
}

RV_API uint32_t RvGiGetLayerCount(int16_t* count) {
  return Guard([&] { Put(count, Store().GetLayerCount()); });
}

RV_API uint32_t RvGiGetLayerFromName(void** layer, const char* name) {
  return Guard([&] { Put(layer, Handle(Store().GetLayerFromName(Text(name)))); });
}

RV_API uint32_t RvGiGetLayerName(void* layer, char* name) {
  return Guard([&] { PutText(name, Store().GetLayerName(ArtOf(layer))); });
}

RV_API uint32_t RvGiSetLayerName(void* layer, const char* name) {
  return Guard([&] { Store().SetLayerName(ArtOf(layer), Text(name)); });
}

RV_API uint32_t RvGiGetLayerColor(void* layer, RVCOLOR* color, int32_t* found) {
  return Guard([&] {
    RVCOLOR out{};
    if (color != nullptr) out = *color;
    const bool got = Store().GetLayerColor(ArtOf(layer), out);
    Put(color, out);
    Put(found, got ? 1 : 0);
  });
}

RV_API uint32_t RvGiGetLayerColorName(void* layer, char* name) {
  return Guard([&] { PutText(name, Store().GetLayerColorName(ArtOf(layer))); });
}

RV_API uint32_t RvGiSetLayerColor(void* layer, const RVCOLOR* color, const char* name) {
  return Guard([&] { Store().SetLayerColor(ArtOf(layer), NeedRecord(color, kErrNullLayer), Text(name)); });
}

// ---------------------------------------------------------------- points and segments

RV_API uint32_t RvGiCopyPath(void* source, int16_t position, void* reference, void** art) {
  Put(art, nullptr);
  return Guard([&] { Put(art, Handle(Store().CopyPath(ArtOf(source), position, ArtOf(reference)))); });
}

RV_API uint32_t RvGiGetPathSegmentCount(void* art, int32_t* count) {
  return Guard([&] { Put(count, Store().GetPathSegmentCount(ArtOf(art))); });
}

RV_API uint32_t RvGiGetPathSegment(void* art, int32_t index, void* point) {
  return Guard([&] { Store().GetPathSegment(ArtOf(art), index, point); });
}

RV_API uint32_t RvGiGetBezierPoint(void* art, int32_t index, RVBEZIERPOINT* point) {
  return Guard([&] { Put(point, Store().GetBezierPoint(ArtOf(art), index)); });
}

RV_API uint32_t RvGiGetArcPoint(void* art, int32_t index, RVARCPOINT* point) {
  return Guard([&] { Put(point, Store().GetArcPoint(ArtOf(art), index)); });
}

RV_API uint32_t RvGiInsertBezierPoint(void* art, int32_t index, const RVBEZIERPOINT* point) {
  return Guard([&] { Store().InsertBezierPoint(ArtOf(art), index, NeedRecord(point, kErrNullPath)); });
}

RV_API uint32_t RvGiAddBezierPoint(void* art, const RVBEZIERPOINT* point) {
  return Guard([&] { Store().AddBezierPoint(ArtOf(art), NeedRecord(point, kErrNullPath)); });
}

RV_API uint32_t RvGiReplaceBezierPoint(void* art, int32_t index, const RVBEZIERPOINT* point) {
  return Guard([&] { Store().ReplaceBezierPoint(ArtOf(art), index, NeedRecord(point, kErrNullPath)); });
}

RV_API uint32_t RvGiReverseBezierPoint(void* art) {
  return Guard([&] { Store().ReverseBezierPoint(ArtOf(art)); });
}

RV_API uint32_t RvGiSortBezierPoint(void* art, int32_t index, int32_t closed) {
  return Guard([&] { Store().SortBezierPoint(ArtOf(art), index, closed); });
}

RV_API uint32_t RvGiSetBezierStartInPoint(void* art, const RVPOINT* point) {
  return Guard([&] { Store().SetBezierStartInPoint(ArtOf(art), NeedRecord(point, kErrNullPath)); });
}

// ---------------------------------------------------------------- path flags

RV_API uint32_t RvGiGetPathClockWise(void* art, int32_t* clockwise) {
  return Guard([&] { Put(clockwise, Store().GetPathClockWise(ArtOf(art))); });
}

RV_API uint32_t RvGiSetPathClockWise(void* art, int32_t clockwise) {
  return Guard([&] { Store().SetPathClockWise(ArtOf(art), clockwise); });
}

RV_API uint32_t RvGiGetPathClosed(void* art, int32_t* closed) {
  return Guard([&] { Put(closed, Store().GetPathClosed(ArtOf(art))); });
}

RV_API uint32_t RvGiSetPathClosed(void* art, int32_t closed) {
  return Guard([&] { Store().SetPathClosed(ArtOf(art), closed); });
}

RV_API uint32_t RvGiGetSelect(void* art, int32_t* selected) {
  return Guard([&] {
    int32_t value = selected == nullptr ? 0 : *selected;
    Store().GetSelect(ArtOf(art), value);
    Put(selected, value);
  });
}

RV_API uint32_t RvGiSetSelect(void* art, int32_t selected) {
  return Guard([&] { Store().SetSelect(ArtOf(art), selected); });
}

// ---------------------------------------------------------------- attribute word and plot info

RV_API uint32_t RvGiGetPathAttrFlag(void* art, uint8_t* flags) {
  return Guard([&] { Put(flags, Store().GetPathAttrFlag(ArtOf(art))); });
}

RV_API uint32_t RvGiSetPathAttrFlag(void* art, uint8_t flags) {
  return Guard([&] { Store().SetPathAttrFlag(ArtOf(art), flags); });
}

RV_API uint32_t RvGiSetPathProp(void* art, int16_t value) {
  return Guard([&] { Store().SetPathProp(ArtOf(art), value); });
}

RV_API uint32_t RvGiGetPathStartSegment(void* art, int16_t* segment) {
  return Guard([&] { Put(segment, Store().GetPathStartSegment(ArtOf(art))); });
}

RV_API uint32_t RvGiSetPathStartSegment(void* art, int16_t segment) {
  return Guard([&] { Store().SetPathStartSegment(ArtOf(art), segment); });
}

RV_API uint32_t RvGiGetPathPatternID(void* art, int32_t* id) {
  return Guard([&] { Put(id, Store().GetPathPatternID(ArtOf(art))); });
}

RV_API uint32_t RvGiSetPathPatternID(void* art, int32_t id) {
  return Guard([&] { Store().SetPathPatternID(ArtOf(art), id); });
}

RV_API uint32_t RvGiGetPathPlotInfo(void* art, int32_t* value, char* text) {
  return Guard([&] {
    const PlotInfo& info = Store().GetPathPlotInfo(ArtOf(art));
    Put(value, info.plotValue);
    PutText(text, info.plotText);
  });
}

RV_API uint32_t RvGiSetPathPlotInfo(void* art, int32_t value, const char* text) {
  return Guard([&] { Store().SetPathPlotInfo(ArtOf(art), value, Text(text)); });
}

RV_API uint32_t RvGiGetPathElementAtVCut(void* art, int16_t* element, int16_t* value) {
  return Guard([&] {
    const PlotInfo& info = Store().GetPathPlotInfo(ArtOf(art));
    Put(element, info.vcutElement);
    Put(value, info.vcutValue);
  });
}

RV_API uint32_t RvGiSetPathElementAtVCut(void* art, int16_t element, int16_t value) {
  return Guard([&] { Store().SetPathElementAtVCut(ArtOf(art), element, value); });
}

RV_API uint32_t RvGiTracePath(void* art, uint8_t mask, void* context, RvGiTracePathFunc callback) {
  return Guard([&] { Store().TracePath(ArtOf(art), mask, context, callback); });
}

}  // extern "C"

// The two forms of RvGiSetBezierPoint are C++ overloads: insert before an
// index, or append.
RV_API uint32_t RvGiSetBezierPoint(void* art, int32_t index, const RVBEZIERPOINT* point) {
  return RvGiInsertBezierPoint(art, index, point);
}

RV_API uint32_t RvGiSetBezierPoint(void* art, const RVBEZIERPOINT* point) { return RvGiAddBezierPoint(art, point); }
