// The generator and every noise export: sequences worked out independently
// (tools/noise_reference.py), failures that leave the state alone, the
// restart rules, and the statistics of each distribution. Integer and purely
// arithmetic results must match exactly; those that pass through log, exp or
// tan may differ by the platform's last-bit rounding of those functions.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <map>
#include <vector>

#include "frame/scratch.hpp"
#include "generation/random.hpp"
#include "jqanlys.h"
#include "jqrt.hpp"
#include "support/checks.hpp"

namespace {
#include "noise_reference.inc"

using jq::gen::RandomState;
using jqtest::reported;

template <class T, size_t N>
std::vector<T> vec(const T (&a)[N]) {
  return std::vector<T>(a, a + N);
}
std::vector<int32_t> words(const JQRandomState& s) { return {s.s1, s.s2, s.s3}; }
bool same(const JQRandomState& a, const JQRandomState& b) { return words(a) == words(b); }

void expect_close(const std::vector<double>& got, const std::vector<double>& want, double ulps) {
  ASSERT_EQ(got.size(), want.size());
  for (size_t i = 0; i < got.size(); ++i)
    EXPECT_NEAR(got[i], want[i], ulps * std::fabs(want[i]) * 2.2204460492503131e-16) << "sample " << i;
}

JQRandomState seeded(int32_t seed) {
  RandomState s{0, 0, 0};
  jq::gen::random_seed(seed, s);
  return {s.s1, s.s2, s.s3};
}

// The exports with in/out parameters, called with values; they give the reported code.
int32_t white_noise(uint8_t** y, int32_t n, double amp, int32_t seed, JQRandomState& st) {
  int32_t err = 9;
  return reported(white(y, &n, &amp, &seed, &err, &st), err);
}
int32_t gauss_noise(uint8_t** y, int32_t n, double sd, int32_t seed, JQRandomState& st, JQGaussSpare& spare) {
  int32_t err = 9;
  return reported(Gauss(y, &n, &sd, &seed, &err, &st, &spare), err);
}
int32_t period_noise(uint8_t** y, int32_t n, double amp, int32_t seed, JQRandomState& st) {
  int32_t err = 9;
  return reported(PeriodNoise(&n, &amp, &seed, y, &err, &st), err);
}

}  // namespace

TEST(Generator, SeedingUniformsAndPhaseIntegers) {
  for (const auto& row : kSeedWords) {
    RandomState st{5, 6, 7};
    jq::gen::random_seed(row[0], st);
    EXPECT_EQ((std::vector<int32_t>{st.s1, st.s2, st.s3}), (std::vector<int32_t>{row[1], row[2], row[3]}));
  }
  RandomState st{5, 6, 7};
  jq::gen::random_seed(0, st);
  EXPECT_EQ((std::vector<int32_t>{st.s1, st.s2, st.s3}), (std::vector<int32_t>{5, 6, 7})) << "seed 0 is ignored";
  // Including wrapped and negative words.
  for (auto [seed, want, state] : {std::tuple{1, vec(kUniformSeed1), vec(kUniformSeed1State)},
                                   {2147483647, vec(kUniformSeedMax), vec(kUniformSeedMaxState)},
                                   {-7, vec(kUniformSeedNeg), vec(kUniformSeedNegState)}}) {
    jq::gen::random_seed(seed, st);
    std::vector<double> got;
    for (size_t i = 0; i < want.size(); ++i) got.push_back(jq::gen::random_uniform(st));
    EXPECT_EQ(got, want) << "seed " << seed;
    EXPECT_EQ((std::vector<int32_t>{st.s1, st.s2, st.s3}), state);
    for (double u : got) EXPECT_TRUE(u >= 0 && u < 1);
  }
  // Phase integers truncate and go negative with negative words.
  for (auto [seed, want] : {std::pair{-7, vec(kPhaseSeedNeg)}, {12345, vec(kPhaseSeed12345)}}) {
    jq::gen::random_seed(seed, st);
    std::vector<int32_t> got;
    for (size_t i = 0; i < want.size(); ++i) got.push_back(jq::gen::random_phase_int(st));
    EXPECT_EQ(got, want) << "seed " << seed;
  }
}

TEST(NoiseSequences, WhiteAndGaussContinueAcrossCalls) {
  JQRandomState st{1, 2, 3};
  jqrt::Array<double> a, b;
  ASSERT_EQ(white_noise(a.h(), 16, 2.5, 777, st), 0);
  ASSERT_EQ(white_noise(b.h(), 4, 1.0, -1, st), 0);
  std::vector<double> got = a.values();
  for (double v : b.values()) got.push_back(v);
  EXPECT_EQ(got, vec(kWhite777));
  EXPECT_EQ(words(st), vec(kWhite777State));

  st = {1, 2, 3};
  JQGaussSpare spare{1, 42.0};
  ASSERT_EQ(gauss_noise(a.h(), 9, 1.5, 99, st, spare), 0);
  ASSERT_EQ(gauss_noise(b.h(), 3, 2.0, -5, st, spare), 0);
  got = a.values();
  for (double v : b.values()) got.push_back(v);
  expect_close(got, vec(kGauss99), 4);
  EXPECT_EQ((std::vector<int32_t>{st.s1, st.s2, st.s3, spare.flag}), vec(kGauss99State));
  EXPECT_NEAR(spare.spare, kGauss99Spare, 1e-15);
}

TEST(NoiseSequences, GammaPoissonAndBinomialInAllTheirMethods) {
  for (auto [order, want] : {std::pair{3, vec(kGammaOrder3)}, {8, vec(kGammaOrder8)}}) {
    JQRandomState st{};
    jqrt::Array<double> y;
    EXPECT_EQ(GammaNoiseH(y.h(), 10, order, 5, &st), 0);
    expect_close(y.values(), want, 8);
  }
  for (auto [mean, want] : {std::pair{3.5, vec(kPoisson3p5)}, {12.0, vec(kPoisson12)}, {40.0, vec(kPoisson40)}}) {
    JQRandomState st{};
    jqrt::Array<double> y;
    EXPECT_EQ(PoissonNoiseH(y.h(), 12, mean, 11, &st), 0);
    EXPECT_EQ(y.values(), want) << "mean " << mean;
  }
  for (auto [trials, p, want] : {std::tuple{10, 0.7, vec(kBinomial10p7)},
                                 {100, 0.3, vec(kBinomial100p3)},
                                 {1000, 0.0005, vec(kBinomial1000p0005)},
                                 {60, 0.9, vec(kBinomial60p9)}}) {
    JQRandomState st{};
    JQBinomialCache cache{};
    jqrt::Array<uint32_t> y;
    EXPECT_EQ(BinomialNoiseH(y.h(), 12, trials, p, 3, &st, &cache), 0);
    EXPECT_EQ(y.values(), want) << trials << " " << p;
    if (trials == 60) {
      const double got[] = {cache.p_old, cache.q, cache.ln_p, cache.ln_q, cache.n_old_f, cache.ln_gamma_n1};
      expect_close(std::vector<double>(got, got + 6), vec(kBinomialCache60p9), 2);
      EXPECT_EQ(cache.n_old, 60);
    }
  }
}

TEST(NoiseSequences, RifflesBothMethodsOnEveryDataType) {
  for (auto [method, want, state] : {std::tuple{0, vec(kRiffle31Method0), vec(kRiffle31Method0State)},
                                     {1, vec(kRiffle31Method1), vec(kRiffle31Method1State)}}) {
    JQRandomState st = seeded(4);
    jqrt::Array<int32_t> idx;
    EXPECT_EQ(RiffleIntNum2012_head(idx.h(), 10, 31, &st, method), 0);
    EXPECT_EQ(idx.values(), want);
    EXPECT_EQ(words(st), state);
    // The array forms apply the same swaps to the data.
    jqrt::Array<double> d{0.5, 1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 7.5, 8.5, 9.5};
    jqrt::Array<std::complex<double>> c(10);
    jqrt::Array<int32_t> k{10, 11, 12, 13, 14, 15, 16, 17, 18, 19};
    for (int i = 0; i < 10; ++i) c[i] = {1.0 * i, -1.0 * i};
    for (int kind = 0; kind < 3; ++kind) {
      st = seeded(4);
      jqrt::Array<int32_t> ix;
      const int32_t rc = kind == 0   ? RiffleArrayDBL2012_head(d.h(), ix.h(), 31, &st, method)
                         : kind == 1 ? RiffleArrayCDB2012_head(c.h(), ix.h(), 31, &st, method)
                                     : RiffleArrayInt2012_head(k.h(), ix.h(), 31, &st, method);
      EXPECT_EQ(rc, 0);
      EXPECT_EQ(ix.values(), want);
    }
    for (int i = 0; i < 10; ++i) {
      EXPECT_EQ(d[i], want[i] + 0.5);
      EXPECT_EQ(c[i], std::complex<double>(want[i], -want[i]));
      EXPECT_EQ(k[i], want[i] + 10);
    }
  }
  // The forms without a method are method 0.
  JQRandomState st{};
  jqrt::Array<int32_t> idx;
  EXPECT_EQ(RiffleIntNum_head(idx.h(), 10, 31, &st), 0);
  EXPECT_EQ(idx.values(), vec(kRiffle31Method0));
  jqrt::Array<double> d{0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
  EXPECT_EQ(RiffleArrayDBL_head(d.h(), idx.h(), 31, &st), 0);
  EXPECT_EQ(idx.values(), vec(kRiffle31Method0));
}

// Periodic noise against a direct sum of cosines with the generator's phases.
TEST(NoiseSequences, PeriodNoiseMatchesTheDirectSumOfHarmonics) {
  for (auto [n, want, state] : {std::tuple{15, vec(kPeriod15), vec(kPeriod15State)},
                                {16, vec(kPeriod16), vec(kPeriod16State)},
                                {53, vec(kPeriod53), vec(kPeriod53State)}}) {
    JQRandomState st{1, 2, 3};
    jqrt::Array<double> y;
    EXPECT_EQ(period_noise(y.h(), n, 0.75, 2718, st), 0);
    ASSERT_EQ(y.size(), n);
    for (int t = 0; t < n; ++t) EXPECT_NEAR(y[t], want[t], 1e-13) << n << " " << t;
    EXPECT_EQ(words(st), state);
  }
  // Records of one or two samples have no harmonics.
  JQRandomState st{1, 2, 3};
  jqrt::Array<double> y;
  EXPECT_EQ(period_noise(y.h(), 1, 5.0, 3, st), 0);
  EXPECT_EQ(y.values(), std::vector<double>{0.0});
  EXPECT_EQ(period_noise(y.h(), 2, 5.0, 3, st), 0);
  EXPECT_EQ(y.values(), (std::vector<double>{0.0, 0.0}));
}

TEST(NoiseFailures, ChecksInOrderEmptyTheOutputAndLeaveTheState) {
  const JQRandomState start{11, 22, 33};
  JQRandomState st = start;
  JQGaussSpare spare{1, 0.25};
  JQBinomialCache cache{};
  auto wh = [&](int32_t n) { return [&, n](uint8_t** y) { return white_noise(y, n, 1, 3, st); }; };
  auto gs = [&](int32_t n) { return [&, n](uint8_t** y) { return gauss_noise(y, n, 1, 3, st, spare); }; };
  auto period = [&](int32_t n) { return [&, n](uint8_t** y) { return period_noise(y, n, 1.0, 3, st); }; };
  auto scratch = [&](int64_t nth) {
    return [&, nth](uint8_t** y) {
      jq::fail_scratch_allocation(nth);
      const int32_t code = period_noise(y, 8, 1.0, 3, st);
      jq::fail_scratch_allocation(0);
      return code;
    };
  };
  auto poisson = [&](double mean) { return [&, mean](uint8_t** y) { return PoissonNoiseH(y, 5, mean, 1, &st); }; };
  jqtest::expect_rejections<double>({
      {"white, no samples", -20003, wh(0)},
      {"Gauss, negative count", -20003, gs(-3)},
      {"white, failed resize", -20001, wh(4), 1},
      {"Gauss, failed resize", -20001, gs(4), 1},
      {"gamma order before count", -20061, [&](uint8_t** y) { return GammaNoiseH(y, 0, 0, 1, &st); }},
      {"gamma, no samples", -20003, [&](uint8_t** y) { return GammaNoiseH(y, 0, 2, 1, &st); }},
      {"Poisson, negative mean", -20061, poisson(-1)},
      {"Poisson, NaN mean", -20061, poisson(jqtest::nan())},
      {"Poisson, infinite mean", -20061, poisson(HUGE_VAL)},
      {"Poisson, failed resize", -20001, poisson(2), 1},
      {"period, no samples", -20003, period(0)},
      {"period, failed resize", -20001, period(8), 1},
      {"period, first scratch", -20001, scratch(1)},
      {"period, second scratch", -20001, scratch(2)},
  });
  auto binomial = [&](int32_t n, int32_t trials, double p) {
    return [&, n, trials, p](uint8_t** y) { return BinomialNoiseH(y, n, trials, p, 1, &st, &cache); };
  };
  jqtest::expect_rejections<uint32_t>({
      {"binomial, negative trials", -20061, binomial(5, -1, 0.5)},
      {"binomial, p below 0", -20061, binomial(5, 5, -0.1)},
      {"binomial, p above 1", -20061, binomial(5, 5, 1.1)},
      {"binomial, NaN p", -20061, binomial(5, 5, jqtest::nan())},
      {"binomial, no samples", -20003, binomial(0, 5, 0.5)},
  });
  EXPECT_TRUE(same(st, start));
  EXPECT_EQ(spare.flag, 1);
  EXPECT_EQ(spare.spare, 0.25);
  const JQBinomialCache zero{};
  EXPECT_EQ(std::memcmp(&cache, &zero, sizeof cache), 0);
  // A later success clears a stale error.
  jqrt::Array<double> y;
  EXPECT_EQ(white_noise(y.h(), 4, 1, 3, st), 0);
  EXPECT_EQ(y.size(), 4);
}

TEST(NoiseFailures, RifflesEmptyBothHandles) {
  const JQRandomState start{11, 22, 33};
  JQRandomState st = start;
  jqrt::Array<double> empty;
  jqrt::Array<int32_t> idx(4), out(4);
  EXPECT_EQ(RiffleArrayDBL2012_head(empty.h(), idx.h(), 1, &st, 1), -20003);
  EXPECT_EQ(idx.size(), 0);
  EXPECT_EQ(RiffleIntNum2012_head(out.h(), 0, 1, &st, 1), -20003);
  EXPECT_EQ(out.size(), 0);
  for (int fail : {1, 0}) {  // a failed resize, then a negative count
    jqrt::Array<std::complex<double>> d(3);
    jqrt::Array<int32_t> ix(2);
    if (!fail) d.set_dims(-2);
    jqrt::FailResize f(fail);
    EXPECT_EQ(RiffleArrayCDB_head(d.h(), ix.h(), 1, &st), fail ? -20001 : -20003);
    EXPECT_EQ(d.size(), 0);
    EXPECT_EQ(ix.size(), 0);
  }
  EXPECT_TRUE(same(st, start));
}

TEST(NoiseRestart, SeedZeroContinuesLikeANegativeSeedAndAPositiveOneRestarts) {
  JQRandomState a{11, 22, 33}, b = a;
  jqrt::Array<double> ya, yb;
  white_noise(ya.h(), 6, 1, 0, a);
  white_noise(yb.h(), 6, 1, -9, b);
  EXPECT_EQ(ya.values(), yb.values());
  period_noise(ya.h(), 9, 1, -1, a);
  period_noise(yb.h(), 9, 1, 0, b);
  EXPECT_EQ(ya.values(), yb.values());
  white_noise(ya.h(), 6, 1, 5, a);
  white_noise(yb.h(), 6, 1, 5, a);
  EXPECT_EQ(ya.values(), yb.values());
  GammaNoiseH(ya.h(), 4, 2, 8, &a);
  GammaNoiseH(yb.h(), 4, 2, 8, &a);
  EXPECT_EQ(ya.values(), yb.values());
}

TEST(NoiseRestart, GaussSplitsOnePairOverTwoCalls) {
  JQRandomState a{}, b{};
  JQGaussSpare sa{0, 0}, sb{0, 0};
  jqrt::Array<double> pair, first, second;
  gauss_noise(pair.h(), 2, 1, 17, a, sa);
  gauss_noise(first.h(), 1, 1, 17, b, sb);
  EXPECT_EQ(sb.flag, 1);
  gauss_noise(second.h(), 1, 3, -1, b, sb);
  EXPECT_EQ(first[0], pair[0]);
  EXPECT_EQ(second[0], 3 * pair[1]);
  EXPECT_EQ(sb.flag, 0);
  // Seed 0 keeps the spare; a positive seed forgets it.
  gauss_noise(first.h(), 1, 1, 17, b, sb);
  gauss_noise(second.h(), 1, 1, 0, b, sb);
  EXPECT_EQ(second[0], pair[1]);
  gauss_noise(first.h(), 1, 1, 17, b, sb);
  gauss_noise(second.h(), 1, 1, 17, b, sb);
  EXPECT_EQ(second[0], pair[0]);
}

TEST(NoiseEdges, ZeroStateAndDegenerateParametersNeverHang) {
  JQRandomState st{0, 0, 0};
  JQGaussSpare spare{0, 0};
  jqrt::Array<double> y;
  white_noise(y.h(), 3, 2, -1, st);
  EXPECT_EQ(y.values(), (std::vector<double>{-2, -2, -2}));
  gauss_noise(y.h(), 3, 2, -1, st, spare);
  EXPECT_EQ(y.values(), (std::vector<double>{0, 0, 0}));
  EXPECT_EQ(GammaNoiseH(y.h(), 3, 9, -1, &st), 0);
  EXPECT_EQ(y.values(), (std::vector<double>{8, 8, 8}));
  EXPECT_EQ(PoissonNoiseH(y.h(), 2, 30.0, -1, &st), 0);
  // Words that vanish after one step land there too.
  JQRandomState s2{30269, 0, 0};
  EXPECT_EQ(GammaNoiseH(y.h(), 2, 7, -1, &s2), 0);
  EXPECT_TRUE(same(s2, JQRandomState{0, 0, 0}));

  EXPECT_EQ(PoissonNoiseH(y.h(), 5, 0.0, 3, &st), 0);
  EXPECT_EQ(y.values(), std::vector<double>(5, 0.0));
  JQBinomialCache cache{};
  jqrt::Array<uint32_t> b;
  for (auto [trials, p, each] :
       {std::tuple{10, 0.0, 0u}, {100, 0.0, 0u}, {10, 1.0, 10u}, {100, 1.0, 100u}, {0, 0.5, 0u}}) {
    EXPECT_EQ(BinomialNoiseH(b.h(), 5, trials, p, 3, &st, &cache), 0);
    EXPECT_EQ(b.values(), std::vector<uint32_t>(5, each)) << trials << " " << p;
  }
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

// Each distribution on both sides of its method switches. (White and
// Gaussian noise are fixed exactly by the uniform sequences above.)
TEST(NoiseStatistics, MeanAndVarianceOfEachMethod) {
  constexpr int32_t kDraws = 250000;
  auto check = [](const auto& y, double mean, double var, double mean_tol, double var_tol) {
    const int n = y.size();
    double m = 0, v = 0;
    for (int i = 0; i < n; ++i) m += static_cast<double>(y[i]) / n;
    for (int i = 0; i < n; ++i) v += (y[i] - m) * (y[i] - m) / (n - 1);
    EXPECT_NEAR(m / mean, 1, mean_tol) << mean;
    EXPECT_NEAR(v / var, 1, var_tol) << var;
  };
  JQRandomState st{};
  jqrt::Array<double> y;
  for (int32_t order : {1, 5, 6, 20}) {
    GammaNoiseH(y.h(), kDraws, order, 77, &st);
    check(y, order, order, 0.006, 0.015);
  }
  for (double mean : {0.3, 11.999, 12.0, 250.0}) {
    PoissonNoiseH(y.h(), kDraws, mean, 91, &st);
    check(y, mean, mean, 0.008, 0.015);
  }
  JQBinomialCache cache{};
  jqrt::Array<uint32_t> b;
  for (auto [trials, p] : {std::pair{10, 0.7}, {24, 0.5}, {1000, 0.0005}, {100, 0.3}, {400, 0.95}}) {
    BinomialNoiseH(b.h(), kDraws, trials, p, 5, &st, &cache);
    check(b, trials * p, trials * p * (1 - p), 0.01, 0.02);
  }
}

// Over three elements the unbiased shuffle gives each order 1/6; the early
// shuffle's 27 equally likely swap sequences give 4, 5, 5, 5, 4, 4 of 27.
TEST(NoiseStatistics, RiffleOrdersFollowEachMethodsDistribution) {
  const std::map<std::array<int32_t, 3>, int> biased = {{{0, 1, 2}, 4}, {{0, 2, 1}, 5}, {{1, 0, 2}, 5},
                                                        {{1, 2, 0}, 5}, {{2, 0, 1}, 4}, {{2, 1, 0}, 4}};
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
    for (const auto& [order, c] : counts) {
      const double expected = method == 0 ? trials * biased.at(order) / 27.0 : trials / 6.0;
      EXPECT_NEAR(c, expected, 5 * std::sqrt(expected)) << method << ": " << order[0] << order[1] << order[2];
    }
  }
}
