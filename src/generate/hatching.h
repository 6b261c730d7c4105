// CRvHatching: parallel lines that fill the shapes of the work layer.
//
// RvCreateHatching (generate_exports.cpp) hands the host's RVHATCHINGINFO to
// the one instance. A run turns the shapes of "Rivlen_HatchingWorkLayer" so
// that the lines run along x, offsets them into "Rivlen_HatchingOffsetLayer",
// cuts a stack of horizontal lines by them through CRvClipper, lets the order
// step (hatch_order.h) put the lines in cutting order, and turns them back
// into two-point paths of "Rivlen_HatchingPathLayer". A frame, the outline
// offset by its own distance, goes to "Rivlen_HatchingFrameLayer". Every
// result is filed in the table of hatching plots.
#pragma once

#include <cstdint>

#include "generate/hatch_work.h"
#include "generate/work_layer.h"
#include "rvdataaccess.h"

namespace rv {

class CRvHatching {
 public:
  /// Most lines one stack may hold: beyond it kErrHatchTooManyLines.
  static constexpr double kMaxLines = 1.0e6;
  /// A remainder of the stack's height up to this is no remainder, mm.
  static constexpr double kRemainderTolerance = 0.001;
  /// An offset below this is shortened by it, mm (every step but a tiny one).
  static constexpr double kOffsetShortening = 0.1;

  /// The process-wide instance, made at first use.
  static CRvHatching& Instance();
  virtual ~CRvHatching() = default;
  CRvHatching(const CRvHatching&) = delete;
  CRvHatching& operator=(const CRvHatching&) = delete;

  /// Takes over `info` and runs. 0, or 1 when the offset shapes or the frame
  /// came out empty; failures are raised (see RvCreateHatching).
  uint32_t Run(int16_t document, const RVHATCHINGINFO& info);

  /// The state of the last run (for the tests).
  const HatchWork& Work() const { return m_work; }

 private:
  CRvHatching() = default;

  void CheckRecord(int16_t document) const;
  void OrientCompounds(CRvArt* workLayer);
  bool MakeOffsetShapes(CRvArt* workLayer);
  void MakeLineStack();
  void ClipLines();
  void MakeLinePaths(int16_t document, CRvArt* workLayer);
  uint32_t MakeFrame(CRvArt* workLayer);

  HatchWork m_work;
};

/// The offset step of both generators: an offset below -0.1 mm is made
/// 0.1 mm shorter.
double ShortenedOffset(double offset);

}  // namespace rv
