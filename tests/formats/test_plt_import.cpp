// RvImPLTToRIF end to end: the file frame, the drawing builder (paths of
// alternating Bezier and arc components in "KFPlotFileLayer"), and real plot
// files from other programs. Expected drawings are worked out by hand from
// the files' commands.
#include <gtest/gtest.h>

#include <cfloat>
#include <cstdint>
#include <filesystem>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "formats/plt_import.h"
#include "model/art.h"
#include "rvdataaccess.h"
#include "plot_test_util.h"
#include "test_support.h"

namespace {

struct Component {
  int16_t type = -1;
  std::vector<RVBEZIERPOINT> bezier;
  std::vector<RVARCPOINT> arcs;
};

struct PathInfo {
  std::vector<Component> components;
  int32_t closed = -1;
  uint8_t flags = 0;
  RVRECT bounds{};
  int16_t vcutElement = 0, vcutValue = 0;
  std::string strokeName;
  RVCOLOR stroke{};
  int32_t strokeFound = 0;
  int32_t points = 0;
};

struct Drawing {
  uint32_t code = 0;
  int16_t index = -1;
  int16_t layers = 0;
  std::string layerName;
  std::vector<PathInfo> paths;
  RVRECT extent{-DBL_MAX, DBL_MAX, -DBL_MAX, DBL_MAX};  // union of the path bounds
  int32_t points = 0;
};

/// Reads layer 0 of the active document through the exported API.
Drawing ReadDrawing(uint32_t code, int16_t index, bool full = true) {
  Drawing d;
  d.code = code;
  d.index = index;
  RvGiGetLayerCount(&d.layers);
  void* layer = nullptr;
  if (RvGiGetLayer(&layer, 0) != 0) return d;
  char name[256] = {};
  RvGiGetLayerName(layer, name);
  d.layerName = name;
  void* art = nullptr;
  RvGiGetArtFirstChild(layer, &art);
  for (; art != nullptr; RvGiGetArtSibling(art, &art)) {
    PathInfo p;
    int16_t type = -1;
    RvGiGetArtType(art, &type);
    EXPECT_EQ(type, 4);
    RvGiGetArtBounds(art, &p.bounds);
    RvGiGetPathSegmentCount(art, &p.points);
    d.points += p.points;
    d.extent.top = std::max(d.extent.top, p.bounds.top);
    d.extent.left = std::min(d.extent.left, p.bounds.left);
    d.extent.right = std::max(d.extent.right, p.bounds.right);
    d.extent.bottom = std::min(d.extent.bottom, p.bounds.bottom);
    if (full) {
      RvGiGetPathClosed(art, &p.closed);
      RvGiGetPathAttrFlag(art, &p.flags);
      RvGiGetPathElementAtVCut(art, &p.vcutElement, &p.vcutValue);
      RvGiGetPathColor(2, art, &p.stroke, &p.strokeFound);
      char stroke[256] = {};
      RvGiGetPathColorName(2, art, stroke);
      p.strokeName = stroke;
      void* c = nullptr;
      RvGiGetArtFirstChild(art, &c);
      for (; c != nullptr; RvGiGetArtSibling(c, &c)) {
        Component comp;
        RvGiGetArtType(c, &comp.type);
        int32_t n = 0;
        RvGiGetPathSegmentCount(c, &n);
        for (int32_t i = 0; i < n; ++i) {
          if (comp.type == 2) {
            RVBEZIERPOINT b;
            RvGiGetBezierPoint(c, i, &b);
            comp.bezier.push_back(b);
          } else if (comp.type == 5) {
            RVARCPOINT a;
            RvGiGetArcPoint(c, i, &a);
            comp.arcs.push_back(a);
          }
        }
        p.components.push_back(comp);
      }
    }
    d.paths.push_back(p);
  }
  return d;
}

/// Imports `path` into a new document, reads it, and deletes the document.
Drawing ImportFile(const std::string& path, double scale = 0.0, bool full = true) {
  int16_t index = -1;
  const uint32_t code = RvImPLTToRIF(path.c_str(), 0, &index, &scale);
  Drawing d = ReadDrawing(code, index, full);
  RvGiDeleteActiveDocument();
  return d;
}

Drawing ImportText(const std::string& text, double scale = 0.0) {
  rvtest::TempDir dir;
  const std::string path = dir.file("in.plt");
  EXPECT_TRUE(rvtest::WriteFile(path, text));
  return ImportFile(path, scale);
}

/// The anchors of a Bezier component; straight, so the handles lie on the
/// anchors, except at the index `snapped` (an end moved onto the start).
void ExpectAnchors(const Component& c, const std::vector<RVPOINT>& expected, size_t snapped = SIZE_MAX) {
  ASSERT_EQ(c.type, 2);
  ASSERT_EQ(c.bezier.size(), expected.size());
  for (size_t i = 0; i < expected.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_DOUBLE_EQ(c.bezier[i].anchor.x, expected[i].x);
    EXPECT_DOUBLE_EQ(c.bezier[i].anchor.y, expected[i].y);
    if (i == snapped) continue;
    EXPECT_DOUBLE_EQ(c.bezier[i].in.x, c.bezier[i].anchor.x);
    EXPECT_DOUBLE_EQ(c.bezier[i].in.y, c.bezier[i].anchor.y);
    EXPECT_DOUBLE_EQ(c.bezier[i].out.x, c.bezier[i].anchor.x);
    EXPECT_DOUBLE_EQ(c.bezier[i].out.y, c.bezier[i].anchor.y);
  }
}

void ExpectRect(const RVRECT& r, double left, double right, double bottom, double top) {
  EXPECT_NEAR(r.left, left, 1e-9);
  EXPECT_NEAR(r.right, right, 1e-9);
  EXPECT_NEAR(r.bottom, bottom, 1e-9);
  EXPECT_NEAR(r.top, top, 1e-9);
}

// ---------------------------------------------------------------------------
// The drawing builder
// ---------------------------------------------------------------------------

TEST(PltImport, OneStrokeMakesOneBlackPath) {
  // Scale 0.0 is 0.025: PA1000,0 is 25 units long.
  Drawing d = ImportText("PD;PA1000,0;");
  ASSERT_EQ(d.code, 0u);
  EXPECT_GE(d.index, 0);
  EXPECT_EQ(d.layers, 1);
  EXPECT_EQ(d.layerName, "KFPlotFileLayer");
  ASSERT_EQ(d.paths.size(), 1u);
  const PathInfo& p = d.paths[0];
  ASSERT_EQ(p.components.size(), 1u);
  ExpectAnchors(p.components[0], {{0, 0}, {25, 0}});
  EXPECT_EQ(p.closed, 0);
  EXPECT_EQ(p.flags, 7);
  EXPECT_EQ(p.strokeName, "Black");
  EXPECT_EQ(p.strokeFound, 1);
  EXPECT_EQ(p.stroke.kind, 1);
  EXPECT_EQ(p.stroke.c[0] + p.stroke.c[1] + p.stroke.c[2], 0);
  EXPECT_EQ(p.vcutElement, -1);
  EXPECT_EQ(p.vcutValue, 0);
  ExpectRect(p.bounds, 0, 25, 0, 0);

  // Any other scale is kept, a negative one too.
  d = ImportText("PD;PA1000,0;", -0.5);
  ASSERT_EQ(d.paths.size(), 1u);
  ExpectAnchors(d.paths[0].components[0], {{0, 0}, {-500, 0}});
}

TEST(PltImport, NothingDrawnGivesTheBareValueOne) {
  Drawing d = ImportText("");
  EXPECT_EQ(d.code, 1u);
  EXPECT_EQ(d.layers, 1);
  EXPECT_EQ(d.layerName, "KFPlotFileLayer");
  EXPECT_TRUE(d.paths.empty());
  d = ImportText("IN;PU100,100;PA200,200;LBhello\x03;SP1;");
  EXPECT_EQ(d.code, 1u);
  EXPECT_TRUE(d.paths.empty());
}

TEST(PltImport, PenUpMovesEndPaths) {
  // The bare PU; moves nothing and ends nothing; the following pen-up move ends the path.
  Drawing d = ImportText("PD;PA0,0;PA10,0;PU;PA20,0;PD;PA20,10;", 1.0);
  ASSERT_EQ(d.paths.size(), 2u);
  ExpectAnchors(d.paths[0].components[0], {{0, 0}, {0, 0}, {10, 0}});
  ExpectAnchors(d.paths[1].components[0], {{20, 0}, {20, 10}});
  // The pen was never lifted by a move: one path.
  d = ImportText("PD;PA0,0;PU;PD;PA10,0;", 1.0);
  ASSERT_EQ(d.paths.size(), 1u);
  ExpectAnchors(d.paths[0].components[0], {{0, 0}, {0, 0}, {10, 0}});
}

TEST(PltImport, PathsCloseWithinATenth) {
  // Scale 0.001: back to (100,0) is 0.1 from the start: closed, and the last
  // anchor is moved exactly onto the first.
  Drawing d = ImportText("PD;PA0,0;PA1000,0;PA1000,1000;PA100,0;", 0.001);
  ASSERT_EQ(d.paths.size(), 1u);
  EXPECT_EQ(d.paths[0].closed, 1);
  ExpectAnchors(d.paths[0].components[0], {{0, 0}, {0, 0}, {1, 0}, {1, 1}, {0, 0}}, 4);
  const RVBEZIERPOINT& end = d.paths[0].components[0].bezier[4];
  EXPECT_DOUBLE_EQ(end.in.x, 0.1);  // the handles stay where the end was
  EXPECT_DOUBLE_EQ(end.out.x, 0.1);
  // At 0.1000001 the path stays open and unchanged.
  d = ImportText("PD;PA0,0;PA1000,0;PA1000,1000;PA100,0;", 0.001000001);
  ASSERT_EQ(d.paths.size(), 1u);
  EXPECT_EQ(d.paths[0].closed, 0);
  EXPECT_DOUBLE_EQ(d.paths[0].components[0].bezier.back().anchor.x, 100 * 0.001000001);
  // A path of one point is closed.
  d = ImportText("PD;PA0,0;PU;PA5,5;", 1.0);
  ASSERT_EQ(d.paths.size(), 1u);
  EXPECT_EQ(d.paths[0].closed, 1);
  ExpectAnchors(d.paths[0].components[0], {{0, 0}, {0, 0}});
}

TEST(PltImport, ArcsMakeArcComponents) {
  // An arc with the pen up still opens a path; the line after it begins a
  // new Bezier whose first anchor is the arc's end.
  Drawing d = ImportText("PA10,0;AA0,0,90;PA0,20;", 1.0);
  ASSERT_EQ(d.code, 0u);
  ASSERT_EQ(d.paths.size(), 1u);
  const PathInfo& p = d.paths[0];
  ASSERT_EQ(p.components.size(), 2u);
  ASSERT_EQ(p.components[0].type, 5);
  ASSERT_EQ(p.components[0].arcs.size(), 1u);
  const RVARCPOINT& a = p.components[0].arcs[0];
  EXPECT_EQ(a.from.x, 10);
  EXPECT_EQ(a.from.y, 0);
  EXPECT_EQ(a.to.x, 0);
  EXPECT_EQ(a.to.y, 10);
  EXPECT_EQ(a.centre.x, 0);
  EXPECT_EQ(a.sweep, 90);
  EXPECT_EQ(a.direction, 1);
  ExpectAnchors(p.components[1], {{0, 10}, {0, 20}});
  EXPECT_EQ(p.closed, 0);
  // The quarter arc from (10,0) to (0,10) and the line up to (0,20).
  ExpectRect(p.bounds, 0, 10, 0, 20);

  // Two arcs in a row share one arc component; a line between arcs splits them.
  d = ImportText("PA10,0;PD;AA0,0,90;AA0,0,90;PA-10,-10;AA0,0,90;", 1.0);
  ASSERT_EQ(d.paths.size(), 1u);
  ASSERT_EQ(d.paths[0].components.size(), 3u);
  EXPECT_EQ(d.paths[0].components[0].arcs.size(), 2u);
  ExpectAnchors(d.paths[0].components[1], {{-10, 0}, {-10, -10}});
  EXPECT_EQ(d.paths[0].components[2].arcs.size(), 1u);
}

TEST(PltImport, CirclesAreClosedArcPaths) {
  // CI without a chord: one arc component of one arc point of sweep 360, closed.
  Drawing d = ImportText("PA5,5;CI10;", 1.0);
  ASSERT_EQ(d.paths.size(), 1u);
  const PathInfo& p = d.paths[0];
  ASSERT_EQ(p.components.size(), 1u);
  ASSERT_EQ(p.components[0].arcs.size(), 1u);
  EXPECT_EQ(p.components[0].arcs[0].sweep, 360);
  EXPECT_EQ(p.components[0].arcs[0].from.x, 15);
  EXPECT_EQ(p.components[0].arcs[0].to.x, 15);
  EXPECT_EQ(p.closed, 1);
  ExpectRect(p.bounds, -5, 15, -5, 15);
  // A circle with a chord is a closed polygon.
  d = ImportText("CI1000,90;", 1.0);
  ASSERT_EQ(d.paths.size(), 1u);
  ExpectAnchors(d.paths[0].components[0], {{1000, 0}, {0, 1000}, {-1000, 0}, {0, -1000}, {1000, 0}, {1000, 0}});
  EXPECT_EQ(d.paths[0].closed, 1);
}

TEST(PltImport, EndSnapsOntoTheStartOfAnArc) {
  // Scale 0.01: the path starts at (0,-0.09); the clockwise quarter about
  // the origin from (10,0) ends at (0,-10), that is (0,-0.1), 0.01 from the
  // start: the arc's end point is moved onto the start.
  Drawing d = ImportText("PA0,-9;PD;PA10,0;AA0,0,-90;", 0.01);
  ASSERT_EQ(d.paths.size(), 1u);
  ASSERT_EQ(d.paths[0].components.size(), 2u);
  EXPECT_EQ(d.paths[0].closed, 1);
  ExpectAnchors(d.paths[0].components[0], {{0, -0.09}, {0.1, 0}});
  const RVARCPOINT& a = d.paths[0].components[1].arcs[0];
  EXPECT_DOUBLE_EQ(a.from.x, 0.1);
  EXPECT_DOUBLE_EQ(a.to.x, 0.0);
  EXPECT_DOUBLE_EQ(a.to.y, -0.09);
  EXPECT_EQ(a.direction, -1);
}

TEST(PltImport, PathElementValues) {
  Drawing d = ImportText("VT3,4;JT17;PD;PA10,0;PU;PA0,0;JT3;PD;PA0,10;", 1.0);
  ASSERT_EQ(d.paths.size(), 2u);
  EXPECT_EQ(d.paths[0].vcutElement, 3);
  EXPECT_EQ(d.paths[0].vcutValue, 4);
  EXPECT_EQ(d.paths[1].vcutElement, -1);  // JT3 switched them off
  EXPECT_EQ(d.paths[1].vcutValue, 0);
}

TEST(PltImport, NothingCarriesOverToTheNextImport) {
  // A first import leaves scaling, rotation, relative mode, a chord mode, a
  // label and an open list behind; the second starts fresh.
  ImportText("IP0,0,1000,1000;SC0,1,0,1;RO90;PR;CT1;ZW10,1;VT5,5;JT17;LBabc");
  Drawing d = ImportText("PD;PA1000,0;CI40,45;");
  ASSERT_EQ(d.paths.size(), 2u);
  ExpectAnchors(d.paths[0].components[0], {{0, 0}, {25, 0}});
  EXPECT_EQ(d.paths[0].vcutElement, -1);
  EXPECT_EQ(d.paths[1].points, 10);  // 8 chords of 45 degrees: start, 7 points, end twice
}

// ---------------------------------------------------------------------------
// The file frame
// ---------------------------------------------------------------------------

TEST(PltImport, FileFrameResults) {
  rvtest::TempDir dir;
  double scale = 0.0;
  // A file that doesn't exist: 0x01000201, and one more, empty, active document.
  int16_t before = -1, index = -7;
  RvGiGetActiveDocumentIndex(&before);
  EXPECT_EQ(RvImPLTToRIF(dir.file("missing.plt").c_str(), 0, &index, &scale), 0x01000201u);
  int16_t active = -1, layers = -1;
  RvGiGetActiveDocumentIndex(&active);
  EXPECT_EQ(active, index);
  EXPECT_NE(index, before);
  RvGiGetLayerCount(&layers);
  EXPECT_EQ(layers, 0);
  RvGiDeleteActiveDocument();
  EXPECT_EQ(RvImPLTToRIF(nullptr, 0, nullptr, nullptr), 0x01000201u);
  RvGiDeleteActiveDocument();

  // mode 1 with a bad index: 0x09001D01, nothing opened or made.
  const std::string path = dir.file("square.plt");
  ASSERT_TRUE(rvtest::WriteFile(path, "PU0,0;PD400,0,400,400,0,400,0,0;PU;"));
  int16_t bad = 999;
  EXPECT_EQ(RvImPLTToRIF(path.c_str(), 1, &bad, &scale), 0x09001D01u);
  EXPECT_EQ(RvImPLTToRIF(path.c_str(), 1, nullptr, &scale), 0x09001D01u);

  // mode 0 gives the new index; mode 1 imports into it, the new layer in front.
  int16_t doc = -1;
  ASSERT_EQ(RvImPLTToRIF(path.c_str(), 0, &doc, &scale), 0u);
  void* first = nullptr;
  RvGiGetLayer(&first, 0);
  ASSERT_EQ(RvImPLTToRIF(path.c_str(), 1, &doc, &scale), 0u);
  RvGiGetLayerCount(&layers);
  EXPECT_EQ(layers, 2);
  void* second = nullptr;
  RvGiGetLayer(&second, 1);
  EXPECT_EQ(second, first);  // the first import's layer moved back
  RvGiGetActiveDocumentIndex(&active);
  EXPECT_EQ(active, doc);
  RvGiDeleteActiveDocument();

  // The PLT format only reads; an export through it reports 0x01001101 and
  // an export to an empty slot 0x09001D01 without making a file.
  rv::CRvPLTFormat format(&scale);
  EXPECT_EQ(format.ExportFromRIF(nullptr), 0x01001101u);
  rv::CRvFile file(std::make_unique<rv::CRvPLTFormat>(&scale));
  EXPECT_EQ(file.Export(dir.file("out.rvl").c_str(), 30000, nullptr), 0x09001D01u);
  EXPECT_FALSE(std::filesystem::exists(dir.file("out.rvl")));
  int16_t made = -1;
  ASSERT_EQ(RvGiCreateDocument(0, &made), 0u);
  EXPECT_EQ(file.Export(dir.file("out.rvl").c_str(), made, nullptr), 0x01001101u);
  EXPECT_EQ(file.Format()->File(), nullptr);  // closed after the failure
  RvGiDeleteActiveDocument();
  EXPECT_EQ(g_ExceptionContext, nullptr);
}

// ---------------------------------------------------------------------------
// Sample and real files
// ---------------------------------------------------------------------------

TEST(PltImport, SampleSign) {
  // samples/sign.plt worked out by hand:
  //  1 outer frame 0..8000 x 0..3000, closed; 2 inner frame, closed;
  //  3 "R": lines (1000,800)-(1000,2200)-(1500,2200), a clockwise half turn
  //    about (1500,1850) to (1500,1500), a line to (1000,1500): Bezier, arc,
  //    Bezier, open; 4 its leg (1250,1500)-(1700,800);
  //  5 "V" (2100,2200)-(2500,800)-(2900,2200);
  //  6, 7 the circles CI500 and CI300 about (4000,1500), closed;
  //  8, 9 the triangle and its hole, closed;
  // 10 "D": a pen-up half turn about (6900,1500) from (6900,1000) to
  //    (6900,2000), then the line back down: arc and Bezier, closed.
  Drawing d = ImportFile(std::string(RV_SAMPLES_DIR) + "/sign.plt");
  ASSERT_EQ(d.code, 0u);
  ASSERT_EQ(d.paths.size(), 10u);
  ExpectRect(d.extent, 0, 200, 0, 75);
  const int closed[10] = {1, 1, 0, 0, 0, 1, 1, 1, 1, 1};
  const size_t parts[10] = {1, 1, 3, 1, 1, 1, 1, 1, 1, 2};
  for (int i = 0; i < 10; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(d.paths[i].closed, closed[i]);
    EXPECT_EQ(d.paths[i].components.size(), parts[i]);
  }
  const RVARCPOINT& r = d.paths[2].components[1].arcs[0];
  EXPECT_DOUBLE_EQ(r.from.x, 37.5);
  EXPECT_DOUBLE_EQ(r.from.y, 55.0);
  EXPECT_DOUBLE_EQ(r.to.y, 37.5);
  EXPECT_EQ(r.direction, -1);
  EXPECT_EQ(r.sweep, 180);
  ExpectAnchors(d.paths[2].components[2], {{37.5, 37.5}, {25, 37.5}});
  // CI500 about (4000,1500): radius 12.5 mm about (100, 37.5).
  ExpectRect(d.paths[5].bounds, 87.5, 112.5, 25, 50);
  // The "D" turns clockwise from the bottom through the left: 6400..6900.
  ExpectRect(d.paths[9].bounds, 160, 172.5, 25, 50);

  d = ImportFile(std::string(RV_SAMPLES_DIR) + "/square.plt");
  ASSERT_EQ(d.paths.size(), 1u);
  ExpectAnchors(d.paths[0].components[0], {{10, 10}, {30, 10}, {30, 30}, {10, 30}, {10, 10}});
  EXPECT_EQ(d.paths[0].closed, 1);
}

struct RealCase {
  const char* name;
  uint32_t code;
  size_t paths;
  int32_t points;
  double left, right, bottom, top;
};

TEST(PltImport, RealFiles) {
  // Expectations worked out with two throwaway scripts that read the files
  // command by command (not with this library):
  //  - plain HP-GL (PU/PD/PA/PR, IN/DF, IP/SC, labels skipped to their end
  //    byte): a path per pen-down stroke, union of the anchors in mm;
  //  - files that draw only through PE: the runs decoded by hand rules
  //    (base 64/32, sign bit, '<' pen up, '=' absolute), under the RO90 or
  //    RO180 and IP0,0,1016,-1016 / SC0,300,0,300 that their headers leave
  //    in force (ratio 1016/300 and -1016/300).
  // Notable outcomes of the firmware rules:
  //  - hp, space-shuttle, tektronix: IN leaves P1 (0,0), P2 (1,1), and IP
  //    with two numbers keeps that size, so SC maps the whole drawing into
  //    one plotter unit;
  //  - R+S-analyzer: DF;SC before any IP scales by 0/639: every point is 0;
  //  - HP8595E-FM and tgoodhew_test have no IN or DF, so their first label
  //    runs to the next zero byte (none, or the one NUL of tgoodhew_test);
  //  - XANADU-PLT-test begins with 128 KiB of zero bytes, which decide for
  //    the single-letter dialect: nothing in it draws.
  const RealCase cases[] = {
      {"vk2bea_Cassini.hpgl", 0, 1487, 4726, 27.125, 382.025, -10.75, 272.5},
      {"vk2bea_hp.hpgl", 0, 25, 1793, 10.0, 10.025, 112.5, 112.5},
      {"vk2bea_space-shuttle.hpgl", 0, 226, 4481, 87.5, 87.525, 7.5, 7.525},
      {"vk2bea_tektronix.hpgl", 0, 60, 2308, 60.0, 60.025, 10.0, 10.025},
      {"vk2bea_R+S-analyzer.hpgl", 0, 1918, 3896, 0, 0, 0, 0},
      {"vk2bea_HP8595E-FM.hpgl", 0, 20, 47, 0.0, 361.65, 25.625, 287.675},
      {"tgoodhew_test.plt", 0, 22, 66, 23.8, 239.425, 27.125, 171.125},
      {"straightcoding_S_Fabric_Nesting.plt", 0, 31833, 126495, 0.0, 14896.55, 0.0, 1700.0},
      {"straightcoding_B_Fabric_Nesting.plt", 0, 40705, 168904, 0.125, 17957.6, 0.0, 1700.05},
      {"jemgreen_XANADU-PLT-test2.plt", 0, 43, 645, 57.1, 241.1, 25.65, 181.35},
      {"jemgreen_test-Model.PLT", 0, 5, 23, 88.225, 187.125, 76.95, 175.85},
      {"jemgreen_test-Model_utf8mangled.PLT", 0, 1, 5, 12.35, 707.3, 11.95, 696.05},
      {"jemgreen_test2a-Layout1.PLT", 0, 3, 7, 0.0, 232.25, 15.075, 177.975},
      {"jemgreen_test3-Model_RO180.PLT", 0, 1, 5, 0.0, 39.875, -39.875, 0.0},
  };
  for (const RealCase& c : cases) {
    SCOPED_TRACE(c.name);
    const Drawing d = ImportFile(rvtest::RealData(c.name), 0.0, false);
    EXPECT_EQ(d.code, c.code);
    EXPECT_EQ(d.paths.size(), c.paths);
    EXPECT_EQ(d.points, c.points);
    ExpectRect(d.extent, c.left, c.right, c.bottom, c.top);
  }
  const Drawing x = ImportFile(rvtest::RealData("jemgreen_XANADU-PLT-test.plt"));
  EXPECT_EQ(x.code, 1u);
  EXPECT_TRUE(x.paths.empty());
}

TEST(PltImport, FeatureExerciseCurves) {
  // tgoodhew_feature-exercise.plt by hand: the frame, seven LT sample
  // lines, CI420 about (3500,5500), AA4200,5500,180 from (4700,5500), the
  // wedge EW420,0,120 at (5600,5500) (2400 chords of 0.05 degrees between
  // its two sides), the EA rectangle, the two PM rectangles, CI500 about
  // (3550,1100) (IW doesn't clip) and the two lines after it: 16 paths.
  const Drawing d = ImportFile(rvtest::RealData("tgoodhew_feature-exercise.plt"));
  ASSERT_EQ(d.code, 0u);
  ASSERT_EQ(d.paths.size(), 16u);
  ExpectRect(d.extent, 0, 250, 0, 175);
  // CI420: (3080..3920, 5080..5920) * 0.025.
  ExpectRect(d.paths[8].bounds, 77, 98, 127, 148);
  EXPECT_EQ(d.paths[8].closed, 1);
  // AA: the upper half from (4700,5500) to (3700,5500).
  ExpectRect(d.paths[9].bounds, 92.5, 117.5, 137.5, 150);
  EXPECT_EQ(d.paths[9].closed, 0);
  // EW: from the centre out to (6020,5500), round to (5390,5864), back.
  EXPECT_EQ(d.paths[10].points, 2 + 2399 + 2 + 1);
  ExpectRect(d.paths[10].bounds, 134.75, 150.5, 137.5, 148);
  EXPECT_EQ(d.paths[10].closed, 1);
}

TEST(PltImport, StraightStrokesAreBoundedByTheirAnchors) {
  // A stroke of straight moves lies on its anchors' segments, so its bounds
  // are the extremes of the anchors, however long the moves are. The box
  // starts from left 32767, right -32768, bottom 32767, top -32768, so a
  // stroke far from the origin keeps those sides.
  std::mt19937 rng(11);
  for (int round = 0; round < 20; ++round) {
    const int range = round < 10 ? 2001 : 2000001;
    auto coord = [&] { return int(rng() % unsigned(range)) - range / 2; };
    int x = coord(), y = coord();
    std::string text = "PA" + std::to_string(x) + "," + std::to_string(y) + ";PD;";
    double left = std::min(32767, x), right = std::max(-32768, x);
    double bottom = std::min(32767, y), top = std::max(-32768, y);
    const int moves = 1 + int(rng() % 8);
    for (int k = 0; k < moves; ++k) {
      x = coord();
      y = coord();
      text += "PA" + std::to_string(x) + "," + std::to_string(y) + ";";
      left = std::min<double>(left, x);
      right = std::max<double>(right, x);
      bottom = std::min<double>(bottom, y);
      top = std::max<double>(top, y);
    }
    const Drawing d = ImportText(text + "PU;PA0,0;", 1.0);
    ASSERT_EQ(d.code, 0u) << text;
    ExpectRect(d.extent, left, right, bottom, top);
  }
  // A line of 2.5 km at the default scale: bounds by its ends, no failure.
  const Drawing d = ImportText("PD;PA99999999,-99999999;");
  EXPECT_EQ(d.code, 0u);
  ExpectRect(d.extent, 0, 2499999.975, -2499999.975, 0);
}

// ---------------------------------------------------------------------------
// Bad input
// ---------------------------------------------------------------------------

TEST(PltImport, TruncatedAndGarbageFilesImport) {
  // Every prefix of the sign: no failure beyond "nothing drawn".
  const std::string sign = rvtest::ReadFile(std::string(RV_SAMPLES_DIR) + "/sign.plt");
  ASSERT_FALSE(sign.empty());
  rvtest::TempDir dir;
  const std::string path = dir.file("cut.plt");
  for (size_t n = 0; n <= sign.size(); n += 7) {
    ASSERT_TRUE(rvtest::WriteFile(path, sign.substr(0, n)));
    const Drawing d = ImportFile(path, 0.0, false);
    EXPECT_TRUE(d.code == 0 || d.code == 1) << n;
    EXPECT_LE(d.paths.size(), 10u);
  }
  // Random bytes, and random bytes after a two-letter head.
  std::mt19937 rng(7);
  for (int round = 0; round < 4; ++round) {
    std::string junk(1 << 18, '\0');
    for (char& ch : junk) ch = char(rng());
    if (round & 1) junk = "IN;PD;" + junk;
    ASSERT_TRUE(rvtest::WriteFile(path, junk));
    const Drawing d = ImportFile(path, 0.0, false);
    EXPECT_TRUE(d.code == 0 || d.code == 1);
  }
}

TEST(PltImport, HugeInputsImportInBoundedTimeAndMemory) {
  rvtest::TempDir dir;
  const std::string path = dir.file("huge.plt");
  // 100 MB in one line without a terminator (25 MB under the sanitizers):
  // pen-up pairs, no path grows.
  {
    std::FILE* f = std::fopen(path.c_str(), "wb");
    ASSERT_NE(f, nullptr);
    const std::string head = "IN;PD;PA0,0;PU";
    ASSERT_EQ(std::fwrite(head.data(), 1, head.size(), f), head.size());
    std::string chunk;
    while (chunk.size() < (1u << 20)) chunk += "1234567,7654321,";
    for (long i = 0; i < 100 / rvtest::kHugeScale; ++i) {
      ASSERT_EQ(std::fwrite(chunk.data(), 1, chunk.size(), f), chunk.size());
    }
    std::fclose(f);
    const Drawing d = ImportFile(path, 1.0);
    EXPECT_EQ(d.code, 0u);
    ASSERT_EQ(d.paths.size(), 1u);  // the one point drawn before the pen went up
    EXPECT_EQ(d.paths[0].points, 2);
  }
  // A ZS of 128 pairs (and more, which the form drops) on a zig-zag.
  {
    std::string zs = "IN;PA0,0;PD;ZD0,0.1;ZS-100,0";
    for (int k = 1; k < 140; ++k) zs += "," + std::to_string(100 * k) + "," + std::to_string(k % 2 ? 100 : 0);
    const Drawing d = ImportText(zs + ";PU;");
    ASSERT_EQ(d.paths.size(), 1u);
    EXPECT_GT(d.paths[0].points, 127);
    EXPECT_LE(d.paths[0].points, rv::kMaxCurveMoves + 2);
    EXPECT_NEAR(d.extent.right, 127 * 100 * 0.025, 1e-9);  // ends at pair 127
  }
  // PE with nine-digit numbers: coordinates clamp at the 32-bit limits.
  {
    const Drawing d = ImportText("IN;PE=\xbf\xbf~~~~~~~~\xfe~~~~~~~~\xfe;", 1.0);
    ASSERT_EQ(d.paths.size(), 1u);
    EXPECT_DOUBLE_EQ(d.extent.left, -2147483648.0);
    EXPECT_DOUBLE_EQ(d.extent.bottom, -2147483648.0);
  }
}

}  // namespace
