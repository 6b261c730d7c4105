#include "picture.h"

#include <cairo.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <numbers>

#include "failure.h"

namespace rvtool {
namespace {

constexpr const char* kTravelColour = "#8fb3de";
constexpr const char* kStartColour = "#d62728";
constexpr const char* kBoxColour = "#9a9a9a";
constexpr int kMaxPixels = 16384;

// The part of the drawing that the picture shows: the cuts, the origin where
// the travel starts, and a margin.
struct View {
  double left, bottom, width, height;
  double unit;  // a line width that suits the size, in millimetres
};

View ViewOf(const Scene& scene, bool withOrigin) {
  Bounds box = scene.bounds;
  if (withOrigin || box.empty) box.Add(RVPOINT{0.0, 0.0});
  const double extent = std::max({box.width(), box.height(), 1.0});
  const double margin = extent * 0.03;
  View view{};
  view.left = box.left - margin;
  view.bottom = box.bottom - margin;
  view.width = std::max(box.width(), 1.0) + 2 * margin;
  view.height = std::max(box.height(), 1.0) + 2 * margin;
  view.unit = extent / 800.0;
  return view;
}

}  // namespace

MarkSizes MarkSizesOf(const Scene& scene, double unit) {
  // The typical distance between cuts: the side of the share of the drawing's
  // area that each cut has.
  const double area = std::max(scene.bounds.width(), unit) * std::max(scene.bounds.height(), unit);
  const double count = std::max<double>(1.0, static_cast<double>(scene.strokes.size()));
  const double spacing = std::sqrt(area / count);
  MarkSizes sizes;
  sizes.startRadius = std::clamp(0.08 * spacing, 0.3 * unit, 2.5 * unit);
  sizes.travelWidth = std::clamp(0.02 * spacing, 0.25 * unit, unit);
  return sizes;
}

namespace {

std::string Number(double value) {
  char text[48];
  std::snprintf(text, sizeof text, "%.3f", value);
  // Trim "12.500" to "12.5" and "3.000" to "3" to keep the file small.
  std::string s = text;
  while (!s.empty() && s.back() == '0') s.pop_back();
  if (!s.empty() && s.back() == '.') s.pop_back();
  if (s == "-0") s = "0";
  return s;
}

std::string Escape(const std::string& text) {
  std::string out;
  for (char c : text) {
    switch (c) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '"': out += "&quot;"; break;
      default:
        // Control bytes can't stand in XML 1.0.
        if (static_cast<unsigned char>(c) >= 0x20 || c == '\t') out += c;
    }
  }
  return out;
}

// The pen-up moves: origin to the first cut, each cut's end to the next start.
std::vector<std::pair<RVPOINT, RVPOINT>> TravelMoves(const Scene& scene) {
  std::vector<std::pair<RVPOINT, RVPOINT>> moves;
  RVPOINT pen{0.0, 0.0};
  for (const Stroke& stroke : scene.strokes) {
    const RVPOINT start = stroke.points.front();
    if (start.x != pen.x || start.y != pen.y) moves.emplace_back(pen, start);
    pen = stroke.points.back();
  }
  return moves;
}

struct SurfaceDeleter {
  void operator()(cairo_surface_t* s) const { cairo_surface_destroy(s); }
};
struct ContextDeleter {
  void operator()(cairo_t* c) const { cairo_destroy(c); }
};

void StrokeInPixels(cairo_t* cr, double width) {
  cairo_save(cr);
  cairo_identity_matrix(cr);
  cairo_set_line_width(cr, width);
  cairo_stroke(cr);
  cairo_restore(cr);
}

void WritePng(const Scene& scene, const std::string& path, const PictureOptions& options) {
  const View view = ViewOf(scene, options.travel);
  const int width = std::clamp(options.pixelWidth, 16, kMaxPixels);
  const double scale = width / view.width;
  // (The small allowance keeps 32.4 mm at 10 pixels a millimetre at 324.)
  const int height =
      std::clamp(static_cast<int>(std::ceil(view.height * scale - 1e-6)), 16, kMaxPixels);

  std::unique_ptr<cairo_surface_t, SurfaceDeleter> surface(
      cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height));
  std::unique_ptr<cairo_t, ContextDeleter> context(cairo_create(surface.get()));
  cairo_t* cr = context.get();
  cairo_set_source_rgb(cr, 1, 1, 1);
  cairo_paint(cr);
  // Millimetres, y upward, to pixels, y downward.
  cairo_translate(cr, 0, height);
  cairo_scale(cr, scale, -scale);
  cairo_translate(cr, -view.left, -view.bottom);
  cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
  cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);

  const double pixel = std::max(1.0, width / 1200.0);
  // Marks and travel shrink with the density of the cuts, not below a pixel's width.
  const MarkSizes marks = MarkSizesOf(scene, view.unit);
  const double travelPixels = std::max(0.5, std::min(pixel, marks.travelWidth * scale));
  const double startPixels = std::max(1.0, std::min(3 * pixel, marks.startRadius * scale));
  if (!scene.bounds.empty) {
    cairo_rectangle(cr, scene.bounds.left, scene.bounds.bottom, scene.bounds.width(),
                    scene.bounds.height());
    const double dash[] = {3 * pixel, 3 * pixel};
    cairo_set_dash(cr, dash, 2, 0);
    cairo_set_source_rgb(cr, 0.6, 0.6, 0.6);
    StrokeInPixels(cr, pixel);
  }
  if (options.travel) {
    for (const auto& [from, to] : TravelMoves(scene)) {
      cairo_move_to(cr, from.x, from.y);
      cairo_line_to(cr, to.x, to.y);
    }
    const double dash[] = {6 * pixel, 4 * pixel};
    cairo_set_dash(cr, dash, 2, 0);
    cairo_set_source_rgb(cr, 0x8f / 255.0, 0xb3 / 255.0, 0xde / 255.0);
    StrokeInPixels(cr, travelPixels);
  }
  cairo_set_dash(cr, nullptr, 0, 0);
  cairo_set_source_rgb(cr, 0, 0, 0);
  for (const Stroke& stroke : scene.strokes) {
    cairo_move_to(cr, stroke.points.front().x, stroke.points.front().y);
    for (const RVPOINT& p : stroke.points) cairo_line_to(cr, p.x, p.y);
    if (stroke.closed) cairo_close_path(cr);
  }
  StrokeInPixels(cr, 1.5 * pixel);
  cairo_set_source_rgb(cr, 0xd6 / 255.0, 0x27 / 255.0, 0x28 / 255.0);
  if (options.starts) {
    for (const Stroke& stroke : scene.strokes) {
      double x = stroke.points.front().x, y = stroke.points.front().y;
      cairo_user_to_device(cr, &x, &y);
      cairo_save(cr);
      cairo_identity_matrix(cr);
      cairo_new_sub_path(cr);
      cairo_arc(cr, x, y, startPixels, 0, 2 * std::numbers::pi);
      cairo_fill(cr);
      cairo_restore(cr);
    }
  }
  cairo_surface_flush(surface.get());
  const cairo_status_t status = cairo_surface_write_to_png(surface.get(), path.c_str());
  if (status != CAIRO_STATUS_SUCCESS) {
    const std::string why = status == CAIRO_STATUS_WRITE_ERROR ? std::strerror(errno)
                                                               : cairo_status_to_string(status);
    throw ToolFailure("writing the picture", path, why, kOutputStatus);
  }
}

}  // namespace

PictureType PictureTypeOf(const std::string& path) {
  const auto dot = path.rfind('.');
  std::string ext = dot == std::string::npos ? "" : path.substr(dot + 1);
  std::transform(ext.begin(), ext.end(), ext.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (ext == "svg") return PictureType::Svg;
  if (ext == "png") return PictureType::Png;
  throw ToolFailure("render", path, "the picture must be a .svg or .png file", kUsageStatus);
}

std::string SvgOfScene(const Scene& scene, const PictureOptions& options) {
  const View view = ViewOf(scene, options.travel);
  // y of the drawing to y of the SVG.
  const double flip = view.bottom + view.height;
  auto X = [&](double x) { return Number(x - view.left); };
  auto Y = [&](double y) { return Number(flip - y); };

  std::string svg;
  svg += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  svg += "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + Number(view.width) +
         "mm\" height=\"" + Number(view.height) + "mm\" viewBox=\"0 0 " + Number(view.width) + " " +
         Number(view.height) + "\">\n";
  svg += "<title>" + Escape(options.title) + "</title>\n";
  svg += "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
  if (!scene.bounds.empty) {
    svg += "<rect id=\"box\" x=\"" + X(scene.bounds.left) + "\" y=\"" + Y(scene.bounds.top) +
           "\" width=\"" + Number(scene.bounds.width()) + "\" height=\"" +
           Number(scene.bounds.height()) + "\" fill=\"none\" stroke=\"" + kBoxColour +
           "\" stroke-width=\"" + Number(view.unit) + "\" stroke-dasharray=\"" +
           Number(3 * view.unit) + "\"/>\n";
  }
  const MarkSizes marks = MarkSizesOf(scene, view.unit);
  if (options.travel) {
    svg += "<g id=\"travel\" fill=\"none\" stroke=\"" + std::string(kTravelColour) +
           "\" stroke-width=\"" + Number(marks.travelWidth) + "\" stroke-dasharray=\"" +
           Number(6 * view.unit) + " " + Number(4 * view.unit) + "\">\n";
    for (const auto& [from, to] : TravelMoves(scene)) {
      svg += "<path d=\"M" + X(from.x) + " " + Y(from.y) + "L" + X(to.x) + " " + Y(to.y) + "\"/>\n";
    }
    svg += "</g>\n";
  }
  svg += "<g id=\"cuts\" fill=\"none\" stroke=\"black\" stroke-width=\"" + Number(1.5 * view.unit) +
         "\" stroke-linejoin=\"round\" stroke-linecap=\"round\">\n";
  for (const Stroke& stroke : scene.strokes) {
    std::string d;
    for (std::size_t i = 0; i < stroke.points.size(); ++i) {
      d += (i == 0 ? "M" : (i == 1 ? "L" : " ")) + X(stroke.points[i].x) + " " +
           Y(stroke.points[i].y);
    }
    if (stroke.points.size() == 1) d += "L" + X(stroke.points[0].x) + " " + Y(stroke.points[0].y);
    if (stroke.closed) d += "Z";
    svg += "<path d=\"" + d + "\"/>\n";
  }
  svg += "</g>\n";
  if (options.starts) {
    svg += "<g id=\"starts\" fill=\"" + std::string(kStartColour) + "\">\n";
    for (const Stroke& stroke : scene.strokes) {
      svg += "<circle cx=\"" + X(stroke.points.front().x) + "\" cy=\"" + Y(stroke.points.front().y) +
             "\" r=\"" + Number(marks.startRadius) + "\"/>\n";
    }
    svg += "</g>\n";
  }
  svg += "</svg>\n";
  return svg;
}

void WritePicture(const Scene& scene, const std::string& path, const PictureOptions& options) {
  if (PictureTypeOf(path) == PictureType::Png) {
    WritePng(scene, path, options);
    return;
  }
  const std::string svg = SvgOfScene(scene, options);
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  if (out) out.write(svg.data(), static_cast<std::streamsize>(svg.size()));
  if (out) out.close();
  if (!out) throw ToolFailure("writing the picture", path, std::strerror(errno), kOutputStatus);
}

}  // namespace rvtool
