#include "output/art_sort.h"

#include <algorithm>

#include "frame/error_codes.h"
#include "frame/frame.h"
#include "frame/progress.h"
#include "model/art.h"
#include "model/data_access.h"
#include "model/refmap.h"
#include "output/placement.h"
#include "output/rvl_format.h"

namespace rv {

namespace {

// The first Bezier component below an art: the art itself, the first child
// of a path, or the first component found going down first children.
const CRvBezier* FirstBezier(const CRvArt* art) {
  while (art != nullptr) {
    const int16_t type = art->GetType();
    if (type == kArtBezier) return static_cast<const CRvBezier*>(art);
    if (type == kArtArc || type == kArtSpline) return nullptr;
    art = art->GetChild(0);
  }
  return nullptr;
}

bool PathIsClosed(const CRvArt* art) {
  return art->GetType() == kArtPath && static_cast<const CRvPath*>(art)->m_closed != 0;
}

// Point 0 of a component: the anchor, an arc's start or the spline point.
// False for a component without points or an art that isn't a component.
bool FirstPointOf(const CRvArt* component, RVPOINT& out) {
  switch (component->GetType()) {
    case kArtBezier: {
      const auto* b = static_cast<const CRvBezier*>(component);
      if (b->GetPointCount() == 0) return false;
      out = b->GetPoint(0).anchor;
      return true;
    }
    case kArtArc: {
      const auto* a = static_cast<const CRvArc*>(component);
      if (a->GetPointCount() == 0) return false;
      out = a->GetPoint(0).from;
      return true;
    }
    case kArtSpline: {
      const auto* s = static_cast<const CRvSpline*>(component);
      if (s->GetPointCount() == 0) return false;
      out = s->GetPoint(0);
      return true;
    }
    default:
      return false;
  }
}

RVRECT BoundsOf(void* art) { return CRvDataAccess::Instance().GetArtBounds(ArtOf(art)); }

// The corner of the document bound box where the pen is taken to stand.
RVPOINT StartCorner(const RVPLOTPARAM& param, bool byBounds) {
  const RVRECT doc = CRvDataAccess::Instance().GetDocBoundBox();
  if (param.rotation == kThreeQuarterTurn) return {doc.left, doc.top};
  if (param.rotation == kHalfTurn) return {doc.left, doc.bottom};
  if (param.rotation == kQuarterTurn) return {doc.right, doc.bottom};
  return byBounds ? RVPOINT{doc.right, doc.top} : RVPOINT{doc.right, doc.bottom};
}

}  // namespace

// ---------------------------------------------------------------- CRvArtSort

CRvArtSort::CRvArtSort(const RVRIFMATRIX& placement, const RVPLOTPARAM& param, bool ownStage)
    : m_matrix(placement), m_param(param), m_ownStage(ownStage) {
  m_areaWidth = param.deviceMaxX - param.deviceMinX;
  m_areaHeight = param.deviceMaxY - param.deviceMinY;
  m_minX = param.deviceMinX;
  m_minY = param.deviceMinY;
  m_grid.plotterClass = param.plotterClass;
  m_grid.minX = m_minX;
  m_grid.minY = m_minY;
  m_grid.areaWidth = m_areaWidth;
  m_grid.areaHeight = m_areaHeight;
}

CRvArtSort::~CRvArtSort() = default;

int16_t CRvArtSort::MainTable() { return MapIndex(RefMapStore::Instance().refMapIndex); }

void CRvArtSort::forEach(CRvRVLFormat& format, uint32_t (*callback)(void*, void*)) const {
  for (const RVSORTENTRY& e : m_entries) Check(callback(&format, e.art));
}

void CRvArtSort::copyJudgedPaths(std::vector<RVINSIDEPATH>& list) const {
  list.reserve(list.size() + m_entries.size());
  for (const RVSORTENTRY& e : m_entries) {
    if ((e.marks & kJudgedMark) != 0) list.push_back(RVINSIDEPATH{e.art, 0});
  }
}

bool CRvArtSort::anySplit() const {
  return std::any_of(m_entries.begin(), m_entries.end(), [](const RVSORTENTRY& e) { return (e.marks & kSplitMark) != 0; });
}

uint32_t CRvArtSort::MarksOf(void* handle) {
  const CRvArt* art = ArtOf(handle);
  return (JudgedPath(art) ? kJudgedMark : 0) | (art->HasTag(kBothSidesCutTag) ? kSplitMark : 0);
}

int32_t CRvArtSort::BlockKeyOfArt(void* handle) const {
  CRvArt* art = ArtOf(handle);
  const RVRIFMATRIX artMatrix = art->Matrix();
  CRvArt* holder = art;
  if (art->GetType() == kArtCompound) {
    static_cast<CRvCompound*>(art)->SortChildren();
    holder = art->GetChild(0);
  }
  int32_t key = 0;
  if (holder == nullptr || !holder->IsContainer()) return key;
  for (CRvArt* component : static_cast<CRvContainerArt*>(holder)->m_children.items()) {
    RVPOINT p;
    if (!FirstPointOf(component, p)) continue;
    const RVPOINT q = Apply(m_matrix, Apply(artMatrix, p));
    key = BlockKey(m_grid, q.x, q.y);
  }
  return key;
}

void CRvArtSort::Step(void* context, int16_t percent) const {
  if (Progress().Step(context, percent, kSortingText)) Raise(kErrSortCancelled);
}

void CRvArtSort::OpenStage(void* context) const {
  Progress().BeginStage(context);
  Step(context, 0);
}

void CRvArtSort::OrderByKey(void* context) {
  OpenStage(context);
  SortEntriesByKey(m_entries);
}

template <class Walk>
uint32_t CRvArtSort::Collect(void* context, bool openFirst, bool keepPartial, Walk&& walk) {
  return Guard([&] {
    if (openFirst) OpenStage(context);
    auto collect = [this](CRvArt* art, void*) {
      AddArt(art);
      return 0u;
    };
    if (keepPartial) {
      (void)Guard([&] { walk(collect); });
    } else {
      walk(collect);
    }
    if (plotter::JudgesSortedNesting(m_param.plotterClass)) {
      std::vector<RVINSIDEPATH> list;
      copyJudgedPaths(list);
      m_nesting = std::make_unique<NestingJob>(std::move(list));
    }
    OrderByKey(context);
    Refine(context);
  });
}

// The walks of keys and tables keep what they collected before a failure
// where the sort has a stage of its own; a failed cut-order walk always
// fails the sort.
uint32_t CRvArtSort::SortByKey(void* context, const std::string& key, int32_t drill) {
  m_entries.clear();
  return Collect(context, m_ownStage, m_ownStage, [&](auto collect) {
    RefMapStore::Instance().MatchTrace(MainTable(), key, kRefMapOutput, drill != 0, collect);
  });
}

uint32_t CRvArtSort::SortByOrder(void* context, int16_t& order, int32_t drill) {
  return Collect(context, m_ownStage, false, [&](auto collect) {
    RefMapStore::Instance().OrderTrace(MainTable(), kRefMapOutput, order, drill != 0, collect);
  });
}

uint32_t CRvArtSort::SortTable(void* context, int32_t drill) {
  m_entries.reserve(RefMapStore::Instance().FiledArts(MainTable()));
  return Collect(context, m_ownStage, m_ownStage, [&](auto collect) {
    RefMapStore::Instance().Trace(MainTable(), kRefMapOutput, drill != 0, collect);
  });
}

// -------------------------------------------------------- CRvBlockBubbleSort

CRvBlockBubbleSort::CRvBlockBubbleSort(const RVRIFMATRIX& placement, const RVPLOTPARAM& param)
    : CRvArtSort(placement, param, false) {
  m_startPoint = Apply(m_matrix, StartCorner(param, false));
}

void CRvBlockBubbleSort::AddArt(void* art) {
  RVSORTENTRY e;
  e.art = art;
  e.key = (ArtOf(art)->AttrFlags() & kAttrExcluded) != 0 ? kExcludedKeyBlockSort : BlockKeyOfArt(art);
  e.marks = MarksOf(art);
  e.value = 0.0;
  m_entries.push_back(e);
}

void CRvBlockBubbleSort::Refine(void* context) {
  Step(context, 50);
  RVPOINT pen{0.0, 0.0};
  if (m_param.plotterClass == 0 || m_param.plotterClass == 3) pen.x = std::max(m_startPoint.x, 0.0);
  auto startOf = [&](void* handle) {
    const CRvArt* art = ArtOf(handle);
    const CRvBezier* b = FirstBezier(art);
    RVPOINT p{0.0, 0.0};
    if (b != nullptr && b->GetPointCount() > 0) p = b->GetPoint(0).anchor;
    return Apply(m_matrix, Apply(art->Matrix(), p));
  };
  auto endOf = [&](void* handle) {
    const CRvArt* art = ArtOf(handle);
    const CRvBezier* b = FirstBezier(art);
    RVPOINT p{0.0, 0.0};
    if (b != nullptr && b->GetPointCount() > 0) {
      const int32_t n = b->GetPointCount();
      p = PathIsClosed(art) ? b->GetPoint(int32_t(b->StartSegment()) % n).anchor : b->GetPoint(n - 1).anchor;
    }
    return Apply(m_matrix, Apply(art->Matrix(), p));
  };
  const std::size_t total = m_entries.size();
  RefineByNearestStart(m_entries, pen, startOf, endOf,
                       [&](std::size_t done) { Step(context, RefinePercent(done, total)); });
}

uint32_t CRvBlockBubbleSort::SortTableRange(void*, int16_t, int16_t, int32_t) { return 0; }

// -------------------------------------------------------- CRvArtSortByBounds

CRvArtSortByBounds::CRvArtSortByBounds(const RVRIFMATRIX& placement, const RVPLOTPARAM& param)
    : CRvArtSort(placement, param, true) {
  m_startPoint = Apply(m_matrix, StartCorner(param, true));
}

void CRvArtSortByBounds::AddArt(void* art) {
  RVSORTENTRY e;
  e.art = art;
  const RVRECT b = BoundsOf(art);
  e.key = (ArtOf(art)->AttrFlags() & kAttrExcluded) != 0 ? kExcludedKeyBoundsSort : BlockKeyOfArt(art);
  e.marks = MarksOf(art);
  e.value = 2.0 * (b.right - b.left) + 2.0 * (b.top - b.bottom);
  m_entries.push_back(e);
}

void CRvArtSortByBounds::Refine(void* context) {
  Step(context, 50);
  std::vector<IntRect> boxes;
  boxes.reserve(m_entries.size());
  for (const RVSORTENTRY& e : m_entries) boxes.push_back(IntegerBox(BoundsOf(e.art)));
  const std::size_t total = m_entries.size();
  RefineByBounds(m_entries, boxes, [&](std::size_t index) { Step(context, RefinePercent(index, total)); });
}

uint32_t CRvArtSortByBounds::SortTableRange(void* context, int16_t first, int16_t last, int32_t drill) {
  return Collect(context, true, false, [&](auto collect) {
    for (int t = first; t <= last; ++t) {
      (void)Guard([&] { RefMapStore::Instance().Trace(int16_t(t), kRefMapOutput, drill != 0, collect); });
    }
  });
}

}  // namespace rv
