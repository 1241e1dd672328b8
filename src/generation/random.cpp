#include "generation/random.hpp"

#include <cmath>

namespace jq::gen {
namespace {

// Products wrap in 32 bits, as the words are signed 32-bit integers; the
// remainder truncates, so a negative word stays negative.
inline int32_t step(int32_t s, int32_t a, int32_t m) {
  const auto p = static_cast<int32_t>(static_cast<uint32_t>(s) * static_cast<uint32_t>(a));
  return p % m;
}

inline double raw_sum(RandomState& st) {
  st.s1 = step(st.s1, 171, 30269);
  st.s2 = step(st.s2, 172, 30307);
  st.s3 = step(st.s3, 170, 30323);
  constexpr double r1 = 1.0 / 30269.0, r2 = 1.0 / 30307.0, r3 = 1.0 / 30323.0;
  return (st.s2 * r2 + st.s1 * r1) + st.s3 * r3;
}

}  // namespace

void random_seed(int32_t seed, RandomState& st) {
  if (seed == 0) return;
  // Only the low 14 bits of each product are kept, so wrapping is harmless.
  const uint32_t s2 = (static_cast<uint32_t>(seed) * 8191u) & 0x3FFFu;
  st.s1 = seed;
  st.s2 = static_cast<int32_t>(s2);
  st.s3 = static_cast<int32_t>((s2 * 8191u) & 0x3FFFu);
}

double random_uniform(RandomState& st) {
  const double x = raw_sum(st);
  return x - std::floor(x);
}

int32_t random_phase_int(RandomState& st) {
  const double x = raw_sum(st);
  return static_cast<int32_t>(32768.0 * (x - std::trunc(x)));
}

}  // namespace jq::gen
