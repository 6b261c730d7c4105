// Contour: echoes a shortened step apart, nested, innermost first; corner
// lines of an L; refused runs.
#include <algorithm>
#include <cmath>
#include <limits>

#include "generate_fixture.h"

namespace rvtest {
namespace {

class Contouring : public GenerateTest {};

RVRECT Bounds(const Polyline& line) {
  RVRECT r{-1e300, 1e300, -1e300, 1e300};
  for (const RVPOINT& p : line) {
    r.top = std::max(r.top, p.y), r.left = std::min(r.left, p.x);
    r.right = std::max(r.right, p.x), r.bottom = std::min(r.bottom, p.y);
  }
  return r;
}

TEST_F(Contouring, ASquareEchoesInwardByShortenedStepsInnermostFirst) {
  AddShape(Box(0, 0, 100, 100));
  m_contour.offset = -10;  // steps of 9.9: echoes at 9.9 ... 49.5, the sixth would pass the middle
  ASSERT_EQ(Contour(), 0u);
  for (int level = 1; level <= 5; ++level) {
    const auto echo = Paths(("TempContourLayer" + std::to_string(level)).c_str());
    ASSERT_EQ(echo.size(), 1u) << level;
    EXPECT_NEAR(Bounds(echo[0]).left, 9.9 * level, 1e-9) << level;
    EXPECT_NEAR(Bounds(echo[0]).top, 100 - 9.9 * level, 1e-9) << level;
  }
  EXPECT_EQ(Layer("TempContourLayer6"), nullptr);
  const auto copies = Paths("Rivlen_ContourPathLayer");
  ASSERT_EQ(copies.size(), 5u);
  for (std::size_t i = 0; i + 1 < copies.size(); ++i) {
    // Innermost first; each echo lies inside the next one out, never on it.
    EXPECT_NEAR(Bounds(copies[i + 1]).left + 9.9, Bounds(copies[i]).left, 1e-9);
    for (const RVPOINT& p : copies[i]) EXPECT_TRUE(Inside(copies[i + 1], p, -1.0)) << i;
  }
  EXPECT_EQ(RvGiGetRefMapArtCount(m_map), 5);  // the echoes; the copies aren't filed
}

TEST_F(Contouring, ASmallStepStaysAndAHoleGivesACompoundSmallestFirst) {
  Polyline hole = Box(0.8, 0.8, 1.2, 1.2);
  std::reverse(hole.begin(), hole.end());  // contour takes the orientation as the host gives it
  AddCompound({Box(0, 0, 2, 2), hole});
  m_contour.offset = -0.05;  // not shortened
  ASSERT_EQ(Contour(), 0u);
  const auto echo = Paths("TempContourLayer1");
  ASSERT_EQ(echo.size(), 2u);
  const auto layer = Children(Layer("Rivlen_ContourPathLayer"));
  ASSERT_FALSE(layer.empty());
  ASSERT_EQ(Type(layer.back()), 3);  // the outermost echo comes last
  const auto paths = Children(layer.back());
  ASSERT_EQ(paths.size(), 2u);
  EXPECT_NEAR(Bounds(Anchors(paths[0])).left, 0.75, 1e-9);  // the grown hole first
  EXPECT_NEAR(Bounds(Anchors(paths[1])).left, 0.05, 1e-9);
}

TEST_F(Contouring, AnLGetsOneLineFromEachDeepCornerOutToTheFirstEcho) {
  AddShape({{0, 0}, {100, 0}, {100, 40}, {40, 40}, {40, 100}, {0, 100}});
  m_contour.offset = -5, m_contour.cornerLines = 1;  // steps of 4.9; four echoes in arms 40 wide
  ASSERT_EQ(Contour(), 0u);
  ASSERT_NE(Layer("TempContourLayer4"), nullptr);
  ASSERT_EQ(Layer("TempContourLayer5"), nullptr);
  const Polyline first = Paths("TempContourLayer1")[0], deepest = Paths("TempContourLayer4")[0];
  auto isCornerOf = [](const Polyline& echo, const RVPOINT& p) {
    return std::any_of(echo.begin(), echo.end(),
                       [&](const RVPOINT& q) { return std::hypot(q.x - p.x, q.y - p.y) < 1e-6; });
  };
  std::vector<Polyline> lines;
  for (const Polyline& path : Paths("Rivlen_ContourPathLayer")) {
    if (path.size() == 2) lines.push_back(path);
  }
  // Five right-angled corners; the inner corner is cut square and isn't sharp.
  ASSERT_EQ(lines.size(), 5u);
  for (const Polyline& line : lines) {
    EXPECT_TRUE(isCornerOf(deepest, line[0])) << line[0].x << "," << line[0].y;
    EXPECT_TRUE(isCornerOf(first, line[1])) << line[1].x << "," << line[1].y;
    EXPECT_NEAR(std::fabs(line[1].x - line[0].x), 3 * 4.9, 1e-6);  // along the bisector, 45 degrees
    EXPECT_NEAR(std::fabs(line[1].y - line[0].y), 3 * 4.9, 1e-6);
  }
}

TEST_F(Contouring, RefusedRunsChangeNothingAndAnEmptyLayerMakesAnEmptyResult) {
  struct Row {
    double offset;
    uint32_t code;
  };
  const Row rows[] = {
      {0.0, 0x08004501u},                                       // would never shrink
      {2.0, 0x08004501u},                                       // grows
      {std::numeric_limits<double>::quiet_NaN(), 0x08004501u},  // not a number
      {-1e-6, 0x08004601u},                                     // 50 000 000 echoes
  };
  for (const Row& row : rows) {
    SetUp();
    AddShape(Box(0, 0, 100, 100));
    m_contour.offset = row.offset;
    EXPECT_EQ(Contour(), row.code) << row.offset;
    EXPECT_EQ(Layer("TempContourLayer1"), nullptr);
    EXPECT_EQ(Layer("Rivlen_ContourPathLayer"), nullptr);
    TearDown();
  }
  SetUp();
  m_contour.offset = -1;
  EXPECT_EQ(Contour(), 0u);
  ASSERT_NE(Layer("Rivlen_ContourPathLayer"), nullptr);
  EXPECT_TRUE(Children(Layer("Rivlen_ContourPathLayer")).empty());
  EXPECT_EQ(Layer("TempContourLayer1"), nullptr);
}

}  // namespace
}  // namespace rvtest
