// Loading and importing condition files: missing and empty elements, roots,
// versions, duplicate media, the import name rule, the current-condition
// file, the locale.
#include <clocale>
#include <locale.h>

#include "cond_test_util.h"
#include "conditions/cut_cdn_mng.h"

namespace {

using namespace condtest;

std::string Pass(const char* tool, const char* speed = "10") {
  return std::string("<Condition><Tool>") + tool + "</Tool><Speed>" + speed +
         "</Speed><Press>20</Press><Offset>0.5</Offset><Theta>Available=0,[0][0][0][0][0][0]</Theta></Condition>";
}
std::string Media(const std::string& name, const std::string& passes) {
  return "<CutCondition><Name>" + name + "</Name>" + passes + "</CutCondition>";
}
std::string File(const std::string& body, const char* root = "TQCutConditionList", const char* version = "1.00") {
  return std::string(kDecl) + "<" + root + " version=\"" + version + "\">" + body + "</" + root + ">";
}
uint16_t TypeInForce() { return rv::CRvCutCdnMng::Instance().machineType; }

using LoadTest = ConditionTest;

TEST_F(LoadTest, RefusedFilesGiveTheirCodes) {
  const std::string noPress = "<Condition><Tool>X</Tool><Speed>1</Speed><Offset>0</Offset><Theta>t</Theta></Condition>";
  const std::string a = Media("M", Pass("A"));
  const struct {
    uint16_t type;
    std::string file;
    uint32_t code;
  } rows[] = {
      {0, File("<CutCondition>" + Pass("A") + "</CutCondition>"), 15u},  // no Name
      {0, File(Media("M", Pass(""))), 15u},                              // an empty Tool
      // The root of another family; family 2 takes the WD root too, but needs DivideCut in "2.00".
      {1, File(a), 15u},
      {2, File(a, "WDCutConditionList", "2.00"), 15u},
      {2, File(a, "WDCutConditionList", "1.00"), 0u},
      {7, File(Media("M", Pass("A", "1.5")), "WDPCutConditionList", "1.00"), 15u},  // WDP always needs it
      {0, std::string(kDecl) + "<TQCutConditionList>" + a + "</TQCutConditionList>", 65535u},  // no version
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Reload(row.type, row.file), row.code) << row.type << " " << row.file;
    EXPECT_EQ(MediaNames().size(), size_t(row.code == 0));
  }
  // Not XML with one document element, or no regular file.
  for (const char* bad : {"", "<R>", "<R></S>", "just text", kDecl, "<R/><S/>", "<R/><![CDATA[x]]>", "<R a=1/>"}) {
    EXPECT_EQ(Reload(0, bad), 13u) << bad;
  }
  for (const std::string& other : {m_dir.file("none.xml"), m_dir.path().string(), std::string("/dev/null")}) {
    EXPECT_EQ(RvLoadCutCondition(0, other.c_str()), 13u) << other;
  }
  // The media read before a failure stay; white space is text.
  EXPECT_EQ(Reload(0, File(Media("Good", Pass("A") + Pass("B")) + Media("Bad", Pass("C") + noPress))), 15u);
  EXPECT_EQ(Tools(), (Names{"Good:A", "Good:B", "Bad:C"}));
  EXPECT_EQ(Reload(0, File(Media(" ", Pass(" ")))), 0u);
  EXPECT_EQ(Tools(), (Names{" : "}));
}

TEST_F(LoadTest, TheTableMustBeEmptyAndTheTypeStaysEvenOnFailure) {
  ASSERT_EQ(Load(4, File(Media("M", Pass("A")), "BNSCutConditionList")), 0u);
  EXPECT_EQ(Load(0, File(Media("N", Pass("B")))), 65535u);
  EXPECT_EQ(Tools(), (Names{"M:A"}));
  ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  EXPECT_EQ(TypeInForce(), 4);
  EXPECT_EQ(RvLoadCutCondition(6, nullptr), 13u);
  EXPECT_EQ(TypeInForce(), 6);
}

TEST_F(LoadTest, CurrentConditionFileOfType5AcceptsAnyRootAndRenamesTools) {
  std::string body = Media("M", Pass("CT4-X") + Pass("CT5") + Pass("PIN09") + Pass("HLF") + Pass("CT6") + Pass("CT"));
  EXPECT_EQ(Load(5, File(body), "OtherTQCondition.xml"), 15u);  // wrong root, not the current file
  ASSERT_EQ(Load(5, File(body, "SomethingElse"), "CurrentTQCondition.xml"), 0u);
  EXPECT_EQ(Tools(), (Names{"M:CT6", "M:CT7", "M:CT4", "M:CT5", "M:CT6", "M:CT"}));
  ASSERT_EQ(Import(File(Media("M", Pass("PIN"))), "CurrentTQCondition.xml"), 0u);  // import renames too
  EXPECT_EQ(Tools().back(), "M-1:CT4");
  ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  ASSERT_EQ(Load(0, File(body), "CurrentTQCondition.xml"), 0u);  // other families don't
  EXPECT_EQ(Tools().front(), "M:CT4-X");
}

TEST_F(LoadTest, DuplicateMediaMergeAndOrderAndSpacesDontMatter) {
  ASSERT_EQ(Load(0, File(Media("A", Pass("a1") + Pass("a2")) + Media("B", Pass("b1")) +
                         Media("A", Pass("a3") + Pass("a4")) + "<CutCondition><Name>Nothing</Name></CutCondition>")),
            0u);
  EXPECT_EQ(Tools(), (Names{"A:a3", "A:a4", "A:a1", "A:a2", "B:b1"}));
  EXPECT_EQ(MediaNames(), (Names{"A", "B"}));
  std::string body =
      "\r\n  <CutCondition>\r\n    <Condition>\n      <Theta>Available=1,[1][2][3][4][5][6]</Theta>\n"
      "      <Offset>0.125</Offset> <Press>7</Press>\t<Speed>9</Speed>\n      <Tool>T</Tool>\n    </Condition>\n"
      "    <Name>Spa<!-- a comment -->ced</Name>\n    <Thickness>junk</Thickness>\n  </CutCondition>\n";
  ASSERT_EQ(Reload(0, "\xEF\xBB\xBF" + File(body)), 0u);  // with a byte order mark
  EXPECT_EQ(Saved(), File(Media("Spaced", "<Condition><Tool>T</Tool><Speed>9</Speed><Press>7</Press><Offset>0.125000"
                                          "</Offset><Theta>Available=1,[1.0][2.0][3.0][4.0][5.0][6.0]</Theta>"
                                          "</Condition>")));
  EXPECT_EQ(AllPasses().at(0).record.Thickness, -1.0);  // Thickness isn't a TQ element
}

TEST_F(LoadTest, TextThatDoesntMatchItsFormLeavesTheValueUnset) {
  ASSERT_EQ(Load(0, File(Media("M", "<Condition><Tool>T</Tool><Speed>fast</Speed><Press>-3</Press><Offset>x</Offset>"
                                    "<Theta>Available=1,[1.5][2.5]oops</Theta></Condition>"))),
            0u);
  const auto p = AllPasses().at(0);
  EXPECT_EQ(std::tie(p.record.hasSpeed, p.record.Speed, p.record.hasPress, p.record.Press, p.record.hasOffset,
                     p.record.Offset),
            std::make_tuple(0u, int16_t(-1), 0u, int16_t(-3), 0u, -1.0));
  ExpectExtension(p.extension, ThetaExtension{1, {1.5, 2.5, -1, -1, -1, -1}});
}

TEST_F(LoadTest, WDReadsDivideCutOnlyInVersionTwo) {
  std::string divided = Pass("A");
  divided.insert(divided.rfind("</Condition>"), "<DivideCut>Available=1,[3][12.0][60.0][1][2.0]</DivideCut>");
  ASSERT_EQ(Load(1, File(Media("M", divided), "WDCutConditionList", "2.0")), 0u);  // the version is text
  EXPECT_EQ(Fields(AllPasses().at(0).record.DivideCut), Fields(kDivideDefault));
  // A WD file of version 1.00 is saved as "2.00" with the default DivideCut.
  ASSERT_EQ(Reload(1, File(Media("M", divided), "WDCutConditionList", "1.00")), 0u);
  EXPECT_EQ(Saved(), File(Media("M", "<Condition><Tool>A</Tool><Speed>10</Speed><Press>20</Press><Offset>0.500000"
                                     "</Offset><Theta>Available=0,[0.0][0.0][0.0][0.0][0.0][0.0]</Theta><DivideCut>"
                                     "Available=0,[0][30.0][30.0][0][10.0]</DivideCut></Condition>"),
                          "WDCutConditionList", "2.00"));
}

TEST_F(LoadTest, MillingOfTheFirstPassDecidesForTheMediaButNotOnImport) {
  auto pass = [](const char* milling) {
    return std::string("<Condition><Tool>E</Tool><CutDirection>0</CutDirection><Speed>5</Speed><Rpm>100</Rpm>"
                       "<CuttingDepth>1</CuttingDepth><ZSpeed>2</ZSpeed><Milling>") +
           milling + "</Milling></Condition>";
  };
  std::string file = File("<CutCondition><Name>M</Name><Thickness>1</Thickness>" + pass("-1.000000") + pass("4.5") +
                              "</CutCondition>",
                          "WD3KCutConditionList");
  ASSERT_EQ(Load(3, file), 0u);
  ASSERT_EQ(Import(file), 0u);
  auto passes = AllPasses();
  ASSERT_EQ(passes.size(), 4u);
  for (int i : {0, 1}) ExpectExtension(passes[i].extension, MillingExtension{1, 1, 1, 0, 100, 1.0, 2, 3.0});
  ExpectExtension(passes[2].extension, MillingExtension{1, 1, 1, 0, 100, 1.0, 2, -1.0});
  ExpectExtension(passes[3].extension, MillingExtension{1, 1, 1, 1, 100, 1.0, 2, 4.5});
}

TEST_F(LoadTest, ImportNumbersNamesThatExist) {
  ASSERT_EQ(Load(0, File(Media("Paper", Pass("p")))), 0u);
  std::string file = File(Media("Paper", Pass("i1") + Pass("i2")) + Media("New", Pass("n")));
  ASSERT_EQ(Import(file), 0u);
  ASSERT_EQ(Import(file), 0u);
  EXPECT_EQ(MediaNames(), (Names{"Paper", "Paper-1", "New", "Paper-2", "New-1"}));
  EXPECT_EQ(RvGetRepeatCount("Paper-1"), 2);
  // The other speed form is marked unset on import only.
  auto passes = AllPasses();
  EXPECT_EQ(std::tie(passes[0].record.SpeedDecimal, passes[1].record.SpeedDecimal), std::make_tuple(0.0, -1.0));
  // Import keeps the type in force: a file of another family is refused.
  EXPECT_EQ(Import(File(Media("X", Pass("x")), "WDCutConditionList", "2.00")), 15u);
  EXPECT_EQ(TypeInForce(), 0);
  // After "-128" the passes join the media.
  ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  for (int i = 0; i < 130; ++i) ASSERT_EQ(Import(File(Media("M", Pass("more")))), 0u);  // M, M-1 ... M-128, M
  EXPECT_EQ(MediaNames().back(), "M-128");
  EXPECT_EQ(MediaNames().size(), 129u);
  EXPECT_EQ(RvGetRepeatCount("M"), 2);
}

TEST_F(LoadTest, ImportKeepsNamesWithinSixtyFourCharacters) {
  ScopedEnv lcAll("LC_ALL", "C.UTF-8");
  auto e = [](int n) {  // n characters of two bytes each
    std::string s;
    while (n-- > 0) s += "\xC3\xA9";
    return s;
  };
  ASSERT_EQ(Load(0, File(Media(e(64), Pass("a")))), 0u);
  ASSERT_EQ(Import(File(Media(e(64), Pass("b")))), 0u);
  ASSERT_EQ(Import(File(Media(e(64) + "xyz", Pass("c")))), 0u);  // cut to 64 characters first
  ASSERT_EQ(Import(File(Media(std::string(70, 'a'), Pass("d")))), 0u);
  EXPECT_EQ(MediaNames(), (Names{e(64), e(62) + "-1", e(62) + "-2", std::string(64, 'a')}));
}

TEST_F(LoadTest, TextGoesThroughTheUsersLocaleAndTheHostsLocaleStays) {
  ScopedEnv lcAll("LC_ALL", "C.UTF-8");
  ASSERT_NE(std::setlocale(LC_ALL, "C"), nullptr);
  std::string name = "Papier \xC3\xA9\xE2\x82\xAC";  // é and € in UTF-8
  ASSERT_EQ(Load(0, File(Media(name, Pass("T\xC3\xA9")))), 0u);
  EXPECT_EQ(Tools(), (Names{name + ":T\xC3\xA9"}));
  EXPECT_NE(Saved().find("<Name>" + name + "</Name>"), std::string::npos);
  // A file in Latin-1 comes out in the user's encoding too, with '?' where
  // the user's locale has no such character.
  std::string latin1 = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><TQCutConditionList version=\"1.00\">" +
                       Media("Caf\xE9", Pass("t")) + "</TQCutConditionList>";
  for (auto [locale, expected] : {std::pair{"C.UTF-8", "Caf\xC3\xA9"}, {"C", "Caf?"}}) {
    ScopedEnv user("LC_ALL", locale);
    ASSERT_EQ(Reload(0, latin1), 0u);
    EXPECT_EQ(MediaNames(), (Names{expected}));
  }
  // Failures leave the locales as they were too.
  EXPECT_EQ(Reload(0, File(Media("", Pass("A")))), 15u);
  EXPECT_EQ(RvSaveCutCondition(m_dir.file("no/such/dir.xml").c_str()), 14u);
  EXPECT_EQ(RvSaveCutCondition(nullptr), 14u);
  EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
  EXPECT_EQ(uselocale(nullptr), LC_GLOBAL_LOCALE);
}

}  // namespace
