// Threshold peak detection: where a signal stays at or above a threshold for
// at least a given number of consecutive samples.
#pragma once
#include <cstdint>

namespace jq::measure {

// Writes the first index of every run of at least `width` samples that are
// not below the threshold (a NaN sample is not below it) to `indices`, which
// must hold n / width + 1 values, and the number of runs to `count`.
// Returns 0, kEmptyInput for no samples, or kIndexOutsideRange when width is
// outside [1, n - 1].
int32_t threshold_peaks(const double* x, int32_t n, double threshold, int32_t width, int32_t* indices,
                        int32_t* count);

}  // namespace jq::measure
