// RefMap operations that read the drawing: bounds of filed arts and the
// register-mark check, on drawings made through the exported functions.
#include <gtest/gtest.h>

#include "drawing_host.h"

using namespace drawtest;

namespace {

constexpr uint32_t kNotTombo = 0xFFFFFFFFu;

class RefMapDrawing : public Drawing {
 protected:
  void SetUp() override {
    Drawing::SetUp();
    m_layer = Layer();
    m_map = NewTable();
    RvGiSetRefMapIndex(m_map);
  }
  void TearDown() override {
    RvGiDeleteRefMapTable();
    RvGiSetRefMapIndex(-1);
    Drawing::TearDown();
  }
  static int16_t NewTable() {
    int16_t map = -1;
    EXPECT_EQ(RvGiCreateRefMapTable(&map), 0u);
    return map;
  }
  // A path in `parent` (null: the current layer) with attribute flags,
  // stored bounds, points and closed flag.
  static void* Path(void* parent, uint8_t flags, RVRECT bounds, const std::vector<RVBEZIERPOINT>& points = {},
                    int32_t closed = 0) {
    void* path = PathOf(points, parent);
    EXPECT_EQ(RvGiSetPathAttrFlag(path, flags), 0u);
    EXPECT_EQ(RvGiSetBoundingBox(path, &bounds), 0u);
    EXPECT_EQ(RvGiSetPathClosed(path, closed), 0u);
    return path;
  }
  static V ByFlag(uint8_t mask, int32_t mode) {
    RVRECT r{1, 1, 1, 1};
    EXPECT_EQ(RvGiGetArtsBoundsByFlag(&r, mask, mode), 0u);
    return Rect(r);
  }
  static V ByKey(const char* key) {
    RVRECT r{1, 1, 1, 1};
    EXPECT_EQ(RvGiGetArtsBoundsByKey(&r, key), 0u);
    return Rect(r);
  }
  void* m_layer = nullptr;
  int16_t m_map = -1;
};

TEST_F(RefMapDrawing, BoundsByFlagUniteCountedArtsAndByKeyDrillIntoGroups) {
  EXPECT_EQ(ByFlag(2, 0), V(4, 0.0)) << "nothing filed";
  void* plain = Path(nullptr, 7, RVRECT{10, 0, 5, 2});
  void* excluded = Path(nullptr, 2 | 16, RVRECT{20, -5, 3, 15});
  void* uncounted = Path(nullptr, 1, RVRECT{100, -100, 100, -100});
  void* moved = Path(nullptr, 2, RVRECT{1, 1, 2, 0});
  const RVRIFMATRIX shift{1, 0, 0, 1, 10, -10};
  RvGiSetArtMatrix(moved, &shift);  // top 1, left 1, right 2, bottom 0 map to -9, 11, 12, -10
  RvGiAddRefMapData(m_map, "a", 2, plain);
  RvGiAddRefMapData(m_map, "b", 2, excluded);
  RvGiAddRefMapData(m_map, "b", 2, uncounted);
  RvGiAddRefMapData(m_map, "c", 4, moved);
  EXPECT_EQ(ByFlag(2, 0), (V{10, 0, 5, 2}));
  EXPECT_EQ(ByFlag(2, 1), (V{20, -5, 5, 2}));
  EXPECT_EQ(ByFlag(0, 1), (V{20, -5, 12, -10}));
  EXPECT_EQ(ByFlag(4, 0), (V{-9, 11, 12, -10}));
  EXPECT_EQ(ByKey("b"), (V{20, -5, 3, 15})) << "bit 16 doesn't matter here";
  EXPECT_EQ(ByKey("missing"), V(4, 0.0));
  RVRECT r{};
  RvGiAddRefMapData(m_map, "off", 1, plain);
  EXPECT_EQ(RvGiGetArtsBoundsByKey(&r, "off"), 0x05001001u);

  // By flag, groups aren't entered: the group's own stored bounds count; by
  // key, its counted paths do.
  void* group = nullptr;
  ASSERT_EQ(RvGiCreateArt(1, 3, nullptr, &group), 0u);
  RvGiSetPathAttrFlag(group, 2);
  const RVRECT groupBox{3, 3, 4, 3};
  RvGiSetBoundingBox(group, &groupBox);
  Path(group, 7, RVRECT{10, 0, 5, 2});
  Path(group, 2, RVRECT{4, -3, 1, -1});
  Path(group, 1, RVRECT{99, -99, 99, -99});
  const int16_t other = NewTable();
  RvGiAddRefMapData(other, "G", 2, group);
  RvGiSetRefMapIndex(other);
  EXPECT_EQ(ByFlag(2, 0), (V{3, 3, 4, 3}));
  EXPECT_EQ(ByKey("G"), (V{10, -3, 5, -1}));

  // No layer, or no document: no bounds.
  RvGiDeleteLayer(m_layer);
  EXPECT_EQ(RvGiGetArtsBoundsByFlag(&r, 2, 0), kNoLayer);
  EXPECT_EQ(RvGiGetArtsBoundsByKey(&r, "a"), kNoLayer);
  RvGiSetRefMapIndex(-1);
  RvGiDeleteActiveDocument();
  EXPECT_EQ(RvGiGetArtsBoundsByFlag(&r, 2, 0), kNoLayer);
}

TEST_F(RefMapDrawing, TomboMarksAreOpenThreePointCornersInGroups) {
  const std::vector<RVBEZIERPOINT> corner = {Pt(0, 5), Pt(0, 0), Pt(5, 0)};
  auto group = [] { return Art(1, 3, nullptr); };
  void* outer = group();
  void* mark = Path(outer, 7, RVRECT{}, corner);
  RvGiAddRefMapData(m_map, "marks", 2, outer);
  RvGiAddRefMapData(m_map, "ignored", 1, Path(nullptr, 7, RVRECT{}, {Pt(0, 0)}));
  EXPECT_EQ(RvGiCheckTombo(m_map), 0u);
  RvGiAddRefMapData(m_map, "marks", 2, mark);  // filed directly: its parent is still the group
  EXPECT_EQ(RvGiCheckTombo(m_map), 0u);

  auto check = [](void* art) {
    const int16_t m = NewTable();
    RvGiAddRefMapData(m, "k", 2, art);
    return RvGiCheckTombo(m);
  };
  EXPECT_EQ(check(Path(group(), 7, RVRECT{}, {Pt(0, 5), Pt(0, 0), Pt(5, 0), Pt(6, 0)})), kNotTombo);
  EXPECT_EQ(check(Path(group(), 7, RVRECT{}, corner, 1)), kNotTombo) << "closed";
  EXPECT_EQ(check(Path(nullptr, 7, RVRECT{}, corner)), kNotTombo) << "in a layer";
  const RVCOLOR black{nullptr, 1, {0, 0, 0, 0}};
  void* filled = Path(group(), 7, RVRECT{}, corner);
  RvGiSetPathColor(1, filled, &black, "Black");
  EXPECT_EQ(check(filled), kNotTombo);
  void* stroked = Path(group(), 7, RVRECT{}, corner);
  RvGiSetPathColor(2, stroked, &black, "Black");
  EXPECT_EQ(check(stroked), 0u) << "a stroke is allowed";
  // Points over two components count together.
  void* split = Path(group(), 7, RVRECT{}, {Pt(0, 5), Pt(0, 0)});
  const RVBEZIERPOINT third = Pt(5, 0);
  RvGiAddBezierPoint(Art(2, 5, split), &third);
  EXPECT_EQ(check(split), 0u);
  // An art that the path queries refuse ends the check with their code.
  EXPECT_EQ(check(Children(mark)[0]), kWrongKind);
}

}  // namespace
