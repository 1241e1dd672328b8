// The library's one pseudo-random source: three multiplicative congruential
// generators combined by the fractional sum of their normalised values. The
// three state words belong to the host, which passes them on every call.
#pragma once
#include <cstdint>

namespace jq::gen {

struct RandomState {
  int32_t s1, s2, s3;
};

// Restarts the stream from a seed; 0 leaves the state as it is.
void random_seed(int32_t seed, RandomState& st);
// One step of the generator: a float64 in [0, 1).
double random_uniform(RandomState& st);
// The same step, returning trunc(32768 * (x - trunc(x))) of the raw sum x;
// negative words make it negative.
int32_t random_phase_int(RandomState& st);
// Three zero words are a fixed point: every draw is then 0.
inline bool random_stuck(const RandomState& st) { return (st.s1 | st.s2 | st.s3) == 0; }

}  // namespace jq::gen
