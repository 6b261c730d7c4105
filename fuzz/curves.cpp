// Feeds arbitrary numbers to every curve export: none may crash, hang or
// leak, whatever the coordinates, counts and parameters.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "rvdataaccess.h"

namespace {

class Input {
 public:
  Input(const uint8_t* data, size_t size) : m_data(data), m_size(size) {}
  double Double() {
    double v = 0;
    Take(&v, sizeof v);
    return v;
  }
  // A coordinate: mostly small values on a coarse grid, sometimes raw bits.
  double Coordinate() {
    const uint8_t mode = Byte();
    if (mode < 200) return (int16_t(Byte() << 8 | Byte())) / 64.0;
    return Double();
  }
  uint8_t Byte() {
    uint8_t v = 0;
    Take(&v, 1);
    return v;
  }
  RVPOINT Point() { return RVPOINT{Coordinate(), Coordinate()}; }

 private:
  void Take(void* out, size_t n) {
    if (m_size < n) {
      m_size = 0;
      return;
    }
    std::memcpy(out, m_data, n);
    m_data += n;
    m_size -= n;
  }
  const uint8_t* m_data;
  size_t m_size;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input in(data, size);
  const int count = in.Byte() % 6;
  std::vector<RVBEZIERPOINT> pts(count);
  for (auto& p : pts) {
    p.anchor = in.Point();
    p.in = in.Point();
    p.out = in.Point();
    p.flags = 0;
  }
  // Keep the flattening parameters in the range where results stay small.
  const double maxLength = 0.5 + in.Byte();
  const double tolerance = 0.01 + in.Byte() / 64.0;
  const double scale = in.Byte() % 2 ? 0.025 : in.Coordinate();

  RVCURVEPOINT* out = nullptr;
  int32_t n = 0;
  if (RvMiCurvesToPoints(pts.data(), count, maxLength, tolerance, &out, &n, 1) == 0) RvMiFreePoints(out);
  if (RvMiCurvesToArc(pts.data(), count, maxLength, tolerance, &out, &n, scale) == 0) RvMiFreePoints(out);
  if (RvMiCurvesToSpline(pts.data(), count, maxLength, tolerance, &out, &n, scale) == 0) RvMiFreePoints(out);

  RVARCPOINT arc{in.Point(), in.Point(), in.Point(), in.Coordinate() * 4, int16_t(in.Byte() % 3 - 1)};
  if (RvMiArcToCurves(&arc, &out, &n) == 0) RvMiFreePoints(out);
  RVPOINT p = in.Point();
  (void)RvMiGetCenterAngle(&arc, &p, in.Byte() & 1);

  if (count >= 3) {
    (void)RvMiCalcAngleOfBezier(pts[1], pts[0], pts[2]);
    (void)RvMiCalcAngleOfThreePoints(&pts[0].anchor, &pts[1].anchor, &pts[2].anchor);
  }
  if (count >= 2) {
    RVBEZIERPOINT a = pts[0], b = pts[1], m{};
    double length = 0;
    RvMiGetBezierLength(&a, &b, &length);
    RvMiDivideBezier(&a, &b, in.Coordinate(), &m);
    a = pts[0];
    b = pts[1];
    RvMiDivideBezierByLength(&a, &b, in.Coordinate(), &m);
  }

  std::vector<RVPOINT> spline(1 + count * 2);
  for (auto& q : spline) q = in.Point();
  std::vector<RVPOINT> result(21 * spline.size());
  const int32_t splineCount = int32_t(spline.size()) - 1;
  (void)RvMiSplineToPoints(spline.data(), splineCount, result.data(), &n);
  return 0;
}
