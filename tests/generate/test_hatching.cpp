// Hatching: the line stack, the fill of turned and holed shapes, the frame,
// and every refused run.
#include <algorithm>
#include <cmath>
#include <limits>

#include "generate_fixture.h"

namespace rvtest {
namespace {

constexpr double kPi = 3.14159265358979323846;

class Hatching : public GenerateTest {
 protected:
  /// The hatch lines, as (first end, second end).
  std::vector<Polyline> Lines() { return Paths("Rivlen_HatchingPathLayer"); }
  std::vector<double> LineHeights() {
    std::vector<double> ys;
    for (const Polyline& line : Lines()) ys.push_back(line[0].y);
    std::sort(ys.begin(), ys.end());
    ys.erase(std::unique(ys.begin(), ys.end(), [](double a, double b) { return std::fabs(a - b) < 1e-6; }), ys.end());
    return ys;
  }
};

TEST_F(Hatching, TheStackIsCentredAndARemainderSpreadsOrCentres) {
  struct Row {
    double height;
    int32_t spread;
    std::vector<double> expected;  // heights above the bottom
  };
  const Row rows[] = {
      {100, 1, {5, 15, 25, 35, 45, 55, 65, 75, 85, 95}},                  // no remainder
      {103, 1, {1.5, 11.5, 21.5, 31.5, 41.5, 51.5, 61.5, 71.5, 81.5, 91.5, 101.5}},  // one line more
      {103, 0, {6.5, 16.5, 26.5, 36.5, 46.5, 56.5, 66.5, 76.5, 86.5, 96.5}},  // the same lines, centred
      {100.0005, 1, {5.00025, 15.00025, 25.00025, 35.00025, 45.00025, 55.00025, 65.00025, 75.00025, 85.00025,
                     95.00025}},  // a remainder of 0.001 or less adds nothing
  };
  for (const Row& row : rows) {
    SetUp();
    AddShape(Box(0, 0, 50, row.height));
    m_hatching.pitch = 10, m_hatching.spreadLines = row.spread;
    ASSERT_EQ(Hatch(), 0u);
    const std::vector<double> ys = LineHeights();
    ASSERT_EQ(ys.size(), row.expected.size()) << row.height;
    // The grid truncates the box to whole micrometres.
    for (std::size_t i = 0; i < ys.size(); ++i) EXPECT_NEAR(ys[i], row.expected[i], 1e-3) << row.height;
    for (const Polyline& line : Lines()) {
      EXPECT_NEAR(std::min(line[0].x, line[1].x), 0.0, 1e-9);
      EXPECT_NEAR(std::max(line[0].x, line[1].x), 50.0, 1e-9);
    }
    TearDown();
  }
}

TEST_F(Hatching, ATurnedSquareIsFilledAlongTheAngleAPitchApart) {
  // A 40 mm square turned by 30 degrees, hatched along its own sides.
  const double a = 30 * kPi / 180, c = std::cos(a), s = std::sin(a);
  Polyline square;
  for (auto [x, y] : {std::pair{0.0, 0.0}, {40.0, 0.0}, {40.0, 40.0}, {0.0, 40.0}}) {
    square.push_back({x * c - y * s + 100, x * s + y * c + 50});
  }
  AddShape(square);
  m_hatching.pitch = 4, m_hatching.angle = a;
  ASSERT_EQ(Hatch(), 0u);
  const auto lines = Lines();
  ASSERT_EQ(lines.size(), 10u);
  std::vector<double> offsets;  // distance of each line from the square's first side
  for (const Polyline& line : lines) {
    ASSERT_EQ(line.size(), 2u);
    for (const RVPOINT& p : line) EXPECT_TRUE(Inside(square, p)) << p.x << "," << p.y;
    const double dx = line[1].x - line[0].x, dy = line[1].y - line[0].y;
    EXPECT_NEAR(std::fabs(dx * s - dy * c), 0.0, 1e-6);  // along the angle
    EXPECT_NEAR(std::hypot(dx, dy), 40.0, 2e-3);
    offsets.push_back(-(line[0].x - 100) * s + (line[0].y - 50) * c);
  }
  std::sort(offsets.begin(), offsets.end());
  for (std::size_t i = 1; i < offsets.size(); ++i) EXPECT_NEAR(offsets[i] - offsets[i - 1], 4.0, 2e-3);
  EXPECT_NEAR(offsets.front(), 2.0, 2e-3);
}

TEST_F(Hatching, ARingIsCutAroundItsHoleAndAQuarterTurnGivesVerticalLines) {
  const Polyline outer = Box(0, 0, 30, 30), hole = Box(10, 10, 20, 20);
  struct Row {
    int32_t evenOdd;
    double angle;
  };
  for (const Row row : {Row{1, 0.0}, Row{0, 0.0}, Row{0, kPi / 2}}) {
    SetUp();
    AddCompound({outer, hole});  // same orientation: the run turns the hole
    m_hatching.pitch = 3, m_hatching.evenOddFill = row.evenOdd, m_hatching.angle = row.angle;
    ASSERT_EQ(Hatch(), 0u);
    const auto lines = Lines();
    int crossingHole = 0;
    for (const Polyline& line : lines) {
      const RVPOINT mid{(line[0].x + line[1].x) / 2, (line[0].y + line[1].y) / 2};
      EXPECT_TRUE(Inside(outer, mid));
      EXPECT_FALSE(Inside(hole, mid, -1e-3)) << mid.x << "," << mid.y;
      if (row.angle != 0.0) {
        EXPECT_NEAR(line[0].x, line[1].x, 1e-9);  // vertical
      }
      const double across = row.angle != 0.0 ? line[0].x : line[0].y;
      if (across > 10 && across < 20) ++crossingHole;
    }
    // Rows at 1.5, 4.5, ... 28.5: those at 10.5 to 19.5 pass the hole in two pieces.
    EXPECT_EQ(lines.size(), 10u + 4u);
    EXPECT_EQ(crossingHole, 8);
    TearDown();
  }
}

TEST_F(Hatching, AFrameAloneLeavesThePathLayerAlone) {
  AddShape(Box(0, 0, 20, 10));
  AddShape({{30, 0}, {40, 0}}, false);  // an open path is copied whole
  m_hatching.generate = 2, m_hatching.frameOffset = 1;
  ASSERT_EQ(Hatch(), 0u);
  EXPECT_EQ(Layer("Rivlen_HatchingPathLayer"), nullptr);
  EXPECT_EQ(Layer("Rivlen_HatchingOffsetLayer"), nullptr);
  const auto frame = Paths("Rivlen_HatchingFrameLayer");
  ASSERT_EQ(frame.size(), 2u);
  double left = 1e9, right = -1e9;
  for (const RVPOINT& p : frame[0]) left = std::min(left, p.x), right = std::max(right, p.x);
  EXPECT_NEAR(left, -1.0, 1e-9);
  EXPECT_NEAR(right, 21.0, 1e-9);
  EXPECT_EQ(frame[1].size(), 2u);
}

TEST_F(Hatching, RefusedRunsChangeNothing) {
  struct Row {
    const char* what;
    uint32_t code;
  };
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const Row rows[] = {
      {"pitch 0", 0x08004301u},   {"pitch -1", 0x08004301u},  {"pitch NaN", 0x08004301u},
      {"angle NaN", 0x08004001u}, {"point NaN", 0x08004001u}, {"point far", 0x08004001u},
      {"no map", 0x08004201u},    {"no document", 0x09001D01u}, {"null record", 0x08004701u},
      {"empty layer", 0x00000001u}, {"shrunk away", 0x00000001u},
  };
  for (const Row& row : rows) {
    SetUp();
    const std::string what = row.what;
    if (what != "empty layer") AddShape(Box(0, 0, 10, 10));
    if (what == "pitch 0") m_hatching.pitch = 0;
    if (what == "pitch -1") m_hatching.pitch = -1;
    if (what == "pitch NaN") m_hatching.pitch = nan;
    if (what == "angle NaN") m_hatching.angle = nan;
    if (what == "point NaN") AddShape({{0, 0}, {nan, 1}, {2, 2}});
    if (what == "point far") AddShape({{0, 0}, {3e6, 1}, {2, 2}});
    if (what == "no map") RvGiSetRefMapHatchingPlotIndex(-1);
    if (what == "shrunk away") m_hatching.offset = -20;
    int16_t document = what == "no document" ? int16_t(7) : m_document;
    const uint32_t code = RvCreateHatching(&document, what == "null record" ? nullptr : &m_hatching);
    EXPECT_EQ(code, row.code) << row.what;
    EXPECT_EQ(Layer("Rivlen_HatchingOffsetLayer"), nullptr) << row.what;
    EXPECT_EQ(Layer("Rivlen_HatchingPathLayer"), nullptr) << row.what;
    EXPECT_EQ(RvGiGetRefMapArtCount(m_map), 0) << row.what;
    TearDown();
  }
}

}  // namespace
}  // namespace rvtest
