// Periodic random noise against a direct sum of cosines with the generator's
// phases (tools/noise_reference.py), its power, and its failures.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "frame/scratch.hpp"
#include "jqanlys.h"
#include "jqrt.hpp"

namespace {
#include "noise_reference.inc"

template <class T, size_t N> std::vector<T> vec(const T (&a)[N]) { return std::vector<T>(a, a + N); }

int32_t period(jqrt::Array<double>& y, int32_t n, double amp, int32_t seed, JQRandomState& st, int32_t* err) {
  return PeriodNoise(&n, &amp, &seed, y.h(), err, &st);
}

}  // namespace

TEST(PeriodNoise, MatchesTheDirectSumOfHarmonics) {
  for (auto [n, want, state] : {std::tuple{15, vec(kPeriod15), vec(kPeriod15State)},
                                {16, vec(kPeriod16), vec(kPeriod16State)},
                                {53, vec(kPeriod53), vec(kPeriod53State)}}) {
    JQRandomState st{1, 2, 3};
    jqrt::Array<double> y;
    int32_t err = 9;
    EXPECT_EQ(period(y, n, 0.75, 2718, st, &err), 0);
    EXPECT_EQ(err, 0);
    ASSERT_EQ(y.size(), n);
    double power = 0;
    for (int t = 0; t < n; ++t) {
      EXPECT_NEAR(y[t], want[t], 1e-13) << n << " " << t;
      power += y[t] * y[t];
    }
    // Parseval: each of the m harmonics carries amplitude^2 / 2 per sample.
    const int m = n % 2 == 0 ? n / 2 - 1 : (n - 1) / 2;
    EXPECT_NEAR(power / n, m * 0.75 * 0.75 / 2, 1e-12);
    EXPECT_EQ((std::vector<int32_t>{st.s1, st.s2, st.s3}), state);
  }
}

TEST(PeriodNoise, ShortRecordsHaveNoHarmonicsAndEvenOnesNoNyquist) {
  JQRandomState st{1, 2, 3};
  jqrt::Array<double> y;
  int32_t err = 9;
  EXPECT_EQ(period(y, 1, 5.0, 3, st, &err), 0);
  EXPECT_EQ(y.values(), std::vector<double>{0.0});
  EXPECT_EQ(period(y, 2, 5.0, 3, st, &err), 0);
  EXPECT_EQ(y.values(), (std::vector<double>{0.0, 0.0}));
  // No Nyquist term: alternate samples of an even record sum to the same.
  EXPECT_EQ(period(y, 64, 1.0, 3, st, &err), 0);
  double alt = 0;
  for (int t = 0; t < 64; ++t) alt += t % 2 ? -y[t] : y[t];
  EXPECT_NEAR(alt, 0.0, 1e-12);
}

TEST(PeriodNoise, FailuresLeaveTheStateAndEmptyTheOutput) {
  const JQRandomState start{4, 5, 6};
  JQRandomState st = start;
  jqrt::Array<double> y(8);
  int32_t err = 0;
  EXPECT_EQ(period(y, 0, 1.0, 3, st, &err), 0);
  EXPECT_EQ(err, -20003);
  EXPECT_EQ(y.size(), 0);
  {
    jqrt::Array<double> z(8);
    jqrt::FailResize fail(1);
    EXPECT_NE(period(z, 8, 1.0, 3, st, &err), 0);
    EXPECT_EQ(err, -20001);
    EXPECT_EQ(z.size(), 0);
  }
  EXPECT_TRUE(st.s1 == start.s1 && st.s2 == start.s2 && st.s3 == start.s3);
  // A negative seed continues the stream; seed 0 does the same.
  JQRandomState a = start, b = start;
  jqrt::Array<double> ya, yb;
  period(ya, 9, 1.0, -1, a, &err);
  period(yb, 9, 1.0, 0, b, &err);
  EXPECT_EQ(ya.values(), yb.values());
}

TEST(PeriodNoiseAllocation, FailedScratchIsReportedAndEmptiesTheOutput) {
  for (int nth = 1; nth <= 2; ++nth) {
    jqrt::Array<double> y(3);
    JQRandomState st{1, 2, 3};
    int32_t n = 8, seed = -1, err = 0;
    double a = 1;
    jq::fail_scratch_allocation(nth);
    const int32_t rc = PeriodNoise(&n, &a, &seed, y.h(), &err, &st);
    jq::fail_scratch_allocation(0);
    EXPECT_EQ(rc, -20001);
    EXPECT_EQ(err, -20001);
    EXPECT_EQ(y.size(), 0);
  }
}
