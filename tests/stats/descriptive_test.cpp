// Mean, RMS and the histogram through their exports.
#include <gtest/gtest.h>

#include <cmath>

#include "jqanlys.h"
#include "jqrt.hpp"

TEST(Mean, SumsLeftToRightAndRejectsEmptyInput) {
  jqrt::Array<double> x{1, 2, 3, 6};
  double r = 0;
  int32_t err = 9;
  EXPECT_EQ(Mean_head(x.h(), &r, &err), 0);
  EXPECT_EQ(err, 0);
  EXPECT_EQ(r, 3.0);
  // Left-to-right order is observable: (1e16 + 1) + -1e16 loses the 1.
  jqrt::Array<double> y{1e16, 1, -1e16};
  EXPECT_EQ(Mean_head(y.h(), &r, &err), 0);
  EXPECT_EQ(r, 0.0);
  jqrt::Array<double> e;
  EXPECT_EQ(Mean_head(e.h(), &r, &err), 0);
  EXPECT_EQ(err, -20003);
  EXPECT_TRUE(std::isnan(r));
  e.set_dims(-4);
  r = 0;
  EXPECT_EQ(Mean_head(e.h(), &r, &err), 0);
  EXPECT_EQ(err, -20003);
  EXPECT_TRUE(std::isnan(r));
}

TEST(RMS, MatchesClosedForm) {
  jqrt::Array<double> x{3, -4};
  double r = 0;
  int32_t err = 9;
  EXPECT_EQ(RMS_head(x.h(), &r, &err), 0);
  EXPECT_EQ(err, 0);
  EXPECT_DOUBLE_EQ(r, std::sqrt(12.5));
  jqrt::Array<double> e;
  EXPECT_EQ(RMS_head(e.h(), &r, &err), 0);
  EXPECT_EQ(err, -20003);
  EXPECT_TRUE(std::isnan(r));
}

TEST(Histogram, BinsCentresAndTheMaximumInTheLastBin) {
  jqrt::Array<double> x{0, 1, 2, 3, 4, 4};
  jqrt::Array<int32_t> counts;
  jqrt::Array<double> centres;
  int32_t k = 4, err = 9;
  EXPECT_EQ(histgran_head(x.h(), &k, counts.h(), centres.h(), &err), 0);
  EXPECT_EQ(err, 0);
  EXPECT_EQ(counts.values(), (std::vector<int32_t>{1, 1, 1, 3}));
  EXPECT_EQ(centres.values(), (std::vector<double>{0.5, 1.5, 2.5, 3.5}));
}

TEST(Histogram, ConstantDataGoesToTheLastBin) {
  jqrt::Array<double> x{2, 2, 2};
  jqrt::Array<int32_t> counts;
  jqrt::Array<double> centres;
  int32_t k = 3, err = 9;
  EXPECT_EQ(histgran_head(x.h(), &k, counts.h(), centres.h(), &err), 0);
  EXPECT_EQ(counts.values(), (std::vector<int32_t>{0, 0, 3}));
  EXPECT_EQ(centres.values(), (std::vector<double>{2, 2, 2}));
}

TEST(Histogram, FailuresEmptyBothOutputs) {
  jqrt::Array<double> x{0, 1};
  jqrt::Array<double> e;
  jqrt::Array<int32_t> counts(4);
  jqrt::Array<double> centres(4);
  int32_t k = 2, err = 0;
  EXPECT_EQ(histgran_head(e.h(), &k, counts.h(), centres.h(), &err), 0);
  EXPECT_EQ(err, -20003);
  EXPECT_EQ(counts.size(), 0);
  EXPECT_EQ(centres.size(), 0);
  int32_t zero = 0;
  EXPECT_EQ(histgran_head(x.h(), &zero, counts.h(), centres.h(), &err), 0);
  EXPECT_EQ(err, -20003);
  for (int nth = 1; nth <= 2; ++nth) {
    jqrt::Array<int32_t> c(4);
    jqrt::Array<double> m(4);
    int32_t rc;
    {
      jqrt::FailResize fail(nth);
      rc = histgran_head(x.h(), &k, c.h(), m.h(), &err);
    }
    EXPECT_NE(rc, 0);
    EXPECT_EQ(err, -20001);
    EXPECT_EQ(c.size(), 0);
    EXPECT_EQ(m.size(), 0);
  }
}

TEST(Histogram, LeavesNoBlocksBehind) {
  const int64_t before = jqrt_live_blocks();
  {
    jqrt::Array<double> x{0, 1, 5};
    jqrt::Array<int32_t> counts;
    jqrt::Array<double> centres;
    int32_t k = 5, err = 0;
    histgran_head(x.h(), &k, counts.h(), centres.h(), &err);
  }
  EXPECT_EQ(jqrt_live_blocks(), before);
}
