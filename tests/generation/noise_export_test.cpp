// Noise exports: checks and emptied outputs, untouched state on failure,
// the restart rules, and the statistics of each distribution.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <map>
#include <vector>

#include "jqanlys.h"
#include "jqrt.hpp"

namespace {

bool same(const JQRandomState& a, const JQRandomState& b) { return a.s1 == b.s1 && a.s2 == b.s2 && a.s3 == b.s3; }

struct Moments {
  double mean = 0, var = 0;
};
template <class T> Moments moments(const jqrt::Array<T>& y) {
  Moments m;
  const int n = y.size();
  for (int i = 0; i < n; ++i) m.mean += y[i];
  m.mean /= n;
  for (int i = 0; i < n; ++i) m.var += (y[i] - m.mean) * (y[i] - m.mean);
  m.var /= n - 1;
  return m;
}

constexpr int32_t kDraws = 1000000;

}  // namespace

TEST(NoiseFailures, WhiteAndGaussReportInTheErrorParameter) {
  const JQRandomState start{11, 22, 33};
  JQRandomState st = start;
  JQGaussSpare spare{1, 0.25};
  jqrt::Array<double> y(5);
  int32_t n = 0, seed = 3, err = 0;
  double amp = 1;
  EXPECT_EQ(white(y.h(), &n, &amp, &seed, &err, &st), 0);
  EXPECT_EQ(err, -20003);
  EXPECT_EQ(y.size(), 0);
  n = -3;
  err = 0;
  EXPECT_EQ(Gauss(y.h(), &n, &amp, &seed, &err, &st, &spare), 0);
  EXPECT_EQ(err, -20003);
  n = 4;
  for (int which = 0; which < 2; ++which) {
    jqrt::Array<double> z(3);
    jqrt::FailResize fail(1);
    err = 0;
    const int32_t r = which == 0 ? white(z.h(), &n, &amp, &seed, &err, &st) : Gauss(z.h(), &n, &amp, &seed, &err, &st, &spare);
    EXPECT_NE(r, 0);  // the host's own status
    EXPECT_EQ(err, -20001);
    EXPECT_EQ(z.size(), 0);
  }
  EXPECT_TRUE(same(st, start));
  EXPECT_EQ(spare.flag, 1);
  EXPECT_EQ(spare.spare, 0.25);
  // A later success clears a stale error.
  err = 7;
  EXPECT_EQ(white(y.h(), &n, &amp, &seed, &err, &st), 0);
  EXPECT_EQ(err, 0);
  EXPECT_EQ(y.size(), 4);
}

TEST(NoiseFailures, ParameterChecksComeFirstAndEmptyTheOutput) {
  const JQRandomState start{11, 22, 33};
  JQRandomState st = start;
  JQBinomialCache cache{};
  auto dbl = [] { return jqrt::Array<double>(3); };
  {
    auto y = dbl();
    EXPECT_EQ(GammaNoiseH(y.h(), 0, 0, 1, &st), -20061);  // order before count
    EXPECT_EQ(y.size(), 0);
    y = dbl();
    EXPECT_EQ(GammaNoiseH(y.h(), 0, 2, 1, &st), -20003);
    EXPECT_EQ(y.size(), 0);
  }
  for (double mean : {-1.0, std::nan(""), HUGE_VAL}) {
    auto y = dbl();
    EXPECT_EQ(PoissonNoiseH(y.h(), 5, mean, 1, &st), -20061) << mean;
    EXPECT_EQ(y.size(), 0);
  }
  for (auto [trials, p] : {std::pair{-1, 0.5}, {5, -0.1}, {5, 1.1}, {5, std::nan("")}}) {
    jqrt::Array<uint32_t> y(3);
    EXPECT_EQ(BinomialNoiseH(y.h(), 5, trials, p, 1, &st, &cache), -20061);
    EXPECT_EQ(y.size(), 0);
  }
  jqrt::Array<uint32_t> u(3);
  EXPECT_EQ(BinomialNoiseH(u.h(), 0, 5, 0.5, 1, &st, &cache), -20003);
  {
    jqrt::FailResize fail(1);
    auto y = dbl();
    EXPECT_EQ(PoissonNoiseH(y.h(), 5, 2.0, 1, &st), -20001);
    EXPECT_EQ(y.size(), 0);
  }
  EXPECT_TRUE(same(st, start));
  const JQBinomialCache zero{};
  EXPECT_EQ(std::memcmp(&cache, &zero, sizeof cache), 0);
}

TEST(NoiseFailures, RifflesEmptyBothHandles) {
  const JQRandomState start{11, 22, 33};
  JQRandomState st = start;
  jqrt::Array<double> empty;
  jqrt::Array<int32_t> idx(4);
  EXPECT_EQ(RiffleArrayDBL2012_head(empty.h(), idx.h(), 1, &st, 1), -20003);
  EXPECT_EQ(idx.size(), 0);
  jqrt::Array<int32_t> out(4);
  EXPECT_EQ(RiffleIntNum2012_head(out.h(), 0, 1, &st, 1), -20003);
  EXPECT_EQ(out.size(), 0);
  {
    jqrt::Array<double> d{1, 2, 3};
    jqrt::Array<int32_t> ix(2);
    jqrt::FailResize fail(1);
    EXPECT_EQ(RiffleArrayDBL_head(d.h(), ix.h(), 1, &st), -20001);
    EXPECT_EQ(d.size(), 0);
    EXPECT_EQ(ix.size(), 0);
  }
  {
    jqrt::Array<std::complex<double>> d(3);
    d.set_dims(-2);
    jqrt::Array<int32_t> ix(2);
    EXPECT_EQ(RiffleArrayCDB_head(d.h(), ix.h(), 1, &st), -20003);
    EXPECT_EQ(d.size(), 0);
    EXPECT_EQ(ix.size(), 0);
  }
  EXPECT_TRUE(same(st, start));
}

TEST(NoiseRestart, SeedZeroContinuesLikeANegativeSeed) {
  JQRandomState a{11, 22, 33}, b = a;
  jqrt::Array<double> ya, yb;
  int32_t n = 6, zero = 0, neg = -9, err = 0;
  double amp = 1;
  white(ya.h(), &n, &amp, &zero, &err, &a);
  white(yb.h(), &n, &amp, &neg, &err, &b);
  EXPECT_EQ(ya.values(), yb.values());
  // A positive seed restarts: two calls with one seed repeat themselves.
  int32_t seed = 5;
  white(ya.h(), &n, &amp, &seed, &err, &a);
  white(yb.h(), &n, &amp, &seed, &err, &a);
  EXPECT_EQ(ya.values(), yb.values());
  for (auto* f : {&GammaNoiseH}) {
    JQRandomState s{1, 1, 1};
    jqrt::Array<double> g1, g2;
    f(g1.h(), 4, 2, 8, &s);
    f(g2.h(), 4, 2, 8, &s);
    EXPECT_EQ(g1.values(), g2.values());
  }
}

TEST(NoiseRestart, GaussSplitsOnePairOverTwoCalls) {
  JQRandomState a{}, b{};
  JQGaussSpare sa{0, 0}, sb{0, 0};
  jqrt::Array<double> pair, first, second;
  int32_t two = 2, one = 1, seed = 17, neg = -1, zero = 0, err = 0;
  double sd = 1, sd3 = 3;
  Gauss(pair.h(), &two, &sd, &seed, &err, &a, &sa);
  Gauss(first.h(), &one, &sd, &seed, &err, &b, &sb);
  EXPECT_EQ(sb.flag, 1);
  Gauss(second.h(), &one, &sd3, &neg, &err, &b, &sb);
  EXPECT_EQ(first[0], pair[0]);
  EXPECT_EQ(second[0], 3 * pair[1]);
  EXPECT_EQ(sb.flag, 0);
  // Seed 0 keeps the spare; a positive seed forgets it.
  Gauss(first.h(), &one, &sd, &seed, &err, &b, &sb);
  Gauss(second.h(), &one, &sd, &zero, &err, &b, &sb);
  EXPECT_EQ(second[0], pair[1]);
  Gauss(first.h(), &one, &sd, &seed, &err, &b, &sb);
  Gauss(second.h(), &one, &sd, &seed, &err, &b, &sb);
  EXPECT_EQ(second[0], pair[0]);
}

TEST(NoiseRestart, AZeroStateIsAFixedPointAndNeverHangs) {
  JQRandomState st{0, 0, 0};
  JQGaussSpare spare{0, 0};
  jqrt::Array<double> y;
  int32_t n = 3, neg = -1, err = 0;
  double amp = 2;
  white(y.h(), &n, &amp, &neg, &err, &st);
  EXPECT_EQ(y.values(), (std::vector<double>{-2, -2, -2}));
  Gauss(y.h(), &n, &amp, &neg, &err, &st, &spare);
  EXPECT_EQ(y.values(), (std::vector<double>{0, 0, 0}));
  EXPECT_EQ(GammaNoiseH(y.h(), 3, 9, -1, &st), 0);
  EXPECT_EQ(y.values(), (std::vector<double>{8, 8, 8}));
  EXPECT_EQ(PoissonNoiseH(y.h(), 2, 30.0, -1, &st), 0);
  // Words that vanish after one step land there too.
  JQRandomState s2{30269, 0, 0};
  EXPECT_EQ(GammaNoiseH(y.h(), 2, 7, -1, &s2), 0);
  EXPECT_TRUE(same(s2, JQRandomState{0, 0, 0}));
}

TEST(NoiseEdges, DegenerateParameters) {
  JQRandomState st{};
  JQBinomialCache cache{};
  jqrt::Array<double> y;
  EXPECT_EQ(PoissonNoiseH(y.h(), 5, 0.0, 3, &st), 0);
  EXPECT_EQ(y.values(), std::vector<double>(5, 0.0));
  jqrt::Array<uint32_t> b;
  for (int32_t trials : {10, 100}) {
    EXPECT_EQ(BinomialNoiseH(b.h(), 5, trials, 0.0, 3, &st, &cache), 0);
    EXPECT_EQ(b.values(), std::vector<uint32_t>(5, 0));
    EXPECT_EQ(BinomialNoiseH(b.h(), 5, trials, 1.0, 3, &st, &cache), 0);
    EXPECT_EQ(b.values(), std::vector<uint32_t>(5, trials));
  }
  EXPECT_EQ(BinomialNoiseH(b.h(), 5, 0, 0.5, 3, &st, &cache), 0);
  EXPECT_EQ(b.values(), std::vector<uint32_t>(5, 0));
  // Riffling one element: the unbiased method draws nothing, method 0 one uniform.
  JQRandomState s0{5, 6, 7}, s1{5, 6, 7};
  jqrt::Array<int32_t> ix;
  jqrt::Array<double> d{4.25};
  EXPECT_EQ(RiffleArrayDBL2012_head(d.h(), ix.h(), -1, &s1, 1), 0);
  EXPECT_TRUE(same(s1, JQRandomState{5, 6, 7}));
  EXPECT_EQ(RiffleArrayDBL2012_head(d.h(), ix.h(), -1, &s0, 0), 0);
  EXPECT_FALSE(same(s0, JQRandomState{5, 6, 7}));
  EXPECT_EQ(d[0], 4.25);
  EXPECT_EQ(ix.values(), std::vector<int32_t>{0});
}

TEST(NoiseStatistics, MeanAndVarianceOfEveryDistribution) {
  JQRandomState st{};
  jqrt::Array<double> y;
  int32_t n = kDraws, seed = 2024, err = 0;
  double amp = 3, sd = 2;
  white(y.h(), &n, &amp, &seed, &err, &st);
  Moments m = moments(y);
  EXPECT_NEAR(m.mean, 0, 0.005);
  EXPECT_NEAR(m.var / 3.0, 1, 0.005);  // amplitude^2 / 3
  JQGaussSpare spare{};
  Gauss(y.h(), &n, &sd, &seed, &err, &st, &spare);
  m = moments(y);
  EXPECT_NEAR(m.mean, 0, 0.01);
  EXPECT_NEAR(m.var / 4.0, 1, 0.006);
  for (int32_t order : {1, 5, 6, 20}) {
    GammaNoiseH(y.h(), kDraws / 4, order, 77, &st);
    m = moments(y);
    EXPECT_NEAR(m.mean / order, 1, 0.006) << order;
    EXPECT_NEAR(m.var / order, 1, 0.015) << order;
  }
  for (double mean : {0.3, 11.999, 12.0, 250.0}) {
    PoissonNoiseH(y.h(), kDraws / 4, mean, 91, &st);
    m = moments(y);
    EXPECT_NEAR(m.mean / mean, 1, 0.008) << mean;
    EXPECT_NEAR(m.var / mean, 1, 0.015) << mean;
  }
  JQBinomialCache cache{};
  jqrt::Array<uint32_t> b;
  for (auto [trials, p] : {std::pair{10, 0.7}, {24, 0.5}, {1000, 0.0005}, {100, 0.3}, {400, 0.95}}) {
    BinomialNoiseH(b.h(), kDraws / 4, trials, p, 5, &st, &cache);
    m = moments(b);
    EXPECT_NEAR(m.mean / (trials * p), 1, 0.01) << trials << " " << p;
    EXPECT_NEAR(m.var / (trials * p * (1 - p)), 1, 0.02) << trials << " " << p;
  }
}

// Over three elements the unbiased shuffle gives each order 1/6; the early
// shuffle's 27 equally likely swap sequences give 4, 5, 5, 5, 4, 4 of 27.
TEST(NoiseStatistics, RiffleOrdersFollowEachMethodsDistribution) {
  for (int32_t method : {0, 1}) {
    JQRandomState st{};
    std::map<std::array<int32_t, 3>, int> counts;
    jqrt::Array<int32_t> ix;
    const int trials = 54000;
    for (int t = 0; t < trials; ++t) {
      RiffleIntNum2012_head(ix.h(), 3, t == 0 ? 8 : -1, &st, method);
      counts[{ix[0], ix[1], ix[2]}]++;
    }
    ASSERT_EQ(counts.size(), 6u);
    const std::map<std::array<int32_t, 3>, int> biased = {{{0, 1, 2}, 4}, {{0, 2, 1}, 5}, {{1, 0, 2}, 5},
                                                          {{1, 2, 0}, 5}, {{2, 0, 1}, 4}, {{2, 1, 0}, 4}};
    for (const auto& [order, c] : counts) {
      const double expected = method == 0 ? trials * biased.at(order) / 27.0 : trials / 6.0;
      EXPECT_NEAR(c, expected, 5 * std::sqrt(expected)) << method << ": " << order[0] << order[1] << order[2];
    }
  }
}
