// Hilbert and Hartley transforms of a real signal, in place.
//
// Each routine takes its own reference to the shared FFT table of length n
// for the duration of the call; the caller's instance keeps that table alive
// between calls, so the reference costs a list search, not a build.
#pragma once
#include <cstdint>

namespace jq::fft {

// Hilbert transform: the DC (and for even n the Nyquist) bin removed and
// every other bin multiplied by -i, so a cosine becomes a sine. The inverse
// is the negated forward transform. A single sample becomes 0.
int32_t hilbert(double* x, int32_t n, bool inverse);

// Hartley transform H[k] = Re X[k] - Im X[k], unscaled; the inverse is the
// same scaled by 1/n. A single sample is left as it is.
int32_t hartley(double* x, int32_t n, bool inverse);

}  // namespace jq::fft
