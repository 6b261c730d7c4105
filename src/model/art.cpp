#include "model/art.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "frame/error_codes.h"
#include "frame/frame.h"
#include "geometry/affine.h"

namespace rv {

// ---------------------------------------------------------------- ChildList

ChildList::~ChildList() {
  if (!m_owning) return;
  // Pre-order in list order, with an explicit stack: each art is destroyed
  // before its children, and the children of an owning container are taken
  // over from its list first, so that no destructor recurses.
  std::vector<CRvArt*> pending(m_items.rbegin(), m_items.rend());
  m_items.clear();
  while (!pending.empty()) {
    CRvArt* art = pending.back();
    pending.pop_back();
    if (art->IsContainer()) {
      auto* container = static_cast<CRvContainerArt*>(art);
      if (container->OwnsChildren()) {
        auto& kids = container->m_children.items();
        pending.insert(pending.end(), kids.rbegin(), kids.rend());
        kids.clear();
      }
    }
    delete art;
  }
}

// ---------------------------------------------------------------- CRvArt

CRvArt::CRvArt() = default;

CRvArt::CRvArt(const CRvArt& source)
    : m_parent(source.m_parent), m_bounds(source.m_bounds), m_attrOwned(source.m_attrOwned) {
  SetMatrix(source.Matrix());
}

const RVRIFMATRIX& CRvArt::Matrix() const { return m_matrix ? *m_matrix : kIdentity; }

void CRvArt::SetMatrix(const RVRIFMATRIX& matrix) {
  if (std::memcmp(&matrix, &kIdentity, sizeof matrix) == 0) {
    m_matrix.reset();
  } else if (m_matrix) {
    *m_matrix = matrix;
  } else {
    m_matrix.reset(new (AllocateDrawing(sizeof(RVRIFMATRIX))) RVRIFMATRIX(matrix));
  }
}

CRvArt::~CRvArt() = default;

bool CRvArt::AddChild(int16_t, CRvArt*) { return false; }
bool CRvArt::InsertChild(int16_t, ChildPos, CRvArt*) { return false; }
CRvArt* CRvArt::GetChild(int16_t) const { return nullptr; }
CRvArt* CRvArt::GetRelative(int16_t, ChildPos) const { return nullptr; }
void CRvArt::RemoveChild(ChildPos) {}
std::optional<ChildPos> CRvArt::FindChild(const CRvArt*) { return std::nullopt; }
uint32_t CRvArt::GetBounds(RVRECT&) { return 0; }

PathAttr& CRvArt::EnsureAttr() {
  if (!m_attr) {
    m_attr = std::make_unique<PathAttr>();
    m_attrOwned = 1;
  }
  return *m_attr;
}

PlotInfo& CRvArt::EnsurePlotInfo() {
  PathAttr& attr = EnsureAttr();
  if (!attr.plotInfo) attr.plotInfo = std::make_unique<PlotInfo>();
  return *attr.plotInfo;
}

std::string_view CRvArt::GetTag(std::string_view key) const {
  const std::optional<std::string_view> value = m_tags.Find(key);
  if (!value) Raise(kErrNoTag);
  return *value;
}

// ---------------------------------------------------------------- containers

void CRvContainerArt::NoteLinked(ChildPos pos) {
  (*pos)->m_listOwner = this;
  (*pos)->m_listPos = pos;
}

bool CRvContainerArt::AddChild(int16_t where, CRvArt* child) {
  if (child == nullptr || !Accepts(*child) || !OwnsChildren()) return false;
  auto& items = m_children.items();
  if (where == 0) {
    items.push_front(child);
    NoteLinked(items.begin());
  } else if (where == 1) {
    items.push_back(child);
    NoteLinked(std::prev(items.end()));
  } else {
    return false;
  }
  return true;
}

bool CRvContainerArt::InsertChild(int16_t where, ChildPos node, CRvArt* child) {
  if (where == 0 || where == 1) return AddChild(where, child);
  if (child == nullptr || !Accepts(*child) || !OwnsChildren()) return false;
  auto& items = m_children.items();
  switch (where) {
    case 2: NoteLinked(items.insert(std::next(node), child)); return true;
    case 3: NoteLinked(items.insert(node, child)); return true;
    default: return false;
  }
}

CRvArt* CRvContainerArt::GetChild(int16_t where) const {
  const auto& items = m_children.items();
  if (items.empty()) return nullptr;
  if (where == 0) return items.front();
  if (where == 1) return items.back();
  return nullptr;
}

CRvArt* CRvContainerArt::GetRelative(int16_t where, ChildPos node) const {
  const auto& items = m_children.items();
  if (items.empty()) return nullptr;
  switch (where) {
    case 0: return items.front();
    case 1: return items.back();
    case 2: {
      auto next = std::next(node);
      return next == items.end() ? nullptr : *next;
    }
    case 3: return node == items.begin() ? nullptr : *std::prev(node);
    default: return nullptr;
  }
}

void CRvContainerArt::RemoveChild(ChildPos node) {
  CRvArt* art = *node;
  if (art->m_listOwner == this && art->m_listPos == node) art->m_listOwner = nullptr;
  m_children.items().erase(node);
}

std::optional<ChildPos> CRvContainerArt::FindChild(const CRvArt* child) {
  if (child != nullptr && child->m_listOwner == this) return child->m_listPos;
  auto& items = m_children.items();
  auto it = std::find(items.begin(), items.end(), child);
  if (it == items.end()) return std::nullopt;
  return it;
}

// ---------------------------------------------------------------- CRvLayer

void CRvLayer::RemoveChild(ChildPos node) {
  const CRvArt* art = *node;
  if (art->m_listOwner == this && art->m_listPos == node) {
    CRvContainerArt::RemoveChild(node);
    return;
  }
  auto& items = m_children.items();
  for (auto it = items.begin(); it != items.end(); ++it) {
    if (it == node) {
      CRvContainerArt::RemoveChild(it);
      return;
    }
  }
}

bool CRvLayer::GetColor(RVCOLOR& out) const {
  if (m_color) {
    out.kind = m_color->kind;
    std::copy(m_color->c.begin(), m_color->c.end(), out.c);
  }
  return true;
}

void CRvLayer::SetColor(const RVCOLOR& color, const std::string& name) {
  if (!m_color) m_color = std::make_unique<ColorRecord>();
  m_color->kind = color.kind;
  std::copy(color.c, color.c + 4, m_color->c.begin());
  m_color->name = name;
}

void CRvLayer::SetColorName(const std::string& name) {
  if (!m_color) m_color = std::make_unique<ColorRecord>();
  m_color->name = name;
}

std::string CRvLayer::GetColorName() const {
  if (!m_color) Raise(kErrLayerNoColor);
  return std::string(m_color->name.View());
}

// ---------------------------------------------------------------- CRvPath

namespace {

std::unique_ptr<ColorRecord> CloneColor(const std::unique_ptr<ColorRecord>& c) {
  return c ? std::make_unique<ColorRecord>(*c) : nullptr;
}

}  // namespace

CRvPath::CRvPath(const CRvPath& source)
    : CRvContainerArt(source),
      m_fill(CloneColor(source.m_fill)),
      m_stroke(CloneColor(source.m_stroke)),
      m_clockwise(source.m_clockwise),
      m_closed(source.m_closed) {}

bool CRvPath::Accepts(const CRvArt& child) const { return IsComponentType(child.GetType()); }

bool CRvPath::GetColor(int16_t use, RVCOLOR& out) const {
  if (use != 1 && use != 2) Raise(kErrPathColorRead);
  const ColorRecord* record = use == 1 ? m_fill.get() : m_stroke.get();
  if (record == nullptr) return false;
  out.kind = record->kind;
  std::copy(record->c.begin(), record->c.end(), out.c);
  return true;
}

void CRvPath::SetColor(int16_t use, const RVCOLOR& color, const std::string& name) {
  const bool valueKind = color.kind == 0 || color.kind == 1;
  if (valueKind ? (use != 1 && use != 2) : (use != 1)) Raise(kErrPathColorWrite);
  std::unique_ptr<ColorRecord>& record = use == 1 ? m_fill : m_stroke;
  if (!record) record = std::make_unique<ColorRecord>();
  record->kind = color.kind;
  std::copy(color.c, color.c + 4, record->c.begin());
  record->name = name;
}

void CRvPath::SetColorName(int16_t use, const std::string& name) {
  if (use != 1 && use != 2) Raise(kErrArtColorWrite);
  std::unique_ptr<ColorRecord>& record = use == 1 ? m_fill : m_stroke;
  if (record) record->name = name;
}

std::string CRvPath::GetColorName(int16_t use) const {
  if (use != 1 && use != 2) Raise(kErrPathColorRead);
  const ColorRecord* record = use == 1 ? m_fill.get() : m_stroke.get();
  return record ? std::string(record->name.View()) : std::string("None");
}

int32_t CRvPath::GetPointTotal() const {
  int32_t total = 0;
  for (const CRvArt* child : m_children.items()) {
    total += static_cast<const CRvPathComponent*>(child)->GetPointCount();
  }
  return total;
}

// ---------------------------------------------------------------- components

void CRvBezier::InsertPoint(int32_t i, const RVBEZIERPOINT& p) {
  if (i <= 0) {
    m_points.insert(m_points.begin(), p);
  } else if (i >= GetPointCount()) {
    m_points.push_back(p);
  } else {
    m_points.insert(m_points.begin() + i, p);
  }
}

CRvBezier::CRvBezier(const CRvBezier& source)
    : CRvPathComponent(source),
      m_points(source.m_points),
      m_start(source.m_start ? std::make_unique<StartHandles>(*source.m_start) : nullptr) {}

RVPOINT CRvBezier::StartIn() const {
  if (HasStartIn()) return m_start->in;
  return m_points.empty() ? RVPOINT{} : m_points.back().in;
}

void CRvBezier::Reverse() {
  if (m_points.size() < 2) return;
  const RVPOINT startIn = StartIn();
  StartHandles& start = Start();
  if (!start.outSet) {
    start.out = m_points.front().out;
    start.outSet = true;
  }
  start.in = start.out;
  start.out = startIn;
  start.inSet = true;
  std::reverse(m_points.begin(), m_points.end());
  for (RVBEZIERPOINT& p : m_points) std::swap(p.in, p.out);
}

void CRvBezier::Rotate(int32_t index) {
  if (m_points.empty()) return;
  const std::size_t shift = std::size_t(index) % m_points.size();
  std::rotate(m_points.begin(), m_points.begin() + std::ptrdiff_t(shift), m_points.end());
}

void CRvBezier::MakeFirst(int32_t index, bool closed) {
  if (index == 0 || !closed) {
    Rotate(index);
    return;
  }
  // The closed shape: drop the repeated start, giving the start its real
  // `in` handle back, rotate, then store the new start twice again.
  m_points.front().in = StartIn();
  if (m_points.size() > 1) m_points.pop_back();
  Rotate(index);
  const RVBEZIERPOINT p = m_points.front();
  SetStartIn(p.in);
  RVBEZIERPOINT last = p;
  last.out = p.anchor;
  m_points.push_back(last);
  RVBEZIERPOINT& first = m_points.front();
  first.in = p.anchor;
}

// ---------------------------------------------------------------- factories

std::unique_ptr<CRvArt> MakeArt(int16_t type) {
  switch (type) {
    case kArtGroup: return std::make_unique<CRvGroup>();
    case kArtBezier: return std::make_unique<CRvBezier>();
    case kArtCompound: return std::make_unique<CRvCompound>();
    case kArtPath: return std::make_unique<CRvPath>();
    case kArtArc: return std::make_unique<CRvArc>();
    case kArtSpline: return std::make_unique<CRvSpline>();
    default: return nullptr;
  }
}

std::unique_ptr<CRvArt> CopyArt(const CRvArt& source) {
  switch (source.GetType()) {
    case kArtGroup: return std::make_unique<CRvGroup>(static_cast<const CRvGroup&>(source));
    case kArtBezier: return std::make_unique<CRvBezier>(static_cast<const CRvBezier&>(source));
    case kArtCompound: return std::make_unique<CRvCompound>(static_cast<const CRvCompound&>(source));
    case kArtPath: return std::make_unique<CRvPath>(static_cast<const CRvPath&>(source));
    case kArtArc: return std::make_unique<CRvArc>(static_cast<const CRvArc&>(source));
    case kArtSpline: return std::make_unique<CRvSpline>(static_cast<const CRvSpline&>(source));
    default: return nullptr;
  }
}

}  // namespace rv
