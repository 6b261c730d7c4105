// Whole exports, byte for byte, worked out by hand from the command table,
// the placement rules and the path writer.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "conditions/cut_cdn_mng.h"
#include "export_fixture.h"
#include "frame/frame.h"
#include "model/data_access.h"

namespace {

using namespace rvtest;

// The line (0,0)-(10,0) in class 6 (no flip, y written first), pen not lifted.
const std::string kStroke = "PU0.00,0.00;PD0.00,0.00;PD0.00,10.00;";

// A closed square (10,20) (10,30) (20,30) (20,20) under "A" and an open line
// (15,25) (40,25) under "B". The placement rectangle is (10,20)-(40,30), so
// class 6 writes the square at (0,0)-(10,10) and the line from (5,5) to (30,5).
TEST_F(ExportTest, SquareAndLineInEveryDialect) {
  EXPECT_EQ(Export(Param(6, 0)), "");  // nothing selected: an empty file, unsorted and sorted
  RVPLOTPARAM sorted = Param(0, 0);
  sorted.sortArts = 1;
  EXPECT_EQ(Export(sorted), "");
  sorted.sortPerCutOrder = 1;
  EXPECT_EQ(Export(sorted), "");

  AddPath({{10, 20}, {10, 30}, {20, 30}, {20, 20}}, true, "A");
  AddPath({{15, 25}, {40, 25}}, false, "B");
  const std::string pens = "PU0.00,0.00;PD0.00,0.00;PD10.00,0.00;PD10.00,10.00;PD0.00,10.00;PD0.00,0.00;PU;"
                           "PU5.00,5.00;PD5.00,5.00;PD5.00,30.00;PU;";
  struct Row { int16_t dialect; std::string expected; };
  const Row rows[] = {
      {0, pens},  // dialect 1 moves and draws as 0
      {2,  // ended by 0x03, the pen lifted by "O0,0"
       "M0.00,0.00\x03" "D0.00,0.00\x03" "D10.00,0.00\x03" "D10.00,10.00\x03" "D0.00,10.00\x03" "D0.00,0.00\x03"
       "O0,0\x03" "M5.00,5.00\x03" "D5.00,5.00\x03" "D5.00,30.00\x03" "O0,0\x03"},
      {4,  // no lift in place
       "PU0.00,0.00;PD0.00,0.00;PD10.00,0.00;PD10.00,10.00;PD0.00,10.00;PD0.00,0.00;"
       "PU5.00,5.00;PD5.00,5.00;PD5.00,30.00;"},
      {5,  // whole numbers, 0x0D
       "PU\rPA0,0\rPD\rPA0,0\rPD\rPA10,0\rPD\rPA10,10\rPD\rPA0,10\rPD\rPA0,0\rPU\rPU\rPA5,5\rPD\rPA5,5\rPD\rPA5,30\rPU\r"},
      {6,
       "M09\nG01 X0 Y0\nM08\nG01 X0 Y0\nM08\nG01 X10 Y0\nM08\nG01 X10 Y10\nM08\nG01 X0 Y10\nM08\nG01 X0 Y0\nM09\n"
       "M09\nG01 X5 Y5\nM08\nG01 X5 Y5\nM08\nG01 X5 Y30\nM09\n"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Export(Param(6, row.dialect)), row.expected) << row.dialect;
  }
}

// The open path (0,0) (30,0) (30,10) placed by class, rotation, mirror and
// scale; "shifted" is origin (5,7) with device minimum (2,3).
TEST_F(ExportTest, PlacementByClassRotationMirrorAndScale) {
  AddPath({{0, 0}, {30, 0}, {30, 10}}, false, "A");
  const char* plain = "PU0.00,0.00;PD0.00,0.00;PD0.00,30.00;PD10.00,30.00;PU;";
  const char* xFirst = "PU7.00,10.00;PD7.00,10.00;PD37.00,10.00;PD37.00,20.00;PU;";
  const char* yFlipped = "PU7.00,20.00;PD7.00,20.00;PD37.00,20.00;PD37.00,10.00;PU;";
  struct Row { uint16_t cls; bool shifted; double rotation; int32_t mirror; double scaleX, scaleY;
               const char* expected; };
  const Row rows[] = {
      // Translation (-7, 10), x mirrored over the width 30: (37,10) (7,10) (7,20); y first.
      {0, true, 0, 0, 100, 100, "PU10.00,37.00;PD10.00,37.00;PD10.00,7.00;PD20.00,7.00;PU;"},
      // Translation (7, 10), x first.
      {1, true, 0, 0, 100, 100, xFirst},
      {2, true, 0, 0, 100, 100, xFirst},
      // Translation (7, -10), y mirrored over the height 10, x first: (7,20) (37,20) (37,10).
      {8, true, 0, 0, 100, 100, yFlipped},
      {9, true, 0, 0, 100, 100, yFlipped},
      // Only the three single-precision turns rotate.
      {6, false, 1.5707963267948966, 0, 100, 100, plain},
      {6, false, -1.5707963705062866, 0, 100, 100, plain},
      // Quarter: (x, y) -> (10 - y, x); (30,10) lands a hair left of 0.
      {6, false, 1.5707963705062866, 0, 100, 100, "PU0.00,10.00;PD0.00,10.00;PD30.00,10.00;PD30.00,-0.00;PU;"},
      // Half: (x, y) -> (30 - x, 10 - y); (30,10) lands a hair below 0.
      {6, false, 3.1415927410125732, 0, 100, 100, "PU10.00,30.00;PD10.00,30.00;PD10.00,0.00;PD-0.00,0.00;PU;"},
      // Three quarters: (x, y) -> (y, 30 - x).
      {6, false, 4.71238899230957, 0, 100, 100, "PU30.00,0.00;PD30.00,0.00;PD0.00,0.00;PD0.00,10.00;PU;"},
      {6, false, 0, 1, 100, 100, "PU0.00,30.00;PD0.00,30.00;PD0.00,0.00;PD10.00,0.00;PU;"},  // x -> 30 - x
      {6, false, 0, 0, 200, 50, "PU0.00,0.00;PD0.00,0.00;PD0.00,60.00;PD5.00,60.00;PU;"},   // (2x, y / 2)
  };
  for (const Row& row : rows) {
    RVPLOTPARAM p = Param(row.cls, 0);
    if (row.shifted) p.originX = 5, p.originY = 7, p.deviceMinX = 2, p.deviceMinY = 3;
    p.rotation = row.rotation, p.mirror = row.mirror, p.scaleX = row.scaleX, p.scaleY = row.scaleY;
    EXPECT_EQ(Export(p), row.expected) << row.cls << " " << row.rotation;
  }
}

// Class 10 writes the hatching frame, then the lines of each table of the
// hatching range, and nothing else; the placement transform scales by 2 and
// moves by (1, 2); x first.
TEST_F(ExportTest, Class10WritesTheHatchingKeysOnly) {
  AddPath({{0, 0}, {4, 0}}, false, "RivlenHatchingLine");
  AddPath({{0, 0}, {0, 3}}, false, "Other");
  AddPath({{1, 1}, {2, 1}}, false, "RivlenHatchingFrame");
  RvGiSetRefMapHatchingSIndex(m_map);
  RvGiSetRefMapHatchingEIndex(m_map);
  RVPLOTPARAM p = Param(10, 0);
  p.usePlacementTransform = 1;
  p.placementScaleX = p.placementScaleY = 2;
  p.placementOffsetX = 1, p.placementOffsetY = 2;
  EXPECT_EQ(Export(p), "PU3.00,4.00;PD3.00,4.00;PD5.00,4.00;PU;PU1.00,2.00;PD1.00,2.00;PD9.00,2.00;PU;");
  RvGiSetRefMapHatchingSIndex(-1);  // no range: nothing
  EXPECT_EQ(Export(p), "");
}

struct ProgressLog {
  std::vector<int> steps;
  std::vector<std::string> messages;
  int begins = 0, ends = 0;
  int cancelAt = -1;  // number of the step call that cancels
};

void OnStep(void* context, int16_t percent, int32_t* cancel) {
  ProgressLog& log = *static_cast<ProgressLog*>(context);
  log.steps.push_back(percent);
  if (int(log.steps.size()) - 1 == log.cancelAt) *cancel = 1;
}
void OnMessage(void* context, char* text) { static_cast<ProgressLog*>(context)->messages.push_back(text); }
void OnBegin(void* context) { ++static_cast<ProgressLog*>(context)->begins; }
void OnEnd(void* context) { ++static_cast<ProgressLog*>(context)->ends; }
void OnRange(void*, int16_t low, int16_t high) { EXPECT_TRUE(low == 0 && high == 100) << low << " " << high; }

TEST_F(ExportTest, ProgressOfTheSortsAndOfWriting) {
  AddPath({{0, 0}, {10, 0}}, false, "A");
  AddPath({{0, 60}, {10, 60}}, false, "B");
  RvGiSetProgressFunction(OnStep, OnRange, OnBegin, OnEnd, OnMessage);
  ProgressLog log;
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
  // By blocks (the arts in rows 0 and 1): key order, refinement, a report
  // after each lone entry.
  log = ProgressLog{};
  p.plotterClass = 0;
  Export(p, nullptr, &log);
  EXPECT_EQ(log.steps, (std::vector<int>{0, 50, 75, 100, 50, 100}));
  EXPECT_EQ(log.begins, 1);
  // One sort by bounds per cut-order step, each of one art: its own start,
  // the key order, the refinement; the arts written count against the last
  // sort's size.
  log = ProgressLog{};
  p.plotterClass = 6, p.sortPerCutOrder = 1;
  Export(p, nullptr, &log);
  EXPECT_EQ(log.steps, (std::vector<int>{0, 0, 50, 100, 0, 0, 50, 200}));

  // An excluded art (attribute bit 16) writes nothing but still widens the
  // placement rectangle; only the other is counted, both advance the count
  // of arts done.
  SetUp();
  AddPath({{0, 0}, {10, 0}}, false, "A", 2 | 16);
  AddPath({{0, 5}, {10, 5}}, false, "B");
  RvGiSetProgressFunction(OnStep, OnRange, OnBegin, OnEnd, OnMessage);
  log = ProgressLog{};
  EXPECT_EQ(Export(Param(6, 0), nullptr, &log), "PU5.00,0.00;PD5.00,0.00;PD5.00,10.00;PU;");
  EXPECT_EQ(log.steps, (std::vector<int>{100, 200}));
  EXPECT_TRUE(log.begins == 1 && log.ends == 1);
}

// Writing is cancelled after the first art: the file holds it and the end is
// reported. The sort by bounds asks first at its own start, the block sort
// of class 0 the second time, at 50 percent. The job's rectangle is grown by
// the margins, so its lower left lies at (-1, -1), and the document's box
// comes back afterwards.
TEST_F(ExportTest, CancelWhileWritingAndWhileSorting) {
  AddPath({{0, 0}, {10, 0}}, false, "A");
  AddPath({{0, 5}, {10, 5}}, false, "B");
  RvGiSetProgressFunction(OnStep, OnRange, OnBegin, OnEnd, OnMessage);
  const RVRECT page = Rect(-5, -5, 50, 50);
  ASSERT_EQ(RvGiSetDocBoundingBox(&page), 0u);
  struct Row { uint16_t cls; int32_t sort; int cancelAt; const char* file; uint32_t code; std::vector<int> steps; };
  const Row rows[] = {
      {6, 0, 0, "PU1.00,1.00;PD1.00,1.00;PD1.00,11.00;PU;", 0x06001F01u, {50}},
      {6, 1, 0, "", 0x0A001F01u, {0}},
      {0, 1, 1, "", 0x0A001F01u, {0, 50}},
  };
  for (const Row& row : rows) {
    ProgressLog log;
    log.cancelAt = row.cancelAt;
    RVPLOTPARAM p = Param(row.cls, 0);
    p.sortArts = row.sort, p.expandDocument = 1, p.marginLeft = p.marginBottom = 1;
    uint32_t code = 0;
    EXPECT_EQ(Export(p, &code, &log), row.file);
    EXPECT_EQ(code, row.code);
    EXPECT_EQ(log.steps, row.steps);
    EXPECT_EQ(log.ends, 1);
    RVRECT after{};
    ASSERT_EQ(RvGiGetDocBoundBox(&after), 0u);
    EXPECT_TRUE(after.left == -5.0 && after.bottom == -5.0);
  }
}

TEST_F(ExportTest, FrameRoundTheJob) {
  AddPath({{0, 0}, {10, 0}, {10, 4}}, false, "A");
  // The frame moves the job by its margins (1, 2). A key without conditions
  // gives one pass without a block; the frame runs round (0,0)-(10 + 2, 4 + 4)
  // after a block of the defaults.
  RVPLOTPARAM p = Param(6, 0);
  p.drawFrame = 1, p.frameMarginX = 1, p.frameMarginY = 2;
  p.conditionSource = 3;
  std::strcpy(p.conditionKey, "none");
  p.defaultPen = 3, p.defaultSpeed = 20, p.defaultPress = 90, p.defaultOffset = 0.25;
  EXPECT_EQ(Export(p), "PU2.00,1.00;PD2.00,1.00;PD2.00,11.00;PD6.00,11.00;PU;SP3;VS20,3;ZF90,3;ZO0.25;"
                       "PU8.00,0.00;PD8.00,12.00;PD0.00,12.00;PD0.00,0.00;PD8.00,0.00;PU8.00,0.00;");
}

// A closed art runs its passes without lifting, an open art moves to its
// start before each pass.
TEST_F(ExportTest, RepeatCountsOfClosedAndOpenArts) {
  CondRecord fast = Condition("5");
  fast.hasSpeed = fast.hasPress = fast.hasOffset = 1;
  fast.Speed = 30, fast.Press = 100, fast.Offset = 0.25;
  CondRecord slow = fast;
  slow.Speed = 10;
  for (const CondRecord* c : {&fast, &slow, &fast}) AddCondition("M3", *c);
  for (const CondRecord* c : {&slow, &fast}) AddCondition("M2", *c);
  ASSERT_EQ(RvGiSetPathPlotInfo(AddPath({{0, 0}, {0, 10}, {10, 10}, {10, 0}}, true, "A"), 0, "M3"), 0u);
  ASSERT_EQ(RvGiSetPathPlotInfo(AddPath({{0, 0}, {10, 0}}, false, "B"), 0, "M2"), 0u);
  const std::string f = "SP5;VS30,5;ZF100,5;ZO0.25;", s = "SP5;VS10,5;ZF100,5;ZO0.25;";
  const std::string loop = "PD0.00,0.00;PD10.00,0.00;PD10.00,10.00;PD0.00,10.00;PD0.00,0.00;";
  RVPLOTPARAM p = Param(6, 0);
  p.conditionSource = 1;
  EXPECT_EQ(Export(p), f + "PU0.00,0.00;" + loop + s + loop + f + loop + "PU;" + s + kStroke + f + kStroke + "PU;");
  p.conditionSource = 2;  // the pen only
  EXPECT_EQ(Export(p), "SP5;PU0.00,0.00;" + loop + "SP5;" + loop + "SP5;" + loop + "PU;SP5;" + kStroke + "SP5;" +
                           kStroke + "PU;");
  p.conditionSource = 0;  // no condition
  EXPECT_EQ(Export(p), "PU0.00,0.00;" + loop + "PU;" + kStroke + "PU;");

  // A double crease pass adds a pass for arts of "CRE" only; "CRE" maps to
  // pen 0, replaced by the default pen.
  SetUp();
  AddCondition("Fold", Condition("CRE"));
  ASSERT_EQ(RvGiSetPathPlotInfo(AddPath({{0, 0}, {10, 0}}, false, "B"), 0, "Fold"), 0u);
  p.conditionSource = 1, p.doubleCreasePass = 1, p.defaultPen = 4;
  const std::string block = "SP4;VS0,4;ZF0,4;ZO0.00;";
  EXPECT_EQ(Export(p), block + kStroke + block + kStroke + "PU;");
  EXPECT_EQ(RvGetRepeatCount("Fold"), 1);
}

// An open curve from `a` to `b` with the given handles.
std::vector<RVBEZIERPOINT> Curve(RVPOINT a, RVPOINT out, RVPOINT in, RVPOINT b) {
  std::vector<RVBEZIERPOINT> points{Pt(a.x, a.y), Pt(b.x, b.y)};
  points[0].out = out;
  points[1].in = in;
  return points;
}

TEST_F(ExportTest, CurveOutputs) {
  // 0: a bump from (0,0) to (40,0) with handles (0,10) and (40,10); with
  // tolerance 6 it halves once, at (20, 7.5).
  AddCurve(Curve({0, 0}, {0, 10}, {40, 10}, {40, 0}), false, "A");
  RVPLOTPARAM p = Param(6, 0);
  p.curveTolerance = 6.0;
  EXPECT_EQ(Export(p), "PU0.00,0.00;PD0.00,0.00;PD7.50,20.00;PD0.00,40.00;PU;");

  // 1: a quarter circle about (5,5) of radius 10 from (15,5) to (5,15),
  // handles 5.523 long: one arc, direction -1, the middle at t = 0.5
  // (12.071125, 12.071125); a straight line after it stays points. The arc's
  // values come divided by the curve operation; the move to an arc is
  // undivided and puts the pen down. The line: start, end, end again.
  SetUp();
  const RVRECT box = Rect(0, 0, 20, 20);
  AddCurve(Curve({15, 5}, {15, 10.523}, {10.523, 15}, {5, 15}), false, "A", 2, &box);
  AddPath({{0, 0}, {10, 0}}, false, "B", 2, &box);
  p = Param(6, 0);
  p.curveOutput = 1, p.deviceUnit = 0.5;
  EXPECT_EQ(Export(p), "PU10.00,30.00;PD;ZCAA-1,10.00,30.00,24.14,24.14,30.00,10.00,10.00,10.00;PU;"
                       "PU0.00,0.00;PD0.00,0.00;PD0.00,20.00;PD0.00,20.00;PU;");

  // 2: handles 0.08 off the chord, more than 0.1 degree, so not straight;
  // with the fixed tolerance 0.042 it halves once at (50, 0.06).
  SetUp();
  AddCurve(Curve({0, 0}, {30, 0.08}, {70, 0.08}, {100, 0}), false, "A");
  p = Param(6, 0);
  p.curveOutput = 2;
  EXPECT_EQ(Export(p), "PU0.00,0.00;PD;ZS0.00,0.00,0.06,50.00,0.00,100.00;PU;");
}

// The triangle (0,0) (100,0) (0,20) with its start stored twice; every edge
// straight with its handles at a third and two thirds, so that a curve's
// length grows evenly with its parameter. The corner at (100,0) turns by
// 168.7 degrees, above the limit of 120 (the corner at (0,20) by 101.3, the
// start by 90 after a run of 20 only); the joint lies 25 short of it.
TEST_F(ExportTest, BothSidesCutOfASharpTriangle) {
  const double third = 100.0 / 3.0, h = 20.0 / 3.0;
  RVBEZIERPOINT a = Pt(0, 0), b = Pt(100, 0), c = Pt(0, 20);
  a.in = {0, h}, a.out = {third, 0};
  b.in = {2 * third, 0}, b.out = {2 * third, h};
  c.in = {third, 2 * h}, c.out = {0, 2 * h};
  const std::string block = "SP1;VS20,1;ZF80,1;ZO0.30;";
  const char* whole = "PU0.00,0.00;PD0.00,0.00;PD0.00,100.00;PD20.00,0.00;PD0.00,0.00;PD0.00,0.00;PU;";
  struct Row { int16_t available; uint16_t cls; double joint; const char* expected; };  // null: not looked at
  const Row rows[] = {
      {1, 6, 25,  // along the edge up to the joint, from the corner back to it, the rest
       "PU0.00,0.00;PD0.00,0.00;PD0.00,75.00;PU0.00,100.00;PD0.00,100.00;PD0.00,75.00;"
       "PU0.00,100.00;PD0.00,100.00;PD20.00,0.00;PD0.00,0.00;PU;"},
      {0, 6, 25, whole},
      {1, 6, 150, whole},     // the run of 100 up to the corner isn't longer than the joint
      {1, 8, 25, nullptr},  // class 8 has no both-sides pass
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(::testing::Message() << row.available << " " << row.cls);
    SetUp();
    CondRecord cond = Condition("1");
    cond.hasSpeed = cond.hasPress = 1;
    cond.Speed = 20, cond.Press = 80;
    cond.DivideCut = DivideCutRecord{row.available, 0, 30.0, 120.0, 0, row.joint};
    AddCondition("BS", cond);
    void* triangle = AddCurve({a, b, c, a}, true, "T");
    ASSERT_EQ(RvGiSetPathPlotInfo(triangle, 0, "BS"), 0u);
    RVPLOTPARAM p = Param(row.cls, 0);
    p.conditionSource = 1, p.defaultOffset = 0.3;
    const std::string file = Export(p);
    EXPECT_TRUE(row.expected == nullptr || file == block + row.expected) << file;
    char value[8] = "x";
    const bool cut = row.expected != nullptr && row.expected != whole;
    EXPECT_EQ(RvGiGetArtTag(triangle, "RivlenKerflowBothSidesCutTag", value) == 0u, cut);
    if (!cut) continue;
    EXPECT_STREQ(value, "");
    EXPECT_NE(RvGiGetArtTag(triangle, "RivlenKerflowInToOutTag", value), 0u);
    // Five records, the joint inserted: the start, the joint, the corner...
    void* bezier = nullptr;
    ASSERT_EQ(RvGiGetArtFirstChild(triangle, &bezier), 0u);
    int32_t count = 0;
    ASSERT_EQ(RvGiGetPathSegmentCount(bezier, &count), 0u);
    EXPECT_EQ(count, 5);
    const uint8_t flags[] = {32, 128, 32 | 64};
    for (int32_t i = 0; i < 3; ++i) {
      RVBEZIERPOINT q{};
      ASSERT_EQ(RvGiGetBezierPoint(bezier, i, &q), 0u);
      EXPECT_EQ(q.flags, flags[i]) << i;
    }
  }
}

TEST_F(ExportTest, InsidePassTagsWhatLiesAtOddDepth) {
  void* outer = AddPath({{0, 0}, {0, 90}, {90, 90}, {90, 0}}, true, "A");
  void* middle = AddPath({{10, 10}, {10, 80}, {80, 80}, {80, 10}}, true, "B");
  void* inner = AddPath({{20, 20}, {20, 70}, {70, 70}, {70, 20}}, true, "C");
  void* apart = AddPath({{200, 0}, {200, 5}, {205, 5}, {205, 0}}, true, "D");
  Export(Param(6, 3));
  char value[8];
  for (void* art : {outer, middle, inner, apart}) {
    EXPECT_EQ(RvGiGetArtTag(art, "RivlenKerflowInsidePathTag", value) == 0u, art == middle);
  }
  // Sorted, enough paths are judged beside the sort and the writing; paths
  // turned as they are written make the writing wait for the judgment.
  for (int32_t turned : {0, 1}) {
    SetUp();
    std::vector<void*> rings;
    for (int k = 0; k < 700; ++k) {
      const double x = (k % 30) * 100.0, y = (k / 30) * 100.0;
      for (double d : {0.0, 10.0, 20.0}) {
        rings.push_back(AddPath({{x + d, y + d}, {x + d, y + 90 - d}, {x + 90 - d, y + 90 - d}, {x + 90 - d, y + d}},
                                true, "A"));
      }
    }
    RVPLOTPARAM p = Param(6, 3);
    p.sortArts = 1;
    p.forceCounterClockwise = turned;
    Export(p);
    for (std::size_t k = 0; k < rings.size(); ++k) {
      EXPECT_EQ(RvGiGetArtTag(rings[k], "RivlenKerflowInsidePathTag", value) == 0u, k % 3 == 1) << k;
    }
  }

  // A path whose only component is an arc (a circle of a plot file) takes no
  // part in the inside pass and doesn't fail the export (the job writer draws
  // Bezier components only); a group filed in the sorted route isn't judged
  // either.
  SetUp();
  void* square = AddPath({{0, 0}, {0, 10}, {10, 10}, {10, 0}, {0, 0}}, true, "A");
  void* circle = nullptr;
  void* arc = nullptr;
  void* group = nullptr;
  ASSERT_EQ(RvGiCreateArt(4, 5, m_layer, &circle), 0u);
  ASSERT_EQ(RvGiCreateArt(5, 5, circle, &arc), 0u);
  const RVARCPOINT full{{7, 5}, {7, 5}, {5, 5}, 360.0, 1};
  ASSERT_EQ(rv::Guard([&] { rv::CRvDataAccess::Instance().AddArcPoint(rv::ArtOf(arc), full); }), 0u);
  const RVRECT box = Rect(3, 3, 7, 7);
  ASSERT_EQ(RvGiSetPathClosed(circle, 1) | RvGiSetPathAttrFlag(circle, 2) | RvGiSetBoundingBox(circle, &box), 0u);
  ASSERT_EQ(RvGiAddRefMapData(m_map, "B", 2, circle), 0u);
  ASSERT_EQ(RvGiCreateArt(1, 5, m_layer, &group), 0u);
  ASSERT_EQ(RvGiSetPathAttrFlag(group, 2) | RvGiAddRefMapData(m_map, "C", 2, group), 0u);
  // Class 1, x first; the circle's art writes only its "PU;", the group
  // nothing. Sorted by bounds the circle, inside the square's box, is first.
  const std::string squareJob = "PU0.00,0.00;PD0.00,0.00;PD0.00,10.00;PD10.00,10.00;PD10.00,0.00;"
                                "PD0.00,0.00;PD0.00,0.00;PU;";
  for (int sorted : {0, 1}) {
    RVPLOTPARAM p = Param(1, 0);
    p.sortArts = sorted;
    EXPECT_EQ(Export(p), sorted ? "PU;" + squareJob : squareJob + "PU;") << sorted;
    EXPECT_NE(RvGiGetArtTag(circle, "RivlenKerflowInsidePathTag", value), 0u);
    EXPECT_NE(RvGiGetArtTag(square, "RivlenKerflowInsidePathTag", value), 0u);
  }
}

TEST_F(ExportTest, SortedRoutes) {
  // All starts in block 0 but E's (row 1, an odd row: key 1 * 21 + 21).
  AddPath({{0, 60}, {3, 60}}, false, "E");
  AddPath({{40, 1}, {45, 1}}, false, "A");
  AddPath({{8, 1}, {9, 1}}, false, "B");
  AddPath({{20, 1}, {6, 1}}, false, "D");
  AddPath({{0, 1}, {5, 1}}, false, "C");
  const RVRECT page = Rect(0, 0, 0, 0);
  ASSERT_EQ(RvGiSetDocBoundingBox(&page), 0u);
  RVPLOTPARAM p = Param(0, 0);
  p.sortArts = 1;
  // The rectangle's bottom is 1, so every y drops by 1; class 0 flips x over
  // 45. From the pen at (0,0): C, then from its end (5,0) B (3 away) before
  // D (15) and A (35); then D before A; E last.
  const std::string a = "PU0.00,5.00;PD0.00,5.00;PD0.00,0.00;PU;", b = "PU0.00,37.00;PD0.00,37.00;PD0.00,36.00;PU;",
                    c = "PU0.00,45.00;PD0.00,45.00;PD0.00,40.00;PU;", d = "PU0.00,25.00;PD0.00,25.00;PD0.00,39.00;PU;",
                    e = "PU59.00,45.00;PD59.00,45.00;PD59.00,42.00;PU;";
  EXPECT_EQ(Export(p), c + b + d + a + e);
  p.sortPerCutOrder = 1;  // each key a list of its own, in the cut order
  EXPECT_EQ(Export(p), e + a + b + d + c);

  // Cut-order steps pass over keys not for output (info without bit 2).
  SetUp();
  AddPath({{0, 0}, {10, 0}}, false, "A");
  ASSERT_EQ(RvGiAddRefMapData(m_map, "H", 1, AddPath({{0, 5}, {10, 5}}, false, nullptr)), 0u);
  AddPath({{0, 9}, {10, 9}}, false, "Z");
  p = Param(6, 0);
  p.sortArts = p.sortPerCutOrder = 1;
  EXPECT_EQ(Export(p), kStroke + "PU;PU9.00,0.00;PD9.00,0.00;PD9.00,10.00;PU;");
  p.plotterClass = 0;  // the block sort: x flipped over 10
  EXPECT_EQ(Export(p), "PU0.00,10.00;PD0.00,10.00;PD0.00,0.00;PU;PU9.00,10.00;PD9.00,10.00;PD9.00,0.00;PU;");

  // Sorted by bounds, the inner art goes first; the inside pass judges the
  // sorted arts.
  SetUp();
  void* outer = AddPath({{0, 0}, {0, 100}, {100, 100}, {100, 0}}, true, "A");
  void* inner = AddPath({{10, 10}, {10, 20}, {20, 20}, {20, 10}}, true, "B");
  p = Param(6, 0);
  p.sortArts = 1;
  EXPECT_EQ(Export(p), "PU10.00,10.00;PD10.00,10.00;PD20.00,10.00;PD20.00,20.00;PD10.00,20.00;PD10.00,10.00;PU;"
                       "PU0.00,0.00;PD0.00,0.00;PD100.00,0.00;PD100.00,100.00;PD0.00,100.00;PD0.00,0.00;PU;");
  char value[8];
  EXPECT_EQ(RvGiGetArtTag(inner, "RivlenKerflowInsidePathTag", value), 0u);
  EXPECT_NE(RvGiGetArtTag(outer, "RivlenKerflowInsidePathTag", value), 0u);
}

// Theta values come from the condition's extension; the milling families
// keep a milling record there, which has none.
TEST_F(ExportTest, ThetaRowsOnlyFromThetaExtensions) {
  CondRecord c = Condition("5");
  c.hasSpeed = 1, c.Speed = 30;
  const ThetaExtension theta{1, {1.5, 2, 3, 4, 5, 6}};
  AddCondition("T", c, &theta);
  AddPath({{0, 0}, {10, 0}}, false, "A");
  RVPLOTPARAM p = Param(6, 0);
  p.conditionSource = 3;
  std::strcpy(p.conditionKey, "T");
  EXPECT_EQ(Export(p), "SP5;VS30,5;ZG1.5,1;ZG2.0,2;ZG3.0,3;ZG4.0,4;ZG5.0,5;ZG6.0,6;" + kStroke + "PU;");

  rv::CRvCutCdnMng& conditions = rv::CRvCutCdnMng::Instance();
  ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  const uint16_t before = conditions.machineType;
  conditions.machineType = 3;
  const MillingExtension milling{1, 1, 1, 1, 8000, 0.5, 20, 1.0};
  CondPair pair{&c, &milling};
  ASSERT_EQ(RvAddCutCondition("T", 0, &pair), 0u);
  EXPECT_EQ(Export(p), "SP5;VS30,5;" + kStroke + "PU;");
  conditions.machineType = before;
}

}  // namespace
