// The options of `rvtool plot`: readable names for the fields of the plot
// parameters, with their defaults, and how the command line sets them.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "commands.h"

namespace CLI {
class App;
}

namespace rvtool {

struct PlotOptions {
  std::string file;
  std::string output;
  double inputUnit = kPlotterStep;  // millimetres per unit of the plot file read
  bool byColour = false;            // RefMap keys: stroke colour names instead of layer names

  std::string conditions;           // condition file (XML) ...
  std::string csv;                  // ... or CSV of conditions
  int machine = 0;                  // machine family of the conditions
  std::vector<std::string> media;   // NAME for all paths, KEY=NAME for the paths of one key

  int dialect = 0;                  // column of the command table
  int plotterClass = 1;             // geometry class; 1 writes the drawing's own x and y
  double unit = kPlotterStep;       // millimetres per device unit of the job
  int rotate = 0;                   // degrees: 0, 90, 180, 270
  bool mirror = false;
  double scaleX = 100, scaleY = 100;  // percent
  double originX = 0, originY = 0;    // millimetres
  bool frame = false;
  double frameMarginX = 5, frameMarginY = 5;
  bool sort = false;
  bool sortPerOrder = false;
  int curves = 0;                   // 0 lines, 1 arcs, 2 splines
  bool optimizeStart = false;
  bool counterClockwise = false;
  double areaWidth = 1000, areaHeight = 1000;  // working area of the machine, millimetres
  double flatness = 0.03;           // largest distance of a chord from its curve, millimetres
  int pen = 1;                      // pen where a condition names none; pen of the frame
  int speed = 30;                   // speed, pressure and offset where a condition has none
  int press = 60;
  double offset = 0.25;
  std::vector<std::string> toolPens;  // TOOL=PEN
  int tiles = 0;                    // strips along y, written one after the other (0: no tiles)
  double tileGap = 5;               // millimetres between tiles
  bool mill = false;                // a router job in depth passes (class 5 or 12)

  /// The media of `--media` without a key ("" if none) and those with one.
  std::string defaultMedia;
  std::map<std::string, std::string> mediaByKey;
};

/// Adds the `plot` subcommand with all its options to `app`.
CLI::App* AddPlotCommand(CLI::App& app, PlotOptions& options);

/// Checks and completes the options after parsing (media, tool pens).
/// Throws a usage Failure.
void FinishPlotOptions(PlotOptions& options);

/// Parses "X,Y" (or "V" for both when `single` is allowed) into two numbers.
bool ParsePair(const std::string& text, double& x, double& y, bool single);

/// The exact rotation value for 0, 90, 180 or 270 degrees: the library turns
/// the job only for the single-precision values of the three turns.
double RotationOf(int degrees);

/// The machine family of a number or name (TQ, WD, ... WDZ); -1 if none.
int MachineOf(const std::string& text);

/// Dialect and curve names, for messages.
std::string DialectName(int dialect);

/// `rvtool plot`: imports, files, loads conditions, writes the job.
int RunPlot(const PlotOptions& options, std::ostream& out);

}  // namespace rvtool
