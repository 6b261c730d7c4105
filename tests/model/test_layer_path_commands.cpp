#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "drawing_host.h"
#include "model/art.h"

using namespace drawtest;

namespace {

std::string LayerName(void* layer) { return Text(RvGiGetLayerName, layer); }
void* LayerAt(int16_t index) {
  void* layer = nullptr;
  EXPECT_EQ(RvGiGetLayer(&layer, index), 0u);
  return layer;
}
int16_t LayerCount() {
  int16_t count = -1;
  EXPECT_EQ(RvGiGetLayerCount(&count), 0u);
  return count;
}

TEST_F(Drawing, LayersAreNamedByCountAndBecomeCurrent) {
  void* first = Layer(1);
  void* second = Layer(1);
  void* third = Layer(0);
  EXPECT_EQ(LayerName(first) + LayerName(second) + LayerName(third), "Layer1Layer2Layer3");
  EXPECT_EQ((Arts{LayerAt(0), LayerAt(1), LayerAt(2)}), (Arts{third, first, second}));
  EXPECT_EQ(Parent(Art(1, 3, nullptr)), third) << "the front layer is current";
  // Behind the layer at index 2 and in front of the one at 0.
  void* behind = Layer(2, second);
  EXPECT_EQ(LayerAt(3), behind);
  EXPECT_EQ(Parent(Art(1, 3, nullptr)), behind);
  void* before = Layer(3, third);
  EXPECT_EQ(LayerAt(0), before);
  EXPECT_EQ(LayerName(before), "Layer5");
  EXPECT_EQ(LayerCount(), 5);
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
  EXPECT_EQ(RvGiCreateLayer(3, nullptr, &out), kBadReference);
  // A layer of another document isn't in this list.
  int16_t other = 0;
  ASSERT_EQ(RvGiCreateDocument(0, &other), 0u);
  void* foreign = Layer();
  ASSERT_EQ(RvGiSetActiveDocument(m_doc), 0u);
  EXPECT_EQ(RvGiCreateLayer(2, foreign, &out), kBadReference);
  EXPECT_EQ(RvGiDeleteLayer(foreign), kBadReference);
  EXPECT_EQ(LayerCount(), 1);
  // An unknown where leaves the layer out of the list, and the current layer as it was.
  EXPECT_EQ(LayerName(Layer(7)), "Layer1");
  EXPECT_EQ(LayerCount(), 1);
  EXPECT_EQ(Parent(Art(1, 3, nullptr)), layer);
}

TEST_F(Drawing, LayerLookupNamesAndColours) {
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
  char name[32];
  EXPECT_EQ(RvGiGetLayerName(nullptr, name), kNoParent);
  EXPECT_EQ(RvGiGetLayerName(group, name), kNotLayer);
  EXPECT_EQ(RvGiSetLayerName(nullptr, "x"), kNullArt);
  EXPECT_EQ(RvGiSetLayerName(group, "x"), kNotLayer);

  // The colour starts black and is only for layers.
  RVCOLOR color{nullptr, 7, {7, 7, 7, 7}}, green{nullptr, 1, {0, 128, 0, 0}};
  int32_t isSet = 0;
  ASSERT_EQ(RvGiGetLayerColor(a, &color, &isSet), 0u);
  EXPECT_EQ((V{double(isSet), double(color.kind), double(color.c[0]), double(color.c[1]), double(color.c[2])}),
            (V{1, 1, 0, 0, 0}));
  EXPECT_EQ(Text(RvGiGetLayerColorName, a), "R=0,G=0,B=0");
  EXPECT_EQ(RvGiGetLayerColor(group, &color, &isSet), 0x03000701u);
  EXPECT_EQ(RvGiGetLayerColorName(group, name), 0x03000701u);
  EXPECT_EQ(RvGiSetLayerColor(group, &green, "x"), 0x03000701u);
}

TEST_F(Drawing, DeletingALayerKeepsTheCurrentIndex) {
  void* first = Layer(1);
  void* second = Layer(1);  // current: 1
  void* group = Art(1, 3, nullptr);
  EXPECT_EQ(RvGiDeleteLayer(nullptr), kNoParent);
  EXPECT_EQ(RvGiDeleteLayer(group), kNotLayer);
  ASSERT_EQ(RvGiDeleteLayer(second), 0u);
  EXPECT_EQ(LayerAt(0), first);
  // The current index still says 1, past the only layer left.
  void* art = reinterpret_cast<void*>(1);
  EXPECT_EQ(RvGiCreateArt(1, 3, nullptr, &art), kNoLayer);
  ASSERT_EQ(RvGiCreateArt(1, 5, first, &art), 0u) << "explicit parents still work";
  EXPECT_EQ(Children(first), (Arts{art}));
}

TEST_F(Drawing, AttributeWordPlotInfoAndFlags) {
  Layer();
  void* a = Art(4, 3, nullptr);
  // Flags and start segment share one word: setting the flags clears the
  // start segment, a property bit leaves it; both read 0 at first.
  auto word = [&] { return V{double(Read(RvGiGetPathAttrFlag, a)), double(Read(RvGiGetPathStartSegment, a))}; };
  EXPECT_EQ(word(), (V{0, 0}));
  ASSERT_EQ(RvGiSetPathStartSegment(a, 5), 0u);
  ASSERT_EQ(RvGiSetPathAttrFlag(a, 7), 0u);
  EXPECT_EQ(word(), (V{7, 0}));
  ASSERT_EQ(RvGiSetPathStartSegment(a, 5), 0u);
  ASSERT_EQ(RvGiSetPathStartSegment(a, -2), 0u);
  ASSERT_EQ(RvGiSetPathProp(a, 16), 0u);
  EXPECT_EQ(word(), (V{23, -2}));
  uint8_t flags = 0;
  EXPECT_EQ(RvGiGetPathAttrFlag(nullptr, &flags), kNullPath);

  // Any art carries plot info, made at the first write of any of its fields
  // with the others at their defaults.
  void* g = Art(1, 3, nullptr);
  int32_t value = 7;
  int16_t element = 7, vcut = 7;
  char text[32] = "untouched";
  EXPECT_EQ(Read(RvGiGetPathPatternID, g), -1);
  EXPECT_EQ(RvGiGetPathPlotInfo(g, &value, text), kNullArt);
  EXPECT_EQ(RvGiGetPathElementAtVCut(g, &element, &vcut), kNullArt);
  EXPECT_STREQ(text, "untouched");
  ASSERT_EQ(RvGiSetPathPatternID(g, 12), 0u);
  ASSERT_EQ(RvGiGetPathElementAtVCut(g, &element, &vcut), 0u);
  ASSERT_EQ(RvGiGetPathPlotInfo(g, &value, text), 0u);
  EXPECT_EQ((V{double(element), double(vcut), double(value)}), (V{-1, 0, 0}));
  EXPECT_STREQ(text, "");
  void* b = Art(1, 3, nullptr);
  ASSERT_EQ(RvGiSetPathPlotInfo(b, 4, "Pen 1"), 0u);
  EXPECT_EQ(Read(RvGiGetPathPatternID, b), -1);
  EXPECT_EQ(Read<uint8_t>(RvGiGetPathAttrFlag, b, 9), 0) << "plot info leaves the attribute flags";

  // Closed and clockwise are for paths (ignored on a group); selection is
  // for groups (other arts leave the value as it was).
  EXPECT_EQ(RvGiSetPathClosed(g, 1), 0u);
  EXPECT_EQ(RvGiSetPathClockWise(g, 1), 0u);
  EXPECT_EQ(RvGiGetPathClosed(g, &value), kWrongKind);
  EXPECT_EQ(RvGiGetPathClockWise(nullptr, &value), kNullPath);
  ASSERT_EQ(RvGiSetSelect(g, 1), 0u);
  ASSERT_EQ(RvGiSetSelect(a, 1), 0u);
  EXPECT_EQ(Read(RvGiGetSelect, g), 1);
  EXPECT_EQ(Read(RvGiGetSelect, a, 42), 42);
  EXPECT_EQ(RvGiGetSelect(nullptr, &value), kBadType);
  EXPECT_EQ(RvGiSetSelect(nullptr, 1), kBadType);
}

TEST_F(Drawing, SegmentsByComponentKind) {
  Layer();
  void* path = PathOf({Pt(1, 1), Pt(2, 2)});
  void* bez = Children(path)[0];
  void* arc = Art(5, 5, path);
  void* spline = Art(6, 5, path);
  static_cast<rv::CRvArc*>(arc)->AddPoint(RVARCPOINT{{1, 0}, {0, 1}, {0, 0}, 90.0, 1});
  static_cast<rv::CRvSpline*>(spline)->AddPoint(RVPOINT{3, 4});
  EXPECT_EQ(Read(RvGiGetPathSegmentCount, path), 4);
  int32_t count = 0;
  EXPECT_EQ(RvGiGetPathSegmentCount(Art(1, 3, nullptr), &count), 0x06000E01u);

  RVBEZIERPOINT bp{};
  RVARCPOINT ap{};
  RVPOINT sp{};
  ASSERT_EQ(RvGiGetPathSegment(bez, 1, &bp), 0u);
  EXPECT_EQ(bp.anchor.x, 2.0);
  ASSERT_EQ(RvGiGetPathSegment(arc, 0, &ap), 0u);
  EXPECT_EQ((V{ap.sweep, double(ap.direction)}), (V{90, 1}));
  ASSERT_EQ(RvGiGetPathSegment(spline, 0, &sp), 0u);
  EXPECT_EQ(sp.y, 4.0);
  ASSERT_EQ(RvGiGetArcPoint(arc, 0, &ap), 0u);
  EXPECT_EQ(ap.to.y, 1.0);
  const RVBEZIERPOINT b0 = Pt(1, 1);
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
  EXPECT_EQ(Anchors(bez), (V{1, 2}));

  // Inserting before an index (0 or less: the front, the count or more: the
  // end), replacing and appending.
  void* other = Art(2, 3, nullptr);
  const std::pair<int32_t, double> inserts[] = {{-1, 2}, {0, 1}, {99, 4}, {2, 3}, {-5, 9}};  // -1: append
  for (auto [index, x] : inserts) {
    const RVBEZIERPOINT p = Pt(x, 0);
    ASSERT_EQ(index == -1 ? RvGiSetBezierPoint(other, &p) : RvGiSetBezierPoint(other, index, &p), 0u);
  }
  EXPECT_EQ(Anchors(other), (V{9, 1, 2, 3, 4}));
  const RVBEZIERPOINT p4 = Pt(4, 0), p9 = Pt(9, 0);
  ASSERT_EQ(RvGiReplaceBezierPoint(other, 0, &p4), 0u);
  ASSERT_EQ(RvGiAddBezierPoint(other, &p9), 0u);
  ASSERT_EQ(RvGiInsertBezierPoint(other, 1, &p9), 0u);
  EXPECT_EQ(Anchors(other), (V{4, 9, 1, 2, 3, 4, 9}));
}

TEST_F(Drawing, ReversingExchangesHandlesAndTwiceGivesTheCurveBack) {
  Layer();
  void* bez = Art(2, 3, nullptr);
  const RVBEZIERPOINT a = Pt(0, 0, -1, 0, 1, 0), b = Pt(5, 5, 4, 5, 6, 5), c = Pt(10, 0, 9, 0, 11, 0);
  for (const RVBEZIERPOINT* p : {&a, &b, &c}) ASSERT_EQ(RvGiSetBezierPoint(bez, p), 0u);
  const std::string before = ComponentText(bez);
  const RVPOINT startIn{-3, -3};
  ASSERT_EQ(RvGiSetBezierStartInPoint(bez, &startIn), 0u);
  ASSERT_EQ(RvGiReverseBezierPoint(bez), 0u);
  EXPECT_EQ(ComponentText(bez), "B(10,0{11,0;9,0} 5,5{6,5;4,5} 0,0{1,0;-1,0})");
  auto* curve = static_cast<rv::CRvBezier*>(bez);
  EXPECT_EQ(curve->StartIn().x, 1.0) << "the start-in handle becomes the old first out handle";
  EXPECT_EQ(curve->StartOut().x, -3.0);
  ASSERT_EQ(RvGiReverseBezierPoint(bez), 0u);
  EXPECT_EQ(ComponentText(bez), before);
  EXPECT_EQ(curve->StartIn().x, -3.0);
  // Fewer than two points: nothing happens, not even to the start handles.
  void* single = Art(2, 3, nullptr);
  ASSERT_EQ(RvGiSetBezierPoint(single, &a), 0u);
  ASSERT_EQ(RvGiReverseBezierPoint(single), 0u);
  EXPECT_FALSE(static_cast<rv::CRvBezier*>(single)->HasStartOut());
  EXPECT_EQ(RvGiReverseBezierPoint(Art(1, 3, nullptr)), kWrongKind);
  EXPECT_EQ(RvGiReverseBezierPoint(nullptr), kNullPath);
}

TEST_F(Drawing, SortingAClosedCurveKeepsTheClosedShape) {
  Layer();
  // A closed curve A B C A: the first record has in = anchor, the last out = anchor.
  const std::vector<RVBEZIERPOINT> abca = {Pt(0, 0, 0, 0, 1, 1), Pt(10, 0, 9, -1, 11, 1), Pt(5, 8, 6, 9, 4, 7),
                                           Pt(0, 0, -1, -1, 0, 0)};
  auto curve = [&] {
    void* bezier = Art(2, 3, nullptr);
    for (const RVBEZIERPOINT& p : abca) EXPECT_EQ(RvGiSetBezierPoint(bezier, &p), 0u);
    return bezier;
  };
  void* bez = curve();
  const RVPOINT startIn{-1, -1};
  ASSERT_EQ(RvGiSetBezierStartInPoint(bez, &startIn), 0u);
  // C A B C: C first with in = anchor, A with its real in handle back, the
  // last C with C's in handle and out = anchor.
  const std::string cabc = "B(5,8{5,8;4,7} 0,0{-1,-1;1,1} 10,0{9,-1;11,1} 5,8{6,9;5,8})";
  ASSERT_EQ(RvGiSortBezierPoint(bez, 2, 1), 0u);
  EXPECT_EQ(ComponentText(bez), cabc);
  EXPECT_EQ(static_cast<rv::CRvBezier*>(bez)->StartIn().x, 6.0);

  // Without a start-in point the start's in handle is the one of the last
  // record, which repeats the start: the outline survives the sort.
  void* unset = curve();
  ASSERT_EQ(RvGiSortBezierPoint(unset, 1, 1), 0u);  // B C A B
  EXPECT_EQ(ComponentText(unset), "B(10,0{10,0;11,1} 5,8{6,9;4,7} 0,0{-1,-1;1,1} 10,0{9,-1;10,0})");

  // Index 0 and open curves only rotate.
  ASSERT_EQ(RvGiSortBezierPoint(bez, 0, 1), 0u);
  EXPECT_EQ(ComponentText(bez), cabc);
  ASSERT_EQ(RvGiSortBezierPoint(bez, 1, 0), 0u);  // the records stay as they are
  EXPECT_EQ(ComponentText(bez), "B(0,0{-1,-1;1,1} 10,0{9,-1;11,1} 5,8{6,9;5,8} 5,8{5,8;4,7})");
}

TEST_F(Drawing, CopyPathCopiesOneLevel) {
  void* layer = Layer();
  void* path = PathOf({Pt(3, 4)});
  void* bez = Children(path)[0];
  void* loose = Art(2, 9, nullptr);  // unlinked: outlives the layer
  void* copy = nullptr;
  ASSERT_EQ(RvGiCopyPath(path, 3, nullptr, &copy), 0u);
  EXPECT_EQ(Type(copy), 4);
  EXPECT_TRUE(Children(copy).empty());
  // A component copy takes its points and its start handles.
  const RVPOINT startIn{5, 6};
  ASSERT_EQ(RvGiSetBezierStartInPoint(bez, &startIn), 0u);
  void* bcopy = nullptr;
  ASSERT_EQ(RvGiCopyPath(bez, 5, copy, &bcopy), 0u);
  EXPECT_EQ(Children(copy), (Arts{bcopy}));
  EXPECT_EQ(Anchors(bcopy), (V{3}));
  EXPECT_EQ(static_cast<rv::CRvBezier*>(bcopy)->StartIn().y, 6.0);
  EXPECT_TRUE(static_cast<rv::CRvBezier*>(bcopy)->HasStartIn());
  EXPECT_EQ(Children(layer), (Arts{path, copy}));

  void* out = reinterpret_cast<void*>(1);
  EXPECT_EQ(RvGiCopyPath(nullptr, 3, nullptr, &out), kNullPath);
  EXPECT_EQ(RvGiCopyPath(Art(1, 3, nullptr), 3, nullptr, &out), kWrongKind);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(RvGiCopyPath(bez, 0, path, &out), kBadReference);
  ASSERT_EQ(RvGiDeleteLayer(layer), 0u);
  EXPECT_EQ(RvGiCopyPath(loose, 3, nullptr, &out), 0x05000601u) << "no layer left";
  ASSERT_EQ(RvGiDeleteActiveDocument(), 0u);
  EXPECT_EQ(RvGiCopyPath(loose, 3, nullptr, &out), kNoDocument);
}

}  // namespace
