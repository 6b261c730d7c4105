#include "model/data_access.h"

#include <unordered_set>

#include "frame/error_codes.h"
#include "frame/frame.h"
#include "model/refmap.h"

namespace rv {

CRvDataAccess& CRvDataAccess::Instance() {
  static CRvDataAccess instance;
  return instance;
}

CRvDataAccess::~CRvDataAccess() {
  // Documents first, then what was forgotten or unlinked. Nothing here reads
  // a parent pointer or a converted compound's list, so the order is free.
  for (auto& document : m_documents) document.reset();
  m_documents.clear();
  m_forgotten.clear();
  m_unlinked.clear();
}

// ---------------------------------------------------------------- documents

int16_t CRvDataAccess::CreateDocument(int16_t kind) {
  if (kind != 0) Raise(kErrDocumentKind);
  // The store is full when the next index wouldn't fit 16 bits.
  if (m_documents.size() >= kMaxDocuments) Raise(kErrDocumentKind);
  m_documents.push_back(std::make_unique<CRvRIFMemoryData>());
  Activate(int16_t(m_documents.size() - 1));
  return m_activeIndex;
}

void CRvDataAccess::DeleteActiveDocument() {
  CRvRIFMemoryData* document = FindActiveDocument();
  if (document == nullptr) return;
  for (const auto& layer : document->Layers()) DropReferencesInto(*layer);
  m_documents[std::size_t(m_activeIndex)].reset();
  int16_t index = m_activeIndex;
  while (--index >= 0 && !m_documents[std::size_t(index)]) {
  }
  Activate(index);  // -1 when no lower document is left
}

void CRvDataAccess::DeleteAllDocuments() {
  for (auto& document : m_documents) {
    if (document) m_forgotten.push_back(std::move(document));
  }
  m_documents.clear();
  Activate(-1);
  if (RefMapStore::Instance().LiveTables() == 0) ReclaimForgotten();
}

void CRvDataAccess::ReclaimForgotten() {
  // Taken out first: destroying a tree never comes back here, but the list
  // is empty at once for whoever looks.
  std::vector<std::unique_ptr<CRvRIFData>> doomed = std::move(m_forgotten);
  m_forgotten.clear();
  for (auto& document : doomed) {
    // The memory document is the only kind the store makes.
    for (const auto& layer : static_cast<CRvRIFMemoryData&>(*document).Layers()) DropReferencesInto(*layer);
    document.reset();
  }
}

void CRvDataAccess::SetActiveDocument(int16_t index) {
  if (index < 0 || std::size_t(index) >= m_documents.size() || !m_documents[std::size_t(index)]) {
    Raise(kErrNoDocument);
  }
  Activate(index);
}

void CRvDataAccess::Activate(int16_t index) {
  m_activeIndex = index;
  CRvRIFMemoryData* document = FindActiveDocument();
  CurrentDrawingPool() = document != nullptr ? &document->Pool() : nullptr;
}

CRvRIFMemoryData* CRvDataAccess::FindActiveDocument() const {
  if (m_activeIndex < 0 || std::size_t(m_activeIndex) >= m_documents.size()) return nullptr;
  // The memory document is the only kind the store makes.
  return static_cast<CRvRIFMemoryData*>(m_documents[std::size_t(m_activeIndex)].get());
}

CRvRIFMemoryData& CRvDataAccess::ActiveDocument() const {
  CRvRIFMemoryData* document = FindActiveDocument();
  if (document == nullptr) Raise(kErrNoDocument);
  return *document;
}

RVRECT CRvDataAccess::GetDocBoundBox() const {
  RVRECT rect{};
  ActiveDocument().GetDocBoundBox(rect);
  return rect;
}

void CRvDataAccess::SetDocBoundBox(const RVRECT& rect) { ActiveDocument().SetDocBoundBox(rect); }

// ---------------------------------------------------------------- unlinked arts

namespace {

// Whether a kept art may point into a tree that is about to go: a refused
// child still names its parent, a converted compound still lists its paths.
bool PointsOutward(const CRvArt& art) {
  if (art.m_parent != nullptr) return true;
  if (!art.IsContainer()) return false;
  const auto& container = static_cast<const CRvContainerArt&>(art);
  return !container.OwnsChildren() && container.ChildCount() != 0;
}

}  // namespace

void CRvDataAccess::KeepUnlinked(std::unique_ptr<CRvArt> art) {
  if (!art) return;
  if (PointsOutward(*art)) m_outward.push_back(art.get());
  m_unlinked.push_back(std::move(art));
}

void CRvDataAccess::WatchOutward(CRvArt* art) {
  if (art != nullptr && PointsOutward(*art)) m_outward.push_back(art);
}

void CRvDataAccess::DropReferencesInto(const CRvArt& root) {
  auto settled = [](const CRvArt* art) { return !PointsOutward(*art); };
  std::erase_if(m_outward, settled);
  if (m_outward.empty()) return;

  // Every art of the subtree, through the owning lists only.
  std::unordered_set<const CRvArt*> doomed;
  std::vector<const CRvArt*> pending{&root};
  while (!pending.empty()) {
    const CRvArt* art = pending.back();
    pending.pop_back();
    doomed.insert(art);
    if (art->IsContainer()) {
      const auto& container = static_cast<const CRvContainerArt&>(*art);
      if (container.OwnsChildren()) {
        for (const CRvArt* child : container.m_children.items()) pending.push_back(child);
      }
    }
  }
  for (CRvArt* art : m_outward) {
    if (art->m_parent != nullptr && doomed.count(art->m_parent) != 0) art->m_parent = nullptr;
    if (art->IsContainer()) {
      auto& container = static_cast<CRvContainerArt&>(*art);
      if (!container.OwnsChildren()) {
        container.m_children.items().remove_if([&](const CRvArt* child) { return doomed.count(child) != 0; });
      }
    }
  }
  std::erase_if(m_outward, settled);
}

// ---------------------------------------------------------------- colours

void CRvDataAccess::SetPathCmyk(CRvArt* art, int16_t use, uint8_t c, uint8_t m, uint8_t y, uint8_t k,
                                const std::string& name) {
  RVCOLOR color{nullptr, 0, {c, m, y, k}};
  SetPathColor(use, art, color, name);
}

void CRvDataAccess::SetPathRgb(CRvArt* art, int16_t use, uint8_t r, uint8_t g, uint8_t b, const std::string& name) {
  RVCOLOR color{nullptr, 1, {r, g, b, 0}};
  SetPathColor(use, art, color, name);
}

void CRvDataAccess::SetPathFountain(CRvArt* art, int16_t use, const std::string& name) {
  RVCOLOR color{nullptr, 2, {0, 0, 0, 0}};
  SetPathColor(use, art, color, name);
}

void CRvDataAccess::SetPathPattern(CRvArt* art, int16_t use, const std::string& name) {
  RVCOLOR color{nullptr, 3, {0, 0, 0, 0}};
  SetPathColor(use, art, color, name);
}

}  // namespace rv
