// A host that runs job after job - import, file the paths in a RefMap table,
// write the job, delete the table, forget the documents - gets the drawing's
// storage back every round.
#include <gtest/gtest.h>

#include "export_fixture.h"
#include "model/drawing_memory.h"

using namespace rvtest;

namespace {

// One job; returns the drawing's bytes while the job stood.
std::size_t RunJob(const std::string& plot, const std::string& job, const RVPLOTPARAM& param) {
  int16_t index = -1;
  const double scale = 0.025;
  EXPECT_EQ(RvImPLTToRIF(plot.c_str(), 0, &index, &scale), 0u);
  int16_t map = -1;
  EXPECT_EQ(RvGiCreateRefMapTable(&map), 0u);
  RvGiSetRefMapIndex(map);
  void* layer = nullptr;
  EXPECT_EQ(RvGiGetLayer(&layer, 0), 0u);
  void* art = nullptr;
  EXPECT_EQ(RvGiGetArtFirstChild(layer, &art), 0u);
  for (int n = 0; art != nullptr && n < 100; ++n) {
    EXPECT_EQ(RvGiAddRefMapData(map, "K", 2, art), 0u);
    if (RvGiGetArtSibling(art, &art) != 0) art = nullptr;
  }
  EXPECT_EQ(RvExRIFToRVL(job.c_str(), index, &param, nullptr), 0u);
  const std::size_t held = rv::DrawingBytes();
  EXPECT_EQ(RvGiDeleteRefMapTable(), 0u);
  EXPECT_EQ(RvGiDeleteAllDocuments(), 0u);
  return held;
}

TEST(JobCycles, DrawingMemoryStaysFlatOverAThousandJobs) {
  ASSERT_EQ(RvGiDeleteRefMapTable(), 0u);
  ASSERT_EQ(RvGiDeleteAllDocuments(), 0u);
  for (auto setter : {RvGiSetRefMapHatchingSIndex, RvGiSetRefMapHatchingEIndex, RvGiSetRefMapRouterOffsetSIndex,
                      RvGiSetRefMapRouterOffsetEIndex}) {
    setter(-1);
  }
  TempDir dir;
  const std::string plot = dir.file("job.plt"), job = dir.file("job.rvl");
  ASSERT_TRUE(WriteFile(plot, "IN;SP1;PU0,0;PD4000,0,4000,4000,0,4000,0,0;PU800,800;PD1200,800,1200,1200;"
                              "PU2000,2000;CI400;PU100,3000;PD300,3200,500,3000;"));
  RVPLOTPARAM param = Param(1, 0);
  param.sortArts = 1;
  const std::size_t empty = rv::DrawingBytes();
  std::size_t held = 0;
  for (int round = 0; round < 10; ++round) held = RunJob(plot, job, param);
  const std::size_t settled = rv::DrawingBytes();
  const std::size_t settledStorage = rv::DrawingStorageBytes();
  EXPECT_GT(held, settled + 1000) << "a job holds its drawing";
  EXPECT_LE(settled, empty + 1000) << "and gives it back";
  for (int round = 10; round < 1000; ++round) {
    RunJob(plot, job, param);
    if (HasFailure()) return;
  }
  EXPECT_EQ(rv::DrawingBytes(), settled);
  EXPECT_EQ(rv::DrawingStorageBytes(), settledStorage) << "the documents' storage goes with them";
  EXPECT_FALSE(ReadFile(job).empty());
}

}  // namespace
