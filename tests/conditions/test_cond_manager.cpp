// The condition table through its exports: adding, ordering, tracing,
// deleting, sorting.
#include "cond_test_util.h"

namespace {

using namespace condtest;

class ManagerTest : public ConditionTest {
 protected:
  uint32_t Add(const char* media, int index, const char* tool) {
    CondRecord r = Cutting(tool, 10, 20, 0.3);
    CondPair p{&r, nullptr};
    return RvAddCutCondition(media, index, &p);
  }
  /// Adds each "media:tool" behind the passes of its media.
  void AddAll(const Names& passes) {
    for (const std::string& pass : passes) {
      std::string media = pass.substr(0, pass.find(':'));
      ASSERT_EQ(Add(media.c_str(), RvGetRepeatCount(media.c_str()), pass.c_str() + media.size() + 1), 0u);
    }
  }
};

TEST_F(ManagerTest, AddPlacesPassesAndMakesMediaAtTheEnd) {
  AddAll({"B:P1", "A:Q1", "B:P2", "B:P3"});
  ASSERT_EQ(Add("B", 1, "NEW"), 0u);  // the new one becomes the second pass
  for (int bad : {-1, 5}) EXPECT_EQ(Add("B", bad, "X"), kNotInTable) << bad;
  EXPECT_EQ(Tools(), (Names{"B:P1", "B:NEW", "B:P2", "B:P3", "A:Q1"}));
  EXPECT_EQ(RvGetRepeatCount("nothing"), 0);
  EXPECT_EQ(RvGetRepeatCount(nullptr), 0);
  // A bad index leaves the media made for it, empty and not saved.
  EXPECT_EQ(Add("Empty", 1, "X"), kNotInTable);
  EXPECT_EQ(MediaNames(), (Names{"B", "A", "Empty"}));
  EXPECT_EQ(RvGetRepeatCount("Empty"), 0);
  EXPECT_EQ(Saved().find("Empty"), std::string::npos);
  // Null arguments are refused with the table's code.
  CondRecord r = Cutting("Z", 1, 1, 1);
  CondPair p{&r, nullptr}, noRecord{nullptr, nullptr};
  EXPECT_EQ(RvAddCutCondition(nullptr, 0, &p), kNotInTable);
  EXPECT_EQ(RvAddCutCondition("A", 0, nullptr), kNotInTable);
  EXPECT_EQ(RvAddCutCondition("A", 0, &noRecord), kNotInTable);
  EXPECT_EQ(RvInsertCutCondition("Z", 0, &noRecord), kNotInTable);
  EXPECT_EQ(RvGetRepeatCount("A"), 1);
}

TEST_F(ManagerTest, InsertPutsANewMediaAtItsPosition) {
  AddAll({"A:a", "C:c"});
  CondRecord r = Cutting("b", 1, 2, 3);
  CondPair p{&r, nullptr};
  ASSERT_EQ(RvInsertCutCondition("B", 1, &p), 0u);
  EXPECT_EQ(RvInsertCutCondition("B", 0, &p), kNotInTable);  // exists
  EXPECT_EQ(RvInsertCutCondition("D", 4, &p), kNotInTable);  // above the count
  EXPECT_EQ(RvInsertCutCondition("D", -1, &p), kNotInTable);
  ASSERT_EQ(RvInsertCutCondition("D", 3, &p), 0u);  // the count appends
  EXPECT_EQ(Tools(), (Names{"A:a", "B:b", "C:c", "D:b"}));
}

TEST_F(ManagerTest, DeleteRemovesPassesAndMedia) {
  AddAll({"A:t1", "B:t1", "C:t1", "B:t2", "B:t3"});
  for (int bad : {-1, 3}) EXPECT_EQ(RvDeleteCutCondition("B", bad), kNotInTable) << bad;
  EXPECT_EQ(RvDeleteCutCondition("unknown", 0), kNotInTable);
  EXPECT_EQ(RvDeleteCutCondition(nullptr, 0), kNotInTable);
  ASSERT_EQ(RvDeleteCutCondition("B", 1), 0u);
  ASSERT_EQ(RvDeleteCutCondition("A", 7), 0u);  // one condition left: the media goes, whatever the index
  EXPECT_EQ(Tools(), (Names{"B:t1", "B:t3", "C:t1"}));
  ASSERT_EQ(RvDeleteCutConditionByMedia("unknown"), 0u);
  ASSERT_EQ(RvDeleteCutConditionByMedia(nullptr), 0u);
  AddAll({"D:d"});
  ASSERT_EQ(RvDeleteCutConditionByMedia("C"), 0u);  // from the middle
  EXPECT_EQ(MediaNames(), (Names{"B", "D"}));
  ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  EXPECT_TRUE(MediaNames().empty());
}

TEST_F(ManagerTest, GetAtRepeatCountsFromOneAndItsPairOutlivesTheMedia) {
  AddAll({"M:first", "M:second", "N:second"});
  CondPair p{}, q{};
  ASSERT_EQ(RvGetCutConditionByKeyAtRepeat("M", 1, &p), 0u);
  EXPECT_STREQ(p.record->Tool, "first");
  ASSERT_EQ(RvGetCutConditionByKeyAtRepeat("N", 1, &q), 0u);
  ASSERT_EQ(RvGetCutConditionByKeyAtRepeat("M", 2, &p), 0u);
  EXPECT_EQ(std::tie(p.record, p.extension), std::tie(q.record, q.extension));  // the same condition is stored once
  ASSERT_EQ(RvAddCutCondition("N", 1, &p), 0u);  // a pair handed out goes in again
  EXPECT_EQ(Tools(), (Names{"M:first", "M:second", "N:second", "N:second"}));
  for (int bad : {3, 0, -4}) EXPECT_EQ(RvGetCutConditionByKeyAtRepeat("M", bad, &q), kNotInTable) << bad;
  // An unknown media is no failure and leaves the pair alone.
  CondRecord sentinel{};
  CondPair untouched{&sentinel, &sentinel};
  EXPECT_EQ(RvGetCutConditionByKeyAtRepeat("unknown", 1, &untouched), 0u);
  EXPECT_EQ(std::tie(untouched.record, untouched.extension), std::make_tuple(&sentinel, &sentinel));
  ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  EXPECT_STREQ(p.record->Tool, "second");
  ExpectExtension(p.extension, ThetaExtension{});
}

int32_t StopAtSecond(void* ctx, const char*, const CondPair*) { return ++*static_cast<int*>(ctx) == 2 ? 77 : 0; }
int32_t StopNames(void* ctx, const char* name) { return CollectName(ctx, name) - 5; }
int32_t DeleteWhileTracing(void*, const char* name, const CondPair*) { return RvDeleteCutConditionByMedia(name); }

TEST_F(ManagerTest, TracesStopOnACallbackResult) {
  AddAll({"A:a1", "A:a2", "B:b1"});
  int calls = 0;
  EXPECT_EQ(RvCutConditionTrace(&calls, StopAtSecond), 77u);
  EXPECT_EQ(calls, 2);
  calls = 0;
  EXPECT_EQ(RvCutConditionTraceByKey("A", &calls, StopAtSecond), 77u);
  calls = 1;
  EXPECT_EQ(RvCutConditionTraceByKey("unknown", &calls, StopAtSecond), 0u);  // a call would stop it
  std::vector<Pass> passes;
  ASSERT_EQ(RvCutConditionTraceByKey("B", &passes, CollectPass), 0u);
  EXPECT_EQ(passes.size(), 1u);
  Names names;
  EXPECT_EQ(RvGetMediaNameTrace(&names, StopNames), uint32_t(-5));
  EXPECT_EQ(names, (Names{"A"}));
  // A callback that changes the table doesn't break the walk.
  EXPECT_EQ(RvCutConditionTrace(nullptr, DeleteWhileTracing), 0u);
  EXPECT_TRUE(MediaNames().empty());
}

TEST_F(ManagerTest, SortOrdersMediaByBytes) {
  EXPECT_EQ(RvSortCondition(), kNotInTable);
  AddAll({"b:t", "ab:t", "a:t", "B:t", "\xC3\xA9:t", "a b:t", "b:second"});
  ASSERT_EQ(RvSortCondition(), 0u);
  EXPECT_EQ(Tools(), (Names{"B:t", "a:t", "a b:t", "ab:t", "b:t", "b:second", "\xC3\xA9:t"}));
}

TEST_F(ManagerTest, CLSetReplacesAllPassesWithMillingRecords) {
  AddAll({"Other:o", "Job:old1", "Job:old2"});
  CLCondition cl[2] = {{.Tool = "EM3", .hasSpeed = 1, .Thickness = 5.0, .SpeedDecimal = 12.5, .CutDirection = 1,
                        .hasRpm = 1, .hasCuttingDepth = 1, .hasZSpeed = 1, .hasMilling = 1, .Rpm = 24000,
                        .CuttingDepth = 1.5, .ZSpeed = 5, .Milling = 2.0, .WDZUnit = 2}};
  cl[1] = cl[0];
  cl[1].CuttingDepth = 3.0;
  ASSERT_EQ(RvCLSetCutCondition("Job", cl, 2), 0u);
  auto passes = AllPasses();
  ASSERT_EQ(passes.size(), 3u);
  EXPECT_EQ(passes[2].media, "Other");  // the job goes to the front
  ExpectRecord(passes[0].record, CondRecord{.Tool = "EM3", .hasSpeed = 1, .Thickness = 5.0, .SpeedDecimal = 12.5,
                                            .CutDirection = 1, .WDZUnit = 2});
  ExpectExtension(passes[0].extension, MillingExtension{1, 1, 1, 1, 24000, 1.5, 5, 2.0});
  ExpectExtension(passes[1].extension, MillingExtension{1, 1, 1, 1, 24000, 3.0, 5, 2.0});
  // Saved under a cutting family, a milling record has no Theta to give.
  EXPECT_NE(Saved().find("<Name>Job</Name><Condition><Tool>EM3</Tool><Speed>0</Speed><Press>-1</Press>"
                         "<Offset>-1.000000</Offset><Theta>Available=0,[0.0][0.0][0.0][0.0][0.0][0.0]"
                         "</Theta></Condition>"),
            std::string::npos);
  ASSERT_EQ(RvCLSetCutCondition("Job", cl, 0), 0u);
  EXPECT_EQ(MediaNames(), (Names{"Other"}));
  EXPECT_EQ(RvCLSetCutCondition("Job", nullptr, 1), kNotInTable);
}

}  // namespace
