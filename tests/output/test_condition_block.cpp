// The condition block of a pass in every source, dialect and tool variant,
// with the whole-number conversions, worked out from the command table.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "output/rvl_format.h"

namespace {

RVPLOTPARAM Param(uint16_t source, int16_t dialect) {
  RVPLOTPARAM p{};
  p.conditionSource = source;
  p.dialect = dialect;
  p.plotterClass = 6;
  p.defaultPen = 7;
  p.defaultSpeed = 11;
  p.defaultSpeedExact = 2.5;
  p.defaultPress = 44;
  p.defaultOffset = 0.5;
  return p;
}

CondRecord Cutting(const char* tool) {
  CondRecord c{};
  std::strncpy(c.Tool, tool, sizeof c.Tool - 1);
  c.hasSpeed = 1;
  c.Speed = 30;
  c.SpeedDecimal = 12.5;
  c.hasPress = 1;
  c.Press = 100;
  c.hasOffset = 1;
  c.Offset = 0.25;
  c.WDZUnit = 2;
  c.Thickness = 0.25;
  c.ZPosition = 0.25;
  return c;
}

std::string Block(const RVPLOTPARAM& p, const CondRecord& c, const ThetaExtension* theta = nullptr,
                  uint8_t* vCut = nullptr) {
  rv::CRvRVLFormat format(p);
  std::string out;
  format.ComposeConditionBlock(out, c, theta);
  if (vCut != nullptr) *vCut = format.m_vCut;
  return out;
}

TEST(ConditionBlock, PenHpglFromPlotInfoAndFromTheFixedKey) {
  const CondRecord c = Cutting("5");
  EXPECT_EQ(Block(Param(1, 0), c), "SP5;VS30,5;ZF100,5;ZO0.25;");
  RVPLOTPARAM decimal = Param(1, 0);
  decimal.machineType = 7;
  EXPECT_EQ(Block(decimal, c), "SP5;VS12.5,5;ZF100,5;ZO0.25;");
  decimal.machineType = 10;
  EXPECT_EQ(Block(decimal, c), "SP5;VS12.5,5;ZF100,5;ZO0.25;");

  // Source 1 writes every value, the defaults where the condition has none;
  // source 3 only what the condition enables. A tool that maps to pen 0
  // takes the default pen.
  CondRecord speedOnly = Cutting("PEN");
  speedOnly.hasPress = 0;
  speedOnly.hasOffset = 0;
  EXPECT_EQ(Block(Param(1, 0), speedOnly), "SP7;VS30,7;ZF44,7;ZO0.50;");
  EXPECT_EQ(Block(Param(3, 0), speedOnly), "SP7;VS30,7;");
  CondRecord nothing = Cutting("3");
  nothing.hasSpeed = nothing.hasPress = nothing.hasOffset = 0;
  EXPECT_EQ(Block(Param(1, 0), nothing), "SP3;VS11,3;ZF44,3;ZO0.50;");
  decimal.conditionSource = 1;
  EXPECT_EQ(Block(decimal, nothing), "SP3;VS2.5,3;ZF44,3;ZO0.50;");
  EXPECT_EQ(Block(Param(3, 0), nothing), "SP3;");

  // The tool map goes first.
  RVPLOTPARAM mapped = Param(1, 0);
  std::strcpy(mapped.toolPens[0].name, "5");
  mapped.toolPens[0].pen = 9;
  EXPECT_EQ(Block(mapped, c), "SP9;VS30,9;ZF100,9;ZO0.25;");
  // Without tool defaults, the other dialects of a cutter have no block.
  EXPECT_EQ(Block(Param(1, 1), c), "");
  EXPECT_EQ(Block(Param(1, 2), c), "");
  EXPECT_EQ(Block(Param(1, 4), c), "");
  EXPECT_EQ(Block(Param(0, 0), c), "");
}

TEST(ConditionBlock, LaserAndCoatingValues) {
  CondRecord laser{};
  laser.LaserSpeed = 50;   // 50 % of 707000
  laser.LaserPower = 0.5;  // times 100
  laser.LaserFreq = 20;
  EXPECT_EQ(Block(Param(1, 5), laser), "VS353500\rLP50\rLF20\r");
  EXPECT_EQ(Block(Param(3, 5), laser), "VS353500\rLP50\rLF20\r");

  CondRecord coat{};
  std::strcpy(coat.NozzleRotation, "12");
  coat.CoatingSpeed = 10;
  coat.SpeedAdjust = 0.5;  // (10 + 0.5) * 60
  coat.MediaThickness = 1.25;
  coat.Gap = 0.5;
  coat.MisalignmentCorrect = 0.1;
  EXPECT_EQ(Block(Param(1, 6), coat),
            "CoatingNozzleRotation 12\nF630.00\nG01 Z1.75\nCoatingFillMode 0\nCoatingConstantMoveOffset 0.10\n");
}

TEST(ConditionBlock, ToolMachineWordsWithToolDefaults) {
  RVPLOTPARAM p = Param(1, 1);
  p.writeToolDefaults = 1;
  // Tool 13 works by depth: thickness 0.25 -> 3, Z position 0.25 -> 0.5 - 2.5 -> -2.
  EXPECT_EQ(Block(p, Cutting("13")), "DF1;JT13,2;VS12.5,13;JW3;JZ-2;");
  // Tool -15 is found by its unsigned value and written by its magnitude.
  EXPECT_EQ(Block(p, Cutting("-15")), "DF1;JT15,2;VS12.5,15;JW3;JZ-2;");
  // Tool 10 presses instead.
  EXPECT_EQ(Block(p, Cutting("10")), "DF1;JT10,2;VS12.5,10;ZF100,10;JW3;");
  // A tool outside the table: neither pressure nor depth.
  EXPECT_EQ(Block(p, Cutting("12")), "DF1;JT12,2;VS12.5,12;JW3;");

  // Tool 17 cuts V grooves: row 95 in place of thickness and depth, without
  // 0.5 added: type 2 -> 1, not 1 -> 0, -(0.25 * 10) -> -2, 0.35 * 10 -> 3,
  // the first Theta value 4.5 * 10 -> 45. No Theta rows follow.
  CondRecord v = Cutting("17");
  v.VCutType = 2;
  v.VCutOffset = 0.35;
  ThetaExtension theta{1, {4.5, 1, 2, 3, 4, 5}};
  uint8_t vCut = 0;
  EXPECT_EQ(Block(p, v, &theta, &vCut), "DF1;JT17,2;VS12.5,17;VT1,0,-2,3,45;");
  EXPECT_EQ(vCut, 1);
  v.VCutType = 1;
  theta.Available = 0;
  EXPECT_EQ(Block(p, v), "DF1;JT17,2;VS12.5,17;VT0,1,-2,3,0;");

  // Other dialects: pen, then what the condition enables.
  p.dialect = 0;
  EXPECT_EQ(Block(p, Cutting("5")), "DF1;SP5;VS30,5;ZF100,5;ZO0.25;");
  p.machineType = 7;
  EXPECT_EQ(Block(p, Cutting("5")), "DF1;SP5;VS12,5;ZF100,5;ZO0.25;");
  CondRecord bare = Cutting("5");
  bare.hasSpeed = bare.hasPress = bare.hasOffset = 0;
  EXPECT_EQ(Block(p, bare), "DF1;SP5;");
}

TEST(ConditionBlock, ThetaRowsAndPenOnlySource) {
  const ThetaExtension theta{1, {1.5, 2, 2.25, -1, 0, 90}};
  const std::string zg = "ZG1.5,1;ZG2.0,2;ZG2.2,3;ZG-1.0,4;ZG0.0,5;ZG90.0,6;";
  EXPECT_EQ(Block(Param(1, 0), Cutting("5"), &theta), "SP5;VS30,5;ZF100,5;ZO0.25;" + zg);
  RVPLOTPARAM never = Param(1, 0);
  for (uint16_t cls : {0, 5, 8, 9, 10, 12}) {
    never.plotterClass = cls;
    EXPECT_EQ(Block(never, Cutting("5"), &theta), "SP5;VS30,5;ZF100,5;ZO0.25;") << cls;
  }
  const ThetaExtension off{0, {1.5, 2, 2.25, -1, 0, 90}};
  EXPECT_EQ(Block(Param(1, 0), Cutting("5"), &off), "SP5;VS30,5;ZF100,5;ZO0.25;");

  // Source 2: the pen alone (in dialect 1 with the tool unit), after "DF1;"
  // with tool defaults; pen 0 stays 0.
  EXPECT_EQ(Block(Param(2, 0), Cutting("5"), &theta), "SP5;");
  EXPECT_EQ(Block(Param(2, 1), Cutting("5")), "JT5,2;");
  EXPECT_EQ(Block(Param(2, 0), Cutting("PEN")), "SP0;");
  RVPLOTPARAM defaults = Param(2, 0);
  defaults.writeToolDefaults = 1;
  EXPECT_EQ(Block(defaults, Cutting("5")), "DF1;SP5;");
  EXPECT_EQ(Block(Param(2, 5), Cutting("5")), "");
}

}  // namespace
