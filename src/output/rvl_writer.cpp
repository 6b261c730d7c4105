// The writing side of CRvRVLFormat: bytes, paths, the frame and progress.
#include <utility>

#include "frame/error_codes.h"
#include "frame/frame.h"
#include "frame/progress.h"
#include "geometry/convert_pt.h"
#include "geometry/curve_core.h"
#include "output/placement.h"
#include "output/rvl_format.h"

namespace rv {

CRvRVLFormat::CRvRVLFormat(const RVPLOTPARAM& param) : m_param(param) {
  m_record.reserve(1024);
  m_polyline.reserve(64);
}

CRvRVLFormat::~CRvRVLFormat() = default;

void CRvRVLFormat::WriteBytes(const char* text, std::size_t length) {
  if (length == 0) return;
  if (m_file == nullptr) Raise(kErrFileShort);
  if (std::fwrite(text, 1, length, m_file) != length) {
    std::fclose(m_file);
    m_file = nullptr;
    Raise(kErrFileShort);
  }
}

void CRvRVLFormat::SetPlacement(const RVRIFMATRIX& placement, const RVRECT& rect) {
  m_placement = placement;
  m_placementRect = rect;
  m_flip = OutputFlip(m_param, rect);
}

void CRvRVLFormat::MapRecord(RVBEZIERPOINT& p, const RVRIFMATRIX& artMatrix) const {
  for (RVPOINT* q : {&p.anchor, &p.in, &p.out}) {
    *q = Apply(m_flip, Apply(m_placement, Apply(artMatrix, *q)));
  }
}

void CRvRVLFormat::WriteCurveRecord(const RVCURVEPOINT& r, bool exchange) {
  auto yx = [exchange](double x, double y, double& first, double& second) {
    // The first value of a pair is the y of plot space (the x where the
    // class exchanges the axes).
    first = exchange ? x : y;
    second = exchange ? y : x;
  };
  m_record.clear();
  if (r.kind == 0) {
    double f, g;
    yx(r.point.x, r.point.y, f, g);
    const double unit = m_param.deviceUnit;
    AppendRow(m_record, m_vCut != 0 ? kRowVCutDraw : kRowDraw, {f / unit, g / unit});
  } else if (r.kind == 1) {
    const RVCURVEARC& a = r.arc;
    double sf, sg, mf, mg, ef, eg, cf, cg;
    yx(a.startX, a.startY, sf, sg);
    yx(a.midX, a.midY, mf, mg);
    yx(a.endX, a.endY, ef, eg);
    yx(a.centreX, a.centreY, cf, cg);
    AppendRow(m_record, kRowArc, {int(a.direction), sf, sg, mf, mg, ef, eg, cf, cg});
  } else {
    double f0, g0, f1, g1, f2, g2;
    yx(r.spline[0].x, r.spline[0].y, f0, g0);
    yx(r.spline[1].x, r.spline[1].y, f1, g1);
    yx(r.spline[2].x, r.spline[2].y, f2, g2);
    AppendRow(m_record, kRowSpline, {f0, g0, f1, g1, f2, g2});
  }
  WriteBytes(m_record);
}

namespace {

bool Listed(const int16_t* indexes, int16_t count, int32_t index) {
  for (int16_t j = 0; j < count; ++j) {
    if (indexes[j] == index) return true;
  }
  return false;
}

// A joint begins at segment `index` on the way in the walking direction: a
// start going forward, an end going backward.
bool JointBegins(const JointList& joints, int32_t index, bool backward) {
  return Listed(backward ? joints.ends : joints.starts, joints.count, index);
}
bool JointEnds(const JointList& joints, int32_t index, bool backward) {
  return Listed(backward ? joints.starts : joints.ends, joints.count, index);
}

}  // namespace

void CRvRVLFormat::WritePathSteps(const CRvBezier& path, const RVRIFMATRIX& artMatrix, bool closed, bool forward,
                                  int& needMove, const JointList* joints, double depth) {
  const int32_t n = path.GetPointCount();
  if (n <= 0) return;
  // A start segment beyond the points (set by a host) wraps round.
  int32_t idx = int32_t(path.StartSegment()) % n;
  const bool exchange = plotter::ExchangesXY(m_param.plotterClass);
  const bool backward = closed && !forward;
  const double unit = m_param.deviceUnit;
  // Over joints the tool changes depth between curves, so each curve is
  // written whole, its first point too; there is no V-cut.
  const bool vCut = joints == nullptr && m_vCut != 0;
  const bool skipRepeat = joints == nullptr;
  const bool polyline = m_param.curveOutput == 0 || vCut;
  for (int32_t i = 0; i < n; ++i) {
    if (i == n - 1 && !closed && n > 1) break;  // an open path has n - 1 curves
    RVBEZIERPOINT ab[2];
    ab[0] = path.GetPoint(idx);
    const int32_t next = backward ? (idx == 0 ? n - 1 : idx - 1) : (idx + 1 >= n ? 0 : idx + 1);
    ab[1] = path.GetPoint(next);
    if (backward) {
      std::swap(ab[0].in, ab[0].out);
      std::swap(ab[1].in, ab[1].out);
    }
    MapRecord(ab[0], artMatrix);
    MapRecord(ab[1], artMatrix);
    if (joints != nullptr && JointBegins(*joints, idx, backward)) DepthChange(depth, true);

    if (polyline) {
      // The common case, without records: the points as RvMiCurvesToPoints
      // gives them for one curve.
      m_polyline.clear();
      CurveToPoints(ab[0], ab[1], m_param.curveMaxLength, m_param.curveTolerance, 1, m_polyline);
      if (needMove != 0 && !m_polyline.empty()) {
        RVPOINT p = m_polyline.front();
        if (exchange) std::swap(p.x, p.y);
        m_record.clear();
        AppendRow(m_record, kRowMove, {p.y / unit, p.x / unit});
        WriteBytes(m_record);
        needMove = 0;
      }
      const int drawRow = vCut ? kRowVCutDraw : kRowDraw;
      for (std::size_t j = 0; j < m_polyline.size(); ++j) {
        if (skipRepeat && i != 0 && j == 0) continue;  // repeats the previous curve's end
        RVPOINT p = m_polyline[j];
        if (exchange) std::swap(p.x, p.y);
        m_record.clear();
        AppendRow(m_record, drawRow, {p.y / unit, p.x / unit});
        WriteBytes(m_record);
      }
    } else {
      WriteCurveRecords(ab, i, needMove, exchange, skipRepeat);
    }
    if (joints != nullptr && JointEnds(*joints, next, backward)) DepthChange(depth, false);
    idx = next;
  }
}

void CRvRVLFormat::WriteCurveRecords(RVBEZIERPOINT (&ab)[2], int32_t i, int& needMove, bool exchange,
                                     bool skipRepeat) {
  const double unit = m_param.deviceUnit;
  CRvConvertPt worker;
  worker.m_maxLength = m_param.curveMaxLength;
  CurveList records;
  if (m_param.curveOutput == 1) {
    worker.m_tolerance = m_param.curveTolerance;
    records = worker.CurvesToArc(ab, 2, unit);
  } else {
    worker.m_tolerance = 0.042;
    records = worker.CurvesToSpline(ab, 2, unit);
  }
  if (records.empty()) return;
  const RVCURVEPOINT& first = records[0];
  if (needMove != 0) {
    double x, y;
    if (first.kind == 1) {
      x = first.arc.startX;
      y = first.arc.startY;
    } else if (first.kind == 0) {
      x = first.point.x;
      y = first.point.y;
    } else {
      x = first.spline[0].x;
      y = first.spline[0].y;
    }
    if (exchange) std::swap(x, y);
    m_record.clear();
    if (first.kind == 0) {
      AppendRow(m_record, kRowMove, {y / unit, x / unit});
    } else {
      AppendRow(m_record, kRowMove, {y, x});
      if (first.kind == 1) AppendRow(m_record, kRowPenDown, {});
    }
    WriteBytes(m_record);
    needMove = 0;
  }
  if (first.kind == 3) {
    m_record.clear();
    AppendRow(m_record, kRowPenDown, {});
    WriteBytes(m_record);
  }
  for (std::size_t j = 0; j < records.size(); ++j) {
    if (skipRepeat && i != 0 && j == 0 && records[j].kind == 0) continue;  // the previous curve's end
    WriteCurveRecord(records[j], exchange);
  }
}

void CRvRVLFormat::WriteFrame() {
  const RVPLOTPARAM& p = m_param;
  std::string block;
  if (p.conditionSource != 0) {
    if (p.writeToolDefaults != 0) {
      AppendRow(block, kRowToolDefaults, {});
    } else if (p.dialect == 0) {
      AppendRow(block, kRowPen, {int(p.defaultPen)});
      if (p.machineType == 7 || p.machineType == 10) {
        AppendRow(block, kRowSpeedDecimal, {p.defaultSpeedExact, int(p.defaultPen)});
      } else {
        AppendRow(block, kRowSpeed, {int(p.defaultSpeed), int(p.defaultPen)});
      }
      AppendRow(block, kRowPress, {int(p.defaultPress), int(p.defaultPen)});
      AppendRow(block, kRowOffset, {p.defaultOffset});
    }
    WriteBytes(block);
  }
  const RVRECT& r = m_placementRect;
  double a = r.top - r.bottom;
  double b = r.right - r.left;
  if (!(p.rotation == 0.0 || p.rotation == kHalfTurn)) std::swap(a, b);
  double p0 = p.deviceMinY + p.originY;
  double q0 = p.deviceMinX + p.originX;
  double p1 = p.scaleY / 100.0 * a + p0 + 2.0 * p.frameMarginY;
  double q1 = p.scaleX / 100.0 * b + q0 + 2.0 * p.frameMarginX;
  if (plotter::ExchangesXY(p.plotterClass)) {
    std::swap(p0, q0);
    std::swap(p1, q1);
  }
  const double u = p.deviceUnit;
  block.clear();
  AppendRow(block, kRowMove, {p1 / u, q0 / u});
  AppendRow(block, kRowDraw, {p1 / u, q1 / u});
  AppendRow(block, kRowDraw, {p0 / u, q1 / u});
  AppendRow(block, kRowDraw, {p0 / u, q0 / u});
  AppendRow(block, kRowDraw, {p1 / u, q0 / u});
  AppendRow(block, kRowMove, {p1 / u, q0 / u});
  WriteBytes(block);
}

void CRvRVLFormat::AdvanceProgress() {
  ++m_artDone;
  const ProgressCallbacks& progress = Progress();
  if (progress.onStep == nullptr) return;
  const double percent = double(m_artDone) / double(m_artTotal) * 100.0;
  if (progress.Step(m_progressContext, int16_t(TruncToInt32(percent)), kCreatingPlotDataText)) {
    Raise(kErrExportCancelled);
  }
}

}  // namespace rv
