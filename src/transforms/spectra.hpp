// Two-sided power and cross spectra: |X|^2/n^2 and conj(X) Y/n^2 for all n
// bins. Each routine holds its own reference to the shared table of length
// n for the duration of the call (the caller's instance keeps the table
// alive between calls, so this is a list search, not a build).
#pragma once
#include <cstdint>

#include "frame/handles.hpp"

namespace jq::fft {

// In place: x becomes its power spectrum.
int32_t power_spectrum(double* x, int32_t n);
int32_t power_spectrum_complex(const cdouble* x, int32_t n, double* out);
int32_t cross_spectrum(const double* x, const double* y, int32_t n, cdouble* out);
int32_t cross_spectrum_complex(const cdouble* x, const cdouble* y, int32_t n, cdouble* out);

}  // namespace jq::fft
