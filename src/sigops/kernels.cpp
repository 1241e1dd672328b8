#include "sigops/kernels.hpp"

#include <algorithm>
#include <cstddef>

namespace jq::sig {

// The direct sums spend their time in these loops, so they are vectorised
// here whatever the library's own optimisation level, and built a second
// time for AVX2, chosen at run time. Products and sums stay separate
// operations (no fused multiply-add), so both builds round alike.
#if defined(__GNUC__) && (defined(__x86_64__) || defined(__i386__))
#define JQ_VECTORISE __attribute__((optimize("tree-loop-vectorize", "vect-cost-model=dynamic")))
#define JQ_AVX2 __attribute__((target("avx2")))
static bool use_avx2() {
  static const bool yes = __builtin_cpu_supports("avx2");
  return yes;
}
#else
#define JQ_VECTORISE
#define JQ_AVX2
static bool use_avx2() { return false; }
#endif

#define JQ_REAL_AXPY                                    \
  for (int32_t j = 0; j < m; ++j) o[j] += a * y[j];

// Four outer terms at once: each output takes its four products in the
// outer sequence's order, exactly as four passes of the loop above would add
// them, but is loaded and stored once. The inner sequence is read forwards
// (S = 1) or from its end backwards (S = -1).
template <int S>
[[gnu::always_inline]] inline void sum_rows(const double* a, int32_t na, const double* b, int32_t nb,
                                            double* __restrict out) {
  int32_t i = 0;
  for (; i + 4 <= na && nb >= 4; i += 4) {
    const double a0 = a[i], a1 = a[i + 1], a2 = a[i + 2], a3 = a[i + 3];
    double* o = out + i;
    auto term = [&](int32_t j) { return b[S * j]; };
    // The first three outputs and the last three take fewer than four terms.
    for (int32_t t = 0; t < 3; ++t) {
      double v = o[t] + a0 * term(t);
      if (t >= 1) v += a1 * term(t - 1);
      if (t >= 2) v += a2 * term(t - 2);
      o[t] = v;
    }
    const double* __restrict b0 = b;
    for (int32_t t = 3; t < nb; ++t) {
      o[t] = (((o[t] + a0 * b0[S * t]) + a1 * b0[S * (t - 1)]) + a2 * b0[S * (t - 2)]) + a3 * b0[S * (t - 3)];
    }
    for (int32_t t = nb; t < nb + 3; ++t) {
      double v = o[t];
      if (t - 1 < nb) v += a1 * term(t - 1);
      if (t - 2 < nb) v += a2 * term(t - 2);
      v += a3 * term(t - 3);
      o[t] = v;
    }
  }
  for (; i < na; ++i) {
    double* o = out + i;
    for (int32_t j = 0; j < nb; ++j) o[j] += a[i] * b[S * j];
  }
}

// Plain arithmetic on the parts: the library's complex product would also
// run its recovery of infinities on every term.
#define JQ_COMPLEX_AXPY                                 \
  for (int32_t j = 0; j < m; ++j) {                     \
    const double yr = y[2 * j], yi = y[2 * j + 1];      \
    o[2 * j] += ar * yr - ai * yi;                      \
    o[2 * j + 1] += ar * yi + ai * yr;                  \
  }

namespace {
JQ_VECTORISE void real_axpy(double a, const double* __restrict y, int32_t m, double* __restrict o) { JQ_REAL_AXPY }
JQ_VECTORISE JQ_AVX2 void real_axpy_avx2(double a, const double* __restrict y, int32_t m, double* __restrict o) {
  JQ_REAL_AXPY
}
JQ_VECTORISE void complex_axpy(double ar, double ai, const double* __restrict y, int32_t m, double* __restrict o) {
  JQ_COMPLEX_AXPY
}
JQ_VECTORISE JQ_AVX2 void complex_axpy_avx2(double ar, double ai, const double* __restrict y, int32_t m,
                                            double* __restrict o) {
  JQ_COMPLEX_AXPY
}
template <int S> JQ_VECTORISE void rows(const double* a, int32_t na, const double* b, int32_t nb, double* out) {
  sum_rows<S>(a, na, b, nb, out);
}
template <int S>
JQ_VECTORISE JQ_AVX2 void rows_avx2(const double* a, int32_t na, const double* b, int32_t nb, double* out) {
  sum_rows<S>(a, na, b, nb, out);
}
}  // namespace

void axpy(double a, const double* y, int32_t m, double* o) {
  (use_avx2() ? real_axpy_avx2 : real_axpy)(a, y, m, o);
}

void axpy(cdouble a, const cdouble* y, int32_t m, cdouble* o) {
  (use_avx2() ? complex_axpy_avx2 : complex_axpy)(a.real(), a.imag(), reinterpret_cast<const double*>(y), m,
                                                  reinterpret_cast<double*>(o));
}

void direct_convolve(const double* x, int32_t n, const double* y, int32_t m, double* out) {
  std::fill(out, out + (static_cast<size_t>(n) + m - 1), 0.0);
  (use_avx2() ? rows_avx2<1> : rows<1>)(x, n, y, m, out);
}

void direct_convolve(const cdouble* x, int32_t n, const cdouble* y, int32_t m, cdouble* out) {
  std::fill(out, out + (static_cast<size_t>(n) + m - 1), cdouble());
  for (int32_t i = 0; i < n; ++i) axpy(x[i], y, m, out + i);
}

void direct_correlate(const double* x, int32_t n, const double* y, int32_t m, double* out) {
  std::fill(out, out + (static_cast<size_t>(n) + m - 1), 0.0);
  (use_avx2() ? rows_avx2<-1> : rows<-1>)(y, m, x + (n - 1), n, out);
}

void multiply_half_complex(const double* a, const double* b, double* p, int32_t L) {
  p[0] = a[0] * b[0];
  for (int32_t k = 1; k < L - k; ++k) {
    const double ar = a[k], ai = a[L - k], br = b[k], bi = b[L - k];
    p[k] = ar * br - ai * bi;
    p[L - k] = ar * bi + ai * br;
  }
  if (L % 2 == 0) p[L / 2] = a[L / 2] * b[L / 2];
}

void multiply_add_half_complex(const double* a, const double* b, double* p, int32_t L) {
  p[0] += a[0] * b[0];
  for (int32_t k = 1; k < L - k; ++k) {
    const double ar = a[k], ai = a[L - k], br = b[k], bi = b[L - k];
    p[k] += ar * br - ai * bi;
    p[L - k] += ar * bi + ai * br;
  }
  if (L % 2 == 0) p[L / 2] += a[L / 2] * b[L / 2];
}

void multiply_complex(const cdouble* a, const cdouble* b, cdouble* p, size_t L) {
  const double* ad = reinterpret_cast<const double*>(a);
  const double* bd = reinterpret_cast<const double*>(b);
  double* pd = reinterpret_cast<double*>(p);
  for (size_t k = 0; k < L; ++k) {
    const double ar = ad[2 * k], ai = ad[2 * k + 1], br = bd[2 * k], bi = bd[2 * k + 1];
    pd[2 * k] = ar * br - ai * bi;
    pd[2 * k + 1] = ar * bi + ai * br;
  }
}

}  // namespace jq::sig
