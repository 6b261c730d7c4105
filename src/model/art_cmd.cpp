#include "model/art_cmd.h"

#include "frame/error_codes.h"
#include "frame/frame.h"
#include "model/data_access.h"
#include "model/document.h"

namespace rv {

CRvArt& NeedArt(CRvArt* art) {
  if (art == nullptr) Raise(kErrNullArt);
  return *art;
}

const CRvArt& NeedArt(const CRvArt* art) {
  if (art == nullptr) Raise(kErrNullArt);
  return *art;
}

// ---------------------------------------------------------------- linking

LinkPlan CRvArtCmd::PlanLink(CRvRIFMemoryData& document, int16_t position, CRvArt* reference) const {
  LinkPlan plan;
  switch (position) {
    case kFirstInLayer:
    case kLastInLayer: {
      if (reference != nullptr) Raise(kErrReference);
      // The current layer index survives the deletion of layers; one that
      // now points past the list can't take arts.
      CRvLayer* layer = document.GetLayer(document.m_currentLayer);
      if (layer == nullptr) Raise(kErrNoLayer);
      plan.parent = layer;
      plan.where = position == kFirstInLayer ? 0 : 1;
      return plan;
    }
    case kInFrontOf:
    case kBehind: {
      if (reference == nullptr) Raise(kErrReference);
      CRvArt* parent = reference->m_parent;
      if (parent == nullptr) Raise(kErrNullLayer);
      // A reference that its parent doesn't hold (one that a filter refused)
      // gives no place to link at: treated as having no parent.
      plan.node = parent->FindChild(reference);
      if (!plan.node) Raise(kErrNullLayer);
      plan.parent = parent;
      plan.where = position == kInFrontOf ? 3 : 2;
      return plan;
    }
    case kFirstChild:
    case kLastChild:
      if (reference == nullptr) Raise(kErrReference);
      plan.parent = reference;
      plan.where = position == kFirstChild ? 0 : 1;
      return plan;
    default:
      return plan;  // unlinked
  }
}

CRvArt* CRvArtCmd::Commit(CRvDataAccess& store, std::unique_ptr<CRvArt> art, const LinkPlan& plan) const {
  CRvArt* raw = art.get();
  if (plan.parent == nullptr) {
    raw->m_parent = nullptr;
    store.KeepUnlinked(std::move(art));
    return raw;
  }
  // The parent is set also when the container's filter refuses the art.
  raw->m_parent = plan.parent;
  const bool linked = plan.node ? plan.parent->InsertChild(plan.where, *plan.node, raw)
                                : plan.parent->AddChild(plan.where, raw);
  if (linked) {
    art.release();  // the container owns it now
  } else {
    store.KeepUnlinked(std::move(art));
  }
  return raw;
}

CRvArt* CRvArtCmd::CreateArt(CRvDataAccess& store, int16_t type, int16_t position, CRvArt* reference) const {
  CRvRIFMemoryData& document = store.ActiveDocument();
  if (document.GetLayerCount() == 0) Raise(kErrNoLayer);
  if (type < kArtGroup || type > kArtSpline) Raise(kErrArtType);
  const LinkPlan plan = PlanLink(document, position, reference);
  return Commit(store, MakeArt(type), plan);
}

CRvArt* CRvArtCmd::CopyArt(CRvDataAccess& store, int16_t type, int16_t position, CRvArt* reference,
                           const CRvArt* source) const {
  CRvRIFMemoryData& document = store.ActiveDocument();
  if (document.GetLayerCount() == 0) Raise(kErrNoLayer);
  if (type < kArtGroup || type > kArtPath) Raise(kErrArtType);
  if (source == nullptr) Raise(kErrNullArt);
  // The copy is made by the class of `type`, which the source must have.
  if (source->GetType() != type) Raise(kErrArtType);
  const LinkPlan plan = PlanLink(document, position, reference);
  return Commit(store, rv::CopyArt(*source), plan);
}

void CRvArtCmd::DeleteArt(CRvDataAccess& store, CRvArt* art) const {
  if (art == nullptr || art->m_parent == nullptr) Raise(kErrNullArt);
  CRvArt* parent = art->m_parent;
  if (auto pos = parent->FindChild(art)) {
    // Only a container returns a position.
    const bool owned = static_cast<CRvContainerArt*>(parent)->OwnsChildren();
    parent->RemoveChild(*pos);
    if (owned) store.KeepUnlinked(std::unique_ptr<CRvArt>(art));
  }
  // An unlinked art has no parent: its former parent may go away later.
  art->m_parent = nullptr;
}

void CRvArtCmd::ConvertCompoundToGroup(CRvDataAccess& store, CRvArt* group, CRvArt* compound) const {
  if (group == nullptr || compound == nullptr) Raise(kErrNullArt);
  if (group->GetType() != kArtGroup || compound->GetType() != kArtCompound) Raise(kErrPathKind);
  auto* source = static_cast<CRvCompound*>(compound);
  // A compound converted before has handed its paths on already.
  if (!source->OwnsChildren()) Raise(kErrPathKind);
  auto* target = static_cast<CRvGroup*>(group);

  target->m_bounds = GetArtBounds(compound);
  target->m_selected = 0;
  source->m_children.ReleaseOwnership();
  for (CRvArt* child : source->m_children.items()) {
    child->m_parent = target;
    if (!target->AddChild(0, child)) store.KeepUnlinked(std::unique_ptr<CRvArt>(child));
  }
  // The paths stay in the compound's list, which now only refers to them.
  if (CRvArt* parent = compound->m_parent) {
    if (auto pos = parent->FindChild(compound)) {
      const bool owned = static_cast<CRvContainerArt*>(parent)->OwnsChildren();
      parent->RemoveChild(*pos);
      if (owned) store.KeepUnlinked(std::unique_ptr<CRvArt>(compound));
    }
  }
  compound->m_parent = nullptr;
  store.WatchOutward(compound);
}

// ---------------------------------------------------------------- walking

CRvArt* CRvArtCmd::GetArtFirstChild(const CRvArt* art) const { return NeedArt(art).GetChild(0); }

CRvArt* CRvArtCmd::GetArtParent(const CRvArt* art) const { return NeedArt(art).m_parent; }

CRvArt* CRvArtCmd::GetArtSibling(const CRvArt* art) const {
  CRvArt* parent = NeedArt(art).m_parent;
  if (parent == nullptr) return nullptr;
  auto pos = parent->FindChild(art);
  return pos ? parent->GetRelative(2, *pos) : nullptr;
}

CRvArt* CRvArtCmd::GetArtPreSibling(const CRvArt* art) const {
  CRvArt* parent = NeedArt(art).m_parent;
  if (parent == nullptr) return nullptr;
  auto pos = parent->FindChild(art);
  return pos ? parent->GetRelative(3, *pos) : nullptr;
}

int16_t CRvArtCmd::GetArtType(const CRvArt* art) const { return NeedArt(art).GetType(); }

// ---------------------------------------------------------------- properties

RVRIFMATRIX CRvArtCmd::GetArtMatrix(const CRvArt* art) const { return NeedArt(art).Matrix(); }

void CRvArtCmd::SetArtMatrix(CRvArt* art, const RVRIFMATRIX& matrix) const { NeedArt(art).SetMatrix(matrix); }

void CRvArtCmd::SetBoundingBox(CRvArt* art, const RVRECT& rect) const { NeedArt(art).m_bounds = rect; }

RVRECT CRvArtCmd::GetArtBounds(const CRvArt* art) const {
  const CRvArt& a = NeedArt(art);
  const RVRIFMATRIX& m = a.Matrix();
  const RVRECT& r = a.m_bounds;
  RVRECT out;
  out.left = m.a * r.left + m.c * r.top + m.tx;
  out.top = m.b * r.left + m.d * r.top + m.ty;
  out.right = m.a * r.right + m.c * r.bottom + m.tx;
  out.bottom = m.b * r.right + m.d * r.bottom + m.ty;
  return out;
}

void CRvArtCmd::SetArtTag(CRvArt* art, std::string_view key, std::string_view value) const {
  NeedArt(art).SetTag(key, value);
}

std::string_view CRvArtCmd::GetArtTag(const CRvArt* art, std::string_view key) const {
  return NeedArt(art).GetTag(key);
}

// ---------------------------------------------------------------- colours

bool CRvArtCmd::GetPathColor(int16_t use, const CRvArt* art, RVCOLOR& color) const {
  const CRvArt& a = NeedArt(art);
  switch (a.GetType()) {
    case kArtLayer: return static_cast<const CRvLayer&>(a).GetColor(color);
    case kArtPath: return static_cast<const CRvPath&>(a).GetColor(use, color);
    default: Raise(kErrArtColorRead);
  }
}

std::string CRvArtCmd::GetPathColorName(int16_t use, const CRvArt* art) const {
  const CRvArt& a = NeedArt(art);
  switch (a.GetType()) {
    case kArtLayer: return static_cast<const CRvLayer&>(a).GetColorName();
    case kArtPath: return static_cast<const CRvPath&>(a).GetColorName(use);
    default: Raise(kErrArtColorRead);
  }
}

void CRvArtCmd::SetPathColor(int16_t use, CRvArt* art, const RVCOLOR& color, const std::string& name) const {
  CRvArt& a = NeedArt(art);
  switch (a.GetType()) {
    case kArtLayer: static_cast<CRvLayer&>(a).SetColor(color, name); break;
    case kArtPath: static_cast<CRvPath&>(a).SetColor(use, color, name); break;
    default: Raise(kErrArtColorWrite);
  }
}

void CRvArtCmd::SetPathColorName(int16_t use, CRvArt* art, const std::string& name) const {
  CRvArt& a = NeedArt(art);
  switch (a.GetType()) {
    case kArtLayer: static_cast<CRvLayer&>(a).SetColorName(name); break;
    case kArtPath: static_cast<CRvPath&>(a).SetColorName(use, name); break;
    default: Raise(kErrArtColorWrite);
  }
}

}  // namespace rv
