// rvtool render: a picture of a drawing or of a written job.
//
// A job of the HP-GL or single-letter dialects is itself a plot file: read
// back through the plot import it gives the cut paths in the order of the
// job, and the travel between them is what the pen does with the pen up.
#include "commands.h"
#include "drawing.h"
#include "picture.h"

namespace rvtool {

int RunRender(const RenderOptions& options, std::ostream& out) {
  PictureTypeOf(options.output);  // refuse a bad name before any work
  const Document document = ImportAndActivate("render", options.file, options.unit);
  const Scene scene = SceneOfActiveDocument();
  PictureOptions picture;
  picture.title = options.file;
  picture.pixelWidth = options.pixelWidth;
  picture.travel = options.travel;
  WritePicture(scene, options.output, picture);
  out << "picture: " << options.output << " (" << scene.strokes.size() << " cuts, "
      << scene.bounds.width() << " x " << scene.bounds.height() << " mm)\n";
  return 0;
}

}  // namespace rvtool
