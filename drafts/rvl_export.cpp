// The export operation of CRvRVLFormat: placement, passes, routes through
// the RefMap tables, and the cutting writer of one art.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "frame/frame.h"
#include "frame/progress.h"
#include "model/refmap.h"
#include "output/art_sort.h"
#include "output/both_sides.h"
#include "output/placement.h"
#include "output/rvl_format.h"

namespace rv {

namespace {

constexpr uint8_t kOutputMask = 2;
constexpr const char* kHatchingFrameKey = "RivlenHatchingFrame";
constexpr const char* kHatchingLineKey = "RivlenHatchingLine";

CRvRVLFormat& FormatOf(void* context) { return *static_cast<CRvRVLFormat*>(context); }

uint32_t CuttingWriterThunk(void* context, void* art) {
  return Guard([&] { FormatOf(context).CuttingWriter(ArtOf(art)); });
}
uint32_t StartPointThunk(void* context, void* art) {
  return Guard([&] { FormatOf(context).StartPointPass(ArtOf(art)); });
}
uint32_t CountThunk(void* context, void* art) {
  if ((ArtOf(art)->AttrFlags() & kAttrExcluded) == 0) ++FormatOf(context).m_artTotal;
  return 0;
}
uint32_t MillingWriterThunk(void* context, void* art) {
  return FormatOf(context).MillingWriter(ArtOf(art));
}

int16_t MainTable() { return MapIndex(RefMapStore::Instance().refMapIndex); }

// Start and end of a remembered range of tables, or false when unset.
bool TableRange(uint16_t first, uint16_t last, int& from, int& to) {
  if (first == kNoRefMap || last == kNoRefMap) return false;
  from = int16_t(first);
  to = int16_t(last);
  return true;
}

}  // namespace

uint32_t CRvRVLFormat::ImportToRIF() { return ErrCode(1, 17); }

uint32_t CRvRVLFormat::ExportFromRIF(void* context) {
  m_progressContext = context;
  const uint32_t code = Guard([&] { RunExport(); });
  if (m_param.expandDocument == 1 && m_savedDocument) RestoreDocument();
  Progress().EndStage(context);
  return code;
}

void CRvRVLFormat::RunExport() {
  const int16_t main = MainTable();
  PlaceJob();
  if (plotter::HonoursStartPoints(m_param.plotterClass) && m_param.optimizeStartPoints != 0) {
    Check(RvGiRefMapTableTrace(main, kOutputMask, this, StartPointThunk, 1));
  }
  if (m_param.sortArts == 0) {
    UnsortedRoute();
  } else {
    SortedRoute();
  }
  if (m_param.drawFrame != 0) WriteFrame();
  if (m_param.outputMicroJoints != 0) WriteMicroJoints();
}

void CRvRVLFormat::PlaceJob() {
  RVRECT rect{};
  if (m_param.useDocumentBounds != 0) {
    Check(RvGiGetDocBoundBox(&rect));
  } else {
    Check(RvGiGetArtsBoundsByFlag(&rect, kOutputMask, 1));
  }
  CRvRIFData& doc = ActiveDocument();
  if (m_param.expandDocument == 1) {
    doc.GetDocBoundBox(m_savedDocBox);
    doc.SetDocBoundBox(GrowByMargins(m_param, m_savedDocBox));
    doc.GetPlotBoundBox(m_savedPlotBox);
    m_savedDocument = true;
    rect = GrowByMargins(m_param, rect);
  }
  doc.SetPlotBoundBox(rect);
  SetPlacement(ComputePlacement(m_param, rect), rect);
}

void CRvRVLFormat::RestoreDocument() {
  CRvRIFData& doc = ActiveDocument();
  doc.SetPlotBoundBox(m_savedPlotBox);
  doc.SetDocBoundBox(m_savedDocBox);
  m_savedDocument = false;
}

void CRvRVLFormat::UnsortedRoute() {
  const int16_t main = MainTable();
  const uint16_t cls = m_param.plotterClass;
  Check(RvGiRefMapTableTrace(main, kOutputMask, this, CountThunk, 1));
  Progress().BeginStage(m_progressContext);
  RefMapStore& store = RefMapStore::Instance();
  int from, to;
  if (plotter::IsMilling(cls)) {
    if (TableRange(store.routerOffsetSIndex, store.routerOffsetEIndex, from, to)) {
      for (int t = from; t <= to; ++t) {
        Check(RvGiRefMapTableTrace(int16_t(t), kOutputMask, this, MillingWriterThunk, 1));
      }
    }
    return;
  }
  if (cls == 10) {
    if (TableRange(store.hatchingSIndex, store.hatchingEIndex, from, to)) {
      for (int t = from; t <= to; ++t) {
        Check(RvGiRefMapTableMatchTrace(int16_t(t), kHatchingFrameKey, kOutputMask, this, CuttingWriterThunk, 1));
        Check(RvGiRefMapTableMatchTrace(int16_t(t), kHatchingLineKey, kOutputMask, this, CuttingWriterThunk, 1));
      }
    }
    return;
  }
  if (cls != 0) {
    std::vector<RVINSIDEPATH> list;
    store.CollectArts(main, list);
    list.erase(std::remove_if(list.begin(), list.end(),
                              [](const RVINSIDEPATH& e) {
                                const CRvArt* a = ArtOf(e.art);
                                return a->GetType() != kArtPath || static_cast<const CRvPath*>(a)->m_closed == 0;
                              }),
               list.end());
    InsidePass(list);
    if (!plotter::SkipsBothSides(cls)) {
      Check(RvGiRefMapTableTrace(main, kOutputMask, this, EntryBothSidesCutInfo, 1));
    }
  }
  Check(RvGiRefMapTableTrace(main, kOutputMask, this, CuttingWriterThunk, 1));
}

void CRvRVLFormat::WriteSorted(CRvArtSort& sort) {
  const uint16_t cls = m_param.plotterClass;
  m_artTotal = int32_t(sort.size());
  if (cls != 0 && !plotter::IsMilling(cls)) {
    std::vector<RVINSIDEPATH> list;
    sort.copyToInsideList(list);
    InsidePass(list);
    if (!plotter::SkipsBothSides(cls)) sort.forEach(*this, EntryBothSidesCutInfo);
  }
  sort.forEach(*this, plotter::IsMilling(cls) ? MillingWriterThunk : CuttingWriterThunk);
}

void CRvRVLFormat::SortedRoute() {
  const uint16_t cls = m_param.plotterClass;
  const int16_t main = MainTable();
  RefMapStore& store = RefMapStore::Instance();
  int from, to;
  if (m_param.sortPerCutOrder == 0) {
    if (cls == 0) {
      CRvBlockBubbleSort sort(m_placement, m_param);
      Check(sort.SortTable(m_progressContext, 1));
      WriteSorted(sort);
    } else if (plotter::IsMilling(cls)) {
      if (!TableRange(store.routerOffsetSIndex, store.routerOffsetEIndex, from, to)) return;
      CRvArtSortByBounds sort(m_placement, m_param);
      Check(sort.SortTableRange(m_progressContext, int16_t(from), int16_t(to), 1));
      WriteSorted(sort);
    } else {
      CRvArtSortByBounds sort(m_placement, m_param);
      Check(sort.SortTable(m_progressContext, 1));
      WriteSorted(sort);
    }
    return;
  }
  if (plotter::IsMilling(cls)) {
    if (!TableRange(store.routerOffsetSIndex, store.routerOffsetEIndex, from, to)) return;
    for (int t = from; t <= to; ++t) {
      CRvArtSortByBounds sort(m_placement, m_param);
      Check(sort.SortTableRange(m_progressContext, int16_t(t), int16_t(t), 1));
      WriteSorted(sort);
    }
    return;
  }
  // One cut-order step at a time; a table without keys has no step.
  const int32_t steps = RvGiGetRefMapArtCount(main);
  int16_t order = 0;
  for (int32_t step = 0; step < steps && order != 2; ++step) {
    Check(Guard([&] {
      if (cls == 0) {
        CRvBlockBubbleSort sort(m_placement, m_param);
        Check(sort.SortByOrder(m_progressContext, order, 1));
        WriteSorted(sort);
      } else {
        CRvArtSortByBounds sort(m_placement, m_param);
        Check(sort.SortByOrder(m_progressContext, order, 1));
        WriteSorted(sort);
      }
    }));
  }
}

// ------------------------------------------------------------ passes

void CRvRVLFormat::StartPointPass(CRvArt* art) {
  int32_t closed = 0;
  Check(RvGiGetPathClosed(art, &closed));
  const RVRIFMATRIX matrix = art->m_matrix;
  CRvArt* first = art->GetChild(0);
  if (first == nullptr || first->GetType() != kArtBezier) return;
  auto& c = *static_cast<CRvBezier*>(first);
  const int32_t clockwise = RvMiJudgePathClockwise(&c, closed);
  if (m_param.forceCounterClockwise == 1 && clockwise == 1 && closed != 0) Check(RvGiReverseBezierPoint(&c));
  if (closed == 0) return;
  const int32_t n = c.GetPointCount();
  double best = 0.0;
  bool straightFound = false;
  int32_t chosen = 0;
  auto mapped = [&](int32_t k) {
    RVBEZIERPOINT p = c.GetPoint(k);
    p.anchor = Apply(matrix, p.anchor);
    p.in = Apply(matrix, p.in);
    p.out = Apply(matrix, p.out);
    return p;
  };
  for (int32_t i = 0; i < n; ++i) {
    const int32_t nx = c.GetNextIndex(i);
    const int32_t pv = c.GetPrevIndex(i);
    const RVBEZIERPOINT cur = mapped(i), nxt = mapped(nx), prv = mapped(pv);
    if (std::fabs(RvMiCalcAngleOfBezier(cur, prv, nxt) - 3.141592653589793) < 0.1745329350233078) continue;
    const bool straight =
        std::fabs(RvMiCalcAngleOfThreePoints(&cur.out, &cur.anchor, &nxt.anchor)) <= 0.01745329238474369 &&
        std::fabs(RvMiCalcAngleOfThreePoints(&cur.anchor, &nxt.anchor, &nxt.in)) <= 0.01745329238474369;
    const double length = Distance(cur.anchor, nxt.anchor);
    bool take;
    if (!straightFound) {
      take = straight || length > best;
    } else {
      take = straight && length > best;
    }
    if (!take) continue;
    if (straight) straightFound = true;
    best = length;
    chosen = plotter::IsMilling(m_param.plotterClass) ? nx : i;
  }
  Check(RvGiSortBezierPoint(&c, chosen, closed));
  Check(RvGiSetPathStartSegment(&c, 0));
}

void CRvRVLFormat::InsidePass(std::vector<RVINSIDEPATH>& list) {
  if (list.size() >= 2) {
    // Largest area first; equal areas keep their order (the order of a
    // bubble sort, reached by a stable sort on areas computed once).
    std::vector<std::pair<double, RVINSIDEPATH>> keyed;
    keyed.reserve(list.size());
    for (const RVINSIDEPATH& e : list) {
      double area = 0.0;
      Check(PathArea(ArtOf(e.art), area));
      area = std::fabs(area);
      if (std::isnan(area)) area = -1.0;
      keyed.emplace_back(area, e);
    }
    std::stable_sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
    for (std::size_t k = 0; k < keyed.size(); ++k) list[k] = keyed[k].second;
    for (std::size_t i = 0; i + 1 < list.size(); ++i) {
      for (std::size_t j = i + 1; j < list.size(); ++j) {
        int32_t inside = 0;
        Check(RvMiJudgeInsidePath(list[j].art, list[i].art, &inside));
        if (inside != 0 && list[i].inside == list[j].inside) list[j].inside = list[j].inside != 0 ? 0 : 1;
      }
    }
  }
  if (m_param.swapInsideOutside != 0) {
    for (RVINSIDEPATH& e : list) e.inside = e.inside != 0 ? 0 : 1;
  }
  for (const RVINSIDEPATH& e : list) {
    if (e.inside != 0) ArtOf(e.art)->SetTag(kInsidePathTag, "");
  }
}

// ------------------------------------------------------------ writers

void CRvRVLFormat::CuttingWriter(CRvArt* art) {
  const RVPLOTPARAM& p = m_param;
  m_vCut = 0;
  const RVRIFMATRIX matrix = art->m_matrix;
  const bool excluded = (art->AttrFlags() & kAttrExcluded) != 0;
  CRvArt* firstComponent = art->GetChild(0);
  int32_t closedFlag = 0;
  Check(RvGiGetPathClosed(art, &closedFlag));
  bool closed = closedFlag != 0;

  std::vector<CRvArt*> parts;
  if (art->HasTag(kBothSidesCutTag)) {
    (void)SplitBothSidesCut(*this, art, parts);  // the pieces that stand are cut
    closed = false;
  } else {
    parts.push_back(art);
  }

  int32_t passes = 1;
  bool blockDue = false;
  bool added = false;
  std::string key;
  if (p.conditionSource == 0 || excluded) {
    passes = p.doubleCreasePass != 0 ? 2 : 1;
  } else {
    bool haveKey = false;
    if (p.conditionSource == 3) {
      key.assign(p.conditionKey, strnlen(p.conditionKey, sizeof p.conditionKey));
      haveKey = true;
    } else if (const PlotInfo* info = art->GetPlotInfo()) {
      key = info->plotText;
      haveKey = true;
    }
    if (!haveKey) {
      passes = (p.doubleCreasePass != 0 && key == "CRE") ? 2 : 1;
      blockDue = true;
    } else {
      int32_t count = RvGetRepeatCount(key.c_str());
      if (p.doubleCreasePass != 0 && count > 0) {
        CondPair first{nullptr, nullptr};
        Check(RvGetCutConditionByKeyAtRepeat(key.c_str(), 1, &first));
        if (first.record != nullptr && std::strcmp(first.record->Tool, "CRE") == 0) {
          Check(RvAddCutCondition(key.c_str(), 1, &first));
          added = true;
          count = RvGetRepeatCount(key.c_str());
        }
      }
      blockDue = count != 0;
      passes = count != 0 ? count : 1;
    }
  }

  const uint32_t code = Guard([&] {
    int needMove = 1;
    for (int32_t k = 1; k <= passes; ++k) {
      if (!closed) needMove = 1;
      if (k == 1 && firstComponent != nullptr) Check(RvGiSetPathStartSegment(firstComponent, 0));
      if (blockDue) WriteConditionBlock(key, k);
      for (CRvArt* part : parts) {
        if (!closed) needMove = 1;
        if (excluded) continue;
        auto* container = dynamic_cast<CRvContainerArt*>(part);
        if (container == nullptr) continue;
        for (CRvArt* component : container->m_children.items()) {
          switch (component->GetType()) {
            case kArtBezier:
              WritePath(*static_cast<CRvBezier*>(component), matrix, closed, true, needMove);
              break;
            case kArtCompound:
            case kArtArc:
            case kArtSpline:
              break;
            default:
              Raise(ErrCode(5, 8));
          }
        }
      }
    }
    if (!excluded) {
      m_record.clear();
      AppendRow(m_record, kRowPenUp, {});
      WriteBytes(m_record);
    }
  });
  if (added) (void)RvDeleteCutCondition(key.c_str(), 1);
  Check(code);
  AdvanceProgress();
}

void CRvRVLFormat::WriteConditionBlock(const std::string& key, int32_t pass) {
  static const CondRecord kNoCondition{};
  CondPair pair{nullptr, nullptr};
  Check(RvGetCutConditionByKeyAtRepeat(key.c_str(), pass, &pair));
  const CondRecord& cond = pair.record != nullptr ? *pair.record : kNoCondition;
  const ThetaExtension* theta = static_cast<const ThetaExtension*>(pair.extension);
  std::string block;
  ComposeConditionBlock(block, cond, theta);
  WriteBytes(block);
}

// ------------------------------------------------------------ seams

uint32_t CRvRVLFormat::MillingWriter(CRvArt*) { return kErrOutputNotSupportedYet; }

void CRvRVLFormat::WriteMicroJoints() {
  CRvRIFMemoryData& doc = ActiveMemoryDocument();
  for (const auto& layer : doc.Layers()) {
    if (layer->GetName() == kMicroJointLayer) Raise(kErrOutputNotSupportedYet);
  }
}

}  // namespace rv
