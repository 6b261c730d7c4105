// Pictures of a drawing or of a written job: cut moves in black, pen-up
// travel dashed in a light colour (from the origin to the first cut and from
// the end of each cut to the start of the next), start points marked, and
// the bounding box of the cuts. SVG is written directly, PNG through cairo.
#pragma once

#include <string>

#include "geometry.h"

namespace rvtool {

enum class PictureType { Svg, Png };

/// The picture type named by the file's extension (.svg or .png, any case);
/// throws a usage Failure for anything else.
PictureType PictureTypeOf(const std::string& path);

struct PictureOptions {
  std::string title;      // shown in the SVG's title element
  int pixelWidth = 1200;  // PNG width; the height follows the drawing
  bool travel = true;     // draw the pen-up moves
  bool starts = true;     // mark the start of each cut
};

/// The size of the start marks and of the travel lines, in millimetres of the
/// drawing: at most the default sizes for a picture of the drawing's extent,
/// and smaller where the cuts stand dense, so that the marks never hide them.
struct MarkSizes {
  double startRadius;
  double travelWidth;
};
MarkSizes MarkSizesOf(const Scene& scene, double unit);

/// The SVG document of a scene. Drawing units are millimetres, y upward; the
/// SVG's user unit is the millimetre, y downward.
std::string SvgOfScene(const Scene& scene, const PictureOptions& options);

/// Writes the picture to `path` in the type of its extension. Throws Failure.
void WritePicture(const Scene& scene, const std::string& path, const PictureOptions& options);

}  // namespace rvtool
