// Filing a drawing's paths in a RefMap table: keys, order, marks and media.
#include <gtest/gtest.h>

#include "api_drawing.h"
#include "failure.h"
#include "filing.h"

namespace {

using rvtool::FileBy;
using tooltest::ApiDrawing;

// Two more paths in the layer "Frame", after the square: the lines a and b.
struct Drawing : ApiDrawing {
  Drawing() {
    void* frame = nullptr;
    EXPECT_EQ(RvGiGetLayer(&frame, 0), 0u);
    for (void** path : {&a, &b}) {
      EXPECT_EQ(RvGiCreateArt(4, 5, frame, path), 0u);
      void* bezier = nullptr;
      EXPECT_EQ(RvGiCreateArt(2, 5, *path, &bezier), 0u);
      for (const RVBEZIERPOINT& p : {tooltest::Corner(0, 0), tooltest::Corner(5, 5)})
        EXPECT_EQ(RvGiAddBezierPoint(bezier, &p), 0u);
    }
  }
  void* a = nullptr;
  void* b = nullptr;
};

uint32_t Collect(void* context, void* art) {
  static_cast<std::vector<void*>*>(context)->push_back(art);
  return 0;
}

std::vector<void*> Trace(int16_t map) {
  std::vector<void*> arts;
  EXPECT_EQ(RvGiRefMapTableTrace(map, 2, &arts, &Collect, 1), 0u);
  return arts;
}

void SetStroke(void* path, const char* name) {
  RVCOLOR colour{};
  colour.kind = 1;
  ASSERT_EQ(RvGiSetPathColor(2, path, &colour, name), 0u);
}

TEST(ToolFiling, ByLayerTheTableGivesTheDrawingOrder) {
  Drawing drawing;
  rvtool::RefMapTables tables;
  const auto groups = rvtool::GroupPaths(FileBy::Layer);
  ASSERT_EQ(groups.size(), 2u);
  EXPECT_EQ(groups[0].key, "Frame");
  EXPECT_EQ(groups[0].paths, (std::vector<void*>{drawing.square, drawing.a, drawing.b}));
  EXPECT_EQ(groups[1].key, "Arcs");
  EXPECT_EQ(groups[1].paths, (std::vector<void*>{drawing.arc}));

  ASSERT_EQ(RvGiSetPathAttrFlag(drawing.a, 4), 0u);
  const int16_t map = rvtool::FileInRefMap(groups, FileBy::Layer);
  EXPECT_EQ(Trace(map), (std::vector<void*>{drawing.square, drawing.a, drawing.b, drawing.arc}));
  EXPECT_EQ(RvGiGetRefMapArtCount(map), 2);
  uint8_t info = 0;
  ASSERT_EQ(RvGiFindRefMapInfo(map, "Frame", &info), 0u);
  EXPECT_EQ(info, 2);
  // Every path counts for the job's bounds; flags already set stay.
  uint8_t flags = 0;
  ASSERT_EQ(RvGiGetPathAttrFlag(drawing.square, &flags), 0u);
  EXPECT_EQ(flags, 2);
  ASSERT_EQ(RvGiGetPathAttrFlag(drawing.a, &flags), 0u);
  EXPECT_EQ(flags, 6);
}

TEST(ToolFiling, ByColourKeysAreStrokeColourNames) {
  Drawing drawing;
  rvtool::RefMapTables tables;
  SetStroke(drawing.a, "Red");
  SetStroke(drawing.arc, "Red");
  SetStroke(drawing.b, "Blue");
  const auto groups = rvtool::GroupPaths(FileBy::Colour);
  ASSERT_EQ(groups.size(), 3u);
  EXPECT_EQ(groups[0].key, "None");  // the square has no stroke colour
  EXPECT_EQ(groups[1].key, "Red");
  EXPECT_EQ(groups[1].paths, (std::vector<void*>{drawing.a, drawing.arc}));
  EXPECT_EQ(groups[2].key, "Blue");
  const int16_t map = rvtool::FileInRefMap(groups, FileBy::Colour);
  // Keys in order of their first path, not in the table's key order.
  EXPECT_EQ(Trace(map), (std::vector<void*>{drawing.square, drawing.a, drawing.arc, drawing.b}));
}

TEST(ToolFiling, TablesGoWithTheirOwner) {
  Drawing drawing;
  int16_t map = -1;
  {
    rvtool::RefMapTables tables;
    map = rvtool::FileInRefMap(rvtool::GroupPaths(FileBy::Layer), FileBy::Layer);
    EXPECT_EQ(map, 0);
  }
  // A new table after the owner went is the first again.
  rvtool::RefMapTables tables;
  EXPECT_EQ(rvtool::FileInRefMap(rvtool::GroupPaths(FileBy::Layer), FileBy::Layer), 0);
}

TEST(ToolFiling, MediaGoesIntoThePlotInfoByKeyOrForAll) {
  Drawing drawing;
  const auto groups = rvtool::GroupPaths(FileBy::Layer);
  EXPECT_EQ(rvtool::AssignMedia(groups, {{"Arcs", "Film"}}, "Vinyl"), 4);
  char text[256] = {};
  int32_t value = -1;
  ASSERT_EQ(RvGiGetPathPlotInfo(drawing.b, &value, text), 0u);
  EXPECT_STREQ(text, "Vinyl");
  ASSERT_EQ(RvGiGetPathPlotInfo(drawing.arc, &value, text), 0u);
  EXPECT_STREQ(text, "Film");

  // Without a default only the named keys get one.
  Drawing other;
  const auto otherGroups = rvtool::GroupPaths(FileBy::Layer);
  EXPECT_EQ(rvtool::AssignMedia(otherGroups, {{"Arcs", "Film"}}, ""), 1);
  EXPECT_EQ(RvGiGetPathPlotInfo(other.square, &value, text), 0x06001001u);

  try {
    rvtool::AssignMedia(otherGroups, {{"Cuts", "Film"}}, "");
    FAIL() << "no failure";
  } catch (const rvtool::Failure& failure) {
    EXPECT_EQ(failure.status(), rvtool::kUsageStatus);
    EXPECT_NE(std::string(failure.what()).find("'Frame', 'Arcs'"), std::string::npos) << failure.what();
  }
}

}  // namespace
