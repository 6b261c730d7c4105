// CRvRVLFormat: the output strategy that turns the active document into a
// plot job (RVL). One object serves one export: it places the job, runs the
// passes over the arts, and writes each art through the command table.
#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "formats/file_frame.h"
#include "frame/error_codes.h"
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

/// The message that the milling and joint writers show when they fail.
inline constexpr const char* kMillingMessage = "JudgeArtforMilling:Error";
inline constexpr const char* kMillingMessageTitle = "test";

/// The most joints that a component's joint tag gives.
constexpr int kMaxJoints = 12;

/// The joints of an art: segment indexes of a component, as the joint tag
/// gives them.
struct JointList {
  int16_t count = 0;
  int16_t starts[kMaxJoints] = {};
  int16_t ends[kMaxJoints] = {};
};

/// The condition of one pass and its milling record; zeros where the table
/// has none (an unknown key, a record of another machine family).
struct MillingCondition {
  CondRecord record{};
  MillingExtension milling{};
};

/// Reads the condition of `key` at `pass` (1 first).
MillingCondition ReadMillingCondition(const std::string& key, int32_t pass);

/// A depth or thickness in tenths of a millimetre, rounded half up.
inline int32_t Tenths(double millimetres) { return TruncToInt32(millimetres * 10.0 + 0.5); }
/// The depth word of the tool-machine dialect (1) counts downward.
inline int32_t DownwardTenths(double millimetres) { return TruncToInt32(0.5 - millimetres * 10.0); }

/// Reads the value of a joint tag: the count, then start and end of each
/// joint, comma-separated. Numbers read as atoi reads them; the count is
/// held to 0..12 and to the pairs that follow it.
JointList ParseJointTag(const std::string& text);

class CRvArtSort;
class NestingJob;

/// RefMap and sort callbacks over a format (`context`): the cutting writer
/// and the milling writer of one art.
uint32_t CuttingWriterThunk(void* context, void* art);
uint32_t MillingWriterThunk(void* context, void* art);

/// Writes the document `documentIndex` as a tiled job of `tiles` into
/// `path`; on success `param.originY` becomes the originY behind the last
/// tile. Returns the code of the export.
uint32_t ExportTiledJob(const char* path, int16_t documentIndex, RVPLOTPARAM& param, const RVTILEPARAM& tiles,
                        void* progressContext);
/// Writes the document `documentIndex` as a job whose closed router arts
/// take their offset paths from `makeOffsetArt`. Returns the code.
uint32_t ExportMillingJob(const char* path, int16_t documentIndex, const RVPLOTPARAM& param, void* progressContext,
                          void* callbackUser, RvMakeOffsetArtFunc makeOffsetArt);

/// The closed paths of a collected list that the inside pass judges
/// (JudgedPath). A group or compound stands in a collected list once for
/// each path below it, under its own handle: it isn't a path, so it takes
/// no part.
std::vector<RVINSIDEPATH> ClosedPathsOf(const std::vector<RVINSIDEPATH>& collected);

/// Whether the inside pass judges an art: only paths whose outline is a
/// Bezier are judged, so a group or compound, or a path that starts with an
/// arc or spline, takes no part.
bool JudgedPath(const CRvArt* art);

/// Calls `write(bezier)` for each Bezier component of the path `path` in
/// order. The writers take paths whose curves are joined into Beziers: arc,
/// spline and compound children are passed over, any other child is
/// kErrPathComponent.
template <class Write>
void ForEachBezierComponent(CRvArt* path, Write&& write) {
  for (CRvArt* component : static_cast<CRvContainerArt*>(path)->m_children.items()) {
    switch (component->GetType()) {
      case kArtBezier:
        write(*static_cast<CRvBezier*>(component));
        break;
      case kArtCompound:
      case kArtArc:
      case kArtSpline:
        break;
      default:
        Raise(kErrPathComponent);
    }
  }
}

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
  /// Inside pass: judges the paths of `list` (all judged ones, see
  /// JudgedPath) by area and nesting, flags those at odd depth (the flags
  /// inverted with swapInsideOutside) and tags them; `job`, where given,
  /// has judged the same paths already.
  void InsidePass(std::vector<RVINSIDEPATH>& list, NestingJob* job = nullptr);
  /// Whether the both-sides pass and the writers of `sort` leave the paths'
  /// points alone and don't read their inside tags.
  bool WritesLeavePathsAlone(const CRvArtSort& sort) const;
  /// The cutting writer of one art: passes, condition blocks, paths, "PU;",
  /// progress.
  void CuttingWriter(CRvArt* art);
  /// Composes the condition block of one pass into `block` (sets m_vCut).
  void ComposeConditionBlock(std::string& block, const CondRecord& cond, const ThetaExtension* theta);
  /// Reads the condition of `key` at `pass` and writes its block.
  void WriteConditionBlock(const std::string& key, int32_t pass);

  // ---- router output ----
  /// The milling writer of classes 5 and 12, one art: depth passes with
  /// their condition blocks, offsets through makeOffsetArt, joints. Shows
  /// the milling message and returns the code when it fails.
  uint32_t MillingWriter(CRvArt* art);
  /// Output of the layer "MicroJointLayer" after the job (outputMicroJoints):
  /// the joint writer over its paths, then the layer is deleted. Nothing
  /// without the layer.
  void WriteMicroJoints();
  /// The joint writer, one path of "MicroJointLayer". Shows the milling
  /// message and returns the code when it fails.
  uint32_t JointWriter(CRvArt* path);
  /// Copies the joint stretches of `component` to "MicroJointLayer", one
  /// path each, tagged with the passes from `firstPass` to `lastPass`.
  void BuildJoints(const std::string& key, const CRvBezier& component, const RVRIFMATRIX& matrix,
                   const JointList& joints, int32_t firstPass, int32_t lastPass, bool forward);
  /// Makes the job a tiled job of `tiles`; `finalOriginY` receives the
  /// originY behind the last tile when the route ends.
  void SetTiles(const RVTILEPARAM& tiles, double* finalOriginY);
  /// Sets the offset maker of a milling job.
  void SetOffsetMaker(void* callbackUser, RvMakeOffsetArtFunc makeOffsetArt) {
    m_callbackUser = callbackUser;
    m_makeOffsetArt = makeOffsetArt;
  }

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
  void WritePath(const CRvBezier& path, const RVRIFMATRIX& artMatrix, bool closed, bool forward, int& needMove) {
    WritePathSteps(path, artMatrix, closed, forward, needMove, nullptr, 0.0);
  }
  /// The joint path writer: the path writer that changes depth over the
  /// joints (at `depth`, the depth of the pass), writes the repeated point
  /// of each curve and never V-cuts.
  void WriteJointPath(const CRvBezier& path, const RVRIFMATRIX& artMatrix, bool closed, bool forward,
                      int& needMove, const JointList& joints, double depth) {
    WritePathSteps(path, artMatrix, closed, forward, needMove, &joints, depth);
  }

  /// The frame round the whole job.
  void WriteFrame();

  // ---- how a milling job of another kind differs ----
  /// The dialect of the condition and depth rows (51, 13, 49, 52, 47, 45,
  /// 54); the job's dialect when negative.
  int16_t m_conditionDialect = -1;
  int16_t ConditionDialect() const { return m_conditionDialect < 0 ? m_param.dialect : m_conditionDialect; }
  /// Appends a condition or depth row in ConditionDialect().
  void AppendConditionRow(std::string& out, int row, std::initializer_list<RowArg> args) const {
    AppendFormatted(out, RvlCell(row, ConditionDialect()), args);
  }
  /// Whether milled records are mapped by their path's art matrix.
  bool m_mapArtMatrix = true;
  /// With a value, the joint writer cuts at Thickness - CuttingDepth held
  /// at this depth or above; without, at the depth of the joint rows of the
  /// milling job.
  std::optional<double> m_jointDepthFloor;
  /// The message that a failing milling or joint writer shows.
  const char* m_millingMessage = kMillingMessage;
  /// Where the tool stands after the last milled component: the start of a
  /// closed path, the end of an open one.
  RVPOINT m_toolAt{0.0, 0.0};

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
  std::vector<RVTILE> m_tiles;
  RVRIFMATRIX m_placement = kIdentity;
  RVRECT m_placementRect{};
  int32_t m_tileMode = 0;
  const RVTILE* m_currentTile = nullptr;
  std::string m_currentKey;
  double* m_finalOriginY = nullptr;
  RvMakeOffsetArtFunc m_makeOffsetArt = nullptr;
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
  /// The arc or spline records of the curve from ab[0] to ab[1], step `i`
  /// of a path; `skipRepeat` drops a first point that repeats the curve
  /// before.
  void WriteCurveRecords(RVBEZIERPOINT (&ab)[2], int32_t i, int& needMove, bool exchange, bool skipRepeat);
  /// The path writer; with `joints` the joint path writer at `depth`.
  void WritePathSteps(const CRvBezier& path, const RVRIFMATRIX& artMatrix, bool closed, bool forward,
                      int& needMove, const JointList* joints, double depth);

  // ---- milling (milling_writer.cpp) ----
 protected:
  /// Writes one component of a milled path that has no joints; the path
  /// writer unless a job kind writes its own.
  virtual void MillComponent(const CRvBezier& bezier, const RVRIFMATRIX& matrix, bool closed, bool forward,
                             int& needMove) {
    WritePath(bezier, matrix, closed, forward, needMove);
  }
  /// Called at the start of each pass of a milled art.
  virtual void BeginMillingPass() {}

 private:
  struct MillingPass;
  /// The passes of one art that isn't excluded.
  void MillArt(CRvArt* art);
  /// The art that pass `pass` mills (step 3 of a pass), updating the offsets.
  CRvArt* OffsetArtOfPass(CRvArt* art, int32_t pass, bool closed, MillingPass& state);
  /// The paths of the current art, each with its condition block and its
  /// components.
  void MillPaths(CRvArt* current, int32_t pass, bool closed, MillingPass& state);
  /// The condition block of a milling pass, one write.
  void WriteMillingBlock(int32_t pass, MillingPass& state);
  /// The condition block of a joint's pass, one write.
  void WriteJointBlock(const std::string& key, int32_t pass);
  /// Raises the tool to jointDepthLimit over a joint (`lifting`) or lowers
  /// it to `depth` after it, where the rules say so; one write.
  void DepthChange(double depth, bool lifting);
  /// The pen of a tool name, kept from the last tool that maps to one.
  int16_t KeptPen(const char* tool);
  int16_t m_keptPen = 0;

  // ---- tiles (tile_route.cpp) ----
  /// The tiles in their order of writing, each placed, written and framed.
  void TileRoute();
  /// Placement of the current tile.
  void PlaceTile();
  /// The arts of the current tile through the writers of the class.
  void WriteTileArts();
  /// The frames of the current tile's rectangles.
  void WriteTileFrames();
  /// originY after the current tile.
  void AdvanceOriginY();

  RVRIFMATRIX m_flip = kIdentity;     // output flip, kept with the placement
  std::string m_record;               // one record of the path writer
  std::vector<RVPOINT> m_polyline;    // one curve as points

  // The document state that expandDocument changes for the time of the job.
  bool m_savedDocument = false;
  RVRECT m_savedDocBox{};
  RVRECT m_savedPlotBox{};
};

}  // namespace rv
