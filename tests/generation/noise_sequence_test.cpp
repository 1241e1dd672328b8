// The generator and every noise distribution against sequences worked out
// independently (tools/noise_reference.py). Integer and purely arithmetic
// results must match exactly; those that pass through log, exp or tan may
// differ by the platform's last-bit rounding of those functions.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "generation/random.hpp"
#include "jqanlys.h"
#include "jqrt.hpp"

namespace {
#include "noise_reference.inc"

using jq::gen::RandomState;

template <class T, size_t N> std::vector<T> vec(const T (&a)[N]) { return std::vector<T>(a, a + N); }

void expect_close(const std::vector<double>& got, const std::vector<double>& want, double ulps) {
  ASSERT_EQ(got.size(), want.size());
  for (size_t i = 0; i < got.size(); ++i) {
    EXPECT_NEAR(got[i], want[i], ulps * std::fabs(want[i]) * 2.2204460492503131e-16) << "sample " << i;
  }
}

JQRandomState seeded(int32_t seed) {
  JQRandomState s{0, 0, 0};
  jq::gen::random_seed(seed, *reinterpret_cast<RandomState*>(&s));
  return s;
}

}  // namespace

TEST(Generator, SeedingKeepsLow14BitsOfTheProducts) {
  for (const auto& row : kSeedWords) {
    RandomState st{5, 6, 7};
    jq::gen::random_seed(row[0], st);
    EXPECT_EQ(st.s1, row[1]);
    EXPECT_EQ(st.s2, row[2]);
    EXPECT_EQ(st.s3, row[3]);
  }
  RandomState st{5, 6, 7};
  jq::gen::random_seed(0, st);
  EXPECT_EQ(st.s1, 5);
  EXPECT_EQ(st.s2, 6);
  EXPECT_EQ(st.s3, 7);
}

TEST(Generator, UniformSequencesIncludingWrappedAndNegativeWords) {
  struct Case {
    int32_t seed;
    std::vector<double> want;
    std::vector<int32_t> state;
  } cases[] = {{1, vec(kUniformSeed1), vec(kUniformSeed1State)},
               {2147483647, vec(kUniformSeedMax), vec(kUniformSeedMaxState)},
               {-7, vec(kUniformSeedNeg), vec(kUniformSeedNegState)}};
  for (const auto& c : cases) {
    RandomState st{};
    jq::gen::random_seed(c.seed, st);
    std::vector<double> got;
    for (size_t i = 0; i < c.want.size(); ++i) got.push_back(jq::gen::random_uniform(st));
    EXPECT_EQ(got, c.want) << "seed " << c.seed;
    EXPECT_EQ((std::vector<int32_t>{st.s1, st.s2, st.s3}), c.state);
    for (double u : got) EXPECT_TRUE(u >= 0 && u < 1);
  }
}

TEST(Generator, PhaseIntegersTruncateAndGoNegativeWithNegativeWords) {
  for (auto [seed, want] : {std::pair{-7, vec(kPhaseSeedNeg)}, {12345, vec(kPhaseSeed12345)}}) {
    RandomState st{};
    jq::gen::random_seed(seed, st);
    std::vector<int32_t> got;
    for (size_t i = 0; i < want.size(); ++i) got.push_back(jq::gen::random_phase_int(st));
    EXPECT_EQ(got, want) << "seed " << seed;
  }
}

TEST(NoiseSequences, WhiteContinuesAcrossCalls) {
  JQRandomState st{1, 2, 3};
  jqrt::Array<double> a, b;
  int32_t n = 16, n2 = 4, seed = 777, cont = -1, err = 9;
  double amp = 2.5, amp2 = 1.0;
  EXPECT_EQ(white(a.h(), &n, &amp, &seed, &err, &st), 0);
  EXPECT_EQ(err, 0);
  EXPECT_EQ(white(b.h(), &n2, &amp2, &cont, &err, &st), 0);
  std::vector<double> got = a.values();
  for (double v : b.values()) got.push_back(v);
  EXPECT_EQ(got, vec(kWhite777));
  EXPECT_EQ((std::vector<int32_t>{st.s1, st.s2, st.s3}), vec(kWhite777State));
}

TEST(NoiseSequences, GaussKeepsItsSpareBetweenCalls) {
  JQRandomState st{1, 2, 3};
  JQGaussSpare spare{1, 42.0};
  jqrt::Array<double> a, b;
  int32_t n = 9, n2 = 3, seed = 99, cont = -5, err = 9;
  double sd = 1.5, sd2 = 2.0;
  EXPECT_EQ(Gauss(a.h(), &n, &sd, &seed, &err, &st, &spare), 0);
  EXPECT_EQ(Gauss(b.h(), &n2, &sd2, &cont, &err, &st, &spare), 0);
  std::vector<double> got = a.values();
  for (double v : b.values()) got.push_back(v);
  expect_close(got, vec(kGauss99), 4);
  EXPECT_EQ((std::vector<int32_t>{st.s1, st.s2, st.s3, spare.flag}), vec(kGauss99State));
  EXPECT_NEAR(spare.spare, kGauss99Spare, 1e-15);
}

TEST(NoiseSequences, GammaBothMethods) {
  for (auto [order, want] : {std::pair{3, vec(kGammaOrder3)}, {8, vec(kGammaOrder8)}}) {
    JQRandomState st{};
    jqrt::Array<double> y;
    EXPECT_EQ(GammaNoiseH(y.h(), 10, order, 5, &st), 0);
    expect_close(y.values(), want, 8);
  }
}

TEST(NoiseSequences, PoissonBothMethods) {
  for (auto [mean, want] : {std::pair{3.5, vec(kPoisson3p5)}, {12.0, vec(kPoisson12)}, {40.0, vec(kPoisson40)}}) {
    JQRandomState st{};
    jqrt::Array<double> y;
    EXPECT_EQ(PoissonNoiseH(y.h(), 12, mean, 11, &st), 0);
    EXPECT_EQ(y.values(), want) << "mean " << mean;
  }
}

TEST(NoiseSequences, BinomialAllThreeMethodsAndTheCache) {
  struct Case {
    int32_t trials;
    double p;
    std::vector<uint32_t> want;
  } cases[] = {{10, 0.7, vec(kBinomial10p7)},
               {100, 0.3, vec(kBinomial100p3)},
               {1000, 0.0005, vec(kBinomial1000p0005)},
               {60, 0.9, vec(kBinomial60p9)}};
  for (const auto& c : cases) {
    JQRandomState st{};
    JQBinomialCache cache{};
    jqrt::Array<uint32_t> y;
    EXPECT_EQ(BinomialNoiseH(y.h(), 12, c.trials, c.p, 3, &st, &cache), 0);
    EXPECT_EQ(y.values(), c.want) << c.trials << " " << c.p;
    if (c.trials == 60) {
      const double got[] = {cache.p_old, cache.q, cache.ln_p, cache.ln_q, cache.n_old_f, cache.ln_gamma_n1};
      expect_close(std::vector<double>(got, got + 6), vec(kBinomialCache60p9), 2);
      EXPECT_EQ(cache.n_old, 60);
    }
  }
}

TEST(NoiseSequences, RifflesBothMethods) {
  for (auto [method, want, state] : {std::tuple{0, vec(kRiffle31Method0), vec(kRiffle31Method0State)},
                                     {1, vec(kRiffle31Method1), vec(kRiffle31Method1State)}}) {
    JQRandomState st = seeded(4);
    jqrt::Array<int32_t> idx;
    EXPECT_EQ(RiffleIntNum2012_head(idx.h(), 10, 31, &st, method), 0);
    EXPECT_EQ(idx.values(), want);
    EXPECT_EQ((std::vector<int32_t>{st.s1, st.s2, st.s3}), state);
    // The array forms apply the same swaps to the data.
    for (int kind = 0; kind < 3; ++kind) {
      st = seeded(4);
      jqrt::Array<int32_t> ix;
      if (kind == 0) {
        jqrt::Array<double> d{0.5, 1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 7.5, 8.5, 9.5};
        EXPECT_EQ(RiffleArrayDBL2012_head(d.h(), ix.h(), 31, &st, method), 0);
        for (int i = 0; i < 10; ++i) EXPECT_EQ(d[i], want[i] + 0.5);
      } else if (kind == 1) {
        jqrt::Array<std::complex<double>> d(10);
        for (int i = 0; i < 10; ++i) d[i] = {1.0 * i, -1.0 * i};
        EXPECT_EQ(RiffleArrayCDB2012_head(d.h(), ix.h(), 31, &st, method), 0);
        for (int i = 0; i < 10; ++i) EXPECT_EQ(d[i], std::complex<double>(want[i], -want[i]));
      } else {
        jqrt::Array<int32_t> d{10, 11, 12, 13, 14, 15, 16, 17, 18, 19};
        EXPECT_EQ(RiffleArrayInt2012_head(d.h(), ix.h(), 31, &st, method), 0);
        for (int i = 0; i < 10; ++i) EXPECT_EQ(d[i], want[i] + 10);
      }
      EXPECT_EQ(ix.values(), want);
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
