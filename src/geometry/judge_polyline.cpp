#include "geometry/judge_polyline.h"

#include "geometry/affine.h"
#include "geometry/curve_core.h"

namespace rv {

CoarsePolyline MakeCoarsePolyline(const RVBEZIERPOINT* records, int32_t count, int32_t start,
                                  const RVRIFMATRIX* matrix) {
  CoarsePolyline line;
  if (count <= 0) return line;
  line.ends.reserve(std::size_t(count));
  line.points.reserve(std::size_t(count) * 2);
  int32_t i = start % count;
  if (i < 0) i += count;
  for (int32_t k = 0; k < count; ++k) {
    const int32_t next = i + 1 >= count ? 0 : i + 1;
    RVBEZIERPOINT a = records[i];
    RVBEZIERPOINT b = records[next];
    if (matrix != nullptr) {
      a.anchor = Apply(*matrix, a.anchor);
      b.anchor = Apply(*matrix, b.anchor);
    }
    CurveToPoints(a, b, kJudgeLength, kJudgeTolerance, kJudgeMode, line.points);
    line.ends.push_back(line.points.size());
    i = next;
  }
  return line;
}

double OrientationSum(const CoarsePolyline& line) {
  double sum = 0.0;
  line.ForEachEdgeAt([&](std::size_t k) {
    const RVPOINT& p = line.points[k];
    const RVPOINT& q = line.points[k + 1];
    sum += (q.x - p.x) * (q.y + p.y) * 0.5;
  });
  return sum;
}

double WindingAngle(const CoarsePolyline& line, const RVPOINT& q) {
  double sum = 0.0;
  line.ForEachEdgeAt([&](std::size_t k) { sum += AngleOfThreePoints(line.points[k], q, line.points[k + 1]); });
  return sum;
}

}  // namespace rv
