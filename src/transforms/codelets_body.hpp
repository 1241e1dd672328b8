// One instruction-set variant of the generated butterflies. Included by
// codelets.cpp (baseline x86-64), codelets_avx2.cpp and codelets_avx512.cpp
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

#if JQ_LANES == 4
// Two lanes: the tails of loops whose vectors have four.
typedef double V2 __attribute__((vector_size(2 * sizeof(double))));
typedef long long VI2 __attribute__((vector_size(2 * sizeof(long long))));
template <> inline V2 ld<V2>(const double* p) {
  V2 v;
  __builtin_memcpy(&v, p, sizeof v);
  return v;
}
inline void st_(double* p, V2 v) { __builtin_memcpy(p, &v, sizeof v); }
inline V2 reversed(V2 v) { return __builtin_shuffle(v, VI2{1, 0}); }
#endif
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
#if JQ_LANES == 4
template <> inline V2 ldr<V2>(const double* p) { return reversed(ld<V2>(p - 1)); }
inline void str_(double* p, V2 v) { st_(p - 1, reversed(v)); }
#endif
template <class T> inline void str(double* p, T v) { str_(p, v); }

// The large butterflies run in two stages through a local buffer; for
// vectors the barrier keeps the compiler from merging the stages back into
// one block whose values no longer fit in registers. One butterfly at a
// time fits well enough, and there the buffer is left to the compiler.
inline void stage_barrier(double*) {}
inline void stage_barrier(V* p) { asm volatile("" : : "r"(p) : "memory"); }
#if JQ_LANES == 4
inline void stage_barrier(V2* p) { asm volatile("" : : "r"(p) : "memory"); }
#endif

// ---- how a vector of one part of complex data is read and written

constexpr VI evens() {
#if JQ_LANES == 4
  return VI{0, 2, 4, 6};
#else
  return VI{0, 2};
#endif
}

// One complex value at a time.
struct MemScalar {
  using T = double;
  static double ld(const double* p) { return *p; }
  static double ldi(const double* p) { return *p; }
  static void stc(double* pr, double* pi, double r, double i) {
    *pr = r;
    *pi = i;
  }
};

// kW consecutive values of split parts.
struct MemSplit {
  using T = V;
  static V ld(const double* p) { return jq::fft::JQ_CODELET_NS::ld<V>(p); }
  static V ldi(const double* p) { return jq::fft::JQ_CODELET_NS::ld<V>(p); }
  static void stc(double* pr, double* pi, V r, V i) {
    st_(pr, r);
    st_(pi, i);
  }
};

// kW consecutive values of interleaved data (imaginary part right after
// the real one): the parts are pulled apart on loading and merged on
// storing. The imaginary part is read from one value back, so that no read
// passes the last value.
struct MemPair {
  using T = V;
  static V ld(const double* p) {
    return __builtin_shuffle(jq::fft::JQ_CODELET_NS::ld<V>(p), jq::fft::JQ_CODELET_NS::ld<V>(p + kW), evens());
  }
  static V ldi(const double* p) {
    return __builtin_shuffle(jq::fft::JQ_CODELET_NS::ld<V>(p - 1), jq::fft::JQ_CODELET_NS::ld<V>(p - 1 + kW),
                             evens() + 1);
  }
  static void stc(double* pr, double*, V r, V i) {
#if JQ_LANES == 4
    st_(pr, __builtin_shuffle(r, i, VI{0, 4, 1, 5}));
    st_(pr + kW, __builtin_shuffle(r, i, VI{2, 6, 3, 7}));
#else
    st_(pr, __builtin_shuffle(r, i, VI{0, 2}));
    st_(pr + kW, __builtin_shuffle(r, i, VI{1, 3}));
#endif
  }
};

#if JQ_LANES == 4
// Two consecutive values of split parts.
struct MemSplit2 {
  using T = V2;
  static V2 ld(const double* p) { return jq::fft::JQ_CODELET_NS::ld<V2>(p); }
  static V2 ldi(const double* p) { return jq::fft::JQ_CODELET_NS::ld<V2>(p); }
  static void stc(double* pr, double* pi, V2 r, V2 i) {
    st_(pr, r);
    st_(pi, i);
  }
};

// Two consecutive interleaved complex values.
struct MemPair2 {
  using T = V2;
  static V2 ld(const double* p) {
    return __builtin_shuffle(jq::fft::JQ_CODELET_NS::ld<V2>(p), jq::fft::JQ_CODELET_NS::ld<V2>(p + 2), VI2{0, 2});
  }
  static V2 ldi(const double* p) {
    return __builtin_shuffle(jq::fft::JQ_CODELET_NS::ld<V2>(p - 1), jq::fft::JQ_CODELET_NS::ld<V2>(p + 1),
                             VI2{1, 3});
  }
  static void stc(double* pr, double*, V2 r, V2 i) {
    st_(pr, __builtin_shuffle(r, i, VI2{0, 2}));
    st_(pr + 2, __builtin_shuffle(r, i, VI2{1, 3}));
  }
};
#endif

// ---- leaves: `count` DFTs, DFT c reading at in + c*idist, writing at out + c*odist

struct LeafScalar {
  using T = double;
  ptrdiff_t os;
  double ld(const double* p) const { return *p; }
  double ldi(const double* p) const { return *p; }
  void st1(double* p, double v) const { *p = v; }
  void st4(double* p, double a, double b, double c, double d) const {
    p[0] = a;
    p[os] = b;
    p[2 * os] = c;
    p[3 * os] = d;
  }
  void stc1(double* pr, double* pi, double r, double i) const {
    *pr = r;
    *pi = i;
  }
  void stc4(double* pr, double* pi, double r0, double r1, double r2, double r3, double i0, double i1, double i2,
            double i3) const {
    st4(pr, r0, r1, r2, r3);
    st4(pi, i0, i1, i2, i3);
  }
};

// Four vectors, lane i of each being one DFT's output, as rows: row i holds
// the four outputs of DFT i.
inline void transpose(V& a, V& b, V& c, V& d) {
#if JQ_LANES == 4
  const V ab0 = __builtin_shuffle(a, b, VI{0, 4, 2, 6}), ab1 = __builtin_shuffle(a, b, VI{1, 5, 3, 7});
  const V cd0 = __builtin_shuffle(c, d, VI{0, 4, 2, 6}), cd1 = __builtin_shuffle(c, d, VI{1, 5, 3, 7});
  a = __builtin_shuffle(ab0, cd0, VI{0, 1, 4, 5});
  b = __builtin_shuffle(ab1, cd1, VI{0, 1, 4, 5});
  c = __builtin_shuffle(ab0, cd0, VI{2, 3, 6, 7});
  d = __builtin_shuffle(ab1, cd1, VI{2, 3, 6, 7});
#else
  // Two lanes: row i is (a_i, b_i) followed by (c_i, d_i).
  const V a0 = __builtin_shuffle(a, b, VI{0, 2}), a1 = __builtin_shuffle(a, b, VI{1, 3});
  const V c0 = __builtin_shuffle(c, d, VI{0, 2}), c1 = __builtin_shuffle(c, d, VI{1, 3});
  a = a0;
  b = c0;
  c = a1;
  d = c1;
#endif
}

// Row i of a transposed group (four doubles) of DFT i.
inline void store_row(double* p, int i, const V& a, const V& b, const V& c, const V& d) {
#if JQ_LANES == 4
  st_(p, i == 0 ? a : i == 1 ? b : i == 2 ? c : d);
#else
  st_(p, i == 0 ? a : c);
  st_(p + 2, i == 0 ? b : d);
#endif
}

// kW DFTs at once. In: 0 the DFTs' inputs are side by side (idist 1),
// 1 they are interleaved complex values side by side (idist 2, imaginary
// part after the real one) and so are the outputs (os 2), 3 interleaved
// complex values idist apart, 4 every other value (idist 2), 2 anything
// else. PairOut: the outputs are interleaved complex values (os 2).
// Outputs of one DFT that are adjacent in memory are transposed into rows
// and stored whole.
template <int In, bool PairOut = In == 1> struct LeafVector {
  using T = V;
  static constexpr bool pair_out = PairOut;
  ptrdiff_t idist, odist, os;
  V ld(const double* p) const {
    if constexpr (In == 0) return MemSplit::ld(p);
    if constexpr (In == 1) return MemPair::ld(p);
#if JQ_LANES == 4
    if constexpr (In == 3) return pairs(p, evens());
    // Every other value; the second load ends at the last one used.
    if constexpr (In == 4)
      return __builtin_shuffle(jq::fft::JQ_CODELET_NS::ld<V>(p), jq::fft::JQ_CODELET_NS::ld<V>(p + 3), VI{0, 2, 5, 7});
    return V{p[0], p[idist], p[2 * idist], p[3 * idist]};
#else
    return V{p[0], p[idist]};
#endif
  }
#if JQ_LANES == 4
  // One whole complex value per lane, parted by `which`; the real and the
  // imaginary parts come from the same four loads.
  V pairs(const double* re, VI which) const {
    const V lo = __builtin_shufflevector(jq::fft::JQ_CODELET_NS::ld<V2>(re), jq::fft::JQ_CODELET_NS::ld<V2>(re + idist),
                                         0, 1, 2, 3);
    const V hi = __builtin_shufflevector(jq::fft::JQ_CODELET_NS::ld<V2>(re + 2 * idist),
                                         jq::fft::JQ_CODELET_NS::ld<V2>(re + 3 * idist), 0, 1, 2, 3);
    return __builtin_shuffle(lo, hi, which);
  }
#endif
  V ldi(const double* p) const {
    if constexpr (In == 0) return MemSplit::ldi(p);
    if constexpr (In == 1) return MemPair::ldi(p);
#if JQ_LANES == 4
    if constexpr (In == 3) return pairs(p - 1, evens() + 1);
#endif
    return ld(p);
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
    transpose(a, b, c, d);
    for (int i = 0; i < kW; ++i) store_row(p + i * odist, i, a, b, c, d);
  }
  void stc1(double* pr, double* pi, V r, V i) const {
    st1(pr, r);
    st1(pi, i);
  }
  void stc4(double* pr, double* pi, V r0, V r1, V r2, V r3, V i0, V i1, V i2, V i3) const {
    if constexpr (!pair_out) {
      st4(pr, r0, r1, r2, r3);
      st4(pi, i0, i1, i2, i3);
      return;
    }
    transpose(r0, r1, r2, r3);
    transpose(i0, i1, i2, i3);
    for (int i = 0; i < kW; ++i) {
#if JQ_LANES == 4
      const V r = i == 0 ? r0 : i == 1 ? r1 : i == 2 ? r2 : r3;
      const V m = i == 0 ? i0 : i == 1 ? i1 : i == 2 ? i2 : i3;
      MemPair::stc(pr + i * odist, nullptr, r, m);
#else
      MemPair::stc(pr + i * odist, nullptr, i == 0 ? r0 : r2, i == 0 ? i0 : i2);
      MemPair::stc(pr + i * odist + 4, nullptr, i == 0 ? r1 : r3, i == 0 ? i1 : i3);
#endif
    }
  }
};

#if JQ_LANES == 4
// Two DFTs at once, for counts too small for a vector of four.
struct LeafPair {
  using T = V2;
  ptrdiff_t idist, odist, os;
  V2 ld(const double* p) const { return idist == 1 ? jq::fft::JQ_CODELET_NS::ld<V2>(p) : V2{p[0], p[idist]}; }
  V2 ldi(const double* p) const { return ld(p); }
  void st1(double* p, V2 v) const {
    p[0] = v[0];
    p[odist] = v[1];
  }
  void st4(double* p, V2 a, V2 b, V2 c, V2 d) const {
    st1(p, a);
    st1(p + os, b);
    st1(p + 2 * os, c);
    st1(p + 3 * os, d);
  }
  void stc1(double* pr, double* pi, V2 r, V2 i) const {
    st1(pr, r);
    st1(pi, i);
  }
  void stc4(double* pr, double* pi, V2 r0, V2 r1, V2 r2, V2 r3, V2 i0, V2 i1, V2 i2, V2 i3) const {
    st4(pr, r0, r1, r2, r3);
    st4(pi, i0, i1, i2, i3);
  }
};
#endif

// paired_in / paired_out: complex data whose imaginary parts sit right
// after the real ones (strides of 2).
template <class F>
inline void leaf_loop(const double* in, double* out, ptrdiff_t is, ptrdiff_t os, ptrdiff_t idist, ptrdiff_t odist,
                      int count, bool paired_in, bool paired_out, F body) {
  // A single DFT (a one-factor length) pays no loop set-up.
  if (count == 1) {
    body(LeafScalar{os}, in, out, is, os);
    return;
  }
  // A tail of fewer than kW DFTs reruns the last kW as one vector: the
  // leaves are out of place, so the overlap writes the same values twice.
  int c = 0;
  auto run = [&](const auto& a) {
    for (; c + kW <= count; c += kW) body(a, in + c * idist, out + c * odist, is, os);
    if (c < count && count >= kW) {
      c = count - kW;
      body(a, in + c * idist, out + c * odist, is, os);
      c = count;
    }
  };
  const bool pair_out = paired_out && os == 2;
  if (idist == 1) {
    if (pair_out) run(LeafVector<0, true>{idist, odist, os});
    else run(LeafVector<0>{idist, odist, os});
  } else if (idist == 2 && paired_in && pair_out) {
    run(LeafVector<1>{idist, odist, os});
  } else if (paired_in) {
    if (pair_out) run(LeafVector<3, true>{idist, odist, os});
    else run(LeafVector<3>{idist, odist, os});
  } else if (pair_out) {
    run(LeafVector<2, true>{idist, odist, os});
  } else if (idist == 2) {
    run(LeafVector<4>{idist, odist, os});
  } else {
    run(LeafVector<2>{idist, odist, os});
  }
#if JQ_LANES == 4
  if (c + 2 <= count) {
    body(LeafPair{idist, odist, os}, in + c * idist, out + c * odist, is, os);
    c += 2;
  }
#endif
  const LeafScalar a{os};
  for (; c < count; ++c) body(a, in + c * idist, out + c * odist, is, os);
}

// ---- combinations with twiddles, in place, butterfly k at element k*s

// Butterflies that do not fill a vector of the main loop, or whose data are
// not laid out for one, run kW at a time through a buffer laid out
// [block][lane]: the buffer's blocks are kW apart and so are the twiddle
// rows. Lanes past the end compute on zeros and are dropped.
constexpr int kMaxRadix = 43;

// Twiddle rows 1 .. r-1 of butterflies k .. k+n-1 into a buffer's rows,
// zeros in the lanes past n.
inline void gather_twiddle_rows(double* bc, double* bs, const double* twc, const double* tws, int r, int m, int k,
                                int n) {
  for (int t = 0; t < r - 1; ++t)
    for (int i = 0; i < kW; ++i) {
      const bool in = i < n;
      bc[t * kW + i] = in ? twc[t * m + k + i] : 0.0;
      bs[t * kW + i] = in ? tws[t * m + k + i] : 0.0;
    }
}

// Whether r rows ms values apart would compete for a few cache sets.
inline bool conflicting_rows(ptrdiff_t ms, int r) { return r >= 16 && ms >= 256 && ms % 256 == 0; }

// Complex: butterflies k = 0 .. m-1; the twiddle rows hold m entries, the
// first being 1.
template <class F>
inline void cx_twiddle_loop(double* re, double* im, const double* twc, const double* tws, ptrdiff_t s, int m, int r,
                            F body) {
  const ptrdiff_t ms = m * s;
  int k = 0;
  const bool split = s == 1, paired = s == 2 && im == re + 1;
#if JQ_LANES == 4
  if ((split || paired) && conflicting_rows(ms, r)) {
    // As for the half-complex form below: blocks of columns, with their
    // twiddles, copied to closely spaced rows (split parts) and back.
    constexpr int B = 8 * kW, P = B + kW;
    alignas(32) double buf[4 * kMaxRadix * P];
    double *br = buf, *bi = buf + r * P, *bc = buf + 2 * r * P, *bs = buf + 3 * r * P;
    for (; k + B <= m; k += B) {
      for (int t = 0; t < r; ++t) {
        const double *xr = re + t * ms + k * s, *xi = im + t * ms + k * s;
        for (int i = 0; i < B; ++i) {
          br[t * P + i] = xr[i * s];
          bi[t * P + i] = xi[i * s];
        }
      }
      for (int t = 0; t < r - 1; ++t)
        for (int i = 0; i < B; ++i) {
          bc[t * P + i] = twc[t * m + k + i];
          bs[t * P + i] = tws[t * m + k + i];
        }
      for (int j = 0; j < B; j += kW) body(MemSplit{}, br + j, bi + j, bc + j, bs + j, ptrdiff_t{P}, ptrdiff_t{P});
      for (int t = 0; t < r; ++t) {
        double *xr = re + t * ms + k * s, *xi = im + t * ms + k * s;
        for (int i = 0; i < B; ++i) {
          xr[i * s] = br[t * P + i];
          xi[i * s] = bi[t * P + i];
        }
      }
    }
  }
#endif
  if (split) {
    for (; k + kW <= m; k += kW) body(MemSplit{}, re + k, im + k, twc + k, tws + k, ms, m);
  } else if (paired) {
    for (; k + kW <= m; k += kW) body(MemPair{}, re + 2 * k, im + 2 * k, twc + k, tws + k, ms, m);
  }
#if JQ_LANES == 4
  // Contiguous data finish with a pair and a single: cheaper than a padded
  // vector through the buffer below.
  if (split || paired) {
    if (k + 2 <= m) {
      if (split) body(MemSplit2{}, re + k, im + k, twc + k, tws + k, ms, m);
      else body(MemPair2{}, re + 2 * k, im + 2 * k, twc + k, tws + k, ms, m);
      k += 2;
    }
    for (; k < m; ++k) body(MemScalar{}, re + k * s, im + k * s, twc + k, tws + k, ms, m);
    return;
  }
#endif
  if (m < kW) {
    for (; k < m; ++k) body(MemScalar{}, re + k * s, im + k * s, twc + k, tws + k, ms, m);
    return;
  }
  alignas(32) double b[4 * kMaxRadix * kW];
  double *br = b, *bi = b + r * kW, *bc = b + 2 * r * kW, *bs = b + 3 * r * kW;
  for (; k < m; k += kW) {
    const int n = m - k < kW ? m - k : kW;
    for (int t = 0; t < r; ++t)
      for (int i = 0; i < kW; ++i) {
        const bool in = i < n;
        br[t * kW + i] = in ? re[t * ms + (k + i) * s] : 0.0;
        bi[t * kW + i] = in ? im[t * ms + (k + i) * s] : 0.0;
      }
    gather_twiddle_rows(bc, bs, twc, tws, r, m, k, n);
    body(MemSplit{}, br, bi, bc, bs, ptrdiff_t{kW}, ptrdiff_t{kW});
    for (int t = 0; t < r; ++t)
      for (int i = 0; i < n; ++i) {
        re[t * ms + (k + i) * s] = br[t * kW + i];
        im[t * ms + (k + i) * s] = bi[t * kW + i];
      }
  }
}

// Half-complex: butterflies on the bin pairs (k, m-k), 0 < k < m/2. The
// vector form walks bins k upward and m-k downward.
template <class F>
inline void hc_twiddle_loop(double* d, const double* twc, const double* tws, ptrdiff_t s, int m, int r, F body) {
  const ptrdiff_t ms = m * s;
  const int half = (m - 1) / 2;
  int k = 1;
#if JQ_LANES == 4
  if (s == 1 && conflicting_rows(ms, r)) {
    // Rows a multiple of 2 KiB apart fall into the same few cache sets, and
    // r of them overflow those sets' ways; blocks of columns are copied to
    // closely spaced rows first, twiddles with them.
    constexpr int B = 8 * kW, P = B + kW;
    alignas(32) double buf[4 * kMaxRadix * P];
    double *bf = buf, *bb = buf + r * P, *bc = buf + 2 * r * P, *bs = buf + 3 * r * P;
    for (; k + B - 1 <= half; k += B) {
      for (int t = 0; t < r; ++t) {
        const double* f = d + t * ms + k;
        const double* b = d + t * ms + (m - k - (B - 1));
        for (int i = 0; i < B; ++i) {
          bf[t * P + i] = f[i];
          bb[t * P + i] = b[i];
        }
      }
      for (int t = 0; t < r - 1; ++t)
        for (int i = 0; i < B; ++i) {
          bc[t * P + i] = twc[t * m + k + i];
          bs[t * P + i] = tws[t * m + k + i];
        }
      for (int j = 0; j < B; j += kW) body(V{}, bf + j, bb + (B - 1) - j, bc + j, bs + j, ptrdiff_t{P}, ptrdiff_t{P});
      for (int t = 0; t < r; ++t) {
        double* f = d + t * ms + k;
        double* b = d + t * ms + (m - k - (B - 1));
        for (int i = 0; i < B; ++i) {
          f[i] = bf[t * P + i];
          b[i] = bb[t * P + i];
        }
      }
    }
  }
#endif
  if (s == 1)
    for (; k + kW - 1 <= half; k += kW) body(V{}, d + k, d + (m - k), twc + k, tws + k, ms, m);
#if JQ_LANES == 4
  // A last three bins of a large butterfly go through the buffer as one
  // vector; other tails as a pair and a single.
  if (s == 1 && (half < kW || r < 16 || half - k + 1 < kW - 1)) {
    if (k + 1 <= half) {
      body(V2{}, d + k, d + (m - k), twc + k, tws + k, ms, m);
      k += 2;
    }
    for (; k <= half; ++k) body(0.0, d + k, d + (m - k), twc + k, tws + k, ms, m);
    return;
  }
#endif
  if (half < kW) {
    for (; k <= half; ++k) body(0.0, d + k * s, d + (m - k) * s, twc + k, tws + k, ms, m);
    return;
  }
  alignas(32) double b[4 * kMaxRadix * kW];
  double *bf = b, *bb = b + r * kW, *bc = b + 2 * r * kW, *bs = b + 3 * r * kW;
  for (; k <= half; k += kW) {
    const int n = half - k + 1 < kW ? half - k + 1 : kW;
    for (int t = 0; t < r; ++t)
      for (int i = 0; i < kW; ++i) {
        const bool in = i < n;
        bf[t * kW + i] = in ? d[t * ms + (k + i) * s] : 0.0;
        bb[t * kW + kW - 1 - i] = in ? d[t * ms + (m - k - i) * s] : 0.0;
      }
    gather_twiddle_rows(bc, bs, twc, tws, r, m, k, n);
    body(V{}, bf, bb + kW - 1, bc, bs, ptrdiff_t{kW}, ptrdiff_t{kW});
    for (int t = 0; t < r; ++t)
      for (int i = 0; i < n; ++i) {
        d[t * ms + (k + i) * s] = bf[t * kW + i];
        d[t * ms + (m - k - i) * s] = bb[t * kW + kW - 1 - i];
      }
  }
}

#include "transforms/codelets.inc"

// B independent DFTs of an odd prime length p without codelets, value j of
// DFT b at j*B + b. Inputs j and p-j are folded into their sum and
// difference, so that outputs q and p-q come from one pass over half the
// inputs with real cosines and sines: a quarter of the direct sum's
// multiplies.
template <class T>
inline void prime_lanes(const double* cs, const double* sn, int p, const double* xr, const double* xi, double* yr,
                        double* yi, ptrdiff_t B, ptrdiff_t b) {
  constexpr int kHalf = kMaxGenericPrime / 2;
  T ar[kHalf + 1], ai[kHalf + 1], dr[kHalf + 1], di[kHalf + 1];
  const int h = (p - 1) / 2;
  const T x0r = ld<T>(xr + b), x0i = ld<T>(xi + b);
  T sr = x0r, si = x0i;
  for (int j = 1; j <= h; ++j) {
    const T ur = ld<T>(xr + j * B + b), ui = ld<T>(xi + j * B + b);
    const T vr = ld<T>(xr + (p - j) * B + b), vi = ld<T>(xi + (p - j) * B + b);
    ar[j] = ur + vr;
    ai[j] = ui + vi;
    dr[j] = ur - vr;
    di[j] = ui - vi;
    sr += ar[j];
    si += ai[j];
  }
  st(yr + b, sr);
  st(yi + b, si);
  for (int q = 1; q <= h; ++q) {
    T cr = x0r, ci = x0i, tr = T{}, ti = T{};
    int idx = 0;
    for (int j = 1; j <= h; ++j) {
      idx += q;
      if (idx >= p) idx -= p;
      const double c = cs[idx], s = sn[idx];
      cr += ar[j] * c;
      ci += ai[j] * c;
      tr += dr[j] * s;
      ti += di[j] * s;
    }
    st(yr + q * B + b, cr + ti);
    st(yi + q * B + b, ci - tr);
    st(yr + (p - q) * B + b, cr - ti);
    st(yi + (p - q) * B + b, ci + tr);
  }
}

void prime_batch(const double* cs, const double* sn, int p, const double* xr, const double* xi, double* yr,
                 double* yi, int B) {
  int b = 0;
  for (; b + kW <= B; b += kW) prime_lanes<V>(cs, sn, p, xr, xi, yr, yi, B, b);
  for (; b < B; ++b) prime_lanes<double>(cs, sn, p, xr, xi, yr, yi, B, b);
}

// One complex DFT of interleaved data as two real ones side by side: lane 0
// carries the real parts, lane 1 the imaginary parts, through the real
// butterfly. With A and B the half-complex spectra of the two,
// X[k] = A[k] + i B[k] and X[r-k] = conj A[k] + i conj B[k].
#if JQ_LANES == 4
using P2 = V2;
#else
using P2 = V;
#endif

struct LeafRealImag {
  using T = P2;
  P2 ld(const double* p) const { return jq::fft::JQ_CODELET_NS::ld<P2>(p); }
  P2 ldi(const double* p) const { return ld(p); }
  void st1(double* p, P2 v) const { st_(p, v); }
  void st4(double* p, P2 a, P2 b, P2 c, P2 d) const {
    st_(p, a);
    st_(p + 2, b);
    st_(p + 4, c);
    st_(p + 6, d);
  }
};


// Recombines the real spectra A (lane 0) and B (lane 1) of one complex DFT
// held in y, value q at y[2q]: X[k] = (Ar - Bi, Br + Ai) and
// X[r-k] = (Ar + Bi, Br - Ai), as U + M and U - M with M = (-Bi, Ai).
inline void recombine(int r, const double* y, double* out, ptrdiff_t os) {
  st_(out, jq::fft::JQ_CODELET_NS::ld<P2>(y));
  for (int k = 1; k < r - k; ++k) {
    const P2 u = jq::fft::JQ_CODELET_NS::ld<P2>(y + 2 * k);
    const P2 m = reversed(jq::fft::JQ_CODELET_NS::ld<P2>(y + 2 * (r - k))) * P2{-1.0, 1.0};
    st_(out + k * os, u + m);
    st_(out + (r - k) * os, u - m);
  }
  if (r % 2 == 0) st_(out + (r / 2) * os, jq::fft::JQ_CODELET_NS::ld<P2>(y + r));
}

#if JQ_LANES == 4
// The same for two DFTs whose spectra share the lanes of y (value q of the
// first at y[4q], of the second at y[4q + 2]); the same operations on each.
inline void recombine_pair(int r, const double* y, double* a, double* b, ptrdiff_t os) {
  auto put = [](double* p, double* q, V v) {
    st_(p, __builtin_shufflevector(v, v, 0, 1));
    st_(q, __builtin_shufflevector(v, v, 2, 3));
  };
  put(a, b, jq::fft::JQ_CODELET_NS::ld<V>(y));
  for (int k = 1; k < r - k; ++k) {
    const V u = jq::fft::JQ_CODELET_NS::ld<V>(y + 4 * k);
    const V w = jq::fft::JQ_CODELET_NS::ld<V>(y + 4 * (r - k));
    const V m = __builtin_shuffle(w, VI{1, 0, 3, 2}) * V{-1.0, 1.0, -1.0, 1.0};
    put(a + k * os, b + k * os, u + m);
    put(a + (r - k) * os, b + (r - k) * os, u - m);
  }
  if (r % 2 == 0) put(a + (r / 2) * os, b + (r / 2) * os, jq::fft::JQ_CODELET_NS::ld<V>(y + 2 * r));
}
#endif

#if JQ_LANES == 4
// Two complex DFTs idist apart at once, four real ones across the lanes.
struct LeafRealImag2 {
  using T = V;
  ptrdiff_t idist;
  V ld(const double* p) const {
    return __builtin_shufflevector(jq::fft::JQ_CODELET_NS::ld<V2>(p), jq::fft::JQ_CODELET_NS::ld<V2>(p + idist), 0, 1,
                                   2, 3);
  }
  V ldi(const double* p) const { return ld(p); }
  void st1(double* p, V v) const { st_(p, v); }
  void st4(double* p, V a, V b, V c, V d) const {
    st_(p, a);
    st_(p + 4, b);
    st_(p + 8, c);
    st_(p + 12, d);
  }
};
#endif

// count DFTs, DFT c at x + c * idist and out + c * odist; pairs of them
// share a vector where there are four lanes.
template <int R, class Leaf>
inline void complex_via_real(const double* x, ptrdiff_t is, ptrdiff_t idist, double* out, ptrdiff_t os,
                             ptrdiff_t odist, int count, Leaf leaf) {
  int c = 0;
#if JQ_LANES == 4
  for (; c + 2 <= count; c += 2) {
    alignas(32) double y[4 * R];
    leaf(LeafRealImag2{idist}, x + c * idist, y, is, ptrdiff_t{4});
    recombine_pair(R, y, out + c * odist, out + (c + 1) * odist, os);
  }
#endif
  for (; c < count; ++c) {
    alignas(16) double y[2 * R];
    leaf(LeafRealImag{}, x + c * idist, y, is, ptrdiff_t{2});
    recombine(R, y, out + c * odist, os);
  }
}

#define JQ_COMPLEX_SINGLE(R)                                                                                   \
  {R, [](const double* x, double* y, ptrdiff_t is, ptrdiff_t os, ptrdiff_t idist, ptrdiff_t odist, int count) { \
     complex_via_real<R>(x, is, idist, y, os, odist, count,                                                    \
                         [](const auto& a, const double* u, double* v, ptrdiff_t i, ptrdiff_t o) {             \
                           hc_leaf_##R##_(a, u, v, i, o);                                                      \
                         });                                                                                   \
   }}

struct SingleEntry {
  int radix;
  ComplexSingle run;
};
const SingleEntry kComplexSingles[] = {
    JQ_COMPLEX_SINGLE(10), JQ_COMPLEX_SINGLE(43), JQ_COMPLEX_SINGLE(41), JQ_COMPLEX_SINGLE(37), JQ_COMPLEX_SINGLE(32),
    JQ_COMPLEX_SINGLE(31), JQ_COMPLEX_SINGLE(29), JQ_COMPLEX_SINGLE(19), JQ_COMPLEX_SINGLE(18), JQ_COMPLEX_SINGLE(17),
    JQ_COMPLEX_SINGLE(16), JQ_COMPLEX_SINGLE(14), JQ_COMPLEX_SINGLE(13), JQ_COMPLEX_SINGLE(11), JQ_COMPLEX_SINGLE(9),
    JQ_COMPLEX_SINGLE(8),  JQ_COMPLEX_SINGLE(7),  JQ_COMPLEX_SINGLE(5),  JQ_COMPLEX_SINGLE(4),  JQ_COMPLEX_SINGLE(3),
    JQ_COMPLEX_SINGLE(2)};
#undef JQ_COMPLEX_SINGLE

}  // namespace

PrimeBatch prime_batch_kernel() { return prime_batch; }

ComplexSingle complex_single(int radix) {
  for (const SingleEntry& e : kComplexSingles)
    if (e.radix == radix) return e.run;
  return nullptr;
}

const CodeletSet* find(int radix) {
  for (const CodeletSet& c : kCodeletSets)
    if (c.radix == radix) return &c;
  return nullptr;
}

}  // namespace jq::fft::JQ_CODELET_NS
