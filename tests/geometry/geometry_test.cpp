// Euler conventions against scipy's rotations, the exact gimbal-lock rule,
// conversions that round-trip, and the family's rejections.
#include <cmath>
#include <vector>

#include "jqanlys.h"
#include "support/checks.hpp"

namespace {
#include "oracle.inc"

using jqrt::Array;
using jqrt::Array2;
using jqtest::Rejection;
using V = std::vector<double>;
constexpr double kPi = 3.141592653589793;

Array2<double> matrix9(const double* m) {
  Array2<double> a(3, 3);
  for (int i = 0; i < 9; ++i) a.data()[i] = m[i];
  return a;
}

TEST(Geometry, EulerConventionsMatchScipyBothWays) {
  const Array<double> x{1.0, -2.0, 0.5}, y{0.25, 3.0, -1.0}, z{-0.75, 0.5, 2.0};
  for (const EulerCase& c : kEuler) {
    SCOPED_TRACE(c.convention);
    Array2<double> m;
    ASSERT_EQ(Euler2Direction2011_head(c.angles[0], c.angles[1], c.angles[2], c.convention, m.h()), 0);
    ASSERT_EQ(m.rows(), 3);
    ASSERT_EQ(m.cols(), 3);
    for (int i = 0; i < 9; ++i) EXPECT_NEAR(m[i], c.matrix[i], 1e-14);
    double a[3];
    ASSERT_EQ(Direction2Euler2011_head(m.h(), c.convention, &a[0], &a[1], &a[2]), 0);
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(a[i], c.angles[i], 1e-12);
    // Rotating points applies the same matrix.
    Array<double> xo, yo, zo;
    ASSERT_EQ(CoordRotationEuler2011_head(x.h(), y.h(), z.h(), c.angles[0], c.angles[1], c.angles[2], c.convention,
                                          xo.h(), yo.h(), zo.h()),
              0);
    for (int i = 0; i < 3; ++i) {
      const double* r = c.matrix;
      EXPECT_NEAR(xo[i], r[0] * x[i] + r[1] * y[i] + r[2] * z[i], 1e-13);
      EXPECT_NEAR(yo[i], r[3] * x[i] + r[4] * y[i] + r[5] * z[i], 1e-13);
      EXPECT_NEAR(zo[i], r[6] * x[i] + r[7] * y[i] + r[8] * z[i], 1e-13);
    }
  }
}

TEST(Geometry, DefaultConventionIsZXZ) {
  Array2<double> m, m10;
  ASSERT_EQ(Euler2Direction_head(0.3, 1.1, -2.0, m.h()), 0);
  ASSERT_EQ(Euler2Direction2011_head(0.3, 1.1, -2.0, 10, m10.h()), 0);
  EXPECT_EQ(m.values(), m10.values());
  double a[3];
  ASSERT_EQ(Direction2Euler_head(m.h(), &a[0], &a[1], &a[2]), 0);
  EXPECT_NEAR(a[0], 0.3, 1e-13);
  EXPECT_NEAR(a[1], 1.1, 1e-13);
  EXPECT_NEAR(a[2], -2.0, 1e-13);
}

TEST(Geometry, GimbalLockIsAnExactComparison) {
  // Convention 0 locked: a2 = +-pi/2, a3 = 0, a1 = atan2(m5, m4).
  double m[9] = {0, 0.6, -0.8, 0, 0.8, 0.6, 1.0, 0, 0};
  double a[3];
  auto locked = matrix9(m);
  ASSERT_EQ(Direction2Euler2011_head(locked.h(), 0, &a[0], &a[1], &a[2]), 0);
  EXPECT_EQ(a[1], 1.5707963267948966);
  EXPECT_EQ(a[2], 0.0);
  EXPECT_EQ(a[0], std::atan2(0.6, 0.8));
  m[6] = -1.0;
  auto down = matrix9(m);
  ASSERT_EQ(Direction2Euler2011_head(down.h(), 0, &a[0], &a[1], &a[2]), 0);
  EXPECT_EQ(a[1], -1.5707963267948966);
  m[6] = 0.9999999999999999;
  auto near = matrix9(m);
  ASSERT_EQ(Direction2Euler2011_head(near.h(), 0, &a[0], &a[1], &a[2]), 0);
  EXPECT_EQ(a[1], std::atan2(m[6], 0.0));
  EXPECT_EQ(a[2], std::atan2(-0.0, 0.0));
  EXPECT_EQ(a[0], std::atan2(-0.0, 0.0));
  // Locked proper conventions come back as a matrix that rebuilds the input.
  for (int conv = 0; conv < 12; ++conv) {
    SCOPED_TRACE(conv);
    const double mid = conv < 6 ? (conv % 2 ? -1.5707963267948966 : 1.5707963267948966) : 3.141592653589793;
    Array2<double> r, back;
    ASSERT_EQ(Euler2Direction2011_head(0.7, mid, 0.0, conv, r.h()), 0);
    ASSERT_EQ(Direction2Euler2011_head(r.h(), conv, &a[0], &a[1], &a[2]), 0);
    ASSERT_EQ(Euler2Direction2011_head(a[0], a[1], a[2], conv, back.h()), 0);
    for (int i = 0; i < 9; ++i) EXPECT_NEAR(back[i], r[i], 1e-12);
  }
}

TEST(Geometry, PlaneRotationShiftAndDirectCosines) {
  const Array<double> x{1.0, 0.0}, y{0.0, 2.0}, z{3.0, -1.0};
  Array<double> xo, yo, zo;
  ASSERT_EQ(CoordRotation2D_head(x.h(), y.h(), kPi / 2, xo.h(), yo.h()), 0);
  // The frame turns by +90 degrees, so the point (1, 0) reads (0, -1).
  EXPECT_NEAR(xo[0], 0.0, 1e-15);
  EXPECT_NEAR(yo[0], -1.0, 1e-15);
  EXPECT_NEAR(xo[1], 2.0, 1e-15);
  ASSERT_EQ(CartesianShift3D_head(x.h(), y.h(), z.h(), 1, 2, 3, xo.h(), yo.h(), zo.h()), 0);
  EXPECT_EQ(zo.values(), (V{6.0, 2.0}));
  ASSERT_EQ(CartesianShift2D_head(x.h(), y.h(), -1, 0.5, xo.h(), yo.h()), 0);
  EXPECT_EQ(yo.values(), (V{0.5, 2.5}));
  // Mode 0 takes angles between axes: a quarter turn about Z.
  const double h = kPi / 2;
  const double angles[9] = {h, 0, h, kPi, h, h, h, h, 0};
  auto am = matrix9(angles);
  ASSERT_EQ(CoordRotationDirect_head(x.h(), y.h(), z.h(), am.h(), 0, xo.h(), yo.h(), zo.h()), 0);
  EXPECT_NEAR(xo[0], 0.0, 1e-15);
  EXPECT_NEAR(yo[0], -1.0, 1e-15);
  EXPECT_NEAR(zo[0], 3.0, 1e-15);
  const double cosines[9] = {0, 1, 0, -1, 0, 0, 0, 0, 1};
  auto cm = matrix9(cosines);
  ASSERT_EQ(CoordRotationDirect_head(x.h(), y.h(), z.h(), cm.h(), 1, xo.h(), yo.h(), zo.h()), 0);
  EXPECT_EQ(yo[0], -1.0);
  EXPECT_EQ(xo[1], 2.0);
}

TEST(Geometry, ConversionsRoundTripAndKnownPoints) {
  const Array<double> x{1.0, -2.0, 0.3, 0.0}, y{1.0, 0.5, -4.0, 0.0}, z{std::sqrt(2.0), -1.0, 2.5, -3.0};
  const int pairs[3][2] = {{0, 1}, {2, 3}, {5, 4}};
  for (uint32_t unit = 0; unit < 2; ++unit) {
    for (const auto& p : pairs) {
      SCOPED_TRACE(p[0] + 10 * unit);
      Array<double> a, b, c, x2, y2, z2;
      ASSERT_EQ(CoordConversion_head(x.h(), y.h(), z.h(), p[0], unit, a.h(), b.h(), c.h()), 0);
      ASSERT_EQ(CoordConversion_head(a.h(), b.h(), c.h(), p[1], unit, x2.h(), y2.h(), z2.h()), 0);
      for (int i = 0; i < 4; ++i) {
        EXPECT_NEAR(x2[i], x[i], 1e-14);
        EXPECT_NEAR(y2[i], y[i], 1e-14);
        EXPECT_NEAR(z2[i], z[i], 1e-14);
      }
    }
  }
  Array<double> r, th, ph;
  ASSERT_EQ(CoordConversion_head(x.h(), y.h(), z.h(), 0, 1, r.h(), th.h(), ph.h()), 0);
  EXPECT_NEAR(r[0], 2.0, 1e-15);
  EXPECT_NEAR(th[0], 45.0, 1e-13);
  EXPECT_NEAR(ph[0], 45.0, 1e-13);
  EXPECT_NEAR(ph[3], 180.0, 1e-13);
  ASSERT_EQ(CoordConversion_head(x.h(), y.h(), z.h(), 5, 0, r.h(), th.h(), ph.h()), 0);
  EXPECT_EQ(ph[0], std::atan2(1.0, std::sqrt(2.0)));
  EXPECT_EQ(th[1], 0.5);
}

TEST(Geometry, Rejections) {
  const Array<double> a{1, 2, 3}, b{1, 2, 3}, short2{1, 2}, empty;
  Array2<double> sq(3, 3), wide(3, 4);
  std::vector<Rejection> cases = {
      {"rotation 2-D, empty", -20003, [&](uint8_t** o) { return CoordRotation2D_head(empty.h(), empty.h(), 1, o, o); }},
      {"rotation 2-D, lengths", -20008, [&](uint8_t** o) { Array<double> p; return CoordRotation2D_head(a.h(), short2.h(), 1, p.h(), o); }},
      {"rotation 2-D, resize", -20001, [&](uint8_t** o) { Array<double> p; return CoordRotation2D_head(a.h(), b.h(), 1, p.h(), o); }, 2},
      {"Euler, convention", -20061, [&](uint8_t** o) { Array<double> p, q; return CoordRotationEuler2011_head(a.h(), b.h(), b.h(), 0, 0, 0, 12, p.h(), q.h(), o); }},
      {"Euler, empty before convention", -20003, [&](uint8_t** o) { Array<double> p, q; return CoordRotationEuler2011_head(empty.h(), b.h(), b.h(), 0, 0, 0, 12, p.h(), q.h(), o); }},
      {"Euler, null handles", -20003, [&](uint8_t** o) { Array<double> p, q; return CoordRotationEuler_head(nullptr, nullptr, nullptr, 0, 0, 0, o, p.h(), q.h()); }},
      {"Euler, resize", -20001, [&](uint8_t** o) { Array<double> p, q; return CoordRotationEuler_head(a.h(), b.h(), b.h(), 0, 0, 0, p.h(), q.h(), o); }, 3},
      {"direct, matrix", -20008, [&](uint8_t** o) { Array<double> p, q; return CoordRotationDirect_head(a.h(), b.h(), b.h(), wide.h(), 1, p.h(), q.h(), o); }},
      {"direct, mode", -20061, [&](uint8_t** o) { Array<double> p, q; return CoordRotationDirect_head(a.h(), b.h(), b.h(), sq.h(), 2, p.h(), q.h(), o); }},
      {"direct, lengths before matrix", -20008, [&](uint8_t** o) { Array<double> p, q; return CoordRotationDirect_head(a.h(), b.h(), short2.h(), nullptr, 9, p.h(), q.h(), o); }},
      {"shift 3-D, lengths", -20008, [&](uint8_t** o) { Array<double> p, q; return CartesianShift3D_head(a.h(), b.h(), short2.h(), 0, 0, 0, p.h(), q.h(), o); }},
      {"shift 2-D, empty", -20003, [&](uint8_t** o) { Array<double> p; return CartesianShift2D_head(empty.h(), empty.h(), 0, 0, p.h(), o); }},
      {"conversion, unit 2", -20061, [&](uint8_t** o) { Array<double> p, q; return CoordConversion_head(a.h(), b.h(), b.h(), 0, 2, p.h(), q.h(), o); }},
      {"conversion, code 6", -20061, [&](uint8_t** o) { Array<double> p, q; return CoordConversion_head(a.h(), b.h(), b.h(), 6, 0, p.h(), q.h(), o); }},
      {"to matrix, convention", -20061, [&](uint8_t** o) { return Euler2Direction2011_head(0, 0, 0, 0xFFFFFFFFu, o); }},
      {"to matrix, resize", -20001, [&](uint8_t** o) { return Euler2Direction_head(0, 0, 0, o); }, 1},
  };
  jqtest::expect_rejections<double>(cases);
  std::vector<Rejection> matrix_cases = {
      {"to matrix, convention", -20061, [&](uint8_t** o) { return Euler2Direction2011_head(0, 0, 0, 12, o); }},
  };
  jqtest::expect_rejections<double, 2>(matrix_cases);
  double a1 = 0, a2 = 0, a3 = 0;
  EXPECT_EQ(Direction2Euler2011_head(wide.h(), 0, &a1, &a2, &a3), -20008);
  EXPECT_TRUE(std::isnan(a1) && std::isnan(a2) && std::isnan(a3));
  EXPECT_EQ(Direction2Euler2011_head(sq.h(), 12, &a1, &a2, &a3), -20061);
  EXPECT_EQ(Direction2Euler_head(nullptr, &a1, &a2, &a3), -20008);
}

}  // namespace
