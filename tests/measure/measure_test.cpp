// State levels and the threshold peak detector through their exports.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "frame/scratch.hpp"
#include "jqanlys.h"
#include "jqrt.hpp"
#include "support/checks.hpp"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

struct LevelCase {
  const char* name;
  const double* x;
  int32_t n, bins, method, flag, code;
  double high, low, amplitude;
};

struct PeakCase {
  const char* name;
  const double* x;
  int32_t n;
  double threshold;
  int32_t width;
  std::vector<int32_t> peaks;
};

#include "measure_oracle.inc"

using Levels = decltype(&StateLevels);

struct Result {
  int32_t code;
  double high, low, amplitude;
};

Result levels(Levels f, const jqrt::Array<double>& x, int32_t method, int32_t bins, void** slot, int32_t flag = 0,
              double dt = 1e-3) {
  Result r{0, -1, -1, -1};
  r.code = f(x.h(), 0.0, dt, method, bins, slot, &r.high, &r.low, &r.amplitude, flag);
  return r;
}

void expect_case(Levels f, const LevelCase& c, void** slot) {
  jqrt::Array<double> x(std::vector<double>(c.x, c.x + c.n));
  const Result r = levels(f, x, c.method, c.bins, slot, c.flag);
  EXPECT_EQ(r.code, c.code);
  EXPECT_EQ(r.high, c.high);
  EXPECT_EQ(r.low, c.low);
  EXPECT_EQ(r.amplitude, c.amplitude);
}

// A plain site's block goes with the host context (its registration would
// otherwise outlive it); an _IDP site's is unreserved.
void release(Levels f, jqrt::Slot& slot) {
  if (f == &StateLevels)
    jqrt_dispose_context();
  else
    EXPECT_EQ(MeasurementUnreserveProc(slot.get()), 0);
}

std::string describe(const LevelCase& c) {
  return std::string(c.name) + " bins " + std::to_string(c.bins) + " method " + std::to_string(c.method) + " flag " +
         std::to_string(c.flag);
}

}  // namespace

// Every oracle case on a fresh site, then all of them through one site per
// form whose bin count keeps changing: the kept histogram block must not
// change any result, and the plain form keeps exactly one registration.
TEST(StateLevels, MatchTheOracleOnFreshAndReusedSites) {
  jqrt_dispose_context();
  const int32_t registered = 0;
  for (const LevelCase& c : kLevelCases) {
    SCOPED_TRACE(describe(c));
    jqrt::Slot plain, idp;
    expect_case(StateLevels, c, plain.get());
    expect_case(StateLevels_IDP, c, idp.get());
    EXPECT_EQ(MeasurementUnreserveProc(idp.get()), 0);
    EXPECT_EQ(jqrt_dispose_context(), registered + 1);
  }
  jqrt::Slot plain, idp;
  for (const LevelCase& c : kLevelCases) {
    SCOPED_TRACE(describe(c));
    expect_case(StateLevels, c, plain.get());
    expect_case(StateLevels_IDP, c, idp.get());
    EXPECT_EQ(jqrt_cleanup_count(), registered + 1) << "a replaced block must not stay registered";
  }
  EXPECT_EQ(MeasurementUnreserveProc(idp.get()), 0);
  EXPECT_EQ(idp.value(), nullptr);
  // The context's clean-up frees the plain site's block (ASan reports a leak
  // or a double free otherwise).
  EXPECT_EQ(jqrt_dispose_context(), registered + 1);
}

TEST(StateLevels, DegenerateSignals) {
  jqrt::Slot slot;
  jqrt::Array<double> flat{2.5, 2.5, 2.5}, nan_first{kNaN, 0, 5, 5}, one{-3};
  for (int32_t method : {0, 2}) {
    const Result r = levels(StateLevels, flat, method, 10, slot.get());
    EXPECT_EQ(r.code, -20309);
    EXPECT_EQ(r.high, 0);
    EXPECT_EQ(r.low, 0);
    EXPECT_EQ(r.amplitude, 0);
    EXPECT_EQ(levels(StateLevels, nan_first, method, 10, slot.get()).code, -20309);
  }
  Result r = levels(StateLevels, flat, 1, 10, slot.get());
  EXPECT_EQ(r.code, 0);
  EXPECT_EQ(r.high, 2.5);
  EXPECT_EQ(r.low, 2.5);
  EXPECT_EQ(r.amplitude, 0);
  r = levels(StateLevels, one, 1, 1, slot.get());
  EXPECT_EQ(r.code, 0);
  EXPECT_EQ(r.high, -3);
  // The extremes keep the first of equal values, which shows in the sign of
  // a zero met first at index 4 and again at 5.
  jqrt::Array<double> max_zero{-5, -4, -3, -2, -0.0, 0.0, 0.0, -1, -1, -1};
  jqrt::Array<double> min_zero{5, 4, 3, 2, -0.0, 0.0, 0.0, 1, 1, 1};
  EXPECT_TRUE(std::signbit(levels(StateLevels, max_zero, 1, 4, slot.get()).high));
  EXPECT_TRUE(std::signbit(levels(StateLevels, min_zero, 1, 4, slot.get()).low));
  release(StateLevels, slot);
}

// The checks run in a fixed order, the first failing one decides, and every
// failure leaves the three levels at 0. The site survives every failure but
// an allocation's.
TEST(StateLevels, RejectionsInOrder) {
  jqrt::Array<double> x{0, 0, 5, 5, 0, 5}, empty;
  jqrt::Array<double> negative(2);
  negative.set_dims(-7);
  struct Case {
    const char* what;
    int32_t code;
    const jqrt::Array<double>* x;
    double dt;
    int32_t method, bins, flag;
  };
  const Case cases[] = {
      {"no bins before anything else", -20317, &empty, 0, 9, 0, 5},
      {"negative bins", -20317, &x, 1, 0, -3, 0},
      {"INT32_MIN bins", -20317, &x, 1, 0, INT32_MIN, 0},
      {"unobtainable bins", -20001, &x, 1, 0, INT32_MAX, 0},
      {"empty signal before dt", -20312, &empty, 0, 9, 4, 5},
      {"negative count", -20312, &negative, 1, 0, 4, 0},
      {"zero dt before the flag", -20315, &x, 0, 9, 4, 5},
      {"negative dt", -20315, &x, -1, 0, 4, 0},
      {"NaN dt", -20315, &x, kNaN, 0, 4, 0},
      {"flag 2 before the method", -20061, &x, 1, 9, 4, 2},
      {"flag -1", -20061, &x, 1, 0, 4, -1},
      {"method 3", -20316, &x, 1, 3, 4, 0},
      {"method -1", -20316, &x, 1, -1, 4, 1},
  };
  for (Levels f : {&StateLevels, &StateLevels_IDP}) {
    jqrt::Slot slot;
    for (const Case& c : cases) {
      SCOPED_TRACE(c.what);
      const Result r = levels(f, *c.x, c.method, c.bins, slot.get(), c.flag, c.dt);
      EXPECT_EQ(r.code, c.code);
      EXPECT_EQ(r.high, 0);
      EXPECT_EQ(r.low, 0);
      EXPECT_EQ(r.amplitude, 0);
    }
    EXPECT_NE(slot.value(), nullptr);
    release(f, slot);
  }
  // A null handle reads as empty; without a slot the histogram lives for the
  // call only; absent outputs are skipped.
  double high = 1;
  EXPECT_EQ(StateLevels(nullptr, 0, 1, 0, 4, nullptr, &high, nullptr, nullptr, 0), -20312);
  EXPECT_EQ(high, 0);
  EXPECT_EQ(StateLevels(x.h(), 0, 1, 0, 4, nullptr, &high, nullptr, nullptr, 0), 0);
  EXPECT_EQ(high, 5 - 5.0 / 8);
}

// A new bin count needs new memory: for the plain form a new block and its
// counts, for the _IDP form only the counts. Either failing is -20001 with
// zero levels, and the next call at the same site works.
TEST(StateLevels, FailedAllocations) {
  jqrt::Array<double> x{0, 0, 5, 5, 0, 5};
  for (auto [f, nth] : {std::pair{&StateLevels, 1}, {&StateLevels, 2}, {&StateLevels_IDP, 1}}) {
    jqrt::Slot slot;
    ASSERT_EQ(levels(f, x, 0, 3, slot.get()).code, 0);
    jq::fail_scratch_allocation(nth);
    const Result r = levels(f, x, 0, 8, slot.get());
    jq::fail_scratch_allocation(0);
    EXPECT_EQ(r.code, -20001);
    EXPECT_EQ(r.high, 0);
    EXPECT_EQ(r.amplitude, 0);
    EXPECT_EQ(slot.value() != nullptr, f == &StateLevels_IDP) << "the _IDP holder stays, a plain block goes";
    EXPECT_EQ(levels(f, x, 0, 8, slot.get()).high, 5 - 5.0 / 16);
    EXPECT_EQ(jqrt_cleanup_count(), f == &StateLevels ? 1 : 0);
    release(f, slot);
  }
}

namespace {

struct Peaks {
  int32_t result, error, count;
  std::vector<int32_t> indices;
};

Peaks detect(const std::vector<double>& v, double threshold, int32_t width) {
  jqrt::Array<double> x(v);
  jqrt::Array<int32_t> out(5);
  Peaks p{};
  p.count = p.error = -1;
  p.result = PeakDetector(x.h(), &threshold, &width, out.h(), &p.count, &p.error);
  p.indices = out.values();
  return p;
}

}  // namespace

TEST(PeakDetector, MatchesTheOracle) {
  for (const PeakCase& c : kPeakCases) {
    SCOPED_TRACE(std::string(c.name) + " threshold " + std::to_string(c.threshold) + " width " +
                 std::to_string(c.width));
    const Peaks p = detect(std::vector<double>(c.x, c.x + c.n), c.threshold, c.width);
    EXPECT_EQ(p.result, 0);
    EXPECT_EQ(p.error, 0);
    EXPECT_EQ(p.indices, c.peaks);
    EXPECT_EQ(p.count, static_cast<int32_t>(c.peaks.size()));
  }
}

TEST(PeakDetector, RunsAtTheEdgesAndNaN) {
  EXPECT_EQ(detect({0, 5, 5, 0, 5}, 1, 2).indices, std::vector<int32_t>{1});
  EXPECT_EQ(detect({5, 5, 5}, 1, 2).indices, std::vector<int32_t>{0});
  EXPECT_EQ(detect({kNaN, kNaN, kNaN}, 1, 1).indices, std::vector<int32_t>{0});
  // Width 1 on alternating samples fills the upper bound exactly.
  const Peaks p = detect({1, 0, 1, 0, 1}, 1, 1);
  EXPECT_EQ(p.indices, (std::vector<int32_t>{0, 2, 4}));
  EXPECT_EQ(p.count, 3);
  // A run of length n - 1 at either end, with width n - 1.
  EXPECT_EQ(detect({0, 1, 1, 1}, 1, 3).indices, std::vector<int32_t>{1});
  EXPECT_EQ(detect({1, 1, 1, 0}, 1, 3).indices, std::vector<int32_t>{0});
  EXPECT_EQ(detect({1, 1, 1, 0}, kInf, 1).indices, std::vector<int32_t>{});
}

// A width outside [1, n - 1], every empty signal included, is -20013 as the
// result and the error; a failed resize is -20001 with the host's status as
// the result. The indices are always emptied and the count is 0.
TEST(PeakDetector, Rejections) {
  using jqtest::Rejection;
  auto call = [](std::vector<double> v, int32_t width, int32_t set_count = 1, bool null_threshold = false) {
    return [=](uint8_t** out) {
      jqrt::Array<double> x(v.empty() ? std::vector<double>{0} : v);
      if (v.empty() || set_count < 1) x.set_dims(v.empty() ? 0 : set_count);
      double threshold = 0.5;
      int32_t w = width, count = 9, error = 9;
      const int32_t result =
          PeakDetector(x.h(), null_threshold ? nullptr : &threshold, &w, out, &count, &error);
      EXPECT_EQ(count, 0);
      if (error == -20013) return result == error ? error : 1;
      return jqtest::reported(result, error);
    };
  };
  const std::vector<double> x{0, 1, 1, 0, 1, 1};
  jqtest::expect_rejections<int32_t>({
      {"width = n", -20013, call(x, 6)},
      {"width 0", -20013, call(x, 0)},
      {"negative width", -20013, call(x, -2)},
      {"INT32_MIN width", -20013, call(x, INT32_MIN)},
      {"INT32_MAX width", -20013, call(x, INT32_MAX)},
      {"empty signal: -20013, not -20003", -20013, call({}, 1)},
      {"negative count", -20013, call(x, 1, -5)},
      {"no threshold", -20013, call(x, 1, 1, true)},
      {"the upper-bound resize fails", -20001, call(x, 1), 1},
      {"the final shrink fails", -20001, call(x, 1), 2},
  });
  int32_t count = 9, error = 9, width = 1;
  double threshold = 0;
  EXPECT_EQ(PeakDetector(nullptr, &threshold, &width, nullptr, &count, &error), -20013);
  EXPECT_EQ(error, -20013);
}
