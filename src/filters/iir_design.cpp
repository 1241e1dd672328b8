#include "filters/iir_design.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "frame/errors.hpp"
#include "frame/scratch.hpp"

namespace jq::iir {

namespace {

constexpr double kPi = std::numbers::pi;

bool is_band(int32_t type) { return type != kLowpass && type != kHighpass; }

// Writes section k of second-order layout.
void put2(double* rev, double* fwd, int64_t k, double a1, double a2, double b0, double b1, double b2) {
  rev[2 * k] = a1, rev[2 * k + 1] = a2;
  fwd[3 * k] = b0, fwd[3 * k + 1] = b1, fwd[3 * k + 2] = b2;
}
// Writes section k of fourth-order layout.
void put4(double* rev, double* fwd, int64_t k, const double a[4], const double b[5]) {
  std::copy(a, a + 4, rev + 4 * k);
  std::copy(b, b + 5, fwd + 5 * k);
}

// Edges after prewarping: Ω of the lower (or only) edge, and for bands the
// product P and the width B of the two.
struct Edges {
  double w, p, b;
};

// ---- the families whose arithmetic is fixed: Butterworth, Chebyshev lowpass ----

void butterworth(int32_t type, int32_t n, const Edges& e, double* rev, double* fwd) {
  const double w = e.w, w2 = w * w, P = e.p, B = e.b;
  int64_t k = 0;
  if (n % 2) {
    switch (type) {
      case kLowpass:
        put2(rev, fwd, k, -(1 - w) / (1 + w), 0, w / (1 + w), w / (1 + w), 0);
        break;
      case kHighpass: {
        const double g = 1 / (1 + w);
        put2(rev, fwd, k, -(1 - w) * g, 0, g, -g, 0);
        break;
      }
      default: {
        const double D = P + 1 + B;
        const double a[4] = {-2 * (1 - P) / D, (P + 1 - B) / D, 0, 0};
        const double bp[5] = {B / D, 0, -B / D, 0, 0};
        const double bs[5] = {(P + 1) / D, -2 * (1 - P) / D, (P + 1) / D, 0, 0};
        put4(rev, fwd, k, a, type == kBandpass ? bp : bs);
      }
    }
    ++k;
  }
  double phi = (kPi / n + kPi) * 0.5;
  for (int32_t i = 0; i < n / 2; ++i, ++k, phi += kPi / n) {
    switch (type) {
      case kLowpass: {
        const double c = 2 * w * std::cos(phi), D = (w2 + 1) - c, g = w2 / D;
        put2(rev, fwd, k, -(2 - 2 * w2) / D, (w2 + 1 + c) / D, g, 2 * g, g);
        break;
      }
      case kHighpass: {
        const double c = 2 * w * std::cos(phi), g = 1 / ((w2 + 1) - c);
        put2(rev, fwd, k, -(2 - 2 * w2) * g, (w2 + 1 + c) * g, g, -2 * g, g);
        break;
      }
      default: {
        const double t = -2 * B * std::cos(phi), u = t * P, ww = 2 * P + B * B;
        const double D = ww + 1 + t + u + P * P;
        const double a[4] = {(4 * P * P - 2 * (t - u) - 4) / D, (6 - 2 * ww + 6 * P * P) / D,
                             (2 * (t - u) - 4 + 4 * P * P) / D, (1 - t + ww - u + P * P) / D};
        if (type == kBandpass) {
          const double g = B * B / D;
          const double b[5] = {g, 0, -2 * g, 0, g};
          put4(rev, fwd, k, a, b);
        } else {
          const double e0 = (1 + 2 * P + P * P) / D, e1 = -4 * (1 - P * P) / D;
          const double b[5] = {e0, e1, (6 - 4 * P + 6 * P * P) / D, e1, e0};
          put4(rev, fwd, k, a, b);
        }
      }
    }
  }
}

void chebyshev_lowpass(int32_t n, double ripple, double w, double* rev, double* fwd) {
  const double eps = std::sqrt(std::pow(10.0, 0.1 * ripple) - 1);
  const double G = std::sqrt(std::pow(10.0, 0.1 * ripple));
  const double gamma = std::pow((G + 1) / eps, 1.0 / n);
  const double sh = (gamma - 1 / gamma) * 0.5, ch = (gamma + 1 / gamma) * 0.5;
  int64_t k = 0;
  if (n % 2) {
    const double w1 = w * sh;
    put2(rev, fwd, k++, -(1 - w1) / (1 + w1), 0, w1 / (1 + w1), w1 / (1 + w1), 0);
  }
  double phi = (kPi / n + kPi) * 0.5;
  for (int32_t i = 0; i < n / 2; ++i, ++k, phi += kPi / n) {
    const double c = 2 * w * sh * std::cos(phi);
    const double q = (std::cos(2 * phi) * (sh * sh - ch * ch) + ch * ch + sh * sh) * w * w * 0.5;
    const double D = 1 - c + q;
    // An even order starts at the bottom of the ripple, 1/G, at DC.
    const double g = (i == 0 && n % 2 == 0) ? q / (G * D) : q / D;
    put2(rev, fwd, k, -(2 - 2 * q) / D, (1 + c + q) / D, g, 2 * g, g);
  }
}

// ---- every other family: analog section, band substitution, bilinear transform ----

// Coefficients in w = 1/z of sum c[k]·(1 - w)^k·(1 + w)^(d - k).
void bilinear(const double* c, int d, double* out) {
  std::fill(out, out + d + 1, 0.0);
  for (int k = 0; k <= d; ++k) {
    double poly[5] = {1, 0, 0, 0, 0};
    for (int j = 0; j < d; ++j) {
      const double s = j < k ? -1 : 1;  // times (1 - w), then (1 + w)
      for (int i = j + 1; i > 0; --i) poly[i] += s * poly[i - 1];
    }
    for (int i = 0; i <= d; ++i) out[i] += c[k] * poly[i];
  }
}

// Maps one analog section to the digital domain: a second-order one into d = 2
// (lowpass, highpass) or 4 (bands) coefficients, a first-order one into 1 or 2.
// num and den get d + 1 values, den[0] = 1.
int mapped(int32_t type, const AnalogSection& s, bool first_order, const Edges& e, double* num, double* den) {
  const double W = e.w, P = e.p, B = e.b;
  double N[5] = {}, D[5] = {};
  int d;
  if (first_order) {
    switch (type) {
      case kLowpass: N[0] = s.n0 * W, D[0] = s.d0 * W, D[1] = 1, d = 1; break;
      case kHighpass: N[1] = s.n0, D[0] = W, D[1] = s.d0, d = 1; break;
      case kBandpass: N[1] = s.n0 * B, D[0] = P, D[1] = s.d0 * B, D[2] = 1, d = 2; break;
      default: N[0] = s.n0 * P, N[2] = s.n0, D[0] = s.d0 * P, D[1] = B, D[2] = s.d0, d = 2; break;
    }
  } else {
    // (s² + P)², s·(s² + P) and s², the pieces of the band substitutions.
    const double sq[5] = {P * P, 0, 2 * P, 0, 1}, cub[5] = {0, P, 0, 1, 0}, s2[5] = {0, 0, 1, 0, 0};
    switch (type) {
      case kLowpass:
        N[0] = s.n0 * W * W, N[2] = s.n2, D[0] = s.d0 * W * W, D[1] = s.d1 * W, D[2] = 1, d = 2;
        break;
      case kHighpass:
        N[0] = s.n2 * W * W, N[2] = s.n0, D[0] = W * W, D[1] = s.d1 * W, D[2] = s.d0, d = 2;
        break;
      case kBandpass:
        for (int i = 0; i < 5; ++i) {
          N[i] = s.n2 * sq[i] + s.n0 * B * B * s2[i];
          D[i] = sq[i] + s.d1 * B * cub[i] + s.d0 * B * B * s2[i];
        }
        d = 4;
        break;
      default:
        for (int i = 0; i < 5; ++i) {
          N[i] = s.n2 * B * B * s2[i] + s.n0 * sq[i];
          D[i] = B * B * s2[i] + s.d1 * B * cub[i] + s.d0 * sq[i];
        }
        d = 4;
        break;
    }
  }
  bilinear(N, d, num);
  bilinear(D, d, den);
  const double lead = den[0];
  for (int i = 0; i <= d; ++i) num[i] /= lead, den[i] /= lead;
  return d;
}

void put_mapped(int32_t type, const AnalogSection& s, bool first_order, const Edges& e, int64_t k, double* rev,
                double* fwd) {
  double num[5] = {}, den[5] = {};
  mapped(type, s, first_order, e, num, den);
  if (is_band(type))
    put4(rev, fwd, k, den + 1, num);
  else
    put2(rev, fwd, k, den[1], den[2], num[0], num[1], num[2]);
}

int32_t native_design(Family family, const Figures& f, int32_t type, int32_t n, const Edges& e, double* rev,
                      double* fwd) {
  if (family == kButterworth) {
    butterworth(type, n, e, rev, fwd);
    return kOk;
  }
  if (family == kChebyshev && type == kLowpass) {
    chebyshev_lowpass(n, f.ripple, e.w, rev, fwd);
    return kOk;
  }
  Prototype proto;
  if (int32_t rc = proto.init(family, n, f)) return rc;
  int64_t k = 0;
  if (n % 2) put_mapped(type, proto.real_pole(), true, e, k++, rev, fwd);
  for (int32_t i = 0; i < n / 2; ++i) put_mapped(type, proto.pair(i), false, e, k++, rev, fwd);
  return kOk;
}

int32_t check_request(Family family, const Figures& f, const DesignRequest& r, double fs, double fl, double& fh) {
  if (r.order < 1) return kBadOrder;
  if (r.type == kLowpass || r.type == kHighpass) fh = (fs * 0.5 + fl) * 0.5;
  // Written so that a NaN fails each test.
  if (!(fl > 0) || !(fh > 0) || !(fh > fl) || !(fs > 0)) return kBadCutoff;
  if (family == kInvChebyshev && !(f.attenuation > 0)) return kBadAttenuation;
  if (fh > fs * 0.5 || fl > fs * 0.5) return kCutoffAboveNyquist;
  if (family == kChebyshev || family == kElliptic) {
    if (!(f.ripple > 0)) return kBadRipple;
    if (family == kElliptic) {
      if (!(f.attenuation > 0)) return kBadAttenuation;
      if (!(f.attenuation > f.ripple)) return kAttenuationBelowRipple;
    }
  }
  if (r.type < 0 || r.type > 3 || r.topology < 0 || r.topology > 1) return kBadSelector;
  // Bessel poles come from a dense system whose cost grows with the cube of the order.
  if (family == kBessel && r.order > kMaxBesselOrder) return kBadSelector;
  const Lengths need = coefficient_lengths(r.order, r.type, r.topology);
  if (r.reverse_capacity < need.reverse || r.forward_capacity < need.forward) return kCoefficientLength;
  return kOk;
}

}  // namespace

Lengths coefficient_lengths(int32_t order, int32_t type, int32_t topology) {
  if (order < 1) return {0, 0};
  const int64_t ns = (int64_t{order} + 1) / 2;
  const bool band = is_band(type);
  if (topology == kFourthOrder) {
    const int64_t m = band ? ns : (ns + 1) / 2;
    return {4 * m, 5 * m};
  }
  return band ? Lengths{4 * ns, 6 * ns} : Lengths{2 * ns, 3 * ns};
}

int32_t natural_topology(int32_t type) { return is_band(type) ? kFourthOrder : kSecondOrder; }

int32_t design(Family family, const Figures& f, const DesignRequest& r, double fs, double fl, double fh) {
  if (int32_t rc = check_request(family, f, r, fs, fl, fh)) return rc;
  const double wl = std::tan(kPi * fl / fs), wh = std::tan(kPi * fh / fs);
  const Edges e{wl, wl * wh, wh - wl};
  const int64_t ns = (int64_t{r.order} + 1) / 2;
  const bool band = is_band(r.type);
  if (band == (r.topology == kFourthOrder))
    return native_design(family, f, r.type, r.order, e, r.reverse, r.forward);
  // The other topology: design in the native one into scratch, then convert.
  const int64_t rev_len = band ? 4 * ns : 2 * ns, total = band ? 9 * ns : 5 * ns;
  Scratch<double> buf;
  if (buf.allocate(static_cast<size_t>(total)) != kOk) return kNoMemory;
  std::fill(buf.data(), buf.data() + total, 0.0);
  double* rev = buf.data();
  double* fwd = rev + rev_len;
  if (int32_t rc = native_design(family, f, r.type, r.order, e, rev, fwd)) return rc;
  return band ? to_second_order(ns, rev, fwd, r.reverse_capacity, r.reverse, r.forward_capacity, r.forward)
              : to_fourth_order(ns, rev, fwd, r.reverse_capacity, r.reverse, r.forward_capacity, r.forward);
}

}  // namespace jq::iir
