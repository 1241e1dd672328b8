// Regularized incomplete gamma and beta functions.
//
// Each is a power series or a continued fraction (modified Lentz) times a
// prefactor x^a e^-x / Gamma(a) or x^a (1-x)^b / B(a, b), all in extended
// precision so that the large logarithms of the prefactor cancel without
// costing digits. Whichever tail is small is computed directly.
#include <cmath>
#include <limits>

#include "special/gamma.hpp"
#include "special/gamma_ld.hpp"

namespace jq::special {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr long double kEps = 1e-19L;
constexpr long double kTiny = 1e-4000L;
constexpr int kMaxIter = 100000;

// a ln(t / a) - (t - a) = -a phi(d), phi(d) = d - ln(1 + d), d = (t - a) / a:
// through phi near t = a, where the two terms cancel, and through the
// logarithms elsewhere, where 1 + d may be too small to form accurately.
long double neg_a_phi(long double a, long double t) {
  const long double d = (t - a) / a;
  if (std::fabs(d) < 0.5L) return -a * (d - std::log1p(d));
  return a * (std::log(t) - std::log(a)) - (t - a);
}

// ln(x^a e^-x / Gamma(a)). For large a the Stirling form leaves -a phi(d)
// with d = (x - a) / a, where a ln x and ln Gamma(a) would cancel.
long double ln_gamma_front(double a, double x) {
  const long double la = a;
  if (a >= 100) {
    return neg_a_phi(la, x) + 0.5L * std::log(la) - kHalfLn2Pi - stirling_correction(la);
  }
  return la * std::log(static_cast<long double>(x)) - x - ln_gamma_ld(a);
}

// P(a, x) by its series; meant for x < a + 1.
long double gamma_p_series(double a, double x) {
  const long double la = a;
  long double term = 1 / la, sum = term;
  for (int n = 1; n < kMaxIter; ++n) {
    term *= x / (la + n);
    sum += term;
    if (term < sum * kEps) break;
  }
  return std::exp(ln_gamma_front(a, x)) * sum;
}

// Q(a, x) by its continued fraction; meant for x >= a + 1.
long double gamma_q_fraction(double a, double x) {
  const long double la = a;
  long double b = x + 1 - la, c = 1 / kTiny, d = 1 / b, h = d;
  for (int i = 1; i < kMaxIter; ++i) {
    const long double an = -i * (i - la);
    b += 2;
    d = an * d + b;
    if (std::fabs(d) < kTiny) d = kTiny;
    c = b + an / c;
    if (std::fabs(c) < kTiny) c = kTiny;
    d = 1 / d;
    const long double del = d * c;
    h *= del;
    if (std::fabs(del - 1) < kEps) break;
  }
  return std::exp(ln_gamma_front(a, x)) * h;
}

// Q(a, x) for a < 1 and x < a + 1, where Q may be small and 1 - P would
// cancel: Q = (1 - x^a / Gamma(1 + a)) - x^a / Gamma(a) * sum_{n>=1} (-x)^n / (n! (a + n)).
long double gamma_q_small_a(double a, double x) {
  const long double la = a, lx = x;
  const long double e = la * std::log(lx) - ln_gamma_1p_ld(la);
  long double power = 1, sum = 0;
  for (int n = 1; n < 200; ++n) {
    power *= -lx / n;
    const long double term = power / (la + n);
    sum += term;
    if (std::fabs(term) < 1e-21L * std::fabs(sum)) break;
  }
  return -std::expm1(e) - la * std::exp(e) * sum;
}

long double clamp01(long double v) { return v < 0 ? 0 : (v > 1 ? 1 : v); }

// NaN for a domain error, 0 or 1 for the limits, -1 to go on.
double gamma_limits(double a, double x, bool upper) {
  if (std::isnan(a) || std::isnan(x) || a < 0 || x < 0 || std::isinf(a)) return kNaN;
  if (a == 0) return x > 0 ? (upper ? 0.0 : 1.0) : kNaN;
  if (x == 0) return upper ? 1.0 : 0.0;
  if (std::isinf(x)) return upper ? 0.0 : 1.0;
  return -1;
}

// The continued fraction of I(x; a, b) / prefactor; converges fast for x < (a+1)/(a+b+2).
long double beta_fraction(long double a, long double b, long double x) {
  const long double qab = a + b, qap = a + 1, qam = a - 1;
  long double c = 1, d = 1 - qab * x / qap;
  if (std::fabs(d) < kTiny) d = kTiny;
  d = 1 / d;
  long double h = d;
  for (int m = 1; m < kMaxIter; ++m) {
    const int m2 = 2 * m;
    long double aa = m * (b - m) * x / ((qam + m2) * (a + m2));
    d = 1 + aa * d;
    if (std::fabs(d) < kTiny) d = kTiny;
    c = 1 + aa / c;
    if (std::fabs(c) < kTiny) c = kTiny;
    d = 1 / d;
    h *= d * c;
    aa = -(a + m) * (qab + m) * x / ((a + m2) * (qap + m2));
    d = 1 + aa * d;
    if (std::fabs(d) < kTiny) d = kTiny;
    c = 1 + aa / c;
    if (std::fabs(c) < kTiny) c = kTiny;
    d = 1 / d;
    const long double del = d * c;
    h *= del;
    if (std::fabs(del - 1) < kEps) break;
  }
  return h;
}

// ln(x^a y^b / B(a, b)) with y = 1 - x. When both parameters are large the
// Stirling forms reduce it to -a phi(dx) - b phi(dy) about the mean
// x0 = a / (a + b) (the linear terms a dx + b dy cancel exactly), free of
// the large cancelling logarithms.
long double ln_beta_front(double a, double b, long double x, long double y) {
  if (a >= 100 && b >= 100) {
    const long double la = a, lb = b, s = la + lb;
    return neg_a_phi(la, x * s) + neg_a_phi(lb, y * s) - 0.5L * std::log(s / (la * lb)) - kHalfLn2Pi - stirling_correction(la) -
           stirling_correction(lb) + stirling_correction(s);
  }
  // The logarithm of whichever of x and y is near 1 comes from the other one.
  const long double ln_x = x > 0.5L ? std::log1p(-y) : std::log(x), ln_y = y > 0.5L ? std::log1p(-x) : std::log(y);
  return a * ln_x + b * ln_y - ln_beta_ld(a, b);
}

// I(x; a, b) with y = 1 - x given exactly alongside x.
long double beta_direct(double a, double b, long double x, long double y) {
  return std::exp(ln_beta_front(a, b, x, y)) / a * beta_fraction(a, b, x);
}

}  // namespace

double gamma_p(double a, double x) {
  const double lim = gamma_limits(a, x, false);
  if (lim != -1) return lim;
  if (x < a + 1) return static_cast<double>(clamp01(gamma_p_series(a, x)));
  return static_cast<double>(clamp01(1 - gamma_q_fraction(a, x)));
}

double gamma_q(double a, double x) {
  const double lim = gamma_limits(a, x, true);
  if (lim != -1) return lim;
  if (x < a + 1) return static_cast<double>(clamp01(a < 1 ? gamma_q_small_a(a, x) : 1 - gamma_p_series(a, x)));
  return static_cast<double>(clamp01(gamma_q_fraction(a, x)));
}

namespace {

// The cases of I(x; a, b) past the closed form, with y = 1 - x.
double beta_inc_rest(double a, double b, long double lx, long double ly) {
  if (a == 0 && b == 0) return kNaN;
  if (a == 0) return 1.0;
  if (b == 0) return ly == 0 ? 1.0 : 0.0;
  if (lx == 0) return 0.0;
  if (ly == 0) return 1.0;
  if (lx * (a + b + 2) < a + 1) return static_cast<double>(clamp01(beta_direct(a, b, lx, ly)));
  return static_cast<double>(clamp01(1 - beta_direct(b, a, ly, lx)));
}

}  // namespace

double beta_inc(double a, double b, double x) {
  if (!std::isfinite(a) || !std::isfinite(b) || !std::isfinite(x)) return kNaN;
  if (a < 0 || b < 0 || x < 0 || x > 1) return kNaN;
  if (a == 1 && b > 3.637978807091712e-13) return 1 - std::pow(1 - x, b);
  const long double lx = x, ly = 1 - lx;  // 1 - x is exact in extended precision down to x ~ 2^-11
  return beta_inc_rest(a, b, lx, ly);
}

double beta_inc(double a, double b, long double x, long double y) {
  if (!std::isfinite(a) || !std::isfinite(b) || !std::isfinite(x) || !std::isfinite(y)) return kNaN;
  if (a < 0 || b < 0 || x < 0 || x > 1 || y < 0 || y > 1) return kNaN;
  // The closed form 1 - y^b, through log1p(-x) while x is the small one.
  if (a == 1 && b > 3.637978807091712e-13) return static_cast<double>(x < 0.5L ? -std::expm1(b * std::log1p(-x)) : 1 - std::pow(y, b));
  return beta_inc_rest(a, b, x, y);
}

}  // namespace jq::special
