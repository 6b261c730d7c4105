#include "formats/cl_import.h"

#include <memory>

#include "frame/frame.h"
#include "model/data_access.h"
#include "model/one_bezier.h"

namespace rv {

CRvCLAccessFirmSource::CRvCLAccessFirmSource() : CRvPlotImportDriver(std::make_unique<CRvCLImportData>()) {}

CRvCLFormat::CRvCLFormat(const double* unitScale, const char* layerName)
    : m_unitScale(unitScale == nullptr || *unitScale == 0.0 ? 0.025 : *unitScale),
      m_layerName(layerName == nullptr ? kCLResultLayerName : layerName) {}

CRvCLFormat::CRvCLFormat(const RVPLOTPARAM& param) : m_param(param) {}

uint32_t CRvCLFormat::ImportToRIF() {
  return Guard([&] {
    CRvDataAccess& store = CRvDataAccess::Instance();
    CRvLayer* layer = store.CreateLayer(0, nullptr);
    store.SetLayerName(layer, kCLWorkLayerName);
    CRvCLAccessFirmSource source;
    source.Import(*this, m_unitScale);  // a file that draws nothing raises 1 here
    Convert();
  });
}

void CRvCLFormat::Convert() {
  CRvDataAccess& store = CRvDataAccess::Instance();
  CRvLayer* work = store.GetLayerFromName(kCLWorkLayerName);
  CRvLayer* result = store.CreateLayer(0, nullptr);
  store.SetLayerName(result, m_layerName);
  for (CRvArt* path = store.GetArtFirstChild(work); path != nullptr; path = store.GetArtSibling(path)) {
    if (path->GetType() != kArtPath) continue;
    // The copy has no attribute record: the path element values stay behind.
    CRvArt* copy = CopyPathShell(store, result, path);
    JoinComponentsIntoBezier(store, copy, path);
  }
}

}  // namespace rv
