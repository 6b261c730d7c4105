// CRvContour: inward echoes of the shapes of the work layer.
//
// RvCreateContour (generate_exports.cpp) hands the host's RVCONTOURINFO to
// the one instance. A run offsets the shapes of "Rivlen_HatchingWorkLayer"
// inward by one step, two steps and so on, each echo into a layer
// "TempContourLayer<level>" of its own, until nothing is left; it can find
// the sharp corners of the echoes and draw a line from each to the next
// outer echo; then it copies the echoes, innermost first, and the corner
// lines into "Rivlen_ContourPathLayer".
#pragma once

#include <cstdint>
#include <vector>

#include "generate/work_layer.h"
#include "rvdataaccess.h"

namespace rv {

/// A sharp corner of an echo and the line that reaches from it outward.
struct RVCONTOURCORNER {
  RVPOINT target{};      ///< where the line ends, on the next outer echo
  RVPOINT corner{};      ///< the sharp corner on this echo
  int16_t level = 0;     ///< the echo the corner lies on
  uint8_t merged = 0;    ///< set when a deeper corner's line reaches past this one
  double angle = 0.0;    ///< direction of the corner's bisector, degrees
};

class CRvContour {
 public:
  /// Most echoes one run makes: a run that would need more is refused.
  static constexpr int32_t kMaxLevels = 100000;
  /// How far a corner line may reach to find the next outer echo, mm.
  static constexpr double kCornerReach = 50.0;
  /// Corners and line ends closer than this are one point, mm; bisectors
  /// closer than this are one direction, degrees.
  static constexpr double kMergeDistance = 0.1;
  static constexpr double kMergeAngle = 0.1;

  /// The process-wide instance, made at first use.
  static CRvContour& Instance();
  virtual ~CRvContour() = default;
  CRvContour(const CRvContour&) = delete;
  CRvContour& operator=(const CRvContour&) = delete;

  /// Takes over `info` and runs; failures are raised (see RvCreateContour).
  void Run(int16_t document, const RVCONTOURINFO& info);

  /// The number of echoes the last run made.
  int16_t LevelCount() const { return m_levelCount; }

 private:
  CRvContour() = default;

  void CheckRecord(int16_t document) const;
  std::vector<FlatPath> GatherShapes(CRvArt* workLayer) const;
  void CheckLevelBound(const std::vector<FlatPath>& shapes, double step) const;
  uint32_t MakeEcho(const std::vector<FlatPath>& shapes, double step, int32_t level, const RunPlotInfo& plot);
  void FindCorners();
  void ScanCorners(CRvArt* bezier, int16_t level);
  void SearchTargets();
  void MergeCorners();
  void Output(int16_t document, CRvArt* workLayer);
  void CopyLevel(CRvArt* layer, CRvArt* levelLayer);
  void MakeCornerLines(CRvArt* layer, const RunPlotInfo& plot);

  RVCONTOURINFO m_info{};
  RVRIFMATRIX m_workMatrix{1, 0, 0, 1, 0, 0};
  int16_t m_levelCount = 0;
  std::vector<RVCONTOURCORNER> m_lineList;  ///< the corner lines that survive the merge
  std::vector<RVCONTOURCORNER> m_corners;   ///< all corners found
};

}  // namespace rv
