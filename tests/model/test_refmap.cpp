#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "model/art.h"
#include "model/refmap.h"
#include "rvdataaccess.h"

using namespace rv;

namespace {

constexpr uint32_t kMatchMismatch = 0x05001001u;
constexpr uint32_t kOrderMismatch = 0x06001001u;
using Keys = std::vector<std::string>;
using Arts = std::vector<void*>;
using Rows = std::initializer_list<std::tuple<const char*, uint8_t, void*>>;

// Records what a trace hands over; fails with `failCode` at visit number
// `failAt` (counted from 1).
struct Recorder {
  Arts arts;
  Keys infos;
  int failAt = 0;
  uint32_t failCode = 0;
};

uint32_t Record(void* context, void* art) {
  auto* r = static_cast<Recorder*>(context);
  r->arts.push_back(art);
  return r->failAt != 0 && int(r->arts.size()) == r->failAt ? r->failCode : 0;
}

uint32_t RecordInfo(void* context, void* art, void* userInfo) {
  static_cast<Recorder*>(context)->infos.push_back(userInfo ? static_cast<const char*>(userInfo) : "(null)");
  return Record(context, art);
}

RefMapStore& Store() { return RefMapStore::Instance(); }
template <class T>
T* Add(CRvArt& parent, T* child) {
  EXPECT_TRUE(parent.AddChild(1, child));
  return child;
}

class RefMap : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(RvGiDeleteRefMapTable(), 0u); }
  void TearDown() override {  // every test ends with the frame stack empty
    RvGiDeleteRefMapTable();
    RvGiSetRefMapTileIndex(-1);
    EXPECT_EQ(g_ExceptionContext, nullptr);
  }
  // A new table with (key, info, art) filed in turn.
  static int16_t NewTable(Rows rows = {}) {
    int16_t map = -7;
    EXPECT_EQ(RvGiCreateRefMapTable(&map), 0u);
    for (auto [key, info, art] : rows) EXPECT_EQ(RvGiAddRefMapData(map, key, info, art), 0u);
    return map;
  }
  // Keys of the cut order, as RvGiGetInfoAtCutOrder reads them.
  static Keys CutOrder(int16_t map) {
    Keys keys;
    for (std::size_t i = 0; i < Store().Table(map).cutOrder.size(); ++i) {
      char key[256] = "";
      char info[256] = "";
      RvGiGetInfoAtCutOrder(map, int16_t(i), key, info);
      keys.emplace_back(key);
    }
    return keys;
  }
  static Arts Trace(int16_t map, uint8_t mask, int32_t drill) {
    Recorder r;
    EXPECT_EQ(RvGiRefMapTableTrace(map, mask, &r, Record, drill), 0u);
    return r.arts;
  }
  // Steps the stepwise walk once per row of (result, state after the step).
  static void Steps(int16_t map, int16_t& state, Recorder& r,
                    std::initializer_list<std::pair<uint32_t, int16_t>> rows) {
    for (auto [code, after] : rows) {
      EXPECT_EQ(RvGiRefMapTableOrderTrace(map, 2, &state, &r, Record, 1), code);
      EXPECT_EQ(state, after);
    }
  }
  static Arts Collect(int16_t map, const char* key = nullptr) {
    std::vector<RVINSIDEPATH> list;
    key ? Store().CollectKeyArts(map, key, list) : Store().CollectArts(map, list);
    Arts arts;
    for (const auto& item : list) {
      EXPECT_EQ(item.inside, 0);
      arts.push_back(item.art);
    }
    return arts;
  }
  CRvPath a_, b_, c_, d_;
};

TEST_F(RefMap, RememberedIndexesStartUnsetExceptPlotConditionAndAreOnlyStored) {
  // Each test runs in a process of its own, so this is a fresh store.
  const RefMapStore& s = Store();
  EXPECT_EQ((std::vector<int>{s.refMapIndex, s.layerIndex, s.colorIndex, s.tileIndex, s.routerOffsetSIndex,
                              s.routerOffsetEIndex, s.hatchingSIndex, s.hatchingEIndex}),
            std::vector<int>(8, 0xFFFF));
  EXPECT_EQ((std::vector<int>{RvGiGetRefMapRouterPlotIndex(), RvGiGetRefMapPlotConditionIndex(),
                              RvGiGetRefMapHatchingPlotIndex()}),
            (std::vector<int>{-1, 0, -1}));
  EXPECT_EQ(s.TableCount(), 0u) << "no table has to exist";
}

TEST_F(RefMap, FilingKeepsNewestFirstAndFirstInfo) {
  const int16_t map = NewTable({{"K", 5, &a_}, {"K", 2, &b_}, {"K", 0, &c_}});
  EXPECT_EQ(map, 0);
  EXPECT_EQ(RvGiGetRefMapArtCount(map), 1);
  Recorder uniq;
  EXPECT_EQ(RvGiRefMapTableUniqTrace(map, &uniq, Record), 0u);
  EXPECT_EQ(uniq.arts, (Arts{&c_}));
  EXPECT_EQ(Trace(map, 0, 0), (Arts{&c_, &b_, &a_}));

  uint8_t info = 99;
  EXPECT_EQ(RvGiFindRefMapInfo(map, "K", &info), 0u);
  EXPECT_EQ(info, 5) << "the info of a later filing is ignored";
  EXPECT_EQ(RvGiFindRefMapInfo(map, "missing", &info), 0u);
  EXPECT_EQ(info, 0);
  EXPECT_EQ(RvGiSetRefMapInfo(map, "K", 6), 0u);
  EXPECT_EQ(RvGiSetRefMapInfo(map, "missing", 6), 0u);
  EXPECT_EQ(RvGiFindRefMapInfo(map, "K", &info), 0u);
  EXPECT_EQ(info, 6);
  EXPECT_EQ(RvGiGetRefMapArtCount(map), 1) << "setting info of a missing key adds nothing";
}

TEST_F(RefMap, TracesFollowTheCutOrderMasksAndCollectsTheKeyOrder) {
  // A high byte sorts last; collecting takes output entries (info bit 2) only.
  const int16_t map = NewTable({{"b", 2, &a_}, {"a", 2, &b_}, {"\xE9", 2, &c_}, {"ab", 2, &d_}});
  EXPECT_EQ(Trace(map, 2, 1), (Arts{&a_, &b_, &c_, &d_}));
  EXPECT_EQ(Collect(map), (Arts{&b_, &d_, &a_, &c_}));
  const int16_t out = NewTable({{"on", 3, &a_}, {"on", 0, &b_}, {"off", 5, &c_}});
  EXPECT_EQ(Collect(out), (Arts{&b_, &a_}));
  EXPECT_TRUE(Collect(out, "off").empty());
  EXPECT_TRUE(Collect(out, "missing").empty());

  const int16_t masked = NewTable({{"five", 5, &a_}, {"two", 2, &b_}, {"six", 6, &c_}});
  EXPECT_EQ(Trace(masked, 2, 0), (Arts{&b_, &c_}));
  EXPECT_EQ(Trace(masked, 0, 0).size(), 3u) << "mask 0 takes everything";
  Recorder path;
  EXPECT_EQ(RvGiRefMapTablePathTrace(masked, 4, &path, Record), 0u);
  EXPECT_EQ(path.arts, (Arts{&a_, &c_}));
  Recorder match;
  EXPECT_EQ(RvGiRefMapTableMatchTrace(masked, "five", 2, &match, Record, 1), kMatchMismatch);
  EXPECT_EQ(RvGiRefMapTableMatchTrace(masked, "two", 0, &match, Record, 1), kMatchMismatch) << "mask 0: no match";
  EXPECT_EQ(RvGiRefMapTableMatchTrace(masked, "missing", 2, &match, Record, 1), 0u);
  EXPECT_TRUE(match.arts.empty());
  EXPECT_EQ(RvGiRefMapTableMatchTrace(masked, "six", 2, &match, Record, 1), 0u);
  EXPECT_EQ(match.arts, (Arts{&c_}));
  // The stepwise walk steps over a mismatch with an error and moves on.
  Recorder order;
  int16_t state = 0;
  Steps(masked, state, order, {{kOrderMismatch, 1}, {0, 1}, {0, 2}});
  EXPECT_EQ(order.arts, (Arts{&b_, &c_}));
}

TEST_F(RefMap, DrillingReachesOnlyPathsBelowGroups) {
  // group: p1, compound(p2, p3), group(empty group, bezier, group(p4)), p5
  auto group = std::make_unique<CRvGroup>();
  auto* p1 = Add(*group, new CRvPath);
  auto* compound = Add(*group, new CRvCompound);
  auto* p2 = Add(*compound, new CRvPath);
  auto* p3 = Add(*compound, new CRvPath);
  auto* inner = Add(*group, new CRvGroup);
  Add(*inner, new CRvGroup);
  Add(*inner, new CRvBezier);
  auto* p4 = Add(*Add(*inner, new CRvGroup), new CRvPath);
  Add(*p4, new CRvBezier);  // a path is never entered
  auto* p5 = Add(*group, new CRvPath);
  CRvGroup pathless;
  Add(pathless, new CRvGroup);
  CRvCompound lone;
  auto* p6 = Add(lone, new CRvPath);

  const int16_t map = NewTable({{"G", 2, group.get()}, {"E", 2, &pathless}, {"C", 2, &lone}, {"P", 2, &a_}});
  EXPECT_EQ(Trace(map, 2, 1), (Arts{p1, p2, p3, p4, p5, p6, &a_}));
  EXPECT_EQ(Trace(map, 2, 0), (Arts{group.get(), &pathless, &lone, &a_}));
  Recorder passed;
  EXPECT_EQ(RvGiRefMapTablePathTrace(map, 2, &passed, Record), 0u);
  EXPECT_EQ(passed.arts, Trace(map, 2, 0));
  Recorder one;
  EXPECT_EQ(RvGiRefMapTableMatchTrace(map, "G", 2, &one, Record, 1), 0u);
  EXPECT_EQ(one.arts, (Arts{p1, p2, p3, p4, p5}));
  // Collecting counts every path below a group once, under the group.
  EXPECT_EQ(Collect(map, "G"), Arts(5, group.get()));
  EXPECT_EQ(Collect(map).size(), 5u + 0u + 1u + 1u);
}

TEST_F(RefMap, CallbackResultEndsTheTraceAndIsReturned) {
  const int16_t map = NewTable({{"A", 2, &a_}, {"B", 2, &b_}, {"C", 2, &c_}});
  Recorder r{{}, {}, 2, 0x12345601u};
  EXPECT_EQ(RvGiRefMapTableTrace(map, 0, &r, Record, 1), 0x12345601u);
  EXPECT_EQ(r.arts.size(), 2u);
  EXPECT_EQ(gGetLastError(), 0x12345601u);
  Recorder u{{}, {}, 1, 7};
  EXPECT_EQ(RvGiRefMapTableUniqTrace(map, &u, Record), 7u);
  EXPECT_EQ(u.arts.size(), 1u);
  // The stepwise walk stays on the entry whose callback failed.
  Recorder o{{}, {}, 2, 9};
  int16_t state = 0;
  Steps(map, state, o, {{0, 1}, {9, 1}, {0, 1}, {0, 2}});
  EXPECT_EQ(o.arts, (Arts{&a_, &b_, &b_, &c_}));

  // On an empty table, and after the end, the stepwise walk does nothing; a
  // new start (or a null state) goes back to the front.
  const int16_t empty = NewTable();
  const int16_t single = NewTable({{"A", 2, &a_}});
  Recorder s;
  state = 0;
  Steps(empty, state, s, {{0, 0}});
  Steps(single, state, s, {{0, 2}, {0, 2}});
  EXPECT_EQ(s.arts, (Arts{&a_}));
  state = 0;
  EXPECT_EQ(RvGiRefMapTableOrderTrace(single, 2, &state, &s, Record, 1), 0u);
  EXPECT_EQ(RvGiRefMapTableOrderTrace(single, 2, nullptr, &s, Record, 1), 0u);
  EXPECT_EQ(s.arts, (Arts{&a_, &a_, &a_}));
}

TEST_F(RefMap, CutOrderMovesReversesAndIsInitialised) {
  const int16_t map = NewTable({{"A", 2, &a_}, {"B", 2, &b_}, {"C", 2, &c_}});
  const std::tuple<const char*, int32_t, int32_t, Keys> moves[] = {
      {"C", 0, 0, {"C", "A", "B"}}, {"C", 2, 0, {"A", "B", "C"}},  {"A", 1, 0, {"B", "A", "C"}},
      {"C", -5, 0, {"C", "B", "A"}}, {"C", 40, 0, {"B", "A", "C"}}, {"D", 0, -1, {"B", "A", "C"}}};
  for (const auto& [key, position, result, keys] : moves) {
    EXPECT_EQ(RvGiChangeCutOrder(map, key, position), result) << key << " to " << position;
    EXPECT_EQ(CutOrder(map), keys);
  }
  EXPECT_EQ(Trace(map, 2, 1), (Arts{&b_, &a_, &c_}));
  // Reversing toggles the flag, and twice gives the order back; initialising
  // makes the cut order the insertion order again and leaves the flag.
  const std::pair<int, Keys> reversals[] = {{1, {"C", "A", "B"}}, {0, {"B", "A", "C"}}, {1, {"C", "A", "B"}}};
  for (const auto& [reversed, keys] : reversals) {
    RvGiReverseRefMapCurOrder(map);
    EXPECT_EQ(Store().GetReversed(map), reversed);
    EXPECT_EQ(CutOrder(map), keys);
  }
  RvGiInitializeCutOrder();
  EXPECT_EQ(CutOrder(map), (Keys{"A", "B", "C"}));
  EXPECT_EQ(Store().GetReversed(map), 1);
  RvGiDeleteRefMapTable();
  RvGiInitializeCutOrder();  // no tables: nothing happens
}

TEST_F(RefMap, TileOrderByNumber) {
  EXPECT_EQ(RvGiRegistTileCutOrder("Tile", 3), -1) << "no tile table set";
  const int16_t other = NewTable({{"Tile1", 2, &a_}});
  const int16_t map = NewTable();
  for (const char* key : {"Tile1", "Tile2", "Tile10", "Tile3", "Tile01", "Tilex", "Other"}) {
    RvGiAddRefMapData(map, key, 2, &a_);
  }
  RvGiSetRefMapTileIndex(map);
  EXPECT_EQ(RvGiRegistTileCutOrder("Tile", 3), 0);
  EXPECT_EQ(CutOrder(map), (Keys{"Tile1", "Tile2", "Tile3"}));
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
  const int16_t map = NewTable({{"A", 2, &a_}, {"B", 2, &b_}});
  char text[] = "first";
  EXPECT_EQ(RvGiSetRefMapUserInfo(map, "A", 1, text), 0u);
  std::strcpy(text, "later");
  auto info = [&](const char* key) {
    uint64_t value = 1;
    EXPECT_EQ(RvGiGetRefMapUserInfo(map, key, &value), 0u);
    return reinterpret_cast<const char*>(uintptr_t(value));
  };
  const char* first = info("A");
  ASSERT_NE(first, nullptr);
  EXPECT_STREQ(first, "first");
  EXPECT_EQ(info("B"), nullptr);
  EXPECT_EQ(info("missing"), nullptr);
  EXPECT_EQ(RvGiSetRefMapUserInfo(map, "missing", 1, text), 0u);
  // A second text doesn't release the first one; another type stores only the type.
  EXPECT_EQ(RvGiSetRefMapUserInfo(map, "A", 1, const_cast<char*>("second")), 0u);
  EXPECT_STREQ(first, "first");
  EXPECT_EQ(RvGiSetRefMapUserInfo(map, "A", 2, const_cast<char*>("ignored")), 0u);
  EXPECT_EQ(Store().Table(map).Find("A")->userInfoType, 2);
  char key[16] = "";
  char userInfo[16] = "untouched";
  RvGiGetInfoAtCutOrder(map, 0, key, userInfo);
  EXPECT_EQ(std::string(key) + "|" + userInfo, "A|second");
  std::strcpy(userInfo, "untouched");
  RvGiGetInfoAtCutOrder(map, 1, key, userInfo);
  EXPECT_EQ(std::string(key) + "|" + userInfo, "B|untouched");
  EXPECT_THROW(RvGiGetInfoAtCutOrder(map, 2, key, userInfo), std::out_of_range);
  EXPECT_THROW(RvGiGetInfoAtCutOrder(map, -1, key, userInfo), std::out_of_range);
  // Each entry owns its copy of a text set for all.
  EXPECT_EQ(RvGiSetAllRefMapUserInfo(map, 1, const_cast<char*>("all")), 0u);
  EXPECT_NE(info("A"), info("B"));
  Recorder r;
  EXPECT_EQ(RvGiRefMapTableTraceWithInfo(map, 2, &r, RecordInfo, 1), 0u);
  EXPECT_EQ(r.infos, (Keys{"all", "all"}));
  EXPECT_EQ(r.arts, (Arts{&a_, &b_}));
}

TEST_F(RefMap, TableIndexesOutsideTheListThrowAndTheLibraryGoesOn) {
  NewTable();
  NewTable();
  const int16_t last = NewTable({{"mine", 2, &a_}});
  RvGiSetRefMapIndex(2);
  // Deleting one table moves the later ones down; the remembered indexes stay.
  EXPECT_EQ(RvGiDeleteSpecificRefMapTable(0), 0u);
  EXPECT_EQ(Store().TableCount(), 2u);
  EXPECT_EQ(RvGiGetRefMapArtCount(last - 1), 1);
  EXPECT_EQ(Store().refMapIndex, 2);
  RvGiSetRefMapIndex(-1);
  EXPECT_EQ(NewTable(), 2);

  Recorder r;
  EXPECT_THROW(RvGiRefMapTableTrace(3, 0, &r, Record, 1), std::out_of_range);
  EXPECT_THROW(RvGiRefMapTableOrderTrace(-1, 0, nullptr, &r, Record, 1), std::out_of_range);
  EXPECT_THROW(RvGiAddRefMapData(3, "k", 2, &a_), std::out_of_range);
  EXPECT_THROW(RvGiGetRefMapArtCount(-1), std::out_of_range);
  EXPECT_THROW(RvGiReverseRefMapCurOrder(3), std::out_of_range);
  EXPECT_THROW(RvGiChangeCutOrder(3, "k", 0), std::out_of_range);
  EXPECT_THROW(RvGiDeleteSpecificRefMapTable(3), std::out_of_range);
  EXPECT_THROW(Store().GetReversed(3), std::out_of_range);
  EXPECT_THROW(RvGiRefMapTableUniqTrace(4, &r, Record), std::out_of_range);
  EXPECT_EQ(RvGiAddRefMapData(0, "k", 2, &a_), 0u);
  EXPECT_EQ(Trace(0, 0, 1), (Arts{&a_}));
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
    RvGiAddRefMapData(m->map, ("new" + std::to_string(m->calls)).c_str(), 2, art);  // and a new key
  }
  return 0;
}

TEST_F(RefMap, WalkSurvivesCallbacksThatChangeTables) {
  const int16_t map = NewTable({{"K", 2, &a_}, {"K", 2, &b_}, {"L", 2, &c_}});
  Meddler grow{map, 0, false};
  EXPECT_EQ(RvGiRefMapTableTrace(map, 2, &grow, Meddle, 1), 0u);
  EXPECT_EQ(grow.calls, 3) << "the walk covers what was there when it began";
  EXPECT_EQ(RvGiGetRefMapArtCount(map), 2 + 3);
  Meddler wipe{map, 0, true};
  EXPECT_EQ(RvGiRefMapTableTrace(map, 2, &wipe, Meddle, 1), 0u);
  EXPECT_EQ(wipe.calls, 5 + 1 + 3) << "K, L and the three new keys";
  EXPECT_EQ(Store().TableCount(), 0u);
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
  EXPECT_EQ(r.arts, (Arts{&a_, &a_, &a_})) << "the null art is never passed";
  EXPECT_EQ(RvGiRefMapTableTrace(0, 0, &r, nullptr, 1), 0u);
  EXPECT_EQ(RvGiFindRefMapInfo(0, nullptr, nullptr), 0u);
  EXPECT_EQ(RvGiSetRefMapUserInfo(0, "", 1, nullptr), 0u);
  EXPECT_EQ(Store().Table(0).Find("")->userInfo, nullptr);
  RvGiGetInfoAtCutOrder(0, 0, nullptr, nullptr);
  EXPECT_EQ(Collect(0).size(), 1u);
}

}  // namespace
