// Periodic random noise; needs the FFT engine.
#pragma once
#include <cstdint>

#include "generation/random.hpp"

namespace jq::gen {

// Fills out[0..n) (n >= 1) with the sum of harmonics 1 .. (n-1)/2 (below
// Nyquist) of the record, each of the given amplitude and a random phase.
// Restarts the stream first when seed >= 0. 0, kNoMemory or the FFT's code.
int32_t period_noise(double* out, int32_t n, double amplitude, int32_t seed, RandomState& st);

}  // namespace jq::gen
