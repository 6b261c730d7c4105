// The work layer of the generators and what they share in reading it.
//
// A host fills the layer "Rivlen_HatchingWorkLayer" with the shapes to fill;
// hatching (hatching.h) and contour (contour.h) read it, never change its
// geometry (hatching only turns the paths of its compounds so that holes run
// against their outlines), and file their results in the table of hatching
// plots. This file holds the names, the walk over the layer, the rule which
// paths take part, and the flattening of a path for the clipper.
#pragma once

#include <cmath>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "geometry/curve_list.h"
#include "model/art.h"
#include "model/data_access.h"
#include "rvdataaccess.h"

namespace rv {

/// The store whose active document the generators work on.
inline CRvDataAccess& Store() { return CRvDataAccess::Instance(); }

/// The layer the host fills for both generators.
inline constexpr const char* kWorkLayerName = "Rivlen_HatchingWorkLayer";

/// Flattening of shapes for offsetting and clipping.
inline constexpr double kFlattenMaxLength = 31000.0;
inline constexpr double kFlattenTolerance = 0.03;
inline constexpr int32_t kFlattenMode = 1;

/// The attribute flags and RefMap info of the lines the generators make.
inline constexpr uint8_t kGeneratedFlags = 7;

/// One flattened path: its polyline in millimetres (records of kind 0).
struct FlatPath {
  CurveList points;
  bool closed = false;
};

/// The plot info that every result of a run carries.
struct RunPlotInfo {
  int32_t number = 0;
  std::string text;
};

/// Calls `visit` for each path among the layer's children, entering
/// compounds (their paths in list order, then the walk goes on behind the
/// compound); arts of other types are passed over. A null layer visits nothing.
void ForEachLayerPath(CRvArt* layer, const std::function<void(CRvArt* path)>& visit);

/// Whether a path of the work layer takes part in an offset: attribute bit 2
/// set, bit 16 clear, closed or `includeOpen`, and a Bezier first child.
bool TakesPart(CRvArt* path, bool includeOpen);

/// The polyline of the path's first component (a Bezier): all three
/// positions of each point mapped by the art's matrix and then by `extra`,
/// flattened with 31000.0, 0.03 and mode 1. Every coordinate is checked for
/// the clipper's grid (kErrClipCoordinate), so that a bad path fails before
/// anything is made.
FlatPath FlattenPath(CRvArt* path, const RVRIFMATRIX& extra);

/// The plot info of the work layer's first art, or of the first child of a
/// compound in first place; number 0 and empty text for an empty or missing
/// layer, and for a path without plot info (as the router's copies are).
RunPlotInfo ReadRunPlotInfo(CRvArt* workLayer);

/// Finds the layer `name` in the active document, or creates it (in front)
/// and names it.
CRvArt* FindOrCreateLayer(const std::string& name);

/// The table of hatching plots; raises kErrGenerateNoMap when it names no table.
int16_t HatchingPlotMap();

/// Raises kErrNoDocument unless `document` names a live document.
void RequireDocument(int16_t document);

/// Raises kErrClipCoordinate unless every value is finite.
void RequireFinite(std::initializer_list<double> values);
/// Raises kErrClipCoordinate unless every field of the matrix is finite.
void RequireFinite(const RVRIFMATRIX& matrix);

/// Copies `source` (a path) by position 5 into `parent`, with its closed
/// flag, its attribute flags as its property, and copies of its components.
CRvArt* CopyPathDeep(CRvArt* parent, CRvArt* source);

/// Writes the defaults of the generators' records (the fields they share).
template <class Info>
void WriteGeneratorDefaults(Info& info) {
  info.pitch = 5.0;
  info.startShift = 0.0;
  info.endShift = 0.0;
  info.angle = 0.0;
  info.offset = 0.0;
  info.matrix = RVRIFMATRIX{1.0, 0.0, 0.0, 1.0, 0.0, 0.0};
  info.headFromRight = 0;
  info.evenOddFill = 0;
  info.spreadLines = 1;
  info.generate = 1;
  info.frameOffset = 0.0;
  info.includeOpenPaths = 0;
  info.frameOpenPaths = 0;
  info.keepShift = 1;
  info.joinLimit = 0.0;
  info.lineStartExtension = 0.0;
  info.lineEndExtension = 0.0;
  info.reserved = 5;
  info.meshWidth = 0.0;
  info.meshHeight = 0.0;
  info.boxMarginX = 0.0;
  info.boxMarginY = 0.0;
  info.logFolder[0] = '\0';
}

/// Takes over a host's record: every field copied, the shifts as absolute
/// values, the log folder as zero-ended text.
template <class Info>
Info TakeOverRecord(const Info& host) {
  Info info = host;
  info.startShift = std::fabs(info.startShift);
  info.endShift = std::fabs(info.endShift);
  info.logFolder[sizeof(info.logFolder) - 1] = '\0';
  return info;
}

}  // namespace rv
