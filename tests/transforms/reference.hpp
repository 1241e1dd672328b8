// Long-double DFT sums and error measures for the transform tests.
#pragma once
#include <cmath>
#include <complex>
#include <cstdint>
#include <random>
#include <vector>

#include "transforms/fft.hpp"

namespace jqtest {

using cld = std::complex<long double>;
constexpr long double kPi = 3.141592653589793238462643383279502884L;

// The roots e^(-2 pi i k/n), k = 0 .. n-1, in long double.
inline std::vector<cld> roots(int32_t n) {
  std::vector<cld> w(n);
  for (int32_t k = 0; k < n; ++k) w[k] = std::polar(1.0L, -2 * kPi * k / n);
  return w;
}

// Bin k of the forward DFT of x (split parts; xi may be null for real data).
inline cld dft_bin(const std::vector<cld>& w, const double* xr, const double* xi, int32_t n, int32_t k) {
  cld s = 0;
  int64_t idx = 0;
  for (int32_t j = 0; j < n; ++j) {
    s += cld(xr[j], xi ? xi[j] : 0.0) * w[idx];
    idx += k;
    if (idx >= n) idx -= n;
  }
  return s;
}

inline std::vector<double> random_values(int32_t n, uint32_t seed) {
  std::mt19937 g(seed);
  std::uniform_real_distribution<double> u(-1, 1);
  std::vector<double> v(n);
  for (auto& x : v) x = u(g);
  return v;
}

// Bin k of a half-complex spectrum of length n.
inline std::complex<double> hc_bin(const double* h, int32_t n, int32_t k) {
  if (k == 0) return h[0];
  if (2 * k == n) return h[k];
  if (2 * k < n) return {h[k], h[n - k]};
  return {h[n - k], -h[k]};
}

constexpr double kEps = 2.220446049250313e-16;

// How deeply Rader factors nest in a table (a prime p uses a table of
// p-1, which may itself hold a Rader factor).
inline int rader_depth(const jq::fft::FFTTable* t) {
  int depth = 0;
  for (int i = 0; i < t->factor_count; ++i)
    if (t->kinds[i] == jq::fft::kRader) depth = std::max(depth, 1 + rader_depth(t->stages[i]->sub));
  return depth;
}

// The accuracy bound of a transform of length n: a small multiple of
// eps log2 n (with a floor for the shortest lengths). Every nested Rader
// convolution (two transforms and a transformed kernel) may cost a factor
// of about three.
inline double bound(const jq::fft::FFTTable* t) {
  const double n = t->length;
  double b = 4 * kEps * std::max(2.0, std::log2(n));
  for (int d = rader_depth(t); d > 1; --d) b *= 3;
  return b;
}

// e^(-2 pi i jk/n) for j = 0 .. n-1, by multiplication in long double,
// reseeded every 32 steps so the product's rounding stays negligible.
// (Plain arithmetic: complex long double products go through a slow
// library call.)
template <class F> void for_each_root(int32_t n, int32_t k, F&& f) {
  const long double step = -2 * kPi * k / n, rc = std::cos(step), rs = std::sin(step);
  long double c = 1, s = 0;
  for (int32_t j = 0; j < n; ++j) {
    if (j % 32 == 0) {
      const long double a = -2 * kPi * static_cast<long double>((int64_t(j) * k) % n) / n;
      c = std::cos(a);
      s = std::sin(a);
    }
    f(j, c, s);
    const long double c2 = c * rc - s * rs;
    s = c * rs + s * rc;
    c = c2;
  }
}

}  // namespace jqtest
