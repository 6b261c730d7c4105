// Whole exports, byte for byte, worked out by hand from the command table,
// the placement rules and the path writer.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "conditions/cut_cdn_mng.h"
#include "frame/frame.h"
#include "model/data_access.h"
#include "export_fixture.h"

namespace {

using rvtest::ExportTest;
using rvtest::Pt;
using rvtest::Rect;

// A closed square (10,20) (10,30) (20,30) (20,20) under "A" and an open line
// (15,25) (40,25) under "B". The placement rectangle is (10,20)-(40,30), so
// class 6 (no flip, no exchange) writes the square at (0,0)-(10,10) and the
// line from (5,5) to (30,5), y first.
class TwoArts : public ExportTest {
 protected:
  void SetUp() override {
    ExportTest::SetUp();
    AddPath({{10, 20}, {10, 30}, {20, 30}, {20, 20}}, true, "A");
    AddPath({{15, 25}, {40, 25}}, false, "B");
  }
};

TEST_F(TwoArts, SquareAndLineInEveryDialect) {
  const std::string expected[7] = {
      // 0: HP-GL with pens.
      "PU0.00,0.00;PD0.00,0.00;PD10.00,0.00;PD10.00,10.00;PD0.00,10.00;PD0.00,0.00;PU;"
      "PU5.00,5.00;PD5.00,5.00;PD5.00,30.00;PU;",
      // 1: the same words.
      "PU0.00,0.00;PD0.00,0.00;PD10.00,0.00;PD10.00,10.00;PD0.00,10.00;PD0.00,0.00;PU;"
      "PU5.00,5.00;PD5.00,5.00;PD5.00,30.00;PU;",
      // 2: moves and draws ended by 0x03, the pen lifted by "O0,0".
      "M0.00,0.00\x03" "D0.00,0.00\x03" "D10.00,0.00\x03" "D10.00,10.00\x03" "D0.00,10.00\x03" "D0.00,0.00\x03"
      "O0,0\x03" "M5.00,5.00\x03" "D5.00,5.00\x03" "D5.00,30.00\x03" "O0,0\x03",
      // 3: nothing at all.
      "",
      // 4: plain HP-GL has no lift in place.
      "PU0.00,0.00;PD0.00,0.00;PD10.00,0.00;PD10.00,10.00;PD0.00,10.00;PD0.00,0.00;"
      "PU5.00,5.00;PD5.00,5.00;PD5.00,30.00;",
      // 5: laser, whole numbers, 0x0D.
      "PU\rPA0,0\rPD\rPA0,0\rPD\rPA10,0\rPD\rPA10,10\rPD\rPA0,10\rPD\rPA0,0\rPU\r"
      "PU\rPA5,5\rPD\rPA5,5\rPD\rPA5,30\rPU\r",
      // 6: coating lines.
      "M09\nG01 X0 Y0\nM08\nG01 X0 Y0\nM08\nG01 X10 Y0\nM08\nG01 X10 Y10\nM08\nG01 X0 Y10\nM08\nG01 X0 Y0\nM09\n"
      "M09\nG01 X5 Y5\nM08\nG01 X5 Y5\nM08\nG01 X5 Y30\nM09\n",
  };
  for (int16_t dialect = 0; dialect < 7; ++dialect) {
    SCOPED_TRACE(dialect);
    EXPECT_EQ(Export(Param(6, dialect)), expected[dialect]);
  }
}

TEST_F(TwoArts, DeviceUnitDividesEveryCoordinate) {
  RVPLOTPARAM p = Param(6, 0);
  p.deviceUnit = 0.025;  // 40 steps a millimetre
  EXPECT_EQ(Export(p),
            "PU0.00,0.00;PD0.00,0.00;PD400.00,0.00;PD400.00,400.00;PD0.00,400.00;PD0.00,0.00;PU;"
            "PU200.00,200.00;PD200.00,200.00;PD200.00,1200.00;PU;");
}

// The placement and output of the classes. An open path (0,0) (30,0) (30,10)
// with origin (5,7) and device minimum (2,3).
class ClassPlacement : public ExportTest {
 protected:
  void SetUp() override {
    ExportTest::SetUp();
    AddPath({{0, 0}, {30, 0}, {30, 10}}, false, "A");
  }
  static RVPLOTPARAM Shifted(uint16_t cls) {
    RVPLOTPARAM p = Param(cls, 0);
    p.originX = 5;
    p.originY = 7;
    p.deviceMinX = 2;
    p.deviceMinY = 3;
    return p;
  }
};

TEST_F(ClassPlacement, Classes0And1And8) {
  // Class 0: translation (-originX - minX, originY + minY) = (-7, 10), then x
  // mirrored over the rectangle's width 30: (37,10) (7,10) (7,20); y first.
  EXPECT_EQ(Export(Shifted(0)), "PU10.00,37.00;PD10.00,37.00;PD10.00,7.00;PD20.00,7.00;PU;");
  // Class 1: translation (7, 10), x first.
  EXPECT_EQ(Export(Shifted(1)), "PU7.00,10.00;PD7.00,10.00;PD37.00,10.00;PD37.00,20.00;PU;");
  // Class 8: translation (7, -10), y mirrored over the height 10, x first:
  // (7,20) (37,20) (37,10).
  EXPECT_EQ(Export(Shifted(8)), "PU7.00,20.00;PD7.00,20.00;PD37.00,20.00;PD37.00,10.00;PU;");
}

TEST_F(ClassPlacement, OnlyTheThreeSinglePrecisionRotationsTurnTheJob) {
  const std::string plain = "PU0.00,0.00;PD0.00,0.00;PD0.00,30.00;PD10.00,30.00;PU;";
  RVPLOTPARAM p = Param(6, 0);
  EXPECT_EQ(Export(p), plain);
  p.rotation = 0.5;
  EXPECT_EQ(Export(p), plain);
  p.rotation = 1.5707963267948966;  // a quarter turn in double precision: no turn
  EXPECT_EQ(Export(p), plain);
  p.rotation = 3.141592653589793;
  EXPECT_EQ(Export(p), plain);

  // Quarter turn (cos about -4.4e-8, sin about 1), then translation (h, 0) =
  // (10, 0): (x, y) -> (10 - y, x). (30,10) lands a hair left of 0.
  p.rotation = 1.5707963705062866;
  EXPECT_EQ(Export(p), "PU0.00,10.00;PD0.00,10.00;PD30.00,10.00;PD30.00,-0.00;PU;");
  // Half turn (cos about -1, sin about -8.7e-8), translation (w, h) = (30, 10):
  // (x, y) -> (30 - x, 10 - y); (30,10) lands a hair below 0.
  p.rotation = 3.1415927410125732;
  EXPECT_EQ(Export(p), "PU10.00,30.00;PD10.00,30.00;PD10.00,0.00;PD-0.00,0.00;PU;");
  // Three quarters (cos about 1.2e-8, sin about -1), translation (0, w) =
  // (0, 30): (x, y) -> (y, 30 - x).
  p.rotation = 4.71238899230957;
  EXPECT_EQ(Export(p), "PU30.00,0.00;PD30.00,0.00;PD0.00,0.00;PD0.00,10.00;PU;");
}

TEST_F(ClassPlacement, MirrorAndScale) {
  RVPLOTPARAM p = Param(6, 0);
  p.mirror = 1;  // x -> 30 - x
  EXPECT_EQ(Export(p), "PU0.00,30.00;PD0.00,30.00;PD0.00,0.00;PD10.00,0.00;PU;");
  p.mirror = 0;
  p.scaleX = 200.0;
  p.scaleY = 50.0;  // (x, y) -> (2x, y / 2)
  EXPECT_EQ(Export(p), "PU0.00,0.00;PD0.00,0.00;PD0.00,60.00;PD5.00,60.00;PU;");
}

// Class 10 writes the hatching frame, then the hatching lines of each table of
// the hatching range, and nothing else; the placement transform scales by 2
// and moves by (1, 2); x first.
TEST_F(ExportTest, Class10WritesTheHatchingKeysOnly) {
  AddPath({{0, 0}, {4, 0}}, false, "RivlenHatchingLine");
  AddPath({{0, 0}, {0, 3}}, false, "Other");
  AddPath({{1, 1}, {2, 1}}, false, "RivlenHatchingFrame");
  RvGiSetRefMapHatchingSIndex(m_map);
  RvGiSetRefMapHatchingEIndex(m_map);
  RVPLOTPARAM p = Param(10, 0);
  p.usePlacementTransform = 1;
  p.placementScaleX = 2;
  p.placementScaleY = 2;
  p.placementOffsetX = 1;
  p.placementOffsetY = 2;
  EXPECT_EQ(Export(p), "PU3.00,4.00;PD3.00,4.00;PD5.00,4.00;PU;PU1.00,2.00;PD1.00,2.00;PD9.00,2.00;PU;");
  // Without a hatching range nothing is written.
  RvGiSetRefMapHatchingSIndex(-1);
  EXPECT_EQ(Export(p), "");
}

TEST_F(ExportTest, EmptySelectionGivesAnEmptyFile) {
  for (int16_t dialect = 0; dialect < 7; ++dialect) {
    uint32_t code = 1;
    EXPECT_EQ(Export(Param(6, dialect), &code), "");
    EXPECT_EQ(code, 0u);
  }
  RVPLOTPARAM p = Param(0, 0);
  p.sortArts = 1;
  EXPECT_EQ(Export(p), "");
  p.sortPerCutOrder = 1;
  EXPECT_EQ(Export(p), "");
}

struct ProgressLog {
  std::vector<int> steps;
  std::vector<std::string> messages;
  int begins = 0;
  int ends = 0;
  int cancelAt = -1;  // step call number that cancels
};

ProgressLog* g_log = nullptr;

void OnStep(void* context, int16_t percent, int32_t* cancel) {
  ProgressLog& log = *static_cast<ProgressLog*>(context);
  EXPECT_EQ(&log, g_log);
  log.steps.push_back(percent);
  if (int(log.steps.size()) - 1 == log.cancelAt) *cancel = 1;
}
void OnMessage(void* context, char* text) { static_cast<ProgressLog*>(context)->messages.push_back(text); }
void OnBegin(void* context) { ++static_cast<ProgressLog*>(context)->begins; }
void OnEnd(void* context) { ++static_cast<ProgressLog*>(context)->ends; }
void OnRange(void*, int16_t low, int16_t high) {
  EXPECT_EQ(low, 0);
  EXPECT_EQ(high, 100);
}

TEST_F(ExportTest, ExcludedArtsWriteNothingAndCountOnlyAsDone) {
  AddPath({{0, 0}, {10, 0}}, false, "A", 2 | 16);
  AddPath({{0, 5}, {10, 5}}, false, "B");
  ProgressLog log;
  g_log = &log;
  RvGiSetProgressFunction(OnStep, OnRange, OnBegin, OnEnd, OnMessage);
  uint32_t code = 1;
  // The excluded art still widens the placement rectangle (flag mode 1).
  EXPECT_EQ(Export(Param(6, 0), &code, &log), "PU5.00,0.00;PD5.00,0.00;PD5.00,10.00;PU;");
  EXPECT_EQ(code, 0u);
  // One art counted; both advance the count of arts done.
  EXPECT_EQ(log.steps, (std::vector<int>{100, 200}));
  EXPECT_EQ(log.messages, (std::vector<std::string>{"Createing plot data... 100 %", "Createing plot data... 200 %"}));
  EXPECT_EQ(log.begins, 1);
  EXPECT_EQ(log.ends, 1);
}

TEST_F(ExportTest, CancelWhileWritingAndWhileSorting) {
  AddPath({{0, 0}, {10, 0}}, false, "A");
  AddPath({{0, 5}, {10, 5}}, false, "B");
  ProgressLog log;
  g_log = &log;
  log.cancelAt = 0;
  RvGiSetProgressFunction(OnStep, OnRange, OnBegin, OnEnd, OnMessage);
  RVPLOTPARAM p = Param(6, 0);
  p.expandDocument = 1;
  p.marginLeft = 1;
  RVRECT page = Rect(-5, -5, 50, 50);
  ASSERT_EQ(RvGiSetDocBoundingBox(&page), 0u);
  uint32_t code = 0;
  // Cancelled after the first art: the file holds it; the end is reported.
  EXPECT_EQ(Export(p, &code, &log), "PU0.00,1.00;PD0.00,1.00;PD0.00,11.00;PU;");
  EXPECT_EQ(code, 0x06001F01u);
  EXPECT_EQ(log.ends, 1);
  RVRECT after{};
  ASSERT_EQ(RvGiGetDocBoundBox(&after), 0u);
  EXPECT_EQ(after.left, -5.0);  // restored

  // The sort by bounds asks first at its own start.
  log = ProgressLog{};
  log.cancelAt = 0;
  p.sortArts = 1;
  EXPECT_EQ(Export(p, &code, &log), "");
  EXPECT_EQ(code, 0x0A001F01u);
  EXPECT_EQ(log.messages, (std::vector<std::string>{"Sorting.... 0 %"}));
  ASSERT_EQ(RvGiGetDocBoundBox(&after), 0u);
  EXPECT_EQ(after.left, -5.0);
  // In the block sort of class 0 the second question is at 50 percent.
  log = ProgressLog{};
  log.cancelAt = 1;
  p.plotterClass = 0;
  EXPECT_EQ(Export(p, &code, &log), "");
  EXPECT_EQ(code, 0x0A001F01u);
  EXPECT_EQ(log.steps, (std::vector<int>{0, 50}));
}

TEST_F(ExportTest, ProgressOfTheSortsAndOfWriting) {
  AddPath({{0, 0}, {10, 0}}, false, "A");
  AddPath({{0, 60}, {10, 60}}, false, "B");
  ProgressLog log;
  g_log = &log;
  RvGiSetProgressFunction(OnStep, OnRange, OnBegin, OnEnd, OnMessage);
  RVPLOTPARAM p = Param(6, 3);
  p.sortArts = 1;
  Export(p, nullptr, &log);
  // By bounds: its own start, the key order, the refinement, one report after
  // the first art; then writing two arts.
  EXPECT_EQ(log.steps, (std::vector<int>{0, 0, 50, 50, 50, 100}));
  EXPECT_EQ(log.messages, (std::vector<std::string>{"Sorting.... 0 %", "Sorting.... 0 %", "Sorting.... 50 %",
                                                    "Sorting.... 50 %", "Createing plot data... 50 %",
                                                    "Createing plot data... 100 %"}));
  EXPECT_EQ(log.begins, 2);
  EXPECT_EQ(log.ends, 1);
  // By blocks (the two arts in rows 0 and 1): the key order, the refinement,
  // a report after each lone entry.
  log = ProgressLog{};
  p.plotterClass = 0;
  Export(p, nullptr, &log);
  EXPECT_EQ(log.steps, (std::vector<int>{0, 50, 75, 100, 50, 100}));
  EXPECT_EQ(log.begins, 1);
  // Without onStep no message and no cancel.
  log = ProgressLog{};
  log.cancelAt = 0;
  RvGiSetProgressFunction(nullptr, OnRange, OnBegin, OnEnd, OnMessage);
  uint32_t code = 1;
  Export(p, &code, &log);
  EXPECT_EQ(code, 0u);
  EXPECT_TRUE(log.messages.empty());
}

TEST_F(ExportTest, ExpandDocumentGrowsTheJobForItsTime) {
  AddPath({{0, 0}, {10, 0}}, false, "A");
  RVRECT page = Rect(-5, -5, 50, 50);
  ASSERT_EQ(RvGiSetDocBoundingBox(&page), 0u);
  RVPLOTPARAM p = Param(6, 0);
  p.expandDocument = 1;
  p.marginLeft = 2;
  p.marginBottom = 3;
  // The rectangle's lower left moves to (-2, -3): the line lands at (2, 3).
  EXPECT_EQ(Export(p), "PU3.00,2.00;PD3.00,2.00;PD3.00,12.00;PU;");
  RVRECT after{};
  ASSERT_EQ(RvGiGetDocBoundBox(&after), 0u);
  EXPECT_EQ(after.left, -5.0);
  EXPECT_EQ(after.bottom, -5.0);
}

TEST_F(ExportTest, FrameAfterTheJob) {
  AddPath({{0, 0}, {10, 0}, {10, 4}}, false, "A");
  RVPLOTPARAM p = Param(6, 0);
  p.drawFrame = 1;
  p.frameMarginX = 1;
  p.frameMarginY = 2;
  p.conditionSource = 3;
  std::strcpy(p.conditionKey, "none");
  p.defaultPen = 3;
  p.defaultSpeed = 20;
  p.defaultPress = 90;
  p.defaultOffset = 0.25;
  // The job moves by the margins (1, 2). A key without conditions gives one
  // pass without a block; the frame runs round (0,0)-(10 + 2, 4 + 4) after a
  // block of the defaults.
  EXPECT_EQ(Export(p),
            "PU2.00,1.00;PD2.00,1.00;PD2.00,11.00;PD6.00,11.00;PU;"
            "SP3;VS20,3;ZF90,3;ZO0.25;"
            "PU8.00,0.00;PD8.00,12.00;PD0.00,12.00;PD0.00,0.00;PD8.00,0.00;PU8.00,0.00;");
}

// Passes of conditions: a closed art runs its passes without lifting, an
// open art moves to its start before each pass.
TEST_F(ExportTest, RepeatCountsOfClosedAndOpenArts) {
  CondRecord c1 = Condition("5");
  c1.hasSpeed = 1;
  c1.Speed = 30;
  c1.hasPress = 1;
  c1.Press = 100;
  c1.hasOffset = 1;
  c1.Offset = 0.25;
  CondRecord c2 = c1;
  c2.Speed = 10;
  AddCondition("M3", c1);
  AddCondition("M3", c2);
  AddCondition("M3", c1);
  AddCondition("M2", c2);
  AddCondition("M2", c1);
  void* square = AddPath({{0, 0}, {0, 10}, {10, 10}, {10, 0}}, true, "A");
  void* line = AddPath({{0, 0}, {10, 0}}, false, "B");
  ASSERT_EQ(RvGiSetPathPlotInfo(square, 0, "M3"), 0u);
  ASSERT_EQ(RvGiSetPathPlotInfo(line, 0, "M2"), 0u);
  RVPLOTPARAM p = Param(6, 0);
  p.conditionSource = 1;
  const std::string fast = "SP5;VS30,5;ZF100,5;ZO0.25;";
  const std::string slow = "SP5;VS10,5;ZF100,5;ZO0.25;";
  const std::string loop = "PD0.00,0.00;PD10.00,0.00;PD10.00,10.00;PD0.00,10.00;PD0.00,0.00;";
  const std::string stroke = "PU0.00,0.00;PD0.00,0.00;PD0.00,10.00;";
  EXPECT_EQ(Export(p), fast + "PU0.00,0.00;" + loop + slow + loop + fast + loop + "PU;" +  //
                           slow + stroke + fast + stroke + "PU;");
  // Source 2 writes the pen only; source 0 no condition at all.
  p.conditionSource = 2;
  EXPECT_EQ(Export(p), "SP5;PU0.00,0.00;" + loop + "SP5;" + loop + "SP5;" + loop + "PU;" +  //
                           "SP5;" + stroke + "SP5;" + stroke + "PU;");
  p.conditionSource = 0;
  EXPECT_EQ(Export(p), "PU0.00,0.00;" + loop + "PU;" + stroke + "PU;");
}

TEST_F(ExportTest, DoubleCreasePassAddsAPassForItsArtOnly) {
  CondRecord crease = Condition("CRE");
  AddCondition("Fold", crease);
  void* line = AddPath({{0, 0}, {10, 0}}, false, "B");
  ASSERT_EQ(RvGiSetPathPlotInfo(line, 0, "Fold"), 0u);
  RVPLOTPARAM p = Param(6, 0);
  p.conditionSource = 1;
  p.doubleCreasePass = 1;
  p.defaultPen = 4;
  // "CRE" maps to pen 0, replaced by the default pen.
  const std::string block = "SP4;VS0,4;ZF0,4;ZO0.00;";
  const std::string stroke = "PU0.00,0.00;PD0.00,0.00;PD0.00,10.00;";
  EXPECT_EQ(Export(p), block + stroke + block + stroke + "PU;");
  EXPECT_EQ(RvGetRepeatCount("Fold"), 1);
}

TEST_F(ExportTest, CurveOutputsThroughTheCurveOperations) {
  // A bump from (0,0) to (40,0) with handles (0,10) and (40,10): with
  // tolerance 6 it halves once, at (20, 7.5).
  RVBEZIERPOINT a = Pt(0, 0), b = Pt(40, 0);
  a.out = {0, 10};
  b.in = {40, 10};
  RVRECT box = Rect(0, 0, 40, 10);
  AddCurve({a, b}, false, "A", 2, &box);
  RVPLOTPARAM p = Param(6, 0);
  p.curveTolerance = 6.0;
  EXPECT_EQ(Export(p), "PU0.00,0.00;PD0.00,0.00;PD7.50,20.00;PD0.00,40.00;PU;");
}

TEST_F(ExportTest, ArcOutputDividesOnlyThePoints) {
  // A quarter circle about (5,5) of radius 10 from (15,5) to (5,15), handles
  // 5.523 long: one arc, direction -1 (the chord's slope test), the middle at
  // t = 0.5 (12.071125, 12.071125); a straight line after it stays points.
  RVBEZIERPOINT a = Pt(15, 5), b = Pt(5, 15);
  a.out = {15, 10.523};
  b.in = {10.523, 15};
  RVRECT box = Rect(0, 0, 20, 20);
  AddCurve({a, b}, false, "A", 2, &box);
  AddPath({{0, 0}, {10, 0}}, false, "B", 2, &box);
  RVPLOTPARAM p = Param(6, 0);
  p.curveOutput = 1;
  p.deviceUnit = 0.5;
  // The arc's values come divided by the curve operation; the move to an arc
  // is undivided and puts the pen down. The line: start, end, end again.
  EXPECT_EQ(Export(p),
            "PU10.00,30.00;PD;ZCAA-1,10.00,30.00,24.14,24.14,30.00,10.00,10.00,10.00;PU;"
            "PU0.00,0.00;PD0.00,0.00;PD0.00,20.00;PD0.00,20.00;PU;");
}

TEST_F(ExportTest, SplineOutput) {
  // Handles 0.08 off the chord: more than 0.1 degree, so not straight; with
  // the fixed tolerance 0.042 the curve halves once at (50, 0.06): one triple.
  RVBEZIERPOINT a = Pt(0, 0), b = Pt(100, 0);
  a.out = {30, 0.08};
  b.in = {70, 0.08};
  RVRECT box = Rect(0, 0, 100, 1);
  AddCurve({a, b}, false, "A", 2, &box);
  RVPLOTPARAM p = Param(6, 0);
  p.curveOutput = 2;
  EXPECT_EQ(Export(p), "PU0.00,0.00;PD;ZS0.00,0.00,0.06,50.00,0.00,100.00;PU;");
}

// The triangle (0,0) (100,0) (0,20) with its start stored twice; every edge
// straight with its handles at a third and two thirds, so that a curve's
// length grows evenly with its parameter.
std::vector<RVBEZIERPOINT> Triangle() {
  const double third = 100.0 / 3.0, h = 20.0 / 3.0;
  RVBEZIERPOINT a = Pt(0, 0), b = Pt(100, 0), c = Pt(0, 20);
  a.in = {0, h};
  a.out = {third, 0};
  b.in = {2 * third, 0};
  b.out = {2 * third, h};
  c.in = {third, 2 * h};
  c.out = {0, 2 * h};
  return {a, b, c, a};
}

// A sharp triangle cut from both sides: the corner at (100,0) turns by 168.7
// degrees, above the limit of 120 (the corner at (0,20) turns by 101.3, the
// start by 90 after a run of 20 only); the joint lies 25 short of it on the
// edge that arrives there.
TEST_F(ExportTest, BothSidesCutOfASharpTriangle) {
  CondRecord c = Condition("1");
  c.hasSpeed = 1;
  c.Speed = 20;
  c.hasPress = 1;
  c.Press = 80;
  c.DivideCut = DivideCutRecord{1, 0, 30.0, 120.0, 0, 25.0};
  AddCondition("BS", c);
  void* triangle = AddCurve(Triangle(), true, "T");
  ASSERT_EQ(RvGiSetPathPlotInfo(triangle, 0, "BS"), 0u);
  RVPLOTPARAM p = Param(6, 0);
  p.conditionSource = 1;
  p.defaultOffset = 0.3;
  EXPECT_EQ(Export(p),
            "SP1;VS20,1;ZF80,1;ZO0.30;"
            "PU0.00,0.00;PD0.00,0.00;PD0.00,75.00;"      // along the edge up to the joint
            "PU0.00,100.00;PD0.00,100.00;PD0.00,75.00;"  // from the corner back to it
            "PU0.00,100.00;PD0.00,100.00;PD20.00,0.00;PD0.00,0.00;"
            "PU;");
  char value[8] = "x";
  EXPECT_EQ(RvGiGetArtTag(triangle, "RivlenKerflowBothSidesCutTag", value), 0u);
  EXPECT_STREQ(value, "");
  EXPECT_NE(RvGiGetArtTag(triangle, "RivlenKerflowInToOutTag", value), 0u);
  void* bezier = nullptr;
  ASSERT_EQ(RvGiGetArtFirstChild(triangle, &bezier), 0u);
  int32_t count = 0;
  ASSERT_EQ(RvGiGetPathSegmentCount(bezier, &count), 0u);
  EXPECT_EQ(count, 5);
  RVBEZIERPOINT joint{};
  ASSERT_EQ(RvGiGetBezierPoint(bezier, 1, &joint), 0u);
  EXPECT_NEAR(joint.anchor.x, 75.0, 1e-9);
  EXPECT_NEAR(joint.anchor.y, 0.0, 1e-9);
  EXPECT_EQ(joint.flags, 128);
  RVBEZIERPOINT corner{};
  ASSERT_EQ(RvGiGetBezierPoint(bezier, 2, &corner), 0u);
  EXPECT_EQ(corner.flags, 32 | 64);
  RVBEZIERPOINT start{};
  ASSERT_EQ(RvGiGetBezierPoint(bezier, 0, &start), 0u);
  EXPECT_EQ(start.flags, 32);

  // With Available clear the shape is cut whole, and nothing is tagged.
  ExportTest::TearDown();
  ExportTest::SetUp();
  c.DivideCut.Available = 0;
  AddCondition("BS", c);
  triangle = AddCurve(Triangle(), true, "T");
  ASSERT_EQ(RvGiSetPathPlotInfo(triangle, 0, "BS"), 0u);
  EXPECT_EQ(Export(p),
            "SP1;VS20,1;ZF80,1;ZO0.30;PU0.00,0.00;PD0.00,0.00;PD0.00,100.00;PD20.00,0.00;PD0.00,0.00;"
            "PD0.00,0.00;PU;");
  EXPECT_NE(RvGiGetArtTag(triangle, "RivlenKerflowBothSidesCutTag", value), 0u);
  // Class 8 has no both-sides pass.
  ExportTest::TearDown();
  ExportTest::SetUp();
  c.DivideCut.Available = 1;
  AddCondition("BS", c);
  triangle = AddCurve(Triangle(), true, "T");
  ASSERT_EQ(RvGiSetPathPlotInfo(triangle, 0, "BS"), 0u);
  p.plotterClass = 8;
  Export(p);
  EXPECT_NE(RvGiGetArtTag(triangle, "RivlenKerflowBothSidesCutTag", value), 0u);
}

TEST_F(ExportTest, InsidePassTagsTheMiddleOfThreeNestedArts) {
  void* outer = AddPath({{0, 0}, {0, 90}, {90, 90}, {90, 0}}, true, "A");
  void* middle = AddPath({{10, 10}, {10, 80}, {80, 80}, {80, 10}}, true, "B");
  void* inner = AddPath({{20, 20}, {20, 70}, {70, 70}, {70, 20}}, true, "C");
  void* apart = AddPath({{200, 0}, {200, 5}, {205, 5}, {205, 0}}, true, "D");
  Export(Param(6, 3));
  char value[8];
  EXPECT_NE(RvGiGetArtTag(outer, "RivlenKerflowInsidePathTag", value), 0u);
  EXPECT_EQ(RvGiGetArtTag(middle, "RivlenKerflowInsidePathTag", value), 0u);
  EXPECT_NE(RvGiGetArtTag(inner, "RivlenKerflowInsidePathTag", value), 0u);
  EXPECT_NE(RvGiGetArtTag(apart, "RivlenKerflowInsidePathTag", value), 0u);
}

TEST_F(ExportTest, ShapesThatStartWithAnArcOrAreGroupsAreNotJudged) {
  // A circle of a plot file is a path whose only component is an arc; it
  // takes no part in the inside pass and doesn't fail the export (the job
  // writer draws Bezier components only). A group filed in the sorted route
  // isn't judged either.
  void* square = AddPath({{0, 0}, {0, 10}, {10, 10}, {10, 0}, {0, 0}}, true, "A");
  void* circle = nullptr;
  ASSERT_EQ(RvGiCreateArt(4, 5, m_layer, &circle), 0u);
  void* arc = nullptr;
  ASSERT_EQ(RvGiCreateArt(5, 5, circle, &arc), 0u);
  const RVARCPOINT full{{7, 5}, {7, 5}, {5, 5}, 360.0, 1};
  ASSERT_EQ(rv::Guard([&] { rv::CRvDataAccess::Instance().AddArcPoint(rv::ArtOf(arc), full); }), 0u);
  ASSERT_EQ(RvGiSetPathClosed(circle, 1), 0u);
  ASSERT_EQ(RvGiSetPathAttrFlag(circle, 2), 0u);
  const RVRECT box = Rect(3, 3, 7, 7);
  ASSERT_EQ(RvGiSetBoundingBox(circle, &box), 0u);
  ASSERT_EQ(RvGiAddRefMapData(m_map, "B", 2, circle), 0u);
  void* group = nullptr;
  ASSERT_EQ(RvGiCreateArt(1, 5, m_layer, &group), 0u);
  ASSERT_EQ(RvGiSetPathAttrFlag(group, 2), 0u);
  ASSERT_EQ(RvGiAddRefMapData(m_map, "C", 2, group), 0u);
  // Class 1 writes x before y; the circle's art writes only its "PU;" and
  // the group, holding no path, nothing. Sorted by bounds the circle, which
  // lies inside the square's box, comes first.
  const std::string squareJob = "PU0.00,0.00;PD0.00,0.00;PD0.00,10.00;PD10.00,10.00;PD10.00,0.00;"
                                "PD0.00,0.00;PD0.00,0.00;PU;";
  char value[8];
  for (int sorted : {0, 1}) {
    RVPLOTPARAM param = Param(1, 0);
    param.sortArts = sorted;
    EXPECT_EQ(Export(param), sorted ? "PU;" + squareJob : squareJob + "PU;") << sorted;
    EXPECT_NE(RvGiGetArtTag(circle, "RivlenKerflowInsidePathTag", value), 0u);
    EXPECT_NE(RvGiGetArtTag(square, "RivlenKerflowInsidePathTag", value), 0u);
  }
}

TEST_F(ExportTest, SortedByBlocksInClass0) {
  // All starts in block 0 but E (row 1, an odd row: key 1 * 21 + 21).
  AddPath({{0, 60}, {3, 60}}, false, "E");
  AddPath({{40, 1}, {45, 1}}, false, "A");
  AddPath({{8, 1}, {9, 1}}, false, "B");
  AddPath({{20, 1}, {6, 1}}, false, "D");
  AddPath({{0, 1}, {5, 1}}, false, "C");
  RVRECT page = Rect(0, 0, 0, 0);
  ASSERT_EQ(RvGiSetDocBoundingBox(&page), 0u);
  RVPLOTPARAM p = Param(0, 0);
  p.sortArts = 1;
  // The rectangle's bottom is 1, so every y drops by 1. From the pen at
  // (0,0): C (at the pen), then from its end (5,0): B (3 away) before D (15)
  // and A (35); then D before A; E last. Class 0 flips x over 45.
  EXPECT_EQ(Export(p),
            "PU0.00,45.00;PD0.00,45.00;PD0.00,40.00;PU;"
            "PU0.00,37.00;PD0.00,37.00;PD0.00,36.00;PU;"
            "PU0.00,25.00;PD0.00,25.00;PD0.00,39.00;PU;"
            "PU0.00,5.00;PD0.00,5.00;PD0.00,0.00;PU;"
            "PU59.00,45.00;PD59.00,45.00;PD59.00,42.00;PU;");
  // One cut-order step at a time: each key is a list of its own, in the cut
  // order E, A, B, D, C.
  p.sortPerCutOrder = 1;
  EXPECT_EQ(Export(p),
            "PU59.00,45.00;PD59.00,45.00;PD59.00,42.00;PU;"
            "PU0.00,5.00;PD0.00,5.00;PD0.00,0.00;PU;"
            "PU0.00,37.00;PD0.00,37.00;PD0.00,36.00;PU;"
            "PU0.00,25.00;PD0.00,25.00;PD0.00,39.00;PU;"
            "PU0.00,45.00;PD0.00,45.00;PD0.00,40.00;PU;");
}

TEST_F(ExportTest, CutOrderStepsPassOverKeysNotForOutput) {
  AddPath({{0, 0}, {10, 0}}, false, "A");
  void* hidden = AddPath({{0, 5}, {10, 5}}, false, nullptr);
  ASSERT_EQ(RvGiAddRefMapData(m_map, "H", 1, hidden), 0u);  // info without bit 2
  AddPath({{0, 9}, {10, 9}}, false, "Z");
  const std::string expected = "PU0.00,0.00;PD0.00,0.00;PD0.00,10.00;PU;PU9.00,0.00;PD9.00,0.00;PD9.00,10.00;PU;";
  RVPLOTPARAM p = Param(6, 0);
  p.sortArts = 1;
  p.sortPerCutOrder = 1;
  EXPECT_EQ(Export(p), expected);
  p.plotterClass = 0;  // the block sort: x flipped over 10
  EXPECT_EQ(Export(p), "PU0.00,10.00;PD0.00,10.00;PD0.00,0.00;PU;PU9.00,10.00;PD9.00,10.00;PD9.00,0.00;PU;");
}

TEST_F(ExportTest, SortedByBoundsPutsTheInnerArtFirst) {
  AddPath({{0, 0}, {0, 100}, {100, 100}, {100, 0}}, true, "A");
  AddPath({{10, 10}, {10, 20}, {20, 20}, {20, 10}}, true, "B");
  RVPLOTPARAM p = Param(6, 0);
  p.sortArts = 1;
  EXPECT_EQ(Export(p),
            "PU10.00,10.00;PD10.00,10.00;PD20.00,10.00;PD20.00,20.00;PD10.00,20.00;PD10.00,10.00;PU;"
            "PU0.00,0.00;PD0.00,0.00;PD100.00,0.00;PD100.00,100.00;PD0.00,100.00;PD0.00,0.00;PU;");
}

TEST_F(ExportTest, MillingAndMicroJointsAreNotCarriedYet) {
  AddPath({{0, 0}, {10, 0}}, false, "A");
  RvGiSetRefMapRouterOffsetSIndex(m_map);
  RvGiSetRefMapRouterOffsetEIndex(m_map);
  uint32_t code = 0;
  Export(Param(5, 0), &code);
  EXPECT_EQ(code, 0x01001101u);
  RVPLOTPARAM p = Param(6, 0);
  p.outputMicroJoints = 1;
  EXPECT_EQ(Export(p), "PU0.00,0.00;PD0.00,0.00;PD0.00,10.00;PU;");  // no joint layer: nothing more
  void* layer = nullptr;
  ASSERT_EQ(RvGiCreateLayer(1, nullptr, &layer), 0u);
  ASSERT_EQ(RvGiSetLayerName(layer, "MicroJointLayer"), 0u);
  Export(p, &code);
  EXPECT_EQ(code, 0x01001101u);
}

// Theta values come from the condition's extension; the milling families
// keep a milling record there, which has none.
TEST_F(ExportTest, ThetaRowsOnlyFromThetaExtensions) {
  CondRecord c = Condition("5");
  c.hasSpeed = 1;
  c.Speed = 30;
  const ThetaExtension theta{1, {1.5, 2, 3, 4, 5, 6}};
  AddCondition("T", c, &theta);
  void* line = AddPath({{0, 0}, {10, 0}}, false, "A");
  ASSERT_EQ(RvGiSetPathPlotInfo(line, 0, "T"), 0u);
  RVPLOTPARAM p = Param(6, 0);
  p.conditionSource = 3;
  std::strcpy(p.conditionKey, "T");
  const std::string stroke = "PU0.00,0.00;PD0.00,0.00;PD0.00,10.00;PU;";
  EXPECT_EQ(Export(p), "SP5;VS30,5;ZG1.5,1;ZG2.0,2;ZG3.0,3;ZG4.0,4;ZG5.0,5;ZG6.0,6;" + stroke);

  rv::CRvCutCdnMng& conditions = rv::CRvCutCdnMng::Instance();
  ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  const uint16_t before = conditions.machineType;
  conditions.machineType = 3;
  const MillingExtension milling{1, 1, 1, 1, 8000, 0.5, 20, 1.0};
  CondPair pair{&c, &milling};
  ASSERT_EQ(RvAddCutCondition("T", 0, &pair), 0u);
  EXPECT_EQ(Export(p), "SP5;VS30,5;" + stroke);
  conditions.machineType = before;
}

}  // namespace
