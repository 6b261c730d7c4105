#include <gtest/gtest.h>

#include <tuple>

#include "drawing_host.h"
#include "model/art.h"

using namespace drawtest;

namespace {

void* const kJunk = reinterpret_cast<void*>(1);

TEST_F(Drawing, CreateNeedsALayerAKnownTypeAndAFittingReference) {
  void* art = kJunk;
  EXPECT_EQ(RvGiCreateArt(1, 3, nullptr, &art), kNoLayer);
  EXPECT_EQ(art, nullptr) << "a failed create hands back null";
  void* layer = Layer();
  for (int16_t type : {0, 7}) EXPECT_EQ(RvGiCreateArt(type, 3, nullptr, &art), kBadType) << type;
  for (int16_t type = 1; type <= 6; ++type) {
    void* made = Art(type, 3, nullptr);
    EXPECT_EQ(Type(made), type);
    EXPECT_EQ(Parent(made), layer);
  }
  // The position is checked before anything is linked; layers have no parent.
  void* group = Art(1, 3, nullptr);
  const std::tuple<int16_t, void*, uint32_t> refused[] = {
      {3, group, kBadReference}, {2, nullptr, kBadReference}, {4, nullptr, kBadReference}, {1, layer, kNoParent}};
  for (auto [position, reference, code] : refused) {
    art = kJunk;
    EXPECT_EQ(RvGiCreateArt(4, position, reference, &art), code) << position;
    EXPECT_EQ(art, nullptr);
  }
  EXPECT_EQ(Children(layer).size(), 7u);
  EXPECT_TRUE(Children(group).empty());
}

TEST_F(Drawing, PositionsLinkAroundTheReference) {
  void* layer = Layer();
  void* b = Art(1, 3, nullptr);  // last in the current layer: b
  void* a = Art(1, 0, nullptr);  // first: a b
  void* c = Art(1, 2, b);        // behind b: a b c
  void* ab = Art(1, 1, b);       // in front of b: a ab b c
  EXPECT_EQ(Children(layer), (Arts{a, ab, b, c}));
  EXPECT_EQ(ChildrenBackwards(c), (Arts{a, ab, b, c}));
  void* first = Art(4, 4, b);  // first child of b
  void* last = Art(4, 5, b);   // last child of b
  void* middle = Art(4, 1, last);
  EXPECT_EQ(Children(b), (Arts{first, middle, last}));
  EXPECT_EQ(Parent(middle), b);
  // A layer has no parent, so no sibling.
  EXPECT_EQ(Sibling(layer), nullptr);
  EXPECT_EQ(Parent(layer), nullptr);

  // An unknown position leaves a whole art unlinked: it takes children and
  // can be walked, but has no parent to be unlinked from.
  void* loose = Art(4, 6, nullptr);
  EXPECT_EQ(Parent(loose), nullptr);
  EXPECT_EQ(Children(layer).size(), 4u);
  void* bez = Art(2, 5, loose);
  EXPECT_EQ(Children(loose), (Arts{bez}));
  EXPECT_EQ(RvGiDeleteArt(&loose), kNullArt);
}

TEST_F(Drawing, ContainerFiltersLeaveRefusedArtsOutSilently) {
  void* layer = Layer();
  void* path = Art(4, 3, nullptr);
  void* compound = Art(3, 3, nullptr);
  void* group = Art(1, 5, path);  // a wrong combination isn't reported
  EXPECT_TRUE(Children(path).empty());
  EXPECT_EQ(Parent(group), path) << "the refused art still names the container";
  EXPECT_EQ(Sibling(group), nullptr);
  // A reference that its parent doesn't hold gives no place to link at.
  void* art = kJunk;
  EXPECT_EQ(RvGiCreateArt(2, 2, group, &art), kNoParent);
  Art(2, 4, compound);
  EXPECT_TRUE(Children(compound).empty());
  void* inner = Art(4, 5, compound);
  EXPECT_EQ(Children(compound), (Arts{inner}));
  // Components refuse everything.
  void* component = Art(2, 5, inner);
  void* under = Art(6, 5, component);
  EXPECT_TRUE(Children(component).empty());
  EXPECT_EQ(Parent(under), component);
  // A destroyed container leaves no pointer behind in the arts it refused,
  // whether its layer goes or the whole document.
  ASSERT_EQ(RvGiDeleteLayer(layer), 0u);
  EXPECT_EQ(Parent(group), nullptr);
  EXPECT_EQ(Parent(under), nullptr);
  void* handle = group;
  EXPECT_EQ(RvGiDeleteArt(&handle), kNullArt);
  Layer();
  void* g2 = Art(1, 4, Art(4, 3, nullptr));
  ASSERT_EQ(RvGiDeleteActiveDocument(), 0u);
  EXPECT_EQ(Parent(g2), nullptr);
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
  EXPECT_EQ(Children(b), (Arts{inner})) << "the subtree stays with it";
  EXPECT_EQ(Parent(inner), b);
  EXPECT_EQ(Parent(b), nullptr);
  char value[8] = {};
  EXPECT_EQ(RvGiGetArtTag(b, "k", value), 0u);
  EXPECT_STREQ(value, "v");
  void* nothing = nullptr;
  void* l = layer;  // a layer has no parent
  for (void** art : {&handle, &nothing, static_cast<void**>(nullptr), &l}) EXPECT_EQ(RvGiDeleteArt(art), kNullArt);
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
  for (uint32_t code : {RvGiGetArtFirstChild(nullptr, &out), RvGiGetArtParent(nullptr, &out),
                        RvGiGetArtSibling(nullptr, &out), RvGiGetArtPreSibling(nullptr, &out),
                        RvGiGetArtType(nullptr, &type), RvGiGetArtMatrix(nullptr, &m), RvGiSetArtMatrix(nullptr, &m),
                        RvGiSetBoundingBox(nullptr, &r), RvGiGetArtBounds(nullptr, &r),
                        RvGiSetArtTag(nullptr, "a", "b"), RvGiGetArtTag(nullptr, "a", text),
                        RvGiGetPathColor(1, nullptr, &color, &found), RvGiSetPathColor(1, nullptr, &color, "x"),
                        RvGiConvertCompoundToGroup(nullptr, nullptr)}) {
    EXPECT_EQ(code, kNullArt);
  }
}

TEST_F(Drawing, CopiesFollowTheCopyingRules) {
  void* layer = Layer();
  void* path = PathOf({Pt(1, 2)});
  RVCOLOR red{nullptr, 1, {255, 0, 0, 0}}, blue{nullptr, 1, {0, 0, 255, 0}};
  const RVRIFMATRIX shift{1, 0, 0, 1, 4, 0};
  const RVRECT bounds{1, 2, 3, 4};
  ASSERT_EQ(RvGiSetPathColor(2, path, &red, "R=255,G=0,B=0"), 0u);
  ASSERT_EQ(RvGiSetPathClosed(path, 1), 0u);
  ASSERT_EQ(RvGiSetPathClockWise(path, 2), 0u);
  ASSERT_EQ(RvGiSetArtMatrix(path, &shift), 0u);
  ASSERT_EQ(RvGiSetBoundingBox(path, &bounds), 0u);
  ASSERT_EQ(RvGiSetPathAttrFlag(path, 7), 0u);
  ASSERT_EQ(RvGiSetArtTag(path, "k", "v"), 0u);
  void* copy = nullptr;
  ASSERT_EQ(RvGiCopyArt(4, 0, nullptr, path, &copy), 0u);
  EXPECT_EQ(Children(layer), (Arts{copy, path}));
  EXPECT_TRUE(Children(copy).empty()) << "children aren't copied";
  EXPECT_EQ(ColorName(2, copy), "R=255,G=0,B=0");
  EXPECT_EQ((V{double(Read(RvGiGetPathClosed, copy)), double(Read(RvGiGetPathClockWise, copy))}), (V{1, 2}));
  EXPECT_EQ(Rect(Read(RvGiGetArtBounds, copy)), (V{1, 6, 7, 4})) << "the bounds and the matrix go with it";
  EXPECT_EQ(Read<uint8_t>(RvGiGetPathAttrFlag, copy, 9), 0) << "the attribute word stays behind";
  char text[8];
  EXPECT_EQ(RvGiGetArtTag(copy, "k", text), kNoTag) << "tags stay behind";
  // The copy is independent of its source.
  ASSERT_EQ(RvGiSetPathColor(2, copy, &blue, "blue"), 0u);
  EXPECT_EQ(ColorName(2, path), "R=255,G=0,B=0");

  // A copy with an unknown position has no parent, not its source's.
  void* art = kJunk;
  ASSERT_EQ(RvGiCopyArt(4, 9, nullptr, path, &art), 0u);
  EXPECT_EQ(Parent(art), nullptr);
  EXPECT_EQ(RvGiCopyArt(5, 3, nullptr, Children(path)[0], &art), kBadType) << "components go through RvGiCopyPath";
  EXPECT_EQ(RvGiCopyArt(1, 3, nullptr, path, &art), kBadType) << "type and source must agree";
  EXPECT_EQ(art, nullptr);
  EXPECT_EQ(RvGiCopyArt(4, 3, nullptr, nullptr, &art), kNullArt);
  EXPECT_EQ(RvGiCopyArt(0, 3, nullptr, layer, &art), kBadType) << "layers aren't copied";
}

TEST_F(Drawing, ArtBoundsMapEachCornerThroughTheMatrix) {
  Layer();
  void* group = Art(1, 3, nullptr);
  // (left, top) = (0, 10) and (right, bottom) = (20, 0) go one by one
  // through a quarter turn: the box isn't normalised.
  const RVRECT stored{10.0, 0.0, 20.0, 0.0};
  const RVRIFMATRIX turn{0.0, 1.0, -1.0, 0.0, 0.0, 0.0};
  ASSERT_EQ(RvGiSetBoundingBox(group, &stored), 0u);
  ASSERT_EQ(RvGiSetArtMatrix(group, &turn), 0u);
  EXPECT_EQ(Rect(Read(RvGiGetArtBounds, group)), (V{0, -10, 0, 20}));
}

TEST_F(Drawing, TagsAndColoursByArtType) {
  void* layer = Layer();
  void* path = Art(4, 3, nullptr);
  void* group = Art(1, 3, nullptr);
  char text[64] = "untouched";
  EXPECT_EQ(RvGiGetArtTag(path, "missing", text), kNoTag);
  EXPECT_STREQ(text, "untouched");
  ASSERT_EQ(RvGiSetArtTag(path, "RivlenKerflowMicroJointTag", "1"), 0u);
  ASSERT_EQ(RvGiSetArtTag(path, "RivlenKerflowMicroJointTag", "2"), 0u);
  ASSERT_EQ(RvGiGetArtTag(path, "RivlenKerflowMicroJointTag", text), 0u);
  EXPECT_STREQ(text, "2");

  // A layer: use is ignored, the colour is always found, black at first.
  RVCOLOR color{nullptr, 9, {9, 9, 9, 9}}, cmyk{nullptr, 0, {10, 20, 30, 40}}, fountain{nullptr, 2, {}};
  int32_t found = 0;
  ASSERT_EQ(RvGiGetPathColor(2, layer, &color, &found), 0u);
  EXPECT_EQ((V{double(found), double(color.kind), double(color.c[0] + color.c[1] + color.c[2])}), (V{1, 1, 0}));
  ASSERT_EQ(RvGiSetPathColor(7, layer, &cmyk, "cmyk"), 0u);
  EXPECT_EQ(ColorName(0, layer), "cmyk");
  // A path: fill and stroke; a missing one isn't found (the record stays
  // untouched) and reads "None", and renaming it does nothing. Fountains
  // fill only.
  color.kind = 9;
  ASSERT_EQ(RvGiGetPathColor(1, path, &color, &found), 0u);
  EXPECT_EQ(found, 0);
  EXPECT_EQ(color.kind, 9);
  EXPECT_EQ(ColorName(1, path), "None");
  EXPECT_EQ(RvGiSetPathColor(2, path, &fountain, "f"), 0x05000A01u);
  ASSERT_EQ(RvGiSetPathColor(1, path, &fountain, "f"), 0u);
  ASSERT_EQ(RvGiSetPathColorName(2, path, "nothing to rename"), 0u);
  EXPECT_EQ(ColorName(2, path), "None");
  ASSERT_EQ(RvGiSetPathColorName(1, path, "renamed"), 0u);
  EXPECT_EQ(ColorName(1, path), "renamed");
  EXPECT_EQ(RvGiGetPathColor(3, path, &color, &found), 0x05000901u);
  EXPECT_EQ(RvGiGetPathColorName(3, path, text), 0x05000901u);
  EXPECT_EQ(RvGiSetPathColor(3, path, &cmyk, "x"), 0x05000A01u);
  EXPECT_EQ(RvGiSetPathColorName(0, path, "x"), 0x06000A01u);
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
  const RVRECT stored{5.0, 1.0, 4.0, 2.0};
  const RVRIFMATRIX shift{1.0, 0.0, 0.0, 1.0, 10.0, 0.0};
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
  EXPECT_EQ(Rect(Read(RvGiGetArtBounds, group)), (V{5, 11, 14, 2})) << "the compound's bounds as they map";
  EXPECT_EQ(Read(RvGiGetSelect, group, 7), 0);

  EXPECT_EQ(RvGiConvertCompoundToGroup(group, compound), kWrongKind) << "its paths were handed on";
  void* other = Art(1, 3, nullptr);
  EXPECT_EQ(RvGiConvertCompoundToGroup(compound, other), kWrongKind);
  // A converted compound takes no new children: the new path is left out.
  void* extra = Art(4, 4, compound);
  EXPECT_EQ(Read(RvGiGetArtFirstChild, compound), p1);
  EXPECT_EQ(Parent(extra), compound);
  // Destroying the group's layer takes the paths; the compound forgets them.
  ASSERT_EQ(RvGiDeleteLayer(layer), 0u);
  EXPECT_TRUE(Children(compound).empty());
  EXPECT_EQ(Type(compound), 3);
}

TEST_F(Drawing, DeepNestingIsWalkedAndDestroyedWithoutRecursion) {
  void* layer = Layer();
  void* deepest = layer;
  for (int i = 0; i < 200000; ++i) deepest = Art(1, 4, deepest);
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

// The art tree as C++ objects, where the exported functions don't reach.
TEST(ArtTree, ALayerRemovesOnlyEntriesOfItsOwnList) {
  rv::CRvLayer layer, other;
  rv::CRvGroup refused;
  EXPECT_FALSE(layer.AddChild(5, &refused)) << "an unknown where links nothing and leaves the art with the caller";
  layer.AddChild(1, new rv::CRvGroup);
  auto* foreign = new rv::CRvGroup;
  other.AddChild(1, foreign);
  layer.RemoveChild(*other.FindChild(foreign));
  EXPECT_EQ(other.ChildCount(), 1u);
  EXPECT_EQ(layer.ChildCount(), 1u);
}

}  // namespace
