// Ideal-response FIR design: the four selective types truncated to the
// requested length without a taper.
#include <cmath>

#include "filters/fir.hpp"
#include "frame/errors.hpp"

namespace jq::fir {

int32_t ideal_coefficients(double fs, double fl, double fh, int32_t n, int32_t type, double* h) {
  if (n < 1) return kBadOrder;
  // Lowpass and highpass have no upper cut-off: a point halfway between the
  // cut-off and Nyquist stands in for it so that the shared checks pass.
  if (type == kLowpass || type == kHighpass) fh = (fs * 0.5 + fl) * 0.5;
  if (fl > fs * 0.5 || fh > fs * 0.5) return kCutoffAboveNyquist;
  // Written as negations so that a NaN fails them too.
  if (!(fs > 0) || !(fl > 0)) return kBadCutoff;
  const bool band = type == kBandpass || type == kBandstop;
  if (band && (!(fh > 0) || !(fh > fl))) return kBadCutoff;
  if ((type == kHighpass || type == kBandstop) && n % 2 == 0) return kMustBeOdd;

  const double wl = kTwoPi * fl / fs;
  const double wh = kTwoPi * fh / fs;
  const double c = (n - 1) * 0.5;
  for (int32_t k = 0; k < n / 2; ++k) {
    const double d = k - c;
    double v;
    switch (type) {
      case kLowpass:
        v = std::sin(wl * d) / (kPi * d);
        break;
      case kHighpass:
        v = -std::sin(wl * d) / (kPi * d);
        break;
      case kBandpass:
        v = (std::sin(wh * d) - std::sin(wl * d)) / (kPi * d);
        break;
      default:
        v = -((std::sin(wh * d) - std::sin(wl * d)) / (kPi * d));
        break;
    }
    h[k] = v;
    h[n - 1 - k] = v;
  }
  if (n % 2 == 1) {
    double centre;
    switch (type) {
      case kLowpass:
        centre = wl / kPi;
        break;
      case kHighpass:
        centre = 1 - wl / kPi;
        break;
      case kBandpass:
        centre = (wh - wl) / kPi;
        break;
      default:
        centre = 1 - (wh - wl) / kPi;
        break;
    }
    h[n / 2] = centre;
  }
  return kOk;
}

}  // namespace jq::fir
