// Conversions between second- and fourth-order cascade sections.
#include <algorithm>
#include <cmath>
#include <complex>

#include "filters/iir_design.hpp"
#include "frame/errors.hpp"

namespace jq::iir {

namespace {

using ld = long double;
using cld = std::complex<ld>;

// Roots of z⁴ + e1·z³ + e2·z² + e3·z + e4 by Aberth-Ehrlich iteration.
bool quartic_roots(const ld e[4], cld z[4]) {
  auto eval = [&](cld x, cld* d) {
    cld p = 1, q = 0;
    for (int i = 0; i < 4; ++i) q = q * x + p, p = p * x + e[i];
    *d = q;
    return p;
  };
  const ld r = std::pow(std::fabs(e[3]), 0.25L);
  for (int i = 0; i < 4; ++i) z[i] = std::polar(r, 0.4L + 1.5707963267948966L * (i + 0.25L));
  for (int iter = 0; iter < 200; ++iter) {
    ld worst = 0;
    for (int i = 0; i < 4; ++i) {
      cld d;
      const cld p = eval(z[i], &d);
      if (p == cld(0)) continue;
      const cld ratio = p / d;
      cld sum = 0;
      for (int j = 0; j < 4; ++j)
        if (j != i) sum += 1.0L / (z[i] - z[j]);
      const cld w = ratio / (1.0L - ratio * sum);
      if (!std::isfinite(w.real()) || !std::isfinite(w.imag())) return false;
      z[i] -= w;
      worst = std::max(worst, std::abs(w) / std::max(std::abs(z[i]), 1e-300L));
    }
    if (worst < 1e-19L) break;
  }
  return true;
}

// Newton steps on the coefficient equations of the factorisation, so that the
// product of the two quadratics reproduces the quartic to rounding even where
// roots lie close together.
void polish(const ld e[4], ld& c1, ld& c2, ld& d1, ld& d2) {
  for (int iter = 0; iter < 8; ++iter) {
    const ld f[4] = {c1 + d1 - e[0], c2 + c1 * d1 + d2 - e[1], c1 * d2 + c2 * d1 - e[2], c2 * d2 - e[3]};
    // Jacobian with respect to (c1, c2, d1, d2).
    ld J[4][5] = {{1, 0, 1, 0, -f[0]}, {d1, 1, c1, 1, -f[1]}, {d2, d1, c2, c1, -f[2]}, {0, d2, 0, c2, -f[3]}};
    for (int col = 0; col < 4; ++col) {
      int piv = col;
      for (int row = col + 1; row < 4; ++row)
        if (std::fabs(J[row][col]) > std::fabs(J[piv][col])) piv = row;
      if (J[piv][col] == 0) return;
      std::swap(J[col], J[piv]);
      for (int row = 0; row < 4; ++row) {
        if (row == col) continue;
        const ld m = J[row][col] / J[col][col];
        for (int k = col; k < 5; ++k) J[row][k] -= m * J[col][k];
      }
    }
    const ld dc1 = J[0][4] / J[0][0], dc2 = J[1][4] / J[1][1], dd1 = J[2][4] / J[2][2], dd2 = J[3][4] / J[3][3];
    if (!std::isfinite(dc1 + dc2 + dd1 + dd2)) return;
    c1 += dc1, c2 += dc2, d1 += dd1, d2 += dd2;
    if (std::fabs(dc1) + std::fabs(dc2) + std::fabs(dd1) + std::fabs(dd2) <= 1e-19L * (1 + std::fabs(c2) + std::fabs(d2)))
      return;
  }
}

// Conjugate pairs together: by falling imaginary part the roots run
// a+bi, c+di, c-di, a-bi, so the outer two and the inner two pair up. Real
// roots (imaginary parts at rounding level) pair with any partner.
void pair_roots(cld z[4]) {
  std::sort(z, z + 4, [](const cld& a, const cld& b) { return a.imag() > b.imag(); });
  std::swap(z[1], z[3]);
}

}  // namespace

bool factor_quartic(const double e_in[4], double c[2], double d[2]) {
  if (e_in[3] == 0) return false;
  const ld e[4] = {e_in[0], e_in[1], e_in[2], e_in[3]};
  cld z[4];
  if (!quartic_roots(e, z)) return false;
  pair_roots(z);
  // (1 - r·w)(1 - s·w) = 1 - (r + s)·w + r·s·w² for roots r, s in z.
  ld c1 = -(z[0] + z[1]).real(), c2 = (z[0] * z[1]).real();
  ld d1 = -(z[2] + z[3]).real(), d2 = (z[2] * z[3]).real();
  polish(e, c1, c2, d1, d2);
  c[0] = static_cast<double>(c1), c[1] = static_cast<double>(c2);
  d[0] = static_cast<double>(d1), d[1] = static_cast<double>(d2);
  return std::isfinite(c[0] + c[1] + d[0] + d[1]);
}

namespace {

// q with q·q = b (the numerators of Butterworth-like band sections are squares),
// or false.
bool square_root(const double b[5], double q[3]) {
  if (!(b[0] > 0)) return false;
  q[0] = std::sqrt(b[0]);
  q[1] = b[1] / (2 * q[0]);
  q[2] = (b[2] - q[1] * q[1]) / (2 * q[0]);
  const double scale = std::fabs(b[0]) + std::fabs(b[2]) + std::fabs(b[4]);
  return std::fabs(2 * q[1] * q[2] - b[3]) <= 1e-13 * scale && std::fabs(q[2] * q[2] - b[4]) <= 1e-13 * scale;
}

// Where a quadratic factor's roots lie: minus half its linear coefficient.
double centre(const double f[2]) { return -f[0] / 2; }

}  // namespace

int32_t to_fourth_order(int64_t ns, const double* rev2, const double* fwd2, int64_t rev_cap, double* rev4,
                        int64_t fwd_cap, double* fwd4) {
  const int64_t m = (ns + 1) / 2;
  if (rev_cap < 4 * m || fwd_cap < 5 * m) return kCoefficientLength;
  int64_t i = 0, k = 0;
  if (ns % 2) {
    const double a[4] = {rev2[0], rev2[1], 0, 0};
    const double b[5] = {fwd2[0], fwd2[1], fwd2[2], 0, 0};
    std::copy(a, a + 4, rev4), std::copy(b, b + 5, fwd4);
    i = k = 1;
  }
  for (; i + 1 < ns; i += 2, ++k) {
    const double x[3] = {1, rev2[2 * i], rev2[2 * i + 1]}, y[3] = {1, rev2[2 * i + 2], rev2[2 * i + 3]};
    const double* bx = fwd2 + 3 * i;
    const double* by = fwd2 + 3 * i + 3;
    for (int j = 0; j < 5; ++j) {
      double a = 0, b = 0;
      for (int t = std::max(0, j - 2); t <= std::min(2, j); ++t) a += x[t] * y[j - t], b += bx[t] * by[j - t];
      if (j > 0) rev4[4 * k + j - 1] = a;
      fwd4[5 * k + j] = b;
    }
  }
  return kOk;
}

int32_t to_second_order(int64_t ns, const double* rev4, const double* fwd4, int64_t rev_cap, double* rev2,
                        int64_t fwd_cap, double* fwd2) {
  if (rev_cap < 4 * ns || fwd_cap < 6 * ns) return kCoefficientLength;
  for (int64_t k = 0; k < ns; ++k) {
    const double* a = rev4 + 4 * k;
    const double* b = fwd4 + 5 * k;
    double* ra = rev2 + 4 * k;
    double* fb = fwd2 + 6 * k;
    double c[2], d[2];
    if (!factor_quartic(a, c, d)) {
      // A second-order section padded into a fourth-order slot: it stays the
      // first section and the second passes the signal through.
      ra[0] = a[0], ra[1] = a[1], ra[2] = 0, ra[3] = 0;
      fb[0] = b[0], fb[1] = b[1], fb[2] = b[2], fb[3] = 1, fb[4] = 0, fb[5] = 0;
      continue;
    }
    ra[0] = c[0], ra[1] = c[1], ra[2] = d[0], ra[3] = d[1];
    // The numerator: halves of a square, or its own factors matched to the
    // poles nearest them, the gain shared equally.
    double q[3];
    if (square_root(b, q)) {
      std::copy(q, q + 3, fb), std::copy(q, q + 3, fb + 3);
      continue;
    }
    double u[2], v[2];
    const double g = b[0];
    const double e[4] = {b[1] / g, b[2] / g, b[3] / g, b[4] / g};
    if (g == 0 || !factor_quartic(e, u, v)) {
      // No factorisation: the whole numerator cannot be shared, so the
      // section keeps the leading quadratic (only reached for degenerate input).
      fb[0] = b[0], fb[1] = b[1], fb[2] = b[2], fb[3] = 1, fb[4] = 0, fb[5] = 0;
      continue;
    }
    if ((centre(u) > centre(v)) != (centre(c) > centre(d))) std::swap(u, v);
    const double s = std::sqrt(std::fabs(g));
    const double s1 = g < 0 ? -s : s;
    fb[0] = s1, fb[1] = s1 * u[0], fb[2] = s1 * u[1];
    fb[3] = s, fb[4] = s * v[0], fb[5] = s * v[1];
  }
  return kOk;
}

}  // namespace jq::iir
