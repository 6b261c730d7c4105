// CRvLayerCmd: the operations on the layers of the active document.
// Stateless; made on the stack. Every operation raises its failure.
#pragma once

#include <cstdint>
#include <string>

#include "model/art.h"
#include "rvdataaccess.h"

namespace rv {

class CRvDataAccess;

class CRvLayerCmd {
 public:
  CRvLayerCmd() = default;
  virtual ~CRvLayerCmd() = default;

  /// Makes a layer named "Layer<n>" (n the layer count after the insert) in
  /// black "R=0,G=0,B=0", links it by `where` (0 front, 1 end, 2 behind and
  /// 3 in front of `reference`) and makes it current. A non-null reference
  /// must be a layer (0x03000D01). Another `where` leaves it unlinked.
  CRvLayer* CreateLayer(CRvDataAccess& store, int16_t where, CRvArt* reference) const;
  /// Takes the layer out of the active document and destroys it with its
  /// arts. 0x03001001 null, 0x03000E01 not a layer, 0x03000D01 a layer that
  /// isn't in the active document.
  void DeleteLayer(CRvDataAccess& store, CRvArt* layer) const;
  /// The layer at `index`; 0x03000601 outside 0 to count - 1.
  CRvLayer* GetLayer(CRvDataAccess& store, int16_t index) const;
  /// Layer count of the active document, 0 when none is active.
  int16_t GetLayerCount(CRvDataAccess& store) const;
  /// The first layer with exactly this name, or null.
  CRvLayer* GetLayerFromName(CRvDataAccess& store, const std::string& name) const;
  const std::string& GetLayerName(const CRvArt* layer) const;
  void SetLayerName(CRvArt* layer, const std::string& name) const;
  bool GetLayerColor(const CRvArt* layer, RVCOLOR& color) const;
  std::string GetLayerColorName(const CRvArt* layer) const;
  void SetLayerColor(CRvArt* layer, const RVCOLOR& color, const std::string& name) const;
};

}  // namespace rv
