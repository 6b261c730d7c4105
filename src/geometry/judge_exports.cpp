// Exported path judgments.
#include "frame/error_codes.h"
#include "frame/frame.h"
#include "geometry/affine.h"
#include "geometry/judge.h"

extern "C" {

RV_API int32_t RvMiJudgePathClockwise(void* path, int32_t /*closed*/) { return rv::JudgeClockwise(rv::ArtOf(path)); }

RV_API uint32_t RvMiJudgeInsidePoint(void* path, const RVPOINT* point, int32_t* inside) {
  return rv::Guard([&] {
    if (inside != nullptr) *inside = 0;
    if (point == nullptr) rv::Raise(rv::kErrNullPath);
    const bool result = rv::JudgeInsidePoint(rv::ArtOf(path), *point);
    if (inside != nullptr) *inside = result ? 1 : 0;
  });
}

RV_API uint32_t RvMiJudgeInsidePath(void* path, void* outer, int32_t* inside) {
  return rv::Guard([&] {
    if (inside != nullptr) *inside = 0;
    const bool result = rv::JudgeInsidePath(rv::ArtOf(path), rv::ArtOf(outer));
    if (inside != nullptr) *inside = result ? 1 : 0;
  });
}

RV_API uint32_t RvMiJudgeInsideOutsidePath(RVINSIDEPATH* paths, int32_t invert) {
  return rv::Guard([&] {
    if (paths == nullptr) return;
    std::size_t count = 0;  // the list ends at the first element without an art
    while (paths[count].art != nullptr) ++count;
    rv::JudgeInsideOutside(paths, count, invert != 0);
  });
}

RV_API int32_t RvMiIsBothSidesCutLine(double Angle, double LimitAngle, int32_t bInside, int32_t bClockwise) {
  return rv::IsBothSidesCutLine(Angle, LimitAngle, bInside, bClockwise) ? 1 : 0;
}

RV_API uint32_t RvMiOptimizeStartSegment(void* path, const RVRIFMATRIX* matrix, int16_t type, int16_t* startSegment) {
  // Whether the path is closed is read in the caller's frame.
  int32_t closed = 0;
  const uint32_t code = RvGiGetPathClosed(path, &closed);
  if (code != 0) {
    Exception(code);
    return code;
  }
  if (closed == 0) return 0;
  return rv::Guard([&] {
    const int16_t start =
        rv::OptimizeStartSegment(rv::ArtOf(path), matrix != nullptr ? *matrix : rv::kIdentity, type, closed);
    if (startSegment != nullptr) *startSegment = start;
  });
}

RV_API void RvMiCreateJointSegment(void* path, int32_t index, const RVBEZIERPOINT* a, const RVBEZIERPOINT* b,
                                   const RVRIFMATRIX* matrix, double length) {
  rv::GuardThenException([&] {
    if (a == nullptr || b == nullptr || matrix == nullptr) rv::Raise(rv::kErrNullPath);
    rv::CreateJointSegment(rv::ArtOf(path), index, *a, *b, *matrix, length);
  });
}

}  // extern "C"
