#include "tool_test.h"

#include <cairo.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <pugixml.hpp>

#include "test_support.h"

namespace tooltest {

ToolRun RunTool(const std::vector<std::string>& args) {
  rvtest::TempDir dir;
  std::string command = "'" RVTOOL_PATH "'";
  for (const std::string& arg : args) command += " '" + arg + "'";  // no argument holds a quote
  command += " </dev/null >'" + dir.file("out") + "' 2>'" + dir.file("err") + "'";
  const int status = std::system(command.c_str());
  ToolRun run;
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  run.out = rvtest::ReadFile(dir.file("out"));
  run.err = rvtest::ReadFile(dir.file("err"));
  return run;
}

std::string Sample(const std::string& name) { return std::string(RV_SAMPLES_DIR) + "/" + name; }

PngSummary CheckPng(const std::string& path) {
  PngSummary summary;
  if (rvtest::ReadFile(path).rfind("\x89PNG\r\n\x1a\n", 0) != 0) return summary;
  // The decoder checks the chunks' order and CRCs and fails on a cut-off file.
  cairo_surface_t* image = cairo_image_surface_create_from_png(path.c_str());
  if (cairo_surface_status(image) == CAIRO_STATUS_SUCCESS) {
    summary.valid = true;
    summary.width = cairo_image_surface_get_width(image);
    summary.height = cairo_image_surface_get_height(image);
    const int stride = cairo_image_surface_get_stride(image);
    const unsigned char* pixels = cairo_image_surface_get_data(image);
    for (int y = 0; y < summary.height; ++y) {
      for (int x = 0; x < summary.width; ++x) {
        const uint32_t argb = *reinterpret_cast<const uint32_t*>(pixels + y * stride + 4 * x);
        const int r = (argb >> 16) & 0xFF, g = (argb >> 8) & 0xFF, b = argb & 0xFF;
        // Lines are antialiased: classify by hue and darkness, not exact colour.
        const int high = std::max({r, g, b}), low = std::min({r, g, b});
        summary.black += high < 110 && high - low < 16;
        summary.white += low > 250;
        summary.red += r - g > 60 && r - b > 60;
        summary.blue += b - r > 20 && b > 150;
      }
    }
  }
  cairo_surface_destroy(image);
  return summary;
}

std::string SvgSummary(const std::string& svgPath) {
  pugi::xml_document doc;
  if (!doc.load_file(svgPath.c_str())) return "not XML";
  int cuts = 0;
  for (pugi::xml_node p : doc.child("svg").find_child_by_attribute("g", "id", "cuts").children("path"))
    cuts += p.attribute("d") ? 1 : 0;
  const pugi::xml_node box = doc.child("svg").find_child_by_attribute("rect", "id", "box");
  return std::to_string(cuts) + " cuts, box " + box.attribute("width").value() + " x " +
         box.attribute("height").value();
}

}  // namespace tooltest
