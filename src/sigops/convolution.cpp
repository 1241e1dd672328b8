#include "sigops/convolution.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <type_traits>

#include "frame/errors.hpp"
#include "frame/scratch.hpp"
#include "sigops/kernels.hpp"
#include "transforms/fft.hpp"
#include "transforms/shared_table.hpp"

namespace jq::sig {

int64_t transform_length(int64_t n) {
  // 23 is left out on purpose: the engine has no butterfly of its own for it.
  static constexpr int64_t kPrimes[] = {43, 41, 37, 31, 29, 19, 17, 13, 11, 7, 5, 3, 2};
  for (int64_t l = std::max<int64_t>(n, 1); l <= INT32_MAX; ++l) {
    int64_t r = l;
    for (int64_t p : kPrimes)
      while (r % p == 0) r /= p;
    if (r == 1) return l;
  }
  return 0;
}

namespace {

using fft::SharedTable;

// A real sequence read forwards, or backwards for the x of a correlation.
struct Seq {
  const double* p;
  int32_t n;
  bool reversed;
  // Elements [start, start + count) of the sequence as read.
  void copy(int64_t start, int32_t count, double* dst) const {
    if (reversed)
      std::reverse_copy(p + (n - start - count), p + (n - start), dst);
    else
      std::copy(p + start, p + start + count, dst);
  }
};

// The longest transform of a whole product; past it tables grow expensive.
constexpr int64_t kWholeAtMost = 1 << 19;

double fft_cost(double l) { return l * std::log2(std::max(l, 2.0)); }

// The block length of an overlap-add run for a kernel of k values over a
// signal of n: the length 2^a 3^b 5^c (the engine's fastest) with the least
// estimated work. 0 when one transform of the whole is cheaper.
int32_t block_length(int64_t n, int64_t k) {
  const double whole = 3 * fft_cost(static_cast<double>(transform_length(n + k - 1)));
  double best = 0.8 * whole;  // blocks must win clearly to be worth their overhead
  int32_t chosen = 0;
  const int64_t lo = 2 * k, hi = std::min<int64_t>(32 * k, n + k - 1);
  for (int64_t p5 = 1; p5 <= hi; p5 *= 5)
    for (int64_t p3 = p5; p3 <= hi; p3 *= 3)
      for (int64_t b = p3; b <= hi; b *= 2) {
        if (b < lo) continue;
        const double blocks = std::ceil(static_cast<double>(n) / static_cast<double>(b - k + 1));
        // Blocks that no longer fit the cache run at half speed.
        const double cost = (2 * blocks + 1) * fft_cost(static_cast<double>(b)) * (b > 32768 ? 2.0 : 1.0);
        if (cost < best) {
          best = cost;
          chosen = static_cast<int32_t>(b);
        }
      }
  return chosen;
}

// Overlap-add: the kernel's spectrum once, then each block of the long
// sequence forward, times the kernel, back, and added into place.
int32_t overlap_add(const Seq& a, const Seq& k, int32_t B, double* out) {
  const int32_t step = B - k.n + 1;
  Scratch<double> s;
  if (s.allocate(3 * static_cast<size_t>(B))) return kNoMemory;
  double *K = s.data(), *w = K + B, *v = w + B;
  SharedTable t(static_cast<uint32_t>(B));
  if (!t.get()) return kNoMemory;
  k.copy(0, k.n, w);
  std::fill(w + k.n, w + B, 0.0);
  if (int32_t rc = fft::ExecuteRealFFT(t.get(), w, K, 1, 1, B)) return rc;
  std::fill(out, out + (int64_t{a.n} + k.n - 1), 0.0);
  for (int64_t start = 0; start < a.n; start += step) {
    const int32_t len = static_cast<int32_t>(std::min<int64_t>(step, a.n - start));
    a.copy(start, len, w);
    std::fill(w + len, w + B, 0.0);
    if (int32_t rc = fft::ExecuteRealFFT(t.get(), w, v, 1, 1, B)) return rc;
    multiply_half_complex(v, K, w, B);
    if (int32_t rc = fft::ExecuteInverseRealFFT(t.get(), w, v, 1, 1, B)) return rc;
    double* o = out + start;
    const int32_t produced = len + k.n - 1;
    for (int32_t i = 0; i < produced; ++i) o[i] += v[i];
  }
  return kOk;
}

// Two long sequences: both are cut into blocks of B/2 values whose spectra
// (length B) are taken once; output block k gathers the products of the
// block pairs i + j = k, goes back and is added into place. Transforms of the
// whole would be few but long, and a long transform's table costs more to
// build than the work it saves.
int32_t partitioned(const Seq& a, const Seq& b, int32_t B, double* out) {
  const int32_t P = B / 2;
  const int64_t na = (a.n + int64_t{P} - 1) / P, nb = (b.n + int64_t{P} - 1) / P;
  Scratch<double> s;
  if (s.allocate(static_cast<size_t>(na + nb + 2) * B)) return kNoMemory;
  double* spectra = s.data();
  double *acc = spectra + (na + nb) * B, *w = acc + B;
  SharedTable t(static_cast<uint32_t>(B));
  if (!t.get()) return kNoMemory;
  auto block_spectrum = [&](const Seq& q, int64_t i, double* dst) {
    const int32_t len = static_cast<int32_t>(std::min<int64_t>(P, q.n - i * P));
    q.copy(i * P, len, w);
    std::fill(w + len, w + B, 0.0);
    return fft::ExecuteRealFFT(t.get(), w, dst, 1, 1, B);
  };
  for (int64_t i = 0; i < na; ++i)
    if (int32_t rc = block_spectrum(a, i, spectra + i * B)) return rc;
  for (int64_t j = 0; j < nb; ++j)
    if (int32_t rc = block_spectrum(b, j, spectra + (na + j) * B)) return rc;
  const int64_t total = int64_t{a.n} + b.n - 1;
  std::fill(out, out + total, 0.0);
  for (int64_t k = 0; k < na + nb - 1; ++k) {
    std::fill(acc, acc + B, 0.0);
    for (int64_t i = std::max<int64_t>(0, k - nb + 1); i <= std::min(k, na - 1); ++i)
      multiply_add_half_complex(spectra + i * B, spectra + (na + k - i) * B, acc, B);
    if (int32_t rc = fft::ExecuteInverseRealFFT(t.get(), acc, w, 1, 1, B)) return rc;
    const int64_t at = k * P, count = std::min<int64_t>(B - 1, total - at);
    for (int64_t i = 0; i < count; ++i) out[at + i] += w[i];
  }
  return kOk;
}

// The block length of a partitioned run, or 0 when one transform of the
// whole is short enough that its table is cheap.
int32_t partition_length(int64_t n, int64_t m) {
  const int64_t whole = transform_length(n + m - 1);
  if (whole <= kWholeAtMost || std::min(n, m) < 4) return 0;
  double best = 0;
  int32_t chosen = 0;
  for (int64_t p5 = 1; p5 <= kWholeAtMost; p5 *= 5)
    for (int64_t p3 = p5; p3 <= kWholeAtMost; p3 *= 3)
      for (int64_t b = 2 * p3; b <= kWholeAtMost; b *= 2) {
        if (b < 4096) continue;
        const double na = std::ceil(2.0 * n / b), nb = std::ceil(2.0 * m / b);
        // Transforms of every block and of every output block, and the
        // products of every block pair (about one transform's work per B
        // values each).
        const double cost = (2 * (na + nb) - 1) * fft_cost(static_cast<double>(b)) + na * nb * 1.5 * b;
        if (chosen == 0 || cost < best) {
          best = cost;
          chosen = static_cast<int32_t>(b);
        }
      }
  return chosen;
}

// The frequency-domain product of two real sequences: x (optionally taken
// backwards, for a correlation) and y, n + m - 1 values into out. A short
// sequence against a long one runs block by block.
int32_t real_product(const double* x, int32_t n, const double* y, int32_t m, double* out, bool reverse_x) {
  const Seq xs{x, n, reverse_x}, ys{y, m, false};
  const Seq& longer = n >= m ? xs : ys;
  const Seq& shorter = n >= m ? ys : xs;
  if (const int32_t B = block_length(longer.n, shorter.n)) return overlap_add(longer, shorter, B, out);
  if (const int32_t B = partition_length(n, m)) return partitioned(xs, ys, B, out);
  const int64_t total = int64_t{n} + m - 1;
  const int64_t l64 = transform_length(total);
  if (l64 == 0) return kNoMemory;
  const int32_t L = static_cast<int32_t>(l64);
  if (L == 1) {
    out[0] = x[0] * y[0];
    return kOk;
  }
  Scratch<double> s;
  if (s.allocate(3 * static_cast<size_t>(L))) return kNoMemory;
  double *a = s.data(), *b = a + L, *c = b + L;
  xs.copy(0, n, a);
  std::fill(a + n, a + L, 0.0);
  std::copy(y, y + m, b);
  std::fill(b + m, b + L, 0.0);
  SharedTable t(static_cast<uint32_t>(L));
  if (!t.get()) return kNoMemory;
  if (int32_t rc = fft::ExecuteRealFFT(t.get(), a, c, 1, 1, L)) return rc;
  if (int32_t rc = fft::ExecuteRealFFT(t.get(), b, a, 1, 1, L)) return rc;
  multiply_half_complex(c, a, b, L);
  if (int32_t rc = fft::ExecuteInverseRealFFT(t.get(), b, c, 1, 1, L)) return rc;
  std::copy(c, c + total, out);
  return kOk;
}

// The same for complex sequences; a correlation conjugates the reversed x.
int32_t complex_product(const cdouble* x, int32_t n, const cdouble* y, int32_t m, cdouble* out, bool reverse_x) {
  const int64_t total = int64_t{n} + m - 1;
  const int64_t l64 = transform_length(total);
  if (l64 == 0) return kNoMemory;
  const int32_t L = static_cast<int32_t>(l64);
  Scratch<cdouble> s;
  if (s.allocate(3 * static_cast<size_t>(L))) return kNoMemory;
  cdouble *a = s.data(), *b = a + L, *c = b + L;
  std::fill(a, a + 2 * static_cast<size_t>(L), cdouble());
  if (reverse_x)
    for (int32_t i = 0; i < n; ++i) a[i] = std::conj(x[n - 1 - i]);
  else
    std::copy(x, x + n, a);
  std::copy(y, y + m, b);
  SharedTable t(static_cast<uint32_t>(L));
  if (!t.get()) return kNoMemory;
  auto run = [&](auto f, const cdouble* in, cdouble* o) {
    const double* i = reinterpret_cast<const double*>(in);
    double* d = reinterpret_cast<double*>(o);
    return f(t.get(), i, i + 1, d, d + 1, 2, 2, L);
  };
  if (int32_t rc = run(fft::ExecuteComplexFFT, a, c)) return rc;
  if (int32_t rc = run(fft::ExecuteComplexFFT, b, a)) return rc;
  multiply_complex(c, a, b, L);
  if (int32_t rc = run(fft::ExecuteInverseComplexFFT, b, c)) return rc;
  std::copy(c, c + total, out);
  return kOk;
}

int32_t normalise(double* out, int32_t n, int32_t m, int32_t normalisation) {
  const int64_t total = int64_t{n} + m - 1;
  switch (normalisation) {
    case kNone:
      return kOk;
    case kUnbiased: {
      const int64_t most = std::min(n, m);
      for (int64_t k = 0; k < total; ++k)
        out[k] /= static_cast<double>(std::min({k + 1, most, total - k}));
      return kOk;
    }
    case kBiased: {
      const double d = std::max(n, m);
      for (int64_t k = 0; k < total; ++k) out[k] /= d;
      return kOk;
    }
    default:
      return kBadSelector;
  }
}

// The full convolution of real or complex sequences by the chosen method.
template <class T> int32_t convolve_by(const T* x, int32_t n, const T* y, int32_t m, T* out, int32_t method) {
  if (method == kDirect) {
    direct_convolve(x, n, y, m, out);
    return kOk;
  }
  if (method != kFrequency) return kOk;
  if constexpr (std::is_same_v<T, double>)
    return real_product(x, n, y, m, out, false);
  else
    return complex_product(x, n, y, m, out, false);
}

}  // namespace

int32_t convolve(const double* x, int32_t n, const double* y, int32_t m, double* out, int32_t method) {
  return convolve_by(x, n, y, m, out, method);
}
int32_t convolve(const cdouble* x, int32_t n, const cdouble* y, int32_t m, cdouble* out, int32_t method) {
  return convolve_by(x, n, y, m, out, method);
}

int32_t correlate(const double* x, int32_t n, const double* y, int32_t m, double* out, int32_t method,
                  int32_t normalisation) {
  if (normalisation < kNone || normalisation > kBiased) return kBadSelector;
  if (method == kDirect)
    direct_correlate(x, n, y, m, out);
  else if (method == kFrequency) {
    if (int32_t rc = real_product(x, n, y, m, out, true)) return rc;
  } else {
    return kBadSelector;
  }
  return normalise(out, n, m, normalisation);
}

int32_t autocorrelate(double* x, int32_t n, int32_t normalisation) {
  if (normalisation < kNone || normalisation > kBiased) return kBadSelector;
  const int64_t total = 2 * int64_t{n} - 1;
  const int64_t l64 = transform_length(total);
  if (l64 == 0) return kNoMemory;
  const int32_t L = static_cast<int32_t>(l64);
  if (L == 1) {
    x[0] *= x[0];
    return kOk;
  }
  Scratch<double> s;
  if (s.allocate(2 * static_cast<size_t>(L))) return kNoMemory;
  double *a = s.data(), *b = a + L;
  std::copy(x, x + n, a);
  std::fill(a + n, a + L, 0.0);
  SharedTable t(static_cast<uint32_t>(L));
  if (!t.get()) return kNoMemory;
  if (int32_t rc = fft::ExecuteRealFFT(t.get(), a, b, 1, 1, L)) return rc;
  // One transform serves both factors: the product is the squared magnitude.
  a[0] = b[0] * b[0];
  for (int32_t k = 1; k < L - k; ++k) {
    a[k] = b[k] * b[k] + b[L - k] * b[L - k];
    a[L - k] = 0.0;
  }
  if (L % 2 == 0) a[L / 2] = b[L / 2] * b[L / 2];
  if (int32_t rc = fft::ExecuteInverseRealFFT(t.get(), a, b, 1, 1, L)) return rc;
  // Negative lags wrapped round to the end of the circular result.
  std::copy(b + (L - (n - 1)), b + L, x);
  std::copy(b, b + n, x + (n - 1));
  return normalise(x, n, n, normalisation);
}

namespace {

// Long division of a residual r by d (md values, d[0] != 0 unless the
// quotient is to be non-finite): q[i] = r[i] / d[0], after every earlier
// quotient value has taken its share d[i - j] q[j] off r[i]. Large spans are
// split in halves so that the first half's shares reach the second half as
// one convolution.
class Divider {
 public:
  Divider(const double* d, int32_t md, double* r, double* q) : d_(d), md_(md), r_(r), q_(q) {}

  int32_t solve(int32_t lo, int32_t hi) {
    if (hi - lo <= kLeaf) {
      for (int32_t i = lo; i < hi; ++i) {
        const double qi = r_[i] / d_[0];
        q_[i] = qi;
        const int32_t end = static_cast<int32_t>(std::min<int64_t>(hi, int64_t{i} + md_));
        for (int32_t t = i + 1; t < end; ++t) r_[t] -= d_[t - i] * qi;
      }
      return kOk;
    }
    const int32_t mid = lo + (hi - lo) / 2;
    if (int32_t rc = solve(lo, mid)) return rc;
    const int32_t taps = std::min(md_, hi - lo), len = mid - lo;
    const int32_t reach = static_cast<int32_t>(std::min<int64_t>(hi - lo, int64_t{len} + taps - 1));
    Scratch<double> c;
    if (c.allocate(static_cast<size_t>(len) + taps - 1)) return kNoMemory;
    const int32_t method = int64_t{len} * taps < kDirectWork ? kDirect : kFrequency;
    if (int32_t rc = convolve(q_ + lo, len, d_, taps, c.data(), method)) return rc;
    for (int32_t t = mid - lo; t < reach; ++t) r_[lo + t] -= c[t];
    return solve(mid, hi);
  }

  static constexpr int32_t kLeaf = 256;
  static constexpr int64_t kDirectWork = 1 << 16;

 private:
  const double* d_;
  int32_t md_;
  double* r_;
  double* q_;
};

}  // namespace

int32_t deconvolve(double* y, int32_t n, const double* x, int32_t m) {
  // Leading zeros of the divisor only shift the dividend; skip both.
  int32_t z = 0;
  while (z < m - 1 && x[z] == 0.0) ++z;
  const double* d = x + z;
  const int32_t md = m - z;
  const int32_t k = n - m + 1;
  if (int64_t{k} * md <= (int64_t{1} << 22)) {
    const double lead = d[0];
    for (int32_t i = 0; i < k; ++i) {
      double r = y[z + i];
      const int32_t top = std::min(i, md - 1);
      for (int32_t j = 1; j <= top; ++j) r -= d[j] * y[i - j];
      y[i] = r / lead;
    }
    return kOk;
  }
  Scratch<double> r;
  if (r.allocate(static_cast<size_t>(k))) return kNoMemory;
  std::copy(y + z, y + z + k, r.data());
  return Divider(d, md, r.data(), y).solve(0, k);
}

}  // namespace jq::sig
