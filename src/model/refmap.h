// RefMap tables: which arts go to the cutter, under which key, in which order.
//
// The host or a generator files art pointers under keys. A table keeps its
// keys in bytewise order, for each key the arts filed under it (newest
// first), a little info per key, and two queues of positions into the key
// map: the order of insertion and the cut order, which every trace walks.
// Tables hold plain art pointers and own nothing of the tree.
//
// RefMapStore is the process-wide home of all tables and of the eleven
// remembered table indexes that tell the output which table serves which job.
// The export driver reaches everything through it: the traces with a C++
// visitor, CollectArts/CollectKeyArts, GetReversed and the indexes.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "model/art.h"
#include "rvdataaccess.h"

namespace rv {

/// Value of a remembered table index that names no table.
constexpr uint16_t kNoRefMap = 0xFFFF;

/// Bit of an entry's info byte that marks the entry for output.
constexpr uint8_t kRefMapOutput = 2;

/// The arts filed under one key.
struct RefMapEntry {
  uint8_t info = 0;           // host flags; bit 2: the entry is output
  int16_t userInfoType = 0;   // 1: userInfo is a text that the entry owns
  void* userInfo = nullptr;   // see userInfoType
  std::deque<CRvArt*> arts;   // newest first; not owned

  /// Every text that userInfo ever pointed to. A new text doesn't release
  /// the one before, so a pointer that the host read stays valid as long as
  /// the table lives.
  std::vector<std::unique_ptr<char[]>> texts;
};

class RefMapTable {
 public:
  // std::string compares as unsigned bytes, a shorter key first on a common
  // start: exactly the order of the keys.
  using EntryMap = std::map<std::string, std::unique_ptr<RefMapEntry>>;
  using Position = EntryMap::iterator;

  RefMapTable() = default;
  RefMapTable(const RefMapTable&) = delete;
  RefMapTable& operator=(const RefMapTable&) = delete;

  /// Files `art` under `key`. A new key takes `info` and goes to the end of
  /// both queues; a known key gets the art in front and keeps its info.
  void Add(const std::string& key, uint8_t info, CRvArt* art);
  /// The entry of `key`, or null.
  RefMapEntry* Find(const std::string& key);
  /// The position of `key`, or entries.end().
  Position FindPosition(const std::string& key) { return entries.find(key); }

  /// Moves `key` in the cut order so that it becomes item `position` (0 or
  /// less: the front; past the end: the back). False for a missing key.
  bool ChangeCutOrder(const std::string& key, int32_t position);
  /// Rebuilds both queues from the keys prefix1, prefix2, ... (see the
  /// public header).
  void RegistTileOrder(const std::string& prefix, int32_t count);
  /// Reverses the cut order and toggles `reversed`.
  void Reverse();

  int reversed = 0;
  EntryMap entries;
  std::deque<Position> insertOrder;
  std::deque<Position> cutOrder;
};

/// One art of the drilled walk, handed to a visitor together with the
/// entry's user info. A non-zero result ends the walk and is its result.
using RefMapVisitor = std::function<uint32_t(CRvArt* art, void* userInfo)>;

class RefMapStore {
 public:
  /// The process-wide store, made at first use.
  static RefMapStore& Instance();

  RefMapStore(const RefMapStore&) = delete;
  RefMapStore& operator=(const RefMapStore&) = delete;

  // ---- tables ----
  /// Appends a new table and returns its index. More than 32767 tables don't
  /// fit a 16-bit index: std::length_error.
  int16_t CreateTable();
  /// Destroys every table.
  void DeleteAll();
  /// Destroys table `map`; later tables move down by one.
  void DeleteTable(int16_t map);
  /// The table at `map`; std::out_of_range when there is none.
  RefMapTable& Table(int16_t map);
  /// Keeps table `map` alive while a walk runs over it, even if the walk's
  /// callback deletes tables.
  std::shared_ptr<RefMapTable> Hold(int16_t map);
  std::size_t TableCount() const { return m_tables.size(); }
  /// The arts filed in table `map`, over all its keys (0 when there is no
  /// such table): what a walk of it without drilling visits at most.
  std::size_t FiledArts(int16_t map) const;
  /// Tables not yet destroyed: those of the list and those that a running
  /// walk still holds after their deletion. When the last one is destroyed,
  /// the store's forgotten documents are reclaimed.
  std::size_t LiveTables() const { return m_live; }

  /// `reversed` of table `map`.
  int GetReversed(int16_t map) { return Table(map).reversed; }
  /// Resets the cut order of every table to its insertion order.
  void InitializeCutOrder();

  // ---- traces (failures and callback codes are raised) ----
  /// Every entry of the cut order whose info shares a bit with `mask` (all
  /// entries for mask 0): its arts in array order, drilled or not.
  void Trace(int16_t map, uint8_t mask, bool drill, const RefMapVisitor& visit);
  /// Every entry's arts, passed as they are (no drilling, no type read).
  void PathTrace(int16_t map, uint8_t mask, const RefMapVisitor& visit);
  /// One entry: nothing for a missing key, 0x05001001 when the info doesn't
  /// share a bit with `mask`.
  void MatchTrace(int16_t map, const std::string& key, uint8_t mask, bool drill, const RefMapVisitor& visit);
  /// One step of the cut order (see the public header for `state`).
  void OrderTrace(int16_t map, uint8_t mask, int16_t& state, bool drill, const RefMapVisitor& visit);
  /// The first art of every entry of the cut order.
  void UniqTrace(int16_t map, const RefMapVisitor& visit);

  // ---- for the export driver ----
  /// For every entry with info bit 2, in key order: {art, 0} for each art; a
  /// group or compound gives its own record once for each path below it.
  void CollectArts(int16_t map, std::vector<RVINSIDEPATH>& list);
  /// The same for the entry of `key` alone.
  void CollectKeyArts(int16_t map, const std::string& key, std::vector<RVINSIDEPATH>& list);

  // ---- the remembered indexes ----
  uint16_t refMapIndex = kNoRefMap;
  uint16_t layerIndex = kNoRefMap;
  uint16_t colorIndex = kNoRefMap;
  uint16_t tileIndex = kNoRefMap;
  uint16_t routerOffsetSIndex = kNoRefMap;
  uint16_t routerOffsetEIndex = kNoRefMap;
  uint16_t routerPlotIndex = kNoRefMap;
  uint16_t plotConditionIndex = 0;
  uint16_t hatchingSIndex = kNoRefMap;
  uint16_t hatchingEIndex = kNoRefMap;
  uint16_t hatchingPlotIndex = kNoRefMap;

 private:
  RefMapStore() = default;
  ~RefMapStore();
  /// The deleter of every table: counts it out and reclaims the forgotten
  /// documents after the last one (but not while the process ends).
  void TableGone(RefMapTable* table);

  std::vector<std::shared_ptr<RefMapTable>> m_tables;
  // The one position of the stepwise cut-order walk, shared by all tables:
  // an item number of the cut order of the table named in the call.
  std::size_t m_orderPosition = 0;
  std::size_t m_live = 0;  // tables made and not yet destroyed
  bool m_closing = false;  // the store itself is being destroyed
};

/// Visits one art of an entry: the art itself when `drill` is false or the
/// art is neither a group nor a compound; otherwise every path below it, in
/// tree order, without entering the paths. Returns the first non-zero
/// result of `visit`, or 0.
uint32_t EnterAndWalk(CRvArt* art, bool drill, void* userInfo, const RefMapVisitor& visit);

/// Converts a stored 16-bit index to the short that the table functions take.
inline int16_t MapIndex(uint16_t stored) { return static_cast<int16_t>(stored); }

}  // namespace rv
