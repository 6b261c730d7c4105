#include "model/refmap.h"

#include <algorithm>
#include <climits>
#include <stdexcept>

#include "frame/frame.h"
#include "model/data_access.h"

namespace rv {

// ---------------------------------------------------------------- RefMapTable

void RefMapTable::Add(const std::string& key, uint8_t info, CRvArt* art) {
  auto found = entries.find(key);
  if (found != entries.end()) {
    found->second->arts.push_front(art);
    return;
  }
  auto entry = std::make_unique<RefMapEntry>();
  entry->info = info;
  entry->arts.push_back(art);
  auto pos = entries.emplace(key, std::move(entry)).first;
  insertOrder.push_back(pos);
  cutOrder.push_back(pos);
}

RefMapEntry* RefMapTable::Find(const std::string& key) {
  auto found = entries.find(key);
  return found == entries.end() ? nullptr : found->second.get();
}

bool RefMapTable::ChangeCutOrder(const std::string& key, int32_t position) {
  auto pos = entries.find(key);
  if (pos == entries.end()) return false;
  auto first = std::find(cutOrder.begin(), cutOrder.end(), pos);
  if (first != cutOrder.end()) cutOrder.erase(first);
  const std::size_t steps = position <= 0 ? 0 : std::size_t(position);
  if (steps < cutOrder.size()) {
    cutOrder.insert(cutOrder.begin() + std::ptrdiff_t(steps), pos);
  } else {
    cutOrder.push_back(pos);
  }
  return true;
}

namespace {

// Longest key that "%s%d" can form in the 128-character buffer of the tile
// order (the terminator takes the last character).
constexpr std::size_t kTileKeyMax = 127;

// The number n >= 1 for which `key` is exactly prefix followed by "%d" of n,
// or 0 when the key isn't of that form.
int32_t TileNumber(const std::string& key, const std::string& prefix) {
  if (key.size() > kTileKeyMax || key.size() <= prefix.size()) return 0;
  if (key.compare(0, prefix.size(), prefix) != 0) return 0;
  const std::size_t start = prefix.size();
  if (key[start] == '0') return 0;  // "%d" of a positive number has no leading zero
  long long n = 0;
  for (std::size_t i = start; i < key.size(); ++i) {
    const char c = key[i];
    if (c < '0' || c > '9') return 0;
    n = n * 10 + (c - '0');
    if (n > INT32_MAX) return 0;
  }
  return int32_t(n);
}

}  // namespace

void RefMapTable::RegistTileOrder(const std::string& prefix, int32_t count) {
  insertOrder.clear();
  cutOrder.clear();
  if (count <= 0) return;
  // Trying n = 1, 2, ... until `count` keys are found visits the existing
  // tile numbers in ascending order; collecting them directly gives the same
  // order and also ends when fewer than `count` exist.
  std::vector<std::pair<int32_t, Position>> tiles;
  for (auto it = entries.lower_bound(prefix); it != entries.end(); ++it) {
    if (it->first.compare(0, prefix.size(), prefix) != 0) break;
    if (int32_t n = TileNumber(it->first, prefix)) tiles.emplace_back(n, it);
  }
  std::sort(tiles.begin(), tiles.end(),
            [](const auto& l, const auto& r) { return l.first < r.first; });
  if (tiles.size() > std::size_t(count)) tiles.resize(std::size_t(count));
  for (const auto& tile : tiles) {
    insertOrder.push_back(tile.second);
    cutOrder.push_back(tile.second);
  }
}

void RefMapTable::Reverse() {
  std::reverse(cutOrder.begin(), cutOrder.end());
  reversed = !reversed;
}

// ---------------------------------------------------------------- RefMapStore

RefMapStore& RefMapStore::Instance() {
  static RefMapStore store;
  return store;
}

RefMapStore::~RefMapStore() { m_closing = true; }

int16_t RefMapStore::CreateTable() {
  if (m_tables.size() > std::size_t(INT16_MAX)) throw std::length_error("too many RefMap tables");
  // Counted before the shared pointer owns it: from there on any failure
  // goes through the deleter, which counts it out.
  auto* made = new RefMapTable;
  ++m_live;
  std::shared_ptr<RefMapTable> table(made, [this](RefMapTable* t) { TableGone(t); });
  m_tables.push_back(std::move(table));
  return int16_t(m_tables.size() - 1);
}

void RefMapStore::TableGone(RefMapTable* table) {
  delete table;
  --m_live;
  if (m_live == 0 && !m_closing) CRvDataAccess::Instance().ReclaimForgotten();
}

void RefMapStore::DeleteAll() { m_tables.clear(); }

void RefMapStore::DeleteTable(int16_t map) {
  Table(map);  // range check
  m_tables.erase(m_tables.begin() + map);
}

RefMapTable& RefMapStore::Table(int16_t map) { return *Hold(map); }

std::shared_ptr<RefMapTable> RefMapStore::Hold(int16_t map) {
  if (map < 0 || std::size_t(map) >= m_tables.size()) throw std::out_of_range("invalid vector<T> subscript");
  return m_tables[std::size_t(map)];
}

std::size_t RefMapStore::FiledArts(int16_t map) const {
  if (map < 0 || std::size_t(map) >= m_tables.size()) return 0;
  std::size_t count = 0;
  for (const auto& [key, entry] : m_tables[std::size_t(map)]->entries) count += entry->arts.size();
  return count;
}

void RefMapStore::InitializeCutOrder() {
  for (auto& table : m_tables) table->cutOrder = table->insertOrder;
}

}  // namespace rv
