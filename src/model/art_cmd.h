// CRvArtCmd: the operations that work on any art - making and linking,
// walking, matrix, bounds, tags and colours. Stateless; made on the stack.
// Every operation raises its failure (rv::Raise), so it runs under a frame.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "model/art.h"
#include "rvdataaccess.h"

namespace rv {

class CRvDataAccess;
class CRvRIFMemoryData;

/// Where a new art goes by its position code (0 to 5), worked out and
/// checked before the art is made.
struct LinkPlan {
  CRvArt* parent = nullptr;        // the container, null: leave unlinked
  int16_t where = 0;               // 0 first, 1 last, 2 behind node, 3 in front of node
  std::optional<ChildPos> node;    // for 2 and 3
};

class CRvArtCmd {
 public:
  CRvArtCmd() = default;
  virtual ~CRvArtCmd() = default;

  // ---- making and linking ----
  /// Makes an empty art of `type` (1 to 6, else 0x06000D01) and links it by
  /// `position` in the active document. Returns the art (unlinked and kept by
  /// the store for an unknown position or a container that refused it).
  CRvArt* CreateArt(CRvDataAccess& store, int16_t type, int16_t position, CRvArt* reference) const;
  /// Copies `source` (its type must be `type`, 1 to 4) by the copying rules
  /// of its class and links the copy like CreateArt.
  CRvArt* CopyArt(CRvDataAccess& store, int16_t type, int16_t position, CRvArt* reference,
                  const CRvArt* source) const;
  /// Unlinks `art` from its parent. The art and its subtree stay readable;
  /// it has no parent afterwards.
  void DeleteArt(CRvDataAccess& store, CRvArt* art) const;
  /// Moves the paths of `compound` into `group` (first each, so in reverse
  /// order) and unlinks the compound, which then only refers to the paths.
  void ConvertCompoundToGroup(CRvDataAccess& store, CRvArt* group, CRvArt* compound) const;

  /// The linking rule shared by the create and copy operations: checks
  /// `position` and `reference` (0x03000D01, 0x03001001, 0x03000601 for a
  /// current layer index past the layers) without changing anything.
  LinkPlan PlanLink(CRvRIFMemoryData& document, int16_t position, CRvArt* reference) const;
  /// Links a new art by `plan`. An art that ends up in no list (unknown
  /// position, refused by the container's filter) goes to the store.
  CRvArt* Commit(CRvDataAccess& store, std::unique_ptr<CRvArt> art, const LinkPlan& plan) const;

  // ---- walking ----
  CRvArt* GetArtFirstChild(const CRvArt* art) const;
  CRvArt* GetArtParent(const CRvArt* art) const;
  /// The next (previous) art of the parent; null at the end, without a
  /// parent, or when the parent doesn't hold the art.
  CRvArt* GetArtSibling(const CRvArt* art) const;
  CRvArt* GetArtPreSibling(const CRvArt* art) const;
  int16_t GetArtType(const CRvArt* art) const;

  // ---- properties ----
  RVRIFMATRIX GetArtMatrix(const CRvArt* art) const;
  void SetArtMatrix(CRvArt* art, const RVRIFMATRIX& matrix) const;
  void SetBoundingBox(CRvArt* art, const RVRECT& rect) const;
  /// m_bounds with each corner mapped through m_matrix (not normalised).
  RVRECT GetArtBounds(const CRvArt* art) const;
  void SetArtTag(CRvArt* art, std::string_view key, std::string_view value) const;
  /// Valid until the art's next tag is set.
  std::string_view GetArtTag(const CRvArt* art, std::string_view key) const;

  // ---- colours of layers (use ignored) and paths (use 1 fill, 2 stroke) ----
  bool GetPathColor(int16_t use, const CRvArt* art, RVCOLOR& color) const;
  std::string GetPathColorName(int16_t use, const CRvArt* art) const;
  void SetPathColor(int16_t use, CRvArt* art, const RVCOLOR& color, const std::string& name) const;
  void SetPathColorName(int16_t use, CRvArt* art, const std::string& name) const;
};

/// Raises 0x06001001 for a null art.
CRvArt& NeedArt(CRvArt* art);
const CRvArt& NeedArt(const CRvArt* art);

}  // namespace rv
