// The resize convention, handle views and reporting shapes.
#include <gtest/gtest.h>

#include <cmath>

#include "frame/export.hpp"
#include "jqrt.hpp"

using namespace jq;

namespace {

// A two-output export written the way the library's exports are.
int32_t two_outputs(Handle a, Handle b, int32_t n, int32_t* error) {
  Out<double> x(a);
  Out2<int32_t> y(b);
  Outputs out(x, y);
  if (n < 0) return out.report(kNegativeSize, error);
  if (!out.size(x, n) || !out.size(y, n, 3)) return out.report(kNoMemory, error);
  for (int32_t i = 0; i < n; ++i) x.data()[i] = i;
  for (int32_t i = 0; i < 3 * n; ++i) y.data()[i] = -i;
  return out.report(kOk, error);
}

}  // namespace

TEST(Outputs, SizesAndWritesEveryOutput) {
  jqrt::Array<double> a;
  jqrt::Array2<int32_t> b;
  int32_t err = 99;
  EXPECT_EQ(two_outputs(a.h(), b.h(), 4, &err), 0);
  EXPECT_EQ(err, 0);
  EXPECT_EQ(a.values(), (std::vector<double>{0, 1, 2, 3}));
  EXPECT_EQ(b.rows(), 4);
  EXPECT_EQ(b.cols(), 3);
  EXPECT_EQ(b[11], -11);
}

TEST(Outputs, AnyFailedResizeEmptiesAllOutputs) {
  for (int nth = 1; nth <= 2; ++nth) {
    jqrt::Array<double> a(5);
    jqrt::Array2<int32_t> b(2, 2);
    int32_t err = 0;
    int32_t rc;
    {
      jqrt::FailResize fail(nth);
      rc = two_outputs(a.h(), b.h(), 4, &err);
    }
    EXPECT_EQ(rc, 2) << "the host's own status is the result";
    EXPECT_EQ(err, kNoMemory);
    EXPECT_EQ(a.size(), 0);
    EXPECT_EQ(b.rows(), 0);
    EXPECT_EQ(b.cols(), 0);
  }
}

TEST(Outputs, InputErrorsEmptyOutputsAndKeepResultZero) {
  jqrt::Array<double> a(3);
  jqrt::Array2<int32_t> b(1, 1);
  int32_t err = 0;
  EXPECT_EQ(two_outputs(a.h(), b.h(), -1, &err), 0);
  EXPECT_EQ(err, kNegativeSize);
  EXPECT_EQ(a.size(), 0);
  EXPECT_EQ(b.rows(), 0);
}

TEST(Outputs, NullHandleGetsANewBlockThroughTheExportsCopy) {
  const int64_t before = jqrt_live_blocks();
  {
    Out<double> x(nullptr);
    Outputs out(x);
    ASSERT_TRUE(out.size(x, 3));
    ASSERT_NE(x.handle(), nullptr);
    EXPECT_EQ(Array1<double>(x.handle()).size(), 3);
    jqrt_free(x.handle());
  }
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
