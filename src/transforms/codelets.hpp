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

}  // namespace jq::fft
