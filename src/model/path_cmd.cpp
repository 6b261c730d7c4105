#include "model/path_cmd.h"

#include <vector>

#include "frame/error_codes.h"
#include "frame/frame.h"
#include "model/art_cmd.h"
#include "model/data_access.h"
#include "model/document.h"

namespace rv {

namespace {

const CRvArt& Need(const CRvArt* art) {
  if (art == nullptr) Raise(kErrNullPath);
  return *art;
}

CRvArt& Need(CRvArt* art) {
  if (art == nullptr) Raise(kErrNullPath);
  return *art;
}

template <class T>
T& NeedKind(CRvArt* art, int16_t type) {
  if (Need(art).GetType() != type) Raise(kErrPathKind);
  return static_cast<T&>(*art);
}

template <class T>
const T& NeedKind(const CRvArt* art, int16_t type) {
  if (Need(art).GetType() != type) Raise(kErrPathKind);
  return static_cast<const T&>(*art);
}

// Point indexes are checked: an index outside the points names no record.
void NeedIndex(int32_t index, int32_t count) {
  if (index < 0 || index >= count) Raise(kErrPathKind);
}

}  // namespace

// ---------------------------------------------------------------- copying

CRvArt* CRvPathCmd::CopyPath(CRvDataAccess& store, const CRvArt* source, int16_t position,
                             CRvArt* reference) const {
  if (source == nullptr) Raise(kErrNullPath);
  CRvRIFMemoryData& document = store.ActiveDocument();
  if (document.GetLayerCount() == 0) Raise(kErrCopyNoLayer);
  const int16_t type = source->GetType();
  if (!IsComponentType(type) && type != kArtPath) Raise(kErrPathKind);
  CRvArtCmd linker;
  const LinkPlan plan = linker.PlanLink(document, position, reference);
  return linker.Commit(store, CopyArt(*source), plan);
}

// ---------------------------------------------------------------- points

int32_t CRvPathCmd::GetPathSegmentCount(const CRvArt* art) const {
  const CRvArt& a = Need(art);
  const int16_t type = a.GetType();
  if (IsComponentType(type)) return static_cast<const CRvPathComponent&>(a).GetPointCount();
  if (type == kArtPath) return static_cast<const CRvPath&>(a).GetPointTotal();
  Raise(kErrNoSegments);
}

void CRvPathCmd::GetPathSegment(const CRvArt* art, int32_t index, void* out) const {
  const CRvArt& a = Need(art);
  switch (a.GetType()) {
    case kArtBezier: {
      const auto& b = static_cast<const CRvBezier&>(a);
      NeedIndex(index, b.GetPointCount());
      if (out != nullptr) *static_cast<RVBEZIERPOINT*>(out) = b.GetPoint(index);
      return;
    }
    case kArtArc: {
      const auto& c = static_cast<const CRvArc&>(a);
      NeedIndex(index, c.GetPointCount());
      if (out != nullptr) *static_cast<RVARCPOINT*>(out) = c.GetPoint(index);
      return;
    }
    case kArtSpline: {
      const auto& s = static_cast<const CRvSpline&>(a);
      NeedIndex(index, s.GetPointCount());
      if (out != nullptr) *static_cast<RVPOINT*>(out) = s.GetPoint(index);
      return;
    }
    default: Raise(kErrPathKind);
  }
}

RVBEZIERPOINT CRvPathCmd::GetBezierPoint(const CRvArt* art, int32_t index) const {
  const auto& b = NeedKind<CRvBezier>(art, kArtBezier);
  NeedIndex(index, b.GetPointCount());
  return b.GetPoint(index);
}

RVARCPOINT CRvPathCmd::GetArcPoint(const CRvArt* art, int32_t index) const {
  const auto& c = NeedKind<CRvArc>(art, kArtArc);
  NeedIndex(index, c.GetPointCount());
  return c.GetPoint(index);
}

void CRvPathCmd::InsertBezierPoint(CRvArt* art, int32_t index, const RVBEZIERPOINT& point) const {
  NeedKind<CRvBezier>(art, kArtBezier).InsertPoint(index, point);
}

void CRvPathCmd::AddBezierPoint(CRvArt* art, const RVBEZIERPOINT& point) const {
  NeedKind<CRvBezier>(art, kArtBezier).AddPoint(point);
}

void CRvPathCmd::ReplaceBezierPoint(CRvArt* art, int32_t index, const RVBEZIERPOINT& point) const {
  auto& b = NeedKind<CRvBezier>(art, kArtBezier);
  NeedIndex(index, b.GetPointCount());
  b.ReplacePoint(index, point);
}

void CRvPathCmd::ReverseBezierPoint(CRvArt* art) const { NeedKind<CRvBezier>(art, kArtBezier).Reverse(); }

void CRvPathCmd::SortBezierPoint(CRvArt* art, int32_t index, int32_t closed) const {
  auto& b = NeedKind<CRvBezier>(art, kArtBezier);
  if (index != 0) NeedIndex(index, b.GetPointCount());
  b.MakeFirst(index, closed != 0);
}

void CRvPathCmd::RotateBezierPoint(CRvArt* art, int32_t index) const {
  auto& b = NeedKind<CRvBezier>(art, kArtBezier);
  if (index != 0) NeedIndex(index, b.GetPointCount());
  b.Rotate(index);
}

void CRvPathCmd::SetBezierStartInPoint(CRvArt* art, const RVPOINT& point) const {
  NeedKind<CRvBezier>(art, kArtBezier).SetStartIn(point);
}

// ---------------------------------------------------------------- internal access

void CRvPathCmd::GetPathBounds(CRvArt* art, RVRECT& rect) const { Check(Need(art).GetBounds(rect)); }

int32_t CRvPathCmd::GetNextPoint(const CRvArt* art, int32_t index) const {
  return NeedKind<CRvBezier>(art, kArtBezier).GetNextIndex(index);
}

int32_t CRvPathCmd::GetPrevPoint(const CRvArt* art, int32_t index) const {
  return NeedKind<CRvBezier>(art, kArtBezier).GetPrevIndex(index);
}

void CRvPathCmd::AddArcPoint(CRvArt* art, const RVARCPOINT& point) const {
  NeedKind<CRvArc>(art, kArtArc).AddPoint(point);
}

void CRvPathCmd::AddSplinePoint(CRvArt* art, const RVPOINT& point) const {
  NeedKind<CRvSpline>(art, kArtSpline).AddPoint(point);
}

RVPOINT CRvPathCmd::GetSplinePoint(const CRvArt* art, int32_t index) const {
  const auto& s = NeedKind<CRvSpline>(art, kArtSpline);
  NeedIndex(index, s.GetPointCount());
  return s.GetPoint(index);
}

// ---------------------------------------------------------------- path flags

int32_t CRvPathCmd::GetPathClockWise(const CRvArt* art) const {
  return NeedKind<CRvPath>(art, kArtPath).m_clockwise;
}

void CRvPathCmd::SetPathClockWise(CRvArt* art, int32_t clockwise) const {
  if (Need(art).GetType() == kArtPath) static_cast<CRvPath*>(art)->m_clockwise = clockwise;
}

int32_t CRvPathCmd::GetPathClosed(const CRvArt* art) const { return NeedKind<CRvPath>(art, kArtPath).m_closed; }

void CRvPathCmd::SetPathClosed(CRvArt* art, int32_t closed) const {
  if (Need(art).GetType() == kArtPath) static_cast<CRvPath*>(art)->m_closed = closed;
}

void CRvPathCmd::GetSelect(const CRvArt* art, int32_t& selected) const {
  if (art == nullptr) Raise(kErrArtType);
  if (art->GetType() == kArtGroup) selected = static_cast<const CRvGroup*>(art)->m_selected;
}

void CRvPathCmd::SetSelect(CRvArt* art, int32_t selected) const {
  if (art == nullptr) Raise(kErrArtType);
  if (art->GetType() == kArtGroup) static_cast<CRvGroup*>(art)->m_selected = selected;
}

// ---------------------------------------------------------------- attribute word

uint8_t CRvPathCmd::GetPathAttrFlag(const CRvArt* art) const { return Need(art).AttrFlags(); }

void CRvPathCmd::SetPathAttrFlag(CRvArt* art, uint8_t flags) const { Need(art).EnsureAttr().word = flags; }

void CRvPathCmd::SetPathProp(CRvArt* art, int16_t value) const {
  Need(art).EnsureAttr().word |= uint16_t(value);
}

int16_t CRvPathCmd::GetPathStartSegment(const CRvArt* art) const { return int16_t(Need(art).StartSegment()); }

void CRvPathCmd::SetPathStartSegment(CRvArt* art, int16_t segment) const {
  PathAttr& attr = Need(art).EnsureAttr();
  attr.word = (attr.word & 0xFFFFu) | (uint32_t(uint16_t(segment)) << 16);
}

int32_t CRvPathCmd::GetPathPatternID(const CRvArt* art) const {
  const PlotInfo* info = Need(art).GetPlotInfo();
  return info == nullptr ? -1 : info->patternId;
}

void CRvPathCmd::SetPathPatternID(CRvArt* art, int32_t id) const { Need(art).EnsurePlotInfo().patternId = id; }

const PlotInfo& CRvPathCmd::GetPathPlotInfo(const CRvArt* art) const {
  const PlotInfo* info = Need(art).GetPlotInfo();
  if (info == nullptr) Raise(kErrNullArt);
  return *info;
}

void CRvPathCmd::SetPathPlotInfo(CRvArt* art, int32_t value, const std::string& text) const {
  PlotInfo& info = Need(art).EnsurePlotInfo();
  info.plotValue = value;
  info.plotText = text;
}

void CRvPathCmd::SetPathElementAtVCut(CRvArt* art, int16_t element, int16_t value) const {
  PlotInfo& info = Need(art).EnsurePlotInfo();
  info.vcutElement = element;
  info.vcutValue = value;
}

// ---------------------------------------------------------------- trace

void CRvPathCmd::TracePath(CRvArt* art, uint8_t mask, void* context, uint32_t (*callback)(void*, void*)) const {
  Need(art);
  if (callback == nullptr) return;
  // One level of the walk: the container, the child being visited and the
  // child that followed it when it was reached. The walk keeps arts, not
  // list positions, so a callback that unlinks arts (RvGiDeleteArt) can't
  // leave it on a dead position: it goes on behind the visited art if that
  // is still linked, else at the remembered follower, else one level up.
  struct Level {
    CRvArt* container;
    CRvArt* current;
    CRvArt* next;
  };
  auto follower = [](CRvArt* container, const CRvArt* child) -> CRvArt* {
    auto pos = container->FindChild(child);
    return pos ? container->GetRelative(2, *pos) : nullptr;
  };
  auto advance = [&](Level& level) {
    if (auto pos = level.container->FindChild(level.current)) {
      level.current = level.container->GetRelative(2, *pos);
    } else if (level.next != nullptr && level.container->FindChild(level.next)) {
      level.current = level.next;
    } else {
      level.current = nullptr;
    }
    level.next = level.current == nullptr ? nullptr : follower(level.container, level.current);
  };

  CRvArt* first = art->GetChild(0);
  if (first == nullptr) return;
  std::vector<Level> stack;
  stack.push_back(Level{art, first, follower(art, first)});
  while (!stack.empty()) {
    CRvArt* current = stack.back().current;
    if (current == nullptr) {
      stack.pop_back();
      if (!stack.empty()) advance(stack.back());
      continue;
    }
    if (current->GetType() == kArtPath) {
      if ((current->AttrFlags() & mask) != 0) Check(callback(context, current));
      advance(stack.back());
    } else if (CRvArt* child = current->GetChild(0)) {
      stack.push_back(Level{current, child, follower(current, child)});
    } else {
      advance(stack.back());
    }
  }
}

}  // namespace rv
