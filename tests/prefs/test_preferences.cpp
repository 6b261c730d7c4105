// Preference files: the saved bytes, round trips of every section, the steps
// of older main files, the forgiving reading, the buffers and the failures.
#include <string>
#include <tuple>

#include "pref_test_util.h"

namespace {

using namespace preftest;
using rvtest::ReadFile;
using rvtest::TempDir;
using rvtest::WriteFile;

std::string Golden(const std::string& name) { return ReadFile(std::string(RV_TEST_DATA_DIR) + "/prefs/" + name); }

TEST(PreferenceFiles, SavedFilesMatchTheirGoldensAndLoadBackToTheSameRecordsAndBytes) {
  TempDir dir;
  auto saved = NewKF(), loaded = NewKF();
  NumberAll(*saved);
  saved->cutPreview.reserved[0] = loaded->cutPreview.reserved[0] = 0xA5;  // carried by no key
  ASSERT_EQ(saved->Save(dir.file("a.xml")), 0u);
  EXPECT_EQ(ReadFile(dir.file("a.xml")), Golden("kf_numbered.xml"));
  ASSERT_EQ(loaded->Load(dir.file("a.xml")), 0u);  // a saved "8.00" runs the last step: its keys stand behind
  EXPECT_TRUE(*loaded == *saved);
  ASSERT_EQ(loaded->Save(dir.file("b.xml")), 0u);
  EXPECT_EQ(ReadFile(dir.file("b.xml")), ReadFile(dir.file("a.xml")));

  RVPREFOUTLINETOOL ot{}, back{};
  Number(ot, 1, "o");
  ASSERT_EQ(RvSaveOTPreference(dir.file("ot.xml").c_str(), &ot), 0u);
  EXPECT_EQ(ReadFile(dir.file("ot.xml")),
            "<?xml version=\"1.0\" encoding=\"utf-8\"?><KFOutlineTool_Preference version=\"1.00\"><OutlineTool>"
            "<OutlinePreview><ViewPicture>1</ViewPicture><ViewSelectLine>2</ViewSelectLine>"
            "<ViewTraceLine>3</ViewTraceLine></OutlinePreview><TraceSetting><OutlineMode>4</OutlineMode>"
            "<Threshold>5</Threshold><DilationErosion>6</DilationErosion><EraceNoiseLevel>7</EraceNoiseLevel>"
            "<ToleranceLength>8.250000</ToleranceLength><CornerRadius>9.250000</CornerRadius>"
            "<ManageMode>10</ManageMode><RecommendMode>o11</RecommendMode></TraceSetting><SelectLineColor>"
            "<ColorR>12</ColorR><ColorG>13</ColorG><ColorB>14</ColorB></SelectLineColor><TraceLineColor>"
            "<ColorR>15</ColorR><ColorG>16</ColorG><ColorB>17</ColorB></TraceLineColor></OutlineTool>"
            "</KFOutlineTool_Preference>");
  ASSERT_EQ(RvLoadOTPreference(dir.file("ot.xml").c_str(), &back), 0u);
  EXPECT_EQ(std::memcmp(&ot, &back, sizeof ot), 0);
}

TEST(PreferenceFiles, OldFilesGetTheSeparationKeysOfTheirSteps) {
  // The TQTombo group of a main file and what a load makes of it.
  const struct {
    const char* version;
    const char* tqTombo;  // the keys the file has
    int32_t sepMode;
    double sepLineWidth;
    int16_t sepDirection, sepCount;
  } rows[] = {
      // every step runs: the four keys with text come from the step
      {"1.00", "<MarkSize>3.5</MarkSize>", 0, 0.5, 0, 2},
      // the file's own SepCount stands in front of the appended one
      {"1.00", "<SepCount>5</SepCount>", 0, 0.5, 0, 5},
      // from "2.00" on no step adds them: the caller's values stay
      {"2.00", "", 9, 9.0, 9, 9},
      {"8.00", "", 9, 9.0, 9, 9},
      // a version that doesn't begin with a number runs no step; nor do 0 and 9
      {"abc", "", 9, 9.0, 9, 9},
      {"0.50", "", 9, 9.0, 9, 9},
      {"9.00", "", 9, 9.0, 9, 9},
      {" 1.5", "", 0, 0.5, 0, 2},  // leading white space: generation 1
  };
  TempDir dir;
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.version) + " " + row.tqTombo);
    const std::string path = dir.file("old.xml");
    const std::string file = MainFile(row.version, std::string("<PlotterUserSetup/><TomboEnv><TQTombo>") +
                                                       row.tqTombo + "</TQTombo></TomboEnv>");
    ASSERT_TRUE(WriteFile(path, file));
    auto kf = NewKF();
    RVPREFTOMBOENV& t = kf->tomboEnv;
    t.TQTombo_SepMode = 9;
    t.SepLineWidth = 9.0;
    t.SepDirection = t.TQTombo_SepCount = 9;
    ASSERT_EQ(kf->Load(path), 0u);
    EXPECT_EQ(std::tie(t.TQTombo_SepMode, t.SepLineWidth, t.SepDirection, t.TQTombo_SepCount),
              std::make_tuple(row.sepMode, row.sepLineWidth, row.sepDirection, row.sepCount));
    EXPECT_EQ(ReadFile(path), file);  // a load never writes the file
  }
}

TEST(PreferenceFiles, AMissingPlotterUserSetupFailsOnlyAfterTheSteps) {
  TempDir dir;
  const std::string body = "<Function><Contour><PathOffset>1.5</PathOffset></Contour></Function>";
  const struct {
    const char* version;
    uint32_t code;
    double pathOffset;
  } rows[] = {
      {"1.00", 15u, 7.0},  // the steps ran, the last lookup of the section failed
      {"8.00", 15u, 7.0},
      {"9.00", 0u, 1.5},   // no step: the other sections are read
      {"12.00", 0u, 1.5},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.version);
    ASSERT_TRUE(WriteFile(dir.file("p.xml"), MainFile(row.version, body)));
    auto kf = NewKF();
    kf->function.PathOffset = 7.0;
    EXPECT_EQ(kf->Load(dir.file("p.xml")), row.code);
    EXPECT_EQ(kf->function.PathOffset, row.pathOffset);
  }
}

TEST(PreferenceFiles, EmptyOrMissingKeysLeaveTheCallersValues) {
  TempDir dir;
  const std::string path = dir.file("f.xml");
  ASSERT_TRUE(WriteFile(
      path, MainFile("8.00",
                     "<PlotterUserSetup><Setup></Setup><Plotter><Model>M1</Model></Plotter></PlotterUserSetup>"
                     "<PlotPreview><Layout><UnitType>3</UnitType></Layout><Tombo><RepeatType>4</RepeatType>"
                     "</Tombo><WDTombo><RepeatType>5</RepeatType></WDTombo></PlotPreview>"
                     "<Plot><Condition><DefTQSpeed>abc</DefTQSpeed><DefTQOffset>0.5</DefTQOffset>"
                     "<DefWDOffset>0.500000</DefWDOffset></Condition></Plot>"
                     "<CutPreview><CCWColor><ColorR>300</ColorR><ColorG>-1</ColorG></CCWColor></CutPreview>"
                     "<Dotbridge><Dry><Time>6</Time></Dry></Dotbridge>")));
  auto kf = NewKF();
  kf->userSetup.Setup = 41;
  kf->plot.DefTQSpeed = 42;
  kf->dotbridge.UnitType = 43;
  ASSERT_EQ(kf->Load(path), 0u);
  EXPECT_EQ(kf->userSetup.Setup, 41);         // empty text
  EXPECT_STREQ(kf->userSetup.Model, "M1");
  EXPECT_EQ(kf->plot.DefTQSpeed, 42);         // text that doesn't scan
  EXPECT_EQ(kf->plot.DefTQOffset, 0.5);       // "0.5" and "0.500000" alike
  EXPECT_EQ(kf->plot.DefWDOffset, 0.5);
  EXPECT_EQ(kf->plotPreview.UnitType, 3);
  EXPECT_EQ(kf->dotbridge.UnitType, 43);      // Layout below Dotbridge is missing
  EXPECT_EQ(kf->plotPreview.Tombo_RepeatType, 4);
  EXPECT_EQ(kf->plotPreview.WDTombo_RepeatType, 5);
  EXPECT_EQ(kf->dotbridge.Time, 6);
  EXPECT_EQ(kf->cutPreview.CCWColor_ColorR, 44);   // the low byte of 300
  EXPECT_EQ(kf->cutPreview.CCWColor_ColorG, 255);  // of 65535

  // A save writes the caller's value where the file had an empty key.
  ASSERT_EQ(kf->Save(dir.file("g.xml")), 0u);
  EXPECT_NE(ReadFile(dir.file("g.xml")).find("<Setup>41</Setup>"), std::string::npos);
}

TEST(PreferenceFiles, TextsAreCutToTheirBuffers) {
  TempDir dir;
  const std::string path = dir.file("b.xml");
  const std::string name300(300, 'a'), name299(299, 'b'), long600(600, 'c');
  // 254 zeros and "12": TomboEnv reads 255 characters, other sections 511.
  const std::string zeros = std::string(254, '0') + "12";
  ASSERT_TRUE(WriteFile(
      path, MainFile("9.00",
                     "<PlotterUserSetup/><Plot><Condition><MillSelectName>" + long600 + "</MillSelectName>"
                     "<DefTQPress>" + zeros + "</DefTQPress></Condition></Plot>"
                     "<TomboEnv><IDTombo><ID0>" + zeros + "</ID0></IDTombo></TomboEnv>"
                     "<Dotbridge><HotFolder><FolderName>" + name300 + "z</FolderName></HotFolder>"
                     "<HotFolderHistory><FolderName1>" + name299 + "</FolderName1></HotFolderHistory></Dotbridge>")));
  auto kf = NewKF();
  std::memset(kf->dotbridge.FolderName1, 'x', sizeof kf->dotbridge.FolderName1);
  ASSERT_EQ(kf->Load(path), 0u);
  EXPECT_EQ(std::string(kf->dotbridge.FolderName, 300), name300);  // full: no terminator
  EXPECT_EQ(std::string(kf->dotbridge.FolderName1), name299);      // 299 bytes and the terminator
  EXPECT_EQ(std::string(kf->plot.MillSelectName, 256), long600.substr(0, 256));
  EXPECT_EQ(kf->plot.DefTQPress, 12);
  EXPECT_EQ(kf->tomboEnv.ID0, 1);

  // Writing: 255 characters at most (2047 in Dotbridge, so 300 bytes pass).
  ASSERT_EQ(kf->Save(dir.file("out.xml")), 0u);
  const std::string out = ReadFile(dir.file("out.xml"));
  EXPECT_NE(out.find("<MillSelectName>" + long600.substr(0, 255) + "</MillSelectName>"), std::string::npos);
  EXPECT_NE(out.find("<FolderName>" + name300 + "</FolderName>"), std::string::npos);
}

TEST(PreferenceFiles, FailuresReturnTheirCodesAndLeaveTheRecords) {
  TempDir dir;
  const struct {
    const char* what;
    std::string file;  // empty: no file at all
    uint32_t code;
  } rows[] = {
      {"no file", "", 13u},
      {"not XML", "<Kerflow_Preference version=\"8.00\">", 13u},
      {"root of another name", "<?xml version=\"1.0\"?><KFOutlineTool_Preference version=\"8.00\">"
                               "<PlotterUserSetup><Setup>1</Setup></PlotterUserSetup></KFOutlineTool_Preference>",
       15u},
      {"no version", MainFile("", "<PlotterUserSetup><Setup>1</Setup></PlotterUserSetup>"), 65535u},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    const std::string path = dir.file(std::string(row.what) + ".xml");
    if (!row.file.empty()) {
      ASSERT_TRUE(WriteFile(path, row.file));
    }
    auto kf = NewKF(), before = NewKF();
    EXPECT_EQ(kf->Load(path), row.code);
    EXPECT_TRUE(*kf == *before);
  }
  RVPREFOUTLINETOOL ot{};
  ot.Threshold = 3;
  ASSERT_TRUE(WriteFile(dir.file("kf.xml"), MainFile("8.00", "<OutlineTool><TraceSetting><Threshold>9</Threshold>"
                                                             "</TraceSetting></OutlineTool>")));
  EXPECT_EQ(RvLoadOTPreference(dir.file("kf.xml").c_str(), &ot), 15u);
  EXPECT_EQ(ot.Threshold, 3);
  EXPECT_EQ(RvSaveOTPreference(dir.file("no/such/folder.xml").c_str(), &ot), 14u);
  auto kf = NewKF();
  EXPECT_EQ(kf->Save(dir.file("no/such/folder.xml")), 14u);
  EXPECT_EQ(RvLoadOTPreference(nullptr, &ot), 13u);
  EXPECT_EQ(RvSaveOTPreference(nullptr, &ot), 14u);

  // A null record is passed over: its section is neither read nor written.
  ASSERT_EQ(RvSaveKFPreference(dir.file("part.xml").c_str(), &kf->userSetup, nullptr, nullptr, nullptr, nullptr,
                               nullptr, nullptr),
            0u);
  EXPECT_EQ(ReadFile(dir.file("part.xml")).find("<PlotPreview>"), std::string::npos);
  EXPECT_EQ(RvLoadKFPreference(dir.file("part.xml").c_str(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                               nullptr),
            0u);
}

}  // namespace
