// The generated butterflies (codelets.inc, written by tools/gen_codelets.py)
// for baseline x86-64, and the choice of variant at run time.
#define JQ_CODELET_NS baseline
#include "transforms/codelets_body.hpp"

#include <array>

namespace jq::fft {

namespace avx2 {
const CodeletSet* find(int radix);
PrimeBatch prime_batch_kernel();
ComplexSingle complex_single(int radix);
}
namespace avx512 {
const CodeletSet* find(int radix);
PrimeBatch prime_batch_kernel();
ComplexSingle complex_single(int radix);
}

namespace {
enum class Variant { kBaseline, kAvx2, kAvx512 };

Variant variant() {
#if defined(__x86_64__) || defined(__i386__)
  static const Variant v = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") ? Variant::kAvx512
                           : __builtin_cpu_supports("avx2")                                        ? Variant::kAvx2
                                                                                                   : Variant::kBaseline;
  return v;
#else
  return Variant::kBaseline;
#endif
}
}  // namespace

const CodeletSet* codelets_for(int radix) {
  switch (variant()) {
    case Variant::kAvx512: return avx512::find(radix);
    case Variant::kAvx2: return avx2::find(radix);
    default: return baseline::find(radix);
  }
}

ComplexSingle complex_single_for(int radix) {
  // Looked up on every single-factor transform: indexed by radix once.
  static const auto table = [] {
    std::array<ComplexSingle, 44> t{};
    for (int r : kCodeletRadices)
      t[r] = variant() == Variant::kAvx512 ? avx512::complex_single(r)
             : variant() == Variant::kAvx2 ? avx2::complex_single(r)
                                           : baseline::complex_single(r);
    return t;
  }();
  return radix >= 0 && radix < static_cast<int>(table.size()) ? table[radix] : nullptr;
}

PrimeBatch generic_prime_batch() {
  static const PrimeBatch k = variant() == Variant::kAvx512 ? avx512::prime_batch_kernel()
                              : variant() == Variant::kAvx2 ? avx2::prime_batch_kernel()
                                                            : baseline::prime_batch_kernel();
  return k;
}

}  // namespace jq::fft
