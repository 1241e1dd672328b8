// The recursive decimation-in-time executors.
//
// Level k of a table splits a sub-length L into r = factor k interleaved
// sub-sequences of length m = L/r, transforms them into consecutive blocks
// of the output and combines the blocks in place with the level's
// twiddles. The real path keeps every block in the half-complex layout, so
// it moves n real values where the complex path moves n complex ones.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "frame/errors.hpp"
#include "frame/scratch.hpp"
#include "transforms/codelets.hpp"
#include "transforms/fft.hpp"

namespace jq::fft {
namespace {

struct Level {
  const StageRecord* stage;
  int32_t kind;
  int32_t r;
};

// Work arrays of the generic and Rader butterflies: gathered inputs and
// outputs of `lanes()` butterflies side by side (value j of butterfly b at
// j*lanes + b) and, for Rader, four arrays for the convolution. Generic
// primes run kBatch butterflies at once on the stack; Rader one at a time.
class PrimeWork {
 public:
  static constexpr int kBatch = 8;
  explicit PrimeWork(const Level& lv) : p_(lv.r) {
    if (lv.kind == kGeneric) {
      lanes_ = kBatch;
      base_ = stack_;
    } else {
      const int32_t M = lv.stage->padded_length;
      const size_t conv = static_cast<size_t>(M ? M : lv.r - 1);
      heap_ = scratch_zeroed<double>(4 * static_cast<size_t>(p_) + 4 * conv);
      base_ = heap_;
    }
  }
  ~PrimeWork() { std::free(heap_); }
  PrimeWork(const PrimeWork&) = delete;
  PrimeWork& operator=(const PrimeWork&) = delete;
  bool ok() const { return base_ != nullptr; }
  int lanes() const { return lanes_; }
  double* xr() const { return base_; }
  double* xi() const { return base_ + p_ * lanes_; }
  double* yr() const { return base_ + 2 * p_ * lanes_; }
  double* yi() const { return base_ + 3 * p_ * lanes_; }
  double* rader() const { return base_ + 4 * p_ * lanes_; }

 private:
  int32_t p_;
  int lanes_ = 1;
  double stack_[4 * kMaxGenericPrime * kBatch];
  double* heap_ = nullptr;
  double* base_ = nullptr;
};

// Rader: the DFT of one gathered sequence of prime length p as a cyclic
// convolution of length p-1 (or zero-padded to the stage's padded length).
int32_t rader_dft(const StageRecord* s, int32_t p, const PrimeWork& w) {
  const double *xr = w.xr(), *xi = w.xi();
  double *yr = w.yr(), *yi = w.yi();
  const int32_t N = p - 1;
  const bool padded = s->padded_length > 0;
  const int32_t M = padded ? s->padded_length : N;
  const FFTTable* sub = padded ? s->padded : s->sub;
  const double* kre = padded ? s->padded_kernel_re : s->kernel_re;
  const double* kim = padded ? s->padded_kernel_im : s->kernel_im;
  double *ur = w.rader(), *ui = ur + M, *vr = ui + M, *vi = vr + M;
  double sr = xr[0], si = xi[0];
  for (int32_t a = 0; a < N; ++a) {
    const int32_t at = s->forward_index[a + 1];
    ur[a] = xr[at];
    ui[a] = xi[at];
    sr += xr[at];
    si += xi[at];
  }
  std::fill(ur + N, ur + M, 0.0);
  std::fill(ui + N, ui + M, 0.0);
  int32_t rc = ExecuteComplexFFT(sub, ur, ui, vr, vi, 1, 1, M);
  if (rc != kOk) return rc;
  for (int32_t a = 0; a < M; ++a) {
    const double kr = kre[a], ki = kim[a];
    ur[a] = vr[a] * kr - vi[a] * ki;
    ui[a] = vr[a] * ki + vi[a] * kr;
  }
  rc = ExecuteComplexFFT(sub, ur, ui, vr, vi, 1, 1, M);
  if (rc != kOk) return rc;
  // The forward transform of the product is the convolution reversed:
  // output j of the convolution sits at (M - j) mod M. Input g^a pairs
  // with output g^-a, which the forward index table undoes.
  yr[0] = sr;
  yi[0] = si;
  yr[s->forward_index[1]] = xr[0] + vr[0];
  yi[s->forward_index[1]] = xi[0] + vi[0];
  for (int32_t j = 1; j < N; ++j) {
    const int32_t at = s->forward_index[j + 1];
    yr[at] = xr[0] + vr[M - N + j];
    yi[at] = xi[0] + vi[M - N + j];
  }
  return kOk;
}

// DFTs of length p of the B gathered sequences in w (B = 1 for Rader).
int32_t prime_dft(const Level& lv, const PrimeWork& w, int B) {
  if (lv.kind == kGeneric) {
    generic_prime_batch()(lv.stage->cos_table, lv.stage->sin_table, lv.r, w.xr(), w.xi(), w.yr(), w.yi(), B);
    return kOk;
  }
  return rader_dft(lv.stage, lv.r, w);
}

Level level_of(const FFTTable* t, int k) { return Level{t->stages[k], t->kinds[k], t->factors[k]}; }

// Twiddled input t of butterfly k (k >= 1, t >= 1).
inline void twiddle(const StageRecord* s, int32_t r, int32_t k, int32_t t, double& re, double& im) {
  const size_t at = static_cast<size_t>(t - 1) + static_cast<size_t>(k - 1) * (r - 1);
  const double c = s->twiddle_cos[at], sn = s->twiddle_sin[at];
  const double a = re;
  re = a * c - im * sn;
  im = a * sn + im * c;
}

// From these sub-lengths up a level gathers its sub-sequences before
// recursing into them. Complex leaves read interleaved inputs a whole value
// per lane, so they gain from it only when the input no longer fits in the
// near caches; real leaves would read one value per load.
constexpr int32_t kGatherFrom = 1 << 15;
constexpr int32_t kGatherRealFrom = 1 << 13;

// g[j*m + i] = in[(i*r + j) * is]: the r decimated sub-sequences of a level,
// one after another, in blocks of rows so that reads and writes stay in cache.
void gather_decimated(const double* in, ptrdiff_t is, int32_t r, int32_t m, double* g) {
  constexpr int32_t kRows = 16;
  for (int32_t i0 = 0; i0 < m; i0 += kRows) {
    const int32_t i1 = std::min(m, i0 + kRows);
    for (int32_t j = 0; j < r; ++j) {
      double* row = g + static_cast<ptrdiff_t>(j) * m;
      for (int32_t i = i0; i < i1; ++i) row[i] = in[(static_cast<ptrdiff_t>(i) * r + j) * is];
    }
  }
}

// ---- complex path ------------------------------------------------------------

bool via_real(int32_t r) {
  switch (r) {
    case 11: case 13: case 14: case 17: case 18: case 29: case 31: case 32: case 37: case 41: case 43: return true;
    default: return false;
  }
}

int32_t cx_prime_leaf(const Level& lv, const double* ir, const double* ii, double* or_, double* oi, ptrdiff_t is,
                      ptrdiff_t os, ptrdiff_t idist, ptrdiff_t odist, int count) {
  PrimeWork w(lv);
  if (!w.ok()) return kNoMemory;
  const int32_t p = lv.r;
  for (int c0 = 0; c0 < count; c0 += w.lanes()) {
    const int B = std::min(w.lanes(), count - c0);
    for (int32_t j = 0; j < p; ++j)
      for (int b = 0; b < B; ++b) {
        w.xr()[j * B + b] = ir[(c0 + b) * idist + j * is];
        w.xi()[j * B + b] = ii[(c0 + b) * idist + j * is];
      }
    if (int32_t rc = prime_dft(lv, w, B)) return rc;
    for (int32_t q = 0; q < p; ++q)
      for (int b = 0; b < B; ++b) {
        or_[(c0 + b) * odist + q * os] = w.yr()[q * B + b];
        oi[(c0 + b) * odist + q * os] = w.yi()[q * B + b];
      }
  }
  return kOk;
}

int32_t cx_prime_combine(const Level& lv, double* re, double* im, ptrdiff_t s, int32_t m) {
  PrimeWork w(lv);
  if (!w.ok()) return kNoMemory;
  const int32_t r = lv.r;
  const ptrdiff_t ms = m * s;
  for (int32_t k0 = 0; k0 < m; k0 += w.lanes()) {
    const int B = std::min(w.lanes(), m - k0);
    for (int32_t t = 0; t < r; ++t)
      for (int b = 0; b < B; ++b) {
        const int32_t k = k0 + b;
        double x = re[t * ms + k * s], y = im[t * ms + k * s];
        if (k > 0 && t > 0) twiddle(lv.stage, r, k, t, x, y);
        w.xr()[t * B + b] = x;
        w.xi()[t * B + b] = y;
      }
    if (int32_t rc = prime_dft(lv, w, B)) return rc;
    for (int32_t q = 0; q < r; ++q)
      for (int b = 0; b < B; ++b) {
        re[q * ms + (k0 + b) * s] = w.yr()[q * B + b];
        im[q * ms + (k0 + b) * s] = w.yi()[q * B + b];
      }
  }
  return kOk;
}

int32_t cx_leaf(const FFTTable* t, int k, const double* ir, const double* ii, double* or_, double* oi,
                ptrdiff_t is, ptrdiff_t os, ptrdiff_t idist, ptrdiff_t odist, int count) {
  // Too few leaves to fill vectors of four: interleaved data run as real
  // transforms side by side where that was measured faster.
  if (t->kinds[k] == kCodelet && count < 4 && via_real(t->factors[k]) && ii == ir + 1 && oi == or_ + 1) {
    complex_single_for(t->factors[k])(ir, or_, is, os, idist, odist, count);
    return kOk;
  }
  if (t->kinds[k] == kCodelet) {
    t->complex_leaf[k](ir, ii, or_, oi, is, os, idist, odist, count);
    return kOk;
  }
  return cx_prime_leaf(level_of(t, k), ir, ii, or_, oi, is, os, idist, odist, count);
}

int32_t cx_level(const FFTTable* t, int k, const double* ir, const double* ii, double* or_, double* oi,
                 ptrdiff_t is, ptrdiff_t os, int32_t L) {
  const int F = t->factor_count;
  const int32_t r = t->factors[k], m = L / r;
  if (k == F - 1) return cx_leaf(t, k, ir, ii, or_, oi, is, os, 0, 0, 1);
  int32_t rc = kOk;
  if (k == F - 2) {
    rc = cx_leaf(t, F - 1, ir, ii, or_, oi, r * is, os, is, m * os, r);
  } else if (L >= kGatherFrom) {
    Scratch<double> g;
    if (g.allocate(2 * static_cast<size_t>(L)) != kOk) return kNoMemory;
    double *gr = g.data(), *gi = gr + L;
    gather_decimated(ir, is, r, m, gr);
    gather_decimated(ii, is, r, m, gi);
    for (int32_t j = 0; j < r && rc == kOk; ++j)
      rc = cx_level(t, k + 1, gr + j * m, gi + j * m, or_ + j * m * os, oi + j * m * os, 1, os, m);
  } else {
    for (int32_t j = 0; j < r && rc == kOk; ++j)
      rc = cx_level(t, k + 1, ir + j * is, ii + j * is, or_ + j * m * os, oi + j * m * os, r * is, os, m);
  }
  if (rc != kOk) return rc;
  if (t->kinds[k] == kCodelet) {
    t->complex_twiddle[k](or_, oi, t->stages[k]->twiddle_cos_by_k, t->stages[k]->twiddle_sin_by_k, os, m);
    return kOk;
  }
  return cx_prime_combine(level_of(t, k), or_, oi, os, m);
}

// ---- real path ---------------------------------------------------------------

// Writes the DFT of one real sequence (in w.yr/yi) in the half-complex layout.
void store_half_complex(const PrimeWork& w, int32_t p, double* out, ptrdiff_t os) {
  for (int32_t q = 0; q <= p / 2; ++q) out[q * os] = w.yr()[q];
  for (int32_t q = 1; q < (p + 1) / 2; ++q) out[(p - q) * os] = w.yi()[q];
}

// Two real sequences run as one complex one, a + ib; the spectra part by
// A[q] = (Z[q] + conj Z[p-q])/2 and B[q] = (Z[q] - conj Z[p-q])/2i. An odd
// one out runs alone with a zero imaginary part.
int32_t hc_prime_leaf(const Level& lv, const double* in, double* out, ptrdiff_t is, ptrdiff_t os, ptrdiff_t idist,
                      ptrdiff_t odist, int count) {
  PrimeWork w(lv);
  if (!w.ok()) return kNoMemory;
  const int32_t p = lv.r;
  const int paired = count / 2;
  for (int c0 = 0; c0 < paired; c0 += w.lanes()) {
    const int B = std::min(w.lanes(), paired - c0);
    for (int32_t j = 0; j < p; ++j)
      for (int b = 0; b < B; ++b) {
        w.xr()[j * B + b] = in[2 * (c0 + b) * idist + j * is];
        w.xi()[j * B + b] = in[(2 * (c0 + b) + 1) * idist + j * is];
      }
    if (int32_t rc = prime_dft(lv, w, B)) return rc;
    const double *zr = w.yr(), *zi = w.yi();
    for (int b = 0; b < B; ++b) {
      double* a = out + 2 * (c0 + b) * odist;
      double* c = a + odist;
      a[0] = zr[b];
      c[0] = zi[b];
      for (int32_t q = 1; q <= p / 2; ++q) {
        const double ur = zr[q * B + b], ui = zi[q * B + b];
        const double vr = zr[(p - q) * B + b], vi = zi[(p - q) * B + b];
        a[q * os] = 0.5 * (ur + vr);
        a[(p - q) * os] = 0.5 * (ui - vi);
        c[q * os] = 0.5 * (ui + vi);
        c[(p - q) * os] = 0.5 * (vr - ur);
      }
    }
  }
  if (count % 2) {
    const int c = count - 1;
    for (int32_t j = 0; j < p; ++j) {
      w.xr()[j] = in[c * idist + j * is];
      w.xi()[j] = 0;
    }
    if (int32_t rc = prime_dft(lv, w, 1)) return rc;
    store_half_complex(w, p, out + c * odist, os);
  }
  return kOk;
}

// Combines r half-complex blocks of length m into one of length r*m.
int32_t hc_prime_combine(const Level& lv, double* d, ptrdiff_t s, int32_t m) {
  const int32_t r = lv.r;
  const ptrdiff_t ms = m * s;
  PrimeWork w(lv);
  if (!w.ok()) return kNoMemory;
  // The DC terms of the blocks: a real DFT.
  for (int32_t t = 0; t < r; ++t) {
    w.xr()[t] = d[t * ms];
    w.xi()[t] = 0;
  }
  if (int32_t rc = prime_dft(lv, w, 1)) return rc;
  store_half_complex(w, r, d, ms);
  // Bins k and m-k of every block give bins k + qm of the whole.
  const int32_t pairs = (m - 1) / 2;
  for (int32_t k0 = 1; k0 <= pairs; k0 += w.lanes()) {
    const int B = std::min(w.lanes(), pairs - k0 + 1);
    for (int32_t t = 0; t < r; ++t)
      for (int b = 0; b < B; ++b) {
        const int32_t k = k0 + b;
        double x = d[t * ms + k * s], y = d[t * ms + (m - k) * s];
        if (t > 0) twiddle(lv.stage, r, k, t, x, y);
        w.xr()[t * B + b] = x;
        w.xi()[t * B + b] = y;
      }
    if (int32_t rc = prime_dft(lv, w, B)) return rc;
    for (int32_t q = 0; q < r; ++q)
      for (int b = 0; b < B; ++b) {
        const int32_t k = k0 + b;
        double* lo = d + q * ms + k * s;
        double* hi = d + (r - 1 - q) * ms + (m - k) * s;
        if (q <= (r - 1) / 2) {
          *lo = w.yr()[q * B + b];
          *hi = w.yi()[q * B + b];
        } else {
          *hi = w.yr()[q * B + b];
          *lo = -w.yi()[q * B + b];
        }
      }
  }
  // For even m the real middle bins, rotated by e^(-i pi t/r).
  if (m % 2 == 0) {
    const int32_t k = m / 2;
    for (int32_t t = 0; t < r; ++t) {
      double a = d[t * ms + k * s], b = 0;
      if (t > 0) twiddle(lv.stage, r, k, t, a, b);
      w.xr()[t] = a;
      w.xi()[t] = b;
    }
    if (int32_t rc = prime_dft(lv, w, 1)) return rc;
    for (int32_t q = 0; 2 * q + 1 <= r; ++q) {
      d[q * ms + k * s] = w.yr()[q];
      if (2 * q + 1 < r) d[(r - 1 - q) * ms + k * s] = w.yi()[q];
    }
  }
  return kOk;
}

int32_t hc_leaf(const FFTTable* t, int k, const double* in, double* out, ptrdiff_t is, ptrdiff_t os,
                ptrdiff_t idist, ptrdiff_t odist, int count) {
  if (t->kinds[k] == kCodelet) {
    t->real_leaf[k](in, out, is, os, idist, odist, count);
    return kOk;
  }
  return hc_prime_leaf(level_of(t, k), in, out, is, os, idist, odist, count);
}

int32_t hc_level(const FFTTable* t, int k, const double* in, double* out, ptrdiff_t is, ptrdiff_t os, int32_t L) {
  const int F = t->factor_count;
  const int32_t r = t->factors[k], m = L / r;
  if (k == F - 1) return hc_leaf(t, k, in, out, is, os, 0, 0, 1);
  int32_t rc = kOk;
  if (k == F - 2) {
    rc = hc_leaf(t, F - 1, in, out, r * is, os, is, m * os, r);
  } else if (L >= kGatherRealFrom) {
    // Sub-sequence j, read in place, would use one value of every cache
    // line it touches; gathering all r of them in one sweep reads each line
    // once and leaves every sub-sequence contiguous.
    Scratch<double> g;
    if (g.allocate(static_cast<size_t>(L)) != kOk) return kNoMemory;
    gather_decimated(in, is, r, m, g.data());
    for (int32_t j = 0; j < r && rc == kOk; ++j)
      rc = hc_level(t, k + 1, g.data() + j * m, out + j * m * os, 1, os, m);
  } else {
    for (int32_t j = 0; j < r && rc == kOk; ++j)
      rc = hc_level(t, k + 1, in + j * is, out + j * m * os, r * is, os, m);
  }
  if (rc != kOk) return rc;
  if (t->kinds[k] == kCodelet) {
    t->real_twiddle[k](out, t->stages[k]->twiddle_cos_by_k, t->stages[k]->twiddle_sin_by_k, os, m);
    return kOk;
  }
  return hc_prime_combine(level_of(t, k), out, os, m);
}

}  // namespace

int32_t ExecuteRealFFT(const FFTTable* t, const double* in, double* out, ptrdiff_t is, ptrdiff_t os, int32_t n) {
  if (!t || n != t->length) return kInternal;
  if (n == 1) {
    out[0] = in[0];
    return kOk;
  }
  if (t->factor_count == 1 && t->kinds[0] == kCodelet) {
    t->real_leaf[0](in, out, is, os, 0, 0, 1);
    return kOk;
  }
  return hc_level(t, 0, in, out, is, os, n);
}

// The inverse runs the forward real transform on the Hartley transform of
// the signal, which the half-complex spectrum gives directly; the Hartley
// transform is its own inverse up to the factor n.
int32_t ExecuteInverseRealFFT(const FFTTable* t, const double* in, double* out, ptrdiff_t is, ptrdiff_t os,
                              int32_t n) {
  if (!t || n != t->length) return kInternal;
  if (n == 1) {
    out[0] = in[0];
    return kOk;
  }
  auto* h = scratch_zeroed<double>(static_cast<size_t>(n));
  if (!h) return kNoMemory;
  h[0] = in[0];
  for (int32_t k = 1; k < n - k; ++k) {
    const double a = in[k * is], b = in[(n - k) * is];
    h[k] = a - b;
    h[n - k] = a + b;
  }
  if (n % 2 == 0) h[n / 2] = in[(n / 2) * is];
  const int32_t rc = hc_level(t, 0, h, out, 1, os, n);
  std::free(h);
  if (rc != kOk) return rc;
  const double scale = 1.0 / n;
  out[0] *= scale;
  for (int32_t k = 1; k < n - k; ++k) {
    const double a = out[k * os], b = out[(n - k) * os];
    out[k * os] = (a - b) * scale;
    out[(n - k) * os] = (a + b) * scale;
  }
  if (n % 2 == 0) out[(n / 2) * os] *= scale;
  return kOk;
}

int32_t ExecuteComplexFFT(const FFTTable* t, const double* ir, const double* ii, double* or_, double* oi,
                          ptrdiff_t is, ptrdiff_t os, int32_t n) {
  if (!t || n != t->length) return -1;
  if (n == 1) {
    or_[0] = ir[0];
    oi[0] = ii[0];
    return kOk;
  }
  if (t->factor_count == 1 && t->kinds[0] == kCodelet) {
    // Interleaved data run as two real transforms side by side where that
    // was measured faster (for the small radices and 16 and 19 the
    // recombination costs more than it saves).
    if (via_real(n) && ii == ir + 1 && oi == or_ + 1) {
      if (ComplexSingle run = complex_single_for(n)) {
        run(ir, or_, is, os, 0, 0, 1);
        return kOk;
      }
    }
    t->complex_leaf[0](ir, ii, or_, oi, is, os, 0, 0, 1);
    return kOk;
  }
  return cx_level(t, 0, ir, ii, or_, oi, is, os, n);
}

// x[j] = (1/n) X'[(n-j) mod n] where X' is the forward transform.
int32_t ExecuteInverseComplexFFT(const FFTTable* t, const double* ir, const double* ii, double* or_, double* oi,
                                 ptrdiff_t is, ptrdiff_t os, int32_t n) {
  const int32_t rc = ExecuteComplexFFT(t, ir, ii, or_, oi, is, os, n);
  if (rc != kOk) return rc;
  const double scale = 1.0 / n;
  or_[0] *= scale;
  oi[0] *= scale;
  for (int32_t j = 1; j < n - j; ++j) {
    double* a = or_ + j * os;
    double* b = or_ + (n - j) * os;
    const double ar = *a * scale;
    *a = *b * scale;
    *b = ar;
    a = oi + j * os;
    b = oi + (n - j) * os;
    const double ai = *a * scale;
    *a = *b * scale;
    *b = ai;
  }
  if (n % 2 == 0) {
    or_[(n / 2) * os] *= scale;
    oi[(n / 2) * os] *= scale;
  }
  return kOk;
}

}  // namespace jq::fft
