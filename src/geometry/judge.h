// Path judgments: orientation, inside tests, nesting, both-sides corners,
// the start point of a closed path and joint points.
//
// Everything is judged on the coarse polyline of a path (judge_polyline.h),
// read through the drawing store as a host reads it. These functions raise
// their failures (rv::Raise); the exports in judge_exports.cpp put the frames
// round them. The export driver and the generators call them directly.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "geometry/judge_polyline.h"
#include "model/art.h"
#include "rvdataaccess.h"

namespace rv {

/// The first component of a path art, which its coarse polyline is made
/// of, with the path's start segment and matrix. Raises as PathPolyline does.
const CRvBezier& PathBezier(CRvArt* path, int32_t& start, RVRIFMATRIX& matrix);

/// The coarse polyline of a path art: its first component (a Bezier), from
/// the path's start segment round, anchors mapped by the path's matrix when
/// `withMatrix`. Raises 0x06001001 for a null path, 0x05000D01 when it has no
/// component, 0x05000E01 when the component isn't a Bezier.
CoarsePolyline PathPolyline(CRvArt* path, bool withMatrix = true);

/// Orientation of a Bezier component, without matrix: 1 clockwise, 2
/// counter-clockwise, 0 for no area. A component that can't be read gives 0.
int32_t JudgeClockwise(CRvArt* component);

/// Whether `q` lies inside the path (winding angle of its coarse polyline).
bool JudgeInsidePoint(CRvArt* path, const RVPOINT& q);

/// Whether every point of the coarse polyline of `path` (each segment's list
/// but its last point) lies inside `outer`. A path without segments isn't.
bool JudgeInsidePath(CRvArt* path, CRvArt* outer);

/// Sorts the paths by absolute area, largest first (equal areas keep their
/// order), and flips `inside` of each path that lies inside an earlier one
/// with the same flag; with `invert` all flags flip at the end. Each path's
/// area and polyline are computed once, and each path is tested only against
/// the earlier paths whose boxes can hold it, found through a box grid
/// (FlipNestedByIndex); the result is exactly that of the plain algorithm.
void JudgeInsideOutside(RVINSIDEPATH* paths, std::size_t count, bool invert);
inline void JudgeInsideOutside(std::vector<RVINSIDEPATH>& paths, bool invert) {
  JudgeInsideOutside(paths.data(), paths.size(), invert);
}

/// The flags of JudgeInsideOutside, with the array left in its order. Paths
/// of straight segments are judged by their corners (StraightOutline) and
/// their polylines made only where that can't decide; their areas bound
/// the order by area, and exact areas are taken only where a path lies
/// inside another of nearly its area. Falls back to JudgeInsideOutside
/// (sorting the array) where a path can't be read, to fail as it fails.
void JudgeNestingFlags(RVINSIDEPATH* paths, std::size_t count, bool invert);

/// JudgeNestingFlags in two steps, the first on a second thread: which paths
/// hold which doesn't depend on their order, only the ties of equal areas
/// do. The job reads the paths and relates them while the caller goes on
/// (ordering them, say); Finish gives the flags for the same paths in their
/// final order. The paths must not change until Finish or the job's end;
/// the destructor stops the thread and waits for it.
class NestingJob {
 public:
  /// Sets to work on `paths` (their order and flags don't count) on a
  /// thread of its own when there are `threadFrom` or more and the machine
  /// has a second core; else Finish does all the work.
  explicit NestingJob(std::vector<RVINSIDEPATH> paths, std::size_t threadFrom = kThreadFrom);
  ~NestingJob();
  NestingJob(const NestingJob&) = delete;
  NestingJob& operator=(const NestingJob&) = delete;

  /// Waits until the paths are read: true when the thread reads them all,
  /// so that Finish won't fail; false without a thread.
  bool Readable();
  /// Hands over the paths in their final order, for the thread to settle
  /// their flags (as Finish would) while the caller goes on.
  void Order(std::vector<RVINSIDEPATH> paths, bool invert);
  /// The flags of JudgeNestingFlags(paths, count, invert) for the paths
  /// given at the start, now in this order: those settled for the order
  /// handed over, when it is this one. Where the thread failed, or these
  /// aren't the same arts, JudgeNestingFlags judges them here.
  void Finish(RVINSIDEPATH* paths, std::size_t count, bool invert);

  /// Fewer paths are judged at once: a thread doesn't pay for them.
  static constexpr std::size_t kThreadFrom = 2048;

 private:
  struct Work;
  std::unique_ptr<Work> m_work;
};

/// The plain algorithm: an exchange sort that computes both areas at every
/// comparison, and the full inside test of every pair. Kept as the measure
/// of JudgeInsideOutside.
void JudgeInsideOutsidePlain(RVINSIDEPATH* paths, std::size_t count, bool invert);

/// Signed area of a path art (0x05000D01 for null, 0x05000E01 for an art
/// that isn't a path).
double PathArea(CRvArt* path);

/// Whether a corner that turns by `angle` degrees is cut from both sides.
bool IsBothSidesCutLine(double angle, double limitAngle, int32_t inside, int32_t clockwise);

/// Moves the start of a closed path to its best corner and returns the new
/// start segment (see RvMiOptimizeStartSegment). The caller has read the
/// path's closed flag and found it set.
int16_t OptimizeStartSegment(CRvArt* path, const RVRIFMATRIX& matrix, int16_t type, int32_t closed);

/// Inserts a point into `component` behind `index`, `length` along the curve
/// a-b, which are given in the space that `matrix` maps the component into.
/// Raises 0x08001901 for a matrix without inverse.
void CreateJointSegment(CRvArt* component, int32_t index, RVBEZIERPOINT a, RVBEZIERPOINT b,
                        const RVRIFMATRIX& matrix, double length);

}  // namespace rv
