// The streaming rational-rate FIR filter.
//
// Every output is computed from its own inputs in an order fixed by the
// mode and the phase alone, whatever the block boundaries, so a stream
// filtered in blocks equals the stream filtered at once bit for bit. The
// plain filter (up = down = 1) sums from the oldest input to the newest,
// sixteen float64 lanes of outputs at a time; a rate change sums each
// output's taps as one dot product in eight lanes. Both kernels have an AVX2
// variant chosen at run time; neither fuses multiply and add, so vector
// lanes, scalar tails and both variants agree exactly.
#include <algorithm>
#include <complex>
#include <limits>
#include <type_traits>

#include "filters/fir.hpp"
#include "frame/errors.hpp"
#include "frame/scratch.hpp"

// The vector helpers are inlined everywhere, so no vector crosses a call.
#pragma GCC diagnostic ignored "-Wpsabi"

namespace jq::fir {

namespace {

// A sample as its float64-convertible parts: one, or real then imaginary.
template <class S> struct Parts {
  using T = S;
  static constexpr int value = 1;
};
template <class R> struct Parts<std::complex<R>> {
  using T = R;
  static constexpr int value = 2;
};

using v4d = double __attribute__((vector_size(32)));
// The same vector at any double's address, for unaligned loads and stores.
using v4u = double __attribute__((vector_size(32), aligned(8), may_alias));

__attribute__((always_inline)) inline v4d load4(const double* p) { return *reinterpret_cast<const v4u*>(p); }
__attribute__((always_inline)) inline void store4(double* p, v4d v) { *reinterpret_cast<v4u*>(p) = v; }

// y[d] = sum over j of hr[j] * e[d + stride * j], for d in [0, count), with
// hr the taps oldest-input first. Sixteen lanes at a time, then one by one.
__attribute__((always_inline)) inline void correlate_body(const double* e, int64_t count, const double* hr,
                                                          int32_t k, int stride, double* y) {
  int64_t d = 0;
  for (; d + 16 <= count; d += 16) {
    v4d a0 = {0, 0, 0, 0}, a1 = a0, a2 = a0, a3 = a0;
    const double* p = e + d;
    for (int32_t j = 0; j < k; ++j, p += stride) {
      const double c = hr[j];
      const v4d cv = {c, c, c, c};
      a0 += cv * load4(p);
      a1 += cv * load4(p + 4);
      a2 += cv * load4(p + 8);
      a3 += cv * load4(p + 12);
    }
    store4(y + d, a0);
    store4(y + d + 4, a1);
    store4(y + d + 8, a2);
    store4(y + d + 12, a3);
  }
  for (; d < count; ++d) {
    double a = 0;
    const double* p = e + d;
    for (int32_t j = 0; j < k; ++j, p += stride) a += hr[j] * *p;
    y[d] = a;
  }
}

void correlate_baseline(const double* e, int64_t count, const double* hr, int32_t k, int stride, double* y) {
  correlate_body(e, count, hr, k, stride, y);
}

__attribute__((target("avx2"))) void correlate_avx2(const double* e, int64_t count, const double* hr, int32_t k,
                                                    int stride, double* y) {
  correlate_body(e, count, hr, k, stride, y);
}


// Dot product of a and b over len float64 values whose P parts alternate
// (P is 1 or 2): out[c] sums the products of part c. Eight lanes, folded
// into four and then per part in lane order, then the tail.
template <int P>
__attribute__((always_inline)) inline void dot_body(const double* a, const double* b, int64_t len, double* out) {
  v4d s0 = {0, 0, 0, 0}, s1 = s0;
  int64_t i = 0;
  for (; i + 8 <= len; i += 8) {
    s0 += load4(a + i) * load4(b + i);
    s1 += load4(a + i + 4) * load4(b + i + 4);
  }
  const v4d s = s0 + s1;
  if constexpr (P == 1) {
    double r = (s[0] + s[1]) + (s[2] + s[3]);
    for (; i < len; ++i) r += a[i] * b[i];
    out[0] = r;
  } else {
    double re = s[0] + s[2], im = s[1] + s[3];
    for (; i < len; i += 2) {
      re += a[i] * b[i];
      im += a[i + 1] * b[i + 1];
    }
    out[0] = re;
    out[1] = im;
  }
}

// The outputs of a rate change: output m sits at upsampled time s = first +
// m * down of the block and meets the taps p, p + up, ... (p = s mod up)
// against the inputs s / up, s / up - 1, ...; table holds each phase's taps
// oldest input first, repeated per part, from start[p]. The phase and the
// newest input advance by down % up and down / up a step, kept
// incrementally: two divisions an output would cost more than its sum.
template <int parts>
__attribute__((always_inline)) inline void polyphase_parts(const double* table, const int64_t* start, int64_t phases,
                                                           const double* e, int64_t hist, int64_t count,
                                                           int64_t first, int64_t up, int64_t down, double* out) {
  const int64_t step_inputs = down / up, step_phase = down % up;
  int64_t p = first % up, j0 = first / up;
  for (int64_t m = 0; m < count; ++m, p += step_phase, j0 += step_inputs) {
    if (p >= up) {
      p -= up;
      ++j0;
    }
    if (p >= phases) {
      for (int c = 0; c < parts; ++c) out[m * parts + c] = 0.0;
      continue;
    }
    const int64_t taps = start[p + 1] - start[p];
    dot_body<parts>(table + start[p] * parts, e + (hist + j0 - (taps - 1)) * parts, taps * parts, out + m * parts);
  }
}

__attribute__((always_inline)) inline void polyphase_body(const double* table, const int64_t* start, int64_t phases,
                                                          const double* e, int64_t hist, int64_t count,
                                                          int64_t first, int64_t up, int64_t down, int parts,
                                                          double* out) {
  if (parts == 1)
    polyphase_parts<1>(table, start, phases, e, hist, count, first, up, down, out);
  else
    polyphase_parts<2>(table, start, phases, e, hist, count, first, up, down, out);
}

void polyphase_baseline(const double* table, const int64_t* start, int64_t phases, const double* e, int64_t hist,
                        int64_t count, int64_t first, int64_t up, int64_t down, int parts, double* out) {
  polyphase_body(table, start, phases, e, hist, count, first, up, down, parts, out);
}

__attribute__((target("avx2"))) void polyphase_avx2(const double* table, const int64_t* start, int64_t phases,
                                                    const double* e, int64_t hist, int64_t count, int64_t first,
                                                    int64_t up, int64_t down, int parts, double* out) {
  polyphase_body(table, start, phases, e, hist, count, first, up, down, parts, out);
}

void polyphase(const double* table, const int64_t* start, int64_t phases, const double* e, int64_t hist,
               int64_t count, int64_t first, int64_t up, int64_t down, int parts, double* out) {
  static const bool avx2 = __builtin_cpu_supports("avx2");
  (avx2 ? polyphase_avx2 : polyphase_baseline)(table, start, phases, e, hist, count, first, up, down, parts, out);
}

// Samples as float64 parts and back.
template <class S> inline void to_parts(const S* s, int64_t n, double* d) {
  const auto* p = reinterpret_cast<const typename Parts<S>::T*>(s);
  for (int64_t i = 0; i < n * Parts<S>::value; ++i) d[i] = static_cast<double>(p[i]);
}
template <class S> inline void from_parts(const double* d, int64_t n, S* s) {
  using T = typename Parts<S>::T;
  auto* p = reinterpret_cast<T*>(s);
  for (int64_t i = 0; i < n * Parts<S>::value; ++i) p[i] = static_cast<T>(d[i]);
}

}  // namespace

void correlate(const double* e, int64_t count, const double* hr, int32_t k, int stride, double* y) {
  static const bool avx2 = __builtin_cpu_supports("avx2");
  (avx2 ? correlate_avx2 : correlate_baseline)(e, count, hr, k, stride, y);
}

int64_t history_length(int32_t k, int32_t up) { return k < 1 || up < 1 ? 0 : (int64_t{k} - 1) / up; }

int64_t output_count(int64_t n, int32_t up, int32_t down, int32_t phase) {
  const int64_t first = (down - phase) % down;
  const int64_t span = n * up;
  return span > first ? (span - first + down - 1) / down : 0;
}

int32_t next_phase(int64_t n, int32_t up, int32_t down, int32_t phase) {
  return static_cast<int32_t>((phase + (n % down) * up) % down);
}

template <class S>
int32_t multirate(const S* x, int64_t n, const double* h, int32_t k, int32_t up, int32_t down, int32_t phase,
                  S* history, S* y) {
  constexpr int parts = Parts<S>::value;
  const int64_t hist = history_length(k, up);
  const int64_t count = output_count(n, up, down, phase);
  // The inputs as float64 parts, the history in front of the block.
  // float64 outputs are written directly, the others through a buffer.
  constexpr bool direct = std::is_same_v<typename Parts<S>::T, double>;
  Scratch<double> ext, buffer, reversed;
  if (ext.allocate(static_cast<size_t>((hist + n) * parts)) != kOk) return kNoMemory;
  if (buffer.allocate(direct ? 0 : static_cast<size_t>(count * parts)) != kOk) return kNoMemory;
  double* out = direct ? reinterpret_cast<double*>(y) : buffer.data();
  if (reversed.allocate(static_cast<size_t>(k)) != kOk) return kNoMemory;
  double* e = ext.data();
  to_parts(history, hist, e);
  to_parts(x, n, e + hist * parts);

  if (up == 1 && down == 1) {
    for (int32_t j = 0; j < k; ++j) reversed[j] = h[k - 1 - j];
    correlate(e, count * parts, reversed.data(), k, parts, out);
  } else {
    // Each phase's taps laid out oldest input first (and repeated per part),
    // so that an output is one contiguous dot product in a fixed order.
    const int64_t phases = std::min<int64_t>(up, k);
    Scratch<double> table;
    Scratch<int64_t> start;
    if (table.allocate(static_cast<size_t>(k) * parts) != kOk || start.allocate(static_cast<size_t>(phases + 1)) != kOk)
      return kNoMemory;
    start[0] = 0;
    for (int64_t p = 0; p < phases; ++p) {
      const int64_t taps = (k - 1 - p) / up + 1;
      double* t = table.data() + start[p] * parts;
      for (int64_t j = 0; j < taps; ++j)
        for (int c = 0; c < parts; ++c) t[j * parts + c] = h[p + (taps - 1 - j) * up];
      start[p + 1] = start[p] + taps;
    }
    polyphase(table.data(), start.data(), phases, e, hist, count, (down - phase) % down, up, down, parts, out);
  }
  if (!direct) from_parts(out, count, y);
  from_parts(e + n * parts, hist, history);
  return kOk;
}

template int32_t multirate<double>(const double*, int64_t, const double*, int32_t, int32_t, int32_t, int32_t,
                                   double*, double*);
template int32_t multirate<float>(const float*, int64_t, const double*, int32_t, int32_t, int32_t, int32_t, float*,
                                  float*);
template int32_t multirate<cdouble>(const cdouble*, int64_t, const double*, int32_t, int32_t, int32_t, int32_t,
                                    cdouble*, cdouble*);
template int32_t multirate<cfloat>(const cfloat*, int64_t, const double*, int32_t, int32_t, int32_t, int32_t,
                                   cfloat*, cfloat*);

}  // namespace jq::fir
