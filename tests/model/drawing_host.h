// Helpers of the drawing tests: they build drawings through the exported
// functions only, as a host does, and read them back the same way.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

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

inline RVBEZIERPOINT Pt(double x, double y) {
  RVBEZIERPOINT p{};
  p.anchor = p.in = p.out = RVPOINT{x, y};
  return p;
}

inline RVBEZIERPOINT Pt(double x, double y, double inX, double inY, double outX, double outY) {
  RVBEZIERPOINT p{};
  p.anchor = RVPOINT{x, y};
  p.in = RVPOINT{inX, inY};
  p.out = RVPOINT{outX, outY};
  return p;
}

/// The children of `art`, walked with first child and siblings.
inline std::vector<void*> Children(void* art) {
  std::vector<void*> out;
  void* child = nullptr;
  EXPECT_EQ(RvGiGetArtFirstChild(art, &child), 0u);
  while (child != nullptr) {
    out.push_back(child);
    EXPECT_EQ(RvGiGetArtSibling(child, &child), 0u);
    if (out.size() > 100000) break;
  }
  return out;
}
/// The same list walked backwards from the last child.
inline std::vector<void*> ChildrenBackwards(void* last) {
  std::vector<void*> out;
  while (last != nullptr) {
    out.insert(out.begin(), last);
    EXPECT_EQ(RvGiGetArtPreSibling(last, &last), 0u);
    if (out.size() > 100000) break;
  }
  return out;
}
inline void* Parent(void* art) {
  void* parent = reinterpret_cast<void*>(1);
  EXPECT_EQ(RvGiGetArtParent(art, &parent), 0u);
  return parent;
}
inline int16_t Type(void* art) {
  int16_t type = -1;
  EXPECT_EQ(RvGiGetArtType(art, &type), 0u);
  return type;
}
inline std::vector<double> AnchorsX(void* bezier) {
  int32_t count = 0;
  EXPECT_EQ(RvGiGetPathSegmentCount(bezier, &count), 0u);
  std::vector<double> xs;
  for (int32_t i = 0; i < count; ++i) {
    RVBEZIERPOINT p{};
    EXPECT_EQ(RvGiGetBezierPoint(bezier, i, &p), 0u);
    xs.push_back(p.anchor.x);
  }
  return xs;
}

/// A fresh store with one document, active, without layers.
class Drawing : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(RvGiDeleteAllDocuments(), 0u);
    ASSERT_EQ(RvGiCreateDocument(0, &m_doc), 0u);
  }
  void TearDown() override { RvGiDeleteAllDocuments(); }

  void* Layer(int16_t where = 1, void* reference = nullptr) {
    void* layer = nullptr;
    EXPECT_EQ(RvGiCreateLayer(where, reference, &layer), 0u);
    return layer;
  }
  void* Art(int16_t type, int16_t position, void* reference) {
    void* art = nullptr;
    EXPECT_EQ(RvGiCreateArt(type, position, reference, &art), 0u);
    return art;
  }
  int16_t m_doc = -1;
};

}  // namespace drawtest
