// rvtool info: the layers of a drawing with their counts and bounds.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>

#include "commands.h"
#include "drawing.h"

namespace rvtool {
namespace {

struct Counts {
  long paths = 0, closed = 0;
  long beziers = 0, arcs = 0, splines = 0;
  long points = 0;
  Bounds bounds;

  long components() const { return beziers + arcs + splines; }
  void Add(const Counts& other) {
    paths += other.paths;
    closed += other.closed;
    beziers += other.beziers;
    arcs += other.arcs;
    splines += other.splines;
    points += other.points;
    bounds.Add(other.bounds);
  }
};

Counts CountLayer(void* layer) {
  Counts counts;
  ForEachPath(layer, [&](void* path) {
    ++counts.paths;
    const Stroke stroke = FlattenPath(path);
    if (stroke.closed) ++counts.closed;
    for (const RVPOINT& p : stroke.points) counts.bounds.Add(p);
    for (void* component : Components(path)) {
      const int16_t type = ArtType(component);
      if (type == kTypeBezier) ++counts.beziers;
      if (type == kTypeArc) ++counts.arcs;
      if (type == kTypeSpline) ++counts.splines;
      int32_t points = 0;
      CheckRead(RvGiGetPathSegmentCount(component, &points));
      counts.points += points;
    }
  });
  return counts;
}

std::string Mm(double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%.3f", value);
  return text;
}

std::string BoundsText(const Bounds& b) {
  if (b.empty) return "none";
  return "x " + Mm(b.left) + " .. " + Mm(b.right) + ", y " + Mm(b.bottom) + " .. " + Mm(b.top) +
         " mm (" + Mm(b.width()) + " x " + Mm(b.height()) + " mm)";
}

std::string Plural(long n, const char* one, const char* many) {
  return std::to_string(n) + " " + (n == 1 ? one : many);
}

}  // namespace

void DescribeActiveDocument(const std::string& title, std::ostream& out) {
  const std::vector<void*> layers = Layers();
  std::vector<Counts> perLayer;
  Counts total;
  for (void* layer : layers) {
    perLayer.push_back(CountLayer(layer));
    total.Add(perLayer.back());
  }
  out << "file        " << title << "\n";
  out << "layers      " << layers.size() << "\n";
  out << "paths       " << total.paths << " (" << total.closed << " closed, "
      << total.paths - total.closed << " open)\n";
  out << "components  " << total.components() << " (" << Plural(total.beziers, "Bezier", "Beziers")
      << ", " << Plural(total.arcs, "arc", "arcs") << ", "
      << Plural(total.splines, "spline", "splines") << ")\n";
  out << "points      " << total.points << "\n";
  out << "bounds      " << BoundsText(total.bounds) << "\n";
  for (std::size_t i = 0; i < layers.size(); ++i) {
    const Counts& c = perLayer[i];
    out << "\nlayer " << i << " \"" << LayerName(layers[i]) << "\"\n";
    out << "  paths       " << c.paths << " (" << c.closed << " closed)\n";
    out << "  components  " << c.components() << "\n";
    out << "  points      " << c.points << "\n";
    out << "  bounds      " << BoundsText(c.bounds) << "\n";
  }
}

int RunInfo(const InfoOptions& options, std::ostream& out) {
  const Document document = ImportAndActivate("info", options.file, options.unit);
  DescribeActiveDocument(options.file, out);
  return 0;
}

Subcommand AddInfoCommand(CLI::App& app) {
  auto options = std::make_shared<InfoOptions>();
  CLI::App* command =
      app.add_subcommand("info", "Import a plot file and print its layers, paths, points and bounds.");
  command->add_option("FILE", options->file, "Plot file to read")->required();
  command->add_option("--unit", options->unit, "Millimetres per unit of the file")
      ->default_val(kPlotterStep)
      ->check(CLI::PositiveNumber);
  return {command, [options](std::ostream& out) { return RunInfo(*options, out); }};
}

}  // namespace rvtool
