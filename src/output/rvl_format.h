// CRvRVLFormat: the output strategy that turns the active document into a
// plot job (RVL). One object serves one export: it places the job, runs the
// passes over the arts, and writes each art through the command table.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "formats/file_frame.h"
#include "frame/frame.h"
#include "geometry/affine.h"
#include "model/art.h"
#include "output/number_format.h"
#include "output/rvl_commands.h"
#include "rvdataaccess.h"

namespace rv {

/// Tags and layers that the plot writers create or read.
inline constexpr const char* kInsidePathTag = "RivlenKerflowInsidePathTag";
inline constexpr const char* kBothSidesCutTag = "RivlenKerflowBothSidesCutTag";
inline constexpr const char* kInToOutTag = "RivlenKerflowInToOutTag";
inline constexpr const char* kRepeatTag = "RivlenKerflowRepeatTag";
inline constexpr const char* kMicroJointTag = "RivlenKerflowMicroJointTag";
inline constexpr const char* kMicroJointLayer = "MicroJointLayer";

/// The progress text of plot data creation, spelled as the hosts know it.
inline constexpr const char* kCreatingPlotDataText = "Createing plot data... %d %%";

/// RefMap keys of the hatching output, written by class 10.
inline constexpr const char* kHatchingFrameKey = "RivlenHatchingFrame";
inline constexpr const char* kHatchingLineKey = "RivlenHatchingLine";

/// Code of the output routes that this build doesn't carry yet (milling
/// writer of classes 5 and 12, output of a "MicroJointLayer"): the format
/// has no such output, as for an export through an import-only format.
constexpr uint32_t kErrOutputNotSupportedYet = ErrCode(1, 17);

class CRvArtSort;

class CRvRVLFormat : public CRvFormatStrategy {
 public:
  explicit CRvRVLFormat(const RVPLOTPARAM& param);
  ~CRvRVLFormat() override;
  CRvRVLFormat(const CRvRVLFormat&) = delete;
  CRvRVLFormat& operator=(const CRvRVLFormat&) = delete;

  // ---- the strategy's operations ----
  /// The format writes only: 0x01001101.
  uint32_t ImportToRIF() override;
  /// Writes the active document as a plot job into the open file; `context`
  /// goes to every progress callback. Returns 0 or the code of the failure
  /// (restoring the document's boxes with expandDocument).
  uint32_t ExportFromRIF(void* context) override;

  // ---- passes over the arts ----
  /// Start-point pass of one art (classes 1, 4, 11 with optimizeStartPoints).
  void StartPointPass(CRvArt* art);
  /// Inside pass: orders `list` by area, flags the arts at odd depth (the
  /// flags inverted with swapInsideOutside) and tags them.
  void InsidePass(std::vector<RVINSIDEPATH>& list);
  /// The cutting writer of one art: passes, condition blocks, paths, "PU;",
  /// progress.
  void CuttingWriter(CRvArt* art);
  /// Composes the condition block of one pass into `block` (sets m_vCut).
  void ComposeConditionBlock(std::string& block, const CondRecord& cond, const ThetaExtension* theta);
  /// Reads the condition of `key` at `pass` and writes its block.
  void WriteConditionBlock(const std::string& key, int32_t pass);

  // ---- seams of the routes that come later ----
  /// The milling writer of classes 5 and 12, one art. Not carried yet: every
  /// art returns kErrOutputNotSupportedYet.
  uint32_t MillingWriter(CRvArt* art);
  /// Output of the layer "MicroJointLayer" after the job. Nothing without
  /// the layer; with it, not carried yet (kErrOutputNotSupportedYet).
  void WriteMicroJoints();

  // ---- writing ----
  /// Writes `length` bytes to the output file. A short write closes the
  /// file and raises 0x01000301. Zero bytes write nothing.
  void WriteBytes(const char* text, std::size_t length);
  void WriteBytes(const std::string& text) { WriteBytes(text.data(), text.size()); }
  /// Appends row `row` of the job's dialect, formatted with `args`.
  void AppendRow(std::string& out, int row, std::initializer_list<RowArg> args) const {
    AppendFormatted(out, RvlCell(row, m_param.dialect), args);
  }

  /// Sets the placement and the rectangle that it was made for (and with
  /// them the output flip).
  void SetPlacement(const RVRIFMATRIX& placement, const RVRECT& rect);

  /// The path writer: one path component, mapped by the art matrix, the
  /// placement and the output flip, as moves and draws (or arcs, splines)
  /// from its start segment; one write per record.
  void WritePath(const CRvBezier& path, const RVRIFMATRIX& artMatrix, bool closed, bool forward, int& needMove);

  /// The frame round the whole job.
  void WriteFrame();

  /// One art done: counts it, reports "Createing plot data... %d %%" and
  /// raises 0x06001F01 when the host cancels.
  void AdvanceProgress();

  /// The output flip of the current placement rectangle.
  const RVRIFMATRIX& OutputFlipMatrix() const { return m_flip; }

  /// The base placement, job offsets and placement transform of the job;
  /// the placement rectangle becomes the document's plot bound box (grown by
  /// the margins, with the document bound box, for expandDocument).
  void PlaceJob();

  // ---- the members of the format (the open file is the base's) ----
  void* m_callbackUser = nullptr;
  void* m_progressContext = nullptr;
  int32_t m_artTotal = 0;
  int32_t m_artDone = 0;
  RVPLOTPARAM m_param;
  std::string m_tilePrefix;
  int32_t m_tiles = 0;
  RVRIFMATRIX m_placement = kIdentity;
  RVRECT m_placementRect{};
  int32_t m_tileMode = 0;
  int32_t m_currentTile = 0;
  std::string m_currentKey;
  double* m_finalOriginY = nullptr;
  void* m_makeOffsetArt = nullptr;
  uint8_t m_vCut = 0;

 private:
  /// Maps the three positions of a record by the art matrix, the placement
  /// and the output flip, in this order.
  void MapRecord(RVBEZIERPOINT& p, const RVRIFMATRIX& artMatrix) const;

  void RunExport();
  void RestoreDocument();
  void UnsortedRoute();
  void SortedRoute();
  /// Writes a sorted list: inside and both-sides passes where the class has
  /// them, then the art writer for each art in list order.
  void WriteSorted(CRvArtSort& sort);
  /// The record of a curve conversion of the path writer, one write.
  void WriteCurveRecord(const RVCURVEPOINT& r, bool exchange);

  RVRIFMATRIX m_flip = kIdentity;     // output flip, kept with the placement
  std::string m_record;               // one record of the path writer
  std::vector<RVPOINT> m_polyline;    // one curve as points

  // The document state that expandDocument changes for the time of the job.
  bool m_savedDocument = false;
  RVRECT m_savedDocBox{};
  RVRECT m_savedPlotBox{};
};

}  // namespace rv
