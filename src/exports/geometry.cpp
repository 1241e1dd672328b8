// Geometry exports: point sets are separate coordinate arrays of one length;
// the status is the result, and on an error every output is emptied (a
// matrix to 0 x 0) and every angle output reads NaN.
#include <limits>

#include "frame/export.hpp"
#include "geometry/geometry.hpp"
#include "jqanlys.h"
#include "linalg/frame.hpp"

using namespace jq;

namespace {

constexpr uint32_t kDefaultConvention = 10;  // Z, X, Z

using In = Array1<const double>;

// Point-set checks: empty, then lengths that differ.
template <class... A> int32_t points_check(const In& first, const A&... rest) {
  if (first.empty()) return kEmptyInput;
  return ((rest.size() != first.size()) || ...) ? kSizeMismatch : kOk;
}

// Runs fn(outputs...) after sizing every output to n; the Outputs set empties
// them all on any failure.
template <class Fn, class... O> int32_t with_outputs(int32_t code, int32_t n, Fn fn, O&... outs) {
  Outputs set(outs...);
  if (code) return set.fail(code);
  if (!(set.size(outs, n) && ...)) return set.fail(kNoMemory);
  return set.finish(fn());
}

bool is_3x3(Handle m) {
  Array2<const double> a(m);
  return a.rows() == 3 && a.cols() == 3;
}

int32_t rotate_euler(Handle x, Handle y, Handle z, const double angles[3], uint32_t conv, Handle xo, Handle yo,
                     Handle zo) {
  In X(x), Y(y), Z(z);
  Out<double> ox(xo), oy(yo), oz(zo);
  int32_t code = points_check(X, Y, Z);
  if (!code && conv >= geo::kConventions) code = kBadSelector;
  if (!code) code = linalg::ready();
  return with_outputs(code, X.size(), [&] {
    double r[9];
    const int32_t c = geo::euler_to_matrix(angles, static_cast<int32_t>(conv), r);
    if (!c) geo::rotate_3d(X.data(), Y.data(), Z.data(), X.size(), r, ox.data(), oy.data(), oz.data());
    return c;
  }, ox, oy, oz);
}

int32_t euler_to_direction(const double angles[3], uint32_t conv, Handle m) {
  Out2<double> out(m);
  Outputs set(out);
  if (conv >= geo::kConventions) return set.fail(kBadSelector);
  if (const int32_t c = linalg::ready()) return set.fail(c);
  if (!set.size(out, 3, 3)) return set.fail(kNoMemory);
  return set.finish(geo::euler_to_matrix(angles, static_cast<int32_t>(conv), out.data()));
}

int32_t direction_to_euler(Handle m, uint32_t conv, double* a1, double* a2, double* a3) {
  int32_t code = is_3x3(m) ? kOk : kSizeMismatch;
  if (!code && conv >= geo::kConventions) code = kBadSelector;
  double a[3];
  if (code) {
    a[0] = a[1] = a[2] = std::numeric_limits<double>::quiet_NaN();
  } else {
    geo::matrix_to_euler(Array2<const double>(m).data(), static_cast<int32_t>(conv), a);
  }
  if (a1) *a1 = a[0];
  if (a2) *a2 = a[1];
  if (a3) *a3 = a[2];
  return code;
}

}  // namespace

JQ_EXPORT int32_t CoordRotation2D_head(Handle x, Handle y, double angle, Handle xo, Handle yo) {
  In X(x), Y(y);
  Out<double> ox(xo), oy(yo);
  return with_outputs(points_check(X, Y), X.size(), [&] {
    geo::rotate_2d(X.data(), Y.data(), X.size(), angle, ox.data(), oy.data());
    return kOk;
  }, ox, oy);
}

JQ_EXPORT int32_t CoordRotationEuler2011_head(Handle x, Handle y, Handle z, double a1, double a2, double a3,
                                              uint32_t convention, Handle xo, Handle yo, Handle zo) {
  const double angles[3] = {a1, a2, a3};
  return rotate_euler(x, y, z, angles, convention, xo, yo, zo);
}

JQ_EXPORT int32_t CoordRotationEuler_head(Handle x, Handle y, Handle z, double a1, double a2, double a3, Handle xo,
                                          Handle yo, Handle zo) {
  const double angles[3] = {a1, a2, a3};
  return rotate_euler(x, y, z, angles, kDefaultConvention, xo, yo, zo);
}

JQ_EXPORT int32_t CoordRotationDirect_head(Handle x, Handle y, Handle z, Handle matrix, uint32_t mode, Handle xo,
                                           Handle yo, Handle zo) {
  In X(x), Y(y), Z(z);
  Out<double> ox(xo), oy(yo), oz(zo);
  int32_t code = points_check(X, Y, Z);
  if (!code && !is_3x3(matrix)) code = kSizeMismatch;
  if (!code && mode > 1) code = kBadSelector;
  return with_outputs(code, X.size(), [&] {
    // Mode 0 holds the angles between the axes; their cosines rotate.
    double r[9];
    const double* m = Array2<const double>(matrix).data();
    for (int i = 0; i < 9; ++i) r[i] = mode == 0 ? std::cos(m[i]) : m[i];
    geo::rotate_3d(X.data(), Y.data(), Z.data(), X.size(), r, ox.data(), oy.data(), oz.data());
    return kOk;
  }, ox, oy, oz);
}

JQ_EXPORT int32_t CartesianShift2D_head(Handle x, Handle y, double dx, double dy, Handle xo, Handle yo) {
  In X(x), Y(y);
  Out<double> ox(xo), oy(yo);
  return with_outputs(points_check(X, Y), X.size(), [&] {
    for (int32_t i = 0; i < X.size(); ++i) {
      ox.data()[i] = X[i] + dx;
      oy.data()[i] = Y[i] + dy;
    }
    return kOk;
  }, ox, oy);
}

JQ_EXPORT int32_t CartesianShift3D_head(Handle x, Handle y, Handle z, double dx, double dy, double dz, Handle xo,
                                        Handle yo, Handle zo) {
  In X(x), Y(y), Z(z);
  Out<double> ox(xo), oy(yo), oz(zo);
  return with_outputs(points_check(X, Y, Z), X.size(), [&] {
    for (int32_t i = 0; i < X.size(); ++i) {
      ox.data()[i] = X[i] + dx;
      oy.data()[i] = Y[i] + dy;
      oz.data()[i] = Z[i] + dz;
    }
    return kOk;
  }, ox, oy, oz);
}

JQ_EXPORT int32_t CoordConversion_head(Handle a, Handle b, Handle c, uint32_t conversion, uint32_t unit, Handle o1,
                                       Handle o2, Handle o3) {
  In A(a), B(b), C(c);
  Out<double> p(o1), q(o2), r(o3);
  int32_t code = points_check(A, B, C);
  if (!code && (conversion >= geo::kConversions || unit > 1)) code = kBadSelector;
  return with_outputs(code, A.size(), [&] {
    geo::convert(A.data(), B.data(), C.data(), A.size(), static_cast<int32_t>(conversion), unit == 1, p.data(),
                 q.data(), r.data());
    return kOk;
  }, p, q, r);
}

JQ_EXPORT int32_t Euler2Direction2011_head(double a1, double a2, double a3, uint32_t convention, Handle matrix) {
  const double angles[3] = {a1, a2, a3};
  return euler_to_direction(angles, convention, matrix);
}

JQ_EXPORT int32_t Euler2Direction_head(double a1, double a2, double a3, Handle matrix) {
  const double angles[3] = {a1, a2, a3};
  return euler_to_direction(angles, kDefaultConvention, matrix);
}

JQ_EXPORT int32_t Direction2Euler2011_head(Handle matrix, uint32_t convention, double* a1, double* a2, double* a3) {
  return direction_to_euler(matrix, convention, a1, a2, a3);
}

JQ_EXPORT int32_t Direction2Euler_head(Handle matrix, double* a1, double* a2, double* a3) {
  return direction_to_euler(matrix, kDefaultConvention, a1, a2, a3);
}
