// RvImPLTToRIF end to end: the file frame, the drawing builder (paths of
// alternating Bezier and arc components in "KFPlotFileLayer"), and real plot
// files from other programs. Expected drawings are worked out by hand from
// the files' commands.
#include <gtest/gtest.h>

#include <cfloat>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "drawing_text.h"
#include "plot_test_util.h"
#include "rvdataaccess.h"
#include "test_support.h"

namespace {

using rvtest::Pt;

/// An import read back: the result, the document and its layer 0 as text.
struct Drawing : rvtest::LayerReading {
  uint32_t code = 0;
  int16_t index = -1, layers = 0;
};

/// Imports `path` into a new document, reads its layer 0 through the
/// exported API, and deletes the document. Every path must be stroked black
/// with flags 7.
Drawing ImportFile(const std::string& path, double scale = 0.0) {
  Drawing d;
  d.code = RvImPLTToRIF(path.c_str(), 0, &d.index, &scale);
  RvGiGetLayerCount(&d.layers);
  void* layer = nullptr;
  EXPECT_EQ(RvGiGetLayer(&layer, 0), 0u);  // every import makes its layer
  static_cast<rvtest::LayerReading&>(d) = rvtest::ReadLayer(layer);
  for (const rvtest::PathReading& p : d.paths) {
    EXPECT_EQ(p.strokeName + (" found " + std::to_string(p.strokeFound)) + " kind " + std::to_string(p.stroke.kind) +
                  " rgb " + std::to_string(p.stroke.c[0] + p.stroke.c[1] + p.stroke.c[2]) + " flags " +
                  std::to_string(p.flags),
              "Black found 1 kind 1 rgb 0 flags 7");
  }
  RvGiDeleteActiveDocument();
  return d;
}

Drawing ImportText(const std::string& text, double scale = 0.0) {
  rvtest::TempDir dir;
  const std::string path = dir.file("in.plt");
  EXPECT_TRUE(rvtest::WriteFile(path, text));
  return ImportFile(path, scale);
}

void ExpectRect(const RVRECT& r, double left, double right, double bottom, double top) {
  EXPECT_NEAR(r.left, left, 1e-9);
  EXPECT_NEAR(r.right, right, 1e-9);
  EXPECT_NEAR(r.bottom, bottom, 1e-9);
  EXPECT_NEAR(r.top, top, 1e-9);
}

TEST(PltImport, StrokesArcsAndTheClosingRule) {
  const std::tuple<std::string, double, std::string> rows[] = {  // commands, scale, shapes
      // Scale 0.0 is 0.025: PA1000,0 is 25 units long. Any other scale is
      // kept, a negative one too.
      {"PD;PA1000,0;", 0.0, "B(0,0 25,0)"},
      {"PD;PA1000,0;", -0.5, "B(0,0 -500,0)"},
      // The bare PU; moves nothing and ends nothing; a pen-up move ends the path.
      {"PD;PA0,0;PA10,0;PU;PA20,0;PD;PA20,10;", 1.0, "B(0,0 0,0 10,0) | B(20,0 20,10)"},
      {"PD;PA0,0;PU;PD;PA10,0;", 1.0, "B(0,0 0,0 10,0)"},
      // Scale 0.001: back to (100,0) is 0.1 from the start: closed, and the
      // last anchor is moved exactly onto the first; its handles stay where
      // the end was. At 0.1000001 the path stays open and unchanged.
      {"PD;PA0,0;PA1000,0;PA1000,1000;PA100,0;", 0.001, "B(0,0 0,0 1,0 1,1 0,0{0.1,0;0.1,0}) closed"},
      {"PD;PA0,0;PA1000,0;PA1000,1000;PA100,0;", 0.001000001,
       "B(0,0 0,0 1.000001,0 1.000001,1.000001 0.1000001,0)"},
      // A path of one point is closed.
      {"PD;PA0,0;PU;PA5,5;", 1.0, "B(0,0 0,0) closed"},
      // An arc with the pen up still opens a path; the line after it begins a
      // new Bezier whose first anchor is the arc's end.
      {"PA10,0;AA0,0,90;PA0,20;", 1.0, "A(10,0>0,10@0,0:90+) B(0,10 0,20)"},
      // Two arcs in a row share one arc component; a line between arcs splits them.
      {"PA10,0;PD;AA0,0,90;AA0,0,90;PA-10,-10;AA0,0,90;", 1.0,
       "A(10,0>0,10@0,0:90+ 0,10>-10,0@0,0:90+) B(-10,0 -10,-10) A(-10,-10>10,-10@0,0:90+)"},
      // CI without a chord: one closed arc of 360.
      {"PA5,5;CI10;", 1.0, "A(15,5>15,5@5,5:360+) closed"},
      // Scale 0.01: the path starts at (0,-0.09); the clockwise quarter from
      // (10,0) ends at (0,-10), that is (0,-0.1), 0.01 from the start: the
      // arc's end point is moved onto the start.
      {"PA0,-9;PD;PA10,0;AA0,0,-90;", 0.01, "B(0,-0.09 0.1,0) A(0.1,0>0,-0.09@0,0:90-) closed"},
      // Nothing drawn: the bare value 1, and the empty layer stays.
      {"", 0.0, ""},
      {"IN;PU100,100;PA200,200;LBhello\x03;SP1;", 0.0, ""},
  };
  for (const auto& [text, scale, shapes] : rows) {
    SCOPED_TRACE(text);
    const Drawing d = ImportText(text, scale);
    EXPECT_EQ(d.code, shapes.empty() ? 1u : 0u);
    EXPECT_EQ(d.layers, 1);
    EXPECT_EQ(d.name, "KFPlotFileLayer");
    EXPECT_EQ(d.Shapes(), shapes);
  }
  // A circle's bounds reach beyond its end points.
  ExpectRect(ImportText("PA5,5;CI10;", 1.0).extent, -5, 15, -5, 15);
}

TEST(PltImport, PathValuesAndNothingCarriesOver) {
  // VT sets the values (16 bits; one number changes nothing), JT17 or JT27
  // makes them count for the paths that end after it, any other JT not.
  Drawing d = ImportText("VT3,4;JT17;PD;PA10,0;PU;PA0,0;JT3;PD;PA0,10;", 1.0);
  ASSERT_EQ(d.paths.size(), 2u);
  const auto values = [](const rvtest::PathReading& p) { return Pt(p.vcutElement, p.vcutValue); };
  EXPECT_EQ(values(d.paths[0]) + " " + values(d.paths[1]), "3,4 -1,0");
  for (auto [text, expected] : {std::pair{"PD;PA10,0;", "-1,0"}, {"VT5,70000;JT27;PD;PA10,0;", "5,4464"},
                                {"VT5,7;VT9;JT17;PD;PA10,0;", "5,7"}, {"VT5,7;JT17;JT;PD;PA10,0;", "-1,0"}}) {
    d = ImportText(text);
    ASSERT_EQ(d.paths.size(), 1u) << text;
    EXPECT_EQ(values(d.paths[0]), expected) << text;
  }

  // A first import leaves scaling, rotation, relative mode, a chord mode, a
  // label and an open list behind; the second starts fresh.
  ImportText("IP0,0,1000,1000;SC0,1,0,1;RO90;PR;CT1;ZW10,1;VT5,5;JT17;LBabc");
  d = ImportText("PD;PA1000,0;CI40,45;");
  ASSERT_EQ(d.paths.size(), 2u);
  EXPECT_EQ(d.paths[0].shape, "B(0,0 25,0)");
  EXPECT_EQ(d.paths[0].vcutElement, -1);
  EXPECT_EQ(d.paths[1].points, 10);  // 8 chords of 45 degrees: start, 7 points, end twice
}

TEST(PltImport, FileFrameResults) {
  rvtest::TempDir dir;
  double scale = 0.0;
  // A file that doesn't exist: 0x01000201, and one more, empty, active document.
  int16_t before = -1, index = -7, active = -1, layers = -1;
  RvGiGetActiveDocumentIndex(&before);
  EXPECT_EQ(RvImPLTToRIF(dir.file("missing.plt").c_str(), 0, &index, &scale), 0x01000201u);
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
  void *first = nullptr, *second = nullptr;
  RvGiGetLayer(&first, 0);
  ASSERT_EQ(RvImPLTToRIF(path.c_str(), 1, &doc, &scale), 0u);
  RvGiGetLayerCount(&layers);
  EXPECT_EQ(layers, 2);
  RvGiGetLayer(&second, 1);
  EXPECT_EQ(second, first);  // the first import's layer moved back
  RvGiGetActiveDocumentIndex(&active);
  EXPECT_EQ(active, doc);
  RvGiDeleteActiveDocument();
  EXPECT_EQ(g_ExceptionContext, nullptr);
}

TEST(PltImport, SampleFiles) {
  // samples/sign.plt worked out by hand, at 0.025: the outer and the inner
  // frame; the "R": two lines, a clockwise half turn about (1500,1850),
  // a line back; its leg; the "V"; the circles CI500 and CI300 about
  // (4000,1500); the triangle and its hole; the "D": a pen-up half turn
  // about (6900,1500) from (6900,1000) to (6900,2000), and the line back.
  Drawing d = ImportFile(std::string(RV_SAMPLES_DIR) + "/sign.plt");
  ASSERT_EQ(d.code, 0u);
  EXPECT_EQ(d.Shapes(),
            "B(0,0 200,0 200,75 0,75 0,0) closed"
            " | B(10,10 190,10 190,65 10,65 10,10) closed"
            " | B(25,20 25,55 37.5,55) A(37.5,55>37.5,37.5@37.5,46.25:180-) B(37.5,37.5 25,37.5)"
            " | B(31.25,37.5 42.5,20)"
            " | B(52.5,55 62.5,20 72.5,55)"
            " | A(112.5,37.5>112.5,37.5@100,37.5:360+) closed"
            " | A(107.5,37.5>107.5,37.5@100,37.5:360+) closed"
            " | B(130,20 160,20 145,55 130,20) closed"
            " | B(140,25 150,25 145,40 140,25) closed"
            " | A(172.5,25>172.5,50@172.5,37.5:180-) B(172.5,50 172.5,25) closed");
  ExpectRect(d.extent, 0, 200, 0, 75);
  ASSERT_EQ(d.paths.size(), 10u);
  // The "D" turns clockwise from the bottom through the left: 6400..6900.
  ExpectRect(d.paths[9].bounds, 160, 172.5, 25, 50);

  d = ImportFile(std::string(RV_SAMPLES_DIR) + "/square.plt");
  EXPECT_EQ(d.Shapes(), "B(10,10 30,10 30,30 10,30 10,10) closed");
}

TEST(PltImport, RealFiles) {
  RV_SKIP_WITHOUT_REAL_DATA();
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
  //    the single-letter dialect: nothing in it draws (the bare value 1).
  // name, result, paths, points, left, right, bottom, top
  const std::tuple<const char*, uint32_t, size_t, int32_t, double, double, double, double> cases[] = {
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
      {"jemgreen_XANADU-PLT-test.plt", 1, 0, 0, DBL_MAX, -DBL_MAX, DBL_MAX, -DBL_MAX},
  };
  for (const auto& [name, code, paths, points, left, right, bottom, top] : cases) {
    SCOPED_TRACE(name);
    const Drawing d = ImportFile(rvtest::RealData(name));
    EXPECT_EQ(d.code, code);
    EXPECT_EQ(d.paths.size(), paths);
    EXPECT_EQ(d.points, points);
    ExpectRect(d.extent, left, right, bottom, top);
  }

  // tgoodhew_feature-exercise.plt by hand: the frame, seven LT sample
  // lines, CI420 about (3500,5500), AA4200,5500,180 from (4700,5500), the
  // wedge EW420,0,120 at (5600,5500) (2400 chords of 0.05 degrees between
  // its two sides), the EA rectangle, the two PM rectangles, CI500 about
  // (3550,1100) (IW doesn't clip) and the two lines after it: 16 paths.
  const Drawing d = ImportFile(rvtest::RealData("tgoodhew_feature-exercise.plt"));
  ASSERT_EQ(d.code, 0u);
  ASSERT_EQ(d.paths.size(), 16u);
  ExpectRect(d.extent, 0, 250, 0, 175);
  // CI420 about (3500,5500) * 0.025, closed; AA: the upper half from
  // (4700,5500) to (3700,5500), open.
  EXPECT_EQ(d.paths[8].shape + (d.paths[8].closed == 1 ? " closed" : ""),
            "A(98,137.5>98,137.5@87.5,137.5:360+) closed");
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
  // commands, scale, left, right, bottom, top
  const std::tuple<std::string, double, double, double, double, double> rows[] = {
      {"PA-5,7;PD;PA20,-3;PA4,11;PU;PA0,0;", 1.0, -5, 20, -3, 11},
      {"PA100000,200000;PD;PA300000,150000;", 1.0, 32767, 300000, 32767, 200000},
      {"PA-100000,-200000;PD;PA-300000,-150000;", 1.0, -300000, -32768, -200000, -32768},
      {"PD;PA99999999,-99999999;", 0.0, 0, 2499999.975, -2499999.975, 0},  // 2.5 km at 0.025
  };
  for (const auto& [text, scale, left, right, bottom, top] : rows) {
    SCOPED_TRACE(text);
    const Drawing d = ImportText(text, scale);
    EXPECT_EQ(d.code, 0u);
    ExpectRect(d.extent, left, right, bottom, top);
  }
}

TEST(PltImport, TruncatedAndGarbageFilesImport) {
  // Every seventh prefix of the sign, random bytes, and random bytes after a
  // two-letter head: no failure beyond "nothing drawn".
  const std::string sign = rvtest::ReadFile(std::string(RV_SAMPLES_DIR) + "/sign.plt");
  ASSERT_FALSE(sign.empty());
  for (size_t n = 0; n <= sign.size(); n += 7) {
    const Drawing d = ImportText(sign.substr(0, n));
    EXPECT_TRUE(d.code == 0 || d.code == 1) << n;
    EXPECT_LE(d.paths.size(), 10u) << n;
  }
  std::mt19937 rng(7);
  for (int round = 0; round < 4; ++round) {
    std::string junk(1 << 18, '\0');
    for (char& ch : junk) ch = char(rng());
    const Drawing d = ImportText(round & 1 ? "IN;PD;" + junk : junk);
    EXPECT_TRUE(d.code == 0 || d.code == 1) << round;
  }
}

TEST(PltImport, HugeInputsImportInBoundedTimeAndMemory) {
  // 100 MB in one line without a terminator (25 MB under the sanitizers):
  // pen-up pairs, no path grows; the one point drawn before the pen went up.
  // Then PA with a first number of 16 MB (4 MB): a fault, so the command is
  // skipped to its terminator without a move; the stroke after it starts at
  // the last pair.
  rvtest::TempDir dir;
  const std::string path = dir.file("huge.plt");
  std::FILE* f = std::fopen(path.c_str(), "wb");
  ASSERT_NE(f, nullptr);
  std::string chunk;
  while (chunk.size() < (1u << 20)) chunk += "1234567,7654321,";
  std::fputs("IN;PD;PA0,0;PU", f);
  for (long i = 0; i < 100 / rvtest::kHugeScale; ++i) std::fwrite(chunk.data(), 1, chunk.size(), f);
  std::fputs("PA", f);
  const std::string digits(1u << 20, '9');
  for (long i = 0; i < 16 / rvtest::kHugeScale; ++i) std::fwrite(digits.data(), 1, digits.size(), f);
  std::fputs(",5;PD;PA1,1;", f);
  ASSERT_EQ(std::fclose(f), 0);
  const Drawing d = ImportFile(path, 1.0);
  EXPECT_EQ(d.code, 0u);
  EXPECT_EQ(d.Shapes(), "B(0,0 0,0) closed | B(1234567,7654321 1,1)");
}

}  // namespace
