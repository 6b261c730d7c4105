// The writers of the format on their own, with hand-worked bytes: the
// condition block of a pass in every source, dialect and tool variant, the
// path writer, the frame and short writes.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "export_fixture.h"
#include "output/rvl_format.h"

namespace {

using rvtest::Param;
using rvtest::Pt;
using rvtest::Rect;

// Speed 30 (decimal 12.5), pressure 100, offset 0.25 where `enables` has bit
// 1, 2, 4; tool unit 2, thickness and Z position 0.25.
CondRecord Cutting(const char* tool, int enables = 7) {
  CondRecord c = rvtest::Condition(tool);
  c.hasSpeed = enables & 1;
  c.hasPress = (enables >> 1) & 1;
  c.hasOffset = (enables >> 2) & 1;
  c.Speed = 30, c.SpeedDecimal = 12.5, c.Press = 100, c.Offset = 0.25;
  c.WDZUnit = 2, c.Thickness = c.ZPosition = 0.25;
  return c;
}

// Defaults: pen 7, speed 11 (exact 2.5), pressure 44, offset 0.5.
RVPLOTPARAM BlockParam(uint16_t source, int16_t dialect, uint16_t machineType = 0, int32_t toolDefaults = 0) {
  RVPLOTPARAM p = Param(6, dialect);
  p.conditionSource = source, p.machineType = machineType, p.writeToolDefaults = toolDefaults;
  p.defaultPen = 7, p.defaultSpeed = 11, p.defaultSpeedExact = 2.5, p.defaultPress = 44, p.defaultOffset = 0.5;
  return p;
}

std::string Block(const RVPLOTPARAM& p, const CondRecord& c, const ThetaExtension* theta = nullptr,
                  uint8_t* vCut = nullptr) {
  rv::CRvRVLFormat format(p);
  std::string out;
  format.ComposeConditionBlock(out, c, theta);
  if (vCut != nullptr) *vCut = format.m_vCut;
  return out;
}

TEST(ConditionBlock, EverySourceDialectAndTool) {
  const ThetaExtension theta{1, {1.5, 2, 2.25, -1, 0, 90}};
  const std::string all = "SP5;VS30,5;ZF100,5;ZO0.25;";
  struct Row { uint16_t source; int16_t dialect; uint16_t machineType; int32_t toolDefaults; const char* tool;
               int enables; bool theta; std::string expected; };
  const Row rows[] = {
      // Dialect 0: source 1 writes every value, the defaults where the
      // condition has none; source 3 only what it enables. Decimal speed for
      // machine types 7 and 10. A tool that maps to pen 0 takes the default
      // pen. (Every value of a condition, and Theta rows: whole exports.)
      {1, 0, 7, 0, "5", 7, false, "SP5;VS12.5,5;ZF100,5;ZO0.25;"},
      {1, 0, 10, 0, "5", 7, false, "SP5;VS12.5,5;ZF100,5;ZO0.25;"},
      {1, 0, 0, 0, "PEN", 1, false, "SP7;VS30,7;ZF44,7;ZO0.50;"},
      {3, 0, 0, 0, "PEN", 1, false, "SP7;VS30,7;"},
      {1, 0, 0, 0, "3", 0, false, "SP3;VS11,3;ZF44,3;ZO0.50;"},
      {1, 0, 7, 0, "3", 0, false, "SP3;VS2.5,3;ZF44,3;ZO0.50;"},
      {3, 0, 0, 0, "3", 0, false, "SP3;"},
      // Without tool defaults the other cutter dialects have no block.
      {1, 1, 0, 0, "5", 7, false, ""},
      // Dialect 1 with tool defaults: tool 13 works by depth, thickness 0.25
      // -> 3, Z position 0.25 -> 0.5 - 2.5 -> -2; tool -15 is found by its
      // unsigned value and written by its magnitude; tool 10 presses; tool 12
      // is outside the property table.
      {1, 1, 0, 1, "13", 7, false, "DF1;JT13,2;VS12.5,13;JW3;JZ-2;"},
      {1, 1, 0, 1, "-15", 7, false, "DF1;JT15,2;VS12.5,15;JW3;JZ-2;"},
      {1, 1, 0, 1, "10", 7, false, "DF1;JT10,2;VS12.5,10;ZF100,10;JW3;"},
      {1, 1, 0, 1, "12", 7, false, "DF1;JT12,2;VS12.5,12;JW3;"},
      // Dialect 0 with tool defaults: the pen, then what the condition enables.
      {1, 0, 0, 1, "5", 7, false, "DF1;" + all},
      {1, 0, 7, 1, "5", 7, false, "DF1;SP5;VS12,5;ZF100,5;ZO0.25;"},
      {1, 0, 7, 1, "5", 0, false, "DF1;SP5;"},
      // Source 2: the pen alone (in dialect 1 with the tool unit); pen 0 stays 0.
      {2, 0, 0, 0, "5", 7, true, "SP5;"},
      {2, 1, 0, 0, "5", 7, false, "JT5,2;"},
      {2, 0, 0, 0, "PEN", 7, false, "SP0;"},
      {2, 0, 0, 1, "5", 7, false, "DF1;SP5;"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(::testing::Message() << row.source << "/" << row.dialect << "/" << row.tool);
    const RVPLOTPARAM p = BlockParam(row.source, row.dialect, row.machineType, row.toolDefaults);
    EXPECT_EQ(Block(p, Cutting(row.tool, row.enables), row.theta ? &theta : nullptr), row.expected);
  }
  // The tool map goes first.
  RVPLOTPARAM mapped = BlockParam(1, 0);
  std::strcpy(mapped.toolPens[0].name, "5");
  mapped.toolPens[0].pen = 9;
  EXPECT_EQ(Block(mapped, Cutting("5")), "SP9;VS30,9;ZF100,9;ZO0.25;");
  // No Theta rows in these classes, nor from a switched-off extension.
  for (uint16_t cls : {0, 5, 8, 9, 10, 12}) {
    mapped = BlockParam(1, 0);
    mapped.plotterClass = cls;
    EXPECT_EQ(Block(mapped, Cutting("5"), &theta), all) << cls;
  }
  const ThetaExtension off{0, {1.5, 2, 2.25, -1, 0, 90}};
  EXPECT_EQ(Block(BlockParam(1, 0), Cutting("5"), &off), all);
}

TEST(ConditionBlock, VGroovesLaserAndCoating) {
  // Tool 17 cuts V grooves: row 95 in place of thickness and depth, without
  // 0.5 added: type 2 -> 1, not 1 -> 0, -(0.25 * 10) -> -2, 0.35 * 10 -> 3,
  // the first Theta value 4.5 * 10 -> 45. No Theta rows follow.
  CondRecord v = Cutting("17");
  v.VCutType = 2, v.VCutOffset = 0.35;
  ThetaExtension theta{1, {4.5, 1, 2, 3, 4, 5}};
  uint8_t vCut = 0;
  const RVPLOTPARAM p = BlockParam(1, 1, 0, 1);
  EXPECT_EQ(Block(p, v, &theta, &vCut), "DF1;JT17,2;VS12.5,17;VT1,0,-2,3,45;");
  EXPECT_EQ(vCut, 1);
  v.VCutType = 1, theta.Available = 0;
  EXPECT_EQ(Block(p, v), "DF1;JT17,2;VS12.5,17;VT0,1,-2,3,0;");

  CondRecord laser{};
  laser.LaserSpeed = 50, laser.LaserPower = 0.5, laser.LaserFreq = 20;  // 50 % of 707000, power times 100
  EXPECT_EQ(Block(BlockParam(3, 5), laser), "VS353500\rLP50\rLF20\r");

  CondRecord coat{};
  std::strcpy(coat.NozzleRotation, "12");
  coat.CoatingSpeed = 10, coat.SpeedAdjust = 0.5;  // (10 + 0.5) * 60
  coat.MediaThickness = 1.25, coat.Gap = 0.5, coat.MisalignmentCorrect = 0.1;
  EXPECT_EQ(Block(BlockParam(1, 6), coat),
            "CoatingNozzleRotation 12\nF630.00\nG01 Z1.75\nCoatingFillMode 0\nCoatingConstantMoveOffset 0.10\n");
}

// Runs `body` on a format writing into a temporary file, placed for the
// rectangle (0,0)-(10,10); returns the bytes.
template <class Body>
std::string Written(const RVPLOTPARAM& param, Body&& body) {
  return rvtest::WrittenJob([&](const char* file) {
    rv::CRvRVLFormat format(param);
    EXPECT_EQ(format.Open(file, "wb"), 0u);
    format.SetPlacement(rv::kIdentity, Rect(0, 0, 10, 10));
    body(format);
    return format.Close();
  });
}

// One path component through the path writer, placed by `placement` for the
// rectangle (0,0)-(10,10).
std::string WrittenPath(const RVPLOTPARAM& param, const rv::CRvBezier& path, bool closed, bool forward = true,
                        const RVRIFMATRIX& artMatrix = rv::kIdentity, const RVRIFMATRIX& placement = rv::kIdentity,
                        int needMove = 1, uint8_t vCut = 0) {
  return Written(param, [&](rv::CRvRVLFormat& f) {
    f.SetPlacement(placement, Rect(0, 0, 10, 10));
    f.m_vCut = vCut;
    f.WritePath(path, artMatrix, closed, forward, needMove);
    EXPECT_EQ(needMove, 0);
  });
}

TEST(PathWriter, DirectionsStartSegmentMatricesAndVGrooves) {
  // A closed square (0,0) (0,10) (10,10) (10,0), its start stored twice
  // (forward in the whole exports). Backward: from the start to the repeated
  // start first, then round the other way.
  rv::CRvBezier square;
  for (auto [x, y] : {std::pair{0, 0}, {0, 10}, {10, 10}, {10, 0}, {0, 0}}) square.AddPoint(Pt(x, y));
  EXPECT_EQ(WrittenPath(Param(6, 0), square, true, false),
            "PU0.00,0.00;PD0.00,0.00;PD0.00,0.00;PD0.00,10.00;PD10.00,10.00;PD10.00,0.00;PD0.00,0.00;");
  // Start segment 2: from (10,10) round to it.
  square.EnsureAttr().word = uint32_t(2) << 16;
  EXPECT_EQ(WrittenPath(Param(6, 0), square, true),
            "PU10.00,10.00;PD10.00,10.00;PD0.00,10.00;PD0.00,0.00;PD0.00,0.00;PD10.00,0.00;PD10.00,10.00;");

  // The art matrix, then the placement: shifted by (1, 2), then by (10, 0);
  // without a move.
  rv::CRvBezier line;
  line.AddPoint(Pt(0, 0));
  line.AddPoint(Pt(20, 5));
  RVRIFMATRIX artMatrix = rv::kIdentity, placement = rv::kIdentity;
  artMatrix.tx = 1, artMatrix.ty = 2;
  placement.tx = 10;
  EXPECT_EQ(WrittenPath(Param(6, 4), line, false, true, artMatrix, placement, 0), "PD2.00,11.00;PD7.00,31.00;");
  // A V groove draws with its own row.
  EXPECT_EQ(WrittenPath(Param(6, 1), line, false, true, rv::kIdentity, rv::kIdentity, 1, 1),
            "PU0.00,0.00;VA0.00,0.00;VA5.00,20.00;");
}

TEST(PathWriter, FrameRoundTheJob) {
  RVPLOTPARAM p = Param(0, 0);
  p.conditionSource = 1;
  p.defaultPen = 2, p.defaultSpeed = 30, p.defaultPress = 80, p.defaultOffset = 0.25;
  p.originX = 5, p.originY = 6, p.deviceMinX = 1, p.deviceMinY = 2;
  p.frameMarginX = 3, p.frameMarginY = 4, p.scaleX = 50;
  auto frame = [&](const RVPLOTPARAM& param) {
    return Written(param, [&](rv::CRvRVLFormat& f) {
      f.SetPlacement(rv::kIdentity, Rect(0, 0, 100, 40));
      f.WriteFrame();
    });
  };
  // rect w = 100, h = 40: a = 40, b = 100; p0 = 8, q0 = 6, p1 = 40 + 8 + 8 = 56,
  // q1 = 50 + 6 + 6 = 62.
  EXPECT_EQ(frame(p), "SP2;VS30,2;ZF80,2;ZO0.25;"
                      "PU56.00,6.00;PD56.00,62.00;PD8.00,62.00;PD8.00,6.00;PD56.00,6.00;PU56.00,6.00;");
  p.machineType = 7, p.defaultSpeedExact = 12.25;
  p.plotterClass = 1;  // p and q exchange
  EXPECT_EQ(frame(p), "SP2;VS12.2,2;ZF80,2;ZO0.25;"
                      "PU62.00,8.00;PD62.00,56.00;PD6.00,56.00;PD6.00,8.00;PD62.00,8.00;PU62.00,8.00;");
  p.plotterClass = 0;
  p.writeToolDefaults = 1;
  p.rotation = 0.5;  // any rotation but 0 and a half turn exchanges a and b
  // a = 100, b = 40: p1 = 100 + 8 + 8 = 116, q1 = 20 + 6 + 6 = 32.
  EXPECT_EQ(frame(p), "DF1;PU116.00,6.00;PD116.00,32.00;PD8.00,32.00;PD8.00,6.00;PD116.00,6.00;PU116.00,6.00;");
  p.conditionSource = 0, p.dialect = 2, p.deviceUnit = 2.0;
  EXPECT_EQ(frame(p), "M58.00,3.00\x03" "D58.00,16.00\x03" "D4.00,16.00\x03" "D4.00,3.00\x03" "D58.00,3.00\x03"
                      "M58.00,3.00\x03");
}

TEST(PathWriter, ShortWriteClosesAndFails) {
  rv::CRvRVLFormat format(Param(6, 0));
  ASSERT_EQ(format.Open("/dev/full", "wb"), 0u);
  std::setvbuf(format.File(), nullptr, _IONBF, 0);
  EXPECT_EQ(rv::Guard([&] { format.WriteBytes("PU;", 3); }), 0x01000301u);
  EXPECT_EQ(format.File(), nullptr);
  EXPECT_EQ(rv::Guard([&] { format.WriteBytes("", 0); }), 0u);
}

}  // namespace
