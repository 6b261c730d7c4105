#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "drawing_host.h"

using namespace drawtest;

namespace {

using Arts = std::vector<void*>;

TEST_F(Drawing, CreateNeedsALayerAndAKnownType) {
  void* art = reinterpret_cast<void*>(1);
  EXPECT_EQ(RvGiCreateArt(1, 3, nullptr, &art), kNoLayer);
  EXPECT_EQ(art, nullptr) << "a failed create hands back null";
  void* layer = Layer();
  EXPECT_EQ(RvGiCreateArt(0, 3, nullptr, &art), kBadType) << "layers come from RvGiCreateLayer";
  EXPECT_EQ(RvGiCreateArt(7, 3, nullptr, &art), kBadType);
  EXPECT_EQ(RvGiCreateArt(-1, 3, nullptr, &art), kBadType);
  EXPECT_TRUE(Children(layer).empty());
  for (int16_t type = 1; type <= 6; ++type) {
    ASSERT_EQ(RvGiCreateArt(type, 3, nullptr, &art), 0u);
    EXPECT_EQ(Type(art), type);
    EXPECT_EQ(Parent(art), layer);
  }
  EXPECT_EQ(Children(layer).size(), 6u);
}

TEST_F(Drawing, PositionsLinkAroundTheReference) {
  void* layer = Layer();
  void* b = Art(1, 3, nullptr);   // last in the current layer: b
  void* a = Art(1, 0, nullptr);   // first: a b
  void* c = Art(1, 2, b);         // behind b: a b c
  void* ab = Art(1, 1, b);        // in front of b: a ab b c
  EXPECT_EQ(Children(layer), (Arts{a, ab, b, c}));
  EXPECT_EQ(ChildrenBackwards(c), (Arts{a, ab, b, c}));
  void* first = Art(4, 4, b);  // first child of b
  void* last = Art(4, 5, b);   // last child of b
  void* middle = Art(4, 1, last);
  EXPECT_EQ(Children(b), (Arts{first, middle, last}));
  EXPECT_EQ(Parent(middle), b);
  // Ends of the walk.
  void* none = reinterpret_cast<void*>(1);
  EXPECT_EQ(RvGiGetArtSibling(c, &none), 0u);
  EXPECT_EQ(none, nullptr);
  none = reinterpret_cast<void*>(1);
  EXPECT_EQ(RvGiGetArtPreSibling(a, &none), 0u);
  EXPECT_EQ(none, nullptr);
  none = reinterpret_cast<void*>(1);
  EXPECT_EQ(RvGiGetArtSibling(layer, &none), 0u);
  EXPECT_EQ(none, nullptr) << "a layer has no parent, so no sibling";
  EXPECT_EQ(Parent(layer), nullptr);
}

TEST_F(Drawing, PositionChecksComeBeforeAnythingIsLinked) {
  void* layer = Layer();
  void* group = Art(1, 3, nullptr);
  void* art = reinterpret_cast<void*>(1);
  EXPECT_EQ(RvGiCreateArt(4, 0, group, &art), kBadReference);
  EXPECT_EQ(art, nullptr);
  EXPECT_EQ(RvGiCreateArt(4, 3, group, &art), kBadReference);
  EXPECT_EQ(RvGiCreateArt(4, 1, nullptr, &art), kBadReference);
  EXPECT_EQ(RvGiCreateArt(4, 2, nullptr, &art), kBadReference);
  EXPECT_EQ(RvGiCreateArt(4, 4, nullptr, &art), kBadReference);
  EXPECT_EQ(RvGiCreateArt(4, 5, nullptr, &art), kBadReference);
  EXPECT_EQ(RvGiCreateArt(4, 1, layer, &art), kNoParent) << "layers have no parent";
  EXPECT_EQ(RvGiCreateArt(4, 2, layer, &art), kNoParent);
  EXPECT_EQ(Children(layer), (Arts{group}));
  EXPECT_TRUE(Children(group).empty());
}

TEST_F(Drawing, UnknownPositionLeavesTheArtUnlinked) {
  void* layer = Layer();
  void* loose = nullptr;
  ASSERT_EQ(RvGiCreateArt(4, 6, nullptr, &loose), 0u);
  ASSERT_NE(loose, nullptr);
  EXPECT_EQ(Type(loose), 4);
  EXPECT_EQ(Parent(loose), nullptr);
  EXPECT_TRUE(Children(layer).empty());
  // It is a whole art: it takes children and can be walked.
  void* bez = Art(2, 5, loose);
  EXPECT_EQ(Children(loose), (Arts{bez}));
  EXPECT_EQ(RvGiDeleteArt(&loose), kNullArt) << "no parent to unlink from";
}

TEST_F(Drawing, ArtsWithoutExplicitParentGoToTheCurrentLayer) {
  void* first = Layer(1);
  void* second = Layer(1);  // current now: index 1
  void* art = Art(1, 3, nullptr);
  EXPECT_EQ(Parent(art), second);
  EXPECT_TRUE(Children(first).empty());
  void* front = Layer(0);  // front: index 0 is current
  void* early = Art(1, 0, nullptr);
  EXPECT_EQ(Parent(early), front);
}

TEST_F(Drawing, ContainerFiltersLeaveRefusedArtsOutSilently) {
  Layer();
  void* path = Art(4, 3, nullptr);
  void* compound = Art(3, 3, nullptr);
  void* group = nullptr;
  ASSERT_EQ(RvGiCreateArt(1, 5, path, &group), 0u) << "a wrong combination isn't reported";
  EXPECT_TRUE(Children(path).empty());
  EXPECT_EQ(Parent(group), path) << "the refused art still names the container";
  void* none = reinterpret_cast<void*>(1);
  EXPECT_EQ(RvGiGetArtSibling(group, &none), 0u);
  EXPECT_EQ(none, nullptr);
  // A reference that its parent doesn't hold gives no place to link at.
  void* art = reinterpret_cast<void*>(1);
  EXPECT_EQ(RvGiCreateArt(2, 2, group, &art), kNoParent);
  void* bez = nullptr;
  ASSERT_EQ(RvGiCreateArt(2, 4, compound, &bez), 0u);
  EXPECT_TRUE(Children(compound).empty());
  void* inner = Art(4, 5, compound);
  EXPECT_EQ(Children(compound), (Arts{inner}));
  // Components refuse everything.
  void* component = Art(2, 5, inner);
  void* under = Art(6, 5, component);
  EXPECT_TRUE(Children(component).empty());
  EXPECT_EQ(Parent(under), component);
}

TEST_F(Drawing, DeletedArtsAreUnlinkedButStayReadable) {
  void* layer = Layer();
  void* a = Art(1, 3, nullptr);
  void* b = Art(1, 3, nullptr);
  void* c = Art(1, 3, nullptr);
  void* inner = Art(4, 5, b);
  ASSERT_EQ(RvGiSetArtTag(b, "k", "v"), 0u);
  void* handle = b;
  ASSERT_EQ(RvGiDeleteArt(&handle), 0u);
  EXPECT_EQ(handle, b) << "the handle isn't changed";
  EXPECT_EQ(Children(layer), (Arts{a, c}));
  EXPECT_EQ(ChildrenBackwards(c), (Arts{a, c}));
  EXPECT_EQ(Type(b), 1);
  EXPECT_EQ(Children(b), (Arts{inner})) << "the subtree stays with it";
  EXPECT_EQ(Parent(inner), b);
  EXPECT_EQ(Parent(b), nullptr);
  char value[8] = {};
  EXPECT_EQ(RvGiGetArtTag(b, "k", value), 0u);
  EXPECT_STREQ(value, "v");
  EXPECT_EQ(RvGiDeleteArt(&handle), kNullArt) << "deleting twice";
  void* nothing = nullptr;
  EXPECT_EQ(RvGiDeleteArt(&nothing), kNullArt);
  EXPECT_EQ(RvGiDeleteArt(nullptr), kNullArt);
  void* l = layer;
  EXPECT_EQ(RvGiDeleteArt(&l), kNullArt) << "a layer has no parent";
  // Deleting the layer later doesn't touch the unlinked art.
  ASSERT_EQ(RvGiDeleteLayer(layer), 0u);
  EXPECT_EQ(Children(b), (Arts{inner}));
}

TEST_F(Drawing, NullArtsAreReportedNotFollowed) {
  void* out = nullptr;
  int16_t type = 0;
  RVRIFMATRIX m{};
  RVRECT r{};
  RVCOLOR color{};
  int32_t found = 0;
  char text[16];
  EXPECT_EQ(RvGiGetArtFirstChild(nullptr, &out), kNullArt);
  EXPECT_EQ(RvGiGetArtParent(nullptr, &out), kNullArt);
  EXPECT_EQ(RvGiGetArtSibling(nullptr, &out), kNullArt);
  EXPECT_EQ(RvGiGetArtPreSibling(nullptr, &out), kNullArt);
  EXPECT_EQ(RvGiGetArtType(nullptr, &type), kNullArt);
  EXPECT_EQ(RvGiGetArtMatrix(nullptr, &m), kNullArt);
  EXPECT_EQ(RvGiSetArtMatrix(nullptr, &m), kNullArt);
  EXPECT_EQ(RvGiSetBoundingBox(nullptr, &r), kNullArt);
  EXPECT_EQ(RvGiGetArtBounds(nullptr, &r), kNullArt);
  EXPECT_EQ(RvGiSetArtTag(nullptr, "a", "b"), kNullArt);
  EXPECT_EQ(RvGiGetArtTag(nullptr, "a", text), kNullArt);
  EXPECT_EQ(RvGiGetPathColor(1, nullptr, &color, &found), kNullArt);
  EXPECT_EQ(RvGiSetPathColor(1, nullptr, &color, "x"), kNullArt);
  EXPECT_EQ(RvGiConvertCompoundToGroup(nullptr, nullptr), kNullArt);
  EXPECT_EQ(g_ExceptionContext, nullptr);
}

TEST_F(Drawing, CopiesFollowTheCopyingRules) {
  void* layer = Layer();
  void* path = Art(4, 3, nullptr);
  RVCOLOR red{nullptr, 1, {255, 0, 0, 0}};
  ASSERT_EQ(RvGiSetPathColor(2, path, &red, "R=255,G=0,B=0"), 0u);
  ASSERT_EQ(RvGiSetPathClosed(path, 1), 0u);
  ASSERT_EQ(RvGiSetPathAttrFlag(path, 7), 0u);
  ASSERT_EQ(RvGiSetArtTag(path, "k", "v"), 0u);
  void* bez = Art(2, 5, path);
  const RVBEZIERPOINT point = Pt(1, 2);
  ASSERT_EQ(RvGiSetBezierPoint(bez, &point), 0u);

  void* copy = nullptr;
  ASSERT_EQ(RvGiCopyArt(4, 0, nullptr, path, &copy), 0u);
  EXPECT_EQ(Children(layer), (Arts{copy, path}));
  EXPECT_TRUE(Children(copy).empty()) << "children aren't copied";
  char name[32] = {};
  ASSERT_EQ(RvGiGetPathColorName(2, copy, name), 0u);
  EXPECT_STREQ(name, "R=255,G=0,B=0");
  int32_t closed = 0;
  ASSERT_EQ(RvGiGetPathClosed(copy, &closed), 0u);
  EXPECT_EQ(closed, 1);
  uint8_t flags = 9;
  ASSERT_EQ(RvGiGetPathAttrFlag(copy, &flags), 0u);
  EXPECT_EQ(flags, 0) << "the attribute word stays behind";
  EXPECT_EQ(RvGiGetArtTag(copy, "k", name), 0x06001A01u) << "tags stay behind";
  // The copy is independent of its source.
  RVCOLOR blue{nullptr, 1, {0, 0, 255, 0}};
  ASSERT_EQ(RvGiSetPathColor(2, copy, &blue, "blue"), 0u);
  ASSERT_EQ(RvGiGetPathColorName(2, path, name), 0u);
  EXPECT_STREQ(name, "R=255,G=0,B=0");

  // A copy with an unknown position has no parent, not its source's.
  void* loose = nullptr;
  ASSERT_EQ(RvGiCopyArt(4, 9, nullptr, path, &loose), 0u);
  EXPECT_EQ(Parent(loose), nullptr);
  void* art = reinterpret_cast<void*>(1);
  EXPECT_EQ(RvGiCopyArt(5, 3, nullptr, bez, &art), kBadType) << "arcs and splines go through RvGiCopyPath";
  EXPECT_EQ(RvGiCopyArt(1, 3, nullptr, path, &art), kBadType) << "type and source must agree";
  EXPECT_EQ(art, nullptr);
  EXPECT_EQ(RvGiCopyArt(4, 3, nullptr, nullptr, &art), kNullArt);
}

TEST_F(Drawing, ArtBoundsMapEachCornerThroughTheMatrix) {
  Layer();
  void* group = Art(1, 3, nullptr);
  RVRECT stored{10.0, 0.0, 20.0, 0.0};
  ASSERT_EQ(RvGiSetBoundingBox(group, &stored), 0u);
  RVRECT out{};
  ASSERT_EQ(RvGiGetArtBounds(group, &out), 0u);
  EXPECT_EQ(out.top, 10.0);
  EXPECT_EQ(out.right, 20.0);
  RVRIFMATRIX scale{2.0, 0.0, 0.0, 3.0, 1.0, 1.0};
  ASSERT_EQ(RvGiSetArtMatrix(group, &scale), 0u);
  ASSERT_EQ(RvGiGetArtBounds(group, &out), 0u);
  EXPECT_EQ(out.left, 1.0);     // 2*0 + 0*10 + 1
  EXPECT_EQ(out.top, 31.0);     // 0*0 + 3*10 + 1
  EXPECT_EQ(out.right, 41.0);   // 2*20 + 0*0 + 1
  EXPECT_EQ(out.bottom, 1.0);   // 0*20 + 3*0 + 1
  // A quarter turn: the corners move one by one, the box isn't normalised.
  RVRIFMATRIX turn{0.0, 1.0, -1.0, 0.0, 0.0, 0.0};
  ASSERT_EQ(RvGiSetArtMatrix(group, &turn), 0u);
  ASSERT_EQ(RvGiGetArtBounds(group, &out), 0u);
  EXPECT_EQ(out.left, -10.0);
  EXPECT_EQ(out.top, 0.0);
  EXPECT_EQ(out.right, 0.0);
  EXPECT_EQ(out.bottom, 20.0);
  RVRIFMATRIX back{};
  ASSERT_EQ(RvGiGetArtMatrix(group, &back), 0u);
  EXPECT_EQ(std::memcmp(&back, &turn, sizeof back), 0);
}

TEST_F(Drawing, TagsAndColoursByArtType) {
  void* layer = Layer();
  void* path = Art(4, 3, nullptr);
  void* group = Art(1, 3, nullptr);
  char text[64] = "untouched";
  EXPECT_EQ(RvGiGetArtTag(path, "missing", text), 0x06001A01u);
  EXPECT_STREQ(text, "untouched");
  ASSERT_EQ(RvGiSetArtTag(path, "RivlenKerflowMicroJointTag", "1"), 0u);
  ASSERT_EQ(RvGiSetArtTag(path, "RivlenKerflowMicroJointTag", "2"), 0u);
  ASSERT_EQ(RvGiGetArtTag(path, "RivlenKerflowMicroJointTag", text), 0u);
  EXPECT_STREQ(text, "2");

  // A layer: use is ignored, the colour is always found.
  RVCOLOR color{nullptr, 9, {9, 9, 9, 9}};
  int32_t found = 0;
  ASSERT_EQ(RvGiGetPathColor(2, layer, &color, &found), 0u);
  EXPECT_EQ(found, 1);
  EXPECT_EQ(color.kind, 1);
  EXPECT_EQ(color.c[0] + color.c[1] + color.c[2], 0);
  RVCOLOR cmyk{nullptr, 0, {10, 20, 30, 40}};
  ASSERT_EQ(RvGiSetPathColor(7, layer, &cmyk, "cmyk"), 0u);
  ASSERT_EQ(RvGiGetPathColorName(0, layer, text), 0u);
  EXPECT_STREQ(text, "cmyk");
  // A path: fill and stroke; a missing one isn't found and reads "None".
  color = RVCOLOR{nullptr, 9, {9, 9, 9, 9}};
  ASSERT_EQ(RvGiGetPathColor(1, path, &color, &found), 0u);
  EXPECT_EQ(found, 0);
  EXPECT_EQ(color.kind, 9) << "untouched when not found";
  ASSERT_EQ(RvGiGetPathColorName(1, path, text), 0u);
  EXPECT_STREQ(text, "None");
  RVCOLOR fountain{nullptr, 2, {}};
  EXPECT_EQ(RvGiSetPathColor(2, path, &fountain, "f"), 0x05000A01u);
  ASSERT_EQ(RvGiSetPathColor(1, path, &fountain, "f"), 0u);
  ASSERT_EQ(RvGiGetPathColor(1, path, &color, &found), 0u);
  EXPECT_EQ(found, 1);
  EXPECT_EQ(color.kind, 2);
  ASSERT_EQ(RvGiSetPathColorName(2, path, "nothing to rename"), 0u);
  ASSERT_EQ(RvGiGetPathColorName(2, path, text), 0u);
  EXPECT_STREQ(text, "None");
  EXPECT_EQ(RvGiGetPathColor(3, path, &color, &found), 0x05000901u);
  // Other arts have no colour.
  EXPECT_EQ(RvGiGetPathColor(1, group, &color, &found), 0x06000901u);
  EXPECT_EQ(RvGiGetPathColorName(1, group, text), 0x06000901u);
  EXPECT_EQ(RvGiSetPathColor(1, group, &cmyk, "x"), 0x06000A01u);
  EXPECT_EQ(RvGiSetPathColorName(1, group, "x"), 0x06000A01u);
}

TEST_F(Drawing, CompoundConvertsIntoAGroupInReverseOrder) {
  void* layer = Layer();
  void* group = Art(1, 3, nullptr);
  void* compound = Art(3, 3, nullptr);
  void* p1 = Art(4, 5, compound);
  void* p2 = Art(4, 5, compound);
  RVRECT stored{5.0, 1.0, 4.0, 2.0};
  RVRIFMATRIX shift{1.0, 0.0, 0.0, 1.0, 10.0, 0.0};
  ASSERT_EQ(RvGiSetBoundingBox(compound, &stored), 0u);
  ASSERT_EQ(RvGiSetArtMatrix(compound, &shift), 0u);
  ASSERT_EQ(RvGiSetSelect(group, 1), 0u);

  ASSERT_EQ(RvGiConvertCompoundToGroup(group, compound), 0u);
  EXPECT_EQ(Children(group), (Arts{p2, p1}));
  EXPECT_EQ(Parent(p1), group);
  EXPECT_EQ(Children(layer), (Arts{group})) << "the compound left its layer";
  EXPECT_EQ(Parent(compound), nullptr);
  // The compound still lists its paths; a sibling walk from there follows
  // their parent, the group, in which p1 now comes last.
  EXPECT_EQ(Children(compound), (Arts{p1}));
  RVRECT bounds{};
  ASSERT_EQ(RvGiGetArtBounds(group, &bounds), 0u);
  EXPECT_EQ(bounds.left, 11.0);
  EXPECT_EQ(bounds.right, 14.0);
  EXPECT_EQ(bounds.top, 5.0);
  int32_t selected = 7;
  ASSERT_EQ(RvGiGetSelect(group, &selected), 0u);
  EXPECT_EQ(selected, 0);

  EXPECT_EQ(RvGiConvertCompoundToGroup(group, compound), kWrongKind) << "its paths were handed on";
  void* other = Art(1, 3, nullptr);
  EXPECT_EQ(RvGiConvertCompoundToGroup(compound, other), kWrongKind);
  // A converted compound takes no new children: the new path is left out.
  void* extra = Art(4, 4, compound);
  void* first = nullptr;
  ASSERT_EQ(RvGiGetArtFirstChild(compound, &first), 0u);
  EXPECT_EQ(first, p1);
  EXPECT_EQ(Parent(extra), compound);

  // Destroying the group's layer takes the paths; the compound forgets them.
  ASSERT_EQ(RvGiDeleteLayer(layer), 0u);
  EXPECT_TRUE(Children(compound).empty());
  EXPECT_EQ(Type(compound), 3);
}

TEST_F(Drawing, RefusedArtsForgetADestroyedParent) {
  void* layer = Layer();
  void* path = Art(4, 3, nullptr);
  void* group = Art(1, 5, path);  // refused by the path
  ASSERT_EQ(Parent(group), path);
  ASSERT_EQ(RvGiDeleteLayer(layer), 0u);
  EXPECT_EQ(Parent(group), nullptr) << "no pointer to the destroyed path is left";
  void* handle = group;
  EXPECT_EQ(RvGiDeleteArt(&handle), kNullArt);
  void* none = reinterpret_cast<void*>(1);
  EXPECT_EQ(RvGiGetArtSibling(group, &none), 0u);
  EXPECT_EQ(none, nullptr);

  // The same when the whole document goes.
  void* second = Layer();
  void* p2 = Art(4, 3, nullptr);
  void* g2 = Art(1, 4, p2);
  (void)second;
  ASSERT_EQ(RvGiDeleteActiveDocument(), 0u);
  EXPECT_EQ(Parent(g2), nullptr);
}

}  // namespace

namespace {

TEST_F(Drawing, DeepNestingIsWalkedAndDestroyedWithoutRecursion) {
  void* layer = Layer();
  void* parent = layer;
  void* deepest = nullptr;
  for (int i = 0; i < 200000; ++i) {
    ASSERT_EQ(RvGiCreateArt(1, 4, parent, &deepest), 0u);
    parent = deepest;
  }
  ASSERT_EQ(RvGiSetPathAttrFlag(Art(4, 5, deepest), 2), 0u);
  int visits = 0;
  auto count = [](void* context, void*) -> uint32_t {
    ++*static_cast<int*>(context);
    return 0;
  };
  ASSERT_EQ(RvGiTracePath(layer, 2, &visits, count), 0u);
  EXPECT_EQ(visits, 1);
  EXPECT_EQ(RvGiDeleteLayer(layer), 0u);
}

}  // namespace
