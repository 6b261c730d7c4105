// The subcommands of rvtool. Each returns the exit status or throws Failure.
#pragma once

#include <ostream>
#include <string>

#include "geometry.h"

namespace rvtool {

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
};

/// `rvtool info`: imports the file and prints the document.
int RunInfo(const InfoOptions& options, std::ostream& out);
/// `rvtool render`: imports a drawing or a written job and draws it.
int RunRender(const RenderOptions& options, std::ostream& out);

/// The report of `info` for the active document; `title` heads it.
void DescribeActiveDocument(const std::string& title, std::ostream& out);

}  // namespace rvtool
