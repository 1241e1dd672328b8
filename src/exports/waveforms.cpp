// Waveform and pattern exports.
#include "frame/export.hpp"
#include "generation/waves.hpp"
#include "jqanlys.h"

using namespace jq;

namespace {

// The frame of the CIN and pattern exports: n < 1 empties the output with
// -20003, a failed resize empties it with -20001 (returning the host's
// status), otherwise the generator's code goes to the error argument and a
// non-zero one empties the output.
template <class Gen> int32_t record(JQHandle y, const int32_t* n, int32_t* error, Gen generate) {
  if (error) *error = kOk;
  Out<double> o(y);
  Outputs out(o);
  const int32_t count = *n;
  if (count < 1) return out.report(kEmptyInput, error);
  if (!out.size(o, count)) return out.report(kNoMemory, error);
  return out.report(generate(o.data(), count), error);
}

// The pulse-shape exports. validate(times_given) gives the export's checks in
// its own order; shape(t) is the sample at time t. Given times are shifted by
// shift first (and the shifted time is what the shape sees).
template <class Validate, class Shape>
int32_t pulse_shape(JQHandle h, int32_t n, double delay, double dt, double shift, Validate validate, Shape shape) {
  Array1<double> given(h);
  Out<double> o(h);
  Outputs out(o);
  const bool times = !given.empty();
  if (int32_t rc = validate(times)) return out.fail(rc);
  if (times) {
    double* t = given.data();
    for (int32_t i = 0; i < given.size(); ++i) {
      if (shift != 0) t[i] = t[i] + shift;
      t[i] = shape(t[i]);
    }
    return kOk;
  }
  if (!out.size(o, n)) return out.fail(kNoMemory);
  double* y = o.data();
  for (int32_t i = 0; i < n; ++i) y[i] = shape(i * dt - delay);
  return kOk;
}

}  // namespace

JQ_EXPORT int32_t SineWaveCIN(JQHandle out, int32_t* n, double* amplitude, double* frequency, double* phase,
                              int32_t* error) {
  return record(out, n, error, [&](double* y, int32_t c) { return gen::sine_wave(y, c, *amplitude, *frequency, phase); });
}

JQ_EXPORT int32_t SquareWaveCIN(JQHandle out, int32_t* n, double* amplitude, double* frequency, double* phase,
                                double* duty_percent, int32_t* error) {
  return record(out, n, error, [&](double* y, int32_t c) {
    return gen::square_wave(y, c, *amplitude, *frequency, phase, *duty_percent);
  });
}

JQ_EXPORT int32_t TriangleWaveCIN(JQHandle out, int32_t* n, double* amplitude, double* frequency, double* phase,
                                  int32_t* error) {
  return record(out, n, error,
                [&](double* y, int32_t c) { return gen::triangle_wave(y, c, *amplitude, *frequency, phase); });
}

JQ_EXPORT int32_t SawtoothWaveCIN(JQHandle out, int32_t* n, double* amplitude, double* frequency, double* phase,
                                  int32_t* error) {
  return record(out, n, error,
                [&](double* y, int32_t c) { return gen::sawtooth_wave(y, c, *amplitude, *frequency, phase); });
}

JQ_EXPORT int32_t ArbitraryWaveCIN(JQHandle out, int32_t* n, double* amplitude, double* frequency, double* phase,
                                   JQHandle table, int32_t* interpolation, int32_t* error) {
  Array1<const double> t(table);
  const int32_t entries = t.empty() ? 0 : t.size();
  return record(out, n, error, [&](double* y, int32_t c) {
    return gen::arbitrary_wave(y, c, *amplitude, *frequency, phase, t.data(), entries, *interpolation);
  });
}

JQ_EXPORT int32_t SinePtrn(JQHandle out, int32_t* n, double* amplitude, double* phase, double* cycles,
                           int32_t* error) {
  return record(out, n, error, [&](double* y, int32_t c) { return gen::sine_pattern(y, c, *amplitude, *phase, *cycles); });
}

JQ_EXPORT int32_t Square(JQHandle out, int32_t* n, double* amplitude, double* duty_percent, double* cycles,
                         int32_t* error) {
  return record(out, n, error,
                [&](double* y, int32_t c) { return gen::square_pattern(y, c, *amplitude, *duty_percent, *cycles); });
}

JQ_EXPORT int32_t RampPtrn(JQHandle out, int32_t* n, double* start, double* end, int32_t* error) {
  return record(out, n, error, [&](double* y, int32_t c) { return gen::ramp(y, c, *start, *end, 0, 0); });
}

JQ_EXPORT int32_t RampPtrn85(JQHandle out, int32_t n, double start, double end, int32_t exclude_end, int32_t spacing) {
  Out<double> o(out);
  Outputs outs(o);
  if (int32_t rc = gen::ramp_check(n, start, end, exclude_end, spacing)) return outs.fail(rc);
  if (!outs.size(o, n)) return outs.fail(kNoMemory);
  return outs.finish(gen::ramp(o.data(), n, start, end, exclude_end, spacing));
}

JQ_EXPORT int32_t RampPtrn80(JQHandle out, int32_t n, double start, double end) {
  return RampPtrn85(out, n, start, end, 0, 0);
}

JQ_EXPORT int32_t PulsePtrn(JQHandle out, int32_t* n, double* amplitude, int32_t* delay, int32_t* width,
                            int32_t* error) {
  return record(out, n, error,
                [&](double* y, int32_t c) { return gen::pulse_pattern(y, c, *amplitude, *delay, *width); });
}

JQ_EXPORT int32_t ImpulsePtrn(JQHandle out, int32_t* n, double* amplitude, int32_t* delay, int32_t* error) {
  return record(out, n, error, [&](double* y, int32_t c) { return gen::impulse_pattern(y, c, *amplitude, *delay); });
}

JQ_EXPORT int32_t ChirpCIN(JQHandle out, int32_t* n, double* amplitude, double* f1, double* f2, int32_t* error) {
  return record(out, n, error, [&](double* y, int32_t c) { return gen::chirp(y, c, *amplitude, *f1, *f2); });
}

JQ_EXPORT int32_t SincWave(JQHandle out, int32_t* n, double* amplitude, double* delay, double* dt, int32_t* error) {
  return record(out, n, error, [&](double* y, int32_t c) { return gen::sinc(y, c, *amplitude, *delay, *dt); });
}

JQ_EXPORT int32_t PeriodicSincH(JQHandle times_or_out, int32_t n, double amplitude, int32_t order, double dt,
                                double delay) {
  return pulse_shape(
      times_or_out, n, delay, dt, 0.0,
      [&](bool times) -> int32_t {
        if (order < 1) return kBadShape;
        if (times) return kOk;
        if (n < 1) return kEmptyInput;
        return dt > 0 ? kOk : kNonPositiveSpacing;
      },
      [&](double t) { return gen::periodic_sinc(t, amplitude, order); });
}

JQ_EXPORT int32_t GaussPulseH(JQHandle times_or_out, int32_t n, double amplitude, double delay, double dt,
                              double centre_frequency, double bandwidth, double attenuation_db) {
  return pulse_shape(
      times_or_out, n, delay, dt, 0.0,
      [&](bool times) -> int32_t {
        if (!(centre_frequency > 0) || !(bandwidth > 0) || !(attenuation_db > 0)) return kBadShape;
        if (times) return kOk;
        if (n < 1) return kEmptyInput;
        return dt > 0 ? kOk : kNonPositiveSpacing;
      },
      [&](double t) { return gen::gauss_pulse(t, amplitude, centre_frequency, bandwidth, attenuation_db); });
}

// Given times are shifted by half the width, so that the triangle is centred
// on 0 for them while it starts at 0 on the generated time base.
JQ_EXPORT int32_t AperiodTriangleH(JQHandle times_or_out, int32_t n, double amplitude, double delay, double dt,
                                   double width, double skew) {
  return pulse_shape(
      times_or_out, n, delay, dt, width / 2,
      [&](bool times) -> int32_t {
        if (!times && n < 1) return kEmptyInput;
        if (!(width > 0)) return kBadShape;
        if (!times && !(dt > 0)) return kNonPositiveSpacing;
        return skew >= 0 && skew <= 1 ? kOk : kNotInUnitInterval;
      },
      [&](double t) { return gen::aperiodic_triangle(t, amplitude, width, skew); });
}

JQ_EXPORT int32_t GaussMonopulseH(JQHandle times_or_out, int32_t n, double amplitude, double delay, double dt,
                                  double centre_frequency) {
  return pulse_shape(
      times_or_out, n, delay, dt, 0.0,
      [&](bool times) -> int32_t {
        if (!(centre_frequency > 0)) return kBadShape;
        if (times) return kOk;
        if (n < 1) return kEmptyInput;
        return dt > 0 ? kOk : kNonPositiveSpacing;
      },
      [&](double t) { return gen::gauss_monopulse(t, amplitude, centre_frequency); });
}
