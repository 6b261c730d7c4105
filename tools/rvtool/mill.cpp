// rvtool mill: a CL file in, a milling job out, in one command.
//
// The file is imported as the first numbered layer of a CL job, the
// conditions of the machine family come from a condition file, the library's
// router turns, offsets and (if asked) clears the job, and the CL milling
// export writes it. Nothing of the route is done here: the tool only fills
// the parameter block.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <cstring>
#include <memory>

#include "commands.h"
#include "conditions.h"
#include "drawing.h"
#include "failure.h"
#include "plot_options.h"
#include "progress.h"

namespace rvtool {
namespace {

/// The numbered layer that the job's drawing goes to.
constexpr const char* kJobLayer = "CLPlotFileLayer1";

RVPLOTPARAM MillingParam(const MillOptions& o, const std::string& media) {
  RVPLOTPARAM p{};
  p.plotterClass = 0;
  p.dialect = int16_t(o.dialect);
  p.deviceUnit = o.unit;
  p.scaleX = p.scaleY = 100.0;
  p.curveMaxLength = 31000.0;
  p.curveTolerance = 0.03;
  p.deviceMaxX = p.deviceMaxY = 1000.0;
  p.conditionSource = 3;
  std::strncpy(p.conditionKey, media.c_str(), sizeof p.conditionKey - 1);
  p.routerOverlap = o.overlap;
  p.routerUseContour = o.clear == "contour" ? 1 : 0;
  p.routerCornerLines = o.cornerLines ? 1 : 0;
  p.routerInside = o.inside ? 1 : 0;
  p.routerLeadIn = o.leadIn ? 1 : 0;
  p.outputMicroJoints = o.joints > 0 ? 1 : 0;
  p.routerJointCount = int16_t(o.joints);
  p.routerJointLength = o.jointLength;
  p.jointDepthLimit = o.joints > 0 ? o.jointDepth : 0.0;
  p.writeToolDefaults = o.clear == "none" ? 0 : -1;
  return p;
}

}  // namespace

int RunMill(const MillOptions& options, std::ostream& out) {
  // Contour clearing makes inward echoes, step after step, until nothing is
  // left: only an inward offset ends (the library refuses any other).
  if (options.clear == "contour" && !options.inside)
    throw Failure("--clear contour needs --inside: contour lines clear inward", kUsageStatus);
  ConditionTable conditions;
  conditions.LoadXml(options.conditions, options.machine);
  const std::vector<std::string> names = conditions.MediaNames();
  const std::string media = options.media.empty() && !names.empty() ? names.front() : options.media;
  conditions.CheckMedia({media}, options.conditions);

  int16_t index = -1;
  const uint32_t imported = [&] {
    ProgressBar progress(IsTerminal());
    progress.Stage("import", options.file);
    return RvImCLToRIF(options.file.c_str(), 0, &index, &options.unit, kJobLayer);
  }();
  const Document document(index);
  Check(imported, "import", options.file);
  if (Interrupted()) throw ToolFailure("mill", options.file, "interrupted", kInterruptedStatus);

  const RVPLOTPARAM param = MillingParam(options, media);
  if (options.clear != "none") Check(RvExCLCreateHatching(uint16_t(index), &param), "clearing", options.file);
  const uint32_t code = RvExCLMillingToRVL(options.output.c_str(), index, &param);
  if (code != 0) {
    std::remove(options.output.c_str());
    throw LibraryFailure(code, "milling job", options.output);
  }
  out << "milling job: " << options.output << " (media '" << media << "', " << conditions.Passes(media)
      << " passes, clearing: " << options.clear << ")\n";
  return 0;
}

Subcommand AddMillCommand(CLI::App& app) {
  auto options = std::make_shared<MillOptions>();
  CLI::App* command = app.add_subcommand("mill", "Import a CL file, route it and write the milling job.");
  command->footer(
      "The drawing becomes the first layer of a CL job. The library's router turns outer\n"
      "shapes clockwise and holes the other way, offsets each closed shape at every change of\n"
      "the media's Milling value by half that change, gives it its start, joints and lead,\n"
      "and writes the passes of the media (depth from Thickness - CuttingDepth). With\n"
      "--clear the area is cleared by hatching or contour lines first (contour lines with\n"
      "--inside only, for they run inward). Coordinates are\n"
      "written in units of --unit millimetres.");
  command->add_option("FILE", options->file, "CL file")->required();
  command->add_option("-o,--output", options->output, "Milling job to write")->required();
  command->add_option("--conditions", options->conditions, "Condition file (XML) of a milling family")
      ->required();
  command
      ->add_option_function<std::string>(
          "--machine",
          [options](const std::string& text) {
            options->machine = MachineOf(text);
            if (options->machine < 0) throw CLI::ValidationError("--machine", "unknown machine family '" + text + "'");
          },
          "Machine family of the condition file (default WD3K)")
      ->type_name("NAME");
  command->add_option("--media", options->media, "Media of the job (default: the file's first)");
  command->add_option("--unit", options->unit, "Millimetres per unit of the file and of the job")
      ->default_val(kPlotterStep)
      ->check(CLI::PositiveNumber);
  command->add_option("--dialect", options->dialect, "Column of the command table for moves and draws, 0 to 6")
      ->default_val(1)
      ->check(CLI::Range(0, 6));
  command->add_option("--clear", options->clear, "Clear the area: none, hatching or contour")
      ->default_val("none")
      ->check(CLI::IsMember({"none", "hatching", "contour"}));
  command->add_option("--overlap", options->overlap, "Overlap of neighbouring clearing tracks, mm")
      ->default_val(0.5);
  command->add_flag("--inside", options->inside, "Offset inward");
  command->add_flag("--corner-lines", options->cornerLines, "Contour clearing with corner lines");
  command->add_flag("--lead-in", options->leadIn, "Give each offset path a lead");
  command->add_option("--joints", options->joints, "Automatic micro joints per path (0: none)")
      ->default_val(0)
      ->check(CLI::Range(0, 100));
  command->add_option("--joint-length", options->jointLength, "Length of a micro joint, mm")->default_val(2.0);
  command
      ->add_option("--joint-depth", options->jointDepth,
                   "Material left under a micro joint, mm: passes deeper rise to it over the joints and cut "
                   "them free after the job")
      ->default_val(1.0)
      ->check(CLI::NonNegativeNumber);
  return {command, [options](std::ostream& out) { return RunMill(*options, out); }};
}

}  // namespace rvtool
