// CMX import: the container checks, the indexes, the command walk and the
// drawing it makes, against files written by tests/support/cmx_writer.h.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "cmx_writer.h"
#include "drawing_text.h"
#include "formats/cmx_container.h"
#include "model/data_access.h"
#include "test_support.h"

namespace {

using namespace cmxtest;
using rv::CRvArt;
using rv::CRvDataAccess;

// A file box from (1000, 2000) to (101000, 82000): with 1/254000 inch a
// unit, (1000 + 10000 k, 2000 + 10000 m) is (k, m) millimetres.
File Frame() {
  File f;
  f.left = 1000, f.bottom = 2000, f.right = 101000, f.top = 82000;
  return f;
}
int32_t X(double mm) { return 1000 + int32_t(mm * 10000); }
int32_t Y(double mm) { return 2000 + int32_t(mm * 10000); }
std::string AnyBox() { return Box(X(0), Y(8), X(10), Y(0)); }

File OneLayer(const std::string& commands, const std::string& name = "L") {
  File f = Frame();
  Layer layer{name};
  layer.Add(BeginLayer(name)).Add(commands).Add(EndLayer());
  f.pages.push_back(Page{1, {layer}});
  return f;
}

std::string Pt(const RVPOINT& p) { return rvtest::PointText(p.x, p.y); }

// The drawing of the active document, layers from the front: "layer NAME"
// and the tree below it (drawing_text.h).
std::string Drawing() {
  CRvDataAccess& store = CRvDataAccess::Instance();
  std::string out;
  for (int16_t i = 0; i < store.GetLayerCount(); ++i)
    out += "layer " + store.GetLayerName(store.GetLayer(i)) + "\n" + rvtest::TreeText(store.GetLayer(i));
  return out;
}

// Imports `bytes` into a new document; the drawing is left active. With
// RV_CMX_SEED_DIR set, each file also goes there (the fuzz target's seeds).
uint32_t Import(const std::string& bytes, const char* text = nullptr) {
  if (const char* seeds = std::getenv("RV_CMX_SEED_DIR")) {
    static int serial = 0;
    rvtest::WriteFile(std::string(seeds) + "/test" + std::to_string(++serial) + ".cmx", bytes);
  }
  CRvDataAccess::Instance().CreateDocument(0);
  return rv::ImportCmxBytes(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), text);
}

std::string Patched(std::string bytes, std::size_t at, const std::string& with) {
  return bytes.replace(at, with.size(), with);
}

TEST(CmxContainer, HeaderChecksAndIndexFailures) {
  const std::string good = OneLayer(Rectangle(X(5), Y(5), 20000, 20000)).Build();
  const auto ixlr = good.find("ixlr");
  struct Case {
    const char* what;
    std::string bytes;
    uint32_t code;
  };
  File noMaster = OneLayer("");
  noMaster.pageIndexInMaster = false;
  File page2 = OneLayer(Rectangle(X(5), Y(5), 10, 10));
  page2.pages[0].number = 2;
  File version3 = OneLayer(Rectangle(X(5), Y(5), 10, 10));
  version3.version = "3";  // no record sizes in the indexes
  const Case cases[] = {
      {"one byte short of the header", good.substr(0, 139), 0x01000301},
      {"not RIFF", Patched(good, 0, "RIFX"), 0x07001201},
      {"not CMX1", Patched(good, 8, "CMX2"), 0x07001201},
      {"version 1: 16-bit coordinates", Patched(good, 74, "1"), 0x07001201},
      {"any other version passes", version3.Build(), 0},
      {"master index offset at a wrong chunk", Patched(good, 104, std::string("\x8C\0\0\0", 4)), 0x07001401},
      {"master index offset beyond the file", Patched(good, 104, std::string("\0\0\0\x7F", 4)), 0x01000501},
      {"a layer index with a wrong identifier", Patched(good, ixlr, "ixlx"), 0x07001401},
      {"no page index in the master", noMaster.Build(), 0x07001701},
      {"a page index at offset 0", Patched(good, good.find("ixmr") + 22, std::string(4, '\0')), 0x07001701},
      {"only a page 2", page2.Build(), 0x07001701},
      {"more layers than the layer index holds", Patched(good, ixlr + 8, "\xFF\x7F"), 0x01000301},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Import(c.bytes), c.code) << c.what;
    // The document's box comes from the header and stays after a failure.
    if (c.code != 0x01000301 && c.code != 0x07001201) {
      const RVRECT box = CRvDataAccess::Instance().GetDocBoundBox();
      EXPECT_EQ(Pt({box.right, box.top}), "10,8") << c.what;
    }
  }
}

TEST(CmxContainer, PagesAndTheDocumentBox) {
  // No layers on page 1: a box and no arts. The box keeps its sign when the
  // top lies below the bottom.
  File empty = Frame();
  std::swap(empty.top, empty.bottom);
  empty.pages.push_back(Page{1, {}});
  ASSERT_EQ(Import(empty.Build()), 0u);
  const RVRECT box = CRvDataAccess::Instance().GetDocBoundBox();
  EXPECT_EQ(Pt({box.left, box.top}) + " " + Pt({box.right, box.bottom}), "0,-8 10,0");
  EXPECT_EQ(Drawing(), "");

  // Two pages numbered 1: the first page's layers are read; a page 2 never.
  File two = OneLayer(Rectangle(X(1), Y(1), 0, 0), "first");
  two.pages.push_back(OneLayer(Rectangle(X(2), Y(2), 0, 0), "second").pages[0]);
  two.pages.push_back(OneLayer(Rectangle(X(3), Y(3), 0, 0), "third").pages[0]);
  two.pages[2].number = 2;
  ASSERT_EQ(Import(two.Build()), 0u);
  EXPECT_EQ(Drawing(), "layer first\npath closed B(1,1 1,1 1,1 1,1)\n");

  // The text has no effect on the drawing.
  const std::string bytes = OneLayer(Rectangle(X(5), Y(4), 20000, 10000)).Build();
  ASSERT_EQ(Import(bytes, nullptr), 0u);
  const std::string withoutText = Drawing();
  ASSERT_EQ(Import(bytes, "abc"), 0u);
  EXPECT_EQ(Drawing(), withoutText);
}

TEST(CmxDrawing, PolyCurvesRectanglesAndTheirOrder) {
  struct Case {
    const char* what;
    std::string commands;
    std::string drawing;  // below "layer L"
  };
  const Case cases[] = {
      {"closed move and two lines: three anchors, handles on them",
       PolyCurve({{X(1), Y(1), kClosedMove}, {X(3), Y(1), kLine}, {X(3), Y(2), kLine}}, AnyBox()),
       "path closed B(1,1 3,1 3,2)\n"},
      {"move, line, move, line: a compound, the second path first",
       PolyCurve({{X(1), Y(1), kMove}, {X(2), Y(1), kLine}, {X(5), Y(5), kMove}, {X(6), Y(5), kLine}}, AnyBox()),
       "compound\n  path B(5,5 6,5)\n  path B(1,1 2,1)\n"},
      {"two control nodes and a curve: the handles of both anchors",
       PolyCurve({{X(1), Y(1), kMove}, {X(2), Y(3), kControl}, {X(4), Y(3), kControl}, {X(5), Y(1), kCurve}},
                 AnyBox()),
       "path B(1,1{1,1;2,3} 5,1{4,3;5,1})\n"},
      {"a curve between lines takes the anchor before it as its start",
       PolyCurve({{X(0), Y(0), kMove}, {X(1), Y(0), kLine}, {X(1), Y(1), kControl}, {X(2), Y(1), kControl},
                  {X(2), Y(0), kCurve}, {X(3), Y(0), kLine}},
                 AnyBox()),
       "path B(0,0 1,0{1,0;1,1} 2,0{2,1;2,0} 3,0)\n"},
      {"move, move, line: one path from the second move",
       PolyCurve({{X(1), Y(1), kMove}, {X(2), Y(2), kClosedMove}, {X(3), Y(2), kLine}}, AnyBox()),
       "path closed B(2,2 3,2)\n"},
      {"a lone move makes nothing", PolyCurve({{X(1), Y(1), kMove}}, AnyBox()), ""},
      {"odd width 5 at cx 10: x 8 and 12 before the factor",
       Rectangle(10 + 1000, Y(1), 5, 20000), "path closed B(0.0008,2 0.0012,2 0.0012,0 0.0008,0)\n"},
      {"a long poly-curve ends its points where they end",
       PolyCurve({{X(1), Y(1), kMove}, {X(2), Y(1), kLine}}, AnyBox(), true), "path B(1,1 2,1)\n"},
      {"groups nest; later commands come first in their parent",
       BeginGroup(AnyBox()) + Rectangle(X(1), Y(1), 0, 0) + BeginGroup(AnyBox()) + Rectangle(X(2), Y(2), 0, 0) +
           EndGroup() + EndGroup() + Rectangle(X(3), Y(3), 0, 0),
       "path closed B(3,3 3,3 3,3 3,3)\ngroup\n  group\n    path closed B(2,2 2,2 2,2 2,2)\n"
       "  path closed B(1,1 1,1 1,1 1,1)\n"},
      {"a command of size 4 and code 9 is passed over",
       Command(9, "") + Rectangle(X(1), Y(1), 0, 0), "path closed B(1,1 1,1 1,1 1,1)\n"},
      {"end layer inside a group ends the group; the layer walk goes on",
       BeginGroup(AnyBox()) + EndLayer() + Rectangle(X(4), Y(4), 0, 0),
       "path closed B(4,4 4,4 4,4 4,4)\ngroup\n"},
      {"a code beyond 111 ends the walk", Command(200, "") + Rectangle(X(1), Y(1), 0, 0), ""},
  };
  for (const Case& c : cases) {
    ASSERT_EQ(Import(OneLayer(c.commands).Build()), 0u) << c.what;
    EXPECT_EQ(Drawing(), "layer L\n" + c.drawing) << c.what;
  }
}

TEST(CmxDrawing, BoundingBoxesGoToTheArtAndItsChildren) {
  const std::string box = Box(X(1), Y(7), X(9), Y(2));
  const std::string commands =
      PolyCurve({{X(1), Y(2), kMove}, {X(2), Y(2), kLine}, {X(5), Y(5), kMove}, {X(6), Y(5), kLine}}, box);
  ASSERT_EQ(Import(OneLayer(commands + BeginGroup(box) + EndGroup()).Build()), 0u);
  CRvDataAccess& store = CRvDataAccess::Instance();
  CRvArt* group = store.GetArtFirstChild(store.GetLayer(0));
  CRvArt* compound = store.GetArtSibling(group);
  CRvArt* path = store.GetArtFirstChild(compound);
  for (CRvArt* art : {group, compound, path, store.GetArtSibling(path)}) {
    const RVRECT r = store.GetArtBounds(art);
    EXPECT_EQ(Pt({r.left, r.top}) + " " + Pt({r.right, r.bottom}), "1,7 9,2");
  }
  // A subpath's own Bezier keeps the bounds of its creation.
  const RVRECT inner = store.GetArtBounds(store.GetArtFirstChild(path));
  EXPECT_EQ(Pt({inner.right, inner.top}), "0,0");
}

TEST(CmxDrawing, LayersByName) {
  // A name that the document has adds to that layer; two layers of one name
  // in the index fill the same layer; a new name makes a layer at the front.
  CRvDataAccess& store = CRvDataAccess::Instance();
  File f = OneLayer(Rectangle(X(1), Y(1), 0, 0), "same");
  f.pages[0].layers.push_back(OneLayer(Rectangle(X(2), Y(2), 0, 0), "same").pages[0].layers[0]);
  f.pages[0].layers.push_back(OneLayer(Rectangle(X(3), Y(3), 0, 0), "new").pages[0].layers[0]);
  store.CreateDocument(0);
  store.SetLayerName(store.CreateLayer(0, nullptr), "same");
  store.SetLayerName(store.CreateLayer(0, nullptr), "same");  // the front one of two
  store.SetLayerName(store.CreateLayer(0, nullptr), "other");
  const std::string bytes = f.Build();
  ASSERT_EQ(rv::ImportCmxBytes(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), nullptr), 0u);
  EXPECT_EQ(Drawing(),
            "layer new\npath closed B(3,3 3,3 3,3 3,3)\n"
            "layer other\nlayer same\nlayer same\n"
            "path closed B(2,2 2,2 2,2 2,2)\npath closed B(1,1 1,1 1,1 1,1)\n");
}

TEST(CmxDrawing, HostileStreamsFailWithTheirCodesAndKeepWhatWasMade) {
  const std::string before = Rectangle(X(1), Y(1), 0, 0);
  const std::string made = "layer L\npath closed B(1,1 1,1 1,1 1,1)\n";
  // A stream that jumps back to its first command, or to the rectangle.
  Layer back{"L"};
  back.Add(BeginLayer("L")).Add(before).AddJump(0);
  Layer toRectangle{"L"};
  toRectangle.Add(BeginLayer("L")).Add(before).AddJump(BeginLayer("L").size());
  // A jump at the end of a stream goes on at its target.
  Layer onward{"L"};
  onward.Add(BeginLayer("L")).AddJump(BeginLayer("L").size() + 12 + 4).Add(Command(200, "")).Add(before).Add(
      EndLayer());
  std::string deep;
  for (int i = 0; i < 257; ++i) deep += BeginGroup(AnyBox());
  struct Case {
    const char* what;
    std::string bytes;
    uint32_t code;
    std::string drawing;
  };
  auto file = [](const Layer& layer) {
    File f = Frame();
    f.pages.push_back(Page{1, {layer}});
    return f.Build();
  };
  const std::string name112(112, 'n');
  const Case cases[] = {
      {"a jump back to the layer's start", file(back), 0x07002A01, made},
      {"a jump back into the stream", file(toRectangle), 0x07002A01, made},
      {"a jump that carries on", file(onward), 0, made},
      {"a command of size 0 reads itself again", OneLayer(before + Command(9, "").replace(0, 2, "\0\0", 2)).Build(),
       0x07002A01, made},
      {"a long form whose size leads back", OneLayer(before + Bytes().i16(-1).i32(-int32_t(before.size())).i16(9).str()).Build(),
       0x07002A01, made},
      {"a size that leads before the file", OneLayer(before + Bytes().i16(-1).i32(-100000).i16(9).str()).Build(),
       0x01000501, made},
      {"a layer name of 112 bytes", OneLayer(before, name112).Build(), 0, "layer " + name112 + "\n" + made.substr(8)},
      {"a layer name of 113 bytes", OneLayer(before, name112 + "n").Build(), 0x07002801, ""},
      {"a line node before any move",
       OneLayer(before + PolyCurve({{X(1), Y(1), kLine}, {X(2), Y(1), kMove}}, AnyBox())).Build(), 0x07002901, made},
      {"a curve node without two points before it",
       OneLayer(before + PolyCurve({{X(1), Y(1), kMove}, {X(2), Y(1), kCurve}}, AnyBox())).Build(), 0x07002901, made},
      {"257 nested groups", OneLayer(before + deep).Build(), 0x07002B01, ""},
      {"points that the file can't hold",
       OneLayer(before + Command(67, Tag(2, Bytes().i16(32767).str()))).Build(), 0x01000301, made},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Import(c.bytes), c.code) << c.what;
    if (!c.drawing.empty()) {
      EXPECT_EQ(Drawing(), c.drawing) << c.what;
    }
  }
}

std::size_t OpenFiles() {
  std::size_t n = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) ++n;
  return n;
}

TEST(CmxImport, ExportedCallReadsTheFileAndKeepsWhatWasReadOnFailure) {
  rvtest::TempDir dir;
  File f = OneLayer(Rectangle(X(1), Y(1), 0, 0));
  f.pages[0].layers.push_back(f.pages[0].layers[0]);
  std::string bytes = f.Build();
  ASSERT_TRUE(rvtest::WriteFile(dir.file("a.cmx"), bytes));
  int16_t index = -1;
  ASSERT_EQ(RvImCMXToRIF(dir.file("a.cmx").c_str(), 0, &index, nullptr), 0u);
  EXPECT_EQ(index, CRvDataAccess::Instance().GetActiveDocumentIndex());
  const std::string one = "layer L\npath closed B(1,1 1,1 1,1 1,1)\n";
  EXPECT_EQ(Drawing(), "layer L\n" + one.substr(8) + one.substr(8));

  // The second layer starts 3 bytes before the end: its command head runs
  // past it. The first layer stays, and the file is closed once.
  const std::size_t second = bytes.find("ixlr") + 14 + 13;
  bytes.replace(second, 4, Bytes().u32(uint32_t(bytes.size() - 3)).str());
  ASSERT_TRUE(rvtest::WriteFile(dir.file("cut.cmx"), bytes));
  const std::size_t open = OpenFiles();
  EXPECT_EQ(RvImCMXToRIF(dir.file("cut.cmx").c_str(), 0, &index, "x"), 0x01000301u);
  EXPECT_EQ(OpenFiles(), open);
  EXPECT_EQ(Drawing(), one);
  // Into the same document again: the layer of the name takes the arts.
  EXPECT_EQ(RvImCMXToRIF(dir.file("a.cmx").c_str(), 1, &index, nullptr), 0u);
  EXPECT_EQ(Drawing(), one + one.substr(8) + one.substr(8));
  EXPECT_EQ(RvImCMXToRIF(dir.file("missing.cmx").c_str(), 0, &index, nullptr), 0x01000201u);
  EXPECT_EQ(Drawing(), "");  // the new document stays, empty and active
}

}  // namespace
