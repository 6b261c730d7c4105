// Documents: the abstract CRvRIFData and the in-memory CRvRIFMemoryData,
// which owns the layers of a drawing in drawing order.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "model/art.h"
#include "model/drawing_memory.h"
#include "rvdataaccess.h"

namespace rv {

/// A document of the store.
class CRvRIFData {
 public:
  virtual ~CRvRIFData() = default;
  /// The drawing's page, set by the host and the importers.
  virtual void SetDocBoundBox(const RVRECT& rect) = 0;
  virtual void GetDocBoundBox(RVRECT& rect) const = 0;
  /// The extent of the current output, written by the plot writer.
  virtual void SetPlotBoundBox(const RVRECT& rect) = 0;
  virtual void GetPlotBoundBox(RVRECT& rect) const = 0;
};

/// The in-memory document, the only kind there is (kind 0).
class CRvRIFMemoryData : public CRvRIFData {
 public:
  /// Most layers a document holds: indexes are 16-bit.
  static constexpr std::size_t kMaxLayers = 32767;

  CRvRIFMemoryData() = default;
  CRvRIFMemoryData(const CRvRIFMemoryData&) = delete;
  CRvRIFMemoryData& operator=(const CRvRIFMemoryData&) = delete;
  /// Destroys the layers in list order.
  ~CRvRIFMemoryData() override;

  /// The storage of the arts made while this document is active.
  DrawingPool& Pool() { return m_pool; }

  void SetDocBoundBox(const RVRECT& rect) override { m_docBoundBox = rect; }
  void GetDocBoundBox(RVRECT& rect) const override { rect = m_docBoundBox; }
  void SetPlotBoundBox(const RVRECT& rect) override { m_plotBoundBox = rect; }
  void GetPlotBoundBox(RVRECT& rect) const override { rect = m_plotBoundBox; }

  int16_t GetLayerCount() const { return int16_t(m_layers.size()); }
  /// The layer at `index`, or null outside 0 to count - 1.
  CRvLayer* GetLayer(int index) const;
  /// Index of `layer` in the list, or -1.
  int IndexOf(const CRvArt* layer) const;
  /// Links `layer` at the front (0), at the end (1), behind `reference` (2)
  /// or in front of it (3); the new layer becomes the current layer. For 2
  /// and 3 a null reference or one that isn't a layer of this document
  /// raises 0x03000D01. Another `where` links nothing: the layer comes back
  /// to the caller. Raises 0x03000601 when the document is full.
  std::unique_ptr<CRvLayer> AddLayer(int16_t where, const CRvArt* reference, std::unique_ptr<CRvLayer> layer);
  /// Takes the first entry holding `layer` out of the list and hands it back;
  /// null when the layer isn't in the list. The current layer index stays.
  std::unique_ptr<CRvLayer> RemoveLayer(const CRvArt* layer);

  /// The layers, in drawing order (owned).
  const std::vector<std::unique_ptr<CRvLayer>>& Layers() const { return m_layers; }

  uint16_t m_currentLayer = 0;  // takes arts made without an explicit parent
  RVRECT m_docBoundBox{};
  RVRECT m_plotBoundBox{};

 private:
  // Before the layers: destroyed after them, so that their blocks are free.
  DrawingPool m_pool;
  std::vector<std::unique_ptr<CRvLayer>> m_layers;
};

}  // namespace rv
