#include "generate/contour.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>

#include "frame/error_codes.h"
#include "frame/frame.h"
#include "generate/clipper.h"
#include "generate/work_layer.h"
#include "generate/hatching.h"
#include "geometry/affine.h"
#include "geometry/curve_core.h"
#include "model/data_access.h"
#include "model/refmap.h"

namespace rv {

namespace {

constexpr const char* kPathLayerName = "Rivlen_ContourPathLayer";
constexpr const char* kLineKey = "RivlenContourLine";
constexpr const char* kLineColorName = "ContourColor";
constexpr int32_t kMakeCornerLines = 1;

/// Single-precision pi, with which corner angles are turned into degrees.
constexpr double kPiSingle = 3.1415927410125732;
constexpr double kTwoPi = 6.283185307179586;
/// A corner is sharp when it turns by less than this, degrees.
constexpr double kSharpLimit = 90.0;

/// The target of a corner until its bisector meets the next outer echo.
constexpr RVPOINT kUnsetTarget{std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::quiet_NaN()};
bool HasTarget(const RVCONTOURCORNER& record) { return !std::isnan(record.target.x); }

std::string LevelLayerName(int32_t level) { return "TempContourLayer" + std::to_string(level); }
std::string LevelKey(int32_t level) { return "RivlenContourOffset" + std::to_string(level); }

/// The anchors of a Bezier component.
std::vector<RVPOINT> Anchors(CRvArt* bezier) {
  CRvDataAccess& store = Store();
  const int32_t n = store.GetPathSegmentCount(bezier);
  std::vector<RVPOINT> anchors(std::size_t(n > 0 ? n : 0));
  for (int32_t i = 0; i < n; ++i) anchors[std::size_t(i)] = store.GetBezierPoint(bezier, i).anchor;
  return anchors;
}

/// Calls `visit` for every Bezier component of the paths of a level layer
/// (compounds entered); arcs, splines and compounds among a path's children
/// are passed over, any other child fails with 0x05000801.
void ForEachLevelBezier(CRvArt* layer, const std::function<void(CRvArt* bezier)>& visit) {
  CRvDataAccess& store = Store();
  ForEachLayerPath(layer, [&](CRvArt* path) {
    for (CRvArt* child = store.GetArtFirstChild(path); child != nullptr; child = store.GetArtSibling(child)) {
      const int16_t type = store.GetArtType(child);
      if (type == kArtBezier) {
        visit(child);
      } else if (type != kArtCompound && type != kArtArc && type != kArtSpline) {
        Raise(kErrPathComponent);
      }
    }
  });
}

}  // namespace

CRvContour& CRvContour::Instance() {
  static CRvContour instance;
  return instance;
}

void CRvContour::Run(int16_t document, const RVCONTOURINFO& info) {
  m_info = TakeOverRecord(info);
  CheckRecord(document);
  ClipperScope clipperScope;
  m_lineList.clear();
  m_corners.clear();
  CRvArt* workLayer = Store().GetLayerFromName(kWorkLayerName);
  const RunPlotInfo plot = ReadRunPlotInfo(workLayer);
  const std::vector<FlatPath> shapes = GatherShapes(workLayer);
  const double step = ShortenedOffset(m_info.offset);
  CheckLevelBound(shapes, step);

  uint32_t echoFailure = 0;
  int32_t level = 1;
  for (; level <= kMaxLevels; ++level) {
    uint32_t empty = 0;
    echoFailure = Guard([&] { empty = MakeEcho(shapes, step, level, plot); });
    if (echoFailure != 0 || empty != 0) break;
  }
  m_levelCount = int16_t(std::min(level - 1, int32_t(INT16_MAX)));
  if (m_info.cornerLines == kMakeCornerLines) FindCorners();
  Output(document, workLayer);
  m_lineList.clear();
  m_corners.clear();
  if (echoFailure != 0) Raise(echoFailure);
}

// Everything that can be refused is refused before anything changes.
void CRvContour::CheckRecord(int16_t document) const {
  RequireDocument(document);
  HatchingPlotMap();
  RequireFinite({m_info.angle});
  RequireFinite(m_info.matrix);
  if (!(m_info.offset < 0.0) || !std::isfinite(m_info.offset)) Raise(kErrContourOffset);
}

// The shapes that take part, flattened once: every echo offsets the same
// unchanged outlines.
std::vector<FlatPath> CRvContour::GatherShapes(CRvArt* workLayer) const {
  std::vector<FlatPath> shapes;
  const bool includeOpen = m_info.includeOpenPaths != 0;
  ForEachLayerPath(workLayer, [&](CRvArt* path) {
    if (TakesPart(path, includeOpen)) shapes.push_back(FlattenPath(path, kIdentity));
  });
  return shapes;
}

// An echo is empty once the step times the level passes half the extent of
// the shapes; a run that would need more than kMaxLevels echoes is refused.
void CRvContour::CheckLevelBound(const std::vector<FlatPath>& shapes, double step) const {
  double left = 0, right = 0, bottom = 0, top = 0;
  bool any = false;
  for (const FlatPath& shape : shapes) {
    for (const RVCURVEPOINT& p : shape.points) {
      if (!any) {
        left = right = p.point.x;
        bottom = top = p.point.y;
        any = true;
      }
      left = std::min(left, p.point.x);
      right = std::max(right, p.point.x);
      bottom = std::min(bottom, p.point.y);
      top = std::max(top, p.point.y);
    }
  }
  if (!any) return;
  const double extent = std::max(right - left, top - bottom);
  if (!(extent / 2.0 / -step < double(kMaxLevels - 1))) Raise(kErrContourTooManyLevels);
}

uint32_t CRvContour::MakeEcho(const std::vector<FlatPath>& shapes, double step, int32_t level,
                              const RunPlotInfo& plot) {
  m_workMatrix = m_info.matrix;
  ConcatRotate(m_workMatrix, -m_info.angle);
  CRvClipper& clipper = CRvClipper::Instance();
  clipper.SetJoinType(ClipJoin::kSquare);
  for (const FlatPath& shape : shapes) {
    clipper.AddOffsetPath(shape.points.data(), int32_t(shape.points.size()),
                          shape.closed ? ClipEnd::kClosedPolygon : ClipEnd::kOpenSquare);
  }
  ClipArtParams params;
  params.plotInfoText = plot.text;
  params.plotInfoNumber = plot.number;
  params.refMapIndex = HatchingPlotMap();
  params.refMapKey = LevelKey(level);
  const int32_t empty = clipper.OffsetToArts(step * level, LevelLayerName(level), params);
  clipper.ClearOffset();
  return uint32_t(empty);
}

void CRvContour::FindCorners() {
  for (int32_t level = 2; level <= m_levelCount; ++level) {
    CRvArt* layer = Store().GetLayerFromName(LevelLayerName(level));
    ForEachLevelBezier(layer, [&](CRvArt* bezier) { ScanCorners(bezier, int16_t(level)); });
  }
  SearchTargets();
  MergeCorners();
}

// Sharp corners of one component: turns of less than 90 degrees either way.
void CRvContour::ScanCorners(CRvArt* bezier, int16_t level) {
  CRvDataAccess& store = Store();
  const int32_t n = store.GetPathSegmentCount(bezier);
  if (n < 2) return;
  const bool storedTwice = SamePoint(store.GetBezierPoint(bezier, 0).anchor, store.GetBezierPoint(bezier, n - 1).anchor);
  int32_t index = 1, steps = n - 1;
  RVPOINT previous{0.0, 0.0};
  if (storedTwice) {
    previous = store.GetBezierPoint(bezier, 0).anchor;
  } else {
    CRvArt* path = store.GetArtParent(bezier);
    index = path != nullptr ? store.GetPathStartSegment(path) % n : 0;
    steps = n;
  }
  for (int32_t s = 0; s < steps; ++s, index = (index + 1) % n) {
    const RVBEZIERPOINT cur = store.GetBezierPoint(bezier, index);
    const RVBEZIERPOINT nxt = store.GetBezierPoint(bezier, index + 1 >= n ? 1 % n : index + 1);
    double a = AngleOfThreePoints(previous, cur.anchor, nxt.anchor);
    const double g = a * 180.0 / kPiSingle;
    if ((g > 0.0 && g < kSharpLimit) || (g < 0.0 && g > -kSharpLimit)) {
      if (a < 0.0) a += kTwoPi;
      const double bisector = std::atan2(previous.y - cur.anchor.y, previous.x - cur.anchor.x) + a / 2.0;
      RVCONTOURCORNER record;
      record.corner = cur.anchor;
      record.target = kUnsetTarget;
      record.level = level;
      record.angle = bisector * 180.0 / kPiSingle;
      m_corners.push_back(record);
    }
    previous = cur.out;
  }
}

// Where the bisector of each corner meets the next outer echo; the last
// crossing found wins.
void CRvContour::SearchTargets() {
  for (RVCONTOURCORNER& record : m_corners) {
    const RVPOINT c = record.corner;
    const double theta = record.angle * kPiSingle / 180.0;
    const RVPOINT e{c.x + kCornerReach * std::cos(theta), c.y + kCornerReach * std::sin(theta)};
    CRvArt* outer = Store().GetLayerFromName(LevelLayerName(record.level - 1));
    ForEachLevelBezier(outer, [&](CRvArt* bezier) {
      const std::vector<RVPOINT> anchors = Anchors(bezier);
      const std::size_t n = anchors.size();
      if (n == 0) return;
      const bool storedTwice = SamePoint(anchors.front(), anchors.back());
      const std::size_t first = storedTwice ? 1 : 0, steps = storedTwice ? n - 1 : n;
      for (std::size_t s = 0, i = first; s < steps; ++s, i = (i + 1) % n) {
        const RVPOINT a = anchors[i], b = anchors[i + 1 >= n ? 0 : i + 1];
        const double side1 = ((a.x - b.x) * (e.y - a.y) + (a.y - b.y) * (a.x - e.x)) *
                             ((a.x - b.x) * (c.y - a.y) + (a.y - b.y) * (a.x - c.x));
        const double side2 = ((e.x - c.x) * (a.y - e.y) + (e.y - c.y) * (e.x - a.x)) *
                             ((e.x - c.x) * (b.y - e.y) + (e.y - c.y) * (e.x - b.x));
        if (!(side1 < 0.01 && side2 < 0.01)) continue;
        const double w1 = ((c.x - e.x) * (a.y - e.y) - (c.y - e.y) * (a.x - e.x)) / 2.0;
        const double w2 = ((c.x - e.x) * (e.y - b.y) - (c.y - e.y) * (e.x - b.x)) / 2.0;
        if (w1 + w2 == 0.0) continue;
        const double t = w1 / (w1 + w2);
        record.target = RVPOINT{a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
      }
    });
  }
}

// Corners of successive echoes on one line become one line.
void CRvContour::MergeCorners() {
  int16_t deepest = 1;
  for (const RVCONTOURCORNER& record : m_corners) deepest = std::max(deepest, record.level);
  for (std::size_t i = 0; i < m_corners.size(); ++i) {
    if (m_corners[i].level >= deepest || !HasTarget(m_corners[i])) continue;
    for (std::size_t j = i + 1; j < m_corners.size(); ++j) {
      if (Distance(m_corners[i].corner, m_corners[j].target) < kMergeDistance &&
          m_corners[i].angle - m_corners[j].angle < kMergeAngle) {
        m_corners[i].merged = 1;
        m_corners[j].target = m_corners[i].target;
      }
    }
  }
  // The first corner found is not carried over.
  for (std::size_t i = 1; i < m_corners.size(); ++i) {
    if (m_corners[i].merged == 0) m_lineList.push_back(m_corners[i]);
  }
}

void CRvContour::Output(int16_t document, CRvArt* workLayer) {
  RVRIFMATRIX inverse;
  if (!Invert(m_workMatrix, inverse)) Raise(kErrSingularMatrix);
  CRvDataAccess& store = Store();
  store.SetActiveDocument(document);
  CRvArt* layer = FindOrCreateLayer(kPathLayerName);
  const RunPlotInfo plot = ReadRunPlotInfo(workLayer);
  for (int32_t level = m_levelCount; level >= 1; --level) {
    CRvArt* levelLayer = store.GetLayerFromName(LevelLayerName(level));
    if (levelLayer == nullptr) break;
    CopyLevel(layer, levelLayer);
  }
  if (m_info.cornerLines == kMakeCornerLines) MakeCornerLines(layer, plot);
}

// Copies the echoes of one level: closed paths and compounds (their paths by
// size, smallest first) in layer order, then the open paths.
void CRvContour::CopyLevel(CRvArt* layer, CRvArt* levelLayer) {
  CRvDataAccess& store = Store();
  auto counted = [&](CRvArt* path) { return (store.GetPathAttrFlag(path) & kAttrCounted) != 0; };
  for (CRvArt* art = store.GetArtFirstChild(levelLayer); art != nullptr; art = store.GetArtSibling(art)) {
    const int16_t type = store.GetArtType(art);
    if (type == kArtPath && store.GetPathClosed(art) != 0 && counted(art)) {
      CopyPathDeep(layer, art);
    } else if (type == kArtCompound) {
      std::vector<std::pair<double, CRvArt*>> paths;
      for (CRvArt* p = store.GetArtFirstChild(art); p != nullptr; p = store.GetArtSibling(p)) {
        if (store.GetArtType(p) == kArtPath && counted(p)) {
          paths.emplace_back(std::fabs(static_cast<CRvPath*>(p)->GetArea()), p);
        }
      }
      if (paths.empty()) continue;
      std::stable_sort(paths.begin(), paths.end(),
                       [](const auto& x, const auto& y) { return x.first < y.first; });
      CRvArt* compound = store.CreateArt(kArtCompound, kLastChild, layer);
      for (const auto& entry : paths) CopyPathDeep(compound, entry.second);
    }
  }
  for (CRvArt* art = store.GetArtFirstChild(levelLayer); art != nullptr; art = store.GetArtSibling(art)) {
    if (store.GetArtType(art) == kArtPath && store.GetPathClosed(art) == 0 && counted(art)) {
      CopyPathDeep(layer, art);
    }
  }
}

void CRvContour::MakeCornerLines(CRvArt* layer, const RunPlotInfo& plot) {
  CRvDataAccess& store = Store();
  const int16_t map = HatchingPlotMap();
  for (const RVCONTOURCORNER& record : m_lineList) {
    if (SamePoint(record.corner, record.target) && record.corner.x == 0.0) continue;
    if (!HasTarget(record)) continue;  // the bisector met no outer echo
    CRvArt* path = store.CreateArt(kArtPath, kLastChild, layer);
    CRvArt* bezier = store.CreateArt(kArtBezier, kLastChild, path);
    for (const RVPOINT end : {record.corner, record.target}) {
      RVBEZIERPOINT p{};
      p.anchor = p.in = p.out = end;
      store.AddBezierPoint(bezier, p);
    }
    store.SetPathRgb(path, kStrokeColor, 0, 0, 0, kLineColorName);
    store.SetPathProp(path, kGeneratedFlags);
    store.SetPathAttrFlag(path, kGeneratedFlags);
    store.SetPathClosed(path, 0);
    store.SetPathPlotInfo(path, plot.number, plot.text);
    RefMapStore::Instance().Table(map).Add(kLineKey, kGeneratedFlags, path);
  }
}

}  // namespace rv
