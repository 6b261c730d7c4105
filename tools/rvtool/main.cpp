// rvtool: plot files in, plot jobs and pictures out, through librvdataaccess.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <iostream>

#include "commands.h"
#include "failure.h"
#include "plot_options.h"
#include "progress.h"
#include "rvdataaccess.h"

namespace {

constexpr const char* kExitStatusHelp =
    "Exit status: 0 success; 64 a bad command line; 73 a picture that can't be\n"
    "written; 130 Ctrl-C outside a step that the library can cancel. A failure\n"
    "of the library exits with the module number of its code (1 file, 2 store,\n"
    "3 document, 5 path, 6 art: also a cancelled export, 7 file content,\n"
    "8 matrix, 9 selection, 10 sort: also a cancelled sort), the XML codes\n"
    "11 to 15 as they are, 16 for code 65535 and 17 for any other code.";

std::string VersionText() {
  int16_t major = 0, minor = 0, revision = 0;
  RvGiGetLibVersion(&major, &minor, &revision);
  return "rvtool, librvdataaccess " + std::to_string(major) + "." + std::to_string(minor) + "." +
         std::to_string(revision);
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"rvtool: plot files in, plot jobs (RVL) and pictures out, through librvdataaccess."};
  app.require_subcommand(1);
  app.set_version_flag("--version", VersionText());

  rvtool::InfoOptions info;
  CLI::App* infoCommand =
      app.add_subcommand("info", "Import a plot file and print its layers, paths, points and bounds.");
  infoCommand->add_option("FILE", info.file, "Plot file to read")->required();
  infoCommand->add_option("--unit", info.unit, "Millimetres per unit of the file")
      ->default_val(rvtool::kPlotterStep)
      ->check(CLI::PositiveNumber);

  rvtool::PlotOptions plot;
  CLI::App* plotCommand = rvtool::AddPlotCommand(app, plot);

  rvtool::RenderOptions render;
  CLI::App* renderCommand =
      app.add_subcommand("render", "Draw a plot file or a written job as SVG or PNG.");
  renderCommand->footer(
      "The picture shows the cuts in black, the pen-up travel dashed in light blue (from the\n"
      "origin to the first cut and between cuts), the start of each cut in red and the\n"
      "bounding box of the cuts dotted. A job of the HP-GL or single-letter dialects is read\n"
      "back as the plot file that it is, so the cuts stand in the order of the job.");
  renderCommand->add_option("FILE", render.file, "Plot file or job to draw")->required();
  renderCommand->add_option("-o,--output", render.output, "Picture to write, .svg or .png")
      ->required();
  renderCommand->add_option("--unit", render.unit,
                            "Millimetres per unit of the file (of a job: the --unit it was written with)")
      ->default_val(rvtool::kPlotterStep)
      ->check(CLI::PositiveNumber);
  renderCommand->add_option("--width", render.pixelWidth, "Width of a PNG in pixels")
      ->default_val(1200)
      ->check(CLI::Range(16, 16384));
  bool noTravel = false;
  renderCommand->add_flag("--no-travel", noTravel, "Leave out the pen-up travel");

  app.footer(kExitStatusHelp);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    if (e.get_exit_code() == 0) return app.exit(e);  // --help, --version
    std::fprintf(stderr, "rvtool: %s\nRun 'rvtool --help' (or 'rvtool COMMAND --help') for the options.\n",
                 e.what());
    return rvtool::kUsageStatus;
  }
  render.travel = !noTravel;

  rvtool::InstallInterruptHandler();
  try {
    if (infoCommand->parsed()) return rvtool::RunInfo(info, std::cout);
    if (plotCommand->parsed()) {
      rvtool::FinishPlotOptions(plot);
      return rvtool::RunPlot(plot, std::cout);
    }
    if (renderCommand->parsed()) return rvtool::RunRender(render, std::cout);
  } catch (const rvtool::Failure& failure) {
    std::cout.flush();
    std::fprintf(stderr, "rvtool: %s\n", failure.what());
    return failure.status();
  } catch (const std::exception& e) {
    // The library lets a few failures of the C++ runtime through (a table
    // index out of range, out of memory).
    std::cout.flush();
    std::fprintf(stderr, "rvtool: internal failure: %s\n", e.what());
    return 70;
  }
  return 0;
}
