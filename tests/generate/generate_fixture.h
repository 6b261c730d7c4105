// Shared by the generator tests: a document with the work layer, one RefMap
// table that is both the current table and the table of hatching plots,
// shapes added to the work layer, and the paths of a result layer read back
// as polylines.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "drawing_text.h"
#include "rvdataaccess.h"

namespace rvtest {

using Polyline = std::vector<RVPOINT>;

/// A closed polygon's corners, without the repeated start.
inline Polyline Box(double left, double bottom, double right, double top) {
  return {{left, bottom}, {right, bottom}, {right, top}, {left, top}};
}

class GenerateTest : public ::testing::Test {
 protected:
  void SetUp() override {
    RvGiDeleteRefMapTable();
    RvGiDeleteAllDocuments();
    ASSERT_EQ(RvGiCreateDocument(0, &m_document), 0u);
    ASSERT_EQ(RvGiCreateLayer(1, nullptr, &m_work), 0u);
    ASSERT_EQ(RvGiSetLayerName(m_work, "Rivlen_HatchingWorkLayer"), 0u);
    ASSERT_EQ(RvGiCreateRefMapTable(&m_map), 0u);
    RvGiSetRefMapIndex(m_map);
    RvGiSetRefMapHatchingPlotIndex(m_map);
    RvInitializeHatchingInfo(&m_hatching);
    RvInitializeContourInfo(&m_contour);
    m_contour.cornerLines = 0;
  }
  void TearDown() override {
    EXPECT_EQ(RvGiDeleteRefMapTable(), 0u);
    EXPECT_EQ(RvGiDeleteAllDocuments(), 0u);
  }

  /// A path of `points` (closed: the start stored twice) in `parent`, flags
  /// 7 and plot info "P".
  void* AddShape(const Polyline& points, bool closed = true, void* parent = nullptr) {
    void* path = nullptr;
    void* bezier = nullptr;
    EXPECT_EQ(RvGiCreateArt(4, 5, parent != nullptr ? parent : m_work, &path), 0u);
    EXPECT_EQ(RvGiCreateArt(2, 5, path, &bezier), 0u);
    Polyline all = points;
    if (closed) all.push_back(points.front());
    for (const RVPOINT& p : all) {
      RVBEZIERPOINT b{};
      b.anchor = b.in = b.out = p;
      EXPECT_EQ(RvGiAddBezierPoint(bezier, &b), 0u);
    }
    EXPECT_EQ(RvGiSetPathClosed(path, closed ? 1 : 0), 0u);
    EXPECT_EQ(RvGiSetPathAttrFlag(path, 7), 0u);
    EXPECT_EQ(RvGiSetPathPlotInfo(path, 3, "P"), 0u);
    return path;
  }
  /// A compound of the outline and its holes in the work layer.
  void* AddCompound(const std::vector<Polyline>& paths) {
    void* compound = nullptr;
    EXPECT_EQ(RvGiCreateArt(3, 5, m_work, &compound), 0u);
    for (const Polyline& p : paths) AddShape(p, true, compound);
    return compound;
  }

  uint32_t Hatch() { return RvCreateHatching(&m_document, &m_hatching); }
  uint32_t Contour() { return RvCreateContour(&m_document, &m_contour); }

  static void* Layer(const char* name) {
    void* layer = nullptr;
    RvGiGetLayerFromName(&layer, name);
    return layer;
  }
  static std::vector<void*> Children(void* art) { return rvtest::Children(art); }
  static int16_t Type(void* art) {
    int16_t type = -1;
    RvGiGetArtType(art, &type);
    return type;
  }
  /// The anchors of a path's first component.
  static Polyline Anchors(void* path) {
    Polyline out;
    void* bezier = nullptr;
    RvGiGetArtFirstChild(path, &bezier);
    int32_t n = 0;
    RvGiGetPathSegmentCount(bezier, &n);
    for (int32_t i = 0; i < n; ++i) {
      RVBEZIERPOINT b{};
      RvGiGetPathSegment(bezier, i, &b);
      out.push_back(b.anchor);
    }
    return out;
  }
  /// The polylines of every path of a layer, compounds entered.
  static std::vector<Polyline> Paths(const char* layerName) {
    std::vector<Polyline> out;
    void* layer = Layer(layerName);
    if (layer == nullptr) return out;
    for (void* art : Children(layer)) {
      if (Type(art) == 4) out.push_back(Anchors(art));
      if (Type(art) == 3) {
        for (void* path : Children(art)) out.push_back(Anchors(path));
      }
    }
    return out;
  }

  int16_t m_document = -1;
  void* m_work = nullptr;
  int16_t m_map = -1;
  RVHATCHINGINFO m_hatching{};
  RVCONTOURINFO m_contour{};
};

/// Whether q lies inside the closed polygon (even-odd, the boundary within
/// `slack` counts as inside).
inline bool Inside(const Polyline& polygon, const RVPOINT& q, double slack = 1e-3) {
  bool in = false;
  const std::size_t n = polygon.size();
  for (std::size_t i = 0, j = n - 1; i < n; j = i++) {
    const RVPOINT a = polygon[i], b = polygon[j];
    const double dx = b.x - a.x, dy = b.y - a.y, len2 = dx * dx + dy * dy;
    double t = len2 > 0 ? ((q.x - a.x) * dx + (q.y - a.y) * dy) / len2 : 0.0;
    t = t < 0 ? 0 : (t > 1 ? 1 : t);
    if (std::hypot(a.x + t * dx - q.x, a.y + t * dy - q.y) <= slack) return true;
    if ((a.y > q.y) != (b.y > q.y) && q.x < (b.x - a.x) * (q.y - a.y) / (b.y - a.y) + a.x) in = !in;
  }
  return in;
}

}  // namespace rvtest
