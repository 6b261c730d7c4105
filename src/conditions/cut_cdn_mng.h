// CRvCutCdnMng: the table of cut conditions, media by name and in order.
//
// The exported Rv...CutCondition functions are thin frames round these
// methods; the plot writers call the methods directly.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "conditions/cut_cdn_tbl.h"
#include "rvdataaccess.h"

namespace rv {

struct CondFileRecord;

class CRvCutCdnMng {
 public:
  using MediaMap = std::map<std::string, std::unique_ptr<CRvCutCdnInfo>>;

  static CRvCutCdnMng& Instance();
  virtual ~CRvCutCdnMng();

  // Conditions.
  uint32_t AddCondition(const std::string& media, int32_t repeatIndex, const CondPair& pair);
  uint32_t InsertCondition(const std::string& media, int32_t position, const CondPair& pair);
  uint32_t CLSetCondition(const std::string& media, const CLCondition* records, int32_t count);
  uint32_t DeleteCondition(const std::string& media, int32_t index);
  uint32_t DeleteMedia(const std::string& media);
  uint32_t DeleteAll();
  /// The pair of pass `repeat` (1 first). An unknown media gives 0 and leaves
  /// `pair` as it was.
  uint32_t GetConditionAtRepeat(const std::string& media, int32_t repeat, CondPair& pair) const;
  /// Number of passes of the media, 0 for an unknown one.
  int32_t GetRepeatCount(const std::string& media) const;
  uint32_t SortMedia();

  // Walks: a callback result other than 0 ends the walk and is returned.
  using PassVisitor = std::function<uint32_t(const std::string& name, const CondPair& pair)>;
  using NameVisitor = std::function<uint32_t(const std::string& name)>;
  uint32_t Trace(const PassVisitor& visit) const;
  uint32_t TraceByKey(const std::string& media, const PassVisitor& visit) const;
  uint32_t TraceNames(const NameVisitor& visit) const;

  // Files.
  uint32_t Load(uint16_t machineType, const std::string& path);
  uint32_t Import(const std::string& path);
  uint32_t Save(const std::string& path) const;
  uint32_t LoadFromCSV(uint16_t machineType, const std::string& csvPath, const std::string& xmlPath);
  uint32_t ReadFavorites(uint16_t machineType, const std::string& path, FavoriteEntry* lists[4]) const;
  uint32_t WriteFavorites(uint16_t machineType, const std::string& path, const FavoriteEntry* const lists[4]) const;

  uint16_t machineType = 0;
  MediaMap m_media;
  std::deque<MediaMap::iterator> m_mediaOrder;

 private:
  CRvCutCdnMng() = default;
  MediaMap::iterator Find(const std::string& media);
  MediaMap::const_iterator Find(const std::string& media) const;
  uint32_t AddConditionAs(const std::string& media, int32_t repeatIndex, const CondPair& pair, ExtensionForm form);
  uint32_t InsertConditionAs(const std::string& media, int32_t position, const CondPair& pair, ExtensionForm form);
  uint32_t ReadFile(const std::string& path, bool import);
  /// The import name rule: a name that the table doesn't hold yet.
  std::string ImportName(const std::string& name) const;
};

/// The media names of the import rule: "-%d" behind a name cut so that the
/// whole keeps 64 wide characters.
constexpr std::size_t kImportNameChars = 64;
constexpr int kImportSuffixes = 128;

/// Tool renaming of the current-condition file of machine type 5.
void RenameCurrentTQTool(char* tool, std::size_t size);

}  // namespace rv
