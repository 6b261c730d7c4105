// Both-sides cut: corners that the blade must approach from both sides get
// a joint point a little short of them; the split turns such a path into
// open pieces in cutting order.
#include "output/both_sides.h"

#include <cmath>
#include <cstring>
#include <string>
#include <numbers>
#include <optional>

#include "conditions/cut_cdn_mng.h"
#include "frame/frame.h"
#include "geometry/convert_pt.h"
#include "geometry/judge.h"
#include "model/data_access.h"
#include "output/placement.h"
#include "output/rvl_format.h"

namespace rv {

namespace {

/// Whether judging the orientation of `component` could fail, and so leave
/// its code as the last error: it isn't a Bezier, or a point lies beyond
/// 100 m or isn't finite (a curve of that size flattens into far fewer
/// points than the judgment allows).
bool JudgmentMayFail(const CRvArt& component) {
  if (component.GetType() != kArtBezier) return true;
  constexpr double kReach = 1e5;
  for (const RVBEZIERPOINT& p : static_cast<const CRvBezier&>(component).m_points) {
    for (const RVPOINT* q : {&p.anchor, &p.in, &p.out}) {
      if (!(std::fabs(q->x) < kReach && std::fabs(q->y) < kReach)) return true;
    }
  }
  return false;
}

constexpr const char* kBothSidesMessage = "EntryBothSidesCutInfo:Error";
constexpr const char* kBothSidesTitle = "test";

RVBEZIERPOINT Mapped(const RVBEZIERPOINT& p, const RVRIFMATRIX& m) {
  RVBEZIERPOINT q = p;
  q.anchor = Apply(m, p.anchor);
  q.in = Apply(m, p.in);
  q.out = Apply(m, p.out);
  return q;
}

double CurveLength(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b) { return CRvConvertPt::BezierLength(a, b); }

void MarkCorners(CRvBezier& c, const RVRIFMATRIX& placement, const DivideCutRecord& dc, int32_t inside,
                 int32_t clockwise) {
  const int32_t n = c.GetPointCount();
  if (n == 0) return;
  for (int32_t i = 0; i < n; ++i) c.SetPointFlag(i, 0);
  c.OrPointFlag(0, kFlagCorner);
  double run = 0.0;
  for (int32_t i = 0; i < n; ++i) {
    // The last point of a closed component repeats the first: step over it.
    int32_t nx = c.GetNextIndex(i);
    int32_t pv = c.GetPrevIndex(i);
    if (i == n - 1) nx = c.GetNextIndex(nx);
    if (i == 0) pv = c.GetPrevIndex(pv);
    const RVBEZIERPOINT pi = Mapped(c.GetPoint(i), placement);
    const RVBEZIERPOINT pn = Mapped(c.GetPoint(nx), placement);
    const RVBEZIERPOINT pp = Mapped(c.GetPoint(pv), placement);
    run += CurveLength(pp, pi);
    const double deg = (CRvConvertPt::AngleOfBezier(pi, pp, pn) - std::numbers::pi) * 180.0 / kHalfTurn;  // degrees by the single-precision half turn
    if (run >= dc.minLength && run > dc.jointLength && IsBothSidesCutLine(deg, dc.limitAngle, inside, clockwise)) {
      c.OrPointFlag(i, kFlagBothSidesCorner);
    }
    if (std::fabs(deg) > 1.0) {
      c.OrPointFlag(i, kFlagCorner);
      run = 0.0;
    }
  }
}

// Inserts the joints of one marked component; returns the number inserted.
int InsertJoints(CRvBezier& c, const RVRIFMATRIX& placement, const DivideCutRecord& dc, int32_t side) {
  int inserted = 0;
  for (int32_t i = 0; i < c.GetPointCount() - 1; ++i) {
    if ((c.GetPointFlag(i) & kFlagCorner) == 0) continue;
    const int32_t count = c.GetPointCount();
    int32_t p = c.GetNextIndex(i);
    for (int32_t steps = 0; steps < count && (c.GetPointFlag(p) & kFlagCorner) == 0; ++steps) p = c.GetNextIndex(p);
    if ((c.GetPointFlag(p) & kFlagBothSidesCorner) == 0) continue;
    int32_t x = side == 1 ? i : c.GetPrevIndex(p);
    int32_t y = side == 1 ? c.GetNextIndex(i) : p;
    RVBEZIERPOINT a = Mapped(c.GetPoint(x), placement);
    RVBEZIERPOINT b = Mapped(c.GetPoint(y), placement);
    double acc = CurveLength(a, b);
    // Once round the component at most: a shape shorter than the joint
    // length has no place for a joint.
    int32_t steps = 0;
    for (; acc < dc.jointLength && steps < count; ++steps) {
      if (side == 1) {
        x = y;
        y = c.GetNextIndex(y);
      } else {
        y = x;
        x = c.GetPrevIndex(x);
      }
      a = Mapped(c.GetPoint(x), placement);
      b = Mapped(c.GetPoint(y), placement);
      acc += CurveLength(a, b);
    }
    if (!(acc >= dc.jointLength)) continue;
    const double length = CurveLength(a, b);
    const double at = side == 1 ? length - (acc - dc.jointLength) : acc - dc.jointLength;
    CreateJointSegment(&c, x, a, b, placement, at);
    const int32_t joint = c.GetNextIndex(x);
    c.SetPointFlag(joint, kFlagJoint);
    ++inserted;
    ++i;
  }
  return inserted;
}

}  // namespace

uint32_t EntryBothSidesCutInfo(void* formatHandle, void* artHandle) {
  auto& format = *static_cast<CRvRVLFormat*>(formatHandle);
  CRvDataAccess& store = CRvDataAccess::Instance();
  const uint32_t code = Guard([&] {
    CRvArt* art = ArtOf(artHandle);
    if ((store.GetPathAttrFlag(art) & kAttrExcluded) != 0) return;
    const RVPLOTPARAM& p = format.m_param;
    std::string key;
    bool hasKey = false;
    if (p.conditionSource == 3) {
      key.assign(p.conditionKey, strnlen(p.conditionKey, sizeof p.conditionKey));
      hasKey = true;
    } else if (p.conditionSource == 1 && art->GetPlotInfo() != nullptr) {
      key = art->GetPlotInfo()->plotText;
      hasKey = true;
    }
    const int32_t closed = store.GetPathClosed(art);
    CRvArt* child = store.GetArtFirstChild(art);
    // The orientation is judged where it is used, or at once where the
    // judgment could fail, as its code stays the last error.
    std::optional<int32_t> clockwise;
    if (child != nullptr && (p.forceCounterClockwise == 1 || JudgmentMayFail(*child))) {
      clockwise = JudgeClockwise(child);
    }
    if (p.forceCounterClockwise == 1) {
      if (clockwise == 1 && closed != 0) store.ReverseBezierPoint(child);
      clockwise = 0;
    }
    const int32_t inside = art->HasTag(kInsidePathTag) ? 1 : 0;
    if (!hasKey || art->GetPlotInfo() == nullptr) return;
    CondPair pair{nullptr, nullptr};
    Check(CRvCutCdnMng::Instance().GetConditionAtRepeat(key, 1, pair));
    if (pair.record == nullptr) return;
    const DivideCutRecord dc = pair.record->DivideCut;
    if (dc.Available <= 0 || closed == 0) return;
    int32_t side = dc.divideSide;
    if (dc.divideKind == 1) {
      side = side != 1 ? 1 : 0;
      store.SetArtTag(art, kInToOutTag, "");
    }
    if (!art->IsContainer()) return;
    if (!clockwise) clockwise = child != nullptr ? JudgeClockwise(child) : 0;
    bool tagged = false;
    for (CRvArt* component : static_cast<CRvContainerArt*>(art)->m_children.items()) {
      if (component->GetType() != kArtBezier) continue;
      auto& c = *static_cast<CRvBezier*>(component);
      if (dc.divideKind == 1) {
        store.ReverseBezierPoint(&c);
        clockwise = 1;
      }
      MarkCorners(c, format.m_placement, dc, inside, *clockwise);
      if (InsertJoints(c, format.m_placement, dc, side) > 0 && !tagged) {
        store.SetArtTag(art, kBothSidesCutTag, "");
        tagged = true;
      }
      if (dc.divideKind == 1) store.ReverseBezierPoint(&c);
    }
  });
  if (code != 0) ShowMessage(kBothSidesMessage, kBothSidesTitle);
  return code;
}

namespace {

// Pieces of the split: open paths beside the art, each with one Bezier.
class PieceMaker {
 public:
  PieceMaker(CRvArt* art, bool inToOut, std::vector<CRvArt*>& pieces)
      : m_store(CRvDataAccess::Instance()), m_art(art), m_inToOut(inToOut), m_pieces(pieces) {}

  void Make() {
    m_path = m_store.CreateArt(kArtPath, kBehind, m_art);
    m_store.SetPathClosed(m_path, 0);
    m_bezier = static_cast<CRvBezier*>(m_store.CreateArt(kArtBezier, kLastChild, m_path));
  }
  void Append(const RVBEZIERPOINT& p) { m_bezier->AddPoint(p); }
  void AppendExchanged(RVBEZIERPOINT p) {
    std::swap(p.in, p.out);
    m_bezier->AddPoint(p);
  }
  void Finish() {
    if (m_inToOut) {
      m_store.ReverseBezierPoint(m_bezier);
      m_pieces.insert(m_pieces.begin(), m_path);
    } else {
      m_pieces.push_back(m_path);
    }
    m_path = nullptr;
    m_bezier = nullptr;
  }
  /// The last piece: finished when it has two points or more, else deleted.
  void Close() {
    if (m_path == nullptr) return;
    if (m_bezier->GetPointCount() > 1) {
      Finish();
      return;
    }
    m_store.DeleteArt(m_path);
    m_path = nullptr;
    m_bezier = nullptr;
  }

 private:
  CRvDataAccess& m_store;
  CRvArt* m_art;
  bool m_inToOut;
  std::vector<CRvArt*>& m_pieces;
  CRvArt* m_path = nullptr;
  CRvBezier* m_bezier = nullptr;
};

}  // namespace

uint32_t SplitBothSidesCut(CRvRVLFormat&, CRvArt* art, std::vector<CRvArt*>& pieces) {
  const uint32_t code = Guard([&] {
    CRvDataAccess& store = CRvDataAccess::Instance();
    const bool inToOut = art->HasTag(kInToOutTag);
    PieceMaker maker(art, inToOut, pieces);
    maker.Make();
    if (art->IsContainer()) {
      for (CRvArt* component : static_cast<CRvContainerArt*>(art)->m_children.items()) {
        if (component->GetType() != kArtBezier) continue;
        auto& c = *static_cast<CRvBezier*>(component);
        if (inToOut) store.ReverseBezierPoint(&c);
        const int32_t n = c.GetPointCount();
        for (int32_t i = 0; i < n;) {
          const RVBEZIERPOINT r = c.GetPoint(i);
          maker.Append(r);
          if ((r.flags & kFlagJoint) == 0) {
            ++i;
            continue;
          }
          maker.Finish();
          int32_t j = c.GetNextIndex(i);
          for (int32_t steps = 0; steps < n && (c.GetPointFlag(j) & kFlagCorner) == 0; ++steps) j = c.GetNextIndex(j);
          maker.Make();
          maker.AppendExchanged(c.GetPoint(j));
          int32_t k = j;
          for (int32_t steps = 0; steps < n; ++steps) {
            k = c.GetPrevIndex(k);
            maker.AppendExchanged(c.GetPoint(k));
            if ((c.GetPointFlag(k) & kFlagJoint) != 0) break;
          }
          maker.Finish();
          maker.Make();
          // A corner found past the end of the component (the walk wrapped
          // to its start): the rest has just been cut backward from there.
          if (j <= i) break;
          i = j;
        }
        if (inToOut) store.ReverseBezierPoint(&c);
      }
    }
    maker.Close();
  });
  if (code != 0) ShowMessage(kBothSidesMessage, kBothSidesTitle);
  return code;
}

}  // namespace rv
