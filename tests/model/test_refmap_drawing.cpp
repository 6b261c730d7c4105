// RefMap operations that read the drawing: bounds of filed arts and the
// register-mark check, on drawings made through the exported functions.
#include <gtest/gtest.h>

#include <vector>

#include "rvdataaccess.h"

namespace {

constexpr uint32_t kNotTombo = 0xFFFFFFFFu;

RVBEZIERPOINT At(double x, double y) {
  RVBEZIERPOINT p{};
  p.anchor = p.in = p.out = RVPOINT{x, y};
  return p;
}

void ExpectRect(const RVRECT& r, double top, double left, double right, double bottom) {
  EXPECT_EQ(r.top, top);
  EXPECT_EQ(r.left, left);
  EXPECT_EQ(r.right, right);
  EXPECT_EQ(r.bottom, bottom);
}

class RefMapDrawing : public ::testing::Test {
 protected:
  void SetUp() override {
    int16_t index = -1;
    ASSERT_EQ(RvGiCreateDocument(0, &index), 0u);
    ASSERT_EQ(RvGiCreateLayer(1, nullptr, &layer_), 0u);
    ASSERT_EQ(RvGiCreateRefMapTable(&map_), 0u);
    RvGiSetRefMapIndex(map_);
  }
  void TearDown() override {
    RvGiDeleteRefMapTable();
    RvGiSetRefMapIndex(-1);
    RvGiDeleteActiveDocument();
  }

  // A path in `parent` (null: the current layer) with the given attribute
  // flags, stored bounds and points.
  void* Path(void* parent, uint8_t flags, RVRECT bounds, const std::vector<RVBEZIERPOINT>& points = {},
             int32_t closed = 0) {
    void* path = nullptr;
    void* bezier = nullptr;
    EXPECT_EQ(parent ? RvGiCreateArt(4, 5, parent, &path) : RvGiCreateArt(4, 3, nullptr, &path), 0u);
    EXPECT_EQ(RvGiCreateArt(2, 5, path, &bezier), 0u);
    for (const auto& p : points) RvGiAddBezierPoint(bezier, &p);
    RvGiSetPathAttrFlag(path, flags);
    RvGiSetBoundingBox(path, &bounds);
    RvGiSetPathClosed(path, closed);
    return path;
  }

  void* Group() {
    void* group = nullptr;
    EXPECT_EQ(RvGiCreateArt(1, 3, nullptr, &group), 0u);
    return group;
  }

  void* layer_ = nullptr;
  int16_t map_ = -1;
};

TEST_F(RefMapDrawing, BoundsByFlagUnitesCountedArts) {
  RVRECT r{1, 1, 1, 1};
  EXPECT_EQ(RvGiGetArtsBoundsByFlag(&r, 2, 0), 0u);
  ExpectRect(r, 0, 0, 0, 0);  // nothing filed

  void* plain = Path(nullptr, 7, RVRECT{10, 0, 5, 2});
  void* excluded = Path(nullptr, 2 | 16, RVRECT{20, -5, 3, 15});
  void* uncounted = Path(nullptr, 1, RVRECT{100, -100, 100, -100});
  void* moved = Path(nullptr, 2, RVRECT{1, 1, 2, 0});
  const RVRIFMATRIX shift{1, 0, 0, 1, 10, -10};
  RvGiSetArtMatrix(moved, &shift);  // bounds (top 1, left 1, right 2, bottom 0) map to -9, 11, 12, -10
  RvGiAddRefMapData(map_, "a", 2, plain);
  RvGiAddRefMapData(map_, "b", 2, excluded);
  RvGiAddRefMapData(map_, "b", 2, uncounted);
  RvGiAddRefMapData(map_, "c", 4, moved);

  EXPECT_EQ(RvGiGetArtsBoundsByFlag(&r, 2, 0), 0u);
  ExpectRect(r, 10, 0, 5, 2);
  EXPECT_EQ(RvGiGetArtsBoundsByFlag(&r, 2, 1), 0u);
  ExpectRect(r, 20, -5, 5, 2);
  EXPECT_EQ(RvGiGetArtsBoundsByFlag(&r, 0, 1), 0u);
  ExpectRect(r, 20, -5, 12, -10);
  EXPECT_EQ(RvGiGetArtsBoundsByFlag(&r, 4, 0), 0u);
  ExpectRect(r, -9, 11, 12, -10);

  // Groups aren't entered: the group's own stored bounds count.
  void* group = Group();
  RvGiSetPathAttrFlag(group, 2);
  const RVRECT groupBox{3, 3, 4, 3};
  RvGiSetBoundingBox(group, &groupBox);
  Path(group, 2, RVRECT{500, 500, 500, 500});
  const int16_t other = [] {
    int16_t m = -1;
    RvGiCreateRefMapTable(&m);
    return m;
  }();
  RvGiAddRefMapData(other, "g", 2, group);
  RvGiSetRefMapIndex(other);
  EXPECT_EQ(RvGiGetArtsBoundsByFlag(&r, 2, 0), 0u);
  ExpectRect(r, 3, 3, 4, 3);
}

TEST_F(RefMapDrawing, BoundsByKeyDrillsIntoGroups) {
  void* group = Group();
  Path(group, 7, RVRECT{10, 0, 5, 2});
  Path(group, 2, RVRECT{4, -3, 1, -1});
  Path(group, 1, RVRECT{99, -99, 99, -99});
  void* lone = Path(nullptr, 2 | 16, RVRECT{30, 20, 25, 22});
  RvGiAddRefMapData(map_, "G", 2, group);
  RvGiAddRefMapData(map_, "L", 2, lone);
  RvGiAddRefMapData(map_, "off", 1, lone);

  RVRECT r{};
  EXPECT_EQ(RvGiGetArtsBoundsByKey(&r, "G"), 0u);
  ExpectRect(r, 10, -3, 5, -1);
  EXPECT_EQ(RvGiGetArtsBoundsByKey(&r, "L"), 0u);
  ExpectRect(r, 30, 20, 25, 22);  // bit 16 does not matter here
  r = RVRECT{1, 1, 1, 1};
  EXPECT_EQ(RvGiGetArtsBoundsByKey(&r, "missing"), 0u);
  ExpectRect(r, 0, 0, 0, 0);
  EXPECT_EQ(RvGiGetArtsBoundsByKey(&r, "off"), 0x05001001u);
}

TEST_F(RefMapDrawing, BoundsNeedALayer) {
  RvGiDeleteLayer(layer_);
  RVRECT r{};
  EXPECT_EQ(RvGiGetArtsBoundsByFlag(&r, 2, 0), 0x03000601u);
  EXPECT_EQ(RvGiGetArtsBoundsByKey(&r, "a"), 0x03000601u);
  RvGiSetRefMapIndex(-1);
  RvGiDeleteActiveDocument();
  EXPECT_EQ(RvGiGetArtsBoundsByFlag(&r, 2, 0), 0x03000601u) << "no document: no layer either";
  int16_t index = -1;
  RvGiCreateDocument(0, &index);  // for TearDown
}

TEST_F(RefMapDrawing, TomboMarksAreOpenThreePointCornersInGroups) {
  const std::vector<RVBEZIERPOINT> corner = {At(0, 5), At(0, 0), At(5, 0)};
  void* group = Group();
  void* mark = Path(group, 7, RVRECT{}, corner);
  RvGiAddRefMapData(map_, "marks", 2, group);
  RvGiAddRefMapData(map_, "ignored", 1, Path(nullptr, 7, RVRECT{}, {At(0, 0)}));
  EXPECT_EQ(RvGiCheckTombo(map_), 0u);
  RvGiAddRefMapData(map_, "marks", 2, mark);  // filed directly: its parent is still the group
  EXPECT_EQ(RvGiCheckTombo(map_), 0u);

  auto check = [&](void* art) {
    int16_t m = -1;
    RvGiCreateRefMapTable(&m);
    RvGiAddRefMapData(m, "k", 2, art);
    return RvGiCheckTombo(m);
  };
  void* four = Path(Group(), 7, RVRECT{}, {At(0, 5), At(0, 0), At(5, 0), At(6, 0)});
  EXPECT_EQ(check(four), kNotTombo);
  void* closed = Path(Group(), 7, RVRECT{}, corner, 1);
  EXPECT_EQ(check(closed), kNotTombo);
  void* inLayer = Path(nullptr, 7, RVRECT{}, corner);
  EXPECT_EQ(check(inLayer), kNotTombo);
  void* filled = Path(Group(), 7, RVRECT{}, corner);
  RVCOLOR black{nullptr, 1, {0, 0, 0, 0}};
  RvGiSetPathColor(1, filled, &black, "Black");
  EXPECT_EQ(check(filled), kNotTombo);
  void* stroked = Path(Group(), 7, RVRECT{}, corner);
  RvGiSetPathColor(2, stroked, &black, "Black");
  EXPECT_EQ(check(stroked), 0u) << "a stroke is allowed";
  // Points over two components count together.
  void* split = Path(Group(), 7, RVRECT{}, {At(0, 5), At(0, 0)});
  void* second = nullptr;
  RvGiCreateArt(2, 5, split, &second);
  RVBEZIERPOINT third = At(5, 0);
  RvGiAddBezierPoint(second, &third);
  EXPECT_EQ(check(split), 0u);
  // An art that the path queries refuse ends the check with their code.
  void* component = nullptr;
  RvGiGetArtFirstChild(mark, &component);
  EXPECT_EQ(check(component), 0x05000E01u);
  EXPECT_EQ(g_ExceptionContext, nullptr);
}

}  // namespace
