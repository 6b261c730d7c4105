// rvtool preview: the cut preview of a plot or CL file, drawn pass by pass.
//
// The file is read by the plot import (the preview's source is the layer
// that import makes), converted into the preview's working layer, fitted
// into a window of the given size with y upward, and the library's point
// lists are drawn as they come: one cut per pass, in the window's units.
#include <CLI/CLI.hpp>

#include <array>
#include <memory>
#include <vector>

#include "commands.h"
#include "drawing.h"
#include "failure.h"
#include "picture.h"

namespace rvtool {
namespace {

/// The preview's window with y upward, so that the picture isn't mirrored.
constexpr uint16_t kYUpward = 2;

/// The passes and points of the library's preview as a scene.
Scene SceneOfPreview(const std::string& file, std::array<long, 4>& byType) {
  int32_t passCount = 0, pointCount = 0;
  CheckRead(RvExCLGetCutPreviewDataCount(&passCount, &pointCount));
  std::vector<RVCUTPREVIEWPASS> passes(static_cast<std::size_t>(passCount));
  std::vector<RVPOINT> points(static_cast<std::size_t>(pointCount));
  Check(RvExCLGetCutPreviewData(passes.data()), "preview", file);
  Check(RvExCLGetCutPreviewPointData(points.data()), "preview", file);
  Scene scene;
  std::size_t next = 0;
  for (const RVCUTPREVIEWPASS& pass : passes) {
    Stroke stroke;
    stroke.closed = pass.closed != 0;
    for (int32_t i = 0; i < pass.pointCount && next < points.size(); ++i) {
      stroke.points.push_back(points[next]);
      scene.bounds.Add(points[next++]);
    }
    ++byType[pass.passType & 3u];
    scene.strokes.push_back(std::move(stroke));
  }
  return scene;
}

}  // namespace

int RunPreview(const PreviewOptions& options, std::ostream& out) {
  PictureTypeOf(options.output);  // refuse a bad name before any work
  const Document document = ImportAndActivate("preview", options.file, options.unit);
  Check(RvExCLConvertToBezierArt(), "preview", options.file);
  Check(RvExCLSetCutPreviewMatrix(kYUpward, options.windowWidth, options.windowHeight), "preview", options.file);
  Check(RvExCLMakeCutPreviewData(uint16_t(document.index())), "preview", options.file);
  std::array<long, 4> byType{};
  const Scene scene = SceneOfPreview(options.file, byType);
  // The preview's data go, and with them its document (already active).
  RvExCLInitializeCutPreviewData();
  PictureOptions picture;
  picture.title = options.file + " (preview)";
  picture.pixelWidth = options.pixelWidth;
  picture.travel = options.travel;
  WritePicture(scene, options.output, picture);
  long points = 0;
  for (const Stroke& stroke : scene.strokes) points += long(stroke.points.size());
  out << "preview: " << options.output << " (" << scene.strokes.size() << " passes, " << points
      << " points; pass types 0/1/2/3: " << byType[0] << "/" << byType[1] << "/" << byType[2] << "/" << byType[3]
      << ")\n";
  return 0;
}

Subcommand AddPreviewCommand(CLI::App& app) {
  auto options = std::make_shared<PreviewOptions>();
  CLI::App* command = app.add_subcommand("preview", "Draw the cut preview of a plot or CL file as SVG or PNG.");
  command->footer(
      "The library fits the job into a window of --window-width x --window-height units\n"
      "with a margin of 10 on each side (the origin always stays inside) and flattens every\n"
      "component into one pass of points; the picture draws each pass as one cut, in the\n"
      "window's units with y upward, and the travel between passes dashed.");
  command->add_option("FILE", options->file, "Plot or CL file")->required();
  command->add_option("-o,--output", options->output, "Picture to write, .svg or .png")->required();
  command->add_option("--unit", options->unit, "Millimetres per unit of the file")
      ->default_val(kPlotterStep)
      ->check(CLI::PositiveNumber);
  command->add_option("--window-width", options->windowWidth, "Width of the preview window")
      ->default_val(800.0)
      ->check(CLI::Range(21.0, 1.0e6));
  command->add_option("--window-height", options->windowHeight, "Height of the preview window")
      ->default_val(600.0)
      ->check(CLI::Range(21.0, 1.0e6));
  command->add_option("--width", options->pixelWidth, "Width of a PNG in pixels")
      ->default_val(1200)
      ->check(CLI::Range(16, 16384));
  command->add_flag("--no-travel{false}", options->travel, "Leave out the travel between passes");
  return {command, [options](std::ostream& out) { return RunPreview(*options, out); }};
}

}  // namespace rvtool
