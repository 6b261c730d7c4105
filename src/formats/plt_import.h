// PLT import: the format strategy, the import driver and the drawing
// builder that fills the layer "KFPlotFileLayer".
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "formats/file_frame.h"
#include "formats/plot_import.h"
#include "rvdataaccess.h"

namespace rv {

class CRvArt;
class CRvPath;

/// Makes paths of the interpreter's moves in layer 0 of the active
/// document: one path per pen-down stroke, a run of straight moves as one
/// Bezier component (handles on the anchors), a run of arcs as one arc
/// component. A path is black, has attribute flags 7, and is closed when its
/// end lies within 0.1 document units of its start (the end is then snapped
/// onto the start).
class CRvPLTImportData : public CRvPlotBuilder {
 public:
  void AddLine(const RVPOINT& from, const RVPOINT& to, int16_t lastPen, int16_t penDown, int16_t lastKind,
               const PlotPathValues& values) override;
  void AddArc(const RVARCPOINT& arc, int16_t lastPen, int16_t lastKind) override;
  void FinishPath(int16_t lastKind, const PlotPathValues& values, bool endOfFile) override;
  /// The points of a line list are held back and go into the Bezier in one
  /// piece, of its exact size, when the component or the path ends.
  void Settle() override;

 protected:
  /// Whether FinishPath sets the path element values (always, here).
  virtual bool SetsValuesAt(bool /*endOfFile*/) const { return true; }

 private:
  void OpenPath(int16_t componentType, const RVPOINT& start);
  void NewComponent(int16_t componentType);
  void AppendAnchor(const RVPOINT& point);
  CRvArt* m_currentPath = nullptr;
  CRvArt* m_currentBezier = nullptr;
  CRvArt* m_currentArc = nullptr;
  RVPOINT m_pathStart{};
  RVPOINT m_pathEnd{};
  std::vector<RVBEZIERPOINT> m_held;  // points of m_currentBezier not yet in it
};

/// The import driver of PLT files: the interpreter with a CRvPLTImportData.
class CRvPLTAccessFirmSource : public CRvPlotImportDriver {
 public:
  CRvPLTAccessFirmSource();
};

/// The PLT format strategy: import only.
class CRvPLTFormat : public CRvFormatStrategy {
 public:
  /// `unitScale`: document units per plotter unit; 0.0 (or a null pointer)
  /// selects 0.025, any other value is kept as given.
  explicit CRvPLTFormat(const double* unitScale);

  /// Makes the layer "KFPlotFileLayer" at the front, then reads the file.
  uint32_t ImportToRIF() override;
  /// 0x01001101: this format only reads.
  uint32_t ExportFromRIF(void* context) override;

  double UnitScale() const { return m_unitScale; }

 private:
  double m_unitScale;
};

/// Imports plot file bytes from memory into a new layer "KFPlotFileLayer" of
/// the active document, as RvImPLTToRIF does with a file (for tests and fuzz
/// targets). `unitScale` as for CRvPLTFormat.
void ImportPlotBytes(const uint8_t* bytes, std::size_t count, const double* unitScale);

}  // namespace rv
