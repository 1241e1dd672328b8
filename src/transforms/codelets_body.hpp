// One instruction-set variant of the generated butterflies. Included by
// codelets.cpp (baseline x86-64) and codelets_avx2.cpp (built with AVX2)
// with JQ_CODELET_NS naming the variant. Both variants perform the same
// operations in the same order, so their results are identical.
#include <cstddef>

#include "transforms/codelets.hpp"

// The butterflies of one loop are independent; the pragma lets the compiler
// vectorise across them without proving it.
#define JQ_IVDEP _Pragma("GCC ivdep")

namespace jq::fft::JQ_CODELET_NS {
namespace {
#include "transforms/codelets.inc"
}  // namespace

const CodeletSet* find(int radix) {
  for (const CodeletSet& c : kCodeletSets)
    if (c.radix == radix) return &c;
  return nullptr;
}

}  // namespace jq::fft::JQ_CODELET_NS
