// Whole exports, byte for byte, worked out by hand from the command table.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "rvdataaccess.h"
#include "test_support.h"

namespace {

struct Drawing {
  int16_t document = -1;
  void* layer = nullptr;
  int16_t map = -1;
};

RVBEZIERPOINT Pt(double x, double y) {
  RVBEZIERPOINT p{};
  p.anchor = {x, y};
  p.in = p.anchor;
  p.out = p.anchor;
  return p;
}

// A fresh document with one layer and a main table.
Drawing NewDrawing() {
  Drawing d;
  EXPECT_EQ(RvGiCreateDocument(0, &d.document), 0u);
  EXPECT_EQ(RvGiCreateLayer(1, nullptr, &d.layer), 0u);
  EXPECT_EQ(RvGiDeleteRefMapTable(), 0u);
  EXPECT_EQ(RvGiCreateRefMapTable(&d.map), 0u);
  RvGiSetRefMapIndex(d.map);
  return d;
}

// A path of straight segments through `points`, flags 7, bounds set, filed
// under `key`.
void* AddPath(Drawing& d, const std::vector<std::pair<double, double>>& points, bool closed,
              const char* key = "K") {
  void* path = nullptr;
  EXPECT_EQ(RvGiCreateArt(4, 5, d.layer, &path), 0u);
  void* bezier = nullptr;
  EXPECT_EQ(RvGiCreateArt(2, 5, path, &bezier), 0u);
  RVRECT box{-1e300, 1e300, -1e300, 1e300};
  for (auto [x, y] : points) {
    RVBEZIERPOINT p = Pt(x, y);
    EXPECT_EQ(RvGiSetBezierPoint(bezier, &p), 0u);
    box.left = std::min(box.left, x);
    box.right = std::max(box.right, x);
    box.bottom = std::min(box.bottom, y);
    box.top = std::max(box.top, y);
  }
  EXPECT_EQ(RvGiSetPathClosed(path, closed ? 1 : 0), 0u);
  EXPECT_EQ(RvGiSetPathAttrFlag(path, 7), 0u);
  EXPECT_EQ(RvGiSetBoundingBox(path, &box), 0u);
  EXPECT_EQ(RvGiAddRefMapData(d.map, key, 2, path), 0u);
  return path;
}

RVPLOTPARAM Param(uint16_t cls, int16_t dialect) {
  RVPLOTPARAM p{};
  p.plotterClass = cls;
  p.dialect = dialect;
  p.deviceUnit = 1.0;
  p.scaleX = p.scaleY = 100.0;
  p.curveMaxLength = 31000.0;
  p.curveTolerance = 0.03;
  return p;
}

std::string Export(const Drawing& d, const RVPLOTPARAM& param, uint32_t expectCode = 0) {
  rvtest::TempDir dir;
  const std::string file = dir.file("job.rvl");
  EXPECT_EQ(RvExRIFToRVL(file.c_str(), d.document, &param, nullptr), expectCode);
  return rvtest::ReadFile(file);
}

}  // namespace
