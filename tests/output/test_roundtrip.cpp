// Exports read back by the plot file import, the export's entry checks, the
// start-point pass and the sort objects on their own.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "drawing_text.h"
#include "export_fixture.h"
#include "geometry/affine.h"
#include "output/art_sort.h"
#include "output/rvl_format.h"

namespace {

using rvtest::ExportTest;
using rvtest::Param;

using rvtest::Children;

// Class 1 writes x first and neither mirrors nor moves a drawing that starts
// at (0,0): the plot file holds the drawing in device units of 0.025 mm, and
// the import gives each anchor back within a device unit.
TEST_F(ExportTest, RoundTripThroughThePlotImport) {
  AddPath({{0, 0}, {0, 10.3}, {20.45, 10.3}, {20.45, 0.2}}, true, "A");
  AddPath({{3.3, 4.4}, {17.77, 8.88}, {12.5, 2.2}}, false, "B");
  const std::vector<std::vector<RVPOINT>> want = {{{0, 0}, {0, 10.3}, {20.45, 10.3}, {20.45, 0.2}, {0, 0}},
                                                  {{3.3, 4.4}, {17.77, 8.88}, {12.5, 2.2}}};
  const double unit = 0.025;
  for (int16_t dialect : {0, 2}) {
    SCOPED_TRACE(dialect);
    RVPLOTPARAM p = Param(1, dialect);
    p.deviceUnit = unit;
    rvtest::TempDir dir;
    ASSERT_TRUE(rvtest::WriteFile(dir.file("job.rvl"), Export(p)));
    ASSERT_EQ(RvImPLTToRIF(dir.file("job.rvl").c_str(), 0, nullptr, &unit), 0u);
    void* layer = nullptr;
    ASSERT_EQ(RvGiGetLayer(&layer, 0), 0u);
    std::vector<std::vector<RVPOINT>> got;  // the anchors of each path, repeated points once
    for (void* path : Children(layer)) {
      got.emplace_back();
      for (void* component : Children(path)) {
        int32_t count = 0;
        EXPECT_EQ(RvGiGetPathSegmentCount(component, &count), 0u);
        for (int32_t i = 0; i < count; ++i) {
          RVBEZIERPOINT q{};
          EXPECT_EQ(RvGiGetBezierPoint(component, i, &q), 0u);
          if (got.back().empty() || rv::Distance(got.back().back(), q.anchor) > 0) got.back().push_back(q.anchor);
        }
      }
    }
    ASSERT_EQ(got.size(), want.size());
    for (std::size_t k = 0; k < want.size(); ++k) {
      ASSERT_EQ(got[k].size(), want[k].size()) << "path " << k;
      for (std::size_t i = 0; i < want[k].size(); ++i) {
        EXPECT_LE(rv::Distance(got[k][i], want[k][i]), unit) << "path " << k << " point " << i;
      }
    }
  }
}

TEST_F(ExportTest, EntryChecks) {
  AddPath({{0, 0}, {10, 0}}, false, "A");
  rvtest::TempDir dir;
  const std::string file = dir.file("job.rvl");
  RVPLOTPARAM p = Param(6, 0);
  EXPECT_EQ(RvExRIFToRVL(file.c_str(), 5, &p, nullptr), 0x09001D01u);  // no such document: no file
  EXPECT_FALSE(std::filesystem::exists(file));
  EXPECT_EQ(RvExRIFToRVL(file.c_str(), m_document, nullptr, nullptr), 0x06001001u);
  EXPECT_EQ(RvExRIFToRVL(dir.file("no/such/folder.rvl").c_str(), m_document, &p, nullptr), 0x01000201u);
  EXPECT_EQ(RvExRIFToRVL(nullptr, m_document, &p, nullptr), 0x01000201u);
  // The silent dialect makes the file and leaves it empty; an old file is truncated.
  ASSERT_TRUE(rvtest::WriteFile(file, "old bytes"));
  p.dialect = 3;
  EXPECT_EQ(RvExRIFToRVL(file.c_str(), m_document, &p, nullptr), 0u);
  EXPECT_TRUE(std::filesystem::exists(file));
  EXPECT_EQ(rvtest::ReadFile(file), "");
  rv::CRvRVLFormat format(p);  // the format writes only
  EXPECT_EQ(format.ImportToRIF(), 0x01001101u);
}

// The start-point pass moves a closed path's start to the corner where its
// first straight side of the greatest length begins, in classes 1, 4, 11.
TEST_F(ExportTest, StartPointPassInItsClasses) {
  AddPath({{5, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}, {5, 0}}, true, "A");  // from the middle of the bottom side
  RVPLOTPARAM p = Param(1, 0);
  EXPECT_EQ(Export(p), "PU5.00,0.00;PD5.00,0.00;PD10.00,0.00;PD10.00,10.00;PD0.00,10.00;PD0.00,0.00;"
                       "PD5.00,0.00;PD5.00,0.00;PU;");
  p.plotterClass = 6;  // not a class of the pass
  p.optimizeStartPoints = 1;
  EXPECT_EQ(Export(p), "PU0.00,5.00;PD0.00,5.00;PD0.00,10.00;PD10.00,10.00;PD10.00,0.00;PD0.00,0.00;"
                       "PD0.00,5.00;PD0.00,5.00;PU;");
  // The first side of length 10 leaves (10,0); the start is stored twice again.
  p.plotterClass = 1;
  EXPECT_EQ(Export(p), "PU10.00,0.00;PD10.00,0.00;PD10.00,10.00;PD0.00,10.00;PD0.00,0.00;PD5.00,0.00;"
                       "PD10.00,0.00;PD10.00,0.00;PU;");
}

std::vector<void*> Arts(const rv::CRvArtSort& sort) {
  std::vector<void*> out;
  sort.forEachArt([&](void* art) { out.push_back(art); });
  return out;
}

// Walks of one key, of the whole table, of a range of tables.
TEST_F(ExportTest, SortObjectsCollectTheirWalk) {
  void* a = AddPath({{0, 0}, {5, 0}}, false, "A");
  void* b1 = AddPath({{60, 0}, {65, 0}}, false, "B");
  void* b2 = AddPath({{0, 2}, {5, 2}}, false, "B");
  void* x = AddPath({{10, 10}, {11, 10}}, false, "X", 2 | 16);
  const RVPLOTPARAM p = Param(6, 0);
  rv::CRvArtSortByBounds bounds(rv::kIdentity, p);
  // Arts of a key stand newest first; b2's block (key 0) comes before b1's (key 1).
  EXPECT_EQ(bounds.SortByKey(nullptr, "B", 1), 0u);
  EXPECT_EQ(Arts(bounds), (std::vector<void*>{b2, b1}));
  EXPECT_EQ(bounds.SortByKey(nullptr, "none", 1), 0u);
  EXPECT_EQ(bounds.size(), 0u);
  // The excluded art goes behind all others with its fixed key.
  EXPECT_EQ(bounds.SortTable(nullptr, 1), 0u);
  EXPECT_EQ(Arts(bounds), (std::vector<void*>{a, b2, b1, x}));
  EXPECT_EQ(bounds.m_entries.back().key, 52500);
  rv::CRvArtSortByBounds range(rv::kIdentity, p);
  EXPECT_EQ(range.SortTableRange(nullptr, m_map, m_map, 1), 0u);
  EXPECT_EQ(range.size(), 4u);
  rv::CRvBlockBubbleSort blocks(rv::kIdentity, p);
  EXPECT_EQ(blocks.SortTable(nullptr, 1), 0u);
  EXPECT_EQ(blocks.m_entries.back().key, 10500);
  EXPECT_EQ(blocks.m_entries.back().art, x);
}

}  // namespace
