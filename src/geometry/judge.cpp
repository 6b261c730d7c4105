#include "geometry/judge.h"

#include <cmath>

#include "frame/error_codes.h"
#include "frame/frame.h"
#include "geometry/affine.h"
#include "geometry/convert_pt.h"
#include "geometry/curve_core.h"
#include "model/data_access.h"

namespace rv {

namespace {

// Angles of the start-point choice, given in single precision.
constexpr double kFlatCorner = 0.1745329350233078;   // 10 degrees
constexpr double kStraightSide = 0.01745329238474369;  // 1 degree
constexpr double kPi = 3.141592653589793;

// The records of a Bezier component as the path commands give them.
std::vector<RVBEZIERPOINT> ReadRecords(CRvDataAccess& store, CRvArt* component) {
  const int32_t count = store.GetPathSegmentCount(component);
  std::vector<RVBEZIERPOINT> records;
  records.reserve(std::size_t(count > 0 ? count : 0));
  for (int32_t i = 0; i < count; ++i) records.push_back(store.GetBezierPoint(component, i));
  return records;
}

RVBEZIERPOINT Mapped(const RVRIFMATRIX& m, RVBEZIERPOINT p) {
  p.anchor = Apply(m, p.anchor);
  p.in = Apply(m, p.in);
  p.out = Apply(m, p.out);
  return p;
}

}  // namespace

const CRvBezier& PathBezier(CRvArt* path, int32_t& start, RVRIFMATRIX& matrix) {
  CRvDataAccess& store = CRvDataAccess::Instance();
  CRvArt* component = store.GetArtFirstChild(path);
  if (component == nullptr) Raise(kErrNullPath);
  if (component->GetType() != kArtBezier) Raise(kErrPathKind);
  start = uint16_t(store.GetPathStartSegment(path));
  matrix = store.GetArtMatrix(path);
  return *static_cast<const CRvBezier*>(component);
}

CoarsePolyline PathPolyline(CRvArt* path, bool withMatrix) {
  int32_t start = 0;
  RVRIFMATRIX matrix{};
  const CRvBezier& bezier = PathBezier(path, start, matrix);
  const int32_t count = bezier.GetPointCount();
  return MakeCoarsePolyline(count > 0 ? &bezier.GetPoint(0) : nullptr, count, start, withMatrix ? &matrix : nullptr);
}

int32_t JudgeClockwise(CRvArt* component) {
  double sum = 0.0;
  const uint32_t code = Guard([&] {
    CRvDataAccess& store = CRvDataAccess::Instance();
    if (component == nullptr) Raise(kErrNullPath);
    if (component->GetType() != kArtBezier) Raise(kErrPathKind);
    const int16_t start = store.GetPathStartSegment(component);
    const std::vector<RVBEZIERPOINT> records = ReadRecords(store, component);
    sum = OrientationSum(MakeCoarsePolyline(records.data(), int32_t(records.size()), uint16_t(start), nullptr));
  });
  if (code != 0) return 0;
  if (sum > 0.0) return 1;
  if (sum < 0.0) return 2;
  return 0;
}

bool JudgeInsidePoint(CRvArt* path, const RVPOINT& q) { return IsInsideAngle(WindingAngle(PathPolyline(path), q)); }

bool JudgeInsidePath(CRvArt* path, CRvArt* outer) {
  const CoarsePolyline line = PathPolyline(path);
  bool inside = false;
  for (std::size_t list = 0; list < line.ListCount(); ++list) {
    for (std::size_t k = line.ListBegin(list); k + 1 < line.ends[list]; ++k) {
      inside = JudgeInsidePoint(outer, line.points[k]);
      if (!inside) return false;
    }
  }
  return inside;
}

double PathArea(CRvArt* path) {
  if (path == nullptr) Raise(kErrNullPath);
  if (path->GetType() != kArtPath) Raise(kErrPathKind);
  return static_cast<const CRvPath*>(path)->GetArea();
}

bool IsBothSidesCutLine(double angle, double limitAngle, int32_t inside, int32_t clockwise) {
  if (inside != clockwise) {
    Trace("Angle:%f LimitAngle:%f", angle, limitAngle);
    return angle > limitAngle;
  }
  Trace("bInside==bClockwise Angle:%f LimitAngle:%f", angle, limitAngle);
  return -limitAngle > angle;
}

int16_t OptimizeStartSegment(CRvArt* path, const RVRIFMATRIX& matrix, int16_t type, int32_t closed) {
  CRvDataAccess& store = CRvDataAccess::Instance();
  CRvArt* component = store.GetArtFirstChild(path);
  const int32_t count = store.GetPathSegmentCount(component);
  double best = 0.0;
  int32_t chosen = 0;
  bool straightFound = false;
  for (int32_t i = 0; i < count; ++i) {
    const int32_t n = i + 1 >= count ? 0 : i + 1;
    const int32_t p = i == 0 ? count - 1 : i - 1;
    const RVBEZIERPOINT cur = Mapped(matrix, store.GetBezierPoint(component, i));
    const RVBEZIERPOINT nxt = Mapped(matrix, store.GetBezierPoint(component, n));
    const RVBEZIERPOINT prv = Mapped(matrix, store.GetBezierPoint(component, p));
    if (std::fabs(CRvConvertPt::AngleOfBezier(cur, prv, nxt) - kPi) < kFlatCorner) continue;  // no corner
    const bool straight = std::fabs(AngleOfThreePoints(cur.out, cur.anchor, nxt.anchor)) <= kStraightSide &&
                          std::fabs(AngleOfThreePoints(cur.anchor, nxt.anchor, nxt.in)) <= kStraightSide;
    const double length = Distance(cur.anchor, nxt.anchor);
    bool take;
    if (straight && !straightFound) {
      take = true;  // the first straight side wins over any curve
      straightFound = true;
    } else if (straightFound) {
      take = straight && length > best;
    } else {
      take = length > best;
    }
    if (take) {
      best = length;
      chosen = type == 5 ? n : i;
    }
  }
  int16_t start = 0;
  if (type != 5) {
    store.SortBezierPoint(component, chosen, closed);
  } else {
    store.RotateBezierPoint(component, chosen);
    start = int16_t(chosen);
  }
  store.SetPathStartSegment(component, 0);
  return start;
}

void CreateJointSegment(CRvArt* component, int32_t index, RVBEZIERPOINT a, RVBEZIERPOINT b,
                        const RVRIFMATRIX& matrix, double length) {
  RVRIFMATRIX inverse;
  if (!Invert(matrix, inverse)) Raise(kErrSingularMatrix);
  RVBEZIERPOINT middle{};
  CRvConvertPt::DivideBezierByLength(a, b, length, middle);
  a = Mapped(inverse, a);
  b = Mapped(inverse, b);
  middle = Mapped(inverse, middle);
  // The three edits aren't checked: an index at the end of the component
  // simply appends the new point.
  RvGiReplaceBezierPoint(component, index, &a);
  RvGiReplaceBezierPoint(component, index + 1, &b);
  RvGiSetBezierPoint(component, index + 1, &middle);
}

}  // namespace rv
