// The CL router's pieces that the milling job doesn't show on its own:
// automatic joints, leads, and the clearing's parameters.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "generate/cl_router.h"
#include "model/data_access.h"
#include "rvdataaccess.h"

namespace {

/// A closed square path of side 100 from the origin, counter-clockwise, with
/// attribute flags 7, in a new document's only layer.
rv::CRvArt* Square(double side = 100.0) {
  int16_t document = -1;
  RvGiDeleteAllDocuments();
  RvGiCreateDocument(0, &document);
  void *layer = nullptr, *path = nullptr, *bezier = nullptr;
  RvGiCreateLayer(0, nullptr, &layer);
  RvGiCreateArt(4, 5, layer, &path);
  RvGiCreateArt(2, 5, path, &bezier);
  for (auto [x, y] : std::vector<std::pair<double, double>>{{0, 0}, {side, 0}, {side, side}, {0, side}}) {
    RVBEZIERPOINT p{};
    p.anchor = p.in = p.out = {x, y};
    RvGiSetBezierPoint(bezier, &p);
  }
  RvGiSetPathClosed(path, 1);
  RvGiSetPathAttrFlag(path, 7);
  return static_cast<rv::CRvArt*>(path);
}

/// The first component of a path.
rv::CRvArt* First(rv::CRvArt* path) {
  void* bezier = nullptr;
  RvGiGetArtFirstChild(path, &bezier);
  return static_cast<rv::CRvArt*>(bezier);
}

std::string JointTag(rv::CRvArt* path) {
  char text[256] = {};
  if (RvGiGetArtTag(First(path), "RivlenKerflowMicroJointTag", text) != 0) return "none";
  return text;
}

std::string Anchors(rv::CRvArt* path) {
  rv::CRvArt* bezier = First(path);
  int32_t n = 0;
  RvGiGetPathSegmentCount(bezier, &n);
  std::string s;
  for (int32_t i = 0; i < n; ++i) {
    RVBEZIERPOINT p{};
    RvGiGetPathSegment(bezier, i, &p);
    char buf[64];
    std::snprintf(buf, sizeof buf, "%s%g,%g", s.empty() ? "" : " ", p.anchor.x + 0.0, p.anchor.y + 0.0);
    s += buf;
  }
  return s;
}

TEST(ClRouter, AutomaticJointsStandAtEvenSpacingFromTheStart) {
  rv::CRvCLRouter& router = rv::CRvCLRouter::Instance();
  struct Row {
    double side, length;
    int32_t count;
    std::string tag, anchors;
  };
  const std::vector<Row> rows = {
      // Four sides of 100, two joints of 5: from the start to 5 along, and
      // from 200 to 205. A split by length lands within 1.0 of its length
      // (the curve kernel's tolerance): 5 along the first side gives
      // (4.29688,0); 100 along the second (its whole length) gives
      // (100,99.2526), where the second joint begins (index 3), and it ends 5
      // further, at (95.7031,100) (index 5).
      {100, 5, 2, "2,0,1,3,5", "0,0 4.29688,0 100,0 100,99.2526 100,100 95.7031,100 0,100"},
      // Too short for two joints of 11 ((11 + 10) * 2 = 42 above 40): one tag
      // from the start to the last point, nothing split.
      {10, 11, 2, "1,0,3", "0,0 10,0 10,10 0,10"},
      // One joint of 30: the test of shortness needs more than one joint, so
      // the walk runs; the joint ends 30 along, in the third side (index 3).
      {10, 30, 1, "1,0,3", "0,0 10,0 10,10 0.507812,10 0,10"},
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(r.tag);
    rv::CRvArt* path = Square(r.side);
    router.AutomaticJoints(First(path), 0, true, r.length, r.count);
    EXPECT_EQ(JointTag(path), r.tag);
    EXPECT_EQ(Anchors(path), r.anchors);
  }
}

TEST(ClRouter, LeadLeavesFromTheBisectorBesideTheCut) {
  rv::CRvCLRouter& router = rv::CRvCLRouter::Instance();
  // Clockwise square from (0,100): the lead point lies outside, 2.0 from the
  // start on the bisector of the corner. The three records follow the last
  // point and the start moves onto the first lead point.
  rv::CRvArt* path = Square();
  RvGiReverseBezierPoint(First(path));  // (0,100) (100,100) (100,0) (0,0)
  router.Lead(path, 0, false);
  EXPECT_EQ(Anchors(path), "0,100 100,100 100,0 0,0 0,100 -1.41421,101.414 -1.41421,101.414");
  int16_t start = -1;
  RvGiGetPathStartSegment(First(path), &start);
  EXPECT_EQ(start, 5);
  // Counter-clockwise, a hole's sense: the lead point lies inside.
  path = Square();
  router.Lead(path, 0, false);
  EXPECT_EQ(Anchors(path), "0,0 100,0 100,100 0,100 0,0 1.41421,1.41421 1.41421,1.41421");
}

TEST(ClRouter, ClearingWithoutTheWorkingLayerOrKeyFailsWithItsCode) {
  RVPLOTPARAM param{};
  std::strcpy(param.conditionKey, "NOT THERE");
  Square();
  int16_t index = -1;
  RvGiGetActiveDocumentIndex(&index);
  EXPECT_EQ(RvExCLCreateHatching(uint16_t(index), &param), 0x03001001u);  // no "CLTempFileLayer"
  EXPECT_EQ(RvExCLCreateHatching(uint16_t(index), nullptr), 0x06001001u);
  EXPECT_EQ(RvExCLCreateHatching(uint16_t(index + 1), &param), 0x09001D01u);
}

}  // namespace
