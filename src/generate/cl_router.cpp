#include "generate/cl_router.h"

#include <cmath>
#include <cstdio>
#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>

#include "conditions/cut_cdn_mng.h"
#include "frame/error_codes.h"
#include "frame/frame.h"
#include "generate/clipper.h"
#include "generate/work_layer.h"
#include "geometry/affine.h"
#include "geometry/convert_pt.h"
#include "geometry/curve_core.h"
#include "geometry/judge.h"
#include "model/data_access.h"
#include "model/one_bezier.h"
#include "conditions/cut_cdn_tbl.h"

namespace rv {

namespace {

/// The angle of the hatching lines of a clearing: three quarter turns.
constexpr double kClearingAngle = 4.71238899230957;
/// Pitch of a clearing whose tool leaves no positive pitch.
constexpr double kFallbackPitch = 0.2;
/// Half a turn, in single precision as the router's turns are.
constexpr double kHalfTurn = 3.1415927410125732;
/// The tag that asks the writers to lift over joints.
constexpr const char* kRouterJointTag = "RivlenKerflowMicroJointTag";
/// Room of the joint text, as the writers read it.
constexpr std::size_t kJointTextSize = 128;

/// The Milling value of pass 1 of `key` when its condition enables one,
/// else 0. A key that names no media raises 0x06001001.
double MillingOfFirstPass(const RVPLOTPARAM& param) {
  const std::string key(param.conditionKey, strnlen(param.conditionKey, sizeof param.conditionKey));
  CRvCutCdnMng& conditions = CRvCutCdnMng::Instance();
  CondPair pair{nullptr, nullptr};
  Check(conditions.GetConditionAtRepeat(key, 1, pair));
  const auto media = conditions.m_media.find(key);
  // Only a condition of a milling family carries a Milling value.
  if (pair.extension == nullptr || media == conditions.m_media.end() || media->second->Count() < 1 ||
      media->second->FormAt(0) != ExtensionForm::Milling) {
    return 0.0;
  }
  const auto* milling = static_cast<const MillingExtension*>(pair.extension);
  return milling->hasMilling != 0 ? milling->Milling : 0.0;
}

/// The paths of `art` entering compounds: the art itself when it is a path.
std::vector<CRvArt*> PathsOfArt(CRvArt* art) {
  std::vector<CRvArt*> paths;
  if (art->GetType() == kArtPath) paths.push_back(art);
  if (art->GetType() == kArtCompound || art->GetType() == kArtLayer) {
    ForEachLayerPath(art, [&](CRvArt* path) { paths.push_back(path); });
  }
  return paths;
}

CRvArt* FirstBezier(CRvArt* path) {
  CRvArt* child = Store().GetArtFirstChild(path);
  return child != nullptr && child->GetType() == kArtBezier ? child : nullptr;
}

bool IsClosedPath(CRvArt* path) { return path->GetType() == kArtPath && Store().GetPathClosed(path) != 0; }

}  // namespace

bool StartsWith(const std::string& name, const std::string& prefix) {
  return name.compare(0, prefix.size(), prefix) == 0;
}

CRvCLRouter& CRvCLRouter::Instance() {
  static CRvCLRouter instance;
  return instance;
}

// ---------------------------------------------------------------------------
// The four operations
// ---------------------------------------------------------------------------

void CRvCLRouter::OffsetLayers(double distance, bool inside, const std::string& sourcePrefix,
                               const std::string& targetPrefix, const std::string& plotInfoText,
                               const std::string& refMapKey) {
  CRvDataAccess& store = Store();
  if (inside && distance > 0.0) distance = -distance;
  std::vector<CRvArt*> stale;
  for (const auto& layer : store.ActiveDocument().Layers()) {
    if (StartsWith(layer->GetName(), targetPrefix)) stale.push_back(layer.get());
  }
  for (CRvArt* layer : stale) store.DeleteLayer(layer);
  ClipperScope scope;
  for (int n = 1;; ++n) {
    CRvLayer* layer = store.GetLayerFromName(sourcePrefix + std::to_string(n));
    if (layer == nullptr) break;
    OrientPaths(layer, false);
    bool any = false;
    for (CRvArt* art = store.GetArtFirstChild(layer); art != nullptr; art = store.GetArtSibling(art)) {
      any = AddOffsetPaths(art) || any;
    }
    const std::string target = targetPrefix + std::to_string(n);
    if (any) OffsetInto(distance, target, plotInfoText, refMapKey);
    CopyOpenPaths(layer, target);
  }
  MergeLayers(targetPrefix, inside);
}

void CRvCLRouter::OffsetArt(double distance, bool inside, CRvArt* art, const std::string& targetName,
                            const std::string& plotInfoText, const std::string& refMapKey) {
  if (art == nullptr) Raise(kErrNullArt);
  if (inside && distance > 0.0) distance = -distance;
  ClipperScope scope;
  if (AddOffsetPaths(art)) OffsetInto(distance, targetName, plotInfoText, refMapKey);
  CopyOpenPaths(art, targetName);
}

bool CRvCLRouter::AddOffsetPaths(CRvArt* art) {
  CRvClipper& clipper = CRvClipper::Instance();
  bool any = false;
  for (CRvArt* path : PathsOfArt(art)) {
    if (!IsClosedPath(path) || FirstBezier(path) == nullptr) continue;
    const FlatPath flat = FlattenPath(path, kIdentity);
    clipper.SetJoinType(ClipJoin::kRound);
    clipper.AddOffsetPath(flat.points.data(), int32_t(flat.points.size()), ClipEnd::kClosedPolygon);
    any = true;
  }
  return any;
}

void CRvCLRouter::OffsetInto(double distance, const std::string& target, const std::string& plotInfoText,
                             const std::string& refMapKey) {
  int16_t table = -1;
  Check(RvGiCreateRefMapTable(&table));
  Check(RvGiSetRefMapRouterPlotIndex(table));
  ClipArtParams params;
  params.plotInfoText = plotInfoText;
  params.plotInfoNumber = 1;
  params.refMapIndex = table;
  params.refMapKey = refMapKey;
  CRvClipper::Instance().OffsetToArts(distance, target, params);
  CRvClipper::Instance().ClearOffset();
}

void CRvCLRouter::CopyOpenPaths(CRvArt* art, const std::string& target) {
  CRvArt* layer = nullptr;
  for (CRvArt* path : PathsOfArt(art)) {
    if (path->GetType() != kArtPath || Store().GetPathClosed(path) != 0) continue;
    if (layer == nullptr) layer = FindOrCreateLayer(target);
    CopyPathDeep(layer, path);
  }
}

void CRvCLRouter::MergeLayers(const std::string& prefix, bool inside) {
  CRvDataAccess& store = Store();
  CRvLayer* merged = store.CreateLayer(0, nullptr);
  store.SetLayerName(merged, prefix);
  for (int n = 1;; ++n) {
    CRvLayer* layer = store.GetLayerFromName(prefix + std::to_string(n));
    if (layer == nullptr) break;
    OrientPaths(layer, inside);
    for (const Shape& shape : CollectShapes(layer)) {
      if (shape.compound == nullptr) {
        CopyPathDeep(merged, shape.outer);
        continue;
      }
      CRvArt* compound = store.CreateArt(kArtCompound, kLastChild, merged);
      CopyPathDeep(compound, shape.outer);
      for (CRvArt* inner : shape.inners) CopyPathDeep(compound, inner);
    }
  }
}

std::vector<CRvCLRouter::Shape> CRvCLRouter::CollectShapes(CRvArt* layer) {
  CRvDataAccess& store = Store();
  std::vector<Shape> shapes;
  auto routed = [&](CRvArt* path) { return (store.GetPathAttrFlag(path) & kFlagRouted) != 0; };
  for (CRvArt* art = store.GetArtFirstChild(layer); art != nullptr; art = store.GetArtSibling(art)) {
    if (art->GetType() == kArtPath && routed(art) && store.GetPathClosed(art) != 0) {
      shapes.push_back({art, nullptr, {}});
    } else if (art->GetType() == kArtCompound) {
      std::vector<CRvArt*> paths;
      for (CRvArt* p = store.GetArtFirstChild(art); p != nullptr; p = store.GetArtSibling(p)) {
        if (p->GetType() == kArtPath && routed(p)) paths.push_back(p);
      }
      if (paths.empty()) continue;
      // Smallest area first, by a bubble sort from the back (stable).
      std::vector<double> areas;
      for (CRvArt* p : paths) areas.push_back(std::fabs(PathArea(p)));
      for (std::size_t i = 0; i + 1 < paths.size(); ++i) {
        for (std::size_t j = paths.size() - 1; j > i; --j) {
          if (areas[j] < areas[j - 1]) {
            std::swap(areas[j], areas[j - 1]);
            std::swap(paths[j], paths[j - 1]);
          }
        }
      }
      shapes.push_back({paths.front(), art, std::vector<CRvArt*>(paths.begin() + 1, paths.end())});
    }
  }
  for (CRvArt* art = store.GetArtFirstChild(layer); art != nullptr; art = store.GetArtSibling(art)) {
    if (art->GetType() == kArtPath && routed(art) && store.GetPathClosed(art) == 0) shapes.push_back({art, nullptr, {}});
  }
  return shapes;
}

void CRvCLRouter::OrientPaths(CRvArt* layer, bool inside) {
  CRvDataAccess& store = Store();
  std::vector<RVINSIDEPATH> list;
  ForEachLayerPath(layer, [&](CRvArt* path) {
    if ((store.GetPathAttrFlag(path) & kFlagRouted) != 0 && store.GetPathClosed(path) != 0) {
      list.push_back({path, 0});
    }
  });
  if (list.empty()) return;
  JudgeInsideOutside(list, inside);
  for (const RVINSIDEPATH& entry : list) {
    CRvArt* bezier = FirstBezier(static_cast<CRvArt*>(entry.art));
    if (bezier == nullptr) continue;
    const int32_t c = JudgeClockwise(bezier);
    if ((entry.inside != 0 && c == 1) || (entry.inside == 0 && c == 2)) store.ReverseBezierPoint(bezier);
  }
}

// ---------------------------------------------------------------------------
// The steps of the CL milling export
// ---------------------------------------------------------------------------

void CRvCLRouter::BaseStep(const RVPLOTPARAM& param) {
  // The distance is 0: this step only turns and merges the paths.
  OffsetLayers(0.0, param.routerInside != 0, kRouterSourcePrefix, kRouterBaseLayer, kRouterCutCondition,
               kRouterOffsetKey);
  CRvLayer* layer = Store().GetLayerFromName(kRouterBaseLayer);
  int16_t table = -1;
  Check(RvGiCreateRefMapTable(&table));
  Check(RvGiSetRefMapRouterOffsetSIndex(table));
  Check(RvGiSetRefMapRouterOffsetEIndex(table));
  Check(RvGiSetRefMapRouterPlotIndex(table));
  for (CRvArt* art = Store().GetArtFirstChild(layer); art != nullptr; art = Store().GetArtSibling(art)) {
    Check(RvGiAddRefMapData(table, kRouterOffsetKey, kFlagRouted, art));
  }
}

CRvArt* CRvCLRouter::OffsetOneArt(CRvArt* art, double distance, const RVPLOTPARAM& param, const RVPOINT& pen) {
  CRvDataAccess& store = Store();
  if (art->GetType() == kArtPath && store.GetPathClosed(art) == 0) return art;
  std::vector<CRvArt*> paths = PathsOfArt(art);
  CRvArt* first = paths.empty() ? nullptr : FirstBezier(paths.front());
  const int32_t c = first != nullptr ? JudgeClockwise(first) : 0;
  // Each art gets a result layer of its own.
  if (CRvLayer* old = store.GetLayerFromName(kRouterOffsetLayerA)) store.DeleteLayer(old);
  OffsetArt(distance, param.routerInside != 0, art, kRouterOffsetLayerA, kRouterCutCondition, kRouterOffsetKey);
  CRvArt* result = FindOrCreateLayer(kRouterOffsetLayerA);
  FinishPaths(result, param, pen, c, param.routerLeadIn != 0);
  return result;
}

void CRvCLRouter::FinishPaths(CRvArt* result, const RVPLOTPARAM& param, const RVPOINT& pen, int32_t reverseIf,
                              bool lead) {
  CRvDataAccess& store = Store();
  CRvArt* first = result->GetType() == kArtLayer ? store.GetArtFirstChild(result) : result;
  if (first != nullptr && first->GetType() == kArtCompound) first = store.GetArtFirstChild(first);
  if (first != nullptr && first->GetType() == kArtPath) ChooseStart(first, pen);
  for (CRvArt* path : PathsOfArt(result)) {
    CRvArt* bezier = FirstBezier(path);
    if (bezier == nullptr) continue;
    if (reverseIf == 1) store.ReverseBezierPoint(bezier);
    const int32_t start = store.GetPathStartSegment(bezier);
    const bool closed = store.GetPathClosed(path) != 0;
    if (param.outputMicroJoints != 0) {
      AutomaticJoints(bezier, start, closed, param.routerJointLength, param.routerJointCount);
    }
    if (lead && closed) Lead(path, start, param.routerInside != 0);
  }
}

void CRvCLRouter::ChooseStart(CRvArt* path, const RVPOINT& pen) {
  CRvArt* bezier = FirstBezier(path);
  if (bezier == nullptr) return;
  const auto* points = static_cast<const CRvBezier*>(bezier);
  // An open path keeps its start: only its first point is a candidate.
  const int32_t n = Store().GetPathClosed(path) != 0 ? points->GetPointCount() : std::min(1, points->GetPointCount());
  double best = kFarDistance;
  int32_t index = 0;
  for (int32_t i = 0; i < n && i <= INT16_MAX; ++i) {
    const double d = Distance(pen, points->GetPoint(i).anchor);
    if (d < best) {
      best = d;
      index = i;
    }
  }
  // Start segments live on the component that the writers walk.
  if (index != 0) Store().SetPathStartSegment(bezier, int16_t(index));
}

// ---------------------------------------------------------------------------
// Joints and leads
// ---------------------------------------------------------------------------

void CRvCLRouter::AutomaticJoints(CRvArt* bezierArt, int32_t start, bool closed, double length, int32_t count) {
  auto* bezier = static_cast<CRvBezier*>(bezierArt);
  int32_t n = bezier->GetPointCount();
  if (n == 0 || count < 1 || start < 0 || start >= n) return;
  auto segment = [&](int32_t i) {
    return Distance(bezier->GetPoint(i).anchor, bezier->GetPoint(bezier->GetNextIndex(i)).anchor);
  };
  const int32_t m = (!closed && n >= 2) ? n - 1 : n;
  double total = 0.0;
  for (int32_t i = 0; i < m; ++i) total += segment(i);
  std::string text;
  // The text is held to the size that the writers read; a number that
  // wouldn't fit is left out.
  auto append = [&](const char* format, int32_t value) {
    char piece[32];
    const int len = std::snprintf(piece, sizeof piece, format, value);
    if (text.size() + std::size_t(len) < kJointTextSize) text += piece;
  };
  if ((length + kJointSlack) * count > total && count > 1) {
    append("%d", 1);
    append(",%d", start);
    append(",%d", m - 1);
    bezier->SetTag(kRouterJointTag, text);
    return;
  }
  append("%d", count);
  const double spacing = total / count;
  int32_t joint = 0;
  double target = 0.0, walked = 0.0;
  bool inJoint = true;
  append(",%d", start);
  for (int32_t k = 0; k < n; ++k) {
    const int32_t i = (start + k) % n;
    RVBEZIERPOINT a = bezier->GetPoint(i);
    RVBEZIERPOINT b = bezier->GetPoint(bezier->GetNextIndex(i));
    double seg = Distance(a.anchor, b.anchor);
    auto split = [&](double d) {
      if (!(d > 0.0)) return;
      CreateJointSegment(bezier, i, a, b, kIdentity, d);
      n = bezier->GetPointCount();
      b = bezier->GetPoint(bezier->GetNextIndex(i));
      seg = Distance(bezier->GetPoint(i).anchor, b.anchor);
    };
    if (inJoint) {
      if (walked + seg - target >= length) {
        append(",%d", bezier->GetNextIndex(i));
        split(target + length - walked);
        inJoint = false;
        if (++joint >= count) break;
        target = spacing * joint;
      }
    } else if (walked + seg >= target) {
      append(",%d", bezier->GetNextIndex(i));
      split(target - walked);
      inJoint = true;
    }
    walked += seg;
  }
  bezier->SetTag(kRouterJointTag, text);
}

void CRvCLRouter::Lead(CRvArt* path, int32_t start, bool inside) {
  CRvDataAccess& store = Store();
  CRvArt* bezierArt = FirstBezier(path);
  if (bezierArt == nullptr) return;
  auto* bezier = static_cast<CRvBezier*>(bezierArt);
  const int32_t n = bezier->GetPointCount();
  if (n == 0 || start < 0 || start >= n || n + 1 > INT16_MAX) return;
  RVBEZIERPOINT rec = bezier->GetPoint(start);
  const RVBEZIERPOINT saved = rec;
  rec.in = rec.anchor;
  store.ReplaceBezierPoint(bezier, start, rec);
  const RVPOINT p = LeadPoint(path, bezier, start, inside);
  rec.in = saved.in;
  rec.out = saved.anchor;
  RVBEZIERPOINT lead{};
  lead.anchor = lead.in = lead.out = p;
  // Behind the last point: the copy of the start, then the lead point twice.
  store.AddBezierPoint(bezier, rec);
  store.AddBezierPoint(bezier, lead);
  store.AddBezierPoint(bezier, lead);
  store.SetPathStartSegment(bezier, int16_t(n + 1));
}

RVPOINT CRvCLRouter::LeadPoint(CRvArt* path, CRvArt* bezierArt, int32_t start, bool inside) {
  const auto* bezier = static_cast<const CRvBezier*>(bezierArt);
  const int32_t n = bezier->GetPointCount();
  const RVPOINT s = bezier->GetPoint(start).anchor;
  // The point a probe's length along the path from the start, forward or
  // backward (a backward curve runs on the handles swapped).
  auto probe = [&](bool forward) {
    RVPOINT found = s;
    for (int32_t k = 0; k < n; ++k) {
      const int32_t i = forward ? (start + k) % n : ((start - k) % n + n) % n;
      RVBEZIERPOINT a = bezier->GetPoint(i);
      RVBEZIERPOINT b = bezier->GetPoint(forward ? bezier->GetNextIndex(i) : bezier->GetPrevIndex(i));
      if (!forward) {
        std::swap(a.in, a.out);
        std::swap(b.in, b.out);
      }
      if (Distance(a.anchor, b.anchor) < kLeadProbe) continue;
      const RVPOINT from = a.anchor;
      RVBEZIERPOINT middle{};
      CRvConvertPt::DivideBezierByLength(a, b, kLeadProbe, middle);
      found = middle.anchor;
      if (RvMiPointEqual(&from, &found, kLeadProbe) == 0) break;
    }
    return found;
  };
  const RVPOINT f = probe(true);
  const RVPOINT back = probe(false);
  double angle = AngleOfThreePoints(f, s, back) / 2.0;
  if (angle < 0.0) angle += kHalfTurn;
  const double vx = f.x - s.x, vy = f.y - s.y;
  const double rx = vx * std::cos(angle) - vy * std::sin(angle);
  const double ry = vx * std::sin(angle) + vy * std::cos(angle);
  const double size = std::hypot(rx, ry);
  if (!(size > 0.0) || !std::isfinite(size)) return s;
  const RVPOINT p{s.x + rx / size * kLeadLength, s.y + ry / size * kLeadLength};
  // The lead point must lie beside the cut, outside an outer shape and
  // inside a hole; otherwise the lead has no length.
  std::vector<CRvArt*> tests{path};
  CRvArt* parent = Store().GetArtParent(path);
  if (inside && parent != nullptr && parent->GetType() == kArtCompound) tests = PathsOfArt(parent);
  for (CRvArt* q : tests) {
    CRvArt* first = FirstBezier(q);
    if (first == nullptr) continue;
    const int32_t c = JudgeClockwise(first);
    const bool in = JudgeInsidePoint(q, p);
    if ((c == 2 && !in) || (c == 1 && in)) return s;
  }
  return p;
}

/// The fields of a clearing run that contour and hatching share: lines
/// along the clearing angle, even-odd, lines only, no shifts and no frame.
template <class Info>
void SetClearingFields(Info& info, double pitch, double offset) {
  info.pitch = pitch;
  info.offset = offset;
  info.startShift = info.endShift = 0.0;
  info.angle = kClearingAngle;
  info.matrix = kIdentity;
  info.headFromRight = 0;
  info.evenOddFill = 1;
  info.generate = 1;
  info.frameOffset = 0.0;
}

// ---------------------------------------------------------------------------
// Clearing
// ---------------------------------------------------------------------------

void CRvCLRouter::CreateHatching(int16_t documentIndex, const RVPLOTPARAM& param) {
  CRvDataAccess& store = Store();
  store.SetActiveDocument(documentIndex);
  CRvLayer* source = store.GetLayerFromName(kRouterHatchSourceLayer);
  if (source == nullptr) Raise(kErrNullLayer);
  CRvLayer* work = store.CreateLayer(0, nullptr);
  store.SetLayerName(work, kRouterWorkLayer);
  for (CRvArt* art = store.GetArtFirstChild(source); art != nullptr; art = store.GetArtSibling(art)) {
    CRvArt* parent = work;
    if (art->GetType() == kArtCompound) parent = store.CreateArt(kArtCompound, kLastChild, work);
    for (CRvArt* path : PathsOfArt(art)) {
      if (path->GetType() != kArtPath) continue;
      CRvArt* copy = CopyPathShell(store, parent, path);
      JoinComponentsIntoBezier(store, copy, path);
    }
  }
  OrientPaths(work, false);
  const double mill = MillingOfFirstPass(param);

  int16_t table = -1;
  Check(RvGiCreateRefMapTable(&table));
  Check(RvGiSetRefMapHatchingPlotIndex(table));
  Check(RvGiSetRefMapIndex(table));
  Check(RvGiSetRefMapHatchingSIndex(table));
  Check(RvGiSetRefMapHatchingEIndex(table));

  RVCONTOURINFO info{};
  RvInitializeContourInfo(&info);
  const double pitch = mill - param.routerOverlap;
  SetClearingFields(info, pitch > 0.0 ? pitch : kFallbackPitch, param.routerInside != 0 ? -mill : param.routerOverlap);
  info.cornerLines = param.routerCornerLines;
  int16_t document = documentIndex;
  if (param.routerUseContour != 0) {
    Check(RvCreateContour(&document, &info));
    return;
  }
  RVHATCHINGINFO hatching{};
  RvInitializeHatchingInfo(&hatching);
  SetClearingFields(hatching, info.pitch, info.offset);
  Check(RvCreateHatching(&document, &hatching));
}

}  // namespace rv
