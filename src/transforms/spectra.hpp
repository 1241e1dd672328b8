// Two-sided power and cross spectra: all n bins of |X[k]|^2/n^2 or
// conj(X[k]) Y[k]/n^2, with X and Y the unscaled forward FFTs.
//
// Each routine takes its own reference to the shared table of length n for
// the duration of the call. The caller's instance keeps that table alive
// between calls, so this costs a list search, not a table build.
#pragma once
#include <cstdint>

#include "frame/handles.hpp"

namespace jq::fft {

// Power spectrum of n real samples, written back over x.
int32_t power_spectrum(double* x, int32_t n);
// Power spectrum of n complex samples into out (n values).
int32_t power_spectrum(const cdouble* x, int32_t n, double* out);
// Cross spectrum of two real signals of n samples into out (n bins).
int32_t cross_spectrum(const double* x, const double* y, int32_t n, cdouble* out);
// Cross spectrum of two complex signals of n samples into out (n bins).
int32_t cross_spectrum(const cdouble* x, const cdouble* y, int32_t n, cdouble* out);

}  // namespace jq::fft
