// The condition table through its exports: adding, ordering, tracing,
// deleting, sorting.
#include "cond_test_util.h"
#include "conditions/cut_cdn_mng.h"

namespace {

using condtest::AllPasses;
using condtest::ConditionTest;
using condtest::Cutting;
using condtest::MediaNames;

class ManagerTest : public ConditionTest {
 protected:
  void SetUp() override {
    ConditionTest::SetUp();
    condtest::UseMachineType(0, "TQCutConditionList", "1.00");
  }
  uint32_t Add(const char* media, int index, const char* tool) {
    CondRecord r = Cutting(tool, 10, 20, 0.3);
    ThetaExtension t{};
    CondPair p{&r, &t};
    return RvAddCutCondition(media, index, &p);
  }
  std::vector<std::string> Tools(const char* media) {
    std::vector<condtest::Pass> passes;
    EXPECT_EQ(RvCutConditionTraceByKey(media, &passes, condtest::CollectPass), 0u);
    std::vector<std::string> tools;
    for (const auto& p : passes) tools.push_back(p.record.Tool);
    return tools;
  }
};

TEST_F(ManagerTest, AddPlacesPassesAndMakesMediaAtTheEnd) {
  ASSERT_EQ(Add("B", 0, "P1"), 0u);
  ASSERT_EQ(Add("A", 0, "Q1"), 0u);
  ASSERT_EQ(Add("B", 1, "P2"), 0u);
  ASSERT_EQ(Add("B", 2, "P3"), 0u);
  ASSERT_EQ(Add("B", 1, "NEW"), 0u);  // the new one becomes the second pass
  EXPECT_EQ(Tools("B"), (std::vector<std::string>{"P1", "NEW", "P2", "P3"}));
  EXPECT_EQ(MediaNames(), (std::vector<std::string>{"B", "A"}));
  EXPECT_EQ(RvGetRepeatCount("B"), 4);
  EXPECT_EQ(RvGetRepeatCount("A"), 1);
  EXPECT_EQ(RvGetRepeatCount("nothing"), 0);
  EXPECT_EQ(RvGetRepeatCount(nullptr), 0);

  std::vector<condtest::Pass> all = AllPasses();
  ASSERT_EQ(all.size(), 5u);
  EXPECT_EQ(all[0].media, "B");
  EXPECT_EQ(all[4].media, "A");
  EXPECT_STREQ(all[4].record.Tool, "Q1");
}

TEST_F(ManagerTest, AddWithBadIndexLeavesAnEmptyMedia) {
  EXPECT_EQ(Add("Empty", 1, "X"), 0x06001001u);
  EXPECT_EQ(MediaNames(), (std::vector<std::string>{"Empty"}));
  EXPECT_TRUE(AllPasses().empty());
  EXPECT_EQ(RvGetRepeatCount("Empty"), 0);
  ASSERT_EQ(Add("Full", 0, "Y"), 0u);
  std::string path = m_dir.file("out.xml");
  ASSERT_EQ(RvSaveCutCondition(path.c_str()), 0u);
  // Only the media with a pass is written.
  std::string saved = rvtest::ReadFile(path);
  EXPECT_EQ(saved.find("Empty"), std::string::npos);
  EXPECT_NE(saved.find("<Name>Full</Name>"), std::string::npos);
  // Null arguments are refused with the table's code.
  CondRecord r = Cutting("Z", 1, 1, 1);
  CondPair noRecord{nullptr, nullptr};
  CondPair p{&r, nullptr};
  EXPECT_EQ(RvAddCutCondition(nullptr, 0, &p), 0x06001001u);
  EXPECT_EQ(RvAddCutCondition("Full", 0, nullptr), 0x06001001u);
  EXPECT_EQ(RvAddCutCondition("Full", 0, &noRecord), 0x06001001u);
  EXPECT_EQ(RvGetRepeatCount("Full"), 1);
}

TEST_F(ManagerTest, InsertPutsANewMediaAtItsPosition) {
  ASSERT_EQ(Add("A", 0, "a"), 0u);
  ASSERT_EQ(Add("C", 0, "c"), 0u);
  CondRecord r = Cutting("b", 1, 2, 3);
  CondPair p{&r, nullptr};
  ASSERT_EQ(RvInsertCutCondition("B", 1, &p), 0u);
  EXPECT_EQ(MediaNames(), (std::vector<std::string>{"A", "B", "C"}));
  EXPECT_EQ(RvInsertCutCondition("B", 0, &p), 0x06001001u);   // exists
  EXPECT_EQ(RvInsertCutCondition("D", 4, &p), 0x06001001u);   // above the count
  EXPECT_EQ(RvInsertCutCondition("D", -1, &p), 0x06001001u);
  EXPECT_EQ(MediaNames(), (std::vector<std::string>{"A", "B", "C"}));
  ASSERT_EQ(RvInsertCutCondition("D", 3, &p), 0u);  // the count appends
  EXPECT_EQ(MediaNames(), (std::vector<std::string>{"A", "B", "C", "D"}));
  EXPECT_EQ(Tools("B"), (std::vector<std::string>{"b"}));
}

TEST_F(ManagerTest, DeleteRemovesPassesAndMedia) {
  for (const char* m : {"A", "B", "C"}) ASSERT_EQ(Add(m, 0, "t1"), 0u);
  ASSERT_EQ(Add("B", 1, "t2"), 0u);
  ASSERT_EQ(Add("B", 2, "t3"), 0u);
  EXPECT_EQ(RvDeleteCutCondition("B", 3), 0x06001001u);
  EXPECT_EQ(RvDeleteCutCondition("unknown", 0), 0x06001001u);
  EXPECT_EQ(RvDeleteCutCondition(nullptr, 0), 0x06001001u);
  ASSERT_EQ(RvDeleteCutCondition("B", 1), 0u);
  EXPECT_EQ(Tools("B"), (std::vector<std::string>{"t1", "t3"}));
  // One condition left: the media goes, whatever the index.
  ASSERT_EQ(RvDeleteCutCondition("A", 7), 0u);
  EXPECT_EQ(MediaNames(), (std::vector<std::string>{"B", "C"}));
  ASSERT_EQ(RvDeleteCutConditionByMedia("unknown"), 0u);
  ASSERT_EQ(RvDeleteCutConditionByMedia(nullptr), 0u);
  ASSERT_EQ(Add("D", 0, "d"), 0u);
  ASSERT_EQ(RvDeleteCutConditionByMedia("C"), 0u);  // from the middle
  EXPECT_EQ(MediaNames(), (std::vector<std::string>{"B", "D"}));
  ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  EXPECT_TRUE(MediaNames().empty());
  EXPECT_EQ(rv::CRvCutCdnMng::Instance().machineType, 0);
}

TEST_F(ManagerTest, SameConditionIsSharedAndOutlivesItsMedia) {
  ASSERT_EQ(Add("M1", 0, "SHARED"), 0u);
  ASSERT_EQ(Add("M1", 1, "SHARED"), 0u);
  ASSERT_EQ(Add("M2", 0, "SHARED"), 0u);
  ASSERT_EQ(Add("M2", 1, "SHARED"), 0u);
  std::vector<condtest::Pass> all = AllPasses();
  ASSERT_EQ(all.size(), 4u);
  for (const auto& p : all) {
    EXPECT_EQ(p.stored, all[0].stored);
    EXPECT_EQ(p.extension, all[0].extension);
  }
  CondPair got{};
  ASSERT_EQ(RvGetCutConditionByKeyAtRepeat("M1", 2, &got), 0u);
  ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  EXPECT_STREQ(got.record->Tool, "SHARED");
  EXPECT_EQ(got.record->Press, 20);
}

TEST_F(ManagerTest, GetAtRepeatCountsFromOne) {
  ASSERT_EQ(Add("M", 0, "first"), 0u);
  ASSERT_EQ(Add("M", 1, "second"), 0u);
  CondPair p{};
  ASSERT_EQ(RvGetCutConditionByKeyAtRepeat("M", 1, &p), 0u);
  EXPECT_STREQ(p.record->Tool, "first");
  ASSERT_EQ(RvGetCutConditionByKeyAtRepeat("M", 2, &p), 0u);
  EXPECT_STREQ(p.record->Tool, "second");
  CondPair keep{};
  EXPECT_EQ(RvGetCutConditionByKeyAtRepeat("M", 3, &keep), 0x06001001u);
  EXPECT_EQ(RvGetCutConditionByKeyAtRepeat("M", 0, &keep), 0x06001001u);
  EXPECT_EQ(RvGetCutConditionByKeyAtRepeat("M", -4, &keep), 0x06001001u);
  // An unknown media is no failure and leaves the pair alone.
  CondRecord sentinel{};
  CondPair untouched{&sentinel, &sentinel};
  EXPECT_EQ(RvGetCutConditionByKeyAtRepeat("unknown", 1, &untouched), 0u);
  EXPECT_EQ(untouched.record, &sentinel);
  EXPECT_EQ(untouched.extension, &sentinel);
}

int32_t StopAtSecond(void* ctx, const char*, const CondPair*) {
  int& calls = *static_cast<int*>(ctx);
  return ++calls == 2 ? 77 : 0;
}
int32_t StopNames(void* ctx, const char* name) {
  static_cast<std::vector<std::string>*>(ctx)->push_back(name);
  return -5;
}
int32_t DeleteWhileTracing(void*, const char* name, const CondPair*) {
  RvDeleteCutConditionByMedia(name);
  return 0;
}

TEST_F(ManagerTest, TracesStopOnACallbackResult) {
  ASSERT_EQ(Add("A", 0, "a1"), 0u);
  ASSERT_EQ(Add("A", 1, "a2"), 0u);
  ASSERT_EQ(Add("B", 0, "b1"), 0u);
  int calls = 0;
  EXPECT_EQ(RvCutConditionTrace(&calls, StopAtSecond), 77u);
  EXPECT_EQ(calls, 2);
  calls = 0;
  EXPECT_EQ(RvCutConditionTraceByKey("A", &calls, StopAtSecond), 77u);
  calls = 0;
  EXPECT_EQ(RvCutConditionTraceByKey("unknown", &calls, StopAtSecond), 0u);
  EXPECT_EQ(calls, 0);
  std::vector<std::string> names;
  EXPECT_EQ(RvGetMediaNameTrace(&names, StopNames), uint32_t(-5));
  EXPECT_EQ(names, (std::vector<std::string>{"A"}));
  EXPECT_EQ(g_ExceptionContext, nullptr);
  // A callback that changes the table doesn't break the walk.
  EXPECT_EQ(RvCutConditionTrace(nullptr, DeleteWhileTracing), 0u);
  EXPECT_TRUE(MediaNames().empty());
}

TEST_F(ManagerTest, SortOrdersMediaByBytes) {
  EXPECT_EQ(RvSortCondition(), 0x06001001u);
  for (const char* m : {"b", "ab", "a", "B", "\xC3\xA9", "a b"}) ASSERT_EQ(Add(m, 0, "t"), 0u);
  ASSERT_EQ(Add("b", 1, "second"), 0u);
  ASSERT_EQ(RvSortCondition(), 0u);
  EXPECT_EQ(MediaNames(), (std::vector<std::string>{"B", "a", "a b", "ab", "b", "\xC3\xA9"}));
  EXPECT_EQ(Tools("b"), (std::vector<std::string>{"t", "second"}));
}

TEST_F(ManagerTest, CLSetReplacesAllPassesWithMillingRecords) {
  ASSERT_EQ(Add("Other", 0, "o"), 0u);
  ASSERT_EQ(Add("Job", 0, "old1"), 0u);
  ASSERT_EQ(Add("Job", 1, "old2"), 0u);
  CLCondition cl[2] = {};
  std::strcpy(cl[0].Tool, "EM3");
  cl[0].hasSpeed = 1;
  cl[0].Thickness = 5.0;
  cl[0].SpeedDecimal = 12.5;
  cl[0].CutDirection = 1;
  cl[0].hasRpm = 1;
  cl[0].hasCuttingDepth = 1;
  cl[0].hasZSpeed = 1;
  cl[0].hasMilling = 1;
  cl[0].Rpm = 24000;
  cl[0].CuttingDepth = 1.5;
  cl[0].ZSpeed = 5;
  cl[0].Milling = 2.0;
  cl[0].WDZUnit = 2;
  cl[1] = cl[0];
  cl[1].CuttingDepth = 3.0;
  ASSERT_EQ(RvCLSetCutCondition("Job", cl, 2), 0u);
  EXPECT_EQ(MediaNames(), (std::vector<std::string>{"Job", "Other"}));
  std::vector<condtest::Pass> passes;
  ASSERT_EQ(RvCutConditionTraceByKey("Job", &passes, condtest::CollectPass), 0u);
  ASSERT_EQ(passes.size(), 2u);
  CondRecord e{};
  std::strcpy(e.Tool, "EM3");
  e.hasSpeed = 1;
  e.Thickness = 5.0;
  e.SpeedDecimal = 12.5;
  e.CutDirection = 1;
  e.WDZUnit = 2;
  condtest::ExpectRecord(passes[0].record, e);
  condtest::ExpectMilling(passes[0].extension, MillingExtension{1, 1, 1, 1, 24000, 1.5, 5, 2.0});
  condtest::ExpectMilling(passes[1].extension, MillingExtension{1, 1, 1, 1, 24000, 3.0, 5, 2.0});
  // Saved under a cutting family, a milling record has no Theta to give.
  std::string path = m_dir.file("mixed.xml");
  ASSERT_EQ(RvSaveCutCondition(path.c_str()), 0u);
  EXPECT_NE(rvtest::ReadFile(path).find("<Name>Job</Name><Condition><Tool>EM3</Tool><Speed>0</Speed><Press>-1</Press>"
                                        "<Offset>-1.000000</Offset><Theta>Available=0,[0.0][0.0][0.0][0.0][0.0][0.0]"
                                        "</Theta></Condition>"),
            std::string::npos);
  ASSERT_EQ(RvCLSetCutCondition("Job", cl, 0), 0u);
  EXPECT_EQ(MediaNames(), (std::vector<std::string>{"Other"}));
  EXPECT_EQ(RvCLSetCutCondition("Job", nullptr, 1), 0x06001001u);
}

TEST_F(ManagerTest, InternalEntryPointsServeTheWriters) {
  rv::CRvCutCdnMng& mng = rv::CRvCutCdnMng::Instance();
  CondRecord r = Cutting("CRE", 5, 6, 0.1);
  CondPair p{&r, nullptr};
  ASSERT_EQ(mng.AddCondition("K", 0, p), 0u);
  CondPair got{};
  ASSERT_EQ(mng.GetConditionAtRepeat("K", 1, got), 0u);
  ASSERT_EQ(mng.AddCondition("K", 1, got), 0u);  // a second crease pass
  EXPECT_EQ(mng.GetRepeatCount("K"), 2);
  ASSERT_EQ(mng.DeleteCondition("K", 1), 0u);
  EXPECT_EQ(mng.GetRepeatCount("K"), 1);
  condtest::ExpectTheta(got.extension, ThetaExtension{});
}

}  // namespace
