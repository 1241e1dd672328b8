// One instruction-set variant of the generated butterflies. Included by
// codelets.cpp (baseline x86-64) and codelets_avx2.cpp (built with AVX2)
// with JQ_CODELET_NS naming the variant. Both variants perform the same
// operations in the same order, so their results are identical.
//
// A butterfly body is written once, over a lane type T: double for one
// butterfly, or a vector V holding kW independent butterflies side by side.
// The loops below run vectors over the butterflies they can and finish the
// rest one at a time.
#include <cstddef>

#include "transforms/codelets.hpp"

namespace jq::fft::JQ_CODELET_NS {
namespace {

#if defined(__AVX__)
#define JQ_LANES 4
#else
#define JQ_LANES 2
#endif
constexpr int kW = JQ_LANES;
typedef double V __attribute__((vector_size(kW * sizeof(double))));
typedef long long VI __attribute__((vector_size(kW * sizeof(long long))));

template <class T> inline T ld(const double* p);
template <> inline double ld<double>(const double* p) { return *p; }
template <> inline V ld<V>(const double* p) {
  V v;
  __builtin_memcpy(&v, p, sizeof v);
  return v;
}
inline void st_(double* p, double v) { *p = v; }
inline void st_(double* p, V v) { __builtin_memcpy(p, &v, sizeof v); }
template <class T> inline void st(double* p, T v) { st_(p, v); }

inline V reversed(V v) {
#if JQ_LANES == 4
  return __builtin_shuffle(v, VI{3, 2, 1, 0});
#else
  return __builtin_shuffle(v, VI{1, 0});
#endif
}

// Loads and stores that run the lanes downward from p (the half-complex
// twiddle forms walk bins k upward and m-k downward at once).
template <class T> inline T ldr(const double* p);
template <> inline double ldr<double>(const double* p) { return *p; }
template <> inline V ldr<V>(const double* p) { return reversed(ld<V>(p - (kW - 1))); }
inline void str_(double* p, double v) { *p = v; }
inline void str_(double* p, V v) { st_(p - (kW - 1), reversed(v)); }
template <class T> inline void str(double* p, T v) { str_(p, v); }

// The large butterflies run in two stages through a local buffer; for
// vectors the barrier keeps the compiler from merging the stages back into
// one block whose values no longer fit in registers. One butterfly at a
// time fits well enough, and there the buffer is left to the compiler.
inline void stage_barrier(double*) {}
inline void stage_barrier(V* p) { asm volatile("" : : "r"(p) : "memory"); }

// ---- leaves: `count` DFTs, DFT c reading at in + c*idist, writing at out + c*odist

struct LeafScalar {
  using T = double;
  ptrdiff_t os;
  double ld(const double* p) const { return *p; }
  void st1(double* p, double v) const { *p = v; }
  void st4(double* p, double a, double b, double c, double d) const {
    p[0] = a;
    p[os] = b;
    p[2 * os] = c;
    p[3 * os] = d;
  }
};

// kW DFTs at once. Their inputs are side by side when idist is 1 (Unit);
// their outputs are idist apart, so four consecutive outputs of every DFT
// are transposed into one row each before they are stored.
template <bool Unit> struct LeafVector {
  using T = V;
  ptrdiff_t idist, odist, os;
  V ld(const double* p) const {
    if constexpr (Unit) {
      return jq::fft::JQ_CODELET_NS::ld<V>(p);
    } else {
      V v;
      for (int i = 0; i < kW; ++i) v[i] = p[i * idist];
      return v;
    }
  }
  void st1(double* p, V v) const {
    for (int i = 0; i < kW; ++i) p[i * odist] = v[i];
  }
  void st4(double* p, V a, V b, V c, V d) const {
    if (os != 1) {
      st1(p, a);
      st1(p + os, b);
      st1(p + 2 * os, c);
      st1(p + 3 * os, d);
      return;
    }
#if JQ_LANES == 4
    const V ab0 = __builtin_shuffle(a, b, VI{0, 4, 2, 6}), ab1 = __builtin_shuffle(a, b, VI{1, 5, 3, 7});
    const V cd0 = __builtin_shuffle(c, d, VI{0, 4, 2, 6}), cd1 = __builtin_shuffle(c, d, VI{1, 5, 3, 7});
    st_(p, __builtin_shuffle(ab0, cd0, VI{0, 1, 4, 5}));
    st_(p + odist, __builtin_shuffle(ab1, cd1, VI{0, 1, 4, 5}));
    st_(p + 2 * odist, __builtin_shuffle(ab0, cd0, VI{2, 3, 6, 7}));
    st_(p + 3 * odist, __builtin_shuffle(ab1, cd1, VI{2, 3, 6, 7}));
#else
    st_(p, __builtin_shuffle(a, b, VI{0, 2}));
    st_(p + 2, __builtin_shuffle(c, d, VI{0, 2}));
    st_(p + odist, __builtin_shuffle(a, b, VI{1, 3}));
    st_(p + odist + 2, __builtin_shuffle(c, d, VI{1, 3}));
#endif
  }
};

template <class F>
inline void leaf_loop(const double* in, double* out, ptrdiff_t is, ptrdiff_t os, ptrdiff_t idist, ptrdiff_t odist,
                      int count, F body) {
  // A single DFT (a one-factor length): with unit strides the offsets are
  // constants, and no loop set-up is paid.
  if (count == 1) {
    if (is == 1 && os == 1)
      body(LeafScalar{1}, in, out, 1, 1);
    else
      body(LeafScalar{os}, in, out, is, os);
    return;
  }
  int c = 0;
  if (idist == 1) {
    const LeafVector<true> a{idist, odist, os};
    for (; c + kW <= count; c += kW) body(a, in + c, out + c * odist, is, os);
  } else {
    const LeafVector<false> a{idist, odist, os};
    for (; c + kW <= count; c += kW) body(a, in + c * idist, out + c * odist, is, os);
  }
  const LeafScalar a{os};
  for (; c < count; ++c) body(a, in + c * idist, out + c * odist, is, os);
}

// ---- combinations with twiddles, in place, butterfly k at element k*s

// The last butterflies, fewer than kW, run as one vector through a
// buffer laid out [block][lane]: the buffer's blocks are kW apart and so are
// the twiddle rows. Lanes past the end compute on zeros and are dropped.
constexpr int kMaxRadix = 43;

// Complex: butterflies k = 0 .. m-1; the twiddle rows hold m entries, the
// first being 1.
template <class F>
inline void cx_twiddle_loop(double* re, double* im, const double* twc, const double* tws, ptrdiff_t s, int m, int r,
                            F body) {
  const ptrdiff_t ms = m * s;
  int k = 0;
  if (s == 1) {
    for (; k + kW <= m; k += kW) body(V{}, re + k, im + k, twc + k, tws + k, ms, m);
    if (k < m && m >= kW) {
      alignas(32) double b[4 * kMaxRadix * kW];
      double *br = b, *bi = b + r * kW, *bc = b + 2 * r * kW, *bs = b + 3 * r * kW;
      const int n = m - k;
      for (int t = 0; t < r; ++t)
        for (int i = 0; i < kW; ++i) {
          const bool in = i < n;
          br[t * kW + i] = in ? re[t * ms + k + i] : 0.0;
          bi[t * kW + i] = in ? im[t * ms + k + i] : 0.0;
          if (t > 0) {
            bc[(t - 1) * kW + i] = in ? twc[(t - 1) * m + k + i] : 0.0;
            bs[(t - 1) * kW + i] = in ? tws[(t - 1) * m + k + i] : 0.0;
          }
        }
      body(V{}, br, bi, bc, bs, ptrdiff_t{kW}, ptrdiff_t{kW});
      for (int t = 0; t < r; ++t)
        for (int i = 0; i < n; ++i) {
          re[t * ms + k + i] = br[t * kW + i];
          im[t * ms + k + i] = bi[t * kW + i];
        }
      return;
    }
  }
  for (; k < m; ++k) body(0.0, re + k * s, im + k * s, twc + k, tws + k, ms, m);
}

// Half-complex: butterflies on the bin pairs (k, m-k), 0 < k < m/2. The
// vector form walks bins k upward and m-k downward.
template <class F>
inline void hc_twiddle_loop(double* d, const double* twc, const double* tws, ptrdiff_t s, int m, int r, F body) {
  const ptrdiff_t ms = m * s;
  const int half = (m - 1) / 2;
  int k = 1;
  if (s == 1) {
    for (; k + kW - 1 <= half; k += kW) body(V{}, d + k, d + (m - k), twc + k, tws + k, ms, m);
    if (k <= half && half >= kW) {
      alignas(32) double b[4 * kMaxRadix * kW];
      double *bf = b, *bb = b + r * kW, *bc = b + 2 * r * kW, *bs = b + 3 * r * kW;
      const int n = half - k + 1;
      for (int t = 0; t < r; ++t)
        for (int i = 0; i < kW; ++i) {
          const bool in = i < n;
          bf[t * kW + i] = in ? d[t * ms + k + i] : 0.0;
          bb[t * kW + kW - 1 - i] = in ? d[t * ms + m - k - i] : 0.0;
          if (t > 0) {
            bc[(t - 1) * kW + i] = in ? twc[(t - 1) * m + k + i] : 0.0;
            bs[(t - 1) * kW + i] = in ? tws[(t - 1) * m + k + i] : 0.0;
          }
        }
      body(V{}, bf, bb + kW - 1, bc, bs, ptrdiff_t{kW}, ptrdiff_t{kW});
      for (int t = 0; t < r; ++t)
        for (int i = 0; i < n; ++i) {
          d[t * ms + k + i] = bf[t * kW + i];
          d[t * ms + m - k - i] = bb[t * kW + kW - 1 - i];
        }
      return;
    }
  }
  for (; k <= half; ++k) body(0.0, d + k * s, d + (m - k) * s, twc + k, tws + k, ms, m);
}

#include "transforms/codelets.inc"
}  // namespace

const CodeletSet* find(int radix) {
  for (const CodeletSet& c : kCodeletSets)
    if (c.radix == radix) return &c;
  return nullptr;
}

}  // namespace jq::fft::JQ_CODELET_NS
