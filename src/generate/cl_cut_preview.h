// CRvCLCutPreview: flat point lists of a plot job for the host's preview.
//
// The host converts the arts of "KFPlotFileLayer" into the working layer
// "PreviewDataLayer" (every path one Bezier), sets the matrix that fits the
// drawing into its window, makes the data and fetches counts and points;
// initialising drops the data and the active document. The instance keeps
// the passes and points between these calls and owns them; the host only
// ever receives copies. Nothing here changes "KFPlotFileLayer" but the
// bounding boxes of its paths.
#pragma once

#include <cstdint>
#include <vector>

#include "rvdataaccess.h"

namespace rv {

class CRvArt;
class CRvDataAccess;

/// Source layer of the preview.
inline constexpr const char* kPreviewSourceLayerName = "KFPlotFileLayer";
/// Working layer that RvExCLConvertToBezierArt builds.
inline constexpr const char* kPreviewLayerName = "PreviewDataLayer";

class CRvCLCutPreview {
 public:
  /// Flattening of the preview's curves, in window units.
  static constexpr double kMaxLength = 5.0;
  static constexpr double kTolerance = 0.3;
  /// Margin kept round the drawing on each side of the window.
  static constexpr double kWindowMargin = 10.0;
  /// Attribute flag of an art that takes part in the job's bounds.
  static constexpr uint8_t kFlagPlotted = 2;
  /// Attribute flag of an art that ends the preview (and is left out of it).
  static constexpr uint8_t kFlagStop = 16;

  /// The process-wide instance, made at first use.
  static CRvCLCutPreview& Instance();
  virtual ~CRvCLCutPreview() = default;
  CRvCLCutPreview(const CRvCLCutPreview&) = delete;
  CRvCLCutPreview& operator=(const CRvCLCutPreview&) = delete;

  /// Builds "PreviewDataLayer" in front of the active document's layers.
  void ConvertToBezierArt();
  /// Computes `m_bounds` and `m_matrix` for a window of `width` x `height`.
  void SetMatrix(uint16_t orientation, double width, double height);
  /// Appends one pass per component of the arts of "PreviewDataLayer" of the
  /// document `documentIndex`, which becomes active.
  void MakeData(int16_t documentIndex);
  /// Drops every pass and point and deletes the active document.
  void Initialize();

  const std::vector<RVCUTPREVIEWPASS>& Passes() const { return m_passes; }
  const std::vector<RVPOINT>& Points() const { return m_points; }
  int32_t TotalPoints() const { return m_totalPoints; }
  const RVRECT& Bounds() const { return m_bounds; }
  const RVRIFMATRIX& Matrix() const { return m_matrix; }

 private:
  CRvCLCutPreview() = default;

  void ConvertChildren(CRvDataAccess& store, const CRvArt* source, CRvArt* target);
  void ConvertPath(CRvDataAccess& store, CRvArt* path, CRvArt* target);
  void MakePasses(CRvDataAccess& store, CRvArt* path);
  void AppendPass(const RVBEZIERPOINT* points, int32_t count, int32_t closed, int32_t clockwise, uint16_t passType);

  std::vector<RVCUTPREVIEWPASS> m_passes;
  std::vector<RVPOINT> m_points;
  int32_t m_totalPoints = 0;
  RVRECT m_bounds{};
  RVRIFMATRIX m_matrix{1.0, 0.0, 0.0, 1.0, 0.0, 0.0};
};

}  // namespace rv
