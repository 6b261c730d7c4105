// The cut preview: the working layer of one Bezier per path, the window
// matrix, and the point lists per pass, read through the exports as a host
// does. Expected points are worked out by hand from the window's scale.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

#include "drawing_text.h"
#include "rvdataaccess.h"
#include "test_support.h"

namespace {

struct Preview {
  std::vector<RVCUTPREVIEWPASS> passes;
  std::vector<RVPOINT> points;

  /// Points first .. first + count - 1 as text.
  std::string Text(std::size_t first, std::size_t count) const {
    std::string s;
    for (std::size_t i = first; i < first + count && i < points.size(); ++i) {
      s += (s.empty() ? "" : " ") + rvtest::PointText(points[i].x, points[i].y);
    }
    return s;
  }
};

/// Imports plot commands (scale 1) into a new document, converts, sets the
/// matrix and makes the data; `stopAt` >= 0 sets attribute flag 16 on that
/// path of the preview layer first.
Preview MakePreview(const std::string& commands, uint16_t orientation, double width, double height,
                    int stopAt = -1) {
  rvtest::TempDir dir;
  const std::string file = dir.file("job.plt");
  rvtest::WriteFile(file, commands);
  int16_t index = -1;
  const double scale = 1.0;
  EXPECT_EQ(RvImPLTToRIF(file.c_str(), 0, &index, &scale), 0u);
  EXPECT_EQ(RvExCLConvertToBezierArt(), 0u);
  if (stopAt >= 0) {
    void *layer = nullptr, *path = nullptr;
    RvGiGetLayerFromName(&layer, "PreviewDataLayer");
    RvGiGetArtFirstChild(layer, &path);
    for (int i = 0; i < stopAt; ++i) RvGiGetArtSibling(path, &path);
    RvGiSetPathAttrFlag(path, 7 | 16);
  }
  EXPECT_EQ(RvExCLSetCutPreviewMatrix(orientation, width, height), 0u);
  EXPECT_EQ(RvExCLMakeCutPreviewData(uint16_t(index)), 0u);
  Preview p;
  int32_t passCount = -1, pointCount = -1;
  RvExCLGetCutPreviewDataCount(&passCount, &pointCount);
  p.passes.resize(std::size_t(passCount));
  p.points.resize(std::size_t(pointCount));
  RvExCLGetCutPreviewData(p.passes.data());
  RvExCLGetCutPreviewPointData(p.points.data());
  EXPECT_EQ(RvExCLInitializeCutPreviewData(), 0u);
  RvExCLGetCutPreviewDataCount(&passCount, &pointCount);
  EXPECT_EQ(passCount + pointCount, 0);
  return p;
}

constexpr const char* kSquare = "PD10,0,10,10,0,10,0,0;";

TEST(ClCutPreview, SquarePassesAreFlattenedUnderTheWindowMatrix) {
  // 10 x 10 in a window of 25: scale 0.5, offsets (24 - 5) / 2 = 9.5. The
  // import closes the square with a fifth point on the first, so the pass has
  // five curves: four sides of 5 units, halved once (5 isn't below 5), and a
  // closing curve of no length.
  {
    SCOPED_TRACE("y down");
    const Preview p = MakePreview(kSquare, 0, 25.0, 25.0);
    ASSERT_EQ(p.passes.size(), 1u);
    EXPECT_EQ(p.passes[0].pointCount, 14);
    EXPECT_EQ(p.passes[0].closed, 1);
    EXPECT_EQ(p.passes[0].clockwise, 0);  // drawn counter-clockwise, y up
    EXPECT_EQ(p.passes[0].passType, 0);   // no path element values
    EXPECT_EQ(p.Text(0, 14),
              "9.5,14.5 12,14.5 14.5,14.5 14.5,14.5 14.5,12 14.5,9.5 14.5,9.5 12,9.5 9.5,9.5 "
              "9.5,9.5 9.5,12 9.5,14.5 9.5,14.5 9.5,14.5");
  }
  {
    SCOPED_TRACE("y up");
    const Preview p = MakePreview(kSquare, 2, 25.0, 25.0);
    EXPECT_EQ(p.Text(0, 4), "9.5,9.5 12,9.5 14.5,9.5 14.5,9.5");
  }
  {
    // 16 x 8 turned: the extents exchange to 8 x 16, so a window of 28 x 36
    // gives scale 1 (unturned it would be 0.5), offsets 9.5, and
    // (x, y) -> (17.5 - y, 25.5 - x). A side of 16 has six chords, one of 8
    // two (see the next test for how a straight curve is halved).
    SCOPED_TRACE("turned");
    const Preview p = MakePreview("PD16,0,16,8,0,8,0,0;", 1, 28.0, 36.0);
    ASSERT_EQ(p.passes.size(), 1u);
    ASSERT_EQ(p.passes[0].pointCount, 7 + 3 + 7 + 3 + 2);
    const std::vector<RVPOINT> expected = {{17.5, 25.5}, {17.5, 23.0}, {17.5, 9.5}, {17.5, 9.5}, {13.5, 9.5}};
    const std::vector<std::size_t> at = {0, 1, 6, 7, 8};
    for (std::size_t k = 0; k < at.size(); ++k) {
      // The turn is a single-precision angle: its cosine isn't quite 0.
      EXPECT_NEAR(p.points[at[k]].x, expected[k].x, 1e-5) << at[k];
      EXPECT_NEAR(p.points[at[k]].y, expected[k].y, 1e-5) << at[k];
    }
  }
}

TEST(ClCutPreview, CircleAndSquareGivePassesInOrderUntilTheStopFlag) {
  // A square, then a circle of radius 10 round the origin with path element
  // values (0, 1): the job spans -10 .. 10, so a window of 60 gives scale 2,
  // offsets 9.5, and (x, y) -> (2x + 29.5, 29.5 - 2y).
  const std::string job = std::string(kSquare) + "PU;JT17;VT0,1;CI10;";
  const Preview p = MakePreview(job, 0, 60.0, 60.0);
  ASSERT_EQ(p.passes.size(), 2u);
  // Square: sides of 20. A straight curve with its handles on its anchors is
  // halved in its parameter, so its point at t lies 3t^2 - 2t^3 along it:
  // chords end at t = 1/4 (3.125), 3/8 (6.328125), 1/2 and symmetrically,
  // six chords a side, and the closing curve of no length gives two points.
  EXPECT_EQ(p.passes[0].pointCount, 4 * 7 + 2);
  EXPECT_EQ(p.Text(0, 4), "29.5,29.5 32.625,29.5 35.828125,29.5 39.5,29.5");
  // Circle: seven points (six curves of 60 degrees and one of no length),
  // every flat point on the mapped circle, from (49.5, 29.5) and back.
  const RVCUTPREVIEWPASS& circle = p.passes[1];
  EXPECT_EQ(circle.closed, 1);
  EXPECT_EQ(circle.clockwise, 0);
  EXPECT_EQ(circle.passType, 2);
  ASSERT_EQ(p.points.size(), std::size_t(p.passes[0].pointCount + circle.pointCount));
  const std::size_t first = std::size_t(p.passes[0].pointCount);
  EXPECT_EQ(p.Text(first, 1), "49.5,29.5");
  EXPECT_EQ(p.Text(p.points.size() - 2, 2), "49.5,29.5 49.5,29.5");
  EXPECT_GE(circle.pointCount, 6 * 5 + 2);  // curves of about 21 units, chords below 5
  for (std::size_t i = first; i < p.points.size(); ++i) {
    EXPECT_NEAR(std::hypot(p.points[i].x - 29.5, p.points[i].y - 29.5), 20.0, 0.01) << i;
  }
  // The pass getter, in and out of range.
  const Preview again = MakePreview(job, 0, 60.0, 60.0, 1);  // the circle stops the walk
  EXPECT_EQ(again.passes.size(), 1u);
  // A second make appends; the per-pass getter reads the same passes.
  rvtest::TempDir dir;
  rvtest::WriteFile(dir.file("job.plt"), job);
  int16_t index = -1;
  const double scale = 1.0;
  ASSERT_EQ(RvImPLTToRIF(dir.file("job.plt").c_str(), 0, &index, &scale), 0u);
  ASSERT_EQ(RvExCLConvertToBezierArt(), 0u);
  ASSERT_EQ(RvExCLSetCutPreviewMatrix(0, 60.0, 60.0), 0u);
  ASSERT_EQ(RvExCLMakeCutPreviewData(uint16_t(index)), 0u);
  ASSERT_EQ(RvExCLMakeCutPreviewData(uint16_t(index)), 0u);
  struct Row {
    int32_t index, points;
    uint8_t clockwise, closed;
    uint16_t type;
  };
  const std::vector<Row> rows = {
      // index, points, clockwise, closed, pass type
      {-1, 0, 0, 0, 0},
      {0, 30, 0, 1, 0},
      {1, circle.pointCount, 0, 1, 2},
      {2, 30, 0, 1, 0},
      {4, 0, 0, 0, 0},
  };
  for (const Row& r : rows) {
    int32_t points = -1;
    uint8_t clockwise = 9, closed = 9;
    uint16_t type = 9;
    EXPECT_EQ(RvExCLGetCutPreviewDataPerPass(r.index, &points, &clockwise, &closed, &type), 0u);
    EXPECT_EQ(std::tie(points, clockwise, closed, type), std::tie(r.points, r.clockwise, r.closed, r.type)) << r.index;
  }
  EXPECT_EQ(RvExCLInitializeCutPreviewData(), 0u);
  // Without the layers: the named code of a missing layer.
  RvGiCreateDocument(0, &index);
  EXPECT_EQ(RvExCLConvertToBezierArt(), 0x03001001u);
  EXPECT_EQ(RvExCLMakeCutPreviewData(uint16_t(index)), 0x03001001u);
}

}  // namespace
