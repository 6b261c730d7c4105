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
  // A layer removes only entries of its own list; an unknown `where` links
  // nothing and leaves the art with the caller.
  CRvLayer layer, other;
  CRvGroup refused;
  EXPECT_FALSE(layer.AddChild(5, &refused));
  layer.AddChild(1, new CRvGroup);
  auto* foreign = new CRvGroup;
  other.AddChild(1, foreign);
  layer.RemoveChild(*other.FindChild(foreign));
  EXPECT_EQ(other.ChildCount(), 1u);
  EXPECT_EQ(layer.ChildCount(), 1u);
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
