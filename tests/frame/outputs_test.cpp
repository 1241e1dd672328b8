// Null output handles, handle views, scalar reporting and scratch buffers.
#include <gtest/gtest.h>

#include <cmath>

#include "frame/export.hpp"
#include "jqrt.hpp"

using namespace jq;

// The emptying of every output on failure, and the result rules of both
// reporting shapes, are checked through the exports (see the export tests and
// tests/hosts/independent_host.c).
// A handle passed by value cannot carry a new block back to the host, so a
// null one is refused instead of making a block that nobody would free.
TEST(Outputs, NullHandleIsRefusedWithoutAskingTheHost) {
  const int64_t before = jqrt_live_blocks(), resizes = jqrt_resize_calls();
  Out<double> x(nullptr);
  Outputs out(x);
  EXPECT_FALSE(out.size(x, 3));
  EXPECT_EQ(out.fail(kNoMemory), kNoMemory);
  EXPECT_EQ(x.handle(), nullptr);
  EXPECT_EQ(jqrt_resize_calls(), resizes);
  EXPECT_EQ(jqrt_live_blocks(), before);
}

TEST(Handles, ViewsReadSizesAndDataAtTheirOffsets) {
  jqrt::Array<double> d{1.5, 2.5};
  jqrt::Array<int32_t> i{7, 8, 9};
  jqrt::Array<uint8_t> u{1, 0, 1, 1};
  jqrt::Array2<double> m = jqrt::Array2<double>::rows({{1, 2, 3}, {4, 5, 6}});
  EXPECT_EQ(Array1<double>(d.h()).size(), 2);
  EXPECT_EQ(Array1<double>(d.h())[1], 2.5);
  EXPECT_EQ(reinterpret_cast<uint8_t*>(Array1<int32_t>(i.h()).data()) - *i.h(), 4);
  EXPECT_EQ(reinterpret_cast<uint8_t*>(Array1<double>(d.h()).data()) - *d.h(), 8);
  EXPECT_EQ(Array1<uint8_t>(u.h())[3], 1);
  Array2<double> v(m.h());
  EXPECT_EQ(v.rows(), 2);
  EXPECT_EQ(v.cols(), 3);
  EXPECT_EQ(v.row(1)[0], 4);
  EXPECT_TRUE(Array1<double>(nullptr).empty());
}

TEST(Reporting, ScalarResultsAreNaNOnErrorsOnly) {
  double r = 1;
  int32_t err = 5;
  EXPECT_EQ(report_scalar(kEmptyInput, &r, &err), 0);
  EXPECT_TRUE(std::isnan(r));
  EXPECT_EQ(err, kEmptyInput);
  r = 2;
  EXPECT_EQ(report_scalar(kWarnLengthMismatch, &r, &err), 0);
  EXPECT_EQ(r, 2);
  EXPECT_EQ(err, kWarnLengthMismatch);
}

TEST(Scratch, AllocatesAndReleases) {
  Scratch<double> s;
  ASSERT_EQ(s.allocate(16), kOk);
  s[15] = 1;
  EXPECT_EQ(s.size(), 16u);
  EXPECT_EQ(s.allocate(SIZE_MAX / 4), kNoMemory);
  EXPECT_EQ(s.data(), nullptr);
  fail_scratch_allocation(2);
  EXPECT_EQ(s.allocate(4), kOk);
  EXPECT_EQ(s.allocate(4), kNoMemory) << "the injected failure";
  EXPECT_EQ(s.allocate(4), kOk) << "later allocations succeed again";
}
