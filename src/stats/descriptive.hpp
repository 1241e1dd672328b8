// Descriptive statistics over plain arrays. Population statistics: sums are
// divided by n, never by n - 1. Every sum runs left to right, so results are
// reproducible to the last bit.
#pragma once
#include <complex>
#include <cstdint>

#include "frame/scratch.hpp"

namespace jq::stats {

// Arithmetic mean. n >= 1, else kEmptyInput.
int32_t mean(const double* x, int32_t n, double* result);
// Root mean square. n >= 1, else kEmptyInput.
int32_t rms(const double* x, int32_t n, double* result);
// Root mean square of complex samples: sqrt(sum(re^2 + im^2) / n).
int32_t cx_rms(const std::complex<double>* x, int32_t n, double* result);
// Mean squared error over the first min(nx, ny) pairs; kWarnLengthMismatch
// (with a valid result) when the lengths differ.
int32_t mse(const double* x, int32_t nx, const double* y, int32_t ny, double* result);
// Central moment of order k >= 1 (kBadOrder otherwise).
int32_t moment(const double* x, int32_t n, int32_t k, double* result);
// Median by selection on a scratch copy; kNonFiniteData for an infinity or NaN.
int32_t median(const double* x, int32_t n, double* result);
// Modes in ascending order into `modes` (allocated here), their number into
// *count. intervals < 1: exact modes; otherwise the centres of the fullest
// bins of an equal-width histogram of that many intervals.
int32_t modes(const double* x, int32_t n, int32_t intervals, Scratch<double>& modes, int32_t* count);
// Histogram over caller-given edges e[0] <= ... <= e[k]: interval i is
// [e[i], e[i+1]), the last one closed; values outside or NaN are not counted.
// kFewerThan2 for fewer than 2 edges, kNonPositiveSpacing for decreasing or
// NaN edges. Repeated edges make empty intervals, as numpy's do.
int32_t check_edges(const double* edges, int32_t m);
void histogram_edges(const double* x, int32_t n, const double* edges, int32_t m, int32_t* counts);
// Pearson's chi-square statistic of a rows x cols contingency table of
// counts (row-major): sum of (O - E)^2 / E with E = row total * column total
// / total. kNonFiniteData for an infinite or NaN count, kNegativeSize for a
// negative one, kBadSelector for a row or column that sums to 0.
int32_t contingency(const double* table, int32_t rows, int32_t cols, double* result);
// Equal-width histogram of k intervals between the data's extremes.
int32_t histogram(const double* x, int32_t n, int32_t k, int32_t* counts, double* centres);

}  // namespace jq::stats
