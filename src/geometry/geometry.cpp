#include "geometry/geometry.hpp"

#include <cmath>

#include "linalg/dense.hpp"

namespace jq::geo {

namespace {

constexpr double kHalfPi = 1.5707963267948966;
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = 180.0 / kPi;

// Axes of each convention, in the order the angles apply.
constexpr int kAxes[kConventions][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0},
                                        {0, 1, 0}, {0, 2, 0}, {1, 0, 1}, {1, 2, 1}, {2, 0, 2}, {2, 1, 2}};

// Frame rotation about one axis: the identity with c, s, -s, c placed on the
// two other axes, the sign pattern keeping the cyclic order X -> Y -> Z.
void elementary(int axis, double a, double m[9]) {
  const double c = std::cos(a), s = std::sin(a);
  for (int i = 0; i < 9; ++i) m[i] = i % 4 == 0 ? 1.0 : 0.0;
  const int p = (axis + 1) % 3, q = (axis + 2) % 3;
  m[p * 3 + p] = c;
  m[q * 3 + q] = c;
  m[p * 3 + q] = s;
  m[q * 3 + p] = -s;
}

}  // namespace

void rotate_2d(const double* x, const double* y, int64_t n, double angle, double* xo, double* yo) {
  const double c = std::cos(angle), s = std::sin(angle);
  for (int64_t i = 0; i < n; ++i) {
    const double xi = x[i], yi = y[i];
    xo[i] = xi * c + yi * s;
    yo[i] = yi * c - xi * s;
  }
}

void rotate_3d(const double* x, const double* y, const double* z, int64_t n, const double m[9], double* xo,
               double* yo, double* zo) {
  for (int64_t i = 0; i < n; ++i) {
    const double xi = x[i], yi = y[i], zi = z[i];
    xo[i] = m[0] * xi + m[1] * yi + m[2] * zi;
    yo[i] = m[3] * xi + m[4] * yi + m[5] * zi;
    zo[i] = m[6] * xi + m[7] * yi + m[8] * zi;
  }
}

int32_t euler_to_matrix(const double angles[3], int32_t convention, double r[9]) {
  const int* ax = kAxes[convention];
  double m1[9], m2[9], m3[9], m21[9];
  elementary(ax[0], angles[0], m1);
  elementary(ax[1], angles[1], m2);
  elementary(ax[2], angles[2], m3);
  int32_t code = linalg::matrix_product(m2, 3, 3, m1, 3, m21, false);
  if (code == kOk) code = linalg::matrix_product(m3, 3, 3, m21, 3, r, false);
  return code;
}

// The formulas read the transpose A = R^T, which is the active rotation
// Ri(a1) Rj(a2) Rk(a3); e is +1 when (i, j, k) runs in cyclic order.
void matrix_to_euler(const double r[9], int32_t convention, double angles[3]) {
  const int i = kAxes[convention][0], j = kAxes[convention][1];
  const int k = 3 - i - j;  // the axis not among the first two
  auto A = [&](int row, int col) { return r[col * 3 + row]; };
  const double e = (j - i + 3) % 3 == 1 ? 1.0 : -1.0;
  double& a1 = angles[0];
  double& a2 = angles[1];
  double& a3 = angles[2];
  if (kAxes[convention][2] != i) {
    // Three distinct axes: sin a2 = e A[i][k]; locked exactly at +-1.
    const double lock = A(i, k);
    if (std::fabs(lock) == 1.0) {
      a2 = e * lock > 0 ? kHalfPi : -kHalfPi;
      a3 = 0.0;
      a1 = std::atan2(e * A(k, j), A(j, j));
      return;
    }
    a2 = std::atan2(e * lock, std::sqrt(A(i, i) * A(i, i) + A(i, j) * A(i, j)));
    a3 = std::atan2(-e * A(i, j), A(i, i));
    a1 = std::atan2(-e * A(j, k), A(k, k));
    return;
  }
  // First axis repeated: cos a2 = A[i][i]; locked exactly at +-1 (a2 = 0 or pi).
  const double lock = A(i, i);
  if (std::fabs(lock) == 1.0) {
    a2 = lock > 0 ? 0.0 : kPi;
    a3 = 0.0;
    a1 = std::atan2(e * A(k, j), A(j, j));
    return;
  }
  a2 = std::atan2(std::sqrt(A(i, j) * A(i, j) + A(i, k) * A(i, k)), lock);
  a3 = std::atan2(A(i, j), e * A(i, k));
  a1 = std::atan2(A(j, i), -e * A(k, i));
}

void convert(const double* a, const double* b, const double* c, int64_t n, int32_t conversion, bool degrees,
             double* o1, double* o2, double* o3) {
  const double out = degrees ? kDeg : 1.0, in = degrees ? 1.0 / kDeg : 1.0;
  for (int64_t i = 0; i < n; ++i) {
    const double p = a[i], q = b[i], s = c[i];
    switch (conversion) {
      case 0:  // Cartesian -> spherical (r, azimuth, polar angle from +Z)
        o1[i] = std::sqrt(p * p + q * q + s * s);
        o2[i] = std::atan2(q, p) * out;
        o3[i] = std::atan2(std::sqrt(p * p + q * q), s) * out;
        break;
      case 1: {  // spherical -> Cartesian
        const double th = q * in, ph = s * in;
        o1[i] = p * std::sin(ph) * std::cos(th);
        o2[i] = p * std::sin(ph) * std::sin(th);
        o3[i] = p * std::cos(ph);
        break;
      }
      case 2:  // Cartesian -> cylindrical about Z
        o1[i] = std::sqrt(p * p + q * q);
        o2[i] = std::atan2(q, p) * out;
        o3[i] = s;
        break;
      case 3: {  // cylindrical about Z -> Cartesian
        const double th = q * in;
        o1[i] = p * std::cos(th);
        o2[i] = p * std::sin(th);
        o3[i] = s;
        break;
      }
      case 4: {  // cylindrical about Y (rho, y, theta) -> Cartesian
        const double th = s * in;
        o1[i] = p * std::sin(th);
        o2[i] = q;
        o3[i] = p * std::cos(th);
        break;
      }
      default:  // Cartesian -> cylindrical about Y
        o1[i] = std::sqrt(s * s + p * p);
        o2[i] = q;
        o3[i] = std::atan2(p, s) * out;
        break;
    }
  }
}

}  // namespace jq::geo
