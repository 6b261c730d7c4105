#include <gtest/gtest.h>

#include <csetjmp>
#include <stdexcept>
#include <string>
#include <vector>

#include "frame/frame.h"
#include "frame/progress.h"
#include "model/data_access.h"

namespace {

using Lines = std::vector<std::string>;
Lines gTraced;
void CollectTrace(void*, const char* text) { gTraced.emplace_back(text); }

class FrameTest : public ::testing::Test {
 protected:
  void SetUp() override {
    gTraced.clear();
    RvGiSetTraceFunction(CollectTrace, nullptr);
  }
  // Every test ends with the frame stack empty.
  void TearDown() override {
    RvGiSetTraceFunction(nullptr, nullptr);
    EXPECT_EQ(g_ExceptionContext, nullptr);
  }
};

TEST_F(FrameTest, CodesSplitBackIntoModuleDetailAndLowByte) {
  EXPECT_EQ(gMakeErrCode(6, 16), 0x06001001u);
  EXPECT_EQ(gMakeErrCode(10, 31), 0x0A001F01u);
  for (unsigned m = 0; m < 256; ++m) {
    for (unsigned d = 0; d < 65536; d += (d < 300 ? 1 : 257)) {
      uint8_t module = 0, low = 0;
      uint16_t detail = 0;
      gGetErrContens(gMakeErrCode(uint8_t(m), uint16_t(d)), &module, &detail, &low);
      ASSERT_EQ(module, m);
      ASSERT_EQ(detail, d);
      ASSERT_EQ(low, 1);
    }
  }
}

TEST_F(FrameTest, ExceptionWithoutARecoveryPointTracesAndReturns) {
  Exception(0);  // does nothing
  EXPECT_TRUE(gTraced.empty());
  const uint32_t before = gGetLastError();
  Exception(0x05000D01);
  EXPECT_EQ(gGetLastError(), before);
  EXPECT_EQ(gTraced, Lines{"Error:program stopped.(code = 83889409)"});
}

TEST_F(FrameTest, FailureThreeFramesDeepComesBackUnchanged) {
  auto inner = [] { return rv::Guard([] { rv::Raise(rv::ErrCode(3, 13)); }); };
  auto middle = [&] { return rv::Guard([&] { rv::Check(inner()); }); };
  uint32_t code = rv::Guard([&] {
    EXPECT_NE(g_ExceptionContext, nullptr);
    rv::Check(middle());
    ADD_FAILURE() << "the failure must end the outer body";
  });
  EXPECT_EQ(code, 0x03000D01u);
  EXPECT_EQ(gGetLastError(), 0x03000D01u);
  // A failing and a succeeding frame in turn leave the stack as they found
  // it; Exception(0) inside a frame does nothing.
  EXPECT_EQ(rv::Guard([] { rv::Raise(7); }), 7u);
  EXPECT_EQ(rv::Guard([] { Exception(0); }), 0u);
  EXPECT_TRUE(gTraced.empty());
}

TEST_F(FrameTest, HostFrameIsReachedByExceptionButNotByFramedExports) {
  ExceptionInfo host;
  volatile int reached = 0;
  if (setjmp(host.context) == 0) {
    PushExceptionInfo(&host);
    // A framed export catches its own failure: no jump to the host.
    RVRIFMATRIX singular{0, 0, 0, 0, 1, 1}, out{};
    EXPECT_EQ(RvMiSetInvertMatrix(&singular, &out), 0x08001901u);
    EXPECT_EQ(g_ExceptionContext, &host);
    // Exception() records the code and jumps to the host's recovery point.
    // (Frameless exports reach it so: see the judgement tests.)
    Exception(0x0A001F01);
    PopExceptionInfo(&host);
  } else {
    reached = 1;
  }
  EXPECT_EQ(reached, 1);
  EXPECT_EQ(gGetLastError(), 0x0A001F01u);  // the jump popped the host's record: see TearDown
}

TEST_F(FrameTest, StandardExceptionLeavesStackAsItWas) {
  ExceptionInfo host;
  PushExceptionInfo(&host);
  EXPECT_THROW(rv::Guard([] { rv::Guard([] { throw std::out_of_range("invalid vector<T> subscript"); }); }),
               std::out_of_range);
  EXPECT_EQ(g_ExceptionContext, &host);
  PopExceptionInfo(&host);
  EXPECT_TRUE(gTraced.empty());
  // The library still works afterwards.
  EXPECT_EQ(rv::Guard([] { rv::Raise(5); }), 5u);
}

TEST_F(FrameTest, PopOfAForeignRecordIsTracedAndPopsTheHead) {
  ExceptionInfo a, b;
  PushExceptionInfo(&a);
  PushExceptionInfo(&b);
  PopExceptionInfo(&a);
  EXPECT_EQ(gTraced, Lines{"Fatal error in internalroutine of exception handler.\n"});
  EXPECT_EQ(g_ExceptionContext, &a);
  PopExceptionInfo(&a);
}

TEST_F(FrameTest, MessagesGoToTheTraceSinkUnlessAHostTakesThem) {
  rv::ShowMessage("EntryBothSidesCutInfo:Error", "test");
  const Lines traced{"test: EntryBothSidesCutInfo:Error\n"};
  EXPECT_EQ(gTraced, traced);
  std::string seen;
  RvGiSetMessageFunction(
      [](void* ctx, const char* text, const char* title) {
        *static_cast<std::string*>(ctx) = std::string(title) + "|" + text;
      },
      &seen);
  rv::ShowMessage("text", "title");
  RvGiSetMessageFunction(nullptr, nullptr);
  EXPECT_EQ(seen, "title|text");
  EXPECT_EQ(gTraced, traced);
}

struct ProgressLog {
  Lines events;
  int cancelAt = -1;
};

TEST_F(FrameTest, ProgressReportsInOrderAndCanCancel) {
  ProgressLog log;
  auto step = [](void* c, int16_t p, int32_t* cancel) {
    auto* l = static_cast<ProgressLog*>(c);
    EXPECT_EQ(*cancel, 0);
    l->events.push_back("step " + std::to_string(p));
    if (p == l->cancelAt) *cancel = 1;
  };
  auto range = [](void* c, int16_t lo, int16_t hi) {
    static_cast<ProgressLog*>(c)->events.push_back("range " + std::to_string(lo) + "," + std::to_string(hi));
  };
  auto begin = [](void* c) { static_cast<ProgressLog*>(c)->events.push_back("begin"); };
  auto end = [](void* c) { static_cast<ProgressLog*>(c)->events.push_back("end"); };
  auto message = [](void* c, char* text) { static_cast<ProgressLog*>(c)->events.push_back(text); };
  ASSERT_EQ(RvGiSetProgressFunction(step, range, begin, end, message), 0u);

  const rv::ProgressCallbacks& p = rv::Progress();
  p.BeginStage(&log);
  EXPECT_FALSE(p.Step(&log, 0, "Sorting.... %d %%"));
  log.cancelAt = 50;
  EXPECT_TRUE(p.Step(&log, 50, "Sorting.... %d %%"));
  p.EndStage(&log);
  EXPECT_EQ(log.events,
            (Lines{"begin", "range 0,100", "step 0", "Sorting.... 0 %", "step 50", "Sorting.... 50 %", "end"}));

  // Without a step callback no message is sent and nothing can cancel.
  log.events.clear();
  RvGiSetProgressFunction(nullptr, nullptr, nullptr, nullptr, message);
  EXPECT_FALSE(rv::Progress().Step(&log, 10, "Createing plot data... %d %%"));
  rv::Progress().BeginStage(&log);
  EXPECT_TRUE(log.events.empty());
  RvGiSetProgressFunction(nullptr, nullptr, nullptr, nullptr, nullptr);
}

TEST_F(FrameTest, TheRequestedVersionPairIsOneThreeByDefault) {
  EXPECT_EQ(rv::CRvDataAccess::Instance().UseVersion(), 0x30001u);
}

}  // namespace
