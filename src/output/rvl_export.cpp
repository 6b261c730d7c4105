// The export operation of CRvRVLFormat: placement, passes, routes through
// the RefMap tables, and the cutting writer of one art.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <numbers>

#include "conditions/cut_cdn_mng.h"
#include "formats/file_frame.h"
#include "frame/error_codes.h"
#include "frame/frame.h"
#include "frame/progress.h"
#include "geometry/convert_pt.h"
#include "geometry/judge.h"
#include "model/data_access.h"
#include "model/refmap.h"
#include "output/art_sort.h"
#include "output/both_sides.h"
#include "output/placement.h"
#include "output/rvl_format.h"

namespace rv {

namespace {

/// The start-point pass compares angles with ten degrees (a flat corner) and
/// one degree (a straight segment), both as single-precision values: ten
/// degrees is the single-precision half turn over eighteen, one degree the
/// single value nearest to it.
constexpr double kTenDegreesSingle = 0.1745329350233078;
constexpr double kOneDegreeSingle = 0.01745329238474369;
static_assert(kOneDegreeSingle == double(float(0.017453292519943295)));

CRvRVLFormat& FormatOf(void* context) { return *static_cast<CRvRVLFormat*>(context); }

int16_t MainTable() { return MapIndex(RefMapStore::Instance().refMapIndex); }

// First and last table of a remembered range; false when either is unset.
bool TableRange(uint16_t first, uint16_t last, int& from, int& to) {
  if (first == kNoRefMap || last == kNoRefMap) return false;
  from = MapIndex(first);
  to = MapIndex(last);
  return true;
}

}  // namespace

uint32_t CuttingWriterThunk(void* context, void* art) {
  return Guard([&] { FormatOf(context).CuttingWriter(ArtOf(art)); });
}
uint32_t MillingWriterThunk(void* context, void* art) { return FormatOf(context).MillingWriter(ArtOf(art)); }

std::vector<RVINSIDEPATH> ClosedPathsOf(const std::vector<RVINSIDEPATH>& collected) {
  std::vector<RVINSIDEPATH> list;
  list.reserve(collected.size());
  for (const RVINSIDEPATH& e : collected) {
    const CRvArt* a = ArtOf(e.art);
    if (JudgedPath(a) && static_cast<const CRvPath*>(a)->m_closed != 0) list.push_back(e);
  }
  return list;
}

bool JudgedPath(const CRvArt* art) {
  if (art->GetType() != kArtPath) return false;
  const CRvArt* first = art->GetChild(0);
  return first != nullptr && first->GetType() == kArtBezier;
}

uint32_t CRvRVLFormat::ImportToRIF() { return kErrNoDirection; }

uint32_t CRvRVLFormat::ExportFromRIF(void* context) {
  m_progressContext = context;
  const uint32_t code = Guard([&] { RunExport(); });
  // The grown boxes go back to what they were, after success and failure.
  if (m_savedDocument) RestoreDocument();
  Progress().EndStage(context);
  return code;
}

void CRvRVLFormat::RunExport() {
  if (m_tileMode != 0) {
    TileRoute();
    return;
  }
  PlaceJob();
  if (plotter::HonoursStartPoints(m_param.plotterClass) && m_param.optimizeStartPoints != 0) {
    RefMapStore::Instance().Trace(MainTable(), kRefMapOutput, true, [&](CRvArt* art, void*) {
      StartPointPass(art);
      return 0u;
    });
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
  CRvDataAccess& store = CRvDataAccess::Instance();
  CRvRIFMemoryData& doc = store.ActiveDocument();
  RVRECT rect{};
  if (m_param.useDocumentBounds != 0) {
    doc.GetDocBoundBox(rect);
  } else {
    Check(RvGiGetArtsBoundsByFlag(&rect, kRefMapOutput, 1));
  }
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
  m_savedDocument = false;
  CRvRIFMemoryData* doc = CRvDataAccess::Instance().FindActiveDocument();
  if (doc == nullptr) return;
  doc->SetPlotBoundBox(m_savedPlotBox);
  doc->SetDocBoundBox(m_savedDocBox);
}

void CRvRVLFormat::UnsortedRoute() {
  RefMapStore& maps = RefMapStore::Instance();
  const int16_t main = MainTable();
  const uint16_t cls = m_param.plotterClass;
  maps.Trace(main, kRefMapOutput, true, [&](CRvArt* art, void*) {
    if ((art->AttrFlags() & kAttrExcluded) == 0) ++m_artTotal;
    return 0u;
  });
  Progress().BeginStage(m_progressContext);
  int from = 0, to = -1;
  if (plotter::IsMilling(cls)) {
    if (TableRange(maps.routerOffsetSIndex, maps.routerOffsetEIndex, from, to)) {
      for (int t = from; t <= to; ++t) {
        maps.Trace(int16_t(t), kRefMapOutput, true, [&](CRvArt* art, void*) { return MillingWriterThunk(this, art); });
      }
    }
    return;
  }
  auto cut = [&](CRvArt* art, void*) { return CuttingWriterThunk(this, art); };
  if (cls == plotter::kHatchingMachine) {
    if (TableRange(maps.hatchingSIndex, maps.hatchingEIndex, from, to)) {
      for (int t = from; t <= to; ++t) {
        maps.MatchTrace(int16_t(t), kHatchingFrameKey, kRefMapOutput, true, cut);
        maps.MatchTrace(int16_t(t), kHatchingLineKey, kRefMapOutput, true, cut);
      }
    }
    return;
  }
  if (!plotter::BlockSorts(cls)) {
    // The closed paths of the table.
    std::vector<RVINSIDEPATH> collected;
    maps.CollectArts(main, collected);
    std::vector<RVINSIDEPATH> list = ClosedPathsOf(collected);
    InsidePass(list);
    if (!plotter::SkipsBothSides(cls)) {
      maps.Trace(main, kRefMapOutput, true, [&](CRvArt* art, void*) { return EntryBothSidesCutInfo(this, art); });
    }
  }
  maps.Trace(main, kRefMapOutput, true, cut);
}

namespace {

bool AnyDivideCut() {
  bool any = false;
  (void)CRvCutCdnMng::Instance().Trace([&](const std::string&, const CondPair& pair) {
    any = any || (pair.record != nullptr && pair.record->DivideCut.Available > 0);
    return 0u;
  });
  return any;
}

}  // namespace

void CRvRVLFormat::WriteSorted(CRvArtSort& sort) {
  const uint16_t cls = m_param.plotterClass;
  m_artTotal = int32_t(sort.size());
  auto writeAll = [&] { sort.forEach(*this, plotter::IsMilling(cls) ? MillingWriterThunk : CuttingWriterThunk); };
  if (!plotter::JudgesSortedNesting(cls)) {
    writeAll();
    return;
  }
  auto bothSides = [&] {
    if (!plotter::SkipsBothSides(cls)) sort.forEach(*this, EntryBothSidesCutInfo);
  };
  std::vector<RVINSIDEPATH> list;
  sort.copyJudgedPaths(list);
  NestingJob* job = sort.nesting();
  if (job != nullptr && job->Readable() && WritesLeavePathsAlone(sort)) {
    // The job judges the paths while they are written, as the writing
    // doesn't change them; the tags follow, also when the writing fails.
    job->Order(list, m_param.swapInsideOutside != 0);
    const uint32_t code = Guard([&] {
      bothSides();
      writeAll();
    });
    InsidePass(list, job);
    Check(code);
    return;
  }
  InsidePass(list, job);
  bothSides();
  writeAll();
}

bool CRvRVLFormat::WritesLeavePathsAlone(const CRvArtSort& sort) const {
  if (!plotter::SkipsBothSides(m_param.plotterClass)) {
    // Turned paths change their points; a divide cut reads the tags at its
    // corners and adds joint points.
    if (m_param.forceCounterClockwise == 1) return false;
    if (m_param.conditionSource != 0 && AnyDivideCut()) return false;
  }
  // An art split by an earlier divide cut is split again as it is written.
  return !sort.anySplit();
}

void CRvRVLFormat::SortedRoute() {
  const uint16_t cls = m_param.plotterClass;
  const int16_t main = MainTable();
  RefMapStore& maps = RefMapStore::Instance();
  int from = 0, to = -1;
  if (m_param.sortPerCutOrder == 0) {
    if (plotter::BlockSorts(cls)) {
      CRvBlockBubbleSort sort(m_placement, m_param);
      Check(sort.SortTable(m_progressContext, 1));
      WriteSorted(sort);
    } else if (plotter::IsMilling(cls)) {
      if (!TableRange(maps.routerOffsetSIndex, maps.routerOffsetEIndex, from, to)) return;
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
    if (!TableRange(maps.routerOffsetSIndex, maps.routerOffsetEIndex, from, to)) return;
    for (int t = from; t <= to; ++t) {
      CRvArtSortByBounds sort(m_placement, m_param);
      Check(sort.SortTableRange(m_progressContext, int16_t(t), int16_t(t), 1));
      WriteSorted(sort);
    }
    return;
  }
  // One cut-order step at a time, each in a frame of its own. A step whose
  // entry isn't for output (0x06001001) ends by itself and the walk goes on;
  // any other failure, a cancel above all, ends the export. Each step moves
  // the walk on by one key, so the number of keys bounds the walk.
  const int32_t steps = RvGiGetRefMapArtCount(main);
  int16_t order = 0;
  for (int32_t step = 0; step < steps && order != 2; ++step) {
    const uint32_t code = Guard([&] {
      if (plotter::BlockSorts(cls)) {
        CRvBlockBubbleSort sort(m_placement, m_param);
        Check(sort.SortByOrder(m_progressContext, order, 1));
        WriteSorted(sort);
      } else {
        CRvArtSortByBounds sort(m_placement, m_param);
        Check(sort.SortByOrder(m_progressContext, order, 1));
        WriteSorted(sort);
      }
    });
    if (code != 0 && code != kErrNullArt) Raise(code);
  }
}

// ------------------------------------------------------------ passes

void CRvRVLFormat::StartPointPass(CRvArt* art) {
  CRvDataAccess& store = CRvDataAccess::Instance();
  const RVRIFMATRIX matrix = store.GetArtMatrix(art);
  CRvArt* first = store.GetArtFirstChild(art);
  const int32_t closed = store.GetPathClosed(art);
  if (first == nullptr || first->GetType() != kArtBezier) return;
  auto& c = *static_cast<CRvBezier*>(first);
  const int32_t clockwise = JudgeClockwise(&c);
  if (m_param.forceCounterClockwise == 1 && clockwise == 1 && closed != 0) store.ReverseBezierPoint(&c);
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
    if (std::fabs(CRvConvertPt::AngleOfBezier(cur, prv, nxt) - std::numbers::pi) < kTenDegreesSingle) continue;
    const bool straight =
        std::fabs(RvMiCalcAngleOfThreePoints(&cur.out, &cur.anchor, &nxt.anchor)) <= kOneDegreeSingle &&
        std::fabs(RvMiCalcAngleOfThreePoints(&cur.anchor, &nxt.anchor, &nxt.in)) <= kOneDegreeSingle;
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
  store.SortBezierPoint(&c, chosen, closed);
  store.SetPathStartSegment(&c, 0);
}

void CRvRVLFormat::InsidePass(std::vector<RVINSIDEPATH>& list, NestingJob* job) {
  // Largest area first (the order of the exchange sort, equal areas kept),
  // then the nesting parity; only the flags are needed here.
  const bool invert = m_param.swapInsideOutside != 0;
  if (job != nullptr) {
    job->Finish(list.data(), list.size(), invert);
  } else {
    JudgeNestingFlags(list.data(), list.size(), invert);
  }
  CRvDataAccess& store = CRvDataAccess::Instance();
  for (const RVINSIDEPATH& e : list) {
    if (e.inside != 0) store.SetArtTag(ArtOf(e.art), kInsidePathTag, "");
  }
}

// ------------------------------------------------------------ writers

void CRvRVLFormat::CuttingWriter(CRvArt* art) {
  const RVPLOTPARAM& p = m_param;
  CRvDataAccess& store = CRvDataAccess::Instance();
  CRvCutCdnMng& conditions = CRvCutCdnMng::Instance();
  m_vCut = 0;
  const RVRIFMATRIX matrix = store.GetArtMatrix(art);
  const bool excluded = (store.GetPathAttrFlag(art) & kAttrExcluded) != 0;
  CRvArt* firstComponent = store.GetArtFirstChild(art);
  bool closed = store.GetPathClosed(art) != 0;

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
      int32_t count = conditions.GetRepeatCount(key);
      if (p.doubleCreasePass != 0) {
        CondPair first{nullptr, nullptr};
        Check(conditions.GetConditionAtRepeat(key, 1, first));
        if (first.record != nullptr && std::strncmp(first.record->Tool, "CRE", sizeof first.record->Tool) == 0) {
          Check(conditions.AddCondition(key, 1, first));
          added = true;
          count = conditions.GetRepeatCount(key);
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
      if (k == 1 && firstComponent != nullptr) store.SetPathStartSegment(firstComponent, 0);
      if (blockDue) WriteConditionBlock(key, k);
      for (CRvArt* part : parts) {
        if (!closed) needMove = 1;
        if (excluded || !part->IsContainer()) continue;
        ForEachBezierComponent(part, [&](const CRvBezier& bezier) { WritePath(bezier, matrix, closed, true, needMove); });
      }
    }
    if (!excluded) {
      m_record.clear();
      AppendRow(m_record, kRowPenUp, {});
      WriteBytes(m_record);
    }
  });
  // The condition added for a double crease lives only for its art.
  if (added) (void)conditions.DeleteCondition(key, 1);
  Check(code);
  AdvanceProgress();
}

}  // namespace rv

extern "C" {

RV_API uint32_t RvExRIFToRVL(const char* path, int16_t documentIndex, const RVPLOTPARAM* param,
                             void* progressContext) {
  return rv::Guard([&] {
    if (param == nullptr) rv::Raise(rv::kErrNullArt);
    rv::CRvFile file(std::make_unique<rv::CRvRVLFormat>(*param));
    rv::Check(file.Export(path, documentIndex, progressContext));
  });
}

}  // extern "C"
