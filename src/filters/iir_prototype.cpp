#include "filters/iir_prototype.hpp"

#include "frame/errors.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace jq::iir {

namespace {

using cd = std::complex<double>;
using cld = std::complex<long double>;
constexpr double kPi = std::numbers::pi;

// 10^(dB/10) - 1 without cancellation for small figures.
double power_minus_one(double db) { return std::expm1(db * 0.1 * std::numbers::ln10); }

// ---- Jacobi elliptic functions through descending Landen transformations ----
//
// A modulus is kept with its complement, each computed without cancellation,
// because the elliptic designs drive one of them towards 0.
constexpr int kMaxLanden = 40;

struct Landen {
  double v[kMaxLanden];  // the descending moduli k1, k2, ...
  int n = 0;
  Landen(double k, double kp) {
    // Stops once the modulus is negligible; a degenerate k = 1 (kp = 0) stays
    // at 1 and is bounded by the count.
    while (n < kMaxLanden && k > 1e-18) {
      const double kn = (k / (1 + kp)) * (k / (1 + kp));
      kp = 2 * std::sqrt(kp) / (1 + kp);
      v[n++] = k = kn;
    }
  }
};

// cd(uK, k) and sn(uK, k) for complex u (u in units of the quarter period).
cd cde(cd u, const Landen& l) {
  cd w = std::cos(u * (kPi / 2));
  for (int i = l.n - 1; i >= 0; --i) w = (1 + l.v[i]) * w / (1.0 + l.v[i] * w * w);
  return w;
}
cd sne(cd u, const Landen& l) {
  cd w = std::sin(u * (kPi / 2));
  for (int i = l.n - 1; i >= 0; --i) w = (1 + l.v[i]) * w / (1.0 + l.v[i] * w * w);
  return w;
}
// The inverse of sn, in units of the quarter period.
cd asne(cd w, double k, const Landen& l) {
  for (int i = 0; i < l.n; ++i) {
    const double prev = i == 0 ? k : l.v[i - 1];
    w = w / (1.0 + std::sqrt(1.0 - w * w * (prev * prev))) * (2 / (1 + l.v[i]));
  }
  return 1.0 - std::acos(w) * (2 / kPi);
}

double agm(double a, double b) {
  for (int i = 0; i < 64 && std::fabs(a - b) > 1e-16 * a; ++i) {
    const double m = (a + b) / 2;
    b = std::sqrt(a * b);
    a = m;
  }
  return (a + b) / 2;
}

// k = (theta2/theta3)^2 of the nome q = exp(lnq), for q <= exp(-pi).
double modulus_of_nome(double lnq) {
  const double q = std::exp(lnq);
  double s2 = 0, s3 = 0;
  for (int m = 0; m < 12; ++m) {
    s2 += std::pow(q, double(m) * (m + 1));
    if (m > 0) s3 += std::pow(q, double(m) * m);
  }
  const double r = s2 / (1 + 2 * s3);
  return 4 * std::exp(lnq / 2) * r * r;
}

// Solves the degree equation: the modulus k whose ratio K'/K is that of k1
// divided by the order, with its complement.
void elliptic_degree(int32_t n, double k1, double k1p, double* k, double* kp) {
  const double lnq = -kPi * agm(1, k1p) / agm(1, k1) / n;
  if (lnq <= -kPi) {
    *k = modulus_of_nome(lnq);
    *kp = std::sqrt((1 - *k) * (1 + *k));
  } else {  // the complementary nome converges fast where q does not
    *kp = modulus_of_nome(kPi * kPi / lnq);
    *k = std::sqrt((1 - *kp) * (1 + *kp));
  }
}

// ---- Bessel poles: roots of the reverse Bessel polynomial --------------------

// Starting points for the poles: the roots s of the reverse Bessel polynomial.
void bessel_roots_start(int32_t n, cld* z) {
  // Starting points: Campos and Calderon's asymptotic approximation of the
  // zeros x of the ordinary Bessel polynomial, s = 1/x.
  const long double N = n;
  const long double S = 2 * N * N - 3 * N * N * N * N + N * N * N * N * N, R = 2 * N * N + N * N * N;
  const long double b3 = (16 - 8 * N) / S, b2 = (-24 - 12 * N + 12 * N * N) / S;
  const long double b1 = (8 + 24 * N - 12 * N * N - 2 * N * N * N) / S, b0 = (-6 * N + 5 * N * N * N - N * N * N * N) / S;
  const long double a1 = (-6 - 6 * N) / R, a2 = 6 / R;
  for (int32_t i = 0; i < n; ++i) {
    const long double k = i + 1;
    z[i] = n == 1 ? cld(-1) : 1.0L / cld(a1 * k + a2 * k * k, b0 + b1 * k + b2 * k * k + b3 * k * k * k);
  }
}

// Refines the roots through the zeros x = 1/s of the ordinary Bessel
// polynomial, which satisfy sum over j != i of 1/(x_i - x_j) + (x_i + 1)/x_i² = 0
// (from x²y'' + 2(x + 1)y' = n(n + 1)y). Newton's method on these relations
// never evaluates the polynomial, whose values near its roots cancel badly
// at high orders, so it keeps full precision at any order.
int32_t bessel_roots_polish(int32_t n, cld* z) {
  Scratch<cld> jac, x, f;
  if (jac.allocate(size_t(n) * n) || x.allocate(n) || f.allocate(n)) return kNoMemory;
  for (int32_t i = 0; i < n; ++i) x[i] = 1.0L / z[i];
  for (int iter = 0; iter < 100; ++iter) {
    for (int32_t i = 0; i < n; ++i) {
      cld fi = (x[i] + 1.0L) / (x[i] * x[i]), d = -1.0L / (x[i] * x[i]) - 2.0L / (x[i] * x[i] * x[i]);
      for (int32_t j = 0; j < n; ++j) {
        if (j == i) continue;
        const cld q = 1.0L / (x[i] - x[j]);
        fi += q;
        d -= q * q;
        jac[size_t(i) * n + j] = q * q;
      }
      jac[size_t(i) * n + i] = d;
      f[i] = -fi;
    }
    // Gaussian elimination with partial pivoting; f becomes the step.
    for (int32_t c = 0; c < n; ++c) {
      int32_t piv = c;
      for (int32_t r = c + 1; r < n; ++r)
        if (std::abs(jac[size_t(r) * n + c]) > std::abs(jac[size_t(piv) * n + c])) piv = r;
      if (jac[size_t(piv) * n + c] == cld(0)) return kOk;
      if (piv != c) {
        for (int32_t k = 0; k < n; ++k) std::swap(jac[size_t(c) * n + k], jac[size_t(piv) * n + k]);
        std::swap(f[c], f[piv]);
      }
      const cld inv = 1.0L / jac[size_t(c) * n + c];
      for (int32_t r = c + 1; r < n; ++r) {
        const cld m = jac[size_t(r) * n + c] * inv;
        if (m == cld(0)) continue;
        for (int32_t k = c + 1; k < n; ++k) jac[size_t(r) * n + k] -= m * jac[size_t(c) * n + k];
        f[r] -= m * f[c];
      }
    }
    long double worst = 0;
    for (int32_t c = n - 1; c >= 0; --c) {
      cld v = f[c];
      for (int32_t k = c + 1; k < n; ++k) v -= jac[size_t(c) * n + k] * f[k];
      f[c] = v / jac[size_t(c) * n + c];
    }
    for (int32_t i = 0; i < n; ++i) {
      if (!std::isfinite(f[i].real()) || !std::isfinite(f[i].imag())) return kOk;
      worst = std::max(worst, std::abs(f[i]) / std::abs(x[i]));
    }
    // Far from the solution the steps are damped to a tenth of each zero's size.
    const long double damp = worst > 0.1L ? 0.1L / worst : 1.0L;
    for (int32_t i = 0; i < n; ++i) x[i] += damp * f[i];
    for (int32_t i = 0; i < n; ++i) z[i] = 1.0L / x[i];
    if (!(worst > 1e-18L)) break;
  }
  return kOk;
}

}  // namespace

int32_t Prototype::init(Family family, int32_t order, const Figures& f) {
  family_ = family;
  order_ = order;
  gain_ = 1;
  switch (family) {
    case kChebyshev: {
      const double eps = std::sqrt(power_minus_one(f.ripple));
      const double mu = std::asinh(1 / eps) / order;
      sh_ = std::sinh(mu), ch_ = std::cosh(mu);
      if (order % 2 == 0) gain_ = 1 / std::sqrt(1 + eps * eps);
      return kOk;
    }
    case kInvChebyshev: {
      const double mu = std::asinh(std::sqrt(power_minus_one(f.attenuation))) / order;
      sh_ = std::sinh(mu), ch_ = std::cosh(mu);
      return kOk;
    }
    case kElliptic: {
      const double ep = std::sqrt(power_minus_one(f.ripple));
      const double es = std::sqrt(power_minus_one(f.attenuation));
      const double k1 = ep / es;
      const double k1p = std::sqrt((1 - k1) * (1 + k1));
      elliptic_degree(order, k1, k1p, &k_, &kp_);
      // The imaginary offset that puts the passband ripple at ep.
      v0_ = (asne(cd(0, 1 / ep), k1, Landen(k1, k1p)) * cd(0, -1)).real() / order;
      if (order % 2 == 0) gain_ = 1 / std::sqrt(1 + ep * ep);
      return kOk;
    }
    case kBessel: {
      if (int32_t rc = poles_.allocate(order)) return rc;
      Scratch<cld> z;
      if (int32_t rc = z.allocate(order)) return rc;
      bessel_roots_start(order, z.data());
      if (int32_t rc = bessel_roots_polish(order, z.data())) return rc;
      // Upper half plane by falling imaginary part; an odd order's real root
      // then sits at index order / 2.
      std::sort(z.data(), z.data() + order, [](const cld& a, const cld& b) { return a.imag() > b.imag(); });
      const int32_t pairs = order / 2;
      // Scale so that |H(j)| = 1/sqrt(2): the edge is the half-power point.
      auto excess = [&](double w) {
        long double s = 0;
        for (int32_t i = 0; i < pairs; ++i) {
          const cld p = z[i];
          s += std::log(std::norm(cld(0, w) - p) / std::norm(p)) + std::log(std::norm(cld(0, w) - std::conj(p)) / std::norm(p));
        }
        if (order % 2) s += std::log((z[pairs].real() * z[pairs].real() + (long double)w * w) / (z[pairs].real() * z[pairs].real()));
        return static_cast<double>(s - std::log(2.0L));
      };
      double lo = 0, hi = 1;
      for (int i = 0; i < 2000 && excess(hi) < 0; ++i) lo = hi, hi *= 2;
      for (int i = 0; i < 200 && hi - lo > 1e-17 * hi; ++i) {
        const double mid = (lo + hi) / 2;
        (excess(mid) < 0 ? lo : hi) = mid;
      }
      const double w3 = (lo + hi) / 2;
      for (int32_t i = 0; i < order; ++i) poles_[i] = cd(double(z[i].real() / w3), double(z[i].imag() / w3));
      if (order % 2) poles_[pairs] = cd(poles_[pairs].real(), 0);
      return kOk;
    }
    case kButterworth:
      return kOk;
  }
  return kOk;
}

AnalogSection Prototype::real_pole() const {
  switch (family_) {
    case kChebyshev:
      return {0, sh_, 0, sh_};
    case kInvChebyshev:
      return {0, 1 / sh_, 0, 1 / sh_};
    case kElliptic: {
      const double p = -(sne(cd(0, v0_), Landen(k_, kp_)) * cd(0, 1)).real();
      return {0, p, 0, p};
    }
    case kBessel: {
      const double p = -poles_[order_ / 2].real();
      return {0, p, 0, p};
    }
    default:
      return {0, 1, 0, 1};
  }
}

AnalogSection Prototype::pair(int64_t k) const {
  const double phi = kPi / 2 + kPi * (2 * k + 1) / (2.0 * order_);
  const double g = k == 0 ? gain_ : 1;
  switch (family_) {
    case kChebyshev: {
      const double re = sh_ * std::cos(phi), im = ch_ * std::sin(phi);
      const double d0 = re * re + im * im;
      return {0, d0 * g, -2 * re, d0};
    }
    case kInvChebyshev: {
      // The reciprocal of the Chebyshev pole, with zeros at +-j / sin(phi).
      const double re = sh_ * std::cos(phi), im = ch_ * std::sin(phi);
      const double m = re * re + im * im;
      const double d0 = 1 / m, s = std::sin(phi);
      return {d0 * s * s, d0, -2 * re / m, d0};
    }
    case kElliptic:
      return elliptic_pair(k);
    case kBessel:
      return bessel_pair(k);
    default:
      return {0, 1, -2 * std::cos(phi), 1};
  }
}

AnalogSection Prototype::elliptic_pair(int64_t k) const {
  const Landen l(k_, kp_);
  const double u = (2.0 * k + 1) / order_;
  const double zero = 1 / (k_ * cde(cd(u, 0), l).real());
  const cd p = cde(cd(u, -v0_), l) * cd(0, 1);
  const double d0 = std::norm(p);
  const double g = k == 0 ? gain_ : 1;
  return {d0 / (zero * zero) * g, d0 * g, -2 * p.real(), d0};
}

AnalogSection Prototype::bessel_pair(int64_t k) const {
  const cd p = poles_[k];
  const double d0 = std::norm(p);
  return {0, d0, -2 * p.real(), d0};
}

}  // namespace jq::iir
