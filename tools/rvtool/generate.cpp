// rvtool hatch and rvtool contour: a plot file in, its closed shapes filled
// with hatch lines or inward echoes, a job out, and a picture if asked.
//
// The tool is the host that fills "Rivlen_HatchingWorkLayer": every closed
// path of the file, flattened, becomes one path of a single compound there,
// holes turned against their outlines, so that letters with counters fill
// as a reader expects. The generator's results are filed in one RefMap table
// (the table of hatching plots); the job writes them through the hatching
// class of the export, unrotated.
#include <CLI/CLI.hpp>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "drawing.h"
#include "failure.h"
#include "filing.h"
#include "geometry.h"
#include "picture.h"
#include "progress.h"
#include "rvdataaccess.h"

namespace rvtool {
namespace {

constexpr const char* kWorkMedia = "GENERATED";
constexpr uint8_t kDrawnFlags = 7;   // counted for bounds, as imports mark their paths
constexpr uint16_t kHatchingClass = 10;  // the export class that writes frame and lines by their keys
constexpr double kPi = 3.14159265358979323846;

struct GenerateOptions {
  std::string file;
  std::string output;
  std::string png;
  std::string svg;
  double inputUnit = kPlotterStep;
  double unit = kPlotterStep;
  double angleDegrees = 0;
  int pixelWidth = 1200;
};

struct HatchOptions : GenerateOptions {
  RVHATCHINGINFO info{};
  std::string generate = "both";
  bool evenOdd = false, noSpread = false, includeOpen = false, frameOpen = false, dropShift = false;
  bool headFromRight = false;
  std::vector<double> mesh, margin;
};

struct ContourOptions : GenerateOptions {
  RVCONTOURINFO info{};
  bool cornerLines = false, includeOpen = false;
};

// ---------------------------------------------------------------------------
// The work layer
// ---------------------------------------------------------------------------

void* NewPath(void* parent, const Stroke& stroke) {
  void* path = nullptr;
  void* bezier = nullptr;
  CheckRead(RvGiCreateArt(kTypePath, 5, parent, &path));
  CheckRead(RvGiCreateArt(kTypeBezier, 5, path, &bezier));
  for (const RVPOINT& p : stroke.points) {
    RVBEZIERPOINT b{};
    b.anchor = b.in = b.out = p;
    CheckRead(RvGiAddBezierPoint(bezier, &b));
  }
  if (!stroke.points.empty()) {  // a closed path stores its start twice
    RVBEZIERPOINT b{};
    b.anchor = b.in = b.out = stroke.points.front();
    CheckRead(RvGiAddBezierPoint(bezier, &b));
  }
  CheckRead(RvGiSetPathClosed(path, 1));
  CheckRead(RvGiSetPathAttrFlag(path, kDrawnFlags));
  CheckRead(RvGiSetPathPlotInfo(path, 0, kWorkMedia));
  return path;
}

// Holes (paths inside an odd number of others) run counter-clockwise,
// outlines clockwise.
void OrientForFill(std::vector<void*>& paths) {
  std::vector<RVINSIDEPATH> list;
  for (void* path : paths) list.push_back(RVINSIDEPATH{path, 0});
  list.push_back(RVINSIDEPATH{nullptr, 0});
  CheckRead(RvMiJudgeInsideOutsidePath(list.data(), 0));
  for (const RVINSIDEPATH& element : list) {
    if (element.art == nullptr) break;
    void* bezier = nullptr;
    CheckRead(RvGiGetArtFirstChild(element.art, &bezier));
    const int32_t turn = RvMiJudgePathClockwise(bezier, 1);
    if ((element.inside == 1 && turn == 1) || (element.inside == 0 && turn == 2)) {
      CheckRead(RvGiReverseBezierPoint(bezier));
    }
  }
}

// Every closed path of the imported file into one compound of the work layer.
std::size_t FillWorkLayer(const std::string& command, const std::string& file) {
  std::vector<Stroke> strokes;
  for (void* layer : Layers()) {
    ForEachPath(layer, [&](void* path) {
      Stroke stroke = FlattenPath(path);
      if (stroke.closed && stroke.points.size() >= 3) strokes.push_back(std::move(stroke));
    });
  }
  if (strokes.empty()) {
    throw ToolFailure(command, file, "the file has no closed path to fill", kNoDrawingStatus);
  }
  void* work = nullptr;
  void* compound = nullptr;
  CheckRead(RvGiCreateLayer(0, nullptr, &work));
  CheckRead(RvGiSetLayerName(work, kWorkLayer));
  CheckRead(RvGiCreateArt(kTypeCompound, kLastChild, work, &compound));
  std::vector<void*> paths;
  for (const Stroke& stroke : strokes) paths.push_back(NewPath(compound, stroke));
  OrientForFill(paths);
  return strokes.size();
}

int16_t MakeHatchingTable() {
  int16_t map = -1;
  CheckRead(RvGiCreateRefMapTable(&map));
  RvGiSetRefMapIndex(map);
  RvGiSetRefMapHatchingPlotIndex(map);
  RvGiSetRefMapHatchingSIndex(map);
  RvGiSetRefMapHatchingEIndex(map);
  RvGiSetRefMapRouterOffsetSIndex(-1);
  RvGiSetRefMapRouterOffsetEIndex(-1);
  return map;
}

// ---------------------------------------------------------------------------
// Job and picture
// ---------------------------------------------------------------------------

void WriteJob(const GenerateOptions& o, const Document& document, ProgressBar& progress) {
  RVPLOTPARAM param;
  std::memset(&param, 0, sizeof param);
  param.plotterClass = kHatchingClass;
  param.deviceUnit = o.unit;
  param.scaleX = param.scaleY = 100;
  param.deviceMaxX = param.deviceMaxY = 100000;
  param.curveMaxLength = kMaxChord;
  param.curveTolerance = kFlatness;
  progress.Stage("export", o.output);
  const uint32_t code = RvExRIFToRVL(o.output.c_str(), document.index(), &param, progress.context());
  progress.Clear();
  Check(code, "export", o.output);
}

// The shapes and what was made of them, from the named layers.
Scene SceneOfLayers(const std::vector<std::string>& names) {
  Scene scene;
  for (void* layer : Layers()) {
    const std::string name = LayerName(layer);
    bool wanted = false;
    for (const std::string& n : names) wanted = wanted || n == name;
    if (!wanted) continue;
    ForEachPath(layer, [&](void* path) {
      Stroke stroke = FlattenPath(path);
      for (const RVPOINT& p : stroke.points) scene.bounds.Add(p);
      if (!stroke.points.empty()) scene.strokes.push_back(std::move(stroke));
    });
  }
  return scene;
}

void WritePictures(const GenerateOptions& o, const std::vector<std::string>& layers) {
  if (o.png.empty() && o.svg.empty()) return;
  const Scene scene = SceneOfLayers(layers);
  PictureOptions picture;
  picture.title = o.file;
  picture.pixelWidth = o.pixelWidth;
  picture.travel = false;
  picture.starts = false;
  for (const std::string& target : {o.png, o.svg}) {
    if (!target.empty()) WritePicture(scene, target, picture);
  }
}

void CheckPictureNames(const GenerateOptions& o) {
  if (!o.png.empty() && PictureTypeOf(o.png) != PictureType::Png) {
    throw Failure("--png wants a file name ending in .png", kUsageStatus);
  }
  if (!o.svg.empty() && PictureTypeOf(o.svg) != PictureType::Svg) {
    throw Failure("--svg wants a file name ending in .svg", kUsageStatus);
  }
}

long CountPaths(const char* layerName) {
  void* layer = nullptr;
  RvGiGetLayerFromName(&layer, layerName);
  long count = 0;
  if (layer != nullptr) ForEachPath(layer, [&](void*) { ++count; });
  return count;
}

// The pen-up travel of the chosen line order against the clipper's order.
void PrintTravel(std::ostream& out) {
  double chosen = -1.0, clipper = -1.0;
  CheckRead(RvGetHatchingTravel(&chosen, &clipper));
  if (chosen < 0.0 || clipper < 0.0) return;
  char line[200];
  const double saved = clipper > 0.0 ? 100.0 * (clipper - chosen) / clipper : 0.0;
  std::snprintf(line, sizeof line, "pen-up travel: %.1f mm in the chosen order, %.1f mm in the clipper's (%.1f %% saved)\n",
                chosen, clipper, saved);
  out << line;
}

void AddCommonOptions(CLI::App* command, GenerateOptions& o) {
  command->add_option("FILE", o.file, "Plot file whose closed paths are filled")->required();
  command->add_option("-o,--output", o.output, "Job to write (RVL, HP-GL)")->required();
  command->add_option("--png", o.png, "Also draw the shapes and the result as a PNG");
  command->add_option("--svg", o.svg, "Also draw the shapes and the result as an SVG");
  command->add_option("--width", o.pixelWidth, "Width of a PNG in pixels")
      ->default_val(1200)
      ->check(CLI::Range(16, 16384));
  command->add_option("--input-unit", o.inputUnit, "Millimetres per unit of the plot file read")
      ->default_val(kPlotterStep)
      ->check(CLI::PositiveNumber);
  command->add_option("--unit", o.unit, "Millimetres per device unit of the job")
      ->default_val(kPlotterStep)
      ->check(CLI::PositiveNumber);
  command->add_option("--angle", o.angleDegrees, "Direction of the lines (hatch) or of the work space, degrees")
      ->default_val(0.0);
}

}  // namespace

// ---------------------------------------------------------------------------
// hatch
// ---------------------------------------------------------------------------

static int RunHatch(HatchOptions& o, std::ostream& out) {
  CheckPictureNames(o);
  const Document document = ImportAndActivate("hatch", o.file, o.inputUnit);
  RefMapTables tables;
  const std::size_t shapes = FillWorkLayer("hatch", o.file);
  MakeHatchingTable();

  RVHATCHINGINFO& info = o.info;
  info.angle = o.angleDegrees * kPi / 180.0;
  info.generate = o.generate == "lines" ? 1 : (o.generate == "frame" ? 2 : 3);
  info.evenOddFill = o.evenOdd ? 1 : 0;
  info.spreadLines = o.noSpread ? 0 : 1;
  info.includeOpenPaths = o.includeOpen ? 1 : 0;
  info.frameOpenPaths = o.frameOpen ? 1 : 0;
  info.keepShift = o.dropShift ? 0 : 1;
  info.headFromRight = o.headFromRight ? 1 : 0;
  if (o.mesh.size() == 2) info.meshWidth = o.mesh[0], info.meshHeight = o.mesh[1];
  if (o.margin.size() == 2) info.boxMarginX = o.margin[0], info.boxMarginY = o.margin[1];
  int16_t index = document.index();
  const uint32_t code = RvCreateHatching(&index, &info);
  if (code == 1) throw ToolFailure("hatch", o.file, "the offset left nothing to hatch or to frame", kNoDrawingStatus);
  Check(code, "hatch", o.file);

  ProgressBar progress(IsTerminal());
  WriteJob(o, document, progress);
  WritePictures(o, {"Rivlen_HatchingPathLayer", kFrameLayer, kWorkLayer});
  out << "job: " << o.output << " (" << shapes << (shapes == 1 ? " shape, " : " shapes, ")
      << CountPaths("Rivlen_HatchingPathLayer") << " lines, " << CountPaths(kFrameLayer)
      << " frame paths)\n";
  PrintTravel(out);
  return 0;
}

Subcommand AddHatchCommand(CLI::App& app) {
  auto o = std::make_shared<HatchOptions>();
  RvInitializeHatchingInfo(&o->info);
  RVHATCHINGINFO& info = o->info;
  CLI::App* command = app.add_subcommand("hatch", "Fill the closed shapes of a plot file with parallel lines.");
  command->footer(
      "Every closed path of the file goes into the work layer, holes inside outlines. The job holds the\n"
      "frame (the outlines offset by --frame-offset, corners cut square) and then the lines, in cutting\n"
      "order. The picture shows the shapes, the frame and the lines.\n"
      "Example: rvtool hatch samples/letters.plt -o letters.rvl --pitch 2 --angle 30 --png hatch.png");
  AddCommonOptions(command, *o);
  command->add_option("--pitch", info.pitch, "Distance of the lines, millimetres")->default_val(5.0);
  command->add_option("--offset", info.offset, "Offset of the shapes before hatching, mm, negative inward")
      ->default_val(0.0);
  command->add_option("--frame-offset", info.frameOffset, "Offset of the frame, mm")->default_val(0.0);
  command->add_option("--generate", o->generate, "What to make: lines, frame or both")
      ->default_val("both")
      ->check(CLI::IsMember({"lines", "frame", "both"}));
  command->add_flag("--even-odd", o->evenOdd, "Holes by nesting (even-odd) rather than by direction (non-zero)");
  command->add_flag("--no-spread", o->noSpread, "Centre the lines instead of giving a remainder one more line");
  command->add_flag("--include-open", o->includeOpen, "Let open paths into the offset");
  command->add_flag("--frame-open", o->frameOpen, "Offset open paths for the frame instead of copying them");
  command->add_option("--start-shift", info.startShift, "Move each line's start back along its travel, mm")
      ->default_val(0.0);
  command->add_option("--end-shift", info.endShift, "Move each line's end back along its travel, mm")
      ->default_val(0.0);
  command->add_flag("--drop-shift", o->dropShift, "Don't keep the shifts on the final lines");
  command->add_flag("--head-from-right", o->headFromRight, "Start the head at the right-hand corner");
  command->add_option("--join-limit", info.joinLimit, "Join lines on one row closer than this, mm")
      ->default_val(0.0);
  command->add_option("--line-start-extension", info.lineStartExtension,
                      "Length added before each line when head moves are measured, mm")
      ->default_val(0.0);
  command->add_option("--line-end-extension", info.lineEndExtension,
                      "Length added behind each line when head moves are measured, mm")
      ->default_val(0.0);
  command->add_option("--mesh", o->mesh, "Mesh cell WIDTH HEIGHT, mm (0 0: no mesh)")->expected(2);
  command->add_option("--box-margin", o->margin, "Margins X Y when region boxes are merged, mm")->expected(2);
  command->add_option("--log-folder", [o](const std::vector<std::string>& v) {
    std::strncpy(o->info.logFolder, v[0].c_str(), sizeof o->info.logFolder - 1);
    return true;
  }, "Folder of the order log (none by default)");
  return {command, [o](std::ostream& out) { return RunHatch(*o, out); }};
}

// ---------------------------------------------------------------------------
// contour
// ---------------------------------------------------------------------------

static int RunContour(ContourOptions& o, std::ostream& out) {
  CheckPictureNames(o);
  const Document document = ImportAndActivate("contour", o.file, o.inputUnit);
  RefMapTables tables;
  const std::size_t shapes = FillWorkLayer("contour", o.file);
  MakeHatchingTable();
  RVCONTOURINFO& info = o.info;
  info.angle = o.angleDegrees * kPi / 180.0;
  info.cornerLines = o.cornerLines ? 1 : 0;
  info.includeOpenPaths = o.includeOpen ? 1 : 0;
  int16_t index = document.index();
  Check(RvCreateContour(&index, &info), "contour", o.file);

  // The job: the copies of the echoes, innermost first, then the corner
  // lines, filed in a table of their own under the hatching line key (a key
  // gives its newest art first, so they are filed from the last).
  void* layer = nullptr;
  RvGiGetLayerFromName(&layer, "Rivlen_ContourPathLayer");
  std::vector<void*> made;
  if (layer != nullptr) ForEachPath(layer, [&](void* path) { made.push_back(path); });
  int16_t job = -1;
  CheckRead(RvGiCreateRefMapTable(&job));
  for (auto it = made.rbegin(); it != made.rend(); ++it) CheckRead(RvGiAddRefMapData(job, "RivlenHatchingLine", 2, *it));
  RvGiSetRefMapHatchingSIndex(job);
  RvGiSetRefMapHatchingEIndex(job);
  ProgressBar progress(IsTerminal());
  WriteJob(o, document, progress);
  WritePictures(o, {"Rivlen_ContourPathLayer", kWorkLayer});
  long lines = 0;
  for (void* path : made) {
    int32_t closed = 1;
    RvGiGetPathClosed(path, &closed);
    lines += closed == 0 ? 1 : 0;
  }
  out << "job: " << o.output << " (" << shapes << (shapes == 1 ? " shape, " : " shapes, ") << made.size() - lines
      << " echo paths, " << lines << " corner lines)\n";
  return 0;
}

Subcommand AddContourCommand(CLI::App& app) {
  auto o = std::make_shared<ContourOptions>();
  RvInitializeContourInfo(&o->info);
  o->info.offset = -2.0;
  CLI::App* command = app.add_subcommand("contour", "Fill the closed shapes of a plot file with inward echoes.");
  command->footer(
      "Every closed path of the file goes into the work layer, holes inside outlines. The shapes are\n"
      "offset inward by one step, two steps, ... until nothing is left (each step but a tiny one is\n"
      "0.1 mm shorter than --offset). The job holds the echoes, innermost first, then the corner lines.\n"
      "Example: rvtool contour samples/letters.plt -o letters.rvl --offset -1.5 --corner-lines --png contour.png");
  AddCommonOptions(command, *o);
  command->add_option("--offset", o->info.offset, "Step between echoes, mm, negative (inward)")
      ->default_val(-2.0);
  command->add_flag("--corner-lines", o->cornerLines, "Draw lines from sharp corners out to the next echo");
  command->add_flag("--include-open", o->includeOpen, "Let open paths take part (they vanish inward)");
  return {command, [o](std::ostream& out) { return RunContour(*o, out); }};
}

}  // namespace rvtool
