// State levels and the threshold peak detector through their exports.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <ostream>
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
  bool operator==(const Result&) const = default;
};
std::ostream& operator<<(std::ostream& o, const Result& r) {
  return o << r.code << " high " << r.high << " low " << r.low << " amplitude " << r.amplitude;
}

Result levels(Levels f, const std::vector<double>& v, int32_t method, int32_t bins, void** slot, int32_t flag = 0,
              double dt = 1e-3) {
  jqrt::Array<double> x(v);
  Result r{0, -1, -1, -1};
  r.code = f(x.h(), 0.0, dt, method, bins, slot, &r.high, &r.low, &r.amplitude, flag);
  return r;
}

// A plain site's block goes with the host context (its registration would
// otherwise outlive it); an _IDP site's is unreserved.
void release(Levels f, jqrt::Slot& slot) {
  if (f == &StateLevels)
    jqrt_dispose_context();
  else
    EXPECT_EQ(MeasurementUnreserveProc(slot.get()), 0);
}

}  // namespace

// Every oracle case on a fresh site, then all of them through one site per
// form whose bin count keeps changing: the kept histogram block must not
// change any result, and the plain form keeps exactly one registration.
TEST(StateLevels, MatchTheOracleOnFreshAndReusedSites) {
  jqrt_dispose_context();
  jqrt::Slot plain, idp;
  for (bool reuse : {false, true})
    for (const LevelCase& c : kLevelCases) {
      SCOPED_TRACE(std::string(c.name) + " bins " + std::to_string(c.bins) + " method " +
                   std::to_string(c.method) + " flag " + std::to_string(c.flag));
      const std::vector<double> x(c.x, c.x + c.n);
      const Result want{c.code, c.high, c.low, c.amplitude};
      jqrt::Slot fresh_plain, fresh_idp;
      EXPECT_EQ(levels(StateLevels, x, c.method, c.bins, (reuse ? plain : fresh_plain).get(), c.flag), want);
      EXPECT_EQ(levels(StateLevels_IDP, x, c.method, c.bins, (reuse ? idp : fresh_idp).get(), c.flag), want);
      EXPECT_EQ(jqrt_cleanup_count(), 1) << "a replaced block must not stay registered";
      if (!reuse) {
        release(StateLevels_IDP, fresh_idp);
        release(StateLevels, fresh_plain);
      }
    }
  EXPECT_EQ(MeasurementUnreserveProc(idp.get()), 0);
  EXPECT_EQ(idp.value(), nullptr);
  EXPECT_EQ(jqrt_dispose_context(), 1);  // ASan reports a leak or a double free otherwise
}

TEST(StateLevels, DegenerateSignals) {
  jqrt::Slot slot;
  const std::vector<double> flat{2.5, 2.5, 2.5}, nan_first{kNaN, 0, 5, 5};
  for (int32_t method : {0, 2}) {
    EXPECT_EQ(levels(StateLevels, flat, method, 10, slot.get()), (Result{-20309, 0, 0, 0}));
    EXPECT_EQ(levels(StateLevels, nan_first, method, 10, slot.get()), (Result{-20309, 0, 0, 0}));
  }
  EXPECT_EQ(levels(StateLevels, flat, 1, 10, slot.get()), (Result{0, 2.5, 2.5, 0}));
  EXPECT_EQ(levels(StateLevels, {-3}, 1, 1, slot.get()), (Result{0, -3, -3, 0}));
  // The extremes keep the first of equal values, which shows in the sign of
  // a zero met first at index 8 and again from 9 on.
  std::vector<double> up(17, 0.0), down(17, 0.0);
  for (int i = 0; i < 8; ++i) {
    up[i] = i ? -1 : -5;
    down[i] = i ? 1 : 5;
  }
  up[8] = down[8] = -0.0;
  EXPECT_TRUE(std::signbit(levels(StateLevels, up, 1, 4, slot.get()).high));
  EXPECT_TRUE(std::signbit(levels(StateLevels, down, 1, 4, slot.get()).low));
  release(StateLevels, slot);
}

// The checks run in a fixed order, the first failing one decides, and every
// failure leaves the three levels at 0. The site survives every failure but
// an allocation's.
TEST(StateLevels, RejectionsInOrder) {
  const std::vector<double> x{0, 0, 5, 5, 0, 5}, none;
  struct Case {
    const char* what;
    int32_t code;
    const std::vector<double>* x;
    double dt;
    int32_t method, bins, flag;
  };
  const Case cases[] = {
      {"no bins before anything else", -20317, &none, 0, 9, 0, 5},
      {"INT32_MIN bins", -20317, &x, 1, 0, INT32_MIN, 0},
      {"unobtainable bins", -20001, &x, 1, 0, INT32_MAX, 0},
      {"empty signal before dt", -20312, &none, 0, 9, 4, 5},
      {"zero dt before the flag", -20315, &x, 0, 9, 4, 5},
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
      EXPECT_EQ(levels(f, *c.x, c.method, c.bins, slot.get(), c.flag, c.dt), (Result{c.code, 0, 0, 0}));
    }
    EXPECT_NE(slot.value(), nullptr);
    release(f, slot);
  }
  // A negative count or a null handle reads as empty; without a slot the
  // histogram lives for the call only; absent outputs are skipped.
  jqrt::Array<double> negative(2), xs(x);
  negative.set_dims(-7);
  double high = 1;
  EXPECT_EQ(StateLevels(negative.h(), 0, 1, 0, 4, nullptr, &high, nullptr, nullptr, 0), -20312);
  EXPECT_EQ(StateLevels(nullptr, 0, 1, 0, 4, nullptr, &high, nullptr, nullptr, 0), -20312);
  EXPECT_EQ(high, 0);
  EXPECT_EQ(StateLevels(xs.h(), 0, 1, 0, 4, nullptr, &high, nullptr, nullptr, 0), 0);
  EXPECT_EQ(high, 5 - 5.0 / 8);
}

// A new bin count needs new memory: for the plain form a new block and its
// counts, for the _IDP form only the counts. Either failing is -20001 with
// zero levels, and the next call at the same site works.
TEST(StateLevels, FailedAllocations) {
  const std::vector<double> x{0, 0, 5, 5, 0, 5};
  for (auto [f, nth] : {std::pair{&StateLevels, 1}, {&StateLevels, 2}, {&StateLevels_IDP, 1}}) {
    jqrt::Slot slot;
    ASSERT_EQ(levels(f, x, 0, 3, slot.get()).code, 0);
    jq::fail_scratch_allocation(nth);
    const Result r = levels(f, x, 0, 8, slot.get());
    jq::fail_scratch_allocation(0);
    EXPECT_EQ(r, (Result{-20001, 0, 0, 0}));
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

Peaks detect(const std::vector<double>& v, double threshold, int32_t width, int32_t fail = 0) {
  jqrt::Array<double> x(v);
  jqrt::Array<int32_t> out(5);
  Peaks p{0, 9, 9, {}};
  {
    jqrt::FailResize failing(fail);
    p.result = PeakDetector(x.h(), &threshold, &width, out.h(), &p.count, &p.error);
  }
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
  // Width 1 on alternating samples fills the upper bound of n / width + 1.
  EXPECT_EQ(detect({1, 0, 1, 0, 1}, 1, 1).indices, (std::vector<int32_t>{0, 2, 4}));
  EXPECT_EQ(detect({0, 5, 5, 0, 5}, 1, 2).indices, std::vector<int32_t>{1});
  EXPECT_EQ(detect({kNaN, kNaN, kNaN}, 1, 1).indices, std::vector<int32_t>{0});
}

// A width outside [1, n - 1], every empty signal included, is -20013 as the
// result and the error; a failed resize is -20001 with the host's status as
// the result. The indices are always emptied and the count is 0.
TEST(PeakDetector, Rejections) {
  auto call = [](std::vector<double> v, int32_t width, bool threshold = true) {
    return [=](uint8_t** out) mutable {
      jqrt::Array<double> x(v);
      if (v.empty()) x = jqrt::Array<double>::null();
      double t = 0.5;
      int32_t count = 9, error = 9;
      const int32_t result = PeakDetector(x.h(), threshold ? &t : nullptr, &width, out, &count, &error);
      EXPECT_EQ(count, 0);
      return error == -20013 ? (result == error ? error : 1) : jqtest::reported(result, error);
    };
  };
  const std::vector<double> x{0, 1, 1, 0, 1, 1};
  jqtest::expect_rejections<int32_t>({
      {"width = n", -20013, call(x, 6)},
      {"width 0", -20013, call(x, 0)},
      {"INT32_MIN", -20013, call(x, INT32_MIN)},
      {"INT32_MAX", -20013, call(x, INT32_MAX)},
      {"no samples: -20013, not -20003", -20013, call({}, 1)},
      {"no threshold", -20013, call(x, 1, false)},
      {"the upper-bound resize fails", -20001, call(x, 1), 1},
      {"the final shrink fails", -20001, call(x, 1), 2},
  });
}
