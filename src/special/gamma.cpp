// Factorials, gamma, log-gamma, the Stirling series, digamma and beta.
//
// The log-gamma and Stirling routines follow fixed formulas that the
// distributions and noise generators depend on bit for bit. Gamma, digamma
// and beta are free to be as accurate as we can make them: they work in
// extended precision (long double) so that the products of the recurrence
// and the cancellations near roots cost no accuracy in the double result.
#include <algorithm>
#include <cmath>
#include <limits>

#include "special/gamma.hpp"
#include "special/gamma_ld.hpp"
#include "special/poly.hpp"

namespace jq::special {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

// 0! ... 33!, each the double nearest the exact value.
constexpr double kFactorials[34] = {
    1.0, 1.0, 2.0, 6.0, 24.0, 120.0, 720.0, 5040.0, 40320.0, 362880.0, 3628800.0, 39916800.0,
    479001600.0, 6227020800.0, 87178291200.0, 1307674368000.0, 20922789888000.0, 355687428096000.0,
    6402373705728000.0, 1.21645100408832e+17, 2.43290200817664e+18, 5.109094217170944e+19,
    1.1240007277776077e+21, 2.585201673888498e+22, 6.204484017332394e+23, 1.5511210043330986e+25,
    4.0329146112660565e+26, 1.0888869450418352e+28, 3.0488834461171387e+29, 8.841761993739702e+30,
    2.6525285981219107e+32, 8.222838654177922e+33, 2.631308369336935e+35, 8.683317618811886e+36};

// ln Gamma: the asymptotic series above 33 and a rational form on [2, 3].
constexpr double kLgS[] = {0.0008116141674705085, -0.0005950619042843014, 0.0007936503404577169,
                           -0.002777777777300997, 0.08333333333333319};
constexpr double kLgP[] = {-1378.2515256912086, -38801.631513463784, -331612.9927388712,
                           -1162370.974927623,  -1721737.0082083966, -853555.6642457654};
constexpr double kLgQ[] = {1.0,
                           -351.81570143652345,
                           -17064.210665188115,
                           -220528.59055385445,
                           -1139334.4436798252,
                           -2532523.0717758294,
                           -2018891.4143353277};

constexpr double kStir[] = {7.873113957930937e-4, -2.2954996161337813e-4, -2.6813261780578124e-3,
                            3.4722222160545866e-3, 8.333333333334822e-2};

// Taylor coefficients psi^(k)(x0) / k! about the positive root x0 of the
// digamma function (k = 1..19), computed at 40 digits.
constexpr double kPsiRootHi = 1.4616321449683622;  // the double nearest x0; the rest follows
constexpr long double kPsiRootLo = 9.549995429965697e-17L;
constexpr double kPsiTaylor[] = {
    0.000504953265834602,   -0.0007380709389960052, 0.0010788252019162967, -0.0015769367714301972,
    0.002305126326734928,   -0.003369801655439328,  0.004926781395729853,  -0.007204534386356869,
    0.010538791616612175,   -0.01542476590494896,   0.022597648232218104,  -0.03316112647484736,
    0.04880428816414311,    -0.07219956125645471,   0.10782405069126237,   -0.16394270544240652,
    0.258499760955651,      -0.4427631689835921,    0.9676722454476212};

// B_2k / 2k for k = 10 down to 1: the asymptotic series of digamma in 1/x^2.
constexpr double kPsiAsym[] = {-174611.0 / 6600.0, 43867.0 / 14364.0, -3617.0 / 8160.0, 1.0 / 12.0,
                               -691.0 / 32760.0,   1.0 / 132.0,       -1.0 / 240.0,     1.0 / 252.0,
                               -1.0 / 120.0,       1.0 / 12.0};

constexpr long double kPiL = 3.141592653589793238462643383279502884L;

// f = x - nearest integer, exact; n is that integer's parity.
long double reduce_half(double x, bool* odd) {
  const double n = std::nearbyint(x);
  *odd = std::fmod(n, 2.0) != 0.0;
  return static_cast<long double>(x - n);
}

long double digamma_positive(long double x) {
  const long double d = (x - kPsiRootHi) - kPsiRootLo;
  if (std::fabs(static_cast<double>(d)) < 0.1) return d * horner<long double>(kPsiTaylor, d);
  long double acc = 0;
  while (x < 10) {
    acc -= 1 / x;
    x += 1;
  }
  const long double w = 1 / (x * x);
  return acc + std::log(x) - 0.5L / x - w * horner<long double>(kPsiAsym, w);
}

}  // namespace

long double gamma_ld(long double x) {
  long double z = 1;
  while (x >= 3) {
    x -= 1;
    z *= x;
  }
  while (x < 2) {
    z /= x;
    x += 1;
  }
  const long double t = x - 2;
  return z * std::exp(t * horner<long double>(kLgP, t) / horner<long double>(kLgQ, t));
}

long double stirling_correction(long double x) {
  const long double w = 1 / (x * x);
  return ((((1.0L / 1188 * w - 1.0L / 1680) * w + 1.0L / 1260) * w - 1.0L / 360) * w + 1.0L / 12) / x;
}

namespace {

long double ln_gamma_any(long double x) {
  if (x < 1700) return std::log(gamma_ld(x));
  return (x - 0.5L) * std::log(x) - x + kHalfLn2Pi + stirling_correction(x);
}

}  // namespace

// Above 1700 the Gamma values leave long double; the Stirling forms are
// then combined so that the large terms cancel analytically, not in
// floating point.
long double ln_beta_ld(double a, double b) {
  const long double s = static_cast<long double>(a) + b;
  if (s < 1700) return std::log(gamma_ld(a) * (gamma_ld(b) / gamma_ld(s)));
  const long double big = std::max(a, b), small = std::min(a, b);
  if (small >= 100) {
    return -big * std::log1p(small / big) - small * std::log1p(big / small) + 0.5L * std::log(s / (big * small)) +
           kHalfLn2Pi + stirling_correction(big) + stirling_correction(small) - stirling_correction(s);
  }
  // ln Gamma(s) - ln Gamma(big), both by Stirling.
  const long double d = (big - 0.5L) * std::log1p(small / big) + small * std::log(s) - small + stirling_correction(s) -
                        stirling_correction(big);
  return std::log(gamma_ld(small)) - d;
}

long double ln_gamma_ld(double a) { return ln_gamma_any(a); }

long double ln_gamma_1p_ld(long double a) {
  return a * horner<long double>(kLgP, a) / horner<long double>(kLgQ, a) - std::log1p(a);
}

double factorial(int32_t n) {
  if (n < 0) return kNaN;
  if (n <= 33) return kFactorials[n];
  if (n <= 50) {
    double r = kFactorials[33];
    int32_t k = n;
    while (k > 40) {
      r = r * k * (k - 1) * (k - 2) * (k - 3) * (k - 4) * (k - 5) * (k - 6) * (k - 7);
      k -= 8;
    }
    for (; k >= 34; --k) r *= k;
    return r;
  }
  return gamma(static_cast<double>(n) + 1.0);
}

double ln_factorial(int32_t n) {
  if (n < 0) return kNaN;
  if (n == 1) return 0.0;
  return ln_gamma(static_cast<double>(n) + 1.0);
}

double ln_gamma(double x) {
  if (x == kInf) return kInf;
  if (!(x >= 0)) return kNaN;  // NaN, -inf and every negative x
  if (x >= 33) {
    const double q = (x - 0.5) * std::log(x) - x + 0.9189385332046728;
    const double p = 1.0 / (x * x);
    if (x < 1000) return q + horner(kLgS, p) / x;
    return q + ((0.0007936507936507937 * p - 0.002777777777777778) * p + 0.08333333333333333) / x;
  }
  double z = 1.0;
  while (x >= 3) {
    x -= 1;
    z *= x;
  }
  while (x < 2) {
    if (x == 0) return kInf;
    z /= x;
    x += 1;
  }
  if (z < 0) z = -z;
  if (x == 2) return std::log(z);
  const double t = x - 2;
  return std::log(z) + t * horner(kLgP, t) / horner(kLgQ, t);
}

double gamma(double x) {
  if (std::isnan(x) || x == -kInf) return kNaN;
  if (x == 0 || x >= 172) return kInf;
  if (x > 0) return static_cast<double>(gamma_ld(x));
  if (x == std::floor(x)) return kNaN;  // the poles at the negative integers
  bool odd = false;
  const long double f = reduce_half(x, &odd);
  const long double s = odd ? -std::sin(kPiL * f) : std::sin(kPiL * f);
  // Below -185 the reflected value is far below the smallest subnormal.
  if (x < -185) return s > 0 ? 0.0 : -0.0;
  return static_cast<double>(kPiL / (s * gamma_ld(1.0L - x)));
}

double stirling(double x) {
  if (std::isnan(x) || x == -kInf) return kNaN;
  if (x == kInf || x >= 709.782712893384 || x == 0) return kInf;
  if (x < 0) return kNaN;
  double w = 1.0 / x;
  w = 1.0 + w * horner(kStir, w);
  double y = std::exp(x);
  if (x > 143.01608) {
    const double v = std::pow(x, 0.5 * x - 0.25);  // keeps the power finite
    y = v * (v / y);
  } else {
    y = std::pow(x, x - 0.5) / y;
  }
  return 2.5066282746310007 * y * w;
}

double digamma(double x) {
  if (std::isnan(x) || x == -kInf) return kNaN;
  if (x == kInf) return kInf;
  if (x <= 0 && x == std::floor(x)) return kNaN;
  if (x > 0) return static_cast<double>(digamma_positive(x));
  // psi(x) = psi(1 - x) - pi / tan(pi x), and tan has period 1.
  bool odd = false;
  const long double f = reduce_half(x, &odd);
  return static_cast<double>(digamma_positive(1.0L - x) - kPiL / std::tan(kPiL * f));
}

double beta(double a, double b) {
  if (std::isnan(a) || std::isnan(b) || a < 0 || b < 0) return kNaN;
  if (a == 0 || b == 0) return kInf;
  if (std::isinf(a) || std::isinf(b)) return 0.0;
  if (a + b < 1700) return static_cast<double>(gamma_ld(a) * (gamma_ld(b) / gamma_ld(static_cast<long double>(a) + b)));
  return static_cast<double>(std::exp(ln_beta_ld(a, b)));
}

}  // namespace jq::special
