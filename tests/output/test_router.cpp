// Router jobs byte for byte, worked out by hand: depth passes, offsets made
// by the host, micro joints and tiled jobs.
//
// Classes 5 and 12 mirror x over the job's width and write y first, so the
// line (0,0)-(30,0) comes out as (0,30) ... (0,0).
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "drawing_text.h"
#include "export_fixture.h"

namespace {

using namespace rvtest;

// One pass of a milling condition: Tool "3", Thickness 10, WDZUnit 2.
CLCondition Pass(double cuttingDepth, bool depth = true) {
  CLCondition c{};
  std::strcpy(c.Tool, "3");
  c.Thickness = 10.0, c.WDZUnit = 2;
  c.hasCuttingDepth = depth ? 1 : 0, c.CuttingDepth = cuttingDepth;
  return c;
}

struct OffsetLog {
  std::vector<double> offsets;
  void* art = nullptr;           // what each call hands back (null: the art itself)
  uint32_t code = 0;             // what each call returns
};

uint32_t MakeOffset(void* user, void* art, double offset, void** result) {
  auto& log = *static_cast<OffsetLog*>(user);
  log.offsets.push_back(offset);
  *result = offset == 0.0 || log.art == nullptr ? art : log.art;
  return log.code;
}

void OnMessage(void* context, const char* text, const char* title) {
  static_cast<std::vector<std::string>*>(context)->push_back(std::string(title) + ": " + text);
}

int gCancelAt = -1;  // the step call that cancels
int gSteps = 0;
void CancellingStep(void*, int16_t, int32_t* cancel) {
  if (gSteps++ == gCancelAt) *cancel = 1;
}

uint32_t NoArt(void*, void*, double, void** result) {
  *result = nullptr;
  return 0;
}

class RouterTest : public ExportTest {
 protected:
  void SetUp() override {
    ExportTest::SetUp();
    RvGiSetRefMapRouterOffsetSIndex(m_map);
    RvGiSetRefMapRouterOffsetEIndex(m_map);
    m_messages.clear();
    RvGiSetMessageFunction(OnMessage, &m_messages);
  }
  void TearDown() override {
    RvGiSetMessageFunction(nullptr, nullptr);
    ExportTest::TearDown();
  }
  // A path under `key` whose plot info names the media `key`.
  void* AddMilled(const std::vector<std::pair<double, double>>& points, bool closed, const char* key = "M") {
    void* path = AddPath(points, closed, key);
    EXPECT_EQ(RvGiSetPathPlotInfo(path, 0, key), 0u);
    return path;
  }
  static RVPLOTPARAM Milling(int16_t dialect) {
    RVPLOTPARAM p = Param(5, dialect);
    p.conditionSource = 1;
    return p;
  }
  std::string Mill(const RVPLOTPARAM& param, OffsetLog* log = nullptr, uint32_t* code = nullptr) {
    return WrittenJob([&](const char* file) {
      return RvExRIFMillingToRVL(file, m_document, &param, nullptr, log, log != nullptr ? MakeOffset : nullptr);
    }, code);
  }
  std::string Tiles(RVPLOTPARAM& param, const std::vector<RVTILE>& tiles, uint32_t* code = nullptr) {
    RVTILEPARAM t{};
    std::strcpy(t.prefix, "T");
    t.tiles = tiles.data(), t.tileCount = int32_t(tiles.size());
    return WrittenJob([&](const char* file) { return RvExRIFTileToRVL(file, m_document, &param, &t, nullptr); }, code);
  }
  static RVTILE Tile(int32_t number, RVRECT frame = {}) {
    RVTILE t{};
    t.number = number;
    t.rects[0] = frame;
    return t;
  }

  std::vector<std::string> m_messages;  // what reached the host's message function
};

// An open line cut in three passes 3, 6 and 6 deep into 10: depths 7, 4, 4.
// Each pass writes its block and moves to the start; the tool rises ("PU;")
// before the depth changes only. Dialect 1 names the tool with its unit and
// counts the depth downward (0.5 - 70 truncates to -69).
TEST_F(RouterTest, DepthPassesFromThicknessAndCuttingDepth) {
  CLCondition passes[3] = {Pass(3), Pass(6), Pass(6)};
  passes[0].hasSpeed = 1, passes[0].SpeedDecimal = 20;
  passes[0].hasRpm = 1, passes[0].Rpm = 18000;
  passes[0].hasZSpeed = 1, passes[0].ZSpeed = 5;
  ASSERT_EQ(RvCLSetCutCondition("M", passes, 3), 0u);
  AddMilled({{0, 0}, {10, 0}}, false);
  const std::string line = "PU0.00,10.00;PD0.00,10.00;PD0.00,0.00;";
  EXPECT_EQ(Mill(Milling(0)), "DF1;SP3;JW100;VS20.0,3;JM18000;JZ70;JV5;" + line +  //
                                  "DF1;SP3;JW100;PU;JZ40;" + line +                 // deeper: lifted first
                                  "DF1;SP3;JW100;JZ40;" + line + "PU;");            // same depth
  EXPECT_EQ(Mill(Milling(1)), "DF1;JT3,2;JW100;VS20.0,3;JM18000;JZ-69;JV5;" + line +
                                  "DF1;JT3,2;JW100;PU;JZ-39;" + line + "DF1;JT3,2;JW100;JZ-39;" + line + "PU;");

  // A cut deeper than the material is held at depth 0; without CuttingDepth
  // no depth is written. RvExRIFToRVL takes the same route.
  passes[1] = Pass(12), passes[2] = Pass(0, false);
  ASSERT_EQ(RvCLSetCutCondition("M", passes, 3), 0u);
  EXPECT_EQ(Export(Milling(0)), "DF1;SP3;JW100;VS20.0,3;JM18000;JZ70;JV5;" + line + "DF1;SP3;JW100;PU;JZ0;" + line +
                                    "DF1;SP3;JW100;" + line + "PU;");

  // Pen only (source 2); no condition at all (source 0); an art without
  // plot info is milled once without a block.
  RVPLOTPARAM p = Milling(0);
  p.conditionSource = 2;
  EXPECT_EQ(Mill(p), "DF1;SP3;" + line + "DF1;SP3;" + line + "DF1;SP3;" + line + "PU;");
  p.conditionSource = 0;
  EXPECT_EQ(Mill(p), line + "PU;");
}

// A closed square milled 2.0 and then 3.0 beside its outline: the host is
// asked for the art at offset 0 at pass 1 and at 0.5 at pass 2, and each
// pass mills the art it got. Equal Milling values ask nothing more and lift
// nothing; CutDirection 1 walks the closed path backward.
TEST_F(RouterTest, OffsetArtsOfAClosedArt) {
  CLCondition passes[3] = {Pass(5), Pass(5), Pass(5)};
  for (CLCondition& c : passes) c.hasMilling = 1, c.Milling = 2.0;
  passes[2].Milling = 3.0;
  ASSERT_EQ(RvCLSetCutCondition("M", passes, 3), 0u);
  AddMilled({{0, 0}, {0, 10}, {10, 10}, {10, 0}}, true);
  OffsetLog log;
  log.art = AddPath({{-1, -1}, {-1, 11}, {11, 11}, {11, -1}}, true, nullptr);  // not filed: no part of the bounds
  const std::string inner = "PU0.00,10.00;PD0.00,10.00;PD10.00,10.00;PD10.00,0.00;PD0.00,0.00;PD0.00,10.00;";
  const std::string outer = "PU-1.00,11.00;PD-1.00,11.00;PD11.00,11.00;PD11.00,-1.00;PD-1.00,-1.00;PD-1.00,11.00;";
  const std::string block = "DF1;SP3;JW100;JZ50;";
  EXPECT_EQ(Mill(Milling(0), &log), block + inner + block + inner + block + outer + "PU;");
  EXPECT_EQ(log.offsets, (std::vector<double>{0.0, 0.5}));

  passes[0].CutDirection = 1;
  ASSERT_EQ(RvCLSetCutCondition("M", passes, 1), 0u);
  log.offsets.clear();
  EXPECT_EQ(Mill(Milling(0), &log),
            block + "PU0.00,10.00;PD0.00,10.00;PD0.00,0.00;PD10.00,0.00;PD10.00,10.00;PD0.00,10.00;PU;");
  EXPECT_EQ(log.offsets, (std::vector<double>{0.0}));

  // A failing callback ends the job with its own code, and the milling
  // message reaches the host; a success without an art gives 0x06001001.
  log.code = 0x12345601u;
  uint32_t code = 0;
  EXPECT_EQ(Mill(Milling(0), &log, &code), "");
  EXPECT_EQ(code, 0x12345601u);
  TempDir dir;
  const RVPLOTPARAM p = Milling(0);
  EXPECT_EQ(RvExRIFMillingToRVL(dir.file("job.rvl").c_str(), m_document, &p, nullptr, nullptr, NoArt), 0x06001001u);
  EXPECT_EQ(m_messages, (std::vector<std::string>(2, "test: JudgeArtforMilling:Error")));
}

// Over the joint from segment 1 to 2 the tool stays at the limit depth 2
// once a pass goes below it (pass 2, depth 0): "JZ20;" before the joint,
// "JZ0;" after it; pass 1 at depth 5 lies above the limit and goes back to
// its own depth only. Each curve writes its first point again. The stretch
// is copied to "MicroJointLayer" at pass 2 and milled after the job with
// that pass, behind a park move 100 beyond the job; then the layer goes.
TEST_F(RouterTest, JointsLiftedAtTheLimitDepthAndCutFreeAfterTheJob) {
  CLCondition passes[2] = {Pass(5), Pass(10)};
  ASSERT_EQ(RvCLSetCutCondition("M", passes, 2), 0u);
  void* line = AddMilled({{0, 0}, {10, 0}, {20, 0}, {30, 0}}, false);
  ASSERT_EQ(RvGiSetArtTag(Children(line).at(0), "RivlenKerflowMicroJointTag", "1,1,2"), 0u);
  int16_t layers = 0;
  ASSERT_EQ(RvGiGetLayerCount(&layers), 0u);
  RVPLOTPARAM p = Milling(0);
  p.jointDepthLimit = 2.0, p.outputMicroJoints = 1, p.parkBeforeJoints = 1;
  const std::string start = "PU0.00,30.00;PD0.00,30.00;PD0.00,20.00;";
  const std::string end = "PD0.00,10.00;PD0.00,0.00;";
  EXPECT_EQ(Mill(p), "DF1;SP3;JW100;JZ50;" + start + "PD0.00,20.00;PD0.00,10.00;JZ50;" + end +
                         "DF1;SP3;JW100;PU;JZ0;" + start + "JZ20;PD0.00,20.00;PD0.00,10.00;JZ0;" + end + "PU;" +
                         "PU100.00,0.00;NR-1;" + "DF1;SP3;JW100;JZ0;PU0.00,20.00;PD0.00,20.00;PD0.00,10.00;PU;");
  EXPECT_EQ(LayerNamed("MicroJointLayer"), nullptr);
  int16_t after = 0;
  ASSERT_EQ(RvGiGetLayerCount(&after), 0u);
  EXPECT_EQ(after, layers);

  // Dialect 1: lifted when the depth lies above the limit, downward words.
  p.dialect = 1, p.outputMicroJoints = 0, p.parkBeforeJoints = 0, p.jointDepthLimit = 4.0;
  EXPECT_EQ(Mill(p), "DF1;JT3,2;JW100;JZ-49;" + start + "JZ-39;PD0.00,20.00;PD0.00,10.00;JZ-49;" + end +
                         "DF1;JT3,2;JW100;PU;JZ0;" + start + "PD0.00,20.00;PD0.00,10.00;JZ0;" + end + "PU;");
  // Without outputMicroJoints the layer stays: one open stretch (10,0)
  // (20,0), tagged with its pass 2, keyed "M".
  const LayerReading joints = ReadLayer(LayerNamed("MicroJointLayer"));
  EXPECT_EQ(joints.Shapes(), "B(10,0 20,0)");
  ASSERT_EQ(joints.paths.size(), 1u);
  EXPECT_EQ(joints.paths[0].closed, 0);
  void* joint = joints.paths[0].art;
  char text[64] = {};
  int32_t value = 0;
  EXPECT_EQ(RvGiGetArtTag(Children(joint).at(0), "RivlenKerflowRepeatTag", text), 0u);
  EXPECT_STREQ(text, "1,2");
  EXPECT_EQ(RvGiGetPathPlotInfo(joint, &value, text), 0u);
  EXPECT_TRUE(value == 1 && std::string(text) == "M");
}

// Which joints are built: none when the limit lies at or below every depth
// (depth 0 with limit 0 too); a closed stretch from segment 0; a stretch over
// the end of a closed path wraps. No joints tagged: the layer never exists
// and outputMicroJoints writes nothing, not even "NR-1;".
TEST_F(RouterTest, JointStretchesAndTheLayerOnlyWhenJointsAreMade) {
  CLCondition passes[1] = {Pass(10)};  // depth 0
  ASSERT_EQ(RvCLSetCutCondition("M", passes, 1), 0u);
  void* square = AddMilled({{0, 0}, {0, 10}, {10, 10}, {10, 0}}, true);
  RVPLOTPARAM p = Milling(0);
  p.outputMicroJoints = 1, p.parkBeforeJoints = 1;
  EXPECT_EQ(Mill(p), "DF1;SP3;JW100;JZ0;PU0.00,10.00;PD0.00,10.00;PD10.00,10.00;PD10.00,0.00;PD0.00,0.00;"
                     "PD0.00,10.00;PU;");

  ASSERT_EQ(RvGiSetArtTag(Children(square).at(0), "RivlenKerflowMicroJointTag", "2,3,1,0,2"), 0u);
  p.outputMicroJoints = 0;
  // Limit 0: nothing built, but the tool goes back to its depth after each
  // joint (segments 3 -> 1 over the end, 0 -> 2), and each curve writes its
  // first point again.
  EXPECT_EQ(Mill(p), "DF1;SP3;JW100;JZ0;PU0.00,10.00;PD0.00,10.00;PD10.00,10.00;JZ0;PD10.00,10.00;PD10.00,0.00;"
                     "JZ0;PD10.00,0.00;PD0.00,0.00;PD0.00,0.00;PD0.00,10.00;PU;");
  EXPECT_EQ(LayerNamed("MicroJointLayer"), nullptr);

  // 3 -> 0 -> 1 over the end, open; 0 -> 2: a stretch from segment 0 is closed.
  p.jointDepthLimit = 0.5;
  Mill(p);
  const LayerReading joints = ReadLayer(LayerNamed("MicroJointLayer"));
  EXPECT_EQ(joints.Shapes(), "B(10,0 0,0 0,10) | B(0,0 0,10 10,10) closed");
  ASSERT_EQ(joints.paths.size(), 2u);
  EXPECT_EQ(joints.paths[0].closed, 0);
}

// Two tiles of heights 5 and 20 from originY 10 with a gap of 3: the second
// starts at 10 + 5 + 3 = 18, and the caller gets 18 + 20 + 3 + 3 = 44. In
// dialect 5 the tiles go last to first and originY grows in that order; the
// final value is the same.
TEST_F(RouterTest, TwoTilesAndTheFinalOriginY) {
  AddPath({{0, 0}, {0, 5}}, false, "T1");
  AddPath({{0, 100}, {0, 120}}, false, "T2");
  const std::vector<RVTILE> tiles = {Tile(1), Tile(2)};
  RVPLOTPARAM p = Param(6, 0);
  p.originY = 10, p.tileGap = 3;
  EXPECT_EQ(Tiles(p, tiles), "PU10.00,0.00;PD10.00,0.00;PD15.00,0.00;PU;PU18.00,0.00;PD18.00,0.00;PD38.00,0.00;PU;");
  EXPECT_EQ(p.originY, 44.0);
  p = Param(6, 5);
  p.originY = 10, p.tileGap = 3;
  EXPECT_EQ(Tiles(p, tiles), "PU\rPA10,0\rPD\rPA10,0\rPD\rPA30,0\rPU\rPU\rPA33,0\rPD\rPA33,0\rPD\rPA38,0\rPU\r");
  EXPECT_EQ(p.originY, 44.0);

  // A quarter turn lays the tile's width along y: tile 3 is 8 wide and 20
  // high, so it grows originY by 8 and the gap.
  AddPath({{0, 100}, {8, 100}, {8, 120}}, false, "T3");
  p = Param(6, 0);
  p.rotation = 1.5707963705062866, p.tileGap = 3;
  Tiles(p, {Tile(3)});
  EXPECT_NEAR(p.originY, 14.0, 1e-9);

  // No tiles: nothing written, originY grows by the gap once.
  p = Param(6, 0);
  p.originY = 10, p.tileGap = 3;
  EXPECT_EQ(Tiles(p, {}), "");
  EXPECT_EQ(p.originY, 13.0);
}

// A router's tile goes through the milling writer unsorted and through the
// cutting writer sorted (its block of pen, speed, pressure and offset).
// A count of tiles without tiles is refused.
TEST_F(RouterTest, RouterTilesSortedAndUnsorted) {
  CLCondition passes[1] = {Pass(3)};
  ASSERT_EQ(RvCLSetCutCondition("M", passes, 1), 0u);
  void* path = AddPath({{0, 0}, {0, 5}}, false, "T1");
  ASSERT_EQ(RvGiSetPathPlotInfo(path, 0, "M"), 0u);
  const std::string line = "PU0.00,0.00;PD0.00,0.00;PD5.00,0.00;PU;";
  RVPLOTPARAM p = Milling(0);
  EXPECT_EQ(Tiles(p, {Tile(1)}), "DF1;SP3;JW100;JZ70;" + line);
  p = Milling(0);
  p.sortArts = 1;
  EXPECT_EQ(Tiles(p, {Tile(1)}), "SP3;VS0,3;ZF0,3;ZO0.00;" + line);

  RVTILEPARAM none{};
  none.tileCount = 2;
  TempDir dir;
  EXPECT_EQ(RvExRIFTileToRVL(dir.file("job.rvl").c_str(), m_document, &p, &none, nullptr), 0x06001001u);
  EXPECT_EQ(RvExRIFTileToRVL(dir.file("job.rvl").c_str(), m_document, &p, nullptr, nullptr), 0x06001001u);
}

// Tile 1 with the frame rectangle (-2,-1)-(4,6): the tile is placed by the
// union with its arts, so (x, y) -> (x + 2, y + 11), and the frame is drawn
// round (0,10)-(6,17) after the tile's arts; the job frame follows with the
// margins. originY grows by the height 7, the gap and twice the margin.
TEST_F(RouterTest, TileFramesAndTheJobFrame) {
  AddPath({{0, 0}, {0, 5}}, false, "T1");
  RVPLOTPARAM p = Param(6, 0);
  p.originY = 10, p.tileGap = 3, p.drawTileFrames = 1;
  EXPECT_EQ(Tiles(p, {Tile(1, Rect(-2, -1, 4, 6))}),
            "PU11.00,2.00;PD11.00,2.00;PD16.00,2.00;PU;"
            "PU10.00,0.00;PD10.00,6.00;PD17.00,6.00;PD17.00,0.00;PD10.00,0.00;PU10.00,0.00;");
  EXPECT_EQ(p.originY, 23.0);
  p = Param(6, 0);
  p.drawFrame = 1, p.frameMarginX = p.frameMarginY = 1;
  EXPECT_EQ(Tiles(p, {Tile(1)}), "PU1.00,1.00;PD1.00,1.00;PD6.00,1.00;PU;"
                                  "PU7.00,0.00;PD7.00,2.00;PD0.00,2.00;PD0.00,0.00;PD7.00,0.00;PU7.00,0.00;");
  EXPECT_EQ(p.originY, 7.0);
}

// The both-sides message reaches the host as spelled: a tagged art whose
// pieces can't be placed beside it (it was unlinked) fails to split, and the
// cutting writer goes on without it.
TEST_F(RouterTest, BothSidesMessageReachesTheHost) {
  void* path = AddPath({{0, 0}, {0, 10}, {10, 10}, {10, 0}}, true, "A");
  ASSERT_EQ(RvGiSetArtTag(path, "RivlenKerflowBothSidesCutTag", ""), 0u);
  void* unlinked = path;
  ASSERT_EQ(RvGiDeleteArt(&unlinked), 0u);
  Export(Param(6, 0));
  EXPECT_EQ(m_messages, (std::vector<std::string>{"test: EntryBothSidesCutInfo:Error"}));
}

// A cancel while writing gives 0x06001F01: the file holds what was written,
// the caller's originY stays, the milling message reaches the host, and
// nothing of the drawing goes (the offset art and the layers stay).
TEST_F(RouterTest, CancelWhileWritingKeepsTheCallersState) {
  AddPath({{0, 0}, {0, 5}}, false, "T1");
  AddPath({{0, 100}, {0, 120}}, false, "T2");
  RvGiSetProgressFunction(CancellingStep, nullptr, nullptr, nullptr, nullptr);
  gSteps = 0, gCancelAt = 0;  // after the first art
  RVPLOTPARAM p = Param(6, 0);
  p.originY = 10, p.tileGap = 3;
  uint32_t code = 0;
  EXPECT_EQ(Tiles(p, {Tile(1), Tile(2)}, &code), "PU10.00,0.00;PD10.00,0.00;PD15.00,0.00;PU;");
  EXPECT_EQ(code, 0x06001F01u);
  EXPECT_EQ(p.originY, 10.0);

  SetUp();
  RvGiSetProgressFunction(CancellingStep, nullptr, nullptr, nullptr, nullptr);
  CLCondition passes[1] = {Pass(5)};
  ASSERT_EQ(RvCLSetCutCondition("M", passes, 1), 0u);
  void* square = AddMilled({{0, 0}, {0, 10}, {10, 10}, {10, 0}}, true);
  OffsetLog log;
  log.art = AddPath({{-1, -1}, {-1, 11}, {11, 11}, {11, -1}}, true, nullptr);
  int16_t layers = 0;
  ASSERT_EQ(RvGiGetLayerCount(&layers), 0u);
  gSteps = 0, gCancelAt = 0;
  Mill(Milling(0), &log, &code);
  EXPECT_EQ(code, 0x06001F01u);
  EXPECT_EQ(m_messages, (std::vector<std::string>{"test: JudgeArtforMilling:Error"}));
  int16_t after = 0;
  ASSERT_EQ(RvGiGetLayerCount(&after), 0u);
  EXPECT_EQ(after, layers);
  void* parent = nullptr;
  EXPECT_EQ(RvGiGetArtParent(square, &parent), 0u);
  EXPECT_EQ(parent, m_layer);
  EXPECT_EQ(RvGiGetArtParent(log.art, &parent), 0u);
  EXPECT_EQ(parent, m_layer);
}

}  // namespace
