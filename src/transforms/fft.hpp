// The mixed-radix FFT engine: shared per-length tables and the executors.
//
// A length is factored once into an FFTTable. Tables live in one process-wide
// list, keyed by length and reference-counted, so every user of a length
// shares one table; creation and destruction are serialised by one lock,
// execution takes none (tables never change after creation).
//
// Executors are out of place: input and output must not overlap. Strides
// count float64 values, so interleaved complex data is passed as the real
// and imaginary parts of the first element with strides of 2.
#pragma once
#include <cstddef>
#include <cstdint>

namespace jq::fft {

constexpr int kMaxFactors = 20;

// Factor kinds.
constexpr int32_t kCodelet = 0;  // a radix with straight-line butterflies
constexpr int32_t kGeneric = 1;  // a prime below 50 without them (23, 47)
constexpr int32_t kRader = 2;    // a prime of 50 or more

// Butterflies of one radix (codelets.cpp). Leaves run `count` DFTs; DFT c
// reads from in + c*idist with element stride `is` and writes to
// out + c*odist with stride `os`. Twiddle forms combine r sub-results of
// length m stored one after another (element stride s) in place, reading
// the twiddles in the by-k layout of the stage record.
using RealLeaf = void (*)(const double* in, double* out, ptrdiff_t is, ptrdiff_t os, ptrdiff_t idist,
                          ptrdiff_t odist, int count);
using RealTwiddle = void (*)(double* data, const double* twc, const double* tws, ptrdiff_t s, int m);
using ComplexLeaf = void (*)(const double* ir, const double* ii, double* or_, double* oi, ptrdiff_t is,
                             ptrdiff_t os, ptrdiff_t idist, ptrdiff_t odist, int count);
using ComplexTwiddle = void (*)(double* re, double* im, const double* twc, const double* tws, ptrdiff_t s,
                                int m);

struct FFTTable;

// Per-factor data, zeroed on allocation.
struct StageRecord {
  double* cos_table;  // generic prime p: cos(2 pi k/p), k = 0 .. p-1
  double* sin_table;  //   and sin(2 pi k/p)
  double* twiddle_cos;  // every level but the last: (r-1)(m-1) entries,
  double* twiddle_sin;  //   e^(-2 pi i ij/L) at (j-1) + (i-1)(r-1)
  FFTTable* sub;  // Rader: the shared table of length p-1
  int32_t* forward_index;  // Rader: 0, 1, g, g^2, ... g^(p-2) (mod p)
  int32_t* reverse_index;  // Rader: 0, 1, then the powers from the end backwards
  double* kernel_re;  // Rader: transformed kernel, p-1 entries
  double* kernel_im;
  double* twiddle_cos_by_k;  // the twiddles again with i running fastest,
  double* twiddle_sin_by_k;  //   at i + (j-1)m, i = 0 .. m-1 (i = 0: 1 and 0)
  // Rader, when p-1 itself needs Rader: the convolution runs zero-padded at
  // a length M >= 2(p-1)-1 with only small factors instead.
  FFTTable* padded;
  int32_t padded_length;  // M, or 0 when the convolution runs at p-1
  double* padded_kernel_re;  // the kernel wrapped to length M, transformed
  double* padded_kernel_im;
};

struct FFTTable {
  int32_t length;
  int32_t references;
  int32_t factors[kMaxFactors];  // ascending
  int32_t kinds[kMaxFactors];
  int32_t factor_count;
  StageRecord* stages[kMaxFactors];
  RealLeaf real_leaf[kMaxFactors];
  RealTwiddle real_twiddle[kMaxFactors];
  ComplexLeaf complex_leaf[kMaxFactors];
  ComplexTwiddle complex_twiddle[kMaxFactors];
  FFTTable* previous;
  FFTTable* next;
};

// The table of length n, shared and counted; null for n < 1 or no memory.
FFTTable* create_table(uint32_t n);
// Drops one reference; the last one frees the table. Null is ignored.
void destroy_table(FFTTable* table);
// Non-zero when the table lock could not be made at load time.
int32_t lock_status();

// Forward real FFT into the half-complex layout: out[k] = Re X[k] for
// k = 0 .. n/2, out[n-k] = Im X[k] for k = 1 .. (n+1)/2 - 1.
// 0, kInternal on a length mismatch, kNoMemory (Rader work arrays).
int32_t ExecuteRealFFT(const FFTTable* t, const double* in, double* out, ptrdiff_t is, ptrdiff_t os, int32_t n);
// Inverse of the above, scaled by 1/n.
int32_t ExecuteInverseRealFFT(const FFTTable* t, const double* in, double* out, ptrdiff_t is, ptrdiff_t os,
                              int32_t n);
// Forward complex FFT on split parts. -1 on a length mismatch.
int32_t ExecuteComplexFFT(const FFTTable* t, const double* ir, const double* ii, double* or_, double* oi,
                          ptrdiff_t is, ptrdiff_t os, int32_t n);
// Inverse complex FFT, scaled by 1/n. -1 on a length mismatch.
int32_t ExecuteInverseComplexFFT(const FFTTable* t, const double* ir, const double* ii, double* or_, double* oi,
                                 ptrdiff_t is, ptrdiff_t os, int32_t n);

// ---- per-call-site table holders ----------------------------------------------

// A heap block of one pointer: the call site's table or null.
struct TransformTableHolder {
  FFTTable* table;
};

// The _IDP instance: holders for a 1-D (or row) length and a column length.
struct TransformInstance {
  TransformTableHolder* first;
  TransformTableHolder* second;
};

// Gets the slot's table of length n, creating the holder (and registering its
// clean-up with the host) or rebuilding the table as needed. 0 or kNoMemory.
int32_t AcquireTransformTable(void** slot, uint32_t n);
// The same for a holder field of a TransformInstance, without registration.
int32_t AcquireTransformTableIDP(TransformTableHolder** field, uint32_t n);
// The slot's TransformInstance, allocated zeroed on first use. 0 or kNoMemory.
int32_t AcquireTransformInstance(void** slot, TransformInstance** out);
// Frees both holders, their tables and the instance; nulls the slot. Never fails.
int32_t ReleaseTransformInstance(void** slot);

// The table behind a plain slot or a holder field after a successful acquire.
inline FFTTable* held_table(void* slot_value) { return static_cast<TransformTableHolder*>(slot_value)->table; }

}  // namespace jq::fft
