// The writing side of CRvRVLFormat: bytes, paths, the frame and progress.
#include <utility>

#include "frame/frame.h"
#include "frame/progress.h"
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
  if (m_file == nullptr) Raise(ErrCode(1, 3));
  if (std::fwrite(text, 1, length, m_file) != length) {
    std::fclose(m_file);
    m_file = nullptr;
    Raise(ErrCode(1, 3));
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

void CRvRVLFormat::WritePath(const CRvBezier& path, const RVRIFMATRIX& artMatrix, bool closed, bool forward,
                             int& needMove) {
  const int32_t n = path.GetPointCount();
  if (n <= 0) return;
  // A start segment beyond the points (set by a host) wraps round.
  int32_t idx = int32_t(path.StartSegment()) % n;
  const bool exchange = plotter::ExchangesXY(m_param.plotterClass);
  const bool backward = closed && !forward;
  const double unit = m_param.deviceUnit;
  for (int32_t i = 0; i < n; ++i) {
    if (i == n - 1 && !closed && n > 1) break;  // an open path has n - 1 curves
    RVBEZIERPOINT a = path.GetPoint(idx);
    const int32_t next = backward ? (idx == 0 ? n - 1 : idx - 1) : (idx + 1 >= n ? 0 : idx + 1);
    RVBEZIERPOINT b = path.GetPoint(next);
    if (backward) {
      std::swap(a.in, a.out);
      std::swap(b.in, b.out);
    }
    MapRecord(a, artMatrix);
    MapRecord(b, artMatrix);

    m_polyline.clear();
    CurveToPoints(a, b, m_param.curveMaxLength, m_param.curveTolerance, 1, m_polyline);
    if (needMove != 0 && !m_polyline.empty()) {
      RVPOINT p = m_polyline.front();
      if (exchange) std::swap(p.x, p.y);
      m_record.clear();
      AppendRow(m_record, kRowMove, {p.y / unit, p.x / unit});
      WriteBytes(m_record);
      needMove = 0;
    }
    const int drawRow = m_vCut != 0 ? kRowVCutDraw : kRowDraw;
    for (std::size_t j = 0; j < m_polyline.size(); ++j) {
      if (i != 0 && j == 0) continue;  // repeats the previous curve's end
      RVPOINT p = m_polyline[j];
      if (exchange) std::swap(p.x, p.y);
      m_record.clear();
      AppendRow(m_record, drawRow, {p.y / unit, p.x / unit});
      WriteBytes(m_record);
    }
    idx = next;
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
    Raise(ErrCode(6, 31));
  }
}

}  // namespace rv
