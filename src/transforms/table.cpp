// FFT tables: factoring, twiddles, Rader set-up and the shared table list.
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "frame/errors.hpp"
#include "frame/platform.hpp"
#include "frame/scratch.hpp"
#include "transforms/codelets.hpp"
#include "transforms/fft.hpp"

namespace jq::fft {
namespace {

constexpr double kTwoPi = 6.283185307179586;

// The list of live tables and its lock, made when the library is loaded.
platform::Mutex g_lock;
FFTTable* g_head = nullptr;
const int32_t g_lock_status = platform::mutex_create(g_lock) ? kOk : kInternal;

template <class T> T* zeroed(size_t n) { return scratch_zeroed<T>(n); }

// Factors n (n >= 2) into t->factors/kinds, ascending. False when n has more
// factors than a table holds.
bool factor(uint32_t n, FFTTable* t) {
  int count = 0;
  auto record = [&](uint32_t f, int32_t kind) {
    if (count == kMaxFactors) return false;
    t->factors[count] = static_cast<int32_t>(f);
    t->kinds[count] = kind;
    ++count;
    return true;
  };
  uint32_t rest = n;
  for (int r : kCodeletRadices) {
    while (rest % r == 0) {
      if (!record(r, kCodelet)) return false;
      rest /= r;
    }
    if (rest == 1) break;
  }
  if (rest > 1) {
    if (rest >= 9) {
      for (uint32_t d = 3; static_cast<uint64_t>(d) * d <= rest; d += 2) {
        while (rest % d == 0) {
          if (!record(d, d < 50 ? kGeneric : kRader)) return false;
          rest /= d;
        }
      }
    }
    if (rest > 1 && !record(rest, rest < 50 ? kGeneric : kRader)) return false;
  }
  // Exchange sort, carrying each factor's kind along.
  for (int i = 0; i < count; ++i)
    for (int j = i + 1; j < count; ++j)
      if (t->factors[j] < t->factors[i]) {
        std::swap(t->factors[i], t->factors[j]);
        std::swap(t->kinds[i], t->kinds[j]);
      }
  t->factor_count = count;
  return true;
}

// e^(-2 pi i ij/L) for i = 1 .. m-1, j = 1 .. r-1 at (j-1) + (i-1)(r-1), by
// the stable rotation recurrence from the half-angle form.
bool make_twiddles(StageRecord* s, int r, int m, int L) {
  const size_t count = static_cast<size_t>(r - 1) * static_cast<size_t>(m - 1);
  const size_t rows = static_cast<size_t>(r - 1) * static_cast<size_t>(m);
  s->twiddle_cos = zeroed<double>(count);
  s->twiddle_sin = zeroed<double>(count);
  s->twiddle_cos_by_k = zeroed<double>(rows);
  s->twiddle_sin_by_k = zeroed<double>(rows);
  if (!s->twiddle_cos || !s->twiddle_sin || !s->twiddle_cos_by_k || !s->twiddle_sin_by_k) return false;
  const double theta = kTwoPi / L;
  for (int j = 1; j < r; ++j) {
    const double h = std::sin(j * theta / 2);
    const double alpha = 2 * h * h;
    const double beta = -std::sin(j * theta);
    double c = 1 - alpha, sn = beta;
    // Butterfly 0 of the by-k rows takes the unit twiddle, so that the
    // butterflies run as one uniform loop.
    s->twiddle_cos_by_k[static_cast<size_t>(j - 1) * m] = 1;
    for (int i = 1; i < m; ++i) {
      const size_t at = static_cast<size_t>(j - 1) + static_cast<size_t>(i - 1) * (r - 1);
      const size_t by_k = static_cast<size_t>(i) + static_cast<size_t>(j - 1) * m;
      s->twiddle_cos[at] = s->twiddle_cos_by_k[by_k] = c;
      s->twiddle_sin[at] = s->twiddle_sin_by_k[by_k] = sn;
      const double c2 = c - (c * alpha + beta * sn);
      sn = sn - (sn * alpha - beta * c);
      c = c2;
    }
  }
  return true;
}

FFTTable* find_or_build(uint32_t n);
void release(FFTTable* t);

int64_t power_mod(int64_t b, int64_t e, int64_t p) {
  int64_t r = 1;
  for (b %= p; e > 0; e >>= 1, b = b * b % p)
    if (e & 1) r = r * b % p;
  return r;
}

// The smallest primitive root of the prime p: g is one when g^(N/q) != 1 for
// every prime q dividing N = p - 1. Testing the order by repeated products
// instead would take up to p steps per candidate.
int32_t primitive_root(int32_t p) {
  const int32_t N = p - 1;
  int32_t primes[32];
  int count = 0;
  int32_t rest = N;
  for (int32_t q = 2; static_cast<int64_t>(q) * q <= rest; ++q) {
    if (rest % q) continue;
    primes[count++] = q;
    while (rest % q == 0) rest /= q;
  }
  if (rest > 1) primes[count++] = rest;
  for (int32_t g = 2; g < p; ++g) {
    bool root = true;
    for (int i = 0; i < count && root; ++i) root = power_mod(g, N / primes[i], p) != 1;
    if (root) return g;
  }
  return 1;
}

// A convolution of length p-1 through Rader factors of its own nests
// convolutions; one zero-padded to a length of small factors is cheaper.
bool needs_padding(const FFTTable* sub) {
  for (int i = 0; i < sub->factor_count; ++i)
    if (sub->kinds[i] == kRader) return true;
  return false;
}

// The smallest length of at least `least` whose factors are 2, 3, 5 and 7.
uint32_t smooth_at_least(uint32_t least) {
  uint64_t best = UINT64_MAX;
  for (uint64_t a = 1; a < 2ull * least; a *= 2)
    for (uint64_t b = a; b < 2ull * least; b *= 3)
      for (uint64_t c = b; c < 2ull * least; c *= 5)
        for (uint64_t d = c; d < 2ull * least; d *= 7)
          if (d >= least && d < best) best = d;
  return static_cast<uint32_t>(best);
}

// The kernel v (v[k] = vr[k] + i vi[k], k < N, scaled by 1/N) placed so that
// a cyclic convolution of length M reproduces the one of length N on its
// first N outputs: v[0 .. N-1] at the start, v[1 .. N-1] again at the end.
bool setup_padded(StageRecord* s, const double* vr, const double* vi, int32_t N) {
  const uint32_t M = smooth_at_least(2 * static_cast<uint32_t>(N) - 1);
  if (M > INT32_MAX) return false;
  s->padded_length = static_cast<int32_t>(M);
  s->padded_kernel_re = zeroed<double>(M);
  s->padded_kernel_im = zeroed<double>(M);
  double* ur = zeroed<double>(M);
  double* ui = zeroed<double>(M);
  s->padded = find_or_build(M);
  bool ok = s->padded_kernel_re && s->padded_kernel_im && ur && ui && s->padded;
  if (ok) {
    const double rescale = static_cast<double>(N) / M;
    for (int32_t k = 0; k < N; ++k) {
      ur[k] = vr[k] * rescale;
      ui[k] = vi[k] * rescale;
    }
    for (int32_t k = 1; k < N; ++k) {
      ur[M - N + k] = ur[k];
      ui[M - N + k] = ui[k];
    }
    ok = ExecuteComplexFFT(s->padded, ur, ui, s->padded_kernel_re, s->padded_kernel_im, 1, 1,
                           static_cast<int32_t>(M)) == kOk;
  }
  std::free(ur);
  std::free(ui);
  return ok;
}

bool setup_rader(StageRecord* s, int32_t p) {
  const int32_t N = p - 1;
  const int32_t g = primitive_root(p);
  s->forward_index = zeroed<int32_t>(p);
  s->reverse_index = zeroed<int32_t>(p);
  s->kernel_re = zeroed<double>(N);
  s->kernel_im = zeroed<double>(N);
  double* wr = zeroed<double>(p);
  double* wi = zeroed<double>(p);
  double* vr = zeroed<double>(N);
  double* vi = zeroed<double>(N);
  s->sub = find_or_build(static_cast<uint32_t>(N));
  bool ok = s->forward_index && s->reverse_index && s->kernel_re && s->kernel_im && wr && wi && vr && vi && s->sub;
  if (ok) {
    s->forward_index[1] = 1;
    s->reverse_index[1] = 1;
    int64_t x = 1;
    for (int32_t i = 2; i < p; ++i) {
      x = (x * g) % p;
      s->forward_index[i] = static_cast<int32_t>(x);
      s->reverse_index[p + 1 - i] = static_cast<int32_t>(x);
    }
    // The roots of unity of order p by the same rotation recurrence.
    const double theta = kTwoPi / p;
    const double h = std::sin(theta / 2), alpha = 2 * h * h, beta = -std::sin(theta);
    double c = 1, sn = 0;
    for (int32_t q = 0; q < p; ++q) {
      wr[q] = c;
      wi[q] = sn;
      const double c2 = c - (c * alpha + beta * sn);
      sn = sn - (sn * alpha - beta * c);
      c = c2;
    }
    const double scale = 1.0 / N;
    for (int32_t k = 0; k < N; ++k) {
      vr[k] = wr[s->reverse_index[k + 1]] * scale;
      vi[k] = wi[s->reverse_index[k + 1]] * scale;
    }
    ok = ExecuteComplexFFT(s->sub, vr, vi, s->kernel_re, s->kernel_im, 1, 1, N) == kOk;
    if (ok && needs_padding(s->sub)) ok = setup_padded(s, vr, vi, N);
  }
  std::free(wr);
  std::free(wi);
  std::free(vr);
  std::free(vi);
  return ok;
}

void free_stage(StageRecord* s) {
  if (!s) return;
  std::free(s->cos_table);
  std::free(s->sin_table);
  std::free(s->twiddle_cos);
  std::free(s->twiddle_sin);
  std::free(s->twiddle_cos_by_k);
  std::free(s->twiddle_sin_by_k);
  if (s->sub) release(s->sub);
  if (s->padded) release(s->padded);
  std::free(s->padded_kernel_re);
  std::free(s->padded_kernel_im);
  std::free(s->forward_index);
  std::free(s->reverse_index);
  std::free(s->kernel_re);
  std::free(s->kernel_im);
  std::free(s);
}

void free_table(FFTTable* t) {
  for (int i = 0; i < kMaxFactors; ++i) free_stage(t->stages[i]);
  std::free(t);
}

// Builds a table (lock held). Null on failure, with nothing left behind.
FFTTable* build(uint32_t n) {
  auto* t = zeroed<FFTTable>(1);
  if (!t) return nullptr;
  t->length = static_cast<int32_t>(n);
  t->references = 1;
  if (n > 1 && !factor(n, t)) {
    std::free(t);
    return nullptr;
  }
  const int F = t->factor_count;
  bool ok = true;
  for (int i = 0; i < F && ok; ++i) {
    t->stages[i] = zeroed<StageRecord>(1);
    ok = t->stages[i] != nullptr;
    if (ok && t->kinds[i] == kCodelet) {
      const CodeletSet* c = codelets_for(t->factors[i]);
      t->real_leaf[i] = c->real_leaf;
      t->real_twiddle[i] = c->real_twiddle;
      t->complex_leaf[i] = c->complex_leaf;
      t->complex_twiddle[i] = c->complex_twiddle;
    }
  }
  int32_t L = t->length;
  for (int i = 0; i + 1 < F && ok; ++i) {
    const int32_t r = t->factors[i], m = L / r;
    ok = make_twiddles(t->stages[i], r, m, L);
    L = m;
  }
  for (int i = 0; i < F && ok; ++i) {
    StageRecord* s = t->stages[i];
    const int32_t p = t->factors[i];
    if (t->kinds[i] == kGeneric) {
      s->cos_table = zeroed<double>(p);
      s->sin_table = zeroed<double>(p);
      ok = s->cos_table && s->sin_table;
      for (int32_t k = 0; ok && k < p; ++k) {
        s->cos_table[k] = std::cos(kTwoPi * k / p);
        s->sin_table[k] = std::sin(kTwoPi * k / p);
      }
    } else if (t->kinds[i] == kRader) {
      ok = setup_rader(s, p);
    }
  }
  if (!ok) {
    free_table(t);
    return nullptr;
  }
  return t;
}

// The table of length n from the list or newly built (lock held).
FFTTable* find_or_build(uint32_t n) {
  for (FFTTable* t = g_head; t; t = t->next)
    if (static_cast<uint32_t>(t->length) == n) {
      ++t->references;
      return t;
    }
  FFTTable* t = build(n);
  if (!t) return nullptr;
  t->next = g_head;
  if (g_head) g_head->previous = t;
  g_head = t;
  return t;
}

// Drops a reference (lock held); the last one unlinks and frees.
void release(FFTTable* t) {
  if (--t->references > 0) return;
  if (t->previous) t->previous->next = t->next;
  else g_head = t->next;
  if (t->next) t->next->previous = t->previous;
  free_table(t);
}

}  // namespace

int32_t lock_status() { return g_lock_status; }

FFTTable* create_table(uint32_t n) {
  if (n < 1 || n > INT32_MAX || g_lock_status != kOk) return nullptr;
  platform::mutex_lock(g_lock);
  FFTTable* t = find_or_build(n);
  platform::mutex_unlock(g_lock);
  return t;
}

void destroy_table(FFTTable* t) {
  if (!t || g_lock_status != kOk) return;
  platform::mutex_lock(g_lock);
  release(t);
  platform::mutex_unlock(g_lock);
}

}  // namespace jq::fft
