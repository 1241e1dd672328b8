// A failed scratch allocation inside a window export empties the signal.
#include <gtest/gtest.h>

#include <cmath>

#include "frame/scratch.hpp"
#include "jqanlys.h"
#include "jqrt.hpp"

TEST(WindowAllocation, FailedScratchEmptiesTheSignalAndNaNsTheConstants) {
  jqrt::Array<double> x{1, 1, 1, 1};
  JQWindowConstants c{1, 1};
  jq::fail_scratch_allocation(1);
  EXPECT_EQ(ScaledWinH(x.h(), 1, 0.0, &c), -20001);
  jq::fail_scratch_allocation(0);
  EXPECT_EQ(x.size(), 0);
  EXPECT_TRUE(std::isnan(c.enbw));
  EXPECT_TRUE(std::isnan(c.cg));
}
