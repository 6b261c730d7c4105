// Both-sides cut: corners that the blade must approach from both sides get
// a joint point a little short of them; the split turns such a path into
// open pieces in cutting order.
#include "output/both_sides.h"

#include <cmath>

#include "frame/frame.h"
#include "output/rvl_format.h"

namespace rv {

namespace {

constexpr uint8_t kCorner = 32;
constexpr uint8_t kBothSidesCorner = 64;
constexpr uint8_t kJoint = 128;

RVBEZIERPOINT Mapped(const RVBEZIERPOINT& p, const RVRIFMATRIX& m) {
  RVBEZIERPOINT q = p;
  q.anchor = Apply(m, p.anchor);
  q.in = Apply(m, p.in);
  q.out = Apply(m, p.out);
  return q;
}

double CurveLength(const RVBEZIERPOINT& a, const RVBEZIERPOINT& b) {
  double length = 0.0;
  RvMiGetBezierLength(&a, &b, &length);
  return length;
}

void MarkCorners(CRvBezier& c, const RVRIFMATRIX& placement, const DivideCutRecord& dc, int32_t inside,
                 int32_t clockwise) {
  const int32_t n = c.GetPointCount();
  for (int32_t i = 0; i < n; ++i) c.SetPointFlag(i, 0);
  if (n == 0) return;
  c.OrPointFlag(0, kCorner);
  double run = 0.0;
  for (int32_t i = 0; i < n; ++i) {
    int32_t nx = c.GetNextIndex(i);
    int32_t pv = c.GetPrevIndex(i);
    if (i == n - 1) nx = c.GetNextIndex(nx);
    if (i == 0) pv = c.GetPrevIndex(pv);
    const RVBEZIERPOINT pi = Mapped(c.GetPoint(i), placement);
    const RVBEZIERPOINT pn = Mapped(c.GetPoint(nx), placement);
    const RVBEZIERPOINT pp = Mapped(c.GetPoint(pv), placement);
    run += CurveLength(pp, pi);
    const double deg = (RvMiCalcAngleOfBezier(pi, pp, pn) - 3.141592653589793) * 180.0 / 3.1415927410125732;
    if (run >= dc.minLength && run > dc.jointLength &&
        RvMiIsBothSidesCutLine(deg, dc.limitAngle, inside, clockwise) != 0) {
      c.OrPointFlag(i, kBothSidesCorner);
    }
    if (std::fabs(deg) > 1.0) {
      c.OrPointFlag(i, kCorner);
      run = 0.0;
    }
  }
}

// Inserts the joints of one marked component; returns the number inserted.
int InsertJoints(CRvBezier& c, const RVRIFMATRIX& placement, const DivideCutRecord& dc, int32_t side) {
  int inserted = 0;
  for (int32_t i = 0; i < c.GetPointCount() - 1; ++i) {
    if ((c.GetPointFlag(i) & kCorner) == 0) continue;
    const int32_t count = c.GetPointCount();
    int32_t p = c.GetNextIndex(i);
    for (int32_t guard = 0; guard < count && (c.GetPointFlag(p) & kCorner) == 0; ++guard) p = c.GetNextIndex(p);
    if ((c.GetPointFlag(p) & kBothSidesCorner) == 0) continue;
    int32_t x, y;
    if (side == 1) {
      x = i;
      y = c.GetNextIndex(i);
    } else {
      x = c.GetPrevIndex(p);
      y = p;
    }
    RVBEZIERPOINT a = Mapped(c.GetPoint(x), placement);
    RVBEZIERPOINT b = Mapped(c.GetPoint(y), placement);
    double acc = CurveLength(a, b);
    // A path of no length never reaches the joint length: one round at most.
    for (int32_t guard = 0; acc < dc.jointLength && guard < count; ++guard) {
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
    if (acc < dc.jointLength || x + 1 >= count) continue;  // no place for a joint
    const double length = CurveLength(a, b);
    const double at = side == 1 ? length - (acc - dc.jointLength) : acc - dc.jointLength;
    RvMiCreateJointSegment(&c, x, &a, &b, &placement, at);
    const int32_t joint = c.GetNextIndex(x);
    c.SetPointFlag(joint, kJoint);
    ++inserted;
    ++i;
  }
  return inserted;
}

}  // namespace

uint32_t EntryBothSidesCutInfo(void* formatHandle, void* artHandle) {
  auto& format = *static_cast<CRvRVLFormat*>(formatHandle);
  CRvArt* art = ArtOf(artHandle);
  const uint32_t code = Guard([&] {
    if ((art->AttrFlags() & kAttrExcluded) != 0) return;
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
    int32_t closed = 0;
    Check(RvGiGetPathClosed(art, &closed));
    CRvArt* first = art->GetChild(0);
    auto* child = first != nullptr && first->GetType() == kArtBezier ? static_cast<CRvBezier*>(first) : nullptr;
    int32_t clockwise = child != nullptr ? RvMiJudgePathClockwise(child, closed) : 0;
    if (p.forceCounterClockwise == 1) {
      if (clockwise == 1 && closed != 0) Check(RvGiReverseBezierPoint(child));
      clockwise = 0;
    }
    const int32_t inside = art->HasTag(kInsidePathTag) ? 1 : 0;
    if (!hasKey || RvGetRepeatCount(key.c_str()) <= 0) return;
    CondPair pair{nullptr, nullptr};
    Check(RvGetCutConditionByKeyAtRepeat(key.c_str(), 1, &pair));
    if (pair.record == nullptr) return;
    const DivideCutRecord dc = pair.record->DivideCut;
    if (dc.Available <= 0 || closed == 0) return;
    int32_t side = dc.divideSide;
    if (dc.divideKind == 1) {
      side = side != 1 ? 1 : 0;
      art->SetTag(kInToOutTag, "");
    }
    auto* path = dynamic_cast<CRvContainerArt*>(art);
    if (path == nullptr) return;
    for (CRvArt* component : path->m_children.items()) {
      if (component->GetType() != kArtBezier) continue;
      auto& c = *static_cast<CRvBezier*>(component);
      if (dc.divideKind == 1) {
        Check(RvGiReverseBezierPoint(&c));
        clockwise = 1;
      }
      MarkCorners(c, format.m_placement, dc, inside, clockwise);
      if (InsertJoints(c, format.m_placement, dc, side) > 0) art->SetTag(kBothSidesCutTag, "");
      if (dc.divideKind == 1) Check(RvGiReverseBezierPoint(&c));
    }
  });
  if (code != 0) ShowMessage("EntryBothSidesCutInfo:Error", "test");
  return code;
}

namespace {

// Pieces of the split: open paths beside the art, each with one Bezier.
class PieceMaker {
 public:
  PieceMaker(CRvArt* art, bool inToOut, std::vector<CRvArt*>& pieces)
      : m_art(art), m_inToOut(inToOut), m_pieces(pieces) {}

  void Make() {
    void* path = nullptr;
    Check(RvGiCreateArt(kArtPath, 2, m_art, &path));
    m_path = ArtOf(path);
    Check(RvGiSetPathClosed(path, 0));
    void* bezier = nullptr;
    Check(RvGiCreateArt(kArtBezier, 5, path, &bezier));
    m_bezier = static_cast<CRvBezier*>(ArtOf(bezier));
  }
  void Append(const RVBEZIERPOINT& p) { m_bezier->AddPoint(p); }
  void AppendExchanged(RVBEZIERPOINT p) {
    std::swap(p.in, p.out);
    m_bezier->AddPoint(p);
  }
  void Finish() {
    if (m_inToOut) {
      Check(RvGiReverseBezierPoint(m_bezier));
      m_pieces.insert(m_pieces.begin(), m_path);
    } else {
      m_pieces.push_back(m_path);
    }
    m_path = nullptr;
    m_bezier = nullptr;
  }
  /// The last piece: finished when it has two points or more, else removed.
  void Close() {
    if (m_path == nullptr) return;
    if (m_bezier->GetPointCount() > 1) {
      Finish();
      return;
    }
    DestroyArt(m_path);
    m_path = nullptr;
    m_bezier = nullptr;
  }

 private:
  CRvArt* m_art;
  bool m_inToOut;
  std::vector<CRvArt*>& m_pieces;
  CRvArt* m_path = nullptr;
  CRvBezier* m_bezier = nullptr;
};

}  // namespace

uint32_t SplitBothSidesCut(CRvRVLFormat& format, CRvArt* art, std::vector<CRvArt*>& pieces) {
  (void)format;
  return Guard([&] {
    const bool inToOut = art->HasTag(kInToOutTag);
    PieceMaker maker(art, inToOut, pieces);
    maker.Make();
    auto* path = dynamic_cast<CRvContainerArt*>(art);
    if (path != nullptr) {
      for (CRvArt* component : path->m_children.items()) {
        if (component->GetType() != kArtBezier) continue;
        auto& c = *static_cast<CRvBezier*>(component);
        if (inToOut) Check(RvGiReverseBezierPoint(&c));
        const int32_t n = c.GetPointCount();
        for (int32_t i = 0; i < n;) {
          const RVBEZIERPOINT r = c.GetPoint(i);
          maker.Append(r);
          if ((r.flags & kJoint) == 0) {
            ++i;
            continue;
          }
          maker.Finish();
          int32_t j = c.GetNextIndex(i);
          for (int32_t guard = 0; guard < n && (c.GetPointFlag(j) & kCorner) == 0; ++guard) j = c.GetNextIndex(j);
          maker.Make();
          maker.AppendExchanged(c.GetPoint(j));
          int32_t k = j;
          for (int32_t guard = 0; guard < n; ++guard) {
            k = c.GetPrevIndex(k);
            maker.AppendExchanged(c.GetPoint(k));
            if ((c.GetPointFlag(k) & kJoint) != 0) break;
          }
          maker.Finish();
          maker.Make();
          if (j <= i) break;  // the corner lies past the end: the rest is cut
          i = j;
        }
        if (inToOut) Check(RvGiReverseBezierPoint(&c));
      }
    }
    maker.Close();
  });
}

}  // namespace rv
