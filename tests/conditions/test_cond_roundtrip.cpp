// Condition files of every machine family: the saved bytes against files
// written by hand from the format, and the table after loading them back.
#include "cond_test_util.h"

namespace {

using namespace condtest;

const ThetaExtension kTheta{1, {0.5, 1.0, 1.26, 2.0, 2.5, 3.0}};  // written with one decimal
const DivideCutRecord kDivide{1, 2, 25.5, 45.0, 1, 7.5};

class RoundTrip : public ConditionTest {
 protected:
  // Saves and compares the bytes; loads them into a cleared table and saves
  // again: the same bytes, so the load put every element into its field.
  std::vector<Pass> SaveAndReload(uint16_t type, const std::string& golden) {
    EXPECT_EQ(Saved(), golden);
    EXPECT_EQ(Reload(type, golden), 0u);
    EXPECT_EQ(Saved(), golden);
    return AllPasses();
  }
};

TEST_F(RoundTrip, TQWritesUnsetValuesAsMinusOneAndLoadsThemUnset) {
  CondRecord p0 = Cutting("CB09", 20, 100, 0.25), p1 = Cutting("CB15", 99, 50, 0.0);
  p0.DivideCut = kDivide;
  p0.Thickness = 4.0;  // not a TQ element
  p1.hasSpeed = p1.hasPress = 0;
  Add("Paper", 0, p0, &kTheta);
  Add("Paper", 1, p1);
  Add("Vinyl", 0, p0, &kTheta);
  auto passes = SaveAndReload(0, Golden("tq.xml"));
  ASSERT_EQ(passes.size(), 3u);
  ExpectRecord(passes[1].record, CondRecord{.Tool = "CB15", .hasOffset = 1, .Speed = -1, .Press = -1, .Offset = 0.0,
                                            .Thickness = -1.0, .WDZUnit = -1, .ZPosition = -1.0, .VCutType = -1,
                                            .VCutOffset = -1.0, .DivideCut = {-1, 0, 30.0, 30.0, 0, 10.0}});
}

TEST_F(RoundTrip, EveryCuttingFamilyWritesItsRootAndElements) {
  const struct {
    uint16_t type;
    const char* root;
    const char* version;
    bool decimal, divideCut;
  } families[] = {
      {1, "WDCutConditionList", "2.00", false, true},     {2, "WD3CutConditionList", "2.00", false, true},
      {4, "BNSCutConditionList", "1.00", false, false},   {5, "TQ2CutConditionList", "1.00", false, false},
      {6, "TQNVCutConditionList", "1.00", false, false},  {7, "WDPCutConditionList", "1.00", true, true},
      {8, "YBNSCutConditionList", "1.00", false, false},  {9, "TQNV2CutConditionList", "1.00", false, false},
      {10, "WD22CutConditionList", "1.00", true, true},   {14, "TQHBCutConditionList", "1.00", false, false},
      {18, "TQCutConditionList", "1.00", false, false},   {400, "TQCutConditionList", "1.00", false, false},
  };
  for (const auto& f : families) {
    SCOPED_TRACE(f.root + std::string(" type ") + std::to_string(f.type));
    UseMachineType(f.type, f.root, f.version);
    CondRecord r = Cutting("CB09", 20, 100, 0.25);
    r.SpeedDecimal = 12.5;
    r.DivideCut = kDivide;
    Add("Film", 0, r, &kTheta);
    auto passes = SaveAndReload(
        f.type, std::string(kDecl) + "<" + f.root + " version=\"" + f.version +
                    "\"><CutCondition><Name>Film</Name><Condition><Tool>CB09</Tool><Speed>" +
                    (f.decimal ? "12.500000" : "20") +
                    "</Speed><Press>100</Press><Offset>0.250000</Offset>"
                    "<Theta>Available=1,[0.5][1.0][1.3][2.0][2.5][3.0]</Theta>" +
                    (f.divideCut ? "<DivideCut>Available=1,[2][25.5][45.0][1][7.5]</DivideCut>" : "") +
                    "</Condition></CutCondition></" + f.root + ">");
    EXPECT_EQ(Fields(passes.at(0).record.DivideCut), Fields(f.divideCut ? kDivide : kDivideDefault));
    EXPECT_EQ(passes[0].record.Speed, f.decimal ? 0 : 20);  // the other speed form isn't read
  }
}

TEST_F(RoundTrip, WDZWritesUnitZPositionAndAWholeVCutType) {
  UseMachineType(16, "WDZCutConditionList", "1.00");
  const CondRecord r{.Tool = "V90", .hasSpeed = 1, .hasPress = 1, .hasOffset = 1, .Press = 80, .Offset = 0.3,
                     .Thickness = 3.0, .SpeedDecimal = 12.5, .WDZUnit = 2, .ZPosition = 1.25, .VCutType = 70000,
                     .VCutOffset = 0.5, .DivideCut = kDivide};
  Add("Board", 0, r, &kTheta);
  auto passes = SaveAndReload(16, Golden("wdz.xml"));
  EXPECT_EQ(std::tie(passes.at(0).record.hasOffset, passes[0].record.Offset), std::make_tuple(0u, -1.0));
}

TEST_F(RoundTrip, MillingFamiliesWriteTheirExtensionAndDecideMillingAtTheFirstPass) {
  UseMachineType(3, "WD3KCutConditionList", "1.00");
  const MillingExtension mw0{1, 1, 1, 1, 24000, 1.5, 5, 2.5}, mw1{0, 0, 0, 0, 100, 9.0, 9, 9.0};
  const MillingExtension mf0{1, 1, 1, 0, 12000, 2.0, 3, 4.0};
  Add("Wood", 0, CondRecord{.Tool = "EM3", .hasSpeed = 1, .Thickness = 6.0, .SpeedDecimal = 20.5, .CutDirection = 1},
      &mw0);
  Add("Wood", 1, CondRecord{.Tool = "EM3", .Thickness = 6.0, .SpeedDecimal = 7.0}, &mw1);
  Add("Foam", 0, CondRecord{.Tool = "EM6", .hasSpeed = 1, .Thickness = 2.0, .SpeedDecimal = 10.0, .CutDirection = 1},
      &mf0);
  auto passes = SaveAndReload(3, Golden("wd3k.xml"));
  ASSERT_EQ(passes.size(), 3u);
  ExpectExtension(passes[1].extension, MillingExtension{0, 0, 0, 1, -1, -1.0, -1, 9.0});
  ExpectExtension(passes[2].extension, MillingExtension{1, 1, 1, 0, 12000, 2.0, 3, 3.0});

  UseMachineType(15, "WDZKCutConditionList", "1.00");
  const MillingExtension m{1, 1, 1, 1, 18000, 0.7, 4, 1.0};
  Add("Alu", 0,
      CondRecord{.Tool = "EM2", .hasSpeed = 1, .Thickness = 1.5, .SpeedDecimal = 8.25, .CutDirection = 65538,
                 .WDZUnit = 1, .ZPosition = 0.5},
      &m);
  passes = SaveAndReload(15, Golden("wdzk.xml"));  // CutDirection is written in 16 bits: 2
  ExpectExtension(passes.at(0).extension, MillingExtension{1, 0, 1, 1, 18000, -1.0, 4, 1.0});  // no CuttingDepth
}

TEST_F(RoundTrip, HWDCoatingWritesItsSeventeenElements) {
  UseMachineType(13, "HWDCutConditionList", "3.00");
  CondRecord r{.Tool = "not written", .InkName = "White", .MediaType = "Glass", .MediaThickness = 3.0,
               .NozzleType = "N1", .CoatingThickness = 20.0, .Gap = 1.5, .NozzleRotation = "90", .FlowRate = 0.75,
               .AtomizationPress = 0.2, .CoatingSpeed = 100.0, .Pitch = 2.0, .SpeedAdjust = 1.1, .PitchAdjust = 0.9,
               .CoatingFillDirection = 1, .MisalignmentCorrect = 0.05, .CoatingJoinLimit = 0.5,
               .CoatingFillOffset = 0.25};
  Add("Panel", 0, r, &kTheta);
  auto passes = SaveAndReload(13, Golden("hwd.xml"));
  r.Tool[0] = '\0';
  ExpectRecord(passes.at(0).record, r);
  ExpectExtension(passes[0].extension, ThetaExtension{});  // coating keeps a zero Theta
}

// The coating file of an older version: CoatingThickness given, no AtomizationPress.
std::string OldCoating(const std::string& thickness, const char* version = "1.00") {
  std::string file = Golden("hwd.xml"), atomization = "<AtomizationPress>0.200000</AtomizationPress>";
  file.replace(file.find("3.00"), 4, version);
  file.replace(file.find("20.000000"), 9, thickness);
  return file.erase(file.find(atomization), atomization.size());
}

TEST_F(RoundTrip, HWDVersionOneUsesWordsAndDefaultsTheAtomization) {
  ASSERT_EQ(Load(13, OldCoating("&lt;Normal&gt;")), 0u);
  std::string resaved = Golden("hwd.xml");
  EXPECT_EQ(Saved(), resaved.replace(resaved.find("0.200000"), 8, "0.100000"));
  // The other words; -1: refused, as any other text, a number, or a version after 1.00 without AtomizationPress.
  const std::tuple<const char*, const char*, double> rows[] = {
      {"&lt;Thick&gt;", "1.00", 30.0}, {"&lt;Slightly Thick&gt;", "1.00", 25.0},
      {"<![CDATA[<Slightly Thin>]]>", "1.00", 15.0}, {"&lt;Thin&gt;", "1.00", 10.0},
      {"&lt;Medium&gt;", "1.00", -1}, {"&lt;normal&gt;", "1.00", -1},
      {"20.000000", "1.00", -1}, {"20.0", "2.00", -1}};
  for (const auto& [thickness, version, value] : rows) {
    EXPECT_EQ(Reload(13, OldCoating(thickness, version)), value < 0 ? 15u : 0u) << thickness << " " << version;
    if (value > 0) {
      EXPECT_EQ(AllPasses().at(0).record.CoatingThickness, value) << thickness;
    }
  }
}

TEST_F(RoundTrip, LaserFamiliesWriteSpeedPowerAndTheirThirdValue) {
  const CondRecord r{.LaserSpeed = 100.5, .LaserPower = 30.0, .LaserFreq = 2000, .LaserDpi = "600x600"};
  UseMachineType(11, "SOVECutConditionList", "1.00");
  Add("Acryl", 0, r);
  EXPECT_STREQ(SaveAndReload(11, Golden("sove.xml")).at(0).record.LaserDpi, "");
  UseMachineType(12, "SOPICutConditionList", "1.00");
  Add("Acryl", 0, r);
  EXPECT_EQ(SaveAndReload(12, Golden("sopi.xml")).at(0).record.LaserFreq, -1);
}

TEST_F(RoundTrip, LongNamesAreCutToTheFileLimit) {
  Add(std::string(300, 'n').c_str(), 0, Cutting("T", 1, 2, 0.5));
  EXPECT_NE(Saved().find("<Name>" + std::string(255, 'n') + "</Name>"), std::string::npos);
}

}  // namespace
