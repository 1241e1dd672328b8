// FIR design and filtering: ideal-response and equiripple coefficient design,
// least-squares smoothing, the streaming multirate FIR filter and the running
// median. Routines take plain pointers and return 0 or a code.
#pragma once
#include <cstdint>

#include "frame/handles.hpp"
#include "frame/scratch.hpp"

namespace jq::fir {

inline constexpr double kPi = 3.141592653589793;
inline constexpr double kTwoPi = 6.283185307179586;

// Selective types of the ideal-response design.
enum FilterType : int32_t { kLowpass = 0, kHighpass = 1, kBandpass = 2, kBandstop = 3 };

// Ideal response truncated to n taps; type must already be clamped to 0..3.
int32_t ideal_coefficients(double fs, double fl, double fh, int32_t n, int32_t type, double* h);

// Equiripple design types.
enum RemezType : int32_t { kMultiband = 0, kDifferentiator = 1, kHilbert = 2 };

// One band of an equiripple request, edges in the units of fs.
struct Band {
  double desired, lower, upper, weight;
};

// Parks-McClellan design of n taps into h. *deviation receives the achieved
// |delta| whenever the exchange ran; a limit below 1 means 100 iterations.
int32_t remez(int32_t n, double fs, const Band* bands, int32_t nbands, int32_t type, int32_t limit, double* h,
              double* deviation);

// Narrowband interpolated design: a model filter run with its taps `factor`
// samples apart, then an interpolator that removes the model's images.
constexpr int32_t kNarrowMaxTaps = 4089;  // the longest odd equiripple design
struct Narrow {
  Scratch<double> model, interpolator;  // kNarrowMaxTaps each
  int32_t model_taps = 0, interpolator_taps = 0, factor = 1;
};
// Type 0 lowpass, 1 highpass; ripple is the passband deviation (linear),
// attenuation the stopband's in dB; a factor below 1 is chosen to shorten
// the two filters most.
int32_t narrow_design(double fs, double fpass, double fstop, double ripple, double attenuation, int32_t type,
                      int32_t factor, Narrow* d);
// Filters n samples of `parts` float64 each (1 real, 2 complex) in place,
// from rest.
int32_t narrow_filter(double* x, int32_t n, int parts, const Narrow& d);

// Least-squares polynomial smoothing of order p over 2m+1 points.
// Validation shared by the coefficient and the filter exports.
int32_t savgol_check(int32_t m, int32_t p);
// The weights that give the smoothed centre point (2m+1 values).
int32_t savgol_coefficients(int32_t m, int32_t p, double* c);
// Smooths n samples into y (y may be x itself); the first and last m points
// come from the polynomial fitted to the first and last window.
int32_t savgol_filter(const double* x, int32_t n, int32_t m, int32_t p, double* y);

// Streaming rational-rate FIR filter: the input is upsampled by `up` (zeros
// inserted), convolved with h and every `down`-th sample kept, counting from
// the start of the stream. The stream's memory is `history`, the last
// history_length(k, up) inputs (oldest first), and `phase`, the upsampled
// time of the block's start modulo down.
int64_t history_length(int32_t k, int32_t up);
// Outputs a block of n inputs produces from the given phase.
int64_t output_count(int64_t n, int32_t up, int32_t down, int32_t phase);
int32_t next_phase(int64_t n, int32_t up, int32_t down, int32_t phase);

// y[d] = sum over j of hr[j] * e[d + stride * j] for d in [0, count), the
// sum taken in j order from 0 (vectorised across d).
void correlate(const double* e, int64_t count, const double* hr, int32_t k, int stride, double* y);

// S is double, float, cdouble or cfloat. The history is read and then
// replaced by its continuation; y receives output_count(...) samples.
template <class S>
int32_t multirate(const S* x, int64_t n, const double* h, int32_t k, int32_t up, int32_t down, int32_t phase,
                  S* history, S* y);

// Running median with left rank l and right rank r (both >= 0), zeros
// outside the signal, in place.
int32_t running_median(double* x, int32_t n, int32_t l, int32_t r);

}  // namespace jq::fir
