// The subcommands of rvtool. Each returns the exit status or throws Failure.
#pragma once

#include <functional>
#include <ostream>
#include <string>

#include "geometry.h"

namespace CLI {
class App;
}

namespace rvtool {

/// One subcommand on the command line: the CLI11 subcommand with its options,
/// and what runs it once it has been parsed (returns the exit status or
/// throws Failure). The options live in the runner.
struct Subcommand {
  CLI::App* command = nullptr;
  std::function<int(std::ostream& out)> run;
};

/// Adds one subcommand to the tool; main() keeps a table of these.
using SubcommandMaker = Subcommand (*)(CLI::App& app);

/// Millimetres per plotter unit of plot files, the plotter's step.
constexpr double kPlotterStep = 0.025;

struct InfoOptions {
  std::string file;
  double unit = kPlotterStep;  // millimetres per unit of the file
};

struct RenderOptions {
  std::string file;
  std::string output;
  double unit = kPlotterStep;
  int pixelWidth = 1200;
  bool travel = true;
  bool starts = true;
};

struct PrefsOptions {
  std::string file;
  std::string output;  // upgrade only
};

struct PreviewOptions {
  std::string file;
  std::string output;
  double unit = kPlotterStep;
  double windowWidth = 800.0;   // the preview's window, in its own units
  double windowHeight = 600.0;
  int pixelWidth = 1200;
  bool travel = true;
};

struct MillOptions {
  std::string file;
  std::string output;
  std::string conditions;
  int machine = 3;              // WD3K
  std::string media;            // empty: the condition file's first
  double unit = kPlotterStep;
  int dialect = 1;
  std::string clear = "none";   // none, hatching, contour
  double overlap = 0.5;
  bool inside = false;
  bool cornerLines = false;
  bool leadIn = false;
  int joints = 0;
  double jointLength = 2.0;
  double jointDepth = 1.0;
};

/// `rvtool info`: imports the file and prints the document.
int RunInfo(const InfoOptions& options, std::ostream& out);
/// `rvtool render`: imports a drawing or a written job and draws it.
int RunRender(const RenderOptions& options, std::ostream& out);

/// `rvtool mill`: import, route and milling job of a CL file.
int RunMill(const MillOptions& options, std::ostream& out);
/// `rvtool preview`: the library's cut preview of a file, drawn pass by pass.
int RunPreview(const PreviewOptions& options, std::ostream& out);

/// The subcommands `info`, `plot` and `render`.
Subcommand AddInfoCommand(CLI::App& app);
Subcommand AddPlotSubcommand(CLI::App& app);
Subcommand AddRenderCommand(CLI::App& app);
/// The subcommands `hatch` and `contour` (generate.cpp).
Subcommand AddHatchCommand(CLI::App& app);
Subcommand AddContourCommand(CLI::App& app);

/// `rvtool prefs show`: prints a preference file's values by section.
int RunPrefsShow(const PrefsOptions& options, std::ostream& out);
/// `rvtool prefs upgrade`: writes a preference file at the version a save writes.
int RunPrefsUpgrade(const PrefsOptions& options, std::ostream& out);
/// The subcommand `prefs` with `show` and `upgrade`.
Subcommand AddPrefsCommand(CLI::App& app);
/// The subcommands `preview` and `mill` (preview.cpp, mill.cpp).
Subcommand AddPreviewCommand(CLI::App& app);
Subcommand AddMillCommand(CLI::App& app);

/// The report of `info` for the active document; `title` heads it.
void DescribeActiveDocument(const std::string& title, std::ostream& out);

}  // namespace rvtool
