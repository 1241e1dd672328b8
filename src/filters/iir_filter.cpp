#include "filters/iir_filter.hpp"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <type_traits>

#include <emmintrin.h>

#include "frame/errors.hpp"
#include "frame/scratch.hpp"

namespace jq::iir {

namespace {

// Values at or below the smallest normal double become exact zeros (each part
// of a complex value on its own, as if the parts were filtered apart).
inline double flush(double v) { return std::fabs(v) <= DBL_MIN ? 0.0 : v; }
inline cdouble flush(cdouble v) { return {flush(v.real()), flush(v.imag())}; }

template <class T> struct Promote;
template <> struct Promote<double> { using type = double; };
template <> struct Promote<cdouble> { using type = cdouble; };

// Runs one sample through section k: its state s (newest first) and its
// coefficients a (m values) and b (m + 1 values). Each sum over the state is
// formed on its own, first term first, then combined with the new value.
template <int M, class T> inline T section_step(T v, T* s, const double* a, const double* b) {
  T fb = a[0] * s[0], ff = b[1] * s[0];
#pragma GCC unroll 8
  for (int i = 1; i < M; ++i) fb += a[i] * s[i], ff += b[i + 1] * s[i];
  const T w = v - fb;
  const T y = b[0] * w + ff;
#pragma GCC unroll 8
  for (int i = M - 1; i > 0; --i) s[i] = s[i - 1];
  s[0] = flush(w);
  return y;
}

// The steady part of a skewed pass over real samples, two sections to a
// vector: lanes do exactly the scalar arithmetic, so results do not change.
template <int M, int NS, bool Last>
void steady_pairs(double* x, int64_t n, const double* a, const double* b, double (*s)[M], double* in) {
  constexpr int P = NS / 2;
  __m128d S[P][M], A[P][M], B[P][M + 1], IN[P];
#pragma GCC unroll 8
  for (int p = 0; p < P; ++p) {
    const int k0 = 2 * p, k1 = 2 * p + 1;
#pragma GCC unroll 8
    for (int i = 0; i < M; ++i) {
      S[p][i] = _mm_set_pd(s[k1][i], s[k0][i]);
      A[p][i] = _mm_set_pd(a[k1 * M + i], a[k0 * M + i]);
    }
#pragma GCC unroll 5
    for (int i = 0; i <= M; ++i) B[p][i] = _mm_set_pd(b[k1 * (M + 1) + i], b[k0 * (M + 1) + i]);
    IN[p] = _mm_set_pd(in[k1], p ? in[k0] : 0.0);
  }
  const __m128d magnitude = _mm_castsi128_pd(_mm_set1_epi64x(0x7fffffffffffffff));
  const __m128d tiny = _mm_set1_pd(DBL_MIN);
  for (int64_t t = NS - 1; t < n; ++t) {
    IN[0] = _mm_move_sd(IN[0], _mm_load_sd(x + t));
    __m128d Y[P];
#pragma GCC unroll 8
    for (int p = 0; p < P; ++p) {
      __m128d fb = _mm_mul_pd(A[p][0], S[p][0]), ff = _mm_mul_pd(B[p][1], S[p][0]);
#pragma GCC unroll 8
      for (int i = 1; i < M; ++i) {
        fb = _mm_add_pd(fb, _mm_mul_pd(A[p][i], S[p][i]));
        ff = _mm_add_pd(ff, _mm_mul_pd(B[p][i + 1], S[p][i]));
      }
      const __m128d w = _mm_sub_pd(IN[p], fb);
      Y[p] = _mm_add_pd(_mm_mul_pd(B[p][0], w), ff);
#pragma GCC unroll 8
      for (int i = M - 1; i > 0; --i) S[p][i] = S[p][i - 1];
      // Not (|w| <= DBL_MIN) keeps NaN, as the scalar flush does.
      S[p][0] = _mm_and_pd(w, _mm_cmpnle_pd(_mm_and_pd(w, magnitude), tiny));
    }
    const double y = _mm_cvtsd_f64(_mm_unpackhi_pd(Y[P - 1], Y[P - 1]));
    x[t - (NS - 1)] = Last ? flush(y) : y;
    IN[0] = _mm_unpacklo_pd(Y[0], Y[0]);
#pragma GCC unroll 8
    for (int p = 1; p < P; ++p) IN[p] = _mm_shuffle_pd(Y[p - 1], Y[p], 1);
  }
#pragma GCC unroll 8
  for (int p = 0; p < P; ++p) {
#pragma GCC unroll 8
    for (int i = 0; i < M; ++i) {
      s[2 * p][i] = _mm_cvtsd_f64(S[p][i]);
      s[2 * p + 1][i] = _mm_cvtsd_f64(_mm_unpackhi_pd(S[p][i], S[p][i]));
    }
    in[2 * p] = _mm_cvtsd_f64(IN[p]);
    in[2 * p + 1] = _mm_cvtsd_f64(_mm_unpackhi_pd(IN[p], IN[p]));
  }
}

// One pass of consecutive sections over the whole block, their
// states in locals the compiler keeps in registers. The sections run skewed:
// in step t section k takes sample t - k, the output section k - 1 gave in the
// step before, so the sections' recurrences in one step are independent and
// overlap instead of waiting for each other. Each section still sees its
// samples in order, so the results are those of running them one by one.
template <int M, int NS, bool Last, class T>
void sections(T* x, int64_t n, const double* a, const double* b, T* state) {
  T s[NS][M];
#pragma GCC unroll 8
  for (int k = 0; k < NS; ++k)
#pragma GCC unroll 8
    for (int i = 0; i < M; ++i) s[k][i] = state[k * M + i];
  auto out = [&](int64_t t, T y) { x[t] = Last ? flush(y) : y; };
  if (n < NS) {
    for (int64_t t = 0; t < n; ++t) {
      T v = x[t];
      for (int k = 0; k < NS; ++k) v = section_step<M>(v, s[k], a + k * M, b + k * (M + 1));
      out(t, v);
    }
  } else {
    T in[NS];  // in[k]: the sample waiting for section k (k >= 1)
    // Filling: in step t only sections 0..t have a sample.
    for (int64_t t = 0; t < NS - 1; ++t)
      for (int64_t k = t; k >= 0; --k) in[k + 1] = section_step<M>(k ? in[k] : x[t], s[k], a + k * M, b + k * (M + 1));
    if constexpr (std::is_same_v<T, double> && NS % 2 == 0) {
      steady_pairs<M, NS, Last>(x, n, a, b, s, in);
    } else {
      for (int64_t t = NS - 1; t < n; ++t) {
#pragma GCC unroll 8
        for (int k = NS - 1; k >= 0; --k) {
          const T y = section_step<M>(k ? in[k] : x[t], s[k], a + k * M, b + k * (M + 1));
          if (k == NS - 1)
            out(t - (NS - 1), y);
          else
            in[k + 1] = y;
        }
      }
    }
    // Draining: sections k > t - n finish the last samples.
    for (int64_t t = n; t < n + NS - 1; ++t)
      for (int64_t k = NS - 1; k > t - n; --k) {
        const T y = section_step<M>(in[k], s[k], a + k * M, b + k * (M + 1));
        if (k == NS - 1)
          out(t - (NS - 1), y);
        else
          in[k + 1] = y;
      }
  }
#pragma GCC unroll 8
  for (int k = 0; k < NS; ++k)
#pragma GCC unroll 8
    for (int i = 0; i < M; ++i) state[k * M + i] = s[k][i];
}

template <int M, class T>
void cascade_m(T* x, int64_t n, int64_t ns, const double* a, const double* b, T* state) {
  // Passes of up to eight real sections (four complex ones), an even number
  // where possible so that sections pair up in vectors; an odd one is left
  // to a pass of its own.
  constexpr int64_t most = std::is_same_v<T, double> ? 8 : 4;
  for (int64_t k = 0, step; k < ns; k += step) {
    const int64_t left = ns - k;
    step = left > most ? most : left > 1 ? left & ~int64_t{1} : 1;
    const bool last = left == step;
    const double* ak = a + k * M;
    const double* bk = b + k * (M + 1);
    T* sk = state + k * M;
#define JQ_RUN(NS)                                         \
  (last ? sections<M, NS, true>(x, n, ak, bk, sk) : sections<M, NS, false>(x, n, ak, bk, sk))
    if constexpr (std::is_same_v<T, double>) {
      switch (step) {
        case 1: JQ_RUN(1); break;
        case 2: JQ_RUN(2); break;
        case 4: JQ_RUN(4); break;
        case 6: JQ_RUN(6); break;
        default: JQ_RUN(8); break;
      }
    } else {
      switch (step) {
        case 1: JQ_RUN(1); break;
        case 2: JQ_RUN(2); break;
        default: JQ_RUN(4); break;
      }
    }
#undef JQ_RUN
  }
}

}  // namespace

template <class T> void cascade(T* x, int64_t n, int32_t m, int64_t ns, const double* a, const double* b, T* state) {
  if (ns < 1) return;
  if (m == 4)
    cascade_m<4>(x, n, ns, a, b, state);
  else
    cascade_m<2>(x, n, ns, a, b, state);
}
template void cascade<double>(double*, int64_t, int32_t, int64_t, const double*, const double*, double*);
template void cascade<cdouble>(cdouble*, int64_t, int32_t, int64_t, const double*, const double*, cdouble*);

// Dividing by exactly 1 changes nothing, so a real a0 of 1 skips the
// division (complex division is left alone: its special cases differ).
template <class C> bool unit_leading(const C& a0) {
  if constexpr (std::is_same_v<C, double>)
    return a0 == 1.0;
  else
    return false;
}

// One chunk of a real filter whose polynomials have the same length H + 1,
// the commonest shape, with the loops unrolled and the past outputs held in
// registers (they feed back at once, so going through memory would delay
// every sample). The buffer r still ends with the last H outputs.
template <int H>
void real_chunk(const double* h, double* r, double* y, int64_t len, const double* a, const double* b, bool unit) {
  double past[H];
#pragma GCC unroll 8
  for (int j = 0; j < H; ++j) past[j] = r[j];
  for (int64_t t = 0; t < len; ++t, ++h) {
    double acc = 0, fb = 0;
#pragma GCC unroll 8
    for (int j = 0; j < H; ++j) acc += b[H - j] * h[j];
    acc += b[0] * h[H];
#pragma GCC unroll 8
    for (int j = 0; j < H; ++j) fb += a[H - j] * past[j];
    acc -= fb;
    const double out = flush(unit ? acc : acc / a[0]);
#pragma GCC unroll 8
    for (int j = 0; j + 1 < H; ++j) past[j] = past[j + 1];
    past[H - 1] = out;
    y[t] = out;
  }
#pragma GCC unroll 8
  for (int j = 0; j < H; ++j) r[len + j] = past[j];
}

using RealChunk = void (*)(const double*, double*, double*, int64_t, const double*, const double*, bool);
constexpr RealChunk kRealChunks[] = {nullptr, real_chunk<1>, real_chunk<2>, real_chunk<3>, real_chunk<4>,
                                     real_chunk<5>, real_chunk<6>, real_chunk<7>, real_chunk<8>};

template <class X, class C, class Y>
int32_t direct_form(const X* x, Y* y, int64_t n, const C* a, int64_t na, const C* b, int64_t nb, X* fstate,
                    Y* rstate) {
  if (n < 1 || nb < 1) return kEmptyInput;
  // The histories run on, oldest first, into buffers that take a chunk of
  // samples after them, so no value moves from one sample to the next.
  constexpr int64_t kChunk = 2048;
  const int64_t hf = nb - 1, hr = na > 0 ? na - 1 : 0;
  Scratch<X> xb;
  Scratch<Y> yb;
  if (xb.allocate(static_cast<size_t>(hf + kChunk)) || yb.allocate(static_cast<size_t>(hr + kChunk))) return kNoMemory;
  std::copy(fstate, fstate + hf, xb.data());
  std::copy(rstate, rstate + hr, yb.data());
  const bool unit = na > 0 && unit_leading(a[0]);
  constexpr bool real = std::is_same_v<X, double> && std::is_same_v<C, double> && std::is_same_v<Y, double>;
  RealChunk unrolled = nullptr;
  if constexpr (real)
    if (na == nb && hf >= 1 && hf <= 8) unrolled = kRealChunks[hf];
  for (int64_t t0 = 0; t0 < n; t0 += kChunk) {
    const int64_t len = std::min(kChunk, n - t0);
    std::copy(x + t0, x + t0 + len, xb.data() + hf);
    if constexpr (real)
      if (unrolled) unrolled(xb.data(), yb.data(), y + t0, len, a, b, unit);
    for (int64_t t = 0; t < len && !unrolled; ++t) {
      // Oldest history value first, paired with the highest coefficient.
      const X* h = xb.data() + t;
      Y acc{};
      for (int64_t j = 0; j < hf; ++j) acc += b[hf - j] * h[j];
      acc += b[0] * h[hf];
      if (na > 0) {
        const Y* r = yb.data() + t;
        Y fb{};
        for (int64_t j = 0; j < hr; ++j) fb += a[hr - j] * r[j];
        acc -= fb;
        const Y out = flush(unit ? acc : Y(acc / a[0]));
        yb[static_cast<size_t>(hr + t)] = out;
        y[t0 + t] = out;
      } else {
        y[t0 + t] = acc;
      }
    }
    std::copy(xb.data() + len, xb.data() + len + hf, xb.data());
    std::copy(yb.data() + len, yb.data() + len + hr, yb.data());
  }
  std::copy(xb.data(), xb.data() + hf, fstate);
  std::copy(yb.data(), yb.data() + hr, rstate);
  return kOk;
}
template int32_t direct_form<double, double, double>(const double*, double*, int64_t, const double*, int64_t,
                                                     const double*, int64_t, double*, double*);
template int32_t direct_form<cdouble, double, cdouble>(const cdouble*, cdouble*, int64_t, const double*, int64_t,
                                                       const double*, int64_t, cdouble*, cdouble*);
template int32_t direct_form<cdouble, cdouble, cdouble>(const cdouble*, cdouble*, int64_t, const cdouble*, int64_t,
                                                        const cdouble*, int64_t, cdouble*, cdouble*);
template int32_t direct_form<double, cdouble, cdouble>(const double*, cdouble*, int64_t, const cdouble*, int64_t,
                                                       const cdouble*, int64_t, double*, cdouble*);

namespace {

// True when every value is exactly 0 (a NaN is not).
bool all_zero(const double* p, int64_t n) {
  for (int64_t i = 0; i < n; ++i)
    if (!(p[i] == 0)) return false;
  return true;
}

// Index of the last coefficient that is not exactly 0 (a NaN counts), or 0.
int64_t polynomial_order(const double* p, int64_t n) {
  for (int64_t i = n - 1; i > 0; --i)
    if (!(p[i] == 0)) return i;
  return 0;
}

// The shared zero-phase frame: pad, run forward, reverse, run again, read the
// middle backward. A pass that fails (its scratch memory) fails the call.
template <class Run> int32_t zero_phase(double* x, int64_t n, int64_t pad, Run run) {
  Scratch<double> buf;
  const size_t len = static_cast<size_t>(n + 2 * pad);
  if (int32_t rc = buf.allocate(len)) return rc;
  std::fill(buf.data(), buf.data() + len, 0.0);
  std::copy(x, x + n, buf.data() + pad);
  if (int32_t rc = run(buf.data(), static_cast<int64_t>(len), 0)) return rc;
  std::reverse(buf.data(), buf.data() + len);
  if (int32_t rc = run(buf.data(), static_cast<int64_t>(len), 1)) return rc;
  for (int64_t i = 0; i < n; ++i) x[i] = buf[static_cast<size_t>(pad + n - 1 - i)];
  return kOk;
}

}  // namespace

int64_t cascade_transient(int32_t m, int64_t ns, const double* a, const double* b) {
  const int64_t L = m * ns, h = m / 2;
  if (ns < 1) return 1;
  const int64_t trimmed = all_zero(a + m - h, h) ? L - h : L;
  return all_zero(b + m + 1 - h, h) ? trimmed + 1 : L + 1;
}

int64_t direct_transient(const double* a, int64_t na, const double* b, int64_t nb) {
  return std::max(na > 0 ? polynomial_order(a, na) : 0, polynomial_order(b, nb)) + 1;
}

int32_t zero_phase_cascade(double* x, int64_t n, int32_t m, int64_t ns, const double* a, const double* b,
                           double* state1, double* state2) {
  return zero_phase(x, n, cascade_transient(m, ns, a, b), [&](double* p, int64_t len, int pass) {
    cascade(p, len, m, ns, a, b, pass == 0 ? state1 : state2);
    return int32_t{kOk};
  });
}

int32_t zero_phase_direct(double* x, int64_t n, const double* a, int64_t na, const double* b, int64_t nb,
                          double* fstate1, double* rstate1, double* fstate2, double* rstate2) {
  return zero_phase(x, n, direct_transient(a, na, b, nb), [&](double* p, int64_t len, int pass) {
    return direct_form(p, p, len, a, na, b, nb, pass == 0 ? fstate1 : fstate2, pass == 0 ? rstate1 : rstate2);
  });
}

}  // namespace jq::iir
