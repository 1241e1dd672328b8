// Analytic pulse shapes, evaluated at one time each.
#include <cmath>

#include "generation/waves.hpp"
#include "generation/waves_trig.hpp"

namespace jq::gen {
namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kLn10 = 2.302585092994046;
constexpr double kE = 2.718281828459045;
}  // namespace

// The Dirichlet kernel sin(N y) / (N sin y), y = tau/2. At the singular
// points the value is 1 for every order, even where the limit is -1.
double periodic_sinc(double tau, double a, int32_t order) {
  const double y = tau / 2;
  const double s = sine(y);
  const double d = std::fabs(s) <= 2.220446049250313e-16 ? 1.0 : sine(order * y) / (order * s);
  return a * d;
}

// A cosine at fc under a Gaussian envelope that has fallen by the attenuation
// (dB) at the fractional bandwidth bw.
double gauss_pulse(double tau, double a, double fc, double bw, double attenuation_db) {
  const double u = kPi * fc * tau;
  const double k = -5 * bw * bw / (kLn10 * attenuation_db);
  return a * std::exp(k * (u * u)) * cosine(2 * u);
}

// A single triangle of the given width starting at t = 0, its peak at
// width * skew.
double aperiodic_triangle(double t, double a, double width, double skew) {
  if (!(t >= 0 && t <= width)) return 0.0;
  if (skew == 0) return a * (width - t) / width;
  if (skew == 1) return a * t / width;
  const double m = width * skew;
  return t <= m ? a * t / m : a * (width - t) / (width - m);
}

// The first derivative of a Gaussian, scaled so that its extremes are +-a
// (at u = +-1/2).
double gauss_monopulse(double tau, double a, double fc) {
  const double u = kPi * fc * tau;
  return 2 * std::sqrt(kE) * a * u * std::exp(-2 * (u * u));
}

}  // namespace jq::gen
