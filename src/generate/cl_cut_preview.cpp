#include "generate/cl_cut_preview.h"

#include <cfloat>
#include <cmath>
#include <limits>

#include "frame/error_codes.h"
#include "frame/frame.h"
#include "geometry/affine.h"
#include "geometry/convert_pt.h"
#include "geometry/judge.h"
#include "model/data_access.h"
#include "model/one_bezier.h"

namespace rv {

namespace {

/// Quarter turn (three of them, backwards) of the turned window.
constexpr double kTurnedWindow = -4.71238899230957;

/// `v` rounded to single precision; beyond the single range it becomes an
/// infinity of its sign instead of a value the conversion can't hold.
double ToSingle(double v) {
  if (std::isnan(v)) return v;
  if (std::fabs(v) > double(FLT_MAX)) return std::copysign(std::numeric_limits<double>::infinity(), v);
  return double(static_cast<float>(v));
}

/// The path element values of a path; a path without that record reads as
/// "none" (-1, 0), as a path that the importer finished at the end of the file.
void ReadVCut(const CRvArt* path, int16_t& element, int16_t& value) {
  const PlotInfo* info = path->GetPlotInfo();
  element = info != nullptr ? info->vcutElement : int16_t(-1);
  value = info != nullptr ? info->vcutValue : int16_t(0);
}

/// Kind of pass by the path element values.
uint16_t PassType(int16_t element, int16_t value) {
  if (element == -1) return 0;
  if (element == 0 && value == 0) return 1;
  if (element == 0 && value == 1) return 2;
  return 3;
}

/// The layer `name` of the active document; kErrNullLayer when it is missing.
CRvLayer* NeedLayer(CRvDataAccess& store, const char* name) {
  CRvLayer* layer = store.GetLayerFromName(name);
  if (layer == nullptr) Raise(kErrNullLayer);
  return layer;
}

RVRECT Union(const RVRECT& r, const RVRECT& s) {
  return RVRECT{std::fmax(r.top, s.top), std::fmin(r.left, s.left), std::fmax(r.right, s.right),
                std::fmin(r.bottom, s.bottom)};
}

RVBEZIERPOINT Mapped(const RVRIFMATRIX& m, const RVBEZIERPOINT& p) {
  RVBEZIERPOINT q = p;
  q.anchor = Apply(m, p.anchor);
  q.in = Apply(m, p.in);
  q.out = Apply(m, p.out);
  return q;
}

/// The paths of a layer in order, those of its compounds in their place.
std::vector<CRvArt*> PathsOf(CRvDataAccess& store, const CRvArt* layer) {
  std::vector<CRvArt*> paths;
  for (CRvArt* art = store.GetArtFirstChild(layer); art != nullptr; art = store.GetArtSibling(art)) {
    if (art->GetType() == kArtPath) paths.push_back(art);
    if (art->GetType() != kArtCompound) continue;
    for (CRvArt* path = store.GetArtFirstChild(art); path != nullptr; path = store.GetArtSibling(path)) {
      if (path->GetType() == kArtPath) paths.push_back(path);
    }
  }
  return paths;
}

}  // namespace

CRvCLCutPreview& CRvCLCutPreview::Instance() {
  static CRvCLCutPreview instance;
  return instance;
}

// ---------------------------------------------------------------------------
// The working layer
// ---------------------------------------------------------------------------

void CRvCLCutPreview::ConvertToBezierArt() {
  CRvDataAccess& store = CRvDataAccess::Instance();
  CRvLayer* source = NeedLayer(store, kPreviewSourceLayerName);
  CRvLayer* target = store.CreateLayer(0, nullptr);
  store.SetLayerName(target, kPreviewLayerName);
  ConvertChildren(store, source, target);
}

void CRvCLCutPreview::ConvertChildren(CRvDataAccess& store, const CRvArt* source, CRvArt* target) {
  // A compound holds paths only, so the walk is two levels deep at most.
  for (CRvArt* art = store.GetArtFirstChild(source); art != nullptr; art = store.GetArtSibling(art)) {
    const int16_t type = art->GetType();
    if (type == kArtPath) {
      ConvertPath(store, art, target);
    } else if (type == kArtCompound) {
      CRvArt* compound = store.CreateArt(kArtCompound, kLastChild, target);
      for (CRvArt* path = store.GetArtFirstChild(art); path != nullptr; path = store.GetArtSibling(path)) {
        if (path->GetType() == kArtPath) ConvertPath(store, path, compound);
      }
    }
  }
}

void CRvCLCutPreview::ConvertPath(CRvDataAccess& store, CRvArt* path, CRvArt* target) {
  CRvArt* copy = CopyPathShell(store, target, path);
  int16_t element = -1, value = 0;
  ReadVCut(path, element, value);
  store.SetPathElementAtVCut(copy, element, value);
  JoinComponentsIntoBezier(store, copy, path);
  const RVRECT bounds = store.GetArtBounds(copy);
  store.SetBoundingBox(copy, bounds);
  store.SetBoundingBox(path, bounds);
}

// ---------------------------------------------------------------------------
// The window
// ---------------------------------------------------------------------------

void CRvCLCutPreview::SetMatrix(uint16_t orientation, double width, double height) {
  CRvDataAccess& store = CRvDataAccess::Instance();
  const CRvLayer* source = NeedLayer(store, kPreviewSourceLayerName);
  // The origin always lies in the bounds: the union starts from zeros.
  m_bounds = RVRECT{0.0, 0.0, 0.0, 0.0};
  for (CRvArt* path : PathsOf(store, source)) {
    const uint8_t flags = store.GetPathAttrFlag(path);
    if ((flags & kFlagPlotted) != 0 && (flags & kFlagStop) == 0) m_bounds = Union(m_bounds, store.GetArtBounds(path));
  }
  double w = m_bounds.right - m_bounds.left;
  double h = m_bounds.top - m_bounds.bottom;
  if (orientation == 1) std::swap(w, h);
  const double byHeight = (height - 2.0 * kWindowMargin) / h;
  const double byWidth = (width - 2.0 * kWindowMargin) / w;
  const double s = ToSingle(byHeight > byWidth ? byWidth : byHeight);
  const double ox = ToSingle(((width - 1.0) - w * s) / 2.0);
  const double oy = ToSingle(((height - 1.0) - h * s) / 2.0);

  RVRIFMATRIX m = kIdentity;
  ConcatTranslate(m, -m_bounds.left, -m_bounds.bottom);
  if (orientation == 1) {
    ConcatRotate(m, kTurnedWindow);
    ConcatTranslate(m, w, 0.0);
  }
  if (orientation != 2) {
    ConcatScale(m, 1.0, -1.0);
    ConcatTranslate(m, 0.0, h);
  }
  ConcatScale(m, s, s);
  ConcatTranslate(m, ox, oy);
  m_matrix = m;
}

// ---------------------------------------------------------------------------
// The point lists
// ---------------------------------------------------------------------------

void CRvCLCutPreview::MakeData(int16_t documentIndex) {
  CRvDataAccess& store = CRvDataAccess::Instance();
  store.SetActiveDocument(documentIndex);
  const CRvLayer* layer = NeedLayer(store, kPreviewLayerName);
  for (CRvArt* path : PathsOf(store, layer)) {
    if ((store.GetPathAttrFlag(path) & kFlagStop) != 0) break;
    MakePasses(store, path);
  }
}

void CRvCLCutPreview::MakePasses(CRvDataAccess& store, CRvArt* path) {
  int16_t element = -1, value = 0;
  ReadVCut(path, element, value);
  const int32_t closed = store.GetPathClosed(path);
  const uint16_t passType = PassType(element, value);
  for (CRvArt* child = store.GetArtFirstChild(path); child != nullptr; child = store.GetArtSibling(child)) {
    const int32_t clockwise = JudgeClockwise(child) == 1 ? 1 : 0;
    if (child->GetType() == kArtBezier) {
      const auto* bezier = static_cast<const CRvBezier*>(child);
      const int32_t n = bezier->GetPointCount();
      AppendPass(n > 0 ? &bezier->GetPoint(0) : nullptr, n, closed, clockwise, passType);
    } else if (child->GetType() == kArtArc) {
      // An arc left in the working layer is drawn through its Bezier points.
      const auto* arc = static_cast<const CRvArc*>(child);
      std::vector<RVBEZIERPOINT> points;
      for (int32_t i = 0; i < arc->GetPointCount(); ++i) {
        for (const RVCURVEPOINT& r : CRvConvertPt().ArcToCurves(arc->GetPoint(i))) points.push_back(r.bezier);
      }
      AppendPass(points.data(), int32_t(points.size()), closed, clockwise, passType);
    }
  }
}

void CRvCLCutPreview::AppendPass(const RVBEZIERPOINT* points, int32_t count, int32_t closed, int32_t clockwise,
                                 uint16_t passType) {
  // A closed path also runs from its last point back to its first.
  const int32_t curves = closed != 0 ? count : count - 1;
  std::vector<RVPOINT> flat;
  for (int32_t i = 0; i < curves; ++i) {
    const int32_t next = i + 1 == count ? 0 : i + 1;
    const RVBEZIERPOINT pair[2] = {Mapped(m_matrix, points[i]), Mapped(m_matrix, points[next])};
    CRvConvertPt worker;
    worker.m_maxLength = kMaxLength;
    worker.m_tolerance = kTolerance;
    worker.m_mode = 1;
    for (const RVCURVEPOINT& r : worker.CurvesToPoints(pair, 2)) flat.push_back(r.point);
  }
  // A failure above leaves the passes made so far and none of this one.
  RVCUTPREVIEWPASS pass{};
  pass.pointCount = int32_t(flat.size());
  pass.clockwise = clockwise;
  pass.closed = closed;
  pass.passType = passType;
  m_points.insert(m_points.end(), flat.begin(), flat.end());
  m_passes.push_back(pass);
  m_totalPoints += pass.pointCount;
}

void CRvCLCutPreview::Initialize() {
  m_totalPoints = 0;
  m_passes.clear();
  m_points.clear();
  CRvDataAccess::Instance().DeleteActiveDocument();
}

}  // namespace rv
