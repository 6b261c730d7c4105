// The order rules on small hand-worked sets of lines, and the fast steps
// against their plain forms.
#include <gtest/gtest.h>

#include <cmath>

#include "generate/hatch_order.h"
#include "generate/hatch_rules.h"
#include "hatch_test_util.h"

using hatchtest::Box;
using hatchtest::Line;
using hatchtest::Text;
using hatchtest::Work;

TEST(HatchCornerOrder, StartsAtTheCornerNearestTheHeadAndRunsAsASerpentine) {
  const std::vector<RVHATCHLINE> lines = {Line(10, 25, 0), Line(0, 5, 10), Line(0, 15, 10)};
  struct Case {
    RVPOINT head;
    const char* order;
  } cases[] = {
      // under the bottom left corner: corner 0, rows right, left, right
      {{-1, -1}, "0>10@5 10>0@15 0>10@25 "},
      // above the top right: the top row first, from its right end
      {{11, 30}, "10>0@25 0>10@15 10>0@5 "},
      // at the bottom right: the bottom row from its right end
      {{12, 4}, "10>0@5 0>10@15 10>0@25 "},
  };
  for (const Case& c : cases) {
    rv::HatchWork work = Work(Box(0, 0, 10, 30));
    std::vector<RVHATCHLINE> w = lines;
    rv::CornerOrder(work, w, c.head);
    EXPECT_EQ(Text(w), c.order) << c.head.x << "," << c.head.y;
  }
}

TEST(HatchJoin, ClosesGapsBelowTheLimitOnOneRowOnly) {
  struct Case {
    std::vector<RVHATCHLINE> lines;
    double limit;
    const char* joined;
  } cases[] = {
      {{Line(0, 1, 10), Line(10.4, 1, 20)}, 0.5, "0>20@1 "},                // gap 0.4: joined
      {{Line(0, 1, 10), Line(10.5, 1, 20)}, 0.5, "0>10@1 10.5>20@1 "},      // gap 0.5: not
      {{Line(0, 1, 10), Line(5, 1, 12)}, 0.0, "0>12@1 "},                   // overlap joins with 0
      {{Line(10, 1, 0), Line(-0.3, 1, -5)}, 0.5, "10>-5@1 "},               // right to left
      {{Line(0, 1, 10), Line(10.2, 2, 20)}, 0.5, "0>10@1 10.2>20@2 "},      // other row
  };
  for (const Case& c : cases) {
    std::vector<RVHATCHLINE> w = c.lines;
    rv::JoinLines(w, c.limit);
    EXPECT_EQ(Text(w), c.joined);
  }
  // The join by rows gives what the comparison of every pair gives.
  for (unsigned seed = 1; seed <= 5; ++seed) {
    std::vector<RVHATCHLINE> fast = hatchtest::RandomLines(600, 100.0, seed), plain = fast;
    rv::JoinLines(fast, 3.0);
    rv::JoinLinesPlain(plain, 3.0);
    EXPECT_EQ(Text(fast), Text(plain)) << seed;
  }
}

TEST(HatchShift, MovesStartAndEndAgainstTheTravelAndEmptiesLinesItReverses) {
  rv::HatchWork work = Work(Box(0, 0, 30, 10));
  work.info.startShift = 2.0;
  work.info.endShift = 0.5;
  std::vector<RVHATCHLINE> w = {Line(10, 5, 20)};
  rv::CornerOrder(work, w, RVPOINT{0, 0});  // keepShift 1: the shift stays
  EXPECT_EQ(Text(w), "8>19.5@5 ");

  std::vector<RVHATCHLINE> lines = {Line(10, 5, 20), Line(20, 6, 10), Line(0, 7, 1)};
  rv::ShiftLines(lines, 0.0, 3.0);  // the last line is shorter than the shift
  EXPECT_EQ(Text(lines), "10>17@5 20>13@6 0>0@0 ");
  rv::UnshiftLines(lines, 0.0, 3.0);
  EXPECT_EQ(Text(lines), "10>20@5 20>10@6 0>0@0 ");
}

TEST(HatchHeadMove, TakesTheNearestLineEitherWayRound) {
  rv::HatchWork work = Work(Box(0, 0, 20, 20));
  // From (0, 0): the line at y 1 starts nearest; its end (10, 1) is nearest
  // the right end of the line at y 3, which is then drawn right to left.
  std::vector<RVHATCHLINE> w = {Line(0, 3, 10), Line(15, 20, 19), Line(0, 1, 10)};
  rv::HeadMoveOrder(work, w);
  EXPECT_EQ(Text(w), "0>10@1 10>0@3 15>19@20 ");

  // The grid search walks exactly as the scan over all lines.
  for (unsigned seed = 1; seed <= 4; ++seed) {
    rv::HatchWork fastWork = Work(Box(0, 0, 500, 500));
    fastWork.info.lineStartExtension = 0.5 * seed;
    fastWork.info.joinLimit = 1.0;
    rv::HatchWork plainWork = fastWork;
    std::vector<RVHATCHLINE> fast = hatchtest::RandomLines(1500, 500.0, seed), plain = fast;
    rv::HeadMoveOrder(fastWork, fast);
    rv::HeadMoveOrderPlain(plainWork, plain);
    EXPECT_EQ(Text(fast), Text(plain)) << seed;
  }
}

TEST(HatchMeasure, CountsTheWayFromTheHeadAndBetweenLinesWithExtensions) {
  rv::HatchWork work = Work(Box(0, 0, 10, 10));
  work.info.lineStartExtension = 1.0;
  struct Case {
    std::vector<RVHATCHLINE> lines;
    double cost;
  } cases[] = {
      {{}, -1.0},                                    // no line
      {{Line(3, 4, 7)}, 0.0},                        // one line
      {{Line(1, 0, 5), Line(4, 3, 1)}, 3.0},         // head on the first start, then (5, 0) to (5, 3)
      {{Line(4, 0, 5), Line(0, 0, 0), Line(7, 4, 2)}, 3.0 + 5.0},  // the empty line doesn't count
  };
  for (const Case& c : cases) {
    EXPECT_DOUBLE_EQ(rv::MeasureTravel(work, c.lines), c.cost);
  }
}

TEST(HatchRegionOrder, FinishesOneIslandBeforeTheNext) {
  rv::HatchWork work = Work(Box(0, 0, 50, 10));
  work.regionBoxes = {Box(30, 0, 50, 10), Box(0, 0, 20, 10)};
  for (double y : {2.0, 5.0, 8.0}) {
    work.lines.push_back(Line(30, y, 50));
    work.lines.push_back(Line(0, y, 20));
  }
  std::vector<RVHATCHLINE> w = work.lines;
  rv::RegionOrder(work, w, rv::kRuleBoundingBox);
  EXPECT_EQ(Text(w), "0>20@2 20>0@5 0>20@8 30>50@8 50>30@5 30>50@2 ");
}

TEST(HatchOrderLines, AppliesTheCheapestRuleTried) {
  // One region over two prongs: the left prong spans the width, the right
  // one only x 60 to 100. Rule 4 runs the rows as one serpentine (travel
  // 1 + hypot(60, 1) + 1), rule 5 takes the left column first (2 +
  // hypot(60, 1) + 2), rule 6 has no mesh lines, hence no cells and no cost.
  rv::HatchWork work = Work(Box(0, 1, 100, 4));
  work.regionBoxes = {Box(0, 1, 100, 4)};
  work.lines = {Line(0, 1, 100), Line(60, 2, 100), Line(0, 3, 100), Line(60, 4, 100)};
  rv::HatchWork expected = work;
  std::vector<RVHATCHLINE> rule4 = work.lines;
  rv::RegionOrder(expected, rule4, rv::kRuleBoundingBox);
  EXPECT_NEAR(rv::MeasureTravel(expected, rule4), 2.0 + std::hypot(60.0, 1.0), 1e-9);

  rv::OrderLines(work);
  EXPECT_EQ(Text(work.lines), Text(rule4));
  EXPECT_EQ(work.bestRule, 1);
  EXPECT_TRUE(work.sortDataSet.empty() && work.regionBoxes.empty() && work.meshLines.empty());

  // With no line nothing runs.
  rv::HatchWork none = Work(Box(0, 0, 1, 1));
  none.bestRule = 7;
  rv::OrderLines(none);
  EXPECT_EQ(none.bestRule, 7);
}
