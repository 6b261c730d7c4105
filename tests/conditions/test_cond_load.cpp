// Loading and importing condition files: missing and empty elements, roots,
// versions, duplicate media, the import name rule, the current-condition file.
#include <clocale>
#include <locale.h>

#include "cond_test_util.h"
#include "conditions/cut_cdn_mng.h"

namespace {

using condtest::AllPasses;
using condtest::ConditionTest;
using condtest::kDecl;
using condtest::MediaNames;

std::string Pass(const char* tool, const char* speed = "10") {
  return std::string("<Condition><Tool>") + tool + "</Tool><Speed>" + speed +
         "</Speed><Press>20</Press><Offset>0.5</Offset><Theta>Available=0,[0][0][0][0][0][0]</Theta></Condition>";
}
std::string Media(const char* name, const std::string& passes) {
  return std::string("<CutCondition><Name>") + name + "</Name>" + passes + "</CutCondition>";
}
std::string TQFile(const std::string& body, const char* root = "TQCutConditionList", const char* version = "1.00") {
  return std::string(kDecl) + "<" + root + " version=\"" + version + "\">" + body + "</" + root + ">";
}

class LoadTest : public ConditionTest {
 protected:
  uint32_t LoadText(uint16_t type, const std::string& text, const char* file = "c.xml") {
    std::string path = m_dir.file(file);
    rvtest::WriteFile(path, text);
    return RvLoadCutCondition(type, path.c_str());
  }
  uint32_t ImportText(const std::string& text, const char* file = "i.xml") {
    std::string path = m_dir.file(file);
    rvtest::WriteFile(path, text);
    return RvImportCutCondition(path.c_str());
  }
  std::vector<std::string> Tools() {
    std::vector<std::string> tools;
    for (const auto& p : AllPasses()) tools.push_back(p.media + ":" + p.record.Tool);
    return tools;
  }
};

TEST_F(LoadTest, MissingOrEmptyElementsFailWithFifteenAndKeepWhatWasRead) {
  // A Name that is missing, empty, or a required element missing or empty.
  EXPECT_EQ(LoadText(0, TQFile("<CutCondition>" + Pass("A") + "</CutCondition>")), 15u);
  EXPECT_TRUE(MediaNames().empty());
  EXPECT_EQ(LoadText(0, TQFile(Media("", Pass("A")))), 15u);
  EXPECT_EQ(LoadText(0, TQFile(Media("<Name></Name>", Pass("A")))), 15u);
  std::string noPress = "<Condition><Tool>X</Tool><Speed>1</Speed><Offset>0</Offset><Theta>t</Theta></Condition>";
  EXPECT_EQ(LoadText(0, TQFile(Media("Good", Pass("A") + Pass("B")) + Media("Bad", Pass("C") + noPress))), 15u);
  EXPECT_EQ(Tools(), (std::vector<std::string>{"Good:A", "Good:B", "Bad:C"}));
  ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  EXPECT_EQ(LoadText(0, TQFile(Media("M", Pass("")))), 15u);
  // White space is text.
  ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  EXPECT_EQ(LoadText(0, TQFile(Media(" ", Pass(" ")))), 0u);
  EXPECT_EQ(Tools(), (std::vector<std::string>{" : "}));
}

TEST_F(LoadTest, TheTableMustBeEmptyAndTheTypeStays) {
  ASSERT_EQ(LoadText(4, TQFile(Media("M", Pass("A")), "BNSCutConditionList")), 0u);
  EXPECT_EQ(LoadText(0, TQFile(Media("N", Pass("B")))), 65535u);
  EXPECT_EQ(Tools(), (std::vector<std::string>{"M:A"}));
  EXPECT_EQ(rv::CRvCutCdnMng::Instance().machineType, 4);
  ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  // The type is set even when the file fails.
  EXPECT_EQ(RvLoadCutCondition(6, m_dir.file("missing.xml").c_str()), 13u);
  EXPECT_EQ(rv::CRvCutCdnMng::Instance().machineType, 6);
  EXPECT_EQ(RvLoadCutCondition(7, nullptr), 13u);
}

TEST_F(LoadTest, RootsAreCheckedByFamily) {
  EXPECT_EQ(LoadText(1, TQFile(Media("M", Pass("A")))), 15u);
  EXPECT_EQ(LoadText(0, TQFile(Media("M", Pass("A")), "WDCutConditionList", "2.00")), 15u);
  EXPECT_EQ(LoadText(17, TQFile("")), 15u);
  // Family 2 takes the root of family 1 too.
  EXPECT_EQ(LoadText(2, TQFile(Media("M", Pass("A")), "WDCutConditionList", "2.00")), 15u);  // DivideCut missing
  ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  EXPECT_EQ(LoadText(2, TQFile(Media("M", Pass("A")), "WDCutConditionList", "1.00")), 0u);
  ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  // No version attribute.
  EXPECT_EQ(LoadText(0, std::string(kDecl) + "<TQCutConditionList>" + Media("M", Pass("A")) + "</TQCutConditionList>"),
            65535u);
  // Not XML, no document element, nothing at all.
  EXPECT_EQ(LoadText(0, "<TQCutConditionList version=\"1.00\"><CutCondition>"), 13u);
  EXPECT_EQ(LoadText(0, kDecl), 13u);
  EXPECT_EQ(LoadText(0, ""), 13u);
  EXPECT_TRUE(MediaNames().empty());
}

TEST_F(LoadTest, CurrentConditionFileOfType5AcceptsAnyRootAndRenamesTools) {
  std::string body = Media("M", Pass("CT4-X") + Pass("CT5") + Pass("PIN09") + Pass("HLF") + Pass("CT6") + Pass("CT"));
  EXPECT_EQ(LoadText(5, TQFile(body), "OtherTQCondition.xml"), 15u);  // wrong root, not the current file
  ASSERT_EQ(LoadText(5, TQFile(body, "SomethingElse"), "CurrentTQCondition.xml"), 0u);
  EXPECT_EQ(Tools(), (std::vector<std::string>{"M:CT6", "M:CT7", "M:CT4", "M:CT5", "M:CT6", "M:CT"}));
  // Import renames too; other families don't.
  ASSERT_EQ(ImportText(TQFile(Media("M", Pass("PIN"))), "CurrentTQCondition.xml"), 0u);
  EXPECT_EQ(AllPasses().back().record.Tool, std::string("CT4"));
  ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  ASSERT_EQ(LoadText(0, TQFile(body), "CurrentTQCondition.xml"), 0u);
  EXPECT_EQ(AllPasses().front().record.Tool, std::string("CT4-X"));
}

TEST_F(LoadTest, DuplicateMediaMergeTheirPasses) {
  std::string body = Media("A", Pass("a1") + Pass("a2")) + Media("B", Pass("b1")) + Media("A", Pass("a3") + Pass("a4")) +
                     "<CutCondition><Name>Nothing</Name></CutCondition>";
  ASSERT_EQ(LoadText(0, TQFile(body)), 0u);
  EXPECT_EQ(MediaNames(), (std::vector<std::string>{"A", "B"}));
  EXPECT_EQ(Tools(), (std::vector<std::string>{"A:a3", "A:a4", "A:a1", "A:a2", "B:b1"}));
}

TEST_F(LoadTest, WhiteSpaceAndElementOrderDontMatter) {
  std::string body =
      "\r\n  <CutCondition>\r\n    <Condition>\n      <Theta>Available=1,[1][2][3][4][5][6]</Theta>\n"
      "      <Offset>0.125</Offset> <Press>7</Press>\t<Speed>9</Speed>\n      <Tool>T</Tool>\n    </Condition>\n"
      "    <!-- a comment --><Name>Spaced</Name>\n    <Thickness>junk</Thickness>\n  </CutCondition>\n";
  ASSERT_EQ(LoadText(0, TQFile(body)), 0u);
  auto passes = AllPasses();
  ASSERT_EQ(passes.size(), 1u);
  EXPECT_EQ(passes[0].media, "Spaced");
  EXPECT_EQ(passes[0].record.Speed, 9);
  EXPECT_EQ(passes[0].record.Press, 7);
  EXPECT_EQ(passes[0].record.Offset, 0.125);
  EXPECT_EQ(passes[0].record.Thickness, -1.0);  // Thickness isn't a TQ element
  condtest::ExpectTheta(passes[0].extension, ThetaExtension{1, {1, 2, 3, 4, 5, 6}});
  std::string path = m_dir.file("again.xml");
  ASSERT_EQ(RvSaveCutCondition(path.c_str()), 0u);
  EXPECT_EQ(rvtest::ReadFile(path).find("Thickness"), std::string::npos);
}

TEST_F(LoadTest, TextThatDoesntMatchItsFormLeavesTheValueUnset) {
  std::string pass =
      "<Condition><Tool>T</Tool><Speed>fast</Speed><Press>-3</Press><Offset>x</Offset>"
      "<Theta>Available=1,[1.5][2.5]oops</Theta></Condition>";
  ASSERT_EQ(LoadText(0, TQFile(Media("M", pass))), 0u);
  const CondRecord r = AllPasses().at(0).record;
  EXPECT_EQ(r.hasSpeed, 0u);
  EXPECT_EQ(r.Speed, -1);
  EXPECT_EQ(r.hasPress, 0u);
  EXPECT_EQ(r.Press, -3);
  EXPECT_EQ(r.hasOffset, 0u);
  EXPECT_EQ(r.Offset, -1.0);
  condtest::ExpectTheta(AllPasses().at(0).extension, ThetaExtension{1, {1.5, 2.5, -1, -1, -1, -1}});
}

TEST_F(LoadTest, DivideCutFollowsRootAndVersion) {
  std::string withDivide = Pass("A");
  withDivide.insert(withDivide.size() - std::string("</Condition>").size(),
                    "<DivideCut>Available=1,[3][12.0][60.0][1][2.0]</DivideCut>");
  // Version "2.00" of WD reads it; "1.00" and "2.0" take the defaults.
  ASSERT_EQ(LoadText(1, TQFile(Media("M", withDivide), "WDCutConditionList", "2.00")), 0u);
  EXPECT_EQ(AllPasses().at(0).record.DivideCut.divideKind, 3);
  EXPECT_EQ(AllPasses().at(0).record.DivideCut.jointLength, 2.0);
  for (const char* version : {"1.00", "2.0"}) {
    ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
    ASSERT_EQ(LoadText(1, TQFile(Media("M", withDivide), "WDCutConditionList", version)), 0u) << version;
    DivideCutRecord d = AllPasses().at(0).record.DivideCut;
    EXPECT_EQ(d.Available, 0);
    EXPECT_EQ(d.minLength, 30.0);
    EXPECT_EQ(d.limitAngle, 30.0);
    EXPECT_EQ(d.jointLength, 10.0);
  }
  // Saved, the WD file becomes version "2.00" with its DivideCut.
  std::string path = m_dir.file("wd.xml");
  ASSERT_EQ(RvSaveCutCondition(path.c_str()), 0u);
  std::string saved = rvtest::ReadFile(path);
  EXPECT_NE(saved.find("<WDCutConditionList version=\"2.00\">"), std::string::npos);
  EXPECT_NE(saved.find("<DivideCut>Available=0,[0][30.0][30.0][0][10.0]</DivideCut>"), std::string::npos);
  // WDP needs it in every version.
  ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  EXPECT_EQ(LoadText(7, TQFile(Media("M", Pass("A", "1.5")), "WDPCutConditionList", "1.00")), 15u);
  ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  ASSERT_EQ(LoadText(7, TQFile(Media("M", withDivide), "WDPCutConditionList", "1.00")), 0u);
  EXPECT_EQ(AllPasses().at(0).record.DivideCut.divideKind, 3);
  EXPECT_EQ(AllPasses().at(0).record.SpeedDecimal, 10.0);
}

TEST_F(LoadTest, MillingOfTheFirstPassDecidesForTheMedia) {
  auto pass = [](const char* milling) {
    return std::string("<Condition><Tool>E</Tool><CutDirection>0</CutDirection><Speed>5</Speed><Rpm>100</Rpm>"
                       "<CuttingDepth>1</CuttingDepth><ZSpeed>2</ZSpeed><Milling>") +
           milling + "</Milling></Condition>";
  };
  std::string file = TQFile("<CutCondition><Name>M</Name><Thickness>1</Thickness>" + pass("-1.000000") + pass("4.5") +
                                "</CutCondition>",
                            "WD3KCutConditionList");
  ASSERT_EQ(LoadText(3, file), 0u);
  auto passes = AllPasses();
  ASSERT_EQ(passes.size(), 2u);
  for (const auto& p : passes) condtest::ExpectMilling(p.extension, MillingExtension{1, 1, 1, 0, 100, 1.0, 2, 3.0});
  // Import decides per pass and keeps the value.
  ASSERT_EQ(ImportText(file), 0u);
  passes = AllPasses();
  ASSERT_EQ(passes.size(), 4u);
  EXPECT_EQ(passes[2].media, "M-1");
  condtest::ExpectMilling(passes[2].extension, MillingExtension{1, 1, 1, 0, 100, 1.0, 2, -1.0});
  condtest::ExpectMilling(passes[3].extension, MillingExtension{1, 1, 1, 1, 100, 1.0, 2, 4.5});
}

TEST_F(LoadTest, ImportNumbersNamesThatExist) {
  ASSERT_EQ(LoadText(0, TQFile(Media("Paper", Pass("p")))), 0u);
  std::string file = TQFile(Media("Paper", Pass("i1") + Pass("i2")) + Media("New", Pass("n")));
  ASSERT_EQ(ImportText(file), 0u);
  ASSERT_EQ(ImportText(file), 0u);
  EXPECT_EQ(MediaNames(), (std::vector<std::string>{"Paper", "Paper-1", "New", "Paper-2", "New-1"}));
  EXPECT_EQ(RvGetRepeatCount("Paper-1"), 2);
  // The other speed form is marked unset on import.
  auto passes = AllPasses();
  EXPECT_EQ(passes[0].record.SpeedDecimal, 0.0);
  EXPECT_EQ(passes[1].record.SpeedDecimal, -1.0);
  EXPECT_EQ(passes[1].record.Speed, 10);
  // Import keeps the type in force: a file of another family is refused.
  EXPECT_EQ(ImportText(TQFile(Media("X", Pass("x")), "WDCutConditionList", "2.00")), 15u);
  EXPECT_EQ(rv::CRvCutCdnMng::Instance().machineType, 0);
}

TEST_F(LoadTest, ImportKeepsNamesWithinSixtyFourCharacters) {
  condtest::ScopedEnv lcAll("LC_ALL", "C.UTF-8");
  // 64 characters of two bytes each.
  std::string wide;
  for (int i = 0; i < 64; ++i) wide += "\xC3\xA9";
  ASSERT_EQ(LoadText(0, TQFile(Media(wide.c_str(), Pass("a")))), 0u);
  ASSERT_EQ(ImportText(TQFile(Media(wide.c_str(), Pass("b")))), 0u);
  std::string cut62;
  for (int i = 0; i < 62; ++i) cut62 += "\xC3\xA9";
  EXPECT_EQ(MediaNames(), (std::vector<std::string>{wide, cut62 + "-1"}));
  // A longer name is cut to 64 characters.
  std::string longer = wide + "xyz";
  ASSERT_EQ(ImportText(TQFile(Media(longer.c_str(), Pass("c")))), 0u);
  EXPECT_EQ(MediaNames().back(), cut62 + "-2");
  std::string ascii(70, 'a');
  ASSERT_EQ(ImportText(TQFile(Media(ascii.c_str(), Pass("d")))), 0u);
  EXPECT_EQ(MediaNames().back(), std::string(64, 'a'));
}

TEST_F(LoadTest, AfterAllSuffixesThePassesJoinTheMedia) {
  ASSERT_EQ(LoadText(0, TQFile(Media("M", Pass("first")))), 0u);
  std::string file = TQFile(Media("M", Pass("more")));
  for (int i = 1; i <= 128; ++i) ASSERT_EQ(ImportText(file), 0u);
  EXPECT_EQ(MediaNames().back(), "M-128");
  EXPECT_EQ(RvGetRepeatCount("M"), 1);
  ASSERT_EQ(ImportText(file), 0u);
  EXPECT_EQ(MediaNames().size(), 129u);
  EXPECT_EQ(RvGetRepeatCount("M"), 2);
}

TEST_F(LoadTest, ThousandsOfMediaKeepTheirOrderThroughSaveAndLoad) {
  std::string body;
  const int count = 3000;
  for (int i = 0; i < count; ++i) {
    std::string name = "M" + std::to_string(i);
    body += Media(name.c_str(), Pass(("a" + std::to_string(i)).c_str()) + Pass("b"));
  }
  ASSERT_EQ(LoadText(0, TQFile(body)), 0u);
  std::string path = m_dir.file("big.xml");
  ASSERT_EQ(RvSaveCutCondition(path.c_str()), 0u);
  ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  ASSERT_EQ(RvLoadCutCondition(0, path.c_str()), 0u);
  auto names = MediaNames();
  ASSERT_EQ(names.size(), size_t(count));
  auto passes = AllPasses();
  ASSERT_EQ(passes.size(), size_t(2 * count));
  for (int i = 0; i < count; i += 499) {
    EXPECT_EQ(names[size_t(i)], "M" + std::to_string(i));
    EXPECT_EQ(passes[size_t(2 * i)].record.Tool, "a" + std::to_string(i));
    EXPECT_STREQ(passes[size_t(2 * i + 1)].record.Tool, "b");
  }
}

TEST_F(LoadTest, TextGoesThroughTheUsersLocaleAndTheHostsLocaleStays) {
  condtest::ScopedEnv lcAll("LC_ALL", "C.UTF-8");
  ASSERT_NE(std::setlocale(LC_ALL, "C"), nullptr);
  std::string name = "Papier \xC3\xA9\xE2\x82\xAC";  // é and € in UTF-8
  ASSERT_EQ(LoadText(0, TQFile(Media(name.c_str(), Pass("T\xC3\xA9")))), 0u);
  EXPECT_EQ(MediaNames(), (std::vector<std::string>{name}));
  EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
  EXPECT_EQ(uselocale(nullptr), LC_GLOBAL_LOCALE);
  std::string path = m_dir.file("utf8.xml");
  ASSERT_EQ(RvSaveCutCondition(path.c_str()), 0u);
  EXPECT_NE(rvtest::ReadFile(path).find("<Name>" + name + "</Name>"), std::string::npos);
  EXPECT_EQ(uselocale(nullptr), LC_GLOBAL_LOCALE);
  // A file in Latin-1 comes out in the user's encoding too.
  ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  std::string latin1 = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><TQCutConditionList version=\"1.00\">" +
                       Media("Caf\xE9", Pass("t")) + "</TQCutConditionList>";
  ASSERT_EQ(LoadText(0, latin1), 0u);
  EXPECT_EQ(MediaNames(), (std::vector<std::string>{"Caf\xC3\xA9"}));
  // Under a plain ASCII locale a character that can't be written becomes '?'.
  condtest::ScopedEnv ascii("LC_ALL", "C");
  ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  ASSERT_EQ(LoadText(0, latin1), 0u);
  EXPECT_EQ(MediaNames(), (std::vector<std::string>{"Caf?"}));
  EXPECT_EQ(uselocale(nullptr), LC_GLOBAL_LOCALE);
}

TEST_F(LoadTest, FailuresRestoreTheLocaleAndTheFrameStack) {
  ASSERT_NE(std::setlocale(LC_ALL, "C"), nullptr);
  EXPECT_EQ(LoadText(0, TQFile(Media("", Pass("A")))), 15u);
  EXPECT_EQ(uselocale(nullptr), LC_GLOBAL_LOCALE);
  EXPECT_EQ(RvSaveCutCondition(m_dir.file("no/such/dir.xml").c_str()), 14u);
  EXPECT_EQ(RvSaveCutCondition(nullptr), 14u);
  EXPECT_EQ(uselocale(nullptr), LC_GLOBAL_LOCALE);
  EXPECT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C");
  EXPECT_EQ(g_ExceptionContext, nullptr);
}

}  // namespace
