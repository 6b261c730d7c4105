#include "generate/hatching.h"

#include <cmath>
#include <vector>

#include "frame/error_codes.h"
#include "frame/frame.h"
#include "generate/clipper.h"
#include "generate/work_layer.h"
#include "generate/hatch_order.h"
#include "geometry/affine.h"
#include "geometry/judge.h"
#include "model/data_access.h"
#include "model/refmap.h"

namespace rv {

namespace {

constexpr const char* kOffsetLayerName = "Rivlen_HatchingOffsetLayer";
constexpr const char* kPathLayerName = "Rivlen_HatchingPathLayer";
constexpr const char* kFrameLayerName = "Rivlen_HatchingFrameLayer";
constexpr const char* kOffsetKey = "RivlenHatchingOffset";
constexpr const char* kLineKey = "RivlenHatchingLine";
constexpr const char* kFrameKey = "RivlenHatchingFrame";
constexpr const char* kLineColorName = "HatchingColor";
constexpr uint16_t kUnsetMark = 65535;

/// What `generate` asks for.
constexpr int32_t kLinesOnly = 1;
constexpr int32_t kFrameOnly = 2;

/// Answers of the orientation judgment.
constexpr int32_t kClockwise = 1;
constexpr int32_t kCounterClockwise = 2;

}  // namespace

double ShortenedOffset(double offset) {
  return offset < -CRvHatching::kOffsetShortening ? offset + CRvHatching::kOffsetShortening : offset;
}

CRvHatching& CRvHatching::Instance() {
  static CRvHatching instance;
  return instance;
}

uint32_t CRvHatching::Run(int16_t document, const RVHATCHINGINFO& info) {
  m_work.info = TakeOverRecord(info);
  CheckRecord(document);
  ClipperScope clipperScope;
  CRvArt* workLayer = Store().GetLayerFromName(kWorkLayerName);
  OrientCompounds(workLayer);
  uint32_t result = 0;
  if (m_work.info.generate != kFrameOnly) {
    if (MakeOffsetShapes(workLayer)) {
      Check(RvGiGetArtsBoundsByFlag(&m_work.lineBounds, kAttrCounted, 0));
      CollectRegions(m_work);
      MergeRegions(m_work);
      FindMeshLines(m_work);
      MakeLineStack();
      ClipLines();
      OrderLines(m_work);
      MakeLinePaths(document, workLayer);
    } else {
      result = kNothingMade;
    }
  }
  if (m_work.info.generate != kLinesOnly && MakeFrame(workLayer) != 0) result = kNothingMade;
  return result;
}

// Everything that can be refused is refused before anything changes.
void CRvHatching::CheckRecord(int16_t document) const {
  const RVHATCHINGINFO& info = m_work.info;
  RequireDocument(document);
  HatchingPlotMap();
  RequireFinite({info.angle, info.offset, info.frameOffset});
  RequireFinite(info.matrix);
  if (info.generate == kFrameOnly) return;
  if (!(info.pitch > 0.0) || !std::isfinite(info.pitch)) Raise(kErrHatchPitch);
  RefMapStore& maps = RefMapStore::Instance();
  const int16_t current = MapIndex(maps.refMapIndex);
  if (current < 0 || std::size_t(current) >= maps.TableCount()) Raise(kErrGenerateNoMap);
}

// Holes run counter-clockwise and outlines clockwise in every compound.
void CRvHatching::OrientCompounds(CRvArt* workLayer) {
  if (workLayer == nullptr) return;
  CRvDataAccess& store = Store();
  for (CRvArt* art = store.GetArtFirstChild(workLayer); art != nullptr; art = store.GetArtSibling(art)) {
    if (store.GetArtType(art) != kArtCompound) continue;
    std::vector<RVINSIDEPATH> list;
    for (CRvArt* path = store.GetArtFirstChild(art); path != nullptr; path = store.GetArtSibling(path)) {
      if (store.GetArtType(path) != kArtPath) continue;
      if ((store.GetPathAttrFlag(path) & kAttrCounted) == 0 || store.GetPathClosed(path) == 0) continue;
      list.push_back(RVINSIDEPATH{path, 0});
    }
    JudgeInsideOutside(list, false);
    for (const RVINSIDEPATH& element : list) {
      CRvArt* component = store.GetArtFirstChild(static_cast<CRvArt*>(element.art));
      if (component == nullptr || store.GetArtType(component) != kArtBezier) continue;
      const int32_t turn = JudgeClockwise(component);
      if ((element.inside == 1 && turn == kClockwise) || (element.inside == 0 && turn == kCounterClockwise)) {
        store.ReverseBezierPoint(component);
      }
    }
  }
}

// The shapes, turned and offset, into the offset layer; false when nothing
// is left of them.
bool CRvHatching::MakeOffsetShapes(CRvArt* workLayer) {
  m_work.workMatrix = m_work.info.matrix;
  ConcatRotate(m_work.workMatrix, -m_work.info.angle);
  const RunPlotInfo plot = ReadRunPlotInfo(workLayer);
  CRvClipper& clipper = CRvClipper::Instance();
  clipper.SetJoinType(ClipJoin::kSquare);
  const bool includeOpen = m_work.info.includeOpenPaths != 0;
  ForEachLayerPath(workLayer, [&](CRvArt* path) {
    if (!TakesPart(path, includeOpen)) return;
    const FlatPath flat = FlattenPath(path, m_work.workMatrix);
    clipper.AddOffsetPath(flat.points.data(), int32_t(flat.points.size()),
                          flat.closed ? ClipEnd::kClosedPolygon : ClipEnd::kOpenSquare);
  });
  ClipArtParams params;
  params.plotInfoText = plot.text;
  params.plotInfoNumber = plot.number;
  params.refMapIndex = HatchingPlotMap();
  params.refMapKey = kOffsetKey;
  const int32_t empty = clipper.OffsetToArts(ShortenedOffset(m_work.info.offset), kOffsetLayerName, params);
  clipper.ClearOffset();
  return empty == 0;
}

// Horizontal lines a pitch apart over the box of the offset shapes, centred
// in it; a remainder of the height gets a line of its own with spreadLines.
void CRvHatching::MakeLineStack() {
  const RVRECT& box = m_work.lineBounds;
  const double pitch = m_work.info.pitch;
  const double height = std::fabs(box.top - box.bottom);
  const double stack = std::trunc(height / pitch);
  if (!(stack <= kMaxLines)) Raise(kErrHatchTooManyLines);
  int64_t count = int64_t(stack);
  const double remainder = height - pitch * double(count);
  double start = pitch / 2.0;
  if (remainder > kRemainderTolerance) {
    if (m_work.info.spreadLines != 0) {
      ++count;
      start = remainder / 2.0;
    } else {
      start += remainder / 2.0;
    }
  }
  m_work.lines.clear();
  m_work.lines.reserve(std::size_t(count));
  for (int64_t i = 0; i < count; ++i) {
    const double y = pitch * double(i) + box.bottom + start;
    m_work.lines.push_back(RVHATCHLINE{box.left, y, box.right, y, kUnsetMark, kUnsetMark});
  }
}

// Cuts the stack by the closed offset shapes; the shapes used lose bit 2.
void CRvHatching::ClipLines() {
  CRvDataAccess& store = Store();
  CRvClipper& clipper = CRvClipper::Instance();
  const RVRIFMATRIX identity = kIdentity;
  ForEachLayerPath(store.GetLayerFromName(kOffsetLayerName), [&](CRvArt* path) {
    if (!TakesPart(path, false)) return;
    const FlatPath flat = FlattenPath(path, identity);
    clipper.AddClipPath(flat.points.data(), int32_t(flat.points.size()), true, ClipRole::kClip);
    store.SetPathAttrFlag(path, uint8_t(store.GetPathAttrFlag(path) & ~kAttrCounted));
  });
  clipper.AddLines(m_work.lines);
  const ClipFill fill = m_work.info.evenOddFill != 0 ? ClipFill::kEvenOdd : ClipFill::kNonZero;
  m_work.lines = clipper.ExecuteToLines(ClipOperation::kIntersection, fill);
  clipper.ClearClipper();
}

// The lines, turned back, as two-point paths in the order of `lines`.
void CRvHatching::MakeLinePaths(int16_t document, CRvArt* workLayer) {
  RVRIFMATRIX inverse;
  if (!Invert(m_work.workMatrix, inverse)) Raise(kErrSingularMatrix);
  CRvDataAccess& store = Store();
  store.SetActiveDocument(document);
  CRvArt* layer = FindOrCreateLayer(kPathLayerName);
  const RunPlotInfo plot = ReadRunPlotInfo(workLayer);
  const int16_t map = HatchingPlotMap();
  for (auto it = m_work.lines.rbegin(); it != m_work.lines.rend(); ++it) {
    const RVHATCHLINE& line = *it;
    if (line.x1 == line.x2 && line.y1 == line.y2 && line.x1 == 0.0) continue;  // a removed line
    CRvArt* path = store.CreateArt(kArtPath, kFirstChild, layer);
    CRvArt* bezier = store.CreateArt(kArtBezier, kFirstChild, path);
    for (const RVPOINT end : {RVPOINT{line.x1, line.y1}, RVPOINT{line.x2, line.y2}}) {
      RVBEZIERPOINT p{};
      p.anchor = p.in = p.out = Apply(inverse, end);
      store.AddBezierPoint(bezier, p);
    }
    store.SetPathRgb(path, kStrokeColor, 0, 0, 0, kLineColorName);
    store.SetPathProp(path, kGeneratedFlags);
    store.SetPathAttrFlag(path, kGeneratedFlags);
    store.SetPathClosed(path, 0);
    store.SetPathPlotInfo(path, plot.number, plot.text);
    RefMapStore::Instance().Table(map).Add(kLineKey, kGeneratedFlags, path);
  }
  m_work.lines.clear();
}

// The outline offset by frameOffset, unturned; open paths are copied unless
// they are to be offset too. 1 when the offset leaves nothing.
uint32_t CRvHatching::MakeFrame(CRvArt* workLayer) {
  const RVRIFMATRIX frameMatrix = m_work.info.matrix;
  RVRIFMATRIX inverse;
  if (!Invert(frameMatrix, inverse)) Raise(kErrSingularMatrix);
  const RunPlotInfo plot = ReadRunPlotInfo(workLayer);
  CRvDataAccess& store = Store();
  CRvClipper& clipper = CRvClipper::Instance();
  clipper.SetJoinType(ClipJoin::kSquare);
  const int16_t map = HatchingPlotMap();
  ForEachLayerPath(workLayer, [&](CRvArt* path) {
    const uint8_t flags = store.GetPathAttrFlag(path);
    if ((flags & kAttrCounted) == 0 || (flags & kAttrExcluded) != 0) return;
    const bool closed = store.GetPathClosed(path) != 0;
    if (!closed && m_work.info.frameOpenPaths == 0) {
      CRvArt* copy = CopyPathDeep(FindOrCreateLayer(kFrameLayerName), path);
      RefMapStore::Instance().Table(map).Add(kFrameKey, flags, copy);
      return;
    }
    CRvArt* first = store.GetArtFirstChild(path);
    if (first == nullptr || store.GetArtType(first) != kArtBezier) return;
    const FlatPath flat = FlattenPath(path, frameMatrix);
    clipper.AddOffsetPath(flat.points.data(), int32_t(flat.points.size()),
                          closed ? ClipEnd::kClosedPolygon : ClipEnd::kOpenSquare);
  });
  ClipArtParams params;
  params.plotInfoText = plot.text;
  params.plotInfoNumber = plot.number;
  params.refMapIndex = map;
  params.refMapKey = kFrameKey;
  params.matrix = inverse;
  const int32_t empty = clipper.OffsetToArts(m_work.info.frameOffset, kFrameLayerName, params);
  clipper.ClearOffset();
  return uint32_t(empty);
}

}  // namespace rv
