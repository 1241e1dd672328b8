// The generated butterflies (codelets.inc, written by tools/gen_codelets.py).
#include "transforms/codelets.hpp"

// The butterflies of one loop are independent; the pragma lets the compiler
// vectorise across them without proving it.
#define JQ_IVDEP _Pragma("GCC ivdep")

namespace jq::fft {
namespace {
#include "transforms/codelets.inc"
}  // namespace

const CodeletSet* codelets_for(int radix) {
  for (const CodeletSet& c : kCodeletSets)
    if (c.radix == radix) return &c;
  return nullptr;
}

}  // namespace jq::fft
