// CSV condition input and the favourite file.
#include "cond_test_util.h"
#include "conditions/cut_cdn_mng.h"

namespace {

using condtest::AllPasses;
using condtest::ConditionTest;
using condtest::kDecl;
using condtest::MediaNames;

constexpr const char* kThetaZero = "<Theta>Available=0,[0.0][0.0][0.0][0.0][0.0][0.0]</Theta>";

class CsvTest : public ConditionTest {};

TEST_F(CsvTest, LinesBecomeMediaAndAFileIsWritten) {
  std::string csv = m_dir.file("in.csv"), xml = m_dir.file("out.xml");
  rvtest::WriteFile(csv,
                    "Paper,CB09,20,100,0.25\n"
                    ",,Vinyl,,,CB15,,30,,-1,,0.5\n"
                    "short,line\n"
                    "\n"
                    "Paper,CB20,5,6,-0.5\r\n"
                    "Last,CB,1,2,3");
  ASSERT_EQ(RvLoadFromCSV(0, csv.c_str(), xml.c_str()), 0u);
  EXPECT_EQ(MediaNames(), (std::vector<std::string>{"Paper", "Vinyl"}));
  auto passes = AllPasses();
  ASSERT_EQ(passes.size(), 3u);
  // The later row of a name comes first.
  CondRecord e{};
  std::strcpy(e.Tool, "CB20");
  e.hasSpeed = 1;
  e.hasPress = 1;
  e.hasOffset = 0;
  e.Speed = 5;
  e.Press = 6;
  e.Offset = -0.5;
  e.DivideCut = DivideCutRecord{0, 0, 30.0, 30.0, 0, 10.0};
  condtest::ExpectRecord(passes[0].record, e);
  condtest::ExpectTheta(passes[0].extension, ThetaExtension{});
  EXPECT_STREQ(passes[1].record.Tool, "CB09");
  EXPECT_EQ(passes[1].record.Offset, 0.25);
  EXPECT_STREQ(passes[2].record.Tool, "CB15");
  EXPECT_EQ(passes[2].record.Speed, 30);
  EXPECT_EQ(passes[2].record.hasPress, 0u);
  EXPECT_EQ(passes[2].record.Press, -1);

  std::string golden = std::string(kDecl) +
                       "<TQCutConditionList version=\"1.00\">"
                       "<CutCondition><Name>Paper</Name><Condition><Tool>CB09</Tool><Speed>20</Speed>"
                       "<Press>100</Press><Offset>0.250000</Offset>" +
                       kThetaZero +
                       "</Condition></CutCondition>"
                       "<CutCondition><Name>Vinyl</Name><Condition><Tool>CB15</Tool><Speed>30</Speed>"
                       "<Press>-1</Press><Offset>0.500000</Offset>" +
                       kThetaZero +
                       "</Condition></CutCondition>"
                       "<CutCondition><Name>Paper</Name><Condition><Tool>CB20</Tool><Speed>5</Speed>"
                       "<Press>6</Press><Offset>-0.500000</Offset>" +
                       kThetaZero + "</Condition></CutCondition></TQCutConditionList>";
  EXPECT_EQ(rvtest::ReadFile(xml), golden);
}

TEST_F(CsvTest, ThreeLinesWithoutLastLineEndGiveTwoMediaAndDivideCutWhereTheFamilyHasIt) {
  std::string csv = m_dir.file("in.csv"), xml = m_dir.file("out.xml");
  rvtest::WriteFile(csv, "A,T1,1,2,3\nB,T2,4,5,6\nC,T3,7,8,9");
  ASSERT_EQ(RvLoadFromCSV(1, csv.c_str(), xml.c_str()), 0u);
  EXPECT_EQ(MediaNames(), (std::vector<std::string>{"A", "B"}));
  EXPECT_EQ(rv::CRvCutCdnMng::Instance().machineType, 1);
  EXPECT_NE(rvtest::ReadFile(xml).find(std::string(kThetaZero) +
                                       "<DivideCut>Available=0,[0][30.0][30.0][0][10.0]</DivideCut></Condition>"),
            std::string::npos);
  // The written file loads back to the same table.
  ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  ASSERT_EQ(RvLoadCutCondition(1, xml.c_str()), 0u);
  EXPECT_EQ(MediaNames(), (std::vector<std::string>{"A", "B"}));
  EXPECT_EQ(AllPasses().at(1).record.Offset, 6.0);
}

TEST_F(CsvTest, RefusalsAndOddLines) {
  std::string csv = m_dir.file("in.csv"), xml = m_dir.file("out.xml");
  EXPECT_EQ(RvLoadFromCSV(9, m_dir.file("none.csv").c_str(), xml.c_str()), 0x01001001u);
  EXPECT_EQ(rv::CRvCutCdnMng::Instance().machineType, 9);
  EXPECT_EQ(RvLoadFromCSV(9, nullptr, xml.c_str()), 0x01001001u);
  EXPECT_EQ(RvLoadFromCSV(9, m_dir.path().c_str(), xml.c_str()), 0x01001001u);  // a folder
  // A line longer than the buffer is read in pieces; long fields are cut.
  std::string longName(300, 'n'), longTool(40, 't');
  rvtest::WriteFile(csv, longName + "," + longTool + ",1,2,3\n" + std::string(2000, ',') + "\nX,Y,99999,1,1\n");
  ASSERT_EQ(RvLoadFromCSV(0, csv.c_str(), xml.c_str()), 0u);
  EXPECT_EQ(MediaNames(), (std::vector<std::string>{std::string(255, 'n'), "X"}));
  EXPECT_EQ(AllPasses().at(0).record.Tool, std::string(31, 't'));
  EXPECT_EQ(AllPasses().at(1).record.Speed, int16_t(99999 - 65536 * 2));
  // The table must be empty.
  EXPECT_EQ(RvLoadFromCSV(0, csv.c_str(), xml.c_str()), 65535u);
  EXPECT_EQ(MediaNames().size(), 2u);
  // An unwritable target is reported after the table was filled.
  ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  EXPECT_EQ(RvLoadFromCSV(0, csv.c_str(), m_dir.file("no/dir/out.xml").c_str()), 14u);
  EXPECT_EQ(MediaNames().size(), 2u);
}

// ---- favourites ---------------------------------------------------------

struct Lists {
  std::vector<FavoriteEntry> l[4];
  Lists() {
    for (auto& v : l) v.assign(RV_FAVORITE_COUNT + 1, FavoriteEntry{});
  }
  uint32_t Read(uint16_t type, const std::string& path) {
    return RvReadFavoriteFile(type, path.c_str(), l[0].data(), l[1].data(), l[2].data(), l[3].data());
  }
  uint32_t Write(uint16_t type, const std::string& path) {
    return RvWriteFavoriteFile(type, path.c_str(), l[0].data(), l[1].data(), l[2].data(), l[3].data());
  }
};

void Set(FavoriteEntry& e, const std::string& title, const std::string& stroke, const std::string& value) {
  std::snprintf(e.title, sizeof e.title, "%s", title.c_str());
  std::snprintf(e.strokeTitle, sizeof e.strokeTitle, "%s", stroke.c_str());
  std::snprintf(e.value, sizeof e.value, "%s", value.c_str());
}

class FavoriteTest : public ConditionTest {};

TEST_F(FavoriteTest, SmallFileHasItsListsInOrder) {
  Lists in;
  Set(in.l[0][0], "file.plt", "Red", "CB09");
  Set(in.l[1][0], "file.plt", "Blue", "Paper & <Film>");
  Set(in.l[2][0], "Layer 1", "not written", "CB15");
  std::string path = m_dir.file("fav.xml");
  ASSERT_EQ(in.Write(17, path), 0u);
  EXPECT_EQ(rvtest::ReadFile(path),
            std::string(kDecl) +
                "<FavoriteCutConditionList version=\"1.00\"><ColorToolList><ColorTool><FileTitle>file.plt</FileTitle>"
                "<StrokeTitle>Red</StrokeTitle><Tool>CB09</Tool></ColorTool></ColorToolList><ColorMediaList>"
                "<ColorMedia><FileTitle>file.plt</FileTitle><StrokeTitle>Blue</StrokeTitle>"
                "<Media>Paper &amp; &lt;Film&gt;</Media></ColorMedia></ColorMediaList><LayerToolList><LayerTool>"
                "<LayerTitle>Layer 1</LayerTitle><Tool>CB15</Tool></LayerTool></LayerToolList>"
                "</FavoriteCutConditionList>");
  Lists out;
  ASSERT_EQ(out.Read(17, path), 0u);
  EXPECT_STREQ(out.l[1][0].value, "Paper & <Film>");
  EXPECT_STREQ(out.l[2][0].title, "Layer 1");
  EXPECT_STREQ(out.l[2][0].strokeTitle, "");
  EXPECT_STREQ(out.l[3][0].title, "");
}

TEST_F(FavoriteTest, TwoHundredFiftyEntriesEachRoundTrip) {
  Lists in;
  for (int l = 0; l < 4; ++l) {
    for (int k = 0; k < RV_FAVORITE_COUNT; ++k) {
      Set(in.l[l][k], "title " + std::to_string(l) + "/" + std::to_string(k), l < 2 ? "stroke" + std::to_string(k) : "",
          "value" + std::to_string(k));
    }
  }
  std::string path = m_dir.file("fav.xml");
  ASSERT_EQ(in.Write(17, path), 0u);
  Lists out;
  for (auto& v : out.l) Set(v[RV_FAVORITE_COUNT], "sentinel", "s", "s");
  ASSERT_EQ(out.Read(17, path), 0u);
  for (int l = 0; l < 4; ++l) {
    for (int k = 0; k < RV_FAVORITE_COUNT; ++k) {
      ASSERT_STREQ(out.l[l][k].title, in.l[l][k].title);
      ASSERT_STREQ(out.l[l][k].strokeTitle, in.l[l][k].strokeTitle);
      ASSERT_STREQ(out.l[l][k].value, in.l[l][k].value);
    }
    EXPECT_STREQ(out.l[l][RV_FAVORITE_COUNT].title, "sentinel");
  }
}

TEST_F(FavoriteTest, ReaderStopsAtTheLimitAndTakesDamagedEntries) {
  std::string body;
  for (int k = 0; k < 260; ++k) {
    body += "<LayerMedia><LayerTitle>L" + std::to_string(k) + "</LayerTitle><Media>M</Media></LayerMedia>";
  }
  std::string path = m_dir.file("fav.xml");
  rvtest::WriteFile(path, std::string(kDecl) +
                              "<FavoriteCutConditionList version=\"1.00\"><ColorToolList><ColorTool><Tool>only a tool"
                              "</Tool></ColorTool><ColorTool><FileTitle>" +
                              std::string(150, 'f') + "</FileTitle><StrokeTitle></StrokeTitle><Tool>" +
                              std::string(100, 'v') + "</Tool></ColorTool></ColorToolList><LayerMediaList>" + body +
                              "</LayerMediaList></FavoriteCutConditionList>");
  Lists out;
  Set(out.l[0][0], "old", "old", "old");
  Set(out.l[3][RV_FAVORITE_COUNT], "sentinel", "", "");
  ASSERT_EQ(out.Read(17, path), 0u);
  EXPECT_STREQ(out.l[0][0].title, "");
  EXPECT_STREQ(out.l[0][0].value, "only a tool");
  EXPECT_EQ(std::string(out.l[0][1].title), std::string(100, 'f'));
  EXPECT_EQ(std::string(out.l[0][1].value), std::string(64, 'v'));
  EXPECT_STREQ(out.l[3][249].title, "L249");
  EXPECT_STREQ(out.l[3][RV_FAVORITE_COUNT].title, "sentinel");
}

TEST_F(FavoriteTest, NoFileLeavesTheArraysAndTheWriterCountsTitles) {
  Lists lists;
  Set(lists.l[0][0], "keep", "me", "x");
  ASSERT_EQ(lists.Read(17, m_dir.file("none.xml")), 0u);
  EXPECT_STREQ(lists.l[0][0].title, "keep");
  // A file of another root isn't a favourite file for the reader.
  std::string path = m_dir.file("fav.xml");
  rvtest::WriteFile(path, std::string(kDecl) + "<TQCutConditionList version=\"1.00\"/>");
  ASSERT_EQ(lists.Read(17, path), 0u);
  EXPECT_STREQ(lists.l[0][0].title, "keep");
  ASSERT_EQ(RvReadFavoriteFile(17, nullptr, nullptr, nullptr, nullptr, nullptr), 0u);

  // Slots 0 and 2 hold titles: the first two slots are written.
  Lists gap;
  Set(gap.l[2][0], "A", "", "t1");
  Set(gap.l[2][1], "", "", "t2");
  Set(gap.l[2][2], "C", "", "t3");
  ASSERT_EQ(gap.Write(17, path), 0u);
  EXPECT_EQ(rvtest::ReadFile(path),
            std::string(kDecl) +
                "<FavoriteCutConditionList version=\"1.00\"><LayerToolList><LayerTool><LayerTitle>A</LayerTitle>"
                "<Tool>t1</Tool></LayerTool><LayerTool><LayerTitle></LayerTitle><Tool>t2</Tool></LayerTool>"
                "</LayerToolList></FavoriteCutConditionList>");
  EXPECT_EQ(RvWriteFavoriteFile(17, m_dir.file("no/dir.xml").c_str(), nullptr, nullptr, nullptr, nullptr), 14u);
}

}  // namespace
