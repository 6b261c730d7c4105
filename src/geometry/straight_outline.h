// A path whose segments are all straight lines, judged by its corners.
//
// The coarse polyline of a straight segment longer than a chord is the
// segment cut in halves until every piece is short enough, each cut point
// computed by the curve arithmetic; those points stray from the segment by
// rounding only. So the coarse polyline of such a path lies within
// Tolerance() of the polygon of its corners, and where a point is farther
// than that (and a little more) from the polygon, the polyline winds round it
// exactly as the polygon does: the polygon answers for the polyline there
// without the polyline being made. Its area bounds the polyline's area.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "geometry/box_grid.h"
#include "geometry/edge_bands.h"
#include "rvdataaccess.h"

namespace rv {

class StraightOutline {
 public:
  /// The outline of `count` records walked from `start` as the coarse
  /// polyline walks them without a matrix, with bounds of the absolute
  /// orientation sum of that polyline in areaLow and areaHigh. It reads the
  /// records where they stand, so they must stay while the outline is used.
  /// False when it can't stand for the polyline: no records, a handle off
  /// its anchor, a coordinate not finite, beyond 1e12 or -0, or a segment so
  /// long that its flattening could near the point limit.
  bool Make(const RVBEZIERPOINT* records, int32_t count, int32_t start, double& areaLow, double& areaHigh);

  /// How far the coarse polyline may stray from the polygon: each halving
  /// moves a cut point off the segment by a few rounding units of the
  /// coordinates, and there are at most 64 halvings.
  double Tolerance() const { return 1e-12 * (m_scale + 1.0); }
  /// The largest absolute coordinate of a corner.
  double Scale() const { return m_scale; }
  /// The corners' box: the corners are points of the polyline too.
  PlainBox Box() const { return m_box; }
  /// A box that holds every point of the polyline, grown by the margin by
  /// which a polyline's own inside test rejects a point outside its box.
  PlainBox Reach() const;
  std::size_t CornerCount() const { return m_count; }
  /// Corner k of the walk, k up to CornerCount() (the first again).
  const RVPOINT& Corner(std::size_t k) const {
    std::size_t i = m_start + k;
    if (i >= m_count) i -= m_count;
    return m_records[i].anchor;
  }

  /// Whether the polygon winds round `q`: 1 or 0; -1 when q lies within
  /// `near` of an edge.
  int Winds(const RVPOINT& q, double near) const;
  /// Whether the segment a-b comes within `near` of an edge (or so close to
  /// that the arithmetic can't tell).
  bool Touches(const RVPOINT& a, const RVPOINT& b, double near) const;
  /// Whether an edge's box meets `box`.
  bool MeetsBox(const PlainBox& box) const;
  /// For a point q within `near` of the polygon: the inside test of the
  /// coarse polyline (its winding angle against the threshold), 1 or 0,
  /// taken from the chords of the segments near q and the crossings of the
  /// others; -1 when the angle lies too close to the threshold to tell.
  int ChordsInside(const RVPOINT& q, double near) const;
  /// The points of the coarse polyline for segment k into `out`: corner k,
  /// the chords' ends, corner k + 1 last.
  void SegmentPoints(std::size_t k, std::vector<RVPOINT>& out) const;

 private:
  const RVBEZIERPOINT* m_records = nullptr;
  uint32_t m_count = 0;
  uint32_t m_start = 0;
  PlainBox m_box;
  double m_scale = 0;
  double m_chords = 0;  // more than the chords of the polyline
  // Made at the first point asked about, most outlines are never asked;
  // short outlines share ready ones instead (Bands).
  mutable std::unique_ptr<EdgeBands> m_bands;

  const EdgeBands& Bands() const;
  /// f(k) for each edge k (Corner(k) to Corner(k + 1)) in the bands that
  /// [low, high] touches, until f returns true; whether one did.
  template <class F>
  bool AnyEdgeNear(double low, double high, F&& f) const;
  /// The edges of the band of height y: at least those that cross it.
  std::span<const uint32_t> EdgesAt(double y) const {
    const EdgeBands& bands = Bands();
    const std::size_t band = bands.BandOf(y);
    return {bands.begin(band), bands.end(band)};
  }
  /// f(c, d) for each edge c-d whose box meets `box`, until f returns true;
  /// whether one did.
  template <class F>
  bool AnyEdgeMeeting(const PlainBox& box, F&& f) const;
};

}  // namespace rv
