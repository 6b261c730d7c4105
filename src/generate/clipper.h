// CRvClipper: all polygon offsetting and line clipping of the library.
//
// A thin adaptor over ClipperLib (the only file that includes clipper.hpp is
// clipper.cpp). It turns polylines in millimetres (RVCURVEPOINT records of
// kind 0) into paths on a micrometre grid, runs the library, and turns the
// result back: into RVHATCHLINE records, or into path arts in a named layer
// of the active document, an outline with holes as one compound. Callers
// speak millimetres, arts and line records; grid integers never leave this
// pair of files.
//
// One instance exists for the process (Instance). Paths stay in the offset
// or the clipper until the caller clears them; the generators clear both
// also when they fail. Failures are raised (rv::Raise): a coordinate or
// offset that isn't finite or lies beyond kMaxCoordinate, and every failure
// of ClipperLib itself, which stops here and becomes a library code.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "model/art.h"
#include "rvdataaccess.h"

namespace rv {

/// How the corners of an offset are joined.
enum class ClipJoin : int32_t {
  kSquare = 0,  ///< corners cut off square at the offset distance
  kRound = 1,   ///< corners rounded within the arc tolerance
  kMiter = 2,   ///< corners extended to a point, up to the miter limit
};

/// How the ends of a path are treated by an offset.
enum class ClipEnd : int32_t {
  kClosedPolygon = 0,  ///< a closed shape: grows or shrinks as an area
  kClosedLine = 1,     ///< a closed line: widened on both sides, as a ring
  kOpenButt = 2,       ///< an open line: widened, ends cut flat at the end points
  kOpenSquare = 3,     ///< an open line: widened, ends squared out by the distance
  kOpenRound = 4,      ///< an open line: widened, ends rounded
};

/// The operation of a clip.
enum class ClipOperation : int32_t {
  kIntersection = 0,  ///< what lies in both the subject and the clip
  kUnion = 1,         ///< what lies in either
  kDifference = 2,    ///< what lies in the subject but not the clip
  kXor = 3,           ///< what lies in exactly one
};

/// Which areas of self-crossing or nested paths are inside.
enum class ClipFill : int32_t {
  kEvenOdd = 0,   ///< odd crossing counts are inside: holes by nesting
  kNonZero = 1,   ///< a winding number other than 0 is inside: holes by orientation
  kPositive = 2,  ///< a winding number above 0 is inside
  kNegative = 3,  ///< a winding number below 0 is inside
};

/// The role of a path in a clip.
enum class ClipRole : int32_t {
  kSubject = 0,  ///< the paths that are cut (open or closed)
  kClip = 1,     ///< the closed shapes that cut them
};

/// What every art made from a result carries.
struct ClipArtParams {
  std::string plotInfoText;       ///< plot info text of every new path
  int32_t plotInfoNumber = 0;     ///< plot info value of every new path
  int16_t refMapIndex = 0;        ///< RefMap table of the new arts
  std::string refMapKey;          ///< key of the new arts in that table
  RVRIFMATRIX matrix{1, 0, 0, 1, 0, 0};  ///< applied to every new point
};

class CRvClipper {
 public:
  /// The grid: one millimetre is this many grid steps (micrometres).
  static constexpr double kGridPerMm = 1000.0;
  /// Largest coordinate or offset, in millimetres (one kilometre), that the
  /// grid takes; beyond it, and for NaN or infinity, kErrClipCoordinate.
  static constexpr double kMaxCoordinate = 1.0e6;
  /// Miter limit and arc tolerance (in grid steps) of the offset.
  static constexpr double kMiterLimit = 2.0;
  static constexpr double kArcTolerance = 0.25;

  /// The process-wide instance, made at first use.
  static CRvClipper& Instance();
  virtual ~CRvClipper();
  CRvClipper(const CRvClipper&) = delete;
  CRvClipper& operator=(const CRvClipper&) = delete;

  /// Millimetres to grid steps: x1000.0 truncated toward zero. Raises
  /// kErrClipCoordinate for a value that isn't finite or beyond kMaxCoordinate.
  static int64_t ToGrid(double mm);
  /// Grid steps to millimetres: x0.001.
  static double FromGrid(int64_t grid) { return double(grid) * 0.001; }

  /// Adds a polyline to the offset with the current join type.
  void AddOffsetPath(const RVCURVEPOINT* points, int32_t count, ClipEnd end);
  /// Adds a polyline to the clipper; false when ClipperLib refuses it (an
  /// open clip path is refused with no effect, as is a path too short).
  bool AddClipPath(const RVCURVEPOINT* points, int32_t count, bool closed, ClipRole role);
  /// Adds each line as an open two-point subject; takes the array and
  /// releases it. The result of the last add (false for none).
  bool AddLines(std::vector<RVHATCHLINE> lines);
  /// Executes the clipper and returns its open two-point results as lines,
  /// the last result first, each running from its second point to its first,
  /// marks 65535. Results of another length are dropped.
  std::vector<RVHATCHLINE> ExecuteToLines(ClipOperation operation, ClipFill fill);
  /// Executes the clipper into arts in `layerName`; 1 when the result is
  /// empty (nothing made, the layer not created), else 0.
  int32_t ExecuteToArts(ClipOperation operation, ClipFill fill, const std::string& layerName,
                        const ClipArtParams& params);
  /// Offsets the added paths by `deltaMm` (negative shrinks; the paths are
  /// normalised at offset 0 first and replace the added ones) into arts in
  /// `layerName`; 1 when nothing is left (no art, no layer made), else 0.
  int32_t OffsetToArts(double deltaMm, const std::string& layerName, const ClipArtParams& params);

  /// Sets the join type of the next AddOffsetPath calls.
  void SetJoinType(ClipJoin join) { m_joinType = join; }
  ClipJoin GetJoinType() const { return m_joinType; }
  void SetMiterLimit(double limit);
  void SetArcTolerance(double tolerance);
  /// Forgets the paths of the offset.
  void ClearOffset();
  /// Forgets the paths of the clipper.
  void ClearClipper();

 private:
  CRvClipper();
  struct Engine;
  std::unique_ptr<Engine> m_engine;  ///< the Clipper and the ClipperOffset
  ClipJoin m_joinType = ClipJoin::kSquare;
};

/// Clears the offset and the clipper when the scope is left, whichever way:
/// a generator holds one over its run so that a failure leaves nothing held.
class ClipperScope {
 public:
  ClipperScope() = default;
  ~ClipperScope() {
    CRvClipper::Instance().ClearOffset();
    CRvClipper::Instance().ClearClipper();
  }
  ClipperScope(const ClipperScope&) = delete;
  ClipperScope& operator=(const ClipperScope&) = delete;
};

}  // namespace rv
