// The special-function exports at their branch points and domain edges.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "jqanlys.h"
#include "support/checks.hpp"

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
using jqtest::nan;

template <class F, class... A> double call(F f, A... a) {
  double r = -12345;
  f(a..., &r);
  return r;
}

}  // namespace

TEST(Factorial, TableThenFallingProductThenGamma) {
  EXPECT_EQ(call(JQ_Fact, 0), 1.0);
  EXPECT_EQ(call(JQ_Fact, 20), 2432902008176640000.0);
  EXPECT_EQ(call(JQ_Fact, 33), 8.683317618811886e36);
  EXPECT_EQ(call(JQ_Fact, 34), 34 * 8.683317618811886e36);
  EXPECT_EQ(call(JQ_Fact, 50), 3.041409320171338e64);  // 33! times 50, 49, ..., 34 in that order
  EXPECT_NEAR(call(JQ_Fact, 51) / 1.5511187532873822e66, 1.0, 4e-16);
  EXPECT_NEAR(call(JQ_Fact, 170) / 7.257415615307999e306, 1.0, 4e-16);
  EXPECT_EQ(call(JQ_Fact, 171), kInf);
  EXPECT_TRUE(std::isnan(call(JQ_Fact, -1)));
  EXPECT_TRUE(std::isnan(call(JQ_Fact, INT32_MIN)));
  EXPECT_EQ(call(JQ_Fact, INT32_MAX), kInf);
}

TEST(Factorial, LogarithmAndItsExactOne) {
  EXPECT_EQ(call(JQ_LnFact, 1), 0.0);
  EXPECT_EQ(call(JQ_LnFact, 0), 0.0);
  EXPECT_NEAR(call(JQ_LnFact, 10), std::log(3628800.0), 1e-15);
  EXPECT_NEAR(call(JQ_LnFact, 1000000) / 12815518.384658169, 1.0, 1e-15);
  EXPECT_TRUE(std::isnan(call(JQ_LnFact, -1)));
}

TEST(Gamma, PolesOverflowAndNonFinite) {
  EXPECT_EQ(call(JQ_Gamma, 0.0), kInf);
  EXPECT_EQ(call(JQ_Gamma, 171.7), kInf);
  EXPECT_EQ(call(JQ_Gamma, 1e308), kInf);
  EXPECT_EQ(call(JQ_Gamma, kInf), kInf);
  for (double x : {-1.0, -2.0, -170.0, -1e300, -kInf, nan()}) EXPECT_TRUE(std::isnan(call(JQ_Gamma, x))) << x;
  EXPECT_EQ(call(JQ_Gamma_85, 5.0), 24.0);
  // Far below zero the reflected value underflows to a zero of the right sign.
  EXPECT_EQ(call(JQ_Gamma, -200.5), 0.0);
  EXPECT_TRUE(std::signbit(call(JQ_Gamma, -200.5)));
  EXPECT_FALSE(std::signbit(call(JQ_Gamma, -201.5)));
}

TEST(LnGamma, NoReflectionAndTheSwitchAt33) {
  for (double x : {-0.5, -1.0, -kInf, nan()}) EXPECT_TRUE(std::isnan(call(JQ_LnGamma, x))) << x;
  EXPECT_EQ(call(JQ_LnGamma, 0.0), kInf);
  EXPECT_EQ(call(JQ_LnGamma, kInf), kInf);
  EXPECT_EQ(call(JQ_LnGamma, 1.0), 0.0);
  EXPECT_EQ(call(JQ_LnGamma, 2.0), 0.0);
  EXPECT_NEAR(call(JQ_LnGamma, 1e300) / 6.8977552789821374e302, 1.0, 4e-16);
}

TEST(Stirling, OverflowSplitPowerAndDomain) {
  EXPECT_EQ(call(JQ_Stirling, 0.0), kInf);
  EXPECT_EQ(call(JQ_Stirling, 709.782712893384), kInf);
  EXPECT_EQ(call(JQ_Stirling, kInf), kInf);
  for (double x : {-1.0, -kInf, nan()}) EXPECT_TRUE(std::isnan(call(JQ_Stirling, x)));
  // Above 143.01608 the power is split; either side matches Gamma closely.
  for (double x : {40.0, 143.0, 143.5, 170.5}) {
    EXPECT_NEAR(call(JQ_Stirling, x) / call(JQ_Gamma, x), 1.0, 2e-14) << x;
  }
  EXPECT_EQ(call(JQ_Stirling, 200.0), kInf);  // finite power halves, product overflows
}

TEST(Digamma, Poles) {
  for (double x : {0.0, -1.0, -3.0, -kInf, nan()}) EXPECT_TRUE(std::isnan(call(JQ_Psi, x))) << x;
  EXPECT_EQ(call(JQ_Psi, kInf), kInf);
}

TEST(IncompleteGamma, LimitsAndDomain) {
  EXPECT_EQ(call(JQ_GammaC, 2.0, 0.0), 0.0);
  EXPECT_EQ(call(JQ_GammaC, 2.0, kInf), 1.0);
  EXPECT_EQ(call(JQ_GammaC, 0.0, 1.0), 1.0);
  EXPECT_NEAR(call(JQ_GammaC, 1.0, 2.0), -std::expm1(-2.0), 2e-16);
  for (auto ax : {std::pair{-1.0, 1.0}, {1.0, -1.0}, {0.0, 0.0}, {nan(), 1.0}, {1.0, nan()}, {kInf, 1.0}}) {
    EXPECT_TRUE(std::isnan(call(JQ_GammaC, ax.first, ax.second)));
  }
}

TEST(Beta, SelectorsChooseCompleteOrIncomplete) {
  EXPECT_NEAR(call(JQ_Beta, 2.0, 3.0, nan()), 1.0 / 12, 1e-17);
  EXPECT_NEAR(call(JQ_Beta_85, 2.0, 3.0, 0.25, 1), 1.0 / 12, 1e-17);
  // I(x; 2, 3) = 6x^2 - 8x^3 + 3x^4.
  const double x = 0.25, i = 6 * x * x - 8 * x * x * x + 3 * x * x * x * x;
  EXPECT_NEAR(call(JQ_Beta, 2.0, 3.0, x), i, 1e-16);
  EXPECT_NEAR(call(JQ_Beta_85, 2.0, 3.0, x, 0), i, 1e-16);
  EXPECT_NEAR(call(JQ_Beta_85, 2.0, 3.0, x, 2), i, 1e-16);
  EXPECT_EQ(call(JQ_Beta, 0.0, 3.0, nan()), kInf);
  EXPECT_TRUE(std::isnan(call(JQ_Beta, -1.0, 3.0, nan())));
}

TEST(Beta, IncompleteDomainAndTheClosedFormAtAEqualsOne) {
  for (double x : {-0.1, 1.1, nan(), kInf}) EXPECT_TRUE(std::isnan(call(JQ_Beta_85, 2.0, 3.0, x, 0))) << x;
  EXPECT_TRUE(std::isnan(call(JQ_Beta_85, -2.0, 3.0, 0.5, 0)));
  EXPECT_TRUE(std::isnan(call(JQ_Beta_85, 2.0, kInf, 0.5, 0)));
  EXPECT_EQ(call(JQ_Beta_85, 2.0, 3.0, 0.0, 0), 0.0);
  EXPECT_EQ(call(JQ_Beta_85, 2.0, 3.0, 1.0, 0), 1.0);
  // a = 1 is 1 - (1 - x)^b as written, rounding included.
  for (double b : {0.05, 0.5, 7.0}) {
    for (double x : {1e-12, 0.3, 0.9}) EXPECT_EQ(call(JQ_Beta_85, 1.0, b, x, 0), 1 - std::pow(1 - x, b));
  }
}

TEST(ErrorFunction, BranchesAndLimits) {
  EXPECT_EQ(call(JQ_Erf, kInf), 1.0);
  EXPECT_EQ(call(JQ_Erf, -kInf), -1.0);
  EXPECT_EQ(call(JQ_Erf, 0.0), 0.0);
  EXPECT_TRUE(std::isnan(call(JQ_Erf, nan())));
  // 1 takes the rational form, the next double takes 1 - erfc; both are close.
  EXPECT_NEAR(call(JQ_Erf, 1.0), 0.84270079294971487, 2e-16);
  EXPECT_NEAR(call(JQ_Erf, std::nextafter(1.0, 2.0)), 0.84270079294971510, 2e-16);
  EXPECT_EQ(call(JQ_ErfC, 27.0), 0.0);
  EXPECT_EQ(call(JQ_ErfC, -27.0), 2.0);
  EXPECT_EQ(call(JQ_ErfC, kInf), 0.0);
  EXPECT_EQ(call(JQ_ErfC, -kInf), 2.0);
  EXPECT_TRUE(std::isnan(call(JQ_ErfC, nan())));
  EXPECT_NEAR(call(JQ_ErfC, -0.5) + call(JQ_ErfC, 0.5), 2.0, 4e-16);
}

TEST(Dawson, OddAndAsymptotic) {
  EXPECT_EQ(call(JQ_Dawson, 0.0), 0.0);
  EXPECT_EQ(call(JQ_Dawson, -3.0), -call(JQ_Dawson, 3.0));
  EXPECT_EQ(call(JQ_Dawson, 1e300), 0.5e-300);
  EXPECT_EQ(call(JQ_Dawson, kInf), 0.0);
  EXPECT_TRUE(std::isnan(call(JQ_Dawson, nan())));
}

TEST(Gauss, TheTwoVersionsDifferOnlyInTheSignOfSigma) {
  EXPECT_EQ(call(JQ_Gauss, 3.0, 2.0, 3.0, 0.5), 2.0);
  EXPECT_NEAR(call(JQ_Gauss, 4.0, 2.0, 3.0, 0.5), 2 * std::exp(-2.0), 1e-16);
  EXPECT_EQ(call(JQ_Gauss_2011, 4.0, 2.0, 3.0, -0.5), call(JQ_Gauss, 4.0, 2.0, 3.0, 0.5));
  EXPECT_TRUE(std::isnan(call(JQ_Gauss, 4.0, 2.0, 3.0, -0.5)));
  EXPECT_TRUE(std::isnan(call(JQ_Gauss, 4.0, 2.0, 3.0, 0.0)));
  EXPECT_TRUE(std::isnan(call(JQ_Gauss_2011, 4.0, 2.0, 3.0, 0.0)));
  EXPECT_TRUE(std::isnan(call(JQ_Gauss, nan(), 2.0, 3.0, 1.0)));
  EXPECT_EQ(call(JQ_Gauss, kInf, 2.0, 3.0, 1.0), 0.0);
}
