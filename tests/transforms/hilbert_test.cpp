// Hilbert and Hartley exports: the documented examples, inverses, emptied
// signals on bad input and the tables kept per call site.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "jqanlys.h"
#include "jqrt.hpp"
#include "transforms/fft.hpp"

namespace {

using Vec = std::vector<double>;
constexpr double kTwoPi = 6.283185307179586;

void expect_near(const Vec& got, const Vec& want, double tol = 1e-14) {
  ASSERT_EQ(got.size(), want.size());
  for (size_t i = 0; i < got.size(); ++i) EXPECT_NEAR(got[i], want[i], tol) << "at " << i;
}

Vec transform(int32_t (*f)(JQHandle, JQSlot), const Vec& x) {
  jqrt::Array<double> a(x);
  jqrt::Slot slot;
  EXPECT_EQ(f(a.h(), slot.get()), 0);
  TransformUnreserveProc(slot.get());
  return a.values();
}

TEST(Hilbert, CosineBecomesSineAndConstantsVanish) {
  for (int n : {8, 9, 53}) {
    Vec c(n), s(n);
    for (int j = 0; j < n; ++j) {
      c[j] = std::cos(kTwoPi * 3 * j / n) + 2.5;
      s[j] = std::sin(kTwoPi * 3 * j / n);
    }
    expect_near(transform(FastHilbertTransformH_IDP, c), s);
    for (double& v : s) v = -v;
    expect_near(transform(InvFastHilbertTransformH_IDP, c), s);
  }
  expect_near(transform(FastHilbertTransformH_IDP, Vec(6, 4.0)), Vec(6, 0.0));
  expect_near(transform(FastHilbertTransformH_IDP, Vec{3.5}), Vec{0.0});
  const Vec neg_zero = transform(InvFastHilbertTransformH_IDP, Vec{3.5});
  EXPECT_TRUE(neg_zero[0] == 0 && std::signbit(neg_zero[0])) << "the forward 0, sign flipped";
}

TEST(Hartley, ExamplesAndLongRoundTrip) {
  expect_near(transform(FHTH_IDP, Vec{1, 0, 0, 0}), Vec{1, 1, 1, 1});
  expect_near(transform(FHTH_IDP, Vec{-2.5}), Vec{-2.5});
  expect_near(transform(InvFHTH_IDP, Vec{-2.5}), Vec{-2.5});
  Vec x(1000);
  for (int j = 0; j < 1000; ++j) x[j] = std::cos(0.7 * j * j) - 0.3;
  expect_near(transform(InvFHTH_IDP, transform(FHTH_IDP, x)), x, 1e-13);
}

TEST(HilbertHartley, EmptySignalIsEmptiedWithoutState) {
  using Fn = int32_t (*)(JQHandle, JQSlot);
  for (Fn f : {FastHilbertTransformH, FastHilbertTransformH_IDP, InvFastHilbertTransformH,
               InvFastHilbertTransformH_IDP, FHTH, FHTH_IDP, InvFHTH, InvFHTH_IDP}) {
    jqrt::Slot slot;
    jqrt::Array<double> empty, negative{1, 2};
    negative.set_dims(-2);
    EXPECT_EQ(f(empty.h(), slot.get()), -20003);
    EXPECT_EQ(f(negative.h(), slot.get()), -20003);
    EXPECT_EQ(negative.size(), 0);
    EXPECT_EQ(slot.value(), nullptr);
  }
}

TEST(HilbertHartley, TableKeptPerCallSiteAndReleased) {
  jqrt::Array<double> x{1, 2, 3, 4, 5}, y{1, 2, 3, 4, 5, 6, 7};
  jqrt::Slot plain, idp;
  ASSERT_EQ(FastHilbertTransformH(x.h(), plain.get()), 0);
  jq::fft::FFTTable* t = jq::fft::held_table(plain.value());
  EXPECT_EQ(t->length, 5);
  EXPECT_EQ(t->references, 1) << "the routine's own reference is given back";
  ASSERT_EQ(InvFHTH(x.h(), plain.get()), 0);
  EXPECT_EQ(jq::fft::held_table(plain.value()), t);
  ASSERT_EQ(FHTH(y.h(), plain.get()), 0);
  EXPECT_EQ(jq::fft::held_table(plain.value())->length, 7);
  EXPECT_EQ(jqrt_dispose_context(), 1);

  ASSERT_EQ(InvFastHilbertTransformH_IDP(y.h(), idp.get()), 0);
  auto* inst = static_cast<jq::fft::TransformInstance*>(idp.value());
  EXPECT_EQ(inst->first->table->length, 7);
  EXPECT_EQ(inst->second, nullptr);
  EXPECT_EQ(jqrt_cleanup_count(), 0);
  EXPECT_EQ(TransformUnreserveProc(idp.get()), 0);
  EXPECT_EQ(idp.value(), nullptr);
}

}  // namespace
