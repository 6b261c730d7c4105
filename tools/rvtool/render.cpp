// rvtool render: a picture of a drawing or of a written job.
//
// A job of the HP-GL or single-letter dialects is itself a plot file: read
// back through the plot import it gives the cut paths in the order of the
// job, and the travel between them is what the pen does with the pen up.
#include <CLI/CLI.hpp>

#include <memory>

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
  picture.starts = options.starts;
  WritePicture(scene, options.output, picture);
  out << "picture: " << options.output << " (" << scene.strokes.size() << " cuts, "
      << scene.bounds.width() << " x " << scene.bounds.height() << " mm)\n";
  return 0;
}

Subcommand AddRenderCommand(CLI::App& app) {
  auto options = std::make_shared<RenderOptions>();
  CLI::App* command = app.add_subcommand("render", "Draw a plot file or a written job as SVG or PNG.");
  command->footer(
      "The picture shows the cuts in black, the pen-up travel dashed in light blue (from the\n"
      "origin to the first cut and between cuts), the start of each cut in red and the\n"
      "bounding box of the cuts dotted. Start marks and travel lines get thinner where the\n"
      "cuts stand dense, so that they never hide the drawing. A job of the HP-GL or single-letter dialects is read\n"
      "back as the plot file that it is, so the cuts stand in the order of the job.");
  command->add_option("FILE", options->file, "Plot file or job to draw")->required();
  command->add_option("-o,--output", options->output, "Picture to write, .svg or .png")->required();
  command->add_option("--unit", options->unit,
                      "Millimetres per unit of the file (of a job: the --unit it was written with)")
      ->default_val(kPlotterStep)
      ->check(CLI::PositiveNumber);
  command->add_option("--width", options->pixelWidth, "Width of a PNG in pixels")
      ->default_val(1200)
      ->check(CLI::Range(16, 16384));
  command->add_flag("--no-travel{false}", options->travel, "Leave out the pen-up travel");
  command->add_flag("--no-starts{false}", options->starts, "Leave out the marks of the cuts' starts");
  return {command, [options](std::ostream& out) { return RunRender(*options, out); }};
}

}  // namespace rvtool
