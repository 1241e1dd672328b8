// The generated butterflies (codelets.inc, written by tools/gen_codelets.py)
// for baseline x86-64, and the choice of variant at run time.
#define JQ_CODELET_NS baseline
#include "transforms/codelets_body.hpp"

namespace jq::fft {

namespace avx2 {
const CodeletSet* find(int radix);
PrimeBatch prime_batch_kernel();
}

namespace {
bool use_avx2() {
#if defined(__x86_64__) || defined(__i386__)
  static const bool yes = __builtin_cpu_supports("avx2");
  return yes;
#else
  return false;
#endif
}
}  // namespace

const CodeletSet* codelets_for(int radix) { return use_avx2() ? avx2::find(radix) : baseline::find(radix); }

PrimeBatch generic_prime_batch() {
  static const PrimeBatch k = use_avx2() ? avx2::prime_batch_kernel() : baseline::prime_batch_kernel();
  return k;
}

}  // namespace jq::fft
