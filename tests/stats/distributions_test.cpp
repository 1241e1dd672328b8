// Distribution functions and inverses against scipy (tools/gen_stats_oracle.py),
// and the argument checks of every export.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "jqanlys.h"
#include "support/checks.hpp"

namespace {

#include "oracle.inc"

using jqtest::nan;
constexpr double kInf = INFINITY;

// Relative error, or absolute below the smallest normal.
double rel(double got, double want) {
  return got == want ? 0 : std::fabs(got - want) / std::max(std::fabs(want), 2.2250738585072014e-308);
}

template <class F> std::pair<double, int32_t> call(F f) {
  double r = 0;
  int32_t err = 9;
  EXPECT_EQ(f(&r, &err), 0);
  return {r, err};
}

// The bisections return the lower end of a bracket no wider than 1e-4 that
// holds the exact quantile (up to the CDF's last bits).
void expect_lower_end(double got, double quantile) {
  const double slack = 1e-9 * std::max(1.0, std::fabs(quantile));
  EXPECT_LE(got, quantile + slack);
  EXPECT_GE(got, quantile - 1e-4 - slack);
}

}  // namespace

TEST(Distributions, CdfsMatchTheirReferences) {
  // Largest relative error against the exact values, and against scipy
  // where scipy itself is right to 1e-13 (it is not everywhere in the tails).
  double worst = 0, worst_scipy = 0;
  auto check = [&](double got, double exact, double scipy) {
    worst = std::max(worst, rel(got, exact));
    if (rel(scipy, exact) < 1e-13) worst_scipy = std::max(worst_scipy, rel(got, scipy));
    return rel(got, exact);
  };
  for (const TCdfPoint& c : kTCdf) {
    const auto [p, err] = call([&](double* r, int32_t* e) { return TDist_head(&c.t, &c.nu, r, e); });
    EXPECT_EQ(err, 0);
    EXPECT_LE(check(p, c.p, c.scipy), 1e-14) << "t " << c.t << " nu " << c.nu;
  }
  for (const FCdfPoint& c : kFCdf) {
    const auto [p, err] = call([&](double* r, int32_t* e) { return FDist_head(&c.f, &c.nu1, &c.nu2, r, e); });
    EXPECT_LE(check(p, c.p, c.scipy), 1e-14) << "f " << c.f << " nu " << c.nu1 << ", " << c.nu2;
  }
  for (const ChiCdfPoint& c : kChiCdf) {
    const auto [p, err] = call([&](double* r, int32_t* e) { return ChiSquare_head(&c.x, &c.nu, r, e); });
    EXPECT_LE(check(p, c.p, c.scipy), 1e-14) << "x " << c.x << " nu " << c.nu;
  }
  std::printf("largest relative error: %.3g against exact values, %.3g against scipy\n", worst, worst_scipy);
  for (const NormCdfPoint& c : kNormCdf) {
    double p;
    EXPECT_EQ(NormDist_head(&c.x, &p), 0);
    EXPECT_NEAR(p, c.p, 1.5e-5) << c.x;  // the approximation's own error
  }
}

TEST(Distributions, InversesMatchScipy) {
  for (const TInvPoint& c : kTInv)
    expect_lower_end(call([&](double* r, int32_t* e) { return InvTdist_head(&c.p, &c.nu, r, e); }).first, c.t);
  for (const FInvPoint& c : kFInv)
    expect_lower_end(call([&](double* r, int32_t* e) { return InvFDist_head(&c.p, &c.nu1, &c.nu2, r, e); }).first, c.f);
  for (const ChiInvPoint& c : kChiInv)
    expect_lower_end(call([&](double* r, int32_t* e) { return InvChiSquare_head(&c.p, &c.nu, r, e); }).first, c.x);
  for (const NormInvPoint& c : kNormInv) {
    const auto [x, err] = call([&](double* r, int32_t* e) { return InvNdist_head(&c.p, r, e); });
    EXPECT_NEAR(x, c.x, 4.5e-4) << c.p;
  }
}

TEST(Distributions, DocumentedValues) {
  const double zero = 0, half = 0.5, one = 1;
  const int32_t nu0 = 0, nu3 = 3;
  double p;
  NormDist_head(&zero, &p);
  EXPECT_EQ(p, 1 - 0.3989422 * (1 / (1 + 0.33267 * 0)) * (0.4361836 - 0.1201676 + 0.937298));
  // Not exactly 0: the lower end of the last bracket.
  const double t = call([&](double* r, int32_t* e) { return InvTdist_head(&half, &nu3, r, e); }).first;
  EXPECT_LT(t, 0);
  EXPECT_GT(t, -1e-4);
  EXPECT_EQ(call([&](double* r, int32_t* e) { return ChiSquare_head(&one, &nu0, r, e); }), std::pair(1.0, 0));
  // The inverse normal: p >= 0.5 takes s - r, slightly negative at 0.5 itself,
  // and the two sides mirror each other exactly.
  const double quarter = 0.25, three_quarters = 0.75;
  const double z = call([&](double* r, int32_t* e) { return InvNdist_head(&half, r, e); }).first;
  EXPECT_LT(z, 0);
  EXPECT_GT(z, -1e-3);
  EXPECT_EQ(call([&](double* r, int32_t* e) { return InvNdist_head(&quarter, r, e); }).first,
            -call([&](double* r, int32_t* e) { return InvNdist_head(&three_quarters, r, e); }).first);
  EXPECT_EQ(call([&](double* r, int32_t* e) { return TDist_head(&zero, &nu3, r, e); }), std::pair(0.5, 0));
  EXPECT_EQ(call([&](double* r, int32_t* e) { return InvNdist_head(&zero, r, e); }), std::pair(-kInf, 0));
  EXPECT_EQ(call([&](double* r, int32_t* e) { return InvFDist_head(&one, &nu3, &nu3, r, e); }), std::pair(kInf, 0));
  EXPECT_EQ(call([&](double* r, int32_t* e) { return InvChiSquare_head(&zero, &nu3, r, e); }), std::pair(0.0, 0));
}

TEST(Distributions, BadArgumentsGiveTheirCodesAndNaN) {
  const double x = 1.5, q = nan(), p2 = 2, pneg = -1e-300, p = 0.3;
  const int32_t good = 4, zero = 0, neg = -1, min = INT32_MIN;
  using C = std::function<int32_t(double*, int32_t*)>;
  const std::vector<std::pair<C, int32_t>> cases = {
      {[&](double* r, int32_t* e) { return TDist_head(&x, &zero, r, e); }, -20052},
      {[&](double* r, int32_t* e) { return TDist_head(&q, &min, r, e); }, -20052},  // degrees first
      {[&](double* r, int32_t* e) { return TDist_head(&q, &good, r, e); }, -20104},
      {[&](double* r, int32_t* e) { return FDist_head(&x, &good, &zero, r, e); }, -20052},
      {[&](double* r, int32_t* e) { return FDist_head(&q, &good, &good, r, e); }, -20104},
      {[&](double* r, int32_t* e) { return ChiSquare_head(&x, &neg, r, e); }, -20052},
      {[&](double* r, int32_t* e) { return ChiSquare_head(&x, nullptr, r, e); }, -20052},
      {[&](double* r, int32_t* e) { return InvNdist_head(&p2, r, e); }, -20053},
      {[&](double* r, int32_t* e) { return InvNdist_head(&q, r, e); }, -20053},
      {[&](double* r, int32_t* e) { return InvTdist_head(&p2, &zero, r, e); }, -20052},  // degrees first
      {[&](double* r, int32_t* e) { return InvTdist_head(&pneg, &good, r, e); }, -20053},
      {[&](double* r, int32_t* e) { return InvFDist_head(&p, &zero, &good, r, e); }, -20052},
      {[&](double* r, int32_t* e) { return InvFDist_head(&q, &good, &good, r, e); }, -20053},
      {[&](double* r, int32_t* e) { return InvChiSquare_head(&p2, &zero, r, e); }, -20053},  // probability first
      {[&](double* r, int32_t* e) { return InvChiSquare_head(&p, &zero, r, e); }, -20052},
  };
  for (size_t i = 0; i < cases.size(); ++i) {
    const auto [r, err] = call(cases[i].first);
    EXPECT_EQ(err, cases[i].second) << "case " << i;
    EXPECT_TRUE(std::isnan(r)) << "case " << i;
  }
}
