#include "plot_options.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <memory>

#include "failure.h"

namespace rvtool {
namespace {

const std::map<std::string, int> kDialects{
    {"hpgl-pen", 0}, {"hpgl-tool", 1}, {"move-draw", 2}, {"silent", 3},
    {"hpgl", 4},     {"laser", 5},     {"coating", 6}};

const std::map<std::string, int> kCurves{{"lines", 0}, {"arcs", 1}, {"splines", 2}};

// The machine families of the condition tables, by number.
const char* const kMachines[] = {"TQ",  "WD",   "WD3",  "WD3K", "BNS", "TQ2",  "TQNV", "WDP", "YBNS",
                                 "TQNV2", "WD22", "SOVE", "SOPI", "HWD", "TQHB", "WDZK", "WDZ"};

bool ParseNumber(const std::string& text, double& value) {
  if (text.empty() || std::isspace(static_cast<unsigned char>(text.front()))) return false;
  char* end = nullptr;
  errno = 0;
  value = std::strtod(text.c_str(), &end);
  return errno == 0 && end == text.c_str() + text.size() && std::isfinite(value);
}

std::string Upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return text;
}

// A CLI11 option that takes "X,Y" into two doubles.
CLI::Option* AddPair(CLI::App* app, const std::string& name, double& x, double& y,
                     const std::string& help, bool single) {
  return app
      ->add_option_function<std::string>(
          name,
          [&x, &y, name, single](const std::string& text) {
            if (!ParsePair(text, x, y, single)) {
              throw CLI::ValidationError(name, "expected " + std::string(single ? "V or X,Y" : "X,Y") +
                                                   " numbers, got '" + text + "'");
            }
          },
          help)
      ->type_name(single ? "V|X,Y" : "X,Y");
}

std::string Join(const std::map<std::string, int>& names) {
  std::vector<std::pair<int, std::string>> byValue;
  for (const auto& [name, value] : names) byValue.emplace_back(value, name);
  std::sort(byValue.begin(), byValue.end());
  std::string out;
  for (const auto& [value, name] : byValue) out += (out.empty() ? "" : "|") + name;
  return out;
}

}  // namespace

bool ParsePair(const std::string& text, double& x, double& y, bool single) {
  const auto comma = text.find(',');
  double a = 0, b = 0;
  if (comma == std::string::npos) {
    if (!single || !ParseNumber(text, a)) return false;
    x = y = a;
    return true;
  }
  if (!ParseNumber(text.substr(0, comma), a) || !ParseNumber(text.substr(comma + 1), b)) return false;
  x = a;
  y = b;
  return true;
}

double RotationOf(int degrees) {
  switch (degrees) {
    case 90: return 1.5707963705062866;
    case 180: return 3.1415927410125732;
    case 270: return 4.71238899230957;
    default: return 0.0;
  }
}

int MachineOf(const std::string& text) {
  const std::string name = Upper(text);
  for (int i = 0; i < static_cast<int>(std::size(kMachines)); ++i) {
    if (name == kMachines[i] || name == std::to_string(i)) return i;
  }
  return -1;
}

std::string DialectName(int dialect) {
  for (const auto& [name, value] : kDialects) {
    if (value == dialect) return name;
  }
  return std::to_string(dialect);
}

CLI::App* AddPlotCommand(CLI::App& app, PlotOptions& o) {
  CLI::App* plot = app.add_subcommand("plot", "Import a plot file and write a plot job (RVL).");
  plot->footer(
      "The paths are filed in a RefMap table under their layer's name (or, with --by-colour,\n"
      "their stroke colour's name) and written key by key in drawing order, or in the order of\n"
      "the sort. A media gives each path its cut conditions: one condition block and one pass\n"
      "per condition of the media. The job is the body of the commands; the file holds neither\n"
      "an initialisation nor an end. A job that fails or is cancelled (Ctrl-C) is removed.");
  plot->add_option("FILE", o.file, "Plot file to read")->required();
  plot->add_option("-o,--output", o.output, "Job file to write")->required();
  plot->add_option("--input-unit", o.inputUnit, "Millimetres per unit of the plot file read")
      ->capture_default_str()
      ->check(CLI::PositiveNumber);
  plot->add_flag("--by-colour", o.byColour, "File the paths by stroke colour name, not by layer");

  CLI::Option* conditions =
      plot->add_option("--conditions", o.conditions, "Condition file (XML) of the machine family");
  plot->add_option("--csv", o.csv, "Conditions as CSV lines: name,tool,speed,press,offset")
      ->excludes(conditions);
  plot->add_option_function<std::string>(
          "--machine",
          [&o](const std::string& text) {
            o.machine = MachineOf(text);
            if (o.machine < 0) throw CLI::ValidationError("--machine", "unknown machine family '" + text + "'");
          },
          "Machine family of the conditions, 0 to 16 or TQ, WD, WD3, WD3K, BNS, TQ2, TQNV, WDP, YBNS, "
          "TQNV2, WD22, SOVE, SOPI, HWD, TQHB, WDZK, WDZ (default TQ)")
      ->type_name("N|NAME");
  plot->add_option("--media", o.media,
                   "Media of the paths: NAME for all, KEY=NAME for the paths of one key (repeatable)")
      ->type_name("[KEY=]NAME")
      ->allow_extra_args(false);

  plot->add_option("--dialect", o.dialect, "Command dialect, by name or 0 to 6")
      ->transform(CLI::CheckedTransformer(kDialects, CLI::ignore_case).description(""))
      ->type_name(Join(kDialects))
      ->default_str("hpgl-pen");
  plot->add_option("--class", o.plotterClass,
                   "Plotter class 0 to 12 (machine geometry); 1 writes the drawing's own x and y")
      ->capture_default_str()
      ->check(CLI::Range(0, 12));
  plot->add_option("--unit", o.unit, "Millimetres per device unit of the job")
      ->capture_default_str()
      ->check(CLI::PositiveNumber);
  plot->add_option("--rotate", o.rotate, "Turn the job by 0, 90, 180 or 270 degrees")
      ->capture_default_str()
      ->check(CLI::IsMember({0, 90, 180, 270}));
  plot->add_flag("--mirror", o.mirror, "Mirror the job about the vertical axis");
  AddPair(plot, "--scale", o.scaleX, o.scaleY, "Scale in percent, for both axes or X,Y (default 100)", true)
      ->check(CLI::Validator(
          [](std::string& text) {
            double x = 0, y = 0;
            return ParsePair(text, x, y, true) && (x <= 0 || y <= 0) ? "a scale must be above 0" : "";
          },
          "", "positive"));
  AddPair(plot, "--origin", o.originX, o.originY, "Offset of the job in millimetres (default 0,0)", false);
  plot->add_flag("--frame", o.frame, "Plot a frame round the job and move the job inside it");
  AddPair(plot, "--frame-margin", o.frameMarginX, o.frameMarginY,
          "Margin between the job and its frame in millimetres (default 5)", true);
  plot->add_flag("--sort", o.sort, "Sort the paths into a cut order: inner shapes before outer ones");
  plot->add_flag("--sort-per-key", o.sortPerOrder, "With --sort: sort and write one key at a time");
  plot->add_option("--curves", o.curves, "How curves leave: lines, arcs or splines")
      ->transform(CLI::CheckedTransformer(kCurves, CLI::ignore_case).description(""))
      ->type_name(Join(kCurves))
      ->default_str("lines");
  plot->add_flag("--optimize-start", o.optimizeStart,
                 "Start closed paths at a corner of a long straight side (classes 1, 4, 11)");
  plot->add_flag("--ccw", o.counterClockwise, "Cut closed paths counter-clockwise");
  AddPair(plot, "--area", o.areaWidth, o.areaHeight,
          "Working area of the machine in millimetres, for the sort (default 1000,1000)", false);
  plot->add_option("--flatness", o.flatness, "Largest distance of a chord from its curve, millimetres")
      ->capture_default_str()
      ->check(CLI::PositiveNumber);
  plot->add_option("--pen", o.pen, "Pen where a condition's tool gives none, and of the frame")
      ->capture_default_str()
      ->check(CLI::Range(0, 32767));
  plot->add_option("--speed", o.speed, "Speed where a condition has none, and of the frame")
      ->capture_default_str()
      ->check(CLI::Range(0, 32767));
  plot->add_option("--press", o.press, "Pressure where a condition has none, and of the frame")
      ->capture_default_str()
      ->check(CLI::Range(0, 32767));
  plot->add_option("--offset", o.offset, "Blade offset where a condition has none, and of the frame")
      ->capture_default_str();
  plot->add_option("--tool-pen", o.toolPens, "Pen of a condition's tool: TOOL=PEN (repeatable, 40 at most)")
      ->type_name("TOOL=PEN")
      ->allow_extra_args(false);
  return plot;
}

void FinishPlotOptions(PlotOptions& o) {
  for (const std::string& item : o.media) {
    const auto eq = item.find('=');
    if (eq == std::string::npos) {
      if (!o.defaultMedia.empty() && o.defaultMedia != item)
        throw Failure("--media: two media for all paths, '" + o.defaultMedia + "' and '" + item + "'",
                      kUsageStatus);
      o.defaultMedia = item;
    } else {
      o.mediaByKey[item.substr(0, eq)] = item.substr(eq + 1);
    }
  }
  for (const auto& [key, name] : o.mediaByKey) {
    if (name.empty()) throw Failure("--media " + key + "=: the media name is empty", kUsageStatus);
  }
  if ((!o.defaultMedia.empty() || !o.mediaByKey.empty()) && o.conditions.empty() && o.csv.empty())
    throw Failure("--media needs the conditions that hold it: --conditions FILE or --csv FILE", kUsageStatus);
  if (o.toolPens.size() > 40) throw Failure("--tool-pen: at most 40 tools", kUsageStatus);
  for (const std::string& item : o.toolPens) {
    const auto eq = item.find('=');
    double pen = -1;
    if (eq == std::string::npos || eq == 0 || eq >= 64 || !ParseNumber(item.substr(eq + 1), pen) ||
        pen < 1 || pen > 65535 || pen != static_cast<int>(pen))
      throw Failure("--tool-pen '" + item + "': expected TOOL=PEN with a tool name of 1 to 63 bytes and a pen of 1 to 65535",
                    kUsageStatus);
  }
  if (o.sortPerOrder && !o.sort) o.sort = true;
}

Subcommand AddPlotSubcommand(CLI::App& app) {
  auto options = std::make_shared<PlotOptions>();
  CLI::App* command = AddPlotCommand(app, *options);
  return {command, [options](std::ostream& out) {
            FinishPlotOptions(*options);
            return RunPlot(*options, out);
          }};
}

}  // namespace rvtool
