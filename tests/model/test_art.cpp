// The art tree as C++ objects: what the exported functions don't show.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frame/frame.h"
#include "model/art.h"

using namespace rv;

namespace {

std::vector<std::string> gDestroyed;

// A group that reports its destruction, to check ownership and order.
class NoisyGroup : public CRvGroup {
 public:
  explicit NoisyGroup(std::string name) : m_name(std::move(name)) {}
  ~NoisyGroup() override { gDestroyed.push_back(m_name); }
  std::string m_name;
};

TEST(ArtTree, ListsDestroyTheirSubtreesInListOrderUnlessReleased) {
  gDestroyed.clear();
  {
    CRvLayer layer;
    auto* first = new NoisyGroup("first");
    first->AddChild(1, new NoisyGroup("first.child"));
    auto* path = new CRvPath;
    path->AddChild(1, new CRvBezier);
    first->AddChild(1, path);
    layer.AddChild(1, first);
    layer.AddChild(1, new NoisyGroup("second"));
    layer.AddChild(0, new NoisyGroup("zero"));
  }
  EXPECT_EQ(gDestroyed, (std::vector<std::string>{"zero", "first", "first.child", "second"}));
  gDestroyed.clear();
  auto* kept = new NoisyGroup("kept");
  {
    CRvGroup holder;
    holder.AddChild(1, kept);
    holder.m_children.ReleaseOwnership();
  }
  EXPECT_TRUE(gDestroyed.empty());
  delete kept;
  // A layer removes only entries of its own list.
  CRvLayer layer, other;
  layer.AddChild(1, new CRvGroup);
  auto* foreign = new CRvGroup;
  other.AddChild(1, foreign);
  layer.RemoveChild(*other.FindChild(foreign));
  EXPECT_EQ(other.ChildCount(), 1u);
  EXPECT_EQ(layer.ChildCount(), 1u);
}

TEST(ArtTree, CopiesKeepPlaceAndGeometryButNoChildrenTagsOrAttributes) {
  CRvLayer layer;
  auto* source = new CRvPath;
  layer.AddChild(1, source);
  source->m_parent = &layer;
  source->m_closed = 1;
  source->m_clockwise = 2;
  source->m_matrix.tx = 4;
  source->m_bounds = RVRECT{1, 2, 3, 4};
  source->SetTag("k", "v");
  source->EnsureAttr().word = 7;
  source->AddChild(1, new CRvBezier);
  std::unique_ptr<CRvArt> copy = CopyArt(*source);
  auto* path = static_cast<CRvPath*>(copy.get());
  EXPECT_EQ(path->m_parent, &layer);
  EXPECT_EQ((std::vector<double>{double(path->m_closed), double(path->m_clockwise), path->m_matrix.tx,
                                 path->m_bounds.right}),
            (std::vector<double>{1, 2, 4, 3}));
  EXPECT_EQ(path->ChildCount(), 0u);
  EXPECT_TRUE(path->m_tags.empty());
  EXPECT_EQ(path->AttrFlags(), 0);

  CRvBezier bez;
  bez.AddPoint(RVBEZIERPOINT{{1, 1}, {1, 1}, {1, 1}, 0});
  bez.SetStartIn(RVPOINT{5, 6});
  bez.m_startOutSet = 1;
  auto bcopy = CopyArt(bez);
  auto* b2 = static_cast<CRvBezier*>(bcopy.get());
  EXPECT_EQ(b2->GetPointCount(), 1);
  EXPECT_EQ(b2->m_startIn.y, 6);
  EXPECT_EQ(b2->m_startOutSet, 1);
  EXPECT_EQ(CopyArt(layer), nullptr);
  EXPECT_EQ(MakeArt(0), nullptr);
  EXPECT_EQ(MakeArt(7), nullptr);
  for (int16_t t = 1; t <= 6; ++t) EXPECT_EQ(MakeArt(t)->GetType(), t);
}

TEST(ArtTree, TagsAreOrderedBytewiseAndAColourlessLayerHasNoName) {
  CRvGroup g;
  for (const char* key : {"b", "a", "\xC3\xA9", "ab", "B", ""}) g.SetTag(key, key);
  g.SetTag("a", "again");
  std::vector<std::string> keys;
  for (const auto& [k, v] : g.m_tags) keys.push_back(k);
  EXPECT_EQ(keys, (std::vector<std::string>{"", "B", "a", "ab", "b", "\xC3\xA9"}));
  EXPECT_EQ(g.GetTag("a"), "again");
  CRvLayer layer;
  EXPECT_EQ(Guard([&] { layer.GetColorName(); }), 0x03000901u);
}

TEST(ArtTree, BezierIndexesWrapAndFlagsCombine) {
  CRvBezier b;
  for (double x : {0, 1, 2}) b.AddPoint(RVBEZIERPOINT{{x, 0}, {x, 0}, {x, 0}, 0});
  EXPECT_EQ(b.GetNextIndex(2), 0);
  EXPECT_EQ(b.GetPrevIndex(0), 2);
  EXPECT_EQ(b.GetNextIndex(0), 1);
  EXPECT_EQ(b.GetPrevIndex(2), 1);
  b.SetPointFlag(1, 32);
  b.OrPointFlag(1, 64);
  EXPECT_EQ(b.GetPointFlag(1), 96);
  b.RemovePoint(0);
  EXPECT_EQ(b.GetPoint(0).anchor.x, 1);
}

}  // namespace
