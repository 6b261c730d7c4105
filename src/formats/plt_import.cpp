#include "formats/plt_import.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "frame/frame.h"
#include "model/data_access.h"

namespace rv {

namespace {

constexpr double kCloseTolerance = 0.1;  // document units, whatever the scale
constexpr int16_t kLastChild = 5;

// The bounds of a path flatten each straight piece into chords of at most 2
// units. A plot file can hold lines of kilometres, which would spend the
// import's time on bounds alone (and past 2 million units fail the curve
// code's point limit): such pieces, and all pieces once an import has
// flattened this budget, are measured directly. Real jobs stay well below
// (a 2.8 MB nesting job draws 1.4 million units of lines, none longer than
// 18000).
constexpr double kLongestFlattenedPiece = double(1 << 16);
constexpr double kFlattenBudget = double(1 << 22);

bool IsStraight(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b) {
  return a.out.x == a.anchor.x && a.out.y == a.anchor.y && b.in.x == b.anchor.x && b.in.y == b.anchor.y;
}

double PieceLength(const RVPOINT& a, const RVPOINT& b) { return std::hypot(b.x - a.x, b.y - a.y); }

/// The straight length that the bounds walk of `path` flattens, and its
/// longest piece.
double FlattenedLength(const CRvPath& path, double& longest) {
  double total = 0.0;
  const RVBEZIERPOINT* prev = nullptr;
  auto add = [&](const RVPOINT& a, const RVPOINT& b) {
    const double l = PieceLength(a, b);
    total += l;
    longest = std::max(longest, l);
  };
  for (const CRvArt* child : path.m_children.items()) {
    if (child->GetType() == kArtBezier) {
      const auto& pts = static_cast<const CRvBezier*>(child)->m_points;
      if (pts.empty()) continue;
      if (prev != nullptr) add(prev->anchor, pts.front().anchor);
      for (std::size_t i = 1; i < pts.size(); ++i) add(pts[i - 1].anchor, pts[i].anchor);
      prev = &pts.back();
    } else if (child->GetType() == kArtArc) {
      const auto& pts = static_cast<const CRvArc*>(child)->m_points;
      if (pts.empty()) continue;
      if (prev != nullptr) add(prev->anchor, pts.front().from);
      prev = nullptr;
    }
  }
  if (!(total == total)) longest = total;  // not a number: treat as too long
  return total;
}

}  // namespace

RVRECT DirectPathBounds(const CRvPath& path) {
  RVRECT box{-32768.0, 32767.0, -32768.0, 32767.0};
  auto curve = [&](const RVBEZIERPOINT& a, const RVBEZIERPOINT& b) {
    if (IsStraight(a, b)) {
      MergePoint(box, a.anchor);
      MergePoint(box, b.anchor);
    } else if (PieceLength(a.anchor, b.anchor) <= kLongestFlattenedPiece) {
      MergeCurve(box, a, b);
    } else {
      for (const RVPOINT& p : {a.anchor, a.out, b.in, b.anchor}) MergePoint(box, p);
    }
  };
  int16_t prevType = kArtAbstract;
  RVBEZIERPOINT prevBezier{};
  RVARCPOINT prevArc{};
  for (const CRvArt* child : path.m_children.items()) {
    if (child->GetType() == kArtBezier) {
      const auto& pts = static_cast<const CRvBezier*>(child)->m_points;
      if (pts.empty()) continue;
      if (prevType == kArtBezier) curve(prevBezier, pts.front());
      if (prevType == kArtArc) MergeArcPiece(box, prevArc.from, pts.front().anchor, prevArc.centre, prevArc.direction);
      for (std::size_t i = 1; i < pts.size(); ++i) curve(pts[i - 1], pts[i]);
      prevType = kArtBezier;
      prevBezier = pts.back();
    } else if (child->GetType() == kArtArc) {
      const auto& pts = static_cast<const CRvArc*>(child)->m_points;
      if (pts.empty()) continue;
      if (prevType == kArtBezier) {
        RVBEZIERPOINT to{};
        to.anchor = to.in = to.out = pts.front().from;
        curve(prevBezier, to);
      }
      if (prevType == kArtArc) MergeArcPiece(box, prevArc.from, pts.front().from, prevArc.centre, prevArc.direction);
      for (std::size_t i = 1; i < pts.size(); ++i) {
        MergeArcPiece(box, pts[i - 1].from, pts[i].from, pts[i - 1].centre, pts[i - 1].direction);
      }
      if (pts.size() == 1) MergeArcPiece(box, pts[0].from, pts[0].to, pts[0].centre, pts[0].direction);
      prevType = kArtArc;
      prevArc = pts.back();
    }
  }
  return box;
}

// ---------------------------------------------------------------------------
// The drawing builder
// ---------------------------------------------------------------------------

void CRvPLTImportData::OpenPath(int16_t componentType, const RVPOINT& start) {
  CRvDataAccess& store = CRvDataAccess::Instance();
  CRvLayer* layer = store.GetLayer(0);
  m_currentPath = store.CreateArt(kArtPath, kLastChild, layer);
  m_currentBezier = nullptr;
  m_currentArc = nullptr;
  NewComponent(componentType);
  m_pathStart = start;
}

void CRvPLTImportData::NewComponent(int16_t componentType) {
  CRvArt* component = CRvDataAccess::Instance().CreateArt(componentType, kLastChild, m_currentPath);
  if (componentType == kArtBezier) {
    m_currentBezier = component;
  } else {
    m_currentArc = component;
  }
}

void CRvPLTImportData::AppendAnchor(const RVPOINT& point) {
  RVBEZIERPOINT p{};
  p.anchor = p.in = p.out = point;
  CRvDataAccess::Instance().AddBezierPoint(m_currentBezier, p);
  m_pathEnd = point;
}

void CRvPLTImportData::AddLine(const RVPOINT& from, const RVPOINT& to, int16_t lastPen, int16_t penDown,
                               int16_t lastKind, const PlotPathValues& values) {
  if (lastPen == 0) {
    if (penDown == 0) return;  // a pen-up move
    OpenPath(kArtBezier, from);
    AppendAnchor(from);
    AppendAnchor(to);
    return;
  }
  if (penDown == 0) {
    FinishPath(lastKind, values, false);
    return;
  }
  if (lastKind == kMoveLine && m_currentBezier != nullptr) {
    AppendAnchor(to);
    return;
  }
  // A line after an arc starts a new Bezier at the arc's end.
  NewComponent(kArtBezier);
  AppendAnchor(from);
  AppendAnchor(to);
}

void CRvPLTImportData::AddArc(const RVARCPOINT& arc, int16_t lastPen, int16_t lastKind) {
  CRvDataAccess& store = CRvDataAccess::Instance();
  if (lastPen == 0 || m_currentPath == nullptr) {
    OpenPath(kArtArc, arc.from);
  } else if (lastKind != kMoveArc || m_currentArc == nullptr) {
    NewComponent(kArtArc);
  }
  store.AddArcPoint(m_currentArc, arc);
  m_pathEnd = arc.to;
}

void CRvPLTImportData::FinishPath(int16_t lastKind, const PlotPathValues& values, bool endOfFile) {
  if (m_currentPath == nullptr) Raise(1);  // the file draws nothing
  CRvDataAccess& store = CRvDataAccess::Instance();
  CRvArt* path = m_currentPath;
  const RVCOLOR black{nullptr, 1, {0, 0, 0, 0}};
  store.SetPathColor(2, path, black, "Black");
  store.SetPathAttrFlag(path, 7);
  if (SetsValuesAt(endOfFile)) {
    if (values.valid) {
      store.SetPathElementAtVCut(path, values.element, values.value);
    } else {
      store.SetPathElementAtVCut(path, -1, 0);
    }
  }
  const double gap = std::hypot(m_pathEnd.x - m_pathStart.x, m_pathEnd.y - m_pathStart.y);
  if (gap > kCloseTolerance || !(gap == gap)) {
    store.SetPathClosed(path, 0);
  } else {
    if (gap != 0.0) {
      // Snap the end onto the start: the last point of the last component.
      if (lastKind == kMoveLine && m_currentBezier != nullptr) {
        const int32_t last = store.GetPathSegmentCount(m_currentBezier) - 1;
        RVBEZIERPOINT p = store.GetBezierPoint(m_currentBezier, last);
        p.anchor = m_pathStart;  // the handles keep their coordinates
        store.ReplaceBezierPoint(m_currentBezier, last, p);
      } else if (lastKind == kMoveArc && m_currentArc != nullptr) {
        auto* arc = static_cast<CRvArc*>(m_currentArc);
        RVARCPOINT p = arc->GetPoint(arc->GetPointCount() - 1);
        arc->RemovePoint(arc->GetPointCount() - 1);
        p.to = m_pathStart;
        store.AddArcPoint(arc, p);
      }
      m_pathEnd = m_pathStart;
    }
    store.SetPathClosed(path, 1);
  }
  store.SetBoundingBox(path, PathBounds(path));
}

RVRECT CRvPLTImportData::PathBounds(CRvArt* path) {
  double longest = 0.0;
  const double length = FlattenedLength(*static_cast<CRvPath*>(path), longest);
  RVRECT bounds{};
  if (longest <= kLongestFlattenedPiece && m_flattened + length <= kFlattenBudget) {
    m_flattened += length;
    CRvDataAccess::Instance().GetPathBounds(path, bounds);
  } else {
    bounds = DirectPathBounds(*static_cast<CRvPath*>(path));
  }
  return bounds;
}

// ---------------------------------------------------------------------------
// Driver and format
// ---------------------------------------------------------------------------

CRvPLTAccessFirmSource::CRvPLTAccessFirmSource() : CRvPlotImportDriver(std::make_unique<CRvPLTImportData>()) {}

CRvPLTFormat::CRvPLTFormat(const double* unitScale)
    : m_unitScale(unitScale == nullptr || *unitScale == 0.0 ? 0.025 : *unitScale) {}

uint32_t CRvPLTFormat::ImportToRIF() {
  return Guard([&] {
    CRvDataAccess& store = CRvDataAccess::Instance();
    CRvLayer* layer = store.CreateLayer(0, nullptr);
    store.SetLayerName(layer, "KFPlotFileLayer");
    CRvPLTAccessFirmSource source;
    source.Import(*this, m_unitScale);
  });
}

uint32_t CRvPLTFormat::ExportFromRIF(void*) { return ErrCode(1, 17); }

}  // namespace rv

extern "C" RV_API uint32_t RvImPLTToRIF(const char* path, int16_t mode, int16_t* documentIndex,
                                        const double* unitScale) {
  return rv::Guard([&] {
    rv::CRvFile file(std::make_unique<rv::CRvPLTFormat>(unitScale));
    rv::Check(file.Import(path, uint16_t(mode), documentIndex));
  });
}
