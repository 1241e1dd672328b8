// Deterministic signal generators: continuous waves that keep their phase
// between calls, one-shot patterns over a record, and analytic pulse shapes.
//
// Phases are in degrees, frequencies of the continuous waves in cycles per
// sample. The operation order of every formula is part of the contract:
// hosts compare sequences bit for bit, so do not reassociate.
#pragma once
#include <cstdint>

namespace jq::gen {

// p - floor(p/360)*360, then +360 if still negative, then 0 if exactly 360.
double reduce_phase(double p);

// Continuous waves. Each writes n >= 1 samples and, on success, advances
// *phase to the phase of the sample after the last one, reduced.
int32_t sine_wave(double* y, int32_t n, double a, double f, double* phase);
int32_t square_wave(double* y, int32_t n, double a, double f, double* phase, double duty);
int32_t triangle_wave(double* y, int32_t n, double a, double f, double* phase);
int32_t sawtooth_wave(double* y, int32_t n, double a, double f, double* phase);
// One cycle of table (L entries) read cyclically; interpolation 1 is linear.
int32_t arbitrary_wave(double* y, int32_t n, double a, double f, double* phase, const double* table, int32_t L,
                       int32_t interpolation);

// Patterns over a record of n >= 1 samples.
int32_t sine_pattern(double* y, int32_t n, double a, double phase, double cycles);
// The pattern's own argument checks (duty, then cycles; the later wins).
int32_t square_pattern_check(int32_t n, double duty, double cycles);
int32_t square_pattern(double* y, int32_t n, double a, double duty, double cycles);
// Checks of a ramp of n samples; 0 when it can be generated.
int32_t ramp_check(int32_t n, double start, double end, int32_t exclude_end, int32_t spacing);
int32_t ramp(double* y, int32_t n, double start, double end, int32_t exclude_end, int32_t spacing);
int32_t pulse_pattern(double* y, int32_t n, double a, int32_t delay, int32_t width);
int32_t impulse_pattern(double* y, int32_t n, double a, int32_t delay);
int32_t chirp(double* y, int32_t n, double a, double f1, double f2);
int32_t sinc(double* y, int32_t n, double a, double delay, double dt);

// Pulse shapes at one time tau.
double periodic_sinc(double tau, double a, int32_t order);
double gauss_pulse(double tau, double a, double fc, double bw, double attenuation_db);
double aperiodic_triangle(double t, double a, double width, double skew);
double gauss_monopulse(double tau, double a, double fc);

}  // namespace jq::gen
