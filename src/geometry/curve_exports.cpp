// Exported curve operations: each builds a CRvConvertPt on the stack, sets its
// parameters, runs one operation and hands the records out.
#include <cstdlib>

#include "frame/frame.h"
#include "geometry/convert_pt.h"
#include "geometry/curve_core.h"

namespace {

// Checks the two outputs of an array-producing export and clears them, so
// that a failure leaves nothing for the host to free.
void PrepareOutputs(RVCURVEPOINT** result, int32_t* resultCount) {
  if (result == nullptr || resultCount == nullptr) rv::Raise(rv::kErrCurveArgument);
  *result = nullptr;
  *resultCount = 0;
}

void CheckCurveInput(const RVBEZIERPOINT* points, int32_t count) {
  if (count < 0 || (points == nullptr && count > 0)) rv::Raise(rv::kErrCurveArgument);
}

// The frame of the exports that turn curves into records: checks, a worker
// with the flattening parameters, `run(worker)`, and the records handed out.
template <class Run>
uint32_t RunCurveExport(const RVBEZIERPOINT* points, int32_t count, double maxLength, double tolerance,
                        RVCURVEPOINT** result, int32_t* resultCount, Run run) {
  return rv::Guard([&] {
    PrepareOutputs(result, resultCount);
    CheckCurveInput(points, count);
    rv::CRvConvertPt worker;
    worker.m_maxLength = maxLength;
    worker.m_tolerance = tolerance;
    rv::HandOut(run(worker), result, resultCount);
  });
}

// Divides the curve a-b on copies of the three records, which then go back to
// the caller: records that share memory are all read before any is written.
template <class Divide>
void DivideCopies(RVBEZIERPOINT* a, RVBEZIERPOINT* b, RVBEZIERPOINT* middle, Divide divide) {
  if (a == nullptr || b == nullptr || middle == nullptr) rv::Raise(rv::kErrCurveArgument);
  RVBEZIERPOINT first = *a, second = *b, mid = *middle;
  divide(first, second, mid);
  *a = first;
  *b = second;
  *middle = mid;
}

}  // namespace

extern "C" {

RV_API uint32_t RvMiArcToCurves(const RVARCPOINT* arc, RVCURVEPOINT** result, int32_t* resultCount) {
  return rv::Guard([&] {
    PrepareOutputs(result, resultCount);
    if (arc == nullptr) rv::Raise(rv::kErrCurveArgument);
    rv::CRvConvertPt worker;
    rv::HandOut(worker.ArcToCurves(*arc), result, resultCount);
  });
}

RV_API uint32_t RvMiCurvesToPoints(const RVBEZIERPOINT* points, int32_t count, double maxLength, double tolerance,
                                   RVCURVEPOINT** result, int32_t* resultCount, int32_t mode) {
  return RunCurveExport(points, count, maxLength, tolerance, result, resultCount, [&](rv::CRvConvertPt& worker) {
    worker.m_mode = mode;
    return worker.CurvesToPoints(points, count);
  });
}

RV_API uint32_t RvMiCurvesToArc(const RVBEZIERPOINT* points, int32_t count, double maxLength, double tolerance,
                                RVCURVEPOINT** result, int32_t* resultCount, double scale) {
  return RunCurveExport(points, count, maxLength, tolerance, result, resultCount,
                        [&](rv::CRvConvertPt& worker) { return worker.CurvesToArc(points, count, scale); });
}

RV_API uint32_t RvMiCurvesToSpline(RVBEZIERPOINT* points, int32_t count, double maxLength, double tolerance,
                                   RVCURVEPOINT** result, int32_t* resultCount, double scale) {
  return RunCurveExport(points, count, maxLength, tolerance, result, resultCount,
                        [&](rv::CRvConvertPt& worker) { return worker.CurvesToSpline(points, count, scale); });
}

RV_API uint32_t RvMiSplineToPoints(const RVPOINT* points, int32_t count, RVPOINT* result, int32_t* resultCount) {
  return rv::Guard([&] {
    if (resultCount == nullptr || count < 0 || count > rv::CRvConvertPt::kMaxSplinePoints) {
      rv::Raise(rv::kErrCurveArgument);
    }
    if (count >= 2 && (points == nullptr || result == nullptr)) rv::Raise(rv::kErrCurveArgument);
    *resultCount = rv::CRvConvertPt::SplineToPoints(points, count, result);
  });
}

RV_API uint32_t RvMiDivideBezier(RVBEZIERPOINT* a, RVBEZIERPOINT* b, double t, RVBEZIERPOINT* middle) {
  return rv::Guard([&] {
    DivideCopies(a, b, middle,
                 [&](RVBEZIERPOINT& p, RVBEZIERPOINT& q, RVBEZIERPOINT& m) { rv::DivideBezier(p, q, t, m); });
  });
}

RV_API void RvMiDivideBezierByLength(RVBEZIERPOINT* a, RVBEZIERPOINT* b, double length, RVBEZIERPOINT* middle) {
  rv::GuardThenException([&] {
    DivideCopies(a, b, middle, [&](RVBEZIERPOINT& p, RVBEZIERPOINT& q, RVBEZIERPOINT& m) {
      rv::CRvConvertPt::DivideBezierByLength(p, q, length, m);
    });
  });
}

RV_API void RvMiGetBezierLength(const RVBEZIERPOINT* a, const RVBEZIERPOINT* b, double* length) {
  rv::GuardThenException([&] {
    if (a == nullptr || b == nullptr || length == nullptr) rv::Raise(rv::kErrCurveArgument);
    *length = rv::CRvConvertPt::BezierLength(*a, *b);
  });
}

RV_API double RvMiCalcAngleOfThreePoints(const RVPOINT* p1, const RVPOINT* vertex, const RVPOINT* p3) {
  if (p1 == nullptr || vertex == nullptr || p3 == nullptr) return 0.0;
  return rv::AngleOfThreePoints(*p1, *vertex, *p3);
}

RV_API double RvMiCalcAngleOfBezier(RVBEZIERPOINT point, RVBEZIERPOINT previous, RVBEZIERPOINT next) {
  return rv::CRvConvertPt::AngleOfBezier(point, previous, next);
}

RV_API double RvMiGetCenterAngle(const RVARCPOINT* arc, const RVPOINT* point, int32_t reverse) {
  if (arc == nullptr || point == nullptr) return 0.0;
  return rv::CRvConvertPt::CenterAngle(*arc, *point, reverse != 0);
}

RV_API uint32_t RvMiFreePoints(RVCURVEPOINT* points) {
  std::free(points);
  return 0;
}

}  // extern "C"
