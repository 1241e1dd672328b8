#include "filters/iir_filter.hpp"

#include <algorithm>
#include <cfloat>
#include <cmath>

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

// One pass of up to four consecutive sections over the whole block, their
// states held in locals so that the compiler keeps them in registers; the
// sections' recurrences then overlap from one sample to the next.
template <int M, int NS, bool Last, class T>
void sections(T* x, int64_t n, const double* a, const double* b, T* state) {
  T s[NS][M];
  for (int k = 0; k < NS; ++k)
    for (int i = 0; i < M; ++i) s[k][i] = state[k * M + i];
  for (int64_t t = 0; t < n; ++t) {
    T v = x[t];
    for (int k = 0; k < NS; ++k) {
      const double* ak = a + k * M;
      const double* bk = b + k * (M + 1);
      T w = v;
      for (int i = 0; i < M; ++i) w -= ak[i] * s[k][i];
      T y = bk[0] * w;
      for (int i = 0; i < M; ++i) y += bk[i + 1] * s[k][i];
      for (int i = M - 1; i > 0; --i) s[k][i] = s[k][i - 1];
      s[k][0] = flush(w);
      v = y;
    }
    x[t] = Last ? flush(v) : v;
  }
  for (int k = 0; k < NS; ++k)
    for (int i = 0; i < M; ++i) state[k * M + i] = s[k][i];
}

template <int M, class T>
void cascade_m(T* x, int64_t n, int64_t ns, const double* a, const double* b, T* state) {
  for (int64_t k = 0; k < ns; k += 4) {
    const int64_t left = ns - k;
    const bool last = left <= 4;
    const double* ak = a + k * M;
    const double* bk = b + k * (M + 1);
    T* sk = state + k * M;
#define JQ_RUN(NS)                                         \
  (last ? sections<M, NS, true>(x, n, ak, bk, sk) : sections<M, NS, false>(x, n, ak, bk, sk))
    switch (left) {
      case 1: JQ_RUN(1); break;
      case 2: JQ_RUN(2); break;
      case 3: JQ_RUN(3); break;
      default: JQ_RUN(4); break;
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

template <class X, class C, class Y>
int32_t direct_form(const X* x, Y* y, int64_t n, const C* a, int64_t na, const C* b, int64_t nb, X* fstate,
                    Y* rstate) {
  if (n < 1 || nb < 1) return kEmptyInput;
  for (int64_t t = 0; t < n; ++t) {
    const X xt = x[t];
    Y acc{};
    // Oldest history value first, paired with the highest coefficient; the
    // history moves one place toward its start as it is read.
    for (int64_t j = 0; j < nb - 1; ++j) {
      acc += b[nb - 1 - j] * fstate[j];
      fstate[j] = j + 1 < nb - 1 ? fstate[j + 1] : xt;
    }
    acc += b[0] * xt;
    if (na > 0) {
      for (int64_t j = 0; j < na - 1; ++j) acc -= a[na - 1 - j] * rstate[j];
      const Y out = flush(Y(acc / a[0]));
      for (int64_t j = 0; j + 1 < na - 1; ++j) rstate[j] = rstate[j + 1];
      if (na > 1) rstate[na - 2] = out;
      y[t] = out;
    } else {
      y[t] = acc;
    }
  }
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
// middle backward.
template <class Run> int32_t zero_phase(double* x, int64_t n, int64_t pad, Run run) {
  Scratch<double> buf;
  const size_t len = static_cast<size_t>(n + 2 * pad);
  if (int32_t rc = buf.allocate(len)) return rc;
  std::fill(buf.data(), buf.data() + len, 0.0);
  std::copy(x, x + n, buf.data() + pad);
  run(buf.data(), static_cast<int64_t>(len), 0);
  std::reverse(buf.data(), buf.data() + len);
  run(buf.data(), static_cast<int64_t>(len), 1);
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
  });
}

int32_t zero_phase_direct(double* x, int64_t n, const double* a, int64_t na, const double* b, int64_t nb,
                          double* fstate1, double* rstate1, double* fstate2, double* rstate2) {
  return zero_phase(x, n, direct_transient(a, na, b, nb), [&](double* p, int64_t len, int pass) {
    direct_form(p, p, len, a, na, b, nb, pass == 0 ? fstate1 : fstate2, pass == 0 ? rstate1 : rstate2);
  });
}

}  // namespace jq::iir
