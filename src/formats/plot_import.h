// Plot file import: the run loop that feeds a file through the interpreter,
// and the drawing builder interface that turns its moves into paths.
//
// The driver (CRvPlotImportDriver) owns the interpreter and one builder. It
// scales the interpreter's moves from plotter units to document units and
// remembers the pen and kind of the previous move, which the builder needs
// to decide whether a move opens, extends or ends a path. The PLT import
// plugs in CRvPLTImportData; another import can plug in its own builder.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "formats/plot_interpreter.h"
#include "rvdataaccess.h"

namespace rv {

class CRvFormatStrategy;

/// The path element values (set by VT, enabled by JT) at the time a path
/// finishes.
struct PlotPathValues {
  bool valid = false;
  int16_t element = -1;
  int16_t value = 0;
};

/// Kinds of the previous move.
enum PlotMoveKind : int16_t { kMoveLine = 0, kMoveArc = 1 };

/// Makes paths of the interpreter's moves (document units).
class CRvPlotBuilder {
 public:
  virtual ~CRvPlotBuilder() = default;
  /// A straight move. `lastPen` and `lastKind` describe the previous move,
  /// `penDown` this one.
  virtual void AddLine(const RVPOINT& from, const RVPOINT& to, int16_t lastPen, int16_t penDown, int16_t lastKind,
                       const PlotPathValues& values) = 0;
  /// An arc; it always draws.
  virtual void AddArc(const RVARCPOINT& arc, int16_t lastPen, int16_t lastKind) = 0;
  /// Finishes the path under construction. `endOfFile` is set for the call
  /// after the last byte, which raises the bare value 1 when no path exists.
  virtual void FinishPath(int16_t lastKind, const PlotPathValues& values, bool endOfFile) = 0;
  /// Puts whatever the builder holds back into the drawing. Runs when a run
  /// fails, so that the drawing keeps every move made before the failure.
  virtual void Settle() {}
};

class CRvPlotImportDriver : public CRvPlotSink {
 public:
  explicit CRvPlotImportDriver(std::unique_ptr<CRvPlotBuilder> builder);

  /// The run loop over the open file of `format`: reset, detect the dialect
  /// from the first 15 bytes, seek back, feed every byte, feed the end, and
  /// finish the path. Raises the codes of the file steps and of the builder.
  void Import(CRvFormatStrategy& format, double scale);
  /// The same run over bytes in memory (tests and fuzz targets).
  void ImportBytes(const uint8_t* bytes, std::size_t count, double scale);

  void DrawLine(const PlotPoint& from, const PlotPoint& to, int16_t penDown) override;
  void DrawArc(const PlotArc& arc) override;
  double ToDocumentUnit(double value) const { return value * m_scale; }

  CRvPlotInterpreter& Interpreter() { return m_interpreter; }
  CRvPlotBuilder& Builder() { return *m_builder; }

 private:
  /// Runs `run`; when it fails, lets the builder settle first.
  template <class Run>
  void SettledRun(Run&& run);
  void Begin(double scale, const uint8_t* head, std::size_t count);
  void End();
  PlotPathValues Values() const;

  std::unique_ptr<CRvPlotBuilder> m_builder;
  CRvPlotInterpreter m_interpreter;
  double m_scale = 0.025;
  int16_t m_lastPen = 0;
  int16_t m_lastKind = kMoveLine;
};

}  // namespace rv
