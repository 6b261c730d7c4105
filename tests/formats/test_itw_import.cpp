// ITW import: layouts and stroke fonts written here after their byte layouts,
// read through RvImItwToRIF and compared as text; installed fonts through the
// fonts of this system.
#include <fontconfig/fontconfig.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "formats/glyph_outline.h"
#include "formats/itw_import.h"
#include "formats/stroke_font.h"
#include "itw_writer.h"
#include "model/data_access.h"
#include "rvdataaccess.h"
#include "test_support.h"

namespace {

using rv::CRvArt;
using rvtest::Bytes;
using rvtest::Stroke;

rv::CRvDataAccess& Store() { return rv::CRvDataAccess::Instance(); }

std::vector<CRvArt*> Children(CRvArt* art) {
  std::vector<CRvArt*> out;
  for (CRvArt* c = Store().GetArtFirstChild(art); c != nullptr; c = Store().GetArtSibling(c)) out.push_back(c);
  return out;
}

std::string Num(double v) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", std::fabs(v) < 0.005 ? 0.0 : v);
  return text;
}
std::string Pt(const RVPOINT& p) { return Num(p.x) + "," + Num(p.y); }

/// A path as text: "B(x,y ...)", "A(from@centre/direction ...)", "S(x,y ...)"
/// per component, then " closed" for a closed path.
std::string Shape(CRvArt* path) {
  std::string out;
  for (CRvArt* c : Children(path)) {
    const int32_t n = Store().GetPathSegmentCount(c);
    const int16_t type = Store().GetArtType(c);
    if (!out.empty()) out += ' ';
    out += type == rv::kArtBezier ? "B(" : type == rv::kArtArc ? "A(" : "S(";
    for (int32_t i = 0; i < n; ++i) {
      if (i != 0) out += ' ';
      if (type == rv::kArtBezier) out += Pt(Store().GetBezierPoint(c, i).anchor);
      if (type == rv::kArtSpline) out += Pt(Store().GetSplinePoint(c, i));
      if (type == rv::kArtArc) {
        const RVARCPOINT a = Store().GetArcPoint(c, i);
        out += Pt(a.from) + "@" + Pt(a.centre) + "/" + std::to_string(a.direction);
      }
    }
    out += ")";
  }
  return out + (Store().GetPathClosed(path) == 1 ? " closed" : "");
}

std::string Rect(const RVRECT& r) { return Num(r.top) + " " + Num(r.left) + " " + Num(r.right) + " " + Num(r.bottom); }

/// A layout and its fonts in a temporary folder whose name holds "USER", so
/// that the font indexes count as plain.
struct Layout {
  rvtest::TempDir dir;
  std::string fonts = (dir.path() / "USER").string() + "/";
  uint32_t code = 0;
  int16_t index = -1, fileByte = -1;
  CRvArt* layer = nullptr;

  Layout() { std::filesystem::create_directories(fonts); }
  ~Layout() { RvGiDeleteAllDocuments(); }

  void Font(const std::string& file, const rvtest::StrokeFontWriter& font, bool wide) {
    const auto [index, data] = wide ? font.Wide() : font.Plain();
    rvtest::WriteFile(fonts + file + (wide ? ".TBW" : ".TBL"), index);
    rvtest::WriteFile(fonts + file + (wide ? ".DAW" : ".DAT"), data);
  }
  void Import(const Bytes& file) {
    const std::string path = dir.file("layout.itw");
    rvtest::WriteFile(path, file.b);
    code = RvImItwToRIF(path.c_str(), fonts.c_str(), fonts.c_str(), 0, &index, &fileByte);
    layer = Store().GetLayer(0);
  }
  std::vector<CRvArt*> Groups() const { return Children(layer); }
};

const rvtest::Corners kFrame{{0, 2000}, {3000, 2000}, {3000, 0}, {0, 0}};
const rvtest::Corners kSquareCell{{0, 1000}, {1000, 1000}, {1000, 0}, {0, 0}};
const rvtest::Corners kSkewCell{{0, 1000}, {1000, 1000}, {1400, 0}, {0, 0}};

TEST(ItwImport, FailuresGiveTheirCodesAndTheFileByteArrivesFirst) {
  const rvtest::ItwFontRecord longName{1, 0, std::string(50, 'N'), "F"};
  Bytes wrongFontMark = rvtest::ItwHead({{1, 0, "A", "F"}});
  wrongFontMark.b[88] = 41;
  Bytes cut = rvtest::ItwHead({});
  rvtest::ItwFrame(cut, 2, kFrame, 0, 1, false, false, 0);
  rvtest::ItwCharacter(cut, 1, kSquareCell, 65, 0, 1000, 1000);
  Bytes wrongMark = rvtest::ItwHead({});
  wrongMark.b[1] = 'X';
  struct Row {
    const char* what;
    Bytes file;
    uint32_t code;
    int16_t fileByte;
  } rows[] = {
      {"only the head", rvtest::ItwHead({}, 9), 0, 9},
      {"a head cut short", Bytes{rvtest::ItwHead({}).b.substr(0, 80)}, 0x01000301, -1},
      {"wrong file mark", wrongMark, 0x07001E01, -1},
      {"wrong font record mark", wrongFontMark, 0x07001E01, 7},
      {"a name of 50 bytes", rvtest::ItwHead({longName}), 0x07007001, 7},
      {"a frame missing its second character", cut, 0x01000301, 7},
  };
  for (const Row& row : rows) {
    Layout layout;
    layout.Import(row.file);
    EXPECT_EQ(layout.code, row.code) << row.what;
    EXPECT_EQ(layout.fileByte, row.fileByte) << row.what;
  }
  Layout empty;
  empty.Import(rvtest::ItwHead({}));
  EXPECT_EQ(Rect(Store().GetArtBounds(empty.layer)), "1.00 -1.00 1.00 -1.00");
}

TEST(ItwImport, TextFramesDrawTheirOutlineAndBaselines) {
  Bytes file = rvtest::ItwHead({});
  rvtest::ItwFrame(file, 0, kFrame, 0, 1, true, true, 0);       // plain, both baselines
  rvtest::ItwFrame(file, 0, kFrame, 0, 1, false, false, 20000);  // a bulge beyond 1 counts as none
  rvtest::ItwFrame(file, 0, kFrame, 0, 1, true, false, 4142);    // bulged across: tan(22.5 deg)
  rvtest::ItwFrame(file, 0, kFrame, 0, 0, false, false, -4142);  // bulged, vertical writing
  Layout layout;
  layout.Import(file);
  ASSERT_EQ(layout.code, 0u);
  const std::vector<CRvArt*> groups = layout.Groups();
  ASSERT_EQ(groups.size(), 4u);
  std::vector<std::string> shapes;
  for (CRvArt* group : groups) {
    for (CRvArt* path : Children(group)) shapes.push_back(Store().GetPathColorName(2, path) + " " + Shape(path));
  }
  ASSERT_EQ(shapes.size(), 7u);
  EXPECT_EQ(shapes[0], "Frame B(0.00,20.00 30.00,20.00 30.00,0.00 0.00,0.00) closed");
  EXPECT_EQ(shapes[1], "Vertical BaseLine B(15.00,20.00 15.00,0.00)");
  EXPECT_EQ(shapes[2], "Horizontal BaseLine B(0.00,10.00 30.00,10.00)");
  EXPECT_EQ(shapes[3], "Frame B(0.00,20.00 30.00,20.00 30.00,0.00 0.00,0.00) closed");
  // A quarter-turn bulge on the chord c4-c3 (30 long): radius 15 / sin 45.
  const std::vector<CRvArt*> bulged = Children(Children(groups[2])[0]);
  ASSERT_EQ(bulged.size(), 4u);
  const RVARCPOINT top = Store().GetArcPoint(bulged[0], 0);
  const double radius = 15.0 / std::sin(M_PI / 4);
  EXPECT_NEAR(std::hypot(top.centre.x - 0.0, top.centre.y - 0.0), radius, 1e-3);
  EXPECT_NEAR(std::hypot(top.centre.x - 30.0, top.centre.y - 0.0), radius, 1e-3);
  EXPECT_EQ(Shape(Children(groups[2])[0]).substr(0, 2), "A(");
  EXPECT_EQ(Shape(Children(groups[3])[0]).substr(0, 2), "B(");
  // The vertical baseline of a bulged frame runs through its bounds' middle.
  const RVRECT frame = Store().GetArtBounds(Children(groups[2])[0]);
  EXPECT_EQ(Shape(Children(groups[2])[1]),
            "B(15.00," + Num(frame.top) + " 15.00," + Num(frame.bottom) + ")");
  EXPECT_GT(frame.top - frame.bottom, 20.0);  // the arc bulges beyond the corners
  // The layer's bounds are those of its groups, widened by 1.
  RVRECT all = Store().GetArtBounds(groups[0]);
  for (CRvArt* group : groups) {
    const RVRECT r = Store().GetArtBounds(group);
    all = RVRECT{std::max(all.top, r.top), std::min(all.left, r.left), std::max(all.right, r.right),
                 std::min(all.bottom, r.bottom)};
  }
  EXPECT_EQ(Rect(Store().GetArtBounds(layout.layer)),
            Rect(RVRECT{all.top + 1, all.left - 1, all.right + 1, all.bottom - 1}));
}

TEST(ItwImport, GraphicRecordsFollowTheirVertexChain) {
  Bytes file = rvtest::ItwHead({});
  rvtest::ItwFrame(file, 6, kFrame, 0xFFFF, 0, false, true, 0, 0x00332211);
  rvtest::ItwVertex(file, 1, 0, 0, 0);
  rvtest::ItwVertex(file, 1, 0, 1000, 0);
  rvtest::ItwVertex(file, 2, 1, 1000, 1000, 500, 1000);
  rvtest::ItwVertex(file, 4, 0, 0, 1500);
  rvtest::ItwVertex(file, 4, 0, 0, 500);
  rvtest::ItwVertex(file, 3, 0, 0, 0);
  Layout layout;
  layout.Import(file);
  ASSERT_EQ(layout.code, 0u);
  const std::vector<CRvArt*> paths = Children(layout.Groups()[0]);
  ASSERT_EQ(paths.size(), 2u);
  EXPECT_EQ(Shape(paths[0]), "B(0.00,10.00 30.00,10.00)");
  EXPECT_EQ(Shape(paths[1]), "B(0.00,0.00 10.00,0.00) A(10.00,10.00@5.00,10.00/1) S(0.00,15.00 0.00,5.00 0.00,0.00) closed");
  EXPECT_EQ(Store().GetPathColorName(2, paths[1]), "R=17,G=34,B=51");
  EXPECT_EQ(Rect(Store().GetArtBounds(layout.Groups()[0])), "20.00 0.00 30.00 0.00");
}

rvtest::StrokeFontWriter TestStrokeFont() {
  rvtest::StrokeFontWriter font;
  // 'A': a square contour and a circle.
  font.glyphs.push_back({65, -1, {{1, 1000, 1000}, {1, 4000, 1000}, {1, 4000, 4000}, {1, 1000, 4000},
                                  {3, 1000, 1000}, {2, 2500, 2000, 2500, 2500, 1}, {3, 2500, 2000}}});
  // 'B' ends 50 units from its start, 'C' 51.
  font.glyphs.push_back({66, -1, {{1, 1000, 1000}, {1, 3000, 1000}, {3, 1000, 1050}}});
  font.glyphs.push_back({67, -1, {{1, 1000, 1000}, {1, 3000, 1000}, {3, 1000, 1051}}});
  // 'D' has only a variant 2.
  font.glyphs.push_back({68, 2, {{1, 0, 0}, {3, 5000, 5000}}});
  return font;
}

TEST(ItwImport, StrokeCharactersInTrueAndDistortedCells) {
  Bytes file = rvtest::ItwHead({{1, 0, "Stroke", "USERSTK"}, {2, 0, "Contours", "GYOUSYO"}});
  rvtest::ItwFrame(file, 6, kFrame, 0, 1, false, false, 0);
  rvtest::ItwCharacter(file, 1, kSquareCell, 65, 0, 1000, 1000, 10, 20, 30);  // A, square cell
  rvtest::ItwCharacter(file, 1, kSkewCell, 65, 0, 10, 10);                    // A, distorted, small
  rvtest::ItwCharacter(file, 1, kSkewCell, 65, 0, 1000, 1000);                // A, distorted, large
  rvtest::ItwCharacter(file, 1, kSquareCell, 66, 0, 1000, 1000);              // B
  rvtest::ItwCharacter(file, 1, kSquareCell, 67, 0, 1000, 1000);              // C
  rvtest::ItwCharacter(file, 2, kSquareCell, 65, 0, 1000, 1000);              // A, one compound a contour
  Layout layout;
  layout.Font("USERSTK", TestStrokeFont(), true);
  layout.Font("GYOUSYO", TestStrokeFont(), true);
  layout.Import(file);
  ASSERT_EQ(layout.code, 0u);
  const std::vector<CRvArt*> items = Children(layout.Groups()[0]);
  ASSERT_EQ(items.size(), 1u + 5 + 2);  // the frame, 5 compounds, 2 for the last character
  // In a square cell the arc stays an arc, with its closing point.
  const std::vector<CRvArt*> square = Children(items[1]);
  ASSERT_EQ(square.size(), 2u);
  EXPECT_EQ(Shape(square[0]), "B(2.00,8.00 8.00,8.00 8.00,2.00 2.00,2.00 2.00,8.00) closed");
  EXPECT_EQ(Shape(square[1]), "A(5.00,6.00@5.00,5.00/1 5.00,6.00@5.00,6.00/0) closed");
  EXPECT_EQ(Store().GetPathColorName(1, square[0]), "R=10,G=20,B=30");
  EXPECT_EQ(Store().GetPathAttrFlag(items[1]), 1);
  // In a distorted cell the circle is flattened: 1 + |r phi k| / 2 chords,
  // at most 100, then the contour's closing point.
  const int32_t small = Store().GetPathSegmentCount(Children(Children(items[2])[1])[0]);
  const int32_t large = Store().GetPathSegmentCount(Children(Children(items[3])[1])[0]);
  EXPECT_EQ(small, 1 + int(1 + 500 * 2 * M_PI * 10 / 5000 / 2) + 1);
  EXPECT_EQ(large, 100 + 1 + 1);
  EXPECT_EQ(Store().GetPathClosed(Children(items[4])[0]), 1);  // 50 units apart
  EXPECT_EQ(Store().GetPathClosed(Children(items[5])[0]), 0);  // 51
  EXPECT_EQ(Store().GetPathAttrFlag(items[6]), 255);
  EXPECT_EQ(Children(items[6]).size(), 1u);
  // The frame's group holds the bounds of all characters.
  EXPECT_EQ(Num(Store().GetArtBounds(layout.Groups()[0]).right), "30.00");
}

TEST(ItwImport, MissingCharactersAreCrossedOnlyWithASubNumber) {
  Bytes file = rvtest::ItwHead({{1, 0, "Stroke", "USERSTK"}});
  rvtest::ItwFrame(file, 4, kFrame, 0, 1, false, false, 0);
  rvtest::ItwCharacter(file, 1, kSquareCell, 90, 3, 1000, 1000);  // missing, sub-number 3: cross
  rvtest::ItwCharacter(file, 1, kSquareCell, 90, 0, 1000, 1000);  // missing, sub-number 0: nothing
  rvtest::ItwCharacter(file, 1, kSquareCell, 68, 2, 1000, 1000);  // variant 2 found
  rvtest::ItwCharacter(file, 1, kSquareCell, 69, 0, 1000, 1000);  // only in the plain index
  Layout layout;
  layout.Font("USERSTK", TestStrokeFont(), true);
  rvtest::StrokeFontWriter plain;
  plain.glyphs.push_back({69, 0, {{1, 0, 0}, {3, 5000, 0}}});
  layout.Font("USERSTK", plain, false);
  layout.Import(file);
  EXPECT_EQ(layout.code, 32u);
  const std::vector<CRvArt*> items = Children(layout.Groups()[0]);
  ASSERT_EQ(items.size(), 1u + 2 + 1 + 1);
  EXPECT_EQ(Store().GetPathColorName(2, items[1]) + " " + Shape(items[1]), "Warning B(1.00,9.00 9.00,1.00)");
  EXPECT_EQ(Store().GetPathColorName(2, items[2]) + " " + Shape(items[2]), "Warning B(9.00,9.00 1.00,1.00)");
  EXPECT_EQ(Shape(Children(items[3])[0]), "B(0.00,10.00 10.00,0.00)");
  EXPECT_EQ(Shape(Children(items[4])[0]), "B(0.00,10.00 10.00,10.00)");
}

TEST(StrokeFont, IndexRecordsMatchByCodeAndSubNumber) {
  Bytes wide;
  // code, flags, offset: variant 1 of 100 before a marked variant 5; 200 marked.
  wide.u16(100).zeros(2).i16(1).u32(10).u16(6);
  wide.u16(100).zeros(2).i16(-32768 | 5).u32(20).u16(6);
  wide.u16(200).zeros(2).i16(-1).u32(40).u16(6);
  const rv::ByteCursor index(reinterpret_cast<const uint8_t*>(wide.b.data()), wide.b.size());
  struct Row {
    uint16_t code, subNumber;
    int offset;  // -1: not found
  } rows[] = {
      {100, 0, -1},  // a record with flags >= 0 ends the search
      {100, 1, 10},  // low bits 1
      {100, 5, 20},  // low bits 5
      {100, 7, -1},
      {200, 0, 40},  // negative flags
      {200, 1, 40},  // negative flags serve sub-number 1 too
      {200, 3, -1},
      {300, 0, -1},
  };
  for (const Row& row : rows) {
    const auto entry = rv::FindInWideIndex(index, row.code, row.subNumber);
    EXPECT_EQ(entry ? int(entry->offset) : -1, row.offset) << row.code << "/" << row.subNumber;
  }
  Bytes plain;
  plain.u16(30241 + 2304).u32(8).u16(2);
  const rv::ByteCursor plainIndex(reinterpret_cast<const uint8_t*>(plain.b.data()), plain.b.size());
  EXPECT_TRUE(rv::FindInPlainIndex(plainIndex, 30241));
  EXPECT_FALSE(rv::FindInPlainIndex(plainIndex, 30240));  // below the shifted range
  EXPECT_TRUE(rv::IsScrambledIndex("/fonts/MINCHO.TBW", false));
  EXPECT_FALSE(rv::IsScrambledIndex("/fonts/USER1.TBW", false));
  EXPECT_TRUE(rv::IsScrambledIndex("/fonts/KAMON.TBW", false));
  EXPECT_FALSE(rv::IsScrambledIndex("/fonts/KAMON.TBL", true));
}

TEST(ItwCodes, VerticalFormsAndInstalledFontCodes) {
  struct Row {
    uint16_t code, vertical;
  } vertical[] = {{8481, 8481}, {8482, 11042}, {8559, 11119}, {8560, 11297}, {8574, 11311},
                  {9249, 11312}, {9590, 11333}, {9591, 9591}};
  for (const Row& row : vertical) EXPECT_EQ(rv::VerticalForm(row.code), row.vertical) << row.code;
  struct Code {
    uint16_t code, shiftJis;
  } installed[] = {{65, 65},         {0x2422, 0x82A0}, {0x2121, 0x8140}, {0x7E7E, 0xEFFC}, {0x2020, 0},
                   {30242, 0xF041}, {30304, 0xF080}, {30497, 0xF09F}};
  for (const Code& row : installed) EXPECT_EQ(rv::InstalledFontCode(row.code), row.shiftJis) << row.code;
}

/// An outline of one triangle whose second side is a quadratic run.
class TriangleOutline : public rv::CRvGlyphOutlines {
 public:
  bool Outline(const std::string&, uint16_t, rv::GlyphOutline& out) override {
    const int32_t one = 65536;
    rv::GlyphContour contour;
    contour.start = {1000 * one, 0};
    contour.runs.push_back({false, {{3000 * one, 0}}});
    contour.runs.push_back({true, {{3000 * one, 2000 * one}, {1000 * one + one / 2, 0}}});
    out = {contour};
    return true;
  }
};

TEST(ItwImport, OutlineRunsBecomeAnchorsTurnedForAVerticalFace) {
  Bytes file = rvtest::ItwHead({{1, 1, "Face", ""}, {2, 1, "@Face", ""}});
  rvtest::ItwFrame(file, 2, kFrame, 0, 1, false, false, 0);
  rvtest::ItwCharacter(file, 1, kSquareCell, 0x2422, 0, 1000, 1000);
  rvtest::ItwCharacter(file, 2, kSquareCell, 0x2422, 0, 1000, 1000);
  TriangleOutline outline;
  Store().CreateDocument(0);
  rv::CRvItwFormat format("", "", nullptr, &outline);
  ASSERT_EQ(format.ImportBytes(reinterpret_cast<const uint8_t*>(file.b.data()), file.b.size()), 0u);
  const std::vector<CRvArt*> items = Children(Children(Store().GetLayer(0))[0]);
  ASSERT_EQ(items.size(), 3u);
  // Start, line end, eight anchors of the curve ending on the start again
  // (the fraction dropped), and no extra closing anchor.
  const std::string horizontal = Shape(Children(items[1])[0]);
  EXPECT_EQ(horizontal.substr(0, 22), "B(2.00,1.39 6.00,1.39 ") << horizontal;
  // The fourth anchor of the curve is its middle: (P0 + 2 Q1 + Q2) / 4.
  EXPECT_EQ(Pt(Store().GetBezierPoint(Children(Children(items[1])[0])[0], 5).anchor), "5.00,3.39");
  EXPECT_EQ(horizontal.substr(horizontal.size() - 17), "2.00,1.39) closed") << horizontal;
  EXPECT_EQ(Store().GetPathSegmentCount(Children(Children(items[1])[0])[0]), 10);
  // The vertical face exchanges x and y: (y + 695, x).
  EXPECT_EQ(Shape(Children(items[2])[0]).substr(0, 22), "B(1.39,8.00 1.39,4.00 ");
  EXPECT_EQ(Store().GetPathAttrFlag(items[1]), 1);
  RvGiDeleteAllDocuments();
}

/// True when fontconfig knows the family `name` itself.
bool FamilyInstalled(const char* name) {
  FcPattern* pattern = FcNameParse(reinterpret_cast<const FcChar8*>(name));
  FcConfigSubstitute(nullptr, pattern, FcMatchPattern);
  FcDefaultSubstitute(pattern);
  FcResult result;
  FcPattern* match = FcFontMatch(nullptr, pattern, &result);
  FcChar8* family = nullptr;
  const bool found = match != nullptr && FcPatternGetString(match, FC_FAMILY, 0, &family) == FcResultMatch &&
                     std::string(reinterpret_cast<char*>(family)) == name;
  if (match != nullptr) FcPatternDestroy(match);
  FcPatternDestroy(pattern);
  return found;
}

TEST(ItwImport, InstalledFontCharactersAreClosedContoursInTheirCell) {
  if (!FamilyInstalled("IPAGothic")) GTEST_SKIP() << "no IPAGothic font installed (fonts-ipafont-gothic)";
  Bytes file = rvtest::ItwHead({{1, 1, "IPAGothic", ""}, {2, 1, "@IPAGothic", ""}});
  rvtest::ItwFrame(file, 3, kFrame, 0, 1, false, false, 0);
  rvtest::ItwCharacter(file, 1, kSquareCell, 0x2422, 0, 1000, 1000);  // HIRAGANA A
  rvtest::ItwCharacter(file, 2, kSquareCell, 0x2422, 0, 1000, 1000);
  rvtest::ItwCharacter(file, 1, kSquareCell, 0x4F4F, 0, 1000, 1000);  // KANJI
  Layout layout;
  layout.Import(file);
  ASSERT_EQ(layout.code, 0u);
  const std::vector<CRvArt*> items = Children(layout.Groups()[0]);
  ASSERT_EQ(items.size(), 4u);
  const std::vector<CRvArt*> contours = Children(items[1]);
  EXPECT_GE(contours.size(), 2u);  // HIRAGANA A is drawn in more than one stroke
  for (CRvArt* path : contours) {
    CRvArt* bezier = Children(path)[0];
    const int32_t n = Store().GetPathSegmentCount(bezier);
    EXPECT_EQ(Store().GetPathClosed(path), 1);
    EXPECT_EQ(Pt(Store().GetBezierPoint(bezier, 0).anchor), Pt(Store().GetBezierPoint(bezier, n - 1).anchor));
    const RVRECT b = Store().GetArtBounds(path);
    EXPECT_TRUE(b.left >= -0.5 && b.right <= 10.5 && b.bottom >= -0.5 && b.top <= 10.5) << Rect(b);
  }
  // The cell height is 5000: the glyph fills most of the 10 mm cell.
  const RVRECT all = Store().GetArtBounds(layout.Groups()[0]);
  EXPECT_GT(all.top - all.bottom, 7.0);
  // The vertical face stands upright in the same place.
  const std::vector<CRvArt*> upright = Children(items[2]);
  ASSERT_EQ(upright.size(), contours.size());
  EXPECT_EQ(Rect(Store().GetArtBounds(upright[0])), Rect(Store().GetArtBounds(contours[0])));
  EXPECT_GE(Children(items[3]).size(), 2u);
}

}  // namespace
