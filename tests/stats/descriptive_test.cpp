// Mean, RMS and the histogram through their exports.
#include <gtest/gtest.h>

#include <cmath>

#include "jqanlys.h"
#include "jqrt.hpp"

TEST(Moments, MeanSumsLeftToRightAndRmsMatchesItsClosedForm) {
  jqrt::Array<double> x{1, 2, 3, 6}, y{1e16, 1, -1e16}, z{3, -4};
  double r = 0;
  int32_t err = 9;
  EXPECT_EQ(Mean_head(x.h(), &r, &err), 0);
  EXPECT_EQ(err, 0);
  EXPECT_EQ(r, 3.0);
  // Left-to-right order is observable: (1e16 + 1) + -1e16 loses the 1.
  EXPECT_EQ(Mean_head(y.h(), &r, &err), 0);
  EXPECT_EQ(r, 0.0);
  err = 9;
  EXPECT_EQ(RMS_head(z.h(), &r, &err), 0);
  EXPECT_EQ(err, 0);
  EXPECT_DOUBLE_EQ(r, std::sqrt(12.5));
  for (auto f : {Mean_head, RMS_head})
    for (int32_t count : {0, -4}) {
      jqrt::Array<double> e(1);
      e.set_dims(count);
      r = 0;
      EXPECT_EQ(f(e.h(), &r, &err), 0);
      EXPECT_EQ(err, -20003);
      EXPECT_TRUE(std::isnan(r));
    }
}

TEST(Histogram, BinsCentresAndTheMaximumInTheLastBin) {
  const int64_t before = jqrt_live_blocks();
  {
    jqrt::Array<double> x{0, 1, 2, 3, 4, 4}, flat{2, 2, 2}, centres;
    jqrt::Array<int32_t> counts;
    int32_t k = 4, err = 9;
    EXPECT_EQ(histgran_head(x.h(), &k, counts.h(), centres.h(), &err), 0);
    EXPECT_EQ(err, 0);
    EXPECT_EQ(counts.values(), (std::vector<int32_t>{1, 1, 1, 3}));
    EXPECT_EQ(centres.values(), (std::vector<double>{0.5, 1.5, 2.5, 3.5}));
    k = 3;  // constant data goes to the last bin
    EXPECT_EQ(histgran_head(flat.h(), &k, counts.h(), centres.h(), &err), 0);
    EXPECT_EQ(counts.values(), (std::vector<int32_t>{0, 0, 3}));
    EXPECT_EQ(centres.values(), (std::vector<double>{2, 2, 2}));
  }
  EXPECT_EQ(jqrt_live_blocks(), before);
}

TEST(Histogram, FailuresEmptyBothOutputs) {
  jqrt::Array<double> x{0, 1}, e;
  // Empty data, no bins, then each of the two resizes failing.
  for (auto [data, bins, nth, code] :
       {std::tuple{&e, 2, 0, -20003}, {&x, 0, 0, -20003}, {&x, 2, 1, -20001}, {&x, 2, 2, -20001}}) {
    jqrt::Array<int32_t> counts(4);
    jqrt::Array<double> centres(4);
    int32_t k = bins, err = 0, rc;
    {
      jqrt::FailResize fail(nth);
      rc = histgran_head(data->h(), &k, counts.h(), centres.h(), &err);
    }
    EXPECT_EQ(rc != 0, code == -20001) << "the host's status after a failed resize, else 0";
    EXPECT_EQ(err, code);
    EXPECT_EQ(counts.size(), 0);
    EXPECT_EQ(centres.size(), 0);
  }
}
