// Descriptive statistics over plain arrays. Population statistics: sums are
// divided by n, never by n - 1.
#pragma once
#include <cstdint>

namespace jq::stats {

// Arithmetic mean, summed left to right. n >= 1, else kEmptyInput.
int32_t mean(const double* x, int32_t n, double* result);
// Root mean square. n >= 1, else kEmptyInput.
int32_t rms(const double* x, int32_t n, double* result);
// Equal-width histogram of k intervals between the data's extremes.
int32_t histogram(const double* x, int32_t n, int32_t k, int32_t* counts, double* centres);

}  // namespace jq::stats
