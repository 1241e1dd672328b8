// The generated butterflies, looked up by radix.
#pragma once
#include "transforms/fft.hpp"

namespace jq::fft {

struct CodeletSet {
  int radix;
  RealLeaf real_leaf;
  RealTwiddle real_twiddle;
  ComplexLeaf complex_leaf;
  ComplexTwiddle complex_twiddle;
};

// The radices with butterflies, in the order a length is factored by them.
constexpr int kCodeletRadices[] = {10, 43, 41, 37, 32, 31, 29, 19, 18, 17, 16, 14, 13, 11, 9, 8, 7, 5, 4, 3, 2};

// The butterflies of a radix, or null when it has none.
const CodeletSet* codelets_for(int radix);

// The largest prime that runs through the generic butterfly.
constexpr int kMaxGenericPrime = 49;

// B DFTs of an odd prime length p <= kMaxGenericPrime from the factor's
// cosine and sine tables; value j of DFT b is at j*B + b, in and out.
using PrimeBatch = void (*)(const double* cs, const double* sn, int p, const double* xr, const double* xi,
                            double* yr, double* yi, int B);
PrimeBatch generic_prime_batch();

// count DFTs of a codelet radix on interleaved complex data (imaginary part
// right after the real one), in and out: DFT c reads x + c * idist at
// stride is and writes y + c * odist at stride os.
using ComplexSingle = void (*)(const double* x, double* y, ptrdiff_t is, ptrdiff_t os, ptrdiff_t idist,
                               ptrdiff_t odist, int count);
ComplexSingle complex_single_for(int radix);

}  // namespace jq::fft
