// CRvPathCmd: the operations on paths and path components - points and
// segments, the path flags, the attribute word and plot info, the path
// trace, and the internal point and bounds access of the importers and
// generators. Stateless; made on the stack. Every operation raises its
// failure: 0x05000D01 for a null art, 0x05000E01 for an art of the wrong
// kind or a point index outside 0 to count - 1.
#pragma once

#include <cstdint>
#include <string>

#include "model/art.h"
#include "rvdataaccess.h"

namespace rv {

class CRvDataAccess;

class CRvPathCmd {
 public:
  CRvPathCmd() = default;
  virtual ~CRvPathCmd() = default;

  // ---- copying ----
  /// Copies one path or component (types 2, 4, 5, 6; else 0x05000E01) and
  /// links it by `position` as the art commands do. The components of a
  /// path aren't copied with it.
  CRvArt* CopyPath(CRvDataAccess& store, const CRvArt* source, int16_t position, CRvArt* reference) const;

  // ---- points and segments ----
  /// Points of a component, or the sum over the components of a path;
  /// 0x06000E01 for other arts.
  int32_t GetPathSegmentCount(const CRvArt* art) const;
  /// Writes the record of the component's kind (RVBEZIERPOINT, RVARCPOINT
  /// or RVPOINT) at `index` to `out`.
  void GetPathSegment(const CRvArt* art, int32_t index, void* out) const;
  RVBEZIERPOINT GetBezierPoint(const CRvArt* art, int32_t index) const;
  RVARCPOINT GetArcPoint(const CRvArt* art, int32_t index) const;
  /// Inserts before `index` (0 or less: at the front; count or more: at the end).
  void InsertBezierPoint(CRvArt* art, int32_t index, const RVBEZIERPOINT& point) const;
  void AddBezierPoint(CRvArt* art, const RVBEZIERPOINT& point) const;
  void ReplaceBezierPoint(CRvArt* art, int32_t index, const RVBEZIERPOINT& point) const;
  void ReverseBezierPoint(CRvArt* art) const;
  /// Makes the point at `index` the first; keeps the closed shape when
  /// `closed` is non-zero. Index 0 always passes (nothing to rotate).
  void SortBezierPoint(CRvArt* art, int32_t index, int32_t closed) const;
  /// The bare rotation of SortBezierPoint, without the closed shape.
  void RotateBezierPoint(CRvArt* art, int32_t index) const;
  void SetBezierStartInPoint(CRvArt* art, const RVPOINT& point) const;

  // ---- internal access for importers and generators ----
  /// The path's true bounds (CRvArt::GetBounds); other arts leave `rect`.
  void GetPathBounds(CRvArt* art, RVRECT& rect) const;
  /// Next and previous point index of a Bezier, wrapping.
  int32_t GetNextPoint(const CRvArt* art, int32_t index) const;
  int32_t GetPrevPoint(const CRvArt* art, int32_t index) const;
  void AddArcPoint(CRvArt* art, const RVARCPOINT& point) const;
  void AddSplinePoint(CRvArt* art, const RVPOINT& point) const;
  RVPOINT GetSplinePoint(const CRvArt* art, int32_t index) const;

  // ---- path flags ----
  int32_t GetPathClockWise(const CRvArt* art) const;
  /// Acts on paths; other arts are left alone without error.
  void SetPathClockWise(CRvArt* art, int32_t clockwise) const;
  int32_t GetPathClosed(const CRvArt* art) const;
  void SetPathClosed(CRvArt* art, int32_t closed) const;
  /// Selection of a group; other arts: `selected` stays as it was.
  void GetSelect(const CRvArt* art, int32_t& selected) const;
  void SetSelect(CRvArt* art, int32_t selected) const;

  // ---- attribute word and plot info (any art) ----
  uint8_t GetPathAttrFlag(const CRvArt* art) const;
  /// word := flags, all 32 bits (clears the start segment).
  void SetPathAttrFlag(CRvArt* art, uint8_t flags) const;
  /// word := word | value (16 bits).
  void SetPathProp(CRvArt* art, int16_t value) const;
  int16_t GetPathStartSegment(const CRvArt* art) const;
  void SetPathStartSegment(CRvArt* art, int16_t segment) const;
  int32_t GetPathPatternID(const CRvArt* art) const;
  void SetPathPatternID(CRvArt* art, int32_t id) const;
  /// 0x06001001 without plot info.
  const PlotInfo& GetPathPlotInfo(const CRvArt* art) const;
  void SetPathPlotInfo(CRvArt* art, int32_t value, const std::string& text) const;
  void SetPathElementAtVCut(CRvArt* art, int16_t element, int16_t value) const;

  // ---- walking ----
  /// Calls `callback(context, path)` for each path below `art` whose flags
  /// share a bit with `mask`, depth first, first child first; paths aren't
  /// entered. A non-zero result of the callback is raised as the code.
  void TracePath(CRvArt* art, uint8_t mask, void* context, uint32_t (*callback)(void*, void*)) const;
};

}  // namespace rv
