#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "model/art.h"
#include "model/refmap.h"
#include "rvdataaccess.h"

using namespace rv;

namespace {

constexpr uint32_t kMatchMismatch = 0x05001001u;
constexpr uint32_t kOrderMismatch = 0x06001001u;

// Records what a trace hands over; fails with `failCode` at visit number
// `failAt` (counted from 1).
struct Recorder {
  std::vector<void*> arts;
  std::vector<std::string> infos;
  int failAt = 0;
  uint32_t failCode = 0;
};

uint32_t Record(void* context, void* art) {
  auto* r = static_cast<Recorder*>(context);
  r->arts.push_back(art);
  if (r->failAt != 0 && int(r->arts.size()) == r->failAt) return r->failCode;
  return 0;
}

uint32_t RecordInfo(void* context, void* art, void* userInfo) {
  auto* r = static_cast<Recorder*>(context);
  r->infos.push_back(userInfo != nullptr ? static_cast<const char*>(userInfo) : "(null)");
  return Record(context, art);
}

class RefMap : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(RvGiDeleteRefMapTable(), 0u); }
  void TearDown() override {
    RvGiDeleteRefMapTable();
    RvGiSetRefMapTileIndex(-1);
  }

  int16_t NewTable() {
    int16_t map = -7;
    EXPECT_EQ(RvGiCreateRefMapTable(&map), 0u);
    return map;
  }

  // Keys of the cut order, as RvGiGetInfoAtCutOrder reads them.
  std::vector<std::string> CutOrder(int16_t map) {
    std::vector<std::string> keys;
    const auto& queue = RefMapStore::Instance().Table(map).cutOrder;
    for (std::size_t i = 0; i < queue.size(); ++i) {
      char key[256] = "";
      char info[256] = "";
      RvGiGetInfoAtCutOrder(map, int16_t(i), key, info);
      keys.emplace_back(key);
    }
    return keys;
  }

  std::vector<std::string> InsertOrder(int16_t map) {
    std::vector<std::string> keys;
    for (const auto& pos : RefMapStore::Instance().Table(map).insertOrder) keys.push_back(pos->first);
    return keys;
  }

  CRvPath a_, b_, c_, d_;
};

using Keys = std::vector<std::string>;

TEST_F(RefMap, RememberedIndexesStartUnsetExceptPlotCondition) {
  // Each test runs in a process of its own, so this is a fresh store.
  RefMapStore& store = RefMapStore::Instance();
  EXPECT_EQ(RvGiGetRefMapPlotConditionIndex(), 0);
  EXPECT_EQ(RvGiGetRefMapHatchingPlotIndex(), -1);
  EXPECT_EQ(RvGiGetRefMapRouterPlotIndex(), -1);
  for (uint16_t value : {store.refMapIndex, store.layerIndex, store.colorIndex, store.tileIndex,
                         store.routerOffsetSIndex, store.routerOffsetEIndex, store.hatchingSIndex,
                         store.hatchingEIndex}) {
    EXPECT_EQ(value, 0xFFFF);
  }

  EXPECT_EQ(RvGiSetRefMapIndex(1), 0u);
  EXPECT_EQ(RvGiSetRefMapLayerIndex(2), 0u);
  EXPECT_EQ(RvGiSetRefMapColorIndex(3), 0u);
  EXPECT_EQ(RvGiSetRefMapTileIndex(4), 0u);
  EXPECT_EQ(RvGiSetRefMapRouterOffsetSIndex(5), 0u);
  EXPECT_EQ(RvGiSetRefMapRouterOffsetEIndex(6), 0u);
  EXPECT_EQ(RvGiSetRefMapRouterPlotIndex(7), 0u);
  EXPECT_EQ(RvGiSetRefMapPlotConditionIndex(8), 0u);
  EXPECT_EQ(RvGiSetRefMapHatchingSIndex(9), 0u);
  EXPECT_EQ(RvGiSetRefMapHatchingEIndex(10), 0u);
  EXPECT_EQ(RvGiSetRefMapHatchingPlotIndex(11), 0u);
  EXPECT_EQ(store.refMapIndex, 1);
  EXPECT_EQ(store.layerIndex, 2);
  EXPECT_EQ(store.colorIndex, 3);
  EXPECT_EQ(store.tileIndex, 4);
  EXPECT_EQ(store.routerOffsetSIndex, 5);
  EXPECT_EQ(store.routerOffsetEIndex, 6);
  EXPECT_EQ(RvGiGetRefMapRouterPlotIndex(), 7);
  EXPECT_EQ(RvGiGetRefMapPlotConditionIndex(), 8);
  EXPECT_EQ(store.hatchingSIndex, 9);
  EXPECT_EQ(store.hatchingEIndex, 10);
  EXPECT_EQ(RvGiGetRefMapHatchingPlotIndex(), 11);
  // Setters only store: no table has to exist.
  EXPECT_EQ(store.TableCount(), 0u);
}

TEST_F(RefMap, FilingKeepsNewestFirstAndFirstInfo) {
  const int16_t map = NewTable();
  EXPECT_EQ(map, 0);
  EXPECT_EQ(NewTable(), 1);
  EXPECT_EQ(RvGiAddRefMapData(map, "K", 5, &a_), 0u);
  EXPECT_EQ(RvGiAddRefMapData(map, "K", 2, &b_), 0u);
  EXPECT_EQ(RvGiAddRefMapData(map, "K", 0, &c_), 0u);
  EXPECT_EQ(RvGiGetRefMapArtCount(map), 1);
  EXPECT_EQ(RvGiGetRefMapArtCount(1), 0);

  Recorder uniq;
  EXPECT_EQ(RvGiRefMapTableUniqTrace(map, &uniq, Record), 0u);
  EXPECT_EQ(uniq.arts, (std::vector<void*>{&c_}));
  Recorder all;
  EXPECT_EQ(RvGiRefMapTableTrace(map, 0, &all, Record, 0), 0u);
  EXPECT_EQ(all.arts, (std::vector<void*>{&c_, &b_, &a_}));

  uint8_t info = 99;
  EXPECT_EQ(RvGiFindRefMapInfo(map, "K", &info), 0u);
  EXPECT_EQ(info, 5) << "the info of a later filing is ignored";
  info = 99;
  EXPECT_EQ(RvGiFindRefMapInfo(map, "missing", &info), 0u);
  EXPECT_EQ(info, 0);
  EXPECT_EQ(RvGiSetRefMapInfo(map, "K", 6), 0u);
  EXPECT_EQ(RvGiSetRefMapInfo(map, "missing", 6), 0u);
  EXPECT_EQ(RvGiFindRefMapInfo(map, "K", &info), 0u);
  EXPECT_EQ(info, 6);
  EXPECT_EQ(RvGiGetRefMapArtCount(map), 1) << "setting info of a missing key adds nothing";
}

TEST_F(RefMap, TracesFollowInsertionOrderAndCollectFollowsKeyOrder) {
  const int16_t map = NewTable();
  RvGiAddRefMapData(map, "b", 2, &a_);
  RvGiAddRefMapData(map, "a", 2, &b_);
  RvGiAddRefMapData(map, "\xE9", 2, &c_);  // a high byte sorts last
  RvGiAddRefMapData(map, "ab", 2, &d_);
  Recorder r;
  EXPECT_EQ(RvGiRefMapTableTrace(map, 2, &r, Record, 1), 0u);
  EXPECT_EQ(r.arts, (std::vector<void*>{&a_, &b_, &c_, &d_}));

  std::vector<RVINSIDEPATH> list;
  RefMapStore::Instance().CollectArts(map, list);
  ASSERT_EQ(list.size(), 4u);
  EXPECT_EQ(list[0].art, &b_);  // a
  EXPECT_EQ(list[1].art, &d_);  // ab
  EXPECT_EQ(list[2].art, &a_);  // b
  EXPECT_EQ(list[3].art, &c_);  // \xE9
  for (const auto& item : list) EXPECT_EQ(item.inside, 0);
}

TEST_F(RefMap, MaskRulesOfTheTraces) {
  const int16_t map = NewTable();
  RvGiAddRefMapData(map, "five", 5, &a_);
  RvGiAddRefMapData(map, "two", 2, &b_);
  RvGiAddRefMapData(map, "six", 6, &c_);

  Recorder masked;
  EXPECT_EQ(RvGiRefMapTableTrace(map, 2, &masked, Record, 0), 0u);
  EXPECT_EQ(masked.arts, (std::vector<void*>{&b_, &c_}));
  Recorder path;
  EXPECT_EQ(RvGiRefMapTablePathTrace(map, 4, &path, Record), 0u);
  EXPECT_EQ(path.arts, (std::vector<void*>{&a_, &c_}));
  Recorder unmasked;
  EXPECT_EQ(RvGiRefMapTableTrace(map, 0, &unmasked, Record, 0), 0u);
  EXPECT_EQ(unmasked.arts.size(), 3u);

  Recorder match;
  EXPECT_EQ(RvGiRefMapTableMatchTrace(map, "five", 2, &match, Record, 1), kMatchMismatch);
  EXPECT_EQ(RvGiRefMapTableMatchTrace(map, "two", 0, &match, Record, 1), kMatchMismatch)
      << "mask 0 matches nothing here";
  EXPECT_TRUE(match.arts.empty());
  EXPECT_EQ(RvGiRefMapTableMatchTrace(map, "missing", 2, &match, Record, 1), 0u);
  EXPECT_TRUE(match.arts.empty());
  EXPECT_EQ(RvGiRefMapTableMatchTrace(map, "six", 2, &match, Record, 1), 0u);
  EXPECT_EQ(match.arts, (std::vector<void*>{&c_}));

  // The stepwise walk steps over a mismatch with an error and moves on.
  Recorder order;
  int16_t state = 0;
  EXPECT_EQ(RvGiRefMapTableOrderTrace(map, 2, &state, &order, Record, 1), kOrderMismatch);
  EXPECT_EQ(state, 1);
  EXPECT_TRUE(order.arts.empty());
  EXPECT_EQ(RvGiRefMapTableOrderTrace(map, 2, &state, &order, Record, 1), 0u);
  EXPECT_EQ(state, 1);
  EXPECT_EQ(RvGiRefMapTableOrderTrace(map, 2, &state, &order, Record, 1), 0u);
  EXPECT_EQ(state, 2);
  EXPECT_EQ(order.arts, (std::vector<void*>{&b_, &c_}));
  EXPECT_EQ(g_ExceptionContext, nullptr);
}

TEST_F(RefMap, DrillingReachesOnlyPathsBelowGroups) {
  // group: p1, compound(p2, p3), group(empty group, bezier, group(p4)), p5
  auto group = std::make_unique<CRvGroup>();
  auto* p1 = new CRvPath;
  auto* compound = new CRvCompound;
  auto* p2 = new CRvPath;
  auto* p3 = new CRvPath;
  compound->AddChild(1, p2);
  compound->AddChild(1, p3);
  auto* inner = new CRvGroup;
  inner->AddChild(1, new CRvGroup);
  inner->AddChild(1, new CRvBezier);
  auto* deepest = new CRvGroup;
  auto* p4 = new CRvPath;
  p4->AddChild(1, new CRvBezier);  // a path is never entered
  deepest->AddChild(1, p4);
  inner->AddChild(1, deepest);
  auto* p5 = new CRvPath;
  group->AddChild(1, p1);
  group->AddChild(1, compound);
  group->AddChild(1, inner);
  group->AddChild(1, p5);
  CRvGroup pathless;
  pathless.AddChild(1, new CRvGroup);
  CRvCompound lone;
  auto* p6 = new CRvPath;
  lone.AddChild(1, p6);

  const int16_t map = NewTable();
  RvGiAddRefMapData(map, "G", 2, group.get());
  RvGiAddRefMapData(map, "E", 2, &pathless);
  RvGiAddRefMapData(map, "C", 2, &lone);
  RvGiAddRefMapData(map, "P", 2, &a_);

  Recorder drilled;
  EXPECT_EQ(RvGiRefMapTableTrace(map, 2, &drilled, Record, 1), 0u);
  EXPECT_EQ(drilled.arts, (std::vector<void*>{p1, p2, p3, p4, p5, p6, &a_}));
  Recorder flat;
  EXPECT_EQ(RvGiRefMapTableTrace(map, 2, &flat, Record, 0), 0u);
  EXPECT_EQ(flat.arts, (std::vector<void*>{group.get(), &pathless, &lone, &a_}));
  Recorder passed;
  EXPECT_EQ(RvGiRefMapTablePathTrace(map, 2, &passed, Record), 0u);
  EXPECT_EQ(passed.arts, flat.arts);
  Recorder one;
  EXPECT_EQ(RvGiRefMapTableMatchTrace(map, "G", 2, &one, Record, 1), 0u);
  EXPECT_EQ(one.arts, (std::vector<void*>{p1, p2, p3, p4, p5}));

  // Collecting counts every path below a group once, under the group.
  std::vector<RVINSIDEPATH> list;
  RefMapStore::Instance().CollectKeyArts(map, "G", list);
  ASSERT_EQ(list.size(), 5u);
  for (const auto& item : list) EXPECT_EQ(item.art, group.get());
  list.clear();
  RefMapStore::Instance().CollectArts(map, list);
  EXPECT_EQ(list.size(), 5u + 0u + 1u + 1u);
}

TEST_F(RefMap, CollectTakesOnlyOutputEntries) {
  const int16_t map = NewTable();
  RvGiAddRefMapData(map, "on", 3, &a_);
  RvGiAddRefMapData(map, "on", 0, &b_);
  RvGiAddRefMapData(map, "off", 5, &c_);
  std::vector<RVINSIDEPATH> list;
  RefMapStore::Instance().CollectArts(map, list);
  ASSERT_EQ(list.size(), 2u);
  EXPECT_EQ(list[0].art, &b_);
  EXPECT_EQ(list[1].art, &a_);
  list.clear();
  RefMapStore::Instance().CollectKeyArts(map, "off", list);
  RefMapStore::Instance().CollectKeyArts(map, "missing", list);
  EXPECT_TRUE(list.empty());
}

TEST_F(RefMap, CallbackResultEndsTheTraceAndIsReturned) {
  const int16_t map = NewTable();
  RvGiAddRefMapData(map, "A", 2, &a_);
  RvGiAddRefMapData(map, "B", 2, &b_);
  RvGiAddRefMapData(map, "C", 2, &c_);
  Recorder r;
  r.failAt = 2;
  r.failCode = 0x12345601u;
  EXPECT_EQ(RvGiRefMapTableTrace(map, 0, &r, Record, 1), 0x12345601u);
  EXPECT_EQ(r.arts.size(), 2u);
  EXPECT_EQ(gGetLastError(), 0x12345601u);
  EXPECT_EQ(g_ExceptionContext, nullptr);

  Recorder u;
  u.failAt = 1;
  u.failCode = 7;
  EXPECT_EQ(RvGiRefMapTableUniqTrace(map, &u, Record), 7u);
  EXPECT_EQ(u.arts.size(), 1u);

  // The stepwise walk stays on the entry whose callback failed.
  Recorder o;
  o.failAt = 2;
  o.failCode = 9;
  int16_t state = 0;
  EXPECT_EQ(RvGiRefMapTableOrderTrace(map, 2, &state, &o, Record, 1), 0u);
  EXPECT_EQ(state, 1);
  EXPECT_EQ(RvGiRefMapTableOrderTrace(map, 2, &state, &o, Record, 1), 9u);
  EXPECT_EQ(state, 1);
  EXPECT_EQ(RvGiRefMapTableOrderTrace(map, 2, &state, &o, Record, 1), 0u);
  EXPECT_EQ(state, 1);
  EXPECT_EQ(RvGiRefMapTableOrderTrace(map, 2, &state, &o, Record, 1), 0u);
  EXPECT_EQ(state, 2);
  EXPECT_EQ(o.arts, (std::vector<void*>{&a_, &b_, &b_, &c_}));
  EXPECT_EQ(g_ExceptionContext, nullptr);
}

TEST_F(RefMap, OrderTraceOnEmptyTableAndAfterTheEndDoesNothing) {
  const int16_t empty = NewTable();
  const int16_t map = NewTable();
  RvGiAddRefMapData(map, "A", 2, &a_);
  Recorder r;
  int16_t state = 0;
  EXPECT_EQ(RvGiRefMapTableOrderTrace(empty, 2, &state, &r, Record, 1), 0u);
  EXPECT_EQ(state, 0);
  EXPECT_TRUE(r.arts.empty());
  EXPECT_EQ(RvGiRefMapTableOrderTrace(map, 2, &state, &r, Record, 1), 0u);
  EXPECT_EQ(state, 2);
  EXPECT_EQ(RvGiRefMapTableOrderTrace(map, 2, &state, &r, Record, 1), 0u);
  EXPECT_EQ(state, 2);
  EXPECT_EQ(r.arts, (std::vector<void*>{&a_}));
  // A new start goes back to the front.
  state = 0;
  EXPECT_EQ(RvGiRefMapTableOrderTrace(map, 2, &state, &r, Record, 1), 0u);
  EXPECT_EQ(r.arts.size(), 2u);
  EXPECT_EQ(RvGiRefMapTableOrderTrace(map, 2, nullptr, &r, Record, 1), 0u) << "null state starts";
  EXPECT_EQ(r.arts.size(), 3u);
}

TEST_F(RefMap, ChangeCutOrderMovesOneKey) {
  const int16_t map = NewTable();
  RvGiAddRefMapData(map, "A", 2, &a_);
  RvGiAddRefMapData(map, "B", 2, &b_);
  RvGiAddRefMapData(map, "C", 2, &c_);
  EXPECT_EQ(RvGiChangeCutOrder(map, "C", 0), 0);
  EXPECT_EQ(CutOrder(map), (Keys{"C", "A", "B"}));
  EXPECT_EQ(RvGiChangeCutOrder(map, "C", 2), 0);
  EXPECT_EQ(CutOrder(map), (Keys{"A", "B", "C"}));
  EXPECT_EQ(RvGiChangeCutOrder(map, "A", 1), 0);
  EXPECT_EQ(CutOrder(map), (Keys{"B", "A", "C"}));
  EXPECT_EQ(RvGiChangeCutOrder(map, "C", -5), 0);
  EXPECT_EQ(CutOrder(map), (Keys{"C", "B", "A"}));
  EXPECT_EQ(RvGiChangeCutOrder(map, "C", 40), 0);
  EXPECT_EQ(CutOrder(map), (Keys{"B", "A", "C"}));
  EXPECT_EQ(RvGiChangeCutOrder(map, "D", 0), -1);
  EXPECT_EQ(CutOrder(map), (Keys{"B", "A", "C"}));
  EXPECT_EQ(InsertOrder(map), (Keys{"A", "B", "C"}));

  Recorder r;
  RvGiRefMapTableTrace(map, 2, &r, Record, 1);
  EXPECT_EQ(r.arts, (std::vector<void*>{&b_, &a_, &c_}));

  RvGiReverseRefMapCurOrder(map);
  EXPECT_EQ(RefMapStore::Instance().GetReversed(map), 1);
  RvGiInitializeCutOrder();
  EXPECT_EQ(CutOrder(map), (Keys{"A", "B", "C"}));
  EXPECT_EQ(RefMapStore::Instance().GetReversed(map), 1) << "initialising keeps the reversed flag";
}

TEST_F(RefMap, ReverseTwiceRestores) {
  const int16_t map = NewTable();
  RvGiAddRefMapData(map, "A", 2, &a_);
  RvGiAddRefMapData(map, "B", 2, &b_);
  RvGiAddRefMapData(map, "C", 2, &c_);
  EXPECT_EQ(RefMapStore::Instance().GetReversed(map), 0);
  RvGiReverseRefMapCurOrder(map);
  EXPECT_EQ(CutOrder(map), (Keys{"C", "B", "A"}));
  EXPECT_EQ(InsertOrder(map), (Keys{"A", "B", "C"}));
  EXPECT_EQ(RefMapStore::Instance().GetReversed(map), 1);
  RvGiReverseRefMapCurOrder(map);
  EXPECT_EQ(CutOrder(map), (Keys{"A", "B", "C"}));
  EXPECT_EQ(RefMapStore::Instance().GetReversed(map), 0);
  RvGiInitializeCutOrder();
  RvGiDeleteRefMapTable();
  RvGiInitializeCutOrder();  // no tables: nothing happens
}

TEST_F(RefMap, TileOrderByNumber) {
  EXPECT_EQ(RvGiRegistTileCutOrder("Tile", 3), -1) << "no tile table set";
  const int16_t other = NewTable();
  const int16_t map = NewTable();
  for (const char* key : {"Tile1", "Tile2", "Tile10", "Tile3", "Tile01", "Tilex", "Other"}) {
    RvGiAddRefMapData(map, key, 2, &a_);
  }
  RvGiAddRefMapData(other, "Tile1", 2, &a_);
  RvGiSetRefMapTileIndex(map);
  EXPECT_EQ(RvGiRegistTileCutOrder("Tile", 3), 0);
  EXPECT_EQ(CutOrder(map), (Keys{"Tile1", "Tile2", "Tile3"}));
  EXPECT_EQ(InsertOrder(map), (Keys{"Tile1", "Tile2", "Tile3"}));
  RvGiInitializeCutOrder();
  EXPECT_EQ(CutOrder(map), (Keys{"Tile1", "Tile2", "Tile3"})) << "Tile10 left both queues";
  EXPECT_EQ(RvGiGetRefMapArtCount(map), 7) << "the keys themselves stay";
  EXPECT_EQ(CutOrder(other), (Keys{"Tile1"}));

  // Asking for more tiles than exist takes all of them and ends.
  EXPECT_EQ(RvGiRegistTileCutOrder("Tile", 100000), 0);
  EXPECT_EQ(CutOrder(map), (Keys{"Tile1", "Tile2", "Tile3", "Tile10"}));
  EXPECT_EQ(RvGiRegistTileCutOrder("Tile", 0), 0);
  EXPECT_TRUE(CutOrder(map).empty());
  EXPECT_EQ(RvGiRegistTileCutOrder("Nope", 2), 0);
  EXPECT_TRUE(CutOrder(map).empty());

  // A key that "%s%d" can't form in 128 characters never matches.
  const std::string longPrefix(126, 'p');
  RvGiAddRefMapData(map, (longPrefix + "1").c_str(), 2, &a_);
  RvGiAddRefMapData(map, (longPrefix + "12").c_str(), 2, &a_);
  EXPECT_EQ(RvGiRegistTileCutOrder(longPrefix.c_str(), 5), 0);
  EXPECT_EQ(CutOrder(map), (Keys{longPrefix + "1"}));

  RvGiSetRefMapTileIndex(7);
  EXPECT_THROW(RvGiRegistTileCutOrder("Tile", 1), std::out_of_range);
}

TEST_F(RefMap, UserInfoIsACopiedText) {
  const int16_t map = NewTable();
  RvGiAddRefMapData(map, "A", 2, &a_);
  RvGiAddRefMapData(map, "B", 2, &b_);
  char text[] = "first";
  EXPECT_EQ(RvGiSetRefMapUserInfo(map, "A", 1, text), 0u);
  std::strcpy(text, "later");
  uint64_t value = 1;
  EXPECT_EQ(RvGiGetRefMapUserInfo(map, "A", &value), 0u);
  ASSERT_NE(value, 0u);
  const char* first = reinterpret_cast<const char*>(uintptr_t(value));
  EXPECT_STREQ(first, "first");
  EXPECT_EQ(RvGiGetRefMapUserInfo(map, "B", &value), 0u);
  EXPECT_EQ(value, 0u);
  EXPECT_EQ(RvGiGetRefMapUserInfo(map, "missing", &value), 0u);
  EXPECT_EQ(value, 0u);
  EXPECT_EQ(RvGiSetRefMapUserInfo(map, "missing", 1, text), 0u);

  // A second text doesn't release the first one.
  EXPECT_EQ(RvGiSetRefMapUserInfo(map, "A", 1, const_cast<char*>("second")), 0u);
  EXPECT_STREQ(first, "first");
  // Another type stores only the type.
  EXPECT_EQ(RvGiSetRefMapUserInfo(map, "A", 2, const_cast<char*>("ignored")), 0u);
  EXPECT_EQ(RefMapStore::Instance().Table(map).Find("A")->userInfoType, 2);

  char key[16] = "";
  char info[16] = "untouched";
  RvGiGetInfoAtCutOrder(map, 0, key, info);
  EXPECT_STREQ(key, "A");
  EXPECT_STREQ(info, "second");
  std::strcpy(info, "untouched");
  RvGiGetInfoAtCutOrder(map, 1, key, info);
  EXPECT_STREQ(key, "B");
  EXPECT_STREQ(info, "untouched");
  EXPECT_THROW(RvGiGetInfoAtCutOrder(map, 2, key, info), std::out_of_range);
  EXPECT_THROW(RvGiGetInfoAtCutOrder(map, -1, key, info), std::out_of_range);

  EXPECT_EQ(RvGiSetAllRefMapUserInfo(map, 1, const_cast<char*>("all")), 0u);
  uint64_t va = 0, vb = 0;
  RvGiGetRefMapUserInfo(map, "A", &va);
  RvGiGetRefMapUserInfo(map, "B", &vb);
  EXPECT_NE(va, vb) << "each entry owns its copy";
  Recorder r;
  EXPECT_EQ(RvGiRefMapTableTraceWithInfo(map, 2, &r, RecordInfo, 1), 0u);
  EXPECT_EQ(r.infos, (Keys{"all", "all"}));
  EXPECT_EQ(r.arts, (std::vector<void*>{&a_, &b_}));
}

TEST_F(RefMap, DeletingOneTableMovesTheLaterOnesDown) {
  NewTable();
  NewTable();
  const int16_t last = NewTable();
  RvGiAddRefMapData(last, "mine", 2, &a_);
  RvGiSetRefMapIndex(2);
  EXPECT_EQ(RvGiDeleteSpecificRefMapTable(0), 0u);
  EXPECT_EQ(RefMapStore::Instance().TableCount(), 2u);
  EXPECT_EQ(RvGiGetRefMapArtCount(1), 1);
  EXPECT_EQ(RefMapStore::Instance().refMapIndex, 2) << "the remembered indexes stay";
  EXPECT_EQ(NewTable(), 2);
  RvGiSetRefMapIndex(-1);
}

TEST_F(RefMap, TableIndexOutsideTheListThrowsAndTheLibraryGoesOn) {
  NewTable();
  Recorder r;
  EXPECT_THROW(RvGiRefMapTableTrace(1, 0, &r, Record, 1), std::out_of_range);
  EXPECT_EQ(g_ExceptionContext, nullptr);
  EXPECT_THROW(RvGiRefMapTableOrderTrace(-1, 0, nullptr, &r, Record, 1), std::out_of_range);
  EXPECT_THROW(RvGiAddRefMapData(3, "k", 2, &a_), std::out_of_range);
  EXPECT_THROW(RvGiGetRefMapArtCount(-1), std::out_of_range);
  EXPECT_THROW(RvGiReverseRefMapCurOrder(1), std::out_of_range);
  EXPECT_THROW(RvGiChangeCutOrder(1, "k", 0), std::out_of_range);
  EXPECT_THROW(RvGiDeleteSpecificRefMapTable(1), std::out_of_range);
  EXPECT_THROW(RefMapStore::Instance().GetReversed(1), std::out_of_range);
  EXPECT_EQ(g_ExceptionContext, nullptr);

  // Inside a host's own recovery point the stack stays sound too.
  ExceptionInfo info;
  PushExceptionInfo(&info);
  EXPECT_THROW(RvGiRefMapTableUniqTrace(4, &r, Record), std::out_of_range);
  EXPECT_EQ(g_ExceptionContext, &info);
  PopExceptionInfo(&info);
  EXPECT_EQ(g_ExceptionContext, nullptr);

  EXPECT_EQ(RvGiAddRefMapData(0, "k", 2, &a_), 0u);
  EXPECT_EQ(RvGiRefMapTableTrace(0, 0, &r, Record, 1), 0u);
  EXPECT_EQ(r.arts.size(), 1u);
}

// A callback that changes the tables under the walk.
struct Meddler {
  int16_t map = 0;
  int calls = 0;
  bool deleteAll = false;
};

uint32_t Meddle(void* context, void* art) {
  auto* m = static_cast<Meddler*>(context);
  ++m->calls;
  if (m->deleteAll) {
    RvGiDeleteRefMapTable();
  } else {
    RvGiAddRefMapData(m->map, "K", 2, art);  // more arts under the key being walked
    const std::string key = "new" + std::to_string(m->calls);  // and a new key
    RvGiAddRefMapData(m->map, key.c_str(), 2, art);
  }
  return 0;
}

TEST_F(RefMap, WalkSurvivesCallbacksThatChangeTables) {
  const int16_t map = NewTable();
  RvGiAddRefMapData(map, "K", 2, &a_);
  RvGiAddRefMapData(map, "K", 2, &b_);
  RvGiAddRefMapData(map, "L", 2, &c_);
  Meddler grow{map, 0, false};
  EXPECT_EQ(RvGiRefMapTableTrace(map, 2, &grow, Meddle, 1), 0u);
  EXPECT_EQ(grow.calls, 3) << "the walk covers what was there when it began";
  EXPECT_EQ(RvGiGetRefMapArtCount(map), 2 + 3);

  Meddler wipe{map, 0, true};
  EXPECT_EQ(RvGiRefMapTableTrace(map, 2, &wipe, Meddle, 1), 0u);
  EXPECT_EQ(wipe.calls, 5 + 1 + 3) << "K, L and the three new keys";
  EXPECT_EQ(RefMapStore::Instance().TableCount(), 0u);
}

TEST_F(RefMap, NullArgumentsAreHarmless) {
  EXPECT_EQ(RvGiCreateRefMapTable(nullptr), 0u);
  EXPECT_EQ(RvGiAddRefMapData(0, nullptr, 2, nullptr), 0u);  // the empty key, without an art
  EXPECT_EQ(RvGiAddRefMapData(0, "", 2, &a_), 0u);
  EXPECT_EQ(RvGiGetRefMapArtCount(0), 1);
  Recorder r;
  EXPECT_EQ(RvGiRefMapTableTrace(0, 0, &r, Record, 1), 0u);
  EXPECT_EQ(RvGiRefMapTablePathTrace(0, 0, &r, Record), 0u);
  EXPECT_EQ(RvGiRefMapTableUniqTrace(0, &r, Record), 0u);
  EXPECT_EQ(r.arts, (std::vector<void*>{&a_, &a_, &a_})) << "the null art is never passed";
  EXPECT_EQ(RvGiRefMapTableTrace(0, 0, &r, nullptr, 1), 0u);
  EXPECT_EQ(RvGiFindRefMapInfo(0, nullptr, nullptr), 0u);
  EXPECT_EQ(RvGiSetRefMapUserInfo(0, "", 1, nullptr), 0u);
  EXPECT_EQ(RefMapStore::Instance().Table(0).Find("")->userInfo, nullptr);
  RvGiGetInfoAtCutOrder(0, 0, nullptr, nullptr);
  std::vector<RVINSIDEPATH> list;
  RefMapStore::Instance().CollectArts(0, list);
  EXPECT_EQ(list.size(), 1u);
}

}  // namespace
