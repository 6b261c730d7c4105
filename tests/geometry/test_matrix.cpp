#include <cmath>
#include <tuple>
#include <utility>

#include "geometry_test.h"

using namespace geotest;

namespace {

V Fields(const RVRIFMATRIX& m) { return {m.a, m.b, m.c, m.d, m.tx, m.ty}; }

V Map(const RVRIFMATRIX& m, double x, double y) {
  RVPOINT p{x, y};
  RvMiMatrixCalcPoint(&m, &p, &p);  // in and out may be one record
  return XY(p);
}

TEST(Matrix, BuildersOverwriteAllFieldsAndConcatenationsActAfterThem) {
  RVRIFMATRIX m{9, 9, 9, 9, 9, 9};
  RvMiSetMatrixIdentity(&m);
  EXPECT_EQ(Fields(m), (V{1, 0, 0, 1, 0, 0}));
  RvMiSetMatrixTranslate(&m, 3, -4);
  EXPECT_EQ(Fields(m), (V{1, 0, 0, 1, 3, -4}));
  RvMiSetMatrixScale(&m, 2, 5);
  EXPECT_EQ(Fields(m), (V{2, 0, 0, 5, 0, 0}));
  RvMiSetMatrix(&m, 1, 2, 3, 4, 5, 6);
  EXPECT_EQ(Map(m, 1, 1), (V{1 + 3 + 5, 2 + 4 + 6}));
  RvMiSetMatrixRotate(&m, kPi / 2);
  ExpectNear(Fields(m), {0, 1, -1, 0, 0, 0}, 1e-15);

  // Scaling after a translation scales the translation; a translation after
  // that isn't scaled; a rotation after it turns it.
  RvMiSetMatrixTranslate(&m, 1, 1);
  RvMiConcatMatrixScale(&m, 2, 3);
  RvMiConcatMatrixTranslate(&m, -2, 1);
  EXPECT_EQ(Fields(m), (V{2, 0, 0, 3, 0, 4}));
  RvMiSetMatrixTranslate(&m, 1, 0);
  RvMiConcatMatrixRotate(&m, kPi / 2);
  ExpectNear(Fields(m), {0, 1, -1, 0, 0, 1}, 1e-15);
}

TEST(Matrix, InverseByHandAndSingularMatricesFail) {
  // det = 7: the inverse is (3, -1, 1, 2, -8, 19) / 7.
  RVRIFMATRIX m{2, 1, -1, 3, 5, -7}, inv{};
  ASSERT_EQ(RvMiSetInvertMatrix(&m, &inv), 0u);
  ExpectNear(Fields(inv), {3 / 7.0, -1 / 7.0, 1 / 7.0, 2 / 7.0, -8 / 7.0, 19 / 7.0}, 1e-15);
  RVRIFMATRIX untouched{9, 9, 9, 9, 9, 9};
  for (auto [sx, sy] : {std::pair{0.0, 2.0}, std::pair{2.0, 0.0}}) {
    RvMiSetMatrixScale(&m, sx, sy);
    EXPECT_EQ(RvMiSetInvertMatrix(&m, &untouched), 0x08001901u);
  }
  EXPECT_EQ(Fields(untouched), V(6, 9));
  EXPECT_EQ(g_ExceptionContext, nullptr);
}

TEST(Matrix, RectCornersOneByOneAndAnExactIdentityTest) {
  RVRIFMATRIX m;
  RvMiSetMatrixTranslate(&m, 10, 20);
  const RVRECT r{5, 1, 3, 2};  // top, left, right, bottom
  RVPOINT p[4];
  RvMiMatrixCalcRect(&m, &r, &p[0], &p[1], &p[2], &p[3]);
  EXPECT_EQ((V{p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y, p[3].x, p[3].y}), (V{11, 25, 11, 22, 13, 25, 13, 22}));
  int32_t result = 7;
  // The identity test is exact, but negative zero equals zero.
  const std::tuple<double*, double, int32_t> cases[] = {
      {&m.a, 1, 1}, {&m.a, std::nextafter(1.0, 2.0), 0}, {&m.ty, -0.0, 1}};
  for (auto [field, value, identity] : cases) {
    RvMiSetMatrixIdentity(&m);
    *field = value;
    RvMiIsMatrixIdentity(&m, &result);
    EXPECT_EQ(result, identity) << value;
  }
}

TEST(Points, EqualityIsASquareAndLengthIsEuclidean) {
  const RVPOINT a{0, 0}, b{0.5, 0.5}, c{0.5, 0.5000001}, d{3, 4};
  EXPECT_EQ(RvMiPointEqual(&a, &a, 0.0), 1);
  EXPECT_EQ(RvMiPointEqual(&a, &b, 0.0), 0);
  EXPECT_EQ(RvMiPointEqual(&a, &b, 0.5), 1);  // the tolerance itself counts as equal
  EXPECT_EQ(RvMiPointEqual(&a, &c, 0.5), 0);  // each axis on its own: a square
  EXPECT_EQ(RvMiPointLength(&d, &a), 5.0);
}

}  // namespace
