#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "drawing_host.h"
#include "model/art.h"

using namespace drawtest;

namespace {

using Arts = std::vector<void*>;

std::string LayerName(void* layer) {
  char name[64] = {};
  EXPECT_EQ(RvGiGetLayerName(layer, name), 0u);
  return name;
}

void* LayerAt(int16_t index) {
  void* layer = nullptr;
  EXPECT_EQ(RvGiGetLayer(&layer, index), 0u);
  return layer;
}

TEST_F(Drawing, LayersAreNamedByCountAndBecomeCurrent) {
  void* first = Layer(1);
  void* second = Layer(1);
  void* third = Layer(0);
  EXPECT_EQ(LayerName(first), "Layer1");
  EXPECT_EQ(LayerName(second), "Layer2");
  EXPECT_EQ(LayerName(third), "Layer3");
  EXPECT_EQ(LayerAt(0), third);
  EXPECT_EQ(LayerAt(1), first);
  EXPECT_EQ(LayerAt(2), second);
  EXPECT_EQ(Parent(Art(1, 3, nullptr)), third) << "the front layer is current";
  // Behind the layer at index 2 and in front of the one at 0.
  void* behind = Layer(2, second);
  EXPECT_EQ(LayerAt(3), behind);
  EXPECT_EQ(Parent(Art(1, 3, nullptr)), behind);
  void* before = Layer(3, third);
  EXPECT_EQ(LayerAt(0), before);
  EXPECT_EQ(LayerName(before), "Layer5");
  int16_t count = 0;
  ASSERT_EQ(RvGiGetLayerCount(&count), 0u);
  EXPECT_EQ(count, 5);
  void* layer = reinterpret_cast<void*>(1);
  EXPECT_EQ(RvGiGetLayer(&layer, 5), kNoLayer);
  EXPECT_EQ(RvGiGetLayer(&layer, -1), kNoLayer);
}

TEST_F(Drawing, LayerReferencesMustBeLayersOfTheDocument) {
  void* layer = Layer();
  void* group = Art(1, 3, nullptr);
  void* out = reinterpret_cast<void*>(1);
  EXPECT_EQ(RvGiCreateLayer(1, group, &out), kBadReference);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(RvGiCreateLayer(2, nullptr, &out), kBadReference);
  EXPECT_EQ(RvGiCreateLayer(3, nullptr, &out), kBadReference);
  // A layer of another document isn't in this list.
  int16_t other = 0;
  ASSERT_EQ(RvGiCreateDocument(0, &other), 0u);
  void* foreign = Layer();
  ASSERT_EQ(RvGiSetActiveDocument(m_doc), 0u);
  EXPECT_EQ(RvGiCreateLayer(2, foreign, &out), kBadReference);
  EXPECT_EQ(RvGiDeleteLayer(foreign), kBadReference);
  int16_t count = 0;
  ASSERT_EQ(RvGiGetLayerCount(&count), 0u);
  EXPECT_EQ(count, 1);
  // An unknown where leaves the layer out of the list, and the current layer as it was.
  void* loose = nullptr;
  ASSERT_EQ(RvGiCreateLayer(7, nullptr, &loose), 0u);
  ASSERT_NE(loose, nullptr);
  EXPECT_EQ(LayerName(loose), "Layer1");
  ASSERT_EQ(RvGiGetLayerCount(&count), 0u);
  EXPECT_EQ(count, 1);
  EXPECT_EQ(Parent(Art(1, 3, nullptr)), layer);
}

TEST_F(Drawing, LayerLookupByName) {
  void* none = reinterpret_cast<void*>(1);
  EXPECT_EQ(RvGiGetLayerFromName(&none, "Layer1"), 0u);
  EXPECT_EQ(none, nullptr) << "no layers at all";
  void* a = Layer();
  void* b = Layer();
  ASSERT_EQ(RvGiSetLayerName(a, "cut"), 0u);
  ASSERT_EQ(RvGiSetLayerName(b, "cut"), 0u);
  void* found = nullptr;
  ASSERT_EQ(RvGiGetLayerFromName(&found, "cut"), 0u);
  EXPECT_EQ(found, a) << "the earlier of two alike";
  ASSERT_EQ(RvGiGetLayerFromName(&found, "cu"), 0u);
  EXPECT_EQ(found, nullptr);
  void* group = Art(1, 3, nullptr);
  char name[16];
  EXPECT_EQ(RvGiGetLayerName(nullptr, name), kNoParent);
  EXPECT_EQ(RvGiGetLayerName(group, name), kNotLayer);
  EXPECT_EQ(RvGiSetLayerName(nullptr, "x"), kNullArt);
  EXPECT_EQ(RvGiSetLayerName(group, "x"), kNotLayer);
}

TEST_F(Drawing, LayerColourStartsBlackAndIsOnlyForLayers) {
  void* layer = Layer();
  RVCOLOR color{nullptr, 7, {7, 7, 7, 7}};
  int32_t found = 0;
  ASSERT_EQ(RvGiGetLayerColor(layer, &color, &found), 0u);
  EXPECT_EQ(found, 1);
  EXPECT_EQ(color.kind, 1);
  EXPECT_EQ(color.c[0], 0);
  EXPECT_EQ(color.c[2], 0);
  char name[32] = {};
  ASSERT_EQ(RvGiGetLayerColorName(layer, name), 0u);
  EXPECT_STREQ(name, "R=0,G=0,B=0");
  RVCOLOR green{nullptr, 1, {0, 128, 0, 0}};
  ASSERT_EQ(RvGiSetLayerColor(layer, &green, "R=0,G=128,B=0"), 0u);
  ASSERT_EQ(RvGiGetLayerColor(layer, &color, &found), 0u);
  EXPECT_EQ(color.c[1], 128);
  ASSERT_EQ(RvGiGetLayerColorName(layer, name), 0u);
  EXPECT_STREQ(name, "R=0,G=128,B=0");
  void* path = Art(4, 3, nullptr);
  EXPECT_EQ(RvGiGetLayerColor(path, &color, &found), 0x03000701u);
  EXPECT_EQ(RvGiGetLayerColorName(path, name), 0x03000701u);
  EXPECT_EQ(RvGiSetLayerColor(path, &green, "x"), 0x03000701u);
}

TEST_F(Drawing, DeletingALayerKeepsTheCurrentIndex) {
  void* first = Layer(1);
  void* second = Layer(1);  // current: 1
  Art(4, 3, nullptr);
  EXPECT_EQ(RvGiDeleteLayer(nullptr), kNoParent);
  void* group = Art(1, 3, nullptr);
  EXPECT_EQ(RvGiDeleteLayer(group), kNotLayer);
  ASSERT_EQ(RvGiDeleteLayer(second), 0u);
  EXPECT_EQ(LayerAt(0), first);
  // The current index still says 1, past the only layer left.
  void* art = reinterpret_cast<void*>(1);
  EXPECT_EQ(RvGiCreateArt(1, 3, nullptr, &art), kNoLayer);
  EXPECT_EQ(art, nullptr);
  ASSERT_EQ(RvGiCreateArt(1, 5, first, &art), 0u) << "explicit parents still work";
  EXPECT_TRUE(Children(first).size() == 1);
}

TEST_F(Drawing, AttributeWordAndStartSegmentShareOneWord) {
  Layer();
  void* a = Art(4, 3, nullptr);
  uint8_t flags = 9;
  int16_t segment = 9;
  ASSERT_EQ(RvGiGetPathAttrFlag(a, &flags), 0u);
  ASSERT_EQ(RvGiGetPathStartSegment(a, &segment), 0u);
  EXPECT_EQ(flags, 0);
  EXPECT_EQ(segment, 0);
  ASSERT_EQ(RvGiSetPathStartSegment(a, 5), 0u);
  ASSERT_EQ(RvGiSetPathAttrFlag(a, 7), 0u);
  ASSERT_EQ(RvGiGetPathStartSegment(a, &segment), 0u);
  EXPECT_EQ(segment, 0) << "setting the flags clears the start segment";
  ASSERT_EQ(RvGiSetPathStartSegment(a, 5), 0u);
  ASSERT_EQ(RvGiGetPathAttrFlag(a, &flags), 0u);
  ASSERT_EQ(RvGiGetPathStartSegment(a, &segment), 0u);
  EXPECT_EQ(flags, 7);
  EXPECT_EQ(segment, 5);
  ASSERT_EQ(RvGiSetPathProp(a, 16), 0u);
  ASSERT_EQ(RvGiGetPathAttrFlag(a, &flags), 0u);
  EXPECT_EQ(flags, 23);
  ASSERT_EQ(RvGiGetPathStartSegment(a, &segment), 0u);
  EXPECT_EQ(segment, 5) << "a property bit leaves the start segment";
  ASSERT_EQ(RvGiSetPathStartSegment(a, -2), 0u);
  ASSERT_EQ(RvGiGetPathStartSegment(a, &segment), 0u);
  EXPECT_EQ(segment, -2);
  ASSERT_EQ(RvGiGetPathAttrFlag(a, &flags), 0u);
  EXPECT_EQ(flags, 23);
  EXPECT_EQ(RvGiGetPathAttrFlag(nullptr, &flags), kNullPath);
}

TEST_F(Drawing, PlotInfoIsMadeAtTheFirstWrite) {
  Layer();
  void* a = Art(1, 3, nullptr);  // any art carries plot info
  int32_t id = 0, value = 0;
  int16_t element = 0, vcut = 0;
  char text[32] = "untouched";
  ASSERT_EQ(RvGiGetPathPatternID(a, &id), 0u);
  EXPECT_EQ(id, -1);
  EXPECT_EQ(RvGiGetPathPlotInfo(a, &value, text), kNullArt);
  EXPECT_EQ(RvGiGetPathElementAtVCut(a, &element, &vcut), kNullArt);
  EXPECT_STREQ(text, "untouched");
  ASSERT_EQ(RvGiSetPathPatternID(a, 12), 0u);
  ASSERT_EQ(RvGiGetPathElementAtVCut(a, &element, &vcut), 0u);
  EXPECT_EQ(element, -1);
  EXPECT_EQ(vcut, 0);
  ASSERT_EQ(RvGiGetPathPlotInfo(a, &value, text), 0u);
  EXPECT_STREQ(text, "");
  ASSERT_EQ(RvGiSetPathPlotInfo(a, 4, "Pen 1"), 0u);
  ASSERT_EQ(RvGiSetPathElementAtVCut(a, 3, 45), 0u);
  ASSERT_EQ(RvGiGetPathPlotInfo(a, &value, text), 0u);
  EXPECT_EQ(value, 4);
  EXPECT_STREQ(text, "Pen 1");
  ASSERT_EQ(RvGiGetPathElementAtVCut(a, &element, &vcut), 0u);
  EXPECT_EQ(element, 3);
  EXPECT_EQ(vcut, 45);
  ASSERT_EQ(RvGiGetPathPatternID(a, &id), 0u);
  EXPECT_EQ(id, 12);
  // A fresh art with only a V-cut still has pattern id -1.
  void* b = Art(1, 3, nullptr);
  ASSERT_EQ(RvGiSetPathElementAtVCut(b, 1, 2), 0u);
  ASSERT_EQ(RvGiGetPathPatternID(b, &id), 0u);
  EXPECT_EQ(id, -1);
  uint8_t flags = 9;
  ASSERT_EQ(RvGiGetPathAttrFlag(b, &flags), 0u);
  EXPECT_EQ(flags, 0);
}

TEST_F(Drawing, PathFlagsActOnTheirOwnKindOnly) {
  Layer();
  void* path = Art(4, 3, nullptr);
  void* group = Art(1, 3, nullptr);
  int32_t value = 5;
  ASSERT_EQ(RvGiSetPathClosed(path, 1), 0u);
  ASSERT_EQ(RvGiSetPathClockWise(path, 1), 0u);
  ASSERT_EQ(RvGiGetPathClosed(path, &value), 0u);
  EXPECT_EQ(value, 1);
  ASSERT_EQ(RvGiGetPathClockWise(path, &value), 0u);
  EXPECT_EQ(value, 1);
  EXPECT_EQ(RvGiSetPathClosed(group, 1), 0u) << "ignored on a group";
  EXPECT_EQ(RvGiSetPathClockWise(group, 1), 0u);
  EXPECT_EQ(RvGiGetPathClosed(group, &value), kWrongKind);
  EXPECT_EQ(RvGiGetPathClockWise(nullptr, &value), kNullPath);
  // Selection lives on groups; other arts leave the value as it was.
  ASSERT_EQ(RvGiSetSelect(group, 1), 0u);
  value = 0;
  ASSERT_EQ(RvGiGetSelect(group, &value), 0u);
  EXPECT_EQ(value, 1);
  ASSERT_EQ(RvGiSetSelect(path, 1), 0u);
  value = 42;
  ASSERT_EQ(RvGiGetSelect(path, &value), 0u);
  EXPECT_EQ(value, 42);
  EXPECT_EQ(RvGiGetSelect(nullptr, &value), kBadType);
  EXPECT_EQ(RvGiSetSelect(nullptr, 1), kBadType);
}

TEST_F(Drawing, SegmentsByComponentKind) {
  Layer();
  void* path = Art(4, 3, nullptr);
  void* bez = Art(2, 5, path);
  void* arc = Art(5, 5, path);
  void* spline = Art(6, 5, path);
  const RVBEZIERPOINT b0 = Pt(1, 1), b1 = Pt(2, 2);
  ASSERT_EQ(RvGiSetBezierPoint(bez, &b0), 0u);
  ASSERT_EQ(RvGiSetBezierPoint(bez, &b1), 0u);
  rv::CRvArc* arcArt = static_cast<rv::CRvArc*>(arc);
  arcArt->AddPoint(RVARCPOINT{{1, 0}, {0, 1}, {0, 0}, 90.0, 1});
  static_cast<rv::CRvSpline*>(spline)->AddPoint(RVPOINT{3, 4});
  int32_t count = 0;
  ASSERT_EQ(RvGiGetPathSegmentCount(path, &count), 0u);
  EXPECT_EQ(count, 4);
  ASSERT_EQ(RvGiGetPathSegmentCount(arc, &count), 0u);
  EXPECT_EQ(count, 1);
  void* group = Art(1, 3, nullptr);
  EXPECT_EQ(RvGiGetPathSegmentCount(group, &count), 0x06000E01u);

  RVBEZIERPOINT bp{};
  RVARCPOINT ap{};
  RVPOINT sp{};
  ASSERT_EQ(RvGiGetPathSegment(bez, 1, &bp), 0u);
  EXPECT_EQ(bp.anchor.x, 2.0);
  ASSERT_EQ(RvGiGetPathSegment(arc, 0, &ap), 0u);
  EXPECT_EQ(ap.sweep, 90.0);
  EXPECT_EQ(ap.direction, 1);
  ASSERT_EQ(RvGiGetPathSegment(spline, 0, &sp), 0u);
  EXPECT_EQ(sp.y, 4.0);
  ASSERT_EQ(RvGiGetArcPoint(arc, 0, &ap), 0u);
  EXPECT_EQ(ap.to.y, 1.0);
  EXPECT_EQ(RvGiGetPathSegment(path, 0, &bp), kWrongKind);
  EXPECT_EQ(RvGiGetBezierPoint(arc, 0, &bp), kWrongKind);
  EXPECT_EQ(RvGiGetArcPoint(bez, 0, &ap), kWrongKind);
  EXPECT_EQ(RvGiSetBezierPoint(spline, &b0), kWrongKind);
  EXPECT_EQ(RvGiGetBezierPoint(nullptr, 0, &bp), kNullPath);
  // Indexes past the points are refused, not followed.
  bp = Pt(-1, -1);
  EXPECT_EQ(RvGiGetBezierPoint(bez, 2, &bp), kWrongKind);
  EXPECT_EQ(RvGiGetBezierPoint(bez, -1, &bp), kWrongKind);
  EXPECT_EQ(bp.anchor.x, -1.0);
  EXPECT_EQ(RvGiGetPathSegment(arc, 1, &ap), kWrongKind);
  EXPECT_EQ(RvGiReplaceBezierPoint(bez, 2, &b0), kWrongKind);
  EXPECT_EQ(RvGiSortBezierPoint(bez, 2, 0), kWrongKind);
  EXPECT_EQ(AnchorsX(bez), (std::vector<double>{1, 2}));
}

TEST_F(Drawing, BezierPointsInsertReplaceAndAppend) {
  Layer();
  void* bez = Art(2, 3, nullptr);
  const RVBEZIERPOINT p1 = Pt(1, 0), p2 = Pt(2, 0), p3 = Pt(3, 0), p4 = Pt(4, 0), p9 = Pt(9, 0);
  ASSERT_EQ(RvGiSetBezierPoint(bez, &p2), 0u);          // 2
  ASSERT_EQ(RvGiSetBezierPoint(bez, 0, &p1), 0u);       // 1 2
  ASSERT_EQ(RvGiSetBezierPoint(bez, 99, &p4), 0u);      // 1 2 4
  ASSERT_EQ(RvGiSetBezierPoint(bez, 2, &p3), 0u);       // 1 2 3 4
  ASSERT_EQ(RvGiInsertBezierPoint(bez, -5, &p9), 0u);   // 9 1 2 3 4
  ASSERT_EQ(RvGiReplaceBezierPoint(bez, 0, &p4), 0u);   // 4 1 2 3 4
  ASSERT_EQ(RvGiAddBezierPoint(bez, &p9), 0u);          // 4 1 2 3 4 9
  EXPECT_EQ(AnchorsX(bez), (std::vector<double>{4, 1, 2, 3, 4, 9}));
}

TEST_F(Drawing, ReversingExchangesHandlesAndTwiceGivesTheCurveBack) {
  Layer();
  void* bez = Art(2, 3, nullptr);
  const RVBEZIERPOINT a = Pt(0, 0, -1, 0, 1, 0), b = Pt(5, 5, 4, 5, 6, 5), c = Pt(10, 0, 9, 0, 11, 0);
  for (const RVBEZIERPOINT* p : {&a, &b, &c}) ASSERT_EQ(RvGiSetBezierPoint(bez, p), 0u);
  const RVPOINT startIn{-3, -3};
  ASSERT_EQ(RvGiSetBezierStartInPoint(bez, &startIn), 0u);
  ASSERT_EQ(RvGiReverseBezierPoint(bez), 0u);
  EXPECT_EQ(AnchorsX(bez), (std::vector<double>{10, 5, 0}));
  RVBEZIERPOINT mid{};
  ASSERT_EQ(RvGiGetBezierPoint(bez, 1, &mid), 0u);
  EXPECT_EQ(mid.in.x, 6.0) << "the middle point keeps its place with its handles exchanged";
  EXPECT_EQ(mid.out.x, 4.0);
  RVBEZIERPOINT first{};
  ASSERT_EQ(RvGiGetBezierPoint(bez, 0, &first), 0u);
  EXPECT_EQ(first.in.x, 11.0);
  EXPECT_EQ(first.out.x, 9.0);
  auto* curve = static_cast<rv::CRvBezier*>(bez);
  EXPECT_EQ(curve->m_startIn.x, 1.0) << "the start-in handle becomes the old first out handle";
  EXPECT_EQ(curve->m_startOut.x, -3.0);
  ASSERT_EQ(RvGiReverseBezierPoint(bez), 0u);
  for (int i = 0; i < 3; ++i) {
    RVBEZIERPOINT p{};
    ASSERT_EQ(RvGiGetBezierPoint(bez, i, &p), 0u);
    const RVBEZIERPOINT& expected = i == 0 ? a : i == 1 ? b : c;
    EXPECT_EQ(p.anchor.x, expected.anchor.x);
    EXPECT_EQ(p.in.x, expected.in.x);
    EXPECT_EQ(p.out.x, expected.out.x);
  }
  EXPECT_EQ(curve->m_startIn.x, -3.0);
  // Fewer than two points: nothing happens, not even to the start handles.
  void* single = Art(2, 3, nullptr);
  ASSERT_EQ(RvGiSetBezierPoint(single, &a), 0u);
  ASSERT_EQ(RvGiReverseBezierPoint(single), 0u);
  EXPECT_EQ(static_cast<rv::CRvBezier*>(single)->m_startOutSet, 0);
  void* group = Art(1, 3, nullptr);
  EXPECT_EQ(RvGiReverseBezierPoint(group), kWrongKind);
  EXPECT_EQ(RvGiReverseBezierPoint(nullptr), kNullPath);
}

TEST_F(Drawing, SortingAClosedCurveKeepsTheClosedShape) {
  Layer();
  void* bez = Art(2, 3, nullptr);
  // A closed curve A B C A: the first record has in = anchor, the last out = anchor.
  const RVBEZIERPOINT a0 = Pt(0, 0, 0, 0, 1, 1), b = Pt(10, 0, 9, -1, 11, 1), c = Pt(5, 8, 6, 9, 4, 7),
                      a1 = Pt(0, 0, -1, -1, 0, 0);
  for (const RVBEZIERPOINT* p : {&a0, &b, &c, &a1}) ASSERT_EQ(RvGiSetBezierPoint(bez, p), 0u);
  const RVPOINT startIn{-1, -1};
  ASSERT_EQ(RvGiSetBezierStartInPoint(bez, &startIn), 0u);

  ASSERT_EQ(RvGiSortBezierPoint(bez, 2, 1), 0u);
  EXPECT_EQ(AnchorsX(bez), (std::vector<double>{5, 0, 10, 5}));  // C A B C
  RVBEZIERPOINT p[4];
  for (int i = 0; i < 4; ++i) ASSERT_EQ(RvGiGetBezierPoint(bez, i, &p[i]), 0u);
  EXPECT_EQ(p[0].in.x, 5.0) << "first record: in = anchor";
  EXPECT_EQ(p[0].out.x, 4.0) << "first record keeps C's out handle";
  EXPECT_EQ(p[1].in.x, -1.0) << "A gets its real in handle back";
  EXPECT_EQ(p[1].out.x, 1.0);
  EXPECT_EQ(p[3].in.x, 6.0) << "last record: C's in handle";
  EXPECT_EQ(p[3].out.x, 5.0) << "last record: out = anchor";
  EXPECT_EQ(static_cast<rv::CRvBezier*>(bez)->m_startIn.x, 6.0);

  // Without a start-in point the start's in handle is the one of the last
  // record, which repeats the start: the outline survives the sort.
  void* unset = Art(2, 3, nullptr);
  for (const RVBEZIERPOINT* q : {&a0, &b, &c, &a1}) ASSERT_EQ(RvGiSetBezierPoint(unset, q), 0u);
  ASSERT_EQ(RvGiSortBezierPoint(unset, 1, 1), 0u);  // B A... : A moves to index 2
  EXPECT_EQ(AnchorsX(unset), (std::vector<double>{10, 5, 0, 10}));
  RVBEZIERPOINT moved{};
  ASSERT_EQ(RvGiGetBezierPoint(unset, 2, &moved), 0u);
  EXPECT_EQ(moved.in.x, -1.0);
  EXPECT_EQ(moved.in.y, -1.0);

  // Index 0 and open curves only rotate.
  ASSERT_EQ(RvGiSortBezierPoint(bez, 0, 1), 0u);
  EXPECT_EQ(AnchorsX(bez), (std::vector<double>{5, 0, 10, 5}));
  ASSERT_EQ(RvGiSortBezierPoint(bez, 1, 0), 0u);
  EXPECT_EQ(AnchorsX(bez), (std::vector<double>{0, 10, 5, 5}));
  RVBEZIERPOINT first{};
  ASSERT_EQ(RvGiGetBezierPoint(bez, 0, &first), 0u);
  EXPECT_EQ(first.in.x, -1.0) << "an open rotation leaves the records as they are";
}

TEST_F(Drawing, CopyPathCopiesOneLevel) {
  void* layer = Layer();
  void* path = Art(4, 3, nullptr);
  void* bez = Art(2, 5, path);
  void* loose = Art(2, 9, nullptr);  // unlinked: outlives the layer
  const RVBEZIERPOINT p = Pt(3, 4);
  ASSERT_EQ(RvGiSetBezierPoint(bez, &p), 0u);
  void* copy = nullptr;
  ASSERT_EQ(RvGiCopyPath(path, 3, nullptr, &copy), 0u);
  EXPECT_EQ(Type(copy), 4);
  EXPECT_TRUE(Children(copy).empty());
  void* bcopy = nullptr;
  ASSERT_EQ(RvGiCopyPath(bez, 5, copy, &bcopy), 0u);
  EXPECT_EQ(Children(copy), (Arts{bcopy}));
  EXPECT_EQ(AnchorsX(bcopy), (std::vector<double>{3}));
  EXPECT_EQ(Children(layer), (Arts{path, copy}));

  void* out = reinterpret_cast<void*>(1);
  EXPECT_EQ(RvGiCopyPath(nullptr, 3, nullptr, &out), kNullPath);
  void* group = Art(1, 3, nullptr);
  EXPECT_EQ(RvGiCopyPath(group, 3, nullptr, &out), kWrongKind);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(RvGiCopyPath(bez, 0, path, &out), kBadReference);
  ASSERT_EQ(RvGiDeleteLayer(layer), 0u);
  EXPECT_EQ(RvGiCopyPath(loose, 3, nullptr, &out), 0x05000601u) << "no layer left";
  ASSERT_EQ(RvGiDeleteActiveDocument(), 0u);
  EXPECT_EQ(RvGiCopyPath(loose, 3, nullptr, &out), kNoDocument);
}

}  // namespace
