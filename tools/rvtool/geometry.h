// The geometry of a drawing as polylines in millimetres: what the picture
// and the bounds of `info` are made of.
#pragma once

#include <vector>

#include "rvdataaccess.h"

namespace rvtool {

/// A box that grows by points; empty until the first one.
struct Bounds {
  double left = 0, bottom = 0, right = 0, top = 0;
  bool empty = true;
  void Add(const RVPOINT& p);
  void Add(const Bounds& other);
  double width() const { return empty ? 0.0 : right - left; }
  double height() const { return empty ? 0.0 : top - bottom; }
};

/// One path as one cut: its components flattened and joined in order.
struct Stroke {
  std::vector<RVPOINT> points;
  bool closed = false;
  int shade = -1;  // -1 black; 0, 1, ...: a colour of the picture's palette (a pass of a milling job)
};

/// All paths of a drawing in drawing order.
struct Scene {
  std::vector<Stroke> strokes;
  Bounds bounds;
};

/// Largest distance of a flattened curve from its chord, in millimetres.
constexpr double kFlatness = 0.02;
/// Chords as long as the curve allows: only the flatness limits them.
constexpr double kMaxChord = 31000.0;

/// The polyline of a path (type 4): Bezier components by their curves, arcs
/// by their pieces, splines by straight lines between their points; the
/// path's matrix applied. Consecutive repeated points are dropped.
Stroke FlattenPath(void* path, double flatness = kFlatness);

/// Every path of the active document, layer by layer.
Scene SceneOfActiveDocument(double flatness = kFlatness);

}  // namespace rvtool
