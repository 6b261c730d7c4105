// Condition files of every machine family: the saved bytes against files
// written by hand from the format, and the table after loading them back.
#include "cond_test_util.h"

namespace {

using condtest::AllPasses;
using condtest::ConditionTest;
using condtest::Cutting;
using condtest::ExpectMilling;
using condtest::ExpectRecord;
using condtest::ExpectTheta;
using condtest::kDecl;

const ThetaExtension kTheta{1, {0.5, 1.0, 1.26, 2.0, 2.5, 3.0}};
const ThetaExtension kThetaSaved{1, {0.5, 1.0, 1.3, 2.0, 2.5, 3.0}};  // one decimal survives
const DivideCutRecord kDivide{1, 2, 25.5, 45.0, 1, 7.5};
const DivideCutRecord kDivideDefault{0, 0, 30.0, 30.0, 0, 10.0};
constexpr const char* kThetaText = "<Theta>Available=1,[0.5][1.0][1.3][2.0][2.5][3.0]</Theta>";
constexpr const char* kDivideText = "<DivideCut>Available=1,[2][25.5][45.0][1][7.5]</DivideCut>";
constexpr const char* kThetaZero = "<Theta>Available=0,[0.0][0.0][0.0][0.0][0.0][0.0]</Theta>";

class RoundTrip : public ConditionTest {
 protected:
  void Add(const char* media, int pass, const CondRecord& r, const void* ext) {
    CondPair p{&r, ext};
    ASSERT_EQ(RvAddCutCondition(media, pass, &p), 0u);
  }
  // Saves, compares the bytes, then loads them into a cleared table.
  void SaveCompareReload(uint16_t type, const std::string& golden) {
    std::string path = m_dir.file("saved.xml");
    ASSERT_EQ(RvSaveCutCondition(path.c_str()), 0u);
    EXPECT_EQ(rvtest::ReadFile(path), golden);
    ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
    ASSERT_EQ(RvLoadCutCondition(type, path.c_str()), 0u);
  }
  // The record that a load makes of a cutting pass of the TQ file.
  static CondRecord LoadedCutting(const char* tool, int16_t speed, int16_t press, double offset) {
    CondRecord r = Cutting(tool, speed, press, offset);
    r.Thickness = -1.0;
    r.WDZUnit = -1;
    r.ZPosition = -1.0;
    r.VCutType = -1;
    r.VCutOffset = -1.0;
    return r;
  }
};

TEST_F(RoundTrip, TQKeepsPassesAndMarksUnsetValues) {
  condtest::UseMachineType(0, "TQCutConditionList", "1.00");
  CondRecord p0 = Cutting("CB09", 20, 100, 0.25);
  p0.DivideCut = kDivide;
  p0.Thickness = 4.0;  // not a TQ element
  CondRecord p1 = Cutting("CB15", 99, 50, 0.0);
  p1.hasSpeed = 0;
  p1.hasPress = 0;
  ThetaExtension zero{};
  Add("Paper", 0, p0, &kTheta);
  Add("Paper", 1, p1, &zero);
  Add("Vinyl", 0, p0, &kTheta);
  std::string pass0 = std::string("<Condition><Tool>CB09</Tool><Speed>20</Speed><Press>100</Press>") +
                      "<Offset>0.250000</Offset>" + kThetaText + "</Condition>";
  std::string golden = std::string(kDecl) + "<TQCutConditionList version=\"1.00\"><CutCondition><Name>Paper</Name>" +
                       pass0 +
                       "<Condition><Tool>CB15</Tool><Speed>-1</Speed><Press>-1</Press><Offset>0.000000</Offset>" +
                       kThetaZero + "</Condition></CutCondition><CutCondition><Name>Vinyl</Name>" + pass0 +
                       "</CutCondition></TQCutConditionList>";
  SaveCompareReload(0, golden);

  auto passes = AllPasses();
  ASSERT_EQ(passes.size(), 3u);
  EXPECT_EQ(passes[0].media, "Paper");
  EXPECT_EQ(passes[2].media, "Vinyl");
  CondRecord e0 = LoadedCutting("CB09", 20, 100, 0.25);
  e0.DivideCut = DivideCutRecord{-1, 0, 30.0, 30.0, 0, 10.0};  // no DivideCut in family 0
  ExpectRecord(passes[0].record, e0);
  ExpectTheta(passes[0].extension, kThetaSaved);
  CondRecord e1 = LoadedCutting("CB15", -1, -1, 0.0);
  e1.hasSpeed = e1.hasPress = 0;
  e1.DivideCut = e0.DivideCut;
  ExpectRecord(passes[1].record, e1);
  ExpectTheta(passes[1].extension, ThetaExtension{});
  EXPECT_EQ(passes[2].stored, passes[0].stored);  // one stored record for both
}

struct CuttingFamily {
  uint16_t type;
  const char* root;
  const char* version;
  bool decimal;
  bool divideCut;
};

TEST_F(RoundTrip, EveryCuttingFamilyWritesItsRootAndElements) {
  const CuttingFamily families[] = {
      {0, "TQCutConditionList", "1.00", false, false},    {1, "WDCutConditionList", "2.00", false, true},
      {2, "WD3CutConditionList", "2.00", false, true},    {4, "BNSCutConditionList", "1.00", false, false},
      {5, "TQ2CutConditionList", "1.00", false, false},   {6, "TQNVCutConditionList", "1.00", false, false},
      {7, "WDPCutConditionList", "1.00", true, true},     {8, "YBNSCutConditionList", "1.00", false, false},
      {9, "TQNV2CutConditionList", "1.00", false, false}, {10, "WD22CutConditionList", "1.00", true, true},
      {14, "TQHBCutConditionList", "1.00", false, false}, {18, "TQCutConditionList", "1.00", false, false},
      {400, "TQCutConditionList", "1.00", false, false},
  };
  for (const CuttingFamily& f : families) {
    SCOPED_TRACE(f.root + std::string(" type ") + std::to_string(f.type));
    condtest::UseMachineType(f.type, f.root, f.version);
    CondRecord r = Cutting("CB09", 20, 100, 0.25);
    r.SpeedDecimal = 12.5;
    r.DivideCut = kDivide;
    Add("Film", 0, r, &kTheta);
    std::string golden = std::string(kDecl) + "<" + f.root + " version=\"" + f.version +
                         "\"><CutCondition><Name>Film</Name><Condition><Tool>CB09</Tool><Speed>" +
                         (f.decimal ? "12.500000" : "20") + "</Speed><Press>100</Press><Offset>0.250000</Offset>" +
                         kThetaText + (f.divideCut ? kDivideText : "") + "</Condition></CutCondition></" + f.root +
                         ">";
    SaveCompareReload(f.type, golden);
    auto passes = AllPasses();
    ASSERT_EQ(passes.size(), 1u);
    CondRecord e = LoadedCutting("CB09", f.decimal ? 0 : 20, 100, 0.25);
    if (f.decimal) e.SpeedDecimal = 12.5;
    e.DivideCut = f.divideCut ? kDivide : kDivideDefault;
    if (f.type == 0) e.DivideCut.Available = -1;
    ExpectRecord(passes[0].record, e);
    ExpectTheta(passes[0].extension, kThetaSaved);
  }
}

TEST_F(RoundTrip, WDZWritesUnitZPositionAndVCut) {
  condtest::UseMachineType(16, "WDZCutConditionList", "1.00");
  CondRecord r = Cutting("V90", 0, 80, 0.3);  // Offset isn't an element here
  r.WDZUnit = 2;
  r.SpeedDecimal = 12.5;
  r.ZPosition = 1.25;
  r.VCutType = 1;
  r.VCutOffset = 0.5;
  r.Thickness = 3.0;
  r.DivideCut = kDivide;
  Add("Board", 0, r, &kTheta);
  std::string golden = std::string(kDecl) +
                       "<WDZCutConditionList version=\"1.00\"><CutCondition><Name>Board</Name>"
                       "<Thickness>3.000000</Thickness><Condition><WDZUnit>2</WDZUnit><Tool>V90</Tool>"
                       "<Speed>12.500000</Speed><ZPosition>1.250000</ZPosition><Press>80</Press>"
                       "<VCutType>1</VCutType><VCutOffset>0.500000</VCutOffset>" +
                       kThetaText + kDivideText + "</Condition></CutCondition></WDZCutConditionList>";
  SaveCompareReload(16, golden);
  auto passes = AllPasses();
  ASSERT_EQ(passes.size(), 1u);
  CondRecord e = r;
  e.Speed = 0;
  e.Offset = -1.0;
  e.hasOffset = 0;
  ExpectRecord(passes[0].record, e);
  ExpectTheta(passes[0].extension, kThetaSaved);
}

TEST_F(RoundTrip, WD3KMillingDecidesMillingAtTheFirstPass) {
  condtest::UseMachineType(3, "WD3KCutConditionList", "1.00");
  CondRecord w0{};
  std::strcpy(w0.Tool, "EM3");
  w0.CutDirection = 1;
  w0.hasSpeed = 1;
  w0.SpeedDecimal = 20.5;
  w0.Thickness = 6.0;
  CondRecord w1 = w0;
  w1.CutDirection = 0;
  w1.hasSpeed = 0;
  w1.SpeedDecimal = 7.0;
  CondRecord f0{};
  std::strcpy(f0.Tool, "EM6");
  f0.CutDirection = 1;
  f0.hasSpeed = 1;
  f0.SpeedDecimal = 10.0;
  f0.Thickness = 2.0;
  MillingExtension mw0{1, 1, 1, 1, 24000, 1.5, 5, 2.5};
  MillingExtension mw1{0, 0, 0, 0, 100, 9.0, 9, 9.0};
  MillingExtension mf0{1, 1, 1, 0, 12000, 2.0, 3, 4.0};
  Add("Wood", 0, w0, &mw0);
  Add("Wood", 1, w1, &mw1);
  Add("Foam", 0, f0, &mf0);
  std::string golden = std::string(kDecl) +
                       "<WD3KCutConditionList version=\"1.00\"><CutCondition><Name>Wood</Name>"
                       "<Thickness>6.000000</Thickness><Condition><Tool>EM3</Tool><CutDirection>1</CutDirection>"
                       "<Speed>20.500000</Speed><Rpm>24000</Rpm><CuttingDepth>1.500000</CuttingDepth>"
                       "<ZSpeed>5</ZSpeed><Milling>2.500000</Milling></Condition><Condition><Tool>EM3</Tool>"
                       "<CutDirection>0</CutDirection><Speed>-1.000000</Speed><Rpm>-1</Rpm>"
                       "<CuttingDepth>-1.000000</CuttingDepth><ZSpeed>-1</ZSpeed><Milling>9.000000</Milling>"
                       "</Condition></CutCondition><CutCondition><Name>Foam</Name><Thickness>2.000000</Thickness>"
                       "<Condition><Tool>EM6</Tool><CutDirection>1</CutDirection><Speed>10.000000</Speed>"
                       "<Rpm>12000</Rpm><CuttingDepth>2.000000</CuttingDepth><ZSpeed>3</ZSpeed>"
                       "<Milling>-1.000000</Milling></Condition></CutCondition></WD3KCutConditionList>";
  SaveCompareReload(3, golden);
  auto passes = AllPasses();
  ASSERT_EQ(passes.size(), 3u);
  CondRecord e0 = w0;
  e0.WDZUnit = -1;
  e0.ZPosition = -1.0;
  ExpectRecord(passes[0].record, e0);
  ExpectMilling(passes[0].extension, mw0);
  CondRecord e1 = w1;
  e1.SpeedDecimal = -1.0;
  e1.WDZUnit = -1;
  e1.ZPosition = -1.0;
  ExpectRecord(passes[1].record, e1);
  ExpectMilling(passes[1].extension, MillingExtension{0, 0, 0, 1, -1, -1.0, -1, 9.0});
  CondRecord e2 = f0;
  e2.WDZUnit = -1;
  e2.ZPosition = -1.0;
  ExpectRecord(passes[2].record, e2);
  ExpectMilling(passes[2].extension, MillingExtension{1, 1, 1, 0, 12000, 2.0, 3, 3.0});
}

TEST_F(RoundTrip, WDZKMillingHasUnitAndZSpeedButNoCuttingDepth) {
  condtest::UseMachineType(15, "WDZKCutConditionList", "1.00");
  CondRecord r{};
  r.WDZUnit = 1;
  std::strcpy(r.Tool, "EM2");
  r.hasSpeed = 1;
  r.SpeedDecimal = 8.25;
  r.ZPosition = 0.5;
  r.CutDirection = 2;
  r.Thickness = 1.5;
  MillingExtension m{1, 1, 1, 1, 18000, 0.7, 4, 1.0};
  Add("Alu", 0, r, &m);
  std::string golden = std::string(kDecl) +
                       "<WDZKCutConditionList version=\"1.00\"><CutCondition><Name>Alu</Name>"
                       "<Thickness>1.500000</Thickness><Condition><WDZUnit>1</WDZUnit><Tool>EM2</Tool>"
                       "<Speed>8.250000</Speed><ZSpeed>4</ZSpeed><ZPosition>0.500000</ZPosition>"
                       "<CutDirection>2</CutDirection><Rpm>18000</Rpm><Milling>1.000000</Milling></Condition>"
                       "</CutCondition></WDZKCutConditionList>";
  SaveCompareReload(15, golden);
  auto passes = AllPasses();
  ASSERT_EQ(passes.size(), 1u);
  ExpectRecord(passes[0].record, r);
  ExpectMilling(passes[0].extension, MillingExtension{1, 0, 1, 1, 18000, -1.0, 4, 1.0});
}

CondRecord Coating() {
  CondRecord r{};
  std::strcpy(r.Tool, "not written");
  std::strcpy(r.InkName, "White");
  std::strcpy(r.MediaType, "Glass");
  r.MediaThickness = 3.0;
  std::strcpy(r.NozzleType, "N1");
  r.CoatingThickness = 20.0;
  r.Gap = 1.5;
  std::strcpy(r.NozzleRotation, "90");
  r.FlowRate = 0.75;
  r.AtomizationPress = 0.2;
  r.CoatingSpeed = 100.0;
  r.Pitch = 2.0;
  r.SpeedAdjust = 1.1;
  r.PitchAdjust = 0.9;
  r.CoatingFillDirection = 1;
  r.MisalignmentCorrect = 0.05;
  r.CoatingJoinLimit = 0.5;
  r.CoatingFillOffset = 0.25;
  return r;
}

std::string CoatingFile(const char* version, const char* thickness, const char* atomization) {
  return std::string(kDecl) + "<HWDCutConditionList version=\"" + version +
         "\"><CutCondition><Name>Panel</Name><Condition><InkName>White</InkName><MediaType>Glass</MediaType>"
         "<MediaThickness>3.000000</MediaThickness><NozzleType>N1</NozzleType><CoatingThickness>" +
         thickness + "</CoatingThickness><Gap>1.500000</Gap><NozzleRotation>90</NozzleRotation>" +
         "<FlowRate>0.750000</FlowRate>" + atomization +
         "<Speed>100.000000</Speed><Pitch>2.000000</Pitch><SpeedAdjust>1.100000</SpeedAdjust>"
         "<PitchAdjust>0.900000</PitchAdjust><CoatingFillDirection>1</CoatingFillDirection>"
         "<MisalignmentCorrect>0.050000</MisalignmentCorrect><CoatingJoinLimit>0.500000</CoatingJoinLimit>"
         "<CoatingFillOffset>0.250000</CoatingFillOffset></Condition></CutCondition></HWDCutConditionList>";
}

TEST_F(RoundTrip, HWDCoatingWritesItsSeventeenElements) {
  condtest::UseMachineType(13, "HWDCutConditionList", "3.00");
  CondRecord r = Coating();
  Add("Panel", 0, r, &kTheta);
  SaveCompareReload(13, CoatingFile("3.00", "20.000000", "<AtomizationPress>0.200000</AtomizationPress>"));
  auto passes = AllPasses();
  ASSERT_EQ(passes.size(), 1u);
  CondRecord e = r;
  e.Tool[0] = '\0';
  ExpectRecord(passes[0].record, e);
  ExpectTheta(passes[0].extension, ThetaExtension{});  // coating keeps a zero Theta
}

TEST_F(RoundTrip, HWDVersionOneUsesWordsAndDefaultsTheAtomization) {
  std::string old = m_dir.file("old.xml");
  rvtest::WriteFile(old, CoatingFile("1.00", "&lt;Normal&gt;", ""));
  ASSERT_EQ(RvLoadCutCondition(13, old.c_str()), 0u);
  auto passes = AllPasses();
  ASSERT_EQ(passes.size(), 1u);
  EXPECT_EQ(passes[0].record.CoatingThickness, 20.0);
  EXPECT_EQ(passes[0].record.AtomizationPress, 0.1);
  std::string path = m_dir.file("new.xml");
  ASSERT_EQ(RvSaveCutCondition(path.c_str()), 0u);
  EXPECT_EQ(rvtest::ReadFile(path), CoatingFile("3.00", "20.000000", "<AtomizationPress>0.100000</AtomizationPress>"));

  const std::pair<const char*, double> words[] = {{"&lt;Thick&gt;", 30.0},
                                                  {"&lt;Slightly Thick&gt;", 25.0},
                                                  {"<![CDATA[<Slightly Thin>]]>", 15.0},
                                                  {"&lt;Thin&gt;", 10.0}};
  for (const auto& [word, value] : words) {
    ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
    rvtest::WriteFile(old, CoatingFile("1.00", word, ""));
    ASSERT_EQ(RvLoadCutCondition(13, old.c_str()), 0u) << word;
    EXPECT_EQ(AllPasses().at(0).record.CoatingThickness, value) << word;
  }
  // Any other word fails; a number is a word too in version 1.00.
  for (const char* bad : {"&lt;Medium&gt;", "20.000000", "&lt;normal&gt;"}) {
    ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
    rvtest::WriteFile(old, CoatingFile("1.00", bad, ""));
    EXPECT_EQ(RvLoadCutCondition(13, old.c_str()), 15u) << bad;
  }
  // After version 1.00 the atomization pressure is required.
  ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  rvtest::WriteFile(old, CoatingFile("2.00", "20.0", ""));
  EXPECT_EQ(RvLoadCutCondition(13, old.c_str()), 15u);
}

TEST_F(RoundTrip, LaserFamiliesWriteSpeedPowerAndTheirThirdValue) {
  CondRecord r{};
  r.LaserSpeed = 100.5;
  r.LaserPower = 30.0;
  r.LaserFreq = 2000;
  std::strcpy(r.LaserDpi, "600x600");
  condtest::UseMachineType(11, "SOVECutConditionList", "1.00");
  Add("Acryl", 0, r, nullptr);
  SaveCompareReload(11, std::string(kDecl) +
                            "<SOVECutConditionList version=\"1.00\"><CutCondition><Name>Acryl</Name><Condition>"
                            "<LaserSpeed>100.500000</LaserSpeed><LaserPower>30.000000</LaserPower>"
                            "<LaserFreq>2000</LaserFreq></Condition></CutCondition></SOVECutConditionList>");
  CondRecord sove = r;
  sove.LaserDpi[0] = '\0';
  ExpectRecord(AllPasses().at(0).record, sove);

  condtest::UseMachineType(12, "SOPICutConditionList", "1.00");
  Add("Acryl", 0, r, nullptr);
  SaveCompareReload(12, std::string(kDecl) +
                            "<SOPICutConditionList version=\"1.00\"><CutCondition><Name>Acryl</Name><Condition>"
                            "<LaserSpeed>100.500000</LaserSpeed><LaserPower>30.000000</LaserPower>"
                            "<LaserDpi>600x600</LaserDpi></Condition></CutCondition></SOPICutConditionList>");
  CondRecord sopi = r;
  sopi.LaserFreq = -1;
  ExpectRecord(AllPasses().at(0).record, sopi);
}

TEST_F(RoundTrip, LongNamesAndToolsAreCutToTheFileLimits) {
  condtest::UseMachineType(0, "TQCutConditionList", "1.00");
  std::string name(300, 'n');
  CondRecord r = Cutting("", 1, 2, 0.5);
  std::memset(r.Tool, 't', sizeof r.Tool);  // no terminator at all
  Add(name.c_str(), 0, r, nullptr);
  std::string path = m_dir.file("long.xml");
  ASSERT_EQ(RvSaveCutCondition(path.c_str()), 0u);
  std::string saved = rvtest::ReadFile(path);
  EXPECT_NE(saved.find("<Name>" + std::string(255, 'n') + "</Name>"), std::string::npos);
  EXPECT_NE(saved.find("<Tool>" + std::string(31, 't') + "</Tool>"), std::string::npos);
}

}  // namespace
