// CRvXMLAccess: the condition file and the favourite file.
//
// One object serves one file and lives on the stack of the export that uses
// it. It knows, for each machine family, the root element and its version,
// and for each root the elements of a condition with their text forms.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "conditions/cond_text.h"
#include "conditions/dom_tree.h"
#include "rvdataaccess.h"

namespace rv {

/// The flat image of one pass between the manager and the file: the fields
/// of the record (its has-flags unused) with the media name, the Theta and
/// the milling values. A value that isn't set stands as -1 (or -1.0);
/// Reset() makes every number so.
struct CondFileRecord : CondRecord {
  char Name[RV_COND_NAME_SIZE];
  ThetaExtension Theta;
  int16_t Rpm;
  double CuttingDepth;
  int16_t ZSpeed;
  double Milling;

  /// Texts empty, every number -1 or -1.0.
  void Reset();
};

/// The values of DivideCut for files and roots that don't carry it.
constexpr DivideCutRecord kDefaultDivideCut{0, 0, 30.0, 30.0, 0, 10.0};

/// Root element and version that a machine family writes.
const wchar_t* RootElementOf(uint16_t machineType);
const wchar_t* RootVersionOf(uint16_t machineType);

/// The four favourite lists.
enum FavoriteList : int32_t { kColorTool = 0, kColorMedia = 1, kLayerTool = 2, kLayerMedia = 3 };

class CRvXMLAccess {
 public:
  CRvXMLAccess();
  virtual ~CRvXMLAccess();
  CRvXMLAccess(const CRvXMLAccess&) = delete;
  CRvXMLAccess& operator=(const CRvXMLAccess&) = delete;

  /// A new document: declaration, the family's root with its version.
  uint32_t Create(uint16_t machineType);
  /// Loads a file and checks its root against the family; reads the version.
  uint32_t Open(uint16_t machineType, const std::string& path);
  uint32_t Save(const std::string& path);

  uint32_t GetMediaCount(int32_t* count);
  uint32_t GetPassCount(int32_t mediaIndex, int32_t* count);
  uint32_t ReadCondition(int32_t mediaIndex, int32_t pass, CondFileRecord* record);
  uint32_t WriteCondition(int32_t mediaIndex, int32_t pass, const CondFileRecord& record);

  uint32_t GetFavoriteCount(int32_t list, int32_t* count);
  uint32_t ReadFavorite(int32_t list, int32_t index, FavoriteEntry* entry);
  uint32_t WriteFavorite(int32_t list, int32_t index, const FavoriteEntry& entry);

  DOMTree m_tree;
  std::wstring m_version;  ///< the root's version attribute, at most 12 characters

 private:
  void UseUserLocale();
  std::optional<cond::LocaleScope> m_locale;  // the conversions' locale while the object lives
};

}  // namespace rv
