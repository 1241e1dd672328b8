// The window family: time-domain windows selected by code, applied in place.
//
// Every routine multiplies n samples in place by a window that is periodic of
// length n (the symmetric form is built from the periodic one by symmetric()).
// The routines are templates over the sample type: a complex sample is scaled
// by the same real window value in both parts. They return 0 or a code.
#pragma once
#include <cstdint>

#include "frame/handles.hpp"

namespace jq::win {

// Equivalent noise bandwidth (bins), then coherent gain.
struct Constants {
  double enbw;
  double cg;
};

enum WindowCode : int32_t {
  kRectangle = 0,
  kHann = 1,
  kTriangle = 30,
  kBartlettHann = 31,
  kBohman = 32,
  kParzen = 33,
  kWelch = 34,
  kKaiser = 60,
  kDolphChebyshev = 61,
  kGaussian = 62,
};

// Coefficients a_0, a_1, ... of a generalised cosine window; the term count,
// 0 for a code without coefficients.
int32_t cosine_terms(int32_t code, const double** a);
// True when the code names a window of the family.
bool known_code(int32_t code);
// The stored constants of codes 0-9 and 11; false for every other code.
bool stored_constants(int32_t code, Constants* c);

// Replaces a missing or unusable parameter by the code's default.
double default_parameter(int32_t code, double p);
// Side-lobe level in dB as the linear ratio the Dolph-Chebyshev routine takes.
double level_ratio(double decibels);

template <class T> int32_t generalised_cosine(T* x, int32_t n, const double* a, int32_t terms);
template <class T> int32_t triangle(T* x, int32_t n);
template <class T> int32_t bartlett_hann(T* x, int32_t n);
template <class T> int32_t bohman(T* x, int32_t n);
template <class T> int32_t parzen(T* x, int32_t n);
template <class T> int32_t welch(T* x, int32_t n);
template <class T> int32_t kaiser(T* x, int32_t n, double beta);
// ratio: main-lobe to side-lobe amplitude ratio (linear, 1 or above).
template <class T> int32_t dolph_chebyshev(T* x, int32_t n, double ratio, bool symmetric);
template <class T> int32_t gaussian(T* x, int32_t n, double sigma);
template <class T> int32_t exponential(T* x, int32_t n, double final_value);
template <class T> int32_t force(T* x, int32_t n, double duty);
template <class T> int32_t cosine_tapered(T* x, int32_t n, double ratio);

// The periodic window of a code. The parameter is Kaiser's beta, the
// Dolph-Chebyshev side-lobe level in dB, or the Gaussian's sigma.
template <class T> int32_t by_code(T* x, int32_t n, int32_t code, double p);
// The symmetric form: the periodic window of length n-1 with the last sample
// equal to the first; codes 61 and 62 build their own symmetric window.
template <class T> int32_t symmetric(T* x, int32_t n, int32_t code, double p);

// The window of a code as n samples in w: periodic, or the symmetric form.
int32_t samples(double* w, int32_t n, int32_t code, double p, bool symmetric_form);
// Divides window samples by their mean, so that the window passes a constant
// (and a bin-centred tone) with unit gain. A window whose mean is not a
// positive number is left as it is.
void normalise_gain(double* w, int32_t n);
// x[i] *= w[i].
template <class T> void apply_samples(T* x, const double* w, int32_t n);

// Constants measured from window samples; kEmptyInput for n < 1.
int32_t measure(const double* w, int32_t n, Constants* c);
// Stored constants for the coefficient windows, else measured on the
// periodic window of length n.
int32_t constants_by_code(int32_t n, int32_t code, double p, Constants* c);

}  // namespace jq::win
