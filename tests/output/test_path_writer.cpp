// The path writer and the frame on their own, with hand-worked bytes.
#include <gtest/gtest.h>

#include <string>

#include "output/rvl_format.h"
#include "test_support.h"

namespace {

RVBEZIERPOINT Pt(double x, double y) {
  RVBEZIERPOINT p{};
  p.anchor = {x, y};
  p.in = p.anchor;
  p.out = p.anchor;
  return p;
}

// A closed square (0,0) (0,10) (10,10) (10,0), its start stored twice.
rv::CRvBezier Square() {
  rv::CRvBezier b;
  for (auto xy : {std::pair{0, 0}, {0, 10}, {10, 10}, {10, 0}, {0, 0}}) b.AddPoint(Pt(xy.first, xy.second));
  return b;
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

RVRECT Rect(double left, double bottom, double right, double top) {
  RVRECT r;
  r.left = left;
  r.bottom = bottom;
  r.right = right;
  r.top = top;
  return r;
}

// Runs `body` on a format writing into a temporary file; returns the bytes.
template <class Body>
std::string Written(const RVPLOTPARAM& param, Body&& body) {
  rvtest::TempDir dir;
  const std::string path = dir.file("out.rvl");
  rv::CRvRVLFormat format(param);
  EXPECT_EQ(format.Open(path, "wb"), 0u);
  format.SetPlacement(rv::kIdentity, Rect(0, 0, 10, 10));
  body(format);
  EXPECT_EQ(format.Close(), 0u);
  return rvtest::ReadFile(path);
}

TEST(PathWriter, ClosedSquareInTheClassFamilies) {
  const rv::CRvBezier square = Square();
  auto write = [&](uint16_t cls, bool forward) {
    return Written(Param(cls, 0), [&](rv::CRvRVLFormat& f) {
      int needMove = 1;
      f.WritePath(square, rv::kIdentity, true, forward, needMove);
      EXPECT_EQ(needMove, 0);
    });
  };
  // y first; the closing curve from the repeated start to itself draws once more.
  EXPECT_EQ(write(6, true),
            "PU0.00,0.00;PD0.00,0.00;PD10.00,0.00;PD10.00,10.00;PD0.00,10.00;PD0.00,0.00;PD0.00,0.00;");
  // Classes 1, 2, 8, 9, 10 write x first.
  EXPECT_EQ(write(2, true),
            "PU0.00,0.00;PD0.00,0.00;PD0.00,10.00;PD10.00,10.00;PD10.00,0.00;PD0.00,0.00;PD0.00,0.00;");
  // Class 0 flips x over the placement rectangle's width.
  EXPECT_EQ(write(0, true),
            "PU0.00,10.00;PD0.00,10.00;PD10.00,10.00;PD10.00,0.00;PD0.00,0.00;PD0.00,10.00;PD0.00,10.00;");
  // Class 9 flips y.
  EXPECT_EQ(write(9, true),
            "PU0.00,10.00;PD0.00,10.00;PD0.00,0.00;PD10.00,0.00;PD10.00,10.00;PD0.00,10.00;PD0.00,10.00;");
  // Backward: from the start to the repeated start first, then round the other way.
  EXPECT_EQ(write(6, false),
            "PU0.00,0.00;PD0.00,0.00;PD0.00,0.00;PD0.00,10.00;PD10.00,10.00;PD10.00,0.00;PD0.00,0.00;");
}

TEST(PathWriter, OpenLinesUnitsStartSegmentAndNeedMove) {
  rv::CRvBezier line;
  line.AddPoint(Pt(0, 0));
  line.AddPoint(Pt(20, 5));
  RVPLOTPARAM p = Param(6, 2);
  p.deviceUnit = 0.025;
  EXPECT_EQ(Written(p, [&](rv::CRvRVLFormat& f) {
              int needMove = 1;
              f.WritePath(line, rv::kIdentity, false, true, needMove);
            }),
            "M0.00,0.00\x03" "D0.00,0.00\x03" "D200.00,800.00\x03");
  // The art matrix, then the placement: shifted by (1, 2), then by (10, 0).
  RVRIFMATRIX artMatrix = rv::kIdentity;
  artMatrix.tx = 1;
  artMatrix.ty = 2;
  RVRIFMATRIX placement = rv::kIdentity;
  placement.tx = 10;
  EXPECT_EQ(Written(Param(6, 4), [&](rv::CRvRVLFormat& f) {
              f.SetPlacement(placement, Rect(0, 0, 10, 10));
              int needMove = 0;  // no move
              f.WritePath(line, artMatrix, false, true, needMove);
            }),
            "PD2.00,11.00;PD7.00,31.00;");
  // Start segment 2 of the closed square: from (10,10) round to it.
  rv::CRvBezier square = Square();
  square.EnsureAttr().word = uint32_t(2) << 16;
  EXPECT_EQ(Written(Param(6, 0), [&](rv::CRvRVLFormat& f) {
              int needMove = 1;
              f.WritePath(square, rv::kIdentity, true, true, needMove);
            }),
            "PU10.00,10.00;PD10.00,10.00;PD0.00,10.00;PD0.00,0.00;PD0.00,0.00;PD10.00,0.00;PD10.00,10.00;");
  // Dialect 5 and 6 round to whole device units.
  EXPECT_EQ(Written(Param(6, 5), [&](rv::CRvRVLFormat& f) {
              int needMove = 1;
              f.WritePath(line, rv::kIdentity, false, true, needMove);
            }),
            "PU\rPA0,0\rPD\rPA0,0\rPD\rPA5,20\r");
  EXPECT_EQ(Written(Param(6, 3), [&](rv::CRvRVLFormat& f) {
              int needMove = 1;
              f.WritePath(line, rv::kIdentity, false, true, needMove);
            }),
            "");
}

TEST(PathWriter, VCutDrawsWithItsOwnRow) {
  rv::CRvBezier line;
  line.AddPoint(Pt(1, 2));
  line.AddPoint(Pt(3, 4));
  EXPECT_EQ(Written(Param(6, 1), [&](rv::CRvRVLFormat& f) {
              f.m_vCut = 1;
              int needMove = 1;
              f.WritePath(line, rv::kIdentity, false, true, needMove);
            }),
            "PU2.00,1.00;VA2.00,1.00;VA4.00,3.00;");
}

TEST(PathWriter, FrameRoundTheJob) {
  RVPLOTPARAM p = Param(0, 0);
  p.conditionSource = 1;
  p.defaultPen = 2;
  p.defaultSpeed = 30;
  p.defaultPress = 80;
  p.defaultOffset = 0.25;
  p.originX = 5;
  p.originY = 6;
  p.deviceMinX = 1;
  p.deviceMinY = 2;
  p.frameMarginX = 3;
  p.frameMarginY = 4;
  p.scaleX = 50;
  // rect w = 100, h = 40: a = 40, b = 100; p0 = 8, q0 = 6, p1 = 40 + 8 + 8 = 56,
  // q1 = 50 + 6 + 6 = 62.
  auto frame = [&](const RVPLOTPARAM& param) {
    return Written(param, [&](rv::CRvRVLFormat& f) {
      f.SetPlacement(rv::kIdentity, Rect(0, 0, 100, 40));
      f.WriteFrame();
    });
  };
  EXPECT_EQ(frame(p),
            "SP2;VS30,2;ZF80,2;ZO0.25;"
            "PU56.00,6.00;PD56.00,62.00;PD8.00,62.00;PD8.00,6.00;PD56.00,6.00;PU56.00,6.00;");
  p.machineType = 7;
  p.defaultSpeedExact = 12.25;
  p.plotterClass = 1;  // p and q exchange
  EXPECT_EQ(frame(p),
            "SP2;VS12.2,2;ZF80,2;ZO0.25;"
            "PU62.00,8.00;PD62.00,56.00;PD6.00,56.00;PD6.00,8.00;PD62.00,8.00;PU62.00,8.00;");
  p.plotterClass = 0;
  p.writeToolDefaults = 1;
  p.rotation = 0.5;  // any rotation but 0 and a half turn exchanges a and b
  // a = 100, b = 40: p1 = 100 + 8 + 8 = 116, q1 = 20 + 6 + 6 = 32.
  EXPECT_EQ(frame(p),
            "DF1;PU116.00,6.00;PD116.00,32.00;PD8.00,32.00;PD8.00,6.00;PD116.00,6.00;PU116.00,6.00;");
  p.conditionSource = 0;
  p.dialect = 2;
  p.deviceUnit = 2.0;
  EXPECT_EQ(frame(p),
            "M58.00,3.00\x03" "D58.00,16.00\x03" "D4.00,16.00\x03" "D4.00,3.00\x03" "D58.00,3.00\x03"
            "M58.00,3.00\x03");
}

TEST(PathWriter, ShortWriteClosesAndFails) {
  RVPLOTPARAM p = Param(6, 0);
  rv::CRvRVLFormat format(p);
  ASSERT_EQ(format.Open("/dev/full", "wb"), 0u);
  std::setvbuf(format.File(), nullptr, _IONBF, 0);
  const uint32_t code = rv::Guard([&] { format.WriteBytes("PU;", 3); });
  EXPECT_EQ(code, 0x01000301u);
  EXPECT_EQ(format.File(), nullptr);
  EXPECT_EQ(rv::Guard([&] { format.WriteBytes("", 0); }), 0u);
}

}  // namespace
