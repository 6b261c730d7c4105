// CRvDataAccess: the one door through which the exports reach the drawing.
//
// It owns the documents and works on one of them, the active document. For
// every art, layer and path operation it has one plain method, which makes
// the stateless command object on its stack and runs the operation. Every
// method raises its failure (rv::Raise) and so runs under a frame; the
// exported RvGi... functions are a Guard round these methods. Importers and
// generators call them directly.
//
// Ownership. Every art is owned exactly once: by the list of its container,
// by the layer list of a document, or by the store's keep of unlinked arts.
// Arts that leave every list - RvGiDeleteArt, a create with an unknown
// position, a child that a container's filter refused, a compound converted
// into a group - go to that keep, which is released at process exit, so
// their handles stay readable until then. Documents forgotten by
// RvGiDeleteAllDocuments go to a keep of their own, emptied as soon as no
// RefMap table exists (a table is all that can still reach them). An unlinked art has no parent,
// except a refused child, whose parent pointer is cleared when that parent is
// destroyed (RvGiDeleteLayer, RvGiDeleteActiveDocument); a converted
// compound's list loses the entries of paths destroyed the same way.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "frame/progress.h"
#include "model/art.h"
#include "model/art_cmd.h"
#include "model/document.h"
#include "model/layer_cmd.h"
#include "model/path_cmd.h"

namespace rv {

class CRvDataAccess {
 public:
  /// Most documents the store hands out before RvGiDeleteAllDocuments:
  /// indexes are 16-bit and never reused.
  static constexpr std::size_t kMaxDocuments = 32767;

  /// The process-wide store, made at first use, destroyed at exit.
  static CRvDataAccess& Instance();
  virtual ~CRvDataAccess();
  CRvDataAccess(const CRvDataAccess&) = delete;
  CRvDataAccess& operator=(const CRvDataAccess&) = delete;

  ProgressCallbacks m_progress;
  std::vector<std::unique_ptr<CRvRIFData>> m_documents;  // a slot is null after a delete
  int16_t m_activeIndex = -1;
  uint16_t m_useMajor = 1;  // version pair the host asked for (only stored)
  uint16_t m_useMinor = 3;

  /// The stored pair as one 32-bit value, low half first.
  uint32_t UseVersion() const { return uint32_t(m_useMajor) | (uint32_t(m_useMinor) << 16); }

  // ---- documents ----
  /// Appends a new document of `kind` 0 (else 0x02001C01), makes it active
  /// and returns its index.
  int16_t CreateDocument(int16_t kind);
  /// Destroys the active document; the next lower live one becomes active.
  void DeleteActiveDocument();
  /// Forgets all documents; indexes start again at 0. The forgotten
  /// documents are destroyed at once when no RefMap table exists, else when
  /// the last one goes (ReclaimForgotten).
  void DeleteAllDocuments();
  /// Destroys the forgotten documents. Arts unlinked from them before stay
  /// in the keep of unlinked arts, their outward pointers cleared.
  void ReclaimForgotten();
  std::size_t ForgottenCount() const { return m_forgotten.size(); }
  /// 0x09001D01 for a negative index, one past the array or an empty slot.
  void SetActiveDocument(int16_t index);
  /// Makes `index` (which exists, or -1) the active document, whose pool
  /// then holds what is made.
  void Activate(int16_t index);
  int16_t GetActiveDocumentIndex() const { return m_activeIndex; }
  /// The active document, or null.
  CRvRIFMemoryData* FindActiveDocument() const;
  /// The active document; 0x09001D01 when none is active.
  CRvRIFMemoryData& ActiveDocument() const;
  RVRECT GetDocBoundBox() const;
  void SetDocBoundBox(const RVRECT& rect);

  // ---- the keep of unlinked arts ----
  /// Takes over an art that no list owns.
  void KeepUnlinked(std::unique_ptr<CRvArt> art);
  std::size_t UnlinkedCount() const { return m_unlinked.size(); }
  /// Notes a kept art that may point into the tree (a refused child names
  /// its container, a converted compound lists its former paths).
  void WatchOutward(CRvArt* art);
  /// Called before the subtree of `root` is destroyed: clears what kept arts
  /// still point to inside it.
  void DropReferencesInto(const CRvArt& root);

  // ---- arts ----
  CRvArt* CreateArt(int16_t type, int16_t position, CRvArt* reference) {
    return CRvArtCmd().CreateArt(*this, type, position, reference);
  }
  CRvArt* CopyArt(int16_t type, int16_t position, CRvArt* reference, const CRvArt* source) {
    return CRvArtCmd().CopyArt(*this, type, position, reference, source);
  }
  void DeleteArt(CRvArt* art) { CRvArtCmd().DeleteArt(*this, art); }
  void ConvertCompoundToGroup(CRvArt* group, CRvArt* compound) {
    CRvArtCmd().ConvertCompoundToGroup(*this, group, compound);
  }
  CRvArt* GetArtFirstChild(const CRvArt* art) { return CRvArtCmd().GetArtFirstChild(art); }
  CRvArt* GetArtParent(const CRvArt* art) { return CRvArtCmd().GetArtParent(art); }
  CRvArt* GetArtSibling(const CRvArt* art) { return CRvArtCmd().GetArtSibling(art); }
  CRvArt* GetArtPreSibling(const CRvArt* art) { return CRvArtCmd().GetArtPreSibling(art); }
  int16_t GetArtType(const CRvArt* art) { return CRvArtCmd().GetArtType(art); }
  RVRIFMATRIX GetArtMatrix(const CRvArt* art) { return CRvArtCmd().GetArtMatrix(art); }
  void SetArtMatrix(CRvArt* art, const RVRIFMATRIX& m) { CRvArtCmd().SetArtMatrix(art, m); }
  void SetBoundingBox(CRvArt* art, const RVRECT& rect) { CRvArtCmd().SetBoundingBox(art, rect); }
  RVRECT GetArtBounds(const CRvArt* art) { return CRvArtCmd().GetArtBounds(art); }
  void SetArtTag(CRvArt* art, std::string_view key, std::string_view value) {
    CRvArtCmd().SetArtTag(art, key, value);
  }
  std::string_view GetArtTag(const CRvArt* art, std::string_view key) {
    return CRvArtCmd().GetArtTag(art, key);
  }
  bool GetPathColor(int16_t use, const CRvArt* art, RVCOLOR& color) {
    return CRvArtCmd().GetPathColor(use, art, color);
  }
  std::string GetPathColorName(int16_t use, const CRvArt* art) { return CRvArtCmd().GetPathColorName(use, art); }
  void SetPathColor(int16_t use, CRvArt* art, const RVCOLOR& color, const std::string& name) {
    CRvArtCmd().SetPathColor(use, art, color, name);
  }
  void SetPathColorName(int16_t use, CRvArt* art, const std::string& name) {
    CRvArtCmd().SetPathColorName(use, art, name);
  }
  /// Colour setters of the importers: kind 0 CMYK, 1 RGB, 2 fountain, 3 pattern.
  void SetPathCmyk(CRvArt* art, int16_t use, uint8_t c, uint8_t m, uint8_t y, uint8_t k, const std::string& name);
  void SetPathRgb(CRvArt* art, int16_t use, uint8_t r, uint8_t g, uint8_t b, const std::string& name);
  void SetPathFountain(CRvArt* art, int16_t use, const std::string& name);
  void SetPathPattern(CRvArt* art, int16_t use, const std::string& name);

  // ---- layers ----
  CRvLayer* CreateLayer(int16_t where, CRvArt* reference) { return CRvLayerCmd().CreateLayer(*this, where, reference); }
  void DeleteLayer(CRvArt* layer) { CRvLayerCmd().DeleteLayer(*this, layer); }
  CRvLayer* GetLayer(int16_t index) { return CRvLayerCmd().GetLayer(*this, index); }
  int16_t GetLayerCount() { return CRvLayerCmd().GetLayerCount(*this); }
  CRvLayer* GetLayerFromName(const std::string& name) { return CRvLayerCmd().GetLayerFromName(*this, name); }
  const std::string& GetLayerName(const CRvArt* layer) { return CRvLayerCmd().GetLayerName(layer); }
  void SetLayerName(CRvArt* layer, const std::string& name) { CRvLayerCmd().SetLayerName(layer, name); }
  bool GetLayerColor(const CRvArt* layer, RVCOLOR& color) { return CRvLayerCmd().GetLayerColor(layer, color); }
  std::string GetLayerColorName(const CRvArt* layer) { return CRvLayerCmd().GetLayerColorName(layer); }
  void SetLayerColor(CRvArt* layer, const RVCOLOR& color, const std::string& name) {
    CRvLayerCmd().SetLayerColor(layer, color, name);
  }

  // ---- paths ----
  CRvArt* CopyPath(const CRvArt* source, int16_t position, CRvArt* reference) {
    return CRvPathCmd().CopyPath(*this, source, position, reference);
  }
  int32_t GetPathSegmentCount(const CRvArt* art) { return CRvPathCmd().GetPathSegmentCount(art); }
  void GetPathSegment(const CRvArt* art, int32_t index, void* out) { CRvPathCmd().GetPathSegment(art, index, out); }
  RVBEZIERPOINT GetBezierPoint(const CRvArt* art, int32_t index) { return CRvPathCmd().GetBezierPoint(art, index); }
  RVARCPOINT GetArcPoint(const CRvArt* art, int32_t index) { return CRvPathCmd().GetArcPoint(art, index); }
  void InsertBezierPoint(CRvArt* art, int32_t index, const RVBEZIERPOINT& p) {
    CRvPathCmd().InsertBezierPoint(art, index, p);
  }
  void AddBezierPoint(CRvArt* art, const RVBEZIERPOINT& p) { CRvPathCmd().AddBezierPoint(art, p); }
  void ReplaceBezierPoint(CRvArt* art, int32_t index, const RVBEZIERPOINT& p) {
    CRvPathCmd().ReplaceBezierPoint(art, index, p);
  }
  void ReverseBezierPoint(CRvArt* art) { CRvPathCmd().ReverseBezierPoint(art); }
  void SortBezierPoint(CRvArt* art, int32_t index, int32_t closed) { CRvPathCmd().SortBezierPoint(art, index, closed); }
  void RotateBezierPoint(CRvArt* art, int32_t index) { CRvPathCmd().RotateBezierPoint(art, index); }
  void SetBezierStartInPoint(CRvArt* art, const RVPOINT& p) { CRvPathCmd().SetBezierStartInPoint(art, p); }
  void GetPathBounds(CRvArt* art, RVRECT& rect) { CRvPathCmd().GetPathBounds(art, rect); }
  int32_t GetNextPoint(const CRvArt* art, int32_t index) { return CRvPathCmd().GetNextPoint(art, index); }
  int32_t GetPrevPoint(const CRvArt* art, int32_t index) { return CRvPathCmd().GetPrevPoint(art, index); }
  void AddArcPoint(CRvArt* art, const RVARCPOINT& p) { CRvPathCmd().AddArcPoint(art, p); }
  void AddSplinePoint(CRvArt* art, const RVPOINT& p) { CRvPathCmd().AddSplinePoint(art, p); }
  RVPOINT GetSplinePoint(const CRvArt* art, int32_t index) { return CRvPathCmd().GetSplinePoint(art, index); }
  int32_t GetPathClockWise(const CRvArt* art) { return CRvPathCmd().GetPathClockWise(art); }
  void SetPathClockWise(CRvArt* art, int32_t v) { CRvPathCmd().SetPathClockWise(art, v); }
  int32_t GetPathClosed(const CRvArt* art) { return CRvPathCmd().GetPathClosed(art); }
  void SetPathClosed(CRvArt* art, int32_t v) { CRvPathCmd().SetPathClosed(art, v); }
  void GetSelect(const CRvArt* art, int32_t& selected) { CRvPathCmd().GetSelect(art, selected); }
  void SetSelect(CRvArt* art, int32_t selected) { CRvPathCmd().SetSelect(art, selected); }
  uint8_t GetPathAttrFlag(const CRvArt* art) { return CRvPathCmd().GetPathAttrFlag(art); }
  void SetPathAttrFlag(CRvArt* art, uint8_t flags) { CRvPathCmd().SetPathAttrFlag(art, flags); }
  void SetPathProp(CRvArt* art, int16_t value) { CRvPathCmd().SetPathProp(art, value); }
  int16_t GetPathStartSegment(const CRvArt* art) { return CRvPathCmd().GetPathStartSegment(art); }
  void SetPathStartSegment(CRvArt* art, int16_t segment) { CRvPathCmd().SetPathStartSegment(art, segment); }
  int32_t GetPathPatternID(const CRvArt* art) { return CRvPathCmd().GetPathPatternID(art); }
  void SetPathPatternID(CRvArt* art, int32_t id) { CRvPathCmd().SetPathPatternID(art, id); }
  const PlotInfo& GetPathPlotInfo(const CRvArt* art) { return CRvPathCmd().GetPathPlotInfo(art); }
  void SetPathPlotInfo(CRvArt* art, int32_t value, const std::string& text) {
    CRvPathCmd().SetPathPlotInfo(art, value, text);
  }
  void SetPathElementAtVCut(CRvArt* art, int16_t element, int16_t value) {
    CRvPathCmd().SetPathElementAtVCut(art, element, value);
  }
  void TracePath(CRvArt* art, uint8_t mask, void* context, uint32_t (*callback)(void*, void*)) {
    CRvPathCmd().TracePath(art, mask, context, callback);
  }

 private:
  CRvDataAccess() = default;

  std::vector<std::unique_ptr<CRvRIFData>> m_forgotten;  // from RvGiDeleteAllDocuments
  std::vector<std::unique_ptr<CRvArt>> m_unlinked;       // arts that no list owns
  std::vector<CRvArt*> m_outward;                        // kept arts that may point into the tree
};

}  // namespace rv
