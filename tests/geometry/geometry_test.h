// Helpers shared by the geometry tests.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "rvdataaccess.h"

namespace geotest {

using V = std::vector<double>;
constexpr double kPi = 3.141592653589793;

inline RVBEZIERPOINT Smooth(RVPOINT anchor, RVPOINT in, RVPOINT out) {
  RVBEZIERPOINT p{};
  p.anchor = anchor;
  p.in = in;
  p.out = out;
  return p;
}
inline RVBEZIERPOINT Corner(double x, double y) { return Smooth({x, y}, {x, y}, {x, y}); }

inline V XY(const RVPOINT& p) { return {p.x, p.y}; }
inline void ExpectNear(const V& got, const V& want, double tolerance) {
  ASSERT_EQ(got.size(), want.size());
  for (std::size_t i = 0; i < got.size(); ++i) EXPECT_NEAR(got[i], want[i], tolerance) << "at " << i;
}
/// Anchor, in and out handle of a record in one row.
inline V Row(const RVBEZIERPOINT& p) { return {p.anchor.x, p.anchor.y, p.in.x, p.in.y, p.out.x, p.out.y}; }

}  // namespace geotest
