// Regions, mesh lines and mesh cells of the hatching order.
#include <gtest/gtest.h>

#include <random>

#include "generate/hatch_mesh.h"
#include "generate/hatch_order.h"
#include "hatch_test_util.h"
#include "model/data_access.h"

using hatchtest::Box;
using hatchtest::Line;
using hatchtest::Work;

namespace {

std::string Boxes(const std::vector<RVRECT>& boxes) {
  std::string out;
  char buffer[128];
  for (const RVRECT& b : boxes) {
    std::snprintf(buffer, sizeof buffer, "[%g %g %g %g] ", b.left, b.bottom, b.right, b.top);
    out += buffer;
  }
  return out;
}

std::string Xs(const std::vector<RVHATCHLINE>& lines) {
  std::string out;
  for (const RVHATCHLINE& l : lines) out += std::to_string(l.firstMark) + ":" + std::to_string(l.x1) + " ";
  return out;
}

std::vector<RVPOINT> Square(double left, double bottom, double side) {
  return {{left, bottom}, {left + side, bottom}, {left + side, bottom + side}, {left, bottom + side}, {left, bottom}};
}

}  // namespace

TEST(HatchRegions, MergeWithinTheMarginsInOnePass) {
  struct Case {
    std::vector<RVRECT> boxes;
    double margin;
    const char* merged;
  } cases[] = {
      {{Box(0, 0, 10, 10), Box(11, 0, 21, 10)}, 0.0, "[0 0 10 10] [11 0 21 10] "},  // 1 mm apart
      {{Box(0, 0, 10, 10), Box(11, 0, 21, 10)}, 2.0, "[0 0 21 10] "},               // within the margin
      {{Box(2, 2, 5, 5), Box(0, 0, 10, 10)}, 0.0, "[0 0 10 10] "},                  // inner first
      {{Box(0, 0, 10, 10), Box(2, 2, 5, 5)}, 0.0, "[0 0 10 10] "},                  // inner second
      {{Box(0, 0, 10, 10), Box(0, 12, 10, 20)}, 1.0, "[0 0 10 10] [0 12 10 20] "},  // 2 mm above
  };
  for (const Case& c : cases) {
    rv::HatchWork work = Work(Box(0, 0, 1, 1));
    work.info.boxMarginX = work.info.boxMarginY = c.margin;
    work.regionBoxes = c.boxes;
    rv::MergeRegions(work);
    EXPECT_EQ(Boxes(work.regionBoxes), c.merged);
  }
  // The nearest box by its corners, passing over zero boxes.
  EXPECT_EQ(rv::NearestBox({0, 0}, {RVRECT{0, 0, 0, 0}, Box(10, 0, 20, 10), Box(0, 20, 10, 30)}), 1);
  EXPECT_EQ(rv::NearestBox({0, 25}, {Box(10, 0, 20, 10), Box(0, 20, 10, 30)}), 1);
  EXPECT_EQ(rv::NearestBox({5, 15}, {Box(0, 20, 10, 30), Box(0, 0, 10, 10)}), 0);  // a tie keeps the first
  EXPECT_EQ(rv::NearestBox({0, 0}, {RVRECT{0, 0, 0, 0}}), -1);
}

TEST(HatchMesh, CellsWalkTheBoxAsASerpentineFromTheNearestCorner) {
  struct Case {
    double width, height;
    RVPOINT head;
    int16_t rule;
    const char* cells;
  } cases[] = {
      // no grid: one cell, the box widened by 1 on the left and right
      {0, 0, {0, 0}, rv::kRuleMeshArea, "[-1 0 11 10] "},
      // head at the right: the first row right to left, the second back
      {5, 5, {20, 0}, rv::kRuleMeshArea,
       "[6 0 11 5] [1 0 6 5] [-4 0 1 5] [-4 5 1 10] [1 5 6 10] [6 5 11 10] "
       "[6 10 11 15] [1 10 6 15] [-4 10 1 15] "},
      // head at the top left: rows downward
      {0, 6, {0, 11}, rv::kRuleMeshArea, "[-1 4 11 10] [-1 -2 11 4] "},
      // rule 5: two columns of half the widened box
      {0, 0, {0, 0}, rv::kRuleMeshAndBoundingBox, "[-1 0 5 10] [5 0 11 10] "},
  };
  for (const Case& c : cases) {
    rv::HatchWork work = Work(Box(0, 0, 10, 10));
    work.info.meshWidth = c.width;
    work.info.meshHeight = c.height;
    rv::BuildMesh(work, Box(0, 0, 10, 10), c.head, c.rule);
    EXPECT_EQ(Boxes(work.meshCells), c.cells) << c.rule << " " << c.head.x;
  }
  // A rectangle's sweep leaves a line at each side; rule 6 then has one
  // cell, from the widened box's near side to the far line.
  rv::HatchWork work = Work(Box(0, 0, 10, 10));
  work.regionBoxes = {Box(0, 0, 10, 10)};
  rv::SweepPolyline(work, Square(0, 0, 10), 0, Box(0, 0, 10, 10));
  EXPECT_EQ(Xs(work.meshLines), "0:0.000000 0:10.000000 ");
  rv::BuildMesh(work, Box(0, 0, 10, 10), {0, 0}, rv::kRuleTangentAndBoundingBox);
  EXPECT_EQ(Boxes(work.meshCells), "[-1 0 10 10] ");
  rv::BuildMesh(work, Box(0, 0, 10, 10), {12, 0}, rv::kRuleTangentAndBoundingBox);
  EXPECT_EQ(Boxes(work.meshCells), "[0 0 11 10] ");
}

TEST(HatchMesh, FastSweepAndCellSearchAgreeWithThePlainOnes) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> coordinate(0.0, 40.0);
  for (int round = 0; round < 3; ++round) {
    std::vector<RVPOINT> polyline;
    for (int k = 0; k < 60; ++k) polyline.push_back({coordinate(random), coordinate(random)});
    polyline.push_back(polyline.front());
    rv::HatchWork fast = Work(Box(0, 0, 40, 40)), plain = fast;
    for (uint16_t g = 0; g < 2; ++g) {  // two regions sweeping into one list
      rv::SweepPolyline(fast, polyline, g, Box(g * 5.0, 0, 40, 40));
      rv::SweepPolylinePlain(plain, polyline, g, Box(g * 5.0, 0, 40, 40));
    }
    EXPECT_EQ(Xs(fast.meshLines), Xs(plain.meshLines));
    EXPECT_GT(fast.meshLines.size(), 20u);
  }
  // The sweep jumps between the changes of its count and lands on the very
  // x that step-by-step addition reaches: across zero, through the binade
  // where adding the step rounds to even, and far from the origin.
  for (double left : {-30.0, -0.5, 0.0156, 65530.0}) {
    std::uniform_real_distribution<double> near(left, left + 40.0);
    std::vector<RVPOINT> polyline;
    for (int k = 0; k < 30; ++k) polyline.push_back({near(random), near(random)});
    polyline.push_back(polyline.front());
    rv::HatchWork fast = Work(Box(left, 0, left + 40.0, 40)), plain = fast;
    rv::SweepPolyline(fast, polyline, 0, Box(left, 0, left + 40.0, 40));
    rv::SweepPolylinePlain(plain, polyline, 0, Box(left, 0, left + 40.0, 40));
    ASSERT_EQ(fast.meshLines.size(), plain.meshLines.size()) << left;
    for (std::size_t i = 0; i < fast.meshLines.size(); ++i) {
      EXPECT_EQ(fast.meshLines[i].x1, plain.meshLines[i].x1) << left << " line " << i;
    }
  }

  rv::HatchWork work = Work(Box(0, 0, 100, 60));
  work.info.meshWidth = 7;
  work.info.meshHeight = 3;
  rv::BuildMesh(work, Box(0, 0, 100, 60), {100, 60}, rv::kRuleMeshArea);
  std::vector<RVHATCHLINE> lines = hatchtest::RandomLines(2000, 100.0, 3);
  lines.push_back(Line(0, 0, 0));      // empty: removed
  lines.push_back(Line(1, 1, 2));      // a mark already set stays
  lines.back().firstMark = 9;
  lines.push_back(Line(500, 1, 600));  // outside every cell: stays unset
  rv::AssignMesh(work, lines);
  for (std::size_t i = 0; i + 3 < lines.size(); ++i) {
    const int32_t cell = rv::FirstHoldingBoxPlain(lines[i], work.meshCells);
    EXPECT_EQ(lines[i].firstMark, cell < 0 ? rv::kMarkUnset : uint16_t(cell)) << i;
  }
  EXPECT_EQ(lines[lines.size() - 3].firstMark, rv::kMarkRemoved);
  EXPECT_EQ(lines[lines.size() - 2].firstMark, 9);
  EXPECT_EQ(lines[lines.size() - 1].firstMark, rv::kMarkUnset);
}

TEST(HatchRegions, CollectAndSweepTheCountedShapesOfTheOffsetLayer) {
  rv::CRvDataAccess& store = rv::CRvDataAccess::Instance();
  store.CreateDocument(0);
  rv::CRvArt* layer = store.CreateLayer(0, nullptr);
  store.SetLayerName(layer, rv::kHatchingOffsetLayer);
  struct Shape {
    double left;
    uint8_t flags;
  } shapes[] = {{0, 2}, {20, 2}, {40, 2 | 16}, {60, 0}};  // the last two don't count
  for (const Shape& s : shapes) {
    rv::CRvArt* path = store.CreateArt(rv::kArtPath, 5, layer);
    rv::CRvArt* bezier = store.CreateArt(rv::kArtBezier, 5, path);
    for (const RVPOINT& p : Square(s.left, 0, 10)) store.AddBezierPoint(bezier, RVBEZIERPOINT{p, p, p, 0});
    store.SetPathAttrFlag(path, s.flags);
    store.SetBoundingBox(path, Box(s.left, 0, s.left + 10, 10));
  }
  rv::HatchWork work = Work(Box(0, 0, 30, 10));
  rv::CollectRegions(work);
  rv::MergeRegions(work);
  EXPECT_EQ(Boxes(work.regionBoxes), "[0 0 10 10] [20 0 30 10] ");
  rv::FindMeshLines(work);
  EXPECT_EQ(Xs(work.meshLines), "0:0.000000 0:10.000000 1:20.000000 1:30.000000 ");
  store.DeleteActiveDocument();
}
