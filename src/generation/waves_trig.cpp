#include "generation/waves_trig.hpp"

#include <cmath>

namespace jq::gen {
namespace {

// An unevaluated sum hi + lo with |lo| at most half an ulp of hi.
struct DD {
  double hi, lo;
};

DD quick_two_sum(double a, double b) {
  const double s = a + b;
  return {s, b - (s - a)};
}

DD two_sum(double a, double b) {
  const double s = a + b;
  const double bb = s - a;
  return {s, (a - (s - bb)) + (b - bb)};
}

// Dekker's exact product, without relying on a fused multiply-add.
DD two_prod(double a, double b) {
  constexpr double split = 134217729.0;  // 2^27 + 1
  const double p = a * b;
  double t = split * a;
  const double ah = t - (t - a), al = a - ah;
  t = split * b;
  const double bh = t - (t - b), bl = b - bh;
  return {p, ((ah * bh - p) + ah * bl + al * bh) + al * bl};
}

DD add(DD a, DD b) {
  DD s = two_sum(a.hi, b.hi);
  const DD t = two_sum(a.lo, b.lo);
  s = quick_two_sum(s.hi, s.lo + t.hi);
  return quick_two_sum(s.hi, s.lo + t.lo);
}

DD mul(DD a, DD b) {
  const DD p = two_prod(a.hi, b.hi);
  return quick_two_sum(p.hi, p.lo + (a.hi * b.lo + a.lo * b.hi));
}

DD neg(DD a) { return {-a.hi, -a.lo}; }

// pi/2 in four parts, and 2/pi.
constexpr double kHalfPi[4] = {0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54, -0x1.f1976b7ed8fbcp-110,
                               0x1.4cf98e804177dp-164};
constexpr double kTwoOverPi = 0x1.45f306dc9c883p-1;

// 1/(2k+1)! and 1/(2k)! as double-double, k = 0 ... 14.
constexpr DD kSinTerms[15] = {
    {0x1.0000000000000p+0, 0.0},
    {0x1.5555555555555p-3, 0x1.5555555555555p-57},
    {0x1.1111111111111p-7, 0x1.1111111111111p-63},
    {0x1.a01a01a01a01ap-13, 0x1.a01a01a01a01ap-73},
    {0x1.71de3a556c734p-19, -0x1.c154f8ddc6c00p-73},
    {0x1.ae64567f544e4p-26, -0x1.c062e06d1f209p-80},
    {0x1.6124613a86d09p-33, 0x1.f28e0cc748ebep-87},
    {0x1.ae7f3e733b81fp-41, 0x1.1d8656b0ee8cbp-97},
    {0x1.952c77030ad4ap-49, 0x1.ac981465ddc6cp-103},
    {0x1.2f49b46814157p-57, 0x1.2650f61dbdcb4p-112},
    {0x1.71b8ef6dcf572p-66, -0x1.d043ae40c4647p-120},
    {0x1.761b41316381ap-75, -0x1.3423c7d91404fp-130},
    {0x1.3f3ccdd165fa9p-84, -0x1.58ddadf344487p-139},
    {0x1.d1ab1c2dccea3p-94, 0x1.054d0c78aea14p-149},
    {0x1.259f98b4358adp-103, 0x1.eaf8c39dd9bc5p-157},
};
constexpr DD kCosTerms[15] = {
    {0x1.0000000000000p+0, 0.0},
    {0x1.0000000000000p-1, 0.0},
    {0x1.5555555555555p-5, 0x1.5555555555555p-59},
    {0x1.6c16c16c16c17p-10, -0x1.f49f49f49f49fp-65},
    {0x1.a01a01a01a01ap-16, 0x1.a01a01a01a01ap-76},
    {0x1.27e4fb7789f5cp-22, 0x1.cbbc05b4fa99ap-76},
    {0x1.1eed8eff8d898p-29, -0x1.2aec959e14c06p-83},
    {0x1.93974a8c07c9dp-37, 0x1.05d6f8a2efd1fp-92},
    {0x1.ae7f3e733b81fp-45, 0x1.1d8656b0ee8cbp-101},
    {0x1.6827863b97d97p-53, 0x1.eec01221a8b0bp-107},
    {0x1.e542ba4020225p-62, 0x1.ea72b4afe3c2fp-120},
    {0x1.0ce396db7f853p-70, -0x1.aebcdbd20331cp-124},
    {0x1.f2cf01972f578p-80, -0x1.9ada5fcc1ab14p-135},
    {0x1.88e85fc6a4e5ap-89, -0x1.71c37ebd16540p-143},
    {0x1.0a18a2635085dp-98, 0x1.b9e2e28e1aa54p-153},
};

// sum over k of terms[k] * (-r2)^k by Horner's rule.
DD alternating_series(const DD (&terms)[15], DD r2) {
  DD p = terms[14];
  for (int k = 13; k >= 0; --k) p = add(terms[k], neg(mul(r2, p)));
  return p;
}

// x = q * pi/2 + r with |r| about pi/4 at most; returns q mod 4.
int reduce(double x, DD* r) {
  constexpr double shifter = 0x1.8p52;  // adding and subtracting it rounds to an integer
  const double q = (x * kTwoOverPi + shifter) - shifter;
  DD s{x, 0.0};
  for (int i = 0; i < 3; ++i) s = add(s, neg(two_prod(q, kHalfPi[i])));
  *r = add(s, DD{-(q * kHalfPi[3]), 0.0});
  return static_cast<int>(std::fmod(q, 4.0) + 4.0) % 4;
}

double sin_reduced(DD r) { return mul(r, alternating_series(kSinTerms, mul(r, r))).hi; }
double cos_reduced(DD r) { return alternating_series(kCosTerms, mul(r, r)).hi; }

constexpr double kLimit = 1073741824.0;  // 2^30

}  // namespace

double sine(double x) {
  if (!(std::fabs(x) < kLimit)) return std::isfinite(x) ? std::sin(x) : x - x;
  DD r;
  switch (reduce(x, &r)) {
    case 0: return sin_reduced(r);
    case 1: return cos_reduced(r);
    case 2: return -sin_reduced(r);
    default: return -cos_reduced(r);
  }
}

double cosine(double x) {
  if (!(std::fabs(x) < kLimit)) return std::isfinite(x) ? std::cos(x) : x - x;
  DD r;
  switch (reduce(x, &r)) {
    case 0: return cos_reduced(r);
    case 1: return -sin_reduced(r);
    case 2: return -cos_reduced(r);
    default: return sin_reduced(r);
  }
}

}  // namespace jq::gen
