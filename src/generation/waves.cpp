// Continuous waves with kept phase, and the record patterns.
#include "generation/waves.hpp"

#include <cmath>

#include "frame/errors.hpp"
#include "generation/waves_trig.hpp"

namespace jq::gen {
namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kDegree = 0.017453292519943295;  // pi / 180

// The phase of sample i of a continuous wave, computed afresh from the entry
// phase (never accumulated, so no drift over long records), then reduced.
inline double phase_at(double p0, int32_t i, double f) { return reduce_phase(p0 + i * 360.0 * f); }

// The phase that follows n samples, shared by every continuous wave.
inline double next_phase(double p0, int32_t n, double f) { return reduce_phase(f * 360.0 * n + p0); }

// Runs shape(reduced phase) over the samples of a continuous wave.
template <class Shape> int32_t phased(double* y, int32_t n, double f, double* phase, Shape shape) {
  const double p0 = *phase;
  for (int32_t i = 0; i < n; ++i) y[i] = shape(phase_at(p0, i, f));
  *phase = next_phase(p0, n, f);
  return kOk;
}

// The sine by a two-term recurrence seeded with exact values (correctly
// rounded, the same on every platform). The clamp to [-|a|, |a|] keeps
// rounding from growing the amplitude over long records.
void sine_samples(double* y, int32_t n, double a, double f, double phase) {
  const double theta = phase * kDegree;
  const double w = 2.0 * kPi * f;
  const double k = 2.0 * sine(w);
  y[0] = a * sine(theta);
  if (n < 2) return;
  const double lim = std::fabs(a);
  double s2 = y[0], c2 = a * cosine(theta);  // s_{i-2}, c_{i-2}
  y[1] = a * sine(theta + w);
  double s1 = y[1], c1 = a * cosine(theta + w);  // s_{i-1}, c_{i-1}
  for (int32_t i = 2; i < n; ++i) {
    double s = s2 + k * c1;
    s = s < -lim ? -lim : s > lim ? lim : s;
    const double c = c2 - k * s1;
    y[i] = s;
    s2 = s1;
    c2 = c1;
    s1 = s;
    c1 = c;
  }
}

}  // namespace

double reduce_phase(double p) {
  double r = p - std::floor(p / 360.0) * 360.0;
  if (r < 0) r += 360.0;
  if (r == 360.0) r = 0.0;
  return r;
}

int32_t sine_wave(double* y, int32_t n, double a, double f, double* phase) {
  sine_samples(y, n, a, f, *phase);
  *phase = next_phase(*phase, n, f);
  return kOk;
}

// High while duty * 3.6 exceeds the phase: the high part comes first in each
// cycle, and duty 0 is low throughout.
int32_t square_wave(double* y, int32_t n, double a, double f, double* phase, double duty) {
  const double d = duty < 0 ? 0.0 : duty > 100 ? 100.0 : duty;
  return phased(y, n, f, phase, [&](double p) { return d * 3.6 > p ? a : -a; });
}

// 0 at 0 degrees, +a at 90, 0 at 180, -a at 270.
int32_t triangle_wave(double* y, int32_t n, double a, double f, double* phase) {
  return phased(y, n, f, phase, [&](double p) {
    double t = p * 0.005555555555555556;
    if (t >= 0.5) t = t < 1.5 ? 1 - t : t - 2;
    return 2 * a * t;
  });
}

// Rises from 0 to +a, jumps to -a at 180 degrees, rises back to 0.
int32_t sawtooth_wave(double* y, int32_t n, double a, double f, double* phase) {
  return phased(y, n, f, phase, [&](double p) {
    if (p == 360.0) return 0.0;
    return p < 180 ? a * p / 180 : a * (p / 180 - 2);
  });
}

int32_t arbitrary_wave(double* y, int32_t n, double a, double f, double* phase, const double* table, int32_t L,
                       int32_t interpolation) {
  if (!std::isfinite(*phase) || !std::isfinite(f)) return kNonFinitePhase;
  double x = *phase * L / 360;
  for (int32_t i = 0; i < n; ++i) {
    double v = 0.0;
    if (L >= 1) {
      double r = x - std::floor(x / L) * L;
      if (r < 0) r += L;
      if (r == L) r = 0;
      if (!(r >= 0 && r < L)) {
        // Only an overflowing position (from an enormous frequency) gets here.
        v = std::nan("");
      } else {
        const int32_t j = static_cast<int32_t>(r);
        if (interpolation == 1)
          v = table[j] + (r - std::floor(r)) * (table[(j + 1) % L] - table[j]);
        else
          v = table[j];
      }
    }
    y[i] = v * a;
    x = x + L * f;
  }
  *phase = L >= 1 ? reduce_phase(360.0 / L * x) : 0.0;
  return kOk;
}

int32_t sine_pattern(double* y, int32_t n, double a, double phase, double cycles) {
  sine_samples(y, n, a, cycles / n, phase);
  return kOk;
}

int32_t square_pattern_check(int32_t n, double duty, double cycles) {
  int32_t code = kOk;
  if (!(duty > 0)) code = kNonPositiveDuty;
  if (!(cycles > 0) || cycles > std::floor(n / 2.0)) code = kNotInHalfRange;
  return code;
}

// Unipolar: amplitude for the first H samples of each period of P, else 0.
// H is compared as a double so that an enormous duty needs no cast.
int32_t square_pattern(double* y, int32_t n, double a, double duty, double cycles) {
  if (int32_t rc = square_pattern_check(n, duty, cycles)) return rc;
  if (duty == 100) {
    for (int32_t i = 0; i < n; ++i) y[i] = a;
    return kOk;
  }
  // A period longer than the record acts like one of n samples.
  const double p = std::trunc(n / cycles + 0.5);
  const int32_t period = p < n ? static_cast<int32_t>(p) : n;
  const double high = std::trunc(duty * 0.01 * period + 0.5);
  for (int32_t i = 0; i < n; ++i) y[i] = (i % period) < high ? a : 0.0;
  return kOk;
}

int32_t ramp_check(int32_t n, double start, double end, int32_t exclude_end, int32_t spacing) {
  if (exclude_end != 0 && n < 1) return kRampExcludedEmpty;
  if (exclude_end == 0 && n < 2 && !(n == 1 && start == end)) return kFewerThan2;
  if (static_cast<uint32_t>(spacing) > 1) return kBadSelector;
  if (spacing == 1 && (!(start > 0) || !(end > 0))) return kBadShape;
  return kOk;
}

int32_t ramp(double* y, int32_t n, double start, double end, int32_t exclude_end, int32_t spacing) {
  if (int32_t rc = ramp_check(n, start, end, exclude_end, spacing)) return rc;
  const double d = exclude_end ? n : n - 1;
  y[0] = start;
  if (spacing == 0) {
    for (int32_t i = 1; i < n; ++i) y[i] = i * (end - start) / d + start;
  } else {
    const double l1 = std::log(start), l2 = std::log(end);
    for (int32_t i = 1; i < n; ++i) y[i] = std::exp(l1 + i * (l2 - l1) / d);
  }
  if (!exclude_end) y[n - 1] = end;
  return kOk;
}

int32_t pulse_pattern(double* y, int32_t n, double a, int32_t delay, int32_t width) {
  if (delay < 0 || width < 0 || int64_t{delay} + width > n || delay > n || width > n) return kSpanOutside;
  for (int32_t i = 0; i < n; ++i) y[i] = 0.0;
  for (int32_t i = delay; i < delay + width; ++i) y[i] = a;
  return kOk;
}

int32_t impulse_pattern(double* y, int32_t n, double a, int32_t delay) {
  if (delay < 0 || delay > n - 1) return kIndexBeyond;
  for (int32_t i = 0; i < n; ++i) y[i] = 0.0;
  y[delay] = a;
  return kOk;
}

// A linear chirp from f1 to f2 cycles per sample; no phase is kept.
int32_t chirp(double* y, int32_t n, double a, double f1, double f2) {
  const double step = (f2 - f1) * kPi / n;
  for (int32_t i = 0; i < n; ++i) y[i] = a * sine((i * step + 2 * kPi * f1) * i);
  return kOk;
}

int32_t sinc(double* y, int32_t n, double a, double delay, double dt) {
  if (!(dt > 0)) return kNonPositiveSpacing;
  for (int32_t i = 0; i < n; ++i) {
    const double x = (i * dt - delay) * kPi;
    y[i] = x == 0 ? a : a * sine(x) / x;
  }
  return kOk;
}

}  // namespace jq::gen
