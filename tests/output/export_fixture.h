// Shared by the output tests: points, rectangles, a parameter block, and a
// small drawing (one layer, a main RefMap table, paths filed under keys)
// exported into a temporary file.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "rvdataaccess.h"
#include "test_support.h"

namespace rvtest {

inline RVBEZIERPOINT Pt(double x, double y) {
  RVBEZIERPOINT p{};
  p.anchor = p.in = p.out = {x, y};
  return p;
}

inline RVRECT Rect(double left, double bottom, double right, double top) { return RVRECT{top, left, right, bottom}; }

// Unit scale, one drawing unit a device unit, a 1000 x 1000 working area.
inline RVPLOTPARAM Param(uint16_t cls, int16_t dialect) {
  RVPLOTPARAM p{};
  p.plotterClass = cls, p.dialect = dialect;
  p.deviceUnit = 1.0, p.scaleX = p.scaleY = 100.0;
  p.curveMaxLength = 31000.0, p.curveTolerance = 0.03;
  p.deviceMaxX = p.deviceMaxY = 1000.0;
  return p;
}

inline CondRecord Condition(const char* tool) {
  CondRecord r{};
  std::strncpy(r.Tool, tool, sizeof r.Tool - 1);
  r.DivideCut.Available = -1;
  return r;
}

// The layer named `name`; null when there is none.
inline void* LayerNamed(const char* name) {
  void* layer = nullptr;
  EXPECT_EQ(RvGiGetLayerFromName(&layer, name), 0u) << name;
  return layer;
}

// Lets `write` make a job in a temporary file and returns the file's bytes;
// `code` gets the result of `write`, which must be 0 without it.
template <class Write>
std::string WrittenJob(Write&& write, uint32_t* code = nullptr) {
  TempDir dir;
  const std::string file = dir.file("job.rvl");
  const uint32_t result = write(file.c_str());
  EXPECT_TRUE(code != nullptr || result == 0u) << std::hex << result;
  if (code != nullptr) *code = result;
  return ReadFile(file);
}

class ExportTest : public ::testing::Test {
 protected:
  void SetUp() override {
    TearDown();  // a clean slate, whatever ran before
    ASSERT_EQ(RvGiCreateDocument(0, &m_document), 0u);
    ASSERT_EQ(RvGiCreateLayer(1, nullptr, &m_layer), 0u);
    ASSERT_EQ(RvGiCreateRefMapTable(&m_map), 0u);
    RvGiSetRefMapIndex(m_map);
    for (auto setter : {RvGiSetRefMapHatchingSIndex, RvGiSetRefMapHatchingEIndex, RvGiSetRefMapRouterOffsetSIndex,
                        RvGiSetRefMapRouterOffsetEIndex}) {
      setter(-1);
    }
  }
  void TearDown() override {
    RvGiSetProgressFunction(nullptr, nullptr, nullptr, nullptr, nullptr);
    ASSERT_EQ(RvGiDeleteRefMapTable(), 0u);
    ASSERT_EQ(RvGiDeleteAllDocuments(), 0u);
    ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  }

  // A path through `points` (handles on the anchors) with attribute flags
  // `flags`, bounds as given or those of the anchors, filed under `key`.
  void* AddPath(const std::vector<std::pair<double, double>>& points, bool closed, const char* key = "K",
                uint8_t flags = 2, const RVRECT* bounds = nullptr) {
    std::vector<RVBEZIERPOINT> records;
    for (auto [x, y] : points) records.push_back(Pt(x, y));
    return AddCurve(records, closed, key, flags, bounds);
  }
  void* AddCurve(const std::vector<RVBEZIERPOINT>& records, bool closed, const char* key = "K", uint8_t flags = 2,
                 const RVRECT* bounds = nullptr) {
    void* path = nullptr;
    void* bezier = nullptr;
    EXPECT_EQ(RvGiCreateArt(4, 5, m_layer, &path), 0u);
    EXPECT_EQ(RvGiCreateArt(2, 5, path, &bezier), 0u);
    RVRECT box = Rect(1e300, 1e300, -1e300, -1e300);
    for (const RVBEZIERPOINT& p : records) {
      EXPECT_EQ(RvGiAddBezierPoint(bezier, &p), 0u);
      box = Rect(std::min(box.left, p.anchor.x), std::min(box.bottom, p.anchor.y), std::max(box.right, p.anchor.x),
                 std::max(box.top, p.anchor.y));
    }
    EXPECT_EQ(RvGiSetPathClosed(path, closed ? 1 : 0), 0u);
    EXPECT_EQ(RvGiSetPathAttrFlag(path, flags), 0u);
    EXPECT_EQ(RvGiSetBoundingBox(path, bounds != nullptr ? bounds : &box), 0u);
    EXPECT_TRUE(key == nullptr || RvGiAddRefMapData(m_map, key, 2, path) == 0u) << key;
    return path;
  }

  // Exports the document and returns the file's bytes (see WrittenJob).
  std::string Export(const RVPLOTPARAM& param, uint32_t* code = nullptr, void* context = nullptr) {
    return WrittenJob([&](const char* file) { return RvExRIFToRVL(file, m_document, &param, context); }, code);
  }

  // Adds a pass with `record` at the end of the passes of media `key`.
  static void AddCondition(const char* key, const CondRecord& record, const ThetaExtension* theta = nullptr) {
    CondPair pair{&record, theta};
    EXPECT_EQ(RvAddCutCondition(key, RvGetRepeatCount(key), &pair), 0u);
  }

  int16_t m_document = -1;
  void* m_layer = nullptr;
  int16_t m_map = -1;
};

}  // namespace rvtest
