// Error function, its complement, Dawson's integral and the Gaussian.
#include <cmath>
#include <limits>

#include "special/gamma.hpp"
#include "special/poly.hpp"

namespace jq::special {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

constexpr double kErfT[] = {9.604973739870516, 90.02601972038427, 2232.005345946843, 7003.325141128051,
                            55592.30130103949};
constexpr double kErfU[] = {1.0, 33.56171416475031, 521.3579497801527, 4594.323829709801, 22629.000061389095,
                            49267.39426086359};
constexpr double kErfcP[] = {2.461949814735305e-10, 0.5641895648310689, 7.463210564422699,
                             48.63719709856814,     196.5208329560771,  526.4451949954773,
                             934.5285271719576,     1027.5518868951572, 557.5353353693994};
constexpr double kErfcQ[] = {1.0,
                             13.228195115474499,
                             86.70721408859897,
                             354.9377788878199,
                             975.7085017432055,
                             1823.9091668790973,
                             2246.3376081871097,
                             1656.6630919416134,
                             557.5353408177277};
constexpr double kErfcR[] = {0.5641895835477551, 1.275366707599781,  5.019050422511805,
                             6.160210979930536,  7.4097426995044895, 2.9788666537210022};
constexpr double kErfcS[] = {1.0,
                             2.2605286322011726,
                             9.396035249380015,
                             12.048953980809666,
                             17.08144507475659,
                             9.608968090632859,
                             3.369076451000815};

}  // namespace

double erf(double x) {
  if (std::isnan(x)) return kNaN;
  if (std::isinf(x)) return x > 0 ? 1.0 : -1.0;
  if (std::fabs(x) > 1.0) return 1.0 - erfc(x);
  const double z = x * x;
  return x * horner(kErfT, z) / horner(kErfU, z);
}

double erfc(double x) {
  if (std::isnan(x)) return kNaN;
  if (std::isinf(x)) return x > 0 ? 0.0 : 2.0;
  const double a = std::fabs(x);
  if (a < 1.0) return 1.0 - erf(x);
  const double z = -x * x;
  if (z < -709.782712893384) return x > 0 ? 0.0 : 2.0;  // e^-x^2 underflows
  const double e = std::exp(z);
  const double y = a < 8.0 ? e * horner(kErfcP, a) / horner(kErfcQ, a) : e * horner(kErfcR, a) / horner(kErfcS, a);
  return x < 0 ? 2.0 - y : y;
}

// F(x) = e^-x^2 * sum x^(2n+1) / (n! (2n+1)) below 8: every term is positive,
// so nothing cancels. Above, the asymptotic series
// 1/(2x) * sum (2k-1)!! / (2x^2)^k has shrunk below double precision.
double dawson(double x) {
  if (std::isnan(x)) return kNaN;
  if (std::isinf(x)) return x > 0 ? 0.0 : -0.0;
  const double a = std::fabs(x);
  long double r;
  if (a < 8.0) {
    const long double la = a, z = la * la;
    long double power = la, sum = la;  // power = x^(2n+1) / n!
    for (int n = 1; n < 400; ++n) {
      power *= z / n;
      const long double term = power / (2 * n + 1);
      sum += term;
      if (term < sum * 1e-20L) break;
    }
    r = std::exp(-z) * sum;
  } else {
    const long double la = a, w = 1 / (2 * la * la);
    long double term = 1, sum = 1;
    for (int k = 1; k < 200; ++k) {
      const long double next = term * (2 * k - 1) * w;
      if (next > term) break;  // the series starts to diverge
      term = next;
      sum += term;
      if (term < sum * 1e-20L) break;
    }
    r = sum / (2 * la);
  }
  return x < 0 ? -static_cast<double>(r) : static_cast<double>(r);
}

double gauss(double x, double amplitude, double centre, double sigma) {
  if (std::isnan(x) || std::isnan(amplitude) || std::isnan(centre) || !(sigma > 0)) return kNaN;
  if (std::isinf(sigma)) return amplitude;
  const long double t = (static_cast<long double>(x) - centre) / sigma;
  if (std::isinf(t)) return std::isinf(amplitude) ? kNaN : amplitude * 0.0;
  return static_cast<double>(amplitude * std::exp(-0.5L * t * t));
}

}  // namespace jq::special
