// A small drawing built through the exported functions, as a host would: the
// tool's readers and pictures are tested on it without any import.
#pragma once

#include <gtest/gtest.h>

#include "frame/frame.h"
#include "model/data_access.h"
#include "rvdataaccess.h"

namespace tooltest {

inline RVBEZIERPOINT Corner(double x, double y) {
  RVBEZIERPOINT p{};
  p.anchor = p.in = p.out = RVPOINT{x, y};
  return p;
}

/// One document with two layers:
///  "Frame": a closed square (10,10)-(30,30), drawn from (10,10) counter-
///           clockwise, as one Bezier of five points (the start repeated);
///  "Arcs":  an open path of one arc component: centre (40,20), from (50,20)
///           counter-clockwise through 180 degrees to (30,20), inside a group.
/// The document is deleted with the object.
class ApiDrawing {
 public:
  ApiDrawing() {
    EXPECT_EQ(RvGiCreateDocument(0, &m_index), 0u);
    void* frame = nullptr;
    EXPECT_EQ(RvGiCreateLayer(1, nullptr, &frame), 0u);
    EXPECT_EQ(RvGiSetLayerName(frame, "Frame"), 0u);
    EXPECT_EQ(RvGiCreateArt(4, 5, frame, &square), 0u);
    void* bezier = nullptr;
    EXPECT_EQ(RvGiCreateArt(2, 5, square, &bezier), 0u);
    for (auto [x, y] : {std::pair{10.0, 10.0}, {30.0, 10.0}, {30.0, 30.0}, {10.0, 30.0}, {10.0, 10.0}}) {
      const RVBEZIERPOINT p = Corner(x, y);
      EXPECT_EQ(RvGiAddBezierPoint(bezier, &p), 0u);
    }
    EXPECT_EQ(RvGiSetPathClosed(square, 1), 0u);

    void* arcs = nullptr;
    EXPECT_EQ(RvGiCreateLayer(1, nullptr, &arcs), 0u);
    EXPECT_EQ(RvGiSetLayerName(arcs, "Arcs"), 0u);
    void* group = nullptr;
    EXPECT_EQ(RvGiCreateArt(1, 5, arcs, &group), 0u);
    EXPECT_EQ(RvGiCreateArt(4, 5, group, &arc), 0u);
    void* component = nullptr;
    EXPECT_EQ(RvGiCreateArt(5, 5, arc, &component), 0u);
    RVARCPOINT piece{};
    piece.from = RVPOINT{50, 20};
    piece.to = RVPOINT{30, 20};
    piece.centre = RVPOINT{40, 20};
    piece.sweep = 180;
    piece.direction = 1;
    // Arc points have no exported append (importers add them inside the
    // library); the test goes through the same internal door.
    EXPECT_EQ(rv::Guard([&] { rv::CRvDataAccess::Instance().AddArcPoint(rv::ArtOf(component), piece); }),
              0u);
  }
  ~ApiDrawing() {
    if (RvGiSetActiveDocument(m_index) == 0) RvGiDeleteActiveDocument();
  }
  ApiDrawing(const ApiDrawing&) = delete;
  ApiDrawing& operator=(const ApiDrawing&) = delete;

  int16_t index() const { return m_index; }
  void* square = nullptr;
  void* arc = nullptr;

 private:
  int16_t m_index = -1;
};

}  // namespace tooltest
