// Exported functions of the art commands.
#include "frame/error_codes.h"
#include "frame/frame.h"
#include "model/export_util.h"

using namespace rv;

namespace {

}

extern "C" {

RV_API uint32_t RvGiCreateArt(int16_t type, int16_t position, void* reference, void** art) {
  Put(art, nullptr);
  return Guard([&] { Put(art, Handle(Store().CreateArt(type, position, ArtOf(reference)))); });
}

RV_API uint32_t RvGiCopyArt(int16_t type, int16_t position, void* reference, void* source, void** art) {
  Put(art, nullptr);
  return Guard([&] { Put(art, Handle(Store().CopyArt(type, position, ArtOf(reference), ArtOf(source)))); });
}

RV_API uint32_t RvGiDeleteArt(void** art) {
  return Guard([&] { Store().DeleteArt(art == nullptr ? nullptr : ArtOf(*art)); });
}

RV_API uint32_t RvGiConvertCompoundToGroup(void* group, void* compound) {
  return Guard([&] { Store().ConvertCompoundToGroup(ArtOf(group), ArtOf(compound)); });
}

RV_API uint32_t RvGiGetArtFirstChild(void* art, void** child) {
  return Guard([&] { Put(child, Handle(Store().GetArtFirstChild(ArtOf(art)))); });
}

RV_API uint32_t RvGiGetArtParent(void* art, void** parent) {
  return Guard([&] { Put(parent, Handle(Store().GetArtParent(ArtOf(art)))); });
}

RV_API uint32_t RvGiGetArtSibling(void* art, void** sibling) {
  return Guard([&] { Put(sibling, Handle(Store().GetArtSibling(ArtOf(art)))); });
}

RV_API uint32_t RvGiGetArtPreSibling(void* art, void** sibling) {
  return Guard([&] { Put(sibling, Handle(Store().GetArtPreSibling(ArtOf(art)))); });
}

RV_API uint32_t RvGiGetArtType(void* art, int16_t* type) {
  return Guard([&] { Put(type, Store().GetArtType(ArtOf(art))); });
}

RV_API uint32_t RvGiGetArtMatrix(void* art, RVRIFMATRIX* matrix) {
  return Guard([&] { Put(matrix, Store().GetArtMatrix(ArtOf(art))); });
}

RV_API uint32_t RvGiSetArtMatrix(void* art, const RVRIFMATRIX* matrix) {
  return Guard([&] { Store().SetArtMatrix(ArtOf(art), NeedRecord(matrix, kErrNullArt)); });
}

RV_API uint32_t RvGiSetBoundingBox(void* art, const RVRECT* rect) {
  return Guard([&] { Store().SetBoundingBox(ArtOf(art), NeedRecord(rect, kErrNullArt)); });
}

RV_API uint32_t RvGiGetArtBounds(void* art, RVRECT* rect) {
  return Guard([&] { Put(rect, Store().GetArtBounds(ArtOf(art))); });
}

RV_API uint32_t RvGiSetArtTag(void* art, const char* key, const char* value) {
  return Guard([&] { Store().SetArtTag(ArtOf(art), TextView(key), TextView(value)); });
}

RV_API uint32_t RvGiGetArtTag(void* art, const char* key, char* value) {
  return Guard([&] { PutText(value, Store().GetArtTag(ArtOf(art), TextView(key))); });
}

RV_API uint32_t RvGiGetPathColor(int16_t use, void* art, RVCOLOR* color, int32_t* found) {
  return Guard([&] {
    RVCOLOR out{};
    if (color != nullptr) out = *color;  // untouched when nothing is found
    const bool got = Store().GetPathColor(use, ArtOf(art), out);
    Put(color, out);
    Put(found, got ? 1 : 0);
  });
}

RV_API uint32_t RvGiGetPathColorName(int16_t use, void* art, char* name) {
  return Guard([&] { PutText(name, Store().GetPathColorName(use, ArtOf(art))); });
}

RV_API uint32_t RvGiSetPathColor(int16_t use, void* art, const RVCOLOR* color, const char* name) {
  return Guard([&] { Store().SetPathColor(use, ArtOf(art), NeedRecord(color, kErrNullArt), Text(name)); });
}

RV_API uint32_t RvGiSetPathColorName(int16_t use, void* art, const char* name) {
  return Guard([&] { Store().SetPathColorName(use, ArtOf(art), Text(name)); });
}

}  // extern "C"
