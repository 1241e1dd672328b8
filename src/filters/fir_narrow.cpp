// Narrowband (interpolated) FIR design and filtering.
//
// A narrow transition band needs a long filter. The interpolated design
// meets it with two short ones: a model filter G designed at L times the
// band edges and run with its taps L samples apart, G(z^L), which has the
// wanted edge and L - 1 images of its passband; and an interpolator I(z)
// that passes the wanted band and stops the images. Both are equiripple
// designs, each lengthened until its achieved deviation meets its share of
// the ripple and the attenuation. A highpass is the lowpass of the mirrored edges with z -> -z.
#include <algorithm>
#include <cmath>

#include "filters/fir.hpp"
#include "frame/errors.hpp"
#include "frame/scratch.hpp"

namespace jq::fir {

namespace {

constexpr int32_t kMaxFactor = 1024;

// Length estimate (Kaiser) of a lowpass with ripples dp, ds and normalised
// transition width df.
int32_t estimate(double dp, double ds, double df) {
  const double n = (-20 * std::log10(std::sqrt(dp * ds)) - 13) / (14.6 * df) + 1;
  if (!(n < kNarrowMaxTaps)) return kNarrowMaxTaps;
  const int32_t k = std::max(3, static_cast<int32_t>(std::ceil(n)));
  return k | 1;  // odd: a type I filter, as the highpass mirror needs
}

// An equiripple lowpass, passband [0, fp], stopband [fst, 0.5] (fs = 1),
// lengthened (by about 5% a step) until the passband deviation is at most dp
// and the stopband one at most ds. h holds kNarrowMaxTaps values.
int32_t lowpass(double fp, double fst, double dp, double ds, double* h, int32_t* taps) {
  const Band bands[2] = {{1, 0, fp, 1}, {0, fst, 0.5, dp / ds}};
  for (int32_t n = estimate(dp, ds, fst - fp);; n += std::max(2, n / 40 * 2)) {
    if (n > kNarrowMaxTaps) return kDesignFailed;
    double dev = 0;
    const int32_t code = remez(n, 1.0, bands, 2, kMultiband, 0, h, &dev);
    if (code == kNoMemory) return code;
    if (code == kOk && dev <= dp) {
      *taps = n;
      return kOk;
    }
  }
}

double total_estimate(double fp, double fst, double dp, double ds, int32_t l) {
  return estimate(dp, ds, l * (fst - fp)) + estimate(dp, ds, 1.0 / l - fst - fp);
}

}  // namespace

int32_t narrow_design(double fs, double fpass, double fstop, double ripple, double attenuation, int32_t type,
                      int32_t factor, Narrow* d) {
  for (double v : {fs, fpass, fstop, ripple, attenuation})
    if (!std::isfinite(v)) return kDesignFailed;
  if (fs <= 0 || fpass <= 0 || fstop <= 0) return kBadCutoff;
  if (fpass >= fs / 2 || fstop >= fs / 2) return kCutoffAboveNyquist;
  if (type != kLowpass && type != kHighpass) return kBadSelector;
  if (type == kLowpass ? fpass >= fstop : fpass <= fstop) return kBadCutoff;
  if (!(ripple > 0 && ripple < 1)) return kNotInUnitInterval;
  if (!(attenuation > 0)) return kBadShape;

  // The lowpass prototype, normalised to fs = 1.
  double fp = fpass / fs, fst = fstop / fs;
  if (type == kHighpass) {
    fp = 0.5 - fp;
    fst = 0.5 - fst;
  }
  // Each filter gets the passband deviation a with (1 + a)^2 - 1 within the
  // ripple, and a stopband deviation that leaves room for the other filter's
  // passband gain (at most 1 + a). The 5% margins cover the error between
  // the points of the design grid, where the exchange does not look.
  const double dp = std::sqrt(1 + 0.95 * ripple) - 1;
  const double ds = 0.95 * std::pow(10.0, -attenuation / 20) / (1 + dp);
  // The largest factor keeps the model's stopband edge below Nyquist and the
  // first image beyond the passband.
  int32_t most = 1;
  while (most < kMaxFactor && (most + 1) * fst < 0.5 && 1.0 / (most + 1) - fst > fp) ++most;
  int32_t l = factor;
  if (l < 1) {
    l = 1;
    for (int32_t c = 2; c <= most; ++c)
      if (total_estimate(fp, fst, dp, ds, c) < total_estimate(fp, fst, dp, ds, l)) l = c;
  } else if (l > most) {
    return kBadSelector;
  }
  d->factor = l;
  if (d->model.allocate(kNarrowMaxTaps) != kOk || d->interpolator.allocate(kNarrowMaxTaps) != kOk) return kNoMemory;
  if (int32_t code = lowpass(l * fp, l * fst, dp, ds, d->model.data(), &d->model_taps)) return code;
  if (l == 1) {
    d->interpolator[0] = 1.0;
    d->interpolator_taps = 1;
  } else if (int32_t code = lowpass(fp, 1.0 / l - fst, dp, ds, d->interpolator.data(), &d->interpolator_taps)) {
    return code;
  }
  if (type == kHighpass) {
    // z -> -z: the model's tap k sits at delay k L.
    for (int32_t k = 1; k < d->model_taps; k += 2)
      if (l % 2) d->model[k] = -d->model[k];
    for (int32_t k = 1; k < d->interpolator_taps; k += 2) d->interpolator[k] = -d->interpolator[k];
  }
  return kOk;
}

int32_t narrow_filter(double* x, int32_t n, int parts, const Narrow& d) {
  // Both stages start from rest: zeros before the signal.
  const int64_t km = d.model_taps, ki = d.interpolator_taps, l = d.factor;
  const int64_t hist = std::max((km - 1) * l, ki - 1);
  Scratch<double> ext, reversed;
  if (ext.allocate(static_cast<size_t>((hist + n) * parts)) != kOk) return kNoMemory;
  if (reversed.allocate(static_cast<size_t>(std::max(km, ki))) != kOk) return kNoMemory;
  double* e = ext.data();
  const int64_t count = int64_t{n} * parts;
  auto stage = [&](const double* h, int64_t k, int64_t spread) {
    const int64_t lead = (k - 1) * spread;
    std::fill(e, e + hist * parts, 0.0);
    std::copy(x, x + count, e + hist * parts);
    for (int64_t j = 0; j < k; ++j) reversed[j] = h[k - 1 - j];
    correlate(e + (hist - lead) * parts, count, reversed.data(), static_cast<int32_t>(k),
              static_cast<int>(spread * parts), x);
  };
  stage(d.model.data(), km, l);
  stage(d.interpolator.data(), ki, 1);
  return kOk;
}

}  // namespace jq::fir
