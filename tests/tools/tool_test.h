// Helpers of the tool's tests: the built rvtool run as a process, checks of
// the pictures it writes, and a small drawing made through the exported
// functions, as a host would make it.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "frame/frame.h"
#include "model/data_access.h"
#include "rvdataaccess.h"

namespace tooltest {

struct ToolRun {
  int status = -1;  // exit status, or 128 + signal
  std::string out, err;
};

/// Runs rvtool with `args` (without the program name), standard input from /dev/null.
ToolRun RunTool(const std::vector<std::string>& args);
/// Path of a file of samples/.
std::string Sample(const std::string& name);

inline bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

/// A PNG file as far as the checks need it: decoded, and its pixels counted
/// by the colours of the picture (cuts black, starts red, travel blue).
struct PngSummary {
  bool valid = false;  // PNG signature, and the whole file decodes
  int width = 0, height = 0;
  long black = 0, white = 0, red = 0, blue = 0;
};
PngSummary CheckPng(const std::string& path);

/// "N cuts, box W x H" of an SVG file of rvtool, "not XML" if it isn't well-formed.
std::string SvgSummary(const std::string& svgPath);

/// A new art of `type` as the last child of `parent`.
inline void* NewArt(int16_t type, void* parent) {
  void* art = nullptr;
  EXPECT_EQ(RvGiCreateArt(type, 5, parent, &art), 0u);
  return art;
}

inline void* NewLayer(const char* name) {
  void* layer = nullptr;
  EXPECT_EQ(RvGiCreateLayer(1, nullptr, &layer), 0u);
  EXPECT_EQ(RvGiSetLayerName(layer, name), 0u);
  return layer;
}

inline void AddCorners(void* bezier, std::initializer_list<std::pair<double, double>> corners) {
  for (auto [x, y] : corners) {
    RVBEZIERPOINT p{};
    p.anchor = p.in = p.out = RVPOINT{x, y};
    EXPECT_EQ(RvGiAddBezierPoint(bezier, &p), 0u);
  }
}

/// Arc points have no exported append (importers add them inside the
/// library): the same internal door.
inline void AddArc(void* arc, const RVARCPOINT& piece) {
  EXPECT_EQ(rv::Guard([&] { rv::CRvDataAccess::Instance().AddArcPoint(rv::ArtOf(arc), piece); }), 0u);
}

/// One document, deleted with the object, with two layers:
///  "Frame": a closed square (10,10)-(30,30), drawn from (10,10) counter-
///           clockwise, as one Bezier of five points (the start repeated),
///           then two open lines a and b from (0,0) to (5,5), each a Bezier;
///  "Arcs":  an open path of one arc component: centre (40,20), from (50,20)
///           counter-clockwise through 180 degrees to (30,20), inside a group.
class ApiDrawing {
 public:
  ApiDrawing() {
    EXPECT_EQ(RvGiCreateDocument(0, &index), 0u);
    frame = NewLayer("Frame");
    square = NewArt(4, frame);
    AddCorners(NewArt(2, square), {{10, 10}, {30, 10}, {30, 30}, {10, 30}, {10, 10}});
    EXPECT_EQ(RvGiSetPathClosed(square, 1), 0u);
    for (void** line : {&a, &b}) {
      *line = NewArt(4, frame);
      AddCorners(NewArt(2, *line), {{0, 0}, {5, 5}});
    }
    arc = NewArt(4, NewArt(1, NewLayer("Arcs")));
    AddArc(NewArt(5, arc), RVARCPOINT{{50, 20}, {30, 20}, {40, 20}, 180, 1});
  }
  ~ApiDrawing() {
    if (RvGiSetActiveDocument(index) == 0) RvGiDeleteActiveDocument();
  }
  ApiDrawing(const ApiDrawing&) = delete;
  ApiDrawing& operator=(const ApiDrawing&) = delete;

  int16_t index = -1;
  void* frame = nullptr;
  void* square = nullptr;
  void* a = nullptr;
  void* b = nullptr;
  void* arc = nullptr;
};

}  // namespace tooltest
