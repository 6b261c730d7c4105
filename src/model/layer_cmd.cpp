#include "model/layer_cmd.h"

#include <string>

#include "frame/error_codes.h"
#include "frame/frame.h"
#include "model/art_cmd.h"
#include "model/data_access.h"
#include "model/document.h"

namespace rv {

namespace {

// The colour operations on a layer: 0x03001001 for null, 0x03000701 for an
// art of another type.
const CRvArt& NeedColorLayer(const CRvArt* layer) {
  if (layer == nullptr) Raise(kErrNullLayer);
  if (layer->GetType() != kArtLayer) Raise(kErrLayerColorArt);
  return *layer;
}

}  // namespace

CRvLayer* CRvLayerCmd::CreateLayer(CRvDataAccess& store, int16_t where, CRvArt* reference) const {
  CRvRIFMemoryData& document = store.ActiveDocument();
  if (reference != nullptr && reference->GetType() != kArtLayer) Raise(kErrReference);
  auto layer = std::make_unique<CRvLayer>();
  CRvLayer* raw = layer.get();
  std::unique_ptr<CRvLayer> unlinked = document.AddLayer(where, reference, std::move(layer));
  raw->SetName("Layer" + std::to_string(document.GetLayerCount()));
  RVCOLOR black{nullptr, 1, {0, 0, 0, 0}};
  raw->SetColor(black, "R=0,G=0,B=0");
  if (unlinked) store.KeepUnlinked(std::move(unlinked));
  return raw;
}

void CRvLayerCmd::DeleteLayer(CRvDataAccess& store, CRvArt* layer) const {
  if (layer == nullptr) Raise(kErrNullLayer);
  if (layer->GetType() != kArtLayer) Raise(kErrNotLayer);
  CRvRIFMemoryData& document = store.ActiveDocument();
  std::unique_ptr<CRvLayer> taken = document.RemoveLayer(layer);
  if (!taken) Raise(kErrReference);
  store.DropReferencesInto(*taken);
}

CRvLayer* CRvLayerCmd::GetLayer(CRvDataAccess& store, int16_t index) const {
  CRvLayer* layer = store.ActiveDocument().GetLayer(index);
  if (layer == nullptr) Raise(kErrNoLayer);
  return layer;
}

int16_t CRvLayerCmd::GetLayerCount(CRvDataAccess& store) const {
  const CRvRIFMemoryData* document = store.FindActiveDocument();
  return document == nullptr ? 0 : document->GetLayerCount();
}

CRvLayer* CRvLayerCmd::GetLayerFromName(CRvDataAccess& store, const std::string& name) const {
  for (const auto& layer : store.ActiveDocument().Layers()) {
    if (layer->GetName() == name) return layer.get();
  }
  return nullptr;
}

const std::string& CRvLayerCmd::GetLayerName(const CRvArt* layer) const {
  if (layer == nullptr) Raise(kErrNullLayer);
  if (layer->GetType() != kArtLayer) Raise(kErrNotLayer);
  return static_cast<const CRvLayer*>(layer)->GetName();
}

void CRvLayerCmd::SetLayerName(CRvArt* layer, const std::string& name) const {
  if (layer == nullptr) Raise(kErrNullArt);
  if (layer->GetType() != kArtLayer) Raise(kErrNotLayer);
  static_cast<CRvLayer*>(layer)->SetName(name);
}

bool CRvLayerCmd::GetLayerColor(const CRvArt* layer, RVCOLOR& color) const {
  return CRvArtCmd().GetPathColor(0, &NeedColorLayer(layer), color);
}

std::string CRvLayerCmd::GetLayerColorName(const CRvArt* layer) const {
  return CRvArtCmd().GetPathColorName(0, &NeedColorLayer(layer));
}

void CRvLayerCmd::SetLayerColor(CRvArt* layer, const RVCOLOR& color, const std::string& name) const {
  NeedColorLayer(layer);
  CRvArtCmd().SetPathColor(0, layer, color, name);
}

}  // namespace rv
