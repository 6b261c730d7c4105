#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "rvdataaccess.h"

namespace {

constexpr double kPi = 3.141592653589793;

TEST(Matrix, BuildersOverwriteAllSixFields) {
  RVRIFMATRIX m{9, 9, 9, 9, 9, 9};
  RvMiSetMatrixIdentity(&m);
  EXPECT_EQ(m.a, 1);
  EXPECT_EQ(m.b, 0);
  EXPECT_EQ(m.c, 0);
  EXPECT_EQ(m.d, 1);
  EXPECT_EQ(m.tx, 0);
  EXPECT_EQ(m.ty, 0);
  RvMiSetMatrixTranslate(&m, 3, -4);
  EXPECT_EQ(m.a, 1);
  EXPECT_EQ(m.tx, 3);
  EXPECT_EQ(m.ty, -4);
  RvMiSetMatrixScale(&m, 2, 5);
  EXPECT_EQ(m.a, 2);
  EXPECT_EQ(m.d, 5);
  EXPECT_EQ(m.tx, 0);
  RvMiSetMatrix(&m, 1, 2, 3, 4, 5, 6);
  RVPOINT p{1, 1};
  RvMiMatrixCalcPoint(&m, &p, &p);  // in and out may be one record
  EXPECT_EQ(p.x, 1 + 3 + 5);
  EXPECT_EQ(p.y, 2 + 4 + 6);
}

TEST(Matrix, ConcatenationsActAfterWhatTheMatrixDoes) {
  RVRIFMATRIX m;
  RvMiSetMatrixTranslate(&m, 1, 1);
  RvMiConcatMatrixScale(&m, 2, 3);  // the translation is scaled too
  EXPECT_EQ(m.tx, 2);
  EXPECT_EQ(m.ty, 3);
  EXPECT_EQ(m.a, 2);
  EXPECT_EQ(m.d, 3);
  RvMiConcatMatrixTranslate(&m, -2, 1);
  EXPECT_EQ(m.tx, 0);
  EXPECT_EQ(m.ty, 4);
  EXPECT_EQ(m.a, 2);

  RvMiSetMatrixIdentity(&m);
  RvMiConcatMatrixRotate(&m, kPi / 2);
  RVPOINT in{1, 0}, out;
  RvMiMatrixCalcPoint(&m, &in, &out);
  EXPECT_NEAR(out.x, 0, 1e-15);
  EXPECT_NEAR(out.y, 1, 1e-15);

  // Rotation of a translated matrix turns the translation.
  RvMiSetMatrixTranslate(&m, 1, 0);
  RvMiConcatMatrixRotate(&m, kPi / 2);
  EXPECT_NEAR(m.tx, 0, 1e-15);
  EXPECT_NEAR(m.ty, 1, 1e-15);
  RVRIFMATRIX r;
  RvMiSetMatrixRotate(&r, kPi / 2);
  EXPECT_NEAR(r.a, 0, 1e-15);
  EXPECT_EQ(r.b, 1);
  EXPECT_EQ(r.c, -1);
}

TEST(Matrix, InverseUndoesAndSingularMatricesFail) {
  RVRIFMATRIX m{2, 1, -1, 3, 5, -7}, inv{}, back{};
  ASSERT_EQ(RvMiSetInvertMatrix(&m, &inv), 0u);
  RVPOINT p{1.25, -4.5}, q, r;
  RvMiMatrixCalcPoint(&m, &p, &q);
  RvMiMatrixCalcPoint(&inv, &q, &r);
  EXPECT_NEAR(r.x, p.x, 1e-12);
  EXPECT_NEAR(r.y, p.y, 1e-12);
  ASSERT_EQ(RvMiSetInvertMatrix(&inv, &back), 0u);
  EXPECT_NEAR(back.tx, 5, 1e-12);

  for (double angle : {0.0, 0.3, kPi, -2.0, 7.5}) {
    RVRIFMATRIX rot;
    RvMiSetMatrixRotate(&rot, angle);
    EXPECT_EQ(RvMiSetInvertMatrix(&rot, &inv), 0u) << angle;
  }
  RVRIFMATRIX untouched{9, 9, 9, 9, 9, 9};
  RVRIFMATRIX zeroX, zeroY;
  RvMiSetMatrixScale(&zeroX, 0, 2);
  RvMiSetMatrixScale(&zeroY, 2, 0);
  EXPECT_EQ(RvMiSetInvertMatrix(&zeroX, &untouched), 0x08001901u);
  EXPECT_EQ(RvMiSetInvertMatrix(&zeroY, &untouched), 0x08001901u);
  EXPECT_EQ(untouched.a, 9);
  EXPECT_EQ(untouched.ty, 9);
  EXPECT_EQ(g_ExceptionContext, nullptr);
}

TEST(Matrix, RectCornersAreMappedOneByOne) {
  RVRIFMATRIX m;
  RvMiSetMatrixTranslate(&m, 10, 20);
  RVRECT r{5, 1, 3, 2};  // top, left, right, bottom
  RVPOINT p1, p2, p3, p4;
  RvMiMatrixCalcRect(&m, &r, &p1, &p2, &p3, &p4);
  EXPECT_EQ(p1.x, 11);
  EXPECT_EQ(p1.y, 25);
  EXPECT_EQ(p2.x, 11);
  EXPECT_EQ(p2.y, 22);
  EXPECT_EQ(p3.x, 13);
  EXPECT_EQ(p3.y, 25);
  EXPECT_EQ(p4.x, 13);
  EXPECT_EQ(p4.y, 22);
}

TEST(Matrix, IdentityTestIsExact) {
  RVRIFMATRIX m;
  RvMiSetMatrixIdentity(&m);
  int32_t result = 7;
  RvMiIsMatrixIdentity(&m, &result);
  EXPECT_EQ(result, 1);
  m.a = std::nextafter(1.0, 2.0);
  RvMiIsMatrixIdentity(&m, &result);
  EXPECT_EQ(result, 0);
  RvMiSetMatrixIdentity(&m);
  m.ty = -0.0;  // negative zero equals zero
  RvMiIsMatrixIdentity(&m, &result);
  EXPECT_EQ(result, 1);
}

TEST(Points, EqualityIsASquareAndLengthIsEuclidean) {
  RVPOINT a{0, 0}, b{0.5, 0.5}, c{0.5, 0.5000001};
  EXPECT_EQ(RvMiPointEqual(&a, &a, 0.0), 1);
  EXPECT_EQ(RvMiPointEqual(&a, &b, 0.0), 0);
  EXPECT_EQ(RvMiPointEqual(&a, &b, 0.5), 1);  // the tolerance itself counts as equal
  EXPECT_EQ(RvMiPointEqual(&a, &c, 0.5), 0);  // each axis on its own: a square
  RVPOINT d{3, 4};
  EXPECT_EQ(RvMiPointLength(&a, &d), 5.0);
  EXPECT_EQ(RvMiPointLength(&d, &a), 5.0);
}

}  // namespace
