// The window family. Windows given by a formula are evaluated sample by
// sample and multiplied in; Dolph-Chebyshev, defined through its spectrum, is
// built in a scratch array first.
#include "windows/windows.hpp"

#include <algorithm>
#include <cmath>

#include "frame/errors.hpp"
#include "frame/scratch.hpp"

namespace jq::win {
namespace {

constexpr double kPi = 3.141592653589793;

struct CosineWindow {
  int32_t code;
  int32_t terms;
  double a[7];
  Constants stored;
};

constexpr CosineWindow kCosine[] = {
    {0, 1, {1.0}, {1.0, 1.0}},
    {1, 2, {0.5, 0.5}, {1.5, 0.5}},
    {2, 2, {0.54, 0.46}, {1.362826, 0.54}},
    {3, 3, {0.42323, 0.49755, 0.07922}, {1.708538, 0.42323}},
    // The stored gain is deliberately the rounded a_0.
    {4, 3, {0.4265907136715391, 0.4965606190885641, 0.07684866723989682}, {1.693699, 0.42659071367}},
    {5, 3, {0.42, 0.5, 0.08}, {1.726757, 0.42}},
    {6, 5, {0.215578948, 0.41663158, 0.277263158, 0.083578947, 0.006947368}, {3.770246506303, 0.215578948}},
    {7, 4, {0.35875, 0.48829, 0.14128, 0.01168}, {2.004353, 0.35875}},
    {8, 7,
     {0.27105140069342415, 0.43329793923448606, 0.21812299954311062, 0.0659254463880309, 0.010811742098372268,
      0.0007765848252250934, 1.3887217350903198e-05},
     {2.631905, 0.27105140069342415}},
    {9, 5, {0.323215218, 0.471492057, 0.17553428, 0.028497078, 0.001261367}, {2.215350782519, 0.323215218}},
    {11, 4, {0.3635819, 0.4891775, 0.1365995, 0.0106411}, {1.9761117, 0.3635819}},
};

const CosineWindow* cosine_window(int32_t code) {
  for (const CosineWindow& w : kCosine)
    if (w.code == code) return &w;
  return nullptr;
}

// x[i] *= f(i) for every sample.
template <class T, class F> void multiply(T* x, int32_t n, F f) {
  for (int32_t i = 0; i < n; ++i) x[i] *= f(i);
}

// Zeroth-order modified Bessel function by its power series; each term comes
// from the previous one by the factor z^2 / (2k)^2.
double bessel_i0(double z) {
  const double z2 = z * z;
  double term = 1.0, sum = 1.0;
  for (int k = 1; k < 100000; ++k) {
    term *= z2 / ((2.0 * k) * (2.0 * k));
    sum += term;
    // A NaN term ends the loop as well.
    if (!(term > sum * 1e-17)) break;
  }
  return sum;
}

// A Dolph-Chebyshev window of length m, built (like scipy's chebwin) as the
// inverse DFT of the Chebyshev polynomial sampled on the unit circle,
// evaluated as a direct cosine sum over a table of cos(pi t / m). The
// polynomial is raised to the power m-1 and the sum cancels terms as large as
// the side-lobe ratio, so both are done in long double to keep the samples
// accurate to about 1e-15.
int32_t dolph_samples(double* w, int32_t m, double ratio) {
  using real = long double;
  if (m == 1) {
    w[0] = 1.0;
    return kOk;
  }
  Scratch<real> p, table;
  if (p.allocate(m) != kOk || table.allocate(2 * static_cast<size_t>(m)) != kOk) return kNoMemory;
  const real pi = 3.141592653589793238462643383279502884L;
  const real order = m - 1.0L;
  const real beta = std::cosh(std::acosh(static_cast<real>(ratio)) / order);
  for (int32_t k = 0; k < m; ++k) {
    const real x = beta * std::cos(pi * k / m);
    if (x > 1)
      p[k] = std::cosh(order * std::acosh(x));
    else if (x < -1)
      p[k] = (m % 2 ? 1.0L : -1.0L) * std::cosh(order * std::acosh(-x));
    else
      p[k] = std::cos(order * std::acos(x));
  }
  const int64_t period = 2 * static_cast<int64_t>(m);
  for (int64_t t = 0; t < period; ++t) table[t] = std::cos(pi * static_cast<real>(t) / m);
  // Odd m: W[j] = sum p_k cos(2 pi jk/m), w = W[h-1] ... W[1], W[0] ... W[h-1].
  // Even m: the spectrum is shifted by half a bin, W[j] = sum p_k cos(pi k(1-2j)/m),
  // w = W[h-1] ... W[1], W[1] ... W[h-1].
  const int32_t h = m % 2 ? (m + 1) / 2 : m / 2 + 1;
  Scratch<real> coefficients;
  if (coefficients.allocate(h) != kOk) return kNoMemory;
  real top = 0;
  for (int32_t j = 0; j < h; ++j) {
    const int64_t step = m % 2 ? 2 * static_cast<int64_t>(j) : 2 * static_cast<int64_t>(j) - 1;
    real s = 0;
    int64_t t = 0;
    for (int32_t k = 0; k < m; ++k) {
      s += p[k] * table[t];
      t = (t - step) % period;
      if (t < 0) t += period;
    }
    coefficients[j] = s;
    if (m % 2 || j > 0) top = std::max(top, s);
  }
  for (int32_t j = 0; j < h; ++j) {
    const double v = static_cast<double>(coefficients[j] / top);
    if (m % 2) {
      w[h - 1 - j] = v;
      w[h - 1 + j] = v;
    } else if (j > 0) {
      w[h - 1 - j] = v;
      w[h - 2 + j] = v;
    }
  }
  return kOk;
}

}  // namespace

int32_t cosine_terms(int32_t code, const double** a) {
  const CosineWindow* w = cosine_window(code);
  if (a) *a = w ? w->a : nullptr;
  return w ? w->terms : 0;
}

bool known_code(int32_t code) {
  return cosine_window(code) || (code >= kTriangle && code <= kWelch) ||
         (code >= kKaiser && code <= kGaussian);
}

bool stored_constants(int32_t code, Constants* c) {
  const CosineWindow* w = cosine_window(code);
  if (w && c) *c = w->stored;
  return w != nullptr;
}

// The parameter-default step: a parameter that is NaN, infinite or outside
// the window's domain takes a default that gives a useful window. Kaiser:
// beta 0.5 (a negative beta gives the same window as its magnitude, but is
// treated as a slip); Dolph-Chebyshev: 60 dB side lobes; Gaussian: sigma
// 0.2 of the length, the same default the Gaussian routine itself applies.
double default_parameter(int32_t code, double p) {
  switch (code) {
    case kKaiser: return std::isfinite(p) && p >= 0 ? p : 0.5;
    case kDolphChebyshev: return std::isfinite(p) && p > 0 ? p : 60.0;
    case kGaussian: return std::isfinite(p) && p > 0 ? p : 0.2;
    default: return p;
  }
}

// Like scipy's chebwin, the sign of the level is ignored: -60 dB and 60 dB
// both ask for side lobes 60 dB below the main lobe.
double level_ratio(double decibels) { return std::pow(10.0, std::fabs(decibels) / 20.0); }

template <class T> int32_t generalised_cosine(T* x, int32_t n, const double* a, int32_t terms) {
  if (n < 1) return kEmptyInput;
  if (terms < 1) return kBadSelector;
  // The angle 2 pi k i / n is reduced to 2 pi ((k i) mod n) / n in integers,
  // so long windows keep full accuracy and stay exactly periodic.
  multiply(x, n, [&](int32_t i) {
    double s = 0.0;
    for (int32_t k = 0; k < terms; ++k) {
      const int64_t r = static_cast<int64_t>(k) * i % n;
      const double c = a[k] * std::cos(2.0 * kPi * static_cast<double>(r) / n);
      s += (k % 2) ? -c : c;
    }
    return s;
  });
  return kOk;
}

template <class T> int32_t triangle(T* x, int32_t n) {
  if (n < 1) return kEmptyInput;
  const double step = 2.0 / n;
  multiply(x, n, [&](int32_t i) { return (i <= n / 2 ? i : n - i) * step; });
  return kOk;
}

// The next four follow scipy.signal.windows' periodic definitions: the
// symmetric window of length n+1 without its last sample. Unlike scipy, a
// window of one sample is the formula's value too (as for the cosine
// windows), so that the symmetric form of two samples built from it is
// scipy's symmetric window of two samples.
template <class T> int32_t bartlett_hann(T* x, int32_t n) {
  if (n < 1) return kEmptyInput;
  multiply(x, n, [&](int32_t i) {
    const double f = std::fabs(i / static_cast<double>(n) - 0.5);
    return 0.62 - 0.48 * f + 0.38 * std::cos(2.0 * kPi * f);
  });
  return kOk;
}

template <class T> int32_t bohman(T* x, int32_t n) {
  if (n < 1) return kEmptyInput;
  multiply(x, n, [&](int32_t i) {
    if (i == 0) return 0.0;
    const double f = std::fabs(-1.0 + i * (2.0 / n));
    return (1.0 - f) * std::cos(kPi * f) + 1.0 / kPi * std::sin(kPi * f);
  });
  return kOk;
}

template <class T> int32_t parzen(T* x, int32_t n) {
  if (n < 1) return kEmptyInput;
  // Offsets from the centre n/2 are measured against half the extended
  // length (n+1)/2, as scipy does.
  const double half = (n + 1) / 2.0;
  multiply(x, n, [&](int32_t i) {
    const double a = std::fabs(i - n / 2.0);
    const double r = a / half;
    if (a <= n / 4.0) return 1.0 - 6.0 * r * r + 6.0 * r * r * r;
    const double q = 1.0 - r;
    return 2.0 * q * q * q;
  });
  return kOk;
}

// Welch: the parabola 1 - ((i - n/2) / (n/2))^2, zero at i = 0 and (by
// periodicity) at i = n. Its coherent gain tends to 2/3 and its equivalent
// noise bandwidth to 1.2 as n grows.
template <class T> int32_t welch(T* x, int32_t n) {
  if (n < 1) return kEmptyInput;
  const double h = n / 2.0;
  multiply(x, n, [&](int32_t i) {
    const double r = (i - h) / h;
    return 1.0 - r * r;
  });
  return kOk;
}

template <class T> int32_t kaiser(T* x, int32_t n, double beta) {
  if (n < 1) return kEmptyInput;
  const double norm = bessel_i0(beta);
  multiply(x, n, [&](int32_t i) {
    const double xi = 1.0 - 2.0 * i / n;
    return bessel_i0(beta * std::sqrt(1.0 - xi * xi)) / norm;
  });
  return kOk;
}

template <class T> int32_t dolph_chebyshev(T* x, int32_t n, double ratio, bool symmetric) {
  if (n < 1) return kEmptyInput;
  if (!(ratio >= 1.0) || !std::isfinite(ratio)) return kBadShape;
  // The periodic window is the symmetric one of length n+1 without its last sample.
  if (!symmetric && n == INT32_MAX) return kTooLarge;
  const int32_t m = symmetric ? n : n + 1;
  Scratch<double> w;
  if (w.allocate(m) != kOk) return kNoMemory;
  if (int32_t rc = dolph_samples(w.data(), m, ratio)) return rc;
  multiply(x, n, [&](int32_t i) { return w[i]; });
  return kOk;
}

// Gaussian: the scale is s = sigma * n, so sigma is a fraction of the
// window's length and the default 0.2 leaves exp(-3.125) = 0.044 at the ends
// (the common "alpha = 2.5" Gaussian window). It equals scipy's
// gaussian(n, std = sigma * n) and is symmetric about (n-1)/2 at every length.
template <class T> int32_t gaussian(T* x, int32_t n, double sigma) {
  if (n < 1) return kEmptyInput;
  if (!(sigma > 0)) sigma = 0.2;
  const double s = sigma * n, centre = (n - 1) / 2.0;
  multiply(x, n, [&](int32_t i) {
    const double r = (i - centre) / s;
    return std::exp(-0.5 * (r * r));
  });
  return kOk;
}

// A NaN final value is rejected with the non-positive ones.
template <class T> int32_t exponential(T* x, int32_t n, double final_value) {
  if (n < 1) return kEmptyInput;
  if (n < 2) return kFewerThan2;
  if (!(final_value > 0)) return kNonPositiveLog;
  const double l = std::log(final_value);
  multiply(x, n, [&](int32_t i) { return std::exp(i * l / (n - 1)); });
  return kOk;
}

// Force: the kept count is rounded half away from zero; a NaN duty keeps nothing.
template <class T> int32_t force(T* x, int32_t n, double duty) {
  if (n < 1) return kEmptyInput;
  if (n < 2) return kFewerThan2;
  const double v = std::round(duty * 0.01 * n);
  const int32_t k = !(v > 0) ? 0 : v >= n ? n : static_cast<int32_t>(v);
  for (int32_t i = k; i < n; ++i) x[i] = T(0.0);
  return kOk;
}

template <class T> int32_t cosine_tapered(T* x, int32_t n, double ratio) {
  if (n < 1) return kEmptyInput;
  if (!(ratio > 0) || n == 1) return kOk;
  if (ratio >= 1) return by_code(x, n, kHann, 0.0);
  const int32_t m = static_cast<int32_t>(std::round(ratio * 0.5 * n));
  if (m < 1) return kOk;
  x[0] *= 0.0;
  x[n - 1] *= 0.0;
  for (int32_t i = 1; i < m; ++i) {
    const double s = std::sin(kPi * i / (2.0 * m));
    x[i] *= s * s;
    x[n - 1 - i] *= s * s;
  }
  return kOk;
}

template <class T> int32_t by_code(T* x, int32_t n, int32_t code, double p) {
  if (n < 1) return kEmptyInput;
  if (const CosineWindow* w = cosine_window(code)) {
    if (code == kRectangle) return kOk;
    return generalised_cosine(x, n, w->a, w->terms);
  }
  switch (code) {
    case kTriangle: return triangle(x, n);
    case kBartlettHann: return bartlett_hann(x, n);
    case kBohman: return bohman(x, n);
    case kParzen: return parzen(x, n);
    case kWelch: return welch(x, n);
    case kKaiser: return kaiser(x, n, p);
    case kDolphChebyshev: return dolph_chebyshev(x, n, level_ratio(p), false);
    case kGaussian: return gaussian(x, n, p);
    default: return kBadSelector;
  }
}

template <class T> int32_t symmetric(T* x, int32_t n, int32_t code, double p) {
  if (n < 1) return kEmptyInput;
  if (n == 1) return kOk;
  if (!known_code(code)) return kBadSelector;
  Scratch<double> w;
  if (w.allocate(n) != kOk) return kNoMemory;
  std::fill(w.data(), w.data() + n, 1.0);
  int32_t rc;
  if (code == kDolphChebyshev) {
    rc = dolph_chebyshev(w.data(), n, level_ratio(p), true);
  } else if (code == kGaussian) {
    rc = gaussian(w.data(), n, p);
  } else {
    rc = by_code(w.data(), n - 1, code, p);
    w[n - 1] = w[0];
  }
  if (rc != kOk) return rc;
  multiply(x, n, [&](int32_t i) { return w[i]; });
  return kOk;
}

int32_t samples(double* w, int32_t n, int32_t code, double p, bool symmetric_form) {
  if (n < 1) return kEmptyInput;
  std::fill(w, w + n, 1.0);
  return symmetric_form ? symmetric(w, n, code, p) : by_code(w, n, code, p);
}

void normalise_gain(double* w, int32_t n) {
  double s = 0.0;
  for (int32_t i = 0; i < n; ++i) s += w[i];
  const double mean = s / n;
  if (!(mean > 0) || !std::isfinite(mean)) return;
  for (int32_t i = 0; i < n; ++i) w[i] /= mean;
}

template <class T> void apply_samples(T* x, const double* w, int32_t n) {
  multiply(x, n, [&](int32_t i) { return w[i]; });
}

int32_t measure(const double* w, int32_t n, Constants* c) {
  if (n < 1 || !w) return kEmptyInput;
  double s = 0.0, s2 = 0.0;
  for (int32_t i = 0; i < n; ++i) {
    s += w[i];
    s2 += w[i] * w[i];
  }
  c->cg = s / n;
  c->enbw = n * s2 / (s * s);
  return kOk;
}

int32_t constants_by_code(int32_t n, int32_t code, double p, Constants* c) {
  if (n < 1) return kEmptyInput;
  if (!known_code(code)) return kBadSelector;
  if (stored_constants(code, c)) return kOk;
  Scratch<double> w;
  if (w.allocate(n) != kOk) return kNoMemory;
  std::fill(w.data(), w.data() + n, 1.0);
  if (int32_t rc = by_code(w.data(), n, code, p)) return rc;
  return measure(w.data(), n, c);
}

#define JQ_WINDOWS_FOR(T)                                                               \
  template int32_t generalised_cosine<T>(T*, int32_t, const double*, int32_t);          \
  template int32_t triangle<T>(T*, int32_t);                                            \
  template int32_t bartlett_hann<T>(T*, int32_t);                                       \
  template int32_t bohman<T>(T*, int32_t);                                              \
  template int32_t parzen<T>(T*, int32_t);                                              \
  template int32_t welch<T>(T*, int32_t);                                               \
  template int32_t kaiser<T>(T*, int32_t, double);                                      \
  template int32_t dolph_chebyshev<T>(T*, int32_t, double, bool);                       \
  template int32_t gaussian<T>(T*, int32_t, double);                                    \
  template int32_t exponential<T>(T*, int32_t, double);                                 \
  template int32_t force<T>(T*, int32_t, double);                                       \
  template int32_t cosine_tapered<T>(T*, int32_t, double);                              \
  template int32_t by_code<T>(T*, int32_t, int32_t, double);                            \
  template int32_t symmetric<T>(T*, int32_t, int32_t, double);                          \
  template void apply_samples<T>(T*, const double*, int32_t);
JQ_WINDOWS_FOR(double)
JQ_WINDOWS_FOR(cdouble)

}  // namespace jq::win
