#include "model/document.h"

#include "frame/error_codes.h"
#include "frame/frame.h"

namespace rv {

CRvRIFMemoryData::~CRvRIFMemoryData() {
  // Front to back, as the list runs.
  for (auto& layer : m_layers) layer.reset();
}

CRvLayer* CRvRIFMemoryData::GetLayer(int index) const {
  if (index < 0 || std::size_t(index) >= m_layers.size()) return nullptr;
  return m_layers[std::size_t(index)].get();
}

int CRvRIFMemoryData::IndexOf(const CRvArt* layer) const {
  for (std::size_t i = 0; i < m_layers.size(); ++i) {
    if (m_layers[i].get() == layer) return int(i);
  }
  return -1;
}

std::unique_ptr<CRvLayer> CRvRIFMemoryData::AddLayer(int16_t where, const CRvArt* reference,
                                                      std::unique_ptr<CRvLayer> layer) {
  std::size_t at = 0;
  switch (where) {
    case 0: at = 0; break;
    case 1: at = m_layers.size(); break;
    case 2:
    case 3: {
      const int ref = reference == nullptr ? -1 : IndexOf(reference);
      if (ref < 0) Raise(kErrReference);
      at = std::size_t(ref) + (where == 2 ? 1 : 0);
      break;
    }
    default: return layer;
  }
  if (m_layers.size() >= kMaxLayers) Raise(kErrNoLayer);
  m_layers.insert(m_layers.begin() + std::ptrdiff_t(at), std::move(layer));
  m_currentLayer = uint16_t(at);
  return nullptr;
}

std::unique_ptr<CRvLayer> CRvRIFMemoryData::RemoveLayer(const CRvArt* layer) {
  const int index = IndexOf(layer);
  if (index < 0) return nullptr;
  std::unique_ptr<CRvLayer> taken = std::move(m_layers[std::size_t(index)]);
  m_layers.erase(m_layers.begin() + index);
  return taken;
}

}  // namespace rv
