#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frame/frame.h"
#include "model/art.h"

using namespace rv;

namespace {

std::vector<std::string>* gDestroyed = nullptr;

// A group that reports its destruction, to check ownership and order.
class NoisyGroup : public CRvGroup {
 public:
  explicit NoisyGroup(std::string name) : m_name(std::move(name)) {}
  ~NoisyGroup() override {
    if (gDestroyed) gDestroyed->push_back(m_name);
  }
  std::string m_name;
};

RVBEZIERPOINT Anchor(double x, double y) {
  RVBEZIERPOINT p{};
  p.anchor = p.in = p.out = RVPOINT{x, y};
  return p;
}

TEST(ArtTree, ContainersFilterChildrenSilently) {
  CRvPath path;
  auto group = std::make_unique<CRvGroup>();
  EXPECT_FALSE(path.AddChild(1, group.get()));
  EXPECT_EQ(path.ChildCount(), 0u);
  auto bez = std::make_unique<CRvBezier>();
  EXPECT_TRUE(path.AddChild(1, bez.release()));
  EXPECT_TRUE(path.AddChild(0, new CRvArc));
  EXPECT_TRUE(path.AddChild(1, new CRvSpline));
  EXPECT_EQ(path.GetChild(0)->GetType(), kArtArc);
  EXPECT_EQ(path.GetChild(1)->GetType(), kArtSpline);
  EXPECT_EQ(path.GetPointTotal(), 0);

  CRvCompound compound;
  EXPECT_FALSE(compound.AddChild(1, group.get()));
  EXPECT_TRUE(compound.AddChild(1, new CRvPath));
  CRvPath refused;
  EXPECT_FALSE(compound.AddChild(5, &refused)) << "unknown where links nothing";
  CRvLayer layer;
  EXPECT_TRUE(layer.AddChild(1, group.release()));
  EXPECT_EQ(layer.ChildCount(), 1u);
}

TEST(ArtTree, PositionsAndRelativesWalkTheList) {
  CRvGroup g;
  EXPECT_EQ(g.GetChild(0), nullptr);
  EXPECT_EQ(g.GetChild(1), nullptr);
  auto* a = new CRvGroup;
  auto* b = new CRvGroup;
  auto* c = new CRvGroup;
  auto* d = new CRvGroup;
  g.AddChild(1, b);
  g.AddChild(0, a);
  auto posB = *g.FindChild(b);
  g.InsertChild(2, posB, d);  // behind b
  g.InsertChild(3, posB, c);  // in front of b: a c b d
  EXPECT_EQ(g.GetChild(0), a);
  EXPECT_EQ(g.GetChild(1), d);
  EXPECT_EQ(g.GetChild(2), nullptr);
  auto posA = *g.FindChild(a);
  auto posD = *g.FindChild(d);
  EXPECT_EQ(g.GetRelative(2, posA), c);
  EXPECT_EQ(g.GetRelative(3, posA), nullptr);
  EXPECT_EQ(g.GetRelative(2, posD), nullptr);
  EXPECT_EQ(g.GetRelative(3, posB), c);
  EXPECT_EQ(g.GetRelative(0, posD), a);
  EXPECT_EQ(g.GetRelative(1, posA), d);
  // Unlinking keeps the art alive and the other positions valid.
  g.RemoveChild(*g.FindChild(c));
  EXPECT_EQ(g.GetRelative(2, posA), b);
  EXPECT_FALSE(g.FindChild(c).has_value());
  delete c;
  EXPECT_FALSE(CRvBezier().FindChild(a).has_value());
}

TEST(ArtTree, LayerRemovesOnlyItsOwnEntries) {
  CRvLayer layer, other;
  auto* art = new CRvGroup;
  auto* foreign = new CRvGroup;
  layer.AddChild(1, art);
  other.AddChild(1, foreign);
  layer.RemoveChild(*other.FindChild(foreign));
  EXPECT_EQ(other.ChildCount(), 1u);
  EXPECT_EQ(layer.ChildCount(), 1u);
}

TEST(ArtTree, DestroyingALayerDestroysItsSubtreeInListOrder) {
  std::vector<std::string> destroyed;
  gDestroyed = &destroyed;
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
  gDestroyed = nullptr;
  std::vector<std::string> expected{"zero", "first", "first.child", "second"};
  EXPECT_EQ(destroyed, expected);
}

TEST(ArtTree, ReleasedListsDoNotDestroy) {
  std::vector<std::string> destroyed;
  gDestroyed = &destroyed;
  auto* kept = new NoisyGroup("kept");
  {
    CRvGroup holder;
    holder.AddChild(1, kept);
    holder.m_children.ReleaseOwnership();
  }
  EXPECT_TRUE(destroyed.empty());
  delete kept;
  gDestroyed = nullptr;
  EXPECT_EQ(destroyed.size(), 1u);
}

TEST(ArtTree, PathColoursFollowTheirUseRules) {
  CRvPath path;
  RVCOLOR out{nullptr, 9, {9, 9, 9, 9}};
  EXPECT_FALSE(path.GetColor(2, out));
  EXPECT_EQ(out.kind, 9);
  EXPECT_EQ(path.GetColorName(2), "None");
  path.SetColorName(1, "ignored");  // no record: nothing happens
  EXPECT_EQ(path.GetColorName(1), "None");

  RVCOLOR fountain{nullptr, 2, {}};
  EXPECT_EQ(Guard([&] { path.SetColor(2, fountain, "f"); }), 0x05000A01u);
  EXPECT_EQ(Guard([&] { path.SetColor(1, fountain, "f"); }), 0u);
  RVCOLOR rgb{nullptr, 1, {10, 20, 30, 0}};
  EXPECT_EQ(Guard([&] { path.SetColor(3, rgb, "x"); }), 0x05000A01u);
  EXPECT_EQ(Guard([&] { path.SetColor(2, rgb, "R=10,G=20,B=30"); }), 0u);
  ASSERT_TRUE(path.GetColor(2, out));
  EXPECT_EQ(out.kind, 1);
  EXPECT_EQ(out.c[2], 30);
  EXPECT_EQ(path.GetColorName(2), "R=10,G=20,B=30");
  path.SetColorName(2, "Black");
  EXPECT_EQ(path.GetColorName(2), "Black");
  EXPECT_EQ(Guard([&] { path.GetColor(0, out); }), 0x05000901u);
  EXPECT_EQ(Guard([&] { path.GetColorName(3); }), 0x05000901u);
  EXPECT_EQ(Guard([&] { path.SetColorName(0, "x"); }), 0x06000A01u);
}

TEST(ArtTree, LayerColourAndName) {
  CRvLayer layer;
  EXPECT_EQ(Guard([&] { layer.GetColorName(); }), 0x03000901u);
  RVCOLOR c{nullptr, 1, {0, 0, 0, 0}};
  layer.SetColor(c, "R=0,G=0,B=0");
  RVCOLOR out{};
  EXPECT_TRUE(layer.GetColor(out));
  EXPECT_EQ(out.kind, 1);
  EXPECT_EQ(layer.GetColorName(), "R=0,G=0,B=0");
  layer.SetName("Layer1");
  EXPECT_EQ(layer.GetName(), "Layer1");
}

TEST(ArtTree, CopiesFollowTheCopyingRules) {
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
  RVCOLOR rgb{nullptr, 1, {1, 2, 3, 0}};
  source->SetColor(2, rgb, "stroke");
  source->AddChild(1, new CRvBezier);

  std::unique_ptr<CRvArt> copy = CopyArt(*source);
  auto* path = static_cast<CRvPath*>(copy.get());
  EXPECT_EQ(path->m_parent, &layer);
  EXPECT_EQ(path->m_closed, 1);
  EXPECT_EQ(path->m_clockwise, 2);
  EXPECT_EQ(path->m_matrix.tx, 4);
  EXPECT_EQ(path->m_bounds.right, 3);
  EXPECT_EQ(path->ChildCount(), 0u);
  EXPECT_TRUE(path->m_tags.empty());
  EXPECT_EQ(path->AttrFlags(), 0);
  EXPECT_EQ(path->GetColorName(2), "stroke");
  EXPECT_NE(path->m_stroke.get(), source->m_stroke.get());

  CRvBezier bez;
  bez.AddPoint(Anchor(1, 1));
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

TEST(ArtTree, AttributeWordAndPlotInfoStartEmpty) {
  CRvGroup g;
  EXPECT_EQ(g.AttrFlags(), 0);
  EXPECT_EQ(g.StartSegment(), 0);
  EXPECT_EQ(g.GetPlotInfo(), nullptr);
  PlotInfo& info = g.EnsurePlotInfo();
  EXPECT_EQ(info.patternId, -1);
  EXPECT_EQ(info.vcutElement, -1);
  EXPECT_EQ(info.vcutValue, 0);
  EXPECT_EQ(g.m_attrOwned, 1);
  g.EnsureAttr().word = 0x00050007;
  EXPECT_EQ(g.AttrFlags(), 7);
  EXPECT_EQ(g.StartSegment(), 5);
}

TEST(ArtTree, TagsAreOrderedBytewise) {
  CRvGroup g;
  for (const char* key : {"b", "a", "\xC3\xA9", "ab", "B", ""}) g.SetTag(key, key);
  g.SetTag("a", "again");
  std::vector<std::string> keys;
  for (const auto& [k, v] : g.m_tags) keys.push_back(k);
  std::vector<std::string> expected{"", "B", "a", "ab", "b", "\xC3\xA9"};
  EXPECT_EQ(keys, expected);
  EXPECT_EQ(g.GetTag("a"), "again");
  EXPECT_EQ(Guard([&] { g.GetTag("missing"); }), 0x06001A01u);
}

TEST(ArtTree, BezierPointsAndIndexes) {
  CRvBezier b;
  b.AddPoint(Anchor(1, 0));
  b.InsertPoint(0, Anchor(0, 0));
  b.InsertPoint(-3, Anchor(-1, 0));
  b.InsertPoint(99, Anchor(3, 0));
  b.InsertPoint(3, Anchor(2, 0));
  ASSERT_EQ(b.GetPointCount(), 5);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(b.GetPoint(i).anchor.x, i - 1);
  EXPECT_EQ(b.GetNextIndex(4), 0);
  EXPECT_EQ(b.GetPrevIndex(0), 4);
  EXPECT_EQ(b.GetNextIndex(1), 2);
  b.ReplacePoint(2, Anchor(7, 7));
  EXPECT_EQ(b.GetPoint(2).anchor.x, 7);
  b.RemovePoint(0);
  EXPECT_EQ(b.GetPoint(0).anchor.x, 0);
  b.SetPointFlag(1, 32);
  b.OrPointFlag(1, 64);
  EXPECT_EQ(b.GetPointFlag(1), 96);
}

}  // namespace
