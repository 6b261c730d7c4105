#include "formats/plt_import.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "frame/error_codes.h"
#include "frame/frame.h"
#include "model/data_access.h"

namespace rv {

namespace {

constexpr double kCloseTolerance = 0.1;  // document units, whatever the scale

}  // namespace

// ---------------------------------------------------------------------------
// The drawing builder
// ---------------------------------------------------------------------------

void CRvPLTImportData::Settle() {
  if (m_held.empty()) return;
  static_cast<CRvBezier*>(m_currentBezier)->AppendPoints(m_held.data(), m_held.size());
  m_held.clear();
}

void CRvPLTImportData::OpenPath(int16_t componentType, const RVPOINT& start) {
  Settle();
  CRvDataAccess& store = CRvDataAccess::Instance();
  CRvLayer* layer = store.GetLayer(0);
  m_currentPath = store.CreateArt(kArtPath, kLastChild, layer);
  m_currentBezier = nullptr;
  m_currentArc = nullptr;
  NewComponent(componentType);
  m_pathStart = start;
}

void CRvPLTImportData::NewComponent(int16_t componentType) {
  Settle();
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
  m_held.push_back(p);
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
  if (m_currentPath == nullptr) Raise(kNothingMade);  // the file draws nothing
  Settle();
  CRvDataAccess& store = CRvDataAccess::Instance();
  CRvArt* path = m_currentPath;
  const RVCOLOR black{nullptr, 1, {0, 0, 0, 0}};
  store.SetPathColor(kStrokeColor, path, black, "Black");
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
  RVRECT bounds{};
  store.GetPathBounds(path, bounds);
  store.SetBoundingBox(path, bounds);
}

// ---------------------------------------------------------------------------
// Driver and format
// ---------------------------------------------------------------------------

CRvPLTAccessFirmSource::CRvPLTAccessFirmSource() : CRvPlotImportDriver(std::make_unique<CRvPLTImportData>()) {}

CRvPLTFormat::CRvPLTFormat(const double* unitScale)
    : m_unitScale(unitScale == nullptr || *unitScale == 0.0 ? 0.025 : *unitScale) {}

namespace {

void MakePlotLayer() {
  CRvDataAccess& store = CRvDataAccess::Instance();
  CRvLayer* layer = store.CreateLayer(0, nullptr);
  store.SetLayerName(layer, "KFPlotFileLayer");
}

}  // namespace

uint32_t CRvPLTFormat::ImportToRIF() {
  return Guard([&] {
    MakePlotLayer();
    CRvPLTAccessFirmSource source;
    source.Import(*this, m_unitScale);
  });
}

void ImportPlotBytes(const uint8_t* bytes, std::size_t count, const double* unitScale) {
  const CRvPLTFormat format(unitScale);
  MakePlotLayer();
  CRvPLTAccessFirmSource source;
  source.ImportBytes(bytes, count, format.UnitScale());
}

uint32_t CRvPLTFormat::ExportFromRIF(void*) { return kErrNoDirection; }

}  // namespace rv

extern "C" RV_API uint32_t RvImPLTToRIF(const char* path, int16_t mode, int16_t* documentIndex,
                                        const double* unitScale) {
  return rv::Guard([&] {
    rv::CRvFile file(std::make_unique<rv::CRvPLTFormat>(unitScale));
    rv::Check(file.Import(path, uint16_t(mode), documentIndex));
  });
}
