// Continuous waves bit for bit against an independent computation
// (tools/waves_reference.py), record patterns and pulse shapes against their
// closed forms, and every check with its emptied output and untouched phase.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "generation/waves_trig.hpp"
#include "jqanlys.h"
#include "jqrt.hpp"
#include "support/checks.hpp"
#include "waves_reference.inc"

namespace {

using jqtest::reported;
constexpr double kPi = 3.141592653589793;

bool same_bits(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

// Runs one continuous wave or pattern with values; phase is in/out.
int32_t wave(int kind, uint8_t** y, int32_t n, double a, double f, double& phase, double extra = 50,
             uint8_t** table = nullptr, int32_t interp = 1) {
  int32_t err = 77;
  int32_t rc = 0;
  switch (kind) {
    case reference::kSine:
      rc = SineWaveCIN(y, &n, &a, &f, &phase, &err);
      break;
    case reference::kSquare:
      rc = SquareWaveCIN(y, &n, &a, &f, &phase, &extra, &err);
      break;
    case reference::kTriangle:
      rc = TriangleWaveCIN(y, &n, &a, &f, &phase, &err);
      break;
    case reference::kSawtooth:
      rc = SawtoothWaveCIN(y, &n, &a, &f, &phase, &err);
      break;
    case reference::kArbitrary:
      rc = ArbitraryWaveCIN(y, &n, &a, &f, &phase, table, &interp, &err);
      break;
    case reference::kSinePattern:
      rc = SinePtrn(y, &n, &a, &phase, &f, &err);
      break;
    case reference::kChirp:
      rc = ChirpCIN(y, &n, &a, &f, &extra, &err);
      break;
  }
  return reported(rc, err);
}

}  // namespace

TEST(WaveSequences, BitExactAgainstTheIndependentComputation) {
  const int64_t live = jqrt_live_blocks();
  jqrt::Array<double> table(std::vector<double>(std::begin(reference::kTable), std::end(reference::kTable)));
  double phase = 0;
  for (size_t k = 0; k < std::size(reference::kWaves); ++k) {
    const reference::WaveCase& c = reference::kWaves[k];
    SCOPED_TRACE(testing::Message() << "case " << k << " kind " << c.kind << " n " << c.n);
    // A chained case continues from the phase the previous call left.
    if (c.chained)
      EXPECT_TRUE(same_bits(phase, c.phase));
    else
      phase = c.phase;
    jqrt::Array<double> y;
    ASSERT_EQ(wave(c.kind, y.h(), c.n, c.a, c.f, phase, c.extra, table.h(), c.interpolation), 0);
    ASSERT_EQ(y.size(), c.n);
    int mismatches = 0;
    for (int i = 0; i < c.n; ++i)
      if (!same_bits(y[i], c.y[i]) && ++mismatches <= 3)
        ADD_FAILURE() << "sample " << i << ": " << y[i] << " expected " << c.y[i];
    EXPECT_EQ(mismatches, 0);
    if (c.kind != reference::kChirp) {
      EXPECT_TRUE(same_bits(phase, c.phase_out)) << phase << " vs " << c.phase_out;
    }
  }
  EXPECT_EQ(jqrt_live_blocks(), live + 1) << "only the table is left";
}

TEST(WaveSequences, LongSineKeepsItsAmplitudeAndAnEmptyTableGivesZeros) {
  jqrt::Array<double> y, empty;
  double phase = 17;
  const int32_t n = 200000;
  ASSERT_EQ(wave(reference::kSine, y.h(), n, -1.25, 0.0123456, phase), 0);
  double top = 0;
  for (double v : y.values()) top = std::max(top, std::fabs(v));
  EXPECT_LE(top, 1.25);
  EXPECT_NEAR(top, 1.25, 1e-6);
  // The last sample is still where a fresh sine puts it.
  EXPECT_NEAR(y[n - 1], -1.25 * std::sin((17 + (n - 1) * 360.0 * 0.0123456) * kPi / 180), 1e-9);
  phase = 45;
  ASSERT_EQ(wave(reference::kArbitrary, y.h(), 3, 1, 0.1, phase, 0, empty.h()), 0);
  EXPECT_EQ(y.values(), std::vector<double>(3, 0.0));
  EXPECT_EQ(phase, 0.0);
}

TEST(PortableTrig, CorrectlyRoundedAtHardArguments) {
  for (const reference::Trig& t : reference::kTrig) {
    EXPECT_TRUE(same_bits(jq::gen::sine(t.x), t.sin)) << t.x;
    EXPECT_TRUE(same_bits(jq::gen::cosine(t.x), t.cos)) << t.x;
  }
  EXPECT_TRUE(std::isnan(jq::gen::sine(HUGE_VAL)));
  EXPECT_TRUE(std::isnan(jq::gen::cosine(std::nan(""))));
}

TEST(Patterns, SquareRampsPulsesAndSinc) {
  jqrt::Array<double> y;
  int32_t n = 10, err = 0;
  double a = 3, duty = 50, cycles = 2.5;
  ASSERT_EQ(Square(y.h(), &n, &a, &duty, &cycles, &err), 0);
  EXPECT_EQ(y.values(), (std::vector<double>{3, 3, 0, 0, 3, 3, 0, 0, 3, 3}));
  // n / cycles = 3.33 gives a period of trunc(3.83) = 3 with trunc(2) = 2 high.
  cycles = 3;
  ASSERT_EQ(Square(y.h(), &n, &a, &duty, &cycles, &err), 0);
  EXPECT_EQ(y.values(), (std::vector<double>{3, 3, 0, 3, 3, 0, 3, 3, 0, 3}));
  for (double all : {100.0, 1e300}) {  // a duty above 100 is not rejected
    duty = all;
    ASSERT_EQ(Square(y.h(), &n, &a, &duty, &cycles, &err), 0);
    EXPECT_EQ(y.values(), std::vector<double>(10, 3.0));
  }

  ASSERT_EQ(RampPtrn85(y.h(), 5, 0, 1, 1, 0), 0);
  EXPECT_EQ(y.values(), (std::vector<double>{0, 0.2, 0.4, 0.6, 0.8}));
  ASSERT_EQ(RampPtrn80(y.h(), 5, 0, 1), 0);
  EXPECT_EQ(y.values(), (std::vector<double>{0, 0.25, 0.5, 0.75, 1}));
  ASSERT_EQ(RampPtrn85(y.h(), 4, 1, 1000, 0, 1), 0);
  EXPECT_EQ(y[0], 1.0);
  EXPECT_NEAR(y[1], 10, 1e-13);
  EXPECT_NEAR(y[2], 100, 1e-12);
  EXPECT_EQ(y[3], 1000.0);  // set exactly
  ASSERT_EQ(RampPtrn80(y.h(), 1, 2, 2), 0);
  EXPECT_EQ(y.values(), std::vector<double>{2});
  // An end that i * (end - start) / D + start cannot reach still lands exactly.
  ASSERT_EQ(RampPtrn80(y.h(), 3, 0.1, 0.7), 0);
  EXPECT_EQ(y[2], 0.7);

  n = 6;
  int32_t delay = 2, width = 3;
  a = 4;
  ASSERT_EQ(PulsePtrn(y.h(), &n, &a, &delay, &width, &err), 0);
  EXPECT_EQ(y.values(), (std::vector<double>{0, 0, 4, 4, 4, 0}));
  delay = 5;
  ASSERT_EQ(ImpulsePtrn(y.h(), &n, &a, &delay, &err), 0);
  EXPECT_EQ(y.values(), (std::vector<double>{0, 0, 0, 0, 0, 4}));

  n = 5;
  double d = 1, dt = 0.5;
  a = 2;
  ASSERT_EQ(SincWave(y.h(), &n, &a, &d, &dt, &err), 0);
  EXPECT_EQ(y[2], 2.0);
  EXPECT_NEAR(y[0], 0, 1e-15);  // sin(-pi) / -pi
  EXPECT_NEAR(y[1], 2 * std::sin(-kPi / 2) / (-kPi / 2), 1e-15);
}

TEST(PulseShapes, GeneratedTimeBaseAndGivenTimes) {
  // Periodic sinc: 1 at every singular point, even where the limit is -1.
  jqrt::Array<double> t{2 * kPi, 0.0, kPi};
  ASSERT_EQ(PeriodicSincH(t.h(), 99, 3, 2, -1, 0), 0);
  EXPECT_EQ(t[0], 3.0);
  EXPECT_EQ(t[1], 3.0);
  EXPECT_NEAR(t[2], 3 * std::sin(kPi) / (2 * std::sin(kPi / 2)), 1e-15);

  jqrt::Array<double> y;
  ASSERT_EQ(GaussMonopulseH(y.h(), 3, 2, 1, 1, 0.5), 0);
  // tau = -1, 0, 1 and u = pi * 0.5 * tau.
  for (int i = 0; i < 3; ++i) {
    const double u = kPi * 0.5 * (i - 1);
    EXPECT_NEAR(y[i], 2 * std::sqrt(std::exp(1.0)) * 2 * u * std::exp(-2 * u * u), 1e-15);
  }
  // Its extremes are +-a, at u = +-1/2.
  jqrt::Array<double> ext{-0.5 / kPi, 0.5 / kPi};
  ASSERT_EQ(GaussMonopulseH(ext.h(), 0, 1.5, 0, 0, 1), 0);
  EXPECT_NEAR(ext[0], -1.5, 1e-15);
  EXPECT_NEAR(ext[1], 1.5, 1e-15);

  // Gaussian pulse: the generated base is i * dt - delay.
  jqrt::Array<double> g;
  ASSERT_EQ(GaussPulseH(g.h(), 3, 2, 0.1, 0.1, 2, 0.5, 6), 0);
  for (int i = 0; i < 3; ++i) {
    const double u = kPi * 2 * (i * 0.1 - 0.1);
    EXPECT_NEAR(g[i], 2 * std::exp(-5 * 0.25 / (std::log(10.0) * 6) * u * u) * std::cos(2 * u), 1e-15);
  }
  EXPECT_EQ(g[1], 2.0);

  // Aperiodic triangle: starts at 0 on the generated base, centred on 0 for
  // given times; skew 0 falls from a at the start, skew 1 rises to a at the end.
  jqrt::Array<double> tri;
  ASSERT_EQ(AperiodTriangleH(tri.h(), 6, 2, 0, 1, 4, 0.25), 0);
  EXPECT_EQ(tri.values(), (std::vector<double>{0, 2, 2 * 2 / 3.0, 2 * 1 / 3.0, 0, 0}));
  jqrt::Array<double> times{-2, -1, 0, 2, 2.5}, edges{0.0, 0.5}, rise{0.0, 0.5};
  ASSERT_EQ(AperiodTriangleH(times.h(), 0, 1, 0, 0, 4, 0.5), 0);
  EXPECT_EQ(times.values(), (std::vector<double>{0, 0.5, 1, 0, 0}));
  ASSERT_EQ(AperiodTriangleH(edges.h(), 0, 1, 0, 0, 1, 0), 0);
  EXPECT_EQ(edges.values(), (std::vector<double>{0.5, 0}));
  ASSERT_EQ(AperiodTriangleH(rise.h(), 0, 1, 0, 0, 1, 1), 0);
  EXPECT_EQ(rise.values(), (std::vector<double>{0.5, 1.0}));
  // Given times ignore n and dt.
  for (auto f : {+[](uint8_t** h) { return PeriodicSincH(h, -1, 1, 3, -1, 0); },
                 +[](uint8_t** h) { return GaussPulseH(h, -1, 1, 0, -1, 1, 1, 6); },
                 +[](uint8_t** h) { return GaussMonopulseH(h, -1, 1, 0, -1, 1); }}) {
    jqrt::Array<double> one{1.0};
    EXPECT_EQ(f(one.h()), 0);
    EXPECT_EQ(one.size(), 1);
  }
}

// Every check of the wave and pattern exports in its order, the output
// emptied each time, and the phase of a continuous wave left alone.
TEST(WaveFailures, ChecksInTheirOrderEmptyTheOutput) {
  using jqtest::Rejection;
  std::vector<Rejection> cases;
  double phase = 123;
  jqrt::Array<double> table{1, 2};
  for (int kind :
       {reference::kSine, reference::kSquare, reference::kTriangle, reference::kSawtooth, reference::kArbitrary}) {
    for (auto [n, code, fail] : {std::tuple{0, -20003, 0}, {-5, -20003, 0}, {10, -20001, 1}})
      cases.push_back({"continuous wave", code,
                       [&, kind, n](uint8_t** y) { return wave(kind, y, n, 1, 0.1, phase, 50, table.h()); }, fail});
  }
  double nan_phase = jqtest::nan(), zero = 0;
  cases.push_back({"arbitrary, NaN phase", -20068,
                   [&](uint8_t** y) { return wave(reference::kArbitrary, y, 3, 1, 0.25, nan_phase, 0, table.h()); }});
  cases.push_back({"arbitrary, infinite frequency", -20068,
                   [&](uint8_t** y) { return wave(reference::kArbitrary, y, 3, 1, HUGE_VAL, zero, 0, table.h()); }});
  cases.push_back({"sine pattern, failed resize", -20001,
                   [&](uint8_t** y) { return wave(reference::kSinePattern, y, 8, 1, 2, zero); }, 1});
  cases.push_back(
      {"chirp, no samples", -20003, [&](uint8_t** y) { return wave(reference::kChirp, y, 0, 1, 0, zero, 0.5); }});
  // Square: duty is checked first, cycles second; the later failure wins.
  for (auto [duty, cycles, code] : {std::tuple{0.0, 3.0, -20011},
                                    {-1.0, 3.0, -20011},
                                    {50.0, 0.0, -20012},
                                    {50.0, 5.5, -20012},
                                    {0.0, 6.0, -20012}})
    cases.push_back({"square", code, [duty, cycles](uint8_t** y) {
                       int32_t n = 10, err = 0;
                       double a = 1, d = duty, c = cycles;
                       return reported(Square(y, &n, &a, &d, &c, &err), err);
                     }});
  for (auto [n, exclude, spacing, start, end, code] : {std::tuple{0, 1, 0, 0.0, 1.0, -20005},
                                                       {1, 0, 0, 0.0, 1.0, -20006},
                                                       {0, 0, 0, 1.0, 1.0, -20006},
                                                       {5, 0, 2, 0.0, 1.0, -20061},
                                                       {5, 0, -1, 0.0, 1.0, -20061},
                                                       {5, 0, 1, 0.0, 1.0, -20140},
                                                       {5, 1, 1, 1.0, -2.0, -20140},
                                                       {5, 0, 0, 0.0, 1.0, -20001}})
    cases.push_back(
        {"ramp", code, [=](uint8_t** y) { return RampPtrn85(y, n, start, end, exclude, spacing); }, code == -20001});
  cases.push_back({"ramp, one sample", -20006, [](uint8_t** y) {
                     int32_t n = 1, err = 0;
                     double s = 0, e = 1;
                     return reported(RampPtrn(y, &n, &s, &e, &err), err);
                   }});
  for (auto [delay, width] : {std::pair{-1, 1}, {1, -1}, {4, 3}, {7, 0}, {0, 7}, {2147483647, 2147483647}})
    cases.push_back({"pulse span", -20014, [delay, width](uint8_t** y) {
                       int32_t n = 6, d = delay, w = width, err = 0;
                       double a = 1;
                       return reported(PulsePtrn(y, &n, &a, &d, &w, &err), err);
                     }});
  for (int32_t delay : {-1, 6})
    cases.push_back({"impulse delay", -20017, [delay](uint8_t** y) {
                       int32_t n = 6, d = delay, err = 0;
                       double a = 1;
                       return reported(ImpulsePtrn(y, &n, &a, &d, &err), err);
                     }});
  cases.push_back({"sinc, zero spacing", -20016, [](uint8_t** y) {
                     int32_t n = 5, err = 0;
                     double a = 1, d = 0, dt = 0;
                     return reported(SincWave(y, &n, &a, &d, &dt, &err), err);
                   }});
  // The pulse shapes check their shape parameter first, then n, then dt; an
  // empty handle asks for the generated time base.
  using Shape = int32_t (*)(uint8_t**, int32_t n, double dt, double shape);
  for (Shape s :
       {+[](uint8_t**h, int32_t n, double dt, double s) { return PeriodicSincH(h, n, 1, s > 0 ? 3 : 0, dt, 0); },
        +[](uint8_t**h, int32_t n, double dt, double s) { return GaussPulseH(h, n, 1, 0, dt, 1, s, 6); },
        +[](uint8_t**h, int32_t n, double dt, double s) { return GaussMonopulseH(h, n, 1, 0, dt, s); }})
    for (auto [n, dt, shape, code] :
         {std::tuple{0, 0.0, 0.0, -20140}, {0, 0.0, 1.0, -20003}, {3, 0.0, 1.0, -20016}, {3, 1.0, 1.0, -20001}})
      cases.push_back({"pulse shape", code, [=](uint8_t** y) { return s(jqtest::with_count(y, 0), n, dt, shape); },
                       code == -20001});
  // The triangle checks n first, then width, dt and skew.
  for (auto [n, dt, width, skew, code] : {std::tuple{0, 0.0, 0.0, 2.0, -20003},
                                          {3, 0.0, 0.0, 2.0, -20140},
                                          {3, 0.0, 1.0, 2.0, -20016},
                                          {3, 1.0, 1.0, 2.0, -20053},
                                          {3, 1.0, 1.0, jqtest::nan(), -20053}})
    cases.push_back({"triangle", code, [=](uint8_t** y) {
                       return AperiodTriangleH(jqtest::with_count(y, 0), n, 1, 0, dt, width, skew);
                     }});
  cases.push_back(
      {"triangle, given times", -20053, [](uint8_t** y) { return AperiodTriangleH(y, 0, 1, 0, 0, 1, -0.5); }});
  jqtest::expect_rejections<double>(cases);
  EXPECT_EQ(phase, 123.0);
  EXPECT_TRUE(std::isnan(nan_phase));
  EXPECT_EQ(zero, 0.0);
}
