// CSV condition input and the favourite file.
#include "cond_test_util.h"
#include "conditions/cut_cdn_mng.h"

namespace {

using namespace condtest;

class CsvTest : public ConditionTest {
 protected:
  uint32_t LoadCsv(uint16_t type, const std::string& text, const std::string& xml = "out.xml") {
    rvtest::WriteFile(m_dir.file("in.csv"), text);
    return RvLoadFromCSV(type, m_dir.file("in.csv").c_str(), m_dir.file(xml).c_str());
  }
};

TEST_F(CsvTest, LinesBecomeMediaAndAFileIsWritten) {
  ASSERT_EQ(LoadCsv(0,
                    "Paper,CB09,20,100,0.25\n"
                    ",,Vinyl,,,CB15,,30,,-1,,0.5\n"  // a run of commas is one
                    "short,line\n"
                    "\n"
                    "Paper,CB20,5,6,-0.5\r\n"
                    "Last,CB,1,2,3"),  // no line end: not taken
            0u);
  EXPECT_EQ(rvtest::ReadFile(m_dir.file("out.xml")), Golden("csv.xml"));
  EXPECT_EQ(Tools(), (Names{"Paper:CB20", "Paper:CB09", "Vinyl:CB15"}));  // the later row of a name first
  auto passes = AllPasses();
  CondRecord e = Cutting("CB20", 5, 6, -0.5);
  e.hasOffset = 0;
  e.DivideCut = kDivideDefault;
  ExpectRecord(passes[0].record, e);
  ExpectExtension(passes[0].extension, ThetaExtension{});
  EXPECT_EQ(std::tie(passes[2].record.hasPress, passes[2].record.Press), std::make_tuple(0u, int16_t(-1)));

  // A family with decimal speed takes the speed as that too, in the table and in a file that loads back.
  ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  ASSERT_EQ(LoadCsv(7, "A,T1,1,2,3\nB,T2,4,5,6\n"), 0u);
  EXPECT_EQ(AllPasses().at(1).record.SpeedDecimal, 4.0);
  ASSERT_EQ(Reload(7, rvtest::ReadFile(m_dir.file("out.xml"))), 0u);
  EXPECT_EQ(AllPasses().at(1).record.SpeedDecimal, 4.0);
}

TEST_F(CsvTest, RefusalsAndOddLines) {
  std::string xml = m_dir.file("out.xml");
  EXPECT_EQ(RvLoadFromCSV(9, m_dir.file("none.csv").c_str(), xml.c_str()), 0x01001001u);
  EXPECT_EQ(rv::CRvCutCdnMng::Instance().machineType, 9);
  EXPECT_EQ(RvLoadFromCSV(9, nullptr, xml.c_str()), 0x01001001u);
  EXPECT_EQ(RvLoadFromCSV(9, m_dir.path().c_str(), xml.c_str()), 0x01001001u);  // a folder
  // A line longer than the buffer is read in pieces; long fields are cut;
  // speed keeps its low 16 bits.
  std::string csv = std::string(300, 'n') + "," + std::string(40, 't') + ",1,2,3\n" + std::string(2000, ',') +
                    "\nX,Y,99999,1,1\n";
  ASSERT_EQ(LoadCsv(0, csv), 0u);
  EXPECT_EQ(Tools(), (Names{std::string(255, 'n') + ":" + std::string(31, 't'), "X:Y"}));
  EXPECT_EQ(AllPasses().at(1).record.Speed, int16_t(99999 - 65536 * 2));
  EXPECT_EQ(LoadCsv(0, csv), 65535u);  // the table must be empty
  EXPECT_EQ(MediaNames().size(), 2u);
  // An unwritable target is reported after the table was filled.
  ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  EXPECT_EQ(LoadCsv(0, csv, "no/dir/out.xml"), 14u);
  EXPECT_EQ(MediaNames().size(), 2u);
}

// ---- favourites ---------------------------------------------------------

struct Lists {
  std::vector<FavoriteEntry> l[4];
  Lists() {
    for (auto& v : l) v.assign(RV_FAVORITE_COUNT + 1, FavoriteEntry{});
  }
  uint32_t Read(const std::string& path) {
    return RvReadFavoriteFile(17, path.c_str(), l[0].data(), l[1].data(), l[2].data(), l[3].data());
  }
  uint32_t Write(const std::string& path) {
    return RvWriteFavoriteFile(17, path.c_str(), l[0].data(), l[1].data(), l[2].data(), l[3].data());
  }
  void Set(int list, int k, const std::string& title, const std::string& stroke, const std::string& value) {
    FavoriteEntry& e = l[list][size_t(k)];
    std::snprintf(e.title, sizeof e.title, "%s", title.c_str());
    std::snprintf(e.strokeTitle, sizeof e.strokeTitle, "%s", stroke.c_str());
    std::snprintf(e.value, sizeof e.value, "%s", value.c_str());
  }
  /// Every slot of a list, the spare one behind the last too, as "title|stroke|value".
  Names Entries(int list) const {
    Names all;
    for (const FavoriteEntry& e : l[list]) all.push_back(std::string(e.title) + "|" + e.strokeTitle + "|" + e.value);
    return all;
  }
};

class FavoriteTest : public ConditionTest {
 protected:
  std::string m_path = m_dir.file("fav.xml");
};

TEST_F(FavoriteTest, SmallFileHasItsListsInOrder) {
  Lists in, out;
  in.Set(0, 0, "file.plt", "Red", "CB09");
  in.Set(1, 0, "file.plt", "Blue", "Paper & <Film>");
  in.Set(2, 0, "Layer 1", "not written", "CB15");
  ASSERT_EQ(in.Write(m_path), 0u);
  EXPECT_EQ(rvtest::ReadFile(m_path), Golden("favorite.xml"));
  ASSERT_EQ(out.Read(m_path), 0u);
  EXPECT_EQ(out.Entries(1)[0], "file.plt|Blue|Paper & <Film>");

  EXPECT_EQ(RvWriteFavoriteFile(17, m_dir.file("no/dir.xml").c_str(), nullptr, nullptr, nullptr, nullptr), 14u);
}

TEST_F(FavoriteTest, FullListsRoundTripAndTheWriterCountsTitles) {
  Lists in, out;
  for (int l = 0; l < 4; ++l) {
    for (int k = 0; k < RV_FAVORITE_COUNT; ++k) {
      std::string n = std::to_string(k);
      in.Set(l, k, "title " + std::to_string(l) + "/" + n, l < 2 ? "stroke" + n : "", "value" + n);
    }
  }
  in.Set(2, 1, "", "", "untitled");  // 249 titles: the first 249 slots are written, this one too
  ASSERT_EQ(in.Write(m_path), 0u);
  ASSERT_EQ(out.Read(m_path), 0u);
  in.Set(2, RV_FAVORITE_COUNT - 1, "", "", "");
  for (int l = 0; l < 4; ++l) EXPECT_EQ(out.Entries(l), in.Entries(l)) << l;
}

TEST_F(FavoriteTest, ReaderStopsAtTheLimitAndTakesDamagedEntries) {
  std::string body;
  for (int k = 0; k < 260; ++k) {
    body += "<LayerMedia><LayerTitle>L" + std::to_string(k) + "</LayerTitle><Media>M</Media></LayerMedia>";
  }
  rvtest::WriteFile(m_path, std::string(kDecl) +
                                "<FavoriteCutConditionList version=\"1.00\"><ColorToolList><ColorTool><Tool>only a "
                                "tool</Tool></ColorTool><ColorTool><FileTitle>" +
                                std::string(150, 'f') + "</FileTitle><StrokeTitle></StrokeTitle><Tool>" +
                                std::string(100, 'v') + "</Tool></ColorTool></ColorToolList><LayerMediaList>" + body +
                                "</LayerMediaList></FavoriteCutConditionList>");
  Lists out;
  out.Set(0, 0, "old", "old", "old");
  out.Set(3, RV_FAVORITE_COUNT, "sentinel", "", "");
  ASSERT_EQ(out.Read(m_path), 0u);
  EXPECT_EQ(out.Entries(0)[0], "||only a tool");
  EXPECT_EQ(out.Entries(0)[1], std::string(100, 'f') + "||" + std::string(64, 'v'));
  EXPECT_EQ(out.Entries(3)[249], "L249||M");
  EXPECT_EQ(out.Entries(3)[RV_FAVORITE_COUNT], "sentinel||");
}

TEST_F(FavoriteTest, NoFileLeavesTheArraysAsTheyAre) {
  Lists lists;
  lists.Set(0, 0, "keep", "me", "x");
  rvtest::WriteFile(m_path, std::string(kDecl) + "<TQCutConditionList version=\"1.00\"/>");
  for (const std::string& file : {m_dir.file("none.xml"), m_path}) {  // no file, or one of another root
    ASSERT_EQ(lists.Read(file), 0u);
    EXPECT_EQ(lists.Entries(0)[0], "keep|me|x");
  }
  ASSERT_EQ(RvReadFavoriteFile(17, nullptr, nullptr, nullptr, nullptr, nullptr), 0u);
}

}  // namespace
