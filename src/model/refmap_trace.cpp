// The walks over RefMap tables.
//
// A walk takes a copy of the cut order and of each entry's arts before it
// calls out, and holds the table alive while it runs, so a callback that
// files more arts or deletes tables can't pull the ground from under it.
// The drilled walk over a group follows the live child lists; a callback may
// add arts to the tree but must not unlink the art that it is given.
#include <list>

#include "frame/error_codes.h"
#include "frame/frame.h"
#include "model/refmap.h"

namespace rv {

namespace {

bool Matches(uint8_t mask, uint8_t info) { return mask == 0 || (mask & info) != 0; }

std::vector<RefMapEntry*> CutOrderSnapshot(const RefMapTable& table) {
  std::vector<RefMapEntry*> order;
  order.reserve(table.cutOrder.size());
  for (const auto& pos : table.cutOrder) order.push_back(pos->second.get());
  return order;
}

uint32_t VisitEntry(const RefMapEntry& entry, bool drill, const RefMapVisitor& visit) {
  const std::vector<CRvArt*> arts(entry.arts.begin(), entry.arts.end());
  for (CRvArt* art : arts) {
    if (uint32_t code = EnterAndWalk(art, drill, entry.userInfo, visit)) return code;
  }
  return 0;
}

}  // namespace

uint32_t EnterAndWalk(CRvArt* art, bool drill, void* userInfo, const RefMapVisitor& visit) {
  if (art == nullptr) return 0;  // a key filed without an art
  const int16_t type = art->GetType();
  auto* root = dynamic_cast<CRvContainerArt*>(art);
  if (!drill || (type != kArtGroup && type != kArtCompound) || root == nullptr) return visit(art, userInfo);

  // Depth first, first child first; paths are visited and not entered.
  struct Level {
    ChildItems* items;
    ChildPos at;
  };
  std::vector<Level> stack{{&root->m_children.items(), root->m_children.items().begin()}};
  while (!stack.empty()) {
    Level& level = stack.back();
    if (level.at == level.items->end()) {
      stack.pop_back();
      if (!stack.empty()) ++stack.back().at;
      continue;
    }
    CRvArt* child = *level.at;
    if (child->GetType() == kArtPath) {
      if (uint32_t code = visit(child, userInfo)) return code;
      ++level.at;
    } else if (auto* box = dynamic_cast<CRvContainerArt*>(child)) {
      stack.push_back({&box->m_children.items(), box->m_children.items().begin()});
    } else {
      ++level.at;
    }
  }
  return 0;
}

void RefMapStore::Trace(int16_t map, uint8_t mask, bool drill, const RefMapVisitor& visit) {
  auto table = Hold(map);
  for (RefMapEntry* entry : CutOrderSnapshot(*table)) {
    if (Matches(mask, entry->info)) Check(VisitEntry(*entry, drill, visit));
  }
}

void RefMapStore::PathTrace(int16_t map, uint8_t mask, const RefMapVisitor& visit) {
  auto table = Hold(map);
  for (RefMapEntry* entry : CutOrderSnapshot(*table)) {
    if (!Matches(mask, entry->info)) continue;
    const std::vector<CRvArt*> arts(entry->arts.begin(), entry->arts.end());
    for (CRvArt* art : arts) {
      if (art != nullptr) Check(visit(art, entry->userInfo));
    }
  }
}

void RefMapStore::MatchTrace(int16_t map, const std::string& key, uint8_t mask, bool drill,
                             const RefMapVisitor& visit) {
  auto table = Hold(map);
  RefMapEntry* entry = table->Find(key);
  if (entry == nullptr) return;
  if ((mask & entry->info) == 0) Raise(kErrMatchMask);
  Check(VisitEntry(*entry, drill, visit));
}

void RefMapStore::OrderTrace(int16_t map, uint8_t mask, int16_t& state, bool drill, const RefMapVisitor& visit) {
  auto table = Hold(map);
  const std::size_t at = state == 0 ? 0 : m_orderPosition;
  // An empty table, or a walk that has already reported its end: nothing to do.
  if (at >= table->cutOrder.size()) return;
  m_orderPosition = at;
  RefMapEntry& entry = *table->cutOrder[at]->second;
  auto advance = [&] {
    m_orderPosition = at + 1;
    state = m_orderPosition < table->cutOrder.size() ? 1 : 2;
  };
  if (!Matches(mask, entry.info)) {
    advance();
    Raise(kErrNullArt);
  }
  // A failing callback leaves the position on this entry.
  Check(VisitEntry(entry, drill, visit));
  advance();
}

void RefMapStore::UniqTrace(int16_t map, const RefMapVisitor& visit) {
  auto table = Hold(map);
  for (RefMapEntry* entry : CutOrderSnapshot(*table)) {
    CRvArt* first = entry->arts.empty() ? nullptr : entry->arts.front();
    if (first != nullptr) Check(visit(first, entry->userInfo));
  }
}

namespace {

void CollectEntry(const RefMapEntry& entry, std::vector<RVINSIDEPATH>& list) {
  if ((entry.info & kRefMapOutput) == 0) return;
  for (CRvArt* art : entry.arts) {
    if (art == nullptr) continue;
    // Each path below a group or compound counts once, under the top art.
    EnterAndWalk(art, true, nullptr, [&](CRvArt*, void*) {
      list.push_back(RVINSIDEPATH{art, 0});
      return 0u;
    });
  }
}

}  // namespace

void RefMapStore::CollectArts(int16_t map, std::vector<RVINSIDEPATH>& list) {
  auto table = Hold(map);
  for (const auto& [key, entry] : table->entries) CollectEntry(*entry, list);
}

void RefMapStore::CollectKeyArts(int16_t map, const std::string& key, std::vector<RVINSIDEPATH>& list) {
  auto table = Hold(map);
  if (RefMapEntry* entry = table->Find(key)) CollectEntry(*entry, list);
}

}  // namespace rv
