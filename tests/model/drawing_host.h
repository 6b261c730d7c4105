// Helpers of the drawing tests: they build drawings through the exported
// functions only, as a host does, and read them back the same way.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "drawing_text.h"
#include "rvdataaccess.h"

namespace drawtest {

constexpr uint32_t kNoDocument = 0x09001D01u;
constexpr uint32_t kNoLayer = 0x03000601u;
constexpr uint32_t kBadReference = 0x03000D01u;
constexpr uint32_t kNoParent = 0x03001001u;
constexpr uint32_t kNotLayer = 0x03000E01u;
constexpr uint32_t kNullPath = 0x05000D01u;
constexpr uint32_t kWrongKind = 0x05000E01u;
constexpr uint32_t kNullArt = 0x06001001u;
constexpr uint32_t kBadType = 0x06000D01u;
constexpr uint32_t kNoTag = 0x06001A01u;

using Arts = std::vector<void*>;
using V = std::vector<double>;

inline RVBEZIERPOINT Pt(double x, double y) { return RVBEZIERPOINT{{x, y}, {x, y}, {x, y}, 0}; }
inline RVBEZIERPOINT Pt(double x, double y, double inX, double inY, double outX, double outY) {
  return RVBEZIERPOINT{{x, y}, {inX, inY}, {outX, outY}, 0};
}

/// One value through a getter `fn(art, &value)` that must succeed; `value`
/// starts as `start`.
template <class T>
T Read(uint32_t (*fn)(void*, T*), void* art, T start = T{}) {
  T value = start;
  EXPECT_EQ(fn(art, &value), 0u);
  return value;
}
inline void* Parent(void* art) { return Read(RvGiGetArtParent, art, reinterpret_cast<void*>(1)); }
inline void* Sibling(void* art) { return Read(RvGiGetArtSibling, art, reinterpret_cast<void*>(1)); }
inline int16_t Type(void* art) { return Read<int16_t>(RvGiGetArtType, art, -1); }
/// A text through a getter `fn(art, text)` that must succeed.
inline std::string Text(uint32_t (*fn)(void*, char*), void* art) {
  char text[256] = {};
  EXPECT_EQ(fn(art, text), 0u);
  return text;
}
inline std::string ColorName(int16_t use, void* art) {
  char text[256] = {};
  EXPECT_EQ(RvGiGetPathColorName(use, art, text), 0u);
  return text;
}
inline V Rect(const RVRECT& r) { return {r.top, r.left, r.right, r.bottom}; }

using rvtest::Children;
using rvtest::ComponentText;
/// The same list walked backwards from the last child.
inline Arts ChildrenBackwards(void* last) {
  Arts out;
  for (; last != nullptr && out.size() < 100000; last = Read(RvGiGetArtPreSibling, last)) out.insert(out.begin(), last);
  return out;
}
/// Anchors x of a Bezier component (ComponentText gives every field).
inline V Anchors(void* bezier) {
  V out;
  for (int32_t i = 0; i < Read(RvGiGetPathSegmentCount, bezier); ++i) {
    RVBEZIERPOINT p{};
    EXPECT_EQ(RvGiGetBezierPoint(bezier, i, &p), 0u);
    out.push_back(p.anchor.x);
  }
  return out;
}

/// A fresh store with one document, active, without layers; every test
/// ends with the frame stack empty.
class Drawing : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(RvGiDeleteAllDocuments(), 0u);
    ASSERT_EQ(RvGiCreateDocument(0, &m_doc), 0u);
  }
  void TearDown() override {
    RvGiDeleteAllDocuments();
    EXPECT_EQ(g_ExceptionContext, nullptr);
  }

  static void* Layer(int16_t where = 1, void* reference = nullptr) {
    void* layer = nullptr;
    EXPECT_EQ(RvGiCreateLayer(where, reference, &layer), 0u);
    return layer;
  }
  static void* Art(int16_t type, int16_t position, void* reference) {
    void* art = nullptr;
    EXPECT_EQ(RvGiCreateArt(type, position, reference, &art), 0u);
    return art;
  }
  /// A path (in `parent`, or last in the current layer) with one Bezier
  /// component holding `points`.
  static void* PathOf(const std::vector<RVBEZIERPOINT>& points, void* parent = nullptr) {
    void* path = parent ? Art(4, 5, parent) : Art(4, 3, nullptr);
    void* bezier = Art(2, 5, path);
    for (const RVBEZIERPOINT& p : points) EXPECT_EQ(RvGiSetBezierPoint(bezier, &p), 0u);
    return path;
  }
  int16_t m_doc = -1;
};

}  // namespace drawtest
