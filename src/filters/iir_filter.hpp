// IIR filtering with caller-kept state: direct form over two full polynomials,
// and cascades of second- or fourth-order sections (direct form II each).
//
// Direct-form histories are ordered oldest first; a cascade section's state
// holds its internal values newest first. Results below the smallest normal
// double are stored as exact zeros so that a decaying filter never runs on
// subnormals.
#pragma once
#include <cstdint>

#include "frame/handles.hpp"

namespace jq::iir {

// Direct form: y = (Σ b·x − Σ a[1..]·y) / a0 over n samples, x and y possibly
// the same array. fstate holds nb − 1 past inputs, rstate na − 1 past outputs.
// na = 0 makes the filter FIR (no division, no flush). X, C and Y are double
// or cdouble: a complex signal with real coefficients filters both parts alike.
template <class X, class C, class Y>
int32_t direct_form(const X* x, Y* y, int64_t n, const C* a, int64_t na, const C* b, int64_t nb, X* fstate,
                    Y* rstate);

// Cascade of ns sections of order m (2 or 4), in place over n samples.
// Lengths are checked by the caller (reverse m·ns, forward (m + 1)·ns, state m·ns).
template <class T> void cascade(T* x, int64_t n, int32_t m, int64_t ns, const double* a, const double* b, T* state);

// Samples of zero padding on each side of a zero-phase run: one more than the
// filter's order, the padded half of an odd design's first section not counted.
int64_t cascade_transient(int32_t m, int64_t ns, const double* a, const double* b);
int64_t direct_transient(const double* a, int64_t na, const double* b, int64_t nb);

// Forward over the zero-padded signal with the first state, backward with the
// second; x keeps its length. 0 or kNoMemory.
int32_t zero_phase_cascade(double* x, int64_t n, int32_t m, int64_t ns, const double* a, const double* b,
                           double* state1, double* state2);
int32_t zero_phase_direct(double* x, int64_t n, const double* a, int64_t na, const double* b, int64_t nb,
                          double* fstate1, double* rstate1, double* fstate2, double* rstate2);

}  // namespace jq::iir
