// Cosine and sine transforms of real data on the FFT engine.
//
// The cosine transform is the orthonormal DCT-II, its inverse the
// orthonormal DCT-III. The sine transform is the unnormalised DST-I,
//   y[k] = sum x[j] sin(pi (j+1)(k+1)/(m+1)),
// whose inverse is itself scaled by 2/(m+1).
//
// A cosine transform of even length m runs on an FFT of length m, one of odd
// length on an FFT of length 2m; a sine transform of length m on an FFT of
// length 2m+2 (its odd extension). Callers get that table and pass it in.
#pragma once
#include <cstdint>

#include "transforms/fft.hpp"

namespace jq::fft {

enum class Trig { kCosine, kSine };

// Length of the FFT table a transform of length m runs on (64-bit so that
// callers can reject lengths whose table would not fit an int32).
int64_t trig_table_length(Trig kind, int32_t m);

// Forward transform of length m of the first min(n, m) samples of x (zeros
// beyond n); the inverse reads m values and ignores n. y may be x.
// kBadTransformLength for m < 1, kInternal for a table of the wrong length,
// kNoMemory.
int32_t trig_1d(Trig kind, bool inverse, const FFTTable* t, const double* x, int32_t n, int32_t m, double* y);

// The transform of every row (length cols, row_table) and then every column
// (length rows, col_table) of a row-major rows x cols array. out may be in.
int32_t trig_2d(Trig kind, bool inverse, const FFTTable* row_table, const FFTTable* col_table, const double* in,
                int32_t rows, int32_t cols, double* out);

}  // namespace jq::fft
