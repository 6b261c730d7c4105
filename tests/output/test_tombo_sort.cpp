// Register marks round their common centre: the order of the round, its
// start, and the record's limits.
#include <algorithm>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "rvdataaccess.h"

namespace {

std::unique_ptr<RVTOMBOPOINTS> Marks(const std::vector<RVPOINT>& points) {
  auto r = std::make_unique<RVTOMBOPOINTS>();
  r->count = int32_t(points.size());
  std::copy(points.begin(), points.end(), r->points);
  return r;
}

std::vector<RVPOINT> Sorted(const std::vector<RVPOINT>& points) {
  auto in = Marks(points);
  auto out = std::make_unique<RVTOMBOPOINTS>();
  out->count = -7;  // not written by the sort
  EXPECT_EQ(RvFreeTomboSort(in.get(), out.get()), 0u);
  EXPECT_EQ(out->count, -7);
  return std::vector<RVPOINT>(out->points, out->points + points.size());
}

bool Same(const RVPOINT& a, const RVPOINT& b) { return a.x == b.x && a.y == b.y; }

TEST(TomboSort, TheCornersOfASquareComeBackClockwiseFromTheFirstGiven) {
  // The angle atan2(centre.x - x, centre.y - y) grows clockwise round the
  // centre: (0,0) -> (0,1) -> (1,1) -> (1,0).
  const std::vector<RVPOINT> round = {{0, 0}, {0, 1}, {1, 1}, {1, 0}};
  std::vector<int> order = {0, 1, 2, 3};
  do {  // every order in which the four can be given
    std::vector<RVPOINT> given;
    for (int i : order) given.push_back(round[i]);
    const std::vector<RVPOINT> got = Sorted(given);
    for (int k = 0; k < 4; ++k) {
      EXPECT_TRUE(Same(got[k], round[(order[0] + k) % 4])) << "given from corner " << order[0] << ", place " << k;
    }
  } while (std::next_permutation(order.begin(), order.end()));
}

TEST(TomboSort, OnePointAndTwinFirstPoints) {
  const std::vector<RVPOINT> one = Sorted({{3.5, -2.0}});
  EXPECT_TRUE(Same(one[0], {3.5, -2.0}));

  // Centre (0.5, 0.5): (2,0) sorts first, then the twins, then (0,2). The
  // first twin in sorted order begins the round, so the twins stay together.
  const std::vector<RVPOINT> got = Sorted({{0, 0}, {2, 0}, {0, 0}, {0, 2}});
  const std::vector<RVPOINT> want = {{0, 0}, {0, 0}, {0, 2}, {2, 0}};
  for (int k = 0; k < 4; ++k) EXPECT_TRUE(Same(got[k], want[k])) << "place " << k;
}

TEST(TomboSort, SortsInPlaceAndRefusesRecordsBeyondTheLimit) {
  auto r = Marks({{1, 1}, {0, 0}, {1, 0}, {0, 1}});
  EXPECT_EQ(RvFreeTomboSort(r.get(), r.get()), 0u);
  const std::vector<RVPOINT> want = {{1, 1}, {1, 0}, {0, 0}, {0, 1}};
  for (int k = 0; k < 4; ++k) EXPECT_TRUE(Same(r->points[k], want[k])) << "place " << k;

  auto out = std::make_unique<RVTOMBOPOINTS>();
  const struct {
    int32_t count;
    bool nullOutput;
    uint32_t code;
  } rows[] = {
      {0, false, 0u},                            // nothing to sort
      {RV_TOMBO_MAX_POINTS + 1, false, 0x0A002001u},  // beyond the record
      {-1, false, 0x0A002001u},
      {4, true, 0x0A002001u},  // no output record
  };
  for (const auto& row : rows) {
    r->count = row.count;
    EXPECT_EQ(RvFreeTomboSort(r.get(), row.nullOutput ? nullptr : out.get()), row.code) << row.count;
  }
  EXPECT_EQ(RvFreeTomboSort(nullptr, out.get()), 0x0A002001u);
}

}  // namespace
