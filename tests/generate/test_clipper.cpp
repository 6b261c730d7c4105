// The clipper adaptor: the grid, refused paths, lines and arts from results.
#include <algorithm>
#include <cmath>
#include <limits>

#include "frame/frame.h"
#include "generate/clipper.h"
#include "generate_fixture.h"

namespace rvtest {
namespace {

using rv::ClipEnd;
using rv::CRvClipper;

std::vector<RVCURVEPOINT> Points(const Polyline& polygon) {
  std::vector<RVCURVEPOINT> out;
  for (const RVPOINT& p : polygon) {
    RVCURVEPOINT r{};
    r.kind = 0;
    r.point = p;
    out.push_back(r);
  }
  return out;
}

rv::ClipArtParams Params(int16_t map) {
  rv::ClipArtParams params;
  params.plotInfoText = "T";
  params.refMapIndex = map;
  params.refMapKey = "K";
  return params;
}

TEST(ClipperGrid, TruncatesTowardZeroAndRefusesWhatItCantHold) {
  EXPECT_EQ(CRvClipper::ToGrid(1.9999), 1999);    // truncated, not rounded
  EXPECT_EQ(CRvClipper::ToGrid(-1.9999), -1999);  // toward zero on both sides
  EXPECT_EQ(CRvClipper::ToGrid(1e6), 1000000000);
  EXPECT_DOUBLE_EQ(CRvClipper::FromGrid(1999), 1.999);
  for (double bad : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), 1.0e6 + 1.0,
                     -2.0e7}) {
    EXPECT_EQ(rv::Guard([&] { CRvClipper::ToGrid(bad); }), 0x08004001u) << bad;
  }
}

TEST(ClipperLines, AHatchLineThroughASquareComesOutOnceWithItsEndsSwapped) {
  CRvClipper& clipper = CRvClipper::Instance();
  const auto square = Points(Box(0, 0, 10, 10));
  // An open clip path is refused and adds nothing.
  EXPECT_FALSE(clipper.AddClipPath(square.data(), int32_t(square.size()), false, rv::ClipRole::kClip));
  EXPECT_TRUE(clipper.AddClipPath(square.data(), int32_t(square.size()), true, rv::ClipRole::kClip));
  EXPECT_TRUE(clipper.AddLines({RVHATCHLINE{-5, 4, 15, 4, 1, 1}, RVHATCHLINE{-5, 20, 15, 20, 1, 1}}));
  const auto lines = clipper.ExecuteToLines(rv::ClipOperation::kIntersection, rv::ClipFill::kNonZero);
  clipper.ClearClipper();
  ASSERT_EQ(lines.size(), 1u);
  const RVHATCHLINE& line = lines[0];
  EXPECT_EQ(std::min(line.x1, line.x2), 0.0);
  EXPECT_EQ(std::max(line.x1, line.x2), 10.0);
  EXPECT_EQ(line.y1, 4.0);
  EXPECT_EQ(line.firstMark, 65535);
  EXPECT_EQ(line.secondMark, 65535);
}

class ClipperArts : public GenerateTest {};

TEST_F(ClipperArts, OffsetsBecomePathsAndCompoundsOrNothing) {
  CRvClipper& clipper = CRvClipper::Instance();
  const auto outer = Points(Box(0, 0, 10, 10));
  Polyline holeRing = Box(3, 3, 7, 7);
  std::reverse(holeRing.begin(), holeRing.end());  // a hole runs against its outline
  const auto hole = Points(holeRing);

  // A square shrunk by 1: one closed path, the start stored twice, handles
  // on the anchors, flags 7, filed under the key.
  clipper.AddOffsetPath(outer.data(), 4, ClipEnd::kClosedPolygon);
  EXPECT_EQ(rv::Guard([&] { EXPECT_EQ(clipper.OffsetToArts(-1.0, "A", Params(m_map)), 0); }), 0u);
  clipper.ClearOffset();
  auto arts = Children(Layer("A"));
  ASSERT_EQ(arts.size(), 1u);
  EXPECT_EQ(Type(arts[0]), 4);
  const Polyline square = Anchors(arts[0]);
  ASSERT_EQ(square.size(), 5u);
  EXPECT_TRUE(square.front().x == square.back().x && square.front().y == square.back().y);
  for (const RVPOINT& p : square) EXPECT_TRUE(p.x == 1.0 || p.x == 9.0) << p.x;
  int32_t closed = 0;
  RvGiGetPathClosed(arts[0], &closed);
  uint8_t flags = 0;
  RvGiGetPathAttrFlag(arts[0], &flags);
  EXPECT_EQ(closed, 1);
  EXPECT_EQ(flags, 7);
  EXPECT_EQ(RvGiGetRefMapArtCount(m_map), 1);

  // A square with a hole: one compound of two paths, the outline last.
  clipper.AddOffsetPath(outer.data(), 4, ClipEnd::kClosedPolygon);
  clipper.AddOffsetPath(hole.data(), 4, ClipEnd::kClosedPolygon);
  EXPECT_EQ(rv::Guard([&] { clipper.OffsetToArts(-0.5, "B", Params(m_map)); }), 0u);
  clipper.ClearOffset();
  arts = Children(Layer("B"));
  ASSERT_EQ(arts.size(), 1u);
  ASSERT_EQ(Type(arts[0]), 3);
  const auto paths = Children(arts[0]);
  ASSERT_EQ(paths.size(), 2u);
  RVRECT box{};
  RvGiGetArtBounds(paths[1], &box);
  EXPECT_DOUBLE_EQ(box.left, 0.5);   // the outline, shrunk
  RvGiGetArtBounds(paths[0], &box);
  EXPECT_DOUBLE_EQ(box.left, 2.5);   // the hole, grown

  // Shrunk to nothing: result 1, and the layer isn't made.
  clipper.AddOffsetPath(outer.data(), 4, ClipEnd::kClosedPolygon);
  EXPECT_EQ(rv::Guard([&] { EXPECT_EQ(clipper.OffsetToArts(-6.0, "C", Params(m_map)), 1); }), 0u);
  clipper.ClearOffset();
  EXPECT_EQ(Layer("C"), nullptr);
}

}  // namespace
}  // namespace rvtest
